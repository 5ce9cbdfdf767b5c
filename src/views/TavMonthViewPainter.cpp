/* libcalendarui - painting of the month view (internal)
 *
 * The look: a dark page with slightly lighter day cells separated by thin
 * gaps; days of other months recede into the page; today's number sits in an
 * amber disc. Multi-day and all-day events are coloured bars in the three
 * lanes at the top of each cell, running on as one bar across the days of a
 * week and ending open at a row end when the event goes on in the next row.
 * Timed events are one line each: a dot of their calendar colour, the start
 * time and the title. Theme images replace the cell and week backgrounds and
 * the icons when the theme directory has them.
 */
#include "TavMonthViewPainter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "TavCalendarColors.h"
#include "TavHelper.h"
#include "TavLog.h"
#include "TavPaths.h"
#include "TavViewPaint.h"

namespace tav {

namespace {

using views::rounded_rectangle;

constexpr MonthRgb kPage { 0.086, 0.110, 0.149 };
constexpr MonthRgb kHeader { 0.067, 0.086, 0.118 };
constexpr MonthRgb kCellThis { 0.137, 0.169, 0.220 };
constexpr MonthRgb kCellOther { 0.102, 0.125, 0.161 };
constexpr MonthRgb kPressed { 0.184, 0.427, 0.710 };
constexpr MonthRgb kToday { 1.000, 0.702, 0.000 };
constexpr MonthRgb kTaskMark { 0.486, 0.773, 0.463 };
constexpr MonthRgb kBirthdayMark { 0.941, 0.384, 0.573 };

void
set_rgb (cairo_t *cr, const MonthRgb &c, double alpha = 1.0)
{
    cairo_set_source_rgba (cr, c.r, c.g, c.b, alpha);
}

MonthRgb
palette_rgb (int color)
{
    if (color < 0 || color > 9)
        TAV_WARNING_AS ("tav_calendar_paint", "Unhandled color code: %d", color);
    const CalendarRgb &c = calendar_rgb (color);
    return { c.r / 255.0, c.g / 255.0, c.b / 255.0 };
}

/* Dark text on light calendar colours (yellow, white), white on the rest. */
MonthRgb
text_on (const MonthRgb &c)
{
    const double luminance = 0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b;
    return luminance > 0.55 ? MonthRgb { 0.08, 0.08, 0.08 } : MonthRgb { 1, 1, 1 };
}

MonthRgb
lighter (const MonthRgb &c, double amount)
{
    return { c.r + (1 - c.r) * amount, c.g + (1 - c.g) * amount, c.b + (1 - c.b) * amount };
}

MonthRgb
style_color (GtkWidget *widget, const char *property)
{
    const std::string name = views::style_string (widget, property);
    GdkColor color {};
    if (!name.empty () && gdk_color_parse (name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    return { 1, 1, 1 };
}

void
load_style_image (ThemeImage &image, GtkWidget *widget, const char *property)
{
    char *file = NULL;
    gtk_widget_style_get (widget, property, &file, NULL);
    image.load (file);
    g_free (file);
}

GUniquePtr<PangoFontDescription>
theme_font (GtkWidget *widget, const char *style_name)
{
    GtkStyle *style = gtk_rc_get_style_by_paths (gtk_widget_get_settings (widget), style_name, NULL, G_TYPE_NONE);
    if (style && style->font_desc)
        return GUniquePtr<PangoFontDescription> (pango_font_description_copy (style->font_desc));
    return GUniquePtr<PangoFontDescription> (pango_font_description_from_string ("Velda Sans 14"));
}

/* Text drawing through the cache of laid-out texts. */
class TextPainter {
public:
    TextPainter (cairo_t *cr, PangoContext *context, MonthPaintCache &cache)
        : m_cr (cr), m_context (context), m_cache (cache)
    {
        /* Bounded: a month shows a few hundred different texts. */
        if (m_cache.texts.size () > 4096)
            m_cache.texts.clear ();
    }

    void set_font (const PangoFontDescription *base, double pixels, bool bold)
    {
        m_base = base;
        m_pixels = std::max (6.0, std::round (pixels * 4) / 4);
        m_bold = bold;
        m_font_key = std::to_string (reinterpret_cast<uintptr_t> (base)) + ":" + std::to_string (m_pixels) +
                     (bold ? "b" : "n");
    }

    /* Draws @text in the box, aligned by @xalign and centred vertically,
     * ellipsized when it is wider than the box. Returns the text's width. */
    int draw (const char *text, double x, double y, double w, double h, double xalign = 0.0,
              double yalign = 0.5)
    {
        const MonthPaintCache::Text &natural = lookup (text, -1);
        const MonthPaintCache::Text *shown = &natural;
        if (natural.width > w)
            shown = &lookup (text, (int) std::max (1.0, w));
        else
            x += (w - natural.width) * xalign;
        cairo_move_to (m_cr, x, y + (h - shown->height) * yalign);
        pango_cairo_show_layout (m_cr, shown->layout.get ());
        return std::min<int> (shown->width, (int) w);
    }

    int width_of (const char *text) { return lookup (text, -1).width; }

private:
    const MonthPaintCache::Text &lookup (const char *text, int width)
    {
        std::string key = m_font_key;
        key += '|';
        key += std::to_string (width);
        key += '|';
        key += text;
        auto found = m_cache.texts.find (key);
        if (found != m_cache.texts.end ())
            return found->second;
        PangoLayout *layout = pango_layout_new (m_context);
        GUniquePtr<PangoFontDescription> font (pango_font_description_copy (m_base));
        pango_font_description_set_absolute_size (font.get (), m_pixels * PANGO_SCALE);
        pango_font_description_set_weight (font.get (), m_bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_layout_set_font_description (layout, font.get ());
        pango_layout_set_text (layout, text, -1);
        if (width > 0) {
            pango_layout_set_width (layout, width * PANGO_SCALE);
            pango_layout_set_ellipsize (layout, PANGO_ELLIPSIZE_END);
        }
        MonthPaintCache::Text entry { adoptGRef (layout), 0, 0 };
        pango_layout_get_pixel_size (layout, &entry.width, &entry.height);
        return m_cache.texts.emplace (std::move (key), std::move (entry)).first->second;
    }

    cairo_t *m_cr;
    PangoContext *m_context;
    MonthPaintCache &m_cache;
    const PangoFontDescription *m_base = nullptr;
    double m_pixels = 10;
    bool m_bold = false;
    std::string m_font_key;
};

/* The metrics of a cell's contents, all derived from the cell size. */
struct CellMetrics {
    double pad;
    double label_px, label_h;
    double line_h, line_px;
    int rows;

    /* GtkCalendar draws its day numbers in the default 10-point font, 13
     * pixels at 96 dpi: no text of a cell is smaller. A small cell shows
     * fewer lines rather than smaller ones. */
    static constexpr double kMinTextPx = 13.0;

    CellMetrics (int cell_width, int cell_height)
    {
        pad = std::max (2.0, std::floor (cell_width / 40.0));
        label_px = std::clamp (cell_height * 0.16, kMinTextPx, 24.0);
        label_h = std::ceil (label_px * 1.4);
        line_h = std::floor (std::clamp (cell_height / 6.6, std::ceil (kMinTextPx * 1.3), 24.0));
        line_px = std::max (kMinTextPx, line_h * 0.66);
        rows = std::max (0, (int) ((cell_height - label_h - pad) / line_h));
    }
};

bool
same_date (const TavDate &a, const TavDate &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

void
paint_image (cairo_t *cr, ThemeImage &image, double x, double y, int w, int h)
{
    GdkPixbuf *pixbuf = image.at_size (w, h);
    if (!pixbuf)
        return;
    gdk_cairo_set_source_pixbuf (cr, pixbuf, x, y);
    cairo_paint (cr);
}

/* A check box with a tick: the cell has tasks due. */
void
paint_task_icon (cairo_t *cr, double x, double y, double s, double alpha)
{
    cairo_save (cr);
    cairo_set_line_width (cr, std::max (1.2, s / 9));
    set_rgb (cr, kTaskMark, alpha);
    rounded_rectangle (cr, x + s * 0.12, y + s * 0.12, s * 0.76, s * 0.76, s * 0.15, s * 0.15);
    cairo_stroke (cr);
    cairo_move_to (cr, x + s * 0.28, y + s * 0.52);
    cairo_line_to (cr, x + s * 0.45, y + s * 0.68);
    cairo_line_to (cr, x + s * 0.76, y + s * 0.32);
    cairo_stroke (cr);
    cairo_restore (cr);
}

/* A cake with a candle: someone has a birthday. */
void
paint_birthday_icon (cairo_t *cr, double x, double y, double s, double alpha)
{
    cairo_save (cr);
    set_rgb (cr, kBirthdayMark, alpha);
    rounded_rectangle (cr, x + s * 0.12, y + s * 0.50, s * 0.76, s * 0.38, s * 0.08, s * 0.08);
    cairo_fill (cr);
    set_rgb (cr, lighter (kBirthdayMark, 0.55), alpha);
    cairo_rectangle (cr, x + s * 0.12, y + s * 0.58, s * 0.76, s * 0.07);
    cairo_fill (cr);
    cairo_set_source_rgba (cr, 0.95, 0.95, 0.95, alpha);
    cairo_rectangle (cr, x + s * 0.46, y + s * 0.25, s * 0.08, s * 0.25);
    cairo_fill (cr);
    set_rgb (cr, kToday, alpha);
    cairo_arc (cr, x + s * 0.5, y + s * 0.17, s * 0.08, 0, 2 * M_PI);
    cairo_fill (cr);
    cairo_restore (cr);
}

/* A small arrow telling that a bar goes on beyond the row. */
void
paint_continuation (cairo_t *cr, double x, double y, double h, bool right, const MonthRgb &color)
{
    const double s = h * 0.28;
    const double cy = y + h / 2;
    set_rgb (cr, color, 0.9);
    if (right) {
        cairo_move_to (cr, x - s * 1.4, cy - s);
        cairo_line_to (cr, x - s * 0.4, cy);
        cairo_line_to (cr, x - s * 1.4, cy + s);
    } else {
        cairo_move_to (cr, x + s * 1.4, cy - s);
        cairo_line_to (cr, x + s * 0.4, cy);
        cairo_line_to (cr, x + s * 1.4, cy + s);
    }
    cairo_close_path (cr);
    cairo_fill (cr);
}

void
paint_cell_background (cairo_t *cr, MonthPaintCache &cache, const MonthPaintState &state, const CalendarCell &cell,
                       int row, int col, double x, double y, int w, int h)
{
    const bool pressed = state.highlight == MonthHighlight::Cell && state.highlight_row == row &&
                         state.highlight_col == col;
    const bool today = same_date (cell.date, state.today);
    ThemeImage &image = pressed ? cache.cell_pressed
                        : today ? cache.cell_current
                        : cell.month_type == MONTH_TYPE_THIS ? cache.cell_normal : cache.cell_other;
    if (image.original) {
        paint_image (cr, image, x, y, w, h);
        return;
    }
    MonthRgb base = pressed ? kPressed : cell.month_type == MONTH_TYPE_THIS ? kCellThis : kCellOther;
    const double gap = 1.0;
    if (state.use_effects) {
        cairo_pattern_t *gradient = cairo_pattern_create_linear (0, y, 0, y + h);
        const MonthRgb top = lighter (base, 0.06);
        cairo_pattern_add_color_stop_rgb (gradient, 0, top.r, top.g, top.b);
        cairo_pattern_add_color_stop_rgb (gradient, 1, base.r, base.g, base.b);
        cairo_set_source (cr, gradient);
        cairo_pattern_destroy (gradient);
    } else {
        set_rgb (cr, base);
    }
    cairo_rectangle (cr, x + gap, y + gap, w - gap, h - gap);
    cairo_fill (cr);
    if (today && !pressed) {
        set_rgb (cr, kToday, 0.85);
        cairo_set_line_width (cr, 2.0);
        cairo_rectangle (cr, x + gap + 1, y + gap + 1, w - gap - 2, h - gap - 2);
        cairo_stroke (cr);
    }
}

void
paint_cell_label (cairo_t *cr, TextPainter &text, MonthPaintCache &cache, const MonthPaintState &state,
                  const CalendarCell &cell, const CellMetrics &m, double x, double y, int w)
{
    const bool today = same_date (cell.date, state.today);
    text.set_font (cache.emphasized_font.get (), m.label_px, today || cell.month_type == MONTH_TYPE_THIS);
    const double box_w = w - 2 * m.pad;
    if (today) {
        const int tw = text.width_of (cell.label);
        const double d = std::max<double> (m.label_h - 2, tw + m.label_px * 0.6);
        const double cx = x + m.pad + (box_w - d) * cache.day_label_xalign;
        set_rgb (cr, kToday);
        rounded_rectangle (cr, cx, y + 2, d, m.label_h - 3, (m.label_h - 3) / 2, (m.label_h - 3) / 2);
        cairo_fill (cr);
        set_rgb (cr, cache.font_current);
        text.draw (cell.label, cx, y + 2, d, m.label_h - 3, 0.5);
        return;
    }
    if (cell.month_type == MONTH_TYPE_THIS)
        set_rgb (cr, cache.font_normal);
    else
        set_rgb (cr, cache.font_other, 0.45);
    text.draw (cell.label, x + m.pad, y + 1, box_w - 2, m.label_h - 2, cache.day_label_xalign);
}

/* Task and birthday icons and the count of entries that did not fit, at the
 * start of the label row. */
void
paint_cell_marks (cairo_t *cr, TextPainter &text, MonthPaintCache &cache, const CalendarCell &cell,
                  const CellMetrics &m, double x, double y, int w)
{
    const double s = std::floor (m.label_h * 0.78);
    double cx = x + m.pad;
    const double cy = y + (m.label_h - s) / 2;
    const double alpha = cell.month_type == MONTH_TYPE_THIS ? 1.0 : 0.5;
    /* The theme's icon where it has one, else our drawing. */
    auto mark = [&] (ThemeImage &icon, void (*draw) (cairo_t *, double, double, double, double)) {
        if (icon.original)
            paint_image (cr, icon, cx, cy, (int) s, (int) s);
        else
            draw (cr, cx, cy, s, alpha);
        cx += s + 1;
    };
    if (cell.has_tasks)
        mark (cache.todo_icon, paint_task_icon);
    if (cell.has_birthdays)
        mark (cache.birthday_icon, paint_birthday_icon);
    const int hidden = month_cell_hidden_count (&cell, m.rows);
    if (hidden > 0 && w > 3 * s) {
        char more[16];
        std::snprintf (more, sizeof more, "+%d", hidden);
        text.set_font (cache.font.get (), m.label_px * 0.72, true);
        const double tw = text.width_of (more) + s * 0.5;
        const double bh = s * 0.8;
        cairo_set_source_rgba (cr, 1, 1, 1, 0.16 * alpha);
        rounded_rectangle (cr, cx + 1, y + (m.label_h - bh) / 2, tw, bh, bh / 2, bh / 2);
        cairo_fill (cr);
        cairo_set_source_rgba (cr, 1, 1, 1, 0.85 * alpha);
        text.draw (more, cx + 1, y + (m.label_h - bh) / 2, tw, bh, 0.5);
    }
}

void
paint_bar (cairo_t *cr, TextPainter &text, MonthPaintCache &cache, const MonthPaintState &state,
           const CalendarEntry &centry, bool other_month, const CellMetrics &m, double x0, double x1, double y,
           bool open_left, bool open_right)
{
    const double h = m.line_h - 2;
    const double r = std::min (4.0, h / 3);
    const MonthRgb color = palette_rgb (centry.info->color);
    const double alpha = other_month ? 0.55 : 1.0;
    if (state.use_effects) {
        cairo_pattern_t *gradient = cairo_pattern_create_linear (0, y, 0, y + h);
        const MonthRgb top = lighter (color, 0.18);
        cairo_pattern_add_color_stop_rgba (gradient, 0, top.r, top.g, top.b, alpha);
        cairo_pattern_add_color_stop_rgba (gradient, 1, color.r, color.g, color.b, alpha);
        cairo_set_source (cr, gradient);
        cairo_pattern_destroy (gradient);
    } else {
        set_rgb (cr, color, alpha);
    }
    rounded_rectangle (cr, x0, y + 1, x1 - x0, h, open_left ? 0 : r, open_right ? 0 : r);
    cairo_fill (cr);

    const MonthRgb ink = text_on (color);
    double tx0 = x0 + 4, tx1 = x1 - 4;
    if (open_left) {
        paint_continuation (cr, x0, y + 1, h, false, ink);
        tx0 += h * 0.45;
    }
    if (open_right) {
        paint_continuation (cr, x1, y + 1, h, true, ink);
        tx1 -= h * 0.45;
    }
    if (tx1 - tx0 < 4)
        return;
    set_rgb (cr, ink, other_month ? 0.75 : 1.0);
    text.set_font (cache.font.get (), m.line_px, true);
    text.draw (centry.info->title.c_str (), tx0, y + 1, tx1 - tx0, h);
}

void
paint_timed_line (cairo_t *cr, TextPainter &text, MonthPaintCache &cache, const CalendarEntry &centry,
                  bool other_month, const CellMetrics &m, double x, double y, double w)
{
    const MonthRgb color = palette_rgb (centry.info->color);
    const double alpha = other_month ? 0.5 : 1.0;
    const double dot = std::max (3.0, m.line_h * 0.18);
    set_rgb (cr, color, alpha);
    cairo_arc (cr, x + dot + 1, y + m.line_h / 2, dot, 0, 2 * M_PI);
    cairo_fill (cr);
    double tx = x + 2 * dot + 4;
    const double right = x + w;
    if (w >= 90) {
        char time[8];
        std::snprintf (time, sizeof time, "%d:%02d", centry.start_hour, centry.start_minute);
        cairo_set_source_rgba (cr, 0.70, 0.76, 0.84, alpha);
        text.set_font (cache.font.get (), m.line_px * 0.92, false);
        tx += text.draw (time, tx, y, right - tx, m.line_h) + m.line_px * 0.35;
    }
    if (right - tx < 4)
        return;
    cairo_set_source_rgba (cr, 0.94, 0.95, 0.97, alpha);
    text.set_font (cache.font.get (), m.line_px, false);
    text.draw (centry.info->title.c_str (), tx, y, right - tx, m.line_h);
}

} // namespace

void
ThemeImage::load (const char *file_name)
{
    original = nullptr;
    scaled = nullptr;
    if (!file_name || !*file_name)
        return;
    GCharPtr path (g_build_filename (tav_theme_dir (), file_name, NULL));
    if (!g_file_test (path.get (), G_FILE_TEST_EXISTS))
        return;
    original = adoptGRef (gdk_pixbuf_new_from_file (path.get (), NULL));
}

GdkPixbuf *
ThemeImage::at_size (int width, int height)
{
    if (!original || width <= 0 || height <= 0)
        return NULL;
    if (!scaled || gdk_pixbuf_get_width (scaled.get ()) != width || gdk_pixbuf_get_height (scaled.get ()) != height)
        scaled = adoptGRef (gdk_pixbuf_scale_simple (original.get (), width, height, GDK_INTERP_BILINEAR));
    return scaled.get ();
}

void
month_paint_cache_rebuild (MonthPaintCache &cache, GtkWidget *widget)
{
    cache.font_normal = style_color (widget, "font-color-normal");
    cache.font_other = style_color (widget, "font-color-other");
    cache.font_current = style_color (widget, "font-color-current");
    cache.font_day = style_color (widget, "font-color-day");
    cache.font_week = style_color (widget, "font-color-week");
    float week_x = 0.5f, week_y = 0.5f, day_x = 1.0f;
    gtk_widget_style_get (widget, "week-label-xalign", &week_x, "week-label-yalign", &week_y,
                          "day-label-xalign", &day_x, NULL);
    cache.week_label_xalign = week_x;
    cache.week_label_yalign = week_y;
    cache.day_label_xalign = day_x;
    cache.texts.clear ();
    cache.font = theme_font (widget, "SmallSystemFont");
    cache.emphasized_font = theme_font (widget, "EmpSmallSystemFont");
    load_style_image (cache.background, widget, "bg-image-file");
    load_style_image (cache.cell_normal, widget, "cell-bg-image-file-normal");
    load_style_image (cache.cell_other, widget, "cell-bg-image-file-other");
    load_style_image (cache.cell_current, widget, "cell-bg-image-file-current");
    load_style_image (cache.cell_pressed, widget, "cell-bg-image-file-pressed");
    load_style_image (cache.week, widget, "cal-month-week-file");
    load_style_image (cache.week_pressed, widget, "cal-month-week-file-pressed");
    load_style_image (cache.birthday_icon, widget, "icon-bday-event-file");
    load_style_image (cache.todo_icon, widget, "icon-todo-entry-file");
}

int
month_cell_visible_rows (int cell_height)
{
    return CellMetrics (1, cell_height).rows;
}

int
month_cell_hidden_count (const CalendarCell *cell, int visible_rows)
{
    int hidden = (int) cell->buffer.size ();
    for (int i = std::max (0, visible_rows); i < cell->n_entries; i++)
        if (cell->entries[i] && !cell->entries[i]->covered)
            hidden++;
    return hidden;
}

void
month_paint_header (cairo_t *cr, PangoContext *context, const MonthPaintCache &const_cache,
                    const MonthPaintState &state, int width, int height)
{
    MonthPaintCache &cache = const_cast<MonthPaintCache &> (const_cache);
    if (state.background) {
        /* Tiled: a small pattern covers the whole header. */
        gdk_cairo_set_source_pixmap (cr, state.background, 0, 0);
        cairo_pattern_set_extend (cairo_get_source (cr), CAIRO_EXTEND_REPEAT);
        cairo_paint (cr);
    } else if (cache.background.original) {
        paint_image (cr, cache.background, 0, 0, width, height);
    } else {
        set_rgb (cr, kPage);
        cairo_paint (cr);
        set_rgb (cr, kHeader);
        cairo_rectangle (cr, 0, 0, width, state.header_height);
        cairo_fill (cr);
    }
    TextPainter text (cr, context, cache);
    text.set_font (cache.emphasized_font.get (), std::clamp (state.header_height * 0.55, 13.0, 18.0), false);
    for (int col = 0; col < NColumns; col++) {
        set_rgb (cr, cache.font_day, 0.85);
        text.draw ((*state.day_names)[col].c_str (), state.week_width + col * state.cell_width, 0,
                   state.cell_width, state.header_height, 0.5);
    }
}

void
month_paint_weeks (cairo_t *cr, PangoContext *context, const MonthPaintCache &const_cache,
                   const MonthPaintState &state)
{
    MonthPaintCache &cache = const_cast<MonthPaintCache &> (const_cache);
    TextPainter text (cr, context, cache);
    const double px = std::clamp (std::min (state.week_width * 0.42, state.cell_height * 0.22), 9.0, 20.0);
    for (int row = 0; row < NRows; row++) {
        const double y = row * state.cell_height;
        const bool pressed = state.highlight == MonthHighlight::Week && state.highlight_row == row;
        ThemeImage &image = pressed ? cache.week_pressed : cache.week;
        if (image.original) {
            paint_image (cr, image, 0, y, state.week_width, state.cell_height);
        } else {
            set_rgb (cr, pressed ? kPressed : kPage);
            cairo_rectangle (cr, 0, y, state.week_width, state.cell_height);
            cairo_fill (cr);
        }
        char label[8];
        std::snprintf (label, sizeof label, "%d", state.week_numbers[row]);
        text.set_font (cache.font.get (), px, false);
        set_rgb (cr, cache.font_week, pressed ? 1.0 : 0.6);
        text.draw (label, 2, y + 2, state.week_width - 4, state.cell_height - 4, cache.week_label_xalign,
                   cache.week_label_yalign);
    }
}

void
month_paint_cells (cairo_t *cr, PangoContext *context, const MonthPaintCache &const_cache,
                   const MonthPaintState &state, const GdkRectangle &area)
{
    MonthPaintCache &cache = const_cast<MonthPaintCache &> (const_cache);
    const int cw = state.cell_width, ch = state.cell_height;
    const CellMetrics m (cw, ch);
    TextPainter text (cr, context, cache);

    set_rgb (cr, kPage);
    cairo_paint (cr);

    auto intersects = [&area] (double x, double y, double w, double h) {
        return x < area.x + area.width && area.x < x + w && y < area.y + area.height && area.y < y + h;
    };

    /* Backgrounds, labels and marks. */
    for (int row = 0; row < NRows; row++)
        for (int col = 0; col < NColumns; col++) {
            const double x = col * cw, y = row * ch;
            if (!intersects (x, y, cw, ch))
                continue;
            const CalendarCell &cell = state.cells[row * NColumns + col];
            paint_cell_background (cr, cache, state, cell, row, col, x, y, cw, ch);
            paint_cell_label (cr, text, cache, state, cell, m, x, y, cw);
            paint_cell_marks (cr, text, cache, cell, m, x, y, cw);
        }

    /* Lines. A bar is drawn once from its head cell across the cells it
     * spans; the cells it covers draw nothing for it. */
    for (int row = 0; row < NRows; row++)
        for (int col = 0; col < NColumns; col++) {
            const CalendarCell &cell = state.cells[row * NColumns + col];
            const bool other = cell.month_type != MONTH_TYPE_THIS;
            const int limit = std::min (cell.n_entries, m.rows);
            for (int slot = 0; slot < limit; slot++) {
                const CalendarEntry *centry = cell.entries[slot];
                if (!centry || centry->covered)
                    continue;
                const double y = row * ch + m.label_h + slot * m.line_h;
                if (centry->all_day || centry->multi_days) {
                    const int last_col = std::min (NColumns - 1, col + centry->span_following);
                    const bool open_left = centry->continues_left && col == 0;
                    const bool open_right = centry->continues_right && last_col == NColumns - 1;
                    const double x0 = col * cw + (open_left ? 1 : m.pad + 1);
                    const double x1 = (last_col + 1) * cw - (open_right ? 0 : m.pad);
                    if (!intersects (x0, y, x1 - x0, m.line_h))
                        continue;
                    /* Only the part over other months' days recedes: the
                     * bar is painted once per run of cells of one kind,
                     * clipped to that run. */
                    for (int from = col; from <= last_col;) {
                        const bool dim = state.cells[row * NColumns + from].month_type != MONTH_TYPE_THIS;
                        int to = from;
                        while (to < last_col
                               && (state.cells[row * NColumns + to + 1].month_type != MONTH_TYPE_THIS) == dim)
                            to++;
                        cairo_save (cr);
                        cairo_rectangle (cr, from * cw, y, (to - from + 1) * cw, m.line_h);
                        cairo_clip (cr);
                        paint_bar (cr, text, cache, state, *centry, dim, m, x0, x1, y, open_left, open_right);
                        cairo_restore (cr);
                        from = to + 1;
                    }
                } else {
                    const double x = col * cw + m.pad + 1;
                    if (!intersects (x, y, cw - 2 * m.pad, m.line_h))
                        continue;
                    cairo_save (cr);
                    cairo_rectangle (cr, col * cw + 1, y, cw - 1, m.line_h);
                    cairo_clip (cr);
                    paint_timed_line (cr, text, cache, *centry, other, m, x, y, cw - 2 * m.pad - 1);
                    cairo_restore (cr);
                }
            }
        }
}

} // namespace tav
