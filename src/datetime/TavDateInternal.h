/* libcalendarui - date and time values, internal interface
 *
 * The clock used by tav_date_init_today(), tav_time_init_now() and the alarm
 * validity test can be replaced, so that code depending on "now" is tested
 * at a fixed instant.
 */
#ifndef TAV_DATE_INTERNAL_H
#define TAV_DATE_INTERNAL_H

#include <time.h>

#include "TavCalendarProcessor.h"

G_BEGIN_DECLS

typedef time_t (*TavClockFunc) (void);

/* Replaces the clock; NULL restores the system clock. */
void tav_date_set_clock (TavClockFunc clock);
/* The current time from the clock in force. */
time_t tav_date_now (void);

/* The process-wide processor behind tav_date_is_valid(), created on first
 * use and kept for the rest of the process. */
TavCalendarProcessor *tav_date_shared_processor (void);

G_END_DECLS

#endif /* TAV_DATE_INTERNAL_H */
