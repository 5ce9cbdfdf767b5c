#include "HostApplet.h"
#include "HostScreenshot.h"

#include <calendarui.h>

#include <cstdio>
#include <ctime>

namespace tav::host {

namespace {

constexpr int kWidth = 360, kHeight = 376;

/* A home screen's wallpaper: a dusk gradient with two soft lights, so that
 * the applet's translucent panel shows what it lets through. */
gboolean on_wallpaper_expose_cb (GtkWidget *widget, GdkEventExpose *event, gpointer)
{
    cairo_t *cr = gdk_cairo_create (widget->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    const double w = widget->allocation.width, h = widget->allocation.height;
    cairo_pattern_t *sky = cairo_pattern_create_linear (0, 0, w * 0.4, h);
    cairo_pattern_add_color_stop_rgb (sky, 0, 0.16, 0.33, 0.55);
    cairo_pattern_add_color_stop_rgb (sky, 0.55, 0.55, 0.42, 0.62);
    cairo_pattern_add_color_stop_rgb (sky, 1, 0.96, 0.66, 0.45);
    cairo_set_source (cr, sky);
    cairo_paint (cr);
    cairo_pattern_destroy (sky);
    const struct { double x, y, r, a; } lights[] = { { 0.85, 0.18, 0.35, 0.45 }, { 0.1, 0.9, 0.45, 0.35 } };
    for (const auto &l : lights) {
        cairo_pattern_t *glow = cairo_pattern_create_radial (l.x * w, l.y * h, 0, l.x * w, l.y * h, l.r * w);
        cairo_pattern_add_color_stop_rgba (glow, 0, 1, 0.95, 0.85, l.a);
        cairo_pattern_add_color_stop_rgba (glow, 1, 1, 0.95, 0.85, 0);
        cairo_set_source (cr, glow);
        cairo_paint (cr);
        cairo_pattern_destroy (glow);
    }
    cairo_destroy (cr);
    return FALSE;
}

gboolean on_applet_read_cb (TavCalendarView *view, gpointer data)
{
    return answer_database_read (view, *static_cast<CalendarSet *> (data));
}

/* Answers with nothing: the empty state. */
gboolean on_empty_read_cb (TavCalendarView *view, gpointer)
{
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
    return TRUE;
}

GtkWidget *make_applet_window (bool offscreen, GtkWidget **applet_out)
{
    GtkWidget *window = offscreen ? gtk_offscreen_window_new () : gtk_window_new (GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_app_paintable (window, TRUE);
    gtk_widget_set_size_request (window, kWidth, kHeight);
    g_signal_connect (window, "expose-event", G_CALLBACK (on_wallpaper_expose_cb), nullptr);
    GtkWidget *applet = tav_home_applet_new ();
    gtk_container_set_border_width (GTK_CONTAINER (window), 16);
    gtk_container_add (GTK_CONTAINER (window), applet);
    *applet_out = applet;
    return window;
}

void open_calendar (App *app, const TavDate *date)
{
    if (!app->window) {
        /* Closing the calendar hides it; the applet stays. */
        app->build ();
        g_signal_connect (app->window, "delete-event", G_CALLBACK (gtk_widget_hide_on_delete), nullptr);
    }
    gtk_widget_show (GTK_WIDGET (app->window));
    if (date) {
        app->focus = *date;
        app->show ("week");
    } else {
        tav_date_init_today (&app->focus);
        app->show ("month");
    }
    gtk_window_present (GTK_WINDOW (app->window));
}

void on_entry_activated_cb (TavHomeApplet *, TavCalendarEntry *, TavDate *date, gpointer data)
{
    open_calendar (static_cast<App *> (data), date);
}

void on_calendar_activated_cb (TavHomeApplet *, gpointer data)
{
    open_calendar (static_cast<App *> (data), nullptr);
}

/* After the calendar was used, its changes show in the applet. */
gboolean on_applet_focus_cb (GtkWidget *, GdkEventFocus *, gpointer applet)
{
    tav_home_applet_reload (TAV_HOME_APPLET (applet));
    return FALSE;
}

/* The time zone file changed (the user picked another zone): the applet
 * rereads the clock. */
void on_zone_changed_cb (GFileMonitor *, GFile *, GFile *, GFileMonitorEvent event, gpointer applet)
{
    if (event == G_FILE_MONITOR_EVENT_CHANGES_DONE_HINT || event == G_FILE_MONITOR_EVENT_CREATED
        || event == G_FILE_MONITOR_EVENT_DELETED) {
        tzset ();
        tav_home_applet_time_changed (TAV_HOME_APPLET (applet));
    }
}

void flush ()
{
    settle_screen (5);
}

}  // namespace

void run_applet (App &app)
{
    GtkWidget *applet = nullptr;
    GtkWidget *window = make_applet_window (false, &applet);
    gtk_window_set_title (GTK_WINDOW (window), "Calendar applet");
    g_signal_connect (window, "destroy", G_CALLBACK (gtk_main_quit), nullptr);
    g_signal_connect (applet, "database-access-read", G_CALLBACK (on_applet_read_cb), app.calendars.get ());
    g_signal_connect (applet, "entry-activated", G_CALLBACK (on_entry_activated_cb), &app);
    g_signal_connect (applet, "calendar-activated", G_CALLBACK (on_calendar_activated_cb), &app);
    g_signal_connect (window, "focus-in-event", G_CALLBACK (on_applet_focus_cb), applet);
    GFile *zone = g_file_new_for_path ("/etc/localtime");
    GFileMonitor *monitor = g_file_monitor_file (zone, G_FILE_MONITOR_NONE, nullptr, nullptr);
    if (monitor) {
        g_signal_connect (monitor, "changed", G_CALLBACK (on_zone_changed_cb), applet);
    }
    gtk_widget_show_all (window);
    gtk_main ();
    if (monitor) {
        g_object_unref (monitor);
    }
    g_object_unref (zone);
    if (app.window) {
        gtk_widget_destroy (GTK_WIDGET (app.window));
    }
}

int render_applet (App &app, const std::string &dir)
{
    for (const bool empty : { false, true }) {
        GtkWidget *applet = nullptr;
        GtkWidget *window = make_applet_window (true, &applet);
        if (empty) {
            g_signal_connect (applet, "database-access-read", G_CALLBACK (on_empty_read_cb), nullptr);
        } else {
            g_signal_connect (applet, "database-access-read", G_CALLBACK (on_applet_read_cb), app.calendars.get ());
        }
        gtk_widget_show_all (window);
        flush ();
        gtk_widget_queue_draw (window);
        flush ();
        GdkPixbuf *shot = gtk_offscreen_window_get_pixbuf (GTK_OFFSCREEN_WINDOW (window));
        const std::string path = dir + (empty ? "/applet-empty.png" : "/applet.png");
        const bool saved = save_shot (shot, path);
        gtk_widget_destroy (window);
        if (!saved) {
            return 1;
        }
    }
    return 0;
}

}  // namespace tav::host
