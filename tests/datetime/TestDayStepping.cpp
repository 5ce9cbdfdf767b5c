/* Stepping by many days at once must give exactly what as many one-day
 * steps give, and day numbers follow the Julian calendar up to the reform. The oracle here is the one-day step written out from the
 * calendar's rules, independently of the library: month lengths with the
 * reform's leap rule (year 4 never leap), the three reform jumps, and the
 * plain carry into the next month and year. Runs of oracle steps are
 * recorded once as sequences, so that n steps from the k-th date of a
 * sequence are simply its (k + n)-th date. */

#include "TestSupport.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "DateTestSupport.h"
#include "TavCalendarProcessor.h"

using tav::test::gregorian_jdn;
using tav::test::julian_calendar_jdn;
using tav::test::operator==;
using tav::test::processor_for;
using tav::test::str;

namespace {

struct Oracle {
    int reform_year; /* last year of the Julian leap rule */
    TavDate jump_from, jump_to;
    TavDate last_julian; /* the last date the day number counts as Julian */

    static Oracle for_system (const std::string &system)
    {
        if (system == "es")
            return { 1582, { 1582, 9, 4 }, { 1582, 9, 15 }, { 1582, 9, 4 } };
        /* 1-28 February 1918 still count as Julian in the day number. */
        if (system == "ru")
            return { 1918, { 1918, 0, 31 }, { 1918, 1, 14 }, { 1918, 1, 28 } };
        return { 1752, { 1752, 8, 2 }, { 1752, 8, 14 }, { 1752, 8, 2 } };
    }

    bool leap (int y) const
    {
        if (y == 4)
            return false;
        if (y <= reform_year)
            return y % 4 == 0;
        return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    }

    int length (int y, int m) const
    {
        static const int days[] = { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
        return m == 1 && leap (y) ? 29 : days[m];
    }

    void inc (TavDate &d) const
    {
        if (d == jump_from)
            d = jump_to;
        else if (++d.day > length (d.year, d.month))
            d = d.month == 11 ? TavDate { d.year + 1, 0, 1 } : TavDate { d.year, d.month + 1, 1 };
    }

    void dec (TavDate &d) const
    {
        if (d == jump_to)
            d = jump_from;
        else if (d.day != 1)
            d.day--;
        else
            d = d.month == 0 ? TavDate { d.year - 1, 11, 31 } : TavDate { d.year, d.month - 1, length (d.year, d.month - 1) };
    }
};

long index_of (const std::vector<TavDate> &seq, const TavDate &d)
{
    auto it = std::lower_bound (seq.begin (), seq.end (), d,
                                [] (const TavDate &a, const TavDate &b) { return tav_date_compare (&a, &b) < 0; });
    return it != seq.end () && *it == d ? it - seq.begin () : -1;
}

/* Compares the library's steps with the oracle's, reporting the first few
 * mismatches. */
struct Checker {
    TavCalendarProcessor *p;
    std::string system;
    int bad = 0;

    void report (const std::string &what)
    {
        if (++bad <= 8)
            ADD_FAILURE () << system << " " << what;
    }
    void expect (const char *what, const TavDate &start, int n, const TavDate &got, const TavDate &want)
    {
        if (!(got == want))
            report (std::string (what) + " " + str (start) + " by " + std::to_string (n) + " gave " + str (got)
                    + ", stepping gives " + str (want));
    }
    void day_number (const Oracle &oracle, const TavDate &d)
    {
        guint want = tav_date_compare (&d, &oracle.last_julian) <= 0 ? julian_calendar_jdn (d) : gregorian_jdn (d);
        if (tav_calendar_processor_date_to_julian_day_number (p, &d) != want)
            report ("day number of " + str (d) + " is not " + std::to_string (want));
    }
    /* @n days forward and back from @start, where stepping reaches @ahead
     * and @behind, and the day count from @start to @ahead. */
    void steps (const TavDate &start, int n, const TavDate &ahead, const TavDate &behind)
    {
        TavDate f = start, b = start;
        tav_calendar_processor_inc_date_by_days (p, &f, n);
        tav_calendar_processor_dec_date_by_days (p, &b, n);
        expect ("inc", start, n, f, ahead);
        expect ("dec", start, n, b, behind);
        int interval = tav_calendar_processor_get_date_interval_in_days (p, start, ahead);
        if (interval != n)
            report ("interval " + str (start) + " -> " + str (ahead) + " gave " + std::to_string (interval));
    }
    /* Every count from 0 to @max from @start, the oracle stepping alongside. */
    void walk (const Oracle &oracle, const TavDate &start, int max)
    {
        TavDate ahead = start, behind = start;
        for (int n = 0; n <= max; n++, oracle.inc (ahead), oracle.dec (behind))
            steps (start, n, ahead, behind);
    }
};

} // namespace

/* Under each reform: every start of the supported years with a spread of
 * counts, random starts from 1500, every start within a year of the reform
 * gap and the dropped days themselves; and the day number of every date
 * from 1500 on. */
class DayStepping : public ::testing::TestWithParam<const char *> {};

TEST_P (DayStepping, ManyDaysAtOnceEqualOneDayStepsRepeated)
{
    const std::string system = GetParam ();
    auto p = processor_for (system.c_str ());
    const Oracle oracle = Oracle::for_system (system);
    /* Wide enough that any count below takes no start out of it. */
    std::vector<TavDate> seq;
    for (TavDate d = { 1300, 0, 1 }; d.year <= 2210; oracle.inc (d))
        seq.push_back (d);
    for (size_t i = seq.size () - 1; i > 0; i--) {
        TavDate d = seq[i];
        oracle.dec (d);
        ASSERT_TRUE (d == seq[i - 1]) << "backward steps retrace " << str (seq[i]);
    }
    const long lo = index_of (seq, { 1500, 0, 1 }), first = index_of (seq, { 1970, 0, 1 });
    const long last = index_of (seq, { 2037, 11, 31 }), reform = index_of (seq, oracle.jump_from);
    ASSERT_TRUE (lo >= 0 && first >= 0 && reform >= 0);
    ASSERT_EQ (last - first, 24836);
    ASSERT_TRUE (seq[reform + 1] == oracle.jump_to);
    Checker c { p.get (), system };
    for (long i = lo; i <= last; i++)
        c.day_number (oracle, seq[i]);

    /* The reforms agree from 1918 on: one sweeps the supported years. */
    if (system == "en") {
        /* Every count up to a month, then denser where months and years turn. */
        std::vector<int> spread { 58, 59, 60, 61, 89, 90, 91, 180, 364, 365, 366, 367, 729, 730, 731, 1095, 1096, 1460,
                                  1461, 1462, 3652, 3653, 10000, 14609, 20000, 24835, 24836, 24837 };
        for (int n = 0; n <= 32; n++)
            spread.push_back (n);
        for (long i = first; i <= last; i++) {
            TavDate one = seq[i];
            tav_calendar_processor_inc_date (p.get (), &one);
            c.expect ("inc_date", seq[i], 1, one, seq[i + 1]);
            one = seq[i];
            tav_calendar_processor_dec_date (p.get (), &one);
            c.expect ("dec_date", seq[i], 1, one, seq[i - 1]);
            for (int n : spread)
                c.steps (seq[i], n, seq[i + n], seq[i - n]);
        }
    }

    std::mt19937 rng (20091205u + static_cast<unsigned> (system[0]));
    std::uniform_int_distribution<long> start_dist (lo, last);
    std::uniform_int_distribution<int> small (0, 400), large (0, 60000);
    for (int k = 0; k < 20000; k++) {
        long i = start_dist (rng);
        long n = std::min ({ static_cast<long> (k % 4 == 0 ? large (rng) : small (rng)), i,
                             static_cast<long> (seq.size ()) - 1 - i });
        c.steps (seq[i], static_cast<int> (n), seq[i + n], seq[i - n]);
    }
    for (long i = reform - 366; i <= reform + 366; i++)
        for (int n : { 0, 1, 2, 5, 10, 11, 12, 13, 14, 15, 30, 31, 100, 365, 366, 367, 400, 800, 5000 })
            c.steps (seq[i], n, seq[i + n], seq[i - n]);

    /* The dropped days: stepping leaves them without ever jumping (they
     * run on into the first Gregorian day). */
    for (TavDate gap = oracle.jump_from;;) {
        if (++gap.day > oracle.length (gap.year, gap.month))
            gap = { gap.year, gap.month + 1, 1 };
        if (tav_date_compare (&gap, &oracle.jump_to) >= 0)
            break;
        c.day_number (oracle, gap);
        c.walk (oracle, gap, 800);
    }
    EXPECT_EQ (c.bad, 0);
}

INSTANTIATE_TEST_SUITE_P (Reforms, DayStepping, ::testing::Values ("es", "en", "ru"),
                          [] (const ::testing::TestParamInfo<const char *> &info) { return std::string (info.param); });

/* Dates that are not days of their month (day 0, negative days, days past
 * the month's end) step exactly as the one-day definition moves them. */
TEST (DaySteppingOutsideTheMonth, StartsFollowTheOneDayDefinition)
{
    auto p = processor_for (nullptr);
    Checker c { p.get (), "en" };
    for (const TavDate &start : { TavDate { 2009, 1, 29 }, { 2009, 1, 31 }, { 2009, 1, 0 }, { 2009, 0, -3 },
                                  { 2009, 3, 31 }, { 2009, 11, 45 }, { 2009, 0, 0 }, { 1752, 8, 31 }, { 2008, 1, 30 } })
        c.walk (Oracle::for_system ("en"), start, 400);
    EXPECT_EQ (c.bad, 0);

    /* Far below day 1 the day just keeps falling. */
    TavDate low = { 2009, 0, -10 };
    tav_calendar_processor_dec_date_by_days (p.get (), &low, 1000000);
    EXPECT_EQ (str (low), "2009-0--1000010");
}

/* The largest step counts and the extreme ends of the field ranges stay
 * exact (a long step comes back with the same long step) and never trip
 * the sanitizers. */
TEST (DaySteppingExtremes, CountsAndFieldsStayExact)
{
    for (const char *system : { "es", "en", "ru" }) {
        SCOPED_TRACE (system);
        auto p = processor_for (system);
        for (const TavDate &start : { TavDate { 2009, 0, 1 }, { 1500, 5, 15 }, { -3000, 11, 31 }, { 1752, 8, 2 } })
            for (int n : { G_MAXINT, G_MAXINT - 1, 1 << 30, 123456789 }) {
                TavDate d = start;
                tav_calendar_processor_inc_date_by_days (p.get (), &d, n);
                EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (p.get (), start, d), n) << str (start) << " + " << n;
                tav_calendar_processor_dec_date_by_days (p.get (), &d, n);
                EXPECT_EQ (str (d), str (start)) << n;
            }
        /* 5.8 million years ahead is still a real date of the calendar. */
        TavDate far = { 2009, 0, 1 };
        tav_calendar_processor_inc_date_by_days (p.get (), &far, G_MAXINT);
        EXPECT_TRUE (tav_date_is_valid (&far)) << str (far);

        /* Fields at the ends of their ranges: any answer, but a defined one.
         * Month steps take no day above 31. */
        const TavDate ordinary = { 2009, 0, 1 };
        for (const TavDate &e : { TavDate { G_MAXINT, 11, 31 }, { G_MININT, 0, 1 }, { 2009, 0, G_MAXINT }, { 2009, 0, G_MININT },
                                  { G_MAXINT, 0, G_MININT }, { G_MININT, 11, G_MAXINT } }) {
            SCOPED_TRACE (str (e));
            for (auto step : { tav_calendar_processor_inc_date, tav_calendar_processor_dec_date,
                               tav_calendar_processor_next_weekday, tav_calendar_processor_inc_month })
                if (TavDate d = e; step != tav_calendar_processor_inc_month || d.day <= 31)
                    step (p.get (), &d);
            for (auto step : { tav_calendar_processor_inc_date_by_days, tav_calendar_processor_dec_date_by_days,
                               tav_calendar_processor_inc_month_by_count })
                if (TavDate d = e; step != tav_calendar_processor_inc_month_by_count || d.day <= 31)
                    step (p.get (), &d, G_MAXINT);
            tav_calendar_processor_date_to_week_number (p.get (), &e);
            tav_calendar_processor_date_to_day_of_year (p.get (), &e);
            tav_calendar_processor_date_to_julian_day_number (p.get (), &e);
            tav_calendar_processor_get_date_interval_in_days (p.get (), e, ordinary);
            tav_calendar_processor_get_date_interval_in_days (p.get (), ordinary, e);
        }
        TavDateInterval week;
        EXPECT_FALSE (tav_calendar_processor_get_week (p.get (), G_MAXINT, 0, &week));
        EXPECT_TRUE (tav_calendar_processor_get_week (p.get (), G_MININT, 10, &week));
    }
}
