/* tav-calendar end to end: the host's window over a real store. A tap on an
 * empty hour of the week opens the editor at that hour; the title typed and
 * Save pressed with real input, the event is in the store and in every view
 * at once or when it is next shown. */
#include "HostWindow.h"
#include "HostCivilTime.h"
#include "HostStore.h"
#include "../platform/PointerDriver.h"
#include "TestSupport.h"

#include "TavAgendaViewInternal.h"
#include "TavDayViewInternal.h"
#include "TavWeekViewInternal.h"

#include <calendarui.h>
#include <gdk/gdkkeysyms.h>

#include <functional>
#include <set>
#include <string>

using namespace tav::host;
using tav::test::PointerDriver;
using tav::test::flush_events;

namespace {

std::string title_of (TavCalendarEntry *entry)
{
    const char *title = entry ? tav_calendar_entry_get_title (entry) : nullptr;
    return title ? title : "";
}

std::set<std::string> week_titles (TavWeekView *week, int col)
{
    std::set<std::string> out;
    WeekEntryList *list = _tav_week_view_get_day_list (week, col);
    for (GList *l = list ? list->hour_entries : nullptr; l; l = l->next)
        out.insert (title_of (static_cast<WeekEntry *> (l->data)->entry));
    return out;
}

template <typename Row>
std::set<std::string> row_titles (GPtrArray *rows)
{
    std::set<std::string> out;
    for (guint i = 0; rows && i < rows->len; i++)
        if (TavCalendarEntry *entry = static_cast<Row *> (g_ptr_array_index (rows, i))->entry)
            out.insert (title_of (entry));
    return out;
}

std::set<std::string> month_titles (TavCalendarWindow *window, const TavDate &day)
{
    std::set<std::string> out;
    GList *entries = tav_calendar_get_entries_for_day (TAV_CALENDAR (window->month_view), &day);
    for (GList *l = entries; l; l = l->next)
        out.insert (title_of (TAV_CALENDAR_ENTRY (l->data)));
    g_list_free_full (entries, g_object_unref);
    return out;
}

GtkWidget *find_widget (GtkWidget *widget, const std::function<bool (GtkWidget *)> &match)
{
    if (match (widget))
        return widget;
    if (!GTK_IS_CONTAINER (widget))
        return nullptr;
    GList *children = gtk_container_get_children (GTK_CONTAINER (widget));
    GtkWidget *found = nullptr;
    for (GList *l = children; l && !found; l = l->next)
        found = find_widget (GTK_WIDGET (l->data), match);
    g_list_free (children);
    return found;
}

GtkWidget *open_editor ()
{
    GList *toplevels = gtk_window_list_toplevels ();
    GtkWidget *editor = nullptr;
    for (GList *l = toplevels; l; l = l->next)
        if (TAV_IS_CALENDAR_EVENT_WINDOW (l->data) && gtk_widget_get_visible (GTK_WIDGET (l->data)))
            editor = GTK_WIDGET (l->data);
    g_list_free (toplevels);
    return editor;
}

void tap_centre (GtkWidget *widget)
{
    PointerDriver::tap (widget, widget->allocation.width / 2, widget->allocation.height / 2);
    flush_events ();
}

}  // namespace

TEST (WindowEndToEnd, EventCreatedFromAnEmptyHourShowsInEveryViewAndTheStore)
{
    REQUIRE_XTEST ();
    tav::test::TempDir dir;
    Status status;
    std::shared_ptr<Store> store (Store::open (dir.file ("calendar.db"), &status).release ());
    ASSERT_TRUE (store) << status.message;
    CalendarRecord personal;
    personal.title = "Personal";
    ASSERT_TRUE (store->add_calendar (personal).ok ());

    App app;
    app.calendars = std::make_unique<CalendarSet> (store);
    app.focus = {2026, 10, 25};  /* a Wednesday */
    app.build ();
    gtk_window_move (GTK_WINDOW (app.window), 0, 0);
    gtk_widget_show (GTK_WIDGET (app.window));
    ASSERT_TRUE (app.show ("week"));
    PointerDriver::wait (300);
    flush_events ();

    /* Tap the empty 9:00 slot of Wednesday (weeks start on Monday). */
    TavWeekView *week = TAV_WEEK_VIEW (app.window->week_view);
    int width = 0, height = 0;
    gdk_drawable_get_size (week->priv->table_win, &width, &height);
    const int x = (tav::week::column_x (width, 2) + tav::week::column_x (width, 3)) / 2;
    const int y = _tav_week_view_time_to_table_offset (week, 9, 20)
                  - static_cast<int> (gtk_adjustment_get_value (week->priv->vadjustment.get ()));
    int origin_x = 0, origin_y = 0;
    gdk_window_get_origin (week->priv->table_win, &origin_x, &origin_y);
    PointerDriver::move_root (origin_x + x, origin_y + y);
    PointerDriver::press ();
    PointerDriver::wait (60);
    PointerDriver::release ();
    ASSERT_TRUE (tav::test::run_main_loop_until ([] { return open_editor () != nullptr; }, 3000))
        << "the tap at " << x << "," << y << " of the " << width << "x" << height << " table opened no editor";
    GtkWidget *editor = open_editor ();
    PointerDriver::wait (300);

    /* Type the title into the title entry, as a finger and keyboard would. */
    GtkWidget *title = find_widget (editor, [] (GtkWidget *w) { return GTK_IS_ENTRY (w); });
    ASSERT_TRUE (title);
    tap_centre (title);
    for (const char *c = "Dentist"; *c; c++) {
        gdk_test_simulate_key (title->window, -1, -1, gdk_unicode_to_keyval (*c), GdkModifierType (0),
                               GDK_KEY_PRESS);
        gdk_test_simulate_key (title->window, -1, -1, gdk_unicode_to_keyval (*c), GdkModifierType (0),
                               GDK_KEY_RELEASE);
    }
    flush_events ();
    EXPECT_STREQ (gtk_entry_get_text (GTK_ENTRY (title)), "Dentist");
    GtkWidget *save = find_widget (editor, [] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), "Save") == 0;
    });
    ASSERT_TRUE (save);
    g_object_add_weak_pointer (G_OBJECT (editor), reinterpret_cast<gpointer *> (&editor));
    tap_centre (save);
    ASSERT_TRUE (tav::test::run_main_loop_until ([&] { return editor == nullptr; }, 3000)) << "Save left the editor open";

    /* The store has it, at the tapped hour. */
    std::vector<EntryRecord> stored = store->entries_of_calendar (personal.id);
    ASSERT_EQ (stored.size (), 1u);
    EXPECT_EQ (stored[0].title, "Dentist");
    EXPECT_EQ (stored[0].start, civil_minutes (2026, 11, 25, 9, 0));

    /* The week shows it at once, the other views when they are shown. */
    const TavDate day = {2026, 10, 25};
    EXPECT_EQ (week_titles (week, 2), std::set<std::string> {"Dentist"});
    tav_calendar_window_activate_month_view (app.window);
    flush_events ();
    EXPECT_EQ (month_titles (app.window, day), std::set<std::string> {"Dentist"});
    tav_calendar_window_activate_agenda_view (app.window);
    flush_events ();
    EXPECT_EQ (row_titles<AgendaEntry> (_tav_agenda_view_get_list (TAV_AGENDA_VIEW (app.window->agenda_view))->entries),
               std::set<std::string> {"Dentist"});
    tav_calendar_window_activate_month_view (app.window);
    g_signal_emit_by_name (app.window->month_view, "day-activated", 2026, 10, 25);
    flush_events ();
    EXPECT_TRUE (tav_calendar_window_day_view_active (app.window));
    EXPECT_EQ (row_titles<DayEntry> (_tav_day_view_get_list (TAV_DAY_VIEW (app.window->day_view))->entries),
               std::set<std::string> {"Dentist"});
}
