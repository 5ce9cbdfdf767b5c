/* Touch platform layer - information banners (internal)
 *
 * A banner is a short message over the top of the window it concerns. It
 * never takes the focus and hides itself after KIVO_BANNER_TIMEOUT_MS.
 * Banners shown while others are up stack below them; when one goes, the
 * ones below move up.
 */
#ifndef KIVO_BANNER_H
#define KIVO_BANNER_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* Shows @text as a transient banner over the window of @widget (or the
 * top of the screen when @widget is NULL), with the named icon @icon_name
 * when it is not NULL. Returns the banner window (owned by the layer; it is
 * destroyed when it hides). */
GtkWidget *kivo_banner_show_information (GtkWidget *widget, const char *icon_name, const char *text);

/* How long a banner stays, in milliseconds. */
#define KIVO_BANNER_TIMEOUT_MS 3000

/* The banners now on screen, top first; free the list only. */
GList *kivo_banner_get_visible (void);
/* The text of a banner returned by kivo_banner_show_information. */
const char *kivo_banner_get_text (GtkWidget *banner);

G_END_DECLS

#endif /* KIVO_BANNER_H */
