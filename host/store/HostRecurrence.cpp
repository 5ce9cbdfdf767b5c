#include "HostRecurrence.h"
#include "HostCivilTime.h"
#include "HostZone.h"

#include <libical/ical.h>

#include <algorithm>
#include <memory>
#include <unordered_set>

namespace tav::host {

namespace {

struct IteratorDeleter {
    void operator() (icalrecur_iterator *it) const { icalrecur_iterator_free (it); }
};
using IteratorPtr = std::unique_ptr<icalrecur_iterator, IteratorDeleter>;

bool parse_rule (const std::string &text, icalrecurrencetype &rule)
{
    icalerror_clear_errno ();
    /* libical reports a bad rule through icalerrno and may print to stderr
     * when its error handling is set to abort; keep it quiet. */
    icalerrorstate saved = icalerror_get_error_state (ICAL_MALFORMEDDATA_ERROR);
    icalerror_set_error_state (ICAL_MALFORMEDDATA_ERROR, ICAL_ERROR_NONFATAL);
    rule = icalrecurrencetype_from_string (text.c_str ());
    icalerror_set_error_state (ICAL_MALFORMEDDATA_ERROR, saved);
    /* The order of a BYxxx list and repeated values mean nothing, but
     * libical 3.0 steps through the lists as written (BYHOUR=17,9 gives 17
     * first, and COUNT then cuts the wrong one): sorted and unique. */
    auto tidy = [] (short *list, int size) {
        int n = 0;
        while (n < size && list[n] != ICAL_RECURRENCE_ARRAY_MAX) {
            ++n;
        }
        std::sort (list, list + n);
        short *end = std::unique (list, list + n);
        std::fill (end, list + n, static_cast<short> (ICAL_RECURRENCE_ARRAY_MAX));
    };
    tidy (rule.by_second, ICAL_BY_SECOND_SIZE);
    tidy (rule.by_minute, ICAL_BY_MINUTE_SIZE);
    tidy (rule.by_hour, ICAL_BY_HOUR_SIZE);
    tidy (rule.by_month_day, ICAL_BY_MONTHDAY_SIZE);
    tidy (rule.by_year_day, ICAL_BY_YEARDAY_SIZE);
    tidy (rule.by_week_no, ICAL_BY_WEEKNO_SIZE);
    tidy (rule.by_month, ICAL_BY_MONTH_SIZE);
    tidy (rule.by_set_pos, ICAL_BY_SETPOS_SIZE);
    return rule.freq != ICAL_NO_RECURRENCE && icalerrno == ICAL_NO_ERROR;
}

/* The frame a rule runs in: wall-clock minutes (floating entries, all-day
 * ones and those of an unknown zone, taken as floating) or, for an
 * instant, UTC minutes whose rule runs on the wall clock of its zone. */
struct Frame {
    icaltimezone *zone = nullptr;

    int64_t to_wall (int64_t frame) const { return zone ? wall_from_utc (frame, zone) : frame; }
    int64_t from_wall (int64_t wall) const { return zone ? utc_from_wall (wall, zone) : wall; }

    icaltimetype to_ical (int64_t frame) const
    {
        const CivilFields f = civil_fields (to_wall (frame));
        icaltimetype t = icaltime_null_time ();
        t.year = f.year;
        t.month = f.month;
        t.day = f.day;
        t.hour = f.hour;
        t.minute = f.minute;
        t.second = 0;
        t.is_date = 0;
        return t;
    }
};

Frame frame_for (const EntryRecord &entry)
{
    Frame frame;
    if (entry.is_instant ()) {
        frame.zone = zone_for_tzid (entry.tzid);
    }
    return frame;
}

/* UNTIL on the rule's own wall clock, as a date-time: a DATE includes its
 * whole day, a UTC time moves to the zone's (or, floating, the local)
 * wall clock. libical compares UNTIL with the occurrences' fields. */
void normalise_until (icalrecurrencetype &rule, const Frame &frame)
{
    if (icaltime_is_null_time (rule.until)) {
        return;
    }
    icaltimetype &u = rule.until;
    if (u.is_date) {
        u.is_date = 0;
        u.hour = 23;
        u.minute = 59;
        u.second = 59;
        u.zone = nullptr;
        return;
    }
    if (!icaltime_is_utc (u)) {
        return;
    }
    const int64_t utc = civil_minutes (u.year, u.month, u.day, u.hour, u.minute);
    const int64_t wall = frame.zone ? wall_from_utc (utc, frame.zone) : local_from_utc (utc);
    const CivilFields f = civil_fields (wall);
    u.year = f.year;
    u.month = f.month;
    u.day = f.day;
    u.hour = f.hour;
    u.minute = f.minute;
    u.zone = nullptr;
}

bool rule_is_unbounded (const icalrecurrencetype &rule)
{
    return rule.count == 0 && icaltime_is_null_time (rule.until);
}

/* Rules simple enough to count out without libical: a frequency of days,
 * weeks (optionally on a set of weekdays), months or years, an INTERVAL, and
 * COUNT or UNTIL, in local wall-clock time. They are most of what people
 * enter, and building a libical iterator costs far more than the
 * arithmetic; the results are the same (checked against libical in the
 * tests). */
struct SimpleRule {
    icalrecurrencetype_frequency freq;
    int64_t interval;
    int64_t count;      /* 0: no COUNT */
    int64_t until;      /* kUnbounded: no UNTIL */
    unsigned mask;      /* weekly: weekday bits, bit 0 = Sunday; 0: none */
    int week_start;     /* 0 = Sunday */
};

int64_t month_length (int64_t year, int month)
{
    static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : lengths[month - 1];
}

bool simple_rule (const icalrecurrencetype &r, int64_t start, SimpleRule &out)
{
    if (r.freq != ICAL_DAILY_RECURRENCE && r.freq != ICAL_WEEKLY_RECURRENCE && r.freq != ICAL_MONTHLY_RECURRENCE
        && r.freq != ICAL_YEARLY_RECURRENCE) {
        return false;
    }
    if (r.interval < 1 || r.by_second[0] != ICAL_RECURRENCE_ARRAY_MAX || r.by_minute[0] != ICAL_RECURRENCE_ARRAY_MAX
        || r.by_hour[0] != ICAL_RECURRENCE_ARRAY_MAX || r.by_month_day[0] != ICAL_RECURRENCE_ARRAY_MAX
        || r.by_year_day[0] != ICAL_RECURRENCE_ARRAY_MAX || r.by_week_no[0] != ICAL_RECURRENCE_ARRAY_MAX
        || r.by_month[0] != ICAL_RECURRENCE_ARRAY_MAX || r.by_set_pos[0] != ICAL_RECURRENCE_ARRAY_MAX) {
        return false;
    }
    out.freq = r.freq;
    out.interval = r.interval;
    out.count = r.count;
    out.until = kUnbounded;
    out.mask = 0;
    out.week_start = r.week_start == ICAL_NO_WEEKDAY ? 1 : static_cast<int> (r.week_start) - 1;
    if (!icaltime_is_null_time (r.until)) {
        out.until = civil_minutes (r.until.year, r.until.month, r.until.day, r.until.hour, r.until.minute);
    }
    for (int i = 0; i < ICAL_BY_DAY_SIZE && r.by_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i) {
        if (r.freq != ICAL_WEEKLY_RECURRENCE || icalrecurrencetype_day_position (r.by_day[i]) != 0) {
            return false;
        }
        out.mask |= 1u << (static_cast<int> (icalrecurrencetype_day_day_of_week (r.by_day[i])) - 1);
    }
    /* A start off the weekdays is left to libical. Weeks that do not begin
     * on Monday in rules that skip weeks are counted here: libical 3.0
     * aligns those differently from RFC 5545 (it drops the first week). */
    if (out.mask && !(out.mask & (1u << civil_weekday (start)))) {
        return false;
    }
    return true;
}

/* Occurrences from @lower to @to (civil minutes), in order, to @sink. */
template <typename Sink>
void walk_simple (const SimpleRule &rule, int64_t start, int64_t lower, int64_t to, size_t limit, Sink sink)
{
    const int64_t day0 = floor_div (start, kMinutesPerDay);
    const int64_t tod = start - day0 * kMinutesPerDay;
    const int64_t last = std::min (to, rule.until);
    int64_t index = 0;  /* occurrence number, for COUNT */
    size_t emitted = 0;
    auto offer = [&] (int64_t s) {
        /* false: stop */
        if (s > last || (rule.count && index >= rule.count)) {
            return false;
        }
        ++index;
        if (s >= lower) {
            if (!sink (s) || ++emitted >= limit) {
                return false;
            }
        }
        return true;
    };

    if (rule.freq == ICAL_DAILY_RECURRENCE || (rule.freq == ICAL_WEEKLY_RECURRENCE && !rule.mask)) {
        const int64_t step = (rule.freq == ICAL_DAILY_RECURRENCE ? 1 : 7) * rule.interval * kMinutesPerDay;
        int64_t k = 0;
        if (lower > start) {
            k = (lower - start) / step;
        }
        if (rule.count && k >= rule.count) {
            return;
        }
        index = k;
        for (;; ++k) {
            if (!offer (start + k * step)) {
                return;
            }
        }
    }
    if (rule.freq == ICAL_WEEKLY_RECURRENCE) {
        const int64_t week0 = day0 - ((civil_weekday (start) - rule.week_start + 7) % 7);
        const int per_week = __builtin_popcount (rule.mask);
        int first_week = 0;  /* occurrences in the first week, from the start on */
        for (int off = 0; off < 7; ++off) {
            const int64_t day = week0 + off;
            if (day >= day0 && (rule.mask & (1u << civil_weekday (day * kMinutesPerDay)))) {
                ++first_week;
            }
        }
        const int64_t period = 7 * rule.interval;
        int64_t j = 0;
        if (lower > start) {
            j = std::max<int64_t> (0, floor_div (floor_div (lower, kMinutesPerDay) - week0, period) - 1);
        }
        index = j == 0 ? 0 : first_week + (j - 1) * per_week;
        if (rule.count && index >= rule.count) {
            return;
        }
        for (;; ++j) {
            const int64_t week = week0 + j * period;
            for (int off = 0; off < 7; ++off) {
                const int64_t day = week + off;
                if (day < day0 || !(rule.mask & (1u << civil_weekday (day * kMinutesPerDay)))) {
                    continue;
                }
                if (!offer (day * kMinutesPerDay + tod)) {
                    return;
                }
            }
        }
    }
    /* Monthly and yearly: the start's day of the month, skipping months
     * (or years) that lack it. */
    const CivilFields f = civil_fields (start);
    const int64_t step_months = rule.freq == ICAL_MONTHLY_RECURRENCE ? rule.interval : 12 * rule.interval;
    const int64_t month0 = static_cast<int64_t> (f.year) * 12 + (f.month - 1);
    int64_t k = 0;
    if (!rule.count && lower > start) {
        const CivilFields l = civil_fields (lower);
        const int64_t lower_month = static_cast<int64_t> (l.year) * 12 + (l.month - 1);
        k = std::max<int64_t> (0, (lower_month - month0) / step_months - 1);
    }
    for (;; ++k) {
        const int64_t m = month0 + k * step_months;
        const int64_t year = floor_div (m, 12);
        const int month = static_cast<int> (m - year * 12) + 1;
        if (year > 9999) {
            return;
        }
        if (f.day > month_length (year, month)) {
            continue;
        }
        if (!offer (civil_minutes (static_cast<int> (year), month, f.day) + tod)) {
            return;
        }
    }
}

/* Parts of a rule libical 3.0 gets wrong, taken out of its hands: the
 * iterator runs without them and its occurrences are filtered here.
 *  - BYMONTHDAY of a daily or shorter rule and BYYEARDAY of an hourly or
 *    minutely one (limits; libical misreads negative days);
 *  - INTERVAL of an hourly or minutely rule with BYxxx parts, and of a
 *    weekly rule whose weeks do not start on Monday (libical aligns the
 *    periods wrongly): libical steps every period, the filter keeps every
 *    INTERVAL-th one counted from DTSTART's;
 *  - COUNT of an hourly or minutely rule with BYxxx parts (libical hands
 *    out DTSTART twice).
 * COUNT and UNTIL then count what the filter keeps. Rules with BYSETPOS
 * are left to libical (a set position depends on the whole period). */
struct Corrections {
    bool active = false;
    icalrecurrencetype_frequency freq = ICAL_NO_RECURRENCE;
    int interval = 1;
    int week_start = 1;  /* 0 = Sunday */
    std::vector<int> month_days;
    std::vector<int> year_days;
    int count = 0;
    int64_t until = kUnbounded;  /* wall minutes */
    int64_t start = 0;           /* wall minutes of DTSTART */

    int64_t period (int64_t wall) const
    {
        switch (freq) {
        case ICAL_WEEKLY_RECURRENCE: {
            auto week = [this] (int64_t m) {
                const int64_t day = floor_div (m, kMinutesPerDay);
                return day - (civil_weekday (m) - week_start + 7) % 7;
            };
            return (week (wall) - week (start)) / 7;
        }
        case ICAL_YEARLY_RECURRENCE: return civil_fields (wall).year - civil_fields (start).year;
        case ICAL_MONTHLY_RECURRENCE: {
            const CivilFields a = civil_fields (wall), b = civil_fields (start);
            return (a.year * 12 + a.month) - (b.year * 12 + b.month);
        }
        case ICAL_HOURLY_RECURRENCE: return floor_div (wall, 60) - floor_div (start, 60);
        case ICAL_MINUTELY_RECURRENCE: return wall - start;
        default: return floor_div (wall, kMinutesPerDay) - floor_div (start, kMinutesPerDay);
        }
    }

    bool accepts (int64_t wall) const
    {
        if (interval > 1 && period (wall) % interval != 0) {
            return false;
        }
        if (!month_days.empty ()) {
            const CivilFields f = civil_fields (wall);
            const int last = static_cast<int> (month_length (f.year, f.month));
            if (std::find (month_days.begin (), month_days.end (), f.day) == month_days.end ()
                && std::find (month_days.begin (), month_days.end (), f.day - last - 1) == month_days.end ()) {
                return false;
            }
        }
        if (!year_days.empty ()) {
            const CivilFields f = civil_fields (wall);
            const int doy = static_cast<int> (floor_div (wall, kMinutesPerDay) - days_from_civil (f.year, 1, 1)) + 1;
            const int len = 365 + (month_length (f.year, 2) == 29);
            if (std::find (year_days.begin (), year_days.end (), doy) == year_days.end ()
                && std::find (year_days.begin (), year_days.end (), doy - len - 1) == year_days.end ()) {
                return false;
            }
        }
        return true;
    }
};

Corrections take_corrections (icalrecurrencetype &rule, int64_t wall_start)
{
    Corrections c;
    if (rule.by_set_pos[0] != ICAL_RECURRENCE_ARRAY_MAX) {
        return c;
    }
    const bool short_freq = rule.freq == ICAL_HOURLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
    const bool any_by = rule.by_minute[0] != ICAL_RECURRENCE_ARRAY_MAX || rule.by_hour[0] != ICAL_RECURRENCE_ARRAY_MAX
                        || rule.by_day[0] != ICAL_RECURRENCE_ARRAY_MAX || rule.by_month_day[0] != ICAL_RECURRENCE_ARRAY_MAX
                        || rule.by_year_day[0] != ICAL_RECURRENCE_ARRAY_MAX || rule.by_month[0] != ICAL_RECURRENCE_ARRAY_MAX;
    const int week_start = rule.week_start == ICAL_NO_WEEKDAY ? 1 : static_cast<int> (rule.week_start) - 1;
    /* Hourly and minutely rules with BYxxx parts also come here when they
     * step every period: libical 3.0 hands out DTSTART twice, and COUNT
     * counts it twice. */
    const bool fix_short = short_freq && any_by;
    const bool fix_interval = rule.interval > 1 && (fix_short || (rule.freq == ICAL_WEEKLY_RECURRENCE && week_start != 1));
    const bool fix_month_days = (short_freq || rule.freq == ICAL_DAILY_RECURRENCE)
                                && rule.by_month_day[0] != ICAL_RECURRENCE_ARRAY_MAX;
    if (!fix_short && !fix_interval && !fix_month_days) {
        return c;
    }
    c.active = true;
    c.freq = rule.freq;
    c.week_start = week_start;
    c.start = wall_start;
    if (fix_interval) {
        c.interval = rule.interval;
        rule.interval = 1;
    }
    if (fix_month_days) {
        for (int i = 0; i < ICAL_BY_MONTHDAY_SIZE && rule.by_month_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i) {
            c.month_days.push_back (rule.by_month_day[i]);
        }
        rule.by_month_day[0] = ICAL_RECURRENCE_ARRAY_MAX;
    }
    if (short_freq) {
        for (int i = 0; i < ICAL_BY_YEARDAY_SIZE && rule.by_year_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i) {
            c.year_days.push_back (rule.by_year_day[i]);
        }
        rule.by_year_day[0] = ICAL_RECURRENCE_ARRAY_MAX;
    }
    c.count = rule.count;
    rule.count = 0;
    if (!icaltime_is_null_time (rule.until)) {
        const icaltimetype &u = rule.until;
        c.until = civil_minutes (u.year, u.month, u.day, u.hour, u.minute);
        rule.until = icaltime_null_time ();
    }
    return c;
}

/* Rules with BYSETPOS: libical 3.0 ignores or misplaces set positions in
 * most frequencies. The rule runs without them, stepping every period,
 * with what DTSTART implies written out (its hour, minute, weekday, day,
 * month) and from the start of DTSTART's period, so that each period's
 * whole set is seen; the occurrences are grouped by period here, every
 * INTERVAL-th period kept and the positions picked; COUNT and UNTIL count
 * what is picked. @offer takes wall-clock minutes and returns false to
 * stop; @upper is the last wall-clock minute asked for. */
template <typename Offer>
void walk_set_positions (icalrecurrencetype rule, int64_t wall_start, int64_t upper, Offer offer)
{
    std::vector<int> positions;
    for (int i = 0; i < ICAL_BY_SETPOS_SIZE && rule.by_set_pos[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i) {
        positions.push_back (rule.by_set_pos[i]);
    }
    rule.by_set_pos[0] = ICAL_RECURRENCE_ARRAY_MAX;
    const CivilFields s = civil_fields (wall_start);
    auto empty = [] (const short *list) { return list[0] == ICAL_RECURRENCE_ARRAY_MAX; };
    auto pin = [] (short *list, int value) {
        list[0] = static_cast<short> (value);
        list[1] = ICAL_RECURRENCE_ARRAY_MAX;
    };
    const auto freq = rule.freq;
    const bool daily_or_longer = freq == ICAL_DAILY_RECURRENCE || freq == ICAL_WEEKLY_RECURRENCE
                                 || freq == ICAL_MONTHLY_RECURRENCE || freq == ICAL_YEARLY_RECURRENCE;
    if ((daily_or_longer || freq == ICAL_HOURLY_RECURRENCE) && empty (rule.by_minute)) {
        pin (rule.by_minute, s.minute);
    }
    if (daily_or_longer && empty (rule.by_hour)) {
        pin (rule.by_hour, s.hour);
    }
    const int weekday = civil_weekday (wall_start) + 1;  /* libical: 1 = Sunday */
    if (freq == ICAL_WEEKLY_RECURRENCE && empty (rule.by_day)) {
        pin (rule.by_day, weekday);
    }
    if (freq == ICAL_MONTHLY_RECURRENCE && empty (rule.by_day) && empty (rule.by_month_day)) {
        pin (rule.by_month_day, s.day);
    }
    if (freq == ICAL_YEARLY_RECURRENCE && empty (rule.by_week_no) && empty (rule.by_year_day)) {
        if (empty (rule.by_day) && empty (rule.by_month_day)) {
            pin (rule.by_month_day, s.day);
        }
        if (!empty (rule.by_month_day) && empty (rule.by_month)) {
            pin (rule.by_month, s.month);
        }
    }
    if (freq == ICAL_YEARLY_RECURRENCE && !empty (rule.by_week_no) && empty (rule.by_day) && empty (rule.by_year_day)
        && empty (rule.by_month_day)) {
        pin (rule.by_day, weekday);
    }
    const int interval = std::max<int> (1, rule.interval);
    rule.interval = 1;
    const int count = rule.count;
    rule.count = 0;
    int64_t until = kUnbounded;
    if (!icaltime_is_null_time (rule.until)) {
        until = civil_minutes (rule.until.year, rule.until.month, rule.until.day, rule.until.hour, rule.until.minute);
        rule.until = icaltime_null_time ();
    }
    Corrections limits = take_corrections (rule, wall_start);  /* the limits libical misreads */
    Corrections periods;
    periods.freq = freq;
    periods.start = wall_start;
    periods.week_start = rule.week_start == ICAL_NO_WEEKDAY ? 1 : static_cast<int> (rule.week_start) - 1;

    /* The start of DTSTART's period; libical hands out its DTSTART first
     * whatever it is, so the iterator begins a minute before. */
    int64_t first = wall_start;
    switch (freq) {
    case ICAL_YEARLY_RECURRENCE: first = civil_minutes (s.year, 1, 1); break;
    case ICAL_MONTHLY_RECURRENCE: first = civil_minutes (s.year, s.month, 1); break;
    case ICAL_WEEKLY_RECURRENCE:
        first = civil_day_start (wall_start) - ((civil_weekday (wall_start) - periods.week_start + 7) % 7) * kMinutesPerDay;
        break;
    case ICAL_DAILY_RECURRENCE: first = civil_day_start (wall_start); break;
    case ICAL_HOURLY_RECURRENCE: first = wall_start - s.minute; break;
    default: break;
    }
    const CivilFields b = civil_fields (first - 1);
    icaltimetype begin = icaltime_null_time ();
    begin.year = b.year;
    begin.month = b.month;
    begin.day = b.day;
    begin.hour = b.hour;
    begin.minute = b.minute;
    IteratorPtr it (icalrecur_iterator_new (rule, begin));
    if (!it) {
        return;
    }
    std::vector<int64_t> set;
    int64_t set_period = std::numeric_limits<int64_t>::min ();
    int picked = 0;
    bool stop = false;
    auto flush = [&] {
        const int n = static_cast<int> (set.size ());
        std::vector<int64_t> chosen;
        for (int p : positions) {
            const int i = p > 0 ? p - 1 : n + p;
            if (i >= 0 && i < n) {
                chosen.push_back (set[i]);
            }
        }
        std::sort (chosen.begin (), chosen.end ());
        chosen.erase (std::unique (chosen.begin (), chosen.end ()), chosen.end ());
        for (int64_t wall : chosen) {
            if (stop || wall < wall_start) {
                continue;
            }
            if (wall > until || (count && picked >= count) || !offer (wall)) {
                stop = true;
                break;
            }
            ++picked;
        }
        set.clear ();
    };
    int64_t last = std::numeric_limits<int64_t>::min ();
    size_t steps = 0;
    for (icaltimetype t = icalrecur_iterator_next (it.get ()); !icaltime_is_null_time (t) && !stop;
         t = icalrecur_iterator_next (it.get ())) {
        if (++steps > 4 * kMaxInstances) {
            break;
        }
        const int64_t wall = civil_minutes (t.year, t.month, t.day, t.is_date ? 0 : t.hour, t.is_date ? 0 : t.minute);
        if (wall < first || wall <= last || (limits.active && !limits.accepts (wall))) {
            continue;
        }
        last = wall;
        const int64_t p = periods.period (wall);
        if (p != set_period) {
            flush ();
            if (stop || wall > upper || wall > until) {
                break;
            }
            set_period = p;
        }
        if (p % interval == 0) {
            set.push_back (wall);
        }
    }
    if (!stop) {
        flush ();
    }
}

/* A zone's wall clock is never more than 15 hours from UTC. */
constexpr int64_t kZoneMargin = 15 * 60;

/* Occurrences of one rule in the entry's frame, beginning the iteration at
 * @seek when the rule allows it, skipping those that start before
 * @skip_before and stopping past @to (all frame minutes). The rule runs on
 * its wall clock; converting an occurrence to UTC is the costly step, so
 * occurrences are placed by their wall-clock fields first and converted
 * only when they may matter. */
template <typename Sink>
void walk_rule (const std::string &text, const EntryRecord &entry, int64_t seek, int64_t skip_before, int64_t to,
                size_t limit, bool arithmetic, Sink sink)
{
    const Frame frame = frame_for (entry);
    icalrecurrencetype rule;
    if (!parse_rule (text, rule)) {
        return;
    }
    normalise_until (rule, frame);
    const int64_t margin = frame.zone ? kZoneMargin : 0;
    const int64_t lower = skip_before == std::numeric_limits<int64_t>::min () ? skip_before : skip_before - margin;
    const int64_t upper = to == kUnbounded ? to : to + margin;
    const int64_t wall_start = frame.to_wall (entry.start);
    /* Wall-clock occurrence to frame minutes; false: stop. */
    auto offer = [&] (int64_t wall) {
        if (wall > upper) {
            return false;
        }
        if (wall < lower) {
            return true;
        }
        const int64_t at = frame.from_wall (wall);
        if (at > to) {
            return false;
        }
        return at < skip_before || sink (at);
    };
    SimpleRule simple;
    if (arithmetic && simple_rule (rule, wall_start, simple)) {
        walk_simple (simple, wall_start, lower, upper, limit, offer);
        return;
    }
    if (rule.by_set_pos[0] != ICAL_RECURRENCE_ARRAY_MAX) {
        walk_set_positions (rule, wall_start, upper, offer);
        return;
    }
    const Corrections fix = take_corrections (rule, wall_start);
    /* Without COUNT the n-th occurrence does not depend on the ones before
     * it, so the iterator may begin at the window. libical seeks only rules
     * without an end; an UNTIL merely cuts the sequence short, so it is
     * applied here instead. */
    /* libical 3.0 seeks hourly and minutely rules with BYxxx parts past
     * occurrences: those are stepped from DTSTART. */
    const bool short_with_parts = fix.active && (fix.freq == ICAL_HOURLY_RECURRENCE || fix.freq == ICAL_MINUTELY_RECURRENCE);
    const bool seeking = seek > entry.start && rule.count == 0 && fix.count == 0 && !short_with_parts;
    icaltimetype until = icaltime_null_time ();
    if (seeking && !icaltime_is_null_time (rule.until)) {
        until = rule.until;
        rule.until = icaltime_null_time ();
    }
    IteratorPtr it (icalrecur_iterator_new (rule, frame.to_ical (entry.start)));
    if (!it) {
        return;
    }
    icaltimetype seek_at = seeking ? frame.to_ical (seek - margin) : icaltime_null_time ();
    if (seeking && (rule.freq == ICAL_HOURLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE)) {
        /* libical seeks these to a time off the INTERVAL's phase: seek to
         * one on it. */
        const int64_t step = rule.freq == ICAL_HOURLY_RECURRENCE ? 60 * rule.interval : rule.interval;
        const int64_t wall_seek = frame.to_wall (seek - margin);
        const CivilFields f = civil_fields (wall_start + floor_div (wall_seek - wall_start, step) * step);
        seek_at.year = f.year;
        seek_at.month = f.month;
        seek_at.day = f.day;
        seek_at.hour = f.hour;
        seek_at.minute = f.minute;
    }
    if (seeking && !icalrecur_iterator_set_start (it.get (), seek_at)) {
        rule.until = until;
        until = icaltime_null_time ();
        it.reset (icalrecur_iterator_new (rule, frame.to_ical (entry.start)));
        if (!it) {
            return;
        }
    }
    size_t steps = 0, in_window = 0;
    int kept = 0;
    int64_t last_kept = std::numeric_limits<int64_t>::min ();
    for (icaltimetype t = icalrecur_iterator_next (it.get ()); !icaltime_is_null_time (t);
         t = icalrecur_iterator_next (it.get ())) {
        if (++steps > 4 * kMaxInstances) {
            break;
        }
        if (!icaltime_is_null_time (until) && icaltime_compare (t, until) > 0) {
            break;
        }
        const int64_t wall = civil_minutes (t.year, t.month, t.day, t.is_date ? 0 : t.hour, t.is_date ? 0 : t.minute);
        if (fix.active) {
            /* libical repeats DTSTART when it steps every period. */
            if (wall < wall_start || wall <= last_kept || !fix.accepts (wall)) {
                continue;
            }
            last_kept = wall;
            if (wall > fix.until || (fix.count && kept >= fix.count)) {
                break;
            }
            ++kept;
        }
        if (wall >= lower && ++in_window > limit * 4 + 1000) {
            break;
        }
        if (!offer (wall)) {
            break;
        }
    }
}

/* expand() in the entry's own frame (see Frame). */
std::vector<int64_t> expand_frame (const EntryRecord &entry, int64_t from, int64_t to, size_t limit, bool seek)
{
    std::vector<int64_t> result;
    const int64_t duration = std::max<int64_t> (0, entry.duration ());
    auto touches = [&] (int64_t s) { return s <= to && s + duration >= from; };

    if (!entry.repeats ()) {
        if (touches (entry.start)) {
            result.push_back (entry.start);
        }
        return result;
    }

    const int64_t window_start = from == std::numeric_limits<int64_t>::min () ? from : from - duration;
    const int64_t seek_to = seek ? window_start : entry.start;

    /* Exception dates, EXRULE occurrences and the instances that
     * exceptions of the series replace. */
    std::vector<int64_t> excluded (entry.exdates);
    excluded.insert (excluded.end (), entry.overridden.begin (), entry.overridden.end ());
    if (!entry.exrule.empty ()) {
        walk_rule (entry.exrule, entry, entry.start, window_start, to, kMaxInstances, seek, [&] (int64_t s) {
            excluded.push_back (s);
            return true;
        });
    }
    if (entry.all_day) {
        /* An exception given as a date removes the occurrence on that day. */
        for (int64_t &x : excluded) {
            x = civil_day_start (x);
        }
    }
    std::sort (excluded.begin (), excluded.end ());
    auto is_excluded = [&] (int64_t s) {
        return std::binary_search (excluded.begin (), excluded.end (), entry.all_day ? civil_day_start (s) : s);
    };

    if (!entry.rrule.empty ()) {
        walk_rule (entry.rrule, entry, seek_to, window_start, to, limit, seek, [&] (int64_t s) {
            if (touches (s) && !is_excluded (s)) {
                result.push_back (s);
            }
            return result.size () < limit;
        });
    } else if (touches (entry.start) && !is_excluded (entry.start)) {
        result.push_back (entry.start);
    }
    for (int64_t r : entry.rdates) {
        if (touches (r) && !is_excluded (r)) {
            result.push_back (r);
        }
    }
    std::sort (result.begin (), result.end ());
    result.erase (std::unique (result.begin (), result.end ()), result.end ());
    if (result.size () > limit) {
        result.resize (limit);
    }
    return result;
}

/* The first and last minutes the store holds. */
const int64_t kLowest = civil_minutes (1, 1, 1);
const int64_t kHighest = civil_minutes (9999, 12, 31, 23, 59);

/* Instants expand on their zone's wall clock into UTC minutes; the
 * viewer's window is widened to UTC (two hours spare for the local
 * daylight-saving change), and the instances are moved to the local wall
 * clock and cut to the window exactly. */
std::vector<int64_t> expand (const EntryRecord &entry, int64_t from, int64_t to, size_t limit, bool seek)
{
    if (!entry.is_instant ()) {
        return expand_frame (entry, from, to, limit, seek);
    }
    constexpr int64_t slack = 120;
    const int64_t f = from <= kLowest ? std::numeric_limits<int64_t>::min () : utc_from_local (from) - slack;
    const int64_t t = to >= kHighest ? kUnbounded : utc_from_local (to) + slack;
    const size_t wider = limit >= kMaxInstances ? limit : std::min (kMaxInstances, limit + 64);
    const int64_t duration = std::max<int64_t> (0, entry.duration ());
    std::vector<int64_t> result;
    for (int64_t u : expand_frame (entry, f, t, wider, seek)) {
        const int64_t local = local_from_utc (u);
        if (local <= to && local + duration >= from) {
            result.push_back (local);
        }
    }
    std::sort (result.begin (), result.end ());
    result.erase (std::unique (result.begin (), result.end ()), result.end ());
    if (result.size () > limit) {
        result.resize (limit);
    }
    return result;
}

}  // namespace

Status validate_rrule (const std::string &rrule)
{
    icalrecurrencetype rule;
    if (!parse_rule (rrule, rule)) {
        return Status::failure (CalendarInvalidArg, "the repeat rule \"" + rrule + "\" is not a valid RRULE");
    }
    if (rule.interval < 1) {
        return Status::failure (CalendarInvalidArg, "the repeat rule \"" + rrule + "\" has no valid INTERVAL");
    }
    return Status::success ();
}

std::vector<int64_t> expand_instances (const EntryRecord &entry, int64_t from, int64_t to, size_t limit)
{
    return expand (entry, from, to, limit, true);
}

std::vector<int64_t> expand_instances_stepping (const EntryRecord &entry, int64_t from, int64_t to, size_t limit)
{
    return expand (entry, from, to, limit, false);
}

int64_t last_instance_end (const EntryRecord &entry)
{
    const int64_t duration = std::max<int64_t> (0, entry.duration ());
    int64_t last = entry.start;
    for (int64_t r : entry.rdates) {
        last = std::max (last, r);
    }
    if (!entry.rrule.empty ()) {
        icalrecurrencetype rule;
        if (!parse_rule (entry.rrule, rule)) {
            return entry.start + duration;
        }
        if (rule_is_unbounded (rule)) {
            return kUnbounded;
        }
        walk_rule (entry.rrule, entry, entry.start, std::numeric_limits<int64_t>::min (), kUnbounded, kMaxInstances,
                   true, [&] (int64_t s) {
            last = std::max (last, s);
            return true;
        });
    }
    return last + duration;
}

std::string rrule_for_repeat_code (TavCalendarRepeatCode code, int64_t until_day)
{
    std::string rule;
    switch (code) {
    case TavCalendarRepeatsEveryDay: rule = "FREQ=DAILY"; break;
    case TavCalendarRepeatsEveryWorkday: rule = "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"; break;
    case TavCalendarRepeatsEveryWeek: rule = "FREQ=WEEKLY"; break;
    case TavCalendarRepeatsEveryMonth: rule = "FREQ=MONTHLY"; break;
    case TavCalendarRepeatsEveryYear: rule = "FREQ=YEARLY"; break;
    default: return {};
    }
    if (until_day >= 0) {
        const CivilFields f = civil_fields (until_day);
        char buf[40];
        snprintf (buf, sizeof buf, ";UNTIL=%04d%02d%02dT235959", f.year, f.month, f.day);
        rule += buf;
    }
    return rule;
}

namespace {

int array_length (const short *array, int size)
{
    int n = 0;
    while (n < size && array[n] != ICAL_RECURRENCE_ARRAY_MAX) {
        ++n;
    }
    return n;
}

}  // namespace

TavCalendarRepeatCode repeat_code_for_rrule (const std::string &text, int64_t start, int64_t *until_day)
{
    if (until_day) {
        *until_day = -1;
    }
    icalrecurrencetype rule;
    if (text.empty ()) {
        return TavCalendarRepeatsNoRepeat;
    }
    if (!parse_rule (text, rule) || rule.interval != 1 || rule.count != 0) {
        return TavCalendarRepeatsComplex;
    }
    if (array_length (rule.by_second, ICAL_BY_SECOND_SIZE) || array_length (rule.by_minute, ICAL_BY_MINUTE_SIZE)
        || array_length (rule.by_hour, ICAL_BY_HOUR_SIZE) || array_length (rule.by_year_day, ICAL_BY_YEARDAY_SIZE)
        || array_length (rule.by_week_no, ICAL_BY_WEEKNO_SIZE) || array_length (rule.by_set_pos, ICAL_BY_SETPOS_SIZE)) {
        return TavCalendarRepeatsComplex;
    }
    const CivilFields f = civil_fields (start);
    const int n_days = array_length (rule.by_day, ICAL_BY_DAY_SIZE);
    const int n_mdays = array_length (rule.by_month_day, ICAL_BY_MONTHDAY_SIZE);
    const int n_months = array_length (rule.by_month, ICAL_BY_MONTH_SIZE);

    /* Weekday mask of BYDAY without ordinals (bit 0 = Sunday). */
    unsigned mask = 0;
    for (int i = 0; i < n_days; ++i) {
        if (icalrecurrencetype_day_position (rule.by_day[i]) != 0) {
            return TavCalendarRepeatsComplex;
        }
        mask |= 1u << (static_cast<int> (icalrecurrencetype_day_day_of_week (rule.by_day[i])) - 1);
    }
    const unsigned workdays = 0x3e;
    const unsigned start_day = 1u << civil_weekday (start);

    TavCalendarRepeatCode code = TavCalendarRepeatsComplex;
    switch (rule.freq) {
    case ICAL_DAILY_RECURRENCE:
        if (!n_mdays && !n_months) {
            code = n_days == 0 ? TavCalendarRepeatsEveryDay
                   : mask == workdays ? TavCalendarRepeatsEveryWorkday : TavCalendarRepeatsComplex;
        }
        break;
    case ICAL_WEEKLY_RECURRENCE:
        if (!n_mdays && !n_months) {
            code = (n_days == 0 || mask == start_day) ? TavCalendarRepeatsEveryWeek
                   : mask == workdays ? TavCalendarRepeatsEveryWorkday : TavCalendarRepeatsComplex;
        }
        break;
    case ICAL_MONTHLY_RECURRENCE:
        if (!n_days && !n_months && (n_mdays == 0 || (n_mdays == 1 && rule.by_month_day[0] == f.day))) {
            code = TavCalendarRepeatsEveryMonth;
        }
        break;
    case ICAL_YEARLY_RECURRENCE:
        if (!n_days && (n_mdays == 0 || (n_mdays == 1 && rule.by_month_day[0] == f.day))
            && (n_months == 0 || (n_months == 1 && rule.by_month[0] == f.month))) {
            code = TavCalendarRepeatsEveryYear;
        }
        break;
    default:
        break;
    }
    if (code != TavCalendarRepeatsComplex && until_day && !icaltime_is_null_time (rule.until)) {
        icaltimetype u = rule.until;
        int64_t civil = icaltime_is_utc (u) && !u.is_date ? civil_from_time_t (icaltime_as_timet (u))
                                                          : civil_minutes (u.year, u.month, u.day);
        *until_day = civil_day_start (civil);
    }
    return code;
}

}  // namespace tav::host
