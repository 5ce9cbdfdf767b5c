/* libcalendarui - the dialog that lists the calendars
 *
 * One row per calendar: its colour, its title with the number of entries
 * it holds, and a check box that shows or hides it. Under the list: New,
 * Edit and Delete. The dialog works on the host's TavCalendarSources
 * alone: visibility and edits are saved with tav_calendar_source_save(),
 * deletions made with tav_calendar_source_remove(), and after each change
 * that the store took the dialog emits "calendars-changed".
 *
 * What a host does:
 *  1. tav_calendar_list_dialog_new(), tav_calendar_list_dialog_add_calendar()
 *     for each calendar, show it (settings' "edit-clicked" is the usual way
 *     in).
 *  2. Connects "calendars-changed": void (*) (TavCalendarListDialog *dialog,
 *     gpointer user_data), and re-reads its views there.
 *  3. Connects "new-requested": void (*) (TavCalendarListDialog *dialog,
 *     gpointer user_data), emitted by New; the handler makes an unsaved
 *     source of its own kind and passes it to
 *     tav_calendar_list_dialog_edit_new(), which opens the edit dialog
 *     and, when it saves, adds the row.
 *
 * Edit opens a TavCalendarEditDialog over the list for the chosen row.
 * Delete asks first, naming the calendar and how many entries go with it.
 * Refused with a banner: deleting a calendar that is read-only, and
 * deleting the last calendar that accepts writes (entries need a home).
 */
#ifndef TAV_CALENDAR_LIST_DIALOG_H
#define TAV_CALENDAR_LIST_DIALOG_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarSource.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_LIST_DIALOG    (tav_calendar_list_dialog_get_type ())
#define TAV_CALENDAR_LIST_DIALOG(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_LIST_DIALOG, TavCalendarListDialog))
#define TAV_IS_CALENDAR_LIST_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_LIST_DIALOG))

/* A TavCalendarDialog; its structures are private to the library. */
typedef struct _TavCalendarListDialog TavCalendarListDialog;

TAV_API GType      tav_calendar_list_dialog_get_type (void) G_GNUC_CONST;

/* Returns: (transfer none): a new, empty dialog, not shown. End it with
 * gtk_widget_destroy(). */
TAV_API GtkWidget *tav_calendar_list_dialog_new (void);

/* Adds a row for @source (the dialog keeps a reference); FALSE when it is
 * listed already. The first row is chosen. */
TAV_API gboolean   tav_calendar_list_dialog_add_calendar (TavCalendarListDialog *dialog, TavCalendarSource *source);
TAV_API int        tav_calendar_list_dialog_get_count (TavCalendarListDialog *dialog);

/* Chooses @source's row; FALSE when it is not listed. */
TAV_API gboolean   tav_calendar_list_dialog_select (TavCalendarListDialog *dialog, TavCalendarSource *source);
/* Returns: (transfer none) (nullable): the chosen row's source. */
TAV_API TavCalendarSource *tav_calendar_list_dialog_get_selected (TavCalendarListDialog *dialog);

/* What the row's check box does: shows or hides @source and saves it.
 * FALSE (and the box as it was) when it is not listed or the save failed. */
TAV_API gboolean   tav_calendar_list_dialog_set_calendar_visible (TavCalendarListDialog *dialog,
                                                                  TavCalendarSource *source, gboolean visible);

/* What Edit does. Returns: (transfer none) (nullable): the edit dialog
 * opened for the chosen row (NULL when no row is chosen). */
TAV_API GtkWidget *tav_calendar_list_dialog_edit_selected (TavCalendarListDialog *dialog);
/* Returns: (transfer none): the edit dialog opened to create @source,
 * which is listed once it saves. */
TAV_API GtkWidget *tav_calendar_list_dialog_edit_new (TavCalendarListDialog *dialog, TavCalendarSource *source);

/* What Delete does. Returns: (transfer none) (nullable): the confirmation
 * note asked (its OK deletes), or NULL when the deletion is refused (the
 * reason is shown in a banner) or no row is chosen. */
TAV_API GtkWidget *tav_calendar_list_dialog_delete_selected (TavCalendarListDialog *dialog);

G_END_DECLS

#endif /* TAV_CALENDAR_LIST_DIALOG_H */
