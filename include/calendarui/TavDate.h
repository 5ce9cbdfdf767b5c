/* libcalendarui - date and time values
 *
 * Every date and time that crosses the library's interfaces is one of these
 * small plain records: a date (year, month 0-11, day 1-31), a time of day
 * (hour, minute), a timestamp (date and time) and intervals of dates or
 * timestamps. They are registered as boxed types; heap copies come from the
 * slice allocator and are released with the matching free function.
 *
 * Argument checks come in two kinds. The struct tm conversions, the
 * comparisons and the intersections treat a NULL argument as a programming
 * error and abort; every other function warns (a GLib critical naming the
 * failed condition) and returns NULL, 0 or FALSE.
 */
#ifndef TAV_DATE_H
#define TAV_DATE_H

#include <time.h>
#include <glib-object.h>

#include "TavExport.h"
#include "TavCalendarEnums.h"

G_BEGIN_DECLS

#define TAV_TYPE_TIME (tav_time_get_type ())
#define TAV_TYPE_DATE (tav_date_get_type ())
#define TAV_TYPE_TIMESTAMP (tav_timestamp_get_type ())
#define TAV_TYPE_DATE_INTERVAL (tav_date_interval_get_type ())
#define TAV_TYPE_TIME_INTERVAL (tav_time_interval_get_type ())

/**
 * TavDate:
 * @year: the full year, e.g. 2009
 * @month: 0 = January ... 11 = December
 * @day: day of the month, 1-31
 */
typedef struct _TavDate {
    gint32 year;
    gint32 month;
    gint32 day;
} TavDate;

/**
 * TavTime:
 * @hour: 0-23
 * @minute: 0-59
 *
 * A time of day; there is no seconds field.
 */
typedef struct _TavTime {
    gint32 hour;
    gint32 minute;
} TavTime;

/**
 * TavTimestamp:
 * @date: the day
 * @time: the time of day
 */
typedef struct _TavTimestamp {
    TavDate date;
    TavTime time;
} TavTimestamp;

/**
 * TavDateInterval:
 * @start: the first day
 * @end: the last day
 *
 * Both ends are inclusive.
 */
typedef struct _TavDateInterval {
    TavDate start;
    TavDate end;
} TavDateInterval;

/**
 * TavTimeInterval:
 * @start: the first instant
 * @end: the last instant
 */
typedef struct _TavTimeInterval {
    TavTimestamp start;
    TavTimestamp end;
} TavTimeInterval;

/* Boxed types: registered as "TavTime", "TavDate", "TavTimestamp",
 * "TavDateInterval" and "TavTimeInterval" on the first call. */
TAV_API GType tav_time_get_type          (void) G_GNUC_CONST;
TAV_API GType tav_date_get_type          (void) G_GNUC_CONST;
TAV_API GType tav_timestamp_get_type     (void) G_GNUC_CONST;
TAV_API GType tav_date_interval_get_type (void) G_GNUC_CONST;
TAV_API GType tav_time_interval_get_type (void) G_GNUC_CONST;

/**
 * tav_date_copy:
 *
 * Returns: (transfer full) (nullable): a slice-allocated copy of every field,
 * to be released with tav_date_free(); NULL (with a critical) for NULL.
 * The other four copy functions work alike.
 */
TAV_API TavTime         *tav_time_copy          (const TavTime *time);
TAV_API TavDate         *tav_date_copy          (const TavDate *date);
TAV_API TavTimestamp    *tav_timestamp_copy     (const TavTimestamp *timestamp);
TAV_API TavDateInterval *tav_date_interval_copy (const TavDateInterval *interval);
TAV_API TavTimeInterval *tav_time_interval_copy (const TavTimeInterval *interval);

TAV_API void tav_time_free          (TavTime *time);
TAV_API void tav_date_free          (TavDate *date);
TAV_API void tav_timestamp_free     (TavTimestamp *timestamp);
TAV_API void tav_date_interval_free (TavDateInterval *interval);
TAV_API void tav_time_interval_free (TavTimeInterval *interval);

/**
 * tav_date_init_today:
 *
 * Sets @date to the current local date.
 */
TAV_API void tav_date_init_today (TavDate *date);
/**
 * tav_time_init_now:
 *
 * Sets @_time to the current local hour and minute.
 */
TAV_API void tav_time_init_now   (TavTime *_time);

/* Conversions with struct tm. Only the fields named are written; the rest of
 * the destination is left as it was. Both pointers must be set. */
TAV_API void tav_date_to_tm      (struct tm *dest, const TavDate *source);
TAV_API void tav_tm_to_date      (TavDate *dest, const struct tm *source);
TAV_API void tav_time_to_tm      (struct tm *dest, const TavTime *source);
TAV_API void tav_tm_to_time      (TavTime *dest, const struct tm *source);
TAV_API void tav_tm_to_timestamp (TavTimestamp *dest, const struct tm *source);

/**
 * tav_time_compare:
 *
 * Returns: negative, 0 or positive as @time1 is earlier than, equal to or
 * later than @time2 (only the sign is meaningful).
 */
TAV_API int tav_time_compare (const TavTime *time1, const TavTime *time2);
/**
 * tav_date_compare:
 *
 * Returns: the difference of the first field that differs (years, else
 * months, else days); 0 for equal dates.
 */
TAV_API int tav_date_compare (const TavDate *date1, const TavDate *date2);
/**
 * tav_date_is_valid:
 *
 * Returns: TRUE when the month is 0-11 and the day (taken as unsigned) fits
 * the month under the calendar system in force. Day 0 passes; any year is
 * accepted.
 */
TAV_API gboolean tav_date_is_valid (const TavDate *date);

/**
 * tav_date_interval_contains:
 *
 * Returns: TRUE when @date lies inside @interval, both ends included.
 */
TAV_API gboolean tav_date_interval_contains  (const TavDateInterval *interval, const TavDate *date);
/**
 * tav_date_interval_intersect:
 * @result: (out) (optional): receives the common days
 *
 * Returns: TRUE when the intervals share at least one day; intervals that
 * touch share that day. @result is not written when they do not intersect.
 */
TAV_API gboolean tav_date_interval_intersect (const TavDateInterval *src1, const TavDateInterval *src2,
                                              TavDateInterval *result);
/**
 * tav_time_intersect:
 * @result_start: (out) (optional):
 * @result_end: (out) (optional):
 *
 * Returns: TRUE when the two time ranges overlap. Ranges that merely touch do
 * not overlap, unless one of them is a single instant.
 */
TAV_API gboolean tav_time_intersect (const TavTime *atime_start, const TavTime *atime_end,
                                     const TavTime *btime_start, const TavTime *btime_end,
                                     TavTime *result_start, TavTime *result_end);

/* Text forms. Each returns a newly allocated string, freed with g_free(). */

/* "%2d:%02d": " 9:05", "23:00". */
TAV_API char *tav_time_to_string      (const TavTime *time);
/* "%02d.%02d.%d" of day, month + 1, year: "05.03.2009". */
TAV_API char *tav_date_to_string      (const TavDate *date);
/* Date form, a blank, time form. */
TAV_API char *tav_timestamp_to_string (const TavTimestamp *timestamp);
/**
 * tav_time_to_string_format:
 *
 * Returns: (transfer full): the time in the user's 24-hour or 12-hour format.
 */
TAV_API char *tav_time_to_string_format   (const TavTime *time, gboolean twelve_hour);
/**
 * tav_date_to_string_format:
 * @date: a valid date (aborts otherwise)
 * @weekday: the date's weekday, 0 = Sunday
 *
 * Returns: (transfer full): the date in the user's @format; an empty string
 * for a value outside #TavDateFormat.
 */
TAV_API char *tav_date_to_string_format   (const TavDate *date, TavDateFormat format, int weekday);
/**
 * tav_date_to_week_num_string:
 * @date: a valid date (aborts otherwise)
 * @weekday: the date's weekday, 0 = Sunday
 *
 * Returns: (transfer full): the localised week-number label, e.g. "Week 5".
 */
TAV_API char *tav_date_to_week_num_string (const TavDate *date, int weekday);

/* Debug prints to standard output: "year.month.day" with the raw 0-based month. */
TAV_API void tav_date_print_debug          (const TavDate *date);
TAV_API void tav_date_interval_print_debug (const TavDateInterval *interval);

/**
 * tav_date_month_dec:
 *
 * Steps the month back by one (January goes to December of the previous
 * year). The day is not clamped.
 */
TAV_API void tav_date_month_dec (TavDate *date);

/**
 * tav_check_date_time_validity_for_alarm_interval:
 *
 * Returns: TRUE when an alarm @alarm_minutes before the given local time
 * still lies strictly in the future.
 */
TAV_API gboolean tav_check_date_time_validity_for_alarm_interval (int year, int month, int day,
                                                                  int hour, int minute,
                                                                  int alarm_minutes);

/**
 * is_date_limit_reached:
 *
 * Returns: TRUE for exactly 31 December 2037, the last date the calendar
 * may reach; FALSE for every other date, later ones included.
 */
TAV_API gboolean is_date_limit_reached (const TavDate *date);

G_END_DECLS

#endif /* TAV_DATE_H */
