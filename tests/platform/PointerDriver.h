/* Real input for widget tests: XTest moves the X server's pointer and
 * presses its buttons, so GTK sees exactly what a finger or a mouse would
 * produce (implicit grabs, crossings, motion). */
#ifndef TAV_TEST_POINTER_DRIVER_H
#define TAV_TEST_POINTER_DRIVER_H

#include "KivoTouchSelector.h"

#include <gtk/gtk.h>

#include <functional>

namespace tav::test {

class PointerDriver {
public:
    /* Moves to (@x, @y) of @widget's allocation (or its window). */
    static void move_to (GtkWidget *widget, int x, int y);
    static void move_root (int x, int y);
    static void press (guint button = 1);
    static void release (guint button = 1);
    /* Press and release at (@x, @y) of @widget. */
    static void tap (GtkWidget *widget, int x, int y);
    /* A tap on the middle of @widget, handled before it returns. */
    static void tap_centre (GtkWidget *widget);
    /* Press at (x0, y0), move in @steps steps of @step_ms to (x1, y1). */
    static void drag (GtkWidget *widget, int x0, int y0, int x1, int y1, int steps, int step_ms, bool release_at_end);
    /* Lets the main loop run for @ms milliseconds. */
    static void wait (int ms);
    static bool available ();
};

/* Scrolls row @row of @selector's column @column to the middle of what the
 * column shows, as a finger would pan it, and taps it. */
void tap_selector_row (KivoTouchSelector *selector, int row, int column = 0);

/* A top-level window at a fixed place; with @child, holding it, shown and
 * drawn. */
GtkWidget *make_test_window (int width, int height, GtkWidget *child = nullptr);

/* Connects a handler that only counts its calls into @counter. */
void count_signal (gpointer instance, const char *signal, int *counter);

} // namespace tav::test

#define REQUIRE_XTEST()                                                \
    do {                                                               \
        REQUIRE_DISPLAY ();                                            \
        if (!tav::test::PointerDriver::available ())                   \
            GTEST_SKIP () << "no XTest on the display";                \
    } while (0)

#endif /* TAV_TEST_POINTER_DRIVER_H */
