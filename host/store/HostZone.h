/* Time zones of stored entries.
 *
 * A timed entry is either floating (minutes of whatever wall clock the
 * viewer has, TZID empty) or an instant: minutes since 1970-01-01 00:00 UTC
 * with the zone its times were given in ("UTC" or a TZID). Zones are found
 * first among the VTIMEZONEs that imported files brought (kept in the store
 * and registered here), then among libical's builtin zones (the system
 * zoneinfo). Conversions use plain arithmetic on minutes and the zone's UTC
 * offsets, so they hold for any year the store can keep (1 to 9999), not
 * only those a 32-bit time_t reaches.
 */
#ifndef TAV_HOST_ZONE_H
#define TAV_HOST_ZONE_H

#include <libical/ical.h>

#include <cstdint>
#include <string>

namespace tav::host {

/* The zone a TZID names, NULL when unknown. "UTC" is UTC. */
icaltimezone *zone_for_tzid (const std::string &tzid);

/* Makes a VTIMEZONE (its text, "BEGIN:VTIMEZONE" to "END:VTIMEZONE") the
 * zone its TZID names from now on. False when the text is no zone. */
bool register_zone (const std::string &vtimezone);

/* The VTIMEZONE text for a TZID: the registered one, else the builtin
 * zone's; empty for UTC and unknown zones. */
std::string zone_definition (const std::string &tzid);

/* Wall-clock minutes in @zone and UTC minutes, both ways. */
int64_t utc_from_wall (int64_t wall, icaltimezone *zone);
int64_t wall_from_utc (int64_t utc, icaltimezone *zone);

/* The same for the process's own zone (TZ). */
int64_t utc_from_local (int64_t local);
int64_t local_from_utc (int64_t utc);

}  // namespace tav::host

#endif
