/* The host's calendar source: a TavCalendarSource whose data operations
 * read and write one calendar of the SQLite store.
 */
#ifndef TAV_HOST_CALENDAR_SOURCE_H
#define TAV_HOST_CALENDAR_SOURCE_H

#include <calendarui.h>

#include "HostRecord.h"
#include "HostRef.h"
#include "HostStore.h"

#include <memory>
#include <string>

G_BEGIN_DECLS

#define TAV_TYPE_HOST_CALENDAR_SOURCE    (tav_host_calendar_source_get_type ())
#define TAV_HOST_CALENDAR_SOURCE(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_HOST_CALENDAR_SOURCE, TavHostCalendarSource))
#define TAV_IS_HOST_CALENDAR_SOURCE(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_HOST_CALENDAR_SOURCE))

typedef struct _TavHostCalendarSource        TavHostCalendarSource;
typedef struct _TavHostCalendarSourceClass   TavHostCalendarSourceClass;
typedef struct _TavHostCalendarSourcePrivate TavHostCalendarSourcePrivate;

struct _TavHostCalendarSource {
    TavCalendarSource parent;
    TavHostCalendarSourcePrivate *priv;
};

struct _TavHostCalendarSourceClass {
    TavCalendarSourceClass parent_class;
};

GType tav_host_calendar_source_get_type (void) G_GNUC_CONST;

G_END_DECLS

namespace tav::host {

/* A source for the stored calendar @calendar (its properties copied from
 * the record), or, with calendar.id == 0, a new calendar that
 * tav_calendar_source_create adds to the store. */
Ref<TavHostCalendarSource> make_source (std::shared_ptr<Store> store, const CalendarRecord &calendar);

int64_t source_calendar_id (TavHostCalendarSource *source);
/* The readable reason of the last failed operation, "" after a success. */
const std::string &source_last_error (TavHostCalendarSource *source);

/* A new entry object (event, task or note) for a stored record, with its
 * source and the calendar's colour set. */
TavCalendarEntry *entry_from_record (const EntryRecord &record, TavHostCalendarSource *source);
/* Reads the entry's properties into @record, keeping what the entry
 * cannot express (a complex rule, exception dates, zone, unknown iCalendar
 * properties) from the stored version. */
void record_from_entry (TavCalendarEntry *entry, EntryRecord &record);

/* The stored id behind an entry ("num-id"), 0 when it has none. */
int64_t entry_record_id (TavCalendarEntry *entry);

}  // namespace tav::host

#endif
