/* Touch platform layer - named icon sizes (internal) */
#ifndef KIVO_ICON_SIZE_H
#define KIVO_ICON_SIZE_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* Registers the named sizes ("kivo-xsmall", "kivo-small", "kivo-stylus",
 * "kivo-finger", "kivo-thumb", "kivo-large") with GTK once. */
void kivo_icon_sizes_register (void);

/* The GtkIconSize registered under @name, registering the set if needed;
 * GTK_ICON_SIZE_INVALID for an unknown name. */
GtkIconSize kivo_icon_size_from_name (const char *name);

/* The pixel size (width; our sizes are square) of the named size, 0 when
 * the name is unknown. */
int kivo_icon_size_get_pixels (const char *name);

G_END_DECLS

#endif /* KIVO_ICON_SIZE_H */
