/* A calendar source written in C (CDerivedSource.c). */
#ifndef C_DERIVED_SOURCE_H
#define C_DERIVED_SOURCE_H

#include <calendarui.h>

G_BEGIN_DECLS

/* Fills create_entry (gives the ID "c-1"), event_count (entries created so
 * far) and get_instances (07:30 on every day of the interval, returned only
 * through the out list); every other slot is empty. */
TavCalendarSource *c_derived_source_new (const char *title);

G_END_DECLS

#endif
