/* Touch platform layer - a window's application menu */

#include "KivoAppMenu.h"

#include "KivoStyle.h"

#include <gdk/gdkkeysyms.h>
#include <algorithm>
#include <new>
#include <vector>

struct _KivoAppMenuPrivate {
    bool disposed = false;
    GtkWidget *box = nullptr;         /* filters above the item grid */
    GtkWidget *filter_row = nullptr;
    GtkWidget *grid = nullptr;        /* GtkTable, two items per row */
    std::vector<GtkWidget *> items;   /* in order, owned by the grid while packed */
    std::vector<GtkWidget *> filters; /* owned by the filter row */
    GtkWindow *parent_window = nullptr;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoAppMenu, kivo_app_menu, GTK_TYPE_WINDOW)

static constexpr int kColumns = 2;

/* Auxiliary functions */

/* Lays the visible items out two to a row; hidden ones leave no gap. */
static void
relayout_items (KivoAppMenu *menu)
{
    auto *priv = menu->priv;
    for (GtkWidget *item : priv->items) {
        if (gtk_widget_get_parent (item) == priv->grid)
            gtk_container_remove (GTK_CONTAINER (priv->grid), item);
    }
    guint slot = 0;
    for (GtkWidget *item : priv->items) {
        if (!gtk_widget_get_visible (item))
            continue;
        const guint column = slot % kColumns, row = slot / kColumns;
        gtk_table_attach (GTK_TABLE (priv->grid), item, column, column + 1, row, row + 1,
                          static_cast<GtkAttachOptions> (GTK_EXPAND | GTK_FILL), GTK_FILL, 0, 0);
        slot++;
    }
    gtk_table_resize (GTK_TABLE (priv->grid), MAX (1u, (slot + kColumns - 1) / kColumns), kColumns);
    gtk_widget_set_visible (priv->filter_row, !priv->filters.empty ());
    if (gtk_widget_get_visible (GTK_WIDGET (menu)))
        gtk_window_resize (GTK_WINDOW (menu), 1, 1);
}

static gboolean
pointer_inside (GtkWidget *widget, GdkEventButton *event)
{
    /* Under the menu's grab, presses on other windows come to the menu too. */
    gpointer owner = nullptr;
    gdk_window_get_user_data (event->window, &owner);
    if (owner != widget)
        return owner && GTK_IS_WIDGET (owner) && gtk_widget_is_ancestor (GTK_WIDGET (owner), widget);
    return event->x >= 0 && event->y >= 0 && event->x < widget->allocation.width
           && event->y < widget->allocation.height;
}

/* Callbacks */

static void
on_item_visibility_cb (GObject *, GParamSpec *, gpointer data)
{
    relayout_items (KIVO_APP_MENU (data));
}

static void
on_item_clicked_cb (GtkButton *, gpointer data)
{
    kivo_app_menu_popdown (KIVO_APP_MENU (data));
}

static void
on_item_destroyed_cb (GtkWidget *item, gpointer data)
{
    KivoAppMenu *menu = KIVO_APP_MENU (data);
    auto &items = menu->priv->items;
    auto it = std::find (items.begin (), items.end (), item);
    if (it != items.end ()) {
        items.erase (it);
        g_signal_handlers_disconnect_by_data (item, menu);
        g_object_unref (item);
    }
    auto &filters = menu->priv->filters;
    filters.erase (std::remove (filters.begin (), filters.end (), item), filters.end ());
}

/* Widget overrides */

static gboolean
kivo_app_menu_button_press_event (GtkWidget *widget, GdkEventButton *event)
{
    if (!pointer_inside (widget, event)) {
        kivo_app_menu_popdown (KIVO_APP_MENU (widget));
        return TRUE;
    }
    return GTK_WIDGET_CLASS (kivo_app_menu_parent_class)->button_press_event (widget, event);
}

static gboolean
kivo_app_menu_key_press_event (GtkWidget *widget, GdkEventKey *event)
{
    if (event->keyval == GDK_Escape || event->keyval == GDK_F4) {
        kivo_app_menu_popdown (KIVO_APP_MENU (widget));
        return TRUE;
    }
    return GTK_WIDGET_CLASS (kivo_app_menu_parent_class)->key_press_event (widget, event);
}

static gboolean
kivo_app_menu_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    kivo_style_paint_framed (widget, event, KIVO_COLOR_BORDER, 2.0);
    return FALSE;
}

static void
kivo_app_menu_map (GtkWidget *widget)
{
    GTK_WIDGET_CLASS (kivo_app_menu_parent_class)->map (widget);
    /* Taps outside the menu close it. */
    gdk_pointer_grab (widget->window, TRUE,
                      static_cast<GdkEventMask> (GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK
                                                 | GDK_POINTER_MOTION_MASK),
                      nullptr, nullptr, GDK_CURRENT_TIME);
    gdk_keyboard_grab (widget->window, TRUE, GDK_CURRENT_TIME);
    gtk_grab_add (widget);
}

static void
kivo_app_menu_unmap (GtkWidget *widget)
{
    gtk_grab_remove (widget);
    GdkDisplay *display = gtk_widget_get_display (widget);
    gdk_display_pointer_ungrab (display, GDK_CURRENT_TIME);
    gdk_display_keyboard_ungrab (display, GDK_CURRENT_TIME);
    GTK_WIDGET_CLASS (kivo_app_menu_parent_class)->unmap (widget);
}

static void
kivo_app_menu_dispose (GObject *object)
{
    KivoAppMenu *menu = KIVO_APP_MENU (object);
    if (!menu->priv->disposed) {
        menu->priv->disposed = true;
        /* Items not packed at the moment (hidden ones) are still ours. */
        for (GtkWidget *item : std::vector<GtkWidget *> (menu->priv->items)) {
            g_signal_handlers_disconnect_by_data (item, menu);
            if (!gtk_widget_get_parent (item))
                gtk_widget_destroy (item);
            g_object_unref (item);
        }
        for (GtkWidget *filter : menu->priv->filters)
            g_signal_handlers_disconnect_by_data (filter, menu);
        menu->priv->items.clear ();
        menu->priv->filters.clear ();
    }
    G_OBJECT_CLASS (kivo_app_menu_parent_class)->dispose (object);
}

static void
kivo_app_menu_finalize (GObject *object)
{
    KIVO_APP_MENU (object)->priv->~KivoAppMenuPrivate ();
    G_OBJECT_CLASS (kivo_app_menu_parent_class)->finalize (object);
}

static void
kivo_app_menu_class_init (KivoAppMenuClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = kivo_app_menu_dispose;
    object_class->finalize = kivo_app_menu_finalize;

    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    widget_class->button_press_event = kivo_app_menu_button_press_event;
    widget_class->key_press_event = kivo_app_menu_key_press_event;
    widget_class->expose_event = kivo_app_menu_expose_event;
    widget_class->map = kivo_app_menu_map;
    widget_class->unmap = kivo_app_menu_unmap;
    kivo_style_init ();
}

static void
kivo_app_menu_init (KivoAppMenu *menu)
{
    void *memory = kivo_app_menu_get_instance_private (menu);
    menu->priv = new (memory) KivoAppMenuPrivate ();
    auto *priv = menu->priv;

    GTK_WINDOW (menu)->type = GTK_WINDOW_POPUP;
    gtk_widget_set_app_paintable (GTK_WIDGET (menu), TRUE);
    gtk_widget_add_events (GTK_WIDGET (menu), GDK_BUTTON_PRESS_MASK);
    priv->box = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (priv->box), KIVO_MARGIN_DOUBLE);
    priv->filter_row = gtk_hbox_new (TRUE, 0);
    priv->grid = gtk_table_new (1, kColumns, TRUE);
    gtk_table_set_row_spacings (GTK_TABLE (priv->grid), KIVO_MARGIN_DEFAULT);
    gtk_table_set_col_spacings (GTK_TABLE (priv->grid), KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (priv->box), priv->filter_row, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (priv->box), priv->grid, FALSE, FALSE, 0);
    gtk_container_add (GTK_CONTAINER (menu), priv->box);
    gtk_widget_show (priv->grid);
    gtk_widget_show (priv->box);
}

/* Public API */

GtkWidget *
kivo_app_menu_new (void)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_APP_MENU, nullptr));
}

void
kivo_app_menu_insert (KivoAppMenu *menu, GtkButton *item, gint position)
{
    g_return_if_fail (KIVO_IS_APP_MENU (menu));
    g_return_if_fail (GTK_IS_BUTTON (item));
    auto &items = menu->priv->items;
    GtkWidget *widget = GTK_WIDGET (item);
    g_return_if_fail (std::find (items.begin (), items.end (), widget) == items.end ());
    const size_t index = (position < 0 || static_cast<size_t> (position) > items.size ())
                             ? items.size () : static_cast<size_t> (position);
    /* The menu keeps its own reference: hidden items are out of the grid. */
    g_object_ref_sink (widget);
    gtk_widget_show (widget);
    items.insert (items.begin () + index, widget);
    gtk_widget_set_size_request (widget, -1, KIVO_FINGER_HEIGHT);
    g_signal_connect (widget, "notify::visible", G_CALLBACK (on_item_visibility_cb), menu);
    g_signal_connect_after (widget, "clicked", G_CALLBACK (on_item_clicked_cb), menu);
    g_signal_connect (widget, "destroy", G_CALLBACK (on_item_destroyed_cb), menu);
    relayout_items (menu);
}

void
kivo_app_menu_append (KivoAppMenu *menu, GtkButton *item)
{
    kivo_app_menu_insert (menu, item, -1);
}

void
kivo_app_menu_prepend (KivoAppMenu *menu, GtkButton *item)
{
    kivo_app_menu_insert (menu, item, 0);
}

void
kivo_app_menu_add_filter (KivoAppMenu *menu, GtkButton *filter)
{
    g_return_if_fail (KIVO_IS_APP_MENU (menu));
    g_return_if_fail (GTK_IS_BUTTON (filter));
    GtkWidget *widget = GTK_WIDGET (filter);
    if (GTK_IS_TOGGLE_BUTTON (filter))
        gtk_toggle_button_set_mode (GTK_TOGGLE_BUTTON (filter), FALSE);
    gtk_widget_set_size_request (widget, -1, KIVO_FINGER_HEIGHT);
    gtk_widget_show (widget);
    menu->priv->filters.push_back (widget);
    gtk_box_pack_start (GTK_BOX (menu->priv->filter_row), widget, TRUE, TRUE, 0);
    g_signal_connect_after (widget, "clicked", G_CALLBACK (on_item_clicked_cb), menu);
    g_signal_connect (widget, "destroy", G_CALLBACK (on_item_destroyed_cb), menu);
    relayout_items (menu);
}

/* A list the caller frees (not its widgets), in the menu's order. */
static GList *
to_list (const std::vector<GtkWidget *> &widgets)
{
    GList *list = nullptr;
    for (auto it = widgets.rbegin (); it != widgets.rend (); ++it)
        list = g_list_prepend (list, *it);
    return list;
}

GList *
kivo_app_menu_get_items (KivoAppMenu *menu)
{
    g_return_val_if_fail (KIVO_IS_APP_MENU (menu), NULL);
    return to_list (menu->priv->items);
}

GList *
kivo_app_menu_get_filters (KivoAppMenu *menu)
{
    g_return_val_if_fail (KIVO_IS_APP_MENU (menu), NULL);
    return to_list (menu->priv->filters);
}

void
kivo_app_menu_popup (KivoAppMenu *menu, GtkWindow *parent_window)
{
    g_return_if_fail (KIVO_IS_APP_MENU (menu));
    g_return_if_fail (GTK_IS_WINDOW (parent_window));
    GtkWidget *parent = GTK_WIDGET (parent_window);
    int x = 0, y = 0;
    gdk_window_get_origin (parent->window, &x, &y);
    const int width = parent->allocation.width;
    const int menu_width = MAX (width * 3 / 4, 320);
    gtk_widget_set_size_request (GTK_WIDGET (menu), menu_width, -1);
    gtk_window_set_transient_for (GTK_WINDOW (menu), parent_window);
    gtk_window_move (GTK_WINDOW (menu), x + (width - menu_width) / 2, y);
    menu->priv->parent_window = parent_window;
    gtk_widget_show (GTK_WIDGET (menu));
}

void
kivo_app_menu_popdown (KivoAppMenu *menu)
{
    g_return_if_fail (KIVO_IS_APP_MENU (menu));
    gtk_widget_hide (GTK_WIDGET (menu));
}
