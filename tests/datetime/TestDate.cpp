/* Date and time values: boxed types, conversions, comparisons, intervals,
 * text forms and the argument checks. */

#include "TestSupport.h"

#include <cstring>
#include <string>

#include "TavDate.h"
#include "TavDateInternal.h"

using tav::test::LogCapture;

namespace {

std::string take (char *text)
{
    std::string s = text ? text : "(null)";
    g_free (text);
    return s;
}

std::string str (const TavDate &d)
{
    return std::to_string (d.year) + "-" + std::to_string (d.month) + "-" + std::to_string (d.day);
}

std::string str (const TavTime &t)
{
    return std::to_string (t.hour) + ":" + std::to_string (t.minute);
}

/* A clock stopped at a chosen instant (the tests run with TZ=UTC). */
time_t s_fixed_now = 0;
time_t fixed_clock () { return s_fixed_now; }

class FixedClock {
public:
    FixedClock (int year, int month, int day, int hour, int minute)
    {
        GDateTime *dt = g_date_time_new_utc (year, month + 1, day, hour, minute, 0);
        s_fixed_now = static_cast<time_t> (g_date_time_to_unix (dt));
        g_date_time_unref (dt);
        tav_date_set_clock (fixed_clock);
    }
    ~FixedClock () { tav_date_set_clock (nullptr); }
};

} // namespace

TEST (DateValues, BoxedTypesAreRegisteredUnderTheirNames)
{
    struct {
        GType type;
        const char *name;
    } rows[] = {
        { tav_time_get_type (), "TavTime" },
        { tav_date_get_type (), "TavDate" },
        { tav_timestamp_get_type (), "TavTimestamp" },
        { tav_date_interval_get_type (), "TavDateInterval" },
        { tav_time_interval_get_type (), "TavTimeInterval" },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.name);
        EXPECT_TRUE (G_TYPE_IS_BOXED (row.type));
        EXPECT_STREQ (g_type_name (row.type), row.name);
        EXPECT_EQ (g_type_from_name (row.name), row.type);
    }
}

TEST (DateValues, BoxedCopiesKeepEveryField)
{
    TavTimeInterval ti = { { { 2009, 2, 5 }, { 9, 5 } }, { { 2010, 11, 31 }, { 23, 59 } } };
    TavDateInterval di = { { 2001, 1, 2 }, { 2003, 4, 5 } };

    /* Through GValue, as property code copies them. */
    GValue value = G_VALUE_INIT;
    g_value_init (&value, TAV_TYPE_TIME_INTERVAL);
    g_value_set_boxed (&value, &ti);
    auto *copy = static_cast<TavTimeInterval *> (g_value_dup_boxed (&value));
    g_value_unset (&value);
    ASSERT_NE (copy, nullptr);
    EXPECT_NE (copy, &ti);
    EXPECT_EQ (memcmp (copy, &ti, sizeof ti), 0);
    tav_time_interval_free (copy);

    TavDateInterval *dcopy = tav_date_interval_copy (&di);
    EXPECT_EQ (str (dcopy->start) + " " + str (dcopy->end), "2001-1-2 2003-4-5");
    tav_date_interval_free (dcopy);

    TavTimestamp *tcopy = tav_timestamp_copy (&ti.end);
    EXPECT_EQ (str (tcopy->date) + " " + str (tcopy->time), "2010-11-31 23:59");
    tav_timestamp_free (tcopy);

    TavDate *date = tav_date_copy (&di.end);
    EXPECT_EQ (str (*date), "2003-4-5");
    tav_date_free (date);

    TavTime *time = tav_time_copy (&ti.start.time);
    EXPECT_EQ (str (*time), "9:5");
    tav_time_free (time);
}

TEST (DateValues, NullArgumentsOfSoftFunctionsWarnAndReturnNeutral)
{
    struct {
        const char *label;
        const char *condition;
        std::function<bool ()> call; /* true when the neutral value came back */
    } rows[] = {
        { "time_copy", "time != NULL", [] { return tav_time_copy (nullptr) == nullptr; } },
        { "date_copy", "date != NULL", [] { return tav_date_copy (nullptr) == nullptr; } },
        { "timestamp_copy", "timestamp != NULL", [] { return tav_timestamp_copy (nullptr) == nullptr; } },
        { "date_interval_copy", "interval != NULL", [] { return tav_date_interval_copy (nullptr) == nullptr; } },
        { "time_interval_copy", "interval != NULL", [] { return tav_time_interval_copy (nullptr) == nullptr; } },
        { "time_free", "time != NULL", [] { tav_time_free (nullptr); return true; } },
        { "date_free", "date != NULL", [] { tav_date_free (nullptr); return true; } },
        { "timestamp_free", "timestamp != NULL", [] { tav_timestamp_free (nullptr); return true; } },
        { "date_interval_free", "interval != NULL", [] { tav_date_interval_free (nullptr); return true; } },
        { "time_interval_free", "interval != NULL", [] { tav_time_interval_free (nullptr); return true; } },
        { "init_today", "date != NULL", [] { tav_date_init_today (nullptr); return true; } },
        { "init_now", "_time != NULL", [] { tav_time_init_now (nullptr); return true; } },
        { "is_valid", "date != NULL", [] { return !tav_date_is_valid (nullptr); } },
        { "limit", "date != NULL", [] { return !is_date_limit_reached (nullptr); } },
        { "contains interval", "interval != NULL",
          [] { TavDate d = { 2009, 0, 1 }; return !tav_date_interval_contains (nullptr, &d); } },
        { "contains date", "date != NULL",
          [] { TavDateInterval i = {}; return !tav_date_interval_contains (&i, nullptr); } },
        { "time_to_string", "time != NULL", [] { return tav_time_to_string (nullptr) == nullptr; } },
        { "date_to_string", "date != NULL", [] { return tav_date_to_string (nullptr) == nullptr; } },
        { "timestamp_to_string", "timestamp != NULL", [] { return tav_timestamp_to_string (nullptr) == nullptr; } },
        { "time_format", "time != NULL", [] { return tav_time_to_string_format (nullptr, FALSE) == nullptr; } },
        { "date_format", "date != NULL",
          [] { return tav_date_to_string_format (nullptr, TavDateLongFormat, 0) == nullptr; } },
        { "week_num_string", "date != NULL", [] { return tav_date_to_week_num_string (nullptr, 0) == nullptr; } },
        { "print_debug", "date != NULL", [] { tav_date_print_debug (nullptr); return true; } },
        { "interval_print_debug", "interval != NULL", [] { tav_date_interval_print_debug (nullptr); return true; } },
        { "month_dec", "date != NULL", [] { tav_date_month_dec (nullptr); return true; } },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        LogCapture capture;
        EXPECT_TRUE (row.call ());
        EXPECT_CRITICAL (capture, row.condition);
    }
}

TEST (DateValues, ClockInitialisationUsesLocalTime)
{
    FixedClock clock (2009, 2, 5, 23, 7);
    TavDate date = { 0, 0, 0 };
    TavTime time = { -1, -1 };
    tav_date_init_today (&date);
    tav_time_init_now (&time);
    EXPECT_EQ (str (date), "2009-2-5");
    EXPECT_EQ (str (time), "23:7");

    /* One hour east of UTC the same instant is already the next day. */
    const char *old_tz = g_getenv ("TZ");
    std::string saved = old_tz ? old_tz : "";
    g_setenv ("TZ", "UTC-1", TRUE);
    tzset ();
    tav_date_init_today (&date);
    tav_time_init_now (&time);
    g_setenv ("TZ", saved.c_str (), TRUE);
    tzset ();
    EXPECT_EQ (str (date), "2009-2-6");
    EXPECT_EQ (str (time), "0:7");
}

TEST (DateValues, TmConversionsWriteOnlyTheirFields)
{
    struct tm tm;
    memset (&tm, 0x5a, sizeof tm);
    const struct tm sentinel = tm;
    TavDate date = { 2009, 2, 5 };
    tav_date_to_tm (&tm, &date);
    EXPECT_EQ (tm.tm_year, 109);
    EXPECT_EQ (tm.tm_mon, 2);
    EXPECT_EQ (tm.tm_mday, 5);
    EXPECT_EQ (tm.tm_hour, sentinel.tm_hour);
    EXPECT_EQ (tm.tm_wday, sentinel.tm_wday);

    TavTime time = { 9, 5 };
    tav_time_to_tm (&tm, &time);
    EXPECT_EQ (tm.tm_hour, 9);
    EXPECT_EQ (tm.tm_min, 5);
    EXPECT_EQ (tm.tm_sec, sentinel.tm_sec);

    TavTimestamp ts = { { 1, 1, 1 }, { 2, 2 } };
    tav_tm_to_timestamp (&ts, &tm);
    EXPECT_EQ (str (ts.date) + " " + str (ts.time), "2009-2-5 9:5");

    TavDate back = { 7, 7, 7 };
    tm.tm_year = -1900;
    tav_tm_to_date (&back, &tm);
    EXPECT_EQ (str (back), "0-2-5");
    TavTime tback = { 7, 7 };
    tm.tm_min = 59;
    tav_tm_to_time (&tback, &tm);
    EXPECT_EQ (str (tback), "9:59");
}

TEST (DateValues, CompareUsesTheFirstDifferingField)
{
    struct {
        TavDate a, b;
        int expected;
    } rows[] = {
        { { 2009, 0, 1 }, { 2009, 0, 1 }, 0 },
        { { 2009, 11, 31 }, { 2010, 0, 1 }, -1 },
        { { 2012, 0, 1 }, { 2009, 11, 31 }, 3 },
        { { 2009, 1, 1 }, { 2009, 4, 1 }, -3 },
        { { 2009, 4, 30 }, { 2009, 4, 2 }, 28 },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (str (row.a) + " vs " + str (row.b));
        EXPECT_EQ (tav_date_compare (&row.a, &row.b), row.expected);
    }

    struct {
        TavTime a, b;
        int sign;
    } trows[] = {
        { { 9, 5 }, { 9, 5 }, 0 }, { { 9, 59 }, { 10, 0 }, -1 }, { { 23, 0 }, { 9, 30 }, 1 }, { { 9, 6 }, { 9, 5 }, 1 },
    };
    for (const auto &row : trows) {
        SCOPED_TRACE (str (row.a) + " vs " + str (row.b));
        int c = tav_time_compare (&row.a, &row.b);
        EXPECT_EQ ((c > 0) - (c < 0), row.sign);
    }
}

TEST (DateValues, ValidityChecksMonthAndDayUpperBound)
{
    struct {
        TavDate date;
        bool valid;
    } rows[] = {
        { { 2008, 1, 29 }, true },  { { 2009, 1, 29 }, false }, { { 2009, 12, 1 }, false },
        { { 2009, 0, 0 }, true },   { { 2009, 0, -1 }, false }, { { 2009, -1, 1 }, false },
        { { 2009, 3, 31 }, false }, { { 2009, 3, 30 }, true },  { { 0, 0, 31 }, true },
        { { -400, 11, 31 }, true }, { { 2009, 0, 32 }, false }, { { 1900, 1, 29 }, false },
        { { 2000, 1, 29 }, true },  { { 4, 1, 29 }, false },    { { 8, 1, 29 }, true },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (str (row.date));
        EXPECT_EQ (static_cast<bool> (tav_date_is_valid (&row.date)), row.valid);
    }
}

TEST (DateValues, DateLimitIsExactlyTheLastDayOf2037)
{
    struct {
        TavDate date;
        bool reached;
    } rows[] = {
        { { 2037, 11, 31 }, true }, { { 2037, 11, 30 }, false }, { { 2038, 0, 1 }, false },
        { { 2036, 11, 31 }, false }, { { 2037, 10, 31 }, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (str (row.date));
        EXPECT_EQ (static_cast<bool> (is_date_limit_reached (&row.date)), row.reached);
    }
}

TEST (DateValues, DateIntervalsContainBothEndsAndTouchingOnesIntersect)
{
    TavDateInterval a = { { 2009, 0, 1 }, { 2009, 0, 10 } };
    for (int day : { 1, 5, 10 }) {
        TavDate d = { 2009, 0, day };
        EXPECT_TRUE (tav_date_interval_contains (&a, &d)) << day;
    }
    TavDate before = { 2008, 11, 31 }, after = { 2009, 0, 11 };
    EXPECT_FALSE (tav_date_interval_contains (&a, &before));
    EXPECT_FALSE (tav_date_interval_contains (&a, &after));

    const TavDateInterval untouched = { { 1, 1, 1 }, { 1, 1, 1 } };
    struct {
        const char *label;
        TavDateInterval x, y;
        const char *expected; /* "none" when they do not intersect */
    } rows[] = {
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
        if (!hit)
            EXPECT_EQ (memcmp (&result, &untouched, sizeof result), 0) << "result written on failure";
        EXPECT_EQ (tav_date_interval_intersect (&row.x, &row.y, nullptr), hit);
    }

    /* The result may be one of the inputs. */
    TavDateInterval x = { { 2009, 0, 1 }, { 2009, 0, 20 } }, y = { { 2009, 0, 10 }, { 2009, 0, 30 } };
    EXPECT_TRUE (tav_date_interval_intersect (&x, &y, &x));
    EXPECT_EQ (str (x.start) + " " + str (x.end), "2009-0-10 2009-0-20");
}

TEST (DateValues, TimeRangesThatOnlyTouchDoNotIntersectUnlessOneIsAnInstant)
{
    struct {
        const char *label;
        TavTime as, ae, bs, be;
        const char *expected;
    } rows[] = {
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
        if (!hit)
            EXPECT_EQ (str (rs) + "-" + str (re), "-1:-1--1:-1");
        EXPECT_EQ (tav_time_intersect (&row.as, &row.ae, &row.bs, &row.be, nullptr, nullptr), hit);
    }
}

TEST (DateValues, FixedTextForms)
{
    TavTime t1 = { 9, 5 }, t2 = { 23, 0 }, t3 = { 0, 0 };
    EXPECT_EQ (take (tav_time_to_string (&t1)), " 9:05");
    EXPECT_EQ (take (tav_time_to_string (&t2)), "23:00");
    EXPECT_EQ (take (tav_time_to_string (&t3)), " 0:00");
    TavDate d1 = { 2009, 0, 7 }, d2 = { 2009, 2, 5 }, d3 = { 1999, 11, 31 };
    EXPECT_EQ (take (tav_date_to_string (&d1)), "07.01.2009");
    EXPECT_EQ (take (tav_date_to_string (&d2)), "05.03.2009");
    EXPECT_EQ (take (tav_date_to_string (&d3)), "31.12.1999");
    TavTimestamp ts = { { 2009, 2, 5 }, { 9, 5 } };
    EXPECT_EQ (take (tav_timestamp_to_string (&ts)), "05.03.2009  9:05");
}

TEST (DateValues, LocalisedFormsReadAsEnglishInTheCLocale)
{
    struct {
        TavTime time;
        gboolean twelve;
        const char *expected;
    } trows[] = {
        { { 9, 5 }, FALSE, "09:05" },  { { 23, 59 }, FALSE, "23:59" }, { { 9, 5 }, TRUE, " 9:05 am" },
        { { 0, 30 }, TRUE, "12:30 am" }, { { 12, 0 }, TRUE, "12:00 pm" }, { { 13, 45 }, TRUE, " 1:45 pm" },
        { { 11, 59 }, TRUE, "11:59 am" },
    };
    for (const auto &row : trows) {
        SCOPED_TRACE (str (row.time));
        EXPECT_EQ (take (tav_time_to_string_format (&row.time, row.twelve)), row.expected);
    }

    const TavDate date = { 2009, 2, 5 }; /* a Thursday */
    struct {
        int format;
        const char *expected;
    } drows[] = {
        { TavDateLongFormat, "Thursday, 5 March 2009" },
        { TavDateNormalFormat, "05/03/2009" },
        { TavDateShortFormat, "Thu 5" },
        { TavDateWeekNameFormat, "Thursday" },
        { TavDateWeekNameShortFormat, "Thu" },
        { 5, "" },
        { -1, "" },
    };
    for (const auto &row : drows) {
        SCOPED_TRACE (row.format);
        std::string text = take (tav_date_to_string_format (&date, static_cast<TavDateFormat> (row.format), 4));
        EXPECT_EQ (text, row.expected);
        EXPECT_EQ (text.find ("wdgt_"), std::string::npos);
    }
    /* The weekday is the caller's, not derived from the date. */
    EXPECT_EQ (take (tav_date_to_string_format (&date, TavDateWeekNameFormat, 0)), "Sunday");

    struct {
        TavDate date;
        int weekday;
        const char *expected;
    } wrows[] = {
        { { 2009, 0, 7 }, 3, "Week 2" }, { { 2010, 0, 1 }, 5, "Week 53" }, { { 2008, 11, 31 }, 3, "Week 1" },
        { { 2009, 5, 15 }, 1, "Week 25" }, { { 2009, 11, 27 }, 0, "Week 52" },
    };
    for (const auto &row : wrows) {
        SCOPED_TRACE (str (row.date));
        EXPECT_EQ (take (tav_date_to_week_num_string (&row.date, row.weekday)), row.expected);
    }
}

namespace {
std::string s_printed;
void collect_print (const char *text) { s_printed += text; }
} // namespace

TEST (DateValues, DebugPrintsUseTheRawMonth)
{
    s_printed.clear ();
    GPrintFunc old = g_set_print_handler (collect_print);
    TavDate date = { 2009, 0, 7 };
    TavDateInterval interval = { { 2009, 11, 31 }, { 2010, 0, 1 } };
    tav_date_print_debug (&date);
    tav_date_interval_print_debug (&interval);
    g_set_print_handler (old);
    EXPECT_EQ (s_printed, "2009.0.7\n2009.11.31 -- 2010.0.1\n");
}

TEST (DateValues, MonthDecWrapsTheYearAndKeepsTheDay)
{
    struct {
        TavDate from;
        const char *expected;
    } rows[] = {
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
    struct {
        const char *label;
        int year, month, day, hour, minute, alarm;
        bool valid;
    } rows[] = {
        { "15 min before 12:30", 2009, 2, 5, 12, 30, 15, true },
        { "30 min before 12:30 is now", 2009, 2, 5, 12, 30, 30, false },
        { "45 min before 12:30 is past", 2009, 2, 5, 12, 30, 45, false },
        { "event now, no alarm", 2009, 2, 5, 12, 0, 0, false },
        { "event in a minute", 2009, 2, 5, 12, 1, 0, true },
        { "a day before tomorrow noon", 2009, 2, 6, 12, 1, 24 * 60, true },
        { "past event", 2008, 2, 5, 12, 0, 0, false },
        { "huge alarm offset", 2037, 11, 31, 23, 59, G_MAXINT, false },
        { "negative offset", 2009, 2, 5, 11, 59, -2, true },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        EXPECT_EQ (static_cast<bool> (tav_check_date_time_validity_for_alarm_interval (
                       row.year, row.month, row.day, row.hour, row.minute, row.alarm)),
                   row.valid);
    }
}

/* Programming errors abort with the failed expression. */
using DateValuesDeathTest = ::testing::Test;

TEST (DateValuesDeathTest, NullInConversionsCompareAndIntersectAborts)
{
    TavDate d = { 2009, 0, 1 };
    TavTime t = { 1, 1 };
    struct tm tm = {};
    TavDateInterval i = {};
    EXPECT_DEATH (tav_date_compare (nullptr, &d), "date1 != NULL && date2 != NULL");
    EXPECT_DEATH (tav_date_compare (&d, nullptr), "date1 != NULL && date2 != NULL");
    EXPECT_DEATH (tav_date_to_tm (nullptr, &d), "dest != NULL && source != NULL");
    EXPECT_DEATH (tav_tm_to_date (&d, nullptr), "dest != NULL && source != NULL");
    EXPECT_DEATH (tav_time_to_tm (&tm, nullptr), "dest != NULL && source != NULL");
    EXPECT_DEATH (tav_tm_to_time (nullptr, &tm), "dest != NULL && source != NULL");
    EXPECT_DEATH (tav_tm_to_timestamp (nullptr, &tm), "dest != NULL && source != NULL");
    EXPECT_DEATH (tav_date_interval_intersect (&i, nullptr, nullptr), "src1 != NULL && src2 != NULL");
    EXPECT_DEATH (tav_time_intersect (&t, nullptr, &t, &t, nullptr, nullptr),
                  "atime_start != NULL && atime_end != NULL");
    EXPECT_DEATH (tav_time_intersect (&t, &t, nullptr, &t, nullptr, nullptr),
                  "btime_start != NULL && btime_end != NULL");
}

TEST (DateValuesDeathTest, LocalisedFormsOfAnInvalidDateAbort)
{
    TavDate bad = { 2009, 1, 30 };
    EXPECT_DEATH (tav_date_to_string_format (&bad, TavDateLongFormat, 0), "tav_date_is_valid\\(date\\)");
    EXPECT_DEATH (tav_date_to_week_num_string (&bad, 0), "tav_date_is_valid\\(date\\)");
}
