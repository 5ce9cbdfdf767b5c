/* libcalendarui - the row painter of the agenda and the day view
 *
 * The list is a dark page (the colour of the views' headers) holding one
 * card per day's group: rounded at the group's first and last row, a
 * calendar-colour bar at the left of each entry, the time column, then
 * the title over the location and description. Date headers stand between
 * the cards; today's sits on the accent blue.
 */

#include "TavEntryRowPainter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <pango/pangocairo.h>

#include "TavCalendarColors.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavPaths.h"
#include "TavViewPaint.h"

namespace tav::rows {

namespace {

struct Rgb {
    double r, g, b;
};

constexpr Rgb kPage { 0.122, 0.157, 0.200 };       /* #1f2833, the host bar */
constexpr Rgb kCard { 0.176, 0.231, 0.282 };       /* #2d3b48, the week header */
constexpr Rgb kCardLine { 0.235, 0.294, 0.353 };
constexpr Rgb kPressed { 0.118, 0.533, 0.898 };    /* accent blue */
constexpr Rgb kAccent { 0.118, 0.533, 0.898 };
constexpr int kRowHeight = 70;
constexpr int kHeaderHeight = 40;
constexpr int kPinnedHeight = 34;
constexpr int kRadius = 10;
constexpr int kTimeColumn = 96;

void set_source (cairo_t *cr, const Rgb &c, double alpha = 1.0)
{
    cairo_set_source_rgba (cr, c.r, c.g, c.b, alpha);
}

Rgb named_color (GtkWidget *widget, const std::string &name, const Rgb &fallback)
{
    GdkColor color;
    if (!name.empty () && gdk_color_parse (name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    if (!name.empty () && widget->style && gtk_style_lookup_color (widget->style, name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    return fallback;
}

/* A theme font at @scale of its size; the family falls back to a common
 * one where the handheld's font is missing. */
GUniquePtr<PangoFontDescription> font_of (const std::string &name, double scale, bool bold = false)
{
    PangoFontDescription *desc = pango_font_description_from_string (name.empty () ? "Sans 12" : name.c_str ());
    std::string families = pango_font_description_get_family (desc) ? pango_font_description_get_family (desc) : "";
    families += ",DejaVu Sans,Sans";
    pango_font_description_set_family (desc, families.c_str ());
    const int size = pango_font_description_get_size (desc);
    pango_font_description_set_size (desc, static_cast<int> ((size > 0 ? size : 12 * PANGO_SCALE) * scale));
    if (bold)
        pango_font_description_set_weight (desc, PANGO_WEIGHT_BOLD);
    return GUniquePtr<PangoFontDescription> (desc);
}

/* One line of text at (@x, @y) ellipsized to @width; returns its height. */
int text_line (cairo_t *cr, const PangoFontDescription *font, const char *text, bool markup, const Rgb &color,
               double x, double y, int width, PangoAlignment align = PANGO_ALIGN_LEFT)
{
    if (!text || !*text)
        return 0;
    GRefPtr<PangoLayout> layout = adoptGRef (pango_cairo_create_layout (cr));
    pango_layout_set_font_description (layout.get (), font);
    /* Text from outside (a header title handed to the view) may be broken
     * markup or invalid UTF-8: show it as repaired plain text. */
    const bool valid = g_utf8_validate (text, -1, NULL);
    if (markup && valid && pango_parse_markup (text, -1, 0, NULL, NULL, NULL, NULL)) {
        pango_layout_set_markup (layout.get (), text, -1);
    } else if (valid) {
        pango_layout_set_text (layout.get (), text, -1);
    } else {
        GCharPtr repaired (g_utf8_make_valid (text, -1));
        pango_layout_set_text (layout.get (), repaired.get (), -1);
    }
    pango_layout_set_single_paragraph_mode (layout.get (), TRUE);
    pango_layout_set_ellipsize (layout.get (), PANGO_ELLIPSIZE_END);
    pango_layout_set_width (layout.get (), std::max (1, width) * PANGO_SCALE);
    pango_layout_set_alignment (layout.get (), align);
    int w = 0, h = 0;
    pango_layout_get_pixel_size (layout.get (), &w, &h);
    set_source (cr, color);
    cairo_move_to (cr, x, y);
    pango_cairo_show_layout (cr, layout.get ());
    return h;
}

int text_height (cairo_t *cr, const PangoFontDescription *font)
{
    GRefPtr<PangoLayout> layout = adoptGRef (pango_cairo_create_layout (cr));
    pango_layout_set_font_description (layout.get (), font);
    pango_layout_set_text (layout.get (), "Ag", -1);
    int w = 0, h = 0;
    pango_layout_get_pixel_size (layout.get (), &w, &h);
    return h;
}

/* The card piece of one row: rounded at the top for the first row of a
 * group, at the bottom for the last, a hairline between rows. */
void draw_card (cairo_t *cr, double w, int detail)
{
    const bool top = detail == 0 || detail == 3;
    const bool bottom = detail == 2 || detail == 3;
    set_source (cr, kPage);
    cairo_paint (cr);
    const double r = kRadius;
    const double h = kRowHeight - (bottom ? 4 : 0);
    cairo_new_path (cr);
    cairo_move_to (cr, 0, top ? r : 0);
    if (top) {
        cairo_arc (cr, r, r, r, M_PI, 3 * M_PI / 2);
        cairo_arc (cr, w - r, r, r, 3 * M_PI / 2, 2 * M_PI);
    } else {
        cairo_line_to (cr, w, 0);
    }
    if (bottom) {
        cairo_arc (cr, w - r, h - r, r, 0, M_PI / 2);
        cairo_arc (cr, r, h - r, r, M_PI / 2, M_PI);
    } else {
        cairo_line_to (cr, w, h);
        cairo_line_to (cr, 0, h);
    }
    cairo_close_path (cr);
    set_source (cr, detail == 4 ? kPressed : kCard);
    cairo_fill (cr);
    if (!top && detail != 4) {
        set_source (cr, kCardLine);
        cairo_rectangle (cr, kTimeColumn - 8, 0, w - kTimeColumn - 8, 1);
        cairo_fill (cr);
    }
}

void string_style (GtkWidgetClass *klass, const char *name, const char *nick, const char *blurb, const char *def)
{
    gtk_widget_class_install_style_property (klass, g_param_spec_string (name, nick, blurb, def, G_PARAM_READABLE));
}

std::string icon_path (const std::string &folder, const std::string &file)
{
    if (file.empty ())
        return std::string ();
    GCharPtr path (g_build_filename (tav_icon_dir (), folder.c_str (), file.c_str (), NULL));
    return path.get ();
}

/* The task and birthday marks when the theme has no icon for them. */
void draw_mark (cairo_t *cr, const PaintRow &row, double cx, double cy)
{
    cairo_set_line_width (cr, 2.5);
    if (row.is_task) {
        cairo_set_source_rgb (cr, 0.85, 0.88, 0.92);
        views::rounded_rectangle (cr, cx - 11, cy - 11, 22, 22, 4, 4);
        cairo_stroke (cr);
        if (row.done) {
            set_source (cr, kAccent);
            cairo_move_to (cr, cx - 6, cy);
            cairo_line_to (cr, cx - 1, cy + 5);
            cairo_line_to (cr, cx + 7, cy - 6);
            cairo_stroke (cr);
        }
        return;
    }
    /* A birthday: a small cake with a candle. */
    cairo_set_source_rgb (cr, 0.96, 0.62, 0.74);
    views::rounded_rectangle (cr, cx - 12, cy - 2, 24, 13, 3, 3);
    cairo_fill (cr);
    cairo_set_source_rgb (cr, 1, 0.85, 0.35);
    cairo_rectangle (cr, cx - 1.5, cy - 11, 3, 8);
    cairo_fill (cr);
    cairo_arc (cr, cx, cy - 13, 2.5, 0, 2 * M_PI);
    cairo_fill (cr);
}

} // namespace

void install_style_properties (GtkWidgetClass *klass, bool with_no_entries_font)
{
    string_style (klass, "header-font-color", "Header font color", "The font color for the widget header.", "Grey");
    if (with_no_entries_font)
        string_style (klass, "font-no-entries", "Font name for No entries label",
                      "The name of the font used on the No Entries label.", "Velda Sans 26 ");
    string_style (klass, "font-header", "Font name for header", "The name of the font used on the header.",
                  "Velda Sans Bold 13");
    string_style (klass, "font-icon-normal", "Normal font name for icons",
                  "The name of the normal font used inside the icon.", "Velda Sans 13");
    string_style (klass, "font-icon-small", "Small font name for icons",
                  "The name of the small font used inside the icon.", "Velda Sans 9");
    string_style (klass, "title-font-color", "Title font color", "The font color for the entry titles.", "White");
    string_style (klass, "color-button-font-color", "button text font color",
                  "The font color for the text in color button.", "Black");
    string_style (klass, "font-title", "Font name for title", "The name of the font used on the title of the entries.",
                  "Velda Sans 18");
    string_style (klass, "description-font-color", "Description font color",
                  "The font color for the entry description.", "LightGrey");
    string_style (klass, "font-description", "Font name for description",
                  "The name of the font used on the description of the entries.", "Velda Sans 13");
    string_style (klass, "location-font-color", "Location font color", "The font color for the entry location.",
                  "LightGrey");
    string_style (klass, "font-location", "Font name for description",
                  "The name of the font used on the description of the entries.", "Velda Sans 13");
    string_style (klass, "icon-todo-entry-file", "Todo image file", "The image file for todo.", "calendar_todo.png");
    string_style (klass, "icon-bg-new-file", "New image file", "The image file for new button.", "general_add.png");
    string_style (klass, "icon-bday-event-file", "bday calendar image file", "The image file for bday event.",
                  "calendar_birthday.png");
    string_style (klass, "icon-alarm-file", "alarm image file", "The image file for alarm.", "calendar_alarm.png");
    gtk_widget_class_install_style_property_parser (
        klass,
        g_param_spec_value_array ("detail-filenames", "EntryBackgrounds", "An array of different backgrounds for rows",
                                  g_param_spec_string ("detail-filename", "EntryBackground", "Background of a row",
                                                       NULL, G_PARAM_READABLE),
                                  G_PARAM_READABLE),
        string_array_property_parser);
}

void read_theme (GtkWidget *widget, Theme &theme, bool with_no_entries_font)
{
    using views::style_string;
    theme.header_font_color = style_string (widget, "header-font-color");
    theme.font_no_entries = with_no_entries_font ? style_string (widget, "font-no-entries") : "Velda Sans 26";
    theme.font_header = style_string (widget, "font-header");
    theme.font_icon_normal = style_string (widget, "font-icon-normal");
    theme.font_icon_small = style_string (widget, "font-icon-small");
    theme.title_font_color = style_string (widget, "title-font-color");
    theme.color_button_font_color = style_string (widget, "color-button-font-color");
    theme.font_title = style_string (widget, "font-title");
    theme.description_font_color = style_string (widget, "description-font-color");
    theme.font_description = style_string (widget, "font-description");
    theme.location_font_color = style_string (widget, "location-font-color");
    theme.font_location = style_string (widget, "font-location");
    theme.icon_todo = icon_path ("48x48/kivo", style_string (widget, "icon-todo-entry-file"));
    theme.icon_new = icon_path ("48x48/kivo", style_string (widget, "icon-bg-new-file"));
    theme.icon_bday = icon_path ("48x48/kivo", style_string (widget, "icon-bday-event-file"));
    theme.icon_alarm = icon_path ("16x16/kivo", style_string (widget, "icon-alarm-file"));
    theme.detail_files.clear ();
    GValueArray *files = nullptr;
    gtk_widget_style_get (widget, "detail-filenames", &files, NULL);
    for (guint i = 0; files && i < files->n_values; i++) {
        const char *name = g_value_get_string (g_value_array_get_nth (files, i));
        GCharPtr path (g_build_filename (tav_theme_dir (), name ? name : "", NULL));
        theme.detail_files.emplace_back (name ? path.get () : "");
    }
    if (files)
        g_value_array_free (files);
}

GdkPixmap *detail_pixmap (GdkDrawable *like, GdkPixmap **pixmaps, gchar **images, int visible_width, int *last_width,
                          int detail, const char *func)
{
    if (visible_width != *last_width && *last_width != 0) {
        for (int i = 0; i < 5; i++)
            if (pixmaps[i]) {
                g_object_unref (pixmaps[i]);
                pixmaps[i] = nullptr;
            }
    }
    *last_width = visible_width;
    if (detail < 0 || detail > 4 || visible_width <= 0)
        return nullptr;
    if (!pixmaps[detail]) {
        TAV_MESSAGE_AS (func, "Creating detail %d", detail);
        GdkPixbuf *image = images[detail] && g_file_test (images[detail], G_FILE_TEST_IS_REGULAR)
                               ? tav_create_pixbuf (images[detail], visible_width, kRowHeight)
                               : nullptr;
        if (image) {
            gdk_pixbuf_render_pixmap_and_mask (image, &pixmaps[detail], NULL, 0);
            g_object_unref (image);
        } else if (like) {
            /* No theme image: draw the card once at this width. */
            pixmaps[detail] = gdk_pixmap_new (like, visible_width, kRowHeight, -1);
            cairo_t *cr = gdk_cairo_create (pixmaps[detail]);
            draw_card (cr, visible_width, detail);
            cairo_destroy (cr);
        }
    }
    return pixmaps[detail];
}

void paint_page (cairo_t *cr, const GdkRectangle &area, GdkPixmap *image)
{
    cairo_save (cr);
    cairo_rectangle (cr, area.x, area.y, area.width, area.height);
    if (image) {
        gdk_cairo_set_source_pixmap (cr, image, 0, 0);
        cairo_pattern_set_extend (cairo_get_source (cr), CAIRO_EXTEND_REPEAT);
    } else {
        set_source (cr, kPage);
    }
    cairo_fill (cr);
    cairo_restore (cr);
}

static void paint_header_text (GtkWidget *widget, cairo_t *cr, const Theme &theme, const PaintRow &row)
{
    const GdkRectangle &r = row.rect;
    auto font = font_of (theme.font_header, 0.85, true);
    const Rgb grey = named_color (widget, theme.header_font_color, Rgb { 0.75, 0.75, 0.75 });
    const int h = text_height (cr, font.get ());
    if (row.today) {
        /* Today's header on an accent pill. */
        GRefPtr<PangoLayout> layout = adoptGRef (pango_cairo_create_layout (cr));
        pango_layout_set_font_description (layout.get (), font.get ());
        const char *title = row.title ? row.title : "";
        if (g_utf8_validate (title, -1, NULL) && pango_parse_markup (title, -1, 0, NULL, NULL, NULL, NULL))
            pango_layout_set_markup (layout.get (), title, -1);
        else
            pango_layout_set_text (layout.get (), "", -1);
        int w = 0, th = 0;
        pango_layout_get_pixel_size (layout.get (), &w, &th);
        set_source (cr, kAccent);
        views::rounded_rectangle (cr, r.x - 4, r.y + (r.height - th) / 2.0 - 4, w + 20, th + 8, (th + 8) / 2.0,
                                  (th + 8) / 2.0);
        cairo_fill (cr);
        text_line (cr, font.get (), row.title, true, Rgb { 1, 1, 1 }, r.x + 6, r.y + (r.height - th) / 2.0,
                   r.width);
        return;
    }
    text_line (cr, font.get (), row.title, true, grey, r.x + 2, r.y + (r.height - h) / 2.0 + 2, r.width);
}

void paint_row (GtkWidget *widget, cairo_t *cr, const Theme &theme, const PaintRow &row)
{
    const GdkRectangle &r = row.rect;
    switch (row.kind) {
    case PaintRow::Header:
        paint_header_text (widget, cr, theme, row);
        return;
    case PaintRow::NoEntries: {
        auto font = font_of (theme.font_no_entries, 0.6);
        const Rgb color = named_color (widget, theme.description_font_color, Rgb { 0.83, 0.83, 0.83 });
        const int h = text_height (cr, font.get ());
        text_line (cr, font.get (), row.title, false, color, r.x, r.y + (r.height - h) / 2.0, r.width,
                   PANGO_ALIGN_CENTER);
        return;
    }
    case PaintRow::Button: {
        /* A dashed outline strip with a round "+" and the label, in the
         * lower part of the row: a jump to the date leaves the row's top
         * under the pinned header, and the strip shows whole below it. */
        const double y = r.y + kPinnedHeight + 3, h = r.height - kPinnedHeight - 5;
        views::rounded_rectangle (cr, r.x + 1, y, r.width - 2, h, kRadius, kRadius);
        set_source (cr, row.pressed ? kPressed : kCard, row.pressed ? 1.0 : 0.5);
        cairo_fill_preserve (cr);
        const double dash[] = { 6, 4 };
        cairo_set_dash (cr, dash, 2, 0);
        cairo_set_line_width (cr, 1.5);
        cairo_set_source_rgba (cr, 1, 1, 1, 0.35);
        cairo_stroke (cr);
        cairo_set_dash (cr, nullptr, 0, 0);
        const double cx = r.x + kTimeColumn / 2.0, cy = y + h / 2;
        if (row.icon) {
            gdk_cairo_set_source_pixbuf (cr, row.icon, cx - gdk_pixbuf_get_width (row.icon) / 2.0,
                                         cy - gdk_pixbuf_get_height (row.icon) / 2.0);
            cairo_paint (cr);
        } else {
            set_source (cr, row.pressed ? Rgb { 1, 1, 1 } : kAccent);
            cairo_arc (cr, cx, cy, 12, 0, 2 * M_PI);
            cairo_fill (cr);
            set_source (cr, row.pressed ? kAccent : Rgb { 1, 1, 1 });
            cairo_rectangle (cr, cx - 7, cy - 1.5, 14, 3);
            cairo_rectangle (cr, cx - 1.5, cy - 7, 3, 14);
            cairo_fill (cr);
        }
        auto font = font_of (theme.font_title, 0.75);
        const int th = text_height (cr, font.get ());
        text_line (cr, font.get (), row.title, false, named_color (widget, theme.title_font_color, Rgb { 1, 1, 1 }),
                   r.x + kTimeColumn, cy - th / 2.0, r.width - kTimeColumn - 12);
        return;
    }
    case PaintRow::Entry:
        break;
    }

    if (row.background) {
        gdk_cairo_set_source_pixmap (cr, row.background, r.x, r.y);
        cairo_rectangle (cr, r.x, r.y, r.width, r.height);
        cairo_fill (cr);
    }
    const CalendarRgb &c = calendar_rgb (row.color);
    cairo_set_source_rgb (cr, c.r / 255.0, c.g / 255.0, c.b / 255.0);
    views::rounded_rectangle (cr, r.x + 8, r.y + 10, 5, r.height - 20, 2.5, 2.5);
    cairo_fill (cr);

    const Rgb title_color = named_color (widget, theme.title_font_color, Rgb { 1, 1, 1 });
    const Rgb location_color = named_color (widget, theme.location_font_color, Rgb { 0.83, 0.83, 0.83 });
    const Rgb description_color = named_color (widget, theme.description_font_color, Rgb { 0.83, 0.83, 0.83 });

    /* The time column, or the task/birthday mark. */
    const double tx = r.x + 22;
    if (row.icon || row.is_task || row.is_birthday || !row.start_text || !*row.start_text) {
        const double cx = tx + (kTimeColumn - 30) / 2.0, cy = r.y + r.height / 2.0;
        if (row.icon) {
            gdk_cairo_set_source_pixbuf (cr, row.icon, cx - gdk_pixbuf_get_width (row.icon) / 2.0,
                                         cy - gdk_pixbuf_get_height (row.icon) / 2.0);
            cairo_paint (cr);
        } else {
            draw_mark (cr, row, cx, cy);
        }
    } else {
        auto time_font = font_of (theme.font_description, 0.95, true);
        auto end_font = font_of (theme.font_description, 0.85);
        const int h1 = text_height (cr, time_font.get ());
        const int h2 = row.end_text && *row.end_text ? text_height (cr, end_font.get ()) : 0;
        double y = r.y + (r.height - h1 - h2) / 2.0;
        text_line (cr, time_font.get (), row.start_text, false, title_color, tx, y, kTimeColumn - 26);
        text_line (cr, end_font.get (), row.end_text, false, description_color, tx, y + h1, kTimeColumn - 26);
    }

    /* Title over location and description. */
    const double x = r.x + kTimeColumn;
    const int width = r.width - kTimeColumn - (row.alarm ? 40 : 12);
    auto title_font = font_of (theme.font_title, 0.8);
    auto small_font = font_of (theme.font_location, 0.85);
    std::string detail;
    if (row.location && *row.location)
        detail = row.location;
    if (row.description && *row.description) {
        std::string first_line (row.description, strcspn (row.description, "\n"));
        detail += (detail.empty () ? "" : "  \xc2\xb7  ") + first_line;
    }
    const int h1 = text_height (cr, title_font.get ());
    const int h2 = detail.empty () ? 0 : text_height (cr, small_font.get ());
    const double y = r.y + (r.height - 4 - h1 - h2) / 2.0;
    const Rgb shown_title = row.done ? description_color : title_color;
    text_line (cr, title_font.get (), row.title && *row.title ? row.title : "", false, shown_title, x, y, width);
    if (row.done) {
        cairo_set_source_rgba (cr, shown_title.r, shown_title.g, shown_title.b, 0.8);
        cairo_rectangle (cr, x, y + h1 / 2.0, std::min (width, 160), 1.2);
        cairo_fill (cr);
    }
    if (row.alarm) {
        /* A small bell at the card's right edge. */
        const double bx = r.x + r.width - 24, by = r.y + 16;
        cairo_set_source_rgba (cr, location_color.r, location_color.g, location_color.b, 0.9);
        cairo_move_to (cr, bx - 6, by + 8);
        cairo_curve_to (cr, bx - 6, by - 4, bx + 6, by - 4, bx + 6, by + 8);
        cairo_close_path (cr);
        cairo_fill (cr);
        cairo_rectangle (cr, bx - 7.5, by + 7, 15, 2);
        cairo_fill (cr);
        cairo_arc (cr, bx, by + 11, 2, 0, 2 * M_PI);
        cairo_fill (cr);
    }
    if (!detail.empty ())
        text_line (cr, small_font.get (), detail.c_str (), false,
                   (row.location && *row.location) ? location_color : description_color, x, y + h1, width);
}

void paint_pinned_header (GtkWidget *widget, cairo_t *cr, const Theme &theme, const PaintRow &row, int width)
{
    cairo_save (cr);
    GdkRectangle band = { 0, row.rect.y, width, kPinnedHeight };
    cairo_rectangle (cr, band.x, band.y, band.width, band.height);
    set_source (cr, kPage, 0.96);
    cairo_fill (cr);
    cairo_rectangle (cr, 0, band.y + band.height - 1, width, 1);
    set_source (cr, kCardLine);
    cairo_fill (cr);
    PaintRow pinned = row;
    pinned.rect.height = kPinnedHeight;
    paint_header_text (widget, cr, theme, pinned);
    cairo_restore (cr);
}

} // namespace tav::rows
