/* The store's plain record types: calendars and their events, tasks and
 * notes, as C++ values with no GObject in sight.
 */
#ifndef TAV_HOST_RECORD_H
#define TAV_HOST_RECORD_H

#include <calendarui/TavHelper.h>
#include <calendarui/TavCalendarEnums.h>

#include <cstdint>
#include <climits>
#include <string>
#include <vector>

namespace tav::host {

/* Result of a store operation: a CalendarUiErrorCode and, on failure, a
 * sentence a person can read. */
struct Status {
    CalendarUiErrorCode code = CalendarNoError;
    std::string message;
    int rc = 0;         /* the SQLite result behind a store failure, when any */

    bool ok () const { return code == CalendarNoError; }
    static Status success () { return {}; }
    static Status failure (CalendarUiErrorCode c, std::string m) { return {c, std::move (m)}; }
};

struct CalendarRecord {
    int64_t id = 0;
    std::string title;
    /* Enumeration values are held as int: a stored or imported value may
     * lie outside the enumeration and is checked, not trusted. */
    int color = TavCalendarColorDarkBlue;          /* TavCalendarColor */
    int type = CalendarSourceTypeLocal;            /* TavCalendarSourceType */
    int sync_type = CalendarSourceSyncNone;        /* TavCalendarSourceSyncType */
    bool visible = true;
    bool read_only = false;
    std::string alarm_tone;
};

enum class EntryKind { Event = 0, Task = 1, Note = 2 };

/* RECURRENCE-ID of an entry that is no exception of a series. */
constexpr int64_t kNoRecurrenceId = INT64_MIN;

/* One event, task or note. All-day entries, notes, tasks and floating
 * times are civil minutes of the viewer's wall clock (see HostCivilTime.h);
 * a timed entry with a @tzid ("UTC" or a zone) is an instant: its times,
 * exception dates, RDATEs and RECURRENCE-ID are minutes since 1970-01-01
 * 00:00 UTC (see HostZone.h). @end is inclusive: an all-day event on one day
 * has start = that day 00:00 and end = that day 23:59. */
struct EntryRecord {
    int64_t id = 0;             /* 0 until stored */
    int64_t calendar_id = 0;
    EntryKind kind = EntryKind::Event;
    std::string uid;            /* iCalendar UID, unique within its calendar */

    std::string title;
    std::string description;
    std::string location;

    int64_t start = 0;
    int64_t end = 0;
    bool all_day = false;

    int alarm_code = TavCalendarAlarmNone;         /* TavCalendarAlarmCode */
    int alarm_time = -1;        /* minute of the day, for the day-before alarm */

    int repeat_code = TavCalendarRepeatsNoRepeat;  /* TavCalendarRepeatCode */
    std::string rrule;          /* RFC 5545 RRULE value, empty when not repeating */
    std::string exrule;         /* RFC 2445 EXRULE value, kept when imported */
    std::vector<int64_t> exdates;
    std::vector<int64_t> rdates;
    /* Ends of RDATE periods, beside rdates (kNoRecurrenceId: a plain
     * date); empty when none is a period. Instances keep the entry's
     * length; the periods are written back as they came. */
    std::vector<int64_t> rdate_ends;
    std::string tzid;           /* zone of the times; empty: floating */

    /* A series is its master (no RECURRENCE-ID) and its exceptions, all
     * under one UID; an exception replaces the instance that starts at its
     * @recurrence_id, a cancelled one removes it. */
    int64_t recurrence_id = kNoRecurrenceId;
    bool cancelled = false;
    int sequence = 0;           /* iCalendar SEQUENCE: the higher is newer */
    int64_t dtstamp = 0;        /* seconds since the epoch, 0 when unknown */
    /* Of a master, as read from the store: the RECURRENCE-IDs of its
     * exceptions (not stored with the master itself). */
    std::vector<int64_t> overridden;

    bool done = false;          /* tasks */
    bool undated = false;       /* a task without a due date (start: the day it was read) */
    bool has_birthday = false;
    int birth_year = -1;

    int64_t created = 0;        /* seconds since the epoch */
    int64_t modified = 0;

    /* iCalendar properties this model has no field for, as folded text,
     * written back on export so that nothing imported is lost. */
    std::string extra;
    /* The VALARM components as imported, written back unchanged while the
     * alarm code stays the one they gave. */
    std::string alarms;

    bool repeats () const { return !rrule.empty () || !rdates.empty (); }
    bool is_instant () const { return !tzid.empty () && !all_day && kind == EntryKind::Event; }
    bool is_exception () const { return recurrence_id != kNoRecurrenceId; }
    int64_t duration () const { return end - start; }
};

}  // namespace tav::host

#endif
