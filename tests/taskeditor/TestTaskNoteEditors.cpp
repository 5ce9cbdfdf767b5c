/* The task and note editors over calendars kept in memory, driven with real
 * taps and keys. */

#include <calendarui.h>
#include <gdk/gdkkeysyms.h>

#include "../dialogs/EditorDriver.h"
#include "KivoButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "TavMemorySource.h"
#include "../platform/PointerDriver.h"
#include "TestSupport.h"

using namespace tav::test;

namespace {

#define TASK_SIGNALS {"task-created", "task-saved", "deleting-task"}
#define NOTE_SIGNALS {"note-created", "note-saved", "deleting-note"}

struct Calendars {
    MemorySourcePtr home {tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal)};
    MemorySourcePtr work {tav_memory_source_new ("Work", TavCalendarColorOrange, CalendarSourceTypeLocal)};
    MemorySourcePtr holidays {tav_memory_source_new ("Holidays", TavCalendarColorRed, CalendarSourceTypeSync)};
    GList *list = nullptr;

    Calendars ()
    {
        g_object_set (holidays.get (), "read-only", TRUE, NULL);
        list = g_list_append (list, holidays.get ());
        list = g_list_append (list, home.get ());
        list = g_list_append (list, work.get ());
    }
    ~Calendars () { g_list_free (list); }
    TavCalendarSource *source (MemorySourcePtr &p) { return TAV_CALENDAR_SOURCE (p.get ()); }
};

TavCalendarTask *stored_task (TavMemorySource *source, const char *title, const TavDate &due, int alarm = 0)
{
    auto *task = TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, NULL));
    const TavTime noon = {12, 0};
    g_object_set (task, "title", title, "start-date", &due, "end-date", &due, "alarm-code", alarm, "alarm-time",
                  &noon, NULL);
    tav_memory_source_add (source, TAV_CALENDAR_ENTRY (task));
    g_object_unref (task);
    return task;
}

TavCalendarNote *stored_note (TavMemorySource *source, const char *text, const TavDate &modified)
{
    auto *note = TAV_CALENDAR_NOTE (tav_calendar_note_new ());
    const TavTime at = {9, 41};
    g_object_set (note, "title", text, "description", text, "modification-date", &modified, "start-time", &at, NULL);
    tav_memory_source_add (source, TAV_CALENDAR_ENTRY (note));
    g_object_unref (note);
    return note;
}

TavDate days_ago (int days)
{
    TavDate d = day_from_today (0);
    TavCalendarProcessor *p = tav_calendar_processor_new ();
    tav_calendar_processor_dec_date_by_days (p, &d, days);
    g_object_unref (p);
    return d;
}

TavDate date_of (gpointer entry)
{
    TavDate *d = nullptr;
    g_object_get (entry, "start-date", &d, NULL);
    TavDate copy = *d;
    tav_date_free (d);
    return copy;
}

int int_of (gpointer object, const char *property)
{
    int value = 0;
    g_object_get (object, property, &value, NULL);
    return value;
}

GtkWidget *find_named (GtkWidget *root, const char *name)
{
    return EditorDriver::find (root, name);
}

std::string label_text (GtkWidget *dialog, const char *name)
{
    GtkWidget *label = find_named (dialog, name);
    return label && gtk_widget_get_visible (label) ? gtk_label_get_text (GTK_LABEL (label)) : "";
}

/* What the driver saw, as "signal:title ...". */
std::string joined (const EditorDriver &editor)
{
    std::string out;
    for (const std::string &line : editor.signal_titles)
        out += (out.empty () ? "" : " ") + line;
    return out;
}

}  // namespace


TEST (TaskEditor, TypedNewTaskIsCreatedInTheChosenCalendarDueOnItsDateButNotWithoutATitle)
{
    REQUIRE_XTEST ();
    Calendars cals;
    GtkWidget *w = tav_calendar_task_window_new ();
    EXPECT_FALSE (gtk_widget_get_sensitive (find_named (w, "save-button"))) << "nothing to store into yet";
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
    EXPECT_EQ (tav_calendar_button_get_calendar_count (TAV_CALENDAR_BUTTON (find_named (w, "calendar-button"))), 2)
        << "the read-only calendar is not offered";
    EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (w)), "New task");
    EXPECT_FALSE (gtk_widget_get_sensitive (find_named (w, "delete-button")));
    EditorDriver editor (w, TASK_SIGNALS);

    /* A title of only spaces: nothing is stored, nothing said, the window stays. */
    editor.type ("title-entry", "   ");
    editor.save ();
    EXPECT_TRUE (editor.alive ());
    EXPECT_TRUE (EditorDriver::banners ().empty ());
    EXPECT_EQ (tav_memory_source_calls (cals.work.get (), TAV_MEMORY_SLOT_CREATE_TASK), 0u);
    editor.type ("title-entry", "  Buy milk ");
    const TavDate due = day_from_today (3);
    editor.choose_date ("date-button", due);
    ASSERT_TRUE (editor.choose ("calendar-button", "Work"));
    EXPECT_TRUE (editor.save_and_close ());
    EXPECT_EQ (joined (editor), "task-created:Buy milk");
    GList *tasks = tav_memory_source_list_tasks (cals.work.get ());
    ASSERT_EQ (g_list_length (tasks), 1u);
    auto *task = TAV_CALENDAR_TASK (tasks->data);
    const TavDate stored = date_of (task);
    EXPECT_EQ (tav_date_compare (&due, &stored), 0);
    gboolean done = TRUE;
    TavCalendarSource *source = nullptr;
    g_object_get (task, "done", &done, "source", &source, NULL);
    EXPECT_FALSE (done);
    EXPECT_EQ (source, cals.source (cals.work));
    EXPECT_EQ (int_of (task, "alarm-code"), TavCalendarAlarmNone);
    g_object_unref (source);
    g_list_free_full (tasks, g_object_unref);
    EXPECT_EQ (tav_memory_source_size (cals.home.get ()), 0u);
}

TEST (TaskEditor, StoredTaskTickedOffIsSavedInPlaceWithoutItsReminder)
{
    REQUIRE_XTEST ();
    Calendars cals;
    LogCapture capture;
    const TavDate due = day_from_today (5);
    TavCalendarTask *task = stored_task (cals.home.get (), "Pay rent", due, TavCalendarAlarm15Min);
    GtkWidget *w = tav_calendar_task_window_new_from_task (task);
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
    EXPECT_TRUE (capture.has_warning ("Ignoring current alarm setting <3>")) << capture.dump ();
    EXPECT_TRUE (capture.has_warning ("Over-riding it with default value 'DayBefore'"));
    EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (w)), "Edit task");
    EditorDriver editor (w, TASK_SIGNALS);
    EXPECT_EQ (editor.value ("alarm-button"), tav_calendar_alarm_to_string (TavCalendarAlarmDayBefore));

    editor.type ("title-entry", " now");
    editor.tap ("done-button");
    EXPECT_FALSE (gtk_widget_get_sensitive (editor.field ("alarm-button")));
    EXPECT_EQ (editor.value ("alarm-button"), tav_calendar_alarm_to_string (TavCalendarAlarmNone));
    EXPECT_TRUE (editor.save_and_close ());
    EXPECT_EQ (joined (editor), "task-saved:Pay rent now");
    gboolean done = FALSE;
    g_object_get (task, "done", &done, NULL);
    EXPECT_TRUE (done);
    EXPECT_EQ (int_of (task, "alarm-code"), TavCalendarAlarmNone);
    EXPECT_EQ (tav_memory_source_calls (cals.home.get (), TAV_MEMORY_SLOT_SAVE_TASK), 1u);
}

/* Every source failure: what is reported, what stays stored, whether the
 * window stays. */
TEST (TaskEditor, FailingCalendarsReportAndLoseNothing)
{
    REQUIRE_XTEST ();
    char *default_text = tav_calendar_get_error_string (CalendarDefaultError);
    struct Case {
        const char *what;
        bool move;
        TavMemorySlot slot;
        const char *click;
        const char *expected_signals;
        const char *expected_error;
        int home_size, work_size;
        bool window_stays;
    } cases[] = {
        {"save in place", false, TAV_MEMORY_SLOT_SAVE_TASK, "save-button", "", default_text, 1, 0, false},
        {"create during a move", true, TAV_MEMORY_SLOT_CREATE_TASK, "save-button", "", default_text, 1, 0, false},
        {"delete during a move", true, TAV_MEMORY_SLOT_DELETE_TASK, "save-button",
         "task-created:Old new deleting-task:Old", "Operation failed because of an internal error.", 1, 1, false},
        {"delete", false, TAV_MEMORY_SLOT_DELETE_TASK, "delete-button", "", default_text, 1, 0, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE (c.what);
        Calendars cals;
        TavCalendarTask *task = stored_task (cals.home.get (), "Old", day_from_today (2));
        tav_memory_source_fail (cals.home.get (), c.slot, CalendarDefaultError);
        tav_memory_source_fail (cals.work.get (), c.slot, CalendarDefaultError);
        GtkWidget *w = tav_calendar_task_window_new_from_task (task);
        tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
        EditorDriver editor (w, TASK_SIGNALS);
        if (c.move) {
            ASSERT_TRUE (editor.choose ("calendar-button", "Work"));
        }
        editor.type ("title-entry", " new");
        if (g_str_equal (c.click, "delete-button"))
            editor.answer_next_note (true);
        editor.tap (c.click);
        editor.run_until_closed ();
        EXPECT_EQ (editor.errors, std::vector<std::string> {c.expected_error});
        EXPECT_EQ (joined (editor), c.expected_signals);
        EXPECT_EQ (int (tav_memory_source_size (cals.home.get ())), c.home_size);
        EXPECT_EQ (int (tav_memory_source_size (cals.work.get ())), c.work_size);
        EXPECT_STREQ (tav_calendar_entry_get_title (TAV_CALENDAR_ENTRY (task)), "Old") << "the stored task unchanged";
        EXPECT_EQ (editor.alive (), c.window_stays);
    }
    g_free (default_text);
}

TEST (TaskEditor, DeleteAsksFirstAndCancelRemovesNothing)
{
    REQUIRE_XTEST ();
    Calendars cals;
    TavCalendarTask *task = stored_task (cals.home.get (), "Walk the dog", day_from_today (1));
    GtkWidget *w = tav_calendar_task_window_new_from_task (task);
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
    EditorDriver editor (w, TASK_SIGNALS);

    editor.answer_next_note (false);
    editor.tap ("delete-button");
    EXPECT_EQ (editor.asked, "Delete task “Walk the dog”?");
    EXPECT_TRUE (editor.alive ());
    EXPECT_EQ (tav_memory_source_size (cals.home.get ()), 1u);
    EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (w)), nullptr);

    editor.answer_next_note (true);
    editor.tap ("delete-button");
    EXPECT_TRUE (editor.run_until_closed ());
    EXPECT_EQ (joined (editor), "deleting-task:Walk the dog");
    EXPECT_EQ (tav_memory_source_size (cals.home.get ()), 0u);
}

TEST (TaskEditor, ReminderNeverRingsInThePast)
{
    REQUIRE_XTEST ();
    Calendars cals;
    LogCapture capture;
    /* Due tomorrow: the reminder is today, and 00:00 is already over. */
    TavCalendarTask *task = stored_task (cals.home.get (), "Call back", day_from_today (1), TavCalendarAlarmDayBefore);
    const TavTime midnight = {0, 0};
    g_object_set (task, "alarm-time", &midnight, NULL);
    GtkWidget *w = tav_calendar_task_window_new_from_task (task);
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
    EditorDriver editor (w, TASK_SIGNALS);
    editor.save ();
    EXPECT_TRUE (editor.alive ()) << "the corrected time is shown first";
    EXPECT_TRUE (capture.has_message ("Alarm time cannot be in past")) << capture.dump ();
    EXPECT_TRUE (editor.has_banner ("cal_ib_alarm_early") || !EditorDriver::banners ().empty ());
    EXPECT_EQ (tav_memory_source_calls (cals.home.get (), TAV_MEMORY_SLOT_SAVE_TASK), 0u);
    guint hour = 0, minute = 0;
    kivo_time_button_get_time (KIVO_TIME_BUTTON (editor.field ("alarm-time-button")), &hour, &minute);
    TavTime now;
    tav_time_init_now (&now);
    EXPECT_TRUE (hour * 60 + minute > guint (now.hour * 60 + now.minute) || (hour == 23 && minute == 55));
}

TEST (TaskEditor, BadInputIsShownSafelyAndKeptAsItIs)
{
    REQUIRE_DISPLAY ();
    Calendars cals;
    LogCapture capture;
    const TavDate long_ago = {1965, 4, 9};
    TavCalendarTask *task = stored_task (cals.home.get (), "\xff\xfe broken", long_ago);
    GtkWidget *w = tav_calendar_task_window_new_from_task (task);
    EXPECT_TRUE (capture.has_warning ("Invalid UTF-8 string received for title.")) << capture.dump ();
    const char *shown = gtk_entry_get_text (GTK_ENTRY (find_named (w, "title-entry")));
    EXPECT_TRUE (g_utf8_validate (shown, -1, nullptr) && g_str_has_suffix (shown, " broken")) << shown;
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (find_named (w, "date-button"))), "09.05.1965")
        << "a date the picker cannot reach is shown as text";
    kivo_entry_set_text (KIVO_ENTRY (find_named (w, "title-entry")), "Mended");
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (w), cals.list);
    gtk_button_clicked (GTK_BUTTON (find_named (w, "save-button")));
    const TavDate kept = date_of (task);
    EXPECT_EQ (tav_date_compare (&long_ago, &kept), 0);
    EXPECT_STREQ (tav_calendar_entry_get_title (TAV_CALENDAR_ENTRY (task)), "Mended");

    /* Only read-only calendars: Save rests; a click all the same stores
     * nothing and says why. */
    GList *read_only = g_list_append (nullptr, cals.holidays.get ());
    GtkWidget *fresh = tav_calendar_task_window_new ();
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (fresh), read_only);
    g_list_free (read_only);
    EXPECT_FALSE (gtk_widget_get_sensitive (find_named (fresh, "save-button")));
    int errors = 0;
    count_signal (fresh, "error", &errors);
    kivo_entry_set_text (KIVO_ENTRY (find_named (fresh, "title-entry")), "Nowhere");
    gtk_button_clicked (GTK_BUTTON (find_named (fresh, "save-button")));
    EXPECT_TRUE (capture.has_warning ("No calendar source, can not create task."));
    EXPECT_EQ (errors, 1);
    EXPECT_EQ (tav_memory_source_calls (cals.holidays.get (), TAV_MEMORY_SLOT_CREATE_TASK), 0u);
}

TEST (NoteEditor, TypedNoteIsCreatedAndAnEmptyOneToo)
{
    REQUIRE_XTEST ();
    for (const char *text : {"Call mum about Sunday", ""}) {
        SCOPED_TRACE (text);
        Calendars cals;
        GtkWidget *w = tav_calendar_note_window_new ();
        tav_calendar_note_window_add_sources (TAV_CALENDAR_NOTE_WINDOW (w), cals.list);
        EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (w)), "New note");
        EXPECT_EQ (label_text (w, "modified-label"), "") << "a new note has no last-saved line";
        EditorDriver editor (w, NOTE_SIGNALS);
        editor.type ("note-text-view", text);
        EXPECT_TRUE (editor.save_and_close ());
        EXPECT_EQ (joined (editor), std::string ("note-created:") + text);
        GList *notes = tav_memory_source_list_notes (cals.home.get ());
        ASSERT_EQ (g_list_length (notes), 1u);
        char *description = nullptr;
        g_object_get (notes->data, "description", &description, NULL);
        EXPECT_STREQ (description, text);
        g_free (description);
        g_list_free_full (notes, g_object_unref);
    }
}

TEST (NoteEditor, EditedNoteKeepsItsCalendarAndShowsWhenItWasSaved)
{
    REQUIRE_XTEST ();
    Calendars cals;
    const TavDate yesterday = days_ago (1);
    TavCalendarNote *note = stored_note (cals.work.get (), "Books to read", yesterday);
    GtkWidget *w = tav_calendar_note_window_new_from_note (note);
    tav_calendar_note_window_add_sources (TAV_CALENDAR_NOTE_WINDOW (w), cals.list);
    EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (w)), "Edit note");
    TavCalendarProcessor *p = tav_calendar_processor_new ();
    char *day = tav_date_to_string_format (&yesterday, TavDateLongFormat,
                                           tav_calendar_processor_date_to_day_of_week (p, &yesterday));
    EXPECT_EQ (label_text (w, "modified-label"), std::string ("Last saved: ") + day + " ");
    g_free (day);
    g_object_unref (p);
    EditorDriver editor (w, NOTE_SIGNALS);
    editor.type ("note-text-view", " soon");
    EXPECT_TRUE (editor.save_and_close ());
    EXPECT_EQ (joined (editor), "note-saved:Books to read soon");
    TavCalendarSource *source = nullptr;
    TavDate *modified = nullptr;
    g_object_get (note, "source", &source, "modification-date", &modified, NULL);
    EXPECT_EQ (source, cals.source (cals.work));
    const TavDate today = day_from_today (0);
    EXPECT_EQ (tav_date_compare (modified, &today), 0);
    EXPECT_EQ (tav_memory_source_calls (cals.work.get (), TAV_MEMORY_SLOT_SAVE_NOTE), 1u);
    g_object_unref (source);
    tav_date_free (modified);

    /* Saved today: the line shows the time, in the chosen form. */
    GtkWidget *again = tav_calendar_note_window_new_from_note (note);
    TavTime *at = nullptr;
    g_object_get (note, "start-time", &at, NULL);
    char *time24 = tav_time_to_string_format (at, FALSE);
    char *time12 = tav_time_to_string_format (at, TRUE);
    EXPECT_EQ (label_text (again, "modified-label"), std::string ("Last saved: ") + time24 + " ");
    g_object_set (again, "time-24hr-format", FALSE, NULL);
    EXPECT_EQ (label_text (again, "modified-label"), std::string ("Last saved: ") + time12 + " ");
    g_free (time24);
    g_free (time12);
    tav_time_free (at);
    gtk_widget_destroy (again);
}

TEST (NoteEditor, MoveDeleteAndACreateAnsweredDuplicate)
{
    REQUIRE_XTEST ();
    Calendars cals;
    TavCalendarNote *note = stored_note (cals.home.get (), "Recipes", days_ago (3));
    g_object_ref (note);
    {
        GtkWidget *w = tav_calendar_note_window_new_from_note (note);
        tav_calendar_note_window_add_sources (TAV_CALENDAR_NOTE_WINDOW (w), cals.list);
        EditorDriver editor (w, NOTE_SIGNALS);
        ASSERT_TRUE (editor.choose ("calendar-button", "Work"));
        EXPECT_TRUE (editor.save_and_close ());
        EXPECT_EQ (joined (editor), "note-created:Recipes deleting-note:Recipes");
        EXPECT_EQ (tav_memory_source_size (cals.home.get ()), 0u);
        EXPECT_EQ (int (tav_memory_source_size (cals.work.get ())), 1);
    }
    g_object_unref (note);

    /* Delete asks; OK removes it. */
    GList *notes = tav_memory_source_list_notes (cals.work.get ());
    GtkWidget *d = tav_calendar_note_window_new_from_note (TAV_CALENDAR_NOTE (notes->data));
    g_list_free_full (notes, g_object_unref);
    {
        EditorDriver editor (d, NOTE_SIGNALS);
        editor.answer_next_note (true);
        editor.tap ("delete-button");
        EXPECT_TRUE (editor.run_until_closed ());
        EXPECT_EQ (editor.asked, "Delete this note?");
        EXPECT_EQ (editor.signals, std::vector<std::string> {"deleting-note"});
        EXPECT_EQ (tav_memory_source_size (cals.work.get ()), 0u);
    }

    /* A new note the calendar says it already has is a failure. */
    tav_memory_source_fail (cals.home.get (), TAV_MEMORY_SLOT_CREATE_NOTE, CalendarDuplicateError);
    GtkWidget *n = tav_calendar_note_window_new ();
    tav_calendar_note_window_add_sources (TAV_CALENDAR_NOTE_WINDOW (n), cals.list);
    int errors = 0, created = 0;
    count_signal (n, "error", &errors);
    count_signal (n, "note-created", &created);
    tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (find_named (n, "note-text-view")), "Twice");
    gtk_button_clicked (GTK_BUTTON (find_named (n, "save-button")));
    EXPECT_EQ (errors, 1);
    EXPECT_EQ (created, 0);
}

TEST (TaskNoteEditors, ArgumentChecks)
{
    REQUIRE_DISPLAY ();
    Calendars cals;
    LogCapture capture;
    GtkWidget *label = gtk_label_new ("not an editor");
    TavCalendarNote *note = TAV_CALENDAR_NOTE (tav_calendar_note_new ());
    EXPECT_EQ (tav_calendar_task_window_new_from_task (nullptr), nullptr);
    EXPECT_EQ (tav_calendar_task_window_new_from_task (reinterpret_cast<TavCalendarTask *> (note)), nullptr);
    EXPECT_EQ (tav_calendar_note_window_new_from_note (nullptr), nullptr);
    tav_calendar_task_window_add_source (reinterpret_cast<TavCalendarTaskWindow *> (label), cals.source (cals.home));
    tav_calendar_note_window_add_sources (reinterpret_cast<TavCalendarNoteWindow *> (label), cals.list);
    GtkWidget *task_window = tav_calendar_task_window_new ();
    tav_calendar_task_window_add_source (TAV_CALENDAR_TASK_WINDOW (task_window), nullptr);
    GtkWidget *note_window = tav_calendar_note_window_new ();
    tav_calendar_note_window_add_source (TAV_CALENDAR_NOTE_WINDOW (note_window),
                                         reinterpret_cast<TavCalendarSource *> (note));
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_TASK(task)"), 2) << capture.dump ();
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_NOTE(note)"), 1);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_TASK_WINDOW(window)"), 1);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_NOTE_WINDOW(window)"), 1);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_SOURCE(source)"), 2);

    /* Delete without a task or note says so and does nothing. */
    gtk_button_clicked (GTK_BUTTON (find_named (task_window, "delete-button")));
    gtk_button_clicked (GTK_BUTTON (find_named (note_window, "delete-button")));
    EXPECT_TRUE (capture.has_warning ("There is no task to delete."));
    EXPECT_TRUE (capture.has_warning ("There is no note to delete."));
    char *id = reinterpret_cast<char *> (1);
    g_object_get (task_window, "entry-id", &id, NULL);
    EXPECT_EQ (id, nullptr);
    gtk_widget_destroy (task_window);
    gtk_widget_destroy (note_window);
    g_object_unref (note);
    g_object_ref_sink (label);
    g_object_unref (label);
}
