/* libcalendarui - the task list
 *
 * A GtkTreeView over a GtkListStore of tasks: a "New task" row first, then
 * the open tasks by due date and title, then the done ones, struck through.
 * The owner fills it: "database-access-read" asks for the tasks, which the
 * owner hands over with tav_task_view_append_task() and closes with
 * tav_task_view_reading_finished(). A tap on a task's tick marks it done
 * (or open again) and saves it through the task's calendar source; a tap
 * elsewhere on the row opens it ("task-activated"); a held finger offers
 * Delete.
 *
 * Store columns, in order: the task (TavCalendarTask), the status icon
 * (GdkPixbuf), the date and the title (Pango markup), the alarm icon
 * (GdkPixbuf, NULL without an alarm) and the task's "has-alarm" (gboolean).
 *
 * Signals:
 *   "insert-activated" (guint time, detailed): the "New task" row was
 *       tapped; the argument is the tap's event time.
 *   "task-activated" (TavCalendarTask *): a task was tapped.
 *   "task-modified" (TavCalendarTask *): a task was ticked off or back on.
 *   "database-access-read" () -> gboolean: fill the view now.
 *   "task-deleted" (TavCalendarTask *): a task was deleted from its source.
 */
#ifndef TAV_TASK_VIEW_H
#define TAV_TASK_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarTask.h"

G_BEGIN_DECLS

#define TAV_TYPE_TASK_VIEW            (tav_task_view_get_type ())
#define TAV_TASK_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_TASK_VIEW, TavTaskView))
#define TAV_TASK_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_TASK_VIEW, TavTaskViewClass))
#define TAV_IS_TASK_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_TASK_VIEW))
#define TAV_IS_TASK_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_TASK_VIEW))
#define TAV_TASK_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_TASK_VIEW, TavTaskViewClass))

typedef struct _TavTaskView        TavTaskView;
typedef struct _TavTaskViewClass   TavTaskViewClass;
typedef struct _TavTaskViewPrivate TavTaskViewPrivate;

struct _TavTaskView {
    GtkTreeView parent;
    /*< private >*/
    TavTaskViewPrivate *priv;
};

struct _TavTaskViewClass {
    GtkTreeViewClass parent_class;
};

TAV_API GType      tav_task_view_get_type         (void) G_GNUC_CONST;

/**
 * tav_task_view_new:
 *
 * Returns: (transfer floating): an empty task list (only its "New task" row).
 */
TAV_API GtkWidget *tav_task_view_new              (void);

/**
 * tav_task_view_read_database:
 * @taskview: a task view
 *
 * Emits "database-access-read" so that the owner appends the tasks.
 */
TAV_API void       tav_task_view_read_database    (TavTaskView *taskview);

/**
 * tav_task_view_append_task:
 * @taskview: a task view
 * @task: the task to show; the view takes its own reference
 *
 * Adds a row for @task in its place. A task of a hidden calendar is
 * skipped; a task already in the view has its row rewritten instead.
 */
TAV_API void       tav_task_view_append_task      (TavTaskView *taskview, TavCalendarTask *task);
/**
 * tav_task_view_append_tasks:
 * @taskview: a task view
 * @list: (element-type TavCalendarTask): tasks; the list is not taken over
 */
TAV_API void       tav_task_view_append_tasks     (TavTaskView *taskview, GList *list);
/**
 * tav_task_view_refresh_task:
 * @taskview: a task view
 * @task: a task whose properties changed
 *
 * Rewrites the task's row and moves it to its new place.
 */
TAV_API void       tav_task_view_refresh_task     (TavTaskView *taskview, TavCalendarTask *task);
/**
 * tav_task_view_delete_task:
 * @taskview: a task view
 * @task: a task of the view
 *
 * Removes the task's row (the task itself is not touched).
 */
TAV_API void       tav_task_view_delete_task      (TavTaskView *taskview, TavCalendarTask *task);
/**
 * tav_task_view_delete_all_tasks:
 * @taskview: a task view
 *
 * Removes every task row; the "New task" row stays.
 */
TAV_API void       tav_task_view_delete_all_tasks (TavTaskView *taskview);
/**
 * tav_task_view_reading_finished:
 * @taskview: a task view
 *
 * The owner has appended everything; half a second later an empty list
 * shows that it has no tasks.
 */
TAV_API void       tav_task_view_reading_finished (TavTaskView *taskview);

G_END_DECLS

#endif /* TAV_TASK_VIEW_H */
