/* Touch platform layer - the stack of stackable windows (internal)
 *
 * Every KivoStackableWindow joins the default stack when it is shown and
 * leaves it when it is hidden or destroyed. The window on top covers the
 * others and is the one the user works in; each window's "is-topmost"
 * property says whether it is that window.
 */
#ifndef KIVO_WINDOW_STACK_H
#define KIVO_WINDOW_STACK_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

#define KIVO_TYPE_WINDOW_STACK (kivo_window_stack_get_type ())
#define KIVO_WINDOW_STACK(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_WINDOW_STACK, KivoWindowStack))
#define KIVO_IS_WINDOW_STACK(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_WINDOW_STACK))

typedef struct _KivoWindowStack KivoWindowStack;
typedef struct _KivoWindowStackClass KivoWindowStackClass;
typedef struct _KivoWindowStackPrivate KivoWindowStackPrivate;

struct _KivoWindowStack {
    GObject parent;
    KivoWindowStackPrivate *priv;
};

struct _KivoWindowStackClass {
    GObjectClass parent_class;
};

GType kivo_window_stack_get_type (void) G_GNUC_CONST;

/* The process-wide stack (created on first use, never freed). */
KivoWindowStack *kivo_window_stack_get_default (void);
/* The topmost window, or NULL when the stack is empty. */
GtkWidget *kivo_window_stack_peek (KivoWindowStack *stack);
/* Number of windows on the stack. */
gint kivo_window_stack_size (KivoWindowStack *stack);
/* The windows from the top down; free the list (not the windows). */
GList *kivo_window_stack_get_windows (KivoWindowStack *stack);
/* Shows @window on top of the stack (the same as gtk_widget_show). */
void kivo_window_stack_push_1 (KivoWindowStack *stack, GtkWidget *window);
/* Hides the topmost window and returns it (NULL when empty). */
GtkWidget *kivo_window_stack_pop_1 (KivoWindowStack *stack);

/* Used by KivoStackableWindow: records @window on top / takes it out. */
void kivo_window_stack_add_window (KivoWindowStack *stack, GtkWidget *window);
void kivo_window_stack_remove_window (KivoWindowStack *stack, GtkWidget *window);

G_END_DECLS

#endif /* KIVO_WINDOW_STACK_H */
