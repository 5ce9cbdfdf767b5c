/* libcalendarui - copying object properties into dialog widgets and back
 *
 * The editors keep their state in GObject properties and show it in plain
 * widgets. tav_copy_properties_to_widgets() and tav_copy_widgets_to_properties()
 * take pairs of property name and widget, ended by a NULL name, and move the
 * value according to the widget's class:
 *
 *   touch entry, GtkEntry    string property <-> entry text (NULL shows "")
 *   GtkTextView              string property <-> the whole buffer text
 *   GtkToggleButton          boolean property <-> active state
 *
 * Any other widget is reported ("Unsupported widget type: %s.") and the
 * remaining pairs are still handled. A NULL widget is skipped silently
 * towards the widgets, and noted ("Widget for %s not found") towards the
 * properties.
 *
 * The tav_kivo_* functions work on the library's own touch widgets (the text
 * view with placeholder and the title/value button its dialogs use); they
 * are for dialogs built on the library and refuse other widgets.
 */
#ifndef TAV_WIDGET_BINDING_H
#define TAV_WIDGET_BINDING_H

#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

/* The library's touch widgets, opaque to hosts. */
typedef struct _KivoTextView KivoTextView;
typedef struct _KivoButton   KivoButton;

/* FALSE (with a critical) when @object is not a GObject, else TRUE. */
TAV_API gboolean tav_copy_properties_to_widgets (GObject *object, const char *property,
                                                 GtkWidget *widget, ...) G_GNUC_NULL_TERMINATED;
TAV_API gboolean tav_copy_widgets_to_properties (GObject *object, const char *property,
                                                 GtkWidget *widget, ...) G_GNUC_NULL_TERMINATED;

/* Text of a touch text view: set replaces the buffer, get returns the whole
 * visible text (newly allocated), set_cursor_at_start moves the cursor. */
TAV_API void  tav_kivo_text_view_set_text        (KivoTextView *text_view, const char *text);
TAV_API char *tav_kivo_text_view_get_text        (KivoTextView *text_view);
TAV_API void  tav_kivo_text_set_cursor_at_start  (KivoTextView *text_view);

/* The same for a plain text view; a NULL text empties it. */
TAV_API void  gtk_text_view_set_text (GtkTextView *text_view, const char *text);
TAV_API char *gtk_text_view_get_text (GtkTextView *text_view);

/* Shows a time ("%2d:%02d") or a date ("dd.mm.yyyy", @month 0-11) as the
 * value of a title/value button. */
TAV_API void tav_kivo_button_set_value_from_time (KivoButton *button, int hour, int minute);
TAV_API void tav_kivo_button_set_value_from_date (KivoButton *button, int year, int month, int day);

/* Drops one reference of every element and frees @list (NULL allowed). */
TAV_API void tav_object_drop_list (GList *list);

/* Selects (and scrolls to) the first row whose integer in @column equals
 * @value; the selection stays as it was when there is none. */
TAV_API void tav_tree_view_select_value_int (GtkTreeView *treeview, int column, int value);
/* The integer in @column of the selected row, -1 when none is selected. */
TAV_API int  tav_tree_view_get_column_int   (GtkTreeView *treeview, int column);

/* A visible button with @label that never takes the focus. */
TAV_API GtkWidget *gtk_button_new_default (const char *label);

G_END_DECLS

#endif /* TAV_WIDGET_BINDING_H */
