/* libcalendarui - the calendar's main window
 *
 * TavCalendarWindow owns one of each calendar view. The month, week and
 * agenda views are root views, shown one at a time inside the window; the
 * day, event, task and note views each live in a window of their own that
 * is pushed on top of it. The window keeps the date being looked at when
 * the user switches root views, routes every data change to the views that
 * must show it, offers the application menus and turns the user's actions
 * into signals the host answers (opening editors, settings).
 *
 * The window reads nothing itself: each view asks its owner for entries
 * with "database-access-read" (TavCalendarView), and the host answers.
 */
#ifndef TAV_CALENDAR_WINDOW_H
#define TAV_CALENDAR_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavHelper.h"
#include "TavDate.h"
#include "TavCalendarEntry.h"
#include "TavCalendarView.h"
#include "TavCalendarSettingsDialog.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_WINDOW            (tav_calendar_window_get_type ())
#define TAV_CALENDAR_WINDOW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_WINDOW, TavCalendarWindow))
#define TAV_CALENDAR_WINDOW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_WINDOW, TavCalendarWindowClass))
#define TAV_IS_CALENDAR_WINDOW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_WINDOW))
#define TAV_IS_CALENDAR_WINDOW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_WINDOW))
#define TAV_CALENDAR_WINDOW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_WINDOW, TavCalendarWindowClass))

typedef struct _TavCalendarWindow        TavCalendarWindow;
typedef struct _TavCalendarWindowClass   TavCalendarWindowClass;
typedef struct _TavCalendarWindowPrivate TavCalendarWindowPrivate;

/**
 * TavCalendarWindow:
 * @month_view: the month view (a #TavCalendar), shown bare.
 * @week_view: the week view (a #TavWeekView).
 * @day_view: the day view, shown in the day window (NULL in a build without it).
 * @agenda_view: the agenda view (NULL in a build without it).
 * @event_view: the single-event view (a #TavEventView), shown in the event window.
 * @task_view, @note_view: the task and note lists (NULL in a build without them).
 * @bg_file_names: (array fixed-size=12): the month background images,
 *   January first (from the style property "monthly-bg-image-files").
 *
 * Hosts connect to the views' own signals through these fields (for
 * instance "entry-activated" and "insert-activated" to open an entry or the
 * editor); the window connects to the others itself.
 */
struct _TavCalendarWindow {
    /*< private >*/
    GtkWindow parent;         /* the toolkit's stackable window */
    gpointer stackable_priv;

    /*< public >*/
    GtkWidget *month_view;
    GtkWidget *week_view;
    GtkWidget *day_view;
    GtkWidget *agenda_view;
    GtkWidget *event_view;
    GtkWidget *task_view;
    GtkWidget *note_view;
    /*< private >*/
    TavCalendarWindowPrivate *priv;
    /*< public >*/
    gchar **bg_file_names;
};

/* The action signals: emission stops at the first handler that returns TRUE. */
struct _TavCalendarWindowClass {
    GtkWindowClass parent_class;

    gboolean (*next_week_activated)      (TavCalendarWindow *window);
    gboolean (*previous_week_activated)  (TavCalendarWindow *window);
    gboolean (*next_month_activated)     (TavCalendarWindow *window);
    gboolean (*previous_month_activated) (TavCalendarWindow *window);
    gboolean (*previous_day_activated)   (TavCalendarWindow *window);
    gboolean (*next_day_activated)       (TavCalendarWindow *window);
    gboolean (*previous_event_activated) (TavCalendarWindow *window);
    gboolean (*next_event_activated)     (TavCalendarWindow *window);
    gboolean (*new_event_activated)      (TavCalendarWindow *window);
    gboolean (*edit_event_activated)     (TavCalendarWindow *window, TavCalendarEntry *entry);
    gboolean (*remove_event_activated)   (TavCalendarWindow *window, TavCalendarEntry *entry);
    gboolean (*jump_to_today_activated)  (TavCalendarWindow *window);
    gboolean (*jump_to_activated)        (TavCalendarWindow *window);
    gboolean (*go_to_tasks_activated)    (TavCalendarWindow *window);
    gboolean (*go_to_notes_activated)    (TavCalendarWindow *window);
    gboolean (*settings_activated)       (TavCalendarWindow *window);
};

TAV_API GType            tav_calendar_window_get_type                (void) G_GNUC_CONST;
TAV_API GtkWidget       *tav_calendar_window_new                     (void);

/* Root views: make one the window's content and the current view. The
 * activate variants first carry the date being looked at over from the
 * current view. */
TAV_API void             tav_calendar_window_show_month_view         (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_show_week_view          (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_show_agenda_view        (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_activate_month_view     (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_activate_week_view      (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_activate_agenda_view    (TavCalendarWindow *window);

/* Stacked views: create their window the first time, then push it. */
TAV_API void             tav_calendar_window_show_day_view           (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_show_event_view         (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_show_task_view          (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_show_note_view          (TavCalendarWindow *window);
/* Destroys the event window (the event view is kept for the next one). */
TAV_API void             tav_calendar_window_close_event_view_window (TavCalendarWindow *window);
/* Kept for old hosts: only logs that it is not supported. */
TAV_API void             tav_calendar_window_zoom_to_week_view       (TavCalendarWindow *window,
                                                                      const TavDateInterval *interval);

TAV_API gboolean         tav_calendar_window_month_view_active       (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_week_view_active        (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_day_view_active         (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_agenda_view_active      (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_event_view_active       (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_task_view_active        (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_note_view_active        (TavCalendarWindow *window);

/* Returns: (transfer none) (nullable): the root view now in the window. */
TAV_API TavCalendarView *tav_calendar_window_get_current_root_view   (TavCalendarWindow *window);
/* Returns: (transfer none): the window the user sees (a stacked view's
 * window, or @window); editors use it as their parent. */
TAV_API GtkWidget       *tav_calendar_window_get_topmost_window      (TavCalendarWindow *window);
TAV_API gboolean         tav_calendar_window_are_dialogs_open        (void);

/* Asks the current view to read its entries ("database-access-read"). */
TAV_API void             tav_calendar_window_read_database           (TavCalendarWindow *window);
/* The host cut @view's read short: the root view reads again when next shown. */
TAV_API void             tav_calendar_window_read_database_unfinished (TavCalendarWindow *window,
                                                                       TavCalendarView *view);
TAV_API void             tav_calendar_window_set_entries_changed     (TavCalendarWindow *window,
                                                                      gboolean changed);
/* One entry was created, changed or removed: the current view shows it at
 * once, the other root views read again when next shown. */
TAV_API void             tav_calendar_window_add_entry               (TavCalendarWindow *window,
                                                                      TavCalendarEntry *entry);
TAV_API void             tav_calendar_window_refresh_entry           (TavCalendarWindow *window,
                                                                      TavCalendarEntry *entry);
TAV_API void             tav_calendar_window_remove_entry            (TavCalendarWindow *window,
                                                                      TavCalendarEntry *entry);
/* The clock, date or time zone changed. */
TAV_API void             tav_calendar_window_reflect_time_change     (TavCalendarWindow *window);

TAV_API void             tav_calendar_window_set_title               (TavCalendarWindow *window,
                                                                      const char *title);
/* 0 = Sunday ... 6 = Saturday. */
TAV_API int              tav_calendar_window_get_first_day_of_week   (TavCalendarWindow *window);
TAV_API void             tav_calendar_window_set_first_day_of_week   (TavCalendarWindow *window,
                                                                      int first_day_of_week);
/* SettingsDefaultView: the root view shown (0 with none); SettingsWeekStart:
 * Monday when weeks start on Monday, else Sunday; other ids: 0. */
TAV_API TavCalendarSettingsValue tav_calendar_window_get_settings (TavCalendarWindow *window,
                                                                  TavCalendarSettingsPropertyID id);
/* TRUE once an activate function switched the root view. */
TAV_API gboolean         tav_calendar_window_get_view_changed        (TavCalendarWindow *window);

/**
 * scroll_current_vew:
 * @window: the calendar window
 * @adj: an adjustment whose value is the vertical position to show
 *
 * Scrolls the current view's pannable area to @adj's value.
 */
TAV_API void             scroll_current_vew                          (TavCalendarWindow *window,
                                                                      GtkAdjustment *adj);

/**
 * tav_calendar_window_add_menu_item:
 * @window: the calendar window
 * @label: the item's text, shown as given (translate it first)
 *
 * Appends an item of the host's own to the main window's menu, after the
 * library's items; connect its "clicked".
 * Returns: (transfer none): the item, a #GtkButton that lives as long as
 * the menu.
 */
TAV_API GtkWidget       *tav_calendar_window_add_menu_item           (TavCalendarWindow *window,
                                                                      const char *label);

G_END_DECLS

#endif /* TAV_CALENDAR_WINDOW_H */
