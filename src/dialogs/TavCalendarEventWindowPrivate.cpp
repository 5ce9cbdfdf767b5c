/* libcalendarui - the event editor's rules, apart from its widgets */

#include "TavCalendarEventWindowPrivate.h"

#include <algorithm>

namespace tav::editor {

namespace {

constexpr int kMinutesPerDay = 24 * 60;

}  // namespace

int compare (const TavTimestamp &a, const TavTimestamp &b)
{
    const int by_date = tav_date_compare (&a.date, &b.date);
    return by_date ? by_date : tav_time_compare (&a.time, &b.time);
}

int minutes_of (const TavTime &time)
{
    return time.hour * 60 + time.minute;
}

TavTime time_of_minutes (int minutes)
{
    return TavTime {minutes / 60, minutes % 60};
}

long minutes_between (TavCalendarProcessor *processor, const TavTimestamp &from, const TavTimestamp &to)
{
    long days;
    if (tav_date_compare (&to.date, &from.date) >= 0) {
        days = tav_calendar_processor_get_date_interval_in_days (processor, from.date, to.date);
    } else {
        days = -static_cast<long> (tav_calendar_processor_get_date_interval_in_days (processor, to.date, from.date));
    }
    return days * kMinutesPerDay + minutes_of (to.time) - minutes_of (from.time);
}

TavTimestamp shift_by_minutes (TavCalendarProcessor *processor, const TavTimestamp &start, long minutes)
{
    if (compare (start, kLastMoment) >= 0)
        return start;
    /* Never step past the last moment: the distance that is left decides. */
    const long room = minutes_between (processor, start, kLastMoment);
    if (minutes >= room)
        return kLastMoment;
    const long total = minutes_of (start.time) + std::max (minutes, 0L);
    TavTimestamp out = start;
    tav_calendar_processor_inc_date_by_days (processor, &out.date, static_cast<int> (total / kMinutesPerDay));
    out.time = time_of_minutes (static_cast<int> (total % kMinutesPerDay));
    return out;
}

TavTimestamp end_for_moved_start (TavCalendarProcessor *processor, const TavTimestamp &old_start,
                                  const TavTimestamp &old_end, const TavTimestamp &new_start)
{
    const long length = std::max (minutes_between (processor, old_start, old_end), 0L);
    return shift_by_minutes (processor, new_start, length);
}

TavTime corrected_end_time (const TavTime &start)
{
    if (start.hour >= 23)
        return start;
    return TavTime {start.hour + 1, start.minute};
}

int alarm_minutes (int alarm_code)
{
    switch (alarm_code) {
    case TavCalendarAlarm5Min: return 5;
    case TavCalendarAlarm15Min: return 15;
    case TavCalendarAlarm30Min: return 30;
    case TavCalendarAlarm1Hour: return 60;
    case TavCalendarAlarm3Hours: return 180;
    case TavCalendarAlarmDayBefore: return 1440;
    default: return 0;
    }
}

TavTimestamp alarm_moment (TavCalendarProcessor *processor, const TavTimestamp &start, int minutes)
{
    /* The longest alarm is a day: the date steps back at most once. */
    TavTimestamp alarm = start;
    int at = minutes_of (start.time) - minutes;
    if (at < 0) {
        at += kMinutesPerDay;
        tav_calendar_processor_dec_date (processor, &alarm.date);
    }
    alarm.time = time_of_minutes (at);
    return alarm;
}

bool alarm_lies_in_past (const TavTimestamp &alarm, const TavTimestamp &now)
{
    return tav_date_compare (&now.date, &alarm.date) >= 0 && tav_time_compare (&now.time, &alarm.time) > 0;
}

bool correct_all_day_alarm (TavCalendarProcessor *processor, const TavDate &start_date, TavTime &alarm_time,
                            const TavTimestamp &now, bool reset)
{
    TavDate alarm_day = start_date;
    tav_calendar_processor_dec_date (processor, &alarm_day);
    const bool alarm_today = tav_date_compare (&alarm_day, &now.date) == 0;
    if (alarm_today && tav_time_compare (&alarm_time, &now.time) <= 0) {
        const int rounded = (minutes_of (now.time) + 4) / 5 * 5;
        alarm_time = time_of_minutes (std::min (rounded + 60, 23 * 60 + 55));
        return true;
    }
    if (reset && !alarm_today)
        alarm_time = TavTime {12, 0};
    return false;
}

std::vector<TavCalendarAlarmCode> offered_alarms (TavCalendarProcessor *processor, const TavTimestamp &start,
                                                  bool all_day, bool repeats, const TavTimestamp &now)
{
    std::vector<TavCalendarAlarmCode> rows {TavCalendarAlarmNone};
    if (all_day) {
        /* The day-before alarm can still ring when its day is not over:
         * the start is tomorrow or later (a repeating event rings again). */
        TavDate alarm_day = start.date;
        tav_calendar_processor_dec_date (processor, &alarm_day);
        if (repeats || tav_date_compare (&alarm_day, &now.date) >= 0)
            rows.push_back (TavCalendarAlarmDayBefore);
        return rows;
    }
    for (int code = TavCalendarAlarm0Min; code <= TavCalendarAlarmDayBefore; ++code) {
        const TavTimestamp ring = alarm_moment (processor, start, alarm_minutes (code));
        if (repeats || compare (ring, now) > 0)
            rows.push_back (static_cast<TavCalendarAlarmCode> (code));
    }
    return rows;
}

std::vector<TavCalendarRepeatCode> offered_repeats (TavCalendarProcessor *processor, const TavDate &start_date,
                                                    const TavDate &end_date, bool complex)
{
    const int length = std::max (tav_calendar_processor_get_date_interval_in_days (processor, start_date, end_date), 0);
    std::vector<TavCalendarRepeatCode> rows {TavCalendarRepeatsNoRepeat};
    if (length < 1) {
        rows.push_back (TavCalendarRepeatsEveryDay);
        if (tav_calendar_processor_is_date_weekday (processor, &start_date))
            rows.push_back (TavCalendarRepeatsEveryWorkday);
    }
    if (length < 7)
        rows.push_back (TavCalendarRepeatsEveryWeek);
    if (length < 28)
        rows.push_back (TavCalendarRepeatsEveryMonth);
    if (length < 365)
        rows.push_back (TavCalendarRepeatsEveryYear);
    if (complex)
        rows.push_back (TavCalendarRepeatsComplex);
    return rows;
}

TavDate default_until (TavCalendarProcessor *processor, const TavDate &start, int repeat)
{
    TavDate until = start;
    switch (repeat) {
    case TavCalendarRepeatsEveryDay:
        tav_calendar_processor_inc_date (processor, &until);
        break;
    case TavCalendarRepeatsEveryWorkday:
        tav_calendar_processor_next_weekday (processor, &until);
        break;
    case TavCalendarRepeatsEveryWeek:
        tav_calendar_processor_inc_date_by_days (processor, &until, 7);
        break;
    case TavCalendarRepeatsEveryMonth:
        tav_calendar_processor_inc_month_by_count (processor, &until, 1);
        break;
    case TavCalendarRepeatsEveryYear:
        /* The processor's month stepping turns the year only when the month
         * number wraps, which twelve months never do: step the year here. */
        until.year++;
        until.day = std::min (until.day, tav_calendar_processor_month_length (processor, until.year, until.month));
        break;
    default:
        break;
    }
    if (tav_date_compare (&until, &kLastMoment.date) > 0)
        until = kLastMoment.date;
    return until;
}

}  // namespace tav::editor
