/* The public date functions and the calendar processor on arbitrary field
 * values: nothing may crash, hang or overflow, and stepping by days agrees
 * with the day distance wherever both ends are valid dates. */
#include "FuzzSupport.h"

#include <calendarui.h>

using tav::fuzz::Input;

namespace {

TavDate any_date (Input &in)
{
    /* Half the time a plausible date, else raw field values. */
    if (in.byte () & 1)
        return { in.range (-3000, 12000), in.range (-2, 13), in.range (-2, 33) };
    return { in.int32 (), in.int32 (), in.int32 () };
}

bool same (const TavDate &a, const TavDate &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

/* A day that exists: valid (which lets day 0 pass), and not in a month
 * where one of the calendar reforms skipped days (October 1582, September
 * 1752, February 1918), whose missing days stepping treats apart. */
bool real (TavCalendarProcessor *, const TavDate &d)
{
    if (d.day < 1 || !tav_date_is_valid (&d))
        return false;
    return !((d.year == 1582 && d.month == 9) || (d.year == 1752 && d.month == 8) || (d.year == 1918 && d.month == 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size)
{
    tav::fuzz::quiet_logs ();
    static TavCalendarProcessor *p = tav_calendar_processor_new ();
    Input in (data, size);
    tav_calendar_processor_set_first_day_of_week (p, in.byte () % 9);
    for (int op = 0; op < 64 && !in.empty (); op++) {
        TavDate d = any_date (in);
        const int n = in.byte () & 1 ? in.range (-50000, 50000) : in.int32 ();
        switch (in.byte () % 22) {
        case 0: tav_calendar_processor_date_is_gregorian (p, &d); break;
        case 1: tav_calendar_processor_date_to_julian_day_number (p, &d); break;
        case 2: tav_calendar_processor_date_to_day_of_week (p, &d); break;
        case 3: tav_calendar_processor_is_first_day_of_week (p, &d); tav_calendar_processor_is_last_day_of_week (p, &d); break;
        case 4: tav_calendar_processor_date_to_week_number (p, &d); break;
        case 5: tav_calendar_processor_is_leap_year (p, d.year); tav_calendar_processor_date_to_day_of_year (p, &d); break;
        case 6: tav_calendar_processor_month_length (p, d.year, (guint) d.month); break;
        case 7: tav_calendar_processor_inc_date (p, &d); tav_calendar_processor_dec_date (p, &d); break;
        /* A day past 31, and an invalid date to format, are fatal
         * assertions by contract: not fed. */
        case 8: if (d.day > 31) break;
                tav_calendar_processor_inc_month (p, &d); tav_calendar_processor_inc_month_by_count (p, &d, n); break;
        case 9: {
            TavDateInterval week;
            tav_calendar_processor_get_week (p, d.year, (guint) n, &week);
            tav_calendar_processor_next_weekday (p, &d);
            break;
        }
        case 10: {
            TavDate e = any_date (in);
            tav_calendar_processor_get_date_interval_in_days (p, d, e);
            tav_date_compare (&d, &e);
            break;
        }
        case 11: {
            /* Stepping k days forward and measuring the distance back. */
            const int k = n < 0 ? -(n + 1) : n;
            if (!real (p, d))
                break;
            TavDate e = d;
            tav_calendar_processor_inc_date_by_days (p, &e, k);
            if (!real (p, e))
                break;
            const int back = tav_calendar_processor_get_date_interval_in_days (p, d, e);
            FUZZ_CHECK (back == k, "%d-%d-%d + %d days = %d-%d-%d, distance %d", d.year, d.month, d.day, k, e.year,
                        e.month, e.day, back);
            tav_calendar_processor_dec_date_by_days (p, &e, k);
            FUZZ_CHECK (same (e, d), "%d-%d-%d +/- %d days gives %d-%d-%d", d.year, d.month, d.day, k, e.year, e.month, e.day);
            break;
        }
        case 12: {
            struct tm tm = {};
            tav_date_to_tm (&tm, &d);
            tav_tm_to_date (&d, &tm);
            break;
        }
        case 13: if (!tav_date_is_valid (&d)) break;
                 g_free (tav_date_to_string (&d)); g_free (tav_date_to_week_num_string (&d, n)); break;
        case 14: if (!tav_date_is_valid (&d)) break;
                 g_free (tav_date_to_string_format (&d, (TavDateFormat) (in.byte () % 8), n)); break;
        case 15: {
            TavTime t = { in.int32 (), in.int32 () }, u = { in.int32 (), in.int32 () };
            g_free (tav_time_to_string (&t));
            g_free (tav_time_to_string_format (&t, n & 1));
            TavTime rs, re;
            tav_time_intersect (&t, &u, &u, &t, &rs, &re);
            tav_time_compare (&t, &u);
            break;
        }
        case 16: {
            TavDateInterval a = { d, any_date (in) }, b = { any_date (in), any_date (in) }, r;
            tav_date_interval_intersect (&a, &b, &r);
            tav_date_interval_contains (&a, &d);
            break;
        }
        case 17: tav_date_month_dec (&d); break;
        case 18: tav_check_date_time_validity_for_alarm_interval (d.year, d.month, d.day, in.int32 (), in.int32 (), n); break;
        case 19: is_date_limit_reached (&d); break;
        case 20: {
            TavTimestamp ts = { d, { in.int32 (), in.int32 () } };
            g_free (tav_timestamp_to_string (&ts));
            break;
        }
        case 21: {
            /* The next day is one day away. */
            if (!real (p, d))
                break;
            TavDate e = d;
            tav_calendar_processor_inc_date (p, &e);
            if (real (p, e)) {
                const int gap = tav_calendar_processor_get_date_interval_in_days (p, d, e);
                FUZZ_CHECK (gap == 1, "%d-%d-%d to the next day %d-%d-%d: %d days", d.year, d.month, d.day, e.year,
                            e.month, e.day, gap);
            }
            break;
        }
        }
    }
    return 0;
}
