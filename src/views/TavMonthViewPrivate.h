/* libcalendarui - the month view's cell layout (internal)
 *
 * The month view shows 6 rows of 7 day cells. A cell keeps every entry of its
 * day in a sorted buffer and shows at most MAX_ENTRIES of them as lines: at
 * most three wide ones (all-day or multi-day) on top, then at most ten timed
 * ones. The grid pass lines up multi-day events so that one event keeps its
 * lane in consecutive cells and can be painted as one bar.
 *
 * Nothing here touches a widget: the month view hands in the cells, and the
 * code is tested without a display. Pointer faults are programming errors and
 * abort.
 */
#ifndef TAV_MONTH_VIEW_PRIVATE_H
#define TAV_MONTH_VIEW_PRIVATE_H

#include <glib-object.h>

#include <memory>
#include <string>
#include <vector>

#include "TavCalendarEntry.h"
#include "TavCalendarProcessor.h"
#include "TavDate.h"

#define MAX_ENTRIES 13
/* Wide (all-day or multi-day) lines a cell shows; they use the bar lanes 0-2. */
#define MAX_WIDE_ENTRIES 3
/* Timed lines a cell shows. */
#define MAX_TIMED_ENTRIES 10

/* The grid's dimensions, used by the month view's range checks. */
enum { FirstRow = 0, NRows = 6, FirstColumn = 0, NColumns = 7, NCells = NRows * NColumns };

/* Which month a cell belongs to, relative to the shown one. */
typedef enum {
    MONTH_TYPE_THIS = 0,
    MONTH_TYPE_NEXT = 1,
    MONTH_TYPE_PREV = 2,
} MonthType;

/* What the layout and the painter need to know about an entry, read from
 * its properties once when it enters a cell instead of on every comparison
 * or paint. */
struct CalendarEntryInfo {
    TavDate start_date;
    TavDate end_date;
    int start_hour, start_minute;
    int end_hour, end_minute;
    int n_days; /* days from start to end date, plus one */
    gboolean all_day, has_repeat, multi_days;
    gboolean is_task, has_bday;
    gint64 created_time;
    int color;
    std::string title;      /* "" for an untitled entry */
    std::string title_key;  /* collation key of the case-folded title */
};

/* Shared by every cell an entry's days reach, so buffer moves stay cheap. */
using CalendarEntryInfoPtr = std::shared_ptr<const CalendarEntryInfo>;

/* One visible line of a cell. */
struct CalendarEntry {
    TavCalendarEntry *entry; /* one reference */
    struct {
        int year, month, day;
    } start_date;
    int start_hour, start_minute;
    int end_day;
    int end_hour, end_minute;
    int n_days;
    gboolean all_day, has_repeat, multi_days;

    /* Bar marks, recomputed from scratch on every grid pass. */
    int covered;
    int continues_right;
    int continues_left;
    int span_following;

    CalendarEntryInfoPtr info;
};

struct CalendarBufferItem {
    TavCalendarEntry *entry; /* one reference */
    CalendarEntryInfoPtr info;
};

struct CalendarCell {
    TavDate date;
    char label[4];
    MonthType month_type;
    /* Every entry of the day that is not (yet) shown, sorted. */
    std::vector<CalendarBufferItem> buffer;
    gboolean dirty;
    CalendarEntry *entries[MAX_ENTRIES];
    int n_entries; /* one past the highest slot in use */
    int n_wide;
    gboolean has_tasks;
    gboolean has_birthdays;
};

/* Records */
CalendarEntry *calendar_entry_new (TavCalendarEntry *entry, TavCalendarProcessor *processor);
void calendar_entry_free (CalendarEntry *centry);

/* Cells */
void calendar_cell_init (CalendarCell *cell);
void calendar_cell_set_date (CalendarCell *cell, const TavDate *date, MonthType month_type);
void calendar_cell_free (CalendarCell *cell);
void calendar_cell_remove_all_calendar_entries (CalendarCell *cell);
int calendar_cell_n_entries (const CalendarCell *cell);
CalendarEntry *calendar_cell_get_calendar_entry (const CalendarCell *cell, int index);
gboolean calendar_cell_buffer_empty (const CalendarCell *cell);
void calendar_cell_append_calendar_entry_buffer (CalendarCell *cell, TavCalendarEntry *entry);
void calendar_cell_append_calendar_entry_visible (CalendarCell *cell, CalendarEntry *centry);
gboolean calendar_cell_has_entry (const CalendarCell *cell, TavCalendarEntry *entry, int *index);
gboolean calendar_cell_remove_calendar_entry (CalendarCell *cell, TavCalendarEntry *entry);
GList *calendar_cell_get_all_entries (const CalendarCell *cell, GList *list);
void calendar_cell_drop_back_all_entries (CalendarCell *cell);
void calendar_cell_pre_sort_entries (CalendarCell *cell);
gboolean calendar_cell_flush_buffer (CalendarCell *cell, TavCalendarProcessor *processor);
gboolean calendar_cell_can_tuck_in (const CalendarCell *cell, gboolean wide);
void calendar_cell_reset_optimization_data (CalendarCell *cell);
gboolean calendar_cell_optimize_following (CalendarCell *cell, CalendarCell *next);
void calendar_cell_optimize_row_end (CalendarCell *cell, CalendarCell *next_row_first);
void calendar_cell_set_row_end_or_start (CalendarCell *cell, CalendarCell *other, gboolean row_end);

/* Both sort orders of entries inside a day. */
int calendar_entry_compare_inside_day (const CalendarEntry **a, const CalendarEntry **b);
int day_buffer_entry_compare_inside_day (TavCalendarEntry *a, TavCalendarEntry *b);
/* The same order on prefetched properties. */
CalendarEntryInfo calendar_entry_info_new (TavCalendarEntry *entry, TavCalendarProcessor *processor);
int calendar_entry_info_compare (const CalendarEntryInfo &a, const CalendarEntryInfo &b);
/* calendar_cell_append_calendar_entry_buffer with the properties already read. */
void calendar_cell_append_calendar_entry_buffer_with_info (CalendarCell *cell, TavCalendarEntry *entry,
                                                           const CalendarEntryInfoPtr &info);

/* The grid: 42 cells in row-major order. */
typedef void (*CalendarCellInvalidateFunc) (int row, int col, gpointer data);

/* Finds the cell showing @date, or -1: the plain scan over all cells,
 * columns outer and rows inner, first match. */
int calendar_grid_find_date_linear (const CalendarCell *cells, const TavDate *date);
/* The same answer computed from the day distance to the first cell. */
int calendar_grid_find_date (const CalendarCell *cells, TavCalendarProcessor *processor, const TavDate *date);
/* Puts one instance of @entry (starting at @instance_start) into the buffers
 * of the cells of its days. Notes are refused. */
gboolean calendar_grid_add_entry_instance (CalendarCell *cells, TavCalendarProcessor *processor,
                                           const TavTimestamp *instance_start, TavCalendarEntry *entry);
/* The first date of the grid showing (@year, @month): the last day of the
 * previous month, moved back to @first_day_of_week. The grid therefore always
 * begins in the previous month, by one to seven days. */
void calendar_grid_first_date (TavCalendarProcessor *processor, int year, int month, int first_day_of_week,
                               TavDate *result);
/* Dates the 42 cells from the grid's first date on, with their month types,
 * and computes the week number of each row. */
void calendar_grid_set_month (CalendarCell *cells, TavCalendarProcessor *processor, int year, int month,
                              int first_day_of_week, int week_numbers[NRows]);
/* The whole-grid pass: flush dirty cells, then align bars when @optimization. */
void calendar_grid_recalculate (CalendarCell *cells, TavCalendarProcessor *processor, gboolean optimization,
                                CalendarCellInvalidateFunc invalidate, gpointer data);

#endif /* TAV_MONTH_VIEW_PRIVATE_H */
