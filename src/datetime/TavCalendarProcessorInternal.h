/* libcalendarui - calendar processor, internal interface */
#ifndef TAV_CALENDAR_PROCESSOR_INTERNAL_H
#define TAV_CALENDAR_PROCESSOR_INTERNAL_H

#include "TavCalendarProcessor.h"

G_BEGIN_DECLS

/* The calendar system chosen when @processor was created. */
CalendarReform tav_calendar_processor_get_reform (TavCalendarProcessor *processor);
/* Forces a calendar system, including values outside the enumeration, so
 * tests can reach the handling of an unknown system. */
void tav_calendar_processor_set_reform_for_testing (TavCalendarProcessor *processor, int reform);
/* The first and last day of the week now in force. */
int tav_calendar_processor_get_first_day_of_week (TavCalendarProcessor *processor);
int tav_calendar_processor_get_last_day_of_week (TavCalendarProcessor *processor);

G_END_DECLS

#endif /* TAV_CALENDAR_PROCESSOR_INTERNAL_H */
