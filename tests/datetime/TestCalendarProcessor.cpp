/* The calendar processor against independent oracles: GLib's GDate for the
 * proleptic Gregorian calendar, a Julian day count written here, ISO 8601
 * weeks and the "four days of the new year" rule for every first day. */

#include "TestSupport.h"

#include <functional>
#include <string>

#include "DateTestSupport.h"
#include "TavCalendarProcessor.h"
#include "TavCalendarProcessorInternal.h"
#include "TavDateInternal.h"

using tav::GRefPtr;
using tav::test::EnvGuard;
using tav::test::FixedClock;
using tav::test::LogCapture;
using tav::test::processor_for;
using tav::test::str;

namespace {

TavDate from_gdate (const GDate *g)
{
    return TavDate { g_date_get_year (g), static_cast<int> (g_date_get_month (g)) - 1, g_date_get_day (g) };
}

/* Every date from 1 January 1970 to 31 December 2037 with its GDate twin. */
void for_each_supported_date (const std::function<void (const TavDate &, const GDate *)> &fn)
{
    GDate *g = g_date_new_dmy (1, G_DATE_JANUARY, 1970);
    for (; g_date_get_year (g) <= 2037; g_date_add_days (g, 1))
        fn (from_gdate (g), g);
    g_date_free (g);
}

/* Week number by the general rule: week 1 is the week holding 1 January
 * when 1 January falls in the first four days of the week, otherwise the
 * week after it. Day numbers are GDate's. */
guint week1_start (int year, int first_day)
{
    GDate *jan1 = g_date_new_dmy (1, G_DATE_JANUARY, year);
    guint j = g_date_get_julian (jan1);
    int weekday = g_date_get_weekday (jan1) % 7; /* 0 = Sunday */
    g_date_free (jan1);
    int position = (weekday - first_day + 7) % 7;
    return position <= 3 ? j - position : j + (7 - position);
}

int rule_week_number (const GDate *g, int first_day)
{
    int year = g_date_get_year (g);
    guint j = g_date_get_julian (g);
    if (j >= week1_start (year + 1, first_day))
        return 1;
    guint start = week1_start (year, first_day);
    if (j < start)
        start = week1_start (year - 1, first_day);
    return static_cast<int> ((j - start) / 7) + 1;
}

} // namespace

TEST (CalendarProcessor, ReformIsChosenFromTheEnvironment)
{
    struct {
        const char *label;
        const char *calendar_system, *language, *lc_all, *lc_messages, *lang;
        CalendarReform expected;
    } rows[] = {
        { "nothing set", nullptr, nullptr, nullptr, nullptr, nullptr, CalendarReformBritain },
        { "LANG=ru_RU", nullptr, nullptr, nullptr, nullptr, "ru_RU", CalendarReformRussia },
        { "LANG=es_ES", nullptr, nullptr, nullptr, nullptr, "es_ES.UTF-8", CalendarReformSpain },
        { "CALENDAR_SYSTEM first", "es", nullptr, nullptr, nullptr, "ru_RU", CalendarReformSpain },
        { "empty CALENDAR_SYSTEM skipped", "", "ru", nullptr, nullptr, "es", CalendarReformRussia },
        { "LANGUAGE before LC_ALL", nullptr, "es", "ru_RU", nullptr, nullptr, CalendarReformSpain },
        { "LC_ALL before LC_MESSAGES", nullptr, nullptr, "ru_RU", "es_ES", nullptr, CalendarReformRussia },
        { "LC_MESSAGES before LANG", nullptr, nullptr, nullptr, "es_ES", "ru_RU", CalendarReformSpain },
        { "case ignored", "RU", nullptr, nullptr, nullptr, nullptr, CalendarReformRussia },
        { "C locale", nullptr, nullptr, "C", nullptr, "ru_RU", CalendarReformBritain },
        { "other language", nullptr, "de_DE", nullptr, nullptr, "ru_RU", CalendarReformBritain },
        { "one letter", "r", nullptr, nullptr, nullptr, "es", CalendarReformBritain },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        EnvGuard env;
        env.set ("CALENDAR_SYSTEM", row.calendar_system).set ("LANGUAGE", row.language).set ("LC_ALL", row.lc_all);
        env.set ("LC_MESSAGES", row.lc_messages).set ("LANG", row.lang);
        auto p = GRefPtr<TavCalendarProcessor>::adopt (tav_calendar_processor_new ());
        EXPECT_EQ (tav_calendar_processor_get_reform (p.get ()), row.expected);
    }
    /* Fixed at creation. */
    auto p = processor_for ("ru");
    EnvGuard env;
    env.set ("CALENDAR_SYSTEM", "es");
    EXPECT_EQ (tav_calendar_processor_get_reform (p.get ()), CalendarReformRussia);
}

TEST (CalendarProcessor, LeapYearsAndMonthsFollowTheReformYear)
{
    struct { int year; bool spain, britain, russia; } rows[] = {
        { 1900, false, false, true }, { 1700, false, true, true }, { 1600, true, true, true },
        { 1500, true, true, true },   { 4, false, false, false },  { 8, true, true, true },
        { 0, true, true, true },      { -4, true, true, true },    { 2000, true, true, true },
        { 2100, false, false, false }, { 1752, true, true, true }, { 1582, false, false, false },
    };
    auto es = processor_for ("es"), en = processor_for ("en"), ru = processor_for ("ru");
    for (const auto &row : rows) {
        SCOPED_TRACE (row.year);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (es.get (), row.year)), row.spain);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (en.get (), row.year)), row.britain);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (ru.get (), row.year)), row.russia);
    }
    /* The month tables follow the leap rule; the reform gap shortens no month. */
    EXPECT_EQ (tav_calendar_processor_month_length (en.get (), 4, 1), 28);
    EXPECT_EQ (tav_calendar_processor_month_length (en.get (), 1752, 8), 30);
    const TavDate end_of_1752 = { 1752, 11, 31 };
    EXPECT_EQ (tav_calendar_processor_date_to_day_of_year (en.get (), &end_of_1752), 366);
}

TEST (CalendarProcessor, GregorianTestKeepsTheRussianAsymmetry)
{
    struct { const char *system; TavDate date; bool gregorian; } rows[] = {
        { "es", { 1582, 9, 4 }, false },  { "es", { 1582, 9, 5 }, true },   { "es", { 1582, 9, 15 }, true },
        { "en", { 1752, 8, 2 }, false },  { "en", { 1752, 8, 3 }, true },   { "en", { 1700, 0, 1 }, false },
        { "ru", { 1918, 0, 31 }, false }, { "ru", { 1918, 1, 14 }, false }, { "ru", { 1918, 1, 28 }, false },
        { "ru", { 1918, 2, 1 }, true },   { "ru", { 1918, 1, 31 }, false }, { "ru", { 2009, 0, 1 }, true },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (std::string (row.system) + " " + str (row.date));
        auto p = processor_for (row.system);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_date_is_gregorian (p.get (), &row.date)), row.gregorian);
    }
}

TEST (CalendarProcessor, UnknownCalendarSystemIsGregorianWithoutLeapYears)
{
    auto p = processor_for ("en");
    tav_calendar_processor_set_reform_for_testing (p.get (), 7);
    LogCapture capture;
    TavDate d = { 1600, 0, 1 };
    EXPECT_TRUE (tav_calendar_processor_date_is_gregorian (p.get (), &d));
    EXPECT_TRUE (capture.has_warning ("Unknown calendar system 7")) << capture.dump ();
    EXPECT_EQ (capture.count_lines_from (tav::test::LoggedLine::LibWarning, "tav_calendar_processor_date_is_gregorian"), 1);
    EXPECT_FALSE (tav_calendar_processor_is_leap_year (p.get (), 2000));
    EXPECT_EQ (tav_calendar_processor_month_length (p.get (), 2000, 1), 28);
    /* No jump: every day exists, and stepping agrees with the day count. */
    TavDate gap = { 1752, 8, 2 };
    tav_calendar_processor_inc_date (p.get (), &gap);
    EXPECT_EQ (str (gap), "1752-8-3");
    TavDate far = { 1700, 0, 1 };
    tav_calendar_processor_inc_date_by_days (p.get (), &far, 365 * 300 + 59);
    EXPECT_EQ (str (far), "2000-2-1");
    EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (p.get (), TavDate { 1700, 0, 1 }, far), 365 * 300 + 59);
}

/* Day numbers, weekdays, days of the year and month lengths against GDate,
 * and week numbers and the weeks of every year against the four-day rule
 * for every first day (and against GDate's ISO 8601 weeks for Monday), over
 * every supported date. */
TEST (CalendarProcessor, SupportedDatesMatchGDateAndTheFourDayWeekRule)
{
    auto p = processor_for (nullptr);
    auto day_of = [] (guint julian) {
        GDate g;
        g_date_clear (&g, 1);
        g_date_set_julian (&g, julian);
        return str (from_gdate (&g));
    };
    for (int first = 0; first <= 6; first++) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (first));
        int mismatches = 0;
        for_each_supported_date ([&] (const TavDate &d, const GDate *g) {
            int week = tav_calendar_processor_date_to_week_number (p.get (), &d);
            bool ok = week == rule_week_number (g, first)
                      && (first != 1 || week == static_cast<int> (g_date_get_iso8601_week_of_year (g)));
            if (first == 0)
                ok = ok && tav_calendar_processor_date_to_julian_day_number (p.get (), &d) == g_date_get_julian (g) + 1721425
                     && tav_calendar_processor_date_to_day_of_week (p.get (), &d) == g_date_get_weekday (g) % 7
                     && tav_calendar_processor_date_to_day_of_year (p.get (), &d)
                            == static_cast<int> (g_date_get_day_of_year (g))
                     && tav_calendar_processor_month_length (p.get (), d.year, static_cast<guint> (d.month))
                            == g_date_get_days_in_month (g_date_get_month (g), g_date_get_year (g));
            if (!ok && ++mismatches < 5)
                ADD_FAILURE () << "first day " << first << ": " << str (d) << " week " << week;
        });
        for (int year = 1971; year <= 2036; year++) {
            guint start = week1_start (year, first), weeks = (week1_start (year + 1, first) - start) / 7;
            for (guint week = 0; week <= 53; week++) {
                TavDateInterval result = { { 1, 1, 1 }, { 1, 1, 1 } };
                gboolean found = tav_calendar_processor_get_week (p.get (), year, week, &result);
                std::string got = found ? str (result.start) + ".." + str (result.end) : "none";
                std::string expected = week >= 1 && week <= weeks
                                           ? day_of (start + 7 * (week - 1)) + ".." + day_of (start + 7 * week - 1) : "none";
                if (got != expected && ++mismatches < 5)
                    ADD_FAILURE () << "first day " << first << ": week " << week << " of " << year << " is " << got;
            }
        }
        EXPECT_EQ (mismatches, 0) << "first day " << first;
    }
    /* The result pointer is optional. */
    EXPECT_TRUE (tav_calendar_processor_get_week (p.get (), 2009, 10, nullptr));
    EXPECT_FALSE (tav_calendar_processor_get_week (p.get (), 2009, 0, nullptr));
}

/* Below its epoch the day number stops at 0, above the guint range at its
 * top. */
TEST (CalendarProcessor, JulianDayNumbersStopAtTheEndsOfTheirRange)
{
    auto p = processor_for (nullptr);
    struct { TavDate date; guint jdn; } rows[] = {
        { { -4800, 0, 1 }, 0u }, { { G_MININT32, 0, 1 }, 0u }, { { G_MAXINT32, 11, 31 }, G_MAXUINT32 },
        { { -4712, 0, 1 }, 0u }, { { -4712, 0, 2 }, 1u },
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &row.date), row.jdn) << str (row.date);
}

/* Weeks start on Sunday until told otherwise; the last day is the one
 * before the first. Working days stay Monday to Friday whatever the first. */
TEST (CalendarProcessor, FirstAndLastDaysOfTheWeekAndWorkdays)
{
    auto p = processor_for (nullptr);
    EXPECT_EQ (tav_calendar_processor_get_first_day_of_week (p.get ()), 0);
    struct { TavDate date; int weekday; const char *next; } rows[] = {
        { { 2009, 2, 6 }, 5, "2009-2-9" },   /* Friday -> Monday */
        { { 2009, 2, 7 }, 6, "2009-2-9" },   /* Saturday */
        { { 2009, 2, 8 }, 0, "2009-2-9" },   /* Sunday */
        { { 2009, 2, 9 }, 1, "2009-2-10" },  /* Monday */
        { { 2009, 11, 31 }, 4, "2010-0-1" }, /* Thursday over the year */
        { { 1752, 8, 2 }, 3, "1752-8-14" },  /* Wednesday over the reform to Thursday */
    };
    for (int first : { 0, 1, 6 }) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (first));
        const int last = (first + 6) % 7;
        EXPECT_EQ (tav_calendar_processor_get_last_day_of_week (p.get ()), last);
        for (const auto &row : rows) {
            SCOPED_TRACE (str (row.date) + " first day " + std::to_string (first));
            EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_date_weekday (p.get (), &row.date)),
                       row.weekday != 0 && row.weekday != 6);
            EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_first_day_of_week (p.get (), &row.date)), row.weekday == first);
            EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_last_day_of_week (p.get (), &row.date)), row.weekday == last);
            TavDate d = row.date;
            tav_calendar_processor_next_weekday (p.get (), &d);
            EXPECT_EQ (str (d), row.next);
        }
    }
}

/* A month step (count -1 here) keeps the day and skips months too short
 * for it, with an odd modulus that sends November and December back into
 * the same year; a step by count clamps the day and stops at 2037. */
TEST (CalendarProcessor, MonthSteps)
{
    auto p = processor_for (nullptr);
    struct { TavDate from; int count; const char *expected; } rows[] = {
        { { 2009, 0, 31 }, -1, "2009-2-31" },  /* February cannot hold 31: skipped */
        { { 2009, 0, 15 }, -1, "2009-1-15" },
        { { 2009, 10, 15 }, -1, "2009-0-15" }, /* November to January, same year */
        { { 2009, 11, 15 }, -1, "2009-1-15" }, /* December to February, same year */
        { { 2009, 11, 30 }, -1, "2009-2-30" },
        { { 2009, 2, 31 }, -1, "2009-4-31" },  /* April too short */
        { { 2009, 9, 31 }, -1, "2009-0-31" },  /* November too short, wraps to January */
        { { 2009, 0, 31 }, 1, "2009-1-28" },  { { 2008, 0, 31 }, 1, "2008-1-29" },
        { { 2037, 10, 15 }, 3, "2037-11-15" }, { { 2037, 0, 31 }, 100, "2037-11-31" },
        { { 2008, 11, 10 }, 1, "2009-0-10" },  { { 2009, 2, 31 }, 0, "2009-2-31" },
        { { 2009, 2, 31 }, 1, "2009-3-30" },   { { 2009, 5, 15 }, 12, "2009-5-15" }, /* same month: no year */
        { { 2009, 5, 15 }, 19, "2010-0-15" },  { { 2009, 5, 15 }, 30, "2009-11-15" }, /* the year moves only when the month number falls */
        { { 2009, 11, 15 }, 25, "2010-0-15" }, /* and then once, whatever the count */
        { { 2036, 11, 1 }, 1, "2037-0-1" },
    };
    for (const auto &row : rows) {
        TavDate d = row.from;
        if (row.count < 0)
            tav_calendar_processor_inc_month (p.get (), &d);
        else
            tav_calendar_processor_inc_month_by_count (p.get (), &d, row.count);
        EXPECT_EQ (str (d), row.expected) << str (row.from) << " + " << row.count;
    }
}

TEST (CalendarProcessor, IntervalInDaysCountsStepsForwardAndFieldsBackward)
{
    auto en = processor_for ("en");
    struct { TavDate from, to; int expected; } rows[] = {
        { { 2009, 0, 1 }, { 2009, 1, 1 }, 31 },
        { { 2009, 1, 1 }, { 2009, 0, 1 }, -1 },      /* months differ */
        { { 2009, 0, 1 }, { 2009, 0, 1 }, 0 },
        { { 2009, 0, 20 }, { 2009, 0, 5 }, -15 },    /* days differ */
        { { 2011, 0, 1 }, { 2009, 5, 30 }, -2 },     /* years differ */
        { { 1970, 0, 1 }, { 2037, 11, 31 }, 24836 }, { { 2008, 1, 28 }, { 2008, 2, 1 }, 2 },
        { { 1752, 8, 1 }, { 1752, 8, 15 }, 3 },      /* 11 days dropped */
        { { 1752, 7, 31 }, { 1753, 0, 1 }, 112 },
        { { G_MAXINT, 0, 1 }, { G_MININT, 0, 1 }, G_MININT }, /* saturated, as tav_date_compare gives it */
        /* A target that stepping never lands on is counted up to the first
         * day stepping reaches after it, rather than looping for ever. */
        { { 1752, 8, 1 }, { 1752, 8, 5 }, 2 },     /* dropped day: counts to 14 September */
        { { 1752, 7, 31 }, { 1752, 8, 13 }, 3 },
        { { 2009, 1, 20 }, { 2009, 1, 30 }, 9 },   /* 30 February: counts to 1 March */
        { { 2009, 1, 20 }, { 2009, 12, 1 }, 315 }, /* month 12 comes after December: 1 January 2010 */
        { { 2009, 1, 20 }, { 2009, 2, 0 }, 9 },    /* day 0 of March: 1 March */
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (en.get (), row.from, row.to), row.expected)
            << str (row.from) << " -> " << str (row.to);
}

TEST (CalendarProcessor, ThisWeekHoldsToday)
{
    struct { int first; const char *expected; } rows[] = {
        { 0, "2009-2-1..2009-2-7" },  /* Sunday weeks */
        { 1, "2009-2-2..2009-2-8" },  /* Monday weeks */
        { 4, "2009-2-5..2009-2-11" }, /* today is the first day */
        { 5, "2009-1-27..2009-2-5" }, /* today is the last day */
    };
    FixedClock clock (2009, 2, 5, 10, 0); /* Thursday 5 March 2009 */
    auto p = processor_for (nullptr);
    for (const auto &row : rows) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (row.first));
        TavDateInterval week;
        tav_calendar_processor_get_this_week (p.get (), &week);
        EXPECT_EQ (str (week.start) + ".." + str (week.end), row.expected) << row.first;
    }
}

/* A bad argument logs one critical naming the failed check, leaves the date
 * alone and gives the neutral value. */
TEST (CalendarProcessor, BadArgumentsWarnAndReturnNeutralValues)
{
    auto p = processor_for (nullptr);
    TavCalendarProcessor *proc = p.get ();
    const TavDate ok = { 2009, 0, 1 };
    auto wrong = GRefPtr<GObject>::adopt (G_OBJECT (g_object_new (G_TYPE_OBJECT, nullptr)));
    const char *kMonth = "date->month >= 0 && date->month <= 11";
    auto expect_one_critical = [] (const char *condition, const std::function<bool ()> &call) {
        LogCapture capture;
        EXPECT_TRUE (call ());
        EXPECT_CRITICAL (capture, condition);
        EXPECT_EQ (capture.lines ().size (), 1u) << capture.dump ();
    };

    /* Calls on a processor and a date: true for the neutral answer. Each is
     * made without a processor (and with an object that is none), without
     * a date and, where marked, with month 12. */
    struct {
        const char *label;
        std::function<bool (TavCalendarProcessor *, TavDate *)> call;
        bool checks_processor, checks_month;
    } rows[] = {
        { "is_gregorian", [] (auto *p, auto *d) { return !tav_calendar_processor_date_is_gregorian (p, d); }, true, false },
        { "jdn", [] (auto *p, auto *d) { return tav_calendar_processor_date_to_julian_day_number (p, d) == 0; }, true, false },
        { "day_of_week", [] (auto *p, auto *d) { return tav_calendar_processor_date_to_day_of_week (p, d) == 1; }, true, false },
        { "is_first", [] (auto *p, auto *d) { return !tav_calendar_processor_is_first_day_of_week (p, d); }, true, false },
        { "is_last", [] (auto *p, auto *d) { return !tav_calendar_processor_is_last_day_of_week (p, d); }, true, false },
        { "is_weekday", [] (auto *p, auto *d) { return !tav_calendar_processor_is_date_weekday (p, d); }, true, false },
        { "week_number", [] (auto *p, auto *d) { return tav_calendar_processor_date_to_week_number (p, d) == 0; }, true, false },
        { "day_of_year", [] (auto *p, auto *d) { return tav_calendar_processor_date_to_day_of_year (p, d) == -1; }, true, true },
        { "inc_date", [] (auto *p, auto *d) { tav_calendar_processor_inc_date (p, d); return true; }, true, true },
        { "dec_date", [] (auto *p, auto *d) { tav_calendar_processor_dec_date (p, d); return true; }, false, true },
        { "inc_by_days", [] (auto *p, auto *d) { tav_calendar_processor_inc_date_by_days (p, d, 3); return true; }, true, true },
        { "dec_by_days", [] (auto *p, auto *d) { tav_calendar_processor_dec_date_by_days (p, d, 3); return true; }, true, true },
        { "inc_month", [] (auto *p, auto *d) { tav_calendar_processor_inc_month (p, d); return true; }, true, true },
        { "inc_month_by_count", [] (auto *p, auto *d) { tav_calendar_processor_inc_month_by_count (p, d, 1); return true; },
          true, true },
        { "next_weekday", [] (auto *p, auto *d) { tav_calendar_processor_next_weekday (p, d); return true; }, true, true },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        TavDate d = ok;
        for (auto *bad : { static_cast<TavCalendarProcessor *> (nullptr), reinterpret_cast<TavCalendarProcessor *> (wrong.get ()) })
            if (row.checks_processor)
                expect_one_critical ("TAV_IS_CALENDAR_PROCESSOR(processor)", [&] { return row.call (bad, &d) && str (d) == str (ok); });
        expect_one_critical ("date != NULL", [&] { return row.call (proc, nullptr); });
        d = { 2009, 12, 1 };
        if (row.checks_month)
            expect_one_critical (kMonth, [&] { return row.call (proc, &d) && str (d) == "2009-12-1"; });
    }
    /* Days at the ends of int are answered without overflow (the
     * sanitizer build traps it). */
    for (int month : { 0, 11 })
        for (int day : { G_MININT, G_MAXINT }) {
            TavDate e = { 2009, month, day };
            (void) tav_calendar_processor_date_to_week_number (proc, &e);
        }

    TavDate d = ok;
    TavDateInterval interval;
    struct { const char *condition; std::function<bool ()> call; } others[] = {
        { "TAV_IS_CALENDAR_PROCESSOR (processor)", [] { tav_calendar_processor_set_first_day_of_week (nullptr, 1); return true; } },
        { "first_day_of_week >= 0 && first_day_of_week <= 6",
          [&] { tav_calendar_processor_set_first_day_of_week (proc, 7);
                return tav_calendar_processor_get_first_day_of_week (proc) == 0 && tav_calendar_processor_get_last_day_of_week (proc) == 6; } },
        { "TAV_IS_CALENDAR_PROCESSOR(processor)", [] { return !tav_calendar_processor_is_leap_year (nullptr, 2000); } },
        { "month <= 11", [&] { return tav_calendar_processor_month_length (proc, 2009, 12) == -1; } },
        { "ndays >= 0", [&] { tav_calendar_processor_inc_date_by_days (proc, &d, -1); return str (d) == "2009-0-1"; } },
        { "ndays >= 0", [&] { tav_calendar_processor_dec_date_by_days (proc, &d, -5); return str (d) == "2009-0-1"; } },
        { "count >= 0", [&] { tav_calendar_processor_inc_month_by_count (proc, &d, -1); return str (d) == "2009-0-1"; } },
        { "TAV_IS_CALENDAR_PROCESSOR(processor)",
          [&] { return tav_calendar_processor_get_date_interval_in_days (nullptr, d, TavDate { 2010, 0, 1 }) == 0; } },
        { "TAV_IS_CALENDAR_PROCESSOR(processor)", [] { return !tav_calendar_processor_get_week (nullptr, 2009, 1, nullptr); } },
        { "week >= 0 && week <= 53", [&] { return !tav_calendar_processor_get_week (proc, 2009, 54, nullptr); } },
        { "TAV_IS_CALENDAR_PROCESSOR(processor)", [&] { tav_calendar_processor_get_this_week (nullptr, &interval); return true; } },
        { "interval != NULL", [&] { tav_calendar_processor_get_this_week (proc, nullptr); return true; } },
    };
    for (const auto &row : others)
        expect_one_critical (row.condition, row.call);

    /* The month length and the step back need no processor. */
    LogCapture capture;
    EXPECT_EQ (tav_calendar_processor_month_length (nullptr, 2008, 1), 29);
    TavDate back = { 1752, 8, 14 };
    tav_calendar_processor_dec_date (nullptr, &back);
    EXPECT_EQ (str (back), "1752-8-2");
    EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
}

using CalendarProcessorDeathTest = ::testing::Test;

TEST (CalendarProcessorDeathTest, MonthSteppingAbortsOnDaysAbove31)
{
    auto p = processor_for (nullptr);
    TavDate d = { 2009, 0, 32 };
    EXPECT_DEATH (tav_calendar_processor_inc_month (p.get (), &d), "date->day <= 31");
    EXPECT_DEATH (tav_calendar_processor_inc_month_by_count (p.get (), &d, 1), "date->day <= 31");
}
