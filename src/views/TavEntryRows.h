/* libcalendarui - the row engine shared by the agenda and the day lists
 * (internal)
 *
 * AgendaEntry and DayEntry are the same record with two differences (the
 * day row's no-events flag and its shorter time texts), and their lists
 * differ only in how rows get into order. Everything else, the order of
 * rows, the time texts, the first/last marks, offsets, rectangles and
 * lookups, is written once here over the record type Row and its list
 * type List. RowTraits<Row> names what differs.
 */
#ifndef TAV_ENTRY_ROWS_H
#define TAV_ENTRY_ROWS_H

#include <gtk/gtk.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "TavCalendarEntry.h"
#include "TavCalendarEnums.h"
#include "TavGPtr.h"
#include "TavCalendarProcessor.h"
#include "TavCalendarTask.h"
#include "TavDate.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "KivoIconSize.h"

/* A failed check in the row code is a bug in the view: abort, naming the
 * condition as written. */
#define ROWS_ASSERT(expr, text)                                                              \
    G_STMT_START {                                                                           \
        if (G_UNLIKELY (!(expr)))                                                            \
            g_assertion_message_expr (G_LOG_DOMAIN, __FILE__, __LINE__, G_STRFUNC, (text)); \
    } G_STMT_END

namespace tav::rows {

constexpr int kHeaderHeight = 40;
constexpr int kRowHeight = 70;
constexpr int kRowX = 16;
constexpr int kNoEntriesHour = 23;
/* The height of the date header pinned over the top edge. */
constexpr int kPinnedHeight = 34;

/* What differs between the two records; specialised next to each list. */
template <class Row> struct RowTraits;

template <class Row> inline bool is_entry (const Row *r) { return r->entry != nullptr; }
template <class Row> inline bool is_header (const Row *r) { return !r->entry && !r->is_button; }
template <class Row> inline bool is_button (const Row *r) { return !r->entry && r->is_button; }

inline time_t created_time_of (TavCalendarEntry *entry)
{
    return TAV_IS_CALENDAR_ENTRY (entry) ? tav_calendar_entry_get_created_time (entry) : 0;
}

inline bool is_task (TavCalendarEntry *entry)
{
    return TAV_IS_CALENDAR_TASK (entry);
}

inline bool has_bday (TavCalendarEntry *entry)
{
    return TAV_IS_CALENDAR_ENTRY (entry) && tav_calendar_entry_has_bday (entry);
}

inline int title_compare (const char *a, const char *b)
{
    return tav_compare_utf8_strings (a ? a : "", b ? b : "");
}

template <class T> inline int sign (T v)
{
    return (v > 0) - (v < 0);
}

/* The order of rows (rules 4 to 9 of the entry order), for two rows that
 * both show an entry. */
template <class Row> int compare_entry_rows (const Row *a, const Row *b)
{
    const time_t created_a = created_time_of (a->entry);
    const time_t created_b = created_time_of (b->entry);
    bool by_creation = true;
    if (a->multi_days || b->multi_days) {
        if (a->multi_days != b->multi_days)
            return a->multi_days ? -1 : 1;
        if (a->n_days != b->n_days)
            return b->n_days - a->n_days;
    } else if (a->all_day != b->all_day) {
        return a->all_day ? -1 : 1;
    } else if (!a->all_day) {
        if (a->start_time.hour != b->start_time.hour)
            return a->start_time.hour - b->start_time.hour;
        if (a->start_time.minute != b->start_time.minute)
            return a->start_time.minute - b->start_time.minute;
        /* Same start: the title decides, never the creation. */
        by_creation = false;
    } else {
        const bool task_a = is_task (a->entry), task_b = is_task (b->entry);
        if (task_a != task_b) {
            /* Plain all-day events, then tasks, then birthdays. */
            TavCalendarEntry *other = task_a ? b->entry : a->entry;
            const bool task_first = has_bday (other);
            return (task_a == task_first) ? -1 : 1;
        }
        if (has_bday (a->entry) && has_bday (b->entry))
            by_creation = false;
    }
    if (by_creation && created_a != created_b)
        return sign (created_a - created_b);
    return title_compare (a->title, b->title);
}

/* The whole order. @button_after_header: rows without an entry at the same
 * time put the insert button after the other (the agenda's rule); the day
 * list compares such rows by time alone. */
template <class Row> int compare_rows (const Row *a, const Row *b, bool button_after_header)
{
    const int by_date = tav_date_compare (&a->date, &b->date);
    if (by_date != 0)
        return by_date;
    if (!a->entry != !b->entry)
        return a->entry ? 1 : -1;
    if (!a->entry) {
        const int by_time = tav_time_compare (&a->start_time, &b->start_time);
        if (by_time == 0 && button_after_header) {
            if (a->is_button)
                return 1;
            if (b->is_button)
                return -1;
        }
        return by_time;
    }
    return compare_entry_rows (a, b);
}

/* Rows fall into groups that the order never mixes: per date, the rows
 * without an entry, the multi-day rows, the all-day rows and the timed
 * rows, in that order. Within the multi-day and the timed group the order
 * is a total preorder, so sorting and merging give what insertion gives;
 * within the other two it is not transitive (a birthday against a plain
 * all-day event goes by creation, each against a task by kind), so there
 * rows are placed one by one exactly as sorted insertion places them. */
enum class Group { NoEntry = 0, MultiDay = 1, AllDay = 2, Timed = 3 };

template <class Row> inline Group group_of (const Row *r)
{
    if (!r->entry)
        return Group::NoEntry;
    if (r->multi_days)
        return Group::MultiDay;
    return r->all_day ? Group::AllDay : Group::Timed;
}

template <class Row> inline int compare_groups (const Row *a, const Row *b)
{
    const int by_date = tav_date_compare (&a->date, &b->date);
    if (by_date != 0)
        return by_date;
    return static_cast<int> (group_of (a)) - static_cast<int> (group_of (b));
}

/* Places @pending (in arrival order) into the ordered rows @rows, giving
 * exactly the order that inserting them one at a time would give, where
 * an insertion goes before the first row that is not smaller than it.
 * O((N + M) log M) outside the groups that need the literal walk. */
template <class Row, class Compare>
std::vector<Row *> merge_in_order (const std::vector<Row *> &rows, std::vector<Row *> pending, Compare cmp)
{
    if (pending.empty ())
        return rows;
    /* Pending rows by group, arrival order kept inside a group. */
    std::stable_sort (pending.begin (), pending.end (),
                      [] (const Row *a, const Row *b) { return compare_groups (a, b) < 0; });
    std::vector<Row *> out;
    out.reserve (rows.size () + pending.size ());
    size_t i = 0, j = 0;
    while (i < rows.size () || j < pending.size ()) {
        const Row *key;
        if (j >= pending.size ())
            key = rows[i];
        else if (i >= rows.size ())
            key = pending[j];
        else
            key = compare_groups (rows[i], pending[j]) <= 0 ? rows[i] : pending[j];
        size_t i2 = i, j2 = j;
        while (i2 < rows.size () && compare_groups (rows[i2], key) == 0)
            i2++;
        while (j2 < pending.size () && compare_groups (pending[j2], key) == 0)
            j2++;
        const Group group = group_of (key);
        if (j2 == j) {
            out.insert (out.end (), rows.begin () + i, rows.begin () + i2);
        } else if (group == Group::MultiDay || group == Group::Timed) {
            /* Later arrivals go before equal rows: sort the newcomers with
             * ties newest first and let them win ties in the merge. */
            std::vector<Row *> batch (pending.rbegin () + (pending.size () - j2),
                                      pending.rbegin () + (pending.size () - j));
            auto less = [&] (const Row *a, const Row *b) { return cmp (a, b) < 0; };
            std::stable_sort (batch.begin (), batch.end (), less);
            std::merge (batch.begin (), batch.end (), rows.begin () + i, rows.begin () + i2, std::back_inserter (out),
                        less);
        } else {
            std::vector<Row *> bucket (rows.begin () + i, rows.begin () + i2);
            for (size_t k = j; k < j2; k++) {
                auto at = std::find_if (bucket.begin (), bucket.end (),
                                        [&] (const Row *r) { return cmp (pending[k], r) <= 0; });
                bucket.insert (at, pending[k]);
            }
            out.insert (out.end (), bucket.begin (), bucket.end ());
        }
        i = i2;
        j = j2;
    }
    return out;
}

/* Time column ------------------------------------------------------------ */

template <class Row> void refresh_displayed_times (Row *r, int time_format, gboolean shifted)
{
    const bool middle_day = tav_date_compare (&r->date, &r->start_date) > 0 &&
                            tav_date_compare (&r->date, &r->end_date) < 0;
    const bool whole_day = r->start_time.hour == 0 && r->start_time.minute == 0 && r->end_time.hour == 23 &&
                           r->end_time.minute == 59;
    if (r->all_day || middle_day || whole_day) {
        g_strlcpy (r->start_text, TAV_CAL ("cal_va_allday"), RowTraits<Row>::kAllDayBytes);
        r->end_text[0] = '\0';
        return;
    }
    const gboolean twelve_hour = (time_format == 0 || time_format == 1) ? 1 - time_format : 0;
    TavTime first = shifted ? r->displayed_time : r->start_time;
    TavTime second = r->end_time;
    if (shifted) {
        /* The end moves with the instance; the hour is not wrapped. */
        second.hour = r->displayed_time.hour + r->end_time.hour - r->start_time.hour;
        second.minute = r->end_time.minute;
    }
    char *one = tav_time_to_string_format (&first, twelve_hour);
    char *two = tav_time_to_string_format (&second, twelve_hour);
    g_snprintf (r->start_text, RowTraits<Row>::kLineBytes, "%s", one ? one : "");
    g_snprintf (r->end_text, RowTraits<Row>::kLineBytes, "%s", two ? two : "");
    g_free (one);
    g_free (two);
}

/* Records ----------------------------------------------------------------- */

/* The icon file @path at @size x @size, loaded once per process (a file
 * that does not load is tried once); a new reference or NULL. */
inline GdkPixbuf *shared_icon (const char *path, int size)
{
    /* The cache owns its references: they go with it when the process ends. */
    static std::map<std::pair<std::string, int>, tav::GRefPtr<GdkPixbuf>> cache;
    auto key = std::make_pair (std::string (path), size);
    auto it = cache.find (key);
    if (it == cache.end ())
        it = cache.emplace (key, tav::adoptGRef (tav_create_pixbuf (path, size, size))).first;
    return it->second ? GDK_PIXBUF (g_object_ref (it->second.get ())) : nullptr;
}

/* What the lookups done while filling a list need at once: which dates
 * have a header, how many entry rows and no-events headers there are.
 * Kept up to date by adding and removing rows. */
template <class Row> inline bool is_no_entries_row (const Row *r);

struct RowIndex {
    std::unordered_map<int, int> headers;
    int entries = 0;
    int no_entries = 0;

    static int key (const TavDate &d) { return (d.year * 16 + d.month) * 32 + d.day; }
    template <class Row> void count (const Row *r, int delta)
    {
        if (r->entry) {
            entries += delta;
        } else if (!r->is_button) {
            headers[key (r->date)] += delta;
            if (is_no_entries_row (r))
                no_entries += delta;
        }
    }
    bool has_header (const TavDate &d) const
    {
        auto it = headers.find (key (d));
        return it != headers.end () && it->second > 0;
    }
    void clear ()
    {
        headers.clear ();
        entries = no_entries = 0;
    }
};

inline TavCalendarProcessor *shared_processor (TavCalendarProcessor **slot)
{
    if (!*slot)
        *slot = tav_calendar_processor_new ();
    return *slot;
}

template <class Row> Row *new_header (const char *title, const TavDate *date)
{
    Row *r = g_new0 (Row, 1);
    r->height = kHeaderHeight;
    r->title = g_strdup (title);
    r->start_date = *date;
    r->date = *date;
    return r;
}

template <class Row> Row *new_button (const char *title, const char *icon_name, const TavDate *date)
{
    Row *r = new_header<Row> (title, date);
    r->height = kRowHeight;
    r->is_button = TRUE;
    const int size = kivo_icon_size_get_pixels ("kivo-finger");
    r->color_icon = icon_name ? shared_icon (icon_name, size) : nullptr;
    return r;
}

inline void release_object (gpointer object)
{
    if (G_IS_OBJECT (object))
        g_object_unref (object);
}

template <class Row> void free_row (Row *r)
{
    release_object (r->entry);
    release_object (r->color_icon);
    release_object (r->type_icon);
    g_free (r->title);
    g_free (r->location);
    g_free (r->description);
    g_free (r);
}

/* References @object for a row; something that is not an object is
 * reported (as @func at @line) and kept without a reference. */
inline void ref_for_row (gpointer object, const char *func, int line)
{
    if (G_IS_OBJECT (object))
        g_object_ref (object);
    else
        TAV_WARNING_AS (func, "  Ref : %p which is not an object at line %d.", object, line);
}

template <class Row, class List>
void set_from_entry (List *list, Row *r, TavCalendarEntry *entry, const char *icon_name, int time_format)
{
    TavCalendarProcessor *processor = shared_processor (&RowTraits<Row>::processor);
    ref_for_row (entry, RowTraits<Row>::kSetFromEntryFunc, RowTraits<Row>::kSetFromEntryLine);
    release_object (r->entry);
    g_free (r->title);
    g_free (r->description);
    g_free (r->location);
    r->title = r->description = r->location = nullptr;
    r->entry = entry;
    r->is_button = FALSE;
    r->height = kRowHeight;

    int color = 0;
    if (TAV_IS_CALENDAR_ENTRY (entry)) {
        TavDate *start_date = nullptr, *end_date = nullptr, *end_repetition = nullptr;
        TavTime *start_time = nullptr, *end_time = nullptr;
        g_object_get (entry, "title", &r->title, "description", &r->description, "location", &r->location,
                      "color", &color, "all-day", &r->all_day, "start-date", &start_date, "start-time", &start_time,
                      "end-date", &end_date, "end-time", &end_time, "has-repeat", &r->has_repeat, "repeat-code",
                      &r->repeat_code, "end-repetition-date", &end_repetition, "multi-days", &r->multi_days, NULL);
        if (start_date)
            r->start_date = r->date = *start_date;
        if (start_time)
            r->start_time = *start_time;
        if (end_date)
            r->end_date = *end_date;
        if (end_time)
            r->end_time = *end_time;
        if (end_repetition)
            r->end_repetition_date = *end_repetition;
        r->n_days = tav_calendar_processor_get_date_interval_in_days (processor, r->start_date, r->end_date) + 1;
        tav_date_free (start_date);
        tav_date_free (end_date);
        tav_date_free (end_repetition);
        tav_time_free (start_time);
        tav_time_free (end_time);
    }

    release_object (r->color_icon);
    release_object (r->type_icon);
    r->color_icon = r->type_icon = nullptr;
    const int index = (color >= 0 && color < 10) ? color : 0;
    if (!list->color_icons[index]) {
        const int thumb = kivo_icon_size_get_pixels ("kivo-thumb");
        list->color_icons[index] = tav_calendar_color_create_pixbuf (static_cast<TavCalendarColor> (index), thumb,
                                                                     thumb);
    }
    GdkPixbuf *square = list->color_icons[index];
    ref_for_row (square, RowTraits<Row>::kCreateColorFunc, RowTraits<Row>::kCreateColorLine);
    r->color_icon = G_IS_OBJECT (square) ? square : nullptr;

    if (icon_name) {
        const int finger = kivo_icon_size_get_pixels ("kivo-finger");
        r->type_icon = shared_icon (icon_name, finger);
        r->start_text[0] = '\0';
        r->end_text[0] = '\0';
    } else {
        refresh_displayed_times (r, time_format, TRUE);
    }
}

template <class Row> const char *bg_detail (const Row *r)
{
    if (r->first && r->last)
        return "av-entry-first-last";
    if (r->first)
        return "av-entry-first";
    if (r->last)
        return "av-entry-last";
    return "av-entry-norm";
}

inline const char *button_bg_detail (gboolean pressed)
{
    return pressed ? "av-entry-button-pressed" : "av-entry-button-normal";
}

/* The detail number of a row's cached background: 0 first, 1 middle,
 * 2 last, 3 first and last, 4 pressed. */
template <class Row> int detail_number (const Row *r, bool pressed_here)
{
    if (pressed_here)
        return 4;
    if (r->first && r->last)
        return 3;
    if (r->first)
        return 0;
    if (r->last)
        return 2;
    return 1;
}

/* Lists ------------------------------------------------------------------- */

template <class List> inline void *row_at (List *list, int n)
{
    return g_ptr_array_index (list->entries, static_cast<guint> (n));
}

/* The first/last marks of a day's group (rows 0.. in order). */
template <class Row> void mark_groups (GPtrArray *rows)
{
    if (rows->len < 2)
        return;
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        r->first = r->last = FALSE;
    }
    Row *prev = nullptr;
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        if (is_header (r) && prev)
            prev->last = TRUE;
        if (!prev || is_header (prev))
            r->first = TRUE;
        prev = r;
    }
}

template <class Row> void compute_offsets (GPtrArray *rows)
{
    int y = 0;
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        r->y = y;
        y += r->height;
    }
}

template <class Row> int list_height (GPtrArray *rows)
{
    if (rows->len == 0)
        return 0;
    Row *last = static_cast<Row *> (g_ptr_array_index (rows, rows->len - 1));
    return last->y + last->height;
}

template <class Row, class List> void row_rect (List *list, const Row *r, GdkRectangle *dest)
{
    dest->x = kRowX;
    dest->y = r->y;
    dest->width = list->visible_width;
    dest->height = r->height;
}

/* First row with @y inside [y, y + height] (offsets must be fresh). */
template <class Row> int row_at_y (GPtrArray *rows, int y)
{
    guint lo = 0, hi = rows->len;
    while (lo < hi) {
        const guint mid = lo + (hi - lo) / 2;
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, mid));
        if (r->y + r->height < y)
            lo = mid + 1;
        else
            hi = mid;
    }
    if (lo >= rows->len)
        return -1;
    Row *r = static_cast<Row *> (g_ptr_array_index (rows, lo));
    return r->y <= y ? static_cast<int> (lo) : -1;
}

template <class Row> int find_entry (GPtrArray *rows, TavCalendarEntry *entry)
{
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        if (r->entry && (r->entry == entry ||
                         (TAV_IS_CALENDAR_ENTRY (r->entry) && tav_calendar_entry_is_equal (r->entry, entry))))
            return static_cast<int> (i);
    }
    return -1;
}

template <class Row> int find_header (GPtrArray *rows, const TavDate *date)
{
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        if (is_header (r) && tav_date_compare (&r->date, date) == 0)
            return static_cast<int> (i);
    }
    return -1;
}

template <class Row> int count_entries (GPtrArray *rows)
{
    int n = 0;
    for (guint i = 0; i < rows->len; i++)
        if (is_entry (static_cast<Row *> (g_ptr_array_index (rows, i))))
            n++;
    return n;
}

/* Headers that stand over nothing: the last row, or followed by another
 * header. Returns the index of one, or -1. */
template <class Row> int empty_header (GPtrArray *rows)
{
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        if (!is_header (r))
            continue;
        if (i + 1 == rows->len)
            return static_cast<int> (i);
        if (is_header (static_cast<Row *> (g_ptr_array_index (rows, i + 1))))
            return static_cast<int> (i);
    }
    return -1;
}

template <class Row> void headers_around (GPtrArray *rows, int offset_y, int y, int *before, int *after)
{
    *before = -1;
    *after = -1;
    for (guint i = 0; i < rows->len; i++) {
        Row *r = static_cast<Row *> (g_ptr_array_index (rows, i));
        if (!is_header (r))
            continue;
        const int bottom = r->y - offset_y + r->height;
        if (bottom <= y)
            *before = static_cast<int> (i);
        if (*after < 0 && y <= bottom)
            *after = static_cast<int> (i);
    }
}

template <class List> void free_caches (List *list)
{
    for (GdkPixbuf *&icon : list->color_icons)
        if (icon) {
            release_object (icon);
            icon = nullptr;
        }
    for (gchar *&name : list->detail_images)
        g_clear_pointer (&name, g_free);
    for (GdkPixmap *&pixmap : list->detail_pixmaps)
        if (pixmap) {
            g_object_unref (pixmap);
            pixmap = nullptr;
        }
}

} // namespace tav::rows

#endif /* TAV_ENTRY_ROWS_H */
