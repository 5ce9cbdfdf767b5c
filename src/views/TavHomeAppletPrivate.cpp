/* libcalendarui - the home applet's choice of rows (internal) */

#include "TavHomeAppletPrivate.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "TavGPtr.h"
#include "TavIntl.h"

namespace tav::applet {

/* Days from civil dates after H. Hinnant's algorithm: eras of 400 years,
 * March-based years so that the leap day ends the year. */
int64_t civil_day (const TavDate &date)
{
    int64_t y = date.year;
    const int64_t m = date.month + 1;
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + date.day - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

TavDate civil_date (int64_t day)
{
    day += 719468;
    const int64_t era = (day >= 0 ? day : day - 146096) / 146097;
    const int64_t doe = day - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int d = static_cast<int> (doy - (153 * mp + 2) / 5 + 1);
    const int m = static_cast<int> (mp < 10 ? mp + 3 : mp - 9);
    const int y = static_cast<int> (yoe + era * 400 + (m <= 2));
    return { y, m - 1, d };
}

int civil_weekday (int64_t day)
{
    /* 1 January 1970 was a Thursday. */
    const int64_t w = (day + 4) % 7;
    return static_cast<int> (w < 0 ? w + 7 : w);
}

LocalSeconds local_seconds (const TavTimestamp &ts, int second)
{
    return civil_day (ts.date) * kDay + ts.time.hour * 3600 + ts.time.minute * 60 + second;
}

TavTimestamp local_timestamp (LocalSeconds seconds)
{
    const int64_t day = day_of (seconds);
    const int64_t rest = seconds - day * kDay;
    TavTimestamp ts;
    ts.date = civil_date (day);
    ts.time.hour = static_cast<int> (rest / 3600);
    ts.time.minute = static_cast<int> (rest % 3600 / 60);
    return ts;
}

bool is_in_progress (const AppletInstance &instance, LocalSeconds now)
{
    return instance.kind == InstanceKind::Timed && instance.start <= now && now < instance.end;
}

bool is_current (const AppletInstance &instance, LocalSeconds now)
{
    if (instance.kind == InstanceKind::Task)
        return !instance.done && day_of (instance.start) >= day_of (now);
    return now < instance.end;
}

namespace {

/* Where an instance stands in the list; smaller comes first. */
struct Place {
    int group;          /* 0 in progress, 1 the rest */
    int64_t day;        /* the day it is shown under */
    int kind;           /* InstanceKind: all-day, task, birthday, timed */
    LocalSeconds start;
    const AppletInstance *instance;

    bool operator< (const Place &o) const
    {
        if (group != o.group)
            return group < o.group;
        if (group == 1 && day != o.day)
            return day < o.day;
        if (kind != o.kind)
            return kind < o.kind;
        if (start != o.start)
            return start < o.start;
        const int titles = instance->title.compare (o.instance->title);
        if (titles != 0)
            return titles < 0;
        return instance->seq < o.instance->seq;
    }
};

Place place_of (const AppletInstance &instance, LocalSeconds now)
{
    const bool now_on = is_in_progress (instance, now);
    /* An all-day event that began before today stands under today, first
     * of its all-day events: sorting it by its own first day gives the
     * same place. */
    const int64_t day = day_of (instance.start);
    return { now_on ? 0 : 1, now_on ? 0 : day, now_on ? 0 : static_cast<int> (instance.kind), instance.start,
             &instance };
}

} // namespace

std::vector<const AppletInstance *> choose_rows (const std::vector<AppletInstance> &instances, LocalSeconds now,
                                                 size_t max)
{
    /* The best @max places so far, kept sorted: a few comparisons per
     * instance, no sort of the whole set. */
    std::vector<Place> best;
    best.reserve (max + 1);
    for (const AppletInstance &instance : instances) {
        if (!is_current (instance, now))
            continue;
        const Place place = place_of (instance, now);
        if (best.size () == max && !(place < best.back ()))
            continue;
        best.insert (std::upper_bound (best.begin (), best.end (), place), place);
        if (best.size () > max)
            best.pop_back ();
    }
    std::vector<const AppletInstance *> rows;
    rows.reserve (best.size ());
    for (const Place &p : best)
        rows.push_back (p.instance);
    return rows;
}

LocalSeconds next_change (const std::vector<AppletInstance> &instances, LocalSeconds now)
{
    LocalSeconds next = (day_of (now) + 1) * kDay;
    for (const AppletInstance &instance : instances) {
        if (instance.kind != InstanceKind::Timed)
            continue;
        if (instance.start > now)
            next = std::min (next, instance.start);
        else if (instance.end > now)
            next = std::min (next, instance.end);
    }
    return next;
}

namespace {

std::string format_time (const TavTimestamp &ts, bool twelve_hour)
{
    GCharPtr text (tav_time_to_string_format (&ts.time, twelve_hour));
    if (!text)
        return "";
    /* The 12-hour formats pad the hour with a blank. */
    return g_strstrip (text.get ());
}

std::string format_date (const char *format, const TavDate &date, int weekday)
{
    struct tm tm = {};
    tm.tm_year = date.year - 1900;
    tm.tm_mon = date.month;
    tm.tm_mday = date.day;
    tm.tm_wday = weekday;
    char buffer[128] = "";
    if (strftime (buffer, sizeof buffer, format, &tm) == 0)
        return "";
    return buffer;
}

std::string printf_text (const char *format, const std::string &a, const std::string &b)
{
    GCharPtr text (g_strdup_printf (format, a.c_str (), b.c_str ()));
    return text.get ();
}

} // namespace

std::string when_text (const AppletInstance &instance, LocalSeconds now, bool twelve_hour)
{
    if (is_in_progress (instance, now))
        return TAV_CAL ("cal_va_applet_now");
    const int64_t today = day_of (now);
    const int64_t day = std::max (day_of (instance.start), today);
    const bool timed = instance.kind == InstanceKind::Timed;
    const TavTimestamp start = local_timestamp (instance.start);
    const std::string time = timed ? format_time (start, twelve_hour) : "";
    std::string when;
    if (day == today)
        when = timed ? printf_text (TAV_CAL ("cal_va_applet_today_time"), time, "") : TAV_CAL ("cal_va_applet_today");
    else if (day == today + 1)
        when = timed ? printf_text (TAV_CAL ("cal_va_applet_tomorrow_time"), time, "")
                     : TAV_CAL ("cal_va_applet_tomorrow");
    else {
        const TavDate date = civil_date (day);
        const int weekday = civil_weekday (day);
        const std::string name = day < today + 7 ? format_date (TAV_KIVO ("wdgt_va_week"), date, weekday)
                                                  : format_date (TAV_CAL ("cal_va_applet_date"), date, weekday);
        when = timed ? printf_text (TAV_CAL ("cal_va_applet_day_time"), name, time) : name;
    }
    return when;
}

std::string row_title (const AppletInstance &instance)
{
    if (instance.kind != InstanceKind::Birthday || instance.age < 0)
        return instance.title;
    GCharPtr text (g_strdup_printf (TAV_CAL ("cal_va_applet_birthday_age"), instance.title.c_str (), instance.age));
    return text.get ();
}

void row_rect (const AppletGeometry &g, int n, int *x, int *y, int *width, int *height)
{
    *x = g.margin;
    *y = g.margin + g.header_height + n * g.row_height;
    *width = std::max (0, g.width - 2 * g.margin);
    *height = g.row_height;
}

int row_at (const AppletGeometry &g, int n_rows, int x, int y)
{
    if (x < g.margin || x >= g.width - g.margin)
        return -1;
    const int top = g.margin + g.header_height;
    if (y < top)
        return -1;
    const int n = (y - top) / g.row_height;
    return n < n_rows ? n : -1;
}

} // namespace tav::applet
