/* Touch platform layer - stackable windows */

#include "KivoStackableWindow.h"

#include "KivoStyle.h"
#include "TavGPtr.h"

#include <gdk/gdkkeysyms.h>
#include <new>

enum {
    PROP_0,
    PROP_IS_TOPMOST,
    N_PROPERTIES
};

static GParamSpec *properties[N_PROPERTIES];

struct _KivoStackableWindowPrivate {
    bool disposed = false;
    bool on_stack = false;
    bool is_topmost = false;
    GtkWidget *title_area = nullptr; /* internal child above the content */
    GtkWidget *title_label = nullptr;
    GtkWidget *menu_arrow = nullptr;
    GtkWidget *back_button = nullptr;
    tav::GRefPtr<KivoAppMenu> menu;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoStackableWindow, kivo_stackable_window, GTK_TYPE_WINDOW)

/* Auxiliary functions */

static void
update_title_label (KivoStackableWindow *window)
{
    const char *title = gtk_window_get_title (GTK_WINDOW (window));
    GtkLabel *label = GTK_LABEL (window->priv->title_label);
    gtk_label_set_text (label, title ? title : "");
    /* Short titles take their own width; long ones are cut with an ellipsis
     * rather than widening the window. */
    gtk_label_set_width_chars (label, title ? MIN (static_cast<int> (g_utf8_strlen (title, -1)), 36) : 0);
}

static void
update_menu_arrow (KivoStackableWindow *window)
{
    gtk_widget_set_visible (window->priv->menu_arrow, window->priv->menu != nullptr);
}

static void
update_back_button (KivoStackableWindow *window)
{
    /* Only a window that covers another offers the way back to it. */
    KivoWindowStack *stack = kivo_window_stack_get_default ();
    GList *windows = kivo_window_stack_get_windows (stack);
    const bool covers_another = window->priv->on_stack && g_list_length (windows) > 1
                                && g_list_last (windows)->data != window;
    g_list_free (windows);
    gtk_widget_set_visible (window->priv->back_button, covers_another);
}

static void
match_window_below (KivoStackableWindow *window)
{
    GtkWidget *below = kivo_window_stack_peek (kivo_window_stack_get_default ());
    if (below && below != GTK_WIDGET (window) && gtk_widget_get_realized (below)) {
        int x = 0, y = 0, width = 0, height = 0;
        gtk_window_get_position (GTK_WINDOW (below), &x, &y);
        gtk_window_get_size (GTK_WINDOW (below), &width, &height);
        gtk_window_move (GTK_WINDOW (window), x, y);
        gtk_window_resize (GTK_WINDOW (window), width, height);
        gtk_window_set_transient_for (GTK_WINDOW (window), GTK_WINDOW (below));
    }
}

/* Callbacks */

static void
on_title_notify_cb (GObject *, GParamSpec *, gpointer data)
{
    update_title_label (KIVO_STACKABLE_WINDOW (data));
}

static gboolean
on_title_area_button_release_cb (GtkWidget *, GdkEventButton *event, gpointer data)
{
    if (event->button != 1)
        return FALSE;
    return kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (data));
}

static void
on_back_clicked_cb (GtkButton *, gpointer data)
{
    kivo_stackable_window_request_close (KIVO_STACKABLE_WINDOW (data));
}

/* GObject and widget overrides */

static void
kivo_stackable_window_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (object);
    switch (prop_id) {
    case PROP_IS_TOPMOST:
        g_value_set_boolean (value, kivo_stackable_window_get_is_topmost (window));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_stackable_window_show (GtkWidget *widget)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    if (!window->priv->on_stack)
        match_window_below (window);
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->show (widget);
    window->priv->on_stack = true;
    kivo_window_stack_add_window (kivo_window_stack_get_default (), widget);
    update_back_button (window);
}

static void
kivo_stackable_window_hide (GtkWidget *widget)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    if (window->priv->menu)
        kivo_app_menu_popdown (window->priv->menu.get ());
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->hide (widget);
    if (window->priv->on_stack) {
        window->priv->on_stack = false;
        kivo_window_stack_remove_window (kivo_window_stack_get_default (), widget);
    }
}

static gboolean
kivo_stackable_window_key_press_event (GtkWidget *widget, GdkEventKey *event)
{
    /* F4 is the handheld's menu key. */
    if (event->keyval == GDK_F4 && kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (widget)))
        return TRUE;
    /* Escape goes back, as the back button does, where there is a way back. */
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    if (event->keyval == GDK_Escape && gtk_widget_get_visible (window->priv->back_button)) {
        kivo_stackable_window_request_close (window);
        return TRUE;
    }
    return GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->key_press_event (widget, event);
}

/* The content is the window's one child, as in any GtkWindow; the title
 * area is an internal child laid out above it. */

static void
kivo_stackable_window_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->size_request (widget, requisition);
    GtkWidget *title = window->priv->title_area;
    if (title && gtk_widget_get_visible (title)) {
        GtkRequisition title_request;
        gtk_widget_size_request (title, &title_request);
        requisition->width = MAX (requisition->width, title_request.width);
        requisition->height += title_request.height;
    }
}

static void
kivo_stackable_window_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->size_allocate (widget, allocation);
    GtkWidget *title = window->priv->title_area;
    int title_height = 0;
    if (title && gtk_widget_get_visible (title)) {
        GtkRequisition title_request;
        gtk_widget_get_child_requisition (title, &title_request);
        title_height = MIN (title_request.height, allocation->height);
        GtkAllocation title_allocation = { 0, 0, allocation->width, title_height };
        gtk_widget_size_allocate (title, &title_allocation);
    }
    GtkWidget *child = gtk_bin_get_child (GTK_BIN (widget));
    if (child && gtk_widget_get_visible (child)) {
        const int border = gtk_container_get_border_width (GTK_CONTAINER (widget));
        GtkAllocation child_allocation;
        child_allocation.x = border;
        child_allocation.y = title_height + border;
        child_allocation.width = MAX (1, allocation->width - 2 * border);
        child_allocation.height = MAX (1, allocation->height - title_height - 2 * border);
        gtk_widget_size_allocate (child, &child_allocation);
    }
}

static void
kivo_stackable_window_map (GtkWidget *widget)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (widget);
    GtkWidget *title = window->priv->title_area;
    if (title && gtk_widget_get_visible (title) && !gtk_widget_get_mapped (title))
        gtk_widget_map (title);
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->map (widget);
}

static void
kivo_stackable_window_unmap (GtkWidget *widget)
{
    GTK_WIDGET_CLASS (kivo_stackable_window_parent_class)->unmap (widget);
    GtkWidget *title = KIVO_STACKABLE_WINDOW (widget)->priv->title_area;
    if (title && gtk_widget_get_mapped (title))
        gtk_widget_unmap (title);
}

static void
kivo_stackable_window_remove (GtkContainer *container, GtkWidget *child)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (container);
    if (child == window->priv->title_area) {
        gtk_widget_unparent (child);
        window->priv->title_area = nullptr;
        return;
    }
    GTK_CONTAINER_CLASS (kivo_stackable_window_parent_class)->remove (container, child);
}

static void
kivo_stackable_window_forall (GtkContainer *container, gboolean include_internals,
                              GtkCallback callback, gpointer data)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (container);
    if (include_internals && window->priv->title_area)
        callback (window->priv->title_area, data);
    GTK_CONTAINER_CLASS (kivo_stackable_window_parent_class)->forall (container, include_internals, callback, data);
}

static void
kivo_stackable_window_destroy (GtkObject *object)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (object);
    if (window->priv->on_stack) {
        window->priv->on_stack = false;
        kivo_window_stack_remove_window (kivo_window_stack_get_default (), GTK_WIDGET (object));
    }
    if (window->priv->menu) {
        tav::GRefPtr<KivoAppMenu> menu = std::move (window->priv->menu);
        gtk_widget_destroy (GTK_WIDGET (menu.get ()));
    }
    if (window->priv->title_area)
        gtk_widget_destroy (window->priv->title_area);
    GTK_OBJECT_CLASS (kivo_stackable_window_parent_class)->destroy (object);
}

static void
kivo_stackable_window_dispose (GObject *object)
{
    KivoStackableWindow *window = KIVO_STACKABLE_WINDOW (object);
    /* The parent's dispose hides and destroys the window, which closes and
     * destroys the menu; only then is the reference dropped. */
    G_OBJECT_CLASS (kivo_stackable_window_parent_class)->dispose (object);
    if (!window->priv->disposed) {
        window->priv->disposed = true;
        window->priv->menu = nullptr;
    }
}

static void
kivo_stackable_window_finalize (GObject *object)
{
    KIVO_STACKABLE_WINDOW (object)->priv->~KivoStackableWindowPrivate ();
    G_OBJECT_CLASS (kivo_stackable_window_parent_class)->finalize (object);
}

static void
kivo_stackable_window_class_init (KivoStackableWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->get_property = kivo_stackable_window_get_property;
    object_class->dispose = kivo_stackable_window_dispose;
    object_class->finalize = kivo_stackable_window_finalize;

    GTK_OBJECT_CLASS (klass)->destroy = kivo_stackable_window_destroy;

    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    widget_class->show = kivo_stackable_window_show;
    widget_class->hide = kivo_stackable_window_hide;
    widget_class->key_press_event = kivo_stackable_window_key_press_event;
    widget_class->size_request = kivo_stackable_window_size_request;
    widget_class->size_allocate = kivo_stackable_window_size_allocate;
    widget_class->map = kivo_stackable_window_map;
    widget_class->unmap = kivo_stackable_window_unmap;

    GtkContainerClass *container_class = GTK_CONTAINER_CLASS (klass);
    container_class->remove = kivo_stackable_window_remove;
    container_class->forall = kivo_stackable_window_forall;

    properties[PROP_IS_TOPMOST] = g_param_spec_boolean ("is-topmost", "Is topmost",
        "Whether the window is the top of the window stack", FALSE,
        static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS));
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    kivo_style_init ();
}

static void
kivo_stackable_window_init (KivoStackableWindow *window)
{
    kivo_style_init ();
    void *memory = kivo_stackable_window_get_instance_private (window);
    window->priv = new (memory) KivoStackableWindowPrivate ();
    auto *priv = window->priv;

    gtk_window_set_default_size (GTK_WINDOW (window), KIVO_STACKABLE_WINDOW_DEFAULT_WIDTH,
                                 KIVO_STACKABLE_WINDOW_DEFAULT_HEIGHT);

    priv->title_area = gtk_event_box_new ();
    gtk_widget_set_name (priv->title_area, "kivo-title-bar");
    gtk_widget_set_size_request (priv->title_area, -1, 56);
    GtkWidget *row = gtk_hbox_new (FALSE, 8);
    gtk_container_set_border_width (GTK_CONTAINER (row), 0);
    priv->title_label = gtk_label_new ("");
    gtk_misc_set_alignment (GTK_MISC (priv->title_label), 0.0, 0.5);
    gtk_misc_set_padding (GTK_MISC (priv->title_label), 16, 0);
    gtk_label_set_ellipsize (GTK_LABEL (priv->title_label), PANGO_ELLIPSIZE_END);
    priv->menu_arrow = gtk_arrow_new (GTK_ARROW_DOWN, GTK_SHADOW_NONE);
    gtk_widget_set_size_request (priv->menu_arrow, 24, 24);
    priv->back_button = gtk_button_new_with_label ("\342\206\251"); /* ↩ */
    gtk_button_set_relief (GTK_BUTTON (priv->back_button), GTK_RELIEF_NONE);
    gtk_widget_set_can_focus (priv->back_button, FALSE);
    gtk_widget_set_size_request (priv->back_button, 88, -1);
    gtk_box_pack_start (GTK_BOX (row), priv->title_label, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (row), priv->menu_arrow, FALSE, FALSE, 0);
    gtk_box_pack_end (GTK_BOX (row), priv->back_button, FALSE, FALSE, 0);
    gtk_container_add (GTK_CONTAINER (priv->title_area), row);
    gtk_widget_show_all (priv->title_area);
    gtk_widget_hide (priv->menu_arrow);
    gtk_widget_hide (priv->back_button);

    gtk_widget_set_parent (priv->title_area, GTK_WIDGET (window));

    g_signal_connect (window, "notify::title", G_CALLBACK (on_title_notify_cb), window);
    g_signal_connect (priv->title_area, "button-release-event", G_CALLBACK (on_title_area_button_release_cb), window);
    g_signal_connect (priv->back_button, "clicked", G_CALLBACK (on_back_clicked_cb), window);
}

/* Public API */

GtkWidget *
kivo_stackable_window_new (void)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_STACKABLE_WINDOW, nullptr));
}

void
kivo_stackable_window_set_main_menu (KivoStackableWindow *window, KivoAppMenu *menu)
{
    g_return_if_fail (KIVO_IS_STACKABLE_WINDOW (window));
    g_return_if_fail (menu == NULL || KIVO_IS_APP_MENU (menu));
    if (window->priv->menu.get () == menu)
        return;
    if (window->priv->menu) {
        tav::GRefPtr<KivoAppMenu> old = std::move (window->priv->menu);
        gtk_widget_destroy (GTK_WIDGET (old.get ()));
    }
    window->priv->menu = tav::GRefPtr<KivoAppMenu> (menu);
    update_menu_arrow (window);
}

KivoAppMenu *
kivo_stackable_window_get_main_menu (KivoStackableWindow *window)
{
    g_return_val_if_fail (KIVO_IS_STACKABLE_WINDOW (window), NULL);
    return window->priv->menu.get ();
}

KivoWindowStack *
kivo_stackable_window_get_stack (KivoStackableWindow *window)
{
    g_return_val_if_fail (KIVO_IS_STACKABLE_WINDOW (window), NULL);
    return kivo_window_stack_get_default ();
}

gboolean
kivo_stackable_window_get_is_topmost (KivoStackableWindow *window)
{
    g_return_val_if_fail (KIVO_IS_STACKABLE_WINDOW (window), FALSE);
    return window->priv->is_topmost;
}

gboolean
kivo_stackable_window_open_main_menu (KivoStackableWindow *window)
{
    g_return_val_if_fail (KIVO_IS_STACKABLE_WINDOW (window), FALSE);
    if (!window->priv->menu || !gtk_widget_get_mapped (GTK_WIDGET (window)))
        return FALSE;
    kivo_app_menu_popup (window->priv->menu.get (), GTK_WINDOW (window));
    return TRUE;
}

GtkWidget *
kivo_stackable_window_get_title_area (KivoStackableWindow *window)
{
    g_return_val_if_fail (KIVO_IS_STACKABLE_WINDOW (window), NULL);
    return window->priv->title_area;
}

void
kivo_stackable_window_request_close (KivoStackableWindow *window)
{
    g_return_if_fail (KIVO_IS_STACKABLE_WINDOW (window));
    GtkWidget *widget = GTK_WIDGET (window);
    if (!gtk_widget_get_realized (widget)) {
        gtk_widget_destroy (widget);
        return;
    }
    /* The same path as the window manager's close button. */
    GdkEvent *event = gdk_event_new (GDK_DELETE);
    event->any.window = GDK_WINDOW (g_object_ref (widget->window));
    event->any.send_event = TRUE;
    gtk_main_do_event (event);
    gdk_event_free (event);
}

void
kivo_stackable_window_update_topmost (KivoStackableWindow *window)
{
    g_return_if_fail (KIVO_IS_STACKABLE_WINDOW (window));
    const bool topmost = window->priv->on_stack
                         && kivo_window_stack_peek (kivo_window_stack_get_default ()) == GTK_WIDGET (window);
    if (window->priv->title_area)
        update_back_button (window);
    if (topmost == window->priv->is_topmost)
        return;
    window->priv->is_topmost = topmost;
    g_object_notify_by_pspec (G_OBJECT (window), properties[PROP_IS_TOPMOST]);
}
