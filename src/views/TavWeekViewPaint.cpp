/* libcalendarui - painting of the week view
 *
 * The table's background (hour grid, weekend and today shading, the all-day
 * bar) is drawn once into a pixmap as tall as the whole scroll range; an
 * expose copies the visible part of it and paints only the records, the
 * highlight and the current-time marker on top.
 */

#include "TavWeekViewInternal.h"

#include <algorithm>
#include <string>

#include <pango/pangocairo.h>

#include "TavCalendarColors.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavPaths.h"
#include "TavViewPaint.h"

using namespace tav::week;

namespace {

struct Rgb {
    double r, g, b;
};

Rgb rgb_of (int color)
{
    const tav::CalendarRgb &c = tav::calendar_rgb (color);
    return { c.r / 255.0, c.g / 255.0, c.b / 255.0 };
}

Rgb mix (const Rgb &a, const Rgb &b, double t)
{
    return { a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t };
}

void set_source (cairo_t *cr, const Rgb &c, double alpha = 1.0)
{
    cairo_set_source_rgba (cr, c.r, c.g, c.b, alpha);
}

bool is_light (int color)
{
    const tav::CalendarRgb &c = tav::calendar_rgb (color);
    return 0.299 * c.r + 0.587 * c.g + 0.114 * c.b > 165;
}

constexpr Rgb kWhite { 1, 1, 1 };
constexpr Rgb kTableBg { 1, 1, 1 };
constexpr Rgb kWeekendBg { 0.965, 0.969, 0.976 };
constexpr Rgb kTodayBg { 0.918, 0.953, 0.992 };
constexpr Rgb kHourLine { 0.84, 0.86, 0.89 };
constexpr Rgb kHalfHourLine { 0.93, 0.94, 0.95 };
constexpr Rgb kColumnLine { 0.86, 0.88, 0.91 };
constexpr Rgb kBarBg { 0.925, 0.937, 0.953 };
constexpr Rgb kBarBorder { 0.70, 0.74, 0.80 };
constexpr Rgb kHeaderBg { 0.176, 0.231, 0.282 };
constexpr Rgb kHeaderLine { 0.30, 0.36, 0.42 };
constexpr Rgb kAccent { 0.118, 0.533, 0.898 };
constexpr Rgb kHoursBg { 0.941, 0.949, 0.957 };
constexpr Rgb kHoursText { 0.33, 0.37, 0.42 };
constexpr Rgb kNowRed { 0.86, 0.16, 0.16 };
constexpr Rgb kDarkText { 0.13, 0.15, 0.18 };

void rounded_rect (cairo_t *cr, double x, double y, double w, double h, double r)
{
    r = std::min ({ r, w / 2, h / 2 });
    tav::views::rounded_rectangle (cr, x, y, w, h, r, r);
}

using tav::views::style_string;

/* A colour named by a style property: a colour name, or a logical colour
 * of the theme. A name the theme does not know is reported and replaced. */
Rgb style_color (GtkWidget *widget, const char *property, const Rgb &fallback)
{
    const std::string name = style_string (widget, property);
    GdkColor color;
    if (!name.empty () && gdk_color_parse (name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    if (!name.empty () && widget->style && gtk_style_lookup_color (widget->style, name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    TAV_WARNING ("logical color '%s' not found in theme", name.c_str ());
    return fallback;
}

tav::GUniquePtr<PangoFontDescription> style_font (GtkWidget *widget, const char *property)
{
    const std::string name = style_string (widget, property);
    PangoFontDescription *desc = pango_font_description_from_string (name.empty () ? "Sans 12" : name.c_str ());
    /* The handheld's font may be missing: keep the size, let Pango pick
     * the family from a list that ends in a common one. */
    std::string families = pango_font_description_get_family (desc) ? pango_font_description_get_family (desc) : "";
    families += ",DejaVu Sans,Sans";
    pango_font_description_set_family (desc, families.c_str ());
    return tav::GUniquePtr<PangoFontDescription> (desc);
}

tav::GRefPtr<GdkPixbuf> theme_image (const char *file)
{
    tav::GCharPtr path (g_build_filename (tav_theme_dir (), file, NULL));
    if (!g_file_test (path.get (), G_FILE_TEST_IS_REGULAR))
        return nullptr;
    return tav::adoptGRef (gdk_pixbuf_new_from_file (path.get (), NULL));
}

void show_text (cairo_t *cr, PangoLayout *layout, double x, double y)
{
    cairo_move_to (cr, x, y);
    pango_cairo_show_layout (cr, layout);
}

tav::GRefPtr<PangoLayout> make_layout (cairo_t *cr, const PangoFontDescription *font)
{
    auto layout = tav::adoptGRef (pango_cairo_create_layout (cr));
    pango_layout_set_font_description (layout.get (), font);
    return layout;
}

/* Paints into memory and sends the exposed rectangle of @window in one
 * go: far fewer round trips than drawing on the server piece by piece. */
class Frame {
public:
    Frame (GdkWindow *window, const GdkRectangle *area)
        : m_window (window), m_area (*area),
          m_surface (cairo_image_surface_create (CAIRO_FORMAT_RGB24, std::max (1, area->width),
                                                 std::max (1, area->height)))
    {
        m_cr = cairo_create (m_surface);
        cairo_translate (m_cr, -area->x, -area->y);
    }
    ~Frame ()
    {
        cairo_destroy (m_cr);
        cairo_t *win = gdk_cairo_create (m_window);
        cairo_set_source_surface (win, m_surface, m_area.x, m_area.y);
        cairo_rectangle (win, m_area.x, m_area.y, m_area.width, m_area.height);
        cairo_fill (win);
        cairo_destroy (win);
        cairo_surface_destroy (m_surface);
    }
    Frame (const Frame &) = delete;
    Frame &operator= (const Frame &) = delete;
    cairo_t *cr () const { return m_cr; }

private:
    GdkWindow *m_window;
    GdkRectangle m_area;
    cairo_surface_t *m_surface;
    cairo_t *m_cr;
};

} // namespace

namespace tav::week {

void invalidate_cache (TavWeekView *view)
{
    view->priv->cache_stale = true;
}

static void ensure_cache (TavWeekView *view, int width)
{
    TavWeekViewPrivate *priv = view->priv;
    GtkWidget *widget = GTK_WIDGET (view);
    const int height = table_height (priv);
    if (priv->cache && !priv->cache_stale && priv->cache_width == width && priv->cache_height == height)
        return;
    if (!priv->cache || priv->cache_height != height || priv->cache_width != width) {
        TAV_MESSAGE ("Recreating cache height %d", height);
        priv->cache.reset (cairo_image_surface_create (CAIRO_FORMAT_RGB24, width, height));
        priv->cache_width = width;
        priv->cache_height = height;
    }
    priv->cache_stale = false;

    cairo_t *cr = cairo_create (priv->cache.get ());
    set_source (cr, kTableBg);
    cairo_paint (cr);
    if (priv->background_image) {
        gdk_cairo_set_source_pixmap (cr, priv->background_image.get (), 0, 0);
        cairo_pattern_set_extend (cairo_get_source (cr), CAIRO_EXTEND_REPEAT);
        cairo_paint (cr);
    }

    tav::GRefPtr<GdkPixbuf> shade = theme_image ("calendar_week_day_shade.png");
    tav::GRefPtr<GdkPixbuf> shade_today = theme_image ("calendar_week_day_shade_current.png");
    TavCalendarProcessor *processor = tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (view));
    for (int col = 0; col < NColumns; col++) {
        const Day &day = priv->days[static_cast<size_t> (col)];
        const int x = column_x (width, col);
        const int w = column_x (width, col + 1) - x;
        GdkPixbuf *image = day.is_today ? shade_today.get () : shade.get ();
        if (image) {
            tav::GRefPtr<GdkPixbuf> scaled = tav::adoptGRef (
                gdk_pixbuf_scale_simple (image, w, height, GDK_INTERP_BILINEAR));
            gdk_cairo_set_source_pixbuf (cr, scaled.get (), x, 0);
            cairo_rectangle (cr, x, 0, w, height);
            cairo_fill (cr);
            continue;
        }
        const bool weekend = processor && !tav_calendar_processor_is_date_weekday (processor, &day.date);
        if (day.is_today || weekend) {
            set_source (cr, day.is_today ? kTodayBg : kWeekendBg);
            cairo_rectangle (cr, x, 0, w, height);
            cairo_fill (cr);
        }
    }

    cairo_set_line_width (cr, 1);
    for (int h = 0; h < 24; h++) {
        const int y = time_to_table_offset (priv, h, 0);
        set_source (cr, kHourLine);
        cairo_move_to (cr, 0, y + 0.5);
        cairo_line_to (cr, width, y + 0.5);
        cairo_stroke (cr);
        set_source (cr, kHalfHourLine);
        const int half = time_to_table_offset (priv, h, 30);
        cairo_move_to (cr, 0, half + 0.5);
        cairo_line_to (cr, width, half + 0.5);
        cairo_stroke (cr);
    }
    set_source (cr, kColumnLine);
    for (int col = 1; col < NColumns; col++) {
        const int x = column_x (width, col);
        cairo_move_to (cr, x + 0.5, 0);
        cairo_line_to (cr, x + 0.5, height);
    }
    cairo_stroke (cr);

    /* The all-day bar across the week. */
    const int bar_top = priv->all_day_bar_hour * kHourHeight;
    set_source (cr, kBarBg);
    cairo_rectangle (cr, 0, bar_top, width, priv->all_day_bar_height);
    cairo_fill (cr);
    set_source (cr, kColumnLine);
    for (int col = 1; col < NColumns; col++) {
        const int x = column_x (width, col);
        cairo_move_to (cr, x + 0.5, bar_top);
        cairo_line_to (cr, x + 0.5, bar_top + priv->all_day_bar_height);
    }
    cairo_stroke (cr);
    set_source (cr, kBarBorder);
    cairo_move_to (cr, 0, bar_top + 0.5);
    cairo_line_to (cr, width, bar_top + 0.5);
    cairo_move_to (cr, 0, bar_top + priv->all_day_bar_height - 0.5);
    cairo_line_to (cr, width, bar_top + priv->all_day_bar_height - 0.5);
    cairo_stroke (cr);
    cairo_destroy (cr);
    (void) widget;
}

/* TRUE when the wrapped @layout starts a line in the middle of a word. */
static bool breaks_inside_a_word (PangoLayout *layout)
{
    const char *text = pango_layout_get_text (layout);
    for (GSList *l = pango_layout_get_lines_readonly (layout); l; l = l->next) {
        const int start = static_cast<PangoLayoutLine *> (l->data)->start_index;
        if (start > 0 && !g_unichar_isspace (g_utf8_get_char (g_utf8_prev_char (text + start))))
            return true;
    }
    return false;
}

static void paint_hour_entry (cairo_t *cr, TavWeekView *view, PangoLayout *layout, WeekEntry *wentry,
                              const GdkRectangle &r, int visible_top)
{
    const Rgb color = rgb_of (wentry->color);
    const Rgb fill = mix (color, kWhite, wentry->color == 6 ? 0.2 : 0.78);
    const Rgb border = mix (color, Rgb { 0, 0, 0 }, 0.15);

    rounded_rect (cr, r.x, r.y, r.width, r.height, 4);
    set_source (cr, fill);
    cairo_fill_preserve (cr);
    set_source (cr, border, 0.55);
    cairo_set_line_width (cr, 1);
    cairo_stroke (cr);
    /* The calendar's colour as a stripe down the left edge. */
    cairo_save (cr);
    rounded_rect (cr, r.x, r.y, r.width, r.height, 4);
    cairo_clip (cr);
    set_source (cr, wentry->color == 6 ? mix (color, Rgb { 0, 0, 0 }, 0.35) : color);
    cairo_rectangle (cr, r.x, r.y, 4, r.height);
    cairo_fill (cr);
    cairo_restore (cr);

    if (r.width < 14 || r.height < 10)
        return;
    /* Time, title and place as far as they fit: a short entry gets one
     * line, a narrow one (a crowded hour) only its title. */
    const gboolean twelve_hour = !view->priv->time_24hr_format;
    const std::string time = week_entry_get_summary_time (wentry, twelve_hour ? 0 : 1);
    const std::string title = std::string ("<b>") + week_entry_get_title (wentry) + "</b>";
    tav::GCharPtr location_raw;
    {
        char *loc = nullptr;
        if (G_IS_OBJECT (wentry->entry))
            g_object_get (wentry->entry, "location", &loc, NULL);
        location_raw.reset (loc);
    }
    std::string markup;
    const bool narrow = r.width < 64;
    if (narrow)
        markup = "<small>" + title + "</small>";
    else if (r.height < 40)
        markup = "<small>" + time + "</small> " + title;
    else {
        markup = "<small>" + time + "</small>\n" + title;
        if (location_raw && *location_raw) {
            tav::GCharPtr location (g_markup_escape_text (location_raw.get (), -1));
            markup += std::string ("\n<span color=\"#5f6670\">") + location.get () + "</span>";
        }
    }
    pango_layout_set_markup (layout, markup.c_str (), -1);
    pango_layout_set_width (layout, (r.width - 9) * PANGO_SCALE);
    pango_layout_set_wrap (layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_ellipsize (layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_height (layout, G_MAXINT); /* unlimited lines, to see where it breaks */
    /* A word cut in the middle across lines ("Proj-ect") reads worse than a
     * word cut short ("Proj..."): when a narrow column cannot hold a whole
     * word, show the title on one ellipsized line. */
    const bool single_line = narrow && breaks_inside_a_word (layout);
    /* Keep the label in sight while the entry's start is scrolled away or
     * hidden under the all-day bar. */
    int text_y = r.y + 2;
    if (text_y < visible_top + 2 && r.y + r.height - (visible_top + 2) > 16)
        text_y = visible_top + 2;
    const int bar_top = view->priv->all_day_bar_hour * kHourHeight;
    const int bar_bottom = bar_top + view->priv->all_day_bar_height;
    if (text_y + 12 > bar_top && text_y < bar_bottom && r.y + r.height - (bar_bottom + 2) > 16)
        text_y = bar_bottom + 2;
    /* A height of 0 asks Pango for exactly one line. */
    pango_layout_set_height (layout, single_line ? 0 : (r.y + r.height - text_y - 2) * PANGO_SCALE);
    cairo_save (cr);
    cairo_rectangle (cr, r.x + 6, r.y + 1, r.width - 7, r.height - 2);
    cairo_clip (cr);
    set_source (cr, kDarkText);
    show_text (cr, layout, r.x + 7, text_y);
    cairo_restore (cr);
}

static void paint_all_day_entry (cairo_t *cr, TavWeekView *view, PangoLayout *layout, WeekEntry *wentry,
                                 const GdkRectangle &r, const Rgb &label_color, int more)
{
    GtkWidget *widget = GTK_WIDGET (view);
    std::string text;
    Rgb fill, ink;
    if (more > 0) {
        fill = Rgb { 0.82, 0.85, 0.89 };
        ink = kDarkText;
        text = "<b>+" + std::to_string (more) + "</b>";
    } else {
        fill = rgb_of (wentry->color);
        ink = is_light (wentry->color) ? label_color : kWhite;
        tav::GCharPtr title (g_markup_escape_text (week_entry_get_title (wentry), -1));
        /* The title is already escaped markup. */
        text = week_entry_get_title (wentry);
        if (wentry->is_task && wentry->n_tasks > 1)
            text += " <b>+" + std::to_string (wentry->n_tasks - 1) + "</b>";
    }
    rounded_rect (cr, r.x, r.y, r.width, r.height, 5);
    set_source (cr, fill);
    cairo_fill (cr);

    int text_x = r.x + 6;
    if (more == 0 && (wentry->has_birthday || wentry->is_task)) {
        /* Theme icon when there is one, otherwise a drawn mark. */
        const std::string file = style_string (widget, wentry->has_birthday ? "icon-bday-event-file"
                                                                           : "icon-todo-entry-file");
        tav::GRefPtr<GdkPixbuf> icon = theme_image (file.c_str ());
        const int size = 16;
        const int iy = r.y + (r.height - size) / 2;
        if (icon) {
            tav::GRefPtr<GdkPixbuf> scaled = tav::adoptGRef (
                gdk_pixbuf_scale_simple (icon.get (), size, size, GDK_INTERP_BILINEAR));
            gdk_cairo_set_source_pixbuf (cr, scaled.get (), text_x, iy);
            cairo_paint (cr);
        } else if (wentry->is_task) {
            set_source (cr, ink);
            cairo_set_line_width (cr, 1.6);
            cairo_rectangle (cr, text_x + 1.5, iy + 1.5, size - 3, size - 3);
            cairo_stroke (cr);
            cairo_move_to (cr, text_x + 4, iy + 8);
            cairo_line_to (cr, text_x + 7, iy + 11.5);
            cairo_line_to (cr, text_x + 12.5, iy + 4.5);
            cairo_stroke (cr);
        } else {
            /* A small cake: a candle over two layers. */
            set_source (cr, ink);
            cairo_rectangle (cr, text_x + 2, iy + 8, size - 4, 7);
            cairo_fill (cr);
            cairo_rectangle (cr, text_x + 7, iy + 3, 2, 5);
            cairo_fill (cr);
            cairo_arc (cr, text_x + 8, iy + 2, 1.6, 0, 2 * G_PI);
            cairo_fill (cr);
            set_source (cr, fill);
            cairo_rectangle (cr, text_x + 2, iy + 11, size - 4, 1.2);
            cairo_fill (cr);
        }
        text_x += size + 4;
    }
    pango_layout_set_markup (layout, text.c_str (), -1);
    pango_layout_set_width (layout, std::max (1, r.x + r.width - text_x - 4) * PANGO_SCALE);
    pango_layout_set_height (layout, -2);
    pango_layout_set_wrap (layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_ellipsize (layout, PANGO_ELLIPSIZE_END);
    int lw, lh;
    pango_layout_get_pixel_size (layout, &lw, &lh);
    set_source (cr, ink);
    show_text (cr, layout, text_x, r.y + (r.height - lh) / 2);
}

void paint_table (TavWeekView *view, GdkRectangle *area)
{
    TavWeekViewPrivate *priv = view->priv;
    GtkWidget *widget = GTK_WIDGET (view);
    int width = 0, win_height = 0;
    gdk_drawable_get_size (priv->table_win, &width, &win_height);
    ensure_cache (view, width);
    const int origin = static_cast<int> (scroll_value (priv));

    /* Compose in memory, then send the exposed rectangle at once. */
    std::unique_ptr<cairo_surface_t, TavWeekViewPrivate::SurfaceDeleter> frame (
        cairo_image_surface_create (CAIRO_FORMAT_RGB24, std::max (1, area->width), std::max (1, area->height)));
    cairo_t *cr = cairo_create (frame.get ());
    cairo_translate (cr, -area->x, -area->y - origin);
    cairo_set_source_surface (cr, priv->cache.get (), 0, 0);
    cairo_paint (cr);
    const int visible_top = area->y + origin;
    const int visible_bottom = visible_top + area->height;

    tav::GUniquePtr<PangoFontDescription> font = style_font (widget, "font-name-event");
    pango_font_description_set_size (font.get (), pango_font_description_get_size (font.get ()) * 3 / 4);
    auto layout = make_layout (cr, font.get ());
    const Rgb label_color = style_color (widget, "font-color-all-day-events", kDarkText);

    for (int col = 0; col < NColumns; col++) {
        WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;
        /* The left-over records of a crowded group first, under the
         * columns; its mark last, over them. */
        for (bool under : { true, false })
            for (GList *l = list->hour_entries; l; l = l->next) {
                WeekEntry *wentry = static_cast<WeekEntry *> (l->data);
                if (bool (wentry->unplaced) != under)
                    continue;
                GdkRectangle r = hour_entry_rect (priv, width, col, wentry);
                if (r.y > visible_bottom || r.y + r.height < visible_top)
                    continue;
                paint_hour_entry (cr, view, layout.get (), wentry, r, origin);
            }
        for (const CrowdMark &mark : crowd_marks (priv, width, col)) {
            const GdkRectangle &m = mark.rect;
            rounded_rect (cr, m.x, m.y, m.width, m.height, 4);
            set_source (cr, kAccent);
            cairo_fill (cr);
            const std::string text = "<b>+" + std::to_string (mark.hidden) + "</b>";
            pango_layout_set_markup (layout.get (), text.c_str (), -1);
            pango_layout_set_width (layout.get (), -1);
            pango_layout_set_height (layout.get (), 0);
            int lw, lh;
            pango_layout_get_pixel_size (layout.get (), &lw, &lh);
            set_source (cr, kWhite);
            show_text (cr, layout.get (), m.x + (m.width - lw) / 2, m.y + (m.height - lh) / 2);
        }
    }

    /* The bar goes over timed entries that run across it. */
    const int bar_top = priv->all_day_bar_hour * kHourHeight;
    if (bar_top < visible_bottom && bar_top + priv->all_day_bar_height > visible_top) {
        cairo_set_source_surface (cr, priv->cache.get (), 0, 0);
        cairo_rectangle (cr, 0, bar_top, width, priv->all_day_bar_height);
        cairo_fill (cr);
        for (int col = 0; col < NColumns; col++) {
            WeekEntryList *list = priv->days[static_cast<size_t> (col)].list;
            const int n = week_entry_list_n_all_day_entries (list);
            for (GList *l = list->allday_entries; l; l = l->next) {
                WeekEntry *wentry = static_cast<WeekEntry *> (l->data);
                if (wentry->index >= MAX_ALL_DAY_SLOTS) {
                    if (n <= MAX_ALL_DAY_SLOTS)
                        TAV_WARNING ("wentry->nth_entry > MAX_ALL_DAY_SLOTS \t\t\t\t\t\tTHIS case is not specified and we are not handling");
                    continue;
                }
                const int more = (wentry->index == MAX_ALL_DAY_SLOTS - 1 && n > MAX_ALL_DAY_SLOTS)
                                     ? n - (MAX_ALL_DAY_SLOTS - 1)
                                     : 0;
                GdkRectangle r = all_day_entry_rect (priv, width, col, wentry->index);
                paint_all_day_entry (cr, view, layout.get (), wentry, r, label_color, more);
            }
        }
    }

    /* The pressed record or slot. */
    if (!priv->highlight.clear && priv->highlight.area == Area::Table && priv->highlight.day >= 0) {
        GdkRectangle r;
        if (priv->highlight.wentry) {
            r = priv->highlight.wentry->all_day
                    ? all_day_entry_rect (priv, width, priv->highlight.day, priv->highlight.wentry->index)
                    : hour_entry_rect (priv, width, priv->highlight.day, priv->highlight.wentry);
        } else {
            const int x = column_x (width, priv->highlight.day);
            r.x = x;
            r.width = column_x (width, priv->highlight.day + 1) - x;
            if (priv->highlight.slot == 24) {
                r.y = bar_top;
                r.height = priv->all_day_bar_height;
            } else {
                r.y = time_to_table_offset (priv, std::max (0, priv->highlight.slot), 0);
                r.height = kHourHeight;
            }
        }
        rounded_rect (cr, r.x, r.y, r.width, r.height, 4);
        set_source (cr, kAccent, 0.25);
        cairo_fill (cr);
    }

    /* Now, across the week and stronger in today's column. */
    for (int col = 0; col < NColumns; col++) {
        if (!priv->days[static_cast<size_t> (col)].is_today)
            continue;
        const int y = time_to_table_offset (priv, priv->now.tm_hour, priv->now.tm_min);
        set_source (cr, kNowRed, 0.35);
        cairo_set_line_width (cr, 1);
        cairo_move_to (cr, 0, y + 0.5);
        cairo_line_to (cr, width, y + 0.5);
        cairo_stroke (cr);
        const int x0 = column_x (width, col), x1 = column_x (width, col + 1);
        set_source (cr, kNowRed);
        cairo_set_line_width (cr, 2);
        cairo_move_to (cr, x0, y + 0.5);
        cairo_line_to (cr, x1, y + 0.5);
        cairo_stroke (cr);
        cairo_arc (cr, x0 + 4, y + 0.5, 4, 0, 2 * G_PI);
        cairo_fill (cr);
    }
    cairo_destroy (cr);

    cairo_t *win = gdk_cairo_create (priv->table_win);
    cairo_set_source_surface (win, frame.get (), area->x, area->y);
    cairo_rectangle (win, area->x, area->y, area->width, area->height);
    cairo_fill (win);
    cairo_destroy (win);
}

void paint_hours (TavWeekView *view, GdkRectangle *area)
{
    TavWeekViewPrivate *priv = view->priv;
    GtkWidget *widget = GTK_WIDGET (view);
    int width = 0, height = 0;
    gdk_drawable_get_size (priv->hours_win, &width, &height);
    const int origin = static_cast<int> (scroll_value (priv));

    Frame frame (priv->hours_win, area);
    cairo_t *cr = frame.cr ();
    tav::GRefPtr<GdkPixbuf> column = theme_image ("calendar_week_time_column.png");
    if (column) {
        tav::GRefPtr<GdkPixbuf> scaled = tav::adoptGRef (
            gdk_pixbuf_scale_simple (column.get (), width, std::max (1, height), GDK_INTERP_BILINEAR));
        gdk_cairo_set_source_pixbuf (cr, scaled.get (), 0, 0);
    } else {
        set_source (cr, kHoursBg);
    }
    cairo_paint (cr);
    set_source (cr, kHourLine);
    cairo_set_line_width (cr, 1);
    cairo_move_to (cr, width - 0.5, 0);
    cairo_line_to (cr, width - 0.5, height);
    cairo_stroke (cr);

    cairo_translate (cr, 0, -origin);
    tav::GUniquePtr<PangoFontDescription> font = style_font (widget, "font-name-row");
    pango_font_description_set_size (font.get (), pango_font_description_get_size (font.get ()) * 3 / 4);
    const gboolean twelve_hour = !priv->time_24hr_format;
    if (twelve_hour) /* "10:00 am" is longer than "10:00" */
        pango_font_description_set_size (font.get (), pango_font_description_get_size (font.get ()) * 5 / 6);
    auto layout = make_layout (cr, font.get ());
    pango_layout_set_width (layout.get (), (width - 8) * PANGO_SCALE);
    pango_layout_set_alignment (layout.get (), PANGO_ALIGN_RIGHT);
    pango_layout_set_ellipsize (layout.get (), PANGO_ELLIPSIZE_END);

    for (int h = 0; h < 24; h++) {
        const int y = time_to_table_offset (priv, h, 0);
        if (y + kHourHeight < origin + area->y || y > origin + area->y + area->height)
            continue;
        TavTime t = { h, 0 };
        tav::GCharPtr text (tav_time_to_string_format (&t, twelve_hour));
        pango_layout_set_text (layout.get (), g_strstrip (text.get ()), -1);
        set_source (cr, kHoursText);
        show_text (cr, layout.get (), 2, y + 3);
        set_source (cr, kHourLine);
        cairo_move_to (cr, width - 10, y + 0.5);
        cairo_line_to (cr, width, y + 0.5);
        cairo_stroke (cr);
    }
    const int bar_top = priv->all_day_bar_hour * kHourHeight;
    set_source (cr, kBarBg);
    cairo_rectangle (cr, 0, bar_top, width - 1, priv->all_day_bar_height);
    cairo_fill (cr);
    pango_layout_set_text (layout.get (), TAV_CAL ("cal_va_allday"), -1);
    pango_layout_set_ellipsize (layout.get (), PANGO_ELLIPSIZE_NONE);
    pango_layout_set_wrap (layout.get (), PANGO_WRAP_WORD);
    set_source (cr, kHoursText);
    show_text (cr, layout.get (), 2, bar_top + 8);

    bool today_shown = false;
    for (const Day &day : priv->days)
        today_shown = today_shown || day.is_today;
    if (today_shown) {
        const int y = time_to_table_offset (priv, priv->now.tm_hour, priv->now.tm_min);
        TavTime now = { priv->now.tm_hour, priv->now.tm_min };
        tav::GCharPtr text (tav_time_to_string_format (&now, twelve_hour));
        pango_layout_set_markup (layout.get (), (std::string ("<b>") + g_strstrip (text.get ()) + "</b>").c_str (), -1);
        int lw, lh;
        pango_layout_get_pixel_size (layout.get (), &lw, &lh);
        rounded_rect (cr, 2, y - lh / 2.0 - 1, width - 4, lh + 2, 3);
        set_source (cr, kNowRed);
        cairo_fill (cr);
        set_source (cr, kWhite);
        show_text (cr, layout.get (), 2, y - lh / 2.0);
    }
    /* The frame sends itself. */
}

void paint_header (TavWeekView *view, GdkRectangle *area)
{
    TavWeekViewPrivate *priv = view->priv;
    GtkWidget *widget = GTK_WIDGET (view);
    int width = 0, height = 0;
    gdk_drawable_get_size (priv->header_win, &width, &height);
    const int table_w = std::max (NColumns, width - kHourColumnWidth);

    Frame frame (priv->header_win, area);
    cairo_t *cr = frame.cr ();
    set_source (cr, kHeaderBg);
    cairo_paint (cr);

    tav::GRefPtr<GdkPixbuf> normal = theme_image ("calendar_weekday.png");
    tav::GRefPtr<GdkPixbuf> current = theme_image ("calendar_weekday_current.png");
    tav::GRefPtr<GdkPixbuf> pressed = theme_image ("calendar_weekday_pressed.png");
    const Rgb date_color = style_color (widget, "font-color-date-labels", Rgb { 0.83, 0.83, 0.83 });
    tav::GUniquePtr<PangoFontDescription> day_font = style_font (widget, "font-name-dayname");
    pango_font_description_set_size (day_font.get (), pango_font_description_get_size (day_font.get ()) * 2 / 3);
    pango_font_description_set_weight (day_font.get (), PANGO_WEIGHT_BOLD);
    tav::GUniquePtr<PangoFontDescription> date_font = style_font (widget, "font-name-date");
    pango_font_description_set_size (date_font.get (), pango_font_description_get_size (date_font.get ()) * 3 / 4);
    auto layout = make_layout (cr, day_font.get ());

    /* The week number over the hour column. */
    if (priv->has_presented && tav_date_is_valid (&priv->presented.start)) {
        TavCalendarProcessor *processor = tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (view));
        const int weekday = static_cast<int> (tav_calendar_processor_date_to_day_of_week (processor, &priv->presented.start));
        tav::GCharPtr week (tav_date_to_week_num_string (&priv->presented.start, weekday));
        pango_layout_set_font_description (layout.get (), date_font.get ());
        pango_layout_set_width (layout.get (), (kHourColumnWidth - 6) * PANGO_SCALE);
        pango_layout_set_wrap (layout.get (), PANGO_WRAP_WORD);
        pango_layout_set_alignment (layout.get (), PANGO_ALIGN_CENTER);
        pango_layout_set_text (layout.get (), week ? week.get () : "", -1);
        int lw, lh;
        pango_layout_get_pixel_size (layout.get (), &lw, &lh);
        set_source (cr, date_color);
        show_text (cr, layout.get (), 3, (height - lh) / 2.0);
    }

    pango_layout_set_font_description (layout.get (), day_font.get ());
    pango_layout_set_alignment (layout.get (), PANGO_ALIGN_CENTER);
    /* When one day's header does not fit its column, every day puts its
     * weekday over its date instead of cutting the date off. */
    bool two_lines = false;
    pango_layout_set_width (layout.get (), -1);
    for (int col = 0; col < NColumns; col++) {
        const Day &day = priv->days[static_cast<size_t> (col)];
        const int w = column_x (table_w, col + 1) - column_x (table_w, col);
        pango_layout_set_text (layout.get (), day.header ? day.header.get () : "", -1);
        int lw, lh;
        pango_layout_get_pixel_size (layout.get (), &lw, &lh);
        two_lines = two_lines || lw > w - 6;
    }
    pango_layout_set_ellipsize (layout.get (), PANGO_ELLIPSIZE_END);
    for (int col = 0; col < NColumns; col++) {
        const Day &day = priv->days[static_cast<size_t> (col)];
        const int x = kHourColumnWidth + column_x (table_w, col);
        const int w = kHourColumnWidth + column_x (table_w, col + 1) - x;
        const bool is_pressed = !priv->highlight.clear && priv->highlight.area == Area::Header &&
                                priv->highlight.day == col;
        GdkPixbuf *image = is_pressed ? pressed.get () : day.is_today ? current.get () : normal.get ();
        if (image) {
            tav::GRefPtr<GdkPixbuf> scaled = tav::adoptGRef (gdk_pixbuf_scale_simple (image, w, height, GDK_INTERP_BILINEAR));
            gdk_cairo_set_source_pixbuf (cr, scaled.get (), x, 0);
            cairo_rectangle (cr, x, 0, w, height);
            cairo_fill (cr);
        } else if (day.is_today || is_pressed) {
            rounded_rect (cr, x + 3, 6, w - 6, height - 12, 8);
            set_source (cr, kAccent, is_pressed && !day.is_today ? 0.5 : 1.0);
            cairo_fill (cr);
        }
        set_source (cr, kHeaderLine);
        cairo_set_line_width (cr, 1);
        cairo_move_to (cr, x + 0.5, 12);
        cairo_line_to (cr, x + 0.5, height - 12);
        cairo_stroke (cr);

        std::string header = day.header ? day.header.get () : "";
        const size_t space = header.find (' ');
        if (two_lines && space != std::string::npos)
            header[space] = '\n';
        pango_layout_set_width (layout.get (), (w - 6) * PANGO_SCALE);
        pango_layout_set_text (layout.get (), header.c_str (), -1);
        int lw, lh;
        pango_layout_get_pixel_size (layout.get (), &lw, &lh);
        set_source (cr, day.is_today ? kWhite : date_color);
        show_text (cr, layout.get (), x + 3, (height - lh) / 2.0);
    }
    set_source (cr, kAccent);
    cairo_rectangle (cr, 0, height - 2, width, 2);
    cairo_fill (cr);
    /* The frame sends itself. */
}

} // namespace tav::week
