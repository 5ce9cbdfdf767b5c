/* The text agenda: every instance touching a span of days, one per line,
 * for a terminal or a script.
 *
 *   YYYY-MM-DD HH:MM<TAB>YYYY-MM-DD HH:MM<TAB>TITLE   timed, local time
 *   YYYY-MM-DD<TAB>YYYY-MM-DD<TAB>TITLE               all-day, end inclusive
 *
 * sorted by start, then title.
 */
#ifndef TAV_HOST_AGENDA_H
#define TAV_HOST_AGENDA_H

#include "HostStore.h"

#include <string>

namespace tav::host {

/* Reads "YYYY-MM-DD" (years 1 to 9999) into the civil midnight of that day;
 * false and a sentence when it is no such day. */
bool parse_agenda_day (const std::string &text, int64_t *day, std::string *error);

/* The agenda of the events of every calendar from @first_day to @last_day
 * (civil midnights, both days included). */
std::string agenda_text (Store &store, int64_t first_day, int64_t last_day);

}  // namespace tav::host

#endif
