/* libcalendarui - calendar task */

#include "TavCalendarTask.h"

#include <new>

enum {
    PROP_0,
    PROP_DONE,
    N_PROPERTIES
};

static GParamSpec *task_properties[N_PROPERTIES];

struct _TavCalendarTaskPrivate {
    bool dispose_has_run = false;
    gboolean done = FALSE;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarTask, tav_calendar_task, TAV_TYPE_CALENDAR_ENTRY)

static void
tav_calendar_task_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarTask *task = TAV_CALENDAR_TASK (object);

    switch (prop_id) {
    case PROP_DONE:
        task->priv->done = g_value_get_boolean (value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_task_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarTask *task = TAV_CALENDAR_TASK (object);

    switch (prop_id) {
    case PROP_DONE:
        g_value_set_boolean (value, task->priv->done);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_task_dispose (GObject *object)
{
    TavCalendarTaskPrivate *priv = TAV_CALENDAR_TASK (object)->priv;

    /* A task holds nothing of its own to release; the flag keeps the body
     * single-shot should that change. */
    priv->dispose_has_run = true;

    G_OBJECT_CLASS (tav_calendar_task_parent_class)->dispose (object);
}

static void
tav_calendar_task_finalize (GObject *object)
{
    TAV_CALENDAR_TASK (object)->priv->~_TavCalendarTaskPrivate ();

    G_OBJECT_CLASS (tav_calendar_task_parent_class)->finalize (object);
}

static void
tav_calendar_task_init (TavCalendarTask *task)
{
    task->priv = new (tav_calendar_task_get_instance_private (task)) _TavCalendarTaskPrivate ();
    /* A task is due on a day, not at a time. */
    g_object_set (task, "all-day", TRUE, nullptr);
}

static void
tav_calendar_task_class_init (TavCalendarTaskClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);

    object_class->set_property = tav_calendar_task_set_property;
    object_class->get_property = tav_calendar_task_get_property;
    object_class->dispose = tav_calendar_task_dispose;
    object_class->finalize = tav_calendar_task_finalize;

    task_properties[PROP_DONE] = g_param_spec_boolean ("done", "done", "If the task is finished.", FALSE,
                                                       static_cast<GParamFlags> (G_PARAM_READWRITE
                                                                                 | G_PARAM_STATIC_STRINGS));
    g_object_class_install_property (object_class, PROP_DONE, task_properties[PROP_DONE]);
}
