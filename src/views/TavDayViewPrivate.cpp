/* libcalendarui - the day view's rows and their order */

#include "TavDayViewPrivate.h"

#include "TavEntryRows.h"

using namespace tav::rows;

namespace tav::rows {
template <> struct RowTraits<DayEntry> {
    static constexpr int kAllDayBytes = 14;
    static constexpr int kLineBytes = 12;
    static constexpr const char *kSetFromEntryFunc = "day_entry_set_from_entry";
    static constexpr int kSetFromEntryLine = 251;
    static constexpr const char *kCreateColorFunc = "day_entry_list_create_color";
    static constexpr int kCreateColorLine = 198;
    static TavCalendarProcessor *processor;
};
TavCalendarProcessor *RowTraits<DayEntry>::processor = nullptr;
template <> inline bool is_no_entries_row (const DayEntry *r)
{
    return !r->entry && !r->is_button && r->is_no_entries;
}
} // namespace tav::rows

#define CHECK_LIST(list) ROWS_ASSERT ((list) != NULL, "entry_list != NULL")
#define CHECK_ROW(row) ROWS_ASSERT ((row) != NULL, "dentry != NULL")
#define CHECK_DEST(dest) ROWS_ASSERT ((dest) != NULL, "dest != NULL")
#define CHECK_INDEX(list, n) \
    ROWS_ASSERT ((n) >= 0 && static_cast<guint> (n) < (list)->entries->len, "n >= 0 && n < entry_list->entries->len")

namespace {

RowIndex &index_of (DayEntryList *list)
{
    return *static_cast<RowIndex *> (list->index);
}

void ensure_offsets (DayEntryList *list)
{
    if (list->needs_sort)
        day_entry_list_sort (list);
    if (list->needs_offsets) {
        compute_offsets<DayEntry> (list->entries);
        list->needs_offsets = FALSE;
    }
}

} // namespace

GType day_entry_detail_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { DayEntryDetailFirst, "DayEntryDetailFirst", "first" },
            { DayEntryDetailMiddle, "DayEntryDetailMiddle", "middle" },
            { DayEntryDetailLast, "DayEntryDetailLast", "last" },
            { DayEntryDetailFirstLast, "DayEntryDetailFirstLast", "firstlast" },
            { DayEntryDetailPressed, "DayEntryDetailPressed", "pressed" },
            { DayEntryDetailNDetails, "DayEntryDetailNDetails", "ndetails" },
            { 0, NULL, NULL },
        };
        g_once_init_leave (&type, g_enum_register_static ("DayEntryDetail", values));
    }
    return type;
}

/* Records ----------------------------------------------------------------- */

DayEntry *day_entry_new (DayEntryList *list, TavCalendarEntry *entry, const char *icon_name, int time_format)
{
    CHECK_LIST (list);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    DayEntry *dentry = g_new0 (DayEntry, 1);
    day_entry_set_from_entry (list, dentry, entry, icon_name, time_format);
    return dentry;
}

void day_entry_set_from_entry (DayEntryList *list, DayEntry *dentry, TavCalendarEntry *entry,
                                  const char *icon_name, int time_format)
{
    CHECK_LIST (list);
    CHECK_ROW (dentry);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    set_from_entry (list, dentry, entry, icon_name, time_format);
}

DayEntry *day_entry_new_header (const char *title, const TavDate *date)
{
    ROWS_ASSERT (date != NULL, "date != NULL");
    return new_header<DayEntry> (title, date);
}

DayEntry *day_entry_new_button (const char *title, const char *icon_name, const TavDate *date)
{
    ROWS_ASSERT (date != NULL, "date != NULL");
    return new_button<DayEntry> (title, icon_name, date);
}

void day_entry_free (DayEntry *dentry)
{
    CHECK_ROW (dentry);
    free_row (dentry);
}

void day_entry_refresh_displayed_times (DayEntry *dentry, int time_format, gboolean shifted)
{
    refresh_displayed_times (dentry, time_format, shifted);
}

const char *day_entry_get_bg_detail (DayEntry *dentry)
{
    CHECK_ROW (dentry);
    return bg_detail (dentry);
}

const char *day_entry_button_get_bg_detail (gboolean pressed)
{
    return button_bg_detail (pressed);
}

void day_entry_get_cell_rect (DayEntryList *list, DayEntry *dentry, GdkRectangle *dest)
{
    CHECK_LIST (list);
    CHECK_ROW (dentry);
    CHECK_DEST (dest);
    ensure_offsets (list);
    row_rect (list, dentry, dest);
}

void day_entry_get_cell_rect_relative (DayEntryList *list, DayEntry *dentry, GdkRectangle *dest)
{
    day_entry_get_cell_rect (list, dentry, dest);
    dest->x -= list->offset_x;
    dest->y -= list->offset_y;
}

int tav_day_entry_compare (gconstpointer a, gconstpointer b)
{
    g_return_val_if_fail (a != NULL && b != NULL, 0);
    return compare_rows (*static_cast<DayEntry *const *> (a), *static_cast<DayEntry *const *> (b), false);
}

/* Lists ------------------------------------------------------------------- */

DayEntryList *day_entry_list_new (void)
{
    DayEntryList *list = g_new0 (DayEntryList, 1);
    list->entries = g_ptr_array_sized_new (2);
    list->index = new RowIndex ();
    return list;
}

void day_entry_list_drop_all_entries (DayEntryList *list)
{
    CHECK_LIST (list);
    if (list->entries->len == 0)
        return;
    for (guint i = 0; i < list->entries->len; i++)
        free_row (static_cast<DayEntry *> (g_ptr_array_index (list->entries, i)));
    g_ptr_array_set_size (list->entries, 0);
    index_of (list).clear ();
    list->needs_offsets = FALSE;
    list->needs_sort = FALSE;
}

void day_entry_list_free (DayEntryList *list)
{
    CHECK_LIST (list);
    day_entry_list_drop_all_entries (list);
    g_ptr_array_free (list->entries, TRUE);
    free_caches (list);
    delete &index_of (list);
    g_free (list);
}

void day_entry_list_add_day_entry (DayEntryList *list, DayEntry *dentry)
{
    CHECK_LIST (list);
    CHECK_ROW (dentry);
    g_ptr_array_add (list->entries, dentry);
    index_of (list).count (dentry, +1);
    list->needs_sort = TRUE;
    list->needs_offsets = TRUE;
}

void day_entry_list_remove (DayEntryList *list, int n)
{
    CHECK_LIST (list);
    CHECK_INDEX (list, n);
    DayEntry *dentry = static_cast<DayEntry *> (g_ptr_array_remove_index (list->entries, static_cast<guint> (n)));
    index_of (list).count (dentry, -1);
    free_row (dentry);
    list->needs_offsets = TRUE;
}

void day_entry_list_remove_headers_if_empty (DayEntryList *list)
{
    for (int n = empty_header<DayEntry> (list->entries); n >= 0; n = empty_header<DayEntry> (list->entries))
        day_entry_list_remove (list, n);
}

void day_entry_list_sort (DayEntryList *list)
{
    CHECK_LIST (list);
    if (!list->needs_sort || list->entries->len < 2)
        return;
    g_ptr_array_sort (list->entries, tav_day_entry_compare);
    mark_groups<DayEntry> (list->entries);
    list->needs_offsets = TRUE;
    list->needs_sort = FALSE;
}

int day_entry_list_get_n_entry (DayEntryList *list)
{
    CHECK_LIST (list);
    return static_cast<int> (list->entries->len);
}

DayEntry *day_entry_list_get_day_entry (DayEntryList *list, int n)
{
    CHECK_LIST (list);
    CHECK_INDEX (list, n);
    return static_cast<DayEntry *> (row_at (list, n));
}

int day_entry_list_get_entries_count (DayEntryList *list)
{
    CHECK_LIST (list);
    return index_of (list).entries;
}

gboolean day_entry_list_has_header (DayEntryList *list, const TavDate *date)
{
    CHECK_LIST (list);
    ROWS_ASSERT (date != NULL, "date != NULL");
    return index_of (list).has_header (*date);
}

int day_entry_list_find_entry (DayEntryList *list, TavCalendarEntry *entry)
{
    CHECK_LIST (list);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    return find_entry<DayEntry> (list->entries, entry);
}

int day_entry_list_find_header (DayEntryList *list, const TavDate *date)
{
    CHECK_LIST (list);
    ROWS_ASSERT (date != NULL, "date != NULL");
    return find_header<DayEntry> (list->entries, date);
}

int day_entry_list_find_no_entry_header (DayEntryList *list)
{
    CHECK_LIST (list);
    if (index_of (list).no_entries == 0)
        return -1;
    for (guint i = 0; i < list->entries->len; i++) {
        DayEntry *r = static_cast<DayEntry *> (g_ptr_array_index (list->entries, i));
        if (is_header (r) && r->is_no_entries)
            return static_cast<int> (i);
    }
    return -1;
}

int day_entry_list_get_height (DayEntryList *list)
{
    CHECK_LIST (list);
    ensure_offsets (list);
    return list_height<DayEntry> (list->entries);
}

void day_entry_list_get_cell_rect (DayEntryList *list, int n, GdkRectangle *dest)
{
    CHECK_LIST (list);
    CHECK_DEST (dest);
    ensure_offsets (list);
    CHECK_INDEX (list, n);
    row_rect (list, static_cast<DayEntry *> (row_at (list, n)), dest);
}

void day_entry_list_get_cell_rect_relative (DayEntryList *list, int n, GdkRectangle *dest)
{
    day_entry_list_get_cell_rect (list, n, dest);
    dest->x -= list->offset_x;
    dest->y -= list->offset_y;
}

void day_entry_list_get_headers (DayEntryList *list, int y, int *header_before, int *header_after)
{
    CHECK_LIST (list);
    ROWS_ASSERT (header_before != NULL && header_after != NULL, "header_before != NULL && header_after != NULL");
    ensure_offsets (list);
    headers_around<DayEntry> (list->entries, list->offset_y, y, header_before, header_after);
}

void day_entry_list_set_visible_width (DayEntryList *list, int width)
{
    CHECK_LIST (list);
    list->visible_width = width;
}

void day_entry_list_set_offset (DayEntryList *list, int x, int y)
{
    CHECK_LIST (list);
    list->offset_x = x;
    list->offset_y = y;
}

int day_entry_list_row_at (DayEntryList *list, int y)
{
    CHECK_LIST (list);
    ensure_offsets (list);
    return row_at_y<DayEntry> (list->entries, y + list->offset_y);
}
