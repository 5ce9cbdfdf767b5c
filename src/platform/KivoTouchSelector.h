/* Touch platform layer - touch selectors (internal)
 *
 * A KivoTouchSelector shows one or more columns of text rows, each panned
 * with the finger, and keeps one selected row per column. Picker buttons
 * show it in a dialog; a date picker uses three columns, a time picker two.
 */
#ifndef KIVO_TOUCH_SELECTOR_H
#define KIVO_TOUCH_SELECTOR_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

#define KIVO_TYPE_TOUCH_SELECTOR (kivo_touch_selector_get_type ())
#define KIVO_TOUCH_SELECTOR(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_TOUCH_SELECTOR, KivoTouchSelector))
#define KIVO_IS_TOUCH_SELECTOR(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_TOUCH_SELECTOR))

typedef struct _KivoTouchSelector KivoTouchSelector;
typedef struct _KivoTouchSelectorClass KivoTouchSelectorClass;
typedef struct _KivoTouchSelectorPrivate KivoTouchSelectorPrivate;

struct _KivoTouchSelector {
    GtkVBox parent;
    KivoTouchSelectorPrivate *priv;
};

struct _KivoTouchSelectorClass {
    GtkVBoxClass parent_class;
    /* Signal "changed" (column): the selected row of @column changed. */
    void (*changed) (KivoTouchSelector *selector, gint column);
};

/* Formats the selection for the picker button's value; newly allocated. */
typedef gchar *(*KivoTouchSelectorPrintFunc) (KivoTouchSelector *selector, gpointer user_data);

GType kivo_touch_selector_get_type (void) G_GNUC_CONST;

/* A selector without columns. */
GtkWidget *kivo_touch_selector_new (void);
/* A selector with one text column. */
GtkWidget *kivo_touch_selector_new_text (void);
/* Adds a column showing string column 0 of @model; returns its index. */
gint kivo_touch_selector_append_text_column (KivoTouchSelector *selector, GtkTreeModel *model, gboolean center);
gint kivo_touch_selector_get_num_columns (KivoTouchSelector *selector);
GtkTreeModel *kivo_touch_selector_get_model (KivoTouchSelector *selector, gint column);

/* Rows of a text selector (column 0). */
void kivo_touch_selector_append_text (KivoTouchSelector *selector, const char *text);
void kivo_touch_selector_prepend_text (KivoTouchSelector *selector, const char *text);
void kivo_touch_selector_insert_text (KivoTouchSelector *selector, gint position, const char *text);
/* Removes every row of column 0. */
void kivo_touch_selector_remove_all (KivoTouchSelector *selector);

/* The selected row of @column, -1 when none. */
gint kivo_touch_selector_get_active (KivoTouchSelector *selector, gint column);
/* Selects @index in @column (-1 clears) and emits "changed". */
void kivo_touch_selector_set_active (KivoTouchSelector *selector, gint column, gint index);
/* The text of the selection: the print function's result, or the selected
 * texts of all columns joined by ", "; newly allocated, NULL when nothing is
 * selected. */
gchar *kivo_touch_selector_get_current_text (KivoTouchSelector *selector);
void kivo_touch_selector_set_print_func (KivoTouchSelector *selector, KivoTouchSelectorPrintFunc func,
                                         gpointer user_data, GDestroyNotify destroy);
/* Scrolls each column so its selected row is in view. */
void kivo_touch_selector_center_on_selected (KivoTouchSelector *selector);
/* The tree view of @column (for tests). */
GtkWidget *kivo_touch_selector_get_column_view (KivoTouchSelector *selector, gint column);

G_END_DECLS

#endif /* KIVO_TOUCH_SELECTOR_H */
