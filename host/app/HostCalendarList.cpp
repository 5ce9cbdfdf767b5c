/* The calendar list and calendar edit dialogs over tav-calendar's window:
 * the dialogs change calendars through the store's sources, the views read
 * again after each change. */
#include "HostScreenshot.h"
#include "HostWindow.h"

#include <calendarui.h>

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

int render_calendar_dialogs (App &app, const std::string &dir)
{
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
