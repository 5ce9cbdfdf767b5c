/* The host's import run a slice at a time: the same result as in one go,
 * and a cancelled or failed import leaves the store exactly as it was. */
#include "HostImport.h"
#include "ImportTestSupport.h"

using namespace tav::host;
using namespace tav::host::test;
using tav::test::TempDir;

namespace {

/* Runs @import with a deadline already passed: one step per call, the
 * finest slicing there is. Returns the number of calls. */
int run_in_steps (IcsImport &import)
{
    int calls = 1;
    while (import.run (g_get_monotonic_time ())) {
        ++calls;
    }
    return calls;
}

std::string outcome (const ImportResult &r)
{
    std::string out = std::to_string (r.status.code) + " " + r.status.message + " line " + std::to_string (r.line) +
                      "\n" + r.report ();
    for (const std::string &w : r.warnings) {
        out += "warning " + w + "\n";
    }
    return out;
}

}  // namespace

TEST (ImportSlices, SlicedImportsEqualTheOneGoImport)
{
    TempDir dir;
    std::vector<std::pair<std::string, std::string>> files;
    for (const char *name : {"calendar.ics", "itip.ics", "overlaps.ics", "2445.ics", "spanlist.ics"}) {
        files.push_back ({name, read_file (fixture_path (name))});
        ASSERT_FALSE (files.back ().second.empty ()) << name;
    }
    files.push_back ({"sample", sample_calendar_text (1500, true)});
    /* Lines folded across slices, a file without a final line break. */
    files.push_back ({"folded", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:f\r\nDTSTART:20260301T100000Z\r\n"
                                "SUMMARY:A title fo\r\n lded twice ov\r\n\ter lines\r\nEND:VEVENT\r\nEND:VCALENDAR"});
    for (const auto &[name, text] : files) {
        auto whole = open_store (dir.file (name + "-whole.db"));
        auto sliced = open_store (dir.file (name + "-sliced.db"));
        const ImportResult expected = import_ics_text (*whole, 1, text);
        IcsImport import (*sliced, 1);
        import.start_text (text);
        const int calls = run_in_steps (import);
        EXPECT_GT (calls, 3) << name << ": the import was not sliced";
        EXPECT_EQ (outcome (import.result ()), outcome (expected)) << name;
        EXPECT_EQ (dump (*sliced), dump (*whole)) << name;
        EXPECT_EQ (import.done (), import.total ()) << name;
    }
}

TEST (ImportSlices, CancellingHalfWayLeavesTheStoreExactlyAsItWas)
{
    TempDir dir;
    const std::string big = sample_calendar_text (10000, false);
    for (const bool new_calendar : {false, true}) {
        auto store = open_store (dir.file (new_calendar ? "new.db" : "old.db"));
        ASSERT_TRUE (import_ics_text (*store, 1, read_file (fixture_path ("calendar.ics"))).stored ());
        ASSERT_TRUE (import_ics_text (*store, 1, sample_calendar_text (30, false)).stored ()) << "entries the import would update";
        const std::string before = dump (*store);

        IcsImport import (*store, 1);
        CalendarRecord added = calendar_named ("Imported");
        if (new_calendar) {
            ASSERT_TRUE (import.create_calendar (added).ok ());
        }
        import.start_text (big);
        while (import.done () < 5000) {
            ASSERT_TRUE (import.run (g_get_monotonic_time () + 2000));
        }
        EXPECT_GE (store->count_entries (import.calendar_id ()), 4900) << "the slices write as they go";
        import.cancel ();
        EXPECT_EQ (import.stage (), IcsImport::Stage::Cancelled);
        EXPECT_FALSE (import.run (-1));
        EXPECT_FALSE (import.result ().stored ());
        EXPECT_EQ (dump (*store), before) << (new_calendar ? "into a new calendar" : "into Personal");

        /* The store goes on working after the rollback. */
        const int64_t count = store->count_entries (1);
        const ImportResult again = import_ics_text (*store, 1, sample_calendar_text (40, false));
        EXPECT_EQ (again.counts.added, 10);
        EXPECT_EQ (store->count_entries (1), count + 10);
    }
    /* Ending the object before the end is a cancel too. */
    auto store = open_store (dir.file ("dropped.db"));
    const std::string before = dump (*store);
    {
        IcsImport import (*store, 1);
        import.start_text (big);
        /* Slices until some of it is written (however long reading takes). */
        while (import.done () == 0 && import.run (g_get_monotonic_time () + 1000)) {
        }
        ASSERT_GT (import.done (), 0u);
        ASSERT_LT (import.done (), 10000u);
    }
    EXPECT_EQ (dump (*store), before);
}

TEST (ImportSlices, BadFilesStoreNothingAndSayWhy)
{
    TempDir dir;
    auto store = open_store (dir.file ("s.db"));
    ASSERT_TRUE (import_ics_text (*store, 1, sample_calendar_text (5, false)).stored ());
    const std::string before = dump (*store);
    write_text (dir.file ("letter.ics"), "Dear Ana,\nsee you on Monday.\n");
    write_text (dir.file ("latin1.ics"), "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:Caf\xe9\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    write_text (dir.file ("open.ics"), "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:x\r\n");
    g_mkdir (dir.file ("folder.ics").c_str (), 0700);
    const std::pair<const char *, const char *> cases[] = {
        {"letter.ics", "holds no events, tasks or notes"},
        {"latin1.ics", "line 3: the text is not valid UTF-8"},
        {"open.ics", "is never closed"},
        {"folder.ics", "is not a regular file"},
        {"missing.ics", "cannot read"},
    };
    for (const auto &[name, why] : cases) {
        IcsImport import (*store, 1);
        import.start_file (dir.file (name));
        run_in_steps (import);
        EXPECT_EQ (import.stage (), IcsImport::Stage::Failed) << name;
        EXPECT_EQ (import.result ().status.code, CalendarInvalidIcsFile) << name;
        EXPECT_NE (import.result ().status.message.find (why), std::string::npos) << name << ": " << import.result ().status.message;
        const std::string said = import_failure (import.result (), name);
        EXPECT_NE (said.find ("nothing was imported"), std::string::npos) << said;
        EXPECT_EQ (dump (*store), before) << name;
    }
    /* The text is checked a megabyte at a time: a bad byte far into a big
     * file is found on its own line, and the characters around the slices'
     * seams are whole. */
    std::string big = sample_calendar_text (15000, false);
    for (size_t at = big.find ("Dentist"); at != std::string::npos; at = big.find ("Dentist", at + 1)) {
        big.replace (at, 7, "Zahnärzt");
    }
    const size_t bad = big.find ("Yoga", big.size () * 3 / 4);
    big[bad + 1] = '\xff';
    const int bad_line = 1 + static_cast<int> (std::count (big.begin (), big.begin () + bad, '\n'));
    ASSERT_GT (big.size (), size_t (2) << 20);
    IcsImport import (*store, 1);
    import.start_text (big);
    run_in_steps (import);
    EXPECT_EQ (import.result ().line, bad_line);
    EXPECT_EQ (import.result ().status.message, "line " + std::to_string (bad_line) + ": the text is not valid UTF-8");
    EXPECT_EQ (dump (*store), before);
    big[bad + 1] = 'o';
    EXPECT_TRUE (import_ics_text (*store, 1, big).stored ()) << "every seam between slices falls between characters";

    /* A new calendar whose name is taken is refused before anything is read. */
    IcsImport named (*store, 1);
    CalendarRecord same = calendar_named ("Personal");
    EXPECT_EQ (named.create_calendar (same).code, CalendarAlreadyExists);
}
