/* The host's calendar source: the eighteen slots over a real store. */
#include "HostIcs.h"
#include "HostTestUtil.h"
#include "TavHostCalendarSource.h"

using namespace tav::host;
using namespace tav::host::test;
using tav::test::LogCapture;

namespace {

struct SourceFixture : StoreFixture {
    Ref<TavHostCalendarSource> source;

    SourceFixture () : StoreFixture (calendar_named ("Home", true, TavCalendarColorGreen))
    {
        CalendarRecord c;
        EXPECT_TRUE (store->find_calendar (calendar, &c));
        source = make_source (store, c);
    }

    TavCalendarSource *base () const { return TAV_CALENDAR_SOURCE (source.get ()); }

    Ref<TavCalendarEntry> event (const char *title, int y, int m, int d, int h, int dur_min)
    {
        auto e = Ref<TavCalendarEntry>::adopt (tav_calendar_entry_new ());
        const TavTimestamp start = {{y, m - 1, d}, {h, 0}};
        const CivilFields f = civil_fields (at (y, m, d, h) + dur_min);
        const TavDate end_date = {f.year, f.month - 1, f.day};
        const TavTime end_time = {f.hour, f.minute};
        g_object_set (e.get (), "title", title, "start-timestamp", &start, "end-date", &end_date, "end-time",
                      &end_time, nullptr);
        return e;
    }

    int create (TavCalendarEntry *e, TavCalendarSource *into = nullptr)
    {
        LogCapture capture;  /* the wrapper logs "retval is %d" on every call */
        const int rc = tav_calendar_source_create_entry (into ? into : base (), e);
        EXPECT_EQ (capture.count_lines (tav::test::LoggedLine::LibWarning, "retval is " + std::to_string (rc)), 1);
        return rc;
    }
};

std::string instances_in (TavCalendarEntry *e, const TavDateInterval &w)
{
    std::string out;
    for (const TavTimestamp *t = tav_calendar_entry_get_first_instance_timestamp (e, &w); t;
         t = tav_calendar_entry_get_next_instance_timestamp (e)) {
        char buf[32];
        snprintf (buf, sizeof buf, "%02d.%02d %02d:%02d;", t->date.day, t->date.month + 1, t->time.hour, t->time.minute);
        out += buf;
    }
    return out;
}

}  // namespace

TEST (HostSource, CalendarSlotsWriteTheCalendarsTable)
{
    SourceFixture f;
    const CalendarRecord fresh = calendar_named ("Work", true, TavCalendarColorOrange);
    auto work = make_source (f.store, fresh);
    TavCalendarSource *w = TAV_CALENDAR_SOURCE (work.get ());
    EXPECT_FALSE (tav_calendar_source_exists_by_name (w));
    EXPECT_EQ (tav_calendar_source_create (w), CalendarNoError);
    EXPECT_GT (tav_calendar_source_get_id (w), 0);
    EXPECT_TRUE (tav_calendar_source_exists_by_name (w));

    auto twin = make_source (f.store, fresh);
    EXPECT_EQ (tav_calendar_source_create (TAV_CALENDAR_SOURCE (twin.get ())), CalendarAlreadyExists);
    EXPECT_FALSE (source_last_error (twin.get ()).empty ());

    g_object_set (w, "title", "Office", "visible", FALSE, nullptr);
    EXPECT_EQ (tav_calendar_source_save (w), CalendarNoError);
    CalendarRecord stored;
    ASSERT_TRUE (f.store->find_calendar (tav_calendar_source_get_id (w), &stored));
    EXPECT_EQ (stored.title, "Office");
    EXPECT_FALSE (stored.visible);
    EXPECT_EQ (stored.color, TavCalendarColorOrange);

    EXPECT_EQ (tav_calendar_source_remove (w), CalendarNoError);
    EXPECT_FALSE (f.store->find_calendar_by_title ("Office", nullptr));
}

TEST (HostSource, EntriesAreCreatedSavedMovedAndDeletedInTheStore)
{
    SourceFixture f;
    auto e = f.event ("Lunch", 2024, 5, 6, 12, 60);
    ASSERT_EQ (f.create (e.get ()), CalendarNoError);
    const int64_t id = entry_record_id (e.get ());
    ASSERT_GT (id, 0);
    int color = -1;
    g_object_get (e.get (), "color", &color, nullptr);
    EXPECT_EQ (color, TavCalendarColorGreen);
    EntryRecord r;
    ASSERT_TRUE (f.store->find_entry (id, &r));
    EXPECT_EQ (r.title + " " + civil_to_string (r.start) + " - " + civil_to_string (r.end),
               "Lunch 2024-05-06 12:00 - 2024-05-06 13:00");
    EXPECT_EQ (tav_calendar_source_get_event_count (f.base ()), 1);

    g_object_set (e.get (), "title", "Long lunch", "repeat-code", TavCalendarRepeatsEveryWeek, "alarm-code",
                  TavCalendarAlarm15Min, nullptr);
    EXPECT_EQ (tav_calendar_source_save_entry (f.base (), e.get ()), CalendarNoError);
    ASSERT_TRUE (f.store->find_entry (id, &r));
    EXPECT_EQ (r.title, "Long lunch");
    EXPECT_EQ (r.rrule, "FREQ=WEEKLY");
    EXPECT_EQ (r.alarm_code, TavCalendarAlarm15Min);
    EXPECT_EQ (f.create (e.get ()), CalendarDuplicateError) << "a second create of the same object";

    /* Moving to another calendar: created there, then deleted here. */
    const CalendarRecord other = f.add_calendar (calendar_named ("Other"));
    auto target = make_source (f.store, other);
    EXPECT_EQ (f.create (e.get (), TAV_CALENDAR_SOURCE (target.get ())), CalendarNoError);
    EXPECT_EQ (tav_calendar_source_delete_entry (f.base (), e.get ()), CalendarNoError);
    EXPECT_FALSE (f.store->find_entry (id, nullptr));
    EXPECT_EQ (f.store->count_entries (other.id), 1);
    EXPECT_EQ (f.store->count_entries (f.calendar), 0);
    EXPECT_EQ (tav_calendar_source_delete_entry (f.base (), e.get ()), CalendarInvalidArg);
}

TEST (HostSource, TasksAndNotesUseTheirSlots)
{
    SourceFixture f;
    auto task = Ref<TavCalendarTask>::adopt (TAV_CALENDAR_TASK (g_object_new (tav_calendar_task_get_type (), nullptr)));
    const TavTimestamp due = {{2024, 4, 20}, {0, 0}};
    g_object_set (task.get (), "title", "Pay rent", "start-timestamp", &due, nullptr);
    EXPECT_EQ (tav_calendar_source_create_task (f.base (), task.get ()), CalendarNoError);
    g_object_set (task.get (), "done", TRUE, nullptr);
    EXPECT_EQ (tav_calendar_source_save_task (f.base (), task.get ()), CalendarNoError);
    auto note = Ref<TavCalendarNote>::adopt (tav_calendar_note_new ());
    g_object_set (note.get (), "title", "Ideas", "description", "one\ntwo", nullptr);
    EXPECT_EQ (tav_calendar_source_create_note (f.base (), note.get ()), CalendarNoError);

    auto tasks = f.store->entries_of_kind (EntryKind::Task);
    ASSERT_EQ (tasks.size (), 1u);
    EXPECT_TRUE (tasks[0].done);
    EXPECT_EQ (civil_to_string (tasks[0].start), "2024-05-20 00:00");
    auto notes = f.store->entries_of_kind (EntryKind::Note);
    ASSERT_EQ (notes.size (), 1u);
    EXPECT_EQ (notes[0].description, "one\ntwo");
    EXPECT_EQ (tav_calendar_source_get_entry_count (f.base ()), 2);
    EXPECT_EQ (tav_calendar_source_get_event_count (f.base ()), 0);

    EXPECT_EQ (tav_calendar_source_delete_note (f.base (), note.get ()), CalendarNoError);
    EXPECT_EQ (tav_calendar_source_delete_task (f.base (), TAV_CALENDAR_TASK (task.get ())), CalendarNoError);
    EXPECT_EQ (tav_calendar_source_get_entry_count (f.base ()), 0);
}

TEST (HostSource, FailuresCarryTheirCodes)
{
    SourceFixture f;
    auto kept = f.event ("Kept", 2024, 5, 6, 9, 30);
    ASSERT_EQ (f.create (kept.get ()), CalendarNoError);

    /* Read-only calendar. */
    g_object_set (f.base (), "read-only", TRUE, nullptr);
    ASSERT_EQ (tav_calendar_source_save (f.base ()), CalendarNoError);
    auto refused = f.event ("Refused", 2024, 5, 7, 9, 30);
    EXPECT_EQ (f.create (refused.get ()), CalendarInvalidArg);
    g_object_set (kept.get (), "title", "Changed", nullptr);
    EXPECT_EQ (tav_calendar_source_save_entry (f.base (), kept.get ()), CalendarInvalidArg);
    EXPECT_EQ (tav_calendar_source_delete_entry (f.base (), kept.get ()), CalendarInvalidArg);
    EXPECT_EQ (tav_calendar_source_remove_contents (f.base ()), CalendarInvalidArg);
    g_object_set (f.base (), "read-only", FALSE, nullptr);
    ASSERT_EQ (tav_calendar_source_save (f.base ()), CalendarNoError);
    EntryRecord still;
    EXPECT_TRUE (f.store->find_entry (entry_record_id (kept.get ()), &still));
    EXPECT_EQ (still.title, "Kept");

    /* Export needs a target. */
    EXPECT_EQ (tav_calendar_source_export_calendar (f.base (), nullptr), CalendarInvalidArg);
    const std::string path = f.dir.file ("home.ics");
    EXPECT_EQ (tav_calendar_source_export_calendar (f.base (), (gpointer) path.c_str ()), CalendarNoError);
    EXPECT_NE (read_file (path).find ("SUMMARY:Kept"), std::string::npos);
}

TEST (HostSource, InstancesComeFromTheStoredRule)
{
    SourceFixture f;
    const std::string ics =
        "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:gym\r\nDTSTART:20240502T180000\r\nDTEND:20240502T190000\r\n"
        "RRULE:FREQ=WEEKLY;BYDAY=TU,TH\r\nEXDATE:20240516T180000\r\nSUMMARY:Gym\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:rent\r\nDTSTART;VALUE=DATE:20240101\r\nRRULE:FREQ=MONTHLY;UNTIL=20241231T235959\r\n"
        "SUMMARY:Rent\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    ASSERT_TRUE (import_ics_text (*f.store, f.calendar, ics).status.ok ());
    const TavDateInterval may = {{2024, 4, 1}, {2024, 4, 31}};
    std::map<std::string, Ref<TavCalendarEntry>> by_title;
    for (const EntryRecord &r : f.store->entries_touching (at (2024, 5, 1), at (2024, 5, 31, 23, 59)))
        by_title[r.title] = Ref<TavCalendarEntry>::adopt (entry_from_record (r, f.source.get ()));
    ASSERT_EQ (by_title.size (), 2u);
    TavCalendarEntry *gym = by_title["Gym"].get ();
    EXPECT_TRUE (tav_calendar_entry_has_rrule (gym));
    int code = -1;
    g_object_get (gym, "repeat-code", &code, nullptr);
    EXPECT_EQ (code, TavCalendarRepeatsComplex);
    EXPECT_EQ (instances_in (gym, may),
               "02.05 18:00;07.05 18:00;09.05 18:00;14.05 18:00;21.05 18:00;23.05 18:00;28.05 18:00;30.05 18:00;");

    TavCalendarEntry *rent = by_title["Rent"].get ();
    g_object_get (rent, "repeat-code", &code, nullptr);
    EXPECT_EQ (code, TavCalendarRepeatsEveryMonth);
    TavDate *until = nullptr;
    g_object_get (rent, "end-repetition-date", &until, nullptr);
    EXPECT_EQ (std::vector<int> ({until->year, until->month, until->day}), std::vector<int> ({2024, 11, 31}));
    tav_date_free (until);
    EXPECT_EQ (instances_in (rent, may), "01.05 00:00;");
    EXPECT_TRUE (tav_calendar_entry_is_all_day (rent));

    /* Saving the entry unchanged keeps the complex rule and its exception. */
    EXPECT_EQ (tav_calendar_source_save_entry (f.base (), gym), CalendarNoError);
    EntryRecord stored;
    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "gym", &stored));
    EXPECT_EQ (stored.rrule, "FREQ=WEEKLY;BYDAY=TU,TH");
    EXPECT_EQ (stored.exdates.size (), 1u);
}
