/* tav-calendar: the calendar application over its SQLite store.
 *
 *   tav-calendar [--db PATH | --demo] [--view NAME] [--date YYYY-MM-DD]
 *   tav-calendar --import FILE.ics [--import ...] [--open]
 *   tav-calendar --export FILE.ics
 *   tav-calendar --screenshot DIR
 *
 * Exit status: 0 success, 1 an import or export failed, 2 bad arguments or
 * a store that cannot be opened, 3 no display for the window.
 */
#include "HostCalendarSet.h"
#include "HostCivilTime.h"
#include "HostDemo.h"
#include "HostIcs.h"

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
struct ViewKind {
    const char *name;
    const char *label;
    GtkWidget *(*create) ();
    bool scrolls;  /* shown inside a scrolled window */
    void (*go_to) (GtkWidget *view, const TavDate &date);
    void (*step) (GtkWidget *view, int direction);
};

void month_go_to (GtkWidget *view, const TavDate &date)
{
    tav_calendar_select_month (TAV_CALENDAR (view), date.month, date.year);
}

void month_step (GtkWidget *view, int direction)
{
    if (direction < 0) {
        tav_calendar_select_prev_month (TAV_CALENDAR (view));
    } else {
        tav_calendar_select_next_month (TAV_CALENDAR (view));
    }
}

void week_go_to (GtkWidget *view, const TavDate &date)
{
    tav_week_view_set_presented_interval_by_date (TAV_WEEK_VIEW (view), &date);
    /* Open on the working day rather than at midnight. */
    const TavTime morning = {7, 0};
    tav_week_view_snap_to_time (TAV_WEEK_VIEW (view), &morning);
}

void week_step (GtkWidget *view, int direction)
{
    if (direction < 0) {
        tav_week_view_select_prev_week (TAV_WEEK_VIEW (view));
    } else {
        tav_week_view_select_next_week (TAV_WEEK_VIEW (view));
    }
}

const ViewKind kViews[] = {
    {"month", "Month", tav_calendar_new, false, month_go_to, month_step},
    {"week", "Week", tav_week_view_new, true, week_go_to, week_step},
};

const ViewKind *find_view (const std::string &name)
{
    for (const ViewKind &v : kViews) {
        if (name == v.name) {
            return &v;
        }
    }
    return nullptr;
}

std::string view_names ()
{
    std::string out;
    for (const ViewKind &v : kViews) {
        out += (out.empty () ? "" : ", ") + std::string (v.name);
    }
    return out;
}

struct Options {
    char *db = nullptr;
    char **imports = nullptr;
    char *export_path = nullptr;
    char *view = nullptr;
    char *date = nullptr;
    char *screenshot = nullptr;
    gboolean demo = FALSE;
    gboolean open = FALSE;

    ~Options ()
    {
        g_free (db);
        g_strfreev (imports);
        g_free (export_path);
        g_free (view);
        g_free (date);
        g_free (screenshot);
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

/* The calendar window: a switch between the views above the current one. */
struct App {
    std::unique_ptr<CalendarSet> calendars;
    GtkWidget *window = nullptr;
    GtkWidget *notebook = nullptr;
    std::vector<GtkWidget *> views;
    std::vector<GtkWidget *> switches;
    TavDate focus {};

    void build (bool offscreen)
    {
        window = offscreen ? gtk_offscreen_window_new () : gtk_window_new (GTK_WINDOW_TOPLEVEL);
        if (!offscreen) {
            gtk_window_set_title (GTK_WINDOW (window), "Calendar");
            gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
            g_signal_connect (window, "destroy", G_CALLBACK (gtk_main_quit), nullptr);
        }
        gtk_widget_set_size_request (window, 800, 480);
        GtkWidget *box = gtk_vbox_new (FALSE, 0);
        GtkWidget *bar = gtk_hbox_new (FALSE, 0);
        notebook = gtk_notebook_new ();
        gtk_notebook_set_show_tabs (GTK_NOTEBOOK (notebook), FALSE);
        gtk_notebook_set_show_border (GTK_NOTEBOOK (notebook), FALSE);

        GtkWidget *prev = gtk_button_new_with_label ("\xe2\x97\x80");   /* ◀ */
        GtkWidget *today = gtk_button_new_with_label ("Today");
        GtkWidget *next = gtk_button_new_with_label ("\xe2\x96\xb6");   /* ▶ */
        for (GtkWidget *b : {prev, today, next}) {
            gtk_widget_set_size_request (b, 80, 48);
        }
        g_signal_connect (prev, "clicked", G_CALLBACK (on_prev_clicked_cb), this);
        g_signal_connect (today, "clicked", G_CALLBACK (on_today_clicked_cb), this);
        g_signal_connect (next, "clicked", G_CALLBACK (on_next_clicked_cb), this);
        gtk_box_pack_start (GTK_BOX (bar), prev, FALSE, FALSE, 0);

        GSList *group = nullptr;
        for (const ViewKind &kind : kViews) {
            GtkWidget *view = kind.create ();
            g_signal_connect (view, "database-access-read", G_CALLBACK (on_view_database_access_read_cb), this);
            if (TAV_IS_CALENDAR (view)) {
                /* A tapped day or week of the month opens that week. */
                g_signal_connect (view, "day-activated", G_CALLBACK (on_month_day_activated_cb), this);
                g_signal_connect (view, "week-activated", G_CALLBACK (on_month_week_activated_cb), this);
            }
            GtkWidget *page = view;
            if (kind.scrolls) {
                page = gtk_scrolled_window_new (nullptr, nullptr);
                gtk_scrolled_window_set_policy (GTK_SCROLLED_WINDOW (page), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
                gtk_container_add (GTK_CONTAINER (page), view);
            }
            gtk_notebook_append_page (GTK_NOTEBOOK (notebook), page, nullptr);
            views.push_back (view);
            GtkWidget *button = gtk_radio_button_new_with_label (group, kind.label);
            group = gtk_radio_button_get_group (GTK_RADIO_BUTTON (button));
            gtk_toggle_button_set_mode (GTK_TOGGLE_BUTTON (button), FALSE);
            gtk_widget_set_size_request (button, -1, 48);
            g_signal_connect (button, "toggled", G_CALLBACK (on_switch_toggled_cb), this);
            gtk_box_pack_start (GTK_BOX (bar), button, TRUE, TRUE, 0);
            switches.push_back (button);
        }
        gtk_box_pack_start (GTK_BOX (bar), today, FALSE, FALSE, 0);
        gtk_box_pack_start (GTK_BOX (bar), next, FALSE, FALSE, 0);
        gtk_box_pack_start (GTK_BOX (box), bar, FALSE, FALSE, 0);
        gtk_box_pack_start (GTK_BOX (box), notebook, TRUE, TRUE, 0);
        gtk_container_add (GTK_CONTAINER (window), box);
    }

    size_t current () const
    {
        return static_cast<size_t> (gtk_notebook_get_current_page (GTK_NOTEBOOK (notebook)));
    }

    void show_view (size_t index)
    {
        gtk_notebook_set_current_page (GTK_NOTEBOOK (notebook), static_cast<int> (index));
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (switches[index]), TRUE);
        kViews[index].go_to (views[index], focus);
    }

    static gboolean on_view_database_access_read_cb (TavCalendarView *view, gpointer data)
    {
        return answer_database_read (view, *static_cast<App *> (data)->calendars);
    }

    static void on_switch_toggled_cb (GtkToggleButton *button, gpointer data)
    {
        App *app = static_cast<App *> (data);
        if (!gtk_toggle_button_get_active (button)) {
            return;
        }
        for (size_t i = 0; i < app->switches.size (); ++i) {
            if (app->switches[i] == GTK_WIDGET (button) && app->current () != i) {
                app->show_view (i);
            }
        }
    }

    void open_week (const TavDate &date)
    {
        const ViewKind *week = find_view ("week");
        if (!week) {
            return;
        }
        focus = date;
        show_view (static_cast<size_t> (week - kViews));
    }

    static void on_month_day_activated_cb (TavCalendar *, int year, int month, int day, gpointer data)
    {
        static_cast<App *> (data)->open_week (TavDate {year, month, day});
    }

    static void on_month_week_activated_cb (TavCalendar *, int week_number, const TavDateInterval *interval,
                                            gpointer data)
    {
        if (interval) {
            static_cast<App *> (data)->open_week (interval->start);
        }
    }

    static void on_prev_clicked_cb (GtkButton *, gpointer data)
    {
        App *app = static_cast<App *> (data);
        kViews[app->current ()].step (app->views[app->current ()], -1);
    }

    static void on_next_clicked_cb (GtkButton *, gpointer data)
    {
        App *app = static_cast<App *> (data);
        kViews[app->current ()].step (app->views[app->current ()], 1);
    }

    static void on_today_clicked_cb (GtkButton *, gpointer data)
    {
        App *app = static_cast<App *> (data);
        tav_date_init_today (&app->focus);
        app->show_view (app->current ());
    }
};

void flush ()
{
    for (int i = 0; i < 5; ++i) {
        while (gtk_events_pending ()) {
            gtk_main_iteration_do (FALSE);
        }
        gdk_flush ();
        g_usleep (20000);
    }
}

int take_screenshots (App &app, const std::string &dir)
{
    if (g_mkdir_with_parents (dir.c_str (), 0755) != 0) {
        fprintf (stderr, "tav-calendar: cannot create the directory '%s'\n", dir.c_str ());
        return 1;
    }
    app.build (true);
    gtk_widget_show_all (app.window);
    flush ();
    for (size_t i = 0; i < app.views.size (); ++i) {
        app.show_view (i);
        flush ();
        gtk_widget_queue_draw (app.window);
        flush ();
        GdkPixbuf *shot = gtk_offscreen_window_get_pixbuf (GTK_OFFSCREEN_WINDOW (app.window));
        const std::string path = dir + "/" + kViews[i].name + ".png";
        GError *err = nullptr;
        if (!shot || !gdk_pixbuf_save (shot, path.c_str (), "png", &err, nullptr)) {
            fprintf (stderr, "tav-calendar: cannot write '%s': %s\n", path.c_str (), err ? err->message : "no image");
            g_clear_error (&err);
            if (shot) {
                g_object_unref (shot);
            }
            return 1;
        }
        g_object_unref (shot);
        printf ("%s\n", path.c_str ());
    }
    gtk_widget_destroy (app.window);
    return 0;
}

}  // namespace

int main (int argc, char **argv)
{
    Options opt;
    const GOptionEntry entries[] = {
        {"db", 0, 0, G_OPTION_ARG_FILENAME, &opt.db, "Calendar database (default: $XDG_DATA_HOME/tav-calendar/calendar.db)", "PATH"},
        {"demo", 0, 0, G_OPTION_ARG_NONE, &opt.demo, "Use a throwaway store filled with a month of sample data", nullptr},
        {"import", 0, 0, G_OPTION_ARG_FILENAME_ARRAY, &opt.imports, "Import an iCalendar file (repeatable), then exit", "FILE.ics"},
        {"export", 0, 0, G_OPTION_ARG_FILENAME, &opt.export_path, "Export every calendar to an iCalendar file, then exit", "FILE.ics"},
        {"open", 0, 0, G_OPTION_ARG_NONE, &opt.open, "Show the calendar after --import or --export", nullptr},
        {"view", 0, 0, G_OPTION_ARG_STRING, &opt.view, "The view to show first", "NAME"},
        {"date", 0, 0, G_OPTION_ARG_STRING, &opt.date, "The day to show", "YYYY-MM-DD"},
        {"screenshot", 0, 0, G_OPTION_ARG_FILENAME, &opt.screenshot, "Render each view at 800x480 to DIR/<view>.png and exit", "DIR"},
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
    if (argc > 1) {
        fprintf (stderr, "tav-calendar: unexpected argument '%s'\n", argv[1]);
        return 2;
    }
    if (opt.db && opt.demo) {
        fprintf (stderr, "tav-calendar: --db and --demo exclude each other\n");
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
    size_t first_view = 0;
    if (opt.view) {
        static const char *const known[] = {"month", "week", "agenda", "day", "tasks", "notes"};
        const bool is_known = std::find_if (std::begin (known), std::end (known),
                                            [&] (const char *k) { return strcmp (k, opt.view) == 0; }) != std::end (known);
        const ViewKind *kind = find_view (opt.view);
        if (!kind) {
            fprintf (stderr, "tav-calendar: --view %s: %s; this build has: %s\n", opt.view,
                     is_known ? "that view is not in this build yet" : "no such view", view_names ().c_str ());
            return 2;
        }
        first_view = static_cast<size_t> (kind - kViews);
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

    const bool want_ui = opt.screenshot || opt.open || (!opt.imports && !opt.export_path);
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
        });
        if (feedback.window) {
            gtk_widget_destroy (feedback.window);
        }
        for (const std::string &w : r.warnings) {
            fprintf (stderr, "tav-calendar: %s: %s\n", *file, w.c_str ());
        }
        if (!r.status.ok ()) {
            if (r.line > 0) {
                std::string message = r.status.message;
                const std::string prefix = "line " + std::to_string (r.line) + ": ";
                if (message.compare (0, prefix.size (), prefix) == 0) {
                    message.erase (0, prefix.size ());
                }
                fprintf (stderr, "tav-calendar: %s:%d: %s; nothing was imported\n", *file, r.line, message.c_str ());
            } else {
                fprintf (stderr, "tav-calendar: %s: %s; nothing was imported\n", *file, r.status.message.c_str ());
            }
            status = 1;
            continue;
        }
        printf ("%s: imported %d events, %d tasks, %d notes into '%s'%s\n", *file, r.events, r.tasks, r.notes,
                tav_calendar_source_get_title (TAV_CALENDAR_SOURCE (target)),
                r.updated ? (" (" + std::to_string (r.updated) + " updated)").c_str () : "");
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

    if (want_ui) {
        if (!have_display) {
            fprintf (stderr, "tav-calendar: no display to show the calendar on (try xvfb-run with --screenshot DIR)\n");
            status = 3;
        } else if (opt.screenshot) {
            app.focus = focus;
            const int shot = take_screenshots (app, opt.screenshot);
            status = status ? status : shot;
        } else {
            app.build (false);
            gtk_widget_show_all (app.window);
            app.show_view (first_view);
            gtk_main ();
        }
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
