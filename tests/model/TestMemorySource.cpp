/* The in-memory test source: the views' and entries' tests rely on its
 * repetition rules, so they are checked against a day-by-day scan. Its
 * store is exercised by every test that reads from it. */

#include <calendarui.h>

#include <random>
#include <string>

#include "ModelTestUtil.h"
#include "TavMemorySource.h"
#include "TestSupport.h"

using namespace tav::test;
using tav::adoptGRef;
using tav::GRefPtr;

namespace {

std::string expand_text (TavCalendarEntry *entry, const TavDateInterval &interval)
{
    GList *list = tav_memory_source_expand (entry, &interval);
    std::string out;
    for (GList *l = list; l; l = l->next) {
        const auto *ts = static_cast<const TavTimestamp *> (l->data);
        out += (out.empty () ? "" : " ") + to_text (ts->date).substr (5);
    }
    g_list_free_full (list, [] (gpointer p) { tav_timestamp_free (static_cast<TavTimestamp *> (p)); });
    return out;
}

TEST (MemorySource, ExpandsRepeatingEvents)
{
    /* until: year 0 when not set; expected: MM-DD of each occurrence start */
    struct Row { const char *label; TavCalendarRepeatCode repeat; TavDate start, end, until; TavDateInterval interval;
                 const char *expected; } rows[] = {
        { "multi-day reaching in", TavCalendarRepeatsNoRepeat, date (2009, 1, 27), date (2009, 2, 2), {}, days (date (2009, 2, 1), date (2009, 2, 31)), "02-27" },
        { "touching the last day", TavCalendarRepeatsNoRepeat, date (2009, 2, 31), date (2009, 3, 2), {}, days (date (2009, 2, 1), date (2009, 2, 31)), "03-31" },
        { "daily", TavCalendarRepeatsEveryDay, date (2009, 2, 30), date (2009, 2, 30), {}, days (date (2009, 2, 29), date (2009, 3, 2)), "03-30 03-31 04-01 04-02" },
        { "daily until", TavCalendarRepeatsEveryDay, date (2009, 2, 30), date (2009, 2, 30), date (2009, 2, 31), days (date (2009, 2, 29), date (2009, 3, 2)), "03-30 03-31" },
        { "workdays", TavCalendarRepeatsEveryWorkday, date (2009, 2, 5), date (2009, 2, 5), {}, days (date (2009, 2, 5), date (2009, 2, 11)), "03-05 03-06 03-09 03-10 03-11" },
        { "weekly", TavCalendarRepeatsEveryWeek, date (2009, 2, 5), date (2009, 2, 5), {}, days (date (2009, 2, 1), date (2009, 2, 31)), "03-05 03-12 03-19 03-26" },
        { "weekly two-day", TavCalendarRepeatsEveryWeek, date (2009, 2, 7), date (2009, 2, 8), {}, days (date (2009, 2, 15), date (2009, 2, 22)), "03-14 03-21" },
        { "monthly on the 31st", TavCalendarRepeatsEveryMonth, date (2009, 0, 31), date (2009, 0, 31), {}, days (date (2009, 0, 1), date (2009, 5, 30)), "01-31 03-31 05-31" },
        { "yearly leap day", TavCalendarRepeatsEveryYear, date (2008, 1, 29), date (2008, 1, 29), {}, days (date (2008, 0, 1), date (2012, 11, 31)), "02-29 02-29" },
        { "yearly until", TavCalendarRepeatsEveryYear, date (2009, 4, 1), date (2009, 4, 1), date (2011, 4, 1), days (date (2009, 0, 1), date (2015, 0, 1)), "05-01 05-01 05-01" },
        { "complex rule shows the first", TavCalendarRepeatsComplex, date (2009, 2, 5), date (2009, 2, 5), {}, days (date (2009, 2, 1), date (2009, 3, 30)), "03-05" },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        auto entry = adoptGRef (tav_calendar_entry_new ());
        g_object_set (entry.get (), "start-date", &row.start, "end-date", &row.end, "repeat-code", row.repeat, nullptr);
        if (row.until.year)
            g_object_set (entry.get (), "end-repetition-date", &row.until, nullptr);
        EXPECT_EQ (expand_text (entry.get (), row.interval), row.expected);
    }
}

gint64 julian (const TavDate &d)
{
    GDate g;
    g_date_clear (&g, 1);
    g_date_set_dmy (&g, GDateDay (d.day), GDateMonth (d.month + 1), GDateYear (d.year));
    return g_date_get_julian (&g);
}

GDate gdate_of_julian (gint64 julian)
{
    GDate g;
    g_date_clear (&g, 1);
    g_date_set_julian (&g, guint32 (julian));
    return g;
}

TavDate from_julian (gint64 j)
{
    GDate g = gdate_of_julian (j);
    return TavDate { int (g_date_get_year (&g)), g_date_get_month (&g) - 1, g_date_get_day (&g) };
}

/* The plainest possible statement of the repetition rules: look at every
 * day that an occurrence could start on and ask whether it does. */
std::string reference_expansion (const TavDate &start, const TavDate &end, TavCalendarRepeatCode repeat,
                                 const TavDate *until, const TavDateInterval &interval)
{
    gint64 s = julian (start), e = julian (end);
    gint64 duration = std::max<gint64> (0, e - s);
    gint64 last = G_MAXINT64;
    if (repeat != TavCalendarRepeatsNoRepeat && repeat != TavCalendarRepeatsComplex && until && julian (*until) > e)
        last = julian (*until);
    std::string out;
    for (gint64 d = std::max (s, julian (interval.start) - duration); d <= std::min (last, julian (interval.end)); ++d) {
        GDate g = gdate_of_julian (d);
        TavDate date = from_julian (d);
        GDateWeekday w = g_date_get_weekday (&g);
        bool hit;
        switch (repeat) {
        case TavCalendarRepeatsEveryDay: hit = true; break;
        case TavCalendarRepeatsEveryWorkday: hit = w != G_DATE_SATURDAY && w != G_DATE_SUNDAY; break;
        case TavCalendarRepeatsEveryWeek: hit = (d - s) % 7 == 0; break;
        case TavCalendarRepeatsEveryMonth: hit = date.day == start.day; break;
        case TavCalendarRepeatsEveryYear: hit = date.day == start.day && date.month == start.month; break;
        default: hit = d == s; break;
        }
        if (hit)
            out += (out.empty () ? "" : " ") + to_text (date).substr (5);
    }
    return out;
}

TEST (MemorySource, SteppedExpansionMatchesADayByDayScan)
{
    std::mt19937 rng (20090305);
    auto pick = [&] (gint64 lo, gint64 hi) { return std::uniform_int_distribution<gint64> (lo, hi) (rng); };
    auto random_date = [&] (int y0, int y1) { return from_julian (pick (julian ({ y0, 0, 1 }), julian ({ y1, 11, 31 }))); };
    auto shift = [] (TavDate d, gint64 n) { return from_julian (julian (d) + n); };
    int compared = 0, nonempty = 0;
    for (int i = 0; i < 3000; ++i) {
        TavDate start = random_date (1970, 2030);
        /* Month ends and leap days are where stepping goes wrong. */
        if (i % 5 == 0)
            start.day = g_date_get_days_in_month (GDateMonth (start.month + 1), GDateYear (start.year));
        if (i % 17 == 0)
            start = TavDate { int (2000 + 4 * pick (0, 7)), 1, 29 };
        TavDate end = shift (start, pick (0, 3) == 0 ? pick (1, 40) : 0);
        auto repeat = TavCalendarRepeatCode (pick (0, 6));
        TavDate until = shift (end, pick (0, 2000));
        bool with_until = pick (0, 1) == 1;
        /* Mostly intervals near the event, some anywhere. */
        TavDate a = pick (0, 4) ? shift (start, pick (-60, 2500)) : random_date (1970, 2037);
        TavDateInterval interval { a, shift (a, pick (0, pick (0, 1) ? 40 : 3000)) };

        auto entry = adoptGRef (tav_calendar_entry_new ());
        g_object_set (entry.get (), "start-date", &start, "end-date", &end, "repeat-code", repeat, nullptr);
        if (with_until)
            g_object_set (entry.get (), "end-repetition-date", &until, nullptr);
        std::string expected = reference_expansion (start, end, repeat, with_until ? &until : nullptr, interval);
        ASSERT_EQ (expand_text (entry.get (), interval), expected)
            << "case " << i << ": start " << to_text (start) << " end " << to_text (end) << " repeat " << repeat
            << " until " << (with_until ? to_text (until) : "-") << " interval " << to_text (interval.start) << ".."
            << to_text (interval.end);
        compared++;
        nonempty += !expected.empty ();
    }
    EXPECT_EQ (compared, 3000);
    /* The cases must exercise real output, not only empty ranges. */
    EXPECT_GT (nonempty, 1000);
}

} // namespace
