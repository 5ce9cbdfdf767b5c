/* libcalendarui - the month view's cell layout (internal)
 *
 * A cell receives entries only through its buffer. Flushing the buffer
 * decides which entries become lines; the grid pass then moves the lines of
 * multi-day events into the same lane in consecutive cells and records how
 * each bar continues.
 */
#include "TavMonthViewPrivate.h"
#include "TavCalendarViewPrivate.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "TavCalendarEntryInternal.h"
#include "TavCalendarNote.h"
#include "TavCalendarTask.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavLog.h"

using tav::GCharPtr;

/* Auxiliary functions ------------------------------------------------------- */

namespace {

/* Day counts of the buffer order need a processor; the order does not depend
 * on the first day of the week, so one processor serves the whole process. */
TavCalendarProcessor *
shared_processor ()
{
    static TavCalendarProcessor *processor = tav_calendar_processor_new ();
    return processor;
}

int
sign (int value)
{
    return (value > 0) - (value < 0);
}

/* The fields the order inside a day looks at. */
struct OrderFields {
    gboolean multi_days;
    int n_days;
    gboolean all_day;
    gboolean is_task;
    int start_hour, start_minute;
    gint64 created_time;
};

/* The order inside a day: multi-day entries first (longer spans first), then
 * all-day entries (events before tasks), then timed entries by start time and
 * title. Ties among wide entries go by creation time, then title. */
template <typename TitleCompare>
int
order_compare (const OrderFields &a, const OrderFields &b, TitleCompare compare_titles)
{
    if (a.multi_days != b.multi_days)
        return a.multi_days ? -1 : 1;
    if (a.multi_days) {
        if (a.n_days != b.n_days)
            return a.n_days > b.n_days ? -1 : 1;
    } else {
        if (a.all_day != b.all_day)
            return a.all_day ? -1 : 1;
        if (a.all_day) {
            if (a.is_task != b.is_task)
                return a.is_task ? 1 : -1;
        } else {
            if (a.start_hour != b.start_hour)
                return a.start_hour < b.start_hour ? -1 : 1;
            if (a.start_minute != b.start_minute)
                return a.start_minute < b.start_minute ? -1 : 1;
            return compare_titles ();
        }
    }
    if (a.created_time != b.created_time)
        return a.created_time < b.created_time ? -1 : 1;
    return compare_titles ();
}

OrderFields
order_fields (const CalendarEntryInfo &info)
{
    return { info.multi_days, info.n_days, info.all_day, info.is_task,
             info.start_hour, info.start_minute, info.created_time };
}

gboolean
info_is_wide (const CalendarEntryInfo &info)
{
    return info.all_day || info.multi_days;
}

gboolean
record_is_wide (const CalendarEntry *centry)
{
    return centry->all_day || centry->multi_days;
}

CalendarEntry *
calendar_entry_new_from_info (TavCalendarEntry *entry, const CalendarEntryInfoPtr &shared)
{
    const CalendarEntryInfo &info = *shared;
    CalendarEntry *centry = new CalendarEntry ();
    centry->entry = entry; /* the caller's reference moves into the record */
    centry->start_date.year = info.start_date.year;
    centry->start_date.month = info.start_date.month;
    centry->start_date.day = info.start_date.day;
    centry->start_hour = info.start_hour;
    centry->start_minute = info.start_minute;
    centry->end_day = info.end_date.day;
    centry->end_hour = info.end_hour;
    centry->end_minute = info.end_minute;
    centry->n_days = info.n_days;
    centry->all_day = info.all_day;
    centry->has_repeat = info.has_repeat;
    centry->multi_days = info.multi_days;
    centry->info = shared;
    return centry;
}

/* Inserts before the first entry that does not sort before @info, as a sorted
 * GList insertion does, so equal entries keep the newest first. */
void
buffer_insert_sorted (CalendarCell *cell, TavCalendarEntry *entry, const CalendarEntryInfoPtr &info)
{
    auto position = std::lower_bound (cell->buffer.begin (), cell->buffer.end (), *info,
        [] (const CalendarBufferItem &item, const CalendarEntryInfo &value) {
            return calendar_entry_info_compare (*item.info, value) < 0;
        });
    cell->buffer.insert (position, CalendarBufferItem { entry, info });
}

void
buffer_clear (CalendarCell *cell)
{
    for (auto &item : cell->buffer)
        g_object_unref (item.entry);
    cell->buffer.clear ();
}

int
highest_occupied_slot (const CalendarCell *cell)
{
    for (int i = MAX_ENTRIES - 1; i >= 0; i--)
        if (cell->entries[i])
            return i;
    return -1;
}

void
swap_slots (CalendarCell *cell, int a, int b)
{
    std::swap (cell->entries[a], cell->entries[b]);
}

void
move_slot (CalendarCell *cell, int from, int to)
{
    cell->entries[to] = cell->entries[from];
    cell->entries[from] = NULL;
}

} // namespace

/* Records ------------------------------------------------------------------- */

CalendarEntryInfo
calendar_entry_info_new (TavCalendarEntry *entry, TavCalendarProcessor *processor)
{
    g_assert (TAV_IS_CALENDAR_ENTRY (entry));

    CalendarEntryInfo info {};
    /* The span and colour straight from the entry: the same values as the
     * properties without a boxed copy per read. */
    const tav::model::EntrySpan span = tav::model::entry_span (entry);
    info.start_date = span.start.date;
    info.end_date = span.end.date;
    info.start_hour = span.start.time.hour;
    info.start_minute = span.start.time.minute;
    info.end_hour = span.end.time.hour;
    info.end_minute = span.end.time.minute;
    info.all_day = tav_calendar_entry_is_all_day (entry);
    g_object_get (entry, "has-repeat", &info.has_repeat, NULL);
    info.is_task = TAV_IS_CALENDAR_TASK (entry);
    /* "multi-days" is never set for a task. */
    info.multi_days = !info.is_task && tav_calendar_entry_is_multi_days (entry);
    info.n_days = tav_calendar_processor_get_date_interval_in_days (processor ? processor : shared_processor (),
                                                                     info.start_date, info.end_date) + 1;
    info.color = tav::model::entry_color (entry);
    info.has_bday = tav_calendar_entry_has_bday (entry);
    info.created_time = tav_calendar_entry_get_created_time (entry);
    const char *title = tav_calendar_entry_get_title (entry);
    info.title = title ? title : "";
    GCharPtr folded (g_utf8_casefold (info.title.c_str (), -1));
    GCharPtr key (g_utf8_collate_key (folded.get (), -1));
    info.title_key = key.get ();
    return info;
}

int
calendar_entry_info_compare (const CalendarEntryInfo &a, const CalendarEntryInfo &b)
{
    return order_compare (order_fields (a), order_fields (b),
                          [&] { return sign (std::strcmp (a.title_key.c_str (), b.title_key.c_str ())); });
}

CalendarEntry *
calendar_entry_new (TavCalendarEntry *entry, TavCalendarProcessor *processor)
{
    g_assert (TAV_IS_CALENDAR_ENTRY (entry));
    auto info = std::make_shared<const CalendarEntryInfo> (calendar_entry_info_new (entry, processor));
    return calendar_entry_new_from_info (TAV_CALENDAR_ENTRY (g_object_ref (entry)), info);
}

void
calendar_entry_free (CalendarEntry *centry)
{
    g_assert (centry != NULL);
    if (centry->entry)
        g_object_unref (centry->entry);
    delete centry;
}

int
calendar_entry_compare_inside_day (const CalendarEntry **a, const CalendarEntry **b)
{
    const CalendarEntry *ea = *a, *eb = *b;
    if (!ea || !eb)
        return (ea == NULL) - (eb == NULL);
    return calendar_entry_info_compare (*ea->info, *eb->info);
}

int
day_buffer_entry_compare_inside_day (TavCalendarEntry *a, TavCalendarEntry *b)
{
    /* The reference form of the order: every property is read from the
     * objects on each call. Cells sort on prefetched CalendarEntryInfo. */
    struct Read {
        OrderFields fields;
        GCharPtr title;
    };
    auto read = [] (TavCalendarEntry *entry) {
        Read r {};
        TavDate *start_date = NULL, *end_date = NULL;
        int created = 0, end_hour = 0, end_minute = 0;
        char *title = NULL;
        g_object_get (entry,
                      "created-time", &created,
                      "multi-days", &r.fields.multi_days,
                      "start-date", &start_date,
                      "end-date", &end_date,
                      "all-day", &r.fields.all_day,
                      "start-hour", &r.fields.start_hour,
                      "end-hour", &end_hour,
                      "start-minute", &r.fields.start_minute,
                      "end-minute", &end_minute,
                      "title", &title,
                      NULL);
        r.fields.created_time = created;
        r.fields.is_task = TAV_IS_CALENDAR_TASK (entry);
        r.fields.n_days = tav_calendar_processor_get_date_interval_in_days (shared_processor (), *start_date, *end_date) + 1;
        r.title.reset (title ? title : g_strdup (""));
        tav_date_free (start_date);
        tav_date_free (end_date);
        return r;
    };
    Read ra = read (a), rb = read (b);
    return order_compare (ra.fields, rb.fields,
                          [&] { return sign (tav_compare_utf8_strings (ra.title.get (), rb.title.get ())); });
}

/* Cells --------------------------------------------------------------------- */

void
calendar_cell_init (CalendarCell *cell)
{
    g_assert (cell != NULL);
    cell->date = TavDate {};
    std::memset (cell->label, 0, sizeof cell->label);
    cell->month_type = MONTH_TYPE_THIS;
    cell->buffer.clear ();
    cell->dirty = FALSE;
    std::fill (std::begin (cell->entries), std::end (cell->entries), nullptr);
    cell->n_entries = 0;
    cell->n_wide = 0;
    cell->has_tasks = FALSE;
    cell->has_birthdays = FALSE;
}

void
calendar_cell_set_date (CalendarCell *cell, const TavDate *date, MonthType month_type)
{
    g_assert (cell != NULL);
    g_assert (date != NULL);
    std::snprintf (cell->label, sizeof cell->label, "%d", date->day);
    cell->date = *date;
    cell->month_type = month_type;
}

void
calendar_cell_remove_all_calendar_entries (CalendarCell *cell)
{
    g_assert (cell != NULL);
    cell->n_entries = 0;
    cell->n_wide = 0;
    cell->has_tasks = FALSE;
    cell->has_birthdays = FALSE;
    buffer_clear (cell);
    for (auto &slot : cell->entries) {
        if (slot)
            calendar_entry_free (slot);
        slot = NULL;
    }
}

void
calendar_cell_free (CalendarCell *cell)
{
    g_assert (cell != NULL);
    calendar_cell_remove_all_calendar_entries (cell);
    cell->dirty = FALSE;
}

int
calendar_cell_n_entries (const CalendarCell *cell)
{
    g_assert (cell != NULL);
    return cell->n_entries;
}

CalendarEntry *
calendar_cell_get_calendar_entry (const CalendarCell *cell, int index)
{
    g_assert (cell != NULL);
    g_assert (index >= 0);
    g_assert (index < MAX_ENTRIES);
    return cell->entries[index];
}

gboolean
calendar_cell_buffer_empty (const CalendarCell *cell)
{
    g_assert (cell != NULL);
    return cell->buffer.empty ();
}

void
calendar_cell_append_calendar_entry_buffer_with_info (CalendarCell *cell, TavCalendarEntry *entry,
                                                      const CalendarEntryInfoPtr &info)
{
    g_assert (cell != NULL && entry != NULL);
    g_assert (TAV_IS_CALENDAR_ENTRY (entry));
    buffer_insert_sorted (cell, TAV_CALENDAR_ENTRY (g_object_ref_sink (entry)), info);
    cell->dirty = TRUE;
}

void
calendar_cell_append_calendar_entry_buffer (CalendarCell *cell, TavCalendarEntry *entry)
{
    g_assert (cell != NULL && entry != NULL);
    g_assert (TAV_IS_CALENDAR_ENTRY (entry));
    calendar_cell_append_calendar_entry_buffer_with_info (
        cell, entry, std::make_shared<const CalendarEntryInfo> (calendar_entry_info_new (entry, NULL)));
}

void
calendar_cell_append_calendar_entry_visible (CalendarCell *cell, CalendarEntry *centry)
{
    g_assert (cell != NULL);
    g_assert (centry != NULL);
    if (cell->n_entries >= MAX_ENTRIES) {
        TAV_WARNING ("Can not add more events to the cell!");
        TAV_WARNING ("*** day      = %d", cell->date.day);
        TAV_WARNING ("*** n_events = %d", cell->n_entries);
        return;
    }
    cell->entries[cell->n_entries++] = centry;
    if (record_is_wide (centry))
        cell->n_wide++;
}

gboolean
calendar_cell_has_entry (const CalendarCell *cell, TavCalendarEntry *entry, int *index)
{
    g_assert (cell != NULL && entry != NULL && index != NULL);
    for (int i = 0; i < cell->n_entries; i++) {
        const CalendarEntry *centry = cell->entries[i];
        if (centry && tav_calendar_entry_is_equal (centry->entry, entry)) {
            *index = i;
            return TRUE;
        }
    }
    for (const auto &item : cell->buffer) {
        if (item.entry == entry) {
            *index = -1;
            return TRUE;
        }
    }
    return FALSE;
}

gboolean
calendar_cell_remove_calendar_entry (CalendarCell *cell, TavCalendarEntry *entry)
{
    g_assert (cell != NULL && entry != NULL);
    gboolean removed = FALSE;
    for (int i = 0; i < cell->n_entries; i++) {
        CalendarEntry *centry = cell->entries[i];
        if (!centry || !tav_calendar_entry_is_equal (centry->entry, entry))
            continue;
        if (record_is_wide (centry))
            cell->n_wide--;
        calendar_entry_free (centry);
        cell->entries[i] = NULL;
        if (i == cell->n_entries - 1)
            cell->n_entries = i;
        removed = TRUE;
    }
    auto found = std::find_if (cell->buffer.begin (), cell->buffer.end (),
                               [entry] (const CalendarBufferItem &item) { return item.entry == entry; });
    if (found != cell->buffer.end ()) {
        g_object_unref (found->entry);
        cell->buffer.erase (found);
    }
    /* Only a visible line counts: the buffer is flushed again anyway. */
    if (removed)
        cell->dirty = TRUE;
    return removed;
}

GList *
calendar_cell_get_all_entries (const CalendarCell *cell, GList *list)
{
    g_assert (cell != NULL);
    auto append = [&list] (TavCalendarEntry *entry) {
        if (!g_list_find (list, entry))
            list = g_list_append (list, g_object_ref (entry));
    };
    for (const auto &item : cell->buffer)
        append (item.entry);
    for (int i = 0; i < cell->n_entries; i++)
        if (cell->entries[i])
            append (cell->entries[i]->entry);
    return list;
}

void
calendar_cell_drop_back_all_entries (CalendarCell *cell)
{
    g_assert (cell != NULL);
    for (auto &slot : cell->entries) {
        if (!slot)
            continue;
        CalendarEntry *centry = slot;
        slot = NULL;
        const bool in_buffer = std::any_of (cell->buffer.begin (), cell->buffer.end (),
            [centry] (const CalendarBufferItem &item) { return tav_calendar_entry_is_equal (item.entry, centry->entry); });
        if (!in_buffer) {
            buffer_insert_sorted (cell, TAV_CALENDAR_ENTRY (g_object_ref_sink (centry->entry)), centry->info);
            cell->dirty = TRUE;
        }
        calendar_entry_free (centry);
    }
    cell->n_entries = 0;
    cell->n_wide = 0;
}

void
calendar_cell_pre_sort_entries (CalendarCell *cell)
{
    g_assert (cell != NULL);
    if (cell->n_entries == 0)
        return;
    /* A stable sort, as GLib's qsort is: equal lines keep their order. */
    std::stable_sort (cell->entries, cell->entries + cell->n_entries,
                      [] (const CalendarEntry *a, const CalendarEntry *b) {
                          return calendar_entry_compare_inside_day (&a, &b) < 0;
                      });
    cell->n_entries = highest_occupied_slot (cell) + 1;
}

gboolean
calendar_cell_can_tuck_in (const CalendarCell *cell, gboolean wide)
{
    g_assert (cell != NULL);
    if (wide)
        return cell->n_wide < MAX_WIDE_ENTRIES;
    if (cell->n_entries - cell->n_wide > MAX_TIMED_ENTRIES - 1)
        return FALSE;
    /* A timed line goes below the wide ones: refuse when the occupied run at
     * the bottom of the cell reaches up into a wide line. */
    for (int i = MAX_ENTRIES - 1; i >= 0; i--) {
        const CalendarEntry *centry = cell->entries[i];
        if (!centry)
            return TRUE;
        if (record_is_wide (centry))
            return FALSE;
    }
    return FALSE;
}

/* Makes a buffer entry a visible line. A full cell refuses the line (with
 * its warnings); the entry then stays in the buffer. */
static bool
show_buffer_item (CalendarCell *cell, CalendarBufferItem &item)
{
    CalendarEntry *centry = calendar_entry_new_from_info (TAV_CALENDAR_ENTRY (g_object_ref (item.entry)), item.info);
    const int before = cell->n_entries;
    calendar_cell_append_calendar_entry_visible (cell, centry);
    if (cell->n_entries == before) {
        calendar_entry_free (centry);
        return false;
    }
    g_object_unref (item.entry);
    return true;
}

gboolean
calendar_cell_flush_buffer (CalendarCell *cell, TavCalendarProcessor *processor)
{
    g_assert (cell != NULL);
    if (cell->buffer.empty () || !cell->dirty)
        return FALSE;

    gboolean wide_full = FALSE, timed_full = FALSE;
    std::vector<bool> dropped (cell->buffer.size (), false);
    for (size_t i = 0; i < cell->buffer.size (); i++) {
        CalendarBufferItem &item = cell->buffer[i];
        gboolean shown_wide = FALSE;
        if (item.info->is_task) {
            cell->has_tasks = TRUE;
            g_object_unref (item.entry);
            dropped[i] = true;
        } else if (item.info->has_bday) {
            cell->has_birthdays = TRUE;
            g_object_unref (item.entry);
            dropped[i] = true;
        } else if (wide_full && timed_full) {
            /* stays in the buffer */
        } else if (info_is_wide (*item.info)) {
            if (!wide_full) {
                if (calendar_cell_can_tuck_in (cell, TRUE)) {
                    dropped[i] = show_buffer_item (cell, item);
                    shown_wide = TRUE;
                } else {
                    wide_full = TRUE;
                }
            }
        } else if (!timed_full) {
            if (calendar_cell_can_tuck_in (cell, FALSE)) {
                dropped[i] = show_buffer_item (cell, item);
            } else {
                timed_full = TRUE;
            }
        }
        if (!shown_wide && wide_full && timed_full && cell->has_tasks && cell->has_birthdays)
            break;
    }
    size_t kept = 0;
    for (size_t i = 0; i < cell->buffer.size (); i++)
        if (!dropped[i])
            cell->buffer[kept++] = std::move (cell->buffer[i]);
    cell->buffer.erase (cell->buffer.begin () + kept, cell->buffer.end ());

    if (cell->buffer.empty ()) {
        cell->dirty = FALSE;
        return TRUE;
    }

    /* Late order check: entries may arrive in several batches, so a hidden
     * timed entry can start before the last timed line shown. */
    auto hidden = std::find_if (cell->buffer.begin (), cell->buffer.end (),
                                [] (const CalendarBufferItem &item) { return !info_is_wide (*item.info); });
    int last = -1;
    for (int i = MAX_ENTRIES - 1; i >= 1; i--) {
        if (cell->entries[i]) {
            last = i;
            break;
        }
    }
    if (hidden == cell->buffer.end () || last < 0 || record_is_wide (cell->entries[last]) ||
        tav_calendar_entry_compare_start_time (hidden->entry, cell->entries[last]->entry) >= 0) {
        cell->dirty = FALSE;
        return TRUE;
    }

    TAV_WARNING ("cell failed calendar_cell_late_check_order() at day %d", cell->date.day);
    TAV_WARNING ("Dropping back...");
    for (auto &slot : cell->entries) {
        if (!slot || record_is_wide (slot))
            continue;
        CalendarEntry *centry = slot;
        slot = NULL;
        buffer_insert_sorted (cell, TAV_CALENDAR_ENTRY (g_object_ref_sink (centry->entry)), centry->info);
        cell->dirty = TRUE;
        calendar_entry_free (centry);
    }
    cell->n_entries = highest_occupied_slot (cell) + 1;
    calendar_cell_flush_buffer (cell, processor);
    cell->dirty = FALSE;
    return TRUE;
}

void
calendar_cell_reset_optimization_data (CalendarCell *cell)
{
    g_assert (cell != NULL);
    for (CalendarEntry *centry : cell->entries) {
        if (!centry)
            continue;
        centry->covered = 0;
        centry->continues_right = 0;
        centry->continues_left = 0;
        centry->span_following = 0;
    }
}

gboolean
calendar_cell_optimize_following (CalendarCell *cell, CalendarCell *next)
{
    g_assert (cell != NULL);
    g_assert (next != NULL);
    gboolean moved = FALSE;
    for (int i = 0; i < MAX_WIDE_ENTRIES; i++) {
        CalendarEntry *centry = cell->entries[i];
        if (!centry || !centry->multi_days)
            continue;
        int j = 0;
        if (!calendar_cell_has_entry (next, centry->entry, &j) || j < 0 || j == i)
            continue;
        if (j < i) {
            CalendarEntry *other = next->entries[i];
            if (!other) {
                move_slot (next, j, i);
                next->n_entries = std::max (next->n_entries, i + 1);
                moved = TRUE;
            } else if (record_is_wide (other)) {
                swap_slots (next, i, j);
                moved = TRUE;
            } else if (!next->entries[MAX_ENTRIES - 1]) {
                /* Push the timed lines down one slot to free lane i. */
                for (int k = MAX_ENTRIES - 2; k >= i; k--)
                    next->entries[k + 1] = next->entries[k];
                next->n_entries = std::max (next->n_entries, highest_occupied_slot (next)) + 1;
                move_slot (next, j, i);
                moved = TRUE;
            }
        } else {
            if (next->entries[i]) {
                swap_slots (next, i, j);
                moved = TRUE;
            } else {
                TAV_MESSAGE ("There is an empty slot, unhandled.");
            }
        }
    }
    return moved;
}

/* Calls @pair with each bar in the wide lanes of @cell and its line in
 * @other, where @other shows it too. */
template <typename Pair>
static void
for_each_shared_bar (CalendarCell *cell, CalendarCell *other, Pair pair)
{
    for (int i = 0; i < MAX_WIDE_ENTRIES; i++) {
        CalendarEntry *centry = cell->entries[i];
        if (!centry || !centry->multi_days)
            continue;
        int j = 0;
        if (calendar_cell_has_entry (other, centry->entry, &j) && j >= 0)
            pair (centry, other->entries[j]);
    }
}

void
calendar_cell_optimize_row_end (CalendarCell *cell, CalendarCell *next_row_first)
{
    g_assert (cell != NULL);
    g_assert (next_row_first != NULL);
    for_each_shared_bar (cell, next_row_first, [] (CalendarEntry *centry, CalendarEntry *next) {
        centry->continues_right = TRUE;
        next->continues_left = TRUE;
    });
}

void
calendar_cell_set_row_end_or_start (CalendarCell *cell, CalendarCell *other, gboolean row_end)
{
    g_assert (cell != NULL);
    g_assert (other != NULL);
    for_each_shared_bar (cell, other, [row_end] (CalendarEntry *centry, CalendarEntry *theirs) {
        if (row_end)
            centry->continues_right = theirs->continues_right;
        else
            centry->continues_left = theirs->continues_left;
    });
}

/* The grid ------------------------------------------------------------------ */

int
calendar_grid_find_date_linear (const CalendarCell *cells, const TavDate *date)
{
    g_assert (cells != NULL);
    g_assert (date != NULL);
    for (int col = FirstColumn; col < NColumns; col++)
        for (int row = FirstRow; row < NRows; row++) {
            const TavDate &d = cells[row * NColumns + col].date;
            if (d.year == date->year && d.month == date->month && d.day == date->day)
                return row * NColumns + col;
        }
    return -1;
}

int
calendar_grid_find_date (const CalendarCell *cells, TavCalendarProcessor *processor, const TavDate *date)
{
    g_assert (cells != NULL);
    g_assert (date != NULL);
    /* The grid holds consecutive days, so the day distance from the first
     * cell is the index; anything unexpected falls back to the scan. */
    const auto first = (gint64) tav_calendar_processor_date_to_julian_day_number (processor, &cells[0].date);
    const auto last = (gint64) tav_calendar_processor_date_to_julian_day_number (processor, &cells[NCells - 1].date);
    const auto wanted = (gint64) tav_calendar_processor_date_to_julian_day_number (processor, date);
    if (first > 0 && last - first == NCells - 1) {
        const gint64 index = wanted - first;
        if (index >= 0 && index < NCells) {
            const TavDate &d = cells[index].date;
            if (d.year == date->year && d.month == date->month && d.day == date->day)
                return (int) index;
        } else if (tav_date_compare (date, &cells[0].date) < 0 || tav_date_compare (date, &cells[NCells - 1].date) > 0) {
            return -1;
        }
    }
    return calendar_grid_find_date_linear (cells, date);
}

void
calendar_grid_first_date (TavCalendarProcessor *processor, int year, int month, int first_day_of_week,
                          TavDate *result)
{
    g_assert (result != NULL);
    g_assert (month >= 0 && month <= 11);
    TavDate date { month == 0 ? year - 1 : year, month == 0 ? 11 : month - 1, 1 };
    date.day = tav_calendar_processor_month_length (processor, date.year, (guint) date.month);
    /* One weekday computation instead of stepping back day by day; a week
     * holds no reform gap within the years the grid can show. */
    const int weekday = tav_calendar_processor_date_to_day_of_week (processor, &date);
    const int back = (weekday - first_day_of_week + 7) % 7;
    if (back > 0)
        tav_calendar_processor_dec_date_by_days (processor, &date, back);
    *result = date;
}

void
calendar_grid_set_month (CalendarCell *cells, TavCalendarProcessor *processor, int year, int month,
                         int first_day_of_week, int week_numbers[NRows])
{
    g_assert (cells != NULL);
    g_assert (week_numbers != NULL);
    TavDate date;
    calendar_grid_first_date (processor, year, month, first_day_of_week, &date);
    for (int k = 0; k < NCells; k++) {
        MonthType type = MONTH_TYPE_THIS;
        if (date.year < year || (date.year == year && date.month < month))
            type = MONTH_TYPE_PREV;
        else if (date.year > year || (date.year == year && date.month > month))
            type = MONTH_TYPE_NEXT;
        calendar_cell_set_date (&cells[k], &date, type);
        tav_calendar_processor_inc_date (processor, &date);
    }
    for (int row = 0; row < NRows; row++)
        week_numbers[row] = tav_calendar_processor_date_to_week_number (processor, &cells[row * NColumns].date);
}

static gboolean
grid_add_to_day (CalendarCell *cells, TavCalendarProcessor *processor, const TavDate *date,
                 TavCalendarEntry *entry, const CalendarEntryInfoPtr &info)
{
    const int index = calendar_grid_find_date (cells, processor, date);
    if (index < 0) {
        TAV_WARNING_AS ("_add_single_day_entry_for_timestamp", "Day cell not found for %d-%d-%d.",
                        date->year, date->month + 1, date->day);
        return FALSE;
    }
    calendar_cell_append_calendar_entry_buffer_with_info (&cells[index], entry, info);
    return TRUE;
}

gboolean
calendar_grid_add_entry_instance (CalendarCell *cells, TavCalendarProcessor *processor,
                                  const TavTimestamp *instance_start, TavCalendarEntry *entry)
{
    static const char *const func = "tav_calendar_add_entry_for_timestamp_cb";
    g_assert (cells != NULL);
    g_assert (instance_start != NULL);
    g_assert (TAV_IS_CALENDAR_ENTRY (entry));

    if (TAV_IS_CALENDAR_NOTE (entry)) {
        TAV_WARNING_AS (func, "No notes in the month view.");
        return FALSE;
    }
    const auto shared = std::make_shared<const CalendarEntryInfo> (calendar_entry_info_new (entry, processor));
    const CalendarEntryInfo &info = *shared;
    if (info.is_task || !info.multi_days)
        return grid_add_to_day (cells, processor, &instance_start->date, entry, shared);

    if (tav_date_compare (&info.start_date, &info.end_date) >= 0) {
        TAV_WARNING_AS (func, "The start_date >= end_date, giving up.");
        return FALSE;
    }
    /* One piece per day of the instance; the last day gets one only when the
     * event still runs after midnight of that day. */
    TavDate day = instance_start->date;
    TavDate running = info.start_date;
    const gboolean last_day = tav_calendar_view_last_day_has_piece (instance_start->time.hour, info.start_hour,
                                                                    info.end_hour);
    while (tav_date_compare (&running, &info.end_date) <= 0) {
        if (tav_date_compare (&running, &info.end_date) == 0 && !last_day)
            break;
        grid_add_to_day (cells, processor, &day, entry, shared);
        tav_calendar_processor_inc_date (processor, &day);
        tav_calendar_processor_inc_date (processor, &running);
    }
    return TRUE;
}

void
calendar_grid_recalculate (CalendarCell *cells, TavCalendarProcessor *processor, gboolean optimization,
                           CalendarCellInvalidateFunc invalidate, gpointer data)
{
    g_assert (cells != NULL);
    auto cell = [cells] (int row, int col) { return &cells[row * NColumns + col]; };

    for (int k = 0; k < NCells; k++) {
        CalendarCell *c = &cells[k];
        if (c->buffer.empty () || !c->dirty)
            continue;
        calendar_cell_drop_back_all_entries (c);
        calendar_cell_flush_buffer (c, processor);
        calendar_cell_pre_sort_entries (c);
        if (invalidate)
            invalidate (k / NColumns, k % NColumns, data);
    }

    for (int k = 0; k < NCells; k++)
        calendar_cell_reset_optimization_data (&cells[k]);

    if (optimization) {
        for (int row = 0; row < NRows; row++)
            for (int col = 0; col < NColumns - 1; col++)
                if (calendar_cell_optimize_following (cell (row, col), cell (row, col + 1)) && invalidate)
                    invalidate (row, col + 1, data);
        for (int row = 0; row < NRows - 1; row++)
            for (int col = 0; col < NColumns; col++)
                calendar_cell_optimize_row_end (cell (row, col), cell (row + 1, 0));
        /* Nothing follows the last row: it borrows its row-end marks from
         * the row above. */
        for (int col = 0; col < NColumns; col++)
            calendar_cell_set_row_end_or_start (cell (5, col), cell (4, col), TRUE);
        calendar_cell_set_row_end_or_start (cell (0, 0), cell (1, 0), FALSE);
    }

    /* Bars: a multi-day line that the following cells show in the same slot
     * becomes the head of one bar covering them. */
    for (int row = 0; row < NRows; row++)
        for (int col = 0; col < NColumns - 1; col++) {
            CalendarCell *c = cell (row, col);
            for (int i = 0; i < c->n_entries; i++) {
                CalendarEntry *head = c->entries[i];
                if (!head || !head->multi_days || head->covered)
                    continue;
                for (int next_col = col + 1; next_col < NColumns; next_col++) {
                    CalendarEntry *other = cell (row, next_col)->entries[i];
                    if (!other || other->entry != head->entry) {
                        head->continues_right = FALSE;
                        break;
                    }
                    head->span_following++;
                    other->covered = TRUE;
                }
            }
        }

    /* Cross check in reading order. */
    for (int k = 0; k < NCells - 1; k++) {
        CalendarCell *c = &cells[k];
        for (int i = 0; i < MAX_WIDE_ENTRIES; i++) {
            CalendarEntry *centry = c->entries[i];
            if (!centry || !centry->multi_days || centry->covered)
                continue;
            int index = 0;
            if (!calendar_cell_has_entry (&cells[k + 1], centry->entry, &index)) {
                TAV_MESSAGE_AS ("calendar_recalculate_entries_for_all_cells", "Its not there in next");
                if (!centry->continues_left && centry->span_following > 0)
                    centry->covered = TRUE;
            } else if (index == -1) {
                if (!centry->continues_left && centry->span_following > 0)
                    centry->covered = TRUE;
                TAV_MESSAGE_AS ("calendar_recalculate_entries_for_all_cells", "next index %d", index);
            }
        }
    }
}
