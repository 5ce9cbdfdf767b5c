/* The agenda and day row lists fed random rows, removals and re-sorts: the
 * rows stand in the order of the ordering function, and their offsets
 * increase, each row starting where the one above ends. */
#include "FuzzSupport.h"

#include "TavAgendaViewPrivate.h"
#include "TavDayViewPrivate.h"

#include <calendarui.h>

#include <string>
#include <vector>

using tav::fuzz::Input;

namespace {

struct Agenda {
    using Row = AgendaEntry;
    using List = AgendaEntryList;
    static List *make () { return agenda_entry_list_new (); }
    static void add (List *l, Row *r) { agenda_entry_list_add_agenda_entry (l, r); }
    static void sort (List *l) { agenda_entry_list_sort (l); }
    static void remove (List *l, int n) { agenda_entry_list_remove (l, n); }
    static void prune (List *l) { agenda_entry_list_remove_headers_if_empty (l); }
    static int count (List *l) { return agenda_entry_list_get_n_entry (l); }
    static Row *at (List *l, int n) { return agenda_entry_list_get_agenda_entry (l, n); }
    static void rect (List *l, int n, GdkRectangle *r) { agenda_entry_list_get_cell_rect (l, n, r); }
    static int height (List *l) { return agenda_entry_list_get_height (l); }
    static int compare (Row *a, Row *b) { return tav_agenda_entry_compare (a, b); }
    static void free (List *l) { agenda_entry_list_free (l); }
};

struct Day {
    using Row = DayEntry;
    using List = DayEntryList;
    static List *make () { return day_entry_list_new (); }
    static void add (List *l, Row *r) { day_entry_list_add_day_entry (l, r); }
    static void sort (List *l) { day_entry_list_sort (l); }
    static void remove (List *l, int n) { day_entry_list_remove (l, n); }
    static void prune (List *l) { day_entry_list_remove_headers_if_empty (l); }
    static int count (List *l) { return day_entry_list_get_n_entry (l); }
    static Row *at (List *l, int n) { return day_entry_list_get_day_entry (l, n); }
    static void rect (List *l, int n, GdkRectangle *r) { day_entry_list_get_cell_rect (l, n, r); }
    static int height (List *l) { return day_entry_list_get_height (l); }
    static int compare (Row *a, Row *b) { return tav_day_entry_compare (&a, &b); }
    static void free (List *l) { day_entry_list_free (l); }
};

template <class Row> std::string describe (const Row *r)
{
    char buf[160];
    g_snprintf (buf, sizeof buf, "[%s %d-%d %02d:%02d%s%s days %d '%s' created %d]",
                r->entry ? (TAV_IS_CALENDAR_TASK (r->entry) ? "task" : "event") : r->is_button ? "button" : "header",
                r->date.month + 1, r->date.day, r->start_time.hour, r->start_time.minute, r->all_day ? " all-day" : "",
                r->multi_days ? " multi" : "", r->n_days, r->title,
                r->entry ? (int) tav_calendar_entry_get_created_time (r->entry) : -1);
    return buf;
}

template <class Row> bool both_all_day (const Row *a, const Row *b)
{
    auto all_day = [] (const Row *r) { return r->entry && !r->multi_days && r->all_day; };
    return all_day (a) && all_day (b) && tav_date_compare (&a->date, &b->date) == 0;
}

template <class L> void run (Input &in, const std::vector<TavCalendarEntry *> &pool)
{
    using Row = typename L::Row;
    typename L::List *list = L::make ();
    unsigned headers = 0, buttons = 0;
    for (int op = 0; op < 150 && !in.empty (); op++) {
        const uint8_t kind = in.byte ();
        if ((kind & 7) == 7 && L::count (list) > 0) {
            L::remove (list, in.range (0, L::count (list) - 1));
            L::prune (list);
            continue;
        }
        const bool header = (kind & 3) == 0, button = (kind & 3) == 1;
        const int day = in.range (1, 28);
        /* A day has one header and one insert button, as in the views. */
        if (header || button) {
            const unsigned bit = 1u << day;
            unsigned &seen = button ? buttons : headers;
            if (seen & bit)
                continue;
            seen |= bit;
        }
        Row *r = g_new0 (Row, 1);
        TavCalendarEntry *e = header || button ? nullptr : pool[in.byte () % pool.size ()];
        r->entry = e ? TAV_CALENDAR_ENTRY (g_object_ref (e)) : nullptr;
        r->date = r->start_date = { 2009, 2, day };
        r->start_time = { in.range (0, 23), in.range (0, 59) };
        r->is_button = button;
        r->all_day = (kind >> 3) & 1;
        r->multi_days = (kind >> 4) & 1;
        r->n_days = r->multi_days ? in.range (2, 9) : 1;
        r->title = g_strdup_printf ("%c%d", "aBcD"[(kind >> 5) & 3], in.byte () % 4);
        r->height = e || button ? AGENDA_ROW_HEIGHT : AGENDA_HEADER_HEIGHT;
        L::add (list, r);
        if (kind & 0x80)
            L::sort (list);
    }
    L::sort (list);
    const int n = L::count (list);
    int y = -1, total = 0;
    GdkRectangle first = {};
    for (int i = 0; i < n; i++) {
        GdkRectangle rect;
        L::rect (list, i, &rect);
        if (i == 0)
            first = rect;
        FUZZ_CHECK (rect.y > y, "row %d at y %d, the row above at %d", i, rect.y, y);
        FUZZ_CHECK (rect.y == first.y + total, "row %d at y %d, rows above end at %d", i, rect.y, first.y + total);
        y = rect.y;
        total += L::at (list, i)->height;
        /* All-day rows of a day are ordered by a relation that is not
         * transitive (a birthday against a plain event by creation, each
         * against a task by kind): they keep the order of one-by-one
         * insertion, which a removal between them may leave unsorted. */
        if (i > 0 && !(both_all_day (L::at (list, i - 1), L::at (list, i))))
            FUZZ_CHECK (L::compare (L::at (list, i - 1), L::at (list, i)) <= 0, "rows %d %s and %d %s out of order", i - 1,
                        describe (L::at (list, i - 1)).c_str (), i, describe (L::at (list, i)).c_str ());
    }
    FUZZ_CHECK (L::height (list) == total, "list height %d, rows %d", L::height (list), total);
    L::free (list);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size)
{
    tav::fuzz::quiet_logs ();
    /* Events, tasks and birthdays with creation times that tie now and then. */
    static std::vector<TavCalendarEntry *> pool = [] {
        std::vector<TavCalendarEntry *> v;
        for (int i = 0; i < 12; i++) {
            GType type = i % 4 == 3 ? TAV_TYPE_CALENDAR_TASK : TAV_TYPE_CALENDAR_ENTRY;
            auto *e = TAV_CALENDAR_ENTRY (g_object_new (type, NULL));
            g_object_set (e, "created-time", (gint64) (i / 2), "has-birthday", (gboolean) (i % 4 == 2), NULL);
            v.push_back (e);
        }
        return v;
    }();
    Input in (data, size);
    if (in.byte () & 1)
        run<Agenda> (in, pool);
    else
        run<Day> (in, pool);
    return 0;
}
