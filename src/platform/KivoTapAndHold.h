/* Touch platform layer - tap-and-hold (internal)
 *
 * gtk_widget_tap_and_hold_setup() makes a widget answer a press held still
 * for KIVO_TAP_AND_HOLD_DELAY_MS (and, at once, the right mouse button or
 * the context-menu key): it emits "tap-and-hold-query" with the press event
 * (a handler returning TRUE refuses, and nothing more happens), then
 * "tap-and-hold", then pops up the menu given to the setup call. Once the
 * hold fires the press no longer belongs to the widget: it gets a leave
 * notification, and its release is not delivered, so a hold never also
 * counts as a tap.
 *
 * The two signals exist on every GtkWidget from the moment the library is
 * loaded, so widgets may connect to them before calling the setup.
 */
#ifndef KIVO_TAP_AND_HOLD_H
#define KIVO_TAP_AND_HOLD_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

typedef enum {
    KIVO_TAP_AND_HOLD_NONE = 0,
    /* Deliver the release of a hold to the widget as well. */
    KIVO_TAP_AND_HOLD_PASS_PRESS = 1 << 0,
    /* Emit no signals; only pop up the menu. */
    KIVO_TAP_AND_HOLD_NO_SIGNALS = 1 << 1,
    /* Do not pop up the menu; the "tap-and-hold" handler shows its own. */
    KIVO_TAP_AND_HOLD_NO_INTERNALS = 1 << 2,
} KivoTapAndHoldFlags;

/* How long a press must rest, and how far it may wander meanwhile. */
#define KIVO_TAP_AND_HOLD_DELAY_MS 800
#define KIVO_TAP_AND_HOLD_MOVE_THRESHOLD 20

/* Registers the two signals on GtkWidget (done once, at load time). */
void kivo_tap_and_hold_init (void);

/* Enables tap-and-hold on @widget (again: replaces menu, callback and
 * flags). @menu may be NULL; @callback positions it (NULL: at the finger).
 * @flags is a KivoTapAndHoldFlags value. */
void gtk_widget_tap_and_hold_setup (GtkWidget *widget, GtkWidget *menu, GtkMenuPositionFunc callback, guint flags);
/* Turns it off again. */
void kivo_widget_tap_and_hold_remove (GtkWidget *widget);

G_END_DECLS

#endif /* KIVO_TAP_AND_HOLD_H */
