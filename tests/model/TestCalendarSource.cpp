/* The calendar source base class: properties, wrappers, equality. */

#include <calendarui.h>

#include <functional>
#include <string>
#include <vector>

#include "ModelTestUtil.h"
#include "TavMemorySource.h"
#include "TestSupport.h"

using namespace tav::test;
using tav::adoptGRef;
using tav::GRefPtr;

namespace {

TEST (CalendarSource, PropertiesCarryTheirNamesTextsAndDefaults)
{
    expect_properties (TAV_TYPE_CALENDAR_SOURCE, {
        { "id", 2, "Id", "The numerical ID of the calendar source.", G_TYPE_INT, true, G_MININT, G_MAXINT, -1 },
        { "color", 9, "Color", "The color of the entry as an enum code.", TAV_TYPE_CALENDAR_COLOR, true },
        { "title", 1, "Title", "The title of the source.", G_TYPE_STRING, true },
        { "alarm-tone", 10, "Alarm Tone", "The file path of sound file to be used for alarm tones.", G_TYPE_STRING, true },
        { "type", 3, "Type", "The type of the calendar source.", TAV_TYPE_CALENDAR_SOURCE_TYPE, true },
        { "sync-type", 5, "Sync type", "The calendar synchroization method.", TAV_TYPE_CALENDAR_SOURCE_SYNC_TYPE, true },
        { "type-title", 6, "Type title", "The title of the type belongs to the source.", G_TYPE_STRING, false },
        { "visible", 7, "Visible", "If calendar is visible.", G_TYPE_BOOLEAN, true, 0, 0, TRUE },
        { "read-only", 8, "Read only", "If the calendar is non-modifiable.", G_TYPE_BOOLEAN, true },
        { "synchronized", 4, "Synchronized", "If the calendar synchronized.", G_TYPE_BOOLEAN, false },
    });

    auto source = adoptGRef (tav_calendar_source_new ());
    EXPECT_EQ (tav_calendar_source_get_id (source.get ()), -1);
    EXPECT_TRUE (tav_calendar_source_get_visible (source.get ()));
    EXPECT_TRUE (tav_calendar_source_get_writable (source.get ()));
    EXPECT_EQ (tav_calendar_source_get_title (source.get ()), nullptr);
    EXPECT_EQ (tav_calendar_source_get_alarm_tone (source.get ()), nullptr);
    g_object_set (source.get (), "id", 7, "title", "Work", "alarm-tone", "/tones/bell.wav", nullptr);
    EXPECT_EQ (tav_calendar_source_get_id (source.get ()), 7);
    EXPECT_STREQ (tav_calendar_source_get_title (source.get ()), "Work");
    EXPECT_STREQ (tav_calendar_source_get_alarm_tone (source.get ()), "/tones/bell.wav");
}

TEST (CalendarSource, TypeTitleAndSynchronizedFollowTheType)
{
    /* The C locale shows the English texts, never the message IDs. */
    const std::pair<TavCalendarSourceType, const char *> titles[] = {
        { CalendarSourceTypeLocal, "Local" }, { CalendarSourceTypeSmart, "Smart" },
        { CalendarSourceTypeSync, "Synchronized" }, { CalendarSourceTypePrivate, "Local" },
        { CalendarSourceTypeDefaultSync, "Synchronized" },
    };
    auto source = adoptGRef (tav_calendar_source_new ());
    for (const auto &[type, title] : titles) {
        EXPECT_STREQ (tav_calendar_source_type_to_string (type), title) << type;
        g_object_set (source.get (), "type", type, nullptr);
        EXPECT_EQ (get_string (source.get (), "type-title"), title) << type;
    }
    EXPECT_EQ (tav_calendar_source_type_to_string (static_cast<TavCalendarSourceType> (5)), nullptr);

    for (int sync = CalendarSourceSyncNone; sync <= CalendarSourceSyncSubscribed; ++sync) {
        g_object_set (source.get (), "sync-type", sync, nullptr);
        EXPECT_EQ (get_bool (source.get (), "synchronized"), sync != CalendarSourceSyncNone);
    }
}

TEST (CalendarSource, VisibleAndWritableCombine)
{
    struct Row { gboolean visible, read_only, writable, visible_and_writable; } rows[] = {
        { TRUE, FALSE, TRUE, TRUE }, { TRUE, TRUE, FALSE, FALSE }, { FALSE, FALSE, TRUE, FALSE },
        { FALSE, TRUE, FALSE, FALSE },
    };
    auto source = adoptGRef (tav_calendar_source_new ());
    for (const auto &row : rows) {
        SCOPED_TRACE (std::to_string (row.visible) + "/" + std::to_string (row.read_only));
        g_object_set (source.get (), "visible", row.visible, "read-only", row.read_only, nullptr);
        EXPECT_EQ (tav_calendar_source_get_visible (source.get ()), row.visible);
        EXPECT_EQ (tav_calendar_source_get_writable (source.get ()), row.writable);
        EXPECT_EQ (tav_calendar_source_get_visible_and_writable (source.get ()), row.visible_and_writable);
    }
}

TEST (CalendarSource, EqualityByIdOrTitle)
{
    auto make = [] (int id, const char *title) {
        return adoptGRef (TAV_CALENDAR_SOURCE (g_object_new (TAV_TYPE_CALENDAR_SOURCE, "id", id, "title", title,
                                                             nullptr)));
    };
    auto one = make (-1, nullptr);
    struct Row { const char *label; GRefPtr<TavCalendarSource> a, b; gboolean equal; } rows[] = {
        { "same object without title", one, one, TRUE },
        { "no IDs, same title", make (-1, "Work"), make (-1, "Work"), TRUE },
        { "no IDs, other title", make (-1, "Work"), make (-1, "Home"), FALSE },
        { "different IDs, same title", make (3, "Work"), make (4, "Work"), FALSE },
        { "same IDs, other titles", make (3, "Work"), make (3, "Home"), TRUE },
        { "one ID, same title", make (3, "Work"), make (-1, "Work"), TRUE },
        { "no IDs, one title missing", make (-1, "Work"), make (-1, nullptr), FALSE },
        { "no IDs, no titles", make (-1, nullptr), make (-1, nullptr), FALSE },
        { "titles equal as UTF-8", make (-1, "Caf\xC3\xA9"), make (-1, "Caf\xC3\xA9"), TRUE },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        EXPECT_EQ (tav_calendar_source_is_equal (row.a.get (), row.b.get ()), row.equal);
        EXPECT_EQ (tav_calendar_source_is_equal (row.b.get (), row.a.get ()), row.equal);
    }
}

/* The wrappers ------------------------------------------------------------------ */

const TavDateInterval kJanuary = { { 2009, 0, 1 }, { 2009, 0, 31 } };

class Wrappers : public ::testing::Test {
protected:
    struct Row { const char *slot; std::function<int (TavCalendarSource *)> call; int fallback; };
    /* One row per data slot, in the order of TavMemorySlot. */
    std::vector<Row> rows ()
    {
        auto *e = entry.get ();
        auto *t = task.get ();
        auto *n = note.get ();
        return {
            { "create", [] (auto *s) { return tav_calendar_source_create (s); }, 4 },
            { "save", [] (auto *s) { return tav_calendar_source_save (s); }, 4 },
            { "remove", [] (auto *s) { return tav_calendar_source_remove (s); }, 4 },
            { "remove_contents", [] (auto *s) { return tav_calendar_source_remove_contents (s); }, 4 },
            { "exists", [] (auto *s) { return int (tav_calendar_source_exists_by_name (s)); }, FALSE },
            { "export_calendar", [] (auto *s) { return tav_calendar_source_export_calendar (s, nullptr); }, 4 },
            { "event_count", [] (auto *s) { return tav_calendar_source_get_event_count (s); }, -1 },
            { "entry_count", [] (auto *s) { return tav_calendar_source_get_entry_count (s); }, -1 },
            { "create_entry", [e] (auto *s) { return tav_calendar_source_create_entry (s, e); }, 4 },
            { "save_entry", [e] (auto *s) { return tav_calendar_source_save_entry (s, e); }, 4 },
            { "delete_entry", [e] (auto *s) { return tav_calendar_source_delete_entry (s, e); }, 4 },
            { "create_task", [t] (auto *s) { return tav_calendar_source_create_task (s, t); }, 4 },
            { "save_task", [t] (auto *s) { return tav_calendar_source_save_task (s, t); }, 4 },
            { "delete_task", [t] (auto *s) { return tav_calendar_source_delete_task (s, t); }, 4 },
            { "create_note", [n] (auto *s) { return tav_calendar_source_create_note (s, n); }, 4 },
            { "save_note", [n] (auto *s) { return tav_calendar_source_save_note (s, n); }, 4 },
            { "delete_note", [n] (auto *s) { return tav_calendar_source_delete_note (s, n); }, 4 },
            { "get_instances", [e] (auto *s) {
                  GList *list = nullptr;
                  return int (tav_calendar_source_get_instances (s, e, &kJanuary, &list));
              }, FALSE },
        };
    }

    GRefPtr<TavCalendarEntry> entry = adoptGRef (tav_calendar_entry_new ());
    GRefPtr<TavCalendarTask> task = adoptGRef (TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, nullptr)));
    GRefPtr<TavCalendarNote> note = adoptGRef (tav_calendar_note_new ());
    MemorySourcePtr memory { tav_memory_source_new ("Work", TavCalendarColorOrange, CalendarSourceTypeLocal) };
    TavCalendarSource *s = TAV_CALENDAR_SOURCE (memory.get ());
};

TEST_F (Wrappers, ABareSourceWarnsAndStampsAndANonSourceGivesTheCritical)
{
    auto bare = adoptGRef (tav_calendar_source_new ());
    g_object_set (bare.get (), "color", TavCalendarColorGreen, nullptr);
    auto object = adoptGRef (static_cast<GObject *> (g_object_new (G_TYPE_OBJECT, nullptr)));
    for (const auto &row : rows ()) {
        SCOPED_TRACE (row.slot);
        LogCapture capture;
        EXPECT_EQ (row.call (bare.get ()), row.fallback);
        /* create_entry also logs its result, as it does for a filled slot. */
        bool logs_retval = std::string (row.slot) == "create_entry";
        ASSERT_EQ (capture.lines ().size (), logs_retval ? 2u : 1u) << capture.dump ();
        EXPECT_EQ (capture.lines ()[0].kind, LoggedLine::LibWarning);
        EXPECT_EQ (capture.lines ()[0].message, std::string ("The '") + row.slot + "' method is not implemented.");
        EXPECT_EQ (capture.lines ()[0].func.rfind ("tav_calendar_source_", 0), 0u) << capture.lines ()[0].func;
        EXPECT_EQ (capture.has_warning ("retval is 4"), logs_retval);

        capture.clear ();
        EXPECT_EQ (row.call (reinterpret_cast<TavCalendarSource *> (object.get ())), row.fallback);
        EXPECT_EQ (row.call (nullptr), row.fallback);
        EXPECT_EQ (capture.count_criticals ("'TAV_IS_CALENDAR_SOURCE(source)' failed"), 2) << capture.dump ();
        ASSERT_EQ (capture.lines ().size (), 2u);
        expect_bare_function_name (capture.lines ()[0].message);
    }
    /* The empty create slots still stamped their objects. */
    for (auto *object : { entry.get (), TAV_CALENDAR_ENTRY (task.get ()), TAV_CALENDAR_ENTRY (note.get ()) }) {
        TavCalendarSource *stamped = nullptr;
        g_object_get (object, "source", &stamped, nullptr);
        EXPECT_EQ (stamped, bare.get ());
        g_clear_object (&stamped);
        EXPECT_EQ (get_int (object, "color"), TavCalendarColorGreen);
    }
}

TEST_F (Wrappers, WrongObjectKindsGiveTheirCriticals)
{
    auto *entry_as_task = reinterpret_cast<TavCalendarTask *> (entry.get ());
    auto *entry_as_note = reinterpret_cast<TavCalendarNote *> (entry.get ());
    auto *task_as_note = reinterpret_cast<TavCalendarNote *> (task.get ());
    auto object = adoptGRef (static_cast<GObject *> (g_object_new (G_TYPE_OBJECT, nullptr)));
    auto *not_entry = reinterpret_cast<TavCalendarEntry *> (object.get ());
    GList *list = nullptr;
    const char *is_source = "TAV_IS_CALENDAR_SOURCE(source)", *both = "list != NULL && interval != NULL";

    expect_criticals ({
        { "create_entry", [&] { return tav_calendar_source_create_entry (s, not_entry) == 4; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "save_entry", [&] { return tav_calendar_source_save_entry (s, nullptr) == 4; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "delete_entry", [&] { return tav_calendar_source_delete_entry (s, not_entry) == 4; }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "create_task", [&] { return tav_calendar_source_create_task (s, entry_as_task) == 4; }, "TAV_IS_CALENDAR_TASK(task)" },
        { "save_task", [&] { return tav_calendar_source_save_task (s, entry_as_task) == 4; }, "TAV_IS_CALENDAR_TASK(task)" },
        { "delete_task", [&] { return tav_calendar_source_delete_task (s, nullptr) == 4; }, "TAV_IS_CALENDAR_TASK(task)" },
        { "create_note", [&] { return tav_calendar_source_create_note (s, entry_as_note) == 4; }, "TAV_IS_CALENDAR_NOTE(note)" },
        { "save_note", [&] { return tav_calendar_source_save_note (s, task_as_note) == 4; }, "TAV_IS_CALENDAR_NOTE(note)" },
        { "delete_note", [&] { return tav_calendar_source_delete_note (s, entry_as_note) == 4; }, "TAV_IS_CALENDAR_NOTE(note)" },
        { "get_instances entry", [&] { return !tav_calendar_source_get_instances (s, not_entry, &kJanuary, &list); }, "TAV_IS_CALENDAR_ENTRY(entry)" },
        { "get_instances list", [&] { return !tav_calendar_source_get_instances (s, entry.get (), &kJanuary, nullptr); }, both },
        { "get_instances interval", [&] { return !tav_calendar_source_get_instances (s, entry.get (), nullptr, &list); }, both },
        { "is_equal first", [&] { return !tav_calendar_source_is_equal (nullptr, s); }, "TAV_IS_CALENDAR_SOURCE(source1)" },
        { "is_equal second", [&] { return !tav_calendar_source_is_equal (s, nullptr); }, "TAV_IS_CALENDAR_SOURCE(source2)" },
        { "get_id", [&] { return tav_calendar_source_get_id (nullptr) == -1; }, is_source },
        { "get_visible", [&] { return !tav_calendar_source_get_visible (nullptr); }, is_source },
        { "get_writable", [&] { return !tav_calendar_source_get_writable (nullptr); }, is_source },
        { "get_title", [&] { return tav_calendar_source_get_title (nullptr) == nullptr; }, is_source },
    });
    EXPECT_EQ (list, nullptr);
    /* None of the bad calls reached a slot. */
    for (int slot = 0; slot < TAV_MEMORY_N_SLOTS; ++slot)
        EXPECT_EQ (tav_memory_source_calls (memory.get (), TavMemorySlot (slot)), 0u) << slot;
}

TEST_F (Wrappers, FailingSlotsPassTheirStatusThroughAndLeaveTheStoreAlone)
{
    /* Stored, so every slot that could change the store would. */
    tav_memory_source_add (memory.get (), entry.get ());
    auto all = rows ();
    ASSERT_EQ (all.size (), size_t (TAV_MEMORY_N_SLOTS));
    for (int slot = 0; slot < TAV_MEMORY_N_SLOTS; ++slot) {
        SCOPED_TRACE (all[slot].slot);
        ASSERT_STREQ (tav_memory_slot_name (TavMemorySlot (slot)), all[slot].slot);
        /* Count and boolean slots fail with -1 and FALSE, their defaults. */
        for (CalendarUiErrorCode code : { CalendarDiskFullError, CalendarDuplicateError, CalendarInvalidArg }) {
            LogCapture capture;
            tav_memory_source_fail (memory.get (), TavMemorySlot (slot), code);
            EXPECT_EQ (all[slot].call (s), all[slot].fallback == 4 ? int (code) : all[slot].fallback);
        }
        EXPECT_EQ (tav_memory_source_calls (memory.get (), TavMemorySlot (slot)), 3u);
    }
    EXPECT_EQ (tav_memory_source_size (memory.get ()), 1u);
}

TEST_F (Wrappers, CreateWrappersStampSourceAndColourEvenOnFailure)
{
    struct Row {
        const char *label;
        TavMemorySlot slot;
        TavCalendarEntry *object;
        std::function<int ()> call;
        bool logs_retval;
    } rows[] = {
        { "entry", TAV_MEMORY_SLOT_CREATE_ENTRY, entry.get (), [&] { return tav_calendar_source_create_entry (s, entry.get ()); }, true },
        { "task", TAV_MEMORY_SLOT_CREATE_TASK, TAV_CALENDAR_ENTRY (task.get ()), [&] { return tav_calendar_source_create_task (s, task.get ()); }, false },
        { "note", TAV_MEMORY_SLOT_CREATE_NOTE, TAV_CALENDAR_ENTRY (note.get ()), [&] { return tav_calendar_source_create_note (s, note.get ()); }, false },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        tav_memory_source_fail (memory.get (), row.slot, CalendarDiskFullError);
        LogCapture capture;
        EXPECT_EQ (row.call (), CalendarDiskFullError);
        TavCalendarSource *stamped = nullptr;
        g_object_get (row.object, "source", &stamped, nullptr);
        EXPECT_EQ (stamped, s);
        g_clear_object (&stamped);
        EXPECT_EQ (get_int (row.object, "color"), TavCalendarColorOrange);
        EXPECT_EQ (capture.has_warning ("retval is 3"), row.logs_retval) << capture.dump ();
        EXPECT_EQ (tav_memory_source_size (memory.get ()), 0u);

        /* Working again, the object is stored and the result logged. */
        tav_memory_source_heal (memory.get (), row.slot);
        g_object_set (s, "color", TavCalendarColorGreen, nullptr);
        capture.clear ();
        EXPECT_EQ (row.call (), CalendarNoError);
        EXPECT_EQ (get_int (row.object, "color"), TavCalendarColorGreen);
        EXPECT_EQ (capture.has_warning ("retval is 11"), row.logs_retval) << capture.dump ();
        EXPECT_EQ (tav_memory_source_size (memory.get ()), 1u);
        tav_memory_source_remove (memory.get (), row.object);
        g_object_set (s, "color", TavCalendarColorOrange, nullptr);
    }
}

} // namespace
