/* Civil (wall-clock) time as a plain minute count.
 *
 * The store keeps every time as minutes since 1970-01-01 00:00 of the
 * calendar's own wall clock, with no zone attached: a meeting at 9:00 stays
 * at 9:00 whatever the machine's zone does. Interval queries and recurrence
 * results are then plain integer comparisons. Conversions to and from
 * time_t go through the process's local zone (TZ).
 */
#ifndef TAV_HOST_CIVIL_TIME_H
#define TAV_HOST_CIVIL_TIME_H

#include <cstdint>
#include <ctime>
#include <string>

namespace tav::host {

struct CivilFields {
    int year = 1970;
    int month = 1;   /* 1..12 */
    int day = 1;     /* 1..31 */
    int hour = 0;
    int minute = 0;
};

/* Days since 1970-01-01 of a proleptic Gregorian date (month 1..12). */
constexpr int64_t days_from_civil (int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned> (y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t> (doe) - 719468;
}

/* The inverse of days_from_civil. */
constexpr void civil_from_days (int64_t z, int &year, int &month, int &day)
{
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned> (z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t y = static_cast<int64_t> (yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    day = static_cast<int> (doy - (153 * mp + 2) / 5 + 1);
    month = static_cast<int> (mp < 10 ? mp + 3 : mp - 9);
    year = static_cast<int> (y + (month <= 2));
}

constexpr int64_t kMinutesPerDay = 1440;

inline int64_t floor_div (int64_t a, int64_t b)
{
    int64_t q = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? q - 1 : q;
}

inline int64_t civil_minutes (int year, int month, int day, int hour = 0, int minute = 0)
{
    return days_from_civil (year, static_cast<unsigned> (month), static_cast<unsigned> (day)) * kMinutesPerDay
           + hour * 60 + minute;
}

inline CivilFields civil_fields (int64_t minutes)
{
    CivilFields f;
    const int64_t days = floor_div (minutes, kMinutesPerDay);
    const int64_t rest = minutes - days * kMinutesPerDay;
    civil_from_days (days, f.year, f.month, f.day);
    f.hour = static_cast<int> (rest / 60);
    f.minute = static_cast<int> (rest % 60);
    return f;
}

/* Midnight of the day holding @minutes. */
inline int64_t civil_day_start (int64_t minutes)
{
    return floor_div (minutes, kMinutesPerDay) * kMinutesPerDay;
}

/* 0 = Sunday. */
inline int civil_weekday (int64_t minutes)
{
    const int64_t days = floor_div (minutes, kMinutesPerDay);
    return static_cast<int> (((days % 7) + 7 + 4) % 7);  /* 1970-01-01 was a Thursday */
}

/* Local wall-clock minutes of an absolute time. */
inline int64_t civil_from_time_t (time_t t)
{
    struct tm tm = {};
    localtime_r (&t, &tm);
    return civil_minutes (tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min);
}

/* Absolute time of local wall-clock minutes (mktime resolves DST). */
inline time_t time_t_from_civil (int64_t minutes)
{
    const CivilFields f = civil_fields (minutes);
    struct tm tm = {};
    tm.tm_year = f.year - 1900;
    tm.tm_mon = f.month - 1;
    tm.tm_mday = f.day;
    tm.tm_hour = f.hour;
    tm.tm_min = f.minute;
    tm.tm_isdst = -1;
    return mktime (&tm);
}

/* "2024-03-05 09:30", for messages and tests. */
inline std::string civil_to_string (int64_t minutes)
{
    const CivilFields f = civil_fields (minutes);
    char buf[48];
    snprintf (buf, sizeof buf, "%04d-%02d-%02d %02d:%02d", f.year, f.month, f.day, f.hour, f.minute);
    return buf;
}

}  // namespace tav::host

#endif
