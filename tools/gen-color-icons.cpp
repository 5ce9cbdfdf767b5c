/* Draws the calendar colour marker icons.
 *
 * Usage: gen-color-icons OUTPUT_ROOT
 * Writes OUTPUT_ROOT/48x48/kivo/calendar_colors_<nick>.png,
 *        OUTPUT_ROOT/64x64/kivo/calendar_colors_<nick>.png and
 *        OUTPUT_ROOT/scalable/kivo/calendar_colors_allday_<nick>.png
 * for the ten calendar colours, and the lists' OUTPUT_ROOT/48x48/kivo/general_add.png
 * and OUTPUT_ROOT/16x16/kivo/calendar_alarm.png.
 */

#include <cairo.h>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "TavCalendarColors.h"

namespace {

void rounded_rect (cairo_t *cr, double x, double y, double w, double h, double r)
{
    cairo_new_sub_path (cr);
    cairo_arc (cr, x + w - r, y + r, r, -M_PI / 2, 0);
    cairo_arc (cr, x + w - r, y + h - r, r, 0, M_PI / 2);
    cairo_arc (cr, x + r, y + h - r, r, M_PI / 2, M_PI);
    cairo_arc (cr, x + r, y + r, r, M_PI, 3 * M_PI / 2);
    cairo_close_path (cr);
}

/* A square marker: a rounded square in the colour with a soft top light and
 * a darker rim, so that white and yellow stay visible on a light theme. */
bool draw_marker (const std::string &path, int size, const tav::CalendarRgb &c)
{
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_ARGB32, size, size);
    cairo_t *cr = cairo_create (surface);
    const double inset = size * 0.125, side = size - 2 * inset, radius = size * 0.14;
    const double r = c.r / 255.0, g = c.g / 255.0, b = c.b / 255.0;

    rounded_rect (cr, inset, inset, side, side, radius);
    cairo_pattern_t *fill = cairo_pattern_create_linear (0, inset, 0, inset + side);
    cairo_pattern_add_color_stop_rgb (fill, 0, std::fmin (1, r * 1.12 + 0.04), std::fmin (1, g * 1.12 + 0.04),
                                      std::fmin (1, b * 1.12 + 0.04));
    cairo_pattern_add_color_stop_rgb (fill, 1, r * 0.9, g * 0.9, b * 0.9);
    cairo_set_source (cr, fill);
    cairo_fill_preserve (cr);
    cairo_pattern_destroy (fill);
    cairo_set_source_rgba (cr, r * 0.55, g * 0.55, b * 0.55, 0.9);
    cairo_set_line_width (cr, std::fmax (1.0, size / 32.0));
    cairo_stroke (cr);

    cairo_destroy (cr);
    bool ok = cairo_surface_write_to_png (surface, path.c_str ()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy (surface);
    return ok;
}

/* The all-day bar background: a wide pill in the colour. */
bool draw_allday (const std::string &path, int width, int height, const tav::CalendarRgb &c)
{
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_ARGB32, width, height);
    cairo_t *cr = cairo_create (surface);
    const double r = c.r / 255.0, g = c.g / 255.0, b = c.b / 255.0;
    rounded_rect (cr, 2, height * 0.15, width - 4, height * 0.7, height * 0.18);
    cairo_set_source_rgba (cr, r, g, b, 0.92);
    cairo_fill_preserve (cr);
    cairo_set_source_rgba (cr, r * 0.6, g * 0.6, b * 0.6, 1);
    cairo_set_line_width (cr, 1.5);
    cairo_stroke (cr);
    cairo_destroy (cr);
    bool ok = cairo_surface_write_to_png (surface, path.c_str ()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy (surface);
    return ok;
}

/* Writes @surface to @path and releases it. */
bool save_png (cairo_surface_t *surface, const std::string &path)
{
    bool ok = cairo_surface_write_to_png (surface, path.c_str ()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy (surface);
    return ok;
}

/* "Add": a white plus on a blue disc. */
bool draw_add (const std::string &path, int size)
{
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_ARGB32, size, size);
    cairo_t *cr = cairo_create (surface);
    const double c = size / 2.0;
    cairo_arc (cr, c, c, size * 0.42, 0, 2 * M_PI);
    cairo_set_source_rgb (cr, 0.118, 0.533, 0.898);
    cairo_fill (cr);
    cairo_set_source_rgb (cr, 1, 1, 1);
    cairo_set_line_width (cr, size * 0.1);
    cairo_set_line_cap (cr, CAIRO_LINE_CAP_ROUND);
    cairo_move_to (cr, c, size * 0.27);
    cairo_line_to (cr, c, size * 0.73);
    cairo_move_to (cr, size * 0.27, c);
    cairo_line_to (cr, size * 0.73, c);
    cairo_stroke (cr);
    cairo_destroy (cr);
    return save_png (surface, path);
}

/* The alarm mark: a bell in warm yellow. */
bool draw_alarm (const std::string &path, int size)
{
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_ARGB32, size, size);
    cairo_t *cr = cairo_create (surface);
    cairo_scale (cr, size / 16.0, size / 16.0);
    cairo_move_to (cr, 2, 12.5);
    cairo_curve_to (cr, 3.5, 11, 3.5, 9.5, 3.5, 7);
    cairo_curve_to (cr, 3.5, 4, 5.5, 2.2, 8, 2.2);
    cairo_curve_to (cr, 10.5, 2.2, 12.5, 4, 12.5, 7);
    cairo_curve_to (cr, 12.5, 9.5, 12.5, 11, 14, 12.5);
    cairo_close_path (cr);
    cairo_set_source_rgb (cr, 1.0, 0.78, 0.2);
    cairo_fill (cr);
    cairo_arc (cr, 8, 13.6, 1.8, 0, 2 * M_PI);
    cairo_fill (cr);
    cairo_destroy (cr);
    return save_png (surface, path);
}

} // namespace

int main (int argc, char **argv)
{
    if (argc != 2) {
        fprintf (stderr, "usage: %s OUTPUT_ROOT\n", argv[0]);
        return 2;
    }
    const std::string root = argv[1];
    for (const char *dir : { "16x16/kivo", "48x48/kivo", "64x64/kivo", "scalable/kivo" }) {
        std::error_code error;
        std::filesystem::create_directories (root + "/" + dir, error);
    }

    for (const auto &color : tav::kCalendarPalette) {
        const std::string name = std::string ("calendar_colors_") + color.nick + ".png";
        if (!draw_marker (root + "/48x48/kivo/" + name, 48, color) ||
            !draw_marker (root + "/64x64/kivo/" + name, 64, color) ||
            !draw_allday (root + "/scalable/kivo/calendar_colors_allday_" + color.nick + ".png", 102, 48, color)) {
            fprintf (stderr, "%s: cannot write icons under %s\n", argv[0], root.c_str ());
            return 1;
        }
    }
    if (!draw_add (root + "/48x48/kivo/general_add.png", 48) ||
        !draw_alarm (root + "/16x16/kivo/calendar_alarm.png", 16)) {
        fprintf (stderr, "%s: cannot write icons under %s\n", argv[0], root.c_str ());
        return 1;
    }
    return 0;
}
