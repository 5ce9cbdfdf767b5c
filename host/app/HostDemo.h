/* A realistic month of calendar data around a given day, for --demo. */
#ifndef TAV_HOST_DEMO_H
#define TAV_HOST_DEMO_H

#include "HostStore.h"

namespace tav::host {

/* Adds several calendars in different colours with timed, overlapping,
 * all-day, multi-day and repeating events, birthdays, tasks and notes
 * around @today (civil minutes of a day's midnight). */
Status seed_demo (Store &store, int64_t today);

}  // namespace tav::host

#endif
