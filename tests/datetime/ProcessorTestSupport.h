/* Helpers shared by the calendar processor tests: an environment guard that
 * creates processors under a chosen calendar system, and date printing. */
#ifndef TAV_PROCESSOR_TEST_SUPPORT_H
#define TAV_PROCESSOR_TEST_SUPPORT_H

#include <glib.h>

#include <map>
#include <string>

#include "TavCalendarProcessor.h"
#include "TavGPtr.h"

namespace tav::test {

inline std::string str (const TavDate &d)
{
    return std::to_string (d.year) + "-" + std::to_string (d.month) + "-" + std::to_string (d.day);
}

inline bool operator== (const TavDate &a, const TavDate &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

/* Sets the locale-related variables for its lifetime and restores them. */
class EnvGuard {
public:
    static constexpr const char *kNames[] = { "CALENDAR_SYSTEM", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG" };

    EnvGuard ()
    {
        for (const char *name : kNames) {
            const char *v = g_getenv (name);
            if (v)
                m_saved[name] = v;
            g_unsetenv (name);
        }
    }
    ~EnvGuard ()
    {
        for (const char *name : kNames) {
            auto it = m_saved.find (name);
            if (it != m_saved.end ())
                g_setenv (name, it->second.c_str (), TRUE);
            else
                g_unsetenv (name);
        }
    }
    EnvGuard &set (const char *name, const char *value)
    {
        if (value)
            g_setenv (name, value, TRUE);
        return *this;
    }

private:
    std::map<std::string, std::string> m_saved;
};

/* A processor created under CALENDAR_SYSTEM=@system ("es", "en", "ru"). */
inline GRefPtr<TavCalendarProcessor> processor_for (const char *system)
{
    EnvGuard env;
    env.set ("CALENDAR_SYSTEM", system);
    return GRefPtr<TavCalendarProcessor>::adopt (tav_calendar_processor_new ());
}

} // namespace tav::test

#endif
