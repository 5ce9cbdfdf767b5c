/* libcalendarui - the month view
 *
 * The grid lives in its own child window (cells_win), the week numbers in
 * another (week_win); the widget's window carries the weekday names. Entry
 * instances land in the cells' buffers (TavMonthViewPrivate); the grid pass
 * after a read turns them into lines and bars, which TavMonthViewPainter
 * draws.
 */
#include "TavCalendar.h"

#include <langinfo.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>
#include <string>

#include "TavCalendarTask.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavLog.h"
#include "TavMarshal.h"
#include "TavMonthViewPainter.h"
#include "TavMonthViewPrivate.h"

using tav::MonthHighlight;

/* The grid is hit-tested 5 pixels lower than it is drawn: a finger touches
 * the screen a little above the point it aims at. */
#define PRESS_Y_OFFSET 5
/* A drag this long pages the month. */
#define SWIPE_THRESHOLD 50
/* A release farther than this from its press is not a tap. */
#define TAP_THRESHOLD 26
/* What a press highlights. */
enum { NONE = 0, CELL = 1, WEEK = 2 };

#define FIRST_YEAR 1970
#define LAST_YEAR 2037

enum {
    DAY_ACTIVATED,
    WEEK_ACTIVATED,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_YEAR,
    PROP_MONTH_NAME,
    PROP_MONTH,
    PROP_DAY,
    PROP_USE_EFFECTS,
    PROP_OPTIMIZATION,
    PROP_PRESENTED_INTERVAL,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

struct _TavCalendarPrivate {
    GdkWindow *cells_win = nullptr;
    GdkWindow *week_win = nullptr;
    int year = 2008;
    int month = 0;
    int day = 1;
    int first_day_of_week = 1;
    CalendarCell cells[NCells];
    int week_numbers[NRows] = {};
    int cell_width = 0, cell_height = 0;
    int week_width = 0, header_height = 0;
    GtkAllocation last_allocation { -1, -1, -1, -1 };
    gboolean allocated = FALSE;
    gboolean pressed = FALSE, swiped = FALSE;
    int press_x = 0, press_y = 0;
    struct {
        int target = NONE;
        int row = 0, col = 0;
        gboolean rebuild_cache = TRUE;
    } highlight;
    gboolean reload = TRUE;
    gboolean loaded = FALSE;
    gboolean month_ready = FALSE;
    gboolean navigation_locked = FALSE;
    gboolean use_effects = FALSE;
    gboolean optimization = TRUE;
    std::array<std::string, 7> day_names;
    /* Colours, fonts and theme images; NULL until the first paint. */
    std::unique_ptr<tav::MonthPaintCache> style_cache;
    tav::GRefPtr<GdkPixmap> background;
    /* The grid is drawn into this client-side image and copied to cells_win:
     * exposures of an unchanged grid cost one copy, and a changed grid is
     * rendered without a round trip per shape and glyph. */
    cairo_surface_t *cells_image = nullptr;
    gboolean cells_image_stale = TRUE;
    /* Parts of the image to render again when not all of it is stale. */
    GdkRegion *cells_image_stale_region = nullptr;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendar, tav_calendar, TAV_TYPE_CALENDAR_VIEW, G_ADD_PRIVATE (TavCalendar))

/* Auxiliary functions ------------------------------------------------------- */

static CalendarCell *
_tav_calendar_get_cell (TavCalendar *calendar, int row, int col)
{
    g_assert (row >= FirstRow && row < NRows);
    g_assert (col >= FirstColumn && col < NColumns);
    return &calendar->priv->cells[row * NColumns + col];
}

static TavCalendarProcessor *
processor_of (TavCalendar *calendar)
{
    return tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (calendar));
}

static void
rebuild_day_names (TavCalendar *calendar)
{
    for (int i = 0; i < 7; i++)
        calendar->priv->day_names[i] = nl_langinfo ((nl_item) (ABDAY_1 + (calendar->priv->first_day_of_week + i) % 7));
}

static void
calendar_invalidate_cell (TavCalendar *calendar, int row, int col)
{
    TavCalendarPrivate *priv = calendar->priv;
    g_assert (calendar->priv->cells_win != NULL);
    GdkRectangle rect { col * priv->cell_width, row * priv->cell_height, priv->cell_width, priv->cell_height };
    if (!priv->cells_image_stale_region)
        priv->cells_image_stale_region = gdk_region_new ();
    gdk_region_union_with_rect (priv->cells_image_stale_region, &rect);
    gdk_window_invalidate_rect (priv->cells_win, &rect, FALSE);
}

/* A bar may reach into its neighbours: repaint the whole row of a cell. */
static void
invalidate_cell_cb (int row, int col, gpointer data)
{
    TavCalendar *calendar = TAV_CALENDAR (data);
    if (!GTK_WIDGET_REALIZED (GTK_WIDGET (calendar)))
        return;
    for (int c = 0; c < NColumns; c++)
        calendar_invalidate_cell (calendar, row, c);
}

static void
invalidate_week_row (TavCalendar *calendar, int row)
{
    TavCalendarPrivate *priv = calendar->priv;
    if (!priv->week_win)
        return;
    GdkRectangle rect { 0, row * priv->cell_height, priv->week_width, priv->cell_height };
    gdk_window_invalidate_rect (priv->week_win, &rect, FALSE);
}

static void
invalidate_all (TavCalendar *calendar)
{
    calendar->priv->cells_image_stale = TRUE;
    if (!GTK_WIDGET_REALIZED (GTK_WIDGET (calendar)))
        return;
    gdk_window_invalidate_rect (GTK_WIDGET (calendar)->window, NULL, TRUE);
}

static void
clear_highlight (TavCalendar *calendar)
{
    TavCalendarPrivate *priv = calendar->priv;
    if (priv->highlight.target == NONE)
        return;
    if (GTK_WIDGET_REALIZED (GTK_WIDGET (calendar))) {
        if (priv->highlight.target == CELL)
            calendar_invalidate_cell (calendar, priv->highlight.row, priv->highlight.col);
        else
            invalidate_week_row (calendar, priv->highlight.row);
    }
    priv->highlight.target = NONE;
}

static void
calendar_recalculate_entries_for_all_cells (TavCalendarView *view)
{
    TavCalendar *calendar = TAV_CALENDAR (view);
    calendar_grid_recalculate (calendar->priv->cells, processor_of (calendar), calendar->priv->optimization,
                               invalidate_cell_cb, calendar);
    /* Bar marks of rows that did not change may follow from rows that did
     * (a bar running on into the next row): the whole grid is rendered anew. */
    calendar->priv->cells_image_stale = TRUE;
    if (GTK_WIDGET_REALIZED (GTK_WIDGET (calendar)))
        gdk_window_invalidate_rect (calendar->priv->cells_win, NULL, FALSE);
}

static void
empty_cells (TavCalendar *calendar)
{
    for (auto &cell : calendar->priv->cells)
        calendar_cell_remove_all_calendar_entries (&cell);
}

static void
select_month (TavCalendar *calendar, int month, int year)
{
    TavCalendarPrivate *priv = calendar->priv;
    GtkWidget *widget = GTK_WIDGET (calendar);

    if (year < FIRST_YEAR || year > LAST_YEAR) {
        g_signal_emit_by_name (calendar, "year-limit-reached::0");
        return;
    }
    if (year == priv->year && month == priv->month && !priv->reload && priv->month_ready)
        return;

    priv->year = year;
    priv->month = month;
    priv->loaded = FALSE;
    empty_cells (calendar);
    priv->reload = FALSE;
    calendar_grid_set_month (priv->cells, processor_of (calendar), year, month, priv->first_day_of_week,
                             priv->week_numbers);
    priv->highlight.rebuild_cache = TRUE;
    invalidate_all (calendar);
    g_object_notify (G_OBJECT (calendar), "date");
    priv->month_ready = TRUE;

    if (GTK_WIDGET_REALIZED (widget)) {
        priv->loaded = TRUE;
        /* The read handler may navigate again; it must not re-enter here. */
        priv->navigation_locked = TRUE;
        tav_calendar_view_read_database (TAV_CALENDAR_VIEW (calendar));
        priv->navigation_locked = FALSE;
    }
}

static void
step_month (TavCalendar *calendar, int delta)
{
    int year = 0, month = 0;
    g_object_get (calendar, "year", &year, "month", &month, NULL);
    month += delta;
    if (month < 0) {
        month = 11;
        year--;
    } else if (month > 11) {
        month = 0;
        year++;
    }
    select_month (calendar, month, year);
}

static void
emit_day_activated (TavCalendar *calendar, const CalendarCell *cell)
{
    g_signal_emit (calendar, signals[DAY_ACTIVATED], 0, calendar->priv->year, calendar->priv->month, cell->date.day);
}

static void
tav_calendar_button_press_cells (TavCalendar *calendar, int x, int y)
{
    TavCalendarPrivate *priv = calendar->priv;
    const int row = (y - PRESS_Y_OFFSET) / priv->cell_height;
    const int col = x / priv->cell_width;
    g_return_if_fail ((FirstRow <= row && row < NRows));
    g_return_if_fail ((FirstColumn <= col && col < NColumns));

    const CalendarCell *cell = _tav_calendar_get_cell (calendar, row, col);
    switch (cell->month_type) {
    case MONTH_TYPE_PREV:
        tav_calendar_select_prev_month (calendar);
        break;
    case MONTH_TYPE_NEXT:
        tav_calendar_select_next_month (calendar);
        break;
    default:
        emit_day_activated (calendar, cell);
        break;
    }
}

static void
activate_week_row (TavCalendar *calendar, int row)
{
    TavCalendarPrivate *priv = calendar->priv;
    if (row < FirstRow || row >= NRows)
        return;
    TavDateInterval week { _tav_calendar_get_cell (calendar, row, 0)->date,
                           _tav_calendar_get_cell (calendar, row, NColumns - 1)->date };
    g_signal_emit (calendar, signals[WEEK_ACTIVATED], 0, priv->week_numbers[row], &week);
}

/* Callbacks ----------------------------------------------------------------- */

static gboolean
on_button_press_event_cb (GtkWidget *widget, GdkEventButton *event, gpointer data)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    if (event->type != GDK_BUTTON_PRESS || priv->cell_width <= 0 || priv->cell_height <= 0)
        return FALSE;
    if (event->window != priv->cells_win && event->window != priv->week_win)
        return FALSE;
    /* A second button while the first is still down is not a new tap. */
    if (priv->pressed)
        return TRUE;

    priv->press_x = (int) event->x;
    priv->press_y = (int) event->y;
    priv->pressed = TRUE;
    priv->swiped = FALSE;
    g_assert (calendar->priv->highlight.target == NONE);

    if (event->window == priv->cells_win) {
        const int col = (int) (event->x / priv->cell_width);
        const int row = (int) ((event->y - 5.0) / priv->cell_height);
        if (row >= 0 && row < NRows && col >= 0 && col < NColumns) {
            priv->highlight.target = CELL;
            priv->highlight.row = row;
            priv->highlight.col = col;
            calendar_invalidate_cell (calendar, row, col);
        }
    } else {
        const int row = (int) (event->y / priv->cell_height);
        if (row >= 0 && row < NRows) {
            priv->highlight.target = WEEK;
            priv->highlight.row = row;
            invalidate_week_row (calendar, row);
        }
    }
    return TRUE;
}

static gboolean
on_motion_notify_event_cb (GtkWidget *widget, GdkEventMotion *event, gpointer data)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    if (!priv->pressed)
        return FALSE;

    clear_highlight (calendar);
    if (priv->swiped)
        return TRUE;
    const int dx = (int) event->x - priv->press_x;
    const int dy = (int) event->y - priv->press_y;
    if (std::abs (dx) < SWIPE_THRESHOLD && std::abs (dy) < SWIPE_THRESHOLD)
        return TRUE;
    const int delta = std::abs (dx) > std::abs (dy) ? dx : dy;
    priv->swiped = TRUE;
    /* Dragging the page left or up brings the next month. */
    if (delta < 1)
        tav_calendar_select_next_month (calendar);
    else
        tav_calendar_select_prev_month (calendar);
    return TRUE;
}

static gboolean
on_button_release_event_cb (GtkWidget *widget, GdkEventButton *event, gpointer data)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    if (!priv->pressed)
        return FALSE;

    const gboolean swiped = priv->swiped;
    priv->pressed = FALSE;
    priv->swiped = FALSE;
    clear_highlight (calendar);

    const int x = (int) event->x, y = (int) event->y;
    /* A drag that paged the month is not a tap as well. */
    if (swiped || std::abs (x - priv->press_x) > TAP_THRESHOLD || std::abs (y - priv->press_y) > TAP_THRESHOLD)
        return TRUE;
    if (event->window == priv->cells_win)
        tav_calendar_button_press_cells (calendar, x, y);
    else if (event->window == priv->week_win)
        activate_week_row (calendar, y / priv->cell_height);
    return TRUE;
}

/* Class --------------------------------------------------------------------- */

static gboolean
tav_calendar_add_entry_for_timestamp_cb (TavCalendarView *view, const TavTimestamp *instance_start,
                                         TavCalendarEntry *entry)
{
    TavCalendar *calendar = TAV_CALENDAR (view);
    return calendar_grid_add_entry_instance (calendar->priv->cells, processor_of (calendar), instance_start, entry);
}

static gboolean
tav_calendar_remove_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    TavCalendar *calendar = TAV_CALENDAR (view);
    gboolean changed = FALSE;
    for (auto &cell : calendar->priv->cells) {
        if (calendar_cell_remove_calendar_entry (&cell, entry)) {
            calendar_cell_pre_sort_entries (&cell);
            calendar_cell_flush_buffer (&cell, processor_of (calendar));
            changed = TRUE;
        }
    }
    if (changed && GTK_WIDGET_REALIZED (GTK_WIDGET (calendar))) {
        calendar->priv->cells_image_stale = TRUE;
        gdk_window_invalidate_rect (calendar->priv->cells_win, NULL, FALSE);
    }
    return changed;
}

/* Before a new read of the shown month: the cells forget their entries. */
static void
tav_calendar_clear_entries (TavCalendarView *view)
{
    TavCalendar *calendar = TAV_CALENDAR (view);
    empty_cells (calendar);
    calendar_recalculate_entries_for_all_cells (view);
}

static gboolean
cell_shows_something (const CalendarCell *cell)
{
    if (cell->has_birthdays)
        return TRUE;
    for (int i = 0; i < cell->n_entries; i++)
        if (cell->entries[i])
            return TRUE;
    return FALSE;
}

static gboolean
tav_calendar_get_next_prev_status_for_entry (TavCalendarView *view, TavCalendarEntry *entry,
                                             const TavDate *instance_date, gboolean *has_prev, gboolean *has_next)
{
    TavCalendar *calendar = TAV_CALENDAR (view);
    g_return_val_if_fail (instance_date != NULL, FALSE);
    const int index = calendar_grid_find_date (calendar->priv->cells, processor_of (calendar), instance_date);
    if (index < 0) {
        TAV_WARNING ("Out of date range");
        return FALSE;
    }
    const CalendarCell *cell = &calendar->priv->cells[index];
    gboolean prev = FALSE, next = FALSE;
    int slot = -1;
    for (int i = 0; i < cell->n_entries; i++)
        if (cell->entries[i] && tav_calendar_entry_is_equal (cell->entries[i]->entry, entry)) {
            slot = i;
            break;
        }
    if (slot >= 0) {
        for (int i = 0; i < slot; i++)
            prev = prev || cell->entries[i] != NULL;
        for (int i = slot + 1; i < cell->n_entries; i++)
            next = next || cell->entries[i] != NULL;
    }
    if (!(prev && next)) {
        for (int k = index - 1; k >= 0 && !prev; k--)
            prev = cell_shows_something (&calendar->priv->cells[k]);
        for (int k = index + 1; k < NCells && !next; k++)
            next = cell_shows_something (&calendar->priv->cells[k]);
    }
    if (has_prev)
        *has_prev = prev;
    if (has_next)
        *has_next = next;
    return TRUE;
}

static void
tav_calendar_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendar *calendar = TAV_CALENDAR (object);
    TavCalendarPrivate *priv = calendar->priv;
    switch (prop_id) {
    case PROP_YEAR:
        g_value_set_int (value, priv->year);
        break;
    case PROP_MONTH_NAME:
        g_value_set_string (value, nl_langinfo ((nl_item) (MON_1 + priv->month)));
        break;
    case PROP_MONTH:
        g_value_set_int (value, priv->month);
        break;
    case PROP_DAY:
        g_value_set_int (value, priv->day);
        break;
    case PROP_USE_EFFECTS:
        g_value_set_boolean (value, priv->use_effects);
        break;
    case PROP_OPTIMIZATION:
        g_value_set_boolean (value, priv->optimization);
        break;
    case PROP_PRESENTED_INTERVAL: {
        TavDateInterval interval { priv->cells[0].date, priv->cells[NCells - 1].date };
        g_value_set_boxed (value, &interval);
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendar *calendar = TAV_CALENDAR (object);
    TavCalendarPrivate *priv = calendar->priv;
    switch (prop_id) {
    case PROP_YEAR:
        tav_calendar_select_month (calendar, priv->month, g_value_get_int (value));
        break;
    case PROP_MONTH:
        tav_calendar_select_month (calendar, g_value_get_int (value), priv->year);
        break;
    case PROP_DAY:
        if (priv->day != g_value_get_int (value)) {
            priv->day = g_value_get_int (value);
            g_object_notify_by_pspec (object, pspec);
        }
        break;
    case PROP_USE_EFFECTS:
        if (priv->use_effects != g_value_get_boolean (value)) {
            priv->use_effects = g_value_get_boolean (value);
            invalidate_all (calendar);
            g_object_notify_by_pspec (object, pspec);
        }
        break;
    case PROP_OPTIMIZATION:
        if (priv->optimization != g_value_get_boolean (value)) {
            priv->optimization = g_value_get_boolean (value);
            g_object_notify_by_pspec (object, pspec);
        }
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    requisition->width = 480;
    requisition->height = 360;
}

/* Places the header, the week column and the grid inside @allocation. The
 * cells get whole pixels; what is left over widens the week column and the
 * header. */
static void
compute_geometry (TavCalendarPrivate *priv, const GtkAllocation *allocation)
{
    const int header = CLAMP (allocation->height / 18, 18, 40);
    const int week = CLAMP (allocation->width / 16, 26, 64);
    priv->cell_width = MAX (1, (allocation->width - week) / NColumns);
    priv->cell_height = MAX (1, (allocation->height - header) / NRows);
    priv->week_width = MAX (0, allocation->width - NColumns * priv->cell_width);
    priv->header_height = MAX (0, allocation->height - NRows * priv->cell_height);
}

static void
move_windows (TavCalendar *calendar)
{
    TavCalendarPrivate *priv = calendar->priv;
    GtkWidget *widget = GTK_WIDGET (calendar);
    if (!GTK_WIDGET_REALIZED (widget))
        return;
    gdk_window_move_resize (widget->window, widget->allocation.x, widget->allocation.y,
                            widget->allocation.width, widget->allocation.height);
    gdk_window_move_resize (priv->cells_win, priv->week_width, priv->header_height,
                            NColumns * priv->cell_width, NRows * priv->cell_height);
    gdk_window_move_resize (priv->week_win, 0, priv->header_height, MAX (1, priv->week_width),
                            NRows * priv->cell_height);
}

static void
tav_calendar_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    widget->allocation = *allocation;

    if (priv->allocated && priv->last_allocation.width == allocation->width &&
        priv->last_allocation.height == allocation->height) {
        TAV_MESSAGE ("Allocation again for the same size");
        move_windows (calendar);
        return;
    }
    TAV_MESSAGE ("Allocation of size %dx%d", allocation->width, allocation->height);
    priv->last_allocation = *allocation;
    priv->allocated = TRUE;
    compute_geometry (priv, allocation);
    priv->highlight.rebuild_cache = TRUE;
    priv->cells_image_stale = TRUE;
    move_windows (calendar);
}

static GdkWindow *
create_child_window (GtkWidget *widget, GdkWindow *parent, int x, int y, int width, int height, int event_mask)
{
    GdkWindowAttr attributes {};
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.wclass = GDK_INPUT_OUTPUT;
    attributes.x = x;
    attributes.y = y;
    attributes.width = MAX (1, width);
    attributes.height = MAX (1, height);
    attributes.visual = gtk_widget_get_visual (widget);
    attributes.colormap = gtk_widget_get_colormap (widget);
    attributes.event_mask = event_mask;
    GdkWindow *window = gdk_window_new (parent, &attributes, GDK_WA_X | GDK_WA_Y | GDK_WA_VISUAL | GDK_WA_COLORMAP);
    gdk_window_set_user_data (window, widget);
    /* Everything is painted by the expose handler. */
    gdk_window_set_back_pixmap (window, NULL, FALSE);
    return window;
}

static void
tav_calendar_realize (GtkWidget *widget)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    TAV_MESSAGE ("Realizing TavCalendar.");
    GTK_WIDGET_SET_FLAGS (widget, GTK_REALIZED);

    const int input_mask = gtk_widget_get_events (widget) | GDK_EXPOSURE_MASK | GDK_BUTTON_PRESS_MASK |
                           GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK | GDK_BUTTON_MOTION_MASK;
    widget->window = create_child_window (widget, gtk_widget_get_parent_window (widget), widget->allocation.x,
                                          widget->allocation.y, widget->allocation.width, widget->allocation.height,
                                          gtk_widget_get_events (widget) | GDK_EXPOSURE_MASK);
    priv->cells_win = create_child_window (widget, widget->window, priv->week_width, priv->header_height,
                                           NColumns * priv->cell_width, NRows * priv->cell_height, input_mask);
    priv->week_win = create_child_window (widget, widget->window, 0, priv->header_height, priv->week_width,
                                          NRows * priv->cell_height, input_mask);
    widget->style = gtk_style_attach (widget->style, widget->window);
    gdk_window_show (priv->cells_win);
    gdk_window_show (priv->week_win);

    if (!priv->allocated) {
        TAV_MESSAGE ("Allocation not yet done so queing that");
        gtk_widget_queue_resize (widget);
    }
}

static void
tav_calendar_unrealize (GtkWidget *widget)
{
    TavCalendarPrivate *priv = TAV_CALENDAR (widget)->priv;
    for (GdkWindow **window : { &priv->cells_win, &priv->week_win }) {
        if (*window) {
            gdk_window_set_user_data (*window, NULL);
            gdk_window_destroy (*window);
            *window = NULL;
        }
    }
    priv->pressed = FALSE;
    priv->highlight.target = NONE;
    if (priv->cells_image) {
        cairo_surface_destroy (priv->cells_image);
        priv->cells_image = nullptr;
    }
    GTK_WIDGET_CLASS (tav_calendar_parent_class)->unrealize (widget);
}

static void
tav_calendar_map (GtkWidget *widget)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    GTK_WIDGET_CLASS (tav_calendar_parent_class)->map (widget);
    /* The month may have been chosen before there was a window to show it:
     * ask for its entries now. */
    if (!calendar->priv->loaded && calendar->priv->month_ready) {
        calendar->priv->loaded = TRUE;
        calendar->priv->navigation_locked = TRUE;
        tav_calendar_view_read_database (TAV_CALENDAR_VIEW (calendar));
        calendar->priv->navigation_locked = FALSE;
    }
}

static void
tav_calendar_style_set (GtkWidget *widget, GtkStyle *previous)
{
    TAV_CALENDAR (widget)->priv->highlight.rebuild_cache = TRUE;
    invalidate_all (TAV_CALENDAR (widget));
}

static tav::MonthPaintState
paint_state (TavCalendar *calendar)
{
    TavCalendarPrivate *priv = calendar->priv;
    tav::MonthPaintState state {};
    state.cells = priv->cells;
    state.week_numbers = priv->week_numbers;
    state.day_names = &priv->day_names;
    state.cell_width = priv->cell_width;
    state.cell_height = priv->cell_height;
    state.week_width = priv->week_width;
    state.header_height = priv->header_height;
    tav_date_init_today (&state.today);
    state.highlight = (MonthHighlight) priv->highlight.target;
    state.highlight_row = priv->highlight.row;
    state.highlight_col = priv->highlight.col;
    state.use_effects = priv->use_effects;
    state.background = priv->background.get ();
    return state;
}

static gboolean
tav_calendar_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    TavCalendar *calendar = TAV_CALENDAR (widget);
    TavCalendarPrivate *priv = calendar->priv;
    if (!priv->allocated || priv->cell_width <= 1 || priv->cell_height <= 1) {
        TAV_MESSAGE ("Still allocation needs to be done, returning silently");
        return FALSE;
    }

    if (priv->highlight.rebuild_cache || !priv->style_cache) {
        TAV_MESSAGE ("Creating Cache here");
        g_assert (gtk_widget_get_colormap (widget) != NULL);
        if (!priv->style_cache)
            priv->style_cache.reset (new tav::MonthPaintCache ());
        tav::month_paint_cache_rebuild (*priv->style_cache, widget);
        priv->highlight.rebuild_cache = FALSE;
        priv->cells_image_stale = TRUE;
    } else {
        TAV_MESSAGE ("using cache");
    }
    g_assert (calendar->priv->style_cache != NULL);

    const tav::MonthPaintState state = paint_state (calendar);
    cairo_t *cr = gdk_cairo_create (event->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    PangoContext *context = gtk_widget_get_pango_context (widget);
    if (event->window == priv->cells_win) {
        const int width = NColumns * priv->cell_width, height = NRows * priv->cell_height;
        if (priv->cells_image && (cairo_image_surface_get_width (priv->cells_image) != width ||
                                  cairo_image_surface_get_height (priv->cells_image) != height)) {
            cairo_surface_destroy (priv->cells_image);
            priv->cells_image = nullptr;
        }
        if (!priv->cells_image) {
            priv->cells_image = cairo_image_surface_create (CAIRO_FORMAT_RGB24, width, height);
            priv->cells_image_stale = TRUE;
        }
        if (priv->cells_image_stale || priv->cells_image_stale_region) {
            cairo_t *image_cr = cairo_create (priv->cells_image);
            GdkRectangle area { 0, 0, width, height };
            if (!priv->cells_image_stale) {
                /* Only some cells changed (a press): render just them. */
                gdk_cairo_region (image_cr, priv->cells_image_stale_region);
                cairo_clip (image_cr);
                gdk_region_get_clipbox (priv->cells_image_stale_region, &area);
            }
            tav::month_paint_cells (image_cr, context, *priv->style_cache, state, area);
            cairo_destroy (image_cr);
            priv->cells_image_stale = FALSE;
            if (priv->cells_image_stale_region) {
                gdk_region_destroy (priv->cells_image_stale_region);
                priv->cells_image_stale_region = nullptr;
            }
        }
        cairo_set_source_surface (cr, priv->cells_image, 0, 0);
        cairo_paint (cr);
    }
    else if (event->window == priv->week_win)
        tav::month_paint_weeks (cr, context, *priv->style_cache, state);
    else if (event->window == widget->window)
        tav::month_paint_header (cr, context, *priv->style_cache, state, widget->allocation.width,
                                 widget->allocation.height);
    cairo_destroy (cr);
    return FALSE;
}

static void
tav_calendar_dispose (GObject *object)
{
    TavCalendar *calendar = TAV_CALENDAR (object);
    empty_cells (calendar);
    calendar->priv->background = nullptr;
    G_OBJECT_CLASS (tav_calendar_parent_class)->dispose (object);
}

static void
tav_calendar_finalize (GObject *object)
{
    TavCalendar *calendar = TAV_CALENDAR (object);
    for (auto &cell : calendar->priv->cells)
        calendar_cell_free (&cell);
    if (calendar->priv->cells_image)
        cairo_surface_destroy (calendar->priv->cells_image);
    if (calendar->priv->cells_image_stale_region)
        gdk_region_destroy (calendar->priv->cells_image_stale_region);
    calendar->priv->~_TavCalendarPrivate ();
    G_OBJECT_CLASS (tav_calendar_parent_class)->finalize (object);
}

static void
tav_calendar_class_init (TavCalendarClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);

    object_class->get_property = tav_calendar_get_property;
    object_class->set_property = tav_calendar_set_property;
    object_class->dispose = tav_calendar_dispose;
    object_class->finalize = tav_calendar_finalize;

    widget_class->realize = tav_calendar_realize;
    widget_class->unrealize = tav_calendar_unrealize;
    widget_class->map = tav_calendar_map;
    widget_class->size_request = tav_calendar_size_request;
    widget_class->size_allocate = tav_calendar_size_allocate;
    widget_class->expose_event = tav_calendar_expose_event;
    widget_class->style_set = tav_calendar_style_set;

    view_class->add_entry_instance = tav_calendar_add_entry_for_timestamp_cb;
    view_class->remove_entry = tav_calendar_remove_entry;
    view_class->clear_entries = tav_calendar_clear_entries;
    view_class->recalculate_entries = calendar_recalculate_entries_for_all_cells;
    view_class->get_next_prev_status_for_entry = tav_calendar_get_next_prev_status_for_entry;

    properties[PROP_YEAR] = g_param_spec_int ("year", "Year", "The selected year",
        0, G_MAXINT, 0, G_PARAM_READWRITE);
    properties[PROP_MONTH_NAME] = g_param_spec_string ("month-name", "Month name",
        "The name of the month according to the current locale.", NULL, G_PARAM_READABLE);
    properties[PROP_MONTH] = g_param_spec_int ("month", "Month", "The selected month (0--11)",
        0, 11, 0, G_PARAM_READWRITE);
    properties[PROP_DAY] = g_param_spec_int ("day", "Day", "The selected day (1--31)",
        1, 31, 1, G_PARAM_READWRITE);
    properties[PROP_USE_EFFECTS] = g_param_spec_boolean ("use-effects", "Use effects",
        "If the widget will use effects", FALSE, G_PARAM_READWRITE);
    properties[PROP_OPTIMIZATION] = g_param_spec_boolean ("optimization", "Optimization",
        "If the widget use optimization code to align events.", TRUE, G_PARAM_READWRITE);
    properties[PROP_PRESENTED_INTERVAL] = g_param_spec_boxed ("presented-interval", "Presented interval",
        "The interval viewed by the widget.", TAV_TYPE_DATE_INTERVAL, G_PARAM_READABLE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    /* Theme images and colours, then label alignments. */
    static const struct { const char *name, *nick, *blurb, *default_value; } string_styles[] = {
        { "bg-image-file", "Background", "Background image for the whole widget.", NULL },
        { "cell-bg-image-file-normal", "Cell background",
          "Background image file for cells.", "calendar_month_normal.png" },
        { "cal-month-week-file", "week cell in month view", "image file for week cells.", "calendar_month_week.png" },
        { "cal-month-week-file-pressed", "pressed week cell",
          "image file for highlighting pressed week cells.", "calendar_month_week_pressed.png" },
        { "cell-bg-image-file-other", "Cell background for other months",
          "Background image file for cells showing dates of next and previous months.",
          "calendar_month_lastmonth.png" },
        { "cell-bg-image-file-current", "Cell background for current day",
          "Background image file for cell of the current date.", "calendar_month_current.png" },
        { "cell-bg-image-file-pressed", "Pressed day cell background",
          "Background image file for highlighting pressed cell.", "calendar_month_pressed.png" },
        { "icon-bday-event-file", "bday calendar image file",
          "The image file for bday event.", "calendar_birthday.png" },
        { "icon-todo-entry-file", "Todo image file", "The image file for todo.", "calendar_todo.png" },
        { "font-color-normal", "Font color for current month",
          "The name of the color used on label of the current month.", "White" },
        { "font-color-other", "Font color for other month",
          "The name of the color used on label of the other month.", "LightGrey" },
        { "font-color-current", "Font color for current day",
          "The name of the color used on label of the current day.", "Black" },
        { "font-color-day", "Font color for day labels", "The name of the color used on day labels.", "White" },
        { "font-color-week", "Font color for week labels", "The name of the color used on week labels.", "White" },
    };
    for (const auto &style : string_styles)
        gtk_widget_class_install_style_property (widget_class,
            g_param_spec_string (style.name, style.nick, style.blurb, style.default_value, G_PARAM_READABLE));
    static const struct { const char *name, *nick, *blurb; float default_value; } align_styles[] = {
        { "week-label-xalign", "Week label xalign.", "Horizontal position for the week labels.", 0.5f },
        { "week-label-yalign", "Week label yalign", "Vertical position for the week labels.", 0.5f },
        { "day-label-xalign", "Day label xalign", "The horizontal alignment for day labels.", 1.0f },
    };
    for (const auto &style : align_styles)
        gtk_widget_class_install_style_property (widget_class,
            g_param_spec_float (style.name, style.nick, style.blurb, 0.0f, 1.0f, style.default_value,
                                G_PARAM_READABLE));

    signals[DAY_ACTIVATED] = g_signal_new ("day-activated", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
        NULL, NULL, calendar_cclosure_marshal_VOID__INT_INT_INT, G_TYPE_NONE, 3,
        G_TYPE_INT, G_TYPE_INT, G_TYPE_INT);
    signals[WEEK_ACTIVATED] = g_signal_new ("week-activated", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
        NULL, NULL, calendar_cclosure_marshal_VOID__INT_BOXED, G_TYPE_NONE, 2,
        G_TYPE_INT, TAV_TYPE_DATE_INTERVAL);
}

static void
tav_calendar_init (TavCalendar *calendar)
{
    void *memory = tav_calendar_get_instance_private (calendar);
    calendar->priv = new (memory) TavCalendarPrivate ();
    for (auto &cell : calendar->priv->cells)
        calendar_cell_init (&cell);
    tav_calendar_processor_set_first_day_of_week (processor_of (calendar), (guint) calendar->priv->first_day_of_week);
    rebuild_day_names (calendar);
    /* Dated from the start, so the presented interval is a real one even
     * before the first selection (which still rebuilds: reload is set). */
    calendar_grid_set_month (calendar->priv->cells, processor_of (calendar), calendar->priv->year,
                             calendar->priv->month, calendar->priv->first_day_of_week, calendar->priv->week_numbers);
    GTK_WIDGET_UNSET_FLAGS (GTK_WIDGET (calendar), GTK_NO_WINDOW);

    g_signal_connect (calendar, "button-press-event", G_CALLBACK (on_button_press_event_cb), NULL);
    g_signal_connect (calendar, "motion-notify-event", G_CALLBACK (on_motion_notify_event_cb), NULL);
    g_signal_connect (calendar, "button-release-event", G_CALLBACK (on_button_release_event_cb), NULL);
}

/* Public API ---------------------------------------------------------------- */

GtkWidget *
tav_calendar_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR, NULL));
}

gboolean
tav_calendar_select_month (TavCalendar *calendar, int month, int year)
{
    g_return_val_if_fail (TAV_IS_CALENDAR(calendar), FALSE);
    g_return_val_if_fail (month >= 0 && month <= 11, FALSE);
    if (calendar->priv->navigation_locked)
        return FALSE;
    select_month (calendar, month, year);
    return TRUE;
}

void
tav_calendar_select_prev_month (TavCalendar *calendar)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    if (!calendar->priv->navigation_locked)
        step_month (calendar, -1);
}

void
tav_calendar_select_next_month (TavCalendar *calendar)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    if (!calendar->priv->navigation_locked)
        step_month (calendar, +1);
}

void
tav_calendar_select_current_month (TavCalendar *calendar)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    if (calendar->priv->navigation_locked)
        return;
    TavDate today;
    tav_date_init_today (&today);
    select_month (calendar, today.month, today.year);
}

void
tav_calendar_set_first_day_of_week (TavCalendar *calendar, int first_day_of_week)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    g_return_if_fail (first_day_of_week >= 0 && first_day_of_week <= 6);
    TavCalendarPrivate *priv = calendar->priv;
    if (priv->first_day_of_week == first_day_of_week)
        return;
    priv->first_day_of_week = first_day_of_week;
    priv->reload = TRUE;
    tav_calendar_processor_set_first_day_of_week (processor_of (calendar), (guint) first_day_of_week);
    rebuild_day_names (calendar);
    if (tav_calendar_view_is_frozen (TAV_CALENDAR_VIEW (calendar)))
        TAV_WARNING ("FIXME: The calendar is frozen!");
    g_object_set (calendar, "month", priv->month, NULL);
}

int
tav_calendar_get_first_day_of_week (TavCalendar *calendar)
{
    g_return_val_if_fail (TAV_IS_CALENDAR(calendar), 0);
    return calendar->priv->first_day_of_week;
}

void
tav_calendar_get_interval (TavCalendar *calendar, TavDateInterval *interval)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    g_return_if_fail (interval != NULL);
    interval->start = calendar->priv->cells[0].date;
    interval->end = calendar->priv->cells[NCells - 1].date;
}

void
tav_calendar_set_background_image_pixmap (TavCalendar *calendar, GdkPixmap *pixmap)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    g_return_if_fail (pixmap == NULL || GDK_IS_PIXMAP (pixmap));
    calendar->priv->background = tav::GRefPtr<GdkPixmap> (pixmap);
    invalidate_all (calendar);
}

void
tav_calendar_adjust_view_for_time_change (TavCalendar *calendar)
{
    g_return_if_fail (TAV_IS_CALENDAR(calendar));
    /* Today's cell is found at paint time; repainting moves its mark. */
    calendar->priv->highlight.rebuild_cache = TRUE;
    invalidate_all (calendar);
}

GList *
tav_calendar_get_entries_for_day (TavCalendar *calendar, const TavDate *date)
{
    g_return_val_if_fail (TAV_IS_CALENDAR(calendar), NULL);
    g_return_val_if_fail (date != NULL, NULL);
    const int index = calendar_grid_find_date (calendar->priv->cells, processor_of (calendar), date);
    if (index < 0)
        return NULL;
    return calendar_cell_get_all_entries (&calendar->priv->cells[index], NULL);
}

GList *
tav_calendar_get_entries_for_week (TavCalendar *calendar, int week_number)
{
    g_return_val_if_fail (TAV_IS_CALENDAR(calendar), NULL);
    TavCalendarPrivate *priv = calendar->priv;
    const int *found = std::find (priv->week_numbers, priv->week_numbers + NRows, week_number);
    if (found == priv->week_numbers + NRows) {
        TAV_WARNING ("Week %d not found.", week_number);
        return NULL;
    }
    const int row = (int) (found - priv->week_numbers);
    GList *list = NULL;
    for (int col = 0; col < NColumns; col++)
        list = calendar_cell_get_all_entries (_tav_calendar_get_cell (calendar, row, col), list);
    return list;
}

GList *
tav_calendar_get_entries_for_active_month (TavCalendar *calendar)
{
    g_return_val_if_fail (TAV_IS_CALENDAR(calendar), NULL);
    GList *list = NULL;
    for (const auto &cell : calendar->priv->cells)
        if (cell.month_type == MONTH_TYPE_THIS)
            list = calendar_cell_get_all_entries (&cell, list);
    return list;
}
