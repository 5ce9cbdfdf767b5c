/* Shared helpers of the settings tests: finding widgets in a dialog and
 * tapping them with real pointer events. */
#ifndef TAV_SETTINGS_TEST_SUPPORT_H
#define TAV_SETTINGS_TEST_SUPPORT_H

#include "KivoTouchSelector.h"
#include "PointerDriver.h"
#include "TestSupport.h"

#include <gtk/gtk.h>

#include <functional>
#include <string>

namespace tav::test {

/* Destroys a test window however the test ends. */
struct ScopedWindow {
    GtkWidget *window;
    ~ScopedWindow () { gtk_widget_destroy (window); }
};

/* The first widget under @root (itself included) that @match accepts. */
GtkWidget *find_widget (GtkWidget *root, const std::function<bool (GtkWidget *)> &match);
/* Taps the middle of @widget. */
void tap_middle (GtkWidget *widget);
/* Waits until @widget (a window) is mapped. */
bool wait_mapped (GtkWidget *const &widget, int timeout_ms = 2000);
/* Copies the shipped default tone (a valid WAV file) to @path. */
void write_test_wav (const std::string &path);

} // namespace tav::test

#endif
