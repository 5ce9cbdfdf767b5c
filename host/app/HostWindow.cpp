#include "HostWindow.h"
#include "HostScreenshot.h"

#include "HostEditor.h"
#include "HostLists.h"

#include <calendarui.h>
#include <gdk/gdkkeysyms.h>
#include <glib/gstdio.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace tav::host {

namespace {

const char *const kKnownViews[] = {"month", "week", "agenda", "day", "event", "tasks", "notes"};

}  // namespace

bool view_is_known (const std::string &name)
{
    return std::find (std::begin (kKnownViews), std::end (kKnownViews), name) != std::end (kKnownViews);
}

bool view_in_build (const std::string &name)
{
    if (name == "month" || name == "week" || name == "event") {
        return true;
    }
#ifdef TAV_TYPE_AGENDA_VIEW
    if (name == "agenda") {
        return true;
    }
#endif
#ifdef TAV_TYPE_DAY_VIEW
    if (name == "day") {
        return true;
    }
#endif
#ifdef TAV_TYPE_TASK_VIEW
    if (name == "tasks") {
        return true;
    }
#endif
#ifdef TAV_TYPE_NOTE_VIEW
    if (name == "notes") {
        return true;
    }
#endif
    return false;
}

std::string view_names ()
{
    std::string out;
    for (const char *name : kKnownViews) {
        if (view_in_build (name)) {
            out += (out.empty () ? "" : ", ") + std::string (name);
        }
    }
    return out;
}

/* Window signals -------------------------------------------------------------- */

namespace {

gboolean on_view_read_cb (TavCalendarView *view, gpointer data)
{
    return answer_database_read (view, *static_cast<App *> (data)->calendars);
}

/* The entries of the root view's interval, in start order, with @tapped in
 * place of its stored twin: what the event view steps through. */
GList *neighbours_of (App &app, TavCalendarEntry *tapped)
{
    TavCalendarView *root = tav_calendar_window_get_current_root_view (app.window);
    TavDateInterval shown;
    if (!root || !tav_calendar_view_get_presented_interval (root, &shown)) {
        return g_list_prepend (nullptr, g_object_ref (tapped));
    }
    GList *entries = app.calendars->read_interval (shown);
    const int64_t id = entry_record_id (tapped);
    bool found = false;
    for (GList *l = entries; l; l = l->next) {
        if (id && entry_record_id (TAV_CALENDAR_ENTRY (l->data)) == id) {
            g_object_unref (l->data);
            l->data = g_object_ref (tapped);
            found = true;
        }
    }
    if (!found) {
        entries = g_list_prepend (entries, g_object_ref (tapped));
    }
    return g_list_sort (entries, [] (gconstpointer a, gconstpointer b) {
        return tav_calendar_entry_compare_start_time (TAV_CALENDAR_ENTRY (const_cast<gpointer> (a)),
                                                      TAV_CALENDAR_ENTRY (const_cast<gpointer> (b)));
    });
}

void open_event_view (App &app, TavCalendarEntry *entry, const TavDate *date)
{
    TavEventView *view = TAV_EVENT_VIEW (app.window->event_view);
    GList *list = neighbours_of (app, entry);
    tav_event_view_set_entry_list (view, list);
    g_list_free_full (list, g_object_unref);
    tav_event_view_set_entry (view, entry, date);
    tav_calendar_window_show_event_view (app.window);
}

void on_entry_activated_cb (GtkWidget *, TavCalendarEntry *entry, const TavDate *date, gpointer data)
{
    if (TAV_IS_CALENDAR_ENTRY (entry)) {
        open_event_view (*static_cast<App *> (data), entry, date);
    }
}

/* Left and right in the day window step the day. */
void on_day_key_pressed_cb (TavDayView *view, guint keyval, gpointer)
{
    if (keyval == GDK_Left || keyval == GDK_KP_Left) {
        tav_day_view_select_previous_day (view);
    } else if (keyval == GDK_Right || keyval == GDK_KP_Right) {
        tav_day_view_select_next_day (view);
    }
}

/* A new event starts at the next full hour on today, at 9:00 on other days. */
TavTime default_start (const TavDate &date)
{
    TavDate today;
    tav_date_init_today (&today);
    TavTime now;
    tav_time_init_now (&now);
    if (tav_date_compare (&date, &today) == 0 && now.hour < 23) {
        return TavTime {now.hour + 1, 0};
    }
    return TavTime {9, 0};
}

void on_week_insert_cb (GtkWidget *, const TavDate *date, const TavTime *time, gboolean all_day, gpointer data)
{
    if (date) {
        static_cast<App *> (data)->open_editor (nullptr, date, time, all_day);
    }
}

void on_list_insert_cb (GtkWidget *, const TavDate *date, gpointer data)
{
    if (date) {
        const TavTime start = default_start (*date);
        static_cast<App *> (data)->open_editor (nullptr, date, &start, false);
    }
}

gboolean on_new_event_cb (TavCalendarWindow *, gpointer data)
{
    App *app = static_cast<App *> (data);
    const TavDate date = app->current_date ();
    const TavTime start = default_start (date);
    return app->open_editor (nullptr, &date, &start, false) != nullptr;
}

gboolean on_edit_event_cb (TavCalendarWindow *, TavCalendarEntry *entry, gpointer data)
{
    App *app = static_cast<App *> (data);
    if (TAV_IS_CALENDAR_TASK (entry)) {
        return app->edit_task (TAV_CALENDAR_TASK (entry)) != nullptr;
    }
    if (TAV_IS_CALENDAR_NOTE (entry)) {
        return app->edit_note (TAV_CALENDAR_NOTE (entry)) != nullptr;
    }
    if (!TAV_IS_CALENDAR_ENTRY (entry)) {
        return FALSE;
    }
    return app->open_editor (entry, nullptr, nullptr, false) != nullptr;
}

/* The task and note lists open the editors: their "New" rows for a new one,
 * a tapped row for that task or note. */
void on_new_task_cb (GtkWidget *, guint, gpointer data)
{
    static_cast<App *> (data)->edit_task (nullptr);
}

void on_task_activated_cb (GtkWidget *, TavCalendarTask *task, gpointer data)
{
    static_cast<App *> (data)->edit_task (task);
}

void on_new_note_cb (GtkWidget *, guint, gpointer data)
{
    static_cast<App *> (data)->edit_note (nullptr);
}

void on_note_activated_cb (GtkWidget *, TavCalendarNote *note, gpointer data)
{
    static_cast<App *> (data)->edit_note (note);
}

void on_entry_created_cb (GtkWidget *, TavCalendarEntry *entry, gpointer data)
{
    tav_calendar_window_add_entry (static_cast<App *> (data)->window, entry);
}

void on_entry_saved_cb (GtkWidget *, TavCalendarEntry *entry, gpointer data)
{
    tav_calendar_window_refresh_entry (static_cast<App *> (data)->window, entry);
}

void on_deleting_entry_cb (GtkWidget *, TavCalendarEntry *entry, gpointer data)
{
    tav_calendar_window_remove_entry (static_cast<App *> (data)->window, entry);
}

/* A change that failed: a note over the window says why. */
void on_editor_error_cb (GtkWidget *editor, const char *text, gpointer data)
{
    fprintf (stderr, "tav-calendar: the change was not saved: %s\n", text ? text : "");
    GtkWidget *parent = tav_calendar_window_get_topmost_window (static_cast<App *> (data)->window);
    GtkWidget *note = gtk_message_dialog_new (GTK_WINDOW (parent), GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK,
                                              "%s", text ? text : "");
    g_signal_connect (note, "response", G_CALLBACK (gtk_widget_destroy), nullptr);
    gtk_widget_show (note);
    (void) editor;
}

gboolean on_settings_cb (TavCalendarWindow *, gpointer data)
{
    return static_cast<App *> (data)->open_settings () != nullptr;
}

}  // namespace

/* App ---------------------------------------------------------------------------- */

void App::build ()
{
    window = TAV_CALENDAR_WINDOW (tav_calendar_window_new ());
    for (GtkWidget *view : {window->month_view, window->week_view, window->agenda_view, window->day_view}) {
        if (view) {
            g_signal_connect (view, "database-access-read", G_CALLBACK (on_view_read_cb), this);
        }
    }
    for (GtkWidget *view : {window->task_view, window->note_view}) {
        if (view) {
            connect_list_view (view, *calendars);
        }
    }
    for (GtkWidget *view : {window->week_view, window->agenda_view, window->day_view}) {
        if (view) {
            g_signal_connect (view, "entry-activated", G_CALLBACK (on_entry_activated_cb), this);
        }
    }
    g_signal_connect (window->week_view, "insert-activated", G_CALLBACK (on_week_insert_cb), this);
    g_signal_connect (window->day_view, "key-pressed", G_CALLBACK (on_day_key_pressed_cb), nullptr);
    for (GtkWidget *view : {window->agenda_view, window->day_view}) {
        if (view) {
            g_signal_connect (view, "insert-activated", G_CALLBACK (on_list_insert_cb), this);
        }
    }
    g_signal_connect (window->task_view, "insert-activated", G_CALLBACK (on_new_task_cb), this);
    g_signal_connect (window->task_view, "task-activated", G_CALLBACK (on_task_activated_cb), this);
    g_signal_connect (window->note_view, "insert-activated", G_CALLBACK (on_new_note_cb), this);
    g_signal_connect (window->note_view, "note-activated", G_CALLBACK (on_note_activated_cb), this);
    g_signal_connect (window, "new-event-activated", G_CALLBACK (on_new_event_cb), this);
    g_signal_connect (window, "edit-event-activated", G_CALLBACK (on_edit_event_cb), this);
    g_signal_connect (window, "settings-activated", G_CALLBACK (on_settings_cb), this);
    g_signal_connect_swapped (tav_calendar_window_add_menu_item (window, "Import calendar file"), "clicked",
                              G_CALLBACK (+[] (App *app) { app->open_import (); }), this);
    /* The calendar list is reached through the settings' calendars row;
     * the menu has room for one more row of two. */
    g_signal_connect_swapped (tav_calendar_window_add_menu_item (window, "Add birthday"), "clicked",
                              G_CALLBACK (+[] (App *app) { app->open_birthday (); }), this);
    apply_settings ();
}

void App::apply_settings ()
{
    if (!window) {
        return;
    }
    const Settings defaults;
    const Settings &values = settings ? settings->values : defaults;
    tav_calendar_window_set_first_day_of_week (window, values.first_day_of_week ());
    const gboolean hide_done = values.hide_done_tasks == SettingsValueYes;
    for (GtkWidget *view : {window->month_view, window->week_view, window->agenda_view, window->day_view}) {
        if (view) {
            g_object_set (view, "hide-done-tasks", hide_done, nullptr);
        }
    }
}

int App::visible_calendars () const
{
    int count = 0;
    for (const CalendarRecord &c : calendars->store ().calendars ()) {
        count += c.visible ? 1 : 0;
    }
    return count;
}

GtkWidget *App::open_settings ()
{
    if (!settings) {
        return nullptr;
    }
    GtkWindow *parent = window ? GTK_WINDOW (tav_calendar_window_get_topmost_window (window)) : nullptr;
    return open_settings_dialog (*settings, visible_calendars (), parent, [this] (const Settings &) {
        apply_settings ();
        /* The views read again with the new week start and done tasks. */
        tav_calendar_window_read_database (window);
    }, [this] (GtkWidget *dialog) { open_calendar_list (GTK_WINDOW (dialog)); });
}

App::~App ()
{
    if (window) {
        gtk_widget_destroy (GTK_WIDGET (window));
    }
}

bool App::show (const std::string &name)
{
    if (!view_in_build (name)) {
        return false;
    }
    if (name == "week") {
        tav_calendar_window_show_month_view (window);
        tav_calendar_select_month (TAV_CALENDAR (window->month_view), focus.month, focus.year);
        tav_calendar_window_activate_week_view (window);
        /* Open on the working day rather than at midnight. */
        const TavTime morning = {7, 0};
        tav_week_view_snap_to_time (TAV_WEEK_VIEW (window->week_view), &morning);
    } else if (name == "agenda") {
        tav_calendar_window_show_month_view (window);
        tav_calendar_select_month (TAV_CALENDAR (window->month_view), focus.month, focus.year);
        tav_calendar_window_activate_agenda_view (window);
    } else {
        tav_calendar_select_month (TAV_CALENDAR (window->month_view), focus.month, focus.year);
        tav_calendar_window_show_month_view (window);
    }
    if (name == "day") {
        g_signal_emit_by_name (window->month_view, "day-activated", focus.year, focus.month, focus.day);
    } else if (name == "tasks") {
        tav_calendar_window_show_task_view (window);
    } else if (name == "notes") {
        tav_calendar_window_show_note_view (window);
    } else if (name == "event") {
        const TavDateInterval day = {focus, focus};
        GList *entries = calendars->read_interval (day);
        /* An event of that day, a timed one when there is one; a repeating
         * one only when it occurs that day, and shown on that day. */
        TavCalendarEntry *event = nullptr;
        for (GList *l = entries; l; l = l->next) {
            if (TAV_IS_CALENDAR_TASK (l->data) || TAV_IS_CALENDAR_NOTE (l->data)) {
                continue;
            }
            gboolean repeats = FALSE;
            g_object_get (l->data, "has-repeat", &repeats, nullptr);
            const TavTimestamp *at = repeats ? tav_calendar_entry_get_first_instance_timestamp (TAV_CALENDAR_ENTRY (l->data), &day)
                                             : nullptr;
            if (repeats && (!at || tav_date_compare (&at->date, &focus) != 0)) {
                continue;
            }
            if (!event || (tav_calendar_entry_is_all_day (event) && !tav_calendar_entry_is_all_day (TAV_CALENDAR_ENTRY (l->data)))) {
                event = TAV_CALENDAR_ENTRY (l->data);
            }
        }
        if (event) {
            gboolean repeats = FALSE;
            g_object_get (event, "has-repeat", &repeats, nullptr);
            open_event_view (*this, event, repeats ? &focus : nullptr);
        } else {
            tav_calendar_window_show_event_view (window);
        }
        g_list_free_full (entries, g_object_unref);
    }
    if (name != "tasks" && name != "notes") {
        tav_calendar_window_read_database (window);
    }
    return true;
}

TavDate App::current_date () const
{
    TavDate today;
    tav_date_init_today (&today);
    TavDateInterval shown;
    if (tav_calendar_window_day_view_active (window) && window->day_view
        && tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (window->day_view), &shown)) {
        return shown.start;
    }
    TavCalendarView *root = tav_calendar_window_get_current_root_view (window);
    if (root && TAV_IS_CALENDAR (root)) {
        int month = 0, year = 0;
        g_object_get (root, "month", &month, "year", &year, nullptr);
        return (month == today.month && year == today.year) ? today : TavDate {year, month, 1};
    }
    if (root && tav_calendar_view_get_presented_interval (root, &shown)) {
        return tav_date_interval_contains (&shown, &today) ? today : shown.start;
    }
    return today;
}

/* A task or note editor over the window: its changes reach the views as
 * they happen, and the lists are read afresh once it closes (a moved or
 * new task is another object than the row it came from). */
static GtkWidget *connect_list_editor (App *app, GtkWidget *editor, const char *prefix)
{
    const std::string p = prefix;
    g_signal_connect (editor, (p + "-created").c_str (), G_CALLBACK (on_entry_created_cb), app);
    g_signal_connect (editor, (p + "-saved").c_str (), G_CALLBACK (on_entry_saved_cb), app);
    g_signal_connect (editor, ("deleting-" + p).c_str (), G_CALLBACK (on_deleting_entry_cb), app);
    g_signal_connect (editor, "error", G_CALLBACK (on_editor_error_cb), app);
    g_signal_connect (editor, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer data) {
        TavCalendarWindow *window = static_cast<App *> (data)->window;
        if (window) {
            tav_task_view_read_database (TAV_TASK_VIEW (window->task_view));
            tav_note_view_read_database (TAV_NOTE_VIEW (window->note_view));
        }
    }), app);
    gtk_window_set_transient_for (GTK_WINDOW (editor), GTK_WINDOW (tav_calendar_window_get_topmost_window (app->window)));
    gtk_widget_show (editor);
    return editor;
}

GtkWidget *App::edit_task (TavCalendarTask *task)
{
    return connect_list_editor (this, open_task_editor (*calendars, task), "task");
}

GtkWidget *App::edit_note (TavCalendarNote *note)
{
    return connect_list_editor (this, open_note_editor (*calendars, note), "note");
}

GtkWidget *App::open_editor (TavCalendarEntry *entry, const TavDate *date, const TavTime *time, bool all_day)
{
    GtkWidget *editor = open_event_editor (*calendars, date, entry);
    if (!entry && date) {
        if (time) {
            const TavTime end = {std::min (time->hour + 1, 23), time->hour >= 23 ? 59 : time->minute};
            tav_calendar_event_window_set_selected_start_time (TAV_CALENDAR_EVENT_WINDOW (editor), time);
            tav_calendar_event_window_set_selected_end_time (TAV_CALENDAR_EVENT_WINDOW (editor), &end);
        }
        tav_calendar_event_window_set_all_day (TAV_CALENDAR_EVENT_WINDOW (editor), all_day);
    }
    g_signal_connect (editor, "entry-created", G_CALLBACK (on_entry_created_cb), this);
    g_signal_connect (editor, "entry-saved", G_CALLBACK (on_entry_saved_cb), this);
    g_signal_connect (editor, "deleting-entry", G_CALLBACK (on_deleting_entry_cb), this);
    g_signal_connect (editor, "error", G_CALLBACK (on_editor_error_cb), this);
    gtk_window_set_transient_for (GTK_WINDOW (editor), GTK_WINDOW (tav_calendar_window_get_topmost_window (window)));
    gtk_widget_show (editor);
    return editor;
}

/* Screenshots ------------------------------------------------------------------------ */

namespace {

void flush ()
{
    settle_screen (15);
}

/* What is on screen where the main window (or @target) is: with no window
 * manager the stacked windows, dialogs and menus lie over it as the user
 * sees them. */
bool save_screen (App &app, const std::string &dir, const std::string &name, GtkWidget *target = nullptr)
{
    flush ();
    GtkWidget *main = target ? target : GTK_WIDGET (app.window);
    int x = 0, y = 0;
    gdk_window_get_origin (main->window, &x, &y);
    GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (nullptr, gdk_get_default_root_window (), nullptr, x, y, 0, 0,
                                                    main->allocation.width, main->allocation.height);
    return save_shot (shot, dir + "/" + name + ".png");
}

/* Closes every window above the main one, as the back button would. */
void close_stacked (App &app)
{
    GList *toplevels = gtk_window_list_toplevels ();
    for (GList *l = toplevels; l; l = l->next) {
        GtkWidget *w = GTK_WIDGET (l->data);
        if (w != GTK_WIDGET (app.window) && gtk_widget_get_visible (w) && GTK_IS_WINDOW (w)
            && gtk_window_get_window_type (GTK_WINDOW (w)) == GTK_WINDOW_TOPLEVEL) {
            GdkEvent *event = gdk_event_new (GDK_DELETE);
            event->any.window = GDK_WINDOW (g_object_ref (w->window));
            event->any.send_event = TRUE;
            gtk_main_do_event (event);
            gdk_event_free (event);
        }
    }
    g_list_free (toplevels);
    flush ();
}

void press_key (GtkWidget *widget, guint keyval)
{
    GdkEvent *event = gdk_event_new (GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW (g_object_ref (widget->window));
    event->key.send_event = TRUE;
    event->key.keyval = keyval;
    event->key.time = GDK_CURRENT_TIME;
    gtk_widget_event (widget, event);
    gdk_event_free (event);
}

}  // namespace

int render_views (App &app, const std::string &dir)
{
    if (g_mkdir_with_parents (dir.c_str (), 0755) != 0) {
        fprintf (stderr, "tav-calendar: cannot create the directory '%s'\n", dir.c_str ());
        return 1;
    }
    gtk_window_move (GTK_WINDOW (app.window), 0, 0);
    gtk_widget_show (GTK_WIDGET (app.window));
    for (const char *name : {"month", "week", "agenda", "day", "event", "tasks", "notes"}) {
        if (!view_in_build (name)) {
            continue;
        }
        app.show (name);
        if (strcmp (name, "tasks") == 0 || strcmp (name, "notes") == 0) {
            /* An empty list says so once its half-second check has run. */
            flush ();
            g_usleep (550000);
        }
        if (!save_screen (app, dir, name)) {
            return 1;
        }
        close_stacked (app);
    }
    app.show ("month");
    flush ();
    {
        const TavTime ten = {10, 0};
        GtkWidget *editor = app.open_editor (nullptr, &app.focus, &ten, false);
        if (!save_screen (app, dir, "editor")) {
            return 1;
        }
        gtk_widget_destroy (editor);
    }
    {
        SettingsFile defaults (std::string ("/nonexistent/settings.ini"));
        SettingsFile *kept = app.settings;
        if (!app.settings) {
            app.settings = &defaults;
        }
        /* The dialog the menu's Settings opens, filling the screen. */
        GtkWidget *dialog = app.open_settings ();
        gtk_window_move (GTK_WINDOW (dialog), 0, 0);
        gtk_widget_set_size_request (dialog, 800, 480);
        gtk_widget_show_all (dialog);
        const bool saved = save_screen (app, dir, "settings", dialog);
        gtk_widget_destroy (dialog);
        if (!saved) {
            app.settings = kept;
            return 1;
        }
        app.settings = kept;
    }
    press_key (GTK_WIDGET (app.window), GDK_F4);
    if (!save_screen (app, dir, "appmenu")) {
        return 1;
    }
    /* Escape closes the menu (a popup over the main window). */
    GList *toplevels = gtk_window_list_toplevels ();
    for (GList *l = toplevels; l; l = l->next) {
        GtkWidget *w = GTK_WIDGET (l->data);
        if (gtk_widget_get_visible (w) && gtk_window_get_window_type (GTK_WINDOW (w)) == GTK_WINDOW_POPUP && w->window) {
            press_key (w, GDK_Escape);
        }
    }
    g_list_free (toplevels);
    flush ();
    return 0;
}

}  // namespace tav::host
