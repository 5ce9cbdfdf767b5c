/* A realistic month of calendar data for the month view's tests and
 * benchmark, and the host-side reader that feeds a view from a memory source
 * the way the calendar application does. */
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

/* Connects a reader to @view's "database-access-read" that freezes the view,
 * adds the events of @source touching the presented interval and its tasks,
 * and thaws. */
void connect_reader (TavCalendarView *view, TavMemorySource *source);

/* The same read, done directly. */
void read_into (TavCalendarView *view, TavMemorySource *source);

} // namespace tav::test

#endif /* TAV_BUSY_MONTH_H */
