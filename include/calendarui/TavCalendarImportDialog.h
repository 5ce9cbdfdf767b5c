/* libcalendarui - the dialog that imports a calendar file
 *
 * The dialog shows the user's side of an import; the host does the work.
 * It reads no file's entries and touches no calendar: it lets the user
 * choose a file and a target, shows the host's progress with a Cancel
 * button, and shows the host's report. It goes through three stages:
 *
 *   CHOOSE    a "File" row (GTK's file chooser, *.ics and *.ical shown
 *             first), a "Calendar" picker with the calendars the host
 *             added and a last row "New calendar", a name entry shown for
 *             the new calendar, and an Import button.
 *   PROGRESS  the file's name, a progress bar ("1,200 of 10,000") and
 *             Cancel.
 *   REPORT    the host's summary and details, and Close.
 *
 * What a host does:
 *  1. tav_calendar_import_dialog_new(), then
 *     tav_calendar_import_dialog_add_calendar() for each calendar that may
 *     receive entries (read-only ones are refused), optionally
 *     tav_calendar_import_dialog_set_file() and
 *     tav_calendar_import_dialog_set_calendar() to preselect; show it.
 *  2. Connect "import-requested": void (*) (TavCalendarImportDialog *dialog,
 *     const char *path, TavCalendarSource *target, const char *new_title,
 *     gpointer user_data). @path is a local file name that exists and is a
 *     regular file (the dialog has checked it, through GIO when it was
 *     given as a URI); @target is the chosen calendar, or NULL with
 *     @new_title (non-empty, valid UTF-8, at most 256 characters, trimmed)
 *     for a new calendar. The handler either refuses at once with
 *     tav_calendar_import_dialog_set_error() (the dialog stays on CHOOSE
 *     with the message, nothing changed), or starts importing and calls
 *     tav_calendar_import_dialog_set_progress() from its work (an idle
 *     callback, so that the main loop keeps answering).
 *  3. Connect "cancel-requested": void (*) (TavCalendarImportDialog *dialog,
 *     gpointer user_data), emitted when the user taps Cancel during
 *     PROGRESS (or closes the dialog then: the dialog is destroyed after
 *     the signal, so the host must stop touching it). The host stops and
 *     undoes the import, then reports it with set_report().
 *  4. When the import has ended: tav_calendar_import_dialog_set_report()
 *     with whether anything was stored, a one-line summary and the details
 *     (one line each: counts, each skipped component with its reason).
 *     When the import failed before storing anything (the file is not
 *     iCalendar, for instance), set_error() sends the user back to CHOOSE
 *     with the message instead.
 *
 * Bad input the dialog itself refuses, with a message under the rows and
 * no signal: no file chosen, a path or URI that does not exist, a folder,
 * a non-local URI, an empty or invalid new calendar name.
 */
#ifndef TAV_CALENDAR_IMPORT_DIALOG_H
#define TAV_CALENDAR_IMPORT_DIALOG_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarSource.h"

G_BEGIN_DECLS

typedef enum {
    TAV_IMPORT_STAGE_CHOOSE = 0,
    TAV_IMPORT_STAGE_PROGRESS = 1,
    TAV_IMPORT_STAGE_REPORT = 2
} TavCalendarImportStage;

#define TAV_TYPE_CALENDAR_IMPORT_DIALOG    (tav_calendar_import_dialog_get_type ())
#define TAV_CALENDAR_IMPORT_DIALOG(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_IMPORT_DIALOG, TavCalendarImportDialog))
#define TAV_IS_CALENDAR_IMPORT_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_IMPORT_DIALOG))

/* A TavCalendarDialog; its structures are private to the library. */
typedef struct _TavCalendarImportDialog TavCalendarImportDialog;

TAV_API GType      tav_calendar_import_dialog_get_type (void) G_GNUC_CONST;

/* Returns: (transfer none): a new dialog on CHOOSE, not shown, listing no
 * calendar ("New calendar" only). End it with gtk_widget_destroy(). */
TAV_API GtkWidget *tav_calendar_import_dialog_new (void);

/* Offers @source as a target (the dialog keeps a reference). A read-only
 * source, or one already offered, is refused: FALSE. The first one added
 * is chosen. */
TAV_API gboolean   tav_calendar_import_dialog_add_calendar (TavCalendarImportDialog *dialog,
                                                            TavCalendarSource *source);
/* Chooses @source (NULL: "New calendar"); FALSE when it is not offered. */
TAV_API gboolean   tav_calendar_import_dialog_set_calendar (TavCalendarImportDialog *dialog,
                                                            TavCalendarSource *source);
/* Presets the file: a local path or a URI ("file:///..."). Not checked
 * until Import is tapped. */
TAV_API void       tav_calendar_import_dialog_set_file (TavCalendarImportDialog *dialog, const char *path_or_uri);
/* Returns: (transfer none) (nullable): the file as chosen or set. */
TAV_API const char *tav_calendar_import_dialog_get_file (TavCalendarImportDialog *dialog);
/* The new calendar's name shown in the entry. */
TAV_API void       tav_calendar_import_dialog_set_new_title (TavCalendarImportDialog *dialog, const char *title);

/* Checks the chosen file and target as the Import button does and, when
 * they are good, emits "import-requested". FALSE (and the reason shown)
 * when they are not. */
TAV_API gboolean   tav_calendar_import_dialog_start (TavCalendarImportDialog *dialog);

/* PROGRESS: @done of @total components (@total 0: still reading the file,
 * the bar pulses). Moves the dialog to PROGRESS. */
TAV_API void       tav_calendar_import_dialog_set_progress (TavCalendarImportDialog *dialog,
                                                            guint done, guint total);
/* REPORT: @stored tells whether the import stored anything (it picks the
 * icon of the summary); @summary is one line, @details any number (both
 * NULL-able, valid UTF-8). */
TAV_API void       tav_calendar_import_dialog_set_report (TavCalendarImportDialog *dialog, gboolean stored,
                                                          const char *summary, const char *details);
/* Back to CHOOSE with @message shown (NULL clears it). */
TAV_API void       tav_calendar_import_dialog_set_error (TavCalendarImportDialog *dialog, const char *message);
/* Returns: (transfer none) (nullable): the message shown on CHOOSE. */
TAV_API const char *tav_calendar_import_dialog_get_error (TavCalendarImportDialog *dialog);

TAV_API TavCalendarImportStage tav_calendar_import_dialog_get_stage (TavCalendarImportDialog *dialog);

G_END_DECLS

#endif /* TAV_CALENDAR_IMPORT_DIALOG_H */
