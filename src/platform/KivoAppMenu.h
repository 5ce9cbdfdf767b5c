/* Touch platform layer - a window's application menu (internal)
 *
 * A KivoAppMenu drops from a stackable window's title area: a row of filter
 * toggles (radio buttons drawn as toggle buttons) above a grid of item
 * buttons, two to a row. Hidden items leave no gap. Tapping an item or a
 * filter, tapping outside, or Escape closes the menu.
 */
#ifndef KIVO_APP_MENU_H
#define KIVO_APP_MENU_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

#define KIVO_TYPE_APP_MENU (kivo_app_menu_get_type ())
#define KIVO_APP_MENU(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_APP_MENU, KivoAppMenu))
#define KIVO_IS_APP_MENU(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_APP_MENU))

typedef struct _KivoAppMenu KivoAppMenu;
typedef struct _KivoAppMenuClass KivoAppMenuClass;
typedef struct _KivoAppMenuPrivate KivoAppMenuPrivate;

struct _KivoAppMenu {
    GtkWindow parent;
    KivoAppMenuPrivate *priv;
};

struct _KivoAppMenuClass {
    GtkWindowClass parent_class;
};

GType kivo_app_menu_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_app_menu_new (void);
/* Adds an item (any GtkButton) at the end / start / position @position. */
void kivo_app_menu_append (KivoAppMenu *menu, GtkButton *item);
void kivo_app_menu_prepend (KivoAppMenu *menu, GtkButton *item);
void kivo_app_menu_insert (KivoAppMenu *menu, GtkButton *item, gint position);
/* Adds a filter toggle (normally a GtkRadioButton; it is drawn as a toggle). */
void kivo_app_menu_add_filter (KivoAppMenu *menu, GtkButton *filter);
/* The items and filters in order; free the list only. */
GList *kivo_app_menu_get_items (KivoAppMenu *menu);
GList *kivo_app_menu_get_filters (KivoAppMenu *menu);
/* Shows the menu over the top of @parent_window. */
void kivo_app_menu_popup (KivoAppMenu *menu, GtkWindow *parent_window);
void kivo_app_menu_popdown (KivoAppMenu *menu);

G_END_DECLS

#endif /* KIVO_APP_MENU_H */
