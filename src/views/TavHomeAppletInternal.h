/* libcalendarui - the home applet's hooks for tests and the benchmark
 * (internal) */
#ifndef TAV_HOME_APPLET_INTERNAL_H
#define TAV_HOME_APPLET_INTERNAL_H

#include <ctime>
#include <string>

#include "TavHomeApplet.h"
#include "TavHomeAppletPrivate.h"

/* Replaces the clock (NULL: the system's) and takes up its date at once. */
void _tav_home_applet_set_clock (TavHomeApplet *applet, time_t (*clock) ());
/* The moment the timer is set for, and its delay; FALSE when no timer is set. */
gboolean _tav_home_applet_get_timer (TavHomeApplet *applet, TavTimestamp *at, guint *delay_ms);
/* Runs what the timer runs when it expires, and removes the pending one. */
void _tav_home_applet_fire_timer (TavHomeApplet *applet);
/* Row @n as "when | title | location"; "" when there is no row @n. */
std::string _tav_home_applet_describe_row (TavHomeApplet *applet, int n);
/* The geometry of the last allocation. */
tav::applet::AppletGeometry _tav_home_applet_get_geometry (TavHomeApplet *applet);
/* The instances held. */
const std::vector<tav::applet::AppletInstance> &_tav_home_applet_get_instances (TavHomeApplet *applet);

#endif /* TAV_HOME_APPLET_INTERNAL_H */
