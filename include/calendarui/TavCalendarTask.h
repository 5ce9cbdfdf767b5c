/* libcalendarui - a task: an entry that can be marked done
 *
 * Tasks are all-day entries; their state is the "done" property. There is
 * no convenience constructor: create one with
 * g_object_new (TAV_TYPE_CALENDAR_TASK, NULL).
 */
#ifndef TAV_CALENDAR_TASK_H
#define TAV_CALENDAR_TASK_H

#include "TavCalendarEntry.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_TASK            (tav_calendar_task_get_type ())
#define TAV_CALENDAR_TASK(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_TASK, TavCalendarTask))
#define TAV_CALENDAR_TASK_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_TASK, TavCalendarTaskClass))
#define TAV_IS_CALENDAR_TASK(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_TASK))
#define TAV_IS_CALENDAR_TASK_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_TASK))
#define TAV_CALENDAR_TASK_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_TASK, TavCalendarTaskClass))

typedef struct _TavCalendarTask        TavCalendarTask;
typedef struct _TavCalendarTaskClass   TavCalendarTaskClass;
typedef struct _TavCalendarTaskPrivate TavCalendarTaskPrivate;

struct _TavCalendarTask {
    TavCalendarEntry parent;

    /*< private >*/
    TavCalendarTaskPrivate *priv;
};

struct _TavCalendarTaskClass {
    TavCalendarEntryClass parent_class;
};

TAV_API GType tav_calendar_task_get_type (void) G_GNUC_CONST;

G_END_DECLS

#endif /* TAV_CALENDAR_TASK_H */
