/* libcalendarui - the home applet's choice of rows (internal)
 *
 * The applet keeps every instance it was fed as an AppletInstance: its
 * start and end in local wall-clock seconds, its kind and the few fields
 * the ordering needs. From these and the current time it chooses the rows
 * to show, writes their time texts and finds the next moment at which the
 * choice or a text can change. Nothing here touches a widget; the clock is
 * always an argument, so the code is tested against any moment.
 */
#ifndef TAV_HOME_APPLET_PRIVATE_H
#define TAV_HOME_APPLET_PRIVATE_H

#include <glib.h>

#include <cstdint>
#include <string>
#include <vector>

#include "TavCalendarEntry.h"
#include "TavDate.h"

namespace tav::applet {

/* The most rows the applet shows. */
constexpr size_t kMaxRows = 5;

/* Seconds since 1 January 1970 00:00 of the local wall clock, counting
 * every day as 86400 seconds: what a clock on the wall reads, so that an
 * event at 14:00 starts at 14:00 whatever the time zone's offset. */
using LocalSeconds = int64_t;
constexpr LocalSeconds kDay = 86400;

/* Days since 1 January 1970 (negative before) in the Gregorian calendar,
 * and back. */
int64_t civil_day (const TavDate &date);
TavDate civil_date (int64_t day);
/* 0 = Sunday ... 6 = Saturday. */
int civil_weekday (int64_t day);
LocalSeconds local_seconds (const TavTimestamp &ts, int second = 0);
TavTimestamp local_timestamp (LocalSeconds seconds);
inline int64_t day_of (LocalSeconds seconds)
{
    return seconds >= 0 ? seconds / kDay : -((-seconds + kDay - 1) / kDay);
}

enum class InstanceKind {
    AllDay = 0,   /* an all-day event: shown for each of its days */
    Task = 1,     /* a task on its due day */
    Birthday = 2, /* an all-day birthday, with the age when the year is known */
    Timed = 3,    /* an event with start and end times */
};

struct AppletInstance {
    TavCalendarEntry *entry = nullptr; /* held by the applet, not here */
    LocalSeconds start = 0;
    /* Exclusive: a timed instance is over at its end, an all-day one at
     * the midnight after its last day. Never before start + 60. */
    LocalSeconds end = 0;
    InstanceKind kind = InstanceKind::Timed;
    bool done = false;     /* a completed task */
    int color = 0;         /* TavCalendarColor */
    int age = -1;          /* a birthday's age on this instance, -1 unknown */
    std::string title;      /* orders equal times */
    guint seq = 0;          /* arrival order, the last tie breaker */
};

/* Still to be shown at @now: a timed instance not yet over, an all-day
 * one whose last day is not past, a task not done and not overdue. */
bool is_current (const AppletInstance &instance, LocalSeconds now);
/* A timed instance that has started and is not over. */
bool is_in_progress (const AppletInstance &instance, LocalSeconds now);

/* Up to @max rows in the order shown: timed instances in progress first
 * (the earliest started on top), then by day: all-day events, tasks,
 * birthdays, then the timed ones by start time. Equal places are ordered
 * by title and then by arrival. Linear in the number of instances. */
std::vector<const AppletInstance *> choose_rows (const std::vector<AppletInstance> &instances, LocalSeconds now,
                                                 size_t max = kMaxRows);

/* The first moment after @now at which the choice or a text can change:
 * the start of a timed instance, the end of one in progress, or the next
 * midnight, whichever comes first. */
LocalSeconds next_change (const std::vector<AppletInstance> &instances, LocalSeconds now);

/* The row's time text at @now: "Now" for an instance in progress, else
 * "Today", "Tomorrow", a weekday within the week ahead or a short date
 * further out, followed by the start time for a timed instance. */
std::string when_text (const AppletInstance &instance, LocalSeconds now, bool twelve_hour);

/* The row's title: the entry's, with the age for a birthday of known year. */
std::string row_title (const AppletInstance &instance);

/* Geometry of the applet in pixels: a header line with today's date over
 * the rows. */
struct AppletGeometry {
    int width = 0, height = 0;
    int margin = 8;        /* around the panel */
    int header_height = 36;
    int row_height = 56;
};
/* The rectangle of row @n (0-based) inside the panel. */
void row_rect (const AppletGeometry &geometry, int n, int *x, int *y, int *width, int *height);
/* The row under (x, y) among @n_rows, or -1. */
int row_at (const AppletGeometry &geometry, int n_rows, int x, int y);

} // namespace tav::applet

#endif /* TAV_HOME_APPLET_PRIVATE_H */
