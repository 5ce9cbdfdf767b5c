/* libcalendarui - the widget code shared by the agenda and the day view
 * (internal)
 *
 * The two views differ in their list (AgendaEntryList or DayEntryList),
 * in where the no-events line and the insert button stand, and in a few
 * names. Everything else, filling the list from entry instances, removal,
 * scrolling through the container's adjustment, jumps, taps with their
 * two thresholds, the held-finger menu, theme and painting, is written
 * once here over a description Ops of the view (see TavAgendaView.cpp and
 * TavDayView.cpp).
 */
#ifndef TAV_ENTRY_LIST_VIEW_H
#define TAV_ENTRY_LIST_VIEW_H

#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "TavCalendarNote.h"
#include "TavCalendarTask.h"
#include "TavCalendarView.h"
#include "TavEntryRowPainter.h"
#include "TavEntryRows.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "KivoNote.h"
#include "KivoTapAndHold.h"

namespace tav::rows {

/* Moving the finger further than this while pressed cancels the press;
 * a release further than kTapSlop from the press is no tap. */
constexpr int kCancelSlop = 30;
constexpr int kTapSlop = 26;

/* Dates and times read from an entry's properties. */
struct DateFree {
    void operator() (TavDate *d) const { tav_date_free (d); }
};
struct TimeFree {
    void operator() (TavTime *t) const { tav_time_free (t); }
};
using DatePtr = std::unique_ptr<TavDate, DateFree>;
using TimePtr = std::unique_ptr<TavTime, TimeFree>;

enum Signal {
    EntryActivated,
    EditEntryActivated,
    DeleteEntryActivated,
    InsertActivated,
    SetScrollAdjustments,
    KeyPressed,
    NSignals
};

template <class Row> struct ViewState {
    bool disposed = false;
    GdkWindow *window = nullptr;
    GRefPtr<GdkPixmap> background;
    GRefPtr<GtkAdjustment> vadjustment;
    gulong value_changed_id = 0;
    void *entry_list = nullptr;
    TavDateInterval presented_interval {};
    bool presented_interval_set = false;
    TavDate jump_date {};
    bool jump_pending = false;
    bool pressed = false;
    int press_x = 0, press_y = 0;
    bool time_24hr = true;
    bool reading_finished = true;
    int highlight = 0;
    Row *highlighted = nullptr;
    GtkWidget *csm = nullptr;
    GtkWidget *csm_edit = nullptr;
    GtkWidget *csm_delete = nullptr;
    GRefPtr<TavCalendarEntry> entry_for_csm;
    TavDate csm_date {};
    Theme theme;
    int n_paints = 0;
};

/* The view code over Ops (AgendaOps in TavAgendaView.cpp, DayOps in
 * TavDayView.cpp), which provides:
 *   Row, List, View; state (View *), cast (TavCalendarView *), signals[];
 *   the list functions (row_new, refresh_times, add, sort, n_rows, row,
 *   find_entry, find_header, has_header, find_no_entries, remove,
 *   remove_empty_headers, drop_all, height, rect, rect_abs, row_at,
 *   headers, set_offset, offset_y, set_width, entries_count, bg_pixmap);
 *   where the no-events line and the button stand (no_entries_date,
 *   button_date, mark_no_entries, kButtonHasHeader, append_insert_button);
 *   other_key for the keys the list does not use; the names its log lines
 *   and checks carry. */
template <class Ops> struct ListView {
    using Row = typename Ops::Row;
    using List = typename Ops::List;
    using View = typename Ops::View;

    static ViewState<Row> *st (View *view) { return Ops::state (view); }
    static List *list (View *view) { return static_cast<List *> (st (view)->entry_list); }
    static GtkWidget *widget (View *view) { return GTK_WIDGET (view); }
    static TavCalendarProcessor *processor (View *view)
    {
        return tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (view));
    }
    static int time_format (View *view) { return st (view)->time_24hr ? 1 : 0; }

    /* Scrolling ---------------------------------------------------------- */

    static int page_height (View *view) { return std::max (1, widget (view)->allocation.height); }

    static void configure_adjustment (View *view)
    {
        GtkAdjustment *adj = st (view)->vadjustment.get ();
        if (!adj || st (view)->disposed)
            return;
        const double height = Ops::height (list (view));
        adj->lower = 0;
        adj->upper = std::max<double> (height, page_height (view));
        adj->page_size = page_height (view);
        adj->step_increment = kRowHeight;
        adj->page_increment = adj->page_size;
        const double max_value = std::max (0.0, adj->upper - adj->page_size);
        const bool clamp = adj->value > max_value;
        if (clamp)
            adj->value = max_value;
        gtk_adjustment_changed (adj);
        if (clamp)
            gtk_adjustment_value_changed (adj);
        Ops::set_offset (list (view), 0, static_cast<int> (adj->value));
    }

    static void invalidate (View *view)
    {
        if (gtk_widget_get_realized (widget (view)))
            gdk_window_invalidate_rect (widget (view)->window, NULL, FALSE);
    }

    static void on_value_changed (GtkAdjustment *adj, View *view)
    {
        if (st (view)->disposed)
            return;
        const int value = static_cast<int> (gtk_adjustment_get_value (adj));
        List *l = list (view);
        const int old = Ops::offset_y (l);
        if (value == old)
            return;
        Ops::set_offset (l, 0, value);
        if (gtk_widget_get_realized (widget (view))) {
            /* Move what is on screen; only the uncovered strip (and the
             * pinned header) is painted again. */
            gdk_window_scroll (widget (view)->window, 0, old - value);
            GdkRectangle top = { 0, 0, widget (view)->allocation.width, kHeaderHeight };
            gdk_window_invalidate_rect (widget (view)->window, &top, FALSE);
        }
    }

    static void set_adjustment (View *view, GtkAdjustment *vadjustment)
    {
        ViewState<Row> *s = st (view);
        if (!vadjustment)
            vadjustment = GTK_ADJUSTMENT (gtk_adjustment_new (0, 0, 0, 0, 0, 0));
        if (s->vadjustment.get () == vadjustment)
            return;
        if (s->vadjustment && s->value_changed_id)
            g_signal_handler_disconnect (s->vadjustment.get (), s->value_changed_id);
        g_object_ref_sink (vadjustment);
        s->vadjustment = adoptGRef (vadjustment);
        s->value_changed_id = g_signal_connect (vadjustment, "value-changed", G_CALLBACK (on_value_changed), view);
        configure_adjustment (view);
    }

    static void set_scroll_adjustments (View *view, GtkAdjustment *, GtkAdjustment *vadjustment)
    {
        set_adjustment (view, vadjustment);
    }

    /* The list changed: new height, repaint, and a pending jump again. */
    static void relayout (View *view)
    {
        configure_adjustment (view);
        if (st (view)->jump_pending) {
            const TavDate date = st (view)->jump_date;
            jump_to_date (view, &date);
        }
        invalidate (view);
    }

    static void jump_to_date (View *view, const TavDate *date)
    {
        ViewState<Row> *s = st (view);
        if (s->disposed)
            return;
        s->jump_date = *date;
        s->jump_pending = true;
        List *l = list (view);
        const int n = Ops::n_rows (l);
        for (int i = 0; i < n; i++) {
            Row *r = Ops::row (l, i);
            if (!is_header (r) || tav_date_compare (&r->start_date, date) != 0)
                continue;
            GdkRectangle rect;
            Ops::rect_abs (l, i, &rect);
            GtkAdjustment *adj = s->vadjustment.get ();
            configure_adjustment (view);
            const double value = std::clamp<double> (rect.y + rect.height, adj->lower,
                                                     std::max (adj->lower, adj->upper - adj->page_size));
            adj->value = value;
            gtk_adjustment_value_changed (adj);
            return;
        }
        TAV_WARNING_AS (Ops::kJumpFunc, "The date %d-%d-%d not found.", date->year, date->month + 1, date->day);
    }

    /* Grouping ------------------------------------------------------------ */

    static void append_header_for_row (View *view, Row *r)
    {
        List *l = list (view);
        if (Ops::has_header (l, &r->date) || !tav_date_is_valid (&r->date))
            return;
        const int weekday = tav_calendar_processor_date_to_day_of_week (processor (view), &r->date);
        GCharPtr text (tav_date_to_string_format (&r->date, TavDateLongFormat, weekday));
        TavDate today;
        tav_date_init_today (&today);
        GCharPtr title;
        if (tav_date_compare (&r->date, &today) == 0) {
            GCharPtr filled (g_strdup_printf (TAV_CAL ("cal_va_today"), text.get ()));
            title.reset (g_strdup_printf ("<span color=\"white\">%s</span>", filled.get ()));
        } else {
            title.reset (g_markup_escape_text (text.get (), -1));
        }
        Ops::add (l, new_header<Row> (title.get (), &r->date));
        if (!Ops::kButtonHasHeader)
            button_after_header (view, &r->date);
    }

    /* A header and the button of its date compare equal in the day list,
     * whose sort keeps arrival order: the button goes in again after the
     * header, so that the day reads header, "+", entries. */
    static void button_after_header (View *view, const TavDate *date)
    {
        List *l = list (view);
        for (int i = 0; i < Ops::n_rows (l); i++) {
            Row *b = Ops::row (l, i);
            if (!b->is_button || tav_date_compare (&b->date, date) != 0)
                continue;
            Row *again = new_button<Row> (b->title, st (view)->theme.icon_new.c_str (), date);
            if (st (view)->highlighted == b)
                remove_highlight (view);
            Ops::remove (l, i);
            Ops::add (l, again);
            return;
        }
    }

    static void append_no_entries_label (View *view, const char *title)
    {
        TavDate date;
        Ops::no_entries_date (view, &date);
        Row *r = new_header<Row> (title, &date);
        r->start_time.hour = kNoEntriesHour;
        Ops::mark_no_entries (r);
        Ops::add (list (view), r);
    }

    static void check_no_entries (View *view, const char *title)
    {
        List *l = list (view);
        const bool has_entries = Ops::entries_count (l) > 0;
        const int label = Ops::find_no_entries (l);
        if (!has_entries && label < 0)
            append_no_entries_label (view, title);
        else if (has_entries && label >= 0)
            Ops::remove (l, label);
    }

    static void append_insert_button (View *view, const char *title, const TavDate *date)
    {
        Row *r = new_button<Row> (title, st (view)->theme.icon_new.c_str (), date);
        Ops::add (list (view), r);
        if (Ops::kButtonHasHeader)
            append_header_for_row (view, r);
        check_no_entries (view, TAV_CAL ("cal_fi_no_events"));
    }

    static void add_row (View *view, Row *r)
    {
        Ops::add (list (view), r);
        append_header_for_row (view, r);
        check_no_entries (view, TAV_CAL ("cal_fi_no_events"));
        /* The no-events line may have stood in for the date's header. */
        append_header_for_row (view, r);
    }

    /* Entries --------------------------------------------------------------- */

    static gboolean add_entry_instance (TavCalendarView *cview, const TavTimestamp *stamp, TavCalendarEntry *entry)
    {
        View *view = Ops::cast (cview);
        ViewState<Row> *s = st (view);
        g_return_val_if_fail (stamp != NULL, FALSE);
        if (TAV_IS_CALENDAR_NOTE (entry)) {
            TAV_WARNING ("%s", Ops::kNoNotes);
            return FALSE;
        }
        g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
        if (s->disposed)
            return FALSE;
        List *l = list (view);
        if (TAV_IS_CALENDAR_TASK (entry)) {
            Row *r = Ops::row_new (l, entry, s->theme.icon_todo.c_str (), time_format (view));
            r->date = stamp->date;
            r->displayed_time = stamp->time;
            add_row (view, r);
            return TRUE;
        }
        if (!tav_calendar_entry_is_multi_days (entry)) {
            const bool bday = tav_calendar_entry_has_bday (entry);
            Row *r = Ops::row_new (l, entry, bday ? s->theme.icon_bday.c_str () : nullptr, time_format (view));
            r->date = stamp->date;
            r->displayed_time = stamp->time;
            if (!bday)
                Ops::refresh_times (r, time_format (view), TRUE);
            add_row (view, r);
            return TRUE;
        }

        TavDate *start = nullptr, *end = nullptr;
        TavTime *start_time = nullptr, *end_time = nullptr;
        g_object_get (entry, "start-date", &start, "end-date", &end, "start-time", &start_time, "end-time",
                      &end_time, NULL);
        DatePtr hold_start (start), hold_end (end);
        TimePtr hold_st (start_time), hold_et (end_time);
        if (!start || !end || !start_time || !end_time || tav_date_compare (start, end) >= 0) {
            TAV_WARNING ("The start_date >= end_date, giving up.");
            return FALSE;
        }
        TavCalendarProcessor *p = processor (view);
        const TavDateInterval &shown = s->presented_interval;
        const int end_hour = stamp->time.hour + end_time->hour - start_time->hour;
        TavDate d = *start, day = stamp->date;
        bool added = false;
        for (int guard = 0; guard < 100000; guard++) {
            if (tav_date_compare (&day, &shown.start) >= 0) {
                if (tav_date_compare (&day, &shown.end) > 0)
                    break;
                Row *r = Ops::row_new (l, entry, nullptr, time_format (view));
                r->date = day;
                r->displayed_time = stamp->time;
                const bool first = tav_date_compare (&d, start) == 0;
                const bool last = tav_date_compare (&d, end) == 0;
                if (first) {
                    r->start_time = r->displayed_time;
                    r->end_time = TavTime { 23, 59 };
                } else if (!last) {
                    r->start_time = TavTime { 0, 0 };
                    r->end_time = TavTime { 23, 59 };
                } else {
                    r->start_time = TavTime { 0, 0 };
                    r->end_time = TavTime { end_hour, end_time->minute };
                }
                Ops::refresh_times (r, time_format (view), FALSE);
                add_row (view, r);
                added = true;
            }
            tav_calendar_processor_inc_date (p, &day);
            tav_calendar_processor_inc_date (p, &d);
            const int past = tav_date_compare (&d, end);
            if (past > 0)
                break;
            /* Ending at midnight: no row on the end day. */
            if (past == 0 && end_hour < 1)
                break;
        }
        return added;
    }

    static void remove_highlight (View *view)
    {
        ViewState<Row> *s = st (view);
        if (s->highlight == 0)
            return;
        g_assert (s->highlight == 1 || s->highlight == 2);
        s->highlight = 0;
        Row *r = s->highlighted;
        s->highlighted = nullptr;
        if (r && gtk_widget_get_realized (widget (view)))
            invalidate (view);
    }

    static void clear_entries (TavCalendarView *cview)
    {
        View *view = Ops::cast (cview);
        ViewState<Row> *s = st (view);
        if (s->disposed)
            return;
        remove_highlight (view);
        s->highlighted = nullptr;
        Ops::drop_all (list (view));
        if (s->presented_interval_set) {
            TavDate date;
            Ops::button_date (view, &date);
            Ops::append_insert_button (view, TAV_CAL ("cal_bd_new_event"), &date);
        }
        relayout (view);
    }

    static gboolean remove_entry (TavCalendarView *cview, TavCalendarEntry *entry)
    {
        View *view = Ops::cast (cview);
        g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
        if (st (view)->disposed)
            return FALSE;
        List *l = list (view);
        GRefPtr<TavCalendarEntry> keep (entry);
        remove_highlight (view);
        bool removed = false;
        for (int n = Ops::find_entry (l, entry); n >= 0; n = Ops::find_entry (l, entry)) {
            Ops::remove (l, n);
            removed = true;
        }
        if (!removed)
            return FALSE;
        Ops::remove_empty_headers (l);
        check_no_entries (view, TAV_CAL ("cal_fi_no_events"));
        Ops::sort (l);
        relayout (view);
        return TRUE;
    }

    /* The entry's dates or repeat changed: its rows must be made again. */
    static bool needs_regenerate (const Row *r, TavCalendarEntry *entry)
    {
        TavDate *start = nullptr, *end = nullptr, *end_rep = nullptr;
        TavTime *start_time = nullptr;
        gboolean has_repeat = FALSE, bday = FALSE;
        int repeat_code = 0;
        g_object_get (entry, "start-date", &start, "end-date", &end, "start-time", &start_time, "has-repeat",
                      &has_repeat, "repeat_code", &repeat_code, "end-repetition-date", &end_rep, "has-birthday",
                      &bday, NULL);
        DatePtr a (start), b (end), c (end_rep);
        TimePtr t (start_time);
        bool differs = !start || !end || tav_date_compare (start, &r->start_date) != 0 ||
                       tav_date_compare (end, &r->end_date) != 0 || !has_repeat != !r->has_repeat ||
                       repeat_code != r->repeat_code || bday != (r->type_icon != nullptr && !TAV_IS_CALENDAR_TASK (entry));
        if (!differs && start_time && !r->multi_days)
            differs = tav_time_compare (start_time, &r->start_time) != 0;
        if (!differs && has_repeat && end_rep)
            differs = tav_date_compare (end_rep, &r->end_repetition_date) != 0;
        return differs || r->multi_days;
    }

    static gboolean refresh_entry (TavCalendarView *cview, TavCalendarEntry *entry)
    {
        View *view = Ops::cast (cview);
        g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
        if (st (view)->disposed)
            return FALSE;
        List *l = list (view);
        const int n = Ops::find_entry (l, entry);
        if (n < 0)
            return tav_calendar_view_add_entry (cview, entry);
        Row *r = Ops::row (l, n);
        ROWS_ASSERT (r->entry != NULL, Ops::kHasEntryCheck);
        if (needs_regenerate (r, entry) || TAV_IS_CALENDAR_TASK (entry) != TAV_IS_CALENDAR_TASK (r->entry)) {
            GRefPtr<TavCalendarEntry> keep (entry);
            remove_entry (cview, entry);
            tav_calandar_entry_drop_instances (entry);
            return tav_calendar_view_add_entry (cview, entry);
        }
        /* Same place in time: each row is made again from the entry at
         * its own date and shown time, and put back in order. */
        std::vector<std::pair<TavDate, TavTime>> places;
        for (int i = Ops::find_entry (l, entry); i >= 0; i = Ops::find_entry (l, entry)) {
            Row *row = Ops::row (l, i);
            places.emplace_back (row->date, row->displayed_time);
            if (st (view)->highlighted == row)
                remove_highlight (view);
            Ops::remove (l, i);
        }
        const bool task = TAV_IS_CALENDAR_TASK (entry);
        const bool bday = !task && tav_calendar_entry_has_bday (entry);
        const char *icon = task ? st (view)->theme.icon_todo.c_str () : bday ? st (view)->theme.icon_bday.c_str () : nullptr;
        for (const auto &place : places) {
            Row *row = Ops::row_new (l, entry, icon, time_format (view));
            row->date = place.first;
            row->displayed_time = place.second;
            if (!icon)
                Ops::refresh_times (row, time_format (view), TRUE);
            add_row (view, row);
        }
        Ops::sort (l);
        relayout (view);
        return TRUE;
    }

    static void recalculate_entries (TavCalendarView *cview)
    {
        View *view = Ops::cast (cview);
        if (st (view)->disposed)
            return;
        Ops::sort (list (view));
        relayout (view);
    }

    static void reading_started (TavCalendarView *cview)
    {
        st (Ops::cast (cview))->reading_finished = false;
    }

    static void reading_finished (TavCalendarView *cview)
    {
        View *view = Ops::cast (cview);
        st (view)->reading_finished = true;
        if (gtk_widget_get_realized (widget (view)))
            invalidate (view);
    }

    static gboolean next_prev_status (TavCalendarView *cview, TavCalendarEntry *entry, const TavDate *,
                                      gboolean *has_prev, gboolean *has_next)
    {
        View *view = Ops::cast (cview);
        g_return_val_if_fail (has_prev != NULL && has_next != NULL, FALSE);
        g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
        List *l = list (view);
        const int index = Ops::find_entry (l, entry);
        if (index < 1)
            TAV_MESSAGE_AS (Ops::kNextPrevFunc, "Entry Not found in the list");
        *has_prev = *has_next = FALSE;
        if (index < 0)
            return FALSE;
        const int n = Ops::n_rows (l);
        for (int i = 0; i < index && !*has_prev; i++)
            *has_prev = Ops::row (l, i)->entry != nullptr;
        for (int i = index + 1; i < n && !*has_next; i++)
            *has_next = Ops::row (l, i)->entry != nullptr;
        return TRUE;
    }

    /* Pointer ---------------------------------------------------------------- */

    static Row *row_at (View *view, int y, int *index = nullptr)
    {
        if (st (view)->disposed)
            return nullptr;
        List *l = list (view);
        const int n = Ops::row_at (l, y);
        if (index)
            *index = n;
        return n >= 0 ? Ops::row (l, n) : nullptr;
    }

    static void paint_now (View *view)
    {
        if (gtk_widget_get_realized (widget (view))) {
            invalidate (view);
            gdk_window_process_updates (widget (view)->window, FALSE);
        }
    }

    static gboolean on_press (GtkWidget *w, GdkEventButton *event, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (s->disposed || event->type != GDK_BUTTON_PRESS || event->button != 1)
            return FALSE;
        remove_highlight (view);
        s->jump_pending = false;
        s->pressed = true;
        s->press_x = static_cast<int> (event->x);
        s->press_y = static_cast<int> (event->y);
        Row *r = row_at (view, s->press_y);
        if (r && r->entry) {
            s->highlight = 1;
            s->highlighted = r;
            paint_now (view);
        } else if (r && r->is_button) {
            s->highlight = 2;
            s->highlighted = r;
            paint_now (view);
            gdk_flush ();
        }
        return FALSE;
    }

    static gboolean on_motion (GtkWidget *w, GdkEventMotion *event, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (!s->pressed)
            return FALSE;
        if (std::abs (static_cast<int> (event->x) - s->press_x) > kCancelSlop ||
            std::abs (static_cast<int> (event->y) - s->press_y) > kCancelSlop) {
            remove_highlight (view);
            s->pressed = false;
        }
        return FALSE;
    }

    static gboolean on_release (GtkWidget *w, GdkEventButton *event, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (!s->pressed || event->button != 1)
            return FALSE;
        remove_highlight (view);
        if (std::abs (static_cast<int> (event->x) - s->press_x) > kTapSlop ||
            std::abs (static_cast<int> (event->y) - s->press_y) > kTapSlop)
            return FALSE;
        s->pressed = false;
        Row *r = row_at (view, static_cast<int> (event->y));
        if (!r)
            return TRUE;
        if (r->entry) {
            GRefPtr<TavCalendarEntry> entry (r->entry);
            const TavDate date = r->date;
            g_signal_emit (view, Ops::signals[EntryActivated], 0, entry.get (), &date);
        } else if (r->is_button) {
            const TavDate date = r->date;
            g_signal_emit (view, Ops::signals[InsertActivated], 0, &date);
        }
        return TRUE;
    }

    static gboolean on_leave (GtkWidget *w, GdkEventCrossing *, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        if (st (view)->pressed) {
            remove_highlight (view);
            st (view)->pressed = false;
        }
        return FALSE;
    }

    /* Context menu --------------------------------------------------------- */

    static gboolean on_tap_and_hold_query (GtkWidget *w, GdkEvent *event, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (!event || event->any.window != w->window)
            return TRUE;
        int y = 0;
        if (event->type == GDK_BUTTON_PRESS || event->type == GDK_BUTTON_RELEASE)
            y = static_cast<int> (event->button.y);
        else if (event->type == GDK_MOTION_NOTIFY)
            y = static_cast<int> (event->motion.y);
        else
            return TRUE;
        Row *r = row_at (view, y);
        if (!r || !r->entry)
            return TRUE;
        s->entry_for_csm = GRefPtr<TavCalendarEntry> (r->entry);
        s->csm_date = r->date;
        return FALSE;
    }

    static void ensure_valid_items_in_csm (View *view)
    {
        ViewState<Row> *s = st (view);
        if (s->csm) {
            gtk_widget_destroy (s->csm);
            g_object_unref (s->csm);
        }
        s->csm = kivo_gtk_menu_new ();
        g_object_ref_sink (s->csm);
        s->csm_edit = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_edit"));
        s->csm_delete = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_delete"));
        g_signal_connect (s->csm_edit, "activate", G_CALLBACK (Ops::csm_edit_clicked), view);
        g_signal_connect (s->csm_delete, "activate", G_CALLBACK (Ops::csm_delete_clicked), view);
        gtk_menu_shell_append (GTK_MENU_SHELL (s->csm), s->csm_edit);
        gtk_menu_shell_append (GTK_MENU_SHELL (s->csm), s->csm_delete);
        gtk_widget_show_all (s->csm);
        TavCalendarEntry *entry = s->entry_for_csm.get ();
        if (!TAV_IS_CALENDAR_ENTRY (entry)) {
            TAV_WARNING_AS (Ops::kEnsureCsmFunc, "entry_for_csm == NULL");
            return;
        }
        if (TAV_IS_CALENDAR_TASK (entry))
            g_object_set (s->csm_edit, "visible", FALSE, NULL);
        else if (tav_calendar_entry_has_bday (entry))
            g_object_set (s->csm_delete, "visible", FALSE, NULL);
    }

    static void on_tap_and_hold (GtkWidget *w, gpointer)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        remove_highlight (view);
        st (view)->pressed = false;
        ensure_valid_items_in_csm (view);
        gtk_menu_popup (GTK_MENU (st (view)->csm), NULL, NULL, NULL, NULL, 1, gtk_get_current_event_time ());
    }

    static void csm_edit (View *view, const char *func)
    {
        ViewState<Row> *s = st (view);
        GRefPtr<TavCalendarEntry> entry = s->entry_for_csm;
        if (!TAV_IS_CALENDAR_ENTRY (entry.get ())) {
            TAV_WARNING_AS (func, "entry_for_csm == NULL");
        } else if (TAV_IS_CALENDAR_TASK (entry.get ())) {
            const TavDate date = s->csm_date;
            g_signal_emit (view, Ops::signals[EntryActivated], 0, entry.get (), &date);
        } else {
            g_signal_emit (view, Ops::signals[EditEntryActivated], 0, entry.get ());
        }
        s->entry_for_csm = nullptr;
    }

    static void csm_delete (View *view, const char *func)
    {
        ViewState<Row> *s = st (view);
        GRefPtr<TavCalendarEntry> entry = s->entry_for_csm;
        if (!TAV_IS_CALENDAR_ENTRY (entry.get ())) {
            TAV_WARNING_AS (func, "entry_for_csm == NULL");
            return;
        }
        g_signal_emit (view, Ops::signals[DeleteEntryActivated], 0, entry.get ());
        s->entry_for_csm = nullptr;
    }

    /* Keys: arrows scroll by a row, page keys by a screen, Home and End to
     * the ends; the rest is the owner's. */
    static gboolean key_press (GtkWidget *w, GdkEventKey *event)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        GtkAdjustment *adj = st (view)->vadjustment.get ();
        double value = adj->value;
        switch (event->keyval) {
        case GDK_Up: case GDK_KP_Up: value -= kRowHeight; break;
        case GDK_Down: case GDK_KP_Down: value += kRowHeight; break;
        case GDK_Page_Up: value -= adj->page_size; break;
        case GDK_Page_Down: value += adj->page_size; break;
        case GDK_Home: value = adj->lower; break;
        case GDK_End: value = adj->upper; break;
        default:
            return Ops::other_key (view, event);
        }
        st (view)->jump_pending = false;
        adj->value = std::clamp (value, adj->lower, std::max (adj->lower, adj->upper - adj->page_size));
        gtk_adjustment_value_changed (adj);
        return TRUE;
    }

    /* Widget ------------------------------------------------------------------- */

    static void realize (GtkWidget *w)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        gtk_widget_set_realized (w, TRUE);
        GdkWindowAttr attributes = {};
        attributes.window_type = GDK_WINDOW_CHILD;
        attributes.x = w->allocation.x;
        attributes.y = w->allocation.y;
        attributes.width = w->allocation.width;
        attributes.height = w->allocation.height;
        attributes.wclass = GDK_INPUT_OUTPUT;
        attributes.visual = gtk_widget_get_visual (w);
        attributes.colormap = gtk_widget_get_colormap (w);
        attributes.event_mask = gtk_widget_get_events (w) | GDK_EXPOSURE_MASK | GDK_BUTTON_PRESS_MASK |
                                GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK | GDK_LEAVE_NOTIFY_MASK |
                                GDK_KEY_PRESS_MASK;
        w->window = gdk_window_new (gtk_widget_get_parent_window (w), &attributes,
                                    GDK_WA_X | GDK_WA_Y | GDK_WA_VISUAL | GDK_WA_COLORMAP);
        gdk_window_set_user_data (w->window, w);
        gdk_window_set_back_pixmap (w->window, NULL, FALSE);
        w->style = gtk_style_attach (w->style, w->window);
        st (view)->window = w->window;
    }

    static void unrealize (GtkWidget *w, GtkWidgetClass *parent)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        st (view)->window = nullptr;
        parent->unrealize (w);
    }

    static void size_request (GtkWidget *, GtkRequisition *requisition)
    {
        requisition->width = 200;
        requisition->height = 50;
    }

    static void size_allocate (GtkWidget *w, GtkAllocation *allocation)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        w->allocation = *allocation;
        if (gtk_widget_get_realized (w))
            gdk_window_move_resize (w->window, allocation->x, allocation->y, allocation->width, allocation->height);
        if (st (view)->disposed)
            return;
        Ops::set_width (list (view), std::max (1, allocation->width - 2 * kRowX));
        configure_adjustment (view);
        if (st (view)->jump_pending) {
            const TavDate date = st (view)->jump_date;
            jump_to_date (view, &date);
        }
    }

    static void style_set (GtkWidget *w, bool with_no_entries_font)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (s->disposed)
            return;
        read_theme (w, s->theme, with_no_entries_font);
        gchar **images = Ops::detail_images (list (view));
        for (int i = 0; i < 5; i++) {
            g_free (images[i]);
            images[i] = i < static_cast<int> (s->theme.detail_files.size ())
                            ? g_strdup (s->theme.detail_files[static_cast<size_t> (i)].c_str ())
                            : nullptr;
        }
        Ops::drop_pixmaps (list (view));
        invalidate (view);
    }

    static PaintRow describe (View *view, Row *r, const GdkRectangle &rect, TavDate *today)
    {
        ViewState<Row> *s = st (view);
        PaintRow p;
        p.rect = rect;
        p.title = r->title;
        p.pressed = s->highlight != 0 && s->highlighted == r;
        if (r->entry) {
            p.kind = PaintRow::Entry;
            p.location = r->location;
            p.description = r->description;
            p.start_text = r->start_text;
            p.end_text = r->end_text;
            p.icon = r->type_icon;
            p.is_task = TAV_IS_CALENDAR_TASK (r->entry);
            p.is_birthday = !p.is_task && has_bday (r->entry);
            if (TAV_IS_CALENDAR_ENTRY (r->entry)) {
                int color = 0;
                gboolean done = FALSE, alarm = FALSE;
                g_object_get (r->entry, "color", &color, "has-alarm", &alarm, NULL);
                p.alarm = alarm;
                if (p.is_task)
                    g_object_get (r->entry, "done", &done, NULL);
                p.color = color;
                p.done = done;
            }
            p.background = Ops::bg_pixmap (view, r);
        } else if (r->is_button) {
            p.kind = PaintRow::Button;
            p.icon = r->color_icon;
            p.background = nullptr;
        } else {
            p.kind = r->start_time.hour == kNoEntriesHour ? PaintRow::NoEntries : PaintRow::Header;
            p.today = tav_date_compare (&r->date, today) == 0;
        }
        return p;
    }

    static gboolean expose (GtkWidget *w, GdkEventExpose *event)
    {
        View *view = Ops::cast (TAV_CALENDAR_VIEW (w));
        ViewState<Row> *s = st (view);
        if (event->window != w->window || s->disposed)
            return FALSE;
        s->n_paints++;
        List *l = list (view);
        const int n = Ops::n_rows (l);
        Ops::log_paint (n);
        cairo_t *cr = gdk_cairo_create (w->window);
        gdk_cairo_region (cr, event->region);
        cairo_clip (cr);
        paint_page (cr, event->area, s->background.get ());
        TavDate today;
        tav_date_init_today (&today);

        const int top = event->area.y, bottom = event->area.y + event->area.height;
        int first = Ops::row_at (l, std::max (0, top));
        if (first < 0 && n > 0 && top < 0)
            first = 0;
        for (int i = std::max (first, 0); first >= 0 && i < n; i++) {
            GdkRectangle rect;
            Ops::rect (l, i, &rect);
            if (rect.y > bottom)
                break;
            Row *r = Ops::row (l, i);
            if (r->is_button && !r->title) {
                TAV_MESSAGE_AS (Ops::kPaintButtonFunc, "No button title found. Not drawing anything!");
                continue;
            }
            paint_row (w, cr, s->theme, describe (view, r, rect, &today));
        }

        /* The date at the top edge stays pinned there, pushed up by the
         * next date's header. */
        int before = -1, after = -1;
        Ops::headers (l, 0, &before, &after);
        if (before >= 0) {
            GdkRectangle rect;
            Ops::rect (l, before, &rect);
            int y = 0;
            if (after >= 0) {
                GdkRectangle next;
                Ops::rect (l, after, &next);
                if (next.y < kPinnedHeight && next.y > 0)
                    y = next.y - kPinnedHeight;
            }
            rect.y = y;
            Row *r = Ops::row (l, before);
            if (r->start_time.hour != kNoEntriesHour)
                paint_pinned_header (w, cr, s->theme, describe (view, r, rect, &today), w->allocation.width);
        }
        cairo_destroy (cr);
        return FALSE;
    }

    /* Lifecycle ----------------------------------------------------------------- */

    static void init (View *view)
    {
        ViewState<Row> *s = st (view);
        GtkWidget *w = widget (view);
        gtk_widget_set_has_window (w, TRUE);
        gtk_widget_set_can_focus (w, TRUE);
        tav_date_init_today (&s->presented_interval.start);
        s->presented_interval.end = s->presented_interval.start;
        s->time_24hr = true;
        set_adjustment (view, NULL);
        gtk_widget_add_events (w, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                                      GDK_LEAVE_NOTIFY_MASK | GDK_KEY_PRESS_MASK);
        g_signal_connect (w, "button-press-event", G_CALLBACK (on_press), NULL);
        g_signal_connect (w, "button-release-event", G_CALLBACK (on_release), NULL);
        g_signal_connect (w, "motion-notify-event", G_CALLBACK (on_motion), NULL);
        g_signal_connect (w, "leave-notify-event", G_CALLBACK (on_leave), NULL);
        gtk_widget_tap_and_hold_setup (w, NULL, NULL, 4);
        g_signal_connect (w, "tap-and-hold-query", G_CALLBACK (on_tap_and_hold_query), NULL);
        g_signal_connect (w, "tap-and-hold", G_CALLBACK (on_tap_and_hold), NULL);
    }

    static void dispose (View *view)
    {
        ViewState<Row> *s = st (view);
        if (s->disposed)
            return;
        s->disposed = true;
        s->highlight = 0;
        s->highlighted = nullptr;
        if (s->vadjustment && s->value_changed_id)
            g_signal_handler_disconnect (s->vadjustment.get (), s->value_changed_id);
        s->value_changed_id = 0;
        s->vadjustment = nullptr;
        if (s->csm) {
            gtk_widget_destroy (s->csm);
            g_object_unref (s->csm);
            s->csm = nullptr;
        }
        s->entry_for_csm = nullptr;
        s->background = nullptr;
        if (s->entry_list) {
            Ops::list_free (list (view));
            s->entry_list = nullptr;
        }
    }

    /* The clock changed: every time column is written again. */
    static void set_time_24hr (View *view, bool on)
    {
        ViewState<Row> *s = st (view);
        if (s->time_24hr == on || s->disposed) {
            s->time_24hr = on;
            return;
        }
        s->time_24hr = on;
        List *l = list (view);
        for (int i = 0; i < Ops::n_rows (l); i++) {
            Row *r = Ops::row (l, i);
            if (r->entry && !r->type_icon && !TAV_IS_CALENDAR_TASK (r->entry) && !has_bday (r->entry))
                Ops::refresh_times (r, time_format (view), !r->multi_days);
        }
        invalidate (view);
    }

    /* Presented interval: years 1970 to 2037 only. */
    static bool store_interval (View *view, const TavDateInterval *interval)
    {
        ViewState<Row> *s = st (view);
        if (interval->start.year < 1970 || interval->start.year > 2037 || !tav_date_is_valid (&interval->start) ||
            !tav_date_is_valid (&interval->end)) {
            g_signal_emit_by_name (view, "year-limit-reached::0");
            return false;
        }
        s->presented_interval = *interval;
        s->jump_pending = false;
        s->presented_interval_set = true;
        g_object_notify (G_OBJECT (view), "date");
        /* The old rows go at once; the owner reads the new ones. */
        tav_calendar_view_clear_entries (TAV_CALENDAR_VIEW (view));
        tav_calendar_view_read_database (TAV_CALENDAR_VIEW (view));
        return true;
    }
};

} // namespace tav::rows

#endif /* TAV_ENTRY_LIST_VIEW_H */
