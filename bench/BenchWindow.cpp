/* Speed of the calendar window over the host's store.
 *
 * A store of 10,000 events (1,000 repeating) over ten years, behind the
 * host's window (tav-calendar's App):
 *  - start-up: window built, month read, laid out and painted;
 *  - switching root views: the new view read, laid out and painted;
 *  - an edit saved: refresh_entry with the week shown, add_entry with the
 *    month shown, until the view is painted again;
 * against a baseline in the same run: the same change propagated by
 * re-reading every root view (what a window without needs-refresh flags
 * must do), and a switch that builds a fresh window.
 * Targets: switch 100 ms, edit 50 ms, start-up 300 ms.
 * Needs X: xvfb-run -a build/bench/bench-window
 */
#include "HostCalendarSet.h"
#include "HostCivilTime.h"
#include "HostRecurrence.h"
#include "HostWindow.h"

#include <calendarui.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace tav::host;

namespace {

double now_ms ()
{
    return std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now ().time_since_epoch ()).count ();
}

double median_ms (int runs, const std::function<void ()> &f)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double t0 = now_ms ();
        f ();
        times.push_back (now_ms () - t0);
    }
    std::sort (times.begin (), times.end ());
    return times[times.size () / 2];
}

/* Everything queued runs, and every invalidated window is painted. */
void settle ()
{
    while (gtk_events_pending ()) {
        gtk_main_iteration_do (FALSE);
    }
    gdk_window_process_all_updates ();
    gdk_flush ();
}

std::shared_ptr<Store> make_store (const std::string &path)
{
    Status st;
    std::shared_ptr<Store> store (Store::open (path, &st).release ());
    if (!store) {
        fprintf (stderr, "cannot open %s: %s\n", path.c_str (), st.message.c_str ());
        exit (1);
    }
    CalendarRecord c;
    c.title = "Bench";
    store->add_calendar (c);
    std::mt19937 rng (42);
    const int64_t first = civil_minutes (2020, 1, 1);
    const int64_t days = days_from_civil (2030, 1, 1) - days_from_civil (2020, 1, 1);
    Store::Transaction tx (*store);
    for (int i = 0; i < 10000; ++i) {
        EntryRecord e;
        e.calendar_id = c.id;
        e.title = "Event " + std::to_string (i);
        e.start = first + static_cast<int64_t> (rng () % days) * kMinutesPerDay + (7 + rng () % 12) * 60;
        e.end = e.start + 30 * (1 + rng () % 4);
        if (i < 1000) {
            e.rrule = i % 2 ? "FREQ=WEEKLY" : "FREQ=MONTHLY";
            int64_t until = -1;
            e.repeat_code = repeat_code_for_rrule (e.rrule, e.start, &until);
        }
        store->add_entry (e);
    }
    tx.commit ();
    return store;
}

/* A window over @store on 11 June 2025, shown and painted. */
std::unique_ptr<App> open_app (const std::shared_ptr<Store> &store)
{
    auto app = std::make_unique<App> ();
    app->calendars = std::make_unique<CalendarSet> (store);
    app->focus = {2025, 5, 11};
    app->build ();
    gtk_window_move (GTK_WINDOW (app->window), 0, 0);
    gtk_widget_show (GTK_WIDGET (app->window));
    app->show ("month");
    settle ();
    return app;
}

}  // namespace

int main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-window needs an X display (xvfb-run -a)\n");
        return 1;
    }
    gchar *dir = g_dir_make_tmp ("bench-window-XXXXXX", nullptr);
    const std::string path = std::string (dir) + "/store.db";
    std::shared_ptr<Store> store = make_store (path);

    /* Start-up: the first run also loads fonts and the theme; count the rest. */
    open_app (store).reset ();
    const double startup = median_ms (5, [&] { open_app (store).reset (); });
    printf ("start-up to a painted month, 10,000 events: %.1f ms (target 300 ms)\n", startup);

    std::unique_ptr<App> app = open_app (store);
    TavCalendarWindow *window = app->window;
    static int reads = 0;
    g_signal_add_emission_hook (g_signal_lookup ("database-access-read", TAV_TYPE_CALENDAR_VIEW), 0,
                                [] (GSignalInvocationHint *, guint, const GValue *, gpointer) -> gboolean {
                                    ++reads;
                                    return TRUE;
                                },
                                nullptr, nullptr);

    /* Switching: each target is marked so that it reads again, as after an edit. */
    struct Switch {
        const char *name;
        TavCalendarView *view;
        void (*activate) (TavCalendarWindow *);
    } switches[] = {
        {"week", TAV_CALENDAR_VIEW (window->week_view), tav_calendar_window_activate_week_view},
        {"agenda", TAV_CALENDAR_VIEW (window->agenda_view), tav_calendar_window_activate_agenda_view},
        {"month", TAV_CALENDAR_VIEW (window->month_view), tav_calendar_window_activate_month_view},
    };
    std::vector<double> switch_times;
    double worst = 0;
    for (const Switch &s : switches) {
        std::vector<double> times;
        for (int run = 0; run < 7; ++run) {
            /* Away from the target first (not timed). */
            (s.view == TAV_CALENDAR_VIEW (window->week_view) ? tav_calendar_window_activate_month_view
                                                             : tav_calendar_window_activate_week_view) (window);
            settle ();
            tav_calendar_window_read_database_unfinished (window, s.view);
            reads = 0;
            const double t0 = now_ms ();
            s.activate (window);
            settle ();
            times.push_back (now_ms () - t0);
            if (reads != 1) {
                printf ("  note: switching to the %s view read %d times\n", s.name, reads);
            }
        }
        std::sort (times.begin (), times.end ());
        switch_times.push_back (times[times.size () / 2]);
        worst = std::max (worst, times.back ());
    }
    const double fresh = median_ms (3, [&] {
        auto other = open_app (store);
        tav_calendar_window_activate_week_view (other->window);
        settle ();
    });
    printf ("root view switch with a read, median: week %.1f ms, agenda %.1f ms, month %.1f ms; "
            "slowest single switch %.1f ms (target 100 ms)\n",
            switch_times[0], switch_times[1], switch_times[2], worst);
    printf ("  baseline (a fresh window showing the week): %.1f ms; ratio %.1fx\n", fresh,
            fresh / std::max (0.01, switch_times[0]));

    /* Edits: an entry of the shown week changes; a new entry in the shown month. */
    tav_calendar_window_activate_week_view (window);
    settle ();
    TavDateInterval week;
    tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (window->week_view), &week);
    GList *shown = app->calendars->read_interval (week);
    TavCalendarEntry *edited = nullptr;
    for (GList *l = shown; l && !edited; l = l->next) {
        if (!tav_calendar_entry_has_rrule (TAV_CALENDAR_ENTRY (l->data))) {
            edited = TAV_CALENDAR_ENTRY (g_object_ref (l->data));
        }
    }
    g_list_free_full (shown, g_object_unref);
    tav_calendar_view_freeze (TAV_CALENDAR_VIEW (window->week_view));
    tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (window->week_view), edited);
    tav_calendar_view_thaw (TAV_CALENDAR_VIEW (window->week_view));
    settle ();
    int n = 0;
    const double refresh = median_ms (15, [&] {
        const std::string title = "Edited " + std::to_string (n++);
        g_object_set (edited, "title", title.c_str (), nullptr);
        tav_calendar_window_refresh_entry (window, edited);
        settle ();
    });
    const double refresh_base = median_ms (5, [&] {
        g_object_set (edited, "title", "Edited again", nullptr);
        for (GtkWidget *view : {window->month_view, window->week_view, window->agenda_view}) {
            tav_calendar_view_read_database (TAV_CALENDAR_VIEW (view));
        }
        settle ();
    });
    printf ("an edit shown (refresh_entry, week current): %.2f ms (target 50 ms)\n", refresh);
    printf ("  baseline (every root view read again): %.1f ms; ratio %.1fx faster\n", refresh_base,
            refresh_base / std::max (0.01, refresh));

    tav_calendar_window_activate_month_view (window);
    settle ();
    TavCalendarEntry *added = tav_calendar_entry_new ();
    const TavDate day = {2025, 5, 12};
    const TavTime t0 = {12, 0}, t1 = {13, 0};
    g_object_set (added, "title", "Added", "start-date", &day, "start-time", &t0, "end-date", &day, "end-time", &t1,
                  nullptr);
    const double add = median_ms (9, [&] {
        tav_calendar_window_add_entry (window, added);
        settle ();
    });
    printf ("a new entry shown (add_entry, month current: the month read again): %.1f ms (target 50 ms)\n", add);

    g_object_unref (added);
    g_object_unref (edited);
    app.reset ();
    store.reset ();
    for (const char *suffix : {"/store.db", "/store.db-wal", "/store.db-shm"}) {
        g_unlink ((std::string (dir) + suffix).c_str ());
    }
    g_rmdir (dir);
    g_free (dir);
    return 0;
}
