/* Helpers shared by the host tests. */
#ifndef TAV_HOST_TEST_UTIL_H
#define TAV_HOST_TEST_UTIL_H

#include "HostCivilTime.h"
#include "HostStore.h"
#include "TestSupport.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tav::host::test {

/* An iCalendar fixture of the project (tests/data/ics; see SOURCE.md there). */
inline std::string fixture_path (const std::string &name)
{
    return TAV_SOURCE_ROOT "/tests/data/ics/" + name;
}

/* The file's bytes; empty when it cannot be read. */
inline std::string read_file (const std::string &path)
{
    gchar *text = nullptr;
    gsize len = 0;
    g_file_get_contents (path.c_str (), &text, &len, nullptr);
    std::string s (text ? text : "", len);
    g_free (text);
    return s;
}

/* Texts sorted and joined with commas: a set compared in one line. */
inline std::string joined (std::vector<std::string> texts)
{
    std::sort (texts.begin (), texts.end ());
    std::string out;
    for (const std::string &s : texts)
        out += (out.empty () ? "" : ",") + s;
    return out;
}

inline CalendarRecord calendar_named (const std::string &title, bool visible = true,
                                      int color = TavCalendarColorDarkBlue)
{
    CalendarRecord c;
    c.title = title;
    c.visible = visible;
    c.color = color;
    return c;
}

inline int64_t at (int y, int m, int d, int h = 0, int min = 0)
{
    return civil_minutes (y, m, d, h, min);
}

/* One line per entry that says everything stored about it but its id and
 * modification stamp. */
inline std::string describe (const EntryRecord &e)
{
    std::string s = std::to_string (static_cast<int> (e.kind)) + "|" + e.uid + "|" + e.title + "|" + e.description +
                    "|" + e.location + "|" + civil_to_string (e.start) + "|" + civil_to_string (e.end) + "|" +
                    (e.all_day ? "allday" : "timed") + "|" + e.rrule + "|" + e.exrule + "|" + e.tzid + "|alarm " +
                    std::to_string (e.alarm_code) + " " + std::to_string (e.alarm_time) + "|repeat " +
                    std::to_string (e.repeat_code) + "|done " + std::to_string (e.done) + "|birthday " +
                    std::to_string (e.has_birthday) + " " + std::to_string (e.birth_year) + "|" + e.extra +
                    "|created " + std::to_string (e.created);
    for (int64_t x : e.exdates)
        s += "|ex " + civil_to_string (x);
    for (int64_t r : e.rdates)
        s += "|r " + civil_to_string (r);
    return s;
}

/* A store in a fresh directory with one writable calendar. */
struct StoreFixture {
    tav::test::TempDir dir;
    std::shared_ptr<Store> store;
    int64_t calendar = 0;

    explicit StoreFixture (const CalendarRecord &first = calendar_named ("Personal"))
    {
        reopen ();
        calendar = add_calendar (first).id;
    }

    void reopen ()
    {
        store.reset ();
        Status st;
        store = Store::open (dir.file ("calendar.db"), &st);
        ASSERT_TRUE (store) << st.message;
    }

    /* The calendar as stored, its id filled in. */
    CalendarRecord add_calendar (CalendarRecord c)
    {
        EXPECT_TRUE (store->add_calendar (c).ok ()) << c.title;
        return c;
    }

    EntryRecord event (const std::string &title, int64_t start, int64_t end, const std::string &rrule = {})
    {
        EntryRecord e;
        e.calendar_id = calendar;
        e.title = title;
        e.start = start;
        e.end = end;
        e.rrule = rrule;
        if (!rrule.empty ())
            e.repeat_code = TavCalendarRepeatsComplex;
        return e;
    }
};

}  // namespace tav::host::test

#endif
