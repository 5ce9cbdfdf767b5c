/* The SQLite calendar store: CRUD with error codes, interval queries,
 * persistence, migrations, refusing foreign files, a full disk. */
#include "HostTestUtil.h"

#include <sqlite3.h>

#include <algorithm>

using namespace tav::host;
using namespace tav::host::test;

namespace {

std::string titles (const std::vector<EntryRecord> &entries)
{
    std::vector<std::string> t;
    for (const auto &e : entries) {
        t.push_back (e.title);
    }
    std::sort (t.begin (), t.end ());
    std::string out;
    for (const auto &s : t) {
        out += (out.empty () ? "" : ",") + s;
    }
    return out;
}

}  // namespace

TEST (HostStore, NewStoreIsWalAtCurrentSchema)
{
    StoreFixture f;
    EXPECT_EQ (f.store->schema_version (), Store::kSchemaVersion);
    EXPECT_EQ (f.store->journal_mode (), "wal");
}

TEST (HostStore, CalendarTitlesAreUnique)
{
    StoreFixture f;
    CalendarRecord again;
    again.title = "Personal";
    Status s = f.store->add_calendar (again);
    EXPECT_EQ (s.code, CalendarAlreadyExists) << s.message;

    CalendarRecord work;
    work.title = "Work";
    work.color = TavCalendarColorOrange;
    ASSERT_TRUE (f.store->add_calendar (work).ok ());
    work.title = "Personal";
    EXPECT_EQ (f.store->update_calendar (work).code, CalendarAlreadyExists);
    ASSERT_EQ (f.store->calendars ().size (), 2u);
    EXPECT_EQ (f.store->calendars ()[1].color, TavCalendarColorOrange);
}

TEST (HostStore, BadEntriesAreRefusedWithTheirCode)
{
    StoreFixture f;
    const int64_t day = at (2024, 5, 6, 10);
    struct Row {
        const char *label;
        void (*spoil) (EntryRecord &);
        CalendarUiErrorCode code;
    } rows[] = {
        {"ends before it starts", [] (EntryRecord &e) { e.end = e.start - 1; }, CalendarInvalidArg},
        {"no such calendar", [] (EntryRecord &e) { e.calendar_id = 999; }, CalendarInvalidArg},
        {"invalid UTF-8 title", [] (EntryRecord &e) { e.title = "A\xff" "B"; }, CalendarInvalidArg},
        {"rrule libical rejects", [] (EntryRecord &e) { e.rrule = "FREQ=SOMETIMES"; }, CalendarInvalidArg},
        {"rrule with bad BYDAY", [] (EntryRecord &e) { e.rrule = "FREQ=WEEKLY;BYDAY=XX"; }, CalendarInvalidArg},
        {"alarm code out of range", [] (EntryRecord &e) { e.alarm_code = 9; },
         CalendarInvalidArg},
        {"repeat code out of range", [] (EntryRecord &e) { e.repeat_code = -1; }, CalendarInvalidArg},
        {"fine", [] (EntryRecord &) {}, CalendarNoError},
    };
    for (const Row &row : rows) {
        EntryRecord e = f.event ("Lunch", day, day + 60);
        row.spoil (e);
        Status s = f.store->add_entry (e);
        EXPECT_EQ (s.code, row.code) << row.label << ": " << s.message;
        if (row.code != CalendarNoError) {
            EXPECT_FALSE (s.message.empty ()) << row.label;
        }
    }
    EXPECT_EQ (f.store->count_entries (f.calendar), 1);
}

TEST (HostStore, DuplicateUidInOneCalendarIsRefused)
{
    StoreFixture f;
    EntryRecord a = f.event ("A", at (2024, 1, 1, 9), at (2024, 1, 1, 10));
    a.uid = "same@example.com";
    ASSERT_TRUE (f.store->add_entry (a).ok ());
    EntryRecord b = a;
    b.id = 0;
    b.title = "B";
    EXPECT_EQ (f.store->add_entry (b).code, CalendarDuplicateError);

    CalendarRecord other;
    other.title = "Other";
    ASSERT_TRUE (f.store->add_calendar (other).ok ());
    b.calendar_id = other.id;
    EXPECT_TRUE (f.store->add_entry (b).ok ()) << "the same UID may live in another calendar";
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
    EntryRecord t;
    t.calendar_id = f.calendar;
    t.kind = EntryKind::Task;
    t.title = "Taxes";
    t.start = at (2025, 4, 30);
    t.end = t.start + 1439;
    t.done = true;
    ASSERT_TRUE (f.store->add_entry (t).ok ());

    f.reopen ();
    EntryRecord back;
    ASSERT_TRUE (f.store->find_entry (e.id, &back));
    EXPECT_EQ (back.uid, e.uid);
    EXPECT_EQ (back.description, e.description);
    EXPECT_EQ (back.location, e.location);
    EXPECT_EQ (back.start, e.start);
    EXPECT_EQ (back.end, e.end);
    EXPECT_EQ (back.rrule, e.rrule);
    EXPECT_EQ (back.exdates, e.exdates);
    EXPECT_EQ (back.tzid, e.tzid);
    EXPECT_EQ (back.extra, e.extra);
    EXPECT_EQ (back.alarm_code, TavCalendarAlarmDayBefore);
    EXPECT_EQ (back.alarm_time, 18 * 60);
    EXPECT_TRUE (back.has_birthday);
    EXPECT_EQ (back.birth_year, 1980);
    EXPECT_EQ (back.created, e.created);
    ASSERT_EQ (f.store->entries_of_kind (EntryKind::Task).size (), 1u);
    EXPECT_TRUE (f.store->entries_of_kind (EntryKind::Task)[0].done);
}

TEST (HostStore, IntervalQueryFindsWhatTouchesTheWindow)
{
    StoreFixture f;
    CalendarRecord hidden;
    hidden.title = "Hidden";
    hidden.visible = false;
    ASSERT_TRUE (f.store->add_calendar (hidden).ok ());

    struct Ev {
        const char *title;
        int64_t start, end;
        const char *rrule;
        bool hidden;
    } events[] = {
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
        if (ev.hidden) {
            e.calendar_id = hidden.id;
        }
        ASSERT_TRUE (f.store->add_entry (e).ok ()) << ev.title;
    }
    struct Row {
        const char *label;
        int64_t from, to;
        bool visible_only;
        const char *expected;
    } rows[] = {
        {"May 2024", at (2024, 5, 1), at (2024, 5, 31, 23, 59), true,
         "count-reaching-may,inside,spans-in,weekly-since-2010"},
        {"May 2024, all calendars", at (2024, 5, 1), at (2024, 5, 31, 23, 59), false,
         "count-reaching-may,hidden-inside,inside,spans-in,weekly-since-2010"},
        {"a day of 2019", at (2019, 6, 1), at (2019, 6, 1, 23, 59), true, "daily-ended-2020,weekly-since-2010"},
        {"outside the UI range, 1901", at (1901, 5, 1), at (1901, 5, 31), true, "year-1901"},
        {"outside the UI range, 2100", at (2100, 5, 1), at (2100, 5, 31), true, "weekly-since-2010,year-2100"},
        {"2009", at (2009, 1, 1), at (2009, 12, 31), true, ""},
    };
    for (const Row &row : rows) {
        EXPECT_EQ (titles (f.store->entries_touching (row.from, row.to, row.visible_only)), row.expected) << row.label;
    }
}

TEST (HostStore, DeletingAnEntryOrCalendarDropsItFromTheIndex)
{
    StoreFixture f;
    EntryRecord a = f.event ("a", at (2024, 5, 1, 9), at (2024, 5, 1, 10));
    EntryRecord b = f.event ("b", at (2024, 5, 2, 9), at (2024, 5, 2, 10));
    ASSERT_TRUE (f.store->add_entry (a).ok ());
    ASSERT_TRUE (f.store->add_entry (b).ok ());
    ASSERT_TRUE (f.store->delete_entry (a.id).ok ());
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 3))), "b");
    EXPECT_EQ (f.store->delete_entry (a.id).code, CalendarInvalidArg);

    /* Moving an entry in time moves it in the index. */
    b.start = at (2024, 7, 1, 9);
    b.end = at (2024, 7, 1, 10);
    ASSERT_TRUE (f.store->update_entry (b).ok ());
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 3))), "");
    EXPECT_EQ (titles (f.store->entries_touching (at (2024, 7, 1), at (2024, 7, 1, 23))), "b");

    ASSERT_TRUE (f.store->remove_calendar (f.calendar).ok ());
    EXPECT_EQ (f.store->entries_touching (at (2024, 1, 1), at (2025, 1, 1), false).size (), 0u);
    EXPECT_EQ (f.store->count_entries (f.calendar), 0);
}

TEST (HostStore, VersionOneFileIsMigratedWithItsData)
{
    tav::test::TempDir dir;
    const std::string path = dir.file ("old.db");
    {
        sqlite3 *db = nullptr;
        ASSERT_EQ (sqlite3_open (path.c_str (), &db), SQLITE_OK);
        const char *sql =
            "CREATE TABLE calendars (id INTEGER PRIMARY KEY, title TEXT NOT NULL UNIQUE, color INTEGER NOT NULL "
            "DEFAULT 0, type INTEGER NOT NULL DEFAULT 0, sync_type INTEGER NOT NULL DEFAULT 0, visible INTEGER NOT "
            "NULL DEFAULT 1, read_only INTEGER NOT NULL DEFAULT 0, alarm_tone TEXT);"
            "CREATE TABLE entries (id INTEGER PRIMARY KEY, calendar_id INTEGER NOT NULL REFERENCES calendars(id) ON "
            "DELETE CASCADE, kind INTEGER NOT NULL, uid TEXT NOT NULL, title TEXT, description TEXT, location TEXT, "
            "start INTEGER NOT NULL, end INTEGER NOT NULL, all_day INTEGER NOT NULL DEFAULT 0, alarm_code INTEGER NOT "
            "NULL DEFAULT 0, alarm_time INTEGER NOT NULL DEFAULT -1, repeat_code INTEGER NOT NULL DEFAULT 0, rrule "
            "TEXT, exdates TEXT, done INTEGER NOT NULL DEFAULT 0, has_birthday INTEGER NOT NULL DEFAULT 0, birth_year "
            "INTEGER NOT NULL DEFAULT -1, created INTEGER NOT NULL DEFAULT 0, modified INTEGER NOT NULL DEFAULT 0, "
            "UNIQUE (calendar_id, uid));"
            "CREATE INDEX entries_start ON entries (start);"
            "INSERT INTO calendars (id, title) VALUES (1, 'Old');"
            "PRAGMA user_version=1;";
        ASSERT_EQ (sqlite3_exec (db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        const std::string insert =
            "INSERT INTO entries (calendar_id, kind, uid, title, start, end, rrule) VALUES "
            "(1, 0, 'u1', 'yearly', " + std::to_string (at (2001, 3, 3, 10)) + ", " +
            std::to_string (at (2001, 3, 3, 11)) + ", 'FREQ=YEARLY'), (1, 0, 'u2', 'once', " +
            std::to_string (at (2024, 3, 3, 10)) + ", " + std::to_string (at (2024, 3, 3, 11)) + ", NULL);";
        ASSERT_EQ (sqlite3_exec (db, insert.c_str (), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close (db);
    }
    Status st;
    auto store = Store::open (path, &st);
    ASSERT_TRUE (store) << st.message;
    EXPECT_EQ (store->schema_version (), Store::kSchemaVersion);
    EXPECT_EQ (titles (store->entries_touching (at (2024, 3, 1), at (2024, 3, 31))), "once,yearly");
    EXPECT_EQ (titles (store->entries_touching (at (2030, 3, 1), at (2030, 3, 31))), "yearly");
}

TEST (HostStore, FilesThatAreNotOursAreRefusedUntouched)
{
    tav::test::TempDir dir;
    struct Row {
        const char *label;
        std::string content;
        const char *needle;
    } rows[] = {
        {"text file", "BEGIN:VCALENDAR\nthis is not a database, it only looks like one a little\n" +
                          std::string (5000, 'x'), "not a calendar database"},
        {"binary junk", std::string (8192, '\x5a'), "not a calendar database"},
    };
    for (const Row &row : rows) {
        const std::string path = dir.file (std::string (row.label) + ".db");
        ASSERT_TRUE (g_file_set_contents (path.c_str (), row.content.data (), row.content.size (), nullptr));
        Status st;
        auto store = Store::open (path, &st);
        EXPECT_FALSE (store) << row.label;
        EXPECT_NE (st.message.find (row.needle), std::string::npos) << row.label << ": " << st.message;
        EXPECT_EQ (read_file (path), row.content) << row.label << ": the file was changed";
        EXPECT_FALSE (g_file_test ((path + "-wal").c_str (), G_FILE_TEST_EXISTS)) << row.label;
    }

    /* Another program's SQLite database. */
    const std::string other = dir.file ("other.db");
    {
        sqlite3 *db = nullptr;
        sqlite3_open (other.c_str (), &db);
        sqlite3_exec (db, "CREATE TABLE songs (name TEXT); INSERT INTO songs VALUES ('x');", nullptr, nullptr, nullptr);
        sqlite3_close (db);
    }
    const std::string before = read_file (other);
    Status st;
    EXPECT_FALSE (Store::open (other, &st));
    EXPECT_NE (st.message.find ("another program"), std::string::npos) << st.message;
    EXPECT_EQ (read_file (other), before);
}

TEST (HostStore, FullDiskGivesDiskFullAndLosesNothingCommitted)
{
    StoreFixture f;
    f.store->set_page_limit (24);
    int stored = 0;
    Status last;
    const std::string long_text (600, 'n');
    for (int i = 0; i < 2000; ++i) {
        EntryRecord e = f.event ("event " + std::to_string (i), at (2024, 1, 1, 9) + i * 60, at (2024, 1, 1, 10) + i * 60);
        e.description = long_text;
        last = f.store->add_entry (e);
        if (!last.ok ()) {
            break;
        }
        ++stored;
    }
    ASSERT_EQ (last.code, CalendarDiskFullError) << last.message;
    ASSERT_GT (stored, 0);
    EXPECT_EQ (f.store->count_entries (f.calendar), stored);

    /* The store still answers after the failure, and a reopen (without the
     * limit) finds exactly what was committed. */
    EXPECT_EQ (f.store->entries_touching (at (2024, 1, 1), at (2024, 12, 31)).size (), static_cast<size_t> (stored));
    f.reopen ();
    EXPECT_EQ (f.store->count_entries (f.calendar), stored);
    EXPECT_EQ (f.store->entries_touching (at (2024, 1, 1), at (2024, 12, 31)).size (), static_cast<size_t> (stored));
    EntryRecord more = f.event ("after", at (2025, 1, 1, 9), at (2025, 1, 1, 10));
    EXPECT_TRUE (f.store->add_entry (more).ok ());
}

TEST (HostStore, TransactionRollsBackUnlessCommitted)
{
    StoreFixture f;
    {
        Store::Transaction tx (*f.store);
        EntryRecord a = f.event ("a", at (2024, 5, 1, 9), at (2024, 5, 1, 10));
        ASSERT_TRUE (f.store->add_entry (a).ok ());
        EXPECT_EQ (f.store->count_entries (f.calendar), 1);
    }
    EXPECT_EQ (f.store->count_entries (f.calendar), 0);
    EXPECT_EQ (f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 2)).size (), 0u);
}
