/* libcalendarui - direct reads of an entry for the library's own views
 * (internal)
 *
 * Views sort and place many entries per repaint; reading boxed properties
 * through GValues allocates a copy per read. These return the same values
 * as the properties, without the round trip. The entry must be valid. */
#ifndef TAV_CALENDAR_ENTRY_INTERNAL_H
#define TAV_CALENDAR_ENTRY_INTERNAL_H

#include "TavCalendarEntry.h"
#include "TavCalendarEnums.h"

typedef struct _TavCalendarSource TavCalendarSource;

namespace tav::model {

/* What "start-timestamp" and "end-date"/"end-time" read. */
struct EntrySpan {
    TavTimestamp start;
    TavTimestamp end;
};
EntrySpan entry_span (TavCalendarEntry *entry);

/* "source" without a new reference (NULL when unset). */
TavCalendarSource *entry_source (TavCalendarEntry *entry);
TavCalendarColor entry_color (TavCalendarEntry *entry);
/* "num-id", owned by the entry. */
const char *entry_num_id (TavCalendarEntry *entry);

} // namespace tav::model

#endif /* TAV_CALENDAR_ENTRY_INTERNAL_H */
