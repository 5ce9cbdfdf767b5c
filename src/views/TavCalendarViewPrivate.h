/* libcalendarui - calendar view base internals shared with the tests
 */
#ifndef TAV_CALENDAR_VIEW_PRIVATE_H
#define TAV_CALENDAR_VIEW_PRIVATE_H

#include "TavCalendarProcessor.h"
#include "TavDate.h"

/* The day span of an entry's instance: an entry occupying @span (its own
 * start to end date) has, for an instance starting on @instance_date, the
 * span moved by the days between the two starts. Computed from the span's
 * length, so it costs the length of the span and not the distance between
 * the entry's first occurrence and this one. Returns FALSE when the span
 * is empty (its end precedes its start): such a span intersects nothing. */
gboolean tav_calendar_view_instance_span (TavCalendarProcessor *processor, const TavDateInterval *span,
                                          const TavDate *instance_date, TavDateInterval *result);


/* Whether a timed event over several days shows on its last day: only when
 * it still runs in that day's first hour or later, so an event that ends at
 * hour 0 (at midnight, typically) leaves its end day empty. The month and
 * the week view both place multi-day pieces by this rule. The hour counts
 * from the instance's start hour, as a moved instance keeps its length. */
static inline gboolean
tav_calendar_view_last_day_has_piece (int instance_start_hour, int start_hour, int end_hour)
{
    return instance_start_hour + (end_hour - start_hour) >= 1;
}

#endif /* TAV_CALENDAR_VIEW_PRIVATE_H */
