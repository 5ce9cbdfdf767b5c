/* How much the entry's instance cache saves a view that reads the same
 * interval again (a repaint, a switch back to a view), and whether
 * iterating instances grows linearly with the number of entries.
 *
 * Baseline: every read drops the cache first, so each entry asks its
 * source (the in-memory test source, which expands the repetition).
 * Measured: the same reads with the cache kept. */

#include <calendarui.h>

#include <chrono>
#include <cstdio>
#include <vector>

#include "TavMemorySource.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Fixture {
    tav::test::MemorySourcePtr source;
    std::vector<TavCalendarEntry *> entries;

    explicit Fixture (int n)
        : source (tav_memory_source_new ("Bench", TavCalendarColorBlue, CalendarSourceTypeLocal))
    {
        for (int i = 0; i < n; ++i) {
            TavTimestamp start { { 2009, 0, 1 + i % 28 }, { 8 + i % 10, 0 } };
            TavTimestamp end = start;
            end.time.hour += 1;
            TavCalendarEntry *e = tav_memory_source_add_event (source.get (), "Event", &start, &end);
            g_object_set (e, "repeat-code", i % 2 ? TavCalendarRepeatsEveryDay : TavCalendarRepeatsEveryWeek, nullptr);
            entries.push_back (e);
        }
    }

    /* One read of the month of March 2009 by every entry; returns the
     * number of instances seen so the work cannot be optimised away. */
    long read (bool drop_first)
    {
        static const TavDateInterval march { { 2009, 2, 1 }, { 2009, 2, 31 } };
        long seen = 0;
        for (TavCalendarEntry *e : entries) {
            if (drop_first)
                tav_calandar_entry_drop_instances (e);
            for (auto *ts = tav_calendar_entry_get_first_instance_timestamp (e, &march); ts;
                 ts = tav_calendar_entry_get_next_instance_timestamp (e))
                seen += ts->date.day;
        }
        return seen;
    }
};

double seconds (Fixture &f, bool drop_first, int rounds, long &sink)
{
    auto t0 = Clock::now ();
    for (int r = 0; r < rounds; ++r)
        sink += f.read (drop_first);
    return std::chrono::duration<double> (Clock::now () - t0).count ();
}

} // namespace

int main ()
{
    long sink = 0;
    const int n = 2000, rounds = 20;

    Fixture f (n);
    double uncached = seconds (f, true, rounds, sink);
    double cached = seconds (f, false, rounds, sink);
    std::printf ("instance reads, %d entries x %d rounds: source each time %.4f s, cached %.4f s, ratio %.1fx\n",
                 n, rounds, uncached, cached, uncached / cached);

    Fixture small (n / 10);
    double t_small = seconds (small, false, rounds * 10, sink);
    double t_large = seconds (f, false, rounds, sink);
    /* Same total entry reads: a ratio near 1 means linear growth. */
    std::printf ("cached reads, growth: %d entries x %d rounds %.4f s vs %d x %d %.4f s, ratio %.2f\n", n / 10,
                 rounds * 10, t_small, n, rounds, t_large, t_large / t_small);
    std::printf ("(checksum %ld)\n", sink);
    return 0;
}
