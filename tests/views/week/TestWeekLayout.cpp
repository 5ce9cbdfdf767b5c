/* The week view's entry records and overlap layout, without a display. */

#include "TestSupport.h"
#include "TavGPtr.h"
#include "TavWeekViewPrivate.h"

#include <random>
#include <string>
#include <vector>

using tav::test::LogCapture;

namespace {

/* A timed record built by hand: the overlap layout reads only the times. */
WeekEntry *timed_record (int h1, int m1, int h2, int m2, int day = 10)
{
    WeekEntry *wentry = g_new0 (WeekEntry, 1);
    TavDate date = { 2009, 2, day };
    TavTime start = { h1, m1 };
    TavTime end = { h2, m2 };
    wentry->start_date = tav_date_copy (&date);
    wentry->end_date = tav_date_copy (&date);
    wentry->start_time = tav_time_copy (&start);
    wentry->end_time = tav_time_copy (&end);
    wentry->n_columns = 1;
    wentry->n_days = 1;
    return wentry;
}

struct ListHolder {
    WeekEntryList *list = week_entry_list_new ();
    ~ListHolder () { week_entry_list_free (list); }
    WeekEntryList *operator-> () const { return list; }
};

/* "g<group> <column>/<columns>" of one record. */
std::string layout_of (const WeekEntry *w)
{
    return "g" + std::to_string (w->group) + " " + std::to_string (w->column) + "/" + std::to_string (w->n_columns);
}

/* The layout of each record, in list order, with the record's label. */
std::string describe (WeekEntryList *list, const std::vector<std::pair<WeekEntry *, char>> &labels)
{
    std::string out;
    for (GList *l = list->hour_entries; l; l = l->next) {
        char label = '?';
        for (auto &[w, c] : labels)
            if (w == l->data)
                label = c;
        out += (out.empty () ? "" : ", ") + std::string (1, label) + " " + layout_of (static_cast<WeekEntry *> (l->data));
    }
    return out;
}

/* Times, and the day that orders the list (the list sorts by date first,
 * the layout looks at times only). */
struct Range { int h1, m1, h2, m2, day = 10; };

struct OverlapCase {
    const char *label;
    std::vector<Range> ranges;   /* in list order (the list sorts by start) */
    const char *expected;
};

TEST (WeekOverlap, ColumnsFollowTheGroupRules)
{
    const OverlapCase cases[] = {
        { .label = "two overlapping entries share the width",
          .ranges = { { 9, 0, 10, 0 }, { 9, 30, 10, 30 } },
          .expected = "A g1 0/2, B g1 1/2" },
        { .label = "three mutually overlapping entries take thirds",
          .ranges = { { 9, 0, 11, 0 }, { 9, 30, 11, 30 }, { 10, 0, 12, 0 } },
          .expected = "A g1 0/3, B g1 1/3, C g1 2/3" },
        { .label = "five overlapping entries: four columns, the fifth full width",
          .ranges = { { 9, 0, 12, 0 }, { 9, 10, 12, 0 }, { 9, 20, 12, 0 }, { 9, 30, 12, 0 }, { 9, 40, 12, 0 } },
          .expected = "A g1 0/4, B g1 1/4, C g1 2/4, D g1 3/4, E g1 0/1" },
        { .label = "group overwrite: the later group takes the bridging entry",
          .ranges = { { 9, 0, 10, 0, 8 }, { 13, 0, 14, 0, 9 }, { 9, 30, 13, 30, 10 } },
          .expected = "A g1 0/1, B g2 0/2, C g2 1/2" },
        { .label = "touching intervals do not overlap",
          .ranges = { { 9, 0, 10, 0 }, { 10, 0, 11, 0 } },
          .expected = "A g1 0/1, B g2 0/1" },
        { .label = "an instant at the end of a range is drawn below it",
          .ranges = { { 10, 0, 11, 0 }, { 11, 0, 11, 0 } },
          .expected = "A g1 0/1, B g2 0/1" },
        { .label = "a short entry is drawn 20 minutes tall and shares its row",
          .ranges = { { 9, 0, 9, 2 }, { 9, 10, 10, 0 }, { 9, 20, 9, 40 } },
          .expected = "A g1 0/2, B g1 1/2, C g1 0/2" },
        { .label = "three in a group reuse a free column",
          .ranges = { { 9, 0, 10, 0 }, { 9, 30, 11, 0 }, { 10, 0, 10, 30 } },
          .expected = "A g1 0/2, B g1 1/2, C g1 0/2" },
        { .label = "separate groups keep their own widths",
          .ranges = { { 8, 0, 9, 0 }, { 8, 30, 9, 30 }, { 14, 0, 15, 0 } },
          .expected = "A g1 0/2, B g1 1/2, C g2 0/1" },
    };

    for (const OverlapCase &c : cases) {
        SCOPED_TRACE (c.label);
        ListHolder list;
        std::vector<std::pair<WeekEntry *, char>> labels;
        char label = 'A';
        for (const Range &r : c.ranges) {
            WeekEntry *w = timed_record (r.h1, r.m1, r.h2, r.m2, r.day);
            labels.push_back ({ w, label++ });
            week_entry_list_append_entry (list.list, w);
        }
        week_entry_list_calculate_overlapping (list.list);
        EXPECT_EQ (describe (list.list, labels), c.expected);
    }
}

/* The layout as written in words: forward grouping with overwrite over the
 * records themselves, columns checked with tav_time_intersect. The library
 * computes the same on minutes with a backward scan; this is its yardstick. */
void reference_layout (WeekEntryList *list)
{
    std::vector<WeekEntry *> rec;
    for (GList *l = list->hour_entries; l; l = l->next)
        rec.push_back (static_cast<WeekEntry *> (l->data));
    if (rec.empty ())
        return;
    for (WeekEntry *w : rec) {
        w->group = 0;
        w->column = 0;
        w->n_columns = 1;
    }
    auto meet = [] (const WeekEntry *a, const WeekEntry *b) {
        return tav_time_intersect (a->start_time, a->end_time, b->start_time, b->end_time, NULL, NULL) != FALSE;
    };
    int next = 1, last = 0;
    for (size_t i = 0; i < rec.size (); i++) {
        if (rec[i]->group == 0) {
            rec[i]->group = next;
            last = next++;
        }
        for (size_t j = i + 1; j < rec.size (); j++)
            if (meet (rec[i], rec[j]))
                rec[j]->group = rec[i]->group;
    }
    for (int g = 1; g <= last; g++) {
        std::vector<WeekEntry *> m;
        for (WeekEntry *w : rec)
            if (w->group == g)
                m.push_back (w);
        if (m.size () < 2)
            continue;
        if (m.size () == 2) {
            m[0]->column = 0;
            m[1]->column = 1;
            m[0]->n_columns = m[1]->n_columns = 2;
            continue;
        }
        for (WeekEntry *w : m)
            w->unplaced = TRUE;
        std::vector<WeekEntry *> placed;
        size_t start = 0;
        int cols = 0;
        for (; cols < 4; cols++) {
            size_t first = start;
            while (first < m.size () && !m[first]->unplaced)
                first++;
            if (first == m.size ())
                break;
            GList *column = g_list_append (NULL, m[first]);
            m[first]->unplaced = FALSE;
            m[first]->column = cols;
            placed.push_back (m[first]);
            for (size_t k = first + 1; k < m.size (); k++) {
                if (m[k]->unplaced && !week_entry_intersect_in_list (column, m[k])) {
                    column = g_list_append (column, m[k]);
                    m[k]->unplaced = FALSE;
                    m[k]->column = cols;
                    placed.push_back (m[k]);
                }
            }
            g_list_free (column);
            start = first + 1;
        }
        for (WeekEntry *w : placed)
            w->n_columns = cols;
        for (WeekEntry *w : m)
            w->unplaced = FALSE;
    }
}

TEST (WeekOverlap, FastLayoutMatchesTheWrittenRuleOnRandomDays)
{
    std::mt19937 rng (20090310);
    for (int round = 0; round < 400; round++) {
        SCOPED_TRACE ("round " + std::to_string (round));
        const int n = 1 + static_cast<int> (rng () % 40);
        ListHolder fast, slow;
        for (int i = 0; i < n; i++) {
            /* Coarse quarter hours make touching ranges and instants common;
             * a few ranges end before they start. */
            const int s = static_cast<int> (rng () % 92) * 15;
            int e = s + static_cast<int> (rng () % 12) * 15;
            if (rng () % 15 == 0)
                e = static_cast<int> (rng () % 96) * 15;
            e = std::min (e, 23 * 60 + 59);
            const int day = (rng () % 10 == 0) ? 9 : 10;
            week_entry_list_append_entry (fast.list, timed_record (s / 60, s % 60, e / 60, e % 60, day));
            /* The rule sees each record as drawn: at least 20 minutes. */
            const int drawn = std::max (e, s + tav::week::kMinDrawnMinutes);
            week_entry_list_append_entry (slow.list, timed_record (s / 60, s % 60, drawn / 60, drawn % 60, day));
        }
        week_entry_list_calculate_overlapping (fast.list);
        reference_layout (slow.list);
        std::string a, b;
        for (GList *l = fast->hour_entries, *k = slow->hour_entries; l && k; l = l->next, k = k->next) {
            a += layout_of (static_cast<WeekEntry *> (l->data)) + ", ";
            b += layout_of (static_cast<WeekEntry *> (k->data)) + ", ";
        }
        ASSERT_EQ (a, b);
    }
}

TEST (WeekOverlap, MinuteTestAgreesWithTimeIntersectEverywhere)
{
    /* Every pair of ranges over a coarse grid, including instants and
     * inverted ranges. */
    const int grid[] = { 0, 59, 60, 61, 120, 600, 601, 1439 };
    int checked = 0;
    for (int a1 : grid)
        for (int a2 : grid)
            for (int b1 : grid)
                for (int b2 : grid) {
                    TavTime as = { a1 / 60, a1 % 60 }, ae = { a2 / 60, a2 % 60 };
                    TavTime bs = { b1 / 60, b1 % 60 }, be = { b2 / 60, b2 % 60 };
                    const bool expected = tav_time_intersect (&as, &ae, &bs, &be, NULL, NULL);
                    ASSERT_EQ (tav::week::spans_intersect ({ a1, a2 }, { b1, b2 }), expected)
                        << a1 << "-" << a2 << " vs " << b1 << "-" << b2;
                    checked++;
                }
    EXPECT_EQ (checked, 8 * 8 * 8 * 8);
}

TEST (WeekOverlap, NullMemberOfAColumnIsReportedAndSkipped)
{
    WeekEntry *candidate = timed_record (9, 0, 10, 0);
    GList *column = g_list_append (NULL, NULL);
    {
        LogCapture capture;
        EXPECT_FALSE (week_entry_intersect_in_list (column, candidate));
        EXPECT_CRITICAL (capture, "wentry1 != NULL");
    }
    g_list_free (column);
    week_entry_free (candidate);
}

TEST (WeekOverlap, TimedRecordsKeepTheirArrivalNumber)
{
    ListHolder list;
    WeekEntry *late = timed_record (15, 0, 16, 0);
    WeekEntry *early = timed_record (8, 0, 9, 0);
    WeekEntry *mid = timed_record (11, 0, 12, 0);
    week_entry_list_append_entry (list.list, late);
    week_entry_list_append_entry (list.list, early);
    week_entry_list_append_entry (list.list, mid);

    EXPECT_EQ (week_entry_list_get_first_hour_entry (list.list), early);
    EXPECT_EQ (week_entry_list_get_next_hour_entry (list.list), mid);
    EXPECT_EQ (week_entry_list_get_next_hour_entry (list.list), late);
    EXPECT_EQ (week_entry_list_get_next_hour_entry (list.list), nullptr);
    EXPECT_EQ (week_entry_list_get_last_hour_entry (list.list), late);
    EXPECT_EQ (week_entry_list_get_prev_hour_entry (list.list), mid);
    EXPECT_EQ (std::to_string (late->index) + std::to_string (early->index) + std::to_string (mid->index), "012");
}

/* Records from real entries ---------------------------------------------------- */

TavCalendarEntry *make_event (const char *title, int day, int h1, int h2, int created, gboolean all_day = FALSE,
                              int end_day = -1)
{
    auto *e = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, NULL));
    g_object_set (e, "title", title, "start-year", 2009, "start-month", 2, "start-day", day, "start-hour", h1,
                  "start-minute", 0, "end-year", 2009, "end-month", 2, "end-day", end_day < 0 ? day : end_day,
                  "end-hour", h2, "end-minute", 0, "created-time", created, "all-day", all_day, NULL);
    return e;
}

TavCalendarEntry *make_task (const char *title, int mod_day, int mod_hour, int sec, int color)
{
    auto *t = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_TASK, NULL));
    TavDate mdate = { 2009, 1, mod_day };
    TavTime mtime = { mod_hour, 0 };
    g_object_set (t, "title", title, "start-year", 2009, "start-month", 2, "start-day", 10, "end-year", 2009,
                  "end-month", 2, "end-day", 10, "modification-date", &mdate, "modification-time", &mtime,
                  "modified-time-sec", sec, "color", color, NULL);
    return t;
}

struct Processor {
    TavCalendarProcessor *p = tav_calendar_processor_new ();
    ~Processor () { g_object_unref (p); }
};

TEST (WeekEntryRecord, DescribesTheInstanceOnTheShownDay)
{
    Processor proc;
    tav::GRefPtr<TavCalendarEntry> e = tav::adoptGRef (make_event ("Trip", 10, 9, 17, 1, FALSE, 12));
    TavDate shown = { 2009, 2, 24 };
    WeekEntry *w = week_entry_new (e.get (), proc.p, &shown);
    char text[64];
    g_snprintf (text, sizeof text, "%d days%s, %d %d:00 .. %d %d:00, task %d/%d", w->n_days,
                w->multi_days ? " multi" : "", w->start_date->day, w->start_time->hour, w->end_date->day,
                w->end_time->hour, w->is_task, w->n_tasks);
    EXPECT_STREQ (text, "3 days multi, 24 9:00 .. 26 17:00, task 0/0");
    EXPECT_EQ (G_OBJECT (e.get ())->ref_count, 2u);
    week_entry_free (w);
    EXPECT_EQ (G_OBJECT (e.get ())->ref_count, 1u);
}

TEST (WeekEntryRecord, NonObjectIsReportedAndKept)
{
    Processor proc;
    TavDate shown = { 2009, 2, 24 };
    /* Zeroed memory: no class pointer, so no object. */
    struct { gpointer words[4]; } not_an_object {};
    LogCapture capture;
    WeekEntry *w = week_entry_new (reinterpret_cast<TavCalendarEntry *> (&not_an_object), proc.p, &shown);
    tav::GCharPtr expected (g_strdup_printf ("  Ref : %p which is not an object at line %d.",
                                             static_cast<void *> (&not_an_object), 51));
    EXPECT_TRUE (capture.has_warning (expected.get ())) << capture.dump ();
    EXPECT_EQ (static_cast<void *> (w->entry), static_cast<void *> (&not_an_object));
    week_entry_free (w);
}

TEST (WeekEntryRecord, DetailNamesByColour)
{
    struct Row { const char *label; int color; gboolean all_day; const char *detail; } rows[] = {
        { "dark blue bar", 0, FALSE, "hbar-darkblue" },
        { "dark blue all-day", 0, TRUE, "allday-darkblue" },
        { "green all-day", 9, TRUE, "allday-green" },
        { "green bar", 9, FALSE, "hbar-green" },
        { "unknown colour 10", 10, FALSE, nullptr },
        { "unknown colour -1", -1, TRUE, nullptr },
    };
    for (const Row &r : rows) {
        SCOPED_TRACE (r.label);
        WeekEntry w {};
        w.color = r.color;
        w.all_day = r.all_day;
        const char *detail = week_entry_get_detail (&w);
        EXPECT_STREQ (detail, r.detail);
    }
}

TEST (WeekEntryRecord, LabelMarkupIsEscapedAndCached)
{
    Processor proc;
    tav::GRefPtr<TavCalendarEntry> e = tav::adoptGRef (make_event ("Tom & <Jerry>", 10, 9, 10, 1));
    g_object_set (e.get (), "location", "Caf\xc3\xa9 \"Bar\"", NULL);
    TavDate shown = { 2009, 2, 10 };
    WeekEntry *w = week_entry_new (e.get (), proc.p, &shown);

    EXPECT_STREQ (week_entry_get_title (w), "Tom &amp; &lt;Jerry&gt;");
    EXPECT_STREQ (week_entry_get_short_summary (w), "<span color=\"Black\" size=\"small\">Tom &amp; &lt;Jerry&gt;</span> ");
    EXPECT_STREQ (week_entry_get_summary (w),
                  "<span color=\"Black\" size=\"small\">Tom &amp; &lt;Jerry&gt;</span>\n"
                  "<span color=\"Grey\" size=\"small\">Caf\xc3\xa9 &quot;Bar&quot;</span>");
    const char *first = week_entry_get_summary (w);
    g_object_set (e.get (), "title", "Changed", NULL);
    EXPECT_EQ (week_entry_get_summary (w), first) << "the markup is computed once";
    week_entry_free (w);

    /* The flag picks the clock: 0 is twelve-hour, 1 and above twenty-four. */
    struct Row { int flag; gboolean twelve; } rows[] = { { 0, TRUE }, { 1, FALSE }, { 7, FALSE } };
    for (const Row &r : rows) {
        SCOPED_TRACE (r.flag);
        WeekEntry *x = week_entry_new (e.get (), proc.p, &shown);
        TavTime afternoon = { 15, 0 };
        *x->start_time = afternoon;
        tav::GCharPtr t (tav_time_to_string_format (&afternoon, r.twelve));
        EXPECT_EQ (std::string (week_entry_get_summary_time (x, r.flag)),
                   std::string ("<span color=\"Black\">") + t.get () + "</span>");
        week_entry_free (x);
    }
}

/* All-day order and merged tasks ------------------------------------------------ */

std::string allday_titles (WeekEntryList *list)
{
    std::string out;
    for (WeekEntry *w = week_entry_list_get_first_all_day_entry (list); w;
         w = week_entry_list_get_next_all_day_entry (list)) {
        if (!out.empty ())
            out += ", ";
        char *title = nullptr;
        g_object_get (w->entry, "title", &title, NULL);
        out += std::string (title ? title : "") + "#" + std::to_string (w->index);
        g_free (title);
    }
    return out;
}

TEST (WeekAllDay, OrderPutsLongSpansFirstAndTasksBetweenEventsAndBirthdays)
{
    Processor proc;
    TavDate shown = { 2009, 2, 10 };
    ListHolder list;
    std::vector<tav::GRefPtr<TavCalendarEntry>> keep;
    auto add = [&] (TavCalendarEntry *e) {
        keep.push_back (tav::adoptGRef (e));
        week_entry_list_append_entry (list.list, week_entry_new (e, proc.p, &shown));
    };
    TavCalendarEntry *bday = make_event ("Zoe birthday", 10, 0, 0, 1, TRUE);
    g_object_set (bday, "has-birthday", TRUE, NULL);
    TavCalendarEntry *abday = make_event ("Anna birthday", 10, 0, 0, 9, TRUE);
    g_object_set (abday, "has-birthday", TRUE, NULL);
    add (bday);
    add (make_task ("Buy milk", 1, 10, 0, 3));
    add (make_event ("Holiday", 10, 0, 0, 5, TRUE));
    add (make_event ("Conference", 10, 0, 0, 7, TRUE, 11));
    add (make_event ("Expedition", 10, 0, 0, 8, TRUE, 14));
    add (make_event ("Fair", 10, 0, 0, 2, TRUE));
    add (abday);
    add (make_event ("Congress", 10, 0, 0, 7, TRUE, 11));
    add (make_event ("Alpha", 10, 0, 0, 2, TRUE));

    EXPECT_EQ (allday_titles (list.list),
               "Expedition#0, Conference#1, Congress#2, Alpha#3, Fair#4, Holiday#5, Buy milk#6, Anna birthday#7, "
               "Zoe birthday#8");
    EXPECT_EQ (week_entry_list_n_all_day_entries (list.list), 9);
}

TEST (WeekAllDay, MergedTasksLeadWithTheEarliestModifiedAndLeaveOneByOne)
{
    Processor proc;
    TavDate shown = { 2009, 2, 10 };
    ListHolder list;
    tav::GRefPtr<TavCalendarEntry> holiday = tav::adoptGRef (make_event ("Holiday", 10, 0, 0, 5, TRUE));
    tav::GRefPtr<TavCalendarEntry> later = tav::adoptGRef (make_task ("Later", 5, 10, 0, 3));
    tav::GRefPtr<TavCalendarEntry> earliest = tav::adoptGRef (make_task ("Earliest", 2, 10, 0, 7));
    tav::GRefPtr<TavCalendarEntry> same_minute = tav::adoptGRef (make_task ("Same minute", 5, 10, 30, 1));
    tav::GRefPtr<TavCalendarEntry> birthday = tav::adoptGRef (make_event ("Bday", 10, 0, 0, 9, TRUE));
    g_object_set (birthday.get (), "has-birthday", TRUE, NULL);

    week_entry_list_append_entry (list.list, week_entry_new (holiday.get (), proc.p, &shown));
    WeekEntry *tasks = week_entry_new (later.get (), proc.p, &shown);
    week_entry_list_append_entry (list.list, tasks);
    week_entry_list_append_entry (list.list, week_entry_new (birthday.get (), proc.p, &shown));
    week_entry_append_task_entry_to_wentry (tasks, TAV_CALENDAR_TASK (earliest.get ()));
    week_entry_append_task_entry_to_wentry (tasks, TAV_CALENDAR_TASK (same_minute.get ()));

    EXPECT_EQ (tasks->n_tasks, 3);
    EXPECT_EQ (tasks->entry, earliest.get ());
    EXPECT_EQ (tasks->color, 7);
    ASSERT_EQ (g_list_length (tasks->tasks), 2u);
    EXPECT_EQ (tasks->tasks->data, later.get ());
    EXPECT_EQ (tasks->tasks->next->data, same_minute.get ());
    EXPECT_EQ (week_entry_list_find_allday_wentry_for_entry (list.list, same_minute.get ()), tasks);

    /* The leader leaves: the next task leads and lends its colour. */
    EXPECT_TRUE (week_entry_list_find_and_remove_allday_entry (list.list, earliest.get ()));
    EXPECT_EQ (tasks->n_tasks, 2);
    EXPECT_EQ (tasks->entry, later.get ());
    EXPECT_EQ (tasks->color, 3);
    EXPECT_EQ (G_OBJECT (earliest.get ())->ref_count, 1u);

    EXPECT_TRUE (week_entry_list_find_and_remove_allday_entry (list.list, same_minute.get ()));
    EXPECT_EQ (tasks->n_tasks, 1);
    EXPECT_EQ (G_OBJECT (same_minute.get ())->ref_count, 1u);
    EXPECT_EQ (allday_titles (list.list), "Holiday#0, Later#1, Bday#2");

    /* The last task takes the record with it; the indices close up. */
    EXPECT_TRUE (week_entry_list_find_and_remove_allday_entry (list.list, later.get ()));
    EXPECT_EQ (allday_titles (list.list), "Holiday#0, Bday#1");
    EXPECT_EQ (G_OBJECT (later.get ())->ref_count, 1u);
    EXPECT_FALSE (week_entry_list_find_and_remove_allday_entry (list.list, later.get ()));
}

TEST (WeekAllDay, ModificationOrderNeverCallsTwoTasksEqual)
{
    tav::GRefPtr<TavCalendarEntry> a = tav::adoptGRef (make_task ("a", 5, 10, 20, 0));
    tav::GRefPtr<TavCalendarEntry> b = tav::adoptGRef (make_task ("b", 5, 10, 20, 0));
    tav::GRefPtr<TavCalendarEntry> c = tav::adoptGRef (make_task ("c", 5, 10, 21, 0));
    tav::GRefPtr<TavCalendarEntry> d = tav::adoptGRef (make_task ("d", 6, 9, 0, 0));
    EXPECT_EQ (week_entry_mod_time_sorter (a.get (), b.get ()), 1);
    EXPECT_EQ (week_entry_mod_time_sorter (b.get (), a.get ()), 1);
    EXPECT_LT (week_entry_mod_time_sorter (a.get (), c.get ()), 0);
    EXPECT_EQ (week_entry_mod_time_sorter (c.get (), a.get ()), 1);
    EXPECT_LT (week_entry_mod_time_sorter (c.get (), d.get ()), 0);
    EXPECT_GT (week_entry_mod_time_sorter (d.get (), a.get ()), 0);
}

TEST (WeekAllDay, ReadjustMovesOneRecordToAnIndex)
{
    Processor proc;
    TavDate shown = { 2009, 2, 10 };
    struct Row { const char *label; int which; int index; const char *expected; } rows[] = {
        { "last to the front", 3, 0, "0:1 1:2 2:3 3:0" },
        { "first to slot two", 0, 2, "0:2 1:0 2:1 3:3" },
        { "second stays", 1, 1, "0:0 1:1 2:2 3:3" },
    };
    for (const Row &r : rows) {
        SCOPED_TRACE (r.label);
        ListHolder list;
        std::vector<tav::GRefPtr<TavCalendarEntry>> keep;
        std::vector<WeekEntry *> recs;
        for (int i = 0; i < 4; i++) {
            keep.push_back (tav::adoptGRef (make_event ("e", 10, 0, 0, 10 + i, TRUE)));
            recs.push_back (week_entry_new (keep.back ().get (), proc.p, &shown));
            week_entry_list_append_entry (list.list, recs.back ());
        }
        week_entry_list_allday_readjust_entry_to_index (list.list, recs[static_cast<size_t> (r.which)], r.index);
        std::string got;
        for (size_t i = 0; i < recs.size (); i++)
            got += (i ? " " : "") + std::to_string (i) + ":" + std::to_string (recs[i]->index);
        EXPECT_EQ (got, r.expected);
    }
}

TEST (WeekLists, FindAndRemoveTimedRecords)
{
    Processor proc;
    TavDate shown = { 2009, 2, 10 };
    ListHolder list;
    tav::GRefPtr<TavCalendarEntry> a = tav::adoptGRef (make_event ("a", 10, 9, 10, 1));
    tav::GRefPtr<TavCalendarEntry> b = tav::adoptGRef (make_event ("b", 10, 11, 12, 1));
    week_entry_list_append_entry (list.list, week_entry_new (a.get (), proc.p, &shown));
    week_entry_list_append_entry (list.list, week_entry_new (b.get (), proc.p, &shown));
    EXPECT_NE (week_entry_list_find_hour_wentry_for_entry (list.list, b.get ()), nullptr);
    week_entry_list_get_first_hour_entry (list.list);
    EXPECT_TRUE (week_entry_list_find_and_remove_hour_entry (list.list, a.get ()));
    EXPECT_EQ (week_entry_list_find_hour_wentry_for_entry (list.list, a.get ()), nullptr);
    EXPECT_FALSE (week_entry_list_find_and_remove_hour_entry (list.list, a.get ()));
    EXPECT_EQ (G_OBJECT (a.get ())->ref_count, 1u);
    /* The cursor on the removed record does not dangle. */
    EXPECT_EQ (week_entry_list_get_next_hour_entry (list.list), nullptr);
    week_entry_list_remove_all_entry (list.list);
    EXPECT_EQ (G_OBJECT (b.get ())->ref_count, 1u);
    EXPECT_EQ (week_entry_list_get_first_hour_entry (list.list), nullptr);
}

using WeekLayoutDeathTest = ::testing::Test;

TEST (WeekLayoutDeathTest, NullPointersAbortWithTheirCheck)
{
    GTEST_FLAG_SET (death_test_style, "threadsafe");
    EXPECT_DEATH (week_entry_list_free (NULL), "wentry_list != NULL");
    EXPECT_DEATH (week_entry_free (NULL), "wentry != NULL");
    EXPECT_DEATH (_week_entry_compare_hour_entry_inside_day (NULL, NULL), "wentry1 != NULL");
    WeekEntry broken {};
    EXPECT_DEATH (_week_entry_compare_hour_entry_inside_day (&broken, &broken), "wentry1->start_time != NULL");
    WeekEntryList *list = week_entry_list_new ();
    EXPECT_DEATH (week_entry_list_find_hour_wentry_for_entry (list, NULL), "TAV_IS_CALENDAR_ENTRY\\(entry\\)");
    week_entry_list_free (list);
}

} // namespace
