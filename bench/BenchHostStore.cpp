/* Speed of the host store.
 *
 * A store of 10,000 events (1,000 of them repeating) over ten years:
 *  - reading one month the way the month view asks for it (interval query,
 *    entry objects, instance expansion through the source), against a
 *    baseline that reads every entry and steps every rule from its start;
 *  - the same read at a tenth of the size, to show how it grows;
 *  - importing a 1,500-event iCalendar file in one transaction, against a
 *    baseline that commits each entry on its own;
 *  - with a display, the whole answer to the month view's
 *    "database-access-read".
 * Targets: a month read within 50 ms, the import within 1 s.
 */
#include "HostCalendarSet.h"
#include "HostCivilTime.h"
#include "HostIcs.h"
#include "HostRecurrence.h"

#include <calendarui.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>

using namespace tav::host;

namespace {

double now_ms ()
{
    return std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now ().time_since_epoch ()).count ();
}

template <typename F>
double median_ms (int runs, F &&f)
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

std::vector<EntryRecord> make_events (int count, int repeating, unsigned seed)
{
    static const char *const rules[] = {"FREQ=WEEKLY",        "FREQ=DAILY;COUNT=30",           "FREQ=MONTHLY",
                                        "FREQ=YEARLY",        "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR", "FREQ=WEEKLY;BYDAY=TU,TH",
                                        "FREQ=DAILY;INTERVAL=3", "FREQ=MONTHLY;BYDAY=1MO",      "FREQ=WEEKLY;COUNT=20"};
    std::mt19937 rng (seed);
    const int64_t first = civil_minutes (2020, 1, 1);
    const int64_t days = days_from_civil (2030, 1, 1) - days_from_civil (2020, 1, 1);
    std::vector<EntryRecord> out;
    for (int i = 0; i < count; ++i) {
        EntryRecord e;
        e.title = "Event " + std::to_string (i);
        e.location = i % 3 ? "" : "Room " + std::to_string (i % 17);
        e.start = first + static_cast<int64_t> (rng () % days) * kMinutesPerDay + (7 + rng () % 12) * 60 + 15 * (rng () % 4);
        e.end = e.start + 30 * (1 + rng () % 6);
        if (i % 25 == 0) {
            e.all_day = true;
            e.start = civil_day_start (e.start);
            e.end = e.start + (1 + rng () % 4) * kMinutesPerDay - 1;
        }
        if (i < repeating) {
            e.rrule = rules[i % 9];
            if (i % 4 == 1 && e.rrule.find ("COUNT") == std::string::npos) {
                e.rrule += ";UNTIL=20281231T235959";
            }
            int64_t until = -1;
            e.repeat_code = repeat_code_for_rrule (e.rrule, e.start, &until);
        }
        out.push_back (std::move (e));
    }
    return out;
}

std::shared_ptr<Store> make_store (const std::string &path, int count, int repeating)
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
    Store::Transaction tx (*store);
    for (EntryRecord &e : make_events (count, repeating, 42)) {
        e.calendar_id = c.id;
        store->add_entry (e);
    }
    tx.commit ();
    return store;
}

/* The month view's grid for June 2025: 42 days from Monday 26 May. */
const TavDateInterval kGrid = {{2025, 4, 26}, {2025, 6, 6}};

/* Query, entry objects, and the instance expansion the view base runs. */
size_t read_month (CalendarSet &set)
{
    size_t instances = 0;
    GList *entries = set.read_interval (kGrid);
    for (GList *l = entries; l; l = l->next) {
        TavCalendarEntry *e = TAV_CALENDAR_ENTRY (l->data);
        for (const TavTimestamp *t = tav_calendar_entry_get_first_instance_timestamp (e, &kGrid); t;
             t = tav_calendar_entry_get_next_instance_timestamp (e)) {
            ++instances;
        }
    }
    g_list_free_full (entries, g_object_unref);
    return instances;
}

/* Baseline: every entry read, every rule stepped from its first occurrence. */
size_t read_month_baseline (Store &store, int64_t calendar)
{
    const int64_t from = civil_minutes (2025, 5, 26);
    const int64_t to = civil_minutes (2025, 7, 6, 23, 59);
    size_t instances = 0;
    for (const EntryRecord &e : store.entries_of_calendar (calendar)) {
        instances += expand_instances_stepping (e, from, to).size ();
    }
    return instances;
}

std::string make_ics (int count)
{
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\n";
    int i = 0;
    for (const EntryRecord &e : make_events (count, count / 10, 7)) {
        const CivilFields s = civil_fields (e.start), f = civil_fields (e.end);
        char buf[512];
        snprintf (buf, sizeof buf,
                  "BEGIN:VEVENT\r\nUID:bench-%d@example.com\r\nSUMMARY:%s\r\nDTSTART:%04d%02d%02dT%02d%02d00Z\r\n"
                  "DTEND:%04d%02d%02dT%02d%02d00Z\r\n%s%sBEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
                  "END:VEVENT\r\n",
                  i++, e.title.c_str (), s.year, s.month, s.day, s.hour, s.minute, f.year, f.month, f.day, f.hour,
                  f.minute, e.rrule.empty () ? "" : ("RRULE:" + e.rrule + "\r\n").c_str (),
                  e.location.empty () ? "" : ("LOCATION:" + e.location + "\r\n").c_str ());
        text += buf;
    }
    return text + "END:VCALENDAR\r\n";
}

}  // namespace

int main (int argc, char **argv)
{
    g_setenv ("TZ", "UTC", TRUE);
    tzset ();
    gchar *dir = g_dir_make_tmp ("tav-bench-XXXXXX", nullptr);
    const std::string base = dir;

    auto big = make_store (base + "/big.db", 10000, 1000);
    auto small = make_store (base + "/small.db", 1000, 100);
    const int64_t big_id = big->calendars ()[0].id;
    CalendarSet big_set (big), small_set (small);

    size_t found = 0, found_base = 0;
    const double read_big = median_ms (21, [&] { found = read_month (big_set); });
    const double read_small = median_ms (21, [&] { read_month (small_set); });
    const double read_base = median_ms (5, [&] { found_base = read_month_baseline (*big, big_id); });
    printf ("month read, 10,000 events (1,000 repeating): %.2f ms for %zu instances (target 50 ms)\n", read_big, found);
    printf ("  baseline (every entry, every rule stepped): %.2f ms for %zu instances; ratio %.1fx faster\n", read_base,
            found_base, read_base / read_big);
    const int64_t gf = civil_minutes (2025, 5, 26), gt = civil_minutes (2025, 7, 6, 23, 59);
    const size_t touching_small = small->entries_touching (gf, gt).size ();
    const size_t touching_big = big->entries_touching (gf, gt).size ();
    printf ("  growth: 1,000 events %.2f ms (%zu entries touch the month) -> 10,000 events %.2f ms (%zu entries);\n"
            "          time(10N)/time(N) = %.1f, per touching entry %.1f us -> %.1f us\n",
            read_small, touching_small, read_big, touching_big, read_big / read_small,
            1000.0 * read_small / std::max<size_t> (1, touching_small), 1000.0 * read_big / std::max<size_t> (1, touching_big));
    {
        /* Where the time goes. */
        const int64_t from = civil_minutes (2025, 5, 26), to = civil_minutes (2025, 7, 6, 23, 59);
        size_t rows = 0;
        const double q = median_ms (21, [&] { rows = big->entries_touching (from, to).size (); });
        const auto records = big->entries_touching (from, to);
        const double x = median_ms (21, [&] {
            for (const EntryRecord &e : records) {
                expand_instances (e, from, to);
            }
        });
        printf ("  of which: interval query %.2f ms (%zu entries), rule expansion %.2f ms, entry objects the rest\n", q,
                rows, x);
    }
    if (found != found_base) {
        printf ("  MISMATCH: the fast read found %zu instances, the baseline %zu\n", found, found_base);
    }

    const std::string ics = make_ics (1500);
    double import_ms = 0, import_base_ms = 0;
    ImportResult r;
    {
        Status st;
        auto store = Store::open (base + "/import.db", &st);
        CalendarRecord c;
        c.title = "Imported";
        store->add_calendar (c);
        const double t0 = now_ms ();
        r = import_ics_text (*store, c.id, ics);
        import_ms = now_ms () - t0;
    }
    {
        /* Baseline: the same entries, each committed on its own. */
        Status st;
        auto store = Store::open (base + "/import-base.db", &st);
        CalendarRecord c;
        c.title = "Imported";
        store->add_calendar (c);
        auto staged = Store::open (base + "/staging.db", &st);
        CalendarRecord s;
        s.title = "Staging";
        staged->add_calendar (s);
        import_ics_text (*staged, s.id, ics);
        auto records = staged->entries_of_calendar (s.id);
        const double t0 = now_ms ();
        for (EntryRecord &e : records) {
            e.id = 0;
            e.calendar_id = c.id;
            store->add_entry (e);
        }
        import_base_ms = now_ms () - t0;
    }
    printf ("import of a 1,500-event file: %.1f ms, %d events (target 1000 ms)%s\n", import_ms, r.events,
            r.status.ok () ? "" : (" FAILED: " + r.status.message).c_str ());
    printf ("  baseline (one commit per entry, parsing excluded): %.1f ms; ratio %.1fx faster\n", import_base_ms,
            import_base_ms / import_ms);

    if (gtk_init_check (&argc, &argv)) {
        GtkWidget *window = gtk_offscreen_window_new ();
        GtkWidget *month = tav_calendar_new ();
        gtk_widget_set_size_request (window, 800, 480);
        gtk_container_add (GTK_CONTAINER (window), month);
        g_signal_connect (month, "database-access-read", G_CALLBACK (+[] (TavCalendarView *view, gpointer data) {
                              return answer_database_read (view, *static_cast<CalendarSet *> (data));
                          }),
                          &big_set);
        gtk_widget_show_all (window);
        while (gtk_events_pending ()) {
            gtk_main_iteration_do (FALSE);
        }
        int month_index = 0;
        const double view_ms = median_ms (11, [&] {
            /* Alternate months so that every call really reads. */
            tav_calendar_select_month (TAV_CALENDAR (month), 5 + (month_index++ % 2), 2025);
        });
        printf ("month view read (select a month: query, entries, expansion, cell layout): %.2f ms\n", view_ms);
        gtk_widget_destroy (window);
    } else {
        printf ("(no display: the month view read itself was not measured)\n");
    }

    for (const char *name : {"big.db", "small.db", "import.db", "import-base.db", "staging.db"}) {
        for (const char *suffix : {"", "-wal", "-shm"}) {
            g_unlink ((base + "/" + name + suffix).c_str ());
        }
    }
    g_rmdir (dir);
    g_free (dir);
    return 0;
}
