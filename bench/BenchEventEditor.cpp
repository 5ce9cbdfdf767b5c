/* Event editor benchmark: opening the editor on a stored event of a store
 * holding 10,000 events (finding it, building the window over all the
 * calendars, showing and painting it), against opening it for a new event
 * over an empty store in the same run.
 *
 * Run under X: xvfb-run -a build/bench/bench-event-editor
 */
#include <calendarui.h>
#include <gtk/gtk.h>
#include <glib/gstdio.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "HostCivilTime.h"
#include "HostEditor.h"

using Clock = std::chrono::steady_clock;
using namespace tav::host;

namespace {

constexpr int kEvents = 10000;
constexpr int kRuns = 15;

/* The library logs what it does; keep it out of the figures' output. */
class QuietStdout {
public:
    QuietStdout ()
    {
        fflush (stdout);
        m_saved = dup (STDOUT_FILENO);
        FILE *null = fopen ("/dev/null", "w");
        dup2 (fileno (null), STDOUT_FILENO);
        fclose (null);
    }
    ~QuietStdout ()
    {
        fflush (stdout);
        dup2 (m_saved, STDOUT_FILENO);
        close (m_saved);
    }

private:
    int m_saved;
};

std::shared_ptr<Store> make_store (const std::string &path, int events)
{
    Status st;
    std::shared_ptr<Store> store (Store::open (path, &st).release ());
    if (!store) {
        fprintf (stderr, "bench-event-editor: %s\n", st.message.c_str ());
        exit (1);
    }
    CalendarRecord home;
    home.title = "Home";
    store->add_calendar (home);
    CalendarRecord work;
    work.title = "Work";
    work.color = TavCalendarColorGreen;
    store->add_calendar (work);
    Store::Transaction tx (*store);
    for (int i = 0; i < events; ++i) {
        EntryRecord e;
        e.calendar_id = (i % 3) ? home.id : work.id;
        e.uid = "bench-" + std::to_string (i);
        e.title = "Event " + std::to_string (i);
        e.location = "Room " + std::to_string (i % 40);
        e.start = civil_minutes (2020 + i % 10, 1 + i % 12, 1 + i % 28) + 60 * (8 + i % 10);
        e.end = e.start + 45;
        if (i % 7 == 0) {
            e.rrule = "FREQ=WEEKLY";
            e.repeat_code = TavCalendarRepeatsEveryWeek;
        }
        store->add_entry (e);
    }
    tx.commit ();
    return store;
}

/* Opens, shows and paints an editor; returns the milliseconds it took. */
double open_once (const std::function<GtkWidget *()> &open)
{
    const auto start = Clock::now ();
    GtkWidget *window = open ();
    gtk_widget_show (window);
    while (!gtk_widget_get_mapped (window) || gtk_events_pending ()) {
        gtk_main_iteration ();
    }
    gdk_window_process_all_updates ();
    gdk_display_sync (gdk_display_get_default ());
    const double ms = std::chrono::duration<double, std::milli> (Clock::now () - start).count ();
    gtk_widget_destroy (window);
    while (gtk_events_pending ()) {
        gtk_main_iteration ();
    }
    return ms;
}

double median (std::vector<double> v)
{
    std::sort (v.begin (), v.end ());
    return v[v.size () / 2];
}

}  // namespace

int main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-event-editor: needs an X display (xvfb-run -a)\n");
        return 77;
    }
    gchar *dir = g_dir_make_tmp ("tav-bench-editor-XXXXXX", nullptr);
    const std::string base = dir;
    std::vector<double> fresh, existing, lookup;
    {
        QuietStdout quiet;
        std::shared_ptr<Store> empty = make_store (base + "/empty.db", 0);
        CalendarSet empty_set (empty);
        std::shared_ptr<Store> full = make_store (base + "/full.db", kEvents);
        CalendarSet full_set (full);
        const TavDate day = {2026, 10, 24};
        open_once ([&] { return open_event_editor (empty_set, &day, nullptr); }); /* warm-up */
        for (int i = 0; i < kRuns; ++i) {
            fresh.push_back (open_once ([&] { return open_event_editor (empty_set, &day, nullptr); }));
            const std::string uid = "bench-" + std::to_string ((i * 997) % kEvents);
            existing.push_back (open_once ([&] {
                const auto t0 = Clock::now ();
                TavCalendarEntry *entry = find_event (full_set, uid);
                lookup.push_back (std::chrono::duration<double, std::milli> (Clock::now () - t0).count ());
                GtkWidget *w = open_event_editor (full_set, nullptr, entry);
                g_object_unref (entry);
                return w;
            }));
        }
    }
    printf ("event editor, median of %d runs (target: an existing entry opens within 100 ms)\n", kRuns);
    printf ("  new event, empty store            %7.2f ms (baseline)\n", median (fresh));
    printf ("  existing entry, %d events      %7.2f ms  ratio %.2f\n", kEvents, median (existing),
            median (existing) / median (fresh));
    printf ("    of which finding it in the store %7.2f ms\n", median (lookup));
    for (const char *f : {"/empty.db", "/empty.db-wal", "/empty.db-shm", "/full.db", "/full.db-wal", "/full.db-shm"}) {
        g_unlink ((base + f).c_str ());
    }
    g_rmdir (dir);
    g_free (dir);
    return 0;
}
