/* The task and note lists of tav-calendar, filled from the store. */
#ifndef TAV_HOST_LISTS_H
#define TAV_HOST_LISTS_H

#include "HostCalendarSet.h"

#include <gtk/gtk.h>

namespace tav::host {

/* Answers the list's "database-access-read": the tasks (or notes) of the
 * visible calendars, replacing what the list showed. */
gboolean answer_task_read (TavTaskView *view, CalendarSet &calendars);
gboolean answer_note_read (TavNoteView *view, CalendarSet &calendars);

/* Connects a task or note list to @calendars; FALSE for any other widget. */
bool connect_list_view (GtkWidget *view, CalendarSet &calendars);

/* What --view tasks|notes shows: the list read afresh (the date is not used). */
void list_go_to (GtkWidget *view, const TavDate &date);
void list_step (GtkWidget *view, int direction);

}  // namespace tav::host

#endif
