/* The event editor driven with real taps and keys over in-memory calendars. */

#include <calendarui.h>
#include <gdk/gdkkeysyms.h>

#include "../model/ModelTestUtil.h"
#include "../platform/PointerDriver.h"
#include "EditorDriver.h"
#include "KivoEntry.h"
#include "KivoNote.h"
#include "KivoPickerButton.h"
#include "TavCalendarEventWindowPrivate.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavMemorySource.h"
#include "TestSupport.h"

using namespace tav::test;

namespace {

/* What a stored entry says, in one line:
 * "title|location|start-end|alarm code|repeat code|timed or all-day". */
std::string summary (TavCalendarEntry *e)
{
    const std::string location = get_string (e, "location");
    return get_string (e, "title") + "|" + (location == "(null)" ? "" : location) + "|" + get_text (e, "start-date") + " "
           + get_text (e, "start-time") + "-" + get_text (e, "end-date") + " " + get_text (e, "end-time") + "|a"
           + std::to_string (get_int (e, "alarm-code")) + "|r" + std::to_string (get_int (e, "repeat-code")) + "|"
           + (get_bool (e, "all-day") ? "all-day" : "timed");
}

/* The single stored event of @source. */
std::string only_event (TavMemorySource *source)
{
    GList *events = tav_memory_source_list_events (source, nullptr);
    const std::string out = g_list_length (events) == 1 ? summary (TAV_CALENDAR_ENTRY (events->data)) : "not one event";
    g_list_free_full (events, g_object_unref);
    return out;
}

TavCalendarEntry *stored_event (TavMemorySource *source, const char *title, const TavDate &day, TavTime from,
                                TavTime to)
{
    const TavTimestamp start = {day, from}, end = {day, to};
    return tav_memory_source_add_event (source, title, &start, &end);
}

GtkWidget *editor_for (TavCalendarEntry *entry, std::initializer_list<TavMemorySource *> sources)
{
    GtkWidget *window = entry ? tav_calendar_event_window_new_from_entry (entry) : tav_calendar_event_window_new ();
    GList *list = nullptr;
    for (TavMemorySource *s : sources)
        list = g_list_append (list, s);
    tav_calendar_event_window_add_sources (TAV_CALENDAR_EVENT_WINDOW (window), list);
    g_list_free (list);
    return window;
}

guint calls (TavMemorySource *s, TavMemorySlot slot)
{
    return tav_memory_source_calls (s, slot);
}

guint writes (TavMemorySource *s)
{
    return calls (s, TAV_MEMORY_SLOT_CREATE_ENTRY) + calls (s, TAV_MEMORY_SLOT_SAVE_ENTRY) + calls (s, TAV_MEMORY_SLOT_DELETE_ENTRY);
}

} // namespace

TEST (EventWindow, NewEventTypedCorrectedAndCreatedOnce)
{
    REQUIRE_XTEST ();
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal));
    const TavDate tomorrow = day_from_today (1), later = day_from_today (3);
    GtkWidget *window = editor_for (nullptr, {home.get ()});
    tav_calendar_event_window_set_selected_date (TAV_CALENDAR_EVENT_WINDOW (window), &tomorrow);
    EditorDriver ed (window);
    EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (window)), TAV_CAL ("cal_bd_new_event"));
    EXPECT_EQ (ed.value ("calendar-button"), "Home");

    ed.type ("title-entry", "dentist");
    ed.type ("location-entry", "main street");
    ed.choose_time ("start-time-button", 10, 0);
    EXPECT_EQ (ed.value ("end-time-button"), "11:00") << "the hour-long event keeps its length";
    /* An end before the start is put back, with the reason. */
    EditorDriver::clear_banners ();
    ed.choose_time ("end-time-button", 9, 0);
    EXPECT_EQ (ed.value ("end-time-button"), "11:00");
    EXPECT_TRUE (ed.has_banner (TAV_CAL ("cal_ib_time_earlier")));
    ed.choose_time ("end-time-button", 12, 30);
    ed.choose_date ("start-date-button", later);
    ed.choose_date ("end-date-button", tomorrow);
    EXPECT_TRUE (ed.has_banner (TAV_CAL ("cal_ib_date_earlier")));
    ASSERT_TRUE (ed.choose ("alarm-button", tav_calendar_alarm_to_string (TavCalendarAlarm15Min)));
    ASSERT_TRUE (ed.choose ("repeat-button", tav_calendar_repeat_to_string (TavCalendarRepeatsEveryWeek)));
    EXPECT_TRUE (gtk_widget_get_visible (ed.field ("until-button"))) << "a repeating event shows its last date";
    EXPECT_EQ (writes (home.get ()), 0u) << "nothing is stored before Save";

    ASSERT_TRUE (ed.save_and_close ()) << "Save closes the editor";
    EXPECT_EQ (ed.signals, std::vector<std::string> {"entry-created"});
    EXPECT_EQ (calls (home.get (), TAV_MEMORY_SLOT_CREATE_ENTRY), 1u);
    EXPECT_EQ (only_event (home.get ()),
               "dentist|main street|" + to_text (later) + " 10:00-" + to_text (later) + " 12:30|a3|r3|timed")
        << "the end followed the start";
    GList *events = tav_memory_source_list_events (home.get (), nullptr);
    EXPECT_EQ (ed.signal_entries[0], events->data);
    g_list_free_full (events, g_object_unref);
}

TEST (EventWindow, EditSavesInPlaceOrMovesToAnotherCalendar)
{
    REQUIRE_XTEST ();
    MemorySourcePtr work (tav_memory_source_new ("Work", TavCalendarColorBlue, CalendarSourceTypeLocal));
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    const TavDate day_ = day_from_today (2);
    TavCalendarEntry *entry = stored_event (work.get (), "review", day_, {14, 0}, {15, 0});
    {
        EditorDriver ed (editor_for (entry, {home.get (), work.get ()}));
        EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (ed.window ())), TAV_CAL ("cal_ti_edit_event"));
        EXPECT_EQ (ed.value ("calendar-button"), "Work") << "the entry's own calendar is chosen";
        char *id = nullptr;
        g_object_get (ed.window (), "entry-id", &id, NULL);
        EXPECT_STREQ (id, "mem-1");
        g_free (id);
        ed.type ("title-entry", " notes");
        ed.choose_time ("start-time-button", 16, 0);
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.signals, std::vector<std::string> {"entry-saved"});
        EXPECT_EQ (ed.signal_entries[0], entry) << "the same object, saved in place";
    }
    EXPECT_EQ (calls (work.get (), TAV_MEMORY_SLOT_SAVE_ENTRY), 1u);
    EXPECT_EQ (writes (work.get ()), 1u);
    const std::string when = to_text (day_) + " 16:00-" + to_text (day_) + " 17:00";
    EXPECT_EQ (summary (entry), "review notes||" + when + "|a0|r0|timed");

    EditorDriver ed (editor_for (entry, {home.get (), work.get ()}));
    ASSERT_TRUE (ed.choose ("calendar-button", "Home"));
    ASSERT_TRUE (ed.save_and_close ());
    EXPECT_EQ (ed.signals, (std::vector<std::string> {"entry-created", "deleting-entry"}));
    EXPECT_EQ (ed.signal_entries[1], entry) << "the old entry is the one deleted";
    EXPECT_EQ (calls (home.get (), TAV_MEMORY_SLOT_CREATE_ENTRY), 1u);
    EXPECT_EQ (calls (work.get (), TAV_MEMORY_SLOT_DELETE_ENTRY), 1u);
    EXPECT_EQ (tav_memory_source_size (work.get ()), 0u);
    ASSERT_EQ (tav_memory_source_size (home.get ()), 1u);
    EXPECT_EQ (only_event (home.get ()), "review notes||" + when + "|a0|r0|timed");
}

TEST (EventWindow, NothingWrittenOnEscapeAndFailuresLeaveTheStoreAlone)
{
    REQUIRE_XTEST ();
    MemorySourcePtr work (tav_memory_source_new ("Work", TavCalendarColorBlue, CalendarSourceTypeLocal));
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    const TavDate day_ = day_from_today (2);
    TavCalendarEntry *entry = stored_event (work.get (), "review", day_, {14, 0}, {15, 0});
    {
        EditorDriver ed (editor_for (entry, {work.get (), home.get ()}));
        ed.type ("title-entry", " changed");
        ed.key (GDK_Escape);
        ASSERT_TRUE (run_main_loop_until ([&] { return !ed.alive (); }, 3000)) << "Escape closes";
    }
    EXPECT_EQ (writes (work.get ()) + writes (home.get ()), 0u);
    const std::string untouched = summary (entry);
    EXPECT_EQ (untouched, "review||" + to_text (day_) + " 14:00-" + to_text (day_) + " 15:00|a0|r0|timed");

    const std::string disk_full = tav::GCharPtr (tav_calendar_get_error_string (CalendarDiskFullError)).get ();
    LogCapture capture;
    /* A refused save: the error is reported and the entry keeps its values. */
    tav_memory_source_fail (work.get (), TAV_MEMORY_SLOT_SAVE_ENTRY, CalendarDiskFullError);
    {
        EditorDriver ed (editor_for (entry, {work.get (), home.get ()}));
        ed.type ("title-entry", " changed");
        ed.choose_time ("start-time-button", 8, 0);
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.errors, std::vector<std::string> {disk_full});
        EXPECT_TRUE (ed.signals.empty ());
    }
    EXPECT_TRUE (capture.has_warning ("Error saving entry.")) << capture.dump ();
    EXPECT_EQ (summary (entry), untouched);

    /* A refused move: nothing deleted from the old calendar. */
    tav_memory_source_fail (home.get (), TAV_MEMORY_SLOT_CREATE_ENTRY, CalendarDiskFullError);
    {
        EditorDriver ed (editor_for (entry, {work.get (), home.get ()}));
        ASSERT_TRUE (ed.choose ("calendar-button", "Home"));
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.errors, std::vector<std::string> {disk_full});
    }
    EXPECT_TRUE (capture.has_warning ("Unable to create entry in database!"));
    EXPECT_TRUE (capture.has_warning ("Unable to proceed with move operation!"));
    EXPECT_EQ (calls (work.get (), TAV_MEMORY_SLOT_DELETE_ENTRY), 0u);
    EXPECT_EQ (tav_memory_source_size (work.get ()), 1u);
    EXPECT_EQ (tav_memory_source_size (home.get ()), 0u);

    /* A move whose delete fails leaves both copies and says so. */
    tav_memory_source_heal (home.get (), TAV_MEMORY_SLOT_CREATE_ENTRY);
    tav_memory_source_fail (work.get (), TAV_MEMORY_SLOT_DELETE_ENTRY, CalendarDefaultError);
    {
        EditorDriver ed (editor_for (entry, {work.get (), home.get ()}));
        ASSERT_TRUE (ed.choose ("calendar-button", "Home"));
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.signals, std::vector<std::string> {"entry-created"});
        EXPECT_EQ (ed.errors.size (), 1u);
    }
    EXPECT_TRUE (capture.has_warning ("Unable to delete event during move operation!"));
    EXPECT_EQ (tav_memory_source_size (work.get ()) + tav_memory_source_size (home.get ()), 2u);

    /* A calendar that answers "duplicate" stored the entry over the old one. */
    tav_memory_source_fail (home.get (), TAV_MEMORY_SLOT_CREATE_ENTRY, CalendarDuplicateError);
    EditorDriver ed (editor_for (nullptr, {home.get ()}));
    ed.type ("title-entry", "again");
    ASSERT_TRUE (ed.save_and_close ());
    EXPECT_EQ (ed.signals, std::vector<std::string> {"entry-saved"});
    EXPECT_TRUE (capture.has_message ("Emitting signal 'entry-saved'."));
}

TEST (EventWindow, SaveRefusesMissingTitlesAndPastAlarms)
{
    REQUIRE_XTEST ();
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    /* Starts in ten minutes: its 15-minute alarm rang five minutes ago. */
    TavTimestamp now;
    tav_date_init_today (&now.date);
    tav_time_init_now (&now.time);
    if (now.time.hour == 0 && now.time.minute < 5)
        GTEST_SKIP () << "the alarm would lie yesterday, which the save test does not compare";
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    const TavTimestamp start = tav::editor::shift_by_minutes (processor, now, 10);
    const TavTimestamp end = tav::editor::shift_by_minutes (processor, start, 60);
    g_object_unref (processor);
    TavCalendarEntry *entry = tav_memory_source_add_event (home.get (), "call", &start, &end);
    g_object_set (entry, "alarm-code", TavCalendarAlarm15Min, NULL);

    EditorDriver ed (editor_for (entry, {home.get ()}));
    /* The alarm picker offers only alarms still ahead; the loaded one is kept. */
    const std::vector<std::string> offered = ed.rows ("alarm-button");
    EXPECT_EQ (std::count (offered.begin (), offered.end (), tav_calendar_alarm_to_string (TavCalendarAlarm30Min)), 0);
    EXPECT_EQ (ed.value ("alarm-button"), tav_calendar_alarm_to_string (TavCalendarAlarm15Min));
    gtk_entry_set_text (GTK_ENTRY (ed.field ("title-entry")), "   ");
    EditorDriver::clear_banners ();
    ed.save ();
    flush_events ();
    ASSERT_TRUE (ed.alive ()) << "the editor stays open";
    EXPECT_TRUE (ed.has_banner (TAV_CAL ("cal_ib_add_title"))) << "white space is no title";
    EXPECT_TRUE (ed.has_banner (TAV_CAL ("cal_ib_alarm_early")));
    EXPECT_EQ (ed.value ("alarm-button"), tav_calendar_alarm_to_string (TavCalendarAlarmNone)) << "the alarm is removed";
    EXPECT_EQ (writes (home.get ()), 0u);

    ed.type ("title-entry", "call bob");
    ASSERT_TRUE (ed.save_and_close ());
    EXPECT_EQ (calls (home.get (), TAV_MEMORY_SLOT_SAVE_ENTRY), 1u);
    EXPECT_TRUE (g_str_has_prefix (summary (entry).c_str (), "   call bob|")) << "an edited title is saved as typed";
    EXPECT_NE (summary (entry).find ("|a0|"), std::string::npos) << summary (entry);
}

TEST (EventWindow, LongTextsComplexRulesAndReadOnlyCalendars)
{
    REQUIRE_XTEST ();
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    MemorySourcePtr shared (tav_memory_source_new ("Holidays", TavCalendarColorYellow, CalendarSourceTypeSync));
    g_object_set (shared.get (), "read-only", TRUE, NULL);
    TavCalendarEntry *entry = stored_event (home.get (), "yoga", day_from_today (1), {18, 0}, {19, 0});
    g_object_set (entry, "repeat-code", TavCalendarRepeatsComplex, "has-rrule", TRUE, NULL);
    {
        EditorDriver ed (editor_for (entry, {shared.get (), home.get ()}));
        EXPECT_EQ (tav_calendar_button_get_calendar_count (TAV_CALENDAR_BUTTON (ed.field ("calendar-button"))), 1)
            << "read-only calendars are not offered";
        /* A description one character over the limit is cut back. */
        EditorDriver::clear_banners ();
        GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (ed.field ("description-view")));
        gtk_text_buffer_set_text (buffer, std::string (16001, 'x').c_str (), -1);
        EXPECT_EQ (gtk_text_buffer_get_char_count (buffer), 16000);
        EXPECT_TRUE (ed.has_banner ("Description limit reached"));
        /* The title takes at most 256 characters and says so. */
        gtk_entry_set_text (GTK_ENTRY (ed.field ("title-entry")), std::string (256, 'y').c_str ());
        ed.type ("title-entry", "z");
        EXPECT_EQ (gtk_entry_get_text_length (GTK_ENTRY (ed.field ("title-entry"))), 256);
        EXPECT_TRUE (ed.has_banner (TAV_COMMON ("ckdg_ib_maximum_characters_reached")));

        /* The complex rule is shown and protected by a question. */
        EXPECT_EQ (ed.value ("repeat-button"), tav_calendar_repeat_to_string (TavCalendarRepeatsComplex));
        ed.answer_next_note (false);
        ed.tap ("repeat-button");
        EXPECT_EQ (ed.asked, TAV_CAL ("cal_nc_edit_complex_recurrence"));
        EXPECT_EQ (kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (ed.field ("repeat-button"))), nullptr)
            << "refused: the picker stays closed";
        EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (ed.window ())), nullptr);
        ASSERT_TRUE (ed.save_and_close ());
    }
    EXPECT_TRUE (get_bool (entry, "has-rrule")) << "an untouched complex rule is kept";
    EXPECT_EQ (get_int (entry, "repeat-code"), TavCalendarRepeatsComplex);
    {
        /* Agreed to: the new choice replaces the rule. */
        EditorDriver ed (editor_for (entry, {home.get ()}));
        ed.answer_next_note (true);
        ASSERT_TRUE (ed.choose ("repeat-button", tav_calendar_repeat_to_string (TavCalendarRepeatsEveryWeek)));
        EXPECT_EQ (ed.rows ("repeat-button").size (), 6u) << "the complex row is gone";
        ASSERT_TRUE (ed.save_and_close ());
    }
    EXPECT_FALSE (get_bool (entry, "has-rrule"));
    EXPECT_EQ (get_int (entry, "repeat-code"), TavCalendarRepeatsEveryWeek);
    EXPECT_EQ (get_string (entry, "description").size (), 16000u);

    /* Only a read-only calendar: nothing can be stored, and the user is told. */
    LogCapture capture;
    EditorDriver ed (editor_for (nullptr, {shared.get ()}));
    EXPECT_EQ (ed.value ("calendar-button"), "");
    ed.type ("title-entry", "trip");
    ASSERT_TRUE (ed.save_and_close ());
    EXPECT_TRUE (capture.has_warning ("No calendar source, can not create entry."));
    EXPECT_EQ (ed.errors.size (), 1u);
    EXPECT_EQ (writes (shared.get ()), 0u);
}

TEST (EventWindow, ArgumentChecks)
{
    REQUIRE_DISPLAY ();
    LogCapture capture;
    GtkWidget *label = gtk_label_new ("x");
    g_object_ref_sink (label);
    TavCalendarEventWindow *bad = reinterpret_cast<TavCalendarEventWindow *> (label);
    const TavDate date = {2026, 1, 1};
    const TavTime time = {9, 0};
    EXPECT_EQ (tav_calendar_event_window_new_from_entry (nullptr), nullptr);
    tav_calendar_event_window_add_source (bad, nullptr);
    tav_calendar_event_window_add_sources (bad, nullptr);
    tav_calendar_event_window_set_selected_date (bad, &date);
    tav_calendar_event_window_set_selected_start_time (bad, &time);
    tav_calendar_event_window_set_selected_end_time (bad, &time);
    tav_calendar_event_window_set_all_day (bad, TRUE);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_EVENT_WINDOW (window)"), 6) << capture.dump ();
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_ENTRY(entry)"), 1);
    GtkWidget *window = tav_calendar_event_window_new ();
    /* Presets: the start moves the event, the end follows the host. */
    EditorDriver::clear_banners ();
    const TavTime two = {14, 0}, half_past_three = {15, 30};
    tav_calendar_event_window_set_selected_start_time (TAV_CALENDAR_EVENT_WINDOW (window), &two);
    EXPECT_EQ (EditorDriver::value_of (window, "end-time-button"), "15:00");
    tav_calendar_event_window_set_selected_end_time (TAV_CALENDAR_EVENT_WINDOW (window), &half_past_three);
    EXPECT_EQ (EditorDriver::value_of (window, "end-time-button"), "15:30");
    tav_calendar_event_window_set_selected_end_time (TAV_CALENDAR_EVENT_WINDOW (window), &time);
    EXPECT_EQ (EditorDriver::value_of (window, "end-time-button"), "15:00") << "an hour after the start";
    EXPECT_TRUE (EditorDriver::banners ().empty ()) << "presets correct silently";
    tav_calendar_event_window_add_source (TAV_CALENDAR_EVENT_WINDOW (window), nullptr);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_SOURCE(source)"), 1);
    const TavDate bad_date = {2026, 1, 30};
    tav_calendar_event_window_set_selected_date (TAV_CALENDAR_EVENT_WINDOW (window), &bad_date);
    EXPECT_EQ (capture.count_criticals ("tav_date_is_valid (date)"), 1) << "30 February is refused";
    gtk_widget_destroy (window);
    g_object_unref (label);
}

TEST (EventWindow, AllDayEventsAndEntriesFromOutsideTheCalendarsYears)
{
    REQUIRE_XTEST ();
    MemorySourcePtr home (tav_memory_source_new ("Home", TavCalendarColorRed, CalendarSourceTypeLocal));
    const TavDate day_ = day_from_today (5);
    {
        GtkWidget *window = editor_for (nullptr, {home.get ()});
        tav_calendar_event_window_set_selected_date (TAV_CALENDAR_EVENT_WINDOW (window), &day_);
        tav_calendar_event_window_set_all_day (TAV_CALENDAR_EVENT_WINDOW (window), TRUE);
        EditorDriver ed (window);
        EXPECT_FALSE (gtk_widget_get_visible (ed.field ("start-time-button")));
        EXPECT_EQ (ed.rows ("alarm-button"), (std::vector<std::string> {tav_calendar_alarm_to_string (TavCalendarAlarmNone),
                                                                         tav_calendar_alarm_to_string (TavCalendarAlarmDayBefore)}));
        EXPECT_FALSE (gtk_widget_get_visible (ed.field ("alarm-time-button")));
        ASSERT_TRUE (ed.choose ("alarm-button", tav_calendar_alarm_to_string (TavCalendarAlarmDayBefore)));
        EXPECT_TRUE (gtk_widget_get_visible (ed.field ("alarm-time-button"))) << "the day-before alarm has a time";
        ed.choose_time ("alarm-time-button", 7, 45);
        ed.type ("title-entry", "holiday");
        ASSERT_TRUE (ed.save_and_close ());
    }
    EXPECT_EQ (only_event (home.get ()), "holiday||" + to_text (day_) + " 00:00-" + to_text (day_) + " 23:59|a7|r0|all-day");
    GList *events = tav_memory_source_list_events (home.get (), nullptr);
    EXPECT_EQ (get_text (events->data, "alarm-time"), "07:45");
    g_list_free_full (events, g_object_unref);

    /* An entry from 2038 with a location that is not UTF-8: shown as well as
     * it can be, saved without losing its dates. */
    LogCapture capture;
    const TavDate far = {2038, 0, 5};
    TavCalendarEntry *entry = stored_event (home.get (), "far away", far, {9, 0}, {10, 0});
    g_object_set (entry, "location", "caf\xe9", NULL);
    EditorDriver ed (editor_for (entry, {home.get ()}));
    EXPECT_EQ (ed.value ("start-date-button"), "05.01.2038");
    EXPECT_TRUE (capture.has_warning ("Invalid UTF-8 string received for location.")) << capture.dump ();
    EXPECT_TRUE (g_str_has_prefix (gtk_entry_get_text (GTK_ENTRY (ed.field ("location-entry"))), "caf"));
    ed.type ("title-entry", " trip");
    ASSERT_TRUE (ed.save_and_close ());
    EXPECT_TRUE (g_str_has_prefix (summary (entry).c_str (), "far away trip|")) << summary (entry);
    EXPECT_NE (summary (entry).find ("|2038-01-05 09:00-2038-01-05 10:00|"), std::string::npos)
        << "the date outside the pickers' years is kept";
    EXPECT_EQ (capture.count_criticals (""), 0) << capture.dump ();
}
