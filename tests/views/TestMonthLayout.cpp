/* The month view's cell layout, without a display: which entries a cell
 * shows, the lanes of multi-day bars across a week and across rows, and the
 * faster grid helpers checked against the plain algorithms. */
#include "TestSupport.h"
#include "ViewTestSupport.h"
#include "TavGPtr.h"

#include <algorithm>
#include <functional>
#include <random>

using namespace tav::test;

namespace {

/* Owns the entries a case creates. */
struct Entries {
    std::vector<tav::GRefPtr<TavCalendarEntry>> owned;
    TavCalendarEntry *operator() (TavCalendarEntry *entry) { return owned.emplace_back (tav::adoptGRef (entry)).get (); }
};

/* March 2009, weeks starting on Monday: the grid runs from Monday 23
 * February to Sunday 5 April; Monday 9 March is row 2, column 0. */
constexpr int kYear = 2009, kMarch = 2;

TavDate
march (int day)
{
    return { kYear, kMarch, day };
}

Stamp
at (int day, int hour, int minute = 0)
{
    return { kYear, kMarch, day, hour, minute };
}

} // namespace

/* What a cell shows ---------------------------------------------------------- */

struct CellCase {
    const char *label;
    std::function<void (Grid &, Entries &)> fill;
    std::vector<std::pair<int, std::string>> expected; /* day of March, cell */
    gboolean optimization = TRUE;
    int first_day_of_week = 1;
};

class CellLayout : public ::testing::TestWithParam<CellCase> {};

TEST_P (CellLayout, ShowsTheExpectedLines)
{
    const CellCase &c = GetParam ();
    LogCapture capture;
    Entries entries;
    {
        Grid grid (kYear, kMarch, c.first_day_of_week);
        c.fill (grid, entries);
        grid.recalculate (c.optimization);
        for (const auto &[day, expected] : c.expected)
            EXPECT_EQ (grid.describe (march (day)), expected) << c.label << ", " << day << " March";
    }
}

static void
add_all (Grid &grid, const std::vector<TavCalendarEntry *> &list)
{
    for (TavCalendarEntry *entry : list)
        grid.add (entry);
}

/* One bar from @start to @end, on a grid whose weeks start on Sunday:
 * Saturday 7 March ends row 1. */
static CellCase
row_end_case (const char *label, Stamp start, Stamp end, std::vector<std::pair<int, std::string>> expected)
{
    return { label, [=] (Grid &g, Entries &e) { g.add (e (make_entry ("W", start, end))); }, std::move (expected),
             TRUE, 0 };
}

INSTANTIATE_TEST_SUITE_P (Month, CellLayout, ::testing::Values (
    CellCase { "three wide and ten timed lines at most",
        [] (Grid &g, Entries &e) {
            for (const char *t : { "a1", "a2", "a3", "a4" })
                g.add (e (make_entry (t, at (18, 0), at (18, 0), true)));
            for (int h = 8; h < 20; h++) {
                char t[8];
                g_snprintf (t, sizeof t, "%02d", h);
                g.add (e (make_entry (t, at (18, h), at (18, h, 30))));
            }
        },
        { { 18, "a1 a2 a3 08 09 10 11 12 13 14 15 16 17 | a4 18 19" } } },
    CellCase { "timed lines in start order, then by title",
        [] (Grid &g, Entries &e) {
            add_all (g, { e (make_entry ("lunch", at (3, 12), at (3, 13))),
                          e (make_entry ("Breakfast", at (3, 8), at (3, 9))),
                          e (make_entry ("apples", at (3, 12), at (3, 12, 30))),
                          e (make_entry ("holiday", at (3, 0), at (3, 0), true)) });
        },
        { { 3, "holiday Breakfast apples lunch" } } },
    CellCase { "tasks and birthdays are flags, never lines",
        [] (Grid &g, Entries &e) {
            add_all (g, { e (make_task ("pay rent", at (5, 9))), e (make_birthday ("Anna", at (5, 0))),
                          e (make_entry ("dentist", at (5, 15), at (5, 16))) });
        },
        { { 5, "dentist T B" }, { 6, "" } } },
    CellCase { "a bar keeps its lane across the week",
        [] (Grid &g, Entries &e) {
            add_all (g, { e (make_entry ("X", at (9, 9), at (11, 17))),
                          e (make_entry ("Y", at (10, 9), at (14, 17))),
                          e (make_entry ("Z", at (10, 9), at (14, 17))) });
        },
        { { 9, "X+2" }, { 10, "X~ Z+4 Y+4" }, { 11, "X~ Z~ Y~" }, { 12, "- Z~ Y~" }, { 14, "- Z~ Y~" },
          { 15, "" } } },
    CellCase { "without optimisation lanes stay, shared slots still make bars",
        [] (Grid &g, Entries &e) {
            add_all (g, { e (make_entry ("X", at (9, 9), at (11, 17))),
                          e (make_entry ("Y", at (10, 9), at (14, 17))),
                          e (make_entry ("Z", at (10, 9), at (14, 17))) });
        },
        { { 9, "X" }, { 10, "Y+4 Z+4 X+1" }, { 11, "Y~ Z~ X~" }, { 12, "Y~ Z~" } },
        FALSE },
    CellCase { "longer bars take the upper lanes",
        [] (Grid &g, Entries &e) {
            add_all (g, { e (make_entry ("long", at (16, 9), at (20, 10))),
                          e (make_entry ("short", at (17, 9), at (18, 10))),
                          e (make_entry ("early", at (17, 7), at (17, 8))) });
        },
        /* On the 17th "long" sorts first anyway; on the 19th it is alone. */
        { { 16, "long+4" }, { 17, "long~ short+1 early" }, { 18, "long~ short~" }, { 20, "long~" } } },
    CellCase { "an event ending at midnight does not reach its last day",
        [] (Grid &g, Entries &e) {
            g.add (e (make_entry ("late", at (20, 22), at (21, 0))));
        },
        { { 20, "late" }, { 21, "" } } },
    row_end_case ("a bar from Saturday into Sunday goes on in the next row", at (7, 10), at (8, 12),
                  { { 7, "W>" }, { 8, "W<" }, { 9, "" } }),
    row_end_case ("Thursday to Tuesday", at (5, 10), at (10, 15),
                  { { 4, "" }, { 5, "W+2>" }, { 6, "W~>" }, { 7, "W~>" }, { 8, "W+2<" }, { 9, "W~" }, { 10, "W~" } }),
    row_end_case ("within one row", at (2, 10), at (4, 15), { { 2, "W+2" }, { 3, "W~" }, { 4, "W~" } })));

/* Lanes pushed down by a bar, through optimize_following directly. */
TEST (CellLayout, PushesTimedLinesDownForABar)
{
    Entries e;
    Grid grid (kYear, kMarch, 1);
    CalendarCell &monday = grid.at (march (9)), &tuesday = grid.at (march (10));
    TavCalendarEntry *trip = e (make_entry ("trip", at (9, 9), at (10, 17)));
    TavCalendarEntry *party = e (make_entry ("party", at (8, 9), at (10, 17)));
    /* Monday shows the trip in lane 1 (below the longer party), Tuesday in
     * lane 0 after a timed line: the trip then moves up on Tuesday. */
    calendar_cell_append_calendar_entry_visible (&monday, calendar_entry_new (party, grid.processor ()));
    calendar_cell_append_calendar_entry_visible (&monday, calendar_entry_new (trip, grid.processor ()));
    calendar_cell_append_calendar_entry_visible (&tuesday, calendar_entry_new (trip, grid.processor ()));
    calendar_cell_append_calendar_entry_visible (&tuesday, calendar_entry_new (e (make_entry ("call", at (10, 8), at (10, 9))), grid.processor ()));
    ASSERT_EQ (describe_cell (tuesday), "trip call");
    /* Lane 0: party is not on Tuesday's lines. Lane 1: trip sits at j=0 < 1,
     * and Tuesday's lane 1 holds a timed line, which moves down. */
    EXPECT_TRUE (calendar_cell_optimize_following (&monday, &tuesday));
    EXPECT_EQ (describe_cell (tuesday), "- trip call");
    EXPECT_EQ (calendar_cell_n_entries (&tuesday), 3);
}

/* Flushing --------------------------------------------------------------------- */

TEST (CellFlush, LateOrderCheckShowsTheEarliestTimedLines)
{
    LogCapture capture;
    Entries e;
    Grid grid (kYear, kMarch, 1);
    CalendarCell &cell = grid.at (march (18));
    for (int h = 10; h < 20; h++) {
        char t[8];
        g_snprintf (t, sizeof t, "%02d", h);
        calendar_cell_append_calendar_entry_buffer (&cell, e (make_entry (t, at (18, h), at (18, h, 30))));
    }
    EXPECT_TRUE (calendar_cell_flush_buffer (&cell, grid.processor ()));
    EXPECT_EQ (describe_cell (cell), "10 11 12 13 14 15 16 17 18 19");
    EXPECT_FALSE (calendar_cell_flush_buffer (&cell, grid.processor ())) << "a clean cell does not flush";
    EXPECT_FALSE (capture.has_warning ("Dropping back..."));

    calendar_cell_append_calendar_entry_buffer (&cell, e (make_entry ("08", at (18, 8), at (18, 9))));
    EXPECT_TRUE (calendar_cell_flush_buffer (&cell, grid.processor ()));
    EXPECT_EQ (describe_cell (cell), "08 10 11 12 13 14 15 16 17 18 | 19");
    EXPECT_TRUE (capture.has_warning ("cell failed calendar_cell_late_check_order() at day 18")) << capture.dump ();
    EXPECT_TRUE (capture.has_warning ("Dropping back..."));
    EXPECT_FALSE (cell.dirty);

    int index = 99;
    EXPECT_TRUE (calendar_cell_has_entry (&cell, cell.buffer[0].entry, &index));
    EXPECT_EQ (index, -1);
}

TEST (CellFlush, FullCellRefusesALineWithThreeWarnings)
{
    LogCapture capture;
    Entries e;
    Grid grid (kYear, kMarch, 1);
    CalendarCell &cell = grid.at (march (18));
    TavCalendarEntry *entry = e (make_entry ("x", at (18, 9), at (18, 10)));
    for (int i = 0; i < MAX_ENTRIES; i++)
        calendar_cell_append_calendar_entry_visible (&cell, calendar_entry_new (entry, grid.processor ()));
    CalendarEntry *extra = calendar_entry_new (entry, grid.processor ());
    calendar_cell_append_calendar_entry_visible (&cell, extra);
    EXPECT_EQ (calendar_cell_n_entries (&cell), MAX_ENTRIES);
    EXPECT_TRUE (capture.has_warning ("Can not add more events to the cell!"));
    EXPECT_TRUE (capture.has_warning ("*** day      = 18"));
    EXPECT_TRUE (capture.has_warning ("*** n_events = 13"));
    EXPECT_FALSE (calendar_cell_can_tuck_in (&cell, FALSE));
    calendar_entry_free (extra);
}

TEST (CellFlush, RemovalOnlyCountsVisibleLines)
{
    Entries e;
    Grid grid (kYear, kMarch, 1);
    CalendarCell &cell = grid.at (march (18));
    TavCalendarEntry *shown = e (make_entry ("shown", at (18, 9), at (18, 10)));
    TavCalendarEntry *waiting = e (make_entry ("waiting", at (18, 11), at (18, 12)));
    calendar_cell_append_calendar_entry_buffer (&cell, shown);
    calendar_cell_flush_buffer (&cell, grid.processor ());
    calendar_cell_append_calendar_entry_buffer (&cell, waiting);
    cell.dirty = FALSE;
    EXPECT_FALSE (calendar_cell_remove_calendar_entry (&cell, waiting));
    EXPECT_FALSE (cell.dirty);
    EXPECT_TRUE (calendar_cell_buffer_empty (&cell));
    EXPECT_TRUE (calendar_cell_remove_calendar_entry (&cell, shown));
    EXPECT_TRUE (cell.dirty);
    EXPECT_EQ (calendar_cell_n_entries (&cell), 0);
}

/* Bad input -------------------------------------------------------------------- */

TEST (Refusals, WarnAndPlaceNothing)
{
    struct Case { const char *label; std::function<TavCalendarEntry * ()> make; const char *warning; };
    const Case cases[] = {
        { "a note",
          [] {
              TavCalendarEntry *note = TAV_CALENDAR_ENTRY (tav_calendar_note_new ());
              TavDate d = march (3);
              g_object_set (note, "start-date", &d, "end-date", &d, NULL);
              return note;
          },
          "No notes in the month view." },
        { "an end before the start", [] { return make_entry ("bad", at (12, 9), at (10, 9)); },
          "The start_date >= end_date, giving up." },
        { "a day outside the grid", [] { return make_entry ("June", { 2009, 5, 1, 9, 0 }, { 2009, 5, 1, 10, 0 }); },
          "Day cell not found for 2009-6-1." },
    };
    for (const Case &c : cases) {
        LogCapture capture;
        Entries e;
        Grid grid (kYear, kMarch, 1);
        EXPECT_FALSE (grid.add (e (c.make ()))) << c.label;
        EXPECT_TRUE (capture.has_warning (c.warning)) << c.label << "\n" << capture.dump ();
        for (int k = 0; k < NCells; k++)
            EXPECT_TRUE (calendar_cell_buffer_empty (&grid.cells ()[k])) << c.label;
    }
}

TEST (Refusals, MultiDayEventPartlyOutsideTheGridKeepsItsDaysInside)
{
    LogCapture capture;
    Entries e;
    Grid grid (kYear, kMarch, 1);
    /* 3 to 7 April: the grid ends on 5 April. */
    EXPECT_TRUE (grid.add (e (make_entry ("Easter", { 2009, 3, 3, 9, 0 }, { 2009, 3, 7, 18, 0 }))));
    EXPECT_TRUE (capture.has_warning ("Day cell not found for 2009-4-6."));
    EXPECT_TRUE (capture.has_warning ("Day cell not found for 2009-4-7."));
    grid.recalculate ();
    EXPECT_EQ (grid.describe ({ 2009, 3, 3 }), "Easter+2");
    EXPECT_EQ (grid.describe ({ 2009, 3, 5 }), "Easter~");
}

using CellDeathTest = ::testing::Test;

TEST_F (CellDeathTest, PointerFaultsAbort)
{
    GTEST_FLAG_SET (death_test_style, "threadsafe");
    CalendarCell cell;
    calendar_cell_init (&cell);
    EXPECT_DEATH (calendar_cell_get_calendar_entry (&cell, MAX_ENTRIES), "index < MAX_ENTRIES");
    EXPECT_DEATH (calendar_cell_get_calendar_entry (&cell, -1), "index >= 0");
    EXPECT_DEATH (calendar_cell_init (NULL), "cell != NULL");
    EXPECT_DEATH (calendar_cell_append_calendar_entry_visible (&cell, NULL), "centry != NULL");
    EXPECT_DEATH (calendar_cell_set_date (&cell, NULL, MONTH_TYPE_THIS), "date != NULL");
}

/* References -------------------------------------------------------------------- */

TEST (CellReferences, EveryReferenceIsReturned)
{
    LogCapture capture;
    std::vector<TavCalendarEntry *> entries = {
        make_entry ("bar", at (6, 9), at (12, 9)),
        make_entry ("day", at (6, 0), at (6, 0), true),
        make_entry ("timed", at (6, 9), at (6, 10)),
        make_task ("task", at (6, 9)),
        make_birthday ("bday", at (6, 0)),
    };
    std::vector<gpointer> watch (entries.begin (), entries.end ());
    for (auto &w : watch)
        g_object_add_weak_pointer (G_OBJECT (w), &w);
    {
        Grid grid (kYear, kMarch, 1);
        for (TavCalendarEntry *entry : entries)
            grid.add (entry);
        grid.recalculate ();
        calendar_cell_remove_calendar_entry (&grid.at (march (7)), entries[0]);
        GList *all = calendar_cell_get_all_entries (&grid.at (march (6)), NULL);
        EXPECT_EQ (g_list_length (all), 3u) << "tasks and birthdays left the buffer";
        g_list_free_full (all, g_object_unref);
        for (TavCalendarEntry *entry : entries)
            g_object_unref (entry);
        for (size_t i = 0; i < watch.size (); i++) {
            /* The task and the birthday only set their cell's flags and
             * leave the buffer when it is flushed. */
            if (i < 3)
                EXPECT_NE (watch[i], nullptr) << "the grid holds its own reference of entry " << i;
            else
                EXPECT_EQ (watch[i], nullptr) << "flags keep no reference, entry " << i;
        }
    }
    for (auto &w : watch)
        EXPECT_EQ (w, nullptr) << "released with the grid";
}

/* Faster helpers against the plain algorithms ----------------------------------------- */

TEST (GridDifferential, FirstDateMatchesSteppingBack)
{
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    int checked = 0;
    for (int year = 1970; year <= 2037; year++)
        for (int month = 0; month < 12; month++)
            for (int fdow = 0; fdow < 7; fdow++) {
                /* The plain rule: from the last day of the previous month
                 * step back one day at a time until the first weekday. */
                TavDate plain { month == 0 ? year - 1 : year, month == 0 ? 11 : month - 1, 1 };
                plain.day = tav_calendar_processor_month_length (processor, plain.year, (guint) plain.month);
                while (tav_calendar_processor_date_to_day_of_week (processor, &plain) != fdow)
                    tav_calendar_processor_dec_date (processor, &plain);
                TavDate fast;
                calendar_grid_first_date (processor, year, month, fdow, &fast);
                ASSERT_EQ (tav_date_compare (&plain, &fast), 0) << year << "-" << month + 1 << " fdow " << fdow;
                checked++;
            }
    EXPECT_EQ (checked, 68 * 12 * 7);
    g_object_unref (processor);
}

TEST (GridDifferential, FindDateMatchesTheScan)
{
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    CalendarCell cells[NCells];
    for (auto &cell : cells)
        calendar_cell_init (&cell);
    int weeks[NRows];
    for (int year : { 1970, 1999, 2000, 2024, 2037 })
        for (int month = 0; month < 12; month++) {
            calendar_grid_set_month (cells, processor, year, month, (year + month) % 7, weeks);
            TavDate date = cells[0].date;
            tav_calendar_processor_dec_date_by_days (processor, &date, 40);
            for (int i = 0; i < 130; i++) {
                ASSERT_EQ (calendar_grid_find_date (cells, processor, &date), calendar_grid_find_date_linear (cells, &date))
                    << date.year << "-" << date.month + 1 << "-" << date.day;
                tav_calendar_processor_inc_date (processor, &date);
            }
        }
    /* Cells not dated yet: the scan decides. */
    for (auto &cell : cells)
        calendar_cell_init (&cell);
    TavDate zero {};
    EXPECT_EQ (calendar_grid_find_date (cells, processor, &zero), 0);
    g_object_unref (processor);
}

TEST (GridDifferential, PrefetchedOrderMatchesThePropertyOrder)
{
    LogCapture capture;
    std::mt19937 random (20090318);
    Entries e;
    std::vector<TavCalendarEntry *> pool;
    const char *titles[] = { "alpha", "Alpha", "beta", "Émile", "zeta", "", "Zulu", "mike" };
    for (int i = 0; i < 160; i++) {
        const int kind = (int) (random () % 5);
        const int day = 10 + (int) (random () % 3);
        const char *title = titles[random () % G_N_ELEMENTS (titles)];
        TavCalendarEntry *entry = NULL;
        switch (kind) {
        case 0: /* multi-day of 2-5 days */
            entry = make_entry (title, at (day, 9), at (day + 1 + (int) (random () % 4), 10));
            break;
        case 1:
            entry = make_entry (title, at (day, 0), at (day, 0), true);
            break;
        case 2:
            entry = make_task (title, at (day, 0));
            break;
        default:
            entry = make_entry (title, at (day, (int) (random () % 3) + 8, (int) (random () % 2) * 30),
                                at (day, 20));
            break;
        }
        /* Equal creation times make the title decide. */
        g_object_set (entry, "created-time", (int) (random () % 4), NULL);
        pool.push_back (e (entry));
    }
    for (int round = 0; round < 5; round++) {
        std::shuffle (pool.begin (), pool.end (), random);
        CalendarCell cell;
        calendar_cell_init (&cell);
        GList *reference = NULL;
        for (TavCalendarEntry *entry : pool) {
            calendar_cell_append_calendar_entry_buffer (&cell, entry);
            reference = g_list_insert_sorted (reference, entry, (GCompareFunc) day_buffer_entry_compare_inside_day);
        }
        ASSERT_EQ (cell.buffer.size (), g_list_length (reference));
        size_t i = 0;
        for (GList *l = reference; l; l = l->next, i++)
            ASSERT_EQ (cell.buffer[i].entry, l->data) << "round " << round << ", position " << i;
        g_list_free (reference);
        calendar_cell_free (&cell);
    }
    EXPECT_EQ (capture.count_criticals (""), 0) << capture.dump ();
}

TEST (GridDifferential, PrefetchedPropertiesMatchTheProperties)
{
    Entries e;
    TavDate later { kYear, kMarch, 20 };
    TavCalendarEntry *task = e (make_task ("task", at (12, 9)));
    g_object_set (task, "end-date", &later, NULL); /* a task is never multi-day */
    TavCalendarEntry *repeating = e (make_entry ("weekly", at (2, 8, 15), at (2, 9, 45), false, 4));
    g_object_set (repeating, "repeat-code", TavCalendarRepeatsEveryWeek, NULL);
    const std::vector<TavCalendarEntry *> entries = {
        task, repeating, e (make_entry ("trip", at (3, 22), at (9, 6), false, 7)),
        e (make_entry ("holiday", at (5, 0), at (5, 0), true, 9)), e (make_birthday ("Anna", at (6, 0))),
    };
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    for (TavCalendarEntry *entry : entries) {
        const CalendarEntryInfo info = calendar_entry_info_new (entry, processor);
        TavDate *sd = NULL, *ed = NULL;
        int sh, sm, eh, em, color, created;
        gboolean all_day, has_repeat, multi_days, bday;
        g_object_get (entry, "start-date", &sd, "end-date", &ed, "start-hour", &sh, "start-minute", &sm, "end-hour",
                      &eh, "end-minute", &em, "color", &color, "created-time", &created, "all-day", &all_day,
                      "has-repeat", &has_repeat, "multi-days", &multi_days, "has-birthday", &bday, NULL);
        const int n_days = tav_calendar_processor_get_date_interval_in_days (processor, *sd, *ed) + 1;
        auto text = [] (const TavDate &s, const TavDate &e, std::initializer_list<gint64> values, const std::string &title) {
            std::string out = title + " " + std::to_string (s.year * 10000 + s.month * 100 + s.day) + ".." +
                              std::to_string (e.year * 10000 + e.month * 100 + e.day);
            for (gint64 v : values)
                out += " " + std::to_string (v);
            return out;
        };
        EXPECT_EQ (text (info.start_date, info.end_date,
                         { info.start_hour, info.start_minute, info.end_hour, info.end_minute, info.color,
                           info.created_time, info.all_day, info.has_repeat, info.multi_days, info.has_bday,
                           info.n_days },
                         info.title),
                   text (*sd, *ed, { sh, sm, eh, em, color, created, all_day, has_repeat, multi_days, bday, n_days },
                         tav_calendar_entry_get_title (entry)));
        tav_date_free (sd);
        tav_date_free (ed);
    }
    g_object_unref (processor);
}

/* The painter's count of what a cell cannot show ------------------------------ */

#include "TavMonthViewPainter.h"

TEST (CellPainting, CountsLinesBelowTheRoomAndTheBuffer)
{
    LogCapture capture;
    Entries e;
    Grid grid (kYear, kMarch, 1);
    for (const char *t : { "a1", "a2", "a3", "a4" })
        grid.add (e (make_entry (t, at (18, 0), at (18, 0), true)));
    for (int h = 8; h < 20; h++)
        grid.add (e (make_entry ("t", at (18, h), at (18, h, 30))));
    grid.add (e (make_entry ("bar", at (17, 9), at (19, 9))));
    grid.recalculate ();
    const CalendarCell &cell = grid.at (march (18));
    /* 13 lines (three lanes, ten timed), four entries waiting; the bar's line
     * is covered (drawn from the 17th) and never counts here. */
    ASSERT_EQ (calendar_cell_n_entries (&cell), 13);
    struct { int rows, hidden; } cases[] = { { 13, 4 }, { 5, 12 }, { 0, 16 }, { -1, 16 } };
    for (const auto &c : cases)
        EXPECT_EQ (tav::month_cell_hidden_count (&cell, c.rows), c.hidden) << c.rows << " rows";
    /* The bar is covered on the 18th: its head on the 17th counts it. */
    const CalendarCell &next = grid.at (march (19));
    EXPECT_EQ (tav::month_cell_hidden_count (&next, 0), 0) << describe_cell (next);
    EXPECT_GT (tav::month_cell_visible_rows (173), tav::month_cell_visible_rows (56));
    EXPECT_GE (tav::month_cell_visible_rows (56), 2) << "a 480x360 cell shows two lines at least";
}
