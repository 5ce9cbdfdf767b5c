/* libcalendarui - logging, error codes and foundation utilities
 *
 * The lowest layer of the library: the two-channel diagnostic log, the error
 * codes returned by calendar source operations and their user messages, and a
 * few helpers for themes, images, strings and geometry.
 */
#ifndef TAV_HELPER_H
#define TAV_HELPER_H

#include <time.h>
#include <glib-object.h>
#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

/**
 * CalendarUiErrorCode:
 *
 * Result of a calendar source operation. Success is %CalendarNoError (11),
 * not 0: every caller compares against %CalendarNoError.
 */
typedef enum {
    CalendarUiMissingString = 0,     /*< nick=uimissingstring >*/
    CalendarUiInvalidDate = 1,       /*< nick=uiinvaliddate >*/
    CalendarUiZoomError = 2,         /*< nick=uizoomerror >*/
    CalendarDiskFullError = 3,       /*< nick=diskfullerror >*/
    CalendarDefaultError = 4,        /*< nick=defaulterror >*/
    CalendarDuplicateError = 5,      /*< nick=duplicateerror >*/
    CalendarInvalidIcsComponent = 6, /*< nick=invalidicscomponent >*/
    CalendarImportIncomplete = 7,    /*< nick=importincomplete >*/
    CalendarInvalidIcsFile = 8,      /*< nick=invalidicsfile >*/
    CalendarAlreadyExists = 9,       /*< nick=alreadyexists >*/
    CalendarInvalidArg = 10,         /*< nick=invalidarg >*/
    CalendarNoError = 11             /*< nick=noerror >*/
} CalendarUiErrorCode;

/* Logging ---------------------------------------------------------------- */

/**
 * loggingPath:
 *
 * Returns: the log channel, decided on the first call and kept for the rest
 * of the process: 2 (syslog) when the log marker file exists, else 1 (terminal).
 */
TAV_API int      loggingPath                  (void);
TAV_API gboolean tav_message_use_syslog       (void);
/**
 * checkFileExists:
 * @path: a file system path (NULL is refused with a critical: FALSE)
 *
 * Returns: TRUE unless asking the file system about @path fails with ENOENT.
 */
TAV_API gboolean checkFileExists              (const char *path);
TAV_API void     tav_message_print_message    (const char *func, const char *format, ...) G_GNUC_PRINTF (2, 3);
TAV_API void     tav_message_print_warning    (const char *func, const char *format, ...) G_GNUC_PRINTF (2, 3);
TAV_API void     tav_message_print_debug      (const char *func, const char *format, ...) G_GNUC_PRINTF (2, 3);

/* Error messages ----------------------------------------------------------- */

/**
 * tav_calendar_get_error_string:
 * @code: the result of a source operation
 *
 * Returns: (transfer full): the user message for @code; free with g_free().
 */
TAV_API char    *tav_calendar_get_error_string (CalendarUiErrorCode code);

/**
 * tav_show_info_banner:
 * @widget: (nullable): a widget in the window the banner belongs to
 * @text: (nullable): the text; NULL shows nothing
 */
TAV_API void     tav_show_info_banner          (GtkWidget *widget, const char *text);

/* Signals ------------------------------------------------------------------ */

/**
 * tav_boolean_handled_accumulator:
 *
 * Accumulator for boolean signals: the first handler returning TRUE stops the
 * emission, and its value is the signal's result.
 */
TAV_API gboolean tav_boolean_handled_accumulator (GSignalInvocationHint *hint,
                                                  GValue                *return_accu,
                                                  const GValue          *handler_return,
                                                  gpointer               data);

/* Strings and geometry ------------------------------------------------------ */

TAV_API int      tav_compare_utf8_strings     (const char *str1, const char *str2);
TAV_API char    *tav_str_capitalize           (char *str);
/**
 * gdk_rectangle_has_point:
 *
 * Returns: TRUE when (x, y) lies in @rectangle, the right and bottom edges
 * included.
 */
TAV_API gboolean gdk_rectangle_has_point      (const GdkRectangle *rectangle, int x, int y);
TAV_API gboolean tav_requisition_is_equal     (const GtkRequisition *a, const GtkRequisition *b);
TAV_API void     tav_requisition_assign       (GtkRequisition *dest, const GtkRequisition *src);

/* Theme, fonts, colours, images --------------------------------------------- */

/**
 * create_pango_layout_from_theme:
 * @widget: the widget the layouts are made for
 * @style_path: a theme style path such as "SmallSystemFont"
 * @layout: (out): receives a new layout; untouched when the style is missing
 * @...: more path/layout pairs, ended by NULL
 */
TAV_API void     create_pango_layout_from_theme (GtkWidget *widget, const char *style_path,
                                                 PangoLayout **layout, ...) G_GNUC_NULL_TERMINATED;
TAV_API void     create_pango_layout            (GtkWidget *widget, const char *font_string,
                                                 PangoLayout **layout, ...) G_GNUC_NULL_TERMINATED;
TAV_API void     alloc_color                    (GdkColormap *colormap, const char *color_name,
                                                 GdkColor *color, ...) G_GNUC_NULL_TERMINATED;
/**
 * apply_path:
 * @directory: the directory to prepend
 * @subdirectory: (nullable): an optional directory between the two
 * @path: (inout): a string replaced by the joined file name; the old one is freed
 */
TAV_API void     apply_path                     (const char *directory, const char *subdirectory,
                                                 char **path, ...) G_GNUC_NULL_TERMINATED;

/**
 * tav_create_pixbuf:
 *
 * Returns: (transfer full) (nullable): the image at @path scaled to cover
 * exactly @width by @height, or NULL when it cannot be loaded.
 */
TAV_API GdkPixbuf *tav_create_pixbuf            (const char *path, int width, int height);
TAV_API GdkPixbuf *tav_create_pixbuf_at_scale   (const char *path, int width, int height);
/**
 * tav_pixbuf_ensure_has_alpha:
 * @pixbuf: (transfer full): a pixbuf
 *
 * Returns: (transfer full): @pixbuf when it has alpha, otherwise a copy in
 * which white is transparent.
 */
TAV_API GdkPixbuf *tav_pixbuf_ensure_has_alpha  (GdkPixbuf *pixbuf);

TAV_API gboolean string_array_property_parser   (const GParamSpec *pspec, const GString *rc_string,
                                                 GValue *property_value);

TAV_API void        set_pixmap_folder           (const char *path);
TAV_API const char *get_pixmap_folder           (void);

/* Process-wide slots ---------------------------------------------------------- */

TAV_API gpointer    calendar_set_or_get_open_note (int get, gpointer note);
TAV_API clock_t     start_prof_time               (void);
TAV_API const char *end_prof_time                 (clock_t start);

G_END_DECLS

#endif /* TAV_HELPER_H */
