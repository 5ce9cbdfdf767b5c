/* Stepping by many days at once must give exactly what as many one-day
 * steps give. The oracle here is the one-day step written out from the
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

#include "ProcessorTestSupport.h"
#include "TavCalendarProcessor.h"

using tav::GRefPtr;
using tav::test::processor_for;
using tav::test::str;

namespace {

struct Oracle {
    int reform_year; /* last year of the Julian leap rule */
    TavDate jump_from, jump_to;

    static Oracle for_system (const std::string &system)
    {
        if (system == "es")
            return { 1582, { 1582, 9, 4 }, { 1582, 9, 15 } };
        if (system == "ru")
            return { 1918, { 1918, 0, 31 }, { 1918, 1, 14 } };
        return { 1752, { 1752, 8, 2 }, { 1752, 8, 14 } };
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

    static bool same (const TavDate &a, const TavDate &b) { return a.year == b.year && a.month == b.month && a.day == b.day; }

    void inc (TavDate &d) const
    {
        if (same (d, jump_from)) {
            d = jump_to;
            return;
        }
        d.day++;
        if (d.day > length (d.year, d.month)) {
            d.day = 1;
            d.month++;
            if (d.month > 11) {
                d.month = 0;
                d.year++;
            }
        }
    }

    void dec (TavDate &d) const
    {
        if (same (d, jump_to)) {
            d = jump_from;
            return;
        }
        if (d.day == 1) {
            d.month--;
            if (d.month < 0) {
                d.month = 11;
                d.year--;
            }
            d.day = length (d.year, d.month);
        } else {
            d.day--;
        }
    }

    /* The library's definition of the interval: step until equal. */
    int steps_between (TavDate from, const TavDate &to) const
    {
        int n = 0;
        while (!same (from, to)) {
            inc (from);
            n++;
        }
        return n;
    }
};

/* Every date that stepping visits from @first to @last, in order. */
std::vector<TavDate> forward_sequence (const Oracle &oracle, TavDate first, const TavDate &last)
{
    std::vector<TavDate> seq;
    for (TavDate d = first; tav_date_compare (&d, &last) <= 0; oracle.inc (d))
        seq.push_back (d);
    return seq;
}

long index_of (const std::vector<TavDate> &seq, const TavDate &d)
{
    auto it = std::lower_bound (seq.begin (), seq.end (), d,
                                [] (const TavDate &a, const TavDate &b) { return tav_date_compare (&a, &b) < 0; });
    if (it == seq.end () || !Oracle::same (*it, d))
        return -1;
    return it - seq.begin ();
}

/* Step counts from 0 up to 68 years, denser where months and years turn. */
std::vector<int> step_spread ()
{
    std::vector<int> steps;
    for (int n = 0; n <= 32; n++)
        steps.push_back (n);
    for (int n : { 58, 59, 60, 61, 89, 90, 91, 180, 364, 365, 366, 367, 729, 730, 731, 1095, 1096, 1460, 1461,
                   1462, 3652, 3653, 10000, 14609, 20000, 24835, 24836, 24837 })
        steps.push_back (n);
    return steps;
}

struct Mismatches {
    int count = 0;
    void report (const std::string &what)
    {
        if (++count <= 8)
            ADD_FAILURE () << what;
    }
};

} // namespace

/* Every start date of the supported range, each with every step count of the
 * spread, forward, backward and as an interval. */
TEST (DayStepping, ExhaustiveOverTheSupportedYears)
{
    auto p = processor_for (nullptr);
    const Oracle oracle = Oracle::for_system ("en");
    /* The sequence runs 68 years past either end, so every step lands inside it. */
    const std::vector<TavDate> seq = forward_sequence (oracle, { 1901, 0, 1 }, { 2106, 11, 31 });
    const long first = index_of (seq, { 1970, 0, 1 });
    const long last = index_of (seq, { 2037, 11, 31 });
    ASSERT_GE (first, 0);
    ASSERT_EQ (last - first, 24836);

    /* The sequence itself: backward steps retrace it exactly. */
    for (long i = static_cast<long> (seq.size ()) - 1; i > 0; i--) {
        TavDate d = seq[i];
        oracle.dec (d);
        ASSERT_TRUE (Oracle::same (d, seq[i - 1])) << str (seq[i]);
    }

    const std::vector<int> steps = step_spread ();
    Mismatches bad;
    long checks = 0;
    for (long i = first; i <= last; i++) {
        const TavDate start = seq[i];
        TavDate one = start;
        tav_calendar_processor_inc_date (p.get (), &one);
        if (!Oracle::same (one, seq[i + 1]))
            bad.report ("inc_date " + str (start) + " gave " + str (one));
        one = start;
        tav_calendar_processor_dec_date (p.get (), &one);
        if (!Oracle::same (one, seq[i - 1]))
            bad.report ("dec_date " + str (start) + " gave " + str (one));

        for (int n : steps) {
            TavDate f = start, b = start;
            tav_calendar_processor_inc_date_by_days (p.get (), &f, n);
            tav_calendar_processor_dec_date_by_days (p.get (), &b, n);
            if (!Oracle::same (f, seq[i + n]))
                bad.report ("inc " + str (start) + " by " + std::to_string (n) + " gave " + str (f) + ", stepping gives "
                            + str (seq[i + n]));
            if (!Oracle::same (b, seq[i - n]))
                bad.report ("dec " + str (start) + " by " + std::to_string (n) + " gave " + str (b) + ", stepping gives "
                            + str (seq[i - n]));
            int interval = tav_calendar_processor_get_date_interval_in_days (p.get (), start, seq[i + n]);
            if (interval != n)
                bad.report ("interval " + str (start) + " -> " + str (seq[i + n]) + " gave " + std::to_string (interval)
                            + ", expected " + std::to_string (n));
            checks += 3;
        }
    }
    EXPECT_EQ (bad.count, 0);
    EXPECT_GT (checks, 24837L * 60 * 3);
}

/* Random starts from 1500 to 2037 under each reform, and every start within
 * a year of each reform gap (inside the gap included) with step counts that
 * cross it. */
class DaySteppingAcrossReforms : public ::testing::TestWithParam<const char *> {};

TEST_P (DaySteppingAcrossReforms, RandomAndAroundTheGap)
{
    const std::string system = GetParam ();
    auto p = processor_for (system.c_str ());
    const Oracle oracle = Oracle::for_system (system);
    const std::vector<TavDate> seq = forward_sequence (oracle, { 1300, 0, 1 }, { 2210, 11, 31 });
    const long lo = index_of (seq, { 1500, 0, 1 });
    const long hi = index_of (seq, { 2037, 11, 31 });
    ASSERT_GE (lo, 0);
    ASSERT_GT (hi, lo);
    const long reform = index_of (seq, oracle.jump_from);
    ASSERT_GE (reform, 0);
    ASSERT_TRUE (Oracle::same (seq[reform + 1], oracle.jump_to));

    Mismatches bad;
    auto check = [&] (long i, int n) {
        ASSERT_TRUE (i - n >= 0 && i + n < static_cast<long> (seq.size ()));
        const TavDate start = seq[i];
        TavDate f = start, b = start;
        tav_calendar_processor_inc_date_by_days (p.get (), &f, n);
        tav_calendar_processor_dec_date_by_days (p.get (), &b, n);
        if (!Oracle::same (f, seq[i + n]))
            bad.report (system + " inc " + str (start) + " by " + std::to_string (n) + " gave " + str (f) + ", stepping gives "
                        + str (seq[i + n]));
        if (!Oracle::same (b, seq[i - n]))
            bad.report (system + " dec " + str (start) + " by " + std::to_string (n) + " gave " + str (b) + ", stepping gives "
                        + str (seq[i - n]));
        int interval = tav_calendar_processor_get_date_interval_in_days (p.get (), start, seq[i + n]);
        if (interval != n)
            bad.report (system + " interval " + str (start) + " -> " + str (seq[i + n]) + " gave " + std::to_string (interval));
    };

    std::mt19937 rng (20091205u + static_cast<unsigned> (system[0]));
    std::uniform_int_distribution<long> start_dist (lo, hi);
    std::uniform_int_distribution<int> small (0, 400), large (0, 60000);
    for (int k = 0; k < 20000; k++) {
        long i = start_dist (rng);
        int n = (k % 4 == 0) ? large (rng) : small (rng);
        /* Both n steps back and n steps forward stay inside the sequence. */
        n = static_cast<int> (std::min<long> ({ static_cast<long> (n), i, static_cast<long> (seq.size ()) - 1 - i }));
        check (i, n);
    }
    /* Starts within a year of the jump, with counts that reach across it. */
    for (long i = reform - 366; i <= reform + 366; i++)
        for (int n : { 0, 1, 2, 5, 10, 11, 12, 13, 14, 15, 30, 31, 100, 365, 366, 367, 400, 800, 5000 })
            check (i, n);

    /* Starts inside the gap: the dropped days, which stepping leaves
     * without ever jumping (they run on into the first Gregorian day). */
    TavDate gap = oracle.jump_from;
    gap.day++;
    while (tav_date_compare (&gap, &oracle.jump_to) < 0) {
        if (gap.day > oracle.length (gap.year, gap.month)) {
            gap.day = 1;
            gap.month++;
            continue;
        }
        for (int n = 0; n <= 800; n++) {
            TavDate expected_f = gap, expected_b = gap;
            for (int s = 0; s < n; s++) {
                oracle.inc (expected_f);
                oracle.dec (expected_b);
            }
            TavDate f = gap, b = gap;
            tav_calendar_processor_inc_date_by_days (p.get (), &f, n);
            tav_calendar_processor_dec_date_by_days (p.get (), &b, n);
            if (!Oracle::same (f, expected_f))
                bad.report (system + " inc from gap day " + str (gap) + " by " + std::to_string (n) + " gave " + str (f)
                            + ", stepping gives " + str (expected_f));
            if (!Oracle::same (b, expected_b))
                bad.report (system + " dec from gap day " + str (gap) + " by " + std::to_string (n) + " gave " + str (b)
                            + ", stepping gives " + str (expected_b));
            if (n > 0) {
                int interval = tav_calendar_processor_get_date_interval_in_days (p.get (), gap, expected_f);
                if (interval != oracle.steps_between (gap, expected_f))
                    bad.report (system + " interval from gap day " + str (gap) + " to " + str (expected_f) + " gave "
                                + std::to_string (interval));
            }
        }
        gap.day++;
    }
    EXPECT_EQ (bad.count, 0);
}

INSTANTIATE_TEST_SUITE_P (Reforms, DaySteppingAcrossReforms, ::testing::Values ("es", "en", "ru"),
                          [] (const ::testing::TestParamInfo<const char *> &info) { return std::string (info.param); });

/* Dates that are not days of their month (day 0, negative days, days past
 * the month's end) step exactly as the one-day definition moves them. */
TEST (DayStepping, StartsOutsideTheMonthFollowTheOneDayDefinition)
{
    auto p = processor_for (nullptr);
    const Oracle oracle = Oracle::for_system ("en");
    const TavDate starts[] = {
        { 2009, 1, 29 }, { 2009, 1, 31 }, { 2009, 1, 0 }, { 2009, 0, -3 }, { 2009, 3, 31 },
        { 2009, 11, 45 }, { 2009, 0, 0 }, { 1752, 8, 31 }, { 2008, 1, 30 },
    };
    Mismatches bad;
    for (const TavDate &start : starts) {
        TavDate expected_f = start, expected_b = start;
        for (int n = 0; n <= 400; n++) {
            TavDate f = start, b = start;
            tav_calendar_processor_inc_date_by_days (p.get (), &f, n);
            tav_calendar_processor_dec_date_by_days (p.get (), &b, n);
            if (!Oracle::same (f, expected_f))
                bad.report ("inc " + str (start) + " by " + std::to_string (n) + " gave " + str (f) + ", stepping gives "
                            + str (expected_f));
            if (!Oracle::same (b, expected_b))
                bad.report ("dec " + str (start) + " by " + std::to_string (n) + " gave " + str (b) + ", stepping gives "
                            + str (expected_b));
            if (n > 0 && tav_date_compare (&expected_f, &start) > 0) {
                int interval = tav_calendar_processor_get_date_interval_in_days (p.get (), start, expected_f);
                if (interval != n)
                    bad.report ("interval " + str (start) + " -> " + str (expected_f) + " gave " + std::to_string (interval));
            }
            oracle.inc (expected_f);
            oracle.dec (expected_b);
        }
    }
    EXPECT_EQ (bad.count, 0);

    /* Far below day 1 the day just keeps falling. */
    TavDate low = { 2009, 0, -10 };
    tav_calendar_processor_dec_date_by_days (p.get (), &low, 1000000);
    EXPECT_EQ (str (low), "2009-0--1000010");
}

/* A target that stepping never lands on (a day dropped by the reform, a day
 * past the month's end) is counted up to the first day stepping reaches
 * after it, rather than looping for ever. */
TEST (DayStepping, UnreachableTargetsCountToTheNextReachedDay)
{
    auto p = processor_for ("en");
    struct {
        TavDate from, to;
        int expected;
    } rows[] = {
        { { 1752, 8, 1 }, { 1752, 8, 5 }, 2 },    /* dropped day: counts to 14 September */
        { { 1752, 7, 31 }, { 1752, 8, 13 }, 3 },
        { { 2009, 1, 20 }, { 2009, 1, 30 }, 9 },  /* 30 February: counts to 1 March */
        { { 2009, 1, 20 }, { 2009, 12, 1 }, 315 }, /* month 12 comes after December: 1 January 2010 */
        { { 2009, 1, 20 }, { 2009, 2, 0 }, 9 },   /* day 0 of March: 1 March */
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (p.get (), row.from, row.to), row.expected)
            << str (row.from) << " -> " << str (row.to);
}
