/* The SQLite calendar store: CRUD with error codes, interval queries,
 * persistence, migrations, refusing foreign files, a full disk. */
#include "HostIcs.h"
#include "HostRecurrence.h"
#include "HostTestUtil.h"

#include <sqlite3.h>

#include <functional>

using namespace tav::host;
using namespace tav::host::test;

namespace {

std::string titles (const std::vector<EntryRecord> &entries)
{
    std::vector<std::string> t;
    for (const auto &e : entries)
        t.push_back (e.title);
    return joined (t);
}

}  // namespace

TEST (HostStore, CalendarTitlesAreUnique)
{
    StoreFixture f;
    CalendarRecord again = calendar_named ("Personal");
    EXPECT_EQ (f.store->add_calendar (again).code, CalendarAlreadyExists);
    CalendarRecord work = f.add_calendar (calendar_named ("Work", true, TavCalendarColorOrange));
    work.title = "Personal";
    EXPECT_EQ (f.store->update_calendar (work).code, CalendarAlreadyExists);
    ASSERT_EQ (f.store->calendars ().size (), 2u);
    EXPECT_EQ (f.store->calendars ()[1].title, "Work");
    EXPECT_EQ (f.store->calendars ()[1].color, TavCalendarColorOrange);
}

TEST (HostStore, BadEntriesAreRefusedWithTheirCode)
{
    StoreFixture f;
    const int64_t day = at (2024, 5, 6, 10);
    const int64_t other = f.add_calendar (calendar_named ("Other")).id;
    EntryRecord taken = f.event ("Taken", day, day + 60);
    taken.uid = "same@example.com";
    ASSERT_TRUE (f.store->add_entry (taken).ok ());
    struct Row { const char *label; std::function<void (EntryRecord &)> spoil; CalendarUiErrorCode code; } rows[] = {
        {"ends before it starts", [] (EntryRecord &e) { e.end = e.start - 1; }, CalendarInvalidArg},
        {"no such calendar", [] (EntryRecord &e) { e.calendar_id = 999; }, CalendarInvalidArg},
        {"invalid UTF-8 title", [] (EntryRecord &e) { e.title = "A\xff" "B"; }, CalendarInvalidArg},
        {"rrule libical rejects", [] (EntryRecord &e) { e.rrule = "FREQ=SOMETIMES"; }, CalendarInvalidArg},
        {"rrule with bad BYDAY", [] (EntryRecord &e) { e.rrule = "FREQ=WEEKLY;BYDAY=XX"; }, CalendarInvalidArg},
        {"alarm code out of range", [] (EntryRecord &e) { e.alarm_code = 9; }, CalendarInvalidArg},
        {"repeat code out of range", [] (EntryRecord &e) { e.repeat_code = -1; }, CalendarInvalidArg},
        {"UID already in the calendar", [] (EntryRecord &e) { e.uid = "same@example.com"; }, CalendarDuplicateError},
        {"the same UID in another calendar", [&] (EntryRecord &e) { e.uid = "same@example.com"; e.calendar_id = other; },
         CalendarNoError},
        {"fine", [] (EntryRecord &) {}, CalendarNoError},
    };
    for (const Row &row : rows) {
        EntryRecord e = f.event ("Lunch", day, day + 60);
        row.spoil (e);
        Status s = f.store->add_entry (e);
        EXPECT_EQ (s.code, row.code) << row.label << ": " << s.message;
        EXPECT_EQ (s.message.empty (), row.code == CalendarNoError) << row.label;
    }
    EXPECT_EQ (f.store->count_entries (f.calendar), 2);
    EXPECT_EQ (f.store->count_entries (other), 1);
}

TEST (HostStore, ReadOnlyCalendarRefusesEveryWrite)
{
    StoreFixture f;
    EntryRecord e = f.event ("Kept", at (2024, 2, 2, 9), at (2024, 2, 2, 10));
    ASSERT_TRUE (f.store->add_entry (e).ok ());
    CalendarRecord c;
    ASSERT_TRUE (f.store->find_calendar (f.calendar, &c));
    c.read_only = true;
    ASSERT_TRUE (f.store->update_calendar (c).ok ());

    EntryRecord fresh = f.event ("New", at (2024, 2, 3, 9), at (2024, 2, 3, 10));
    EXPECT_EQ (f.store->add_entry (fresh).code, CalendarInvalidArg);
    EntryRecord changed = e;
    changed.title = "Changed";
    EXPECT_EQ (f.store->update_entry (changed).code, CalendarInvalidArg);
    EXPECT_EQ (f.store->delete_entry (e.id).code, CalendarInvalidArg);
    EXPECT_EQ (f.store->clear_calendar (f.calendar).code, CalendarInvalidArg);
    ImportResult r = import_ics_file (*f.store, f.calendar, fixture_path ("overlaps.ics"));
    EXPECT_EQ (r.status.code, CalendarInvalidArg) << r.status.message;

    EntryRecord back;
    ASSERT_TRUE (f.store->find_entry (e.id, &back));
    EXPECT_EQ (back.title, "Kept");
    EXPECT_EQ (f.store->count_entries (f.calendar), 1);
}

TEST (HostStore, EverythingSurvivesAReopen)
{
    StoreFixture f;
    EntryRecord e = f.event ("Dentist", at (2025, 3, 4, 8, 15), at (2025, 3, 4, 9), "FREQ=MONTHLY;COUNT=4");
    e.description = "Bring the card\nand the form";
    e.location = "Höhenweg 3";
    e.alarm_code = TavCalendarAlarmDayBefore;
    e.alarm_time = 18 * 60;
    e.exdates = {at (2025, 4, 4, 8, 15)};
    e.tzid = "Europe/Helsinki";
    e.extra = "X-FOO;A=1:bar\n";
    e.has_birthday = true;
    e.birth_year = 1980;
    ASSERT_TRUE (f.store->add_entry (e).ok ());
    EntryRecord t = f.event ("Taxes", at (2025, 4, 30), at (2025, 4, 30, 23, 59));
    t.kind = EntryKind::Task;
    t.done = true;
    ASSERT_TRUE (f.store->add_entry (t).ok ());

    f.reopen ();
    EXPECT_EQ (f.store->schema_version (), Store::kSchemaVersion);
    EXPECT_EQ (f.store->journal_mode (), "wal");
    EntryRecord back;
    ASSERT_TRUE (f.store->find_entry (e.id, &back));
    EXPECT_EQ (describe (back), describe (e));
    const auto tasks = f.store->entries_of_kind (EntryKind::Task);
    ASSERT_EQ (tasks.size (), 1u);
    EXPECT_EQ (describe (tasks[0]), describe (t));
}

TEST (HostStore, IntervalQueryFindsWhatTouchesTheWindow)
{
    StoreFixture f;
    const int64_t hidden = f.add_calendar (calendar_named ("Hidden", false)).id;
    struct Ev { const char *title; int64_t start, end; const char *rrule; bool hidden; } events[] = {
        {"before", at (2024, 4, 30, 9), at (2024, 4, 30, 10), "", false},
        {"inside", at (2024, 5, 10, 9), at (2024, 5, 10, 10), "", false},
        {"spans-in", at (2024, 4, 28, 9), at (2024, 5, 2, 10), "", false},
        {"after", at (2024, 6, 1, 0), at (2024, 6, 1, 1), "", false},
        {"weekly-since-2010", at (2010, 1, 4, 8), at (2010, 1, 4, 9), "FREQ=WEEKLY", false},
        {"daily-ended-2020", at (2019, 1, 1, 8), at (2019, 1, 1, 9), "FREQ=DAILY;UNTIL=20200101T000000", false},
        {"count-reaching-may", at (2024, 4, 25, 8), at (2024, 4, 25, 9), "FREQ=DAILY;COUNT=10", false},
        {"hidden-inside", at (2024, 5, 10, 9), at (2024, 5, 10, 10), "", true},
        {"year-1901", at (1901, 5, 10, 9), at (1901, 5, 10, 10), "", false},
        {"year-2100", at (2100, 5, 10, 9), at (2100, 5, 10, 10), "", false},
    };
    for (const Ev &ev : events) {
        EntryRecord e = f.event (ev.title, ev.start, ev.end, ev.rrule);
        e.calendar_id = ev.hidden ? hidden : f.calendar;
        ASSERT_TRUE (f.store->add_entry (e).ok ()) << ev.title;
    }
    struct Row { const char *label; int64_t from, to; bool visible_only; const char *expected; } rows[] = {
        {"May 2024", at (2024, 5, 1), at (2024, 5, 31, 23, 59), true,
         "count-reaching-may,inside,spans-in,weekly-since-2010"},
        {"May 2024, all calendars", at (2024, 5, 1), at (2024, 5, 31, 23, 59), false,
         "count-reaching-may,hidden-inside,inside,spans-in,weekly-since-2010"},
        {"a Saturday of 2019", at (2019, 6, 1), at (2019, 6, 1, 23, 59), true, "daily-ended-2020"},
        {"outside the UI range, 1901", at (1901, 5, 1), at (1901, 5, 31), true, "year-1901"},
        {"outside the UI range, 2100", at (2100, 5, 1), at (2100, 5, 31), true, "weekly-since-2010,year-2100"},
        {"2009", at (2009, 1, 1), at (2009, 12, 31), true, ""},
    };
    for (const Row &row : rows)
        EXPECT_EQ (titles (f.store->entries_touching (row.from, row.to, row.visible_only)), row.expected) << row.label;
}

TEST (HostStore, DeletingOrMovingAnEntryUpdatesTheIndex)
{
    StoreFixture f;
    EntryRecord a = f.event ("a", at (2024, 5, 1, 9), at (2024, 5, 1, 10));
    EntryRecord b = f.event ("b", at (2024, 5, 2, 9), at (2024, 5, 2, 10));
    ASSERT_TRUE (f.store->add_entry (a).ok () && f.store->add_entry (b).ok ());
    ASSERT_TRUE (f.store->delete_entry (a.id).ok ());
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 3))), "b");
    EXPECT_EQ (f.store->delete_entry (a.id).code, CalendarInvalidArg);

    b.start = at (2024, 7, 1, 9);
    b.end = at (2024, 7, 1, 10);
    ASSERT_TRUE (f.store->update_entry (b).ok ());
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 3))), "");
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 7, 1), at (2024, 7, 1, 23))), "b");

    ASSERT_TRUE (f.store->remove_calendar (f.calendar).ok ());
    EXPECT_EQ (f.store->entries_touching (at (2024, 1, 1), at (2025, 1, 1), false).size (), 0u);
    EXPECT_EQ (f.store->count_entries (f.calendar), 0);
}

TEST (HostStore, ASeriesKeepsItsExceptions)
{
    StoreFixture f;
    EntryRecord series = f.event ("weekly", at (2024, 5, 6, 9), at (2024, 5, 6, 10), "FREQ=WEEKLY;COUNT=3");
    series.uid = "s";
    EntryRecord moved = f.event ("moved", at (2024, 5, 14, 15), at (2024, 5, 14, 16));
    moved.uid = "s";
    moved.recurrence_id = at (2024, 5, 13, 9);
    ASSERT_TRUE (f.store->add_entry (series).ok ());
    ASSERT_TRUE (f.store->add_entry (moved).ok ());
    EntryRecord twice = moved;
    EXPECT_EQ (f.store->add_entry (twice).code, CalendarDuplicateError);
    auto listed = [&] {
        std::string out;
        for (const EntryRecord &e : f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 31))) {
            for (int64_t s : expand_instances (e, at (2024, 5, 1), at (2024, 5, 31)))
                out += e.title + " " + civil_to_string (s).substr (5) + "; ";
        }
        return out;
    };
    EXPECT_EQ (listed (), "weekly 05-06 09:00; weekly 05-20 09:00; moved 05-14 15:00; ");
    /* The moved instance deleted stays away; the series deleted takes it along. */
    ASSERT_TRUE (f.store->delete_entry (moved.id).ok ());
    EXPECT_EQ (listed (), "weekly 05-06 09:00; weekly 05-20 09:00; ");
    ASSERT_TRUE (f.store->delete_entry (series.id).ok ());
    EXPECT_EQ (f.store->count_entries (f.calendar), 0);
}

TEST (HostStore, OlderFilesAreMigratedWithTheirData)
{
    tav::test::TempDir dir;
    const std::string path = dir.file ("old.db");
    sqlite3 *db = nullptr;
    ASSERT_EQ (sqlite3_open (path.c_str (), &db), SQLITE_OK);
    const std::string sql =
        "CREATE TABLE calendars (id INTEGER PRIMARY KEY, title TEXT NOT NULL UNIQUE, color INTEGER NOT NULL DEFAULT 0,"
        " type INTEGER NOT NULL DEFAULT 0, sync_type INTEGER NOT NULL DEFAULT 0, visible INTEGER NOT NULL DEFAULT 1,"
        " read_only INTEGER NOT NULL DEFAULT 0, alarm_tone TEXT);"
        "CREATE TABLE entries (id INTEGER PRIMARY KEY, calendar_id INTEGER NOT NULL REFERENCES calendars(id) ON DELETE"
        " CASCADE, kind INTEGER NOT NULL, uid TEXT NOT NULL, title TEXT, description TEXT, location TEXT, start INTEGER"
        " NOT NULL, end INTEGER NOT NULL, all_day INTEGER NOT NULL DEFAULT 0, alarm_code INTEGER NOT NULL DEFAULT 0,"
        " alarm_time INTEGER NOT NULL DEFAULT -1, repeat_code INTEGER NOT NULL DEFAULT 0, rrule TEXT, exdates TEXT,"
        " done INTEGER NOT NULL DEFAULT 0, has_birthday INTEGER NOT NULL DEFAULT 0, birth_year INTEGER NOT NULL DEFAULT"
        " -1, created INTEGER NOT NULL DEFAULT 0, modified INTEGER NOT NULL DEFAULT 0, UNIQUE (calendar_id, uid));"
        "CREATE INDEX entries_start ON entries (start);"
        "INSERT INTO calendars (id, title) VALUES (1, 'Old');"
        "INSERT INTO entries (calendar_id, kind, uid, title, start, end, rrule) VALUES (1, 0, 'u1', 'yearly', " +
        std::to_string (at (2001, 3, 3, 10)) + ", " + std::to_string (at (2001, 3, 3, 11)) + ", 'FREQ=YEARLY'), " +
        "(1, 0, 'u2', 'once', " + std::to_string (at (2024, 3, 3, 10)) + ", " + std::to_string (at (2024, 3, 3, 11)) +
        ", NULL); PRAGMA user_version=1;";
    ASSERT_EQ (sqlite3_exec (db, sql.c_str (), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close (db);

    Status st;
    auto store = Store::open (path, &st);
    ASSERT_TRUE (store) << st.message;
    EXPECT_EQ (store->schema_version (), Store::kSchemaVersion);
    EXPECT_EQ (titles (store->entries_touching (at (2024, 3, 1), at (2024, 3, 31))), "once,yearly");
    EXPECT_EQ (titles (store->entries_touching (at (2030, 3, 1), at (2030, 3, 31))), "yearly");

    /* Version 2 kept a zoned series in local time beside its zone: it
     * becomes an instant, still at the same local time. */
    g_setenv ("TZ", "Europe/Berlin", TRUE);
    tzset ();
    const std::string v2 = dir.file ("v2.db");
    ASSERT_EQ (sqlite3_open (v2.c_str (), &db), SQLITE_OK);
    const std::string upgrade = sql.substr (0, sql.find ("INSERT")) +
        "ALTER TABLE entries ADD COLUMN exrule TEXT; ALTER TABLE entries ADD COLUMN rdates TEXT;"
        "ALTER TABLE entries ADD COLUMN tzid TEXT; ALTER TABLE entries ADD COLUMN extra TEXT;"
        "CREATE VIRTUAL TABLE entry_spans USING rtree_i32 (id, lo, hi); INSERT INTO calendars (id, title) VALUES (1, 'Old');"
        "INSERT INTO entries (calendar_id, kind, uid, title, start, end, rrule, tzid) VALUES (1, 0, 'z', 'zoned', " +
        std::to_string (at (2024, 1, 8, 9)) + ", " + std::to_string (at (2024, 1, 8, 10)) +
        ", 'FREQ=WEEKLY', 'Europe/Berlin'); PRAGMA user_version=2;";
    ASSERT_EQ (sqlite3_exec (db, upgrade.c_str (), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close (db);
    store = Store::open (v2, &st);
    ASSERT_TRUE (store) << st.message;
    EntryRecord zoned;
    ASSERT_TRUE (store->find_entry_by_uid (1, "z", &zoned));
    EXPECT_EQ (civil_to_string (zoned.start), "2024-01-08 08:00") << "09:00 in Berlin is 08:00 UTC";
    EXPECT_EQ (expand_instances (zoned, at (2024, 7, 1), at (2024, 7, 1, 23, 59)), std::vector<int64_t> {at (2024, 7, 1, 9)});
    g_setenv ("TZ", "UTC", TRUE);
    tzset ();
}

TEST (HostStore, FilesThatAreNotOursAreRefusedUntouched)
{
    tav::test::TempDir dir;
    const std::string text = dir.file ("text.db"), junk = dir.file ("junk.db"), other = dir.file ("other.db");
    const std::string looks_like =
        "BEGIN:VCALENDAR\nthis is not a database, it only looks like one a little\n" + std::string (5000, 'x');
    ASSERT_TRUE (g_file_set_contents (text.c_str (), looks_like.c_str (), -1, nullptr));
    ASSERT_TRUE (g_file_set_contents (junk.c_str (), std::string (8192, '\x5a').c_str (), -1, nullptr));
    sqlite3 *db = nullptr;
    sqlite3_open (other.c_str (), &db);
    sqlite3_exec (db, "CREATE TABLE songs (name TEXT); INSERT INTO songs VALUES ('x');", nullptr, nullptr, nullptr);
    sqlite3_close (db);

    for (const auto &[path, needle] : {std::pair<std::string, const char *> {text, "not a calendar database"},
                                       {junk, "not a calendar database"},
                                       {other, "another program"}}) {
        const std::string before = read_file (path);
        ASSERT_FALSE (before.empty ()) << path;
        Status st;
        EXPECT_FALSE (Store::open (path, &st)) << path;
        EXPECT_NE (st.message.find (needle), std::string::npos) << path << ": " << st.message;
        EXPECT_EQ (read_file (path), before) << path << ": the file was changed";
        EXPECT_FALSE (g_file_test ((path + "-wal").c_str (), G_FILE_TEST_EXISTS)) << path;
    }
}

TEST (HostStore, FullDiskGivesDiskFullAndLosesNothingCommitted)
{
    StoreFixture f;
    f.store->set_page_limit (24);
    int stored = 0;
    Status last;
    for (int i = 0; i < 2000 && last.ok (); ++i) {
        EntryRecord e = f.event ("event " + std::to_string (i), at (2024, 1, 1, 9) + i * 60, at (2024, 1, 1, 10) + i * 60);
        e.description = std::string (600, 'n');
        last = f.store->add_entry (e);
        stored += last.ok ();
    }
    ASSERT_EQ (last.code, CalendarDiskFullError) << last.message;
    ASSERT_GT (stored, 0);

    /* The store still answers after the failure, and a reopen (without the
     * limit) finds exactly what was committed. */
    for (bool reopened : {false, true}) {
        if (reopened)
            f.reopen ();
        EXPECT_EQ (f.store->count_entries (f.calendar), stored) << reopened;
        EXPECT_EQ (f.store->entries_touching (at (2024, 1, 1), at (2024, 12, 31)).size (), size_t (stored)) << reopened;
    }
    EntryRecord more = f.event ("after", at (2025, 1, 1, 9), at (2025, 1, 1, 10));
    EXPECT_TRUE (f.store->add_entry (more).ok ());
}
