/* libcalendarui - the event editor's rules, apart from its widgets (internal)
 *
 * Everything the editor decides about dates, times, alarms and repetition,
 * as plain functions of values, so that the rules are tested without a
 * display and with any "now".
 */
#ifndef TAV_CALENDAR_EVENT_WINDOW_PRIVATE_H
#define TAV_CALENDAR_EVENT_WINDOW_PRIVATE_H

#include <vector>

#include "TavCalendarEnums.h"
#include "TavCalendarProcessor.h"
#include "TavDate.h"

namespace tav::editor {

/* The latest moment the calendar reaches: 31.12.2037 23:59. */
inline constexpr TavTimestamp kLastMoment = {{2037, 11, 31}, {23, 59}};

int compare (const TavTimestamp &a, const TavTimestamp &b);
int minutes_of (const TavTime &time);
TavTime time_of_minutes (int minutes);

/* Minutes from @from to @to (negative when @to is earlier). */
long minutes_between (TavCalendarProcessor *processor, const TavTimestamp &from, const TavTimestamp &to);
/* @start moved by @minutes (>= 0), but never past kLastMoment. */
TavTimestamp shift_by_minutes (TavCalendarProcessor *processor, const TavTimestamp &start, long minutes);

/* The end after the start moved from @old_start to @new_start: as far from
 * the new start as it was from the old one (at least 0), clamped to the last
 * moment of the calendar. */
TavTimestamp end_for_moved_start (TavCalendarProcessor *processor, const TavTimestamp &old_start,
                                  const TavTimestamp &old_end, const TavTimestamp &new_start);

/* An end time on the start's date that lies before the start time becomes
 * the start plus one hour (the start itself from 23:00 on). */
TavTime corrected_end_time (const TavTime &start);

/* Minutes before the start at which an alarm rings: 2 -> 5, 3 -> 15,
 * 4 -> 30, 5 -> 60, 6 -> 180, 7 -> 1440, anything else 0. */
int alarm_minutes (int alarm_code);
/* The moment an alarm @minutes before @start rings; the date steps back a
 * day when the time falls before midnight. */
TavTimestamp alarm_moment (TavCalendarProcessor *processor, const TavTimestamp &start, int minutes);
/* The save-time test of a timed alarm: it is in the past when today is on
 * or after its date and the time of day now is later than its time. */
bool alarm_lies_in_past (const TavTimestamp &alarm, const TavTimestamp &now);

/* The all-day alarm rings the day before @start_date at @alarm_time. When
 * that day is today and the time is not later than now, the time becomes
 * now rounded up to five minutes plus an hour (at most 23:55) and the
 * result is true. With @reset, on any other day the time becomes 12:00. */
bool correct_all_day_alarm (TavCalendarProcessor *processor, const TavDate &start_date, TavTime &alarm_time,
                            const TavTimestamp &now, bool reset);

/* The alarm codes the picker offers for an event starting at @start. */
std::vector<TavCalendarAlarmCode> offered_alarms (TavCalendarProcessor *processor, const TavTimestamp &start,
                                                  bool all_day, bool repeats, const TavTimestamp &now);

/* The repeat codes the picker offers for an event from @start_date to
 * @end_date; @complex adds the complex rule an entry already has. */
std::vector<TavCalendarRepeatCode> offered_repeats (TavCalendarProcessor *processor, const TavDate &start_date,
                                                    const TavDate &end_date, bool complex);

/* One step of @repeat after @start (the start itself for no repetition). */
TavDate default_until (TavCalendarProcessor *processor, const TavDate &start, int repeat);

}  // namespace tav::editor

#endif /* TAV_CALENDAR_EVENT_WINDOW_PRIVATE_H */
