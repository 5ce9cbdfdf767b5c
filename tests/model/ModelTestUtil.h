/* Small helpers shared by the model tests. */
#ifndef TAV_MODEL_TEST_UTIL_H
#define TAV_MODEL_TEST_UTIL_H

#include <calendarui.h>

#include <string>

#include "TavGPtr.h"

namespace tav::test {

inline TavDate date (int year, int month, int day) { return TavDate { year, month, day }; }
inline TavTime hm (int hour, int minute) { return TavTime { hour, minute }; }
inline TavTimestamp at (int year, int month, int day, int hour, int minute)
{
    return TavTimestamp { { year, month, day }, { hour, minute } };
}
inline TavDateInterval days (TavDate start, TavDate end) { return TavDateInterval { start, end }; }

inline std::string to_text (const TavDate &d)
{
    char buf[32];
    g_snprintf (buf, sizeof buf, "%04d-%02d-%02d", d.year, d.month + 1, d.day);
    return buf;
}

inline std::string to_text (const TavTimestamp &ts)
{
    char buf[48];
    g_snprintf (buf, sizeof buf, "%04d-%02d-%02d %02d:%02d", ts.date.year, ts.date.month + 1, ts.date.day,
                ts.time.hour, ts.time.minute);
    return buf;
}

/* Reads an int property. */
inline int get_int (gpointer object, const char *name)
{
    int v = 0;
    g_object_get (object, name, &v, nullptr);
    return v;
}

inline gboolean get_bool (gpointer object, const char *name)
{
    gboolean v = FALSE;
    g_object_get (object, name, &v, nullptr);
    return v;
}

inline std::string get_string (gpointer object, const char *name)
{
    char *v = nullptr;
    g_object_get (object, name, &v, nullptr);
    std::string out = v ? v : "(null)";
    g_free (v);
    return out;
}

inline TavDate get_date (gpointer object, const char *name)
{
    TavDate *d = nullptr;
    g_object_get (object, name, &d, nullptr);
    TavDate out = d ? *d : TavDate { -1, -1, -1 };
    if (d)
        tav_date_free (d);
    return out;
}

inline TavTime get_time (gpointer object, const char *name)
{
    TavTime *t = nullptr;
    g_object_get (object, name, &t, nullptr);
    TavTime out = t ? *t : TavTime { -1, -1 };
    if (t)
        tav_time_free (t);
    return out;
}

} // namespace tav::test

#endif
