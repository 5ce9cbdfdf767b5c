/* libcalendarui - the calendar window's private record, shared by the
 * window and its menus (internal) */
#ifndef TAV_CALENDAR_WINDOW_INTERNAL_H
#define TAV_CALENDAR_WINDOW_INTERNAL_H

#include "TavCalendarWindow.h"

#include "KivoAppMenu.h"

#include "TavAgendaView.h"
#include "TavDayView.h"
#include "TavTaskView.h"
#include "TavNoteView.h"
#include "TavCalendarSettingsDialog.h"
#include "TavCalendarDialog.h"

/* The window's pannable areas, in order: the agenda's is the second, the
 * week's the third. */
enum TavWindowArea {
    AREA_DAY,
    AREA_AGENDA,
    AREA_WEEK,
    AREA_EVENT,
    AREA_TASK,
    AREA_NOTE,
    N_AREAS
};

struct _TavCalendarWindowPrivate {
    gboolean disposed = FALSE;
    TavCalendarProcessor *processor = nullptr;
    /* The view that has the user's attention. */
    GtkWidget *current_view = nullptr;
    /* What is in the main window: the month view or the week's or the
     * agenda's pannable area. */
    GtkWidget *packed_child = nullptr;
    int first_day_of_week = 1;
    GtkWidget *areas[N_AREAS] = {};
    GtkWidget *day_window = nullptr;
    GtkWidget *note_window = nullptr;
    GtkWidget *task_window = nullptr;
    GtkWidget *event_window = nullptr;
    /* Main menu. */
    GtkWidget *next_month_item = nullptr;
    GtkWidget *prev_month_item = nullptr;
    GtkWidget *next_week_item = nullptr;
    GtkWidget *prev_week_item = nullptr;
    GtkWidget *month_toggle = nullptr;
    GtkWidget *week_toggle = nullptr;
    GtkWidget *agenda_toggle = nullptr;
    /* Event view menu. */
    GtkWidget *prev_event_item = nullptr;
    GtkWidget *next_event_item = nullptr;
    GtkWidget *edit_event_item = nullptr;
    GtkWidget *remove_event_item = nullptr;
    gboolean time_24hr = TRUE;
    GdkPixmap *month_pixmaps[12] = {};
    gboolean entries_changed = FALSE;
    gboolean month_needs_refresh = FALSE;
    gboolean week_needs_refresh = FALSE;
    gboolean agenda_needs_refresh = FALSE;
    gboolean view_changed = FALSE;
};

/* Menus (TavCalendarWindowMenu.cpp). */
KivoAppMenu *_create_main_view_menu (TavCalendarWindow *window);
KivoAppMenu *_create_event_view_menu (TavCalendarWindow *window);
KivoAppMenu *_create_day_view_menu (TavCalendarWindow *window);
KivoAppMenu *_create_notes_view_menu (TavCalendarWindow *window);
KivoAppMenu *_create_tasks_view_menu (TavCalendarWindow *window);

void on_show_hide_remove_menu_item (TavCalendarWindow *window, gboolean hide);
void on_show_hide_edit_remove_menu_item (TavCalendarWindow *window, gboolean hide);
void on_show_hide_next_entry_menu_item (TavCalendarWindow *window, gboolean hide);
void on_show_hide_prev_entry_menu_item (TavCalendarWindow *window, gboolean hide);

/* The toggles' handlers, blocked while the window switches views itself. */
void on_menu_month_view_clicked (GtkToggleButton *button, gpointer data);
void on_menu_week_view_clicked (GtkToggleButton *button, gpointer data);
void on_menu_agenda_view_clicked (GtkToggleButton *button, gpointer data);

#endif /* TAV_CALENDAR_WINDOW_INTERNAL_H */
