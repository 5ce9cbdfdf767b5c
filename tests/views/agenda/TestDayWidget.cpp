/* The day view and the behaviours both list views share beyond taps:
 * keys, refreshing an entry, next/previous status, the repeated jump,
 * the visible date, Delete from the held-finger menu, a background image. */

#include "../ViewTestSupport.h"
#include "ShownListView.h"
#include "KivoPannableArea.h"

#include <gdk/gdkkeysyms.h>

using namespace tav::test;

namespace {

constexpr TavDate kDay { 2009, 2, 10 };

template <class View> using Shown = ShownListView<View>;

TEST (DayWidget, KeysScrollAndStepThroughTheOwner)
{
    REQUIRE_DISPLAY ();
    Shown<TavDayView> s (tav_day_view_new ());
    tav_day_view_set_presented_interval_by_date (s.view, &kDay);
    for (int h = 7; h < 19; h++)
        s.add (make_entry ("Slot", { 2009, 2, 10, h, 0 }, { 2009, 2, 10, h, 30 }));
    GtkAdjustment *adj = _tav_day_view_get_vadjustment (s.view);
    gtk_adjustment_set_value (adj, 0);
    s.key (GDK_Down);
    EXPECT_EQ (gtk_adjustment_get_value (adj), 70);
    s.key (GDK_End);
    EXPECT_EQ (gtk_adjustment_get_value (adj), adj->upper - adj->page_size);
    s.key (GDK_Home);
    EXPECT_EQ (gtk_adjustment_get_value (adj), 0);
    s.key (GDK_Left);
    s.key (GDK_Right);
    EXPECT_EQ (s.calls, std::vector<std::string> ({ "key " + std::to_string (GDK_Left), "key " + std::to_string (GDK_Right) }));
}

TEST (DayWidget, RefreshKeepsOrMovesTheRows)
{
    REQUIRE_DISPLAY ();
    Shown<TavDayView> s (tav_day_view_new ());
    tav_day_view_set_presented_interval_by_date (s.view, &kDay);
    TavCalendarEntry *a = s.add (make_entry ("Alpha", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 }));
    s.add (make_entry ("Beta", { 2009, 2, 10, 11, 0 }, { 2009, 2, 10, 12, 0 }));
    DayEntryList *list = _tav_day_view_get_list (s.view);
    EXPECT_EQ (shape (list), "H + Alpha Beta ");

    g_object_set (a, "title", "Gamma", NULL);
    EXPECT_TRUE (tav_calendar_view_refresh_entry (TAV_CALENDAR_VIEW (s.view), a));
    EXPECT_EQ (shape (list), "H + Gamma Beta ");

    TavTime later = { 13, 0 }, end = { 14, 0 };
    g_object_set (a, "start-time", &later, "end-time", &end, NULL);
    tav_calendar_view_refresh_entry (TAV_CALENDAR_VIEW (s.view), a);
    EXPECT_EQ (shape (list), "H + Beta Gamma ") << "a new time is a new place";

    TavDate other = { 2009, 2, 11 };
    g_object_set (a, "start-date", &other, "end-date", &other, NULL);
    tav_calendar_view_refresh_entry (TAV_CALENDAR_VIEW (s.view), a);
    EXPECT_EQ (shape (list), "H + Beta ") << "moved to a day not shown";
    EXPECT_EQ (day_entry_list_get_entries_count (list), 1);
}

TEST (DayWidget, NextPreviousAndTheVisibleDate)
{
    REQUIRE_DISPLAY ();
    Shown<TavAgendaView> s (tav_agenda_view_new (), 150);
    tav_agenda_view_set_presented_interval_by_date (s.view, &kDay);
    TavCalendarEntry *first = s.add (make_entry ("First", { 2009, 2, 9, 9, 0 }, { 2009, 2, 9, 10, 0 }));
    TavCalendarEntry *middle = s.add (make_entry ("Middle", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 }));
    TavCalendarEntry *last = s.add (make_entry ("Last", { 2009, 2, 12, 9, 0 }, { 2009, 2, 12, 10, 0 }));
    struct Case {
        TavCalendarEntry *entry;
        gboolean prev, next;
    };
    for (const Case &c : { Case { first, FALSE, TRUE }, Case { middle, TRUE, TRUE }, Case { last, TRUE, FALSE } }) {
        gboolean prev = -1, next = -1;
        EXPECT_TRUE (tav_calendar_view_get_next_prev_status_for_entry (TAV_CALENDAR_VIEW (s.view), c.entry, &kDay,
                                                                       &prev, &next));
        EXPECT_EQ (std::vector<int> ({ prev, next }), std::vector<int> ({ c.prev, c.next }))
            << tav_calendar_entry_get_title (c.entry);
    }

    /* The jump to the chosen date holds while the list grows, until the
     * view is told to stop. */
    GtkAdjustment *adj = _tav_agenda_view_get_vadjustment (s.view);
    const double jumped = gtk_adjustment_get_value (adj);
    EXPECT_GT (jumped, 0);
    TavDate visible;
    ASSERT_TRUE (tav_agenda_view_get_visible_date (s.view, &visible));
    EXPECT_EQ (tav_date_compare (&visible, &kDay), 0);
    s.add (make_entry ("Before", { 2009, 2, 8, 9, 0 }, { 2009, 2, 8, 10, 0 }));
    EXPECT_EQ (gtk_adjustment_get_value (adj), jumped + 40 + 70) << "a new day above: the jump is repeated";
    LogCapture log;
    tav_agenda_view_fix_scrolling (s.view);
    EXPECT_TRUE (log.has_warning ("fixing agenda vew scrolling"));
    const double fixed = gtk_adjustment_get_value (adj);
    s.add (make_entry ("Earlier", { 2009, 2, 7, 9, 0 }, { 2009, 2, 7, 10, 0 }));
    EXPECT_EQ (gtk_adjustment_get_value (adj), fixed);
}

TEST (DayWidget, DeleteFromTheMenuAndABackgroundImage)
{
    REQUIRE_XTEST ();
    Shown<TavDayView> s (tav_day_view_new ());
    tav_day_view_set_presented_interval_by_date (s.view, &kDay);
    s.add (make_entry ("Dentist", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 }));
    DayEntryList *list = _tav_day_view_get_list (s.view);
    gtk_adjustment_set_value (_tav_day_view_get_vadjustment (s.view), 0);
    flush_events ();
    GdkRectangle rect = {};
    for (int i = 0; i < day_entry_list_get_n_entry (list); i++)
        if (day_entry_list_get_day_entry (list, i)->entry)
            day_entry_list_get_cell_rect_relative (list, i, &rect);
    PointerDriver::move_to (GTK_WIDGET (s.view), 200, rect.y + rect.height / 2);
    PointerDriver::press (3);
    PointerDriver::wait (60);
    GtkWidget *menu = _tav_day_view_get_context_menu (s.view);
    ASSERT_TRUE (menu != nullptr);
    GList *items = gtk_container_get_children (GTK_CONTAINER (menu));
    gtk_menu_item_activate (GTK_MENU_ITEM (items->next->data));
    g_list_free (items);
    gtk_menu_popdown (GTK_MENU (menu));
    PointerDriver::release (3);
    PointerDriver::wait (30);
    EXPECT_EQ (s.calls, std::vector<std::string> ({ "delete Dentist" }));

    /* A background image shows where no row is drawn. */
    GdkPixmap *image = gdk_pixmap_new (GTK_WIDGET (s.view)->window, 8, 8, -1);
    cairo_t *cr = gdk_cairo_create (image);
    cairo_set_source_rgb (cr, 0, 1, 0);
    cairo_paint (cr);
    cairo_destroy (cr);
    tav_day_view_set_background_image_pixmap (s.view, image);
    g_object_unref (image);
    tav::GRefPtr<GdkPixbuf> shot = tav::adoptGRef (widget_snapshot (GTK_WIDGET (s.view)));
    EXPECT_EQ (rgb_at (shot.get (), 470, 290), 0x00ff00u);
}

/* In a pannable area, as the calendar window holds it: the area hands
 * over its adjustment, a drag pans the list without opening anything, a
 * tap still opens the row under the finger. */
TEST (DayWidget, APannableAreaDrivesTheAgenda)
{
    REQUIRE_XTEST ();
    GtkWidget *area = kivo_pannable_area_new ();
    Shown<TavAgendaView> s (tav_agenda_view_new (), 300, area);
    TavAgendaView *view = s.view;
    tav_agenda_view_set_presented_interval_by_date (view, &kDay);
    for (int h = 8; h < 18; h++)
        s.add (make_entry ("Slot", { 2009, 2, 10, h, 0 }, { 2009, 2, 10, h, 30 }));
    GtkAdjustment *adj = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
    ASSERT_EQ (_tav_agenda_view_get_vadjustment (view), adj);
    EXPECT_EQ (adj->upper, agenda_entry_list_get_height (_tav_agenda_view_get_list (view)));

    int opened = 0;
    count_signal (view, "entry-activated", &opened);
    const double before = gtk_adjustment_get_value (adj);
    PointerDriver::drag (GTK_WIDGET (view), 200, 250, 200, 100, 10, 16, true);
    run_main_loop_until ([&] { return !kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (area)); }, 3000);
    EXPECT_GT (gtk_adjustment_get_value (adj), before + 100) << "the drag pans the list";
    EXPECT_EQ (opened, 0);
    EXPECT_EQ (_tav_agenda_view_get_highlight (view), 0);
    PointerDriver::tap (GTK_WIDGET (view), 200, 150);
    run_main_loop_until ([&] { return opened > 0; }, 1000);
    EXPECT_EQ (opened, 1);
}

} // namespace
