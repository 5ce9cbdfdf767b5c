/* Home applet speed, measured in one run under an X server.
 *
 * 1. Choosing five rows from 10,000 instances, against a partial sort of
 *    the same instances by start time alone.
 * 2. A whole read from a calendar of 10,000 events in the days ahead (a
 *    tenth repeating weekly) until the five rows are chosen, against the
 *    week view's read of the same calendar.
 * 3. An update with those instances held (choice, five rows' texts, the
 *    timer), as the timer runs it.
 * 4. Painting the five rows, against a GtkLabel showing the same texts.
 *
 * Prints one line per figure, with the ratio to its baseline, on standard
 * error. Needs X: xvfb-run -a build/bench/bench-home-applet
 */

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

#include <gtk/gtk.h>

#include "TavGPtr.h"
#include "TavHomeAppletInternal.h"
#include "TavMemorySource.h"

using namespace tav::applet;

namespace {

using Clock = std::chrono::steady_clock;

double best_ms (int runs, const std::function<void ()> &fn)
{
    double best = 1e9;
    for (int i = 0; i < runs; i++) {
        const auto start = Clock::now ();
        fn ();
        best = std::min (best, std::chrono::duration<double, std::milli> (Clock::now () - start).count ());
    }
    return best;
}

void report (const char *what, double ms, const char *baseline, double base_ms)
{
    fprintf (stderr, "%-52s %9.3f ms   %-34s %9.3f ms   ratio %6.2f\n", what, ms, baseline, base_ms, ms / base_ms);
}

/* Monday 9 March 2009, 10:30. */
time_t g_now;
time_t fixed_clock ()
{
    return g_now;
}

/* 10,000 events in the eight days the applet reads first (from Monday
 * 9 March 2009), 07:00 to 21:00: every one of them is a candidate. */
tav::test::MemorySourcePtr busy_calendar ()
{
    tav::test::MemorySourcePtr source (tav_memory_source_new ("Busy", TavCalendarColorBlue, CalendarSourceTypeLocal));
    std::mt19937 rng (20);
    for (int i = 0; i < 10000; i++) {
        const int64_t day = civil_day ({ 2009, 2, 9 }) + static_cast<int64_t> (rng () % 8);
        const TavDate date = civil_date (day);
        const int hour = 7 + static_cast<int> (rng () % 14);
        TavTimestamp start = { date, { hour, static_cast<int> (rng () % 4) * 15 } };
        TavTimestamp end = { date, { hour + 1, start.time.minute } };
        char title[32];
        g_snprintf (title, sizeof title, "Event %d", i);
        TavCalendarEntry *e = tav_memory_source_add_event (source.get (), title, &start, &end);
        if (i % 10 == 0)
            g_object_set (e, "repeat-code", TavCalendarRepeatsEveryWeek, NULL);
    }
    return source;
}

gboolean on_read_cb (TavCalendarView *view, gpointer data)
{
    TavDateInterval interval;
    if (!tav_calendar_view_get_presented_interval (view, &interval))
        return FALSE;
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    GList *events = tav_memory_source_list_events (static_cast<TavMemorySource *> (data), &interval);
    tav_calendar_view_add_entries (view, events);
    g_list_free_full (events, g_object_unref);
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
    return TRUE;
}

} // namespace

int main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-home-applet: needs an X display (xvfb-run -a)\n");
        return 77;
    }
    g_setenv ("TZ", "UTC", TRUE);
    g_now = static_cast<time_t> (local_seconds ({ { 2009, 2, 9 }, { 10, 30 } }));
    const LocalSeconds now = g_now;

    /* 1. The choice alone. */
    std::vector<AppletInstance> instances (10000);
    std::mt19937 rng (7);
    for (size_t i = 0; i < instances.size (); ++i) {
        AppletInstance &a = instances[i];
        a.start = now - 3 * 3600 + static_cast<LocalSeconds> (rng () % (8 * 86400));
        a.end = a.start + 3600;
        a.kind = i % 20 == 0 ? InstanceKind::AllDay : InstanceKind::Timed;
        if (a.kind == InstanceKind::AllDay) {
            a.start = day_of (a.start) * kDay;
            a.end = a.start + kDay;
        }
        a.title = "Event " + std::to_string (i);
        a.seq = static_cast<guint> (i);
    }
    size_t sink = 0;
    const double choose = best_ms (50, [&] { sink += choose_rows (instances, now).size (); });
    const double partial = best_ms (50, [&] {
        std::vector<const AppletInstance *> p;
        p.reserve (instances.size ());
        for (const AppletInstance &a : instances)
            p.push_back (&a);
        std::partial_sort (p.begin (), p.begin () + 5, p.end (),
                           [] (const AppletInstance *x, const AppletInstance *y) { return x->start < y->start; });
        sink += p.size ();
    });
    report ("choose 5 rows of 10,000 instances", choose, "partial sort by start", partial);

    /* 2 and 3: the widget over a 10,000-event calendar. */
    tav::test::MemorySourcePtr calendar = busy_calendar ();
    GtkWidget *window = gtk_offscreen_window_new ();
    gtk_widget_set_size_request (window, 340, 340);
    TavHomeApplet *applet = TAV_HOME_APPLET (tav_home_applet_new ());
    _tav_home_applet_set_clock (applet, fixed_clock);
    g_signal_connect (applet, "database-access-read", G_CALLBACK (on_read_cb), calendar.get ());
    gtk_container_add (GTK_CONTAINER (window), GTK_WIDGET (applet));
    gtk_widget_show_all (window);
    while (gtk_events_pending ())
        gtk_main_iteration ();

    const double read = best_ms (5, [&] { tav_home_applet_reload (applet); });
    const size_t held = _tav_home_applet_get_instances (applet).size ();
    const double update = best_ms (20, [&] { _tav_home_applet_fire_timer (applet); });
    char what[80];
    g_snprintf (what, sizeof what, "update with %zu instances held", held);
    report (what, update, "choose alone", choose);

    GtkWidget *week = tav_week_view_new ();
    g_object_ref_sink (week);
    g_signal_connect (week, "database-access-read", G_CALLBACK (on_read_cb), calendar.get ());
    const TavDate monday = { 2009, 2, 9 };
    const double week_read = best_ms (5, [&] { tav_week_view_set_presented_interval_by_date (TAV_WEEK_VIEW (week), &monday); });
    report ("read 10,000-event calendar to 5 rows", read, "week view's read of it", week_read);

    /* 4. Painting. */
    tav_home_applet_reload (applet);
    while (gtk_events_pending ())
        gtk_main_iteration ();
    GdkWindow *win = gtk_widget_get_window (window);
    int exposes = 0;
    g_signal_connect_swapped (applet, "expose-event", G_CALLBACK (+[] (int *n) { ++*n; return FALSE; }), &exposes);
    const double paint = best_ms (30, [&] {
        gtk_widget_queue_draw (GTK_WIDGET (applet));
        gdk_window_process_updates (win, TRUE);
    });
    std::string text;
    for (int n = 0; n < tav_home_applet_get_n_rows (applet); ++n)
        text += _tav_home_applet_describe_row (applet, n) + "\n";
    GtkWidget *label_window = gtk_offscreen_window_new ();
    gtk_widget_set_size_request (label_window, 340, 340);
    GtkWidget *label = gtk_label_new (text.c_str ());
    gtk_container_add (GTK_CONTAINER (label_window), label);
    gtk_widget_show_all (label_window);
    while (gtk_events_pending ())
        gtk_main_iteration ();
    GdkWindow *label_win = gtk_widget_get_window (label_window);
    const double label_paint = best_ms (30, [&] {
        gtk_widget_queue_draw (label);
        gdk_window_process_updates (label_win, TRUE);
    });
    if (exposes < 30)
        fprintf (stderr, "bench-home-applet: only %d of 30 paints happened\n", exposes);
    g_snprintf (what, sizeof what, "paint %d rows", tav_home_applet_get_n_rows (applet));
    report (what, paint, "GtkLabel with the same texts", label_paint);

    gtk_widget_destroy (label_window);
    gtk_widget_destroy (window);
    g_object_unref (week);
    return sink == 0;
}
