/* The import dialog and the first-run wizard over tav-calendar's window. */
#include "HostImport.h"
#include "HostScreenshot.h"
#include "HostWindow.h"

#include <calendarui.h>
#include <glib/gstdio.h>

#include <cstdio>

namespace tav::host {

namespace {

const char *view_name_of (int value)
{
    return value == SettingsValueWeekView ? "week" : value == SettingsValueAgendaView ? "agenda" : "month";
}

}  // namespace

GtkWidget *App::open_import (GtkWindow *parent)
{
    if (!parent && window) {
        parent = GTK_WINDOW (tav_calendar_window_get_topmost_window (window));
    }
    GtkWidget *dialog = open_import_dialog (*calendars, parent, [this] (const std::string &) {
        if (window) {
            /* Every root view reads again, the current one now. */
            tav_calendar_window_set_entries_changed (window, TRUE);
            tav_calendar_window_read_database (window);
        }
    });
    gtk_widget_show (dialog);
    return dialog;
}

GtkWidget *App::open_first_run_wizard ()
{
    GtkWidget *wizard = tav_calendar_first_run_wizard_new ();
    TavCalendarFirstRunWizard *w = TAV_CALENDAR_FIRST_RUN_WIZARD (wizard);
    const Settings defaults;
    const Settings &values = settings ? settings->values : defaults;
    tav_calendar_first_run_wizard_set_values (w, SettingsDefaultView, values.default_view, SettingsWeekStart,
                                              values.week_start, -1);
    if (window) {
        gtk_window_set_transient_for (GTK_WINDOW (wizard), GTK_WINDOW (tav_calendar_window_get_topmost_window (window)));
    }
    g_signal_connect (wizard, "import-clicked", G_CALLBACK (+[] (TavCalendarFirstRunWizard *wizard, gpointer data) {
        App *app = static_cast<App *> (data);
        GtkWidget *dialog = open_import_dialog (*app->calendars, GTK_WINDOW (wizard), [app, wizard] (const std::string &summary) {
            tav_calendar_first_run_wizard_set_import_summary (wizard, summary.empty () ? nullptr : summary.c_str ());
            if (app->window) {
                tav_calendar_window_set_entries_changed (app->window, TRUE);
                tav_calendar_window_read_database (app->window);
            }
        });
        /* The wizard ends with its import dialog. */
        g_signal_connect_object (wizard, "destroy", G_CALLBACK (gtk_widget_destroy), dialog, G_CONNECT_SWAPPED);
        gtk_widget_show (dialog);
    }), this);
    g_signal_connect (wizard, "finished", G_CALLBACK (+[] (TavCalendarFirstRunWizard *wizard, gpointer data) {
        App *app = static_cast<App *> (data);
        if (!app->settings) {
            return;
        }
        Settings chosen = app->settings->values;
        tav_calendar_first_run_wizard_get_values (wizard, SettingsDefaultView, &chosen.default_view, SettingsWeekStart,
                                                  &chosen.week_start, SettingsFirstBoot, &chosen.first_boot, -1);
        const Settings before = app->settings->values;
        app->settings->values = chosen;
        std::string error;
        if (!app->settings->save (&error)) {
            /* Kept for this run; asked again at the next start. */
            fprintf (stderr, "tav-calendar: %s\n", error.c_str ());
            app->settings->values.first_boot = before.first_boot;
        }
        if (app->window) {
            app->apply_settings ();
            app->show (view_name_of (chosen.default_view));
        }
    }), this);
    return wizard;
}

}  // namespace tav::host

/* Screenshots ---------------------------------------------------------------- */

namespace tav::host {

int render_import (App &app, const std::string &dir)
{
    {
        GtkWidget *wizard = app.open_first_run_wizard ();
        tav_calendar_first_run_wizard_set_page (TAV_CALENDAR_FIRST_RUN_WIZARD (wizard), 1);
        const bool saved = save_dialog (wizard, dir, "wizard");
        gtk_widget_destroy (wizard);
        if (!saved) {
            return 1;
        }
    }
    /* The sample file and a store of its own: the user's calendars are
     * not touched. */
    gchar *tmp = g_dir_make_tmp ("tav-calendar-import-XXXXXX", nullptr);
    if (!tmp) {
        fprintf (stderr, "tav-calendar: cannot make a temporary folder for the import screenshots\n");
        return 1;
    }
    const std::string folder = tmp;
    g_free (tmp);
    const std::string file = folder + "/holidays-and-meetings.ics";
    const std::string text = sample_calendar_text (120, true);
    g_file_set_contents (file.c_str (), text.data (), static_cast<gssize> (text.size ()), nullptr);
    int status = 0;
    {
        Status st;
        std::shared_ptr<Store> store (Store::open (folder + "/import.db", &st).release ());
        CalendarSet calendars (store);
        for (const char *title : {"Personal", "Work"}) {
            CalendarRecord c;
            c.title = title;
            if (store) {
                store->add_calendar (c);
            }
        }
        calendars.reload ();
        /* A dialog without a driver stays where it is put: half-way, as
         * the user sees it during an import. */
        GtkWidget *progress = tav_calendar_import_dialog_new ();
        TavCalendarImportDialog *p = TAV_CALENDAR_IMPORT_DIALOG (progress);
        for (const CalendarRecord &c : store ? store->calendars () : std::vector<CalendarRecord> {}) {
            tav_calendar_import_dialog_add_calendar (p, TAV_CALENDAR_SOURCE (calendars.source (c.id)));
        }
        tav_calendar_import_dialog_set_file (p, file.c_str ());
        if (!tav_calendar_import_dialog_start (p)) {
            fprintf (stderr, "tav-calendar: the import dialog refused its sample file: %s\n",
                     tav_calendar_import_dialog_get_error (p));
        }
        tav_calendar_import_dialog_set_progress (p, 57, 122);
        status = save_dialog (progress, dir, "import-progress") ? 0 : 1;
        gtk_widget_destroy (progress);

        GtkWidget *report = open_import_dialog (calendars, nullptr);
        TavCalendarImportDialog *r = TAV_CALENDAR_IMPORT_DIALOG (report);
        tav_calendar_import_dialog_set_file (r, file.c_str ());
        tav_calendar_import_dialog_start (r);
        const gint64 give_up = g_get_monotonic_time () + 30 * G_USEC_PER_SEC;
        while (tav_calendar_import_dialog_get_stage (r) != TAV_IMPORT_STAGE_REPORT && g_get_monotonic_time () < give_up) {
            gtk_main_iteration_do (FALSE);
        }
        status = status ? status : (save_dialog (report, dir, "import-report") ? 0 : 1);
        gtk_widget_destroy (report);
    }
    for (const char *name : {"/holidays-and-meetings.ics", "/import.db", "/import.db-wal", "/import.db-shm"}) {
        g_unlink ((folder + name).c_str ());
    }
    g_rmdir (folder.c_str ());
    return status;
}

}  // namespace tav::host
