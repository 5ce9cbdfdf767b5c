/* iCalendar import and export of the store's calendars (RFC 5545, parsed
 * and expanded with libical).
 *
 * VEVENT becomes an event (all-day, multi-day, RRULE, EXDATE, RDATE,
 * EXRULE, VALARM mapped to the nearest alarm code), VTODO a task, VJOURNAL
 * a note; times in a zone or in UTC are converted to local time. An import
 * is one transaction: a file that fails to parse stores nothing, and the
 * status names the line where it failed.
 */
#ifndef TAV_HOST_ICS_H
#define TAV_HOST_ICS_H

#include "HostStore.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tav::host {

struct ImportResult {
    Status status;
    int events = 0;
    int tasks = 0;
    int notes = 0;
    int updated = 0;      /* of the above, entries whose UID was already stored */
    int line = 0;         /* on failure: the line the problem is on */
    std::vector<std::string> warnings;

    int total () const { return events + tasks + notes; }
};

/* Called after each component with the number done and the total. */
using ImportProgress = std::function<void (size_t done, size_t total)>;

ImportResult import_ics_text (Store &store, int64_t calendar_id, const std::string &text,
                              const ImportProgress &progress = {});
ImportResult import_ics_file (Store &store, int64_t calendar_id, const std::string &path,
                              const ImportProgress &progress = {});

/* One VCALENDAR holding every entry of the given calendars. */
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
