/* libcalendarui - the wizard shown the first time the calendar starts
 *
 * Three pages with Back, Next and Finish: a welcome; the view the calendar
 * opens with (month, week or agenda) and the first day of the week; and an
 * offer to import a calendar file. The wizard stores nothing: like the
 * settings dialog it hands values in and out, and the host keeps them.
 *
 * What a host does, when its stored SettingsFirstBoot is
 * SettingsValueFirstBootYes (or it has no settings yet):
 *  1. tav_calendar_first_run_wizard_new(), set_values() with the stored
 *     SettingsDefaultView and SettingsWeekStart, show it.
 *  2. "import-clicked": void (*) (TavCalendarFirstRunWizard *wizard,
 *     gpointer user_data) on the last page's import button: the host opens
 *     its TavCalendarImportDialog over the wizard and, when it is done,
 *     may say what was imported with set_import_summary().
 *  3. "finished": void (*) (TavCalendarFirstRunWizard *wizard, gpointer
 *     user_data) on Finish: the host reads get_values() (SettingsFirstBoot
 *     now gives SettingsValueFirstBootNo), stores them and applies them.
 *     The wizard destroys itself after the handlers have run.
 * Closing the wizard any other way (Escape) emits nothing: the host asks
 * again at the next start.
 */
#ifndef TAV_CALENDAR_FIRST_RUN_WIZARD_H
#define TAV_CALENDAR_FIRST_RUN_WIZARD_H

#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_FIRST_RUN_WIZARD    (tav_calendar_first_run_wizard_get_type ())
#define TAV_CALENDAR_FIRST_RUN_WIZARD(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_FIRST_RUN_WIZARD, TavCalendarFirstRunWizard))
#define TAV_IS_CALENDAR_FIRST_RUN_WIZARD(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_FIRST_RUN_WIZARD))

/* A TavCalendarDialog; its structures are private to the library. */
typedef struct _TavCalendarFirstRunWizard TavCalendarFirstRunWizard;

TAV_API GType      tav_calendar_first_run_wizard_get_type (void) G_GNUC_CONST;

/* Returns: (transfer none): a new wizard on its first page, not shown,
 * offering the month view and Monday. End it with gtk_widget_destroy(). */
TAV_API GtkWidget *tav_calendar_first_run_wizard_new (void);

/* Pairs of a TavCalendarSettingsPropertyID and a TavCalendarSettingsValue,
 * ended by -1: SettingsDefaultView (month, week or agenda view) and
 * SettingsWeekStart (Monday or Sunday) are shown; other ids, and values a
 * setting does not take, are warned about and skipped. */
TAV_API void       tav_calendar_first_run_wizard_set_values (TavCalendarFirstRunWizard *wizard, int first_id, ...);
/* Pairs of an id and an `int *`, ended by -1: SettingsDefaultView,
 * SettingsWeekStart, and SettingsFirstBoot (SettingsValueFirstBootNo once
 * Finish was tapped, else SettingsValueFirstBootYes). Other ids leave their
 * pointer untouched. */
TAV_API void       tav_calendar_first_run_wizard_get_values (TavCalendarFirstRunWizard *wizard, int first_id, ...);
/* Shows @text (NULL: nothing) under the import button. */
TAV_API void       tav_calendar_first_run_wizard_set_import_summary (TavCalendarFirstRunWizard *wizard,
                                                                     const char *text);
/* The page shown: 0 welcome, 1 choices, 2 import. */
TAV_API int        tav_calendar_first_run_wizard_get_page (TavCalendarFirstRunWizard *wizard);
/* Shows page @page (0 to 2). */
TAV_API void       tav_calendar_first_run_wizard_set_page (TavCalendarFirstRunWizard *wizard, int page);

G_END_DECLS

#endif /* TAV_CALENDAR_FIRST_RUN_WIZARD_H */
