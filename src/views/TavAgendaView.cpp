/* libcalendarui - the agenda view
 *
 * The widget code is shared with the day view (TavEntryListView.h); this
 * file holds what is the agenda's own: the 31-day interval around the
 * chosen date, the date header of the insert button, the no-events line
 * 15 days after the interval start, and the GObject type.
 */

#include "TavAgendaViewInternal.h"

#include <new>

#include "TavEntryListView.h"

using namespace tav::rows;

enum {
    PROP_0,
    PROP_PRESENTED_INTERVAL,
    PROP_PRESENTED_INTERVAL_SET,
    PROP_TIME_24HR_FORMAT,
    N_PROPERTIES
};

static GParamSpec *properties[N_PROPERTIES];
static guint agenda_signals[NSignals];
/* The width the cached backgrounds were made for, shared by all agenda
 * lists. */
static int agenda_last_width = 0;

struct _TavAgendaViewPrivate : ViewState<AgendaEntry> {
};

G_DEFINE_TYPE_WITH_PRIVATE (TavAgendaView, tav_agenda_view, TAV_TYPE_CALENDAR_VIEW)

namespace {

constexpr int kHalfSpan = 15;

struct AgendaOps {
    using Row = AgendaEntry;
    using List = AgendaEntryList;
    using View = TavAgendaView;

    static constexpr const char *kJumpFunc = "_agenda_view_do_jump_to_date";
    static constexpr const char *kNoNotes = "No notes in agenda view.";
    static constexpr const char *kHasEntryCheck = "AENTRY_HAS_ENTRY(aentry)";
    static constexpr const char *kNextPrevFunc = "tav_agenda_view_get_next_prev_status_for_entry";
    static constexpr const char *kEnsureCsmFunc = "tav_agenda_view_ensure_valid_items_in_csm";
    static constexpr const char *kPaintButtonFunc = "agenda_view_paint_aentry_button_with_detail";
    static constexpr bool kButtonHasHeader = true;
    static constexpr guint *signals = agenda_signals;

    static ViewState<Row> *state (View *view) { return view->priv; }
    static View *cast (TavCalendarView *view) { return TAV_AGENDA_VIEW (view); }

    static List *list_new () { return agenda_entry_list_new (); }
    static void list_free (List *l) { agenda_entry_list_free (l); }
    static Row *row_new (List *l, TavCalendarEntry *e, const char *icon, int format)
    {
        return agenda_entry_new (l, e, icon && *icon ? icon : nullptr, format);
    }
    static void refresh_times (Row *r, int format, gboolean shifted)
    {
        agenda_entry_refresh_displayed_times (r, format, shifted);
    }
    static void add (List *l, Row *r) { agenda_entry_list_add_agenda_entry (l, r); }
    static void sort (List *l) { agenda_entry_list_sort (l); }
    static int n_rows (List *l) { return agenda_entry_list_get_n_entry (l); }
    static Row *row (List *l, int n) { return agenda_entry_list_get_agenda_entry (l, n); }
    static int find_entry (List *l, TavCalendarEntry *e) { return agenda_entry_list_find_entry (l, e); }
    static int find_header (List *l, const TavDate *d) { return agenda_entry_list_find_header (l, d); }
    static bool has_header (List *l, const TavDate *d) { return agenda_entry_list_has_header (l, d); }
    static int find_no_entries (List *l) { return agenda_entry_list_find_no_entry_header (l); }
    static void remove (List *l, int n) { agenda_entry_list_remove (l, n); }
    static void remove_empty_headers (List *l) { agenda_entry_list_remove_headers_if_empty (l); }
    static void drop_all (List *l) { agenda_entry_list_drop_all_entries (l); }
    static int height (List *l) { return agenda_entry_list_get_height (l); }
    static void rect (List *l, int n, GdkRectangle *r) { agenda_entry_list_get_cell_rect_relative (l, n, r); }
    static void rect_abs (List *l, int n, GdkRectangle *r) { agenda_entry_list_get_cell_rect (l, n, r); }
    static int row_at (List *l, int y) { return agenda_entry_list_row_at (l, y); }
    static void headers (List *l, int y, int *b, int *a) { agenda_entry_list_get_headers (l, y, b, a); }
    static void set_offset (List *l, int x, int y) { agenda_entry_list_set_offset (l, x, y); }
    static int offset_y (List *l) { return l->offset_y; }
    static void set_width (List *l, int w) { agenda_entry_list_set_visible_width (l, w); }
    static int entries_count (List *l) { return agenda_entry_list_get_entries_count (l) ? 1 : 0; }
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
        return agenda_entry_get_bg_detail_pixmap (view, static_cast<List *> (view->priv->entry_list), r);
    }
    static void log_paint (int) {}

    static void no_entries_date (View *view, TavDate *date)
    {
        *date = view->priv->presented_interval.start;
        tav_calendar_processor_inc_date_by_days (tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (view)), date,
                                                 kHalfSpan);
    }
    static void button_date (View *view, TavDate *date) { no_entries_date (view, date); }
    static void mark_no_entries (Row *) {}
    static void append_insert_button (View *view, const char *title, const TavDate *date)
    {
        tav_agenda_view_append_insert_button (view, title, date);
    }
    static gboolean other_key (View *, GdkEventKey *) { return FALSE; }
    static void csm_edit_clicked (GtkWidget *item, View *view) { tav_agenda_view_csm_edit_clicked (item, view); }
    static void csm_delete_clicked (GtkWidget *item, View *view) { tav_agenda_view_csm_delete_clicked (item, view); }
};

using Impl = ListView<AgendaOps>;

/* The 31 days around @date, kept inside the years the calendar shows. */
void interval_around (TavAgendaView *agenda_view, const TavDate *date, TavDateInterval *interval)
{
    TavCalendarProcessor *processor = tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (agenda_view));
    const TavDate first = { 1970, 0, 1 }, last = { 2037, 11, 31 };
    interval->start = *date;
    interval->end = *date;
    for (int i = 0; i < kHalfSpan && tav_date_compare (&interval->start, &first) > 0; i++)
        tav_calendar_processor_dec_date (processor, &interval->start);
    for (int i = 0; i < kHalfSpan && tav_date_compare (&interval->end, &last) < 0; i++)
        tav_calendar_processor_inc_date (processor, &interval->end);
}

} // namespace

/* GObject ------------------------------------------------------------------- */

static void tav_agenda_view_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavAgendaViewPrivate *priv = TAV_AGENDA_VIEW (object)->priv;
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL:
        g_value_set_boxed (value, &priv->presented_interval);
        break;
    case PROP_PRESENTED_INTERVAL_SET:
        g_value_set_boolean (value, priv->presented_interval_set);
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, priv->time_24hr);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_agenda_view_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavAgendaView *agenda_view = TAV_AGENDA_VIEW (object);
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL: {
        const TavDateInterval *interval = static_cast<const TavDateInterval *> (g_value_get_boxed (value));
        g_return_if_fail (interval != NULL);
        Impl::store_interval (agenda_view, interval);
        break;
    }
    case PROP_TIME_24HR_FORMAT:
        Impl::set_time_24hr (agenda_view, g_value_get_boolean (value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_agenda_view_dispose (GObject *object)
{
    Impl::dispose (TAV_AGENDA_VIEW (object));
    G_OBJECT_CLASS (tav_agenda_view_parent_class)->dispose (object);
}

static void tav_agenda_view_finalize (GObject *object)
{
    TAV_AGENDA_VIEW (object)->priv->~TavAgendaViewPrivate ();
    G_OBJECT_CLASS (tav_agenda_view_parent_class)->finalize (object);
}

static void tav_agenda_view_unrealize (GtkWidget *widget)
{
    Impl::unrealize (widget, GTK_WIDGET_CLASS (tav_agenda_view_parent_class));
}

static void tav_agenda_view_style_set (GtkWidget *widget, GtkStyle *previous)
{
    Impl::style_set (widget, true);
}

static gboolean tav_agenda_view_key_press (GtkWidget *widget, GdkEventKey *event)
{
    return Impl::key_press (widget, event);
}

static void tav_agenda_view_class_init (TavAgendaViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);

    object_class->get_property = tav_agenda_view_get_property;
    object_class->set_property = tav_agenda_view_set_property;
    object_class->dispose = tav_agenda_view_dispose;
    object_class->finalize = tav_agenda_view_finalize;

    widget_class->realize = Impl::realize;
    widget_class->unrealize = tav_agenda_view_unrealize;
    widget_class->size_request = Impl::size_request;
    widget_class->size_allocate = Impl::size_allocate;
    widget_class->style_set = tav_agenda_view_style_set;
    widget_class->expose_event = Impl::expose;
    widget_class->key_press_event = tav_agenda_view_key_press;

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
    properties[PROP_PRESENTED_INTERVAL_SET] =
        g_param_spec_boolean ("presented-interval-set", "Presented Interval Set",
                              "Boolean properity to check if presented is set", FALSE, G_PARAM_READABLE);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
                                                              "Time format , 24hr or 12 hr", TRUE, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    install_style_properties (widget_class, true);

    const GType type = G_TYPE_FROM_CLASS (klass);
    agenda_signals[EntryActivated] = g_signal_new ("entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL, NULL,
                                                   G_TYPE_NONE, 2, TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_DATE);
    agenda_signals[EditEntryActivated] = g_signal_new ("edit-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                       g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                       TAV_TYPE_CALENDAR_ENTRY);
    agenda_signals[DeleteEntryActivated] = g_signal_new ("delete-entry-activated", type, G_SIGNAL_RUN_LAST, 0, NULL,
                                                         NULL, g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                         TAV_TYPE_CALENDAR_ENTRY);
    agenda_signals[InsertActivated] = g_signal_new ("insert-activated", type, G_SIGNAL_RUN_LAST, 0, NULL, NULL,
                                                    g_cclosure_marshal_VOID__BOXED, G_TYPE_NONE, 1, TAV_TYPE_DATE);
    agenda_signals[SetScrollAdjustments] =
        g_signal_new ("set_scroll_adjustments", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_ACTION),
                      G_STRUCT_OFFSET (TavAgendaViewClass, set_scroll_adjustments), NULL, NULL, NULL, G_TYPE_NONE, 2,
                      GTK_TYPE_ADJUSTMENT, GTK_TYPE_ADJUSTMENT);
    widget_class->set_scroll_adjustments_signal = agenda_signals[SetScrollAdjustments];
}

static void tav_agenda_view_init (TavAgendaView *agenda_view)
{
    agenda_view->priv = static_cast<TavAgendaViewPrivate *> (tav_agenda_view_get_instance_private (agenda_view));
    new (agenda_view->priv) TavAgendaViewPrivate ();
    agenda_view->priv->entry_list = agenda_entry_list_new ();
    Impl::init (agenda_view);
}

/* Rows ------------------------------------------------------------------------ */

GdkPixmap *agenda_entry_get_bg_detail_pixmap (TavAgendaView *agenda_view, AgendaEntryList *list, AgendaEntry *aentry)
{
    ROWS_ASSERT (list != NULL, "entry_list != NULL");
    ROWS_ASSERT (aentry != NULL, "aentry != NULL");
    TavAgendaViewPrivate *priv = agenda_view->priv;
    const bool pressed_here = priv->highlight != 0 && priv->highlighted == aentry;
    GdkDrawable *like = gtk_widget_get_realized (GTK_WIDGET (agenda_view)) ? GTK_WIDGET (agenda_view)->window : nullptr;
    return detail_pixmap (like, list->detail_pixmaps, list->detail_images, list->visible_width, &agenda_last_width,
                          detail_number (aentry, pressed_here), "agenda_entry_get_bg_detail_pixmap");
}

/* Public API -------------------------------------------------------------------- */

GtkWidget *tav_agenda_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_AGENDA_VIEW, NULL));
}

void tav_agenda_view_set_presented_interval_by_date (TavAgendaView *agenda_view, const TavDate *date)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (date != NULL);
    if (agenda_view->priv->disposed)
        return;
    if (date->year < 1970 || date->year > 2037 || !tav_date_is_valid (date)) {
        g_signal_emit_by_name (agenda_view, "year-limit-reached::0");
        return;
    }
    TavDateInterval interval;
    interval_around (agenda_view, date, &interval);
    if (!Impl::store_interval (agenda_view, &interval))
        return;
    g_object_notify_by_pspec (G_OBJECT (agenda_view), properties[PROP_PRESENTED_INTERVAL]);
    tav_agenda_view_jump_to_date (agenda_view, date);
}

void tav_agenda_view_set_presented_interval_today (TavAgendaView *agenda_view)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    TavDate today;
    tav_date_init_today (&today);
    tav_agenda_view_set_presented_interval_by_date (agenda_view, &today);
}

void tav_agenda_view_jump_to_date (TavAgendaView *agenda_view, const TavDate *date)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (date != NULL);
    Impl::jump_to_date (agenda_view, date);
}

gboolean tav_agenda_view_get_visible_date (TavAgendaView *agenda_view, TavDate *date)
{
    g_return_val_if_fail (TAV_IS_AGENDA_VIEW(agenda_view), FALSE);
    g_return_val_if_fail (date != NULL, FALSE);
    if (agenda_view->priv->disposed)
        return FALSE;
    AgendaEntryList *list = static_cast<AgendaEntryList *> (agenda_view->priv->entry_list);
    const int n = agenda_entry_list_row_at (list, 0);
    const int count = agenda_entry_list_get_n_entry (list);
    for (int i = std::max (n, 0); i < count; i++) {
        GdkRectangle rect;
        agenda_entry_list_get_cell_rect_relative (list, i, &rect);
        if (rect.y + rect.height >= 0) {
            *date = agenda_entry_list_get_agenda_entry (list, i)->date;
            return TRUE;
        }
    }
    return FALSE;
}

void tav_agenda_view_fix_scrolling (TavAgendaView *agenda_view)
{
    ROWS_ASSERT (TAV_IS_AGENDA_VIEW (agenda_view), "TAV_IS_AGENDA_VIEW (agenda_view)");
    TAV_WARNING ("fixing agenda vew scrolling");
    agenda_view->priv->jump_pending = false;
}

void tav_agenda_view_set_background_image_pixmap (TavAgendaView *agenda_view, GdkPixmap *pixmap)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (pixmap == NULL || GDK_IS_PIXMAP (pixmap));
    agenda_view->priv->background = tav::GRefPtr<GdkPixmap> (pixmap);
    Impl::invalidate (agenda_view);
}

void tav_agenda_view_append_header (TavAgendaView *agenda_view, const char *title, const TavDate *date)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (date != NULL);
    g_return_if_fail (title != NULL);
    if (agenda_view->priv->disposed)
        return;
    agenda_entry_list_add_agenda_entry (static_cast<AgendaEntryList *> (agenda_view->priv->entry_list),
                                        agenda_entry_new_header (title, date));
}

void tav_agenda_view_append_header_for_agenda_entry (TavAgendaView *agenda_view, AgendaEntry *aentry)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (aentry != NULL);
    if (agenda_view->priv->disposed)
        return;
    Impl::append_header_for_row (agenda_view, aentry);
}

void tav_agenda_view_append_insert_button (TavAgendaView *agenda_view, const char *title, const TavDate *date)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (date != NULL);
    g_return_if_fail (title != NULL);
    if (agenda_view->priv->disposed)
        return;
    Impl::append_insert_button (agenda_view, title, date);
}

void tav_agenda_view_check_and_ensure_no_entries_label (TavAgendaView *agenda_view, const char *title)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (title != NULL);
    if (agenda_view->priv->disposed)
        return;
    Impl::check_no_entries (agenda_view, title);
}

void tav_agenda_view_append_no_entries_label (TavAgendaView *agenda_view, const char *title)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    g_return_if_fail (title != NULL);
    if (agenda_view->priv->disposed)
        return;
    Impl::append_no_entries_label (agenda_view, title);
}

void tav_agenda_view_ensure_valid_items_in_csm (TavAgendaView *agenda_view)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    Impl::ensure_valid_items_in_csm (agenda_view);
}

void tav_agenda_view_csm_edit_clicked (GtkWidget *item, TavAgendaView *agenda_view)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    Impl::csm_edit (agenda_view, "tav_agenda_view_csm_edit_clicked");
}

void tav_agenda_view_csm_delete_clicked (GtkWidget *item, TavAgendaView *agenda_view)
{
    g_return_if_fail (TAV_IS_AGENDA_VIEW(agenda_view));
    Impl::csm_delete (agenda_view, "tav_agenda_view_csm_delete_clicked");
}

/* Test hooks ---------------------------------------------------------------------- */

AgendaEntryList *_tav_agenda_view_get_list (TavAgendaView *agenda_view)
{
    return static_cast<AgendaEntryList *> (agenda_view->priv->entry_list);
}

GtkAdjustment *_tav_agenda_view_get_vadjustment (TavAgendaView *agenda_view)
{
    return agenda_view->priv->vadjustment.get ();
}

GtkWidget *_tav_agenda_view_get_context_menu (TavAgendaView *agenda_view)
{
    return agenda_view->priv->csm;
}

int _tav_agenda_view_get_n_paints (TavAgendaView *agenda_view)
{
    return agenda_view->priv->n_paints;
}

int _tav_agenda_view_get_highlight (TavAgendaView *agenda_view)
{
    return agenda_view->priv->highlight;
}
