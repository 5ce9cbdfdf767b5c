/* Touch platform layer - information banners (internal) */
#ifndef KIVO_BANNER_H
#define KIVO_BANNER_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* Shows @text as a transient banner over the window of @widget (or the
 * screen when @widget is NULL). The banner hides itself after a few seconds
 * and never takes the focus. Returns the banner window. */
GtkWidget *kivo_banner_show_information (GtkWidget *widget, const char *icon_name, const char *text);

/* How long a banner stays, in milliseconds. */
#define KIVO_BANNER_TIMEOUT_MS 3000

G_END_DECLS

#endif /* KIVO_BANNER_H */
