/* Helpers of the import tests: a whole store as text, and sample files. */
#ifndef TAV_IMPORT_TEST_SUPPORT_H
#define TAV_IMPORT_TEST_SUPPORT_H

#include "HostTestUtil.h"

#include <glib/gstdio.h>

namespace tav::host::test {

/* Every calendar and every entry of @store, one line each, without the
 * stamps an import takes from the clock. */
inline std::string dump (Store &store)
{
    std::string out;
    for (const CalendarRecord &c : store.calendars ()) {
        out += "calendar " + std::to_string (c.id) + "|" + c.title + "|" + std::to_string (c.color) + "|" +
               std::to_string (c.visible) + "\n";
        std::vector<std::string> lines;
        for (EntryRecord e : store.entries_of_calendar (c.id)) {
            e.created = 0;
            lines.push_back (describe (e) + "|cancelled " + std::to_string (e.cancelled) + "|seq " +
                             std::to_string (e.sequence) + "|alarms " + e.alarms);
        }
        std::sort (lines.begin (), lines.end ());
        for (const std::string &l : lines) {
            out += l + "\n";
        }
    }
    return out;
}

inline std::unique_ptr<Store> open_store (const std::string &path, const char *calendar = "Personal")
{
    Status st;
    std::unique_ptr<Store> store = Store::open (path, &st);
    EXPECT_TRUE (store) << st.message;
    if (store && calendar) {
        CalendarRecord c = calendar_named (calendar);
        EXPECT_TRUE (store->add_calendar (c).ok ());
    }
    return store;
}

inline void write_text (const std::string &path, const std::string &text)
{
    ASSERT_TRUE (g_file_set_contents (path.c_str (), text.data (), static_cast<gssize> (text.size ()), nullptr));
}

}  // namespace tav::host::test

#endif
