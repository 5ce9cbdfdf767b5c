/* A realistic month of calendar data for the month view's benchmark. */
#ifndef TAV_BUSY_MONTH_H
#define TAV_BUSY_MONTH_H

#include <calendarui.h>

#include "TavMemorySource.h"

namespace tav::test {

/* Adds @count entries to @source, all touching (@year, @month): timed events,
 * all-day events, multi-day events (some crossing week ends), events
 * repeating daily or weekly from an earlier month, tasks and birthdays.
 * The same @seed gives the same month. */
void fill_busy_month (TavMemorySource *source, int year, int month, int count, unsigned seed);

} // namespace tav::test

#endif /* TAV_BUSY_MONTH_H */
