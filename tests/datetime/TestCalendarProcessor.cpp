/* The calendar processor against independent oracles: GLib's GDate for the
 * proleptic Gregorian calendar, a Julian day count written here, ISO 8601
 * weeks and the "four days of the new year" rule for every first day. */

#include "TestSupport.h"

#include <functional>
#include <string>

#include "ProcessorTestSupport.h"
#include "TavCalendarProcessor.h"
#include "TavCalendarProcessorInternal.h"
#include "TavDateInternal.h"

using tav::GRefPtr;
using tav::test::EnvGuard;
using tav::test::LogCapture;
using tav::test::processor_for;
using tav::test::str;

namespace {

time_t s_now_for_this_week = 0;

GDate *gdate_of (const TavDate &d)
{
    return g_date_new_dmy (d.day, static_cast<GDateMonth> (d.month + 1), d.year);
}

/* The Julian day number of a proleptic Gregorian date, by GDate. */
guint gregorian_jdn (const TavDate &d)
{
    GDate *g = gdate_of (d);
    guint jdn = g_date_get_julian (g) + 1721425;
    g_date_free (g);
    return jdn;
}

/* The Julian day number of a date in the Julian calendar (every fourth year
 * a leap year), counted from Julian 1 January of year 1 = JDN 1721424. */
guint julian_calendar_jdn (const TavDate &d)
{
    static const int before[] = { 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334 };
    long y = d.year - 1;
    long days = 365 * y + y / 4 + before[d.month] + (d.month > 1 && d.year % 4 == 0 ? 1 : 0) + d.day - 1;
    return static_cast<guint> (1721424 + days);
}

TavDate from_gdate (const GDate *g)
{
    return TavDate { g_date_get_year (g), static_cast<int> (g_date_get_month (g)) - 1, g_date_get_day (g) };
}

/* Every date from 1 January 1970 to 31 December 2037 with its GDate twin. */
void for_each_supported_date (const std::function<void (const TavDate &, const GDate *)> &fn)
{
    GDate *g = g_date_new_dmy (1, G_DATE_JANUARY, 1970);
    GDate *last = g_date_new_dmy (31, G_DATE_DECEMBER, 2037);
    while (g_date_compare (g, last) <= 0) {
        fn (from_gdate (g), g);
        g_date_add_days (g, 1);
    }
    g_date_free (g);
    g_date_free (last);
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
        { "LANG=en_GB", nullptr, nullptr, nullptr, nullptr, "en_GB", CalendarReformBritain },
        { "CALENDAR_SYSTEM first", "es", nullptr, nullptr, nullptr, "ru_RU", CalendarReformSpain },
        { "CALENDAR_SYSTEM=ru", "ru", nullptr, "en_US", nullptr, nullptr, CalendarReformRussia },
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
        env.set ("CALENDAR_SYSTEM", row.calendar_system)
            .set ("LANGUAGE", row.language)
            .set ("LC_ALL", row.lc_all)
            .set ("LC_MESSAGES", row.lc_messages)
            .set ("LANG", row.lang);
        auto p = GRefPtr<TavCalendarProcessor>::adopt (tav_calendar_processor_new ());
        EXPECT_EQ (tav_calendar_processor_get_reform (p.get ()), row.expected);
    }
}

TEST (CalendarProcessor, ReformIsFixedAtCreation)
{
    auto p = processor_for ("ru");
    EnvGuard env;
    env.set ("CALENDAR_SYSTEM", "es");
    EXPECT_EQ (tav_calendar_processor_get_reform (p.get ()), CalendarReformRussia);
}

TEST (CalendarProcessor, StepsJumpOverTheDroppedDaysOfEachReform)
{
    struct {
        const char *system;
        TavDate last_julian, first_gregorian;
        guint day_numbers_apart;
    } rows[] = {
        { "es", { 1582, 9, 4 }, { 1582, 9, 15 }, 1 },
        { "en", { 1752, 8, 2 }, { 1752, 8, 14 }, 1 },
        /* 14 February 1918 still counts as Julian in the day number. */
        { "ru", { 1918, 0, 31 }, { 1918, 1, 14 }, 14 },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.system);
        auto p = processor_for (row.system);
        TavDate d = row.last_julian;
        tav_calendar_processor_inc_date (p.get (), &d);
        EXPECT_EQ (str (d), str (row.first_gregorian));
        tav_calendar_processor_dec_date (p.get (), &d);
        EXPECT_EQ (str (d), str (row.last_julian));
        EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &row.first_gregorian)
                       - tav_calendar_processor_date_to_julian_day_number (p.get (), &row.last_julian),
                   row.day_numbers_apart);
        EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (p.get (), row.last_julian, row.first_gregorian), 1);
    }
    /* Other reforms' jumps are ordinary days. */
    auto britain = processor_for ("en");
    TavDate d = { 1582, 9, 4 };
    tav_calendar_processor_inc_date (britain.get (), &d);
    EXPECT_EQ (str (d), "1582-9-5");
}

TEST (CalendarProcessor, LeapYearsFollowTheReformYear)
{
    struct {
        int year;
        bool spain, britain, russia;
    } rows[] = {
        { 1900, false, false, true }, { 1700, false, true, true },  { 1600, true, true, true },
        { 1500, true, true, true },   { 4, false, false, false },   { 8, true, true, true },
        { 0, true, true, true },      { -4, true, true, true },     { 2000, true, true, true },
        { 2100, false, false, false }, { 2009, false, false, false }, { 1918, false, false, false },
        { 1752, true, true, true },   { 1582, false, false, false }, { 1800, false, false, true },
    };
    auto es = processor_for ("es"), en = processor_for ("en"), ru = processor_for ("ru");
    for (const auto &row : rows) {
        SCOPED_TRACE (row.year);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (es.get (), row.year)), row.spain);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (en.get (), row.year)), row.britain);
        EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_leap_year (ru.get (), row.year)), row.russia);
    }
    /* The month tables follow the leap rule. */
    EXPECT_EQ (tav_calendar_processor_month_length (ru.get (), 1900, 1), 29);
    EXPECT_EQ (tav_calendar_processor_month_length (en.get (), 1900, 1), 28);
    EXPECT_EQ (tav_calendar_processor_month_length (en.get (), 4, 1), 28);
    TavDate feb28 = { 1700, 1, 28 };
    tav_calendar_processor_inc_date (en.get (), &feb28);
    EXPECT_EQ (str (feb28), "1700-1-29");
    tav_calendar_processor_inc_date (es.get (), &(feb28 = { 1700, 1, 28 }));
    EXPECT_EQ (str (feb28), "1700-2-1");
}

TEST (CalendarProcessor, GregorianTestKeepsTheRussianAsymmetry)
{
    struct {
        const char *system;
        TavDate date;
        bool gregorian;
    } rows[] = {
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

TEST (CalendarProcessor, JulianDayNumbersAndWeekdaysMatchGDateAfterTheReform)
{
    auto p = processor_for (nullptr);
    TavDate y2k = { 2000, 0, 1 };
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &y2k), 2451545u);
    EXPECT_EQ (tav_calendar_processor_date_to_day_of_week (p.get (), &y2k), 6);

    int mismatches = 0;
    for_each_supported_date ([&] (const TavDate &d, const GDate *g) {
        guint jdn = tav_calendar_processor_date_to_julian_day_number (p.get (), &d);
        int weekday = tav_calendar_processor_date_to_day_of_week (p.get (), &d);
        int doy = tav_calendar_processor_date_to_day_of_year (p.get (), &d);
        if (jdn != g_date_get_julian (g) + 1721425 || weekday != g_date_get_weekday (g) % 7
            || doy != static_cast<int> (g_date_get_day_of_year (g))
            || tav_calendar_processor_month_length (p.get (), d.year, d.month)
                   != g_date_get_days_in_month (g_date_get_month (g), g_date_get_year (g))) {
            if (++mismatches < 5)
                ADD_FAILURE () << str (d);
        }
    });
    EXPECT_EQ (mismatches, 0);
}

TEST (CalendarProcessor, JulianDayNumbersUseTheJulianCalendarBeforeTheReform)
{
    struct {
        const char *system;
        int first_year;
        TavDate last_julian; /* the last date counted as Julian */
    } rows[] = {
        { "es", 1500, { 1582, 9, 4 } },
        { "en", 1600, { 1752, 8, 2 } },
        { "ru", 1850, { 1918, 1, 28 } }, /* 1-28 February 1918 still count as Julian */
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.system);
        auto p = processor_for (row.system);
        int mismatches = 0;
        /* Walk every real date from the first year through a year after the reform. */
        for (int year = row.first_year; year <= row.last_julian.year + 1; year++) {
            for (int month = 0; month < 12; month++) {
                for (int day = 1; day <= 31; day++) {
                    TavDate d = { year, month, day };
                    bool julian = tav_date_compare (&d, &row.last_julian) <= 0;
                    int days_in_month = julian ? (month == 1 ? (year % 4 == 0 ? 29 : 28)
                                                             : g_date_get_days_in_month (
                                                                   static_cast<GDateMonth> (month + 1), 2001))
                                               : g_date_get_days_in_month (static_cast<GDateMonth> (month + 1), year);
                    if (day > days_in_month)
                        continue;
                    guint expected = julian ? julian_calendar_jdn (d) : gregorian_jdn (d);
                    if (tav_calendar_processor_date_to_julian_day_number (p.get (), &d) != expected
                        && ++mismatches < 5)
                        ADD_FAILURE () << str (d) << " expected " << expected;
                }
            }
        }
        EXPECT_EQ (mismatches, 0);
    }
    /* The Russian comparison date makes 1-28 February 1918 Julian: 14
     * February (the first day after the step) is 13 days later in the day
     * count than the Gregorian 14 February. */
    auto ru = processor_for ("ru");
    TavDate feb14 = { 1918, 1, 14 }, mar1 = { 1918, 2, 1 };
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (ru.get (), &feb14), gregorian_jdn (feb14) + 13);
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (ru.get (), &mar1), gregorian_jdn (mar1));
}

TEST (CalendarProcessor, JulianDayNumberClampsBelowItsEpoch)
{
    auto p = processor_for (nullptr);
    TavDate ancient = { -4800, 0, 1 }, huge = { G_MAXINT32, 11, 31 }, tiny = { G_MININT32, 0, 1 };
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &ancient), 0u);
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &tiny), 0u);
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &huge), G_MAXUINT32);
    TavDate epoch = { -4712, 0, 1 }; /* Julian calendar, JDN 0 */
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &epoch), 0u);
    TavDate day1 = { -4712, 0, 2 };
    EXPECT_EQ (tav_calendar_processor_date_to_julian_day_number (p.get (), &day1), 1u);
}

TEST (CalendarProcessor, MondayWeeksAreIso8601Weeks)
{
    auto p = processor_for (nullptr);
    tav_calendar_processor_set_first_day_of_week (p.get (), 1);
    int mismatches = 0;
    for_each_supported_date ([&] (const TavDate &d, const GDate *g) {
        int expected = static_cast<int> (g_date_get_iso8601_week_of_year (g));
        int got = tav_calendar_processor_date_to_week_number (p.get (), &d);
        if (got != expected && ++mismatches < 5)
            ADD_FAILURE () << str (d) << ": " << got << " expected " << expected;
    });
    EXPECT_EQ (mismatches, 0);

    struct {
        TavDate date;
        int week;
    } rows[] = {
        { { 2010, 0, 1 }, 53 }, { { 2008, 11, 31 }, 1 }, { { 2010, 0, 4 }, 1 }, { { 2010, 0, 3 }, 53 },
        { { 2009, 11, 31 }, 53 }, { { 2005, 0, 1 }, 53 }, { { 2005, 0, 2 }, 53 }, { { 2005, 0, 3 }, 1 },
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_date_to_week_number (p.get (), &row.date), row.week) << str (row.date);
}

TEST (CalendarProcessor, WeekNumbersFollowTheFourDayRuleForEveryFirstDay)
{
    auto p = processor_for (nullptr);
    for (int first = 0; first <= 6; first++) {
        SCOPED_TRACE (first);
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (first));
        int mismatches = 0;
        for_each_supported_date ([&] (const TavDate &d, const GDate *g) {
            int expected = rule_week_number (g, first);
            int got = tav_calendar_processor_date_to_week_number (p.get (), &d);
            if (got != expected && ++mismatches < 5)
                ADD_FAILURE () << str (d) << ": " << got << " expected " << expected;
        });
        EXPECT_EQ (mismatches, 0);
    }
}

TEST (CalendarProcessor, FirstDayOfWeekSetsTheLastDay)
{
    auto p = processor_for (nullptr);
    EXPECT_EQ (tav_calendar_processor_get_first_day_of_week (p.get ()), 0);
    EXPECT_EQ (tav_calendar_processor_get_last_day_of_week (p.get ()), 6);
    const TavDate sunday = { 2009, 2, 1 }, monday = { 2009, 2, 2 }, saturday = { 2009, 2, 7 };
    EXPECT_TRUE (tav_calendar_processor_is_first_day_of_week (p.get (), &sunday));
    EXPECT_TRUE (tav_calendar_processor_is_last_day_of_week (p.get (), &saturday));

    tav_calendar_processor_set_first_day_of_week (p.get (), 1);
    EXPECT_EQ (tav_calendar_processor_get_last_day_of_week (p.get ()), 0);
    EXPECT_TRUE (tav_calendar_processor_is_first_day_of_week (p.get (), &monday));
    EXPECT_TRUE (tav_calendar_processor_is_last_day_of_week (p.get (), &sunday));
    EXPECT_FALSE (tav_calendar_processor_is_first_day_of_week (p.get (), &sunday));

    LogCapture capture;
    tav_calendar_processor_set_first_day_of_week (p.get (), 7);
    EXPECT_CRITICAL (capture, "first_day_of_week >= 0 && first_day_of_week <= 6");
    EXPECT_EQ (tav_calendar_processor_get_first_day_of_week (p.get ()), 1);
    EXPECT_EQ (tav_calendar_processor_get_last_day_of_week (p.get ()), 0);
}

TEST (CalendarProcessor, WorkdaysAndNextWeekday)
{
    auto p = processor_for (nullptr);
    struct {
        TavDate date;
        bool weekday;
        const char *next;
    } rows[] = {
        { { 2009, 2, 6 }, true, "2009-2-9" },    /* Friday -> Monday */
        { { 2009, 2, 7 }, false, "2009-2-9" },   /* Saturday */
        { { 2009, 2, 8 }, false, "2009-2-9" },   /* Sunday */
        { { 2009, 2, 9 }, true, "2009-2-10" },   /* Monday */
        { { 2009, 11, 31 }, true, "2010-0-1" },  /* Thursday over the year */
        { { 1752, 8, 2 }, true, "1752-8-14" },   /* Wednesday over the reform to Thursday */
    };
    for (int first : { 0, 1, 6 }) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (first));
        for (const auto &row : rows) {
            SCOPED_TRACE (str (row.date) + " first day " + std::to_string (first));
            EXPECT_EQ (static_cast<bool> (tav_calendar_processor_is_date_weekday (p.get (), &row.date)), row.weekday);
            TavDate d = row.date;
            tav_calendar_processor_next_weekday (p.get (), &d);
            EXPECT_EQ (str (d), row.next);
        }
    }
}

TEST (CalendarProcessor, DayOfYearAndMonthLength)
{
    auto p = processor_for (nullptr);
    struct {
        TavDate date;
        int day_of_year;
    } rows[] = {
        { { 2009, 0, 1 }, 1 }, { { 2009, 11, 31 }, 365 }, { { 2008, 11, 31 }, 366 }, { { 2008, 2, 1 }, 61 },
        { { 2009, 2, 1 }, 60 }, { { 1752, 11, 31 }, 366 }, /* the reform gap shortens no month */
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_date_to_day_of_year (p.get (), &row.date), row.day_of_year) << str (row.date);
    EXPECT_EQ (tav_calendar_processor_month_length (p.get (), 1752, 8), 30);
    EXPECT_EQ (tav_calendar_processor_month_length (p.get (), 2009, 11), 31);
    EXPECT_EQ (tav_calendar_processor_month_length (p.get (), 2009, 3), 30);
    EXPECT_EQ (tav_calendar_processor_month_length (p.get (), 2008, 1), 29);
}

TEST (CalendarProcessor, IncMonthKeepsItsOddModulus)
{
    auto p = processor_for (nullptr);
    struct {
        TavDate from;
        const char *expected;
    } rows[] = {
        { { 2009, 0, 31 }, "2009-2-31" },  /* February cannot hold 31: skipped */
        { { 2009, 0, 15 }, "2009-1-15" },
        { { 2009, 10, 15 }, "2009-0-15" }, /* November to January, same year */
        { { 2009, 11, 15 }, "2009-1-15" }, /* December to February, same year */
        { { 2009, 11, 30 }, "2009-2-30" },
        { { 2008, 0, 29 }, "2008-1-29" },
        { { 2009, 2, 31 }, "2009-4-31" },  /* April too short */
        { { 2009, 9, 31 }, "2009-0-31" },  /* November too short, wraps to January */
    };
    for (const auto &row : rows) {
        TavDate d = row.from;
        tav_calendar_processor_inc_month (p.get (), &d);
        EXPECT_EQ (str (d), row.expected) << str (row.from);
    }
}

TEST (CalendarProcessor, IncMonthByCountClampsTheDayAndStopsAt2037)
{
    auto p = processor_for (nullptr);
    struct {
        TavDate from;
        int count;
        const char *expected;
    } rows[] = {
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
        tav_calendar_processor_inc_month_by_count (p.get (), &d, row.count);
        EXPECT_EQ (str (d), row.expected) << str (row.from) << " + " << row.count;
    }
}

TEST (CalendarProcessor, IntervalInDaysCountsStepsForwardAndFieldsBackward)
{
    auto en = processor_for ("en");
    struct {
        TavDate from, to;
        int expected;
    } rows[] = {
        { { 2009, 0, 1 }, { 2009, 1, 1 }, 31 },
        { { 2009, 1, 1 }, { 2009, 0, 1 }, -1 },      /* months differ */
        { { 2009, 0, 1 }, { 2009, 0, 1 }, 0 },
        { { 2009, 0, 20 }, { 2009, 0, 5 }, -15 },    /* days differ */
        { { 2011, 0, 1 }, { 2009, 5, 30 }, -2 },     /* years differ */
        { { 1970, 0, 1 }, { 2037, 11, 31 }, 24836 },
        { { 2008, 1, 28 }, { 2008, 2, 1 }, 2 },
        { { 1752, 8, 1 }, { 1752, 8, 15 }, 3 },      /* 11 days dropped */
        { { 1752, 7, 31 }, { 1753, 0, 1 }, 112 },
    };
    for (const auto &row : rows)
        EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (en.get (), row.from, row.to), row.expected)
            << str (row.from) << " -> " << str (row.to);
}

TEST (CalendarProcessor, WeeksOfEveryYearMatchTheFourDayRule)
{
    auto p = processor_for (nullptr);
    for (int first = 0; first <= 6; first++) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (first));
        int mismatches = 0;
        for (int year = 1971; year <= 2036; year++) {
            guint start = week1_start (year, first);
            int weeks = static_cast<int> ((week1_start (year + 1, first) - start) / 7);
            for (int week = 0; week <= 53; week++) {
                TavDateInterval result = { { 1, 1, 1 }, { 1, 1, 1 } };
                gboolean found = tav_calendar_processor_get_week (p.get (), year, static_cast<guint> (week), &result);
                std::string got = found ? str (result.start) + ".." + str (result.end) : "none";
                std::string expected = "none";
                if (week >= 1 && week <= weeks) {
                    GDate *s = g_date_new_julian (start + 7 * (week - 1));
                    GDate *e = g_date_new_julian (start + 7 * (week - 1) + 6);
                    expected = str (from_gdate (s)) + ".." + str (from_gdate (e));
                    g_date_free (s);
                    g_date_free (e);
                }
                if (got != expected && ++mismatches < 5)
                    ADD_FAILURE () << "first " << first << " year " << year << " week " << week << ": " << got
                                   << " expected " << expected;
            }
        }
        EXPECT_EQ (mismatches, 0) << "first day " << first;
    }
    /* The result pointer is optional. */
    EXPECT_TRUE (tav_calendar_processor_get_week (p.get (), 2009, 10, nullptr));
    EXPECT_FALSE (tav_calendar_processor_get_week (p.get (), 2009, 0, nullptr));
}

TEST (CalendarProcessor, ThisWeekHoldsToday)
{
    struct {
        int first;
        const char *expected;
    } rows[] = {
        { 0, "2009-2-1..2009-2-7" },  /* Sunday weeks */
        { 1, "2009-2-2..2009-2-8" },  /* Monday weeks */
        { 4, "2009-2-5..2009-2-11" }, /* today is the first day */
        { 5, "2009-1-27..2009-2-5" }, /* today is the last day */
    };
    GDateTime *dt = g_date_time_new_utc (2009, 3, 5, 10, 0, 0); /* Thursday 5 March 2009 */
    s_now_for_this_week = static_cast<time_t> (g_date_time_to_unix (dt));
    g_date_time_unref (dt);
    tav_date_set_clock ([] { return s_now_for_this_week; });
    auto p = processor_for (nullptr);
    for (const auto &row : rows) {
        tav_calendar_processor_set_first_day_of_week (p.get (), static_cast<guint> (row.first));
        TavDateInterval week;
        tav_calendar_processor_get_this_week (p.get (), &week);
        EXPECT_EQ (str (week.start) + ".." + str (week.end), row.expected) << row.first;
    }
    tav_date_set_clock (nullptr);
}

TEST (CalendarProcessor, BadArgumentsWarnAndReturnNeutralValues)
{
    auto p = processor_for (nullptr);
    TavCalendarProcessor *proc = p.get ();
    TavDate d = { 2009, 0, 1 };
    TavDate bad_month = { 2009, 12, 1 };
    GObject *not_a_processor = G_OBJECT (g_object_new (G_TYPE_OBJECT, nullptr));
    auto *wrong = reinterpret_cast<TavCalendarProcessor *> (not_a_processor);
    const char *kProc = "TAV_IS_CALENDAR_PROCESSOR(processor)";
    const char *kMonth = "date->month >= 0 && date->month <= 11";
    struct {
        const char *label;
        const char *condition;
        std::function<bool ()> call;
    } rows[] = {
        { "set_first_day_of_week", "TAV_IS_CALENDAR_PROCESSOR (processor)",
          [] { tav_calendar_processor_set_first_day_of_week (nullptr, 1); return true; } },
        { "is_gregorian", kProc, [&] { return !tav_calendar_processor_date_is_gregorian (nullptr, &d); } },
        { "is_gregorian date", "date != NULL", [&] { return !tav_calendar_processor_date_is_gregorian (proc, nullptr); } },
        { "jdn", kProc, [&] { return tav_calendar_processor_date_to_julian_day_number (wrong, &d) == 0; } },
        { "jdn date", "date != NULL", [&] { return tav_calendar_processor_date_to_julian_day_number (proc, nullptr) == 0; } },
        { "day_of_week", kProc, [&] { return tav_calendar_processor_date_to_day_of_week (nullptr, &d) == 1; } },
        { "day_of_week date", "date != NULL",
          [&] { return tav_calendar_processor_date_to_day_of_week (proc, nullptr) == 1; } },
        { "is_first", kProc, [&] { return !tav_calendar_processor_is_first_day_of_week (nullptr, &d); } },
        { "is_first date", "date != NULL", [&] { return !tav_calendar_processor_is_first_day_of_week (proc, nullptr); } },
        { "is_last", kProc, [&] { return !tav_calendar_processor_is_last_day_of_week (nullptr, &d); } },
        { "is_last date", "date != NULL", [&] { return !tav_calendar_processor_is_last_day_of_week (proc, nullptr); } },
        { "is_weekday", kProc, [&] { return !tav_calendar_processor_is_date_weekday (nullptr, &d); } },
        { "is_weekday date", "date != NULL", [&] { return !tav_calendar_processor_is_date_weekday (proc, nullptr); } },
        { "week_number", kProc, [&] { return tav_calendar_processor_date_to_week_number (nullptr, &d) == 0; } },
        { "week_number date", "date != NULL", [&] { return tav_calendar_processor_date_to_week_number (proc, nullptr) == 0; } },
        { "is_leap", kProc, [&] { return !tav_calendar_processor_is_leap_year (nullptr, 2000); } },
        { "day_of_year", kProc, [&] { return tav_calendar_processor_date_to_day_of_year (nullptr, &d) == -1; } },
        { "day_of_year date", "date != NULL", [&] { return tav_calendar_processor_date_to_day_of_year (proc, nullptr) == -1; } },
        { "day_of_year month", kMonth, [&] { return tav_calendar_processor_date_to_day_of_year (proc, &bad_month) == -1; } },
        { "month_length", "month <= 11", [&] { return tav_calendar_processor_month_length (proc, 2009, 12) == -1; } },
        { "inc_date", kProc, [&] { tav_calendar_processor_inc_date (nullptr, &d); return str (d) == "2009-0-1"; } },
        { "inc_date date", "date != NULL", [&] { tav_calendar_processor_inc_date (proc, nullptr); return true; } },
        { "inc_date month", kMonth,
          [&] { tav_calendar_processor_inc_date (proc, &bad_month); return str (bad_month) == "2009-12-1"; } },
        { "dec_date date", "date != NULL", [&] { tav_calendar_processor_dec_date (proc, nullptr); return true; } },
        { "dec_date month", kMonth,
          [&] { tav_calendar_processor_dec_date (proc, &bad_month); return str (bad_month) == "2009-12-1"; } },
        { "inc_by_days", kProc, [&] { tav_calendar_processor_inc_date_by_days (nullptr, &d, 3); return str (d) == "2009-0-1"; } },
        { "inc_by_days date", "date != NULL", [&] { tav_calendar_processor_inc_date_by_days (proc, nullptr, 3); return true; } },
        { "inc_by_days negative", "ndays >= 0",
          [&] { tav_calendar_processor_inc_date_by_days (proc, &d, -1); return str (d) == "2009-0-1"; } },
        { "inc_by_days month", kMonth,
          [&] { tav_calendar_processor_inc_date_by_days (proc, &bad_month, 1); return str (bad_month) == "2009-12-1"; } },
        { "dec_by_days", kProc, [&] { tav_calendar_processor_dec_date_by_days (nullptr, &d, 3); return str (d) == "2009-0-1"; } },
        { "dec_by_days date", "date != NULL", [&] { tav_calendar_processor_dec_date_by_days (proc, nullptr, 3); return true; } },
        { "dec_by_days negative", "ndays >= 0",
          [&] { tav_calendar_processor_dec_date_by_days (proc, &d, -5); return str (d) == "2009-0-1"; } },
        { "inc_month", kProc, [&] { tav_calendar_processor_inc_month (nullptr, &d); return str (d) == "2009-0-1"; } },
        { "inc_month date", "date != NULL", [&] { tav_calendar_processor_inc_month (proc, nullptr); return true; } },
        { "inc_month_by_count", kProc,
          [&] { tav_calendar_processor_inc_month_by_count (nullptr, &d, 1); return str (d) == "2009-0-1"; } },
        { "inc_month_by_count negative", "count >= 0",
          [&] { tav_calendar_processor_inc_month_by_count (proc, &d, -1); return str (d) == "2009-0-1"; } },
        { "interval", kProc,
          [&] { return tav_calendar_processor_get_date_interval_in_days (nullptr, d, TavDate { 2010, 0, 1 }) == 0; } },
        { "get_week", kProc, [&] { return !tav_calendar_processor_get_week (nullptr, 2009, 1, nullptr); } },
        { "get_week week", "week >= 0 && week <= 53", [&] { return !tav_calendar_processor_get_week (proc, 2009, 54, nullptr); } },
        { "get_this_week", kProc, [&] { TavDateInterval i; tav_calendar_processor_get_this_week (nullptr, &i); return true; } },
        { "get_this_week interval", "interval != NULL", [&] { tav_calendar_processor_get_this_week (proc, nullptr); return true; } },
        { "next_weekday", kProc, [&] { tav_calendar_processor_next_weekday (nullptr, &d); return str (d) == "2009-0-1"; } },
        { "next_weekday date", "date != NULL", [&] { tav_calendar_processor_next_weekday (proc, nullptr); return true; } },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        LogCapture capture;
        EXPECT_TRUE (row.call ());
        EXPECT_CRITICAL (capture, row.condition);
        EXPECT_EQ (capture.lines ().size (), 1u) << capture.dump ();
    }
    g_object_unref (not_a_processor);
}

TEST (CalendarProcessor, MonthLengthAndDecDateNeedNoProcessor)
{
    LogCapture capture;
    EXPECT_EQ (tav_calendar_processor_month_length (nullptr, 2008, 1), 29);
    TavDate d = { 1752, 8, 14 };
    tav_calendar_processor_dec_date (nullptr, &d);
    EXPECT_EQ (str (d), "1752-8-2");
    EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
}

TEST (CalendarProcessor, TypeIsRegisteredOnceAndInstancesAreFreed)
{
    GType type = tav_calendar_processor_get_type ();
    EXPECT_EQ (g_type_from_name ("TavCalendarProcessor"), type);
    EXPECT_EQ (tav_calendar_processor_get_type (), type);
    EXPECT_TRUE (g_type_is_a (type, G_TYPE_OBJECT));

    TavCalendarProcessor *p = tav_calendar_processor_new ();
    gpointer watch = p;
    g_object_add_weak_pointer (G_OBJECT (p), &watch);
    g_object_run_dispose (G_OBJECT (p)); /* dispose may run more than once */
    g_object_unref (p);
    EXPECT_EQ (watch, nullptr);
}

using CalendarProcessorDeathTest = ::testing::Test;

TEST (CalendarProcessorDeathTest, MonthSteppingAbortsOnDaysAbove31)
{
    auto p = processor_for (nullptr);
    TavDate d = { 2009, 0, 32 };
    EXPECT_DEATH (tav_calendar_processor_inc_month (p.get (), &d), "date->day <= 31");
    EXPECT_DEATH (tav_calendar_processor_inc_month_by_count (p.get (), &d, 1), "date->day <= 31");
}
