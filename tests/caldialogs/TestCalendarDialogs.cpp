/* The calendar list and edit dialogs over the host's real store, tapped as
 * a person would. */
#include "HostWindow.h"
#include "../import/ImportTestSupport.h"
#include "KivoNote.h"
#include "PointerDriver.h"
#include "SettingsTestSupport.h"

#include <calendarui.h>

using namespace tav::host;
using namespace tav::host::test;
using namespace tav::test;

namespace {

/* A store with the calendars named, @events timed events each on
 * 10 November 2026, opened as the app's. */
struct Fixture {
    TempDir dir;
    App app;
    std::vector<int64_t> ids;

    explicit Fixture (std::vector<std::pair<CalendarRecord, int>> calendars)
    {
        std::shared_ptr<Store> store (open_store (dir.file ("s.db"), nullptr).release ());
        for (auto &[calendar, events] : calendars) {
            EXPECT_TRUE (store->add_calendar (calendar).ok ());
            ids.push_back (calendar.id);
            for (int i = 0; i < events; ++i) {
                EntryRecord e;
                e.calendar_id = calendar.id;
                e.title = calendar.title + " " + std::to_string (i);
                e.start = at (2026, 11, 10, 8 + i % 10);
                e.end = e.start + 1800;
                EXPECT_TRUE (store->add_entry (e).ok ());
            }
        }
        app.calendars = std::make_unique<CalendarSet> (store);
    }
    Store &store () { return app.calendars->store (); }

    TavCalendarListDialog *open_list ()
    {
        GtkWidget *list = app.open_calendar_list ();
        gtk_window_move (GTK_WINDOW (list), 0, 0);
        EXPECT_TRUE (wait_mapped (list));
        flush_events ();
        return TAV_CALENDAR_LIST_DIALOG (list);
    }
    TavCalendarSource *source (size_t i) { return TAV_CALENDAR_SOURCE (app.calendars->source (ids[i])); }
};

GtkWidget *button_labelled (GtkWidget *root, const char *label)
{
    return find_widget (root, [label] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), label) == 0;
    });
}

/* The window of @type shown last, NULL when none is. */
GtkWidget *shown_window (GType type)
{
    GtkWidget *found = nullptr;
    GList *toplevels = gtk_window_list_toplevels ();
    for (GList *l = toplevels; l; l = l->next) {
        if (G_TYPE_CHECK_INSTANCE_TYPE (l->data, type) && gtk_widget_get_visible (GTK_WIDGET (l->data)))
            found = GTK_WIDGET (l->data);
    }
    g_list_free (toplevels);
    return found;
}

int entries_on (App &app, int day)
{
    const TavDate date = {2026, 10, day};  /* months count from 0 */
    GList *entries = tav_calendar_get_entries_for_day (TAV_CALENDAR (app.window->month_view), &date);
    const int count = static_cast<int> (g_list_length (entries));
    g_list_free (entries);
    return count;
}

} // namespace

TEST (CalendarList, TappingAVisibilityBoxHidesTheCalendarsEventsFromTheViews)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 2 }, { calendar_named ("Work"), 3 } });
    f.app.focus = {2026, 10, 10};
    f.app.build ();
    gtk_widget_show (GTK_WIDGET (f.app.window));
    ASSERT_TRUE (f.app.show ("month"));
    ASSERT_TRUE (run_main_loop_until ([&] { return entries_on (f.app, 10) == 5; }, 3000));

    TavCalendarListDialog *list = f.open_list ();
    EXPECT_EQ (tav_calendar_list_dialog_get_count (list), 2);
    GtkTreeView *view = GTK_TREE_VIEW (find_widget (GTK_WIDGET (list), [] (GtkWidget *w) { return GTK_IS_TREE_VIEW (w); }));
    GdkRectangle box;
    GtkTreePath *work_row = gtk_tree_path_new_from_indices (1, -1);
    gtk_tree_view_get_cell_area (view, work_row, gtk_tree_view_get_column (view, 2), &box);
    gtk_tree_path_free (work_row);
    PointerDriver::tap (GTK_WIDGET (view), box.x + box.width / 2, box.y + box.height / 2);
    flush_events ();

    CalendarRecord work;
    ASSERT_TRUE (f.store ().find_calendar (f.ids[1], &work));
    EXPECT_FALSE (work.visible);
    EXPECT_EQ (entries_on (f.app, 10), 2) << "the month view read again without Work";
    GList *week = f.app.calendars->read_interval ({{2026, 10, 9}, {2026, 10, 15}});
    EXPECT_EQ (g_list_length (week), 2u) << "and so does every other view";
    g_list_free_full (week, g_object_unref);
    gtk_widget_destroy (GTK_WIDGET (list));
}

TEST (CalendarList, DeletingACalendarAfterConfirmingLeavesNothingOfItAndNothingElseTouched)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 3 }, { calendar_named ("Big"), 500 } });
    const std::string personal_before = dump (f.store ()).substr (0, dump (f.store ()).find ("calendar 2|"));
    TavCalendarListDialog *list = f.open_list ();
    int changes = 0;
    count_signal (list, "calendars-changed", &changes);
    ASSERT_TRUE (tav_calendar_list_dialog_select (list, f.source (1)));

    tap_middle (button_labelled (GTK_WIDGET (list), "Delete"));
    GtkWidget *note = shown_window (KIVO_TYPE_NOTE);
    ASSERT_NE (note, nullptr);
    EXPECT_NE (std::string (kivo_note_get_description (KIVO_NOTE (note))).find ("“Big”"), std::string::npos);
    EXPECT_NE (std::string (kivo_note_get_description (KIVO_NOTE (note))).find ("500 entries"), std::string::npos);
    ASSERT_TRUE (wait_mapped (note));
    tap_middle (kivo_note_get_ok_button (KIVO_NOTE (note)));

    EXPECT_FALSE (f.store ().find_calendar (f.ids[1], nullptr));
    EXPECT_EQ (f.store ().count_entries (f.ids[1]), 0);
    EXPECT_EQ (dump (f.store ()), personal_before);
    EXPECT_EQ (tav_calendar_list_dialog_get_count (list), 1);
    EXPECT_EQ (changes, 1);
    gtk_widget_destroy (GTK_WIDGET (list));
}

TEST (CalendarList, TheLastWritableAndReadOnlyCalendarsAreNotDeleted)
{
    REQUIRE_XTEST ();
    CalendarRecord holidays = calendar_named ("Holidays");
    holidays.read_only = true;
    Fixture f ({ { calendar_named ("Personal"), 1 }, { holidays, 0 } });
    const std::string before = dump (f.store ());
    TavCalendarListDialog *list = f.open_list ();
    for (size_t i : { 0u, 1u }) {
        ASSERT_TRUE (tav_calendar_list_dialog_select (list, f.source (i)));
        EXPECT_EQ (tav_calendar_list_dialog_delete_selected (list), nullptr) << i;
        EXPECT_EQ (shown_window (KIVO_TYPE_NOTE), nullptr) << "refused without asking";
    }
    EXPECT_EQ (dump (f.store ()), before);
    gtk_widget_destroy (GTK_WIDGET (list));
}

TEST (CalendarEdit, BadTitlesAreRefusedAndChangeNothingAGoodOneIsStored)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 0 }, { calendar_named ("Work"), 0 } });
    const std::string before = dump (f.store ());
    TavCalendarListDialog *list = f.open_list ();
    TavCalendarEditDialog *edit = TAV_CALENDAR_EDIT_DIALOG (tav_calendar_list_dialog_edit_selected (list));
    ASSERT_NE (edit, nullptr);
    EXPECT_EQ (tav_calendar_edit_dialog_get_source (edit), f.source (0));
    const std::string long_title (10000, 'x');
    const struct {
        const char *title;
        const char *message;
    } refused[] = {
        { "   ", "Enter a name for the calendar." },
        { long_title.c_str (), "The calendar name is too long (at most 256 characters)." },
        { "Caf\xc3\x28", "The calendar name is not valid text." },
        { " Work ", "A calendar with this name already exists" },
    };
    for (const auto &r : refused) {
        tav_calendar_edit_dialog_set_title_text (edit, r.title);
        EXPECT_FALSE (tav_calendar_edit_dialog_apply (edit)) << r.message;
        EXPECT_STREQ (tav_calendar_edit_dialog_get_error (edit), r.message);
        EXPECT_STREQ (tav_calendar_source_get_title (f.source (0)), "Personal") << r.message;
    }
    EXPECT_EQ (dump (f.store ()), before);

    tav_calendar_edit_dialog_set_title_text (edit, "  Home ");
    ASSERT_TRUE (wait_mapped (GTK_WIDGET (edit)));
    tap_middle (button_labelled (GTK_WIDGET (edit), "Save"));
    CalendarRecord stored;
    ASSERT_TRUE (f.store ().find_calendar (f.ids[0], &stored));
    EXPECT_EQ (stored.title, "Home");
    EXPECT_EQ (shown_window (tav_calendar_edit_dialog_get_type ()), nullptr) << "Save closed the editor";
    gtk_widget_destroy (GTK_WIDGET (list));
}

TEST (CalendarList, NewMakesACalendarThroughTheHost)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 0 } });
    TavCalendarListDialog *list = f.open_list ();
    tap_middle (button_labelled (GTK_WIDGET (list), "New"));
    GtkWidget *edit = shown_window (tav_calendar_edit_dialog_get_type ());
    ASSERT_NE (edit, nullptr);
    ASSERT_TRUE (wait_mapped (edit));
    tav_calendar_edit_dialog_set_title_text (TAV_CALENDAR_EDIT_DIALOG (edit), "Trips");
    tap_middle (button_labelled (edit, "Save"));
    CalendarRecord trips;
    EXPECT_TRUE (f.store ().find_calendar_by_title ("Trips", &trips));
    EXPECT_EQ (tav_calendar_list_dialog_get_count (list), 2);
    EXPECT_EQ (tav_calendar_source_get_id (tav_calendar_list_dialog_get_selected (list)), trips.id);
    gtk_widget_destroy (GTK_WIDGET (list));
}

TEST (BirthdayWindow, BornOn29FebruaryShowsOnTheLastDayOfFebruaryEveryYear)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 0 } });
    GtkWidget *window = f.app.open_birthday ();
    ASSERT_NE (window, nullptr);
    ASSERT_TRUE (wait_mapped (window));
    TavCalendarBirthdayWindow *birthday = TAV_CALENDAR_BIRTHDAY_WINDOW (window);
    const TavDate born = {1996, 1, 29};
    tav_calendar_birthday_window_set_values (birthday, "  ", &born, TRUE);
    EXPECT_FALSE (tav_calendar_birthday_window_save (birthday));
    EXPECT_STREQ (tav_calendar_birthday_window_get_error (birthday), "Enter the name of the person.");
    tav_calendar_birthday_window_set_values (birthday, "Maria", &born, TRUE);
    tap_middle (button_labelled (window, "Save"));
    EXPECT_EQ (shown_window (tav_calendar_birthday_window_get_type ()), nullptr) << "Save closed the window";

    CalendarRecord birthdays;
    ASSERT_TRUE (f.store ().find_calendar_by_title ("Birthdays", &birthdays)) << "made for the first birthday";
    const std::vector<EntryRecord> stored = f.store ().entries_of_calendar (birthdays.id);
    ASSERT_EQ (stored.size (), 1u);
    EXPECT_TRUE (stored[0].has_birthday && stored[0].all_day);
    EXPECT_EQ (stored[0].birth_year, 1996);
    const struct {
        TavDate day;
        guint shown;
    } days[] = {
        { {2027, 1, 27}, 0 }, { {2027, 1, 28}, 1 }, { {2027, 2, 1}, 0 },
        { {2028, 1, 28}, 0 }, { {2028, 1, 29}, 1 },
    };
    for (const auto &d : days) {
        GList *read = f.app.calendars->read_interval ({d.day, d.day});
        EXPECT_EQ (g_list_length (read), d.shown) << d.day.year << "-" << d.day.month + 1 << "-" << d.day.day;
        g_list_free_full (read, g_object_unref);
    }
}

TEST (CalendarList, TheSettingsCalendarsRowOpensItOverTheSettings)
{
    REQUIRE_XTEST ();
    Fixture f ({ { calendar_named ("Personal"), 0 } });
    SettingsFile file (f.dir.file ("settings.ini"));
    f.app.settings = &file;
    GtkWidget *settings = f.app.open_settings ();
    ASSERT_NE (settings, nullptr);
    g_signal_emit_by_name (settings, "edit-clicked");
    GtkWidget *list = shown_window (tav_calendar_list_dialog_get_type ());
    ASSERT_NE (list, nullptr);
    EXPECT_EQ (gtk_window_get_transient_for (GTK_WINDOW (list)), GTK_WINDOW (settings));
    EXPECT_EQ (tav_calendar_list_dialog_get_count (TAV_CALENDAR_LIST_DIALOG (list)), 1);
    gtk_widget_destroy (list);
    gtk_widget_destroy (settings);
}
