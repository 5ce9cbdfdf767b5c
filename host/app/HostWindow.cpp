#include "HostWindow.h"

#include "HostLists.h"

#include <calendarui.h>

#include <algorithm>
#include <cstdio>

namespace tav::host {

namespace {

void month_go_to (GtkWidget *view, const TavDate &date)
{
    tav_calendar_select_month (TAV_CALENDAR (view), date.month, date.year);
}

void month_step (GtkWidget *view, int direction)
{
    if (direction < 0) {
        tav_calendar_select_prev_month (TAV_CALENDAR (view));
    } else {
        tav_calendar_select_next_month (TAV_CALENDAR (view));
    }
}

void week_go_to (GtkWidget *view, const TavDate &date)
{
    tav_week_view_set_presented_interval_by_date (TAV_WEEK_VIEW (view), &date);
    /* Open on the working day rather than at midnight. */
    const TavTime morning = {7, 0};
    tav_week_view_snap_to_time (TAV_WEEK_VIEW (view), &morning);
}

void week_step (GtkWidget *view, int direction)
{
    if (direction < 0) {
        tav_week_view_select_prev_week (TAV_WEEK_VIEW (view));
    } else {
        tav_week_view_select_next_week (TAV_WEEK_VIEW (view));
    }
}

const std::vector<ViewKind> kViews = {
    {"month", "Month", tav_calendar_new, false, month_go_to, month_step},
    {"week", "Week", tav_week_view_new, true, week_go_to, week_step},
    {"tasks", "Tasks", tav_task_view_new, true, list_go_to, list_step},
    {"notes", "Notes", tav_note_view_new, true, list_go_to, list_step},
};


}  // namespace

const std::vector<ViewKind> &view_kinds ()
{
    return kViews;
}

const ViewKind *find_view (const std::string &name)
{
    for (const ViewKind &v : kViews) {
        if (name == v.name) {
            return &v;
        }
    }
    return nullptr;
}

std::string view_names ()
{
    std::string out;
    for (const ViewKind &v : kViews) {
        out += (out.empty () ? "" : ", ") + std::string (v.name);
    }
    return out;
}


namespace {

gboolean on_view_database_access_read_cb (TavCalendarView *view, gpointer data)
{
    return answer_database_read (view, *static_cast<App *> (data)->calendars);
}

void on_switch_toggled_cb (GtkToggleButton *button, gpointer data)
{
    App *app = static_cast<App *> (data);
    if (!gtk_toggle_button_get_active (button)) {
        return;
    }
    for (size_t i = 0; i < app->switches.size (); ++i) {
        if (app->switches[i] == GTK_WIDGET (button) && app->current () != i) {
            app->show_view (i);
        }
    }
}

void on_month_day_activated_cb (TavCalendar *, int year, int month, int day, gpointer data)
{
    static_cast<App *> (data)->open_week (TavDate {year, month, day});
}

void on_month_week_activated_cb (TavCalendar *, int week_number, const TavDateInterval *interval,
                                        gpointer data)
{
    if (interval) {
        static_cast<App *> (data)->open_week (interval->start);
    }
}

void on_prev_clicked_cb (GtkButton *, gpointer data)
{
    App *app = static_cast<App *> (data);
    kViews[app->current ()].step (app->views[app->current ()], -1);
}

void on_next_clicked_cb (GtkButton *, gpointer data)
{
    App *app = static_cast<App *> (data);
    kViews[app->current ()].step (app->views[app->current ()], 1);
}

void on_today_clicked_cb (GtkButton *, gpointer data)
{
    App *app = static_cast<App *> (data);
    tav_date_init_today (&app->focus);
    app->show_view (app->current ());
}

}  // namespace

void App::build (bool offscreen)
{
    window = offscreen ? gtk_offscreen_window_new () : gtk_window_new (GTK_WINDOW_TOPLEVEL);
    if (!offscreen) {
        gtk_window_set_title (GTK_WINDOW (window), "Calendar");
        gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
        g_signal_connect (window, "destroy", G_CALLBACK (gtk_main_quit), nullptr);
    }
    gtk_widget_set_size_request (window, 800, 480);
    GtkWidget *box = gtk_vbox_new (FALSE, 0);
    GtkWidget *bar = gtk_hbox_new (FALSE, 0);
    notebook = gtk_notebook_new ();
    gtk_notebook_set_show_tabs (GTK_NOTEBOOK (notebook), FALSE);
    gtk_notebook_set_show_border (GTK_NOTEBOOK (notebook), FALSE);

    GtkWidget *prev = gtk_button_new_with_label ("\xe2\x97\x80");   /* ◀ */
    GtkWidget *today = gtk_button_new_with_label ("Today");
    GtkWidget *next = gtk_button_new_with_label ("\xe2\x96\xb6");   /* ▶ */
    for (GtkWidget *b : {prev, today, next}) {
        gtk_widget_set_size_request (b, 80, 48);
    }
    g_signal_connect (prev, "clicked", G_CALLBACK (on_prev_clicked_cb), this);
    g_signal_connect (today, "clicked", G_CALLBACK (on_today_clicked_cb), this);
    g_signal_connect (next, "clicked", G_CALLBACK (on_next_clicked_cb), this);
    gtk_box_pack_start (GTK_BOX (bar), prev, FALSE, FALSE, 0);

    GSList *group = nullptr;
    for (const ViewKind &kind : kViews) {
        GtkWidget *view = kind.create ();
        if (!connect_list_view (view, *calendars)) {
            g_signal_connect (view, "database-access-read", G_CALLBACK (on_view_database_access_read_cb), this);
        }
        if (TAV_IS_CALENDAR (view)) {
            /* A tapped day or week of the month opens that week. */
            g_signal_connect (view, "day-activated", G_CALLBACK (on_month_day_activated_cb), this);
            g_signal_connect (view, "week-activated", G_CALLBACK (on_month_week_activated_cb), this);
        }
        GtkWidget *page = view;
        if (kind.scrolls) {
            page = gtk_scrolled_window_new (nullptr, nullptr);
            gtk_scrolled_window_set_policy (GTK_SCROLLED_WINDOW (page), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
            gtk_container_add (GTK_CONTAINER (page), view);
        }
        gtk_notebook_append_page (GTK_NOTEBOOK (notebook), page, nullptr);
        views.push_back (view);
        GtkWidget *button = gtk_radio_button_new_with_label (group, kind.label);
        group = gtk_radio_button_get_group (GTK_RADIO_BUTTON (button));
        gtk_toggle_button_set_mode (GTK_TOGGLE_BUTTON (button), FALSE);
        gtk_widget_set_size_request (button, -1, 48);
        g_signal_connect (button, "toggled", G_CALLBACK (on_switch_toggled_cb), this);
        gtk_box_pack_start (GTK_BOX (bar), button, TRUE, TRUE, 0);
        switches.push_back (button);
    }
    gtk_box_pack_start (GTK_BOX (bar), today, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (bar), next, FALSE, FALSE, 0);
    for (GtkWidget *b : {prev, today, next})
        gtk_button_set_relief (GTK_BUTTON (b), GTK_RELIEF_NONE);
    for (GtkWidget *b : switches)
        gtk_button_set_relief (GTK_BUTTON (b), GTK_RELIEF_NONE);

    /* The bar wears the views' dark header colours, so the window reads as
     * one surface: light text, the chosen view in the accent blue. */
    gtk_rc_parse_string (
        "style \"tav-host-bar\" {\n"
        "  bg[NORMAL] = \"#1f2833\"\n"
        "  bg[PRELIGHT] = \"#2d3947\"\n"
        "  bg[ACTIVE] = \"#1e88e5\"\n"
        "  fg[NORMAL] = \"#dfe6ee\"\n"
        "  fg[PRELIGHT] = \"#ffffff\"\n"
        "  fg[ACTIVE] = \"#ffffff\"\n"
        "  font_name = \"Sans Bold 12\"\n"
        "  xthickness = 0\n"
        "  ythickness = 0\n"
        "}\n"
        "widget \"*.tav-host-bar*\" style \"tav-host-bar\"\n");
    GtkWidget *bar_background = gtk_event_box_new ();
    gtk_widget_set_name (bar_background, "tav-host-bar");
    gtk_container_add (GTK_CONTAINER (bar_background), bar);
    gtk_box_pack_start (GTK_BOX (box), bar_background, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (box), notebook, TRUE, TRUE, 0);
    gtk_container_add (GTK_CONTAINER (window), box);
}


size_t App::current () const
{
    return static_cast<size_t> (gtk_notebook_get_current_page (GTK_NOTEBOOK (notebook)));
}

void App::show_view (size_t index)
{
    gtk_notebook_set_current_page (GTK_NOTEBOOK (notebook), static_cast<int> (index));
    gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (switches[index]), TRUE);
    kViews[index].go_to (views[index], focus);
}

void App::open_week (const TavDate &date)
{
    const ViewKind *week = find_view ("week");
    if (!week) {
        return;
    }
    focus = date;
    show_view (static_cast<size_t> (week - kViews.data ()));
}


namespace {

void flush ()
{
    for (int i = 0; i < 5; ++i) {
        while (gtk_events_pending ()) {
            gtk_main_iteration_do (FALSE);
        }
        gdk_flush ();
        g_usleep (20000);
    }
}

}  // namespace

int render_views (App &app, const std::string &dir)
{
    if (g_mkdir_with_parents (dir.c_str (), 0755) != 0) {
        fprintf (stderr, "tav-calendar: cannot create the directory '%s'\n", dir.c_str ());
        return 1;
    }
    app.build (true);
    gtk_widget_show_all (app.window);
    flush ();
    for (size_t i = 0; i < app.views.size (); ++i) {
        app.show_view (i);
        flush ();
        gtk_widget_queue_draw (app.window);
        flush ();
        GdkPixbuf *shot = gtk_offscreen_window_get_pixbuf (GTK_OFFSCREEN_WINDOW (app.window));
        const std::string path = dir + "/" + kViews[i].name + ".png";
        GError *err = nullptr;
        if (!shot || !gdk_pixbuf_save (shot, path.c_str (), "png", &err, nullptr)) {
            fprintf (stderr, "tav-calendar: cannot write '%s': %s\n", path.c_str (), err ? err->message : "no image");
            g_clear_error (&err);
            if (shot) {
                g_object_unref (shot);
            }
            return 1;
        }
        g_object_unref (shot);
        printf ("%s\n", path.c_str ());
    }
    gtk_widget_destroy (app.window);
    return 0;
}


}  // namespace tav::host
