/* libcalendarui - test hooks of the task and note lists (internal) */
#ifndef TAV_LIST_VIEW_INTERNAL_H
#define TAV_LIST_VIEW_INTERNAL_H

#include "TavNoteView.h"
#include "TavTaskView.h"

/* Store columns. */
enum {
    TAV_TASK_VIEW_COLUMN_TASK,
    TAV_TASK_VIEW_COLUMN_STATUS,
    TAV_TASK_VIEW_COLUMN_DATE,
    TAV_TASK_VIEW_COLUMN_TITLE,
    TAV_TASK_VIEW_COLUMN_ALARM,
    TAV_TASK_VIEW_COLUMN_HAS_ALARM,
    TAV_TASK_VIEW_N_COLUMNS
};
enum {
    TAV_NOTE_VIEW_COLUMN_NOTE,
    TAV_NOTE_VIEW_COLUMN_DATE,
    TAV_NOTE_VIEW_COLUMN_TITLE,
    TAV_NOTE_VIEW_N_COLUMNS
};

/* The empty-list checks the one-shot timeouts run. */
void tav_task_view_check_and_paint_no_entries_label (TavTaskView *taskview);
void tav_note_view_check_and_paint_no_entries_label (TavNoteView *noteview);

/* The pending empty-list check's source id, 0 when none. */
guint _tav_task_view_get_empty_check_id (TavTaskView *taskview);
guint _tav_note_view_get_empty_check_id (TavNoteView *noteview);
/* TRUE while the view shows its "no entries" text. */
gboolean _tav_task_view_shows_no_entries (TavTaskView *taskview);
gboolean _tav_note_view_shows_no_entries (TavNoteView *noteview);
/* The status icons of an open and a done task. */
GdkPixbuf *_tav_task_view_get_status_icon (TavTaskView *taskview, gboolean done);
/* The tick column (what a tap toggles). */
GtkTreeViewColumn *_tav_task_view_get_status_column (TavTaskView *taskview);
/* The context menu, built on first use. */
GtkWidget *_tav_task_view_get_context_menu (TavTaskView *taskview);
GtkWidget *_tav_note_view_get_context_menu (TavNoteView *noteview);

#endif /* TAV_LIST_VIEW_INTERNAL_H */
