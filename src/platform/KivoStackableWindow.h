/* Touch platform layer - stackable windows (internal)
 *
 * A KivoStackableWindow is a top-level window with a title area that opens
 * its application menu. Showing it pushes it on the default window stack,
 * where it takes the size and position of the window below and covers it,
 * as windows do on a handheld; hiding or destroying it pops it.
 */
#ifndef KIVO_STACKABLE_WINDOW_H
#define KIVO_STACKABLE_WINDOW_H

#include <gtk/gtk.h>

#include "KivoAppMenu.h"
#include "KivoWindowStack.h"

G_BEGIN_DECLS

#define KIVO_TYPE_STACKABLE_WINDOW (kivo_stackable_window_get_type ())
#define KIVO_STACKABLE_WINDOW(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_STACKABLE_WINDOW, KivoStackableWindow))
#define KIVO_STACKABLE_WINDOW_CLASS(klass) (G_TYPE_CHECK_CLASS_CAST ((klass), KIVO_TYPE_STACKABLE_WINDOW, KivoStackableWindowClass))
#define KIVO_IS_STACKABLE_WINDOW(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_STACKABLE_WINDOW))

typedef struct _KivoStackableWindow KivoStackableWindow;
typedef struct _KivoStackableWindowClass KivoStackableWindowClass;
typedef struct _KivoStackableWindowPrivate KivoStackableWindowPrivate;

struct _KivoStackableWindow {
    GtkWindow parent;
    KivoStackableWindowPrivate *priv;
};

struct _KivoStackableWindowClass {
    GtkWindowClass parent_class;
};

/* Size of the first window of a stack (the handheld's screen). */
#define KIVO_STACKABLE_WINDOW_DEFAULT_WIDTH 800
#define KIVO_STACKABLE_WINDOW_DEFAULT_HEIGHT 480

GType kivo_stackable_window_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_stackable_window_new (void);
/* Attaches @menu as the window's application menu (NULL removes it). The
 * window owns the menu from then on and destroys it with itself. */
void kivo_stackable_window_set_main_menu (KivoStackableWindow *window, KivoAppMenu *menu);
KivoAppMenu *kivo_stackable_window_get_main_menu (KivoStackableWindow *window);
/* The stack the window is on (the default stack). */
KivoWindowStack *kivo_stackable_window_get_stack (KivoStackableWindow *window);
/* TRUE when the window is the top of the default stack. */
gboolean kivo_stackable_window_get_is_topmost (KivoStackableWindow *window);
/* Opens the application menu below the title area; FALSE without a menu. */
gboolean kivo_stackable_window_open_main_menu (KivoStackableWindow *window);
/* The title area (for tests and the gallery). */
GtkWidget *kivo_stackable_window_get_title_area (KivoStackableWindow *window);
/* Asks the window to close as the window manager's close would (the
 * "delete-event" handlers decide; unhandled, the window is destroyed). */
void kivo_stackable_window_request_close (KivoStackableWindow *window);

/* Used by the stack when the window's place on it changes. */
void kivo_stackable_window_update_topmost (KivoStackableWindow *window);

G_END_DECLS

#endif /* KIVO_STACKABLE_WINDOW_H */
