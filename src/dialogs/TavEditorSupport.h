/* libcalendarui - pieces the event, task and note editors share (internal)
 *
 * The form's building blocks (captions, picker buttons, rows), showing and
 * reading dates and times on the touch buttons, the confirmation a dialog
 * runs over itself, and the report of a failed calendar operation.
 */
#ifndef TAV_EDITOR_SUPPORT_H
#define TAV_EDITOR_SUPPORT_H

#include <gtk/gtk.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "TavCalendarDialog.h"
#include "TavCalendarEntry.h"
#include "TavCalendarEnums.h"
#include "TavCalendarSource.h"
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

/* @format with its "%d" replaced by @number. */
std::string with_number (const char *format, long number);

/* After the calendars were added to an editor's calendar @button: chooses
 * the calendar of @entry (NULL for a new one), or when that is not listed
 * the first visible calendar. */
void select_own_calendar (GtkWidget *button, TavCalendarEntry *entry);

/* Offers @source in an editor's calendar @button and chooses it (read-only
 * sources are refused); @save rests while the button lists no calendar. */
void offer_calendar (GtkWidget *button, GtkWidget *save, TavCalendarSource *source);

/* The "num-id" of @entry (NULL for none), newly allocated. */
char *num_id_of (gpointer entry);

/* Answers (Cancel) and forgets the confirmation open over @dialog, for a
 * dialog being disposed. */
void close_modal_note (TavCalendarDialog *dialog);

/* The values of some properties of an object, taken now, to be put back
 * when a calendar refuses what was written into the object. */
class PropertySnapshot {
public:
    PropertySnapshot (GObject *object, std::initializer_list<const char *> names);
    ~PropertySnapshot ();
    PropertySnapshot (const PropertySnapshot &) = delete;
    PropertySnapshot &operator= (const PropertySnapshot &) = delete;
    void restore ();

private:
    GObject *m_object;
    std::vector<std::pair<const char *, GValue>> m_values;
};

/* Emits the dialog's "error" with the text of @code. */
void report_error (TavCalendarDialog *dialog, int code);

/* A name typed for a calendar or a person, trimmed: false, with the
 * message to show in @reason, when it is NULL (text that was not UTF-8),
 * empty, or longer than 256 characters. @empty_msgid and @long_msgid name
 * the messages for those two cases. */
bool checked_name (const char *typed, const char *empty_msgid, const char *long_msgid, std::string *name,
                   std::string *reason);

/* Keeps @message in @kept and shows it in @label, which is hidden while
 * there is nothing to say. */
void show_error_in (GtkWidget *label, std::string *kept, const std::string &message);

}  // namespace tav::editor

#endif /* TAV_EDITOR_SUPPORT_H */
