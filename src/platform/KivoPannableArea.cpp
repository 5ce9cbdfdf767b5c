/* Touch platform layer - a container panned with the finger */

#include "KivoPannableArea.h"

#include "KivoKineticScroller.h"
#include "KivoStyle.h"
#include "TavGPtr.h"

#include <cmath>
#include <initializer_list>
#include <new>
#include <utility>

enum {
    PROP_0,
    PROP_MOV_MODE,
    PROP_HOVERSHOOT_MAX,
    PROP_VOVERSHOOT_MAX,
    PROP_HSCROLLBAR_POLICY,
    PROP_VSCROLLBAR_POLICY,
    PROP_SIZE_REQUEST_POLICY,
    PROP_PANNING_THRESHOLD,
    PROP_HADJUSTMENT,
    PROP_VADJUSTMENT,
    N_PROPERTIES
};

static GParamSpec *properties[N_PROPERTIES];

namespace {

enum class Gesture { Idle, Pressed, Panning, Swallowed };

/* An event window that the press went to, and where in it. */
struct Target {
    tav::GRefPtr<GdkWindow> window;
    double x = 0.0, y = 0.0;
    bool entered = false;
};

} // namespace

struct _KivoPannableAreaPrivate {
    bool disposed = false;
    GdkWindow *event_window = nullptr; /* input-only, above the child */
    tav::GRefPtr<GtkAdjustment> hadjustment;
    tav::GRefPtr<GtkAdjustment> vadjustment;

    guint mov_mode = KIVO_MOVEMENT_MODE_VERTICAL;
    int hovershoot_max = 150;
    int vovershoot_max = 150;
    GtkPolicyType hpolicy = GTK_POLICY_AUTOMATIC;
    GtkPolicyType vpolicy = GTK_POLICY_AUTOMATIC;
    KivoSizeRequestPolicy size_policy = KIVO_SIZE_REQUEST_MINIMUM;
    int threshold = KIVO_PANNABLE_AREA_PANNING_THRESHOLD;

    kivo::KineticScroller hscroll;
    kivo::KineticScroller vscroll;
    bool updating_adjustments = false;
    int applied_overshoot_x = 0;
    int applied_overshoot_y = 0;

    struct {
        Gesture state = Gesture::Idle;
        guint button = 0;
        double root_x = 0.0, root_y = 0.0;
        Target target;
        GdkEvent *pending_press = nullptr; /* not yet given to the child */
        bool press_delivered = false;
        guint delay_id = 0;
    } gesture;

    guint animation_id = 0;
    gint64 last_frame_us = 0;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoPannableArea, kivo_pannable_area, GTK_TYPE_BIN)

GType
kivo_movement_mode_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GFlagsValue values[] = {
            { KIVO_MOVEMENT_MODE_HORIZONTAL, "KIVO_MOVEMENT_MODE_HORIZONTAL", "horizontal" },
            { KIVO_MOVEMENT_MODE_VERTICAL, "KIVO_MOVEMENT_MODE_VERTICAL", "vertical" },
            { KIVO_MOVEMENT_MODE_BOTH, "KIVO_MOVEMENT_MODE_BOTH", "both" },
            { 0, nullptr, nullptr },
        };
        g_once_init_leave (&type, g_flags_register_static ("KivoMovementMode", values));
    }
    return type;
}

GType
kivo_size_request_policy_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { KIVO_SIZE_REQUEST_MINIMUM, "KIVO_SIZE_REQUEST_MINIMUM", "minimum" },
            { KIVO_SIZE_REQUEST_CHILDREN, "KIVO_SIZE_REQUEST_CHILDREN", "children" },
            { 0, nullptr, nullptr },
        };
        g_once_init_leave (&type, g_enum_register_static ("KivoSizeRequestPolicy", values));
    }
    return type;
}

/* Auxiliary functions */

static bool
pans_horizontally (KivoPannableArea *area)
{
    return (area->priv->mov_mode & KIVO_MOVEMENT_MODE_HORIZONTAL) != 0;
}

static bool
pans_vertically (KivoPannableArea *area)
{
    return (area->priv->mov_mode & KIVO_MOVEMENT_MODE_VERTICAL) != 0;
}

static bool
shows_indicator (GtkPolicyType policy, bool pans)
{
    return policy == GTK_POLICY_ALWAYS || (policy == GTK_POLICY_AUTOMATIC && pans);
}

static int
vindicator_width (KivoPannableArea *area)
{
    return shows_indicator (area->priv->vpolicy, pans_vertically (area)) ? KIVO_PANNABLE_AREA_INDICATOR_WIDTH : 0;
}

static int
hindicator_height (KivoPannableArea *area)
{
    return shows_indicator (area->priv->hpolicy, pans_horizontally (area)) ? KIVO_PANNABLE_AREA_INDICATOR_WIDTH : 0;
}

static void
sync_limits (KivoPannableArea *area)
{
    auto *priv = area->priv;
    GtkAdjustment *h = priv->hadjustment.get ();
    GtkAdjustment *v = priv->vadjustment.get ();
    priv->hscroll.set_limits (h->lower, h->upper - h->page_size,
                              pans_horizontally (area) ? priv->hovershoot_max : 0);
    priv->vscroll.set_limits (v->lower, v->upper - v->page_size,
                              pans_vertically (area) ? priv->vovershoot_max : 0);
}

static void
allocate_child (KivoPannableArea *area)
{
    GtkWidget *widget = GTK_WIDGET (area);
    GtkWidget *child = gtk_bin_get_child (GTK_BIN (area));
    if (!child || !gtk_widget_get_visible (child))
        return;
    GtkAllocation allocation;
    /* Past an end the child is moved along with the finger; the gap shows
     * the area's own background. */
    allocation.x = -area->priv->applied_overshoot_x;
    allocation.y = -area->priv->applied_overshoot_y;
    if (!gtk_widget_get_has_window (widget)) {
        allocation.x += widget->allocation.x;
        allocation.y += widget->allocation.y;
    }
    allocation.width = MAX (1, widget->allocation.width - vindicator_width (area));
    allocation.height = MAX (1, widget->allocation.height - hindicator_height (area));
    gtk_widget_size_allocate (child, &allocation);
}

/* Moves the adjustments (and the overshoot) to where the scrollers are. */
static void
apply_positions (KivoPannableArea *area)
{
    auto *priv = area->priv;
    priv->updating_adjustments = true;
    GtkAdjustment *h = priv->hadjustment.get ();
    GtkAdjustment *v = priv->vadjustment.get ();
    if (std::fabs (gtk_adjustment_get_value (h) - priv->hscroll.clamped_position ()) >= 0.5)
        gtk_adjustment_set_value (h, std::round (priv->hscroll.clamped_position ()));
    if (std::fabs (gtk_adjustment_get_value (v) - priv->vscroll.clamped_position ()) >= 0.5)
        gtk_adjustment_set_value (v, std::round (priv->vscroll.clamped_position ()));
    priv->updating_adjustments = false;

    const int ox = static_cast<int> (std::lround (priv->hscroll.overshoot ()));
    const int oy = static_cast<int> (std::lround (priv->vscroll.overshoot ()));
    if (ox != priv->applied_overshoot_x || oy != priv->applied_overshoot_y) {
        priv->applied_overshoot_x = ox;
        priv->applied_overshoot_y = oy;
        allocate_child (area);
        gtk_widget_queue_draw (GTK_WIDGET (area));
    }
}

static void
queue_indicator_redraw (KivoPannableArea *area)
{
    GtkWidget *widget = GTK_WIDGET (area);
    if (!gtk_widget_get_realized (widget))
        return;
    const int vw = vindicator_width (area), hh = hindicator_height (area);
    GdkRectangle rect;
    if (vw) {
        rect = { widget->allocation.width - vw, 0, vw, widget->allocation.height };
        gdk_window_invalidate_rect (widget->window, &rect, FALSE);
    }
    if (hh) {
        rect = { 0, widget->allocation.height - hh, widget->allocation.width, hh };
        gdk_window_invalidate_rect (widget->window, &rect, FALSE);
    }
}

static gboolean on_animation_tick_cb (gpointer data);

static void
start_animation (KivoPannableArea *area)
{
    auto *priv = area->priv;
    if (priv->animation_id || !(priv->hscroll.moving () || priv->vscroll.moving ()))
        return;
    priv->last_frame_us = g_get_monotonic_time ();
    priv->animation_id = g_timeout_add (16, on_animation_tick_cb, area);
}

static void
stop_animation (KivoPannableArea *area)
{
    if (area->priv->animation_id) {
        g_source_remove (area->priv->animation_id);
        area->priv->animation_id = 0;
    }
}

/* The deepest visible window with a widget below @parent at (@x, @y). */
static GdkWindow *
find_target_window (GdkWindow *parent, GdkWindow *exclude, int x, int y, int *out_x, int *out_y)
{
    for (GList *l = gdk_window_peek_children (parent); l; l = l->next) {
        GdkWindow *window = GDK_WINDOW (l->data);
        if (window == exclude || !gdk_window_is_visible (window))
            continue;
        int wx = 0, wy = 0, width = 0, height = 0;
        gdk_window_get_position (window, &wx, &wy);
        gdk_window_get_geometry (window, nullptr, nullptr, &width, &height, nullptr);
        if (x < wx || y < wy || x >= wx + width || y >= wy + height)
            continue;
        if (GdkWindow *deeper = find_target_window (window, exclude, x - wx, y - wy, out_x, out_y))
            return deeper;
        gpointer user_data = nullptr;
        gdk_window_get_user_data (window, &user_data);
        if (user_data) {
            *out_x = x - wx;
            *out_y = y - wy;
            return window;
        }
    }
    return nullptr;
}

static bool
target_alive (const Target &target)
{
    if (!target.window)
        return false;
    gpointer user_data = nullptr;
    gdk_window_get_user_data (target.window.get (), &user_data);
    return user_data != nullptr;
}

static void
send_crossing (Target &target, GdkEventType type, guint32 time, double root_x, double root_y)
{
    if (!target_alive (target))
        return;
    GdkEvent *event = gdk_event_new (type);
    event->crossing.window = GDK_WINDOW (g_object_ref (target.window.get ()));
    event->crossing.send_event = TRUE;
    event->crossing.time = time;
    event->crossing.x = target.x;
    event->crossing.y = target.y;
    event->crossing.x_root = root_x;
    event->crossing.y_root = root_y;
    event->crossing.mode = GDK_CROSSING_NORMAL;
    event->crossing.detail = GDK_NOTIFY_NONLINEAR;
    gtk_main_do_event (event);
    gdk_event_free (event);
    target.entered = (type == GDK_ENTER_NOTIFY);
}

/* Gives @source to the press's target. Pointer positions are reported in
 * the target as it lay when the finger came down, moved by how far the
 * finger has travelled since, so the child sees the real length of the
 * gesture even though the content moved under it. */
static void
deliver (KivoPannableArea *area, const GdkEvent *source)
{
    auto &gesture = area->priv->gesture;
    Target &target = gesture.target;
    if (!target_alive (target))
        return;
    GdkEvent *event = gdk_event_copy (const_cast<GdkEvent *> (source));
    double root_x = 0.0, root_y = 0.0;
    gdk_event_get_root_coords (source, &root_x, &root_y);
    const double x = target.x + (root_x - gesture.root_x);
    const double y = target.y + (root_y - gesture.root_y);
    if (event->any.window)
        g_object_unref (event->any.window);
    event->any.window = GDK_WINDOW (g_object_ref (target.window.get ()));
    if (event->type == GDK_MOTION_NOTIFY) {
        event->motion.x = x;
        event->motion.y = y;
        event->motion.is_hint = FALSE;
    } else {
        event->button.x = x;
        event->button.y = y;
    }
    if (event->type == GDK_BUTTON_PRESS && !target.entered)
        send_crossing (target, GDK_ENTER_NOTIFY, source->button.time, root_x, root_y);
    if (event->type == GDK_MOTION_NOTIFY) {
        /* Crossings as X would report them under the implicit grab: a
         * button pressed and then left is not clicked. */
        int width = 0, height = 0;
        gdk_drawable_get_size (target.window.get (), &width, &height);
        const bool inside = x >= 0 && y >= 0 && x < width && y < height;
        if (inside != target.entered)
            send_crossing (target, inside ? GDK_ENTER_NOTIFY : GDK_LEAVE_NOTIFY, source->motion.time, root_x, root_y);
    }
    gtk_main_do_event (event);
    gdk_event_free (event);
}

/* Stops the press delay and hands over the press the child has not seen
 * yet (NULL when there is none); the caller delivers or frees it. */
template <typename G>
static GdkEvent *
take_pending_press (G &gesture)
{
    if (gesture.delay_id) {
        g_source_remove (gesture.delay_id);
        gesture.delay_id = 0;
    }
    return std::exchange (gesture.pending_press, nullptr);
}

static void
deliver_pending_press (KivoPannableArea *area)
{
    auto &gesture = area->priv->gesture;
    if (GdkEvent *press = take_pending_press (gesture)) {
        gesture.press_delivered = true;
        deliver (area, press);
        gdk_event_free (press);
    }
}

static void
reset_gesture (KivoPannableArea *area)
{
    auto &gesture = area->priv->gesture;
    if (GdkEvent *press = take_pending_press (gesture))
        gdk_event_free (press);
    gesture.state = Gesture::Idle;
    gesture.press_delivered = false;
    gesture.target = Target ();
}

/* Callbacks */

static gboolean
on_animation_tick_cb (gpointer data)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (data);
    auto *priv = area->priv;
    const gint64 now = g_get_monotonic_time ();
    const double dt = (now - priv->last_frame_us) / 1e6;
    priv->last_frame_us = now;
    const bool h = priv->hscroll.step (dt);
    const bool v = priv->vscroll.step (dt);
    apply_positions (area);
    if (h || v)
        return TRUE;
    priv->animation_id = 0;
    return FALSE;
}

static gboolean
on_press_delay_cb (gpointer data)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (data);
    area->priv->gesture.delay_id = 0;
    deliver_pending_press (area);
    return FALSE;
}

static void
on_adjustment_changed_cb (GtkAdjustment *, gpointer data)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (data);
    sync_limits (area);
    queue_indicator_redraw (area);
}

static void
on_adjustment_value_changed_cb (GtkAdjustment *adjustment, gpointer data)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (data);
    auto *priv = area->priv;
    if (!priv->updating_adjustments) {
        /* Moved by someone else (the child, a key, scroll_to). */
        kivo::KineticScroller &scroller = adjustment == priv->hadjustment.get () ? priv->hscroll : priv->vscroll;
        if (!scroller.dragging ())
            scroller.jump_to (gtk_adjustment_get_value (adjustment));
    }
    queue_indicator_redraw (area);
}

static void
on_child_map_cb (GtkWidget *, gpointer data)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (data);
    if (area->priv->event_window)
        gdk_window_raise (area->priv->event_window);
}

/* GObject overrides */

static void
kivo_pannable_area_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (object);
    auto *priv = area->priv;
    switch (prop_id) {
    case PROP_MOV_MODE:
        priv->mov_mode = g_value_get_flags (value);
        sync_limits (area);
        gtk_widget_queue_resize (GTK_WIDGET (area));
        break;
    case PROP_HOVERSHOOT_MAX:
        priv->hovershoot_max = g_value_get_int (value);
        sync_limits (area);
        break;
    case PROP_VOVERSHOOT_MAX:
        priv->vovershoot_max = g_value_get_int (value);
        sync_limits (area);
        break;
    case PROP_HSCROLLBAR_POLICY:
        priv->hpolicy = static_cast<GtkPolicyType> (g_value_get_enum (value));
        gtk_widget_queue_resize (GTK_WIDGET (area));
        break;
    case PROP_VSCROLLBAR_POLICY:
        priv->vpolicy = static_cast<GtkPolicyType> (g_value_get_enum (value));
        gtk_widget_queue_resize (GTK_WIDGET (area));
        break;
    case PROP_SIZE_REQUEST_POLICY:
        priv->size_policy = static_cast<KivoSizeRequestPolicy> (g_value_get_enum (value));
        gtk_widget_queue_resize (GTK_WIDGET (area));
        break;
    case PROP_PANNING_THRESHOLD:
        priv->threshold = g_value_get_int (value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_pannable_area_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    auto *priv = KIVO_PANNABLE_AREA (object)->priv;
    switch (prop_id) {
    case PROP_MOV_MODE:
        g_value_set_flags (value, priv->mov_mode);
        break;
    case PROP_HOVERSHOOT_MAX:
        g_value_set_int (value, priv->hovershoot_max);
        break;
    case PROP_VOVERSHOOT_MAX:
        g_value_set_int (value, priv->vovershoot_max);
        break;
    case PROP_HSCROLLBAR_POLICY:
        g_value_set_enum (value, priv->hpolicy);
        break;
    case PROP_VSCROLLBAR_POLICY:
        g_value_set_enum (value, priv->vpolicy);
        break;
    case PROP_SIZE_REQUEST_POLICY:
        g_value_set_enum (value, priv->size_policy);
        break;
    case PROP_PANNING_THRESHOLD:
        g_value_set_int (value, priv->threshold);
        break;
    case PROP_HADJUSTMENT:
        g_value_set_object (value, priv->hadjustment.get ());
        break;
    case PROP_VADJUSTMENT:
        g_value_set_object (value, priv->vadjustment.get ());
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_pannable_area_dispose (GObject *object)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (object);
    auto *priv = area->priv;
    if (!priv->disposed) {
        priv->disposed = true;
        stop_animation (area);
        reset_gesture (area);
        for (GtkAdjustment *adjustment : { priv->hadjustment.get (), priv->vadjustment.get () })
            g_signal_handlers_disconnect_by_data (adjustment, area);
    }
    G_OBJECT_CLASS (kivo_pannable_area_parent_class)->dispose (object);
}

static void
kivo_pannable_area_finalize (GObject *object)
{
    KIVO_PANNABLE_AREA (object)->priv->~KivoPannableAreaPrivate ();
    G_OBJECT_CLASS (kivo_pannable_area_parent_class)->finalize (object);
}

/* Widget overrides */

static void
kivo_pannable_area_realize (GtkWidget *widget)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    gtk_widget_set_realized (widget, TRUE);

    GdkWindowAttr attributes = {};
    attributes.x = widget->allocation.x;
    attributes.y = widget->allocation.y;
    attributes.width = widget->allocation.width;
    attributes.height = widget->allocation.height;
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.wclass = GDK_INPUT_OUTPUT;
    attributes.visual = gtk_widget_get_visual (widget);
    attributes.colormap = gtk_widget_get_colormap (widget);
    attributes.event_mask = gtk_widget_get_events (widget) | GDK_EXPOSURE_MASK;
    widget->window = gdk_window_new (gtk_widget_get_parent_window (widget), &attributes,
                                     GDK_WA_X | GDK_WA_Y | GDK_WA_VISUAL | GDK_WA_COLORMAP);
    gdk_window_set_user_data (widget->window, widget);

    attributes.x = 0;
    attributes.y = 0;
    attributes.wclass = GDK_INPUT_ONLY;
    attributes.event_mask = GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK
                            | GDK_SCROLL_MASK;
    area->priv->event_window = gdk_window_new (widget->window, &attributes, GDK_WA_X | GDK_WA_Y);
    gdk_window_set_user_data (area->priv->event_window, widget);

    widget->style = gtk_style_attach (widget->style, widget->window);
    gtk_style_set_background (widget->style, widget->window, GTK_STATE_NORMAL);
}

static void
kivo_pannable_area_unrealize (GtkWidget *widget)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    reset_gesture (area);
    if (area->priv->event_window) {
        gdk_window_set_user_data (area->priv->event_window, nullptr);
        gdk_window_destroy (area->priv->event_window);
        area->priv->event_window = nullptr;
    }
    GTK_WIDGET_CLASS (kivo_pannable_area_parent_class)->unrealize (widget);
}

static void
kivo_pannable_area_map (GtkWidget *widget)
{
    GTK_WIDGET_CLASS (kivo_pannable_area_parent_class)->map (widget);
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    gdk_window_show (area->priv->event_window);
    gdk_window_raise (area->priv->event_window);
}

static void
kivo_pannable_area_unmap (GtkWidget *widget)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    stop_animation (area);
    reset_gesture (area);
    if (area->priv->event_window)
        gdk_window_hide (area->priv->event_window);
    GTK_WIDGET_CLASS (kivo_pannable_area_parent_class)->unmap (widget);
}

static void
kivo_pannable_area_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    GtkRequisition child_request = { 0, 0 };
    if (GtkWidget *child = gtk_bin_get_child (GTK_BIN (widget)))
        gtk_widget_size_request (child, &child_request);

    GdkScreen *screen = gtk_widget_get_screen (widget);
    const bool children = area->priv->size_policy == KIVO_SIZE_REQUEST_CHILDREN;
    if (pans_horizontally (area))
        requisition->width = children ? MIN (child_request.width, gdk_screen_get_width (screen)) : KIVO_FINGER_HEIGHT;
    else
        requisition->width = child_request.width;
    if (pans_vertically (area))
        requisition->height = children ? MIN (child_request.height, gdk_screen_get_height (screen)) : KIVO_FINGER_HEIGHT;
    else
        requisition->height = child_request.height;
    requisition->width += vindicator_width (area);
    requisition->height += hindicator_height (area);
}

static void
kivo_pannable_area_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    widget->allocation = *allocation;
    if (gtk_widget_get_realized (widget)) {
        gdk_window_move_resize (widget->window, allocation->x, allocation->y, allocation->width, allocation->height);
        gdk_window_move_resize (area->priv->event_window, 0, 0, allocation->width, allocation->height);
        gdk_window_raise (area->priv->event_window);
    }
    allocate_child (area);
    sync_limits (area);
}

static void
paint_indicator (cairo_t *cr, GtkAdjustment *adjustment, double x, double y, double track, bool vertical)
{
    const double range = adjustment->upper - adjustment->lower;
    if (range <= adjustment->page_size || range <= 0)
        return;
    const double length = MAX (32.0, track * adjustment->page_size / range);
    const double fraction = (adjustment->value - adjustment->lower) / (range - adjustment->page_size);
    const double offset = CLAMP (fraction, 0.0, 1.0) * (track - length);
    const double thickness = KIVO_PANNABLE_AREA_INDICATOR_WIDTH - 2;
    if (vertical)
        kivo_style_rounded_rect (cr, x + 1, y + offset, thickness, length, thickness / 2);
    else
        kivo_style_rounded_rect (cr, x + offset, y + 1, length, thickness, thickness / 2);
    kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 0.55);
    cairo_fill (cr);
}

static gboolean
kivo_pannable_area_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    if (event->window == widget->window) {
        cairo_t *cr = gdk_cairo_create (widget->window);
        gdk_cairo_region (cr, event->region);
        cairo_clip (cr);
        const int vw = vindicator_width (area), hh = hindicator_height (area);
        const int width = widget->allocation.width, height = widget->allocation.height;
        if (vw)
            paint_indicator (cr, area->priv->vadjustment.get (), width - vw, 0, height - hh, true);
        if (hh)
            paint_indicator (cr, area->priv->hadjustment.get (), 0, height - hh, width - vw, false);
        cairo_destroy (cr);
    }
    return GTK_WIDGET_CLASS (kivo_pannable_area_parent_class)->expose_event (widget, event);
}

static gboolean
kivo_pannable_area_button_press_event (GtkWidget *widget, GdkEventButton *event)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    auto *priv = area->priv;
    auto &gesture = priv->gesture;
    if (event->window != priv->event_window)
        return FALSE; /* bubbling up from the child */
    if (event->type != GDK_BUTTON_PRESS)
        return TRUE;  /* GDK's double-click events come after our own presses */
    if (gesture.state != Gesture::Idle && gesture.button != event->button)
        return TRUE;  /* a second button during a gesture */

    /* A press while a gesture is still open means its release went
     * elsewhere (to a menu that popped up meanwhile): start afresh. */
    reset_gesture (area);
    gesture.button = event->button;
    gesture.root_x = event->x_root;
    gesture.root_y = event->y_root;
    int tx = 0, ty = 0;
    GdkWindow *target = find_target_window (widget->window, priv->event_window,
                                            static_cast<int> (event->x), static_cast<int> (event->y), &tx, &ty);
    gesture.target.window = tav::GRefPtr<GdkWindow> (target);
    gesture.target.x = tx;
    gesture.target.y = ty;

    if (event->button != 1) {
        /* Only the first button pans; the others (the context-menu button)
         * go straight to the child. */
        gesture.state = Gesture::Pressed;
        gesture.press_delivered = true;
        deliver (area, reinterpret_cast<GdkEvent *> (event));
        return TRUE;
    }

    const bool was_moving = priv->hscroll.moving () || priv->vscroll.moving ();
    const bool overshot = priv->hscroll.overshoot () != 0.0 || priv->vscroll.overshoot () != 0.0;
    stop_animation (area);
    priv->hscroll.press (event->x_root, static_cast<gint64> (event->time) * 1000);
    priv->vscroll.press (event->y_root, static_cast<gint64> (event->time) * 1000);
    if (was_moving && !overshot) {
        /* A tap on moving content only stops it. */
        gesture.state = Gesture::Swallowed;
        return TRUE;
    }
    gesture.state = Gesture::Pressed;
    gesture.pending_press = gdk_event_copy (reinterpret_cast<GdkEvent *> (event));
    gesture.delay_id = g_timeout_add (KIVO_PANNABLE_AREA_PRESS_DELAY_MS, on_press_delay_cb, area);
    return TRUE;
}

static gboolean
kivo_pannable_area_motion_notify_event (GtkWidget *widget, GdkEventMotion *event)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    auto *priv = area->priv;
    auto &gesture = priv->gesture;
    if (event->window != priv->event_window)
        return FALSE;
    if (gesture.state == Gesture::Idle)
        return TRUE;
    if (gesture.button != 1) {
        deliver (area, reinterpret_cast<GdkEvent *> (event));
        return TRUE;
    }

    const double dx = event->x_root - gesture.root_x;
    const double dy = event->y_root - gesture.root_y;
    const bool beyond = (pans_horizontally (area) && std::fabs (dx) > priv->threshold)
                        || (pans_vertically (area) && std::fabs (dy) > priv->threshold);
    if ((gesture.state == Gesture::Pressed || gesture.state == Gesture::Swallowed) && beyond) {
        /* From here on the gesture belongs to the area: the child hears that
         * the pointer left it, so it drops its pressed state. */
        if (gesture.press_delivered)
            send_crossing (gesture.target, GDK_LEAVE_NOTIFY, event->time, event->x_root, event->y_root);
        if (GdkEvent *press = take_pending_press (gesture))
            gdk_event_free (press);
        gesture.state = Gesture::Panning;
    }

    if (gesture.state == Gesture::Panning) {
        const gint64 time_us = static_cast<gint64> (event->time) * 1000;
        if (pans_horizontally (area))
            priv->hscroll.drag (event->x_root, time_us);
        if (pans_vertically (area))
            priv->vscroll.drag (event->y_root, time_us);
        apply_positions (area);
    } else if (gesture.press_delivered) {
        deliver (area, reinterpret_cast<GdkEvent *> (event));
    }
    return TRUE;
}

static gboolean
kivo_pannable_area_button_release_event (GtkWidget *widget, GdkEventButton *event)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    auto *priv = area->priv;
    auto &gesture = priv->gesture;
    if (event->window != priv->event_window)
        return FALSE;
    if (gesture.state == Gesture::Idle || event->button != gesture.button)
        return TRUE;

    if (gesture.state == Gesture::Pressed) {
        /* A tap: the child gets the whole click. */
        deliver_pending_press (area);
        deliver (area, reinterpret_cast<GdkEvent *> (event));
        if (gesture.target.entered)
            send_crossing (gesture.target, GDK_LEAVE_NOTIFY, event->time, event->x_root, event->y_root);
    } else {
        if (gesture.press_delivered)
            deliver (area, reinterpret_cast<GdkEvent *> (event));
    }
    if (gesture.button == 1) {
        const gint64 time_us = static_cast<gint64> (event->time) * 1000;
        priv->hscroll.release (time_us);
        priv->vscroll.release (time_us);
        if (gesture.state != Gesture::Panning) {
            priv->hscroll.stop ();
            priv->vscroll.stop ();
        }
        start_animation (area);
    }
    reset_gesture (area);
    return TRUE;
}

static gboolean
kivo_pannable_area_grab_broken_event (GtkWidget *widget, GdkEventGrabBroken *event)
{
    /* Someone (a popup menu) took the pointer: the gesture ends here. */
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    auto *priv = area->priv;
    if (priv->gesture.state != Gesture::Idle) {
        priv->hscroll.stop ();
        priv->vscroll.stop ();
        if (priv->gesture.state == Gesture::Panning)
            start_animation (area); /* springs back from any overshoot */
    }
    reset_gesture (area);
    return FALSE;
}

static gboolean
kivo_pannable_area_scroll_event (GtkWidget *widget, GdkEventScroll *event)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (widget);
    GtkAdjustment *adjustment = (event->direction == GDK_SCROLL_LEFT || event->direction == GDK_SCROLL_RIGHT)
                                    ? area->priv->hadjustment.get () : area->priv->vadjustment.get ();
    const double step = MAX (adjustment->page_size / 5.0, 48.0);
    const double delta = (event->direction == GDK_SCROLL_UP || event->direction == GDK_SCROLL_LEFT) ? -step : step;
    const double value = CLAMP (adjustment->value + delta, adjustment->lower, adjustment->upper - adjustment->page_size);
    gtk_adjustment_set_value (adjustment, value);
    return TRUE;
}

static void
kivo_pannable_area_add (GtkContainer *container, GtkWidget *child)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (container);
    g_return_if_fail (gtk_bin_get_child (GTK_BIN (container)) == NULL);
    GTK_CONTAINER_CLASS (kivo_pannable_area_parent_class)->add (container, child);
    if (!gtk_widget_set_scroll_adjustments (child, area->priv->hadjustment.get (), area->priv->vadjustment.get ()))
        g_warning ("%s: %s does not scroll by itself; use kivo_pannable_area_add_with_viewport()",
                   G_STRFUNC, G_OBJECT_TYPE_NAME (child));
    g_signal_connect_after (child, "map", G_CALLBACK (on_child_map_cb), area);
}

static void
kivo_pannable_area_remove (GtkContainer *container, GtkWidget *child)
{
    KivoPannableArea *area = KIVO_PANNABLE_AREA (container);
    g_signal_handlers_disconnect_by_func (child, reinterpret_cast<gpointer> (on_child_map_cb), area);
    gtk_widget_set_scroll_adjustments (child, nullptr, nullptr);
    reset_gesture (area);
    GTK_CONTAINER_CLASS (kivo_pannable_area_parent_class)->remove (container, child);
}

static void
kivo_pannable_area_class_init (KivoPannableAreaClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = kivo_pannable_area_set_property;
    object_class->get_property = kivo_pannable_area_get_property;
    object_class->dispose = kivo_pannable_area_dispose;
    object_class->finalize = kivo_pannable_area_finalize;

    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    widget_class->realize = kivo_pannable_area_realize;
    widget_class->unrealize = kivo_pannable_area_unrealize;
    widget_class->map = kivo_pannable_area_map;
    widget_class->unmap = kivo_pannable_area_unmap;
    widget_class->size_request = kivo_pannable_area_size_request;
    widget_class->size_allocate = kivo_pannable_area_size_allocate;
    widget_class->expose_event = kivo_pannable_area_expose_event;
    widget_class->button_press_event = kivo_pannable_area_button_press_event;
    widget_class->motion_notify_event = kivo_pannable_area_motion_notify_event;
    widget_class->button_release_event = kivo_pannable_area_button_release_event;
    widget_class->scroll_event = kivo_pannable_area_scroll_event;
    widget_class->grab_broken_event = kivo_pannable_area_grab_broken_event;

    GtkContainerClass *container_class = GTK_CONTAINER_CLASS (klass);
    container_class->add = kivo_pannable_area_add;
    container_class->remove = kivo_pannable_area_remove;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    const auto ro = static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS);
    properties[PROP_MOV_MODE] = g_param_spec_flags ("mov-mode", "Movement mode",
        "Directions in which the finger pans", KIVO_TYPE_MOVEMENT_MODE, KIVO_MOVEMENT_MODE_VERTICAL, rw);
    properties[PROP_HOVERSHOOT_MAX] = g_param_spec_int ("hovershoot-max", "Horizontal overshoot",
        "How far the content may be pulled past its left or right end, in pixels", 0, G_MAXINT, 150, rw);
    properties[PROP_VOVERSHOOT_MAX] = g_param_spec_int ("vovershoot-max", "Vertical overshoot",
        "How far the content may be pulled past its top or bottom, in pixels", 0, G_MAXINT, 150, rw);
    properties[PROP_HSCROLLBAR_POLICY] = g_param_spec_enum ("hscrollbar-policy", "Horizontal indicator",
        "When the horizontal scroll indicator is shown", GTK_TYPE_POLICY_TYPE, GTK_POLICY_AUTOMATIC, rw);
    properties[PROP_VSCROLLBAR_POLICY] = g_param_spec_enum ("vscrollbar-policy", "Vertical indicator",
        "When the vertical scroll indicator is shown", GTK_TYPE_POLICY_TYPE, GTK_POLICY_AUTOMATIC, rw);
    properties[PROP_SIZE_REQUEST_POLICY] = g_param_spec_enum ("size-request-policy", "Size request policy",
        "Whether the area asks for its minimum or for its child's size", KIVO_TYPE_SIZE_REQUEST_POLICY,
        KIVO_SIZE_REQUEST_MINIMUM, rw);
    properties[PROP_PANNING_THRESHOLD] = g_param_spec_int ("panning-threshold", "Panning threshold",
        "How far a press moves before it pans instead of tapping, in pixels", 0, G_MAXINT,
        KIVO_PANNABLE_AREA_PANNING_THRESHOLD, rw);
    properties[PROP_HADJUSTMENT] = g_param_spec_object ("hadjustment", "Horizontal adjustment",
        "The horizontal scroll position", GTK_TYPE_ADJUSTMENT, ro);
    properties[PROP_VADJUSTMENT] = g_param_spec_object ("vadjustment", "Vertical adjustment",
        "The vertical scroll position", GTK_TYPE_ADJUSTMENT, ro);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    kivo_style_init ();
}

static void
kivo_pannable_area_init (KivoPannableArea *area)
{
    kivo_style_init ();
    void *memory = kivo_pannable_area_get_instance_private (area);
    area->priv = new (memory) KivoPannableAreaPrivate ();
    auto *priv = area->priv;
    gtk_widget_set_has_window (GTK_WIDGET (area), TRUE);
    gtk_widget_set_redraw_on_allocate (GTK_WIDGET (area), FALSE);

    for (auto *slot : { &priv->hadjustment, &priv->vadjustment }) {
        GtkObject *adjustment = gtk_adjustment_new (0, 0, 0, 0, 0, 0);
        g_object_ref_sink (adjustment);
        *slot = tav::adoptGRef (GTK_ADJUSTMENT (adjustment));
        g_signal_connect (adjustment, "changed", G_CALLBACK (on_adjustment_changed_cb), area);
        g_signal_connect (adjustment, "value-changed", G_CALLBACK (on_adjustment_value_changed_cb), area);
    }
}

/* Public API */

GtkWidget *
kivo_pannable_area_new (void)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_PANNABLE_AREA, nullptr));
}

void
kivo_pannable_area_add_with_viewport (KivoPannableArea *area, GtkWidget *child)
{
    g_return_if_fail (KIVO_IS_PANNABLE_AREA (area));
    g_return_if_fail (GTK_IS_WIDGET (child));
    g_return_if_fail (gtk_widget_get_parent (child) == NULL);
    GtkWidget *viewport = gtk_viewport_new (nullptr, nullptr);
    gtk_viewport_set_shadow_type (GTK_VIEWPORT (viewport), GTK_SHADOW_NONE);
    gtk_container_add (GTK_CONTAINER (viewport), child);
    if (GTK_IS_CONTAINER (child))
        gtk_container_set_focus_vadjustment (GTK_CONTAINER (child), area->priv->vadjustment.get ());
    gtk_widget_show (viewport);
    gtk_container_add (GTK_CONTAINER (area), viewport);
}

void
kivo_pannable_area_scroll_to (KivoPannableArea *area, gint x, gint y)
{
    g_return_if_fail (KIVO_IS_PANNABLE_AREA (area));
    auto *priv = area->priv;
    stop_animation (area);
    for (auto [offset, a] : { std::pair (x, priv->hadjustment.get ()), std::pair (y, priv->vadjustment.get ()) }) {
        if (offset >= 0)
            gtk_adjustment_set_value (a, CLAMP (offset + a->lower, a->lower, MAX (a->lower, a->upper - a->page_size)));
    }
    priv->hscroll.jump_to (gtk_adjustment_get_value (priv->hadjustment.get ()));
    priv->vscroll.jump_to (gtk_adjustment_get_value (priv->vadjustment.get ()));
    apply_positions (area);
}

void
kivo_pannable_area_scroll_to_child (KivoPannableArea *area, GtkWidget *child)
{
    g_return_if_fail (KIVO_IS_PANNABLE_AREA (area));
    g_return_if_fail (GTK_IS_WIDGET (child));
    GtkWidget *content = gtk_bin_get_child (GTK_BIN (area));
    if (GTK_IS_VIEWPORT (content))
        content = gtk_bin_get_child (GTK_BIN (content));
    int x = 0, y = 0;
    if (!content || !gtk_widget_translate_coordinates (child, content, 0, 0, &x, &y))
        return;
    /* Along each axis: where the child starts before the view, its start
     * goes to the view's start; where it ends past the view, its end goes
     * to the view's end; -1 where it is in view already. */
    auto target = [] (int start, int length, GtkAdjustment *a) {
        if (start < a->value)
            return start;
        if (start + length > a->value + a->page_size)
            return MAX (0, start + length - static_cast<int> (a->page_size));
        return -1;
    };
    kivo_pannable_area_scroll_to (area, target (x, child->allocation.width, area->priv->hadjustment.get ()),
                                  target (y, child->allocation.height, area->priv->vadjustment.get ()));
}

GtkAdjustment *
kivo_pannable_area_get_hadjustment (KivoPannableArea *area)
{
    g_return_val_if_fail (KIVO_IS_PANNABLE_AREA (area), NULL);
    return area->priv->hadjustment.get ();
}

GtkAdjustment *
kivo_pannable_area_get_vadjustment (KivoPannableArea *area)
{
    g_return_val_if_fail (KIVO_IS_PANNABLE_AREA (area), NULL);
    return area->priv->vadjustment.get ();
}

gboolean
kivo_pannable_area_is_moving (KivoPannableArea *area)
{
    g_return_val_if_fail (KIVO_IS_PANNABLE_AREA (area), FALSE);
    return area->priv->animation_id != 0;
}
