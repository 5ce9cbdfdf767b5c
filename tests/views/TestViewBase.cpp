/* The calendar view base: the freeze queue, the filters of add_entry, the
 * expansion of repeating entries into instances, the slot warnings. Runs
 * without a display: the test views are never realized. */
#include "TestSupport.h"
#include "ViewTestSupport.h"
#include "TavMemorySource.h"
#include "TavCalendarViewPrivate.h"

#include <random>
#include <string>
#include <vector>

using namespace tav::test;

/* A view that records what the base hands it ------------------------------ */

typedef struct {
    TavCalendarView parent;
    TavDateInterval presented;
    gboolean has_presented;
    std::vector<std::string> *placed; /* "title@YYYY-MM-DD HH:MM" */
    int recalculated, cleared, removed, refreshed;
} RecordingView;

typedef struct {
    TavCalendarViewClass parent_class;
} RecordingViewClass;

GType recording_view_get_type (void);
G_DEFINE_TYPE (RecordingView, recording_view, TAV_TYPE_CALENDAR_VIEW)
#define RECORDING_VIEW(o) ((RecordingView *) (o))

enum { PROP_PRESENTED = 1 };

static void
recording_view_get_property (GObject *object, guint id, GValue *value, GParamSpec *pspec)
{
    RecordingView *view = RECORDING_VIEW (object);
    g_value_set_boxed (value, view->has_presented ? &view->presented : NULL);
}

static gboolean
recording_add_instance (TavCalendarView *view, const TavTimestamp *start, TavCalendarEntry *entry)
{
    char text[64];
    g_snprintf (text, sizeof text, "%s@%04d-%02d-%02d %02d:%02d", tav_calendar_entry_get_title (entry),
                start->date.year, start->date.month + 1, start->date.day, start->time.hour, start->time.minute);
    RECORDING_VIEW (view)->placed->push_back (text);
    return TRUE;
}

static void recording_recalculate (TavCalendarView *view) { RECORDING_VIEW (view)->recalculated++; }
static void recording_clear (TavCalendarView *view) { RECORDING_VIEW (view)->cleared++; }
static gboolean recording_remove (TavCalendarView *view, TavCalendarEntry *) { return ++RECORDING_VIEW (view)->removed > 0; }
static gboolean recording_refresh (TavCalendarView *view, TavCalendarEntry *) { return ++RECORDING_VIEW (view)->refreshed > 0; }
static void recording_finished (TavCalendarView *) {}

static void
recording_view_finalize (GObject *object)
{
    delete RECORDING_VIEW (object)->placed;
    G_OBJECT_CLASS (recording_view_parent_class)->finalize (object);
}

/* What every test view has: the presented interval and the record. */
static void
install_presented (GObjectClass *object_class)
{
    object_class->get_property = recording_view_get_property;
    object_class->finalize = recording_view_finalize;
    g_object_class_install_property (object_class, PROP_PRESENTED,
        g_param_spec_boxed ("presented-interval", "Presented interval", "The interval viewed by the widget.",
                            TAV_TYPE_DATE_INTERVAL, G_PARAM_READABLE));
}

static void
recording_view_class_init (RecordingViewClass *klass)
{
    install_presented (G_OBJECT_CLASS (klass));
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);
    view_class->add_entry_instance = recording_add_instance;
    view_class->recalculate_entries = recording_recalculate;
    view_class->clear_entries = recording_clear;
    view_class->remove_entry = recording_remove;
    view_class->refresh_entry = recording_refresh;
}

static void recording_view_init (RecordingView *view) { view->placed = new std::vector<std::string> (); }

/* The same without any slot but the presented interval. */
typedef RecordingView BareView;
typedef RecordingViewClass BareViewClass;
GType bare_view_get_type (void);
G_DEFINE_TYPE (BareView, bare_view, TAV_TYPE_CALENDAR_VIEW)
static void bare_view_class_init (BareViewClass *klass) { install_presented (G_OBJECT_CLASS (klass)); }
static void bare_view_init (BareView *view) { recording_view_init (view); }

/* A recording view that also finishes readings. */
typedef RecordingView FinishingView;
typedef RecordingViewClass FinishingViewClass;
GType finishing_view_get_type (void);
G_DEFINE_TYPE (FinishingView, finishing_view, recording_view_get_type ())
static void finishing_view_class_init (FinishingViewClass *klass) { TAV_CALENDAR_VIEW_CLASS (klass)->reading_finished = recording_finished; }
static void finishing_view_init (FinishingView *) {}

/* Fixture --------------------------------------------------------------------- */

namespace {

Stamp
at (int day, int hour, int minute = 0)
{
    return { 2009, 2, day, hour, minute };
}

class ViewBase : public ::testing::Test {
protected:
    void SetUp () override
    {
        source.reset (tav_memory_source_new ("Home", TavCalendarColorBlue, CalendarSourceTypeLocal));
        view = make_view (recording_view_get_type ());
    }
    void TearDown () override
    {
        for (RecordingView *v : views)
            g_object_unref (g_object_ref_sink (v));
        for (TavCalendarEntry *entry : owned)
            g_object_unref (entry);
        source.reset ();
    }

    RecordingView *make_view (GType type)
    {
        auto *v = RECORDING_VIEW (g_object_new (type, NULL));
        v->presented = { { 2009, 2, 9 }, { 2009, 2, 15 } };
        v->has_presented = TRUE;
        views.push_back (v);
        return v;
    }
    TavCalendarView *base () { return TAV_CALENDAR_VIEW (view); }

    /* @entry stored in the memory source; transfer none. */
    TavCalendarEntry *store (TavCalendarEntry *entry)
    {
        tav_memory_source_add (source.get (), entry);
        owned.push_back (entry);
        return entry;
    }
    TavCalendarEntry *event (const char *title, Stamp start, Stamp end, int repeat = TavCalendarRepeatsNoRepeat)
    {
        TavCalendarEntry *entry = make_entry (title, start, end);
        g_object_set (entry, "repeat-code", repeat, NULL);
        return store (entry);
    }
    std::string placed ()
    {
        std::string out;
        for (const auto &p : *view->placed)
            out += (out.empty () ? "" : ", ") + p;
        return out;
    }

    MemorySourcePtr source;
    RecordingView *view = nullptr;
    std::vector<RecordingView *> views;
    std::vector<TavCalendarEntry *> owned;
};

} // namespace

/* Freezing ---------------------------------------------------------------------- */

TEST_F (ViewBase, NestedFreezeExpandsOnTheLastThawInArrivalOrder)
{
    LogCapture capture;
    TavCalendarEntry *b = event ("B", at (12, 9), at (12, 10));
    TavCalendarEntry *a = event ("A", at (10, 9), at (10, 10));
    tav_calendar_view_freeze (base ());
    tav_calendar_view_freeze (base ());
    EXPECT_TRUE (tav_calendar_view_add_entry (base (), b));
    EXPECT_TRUE (tav_calendar_view_add_entry (base (), a));
    tav_calendar_view_thaw (base ());
    EXPECT_TRUE (tav_calendar_view_is_frozen (base ()));
    EXPECT_EQ (placed (), "");
    EXPECT_EQ (view->recalculated, 0);
    tav_calendar_view_thaw (base ());
    EXPECT_FALSE (tav_calendar_view_is_frozen (base ()));
    EXPECT_EQ (placed (), "B@2009-03-12 09:00, A@2009-03-10 09:00");
    EXPECT_EQ (view->recalculated, 1);
    /* One thaw too many is refused. */
    tav_calendar_view_thaw (base ());
    EXPECT_CRITICAL (capture, "view->priv->freeze_counter > 0");
    EXPECT_EQ (view->recalculated, 1);
    EXPECT_FALSE (tav_calendar_view_is_frozen (base ()));
}

TEST_F (ViewBase, ClearDropsTheQueueAndThawWaitsForAnInterval)
{
    tav_calendar_view_freeze (base ());
    tav_calendar_view_add_entry (base (), event ("A", at (10, 9), at (10, 10)));
    tav_calendar_view_clear_entries (base ());
    EXPECT_EQ (view->cleared, 1);
    tav_calendar_view_add_entry (base (), event ("C", at (11, 9), at (11, 10)));
    view->has_presented = FALSE;
    tav_calendar_view_thaw (base ());
    EXPECT_TRUE (tav_calendar_view_is_frozen (base ())) << "no interval to expand into";
    view->has_presented = TRUE;
    tav_calendar_view_thaw (base ());
    EXPECT_EQ (placed (), "C@2009-03-11 09:00");
    EXPECT_EQ (view->recalculated, 1);
}

TEST_F (ViewBase, QueuedEntriesAreReleasedWithTheView)
{
    TavCalendarEntry *entry = make_entry ("loose", at (10, 9), at (10, 10));
    gpointer watch = entry;
    g_object_add_weak_pointer (G_OBJECT (entry), &watch);
    RecordingView *v = RECORDING_VIEW (g_object_ref_sink (g_object_new (recording_view_get_type (), NULL)));
    tav_calendar_view_freeze (TAV_CALENDAR_VIEW (v));
    tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (v), entry);
    g_object_unref (entry);
    EXPECT_NE (watch, nullptr) << "the queue holds a reference";
    gtk_widget_destroy (GTK_WIDGET (v));
    EXPECT_FALSE (tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (v), event ("late", at (10, 9), at (10, 10))))
        << "a disposed view takes nothing";
    g_object_unref (v);
    EXPECT_EQ (watch, nullptr);
}

/* Filters ------------------------------------------------------------------------ */

struct FilterCase {
    const char *label;
    gboolean hide_done;
    gboolean done;
    gboolean visible_source;
    gboolean accepted;
    const char *placed;
};

class ViewFilters : public ViewBase, public ::testing::WithParamInterface<FilterCase> {};

TEST_P (ViewFilters, AddEntry)
{
    const FilterCase &c = GetParam ();
    g_object_set (view, "hide-done-tasks", c.hide_done, NULL);
    g_object_set (source.get (), "visible", c.visible_source, NULL);
    /* A task due on the 11th whose end date lies later: only its due day counts. */
    TavCalendarEntry *t = store (make_task ("T", at (11, 9)));
    g_object_set (t, "done", c.done, NULL);
    TavDate later { 2009, 2, 20 };
    g_object_set (t, "end-date", &later, NULL);
    tav_calendar_view_freeze (base ());
    EXPECT_EQ (tav_calendar_view_add_entry (base (), t), c.accepted) << c.label;
    tav_calendar_view_thaw (base ());
    EXPECT_EQ (placed (), c.placed) << c.label;
}

INSTANTIATE_TEST_SUITE_P (Base, ViewFilters, ::testing::Values (
    FilterCase { "done task hidden", TRUE, TRUE, TRUE, FALSE, "" },
    FilterCase { "done task shown", FALSE, TRUE, TRUE, TRUE, "T@2009-03-11 09:00" },
    FilterCase { "open task with hiding", TRUE, FALSE, TRUE, TRUE, "T@2009-03-11 09:00" },
    FilterCase { "hidden calendar", FALSE, FALSE, FALSE, FALSE, "" }));

TEST_F (ViewBase, RefreshingADoneTaskRemovesIt)
{
    g_object_set (view, "hide-done-tasks", TRUE, NULL);
    TavCalendarEntry *t = store (make_task ("T", at (11, 9)));
    EXPECT_TRUE (tav_calendar_view_refresh_entry (base (), t));
    EXPECT_EQ (view->refreshed, 1);
    g_object_set (t, "done", TRUE, NULL);
    EXPECT_TRUE (tav_calendar_view_refresh_entry (base (), t));
    EXPECT_EQ (view->removed, 1);
    EXPECT_EQ (view->refreshed, 1);
}

/* Instance expansion ---------------------------------------------------------------- */

struct ExpansionCase {
    const char *label;
    Stamp start, end;
    int repeat;
    const char *placed;
    enum { Whole, Narrowed, NarrowedThenCleared } window = Whole;
};

class Expansion : public ViewBase, public ::testing::WithParamInterface<ExpansionCase> {};

TEST_P (Expansion, PlacesEachInstanceInTheWindowOnce)
{
    const ExpansionCase &c = GetParam ();
    TavDateInterval narrow { { 2009, 2, 12 }, { 2009, 2, 13 } };
    if (c.window != ExpansionCase::Whole)
        tav_calendar_view_set_subinterval (base (), &narrow);
    if (c.window == ExpansionCase::NarrowedThenCleared)
        tav_calendar_view_set_subinterval (base (), NULL);
    tav_calendar_view_add_entry (base (), event ("E", c.start, c.end, c.repeat));
    EXPECT_EQ (placed (), c.placed) << c.label;
}

/* The view presents Monday 9 to Sunday 15 March 2009. */
INSTANTIATE_TEST_SUITE_P (Base, Expansion, ::testing::Values (
    ExpansionCase { "single event inside", at (10, 9), at (10, 10), TavCalendarRepeatsNoRepeat, "E@2009-03-10 09:00" },
    ExpansionCase { "single event outside", at (20, 9), at (20, 10), TavCalendarRepeatsNoRepeat, "" },
    ExpansionCase { "event reaching in from the week before", at (7, 9), at (9, 10), TavCalendarRepeatsNoRepeat,
                    "E@2009-03-07 09:00" },
    ExpansionCase { "daily from before the window", at (1, 9), at (1, 10), TavCalendarRepeatsEveryDay,
                    "E@2009-03-09 09:00, E@2009-03-10 09:00, E@2009-03-11 09:00, E@2009-03-12 09:00, "
                    "E@2009-03-13 09:00, E@2009-03-14 09:00, E@2009-03-15 09:00" },
    ExpansionCase { "daily starting inside: its own first day once", at (13, 18), at (13, 19),
                    TavCalendarRepeatsEveryDay, "E@2009-03-13 18:00, E@2009-03-14 18:00, E@2009-03-15 18:00" },
    ExpansionCase { "weekly weekend: only occurrences touching the window", { 2009, 1, 28, 10, 0 }, at (2, 12),
                    TavCalendarRepeatsEveryWeek, "E@2009-03-07 10:00, E@2009-03-14 10:00" },
    ExpansionCase { "subinterval narrows the window", at (1, 9), at (1, 10), TavCalendarRepeatsEveryDay,
                    "E@2009-03-12 09:00, E@2009-03-13 09:00", ExpansionCase::Narrowed },
    ExpansionCase { "a cleared subinterval restores the window", at (13, 9), at (13, 10), TavCalendarRepeatsEveryDay,
                    "E@2009-03-13 09:00, E@2009-03-14 09:00, E@2009-03-15 09:00", ExpansionCase::NarrowedThenCleared }));

TEST (InstanceSpan, MatchesSteppingBothEnds)
{
    /* The plain way moves both ends of the span by the days between the
     * entry's start and the instance, one day at a time. */
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    std::mt19937 random (4711);
    for (int i = 0; i < 3000; i++) {
        TavDate start { 1970 + (int) (random () % 68), (int) (random () % 12), 1 + (int) (random () % 28) };
        TavDateInterval span { start, start };
        tav_calendar_processor_inc_date_by_days (processor, &span.end, (int) (random () % 40));
        TavDate instance = start;
        tav_calendar_processor_inc_date_by_days (processor, &instance, (int) (random () % 4000));
        if (instance.year > 2037)
            continue;
        const int shift = tav_calendar_processor_get_date_interval_in_days (processor, start, instance);
        TavDateInterval plain = span;
        tav_calendar_processor_inc_date_by_days (processor, &plain.start, shift);
        tav_calendar_processor_inc_date_by_days (processor, &plain.end, shift);
        TavDateInterval fast;
        ASSERT_TRUE (tav_calendar_view_instance_span (processor, &span, &instance, &fast));
        ASSERT_EQ (tav_date_compare (&plain.start, &fast.start), 0) << i;
        ASSERT_EQ (tav_date_compare (&plain.end, &fast.end), 0) << i;
    }
    TavDateInterval backwards { { 2009, 2, 12 }, { 2009, 2, 10 } };
    TavDateInterval result;
    TavDate day { 2009, 2, 20 };
    EXPECT_FALSE (tav_calendar_view_instance_span (processor, &backwards, &day, &result));
    g_object_unref (processor);
}

/* Slots, signals and checks ------------------------------------------------------------ */

TEST_F (ViewBase, MissingSlotsAreReportedWithTheirOwnWording)
{
    LogCapture capture;
    RecordingView *bare = make_view (bare_view_get_type ());
    TavCalendarView *v = TAV_CALENDAR_VIEW (bare);
    TavCalendarEntry *e = event ("E", at (10, 9), at (10, 10));
    EXPECT_FALSE (tav_calendar_view_remove_entry (v, e));
    EXPECT_FALSE (tav_calendar_view_refresh_entry (v, e));
    tav_calendar_view_clear_entries (v);
    EXPECT_TRUE (tav_calendar_view_add_entry (v, e));
    gboolean prev = TRUE, next = TRUE;
    TavDate d { 2009, 2, 10 };
    EXPECT_FALSE (tav_calendar_view_get_next_prev_status_for_entry (v, e, &d, &prev, &next));
    tav_calendar_view_reading_started (v);
    tav_calendar_view_reading_finished (v);
    tav_calendar_view_recalculate_entries (v);
    EXPECT_TRUE (capture.has_warning ("The 'remove-entry' method is unimplemented for BareView.")) << capture.dump ();
    EXPECT_TRUE (capture.has_warning ("The 'refresh_entry' method is unimplemented for BareView."));
    EXPECT_TRUE (capture.has_warning ("The 'clear_entries' method is unimplemented for BareView."));
    EXPECT_TRUE (capture.has_warning ("The 'add_entry_instance' method is not implemented for BareView."));
    EXPECT_EQ (capture.lines ().size (), 4u) << capture.dump ();
}

TEST_F (ViewBase, RecalculationGoesThroughTheReadingFinishedSlot)
{
    tav_calendar_view_recalculate_entries (base ());
    EXPECT_EQ (view->recalculated, 0) << "no reading_finished slot, no recalculation";
    RecordingView *finishing = make_view (finishing_view_get_type ());
    tav_calendar_view_recalculate_entries (TAV_CALENDAR_VIEW (finishing));
    EXPECT_EQ (finishing->recalculated, 1);
}

static gboolean
handled_read (TavCalendarView *, gpointer count)
{
    ++*static_cast<int *> (count);
    return TRUE;
}

TEST_F (ViewBase, FirstHandlerThatReadsStopsTheEmission)
{
    int first = 0, second = 0;
    g_signal_connect (view, "database-access-read", G_CALLBACK (handled_read), &first);
    g_signal_connect (view, "database-access-read", G_CALLBACK (handled_read), &second);
    tav_calendar_view_read_database (base ());
    EXPECT_EQ (first, 1);
    EXPECT_EQ (second, 0);
}

TEST_F (ViewBase, PresentedIntervalIsLeftAloneWithoutOne)
{
    LogCapture capture;
    TavDateInterval interval {};
    EXPECT_TRUE (tav_calendar_view_get_presented_interval (base (), &interval));
    EXPECT_EQ (interval.start.day * 100 + interval.end.day, 915);
    view->has_presented = FALSE;
    interval.start.day = 77;
    EXPECT_FALSE (tav_calendar_view_get_presented_interval (base (), &interval));
    EXPECT_EQ (interval.start.day, 77) << "left untouched";
    EXPECT_FALSE (tav_calendar_view_get_presented_interval (base (), NULL));
    EXPECT_CRITICAL (capture, "i_presented != NULL");
}

TEST_F (ViewBase, BadArgumentsAreCriticals)
{
    struct Check { const char *label; std::function<void (TavCalendarView *, TavCalendarEntry *)> call; const char *condition; };
    const Check checks[] = {
        { "add to no view", [] (TavCalendarView *, TavCalendarEntry *e) { tav_calendar_view_add_entry (NULL, e); },
          "TAV_IS_CALENDAR_VIEW (view)" },
        { "add a non-entry", [] (TavCalendarView *v, TavCalendarEntry *) {
              GObject *other = G_OBJECT (g_object_new (G_TYPE_OBJECT, NULL));
              tav_calendar_view_add_entry (v, (TavCalendarEntry *) other);
              g_object_unref (other); },
          "TAV_IS_CALENDAR_ENTRY (entry)" },
        { "remove NULL", [] (TavCalendarView *v, TavCalendarEntry *) { tav_calendar_view_remove_entry (v, NULL); },
          "TAV_IS_CALENDAR_ENTRY (entry)" },
        { "clear no view", [] (TavCalendarView *, TavCalendarEntry *) { tav_calendar_view_clear_entries (NULL); },
          "TAV_IS_CALENDAR_VIEW (view)" },
        { "freeze no view", [] (TavCalendarView *, TavCalendarEntry *) { tav_calendar_view_freeze (NULL); },
          "TAV_IS_CALENDAR_VIEW(view)" },
        { "status of NULL", [] (TavCalendarView *v, TavCalendarEntry *) {
              tav_calendar_view_get_next_prev_status_for_entry (v, NULL, NULL, NULL, NULL); },
          "TAV_IS_CALENDAR_ENTRY(entry)" },
    };
    TavCalendarEntry *entry = event ("E", at (10, 9), at (10, 10));
    for (const Check &c : checks) {
        LogCapture capture;
        c.call (base (), entry);
        EXPECT_CRITICAL (capture, c.condition) << c.label;
    }
    EXPECT_EQ (placed (), "");
}

using ViewBaseDeathTest = ViewBase;

TEST_F (ViewBaseDeathTest, IsFrozenAssertsTheView)
{
    GTEST_FLAG_SET (death_test_style, "threadsafe");
    EXPECT_DEATH (tav_calendar_view_is_frozen (NULL), "TAV_IS_CALENDAR_VIEW\\(view\\)");
}
