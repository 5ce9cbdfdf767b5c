/* Calendar entries, tasks and notes through their public interface. */

#include <calendarui.h>

#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "ModelTestUtil.h"
#include "TavCalendarEntryInternal.h"
#include "TavMemorySource.h"
#include "TestSupport.h"

using namespace tav::test;
using tav::adoptGRef;
using tav::GRefPtr;

namespace {

struct PropertyRow {
    const char *name;
    guint id;
    const char *nick;
    const char *blurb;
    GType type;
    bool writable;
    int min, max, def; /* ints and booleans */
};

TEST (CalendarEntry, PropertiesCarryTheirNamesTextsTypesAndRanges)
{
    const PropertyRow rows[] = {
        { "start-timestamp", 2, "Start timestamp", "The starting date and time.", TAV_TYPE_TIMESTAMP, true },
        { "start-date", 3, "Start date", "The starting date.", TAV_TYPE_DATE, true },
        { "end-date", 5, "End date", "The ending date.", TAV_TYPE_DATE, true },
        { "end-repetition-date", 7, "End repetition date", "The date for the last repetition.", TAV_TYPE_DATE, true },
        { "alarm-time", 21, "Alarm time", "The alarm time value if alarm-code is set to day before.", TAV_TYPE_TIME, true },
        { "start-time", 4, "Start time", "The starting time.", TAV_TYPE_TIME, true },
        { "end-time", 6, "End time", "The ending time.", TAV_TYPE_TIME, true },
        { "modification-date", 8, "Modification Date", "The date of the last modification.", TAV_TYPE_DATE, true },
        { "modification-time", 9, "Modification Time", "The time of the last modification.", TAV_TYPE_TIME, true },
        { "created-time", 22, "Created time", "The created time of the entry.", G_TYPE_INT, true, 0, G_MAXINT, 0 },
        { "source", 1, "Source", "The calendar source this entry is stored on.", TAV_TYPE_CALENDAR_SOURCE, true },
        { "num-id", 37, "Entry ID", "The textual id of the entry.", G_TYPE_STRING, true },
        { "start-year", 11, "Start year", "The start year of the entry.", G_TYPE_INT, true, 0, G_MAXINT, 0 },
        { "modified-time-sec", 10, "Modified sec time", "Modified seconds time.", G_TYPE_INT, true, 0, 59, 0 },
        { "start-month", 12, "Start month", "The start month of the entry.", G_TYPE_INT, true, 0, 11, 0 },
        { "start-day", 13, "Start day", "The start day of the entry", G_TYPE_INT, true, 1, 31, 1 },
        { "start-hour", 14, "Start hour", "The start hour of the entry", G_TYPE_INT, true, 0, 23, 0 },
        { "start-minute", 15, "Start minute", "The start minute of the entry", G_TYPE_INT, true, 0, 59, 0 },
        { "end-year", 16, "End year", "The end year of the entry.", G_TYPE_INT, true, 0, G_MAXINT, 0 },
        { "end-month", 17, "End month", "The end month of the entry.", G_TYPE_INT, true, 0, 11, 0 },
        { "end-day", 18, "End day", "The end day of the entry", G_TYPE_INT, true, 1, 31, 1 },
        { "end-hour", 19, "End hour", "The end hour of the entry", G_TYPE_INT, true, 0, 23, 0 },
        { "end-minute", 20, "End minute", "The end minute of the entry", G_TYPE_INT, true, 0, 59, 0 },
        { "start-week-day", 28, "Start weekday", "The start week day", G_TYPE_INT, false, 0, 6, 0 },
        { "end-week-day", 29, "End weekday", "The end week day", G_TYPE_INT, false, 0, 6, 0 },
        { "color", 30, "Color", "The color of the entry as an enum code.", TAV_TYPE_CALENDAR_COLOR, true },
        { "title", 23, "Title", "The title text of the entry.", G_TYPE_STRING, true },
        { "description", 24, "Description", "The description text of the entry.", G_TYPE_STRING, true },
        { "location", 25, "Location", "The location for the entry.", G_TYPE_STRING, true },
        { "all-day", 31, "All day", "If the entry is for all the day.", G_TYPE_BOOLEAN, true, 0, 0, FALSE },
        { "has-rrule", 32, "Has RRule", "If the entry has complex recurrence rules.", G_TYPE_BOOLEAN, true, 0, 0, FALSE },
        { "multi-days", 33, "Multi days", "If the start date and the end date is not equal.", G_TYPE_BOOLEAN, false, 0, 0, FALSE },
        { "alarm-code", 26, "Alarm Code", "The coded alarm type.", TAV_TYPE_CALENDAR_ALARM_CODE, true },
        { "repeat-code", 27, "Repeat Code", "The coded repeat type.", TAV_TYPE_CALENDAR_REPEAT_CODE, true },
        { "has-repeat", 34, "Has repeat", "If the entry is a repeating event.", G_TYPE_BOOLEAN, false, 0, 0, FALSE },
        { "has-alarm", 35, "Has alarm", "If the entry has an alarm attached.", G_TYPE_BOOLEAN, false, 0, 0, FALSE },
        { "has-birthday", 36, "Birthay", "If the entry has a birthday attached.", G_TYPE_BOOLEAN, true, 0, 0, FALSE },
        { "show-until", 38, "ShowUntil", "whether until button has to be shown.", G_TYPE_BOOLEAN, true, 0, 0, TRUE },
        { "birth-year", 39, "Birth-Year", "Birth year of the contact", G_TYPE_INT, true, G_MININT, G_MAXINT, -1 },
    };

    auto *klass = static_cast<GObjectClass *> (g_type_class_ref (TAV_TYPE_CALENDAR_ENTRY));
    guint n = 0;
    g_free (g_object_class_list_properties (klass, &n));
    EXPECT_EQ (n, G_N_ELEMENTS (rows));

    for (const auto &row : rows) {
        SCOPED_TRACE (row.name);
        GParamSpec *p = g_object_class_find_property (klass, row.name);
        ASSERT_NE (p, nullptr);
        EXPECT_EQ (p->param_id, row.id);
        EXPECT_STREQ (g_param_spec_get_nick (p), row.nick);
        EXPECT_STREQ (g_param_spec_get_blurb (p), row.blurb);
        EXPECT_EQ (p->value_type, row.type);
        EXPECT_TRUE (p->flags & G_PARAM_READABLE);
        EXPECT_EQ (bool (p->flags & G_PARAM_WRITABLE), row.writable);
        if (row.type == G_TYPE_INT) {
            auto *ip = G_PARAM_SPEC_INT (p);
            EXPECT_EQ (ip->minimum, row.min);
            EXPECT_EQ (ip->maximum, row.max);
            EXPECT_EQ (ip->default_value, row.def);
        } else if (row.type == G_TYPE_BOOLEAN) {
            EXPECT_EQ (G_PARAM_SPEC_BOOLEAN (p)->default_value, row.def);
        } else if (G_TYPE_IS_ENUM (row.type)) {
            EXPECT_EQ (G_PARAM_SPEC_ENUM (p)->default_value, 0);
        } else if (row.type == G_TYPE_STRING) {
            EXPECT_EQ (G_PARAM_SPEC_STRING (p)->default_value, nullptr);
        }
    }
    g_type_class_unref (klass);
}

TEST (CalendarEntry, FreshEntryStartsNowWithAZeroedRecord)
{
    time_t before = time (nullptr);
    auto entry = adoptGRef (tav_calendar_entry_new ());
    time_t after = time (nullptr);

    time_t created = tav_calendar_entry_get_created_time (entry.get ());
    EXPECT_GE (created, before);
    EXPECT_LE (created, after);
    EXPECT_EQ (get_int (entry.get (), "created-time"), int (created));

    struct tm now {};
    localtime_r (&created, &now);
    TavTimestamp *start = nullptr;
    g_object_get (entry.get (), "start-timestamp", &start, nullptr);
    ASSERT_NE (start, nullptr);
    EXPECT_EQ (start->date.year, now.tm_year + 1900);
    EXPECT_EQ (start->date.month, now.tm_mon);
    EXPECT_EQ (start->date.day, now.tm_mday);
    EXPECT_EQ (start->time.hour, now.tm_hour);
    tav_timestamp_free (start);
    EXPECT_EQ (to_text (get_date (entry.get (), "end-date")), to_text (get_date (entry.get (), "start-date")));

    /* The advertised defaults of these two are not what a new record holds. */
    EXPECT_FALSE (get_bool (entry.get (), "show-until"));
    EXPECT_EQ (get_int (entry.get (), "birth-year"), 0);
    EXPECT_FALSE (get_bool (entry.get (), "all-day"));
    EXPECT_EQ (get_string (entry.get (), "title"), "(null)");
    EXPECT_EQ (get_int (entry.get (), "color"), TavCalendarColorDarkBlue);
    EXPECT_EQ (to_text (get_date (entry.get (), "modification-date")), "0000-01-00");
}

TEST (CalendarEntry, LazyValuesAreCreatedOnFirstRead)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavDate end = date (2009, 4, 20);
    g_object_set (entry.get (), "end-date", &end, nullptr);

    TavTime alarm = get_time (entry.get (), "alarm-time");
    EXPECT_EQ (alarm.hour, 12);
    EXPECT_EQ (alarm.minute, 0);
    EXPECT_EQ (to_text (get_date (entry.get (), "end-repetition-date")), "2009-05-20");

    /* Once read, the repetition date is stored: moving the end keeps it. */
    TavDate later = date (2009, 5, 1);
    g_object_set (entry.get (), "end-date", &later, nullptr);
    EXPECT_EQ (to_text (get_date (entry.get (), "end-repetition-date")), "2009-05-20");
}

TEST (CalendarEntry, DateAndTimePropertiesRoundTrip)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavTimestamp start = at (2009, 2, 5, 9, 5);
    TavDate end_date = date (2009, 2, 7);
    TavTime end_time = hm (17, 45);
    TavDate mod_date = date (2008, 11, 31);
    TavTime mod_time = hm (23, 59);
    g_object_set (entry.get (), "start-timestamp", &start, "end-date", &end_date, "end-time", &end_time,
                  "modification-date", &mod_date, "modification-time", &mod_time, nullptr);

    EXPECT_EQ (get_int (entry.get (), "start-year"), 2009);
    EXPECT_EQ (get_int (entry.get (), "start-month"), 2);
    EXPECT_EQ (get_int (entry.get (), "start-day"), 5);
    EXPECT_EQ (get_int (entry.get (), "start-hour"), 9);
    EXPECT_EQ (get_int (entry.get (), "start-minute"), 5);
    EXPECT_EQ (get_int (entry.get (), "end-day"), 7);
    EXPECT_EQ (get_int (entry.get (), "end-hour"), 17);
    EXPECT_EQ (get_int (entry.get (), "end-minute"), 45);
    EXPECT_EQ (to_text (get_date (entry.get (), "modification-date")), "2008-12-31");
    TavTime mt = get_time (entry.get (), "modification-time");
    EXPECT_EQ (mt.hour * 100 + mt.minute, 2359);
    /* 5 March 2009 was a Thursday, 7 March a Saturday. */
    EXPECT_EQ (get_int (entry.get (), "start-week-day"), 4);
    EXPECT_EQ (get_int (entry.get (), "end-week-day"), 6);
    EXPECT_TRUE (get_bool (entry.get (), "multi-days"));
    EXPECT_TRUE (tav_calendar_entry_is_multi_days (entry.get ()));

    g_object_set (entry.get (), "end-year", 2009, "end-month", 2, "end-day", 5, nullptr);
    EXPECT_FALSE (get_bool (entry.get (), "multi-days"));
    TavTime st = get_time (entry.get (), "start-time");
    EXPECT_EQ (st.hour * 100 + st.minute, 905);

    g_object_set (entry.get (), "repeat-code", TavCalendarRepeatsEveryWeek, "alarm-code", TavCalendarAlarm5Min,
                  "birth-year", -1, "show-until", TRUE, nullptr);
    EXPECT_TRUE (get_bool (entry.get (), "has-repeat"));
    EXPECT_TRUE (get_bool (entry.get (), "has-alarm"));
    EXPECT_EQ (get_int (entry.get (), "birth-year"), -1);
    EXPECT_TRUE (get_bool (entry.get (), "show-until"));
}

TEST (CalendarEntry, WeekdayReadDoesNotMoveTheClockTime)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "start-year", 2010, "start-month", 1, "start-day", 31, "start-hour", 10, nullptr);
    /* 31 February normalises to 3 March 2010, a Wednesday. */
    EXPECT_EQ (get_int (entry.get (), "start-week-day"), 3);
    EXPECT_EQ (to_text (get_date (entry.get (), "start-date")), "2010-03-03");
    EXPECT_EQ (get_int (entry.get (), "start-hour"), 10);
}

TEST (CalendarEntry, OutOfRangeValuesAreRejected)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "start-month", 4, "end-hour", 7, nullptr);
    LogCapture capture;
    g_object_set (entry.get (), "start-month", 12, nullptr);
    g_object_set (entry.get (), "end-hour", 24, nullptr);
    g_object_set (entry.get (), "start-day", 0, nullptr);
    EXPECT_EQ (get_int (entry.get (), "start-month"), 4);
    EXPECT_EQ (get_int (entry.get (), "end-hour"), 7);
    int warnings = 0;
    for (const auto &l : capture.lines ())
        warnings += l.kind == LoggedLine::GLibWarning && l.message.find ("out of range") != std::string::npos;
    EXPECT_EQ (warnings, 3) << capture.dump ();
}

/* Text writes and UTF-8 repair ------------------------------------------------ */

TEST (CalendarEntry, InvalidUtf8InTitleAndDescriptionIsRepaired)
{
    struct Row {
        const char *label;
        const char *property;
        std::string input;
        std::string stored;
        const char *warning; /* nullptr: none */
    } rows[] = {
        { "stray byte in title", "title", "A\xFF" "B", "A?B", "Invalid UTF-8 string received for title." },
        { "valid title", "title", "Caf\xC3\xA9", "Caf\xC3\xA9", nullptr },
        { "overlong lead", "title", "\xC0\x80x", "??x", "Invalid UTF-8 string received for title." },
        { "lead byte cut at the end", "title", "ab\xE2\x82", "ab\xE2\x82", "Invalid UTF-8 string received for title." },
        { "stray byte in description", "description", "x\x80y\xFE", "x?y?",
          "Invalid UTF-8 string received for description." },
        { "location is not checked", "location", "A\xFF" "B", "A\xFF" "B", nullptr },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        auto entry = adoptGRef (tav_calendar_entry_new ());
        LogCapture capture;
        g_object_set (entry.get (), row.property, row.input.c_str (), nullptr);
        EXPECT_EQ (get_string (entry.get (), row.property), row.stored);
        if (row.warning) {
            EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, row.warning), 1) << capture.dump ();
            EXPECT_EQ (capture.count_lines_from (LoggedLine::LibWarning, "tav_calendar_entry_set_property"), 1);
        } else {
            EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
        }
    }
}

TEST (CalendarEntry, TitleAccessorReturnsTheStoredText)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "title", "Dentist", "title", "Dentist 2", nullptr);
    EXPECT_STREQ (tav_calendar_entry_get_title (entry.get ()), "Dentist 2");
    g_object_set (entry.get (), "title", nullptr, nullptr);
    EXPECT_EQ (tav_calendar_entry_get_title (entry.get ()), nullptr);
}

/* Instance cache -------------------------------------------------------------- */

class EntryWithSource : public ::testing::Test {
protected:
    void SetUp () override
    {
        source.reset (tav_memory_source_new ("Work", TavCalendarColorGreen, CalendarSourceTypeLocal));
        TavTimestamp start = at (2009, 2, 2, 10, 0), end = at (2009, 2, 2, 11, 0);
        entry = GRefPtr<TavCalendarEntry> (tav_memory_source_add_event (source.get (), "Weekly", &start, &end));
        g_object_set (entry.get (), "repeat-code", TavCalendarRepeatsEveryWeek, nullptr);
    }
    guint asked () { return tav_memory_source_calls (source.get (), TAV_MEMORY_SLOT_GET_INSTANCES); }
    std::string instances (const TavDateInterval &interval)
    {
        std::string out;
        for (auto *ts = tav_calendar_entry_get_first_instance_timestamp (entry.get (), &interval); ts;
             ts = tav_calendar_entry_get_next_instance_timestamp (entry.get ()))
            out += (out.empty () ? "" : ", ") + to_text (*ts);
        return out;
    }

    MemorySourcePtr source;
    GRefPtr<TavCalendarEntry> entry;
    TavDateInterval march = days (date (2009, 2, 1), date (2009, 2, 31));
};

TEST_F (EntryWithSource, IteratesTheInstancesTheSourceComputed)
{
    EXPECT_EQ (instances (march), "2009-03-02 10:00, 2009-03-09 10:00, 2009-03-16 10:00, 2009-03-23 10:00, "
                                  "2009-03-30 10:00");
    EXPECT_EQ (asked (), 1u);
    /* The same interval again comes from the cache, from the head. */
    EXPECT_EQ (instances (march), "2009-03-02 10:00, 2009-03-09 10:00, 2009-03-16 10:00, 2009-03-23 10:00, "
                                  "2009-03-30 10:00");
    EXPECT_EQ (asked (), 1u);
    /* Past the end the cursor stays at the end. */
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);

    TavDateInterval week = days (date (2009, 2, 10), date (2009, 2, 16));
    EXPECT_EQ (instances (week), "2009-03-16 10:00");
    EXPECT_EQ (asked (), 2u);
    TavDateInterval empty = days (date (2009, 1, 1), date (2009, 1, 28));
    EXPECT_EQ (instances (empty), "");
    EXPECT_EQ (instances (empty), "");
    EXPECT_EQ (asked (), 3u);
}

TEST_F (EntryWithSource, NextBeforeFirstGivesNothing)
{
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);
    tav_calandar_entry_drop_instances (entry.get ());
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);
}

TEST_F (EntryWithSource, WritesThatMoveTheEventDropTheCache)
{
    struct Row {
        const char *label;
        std::function<void (TavCalendarEntry *)> write;
        bool dropped;
    } rows[] = {
        { "start-hour", [] (auto *e) { g_object_set (e, "start-hour", 11, nullptr); }, true },
        { "start-minute", [] (auto *e) { g_object_set (e, "start-minute", 30, nullptr); }, true },
        { "start-year", [] (auto *e) { g_object_set (e, "start-year", 2009, nullptr); }, true },
        { "start-month", [] (auto *e) { g_object_set (e, "start-month", 2, nullptr); }, true },
        { "start-day", [] (auto *e) { g_object_set (e, "start-day", 3, nullptr); }, true },
        { "end-year", [] (auto *e) { g_object_set (e, "end-year", 2009, nullptr); }, true },
        { "end-month", [] (auto *e) { g_object_set (e, "end-month", 2, nullptr); }, true },
        { "end-day", [] (auto *e) { g_object_set (e, "end-day", 2, nullptr); }, true },
        { "end-hour", [] (auto *e) { g_object_set (e, "end-hour", 12, nullptr); }, true },
        { "end-minute", [] (auto *e) { g_object_set (e, "end-minute", 1, nullptr); }, true },
        { "start-date", [] (auto *e) { TavDate d = date (2009, 2, 2); g_object_set (e, "start-date", &d, nullptr); }, true },
        { "start-time", [] (auto *e) { TavTime t = hm (10, 0); g_object_set (e, "start-time", &t, nullptr); }, true },
        { "start-timestamp", [] (auto *e) { TavTimestamp t = at (2009, 2, 2, 10, 0); g_object_set (e, "start-timestamp", &t, nullptr); }, true },
        { "end-date", [] (auto *e) { TavDate d = date (2009, 2, 2); g_object_set (e, "end-date", &d, nullptr); }, true },
        { "end-time", [] (auto *e) { TavTime t = hm (11, 0); g_object_set (e, "end-time", &t, nullptr); }, true },
        { "color", [] (auto *e) { g_object_set (e, "color", TavCalendarColorRed, nullptr); }, true },
        { "repeat-code changed", [] (auto *e) { g_object_set (e, "repeat-code", TavCalendarRepeatsEveryDay, nullptr); }, true },
        { "repeat-code unchanged", [] (auto *e) { g_object_set (e, "repeat-code", get_int (e, "repeat-code"), nullptr); }, false },
        { "end-repetition-date changed", [] (auto *e) { TavDate d = date (2009, 2, 20); g_object_set (e, "end-repetition-date", &d, nullptr); }, true },
        { "end-repetition-date unchanged", [] (auto *e) {
              TavDate *d = nullptr;
              g_object_get (e, "end-repetition-date", &d, nullptr);
              g_object_set (e, "end-repetition-date", d, nullptr);
              tav_date_free (d);
          }, false },
        { "title", [] (auto *e) { g_object_set (e, "title", "Other", nullptr); }, false },
        { "description", [] (auto *e) { g_object_set (e, "description", "Text", nullptr); }, false },
        { "location", [] (auto *e) { g_object_set (e, "location", "Room", nullptr); }, false },
        { "all-day", [] (auto *e) { g_object_set (e, "all-day", TRUE, nullptr); }, false },
        { "has-rrule", [] (auto *e) { tav_calendar_entry_set_has_rrule (e, TRUE); }, false },
        { "alarm-code", [] (auto *e) { g_object_set (e, "alarm-code", TavCalendarAlarm15Min, nullptr); }, false },
        { "alarm-time", [] (auto *e) { TavTime t = hm (8, 0); g_object_set (e, "alarm-time", &t, nullptr); }, false },
        { "num-id", [] (auto *e) { g_object_set (e, "num-id", "mem-1", nullptr); }, false },
        { "created-time", [] (auto *e) { g_object_set (e, "created-time", 1000, nullptr); }, false },
        { "modification-date", [] (auto *e) { TavDate d = date (2009, 0, 1); g_object_set (e, "modification-date", &d, nullptr); }, false },
        { "modified-time-sec", [] (auto *e) { g_object_set (e, "modified-time-sec", 7, nullptr); }, false },
        { "has-birthday", [] (auto *e) { g_object_set (e, "has-birthday", TRUE, nullptr); }, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march);
        guint before = asked ();
        row.write (entry.get ());
        tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march);
        EXPECT_EQ (asked () - before, row.dropped ? 1u : 0u);
    }
}

TEST_F (EntryWithSource, HandedOverInstancesAreUsedWithoutAskingTheSource)
{
    GList *list = nullptr;
    TavTimestamp a = at (2009, 2, 4, 8, 0), b = at (2009, 2, 6, 9, 30);
    list = g_list_append (list, tav_timestamp_copy (&a));
    list = g_list_append (list, tav_timestamp_copy (&b));
    tav_calendar_entry_set_instances (entry.get (), &march, list);
    EXPECT_EQ (instances (march), "2009-03-04 08:00, 2009-03-06 09:30");
    EXPECT_EQ (asked (), 0u);

    tav_calandar_entry_drop_instances (entry.get ());
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);
    instances (march);
    EXPECT_EQ (asked (), 1u);
}

TEST_F (EntryWithSource, AFailingSourceGivesNoInstancesAndIsAskedAgain)
{
    tav_memory_source_fail (source.get (), TAV_MEMORY_SLOT_GET_INSTANCES, CalendarDefaultError);
    EXPECT_EQ (instances (march), "");
    EXPECT_EQ (instances (march), "");
    EXPECT_EQ (asked (), 2u);
    tav_memory_source_heal (source.get (), TAV_MEMORY_SLOT_GET_INSTANCES);
    EXPECT_EQ (instances (march).substr (0, 16), "2009-03-02 10:00");
}

TEST_F (EntryWithSource, VisibilityAndReadOnlyFollowTheSource)
{
    EXPECT_TRUE (tav_calendar_entry_is_visible (entry.get ()));
    EXPECT_FALSE (tav_calendar_entry_is_read_only (entry.get ()));
    g_object_set (source.get (), "visible", FALSE, "read-only", TRUE, nullptr);
    EXPECT_FALSE (tav_calendar_entry_is_visible (entry.get ()));
    EXPECT_TRUE (tav_calendar_entry_is_read_only (entry.get ()));
}

TEST_F (EntryWithSource, DisposedEntryGivesNoInstancesAndFreesHandedLists)
{
    g_object_run_dispose (G_OBJECT (entry.get ()));
    g_object_run_dispose (G_OBJECT (entry.get ()));
    EXPECT_EQ (tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march), nullptr);
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);
    TavTimestamp a = at (2009, 2, 4, 8, 0);
    /* Taken and freed: the sanitizer build would report a leak otherwise. */
    tav_calendar_entry_set_instances (entry.get (), &march, g_list_append (nullptr, tav_timestamp_copy (&a)));
    EXPECT_EQ (tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march), nullptr);
    EXPECT_EQ (asked (), 0u);
}

TEST (CalendarEntry, WithoutSourceIsVisibleWritableAndHasNoInstances)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    EXPECT_TRUE (tav_calendar_entry_is_visible (entry.get ()));
    EXPECT_FALSE (tav_calendar_entry_is_read_only (entry.get ()));

    TavDateInterval interval = days (date (2009, 0, 1), date (2009, 0, 31));
    LogCapture capture;
    EXPECT_EQ (tav_calendar_entry_get_first_instance_timestamp (entry.get (), &interval), nullptr);
    EXPECT_CRITICAL (capture, "TAV_IS_CALENDAR_SOURCE(entry->priv->source)");
}

/* Equality and order ---------------------------------------------------------- */

TEST (CalendarEntry, EqualityIsByIdWithinSources)
{
    MemorySourcePtr work (tav_memory_source_new ("Work", TavCalendarColorRed, CalendarSourceTypeLocal));
    auto make = [&] (GType type, const char *id, bool with_source) {
        auto e = adoptGRef (TAV_CALENDAR_ENTRY (g_object_new (type, "num-id", id, nullptr)));
        if (with_source)
            g_object_set (e.get (), "source", work.get (), nullptr);
        return e;
    };
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    auto in_home = [&] (const char *id) {
        auto e = adoptGRef (TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, "num-id", id, "source",
                                                              home.get (), nullptr)));
        return e;
    };
    auto same = make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true);
    struct Row {
        const char *label;
        GRefPtr<TavCalendarEntry> a, b;
        gboolean equal;
    } rows[] = {
        { "same object", same, same, TRUE },
        { "IDs differing in case", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), make (TAV_TYPE_CALENDAR_ENTRY, "ab1", true), TRUE },
        { "different IDs", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), make (TAV_TYPE_CALENDAR_ENTRY, "AB2", true), FALSE },
        { "first without source", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", false), make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), FALSE },
        { "second without source", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), make (TAV_TYPE_CALENDAR_ENTRY, "AB1", false), FALSE },
        { "event and task", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), make (TAV_TYPE_CALENDAR_TASK, "AB1", true), FALSE },
        { "two tasks", make (TAV_TYPE_CALENDAR_TASK, "t1", true), make (TAV_TYPE_CALENDAR_TASK, "T1", true), TRUE },
        { "no IDs yet", make (TAV_TYPE_CALENDAR_ENTRY, nullptr, true), make (TAV_TYPE_CALENDAR_ENTRY, nullptr, true), FALSE },
        /* Only the IDs count, not which calendar holds them. */
        { "same ID in another source", make (TAV_TYPE_CALENDAR_ENTRY, "AB1", true), in_home ("ab1"), TRUE },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        EXPECT_EQ (tav_calendar_entry_is_equal (row.a.get (), row.b.get ()), row.equal);
        EXPECT_EQ (tav_calendar_entry_is_equal (row.b.get (), row.a.get ()), row.equal);
    }
}

TEST (CalendarEntry, StartTimeOrderLooksAtTheTimeOfDayOnly)
{
    auto make = [] (int year, int day, int hour, int minute) {
        auto e = adoptGRef (tav_calendar_entry_new ());
        g_object_set (e.get (), "start-year", year, "start-day", day, "start-hour", hour, "start-minute", minute,
                      nullptr);
        return e;
    };
    auto early_late_day = make (2010, 20, 8, 15);
    auto late_early_day = make (2001, 1, 9, 0);
    auto same_time = make (2005, 5, 8, 15);
    auto later_minute = make (2005, 5, 8, 40);
    EXPECT_LT (tav_calendar_entry_compare_start_time (early_late_day.get (), late_early_day.get ()), 0);
    EXPECT_GT (tav_calendar_entry_compare_start_time (late_early_day.get (), early_late_day.get ()), 0);
    EXPECT_EQ (tav_calendar_entry_compare_start_time (early_late_day.get (), same_time.get ()), 0);
    EXPECT_LT (tav_calendar_entry_compare_start_time (same_time.get (), later_minute.get ()), 0);
}

/* Bad input --------------------------------------------------------------------- */

TEST (CalendarEntry, NonEntriesGiveTheCriticalAndANeutralResult)
{
    auto object = adoptGRef (static_cast<GObject *> (g_object_new (G_TYPE_OBJECT, nullptr)));
    auto *bad = reinterpret_cast<TavCalendarEntry *> (object.get ());
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavDateInterval interval = days (date (2009, 0, 1), date (2009, 0, 2));

    struct Row {
        const char *label;
        std::function<bool ()> call; /* TRUE when the result is the neutral one */
        const char *condition;
    } rows[] = {
        { "get_title", [&] { return g_strcmp0 (tav_calendar_entry_get_title (bad), "(NotAnEntry)") == 0; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "get_title NULL", [&] { return g_strcmp0 (tav_calendar_entry_get_title (nullptr), "(NotAnEntry)") == 0; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "get_created_time", [&] { return tav_calendar_entry_get_created_time (bad) == 0; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "is_all_day", [&] { return !tav_calendar_entry_is_all_day (bad); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "has_rrule", [&] { return !tav_calendar_entry_has_rrule (bad); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "set_has_rrule", [&] { tav_calendar_entry_set_has_rrule (bad, TRUE); return true; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "has_bday", [&] { return !tav_calendar_entry_has_bday (bad); }, "TAV_CALENDAR_ENTRY(entry)" },
        { "is_multi_days", [&] { return !tav_calendar_entry_is_multi_days (bad); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "is_visible", [&] { return !tav_calendar_entry_is_visible (bad); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "is_read_only", [&] { return tav_calendar_entry_is_read_only (bad) == TRUE; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "is_equal", [&] { return !tav_calendar_entry_is_equal (bad, entry.get ()); }, "TAV_IS_CALENDAR_ENTRY(entry1) && TAV_IS_CALENDAR_ENTRY(entry2)" },
        { "compare first", [&] { return tav_calendar_entry_compare_start_time (bad, entry.get ()) == 0; }, "TAV_IS_CALENDAR_ENTRY(entry1)" },
        { "compare second", [&] { return tav_calendar_entry_compare_start_time (entry.get (), bad) == 0; }, "TAV_IS_CALENDAR_ENTRY(entry2)" },
        { "first instance", [&] { return !tav_calendar_entry_get_first_instance_timestamp (bad, &interval); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "next instance", [&] { return !tav_calendar_entry_get_next_instance_timestamp (bad); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "set_instances", [&] { tav_calendar_entry_set_instances (bad, &interval, nullptr); return true; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "set_instances NULL interval", [&] {
              TavTimestamp ts = at (2009, 0, 1, 0, 0);
              tav_calendar_entry_set_instances (entry.get (), nullptr, g_list_append (nullptr, tav_timestamp_copy (&ts)));
              return true;
          }, "interval != NULL" },
        { "drop_instances", [&] { tav_calandar_entry_drop_instances (bad); return true; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "debug_print", [&] { tav_calendar_entry_debug_print (bad); return true; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        LogCapture capture;
        EXPECT_TRUE (row.call ());
        EXPECT_CRITICAL (capture, row.condition);
    }

    LogCapture capture;
    EXPECT_FALSE (tav_calendar_entry_has_bday (nullptr));
    EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
}

TEST (CalendarEntry, FirstInstanceNeedsAnInterval)
{
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorBlue, CalendarSourceTypeLocal));
    TavTimestamp start = at (2009, 0, 1, 10, 0);
    TavCalendarEntry *entry = tav_memory_source_add_event (source.get (), "x", &start, &start);
    LogCapture capture;
    EXPECT_EQ (tav_calendar_entry_get_first_instance_timestamp (entry, nullptr), nullptr);
    EXPECT_CRITICAL (capture, "interval != NULL");
    EXPECT_EQ (tav_memory_source_calls (source.get (), TAV_MEMORY_SLOT_GET_INSTANCES), 0u);
}

/* Debug output ------------------------------------------------------------------ */

std::string *s_printed = nullptr;
void collect_print (const char *text)
{
    if (s_printed)
        *s_printed += text;
}

TEST (CalendarEntry, DebugPrintShowsTextsAndTimes)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavTimestamp start = at (2009, 2, 5, 9, 5);
    g_object_set (entry.get (), "title", "Lunch", "description", "with Ann", "location", "Cafe", "start-timestamp",
                  &start, "end-year", 2009, "end-month", 2, "end-day", 6, "end-hour", 14, "end-minute", 0, nullptr);
    std::string printed;
    s_printed = &printed;
    GPrintFunc old = g_set_print_handler (collect_print);
    tav_calendar_entry_debug_print (entry.get ());
    g_set_print_handler (old);
    s_printed = nullptr;

    char head[64];
    g_snprintf (head, sizeof head, "--------- entry: %p ---------\n", static_cast<void *> (entry.get ()));
    EXPECT_EQ (printed, std::string (head) + "   title       : Lunch\n"
                                             "   description : with Ann\n"
                                             "   location    : Cafe\n"
                                             "   start date  : 05-02-2009\n"
                                             "   start time  : 09:05\n"
                                             "   end date    : 06-02-2009\n"
                                             "   end time    : 14:00\n"
                                             "-----------------------------\n");
}

/* Tasks and notes --------------------------------------------------------------- */

TEST (CalendarTask, IsAllDayNeverMultiDayAndCanBeDone)
{
    auto task = adoptGRef (TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, nullptr)));
    EXPECT_TRUE (TAV_IS_CALENDAR_ENTRY (task.get ()));
    EXPECT_STREQ (G_OBJECT_TYPE_NAME (task.get ()), "TavCalendarTask");
    EXPECT_TRUE (get_bool (task.get (), "all-day"));
    EXPECT_FALSE (get_bool (task.get (), "done"));
    g_object_set (task.get (), "done", TRUE, nullptr);
    EXPECT_TRUE (get_bool (task.get (), "done"));

    /* Even across days a task is not shown as a span. */
    g_object_set (task.get (), "start-day", 1, "end-day", 9, nullptr);
    EXPECT_FALSE (get_bool (task.get (), "multi-days"));
    EXPECT_TRUE (tav_calendar_entry_is_multi_days (TAV_CALENDAR_ENTRY (task.get ())));

    GParamSpec *done = g_object_class_find_property (G_OBJECT_GET_CLASS (task.get ()), "done");
    ASSERT_NE (done, nullptr);
    EXPECT_STREQ (g_param_spec_get_nick (done), "done");
    EXPECT_STREQ (g_param_spec_get_blurb (done), "If the task is finished.");
    EXPECT_FALSE (G_PARAM_SPEC_BOOLEAN (done)->default_value);
}

TEST (CalendarNote, IsAnAllDayEntry)
{
    auto note = adoptGRef (tav_calendar_note_new ());
    EXPECT_TRUE (TAV_IS_CALENDAR_NOTE (note.get ()));
    EXPECT_TRUE (TAV_IS_CALENDAR_ENTRY (note.get ()));
    EXPECT_FALSE (TAV_IS_CALENDAR_TASK (note.get ()));
    EXPECT_STREQ (G_OBJECT_TYPE_NAME (note.get ()), "TavCalendarNote");
    EXPECT_TRUE (tav_calendar_entry_is_all_day (TAV_CALENDAR_ENTRY (note.get ())));
    guint n = 0;
    GParamSpec **own = g_object_class_list_properties (G_OBJECT_GET_CLASS (note.get ()), &n);
    g_free (own);
    guint entry_n = 0;
    auto *entry_class = static_cast<GObjectClass *> (g_type_class_ref (TAV_TYPE_CALENDAR_ENTRY));
    g_free (g_object_class_list_properties (entry_class, &entry_n));
    g_type_class_unref (entry_class);
    EXPECT_EQ (n, entry_n);
}

TEST (CalendarEntry, ObjectsAreFinalizedWhenTheLastReferenceGoes)
{
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorBlue, CalendarSourceTypeLocal));
    for (GType type : { TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_CALENDAR_TASK, TAV_TYPE_CALENDAR_NOTE }) {
        SCOPED_TRACE (g_type_name (type));
        auto *object = static_cast<GObject *> (g_object_new (type, "source", source.get (), "title", "t", nullptr));
        TavDateInterval interval = days (date (2009, 0, 1), date (2009, 0, 9));
        tav_calendar_entry_get_first_instance_timestamp (TAV_CALENDAR_ENTRY (object), &interval);
        gpointer watch = object;
        g_object_add_weak_pointer (object, &watch);
        g_object_unref (object);
        EXPECT_EQ (watch, nullptr);
    }
}

TEST (CalendarEntry, InternalReadsAgreeWithTheProperties)
{
    MemorySourcePtr source (tav_memory_source_new ("Work", TavCalendarColorYellow, CalendarSourceTypeLocal));
    struct Row {
        const char *label;
        TavTimestamp start, end;
        bool with_source;
    } rows[] = {
        { "one hour", at (2009, 2, 5, 9, 5), at (2009, 2, 5, 10, 5), true },
        { "over midnight", at (2009, 11, 31, 23, 30), at (2010, 0, 1, 0, 30), false },
        { "first of 1970", at (1970, 0, 1, 0, 0), at (1970, 0, 1, 0, 0), true },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        auto entry = adoptGRef (tav_calendar_entry_new ());
        g_object_set (entry.get (), "start-timestamp", &row.start, "end-date", &row.end.date, "end-time",
                      &row.end.time, nullptr);
        if (row.with_source)
            tav_memory_source_add (source.get (), entry.get ());
        auto span = tav::model::entry_span (entry.get ());
        TavTimestamp *start = nullptr;
        g_object_get (entry.get (), "start-timestamp", &start, nullptr);
        EXPECT_EQ (to_text (span.start), to_text (*start));
        tav_timestamp_free (start);
        EXPECT_EQ (to_text (span.end.date), to_text (get_date (entry.get (), "end-date")));
        TavTime end_time = get_time (entry.get (), "end-time");
        EXPECT_EQ (span.end.time.hour * 60 + span.end.time.minute, end_time.hour * 60 + end_time.minute);
        EXPECT_EQ (tav::model::entry_color (entry.get ()), get_int (entry.get (), "color"));
        EXPECT_EQ (tav::model::entry_source (entry.get ()) != nullptr, row.with_source);
        EXPECT_EQ (std::string (tav::model::entry_num_id (entry.get ()) ? tav::model::entry_num_id (entry.get ()) : "(null)"),
                   get_string (entry.get (), "num-id"));
        if (row.with_source)
            tav_memory_source_remove (source.get (), entry.get ());
    }
}

} // namespace
