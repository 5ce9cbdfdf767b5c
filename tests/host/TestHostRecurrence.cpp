/* Recurrence expansion: libical's own recurrence suite, the fast seek
 * against plain stepping, zones, exceptions and the repeat-code mapping. */
#include "HostIcs.h"
#include "HostRecurrence.h"
#include "HostTestUtil.h"

#include <random>

using namespace tav::host;
using namespace tav::host::test;

TEST (HostRecurrence, EveryRuleOfTheRecurrenceSuiteExpandsToItsExpectedCount)
{
    StoreFixture f;
    ImportResult r = import_ics_file (*f.store, f.calendar, fixture_path ("recur.txt"));
    ASSERT_TRUE (r.status.ok ()) << r.status.message;
    EXPECT_EQ (r.counts.unchanged, 3);
    const std::string key = "X-EXPECT-NUMEVENTS:";
    int checked = 0;
    for (const EntryRecord &e : f.store->entries_of_calendar (f.calendar)) {
        const size_t pos = e.extra.find (key);
        ASSERT_NE (pos, std::string::npos) << "X-EXPECT-NUMEVENTS was not kept for " << e.description;
        const auto instances = expand_instances (e, INT64_MIN, kUnbounded);
        EXPECT_EQ (static_cast<int> (instances.size ()), atoi (e.extra.c_str () + pos + key.size ()))
            << e.description << " / " << e.rrule;
        ++checked;
    }
    EXPECT_EQ (checked, 54) << "57 rules, 3 of them the very same component twice";
}

namespace {

/* The fast expansion of @e over [from, to] against stepping from the first
 * occurrence; true when the window holds instances. */
bool expect_same_instances (const EntryRecord &e, int64_t from, int64_t to)
{
    const auto slow = expand_instances_stepping (e, from, to);
    EXPECT_EQ (expand_instances (e, from, to), slow)
        << e.rrule << " zone '" << e.tzid << "' start " << civil_to_string (e.start) << " window "
        << civil_to_string (from) << " .. " << civil_to_string (to);
    return !slow.empty ();
}

}  // namespace

TEST (HostRecurrence, SeekingToTheWindowGivesWhatSteppingGives)
{
    /* Random rules and windows: the fast path (seek the iterator to the
     * window) must return exactly the stepping result. */
    const char *freqs[] = {"DAILY", "WEEKLY", "MONTHLY", "YEARLY"};
    const char *extras[] = {"", ";BYDAY=MO,WE,FR", ";BYMONTHDAY=1,15,-1", ";BYDAY=-1SU", ";BYMONTH=2,8",
                            ";BYSETPOS=2;BYDAY=TU,TH", ";UNTIL=20300101T000000"};
    const char *zones[] = {"", "America/Los_Angeles", "Europe/Berlin"};
    std::mt19937 rng (20240517);
    auto pick = [&rng] (int n) { return static_cast<int> (rng () % n); };
    int non_empty = 0;
    for (int i = 0; i < 250; ++i) {
        EntryRecord e;
        e.start = at (2000 + pick (30), 1 + pick (12), 1 + pick (28), pick (24), 15 * pick (4));
        e.end = e.start + pick (4000);
        const std::string freq = freqs[pick (4)];
        e.rrule = "FREQ=" + freq + ";INTERVAL=" + std::to_string (1 + pick (3));
        const std::string extra = extras[pick (7)];
        if (extra.find ("BYSETPOS") == std::string::npos || freq == "MONTHLY")
            e.rrule += extra;
        e.tzid = zones[pick (3)];
        if (pick (3) == 0)
            e.exdates.push_back (e.start + 7 * kMinutesPerDay);
        const int64_t from = e.start + int64_t (pick (20 * 365)) * kMinutesPerDay - int64_t (pick (60)) * kMinutesPerDay;
        non_empty += expect_same_instances (e, from, from + int64_t (1 + pick (45)) * kMinutesPerDay);
    }
    EXPECT_GT (non_empty, 80) << "the windows should mostly hold instances";
}

TEST (HostRecurrence, CountedOutSimpleRulesMatchLibical)
{
    /* Daily, weekly (with weekday sets and week starts), monthly and yearly
     * rules with INTERVAL, COUNT and UNTIL are counted out without libical;
     * every window, and the whole of a bounded rule, must give what
     * libical's own iteration gives. */
    const char *freqs[] = {"DAILY", "WEEKLY", "MONTHLY", "YEARLY"};
    const char *days[] = {"MO", "TU", "WE", "TH", "FR", "SA", "SU"};
    std::mt19937 rng (77);
    auto pick = [&rng] (int n) { return static_cast<int> (rng () % n); };
    int compared = 0, with_instances = 0;
    for (int i = 0; i < 1500; ++i) {
        EntryRecord e;
        const int day = pick (5) == 0 ? 28 + pick (4) : 1 + pick (28);
        const int month = 1 + pick (12);
        const int year = 1995 + pick (40);
        if (day > 28 && day > civil_fields (civil_minutes (year, month % 12 + 1, 1) - 1).day)
            continue;
        e.start = at (year, month, day, pick (24), 5 * pick (12));
        e.end = e.start + pick (3000);
        const std::string freq = freqs[pick (4)];
        e.rrule = "FREQ=" + freq;
        const int interval = pick (2) ? 1 + pick (4) : 1;
        if (interval > 1)
            e.rrule += ";INTERVAL=" + std::to_string (interval);
        if (freq == "WEEKLY" && pick (2)) {
            std::string list = days[(civil_weekday (e.start) + 6) % 7];
            for (const char *d : days) {
                if (pick (3) == 0 && list.find (d) == std::string::npos)
                    list += std::string (",") + d;
            }
            /* libical 3.0 skips weeks wrongly when they do not start on
             * Monday; those rules are checked against the reference only. */
            e.rrule += ";BYDAY=" + list + (pick (2) && interval == 1 ? std::string (";WKST=") + days[pick (7)] : "");
        }
        const int bound = pick (3);
        if (bound == 0) {
            e.rrule += ";COUNT=" + std::to_string (1 + pick (60));
        } else if (bound == 1) {
            const CivilFields u = civil_fields (e.start + int64_t (pick (3 * 365)) * kMinutesPerDay + pick (1440));
            char buf[32];
            snprintf (buf, sizeof buf, ";UNTIL=%04d%02d%02dT%02d%02d00", u.year, u.month, u.day, u.hour, u.minute);
            e.rrule += buf;
        }
        const int64_t from = e.start - 40 * kMinutesPerDay + int64_t (pick (4 * 365)) * kMinutesPerDay;
        with_instances += expect_same_instances (e, from, from + int64_t (1 + pick (60)) * kMinutesPerDay);
        if (bound < 2) {
            const auto all = expand_instances_stepping (e, INT64_MIN, kUnbounded);
            ASSERT_EQ (expand_instances (e, INT64_MIN, kUnbounded), all) << e.rrule;
            ASSERT_EQ (last_instance_end (e), all.back () + e.duration ()) << e.rrule;
        }
        ASSERT_FALSE (HasFailure ());
        ++compared;
    }
    EXPECT_GT (compared, 1400);
    EXPECT_GT (with_instances, 500);
}

TEST (HostRecurrence, ExceptionsAndExtraDates)
{
    EntryRecord e;
    e.start = at (2024, 5, 6, 9);
    e.end = e.start + 30;
    e.rrule = "FREQ=DAILY;COUNT=5";
    e.exdates = {at (2024, 5, 7, 9)};
    e.rdates = {at (2024, 5, 20, 14)};
    std::string got;
    for (int64_t s : expand_instances (e, INT64_MIN, kUnbounded))
        got += civil_to_string (s) + ";";
    EXPECT_EQ (got, "2024-05-06 09:00;2024-05-08 09:00;2024-05-09 09:00;2024-05-10 09:00;2024-05-20 14:00;");

    /* A window catches an instance that started before it and is still on. */
    e.end = e.start + 2 * kMinutesPerDay;
    EXPECT_EQ (expand_instances (e, at (2024, 5, 11), at (2024, 5, 11, 23, 59)).size (), 2u);
    EXPECT_EQ (last_instance_end (e), at (2024, 5, 22, 14));
}

TEST (HostRecurrence, RulesLibicalGetsWrongAreCountedOut)
{
    auto days = [] (const EntryRecord &e) {
        std::string got;
        for (int64_t s : expand_instances (e, INT64_MIN, kUnbounded))
            got += civil_to_string (s).substr (5, 5) + " ";
        return got;
    };
    struct Row { const char *rrule; int64_t start; bool all_day; const char *expected; } rows[] = {
        /* Weeks begin on Friday: the first week holds Thursday the 11th only. */
        {"FREQ=WEEKLY;INTERVAL=2;BYDAY=TH,SU;WKST=FR;COUNT=6", at (2024, 1, 11, 9), false,
         "01-11 01-21 01-25 02-04 02-08 02-18 "},
        {"FREQ=WEEKLY;INTERVAL=2;BYDAY=TH,SU;WKST=MO;COUNT=6", at (2024, 1, 11, 9), false,
         "01-11 01-14 01-25 01-28 02-08 02-11 "},
        /* An all-day series keeps the day its UNTIL date names. */
        {"FREQ=DAILY;UNTIL=20240305", at (2024, 3, 1), true, "03-01 03-02 03-03 03-04 03-05 "},
        {"FREQ=WEEKLY;BYDAY=FR,MO;UNTIL=20240311", at (2024, 3, 1), true, "03-01 03-04 03-08 03-11 "},
    };
    for (const Row &row : rows) {
        EntryRecord e;
        e.start = row.start;
        e.all_day = row.all_day;
        e.end = e.start + (row.all_day ? 1439 : 60);
        e.rrule = row.rrule;
        EXPECT_EQ (days (e), row.expected) << row.rrule;
    }
    /* The instance an exception of the series replaces is left out. */
    EntryRecord e;
    e.start = at (2024, 3, 1, 9);
    e.end = e.start + 60;
    e.rrule = "FREQ=DAILY;COUNT=3";
    e.overridden = {at (2024, 3, 2, 9)};
    EXPECT_EQ (days (e), "03-01 03-03 ");
}

TEST (HostRecurrence, SimpleRepeatCodesMapToRulesAndBack)
{
    const int64_t monday = at (2024, 5, 6, 9);  /* a Monday */
    struct Row { const char *rrule; TavCalendarRepeatCode code; int64_t until; } rows[] = {
        {"", TavCalendarRepeatsNoRepeat, -1}, {"FREQ=DAILY", TavCalendarRepeatsEveryDay, -1},
        {"FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR", TavCalendarRepeatsEveryWorkday, -1},
        {"FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", TavCalendarRepeatsEveryWorkday, -1},
        {"FREQ=WEEKLY", TavCalendarRepeatsEveryWeek, -1}, {"FREQ=WEEKLY;BYDAY=MO", TavCalendarRepeatsEveryWeek, -1},
        {"FREQ=MONTHLY;UNTIL=20241231T235959", TavCalendarRepeatsEveryMonth, at (2024, 12, 31)},
        {"FREQ=YEARLY;BYMONTH=5;BYMONTHDAY=6", TavCalendarRepeatsEveryYear, -1},
        {"FREQ=WEEKLY;BYDAY=TU", TavCalendarRepeatsComplex, -1},
        {"FREQ=DAILY;INTERVAL=2", TavCalendarRepeatsComplex, -1}, {"FREQ=DAILY;COUNT=3", TavCalendarRepeatsComplex, -1},
        {"FREQ=MONTHLY;BYDAY=1MO", TavCalendarRepeatsComplex, -1}, {"FREQ=HOURLY", TavCalendarRepeatsComplex, -1},
        {"not a rule", TavCalendarRepeatsComplex, -1},
    };
    for (const Row &row : rows) {
        int64_t until = 0;
        EXPECT_EQ (repeat_code_for_rrule (row.rrule, monday, &until), row.code) << row.rrule;
        EXPECT_EQ (until, row.until) << row.rrule;
    }
    for (int code = TavCalendarRepeatsEveryDay; code <= TavCalendarRepeatsEveryYear; ++code) {
        for (int64_t until : {int64_t (-1), at (2025, 2, 3)}) {
            const std::string rule = rrule_for_repeat_code (static_cast<TavCalendarRepeatCode> (code), until);
            int64_t back = 0;
            EXPECT_EQ (repeat_code_for_rrule (rule, monday, &back), code) << rule;
            EXPECT_EQ (back, until) << rule;
        }
    }
    EXPECT_EQ (rrule_for_repeat_code (TavCalendarRepeatsComplex, -1), "");
}
