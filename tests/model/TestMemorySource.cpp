/* The in-memory test source: the views' and entries' tests rely on its
 * repetition rules, which it states day by day; the table pins them down.
 * Its store is exercised by every test that reads from it. */

#include <calendarui.h>

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

} // namespace
