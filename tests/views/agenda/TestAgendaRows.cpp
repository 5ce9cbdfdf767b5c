/* The agenda and day row lists without a display: the order of rows rule
 * by rule, batched ordering against one-by-one sorted insertion, the
 * group marks, offsets and lookups, and the time column texts. */

#include "TestSupport.h"
#include "../ViewTestSupport.h"
#include "TavAgendaViewPrivate.h"
#include "TavDayViewPrivate.h"
#include "TavGPtr.h"

#include <random>
#include <string>
#include <vector>

using namespace tav::test;

namespace {

constexpr TavDate kDay { 2009, 2, 10 };

/* A row of either kind, built field by field. */
template <class Row> struct RowSpec {
    TavCalendarEntry *entry = nullptr;  /* borrowed; the row takes a reference */
    TavDate date = kDay;
    int hour = 0, minute = 0;
    bool button = false, all_day = false, multi = false;
    int n_days = 1;
    const char *title = "";

    Row *make () const
    {
        Row *r = g_new0 (Row, 1);
        r->entry = entry ? TAV_CALENDAR_ENTRY (g_object_ref (entry)) : nullptr;
        r->date = r->start_date = date;
        r->start_time = { hour, minute };
        r->is_button = button;
        r->all_day = all_day;
        r->multi_days = multi;
        r->n_days = n_days;
        r->title = g_strdup (title);
        r->height = entry || button ? 70 : 40;
        return r;
    }
};

TavCalendarEntry *entry_made (GType type, int created, bool bday = false)
{
    TavCalendarEntry *e = TAV_CALENDAR_ENTRY (g_object_new (type, NULL));
    g_object_set (e, "created-time", created, "has-birthday", (gboolean) bday, NULL);
    return e;
}

struct Pool {
    tav::GRefPtr<TavCalendarEntry> early = tav::adoptGRef (entry_made (TAV_TYPE_CALENDAR_ENTRY, 100));
    tav::GRefPtr<TavCalendarEntry> late = tav::adoptGRef (entry_made (TAV_TYPE_CALENDAR_ENTRY, 900));
    tav::GRefPtr<TavCalendarEntry> task = tav::adoptGRef (entry_made (TAV_TYPE_CALENDAR_TASK, 500));
    tav::GRefPtr<TavCalendarEntry> bday_early = tav::adoptGRef (entry_made (TAV_TYPE_CALENDAR_ENTRY, 50, true));
    tav::GRefPtr<TavCalendarEntry> bday_late = tav::adoptGRef (entry_made (TAV_TYPE_CALENDAR_ENTRY, 950, true));
};

int sign (int v)
{
    return (v > 0) - (v < 0);
}

template <class Row> int agenda_or_day_compare (Row *a, Row *b);
template <> int agenda_or_day_compare (AgendaEntry *a, AgendaEntry *b)
{
    return tav_agenda_entry_compare (a, b);
}
template <> int agenda_or_day_compare (DayEntry *a, DayEntry *b)
{
    return tav_day_entry_compare (&a, &b);
}

template <class Row> void free_row (Row *r);
template <> void free_row (AgendaEntry *r) { agenda_entry_free (r); }
template <> void free_row (DayEntry *r) { day_entry_free (r); }

/* One rule per group of rows; expected sign of compare (a, b) for the
 * agenda and for the day list (which differ only in header against
 * button). */
template <class Row> void check_order_rules ()
{
    Pool p;
    using S = RowSpec<Row>;
    TavDate next = kDay;
    next.day++;
    struct Case {
        const char *rule;
        S a, b;
        int agenda, day;
    };
    const Case cases[] = {
        { "1 date first", S { p.late.get (), kDay }, S { nullptr, next }, -1, -1 },
        { "2 header before entry", S { nullptr }, S { p.early.get () }, -1, -1 },
        { "2 button before entry", S { nullptr, kDay, 0, 0, true }, S { p.early.get (), kDay, 0, 0 }, -1, -1 },
        { "3 header then button", S { nullptr }, S { nullptr, kDay, 0, 0, true }, -1, 0 },
        { "3 button after header", S { nullptr, kDay, 0, 0, true }, S { nullptr }, 1, 0 },
        { "3 header 00:00 before no-events 23:00", S { nullptr }, S { nullptr, kDay, 23 }, -1, -1 },
        { "3 button before no-events", S { nullptr, kDay, 0, 0, true }, S { nullptr, kDay, 23 }, -1, -1 },
        { "5 multi-day before single", S { p.late.get (), kDay, 9, 0, false, false, true, 2 },
          S { p.early.get (), kDay, 0, 0, false, true }, -1, -1 },
        { "5 longer span first", S { p.late.get (), kDay, 0, 0, false, false, true, 3 },
          S { p.early.get (), kDay, 0, 0, false, false, true, 2 }, -1, -1 },
        { "5 equal span by creation", S { p.early.get (), kDay, 0, 0, false, false, true, 2, "z" },
          S { p.late.get (), kDay, 0, 0, false, false, true, 2, "a" }, -1, -1 },
        { "6 all-day before timed", S { p.late.get (), kDay, 9, 0, false, true },
          S { p.early.get (), kDay, 8, 0 }, -1, -1 },
        { "6 timed by hour", S { p.late.get (), kDay, 8, 30 }, S { p.early.get (), kDay, 9, 0 }, -1, -1 },
        { "6 timed by minute", S { p.late.get (), kDay, 9, 5 }, S { p.early.get (), kDay, 9, 10 }, -1, -1 },
        { "6 same start by title, not creation", S { p.early.get (), kDay, 9, 0, false, false, false, 1, "b" },
          S { p.late.get (), kDay, 9, 0, false, false, false, 1, "a" }, 1, 1 },
        { "7 plain all-day before task", S { p.late.get (), kDay, 0, 0, false, true },
          S { p.task.get (), kDay, 0, 0, false, true }, -1, -1 },
        { "7 task before birthday", S { p.task.get (), kDay, 0, 0, false, true },
          S { p.bday_early.get (), kDay, 0, 0, false, true }, -1, -1 },
        { "7 birthday against plain by creation", S { p.bday_early.get (), kDay, 0, 0, false, true, false, 1, "z" },
          S { p.late.get (), kDay, 0, 0, false, true, false, 1, "a" }, -1, -1 },
        { "7 two birthdays by title", S { p.bday_early.get (), kDay, 0, 0, false, true, false, 1, "Zoe" },
          S { p.bday_late.get (), kDay, 0, 0, false, true, false, 1, "anna" }, 1, 1 },
        { "8 creation, earlier first", S { p.early.get (), kDay, 0, 0, false, true, false, 1, "z" },
          S { p.late.get (), kDay, 0, 0, false, true, false, 1, "a" }, -1, -1 },
        { "9 title, case folded", S { p.early.get (), kDay, 0, 0, false, true, false, 1, "apple" },
          S { p.early.get (), kDay, 0, 0, false, true, false, 1, "Banana" }, -1, -1 },
    };
    const bool agenda = std::is_same<Row, AgendaEntry>::value;
    for (const Case &c : cases) {
        Row *a = c.a.make (), *b = c.b.make ();
        EXPECT_EQ (sign (agenda_or_day_compare (a, b)), agenda ? c.agenda : c.day) << c.rule;
        EXPECT_EQ (sign (agenda_or_day_compare (b, a)), -(agenda ? c.agenda : c.day)) << c.rule << " (swapped)";
        free_row (a);
        free_row (b);
    }
}

TEST (AgendaRows, OrderRules)
{
    check_order_rules<AgendaEntry> ();
    check_order_rules<DayEntry> ();
}

/* Random rows over three days, every kind, few distinct keys so that ties
 * and the non-transitive all-day rules are common. */
AgendaEntry *random_row (std::mt19937 &rng, const std::vector<tav::GRefPtr<TavCalendarEntry>> &pool)
{
    static const char *const titles[] = { "a", "B", "c", "a" };
    RowSpec<AgendaEntry> s;
    s.date.day = kDay.day + static_cast<int> (rng () % 3);
    s.title = titles[rng () % 4];
    switch (rng () % 6) {
    case 0: s.hour = (rng () % 2) ? 23 : 0; break;
    case 1: s.button = true; break;
    case 2: s.entry = pool[rng () % pool.size ()].get (); s.multi = true; s.n_days = 2 + static_cast<int> (rng () % 2); break;
    case 3: case 4: s.entry = pool[rng () % pool.size ()].get (); s.all_day = true; break;
    default: s.entry = pool[rng () % pool.size ()].get (); s.hour = 8 + static_cast<int> (rng () % 2); s.minute = 15 * static_cast<int> (rng () % 2); break;
    }
    return s.make ();
}

TEST (AgendaRows, BatchedOrderEqualsOneByOneInsertion)
{
    std::vector<tav::GRefPtr<TavCalendarEntry>> pool;
    for (int i = 0; i < 12; i++)
        pool.push_back (tav::adoptGRef (entry_made (i % 3 == 0 ? TAV_TYPE_CALENDAR_TASK : TAV_TYPE_CALENDAR_ENTRY,
                                                    100 * (i % 4), i % 4 == 1)));
    for (unsigned seed = 1; seed <= 60; seed++) {
        std::mt19937 rng (seed);
        AgendaEntryList *list = agenda_entry_list_new ();
        GList *reference = nullptr;
        const int n = 20 + static_cast<int> (rng () % 120);
        for (int i = 0; i < n; i++) {
            AgendaEntry *r = random_row (rng, pool);
            reference = g_list_insert_sorted (reference, r, reinterpret_cast<GCompareFunc> (tav_agenda_entry_compare));
            agenda_entry_list_add_agenda_entry (list, r);
            if (rng () % 7 == 0)
                agenda_entry_list_get_n_entry (list); /* a read between batches */
        }
        ASSERT_EQ (agenda_entry_list_get_n_entry (list), n);
        int i = 0;
        for (GList *l = reference; l; l = l->next, i++)
            ASSERT_EQ (agenda_entry_list_get_agenda_entry (list, i), l->data) << "seed " << seed << " row " << i;
        i = 0;
        for (GList *l = list->sorted; l; l = l->next, i++)
            ASSERT_EQ (l->data, g_ptr_array_index (list->entries, i)) << "the list and the array agree";
        g_list_free (reference);
        agenda_entry_list_free (list);
    }
}

/* Rows of a list as "H" header, "N" no-events, "B" button, "E" entry,
 * with "<" first and ">" last marks. */
std::string shape (AgendaEntryList *list)
{
    std::string out;
    for (int i = 0; i < agenda_entry_list_get_n_entry (list); i++) {
        AgendaEntry *r = agenda_entry_list_get_agenda_entry (list, i);
        out += r->entry ? 'E' : r->is_button ? 'B' : r->start_time.hour == 23 ? 'N' : 'H';
        if (r->first)
            out += '<';
        if (r->last)
            out += '>';
    }
    return out;
}

TEST (AgendaRows, GroupsOffsetsAndLookups)
{
    Pool p;
    AgendaEntryList *list = agenda_entry_list_new ();
    int before = 0, after = 0;
    agenda_entry_list_get_headers (list, 0, &before, &after);
    EXPECT_EQ (before, -1);
    EXPECT_EQ (after, -1);
    EXPECT_EQ (agenda_entry_list_get_height (list), 0);
    EXPECT_FALSE (agenda_entry_list_get_entries_count (list));
    EXPECT_EQ (agenda_entry_list_find_entry (list, p.early.get ()), -1);
    EXPECT_EQ (agenda_entry_list_find_header (list, &kDay), -1);
    EXPECT_EQ (agenda_entry_list_find_no_entry_header (list), -1);

    TavDate next = kDay;
    next.day++;
    using S = RowSpec<AgendaEntry>;
    agenda_entry_list_add_agenda_entry (list, S { p.early.get (), kDay, 9 }.make ());
    agenda_entry_list_add_agenda_entry (list, S { nullptr, next }.make ());
    agenda_entry_list_add_agenda_entry (list, S { p.late.get (), kDay, 10 }.make ());
    agenda_entry_list_add_agenda_entry (list, S { nullptr, kDay, 0, 0, true }.make ());
    agenda_entry_list_add_agenda_entry (list, S { nullptr, kDay }.make ());
    agenda_entry_list_add_agenda_entry (list, S { p.task.get (), next, 0, 0, false, true }.make ());
    agenda_entry_list_sort (list);
    EXPECT_EQ (shape (list), "H<B<EE>HE<");
    EXPECT_TRUE (agenda_entry_list_get_entries_count (list));
    EXPECT_EQ (agenda_entry_list_find_entry (list, p.late.get ()), 3);
    EXPECT_EQ (agenda_entry_list_find_header (list, &next), 4);

    /* 40 + 70 + 70 + 70 + 40 + 70 */
    EXPECT_EQ (agenda_entry_list_get_height (list), 360);
    agenda_entry_list_set_visible_width (list, 500);
    agenda_entry_list_set_offset (list, 3, 100);
    GdkRectangle rect;
    agenda_entry_list_get_cell_rect (list, 4, &rect);
    EXPECT_EQ (std::vector<int> ({ rect.x, rect.y, rect.width, rect.height }), std::vector<int> ({ 16, 250, 500, 40 }));
    agenda_entry_list_get_cell_rect_relative (list, 4, &rect);
    EXPECT_EQ (std::vector<int> ({ rect.x, rect.y }), std::vector<int> ({ 13, 150 }));
    /* Rows under points (relative): edges belong to the upper row. */
    EXPECT_EQ (agenda_entry_list_row_at (list, -100), 0);
    EXPECT_EQ (agenda_entry_list_row_at (list, -60), 0);
    EXPECT_EQ (agenda_entry_list_row_at (list, -59), 1);
    EXPECT_EQ (agenda_entry_list_row_at (list, 259), 5);
    EXPECT_EQ (agenda_entry_list_row_at (list, 261), -1);
    agenda_entry_list_get_headers (list, 0, &before, &after);
    EXPECT_EQ (before, 0);
    EXPECT_EQ (after, 4);

    /* Removing the next day's only entry leaves its header over nothing. */
    agenda_entry_list_remove (list, 5);
    agenda_entry_list_remove_headers_if_empty (list);
    EXPECT_EQ (shape (list), "H<B<EE>");
    agenda_entry_list_remove (list, 2);
    agenda_entry_list_remove (list, 2);
    agenda_entry_list_remove_headers_if_empty (list);
    EXPECT_EQ (shape (list), "H<B<") << "a header over the button stays";
    agenda_entry_list_drop_all_entries (list);
    EXPECT_EQ (agenda_entry_list_get_n_entry (list), 0);
    agenda_entry_list_free (list);
}

TEST (AgendaRows, DayListSortsOnMeasure)
{
    Pool p;
    DayEntryList *list = day_entry_list_new ();
    using S = RowSpec<DayEntry>;
    day_entry_list_add_day_entry (list, S { p.late.get (), kDay, 10 }.make ());
    day_entry_list_add_day_entry (list, S { p.early.get (), kDay, 9 }.make ());
    DayEntry *none = S { nullptr, kDay, 23 }.make ();
    none->is_no_entries = TRUE;
    day_entry_list_add_day_entry (list, none);
    day_entry_list_add_day_entry (list, S { nullptr, kDay, 0, 0, true }.make ());
    EXPECT_EQ (day_entry_list_get_day_entry (list, 0)->entry, p.late.get ()) << "arrival order until measured";
    EXPECT_EQ (day_entry_list_get_entries_count (list), 2);
    EXPECT_EQ (day_entry_list_find_no_entry_header (list), 2);
    GdkRectangle rect;
    day_entry_list_get_cell_rect (list, 0, &rect);
    EXPECT_TRUE (day_entry_list_get_day_entry (list, 0)->is_button);
    EXPECT_EQ (day_entry_list_get_day_entry (list, 2)->entry, p.early.get ());
    EXPECT_EQ (day_entry_list_get_height (list), 70 + 40 + 70 + 70);
    day_entry_list_free (list);
}

TEST (AgendaRows, TimeColumnTexts)
{
    struct Case {
        const char *what;
        bool all_day;
        TavDate start, date, end;
        TavTime st, et, shown;
        int format;
        gboolean shifted;
        const char *agenda_start, *agenda_end, *day_start;
    };
    const TavDate d1 { 2009, 2, 10 }, d2 { 2009, 2, 11 }, d3 { 2009, 2, 12 };
    const Case cases[] = {
        { "all-day", true, d1, d1, d1, { 0, 0 }, { 0, 0 }, { 0, 0 }, 1, TRUE, "All day", "", "All day" },
        { "middle day", false, d1, d2, d3, { 9, 0 }, { 10, 0 }, { 9, 0 }, 1, FALSE, "All day", "", "All day" },
        { "00:00 to 23:59", false, d1, d1, d1, { 0, 0 }, { 23, 59 }, { 0, 0 }, 1, TRUE, "All day", "", "All day" },
        { "24 h shifted", false, d1, d2, d1, { 9, 30 }, { 11, 15 }, { 14, 30 }, 1, TRUE, "14:30", "16:15", "14:30" },
        { "unshifted", false, d1, d1, d1, { 9, 30 }, { 11, 15 }, { 14, 30 }, 1, FALSE, "09:30", "11:15", "09:30" },
        { "end hour not wrapped", false, d1, d2, d1, { 22, 0 }, { 23, 0 }, { 23, 30 }, 1, TRUE, "23:30", "24:00",
          "23:30" },
        { "12 h", false, d1, d1, d1, { 13, 5 }, { 14, 0 }, { 13, 5 }, 0, TRUE, " 1:05 pm", " 2:00 pm", " 1:05 pm" },
    };
    for (const Case &c : cases) {
        AgendaEntry a {};
        DayEntry d {};
        auto fill = [&c] (auto &r) {
            r.all_day = c.all_day, r.start_date = c.start, r.date = c.date, r.end_date = c.end;
            r.start_time = c.st, r.end_time = c.et, r.displayed_time = c.shown;
        };
        fill (a);
        fill (d);
        agenda_entry_refresh_displayed_times (&a, c.format, c.shifted);
        day_entry_refresh_displayed_times (&d, c.format, c.shifted);
        EXPECT_EQ (std::string (a.start_text) + "|" + a.end_text, std::string (c.agenda_start) + "|" + c.agenda_end)
            << c.what;
        EXPECT_EQ (std::string (d.start_text), c.day_start) << c.what;
    }
}

TEST (AgendaRows, FatalChecksNameTheirCondition)
{
    struct Case {
        const char *condition;
        void (*call) ();
    };
    const Case cases[] = {
        { "entry_list != NULL", [] { agenda_entry_list_get_height (nullptr); } },
        { "aentry != NULL", [] { agenda_entry_free (nullptr); } },
        { "dentry != NULL", [] { day_entry_free (nullptr); } },
        { "n >= 0 && n < entry_list->entries->len",
          [] { agenda_entry_list_get_agenda_entry (agenda_entry_list_new (), 0); } },
        { "header_before != NULL && header_after != NULL",
          [] { agenda_entry_list_get_headers (agenda_entry_list_new (), 0, nullptr, nullptr); } },
    };
    for (const Case &c : cases)
        EXPECT_DEATH (c.call (), c.condition) << c.condition;
}

} // namespace
