#include "HostIcs.h"
#include "HostCivilTime.h"
#include "HostRecurrence.h"
#include "HostZone.h"

#include <glib.h>
#include <glib/gstdio.h>

#include <cerrno>
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
    std::string method;                    /* METHOD of its VCALENDAR, upper-cased */
};

struct ParseError {
    int line;
    std::string message;
};

/* libical's own string reader looks for the end of the line again for
 * every kilobyte it hands out, which is quadratic in the length of a line;
 * this one remembers where the line ends. */
struct LineFeeder {
    const char *pos;
    const char *end;
    const char *eol = nullptr;  /* the next '\n' at or after pos, or end */

    static char *next (char *out, size_t size, void *data)
    {
        LineFeeder &f = *static_cast<LineFeeder *> (data);
        if (f.pos >= f.end || size < 2) {
            return nullptr;
        }
        if (!f.eol || f.eol < f.pos) {
            const void *nl = memchr (f.pos, '\n', static_cast<size_t> (f.end - f.pos));
            f.eol = nl ? static_cast<const char *> (nl) : f.end;
        }
        const size_t line = static_cast<size_t> (f.eol - f.pos) + (f.eol < f.end ? 1 : 0);
        const size_t n = std::min (line, size - 1);
        memcpy (out, f.pos, n);
        out[n] = '\0';
        f.pos += n;
        return out;
    }
};

icalcomponent *parse_component (const std::string &text)
{
    icalparser *parser = icalparser_new ();
    LineFeeder feeder {text.data (), text.data () + text.size ()};
    icalparser_set_gen_data (parser, &feeder);
    icalcomponent *comp = icalparser_parse (parser, LineFeeder::next);
    icalparser_free (parser);
    return comp;
}

bool valid_name_char (char c)
{
    return g_ascii_isalnum (c) || c == '-';
}

/* Whether a sliced pass has come to the end of its time. */
bool out_of_time (int64_t deadline)
{
    return deadline >= 0 && g_get_monotonic_time () >= deadline;
}

enum class Step { Done, More, Failed };

/* Splits a text into unfolded logical lines, a slice at a time. Lines that
 * cannot be a content line ("NAME[;PARAM=...]:VALUE") are reported by
 * number later, by the collector. */
struct LineSplitter {
    size_t pos = 0;
    int number = 0;

    Step run (const std::string &text, std::vector<Line> &lines, ParseError &error, int64_t deadline)
    {
        for (int n = 0; pos < text.size (); ++n) {
            if ((n & 255) == 255 && out_of_time (deadline)) {
                return Step::More;
            }
            size_t eol = text.find ('\n', pos);
            if (eol == std::string::npos) {
                eol = text.size ();
            }
            size_t length = eol - pos;
            if (length && text[pos + length - 1] == '\r') {
                --length;
            }
            ++number;
            const size_t from = pos;
            pos = eol + 1;
            if (length && (text[from] == ' ' || text[from] == '\t')) {
                if (lines.empty ()) {
                    error = {number, "a continuation line with nothing to continue"};
                    return Step::Failed;
                }
                lines.back ().text.append (text, from + 1, length - 1);
                continue;
            }
            lines.push_back ({text.substr (from, length), number, {}});
        }
        return Step::Done;
    }
};

void name_line (Line &line)
{
    size_t i = 0;
    while (i < line.text.size () && valid_name_char (line.text[i])) {
        ++i;
    }
    line.name = line.text.substr (0, i);
    for (char &c : line.name) {
        c = g_ascii_toupper (c);
    }
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

/* Checks the nesting of BEGIN/END and collects the entries, a slice at a
 * time. Text outside any component (comments, blank lines) is skipped with
 * a warning. */
struct ItemCollector {
    struct Open {
        std::string kind;
        int line;
        int item;  /* index into items, or -1 */
    };
    size_t next = 0;  /* the next line to look at */
    std::vector<Open> stack;
    std::string zone_text;
    bool in_zone = false;
    int ignored = 0, first_ignored = 0;
    std::map<std::string, std::pair<int, int>> skipped;  /* kind: count, first line */
    size_t calendar_first_item = 0;  /* the first entry of the current VCALENDAR */
    std::string method;

    Step run (std::vector<Line> &lines, std::vector<Item> &items, ParseError &error, int64_t deadline)
    {
        for (int n = 0; next < lines.size (); ++n) {
            if ((n & 255) == 255 && out_of_time (deadline)) {
                return Step::More;
            }
            Line &line = lines[next++];
            name_line (line);
            if (!take (line, items, error)) {
                return Step::Failed;
            }
        }
        if (!stack.empty ()) {
            error = {stack.back ().line, "BEGIN:" + stack.back ().kind + " is never closed"};
            return Step::Failed;
        }
        return Step::Done;
    }

    void finish (std::vector<std::string> &warnings, std::string &zones)
    {
        for (const auto &s : skipped) {
            warnings.push_back ("line " + std::to_string (s.second.second) + ": " + std::to_string (s.second.first) + " " +
                                s.first + " component(s) are not calendar entries and were not imported");
        }
        if (ignored) {
            warnings.push_back ("line " + std::to_string (first_ignored) + ": " + std::to_string (ignored) +
                                " line(s) outside any component ignored");
        }
        zones = zone_text;
    }

    bool take (const Line &line, std::vector<Item> &items, ParseError &error)
    {
        if (line.text.empty ()) {
            return true;
        }
        if (stack.empty () && line.name != "BEGIN") {
            if (ignored++ == 0) {
                first_ignored = line.number;
            }
            return true;
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
            if (stack.empty ()) {
                calendar_first_item = items.size ();
                method.clear ();
            }
            if (entry_kind && at_entry_level) {
                items.push_back ({kind, line.number, {}, {}, method});
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
            return true;
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
            return true;
        }
        if (in_zone) {
            zone_text += line.text + "\r\n";
        }
        if (stack.size () == 1 && line.name == "METHOD") {
            method = upper (line_value (line));
            for (size_t i = calendar_first_item; i < items.size (); ++i) {
                items[i].method = method;
            }
        }
        if (stack.back ().item >= 0) {
            Item &item = items[stack.back ().item];
            const bool own = item.first_line == stack.back ().line;
            (own ? item.own_lines : item.child_lines).push_back (&line);
        }
        return true;
    }
};

const std::set<std::string> &handled_properties (const std::string &kind)
{
    static const std::set<std::string> event = {"UID",    "SUMMARY", "DESCRIPTION", "LOCATION",      "DTSTART",
                                                "DTEND",  "DURATION", "RRULE",      "EXDATE",        "RDATE",
                                                "EXRULE", "CREATED", "LAST-MODIFIED", "DTSTAMP",     "X-TAV-BIRTHDAY",
                                                "SEQUENCE", "RECURRENCE-ID"};
    static const std::set<std::string> todo = {"UID",     "SUMMARY", "DESCRIPTION", "LOCATION",      "DTSTART",
                                               "DUE",     "STATUS",  "COMPLETED",   "CREATED",       "LAST-MODIFIED",
                                               "DTSTAMP", "PERCENT-COMPLETE", "SEQUENCE"};
    static const std::set<std::string> journal = {"UID",     "SUMMARY", "DESCRIPTION", "DTSTART",
                                                  "CREATED", "LAST-MODIFIED", "DTSTAMP", "SEQUENCE"};
    return kind == "VEVENT" ? event : kind == "VTODO" ? todo : journal;
}

/* Properties whose loss would change when the entry happens. */
bool essential (const std::string &name)
{
    return name == "DTSTART" || name == "DUE" || name == "RRULE" || name == "EXDATE" || name == "RDATE"
           || name == "EXRULE";
}

/* Time conversion. A value is a DATE (civil day), a floating time (civil
 * minutes), or an instant (UTC minutes) given in UTC or in a zone; the
 * entry takes the kind of its DTSTART, and its other times are brought
 * into that frame. */
struct TimeValue {
    int64_t minutes = 0;
    std::string tzid;   /* "UTC", a zone, or empty: floating or a date */
    bool is_date = false;
};

struct TimeReader {
    std::vector<std::string> *warnings;

    TimeValue read (icaltimetype t, const char *tzid) const
    {
        TimeValue v;
        v.is_date = t.is_date;
        const int64_t wall = civil_minutes (t.year, t.month, t.day, t.is_date ? 0 : t.hour, t.is_date ? 0 : t.minute);
        v.minutes = wall;
        if (t.is_date) {
            return v;
        }
        if (icaltime_is_utc (t)) {
            v.tzid = "UTC";
            return v;
        }
        if (tzid) {
            if (icaltimezone *z = zone_for_tzid (tzid)) {
                v.tzid = tzid;
                v.minutes = utc_from_wall (wall, z);
                return v;
            }
            if (warnings) {
                warnings->push_back (std::string ("unknown time zone '") + tzid + "', its times are taken as floating");
            }
        }
        return v;
    }

    /* @v in the frame of an entry whose DTSTART gave @frame_tzid. */
    static int64_t in_frame (const TimeValue &v, const std::string &frame_tzid)
    {
        if (frame_tzid.empty ()) {
            return v.tzid.empty () ? v.minutes : local_from_utc (v.minutes);
        }
        return v.tzid.empty () ? utc_from_wall (v.minutes, zone_for_tzid (frame_tzid)) : v.minutes;
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
    std::string text = v ? v : std::string ();
    if (kind == ICAL_UID_PROPERTY) {
        return text;
    }
    /* A carriage return inside a value (a file written on an old Mac, or
     * a stray byte) is a line break: kept raw it could not be written back
     * out, and the export would lose it. */
    std::string out;
    out.reserve (text.size ());
    for (size_t i = 0; i < text.size (); ++i) {
        if (text[i] != '\r') {
            out += text[i];
        } else if (i + 1 >= text.size () || text[i + 1] != '\n') {
            out += '\n';
        }
    }
    /* libical drops the blanks a line ends with, but not those an escape
     * such as an unknown "\y" turned into: trimmed here too, the value
     * reads the same after an export and a new import. */
    out.erase (out.find_last_not_of (" \t") + 1);
    return out;
}

/* Seconds since the epoch of a UTC (or floating, taken as UTC) time, for
 * any year: no time_t conversion that stops at 1902. */
int64_t seconds_of (icaltimetype t)
{
    return civil_minutes (t.year, t.month, t.day, t.is_date ? 0 : t.hour, t.is_date ? 0 : t.minute) * 60
           + (t.is_date ? 0 : t.second);
}

int64_t days_in_month (int year, int month)
{
    static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : lengths[month - 1];
}

/* Why one DATE or DATE-TIME text is not a real date, empty when it is. */
std::string date_value_problem (const std::string &v)
{
    auto digits = [&] (size_t from, size_t n) {
        int out = 0;
        for (size_t i = from; i < from + n; ++i) {
            out = out * 10 + (v[i] - '0');
        }
        return out;
    };
    auto all_digits = [&] (size_t from, size_t n) {
        return v.size () >= from + n && std::all_of (v.begin () + from, v.begin () + from + n,
                                                     [] (char c) { return g_ascii_isdigit (c); });
    };
    const bool is_date = v.size () == 8 && all_digits (0, 8);
    const bool is_time = (v.size () == 15 || (v.size () == 16 && v[15] == 'Z')) && all_digits (0, 8) && v[8] == 'T'
                         && all_digits (9, 6);
    if (!is_date && !is_time) {
        return "'" + v + "' is not written as an iCalendar date or date-time";
    }
    const int year = digits (0, 4), month = digits (4, 2), day = digits (6, 2);
    if (year < 1) {
        return "'" + v + "': the year 0 cannot be kept (the calendar holds the years 1 to 9999)";
    }
    if (month < 1 || month > 12) {
        return "'" + v + "': there is no month " + std::to_string (month);
    }
    if (day < 1 || day > days_in_month (year, month)) {
        return "'" + v + "': there is no day " + std::to_string (day) + " in that month";
    }
    if (is_time && (digits (9, 2) > 23 || digits (11, 2) > 59 || digits (13, 2) > 60)) {
        return "'" + v + "': there is no such time of day";
    }
    return {};
}

/* libical reads malformed dates leniently ("20021301" becomes a date of its
 * own making): every date the properties @name hold (lists and periods
 * included) must be a real one. The problem and its line, when not. */
bool dates_ok (const Item &item, const std::string &name, std::string &problem, int &line)
{
    /* An unreadable end or due date is dropped by libical with a warning
     * (the entry keeps its start); one that reads as an impossible date is
     * not. */
    const bool lenient = name == "DTEND" || name == "DUE";
    for (const Line *l : item.own_lines) {
        if (l->name != name) {
            continue;
        }
        const std::string value = line_value (*l);
        size_t pos = 0;
        while (pos <= value.size ()) {
            size_t comma = value.find (',', pos);
            if (comma == std::string::npos) {
                comma = value.size ();
            }
            std::string v = value.substr (pos, comma - pos);
            const size_t slash = v.find ('/');
            std::string second;
            if (slash != std::string::npos) {
                second = v.substr (slash + 1);
                v = v.substr (0, slash);
            }
            problem = date_value_problem (v);
            if (lenient && problem.find ("is not written as") != std::string::npos) {
                problem.clear ();
            }
            if (problem.empty () && !second.empty () && second[0] != 'P' && second[0] != '+' && second[0] != '-') {
                problem = date_value_problem (second);
            }
            if (!problem.empty ()) {
                problem = name + " " + problem;
                line = l->number;
                return false;
            }
            pos = comma + 1;
        }
    }
    return true;
}

/* iTIP methods whose components only answer or withdraw: they name an
 * entry and need not describe it. */
bool answers_only (const std::string &method)
{
    return method == "CANCEL" || method == "REPLY" || method == "REFRESH" || method == "COUNTER"
           || method == "DECLINECOUNTER";
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

    for (const char *name : {"DTSTART", "DTEND", "DUE", "RECURRENCE-ID", "EXDATE", "RDATE"}) {
        if (!dates_ok (item, name, error, error_line)) {
            return false;
        }
    }
    if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_DTSTAMP_PROPERTY)) {
        rec.dtstamp = seconds_of (icalproperty_get_dtstamp (p));
    }
    if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_SEQUENCE_PROPERTY)) {
        rec.sequence = icalproperty_get_sequence (p);
    }
    if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_STATUS_PROPERTY)) {
        rec.cancelled = icalproperty_get_status (p) == ICAL_STATUS_CANCELLED;
    }

    icalproperty *dtstart = icalcomponent_get_first_property (comp, ICAL_DTSTART_PROPERTY);
    auto in_frame = [&] (icalproperty *p, icaltimetype t) {
        return TimeReader::in_frame (times.read (t, tzid_of (p)), rec.tzid);
    };
    if (rec.kind == EntryKind::Event) {
        icalproperty *rid = icalcomponent_get_first_property (comp, ICAL_RECURRENCEID_PROPERTY);
        if (!dtstart && answers_only (item.method)) {
            /* A reply or a cancellation names an event by UID (and
             * RECURRENCE-ID) and need not say when it is. */
            const TimeValue v = rid ? times.read (icalproperty_get_recurrenceid (rid), tzid_of (rid)) : TimeValue {};
            rec.all_day = v.is_date;
            rec.tzid = v.tzid;
            rec.start = rec.end = v.minutes;
            rec.recurrence_id = rid ? v.minutes : kNoRecurrenceId;
            return true;
        }
        if (!dtstart) {
            error = "the event has no DTSTART";
            error_line = item.first_line;
            return false;
        }
        const icaltimetype start = icalproperty_get_dtstart (dtstart);
        if (icaltime_is_null_time (start)) {
            error = "the event's DTSTART is not a date";
            error_line = line_of ("DTSTART");
            return false;
        }
        rec.all_day = start.is_date;
        const TimeValue first = times.read (start, tzid_of (dtstart));
        rec.tzid = first.tzid;
        rec.start = first.minutes;
        if (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_DTEND_PROPERTY)) {
            const int64_t end = in_frame (p, icalproperty_get_dtend (p));
            rec.end = rec.all_day ? std::max (civil_day_start (end) - 1, rec.start + 1439) : end;
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
        if (icalproperty *p = rid) {
            rec.recurrence_id = in_frame (p, icalproperty_get_recurrenceid (p));
            if (rec.all_day) {
                rec.recurrence_id = civil_day_start (rec.recurrence_id);
            }
        }
    } else if (rec.kind == EntryKind::Task) {
        icalproperty *due = icalcomponent_get_first_property (comp, ICAL_DUE_PROPERTY);
        icalproperty *when = due ? due : dtstart;
        if (when) {
            const icaltimetype t = due ? icalproperty_get_due (due) : icalproperty_get_dtstart (dtstart);
            rec.start = civil_day_start (TimeReader::in_frame (times.read (t, tzid_of (when)), ""));
        } else {
            /* Kept undated; shown on the day it is looked at. */
            rec.undated = true;
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
            rec.start = TimeReader::in_frame (times.read (icalproperty_get_dtstart (dtstart), tzid_of (dtstart)), "");
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
            EntryRecord probe = rec;
            probe.rrule = exrules[i];
            probe.exrule.clear ();
            probe.rdates.clear ();
            probe.exdates.clear ();
            probe.end = probe.start;
            for (int64_t s : expand_instances_stepping (probe, INT64_MIN, kUnbounded)) {
                rec.exdates.push_back (probe.is_instant () ? utc_from_local (s) : s);
            }
        }
        for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_EXDATE_PROPERTY); p;
             p = icalcomponent_get_next_property (comp, ICAL_EXDATE_PROPERTY)) {
            rec.exdates.push_back (in_frame (p, icalproperty_get_exdate (p)));
        }
        for (icalproperty *p = icalcomponent_get_first_property (comp, ICAL_RDATE_PROPERTY); p;
             p = icalcomponent_get_next_property (comp, ICAL_RDATE_PROPERTY)) {
            const struct icaldatetimeperiodtype d = icalproperty_get_rdate (p);
            if (icaltime_is_null_time (d.time)) {
                /* A period: its start is an instance (of the entry's length);
                 * the period is kept to be written back. */
                if (!icaltime_is_null_time (d.period.start)) {
                    const int64_t begin = in_frame (p, d.period.start);
                    const int64_t end = !icaltime_is_null_time (d.period.end)
                                            ? in_frame (p, d.period.end)
                                            : begin + icaldurationtype_as_int (d.period.duration) / 60;
                    rec.rdate_ends.resize (rec.rdates.size (), kNoRecurrenceId);
                    rec.rdates.push_back (begin);
                    rec.rdate_ends.push_back (end);
                }
                continue;
            }
            rec.rdates.push_back (in_frame (p, d.time));
            if (!rec.rdate_ends.empty ()) {
                rec.rdate_ends.push_back (kNoRecurrenceId);
            }
        }
        if (rec.all_day) {
            /* An all-day entry repeats on days: a date-time among its
             * exception or extra dates names the day it falls on, as its
             * RECURRENCE-ID does. */
            for (std::vector<int64_t> *days : { &rec.exdates, &rec.rdates }) {
                std::transform (days->begin (), days->end (), days->begin (), civil_day_start);
            }
        }
        std::sort (rec.exdates.begin (), rec.exdates.end ());
        if (rec.is_exception ()) {
            /* An exception stands for one instance. */
            rec.rrule.clear ();
            rec.exrule.clear ();
            rec.exdates.clear ();
            rec.rdates.clear ();
            rec.rdate_ends.clear ();
        }
        if (!rec.rrule.empty ()) {
            Status s = validate_rrule (rec.rrule);
            if (!s.ok ()) {
                error = s.message;
                error_line = line_of ("RRULE");
                return false;
            }
            int64_t until = -1;
            const int64_t wall_start = rec.is_instant () ? wall_from_utc (rec.start, zone_for_tzid (rec.tzid))
                                                         : rec.start;
            rec.repeat_code = repeat_code_for_rrule (rec.rrule, wall_start, &until);
            if (rec.is_instant () && rec.repeat_code != TavCalendarRepeatsComplex) {
                /* The simple codes repeat on the local wall clock. */
                rec.repeat_code = TavCalendarRepeatsComplex;
            }
        } else if (!rec.rdates.empty ()) {
            rec.repeat_code = TavCalendarRepeatsComplex;
        }

        /* The nearest of the alarm codes to the first VALARM; all of them
         * are kept as they came. */
        for (icalcomponent *alarm = icalcomponent_get_first_component (comp, ICAL_VALARM_COMPONENT); alarm;
             alarm = icalcomponent_get_next_component (comp, ICAL_VALARM_COMPONENT)) {
            icalproperty *trigger = icalcomponent_get_first_property (alarm, ICAL_TRIGGER_PROPERTY);
            if (!trigger) {
                continue;
            }
            const struct icaltriggertype t = icalproperty_get_trigger (trigger);
            int64_t before;
            if (!icaltime_is_null_time (t.time)) {
                before = rec.start - TimeReader::in_frame (times.read (t.time, nullptr), rec.tzid);
            } else {
                before = -icaldurationtype_as_int (t.duration) / 60;
                icalparameter *rel = icalproperty_get_first_parameter (trigger, ICAL_RELATED_PARAMETER);
                if (rel && icalparameter_get_related (rel) == ICAL_RELATED_END) {
                    before -= rec.end - rec.start;
                }
            }
            rec.alarm_code = alarm_code_for_minutes (before);
            if (rec.alarm_code == TavCalendarAlarmDayBefore) {
                const int64_t local_start = rec.is_instant () ? local_from_utc (rec.start) : rec.start;
                const CivilFields f = civil_fields (local_start - before);
                rec.alarm_time = f.hour * 60 + f.minute;
            }
            break;
        }
    }

    /* Everything the model has no field for is kept verbatim. */
    const std::set<std::string> &handled = handled_properties (kind);
    std::string extra;
    for (const Line *l : item.own_lines) {
        if (!handled.count (l->name) && !(l->name == "STATUS" && rec.cancelled)) {
            extra += l->text + "\n";
        }
        if (l->name == "X-TAV-BIRTHDAY") {
            rec.has_birthday = true;
            const std::string value = line_value (*l);
            rec.birth_year = value.empty () ? -1 : static_cast<int> (g_ascii_strtoll (value.c_str (), nullptr, 10));
        }
    }
    bool in_alarm = false;
    std::string alarms;
    for (const Line *l : item.child_lines) {
        /* VALARMs are kept apart (they give the alarm code); other nested
         * components are kept with the unknown properties. */
        if (l->name == "BEGIN" && upper (line_value (*l)) == "VALARM") {
            in_alarm = true;
        }
        (in_alarm ? alarms : extra) += l->text + "\n";
        if (l->name == "END" && upper (line_value (*l)) == "VALARM") {
            in_alarm = false;
        }
    }
    rec.alarms = rec.kind == EntryKind::Event ? alarms : std::string ();
    rec.extra = extra;
    return true;
}

/* A stable UID for a component that has none, from its own text: the same
 * component imported twice (or twice in one file) is one entry. */
std::string derived_uid (const Item &item, std::map<std::string, int> &)
{
    std::string text;
    for (const Line *l : item.own_lines) {
        text += l->text + "\n";
    }
    char *sum = g_compute_checksum_for_string (G_CHECKSUM_SHA1, text.c_str (), -1);
    std::string uid = std::string (sum) + "@import.tav-calendar";
    g_free (sum);
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

ImportCounts &ImportCounts::operator+= (const ImportCounts &o)
{
    added += o.added;
    updated += o.updated;
    cancelled += o.cancelled;
    unchanged += o.unchanged;
    attendees += o.attendees;
    ignored += o.ignored;
    skipped += o.skipped;
    return *this;
}

std::string ImportResult::report () const
{
    std::string out;
    for (const auto &m : methods) {
        const ImportCounts &c = m.second;
        out += (m.first.empty () ? std::string ("no METHOD") : m.first) + ": " + std::to_string (c.components ()) +
               " components";
        const std::pair<const char *, int> parts[] = {{"added", c.added},         {"updated", c.updated},
                                                      {"cancelled", c.cancelled}, {"unchanged", c.unchanged},
                                                      {"attendee replies", c.attendees},
                                                      {"with nothing to do", c.ignored}, {"skipped", c.skipped}};
        const char *sep = ": ";
        for (const auto &p : parts) {
            if (p.second) {
                out += sep + std::to_string (p.second) + " " + p.first;
                sep = ", ";
            }
        }
        out += "\n";
    }
    for (const SkippedComponent &s : skipped) {
        out += "skipped line " + std::to_string (s.line) + ": " + s.reason + "\n";
    }
    return out;
}

namespace {

/* Everything a user would see or the store would write back. */
bool same_entry (const EntryRecord &a, const EntryRecord &b)
{
    return a.kind == b.kind && a.title == b.title && a.description == b.description && a.location == b.location
           && (a.undated || (a.start == b.start && a.end == b.end)) && a.all_day == b.all_day && a.tzid == b.tzid
           && a.rrule == b.rrule && a.exrule == b.exrule && a.exdates == b.exdates && a.rdates == b.rdates
           && a.rdate_ends == b.rdate_ends
           && a.alarm_code == b.alarm_code && a.alarm_time == b.alarm_time && a.alarms == b.alarms
           && a.extra == b.extra && a.done == b.done && a.cancelled == b.cancelled && a.sequence == b.sequence
           && a.has_birthday == b.has_birthday && a.birth_year == b.birth_year && a.undated == b.undated
           && (a.undated || a.start == b.start);
}

/* Whether the stored @old is newer than the incoming @incoming. */
bool supersedes (const EntryRecord &old, const EntryRecord &incoming)
{
    return old.sequence > incoming.sequence || (old.sequence == incoming.sequence && old.dtstamp > incoming.dtstamp);
}

/* The calendar address an ATTENDEE line names, lower-cased. */
std::string attendee_address (const std::string &line)
{
    const Line l {line, 0, "ATTENDEE"};
    char *low = g_ascii_strdown (line_value (l).c_str (), -1);
    std::string out = low;
    g_free (low);
    return out;
}

/* @extra with the ATTENDEE lines of @reply in place of those for the same
 * address (new attendees appended). */
std::string merge_attendees (const std::string &extra, const Item &reply)
{
    std::vector<std::string> lines;
    size_t pos = 0;
    while (pos < extra.size ()) {
        size_t eol = extra.find ('\n', pos);
        if (eol == std::string::npos) {
            eol = extra.size ();
        }
        lines.push_back (extra.substr (pos, eol - pos));
        pos = eol + 1;
    }
    for (const Line *l : reply.own_lines) {
        if (l->name != "ATTENDEE") {
            continue;
        }
        const std::string address = attendee_address (l->text);
        auto it = std::find_if (lines.begin (), lines.end (), [&] (const std::string &x) {
            return upper (x.substr (0, 8)) == "ATTENDEE" && attendee_address (x) == address;
        });
        if (it != lines.end ()) {
            *it = l->text;
        } else {
            lines.push_back (l->text);
        }
    }
    std::string out;
    for (const std::string &x : lines) {
        out += x + "\n";
    }
    return out;
}

struct Importer {
    Store &store;
    int64_t calendar_id;
    ImportResult &result;

    void count_kind (const EntryRecord &rec)
    {
        switch (rec.kind) {
        case EntryKind::Event: ++result.events; break;
        case EntryKind::Task: ++result.tasks; break;
        case EntryKind::Note: ++result.notes; break;
        }
    }

    /* Stores @rec (a new or a newer version of a stored entry); a refusal
     * the component itself causes is a skip, anything else is returned. */
    Status store_record (EntryRecord &rec, const EntryRecord *existing, ImportCounts &counts, int line,
                         bool cancelling = false)
    {
        Status s;
        if (existing) {
            rec.id = existing->id;
            if (rec.created == 0) {
                rec.created = existing->created;
            }
            s = store.update_entry (rec);
        } else {
            s = store.add_entry (rec);
        }
        if (s.code == CalendarInvalidArg || s.code == CalendarDuplicateError) {
            skip (counts, line, s.message);
            return Status::success ();
        }
        if (s.ok () && cancelling) {
            ++counts.cancelled;
        } else if (s.ok ()) {
            ++(existing ? counts.updated : counts.added);
            count_kind (rec);
        }
        return s;
    }

    void skip (ImportCounts &counts, int line, const std::string &reason)
    {
        ++counts.skipped;
        result.skipped.push_back ({line, reason});
    }

    Status apply (EntryRecord &rec, const std::string &method, const Item &item, ImportCounts &counts)
    {
        EntryRecord existing;
        const bool found = store.find_entry_by_key (calendar_id, rec.uid, rec.recurrence_id, &existing);
        if (method == "REPLY" || method == "REFRESH" || method == "COUNTER" || method == "DECLINECOUNTER") {
            /* Answers to an organiser change attendee status, never the
             * event; a proposal (COUNTER) waits for the organiser. */
            if (method != "REPLY" || !found) {
                ++counts.ignored;
                return Status::success ();
            }
            const std::string merged = merge_attendees (existing.extra, item);
            if (merged == existing.extra) {
                ++counts.unchanged;
                return Status::success ();
            }
            existing.extra = merged;
            Status s = store.update_entry (existing);
            if (s.ok ()) {
                ++counts.attendees;
            }
            return s;
        }
        if (found && supersedes (existing, rec)) {
            ++counts.unchanged;
            return Status::success ();
        }
        if (method == "CANCEL" || rec.cancelled) {
            if (!rec.is_exception ()) {
                int removed = 0;
                Status s = store.delete_series (calendar_id, rec.uid, &removed);
                if (s.ok ()) {
                    ++(removed ? counts.cancelled : counts.ignored);
                }
                return s;
            }
            /* A cancelled instance is kept as such: it hides that instance
             * of the series, whenever the series arrives. */
            rec.cancelled = true;
            if (found && existing.cancelled) {
                ++counts.unchanged;
                return Status::success ();
            }
            return store_record (rec, found ? &existing : nullptr, counts, item.first_line, true);
        }
        if (found) {
            EntryRecord probe = rec;
            probe.cancelled = false;
            if (same_entry (existing, probe)) {
                ++counts.unchanged;
                return Status::success ();
            }
        }
        return store_record (rec, found ? &existing : nullptr, counts, item.first_line);
    }
};

/* Each VTIMEZONE block of @zone_text on its own. */
std::vector<std::string> zone_blocks (const std::string &zone_text)
{
    std::vector<std::string> out;
    size_t pos = 0;
    const std::string end_marker = "END:VTIMEZONE\r\n";
    while (true) {
        const size_t begin = zone_text.find ("BEGIN:VTIMEZONE", pos);
        if (begin == std::string::npos) {
            break;
        }
        const size_t end = zone_text.find (end_marker, begin);
        if (end == std::string::npos) {
            break;
        }
        out.push_back (zone_text.substr (begin, end + end_marker.size () - begin));
        pos = end + end_marker.size ();
    }
    return out;
}

}  // namespace

struct IcsImport::State {
    Store &store;
    int64_t calendar_id;
    ImportProgress progress;
    Stage stage = Stage::Idle;
    enum class Phase { Validate, Split, Collect, Zones, Apply, Commit } phase = Phase::Validate;
    std::string text;
    size_t validated = 0;
    std::vector<Line> lines;
    std::vector<Item> items;
    LineSplitter splitter;
    ItemCollector collector;
    std::string zone_text;
    std::unique_ptr<Store::Transaction> tx;
    ImportResult result;
    std::map<std::string, int> seen;
    size_t next = 0;  /* the next item to apply */
    size_t total = 0;  /* items found */

    State (Store &s, int64_t id, ImportProgress p) : store (s), calendar_id (id), progress (std::move (p)) {}

    void fail (ImportResult failed)
    {
        tx.reset ();  /* rolls back */
        result = std::move (failed);
        stage = Stage::Failed;
        release ();
    }

    void fail (Status status, int line = 0)
    {
        ImportResult failed;
        failed.status = std::move (status);
        failed.line = line;
        fail (std::move (failed));
    }

    /* The parsed text is not needed once the import has ended. */
    void release ()
    {
        std::vector<Item> ().swap (items);
        std::vector<Line> ().swap (lines);
        std::string ().swap (text);
    }

    /* Begins the import's one transaction; false when the store cannot
     * give one: nothing may then be written. */
    bool open_transaction ()
    {
        if (!tx) {
            tx = std::make_unique<Store::Transaction> (store);
        }
        return tx->is_open ();
    }

    void parse_failed (const ParseError &error)
    {
        fail (Status::failure (CalendarInvalidIcsFile, "line " + std::to_string (error.line) + ": " + error.message),
              error.line);
    }

    /* One slice of the current phase; false when the import has ended. */
    bool advance (int64_t deadline);
    bool apply_one ();
};

IcsImport::IcsImport (Store &store, int64_t calendar_id, ImportProgress progress)
    : m (std::make_unique<State> (store, calendar_id, std::move (progress)))
{
}

IcsImport::~IcsImport () = default;

Status IcsImport::create_calendar (CalendarRecord &calendar)
{
    if (m->stage != Stage::Idle) {
        return Status::failure (CalendarInvalidArg, "the import has already started");
    }
    if (!m->open_transaction ()) {
        return Status::failure (CalendarDefaultError, "the calendar store is busy; try again");
    }
    Status s = m->store.add_calendar (calendar);
    if (s.ok ()) {
        m->calendar_id = calendar.id;
    }
    return s;
}

void IcsImport::start_text (std::string text)
{
    if (m->stage != Stage::Idle) {
        return;
    }
    m->stage = Stage::Running;
    CalendarRecord calendar;
    if (!m->store.find_calendar (m->calendar_id, &calendar)) {
        m->fail (Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (m->calendar_id)));
        return;
    }
    if (calendar.read_only) {
        m->fail (Status::failure (CalendarInvalidArg, "the calendar '" + calendar.title + "' is read-only"));
        return;
    }
    m->text = std::move (text);
}

void IcsImport::start_file (const std::string &path)
{
    if (m->stage != Stage::Idle) {
        return;
    }
    GStatBuf st;
    if (g_stat (path.c_str (), &st) != 0) {
        m->stage = Stage::Running;
        m->fail (Status::failure (CalendarInvalidIcsFile, "cannot read '" + path + "': " + g_strerror (errno)));
        return;
    }
    if (!S_ISREG (st.st_mode)) {
        m->stage = Stage::Running;
        m->fail (Status::failure (CalendarInvalidIcsFile,
                                  "'" + path + "' is not a regular file; only iCalendar files are imported"));
        return;
    }
    if (st.st_size > kMaxImportBytes) {
        m->stage = Stage::Running;
        m->fail (Status::failure (CalendarInvalidIcsFile, "'" + path + "' is too large to be a calendar (" +
                                                              std::to_string (st.st_size >> 20) + " MiB; at most " +
                                                              std::to_string (kMaxImportBytes >> 20) + " MiB are read)"));
        return;
    }
    gchar *contents = nullptr;
    gsize length = 0;
    GError *err = nullptr;
    if (!g_file_get_contents (path.c_str (), &contents, &length, &err)) {
        m->stage = Stage::Running;
        m->fail (Status::failure (CalendarInvalidIcsFile, std::string ("cannot read '") + path + "': " + err->message));
        g_error_free (err);
        return;
    }
    std::string text (contents, length);
    g_free (contents);
    start_text (std::move (text));
}

bool IcsImport::run (int64_t deadline)
{
    if (m->stage != Stage::Running) {
        return false;
    }
    bool first = true;
    do {
        /* The time zones and the commit are steps no deadline can cut:
         * each starts a slice of its own. */
        if (!first && (m->phase == State::Phase::Zones || m->phase == State::Phase::Commit)) {
            return true;
        }
        first = false;
        if (!m->advance (deadline)) {
            return false;
        }
    } while (!out_of_time (deadline));
    return true;
}

bool IcsImport::State::advance (int64_t deadline)
{
    switch (phase) {
    case Phase::Validate: {
        /* A slice ends at a line break: no UTF-8 sequence holds one. */
        size_t end = std::min (text.size (), validated + (1 << 20));
        if (end < text.size ()) {
            const size_t nl = text.find ('\n', end);
            end = nl == std::string::npos ? text.size () : nl + 1;
        }
        const char *bad = nullptr;
        if (!g_utf8_validate (text.data () + validated, static_cast<gssize> (end - validated), &bad)) {
            const int line = 1 + static_cast<int> (std::count (static_cast<const char *> (text.data ()), bad, '\n'));
            fail (Status::failure (CalendarInvalidIcsFile, "line " + std::to_string (line) + ": the text is not valid UTF-8"),
                  line);
            return false;
        }
        validated = end;
        if (validated == text.size ()) {
            phase = Phase::Split;
        }
        return true;
    }
    case Phase::Split: {
        ParseError error {0, {}};
        const Step step = splitter.run (text, lines, error, deadline);
        if (step == Step::Failed) {
            parse_failed (error);
            return false;
        }
        if (step == Step::Done) {
            phase = Phase::Collect;
        }
        return true;
    }
    case Phase::Collect: {
        ParseError error {0, {}};
        const Step step = collector.run (lines, items, error, deadline);
        if (step == Step::Failed) {
            parse_failed (error);
            return false;
        }
        if (step == Step::Done) {
            collector.finish (result.warnings, zone_text);
            if (items.empty ()) {
                fail (Status::failure (CalendarInvalidIcsFile, "the file holds no events, tasks or notes"));
                return false;
            }
            std::string ().swap (text);
            total = items.size ();
            phase = Phase::Zones;
        }
        return true;
    }
    case Phase::Zones:
        if (!open_transaction ()) {
            fail (Status::failure (CalendarDefaultError, "the calendar store is busy; nothing was imported"));
            return false;
        }
        for (const std::string &zone : zone_blocks (zone_text)) {
            if (!register_zone (zone)) {
                result.warnings.push_back ("a VTIMEZONE of the file cannot be read; its TZID is looked up by name");
                continue;
            }
            ComponentPtr comp (icalparser_parse_string (zone.c_str ()));
            icalproperty *id = comp ? icalcomponent_get_first_property (comp.get (), ICAL_TZID_PROPERTY) : nullptr;
            Status s = id ? store.save_zone (icalproperty_get_tzid (id), zone) : Status::success ();
            if (!s.ok ()) {
                fail (s);
                return false;
            }
        }
        phase = Phase::Apply;
        return true;
    case Phase::Apply:
        if (next < items.size ()) {
            return apply_one ();
        }
        phase = Phase::Commit;
        return true;
    case Phase::Commit: {
        Status s = tx->commit ();
        if (!s.ok ()) {
            fail (s);
            return false;
        }
        tx.reset ();
        for (const auto &entry : result.methods) {
            result.counts += entry.second;
        }
        if (!result.skipped.empty ()) {
            result.status = Status::failure (CalendarImportIncomplete,
                                             std::to_string (result.skipped.size ()) + " of " + std::to_string (total) +
                                                 " components were skipped; the others were stored");
            result.line = result.skipped.front ().line;
        } else {
            result.status = Status::success ();
        }
        stage = Stage::Finished;
        release ();
        return false;
    }
    }
    return false;
}

bool IcsImport::State::apply_one ()
{
    TimeReader times {&result.warnings};
    Importer importer {store, calendar_id, result};
    const size_t i = next++;
    const Item &item = items[i];
    ImportCounts &counts = result.methods[item.method];
    std::string source = "BEGIN:" + item.kind + "\r\n";
    for (const Line *l : item.own_lines) {
        source += l->text + "\r\n";
    }
    for (const Line *l : item.child_lines) {
        source += l->text + "\r\n";
    }
    source += "END:" + item.kind + "\r\n";
    ComponentPtr comp (parse_component (source));
    EntryRecord rec;
    rec.calendar_id = calendar_id;
    std::string message;
    int line = item.first_line;
    if (!comp) {
        importer.skip (counts, line, item.kind + " cannot be read");
    } else if (!to_record (comp.get (), item, times, rec, message, line, result.warnings)) {
        importer.skip (counts, line, message);
    } else {
        if (rec.uid.empty ()) {
            rec.uid = derived_uid (item, seen);
        }
        Status s = importer.apply (rec, item.method, item, counts);
        if (!s.ok ()) {
            /* the transaction rolls back */
            fail (Status::failure (s.code, "line " + std::to_string (item.first_line) + ": " + s.message), item.first_line);
            return false;
        }
    }
    if (progress && !progress (i + 1, total)) {
        fail (Status::failure (CalendarDefaultError, "the import was stopped; nothing was stored"));
        stage = Stage::Cancelled;
        return false;
    }
    return true;
}

void IcsImport::cancel ()
{
    if (m->stage == Stage::Finished || m->stage == Stage::Failed || m->stage == Stage::Cancelled) {
        return;
    }
    m->fail (Status::failure (CalendarDefaultError, "the import was stopped; nothing was stored"));
    m->stage = Stage::Cancelled;
}

IcsImport::Stage IcsImport::stage () const
{
    return m->stage;
}

size_t IcsImport::done () const
{
    return m->next;
}

size_t IcsImport::total () const
{
    return m->total;
}

const ImportResult &IcsImport::result () const
{
    return m->result;
}

int64_t IcsImport::calendar_id () const
{
    return m->calendar_id;
}

ImportResult import_ics_text (Store &store, int64_t calendar_id, const std::string &text, const ImportProgress &progress)
{
    IcsImport import (store, calendar_id, progress);
    import.start_text (text);
    while (import.run (-1)) {
    }
    return import.result ();
}

ImportResult import_ics_file (Store &store, int64_t calendar_id, const std::string &path, const ImportProgress &progress)
{
    IcsImport import (store, calendar_id, progress);
    import.start_file (path);
    while (import.run (-1)) {
    }
    return import.result ();
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

/* Always four-digit years (the store holds 1 to 9999), for any year:
 * strftime writes "%Y" unpadded and gmtime stops where time_t does. */
std::string format_utc_seconds (int64_t seconds)
{
    const int64_t minutes = floor_div (seconds, 60);
    const CivilFields f = civil_fields (minutes);
    char buf[32];
    snprintf (buf, sizeof buf, "%04d%02d%02dT%02d%02d%02dZ", f.year, f.month, f.day, f.hour, f.minute,
              static_cast<int> (seconds - minutes * 60));
    return buf;
}

/* How the times of one entry are written. */
struct TimeWriter {
    const EntryRecord &rec;
    icaltimezone *zone;

    /* ";VALUE=DATE:..." / ";TZID=...:..." / ":...Z" / ":..." */
    std::string operator() (int64_t t) const
    {
        if (rec.all_day) {
            return ";VALUE=DATE:" + format_date (t);
        }
        if (!rec.is_instant ()) {
            return ":" + format_floating (t);
        }
        if (rec.tzid == "UTC" || !zone) {
            return ":" + format_utc_seconds (t * 60);
        }
        return ";TZID=" + rec.tzid + ":" + format_floating (wall_from_utc (t, zone));
    }
};

void write_record (std::string &out, const EntryRecord &rec)
{
    const char *kind = rec.kind == EntryKind::Event ? "VEVENT" : rec.kind == EntryKind::Task ? "VTODO" : "VJOURNAL";
    TimeWriter when {rec, rec.is_instant () ? zone_for_tzid (rec.tzid) : nullptr};
    append_line (out, std::string ("BEGIN:") + kind);
    append_line (out, "UID:" + rec.uid);
    append_line (out, "DTSTAMP:" + format_utc_seconds (rec.dtstamp ? rec.dtstamp : time (nullptr)));
    if (rec.is_exception ()) {
        append_line (out, "RECURRENCE-ID" + when (rec.recurrence_id));
    }
    if (rec.sequence) {
        append_line (out, "SEQUENCE:" + std::to_string (rec.sequence));
    }
    if (rec.cancelled) {
        append_line (out, "STATUS:CANCELLED");
    }
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
            const int64_t end = civil_day_start (rec.end) + kMinutesPerDay;  /* exclusive */
            if (civil_fields (end).year > 9999) {
                /* 31 December 9999 ends in a year no date can name. */
                append_line (out, "DURATION:P" + std::to_string ((end - rec.start) / kMinutesPerDay) + "D");
            } else {
                append_line (out, "DTEND;VALUE=DATE:" + format_date (end));
            }
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
        for (size_t i = 0; i < rec.rdates.size (); ++i) {
            const bool period = i < rec.rdate_ends.size () && rec.rdate_ends[i] != kNoRecurrenceId && !rec.all_day;
            if (period) {
                const std::string end = when (rec.rdate_ends[i]);
                append_line (out, "RDATE;VALUE=PERIOD" + when (rec.rdates[i]) + "/" + end.substr (end.rfind (':') + 1));
            } else {
                append_line (out, "RDATE" + when (rec.rdates[i]));
            }
        }
        if (rec.has_birthday) {
            append_line (out, "X-TAV-BIRTHDAY:" + std::to_string (rec.birth_year));
        }
        break;
    }
    case EntryKind::Task:
        if (!rec.undated) {
            append_line (out, "DUE;VALUE=DATE:" + format_date (rec.start));
        }
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
    if (!rec.alarms.empty ()) {
        size_t at = 0;
        while (at < rec.alarms.size ()) {
            size_t eol = rec.alarms.find ('\n', at);
            if (eol == std::string::npos) {
                eol = rec.alarms.size ();
            }
            if (eol > at) {
                append_line (out, rec.alarms.substr (at, eol - at));
            }
            at = eol + 1;
        }
    } else if (rec.kind == EntryKind::Event && rec.alarm_code != TavCalendarAlarmNone) {
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
    /* Each series together: its master, then its exceptions. */
    std::map<std::pair<int64_t, std::string>, int64_t> master_id;
    for (const EntryRecord &rec : all) {
        if (!rec.is_exception ()) {
            master_id[{rec.calendar_id, rec.uid}] = rec.id;
        }
    }
    for (const EntryRecord &rec : all) {
        master_id.emplace (std::make_pair (rec.calendar_id, rec.uid), rec.id);  /* exceptions without a master */
    }
    std::stable_sort (all.begin (), all.end (), [&] (const EntryRecord &a, const EntryRecord &b) {
        const int64_t ma = master_id[{a.calendar_id, a.uid}], mb = master_id[{b.calendar_id, b.uid}];
        if (ma != mb) {
            return ma < mb;
        }
        return a.recurrence_id < b.recurrence_id;
    });
    std::set<std::string> zones;
    for (const EntryRecord &rec : all) {
        if (rec.is_instant () && rec.tzid != "UTC" && zones.insert (rec.tzid).second) {
            const std::string text = zone_definition (rec.tzid);
            for (size_t at = 0; at < text.size ();) {
                size_t eol = text.find ('\n', at);
                if (eol == std::string::npos) {
                    eol = text.size ();
                }
                std::string line = text.substr (at, eol - at);
                if (!line.empty () && line.back () == '\r') {
                    line.pop_back ();
                }
                if (!line.empty ()) {
                    append_line (out, line);
                }
                at = eol + 1;
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
    /* A symbolic link stays one: the file it points to is written. */
    std::string target = path;
    for (int depth = 0; g_file_test (target.c_str (), G_FILE_TEST_IS_SYMLINK); ++depth) {
        gchar *dest = depth < 40 ? g_file_read_link (target.c_str (), nullptr) : nullptr;
        if (!dest) {
            return Status::failure (CalendarDefaultError,
                                    "cannot write '" + path + "': its symbolic link cannot be followed");
        }
        if (g_path_is_absolute (dest)) {
            target = dest;
        } else {
            gchar *dir = g_path_get_dirname (target.c_str ());
            target = std::string (dir) + G_DIR_SEPARATOR_S + dest;
            g_free (dir);
        }
        g_free (dest);
    }
    if (g_file_test (target.c_str (), G_FILE_TEST_EXISTS) && !g_file_test (target.c_str (), G_FILE_TEST_IS_REGULAR)) {
        return Status::failure (CalendarDefaultError, "cannot write '" + path + "': it is not a regular file");
    }
    const std::string text = export_ics_text (store, calendar_ids, count);
    GError *err = nullptr;
    if (!g_file_set_contents (target.c_str (), text.data (), static_cast<gssize> (text.size ()), &err)) {
        Status s = Status::failure (err->code == G_FILE_ERROR_NOSPC ? CalendarDiskFullError : CalendarDefaultError,
                                    std::string ("cannot write '") + path + "': " + err->message);
        g_error_free (err);
        return s;
    }
    return Status::success ();
}

}  // namespace tav::host
