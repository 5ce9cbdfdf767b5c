/* The week view widget under a real X server: navigation, scrolling,
 * taps with real button events, the current-time timer, painting. */

#include "TestSupport.h"
#include "../ViewTestSupport.h"
#include "TavCalendarColors.h"
#include "TavCalendarNote.h"
#include "TavGPtr.h"
#include "TavWeekViewInternal.h"
#include "KivoPannableArea.h"
#include "KivoStyle.h"

#include <gdk/gdktestutils.h>

#include <functional>
#include <string>
#include <vector>

using namespace tav::test;

namespace {

TavCalendarEntry *make_event (const char *title, TavDate day, int h1, int m1, int h2, int m2, int color,
                              gboolean all_day = FALSE, int extra_days = 0)
{
    auto *e = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, NULL));
    g_object_set (e, "title", title, "start-year", day.year, "start-month", day.month, "start-day", day.day,
                  "start-hour", h1, "start-minute", m1, "end-year", day.year, "end-month", day.month, "end-day",
                  day.day + extra_days, "end-hour", h2, "end-minute", m2, "color", color, "all-day", all_day,
                  "created-time", 100, NULL);
    return e;
}

/* A week view in a shown toplevel, on the week of Monday 9 March 2009. */
struct Fixture {
    GtkWidget *window = nullptr;
    TavWeekView *view = nullptr;
    std::vector<tav::GRefPtr<TavCalendarEntry>> entries;

    /* @area, when given, holds the view and goes into the window in its place. */
    explicit Fixture (int width = 800, int height = 420, const char *name = nullptr, GtkWidget *area = nullptr)
    {
        window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
        gtk_window_set_default_size (GTK_WINDOW (window), width, height);
        gtk_window_move (GTK_WINDOW (window), 0, 0);
        view = TAV_WEEK_VIEW (tav_week_view_new ());
        if (name)
            gtk_widget_set_name (GTK_WIDGET (view), name);
        if (area)
            gtk_container_add (GTK_CONTAINER (area), GTK_WIDGET (view));
        gtk_container_add (GTK_CONTAINER (window), area ? area : GTK_WIDGET (view));
        TavDate monday = { 2009, 2, 9 };
        tav_week_view_set_presented_interval_by_date (view, &monday);
        gtk_widget_show_all (window);
        flush_events ();
        const int shown = area ? 300 : height - 1; /* an area gives the view what it asks for */
        tav::test::run_main_loop_until ([&] { return GTK_WIDGET (view)->allocation.height > shown; }, 2000);
        flush_events ();
    }
    ~Fixture ()
    {
        gtk_widget_destroy (window);
        flush_events ();
    }

    TavCalendarEntry *add (TavCalendarEntry *e)
    {
        entries.push_back (tav::adoptGRef (e));
        tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (view), e);
        return e;
    }
    TavWeekViewPrivate *priv () const { return view->priv; }
    GtkAdjustment *adj () const { return view->priv->vadjustment.get (); }
    int table_width () const
    {
        int w, h;
        gdk_drawable_get_size (priv ()->table_win, &w, &h);
        return w;
    }
    /* The centre of column @col at table offset @table_y, in table window
     * coordinates after scrolling. */
    int col_x (int col) const
    {
        return (tav::week::column_x (table_width (), col) + tav::week::column_x (table_width (), col + 1)) / 2;
    }
    int win_y (int table_y) const { return table_y - static_cast<int> (gtk_adjustment_get_value (adj ())); }

    void tap (GdkWindow *win, int x, int y, int dy = 0)
    {
        flush_events ();
        ASSERT_TRUE (gdk_test_simulate_button (win, x, y, 1, GdkModifierType (0), GDK_BUTTON_PRESS));
        ASSERT_TRUE (gdk_test_simulate_button (win, x, y + dy, 1, GdkModifierType (0), GDK_BUTTON_RELEASE));
        flush_events ();
    }
    /* The view as painted on screen now, saved as @name in the build directory. */
    tav::GRefPtr<GdkPixbuf> shot (const char *name)
    {
        gdk_window_invalidate_rect (GTK_WIDGET (view)->window, NULL, TRUE);
        gdk_window_process_all_updates ();
        flush_events ();
        tav::GRefPtr<GdkPixbuf> pixbuf = tav::adoptGRef (pixbuf_of (GTK_WIDGET (view)->window));
        tav::GCharPtr path (g_build_filename (TAV_BUILD_ROOT, name, NULL));
        EXPECT_TRUE (pixbuf && gdk_pixbuf_save (pixbuf.get (), path.get (), "png", NULL, NULL)) << path.get ();
        return pixbuf;
    }
};

struct Recorder {
    std::vector<std::string> calls;
    static std::string day_text (int y, int m, int d)
    {
        return std::to_string (y) + "-" + std::to_string (m + 1) + "-" + std::to_string (d);
    }
    static void on_insert (TavWeekView *, TavDate *d, TavTime *t, gboolean all_day, Recorder *r)
    {
        r->calls.push_back ("insert " + day_text (d->year, d->month, d->day) + " " + std::to_string (t->hour) + ":" +
                            std::to_string (t->minute) + (all_day ? " all-day" : " timed"));
    }
    static void on_entry (TavWeekView *, TavCalendarEntry *e, TavDate *d, Recorder *r)
    {
        r->calls.push_back (std::string ("entry ") + tav_calendar_entry_get_title (e) + " " + std::to_string (d->day));
    }
    static void on_day (TavWeekView *, int y, int m, int d, Recorder *r) { r->calls.push_back ("day " + day_text (y, m, d)); }
    static void on_tasks (TavWeekView *, Recorder *r) { r->calls.push_back ("tasks"); }
    static void on_limit (TavWeekView *, Recorder *r) { r->calls.push_back ("year-limit"); }
    static void on_edit (TavWeekView *, TavCalendarEntry *e, Recorder *r) { r->calls.push_back (std::string ("edit ") + tav_calendar_entry_get_title (e)); }
    static void on_delete (TavWeekView *, TavCalendarEntry *e, Recorder *r) { r->calls.push_back (std::string ("delete ") + tav_calendar_entry_get_title (e)); }
    void connect (TavWeekView *view)
    {
        g_signal_connect (view, "insert-activated", G_CALLBACK (on_insert), this);
        g_signal_connect (view, "entry-activated", G_CALLBACK (on_entry), this);
        g_signal_connect (view, "day-activated", G_CALLBACK (on_day), this);
        g_signal_connect (view, "task-group-activated", G_CALLBACK (on_tasks), this);
        g_signal_connect (view, "year-limit-reached::0", G_CALLBACK (on_limit), this);
        g_signal_connect (view, "edit-entry-activated", G_CALLBACK (on_edit), this);
        g_signal_connect (view, "delete-entry-activated", G_CALLBACK (on_delete), this);
    }
    std::string joined () const
    {
        std::string out;
        for (const auto &c : calls)
            out += (out.empty () ? "" : "; ") + c;
        return out;
    }
};

std::string interval_of (TavWeekView *view)
{
    TavDateInterval i;
    if (!tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (view), &i))
        return "none";
    return Recorder::day_text (i.start.year, i.start.month, i.start.day) + ".." +
           Recorder::day_text (i.end.year, i.end.month, i.end.day);
}

TEST (WeekNavigation, WeeksFollowTheFirstDayAndTheYearLimits)
{
    REQUIRE_DISPLAY ();
    TavWeekView *view = TAV_WEEK_VIEW (g_object_ref_sink (tav_week_view_new ()));
    /* The first test of the program: a view installs the platform style
     * when it is made, not at the first long press. */
    EXPECT_TRUE (kivo_style_installed ());
    Recorder rec;
    rec.connect (view);
    int week_number = 0;

    struct Step { const char *label; std::function<void ()> act; const char *interval; const char *signals; };
    const Step steps[] = {
        { "a date picks its Monday-first week", [&] { TavDate d = { 2009, 2, 11 }; tav_week_view_set_presented_interval_by_date (view, &d); },
          "2009-3-9..2009-3-15", "" },
        { "next week", [&] { tav_week_view_select_next_week (view); }, "2009-3-16..2009-3-22", "" },
        { "previous twice crosses a month", [&] { tav_week_view_select_prev_week (view); tav_week_view_select_prev_week (view); },
          "2009-3-2..2009-3-8", "" },
        { "Sunday first moves the week back a day", [&] { tav_week_view_set_first_day_of_week (view, 0); },
          "2009-3-1..2009-3-7", "" },
        { "back to Monday", [&] { tav_week_view_set_first_day_of_week (view, 1); }, "2009-3-2..2009-3-8", "" },
        { "the last week of 2037 reaches into 2038", [&] { TavDate d = { 2037, 11, 21 }; tav_week_view_set_presented_interval_by_date (view, &d); tav_week_view_select_next_week (view); },
          "2037-12-28..2038-1-3", "" },
        { "a week starting in 2038 is refused", [&] { tav_week_view_select_next_week (view); },
          "2037-12-28..2038-1-3", "year-limit" },
        { "the first week of 1970 starts in 1969", [&] { TavDate d = { 1970, 0, 5 }; tav_week_view_set_presented_interval_by_date (view, &d); tav_week_view_select_prev_week (view); },
          "1969-12-29..1970-1-4", "" },
        { "a week wholly in 1969 is refused", [&] { tav_week_view_select_prev_week (view); },
          "1969-12-29..1970-1-4", "year-limit" },
    };
    for (const Step &s : steps) {
        SCOPED_TRACE (s.label);
        rec.calls.clear ();
        s.act ();
        EXPECT_EQ (interval_of (view), s.interval);
        EXPECT_EQ (rec.joined (), s.signals);
    }
    g_object_get (view, "week-number", &week_number, NULL);
    EXPECT_EQ (week_number, 1);
    {
        LogCapture capture;
        tav_week_view_set_first_day_of_week (view, 7);
        EXPECT_CRITICAL (capture, "first_day_of_week >= 0 && first_day_of_week <= (DAYS_IN_A_WEEK -1)");
        tav_week_view_set_presented_interval_by_date (view, NULL);
        EXPECT_CRITICAL (capture, "date != NULL");
        tav_week_view_select_next_week (NULL);
        EXPECT_CRITICAL (capture, "TAV_IS_WEEK_VIEW(week_view)");
        TavDateInterval inverted = { { 2009, 2, 15 }, { 2009, 2, 9 } };
        g_object_set (view, "presented-interval", &inverted, NULL);
        EXPECT_TRUE (capture.has_critical ("interval->start <= interval->end"));
        /* Impossible dates return at once with one critical; years the
         * views do not show reach the limit. */
        rec.calls.clear ();
        for (TavDate bad : { TavDate { 2009, 12, 1 }, TavDate { 2009, -1, 1 }, TavDate { 2009, 1, 30 } })
            tav_week_view_set_presented_interval_by_date (view, &bad);
        EXPECT_EQ (capture.count_criticals ("'tav_date_is_valid (date)' failed"), 3) << capture.dump ();
        for (TavDate far : { TavDate { 1000000000, 0, 1 }, TavDate { -5, 0, 1 } })
            tav_week_view_set_presented_interval_by_date (view, &far);
        EXPECT_EQ (rec.joined (), "year-limit; year-limit");
    }
    EXPECT_EQ (interval_of (view), "1969-12-29..1970-1-4");
    g_object_unref (view);

    /* A new view shows this week without reading, so a read into it thaws. */
    view = TAV_WEEK_VIEW (g_object_ref_sink (tav_week_view_new ()));
    TavDate today;
    tav_date_init_today (&today);
    TavDateInterval week;
    ASSERT_TRUE (tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (view), &week));
    EXPECT_TRUE (tav_date_interval_contains (&week, &today));
    tav::GRefPtr<TavCalendarEntry> now = tav::adoptGRef (make_event ("Now", today, 9, 0, 10, 0, 1));
    tav_calendar_view_freeze (TAV_CALENDAR_VIEW (view));
    tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (view), now.get ());
    tav_calendar_view_thaw (TAV_CALENDAR_VIEW (view));
    EXPECT_FALSE (tav_calendar_view_is_frozen (TAV_CALENDAR_VIEW (view)));
    int placed = 0;
    for (int col = 0; col < 7; col++)
        placed += g_list_length (_tav_week_view_get_day_list (view, col)->hour_entries);
    EXPECT_EQ (placed, 1);
    g_object_unref (view);
}

TEST (WeekScrolling, SnappingStopsAtTheEndOfTheTable)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 300);
    GtkAdjustment *adj = f.adj ();
    EXPECT_EQ (adj->upper, 24 * 70 + 68);
    EXPECT_EQ (adj->page_size, 300 - tav::week::kHeaderHeight);

    struct Row { const char *label; TavTime time; double value; } rows[] = {
        { "midnight", { 0, 0 }, 0 },
        { "an early hour", { 3, 30 }, 3 * 70 + 35 },
        { "after the bar", { 10, 0 }, 10 * 70 + 68 },
        { "23:59 stops at upper - page", { 23, 59 }, 24 * 70 + 68 - (300 - tav::week::kHeaderHeight) },
    };
    for (const Row &r : rows) {
        SCOPED_TRACE (r.label);
        tav_week_view_snap_to_time (f.view, &r.time);
        EXPECT_EQ (gtk_adjustment_get_value (adj), r.value);
    }
    tav_week_view_snap_to_all_day_bar (f.view);
    EXPECT_EQ (gtk_adjustment_get_value (adj), 7 * 70 + 59 * 70 / 60);

    LogCapture capture;
    tav_week_view_snap_to_time (f.view, NULL);
    EXPECT_CRITICAL (capture, "time != NULL");
}

TEST (WeekScrolling, PanningRepaintsWhenTheValueSettles)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 300);
    LogCapture capture;
    GtkAdjustment *adj = f.adj ();
    gtk_adjustment_set_value (adj, 100);
    gtk_adjustment_set_value (adj, 140);
    flush_events ();
    tav::test::run_main_loop_until ([&] { return f.priv ()->idle_tag == 0; }, 2000);
    EXPECT_EQ (f.priv ()->idle_tag, 0u);
    EXPECT_TRUE (capture.has_message ("Panning seems to have been stopped lets paint remainders")) << capture.dump ();
    EXPECT_EQ (f.priv ()->last_painted_value, 140);
}

TEST (WeekTaps, TapsEmitTheRightActivation)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 900);
    TavDate tue = { 2009, 2, 10 }, thu = { 2009, 2, 12 };
    f.add (make_event ("Dentist", tue, 10, 0, 11, 0, 8));
    f.add (make_event ("Holiday", thu, 0, 0, 0, 0, 3, TRUE));
    auto *t1 = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_TASK, "title", "Milk", "start-year", 2009,
                                                  "start-month", 2, "start-day", 13, NULL));
    auto *t2 = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_TASK, "title", "Bread", "start-year", 2009,
                                                  "start-month", 2, "start-day", 13, NULL));
    f.add (t1);
    f.add (t2);
    TavTime seven = { 7, 30 };
    tav_week_view_snap_to_time (f.view, &seven);
    flush_events ();
    Recorder rec;
    rec.connect (f.view);
    TavWeekViewPrivate *p = f.priv ();
    const int bar_y = 8 * 70 + 20;

    struct Tap { const char *label; GdkWindow *win; int x; int y; const char *expected; } taps[] = {
        { "empty timed slot", p->table_win, f.col_x (2), f.win_y (_tav_week_view_time_to_table_offset (f.view, 14, 20)),
          "insert 2009-3-11 14:0 timed" },
        { "empty all-day slot", p->table_win, f.col_x (0), f.win_y (bar_y), "insert 2009-3-9 0:0 all-day" },
        { "timed record", p->table_win, f.col_x (1), f.win_y (_tav_week_view_time_to_table_offset (f.view, 10, 30)),
          "entry Dentist 10" },
        { "all-day record", p->table_win, f.col_x (3), f.win_y (bar_y), "entry Holiday 12" },
        { "merged tasks", p->table_win, f.col_x (4), f.win_y (bar_y), "tasks" },
        { "day header", p->header_win, tav::week::kHourColumnWidth + f.col_x (5), 20, "day 2009-3-14" },
        { "hour column does nothing", p->hours_win, 10, 100, "" },
    };
    for (const Tap &t : taps) {
        SCOPED_TRACE (t.label);
        rec.calls.clear ();
        f.tap (t.win, t.x, t.y);
        EXPECT_EQ (rec.joined (), t.expected);
        EXPECT_TRUE (p->highlight.clear);
    }

    /* A release 30 pixels from the press is a pan, not a tap. */
    rec.calls.clear ();
    f.tap (p->table_win, f.col_x (2), f.win_y (_tav_week_view_time_to_table_offset (f.view, 14, 20)), 30);
    EXPECT_EQ (rec.joined (), "");
}

TEST (WeekAllDay, ACrowdedDayGrowsTheBarToSevenSlotsAndTheSeventhOpensTheDay)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 700);
    TavDate wed = { 2009, 2, 11 };
    EXPECT_EQ (_tav_week_view_get_all_day_bar_height (f.view), 48 + 20) << "an empty bar has one slot";
    for (const char *t : { "a", "b", "c", "d", "e", "f", "g", "h", "i" })
        f.add (make_event (t, wed, 0, 0, 0, 0, 1, TRUE));
    const int bar = 7 * 48 + 20;
    EXPECT_EQ (_tav_week_view_get_all_day_bar_height (f.view), bar);
    EXPECT_EQ (_tav_week_view_time_to_table_offset (f.view, 9, 0), 9 * 70 + bar) << "the hours after the bar move down";
    EXPECT_EQ (_tav_week_view_time_to_table_offset (f.view, 7, 30), 7 * 70 + 35) << "the hours before it stay";
    EXPECT_EQ (f.adj ()->upper, 24 * 70 + bar);
    tav_week_view_snap_to_all_day_bar (f.view);
    flush_events ();
    Recorder rec;
    rec.connect (f.view);
    GdkRectangle seventh = tav::week::all_day_entry_rect (f.priv (), f.table_width (), 2, 6);
    f.tap (f.priv ()->table_win, seventh.x + 10, f.win_y (seventh.y + 10));
    GdkRectangle first = tav::week::all_day_entry_rect (f.priv (), f.table_width (), 2, 0);
    f.tap (f.priv ()->table_win, first.x + 10, f.win_y (first.y + 10));
    EXPECT_EQ (rec.joined (), "day 2009-3-11; entry a 11");

    /* For a person to look at: the crowded bar, with the 12-hour clock. */
    g_object_set (f.view, "time-24hr-format", FALSE, NULL);
    f.add (make_event ("Trip to Rome", TavDate { 2009, 2, 10 }, 0, 0, 0, 0, 4, TRUE, 3));
    f.add (make_event ("Early call", TavDate { 2009, 2, 12 }, 7, 30, 8, 30, 7));
    tav_week_view_snap_to_all_day_bar (f.view);
    tav::GRefPtr<GdkPixbuf> shot = f.shot ("week-view-crowded.png");
    /* The seventh slot is the light "+n" field. */
    GdkRectangle more = tav::week::all_day_entry_rect (f.priv (), f.table_width (), 2, 6);
    EXPECT_EQ (rgb_at (shot.get (), tav::week::kHourColumnWidth + more.x + 3,
                       tav::week::kHeaderHeight + f.win_y (more.y + more.height / 2)), 0xd1d9e3u);
}

TEST (WeekEntries, BadInputIsRefusedWithItsMessage)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    TavDate tue = { 2009, 2, 10 };
    LogCapture capture;
    tav::GRefPtr<TavCalendarEntry> note = tav::adoptGRef (TAV_CALENDAR_ENTRY (tav_calendar_note_new ()));
    TavTimestamp ts = { tue, { 9, 0 } };
    EXPECT_FALSE (TAV_CALENDAR_VIEW_GET_CLASS (f.view)->add_entry_instance (TAV_CALENDAR_VIEW (f.view), &ts, note.get ()));
    EXPECT_TRUE (capture.has_warning ("No notes in the month view.")) << capture.dump ();

    tav::GRefPtr<TavCalendarEntry> inverted = tav::adoptGRef (make_event ("Backwards", tue, 9, 0, 10, 0, 1));
    g_object_set (inverted.get (), "end-day", 8, NULL);
    EXPECT_FALSE (TAV_CALENDAR_VIEW_GET_CLASS (f.view)->add_entry_instance (TAV_CALENDAR_VIEW (f.view), &ts, inverted.get ()));
    EXPECT_TRUE (capture.has_warning ("The start_date >= end_date, giving up.")) << capture.dump ();
    for (int col = 0; col < 7; col++) {
        EXPECT_EQ (_tav_week_view_get_day_list (f.view, col)->hour_entries, nullptr);
        EXPECT_EQ (_tav_week_view_get_day_list (f.view, col)->allday_entries, nullptr);
    }

    gboolean prev = TRUE, next = TRUE;
    TavDate outside = { 2009, 5, 1 };
    EXPECT_FALSE (tav_calendar_view_get_next_prev_status_for_entry (TAV_CALENDAR_VIEW (f.view), inverted.get (),
                                                                     &outside, &prev, &next));
    EXPECT_TRUE (capture.has_warning ("Date not found"));
}

TEST (WeekEntries, MultiDayEventsCoverEachDayAndLeaveTogether)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    TavDate sat = { 2009, 2, 14 }, wed = { 2009, 2, 11 };
    TavCalendarEntry *trip = f.add (make_event ("Trip", wed, 0, 0, 0, 0, 4, TRUE, 2));
    TavCalendarEntry *night = f.add (make_event ("Night shift", sat, 22, 0, 6, 0, 2, FALSE, 1));
    for (int col : { 2, 3, 4 })
        EXPECT_NE (week_entry_list_find_allday_wentry_for_entry (_tav_week_view_get_day_list (f.view, col), trip), nullptr);
    EXPECT_EQ (week_entry_list_find_allday_wentry_for_entry (_tav_week_view_get_day_list (f.view, 5), trip), nullptr);
    WeekEntry *sat_part = week_entry_list_find_hour_wentry_for_entry (_tav_week_view_get_day_list (f.view, 5), night);
    WeekEntry *sun_part = week_entry_list_find_hour_wentry_for_entry (_tav_week_view_get_day_list (f.view, 6), night);
    ASSERT_TRUE (sat_part && sun_part);
    auto span = [] (const WeekEntry *w) {
        return std::to_string (w->start_time->hour * 100 + w->start_time->minute) + "-" +
               std::to_string (w->end_time->hour * 100 + w->end_time->minute);
    };
    EXPECT_EQ (span (sat_part) + ", " + span (sun_part), "2200-2359, 0-600");

    EXPECT_TRUE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.view), trip));
    EXPECT_TRUE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.view), night));
    EXPECT_EQ (G_OBJECT (trip)->ref_count, 1u);
    EXPECT_EQ (G_OBJECT (night)->ref_count, 1u);
    EXPECT_FALSE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.view), trip));
}

time_t fixed_clock ()
{
    return 1236643200 + 14 * 3600 + 25 * 60; /* Tuesday 10 March 2009, 14:25 UTC */
}

TEST (WeekCurrentTime, TheTimerRunsOnlyWhileTopmostAndRealized)
{
    REQUIRE_DISPLAY ();
    TavWeekView *hidden = TAV_WEEK_VIEW (g_object_ref_sink (tav_week_view_new ()));
    g_object_set (hidden, "is-topmost", TRUE, NULL);
    EXPECT_FALSE (_tav_week_view_has_current_time_timer (hidden)) << "not realized";
    g_object_unref (hidden);

    Fixture f;
    _tav_week_view_set_clock (f.view, fixed_clock);
    const int refreshes = _tav_week_view_get_n_time_refreshes (f.view);
    g_object_set (f.view, "is-topmost", FALSE, NULL);
    EXPECT_FALSE (_tav_week_view_has_current_time_timer (f.view));
    EXPECT_EQ (_tav_week_view_get_n_time_refreshes (f.view), refreshes);

    g_object_set (f.view, "is-topmost", TRUE, NULL);
    EXPECT_TRUE (_tav_week_view_has_current_time_timer (f.view));
    EXPECT_EQ (_tav_week_view_get_n_time_refreshes (f.view), refreshes + 1);
    EXPECT_EQ (f.priv ()->now.tm_hour * 100 + f.priv ()->now.tm_min, 1425);
    EXPECT_TRUE (f.priv ()->days[1].is_today) << "the clock says Tuesday";
    g_object_set (f.view, "is-topmost", TRUE, NULL);
    EXPECT_EQ (_tav_week_view_get_n_time_refreshes (f.view), refreshes + 1) << "one timer only";

    g_object_set (f.view, "is-topmost", FALSE, NULL);
    EXPECT_FALSE (_tav_week_view_has_current_time_timer (f.view));
    g_object_set (f.view, "is-topmost", TRUE, NULL);
    gtk_widget_unrealize (GTK_WIDGET (f.view));
    EXPECT_FALSE (_tav_week_view_has_current_time_timer (f.view));
}

/* Five entries in one hour: four columns, the fifth under them, and a
 * "+1" mark that opens the day; an event ending at midnight leaves its end
 * day empty. (Short entries sharing a row are a layout table case.) */
TEST (WeekEntries, CrowdedHoursAndMidnightEnds)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 700);
    TavDate tue = { 2009, 2, 10 }, fri = { 2009, 2, 13 };
    for (const char *t : { "a", "b", "c", "d", "e" })
        f.add (make_event (t, tue, 10, 0, 11, 0, 7));
    TavCalendarEntry *late = f.add (make_event ("Late", fri, 22, 0, 0, 0, 3, FALSE, 1));
    TavTime nine = { 9, 30 };
    tav_week_view_snap_to_time (f.view, &nine);
    flush_events ();
    EXPECT_NE (week_entry_list_find_hour_wentry_for_entry (_tav_week_view_get_day_list (f.view, 4), late), nullptr);
    EXPECT_EQ (week_entry_list_find_hour_wentry_for_entry (_tav_week_view_get_day_list (f.view, 5), late), nullptr)
        << "no ghost on Saturday";

    TavWeekViewPrivate *p = f.priv ();
    const int width = f.table_width ();
    auto marks = tav::week::crowd_marks (p, width, 1);
    ASSERT_EQ (marks.size (), 1u);
    EXPECT_EQ (marks[0].hidden, 1);
    tav::GRefPtr<GdkPixbuf> shot = f.shot ("week-view-crowded-hour.png");
    const GdkRectangle m = marks[0].rect;
    EXPECT_EQ (rgb_at (shot.get (), tav::week::kHourColumnWidth + m.x + 2, tav::week::kHeaderHeight + f.win_y (m.y) + 2),
               0x1e88e5u) << "the mark is drawn over the columns";

    Recorder rec;
    rec.connect (f.view);
    const int y = f.win_y (_tav_week_view_time_to_table_offset (f.view, 10, 40));
    const int x0 = tav::week::column_x (width, 1), cw = tav::week::column_x (width, 2) - x0;
    for (int c = 0; c < 4; c++)
        f.tap (p->table_win, x0 + cw * (2 * c + 1) / 8, y);
    f.tap (p->table_win, m.x + m.width / 2, f.win_y (m.y + m.height / 2));
    EXPECT_EQ (rec.joined (), "entry a 10; entry b 10; entry c 10; entry d 10; day 2009-3-10");
}

TEST (WeekContextMenu, HoldingAnEntryOpensEditAndDeleteAndIsNoTap)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 480);
    Recorder rec;
    rec.connect (f.view);
    {
        LogCapture capture;
        tav_week_view_csm_edit_clicked (NULL, f.view);
        EXPECT_TRUE (capture.has_warning ("entry_for_csm == NULL"));
    }
    TavDate tue = { 2009, 2, 10 };
    TavCalendarEntry *bday = f.add (make_event ("Anna", tue, 0, 0, 0, 0, 5, TRUE));
    g_object_set (bday, "has-birthday", TRUE, NULL);
    f.add (make_event ("Lunch", tue, 7, 0, 7, 50, 1));
    TavTime six = { 6, 0 };
    tav_week_view_snap_to_time (f.view, &six);
    flush_events ();
    TavWeekViewPrivate *p = f.priv ();
    const int x = f.col_x (1), y = f.win_y (_tav_week_view_time_to_table_offset (f.view, 7, 20));
    ASSERT_TRUE (gdk_test_simulate_button (p->table_win, x, y, 1, GdkModifierType (0), GDK_BUTTON_PRESS));
    tav::test::run_main_loop_until ([&] { return p->menu && gtk_widget_get_visible (p->menu); }, 3000);
    ASSERT_TRUE (p->menu && gtk_widget_get_visible (p->menu)) << "the hold pops up the menu";
    gdk_test_simulate_button (p->table_win, x, y, 1, GdkModifierType (0), GDK_BUTTON_RELEASE);
    flush_events ();
    EXPECT_EQ (rec.joined (), "") << "a hold is not a tap";
    GList *items = gtk_container_get_children (GTK_CONTAINER (p->menu));
    ASSERT_EQ (g_list_length (items), 2u);
    EXPECT_STREQ (gtk_label_get_text (GTK_LABEL (gtk_bin_get_child (GTK_BIN (items->data)))), "Edit");
    EXPECT_STREQ (gtk_label_get_text (GTK_LABEL (gtk_bin_get_child (GTK_BIN (items->next->data)))), "Delete");
    gtk_menu_item_activate (GTK_MENU_ITEM (items->data));
    gtk_menu_item_activate (GTK_MENU_ITEM (items->next->data));
    gtk_menu_popdown (GTK_MENU (p->menu));
    flush_events ();
    EXPECT_EQ (rec.joined (), "edit Lunch; delete Lunch");

    p->entry_for_csm = tav::GRefPtr<TavCalendarEntry> (bday);
    tav_week_view_ensure_valid_items_in_csm (f.view);
    EXPECT_FALSE (gtk_widget_get_visible (GTK_WIDGET (items->data))) << "birthdays are not edited here";
    EXPECT_FALSE (gtk_widget_get_visible (GTK_WIDGET (items->next->data)));
    g_list_free (items);

    /* A hold on an empty slot or on a birthday (no item to show) offers
     * nothing. */
    p->entry_for_csm = nullptr;
    const int empty_y = f.win_y (_tav_week_view_time_to_table_offset (f.view, 6, 20));
    const int bday_y = f.win_y (tav::week::all_day_entry_rect (p, f.table_width (), 1, 0).y + 10);
    for (int hold_y : { empty_y, bday_y }) {
        ASSERT_TRUE (gdk_test_simulate_button (p->table_win, x, hold_y, 1, GdkModifierType (0), GDK_BUTTON_PRESS));
        tav::test::run_main_loop_until ([&] { return false; }, 1200);
        EXPECT_FALSE (gtk_widget_get_visible (p->menu)) << hold_y;
        gdk_test_simulate_button (p->table_win, x, hold_y, 1, GdkModifierType (0), GDK_BUTTON_RELEASE);
        flush_events ();
    }
}

TEST (WeekPainting, AMissingThemeColourIsReportedAndReplaced)
{
    REQUIRE_DISPLAY ();
    gtk_rc_parse_string ("style \"tav-bad-week\" { TavWeekView::font-color-date-labels = \"NoSuchColour\" }\n"
                         "widget \"*.bad-week\" style \"tav-bad-week\"\n");
    LogCapture capture;
    Fixture f (800, 420, "bad-week");
    gdk_window_invalidate_rect (f.priv ()->header_win, NULL, FALSE);
    gdk_window_process_all_updates ();
    flush_events ();
    EXPECT_TRUE (capture.has_warning ("logical color 'NoSuchColour' not found in theme")) << capture.dump ();
}

/* A busy week, rendered to PNG for a person to look at, and checked for the
 * colours that must be where the entries are. */
void fill_busy_week (Fixture &f)
{
    struct E { const char *title; const char *where; int day; int h1, m1, h2, m2, color; } timed[] = {
        { "Team stand-up", "Room 4", 9, 9, 0, 9, 30, 0 },
        { "Design review", "Lab", 9, 10, 0, 12, 0, 7 },
        { "Lunch with Eva", "Café Rosa", 9, 12, 30, 13, 30, 1 },
        { "Dentist", "Main St 12", 10, 8, 30, 9, 30, 8 },
        { "Budget", "", 10, 11, 0, 12, 30, 3 },
        { "Call Tokyo", "", 10, 11, 30, 12, 0, 4 },
        { "Interview", "HR", 10, 11, 45, 13, 0, 2 },
        { "Gym", "", 11, 7, 0, 8, 0, 9 },
        { "Workshop", "Hall B", 11, 13, 0, 17, 0, 7 },
        { "Coffee", "", 11, 14, 0, 14, 30, 5 },
        { "Code review", "", 12, 9, 0, 10, 30, 0 },
        { "Planning", "Room 2", 12, 9, 30, 11, 0, 4 },
        { "1:1 Sam", "", 12, 10, 0, 10, 45, 9 },
        { "Release", "", 12, 15, 0, 16, 0, 2 },
        { "Flight LH 123", "Airport", 13, 6, 15, 8, 45, 7 },
        { "Conference talk", "Auditorium", 13, 10, 0, 11, 30, 1 },
        { "Dinner", "Trattoria", 13, 19, 0, 21, 30, 3 },
        { "Market", "", 14, 9, 0, 10, 0, 9 },
        { "Football", "Park", 14, 15, 0, 17, 0, 8 },
        { "Brunch", "Home", 15, 10, 30, 12, 0, 5 },
    };
    for (const E &e : timed) {
        TavCalendarEntry *entry = make_event (e.title, TavDate { 2009, 2, e.day }, e.h1, e.m1, e.h2, e.m2, e.color);
        g_object_set (entry, "location", e.where, NULL);
        f.add (entry);
    }
    f.add (make_event ("Trade fair", TavDate { 2009, 2, 11 }, 0, 0, 0, 0, 4, TRUE, 2));
    f.add (make_event ("Holiday", TavDate { 2009, 2, 9 }, 0, 0, 0, 0, 3, TRUE));
    TavCalendarEntry *bday = f.add (make_event ("Anna's birthday", TavDate { 2009, 2, 13 }, 0, 0, 0, 0, 5, TRUE));
    g_object_set (bday, "has-birthday", TRUE, NULL);
    tav_calendar_view_refresh_entry (TAV_CALENDAR_VIEW (f.view), bday);
    for (const char *t : { "Pay rent", "Call mum" }) {
        auto *task = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_TASK, "title", t, "start-year", 2009,
                                                        "start-month", 2, "start-day", 10, "color", 1, NULL));
        f.add (task);
    }
}

TEST (WeekPainting, ABusyWeekIsPaintedWhereItsEntriesAre)
{
    REQUIRE_DISPLAY ();
    Fixture f (800, 480);
    _tav_week_view_set_clock (f.view, fixed_clock);
    tav_week_view_adjust_view_for_time_change (f.view);
    fill_busy_week (f);
    TavTime seven = { 7, 0 };
    tav_week_view_snap_to_time (f.view, &seven);
    tav::GRefPtr<GdkPixbuf> shot = f.shot ("week-view.png");
    auto pixel = [&] (int x, int y) { return rgb_at (shot.get (), x, y); };
    /* The stripe of "Design review" (blue) on Monday at 11:00. */
    GdkRectangle r = tav::week::hour_entry_rect (f.priv (), f.table_width (), 0,
                                                 week_entry_list_find_hour_wentry_for_entry (
                                                     _tav_week_view_get_day_list (f.view, 0), f.entries[1].get ()));
    const int sx = tav::week::kHourColumnWidth + r.x + 1;
    const int sy = tav::week::kHeaderHeight + f.win_y (r.y + r.height / 2);
    const tav::CalendarRgb &blue = tav::calendar_rgb (7);
    EXPECT_EQ (pixel (sx, sy), guint32 ((blue.r << 16) | (blue.g << 8) | blue.b)) << "stripe at " << sx << "," << sy;
    /* The hour column and the header are not left blank. */
    EXPECT_NE (pixel (5, tav::week::kHeaderHeight + 100), 0xffffffu);
    EXPECT_NE (pixel (400, 10), 0xffffffu);

    /* The afternoon, with the current-time marker across Tuesday. */
    TavTime eleven = { 11, 0 };
    tav_week_view_snap_to_time (f.view, &eleven);
    shot = f.shot ("week-view-afternoon.png");
    const int now_y = tav::week::kHeaderHeight + f.win_y (_tav_week_view_time_to_table_offset (f.view, 14, 25));
    const int tue_x = tav::week::kHourColumnWidth + f.col_x (1) + 20;
    const guint32 marker = pixel (tue_x, now_y);
    EXPECT_TRUE ((marker >> 16) > 200 && ((marker >> 8) & 0xff) < 70 && (marker & 0xff) < 70)
        << std::hex << marker << ": the red marker at 14:25 on Tuesday";
}

/* The rows of the header of column @col holding light text, first to last. */
std::pair<int, int> header_text_rows (GdkPixbuf *shot, int table_width, int col)
{
    const int x0 = tav::week::kHourColumnWidth + tav::week::column_x (table_width, col) + 4;
    const int x1 = tav::week::kHourColumnWidth + tav::week::column_x (table_width, col + 1) - 4;
    int first = -1, last = -1;
    for (int y = 4; y < tav::week::kHeaderHeight - 4; y++)
        for (int x = x0; x < x1; x++)
            if (((rgb_at (shot, x, y) >> 8) & 0xff) > 0xa0) {
                first = first < 0 ? y : first;
                last = y;
                break;
            }
    return { first, last };
}

TEST (WeekPainting, ANarrowHeaderPutsTheDateUnderTheWeekday)
{
    REQUIRE_DISPLAY ();
    std::pair<int, int> rows[2];
    for (int narrow : { 0, 1 }) {
        Fixture f (narrow ? 480 : 800, 420);
        tav::GRefPtr<GdkPixbuf> shot = f.shot (narrow ? "week-view-header-480.png" : "week-view-header-800.png");
        rows[narrow] = header_text_rows (shot.get (), f.table_width (), 2);
    }
    const auto [top1, bottom1] = rows[0];
    const auto [top2, bottom2] = rows[1];
    ASSERT_GE (top1, 0);
    ASSERT_GE (top2, 0);
    EXPECT_GT (bottom2 - top2, 3 * (bottom1 - top1) / 2) << "'Wed' over '11' on two lines";
}

TEST (WeekScrolling, APannableAreaDrivesTheView)
{
    REQUIRE_DISPLAY ();
    GtkWidget *area = kivo_pannable_area_new ();
    Fixture f (800, 480, nullptr, area);
    TavWeekView *view = f.view;
    GtkAdjustment *adj = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
    EXPECT_EQ (view->priv->vadjustment.get (), adj) << "the area hands its adjustment to the view";
    EXPECT_EQ (adj->upper, 24 * 70 + 68);
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, 300);
    flush_events ();
    EXPECT_EQ (gtk_adjustment_get_value (view->priv->vadjustment.get ()), 300);

    /* A tap through the area still reaches the view. */
    Recorder rec;
    rec.connect (view);
    f.tap (view->priv->table_win, f.col_x (3), f.win_y (_tav_week_view_time_to_table_offset (view, 5, 10)));
    EXPECT_EQ (rec.joined (), "insert 2009-3-12 5:0 timed");
}

TEST (WeekScrolling, AnUnpaintedValueWaitsForPanningToStop)
{
    REQUIRE_DISPLAY ();
    /* Not realized: nothing repaints, so the value never matches the
     * painted one and the idle gives up waiting after five passes. */
    TavWeekView *view = TAV_WEEK_VIEW (g_object_ref_sink (tav_week_view_new ()));
    LogCapture capture;
    GtkAdjustment *adj = view->priv->vadjustment.get ();
    adj->upper = 2000;
    adj->page_size = 100;
    gtk_adjustment_set_value (adj, 250);
    EXPECT_NE (view->priv->idle_tag, 0u);
    tav::test::run_main_loop_until ([&] { return view->priv->idle_tag == 0; }, 2000);
    EXPECT_EQ (view->priv->idle_tag, 0u);
    EXPECT_GE (capture.count_lines (tav::test::LoggedLine::LibMessage, "still panning is going on lets wait"), 1);
    EXPECT_EQ (view->priv->last_painted_value, 250);
    g_object_unref (view);
}

TEST (WeekNavigation, ThisWeekHoldsTodayAndNeighboursAreFound)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    tav_week_view_set_presented_interval_thisweek (f.view);
    TavDateInterval week;
    ASSERT_TRUE (tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (f.view), &week));
    TavDate today;
    tav_date_init_today (&today);
    EXPECT_TRUE (tav_date_interval_contains (&week, &today));
    TavCalendarProcessor *proc = tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (f.view));
    EXPECT_EQ (tav_calendar_processor_date_to_day_of_week (proc, &week.start), 1u);
    EXPECT_EQ (tav_calendar_processor_get_date_interval_in_days (proc, week.start, week.end), 6);

    TavDate monday = { 2009, 2, 9 }, tue = { 2009, 2, 10 };
    tav_week_view_set_presented_interval_by_date (f.view, &monday);
    TavCalendarEntry *first = f.add (make_event ("First", monday, 9, 0, 10, 0, 1));
    TavCalendarEntry *middle = f.add (make_event ("Middle", tue, 9, 0, 10, 0, 1));
    TavCalendarEntry *last = f.add (make_event ("Last", tue, 11, 0, 12, 0, 1));
    struct Row { const char *label; TavCalendarEntry *entry; TavDate date; gboolean prev, next; } rows[] = {
        { "first of the week", first, monday, FALSE, TRUE },
        { "in the middle", middle, tue, TRUE, TRUE },
        { "last of the week", last, tue, TRUE, FALSE },
    };
    for (const Row &r : rows) {
        SCOPED_TRACE (r.label);
        gboolean prev = 2, next = 2;
        EXPECT_TRUE (tav_calendar_view_get_next_prev_status_for_entry (TAV_CALENDAR_VIEW (f.view), r.entry, &r.date,
                                                                        &prev, &next));
        EXPECT_EQ (prev, r.prev);
        EXPECT_EQ (next, r.next);
    }
}

} // namespace
