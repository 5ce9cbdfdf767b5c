/* libcalendarui - the week view's entry records and their layout */

#include "TavWeekViewPrivate.h"

#include <algorithm>
#include <array>

#include "TavGPtr.h"
#include "TavLog.h"

/* Internal code asserts its pointers: a NULL here is a bug in the view. */
#define WEEK_ASSERT(expr)                                                                   \
    G_STMT_START {                                                                          \
        if (G_UNLIKELY (!(expr)))                                                           \
            g_assertion_message_expr (G_LOG_DOMAIN, __FILE__, __LINE__, G_STRFUNC, #expr); \
    } G_STMT_END

namespace {

/* References @object for a record. Something that is not an object is
 * reported and stored as it is, so the record still names what it was
 * given; it is then neither read nor unreferenced. */
void ref_for_record (gpointer object, int line)
{
    if (G_IS_OBJECT (object))
        g_object_ref (object);
    else
        TAV_WARNING ("  Ref : %p which is not an object at line %d.", object, line);
}

void unref_from_record (gpointer object)
{
    if (G_IS_OBJECT (object))
        g_object_unref (object);
}

int read_color (TavCalendarEntry *entry)
{
    int color = 0;
    if (G_IS_OBJECT (entry))
        g_object_get (entry, "color", &color, NULL);
    return color;
}

int minutes_of (const TavTime *time)
{
    return time ? time->hour * 60 + time->minute : 0;
}

void free_cached_strings (WeekEntry *wentry)
{
    g_clear_pointer (&wentry->title, g_free);
    g_clear_pointer (&wentry->summary, g_free);
    g_clear_pointer (&wentry->summary_time, g_free);
    g_clear_pointer (&wentry->short_summary, g_free);
}

void renumber_allday (WeekEntryList *list)
{
    int index = 0;
    for (GList *l = list->allday_entries; l; l = l->next)
        static_cast<WeekEntry *> (l->data)->index = index++;
}

char *escaped_property (TavCalendarEntry *entry, const char *property)
{
    if (!G_IS_OBJECT (entry))
        return g_strdup ("");
    tav::GCharPtr text;
    char *raw = nullptr;
    g_object_get (entry, property, &raw, NULL);
    text.reset (raw);
    return g_markup_escape_text (text ? text.get () : "", -1);
}

} // namespace

/* Records ------------------------------------------------------------------ */

WeekEntry *week_entry_new (TavCalendarEntry *entry, TavCalendarProcessor *processor,
                           const TavDate *instance_date)
{
    WEEK_ASSERT (instance_date != NULL);

    WeekEntry *wentry = g_new0 (WeekEntry, 1);
    ref_for_record (entry, 51);
    wentry->entry = entry;
    wentry->n_columns = 1;

    if (!TAV_IS_CALENDAR_ENTRY (entry)) {
        /* Nothing can be read from it: an empty one-day record at the
         * instance date keeps the painting code on safe ground. */
        wentry->start_date = tav_date_copy (instance_date);
        wentry->end_date = tav_date_copy (instance_date);
        TavTime midnight = { 0, 0 };
        wentry->start_time = tav_time_copy (&midnight);
        wentry->end_time = tav_time_copy (&midnight);
        wentry->n_days = 1;
        return wentry;
    }

    g_object_get (entry,
                  "start-date", &wentry->start_date,
                  "end-date", &wentry->end_date,
                  "all-day", &wentry->all_day,
                  "has-birthday", &wentry->has_birthday,
                  "start-time", &wentry->start_time,
                  "end-time", &wentry->end_time,
                  "color", &wentry->color,
                  "multi-days", &wentry->multi_days,
                  NULL);
    wentry->is_task = TAV_IS_CALENDAR_TASK (entry);
    wentry->n_tasks = wentry->is_task ? 1 : 0;
    wentry->n_days = tav_calendar_processor_get_date_interval_in_days (processor, *wentry->start_date,
                                                                      *wentry->end_date) + 1;

    /* Describe the instance that starts on the shown day. */
    if (tav_date_compare (instance_date, wentry->start_date) > 0) {
        const int shift = tav_calendar_processor_get_date_interval_in_days (processor, *wentry->start_date,
                                                                           *instance_date);
        tav_calendar_processor_inc_date_by_days (processor, wentry->start_date, shift);
        tav_calendar_processor_inc_date_by_days (processor, wentry->end_date, shift);
    } else if (tav_date_compare (instance_date, wentry->start_date) < 0) {
        const int shift = tav_calendar_processor_get_date_interval_in_days (processor, *instance_date,
                                                                           *wentry->start_date);
        tav_calendar_processor_dec_date_by_days (processor, wentry->start_date, shift);
        tav_calendar_processor_dec_date_by_days (processor, wentry->end_date, shift);
    }
    return wentry;
}

void week_entry_free (WeekEntry *wentry)
{
    WEEK_ASSERT (wentry != NULL);
    unref_from_record (wentry->entry);
    g_list_free_full (wentry->tasks, unref_from_record);
    g_clear_pointer (&wentry->start_date, tav_date_free);
    g_clear_pointer (&wentry->end_date, tav_date_free);
    g_clear_pointer (&wentry->start_time, tav_time_free);
    g_clear_pointer (&wentry->end_time, tav_time_free);
    free_cached_strings (wentry);
    g_free (wentry);
}

gint week_entry_mod_time_sorter (gconstpointer task1, gconstpointer task2)
{
    GObject *a = G_OBJECT (task1);
    GObject *b = G_OBJECT (task2);

    TavDate *date_a = nullptr, *date_b = nullptr;
    TavTime *time_a = nullptr, *time_b = nullptr;
    int sec_a = 0, sec_b = 0;
    g_object_get (a, "modification-date", &date_a, "modification-time", &time_a,
                  "modified-time-sec", &sec_a, NULL);
    g_object_get (b, "modification-date", &date_b, "modification-time", &time_b,
                  "modified-time-sec", &sec_b, NULL);

    int result = tav_date_compare (date_a, date_b);
    if (result == 0)
        result = tav_time_compare (time_a, time_b);
    if (result == 0)
        result = sec_a < sec_b ? -1 : 1;

    tav_date_free (date_a);
    tav_date_free (date_b);
    tav_time_free (time_a);
    tav_time_free (time_b);
    return result;
}

void week_entry_append_task_entry_to_wentry (WeekEntry *wentry, TavCalendarTask *task)
{
    WEEK_ASSERT (wentry != NULL);
    WEEK_ASSERT (TAV_IS_CALENDAR_ENTRY(task));

    wentry->n_tasks += 1;
    ref_for_record (task, 587);
    if (week_entry_mod_time_sorter (task, wentry->entry) < 0) {
        /* The earliest modified task leads the record. */
        wentry->tasks = g_list_insert_sorted (wentry->tasks, wentry->entry, week_entry_mod_time_sorter);
        wentry->entry = TAV_CALENDAR_ENTRY (task);
        wentry->color = read_color (wentry->entry);
        free_cached_strings (wentry);
    } else {
        wentry->tasks = g_list_insert_sorted (wentry->tasks, task, week_entry_mod_time_sorter);
    }
}

const char *week_entry_get_detail (const WeekEntry *wentry)
{
    WEEK_ASSERT (wentry != NULL);
    static const std::array<const char *, 10> allday = {
        "allday-darkblue", "allday-darkgreen", "allday-darkred", "allday-orange", "allday-violet",
        "allday-yellow", "allday-white", "allday-blue", "allday-red", "allday-green",
    };
    static const std::array<const char *, 10> hbar = {
        "hbar-darkblue", "hbar-darkgreen", "hbar-darkred", "hbar-orange", "hbar-violet",
        "hbar-yellow", "hbar-white", "hbar-blue", "hbar-red", "hbar-green",
    };
    if (wentry->color < 0 || wentry->color >= static_cast<int> (allday.size ()))
        return NULL;
    return wentry->all_day ? allday[wentry->color] : hbar[wentry->color];
}

const char *week_entry_get_title (WeekEntry *wentry)
{
    WEEK_ASSERT (wentry != NULL);
    if (!wentry->title)
        wentry->title = escaped_property (wentry->entry, "title");
    return wentry->title;
}

const char *week_entry_get_short_summary (WeekEntry *wentry)
{
    WEEK_ASSERT (wentry != NULL);
    if (!wentry->short_summary) {
        tav::GCharPtr title (escaped_property (wentry->entry, "title"));
        wentry->short_summary = g_strdup_printf ("<span color=\"Black\" size=\"small\">%s</span> ", title.get ());
    }
    return wentry->short_summary;
}

const char *week_entry_get_summary (WeekEntry *wentry)
{
    WEEK_ASSERT (wentry != NULL);
    if (!wentry->summary) {
        tav::GCharPtr title (escaped_property (wentry->entry, "title"));
        tav::GCharPtr location (escaped_property (wentry->entry, "location"));
        wentry->summary = g_strdup_printf ("<span color=\"Black\" size=\"small\">%s</span>\n"
                                           "<span color=\"Grey\" size=\"small\">%s</span>",
                                           title.get (), location.get ());
    }
    return wentry->summary;
}

const char *week_entry_get_summary_time (WeekEntry *wentry, int flag)
{
    WEEK_ASSERT (wentry != NULL);
    WEEK_ASSERT (wentry->start_time != NULL);
    if (!wentry->summary_time) {
        const gboolean twelve_hour = (flag == 0 || flag == 1) ? 1 - flag : 0;
        tav::GCharPtr time (tav_time_to_string_format (wentry->start_time, twelve_hour));
        wentry->summary_time = g_strdup_printf ("<span color=\"Black\">%s</span>", time ? time.get () : "");
    }
    return wentry->summary_time;
}

/* Orders -------------------------------------------------------------------- */

gint _week_entry_compare_hour_entry_inside_day (gconstpointer a, gconstpointer b)
{
    const WeekEntry *wentry1 = static_cast<const WeekEntry *> (a);
    const WeekEntry *wentry2 = static_cast<const WeekEntry *> (b);
    WEEK_ASSERT (wentry1 != NULL);
    WEEK_ASSERT (wentry2 != NULL);
    WEEK_ASSERT (wentry1->start_time != NULL);
    WEEK_ASSERT (wentry2->start_time != NULL);

    const int by_date = tav_date_compare (wentry1->start_date, wentry2->start_date);
    if (by_date != 0)
        return by_date;
    return tav_time_compare (wentry1->start_time, wentry2->start_time);
}

static int created_time_of (TavCalendarEntry *entry)
{
    int created = 0;
    if (G_IS_OBJECT (entry))
        g_object_get (entry, "created-time", &created, NULL);
    return created;
}

static int compare_titles (WeekEntry *wentry1, WeekEntry *wentry2)
{
    return tav_compare_utf8_strings (week_entry_get_title (wentry1), week_entry_get_title (wentry2));
}

gint _week_entry_compare_allday_entry_inside_day (gconstpointer a, gconstpointer b)
{
    WeekEntry *wentry1 = const_cast<WeekEntry *> (static_cast<const WeekEntry *> (a));
    WeekEntry *wentry2 = const_cast<WeekEntry *> (static_cast<const WeekEntry *> (b));
    WEEK_ASSERT (wentry1 != NULL);
    WEEK_ASSERT (wentry2 != NULL);

    const int created1 = created_time_of (wentry1->entry);
    const int created2 = created_time_of (wentry2->entry);

    /* Multi-day records lead the bar, the longest first. */
    if (wentry1->multi_days != wentry2->multi_days)
        return wentry1->multi_days ? -1 : 1;
    if (wentry1->multi_days) {
        if (wentry1->n_days != wentry2->n_days)
            return wentry1->n_days > wentry2->n_days ? -1 : 1;
        if (created1 != created2)
            return created1 < created2 ? -1 : 1;
        return compare_titles (wentry1, wentry2);
    }

    /* Events come before the day's tasks, birthdays after them. */
    if (wentry1->is_task != wentry2->is_task) {
        const WeekEntry *other = wentry1->is_task ? wentry2 : wentry1;
        const bool task_first = other->has_birthday;
        if (wentry1->is_task)
            return task_first ? -1 : 1;
        return task_first ? 1 : -1;
    }

    if (wentry1->has_birthday && wentry2->has_birthday)
        return compare_titles (wentry1, wentry2);
    if (created1 != created2)
        return created1 < created2 ? -1 : 1;
    return compare_titles (wentry1, wentry2);
}

/* Lists --------------------------------------------------------------------- */

WeekEntryList *week_entry_list_new (void)
{
    return g_new0 (WeekEntryList, 1);
}

void week_entry_list_remove_all_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    g_list_free_full (wentry_list->hour_entries, reinterpret_cast<GDestroyNotify> (week_entry_free));
    g_list_free_full (wentry_list->allday_entries, reinterpret_cast<GDestroyNotify> (week_entry_free));
    wentry_list->hour_entries = NULL;
    wentry_list->allday_entries = NULL;
    wentry_list->hour_iter = NULL;
    wentry_list->allday_iter = NULL;
}

void week_entry_list_free (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    week_entry_list_remove_all_entry (wentry_list);
    g_free (wentry_list);
}

/* Inserts @data after every element that does not sort after it, so equal
 * records keep their arrival order (g_list_insert_sorted puts a new record
 * before its equals). */
static GList *insert_after_equals (GList *list, gpointer data, GCompareFunc compare)
{
    GList *last_not_after = nullptr;
    for (GList *l = list; l && compare (l->data, data) <= 0; l = l->next)
        last_not_after = l;
    if (!last_not_after)
        return g_list_prepend (list, data);
    /* Before the next link; with none, at the end. */
    return g_list_insert_before (list, last_not_after->next, data);
}

void week_entry_list_append_entry (WeekEntryList *wentry_list, WeekEntry *wentry)
{
    WEEK_ASSERT (wentry_list != NULL);
    WEEK_ASSERT (wentry != NULL);

    if (wentry->all_day) {
        wentry_list->allday_entries = insert_after_equals (wentry_list->allday_entries, wentry,
                                                           _week_entry_compare_allday_entry_inside_day);
        renumber_allday (wentry_list);
    } else {
        /* A timed record keeps its arrival number, not its sorted place. */
        wentry->index = static_cast<int> (g_list_length (wentry_list->hour_entries));
        wentry_list->hour_entries = insert_after_equals (wentry_list->hour_entries, wentry,
                                                         _week_entry_compare_hour_entry_inside_day);
    }
}

static WeekEntry *data_of (GList *link)
{
    return link ? static_cast<WeekEntry *> (link->data) : NULL;
}

WeekEntry *week_entry_list_get_first_hour_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    wentry_list->hour_iter = wentry_list->hour_entries;
    return data_of (wentry_list->hour_iter);
}

WeekEntry *week_entry_list_get_next_hour_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    if (wentry_list->hour_iter)
        wentry_list->hour_iter = wentry_list->hour_iter->next;
    return data_of (wentry_list->hour_iter);
}

WeekEntry *week_entry_list_get_prev_hour_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    if (wentry_list->hour_iter)
        wentry_list->hour_iter = wentry_list->hour_iter->prev;
    return data_of (wentry_list->hour_iter);
}

WeekEntry *week_entry_list_get_last_hour_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    wentry_list->hour_iter = g_list_last (wentry_list->hour_entries);
    return data_of (wentry_list->hour_iter);
}

WeekEntry *week_entry_list_get_first_all_day_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    wentry_list->allday_iter = wentry_list->allday_entries;
    return data_of (wentry_list->allday_iter);
}

WeekEntry *week_entry_list_get_next_all_day_entry (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    if (wentry_list->allday_iter)
        wentry_list->allday_iter = wentry_list->allday_iter->next;
    return data_of (wentry_list->allday_iter);
}

int week_entry_list_n_all_day_entries (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    return static_cast<int> (g_list_length (wentry_list->allday_entries));
}

WeekEntry *week_entry_list_find_hour_wentry_for_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry)
{
    WEEK_ASSERT (wentry_list != NULL);
    WEEK_ASSERT (TAV_IS_CALENDAR_ENTRY(entry));
    for (GList *l = wentry_list->hour_entries; l; l = l->next) {
        WeekEntry *wentry = data_of (l);
        if (TAV_IS_CALENDAR_ENTRY (wentry->entry) && tav_calendar_entry_is_equal (wentry->entry, entry))
            return wentry;
    }
    return NULL;
}

WeekEntry *week_entry_list_find_allday_wentry_for_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry)
{
    WEEK_ASSERT (wentry_list != NULL);
    WEEK_ASSERT (TAV_IS_CALENDAR_ENTRY(entry));

    if (TAV_IS_CALENDAR_TASK (entry)) {
        /* All of a day's tasks share one record. */
        for (GList *l = wentry_list->allday_entries; l; l = l->next) {
            WeekEntry *wentry = data_of (l);
            if (!wentry->is_task)
                continue;
            if (wentry->entry == entry || g_list_find (wentry->tasks, entry))
                return wentry;
            return NULL;
        }
        return NULL;
    }
    for (GList *l = wentry_list->allday_entries; l; l = l->next) {
        WeekEntry *wentry = data_of (l);
        if (TAV_IS_CALENDAR_ENTRY (wentry->entry) && tav_calendar_entry_is_equal (wentry->entry, entry))
            return wentry;
    }
    return NULL;
}

gboolean week_entry_list_find_and_remove_hour_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry)
{
    WEEK_ASSERT (wentry_list != NULL);
    WeekEntry *wentry = week_entry_list_find_hour_wentry_for_entry (wentry_list, entry);
    if (!wentry)
        return FALSE;
    if (wentry_list->hour_iter && wentry_list->hour_iter->data == wentry)
        wentry_list->hour_iter = NULL;
    wentry_list->hour_entries = g_list_remove (wentry_list->hour_entries, wentry);
    week_entry_free (wentry);
    return TRUE;
}

gboolean week_entry_list_find_and_remove_allday_entry (WeekEntryList *wentry_list, TavCalendarEntry *entry)
{
    WEEK_ASSERT (wentry_list != NULL);
    WeekEntry *wentry = week_entry_list_find_allday_wentry_for_entry (wentry_list, entry);
    if (!wentry)
        return FALSE;

    if (wentry->is_task && wentry->n_tasks != 1) {
        /* Only this task leaves the merged record. */
        wentry->n_tasks -= 1;
        if (wentry->entry == entry && wentry->tasks) {
            unref_from_record (wentry->entry);
            wentry->entry = TAV_CALENDAR_ENTRY (wentry->tasks->data);
            wentry->tasks = g_list_delete_link (wentry->tasks, wentry->tasks);
            wentry->color = read_color (wentry->entry);
            free_cached_strings (wentry);
        } else if (GList *link = g_list_find (wentry->tasks, entry)) {
            wentry->tasks = g_list_delete_link (wentry->tasks, link);
            unref_from_record (entry);
        }
        return TRUE;
    }

    if (wentry_list->allday_iter && wentry_list->allday_iter->data == wentry)
        wentry_list->allday_iter = NULL;
    wentry_list->allday_entries = g_list_remove (wentry_list->allday_entries, wentry);
    week_entry_free (wentry);
    renumber_allday (wentry_list);
    return TRUE;
}

void week_entry_list_allday_readjust_entry_to_index (WeekEntryList *wentry_list, WeekEntry *wentry, int index)
{
    WEEK_ASSERT (wentry_list != NULL);
    WEEK_ASSERT (wentry != NULL);

    int k = 0;
    for (GList *l = wentry_list->allday_entries; l; l = l->next) {
        WeekEntry *other = data_of (l);
        if (other == wentry) {
            other->index = index;
            if (k == index)
                k += 1;
        } else if (k == index) {
            other->index = index + 1;
            k = index + 2;
        } else {
            other->index = k;
            k += 1;
        }
    }
}

/* Overlap layout -------------------------------------------------------------- */

gboolean week_entry_intersect_in_list (GList *column_members, const WeekEntry *candidate)
{
    WEEK_ASSERT (candidate != NULL);
    for (GList *l = column_members; l; l = l->next) {
        const WeekEntry *wentry1 = static_cast<const WeekEntry *> (l->data);
        g_return_val_if_fail (wentry1 != NULL, FALSE);
        if (tav_time_intersect (wentry1->start_time, wentry1->end_time, candidate->start_time,
                                candidate->end_time, NULL, NULL))
            return TRUE;
    }
    return FALSE;
}

namespace tav::week {

std::vector<Placement> layout_overlaps (const std::vector<Span> &spans)
{
    const size_t n = spans.size ();
    std::vector<Placement> out (n);
    if (n == 0)
        return out;

    /* Grouping. A record's group is settled once the walk reaches it (only
     * later records are ever overwritten), so the group a record ends with
     * is that of the last earlier record meeting it, or a fresh number when
     * none does. Scanning backwards and stopping at the first hit gives the
     * same numbers as the forward overwrite in far fewer tests when a day
     * is crowded. */
    /* Two ranges can only meet when each ends at or after the other's
     * start, so once no earlier record ends at or after this one's start
     * (the running maximum of the ends), the scan can stop: a day of
     * consecutive entries costs one test per entry. */
    std::vector<int> max_end (n);
    int last_group = 0;
    for (size_t j = 0; j < n; j++) {
        max_end[j] = j ? std::max (max_end[j - 1], spans[j].end) : spans[j].end;
        int group = 0;
        for (size_t i = j; i-- > 0;) {
            if (max_end[i] < spans[j].start)
                break;
            if (spans_intersect (spans[i], spans[j])) {
                group = out[i].group;
                break;
            }
        }
        out[j].group = group ? group : ++last_group;
    }

    /* Members of every group, in list order. */
    std::vector<std::vector<size_t>> members (static_cast<size_t> (last_group) + 1);
    for (size_t j = 0; j < n; j++)
        members[static_cast<size_t> (out[j].group)].push_back (j);

    constexpr int kMaxColumns = 4;
    std::vector<bool> unplaced (n, false);
    std::vector<size_t> column;
    for (int g = 1; g <= last_group; g++) {
        const std::vector<size_t> &m = members[static_cast<size_t> (g)];
        if (m.size () == 1)
            continue;
        if (m.size () == 2) {
            out[m[0]].column = 0;
            out[m[1]].column = 1;
            out[m[0]].n_columns = out[m[1]].n_columns = 2;
            continue;
        }
        for (size_t idx : m)
            unplaced[idx] = true;

        std::vector<size_t> placed;
        size_t scan_from = 0;
        int opened = 0;
        while (opened < kMaxColumns) {
            size_t first = scan_from;
            while (first < m.size () && !unplaced[m[first]])
                first++;
            if (first >= m.size ())
                break;
            column.clear ();
            column.push_back (m[first]);
            unplaced[m[first]] = false;
            out[m[first]].column = opened;
            placed.push_back (m[first]);
            for (size_t k = first + 1; k < m.size (); k++) {
                const size_t cand = m[k];
                if (!unplaced[cand])
                    continue;
                const bool meets = std::any_of (column.begin (), column.end (), [&] (size_t c) {
                    return spans_intersect (spans[c], spans[cand]);
                });
                if (!meets) {
                    column.push_back (cand);
                    unplaced[cand] = false;
                    out[cand].column = opened;
                    placed.push_back (cand);
                }
            }
            opened++;
            scan_from = first + 1;
        }
        for (size_t idx : placed)
            out[idx].n_columns = opened;
        for (size_t idx : m) {
            /* Left over after four columns: full width, drawn under the
             * columns and counted in the group's "+n" mark. */
            out[idx].unplaced = unplaced[idx];
            unplaced[idx] = false;
        }
    }
    return out;
}

} // namespace tav::week

void week_entry_list_calculate_overlapping (WeekEntryList *wentry_list)
{
    WEEK_ASSERT (wentry_list != NULL);
    if (!wentry_list->hour_entries)
        return;

    std::vector<WeekEntry *> records;
    std::vector<tav::week::Span> spans;
    for (GList *l = wentry_list->hour_entries; l; l = l->next) {
        WeekEntry *wentry = data_of (l);
        records.push_back (wentry);
        /* Columns follow what is drawn: a short entry is drawn taller than
         * its minutes, and what starts inside that height shares its row. */
        const int start = minutes_of (wentry->start_time);
        spans.push_back ({ start, std::max (minutes_of (wentry->end_time), start + tav::week::kMinDrawnMinutes) });
    }
    const std::vector<tav::week::Placement> placements = tav::week::layout_overlaps (spans);
    for (size_t i = 0; i < records.size (); i++) {
        records[i]->group = placements[i].group;
        records[i]->column = placements[i].column;
        records[i]->n_columns = placements[i].n_columns;
        records[i]->unplaced = placements[i].unplaced;
    }
}
