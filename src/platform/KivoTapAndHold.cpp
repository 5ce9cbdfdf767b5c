/* Touch platform layer - tap-and-hold */

#include "KivoTapAndHold.h"

#include "TavGPtr.h"

#include <gdk/gdkkeysyms.h>
#include <cmath>

namespace {

guint query_signal = 0;
guint hold_signal = 0;
const char kDataKey[] = "kivo-tap-and-hold";
const char kMenuReleaseKey[] = "kivo-tap-and-hold-skip-release";

struct TapAndHold {
    GtkWidget *widget = nullptr;
    tav::GRefPtr<GtkWidget> menu;
    GtkMenuPositionFunc position = nullptr;
    guint flags = 0;
    gulong event_id = 0;
    gulong unmap_id = 0;
    guint timer = 0;
    double press_x = 0.0, press_y = 0.0;
    guint32 press_time = 0;
    bool fired = false; /* the hold fired during the current press */

    ~TapAndHold ()
    {
        cancel ();
        if (widget) {
            g_signal_handler_disconnect (widget, event_id);
            g_signal_handler_disconnect (widget, unmap_id);
        }
    }
    void cancel ()
    {
        if (timer) {
            g_source_remove (timer);
            timer = 0;
        }
    }
};

void
free_tap_and_hold (gpointer data)
{
    auto *tap = static_cast<TapAndHold *> (data);
    /* The widget is being finalized: its handlers are gone already. */
    tap->widget = nullptr;
    delete tap;
}

/* A menu that pops up under a resting finger must not take the release of
 * that same finger as a choice (or as a click outside it). */
gboolean
on_menu_button_release_cb (GtkWidget *menu, GdkEventButton *, gpointer)
{
    if (g_object_get_data (G_OBJECT (menu), kMenuReleaseKey)) {
        g_object_set_data (G_OBJECT (menu), kMenuReleaseKey, nullptr);
        return TRUE;
    }
    return FALSE;
}

void
popup_menu (TapAndHold *tap, guint button, guint32 time)
{
    GtkWidget *menu = tap->menu.get ();
    if (!menu)
        return;
    if (!g_signal_handler_find (menu, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr,
                                reinterpret_cast<gpointer> (on_menu_button_release_cb), nullptr))
        g_signal_connect (menu, "button-release-event", G_CALLBACK (on_menu_button_release_cb), nullptr);
    g_object_set_data (G_OBJECT (menu), kMenuReleaseKey, GINT_TO_POINTER (button != 0));
    if (!gtk_menu_get_attach_widget (GTK_MENU (menu)) && gtk_widget_get_toplevel (tap->widget))
        gtk_menu_set_screen (GTK_MENU (menu), gtk_widget_get_screen (tap->widget));
    gtk_widget_show_all (menu);
    gtk_menu_popup (GTK_MENU (menu), nullptr, nullptr, tap->position, tap->widget, 0, time);
}

/* Emits the query; TRUE when a handler refused. */
bool
query_refused (TapAndHold *tap, GdkEvent *event)
{
    if (tap->flags & KIVO_TAP_AND_HOLD_NO_SIGNALS)
        return false;
    gboolean refused = FALSE;
    g_signal_emit (tap->widget, query_signal, 0, event, &refused);
    return refused;
}

void
fire (TapAndHold *tap, guint button, guint32 time)
{
    tav::GRefPtr<GtkWidget> keep (tap->widget);
    tap->cancel ();
    tap->fired = true;
    if (button == 1) {
        /* The press now belongs to the hold: the widget drops it. */
        GdkWindow *window = tap->widget->window;
        if (window && gtk_widget_get_realized (tap->widget)) {
            GdkEvent *leave = gdk_event_new (GDK_LEAVE_NOTIFY);
            leave->crossing.window = GDK_WINDOW (g_object_ref (window));
            leave->crossing.send_event = TRUE;
            leave->crossing.time = time;
            leave->crossing.x = tap->press_x;
            leave->crossing.y = tap->press_y;
            leave->crossing.mode = GDK_CROSSING_NORMAL;
            leave->crossing.detail = GDK_NOTIFY_NONLINEAR;
            gtk_widget_event (tap->widget, leave);
            gdk_event_free (leave);
        }
    }
    if (!(tap->flags & KIVO_TAP_AND_HOLD_NO_SIGNALS))
        g_signal_emit (tap->widget, hold_signal, 0);
    if (!(tap->flags & KIVO_TAP_AND_HOLD_NO_INTERNALS))
        popup_menu (tap, button, time);
}

gboolean
on_hold_timeout_cb (gpointer data)
{
    auto *tap = static_cast<TapAndHold *> (data);
    tap->timer = 0;
    fire (tap, 1, gtk_get_current_event_time ());
    return FALSE;
}

gboolean
on_widget_event_cb (GtkWidget *, GdkEvent *event, gpointer data)
{
    auto *tap = static_cast<TapAndHold *> (data);
    switch (event->type) {
    case GDK_BUTTON_PRESS:
        tap->cancel ();
        tap->fired = false;
        if (event->button.button == 3) {
            if (!query_refused (tap, event))
                fire (tap, 3, event->button.time);
            return TRUE;
        }
        if (event->button.button != 1)
            return FALSE;
        tap->press_x = event->button.x;
        tap->press_y = event->button.y;
        tap->press_time = event->button.time;
        if (!query_refused (tap, event))
            tap->timer = g_timeout_add (KIVO_TAP_AND_HOLD_DELAY_MS, on_hold_timeout_cb, tap);
        return FALSE;
    case GDK_2BUTTON_PRESS:
    case GDK_3BUTTON_PRESS:
        tap->cancel ();
        return FALSE;
    case GDK_MOTION_NOTIFY:
        if (tap->timer && (std::fabs (event->motion.x - tap->press_x) > KIVO_TAP_AND_HOLD_MOVE_THRESHOLD
                           || std::fabs (event->motion.y - tap->press_y) > KIVO_TAP_AND_HOLD_MOVE_THRESHOLD))
            tap->cancel ();
        return FALSE;
    case GDK_LEAVE_NOTIFY:
        tap->cancel ();
        return FALSE;
    case GDK_BUTTON_RELEASE:
        tap->cancel ();
        if (event->button.button == 3)
            return TRUE;
        if (tap->fired) {
            tap->fired = false;
            return !(tap->flags & KIVO_TAP_AND_HOLD_PASS_PRESS);
        }
        return FALSE;
    case GDK_KEY_PRESS:
        if (event->key.keyval == GDK_Menu
            || (event->key.keyval == GDK_F10 && (event->key.state & GDK_SHIFT_MASK))) {
            tap->cancel ();
            if (!query_refused (tap, event))
                fire (tap, 0, event->key.time);
            tap->fired = false;
            return TRUE;
        }
        return FALSE;
    default:
        return FALSE;
    }
}

void
on_widget_unmap_cb (GtkWidget *, gpointer data)
{
    static_cast<TapAndHold *> (data)->cancel ();
}

__attribute__ ((constructor)) void
register_at_load ()
{
    kivo_tap_and_hold_init ();
}

} // namespace

void
kivo_tap_and_hold_init (void)
{
    static gsize done = 0;
    if (!g_once_init_enter (&done))
        return;
    query_signal = g_signal_new ("tap-and-hold-query", GTK_TYPE_WIDGET, G_SIGNAL_RUN_LAST, 0,
                                 g_signal_accumulator_true_handled, nullptr, nullptr,
                                 G_TYPE_BOOLEAN, 1, GDK_TYPE_EVENT | G_SIGNAL_TYPE_STATIC_SCOPE);
    hold_signal = g_signal_new ("tap-and-hold", GTK_TYPE_WIDGET, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    g_once_init_leave (&done, 1);
}

void
gtk_widget_tap_and_hold_setup (GtkWidget *widget, GtkWidget *menu, GtkMenuPositionFunc callback, guint flags)
{
    g_return_if_fail (GTK_IS_WIDGET (widget));
    g_return_if_fail (menu == NULL || GTK_IS_MENU (menu));
    kivo_tap_and_hold_init ();

    auto *tap = static_cast<TapAndHold *> (g_object_get_data (G_OBJECT (widget), kDataKey));
    if (!tap) {
        tap = new TapAndHold ();
        tap->widget = widget;
        gtk_widget_add_events (widget, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK
                                       | GDK_LEAVE_NOTIFY_MASK | GDK_KEY_PRESS_MASK);
        tap->event_id = g_signal_connect (widget, "event", G_CALLBACK (on_widget_event_cb), tap);
        tap->unmap_id = g_signal_connect (widget, "unmap", G_CALLBACK (on_widget_unmap_cb), tap);
        g_object_set_data_full (G_OBJECT (widget), kDataKey, tap, free_tap_and_hold);
    }
    if (menu)
        g_object_ref_sink (menu);
    tap->menu = menu ? tav::adoptGRef (menu) : tav::GRefPtr<GtkWidget> ();
    tap->position = callback;
    tap->flags = flags;
}

void
kivo_widget_tap_and_hold_remove (GtkWidget *widget)
{
    g_return_if_fail (GTK_IS_WIDGET (widget));
    auto *tap = static_cast<TapAndHold *> (g_object_steal_data (G_OBJECT (widget), kDataKey));
    delete tap;
}
