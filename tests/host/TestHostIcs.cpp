/* iCalendar import and export through the real store. */
#include "HostIcs.h"
#include "HostRecurrence.h"
#include "HostTestUtil.h"

using namespace tav::host;
using namespace tav::host::test;

namespace {

const char *const kHeader = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\n";
const char *const kFooter = "END:VCALENDAR\r\n";

}  // namespace

TEST (HostIcs, FixtureCalendarsImportWithTheRightCountsAndRoundTrip)
{
    struct Row { const char *file; int events, tasks, notes; const char *warning; } rows[] = {
        {"calendar.ics", 3, 0, 0, ""},
        {"2445.ics", 6, 2, 2, "line 68: 4 VFREEBUSY component(s) are not calendar entries"},
        {"overlaps.ics", 5, 0, 0, ""}, {"spanlist.ics", 5, 0, 0, ""},
        {"recur.txt", 54, 0, 0, "line 645: 6 line(s) outside any component ignored"},  /* 3 true duplicates */
    };
    for (const Row &row : rows) {
        SCOPED_TRACE (row.file);
        StoreFixture f;
        auto described = [&f] (int64_t calendar) {
            std::vector<std::string> lines;
            for (const auto &e : f.store->entries_of_calendar (calendar))
                lines.push_back (describe (e));
            return joined (lines);
        };
        const int total = row.events + row.tasks + row.notes;
        ImportResult r = import_ics_file (*f.store, f.calendar, fixture_path (row.file));
        ASSERT_TRUE (r.status.ok ()) << r.status.message;
        EXPECT_EQ (std::vector<int> ({r.events, r.tasks, r.notes}), std::vector<int> ({row.events, row.tasks, row.notes}));
        EXPECT_EQ (f.store->count_entries (f.calendar), total);
        EXPECT_NE (joined (r.warnings).find (row.warning), std::string::npos) << joined (r.warnings);

        /* Export, re-import into a second calendar: the same entries. */
        int exported = 0;
        const std::string path = f.dir.file ("out.ics");
        ASSERT_TRUE (export_ics_file (*f.store, {f.calendar}, path, &exported).ok ());
        EXPECT_EQ (exported, total);
        const int64_t second = f.add_calendar (calendar_named ("Second")).id;
        ImportResult again = import_ics_file (*f.store, second, path);
        ASSERT_TRUE (again.status.ok ()) << again.status.message;
        EXPECT_EQ (again.total (), exported);
        EXPECT_EQ (described (second), described (f.calendar));

        /* Importing the same file again changes nothing and doubles nothing. */
        ImportResult twice = import_ics_file (*f.store, f.calendar, fixture_path (row.file));
        ASSERT_TRUE (twice.status.ok ());
        EXPECT_EQ (twice.counts.unchanged, twice.counts.components ());
        EXPECT_EQ (twice.total (), 0);
        EXPECT_EQ (f.store->count_entries (f.calendar), total);
    }
}

TEST (HostIcs, MalformedFilesImportNothingAndBadComponentsAreSkipped)
{
    const std::string head = std::string (kHeader) + "BEGIN:VEVENT\r\nUID:ok-1\r\nDTSTART:20240506T090000Z\r\nEND:VEVENT\r\n";
    const std::string start = "BEGIN:VEVENT\r\nDTSTART:20240506T090000Z\r\n";
    const std::string bad_start = "BEGIN:VEVENT\r\nSUMMARY:x\r\nDTSTART:";
    /* stored: entries in the calendar afterwards, the one already there
     * included. (An unclosed component and bad UTF-8 are the import and
     * program tests' cases.) */
    struct Row { const char *label; std::string text; CalendarUiErrorCode code; int line; int stored; } rows[] = {
        {"mismatched END", std::string (kHeader) + start + "END:VTODO\r\n" + kFooter, CalendarInvalidIcsFile, 6, 1},
        {"garbage line inside", head + start + "this is no property\r\nEND:VEVENT\r\n" + kFooter, CalendarInvalidIcsFile, 10, 1},
        {"nothing in it", std::string (kHeader) + kFooter, CalendarInvalidIcsFile, 0, 1},
        /* A component wrong on its own is skipped; the rest is stored. */
        {"rrule libical rejects", head + start + "RRULE:FREQ=SOMETIMES\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"rrule with a bad BYDAY", head + start + "RRULE:FREQ=WEEKLY;BYDAY=XX\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"event without start", head + "BEGIN:VEVENT\r\nSUMMARY:when?\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 8, 2},
        {"bad DTSTART text", head + bad_start + "2024-05-06\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"month 13", head + bad_start + "20021301\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"February 30", head + bad_start + "20240230T100000Z\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"hour 25", head + bad_start + "20240506T250000\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"year 0", head + bad_start + "00000506\r\nEND:VEVENT\r\n" + kFooter, CalendarImportIncomplete, 10, 2},
        {"bad EXDATE in a list", head + start + "RRULE:FREQ=DAILY\r\nEXDATE:20240507T090000Z,20240532T090000Z\r\nEND:VEVENT\r\n" + kFooter,
         CalendarImportIncomplete, 11, 2},
    };
    for (const Row &row : rows) {
        StoreFixture f;
        EntryRecord mine = f.event ("mine", at (2024, 5, 1, 9), at (2024, 5, 1, 10));
        ASSERT_TRUE (f.store->add_entry (mine).ok ());
        ImportResult r = import_ics_text (*f.store, f.calendar, row.text);
        EXPECT_EQ (r.status.code, row.code) << row.label << ": " << r.status.message;
        EXPECT_EQ (r.line, row.line) << row.label << ": " << r.status.message;
        if (row.code == CalendarImportIncomplete) {
            ASSERT_EQ (r.skipped.size (), 1u) << row.label;
            EXPECT_NE (r.report ().find ("skipped line " + std::to_string (row.line) + ": "), std::string::npos)
                << row.label << ": " << r.report ();
        } else if (row.line) {
            EXPECT_NE (r.status.message.find ("line " + std::to_string (row.line)), std::string::npos)
                << row.label << ": " << r.status.message;
        }
        EXPECT_EQ (f.store->count_entries (f.calendar), row.stored) << row.label << ": " << r.report ();
    }
}

TEST (HostIcs, PropertiesMapToTheModel)
{
    StoreFixture f;
    const std::string text = std::string (kHeader) +
        "BEGIN:VEVENT\r\nUID:allday\r\nDTSTART;VALUE=DATE:20240510\r\nDTEND;VALUE=DATE:20240513\r\nSUMMARY:Trip\\, long\r\n"
        "RDATE:20240601T110000Z\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:berlin\r\nDTSTART;TZID=Europe/Berlin:20240115T100000\r\nDURATION:PT90M\r\nSUMMARY:Call\r\n"
        "X-UNKNOWN;P=1:kept\r\nBEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT20M\r\nEND:VALARM\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:weekly\r\nDTSTART:20240506T090000\r\nDTEND:20240506T100000\r\nRRULE:FREQ=WEEKLY;UNTIL=20240630T235959\r\n"
        "EXDATE:20240513T090000\r\nRDATE;VALUE=PERIOD:20240701T090000/20240701T120000\r\nBEGIN:VALARM\r\nTRIGGER:-P1D\r\nACTION:DISPLAY\r\nEND:VALARM\r\nEND:VEVENT\r\n"
        "BEGIN:VTODO\r\nUID:todo\r\nDUE;VALUE=DATE:20240520\r\nSUMMARY:Pay\r\nSTATUS:COMPLETED\r\nEND:VTODO\r\n"
        "BEGIN:VTODO\r\nUID:someday\r\nSUMMARY:Someday\r\nDESCRIPTION:" + std::string (300000, 'x') + "\r\nEND:VTODO\r\n"
        "BEGIN:VJOURNAL\r\nUID:note\r\nSUMMARY:Idea\\y\r\nDESCRIPTION:Line one\\nline two\r\nEND:VJOURNAL\r\n" + kFooter;
    std::string progress;
    ImportResult r = import_ics_text (*f.store, f.calendar, text, [&] (size_t done, size_t total) {
        progress += std::to_string (done) + "/" + std::to_string (total) + " ";
        return true;
    });
    ASSERT_TRUE (r.status.ok ()) << r.status.message;
    EXPECT_EQ (progress, "1/6 2/6 3/6 4/6 5/6 6/6 ");

    EntryRecord e;
    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "allday", &e));
    EXPECT_TRUE (e.all_day);
    EXPECT_EQ (e.title, "Trip, long");
    EXPECT_EQ (civil_to_string (e.start), "2024-05-10 00:00");
    EXPECT_EQ (civil_to_string (e.end), "2024-05-12 23:59") << "DTEND of a date is exclusive";
    const std::vector<int64_t> trips = expand_instances (e, INT64_MIN, kUnbounded);
    ASSERT_EQ (trips.size (), 2u);
    EXPECT_EQ (civil_to_string (trips[1]), "2024-06-01 00:00") << "a date-time RDATE of an all-day event names a day";

    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "berlin", &e));
    EXPECT_EQ (civil_to_string (e.start), "2024-01-15 09:00") << "Berlin 10:00 is 09:00 UTC in winter";
    EXPECT_EQ (civil_to_string (e.end), "2024-01-15 10:30");
    EXPECT_EQ (e.tzid, "Europe/Berlin");
    EXPECT_EQ (e.alarm_code, TavCalendarAlarm15Min) << "20 minutes is nearest to 15";
    EXPECT_EQ (e.extra, "X-UNKNOWN;P=1:kept\n");

    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "weekly", &e));
    EXPECT_EQ (e.repeat_code, TavCalendarRepeatsEveryWeek);
    EXPECT_EQ (e.alarm_code, TavCalendarAlarmDayBefore);
    EXPECT_EQ (e.alarm_time, 9 * 60);
    EXPECT_EQ (expand_instances (e, INT64_MIN, kUnbounded).size (), 8u) << "8 Mondays in the range, one excepted, a period";

    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "todo", &e));
    EXPECT_EQ (e.kind, EntryKind::Task);
    EXPECT_TRUE (e.done);
    EXPECT_EQ (civil_to_string (e.start), "2024-05-20 00:00");

    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "someday", &e));
    EXPECT_TRUE (e.undated) << "a task without a due date stays without one";
    EXPECT_EQ (e.description.size (), 300000u) << "a line longer than libical's reads arrives whole";

    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "note", &e));
    EXPECT_EQ (e.kind, EntryKind::Note);
    EXPECT_EQ (e.title, "Idea") << "the blank libical makes of an unknown escape goes, as a line's last blanks do";
    EXPECT_EQ (e.description, "Line one\nline two");

    /* The unknown property, the zone and the alarm as it came survive an export. */
    const std::string out = export_ics_text (*f.store, {f.calendar});
    EXPECT_NE (out.find ("X-UNKNOWN;P=1:kept\r\n"), std::string::npos);
    EXPECT_NE (out.find ("TRIGGER:-PT20M"), std::string::npos);
    EXPECT_NE (out.find ("DTSTART;TZID=Europe/Berlin:20240115T100000\r\n"), std::string::npos);
    EXPECT_NE (out.find ("BEGIN:VTIMEZONE\r\nTZID:/freeassociation.sourceforge.net/Europe/Berlin"), std::string::npos)
        << out;
    EXPECT_NE (out.find ("SUMMARY:Trip\\, long"), std::string::npos);
    EXPECT_NE (out.find ("RDATE;VALUE=PERIOD:20240701T090000/20240701T120000\r\n"), std::string::npos) << out;
    const size_t someday = out.find ("UID:someday");
    ASSERT_NE (someday, std::string::npos);
    EXPECT_EQ (out.substr (someday, out.find ("END:VTODO", someday) - someday).find ("DUE"), std::string::npos);

    /* Stopping in the middle stores nothing. */
    StoreFixture g;
    ImportResult stopped = import_ics_text (*g.store, g.calendar, text, [] (size_t done, size_t) { return done < 3; });
    EXPECT_FALSE (stopped.stored ());
    EXPECT_EQ (g.store->count_entries (g.calendar), 0);
}

TEST (HostIcs, AlarmCodesAreTheNearestOffset)
{
    struct Row {
        int64_t minutes;
        TavCalendarAlarmCode code;
    } rows[] = {{-30, TavCalendarAlarm0Min}, {0, TavCalendarAlarm0Min},      {2, TavCalendarAlarm0Min},
                {3, TavCalendarAlarm5Min},   {10, TavCalendarAlarm5Min},     {11, TavCalendarAlarm15Min},
                {45, TavCalendarAlarm30Min}, {46, TavCalendarAlarm1Hour},    {120, TavCalendarAlarm1Hour},
                {121, TavCalendarAlarm3Hours}, {810, TavCalendarAlarm3Hours}, {811, TavCalendarAlarmDayBefore},
                {10000, TavCalendarAlarmDayBefore}};
    for (const Row &row : rows)
        EXPECT_EQ (alarm_code_for_minutes (row.minutes), row.code) << row.minutes << " minutes";
}

TEST (HostIcs, ImportOnAFullDiskStoresNothingAndSaysSo)
{
    StoreFixture f;
    EntryRecord mine = f.event ("mine", at (2024, 5, 1, 9), at (2024, 5, 1, 10));
    ASSERT_TRUE (f.store->add_entry (mine).ok ());
    std::string ics = kHeader;
    for (int i = 0; i < 400; ++i) {
        char buf[256];
        snprintf (buf, sizeof buf, "BEGIN:VEVENT\r\nUID:bulk-%d\r\nDTSTART:20240601T%02d0000Z\r\nSUMMARY:%s\r\nEND:VEVENT\r\n",
                  i, i % 24, std::string (150, 'x').c_str ());
        ics += buf;
    }
    ics += kFooter;
    f.store->set_page_limit (8);
    ImportResult r = import_ics_text (*f.store, f.calendar, ics);
    EXPECT_EQ (r.status.code, CalendarDiskFullError) << r.status.message;
    EXPECT_EQ (r.total (), 0);
    EXPECT_EQ (f.store->count_entries (f.calendar), 1);
    f.reopen ();
    EXPECT_EQ (f.store->count_entries (f.calendar), 1);
    ASSERT_TRUE (f.store->find_entry (mine.id, nullptr));
}

TEST (HostIcs, EveryYearTheStoreHoldsIsWrittenWithFourDigits)
{
    StoreFixture f;
    const std::string text = std::string (kHeader) +
        "BEGIN:VEVENT\r\nUID:1900\r\nDTSTART:19000101T100000Z\r\nSUMMARY:old\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:999\r\nDTSTART:09990704T080000Z\r\nCREATED:00100101T000000Z\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:9999\r\nDTSTART;VALUE=DATE:99991231\r\nEND:VEVENT\r\n" + kFooter;
    ImportResult r = import_ics_text (*f.store, f.calendar, text);
    ASSERT_TRUE (r.status.ok ()) << r.report ();
    EntryRecord e;
    ASSERT_TRUE (f.store->find_entry_by_uid (f.calendar, "1900", &e));
    EXPECT_EQ (civil_to_string (e.start), "1900-01-01 10:00") << "not 1969-12-31 23:59";
    const std::string out = export_ics_text (*f.store, {f.calendar});
    for (const char *line : {"DTSTART:19000101T100000Z\r\n", "DTSTART:09990704T080000Z\r\n", "CREATED:00100101T000000Z\r\n",
                             "DTSTART;VALUE=DATE:99991231\r\nDURATION:P1D\r\n"}) {
        EXPECT_NE (out.find (line), std::string::npos) << line << "\n" << out;
    }
    EXPECT_EQ (out.find (":1000"), std::string::npos) << out;
    /* What iCalendar cannot write, the store does not take. */
    EntryRecord far = f.event ("far", at (10000, 1, 1, 9), at (10000, 1, 1, 10));
    Status s = f.store->add_entry (far);
    EXPECT_EQ (s.code, CalendarInvalidArg);
    EXPECT_NE (s.message.find ("outside the years 1 to 9999"), std::string::npos) << s.message;
}
