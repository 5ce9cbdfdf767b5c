/* libcalendarui - the base of the dated calendar views
 *
 * The base owns no pixels. It gives the window one way to feed any view:
 * freeze the view, add entries (queued while frozen), thaw; on the last thaw
 * every queued entry is expanded into the instances that touch the view's
 * window, and the concrete view places each of them.
 */
#include "TavCalendarView.h"

#include <new>
#include <utility>
#include <vector>

#include "TavCalendarEntryInternal.h"
#include "TavCalendarTask.h"
#include "TavCalendarViewPrivate.h"
#include "KivoStyle.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavLog.h"
#include "TavMarshal.h"

using tav::GRefPtr;

enum {
    DATABASE_ACCESS_READ,
    YEAR_LIMIT_REACHED,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_DATE,
    PROP_HIDE_DONE_TASKS,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

struct _TavCalendarViewPrivate {
    gboolean disposed = FALSE;
    GRefPtr<TavCalendarProcessor> processor;
    int freeze_counter = 0;
    /* Entries that arrived while frozen, in arrival order, one reference each. */
    std::vector<GRefPtr<TavCalendarEntry>> frozen_entries;
    gboolean hide_done_tasks = FALSE;
    gboolean has_subinterval = FALSE;
    TavDateInterval subinterval {};
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarView, tav_calendar_view, GTK_TYPE_WIDGET,
                         G_ADD_PRIVATE (TavCalendarView))

/* Auxiliary functions ------------------------------------------------------- */

static gboolean
task_is_hidden (TavCalendarView *view, TavCalendarEntry *entry)
{
    if (!view->priv->hide_done_tasks || !TAV_IS_CALENDAR_TASK (entry))
        return FALSE;
    gboolean done = FALSE;
    g_object_get (entry, "done", &done, NULL);
    return done;
}

/* The window instances are expanded into: the subinterval when one is set,
 * otherwise the presented interval. */
static gboolean
expansion_window (TavCalendarView *view, TavDateInterval *window)
{
    if (view->priv->has_subinterval) {
        *window = view->priv->subinterval;
        return TRUE;
    }
    return tav_calendar_view_get_presented_interval (view, window);
}

static void
add_instance (TavCalendarView *view, const TavTimestamp *instance_start, TavCalendarEntry *entry)
{
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (!klass->add_entry_instance) {
        TAV_WARNING ("The 'add_entry_instance' method is not implemented for %s.", G_OBJECT_TYPE_NAME (view));
        return;
    }
    klass->add_entry_instance (view, instance_start, entry);
}

gboolean
tav_calendar_view_instance_span (TavCalendarProcessor *processor, const TavDateInterval *span,
                                 const TavDate *instance_date, TavDateInterval *result)
{
    g_assert (span != NULL && instance_date != NULL && result != NULL);
    if (tav_date_compare (&span->end, &span->start) < 0)
        return FALSE;
    /* Stepping both ends by the same number of days keeps their distance,
     * so the moved span starts on the instance's date and is as long as the
     * entry's own. */
    const int length = tav_calendar_processor_get_date_interval_in_days (processor, span->start, span->end);
    result->start = *instance_date;
    result->end = *instance_date;
    tav_calendar_processor_inc_date_by_days (processor, &result->end, length);
    return TRUE;
}

/* Hands every instance of @entry that touches @window to the view. */
static void
expand_entry (TavCalendarView *view, TavCalendarEntry *entry, const TavDateInterval *window)
{
    TavCalendarProcessor *processor = view->priv->processor.get ();
    gboolean has_repeat = FALSE;
    g_object_get (entry, "has-repeat", &has_repeat, NULL);
    /* "start-timestamp" and "end-date", read directly. */
    const tav::model::EntrySpan entry_span = tav::model::entry_span (entry);
    const TavTimestamp *start = &entry_span.start;

    /* A task occupies its due day only. */
    const gboolean is_task = TAV_IS_CALENDAR_TASK (entry);
    TavDateInterval own_span { start->date, is_task ? start->date : entry_span.end.date };

    if (tav_date_interval_intersect (&own_span, window, NULL))
        add_instance (view, start, entry);

    if (!is_task && has_repeat) {
        const TavTimestamp *instance = tav_calendar_entry_get_first_instance_timestamp (entry, window);
        /* The entry's own occurrence was handled above. */
        if (instance && tav_date_compare (&instance->date, &start->date) == 0 &&
            tav_time_compare (&instance->time, &start->time) == 0)
            instance = tav_calendar_entry_get_next_instance_timestamp (entry);
        while (instance) {
            TavDateInterval span;
            if (tav_calendar_view_instance_span (processor, &own_span, &instance->date, &span) &&
                tav_date_interval_intersect (&span, window, NULL)) {
                /* The instance belongs to the entry, which may drop it while
                 * the view works: hand over a copy. */
                TavTimestamp *copy = tav_timestamp_copy (instance);
                add_instance (view, copy, entry);
                tav_timestamp_free (copy);
            }
            instance = tav_calendar_entry_get_next_instance_timestamp (entry);
        }
    }
}

static void
drop_frozen_entries (TavCalendarView *view)
{
    /* Moved out first: unreferencing may run arbitrary code. */
    auto queue = std::move (view->priv->frozen_entries);
    view->priv->frozen_entries.clear ();
}

/* Class -------------------------------------------------------------------- */

static gboolean
tav_calendar_view_real_add_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    TavCalendarViewPrivate *priv = view->priv;
    if (priv->disposed)
        return FALSE;
    if (priv->freeze_counter != 0) {
        if (!G_IS_OBJECT (entry)) {
            /* Nothing can be kept of something that is not an object. */
            TAV_WARNING ("  Ref : %p which is not an object at line %d.", (void *) entry, 558);
            return FALSE;
        }
        priv->frozen_entries.emplace_back (entry);
        return TRUE;
    }
    TavDateInterval window;
    if (!expansion_window (view, &window))
        return FALSE;
    expand_entry (view, entry, &window);
    return TRUE;
}

static void
tav_calendar_view_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarView *view = TAV_CALENDAR_VIEW (object);
    switch (prop_id) {
    case PROP_HIDE_DONE_TASKS:
        g_value_set_boolean (value, view->priv->hide_done_tasks);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_view_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarView *view = TAV_CALENDAR_VIEW (object);
    switch (prop_id) {
    case PROP_HIDE_DONE_TASKS: {
        const gboolean hide = g_value_get_boolean (value);
        if (hide != view->priv->hide_done_tasks) {
            view->priv->hide_done_tasks = hide;
            g_object_notify_by_pspec (object, pspec);
        }
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_view_dispose (GObject *object)
{
    TavCalendarView *view = TAV_CALENDAR_VIEW (object);
    if (!view->priv->disposed) {
        view->priv->disposed = TRUE;
        view->priv->processor = nullptr;
    }
    G_OBJECT_CLASS (tav_calendar_view_parent_class)->dispose (object);
}

static void
tav_calendar_view_finalize (GObject *object)
{
    TavCalendarView *view = TAV_CALENDAR_VIEW (object);
    drop_frozen_entries (view);
    view->priv->~_TavCalendarViewPrivate ();
    G_OBJECT_CLASS (tav_calendar_view_parent_class)->finalize (object);
}

static void
tav_calendar_view_class_init (TavCalendarViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->get_property = tav_calendar_view_get_property;
    object_class->set_property = tav_calendar_view_set_property;
    object_class->dispose = tav_calendar_view_dispose;
    object_class->finalize = tav_calendar_view_finalize;

    klass->add_entry = tav_calendar_view_real_add_entry;

    properties[PROP_DATE] = g_param_spec_int ("date", "Date",
        "An ignored property just for the 'notify::date' signal.",
        0, G_MAXINT, 0, G_PARAM_READWRITE);
    properties[PROP_HIDE_DONE_TASKS] = g_param_spec_boolean ("hide-done-tasks", "Hide done tasks",
        "If completed tasks are to be hidden.", FALSE, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    signals[DATABASE_ACCESS_READ] = g_signal_new ("database-access-read",
        G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
        tav_boolean_handled_accumulator, NULL,
        calendar_cclosure_marshal_BOOLEAN__VOID,
        G_TYPE_BOOLEAN, 0);
    signals[YEAR_LIMIT_REACHED] = g_signal_new ("year-limit-reached",
        G_TYPE_FROM_CLASS (klass), (GSignalFlags) (G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED), 0,
        NULL, NULL, g_cclosure_marshal_VOID__VOID,
        G_TYPE_NONE, 0);
}

static void
tav_calendar_view_init (TavCalendarView *view)
{
    void *memory = tav_calendar_view_get_instance_private (view);
    view->priv = new (memory) TavCalendarViewPrivate ();
    view->priv->processor = tav::adoptGRef (tav_calendar_processor_new ());
    /* The views' menus and pickers are styled by the platform layer: its
     * style goes in now, before the window holding the view shows, and not
     * with the first menu (which would restyle the running application). */
    kivo_style_init ();
}

/* Public API ---------------------------------------------------------------- */

TavCalendarProcessor *
tav_calendar_view_get_processor (TavCalendarView *view)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW(view), NULL);
    return view->priv->processor.get ();
}

gboolean
tav_calendar_view_get_presented_interval (TavCalendarView *view, TavDateInterval *i_presented)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW(view), FALSE);
    g_return_val_if_fail (i_presented != NULL, FALSE);

    TavDateInterval *presented = NULL;
    g_object_get (view, "presented-interval", &presented, NULL);
    if (!presented)
        return FALSE;
    *i_presented = *presented;
    tav_date_interval_free (presented);
    return TRUE;
}

void
tav_calendar_view_set_subinterval (TavCalendarView *view, const TavDateInterval *interval)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW(view));
    if (!interval) {
        view->priv->has_subinterval = FALSE;
        return;
    }
    view->priv->subinterval = *interval;
    view->priv->has_subinterval = TRUE;
}

void
tav_calendar_view_read_database (TavCalendarView *view)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW(view));
    gboolean handled = FALSE;
    g_signal_emit (view, signals[DATABASE_ACCESS_READ], 0, &handled);
}

gboolean
tav_calendar_view_add_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW (view), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);

    if (!tav_calendar_entry_is_visible (entry))
        return FALSE;
    if (task_is_hidden (view, entry))
        return FALSE;
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (!klass->add_entry)
        return FALSE;
    return klass->add_entry (view, entry);
}

void
tav_calendar_view_add_entries (TavCalendarView *view, GList *entries)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW(view));
    if (!entries || view->priv->disposed)
        return;
    for (GList *l = entries; l; l = l->next)
        tav_calendar_view_add_entry (view, (TavCalendarEntry *) l->data);
}

gboolean
tav_calendar_view_remove_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW (view), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);

    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (!klass->remove_entry) {
        TAV_WARNING ("The 'remove-entry' method is unimplemented for %s.", G_OBJECT_TYPE_NAME (view));
        return FALSE;
    }
    return klass->remove_entry (view, entry);
}

gboolean
tav_calendar_view_refresh_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW (view), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);

    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    /* A task that became done while done tasks are hidden leaves the view. */
    if (task_is_hidden (view, entry))
        return klass->remove_entry ? klass->remove_entry (view, entry) : FALSE;
    if (!klass->refresh_entry) {
        TAV_WARNING ("The 'refresh_entry' method is unimplemented for %s.", G_OBJECT_TYPE_NAME (view));
        return FALSE;
    }
    return klass->refresh_entry (view, entry);
}

void
tav_calendar_view_clear_entries (TavCalendarView *view)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW (view));

    drop_frozen_entries (view);
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (!klass->clear_entries) {
        TAV_WARNING ("The 'clear_entries' method is unimplemented for %s.", G_OBJECT_TYPE_NAME (view));
        return;
    }
    klass->clear_entries (view);
}

void
tav_calendar_view_recalculate_entries (TavCalendarView *view)
{
    /* No argument check is reported here; a non-view is simply ignored. */
    if (!TAV_IS_CALENDAR_VIEW (view))
        return;
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    /* Only views that finish readings are recalculated through this call:
     * the others recalculate on their own when the read ends. */
    if (klass->reading_finished && klass->recalculate_entries)
        klass->recalculate_entries (view);
}

void
tav_calendar_view_reading_started (TavCalendarView *view)
{
    if (!TAV_IS_CALENDAR_VIEW (view))
        return;
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (klass->reading_started)
        klass->reading_started (view);
}

void
tav_calendar_view_reading_finished (TavCalendarView *view)
{
    if (!TAV_IS_CALENDAR_VIEW (view))
        return;
    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (klass->reading_finished)
        klass->reading_finished (view);
}

gboolean
tav_calendar_view_get_next_prev_status_for_entry (TavCalendarView *view, TavCalendarEntry *entry,
                                                  const TavDate *instance_date, gboolean *has_prev,
                                                  gboolean *has_next)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_VIEW(view), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);

    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (!klass->get_next_prev_status_for_entry)
        return FALSE;
    return klass->get_next_prev_status_for_entry (view, entry, instance_date, has_prev, has_next);
}

void
tav_calendar_view_freeze (TavCalendarView *view)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW(view));
    if (!view->priv->disposed)
        view->priv->freeze_counter++;
}

void
tav_calendar_view_thaw (TavCalendarView *view)
{
    g_return_if_fail (TAV_IS_CALENDAR_VIEW(view));
    g_return_if_fail (view->priv->freeze_counter > 0);

    TavCalendarViewPrivate *priv = view->priv;
    if (priv->disposed)
        return;
    TavDateInterval window;
    /* Without a window nothing can be expanded: the view stays frozen. */
    if (!expansion_window (view, &window))
        return;
    if (priv->freeze_counter > 1) {
        priv->freeze_counter--;
        return;
    }

    auto queue = std::move (priv->frozen_entries);
    priv->frozen_entries.clear ();
    for (auto &entry : queue) {
        if (priv->disposed)
            break;
        expand_entry (view, entry.get (), &window);
    }
    queue.clear ();
    priv->freeze_counter = 0;

    TavCalendarViewClass *klass = TAV_CALENDAR_VIEW_GET_CLASS (view);
    if (klass->recalculate_entries)
        klass->recalculate_entries (view);
}

gboolean
tav_calendar_view_is_frozen (TavCalendarView *view)
{
    g_assert (TAV_IS_CALENDAR_VIEW(view));
    return view->priv->freeze_counter != 0;
}
