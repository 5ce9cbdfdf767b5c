/* The event editor over the store, until the calendar window opens it:
 * tav-calendar --new-event [--date D] and --edit-event UID. */
#ifndef TAV_HOST_EDITOR_H
#define TAV_HOST_EDITOR_H

#include "HostCalendarSet.h"

#include <gtk/gtk.h>

#include <string>

namespace tav::host {

/* The stored event whose iCalendar UID (or, failing that, stored id) is
 * @uid, as a new entry object; NULL when there is none. */
TavCalendarEntry *find_event (CalendarSet &calendars, const std::string &uid);

/* Every calendar of the store, for the editor's calendar picker; free with
 * g_list_free (the sources belong to @calendars). */
GList *all_sources (CalendarSet &calendars);

/* An editor for a new event on @date (NULL: today), or for @entry, with
 * every calendar offered. Its results are reported on standard output,
 * failures on standard error and in a note. */
GtkWidget *open_event_editor (CalendarSet &calendars, const TavDate *date, TavCalendarEntry *entry);

/* Runs an editor until it closes; 0 when the user saved, 1 when a save
 * failed, 0 as well when the user closed it without saving. */
int run_event_editor (CalendarSet &calendars, const TavDate *date, TavCalendarEntry *entry);

/* The task and note editors over the store, for @task / @note (NULL: a new
 * one), with every calendar offered; results and failures are reported as
 * for the event editor. */
GtkWidget *open_task_editor (CalendarSet &calendars, TavCalendarTask *task);
GtkWidget *open_note_editor (CalendarSet &calendars, TavCalendarNote *note);

/* Renders the editor for a new event (DIR/event-editor.png) and for a
 * stored event, a repeating one when the store has one
 * (DIR/event-editor-edit.png), then the task and note editors on a stored
 * task and note, or on new ones (DIR/task-editor.png, DIR/note-editor.png);
 * 0 on success. */
int render_editors (CalendarSet &calendars, const TavDate &date, const std::string &dir);

}  // namespace tav::host

#endif
