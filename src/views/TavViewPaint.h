/* Drawing helpers shared by the month and the week view painters. */
#ifndef TAV_VIEW_PAINT_H
#define TAV_VIEW_PAINT_H

#include <cairo.h>
#include <gtk/gtk.h>

#include <cmath>
#include <string>

namespace tav::views {

/* A rectangle path with the left and the right corners rounded by their own
 * radius (0 for a square side). */
inline void
rounded_rectangle (cairo_t *cr, double x, double y, double w, double h, double r_left, double r_right)
{
    cairo_new_sub_path (cr);
    cairo_arc (cr, x + w - r_right, y + r_right, r_right, -M_PI / 2, 0);
    cairo_arc (cr, x + w - r_right, y + h - r_right, r_right, 0, M_PI / 2);
    cairo_arc (cr, x + r_left, y + h - r_left, r_left, M_PI / 2, M_PI);
    cairo_arc (cr, x + r_left, y + r_left, r_left, M_PI, 3 * M_PI / 2);
    cairo_close_path (cr);
}

/* The string style property @name of @widget; "" where it is unset. */
inline std::string
style_string (GtkWidget *widget, const char *name)
{
    char *value = nullptr;
    gtk_widget_style_get (widget, name, &value, NULL);
    std::string out = value ? value : "";
    g_free (value);
    return out;
}

} // namespace tav::views

#endif /* TAV_VIEW_PAINT_H */
