/* libcalendarui - calendar arithmetic
 *
 * Two day counts live here. The Julian day number follows the real Julian
 * and Gregorian calendars and gives weekdays. Stepping a date by days works
 * on the processor's own calendar instead: months as long as
 * tav_calendar_processor_month_length() says (so year 4 is never a leap
 * year), and one jump over the days dropped at the reform. A run of n
 * one-day steps is an addition on a continuous ordinal of that calendar,
 * plus the width of the reform gap when the run crosses it, which makes
 * stepping by any number of days cost the same as stepping by one.
 */

#include "TavCalendarProcessor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>

#include "TavCalendarProcessorInternal.h"
#include "TavDate.h"
#include "TavLog.h"

struct _TavCalendarProcessorPrivate {
    bool dispose_has_run = false;
    int calendar_reform = CalendarReformBritain;
    int first_day_of_week = 0;
    int last_day_of_week = 6;
};

namespace {

using Priv = TavCalendarProcessorPrivate;

gpointer s_parent_class = nullptr;
gint s_private_offset = 0;

/* One row per calendar system: the last date counted as Julian by the
 * Gregorian test, the one-day step over the dropped days, and the last year
 * that uses the Julian leap rule. The Russian row compares against
 * "31 February 1918" while its step leaves 31 January: 1-28 February 1918
 * still count as Julian for the day number. */
struct Reform {
    TavDate last_julian;
    TavDate jump_from;
    TavDate jump_to;
    int julian_until;
};

constexpr Reform kReforms[] = {
    { { 1582, 9, 4 }, { 1582, 9, 4 }, { 1582, 9, 15 }, 1582 },   /* Spain */
    { { 1752, 8, 2 }, { 1752, 8, 2 }, { 1752, 8, 14 }, 1752 },   /* Britain */
    { { 1918, 1, 31 }, { 1918, 0, 31 }, { 1918, 1, 14 }, 1918 }, /* Russia */
};

constexpr int kMonthLength[2][12] = {
    { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 },
    { 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 },
};

constexpr int kDaysBeforeMonth[2][13] = {
    { 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365 },
    { 0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366 },
};

const Reform *reform_of (const Priv &priv)
{
    int r = priv.calendar_reform;
    return r >= 0 && r <= 2 ? &kReforms[r] : nullptr;
}

inline int date_cmp (const TavDate &a, const TavDate &b)
{
    if (a.year != b.year)
        return a.year < b.year ? -1 : 1;
    if (a.month != b.month)
        return a.month < b.month ? -1 : 1;
    return a.day < b.day ? -1 : a.day > b.day ? 1 : 0;
}

/* tav_date_compare's result (the first differing field's difference,
 * saturated to the int range), without the call. */
inline int date_difference (const TavDate &a, const TavDate &b)
{
    int64_t d;
    if (a.year != b.year)
        d = static_cast<int64_t> (a.year) - b.year;
    else if (a.month != b.month)
        d = static_cast<int64_t> (a.month) - b.month;
    else
        d = static_cast<int64_t> (a.day) - b.day;
    return static_cast<int> (std::clamp<int64_t> (d, std::numeric_limits<int>::min (), std::numeric_limits<int>::max ()));
}

inline bool same_date (const TavDate &a, const TavDate &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

/* Field arithmetic at the ends of the int range wraps around instead of
 * overflowing: such dates have no meaning, but must not be undefined. */
inline int wrap_add (int a, int b)
{
    return static_cast<int> (static_cast<unsigned> (a) + static_cast<unsigned> (b));
}

inline int64_t floor_div (int64_t a, int64_t b)
{
    int64_t q = a / b;
    return (a % b != 0 && a < 0) ? q - 1 : q;
}

inline int64_t clamp_to_int (int64_t v)
{
    if (v > std::numeric_limits<int>::max ())
        return std::numeric_limits<int>::max ();
    if (v < std::numeric_limits<int>::min ())
        return std::numeric_limits<int>::min ();
    return v;
}

/* Choosing the calendar system ------------------------------------------- */

int reform_from_environment ()
{
    static const char *const variables[] = { "CALENDAR_SYSTEM", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG" };
    const char *value = "c";
    for (const char *name : variables) {
        const char *v = g_getenv (name);
        if (v && *v) {
            value = v;
            break;
        }
    }
    if (g_ascii_strncasecmp (value, "en", 2) == 0)
        return CalendarReformBritain;
    if (g_ascii_strncasecmp (value, "es", 2) == 0)
        return CalendarReformSpain;
    if (g_ascii_strncasecmp (value, "ru", 2) == 0)
        return CalendarReformRussia;
    return CalendarReformBritain;
}

/* Calendar rules (no argument checks) ------------------------------------ */

bool is_leap (const Priv &priv, int year)
{
    const Reform *reform = reform_of (priv);
    if (!reform)
        return false;
    /* Year 4 was not kept as a leap year; neither rule may make it one. */
    if (year == 4)
        return false;
    if (year <= reform->julian_until)
        return year % 4 == 0;
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

inline int month_len (const Priv &priv, int year, int month)
{
    return kMonthLength[is_leap (priv, year)][month];
}

bool is_gregorian (const Priv &priv, const TavDate &date)
{
    const Reform *reform = reform_of (priv);
    if (!reform) {
        TAV_WARNING_AS ("tav_calendar_processor_date_is_gregorian", "Unknown calendar system %d",
                        priv.calendar_reform);
        return true;
    }
    return date_cmp (date, reform->last_julian) > 0;
}

guint julian_day_number (const Priv &priv, const TavDate &date)
{
    /* The textbook formula, in integers with floor division: identical to
     * evaluating it in doubles with floor() for every 32-bit field value. */
    const int64_t M = static_cast<int64_t> (date.month) + 1;
    const int64_t a = floor_div (14 - M, 12);
    const int64_t y = static_cast<int64_t> (date.year) + 4800 - a;
    const int64_t m = M + 12 * a - 3;
    int64_t jdn = date.day + floor_div (153 * m + 2, 5) + 365 * y + floor_div (y, 4);
    if (is_gregorian (priv, date))
        jdn += -floor_div (y, 100) + floor_div (y, 400) - 32045;
    else
        jdn -= 32083;
    if (jdn < 0)
        return 0;
    if (jdn > static_cast<int64_t> (G_MAXUINT32))
        return G_MAXUINT32;
    return static_cast<guint> (jdn);
}

inline int day_of_week (const Priv &priv, const TavDate &date)
{
    return static_cast<int> ((julian_day_number (priv, date) + 1u) % 7u);
}

inline int position_in_week (const Priv &priv, const TavDate &date)
{
    return (day_of_week (priv, date) - priv.first_day_of_week + 7) % 7;
}

/* True when 1 January of @year and of the next year, and so every day of
 * @year, lie after the reform: weekdays then follow from one day number and
 * the Gregorian month tables. */
inline bool year_is_plain_gregorian (const Priv &priv, int year)
{
    const Reform *reform = reform_of (priv);
    return reform && year > reform->last_julian.year && year < 1000000;
}

inline bool gregorian_leap (int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int week_number (const Priv &priv, const TavDate &date)
{
    const TavDate jan1 = { date.year, 0, 1 };
    const TavDate next_jan1 = { wrap_add (date.year, 1), 0, 1 };
    int p1, pn, pd;
    if (year_is_plain_gregorian (priv, date.year) && date.month >= 0 && date.month <= 11 && date.day > -1000
        && date.day < 1000) {
        /* Same positions as three day numbers would give, from one. */
        const int w1 = day_of_week (priv, jan1);
        const int leap = gregorian_leap (date.year);
        const int wn = (w1 + 365 + leap) % 7;
        const int wd = ((w1 + kDaysBeforeMonth[leap][date.month] + date.day - 1) % 7 + 7) % 7;
        p1 = (w1 - priv.first_day_of_week + 7) % 7;
        pn = (wn - priv.first_day_of_week + 7) % 7;
        pd = (wd - priv.first_day_of_week + 7) % 7;
    } else {
        p1 = position_in_week (priv, jan1);
        pn = position_in_week (priv, next_jan1);
        pd = position_in_week (priv, date);
    }

    /* Days before the first week that holds four days of the year belong
     * to the last week of the previous year. */
    if (date.month == 0 && p1 > 3 && date.day < 8 - p1) {
        const TavDate dec31 = { wrap_add (date.year, -1), 11, 31 };
        return week_number (priv, dec31);
    }
    /* Days of the week that holds the next 1 January, when that week is
     * the next year's week 1. */
    if (date.month == 11 && pn <= 3 && date.day > 31 - pn)
        return 1;
    const int64_t month = date.month;
    const int64_t week = 4 * month + (p1 <= 3 ? 1 : 0)
                         + ((2 * month - 1 + p1 - pd + date.day) * 36 + 216) / 256;
    return static_cast<int> (clamp_to_int (week));
}

/* One-day steps, exactly as the calendar defines them. */
void step_forward (const Priv &priv, TavDate &date)
{
    if (const Reform *reform = reform_of (priv)) {
        if (same_date (date, reform->jump_from)) {
            date = reform->jump_to;
            return;
        }
    }
    date.day = wrap_add (date.day, 1);
    if (date.day > month_len (priv, date.year, date.month)) {
        date.day = 1;
        if (++date.month > 11) {
            date.month = 0;
            date.year = wrap_add (date.year, 1);
        }
    }
}

void step_back (const Priv &priv, TavDate &date)
{
    if (const Reform *reform = reform_of (priv)) {
        if (same_date (date, reform->jump_to)) {
            date = reform->jump_from;
            return;
        }
    }
    if (date.day == 1) {
        if (--date.month < 0) {
            date.month = 11;
            date.year = wrap_add (date.year, -1);
        }
        date.day = month_len (priv, date.year, date.month);
    } else {
        date.day = wrap_add (date.day, -1);
    }
}

/* Continuous day ordinal of the processor's calendar ----------------------
 *
 * ordinal(d) + 1 == ordinal(step_forward(d)) for every valid date d except
 * the reform's jump_from, whose step lands gap + 1 ordinals later.
 *
 * The general form counts leap years by the calendar's own rule and works
 * for any year. After the reform year the calendar is the proleptic
 * Gregorian one, whose day count has a closed form with constant divisors;
 * that form, shifted to agree with the general one, serves every date the
 * user interface can show. */

/* Signed count of leap years in [0, year) under @reform's rule. */
int64_t leap_years_before (const Reform *reform, int64_t year)
{
    if (!reform)
        return 0;
    auto multiples = [] (int64_t y, int64_t k) { return floor_div (y - 1, k) + 1; };
    const int64_t julian_end = static_cast<int64_t> (reform->julian_until) + 1;
    int64_t count;
    if (year <= julian_end) {
        count = multiples (year, 4);
    } else {
        count = multiples (julian_end, 4) + (multiples (year, 4) - multiples (julian_end, 4))
                - (multiples (year, 100) - multiples (julian_end, 100))
                + (multiples (year, 400) - multiples (julian_end, 400));
    }
    if (year > 4)
        count--; /* year 4 */
    return count;
}

/* Days in [0, year) when year > 0, minus the days in [year, 0) otherwise. */
inline int64_t year_start (const Reform *reform, int64_t year)
{
    return 365 * year + leap_years_before (reform, year);
}

int64_t general_ordinal (const Priv &priv, const TavDate &date)
{
    return year_start (reform_of (priv), date.year) + kDaysBeforeMonth[is_leap (priv, date.year)][date.month]
           + date.day - 1;
}

TavDate general_date (const Priv &priv, int64_t ordinal)
{
    const Reform *reform = reform_of (priv);
    int64_t year;
    if (!reform)
        year = floor_div (ordinal, 365);
    else if (ordinal >= year_start (reform, static_cast<int64_t> (reform->julian_until) + 1))
        year = floor_div (ordinal * 400, 146097);
    else
        year = floor_div (ordinal * 4, 1461);
    /* The estimates are off by at most a year or two. */
    while (ordinal < year_start (reform, year))
        year--;
    while (ordinal >= year_start (reform, year + 1))
        year++;
    const int y = static_cast<int> (year);
    const int leap = is_leap (priv, y);
    const int doy = static_cast<int> (ordinal - year_start (reform, year));
    int month = doy >> 5;
    while (month < 11 && kDaysBeforeMonth[leap][month + 1] <= doy)
        month++;
    return TavDate { y, month, doy - kDaysBeforeMonth[leap][month] + 1 };
}

/* Proleptic Gregorian days since 1 January 1970 (month 0-11; the day may
 * lie outside the month). Written for any integer width: the views' years
 * fit 32-bit arithmetic, which is cheaper, and any other year takes 64 bits. */
template <typename I>
inline I gregorian_days_t (I y, int month, I d)
{
    const int m = month + 1;
    y -= m <= 2;
    const I era = (y >= 0 ? y : y - 399) / 400;
    const I yoe = y - era * 400;
    const I doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const I doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

template <typename I>
inline TavDate gregorian_date_t (I z)
{
    z += 719468;
    const I era = (z >= 0 ? z : z - 146096) / 146097;
    const I doe = z - era * 146097;
    const I yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const I doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const I mp = (5 * doy + 2) / 153;
    const int d = static_cast<int> (doy - (153 * mp + 2) / 5 + 1);
    const int m = static_cast<int> (mp < 10 ? mp + 3 : mp - 9);
    return TavDate { static_cast<int> (yoe + era * 400 + (m <= 2)), m - 1, d };
}

constexpr int64_t kNarrowYears = 1000000;

inline int64_t gregorian_days (int64_t y, int month, int64_t d)
{
    if (y > -kNarrowYears && y < kNarrowYears && d > -kNarrowYears && d < kNarrowYears)
        return gregorian_days_t<int32_t> (static_cast<int32_t> (y), month, static_cast<int32_t> (d));
    return gregorian_days_t<int64_t> (y, month, d);
}

inline TavDate gregorian_date (int64_t z)
{
    if (z > -300 * kNarrowYears && z < 300 * kNarrowYears)
        return gregorian_date_t<int32_t> (static_cast<int32_t> (z));
    return gregorian_date_t<int64_t> (z);
}

/* What every call needs to know about a reform, worked out once. */
struct ReformOrdinals {
    int64_t jump_from;
    int64_t jump_to;
    int64_t gregorian_start;  /* ordinal of 1 January after the reform year */
    int64_t gregorian_offset; /* general ordinal minus gregorian_days there */
};

const ReformOrdinals &reform_ordinals (int index)
{
    static const auto table = [] {
        std::array<ReformOrdinals, 3> t {};
        for (int i = 0; i < 3; i++) {
            Priv priv;
            priv.calendar_reform = i;
            const Reform &r = kReforms[i];
            const TavDate first = { r.julian_until + 1, 0, 1 };
            t[i].jump_from = general_ordinal (priv, r.jump_from);
            t[i].jump_to = general_ordinal (priv, r.jump_to);
            t[i].gregorian_start = general_ordinal (priv, first);
            t[i].gregorian_offset = t[i].gregorian_start - gregorian_days (first.year, 0, 1);
        }
        return t;
    }();
    return table[index];
}

class DayOrdinal {
public:
    explicit DayOrdinal (const Priv &priv)
        : m_priv (priv), m_reform (reform_of (priv)),
          m_consts (m_reform ? &reform_ordinals (priv.calendar_reform) : nullptr)
    {
    }

    int64_t of (const TavDate &date) const
    {
        if (m_reform && date.year > m_reform->julian_until)
            return gregorian_days (date.year, date.month, date.day) + m_consts->gregorian_offset;
        return general_ordinal (m_priv, date);
    }

    TavDate date_of (int64_t ordinal) const
    {
        if (m_reform && ordinal >= m_consts->gregorian_start)
            return gregorian_date (ordinal - m_consts->gregorian_offset);
        return general_date (m_priv, ordinal);
    }

    bool has_gap () const { return m_reform != nullptr; }
    int64_t jump_from () const { return m_consts->jump_from; }
    int64_t jump_to () const { return m_consts->jump_to; }
    /* The number of ordinals a step over the reform skips. */
    int64_t gap () const { return m_consts->jump_to - m_consts->jump_from - 1; }

private:
    const Priv &m_priv;
    const Reform *m_reform;
    const ReformOrdinals *m_consts;
};

/* @ndays forward steps. The month must be 0..11. */
void forward_by_days (const Priv &priv, TavDate &date, int64_t ndays)
{
    if (ndays <= 0)
        return;
    /* A day before the 1st climbs one at a time to the 1st; a day past the
     * month's end steps to the next month's 1st. Only then is the date one
     * the ordinal knows. */
    if (date.day < 1) {
        int64_t climb = std::min<int64_t> (ndays, 1 - static_cast<int64_t> (date.day));
        date.day = static_cast<int> (date.day + climb);
        ndays -= climb;
    } else if (date.day > month_len (priv, date.year, date.month)) {
        step_forward (priv, date);
        ndays--;
    }
    if (ndays == 0)
        return;
    /* Short steps inside the month are the common case in every view. */
    if (date.day + ndays <= 28) {
        const Reform *reform = reform_of (priv);
        if (!reform || date.year != reform->jump_from.year || date.month != reform->jump_from.month) {
            date.day = static_cast<int> (date.day + ndays);
            return;
        }
    }
    /* After the reform year no step ever meets the gap again: the plain
     * Gregorian day count does it all. */
    if (const Reform *reform = reform_of (priv); reform && date.year > reform->julian_until) {
        date = gregorian_date (gregorian_days (date.year, date.month, date.day) + ndays);
        return;
    }
    DayOrdinal ord (priv);
    int64_t o = ord.of (date);
    int64_t target = o + ndays;
    if (ord.has_gap () && o <= ord.jump_from () && target > ord.jump_from ())
        target += ord.gap ();
    date = ord.date_of (target);
}

/* @ndays backward steps. The month must be 0..11. */
void back_by_days (const Priv &priv, TavDate &date, int64_t ndays)
{
    if (ndays <= 0)
        return;
    if (date.day < 1) {
        /* Only a day that was 1 wraps to the previous month: below 1 the
         * day just keeps falling. */
        date.day = static_cast<int> (clamp_to_int (date.day - ndays));
        return;
    }
    int length = month_len (priv, date.year, date.month);
    if (date.day > length) {
        int64_t fall = std::min<int64_t> (ndays, static_cast<int64_t> (date.day) - length);
        date.day = static_cast<int> (date.day - fall);
        ndays -= fall;
        if (ndays == 0)
            return;
    }
    if (date.day - ndays >= 1) {
        const Reform *reform = reform_of (priv);
        if (!reform || date.year != reform->jump_to.year || date.month != reform->jump_to.month) {
            date.day = static_cast<int> (date.day - ndays);
            return;
        }
    }
    if (const Reform *reform = reform_of (priv); reform && date.year > reform->julian_until) {
        const int64_t z = gregorian_days (date.year, date.month, date.day) - ndays;
        if (z >= gregorian_days (static_cast<int64_t> (reform->julian_until) + 1, 0, 1)) {
            date = gregorian_date (z);
            return;
        }
    }
    DayOrdinal ord (priv);
    int64_t o = ord.of (date);
    int64_t target = o - ndays;
    if (ord.has_gap () && o >= ord.jump_to () && target < ord.jump_to ())
        target -= ord.gap ();
    date = ord.date_of (target);
}

/* The earliest valid date that does not compare before @date. */
TavDate valid_ceiling (const Priv &priv, TavDate date)
{
    if (date.month < 0)
        return TavDate { date.year, 0, 1 };
    if (date.month > 11)
        return TavDate { wrap_add (date.year, 1), 0, 1 };
    if (date.day < 1)
        date.day = 1;
    else if (date.day > month_len (priv, date.year, date.month))
        step_forward (priv, date);
    return date;
}

/* The number of forward steps from @from (month 0..11) until the stepped
 * date is no longer before @to, which is @to itself whenever stepping
 * reaches it. @to is after @from. */
int64_t steps_until (const Priv &priv, TavDate from, const TavDate &to)
{
    int64_t steps = 0;
    if (from.day < 1) {
        if (from.year == to.year && from.month == to.month && to.day <= 1)
            return to.day - static_cast<int64_t> (from.day);
        steps = 1 - static_cast<int64_t> (from.day);
        from.day = 1;
    } else if (from.day > month_len (priv, from.year, from.month)) {
        step_forward (priv, from);
        steps = 1;
    }
    if (date_cmp (from, to) >= 0)
        return steps;

    const TavDate target = valid_ceiling (priv, to);
    if (from.year == target.year && from.month == target.month) {
        const Reform *reform = reform_of (priv);
        if (!reform || from.year != reform->jump_from.year || from.month != reform->jump_from.month)
            return steps + target.day - from.day;
    }
    if (const Reform *reform = reform_of (priv); reform && from.year > reform->julian_until)
        return steps + gregorian_days (target.year, target.month, target.day)
               - gregorian_days (from.year, from.month, from.day);
    DayOrdinal ord (priv);
    const int64_t o_from = ord.of (from);
    int64_t o_to = ord.of (target);
    if (ord.has_gap () && o_from <= ord.jump_from () && o_to > ord.jump_from ()) {
        /* Stepping from before the reform never lands on a dropped day: the
         * first day it reaches at or after one is the reform's first day. */
        if (o_to < ord.jump_to ())
            o_to = ord.jump_to ();
        return steps + o_to - o_from - ord.gap ();
    }
    return steps + o_to - o_from;
}

/* Steps @date one day at a time until its weekday is @weekday. A week is
 * at most a few steps even over a reform jump; the bound only matters for
 * dates so far outside any calendar that their day number, and so their
 * weekday, is pinned at the end of its range. */
void walk_to_weekday (const Priv &priv, TavDate &date, int weekday, bool forward)
{
    for (int steps = 0; steps < 14 && day_of_week (priv, date) != weekday; steps++) {
        if (forward)
            step_forward (priv, date);
        else
            step_back (priv, date);
    }
}

inline Priv &priv_of (TavCalendarProcessor *processor)
{
    return *processor->priv;
}

/* Object ------------------------------------------------------------------ */

void tav_calendar_processor_dispose (GObject *object)
{
    Priv &priv = priv_of (TAV_CALENDAR_PROCESSOR (object));
    if (!priv.dispose_has_run)
        priv.dispose_has_run = true;
    G_OBJECT_CLASS (s_parent_class)->dispose (object);
}

void tav_calendar_processor_finalize (GObject *object)
{
    TavCalendarProcessor *self = TAV_CALENDAR_PROCESSOR (object);
    self->priv->~Priv ();
    self->priv = nullptr;
    G_OBJECT_CLASS (s_parent_class)->finalize (object);
}

void tav_calendar_processor_class_init (gpointer klass, gpointer)
{
    s_parent_class = g_type_class_peek_parent (klass);
    /* Turns the private size noted at registration into its offset. */
    if (s_private_offset)
        g_type_class_adjust_private_offset (klass, &s_private_offset);
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_processor_dispose;
    object_class->finalize = tav_calendar_processor_finalize;
}

void tav_calendar_processor_init (GTypeInstance *instance, gpointer)
{
    TavCalendarProcessor *self = reinterpret_cast<TavCalendarProcessor *> (instance);
    void *storage = G_STRUCT_MEMBER_P (self, s_private_offset);
    self->priv = new (storage) Priv ();
    self->priv->calendar_reform = reform_from_environment ();
}

} // namespace

GType tav_calendar_processor_get_type (void)
{
    static gsize type_id = 0;
    if (g_once_init_enter (&type_id)) {
        /* A registration of the same name made earlier in the process (by
         * another copy of this code) is reused rather than duplicated. */
        GType type = g_type_from_name ("TavCalendarProcessor");
        if (type == 0) {
            static const GTypeInfo info = {
                sizeof (TavCalendarProcessorClass),
                nullptr,
                nullptr,
                tav_calendar_processor_class_init,
                nullptr,
                nullptr,
                sizeof (TavCalendarProcessor),
                0,
                tav_calendar_processor_init,
                nullptr,
            };
            type = g_type_register_static (G_TYPE_OBJECT, "TavCalendarProcessor", &info, GTypeFlags (0));
            s_private_offset = g_type_add_instance_private (type, sizeof (Priv));
        }
        g_once_init_leave (&type_id, type);
    }
    return type_id;
}

/* Internal interface ------------------------------------------------------ */

CalendarReform tav_calendar_processor_get_reform (TavCalendarProcessor *processor)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), CalendarReformBritain);
    return static_cast<CalendarReform> (priv_of (processor).calendar_reform);
}

void tav_calendar_processor_set_reform_for_testing (TavCalendarProcessor *processor, int reform)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    priv_of (processor).calendar_reform = reform;
}

int tav_calendar_processor_get_first_day_of_week (TavCalendarProcessor *processor)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), 0);
    return priv_of (processor).first_day_of_week;
}

int tav_calendar_processor_get_last_day_of_week (TavCalendarProcessor *processor)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), 6);
    return priv_of (processor).last_day_of_week;
}

/* Public API -------------------------------------------------------------- */

TavCalendarProcessor *tav_calendar_processor_new (void)
{
    return TAV_CALENDAR_PROCESSOR (g_object_new (TAV_TYPE_CALENDAR_PROCESSOR, nullptr));
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wtype-limits"

void tav_calendar_processor_set_first_day_of_week (TavCalendarProcessor *processor, guint first_day_of_week)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR (processor));
    g_return_if_fail (first_day_of_week >= 0 && first_day_of_week <= 6);
    Priv &priv = priv_of (processor);
    priv.first_day_of_week = static_cast<int> (first_day_of_week);
    priv.last_day_of_week = (priv.first_day_of_week + 6) % 7;
}

#pragma GCC diagnostic pop

gboolean tav_calendar_processor_date_is_gregorian (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    return is_gregorian (priv_of (processor), *date);
}

guint tav_calendar_processor_date_to_julian_day_number (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), 0);
    g_return_val_if_fail (date != NULL, 0);
    return julian_day_number (priv_of (processor), *date);
}

int tav_calendar_processor_date_to_day_of_week (TavCalendarProcessor *processor, const TavDate *date)
{
    /* The day number's own checks are the only ones. */
    return static_cast<int> ((tav_calendar_processor_date_to_julian_day_number (processor, date) + 1u) % 7u);
}

gboolean tav_calendar_processor_is_first_day_of_week (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    const Priv &priv = priv_of (processor);
    return day_of_week (priv, *date) == priv.first_day_of_week;
}

gboolean tav_calendar_processor_is_last_day_of_week (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    const Priv &priv = priv_of (processor);
    return day_of_week (priv, *date) == priv.last_day_of_week;
}

gboolean tav_calendar_processor_is_date_weekday (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    int weekday = day_of_week (priv_of (processor), *date);
    return weekday != 0 && weekday != 6;
}

int tav_calendar_processor_date_to_week_number (TavCalendarProcessor *processor, const TavDate *date)
{
    /* No checks of its own: a bad argument is reported once, by the
     * weekday computation, and gives 0. */
    if (G_UNLIKELY (!TAV_IS_CALENDAR_PROCESSOR(processor) || !date)) {
        tav_calendar_processor_date_to_day_of_week (processor, date);
        return 0;
    }
    return week_number (priv_of (processor), *date);
}

gboolean tav_calendar_processor_is_leap_year (TavCalendarProcessor *processor, int year)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    return is_leap (priv_of (processor), year);
}

int tav_calendar_processor_date_to_day_of_year (TavCalendarProcessor *processor, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), -1);
    g_return_val_if_fail (date != NULL, -1);
    g_return_val_if_fail (date->month >= 0 && date->month <= 11, -1);
    return wrap_add (kDaysBeforeMonth[is_leap (priv_of (processor), date->year)][date->month], date->day);
}

int tav_calendar_processor_month_length (TavCalendarProcessor *processor, int year, guint month)
{
    g_return_val_if_fail (month <= 11, -1);
    /* The month tables do not depend on the processor beyond its leap rule;
     * without a processor the shared calendar system decides. */
    if (G_UNLIKELY (!TAV_IS_CALENDAR_PROCESSOR(processor))) {
        Priv fallback;
        fallback.calendar_reform = reform_from_environment ();
        return month_len (fallback, year, static_cast<int> (month));
    }
    return month_len (priv_of (processor), year, static_cast<int> (month));
}

void tav_calendar_processor_inc_date (TavCalendarProcessor *processor, TavDate *date)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (date != NULL);
    g_return_if_fail (date->month >= 0 && date->month <= 11);
    step_forward (priv_of (processor), *date);
}

void tav_calendar_processor_dec_date (TavCalendarProcessor *processor, TavDate *date)
{
    g_return_if_fail (date != NULL);
    g_return_if_fail (date->month >= 0 && date->month <= 11);
    if (G_UNLIKELY (!TAV_IS_CALENDAR_PROCESSOR(processor))) {
        /* Checks only the date: without a processor the step follows the
         * calendar system of the environment. */
        Priv fallback;
        fallback.calendar_reform = reform_from_environment ();
        step_back (fallback, *date);
        return;
    }
    step_back (priv_of (processor), *date);
}

void tav_calendar_processor_inc_date_by_days (TavCalendarProcessor *processor, TavDate *date, int ndays)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (date != NULL);
    g_return_if_fail (ndays >= 0);
    g_return_if_fail (date->month >= 0 && date->month <= 11);
    forward_by_days (priv_of (processor), *date, ndays);
}

void tav_calendar_processor_dec_date_by_days (TavCalendarProcessor *processor, TavDate *date, int ndays)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (date != NULL);
    g_return_if_fail (ndays >= 0);
    g_return_if_fail (date->month >= 0 && date->month <= 11);
    back_by_days (priv_of (processor), *date, ndays);
}

void tav_calendar_processor_inc_month (TavCalendarProcessor *processor, TavDate *date)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (date != NULL);
    g_assert (date->day <= 31);
    g_return_if_fail (date->month >= 0 && date->month <= 11);
    /* Deliberately modulo 11 and within the same year: November steps to
     * January, December to February, and a short month that cannot hold
     * the day is skipped. Kept as it has always behaved. */
    do {
        date->month = (date->month + 1) % 11;
    } while (tav_calendar_processor_month_length (processor, date->year, static_cast<guint> (date->month))
             < date->day);
}

void tav_calendar_processor_inc_month_by_count (TavCalendarProcessor *processor, TavDate *date, int count)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (date != NULL);
    g_assert (date->day <= 31);
    g_return_if_fail (count >= 0);
    g_return_if_fail (date->month >= 0 && date->month <= 11);

    const Priv &priv = priv_of (processor);
    const int old_month = date->month;
    const int64_t sum = static_cast<int64_t> (date->month) + count;
    /* December 2037 is as far as the calendar goes. */
    if (date->year == 2037 && sum >= 12)
        date->month = 11;
    else
        date->month = static_cast<int> (sum % 12);
    /* However many years the count spans, the year moves by one at most. */
    if (date->month < old_month)
        date->year = wrap_add (date->year, 1);
    while (month_len (priv, date->year, date->month) < date->day)
        date->day--;
}

int tav_calendar_processor_get_date_interval_in_days (TavCalendarProcessor *processor, TavDate from, TavDate to)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), 0);
    int order = date_difference (to, from);
    if (order <= 0)
        /* Not a day count: an earlier date gives the raw field difference. */
        return order;
    g_return_val_if_fail (from.month >= 0 && from.month <= 11, 0);
    return static_cast<int> (clamp_to_int (steps_until (priv_of (processor), from, to)));
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wtype-limits"

gboolean tav_calendar_processor_get_week (TavCalendarProcessor *processor, int year, guint week,
                                          TavDateInterval *result)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor), FALSE);
    g_return_val_if_fail (week >= 0 && week <= 53, FALSE);
    const Priv &priv = priv_of (processor);

    TavDate start = { year, 0, 1 };
    for (;;) {
        if (week_number (priv, start) == static_cast<int> (week) && (start.month == 11 || week <= 51))
            break;
        /* Stepping starts on 1 January of @year, so any other year is the
         * next one (compared for inequality: it may wrap at the int limit). */
        if (start.year != year && start.day > 4)
            return FALSE;
        step_forward (priv, start);
    }
    TavDate end = start;
    step_forward (priv, end);
    walk_to_weekday (priv, start, priv.first_day_of_week, false);
    walk_to_weekday (priv, end, priv.last_day_of_week, true);
    if (result) {
        result->start = start;
        result->end = end;
    }
    return TRUE;
}

#pragma GCC diagnostic pop

void tav_calendar_processor_get_this_week (TavCalendarProcessor *processor, TavDateInterval *interval)
{
    g_return_if_fail (TAV_IS_CALENDAR_PROCESSOR(processor));
    g_return_if_fail (interval != NULL);
    const Priv &priv = priv_of (processor);
    TavDate start;
    tav_date_init_today (&start);
    TavDate end = start;
    walk_to_weekday (priv, start, priv.first_day_of_week, false);
    walk_to_weekday (priv, end, priv.last_day_of_week, true);
    interval->start = start;
    interval->end = end;
}

void tav_calendar_processor_next_weekday (TavCalendarProcessor *processor, TavDate *date)
{
    /* No checks of its own: the first step reports a bad argument, and the
     * date is then left alone. */
    if (G_UNLIKELY (!TAV_IS_CALENDAR_PROCESSOR(processor) || !date || date->month < 0 || date->month > 11)) {
        tav_calendar_processor_inc_date (processor, date);
        return;
    }
    const Priv &priv = priv_of (processor);
    /* A working day is never more than a few steps away, even over a reform
     * jump. Only a date far outside any calendar, whose day number is pinned
     * at the end of its range, has a weekday that never changes; such a
     * date is left as it was. */
    TavDate d = *date;
    for (int steps = 0; steps < 14; steps++) {
        step_forward (priv, d);
        int weekday = day_of_week (priv, d);
        if (weekday != 0 && weekday != 6) {
            *date = d;
            return;
        }
    }
}
