/* A host written in C, linked against the shared library only: derives a
 * source (CDerivedSource.c), stores an entry through the public wrappers and
 * iterates its instances twice. Exits non-zero on the first wrong answer;
 * a critical aborts it. */
#include <calendarui.h>
#include <stdio.h>
#include <string.h>

#include "CDerivedSource.h"

#define CHECK(cond) \
    do { if (!(cond)) { fprintf (stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); return 1; } } while (0)

int main (void)
{
    TavCalendarSource *source = c_derived_source_new ("C host");
    TavCalendarEntry *entry = tav_calendar_entry_new ();
    TavCalendarTask *task = g_object_new (TAV_TYPE_CALENDAR_TASK, NULL);
    TavDateInterval interval = { { 2009, 5, 10 }, { 2009, 5, 11 } };
    const TavTimestamp *ts;
    TavCalendarSource *stamped = NULL;
    char *id = NULL;
    int color = -1, pass;

    g_log_set_always_fatal (G_LOG_LEVEL_CRITICAL);
    CHECK (tav_calendar_source_create_entry (source, entry) == CalendarNoError);
    g_object_get (entry, "source", &stamped, "color", &color, "num-id", &id, NULL);
    CHECK (stamped == source);
    CHECK (color == TavCalendarColorViolet);
    CHECK (id && strcmp (id, "c-1") == 0);
    g_object_unref (stamped);
    g_free (id);
    CHECK (tav_calendar_source_get_event_count (source) == 1);
    /* An empty slot answers with the default. */
    CHECK (tav_calendar_source_create_task (source, task) == CalendarDefaultError);

    /* The slot returns its list only through the out argument; the entry
     * keeps it, so the second pass reads the same instances. */
    for (pass = 0; pass < 2; pass++) {
        int count = 0;
        for (ts = tav_calendar_entry_get_first_instance_timestamp (entry, &interval); ts;
             ts = tav_calendar_entry_get_next_instance_timestamp (entry)) {
            CHECK (ts->time.hour == 7 && ts->time.minute == 30);
            CHECK (ts->date.day == 10 + count);
            count++;
        }
        CHECK (count == 2);
    }
    CHECK (strcmp (tav_calendar_source_get_title (source), "C host") == 0);

    g_object_unref (task);
    g_object_unref (entry);
    g_object_unref (source);
    printf ("C host: ok\n");
    return 0;
}
