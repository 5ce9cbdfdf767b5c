/* libcalendarui - the task editor
 *
 * The dialog in which the user creates a task or edits one: title, done
 * flag, due date, calendar and a reminder on the day before the due date.
 * Save creates the task in the chosen calendar, saves the edited task in
 * place, or moves it to another calendar (created there, then deleted from
 * the old one), and closes the window. Delete asks first, then removes the
 * edited task from its calendar and closes the window. Escape closes it
 * without saving.
 *
 * Opening it:
 *
 *   new task       w = tav_calendar_task_window_new ();
 *   existing one   w = tav_calendar_task_window_new_from_task (task);
 *   then           tav_calendar_task_window_add_sources (w, calendars);
 *                  gtk_window_set_transient_for (GTK_WINDOW (w), parent);
 *                  gtk_widget_show (w);
 *
 * A new task is due today and has no reminder. Only writable calendars are
 * offered; the task's own calendar is chosen for an existing task, the
 * first visible one for a new task. Save rests until a writable calendar
 * is offered; Delete rests for a new task.
 *
 * Signals (run last; void (*) (TavCalendarTaskWindow *window,
 * TavCalendarTask *task, gpointer user_data)):
 *   "task-created"   a new task was stored (also the new copy of a moved one);
 *   "task-saved"     an edited task was saved in place, or its calendar
 *                    answered that the task already existed;
 *   "deleting-task"  the task is gone from its calendar: after Delete, and
 *                    after a move with the old copy (twice when the old
 *                    calendar deleted it: once before, once after).
 * Failures are reported with the dialog's "error" signal. Save closes the
 * window whatever the calendar answered (a failed save leaves the task in
 * its calendar as it was); a failed Delete keeps it open.
 *
 * The reminder rings on the day before the due date at its time (12:00
 * unless changed), never earlier than an hour from now; a task read with
 * any other alarm gets the day-before reminder. Ticking "done" drops the
 * reminder. A title of only white space is no title: Save then does nothing.
 *
 * Properties: "task" (the task edited), "description" (the initial title
 * text), "entry-id" (read only: the task's "num-id").
 */
#ifndef TAV_CALENDAR_TASK_WINDOW_H
#define TAV_CALENDAR_TASK_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarDialog.h"
#include "TavCalendarSource.h"
#include "TavCalendarTask.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_TASK_WINDOW            (tav_calendar_task_window_get_type ())
#define TAV_CALENDAR_TASK_WINDOW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_TASK_WINDOW, TavCalendarTaskWindow))
#define TAV_CALENDAR_TASK_WINDOW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_TASK_WINDOW, TavCalendarTaskWindowClass))
#define TAV_IS_CALENDAR_TASK_WINDOW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_TASK_WINDOW))
#define TAV_IS_CALENDAR_TASK_WINDOW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_TASK_WINDOW))
#define TAV_CALENDAR_TASK_WINDOW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_TASK_WINDOW, TavCalendarTaskWindowClass))

typedef struct _TavCalendarTaskWindow        TavCalendarTaskWindow;
typedef struct _TavCalendarTaskWindowClass   TavCalendarTaskWindowClass;
typedef struct _TavCalendarTaskWindowPrivate TavCalendarTaskWindowPrivate;

struct _TavCalendarTaskWindow {
    TavCalendarDialog parent;

    /*< private >*/
    TavCalendarTaskWindowPrivate *priv;
};

struct _TavCalendarTaskWindowClass {
    TavCalendarDialogClass parent_class;

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType      tav_calendar_task_window_get_type (void) G_GNUC_CONST;

/* An editor for a new task. */
TAV_API GtkWidget *tav_calendar_task_window_new           (void);
/* An editor for @task (the window keeps a reference); the task changes
 * only when the user saves. */
TAV_API GtkWidget *tav_calendar_task_window_new_from_task (TavCalendarTask *task);

/* Offers @source in the calendar picker and chooses it; read-only sources
 * are skipped. */
TAV_API void tav_calendar_task_window_add_source  (TavCalendarTaskWindow *window, TavCalendarSource *source);
/* add_source for each TavCalendarSource of @sources (not taken over), then
 * chooses the task's own calendar, or for a new task the first visible one. */
TAV_API void tav_calendar_task_window_add_sources (TavCalendarTaskWindow *window, GList *sources);

G_END_DECLS

#endif /* TAV_CALENDAR_TASK_WINDOW_H */
