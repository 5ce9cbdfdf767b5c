/* iCalendar import and export of the store's calendars (RFC 5545, parsed
 * with libical).
 *
 * VEVENT becomes an event (all-day, multi-day, RRULE, EXDATE, RDATE,
 * EXRULE, every VALARM kept, the first mapped to the nearest alarm code),
 * VTODO a task, VJOURNAL a note. Times keep their zone (see HostZone.h), and
 * the file's VTIMEZONEs are kept with the store. Entries are keyed by UID
 * and RECURRENCE-ID: a component with a RECURRENCE-ID is an exception of its
 * series, and the same key twice keeps the higher SEQUENCE (then the later
 * DTSTAMP). The file's METHOD decides what a component does: CANCEL (or
 * STATUS:CANCELLED) removes the instance or series it names; REPLY updates
 * attendee status only; REFRESH, COUNTER and DECLINECOUNTER change nothing;
 * anything else adds or updates.
 *
 * An import is one transaction. A file that is not iCalendar (bad nesting,
 * bad encoding, unreadable) stores nothing, and the status names the line.
 * A component that is invalid on its own is skipped and named in the
 * report; the rest is stored and the status is CalendarImportIncomplete.
 */
#ifndef TAV_HOST_ICS_H
#define TAV_HOST_ICS_H

#include "HostStore.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tav::host {

/* What an import did with the components of one METHOD. */
struct ImportCounts {
    int added = 0;
    int updated = 0;
    int cancelled = 0;   /* instances or series removed */
    int unchanged = 0;   /* already stored as they are, or older than the stored ones */
    int attendees = 0;   /* replies that updated an attendee's status */
    int ignored = 0;     /* nothing to do (a REFRESH, a reply or cancel for what is not stored) */
    int skipped = 0;     /* invalid on their own */

    int components () const { return added + updated + cancelled + unchanged + attendees + ignored + skipped; }
    ImportCounts &operator+= (const ImportCounts &o);
};

struct SkippedComponent {
    int line;
    std::string reason;
};

struct ImportResult {
    /* Ok; CalendarImportIncomplete when components were skipped (the rest
     * is stored); any other code when nothing was stored. */
    Status status;
    int events = 0;       /* entries added or updated, by kind */
    int tasks = 0;
    int notes = 0;
    ImportCounts counts;  /* all methods together */
    std::map<std::string, ImportCounts> methods;  /* by METHOD ("" when the file names none) */
    std::vector<SkippedComponent> skipped;
    int line = 0;         /* on failure: the line the problem is on */
    std::vector<std::string> warnings;

    int total () const { return events + tasks + notes; }
    bool stored () const { return status.ok () || status.code == CalendarImportIncomplete; }
    /* The report a person reads: one line per method, then each skipped
     * component with its line and reason. */
    std::string report () const;
};

/* Called after each component with the number done and the total; false
 * stops the import and stores nothing. */
using ImportProgress = std::function<bool (size_t done, size_t total)>;

/* Files larger than this are refused before they are read. */
constexpr int64_t kMaxImportBytes = 256 << 20;

/* An import the caller drives a slice at a time, so that a user interface
 * stays responsive: run() works until a deadline and returns, the caller
 * calls it again (from an idle callback) until it returns false. The whole
 * import is one transaction, from the first write (create_calendar(), or
 * the first entry) to the commit in the last slice; cancel() (or
 * destroying the object before the end, or @progress answering false)
 * rolls it all back, the calendar create_calendar() made included. The
 * result, read once run() returned false, is what import_ics_text()
 * gives for the same text: the functions below are this object run
 * without a deadline.
 *
 * Slices: reading the text goes by lines (checked every 256 lines), the
 * entries one component at a time; the only steps that may outlast a
 * deadline are the time zones of the file and the commit. */
class IcsImport {
public:
    enum class Stage { Idle, Running, Finished, Failed, Cancelled };

    IcsImport (Store &store, int64_t calendar_id, ImportProgress progress = {});
    ~IcsImport ();
    IcsImport (const IcsImport &) = delete;
    IcsImport &operator= (const IcsImport &) = delete;

    /* Imports into a new calendar, created now within the import's
     * transaction (before start_*). CalendarAlreadyExists for a title in
     * use; the import must then not be started. */
    Status create_calendar (CalendarRecord &calendar);
    /* Starts on @text, or on the file at @path (checked and read at once;
     * a file that cannot be read ends the import as Failed). */
    void start_text (std::string text);
    void start_file (const std::string &path);
    /* Works until @deadline (g_get_monotonic_time () microseconds; < 0: to
     * the end). Does at least one step. True while work remains. */
    bool run (int64_t deadline);
    void cancel ();

    Stage stage () const;
    /* Components applied so far, and how many the file holds (0 while it
     * is still being read). */
    size_t done () const;
    size_t total () const;
    int64_t calendar_id () const;
    /* Valid once run() returned false. */
    const ImportResult &result () const;

private:
    struct State;
    std::unique_ptr<State> m;
};

ImportResult import_ics_text (Store &store, int64_t calendar_id, const std::string &text,
                              const ImportProgress &progress = {});
ImportResult import_ics_file (Store &store, int64_t calendar_id, const std::string &path,
                              const ImportProgress &progress = {});

/* One VCALENDAR holding every entry of the given calendars, each series
 * as its master followed by its exceptions. Export to a symbolic link
 * writes the file it points to. */
std::string export_ics_text (Store &store, const std::vector<int64_t> &calendar_ids, int *count = nullptr);
Status export_ics_file (Store &store, const std::vector<int64_t> &calendar_ids, const std::string &path,
                        int *count = nullptr);

/* Nearest alarm code for an alarm @minutes_before the start (negative:
 * after the start). */
TavCalendarAlarmCode alarm_code_for_minutes (int64_t minutes_before);
/* Minutes before the start at which an alarm code fires; -1 for none. */
int64_t alarm_code_minutes (int code);

}  // namespace tav::host

#endif
