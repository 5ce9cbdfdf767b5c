/* Touch platform layer - a container panned with the finger (internal)
 *
 * KivoPannableArea scrolls its child (any widget that takes scroll
 * adjustments: a viewport, a tree view, the calendar's week, day and agenda
 * views) when the user drags the content. A flick keeps the content moving
 * and slows it down; it can be pulled past either end by up to the
 * overshoot limit and springs back. A press that does not move further than
 * the panning threshold reaches the child as a normal press and release, so
 * taps still click; a press held still reaches it as well (for tap-and-hold).
 */
#ifndef KIVO_PANNABLE_AREA_H
#define KIVO_PANNABLE_AREA_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* Which directions the finger pans ("mov-mode", also settable as "mov_mode"). */
typedef enum {
    KIVO_MOVEMENT_MODE_HORIZONTAL = 1 << 1,
    KIVO_MOVEMENT_MODE_VERTICAL = 1 << 2,
    KIVO_MOVEMENT_MODE_BOTH = KIVO_MOVEMENT_MODE_HORIZONTAL | KIVO_MOVEMENT_MODE_VERTICAL,
} KivoMovementMode;

/* What the area asks for ("size-request-policy"): the minimum (the height of
 * a finger target along a panned direction), or its child's size (clamped
 * to the screen). Along a direction that does not pan the child's size is
 * always requested, since the child must fit there. */
typedef enum {
    KIVO_SIZE_REQUEST_MINIMUM,
    KIVO_SIZE_REQUEST_CHILDREN,
} KivoSizeRequestPolicy;

GType kivo_movement_mode_get_type (void) G_GNUC_CONST;
GType kivo_size_request_policy_get_type (void) G_GNUC_CONST;
#define KIVO_TYPE_MOVEMENT_MODE (kivo_movement_mode_get_type ())
#define KIVO_TYPE_SIZE_REQUEST_POLICY (kivo_size_request_policy_get_type ())

#define KIVO_TYPE_PANNABLE_AREA (kivo_pannable_area_get_type ())
#define KIVO_PANNABLE_AREA(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_PANNABLE_AREA, KivoPannableArea))
#define KIVO_IS_PANNABLE_AREA(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_PANNABLE_AREA))

typedef struct _KivoPannableArea KivoPannableArea;
typedef struct _KivoPannableAreaClass KivoPannableAreaClass;
typedef struct _KivoPannableAreaPrivate KivoPannableAreaPrivate;

struct _KivoPannableArea {
    GtkBin parent;
    KivoPannableAreaPrivate *priv;
};

struct _KivoPannableAreaClass {
    GtkBinClass parent_class;
};

/* A press that moves less than this many pixels is a tap, not a pan. */
#define KIVO_PANNABLE_AREA_PANNING_THRESHOLD 16
/* A press is passed to the child once it has rested this long (or at its
 * release); a pan that starts sooner never reaches the child. */
#define KIVO_PANNABLE_AREA_PRESS_DELAY_MS 120
/* Width of the scroll indicators along the right and bottom edges. */
#define KIVO_PANNABLE_AREA_INDICATOR_WIDTH 6

GType kivo_pannable_area_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_pannable_area_new (void);
/* Puts @child into a viewport in the area (for children that do not take
 * scroll adjustments themselves). */
void kivo_pannable_area_add_with_viewport (KivoPannableArea *area, GtkWidget *child);
/* Scrolls so that (@x, @y) of the content is at the top left, as far as the
 * content allows; -1 leaves that direction as it is. */
void kivo_pannable_area_scroll_to (KivoPannableArea *area, gint x, gint y);
/* Brings the child widget @child (inside the content) into view. */
void kivo_pannable_area_scroll_to_child (KivoPannableArea *area, GtkWidget *child);
GtkAdjustment *kivo_pannable_area_get_hadjustment (KivoPannableArea *area);
GtkAdjustment *kivo_pannable_area_get_vadjustment (KivoPannableArea *area);
/* TRUE while a flick or a spring-back is moving the content. */
gboolean kivo_pannable_area_is_moving (KivoPannableArea *area);

G_END_DECLS

#endif /* KIVO_PANNABLE_AREA_H */
