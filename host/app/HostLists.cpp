#include "HostLists.h"

namespace tav::host {

gboolean answer_task_read (TavTaskView *view, CalendarSet &calendars)
{
    GList *tasks = calendars.read_kind (EntryKind::Task);
    tav_task_view_delete_all_tasks (view);
    tav_task_view_append_tasks (view, tasks);
    g_list_free_full (tasks, g_object_unref);
    tav_task_view_reading_finished (view);
    return TRUE;
}

gboolean answer_note_read (TavNoteView *view, CalendarSet &calendars)
{
    GList *notes = calendars.read_kind (EntryKind::Note);
    tav_note_view_delete_all_notes (view);
    tav_note_view_append_notes (view, notes);
    g_list_free_full (notes, g_object_unref);
    tav_note_view_reading_finished (view);
    return TRUE;
}

namespace {

gboolean on_task_read_cb (TavTaskView *view, gpointer data)
{
    return answer_task_read (view, *static_cast<CalendarSet *> (data));
}

gboolean on_note_read_cb (TavNoteView *view, gpointer data)
{
    return answer_note_read (view, *static_cast<CalendarSet *> (data));
}

}  // namespace

bool connect_list_view (GtkWidget *view, CalendarSet &calendars)
{
    if (TAV_IS_TASK_VIEW (view)) {
        g_signal_connect (view, "database-access-read", G_CALLBACK (on_task_read_cb), &calendars);
        return true;
    }
    if (TAV_IS_NOTE_VIEW (view)) {
        g_signal_connect (view, "database-access-read", G_CALLBACK (on_note_read_cb), &calendars);
        return true;
    }
    return false;
}

void list_go_to (GtkWidget *view, const TavDate &)
{
    if (TAV_IS_TASK_VIEW (view)) {
        tav_task_view_read_database (TAV_TASK_VIEW (view));
    } else if (TAV_IS_NOTE_VIEW (view)) {
        tav_note_view_read_database (TAV_NOTE_VIEW (view));
    }
}

void list_step (GtkWidget *, int)
{
    /* The lists have no pages: the whole list scrolls. */
}

}  // namespace tav::host
