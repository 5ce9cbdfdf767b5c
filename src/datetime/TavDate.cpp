/* libcalendarui - date and time values */

#include "TavDate.h"

#include <atomic>
#include <cstring>

#include "TavCalendarProcessor.h"
#include "TavDateInternal.h"
#include "TavIntl.h"

namespace {

/* strftime gets a 256-byte buffer and may fill 255 bytes of it. */
constexpr gsize kFormatBufferSize = 256;
constexpr gsize kFormatLimit = 255;

std::atomic<TavClockFunc> s_clock { nullptr };

/* Field arithmetic at the ends of the int range wraps around instead of
 * overflowing. */
inline int wrap_add (int a, int b)
{
    return static_cast<int> (static_cast<unsigned> (a) + static_cast<unsigned> (b));
}

/* a - b, saturated to the int range: the sign is always right. */
inline int saturated_difference (int a, int b)
{
    gint64 d = static_cast<gint64> (a) - b;
    return static_cast<int> (CLAMP (d, G_MININT, G_MAXINT));
}

void local_now (struct tm *tm)
{
    time_t now = tav_date_now ();
    localtime_r (&now, tm);
}

/* Fills @buffer from a translated strftime format. strftime leaves the
 * buffer undefined when the text does not fit; the caller then gets an empty
 * string rather than a cut-off one. */
void format_into (char *buffer, const char *format, const struct tm *tm)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    if (strftime (buffer, kFormatLimit, format, tm) == 0)
        buffer[0] = '\0';
#pragma GCC diagnostic pop
}

/* The broken-down date handed to strftime. Besides the fields and the
 * caller's weekday it carries the day of the year, which %V, %U and %j read:
 * without it every date would be numbered as if it were 1 January. */
void date_to_format_tm (struct tm *tm, const TavDate *date, int weekday)
{
    memset (tm, 0, sizeof *tm);
    tav_date_to_tm (tm, date);
    tm->tm_wday = weekday;
    tm->tm_yday = tav_calendar_processor_date_to_day_of_year (tav_date_shared_processor (), date) - 1;
}

const char *date_format_message_id (TavDateFormat format)
{
    switch (format) {
    case TavDateLongFormat:
        return "wdgt_va_date_long";
    case TavDateNormalFormat:
        return "wdgt_va_date";
    case TavDateShortFormat:
        return "wdgt_va_date_short";
    case TavDateWeekNameFormat:
        return "wdgt_va_week";
    case TavDateWeekNameShortFormat:
        return "wdgt_va_week_name_short";
    }
    return nullptr;
}

} // namespace

/* Boxed types ------------------------------------------------------------- */

G_DEFINE_BOXED_TYPE (TavTimeInterval, tav_time_interval, tav_time_interval_copy, tav_time_interval_free)
G_DEFINE_BOXED_TYPE (TavDateInterval, tav_date_interval, tav_date_interval_copy, tav_date_interval_free)
G_DEFINE_BOXED_TYPE (TavTimestamp, tav_timestamp, tav_timestamp_copy, tav_timestamp_free)
G_DEFINE_BOXED_TYPE (TavDate, tav_date, tav_date_copy, tav_date_free)
G_DEFINE_BOXED_TYPE (TavTime, tav_time, tav_time_copy, tav_time_free)

/* Internal interface ------------------------------------------------------ */

void tav_date_set_clock (TavClockFunc clock)
{
    s_clock.store (clock);
}

time_t tav_date_now (void)
{
    TavClockFunc clock = s_clock.load ();
    return clock ? clock () : time (nullptr);
}

TavCalendarProcessor *tav_date_shared_processor (void)
{
    /* Created once and kept: validity checks run in every loop of the
     * views, and the calendar system cannot change during a process. */
    static TavCalendarProcessor *processor = tav_calendar_processor_new ();
    return processor;
}

/* Copy and free ----------------------------------------------------------- */

/* Every boxed type is copied and freed alike through the slice allocator.
 * @arg is the parameter's name, which a NULL check reports ("time != NULL"). */
#define TAV_DEFINE_COPY_AND_FREE(Type, prefix, arg) \
    Type *prefix##_copy (const Type *arg)           \
    {                                               \
        g_return_val_if_fail (arg != NULL, nullptr); \
        return g_slice_dup (Type, arg);             \
    }                                               \
    void prefix##_free (Type *arg)                  \
    {                                               \
        g_return_if_fail (arg != NULL);             \
        g_slice_free (Type, arg);                   \
    }

TAV_DEFINE_COPY_AND_FREE (TavTime, tav_time, time)
TAV_DEFINE_COPY_AND_FREE (TavDate, tav_date, date)
TAV_DEFINE_COPY_AND_FREE (TavTimestamp, tav_timestamp, timestamp)
TAV_DEFINE_COPY_AND_FREE (TavDateInterval, tav_date_interval, interval)
TAV_DEFINE_COPY_AND_FREE (TavTimeInterval, tav_time_interval, interval)

#undef TAV_DEFINE_COPY_AND_FREE

/* Clock ------------------------------------------------------------------- */

void tav_date_init_today (TavDate *date)
{
    g_return_if_fail (date != NULL);
    struct tm tm;
    local_now (&tm);
    date->year = tm.tm_year + 1900;
    date->month = tm.tm_mon;
    date->day = tm.tm_mday;
}

void tav_time_init_now (TavTime *_time)
{
    g_return_if_fail (_time != NULL);
    struct tm tm;
    local_now (&tm);
    _time->hour = tm.tm_hour;
    _time->minute = tm.tm_min;
}

/* struct tm --------------------------------------------------------------- */

void tav_date_to_tm (struct tm *dest, const TavDate *source)
{
    g_assert (dest != NULL && source != NULL);
    dest->tm_year = wrap_add (source->year, -1900);
    dest->tm_mon = source->month;
    dest->tm_mday = source->day;
}

void tav_tm_to_date (TavDate *dest, const struct tm *source)
{
    g_assert (dest != NULL && source != NULL);
    dest->year = wrap_add (source->tm_year, 1900);
    dest->month = source->tm_mon;
    dest->day = source->tm_mday;
}

void tav_time_to_tm (struct tm *dest, const TavTime *source)
{
    g_assert (dest != NULL && source != NULL);
    dest->tm_hour = source->hour;
    dest->tm_min = source->minute;
}

void tav_tm_to_time (TavTime *dest, const struct tm *source)
{
    g_assert (dest != NULL && source != NULL);
    dest->hour = source->tm_hour;
    dest->minute = source->tm_min;
}

void tav_tm_to_timestamp (TavTimestamp *dest, const struct tm *source)
{
    g_assert (dest != NULL && source != NULL);
    tav_tm_to_date (&dest->date, source);
    tav_tm_to_time (&dest->time, source);
}

/* Comparison -------------------------------------------------------------- */

int tav_time_compare (const TavTime *time1, const TavTime *time2)
{
    g_assert (time1 != NULL && time2 != NULL);
    if (time1->hour != time2->hour)
        return saturated_difference (time1->hour, time2->hour);
    return saturated_difference (time1->minute, time2->minute);
}

int tav_date_compare (const TavDate *date1, const TavDate *date2)
{
    g_assert (date1 != NULL && date2 != NULL);
    if (date1->year != date2->year)
        return saturated_difference (date1->year, date2->year);
    if (date1->month != date2->month)
        return saturated_difference (date1->month, date2->month);
    return saturated_difference (date1->day, date2->day);
}

gboolean tav_date_is_valid (const TavDate *date)
{
    g_return_val_if_fail (date != NULL, FALSE);
    /* Only the upper bound of the day is checked: day 0 passes, a negative
     * day fails as a huge unsigned number. */
    if (static_cast<guint> (date->day) > 31)
        return FALSE;
    if (date->month < 0 || date->month > 11)
        return FALSE;
    int length = tav_calendar_processor_month_length (tav_date_shared_processor (), date->year,
                                                      static_cast<guint> (date->month));
    return length >= date->day;
}

gboolean is_date_limit_reached (const TavDate *date)
{
    g_return_val_if_fail (date != NULL, FALSE);
    return date->year == 2037 && date->month == 11 && date->day == 31;
}

/* Intervals --------------------------------------------------------------- */

gboolean tav_date_interval_contains (const TavDateInterval *interval, const TavDate *date)
{
    g_return_val_if_fail (interval != NULL, FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    return tav_date_compare (&interval->start, date) <= 0 && tav_date_compare (date, &interval->end) <= 0;
}

gboolean tav_date_interval_intersect (const TavDateInterval *src1, const TavDateInterval *src2,
                                      TavDateInterval *result)
{
    g_assert (src1 != NULL && src2 != NULL);
    const TavDate &start = tav_date_compare (&src1->start, &src2->start) > 0 ? src1->start : src2->start;
    const TavDate &end = tav_date_compare (&src1->end, &src2->end) > 0 ? src2->end : src1->end;
    if (tav_date_compare (&start, &end) > 0)
        return FALSE;
    if (result) {
        /* @result may be one of the sources: read both ends before writing. */
        TavDateInterval common = { start, end };
        *result = common;
    }
    return TRUE;
}

gboolean tav_time_intersect (const TavTime *atime_start, const TavTime *atime_end,
                             const TavTime *btime_start, const TavTime *btime_end,
                             TavTime *result_start, TavTime *result_end)
{
    g_assert (atime_start != NULL && atime_end != NULL);
    g_assert (btime_start != NULL && btime_end != NULL);

    TavTime start = tav_time_compare (atime_start, btime_start) > 0 ? *atime_start : *btime_start;
    TavTime end = tav_time_compare (atime_end, btime_end) > 0 ? *btime_end : *atime_end;
    int order = tav_time_compare (&start, &end);
    if (order > 0)
        return FALSE;
    /* Two ranges that only touch (one ends when the other starts) do not
     * overlap; an instant at the edge of a range does. */
    if (order == 0 && tav_time_compare (atime_start, atime_end) != 0
        && tav_time_compare (btime_start, btime_end) != 0)
        return FALSE;
    if (result_start)
        *result_start = start;
    if (result_end)
        *result_end = end;
    return TRUE;
}

/* Text forms -------------------------------------------------------------- */

char *tav_time_to_string (const TavTime *time)
{
    g_return_val_if_fail (time != NULL, nullptr);
    return g_strdup_printf ("%2d:%02d", time->hour, time->minute);
}

char *tav_date_to_string (const TavDate *date)
{
    g_return_val_if_fail (date != NULL, nullptr);
    return g_strdup_printf ("%02d.%02d.%d", date->day, wrap_add (date->month, 1), date->year);
}

char *tav_timestamp_to_string (const TavTimestamp *timestamp)
{
    g_return_val_if_fail (timestamp != NULL, nullptr);
    char *date = tav_date_to_string (&timestamp->date);
    char *time = tav_time_to_string (&timestamp->time);
    char *text = g_strdup_printf ("%s %s", date, time);
    g_free (date);
    g_free (time);
    return text;
}

char *tav_time_to_string_format (const TavTime *time, gboolean twelve_hour)
{
    g_return_val_if_fail (time != NULL, nullptr);
    char *retval = static_cast<char *> (g_try_malloc0 (kFormatBufferSize));
    g_return_val_if_fail (retval != NULL, nullptr);

    struct tm tm;
    memset (&tm, 0, sizeof tm);
    tav_time_to_tm (&tm, time);
    const char *id = !twelve_hour ? "wdgt_va_24h_time"
                     : time->hour > 11 ? "wdgt_va_12h_time_pm"
                                       : "wdgt_va_12h_time_am";
    format_into (retval, TAV_KIVO (id), &tm);
    return retval;
}

char *tav_date_to_string_format (const TavDate *date, TavDateFormat format, int weekday)
{
    g_return_val_if_fail (date != NULL, nullptr);
    g_assert (tav_date_is_valid(date));
    char *retval = static_cast<char *> (g_try_malloc0 (kFormatBufferSize));
    g_return_val_if_fail (retval != NULL, nullptr);

    const char *id = date_format_message_id (format);
    if (!id)
        return retval;
    struct tm tm;
    date_to_format_tm (&tm, date, weekday);
    format_into (retval, TAV_KIVO (id), &tm);
    return retval;
}

char *tav_date_to_week_num_string (const TavDate *date, int weekday)
{
    g_return_val_if_fail (date != NULL, nullptr);
    g_assert (tav_date_is_valid(date));
    char *retval = static_cast<char *> (g_try_malloc0 (kFormatBufferSize));
    g_return_val_if_fail (retval != NULL, nullptr);

    struct tm tm;
    date_to_format_tm (&tm, date, weekday);
    format_into (retval, TAV_KIVO ("wdgt_va_week_number"), &tm);
    return retval;
}

void tav_date_print_debug (const TavDate *date)
{
    g_return_if_fail (date != NULL);
    g_print ("%d.%d.%d\n", date->year, date->month, date->day);
}

void tav_date_interval_print_debug (const TavDateInterval *interval)
{
    g_return_if_fail (interval != NULL);
    g_print ("%d.%d.%d -- %d.%d.%d\n", interval->start.year, interval->start.month, interval->start.day,
             interval->end.year, interval->end.month, interval->end.day);
}

/* Other ------------------------------------------------------------------- */

void tav_date_month_dec (TavDate *date)
{
    g_return_if_fail (date != NULL);
    if (date->month == 0) {
        date->month = 11;
        date->year = wrap_add (date->year, -1);
    } else {
        date->month = wrap_add (date->month, -1);
    }
}

gboolean tav_check_date_time_validity_for_alarm_interval (int year, int month, int day, int hour, int minute,
                                                          int alarm_minutes)
{
    /* A year that struct tm cannot hold names no instant: no alarm. */
    const gint64 tm_year = static_cast<gint64> (year) - 1900;
    if (tm_year < G_MININT)
        return FALSE;
    struct tm tm;
    memset (&tm, 0, sizeof tm);
    tm.tm_year = static_cast<int> (tm_year);
    tm.tm_mon = month;
    tm.tm_mday = day;
    tm.tm_hour = hour;
    tm.tm_min = minute;
    tm.tm_sec = 0;
    tm.tm_isdst = -1;
    time_t event_time = mktime (&tm);
    if (event_time == static_cast<time_t> (-1))
        return FALSE;
    /* 64-bit sums: a large alarm offset must not wrap around. */
    gint64 alarm_time = static_cast<gint64> (tav_date_now ()) + static_cast<gint64> (alarm_minutes) * 60;
    return alarm_time < static_cast<gint64> (event_time);
}
