/* The calendar window of tav-calendar: the library's TavCalendarWindow,
 * filled from the store through "database-access-read", with the editors
 * and the settings behind its action signals. */
#ifndef TAV_HOST_WINDOW_H
#define TAV_HOST_WINDOW_H

#include "HostCalendarSet.h"
#include "HostSettings.h"

#include <gtk/gtk.h>

#include <memory>
#include <string>

namespace tav::host {

/* The views --view knows, and whether this build of the library has them. */
bool view_is_known (const std::string &name);
bool view_in_build (const std::string &name);
/* "month, week", for messages. */
std::string view_names ();

struct App {
    std::unique_ptr<CalendarSet> calendars;
    TavCalendarWindow *window = nullptr;
    TavDate focus {};
    /* The stored settings (owned by the caller); NULL: defaults, not kept. */
    SettingsFile *settings = nullptr;

    /* Creates the window (not shown) with the settings applied. */
    void build ();
    /* Gives the window the settings' week start and done-task choice. */
    void apply_settings ();
    /* Opens the settings dialog over the window (or alone before it). */
    GtkWidget *open_settings ();
    /* Opens the import dialog over the window (or over @parent); the views
     * read again after an import. */
    GtkWidget *open_import (GtkWindow *parent = nullptr);
    /* Opens the first-run wizard over the window: its Finish stores the
     * choices with first boot cleared and shows the chosen view. */
    GtkWidget *open_first_run_wizard ();
    /* Opens the calendar list over @parent (or the window): what it changes
     * is stored at once and the views read again. */
    GtkWidget *open_calendar_list (GtkWindow *parent = nullptr);
    /* Opens the birthday window over @parent (or the window), for the
     * calendar titled "Birthdays" (added when there is none). */
    GtkWidget *open_birthday (GtkWindow *parent = nullptr);
    /* The source of the calendar titled "Birthdays", added when missing;
     * NULL when the store refused to add it. */
    TavCalendarSource *birthdays_calendar ();
    int visible_calendars () const;
    /* Shows view @name on the focus date; false when it is not in the build. */
    bool show (const std::string &name);
    /* Opens the event editor: on @entry, or for a new event at @date, @time. */
    GtkWidget *open_editor (TavCalendarEntry *entry, const TavDate *date, const TavTime *time, bool all_day);
    /* Opens the task or note editor over the window, on @task / @note or
     * for a new one (NULL); what it saves shows in the views and lists. */
    GtkWidget *edit_task (TavCalendarTask *task);
    GtkWidget *edit_note (TavCalendarNote *note);
    /* The day the user looks at: the day view's, or today when the root
     * view shows it, else the root view's first day. */
    TavDate current_date () const;
    ~App ();
};

/* Renders every view and window at 800x480 to DIR/<name>.png (the paths
 * printed on standard output); 0 on success. */
int render_views (App &app, const std::string &dir);
/* The birthday window, the calendar list and the edit dialog of its first
 * calendar, to DIR/birthday.png, DIR/calendars.png and
 * DIR/calendar-edit.png; 0 on success. */
int render_calendar_dialogs (App &app, const std::string &dir);

}  // namespace tav::host

#endif
