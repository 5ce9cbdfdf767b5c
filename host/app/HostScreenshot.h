/* What every --screenshot of tav-calendar does before it reads the screen. */
#ifndef TAV_HOST_SCREENSHOT_H
#define TAV_HOST_SCREENSHOT_H

#include <gtk/gtk.h>

#include <string>

namespace tav::host {

/* Lets the X server and GTK catch up: ROUNDS times, all pending events are
 * handled, the output flushed and 20 ms given to the server. */
void settle_screen (int rounds);

/* @dialog filling the 800x480 screen, saved as DIR/NAME.png (the path
 * printed on standard output); false, with the reason on standard error,
 * when it cannot be written. */
bool save_dialog (GtkWidget *dialog, const std::string &dir, const char *name);

/* Saves @shot (taken over; NULL when the screen could not be read) as the
 * PNG file @path and prints the path on standard output; false, with the
 * reason on standard error, when it cannot be written. */
bool save_shot (GdkPixbuf *shot, const std::string &path);

} // namespace tav::host

#endif
