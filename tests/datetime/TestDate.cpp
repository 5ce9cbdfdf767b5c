/* Date and time values: boxed types, conversions, comparisons, intervals,
 * text forms and the argument checks. */

#include "TestSupport.h"

#include <cstring>
#include <string>

#include "DateTestSupport.h"
#include "TavDate.h"

using tav::test::FixedClock;
using tav::test::LogCapture;
using tav::test::str;
using tav::test::take;

/* Each boxed type is registered under its name and copies every field,
 * through GValue as property code copies them. */
TEST (DateValues, BoxedTypesCopyEveryField)
{
    const TavTimeInterval ti = { { { 2009, 2, 5 }, { 9, 5 } }, { { 2010, 11, 31 }, { 23, 59 } } };
    const TavDateInterval di = { { 2001, 1, 2 }, { 2003, 4, 5 } };
    struct { GType type; const char *name; const void *value; size_t size; } rows[] = {
        { tav_time_get_type (), "TavTime", &ti.start.time, sizeof (TavTime) },
        { tav_date_get_type (), "TavDate", &di.end, sizeof (TavDate) },
        { tav_timestamp_get_type (), "TavTimestamp", &ti.end, sizeof (TavTimestamp) },
        { tav_date_interval_get_type (), "TavDateInterval", &di, sizeof di },
        { tav_time_interval_get_type (), "TavTimeInterval", &ti, sizeof ti },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.name);
        EXPECT_EQ (g_type_from_name (row.name), row.type);
        GValue value = G_VALUE_INIT;
        g_value_init (&value, row.type);
        g_value_set_boxed (&value, row.value);
        gpointer copy = g_value_dup_boxed (&value);
        g_value_unset (&value);
        ASSERT_NE (copy, nullptr);
        EXPECT_NE (copy, row.value);
        EXPECT_EQ (memcmp (copy, row.value, row.size), 0);
        g_boxed_free (row.type, copy);
    }
}

TEST (DateValues, NullArgumentsOfSoftFunctionsWarnAndReturnNeutral)
{
    /* Each call is true when the neutral value came back; copy and free
     * report the same condition once each. */
    struct { const char *label, *condition; std::function<bool ()> call; int criticals = 1; } rows[] = {
        { "time", "time != NULL", [] { tav_time_free (nullptr); return tav_time_copy (nullptr) == nullptr; }, 2 },
        { "date", "date != NULL", [] { tav_date_free (nullptr); return tav_date_copy (nullptr) == nullptr; }, 2 },
        { "timestamp", "timestamp != NULL", [] { tav_timestamp_free (nullptr); return tav_timestamp_copy (nullptr) == nullptr; }, 2 },
        { "date_interval", "interval != NULL",
          [] { tav_date_interval_free (nullptr); return tav_date_interval_copy (nullptr) == nullptr; }, 2 },
        { "time_interval", "interval != NULL",
          [] { tav_time_interval_free (nullptr); return tav_time_interval_copy (nullptr) == nullptr; }, 2 },
        { "init_today", "date != NULL", [] { tav_date_init_today (nullptr); return true; } },
        { "init_now", "_time != NULL", [] { tav_time_init_now (nullptr); return true; } },
        { "is_valid", "date != NULL", [] { return !tav_date_is_valid (nullptr); } },
        { "limit", "date != NULL", [] { return !is_date_limit_reached (nullptr); } },
        { "contains interval", "interval != NULL", [] { TavDate d = { 2009, 0, 1 }; return !tav_date_interval_contains (nullptr, &d); } },
        { "contains date", "date != NULL", [] { TavDateInterval i = {}; return !tav_date_interval_contains (&i, nullptr); } },
        { "time_to_string", "time != NULL", [] { return tav_time_to_string (nullptr) == nullptr; } },
        { "date_to_string", "date != NULL", [] { return tav_date_to_string (nullptr) == nullptr; } },
        { "timestamp_to_string", "timestamp != NULL", [] { return tav_timestamp_to_string (nullptr) == nullptr; } },
        { "time_format", "time != NULL", [] { return tav_time_to_string_format (nullptr, FALSE) == nullptr; } },
        { "date_format", "date != NULL", [] { return tav_date_to_string_format (nullptr, TavDateLongFormat, 0) == nullptr; } },
        { "week_num_string", "date != NULL", [] { return tav_date_to_week_num_string (nullptr, 0) == nullptr; } },
        { "print_debug", "date != NULL", [] { tav_date_print_debug (nullptr); return true; } },
        { "interval_print_debug", "interval != NULL", [] { tav_date_interval_print_debug (nullptr); return true; } },
        { "month_dec", "date != NULL", [] { tav_date_month_dec (nullptr); return true; } },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        LogCapture capture;
        EXPECT_TRUE (row.call ());
        EXPECT_EQ (capture.count_criticals (std::string ("'") + row.condition + "' failed"), row.criticals) << capture.dump ();
        EXPECT_EQ (capture.lines ().size (), static_cast<size_t> (row.criticals)) << capture.dump ();
    }
}

TEST (DateValues, ClockInitialisationUsesLocalTime)
{
    FixedClock clock (2009, 2, 5, 23, 7);
    const std::string saved = g_getenv ("TZ") ? g_getenv ("TZ") : "";
    /* One hour east of UTC the same instant is already the next day. */
    for (auto [tz, expected] : { std::pair { "UTC", "2009-2-5 23:7" }, { "UTC-1", "2009-2-6 0:7" } }) {
        g_setenv ("TZ", tz, TRUE);
        tzset ();
        TavDate date = { 0, 0, 0 };
        TavTime time = { -1, -1 };
        tav_date_init_today (&date);
        tav_time_init_now (&time);
        EXPECT_EQ (str (date) + " " + str (time), expected) << tz;
    }
    g_setenv ("TZ", saved.c_str (), TRUE);
    tzset ();
}

TEST (DateValues, TmConversionsWriteOnlyTheirFields)
{
    struct tm tm;
    memset (&tm, 0x5a, sizeof tm);
    const int u = tm.tm_sec; /* untouched */
    auto fields = [&] { return std::vector<int> { tm.tm_year, tm.tm_mon, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, tm.tm_wday }; };
    const TavDate date = { 2009, 2, 5 };
    const TavTime time = { 9, 5 };
    tav_date_to_tm (&tm, &date);
    EXPECT_EQ (fields (), (std::vector<int> { 109, 2, 5, u, u, u, u }));
    tav_time_to_tm (&tm, &time);
    EXPECT_EQ (fields (), (std::vector<int> { 109, 2, 5, 9, 5, u, u }));

    TavTimestamp ts = { { 1, 1, 1 }, { 2, 2 } };
    tav_tm_to_timestamp (&ts, &tm);
    EXPECT_EQ (str (ts.date) + " " + str (ts.time), "2009-2-5 9:5");
    TavDate back = { 7, 7, 7 };
    TavTime tback = { 7, 7 };
    tm.tm_year = -1900;
    tm.tm_min = 59;
    tav_tm_to_date (&back, &tm);
    tav_tm_to_time (&tback, &tm);
    EXPECT_EQ (str (back) + " " + str (tback), "0-2-5 9:59");
}

TEST (DateValues, CompareUsesTheFirstDifferingField)
{
    struct { TavDate a, b; int expected; } rows[] = {
        { { 2009, 0, 1 }, { 2009, 0, 1 }, 0 }, { { 2009, 11, 31 }, { 2010, 0, 1 }, -1 },
        { { 2012, 0, 1 }, { 2009, 11, 31 }, 3 }, { { 2009, 1, 1 }, { 2009, 4, 1 }, -3 },
        { { 2009, 4, 30 }, { 2009, 4, 2 }, 28 },
        /* Differences beyond the int range saturate. */
        { { G_MAXINT, 0, 1 }, { G_MININT, 0, 1 }, G_MAXINT }, { { G_MININT, 0, 1 }, { G_MAXINT, 0, 1 }, G_MININT },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (str (row.a) + " vs " + str (row.b));
        EXPECT_EQ (tav_date_compare (&row.a, &row.b), row.expected);
    }

    struct { TavTime a, b; int sign; } trows[] = {
        { { 9, 5 }, { 9, 5 }, 0 }, { { 9, 59 }, { 10, 0 }, -1 }, { { 23, 0 }, { 9, 30 }, 1 }, { { 9, 6 }, { 9, 5 }, 1 },
        { { G_MAXINT, 0 }, { G_MININT, 0 }, 1 },
    };
    for (const auto &row : trows) {
        SCOPED_TRACE (str (row.a) + " vs " + str (row.b));
        int c = tav_time_compare (&row.a, &row.b);
        EXPECT_EQ ((c > 0) - (c < 0), row.sign);
    }
}

/* Validity checks the month and the day's upper bound only; the date
 * limit is exactly the last day of 2037. */
TEST (DateValues, ValidityAndTheDateLimit)
{
    struct { TavDate date; bool valid, limit; } rows[] = {
        { { 2008, 1, 29 }, true, false },   { { 2009, 1, 29 }, false, false },  { { 2009, 12, 1 }, false, false },
        { { 2009, 0, 0 }, true, false },    { { 2009, 0, -1 }, false, false },  { { 2009, -1, 1 }, false, false },
        { { 2009, 3, 31 }, false, false },  { { 2009, 3, 30 }, true, false },   { { 0, 0, 31 }, true, false },
        { { -400, 11, 31 }, true, false },  { { 2009, 0, 32 }, false, false },  { { 1900, 1, 29 }, false, false },
        { { 2000, 1, 29 }, true, false },   { { 4, 1, 29 }, false, false },     { { 8, 1, 29 }, true, false },
        { { 2037, 11, 31 }, true, true },   { { 2037, 11, 30 }, true, false },  { { 2038, 0, 1 }, true, false },
        { { 2036, 11, 31 }, true, false },  { { 2037, 10, 31 }, false, false },
        { { G_MAXINT, G_MAXINT, G_MAXINT }, false, false }, { { G_MININT, G_MININT, G_MININT }, false, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (str (row.date));
        EXPECT_EQ (static_cast<bool> (tav_date_is_valid (&row.date)), row.valid);
        EXPECT_EQ (static_cast<bool> (is_date_limit_reached (&row.date)), row.limit);
    }
}

TEST (DateValues, DateIntervalsContainBothEndsAndTouchingOnesIntersect)
{
    const TavDateInterval a = { { 2009, 0, 1 }, { 2009, 0, 10 } };
    for (auto [d, inside] : { std::pair { TavDate { 2009, 0, 1 }, true }, { { 2009, 0, 5 }, true }, { { 2009, 0, 10 }, true },
                              { { 2008, 11, 31 }, false }, { { 2009, 0, 11 }, false } })
        EXPECT_EQ (static_cast<bool> (tav_date_interval_contains (&a, &d)), inside) << str (d);

    const TavDateInterval untouched = { { 1, 1, 1 }, { 1, 1, 1 } };
    /* expected: "none" when they do not intersect */
    struct { const char *label; TavDateInterval x, y; const char *expected; } rows[] = {
        { "touching", { { 2009, 0, 1 }, { 2009, 0, 10 } }, { { 2009, 0, 10 }, { 2009, 0, 20 } }, "2009-0-10 2009-0-10" },
        { "touching reversed", { { 2009, 0, 10 }, { 2009, 0, 20 } }, { { 2009, 0, 1 }, { 2009, 0, 10 } },
          "2009-0-10 2009-0-10" },
        { "overlap", { { 2009, 0, 1 }, { 2009, 1, 10 } }, { { 2009, 0, 20 }, { 2009, 2, 1 } }, "2009-0-20 2009-1-10" },
        { "inside", { { 2009, 0, 1 }, { 2009, 11, 31 } }, { { 2009, 5, 1 }, { 2009, 5, 2 } }, "2009-5-1 2009-5-2" },
        { "apart", { { 2009, 0, 1 }, { 2009, 0, 9 } }, { { 2009, 0, 10 }, { 2009, 0, 20 } }, "none" },
        { "equal", { { 2009, 0, 1 }, { 2009, 0, 9 } }, { { 2009, 0, 1 }, { 2009, 0, 9 } }, "2009-0-1 2009-0-9" },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        TavDateInterval result = untouched;
        gboolean hit = tav_date_interval_intersect (&row.x, &row.y, &result);
        std::string got = hit ? str (result.start) + " " + str (result.end) : "none";
        EXPECT_EQ (got, row.expected);
        EXPECT_TRUE (hit || memcmp (&result, &untouched, sizeof result) == 0) << "result written on failure";
        EXPECT_EQ (tav_date_interval_intersect (&row.x, &row.y, nullptr), hit);
    }

    /* The result may be one of the inputs. */
    TavDateInterval x = { { 2009, 0, 1 }, { 2009, 0, 20 } }, y = { { 2009, 0, 10 }, { 2009, 0, 30 } };
    EXPECT_TRUE (tav_date_interval_intersect (&x, &y, &x));
    EXPECT_EQ (str (x.start) + " " + str (x.end), "2009-0-10 2009-0-20");
}

TEST (DateValues, TimeRangesThatOnlyTouchDoNotIntersectUnlessOneIsAnInstant)
{
    struct { const char *label; TavTime as, ae, bs, be; const char *expected; } rows[] = {
        { "touching", { 10, 0 }, { 11, 0 }, { 11, 0 }, { 12, 0 }, "none" },
        { "touching reversed", { 11, 0 }, { 12, 0 }, { 10, 0 }, { 11, 0 }, "none" },
        { "instant at end", { 10, 0 }, { 11, 0 }, { 11, 0 }, { 11, 0 }, "11:0-11:0" },
        { "instant at start", { 11, 0 }, { 11, 0 }, { 11, 0 }, { 12, 30 }, "11:0-11:0" },
        { "two equal instants", { 8, 15 }, { 8, 15 }, { 8, 15 }, { 8, 15 }, "8:15-8:15" },
        { "overlap", { 9, 0 }, { 11, 30 }, { 10, 45 }, { 12, 0 }, "10:45-11:30" },
        { "inside", { 8, 0 }, { 18, 0 }, { 9, 0 }, { 9, 1 }, "9:0-9:1" },
        { "apart", { 8, 0 }, { 9, 0 }, { 9, 1 }, { 10, 0 }, "none" },
        { "instant outside", { 8, 0 }, { 9, 0 }, { 9, 1 }, { 9, 1 }, "none" },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        TavTime rs = { -1, -1 }, re = { -1, -1 };
        gboolean hit = tav_time_intersect (&row.as, &row.ae, &row.bs, &row.be, &rs, &re);
        std::string got = hit ? str (rs) + "-" + str (re) : "none";
        EXPECT_EQ (got, row.expected);
        EXPECT_TRUE (hit || str (rs) + "-" + str (re) == "-1:-1--1:-1") << "result written on failure";
        EXPECT_EQ (tav_time_intersect (&row.as, &row.ae, &row.bs, &row.be, nullptr, nullptr), hit);
    }
}

TEST (DateValues, FixedTextForms)
{
    const TavTime t1 = { 9, 5 }, t2 = { 23, 0 }, t3 = { 0, 0 };
    const TavDate d1 = { 2009, 0, 7 }, d2 = { 1999, 11, 31 };
    const TavTimestamp ts = { { 2009, 2, 5 }, { 9, 5 } };
    EXPECT_EQ (take (tav_time_to_string (&t1)) + "|" + take (tav_time_to_string (&t2)) + "|" + take (tav_time_to_string (&t3)),
               " 9:05|23:00| 0:00");
    EXPECT_EQ (take (tav_date_to_string (&d1)) + "|" + take (tav_date_to_string (&d2)), "07.01.2009|31.12.1999");
    EXPECT_EQ (take (tav_timestamp_to_string (&ts)), "05.03.2009  9:05");
}

TEST (DateValues, LocalisedFormsReadAsEnglishInTheCLocale)
{
    struct { TavTime time; gboolean twelve; const char *expected; } trows[] = {
        { { 9, 5 }, FALSE, "09:05" },  { { 23, 59 }, FALSE, "23:59" }, { { 9, 5 }, TRUE, " 9:05 am" },
        { { 0, 30 }, TRUE, "12:30 am" }, { { 12, 0 }, TRUE, "12:00 pm" }, { { 13, 45 }, TRUE, " 1:45 pm" },
        { { 11, 59 }, TRUE, "11:59 am" },
    };
    for (const auto &row : trows) {
        SCOPED_TRACE (str (row.time));
        EXPECT_EQ (take (tav_time_to_string_format (&row.time, row.twelve)), row.expected);
    }

    const TavDate date = { 2009, 2, 5 }; /* a Thursday */
    struct { int format; const char *expected; } drows[] = {
        { TavDateLongFormat, "Thursday, 5 March 2009" }, { TavDateNormalFormat, "05/03/2009" },
        { TavDateShortFormat, "Thu 5" }, { TavDateWeekNameFormat, "Thursday" }, { TavDateWeekNameShortFormat, "Thu" },
        { 5, "" }, { -1, "" },
    };
    for (const auto &row : drows) {
        SCOPED_TRACE (row.format);
        EXPECT_EQ (take (tav_date_to_string_format (&date, static_cast<TavDateFormat> (row.format), 4)), row.expected);
    }
    /* The weekday is the caller's, not derived from the date. */
    EXPECT_EQ (take (tav_date_to_string_format (&date, TavDateWeekNameFormat, 0)), "Sunday");

    struct { TavDate date; int weekday; const char *expected; } wrows[] = {
        { { 2009, 0, 7 }, 3, "Week 2" }, { { 2010, 0, 1 }, 5, "Week 53" }, { { 2008, 11, 31 }, 3, "Week 1" },
    };
    for (const auto &row : wrows) {
        SCOPED_TRACE (str (row.date));
        EXPECT_EQ (take (tav_date_to_week_num_string (&row.date, row.weekday)), row.expected);
    }
}

TEST (DateValues, DebugPrintsUseTheRawMonth)
{
    static std::string printed;
    GPrintFunc old = g_set_print_handler ([] (const char *text) { printed += text; });
    const TavDate date = { 2009, 0, 7 };
    const TavDateInterval interval = { { 2009, 11, 31 }, { 2010, 0, 1 } };
    tav_date_print_debug (&date);
    tav_date_interval_print_debug (&interval);
    g_set_print_handler (old);
    EXPECT_EQ (printed, "2009.0.7\n2009.11.31 -- 2010.0.1\n");
}

TEST (DateValues, MonthDecWrapsTheYearAndKeepsTheDay)
{
    struct { TavDate from; const char *expected; } rows[] = {
        { { 2009, 0, 31 }, "2008-11-31" }, { { 2009, 2, 31 }, "2009-1-31" }, { { 2009, 11, 15 }, "2009-10-15" },
        { { 1970, 0, 1 }, "1969-11-1" },
    };
    for (const auto &row : rows) {
        TavDate d = row.from;
        tav_date_month_dec (&d);
        EXPECT_EQ (str (d), row.expected) << str (row.from);
    }
}

TEST (DateValues, AlarmMustStillLieInTheFuture)
{
    FixedClock clock (2009, 2, 5, 12, 0);
    struct { const char *label; int year, month, day, hour, minute, alarm; bool valid; } rows[] = {
        { "15 min before 12:30", 2009, 2, 5, 12, 30, 15, true },
        { "30 min before 12:30 is now", 2009, 2, 5, 12, 30, 30, false },
        { "45 min before 12:30 is past", 2009, 2, 5, 12, 30, 45, false },
        { "event now, no alarm", 2009, 2, 5, 12, 0, 0, false }, { "event in a minute", 2009, 2, 5, 12, 1, 0, true },
        { "a day before tomorrow noon", 2009, 2, 6, 12, 1, 24 * 60, true },
        { "past event", 2008, 2, 5, 12, 0, 0, false },
        { "huge alarm offset", 2037, 11, 31, 23, 59, G_MAXINT, false },
        { "negative offset", 2009, 2, 5, 11, 59, -2, true }, { "lowest offset", 2037, 11, 31, 23, 59, G_MININT, true },
        { "lowest year", G_MININT, 0, 1, 0, 0, 0, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        EXPECT_EQ (static_cast<bool> (tav_check_date_time_validity_for_alarm_interval (
                       row.year, row.month, row.day, row.hour, row.minute, row.alarm)),
                   row.valid);
    }
}

TEST (DateValues, FieldsAtTheEndsOfTheIntRangeGiveDefinedResults)
{
    const TavDate hi = { G_MAXINT, G_MAXINT, G_MAXINT }, lo = { G_MININT, G_MININT, G_MININT };

    EXPECT_EQ (take (tav_date_to_string (&hi)), "2147483647.-2147483648.2147483647");
    TavDate d = { G_MININT, 0, 1 };
    tav_date_month_dec (&d);
    EXPECT_EQ (str (d), "2147483647-11-1");

    struct tm tm = {};
    tav_date_to_tm (&tm, &lo);
    tav_tm_to_date (&d, &tm);
    EXPECT_EQ (d.year, G_MININT);

    const TavTime odd = { G_MAXINT, G_MININT };
    g_free (tav_time_to_string (&odd));
    g_free (tav_time_to_string_format (&odd, TRUE));
    g_free (tav_time_to_string_format (&odd, FALSE));
    const TavDate valid_far = { G_MAXINT, 11, 31 };
    g_free (tav_date_to_string_format (&valid_far, TavDateLongFormat, 7));
    g_free (tav_date_to_week_num_string (&valid_far, -1));
}

/* Programming errors abort with the failed expression. */
using DateValuesDeathTest = ::testing::Test;

/* One row per check: the call and the failed expression it aborts with. */
TEST (DateValuesDeathTest, NullArgumentsAndInvalidDatesAbort)
{
    TavDate d = { 2009, 0, 1 }, bad = { 2009, 1, 30 };
    TavTime t = { 1, 1 };
    struct tm tm = {};
    TavDateInterval i = {};
    const char *dates = "date1 != NULL && date2 != NULL", *conv = "dest != NULL && source != NULL",
               *valid = "tav_date_is_valid\\(date\\)";
    const std::pair<std::function<void ()>, const char *> rows[] = {
        { [&] { tav_date_compare (nullptr, &d); }, dates }, { [&] { tav_date_compare (&d, nullptr); }, dates },
        { [&] { tav_date_to_tm (nullptr, &d); }, conv },    { [&] { tav_tm_to_date (&d, nullptr); }, conv },
        { [&] { tav_time_to_tm (&tm, nullptr); }, conv },   { [&] { tav_tm_to_time (nullptr, &tm); }, conv },
        { [&] { tav_tm_to_timestamp (nullptr, &tm); }, conv },
        { [&] { tav_date_interval_intersect (&i, nullptr, nullptr); }, "src1 != NULL && src2 != NULL" },
        { [&] { tav_time_intersect (&t, nullptr, &t, &t, nullptr, nullptr); }, "atime_start != NULL && atime_end != NULL" },
        { [&] { tav_time_intersect (&t, &t, nullptr, &t, nullptr, nullptr); }, "btime_start != NULL && btime_end != NULL" },
        { [&] { g_free (tav_date_to_string_format (&bad, TavDateLongFormat, 0)); }, valid },
        { [&] { g_free (tav_date_to_week_num_string (&bad, 0)); }, valid },
    };
    for (const auto &[call, expression] : rows)
        EXPECT_DEATH (call (), expression);
}
