/* Speed of the date and time core.
 *
 * Prints, from one run:
 *  - the cost of a 68-year day count (and of a 68-year step) relative to a
 *    one-day one: stepping by days must not depend on the distance;
 *  - weekday, ISO week number, Julian day number and adding days, each
 *    relative to GLib's GDate doing the same job from the same day/month/year
 *    input in the same process.
 * A ratio is (our time) / (baseline time); below 1 is faster. Each figure is
 * the best of several rounds over the same inputs.
 */

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

#include "TavCalendarProcessor.h"

namespace {

volatile long g_sink;

double time_once (const std::function<long ()> &body, long calls)
{
    auto t0 = std::chrono::steady_clock::now ();
    g_sink = body ();
    auto t1 = std::chrono::steady_clock::now ();
    return std::chrono::duration<double, std::nano> (t1 - t0).count () / calls;
}

struct Row {
    const char *what;
    double ours, baseline;
    double target; /* 0: shown for information */
};

/* Nanoseconds per call of each body (each runs @calls calls). The two run
 * in alternating rounds and each keeps its best round, so that other load
 * on the machine hits both alike. */
Row compare (const char *what, const std::function<long ()> &ours, const std::function<long ()> &baseline, long calls,
             double target, int rounds = 15)
{
    Row row = { what, 1e300, 1e300, target };
    for (int r = 0; r < rounds; r++) {
        row.ours = std::min (row.ours, time_once (ours, calls));
        row.baseline = std::min (row.baseline, time_once (baseline, calls));
    }
    return row;
}

} // namespace

int main ()
{
    g_setenv ("CALENDAR_SYSTEM", "en", TRUE);
    TavCalendarProcessor *p = tav_calendar_processor_new ();
    tav_calendar_processor_set_first_day_of_week (p, 1);

    /* The same random dates of the supported range for every measurement. */
    std::mt19937 rng (42);
    std::uniform_int_distribution<int> year (1970, 2037), month (0, 11), day (1, 28), count (0, 24836);
    constexpr int N = 4096;
    std::vector<TavDate> dates (N);
    std::vector<int> counts (N);
    for (int i = 0; i < N; i++) {
        dates[i] = { year (rng), month (rng), day (rng) };
        counts[i] = count (rng);
    }
    constexpr int REPS = 200;
    constexpr long CALLS = static_cast<long> (N) * REPS;

    std::vector<Row> rows;

    /* Day counts: one day apart versus 68 years apart. */
    {
        const TavDate first = { 1970, 0, 1 }, last = { 2037, 11, 31 };
        std::vector<TavDate> next_day (N);
        for (int i = 0; i < N; i++) {
            next_day[i] = dates[i];
            tav_calendar_processor_inc_date (p, &next_day[i]);
        }
        auto one = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++)
                    s += tav_calendar_processor_get_date_interval_in_days (p, dates[i], next_day[i]);
            return s;
        };
        auto span = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    TavDate from = first;
                    from.day += i & 15; /* vary the input a little */
                    s += tav_calendar_processor_get_date_interval_in_days (p, from, last);
                }
            return s;
        };
        rows.push_back (compare ("day count: 68 years vs 1 day", span, one, CALLS, 1.5));

        auto step1 = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    TavDate d = dates[i];
                    tav_calendar_processor_inc_date_by_days (p, &d, 1);
                    s += d.day;
                }
            return s;
        };
        auto step68 = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    TavDate d = first;
                    d.day += i & 15;
                    tav_calendar_processor_inc_date_by_days (p, &d, 24836);
                    s += d.day;
                }
            return s;
        };
        /* A step inside the month is a plain addition, so the one-day case
         * is also shown stepping over a month end, through the day ordinal
         * like the long step. */
        rows.push_back (compare ("add days: 68 years vs 1 day", step68, step1, CALLS, 0));
        std::vector<TavDate> month_ends (N);
        for (int i = 0; i < N; i++)
            month_ends[i] = { dates[i].year, dates[i].month,
                              tav_calendar_processor_month_length (p, dates[i].year, static_cast<guint> (dates[i].month)) };
        auto step1_over_month_end = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    TavDate d = month_ends[i];
                    tav_calendar_processor_inc_date_by_days (p, &d, 1);
                    s += d.day;
                }
            return s;
        };
        rows.push_back (compare ("add days: 68 y vs 1 d, month end", step68, step1_over_month_end, CALLS, 1.5));
    }

    /* Weekday. */
    {
        auto ours = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates)
                    s += tav_calendar_processor_date_to_day_of_week (p, &d);
            return s;
        };
        auto gdate = [&] () -> long {
            long s = 0;
            GDate g;
            g_date_clear (&g, 1);
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates) {
                    g_date_set_dmy (&g, d.day, static_cast<GDateMonth> (d.month + 1), d.year);
                    s += g_date_get_weekday (&g);
                }
            return s;
        };
        rows.push_back (compare ("weekday vs GDate", ours, gdate, CALLS, 1.5));
    }

    /* Week number (Monday weeks, the ISO 8601 ones GDate knows). */
    {
        auto ours = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates)
                    s += tav_calendar_processor_date_to_week_number (p, &d);
            return s;
        };
        auto gdate = [&] () -> long {
            long s = 0;
            GDate g;
            g_date_clear (&g, 1);
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates) {
                    g_date_set_dmy (&g, d.day, static_cast<GDateMonth> (d.month + 1), d.year);
                    s += g_date_get_iso8601_week_of_year (&g);
                }
            return s;
        };
        rows.push_back (compare ("week number vs GDate", ours, gdate, CALLS, 1.5));
    }

    /* Julian day number. */
    {
        auto ours = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates)
                    s += tav_calendar_processor_date_to_julian_day_number (p, &d);
            return s;
        };
        auto gdate = [&] () -> long {
            long s = 0;
            GDate g;
            g_date_clear (&g, 1);
            for (int r = 0; r < REPS; r++)
                for (const TavDate &d : dates) {
                    g_date_set_dmy (&g, d.day, static_cast<GDateMonth> (d.month + 1), d.year);
                    s += g_date_get_julian (&g);
                }
            return s;
        };
        rows.push_back (compare ("Julian day number vs GDate", ours, gdate, CALLS, 1.5));
    }

    /* Adding days: day/month/year in, day/month/year out. */
    {
        auto ours = [&] () -> long {
            long s = 0;
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    TavDate d = dates[i];
                    tav_calendar_processor_inc_date_by_days (p, &d, counts[i]);
                    s += d.year + d.month + d.day;
                }
            return s;
        };
        auto gdate = [&] () -> long {
            long s = 0;
            GDate g;
            g_date_clear (&g, 1);
            for (int r = 0; r < REPS; r++)
                for (int i = 0; i < N; i++) {
                    const TavDate &d = dates[i];
                    g_date_set_dmy (&g, d.day, static_cast<GDateMonth> (d.month + 1), d.year);
                    g_date_add_days (&g, counts[i]);
                    s += g_date_get_year (&g) + g_date_get_month (&g) + g_date_get_day (&g);
                }
            return s;
        };
        rows.push_back (compare ("add days vs GDate", ours, gdate, CALLS, 1.5));
    }

    int failed = 0;
    std::printf ("%-34s %9s %9s %8s %8s\n", "measurement", "ours ns", "base ns", "ratio", "target");
    for (const Row &row : rows) {
        double ratio = row.ours / row.baseline;
        bool ok = row.target <= 0 || ratio <= row.target;
        failed += !ok;
        if (row.target > 0)
            std::printf ("%-34s %9.2f %9.2f %7.2fx %7.1fx%s\n", row.what, row.ours, row.baseline, ratio, row.target,
                         ok ? "" : "  over target");
        else
            std::printf ("%-34s %9.2f %9.2f %7.2fx %8s\n", row.what, row.ours, row.baseline, ratio, "(info)");
    }
    g_object_unref (p);
    return failed ? 1 : 0;
}
