/* Helpers shared by the date and calendar processor tests: date printing,
 * a stopped clock, an environment guard that creates processors under a
 * chosen calendar system, and Julian day numbers by independent rules. */
#ifndef TAV_DATE_TEST_SUPPORT_H
#define TAV_DATE_TEST_SUPPORT_H

#include <glib.h>

#include <string>

#include "TavCalendarProcessor.h"
#include "TavDateInternal.h"
#include "TavGPtr.h"

namespace tav::test {

inline std::string str (const TavDate &d)
{
    return std::to_string (d.year) + "-" + std::to_string (d.month) + "-" + std::to_string (d.day);
}

inline std::string str (const TavTime &t)
{
    return std::to_string (t.hour) + ":" + std::to_string (t.minute);
}

/* Takes a newly allocated string. */
inline std::string take (char *text)
{
    std::string s = text ? text : "(null)";
    g_free (text);
    return s;
}

inline bool operator== (const TavDate &a, const TavDate &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

/* A clock stopped at a chosen instant (the tests run with TZ=UTC). */
class FixedClock {
public:
    FixedClock (int year, int month, int day, int hour, int minute)
    {
        GDateTime *dt = g_date_time_new_utc (year, month + 1, day, hour, minute, 0);
        s_now = static_cast<time_t> (g_date_time_to_unix (dt));
        g_date_time_unref (dt);
        tav_date_set_clock ([] { return s_now; });
    }
    ~FixedClock () { tav_date_set_clock (nullptr); }

private:
    static inline time_t s_now = 0;
};

/* Clears the locale-related variables for its lifetime and restores them. */
class EnvGuard {
public:
    EnvGuard () : m_saved (g_get_environ ())
    {
        for (const char *name : kNames)
            g_unsetenv (name);
    }
    ~EnvGuard ()
    {
        for (const char *name : kNames)
            if (const char *value = g_environ_getenv (m_saved, name))
                g_setenv (name, value, TRUE);
            else
                g_unsetenv (name);
        g_strfreev (m_saved);
    }
    EnvGuard (const EnvGuard &) = delete;
    EnvGuard &operator= (const EnvGuard &) = delete;
    EnvGuard &set (const char *name, const char *value)
    {
        if (value)
            g_setenv (name, value, TRUE);
        return *this;
    }

private:
    static constexpr const char *kNames[] = { "CALENDAR_SYSTEM", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG" };
    char **m_saved;
};

/* A processor created under CALENDAR_SYSTEM=@system ("es", "en", "ru"). */
inline GRefPtr<TavCalendarProcessor> processor_for (const char *system)
{
    EnvGuard env;
    env.set ("CALENDAR_SYSTEM", system);
    return GRefPtr<TavCalendarProcessor>::adopt (tav_calendar_processor_new ());
}

/* The Julian day number of a proleptic Gregorian date, by GDate. */
inline guint gregorian_jdn (const TavDate &d)
{
    GDate g;
    g_date_clear (&g, 1);
    g_date_set_dmy (&g, static_cast<GDateDay> (d.day), static_cast<GDateMonth> (d.month + 1), static_cast<GDateYear> (d.year));
    return g_date_get_julian (&g) + 1721425;
}

/* The Julian day number of a date in the Julian calendar (every fourth year
 * a leap year), counted from Julian 1 January of year 1 = JDN 1721424. */
inline guint julian_calendar_jdn (const TavDate &d)
{
    static const int before[] = { 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334 };
    long y = d.year - 1;
    long days = 365 * y + y / 4 + before[d.month] + (d.month > 1 && d.year % 4 == 0 ? 1 : 0) + d.day - 1;
    return static_cast<guint> (1721424 + days);
}

} // namespace tav::test

#endif
