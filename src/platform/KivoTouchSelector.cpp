/* Touch platform layer - touch selectors */

#include "KivoTouchSelector.h"

#include "KivoPannableArea.h"
#include "KivoStyle.h"
#include "TavGPtr.h"

#include <new>
#include <string>
#include <vector>

enum {
    SIGNAL_CHANGED,
    N_SIGNALS
};

static guint signals[N_SIGNALS];

/* Four and a half rows: the rows around the selection show it is a list. */
constexpr int kSelectorHeight = 4 * KIVO_FINGER_HEIGHT + KIVO_FINGER_HEIGHT / 2;

namespace {

struct Column {
    GtkWidget *area = nullptr;
    GtkWidget *view = nullptr;
    /* Blank space above and below the rows, half a page each, so that any
     * row, the first and the last too, can stand in the middle: the
     * selected rows of all columns then line up. */
    GtkWidget *above = nullptr, *below = nullptr;
    tav::GRefPtr<GtkTreeModel> model;
};

/* Scrolls @column so its selected row stands in the middle of the column. */
void
center_column (const Column &column)
{
    GtkTreeIter iter;
    GtkTreeModel *model = nullptr;
    GtkTreeSelection *selection = gtk_tree_view_get_selection (GTK_TREE_VIEW (column.view));
    if (!gtk_tree_selection_get_selected (selection, &model, &iter) || !gtk_widget_get_realized (column.view))
        return;
    GtkTreePath *path = gtk_tree_model_get_path (model, &iter);
    GdkRectangle row;
    gtk_tree_view_get_background_area (GTK_TREE_VIEW (column.view), path, nullptr, &row);
    gtk_tree_path_free (path);
    GtkAdjustment *adjustment = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (column.area));
    const double page = gtk_adjustment_get_page_size (adjustment);
    const double value = column.above->allocation.height + row.y + row.height / 2.0 - page / 2.0;
    gtk_adjustment_set_value (adjustment, CLAMP (value, gtk_adjustment_get_lower (adjustment),
                                                 gtk_adjustment_get_upper (adjustment) - page));
}

} // namespace

struct _KivoTouchSelectorPrivate {
    GtkWidget *row = nullptr; /* the columns side by side */
    std::vector<Column> columns;
    KivoTouchSelectorPrintFunc print_func = nullptr;
    gpointer print_data = nullptr;
    GDestroyNotify print_destroy = nullptr;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoTouchSelector, kivo_touch_selector, GTK_TYPE_VBOX)

/* Callbacks */

/* The blank space follows the column's height; the selection stays in the
 * middle. */
static void
on_area_size_allocate_cb (GtkWidget *area, GtkAllocation *allocation, gpointer data)
{
    auto *selector = KIVO_TOUCH_SELECTOR (data);
    for (const Column &column : selector->priv->columns) {
        if (column.area != area)
            continue;
        const int half = MAX (0, (allocation->height - KIVO_FINGER_HEIGHT) / 2);
        int current = -1;
        gtk_widget_get_size_request (column.above, nullptr, &current);
        if (current != half) {
            gtk_widget_set_size_request (column.above, -1, half);
            gtk_widget_set_size_request (column.below, -1, half);
        }
        center_column (column);
    }
}


static void
on_selection_changed_cb (GtkTreeSelection *selection, gpointer data)
{
    KivoTouchSelector *selector = KIVO_TOUCH_SELECTOR (data);
    auto &columns = selector->priv->columns;
    for (size_t i = 0; i < columns.size (); i++) {
        if (gtk_tree_view_get_selection (GTK_TREE_VIEW (columns[i].view)) == selection) {
            g_signal_emit (selector, signals[SIGNAL_CHANGED], 0, static_cast<gint> (i));
            return;
        }
    }
}

static Column *
column_at (KivoTouchSelector *selector, gint column)
{
    auto &columns = selector->priv->columns;
    if (column < 0 || static_cast<size_t> (column) >= columns.size ())
        return nullptr;
    return &columns[column];
}

static GtkListStore *
text_store (KivoTouchSelector *selector)
{
    Column *column = column_at (selector, 0);
    if (!column || !GTK_IS_LIST_STORE (column->model.get ()))
        return nullptr;
    return GTK_LIST_STORE (column->model.get ());
}

/* GObject overrides */

static void
kivo_touch_selector_finalize (GObject *object)
{
    auto *priv = KIVO_TOUCH_SELECTOR (object)->priv;
    if (priv->print_destroy)
        priv->print_destroy (priv->print_data);
    priv->~KivoTouchSelectorPrivate ();
    G_OBJECT_CLASS (kivo_touch_selector_parent_class)->finalize (object);
}

static void
kivo_touch_selector_class_init (KivoTouchSelectorClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = kivo_touch_selector_finalize;
    signals[SIGNAL_CHANGED] = g_signal_new ("changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST,
        G_STRUCT_OFFSET (KivoTouchSelectorClass, changed), nullptr, nullptr,
        g_cclosure_marshal_VOID__INT, G_TYPE_NONE, 1, G_TYPE_INT);
    kivo_style_init ();
}

static void
kivo_touch_selector_init (KivoTouchSelector *selector)
{
    void *memory = kivo_touch_selector_get_instance_private (selector);
    selector->priv = new (memory) KivoTouchSelectorPrivate ();
    selector->priv->row = gtk_hbox_new (TRUE, KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (selector), selector->priv->row, TRUE, TRUE, 0);
    gtk_widget_show (selector->priv->row);
    gtk_widget_set_size_request (GTK_WIDGET (selector), -1, kSelectorHeight);
}

/* Public API */

GtkWidget *
kivo_touch_selector_new (void)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_TOUCH_SELECTOR, nullptr));
}

GtkWidget *
kivo_touch_selector_new_text (void)
{
    GtkWidget *selector = kivo_touch_selector_new ();
    tav::GRefPtr<GtkListStore> store = tav::adoptGRef (gtk_list_store_new (1, G_TYPE_STRING));
    kivo_touch_selector_append_text_column (KIVO_TOUCH_SELECTOR (selector), GTK_TREE_MODEL (store.get ()), FALSE);
    return selector;
}

gint
kivo_touch_selector_append_text_column (KivoTouchSelector *selector, GtkTreeModel *model, gboolean center)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), -1);
    g_return_val_if_fail (GTK_IS_TREE_MODEL (model), -1);
    g_return_val_if_fail (gtk_tree_model_get_column_type (model, 0) == G_TYPE_STRING, -1);

    Column column;
    column.model = tav::GRefPtr<GtkTreeModel> (model);
    column.view = gtk_tree_view_new_with_model (model);
    gtk_tree_view_set_headers_visible (GTK_TREE_VIEW (column.view), FALSE);
    GtkCellRenderer *renderer = gtk_cell_renderer_text_new ();
    g_object_set (renderer, "height", KIVO_FINGER_HEIGHT, "xpad", KIVO_MARGIN_DOUBLE,
                  "xalign", center ? 0.5 : 0.0, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    gtk_tree_view_insert_column_with_attributes (GTK_TREE_VIEW (column.view), -1, nullptr, renderer,
                                                 "text", 0, nullptr);
    GtkTreeSelection *selection = gtk_tree_view_get_selection (GTK_TREE_VIEW (column.view));
    gtk_tree_selection_set_mode (selection, GTK_SELECTION_SINGLE);
    g_signal_connect (selection, "changed", G_CALLBACK (on_selection_changed_cb), selector);

    column.area = kivo_pannable_area_new ();
    g_object_set (column.area, "hovershoot-max", 0, "vovershoot-max", 60,
                  "hscrollbar-policy", GTK_POLICY_NEVER, nullptr);
    GtkWidget *rows = gtk_vbox_new (FALSE, 0);
    column.above = gtk_event_box_new ();
    column.below = gtk_event_box_new ();
    const KivoRgb rgb = kivo_style_color (KIVO_COLOR_SURFACE);
    GdkColor surface = { 0, guint16 (rgb.r * 65535), guint16 (rgb.g * 65535), guint16 (rgb.b * 65535) };
    /* Sized for the selector's own height from the start; a taller or
     * shorter column resizes them when it is allocated. */
    for (GtkWidget *blank : { column.above, column.below }) {
        gtk_widget_modify_bg (blank, GTK_STATE_NORMAL, &surface);
        gtk_widget_set_size_request (blank, -1, (kSelectorHeight - KIVO_FINGER_HEIGHT) / 2);
    }
    gtk_box_pack_start (GTK_BOX (rows), column.above, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (rows), column.view, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (rows), column.below, FALSE, FALSE, 0);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (column.area), rows);
    g_signal_connect (column.area, "size-allocate", G_CALLBACK (on_area_size_allocate_cb), selector);
    gtk_box_pack_start (GTK_BOX (selector->priv->row), column.area, TRUE, TRUE, 0);
    gtk_widget_show_all (column.area);
    selector->priv->columns.push_back (std::move (column));
    return static_cast<gint> (selector->priv->columns.size ()) - 1;
}

gint
kivo_touch_selector_get_num_columns (KivoTouchSelector *selector)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), 0);
    return static_cast<gint> (selector->priv->columns.size ());
}

GtkTreeModel *
kivo_touch_selector_get_model (KivoTouchSelector *selector, gint column)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), NULL);
    Column *c = column_at (selector, column);
    g_return_val_if_fail (c != NULL, NULL);
    return c->model.get ();
}

void
kivo_touch_selector_insert_text (KivoTouchSelector *selector, gint position, const char *text)
{
    g_return_if_fail (KIVO_IS_TOUCH_SELECTOR (selector));
    g_return_if_fail (text != NULL);
    GtkListStore *store = text_store (selector);
    g_return_if_fail (store != NULL);
    gtk_list_store_insert_with_values (store, nullptr, position, 0, text, -1);
}

void
kivo_touch_selector_append_text (KivoTouchSelector *selector, const char *text)
{
    kivo_touch_selector_insert_text (selector, -1, text);
}

void
kivo_touch_selector_prepend_text (KivoTouchSelector *selector, const char *text)
{
    kivo_touch_selector_insert_text (selector, 0, text);
}

void
kivo_touch_selector_remove_all (KivoTouchSelector *selector)
{
    g_return_if_fail (KIVO_IS_TOUCH_SELECTOR (selector));
    GtkListStore *store = text_store (selector);
    g_return_if_fail (store != NULL);
    gtk_list_store_clear (store);
}

gint
kivo_touch_selector_get_active (KivoTouchSelector *selector, gint column)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), -1);
    Column *c = column_at (selector, column);
    g_return_val_if_fail (c != NULL, -1);
    GtkTreeSelection *selection = gtk_tree_view_get_selection (GTK_TREE_VIEW (c->view));
    GtkTreeIter iter;
    GtkTreeModel *model = nullptr;
    if (!gtk_tree_selection_get_selected (selection, &model, &iter))
        return -1;
    GtkTreePath *path = gtk_tree_model_get_path (model, &iter);
    const gint index = gtk_tree_path_get_indices (path)[0];
    gtk_tree_path_free (path);
    return index;
}

void
kivo_touch_selector_set_active (KivoTouchSelector *selector, gint column, gint index)
{
    g_return_if_fail (KIVO_IS_TOUCH_SELECTOR (selector));
    Column *c = column_at (selector, column);
    g_return_if_fail (c != NULL);
    GtkTreeSelection *selection = gtk_tree_view_get_selection (GTK_TREE_VIEW (c->view));
    GtkTreeIter iter;
    if (index < 0 || !gtk_tree_model_iter_nth_child (c->model.get (), &iter, nullptr, index)) {
        g_return_if_fail (index < 0);
        gtk_tree_selection_unselect_all (selection);
        return;
    }
    gtk_tree_selection_select_iter (selection, &iter);
    center_column (*c);
}

gchar *
kivo_touch_selector_get_current_text (KivoTouchSelector *selector)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), NULL);
    auto *priv = selector->priv;
    if (priv->print_func)
        return priv->print_func (selector, priv->print_data);
    std::string text;
    bool any = false;
    for (const Column &column : priv->columns) {
        GtkTreeIter iter;
        GtkTreeModel *model = nullptr;
        GtkTreeSelection *selection = gtk_tree_view_get_selection (GTK_TREE_VIEW (column.view));
        if (!gtk_tree_selection_get_selected (selection, &model, &iter))
            continue;
        gchar *row = nullptr;
        gtk_tree_model_get (model, &iter, 0, &row, -1);
        if (any)
            text += ", ";
        text += row ? row : "";
        any = true;
        g_free (row);
    }
    return any ? g_strdup (text.c_str ()) : nullptr;
}

void
kivo_touch_selector_set_print_func (KivoTouchSelector *selector, KivoTouchSelectorPrintFunc func,
                                    gpointer user_data, GDestroyNotify destroy)
{
    g_return_if_fail (KIVO_IS_TOUCH_SELECTOR (selector));
    auto *priv = selector->priv;
    if (priv->print_destroy)
        priv->print_destroy (priv->print_data);
    priv->print_func = func;
    priv->print_data = user_data;
    priv->print_destroy = destroy;
}

void
kivo_touch_selector_center_on_selected (KivoTouchSelector *selector)
{
    g_return_if_fail (KIVO_IS_TOUCH_SELECTOR (selector));
    for (const Column &column : selector->priv->columns)
        center_column (column);
}

GtkWidget *
kivo_touch_selector_get_column_view (KivoTouchSelector *selector, gint column)
{
    g_return_val_if_fail (KIVO_IS_TOUCH_SELECTOR (selector), NULL);
    Column *c = column_at (selector, column);
    g_return_val_if_fail (c != NULL, NULL);
    return c->view;
}
