/* libcalendarui - the agenda view's rows and their order */

#include "TavAgendaViewPrivate.h"

#include "TavEntryRows.h"

using namespace tav::rows;

namespace tav::rows {
template <> struct RowTraits<AgendaEntry> {
    static constexpr int kAllDayBytes = 40;
    static constexpr int kLineBytes = 38;
    static constexpr const char *kSetFromEntryFunc = "agenda_entry_set_from_entry";
    static constexpr int kSetFromEntryLine = 251;
    static constexpr const char *kCreateColorFunc = "agenda_entry_list_create_color";
    static constexpr int kCreateColorLine = 215;
    static TavCalendarProcessor *processor;
};
TavCalendarProcessor *RowTraits<AgendaEntry>::processor = nullptr;
template <> inline bool is_no_entries_row (const AgendaEntry *r)
{
    return !r->entry && !r->is_button && r->start_time.hour == kNoEntriesHour;
}
} // namespace tav::rows

#define CHECK_LIST(list) ROWS_ASSERT ((list) != NULL, "entry_list != NULL")
#define CHECK_ROW(row) ROWS_ASSERT ((row) != NULL, "aentry != NULL")
#define CHECK_DEST(dest) ROWS_ASSERT ((dest) != NULL, "dest != NULL")
#define CHECK_INDEX(list, n) \
    ROWS_ASSERT ((n) >= 0 && static_cast<guint> (n) < (list)->entries->len, "n >= 0 && n < entry_list->entries->len")

namespace {

/* The list's C++ side: rows not yet in order, and the lookup index. */
struct Side {
    std::vector<AgendaEntry *> pending;
    RowIndex index;
};

Side &side_of (AgendaEntryList *list)
{
    return *static_cast<Side *> (list->pending);
}

std::vector<AgendaEntry *> &pending_of (AgendaEntryList *list)
{
    return side_of (list).pending;
}

/* Puts the rows added since the last read into their places, rebuilding
 * the array and the list once for the whole batch. */
void settle (AgendaEntryList *list)
{
    auto &pending = pending_of (list);
    if (pending.empty ())
        return;
    std::vector<AgendaEntry *> rows (reinterpret_cast<AgendaEntry **> (list->entries->pdata),
                                     reinterpret_cast<AgendaEntry **> (list->entries->pdata) + list->entries->len);
    std::vector<AgendaEntry *> ordered = merge_in_order (
        rows, std::move (pending), [] (const AgendaEntry *a, const AgendaEntry *b) { return compare_rows (a, b, true); });
    pending.clear ();

    g_ptr_array_set_size (list->entries, 0);
    g_list_free (list->sorted);
    list->sorted = nullptr;
    for (auto it = ordered.rbegin (); it != ordered.rend (); ++it)
        list->sorted = g_list_prepend (list->sorted, *it);
    for (AgendaEntry *r : ordered)
        g_ptr_array_add (list->entries, r);
}

void ensure_offsets (AgendaEntryList *list)
{
    settle (list);
    if (list->needs_details)
        agenda_entry_list_sort (list);
    if (list->needs_offsets) {
        compute_offsets<AgendaEntry> (list->entries);
        list->needs_offsets = FALSE;
    }
}

} // namespace

GType agenda_entry_detail_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { AgendaEntryDetailFirst, "AgendaEntryDetailFirst", "first" },
            { AgendaEntryDetailMiddle, "AgendaEntryDetailMiddle", "middle" },
            { AgendaEntryDetailLast, "AgendaEntryDetailLast", "last" },
            { AgendaEntryDetailFirstLast, "AgendaEntryDetailFirstLast", "firstlast" },
            { AgendaEntryDetailPressed, "AgendaEntryDetailPressed", "pressed" },
            { AgendaEntryDetailNDetails, "AgendaEntryDetailNDetails", "ndetails" },
            { 0, NULL, NULL },
        };
        g_once_init_leave (&type, g_enum_register_static ("AgendaEntryDetail", values));
    }
    return type;
}

/* Records ----------------------------------------------------------------- */

AgendaEntry *agenda_entry_new (AgendaEntryList *list, TavCalendarEntry *entry, const char *icon_name, int time_format)
{
    CHECK_LIST (list);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    AgendaEntry *aentry = g_new0 (AgendaEntry, 1);
    agenda_entry_set_from_entry (list, aentry, entry, icon_name, time_format);
    return aentry;
}

void agenda_entry_set_from_entry (AgendaEntryList *list, AgendaEntry *aentry, TavCalendarEntry *entry,
                                  const char *icon_name, int time_format)
{
    CHECK_LIST (list);
    CHECK_ROW (aentry);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    set_from_entry (list, aentry, entry, icon_name, time_format);
}

AgendaEntry *agenda_entry_new_header (const char *title, const TavDate *date)
{
    ROWS_ASSERT (date != NULL, "date != NULL");
    return new_header<AgendaEntry> (title, date);
}

AgendaEntry *agenda_entry_new_button (const char *title, const char *icon_name, const TavDate *date)
{
    ROWS_ASSERT (date != NULL, "date != NULL");
    return new_button<AgendaEntry> (title, icon_name, date);
}

void agenda_entry_free (AgendaEntry *aentry)
{
    CHECK_ROW (aentry);
    free_row (aentry);
}

void agenda_entry_refresh_displayed_times (AgendaEntry *aentry, int time_format, gboolean shifted)
{
    refresh_displayed_times (aentry, time_format, shifted);
}

const char *agenda_entry_get_bg_detail (AgendaEntry *aentry)
{
    CHECK_ROW (aentry);
    return bg_detail (aentry);
}

const char *agenda_entry_button_get_bg_detail (gboolean pressed)
{
    return button_bg_detail (pressed);
}

void agenda_entry_get_cell_rect (AgendaEntryList *list, AgendaEntry *aentry, GdkRectangle *dest)
{
    CHECK_LIST (list);
    CHECK_ROW (aentry);
    CHECK_DEST (dest);
    ensure_offsets (list);
    row_rect (list, aentry, dest);
}

void agenda_entry_get_cell_rect_relative (AgendaEntryList *list, AgendaEntry *aentry, GdkRectangle *dest)
{
    agenda_entry_get_cell_rect (list, aentry, dest);
    dest->x -= list->offset_x;
    dest->y -= list->offset_y;
}

int tav_agenda_entry_compare (const AgendaEntry *a, const AgendaEntry *b)
{
    g_return_val_if_fail (a != NULL && b != NULL, 0);
    return compare_rows (a, b, true);
}

/* Lists ------------------------------------------------------------------- */

AgendaEntryList *agenda_entry_list_new (void)
{
    AgendaEntryList *list = g_new0 (AgendaEntryList, 1);
    list->entries = g_ptr_array_sized_new (128);
    list->pending = new Side ();
    return list;
}

void agenda_entry_list_drop_all_entries (AgendaEntryList *list)
{
    CHECK_LIST (list);
    auto &pending = pending_of (list);
    if (list->entries->len == 0 && pending.empty ())
        return;
    for (guint i = 0; i < list->entries->len; i++)
        free_row (static_cast<AgendaEntry *> (g_ptr_array_index (list->entries, i)));
    for (AgendaEntry *r : pending)
        free_row (r);
    pending.clear ();
    side_of (list).index.clear ();
    g_list_free (list->sorted);
    list->sorted = nullptr;
    g_ptr_array_set_size (list->entries, 0);
    list->needs_offsets = FALSE;
    list->needs_details = FALSE;
}

void agenda_entry_list_free (AgendaEntryList *list)
{
    CHECK_LIST (list);
    agenda_entry_list_drop_all_entries (list);
    g_ptr_array_free (list->entries, TRUE);
    free_caches (list);
    delete &side_of (list);
    g_free (list);
}

void agenda_entry_list_add_agenda_entry (AgendaEntryList *list, AgendaEntry *aentry)
{
    CHECK_LIST (list);
    CHECK_ROW (aentry);
    pending_of (list).push_back (aentry);
    side_of (list).index.count (aentry, +1);
    list->needs_offsets = TRUE;
    list->needs_details = FALSE;
}

void agenda_entry_list_remove (AgendaEntryList *list, int n)
{
    CHECK_LIST (list);
    settle (list);
    CHECK_INDEX (list, n);
    AgendaEntry *aentry = static_cast<AgendaEntry *> (g_ptr_array_remove_index (list->entries, static_cast<guint> (n)));
    list->sorted = g_list_remove (list->sorted, aentry);
    side_of (list).index.count (aentry, -1);
    free_row (aentry);
    list->needs_offsets = TRUE;
}

void agenda_entry_list_remove_headers_if_empty (AgendaEntryList *list)
{
    settle (list);
    for (int n = empty_header<AgendaEntry> (list->entries); n >= 0; n = empty_header<AgendaEntry> (list->entries))
        agenda_entry_list_remove (list, n);
}

void agenda_entry_list_sort (AgendaEntryList *list)
{
    CHECK_LIST (list);
    settle (list);
    if (list->entries->len < 2)
        return;
    mark_groups<AgendaEntry> (list->entries);
    list->needs_offsets = TRUE;
    list->needs_details = FALSE;
}

int agenda_entry_list_get_n_entry (AgendaEntryList *list)
{
    CHECK_LIST (list);
    settle (list);
    return static_cast<int> (list->entries->len);
}

AgendaEntry *agenda_entry_list_get_agenda_entry (AgendaEntryList *list, int n)
{
    CHECK_LIST (list);
    settle (list);
    CHECK_INDEX (list, n);
    return static_cast<AgendaEntry *> (row_at (list, n));
}

gboolean agenda_entry_list_get_entries_count (AgendaEntryList *list)
{
    CHECK_LIST (list);
    return side_of (list).index.entries > 0;
}

gboolean agenda_entry_list_has_header (AgendaEntryList *list, const TavDate *date)
{
    CHECK_LIST (list);
    ROWS_ASSERT (date != NULL, "date != NULL");
    return side_of (list).index.has_header (*date);
}

int agenda_entry_list_find_entry (AgendaEntryList *list, TavCalendarEntry *entry)
{
    CHECK_LIST (list);
    ROWS_ASSERT (entry != NULL, "entry != NULL");
    settle (list);
    return find_entry<AgendaEntry> (list->entries, entry);
}

int agenda_entry_list_find_header (AgendaEntryList *list, const TavDate *date)
{
    CHECK_LIST (list);
    ROWS_ASSERT (date != NULL, "date != NULL");
    settle (list);
    return find_header<AgendaEntry> (list->entries, date);
}

int agenda_entry_list_find_no_entry_header (AgendaEntryList *list)
{
    CHECK_LIST (list);
    if (side_of (list).index.no_entries == 0)
        return -1;
    settle (list);
    for (guint i = 0; i < list->entries->len; i++) {
        AgendaEntry *r = static_cast<AgendaEntry *> (g_ptr_array_index (list->entries, i));
        if (is_header (r) && r->start_time.hour == kNoEntriesHour)
            return static_cast<int> (i);
    }
    return -1;
}

int agenda_entry_list_get_height (AgendaEntryList *list)
{
    CHECK_LIST (list);
    ensure_offsets (list);
    return list_height<AgendaEntry> (list->entries);
}

void agenda_entry_list_get_cell_rect (AgendaEntryList *list, int n, GdkRectangle *dest)
{
    CHECK_LIST (list);
    CHECK_DEST (dest);
    ensure_offsets (list);
    CHECK_INDEX (list, n);
    row_rect (list, static_cast<AgendaEntry *> (row_at (list, n)), dest);
}

void agenda_entry_list_get_cell_rect_relative (AgendaEntryList *list, int n, GdkRectangle *dest)
{
    agenda_entry_list_get_cell_rect (list, n, dest);
    dest->x -= list->offset_x;
    dest->y -= list->offset_y;
}

void agenda_entry_list_get_headers (AgendaEntryList *list, int y, int *header_before, int *header_after)
{
    CHECK_LIST (list);
    ROWS_ASSERT (header_before != NULL && header_after != NULL, "header_before != NULL && header_after != NULL");
    ensure_offsets (list);
    headers_around<AgendaEntry> (list->entries, list->offset_y, y, header_before, header_after);
}

void agenda_entry_list_set_visible_width (AgendaEntryList *list, int width)
{
    CHECK_LIST (list);
    list->visible_width = width;
}

void agenda_entry_list_set_offset (AgendaEntryList *list, int x, int y)
{
    CHECK_LIST (list);
    list->offset_x = x;
    list->offset_y = y;
}

int agenda_entry_list_row_at (AgendaEntryList *list, int y)
{
    CHECK_LIST (list);
    ensure_offsets (list);
    return row_at_y<AgendaEntry> (list->entries, y + list->offset_y);
}
