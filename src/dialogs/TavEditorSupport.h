/* libcalendarui - pieces the event, task and note editors share (internal)
 *
 * The form's building blocks (captions, picker buttons, rows), showing and
 * reading dates and times on the touch buttons, the confirmation a dialog
 * runs over itself, and the report of a failed calendar operation.
 */
#ifndef TAV_EDITOR_SUPPORT_H
#define TAV_EDITOR_SUPPORT_H

#include <gtk/gtk.h>

#include <string>

#include "TavCalendarDialog.h"
#include "TavCalendarEntry.h"
#include "TavCalendarEnums.h"
#include "TavDate.h"

namespace tav::editor {

/* Today and the time now. */
void now_stamp (TavTimestamp &now);

/* A valid date within the years the date picker reaches. */
bool in_button_range (const TavDate &date);
/* Shows @date on a date button. A date the picker cannot reach (an entry
 * from outside the calendar's years) is shown as text and kept as it is. */
void show_date (GtkWidget *button, const TavDate &date);
void show_time (GtkWidget *button, const TavTime &time);
TavDate date_of (GtkWidget *button);
TavTime time_of (GtkWidget *button);

/* @text without leading and trailing white space ("" for NULL). */
std::string stripped (const char *text);

/* A left-aligned caption whose width @group shares. */
GtkWidget *caption (GtkSizeGroup *group, const char *text);
/* A finger-high title/value button of @type named @name (for tests and
 * screenshots) with @title, its title sharing @group's width when given. */
GtkWidget *picker (GType type, const char *name, const char *title, GtkSizeGroup *group);
/* One line of the form: @first takes the free width, @second (when given)
 * a fixed one on its right. */
void add_row (GtkWidget *rows, GtkWidget *first, GtkWidget *second = nullptr);
/* A caption on the left of a text entry. */
GtkWidget *captioned (GtkSizeGroup *group, const char *text, GtkWidget *entry);

/* Asks @question in a confirmation note over @dialog, remembered as the
 * dialog's modal widget while it is open; true when the user answered OK
 * and the dialog still lives. */
bool confirm (TavCalendarDialog *dialog, const char *question);

/* @format with @title put in where it has a "%s" (a translation may leave
 * it out); any other conversion is left as it stands. */
std::string with_title (const char *format, const char *title);

/* After the calendars were added to an editor's calendar @button: chooses
 * the calendar of @entry (NULL for a new one), or when that is not listed
 * the first visible calendar. */
void select_own_calendar (GtkWidget *button, TavCalendarEntry *entry);

/* Emits the dialog's "error" with the text of @code. */
void report_error (TavCalendarDialog *dialog, int code);

}  // namespace tav::editor

#endif /* TAV_EDITOR_SUPPORT_H */
