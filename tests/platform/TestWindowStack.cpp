/* Stackable windows, the window stack and the application menu. */

#include "KivoAppMenu.h"
#include "KivoStackableWindow.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <gdk/gdkkeysyms.h>
#include <string>
#include <tuple>

using namespace tav::test;

namespace {

GtkWidget *title_area (GtkWidget *window)
{
    return kivo_stackable_window_get_title_area (KIVO_STACKABLE_WINDOW (window));
}

} // namespace

TEST (WindowStack, TopmostFollowsPushesAndPops)
{
    REQUIRE_DISPLAY ();
    KivoWindowStack *stack = kivo_window_stack_get_default ();
    ASSERT_EQ (kivo_window_stack_size (stack), 0);
    std::string log; /* "title+" / "title-" for each is-topmost notification */
    GtkWidget *windows[3];
    const char *titles[] = { "main", "day", "event" };
    for (int i = 0; i < 3; i++) {
        windows[i] = kivo_stackable_window_new ();
        gtk_window_set_title (GTK_WINDOW (windows[i]), titles[i]);
        g_signal_connect (windows[i], "notify::is-topmost", G_CALLBACK (+[] (GObject *w, GParamSpec *, gpointer d) {
            auto *text = static_cast<std::string *> (d);
            *text += std::string (text->empty () ? "" : " ") + gtk_window_get_title (GTK_WINDOW (w))
                     + (kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (w)) ? "+" : "-");
        }), &log);
    }
    GtkWidget *main_window = windows[0], *day = windows[1], *event = windows[2];
    struct Step {
        const char *label;
        std::function<void ()> action;
        GtkWidget *top;
        int size;
        const char *notifications;
    };
    const Step steps[] = {
        { "show the main window", [&] { gtk_widget_show (main_window); }, main_window, 1, "main+" },
        { "push the day window", [&] { kivo_window_stack_push_1 (stack, day); }, day, 2, "day+ main-" },
        { "push the event window", [&] { gtk_widget_show (event); }, event, 3, "event+ day-" },
        { "showing a shown window again changes nothing", [&] { gtk_widget_show (event); }, event, 3, "" },
        { "pop the event window", [&] { EXPECT_EQ (kivo_window_stack_pop_1 (stack), event); }, day, 2, "event- day+" },
        { "hiding a covered window takes it out", [&] { gtk_widget_hide (main_window); }, day, 1, "" },
        { "show it again: it goes on top", [&] { gtk_widget_show (main_window); }, main_window, 2, "main+ day-" },
        { "destroying the top pops it", [&] { gtk_widget_destroy (main_window); }, day, 1, "main- day+" },
        { "show the popped window again", [&] { gtk_widget_show (event); }, event, 2, "event+ day-" },
        { "a close request the window answers only hides it",
          [&] { kivo_stackable_window_request_close (KIVO_STACKABLE_WINDOW (event)); }, day, 1, "event- day+" },
        { "an unanswered close request destroys the window",
          [&] { kivo_stackable_window_request_close (KIVO_STACKABLE_WINDOW (day)); }, nullptr, 0, "day-" },
    };
    /* The event window answers a close request itself, keeping the window
     * hidden as the day window does; the others leave it to the default. */
    int deletes = 0, destroyed = 0;
    g_signal_connect (event, "delete-event", G_CALLBACK (+[] (GtkWidget *w, GdkEvent *, gpointer d) -> gboolean {
        ++*static_cast<int *> (d);
        gtk_widget_hide (w);
        return TRUE;
    }), &deletes);
    count_signal (day, "destroy", &destroyed);
    for (const Step &step : steps) {
        log.clear ();
        step.action ();
        flush_events ();
        EXPECT_EQ (kivo_window_stack_peek (stack), step.top) << step.label;
        EXPECT_EQ (kivo_window_stack_size (stack), step.size) << step.label;
        EXPECT_EQ (log, step.notifications) << step.label;
        if (step.top) {
            EXPECT_TRUE (kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (step.top))) << step.label;
        }
    }
    EXPECT_EQ (deletes, 1);
    EXPECT_FALSE (gtk_widget_get_visible (event));
    EXPECT_EQ (destroyed, 1);
    gtk_widget_destroy (event);
}

TEST (WindowStack, AStackedWindowCoversTheOneBelowAndItsBackButtonClosesIt)
{
    REQUIRE_XTEST ();
    GtkWidget *below = kivo_stackable_window_new ();
    gtk_window_move (GTK_WINDOW (below), 37, 41);
    gtk_window_resize (GTK_WINDOW (below), 640, 400);
    /* The window swaps what it shows, as the calendar swaps its views; the
     * content stands below the title area. */
    GtkWidget *first = gtk_label_new ("first"), *second = gtk_label_new ("second");
    gtk_container_add (GTK_CONTAINER (below), first);
    gtk_container_remove (GTK_CONTAINER (below), first);
    gtk_container_add (GTK_CONTAINER (below), second);
    gtk_widget_show_all (below);
    flush_events ();
    EXPECT_LE (title_area (below)->allocation.y + title_area (below)->allocation.height, second->allocation.y);
    GtkWidget *above = kivo_stackable_window_new ();
    gtk_widget_show (above);
    flush_events ();
    GdkRectangle places[2];
    for (int i = 0; i < 2; i++) {
        GdkWindow *w = (i ? above : below)->window;
        gdk_window_get_origin (w, &places[i].x, &places[i].y);
        gdk_drawable_get_size (w, &places[i].width, &places[i].height);
    }
    EXPECT_EQ (places[0].width, 640);
    EXPECT_EQ (std::tie (places[0].x, places[0].y, places[0].width, places[0].height),
               std::tie (places[1].x, places[1].y, places[1].width, places[1].height));
    EXPECT_EQ (gtk_window_get_transient_for (GTK_WINDOW (above)), GTK_WINDOW (below));

    /* The back button sits at the right end of the title area. */
    int destroyed = 0;
    count_signal (above, "destroy", &destroyed);
    const int back_x = title_area (above)->allocation.width - 30, back_y = title_area (above)->allocation.height / 2;
    PointerDriver::tap (title_area (above), back_x, back_y);
    flush_events ();
    EXPECT_EQ (destroyed, 1);
    EXPECT_EQ (kivo_window_stack_peek (kivo_window_stack_get_default ()), below);
    EXPECT_TRUE (kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (below)));
    /* The bottom window has no way back, by tap or by Escape. */
    PointerDriver::tap (title_area (below), back_x, back_y);
    gdk_test_simulate_key (below->window, -1, -1, GDK_Escape, GdkModifierType (0), GDK_KEY_PRESS);
    flush_events ();
    EXPECT_TRUE (gtk_widget_get_visible (below));
    /* Escape goes back as the back button does. */
    above = kivo_stackable_window_new ();
    gtk_widget_show (above);
    flush_events ();
    count_signal (above, "destroy", &destroyed);
    gdk_test_simulate_key (above->window, -1, -1, GDK_Escape, GdkModifierType (0), GDK_KEY_PRESS);
    flush_events ();
    EXPECT_EQ (destroyed, 2);
    EXPECT_EQ (kivo_window_stack_peek (kivo_window_stack_get_default ()), below);
    gtk_widget_destroy (below);
}

TEST (AppMenu, OpensFromTheTitleAreaLaysOutItsItemsAndClosesAfterATap)
{
    REQUIRE_XTEST ();
    GtkWidget *window = kivo_stackable_window_new ();
    gtk_window_move (GTK_WINDOW (window), 0, 0);
    gtk_container_add (GTK_CONTAINER (window), gtk_label_new ("content"));
    KivoAppMenu *menu = KIVO_APP_MENU (kivo_app_menu_new ());
    GtkWidget *month = gtk_radio_button_new_with_label (nullptr, "Month");
    GtkWidget *week = gtk_radio_button_new_with_label_from_widget (GTK_RADIO_BUTTON (month), "Week");
    kivo_app_menu_add_filter (menu, GTK_BUTTON (month));
    kivo_app_menu_add_filter (menu, GTK_BUTTON (week));
    GtkWidget *items[3];
    int clicks[3] = {};
    for (int i = 0; i < 3; i++) {
        items[i] = gtk_button_new_with_label ("item");
        count_signal (items[i], "clicked", &clicks[i]);
        kivo_app_menu_append (menu, GTK_BUTTON (items[i]));
    }
    kivo_stackable_window_set_main_menu (KIVO_STACKABLE_WINDOW (window), menu);
    gtk_widget_show_all (window);
    flush_events ();
    auto mapped = [menu] { return gtk_widget_get_mapped (GTK_WIDGET (menu)); };

    PointerDriver::tap (title_area (window), 20, title_area (window)->allocation.height / 2);
    flush_events ();
    ASSERT_TRUE (mapped ());
    PointerDriver::tap_centre (items[1]);
    EXPECT_EQ (clicks[0] + clicks[2], 0);
    EXPECT_EQ (clicks[1], 1);
    EXPECT_FALSE (mapped ());

    /* The menu key opens it too; a filter tap switches the radio group. */
    ASSERT_TRUE (gdk_test_simulate_key (window->window, 10, 10, GDK_F4, GdkModifierType (0), GDK_KEY_PRESS));
    flush_events ();
    ASSERT_TRUE (mapped ()) << "F4 is the menu key";
    PointerDriver::tap_centre (week);
    EXPECT_TRUE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (week)));
    EXPECT_FALSE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (month)));
    EXPECT_FALSE (mapped ());

    /* A tap outside closes it without running anything. */
    kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (window));
    flush_events ();
    PointerDriver::move_root (5, 470);
    PointerDriver::press (1);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_FALSE (mapped ());
    EXPECT_EQ (clicks[0] + clicks[1] + clicks[2], 1);

    /* Hidden items leave no gap: item 1 moves into the first slot, item 2
     * up beside it. */
    kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (window));
    flush_events ();
    const int first_x = items[0]->allocation.x, second_x = items[1]->allocation.x;
    EXPECT_LT (first_x, second_x) << "two items side by side";
    gtk_widget_hide (items[0]);
    flush_events ();
    EXPECT_EQ (items[1]->allocation.x, first_x);
    EXPECT_EQ (items[2]->allocation.x, second_x);
    EXPECT_EQ (items[2]->allocation.y, items[1]->allocation.y);
    GList *listed = kivo_app_menu_get_items (menu);
    EXPECT_EQ (g_list_length (listed), 3u);
    g_list_free (listed);
    /* Destroying the window with its menu open releases the menu's grabs. */
    gtk_widget_destroy (window);
    flush_events ();
    EXPECT_FALSE (gdk_pointer_is_grabbed ());
    EXPECT_EQ (gtk_grab_get_current (), nullptr);
}
