/* The event editor's rules for dates, times, alarms and repetition. */

#include <calendarui.h>

#include "TavCalendarEventWindowPrivate.h"
#include "TavGPtr.h"
#include "TestSupport.h"

using namespace tav::editor;

namespace {

struct Rules : ::testing::Test {
    tav::GRefPtr<TavCalendarProcessor> processor = tav::adoptGRef (tav_calendar_processor_new ());
    TavCalendarProcessor *p () { return processor.get (); }
};

std::string text (const TavTimestamp &t)
{
    char buf[64];
    g_snprintf (buf, sizeof buf, "%04d-%02d-%02d %02d:%02d", t.date.year, t.date.month + 1, t.date.day, t.time.hour,
                t.time.minute);
    return buf;
}

TavTimestamp at (int y, int m, int d, int hh, int mm)
{
    return TavTimestamp {{y, m - 1, d}, {hh, mm}};
}

} // namespace

TEST_F (Rules, MovingTheStartKeepsTheLengthUpToTheLastMoment)
{
    struct { TavTimestamp old_start, old_end, new_start; const char *end; } rows[] = {
        {at (2026, 3, 10, 9, 0), at (2026, 3, 10, 10, 30), at (2026, 3, 12, 23, 0), "2026-03-13 00:30"},
        {at (2026, 3, 10, 9, 0), at (2026, 3, 12, 9, 0), at (2026, 2, 27, 9, 0), "2026-03-01 09:00"},
        {at (2024, 2, 28, 22, 0), at (2024, 2, 29, 1, 0), at (2023, 2, 28, 22, 0), "2023-03-01 01:00"},
        /* An end that lay before the start counts as no length. */
        {at (2026, 3, 10, 9, 0), at (2026, 3, 9, 9, 0), at (2026, 3, 11, 8, 0), "2026-03-11 08:00"},
        /* Never past 31.12.2037 23:59. */
        {at (2026, 3, 10, 9, 0), at (2026, 3, 17, 9, 0), at (2037, 12, 28, 9, 0), "2037-12-31 23:59"},
        {at (2026, 3, 10, 9, 0), at (2026, 3, 10, 9, 30), at (2037, 12, 31, 23, 50), "2037-12-31 23:59"},
    };
    for (const auto &r : rows)
        EXPECT_EQ (text (end_for_moved_start (p (), r.old_start, r.old_end, r.new_start)), r.end) << text (r.new_start);

    EXPECT_EQ (corrected_end_time ({10, 15}).hour, 11);
    EXPECT_EQ (corrected_end_time ({10, 15}).minute, 15);
    EXPECT_EQ (corrected_end_time ({23, 10}).hour, 23) << "from 23:00 the end is the start itself";
    EXPECT_EQ (corrected_end_time ({23, 10}).minute, 10);
}

TEST_F (Rules, AlarmMomentsAndTheSaveTimeTest)
{
    const int expected[] = {0, 0, 5, 15, 30, 60, 180, 1440, 0};
    for (int code = 0; code <= 8; ++code)
        EXPECT_EQ (alarm_minutes (code), expected[code]) << code;
    EXPECT_EQ (text (alarm_moment (p (), at (2026, 3, 1, 0, 3), 5)), "2026-02-28 23:58");
    EXPECT_EQ (text (alarm_moment (p (), at (2026, 1, 1, 9, 0), 1440)), "2025-12-31 09:00");
    EXPECT_EQ (text (alarm_moment (p (), at (2026, 1, 1, 9, 0), 180)), "2026-01-01 06:00");

    const TavTimestamp alarm = at (2026, 5, 10, 8, 45);
    EXPECT_FALSE (alarm_lies_in_past (alarm, at (2026, 5, 9, 23, 0)));
    EXPECT_FALSE (alarm_lies_in_past (alarm, at (2026, 5, 10, 8, 45)));
    EXPECT_TRUE (alarm_lies_in_past (alarm, at (2026, 5, 10, 8, 46)));
    EXPECT_TRUE (alarm_lies_in_past (alarm, at (2026, 5, 11, 9, 0)));
    /* Only the times of day are compared once the day has come. */
    EXPECT_FALSE (alarm_lies_in_past (alarm, at (2026, 5, 11, 7, 0)));
}

TEST_F (Rules, AllDayAlarmIsCorrectedOnItsDayOnly)
{
    struct { TavTimestamp now; TavTime alarm; bool reset; bool corrected; TavTime result; } rows[] = {
        {at (2026, 5, 9, 22, 58), {12, 0}, false, true, {23, 55}},  /* capped, not 00:00 */
        {at (2026, 5, 9, 10, 2), {9, 0}, false, true, {11, 5}},     /* rounded up to 5 minutes */
        {at (2026, 5, 9, 10, 0), {10, 0}, false, true, {11, 0}},    /* equal is not later */
        {at (2026, 5, 9, 10, 0), {10, 1}, false, false, {10, 1}},
        {at (2026, 5, 8, 10, 0), {9, 0}, false, false, {9, 0}},     /* another day: kept */
        {at (2026, 5, 8, 10, 0), {9, 0}, true, false, {12, 0}},     /* ... or reset */
    };
    const TavDate start = {2026, 4, 10};
    for (const auto &r : rows) {
        TavTime alarm = r.alarm;
        EXPECT_EQ (correct_all_day_alarm (p (), start, alarm, r.now, r.reset), r.corrected) << text (r.now);
        EXPECT_EQ (alarm.hour * 60 + alarm.minute, r.result.hour * 60 + r.result.minute) << text (r.now);
    }
}

TEST_F (Rules, PickersOfferWhatFitsTheEvent)
{
    using R = TavCalendarRepeatCode;
    const R none = TavCalendarRepeatsNoRepeat, day = TavCalendarRepeatsEveryDay, work = TavCalendarRepeatsEveryWorkday,
            week = TavCalendarRepeatsEveryWeek, month = TavCalendarRepeatsEveryMonth,
            year = TavCalendarRepeatsEveryYear, complex = TavCalendarRepeatsComplex;
    struct { TavDate start, end; bool complex; std::vector<R> rows; } repeats[] = {
        {{2026, 2, 11}, {2026, 2, 11}, false, {none, day, work, week, month, year}}, /* a Wednesday */
        {{2026, 2, 14}, {2026, 2, 14}, false, {none, day, week, month, year}},       /* a Saturday */
        {{2026, 2, 11}, {2026, 2, 13}, false, {none, week, month, year}},
        {{2026, 2, 11}, {2026, 2, 20}, true, {none, month, year, complex}},
        {{2026, 1, 1}, {2026, 2, 10}, false, {none, year}}, {{2026, 1, 1}, {2027, 2, 10}, false, {none}},
    };
    for (const auto &r : repeats)
        EXPECT_EQ (offered_repeats (p (), r.start, r.end, r.complex), r.rows) << r.start.day << "-" << r.end.day;

    struct { int repeat; TavDate until; } untils[] = {
        {none, {2026, 2, 13}}, {day, {2026, 2, 14}}, {work, {2026, 2, 16}}, {week, {2026, 2, 20}},
        {month, {2026, 3, 13}}, {year, {2027, 2, 13}},
    };
    for (const auto &u : untils) {
        const TavDate got = default_until (p (), {2026, 2, 13}, u.repeat); /* a Friday */
        EXPECT_EQ (tav_date_compare (&got, &u.until), 0) << u.repeat;
    }
    const TavDate late = default_until (p (), {2037, 12 - 1, 20}, year);
    EXPECT_EQ (late.year, 2037) << "never past the calendar's last year";

    using A = TavCalendarAlarmCode;
    const TavTimestamp now = at (2026, 5, 10, 8, 50);
    EXPECT_EQ (offered_alarms (p (), at (2026, 5, 10, 9, 10), false, false, now),
               (std::vector<A> {TavCalendarAlarmNone, TavCalendarAlarm0Min, TavCalendarAlarm5Min, TavCalendarAlarm15Min}));
    EXPECT_EQ (offered_alarms (p (), at (2026, 5, 10, 9, 10), false, true, now).size (), 8u)
        << "a repeating event rings again";
    EXPECT_EQ (offered_alarms (p (), at (2026, 5, 11, 0, 0), true, false, now),
               (std::vector<A> {TavCalendarAlarmNone, TavCalendarAlarmDayBefore}));
    EXPECT_EQ (offered_alarms (p (), at (2026, 5, 10, 0, 0), true, false, now), (std::vector<A> {TavCalendarAlarmNone}));
}
