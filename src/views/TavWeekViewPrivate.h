/* libcalendarui - the week view's entry records and their layout (internal)
 *
 * Each shown day of the week view keeps one WeekEntryList: its timed entries
 * (drawn on the hour grid) and its all-day entries (drawn in the all-day bar)
 * as WeekEntry display records. This file knows nothing of widgets, so the
 * layout is tested and benchmarked without a display.
 */
#ifndef TAV_WEEK_VIEW_PRIVATE_H
#define TAV_WEEK_VIEW_PRIVATE_H

#include "TavDate.h"
#include "TavCalendarProcessor.h"
#include "TavCalendarEntry.h"
#include "TavCalendarTask.h"
#include "TavHelper.h"

G_BEGIN_DECLS

typedef struct _WeekEntry WeekEntry;
struct _WeekEntry {
    TavCalendarEntry *entry;   /* one reference: the record's main entry */
    int color;                 /* TavCalendarColor of the main entry */
    gboolean all_day;
    gboolean has_birthday;
    gboolean is_task;
    int n_tasks;               /* tasks merged into this record (1 for a fresh task record) */
    GList *tasks;              /* further TavCalendarTask *, one reference each, by modification */
    TavDate *start_date;       /* shifted to the shown instance */
    TavDate *end_date;
    TavTime *start_time;
    TavTime *end_time;
    /* Label markup, created on first request. */
    char *title;
    char *summary;
    char *summary_time;
    char *short_summary;
    int n_columns;             /* side-by-side columns of its overlap group, 1 = full width */
    int column;                /* 0 .. n_columns - 1 */
    int index;                 /* all-day: position in the bar; timed: arrival number */
    int group;                 /* overlap group, 0 = unassigned */
    gboolean unplaced;         /* left over in a group of more than four columns */
    gboolean multi_days;
    int n_days;                /* days from start date to end date, plus one */
};

typedef struct _WeekEntryList WeekEntryList;
struct _WeekEntryList {
    GList *hour_entries;       /* timed records, by start */
    GList *allday_entries;     /* all-day records, multi-day first */
    GList *hour_iter;
    GList *allday_iter;
};

WeekEntry     *week_entry_new                       (TavCalendarEntry *entry,
                                                     TavCalendarProcessor *processor,
                                                     const TavDate *instance_date);
void           week_entry_free                      (WeekEntry *wentry);
void           week_entry_append_task_entry_to_wentry (WeekEntry *wentry, TavCalendarTask *task);
gint           week_entry_mod_time_sorter           (gconstpointer task1, gconstpointer task2);

const char    *week_entry_get_detail                (const WeekEntry *wentry);
const char    *week_entry_get_title                 (WeekEntry *wentry);
const char    *week_entry_get_short_summary         (WeekEntry *wentry);
const char    *week_entry_get_summary               (WeekEntry *wentry);
const char    *week_entry_get_summary_time          (WeekEntry *wentry, int flag);

WeekEntryList *week_entry_list_new                  (void);
void           week_entry_list_remove_all_entry     (WeekEntryList *wentry_list);
void           week_entry_list_free                 (WeekEntryList *wentry_list);
void           week_entry_list_append_entry         (WeekEntryList *wentry_list, WeekEntry *wentry);

WeekEntry     *week_entry_list_get_first_hour_entry (WeekEntryList *wentry_list);
WeekEntry     *week_entry_list_get_next_hour_entry  (WeekEntryList *wentry_list);
WeekEntry     *week_entry_list_get_prev_hour_entry  (WeekEntryList *wentry_list);
WeekEntry     *week_entry_list_get_last_hour_entry  (WeekEntryList *wentry_list);
WeekEntry     *week_entry_list_get_first_all_day_entry (WeekEntryList *wentry_list);
WeekEntry     *week_entry_list_get_next_all_day_entry  (WeekEntryList *wentry_list);
int            week_entry_list_n_all_day_entries    (WeekEntryList *wentry_list);

WeekEntry     *week_entry_list_find_hour_wentry_for_entry   (WeekEntryList *wentry_list, TavCalendarEntry *entry);
WeekEntry     *week_entry_list_find_allday_wentry_for_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry);
gboolean       week_entry_list_find_and_remove_hour_entry   (WeekEntryList *wentry_list, TavCalendarEntry *entry);
gboolean       week_entry_list_find_and_remove_allday_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry);
void           week_entry_list_allday_readjust_entry_to_index (WeekEntryList *wentry_list,
                                                               WeekEntry *wentry, int index);

void           week_entry_list_calculate_overlapping (WeekEntryList *wentry_list);

/* The two list orders, exposed for the tests. */
gint           _week_entry_compare_hour_entry_inside_day   (gconstpointer a, gconstpointer b);
gint           _week_entry_compare_allday_entry_inside_day (gconstpointer a, gconstpointer b);

/* Whether a column already holding @column_members (a GList of WeekEntry *)
 * has a record whose times meet @candidate's. A NULL member is reported and
 * skipped. */
gboolean       week_entry_intersect_in_list         (GList *column_members, const WeekEntry *candidate);

G_END_DECLS

#ifdef __cplusplus
#include <vector>

namespace tav::week {

/* A timed record reduced to minutes of the day, for the overlap layout. */
struct Span {
    int start;
    int end;
};

/* The overlap test of two time ranges on plain minutes, with exactly the
 * meaning of tav_time_intersect: ranges that only touch do not meet unless
 * one of them is a single instant. */
inline bool spans_intersect (const Span &a, const Span &b)
{
    const int start = a.start > b.start ? a.start : b.start;
    const int end = a.end > b.end ? b.end : a.end;
    if (start > end)
        return false;
    if (start == end && a.start != a.end && b.start != b.end)
        return false;
    return true;
}

struct Placement {
    int group = 0;
    int column = 0;
    int n_columns = 1;
    bool unplaced = false; /* no room in the group's four columns */
};

/* An hour is 70 pixels high and a record at least a third of that (room for
 * one line): 20 minutes, rounded up, is the shortest extent on screen. */
constexpr int kHourPixels = 70;
constexpr int kMinDrawnPixels = kHourPixels / 3;
constexpr int kMinDrawnMinutes = (kMinDrawnPixels * 60 + kHourPixels - 1) / kHourPixels;

/* The overlap layout of one day's timed records in list order: grouping
 * with the later group overwriting the earlier, then at most four columns
 * per group. */
std::vector<Placement> layout_overlaps (const std::vector<Span> &spans);

} // namespace tav::week
#endif

#endif /* TAV_WEEK_VIEW_PRIVATE_H */
