/* libcalendarui - the day view
 *
 * The widget code is shared with the agenda view (TavEntryListView.h);
 * this file holds what is the day view's own: a one-day interval with
 * stepping to the next and previous day, the insert button without a date
 * header, the no-events line on the day itself, the "key-pressed" signal
 * and the GObject type.
 */

#include "TavDayViewInternal.h"

#include <new>

#include "TavEntryListView.h"

using namespace tav::rows;

enum {
    PROP_0,
    PROP_PRESENTED_INTERVAL,
    PROP_TIME_24HR_FORMAT,
    N_PROPERTIES
};

static GParamSpec *properties[N_PROPERTIES];
static guint day_signals[NSignals];
/* The width the cached backgrounds were made for, shared by all day
 * lists. */
static int day_last_width = 0;

struct _TavDayViewPrivate : ViewState<DayEntry> {
};

G_DEFINE_TYPE_WITH_PRIVATE (TavDayView, tav_day_view, TAV_TYPE_CALENDAR_VIEW)

namespace {

struct DayOps {
    using Row = DayEntry;
    using List = DayEntryList;
    using View = TavDayView;

    static constexpr const char *kJumpFunc = "_day_view_do_jump_to_date";
    static constexpr const char *kNoNotes = "No notes in day view.";
    static constexpr const char *kHasEntryCheck = "DENTRY_HAS_ENTRY(dentry)";
    static constexpr const char *kNextPrevFunc = "tav_day_view_get_next_prev_status_for_entry";
    static constexpr const char *kEnsureCsmFunc = "tav_day_view_ensure_valid_items_in_csm";
    static constexpr const char *kPaintButtonFunc = "day_view_paint_dentry_button_with_detail";
    static constexpr bool kButtonHasHeader = false;
    static constexpr guint *signals = day_signals;

    static ViewState<Row> *state (View *view) { return view->priv; }
    static View *cast (TavCalendarView *view) { return TAV_DAY_VIEW (view); }

    static List *list_new () { return day_entry_list_new (); }
    static void list_free (List *l) { day_entry_list_free (l); }
    static Row *row_new (List *l, TavCalendarEntry *e, const char *icon, int format)
    {
        return day_entry_new (l, e, icon && *icon ? icon : nullptr, format);
    }
    static void refresh_times (Row *r, int format, gboolean shifted)
    {
        day_entry_refresh_displayed_times (r, format, shifted);
    }
    static void add (List *l, Row *r) { day_entry_list_add_day_entry (l, r); }
    static void sort (List *l) { day_entry_list_sort (l); }
    static int n_rows (List *l) { return day_entry_list_get_n_entry (l); }
    static Row *row (List *l, int n) { return day_entry_list_get_day_entry (l, n); }
    static int find_entry (List *l, TavCalendarEntry *e) { return day_entry_list_find_entry (l, e); }
    static int find_header (List *l, const TavDate *d) { return day_entry_list_find_header (l, d); }
    static bool has_header (List *l, const TavDate *d) { return day_entry_list_has_header (l, d); }
    static int find_no_entries (List *l) { return day_entry_list_find_no_entry_header (l); }
    static void remove (List *l, int n) { day_entry_list_remove (l, n); }
    static void remove_empty_headers (List *l) { day_entry_list_remove_headers_if_empty (l); }
    static void drop_all (List *l) { day_entry_list_drop_all_entries (l); }
    static int height (List *l) { return day_entry_list_get_height (l); }
    static void rect (List *l, int n, GdkRectangle *r) { day_entry_list_get_cell_rect_relative (l, n, r); }
    static void rect_abs (List *l, int n, GdkRectangle *r) { day_entry_list_get_cell_rect (l, n, r); }
    static int row_at (List *l, int y) { return day_entry_list_row_at (l, y); }
    static void headers (List *l, int y, int *b, int *a) { day_entry_list_get_headers (l, y, b, a); }
    static void set_offset (List *l, int x, int y) { day_entry_list_set_offset (l, x, y); }
    static int offset_y (List *l) { return l->offset_y; }
    static void set_width (List *l, int w) { day_entry_list_set_visible_width (l, w); }
    static int entries_count (List *l) { return day_entry_list_get_entries_count (l) ? 1 : 0; }
    static gchar **detail_images (List *l) { return l->detail_images; }
    static void drop_pixmaps (List *l)
    {
        for (GdkPixmap *&p : l->detail_pixmaps)
            if (p) {
                g_object_unref (p);
                p = nullptr;
            }
    }
    static GdkPixmap *bg_pixmap (View *view, Row *r)
    {
        return day_entry_get_bg_detail_pixmap (view, static_cast<List *> (view->priv->entry_list), r);
    }
    static void log_paint (int n) { TAV_MESSAGE_AS ("day_view_paint_list", "LENGTH OF list %d", n); }

    static void no_entries_date (View *view, TavDate *date) { *date = view->priv->presented_interval.start; }
    static void button_date (View *view, TavDate *date) { no_entries_date (view, date); }
    static void mark_no_entries (Row *r) { r->is_no_entries = TRUE; }
    static void append_insert_button (View *view, const char *title, const TavDate *date)
    {
        tav_day_view_append_insert_button (view, title, date);
    }
    /* Left and right go to the owner, which steps the day. */
    static gboolean other_key (View *view, GdkEventKey *event)
    {
        switch (event->keyval) {
        case GDK_Left: case GDK_Right: case GDK_KP_Left: case GDK_KP_Right:
            g_signal_emit (view, day_signals[KeyPressed], 0, event->keyval);
            return TRUE;
        default:
            return FALSE;
        }
    }
    static void csm_edit_clicked (GtkWidget *item, View *view) { tav_day_view_csm_edit_clicked (item, view); }
    static void csm_delete_clicked (GtkWidget *item, View *view) { tav_day_view_csm_delete_clicked (item, view); }
};

using Impl = ListView<DayOps>;

} // namespace

/* GObject ------------------------------------------------------------------- */

static void tav_day_view_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavDayViewPrivate *priv = TAV_DAY_VIEW (object)->priv;
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL:
        g_value_set_boxed (value, &priv->presented_interval);
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, priv->time_24hr);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_day_view_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavDayView *day_view = TAV_DAY_VIEW (object);
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL: {
        const TavDateInterval *interval = static_cast<const TavDateInterval *> (g_value_get_boxed (value));
        g_return_if_fail (interval != NULL);
        TavDateInterval day = { interval->start, interval->start };
        Impl::store_interval (day_view, &day);
        break;
    }
    case PROP_TIME_24HR_FORMAT:
        Impl::set_time_24hr (day_view, g_value_get_boolean (value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_day_view_dispose (GObject *object)
{
    Impl::dispose (TAV_DAY_VIEW (object));
    G_OBJECT_CLASS (tav_day_view_parent_class)->dispose (object);
}

static void tav_day_view_finalize (GObject *object)
{
    TAV_DAY_VIEW (object)->priv->~TavDayViewPrivate ();
    G_OBJECT_CLASS (tav_day_view_parent_class)->finalize (object);
}

static void tav_day_view_unrealize (GtkWidget *widget)
{
    Impl::unrealize (widget, GTK_WIDGET_CLASS (tav_day_view_parent_class));
}

static void tav_day_view_style_set (GtkWidget *widget, GtkStyle *previous)
{
    Impl::style_set (widget, false);
}

static gboolean tav_day_view_key_press (GtkWidget *widget, GdkEventKey *event)
{
    return Impl::key_press (widget, event);
}

static void tav_day_view_class_init (TavDayViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);

    object_class->get_property = tav_day_view_get_property;
    object_class->set_property = tav_day_view_set_property;
    object_class->dispose = tav_day_view_dispose;
    object_class->finalize = tav_day_view_finalize;

    widget_class->realize = Impl::realize;
    widget_class->unrealize = tav_day_view_unrealize;
    widget_class->size_request = Impl::size_request;
    widget_class->size_allocate = Impl::size_allocate;
    widget_class->style_set = tav_day_view_style_set;
    widget_class->expose_event = Impl::expose;
    widget_class->key_press_event = tav_day_view_key_press;

    view_class->recalculate_entries = Impl::recalculate_entries;
    view_class->clear_entries = Impl::clear_entries;
    view_class->add_entry_instance = Impl::add_entry_instance;
    view_class->remove_entry = Impl::remove_entry;
    view_class->refresh_entry = Impl::refresh_entry;
    view_class->reading_started = Impl::reading_started;
    view_class->reading_finished = Impl::reading_finished;
    view_class->get_next_prev_status_for_entry = Impl::next_prev_status;

    klass->set_scroll_adjustments = Impl::set_scroll_adjustments;

    properties[PROP_PRESENTED_INTERVAL] =
        g_param_spec_boxed ("presented-interval", "Presented interval", "The interval viewed by the widget.",
                            TAV_TYPE_DATE_INTERVAL, G_PARAM_READWRITE);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
                                                              "Time format , 24hr or 12 hr", TRUE, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    install_style_properties (widget_class, false);

    const GType type = G_TYPE_FROM_CLASS (klass);
    day_signals[EntryActivated] = g_signal_new ("entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL, NULL,
                                                   G_TYPE_NONE, 2, TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_DATE);
    day_signals[EditEntryActivated] = g_signal_new ("edit-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                       g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                       TAV_TYPE_CALENDAR_ENTRY);
    day_signals[DeleteEntryActivated] = g_signal_new ("delete-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL,
                                                         NULL, g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                         TAV_TYPE_CALENDAR_ENTRY);
    day_signals[InsertActivated] = g_signal_new ("insert-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                    g_cclosure_marshal_VOID__BOXED, G_TYPE_NONE, 1, TAV_TYPE_DATE);
    day_signals[KeyPressed] = g_signal_new ("key-pressed", type,
                                            static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED), 0, NULL,
                                            NULL, g_cclosure_marshal_VOID__UINT, G_TYPE_NONE, 1, G_TYPE_UINT);
    day_signals[SetScrollAdjustments] =
        g_signal_new ("set_scroll_adjustments", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_ACTION),
                      G_STRUCT_OFFSET (TavDayViewClass, set_scroll_adjustments), NULL, NULL, NULL, G_TYPE_NONE, 2,
                      GTK_TYPE_ADJUSTMENT, GTK_TYPE_ADJUSTMENT);
    widget_class->set_scroll_adjustments_signal = day_signals[SetScrollAdjustments];
}

static void tav_day_view_init (TavDayView *day_view)
{
    day_view->priv = static_cast<TavDayViewPrivate *> (tav_day_view_get_instance_private (day_view));
    new (day_view->priv) TavDayViewPrivate ();
    day_view->priv->entry_list = day_entry_list_new ();
    Impl::init (day_view);
}

/* Rows ------------------------------------------------------------------------ */

GdkPixmap *day_entry_get_bg_detail_pixmap (TavDayView *day_view, DayEntryList *list, DayEntry *dentry)
{
    ROWS_ASSERT (list != NULL, "entry_list != NULL");
    ROWS_ASSERT (dentry != NULL, "dentry != NULL");
    TavDayViewPrivate *priv = day_view->priv;
    const bool pressed_here = priv->highlight != 0 && priv->highlighted == dentry;
    GdkDrawable *like = gtk_widget_get_realized (GTK_WIDGET (day_view)) ? GTK_WIDGET (day_view)->window : nullptr;
    return detail_pixmap (like, list->detail_pixmaps, list->detail_images, list->visible_width, &day_last_width,
                          detail_number (dentry, pressed_here), "day_entry_get_bg_detail_pixmap");
}

/* Public API -------------------------------------------------------------------- */

GtkWidget *tav_day_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_DAY_VIEW, NULL));
}

void tav_day_view_set_presented_interval_by_date (TavDayView *day_view, const TavDate *date)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    g_return_if_fail (date != NULL);
    if (day_view->priv->disposed)
        return;
    TavDateInterval interval = { *date, *date };
    if (!Impl::store_interval (day_view, &interval))
        return;
    g_object_notify_by_pspec (G_OBJECT (day_view), properties[PROP_PRESENTED_INTERVAL]);
    tav_day_view_jump_to_date (day_view, date);
}

void tav_day_view_set_presented_interval_today (TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    TavDate today;
    tav_date_init_today (&today);
    tav_day_view_set_presented_interval_by_date (day_view, &today);
}

static void day_view_step (TavDayView *day_view, bool forward)
{
    TavDate date = day_view->priv->presented_interval.start;
    TavCalendarProcessor *processor = tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (day_view));
    if (forward)
        tav_calendar_processor_inc_date (processor, &date);
    else
        tav_calendar_processor_dec_date (processor, &date);
    tav_day_view_set_presented_interval_by_date (day_view, &date);
}

void tav_day_view_select_next_day (TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    day_view_step (day_view, true);
}

void tav_day_view_select_previous_day (TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    day_view_step (day_view, false);
}

void tav_day_view_jump_to_date (TavDayView *day_view, const TavDate *date)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    g_return_if_fail (date != NULL);
    Impl::jump_to_date (day_view, date);
}

void tav_day_view_append_insert_button (TavDayView *day_view, const char *title, const TavDate *date)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    g_return_if_fail (date != NULL);
    g_return_if_fail (title != NULL);
    if (day_view->priv->disposed)
        return;
    Impl::append_insert_button (day_view, title, date);
}

void tav_day_view_set_background_image_pixmap (TavDayView *day_view, GdkPixmap *pixmap)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    g_return_if_fail (pixmap == NULL || GDK_IS_PIXMAP (pixmap));
    day_view->priv->background = tav::GRefPtr<GdkPixmap> (pixmap);
    Impl::invalidate (day_view);
}

void tav_day_view_ensure_valid_items_in_csm (TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    Impl::ensure_valid_items_in_csm (day_view);
}

void tav_day_view_csm_edit_clicked (GtkWidget *item, TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    Impl::csm_edit (day_view, "tav_day_view_csm_edit_clicked");
}

void tav_day_view_csm_delete_clicked (GtkWidget *item, TavDayView *day_view)
{
    g_return_if_fail (TAV_IS_DAY_VIEW(day_view));
    Impl::csm_delete (day_view, "tav_day_view_csm_delete_clicked");
}

/* Test hooks ---------------------------------------------------------------------- */

DayEntryList *_tav_day_view_get_list (TavDayView *day_view)
{
    return static_cast<DayEntryList *> (day_view->priv->entry_list);
}

GtkAdjustment *_tav_day_view_get_vadjustment (TavDayView *day_view)
{
    return day_view->priv->vadjustment.get ();
}

GtkWidget *_tav_day_view_get_context_menu (TavDayView *day_view)
{
    return day_view->priv->csm;
}

int _tav_day_view_get_n_paints (TavDayView *day_view)
{
    return day_view->priv->n_paints;
}
