#include "PointerDriver.h"

#include "KivoPannableArea.h"
#include "TestSupport.h"

#include <X11/extensions/XTest.h>
#include <gdk/gdkx.h>

namespace tav::test {

static Display *xdisplay ()
{
    return GDK_DISPLAY_XDISPLAY (gdk_display_get_default ());
}

bool PointerDriver::available ()
{
    int event_base, error_base, major, minor;
    return have_display () && XTestQueryExtension (xdisplay (), &event_base, &error_base, &major, &minor);
}

/* Sends what XTest queued and lets GTK handle it. */
static void deliver ()
{
    XFlush (xdisplay ());
    flush_events ();
}

void PointerDriver::move_root (int x, int y)
{
    XTestFakeMotionEvent (xdisplay (), -1, x, y, CurrentTime);
    deliver ();
}

void PointerDriver::move_to (GtkWidget *widget, int x, int y)
{
    /* A widget without a window of its own (or a top level) is placed by
     * its allocation within its parent's window. */
    int rx = 0, ry = 0;
    gdk_window_get_origin (widget->window, &rx, &ry);
    if (!gtk_widget_get_has_window (widget) && !GTK_IS_WINDOW (widget)) {
        rx += widget->allocation.x;
        ry += widget->allocation.y;
    }
    move_root (rx + x, ry + y);
}

void PointerDriver::press (guint button)
{
    XTestFakeButtonEvent (xdisplay (), button, True, CurrentTime);
    deliver ();
}

void PointerDriver::release (guint button)
{
    XTestFakeButtonEvent (xdisplay (), button, False, CurrentTime);
    deliver ();
}

void PointerDriver::tap (GtkWidget *widget, int x, int y)
{
    move_to (widget, x, y);
    press (1);
    release (1);
}

void PointerDriver::tap_centre (GtkWidget *widget)
{
    tap (widget, widget->allocation.width / 2, widget->allocation.height / 2);
    flush_events ();
}

void tap_selector_row (KivoTouchSelector *selector, int row, int column)
{
    GtkTreeView *view = GTK_TREE_VIEW (kivo_touch_selector_get_column_view (selector, column));
    GtkTreePath *path = gtk_tree_path_new_from_indices (row, -1);
    GdkRectangle cell;
    gtk_tree_view_get_background_area (view, path, nullptr, &cell);
    gtk_tree_path_free (path);
    int x = 0, y = 0;
    gtk_tree_view_convert_bin_window_to_widget_coords (view, 0, cell.y + cell.height / 2, &x, &y);
    /* The rows scroll inside the column's pannable area, not the tree view. */
    if (GtkWidget *area = gtk_widget_get_ancestor (GTK_WIDGET (view), KIVO_TYPE_PANNABLE_AREA)) {
        GtkAdjustment *adjustment = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
        const double page = gtk_adjustment_get_page_size (adjustment);
        const double value = GTK_WIDGET (view)->allocation.y + y - page / 2;
        gtk_adjustment_set_value (adjustment, CLAMP (value, gtk_adjustment_get_lower (adjustment),
                                                     gtk_adjustment_get_upper (adjustment) - page));
        flush_events ();
    }
    PointerDriver::tap (GTK_WIDGET (view), GTK_WIDGET (view)->allocation.width / 2, y);
    flush_events ();
}

void PointerDriver::drag (GtkWidget *widget, int x0, int y0, int x1, int y1, int steps, int step_ms,
                          bool release_at_end)
{
    move_to (widget, x0, y0);
    press (1);
    for (int i = 1; i <= steps; i++) {
        wait (step_ms);
        move_to (widget, x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps);
    }
    if (release_at_end)
        release (1);
}

void PointerDriver::wait (int ms)
{
    const gint64 end = g_get_monotonic_time () + ms * 1000;
    run_main_loop_until ([end] { return g_get_monotonic_time () >= end; }, ms + 1000);
}

GtkWidget *make_test_window (int width, int height, GtkWidget *child)
{
    GtkWidget *window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size (GTK_WINDOW (window), width, height);
    gtk_window_move (GTK_WINDOW (window), 20, 20);
    if (child) {
        gtk_container_add (GTK_CONTAINER (window), child);
        gtk_widget_show_all (window);
        flush_events ();
    }
    return window;
}

void count_signal (gpointer instance, const char *signal, int *counter)
{
    /* Every handler's first argument is the instance and its last the data;
     * the ones between are not read, so one counting function serves all. */
    g_signal_connect_swapped (instance, signal, G_CALLBACK (+[] (gpointer d) { ++*static_cast<int *> (d); }), counter);
}

} // namespace tav::test
