/* Agenda view speed, measured in one run under an X server.
 *
 * 1. Ordering N rows: the list's batched read against one-by-one sorted
 *    insertion with an array rebuild after each row (the rule as written),
 *    run in the same process, for 310 and 3,100 rows.
 * 2. A 31-day agenda with 3,100 entries (100 a day: timed, all-day, tasks
 *    and birthdays): the host's read (freeze, add, thaw), layout and first
 *    paint, against the same for an empty agenda; and the growth from 310
 *    to 3,100 entries.
 * 3. One scroll step (a row) against a full repaint.
 *
 * Prints one line per figure, with the ratio to its baseline, on standard
 * error. Needs X: xvfb-run -a build/bench/bench-agenda-view
 */

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "TavAgendaViewInternal.h"
#include "TavCalendarTask.h"
#include "TavGPtr.h"

namespace {

using Clock = std::chrono::steady_clock;

double ms_since (Clock::time_point start)
{
    return std::chrono::duration<double, std::milli> (Clock::now () - start).count ();
}

double best_ms (int runs, const std::function<void ()> &fn)
{
    double best = 1e9;
    for (int i = 0; i < runs; i++) {
        auto start = Clock::now ();
        fn ();
        best = std::min (best, ms_since (start));
    }
    return best;
}

constexpr TavDate kChosen { 2009, 2, 16 };

/* @per_day entries on each of the 31 shown days: 70% timed, 10% all-day,
 * 10% tasks, 10% birthdays. */
std::vector<tav::GRefPtr<TavCalendarEntry>> busy_month (int per_day)
{
    std::vector<tav::GRefPtr<TavCalendarEntry>> out;
    std::mt19937 rng (7);
    for (int d = 0; d < 31; d++) {
        TavDate day = { 2009, 2, 1 + d };
        if (day.day > 31) {
            day.month = 3;
            day.day -= 31;
        }
        for (int i = 0; i < per_day; i++) {
            const int kind = i % 10;
            auto *e = TAV_CALENDAR_ENTRY (g_object_new (kind == 8 ? TAV_TYPE_CALENDAR_TASK : TAV_TYPE_CALENDAR_ENTRY, NULL));
            const int start = static_cast<int> (rng () % (14 * 4)) * 15 + 7 * 60;
            const int end = std::min (start + 30 + static_cast<int> (rng () % 6) * 15, 23 * 60 + 59);
            char title[40];
            g_snprintf (title, sizeof title, "Entry %d.%d", d, i);
            g_object_set (e, "title", title, "location", "Room 4", "start-year", day.year, "start-month", day.month,
                          "start-day", day.day, "start-hour", start / 60, "start-minute", start % 60, "end-year",
                          day.year, "end-month", day.month, "end-day", day.day, "end-hour", end / 60, "end-minute",
                          end % 60, "color", static_cast<int> (rng () % 10), "all-day", kind >= 7,
                          "has-birthday", kind == 9, "created-time", static_cast<int> (rng () % 1000), NULL);
            out.push_back (tav::adoptGRef (e));
        }
    }
    return out;
}

void sync_display ()
{
    gdk_window_process_all_updates ();
    gdk_display_sync (gdk_display_get_default ());
    while (gtk_events_pending ())
        gtk_main_iteration_do (FALSE);
}

struct Shown {
    GtkWidget *window;
    TavAgendaView *view;
};

Shown show_agenda ()
{
    Shown s;
    s.window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size (GTK_WINDOW (s.window), 800, 432);
    s.view = TAV_AGENDA_VIEW (tav_agenda_view_new ());
    gtk_container_add (GTK_CONTAINER (s.window), GTK_WIDGET (s.view));
    tav_agenda_view_set_presented_interval_by_date (s.view, &kChosen);
    gtk_widget_show_all (s.window);
    for (int i = 0; i < 50 && GTK_WIDGET (s.view)->allocation.height != 432; i++) {
        sync_display ();
        g_usleep (2000);
    }
    sync_display ();
    return s;
}

void read_agenda (TavAgendaView *view, const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries)
{
    TavCalendarView *base = TAV_CALENDAR_VIEW (view);
    tav_calendar_view_freeze (base);
    tav_calendar_view_reading_started (base);
    tav_calendar_view_clear_entries (base);
    GList *list = NULL;
    for (auto it = entries.rbegin (); it != entries.rend (); ++it)
        list = g_list_prepend (list, it->get ());
    tav_calendar_view_add_entries (base, list);
    g_list_free (list);
    tav_calendar_view_thaw (base);
    tav_calendar_view_reading_finished (base);
}

/* One read, layout and first paint, kept out of line so that callgrind
 * can count it alone (--toggle-collect=measured_first_paint). */
G_GNUC_NO_INLINE void measured_first_paint (Shown &s, const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries)
{
    read_agenda (s.view, entries);
    agenda_entry_list_get_height (_tav_agenda_view_get_list (s.view));
    gdk_window_invalidate_rect (GTK_WIDGET (s.view)->window, NULL, TRUE);
    sync_display ();
}

/* Read, layout and first paint of @entries, best of @runs. */
double first_paint_ms (const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries, int runs)
{
    double best = 1e9;
    for (int run = 0; run < runs; run++) {
        Shown s = show_agenda ();
        auto start = Clock::now ();
        measured_first_paint (s, entries);
        best = std::min (best, ms_since (start));
        gtk_widget_destroy (s.window);
        sync_display ();
    }
    return best;
}

/* Rows for the ordering figure, built once per list from the entries. */
std::vector<AgendaEntry *> rows_of (AgendaEntryList *list, const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries)
{
    std::vector<AgendaEntry *> rows;
    for (const auto &e : entries)
        rows.push_back (agenda_entry_new (list, e.get (), nullptr, 1));
    return rows;
}

double order_batched_ms (const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries)
{
    return best_ms (5, [&] {
        AgendaEntryList *list = agenda_entry_list_new ();
        for (AgendaEntry *r : rows_of (list, entries))
            agenda_entry_list_add_agenda_entry (list, r);
        agenda_entry_list_get_height (list);
        agenda_entry_list_free (list);
    });
}

/* Sorted insertion into the list, then the array rebuilt, for each row. */
double order_as_written_ms (const std::vector<tav::GRefPtr<TavCalendarEntry>> &entries)
{
    return best_ms (3, [&] {
        AgendaEntryList *scratch = agenda_entry_list_new ();
        std::vector<AgendaEntry *> rows = rows_of (scratch, entries);
        GList *sorted = NULL;
        GPtrArray *array = g_ptr_array_sized_new (128);
        for (AgendaEntry *r : rows) {
            sorted = g_list_insert_sorted (sorted, r, reinterpret_cast<GCompareFunc> (tav_agenda_entry_compare));
            g_ptr_array_free (array, TRUE);
            array = g_ptr_array_sized_new (128);
            for (GList *l = sorted; l; l = l->next)
                g_ptr_array_add (array, l->data);
        }
        int y = 0;
        for (guint i = 0; i < array->len; i++) {
            static_cast<AgendaEntry *> (g_ptr_array_index (array, i))->y = y;
            y += static_cast<AgendaEntry *> (g_ptr_array_index (array, i))->height;
        }
        g_ptr_array_free (array, TRUE);
        g_list_free (sorted);
        for (AgendaEntry *r : rows)
            agenda_entry_free (r);
        agenda_entry_list_free (scratch);
    });
}

} // namespace

int main (int argc, char **argv)
{
    g_setenv ("TZ", "UTC", TRUE);
    if (!gtk_init_check (&argc, &argv)) {
        std::fprintf (stderr, "BenchAgendaView needs an X display (run it under xvfb-run)\n");
        return 77;
    }
    if (!std::freopen ("/dev/null", "w", stdout))
        return 1;

    /* --once N: only one first paint of N entries a day, for instruction
     * counts: valgrind --tool=callgrind --toggle-collect=measured_first_paint
     * bench-agenda-view --once 10, then --once 100. */
    if (argc == 3 && g_strcmp0 (argv[1], "--once") == 0) {
        const auto entries = busy_month (atoi (argv[2]));
        Shown s = show_agenda ();
        measured_first_paint (s, entries);
        gtk_widget_destroy (s.window);
        return 0;
    }

    std::vector<std::string> lines;
    auto report = [&] (const char *what, double ms, double baseline_ms, const char *baseline) {
        char buf[256];
        g_snprintf (buf, sizeof buf, "%-46s %10.3f ms   baseline %-24s %10.3f ms   ratio %6.2f", what, ms, baseline,
                    baseline_ms, baseline_ms > 0 ? ms / baseline_ms : 0.0);
        lines.push_back (buf);
    };

    const auto small = busy_month (10);
    const auto large = busy_month (100);

    /* 1. Ordering. */
    for (const auto *set : { &small, &large }) {
        char what[64];
        g_snprintf (what, sizeof what, "order %zu rows (batched read)", set->size ());
        report (what, order_batched_ms (*set), order_as_written_ms (*set), "(insertion as written)");
    }

    /* 2. First paint. */
    const double empty_ms = first_paint_ms ({}, 9);
    const double small_ms = first_paint_ms (small, 9);
    const double large_ms = first_paint_ms (large, 9);
    report ("31 days, 310 entries: read+layout+paint", small_ms, empty_ms, "(empty agenda)");
    report ("31 days, 3,100 entries: read+layout+paint", large_ms, empty_ms, "(empty agenda)");

    /* 3. Scroll step. */
    double step_ms = 0;
    {
        Shown s = show_agenda ();
        read_agenda (s.view, large);
        sync_display ();
        GtkAdjustment *adj = _tav_agenda_view_get_vadjustment (s.view);
        double value = 1000;
        step_ms = best_ms (101, [&] {
            value = value >= 100000 ? 1000 : value + 70;
            gtk_adjustment_set_value (adj, value);
            gdk_window_process_all_updates ();
            gdk_display_sync (gdk_display_get_default ());
        });
        const double full_ms = best_ms (51, [&] {
            gdk_window_invalidate_rect (GTK_WIDGET (s.view)->window, NULL, FALSE);
            gdk_window_process_all_updates ();
            gdk_display_sync (gdk_display_get_default ());
        });
        report ("scroll step of one row (70 px)", step_ms, full_ms, "(full repaint)");
        char rows[96];
        g_snprintf (rows, sizeof rows, "(the 3,100-entry agenda holds %d rows, %d px)",
                    agenda_entry_list_get_n_entry (_tav_agenda_view_get_list (s.view)),
                    agenda_entry_list_get_height (_tav_agenda_view_get_list (s.view)));
        lines.push_back (rows);
        gtk_widget_destroy (s.window);
    }

    for (const std::string &l : lines)
        std::fprintf (stderr, "%s\n", l.c_str ());
    const double growth = small_ms > 0 ? large_ms / small_ms : 0;
    std::fprintf (stderr, "growth 310 -> 3,100 entries (10x): %.1fx\n", growth);
    std::fprintf (stderr, "targets: 3,100 entries %s 50 ms, scroll step %s 8 ms, growth %s 12x\n",
                  large_ms <= 50 ? "within" : "OVER", step_ms <= 8 ? "within" : "OVER",
                  growth <= 12 ? "within" : "OVER");
    return 0;
}
