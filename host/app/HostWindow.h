/* The calendar window of tav-calendar: the library's views behind a
 * switch, filled from the store through "database-access-read". */
#ifndef TAV_HOST_WINDOW_H
#define TAV_HOST_WINDOW_H

#include "HostCalendarSet.h"
#include "HostSettings.h"

#include <gtk/gtk.h>

#include <memory>
#include <string>
#include <vector>

namespace tav::host {

/* The views this build can show, in the order of the switch. */
struct ViewKind {
    const char *name;
    const char *label;
    GtkWidget *(*create) ();
    bool scrolls;  /* shown inside a scrolled window */
    void (*go_to) (GtkWidget *view, const TavDate &date);
    void (*step) (GtkWidget *view, int direction);
};

const std::vector<ViewKind> &view_kinds ();
const ViewKind *find_view (const std::string &name);
/* "month, week", for messages. */
std::string view_names ();

struct App {
    std::unique_ptr<CalendarSet> calendars;
    GtkWidget *window = nullptr;
    GtkWidget *notebook = nullptr;
    std::vector<GtkWidget *> views;
    std::vector<GtkWidget *> switches;
    TavDate focus {};
    /* The stored settings (owned by the caller); NULL: defaults, not kept. */
    SettingsFile *settings = nullptr;

    /* An offscreen window renders without a window manager. */
    void build (bool offscreen);
    size_t current () const;
    /* Shows view @index on the focus date. */
    void show_view (size_t index);
    /* Shows the week view on @date (what a tapped day or week opens). */
    void open_week (const TavDate &date);
    /* Gives the views the settings' first day of the week. */
    void apply_settings ();
    /* Opens the settings dialog over the window. */
    GtkWidget *open_settings ();
    int visible_calendars () const;
};

/* Renders each view at 800x480 to DIR/<view>.png, and the settings dialog
 * to DIR/settings.png (the paths printed on standard output); 0 on success. */
int render_views (App &app, const std::string &dir);

}  // namespace tav::host

#endif
