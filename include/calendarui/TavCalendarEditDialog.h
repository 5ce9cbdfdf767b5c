/* libcalendarui - the dialog that edits one calendar's properties
 *
 * Rows: the title (an entry), the colour (a TavColorButton), whether the
 * calendar is shown, its alarm tone (a TavAlarmToneButton) and its type
 * (shown, not changed: the host decides what kind of calendar it keeps).
 * Save writes them to the source with tav_calendar_source_save(), or
 * tav_calendar_source_create() for a new calendar, and answers
 * GTK_RESPONSE_OK; the host's source does the storing. The source keeps its
 * old properties when anything fails, so nothing half-changed is left.
 *
 * What a host calls: tav_calendar_edit_dialog_new() with the calendar's
 * source (for a new calendar, an unsaved source of the host's kind), then
 * gtk_dialog_run() or the "response" signal. On GTK_RESPONSE_OK the source
 * holds the new values and the store has them: re-read the views.
 *
 * Refused with a message under the rows, the dialog staying open: an empty
 * title, a title of more than 256 characters or not valid UTF-8, a title
 * another calendar has (the text of CalendarAlreadyExists), and any error
 * the source returns (its CalendarUiErrorCode's text).
 */
#ifndef TAV_CALENDAR_EDIT_DIALOG_H
#define TAV_CALENDAR_EDIT_DIALOG_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarSource.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_EDIT_DIALOG    (tav_calendar_edit_dialog_get_type ())
#define TAV_CALENDAR_EDIT_DIALOG(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_EDIT_DIALOG, TavCalendarEditDialog))
#define TAV_IS_CALENDAR_EDIT_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_EDIT_DIALOG))

/* A TavCalendarDialog; its structures are private to the library. */
typedef struct _TavCalendarEditDialog TavCalendarEditDialog;

TAV_API GType      tav_calendar_edit_dialog_get_type (void) G_GNUC_CONST;

/* Returns: (transfer none): a new dialog, not shown, with the rows filled
 * from @source (the dialog keeps a reference). @is_new: Save creates the
 * calendar instead of saving it. End it with gtk_widget_destroy(). */
TAV_API GtkWidget *tav_calendar_edit_dialog_new (TavCalendarSource *source, gboolean is_new);

/* Returns: (transfer none): the source the dialog edits. */
TAV_API TavCalendarSource *tav_calendar_edit_dialog_get_source (TavCalendarEditDialog *dialog);

/* Puts @title in the title entry, as typing it would. */
TAV_API void       tav_calendar_edit_dialog_set_title_text (TavCalendarEditDialog *dialog, const char *title);

/* What Save does: checks the rows and writes them to the source. FALSE,
 * with the reason shown and kept for get_error(), when refused. */
TAV_API gboolean   tav_calendar_edit_dialog_apply (TavCalendarEditDialog *dialog);

/* Returns: (transfer none) (nullable): the message shown, NULL when none. */
TAV_API const char *tav_calendar_edit_dialog_get_error (TavCalendarEditDialog *dialog);

G_END_DECLS

#endif /* TAV_CALENDAR_EDIT_DIALOG_H */
