/* libcalendarui - the application menus of the calendar's windows
 *
 * Almost every item only emits one of the window's action signals, so that
 * the host can answer it in its own way; the three view toggles of the main
 * menu switch the root view directly.
 */
#include "TavCalendarWindowInternal.h"

#include "KivoStackableWindow.h"
#include "TavEventView.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

namespace {

/* Emits the boolean action signal @name; its result is not needed here. */
void emit_action (gpointer data, const char *name)
{
    gboolean handled = FALSE;
    g_signal_emit_by_name (data, name, &handled);
}

GtkWidget *append_item (KivoAppMenu *menu, const char *msgid, GCallback handler, TavCalendarWindow *window)
{
    GtkWidget *item = gtk_button_new_with_label (TAV_CAL (msgid));
    g_signal_connect (item, "clicked", handler, window);
    kivo_app_menu_append (menu, GTK_BUTTON (item));
    gtk_widget_show (item);
    return item;
}

} // namespace

#define ACTION_HANDLER(handler, signal_name)                        \
    static void handler (GtkButton *, gpointer data)                \
    {                                                               \
        g_return_if_fail (TAV_IS_CALENDAR_WINDOW (data));           \
        emit_action (data, signal_name);                            \
    }

ACTION_HANDLER (on_settings_clicked, "settings-activated")
ACTION_HANDLER (on_go_to_notes_clicked, "go-to-notes-activated")
ACTION_HANDLER (on_go_to_tasks_clicked, "go-to-tasks-activated")
ACTION_HANDLER (on_jump_to_clicked, "jump-to-activated")
ACTION_HANDLER (on_jump_to_today_clicked, "jump-to-today-activated")
ACTION_HANDLER (on_new_event_clicked, "new-event-activated")
ACTION_HANDLER (on_next_event_clicked, "next-event-activated")
ACTION_HANDLER (on_previous_event_clicked, "previous-event-activated")
ACTION_HANDLER (on_next_day_clicked, "next-day-activated")
ACTION_HANDLER (on_previous_day_clicked, "previous-day-activated")
ACTION_HANDLER (on_next_week_clicked, "next-week-activated")
ACTION_HANDLER (on_previous_week_clicked, "previous-week-activated")
ACTION_HANDLER (on_next_month_clicked, "next-month-activated")
ACTION_HANDLER (on_previous_month_clicked, "previous-month-activated")

/* Edit and remove act on the entry the event view shows. */
static void emit_with_event_view_entry (TavCalendarWindow *window, const char *signal_name)
{
    GObject *entry = nullptr;
    if (window->event_view)
        g_object_get (window->event_view, "entry", &entry, NULL);
    tav::GRefPtr<GObject> hold = tav::adoptGRef (entry);
    if (!TAV_IS_CALENDAR_ENTRY (entry)) {
        TAV_WARNING ("Not an entry returning");
        return;
    }
    gboolean handled = FALSE;
    g_signal_emit_by_name (window, signal_name, entry, &handled);
}

static void on_edit_event_clicked (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (data));
    emit_with_event_view_entry (TAV_CALENDAR_WINDOW (data), "edit-event-activated");
}

static void on_remove_event_clicked (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (data));
    emit_with_event_view_entry (TAV_CALENDAR_WINDOW (data), "remove-event-activated");
}

void on_menu_month_view_clicked (GtkToggleButton *button, gpointer data)
{
    if (gtk_toggle_button_get_active (button)) {
        tav_calendar_window_activate_month_view (TAV_CALENDAR_WINDOW (data));
        TAV_MESSAGE ("View Toggled to Month");
    } else {
        TAV_MESSAGE ("View Toggled From Month");
    }
}

void on_menu_week_view_clicked (GtkToggleButton *button, gpointer data)
{
    if (gtk_toggle_button_get_active (button)) {
        tav_calendar_window_activate_week_view (TAV_CALENDAR_WINDOW (data));
        TAV_MESSAGE ("View Toggled to Week");
    } else {
        TAV_MESSAGE ("View Toggled From Week");
    }
}

void on_menu_agenda_view_clicked (GtkToggleButton *button, gpointer data)
{
    if (gtk_toggle_button_get_active (button)) {
        tav_calendar_window_activate_agenda_view (TAV_CALENDAR_WINDOW (data));
        TAV_MESSAGE ("View Toggled to Agenda");
    } else {
        TAV_MESSAGE ("View Toggled From Agenda");
    }
}

KivoAppMenu *_create_main_view_menu (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());

    struct Filter {
        const char *msgid;
        GCallback handler;
        GtkWidget **slot;
    } filters[] = {
        { "cal_me_toggle_month", G_CALLBACK (on_menu_month_view_clicked), &priv->month_toggle },
        { "cal_me_toggle_week", G_CALLBACK (on_menu_week_view_clicked), &priv->week_toggle },
        { "cal_me_toggle_agenda", G_CALLBACK (on_menu_agenda_view_clicked), &priv->agenda_toggle },
    };
    GSList *group = nullptr;
    for (const Filter &f : filters) {
        GtkWidget *toggle = gtk_radio_button_new_with_label (group, TAV_CAL (f.msgid));
        group = gtk_radio_button_get_group (GTK_RADIO_BUTTON (toggle));
        gtk_toggle_button_set_mode (GTK_TOGGLE_BUTTON (toggle), FALSE);
        g_signal_connect (toggle, "toggled", f.handler, window);
        kivo_app_menu_add_filter (menu, GTK_BUTTON (toggle));
        gtk_widget_show (toggle);
        *f.slot = toggle;
    }

    priv->prev_week_item = append_item (menu, "cal_me_previous_week", G_CALLBACK (on_previous_week_clicked), window);
    priv->next_week_item = append_item (menu, "cal_me_next_week", G_CALLBACK (on_next_week_clicked), window);
    priv->prev_month_item = append_item (menu, "cal_me_previous_month", G_CALLBACK (on_previous_month_clicked), window);
    priv->next_month_item = append_item (menu, "cal_me_next_month", G_CALLBACK (on_next_month_clicked), window);
    append_item (menu, "cal_me_jump_to_today", G_CALLBACK (on_jump_to_today_clicked), window);
    append_item (menu, "cal_ti_jump_to", G_CALLBACK (on_jump_to_clicked), window);
    append_item (menu, "cal_me_go_to_tasks", G_CALLBACK (on_go_to_tasks_clicked), window);
    append_item (menu, "cal_me_go_to_notes", G_CALLBACK (on_go_to_notes_clicked), window);
    append_item (menu, "cal_me_new_event", G_CALLBACK (on_new_event_clicked), window);
    append_item (menu, "cal_ti_settings", G_CALLBACK (on_settings_clicked), window);
    return menu;
}

KivoAppMenu *_create_event_view_menu (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());
    priv->prev_event_item = append_item (menu, "cal_me_previous_event", G_CALLBACK (on_previous_event_clicked), window);
    priv->next_event_item = append_item (menu, "cal_me_next_event", G_CALLBACK (on_next_event_clicked), window);
    priv->edit_event_item = append_item (menu, "cal_ti_edit_event", G_CALLBACK (on_edit_event_clicked), window);
    priv->remove_event_item = append_item (menu, "cal_ti_remove_event", G_CALLBACK (on_remove_event_clicked), window);
    append_item (menu, "cal_me_go_to_tasks", G_CALLBACK (on_go_to_tasks_clicked), window);
    append_item (menu, "cal_me_go_to_notes", G_CALLBACK (on_go_to_notes_clicked), window);
    append_item (menu, "cal_me_new_event", G_CALLBACK (on_new_event_clicked), window);
    /* The items are gone with the menu: forget them then. */
    for (GtkWidget **slot : { &priv->prev_event_item, &priv->next_event_item, &priv->edit_event_item,
                              &priv->remove_event_item })
        g_object_add_weak_pointer (G_OBJECT (*slot), reinterpret_cast<gpointer *> (slot));
    return menu;
}

KivoAppMenu *_create_day_view_menu (TavCalendarWindow *window)
{
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());
    append_item (menu, "cal_me_previous_day", G_CALLBACK (on_previous_day_clicked), window);
    append_item (menu, "cal_me_next_day", G_CALLBACK (on_next_day_clicked), window);
    append_item (menu, "cal_me_jump_to_today", G_CALLBACK (on_jump_to_today_clicked), window);
    append_item (menu, "cal_ti_jump_to", G_CALLBACK (on_jump_to_clicked), window);
    append_item (menu, "cal_me_go_to_tasks", G_CALLBACK (on_go_to_tasks_clicked), window);
    append_item (menu, "cal_me_go_to_notes", G_CALLBACK (on_go_to_notes_clicked), window);
    append_item (menu, "cal_me_new_event", G_CALLBACK (on_new_event_clicked), window);
    return menu;
}

KivoAppMenu *_create_notes_view_menu (TavCalendarWindow *window)
{
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());
    append_item (menu, "cal_me_go_to_tasks", G_CALLBACK (on_go_to_tasks_clicked), window);
    return menu;
}

KivoAppMenu *_create_tasks_view_menu (TavCalendarWindow *window)
{
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());
    append_item (menu, "cal_me_go_to_notes", G_CALLBACK (on_go_to_notes_clicked), window);
    return menu;
}

static void set_hidden (GtkWidget *item, gboolean hide)
{
    if (item)
        g_object_set (item, "visible", !hide, NULL);
}

void on_show_hide_remove_menu_item (TavCalendarWindow *window, gboolean hide)
{
    set_hidden (window->priv->remove_event_item, hide);
}

void on_show_hide_edit_remove_menu_item (TavCalendarWindow *window, gboolean hide)
{
    set_hidden (window->priv->edit_event_item, hide);
    set_hidden (window->priv->remove_event_item, hide);
}

void on_show_hide_next_entry_menu_item (TavCalendarWindow *window, gboolean hide)
{
    set_hidden (window->priv->next_event_item, hide);
}

void on_show_hide_prev_entry_menu_item (TavCalendarWindow *window, gboolean hide)
{
    set_hidden (window->priv->prev_event_item, hide);
}

GtkWidget *
tav_calendar_window_add_menu_item (TavCalendarWindow *window, const char *label)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), NULL);
    g_return_val_if_fail (label != NULL && g_utf8_validate (label, -1, NULL), NULL);
    KivoAppMenu *menu = kivo_stackable_window_get_main_menu (KIVO_STACKABLE_WINDOW (window));
    g_return_val_if_fail (menu != NULL, NULL);
    GtkWidget *item = gtk_button_new_with_label (label);
    kivo_app_menu_append (menu, GTK_BUTTON (item));
    gtk_widget_show (item);
    return item;
}
