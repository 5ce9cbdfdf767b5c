/* The agenda and day view widgets under a real X server: what a set
 * interval shows, taps and their thresholds with real pointer input, the
 * held-finger menu, multi-day rows, bad input, and the painted list. */

#include "../ViewTestSupport.h"
#include "ShownListView.h"
#include "TavCalendarNote.h"

#include <string>
#include <vector>

using namespace tav::test;

namespace {

constexpr TavDate kChosen { 2009, 2, 10 };

GtkWidget *agenda_on (const TavDate &date)
{
    GtkWidget *view = tav_agenda_view_new ();
    tav_agenda_view_set_presented_interval_by_date (TAV_AGENDA_VIEW (view), &date);
    return view;
}

/* An agenda view on 10 March 2009 in a shown window. */
struct Fixture : ShownListView<TavAgendaView> {
    Fixture () : ShownListView (agenda_on (kChosen), 420) {}
    AgendaEntryList *list () const { return _tav_agenda_view_get_list (view); }
    /* The centre of the row showing @entry (or the button), in the view. */
    int row_y (TavCalendarEntry *entry) const
    {
        for (int i = 0; i < agenda_entry_list_get_n_entry (list ()); i++) {
            AgendaEntry *r = agenda_entry_list_get_agenda_entry (list (), i);
            if (entry ? r->entry == entry : r->is_button) {
                GdkRectangle rect;
                agenda_entry_list_get_cell_rect_relative (list (), i, &rect);
                return rect.y + rect.height / 2;
            }
        }
        return -1;
    }
    void scroll_to_top ()
    {
        gtk_adjustment_set_value (_tav_agenda_view_get_vadjustment (view), 0);
        flush_events ();
    }
};

TEST (AgendaWidget, SetIntervalShowsHeaderButtonAndNoEvents)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    EXPECT_EQ (shape (f.list ()), "H + N ");
    TavDateInterval *shown = nullptr;
    gboolean set = FALSE;
    g_object_get (f.view, "presented-interval", &shown, "presented-interval-set", &set, NULL);
    EXPECT_TRUE (set);
    EXPECT_EQ (std::vector<int> ({ shown->start.month, shown->start.day, shown->end.month, shown->end.day }),
               std::vector<int> ({ 1, 23, 2, 25 }));
    tav_date_interval_free (shown);

    f.add (make_entry ("Lunch", { 2009, 2, 10, 12, 0 }, { 2009, 2, 10, 13, 0 }));
    f.add (make_entry ("Early", { 2009, 2, 9, 8, 0 }, { 2009, 2, 9, 9, 0 }));
    EXPECT_EQ (shape (f.list ()), "H Early H + Lunch ") << "the no-events line goes with the first entry";
    tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.view), f.entries[0].get ());
    EXPECT_EQ (shape (f.list ()), "H Early H + ");

    TavDayView *day = TAV_DAY_VIEW (tav_day_view_new ());
    g_object_ref_sink (day);
    tav_day_view_set_presented_interval_by_date (day, &kChosen);
    EXPECT_EQ (shape (_tav_day_view_get_list (day)), "+ N ") << "no date header in an empty day";
    tav::GRefPtr<TavCalendarEntry> lunch = tav::adoptGRef (make_entry ("Lunch", { 2009, 2, 10, 12, 0 }, { 2009, 2, 10, 13, 0 }));
    tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (day), lunch.get ());
    EXPECT_EQ (shape (_tav_day_view_get_list (day)), "H + Lunch ");
    gtk_widget_destroy (GTK_WIDGET (day));
    g_object_unref (day);
}

TEST (AgendaWidget, TapsAndThresholds)
{
    REQUIRE_XTEST ();
    Fixture f;
    TavCalendarEntry *lunch = f.add (make_entry ("Lunch", { 2009, 2, 10, 12, 0 }, { 2009, 2, 10, 13, 0 }));
    const int x = 200, y = f.row_y (lunch);
    ASSERT_GT (y, 0);
    PointerDriver::tap (GTK_WIDGET (f.view), x, y);
    PointerDriver::tap (GTK_WIDGET (f.view), x, f.row_y (nullptr));
    EXPECT_EQ (f.calls, std::vector<std::string> ({ "entry Lunch 10", "insert 10" }));

    struct Move {
        int dy;
        int highlight_after_move;
        size_t calls_after;
    };
    /* 27 pixels still shows the press but opens nothing; past 30 the press
     * is cancelled at once. */
    for (const Move &m : { Move { 27, 1, 2 }, Move { 31, 0, 2 }, Move { 20, 1, 3 } }) {
        f.calls.resize (std::min<size_t> (f.calls.size (), 2));
        PointerDriver::move_to (GTK_WIDGET (f.view), x, y);
        PointerDriver::press ();
        PointerDriver::wait (30);
        EXPECT_EQ (_tav_agenda_view_get_highlight (f.view), 1);
        PointerDriver::move_to (GTK_WIDGET (f.view), x, y + m.dy);
        PointerDriver::wait (30);
        EXPECT_EQ (_tav_agenda_view_get_highlight (f.view), m.highlight_after_move) << m.dy;
        PointerDriver::release ();
        PointerDriver::wait (30);
        EXPECT_EQ (f.calls.size (), m.calls_after) << m.dy;
        EXPECT_EQ (_tav_agenda_view_get_highlight (f.view), 0);
    }
}

TEST (AgendaWidget, HeldFingerMenuFitsTheEntry)
{
    REQUIRE_XTEST ();
    Fixture f;
    TavCalendarEntry *plain = f.add (make_entry ("Plain", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 }));
    TavCalendarEntry *task = f.add (make_task ("Task", { 2009, 2, 10, 0, 0 }));
    TavCalendarEntry *bday = f.add (make_birthday ("Anna", { 2009, 2, 10, 0, 0 }));
    struct Case {
        TavCalendarEntry *entry;
        bool edit, del;
        const char *edit_call;
    };
    for (const Case &c : { Case { plain, true, true, "edit Plain" }, Case { task, false, true, "entry Task 10" },
                           Case { bday, true, false, "edit Anna" } }) {
        f.scroll_to_top ();
        f.calls.clear ();
        PointerDriver::move_to (GTK_WIDGET (f.view), 200, f.row_y (c.entry));
        PointerDriver::press (3);
        PointerDriver::wait (60);
        GtkWidget *menu = _tav_agenda_view_get_context_menu (f.view);
        ASSERT_TRUE (menu != nullptr);
        EXPECT_TRUE (gtk_widget_get_visible (menu));
        GList *items = gtk_container_get_children (GTK_CONTAINER (menu));
        ASSERT_EQ (g_list_length (items), 2u);
        EXPECT_EQ (gtk_widget_get_visible (GTK_WIDGET (items->data)), c.edit) << c.edit_call;
        EXPECT_EQ (gtk_widget_get_visible (GTK_WIDGET (items->next->data)), c.del) << c.edit_call;
        gtk_menu_item_activate (GTK_MENU_ITEM (items->data));
        g_list_free (items);
        gtk_menu_popdown (GTK_MENU (menu));
        PointerDriver::release (3);
        PointerDriver::wait (30);
        EXPECT_EQ (f.calls, std::vector<std::string> ({ c.edit_call }));
    }
}

TEST (AgendaWidget, MultiDayRowsAndRefusedEntries)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    LogCapture log;
    f.add (make_entry ("Midnight", { 2009, 2, 10, 22, 0 }, { 2009, 2, 11, 0, 0 }));
    f.add (make_entry ("Late", { 2009, 2, 12, 22, 0 }, { 2009, 2, 13, 1, 0 }));
    EXPECT_EQ (shape (f.list ()), "H + Midnight H Late H Late ");
    EXPECT_STREQ (agenda_entry_list_get_agenda_entry (f.list (), 6)->start_text, "00:00");
    EXPECT_STREQ (agenda_entry_list_get_agenda_entry (f.list (), 6)->end_text, "01:00");
    g_object_set (f.view, "time-24hr-format", FALSE, NULL);
    EXPECT_STREQ (agenda_entry_list_get_agenda_entry (f.list (), 6)->end_text, " 1:00 am");
    EXPECT_STREQ (agenda_entry_list_get_agenda_entry (f.list (), 2)->start_text, "10:00 pm");

    const std::string before = shape (f.list ());
    f.add (make_entry ("Backwards", { 2009, 2, 10, 12, 0 }, { 2009, 2, 9, 12, 0 }));
    GObject *note = G_OBJECT (g_object_new (TAV_TYPE_CALENDAR_NOTE, NULL));
    TavTimestamp stamp = { kChosen, { 9, 0 } };
    EXPECT_FALSE (TAV_CALENDAR_VIEW_GET_CLASS (f.view)->add_entry_instance (TAV_CALENDAR_VIEW (f.view), &stamp,
                                                                           (TavCalendarEntry *) note));
    g_object_unref (note);
    tav::GRefPtr<TavCalendarEntry> stranger = tav::adoptGRef (make_entry ("Stranger", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 }));
    EXPECT_FALSE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.view), stranger.get ()));
    EXPECT_EQ (shape (f.list ()), before) << "refused and unknown entries change nothing";
    EXPECT_TRUE (log.has_warning ("No notes in agenda view.")) << log.dump ();

    TavDate missing = { 2009, 3, 1 };
    tav_agenda_view_jump_to_date (f.view, &missing);
    EXPECT_TRUE (log.has_warning ("The date 2009-4-1 not found.")) << log.dump ();
}

TEST (AgendaWidget, YearLimitsAndArgumentChecks)
{
    REQUIRE_DISPLAY ();
    TavDayView *day = TAV_DAY_VIEW (tav_day_view_new ());
    g_object_ref_sink (day);
    int limits = 0;
    count_signal (day, "year-limit-reached::0", &limits);
    struct Step {
        TavDate from;
        bool forward;
    };
    for (const Step &s : { Step { { 2037, 11, 31 }, true }, Step { { 1970, 0, 1 }, false } }) {
        tav_day_view_set_presented_interval_by_date (day, &s.from);
        s.forward ? tav_day_view_select_next_day (day) : tav_day_view_select_previous_day (day);
        TavDateInterval *shown = nullptr;
        g_object_get (day, "presented-interval", &shown, NULL);
        EXPECT_EQ (tav_date_compare (&shown->start, &s.from), 0);
        tav_date_interval_free (shown);
    }
    EXPECT_EQ (limits, 2);

    TavAgendaView *agenda = TAV_AGENDA_VIEW (tav_agenda_view_new ());
    g_object_ref_sink (agenda);
    int agenda_limits = 0;
    count_signal (agenda, "year-limit-reached::0", &agenda_limits);
    TavDate far = { 2040, 0, 1 };
    tav_agenda_view_set_presented_interval_by_date (agenda, &far);
    EXPECT_EQ (agenda_limits, 1);
    EXPECT_EQ (agenda_entry_list_get_n_entry (_tav_agenda_view_get_list (agenda)), 0);

    GtkWidget *label = gtk_label_new ("not a view");
    g_object_ref_sink (label);
    TavDate date = kChosen;
    struct Check {
        const char *condition;
        std::function<void ()> call;
    };
    const Check checks[] = {
        { "TAV_IS_AGENDA_VIEW(agenda_view)", [&] { tav_agenda_view_set_presented_interval_by_date (nullptr, &date); } },
        { "TAV_IS_AGENDA_VIEW(agenda_view)", [&] { tav_agenda_view_jump_to_date ((TavAgendaView *) label, &date); } },
        { "date != NULL", [&] { tav_agenda_view_set_presented_interval_by_date (agenda, nullptr); } },
        { "title != NULL", [&] { tav_agenda_view_append_insert_button (agenda, nullptr, &date); } },
        { "date != NULL", [&] { tav_agenda_view_append_header (agenda, "x", nullptr); } },
        { "TAV_IS_DAY_VIEW(day_view)", [&] { tav_day_view_select_next_day ((TavDayView *) label); } },
        { "date != NULL", [&] { tav_day_view_jump_to_date (day, nullptr); } },
    };
    for (const Check &c : checks) {
        LogCapture log;
        c.call ();
        EXPECT_CRITICAL (log, c.condition);
    }
    gtk_widget_destroy (GTK_WIDGET (agenda));
    g_object_unref (agenda);
    gtk_widget_destroy (GTK_WIDGET (day));
    g_object_unref (day);
    g_object_unref (label);
}

TEST (AgendaWidget, PaintsTodayPinnedOnTheAccent)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    TavDate today;
    tav_date_init_today (&today);
    tav_agenda_view_set_presented_interval_by_date (f.view, &today);
    for (int i = 0; i < 8; i++)
        f.add (make_entry ("Busy", { today.year, today.month, today.day, 8 + i, 0 },
                           { today.year, today.month, today.day, 9 + i, 0 }));
    tav_agenda_view_jump_to_date (f.view, &today);
    flush_events ();
    tav::GRefPtr<GdkPixbuf> shot = tav::adoptGRef (widget_snapshot (GTK_WIDGET (f.view)));
    ASSERT_TRUE (shot);
    gdk_pixbuf_save (shot.get (), TAV_BUILD_ROOT "/agenda-widget.png", "png", NULL, NULL);
    /* The pinned header's pill, left of its text; a card below it. */
    EXPECT_EQ (rgb_at (shot.get (), 20, 20), 0x1e88e5u);
    EXPECT_EQ (rgb_at (shot.get (), 450, 100), 0x2d3b48u);
    EXPECT_GT (_tav_agenda_view_get_n_paints (f.view), 0);
}

/* A crowded span and an empty one at the host's size, saved for a look:
 * the crowded one shows a card per row, the empty one the no-events line
 * under the chosen date's button. */
TEST (AgendaWidget, CrowdedAndEmptySpans)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    gtk_window_resize (GTK_WINDOW (f.window), 800, 432);
    run_main_loop_until ([&] { return GTK_WIDGET (f.view)->allocation.width == 800; }, 2000);
    tav::GRefPtr<GdkPixbuf> empty = tav::adoptGRef (widget_snapshot (GTK_WIDGET (f.view)));
    gdk_pixbuf_save (empty.get (), TAV_BUILD_ROOT "/agenda-empty.png", "png", NULL, NULL);
    auto light_pixels = [] (GdkPixbuf *p, int y0, int y1, guint level = 0xa0) {
        int n = 0;
        for (int y = y0; y < y1; y++)
            for (int x = 0; x < gdk_pixbuf_get_width (p); x++)
                n += (rgb_at (p, x, y) & 0xff) > level;
        return n;
    };
    /* Button strip and the "No events" line below it. */
    EXPECT_GT (light_pixels (empty.get (), 70, 110), 50);

    f.add (make_entry ("Trip to Lisbon", { 2009, 2, 9, 8, 0 }, { 2009, 2, 12, 18, 0 }, false, 3));
    f.add (make_entry ("Conference", { 2009, 2, 10, 0, 0 }, { 2009, 2, 10, 0, 0 }, true, 1));
    f.add (make_task ("Send the slides", { 2009, 2, 10, 0, 0 }));
    f.add (make_birthday ("Anna's birthday", { 2009, 2, 10, 0, 0 }));
    TavCalendarEntry *talk = make_entry ("Keynote", { 2009, 2, 10, 9, 30 }, { 2009, 2, 10, 10, 30 }, false, 7);
    g_object_set (talk, "location", "Hall A", "description", "Opening talk\nsecond line", "alarm-code",
                  TavCalendarAlarm15Min, NULL);
    f.add (talk);
    f.add (make_entry ("Lunch with the team", { 2009, 2, 10, 12, 0 }, { 2009, 2, 10, 13, 0 }, false, 9));
    tav_agenda_view_jump_to_date (f.view, &kChosen);
    flush_events ();
    tav::GRefPtr<GdkPixbuf> crowded = tav::adoptGRef (widget_snapshot (GTK_WIDGET (f.view)));
    gdk_pixbuf_save (crowded.get (), TAV_BUILD_ROOT "/agenda-crowded.png", "png", NULL, NULL);
    EXPECT_EQ (shape (f.list ()), "H Trip to Lisbon H + Trip to Lisbon Conference Send the slides Anna's birthday "
                                  "Keynote Lunch with the team H Trip to Lisbon H Trip to Lisbon ");
    /* Row 4 (the trip's middle day) is a card at the top after the jump. */
    EXPECT_EQ (rgb_at (crowded.get (), 700, 40 + 35), 0x2d3b48u);

    /* Header titles from outside: broken markup and invalid UTF-8 are
     * painted as plain text, without a warning. */
    TavDate later = { 2009, 2, 20 }, latest = { 2009, 2, 21 };
    tav_agenda_view_append_header (f.view, "<b>Broken", &later);
    tav_agenda_view_append_header (f.view, "Caf\xe9", &latest);
    tav_calendar_view_recalculate_entries (TAV_CALENDAR_VIEW (f.view));
    GtkAdjustment *adj = _tav_agenda_view_get_vadjustment (f.view);
    gtk_adjustment_set_value (adj, adj->upper - adj->page_size);
    LogCapture log;
    tav::GRefPtr<GdkPixbuf> end = tav::adoptGRef (widget_snapshot (GTK_WIDGET (f.view)));
    ASSERT_TRUE (end);
    EXPECT_EQ (log.lines ().size (), 0u) << log.dump ();
    GdkRectangle rect;
    agenda_entry_list_get_cell_rect_relative (f.list (), agenda_entry_list_find_header (f.list (), &later), &rect);
    ASSERT_GE (rect.y, 34);
    EXPECT_GT (light_pixels (end.get (), rect.y, rect.y + rect.height, 0x70), 40) << "the broken title is shown as text";
}

} // namespace
