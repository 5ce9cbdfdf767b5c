#include "HostZone.h"
#include "HostCivilTime.h"

#include <algorithm>
#include <map>

namespace tav::host {

namespace {

/* Zones the imported files defined, by TZID, for the life of the process. */
struct Registry {
    struct Zone {
        std::string text;
        icaltimezone *zone;
    };
    std::map<std::string, Zone> zones;

    ~Registry ()
    {
        for (auto &z : zones) {
            icaltimezone_free (z.second.zone, 1);
        }
    }
};

Registry &registry ()
{
    static Registry r;
    return r;
}

icaltimetype fields_of (int64_t minutes)
{
    const CivilFields f = civil_fields (minutes);
    icaltimetype t = icaltime_null_time ();
    t.year = f.year;
    t.month = f.month;
    t.day = f.day;
    t.hour = f.hour;
    t.minute = f.minute;
    return t;
}

}  // namespace

icaltimezone *zone_for_tzid (const std::string &tzid)
{
    if (tzid.empty ()) {
        return nullptr;
    }
    if (tzid == "UTC") {
        return icaltimezone_get_utc_timezone ();
    }
    auto it = registry ().zones.find (tzid);
    if (it != registry ().zones.end ()) {
        return it->second.zone;
    }
    if (icaltimezone *z = icaltimezone_get_builtin_timezone (tzid.c_str ())) {
        return z;
    }
    return icaltimezone_get_builtin_timezone_from_tzid (tzid.c_str ());
}

bool register_zone (const std::string &text)
{
    icalcomponent *comp = icalparser_parse_string (text.c_str ());
    if (!comp || icalcomponent_isa (comp) != ICAL_VTIMEZONE_COMPONENT) {
        if (comp) {
            icalcomponent_free (comp);
        }
        return false;
    }
    icalproperty *id = icalcomponent_get_first_property (comp, ICAL_TZID_PROPERTY);
    const char *tzid = id ? icalproperty_get_tzid (id) : nullptr;
    if (!tzid || !*tzid) {
        icalcomponent_free (comp);
        return false;
    }
    const std::string name = tzid;
    auto it = registry ().zones.find (name);
    if (it != registry ().zones.end () && it->second.text == text) {
        icalcomponent_free (comp);
        return true;
    }
    icaltimezone *zone = icaltimezone_new ();
    if (!icaltimezone_set_component (zone, comp)) {
        icaltimezone_free (zone, 1);
        icalcomponent_free (comp);
        return false;
    }
    if (it != registry ().zones.end ()) {
        icaltimezone_free (it->second.zone, 1);
        it->second = {text, zone};
    } else {
        registry ().zones.emplace (name, Registry::Zone {text, zone});
    }
    return true;
}

std::string zone_definition (const std::string &tzid)
{
    auto it = registry ().zones.find (tzid);
    if (it != registry ().zones.end ()) {
        return it->second.text;
    }
    if (tzid.empty () || tzid == "UTC") {
        return {};
    }
    icaltimezone *z = zone_for_tzid (tzid);
    icalcomponent *vtz = z ? icaltimezone_get_component (z) : nullptr;
    char *text = vtz ? icalcomponent_as_ical_string_r (vtz) : nullptr;
    std::string out = text ? text : "";
    free (text);
    return out;
}

namespace {

/* The zone's offset (minutes) at a UTC instant. */
int64_t offset_at (int64_t utc, icaltimezone *zone)
{
    icaltimetype t = fields_of (utc);
    int dst = 0;
    return floor_div (icaltimezone_get_utc_offset_of_utc_time (zone, &t, &dst), 60);
}

}  // namespace

/* A wall-clock time that occurs twice (the hour the clocks go back) is the
 * first of the two; one that does not occur (the hour they skip) is read
 * with the offset before the change. */
int64_t utc_from_wall (int64_t wall, icaltimezone *zone)
{
    if (!zone || zone == icaltimezone_get_utc_timezone ()) {
        return wall;
    }
    const int64_t before = offset_at (wall - kMinutesPerDay, zone);
    const int64_t after = offset_at (wall + kMinutesPerDay, zone);
    const int64_t a = wall - before, b = wall - after;
    const bool a_ok = offset_at (a, zone) == before, b_ok = offset_at (b, zone) == after;
    if (a_ok && b_ok) {
        return std::min (a, b);
    }
    if (b_ok) {
        return b;
    }
    return a;
}

int64_t wall_from_utc (int64_t utc, icaltimezone *zone)
{
    if (!zone || zone == icaltimezone_get_utc_timezone ()) {
        return utc;
    }
    icaltimetype t = fields_of (utc);
    int dst = 0;
    return utc + floor_div (icaltimezone_get_utc_offset_of_utc_time (zone, &t, &dst), 60);
}

int64_t utc_from_local (int64_t local)
{
    return floor_div (static_cast<int64_t> (time_t_from_civil (local)), 60);
}

int64_t local_from_utc (int64_t utc)
{
    return civil_from_time_t (static_cast<time_t> (utc * 60));
}

}  // namespace tav::host
