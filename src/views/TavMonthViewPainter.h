/* libcalendarui - painting of the month view (internal)
 *
 * The month view's paint routines: the weekday header, the week-number
 * column and the day cells with their bars and lines. The widget keeps a
 * MonthPaintCache (colours, fonts and theme images, rebuilt when the style
 * changes) and hands the painter one MonthPaintState per paint.
 */
#ifndef TAV_MONTH_VIEW_PAINTER_H
#define TAV_MONTH_VIEW_PAINTER_H

#include <gtk/gtk.h>

#include <array>
#include <string>

#include "TavGPtr.h"
#include "TavMonthViewPrivate.h"

namespace tav {

enum class MonthHighlight { None = 0, Cell = 1, Week = 2 };

struct MonthRgb {
    double r, g, b;
};

/* A theme image and its copy scaled to the size last painted. */
struct ThemeImage {
    GRefPtr<GdkPixbuf> original;
    GRefPtr<GdkPixbuf> scaled;
    void load (const char *file_name);
    GdkPixbuf *at_size (int width, int height);
};

struct MonthPaintCache {
    /* Label colours from the style properties. */
    MonthRgb font_normal {}, font_other {}, font_current {}, font_day {}, font_week {};
    double week_label_xalign = 0.5, week_label_yalign = 0.5, day_label_xalign = 1.0;
    /* Family and weight of the theme's small fonts; sizes follow the cells. */
    GUniquePtr<PangoFontDescription> font;
    GUniquePtr<PangoFontDescription> emphasized_font;
    ThemeImage background, cell_normal, cell_other, cell_current, cell_pressed;
    ThemeImage week, week_pressed, birthday_icon, todo_icon;
};

struct MonthPaintState {
    const CalendarCell *cells;
    const int *week_numbers;
    const std::array<std::string, 7> *day_names;
    int cell_width, cell_height;
    int week_width, header_height;
    TavDate today;
    MonthHighlight highlight;
    int highlight_row, highlight_col;
    gboolean use_effects;
    GdkPixmap *background; /* the host's background, or NULL */
};

/* Reads the style properties and theme images of @widget into @cache. */
void month_paint_cache_rebuild (MonthPaintCache &cache, GtkWidget *widget);

/* The widget's own window: background and weekday names above the columns,
 * which start at x = @state.week_width. */
void month_paint_header (cairo_t *cr, PangoContext *context, const MonthPaintCache &cache,
                         const MonthPaintState &state, int width, int height);
/* The week-number column, row r at y = r × cell_height. */
void month_paint_weeks (cairo_t *cr, PangoContext *context, const MonthPaintCache &cache,
                        const MonthPaintState &state);
/* The day grid, cell (row, col) at (col × cell_width, row × cell_height). */
void month_paint_cells (cairo_t *cr, PangoContext *context, const MonthPaintCache &cache,
                        const MonthPaintState &state, const GdkRectangle &area);

/* Entries of a cell that are not painted for lack of room or lines. */
int month_cell_hidden_count (const CalendarCell *cell, int visible_rows);
/* Rows of entry lines that fit below the day label of a cell. */
int month_cell_visible_rows (int cell_height);

} // namespace tav

#endif /* TAV_MONTH_VIEW_PAINTER_H */
