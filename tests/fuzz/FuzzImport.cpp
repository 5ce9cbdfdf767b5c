/* The host's iCalendar import on arbitrary text, into a store in memory;
 * what it stored is exported and imported into a second store, and both
 * list the same instances. Every date the listing prints reads back as the
 * day it names. */
#include "FuzzSupport.h"

#include "HostAgenda.h"
#include "HostCivilTime.h"
#include "HostIcs.h"
#include "HostStore.h"

#include <sstream>

using namespace tav::host;

namespace {

std::unique_ptr<Store> fresh_store (int64_t *calendar)
{
    Status st;
    std::unique_ptr<Store> store = Store::open (":memory:", &st);
    FUZZ_CHECK (store, "no store: %s", st.message.c_str ());
    CalendarRecord cal;
    cal.title = "fuzz";
    st = store->add_calendar (cal);
    FUZZ_CHECK (st.ok (), "no calendar: %s", st.message.c_str ());
    *calendar = cal.id;
    return store;
}

/* Each line starts with two dates (or date and time) separated by a tab. */
void check_dates_read_back (const std::string &listing)
{
    std::istringstream lines (listing);
    std::string line;
    while (std::getline (lines, line)) {
        for (size_t at : { (size_t) 0, line.find ('\t') + 1 }) {
            const std::string day = line.substr (at, 10);
            int64_t civil = 0;
            std::string error;
            FUZZ_CHECK (parse_agenda_day (day, &civil, &error), "listed '%s': %s", line.c_str (), error.c_str ());
            FUZZ_CHECK (civil_to_string (civil).substr (0, 10) == day, "'%s' reads back as %s", day.c_str (),
                        civil_to_string (civil).c_str ());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size)
{
    tav::fuzz::quiet_logs ();
    if (size > 64 * 1024)
        return 0;
    int64_t cal_a = 0, cal_b = 0;
    std::unique_ptr<Store> a = fresh_store (&cal_a);
    const ImportResult first = import_ics_text (*a, cal_a, std::string ((const char *) data, size));
    /* A file of which nothing was kept exports as an empty calendar,
     * which an import refuses in words: nothing to compare. */
    if (!first.stored () || first.total () == 0)
        return 0;
    const int64_t from = civil_minutes (2020, 1, 1), to = civil_minutes (2025, 12, 31);
    const std::string before = agenda_text (*a, from, to);
    check_dates_read_back (before);

    const std::string exported = export_ics_text (*a, { cal_a });
    std::unique_ptr<Store> b = fresh_store (&cal_b);
    const ImportResult again = import_ics_text (*b, cal_b, exported);
    FUZZ_CHECK (again.status.ok (), "own export refused: %s (line %d)\n%s", again.status.message.c_str (), again.line,
                exported.c_str ());
    const std::string after = agenda_text (*b, from, to);
    FUZZ_CHECK (before == after, "instances differ after the round trip\nbefore:\n%s\nafter:\n%s\nexport:\n%s",
                before.c_str (), after.c_str (), exported.c_str ());
    return 0;
}
