/* The home applet under a real X server: fed through its sources as the
 * views are, against a fixed clock; the timer, "time-changed", taps with
 * real pointer events, and what the picture shows. */
#include "TestSupport.h"
#include "../platform/PointerDriver.h"
#include "../views/ViewTestSupport.h"
#include "TavCalendarColors.h"
#include "TavGPtr.h"
#include "TavHomeAppletInternal.h"
#include "TavMemorySource.h"

#include <string>
#include <vector>

using namespace tav::test;
using tav::applet::local_seconds;

namespace {

/* Tests run in UTC: the wall clock and time_t agree. */
time_t g_now;
time_t fake_clock ()
{
    return g_now;
}
void set_now (int month, int day, int hour, int minute = 0)
{
    g_now = static_cast<time_t> (local_seconds ({ { 2009, month, day }, { hour, minute } }));
}

constexpr int kMarch = 2;

Stamp march (int day, int hour = 0, int minute = 0)
{
    return { 2009, kMarch, day, hour, minute };
}

gboolean on_read_cb (TavCalendarView *view, gpointer data);

/* An applet over two memory calendars, "Work" (green) and a hidden one,
 * answering its reads as a host does. Monday 9 March 2009, 10:30. */
struct Fixture {
    MemorySourcePtr work { tav_memory_source_new ("Work", TavCalendarColorGreen, CalendarSourceTypeLocal) };
    MemorySourcePtr hidden { tav_memory_source_new ("Hidden", TavCalendarColorRed, CalendarSourceTypeLocal) };
    TavHomeApplet *applet = nullptr;
    GtkWidget *window = nullptr;
    int reads = 0;

    Fixture ()
    {
        set_now (kMarch, 9, 10, 30);
        g_object_set (hidden.get (), "visible", FALSE, NULL);
        applet = TAV_HOME_APPLET (g_object_ref_sink (tav_home_applet_new ()));
        _tav_home_applet_set_clock (applet, fake_clock);
        g_signal_connect (applet, "database-access-read", G_CALLBACK (on_read_cb), this);
    }
    ~Fixture ()
    {
        if (window)
            gtk_widget_destroy (window);
        g_object_unref (applet);
        flush_events ();
    }
    TavCalendarEntry *add (TavMemorySource *source, TavCalendarEntry *entry)
    {
        tav_memory_source_add (source, entry);
        g_object_unref (entry);
        return entry;
    }
    /* Shows the applet over a magenta window: the first map reads. */
    void show ()
    {
        window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
        gtk_widget_set_app_paintable (window, TRUE);
        g_signal_connect (window, "expose-event", G_CALLBACK (+[] (GtkWidget *w, GdkEventExpose *e) {
                              cairo_t *cr = gdk_cairo_create (w->window);
                              cairo_set_source_rgb (cr, 1, 0, 1);
                              cairo_paint (cr);
                              cairo_destroy (cr);
                              return FALSE;
                          }), NULL);
        gtk_window_set_default_size (GTK_WINDOW (window), 340, 350);
        gtk_window_move (GTK_WINDOW (window), 20, 20);
        gtk_container_add (GTK_CONTAINER (window), GTK_WIDGET (applet));
        gtk_widget_show_all (window);
        flush_events ();
        run_main_loop_until ([&] { return GTK_WIDGET (applet)->allocation.height == 350; }, 2000);
        flush_events ();
    }
    std::string rows () const
    {
        std::string out;
        for (int n = 0; n < tav_home_applet_get_n_rows (applet); ++n)
            out += _tav_home_applet_describe_row (applet, n) + "\n";
        return out;
    }
    /* The middle of row @n, in the applet's coordinates. */
    void row_centre (int n, int *x, int *y) const
    {
        int w, h;
        tav::applet::row_rect (_tav_home_applet_get_geometry (applet), n, x, y, &w, &h);
        *x += w / 2;
        *y += h / 2;
    }
    std::string timer () const
    {
        TavTimestamp at;
        guint delay = 0;
        if (!_tav_home_applet_get_timer (applet, &at, &delay))
            return "none";
        char text[64];
        g_snprintf (text, sizeof text, "%02d.%02d. %02d:%02d in %us", at.date.day, at.date.month + 1, at.time.hour,
                    at.time.minute, delay / 1000);
        return text;
    }
};

gboolean on_read_cb (TavCalendarView *view, gpointer data)
{
    Fixture *f = static_cast<Fixture *> (data);
    ++f->reads;
    TavDateInterval interval;
    if (!tav_calendar_view_get_presented_interval (view, &interval))
        return FALSE;
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    for (TavMemorySource *source : { f->work.get (), f->hidden.get () }) {
        GList *events = tav_memory_source_list_events (source, &interval);
        GList *tasks = tav_memory_source_list_tasks (source);
        tav_calendar_view_add_entries (view, events);
        tav_calendar_view_add_entries (view, tasks);
        g_list_free_full (events, g_object_unref);
        g_list_free_full (tasks, g_object_unref);
    }
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
    return TRUE;
}

/* A busy Monday: a weekly meeting in progress, all-day, tasks (one done),
 * a yearly birthday and an event of a hidden calendar. */
struct BusyMonday : Fixture {
    TavCalendarEntry *standup, *lunch;
    BusyMonday ()
    {
        standup = add (work.get (), make_entry ("Standup", march (2, 9), march (2, 11)));
        g_object_set (standup, "repeat-code", TavCalendarRepeatsEveryWeek, NULL);
        lunch = add (work.get (), make_entry ("Lunch", march (9, 14), march (9, 15)));
        g_object_set (lunch, "location", "Canteen", NULL);
        add (work.get (), make_entry ("Holiday", march (9), march (9), true));
        add (work.get (), make_task ("Report", march (9)));
        g_object_set (add (work.get (), make_task ("Filed", march (9))), "done", TRUE, NULL);
        TavCalendarEntry *anna = add (work.get (), make_birthday ("Anna", { 1979, kMarch, 10, 0, 0 }));
        g_object_set (anna, "repeat-code", TavCalendarRepeatsEveryYear, "birth-year", 1979, NULL);
        add (hidden.get (), make_entry ("Secret", march (9, 12), march (9, 13)));
    }
};

} // namespace

TEST (AppletWidget, ChoosesFromWhatTheSourcesGive)
{
    REQUIRE_DISPLAY ();
    BusyMonday f;
    f.show ();
    EXPECT_EQ (f.reads, 1);
    EXPECT_EQ (f.rows (), "Now | Standup | \n"
                          "Today | Holiday | \n"
                          "Today | Report | \n"
                          "Today 14:00 | Lunch | Canteen\n"
                          "Tomorrow | Anna (30) | \n");
    TavCalendarEntry *entry = nullptr;
    TavTimestamp start;
    ASSERT_TRUE (tav_home_applet_get_row (f.applet, 0, &entry, &start));
    EXPECT_EQ (entry, f.standup);
    EXPECT_EQ (start.date.day, 9) << "the instance, not the first occurrence";
    EXPECT_FALSE (tav_home_applet_get_row (f.applet, 5, &entry, &start));

    /* 12-hour times; then the host changes an entry. */
    g_object_set (f.applet, "time-24hr-format", FALSE, NULL);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 3), "Today 2:00 pm | Lunch | Canteen");
    g_object_set (f.lunch, "start-hour", 10, NULL);
    tav_calendar_view_refresh_entry (TAV_CALENDAR_VIEW (f.applet), f.lunch);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 1), "Now | Lunch | Canteen");
    tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (f.applet), f.lunch);
    EXPECT_EQ (f.rows ().find ("Lunch"), std::string::npos) << f.rows ();
}

TEST (AppletWidget, LooksFurtherAheadOnlyWhenTheWeekIsQuiet)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    f.add (f.work.get (), make_entry ("Dentist", { 2009, 3, 20, 9, 0 }, { 2009, 3, 20, 10, 0 }));
    f.show ();
    EXPECT_EQ (f.reads, 3) << "eight days, a month, a year";
    EXPECT_EQ (f.rows (), "20 Apr 09:00 | Dentist | \n");
    TavDateInterval *interval = nullptr;
    g_object_get (f.applet, "presented-interval", &interval, NULL);
    ASSERT_NE (interval, nullptr);
    tav::GCharPtr end (tav_date_to_string (&interval->end));
    EXPECT_STREQ (end.get (), "09.03.2010");
    tav_date_interval_free (interval);
}

TEST (AppletWidget, OneTimerForTheNextStartEndOrMidnight)
{
    REQUIRE_DISPLAY ();
    BusyMonday f;
    f.show ();
    EXPECT_EQ (f.timer (), "09.03. 11:00 in 1800s") << "the standup ends";

    set_now (kMarch, 9, 11, 0);
    _tav_home_applet_fire_timer (f.applet);
    EXPECT_EQ (f.timer (), "09.03. 14:00 in 10800s");
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 4), "16 Mar 09:00 | Standup | ") << f.rows ();

    set_now (kMarch, 9, 14, 0);
    _tav_home_applet_fire_timer (f.applet);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 0), "Now | Lunch | Canteen");
    EXPECT_EQ (f.timer (), "09.03. 15:00 in 3600s");

    set_now (kMarch, 9, 15, 0);
    _tav_home_applet_fire_timer (f.applet);
    EXPECT_EQ (f.timer (), "10.03. 00:00 in 32400s") << "nothing before midnight";

    /* Midnight: the days ahead are read again and yesterday is gone. */
    const int reads = f.reads;
    set_now (kMarch, 10, 0, 0);
    _tav_home_applet_fire_timer (f.applet);
    EXPECT_GT (f.reads, reads);
    EXPECT_EQ (f.rows (), "Today | Anna (30) | \n"
                          "Monday 09:00 | Standup | \n"
                          "23 Mar 09:00 | Standup | \n"
                          "30 Mar 09:00 | Standup | \n"
                          "6 Apr 09:00 | Standup | \n")
        << "a quiet week: the month ahead is read";
    EXPECT_EQ (f.timer (), "11.03. 00:00 in 86400s");

    /* The clock is set forward: the host says so and the applet follows. */
    set_now (kMarch, 16, 10, 0);
    g_signal_emit_by_name (f.applet, "time-changed");
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 0), "Now | Standup | ");
    EXPECT_EQ (f.timer (), "16.03. 11:00 in 3600s");
    set_now (kMarch, 16, 8, 59);
    tav_home_applet_time_changed (f.applet);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 0), "Today 09:00 | Standup | ");
    EXPECT_EQ (f.timer (), "16.03. 09:00 in 60s");
}

TEST (AppletWidget, TapsReportTheInstanceOrOpenTheCalendar)
{
    REQUIRE_XTEST ();
    BusyMonday f;
    f.show ();
    struct Seen {
        std::vector<std::string> taps;
    } seen;
    g_signal_connect (f.applet, "entry-activated", G_CALLBACK (+[] (TavHomeApplet *, TavCalendarEntry *e, TavDate *d,
                                                                    Seen *s) {
                          tav::GCharPtr date (tav_date_to_string (d));
                          s->taps.push_back (std::string (tav_calendar_entry_get_title (e)) + " " + date.get ());
                      }), &seen);
    g_signal_connect_swapped (f.applet, "calendar-activated",
                              G_CALLBACK (+[] (Seen *s) { s->taps.push_back ("calendar"); }), &seen);
    GtkWidget *w = GTK_WIDGET (f.applet);
    int x, y;
    f.row_centre (0, &x, &y);
    PointerDriver::tap (w, x, y);
    f.row_centre (4, &x, &y);
    PointerDriver::tap (w, x, y);
    PointerDriver::tap (w, x, 20);                         /* the date line */
    f.row_centre (2, &x, &y);
    PointerDriver::drag (w, x, y, x, y + 30, 3, 10, true); /* a pan */
    PointerDriver::move_to (w, x, y);
    const std::vector<std::string> expected = { "Standup 09.03.2009", "Anna 10.03.2009", "calendar" };
    EXPECT_EQ (seen.taps, expected);
}

TEST (AppletWidget, TranslucentPanelColourMarksAndEmptyState)
{
    REQUIRE_DISPLAY ();
    BusyMonday f;
    f.show ();
    const tav::applet::AppletGeometry g = _tav_home_applet_get_geometry (f.applet);
    int x, y, w, h;
    tav::applet::row_rect (g, 3, &x, &y, &w, &h);
    tav::GRefPtr<GdkPixbuf> shot = tav::adoptGRef (pixbuf_of (f.window->window));
    ASSERT_TRUE (shot);
    const tav::CalendarRgb &green = tav::calendar_rgb (TavCalendarColorGreen);
    EXPECT_EQ (rgb_at (shot.get (), x + 12, y + h / 2), guint32 (green.r << 16 | green.g << 8 | green.b))
        << "Lunch's calendar colour";
    /* The panel lets the magenta background through, darkened. */
    const guint32 panel = rgb_at (shot.get (), x + w - 6, y + 4);
    EXPECT_GT (panel >> 16, 0x50u);
    EXPECT_LT (panel >> 16, 0x90u);
    EXPECT_LT ((panel >> 8) & 0xff, 0x30u);
    EXPECT_EQ (rgb_at (shot.get (), 1, 1), 0xff00ffu) << "outside the rounded panel";

    /* Nothing to show: one line, and the panel ends below it. */
    tav_memory_source_destroy (f.work.release ());
    f.work.reset (tav_memory_source_new ("Work", TavCalendarColorGreen, CalendarSourceTypeLocal));
    tav_home_applet_reload (f.applet);
    EXPECT_EQ (tav_home_applet_get_n_rows (f.applet), 0);
    flush_events ();
    shot = tav::adoptGRef (pixbuf_of (f.window->window));
    tav::applet::row_rect (g, 0, &x, &y, &w, &h);
    int light = 0;
    for (int px = x; px < x + w; ++px)
        light += (rgb_at (shot.get (), px, y + h / 2) & 0xff00) > 0xa000;
    EXPECT_GT (light, 10) << "the empty line is written";
    tav::applet::row_rect (g, 2, &x, &y, &w, &h);
    EXPECT_EQ (rgb_at (shot.get (), x + w / 2, y + h / 2), 0xff00ffu);
}

TEST (AppletWidget, BadInput)
{
    REQUIRE_DISPLAY ();
    Fixture f;
    {
        LogCapture log;
        tav_home_applet_reload (nullptr);
        tav_home_applet_time_changed (nullptr);
        EXPECT_EQ (tav_home_applet_get_n_rows (nullptr), 0);
        EXPECT_FALSE (tav_home_applet_get_row (reinterpret_cast<TavHomeApplet *> (f.work.get ()), 0, nullptr,
                                               nullptr));
        EXPECT_EQ (log.count_criticals ("TAV_IS_HOME_APPLET (applet)' failed"), 4) << log.dump ();
    }
    {
        LogCapture log;
        tav::GRefPtr<TavCalendarEntry> note =
            tav::adoptGRef (make_entry ("n", march (9, 12), march (9, 13), false, 0, TAV_TYPE_CALENDAR_NOTE));
        tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (f.applet), note.get ());
        EXPECT_TRUE (log.has_warning ("No notes in the home applet.")) << log.dump ();
        EXPECT_TRUE (_tav_home_applet_get_instances (f.applet).empty ());
    }
    /* A title that is not UTF-8 is repaired by the entry, a place by the
 * applet, and both are shown. */
    TavCalendarEntry *odd = f.add (f.work.get (), make_entry ("x", march (9, 12), march (9, 13)));
    {
        LogCapture log;
        g_object_set (odd, "title", "A\xff" "B", "location", "Room\xff", NULL);
    }
    /* An event that ends before it starts lasts a minute. */
    f.add (f.work.get (), make_entry ("Backwards", march (9, 13), march (9, 11)));
    tav_home_applet_reload (f.applet);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 0), "Today 12:00 | A?B | Room\xef\xbf\xbd");
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 1), "Today 13:00 | Backwards | ");
    set_now (kMarch, 9, 13, 0);
    tav_home_applet_time_changed (f.applet);
    EXPECT_EQ (_tav_home_applet_describe_row (f.applet, 0), "Now | Backwards | ");
    EXPECT_EQ (f.timer (), "09.03. 13:01 in 60s");
    /* ...and painted without complaint. */
    f.show ();
}
