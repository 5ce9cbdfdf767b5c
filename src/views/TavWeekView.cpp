/* libcalendarui - the week view */

#include "TavWeekViewInternal.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "TavCalendarNote.h"
#include "TavCalendarTask.h"
#include "TavCalendarViewPrivate.h"
#include "KivoNote.h"
#include "KivoTapAndHold.h"
#include "TavIntl.h"
#include "TavLog.h"

#define DAYS_IN_A_WEEK 7

using namespace tav::week;

enum {
    ENTRY_ACTIVATED,
    INSERT_ACTIVATED,
    EDIT_ENTRY_ACTIVATED,
    DELETE_ENTRY_ACTIVATED,
    DAY_ACTIVATED,
    TASK_GROUP_ACTIVATED,
    SET_SCROLL_ADJUSTMENTS,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_PRESENTED_INTERVAL,
    PROP_WEEK_NUMBER,
    PROP_TIME_24HR_FORMAT,
    PROP_IS_TOPMOST,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

/* Idle passes spent waiting for panning to settle; shared by all week views. */
static int panning_wait_count = 0;

G_DEFINE_TYPE_WITH_PRIVATE (TavWeekView, tav_week_view, TAV_TYPE_CALENDAR_VIEW)

static void week_view_do_set_presented_interval (TavWeekView *week_view, const TavDateInterval *interval);
static void week_view_update_current_time_timer (TavWeekView *week_view, gboolean on);
static void week_view_set_adjustment (TavWeekView *week_view, GtkAdjustment *vadjustment);
static void week_view_recalculate_all (TavWeekView *week_view);

/* Geometry -------------------------------------------------------------------- */

namespace tav::week {

int table_height (TavWeekViewPrivate *priv)
{
    return 24 * kHourHeight + priv->all_day_bar_height;
}

int time_to_table_offset (TavWeekViewPrivate *priv, int hour, int minute)
{
    int offset = hour * kHourHeight + (minute * kHourHeight) / 60;
    if (hour >= priv->all_day_bar_hour)
        offset += priv->all_day_bar_height;
    return offset;
}

int column_x (int width, int col)
{
    return (width * col) / NColumns;
}

int column_at (int width, int x)
{
    if (width <= 0 || x < 0)
        return -1;
    return (x * NColumns) / width;
}

GdkRectangle hour_entry_rect (TavWeekViewPrivate *priv, int width, int col, const WeekEntry *wentry)
{
    g_assert (col >= FirstDayColumn && col < NColumns);
    g_assert (wentry != NULL);
    const int x0 = column_x (width, col);
    const int cw = column_x (width, col + 1) - x0;
    const int n = std::max (1, wentry->n_columns);
    const int c = std::clamp (wentry->column, 0, n - 1);
    const int top = time_to_table_offset (priv, wentry->start_time->hour, wentry->start_time->minute);
    int bottom = time_to_table_offset (priv, wentry->end_time->hour, wentry->end_time->minute);
    /* A range that runs into or past the all-day bar keeps its real
     * length below it; very short entries keep room for one line. */
    bottom = std::max (bottom, top + kMinDrawnPixels);
    GdkRectangle r;
    r.x = x0 + 2 + (cw - 4) * c / n;
    r.width = (cw - 4) * (c + 1) / n - (cw - 4) * c / n - 1;
    r.y = top + 1;
    r.height = bottom - top - 2;
    return r;
}

GdkRectangle all_day_entry_rect (TavWeekViewPrivate *priv, int width, int col, int slot)
{
    g_assert (col >= FirstDayColumn && col < NColumns);
    const int x0 = column_x (width, col);
    const int cw = column_x (width, col + 1) - x0;
    GdkRectangle r;
    r.x = x0 + 2;
    r.width = cw - 4;
    r.y = priv->all_day_bar_hour * kHourHeight + kAllDayBarPadding / 2 + slot * priv->all_day_slot_height + 2;
    r.height = priv->all_day_slot_height - 4;
    return r;
}

std::vector<CrowdMark> crowd_marks (TavWeekViewPrivate *priv, int width, int col)
{
    std::vector<CrowdMark> marks;
    std::vector<int> groups;
    for (GList *l = priv->days[static_cast<size_t> (col)].list->hour_entries; l; l = l->next) {
        const WeekEntry *wentry = static_cast<const WeekEntry *> (l->data);
        if (!wentry->unplaced)
            continue;
        auto it = std::find (groups.begin (), groups.end (), wentry->group);
        if (it != groups.end ()) {
            marks[static_cast<size_t> (it - groups.begin ())].hidden++;
            continue;
        }
        /* The mark sits in the bottom right corner of the first left-over
         * record, clear of the column titles. */
        const GdkRectangle r = hour_entry_rect (priv, width, col, wentry);
        CrowdMark mark;
        mark.rect.width = std::min (r.width, kCrowdMarkWidth);
        mark.rect.height = std::min (r.height, kCrowdMarkHeight);
        mark.rect.x = r.x + r.width - mark.rect.width;
        mark.rect.y = r.y + r.height - mark.rect.height;
        mark.hidden = 1;
        groups.push_back (wentry->group);
        marks.push_back (mark);
    }
    return marks;
}

double scroll_value (TavWeekViewPrivate *priv)
{
    g_assert (priv->vadjustment);
    return std::floor (gtk_adjustment_get_value (priv->vadjustment.get ()));
}

} // namespace tav::week

static int week_view_time_to_table_offset_relative (TavWeekView *week_view, int hour, int minute)
{
    g_assert (week_view->priv->vadjustment != NULL);
    return time_to_table_offset (week_view->priv, hour, minute) - static_cast<int> (scroll_value (week_view->priv));
}

static int table_width (TavWeekView *week_view)
{
    int w = 0, h = 0;
    if (week_view->priv->table_win)
        gdk_drawable_get_size (week_view->priv->table_win, &w, &h);
    else
        w = GTK_WIDGET (week_view)->allocation.width - kHourColumnWidth;
    return std::max (w, NColumns);
}

static int table_window_height (TavWeekView *week_view)
{
    return std::max (1, GTK_WIDGET (week_view)->allocation.height - kHeaderHeight);
}

static void _set_n_all_day_slots (TavWeekView *week_view, int n_all_day_slots)
{
    g_assert (n_all_day_slots >= 1);
    TavWeekViewPrivate *priv = week_view->priv;
    if (priv->n_all_day_slots == n_all_day_slots)
        return;
    priv->n_all_day_slots = n_all_day_slots;
    priv->all_day_bar_height = n_all_day_slots * priv->all_day_slot_height + kAllDayBarPadding;
    invalidate_cache (week_view);
    gtk_widget_queue_resize (GTK_WIDGET (week_view));
}

static void week_view_configure_adjustment (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    GtkAdjustment *adj = priv->vadjustment.get ();
    const double page = table_window_height (week_view);
    const double upper = table_height (priv);
    adj->lower = 0;
    adj->upper = upper;
    adj->page_size = std::min (page, upper);
    adj->step_increment = kHourHeight;
    adj->page_increment = adj->page_size;
    const double max_value = std::max (0.0, adj->upper - adj->page_size);
    if (adj->value > max_value) {
        adj->value = max_value;
        gtk_adjustment_changed (adj);
        gtk_adjustment_value_changed (adj);
    } else {
        gtk_adjustment_changed (adj);
    }
}

/* Days ------------------------------------------------------------------------ */

static TavCalendarProcessor *processor_of (TavWeekView *week_view)
{
    return tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (week_view));
}

static void week_view_fill_days (TavWeekView *week_view, const TavDate *start, TavDateFormat format)
{
    TavWeekViewPrivate *priv = week_view->priv;
    TavCalendarProcessor *processor = processor_of (week_view);
    TavDate today;
    tav_date_init_today (&today);
    TavDate date = *start;
    for (int i = 0; i < kDaysInWeek; i++) {
        Day &day = priv->days[static_cast<size_t> (i)];
        day.date = date;
        day.is_today = tav_date_compare (&date, &today) == 0;
        const int weekday = processor ? static_cast<int> (tav_calendar_processor_date_to_day_of_week (processor, &date))
                                      : 0;
        day.header.reset (tav_date_is_valid (&date) ? tav_date_to_string_format (&date, format, weekday)
                                                    : g_strdup (""));
        if (processor)
            tav_calendar_processor_inc_date (processor, &date);
    }
}

static void week_view_week_around (TavWeekView *week_view, const TavDate *date, TavDateInterval *interval)
{
    TavCalendarProcessor *processor = processor_of (week_view);
    interval->start = *date;
    interval->end = *date;
    /* A week has seven days: never more steps than that, whatever the
     * processor makes of a date. */
    for (int i = 0; i < kDaysInWeek - 1 && !tav_calendar_processor_is_first_day_of_week (processor, &interval->start); i++)
        tav_calendar_processor_dec_date (processor, &interval->start);
    for (int i = 0; i < kDaysInWeek - 1 && !tav_calendar_processor_is_last_day_of_week (processor, &interval->end); i++)
        tav_calendar_processor_inc_date (processor, &interval->end);
}

static int week_view_column_for_date (TavWeekView *week_view, const TavDate *date)
{
    for (int i = 0; i < kDaysInWeek; i++)
        if (tav_date_compare (&week_view->priv->days[static_cast<size_t> (i)].date, date) == 0)
            return i;
    return -1;
}

static void week_view_invalidate_all (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (!gtk_widget_get_realized (GTK_WIDGET (week_view)))
        return;
    gdk_window_invalidate_rect (priv->header_win, NULL, FALSE);
    gdk_window_invalidate_rect (priv->hours_win, NULL, FALSE);
    gdk_window_invalidate_rect (priv->table_win, NULL, FALSE);
}

static void week_view_clear_press (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    priv->press.pending = false;
    priv->highlight.clear = true;
    priv->highlight.area = Area::None;
    priv->highlight.day = -1;
    priv->highlight.slot = -1;
    priv->highlight.wentry = nullptr;
}

/* Current time ---------------------------------------------------------------- */

static void week_view_refresh_current_time (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    const time_t t = priv->clock ? priv->clock () : time (NULL);
    struct tm now;
    localtime_r (&t, &now);
    const bool day_changed = now.tm_yday != priv->now.tm_yday || now.tm_year != priv->now.tm_year;
    priv->now = now;
    priv->n_time_refreshes++;

    if (day_changed) {
        TavDate today;
        tav_tm_to_date (&today, &now);
        for (Day &day : priv->days)
            day.is_today = tav_date_compare (&day.date, &today) == 0;
        invalidate_cache (week_view);
        if (gtk_widget_get_realized (GTK_WIDGET (week_view)))
            gdk_window_invalidate_rect (priv->header_win, NULL, FALSE);
    }
    if (gtk_widget_get_realized (GTK_WIDGET (week_view))) {
        gdk_window_invalidate_rect (priv->table_win, NULL, FALSE);
        gdk_window_invalidate_rect (priv->hours_win, NULL, FALSE);
    }
}

static gboolean on_current_time_timeout_cb (gpointer data)
{
    week_view_refresh_current_time (TAV_WEEK_VIEW (data));
    return G_SOURCE_CONTINUE;
}

static void week_view_update_current_time_timer (TavWeekView *week_view, gboolean on)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (on) {
        if (priv->timer_tag == 0) {
            week_view_refresh_current_time (week_view);
            priv->timer_tag = g_timeout_add (kCurrentTimeInterval, on_current_time_timeout_cb, week_view);
        }
    } else if (priv->timer_tag) {
        g_source_remove (priv->timer_tag);
        priv->timer_tag = 0;
    }
}

/* Scrolling ------------------------------------------------------------------- */

static gboolean idle_invalidate_remainders (gpointer data)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (data);
    TavWeekViewPrivate *priv = week_view->priv;
    const double value = scroll_value (priv);
    const bool realized = gtk_widget_get_realized (GTK_WIDGET (week_view));

    if (value != priv->last_painted_value) {
        TAV_MESSAGE ("still panning is going on lets wait");
        if (++panning_wait_count < kPanningPatience)
            return G_SOURCE_CONTINUE;
        if (realized) {
            gdk_window_invalidate_rect (priv->table_win, NULL, FALSE);
            gdk_window_invalidate_rect (priv->hours_win, NULL, FALSE);
        }
        priv->last_painted_value = value;
        priv->idle_tag = 0;
        return G_SOURCE_REMOVE;
    }

    TAV_MESSAGE ("Panning seems to have been stopped lets paint remainders");
    if (realized) {
        gdk_window_invalidate_rect (priv->table_win, NULL, FALSE);
        gdk_window_invalidate_rect (priv->hours_win, NULL, FALSE);
    }
    panning_wait_count = 0;
    priv->idle_tag = 0;
    return G_SOURCE_REMOVE;
}

static void on_adjustment_value_changed_cb (GtkAdjustment *adjustment, TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (gtk_widget_get_realized (GTK_WIDGET (week_view))) {
        /* Move what is already on screen and paint only the uncovered
         * strip now; the rest follows when panning settles. */
        const int shown = static_cast<int> (GPOINTER_TO_INT (g_object_get_data (G_OBJECT (week_view), "tav-origin")));
        const int origin = static_cast<int> (scroll_value (priv));
        if (origin != shown) {
            gdk_window_scroll (priv->table_win, 0, shown - origin);
            gdk_window_scroll (priv->hours_win, 0, shown - origin);
            g_object_set_data (G_OBJECT (week_view), "tav-origin", GINT_TO_POINTER (origin));
        }
    }
    if (priv->idle_tag == 0)
        priv->idle_tag = g_idle_add (idle_invalidate_remainders, week_view);
}

static void week_view_set_adjustment (TavWeekView *week_view, GtkAdjustment *vadjustment)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (!vadjustment)
        vadjustment = GTK_ADJUSTMENT (gtk_adjustment_new (0, 0, 0, 0, 0, 0));
    if (priv->vadjustment.get () == vadjustment)
        return;
    if (priv->vadjustment && priv->value_changed_id)
        g_signal_handler_disconnect (priv->vadjustment.get (), priv->value_changed_id);
    g_object_ref_sink (vadjustment);
    priv->vadjustment = tav::adoptGRef (vadjustment);
    priv->value_changed_id = g_signal_connect (vadjustment, "value-changed",
                                               G_CALLBACK (on_adjustment_value_changed_cb), week_view);
    week_view_configure_adjustment (week_view);
}

static void tav_week_view_set_scroll_adjustments (TavWeekView *week_view, GtkAdjustment *hadjustment,
                                                  GtkAdjustment *vadjustment)
{
    week_view_set_adjustment (week_view, vadjustment);
}

/* Entries --------------------------------------------------------------------- */

static int week_view_needed_slots (TavWeekView *week_view)
{
    int most = 1;
    for (Day &day : week_view->priv->days)
        most = std::max (most, week_entry_list_n_all_day_entries (day.list));
    return std::min (most, MAX_ALL_DAY_SLOTS);
}

static void week_view_recalculate_all (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    /* A multi-day entry keeps one row of the bar on all its days. */
    for (int col = 0; col < kDaysInWeek; col++) {
        WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;
        week_entry_list_calculate_overlapping (list);
        if (col == 0)
            continue;
        for (GList *l = list->allday_entries; l; l = l->next) {
            WeekEntry *wentry = static_cast<WeekEntry *> (l->data);
            if (!wentry->multi_days)
                continue;
            WeekEntry *before = week_entry_list_find_allday_wentry_for_entry (
                priv->days[static_cast<size_t> (col - 1)].list, wentry->entry);
            if (before && before->index != wentry->index && before->index < MAX_ALL_DAY_SLOTS - 1)
                week_entry_list_allday_readjust_entry_to_index (list, wentry, before->index);
        }
    }
    int needed = week_view_needed_slots (week_view);
    for (Day &day : priv->days)
        for (GList *l = day.list->allday_entries; l; l = l->next)
            needed = std::max (needed, std::min (static_cast<WeekEntry *> (l->data)->index + 1, MAX_ALL_DAY_SLOTS));
    week_view_clear_press (week_view);
    _set_n_all_day_slots (week_view, needed);
    if (priv->vadjustment)
        week_view_configure_adjustment (week_view);
    week_view_invalidate_all (week_view);
}

static void week_view_clip_to_day (WeekEntry *wentry, const TavDate *day)
{
    /* A timed entry over several days covers each day only in part. */
    if (!wentry->multi_days || wentry->all_day)
        return;
    const int from_start = tav_date_compare (day, wentry->start_date);
    const int to_end = tav_date_compare (day, wentry->end_date);
    if (from_start > 0) {
        wentry->start_time->hour = 0;
        wentry->start_time->minute = 0;
    }
    if (to_end < 0) {
        wentry->end_time->hour = 23;
        wentry->end_time->minute = 59;
    }
}

static gboolean tav_week_view_add_entry_for_timestamp_cb (TavCalendarView *view, const TavTimestamp *instance_start,
                                                          TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_WEEK_VIEW (view), FALSE);
    g_return_val_if_fail (instance_start != NULL, FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
    TavWeekView *week_view = TAV_WEEK_VIEW (view);
    TavWeekViewPrivate *priv = week_view->priv;
    TavCalendarProcessor *processor = processor_of (week_view);

    if (TAV_IS_CALENDAR_NOTE (entry)) {
        TAV_WARNING ("No notes in the month view.");
        return FALSE;
    }

    const bool is_task = TAV_IS_CALENDAR_TASK (entry);
    TavDate *start = nullptr, *end = nullptr;
    TavTime *start_time = nullptr, *end_time = nullptr;
    gboolean all_day = FALSE;
    g_object_get (entry, "start-date", &start, "end-date", &end, "start-time", &start_time, "end-time", &end_time,
                  "all-day", &all_day, NULL);
    int span = 0;
    if (!is_task && start && end) {
        if (tav_date_compare (end, start) < 0) {
            TAV_WARNING ("The start_date >= end_date, giving up.");
            tav_date_free (start);
            tav_date_free (end);
            tav_time_free (start_time);
            tav_time_free (end_time);
            return FALSE;
        }
        span = tav_calendar_processor_get_date_interval_in_days (processor, *start, *end);
        /* A timed event ending at midnight leaves its end day empty, as in
         * the month view. */
        if (span > 0 && !all_day && start_time && end_time
            && !tav_calendar_view_last_day_has_piece (instance_start->time.hour, start_time->hour, end_time->hour))
            span--;
    }
    tav_date_free (start);
    tav_date_free (end);
    tav_time_free (start_time);
    tav_time_free (end_time);

    bool placed = false;
    TavDate day = instance_start->date;
    for (int i = 0; i <= span; i++) {
        if (i > 0)
            tav_calendar_processor_inc_date (processor, &day);
        const int col = week_view_column_for_date (week_view, &day);
        if (col < 0) {
            /* Days before the week are skipped; after it nothing follows. */
            if (priv->has_presented && tav_date_compare (&day, &priv->presented.end) > 0)
                break;
            continue;
        }
        WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;
        if (is_task) {
            WeekEntry *tasks = nullptr;
            for (GList *l = list->allday_entries; l && !tasks; l = l->next)
                if (static_cast<WeekEntry *> (l->data)->is_task)
                    tasks = static_cast<WeekEntry *> (l->data);
            if (tasks) {
                if (tasks->entry != entry && !g_list_find (tasks->tasks, entry))
                    week_entry_append_task_entry_to_wentry (tasks, TAV_CALENDAR_TASK (entry));
                placed = true;
                continue;
            }
        }
        WeekEntry *wentry = week_entry_new (entry, processor, &instance_start->date);
        if (wentry->all_day) {
            week_entry_list_append_entry (list, wentry);
        } else {
            week_view_clip_to_day (wentry, &day);
            week_entry_list_append_entry (list, wentry);
        }
        placed = true;
    }

    if (placed && !tav_calendar_view_is_frozen (view))
        week_view_recalculate_all (week_view);
    return placed;
}

static void tav_week_view_clear_entries (TavCalendarView *view)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (view);
    week_view_clear_press (week_view);
    for (Day &day : week_view->priv->days)
        week_entry_list_remove_all_entry (day.list);
    week_view_recalculate_all (week_view);
}

static gboolean tav_week_view_remove_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
    TavWeekView *week_view = TAV_WEEK_VIEW (view);
    week_view_clear_press (week_view);
    bool removed = false;
    for (Day &day : week_view->priv->days) {
        while (week_entry_list_find_and_remove_hour_entry (day.list, entry))
            removed = true;
        if (week_entry_list_find_and_remove_allday_entry (day.list, entry))
            removed = true;
        /* Another record of the same entry (not a merged task) may remain. */
        while (!TAV_IS_CALENDAR_TASK (entry) && week_entry_list_find_and_remove_allday_entry (day.list, entry))
            removed = true;
    }
    if (removed)
        week_view_recalculate_all (week_view);
    return removed;
}

static gboolean tav_week_view_refresh_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
    /* Keep the entry alive: the lists may hold its only references. */
    tav::GRefPtr<TavCalendarEntry> keep (entry);
    tav_week_view_remove_entry (view, entry);
    return tav_calendar_view_add_entry (view, entry);
}

static void tav_week_view_reading_finished (TavCalendarView *view)
{
    week_view_recalculate_all (TAV_WEEK_VIEW (view));
}

static void tav_week_view_recalculate_entries (TavCalendarView *view)
{
    week_view_recalculate_all (TAV_WEEK_VIEW (view));
}

static gboolean tav_week_view_get_next_prev_status_for_entry (TavCalendarView *view, TavCalendarEntry *entry,
                                                              const TavDate *instance_date, gboolean *has_prev,
                                                              gboolean *has_next)
{
    g_return_val_if_fail (instance_date != NULL, FALSE);
    g_return_val_if_fail (has_prev != NULL && has_next != NULL, FALSE);
    TavWeekView *week_view = TAV_WEEK_VIEW (view);
    const int col = week_view_column_for_date (week_view, instance_date);
    if (col < 0) {
        TAV_WARNING ("Date not found");
        return FALSE;
    }
    /* The week reads in order: each day's all-day entries, then its timed
     * ones. An entry has a previous (next) one when anything is shown
     * before (after) it in that order. */
    std::vector<TavCalendarEntry *> order;
    for (Day &day : week_view->priv->days) {
        for (GList *l = day.list->allday_entries; l; l = l->next)
            order.push_back (static_cast<WeekEntry *> (l->data)->entry);
        for (GList *l = day.list->hour_entries; l; l = l->next)
            order.push_back (static_cast<WeekEntry *> (l->data)->entry);
    }
    size_t before = 0;
    for (int c = 0; c < col; c++) {
        WeekEntryList *list = week_view->priv->days[static_cast<size_t> (c)].list;
        before += g_list_length (list->allday_entries) + g_list_length (list->hour_entries);
    }
    WeekEntryList *list = week_view->priv->days[static_cast<size_t> (col)].list;
    const size_t in_day = g_list_length (list->allday_entries) + g_list_length (list->hour_entries);
    for (size_t i = before; i < before + in_day; i++) {
        if (order[i] == entry || (TAV_IS_CALENDAR_ENTRY (order[i]) && tav_calendar_entry_is_equal (order[i], entry))) {
            *has_prev = i > 0;
            *has_next = i + 1 < order.size ();
            return TRUE;
        }
    }
    *has_prev = *has_next = FALSE;
    return FALSE;
}

/* Context menu ------------------------------------------------------------------ */

/* Birthdays belong to the contacts: they are neither edited nor deleted
 * from the calendar, so they have no menu items. */
static bool week_view_entry_has_menu (TavCalendarEntry *entry)
{
    gboolean birthday = FALSE;
    if (entry)
        g_object_get (entry, "has-birthday", &birthday, NULL);
    return entry && !birthday;
}

void tav_week_view_ensure_valid_items_in_csm (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (!priv->menu)
        return;
    const bool items = week_view_entry_has_menu (priv->entry_for_csm.get ());
    gtk_widget_set_visible (priv->menu_edit, items);
    gtk_widget_set_visible (priv->menu_delete, items);
}

/* Emits @signal for the entry the context menu was opened on; @func is the
 * menu item's handler, named in the warning. */
static void week_view_emit_for_csm (TavWeekView *week_view, guint signal, const char *func)
{
    if (!week_view->priv->entry_for_csm) {
        TAV_WARNING_AS (func, "entry_for_csm == NULL");
        return;
    }
    /* Held: a handler may drop the menu's entry. */
    tav::GRefPtr<TavCalendarEntry> entry = week_view->priv->entry_for_csm;
    g_signal_emit (week_view, signal, 0, entry.get ());
}

void tav_week_view_csm_edit_clicked (GtkWidget *item, TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW (week_view));
    week_view_emit_for_csm (week_view, signals[EDIT_ENTRY_ACTIVATED], __func__);
}

void tav_week_view_csm_delete_clicked (GtkWidget *item, TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW (week_view));
    week_view_emit_for_csm (week_view, signals[DELETE_ENTRY_ACTIVATED], __func__);
}

static void week_view_build_menu (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    priv->menu = kivo_gtk_menu_new ();
    g_object_ref_sink (priv->menu);
    priv->menu_edit = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_edit"));
    priv->menu_delete = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_delete"));
    g_signal_connect (priv->menu_edit, "activate", G_CALLBACK (tav_week_view_csm_edit_clicked), week_view);
    g_signal_connect (priv->menu_delete, "activate", G_CALLBACK (tav_week_view_csm_delete_clicked), week_view);
    gtk_menu_shell_append (GTK_MENU_SHELL (priv->menu), priv->menu_edit);
    gtk_menu_shell_append (GTK_MENU_SHELL (priv->menu), priv->menu_delete);
    gtk_widget_show_all (priv->menu);
}

/* Pointer ------------------------------------------------------------------------ */

static Area area_of (TavWeekView *week_view, GdkWindow *window)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (window == priv->table_win)
        return Area::Table;
    if (window == priv->header_win)
        return Area::Header;
    if (window == priv->hours_win)
        return Area::Hours;
    return Area::None;
}

/* The record of column @col at table point (@x, @y), the all-day bar first. */
static Hit week_view_hit_test (TavWeekView *week_view, int x, int y)
{
    TavWeekViewPrivate *priv = week_view->priv;
    Hit hit;
    const int width = table_width (week_view);
    const int col = column_at (width, x);
    if (col < 0 || col >= NColumns)
        return hit;
    hit.day = col;
    WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;

    const int bar_top = priv->all_day_bar_hour * kHourHeight;
    if (y >= bar_top && y < bar_top + priv->all_day_bar_height) {
        hit.in_all_day_bar = true;
        for (GList *l = list->allday_entries; l; l = l->next) {
            WeekEntry *wentry = static_cast<WeekEntry *> (l->data);
            if (wentry->index >= MAX_ALL_DAY_SLOTS)
                continue;
            GdkRectangle r = all_day_entry_rect (priv, width, col, wentry->index);
            if (gdk_rectangle_has_point (&r, x, y))
                hit.wentry = wentry;
        }
        return hit;
    }
    /* A crowded group's mark lies over everything; then the records in
     * columns, the last painted on top; the left-over records of a crowded
     * group lie underneath. */
    for (const CrowdMark &mark : crowd_marks (priv, width, col))
        if (gdk_rectangle_has_point (&mark.rect, x, y)) {
            hit.crowd_mark = true;
            return hit;
        }
    WeekEntry *under = nullptr;
    for (GList *l = list->hour_entries; l; l = l->next) {
        WeekEntry *wentry = static_cast<WeekEntry *> (l->data);
        GdkRectangle r = hour_entry_rect (priv, width, col, wentry);
        if (gdk_rectangle_has_point (&r, x, y))
            (wentry->unplaced ? under : hit.wentry) = wentry;
    }
    if (!hit.wentry)
        hit.wentry = under;
    return hit;
}

static int week_view_hour_slot_at (TavWeekViewPrivate *priv, int y)
{
    const int bar_top = priv->all_day_bar_hour * kHourHeight;
    if (y < 0)
        return -1;
    if (y < bar_top)
        return y / kHourHeight;
    if (y < bar_top + priv->all_day_bar_height)
        return 24;
    return (y - priv->all_day_bar_height) / kHourHeight;
}

static void week_view_invalidate_highlight (TavWeekView *week_view)
{
    TavWeekViewPrivate *priv = week_view->priv;
    if (!gtk_widget_get_realized (GTK_WIDGET (week_view)))
        return;
    if (priv->highlight.area == Area::Header)
        gdk_window_invalidate_rect (priv->header_win, NULL, FALSE);
    else if (priv->highlight.area == Area::Table)
        gdk_window_invalidate_rect (priv->table_win, NULL, FALSE);
}

static gboolean tav_week_view_button_press (GtkWidget *widget, GdkEventButton *event, gpointer)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    if (event->type != GDK_BUTTON_PRESS || event->button != 1)
        return FALSE;
    if (!priv->highlight.clear)
        week_view_clear_press (week_view); /* a release went missing (grab broken) */
    g_assert (week_view->priv->highlight.clear == TRUE);

    priv->press.pending = true;
    priv->press.x = event->x;
    priv->press.y = event->y;
    priv->press.area = area_of (week_view, event->window);

    if (priv->press.area == Area::Table) {
        const int y = static_cast<int> (event->y) + static_cast<int> (scroll_value (priv));
        Hit hit = week_view_hit_test (week_view, static_cast<int> (event->x), y);
        if (hit.day >= 0) {
            priv->highlight.clear = false;
            priv->highlight.area = Area::Table;
            priv->highlight.day = hit.day;
            priv->highlight.wentry = hit.wentry;
            priv->highlight.slot = hit.wentry ? -1 : week_view_hour_slot_at (priv, y);
            priv->entry_for_csm = hit.wentry ? tav::GRefPtr<TavCalendarEntry> (hit.wentry->entry) : nullptr;
        }
    } else if (priv->press.area == Area::Header) {
        const int col = column_at (table_width (week_view), static_cast<int> (event->x) - kHourColumnWidth);
        if (col >= 0 && col < NColumns) {
            priv->highlight.clear = false;
            priv->highlight.area = Area::Header;
            priv->highlight.day = col;
        }
    }
    week_view_invalidate_highlight (week_view);
    return FALSE;
}

static gboolean tav_week_view_motion (GtkWidget *widget, GdkEventMotion *event, gpointer)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    if (!priv->press.pending || priv->highlight.clear)
        return FALSE;
    if (std::fabs (event->x - priv->press.x) > kTapSlop || std::fabs (event->y - priv->press.y) > kTapSlop) {
        /* The finger pans: nothing stays pressed. */
        week_view_invalidate_highlight (week_view);
        priv->highlight.clear = true;
        priv->highlight.area = Area::None;
        priv->highlight.wentry = nullptr;
    }
    return FALSE;
}

static void week_view_emit_day (TavWeekView *week_view, int col)
{
    if (col < 0 || col > 6)
        return;
    const TavDate &date = week_view->priv->days[static_cast<size_t> (col)].date;
    g_signal_emit (week_view, signals[DAY_ACTIVATED], 0, date.year, date.month, date.day);
}

static gboolean tav_week_view_button_release (GtkWidget *widget, GdkEventButton *event, gpointer)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    if (!priv->press.pending || event->button != 1)
        return FALSE;
    const double px = priv->press.x, py = priv->press.y;
    const Area press_area = priv->press.area;
    week_view_invalidate_highlight (week_view);
    week_view_clear_press (week_view);

    if (std::fabs (event->x - px) > kTapSlop || std::fabs (event->y - py) > kTapSlop)
        return FALSE;
    const Area area = area_of (week_view, event->window);
    if (area != press_area)
        return FALSE;

    const int width = table_width (week_view);
    if (area == Area::Header) {
        const int x = static_cast<int> (event->x) - kHourColumnWidth;
        if (x < 0)
            return FALSE;
        week_view_emit_day (week_view, column_at (width, x));
        return FALSE;
    }
    if (area != Area::Table)
        return FALSE;

    const int x = static_cast<int> (event->x);
    const int y = static_cast<int> (event->y) + static_cast<int> (scroll_value (priv));
    if (x < 0)
        return FALSE;
    const int col = column_at (width, x);
    if (col > 6) {
        TAV_WARNING ("invalid day");
        return FALSE;
    }
    Hit hit = week_view_hit_test (week_view, x, y);
    const TavDate date = priv->days[static_cast<size_t> (col)].date;

    /* The "+n" of a crowded hour opens the day, where every entry shows. */
    if (hit.crowd_mark) {
        week_view_emit_day (week_view, col);
        return FALSE;
    }
    if (hit.wentry) {
        WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;
        if (hit.in_all_day_bar && hit.wentry->index == MAX_ALL_DAY_SLOTS - 1 &&
            week_entry_list_n_all_day_entries (list) > MAX_ALL_DAY_SLOTS) {
            week_view_emit_day (week_view, col);
        } else if (hit.wentry->is_task && hit.wentry->n_tasks > 1) {
            g_signal_emit (week_view, signals[TASK_GROUP_ACTIVATED], 0);
        } else {
            tav::GRefPtr<TavCalendarEntry> entry (hit.wentry->entry);
            g_signal_emit (week_view, signals[ENTRY_ACTIVATED], 0, entry.get (), &date);
        }
        return FALSE;
    }

    if (date.year < 1970 || date.year > 2037) {
        g_signal_emit_by_name (week_view, "year-limit-reached::0");
        return FALSE;
    }
    const int slot = week_view_hour_slot_at (priv, y);
    if (slot == 24) {
        TavTime midnight = { 0, 0 };
        g_signal_emit (week_view, signals[INSERT_ACTIVATED], 0, &date, &midnight, TRUE);
    } else if (slot >= 0 && slot < 24) {
        TavTime time = { slot, 0 };
        g_signal_emit (week_view, signals[INSERT_ACTIVATED], 0, &date, &time, FALSE);
    } else {
        TAV_WARNING ("invalid hour_slot");
    }
    return FALSE;
}

/* Tap-and-hold: the finger rests on a record, offer Edit and Delete. */
static gboolean on_tap_and_hold_query_cb (GtkWidget *widget, GdkEvent *event, gpointer)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    /* The query comes with the press, before our press handler has run:
     * find the record under the finger here. */
    if (event && (event->type == GDK_BUTTON_PRESS) && area_of (week_view, event->button.window) == Area::Table) {
        const int y = static_cast<int> (event->button.y) + static_cast<int> (scroll_value (priv));
        Hit hit = week_view_hit_test (week_view, static_cast<int> (event->button.x), y);
        priv->entry_for_csm = hit.wentry ? tav::GRefPtr<TavCalendarEntry> (hit.wentry->entry) : nullptr;
    } else if (event && event->type == GDK_BUTTON_PRESS) {
        priv->entry_for_csm = nullptr;
    }
    /* TRUE refuses the hold: only an entry with items has a menu. */
    return week_view_entry_has_menu (priv->entry_for_csm.get ()) ? FALSE : TRUE;
}

static void on_tap_and_hold_cb (GtkWidget *widget, gpointer)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    if (!priv->entry_for_csm)
        return;
    /* The hold is not a tap. */
    week_view_invalidate_highlight (week_view);
    week_view_clear_press (week_view);
    if (!priv->menu)
        week_view_build_menu (week_view);
    tav_week_view_ensure_valid_items_in_csm (week_view);
    gtk_menu_popup (GTK_MENU (priv->menu), NULL, NULL, NULL, NULL, 1, gtk_get_current_event_time ());
}

/* Widget --------------------------------------------------------------------------- */

static void tav_week_view_realize (GtkWidget *widget)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    gtk_widget_set_realized (widget, TRUE);
    TAV_MESSAGE ("Realizing with size %dx%d", widget->allocation.width, widget->allocation.height);

    GdkWindowAttr attributes = {};
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.x = widget->allocation.x;
    attributes.y = widget->allocation.y;
    attributes.width = widget->allocation.width;
    attributes.height = widget->allocation.height;
    attributes.wclass = GDK_INPUT_OUTPUT;
    attributes.visual = gtk_widget_get_visual (widget);
    attributes.colormap = gtk_widget_get_colormap (widget);
    attributes.event_mask = gtk_widget_get_events (widget) | GDK_EXPOSURE_MASK;
    const int mask = GDK_WA_X | GDK_WA_Y | GDK_WA_VISUAL | GDK_WA_COLORMAP;
    widget->window = gdk_window_new (gtk_widget_get_parent_window (widget), &attributes, mask);
    gdk_window_set_user_data (widget->window, widget);

    const int input = GDK_EXPOSURE_MASK | GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK |
                      GDK_POINTER_MOTION_MASK | GDK_POINTER_MOTION_HINT_MASK;
    auto child = [&] (int x, int y, int w, int h) {
        GdkWindowAttr a = attributes;
        a.x = x;
        a.y = y;
        a.width = std::max (1, w);
        a.height = std::max (1, h);
        a.event_mask = input;
        GdkWindow *win = gdk_window_new (widget->window, &a, mask);
        gdk_window_set_user_data (win, widget);
        gdk_window_show (win);
        return win;
    };
    const int w = widget->allocation.width, h = widget->allocation.height;
    priv->header_win = child (0, 0, w, kHeaderHeight);
    priv->hours_win = child (0, kHeaderHeight, kHourColumnWidth, h - kHeaderHeight);
    priv->table_win = child (kHourColumnWidth, kHeaderHeight, w - kHourColumnWidth, h - kHeaderHeight);

    widget->style = gtk_style_attach (widget->style, widget->window);
    gtk_style_set_background (widget->style, widget->window, GTK_STATE_NORMAL);
    for (GdkWindow *win : { priv->header_win, priv->hours_win, priv->table_win })
        gdk_window_set_back_pixmap (win, NULL, FALSE);
    g_object_set_data (G_OBJECT (week_view), "tav-origin", GINT_TO_POINTER (static_cast<int> (scroll_value (priv))));
    invalidate_cache (week_view);

    if (priv->is_topmost)
        week_view_update_current_time_timer (week_view, TRUE);
}

static void tav_week_view_unrealize (GtkWidget *widget)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    week_view_update_current_time_timer (week_view, FALSE);
    week_view_clear_press (week_view);
    for (GdkWindow **win : { &priv->header_win, &priv->hours_win, &priv->table_win }) {
        if (*win) {
            gdk_window_set_user_data (*win, NULL);
            gdk_window_destroy (*win);
            *win = nullptr;
        }
    }
    priv->cache = nullptr;
    priv->cache_stale = true;
    GTK_WIDGET_CLASS (tav_week_view_parent_class)->unrealize (widget);
}

static void tav_week_view_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    requisition->width = kHourColumnWidth + NColumns * 40;
    requisition->height = kHeaderHeight + 2 * kHourHeight;
}

static void tav_week_view_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    TAV_MESSAGE ("width %d height %d", allocation->width, allocation->height);
    const bool width_changed = widget->allocation.width != allocation->width;
    widget->allocation = *allocation;
    if (gtk_widget_get_realized (widget)) {
        const int w = allocation->width, h = allocation->height;
        gdk_window_move_resize (widget->window, allocation->x, allocation->y, w, h);
        gdk_window_move_resize (priv->header_win, 0, 0, w, kHeaderHeight);
        gdk_window_move_resize (priv->hours_win, 0, kHeaderHeight, kHourColumnWidth, std::max (1, h - kHeaderHeight));
        gdk_window_move_resize (priv->table_win, kHourColumnWidth, kHeaderHeight, std::max (1, w - kHourColumnWidth),
                                std::max (1, h - kHeaderHeight));
        if (width_changed)
            invalidate_cache (week_view);
    }
    week_view_configure_adjustment (week_view);
}

static gboolean tav_week_view_expose (GtkWidget *widget, GdkEventExpose *event)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (widget);
    TavWeekViewPrivate *priv = week_view->priv;
    if (event->window == priv->table_win) {
        paint_table (week_view, &event->area);
        priv->last_painted_value = scroll_value (priv);
        g_object_set_data (G_OBJECT (week_view), "tav-origin", GINT_TO_POINTER (static_cast<int> (priv->last_painted_value)));
    } else if (event->window == priv->hours_win) {
        paint_hours (week_view, &event->area);
    } else if (event->window == priv->header_win) {
        paint_header (week_view, &event->area);
    }
    return FALSE;
}

/* GObject ------------------------------------------------------------------------- */

static void tav_week_view_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (object);
    TavWeekViewPrivate *priv = week_view->priv;
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL:
        g_value_set_boxed (value, priv->has_presented ? &priv->presented : NULL);
        break;
    case PROP_WEEK_NUMBER:
        g_value_set_int (value, priv->has_presented
                                    ? tav_calendar_processor_date_to_week_number (processor_of (week_view),
                                                                                  &priv->presented.start)
                                    : -1);
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, priv->time_24hr_format);
        break;
    case PROP_IS_TOPMOST:
        g_value_set_boolean (value, priv->is_topmost);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_week_view_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (object);
    TavWeekViewPrivate *priv = week_view->priv;
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL:
        week_view_do_set_presented_interval (week_view, static_cast<const TavDateInterval *> (g_value_get_boxed (value)));
        break;
    case PROP_TIME_24HR_FORMAT: {
        const bool on = g_value_get_boolean (value);
        if (on != priv->time_24hr_format) {
            priv->time_24hr_format = on;
            /* The cached labels hold the old clock. */
            for (Day &day : priv->days)
                for (GList *l = day.list->hour_entries; l; l = l->next)
                    g_clear_pointer (&static_cast<WeekEntry *> (l->data)->summary_time, g_free);
            invalidate_cache (week_view);
            week_view_invalidate_all (week_view);
        }
        break;
    }
    case PROP_IS_TOPMOST:
        priv->is_topmost = g_value_get_boolean (value);
        if (gtk_widget_get_realized (GTK_WIDGET (week_view)))
            week_view_update_current_time_timer (week_view, priv->is_topmost);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_week_view_dispose (GObject *object)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (object);
    TavWeekViewPrivate *priv = week_view->priv;
    if (!priv->dispose_has_run) {
        priv->dispose_has_run = true;
        week_view_update_current_time_timer (week_view, FALSE);
        if (priv->idle_tag) {
            g_source_remove (priv->idle_tag);
            priv->idle_tag = 0;
        }
        if (priv->vadjustment && priv->value_changed_id)
            g_signal_handler_disconnect (priv->vadjustment.get (), priv->value_changed_id);
        priv->value_changed_id = 0;
        priv->vadjustment = nullptr;
        if (priv->menu) {
            gtk_widget_destroy (priv->menu);
            g_object_unref (priv->menu);
            priv->menu = nullptr;
        }
        priv->entry_for_csm = nullptr;
        week_view_clear_press (week_view);
        for (Day &day : priv->days)
            if (day.list)
                week_entry_list_remove_all_entry (day.list);
    }
    G_OBJECT_CLASS (tav_week_view_parent_class)->dispose (object);
}

static void tav_week_view_finalize (GObject *object)
{
    TavWeekView *week_view = TAV_WEEK_VIEW (object);
    for (Day &day : week_view->priv->days)
        if (day.list)
            week_entry_list_free (day.list);
    week_view->priv->~TavWeekViewPrivate ();
    G_OBJECT_CLASS (tav_week_view_parent_class)->finalize (object);
}

static void tav_week_view_class_init (TavWeekViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);

    object_class->get_property = tav_week_view_get_property;
    object_class->set_property = tav_week_view_set_property;
    object_class->dispose = tav_week_view_dispose;
    object_class->finalize = tav_week_view_finalize;

    widget_class->realize = tav_week_view_realize;
    widget_class->unrealize = tav_week_view_unrealize;
    widget_class->size_request = tav_week_view_size_request;
    widget_class->size_allocate = tav_week_view_size_allocate;
    widget_class->expose_event = tav_week_view_expose;

    view_class->add_entry_instance = tav_week_view_add_entry_for_timestamp_cb;
    view_class->clear_entries = tav_week_view_clear_entries;
    view_class->remove_entry = tav_week_view_remove_entry;
    view_class->refresh_entry = tav_week_view_refresh_entry;
    view_class->recalculate_entries = tav_week_view_recalculate_entries;
    view_class->reading_finished = tav_week_view_reading_finished;
    view_class->get_next_prev_status_for_entry = tav_week_view_get_next_prev_status_for_entry;

    klass->set_scroll_adjustments = tav_week_view_set_scroll_adjustments;

    properties[PROP_PRESENTED_INTERVAL] =
        g_param_spec_boxed ("presented-interval", "Presented interval", "The date interval currently shown.",
                            TAV_TYPE_DATE_INTERVAL, G_PARAM_READWRITE);
    properties[PROP_WEEK_NUMBER] = g_param_spec_int ("week-number", "Week number",
                                                     "The week number for the presented week ", -1, 53, -1,
                                                     G_PARAM_READABLE);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
                                                              "Time format , 24hr or 12 hr", TRUE, G_PARAM_READWRITE);
    properties[PROP_IS_TOPMOST] = g_param_spec_boolean ("is-topmost", "Is topmost",
                                                        "Is week view owner application topmost", FALSE,
                                                        G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    auto string_style = [&] (const char *name, const char *nick, const char *blurb, const char *def) {
        gtk_widget_class_install_style_property (widget_class,
                                                 g_param_spec_string (name, nick, blurb, def, G_PARAM_READABLE));
    };
    string_style ("font-color-all-day-events", "Font color all day events",
                  "The name of the color used on label of the all day events.", "Black");
    string_style ("font-color-date-labels", "Font color  date labels", "The name of the color used for date labels",
                  "LightGrey");
    string_style ("font-name-row", "Font name row", "Font name for row labels.", "Velda Sans 13");
    string_style ("font-name-event", "Font name event", "Font name for events.", "Velda Sans 12");
    string_style ("font-name-dayname", "Font name dayname", "Font name for day names.", "Velda Sans 18");
    string_style ("font-name-date", "Font name date", "Font name for dates.", "Velda Sans 13");
    string_style ("icon-bday-event-file", "bday calendar image file", "The image file for bday event.",
                  "calendar_birthday.png");
    string_style ("icon-todo-entry-file", "Todo image file", "The image file for todo.", "calendar_todo.png");
    string_style ("icon-alarm-file", "Alarm image file", "The image file for alarm icon.", "calendar_alarm.png");

    const GType type = G_TYPE_FROM_CLASS (klass);
    signals[ENTRY_ACTIVATED] = g_signal_new ("entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL, NULL,
                                             G_TYPE_NONE, 2, TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_DATE);
    signals[INSERT_ACTIVATED] = g_signal_new ("insert-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL, NULL,
                                              G_TYPE_NONE, 3, TAV_TYPE_DATE, TAV_TYPE_TIME, G_TYPE_BOOLEAN);
    signals[EDIT_ENTRY_ACTIVATED] = g_signal_new ("edit-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                  g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                  TAV_TYPE_CALENDAR_ENTRY);
    signals[DELETE_ENTRY_ACTIVATED] = g_signal_new ("delete-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL,
                                                    NULL, g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                    TAV_TYPE_CALENDAR_ENTRY);
    signals[DAY_ACTIVATED] = g_signal_new ("day-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL, NULL,
                                           G_TYPE_NONE, 3, G_TYPE_INT, G_TYPE_INT, G_TYPE_INT);
    signals[TASK_GROUP_ACTIVATED] = g_signal_new ("task-group-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                  g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    signals[SET_SCROLL_ADJUSTMENTS] =
        g_signal_new ("set_scroll_adjustments", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_ACTION),
                      G_STRUCT_OFFSET (TavWeekViewClass, set_scroll_adjustments), NULL, NULL, NULL, G_TYPE_NONE, 2,
                      GTK_TYPE_ADJUSTMENT, GTK_TYPE_ADJUSTMENT);
    widget_class->set_scroll_adjustments_signal = signals[SET_SCROLL_ADJUSTMENTS];
}

static void tav_week_view_init (TavWeekView *week_view)
{
    week_view->priv = static_cast<TavWeekViewPrivate *> (tav_week_view_get_instance_private (week_view));
    new (week_view->priv) TavWeekViewPrivate ();
    TavWeekViewPrivate *priv = week_view->priv;

    gtk_widget_set_has_window (GTK_WIDGET (week_view), TRUE);
    for (Day &day : priv->days)
        day.list = week_entry_list_new ();
    tav_calendar_processor_set_first_day_of_week (processor_of (week_view), static_cast<guint> (priv->first_day_of_week));

    TavDate today;
    tav_date_init_today (&today);
    TavDateInterval week;
    week_view_week_around (week_view, &today, &week);
    week_view_fill_days (week_view, &week.start, TavDateWeekNameShortFormat);
    /* A new view shows this week: a host may freeze it and add entries at
     * once. Nothing is read until the view is given a week. */
    priv->presented = week;
    priv->has_presented = true;

    priv->now.tm_yday = -1;
    week_view_refresh_current_time (week_view);
    week_view_set_adjustment (week_view, NULL);

    gtk_widget_add_events (GTK_WIDGET (week_view), GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK |
                                                       GDK_POINTER_MOTION_MASK);
    g_signal_connect (week_view, "button-press-event", G_CALLBACK (tav_week_view_button_press), NULL);
    g_signal_connect (week_view, "motion-notify-event", G_CALLBACK (tav_week_view_motion), NULL);
    g_signal_connect (week_view, "button-release-event", G_CALLBACK (tav_week_view_button_release), NULL);
    /* 4: the "tap-and-hold" handler pops up the menu itself, after
     * fitting its items to the entry under the finger. */
    gtk_widget_tap_and_hold_setup (GTK_WIDGET (week_view), NULL, NULL, 4);
    g_signal_connect (week_view, "tap-and-hold-query", G_CALLBACK (on_tap_and_hold_query_cb), NULL);
    g_signal_connect (week_view, "tap-and-hold", G_CALLBACK (on_tap_and_hold_cb), NULL);
}

/* Presented interval ----------------------------------------------------------------- */

static void week_view_do_set_presented_interval (TavWeekView *week_view, const TavDateInterval *interval)
{
    g_return_if_fail (interval != NULL);
    TavWeekViewPrivate *priv = week_view->priv;
    if (interval->start.year >= 2038 || (interval->start.year < 1970 && interval->end.year < 1970)) {
        g_signal_emit_by_name (week_view, "year-limit-reached::0");
        return;
    }
    if (tav_date_compare (&interval->end, &interval->start) < 0) {
        g_critical ("%s: assertion '%s' failed", G_STRFUNC, "interval->start <= interval->end");
        return;
    }

    priv->presented = *interval;
    priv->has_presented = true;
    week_view_clear_press (week_view);
    for (Day &day : priv->days)
        week_entry_list_remove_all_entry (day.list);
    week_view_fill_days (week_view, &interval->start, TavDateShortFormat);
    invalidate_cache (week_view);
    week_view_recalculate_all (week_view);

    tav_calendar_view_read_database (TAV_CALENDAR_VIEW (week_view));
    tav_week_view_snap_to_all_day_bar (week_view);
    g_object_notify (G_OBJECT (week_view), "date");
    g_object_notify_by_pspec (G_OBJECT (week_view), properties[PROP_PRESENTED_INTERVAL]);
    g_object_notify_by_pspec (G_OBJECT (week_view), properties[PROP_WEEK_NUMBER]);
}

/* Public API ---------------------------------------------------------------------------- */

GtkWidget *tav_week_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_WEEK_VIEW, NULL));
}

void tav_week_view_set_presented_interval_by_date (TavWeekView *week_view, const TavDate *date)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    g_return_if_fail (date != NULL);
    g_return_if_fail (tav_date_is_valid (date));
    /* Outside the years the views show, the week is refused as a step out
     * of them would be. */
    if (date->year < 1970 || date->year > 2037) {
        g_signal_emit_by_name (week_view, "year-limit-reached::0");
        return;
    }
    TavDateInterval week;
    week_view_week_around (week_view, date, &week);
    g_object_set (week_view, "presented-interval", &week, NULL);
}

void tav_week_view_set_presented_interval_thisweek (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    TavDate today;
    tav_date_init_today (&today);
    tav_week_view_set_presented_interval_by_date (week_view, &today);
}

static void week_view_step_week (TavWeekView *week_view, bool forward)
{
    TavDateInterval *interval = nullptr;
    g_object_get (week_view, "presented-interval", &interval, NULL);
    g_return_if_fail (interval != NULL);
    TavCalendarProcessor *processor = processor_of (week_view);
    if (forward) {
        tav_calendar_processor_inc_date_by_days (processor, &interval->start, 7);
        tav_calendar_processor_inc_date_by_days (processor, &interval->end, 7);
    } else {
        tav_calendar_processor_dec_date_by_days (processor, &interval->start, 7);
        tav_calendar_processor_dec_date_by_days (processor, &interval->end, 7);
    }
    g_object_set (week_view, "presented-interval", interval, NULL);
    tav_date_interval_free (interval);
}

void tav_week_view_select_prev_week (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    week_view_step_week (week_view, false);
}

void tav_week_view_select_next_week (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    week_view_step_week (week_view, true);
}

int tav_week_view_get_first_day_of_week (TavWeekView *week_view)
{
    g_return_val_if_fail (TAV_IS_WEEK_VIEW(week_view), 0);
    return week_view->priv->first_day_of_week;
}

void tav_week_view_set_first_day_of_week (TavWeekView *week_view, int first_day_of_week)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    g_return_if_fail (first_day_of_week >= 0 && first_day_of_week <= (DAYS_IN_A_WEEK -1));
    TavWeekViewPrivate *priv = week_view->priv;
    TavCalendarProcessor *processor = processor_of (week_view);
    priv->first_day_of_week = first_day_of_week;
    tav_calendar_processor_set_first_day_of_week (processor, static_cast<guint> (first_day_of_week));
    if (!priv->has_presented) {
        TavDate today;
        tav_date_init_today (&today);
        TavDateInterval week;
        week_view_week_around (week_view, &today, &week);
        week_view_fill_days (week_view, &week.start, TavDateWeekNameShortFormat);
        week_view_invalidate_all (week_view);
        return;
    }
    TavDateInterval moved = priv->presented;
    const int shown = static_cast<int> (tav_calendar_processor_date_to_day_of_week (processor, &moved.start));
    const int diff = first_day_of_week - shown;
    if (diff == 0)
        return;
    if (diff > 0) {
        tav_calendar_processor_inc_date_by_days (processor, &moved.start, diff);
        tav_calendar_processor_inc_date_by_days (processor, &moved.end, diff);
    } else {
        tav_calendar_processor_dec_date_by_days (processor, &moved.start, -diff);
        tav_calendar_processor_dec_date_by_days (processor, &moved.end, -diff);
    }
    g_object_set (week_view, "presented-interval", &moved, NULL);
}

void tav_week_view_snap_to_time (TavWeekView *week_view, const TavTime *time)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    g_return_if_fail (time != NULL);
    TavWeekViewPrivate *priv = week_view->priv;
    GtkAdjustment *adj = priv->vadjustment.get ();
    double value = time_to_table_offset (priv, time->hour, time->minute);
    value = std::min (value, adj->upper - adj->page_size);
    value = std::max (value, adj->lower);
    adj->value = value;
    gtk_adjustment_value_changed (adj);
}

void tav_week_view_snap_to_all_day_bar (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    TavTime time = { week_view->priv->all_day_bar_hour - 1, 59 };
    tav_week_view_snap_to_time (week_view, &time);
}

void tav_week_view_snap_to_current_time (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    if (week_view->priv->scroll_locked)
        return;
    TavTime now;
    tav_time_init_now (&now);
    tav_week_view_snap_to_time (week_view, &now);
}

void tav_week_view_set_background_image_pixmap (TavWeekView *week_view, GdkPixmap *pixmap)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    g_return_if_fail (pixmap == NULL || GDK_IS_PIXMAP (pixmap));
    week_view->priv->background_image = tav::GRefPtr<GdkPixmap> (pixmap);
    invalidate_cache (week_view);
    week_view_invalidate_all (week_view);
}

void tav_week_view_adjust_view_for_time_change (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    /* Force the day check: today may be another day now. */
    week_view->priv->now.tm_yday = -1;
    week_view_refresh_current_time (week_view);
}

void tav_week_view_remove_all_entries (TavWeekView *week_view)
{
    g_return_if_fail (TAV_IS_WEEK_VIEW(week_view));
    tav_week_view_clear_entries (TAV_CALENDAR_VIEW (week_view));
}

/* Test hooks ------------------------------------------------------------------------------ */

gboolean _tav_week_view_has_current_time_timer (TavWeekView *week_view)
{
    return week_view->priv->timer_tag != 0;
}

int _tav_week_view_get_n_time_refreshes (TavWeekView *week_view)
{
    return week_view->priv->n_time_refreshes;
}

void _tav_week_view_set_clock (TavWeekView *week_view, time_t (*clock) ())
{
    week_view->priv->clock = clock;
}

int _tav_week_view_get_all_day_bar_height (TavWeekView *week_view)
{
    return week_view->priv->all_day_bar_height;
}

int _tav_week_view_time_to_table_offset (TavWeekView *week_view, int hour, int minute)
{
    return time_to_table_offset (week_view->priv, hour, minute);
}

WeekEntryList *_tav_week_view_get_day_list (TavWeekView *week_view, int col)
{
    g_assert (col >= FirstDayColumn && col < NColumns);
    return week_view->priv->days[static_cast<size_t> (col)].list;
}

GtkWidget *_tav_week_view_get_context_menu (TavWeekView *week_view)
{
    if (!week_view->priv->menu)
        week_view_build_menu (week_view);
    tav_week_view_ensure_valid_items_in_csm (week_view);
    return week_view->priv->menu;
}

/* Keeps the relative offset helper in use for the painting of the marker. */
int _tav_week_view_time_to_table_offset_relative (TavWeekView *week_view, int hour, int minute)
{
    return week_view_time_to_table_offset_relative (week_view, hour, minute);
}
