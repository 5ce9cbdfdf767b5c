/* Helpers shared by the host store tests. */
#ifndef TAV_HOST_TEST_UTIL_H
#define TAV_HOST_TEST_UTIL_H

#include "HostCivilTime.h"
#include "HostStore.h"
#include "TestSupport.h"

#include <glib.h>

#include <memory>
#include <string>
#include <vector>

namespace tav::host::test {

/* The shared iCalendar fixtures: TAV_TEST_FIXTURES, or the shared folder
 * next to the checkout (one level further up for a git worktree). */
inline std::string fixture_path (const std::string &name)
{
    std::vector<std::string> roots;
    if (const char *root = g_getenv ("TAV_TEST_FIXTURES")) {
        roots.push_back (root);
    }
    roots.push_back (TAV_SOURCE_ROOT "/../shared/fixtures");
    roots.push_back (TAV_SOURCE_ROOT "/../../shared/fixtures");
    for (const std::string &root : roots) {
        const std::string path = root + "/ics/" + name;
        if (g_file_test (path.c_str (), G_FILE_TEST_EXISTS)) {
            return path;
        }
    }
    return roots.front () + "/ics/" + name;
}

inline std::string read_file (const std::string &path)
{
    gchar *text = nullptr;
    gsize len = 0;
    if (!g_file_get_contents (path.c_str (), &text, &len, nullptr)) {
        return {};
    }
    std::string s (text, len);
    g_free (text);
    return s;
}

/* A store in a fresh directory with one writable calendar. */
struct StoreFixture {
    tav::test::TempDir dir;
    std::unique_ptr<Store> store;
    int64_t calendar = 0;

    StoreFixture ()
    {
        Status st;
        store = Store::open (dir.file ("calendar.db"), &st);
        EXPECT_TRUE (store) << st.message;
        CalendarRecord c;
        c.title = "Personal";
        EXPECT_TRUE (store->add_calendar (c).ok ());
        calendar = c.id;
    }

    void reopen ()
    {
        store.reset ();
        Status st;
        store = Store::open (dir.file ("calendar.db"), &st);
        ASSERT_TRUE (store) << st.message;
    }

    EntryRecord event (const std::string &title, int64_t start, int64_t end, const std::string &rrule = {})
    {
        EntryRecord e;
        e.calendar_id = calendar;
        e.title = title;
        e.start = start;
        e.end = end;
        e.rrule = rrule;
        if (!rrule.empty ()) {
            e.repeat_code = TavCalendarRepeatsComplex;
        }
        return e;
    }
};

inline int64_t at (int y, int m, int d, int h = 0, int min = 0)
{
    return civil_minutes (y, m, d, h, min);
}

}  // namespace tav::host::test

#endif
