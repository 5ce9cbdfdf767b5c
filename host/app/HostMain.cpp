/* tav-calendar: the calendar application over its SQLite store.
 *
 *   tav-calendar [--db PATH | --demo] [--view NAME] [--date YYYY-MM-DD]
 *   tav-calendar --import FILE.ics [--import ...] [--open]
 *   tav-calendar --export FILE.ics
 *   tav-calendar --list FROM TO
 *   tav-calendar --screenshot DIR
 *   tav-calendar --applet [--db PATH | --demo]
 *   tav-calendar --settings
 *   tav-calendar --new-event [--date YYYY-MM-DD] | --edit-event UID
 *
 * Settings are kept in $XDG_CONFIG_HOME/tav-calendar/settings.ini.
 *
 * Exit status: 0 success, 1 an import or export failed, 2 bad arguments or
 * a store that cannot be opened, 3 no display for the window, 4 an import
 * stored what it could but skipped invalid components.
 */
#include "HostApplet.h"
#include "HostCalendarSet.h"
#include "HostCivilTime.h"
#include "HostDemo.h"
#include "HostEditor.h"
#include "HostImport.h"
#include "HostWindow.h"
#include "HostIcs.h"
#include "HostAgenda.h"

#include <calendarui.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <algorithm>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

using namespace tav::host;

namespace {

/* The views this build can show, in the order of the switch. */

struct Options {
    char *db = nullptr;
    char **imports = nullptr;
    char *export_path = nullptr;
    char *view = nullptr;
    char *date = nullptr;
    char *screenshot = nullptr;
    char *edit_event = nullptr;
    gboolean new_event = FALSE;
    char *list = nullptr;
    gboolean demo = FALSE;
    gboolean open = FALSE;
    gboolean applet = FALSE;
    gboolean settings = FALSE;

    ~Options ()
    {
        g_free (db);
        g_strfreev (imports);
        g_free (export_path);
        g_free (view);
        g_free (date);
        g_free (screenshot);
        g_free (edit_event);
        g_free (list);
    }
};

bool parse_date (const char *text, TavDate &date, std::string &error)
{
    int y = 0, m = 0, d = 0;
    char tail = 0;
    if (sscanf (text, "%4d-%2d-%2d%c", &y, &m, &d, &tail) != 3 || strlen (text) != 10) {
        error = std::string ("--date ") + text + ": expected a date written YYYY-MM-DD";
        return false;
    }
    date = {y, m - 1, d};
    if (m < 1 || m > 12 || d < 1 || !tav_date_is_valid (&date)) {
        error = std::string ("--date ") + text + ": there is no such day";
        return false;
    }
    if (y < 1970 || y > 2037) {
        error = std::string ("--date ") + text + ": the calendar shows the years 1970 to 2037";
        return false;
    }
    return true;
}

std::string default_store_path ()
{
    gchar *dir = g_build_filename (g_get_user_data_dir (), "tav-calendar", nullptr);
    g_mkdir_with_parents (dir, 0700);
    gchar *path = g_build_filename (dir, "calendar.db", nullptr);
    std::string out = path;
    g_free (dir);
    g_free (path);
    return out;
}

/* The root view the settings name. */
const char *default_view_name (int value)
{
    return value == SettingsValueWeekView ? "week" : value == SettingsValueAgendaView ? "agenda" : "month";
}

/* Progress of a long import: a line on the terminal, and a bar in a small
 * window when the calendar is about to be shown. */
struct ImportFeedback {
    std::string file;
    bool terminal = isatty (STDERR_FILENO);
    GtkWidget *window = nullptr;
    GtkWidget *bar = nullptr;
    gint64 last_update = 0;

    void operator() (size_t done, size_t total)
    {
        if (total < 200) {
            return;
        }
        const gint64 now = g_get_monotonic_time ();
        if (done != total && now - last_update < 50000) {
            return;
        }
        last_update = now;
        if (terminal) {
            fprintf (stderr, "\rImporting %s: %zu/%zu", file.c_str (), done, total);
            if (done == total) {
                fputc ('\n', stderr);
            }
        }
        if (bar) {
            char text[64];
            snprintf (text, sizeof text, "%zu of %zu", done, total);
            gtk_progress_bar_set_fraction (GTK_PROGRESS_BAR (bar), static_cast<double> (done) / total);
            gtk_progress_bar_set_text (GTK_PROGRESS_BAR (bar), text);
            while (gtk_events_pending ()) {
                gtk_main_iteration_do (FALSE);
            }
        }
    }
};

}  // namespace

int main (int argc, char **argv)
{
    Options opt;
    const GOptionEntry entries[] = {
        {"db", 0, 0, G_OPTION_ARG_FILENAME, &opt.db, "Calendar database (default: $XDG_DATA_HOME/tav-calendar/calendar.db)", "PATH"},
        {"demo", 0, 0, G_OPTION_ARG_NONE, &opt.demo, "Use a throwaway store filled with a month of sample data", nullptr},
        {"import", 0, 0, G_OPTION_ARG_FILENAME_ARRAY, &opt.imports, "Import an iCalendar file (repeatable), then exit", "FILE.ics"},
        {"export", 0, 0, G_OPTION_ARG_FILENAME, &opt.export_path, "Export every calendar to an iCalendar file, then exit", "FILE.ics"},
        {"list", 0, 0, G_OPTION_ARG_STRING, &opt.list, "Print every instance from FROM to TO (YYYY-MM-DD, both included), then exit", "FROM TO"},
        {"open", 0, 0, G_OPTION_ARG_NONE, &opt.open, "Show the calendar after --import or --export", nullptr},
        {"view", 0, 0, G_OPTION_ARG_STRING, &opt.view, "The view to show first", "NAME"},
        {"date", 0, 0, G_OPTION_ARG_STRING, &opt.date, "The day to show", "YYYY-MM-DD"},
        {"settings", 0, 0, G_OPTION_ARG_NONE, &opt.settings, "Show only the settings dialog; exit when it closes", nullptr},
        {"screenshot", 0, 0, G_OPTION_ARG_FILENAME, &opt.screenshot, "Render each view at 800x480 to DIR/<view>.png and exit", "DIR"},
        {"applet", 0, 0, G_OPTION_ARG_NONE, &opt.applet, "Show the home-screen applet instead of the calendar", nullptr},
        {"new-event", 0, 0, G_OPTION_ARG_NONE, &opt.new_event, "Open the event editor for a new event (on --date), then exit", nullptr},
        {"edit-event", 0, 0, G_OPTION_ARG_STRING, &opt.edit_event, "Open the event editor for the stored event UID, then exit", "UID"},
        {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr},
    };
    GOptionContext *context = g_option_context_new ("- the calendar");
    g_option_context_add_main_entries (context, entries, nullptr);
    g_option_context_set_summary (context, ("Views in this build: " + view_names () + ".").c_str ());
    GError *err = nullptr;
    const bool parsed = g_option_context_parse (context, &argc, &argv, &err);
    g_option_context_free (context);
    if (!parsed) {
        fprintf (stderr, "tav-calendar: %s\n", err->message);
        g_error_free (err);
        return 2;
    }
    int64_t list_from = 0, list_to = 0;
    if (opt.list) {
        std::string error;
        if (argc != 2) {
            fprintf (stderr, "tav-calendar: --list takes two dates, FROM and TO (YYYY-MM-DD)\n");
            return 2;
        }
        if (!parse_agenda_day (opt.list, &list_from, &error) || !parse_agenda_day (argv[1], &list_to, &error)) {
            fprintf (stderr, "tav-calendar: --list: %s\n", error.c_str ());
            return 2;
        }
        if (list_to < list_from) {
            fprintf (stderr, "tav-calendar: --list: %s comes before %s\n", argv[1], opt.list);
            return 2;
        }
        argc = 1;
    }
    if (argc > 1) {
        fprintf (stderr, "tav-calendar: unexpected argument '%s'\n", argv[1]);
        return 2;
    }
    if (opt.db && opt.demo) {
        fprintf (stderr, "tav-calendar: --db and --demo exclude each other\n");
        return 2;
    }

    if (opt.new_event && opt.edit_event) {
        fprintf (stderr, "tav-calendar: --new-event and --edit-event exclude each other\n");
        return 2;
    }
    const bool editor = opt.new_event || opt.edit_event;
    if (editor && (opt.screenshot || opt.imports || opt.export_path || opt.view)) {
        fprintf (stderr, "tav-calendar: the event editor opens on its own, without --screenshot, --import, --export or --view\n");
        return 2;
    }

    TavDate focus;
    tav_date_init_today (&focus);
    if (opt.date) {
        std::string error;
        if (!parse_date (opt.date, focus, error)) {
            fprintf (stderr, "tav-calendar: %s\n", error.c_str ());
            return 2;
        }
    }
    if (opt.view) {
        if (!view_is_known (opt.view)) {
            fprintf (stderr, "tav-calendar: --view %s: no such view; this build has: %s\n", opt.view, view_names ().c_str ());
            return 2;
        }
        if (!view_in_build (opt.view)) {
            fprintf (stderr, "tav-calendar: --view %s: that view is not in this build yet; this build has: %s\n", opt.view,
                     view_names ().c_str ());
            return 2;
        }
    }

    /* The store. */
    std::string path;
    gchar *demo_dir = nullptr;
    if (opt.demo) {
        demo_dir = g_dir_make_tmp ("tav-calendar-demo-XXXXXX", nullptr);
        path = std::string (demo_dir ? demo_dir : g_get_tmp_dir ()) + "/demo.db";
    } else {
        path = opt.db ? opt.db : default_store_path ();
    }
    Status st;
    std::shared_ptr<Store> store (Store::open (path, &st).release ());
    if (!store) {
        fprintf (stderr, "tav-calendar: %s\n", st.message.c_str ());
        return 2;
    }
    if (opt.demo) {
        Status seeded = seed_demo (*store, civil_minutes (focus.year, focus.month + 1, focus.day));
        if (!seeded.ok ()) {
            fprintf (stderr, "tav-calendar: cannot fill the demo store: %s\n", seeded.message.c_str ());
            return 2;
        }
    } else if (store->calendars ().empty ()) {
        CalendarRecord first;
        first.title = "Personal";
        first.color = TavCalendarColorDarkBlue;
        Status s = store->add_calendar (first);
        if (!s.ok ()) {
            fprintf (stderr, "tav-calendar: cannot create the first calendar: %s\n", s.message.c_str ());
            return 2;
        }
    }
    App app;
    app.calendars = std::make_unique<CalendarSet> (store);
    app.focus = focus;
    SettingsFile settings;
    app.settings = &settings;

    const bool want_ui = opt.screenshot || opt.open || opt.settings || (!opt.imports && !opt.export_path && !opt.list);
    if (want_ui) {
        /* A damaged file is reported here once: loading repairs it. */
        for (const std::string &problem : settings.load ()) {
            fprintf (stderr, "tav-calendar: %s\n", problem.c_str ());
        }
    }
    const bool have_display = want_ui && gtk_init_check (&argc, &argv);
    int status = 0;

    for (char **file = opt.imports; file && *file; ++file) {
        TavHostCalendarSource *target = app.calendars->first_writable ();
        if (!target) {
            fprintf (stderr, "tav-calendar: %s: no calendar accepts new entries\n", *file);
            status = 1;
            break;
        }
        ImportFeedback feedback;
        feedback.file = *file;
        if (have_display && !opt.screenshot) {
            feedback.window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
            gtk_window_set_title (GTK_WINDOW (feedback.window), "Importing");
            feedback.bar = gtk_progress_bar_new ();
            gtk_container_set_border_width (GTK_CONTAINER (feedback.window), 24);
            gtk_container_add (GTK_CONTAINER (feedback.window), feedback.bar);
        }
        bool shown = false;
        ImportResult r = import_ics_file (*store, source_calendar_id (target), *file, [&] (size_t done, size_t total) {
            if (feedback.window && total >= 200 && !shown) {
                gtk_widget_show_all (feedback.window);
                shown = true;
            }
            feedback (done, total);
            return true;
        });
        if (feedback.window) {
            gtk_widget_destroy (feedback.window);
        }
        for (const std::string &w : r.warnings) {
            fprintf (stderr, "tav-calendar: %s: %s\n", *file, w.c_str ());
        }
        if (!r.stored ()) {
            fprintf (stderr, "tav-calendar: %s\n", import_failure (r, *file).c_str ());
            status = 1;
            continue;
        }
        printf ("%s: %s\n", *file,
                import_summary (r, tav_calendar_source_get_title (TAV_CALENDAR_SOURCE (target))).c_str ());
        fputs (r.report ().c_str (), stdout);
        if (!r.status.ok ()) {
            fprintf (stderr, "tav-calendar: %s: %s\n", *file, r.status.message.c_str ());
            status = status ? status : 4;
        }
    }
    if (opt.export_path) {
        std::vector<int64_t> ids;
        for (const CalendarRecord &c : store->calendars ()) {
            ids.push_back (c.id);
        }
        int count = 0;
        Status s = export_ics_file (*store, ids, opt.export_path, &count);
        if (s.ok ()) {
            printf ("%s: exported %d entries from %zu calendars\n", opt.export_path, count, ids.size ());
        } else {
            fprintf (stderr, "tav-calendar: %s\n", s.message.c_str ());
            status = 1;
        }
    }

    if (opt.list) {
        fputs (agenda_text (*store, list_from, list_to).c_str (), stdout);
    }

    if (want_ui) {
        if (!have_display) {
            fprintf (stderr, "tav-calendar: no display to show the calendar on (try xvfb-run with --screenshot DIR)\n");
            status = 3;
        } else if (opt.screenshot) {
            app.build ();
            int shot = render_views (app, opt.screenshot);
            shot = shot ? shot : render_applet (app, opt.screenshot);
            shot = shot ? shot : render_editors (*app.calendars, focus, opt.screenshot);
            shot = shot ? shot : render_import (app, opt.screenshot);
            shot = shot ? shot : render_calendar_dialogs (app, opt.screenshot);
            status = status ? status : shot;
        } else if (opt.applet) {
            run_applet (app);
        } else if (editor) {
            TavCalendarEntry *entry = nullptr;
            if (opt.edit_event) {
                entry = find_event (*app.calendars, opt.edit_event);
                if (!entry) {
                    fprintf (stderr, "tav-calendar: --edit-event %s: no stored event has that UID\n", opt.edit_event);
                    status = 2;
                }
            }
            if (status == 0) {
                status = run_event_editor (*app.calendars, opt.date ? &focus : nullptr, entry);
            }
            if (entry) {
                g_object_unref (entry);
            }
        } else if (opt.settings) {
            /* The dialog alone, before (and without) the calendar window. */
            GtkWidget *dialog = app.open_settings ();
            g_signal_connect (dialog, "destroy", G_CALLBACK (gtk_main_quit), nullptr);
            gtk_main ();
        } else {
            app.build ();
            gtk_widget_show (GTK_WIDGET (app.window));
            app.show (opt.view ? opt.view : default_view_name (settings.values.default_view));
            if (settings.values.first_boot == SettingsValueFirstBootYes) {
                gtk_widget_show (app.open_first_run_wizard ());
            }
            gtk_main ();
        }
    }

    if (app.window) {
        gtk_widget_destroy (GTK_WIDGET (app.window));
        app.window = nullptr;
    }
    app.calendars.reset ();
    store.reset ();
    if (demo_dir) {
        for (const char *suffix : {"/demo.db", "/demo.db-wal", "/demo.db-shm"}) {
            g_unlink ((std::string (demo_dir) + suffix).c_str ());
        }
        g_rmdir (demo_dir);
        g_free (demo_dir);
    }
    return status;
}
