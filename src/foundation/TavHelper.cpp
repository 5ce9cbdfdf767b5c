/* libcalendarui - error messages, theme and image helpers, small utilities */

#include "TavHelper.h"

#include <cmath>
#include <cstring>
#include <libintl.h>
#include <locale.h>

#include "KivoBanner.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

using tav::GCharPtr;
using tav::GRefPtr;

/* Error messages ----------------------------------------------------------- */

char *
tav_calendar_get_error_string (CalendarUiErrorCode code)
{
    TAV_MESSAGE ("error is.. %d", (int) code);

    switch (code) {
    case CalendarDiskFullError:
        /* The memory-full text takes one string argument (a device name);
         * the calendar has none to give. */
        return g_strdup_printf (tav_dgettext (TAV_DOMAIN_DEVWATCH, "cerm_device_memory_full"), "");
    case CalendarInvalidIcsComponent:
    case CalendarImportIncomplete:
    case CalendarInvalidIcsFile:
        return g_strdup (TAV_CAL ("cal_ni_ical_invalid"));
    case CalendarAlreadyExists:
        return g_strdup (TAV_CAL ("cal_ib_title_exists"));
    default:
        return g_strdup (TAV_CAL ("cal_ni_internal_error"));
    }
}

void
tav_show_info_banner (GtkWidget *widget, const char *text)
{
    if (!text)
        return;
    kivo_banner_show_information (widget, NULL, text);
}

/* Signals ------------------------------------------------------------------ */

gboolean
tav_boolean_handled_accumulator (GSignalInvocationHint *hint, GValue *return_accu,
                                 const GValue *handler_return, gpointer data)
{
    gboolean handled = g_value_get_boolean (handler_return);
    g_value_set_boolean (return_accu, handled);
    return !handled;
}

/* Strings and geometry ------------------------------------------------------ */

int
tav_compare_utf8_strings (const char *str1, const char *str2)
{
    g_return_val_if_fail (str1 != NULL, -1);
    g_return_val_if_fail (str2 != NULL, -1);

    GCharPtr folded1 (g_utf8_casefold (str1, -1));
    GCharPtr folded2 (g_utf8_casefold (str2, -1));
    return g_utf8_collate (folded1.get (), folded2.get ());
}

char *
tav_str_capitalize (char *str)
{
    if (str && *str)
        *str = g_ascii_toupper (*str);
    return str;
}

gboolean
gdk_rectangle_has_point (const GdkRectangle *rectangle, int x, int y)
{
    g_return_val_if_fail (rectangle != NULL, FALSE);

    /* Both the right and the bottom edge count as inside: the views' hit
     * tests are written against this inclusive bound. */
    return rectangle->x <= x && x <= rectangle->x + rectangle->width &&
           rectangle->y <= y && y <= rectangle->y + rectangle->height;
}

gboolean
tav_requisition_is_equal (const GtkRequisition *a, const GtkRequisition *b)
{
    g_return_val_if_fail (a != NULL && b != NULL, FALSE);
    return a->width == b->width && a->height == b->height;
}

void
tav_requisition_assign (GtkRequisition *dest, const GtkRequisition *src)
{
    g_return_if_fail (dest != NULL && src != NULL);
    dest->width = src->width;
    dest->height = src->height;
}

/* Theme, fonts, colours ------------------------------------------------------- */

namespace {

/* The widget name used in messages about a failed context. */
const char *widget_name (GtkWidget *widget)
{
    const char *name = gtk_widget_get_name (widget);
    return name ? name : G_OBJECT_TYPE_NAME (widget);
}

/* Creates a layout for @widget with @font, or logs and returns NULL. */
PangoLayout *layout_with_font (GtkWidget *widget, const PangoFontDescription *font)
{
    PangoContext *context = gtk_widget_create_pango_context (widget);
    if (!context) {
        TAV_WARNING ("Creation of PangoContext for '%s' failed.", widget_name (widget));
        return nullptr;
    }
    pango_context_set_font_description (context, font);
    PangoLayout *layout = pango_layout_new (context);
    g_object_unref (context);
    return layout;
}

} // namespace

void
create_pango_layout_from_theme (GtkWidget *widget, const char *style_path, PangoLayout **layout, ...)
{
    if (!GTK_IS_WIDGET (widget))
        g_assertion_message_expr (G_LOG_DOMAIN, "helper", __LINE__, __func__, "GTK_IS_WIDGET(widget)");

    va_list args;
    va_start (args, layout);
    for (const char *path = style_path; path; path = va_arg (args, const char *)) {
        PangoLayout **target = (path == style_path) ? layout : va_arg (args, PangoLayout **);
        GtkStyle *style = gtk_rc_get_style_by_paths (gtk_widget_get_settings (widget), path, NULL, G_TYPE_NONE);
        if (!style) {
            TAV_WARNING ("Can not find font style for '%s'", path);
            continue;
        }
        if (PangoLayout *made = layout_with_font (widget, style->font_desc))
            *target = made;
    }
    va_end (args);
}

void
create_pango_layout (GtkWidget *widget, const char *font_string, PangoLayout **layout, ...)
{
    if (!GTK_IS_WIDGET (widget))
        g_assertion_message_expr (G_LOG_DOMAIN, "helper", __LINE__, __func__, "GTK_IS_WIDGET(widget)");

    va_list args;
    va_start (args, layout);
    for (const char *font = font_string; font; font = va_arg (args, const char *)) {
        PangoLayout **target = (font == font_string) ? layout : va_arg (args, PangoLayout **);
        tav::GUniquePtr<PangoFontDescription> description (pango_font_description_from_string (font));
        if (PangoLayout *made = layout_with_font (widget, description.get ()))
            *target = made;
    }
    va_end (args);
}

void
alloc_color (GdkColormap *colormap, const char *color_name, GdkColor *color, ...)
{
    if (colormap == NULL)
        g_assertion_message_expr (G_LOG_DOMAIN, "helper", __LINE__, __func__, "colormap != NULL");

    va_list args;
    va_start (args, color);
    for (const char *name = color_name; name; name = va_arg (args, const char *)) {
        GdkColor *target = (name == color_name) ? color : va_arg (args, GdkColor *);
        gdk_color_parse (name, target);
        gdk_colormap_alloc_color (colormap, target, FALSE, TRUE);
    }
    va_end (args);
}

void
apply_path (const char *directory, const char *subdirectory, char **path, ...)
{
    if (directory == NULL)
        g_assertion_message_expr (G_LOG_DOMAIN, "helper", __LINE__, __func__, "directory != NULL");

    va_list args;
    va_start (args, path);
    for (char **target = path; target; target = va_arg (args, char **)) {
        char *joined = subdirectory ? g_build_filename (directory, subdirectory, *target, NULL)
                                    : g_build_filename (directory, *target, NULL);
        g_free (*target);
        *target = joined;
    }
    va_end (args);
}

/* Images ---------------------------------------------------------------------- */

namespace {

GdkPixbuf *load_at_size (const char *path, int width, int height, gboolean keep_aspect)
{
    GError *error = nullptr;
    GdkPixbuf *picture = gdk_pixbuf_new_from_file_at_scale (path, width, height, keep_aspect, &error);
    if (error) {
        TAV_WARNING ("Error loading image: %s", error->message);
        g_error_free (error);
    }
    return picture;
}

GdkPixbuf *load_unchanged (const char *path)
{
    GError *error = nullptr;
    GdkPixbuf *picture = gdk_pixbuf_new_from_file (path, &error);
    if (error) {
        TAV_WARNING ("Error loading image: %s", error->message);
        g_error_free (error);
    }
    return picture;
}

} // namespace

GdkPixbuf *
tav_create_pixbuf (const char *path, int width, int height)
{
    int file_width = 0, file_height = 0;
    if (!path || !gdk_pixbuf_get_file_info (path, &file_width, &file_height) ||
        file_width <= 0 || file_height <= 0) {
        TAV_WARNING ("Unable to load '%s'", path ? path : "(null)");
        return NULL;
    }

    GdkPixbuf *picture;
    if (file_width == width && file_height == height) {
        picture = load_unchanged (path);
    } else {
        /* Scale to cover the whole box, with two pixels to spare, then crop
         * the top-left corner below. */
        double scale = MIN ((double) width / file_width, (double) height / file_height);
        int scaled_width = (int) (scale * file_width);
        int scaled_height = (int) (scale * file_height);
        double aspect = (double) scaled_width / (double) MAX (scaled_height, 1);
        if (width > scaled_width)
            picture = load_at_size (path, width, (int) (width / aspect + 2.0), FALSE);
        else
            picture = load_at_size (path, (int) (2.0 + height * aspect), height, FALSE);
    }
    g_return_val_if_fail (picture != NULL, NULL);

    GdkPixbuf *result = gdk_pixbuf_new (GDK_COLORSPACE_RGB, TRUE, 8, width, height);
    if (!result) {
        g_object_unref (picture);
        return NULL;
    }
    gdk_pixbuf_fill (result, 0);
    int copy_width = MIN (width, gdk_pixbuf_get_width (picture));
    int copy_height = MIN (height, gdk_pixbuf_get_height (picture));
    gdk_pixbuf_copy_area (picture, 0, 0, copy_width, copy_height, result, 0, 0);
    g_object_unref (picture);
    return result;
}

GdkPixbuf *
tav_create_pixbuf_at_scale (const char *path, int width, int height)
{
    int file_width = 0, file_height = 0;
    if (!path || !gdk_pixbuf_get_file_info (path, &file_width, &file_height)) {
        TAV_WARNING ("Unable to load '%s'", path ? path : "(null)");
        return NULL;
    }
    GdkPixbuf *picture = (file_width == width && file_height == height)
                             ? load_unchanged (path)
                             : load_at_size (path, width, height, FALSE);
    g_return_val_if_fail (picture != NULL, NULL);
    return picture;
}

GdkPixbuf *
tav_pixbuf_ensure_has_alpha (GdkPixbuf *pixbuf)
{
    g_return_val_if_fail (GDK_IS_PIXBUF (pixbuf), NULL);
    if (gdk_pixbuf_get_has_alpha (pixbuf))
        return pixbuf;
    GdkPixbuf *with_alpha = gdk_pixbuf_add_alpha (pixbuf, TRUE, 255, 255, 255);
    g_object_unref (pixbuf);
    return with_alpha;
}

/* Theme parser ----------------------------------------------------------------- */

gboolean
string_array_property_parser (const GParamSpec *pspec, const GString *rc_string, GValue *property_value)
{
    g_return_val_if_fail (rc_string != NULL && property_value != NULL, FALSE);

    GValueArray *array = g_value_array_new (12);
    GString *current = nullptr;

    for (const char *p = rc_string->str; p && *p; p = g_utf8_next_char (p)) {
        gunichar ch = g_utf8_get_char (p);
        if (ch == '"') {
            if (!current) {
                current = g_string_new (NULL);
            } else {
                GValue item = G_VALUE_INIT;
                g_value_init (&item, G_TYPE_STRING);
                g_value_take_string (&item, g_string_free (current, FALSE));
                g_value_array_append (array, &item);
                g_value_unset (&item);
                current = nullptr;
            }
        } else if (current) {
            g_string_append_unichar (current, ch);
        }
    }
    /* A string still open at the end of the text is dropped. */
    if (current)
        g_string_free (current, TRUE);

    g_value_take_boxed (property_value, array);
    return TRUE;
}

/* Process-wide slots ----------------------------------------------------------- */

namespace {
const char *s_pixmap_folder = nullptr;
gpointer s_open_note = nullptr;
char s_prof_buffer[64];
} // namespace

void
set_pixmap_folder (const char *path)
{
    /* Not copied: the host keeps the string alive. */
    s_pixmap_folder = path;
}

const char *
get_pixmap_folder (void)
{
    return s_pixmap_folder;
}

gpointer
calendar_set_or_get_open_note (int get, gpointer note)
{
    if (get)
        return s_open_note;
    s_open_note = note;
    return note;
}

clock_t
start_prof_time (void)
{
    return clock ();
}

const char *
end_prof_time (clock_t start)
{
    g_snprintf (s_prof_buffer, sizeof s_prof_buffer, "%f",
                (double) (clock () - start) / 1e6 * 1000.0);
    return s_prof_buffer;
}
