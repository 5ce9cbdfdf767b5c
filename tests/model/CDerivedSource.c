/* A calendar source derived in plain C, the way a host written in C does it:
 * a classic instance and class struct, G_DEFINE_TYPE, and a class_init that
 * fills some of the data slots. Its get_instances returns the list only
 * through its out argument and leaves handing it to the entry to the
 * library. */
#include <calendarui.h>

#include "CDerivedSource.h"

typedef struct {
    TavCalendarSource parent;
    int created;
} CDerivedSource;

typedef struct {
    TavCalendarSourceClass parent_class;
} CDerivedSourceClass;

G_DEFINE_TYPE (CDerivedSource, c_derived_source, TAV_TYPE_CALENDAR_SOURCE)

static int
c_derived_create_entry (TavCalendarSource *source, TavCalendarEntry *entry)
{
    CDerivedSource *self = (CDerivedSource *) source;
    self->created++;
    g_object_set (entry, "num-id", "c-1", NULL);
    return CalendarNoError;
}

static int
c_derived_event_count (TavCalendarSource *source)
{
    return ((CDerivedSource *) source)->created;
}

/* One occurrence on every day of the interval, at 07:30. */
static gboolean
c_derived_get_instances (TavCalendarSource *source, TavCalendarEntry *entry, const TavDateInterval *interval,
                         GList **list)
{
    GList *out = NULL;
    TavDate day = interval->start;
    (void) source;
    (void) entry;
    while (tav_date_compare (&day, &interval->end) <= 0) {
        TavTimestamp ts;
        ts.date = day;
        ts.time.hour = 7;
        ts.time.minute = 30;
        out = g_list_prepend (out, tav_timestamp_copy (&ts));
        /* Day steps within one month are enough for the tests. */
        day.day++;
    }
    *list = g_list_reverse (out);
    return TRUE;
}

/* GObject zero-fills the instance: nothing created yet. */
static void
c_derived_source_init (CDerivedSource *self)
{
    (void) self;
}

static void
c_derived_source_class_init (CDerivedSourceClass *klass)
{
    TavCalendarSourceClass *source_class = TAV_CALENDAR_SOURCE_CLASS (klass);
    source_class->create_entry = c_derived_create_entry;
    source_class->event_count = c_derived_event_count;
    source_class->get_instances = c_derived_get_instances;
}

TavCalendarSource *
c_derived_source_new (const char *title)
{
    return g_object_new (c_derived_source_get_type (), "title", title, "color", TavCalendarColorViolet, NULL);
}
