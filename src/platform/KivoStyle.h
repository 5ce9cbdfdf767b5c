/* Touch platform layer - the look shared by every widget of the layer (internal)
 *
 * kivo_style_init() installs our gtkrc (finger-height buttons, large type,
 * flat colours) and replaces the drawing of boxes, shadows, focus rings and
 * check marks of GTK's default style with flat, rounded cairo drawing, so
 * plain GTK widgets inside our windows match the layer's own widgets.
 */
#ifndef KIVO_STYLE_H
#define KIVO_STYLE_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* Height of a finger-sized target, and of a thumb-sized one, in pixels. */
#define KIVO_FINGER_HEIGHT 70
#define KIVO_THUMB_HEIGHT 84
/* Corner radius of buttons, entries and notes. */
#define KIVO_CORNER_RADIUS 10.0
/* Outer margin between rows of controls. */
#define KIVO_MARGIN_DEFAULT 8
#define KIVO_MARGIN_DOUBLE 16

/* Sizes for buttons and check buttons. */
typedef enum {
    KIVO_SIZE_AUTO = 0,
    KIVO_SIZE_FINGER_HEIGHT = 1,
    KIVO_SIZE_THUMB_HEIGHT = 2,
} KivoSizeType;

/* Installs the layer's style once per process (needs an open display).
 * Every widget of the library calls it when it is made, so the style is in
 * place before the first window shows: installing it later restyles (and
 * resizes) what is already on screen. */
void kivo_style_init (void);
/* Whether the style's resources are installed. */
gboolean kivo_style_installed (void);

/* The layer's palette, as 0..1 RGB. */
typedef struct {
    double r, g, b;
} KivoRgb;

typedef enum {
    KIVO_COLOR_BACKGROUND,      /* window background */
    KIVO_COLOR_SURFACE,         /* buttons, entries, rows */
    KIVO_COLOR_SURFACE_PRESSED, /* a pressed surface */
    KIVO_COLOR_BORDER,          /* hairlines around surfaces */
    KIVO_COLOR_ACCENT,          /* selection, active toggles, check marks */
    KIVO_COLOR_ACCENT_TEXT,     /* text on the accent colour */
    KIVO_COLOR_TEXT,            /* primary text */
    KIVO_COLOR_SECONDARY_TEXT,  /* values, placeholders */
    KIVO_COLOR_TITLE_BAR,       /* a window's title area */
    KIVO_COLOR_BANNER,          /* information banners */
    KIVO_COLOR_COUNT
} KivoColorRole;

KivoRgb kivo_style_color (KivoColorRole role);
void kivo_style_set_source (cairo_t *cr, KivoColorRole role, double alpha);
/* Adds a rounded rectangle path to @cr. */
void kivo_style_rounded_rect (cairo_t *cr, double x, double y, double width, double height, double radius);
/* Fills a rounded surface (with a hairline border) over @area of @window. */
void kivo_style_paint_surface (GdkWindow *window, const GdkRectangle *clip, int x, int y, int width, int height,
                               KivoColorRole fill, gboolean border);

/* Gives a dialog (or popup) the layer's frame: our background, a dark
 * outline (there is no window manager frame on the handheld) and, for a
 * GtkDialog, @title in bold at the top of its content (NULL: none). */
/* Paints a window-like @widget's background framed in @border of @line_width
 * within @event's region, then its child. */
void kivo_style_paint_framed (GtkWidget *widget, GdkEventExpose *event, KivoColorRole border, double line_width);
void kivo_style_decorate_dialog (GtkWidget *window, const char *title);

G_END_DECLS

#endif /* KIVO_STYLE_H */
