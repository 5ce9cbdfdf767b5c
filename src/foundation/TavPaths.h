/* libcalendarui - where the library finds its theme files (internal)
 *
 * The installed defaults are the theme directory and the icon root the build
 * was configured with; TAV_CALENDAR_THEME_DIR and TAV_CALENDAR_ICON_DIR
 * override them for tests and uninstalled runs.
 */
#ifndef TAV_PATHS_H
#define TAV_PATHS_H

#include <glib.h>

G_BEGIN_DECLS

/* The theme image directory, e.g. "/etc/kivo/theme/calendar". */
const char *tav_theme_dir (void);
/* The icon theme root, ending in a slash, e.g. "/usr/share/icons/hicolor/". */
const char *tav_icon_dir (void);

G_END_DECLS

#endif /* TAV_PATHS_H */
