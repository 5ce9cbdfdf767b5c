/* libcalendarui - the calendar colour picker button
 *
 * A finger-height button showing its title, the chosen colour's marker
 * icon and its name. A tap opens the ten calendar colours as a grid of
 * markers; tapping one chooses it and closes the grid.
 *
 * Signal "color-changed" (void): the user (or set_color) chose another colour.
 */
#ifndef TAV_COLOR_BUTTON_H
#define TAV_COLOR_BUTTON_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarEnums.h"

G_BEGIN_DECLS

#define TAV_TYPE_COLOR_BUTTON    (tav_color_button_get_type ())
#define TAV_COLOR_BUTTON(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_COLOR_BUTTON, TavColorButton))
#define TAV_IS_COLOR_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_COLOR_BUTTON))

/* A GtkButton; its instance structure is private. */
typedef struct _TavColorButton TavColorButton;

TAV_API GType            tav_color_button_get_type   (void) G_GNUC_CONST;
/**
 * tav_color_button_new:
 *
 * Returns: (transfer floating): a colour button titled "Colour", showing
 * %TavCalendarColorDarkBlue.
 */
TAV_API GtkWidget       *tav_color_button_new        (void);
TAV_API void             tav_color_button_set_title  (TavColorButton *button, const char *title);
/* Chooses @color; a value outside the ten colours is refused with a critical. */
TAV_API void             tav_color_button_set_color  (TavColorButton *button, TavCalendarColor color);
TAV_API TavCalendarColor tav_color_button_get_color  (TavColorButton *button);
/* Opens the grid of colours (what a tap does). */
TAV_API void             tav_color_button_open_picker (TavColorButton *button);
/* The open grid's dialog, NULL when closed. */
TAV_API GtkWidget       *tav_color_button_get_picker  (TavColorButton *button);

G_END_DECLS

#endif /* TAV_COLOR_BUTTON_H */
