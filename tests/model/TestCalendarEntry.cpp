/* Calendar entries, tasks and notes through their public interface. */

#include <calendarui.h>

#include <ctime>
#include <functional>
#include <string>

#include "ModelTestUtil.h"
#include "TavCalendarEntryInternal.h"
#include "TavMemorySource.h"
#include "TestSupport.h"

using namespace tav::test;
using tav::adoptGRef;
using tav::GRefPtr;

namespace {

TEST (CalendarEntry, PropertiesCarryTheirNamesTextsTypesAndRanges)
{
    expect_properties (TAV_TYPE_CALENDAR_ENTRY, {
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
    });
}

TEST (CalendarEntry, FreshEntryStartsNowWithAZeroedRecordAndLazyValues)
{
    time_t before = time (nullptr);
    auto entry = adoptGRef (tav_calendar_entry_new ());
    time_t created = tav_calendar_entry_get_created_time (entry.get ());
    EXPECT_GE (created, before);
    EXPECT_LE (created, time (nullptr));
    EXPECT_EQ (get_int (entry.get (), "created-time"), int (created));

    struct tm now {};
    localtime_r (&created, &now);
    char hour[32];
    strftime (hour, sizeof hour, "%Y-%m-%d %H:", &now);
    EXPECT_EQ (get_text (entry.get (), "start-timestamp").substr (0, 14), hour);
    EXPECT_EQ (get_text (entry.get (), "end-date"), get_text (entry.get (), "start-date"));

    /* The advertised defaults of these two are not what a new record holds. */
    EXPECT_FALSE (get_bool (entry.get (), "show-until"));
    EXPECT_EQ (get_int (entry.get (), "birth-year"), 0);
    EXPECT_FALSE (get_bool (entry.get (), "all-day"));
    EXPECT_EQ (get_string (entry.get (), "title"), "(null)");
    EXPECT_EQ (get_int (entry.get (), "color"), TavCalendarColorDarkBlue);
    EXPECT_EQ (get_text (entry.get (), "modification-date"), "0000-01-00");

    /* Values made on first read: the alarm time and the repetition end,
     * which once read is stored and no longer follows the end date. */
    TavDate end = date (2009, 4, 20), later = date (2009, 5, 1);
    g_object_set (entry.get (), "end-date", &end, nullptr);
    EXPECT_EQ (get_text (entry.get (), "alarm-time"), "12:00");
    EXPECT_EQ (get_text (entry.get (), "end-repetition-date"), "2009-05-20");
    g_object_set (entry.get (), "end-date", &later, nullptr);
    EXPECT_EQ (get_text (entry.get (), "end-repetition-date"), "2009-05-20");
}

TEST (CalendarEntry, DateAndTimePropertiesAgree)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavTimestamp start = at (2009, 2, 5, 9, 5);
    TavDate end_date = date (2009, 2, 7), mod_date = date (2008, 11, 31);
    TavTime end_time = hm (17, 45), mod_time = hm (23, 59);
    g_object_set (entry.get (), "start-timestamp", &start, "end-date", &end_date, "end-time", &end_time,
                  "modification-date", &mod_date, "modification-time", &mod_time, nullptr);
    /* 5 March 2009 was a Thursday, 7 March a Saturday. */
    const std::pair<const char *, int> ints[] = {
        { "start-year", 2009 }, { "start-month", 2 }, { "start-day", 5 }, { "start-hour", 9 }, { "start-minute", 5 },
        { "end-year", 2009 }, { "end-month", 2 }, { "end-day", 7 }, { "end-hour", 17 }, { "end-minute", 45 },
        { "start-week-day", 4 }, { "end-week-day", 6 }, { "multi-days", TRUE },
    };
    for (const auto &[name, value] : ints)
        EXPECT_EQ (get_int (entry.get (), name), value) << name;
    EXPECT_EQ (get_text (entry.get (), "modification-date") + " " + get_text (entry.get (), "modification-time"),
               "2008-12-31 23:59");
    EXPECT_TRUE (tav_calendar_entry_is_multi_days (entry.get ()));

    g_object_set (entry.get (), "end-year", 2009, "end-month", 2, "end-day", 5, nullptr);
    EXPECT_FALSE (get_bool (entry.get (), "multi-days"));
    EXPECT_EQ (get_text (entry.get (), "start-time"), "09:05");

    g_object_set (entry.get (), "repeat-code", TavCalendarRepeatsEveryWeek, "alarm-code", TavCalendarAlarm5Min, nullptr);
    EXPECT_TRUE (get_bool (entry.get (), "has-repeat"));
    EXPECT_TRUE (get_bool (entry.get (), "has-alarm"));

    /* 31 February 2010 normalises to 3 March, a Wednesday; the read keeps the clock time. */
    g_object_set (entry.get (), "start-year", 2010, "start-month", 1, "start-day", 31, "start-hour", 10, nullptr);
    EXPECT_EQ (get_int (entry.get (), "start-week-day"), 3);
    EXPECT_EQ (get_text (entry.get (), "start-date"), "2010-03-03");
    EXPECT_EQ (get_int (entry.get (), "start-hour"), 10);
}

TEST (CalendarEntry, InvalidUtf8InTitleAndDescriptionIsRepaired)
{
    /* warning: nullptr for none */
    struct Row { const char *label, *property; std::string input, stored; const char *warning; } rows[] = {
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
        if (row.property == std::string ("title")) {
            EXPECT_EQ (tav_calendar_entry_get_title (entry.get ()), row.stored);
        }
        if (row.warning) {
            EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, row.warning), 1) << capture.dump ();
            EXPECT_EQ (capture.count_lines_from (LoggedLine::LibWarning, "tav_calendar_entry_set_property"), 1);
        } else {
            EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
        }
    }
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
    /* Next before any first, or after a drop, gives nothing. */
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);
    tav_calandar_entry_drop_instances (entry.get ());
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);

    const char *all = "2009-03-02 10:00, 2009-03-09 10:00, 2009-03-16 10:00, 2009-03-23 10:00, 2009-03-30 10:00";
    EXPECT_EQ (instances (march), all);
    EXPECT_EQ (asked (), 1u);
    /* The same interval again comes from the cache, from the head. */
    EXPECT_EQ (instances (march), all);
    EXPECT_EQ (asked (), 1u);
    /* Past the end the cursor stays at the end. */
    EXPECT_EQ (tav_calendar_entry_get_next_instance_timestamp (entry.get ()), nullptr);

    EXPECT_EQ (instances (days (date (2009, 2, 10), date (2009, 2, 16))), "2009-03-16 10:00");
    EXPECT_EQ (asked (), 2u);
    TavDateInterval empty = days (date (2009, 1, 1), date (2009, 1, 28));
    EXPECT_EQ (instances (empty), "");
    EXPECT_EQ (instances (empty), "");
    EXPECT_EQ (asked (), 3u);
}

TEST_F (EntryWithSource, WritesThatMoveTheEventDropTheCache)
{
    TavDate day = date (2009, 2, 2), until = date (2009, 2, 20);
    TavTime ten = hm (10, 0), eleven = hm (11, 0), eight = hm (8, 0);
    TavTimestamp start = at (2009, 2, 2, 10, 0);
    /* value: for ints, enums and booleans; pointer: for texts and boxed values */
    struct Row { const char *property; int value; const void *pointer; bool dropped; } rows[] = {
        { "start-hour", 11, nullptr, true }, { "start-minute", 30, nullptr, true },
        { "start-year", 2009, nullptr, true }, { "start-month", 2, nullptr, true }, { "start-day", 3, nullptr, true },
        { "end-year", 2009, nullptr, true }, { "end-month", 2, nullptr, true }, { "end-day", 2, nullptr, true },
        { "end-hour", 12, nullptr, true }, { "end-minute", 1, nullptr, true }, { "start-date", 0, &day, true },
        { "start-time", 0, &ten, true }, { "start-timestamp", 0, &start, true }, { "end-date", 0, &day, true },
        { "end-time", 0, &eleven, true }, { "color", TavCalendarColorRed, nullptr, true },
        { "repeat-code", TavCalendarRepeatsEveryDay, nullptr, true },
        { "repeat-code", TavCalendarRepeatsEveryDay, nullptr, false }, /* unchanged */
        { "end-repetition-date", 0, &until, true },
        { "end-repetition-date", 0, &until, false }, /* unchanged */
        { "title", 0, "Other", false }, { "all-day", TRUE, nullptr, false },
        { "alarm-code", TavCalendarAlarm15Min, nullptr, false }, { "alarm-time", 0, &eight, false },
        { "num-id", 0, "mem-1", false }, { "has-birthday", TRUE, nullptr, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.property);
        tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march);
        guint before = asked ();
        if (row.pointer)
            g_object_set (entry.get (), row.property, row.pointer, nullptr);
        else
            g_object_set (entry.get (), row.property, row.value, nullptr);
        tav_calendar_entry_get_first_instance_timestamp (entry.get (), &march);
        EXPECT_EQ (asked () - before, row.dropped ? 1u : 0u);
    }
}

TEST_F (EntryWithSource, HandedOverInstancesAreUsedWithoutAskingTheSource)
{
    TavTimestamp a = at (2009, 2, 4, 8, 0), b = at (2009, 2, 6, 9, 30);
    GList *list = g_list_append (g_list_append (nullptr, tav_timestamp_copy (&a)), tav_timestamp_copy (&b));
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

TEST_F (EntryWithSource, VisibilityAndReadOnlyFollowTheSourceIfAny)
{
    auto loose = adoptGRef (tav_calendar_entry_new ());
    g_object_set (source.get (), "visible", FALSE, "read-only", TRUE, nullptr);
    EXPECT_FALSE (tav_calendar_entry_is_visible (entry.get ()));
    EXPECT_TRUE (tav_calendar_entry_is_read_only (entry.get ()));
    g_object_set (source.get (), "visible", TRUE, "read-only", FALSE, nullptr);
    EXPECT_TRUE (tav_calendar_entry_is_visible (entry.get ()));
    EXPECT_FALSE (tav_calendar_entry_is_read_only (entry.get ()));
    EXPECT_TRUE (tav_calendar_entry_is_visible (loose.get ()));
    EXPECT_FALSE (tav_calendar_entry_is_read_only (loose.get ()));

    LogCapture capture;
    EXPECT_EQ (tav_calendar_entry_get_first_instance_timestamp (loose.get (), &march), nullptr);
    EXPECT_CRITICAL (capture, "TAV_IS_CALENDAR_SOURCE(entry->priv->source)");
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

/* Equality and order ---------------------------------------------------------- */

TEST (CalendarEntry, EqualityIsByIdWithinSources)
{
    MemorySourcePtr work (tav_memory_source_new ("Work", TavCalendarColorRed, CalendarSourceTypeLocal));
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    auto make = [] (GType type, const char *id, TavMemorySource *source) {
        return adoptGRef (TAV_CALENDAR_ENTRY (g_object_new (type, "num-id", id, "source", source, nullptr)));
    };
    const GType E = TAV_TYPE_CALENDAR_ENTRY, T = TAV_TYPE_CALENDAR_TASK;
    auto *w = work.get ();
    auto same = make (E, "AB1", w);
    struct Row { const char *label; GRefPtr<TavCalendarEntry> a, b; gboolean equal; } rows[] = {
        { "same object", same, same, TRUE },
        { "IDs differing in case", make (E, "AB1", w), make (E, "ab1", w), TRUE },
        { "different IDs", make (E, "AB1", w), make (E, "AB2", w), FALSE },
        { "one without source", make (E, "AB1", nullptr), make (E, "AB1", w), FALSE },
        { "event and task", make (E, "AB1", w), make (T, "AB1", w), FALSE },
        { "two tasks", make (T, "t1", w), make (T, "T1", w), TRUE },
        { "no IDs yet", make (E, nullptr, w), make (E, nullptr, w), FALSE },
        /* Only the IDs count, not which calendar holds them. */
        { "same ID in another source", make (E, "AB1", w), make (E, "ab1", home.get ()), TRUE },
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
        return adoptGRef (TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, "start-year", year, "start-day",
                                                            day, "start-hour", hour, "start-minute", minute, nullptr)));
    };
    auto early_late_day = make (2010, 20, 8, 15), late_early_day = make (2001, 1, 9, 0);
    auto same_time = make (2005, 5, 8, 15), later_minute = make (2005, 5, 8, 40);
    EXPECT_LT (tav_calendar_entry_compare_start_time (early_late_day.get (), late_early_day.get ()), 0);
    EXPECT_GT (tav_calendar_entry_compare_start_time (late_early_day.get (), early_late_day.get ()), 0);
    EXPECT_EQ (tav_calendar_entry_compare_start_time (early_late_day.get (), same_time.get ()), 0);
    EXPECT_LT (tav_calendar_entry_compare_start_time (same_time.get (), later_minute.get ()), 0);
}

/* Bad input --------------------------------------------------------------------- */

TEST (CalendarEntry, BadArgumentsGiveTheCriticalAndANeutralResult)
{
    auto object = adoptGRef (static_cast<GObject *> (g_object_new (G_TYPE_OBJECT, nullptr)));
    auto *bad = reinterpret_cast<TavCalendarEntry *> (object.get ());
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorBlue, CalendarSourceTypeLocal));
    auto entry = adoptGRef (tav_calendar_entry_new ());
    tav_memory_source_add (source.get (), entry.get ());
    TavDateInterval interval = days (date (2009, 0, 1), date (2009, 0, 2));
    const char *is_entry = "TAV_IS_CALENDAR_ENTRY(entry)";

    expect_criticals ({
        { "get_title", [&] { return g_strcmp0 (tav_calendar_entry_get_title (bad), "(NotAnEntry)") == 0; }, is_entry },
        { "get_title NULL", [&] { return g_strcmp0 (tav_calendar_entry_get_title (nullptr), "(NotAnEntry)") == 0; }, is_entry },
        { "get_created_time", [&] { return tav_calendar_entry_get_created_time (bad) == 0; }, is_entry },
        { "is_all_day", [&] { return !tav_calendar_entry_is_all_day (bad); }, is_entry },
        { "has_rrule", [&] { return !tav_calendar_entry_has_rrule (bad); }, is_entry },
        { "set_has_rrule", [&] { tav_calendar_entry_set_has_rrule (bad, TRUE); return true; }, is_entry },
        { "has_bday", [&] { return !tav_calendar_entry_has_bday (bad); }, "TAV_CALENDAR_ENTRY(entry)" },
        { "is_multi_days", [&] { return !tav_calendar_entry_is_multi_days (bad); }, is_entry },
        { "is_visible", [&] { return !tav_calendar_entry_is_visible (bad); }, is_entry },
        { "is_read_only", [&] { return tav_calendar_entry_is_read_only (bad) == TRUE; }, is_entry },
        { "is_equal", [&] { return !tav_calendar_entry_is_equal (bad, entry.get ()); }, "TAV_IS_CALENDAR_ENTRY(entry1) && TAV_IS_CALENDAR_ENTRY(entry2)" },
        { "compare first", [&] { return tav_calendar_entry_compare_start_time (bad, entry.get ()) == 0; }, "TAV_IS_CALENDAR_ENTRY(entry1)" },
        { "compare second", [&] { return tav_calendar_entry_compare_start_time (entry.get (), bad) == 0; }, "TAV_IS_CALENDAR_ENTRY(entry2)" },
        { "first instance", [&] { return !tav_calendar_entry_get_first_instance_timestamp (bad, &interval); }, is_entry },
        /* Checked before the source is asked. */
        { "first instance NULL interval", [&] { return !tav_calendar_entry_get_first_instance_timestamp (entry.get (), nullptr); }, "interval != NULL" },
        { "next instance", [&] { return !tav_calendar_entry_get_next_instance_timestamp (bad); }, is_entry },
        { "set_instances", [&] { tav_calendar_entry_set_instances (bad, &interval, nullptr); return true; }, is_entry },
        { "set_instances NULL interval", [&] {
              TavTimestamp ts = at (2009, 0, 1, 0, 0);
              tav_calendar_entry_set_instances (entry.get (), nullptr, g_list_append (nullptr, tav_timestamp_copy (&ts)));
              return true;
          }, "interval != NULL" },
        { "drop_instances", [&] { tav_calandar_entry_drop_instances (bad); return true; }, is_entry },
        { "debug_print", [&] { tav_calendar_entry_debug_print (bad); return true; }, is_entry },
    });

    LogCapture capture;
    EXPECT_FALSE (tav_calendar_entry_has_bday (nullptr));
    EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
}

/* Debug output ------------------------------------------------------------------ */

TEST (CalendarEntry, DebugPrintShowsTextsAndTimes)
{
    auto entry = adoptGRef (tav_calendar_entry_new ());
    TavTimestamp start = at (2009, 2, 5, 9, 5);
    g_object_set (entry.get (), "title", "Lunch", "description", "with Ann", "location", "Cafe", "start-timestamp",
                  &start, "end-year", 2009, "end-month", 2, "end-day", 6, "end-hour", 14, "end-minute", 0, nullptr);
    static std::string printed;
    GPrintFunc old = g_set_print_handler ([] (const char *text) { printed += text; });
    tav_calendar_entry_debug_print (entry.get ());
    g_set_print_handler (old);

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

TEST (CalendarTask, TasksAndNotesAreAllDayEntriesAndTasksCanBeDone)
{
    auto note = adoptGRef (tav_calendar_note_new ());
    EXPECT_STREQ (G_OBJECT_TYPE_NAME (note.get ()), "TavCalendarNote");
    EXPECT_TRUE (tav_calendar_entry_is_all_day (TAV_CALENDAR_ENTRY (note.get ())));

    auto task = adoptGRef (TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, nullptr)));
    EXPECT_STREQ (G_OBJECT_TYPE_NAME (task.get ()), "TavCalendarTask");
    EXPECT_TRUE (get_bool (task.get (), "all-day"));
    EXPECT_FALSE (get_bool (task.get (), "done"));
    g_object_set (task.get (), "done", TRUE, nullptr);
    EXPECT_TRUE (get_bool (task.get (), "done"));
    GParamSpec *done = g_object_class_find_property (G_OBJECT_GET_CLASS (task.get ()), "done");
    EXPECT_STREQ (g_param_spec_get_blurb (done), "If the task is finished.");

    /* Even across days a task is not shown as a span. */
    g_object_set (task.get (), "start-day", 1, "end-day", 9, nullptr);
    EXPECT_FALSE (get_bool (task.get (), "multi-days"));
    EXPECT_TRUE (tav_calendar_entry_is_multi_days (TAV_CALENDAR_ENTRY (task.get ())));
}

TEST (CalendarEntry, ObjectsAreFinalizedWhenTheLastReferenceGoes)
{
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorBlue, CalendarSourceTypeLocal));
    TavDateInterval interval = days (date (2009, 0, 1), date (2009, 0, 9));
    for (GType type : { TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_CALENDAR_TASK, TAV_TYPE_CALENDAR_NOTE }) {
        SCOPED_TRACE (g_type_name (type));
        auto *object = static_cast<GObject *> (g_object_new (type, "source", source.get (), "title", "t", nullptr));
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
    /* Within a day with a source, over midnight without, the first of 1970 with. */
    const std::pair<TavTimestamp, TavTimestamp> spans[] = {
        { at (2009, 2, 5, 9, 5), at (2009, 2, 5, 10, 5) }, { at (2009, 11, 31, 23, 30), at (2010, 0, 1, 0, 30) },
        { at (1970, 0, 1, 0, 0), at (1970, 0, 1, 0, 0) },
    };
    for (size_t i = 0; i < G_N_ELEMENTS (spans); ++i) {
        SCOPED_TRACE (i);
        auto entry = adoptGRef (TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, "start-timestamp",
            &spans[i].first, "end-date", &spans[i].second.date, "end-time", &spans[i].second.time, nullptr)));
        if (i != 1)
            tav_memory_source_add (source.get (), entry.get ());
        auto span = tav::model::entry_span (entry.get ());
        EXPECT_EQ (to_text (span.start), get_text (entry.get (), "start-timestamp"));
        EXPECT_EQ (to_text (span.end), get_text (entry.get (), "end-date") + " " + get_text (entry.get (), "end-time"));
        EXPECT_EQ (tav::model::entry_color (entry.get ()), get_int (entry.get (), "color"));
        EXPECT_EQ (tav::model::entry_source (entry.get ()) != nullptr, i != 1);
        const char *id = tav::model::entry_num_id (entry.get ());
        EXPECT_EQ (std::string (id ? id : "(null)"), get_string (entry.get (), "num-id"));
        tav_memory_source_remove (source.get (), entry.get ());
    }
}

} // namespace
