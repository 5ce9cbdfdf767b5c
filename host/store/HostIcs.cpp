#include "HostIcs.h"
#include "HostCivilTime.h"
#include "HostRecurrence.h"

#include <glib.h>
#include <libical/ical.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>

namespace tav::host {

namespace {

struct ComponentDeleter {
    void operator() (icalcomponent *c) const { icalcomponent_free (c); }
};
using ComponentPtr = std::unique_ptr<icalcomponent, ComponentDeleter>;

/* One unfolded content line and the physical line it starts on. */
struct Line {
    std::string text;
    int number;
    std::string name;  /* upper-cased property name */
};

/* A VEVENT, VTODO or VJOURNAL found by the structural pass. */
struct Item {
    std::string kind;
    int first_line;
    std::vector<const Line *> own_lines;   /* its own properties */
    std::vector<const Line *> child_lines; /* lines of nested components */
    std::string zone_block;                /* the file's VTIMEZONEs, for resolving TZIDs */
};

struct ParseError {
    int line;
    std::string message;
};

bool valid_name_char (char c)
{
    return g_ascii_isalnum (c) || c == '-';
}

/* Splits @text into unfolded logical lines. Lines that cannot be a content
 * line ("NAME[;PARAM=...]:VALUE") are reported by number. */
bool split_lines (const std::string &text, std::vector<Line> &lines, ParseError &error)
{
    size_t pos = 0;
    int number = 0;
    while (pos < text.size ()) {
        size_t eol = text.find ('\n', pos);
        if (eol == std::string::npos) {
            eol = text.size ();
        }
        std::string physical = text.substr (pos, eol - pos);
        if (!physical.empty () && physical.back () == '\r') {
            physical.pop_back ();
        }
        ++number;
        pos = eol + 1;
        if (!physical.empty () && (physical[0] == ' ' || physical[0] == '\t')) {
            if (lines.empty ()) {
                error = {number, "a continuation line with nothing to continue"};
                return false;
            }
            lines.back ().text += physical.substr (1);
            continue;
        }
        lines.push_back ({physical, number, {}});
    }
    for (Line &line : lines) {
        size_t i = 0;
        while (i < line.text.size () && valid_name_char (line.text[i])) {
            ++i;
        }
        line.name = line.text.substr (0, i);
        for (char &c : line.name) {
            c = g_ascii_toupper (c);
        }
    }
    return true;
}

bool content_line_ok (const Line &line)
{
    if (line.name.empty () || line.name.size () >= line.text.size ()) {
        return false;
    }
    const char next = line.text[line.name.size ()];
    if (next != ':' && next != ';') {
        return false;
    }
    /* The value starts at the first colon outside a quoted parameter. */
    bool quoted = false;
    for (size_t i = line.name.size (); i < line.text.size (); ++i) {
        if (line.text[i] == '"') {
            quoted = !quoted;
        } else if (line.text[i] == ':' && !quoted) {
            return true;
        }
    }
    return false;
}

std::string line_value (const Line &line)
{
    bool quoted = false;
    for (size_t i = line.name.size (); i < line.text.size (); ++i) {
        if (line.text[i] == '"') {
            quoted = !quoted;
        } else if (line.text[i] == ':' && !quoted) {
            return line.text.substr (i + 1);
        }
    }
    return {};
}

std::string upper (std::string s)
{
    for (char &c : s) {
        c = g_ascii_toupper (c);
    }
    return s;
}

/* Checks the nesting of BEGIN/END and collects the entries. Text outside
 * any component (comments, blank lines) is skipped with a warning. */
bool collect_items (const std::vector<Line> &lines, std::vector<Item> &items, std::string &zones,
                    std::vector<std::string> &warnings, ParseError &error)
{
    struct Open {
        std::string kind;
        int line;
        int item;  /* index into items, or -1 */
    };
    std::vector<Open> stack;
    std::string zone_text;
    bool in_zone = false;
    int ignored = 0, first_ignored = 0;
    std::map<std::string, std::pair<int, int>> skipped;  /* kind: count, first line */
    for (const Line &line : lines) {
        if (line.text.empty ()) {
            continue;
        }
        if (stack.empty () && line.name != "BEGIN") {
            if (ignored++ == 0) {
                first_ignored = line.number;
            }
            continue;
        }
        if (!content_line_ok (line)) {
            error = {line.number, "\"" + line.text + "\" is not an iCalendar content line"};
            return false;
        }
        if (line.name == "BEGIN") {
            const std::string kind = upper (line_value (line));
            int item = -1;
            const bool entry_kind = kind == "VEVENT" || kind == "VTODO" || kind == "VJOURNAL";
            const bool at_entry_level = stack.empty () || (stack.size () == 1 && stack[0].kind == "VCALENDAR");
            if (entry_kind && at_entry_level) {
                items.push_back ({kind, line.number, {}, {}, {}});
                item = static_cast<int> (items.size ()) - 1;
            } else if (at_entry_level && kind != "VCALENDAR" && kind != "VTIMEZONE") {
                auto &s = skipped[kind];
                if (s.first++ == 0) {
                    s.second = line.number;
                }
            } else if (!stack.empty () && stack.back ().item >= 0) {
                item = stack.back ().item;
                items[item].child_lines.push_back (&line);
            }
            if (kind == "VTIMEZONE") {
                in_zone = true;
            }
            if (in_zone) {
                zone_text += line.text + "\r\n";
            }
            stack.push_back ({kind, line.number, item});
            continue;
        }
        if (line.name == "END") {
            const std::string kind = upper (line_value (line));
            if (stack.back ().kind != kind) {
                error = {line.number, "END:" + kind + " does not close BEGIN:" + stack.back ().kind + " of line " +
                                          std::to_string (stack.back ().line)};
                return false;
            }
            if (in_zone) {
                zone_text += line.text + "\r\n";
            }
            if (kind == "VTIMEZONE") {
                in_zone = false;
            }
            const Open closed = stack.back ();
            stack.pop_back ();
            if (closed.item >= 0 && (stack.empty () || stack.back ().item != closed.item)) {
                /* the entry itself closed */
            } else if (closed.item >= 0) {
                items[closed.item].child_lines.push_back (&line);
            }
            continue;
        }
        if (in_zone) {
            zone_text += line.text + "\r\n";
        }
        if (stack.back ().item >= 0) {
            Item &item = items[stack.back ().item];
            const bool own = item.first_line == stack.back ().line;
            (own ? item.own_lines : item.child_lines).push_back (&line);
        }
    }
    if (!stack.empty ()) {
        error = {stack.back ().line, "BEGIN:" + stack.back ().kind + " is never closed"};
        return false;
    }
    for (const auto &s : skipped) {
        warnings.push_back ("line " + std::to_string (s.second.second) + ": " + std::to_string (s.second.first) + " " +
                            s.first + " component(s) are not calendar entries and were not imported");
    }
    if (ignored) {
        warnings.push_back ("line " + std::to_string (first_ignored) + ": " + std::to_string (ignored) +
                            " line(s) outside any component ignored");
    }
    zones = zone_text;
    return true;
}

const std::set<std::string> &handled_properties (const std::string &kind)
{
    static const std::set<std::string> event = {"UID",    "SUMMARY", "DESCRIPTION", "LOCATION",      "DTSTART",
                                                "DTEND",  "DURATION", "RRULE",      "EXDATE",        "RDATE",
                                                "EXRULE", "CREATED", "LAST-MODIFIED", "DTSTAMP",     "X-TAV-BIRTHDAY"};
    static const std::set<std::string> todo = {"UID",     "SUMMARY", "DESCRIPTION", "LOCATION",      "DTSTART",
                                               "DUE",     "STATUS",  "COMPLETED",   "CREATED",       "LAST-MODIFIED",
                                               "DTSTAMP", "PERCENT-COMPLETE"};
    static const std::set<std::string> journal = {"UID",     "SUMMARY", "DESCRIPTION", "DTSTART",
                                                  "CREATED", "LAST-MODIFIED", "DTSTAMP"};
    return kind == "VEVENT" ? event : kind == "VTODO" ? todo : journal;
}

/* Properties whose loss would change when the entry happens. */
bool essential (const std::string &name)
{
    return name == "DTSTART" || name == "DUE" || name == "RRULE" || name == "EXDATE" || name == "RDATE"
           || name == "EXRULE";
}

/* Time conversion: a property's value in local civil minutes. */
struct TimeReader {
    icalcomponent *zones;  /* a VCALENDAR holding the file's VTIMEZONEs, or NULL */
    std::vector<std::string> *warnings;

    icaltimezone *zone_for (const char *tzid) const
    {
        if (!tzid) {
            return nullptr;
        }
        if (zones) {
            if (icaltimezone *z = icalcomponent_get_timezone (zones, tzid)) {
                return z;
            }
        }
        if (icaltimezone *z = icaltimezone_get_builtin_timezone (tzid)) {
            return z;
        }
        return icaltimezone_get_builtin_timezone_from_tzid (tzid);
    }

    /* @zone_name receives the location of a zone libical knows by name. */
    int64_t civil (icaltimetype t, const char *tzid, std::string *zone_name = nullptr) const
    {
        if (t.is_date) {
            return civil_minutes (t.year, t.month, t.day);
        }
        if (icaltime_is_utc (t)) {
            return civil_from_time_t (icaltime_as_timet (t));
        }
        if (icaltimezone *z = zone_for (tzid)) {
            if (zone_name) {
                icaltimezone *builtin = icaltimezone_get_builtin_timezone (tzid);
                *zone_name = builtin ? tzid : std::string ();
            }
            return civil_from_time_t (icaltime_as_timet_with_zone (t, z));
        }
        if (tzid && warnings) {
            warnings->push_back (std::string ("unknown time zone '") + tzid + "', its times are taken as local");
        }
        return civil_minutes (t.year, t.month, t.day, t.hour, t.minute);
    }
};

const char *tzid_of (icalproperty *prop)
{
    icalparameter *p = icalproperty_get_first_parameter (prop, ICAL_TZID_PARAMETER);
    return p ? icalparameter_get_tzid (p) : nullptr;
}

std::string text_of (icalcomponent *c, icalproperty_kind kind)
{
    icalproperty *p = icalcomponent_get_first_property (c, kind);
    if (!p) {
        return {};
    }
    const char *v = nullptr;
    switch (kind) {
    case ICAL_SUMMARY_PROPERTY: v = icalproperty_get_summary (p); break;
    case ICAL_DESCRIPTION_PROPERTY: v = icalproperty_get_description (p); break;
    case ICAL_LOCATION_PROPERTY: v = icalproperty_get_location (p); break;
    case ICAL_UID_PROPERTY: v = icalproperty_get_uid (p); break;
    default: break;
    }
    return v ? v : std::string ();
}

int64_t seconds_of (icaltimetype t)
{
    return static_cast<int64_t> (icaltime_as_timet_with_zone (t, icaltime_is_utc (t) ? icaltimezone_get_utc_timezone ()
                                                                                     : nullptr));
}

/* libical reads some malformed dates leniently ("2024-05-06" becomes a
 * date in the year 2024 of its own making); the text must be an iCalendar
 * DATE or DATE-TIME. */
bool date_text_ok (const Item &item, const std::string &name)
{
    auto is_digit = [] (char c) { return g_ascii_isdigit (c); };
    for (const Line *l : item.own_lines) {
        if (l->name != name) {
            continue;
        }
        const std::string v = line_value (*l);
        const bool digits8 = v.size () >= 8 && std::all_of (v.begin (), v.begin () + 8, is_digit);
        if (v.size () == 8 && digits8) {
            continue;
        }
        const bool time_ok = (v.size () == 15 || (v.size () == 16 && v[15] == 'Z')) && digits8 && v[8] == 'T'
                             && std::all_of (v.begin () + 9, v.begin () + 15, is_digit);
        if (!time_ok) {
            return false;
        }
    }
    return true;
}

/* Converts one parsed component. Errors name the offending property. */
bool to_record (icalcomponent *comp, const Item &item, const TimeReader &times, EntryRecord &rec,
                std::string &error, int &error_line, std::vector<std::string> &warnings)
{
    auto line_of = [&] (const std::string &name) {
        for (const Line *l : item.own_lines) {
            if (l->name == name) {
                return l->number;
            }
        }
        return item.first_line;
    };

    /* libical drops values it cannot parse and leaves X-LIC-ERROR notes. */
    for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_XLICERROR_PROPERTY); p;
         p = icalcomponent_get_next_property (comp, ICAL_XLICERROR_PROPERTY)) {
        const std::string text = icalproperty_get_xlicerror (p) ? icalproperty_get_xlicerror (p) : "";
        std::string name;
        const size_t in = text.find (" in ");
        if (in != std::string::npos) {
            const size_t end = text.find (' ', in + 4);
            name = text.substr (in + 4, end == std::string::npos ? std::string::npos : end - in - 4);
        }
        if (essential (name)) {
            error = text;
            error_line = line_of (name);
            return false;
        }
        warnings.push_back ("line " + std::to_string (line_of (name)) + ": " + text);
    }

    const std::string &kind = item.kind;
    rec.kind = kind == "VEVENT" ? EntryKind::Event : kind == "VTODO" ? EntryKind::Task : EntryKind::Note;
    rec.uid = text_of (comp, ICAL_UID_PROPERTY);
    rec.title = text_of (comp, ICAL_SUMMARY_PROPERTY);
    rec.description = text_of (comp, ICAL_DESCRIPTION_PROPERTY);
    rec.location = text_of (comp, ICAL_LOCATION_PROPERTY);

    if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_CREATED_PROPERTY)) {
        rec.created = seconds_of (icalproperty_get_created (p));
    }
    if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_LASTMODIFIED_PROPERTY)) {
        rec.modified = seconds_of (icalproperty_get_lastmodified (p));
    }

    icalproperty *dtstart = icalcomponent_get_first_property (comp, ICAL_DTSTART_PROPERTY);
    std::string zone_name;
    if (rec.kind == EntryKind::Event) {
        if (!dtstart) {
            error = "the event has no DTSTART";
            error_line = item.first_line;
            return false;
        }
        const icaltimetype start = icalproperty_get_dtstart (dtstart);
        if (icaltime_is_null_time (start) || !icaltime_is_valid_time (start) || !date_text_ok (item, "DTSTART")) {
            error = "the event's DTSTART is not a date";
            error_line = line_of ("DTSTART");
            return false;
        }
        rec.all_day = start.is_date;
        rec.start = times.civil (start, tzid_of (dtstart), &zone_name);
        if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_DTEND_PROPERTY)) {
            const icaltimetype end = icalproperty_get_dtend (p);
            int64_t civil_end = times.civil (end, tzid_of (p));
            rec.end = rec.all_day ? std::max (civil_day_start (civil_end) - 1, rec.start + 1439) : civil_end;
        } else if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_DURATION_PROPERTY)) {
            const int64_t minutes = icaldurationtype_as_int (icalproperty_get_duration (p)) / 60;
            rec.end = rec.all_day ? std::max (rec.start + minutes - 1, rec.start + 1439) : rec.start + minutes;
        } else {
            rec.end = rec.all_day ? rec.start + 1439 : rec.start;
        }
        if (rec.end < rec.start) {
            warnings.push_back ("line " + std::to_string (line_of ("DTEND")) + ": '" + rec.title +
                                "' ends before it starts; it is kept as a moment at its start");
            rec.end = rec.start;
        }
    } else if (rec.kind == EntryKind::Task) {
        icalproperty *due = icalcomponent_get_first_property (comp, ICAL_DUE_PROPERTY);
        icalproperty *when = due ? due : dtstart;
        if (when) {
            const icaltimetype t = due ? icalproperty_get_due (due) : icalproperty_get_dtstart (dtstart);
            rec.start = civil_day_start (times.civil (t, tzid_of (when)));
        } else {
            rec.start = civil_day_start (civil_from_time_t (time (nullptr)));
        }
        rec.all_day = true;
        rec.end = rec.start + 1439;
        if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_STATUS_PROPERTY)) {
            rec.done = icalproperty_get_status (p) == ICAL_STATUS_COMPLETED;
        }
        if (icalcomponent_get_first_property (comp, ICAL_COMPLETED_PROPERTY)) {
            rec.done = true;
        }
        if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_PERCENTCOMPLETE_PROPERTY)) {
            rec.done = rec.done || icalproperty_get_percentcomplete (p) >= 100;
        }
    } else {
        rec.all_day = true;
        if (dtstart) {
            rec.start = times.civil (icalproperty_get_dtstart (dtstart), tzid_of (dtstart));
        } else {
            rec.start = civil_day_start (civil_from_time_t (rec.created ? rec.created : time (nullptr)));
        }
        rec.end = rec.start;
    }

    if (rec.kind == EntryKind::Event) {
        if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_RRULE_PROPERTY)) {
            struct icalrecurrencetype r = icalproperty_get_rrule (p);
            char *text = icalrecurrencetype_as_string_r (&r);
            rec.rrule = text ? text : "";
            free (text);
            if (icalcomponent_get_next_property (comp, ICAL_RRULE_PROPERTY)) {
                error = "more than one RRULE; only one is supported";
                error_line = line_of ("RRULE");
                return false;
            }
        }
        std::vector<std::string> exrules;
        for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_EXRULE_PROPERTY); p;
             p = icalcomponent_get_next_property (comp, ICAL_EXRULE_PROPERTY)) {
            struct icalrecurrencetype r = icalproperty_get_exrule (p);
            char *text = icalrecurrencetype_as_string_r (&r);
            exrules.push_back (text ? text : "");
            free (text);
        }
        if (!exrules.empty ()) {
            rec.exrule = exrules[0];
        }
        /* Further EXRULEs exclude too; their occurrences are kept as
         * exception dates. */
        for (size_t i = 1; i < exrules.size (); ++i) {
            EntryRecord probe;
            probe.start = rec.start;
            probe.end = rec.start;
            probe.rrule = exrules[i];
            probe.tzid = zone_name;
            for (int64_t s : expand_instances_stepping (probe, INT64_MIN, kUnbounded)) {
                rec.exdates.push_back (s);
            }
        }
        for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_EXDATE_PROPERTY); p;
             p = icalcomponent_get_next_property (comp, ICAL_EXDATE_PROPERTY)) {
            rec.exdates.push_back (times.civil (icalproperty_get_exdate (p), tzid_of (p)));
        }
        for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_RDATE_PROPERTY); p;
             p = icalcomponent_get_next_property (comp, ICAL_RDATE_PROPERTY)) {
            const struct icaldatetimeperiodtype d = icalproperty_get_rdate (p);
            if (icaltime_is_null_time (d.time)) {
                warnings.push_back ("line " + std::to_string (line_of ("RDATE")) +
                                    ": RDATE periods are not supported; kept in the file's text only");
                continue;
            }
            rec.rdates.push_back (times.civil (d.time, tzid_of (p)));
        }
        std::sort (rec.exdates.begin (), rec.exdates.end ());
        if (!rec.rrule.empty ()) {
            rec.tzid = zone_name;
            Status s = validate_rrule (rec.rrule);
            if (!s.ok ()) {
                error = s.message;
                error_line = line_of ("RRULE");
                return false;
            }
            int64_t until = -1;
            rec.repeat_code = repeat_code_for_rrule (rec.rrule, rec.start, &until);
        } else if (!rec.rdates.empty ()) {
            rec.repeat_code = TavCalendarRepeatsComplex;
        }

        /* The nearest of the alarm codes to the first VALARM. */
        for (icalcomponent *alarm = icalcomponent_get_first_component (comp, ICAL_VALARM_COMPONENT); alarm;
             alarm = icalcomponent_get_next_component (comp, ICAL_VALARM_COMPONENT)) {
            icalproperty *trigger = icalcomponent_get_first_property (alarm, ICAL_TRIGGER_PROPERTY);
            if (!trigger) {
                continue;
            }
            const struct icaltriggertype t = icalproperty_get_trigger (trigger);
            int64_t before;
            if (!icaltime_is_null_time (t.time)) {
                before = rec.start - times.civil (t.time, nullptr);
            } else {
                before = -icaldurationtype_as_int (t.duration) / 60;
                icalparameter *rel = icalproperty_get_first_parameter (trigger, ICAL_RELATED_PARAMETER);
                if (rel && icalparameter_get_related (rel) == ICAL_RELATED_END) {
                    before -= rec.end - rec.start;
                }
            }
            rec.alarm_code = alarm_code_for_minutes (before);
            if (rec.alarm_code == TavCalendarAlarmDayBefore) {
                const CivilFields f = civil_fields (rec.start - before);
                rec.alarm_time = f.hour * 60 + f.minute;
            }
            break;
        }
    }

    /* Everything the model has no field for is kept verbatim. */
    const std::set<std::string> &handled = handled_properties (kind);
    std::string extra;
    for (const Line *l : item.own_lines) {
        if (!handled.count (l->name)) {
            extra += l->text + "\n";
        }
        if (l->name == "X-TAV-BIRTHDAY") {
            rec.has_birthday = true;
            const std::string value = line_value (*l);
            rec.birth_year = value.empty () ? -1 : static_cast<int> (g_ascii_strtoll (value.c_str (), nullptr, 10));
        }
    }
    bool in_alarm = false;
    for (const Line *l : item.child_lines) {
        /* VALARMs become the alarm code; other nested components are kept. */
        if (l->name == "BEGIN" && upper (line_value (*l)) == "VALARM") {
            in_alarm = true;
        }
        if (!in_alarm) {
            extra += l->text + "\n";
        }
        if (l->name == "END" && upper (line_value (*l)) == "VALARM") {
            in_alarm = false;
        }
    }
    rec.extra = extra;
    return true;
}

/* A stable UID for a component that has none, so that importing the same
 * file twice does not double it. */
std::string derived_uid (const Item &item, std::map<std::string, int> &seen)
{
    std::string text;
    for (const Line *l : item.own_lines) {
        text += l->text + "\n";
    }
    char *sum = g_compute_checksum_for_string (G_CHECKSUM_SHA1, text.c_str (), -1);
    std::string uid = std::string (sum) + "@import.tav-calendar";
    g_free (sum);
    const int n = seen[uid]++;
    if (n > 0) {
        uid += "-" + std::to_string (n);
    }
    return uid;
}

}  // namespace

TavCalendarAlarmCode alarm_code_for_minutes (int64_t minutes_before)
{
    static const std::pair<int64_t, TavCalendarAlarmCode> codes[] = {
        {0, TavCalendarAlarm0Min},   {5, TavCalendarAlarm5Min},     {15, TavCalendarAlarm15Min},
        {30, TavCalendarAlarm30Min}, {60, TavCalendarAlarm1Hour},   {180, TavCalendarAlarm3Hours},
        {1440, TavCalendarAlarmDayBefore}};
    TavCalendarAlarmCode best = TavCalendarAlarm0Min;
    int64_t best_distance = INT64_MAX;
    const int64_t m = std::max<int64_t> (0, minutes_before);
    for (const auto &c : codes) {
        const int64_t d = m > c.first ? m - c.first : c.first - m;
        if (d < best_distance) {
            best_distance = d;
            best = c.second;
        }
    }
    return best;
}

int64_t alarm_code_minutes (int code)
{
    switch (code) {
    case TavCalendarAlarm0Min: return 0;
    case TavCalendarAlarm5Min: return 5;
    case TavCalendarAlarm15Min: return 15;
    case TavCalendarAlarm30Min: return 30;
    case TavCalendarAlarm1Hour: return 60;
    case TavCalendarAlarm3Hours: return 180;
    case TavCalendarAlarmDayBefore: return 1440;
    default: return -1;
    }
}

ImportResult import_ics_text (Store &store, int64_t calendar_id, const std::string &text, const ImportProgress &progress)
{
    ImportResult result;
    CalendarRecord calendar;
    if (!store.find_calendar (calendar_id, &calendar)) {
        result.status = Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (calendar_id));
        return result;
    }
    if (calendar.read_only) {
        result.status = Status::failure (CalendarInvalidArg, "the calendar '" + calendar.title + "' is read-only");
        return result;
    }
    const char *bad = nullptr;
    if (!g_utf8_validate (text.data (), static_cast<gssize> (text.size ()), &bad)) {
        result.line = 1 + static_cast<int> (std::count (text.data (), bad, '\n'));
        result.status = Status::failure (CalendarInvalidIcsFile,
                                         "line " + std::to_string (result.line) + ": the text is not valid UTF-8");
        return result;
    }

    std::vector<Line> lines;
    std::vector<Item> items;
    std::string zone_text;
    ParseError error {0, {}};
    if (!split_lines (text, lines, error) || !collect_items (lines, items, zone_text, result.warnings, error)) {
        result.line = error.line;
        result.status = Status::failure (CalendarInvalidIcsFile, "line " + std::to_string (error.line) + ": " + error.message);
        return result;
    }
    if (items.empty ()) {
        result.status = Status::failure (CalendarInvalidIcsFile, "the file holds no events, tasks or notes");
        return result;
    }

    ComponentPtr zones;
    if (!zone_text.empty ()) {
        zones.reset (icalparser_parse_string (("BEGIN:VCALENDAR\r\n" + zone_text + "END:VCALENDAR\r\n").c_str ()));
    }
    TimeReader times {zones.get (), &result.warnings};

    std::vector<EntryRecord> records;
    records.reserve (items.size ());
    std::map<std::string, int> seen;
    for (const Item &item : items) {
        std::string source = "BEGIN:" + item.kind + "\r\n";
        for (const Line *l : item.own_lines) {
            source += l->text + "\r\n";
        }
        for (const Line *l : item.child_lines) {
            source += l->text + "\r\n";
        }
        source += "END:" + item.kind + "\r\n";
        ComponentPtr comp (icalparser_parse_string (source.c_str ()));
        if (!comp) {
            result.line = item.first_line;
            result.status = Status::failure (CalendarInvalidIcsComponent,
                                             "line " + std::to_string (item.first_line) + ": " + item.kind +
                                                 " cannot be read");
            return result;
        }
        EntryRecord rec;
        rec.calendar_id = calendar_id;
        std::string message;
        int line = item.first_line;
        if (!to_record (comp.get (), item, times, rec, message, line, result.warnings)) {
            result.line = line;
            result.status = Status::failure (CalendarInvalidIcsComponent, "line " + std::to_string (line) + ": " + message);
            return result;
        }
        if (rec.uid.empty ()) {
            rec.uid = derived_uid (item, seen);
        }
        records.push_back (std::move (rec));
    }

    Store::Transaction tx (store);
    const size_t total = records.size ();
    for (size_t i = 0; i < total; ++i) {
        EntryRecord &rec = records[i];
        EntryRecord existing;
        Status s;
        if (store.find_entry_by_uid (calendar_id, rec.uid, &existing)) {
            rec.id = existing.id;
            if (rec.created == 0) {
                rec.created = existing.created;
            }
            s = store.update_entry (rec);
            if (s.ok ()) {
                ++result.updated;
            }
        } else {
            s = store.add_entry (rec);
        }
        if (!s.ok ()) {
            result = ImportResult {};
            result.line = items[i].first_line;
            result.status = Status::failure (s.code == CalendarInvalidArg ? CalendarInvalidIcsComponent : s.code,
                                             "line " + std::to_string (items[i].first_line) + ": " + s.message);
            return result;  /* the transaction rolls back */
        }
        switch (rec.kind) {
        case EntryKind::Event: ++result.events; break;
        case EntryKind::Task: ++result.tasks; break;
        case EntryKind::Note: ++result.notes; break;
        }
        if (progress) {
            progress (i + 1, total);
        }
    }
    Status s = tx.commit ();
    if (!s.ok ()) {
        ImportResult failed;
        failed.status = s;
        return failed;
    }
    result.status = Status::success ();
    return result;
}

ImportResult import_ics_file (Store &store, int64_t calendar_id, const std::string &path, const ImportProgress &progress)
{
    gchar *contents = nullptr;
    gsize length = 0;
    GError *err = nullptr;
    if (!g_file_get_contents (path.c_str (), &contents, &length, &err)) {
        ImportResult result;
        result.status = Status::failure (CalendarInvalidIcsFile, std::string ("cannot read '") + path + "': " + err->message);
        g_error_free (err);
        return result;
    }
    std::string text (contents, length);
    g_free (contents);
    return import_ics_text (store, calendar_id, text, progress);
}

/* Export ------------------------------------------------------------------ */

namespace {

std::string escape_text (const std::string &s)
{
    std::string out;
    out.reserve (s.size ());
    for (char c : s) {
        switch (c) {
        case '\\': out += "\\\\"; break;
        case ';': out += "\\;"; break;
        case ',': out += "\\,"; break;
        case '\n': out += "\\n"; break;
        case '\r': break;
        default: out += c;
        }
    }
    return out;
}

/* Folds a content line at 75 octets without splitting a UTF-8 sequence. */
void append_line (std::string &out, const std::string &line)
{
    size_t pos = 0, width = 75;
    while (line.size () - pos > width) {
        size_t cut = pos + width;
        while (cut > pos && (static_cast<unsigned char> (line[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        out += line.substr (pos, cut - pos);
        out += "\r\n ";
        pos = cut;
        width = 74;
    }
    out += line.substr (pos);
    out += "\r\n";
}

std::string format_date (int64_t civil)
{
    const CivilFields f = civil_fields (civil);
    char buf[16];
    snprintf (buf, sizeof buf, "%04d%02d%02d", f.year, f.month, f.day);
    return buf;
}

std::string format_floating (int64_t civil)
{
    const CivilFields f = civil_fields (civil);
    char buf[24];
    snprintf (buf, sizeof buf, "%04d%02d%02dT%02d%02d00", f.year, f.month, f.day, f.hour, f.minute);
    return buf;
}

std::string format_utc_seconds (int64_t seconds)
{
    const time_t t = static_cast<time_t> (seconds);
    struct tm tm = {};
    gmtime_r (&t, &tm);
    char buf[24];
    strftime (buf, sizeof buf, "%Y%m%dT%H%M%SZ", &tm);
    return buf;
}

/* How the times of one entry are written. */
struct TimeWriter {
    const EntryRecord &rec;
    icaltimezone *zone;

    /* ";VALUE=DATE:..." / ";TZID=...:..." / ":...Z" / ":..." */
    std::string operator() (int64_t civil) const
    {
        if (rec.all_day) {
            return ";VALUE=DATE:" + format_date (civil);
        }
        if (zone) {
            icaltimetype t = icaltime_from_timet_with_zone (time_t_from_civil (civil), 0, zone);
            char buf[24];
            snprintf (buf, sizeof buf, "%04d%02d%02dT%02d%02d%02d", t.year, t.month, t.day, t.hour, t.minute, t.second);
            return ";TZID=" + rec.tzid + ":" + buf;
        }
        if (rec.repeats ()) {
            /* A local repeating event keeps its wall-clock time across DST. */
            return ":" + format_floating (civil);
        }
        return ":" + format_utc_seconds (time_t_from_civil (civil));
    }
};

void write_record (std::string &out, const EntryRecord &rec)
{
    const char *kind = rec.kind == EntryKind::Event ? "VEVENT" : rec.kind == EntryKind::Task ? "VTODO" : "VJOURNAL";
    icaltimezone *zone = rec.tzid.empty () ? nullptr : icaltimezone_get_builtin_timezone (rec.tzid.c_str ());
    TimeWriter when {rec, zone};
    append_line (out, std::string ("BEGIN:") + kind);
    append_line (out, "UID:" + rec.uid);
    append_line (out, "DTSTAMP:" + format_utc_seconds (time (nullptr)));
    if (rec.created) {
        append_line (out, "CREATED:" + format_utc_seconds (rec.created));
    }
    if (rec.modified) {
        append_line (out, "LAST-MODIFIED:" + format_utc_seconds (rec.modified));
    }
    if (!rec.title.empty ()) {
        append_line (out, "SUMMARY:" + escape_text (rec.title));
    }
    if (!rec.description.empty ()) {
        append_line (out, "DESCRIPTION:" + escape_text (rec.description));
    }
    if (!rec.location.empty () && rec.kind != EntryKind::Note) {
        append_line (out, "LOCATION:" + escape_text (rec.location));
    }
    switch (rec.kind) {
    case EntryKind::Event: {
        append_line (out, "DTSTART" + when (rec.start));
        if (rec.all_day) {
            append_line (out, "DTEND;VALUE=DATE:" + format_date (civil_day_start (rec.end) + kMinutesPerDay));
        } else {
            append_line (out, "DTEND" + when (rec.end));
        }
        if (!rec.rrule.empty ()) {
            append_line (out, "RRULE:" + rec.rrule);
        }
        if (!rec.exrule.empty ()) {
            append_line (out, "EXRULE:" + rec.exrule);
        }
        for (int64_t x : rec.exdates) {
            append_line (out, "EXDATE" + when (x));
        }
        for (int64_t r : rec.rdates) {
            append_line (out, "RDATE" + when (r));
        }
        if (rec.has_birthday) {
            append_line (out, "X-TAV-BIRTHDAY:" + std::to_string (rec.birth_year));
        }
        break;
    }
    case EntryKind::Task:
        append_line (out, "DUE;VALUE=DATE:" + format_date (rec.start));
        append_line (out, rec.done ? "STATUS:COMPLETED" : "STATUS:NEEDS-ACTION");
        break;
    case EntryKind::Note:
        append_line (out, "DTSTART" + (rec.all_day ? ";VALUE=DATE:" + format_date (rec.start)
                                                   : ":" + format_floating (rec.start)));
        break;
    }
    /* Unknown properties and nested components go back as they came; the
     * VALARM is written after them so that it stays a direct child. */
    std::string extra = rec.extra;
    size_t pos = 0;
    while (pos < extra.size ()) {
        size_t eol = extra.find ('\n', pos);
        if (eol == std::string::npos) {
            eol = extra.size ();
        }
        if (eol > pos) {
            append_line (out, extra.substr (pos, eol - pos));
        }
        pos = eol + 1;
    }
    if (rec.kind == EntryKind::Event && rec.alarm_code != TavCalendarAlarmNone) {
        int64_t before = alarm_code_minutes (rec.alarm_code);
        if (rec.alarm_code == TavCalendarAlarmDayBefore && rec.alarm_time >= 0) {
            before = rec.start - (civil_day_start (rec.start) - kMinutesPerDay + rec.alarm_time);
        }
        append_line (out, "BEGIN:VALARM");
        append_line (out, "ACTION:DISPLAY");
        append_line (out, "DESCRIPTION:" + escape_text (rec.title.empty () ? std::string ("Reminder") : rec.title));
        append_line (out, before == 0 ? std::string ("TRIGGER:PT0S") : "TRIGGER:-PT" + std::to_string (before) + "M");
        append_line (out, "END:VALARM");
    }
    append_line (out, std::string ("END:") + kind);
}

}  // namespace

std::string export_ics_text (Store &store, const std::vector<int64_t> &calendar_ids, int *count)
{
    std::string out;
    append_line (out, "BEGIN:VCALENDAR");
    append_line (out, "VERSION:2.0");
    append_line (out, "PRODID:-//tav-calendar//tav-calendar " PACKAGE_VERSION "//EN");
    std::vector<EntryRecord> all;
    for (int64_t id : calendar_ids) {
        auto entries = store.entries_of_calendar (id);
        std::move (entries.begin (), entries.end (), std::back_inserter (all));
    }
    std::set<std::string> zones;
    for (const EntryRecord &rec : all) {
        if (!rec.tzid.empty () && !rec.all_day && zones.insert (rec.tzid).second) {
            if (icaltimezone *z = icaltimezone_get_builtin_timezone (rec.tzid.c_str ())) {
                icalcomponent *vtz = icaltimezone_get_component (z);
                char *text = vtz ? icalcomponent_as_ical_string_r (vtz) : nullptr;
                if (text) {
                    out += text;
                    free (text);
                }
            }
        }
    }
    for (const EntryRecord &rec : all) {
        write_record (out, rec);
    }
    append_line (out, "END:VCALENDAR");
    if (count) {
        *count = static_cast<int> (all.size ());
    }
    return out;
}

Status export_ics_file (Store &store, const std::vector<int64_t> &calendar_ids, const std::string &path, int *count)
{
    const std::string text = export_ics_text (store, calendar_ids, count);
    GError *err = nullptr;
    if (!g_file_set_contents (path.c_str (), text.data (), static_cast<gssize> (text.size ()), &err)) {
        Status s = Status::failure (err->code == G_FILE_ERROR_NOSPC ? CalendarDiskFullError : CalendarDefaultError,
                                    std::string ("cannot write '") + path + "': " + err->message);
        g_error_free (err);
        return s;
    }
    return Status::success ();
}

}  // namespace tav::host
