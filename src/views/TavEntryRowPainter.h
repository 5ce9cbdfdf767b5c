/* libcalendarui - the row painter shared by the agenda and the day view
 * (internal)
 *
 * Both views paint the same rows: a date header, an entry card (time
 * column or task/birthday mark, title, location and description, calendar
 * colour), the no-events line and the insert button. The views describe a
 * row as a PaintRow and the painter draws it; card backgrounds come from
 * server-side pixmaps made once per detail and width.
 */
#ifndef TAV_ENTRY_ROW_PAINTER_H
#define TAV_ENTRY_ROW_PAINTER_H

#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace tav::rows {

/* The style properties both views read in style_set. */
struct Theme {
    std::string header_font_color, font_no_entries, font_header, font_icon_normal, font_icon_small;
    std::string title_font_color, color_button_font_color, font_title, description_font_color;
    std::string font_description, location_font_color, font_location;
    /* Full paths of the icons and of the five row backgrounds. */
    std::string icon_todo, icon_new, icon_bday, icon_alarm;
    std::vector<std::string> detail_files;
};

/* Installs the style properties on @widget_class; the day view has no
 * "font-no-entries". */
void install_style_properties (GtkWidgetClass *widget_class, bool with_no_entries_font);
/* Reads them (and resolves the file names below the icon and theme
 * folders). */
void read_theme (GtkWidget *widget, Theme &theme, bool with_no_entries_font);

struct PaintRow {
    enum Kind { Entry, Header, NoEntries, Button } kind = Entry;
    GdkRectangle rect {};          /* in window coordinates */
    const char *title = nullptr;   /* headers: Pango markup */
    const char *location = nullptr;
    const char *description = nullptr;
    const char *start_text = nullptr;
    const char *end_text = nullptr;
    GdkPixbuf *icon = nullptr;     /* entry: type icon; button: its icon */
    int color = 0;                 /* TavCalendarColor of the entry */
    bool is_task = false;
    bool is_birthday = false;
    bool done = false;             /* a completed task */
    bool alarm = false;            /* the entry has an alarm */
    bool today = false;            /* header of today */
    bool pressed = false;
    GdkPixmap *background = nullptr;
};

/* The page behind the rows: @image tiled, or the view's colour. */
void paint_page (cairo_t *cr, const GdkRectangle &area, GdkPixmap *image);
void paint_row (GtkWidget *widget, cairo_t *cr, const Theme &theme, const PaintRow &row);
/* A header drawn over the top edge, @y its top (0 or pushed up by the
 * next header). */
void paint_pinned_header (GtkWidget *widget, cairo_t *cr, const Theme &theme, const PaintRow &row, int width);

/* The cached background of detail @detail (0 first, 1 middle, 2 last,
 * 3 first and last, 4 pressed) for rows @visible_width wide: made from
 * @images[detail] scaled to the row, or drawn when the theme has no such
 * image. All five are dropped when the width differs from *@last_width,
 * which all lists of one kind share. */
GdkPixmap *detail_pixmap (GdkDrawable *like, GdkPixmap **pixmaps, gchar **images, int visible_width,
                          int *last_width, int detail, const char *func);

} // namespace tav::rows

#endif /* TAV_ENTRY_ROW_PAINTER_H */
