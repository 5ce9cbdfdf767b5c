/* libcalendarui - the calendar's main window
 *
 * The month, week and agenda views take turns as the window's content (the
 * "packed child": the month view itself, or the week's or the agenda's
 * pannable area). The day, event, task and note views each get a stackable
 * window of their own, created on first use and pushed over the main
 * window. The current view is the one whose window is on top of the stack.
 *
 * Data changes reach the current view at once; the other root views only
 * get a needs-refresh flag and read again when they are next shown, so an
 * edit never costs more than one view's read.
 */
#include "TavCalendarWindowInternal.h"

#include <cstddef>
#include <new>

#include "TavCalendar.h"
#include "TavCalendarNote.h"
#include "TavCalendarSource.h"
#include "TavCalendarTask.h"
#include "TavDateSelectionWindow.h"
#include "TavEnumTypes.h"
#include "TavEventView.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavPaths.h"
#include "TavWeekView.h"

#include "KivoBanner.h"
#include "KivoNote.h"
#include "KivoPannableArea.h"
#include "KivoStackableWindow.h"
#include "KivoWindowStack.h"

/* The public instance and class structures mirror the toolkit's stackable
 * window, which hosts never see. */
static_assert (offsetof (TavCalendarWindow, month_view) == sizeof (KivoStackableWindow),
               "TavCalendarWindow must start with a KivoStackableWindow");
static_assert (sizeof (TavCalendarWindowClass) >= sizeof (KivoStackableWindowClass),
               "TavCalendarWindowClass must start with a KivoStackableWindowClass");

#define FIRST_YEAR 1970
#define LAST_YEAR 2037
#define BG_WIDTH 800
#define BG_HEIGHT 424

enum {
    NEXT_WEEK_ACTIVATED,
    PREVIOUS_WEEK_ACTIVATED,
    NEXT_MONTH_ACTIVATED,
    PREVIOUS_MONTH_ACTIVATED,
    PREVIOUS_DAY_ACTIVATED,
    NEXT_DAY_ACTIVATED,
    PREVIOUS_EVENT_ACTIVATED,
    NEXT_EVENT_ACTIVATED,
    NEW_EVENT_ACTIVATED,
    EDIT_EVENT_ACTIVATED,
    REMOVE_EVENT_ACTIVATED,
    JUMP_TO_TODAY_ACTIVATED,
    JUMP_TO_ACTIVATED,
    GO_TO_TASKS_ACTIVATED,
    GO_TO_NOTES_ACTIVATED,
    SETTINGS_ACTIVATED,
    ERROR,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_TIME_24HR_FORMAT,
};

static guint signals[LAST_SIGNAL];

G_DEFINE_TYPE_WITH_CODE (TavCalendarWindow, tav_calendar_window, KIVO_TYPE_STACKABLE_WINDOW,
                         G_ADD_PRIVATE (TavCalendarWindow))

static void update_current_view_from_stack (TavCalendarWindow *window);
static void set_day_title (TavCalendarWindow *window);
static void apply_month_background (TavCalendarWindow *window, int month);

/* Small helpers ----------------------------------------------------------------- */

static TavCalendarView *view_of (GtkWidget *widget)
{
    return TAV_CALENDAR_VIEW (widget);
}

static void show_unix_banner (TavCalendarWindow *window)
{
    tav_show_info_banner (tav_calendar_window_get_topmost_window (window), TAV_CAL ("cal_ib_unix"));
}

static bool presented_interval (GtkWidget *view, TavDateInterval *interval)
{
    return view && tav_calendar_view_get_presented_interval (view_of (view), interval);
}

static void month_shown (TavCalendarWindow *window, int *month, int *year)
{
    g_object_get (window->month_view, "month", month, "year", year, NULL);
}

static bool is_root (TavCalendarWindow *window, GtkWidget *view)
{
    return view && (view == window->month_view || view == window->week_view || view == window->agenda_view);
}

/* The week that holds @date, built the way the week view counts weeks. */
static void week_of_date (TavCalendarWindow *window, const TavDate &date, TavDateInterval *week)
{
    TavCalendarProcessor *processor = window->priv->processor;
    tav_calendar_processor_set_first_day_of_week (processor, window->priv->first_day_of_week);
    const int number = tav_calendar_processor_date_to_week_number (processor, &date);
    int year = date.year;
    if (number < 2 && date.month != 0)
        year = date.year + 1;
    else if (number >= 52 && date.month != 11)
        year = date.year - 1;
    if (!tav_calendar_processor_get_week (processor, year, number, week)) {
        /* Never expected: fall back on the seven days from @date's week start. */
        week->start = date;
        while (!tav_calendar_processor_is_first_day_of_week (processor, &week->start))
            tav_calendar_processor_dec_date (processor, &week->start);
        week->end = week->start;
        tav_calendar_processor_inc_date_by_days (processor, &week->end, 6);
    }
}

static void set_week_interval (TavCalendarWindow *window, const TavDateInterval &week)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (window->week_view);
    if (tav_week_view_get_first_day_of_week (week_view) != window->priv->first_day_of_week)
        tav_week_view_set_first_day_of_week (week_view, window->priv->first_day_of_week);
    g_object_set (week_view, "presented-interval", &week, NULL);
    window->priv->week_needs_refresh = FALSE;
}

/* Menu and titles ------------------------------------------------------------------ */

static void set_item_visible (GtkWidget *item, bool visible)
{
    if (item)
        g_object_set (item, "visible", visible ? TRUE : FALSE, NULL);
}

static void apply_month_limits (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    int month = 0, year = 0;
    month_shown (window, &month, &year);
    set_item_visible (priv->next_month_item, !(year >= LAST_YEAR && month == 11));
    set_item_visible (priv->prev_month_item, !(year <= FIRST_YEAR && month == 0));
}

static void apply_week_limits (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    TavDateInterval week;
    if (!presented_interval (window->week_view, &week)) {
        TAV_MESSAGE ("Still presented interval is not set. Nothing to do here");
        return;
    }
    set_item_visible (priv->next_week_item, week.end.year <= LAST_YEAR);
    set_item_visible (priv->prev_week_item, week.start.year >= FIRST_YEAR);
}

static void set_month_title (TavCalendarWindow *window)
{
    char *name = nullptr;
    int year = 0;
    g_object_get (window->month_view, "month-name", &name, "year", &year, NULL);
    tav::GCharPtr title (g_strdup_printf ("%s %d", name ? name : "", year));
    g_free (name);
    gtk_window_set_title (GTK_WINDOW (window), title.get ());
}

static void set_week_title (TavCalendarWindow *window)
{
    TavDateInterval week;
    if (!presented_interval (window->week_view, &week)) {
        TAV_MESSAGE ("Still presented interval is not set. Cant do any thing here");
        return;
    }
    int number = 0;
    g_object_get (window->week_view, "week-number", &number, NULL);
    tav::GCharPtr years (week.start.year == week.end.year
                             ? g_strdup_printf ("%d", week.start.year)
                             : g_strdup_printf ("%d/%d", week.start.year, week.end.year));
    tav::GCharPtr title (g_strdup_printf (TAV_CAL ("cal_ti_weekview"), number, years.get ()));
    gtk_window_set_title (GTK_WINDOW (window), title.get ());
}

static void update_main_menu (TavCalendarWindow *window, GtkWidget *view)
{
    TavCalendarWindowPrivate *priv = window->priv;
    GtkWidget *toggles[] = { priv->month_toggle, priv->week_toggle, priv->agenda_toggle };
    GCallback handlers[] = { G_CALLBACK (on_menu_month_view_clicked), G_CALLBACK (on_menu_week_view_clicked),
                             G_CALLBACK (on_menu_agenda_view_clicked) };
    for (int i = 0; i < 3; i++)
        g_signal_handlers_block_by_func (toggles[i], reinterpret_cast<gpointer> (handlers[i]), window);

    if (view == window->month_view) {
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->month_toggle), TRUE);
        set_item_visible (priv->next_week_item, false);
        set_item_visible (priv->prev_week_item, false);
        apply_month_limits (window);
    } else if (view == window->week_view) {
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->week_toggle), TRUE);
        set_item_visible (priv->next_month_item, false);
        set_item_visible (priv->prev_month_item, false);
        apply_week_limits (window);
    } else {
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->agenda_toggle), TRUE);
        for (GtkWidget *item : { priv->next_week_item, priv->prev_week_item, priv->next_month_item,
                                 priv->prev_month_item })
            set_item_visible (item, false);
    }

    for (int i = 0; i < 3; i++)
        g_signal_handlers_unblock_by_func (toggles[i], reinterpret_cast<gpointer> (handlers[i]), window);
}

/* Root views ---------------------------------------------------------------------- */

static void tell_week_view_topmost (TavCalendarWindow *window)
{
    const gboolean topmost = window->priv->packed_child == window->priv->areas[AREA_WEEK]
                             && kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (window));
    g_object_set (window->week_view, "is-topmost", topmost, NULL);
}

static void show_root_view (TavCalendarWindow *window, GtkWidget *view, GtkWidget *child)
{
    TavCalendarWindowPrivate *priv = window->priv;
    if (priv->disposed || !view || !child)
        return;
    if (priv->packed_child != child) {
        if (priv->packed_child)
            gtk_container_remove (GTK_CONTAINER (window), priv->packed_child);
        if (view == window->week_view && GTK_WIDGET_REALIZED (window))
            gdk_window_set_back_pixmap (GTK_WIDGET (window)->window, nullptr, FALSE);
        gtk_container_add (GTK_CONTAINER (window), child);
        gtk_widget_show (child);
    }
    priv->current_view = view;
    priv->packed_child = child;
    update_main_menu (window, view);
    tell_week_view_topmost (window);

    if (view == window->month_view) {
        set_month_title (window);
        int month = 0, year = 0;
        month_shown (window, &month, &year);
        apply_month_background (window, month);
    } else if (view == window->week_view) {
        set_week_title (window);
    } else {
        gtk_window_set_title (GTK_WINDOW (window), TAV_CAL ("cal_ti_agenda"));
    }
}

void tav_calendar_window_show_month_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    show_root_view (window, window->month_view, window->month_view);
}

void tav_calendar_window_show_week_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    show_root_view (window, window->week_view, window->priv->areas[AREA_WEEK]);
}

void tav_calendar_window_show_agenda_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    show_root_view (window, window->agenda_view, window->priv->areas[AREA_AGENDA]);
}

/* The date the user is looking at in the current (or else the packed) root view. */
static TavDate focus_date (TavCalendarWindow *window)
{
    TavDate today;
    tav_date_init_today (&today);
    TavDate date = today;
    GtkWidget *source = window->priv->current_view;
    if (!is_root (window, source))
        source = GTK_WIDGET (tav_calendar_window_get_current_root_view (window));

    if (source && source == window->month_view) {
        int month = 0, year = 0;
        month_shown (window, &month, &year);
        date = { year, month, (year == today.year && month == today.month) ? today.day : 1 };
    } else if (source && source == window->week_view) {
        TavDateInterval week;
        if (presented_interval (source, &week)) {
            date = tav_date_interval_contains (&week, &today) ? today : week.start;
            if (date.year <= 1969)
                date = { FIRST_YEAR, 0, 1 };
        }
    }
    else if (source && source == window->agenda_view) {
        if (!tav_agenda_view_get_visible_date (TAV_AGENDA_VIEW (source), &date)) {
            TavDateInterval shown;
            if (presented_interval (source, &shown)) {
                date = shown.start;
                for (int i = 0; i < 15; i++)
                    tav_calendar_processor_inc_date (window->priv->processor, &date);
            }
        }
    }
    return date;
}

static void move_month_to (TavCalendarWindow *window, const TavDate &date)
{
    TavCalendarWindowPrivate *priv = window->priv;
    int month = 0, year = 0;
    month_shown (window, &month, &year);
    if (month == date.month && year == date.year) {
        if (priv->month_needs_refresh) {
            priv->month_needs_refresh = FALSE;
            tav_calendar_view_read_database (view_of (window->month_view));
        }
        return;
    }
    priv->month_needs_refresh = FALSE;
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), date.month, date.year);
}

static void move_week_to (TavCalendarWindow *window, const TavDate &date)
{
    TavDateInterval week;
    if (!window->priv->week_needs_refresh && presented_interval (window->week_view, &week)
        && tav_date_interval_contains (&week, &date))
        return;
    week_of_date (window, date, &week);
    set_week_interval (window, week);
}

static void move_agenda_to (TavCalendarWindow *window, const TavDate &date)
{
    TavCalendarWindowPrivate *priv = window->priv;
    TavAgendaView *agenda = TAV_AGENDA_VIEW (window->agenda_view);
    gboolean is_set = FALSE;
    g_object_get (agenda, "presented-interval-set", &is_set, NULL);
    TavDateInterval shown;
    if (is_set && !priv->agenda_needs_refresh && presented_interval (window->agenda_view, &shown)
        && tav_date_interval_contains (&shown, &date)) {
        tav_agenda_view_jump_to_date (agenda, &date);
        return;
    }
    priv->agenda_needs_refresh = FALSE;
    tav_calendar_view_clear_entries (view_of (window->agenda_view));
    gtk_widget_show (window->agenda_view);
    tav_agenda_view_set_presented_interval_by_date (agenda, &date);
    tav_agenda_view_jump_to_date (agenda, &date);
}

static void log_refresh_flags (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    TAV_MESSAGE ("NEEDSREFRESH mon %d week %d agenda %d", priv->month_needs_refresh, priv->week_needs_refresh,
                 priv->agenda_needs_refresh);
}

void tav_calendar_window_activate_month_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    log_refresh_flags (window);
    move_month_to (window, focus_date (window));
    tav_calendar_window_show_month_view (window);
    window->priv->view_changed = TRUE;
}

void tav_calendar_window_activate_week_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    log_refresh_flags (window);
    move_week_to (window, focus_date (window));
    tav_calendar_window_show_week_view (window);
    window->priv->view_changed = TRUE;
}

void tav_calendar_window_activate_agenda_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (!window->agenda_view)
        return;
    log_refresh_flags (window);
    move_agenda_to (window, focus_date (window));
    tav_calendar_window_show_agenda_view (window);
    window->priv->view_changed = TRUE;
}

/* Stacked views --------------------------------------------------------------------- */

struct StackedKind {
    const char *name;           /* "day", "event", "task", "notes" */
    GtkWidget *TavCalendarWindowPrivate::*slot;
    TavWindowArea area;
    GtkWidget *TavCalendarWindow::*view;
    KivoAppMenu *(*menu) (TavCalendarWindow *);
    bool keys;
};

static const StackedKind kDayKind = { "day", &TavCalendarWindowPrivate::day_window, AREA_DAY,
                                      &TavCalendarWindow::day_view, _create_day_view_menu, true };
static const StackedKind kEventKind = { "event", &TavCalendarWindowPrivate::event_window, AREA_EVENT,
                                        &TavCalendarWindow::event_view, _create_event_view_menu, false };
static const StackedKind kTaskKind = { "task", &TavCalendarWindowPrivate::task_window, AREA_TASK,
                                       &TavCalendarWindow::task_view, _create_tasks_view_menu, true };
static const StackedKind kNoteKind = { "notes", &TavCalendarWindowPrivate::note_window, AREA_NOTE,
                                       &TavCalendarWindow::note_view, _create_notes_view_menu, true };

static const StackedKind *stacked_kind_of (TavCalendarWindow *window, GtkWidget *stacked)
{
    for (const StackedKind *kind : { &kDayKind, &kEventKind, &kTaskKind, &kNoteKind })
        if (stacked && window->priv->*(kind->slot) == stacked)
            return kind;
    return nullptr;
}

/* The day (or the event's occurrence) a stacked window shows, when it has one. */
static bool stacked_date (TavCalendarWindow *window, const StackedKind *kind, TavDate *date)
{
    if (kind == &kDayKind) {
        TavDateInterval day;
        if (presented_interval (window->day_view, &day)) {
            *date = day.start;
            return true;
        }
    } else if (kind == &kEventKind) {
        TavTimestamp at;
        if (tav_event_view_get_activated_timestamp (TAV_EVENT_VIEW (window->event_view), &at)) {
            *date = at.date;
            return true;
        }
    }
    return false;
}

/* After a stacked window closed: bring the root view to @date, and have it
 * read again when entries changed meanwhile. */
static void return_to_root (TavCalendarWindow *window, const TavDate *date)
{
    TavCalendarWindowPrivate *priv = window->priv;
    GtkWidget *view = priv->current_view;
    if (!is_root (window, view))
        return;
    const TavDate target = date ? *date : focus_date (window);
    const bool changed = priv->entries_changed;
    auto move_flags_on = [&] (gboolean *month, gboolean *week, gboolean *agenda) {
        if (priv->entries_changed) {
            priv->entries_changed = FALSE;
            if (month)
                *month = TRUE;
            if (week)
                *week = TRUE;
            if (agenda)
                *agenda = TRUE;
        }
    };

    if (view == window->month_view) {
        int month = 0, year = 0;
        month_shown (window, &month, &year);
        const bool same = month == target.month && year == target.year;
        if (!changed && !priv->month_needs_refresh && same)
            return;
        priv->month_needs_refresh = FALSE;
        move_flags_on (nullptr, &priv->week_needs_refresh, &priv->agenda_needs_refresh);
        if (same)
            tav_calendar_view_read_database (view_of (window->month_view));
        else
            tav_calendar_select_month (TAV_CALENDAR (window->month_view), target.month, target.year);
    } else if (view == window->week_view) {
        TavDateInterval week;
        const bool showing = presented_interval (window->week_view, &week)
                             && tav_date_interval_contains (&week, &target);
        if (!changed && !priv->week_needs_refresh && showing)
            return;
        move_flags_on (&priv->month_needs_refresh, nullptr, &priv->agenda_needs_refresh);
        if (showing) {
            priv->week_needs_refresh = FALSE;
            tav_calendar_view_read_database (view_of (window->week_view));
        } else {
            week_of_date (window, target, &week);
            set_week_interval (window, week);
        }
    } else {
        if (!changed && !priv->agenda_needs_refresh)
            return;
        move_flags_on (&priv->month_needs_refresh, &priv->week_needs_refresh, nullptr);
        priv->agenda_needs_refresh = TRUE;
        move_agenda_to (window, target);
    }
}

static gboolean on_stacked_window_delete_cb (GtkWidget *stacked, GdkEvent *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    const StackedKind *kind = stacked_kind_of (window, stacked);
    if (kind != &kDayKind)
        TAV_MESSAGE (" ");
    TavDate date;
    const bool has_date = kind && stacked_date (window, kind, &date);
    gtk_widget_hide (stacked);
    update_current_view_from_stack (window);
    return_to_root (window, has_date ? &date : nullptr);
    return TRUE;
}

static void on_stacked_window_topmost_cb (GObject *stacked, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (window->priv->disposed)
        return;
    /* Only the top of the stack says anything about the current view. */
    if (kivo_window_stack_peek (kivo_window_stack_get_default ()) == GTK_WIDGET (stacked))
        update_current_view_from_stack (window);
    if (GTK_WIDGET (stacked) == GTK_WIDGET (window))
        tell_week_view_topmost (window);
}

static gboolean on_stacked_window_key_press_cb (GtkWidget *stacked, GdkEventKey *event, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    const StackedKind *kind = stacked_kind_of (window, stacked);
    if (kind == &kDayKind && window->day_view)
        g_signal_emit_by_name (window->day_view, "key-pressed::0", event->keyval);
    else if (kind == &kTaskKind && window->task_view)
        g_signal_emit_by_name (window->task_view, "insert-activated::0", event->keyval);
    else if (kind == &kNoteKind && window->note_view)
        g_signal_emit_by_name (window->note_view, "insert-activated::0", event->keyval);
    return FALSE;
}

static GtkWidget *show_stacked (TavCalendarWindow *window, const StackedKind &kind)
{
    TavCalendarWindowPrivate *priv = window->priv;
    if (priv->disposed || !(window->*(kind.view)))
        return nullptr;
    GtkWidget *&stacked = priv->*(kind.slot);
    if (!stacked) {
        TAV_MESSAGE_AS ("show_stacked", "Creating %s view window", kind.name);
        stacked = kivo_stackable_window_new ();
        kivo_stackable_window_set_main_menu (KIVO_STACKABLE_WINDOW (stacked), kind.menu (window));
        gtk_container_add (GTK_CONTAINER (stacked), priv->areas[kind.area]);
        g_signal_connect (stacked, "delete-event", G_CALLBACK (on_stacked_window_delete_cb), window);
        g_signal_connect (stacked, "notify::is-topmost", G_CALLBACK (on_stacked_window_topmost_cb), window);
        if (kind.keys)
            g_signal_connect (stacked, "key-press-event", G_CALLBACK (on_stacked_window_key_press_cb), window);
        gtk_widget_show_all (stacked);
    } else {
        TAV_MESSAGE_AS ("show_stacked", "Showing the already created %s view window", kind.name);
        /* A removal may have taken the view out of its window. */
        if (!gtk_widget_get_parent (priv->areas[kind.area]))
            gtk_container_add (GTK_CONTAINER (stacked), priv->areas[kind.area]);
    }
    gtk_widget_show (stacked);
    gtk_window_present (GTK_WINDOW (stacked));
    priv->current_view = window->*(kind.view);
    return stacked;
}

void tav_calendar_window_show_day_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (show_stacked (window, kDayKind))
        set_day_title (window);
}

static void update_event_menu (TavCalendarWindow *window)
{
    TavEventView *view = TAV_EVENT_VIEW (window->event_view);
    TavCalendarEntry *entry = tav_event_view_get_entry (view);
    gboolean has_prev = FALSE, has_next = FALSE;
    g_object_get (view, "has-previous", &has_prev, "has-next", &has_next, NULL);
    on_show_hide_prev_entry_menu_item (window, !has_prev);
    on_show_hide_next_entry_menu_item (window, !has_next);
    /* Nothing to edit without an entry or in a read-only calendar; a
     * birthday is edited but removed with its contact. */
    const bool locked = !entry || tav_calendar_entry_is_read_only (entry);
    on_show_hide_edit_remove_menu_item (window, locked);
    if (!locked)
        on_show_hide_remove_menu_item (window, tav_calendar_entry_has_bday (entry));
}

void tav_calendar_window_show_event_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (GtkWidget *stacked = show_stacked (window, kEventKind)) {
        gtk_window_set_title (GTK_WINDOW (stacked), TAV_CAL ("cal_ti_event"));
        update_event_menu (window);
    }
}

/* The lists have no interval of their own to trigger a read: they are
 * read each time they are shown, so that they show the tasks and notes as
 * they are now. */
void tav_calendar_window_show_task_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (GtkWidget *stacked = show_stacked (window, kTaskKind)) {
        gtk_window_set_title (GTK_WINDOW (stacked), TAV_CAL ("cal_ti_tasks"));
        tav_task_view_read_database (TAV_TASK_VIEW (window->task_view));
    }
}

void tav_calendar_window_show_note_view (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (GtkWidget *stacked = show_stacked (window, kNoteKind)) {
        gtk_window_set_title (GTK_WINDOW (stacked), TAV_CAL ("cal_ti_notes"));
        tav_note_view_read_database (TAV_NOTE_VIEW (window->note_view));
    }
}

static void take_area_out (GtkWidget *stacked, GtkWidget *area)
{
    if (stacked && area && gtk_widget_get_parent (area) == stacked)
        gtk_container_remove (GTK_CONTAINER (stacked), area);
}

void tav_calendar_window_close_event_view_window (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    TavCalendarWindowPrivate *priv = window->priv;
    if (!priv->event_window)
        return;
    GtkWidget *stacked = priv->event_window;
    priv->event_window = nullptr;
    take_area_out (stacked, priv->areas[AREA_EVENT]);
    gtk_widget_destroy (stacked);
    update_current_view_from_stack (window);
}

void tav_calendar_window_zoom_to_week_view (TavCalendarWindow *window, const TavDateInterval *)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    TAV_WARNING ("This function is not supported any more.");
}

static void update_current_view_from_stack (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    GtkWidget *top = kivo_window_stack_peek (kivo_window_stack_get_default ());
    if (top && top == priv->day_window)
        priv->current_view = window->day_view;
    else if (top && top == priv->note_window)
        priv->current_view = window->note_view;
    else if (top && top == priv->task_window)
        priv->current_view = window->task_view;
    else if (top && top == priv->event_window)
        priv->current_view = window->event_view;
    else
        priv->current_view = GTK_WIDGET (tav_calendar_window_get_current_root_view (window));
}

/* Queries ---------------------------------------------------------------------------- */

#define VIEW_ACTIVE(fn, field)                                                        \
    gboolean fn (TavCalendarWindow *window)                                           \
    {                                                                                 \
        g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), FALSE);                \
        return window->field && window->priv->current_view == window->field;          \
    }

VIEW_ACTIVE (tav_calendar_window_month_view_active, month_view)
VIEW_ACTIVE (tav_calendar_window_week_view_active, week_view)
VIEW_ACTIVE (tav_calendar_window_day_view_active, day_view)
VIEW_ACTIVE (tav_calendar_window_agenda_view_active, agenda_view)
VIEW_ACTIVE (tav_calendar_window_event_view_active, event_view)
VIEW_ACTIVE (tav_calendar_window_task_view_active, task_view)
VIEW_ACTIVE (tav_calendar_window_note_view_active, note_view)

TavCalendarView *tav_calendar_window_get_current_root_view (TavCalendarWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), nullptr);
    TavCalendarWindowPrivate *priv = window->priv;
    if (!priv->packed_child)
        return nullptr;
    if (priv->packed_child == window->month_view)
        return view_of (window->month_view);
    if (priv->packed_child == priv->areas[AREA_WEEK])
        return view_of (window->week_view);
    if (window->agenda_view && priv->packed_child == priv->areas[AREA_AGENDA])
        return view_of (window->agenda_view);
    return nullptr;
}

GtkWidget *tav_calendar_window_get_topmost_window (TavCalendarWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), nullptr);
    TavCalendarWindowPrivate *priv = window->priv;
    GtkWidget *current = priv->current_view;
    if (current && current == window->day_view && priv->day_window)
        return priv->day_window;
    if (current && current == window->note_view && priv->note_window)
        return priv->note_window;
    if (current && current == window->task_view && priv->task_window)
        return priv->task_window;
    if (current && current == window->event_view && priv->event_window)
        return priv->event_window;
    return GTK_WIDGET (window);
}

gboolean tav_calendar_window_are_dialogs_open (void)
{
    return tav_calendar_dialog_is_dialog_open ();
}

/* Reading and data changes ------------------------------------------------------------ */

void tav_calendar_window_read_database (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    GtkWidget *current = window->priv->current_view;
    if (!current)
        return;
    if (current == window->month_view) {
        window->priv->month_needs_refresh = FALSE;
        tav_calendar_view_read_database (view_of (current));
    } else if (current == window->week_view) {
        window->priv->week_needs_refresh = FALSE;
        tav_calendar_view_read_database (view_of (current));
    } else if (current == window->agenda_view) {
        window->priv->agenda_needs_refresh = FALSE;
        tav_calendar_view_read_database (view_of (current));
    }
    else if (current == window->note_view)
        tav_note_view_read_database (TAV_NOTE_VIEW (current));
    else if (current == window->task_view)
        tav_task_view_read_database (TAV_TASK_VIEW (current));
    else if (current == window->day_view)
        tav_calendar_view_read_database (view_of (current));
}

void tav_calendar_window_read_database_unfinished (TavCalendarWindow *window, TavCalendarView *view)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    GtkWidget *widget = GTK_WIDGET (view);
    if (!widget)
        return;
    if (widget == window->month_view)
        window->priv->month_needs_refresh = TRUE;
    else if (widget == window->week_view)
        window->priv->week_needs_refresh = TRUE;
    else if (widget == window->agenda_view)
        window->priv->agenda_needs_refresh = TRUE;
}

void tav_calendar_window_set_entries_changed (TavCalendarWindow *window, gboolean changed)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    if (!changed)
        return;
    TavCalendarWindowPrivate *priv = window->priv;
    priv->entries_changed = TRUE;
    GtkWidget *current = priv->current_view;
    if (!current)
        return;
    if (current == window->month_view) {
        priv->week_needs_refresh = TRUE;
        priv->agenda_needs_refresh = TRUE;
    } else if (current == window->week_view) {
        priv->month_needs_refresh = TRUE;
        priv->agenda_needs_refresh = TRUE;
    } else if (current == window->agenda_view) {
        priv->month_needs_refresh = TRUE;
        priv->week_needs_refresh = TRUE;
    }
}

void tav_calendar_window_add_entry (TavCalendarWindow *window, TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY (entry));
    tav_calendar_window_set_entries_changed (window, TRUE);
    GtkWidget *current = window->priv->current_view;
    if (!current)
        return;
    if (current == window->event_view) {
        tav_event_view_refresh_entry (TAV_EVENT_VIEW (current), entry);
    } else if (current == window->month_view) {
        /* The month grid is rebuilt from a fresh read, not patched. */
        tav_calendar_window_read_database (window);
    } else if (current == window->agenda_view || current == window->week_view || current == window->day_view) {
        tav_calendar_view_freeze (view_of (current));
        tav_calendar_view_add_entry (view_of (current), entry);
        tav_calendar_view_thaw (view_of (current));
    }
}

void tav_calendar_window_refresh_entry (TavCalendarWindow *window, TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY (entry));
    tav_calendar_window_set_entries_changed (window, TRUE);
    GtkWidget *current = window->priv->current_view;
    if (current && (current == window->month_view || current == window->agenda_view
                    || current == window->week_view || current == window->day_view)) {
        if (tav_calendar_view_refresh_entry (view_of (current), entry))
            tav_calendar_view_recalculate_entries (view_of (current));
    }
    if (TAV_IS_CALENDAR_TASK (entry)) {
        tav_task_view_refresh_task (TAV_TASK_VIEW (window->task_view), TAV_CALENDAR_TASK (entry));
    } else if (TAV_IS_CALENDAR_NOTE (entry)) {
        tav_note_view_refresh_note (TAV_NOTE_VIEW (window->note_view), TAV_CALENDAR_NOTE (entry));
    } else if (current && current == window->event_view) {
        tav_event_view_refresh_entry (TAV_EVENT_VIEW (current), entry);
        update_event_menu (window);
    }
}

void tav_calendar_window_remove_entry (TavCalendarWindow *window, TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY (entry));
    tav_calendar_window_set_entries_changed (window, TRUE);
    for (GtkWidget *view : { window->month_view, window->agenda_view, window->week_view, window->day_view }) {
        if (view && tav_calendar_view_remove_entry (view_of (view), entry))
            tav_calendar_view_recalculate_entries (view_of (view));
    }
    if (TAV_IS_CALENDAR_NOTE (entry))
        tav_note_view_delete_note (TAV_NOTE_VIEW (window->note_view), TAV_CALENDAR_NOTE (entry));
    /* A removed entry must not linger in the event view. */
    TavEventView *event_view = TAV_EVENT_VIEW (window->event_view);
    if (tav_event_view_get_entry (event_view) == entry) {
        tav_event_view_set_entry (event_view, nullptr, nullptr);
        update_event_menu (window);
    }
}

void tav_calendar_window_reflect_time_change (TavCalendarWindow *window)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    tav_calendar_adjust_view_for_time_change (TAV_CALENDAR (window->month_view));
    tav_week_view_adjust_view_for_time_change (TAV_WEEK_VIEW (window->week_view));
}

/* Settings and simple accessors ------------------------------------------------------- */

void tav_calendar_window_set_title (TavCalendarWindow *window, const char *title)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    gtk_window_set_title (GTK_WINDOW (window), title);
}

int tav_calendar_window_get_first_day_of_week (TavCalendarWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), 0);
    return window->priv->first_day_of_week;
}

void tav_calendar_window_set_first_day_of_week (TavCalendarWindow *window, int first_day_of_week)
{
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    g_return_if_fail (first_day_of_week >= 0 && first_day_of_week <= 6);
    window->priv->first_day_of_week = first_day_of_week;
    tav_calendar_processor_set_first_day_of_week (window->priv->processor, first_day_of_week);
    tav_calendar_set_first_day_of_week (TAV_CALENDAR (window->month_view), first_day_of_week);
    if (tav_week_view_get_first_day_of_week (TAV_WEEK_VIEW (window->week_view)) != first_day_of_week)
        tav_week_view_set_first_day_of_week (TAV_WEEK_VIEW (window->week_view), first_day_of_week);
}

TavCalendarSettingsValue tav_calendar_window_get_settings (TavCalendarWindow *window, TavCalendarSettingsPropertyID id)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW (window), static_cast<TavCalendarSettingsValue> (0));
    switch (id) {
    case SettingsDefaultView: {
        TavCalendarView *root = tav_calendar_window_get_current_root_view (window);
        if (root && GTK_WIDGET (root) == window->month_view)
            return SettingsValueMonthView;
        if (root && GTK_WIDGET (root) == window->week_view)
            return SettingsValueWeekView;
        if (root && GTK_WIDGET (root) == window->agenda_view)
            return SettingsValueAgendaView;
        return static_cast<TavCalendarSettingsValue> (0);
    }
    case SettingsWeekStart:
        return window->priv->first_day_of_week == 1 ? SettingsValueMonday : SettingsValueSunday;
    default:
        TAV_WARNING ("Unimplemented");
        return static_cast<TavCalendarSettingsValue> (0);
    }
}

gboolean tav_calendar_window_get_view_changed (TavCalendarWindow *self)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_WINDOW(self), FALSE);
    return self->priv->view_changed;
}

void scroll_current_vew (TavCalendarWindow *window, GtkAdjustment *adj)
{
    g_return_if_fail (NULL != window);
    g_return_if_fail (NULL != adj);
    g_return_if_fail (TAV_IS_CALENDAR_WINDOW (window));
    GtkWidget *current = window->priv->current_view;
    GtkWidget *area = current ? gtk_widget_get_parent (current) : nullptr;
    /* The event view sits in a viewport inside its area. */
    if (area && !KIVO_IS_PANNABLE_AREA (area))
        area = gtk_widget_get_parent (area);
    if (!area || !KIVO_IS_PANNABLE_AREA (area)) {
        TAV_WARNING ("There is no KivoPannableArea.");
        return;
    }
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, static_cast<gint> (gtk_adjustment_get_value (adj)));
    if (current == window->agenda_view)
        tav_agenda_view_fix_scrolling (TAV_AGENDA_VIEW (current));
}

/* View signals ------------------------------------------------------------------------- */

static void set_day_title (TavCalendarWindow *window)
{
    TavCalendarWindowPrivate *priv = window->priv;
    TavDateInterval day;
    if (!priv->day_window || !presented_interval (window->day_view, &day))
        return;
    TavDate today;
    tav_date_init_today (&today);
    if (tav_date_compare (&today, &day.start) == 0) {
        gtk_window_set_title (GTK_WINDOW (priv->day_window), TAV_CAL ("cal_va_allday_home"));
        return;
    }
    const int weekday = tav_calendar_processor_date_to_day_of_week (priv->processor, &day.start);
    tav::GCharPtr text (tav_date_to_string_format (&day.start, TavDateLongFormat, weekday));
    gtk_window_set_title (GTK_WINDOW (priv->day_window), text.get ());
}

static void on_month_changed_cb (GObject *, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (window->priv->disposed || window->priv->current_view != window->month_view)
        return;
    int month = 0, year = 0;
    month_shown (window, &month, &year);
    apply_month_background (window, month);
    set_month_title (window);
    apply_month_limits (window);
}

static void on_week_changed_cb (GObject *, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (window->priv->disposed || window->priv->current_view != window->week_view)
        return;
    set_week_title (window);
    apply_week_limits (window);
}

static void on_agenda_changed_cb (GObject *, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!window->priv->disposed && window->priv->current_view == window->agenda_view)
        gtk_window_set_title (GTK_WINDOW (window), TAV_CAL ("cal_ti_agenda"));
}

static void on_day_changed_cb (GObject *, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!window->priv->disposed)
        set_day_title (window);
}

static void on_year_limit_reached_cb (GtkWidget *, gpointer data)
{
    show_unix_banner (TAV_CALENDAR_WINDOW (data));
}

static void on_day_activated_cb (GtkWidget *, int year, int month, int day, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (year < FIRST_YEAR || year > LAST_YEAR) {
        show_unix_banner (window);
        return;
    }
    if (tav_calendar_window_task_view_active (window) || !window->day_view)
        return;
    const TavDate date = { year, month, day };
    tav_calendar_view_clear_entries (view_of (window->day_view));
    tav_calendar_window_show_day_view (window);
    tav_day_view_set_presented_interval_by_date (TAV_DAY_VIEW (window->day_view), &date);
    set_day_title (window);
}

static void on_week_activated_cb (GtkWidget *, int, const TavDateInterval *week, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!week)
        return;
    if (week->start.year > LAST_YEAR) {
        show_unix_banner (window);
        return;
    }
    set_week_interval (window, *week);
    tav_calendar_window_show_week_view (window);
    window->priv->view_changed = TRUE;
}

static void on_edit_entry_activated_cb (GtkWidget *, TavCalendarEntry *entry, gpointer data)
{
    gboolean handled = FALSE;
    g_signal_emit (data, signals[EDIT_EVENT_ACTIVATED], 0, entry, &handled);
}

static void on_delete_entry_activated_cb (GtkWidget *, TavCalendarEntry *entry, gpointer data)
{
    gboolean handled = FALSE;
    g_signal_emit (data, signals[REMOVE_EVENT_ACTIVATED], 0, entry, &handled);
}

static void on_task_group_activated_cb (GtkWidget *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!tav_calendar_window_week_view_active (window)) {
        TAV_WARNING ("Week view is not the active view this signal shouldnt come");
        return;
    }
    tav_calendar_window_show_task_view (window);
}

static void on_event_view_previous_cb (GtkWidget *view, gpointer data)
{
    tav_event_view_select_previous_entry (TAV_EVENT_VIEW (view));
    update_event_menu (TAV_CALENDAR_WINDOW (data));
}

static void on_event_view_next_cb (GtkWidget *view, gpointer data)
{
    tav_event_view_select_next_entry (TAV_EVENT_VIEW (view));
    update_event_menu (TAV_CALENDAR_WINDOW (data));
}

static void on_event_view_entry_notify_cb (GObject *, GParamSpec *, gpointer data)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!window->priv->disposed)
        update_event_menu (window);
}

static void on_task_changed_cb (GtkWidget *, gpointer, gpointer data)
{
    tav_calendar_window_set_entries_changed (TAV_CALENDAR_WINDOW (data), TRUE);
}

/* Default handlers of the action signals ---------------------------------------------- */

static gboolean tav_calendar_window_next_week (TavCalendarWindow *window)
{
    tav_week_view_select_next_week (TAV_WEEK_VIEW (window->week_view));
    return TRUE;
}

static gboolean tav_calendar_window_previous_week (TavCalendarWindow *window)
{
    tav_week_view_select_prev_week (TAV_WEEK_VIEW (window->week_view));
    return FALSE;
}

static gboolean tav_calendar_window_next_month (TavCalendarWindow *window)
{
    tav_calendar_select_next_month (TAV_CALENDAR (window->month_view));
    return TRUE;
}

static gboolean tav_calendar_window_previous_month (TavCalendarWindow *window)
{
    tav_calendar_select_prev_month (TAV_CALENDAR (window->month_view));
    return FALSE;
}

static gboolean tav_calendar_window_previous_day (TavCalendarWindow *window)
{
    tav_day_view_select_previous_day (TAV_DAY_VIEW (window->day_view));
    return FALSE;
}

static gboolean tav_calendar_window_next_day (TavCalendarWindow *window)
{
    tav_day_view_select_next_day (TAV_DAY_VIEW (window->day_view));
    return TRUE;
}

static gboolean _previous_event_activated (TavCalendarWindow *)
{
    TAV_WARNING ("Unimplemented.");
    return FALSE;
}

static gboolean _next_event_activated (TavCalendarWindow *)
{
    TAV_WARNING ("Unimplemented.");
    return FALSE;
}

static gboolean _new_event_activated (TavCalendarWindow *)
{
    TAV_WARNING ("Unimplemented.");
    return FALSE;
}

static gboolean _edit_event_activated (TavCalendarWindow *, TavCalendarEntry *)
{
    TAV_WARNING ("Unimplemented.");
    return FALSE;
}

static gboolean _remove_event_activated (TavCalendarWindow *window, TavCalendarEntry *entry)
{
    if (!TAV_IS_CALENDAR_ENTRY (entry)) {
        TAV_WARNING ("No entry returning.");
        return FALSE;
    }
    tav::GRefPtr<TavCalendarEntry> keep (entry);
    const bool is_task = TAV_IS_CALENDAR_TASK (entry);
    gboolean repeats = FALSE;
    g_object_get (entry, "has-repeat", &repeats, NULL);
    const char *question = TAV_CAL (is_task ? "cal_nc_delete_task"
                                            : repeats ? "cal_nc_delete_event_repeat" : "cal_nc_delete_event");
    const char *title = tav_calendar_entry_get_title (entry);
    tav::GCharPtr text (g_strdup_printf (question, title ? title : ""));
    GtkWidget *parent = tav_calendar_window_get_topmost_window (window);
    GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (parent), text.get ());
    const int answer = gtk_dialog_run (GTK_DIALOG (note));
    gtk_widget_destroy (note);
    if (answer != GTK_RESPONSE_OK)
        return FALSE;

    TavCalendarSource *source = nullptr;
    g_object_get (entry, "source", &source, NULL);
    tav::GRefPtr<TavCalendarSource> hold = tav::adoptGRef (source);
    int result = CalendarInvalidArg;
    if (source)
        result = is_task ? tav_calendar_source_delete_task (source, TAV_CALENDAR_TASK (entry))
                         : tav_calendar_source_delete_entry (source, entry);
    if (result != CalendarNoError) {
        TAV_WARNING ("tav_calendar_source_delete_entry() failed.");
        return FALSE;
    }
    const bool from_event_view = tav_calendar_window_event_view_active (window);
    if (from_event_view) {
        tav_event_view_set_entry (TAV_EVENT_VIEW (window->event_view), nullptr, nullptr);
        take_area_out (window->priv->event_window, window->priv->areas[AREA_EVENT]);
    }
    tav_calendar_window_remove_entry (window, entry);
    /* Nothing is left to show there: back to the calendar, which reads again. */
    if (from_event_view && window->priv->event_window)
        on_stacked_window_delete_cb (window->priv->event_window, nullptr, window);
    return TRUE;
}

/* Moves the current view to @date (month, week, agenda or day). */
static void move_current_view_to (TavCalendarWindow *window, const TavDate &date, bool this_week, const char *func)
{
    GtkWidget *current = window->priv->current_view;
    if (current && current == window->month_view) {
        int month = 0, year = 0;
        month_shown (window, &month, &year);
        if (month != date.month || year != date.year)
            tav_calendar_select_month (TAV_CALENDAR (current), date.month, date.year);
    } else if (current && current == window->week_view) {
        TavDateInterval week;
        if (presented_interval (current, &week) && tav_date_interval_contains (&week, &date))
            return;
        if (this_week) {
            tav_calendar_processor_set_first_day_of_week (window->priv->processor, window->priv->first_day_of_week);
            tav_calendar_processor_get_this_week (window->priv->processor, &week);
        } else {
            week_of_date (window, date, &week);
        }
        set_week_interval (window, week);
    } else if (current && current == window->agenda_view) {
        TavDateInterval shown;
        if (presented_interval (current, &shown)) {
            TavDate middle = shown.start;
            tav_calendar_processor_inc_date_by_days (window->priv->processor, &middle, 15);
            if (tav_date_compare (&middle, &date) == 0)
                return;
        }
        tav_agenda_view_set_presented_interval_by_date (TAV_AGENDA_VIEW (current), &date);
    } else if (current && current == window->day_view) {
        tav_day_view_set_presented_interval_by_date (TAV_DAY_VIEW (current), &date);
        set_day_title (window);
    } else {
        TAV_WARNING_AS (func, "Unimplemented.");
    }
}

static void on_date_activated (GtkWidget *, const TavDate *date, gpointer data)
{
    g_return_if_fail (date != NULL);
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (data);
    if (!window->priv->disposed)
        move_current_view_to (window, *date, false, "on_date_activated");
}

static gboolean _jump_to_activated (TavCalendarWindow *window)
{
    GtkWidget *current = window->priv->current_view;
    TavDateSelectionWindowMode mode;
    if (current && current == window->month_view)
        mode = TavDateSelectionWindowModeMonth;
    else if (current && current == window->week_view)
        mode = TavDateSelectionWindowModeWeek;
    else if (current && (current == window->agenda_view || current == window->day_view))
        mode = TavDateSelectionWindowModeDay;
    else {
        TAV_WARNING ("This can not be.");
        return FALSE;
    }
    TavDate today;
    tav_date_init_today (&today);
    GtkWidget *picker = GTK_WIDGET (g_object_new (TAV_TYPE_DATE_SELECTION_WINDOW,
                                                  "title", TAV_CAL ("cal_ti_jump_to"),
                                                  "done-button-title", TAV_CAL ("cal_bd_jump"),
                                                  "mode", mode,
                                                  "processor", window->priv->processor, NULL));
    tav_date_selection_window_set_first_day_of_week (TAV_DATE_SELECTION_WINDOW (picker),
                                                     window->priv->first_day_of_week);
    tav_date_selection_window_set_date (TAV_DATE_SELECTION_WINDOW (picker), &today);
    gtk_window_set_transient_for (GTK_WINDOW (picker), GTK_WINDOW (tav_calendar_window_get_topmost_window (window)));
    g_signal_connect_object (picker, "date-activated", G_CALLBACK (on_date_activated), window, GConnectFlags (0));
    gtk_widget_show (picker);
    return TRUE;
}

static gboolean _jump_to_today_activated (TavCalendarWindow *window)
{
    TavDate today;
    tav_date_init_today (&today);
    move_current_view_to (window, today, true, "_jump_to_today_activated");
    return TRUE;
}

static gboolean tav_calendar_window_go_to_tasks (TavCalendarWindow *window)
{
    tav_calendar_window_show_task_view (window);
    return FALSE;
}

static gboolean tav_calendar_window_go_to_notes (TavCalendarWindow *window)
{
    tav_calendar_window_show_note_view (window);
    return FALSE;
}

static gboolean tav_calendar_window_settings (TavCalendarWindow *window)
{
    GtkWidget *dialog = tav_calendar_settings_dialog_new ();
    gtk_window_set_transient_for (GTK_WINDOW (dialog), GTK_WINDOW (tav_calendar_window_get_topmost_window (window)));
    gtk_widget_show (dialog);
    return TRUE;
}

/* Month backgrounds ------------------------------------------------------------------- */

static void apply_month_background (TavCalendarWindow *window, int month)
{
    g_assert (month >= 0 && month <= 11);
    TavCalendarWindowPrivate *priv = window->priv;
    const char *file = window->bg_file_names ? window->bg_file_names[month] : nullptr;
    if (!file || !*file)
        return;
    TAV_MESSAGE ("Request for background image for the month %d", month);
    if (!priv->month_pixmaps[month]) {
        TAV_MESSAGE ("Creating bg pixmap for the month %d", month);
        GError *error = nullptr;
        GdkPixbuf *pixbuf = gdk_pixbuf_new_from_file_at_scale (file, BG_WIDTH, BG_HEIGHT, FALSE, &error);
        if (!pixbuf) {
            TAV_WARNING ("%s", error ? error->message : file);
            g_clear_error (&error);
            return;
        }
        gdk_pixbuf_render_pixmap_and_mask_for_colormap (pixbuf, gtk_widget_get_colormap (GTK_WIDGET (window)),
                                                        &priv->month_pixmaps[month], nullptr, 128);
        g_object_unref (pixbuf);
    }
    if (priv->month_pixmaps[month])
        tav_calendar_set_background_image_pixmap (TAV_CALENDAR (window->month_view), priv->month_pixmaps[month]);
}

static void tav_calendar_window_style_set (GtkWidget *widget, GtkStyle *previous)
{
    GTK_WIDGET_CLASS (tav_calendar_window_parent_class)->style_set (widget, previous);
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (widget);
    GValueArray *files = nullptr;
    gtk_widget_style_get (widget, "monthly-bg-image-files", &files, NULL);
    tav::GUniquePtr<GValueArray> hold (files);
    for (int i = 0; i < 12; i++) {
        g_free (window->bg_file_names[i]);
        window->bg_file_names[i] = nullptr;
        if (window->priv->month_pixmaps[i]) {
            g_object_unref (window->priv->month_pixmaps[i]);
            window->priv->month_pixmaps[i] = nullptr;
        }
        if (files && static_cast<guint> (i) < files->n_values) {
            const char *name = g_value_get_string (g_value_array_get_nth (files, i));
            if (name && *name)
                window->bg_file_names[i] = g_path_is_absolute (name) ? g_strdup (name)
                                                                    : g_build_filename (tav_theme_dir (), name, NULL);
        }
    }
    if (window->priv->current_view && window->priv->current_view == window->month_view) {
        int month = 0, year = 0;
        month_shown (window, &month, &year);
        apply_month_background (window, month);
    }
}

/* Object ------------------------------------------------------------------------------ */

static void tav_calendar_window_set_property (GObject *object, guint id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (object);
    switch (id) {
    case PROP_TIME_24HR_FORMAT:
        window->priv->time_24hr = g_value_get_boolean (value);
        for (GtkWidget *view : { window->day_view, window->event_view, window->week_view, window->agenda_view })
            if (view)
                g_object_set (view, "time-24hr-format", window->priv->time_24hr, NULL);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static void tav_calendar_window_get_property (GObject *object, guint id, GValue *value, GParamSpec *pspec)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (object);
    switch (id) {
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, window->priv->time_24hr);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static gboolean on_main_window_delete_cb (GtkWidget *, GdkEvent *, gpointer)
{
    gtk_main_quit ();
    return TRUE;
}

static GtkWidget *new_area (int vovershoot, int hovershoot)
{
    GtkWidget *area = kivo_pannable_area_new ();
    g_object_set (area, "vovershoot_max", vovershoot, "hovershoot_max", hovershoot, "mov-mode",
                  KIVO_MOVEMENT_MODE_VERTICAL, NULL);
    g_object_ref_sink (area);
    return area;
}

static GtkWidget *new_view (GType type)
{
    return GTK_WIDGET (g_object_new (type, "visible", TRUE, "can-focus", FALSE, "has-focus", FALSE, NULL));
}

static void tav_calendar_window_init (TavCalendarWindow *window)
{
    void *memory = tav_calendar_window_get_instance_private (window);
    window->priv = new (memory) TavCalendarWindowPrivate ();
    TavCalendarWindowPrivate *priv = window->priv;
    window->bg_file_names = g_new0 (gchar *, 13);
    priv->processor = tav_calendar_processor_new ();
    tav_calendar_processor_set_first_day_of_week (priv->processor, priv->first_day_of_week);

    priv->areas[AREA_DAY] = new_area (50, 0);
    priv->areas[AREA_AGENDA] = new_area (50, 0);
    priv->areas[AREA_WEEK] = new_area (0, 0);
    g_object_set (priv->areas[AREA_WEEK], "size-request-policy", KIVO_SIZE_REQUEST_MINIMUM, NULL);
    priv->areas[AREA_EVENT] = new_area (50, 0);
    priv->areas[AREA_TASK] = new_area (50, 0);
    priv->areas[AREA_NOTE] = new_area (0, 0);
    g_object_set (priv->areas[AREA_NOTE], "hscrollbar-policy", GTK_POLICY_NEVER, NULL);

    window->month_view = new_view (TAV_TYPE_CALENDAR);
    g_object_ref_sink (window->month_view);
    window->week_view = new_view (TAV_TYPE_WEEK_VIEW);
    gtk_container_add (GTK_CONTAINER (priv->areas[AREA_WEEK]), window->week_view);
    window->day_view = new_view (TAV_TYPE_DAY_VIEW);
    gtk_container_add (GTK_CONTAINER (priv->areas[AREA_DAY]), window->day_view);
    window->agenda_view = new_view (TAV_TYPE_AGENDA_VIEW);
    gtk_container_add (GTK_CONTAINER (priv->areas[AREA_AGENDA]), window->agenda_view);
    window->event_view = new_view (TAV_TYPE_EVENT_VIEW);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (priv->areas[AREA_EVENT]), window->event_view);
    window->task_view = new_view (TAV_TYPE_TASK_VIEW);
    gtk_container_add (GTK_CONTAINER (priv->areas[AREA_TASK]), window->task_view);
    window->note_view = new_view (TAV_TYPE_NOTE_VIEW);
    gtk_container_add (GTK_CONTAINER (priv->areas[AREA_NOTE]), window->note_view);
    for (GtkWidget *area : priv->areas)
        gtk_widget_show (area);

    kivo_stackable_window_set_main_menu (KIVO_STACKABLE_WINDOW (window), _create_main_view_menu (window));
    update_main_menu (window, window->month_view);

    g_signal_connect (window, "delete-event", G_CALLBACK (on_main_window_delete_cb), NULL);
    g_signal_connect (window, "notify::is-topmost", G_CALLBACK (on_stacked_window_topmost_cb), window);
    g_signal_connect (window->month_view, "notify::date", G_CALLBACK (on_month_changed_cb), window);
    g_signal_connect (window->month_view, "year-limit-reached", G_CALLBACK (on_year_limit_reached_cb), window);
    g_signal_connect (window->week_view, "year-limit-reached", G_CALLBACK (on_year_limit_reached_cb), window);
    g_signal_connect (window->week_view, "notify::date", G_CALLBACK (on_week_changed_cb), window);
    if (window->agenda_view)
        g_signal_connect (window->agenda_view, "notify::presented-interval", G_CALLBACK (on_agenda_changed_cb), window);
    if (window->day_view) {
        g_signal_connect (window->day_view, "notify::date", G_CALLBACK (on_day_changed_cb), window);
        g_signal_connect (window->day_view, "year-limit-reached", G_CALLBACK (on_year_limit_reached_cb), window);
    }
    g_signal_connect (window->month_view, "week-activated", G_CALLBACK (on_week_activated_cb), window);
    g_signal_connect (window->month_view, "day-activated", G_CALLBACK (on_day_activated_cb), window);
    g_signal_connect (window->week_view, "day-activated", G_CALLBACK (on_day_activated_cb), window);
    for (GtkWidget *view : { window->week_view, window->agenda_view, window->day_view, window->event_view }) {
        if (!view)
            continue;
        g_signal_connect (view, "delete-entry-activated", G_CALLBACK (on_delete_entry_activated_cb), window);
        g_signal_connect (view, "edit-entry-activated", G_CALLBACK (on_edit_entry_activated_cb), window);
    }
    g_signal_connect (window->week_view, "task-group-activated", G_CALLBACK (on_task_group_activated_cb), window);
    g_signal_connect (window->event_view, "previous-entry-activated", G_CALLBACK (on_event_view_previous_cb), window);
    g_signal_connect (window->event_view, "next-entry-activated", G_CALLBACK (on_event_view_next_cb), window);
    g_signal_connect (window->event_view, "notify::entry", G_CALLBACK (on_event_view_entry_notify_cb), window);
    if (window->task_view) {
        g_signal_connect (window->task_view, "task-modified", G_CALLBACK (on_task_changed_cb), window);
        g_signal_connect (window->task_view, "task-deleted", G_CALLBACK (on_task_changed_cb), window);
    }
}

static void tav_calendar_window_dispose (GObject *object)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (object);
    TavCalendarWindowPrivate *priv = window->priv;
    if (priv->disposed) {
        G_OBJECT_CLASS (tav_calendar_window_parent_class)->dispose (object);
        return;
    }
    priv->disposed = TRUE;
    for (GtkWidget **stacked : { &priv->day_window, &priv->note_window, &priv->task_window, &priv->event_window }) {
        if (GtkWidget *w = *stacked) {
            *stacked = nullptr;
            gtk_widget_destroy (w);
        }
    }
    for (GdkPixmap *&pixmap : priv->month_pixmaps) {
        if (pixmap)
            g_object_unref (pixmap);
        pixmap = nullptr;
    }
    g_clear_object (&priv->processor);
    if (priv->packed_child)
        gtk_container_remove (GTK_CONTAINER (window), priv->packed_child);
    priv->packed_child = nullptr;
    priv->current_view = nullptr;
    gtk_widget_destroy (window->month_view);
    g_object_unref (window->month_view);
    for (GtkWidget *&area : priv->areas) {
        gtk_widget_destroy (area);
        g_object_unref (area);
        area = nullptr;
    }
    window->month_view = window->week_view = window->day_view = window->agenda_view = nullptr;
    window->event_view = window->task_view = window->note_view = nullptr;
    G_OBJECT_CLASS (tav_calendar_window_parent_class)->dispose (object);
}

static void tav_calendar_window_finalize (GObject *object)
{
    TavCalendarWindow *window = TAV_CALENDAR_WINDOW (object);
    g_strfreev (window->bg_file_names);
    window->priv->~_TavCalendarWindowPrivate ();
    G_OBJECT_CLASS (tav_calendar_window_parent_class)->finalize (object);
}

static guint new_action_signal (GObjectClass *klass, const char *name, glong offset, guint n_params = 0)
{
    if (n_params)
        return g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, offset,
                             tav_boolean_handled_accumulator, nullptr, nullptr, G_TYPE_BOOLEAN, 1,
                             TAV_TYPE_CALENDAR_ENTRY);
    return g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, offset, tav_boolean_handled_accumulator,
                         nullptr, nullptr, G_TYPE_BOOLEAN, 0);
}

static void tav_calendar_window_class_init (TavCalendarWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    object_class->set_property = tav_calendar_window_set_property;
    object_class->get_property = tav_calendar_window_get_property;
    object_class->dispose = tav_calendar_window_dispose;
    object_class->finalize = tav_calendar_window_finalize;
    widget_class->style_set = tav_calendar_window_style_set;

    klass->next_week_activated = tav_calendar_window_next_week;
    klass->previous_week_activated = tav_calendar_window_previous_week;
    klass->next_month_activated = tav_calendar_window_next_month;
    klass->previous_month_activated = tav_calendar_window_previous_month;
    klass->previous_day_activated = tav_calendar_window_previous_day;
    klass->next_day_activated = tav_calendar_window_next_day;
    klass->previous_event_activated = _previous_event_activated;
    klass->next_event_activated = _next_event_activated;
    klass->new_event_activated = _new_event_activated;
    klass->edit_event_activated = _edit_event_activated;
    klass->remove_event_activated = _remove_event_activated;
    klass->jump_to_today_activated = _jump_to_today_activated;
    klass->jump_to_activated = _jump_to_activated;
    klass->go_to_tasks_activated = tav_calendar_window_go_to_tasks;
    klass->go_to_notes_activated = tav_calendar_window_go_to_notes;
    klass->settings_activated = tav_calendar_window_settings;

    g_object_class_install_property (object_class, PROP_TIME_24HR_FORMAT,
        g_param_spec_boolean ("time-24hr-format", "Time Format", "Time format , 24hr or 12 hr", TRUE,
                              G_PARAM_READWRITE));

    gtk_widget_class_install_style_property_parser (widget_class,
        g_param_spec_value_array ("monthly-bg-image-files", "background", "bg",
                                  g_param_spec_string ("bg-image-file", "Background",
                                                       "Background image for the whole widget.", nullptr,
                                                       G_PARAM_READABLE),
                                  G_PARAM_READABLE),
        string_array_property_parser);

#define SLOT(name) G_STRUCT_OFFSET (TavCalendarWindowClass, name)
    signals[NEXT_WEEK_ACTIVATED] = new_action_signal (object_class, "next-week-activated", SLOT (next_week_activated));
    signals[PREVIOUS_WEEK_ACTIVATED] =
        new_action_signal (object_class, "previous-week-activated", SLOT (previous_week_activated));
    signals[NEXT_MONTH_ACTIVATED] = new_action_signal (object_class, "next-month-activated", SLOT (next_month_activated));
    signals[PREVIOUS_MONTH_ACTIVATED] =
        new_action_signal (object_class, "previous-month-activated", SLOT (previous_month_activated));
    signals[PREVIOUS_DAY_ACTIVATED] =
        new_action_signal (object_class, "previous-day-activated", SLOT (previous_day_activated));
    signals[NEXT_DAY_ACTIVATED] = new_action_signal (object_class, "next-day-activated", SLOT (next_day_activated));
    signals[PREVIOUS_EVENT_ACTIVATED] =
        new_action_signal (object_class, "previous-event-activated", SLOT (previous_event_activated));
    signals[NEXT_EVENT_ACTIVATED] = new_action_signal (object_class, "next-event-activated", SLOT (next_event_activated));
    signals[NEW_EVENT_ACTIVATED] = new_action_signal (object_class, "new-event-activated", SLOT (new_event_activated));
    signals[EDIT_EVENT_ACTIVATED] =
        new_action_signal (object_class, "edit-event-activated", SLOT (edit_event_activated), 1);
    signals[REMOVE_EVENT_ACTIVATED] =
        new_action_signal (object_class, "remove-event-activated", SLOT (remove_event_activated), 1);
    signals[JUMP_TO_TODAY_ACTIVATED] =
        new_action_signal (object_class, "jump-to-today-activated", SLOT (jump_to_today_activated));
    signals[JUMP_TO_ACTIVATED] = new_action_signal (object_class, "jump-to-activated", SLOT (jump_to_activated));
    signals[GO_TO_TASKS_ACTIVATED] =
        new_action_signal (object_class, "go-to-tasks-activated", SLOT (go_to_tasks_activated));
    signals[GO_TO_NOTES_ACTIVATED] =
        new_action_signal (object_class, "go-to-notes-activated", SLOT (go_to_notes_activated));
    signals[SETTINGS_ACTIVATED] = new_action_signal (object_class, "settings-activated", SLOT (settings_activated));
#undef SLOT
    signals[ERROR] = g_signal_new ("error", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                   nullptr, G_TYPE_NONE, 2, CALENDAR_TYPE_UI_ERROR_CODE, G_TYPE_STRING);
}

GtkWidget *tav_calendar_window_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_WINDOW, NULL));
}
