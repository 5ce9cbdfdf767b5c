/* The calendar list and calendar edit dialogs over tav-calendar's window:
 * the dialogs change calendars through the store's sources, the views read
 * again after each change. */
#include "HostScreenshot.h"
#include "HostWindow.h"

#include <calendarui.h>

#include <cstdio>

namespace tav::host {

GtkWidget *App::open_calendar_list (GtkWindow *parent)
{
    if (!parent && window) {
        parent = GTK_WINDOW (tav_calendar_window_get_topmost_window (window));
    }
    calendars->reload ();
    GtkWidget *dialog = tav_calendar_list_dialog_new ();
    if (parent) {
        gtk_window_set_transient_for (GTK_WINDOW (dialog), parent);
    }
    for (const CalendarRecord &c : calendars->store ().calendars ()) {
        if (TavHostCalendarSource *source = calendars->source (c.id)) {
            tav_calendar_list_dialog_add_calendar (TAV_CALENDAR_LIST_DIALOG (dialog), TAV_CALENDAR_SOURCE (source));
        }
    }
    g_signal_connect (dialog, "calendars-changed", G_CALLBACK (+[] (GtkWidget *, gpointer data) {
        App *app = static_cast<App *> (data);
        app->calendars->reload ();
        if (app->window) {
            tav_calendar_window_set_entries_changed (app->window, TRUE);
            tav_calendar_window_read_database (app->window);
        }
    }), this);
    g_signal_connect (dialog, "new-requested", G_CALLBACK (+[] (GtkWidget *list, gpointer data) {
        App *app = static_cast<App *> (data);
        Ref<TavHostCalendarSource> source = make_source (app->calendars->shared_store (), CalendarRecord {});
        tav_calendar_list_dialog_edit_new (TAV_CALENDAR_LIST_DIALOG (list), TAV_CALENDAR_SOURCE (source.get ()));
    }), this);
    gtk_widget_show (dialog);
    return dialog;
}

TavCalendarSource *App::birthdays_calendar ()
{
    CalendarRecord found;
    if (!calendars->store ().find_calendar_by_title ("Birthdays", &found)) {
        found = CalendarRecord {};
        found.title = "Birthdays";
        found.color = TavCalendarColorViolet;
        const Status status = calendars->store ().add_calendar (found);
        if (!status.ok ()) {
            fprintf (stderr, "tav-calendar: cannot add the birthdays calendar: %s\n", status.message.c_str ());
            return nullptr;
        }
    }
    calendars->reload ();
    return TAV_CALENDAR_SOURCE (calendars->source (found.id));
}

GtkWidget *App::open_birthday (GtkWindow *parent)
{
    TavCalendarSource *birthdays = birthdays_calendar ();
    if (!birthdays) {
        return nullptr;
    }
    if (!parent && window) {
        parent = GTK_WINDOW (tav_calendar_window_get_topmost_window (window));
    }
    GtkWidget *dialog = tav_calendar_birthday_window_new (birthdays);
    if (parent) {
        gtk_window_set_transient_for (GTK_WINDOW (dialog), parent);
    }
    g_signal_connect (dialog, "response", G_CALLBACK (+[] (GtkWidget *dialog, gint response, gpointer data) {
        /* The window's own buttons answer GTK_RESPONSE_NONE before they act. */
        if (response == GTK_RESPONSE_NONE) {
            return;
        }
        App *app = static_cast<App *> (data);
        if (response == GTK_RESPONSE_OK && app->window) {
            tav_calendar_window_set_entries_changed (app->window, TRUE);
            tav_calendar_window_read_database (app->window);
        }
        gtk_widget_destroy (dialog);
    }), this);
    gtk_widget_show (dialog);
    return dialog;
}

int render_calendar_dialogs (App &app, const std::string &dir)
{
    {
        /* Filled, not saved: the screenshot leaves the store as it is. */
        GtkWidget *birthday = tav_calendar_birthday_window_new (TAV_CALENDAR_SOURCE (app.calendars->first_writable ()));
        const TavDate born = {1996, 1, 29};
        tav_calendar_birthday_window_set_values (TAV_CALENDAR_BIRTHDAY_WINDOW (birthday), "Maria", &born, TRUE);
        const bool saved = save_dialog (birthday, dir, "birthday");
        gtk_widget_destroy (birthday);
        if (!saved) {
            return 1;
        }
    }
    GtkWidget *list = app.open_calendar_list ();
    bool saved = save_dialog (list, dir, "calendars");
    if (saved) {
        GtkWidget *edit = tav_calendar_list_dialog_edit_selected (TAV_CALENDAR_LIST_DIALOG (list));
        saved = edit && save_dialog (edit, dir, "calendar-edit");
    }
    gtk_widget_destroy (list);
    return saved ? 0 : 1;
}

}  // namespace tav::host
