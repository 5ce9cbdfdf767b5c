/* Touch platform layer - the stack of stackable windows */

#include "KivoWindowStack.h"

#include "KivoStackableWindow.h"

#include <algorithm>
#include <new>
#include <vector>

struct _KivoWindowStackPrivate {
    /* Bottom first. The stack does not own the windows: each window takes
     * itself out when it is hidden or destroyed. */
    std::vector<GtkWidget *> windows;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoWindowStack, kivo_window_stack, G_TYPE_OBJECT)

static void
kivo_window_stack_finalize (GObject *object)
{
    KIVO_WINDOW_STACK (object)->priv->~KivoWindowStackPrivate ();
    G_OBJECT_CLASS (kivo_window_stack_parent_class)->finalize (object);
}

static void
kivo_window_stack_class_init (KivoWindowStackClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = kivo_window_stack_finalize;
}

static void
kivo_window_stack_init (KivoWindowStack *stack)
{
    void *memory = kivo_window_stack_get_instance_private (stack);
    stack->priv = new (memory) KivoWindowStackPrivate ();
}

static void
notify_topmost_changes (const std::vector<GtkWidget *> &windows)
{
    for (GtkWidget *window : windows)
        if (KIVO_IS_STACKABLE_WINDOW (window))
            kivo_stackable_window_update_topmost (KIVO_STACKABLE_WINDOW (window));
}

KivoWindowStack *
kivo_window_stack_get_default (void)
{
    static KivoWindowStack *default_stack = nullptr;
    if (!default_stack)
        default_stack = KIVO_WINDOW_STACK (g_object_new (KIVO_TYPE_WINDOW_STACK, nullptr));
    return default_stack;
}

GtkWidget *
kivo_window_stack_peek (KivoWindowStack *stack)
{
    g_return_val_if_fail (KIVO_IS_WINDOW_STACK (stack), NULL);
    auto &windows = stack->priv->windows;
    return windows.empty () ? nullptr : windows.back ();
}

gint
kivo_window_stack_size (KivoWindowStack *stack)
{
    g_return_val_if_fail (KIVO_IS_WINDOW_STACK (stack), 0);
    return static_cast<gint> (stack->priv->windows.size ());
}

GList *
kivo_window_stack_get_windows (KivoWindowStack *stack)
{
    g_return_val_if_fail (KIVO_IS_WINDOW_STACK (stack), NULL);
    GList *list = nullptr;
    for (GtkWidget *window : stack->priv->windows)
        list = g_list_prepend (list, window);
    return list;
}

void
kivo_window_stack_push_1 (KivoWindowStack *stack, GtkWidget *window)
{
    g_return_if_fail (KIVO_IS_WINDOW_STACK (stack));
    g_return_if_fail (KIVO_IS_STACKABLE_WINDOW (window));
    gtk_widget_show (window);
}

GtkWidget *
kivo_window_stack_pop_1 (KivoWindowStack *stack)
{
    g_return_val_if_fail (KIVO_IS_WINDOW_STACK (stack), NULL);
    GtkWidget *top = kivo_window_stack_peek (stack);
    if (top)
        gtk_widget_hide (top);
    return top;
}

void
kivo_window_stack_add_window (KivoWindowStack *stack, GtkWidget *window)
{
    g_return_if_fail (KIVO_IS_WINDOW_STACK (stack));
    g_return_if_fail (GTK_IS_WINDOW (window));
    auto &windows = stack->priv->windows;
    if (!windows.empty () && windows.back () == window)
        return;
    GtkWidget *old_top = windows.empty () ? nullptr : windows.back ();
    windows.erase (std::remove (windows.begin (), windows.end (), window), windows.end ());
    windows.push_back (window);
    std::vector<GtkWidget *> changed { window };
    if (old_top)
        changed.push_back (old_top);
    notify_topmost_changes (changed);
}

void
kivo_window_stack_remove_window (KivoWindowStack *stack, GtkWidget *window)
{
    g_return_if_fail (KIVO_IS_WINDOW_STACK (stack));
    auto &windows = stack->priv->windows;
    auto it = std::find (windows.begin (), windows.end (), window);
    if (it == windows.end ())
        return;
    const bool was_top = (it + 1 == windows.end ());
    windows.erase (it);
    std::vector<GtkWidget *> changed { window };
    if (was_top && !windows.empty ())
        changed.push_back (windows.back ());
    notify_topmost_changes (changed);
}
