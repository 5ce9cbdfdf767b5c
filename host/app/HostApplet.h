/* The home applet of tav-calendar: TavHomeApplet in a small window over a
 * wallpaper, fed from the store like the calendar's views. */
#ifndef TAV_HOST_APPLET_H
#define TAV_HOST_APPLET_H

#include "HostWindow.h"

#include <string>

namespace tav::host {

/* --applet: shows the applet until its window is closed. A tapped row
 * opens the calendar's week on the row's day, a tap elsewhere the
 * calendar on today; a change of the system's time zone reaches the
 * applet as "time-changed". */
void run_applet (App &app);

/* Renders DIR/applet.png (the applet over @app's calendars) and
 * DIR/applet-empty.png (with nothing to show), printing the paths; 0 on
 * success. */
int render_applet (App &app, const std::string &dir);

}  // namespace tav::host

#endif
