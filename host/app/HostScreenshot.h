/* What every --screenshot of tav-calendar does before it reads the screen. */
#ifndef TAV_HOST_SCREENSHOT_H
#define TAV_HOST_SCREENSHOT_H

namespace tav::host {

/* Lets the X server and GTK catch up: ROUNDS times, all pending events are
 * handled, the output flushed and 20 ms given to the server. */
void settle_screen (int rounds);

} // namespace tav::host

#endif
