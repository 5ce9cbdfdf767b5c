/* Stackable windows, the window stack and the application menu. */

#include "KivoAppMenu.h"
#include "KivoStackableWindow.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <gdk/gdkkeysyms.h>
#include <string>
#include <vector>

using namespace tav::test;

namespace {

struct TopmostLog {
    std::vector<std::string> events;
};

void on_topmost_cb (GObject *window, GParamSpec *, gpointer data)
{
    auto *log = static_cast<TopmostLog *> (data);
    gboolean topmost = FALSE;
    g_object_get (window, "is-topmost", &topmost, nullptr);
    log->events.push_back (std::string (gtk_window_get_title (GTK_WINDOW (window))) + (topmost ? "+" : "-"));
}

GtkWidget *titled_window (const char *title, TopmostLog *log)
{
    GtkWidget *window = kivo_stackable_window_new ();
    gtk_window_set_title (GTK_WINDOW (window), title);
    g_signal_connect (window, "notify::is-topmost", G_CALLBACK (on_topmost_cb), log);
    return window;
}

std::string joined (const std::vector<std::string> &events)
{
    std::string text;
    for (auto &e : events)
        text += (text.empty () ? "" : " ") + e;
    return text;
}

} // namespace

TEST (WindowStack, TopmostFollowsPushesAndPops)
{
    REQUIRE_DISPLAY ();
    KivoWindowStack *stack = kivo_window_stack_get_default ();
    ASSERT_EQ (kivo_window_stack_size (stack), 0);
    TopmostLog log;
    GtkWidget *main_window = titled_window ("main", &log);
    GtkWidget *day = titled_window ("day", &log);
    GtkWidget *event = titled_window ("event", &log);

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
    };
    for (const Step &step : steps) {
        log.events.clear ();
        step.action ();
        flush_events ();
        EXPECT_EQ (kivo_window_stack_peek (stack), step.top) << step.label;
        EXPECT_EQ (kivo_window_stack_size (stack), step.size) << step.label;
        EXPECT_EQ (joined (log.events), step.notifications) << step.label;
        EXPECT_TRUE (kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (step.top))) << step.label;
    }
    gtk_widget_destroy (day);
    gtk_widget_destroy (event);
    EXPECT_EQ (kivo_window_stack_size (stack), 0);
    EXPECT_EQ (kivo_window_stack_peek (stack), nullptr);
}

TEST (WindowStack, AStackedWindowCoversTheOneBelow)
{
    REQUIRE_DISPLAY ();
    GtkWidget *below = kivo_stackable_window_new ();
    gtk_window_move (GTK_WINDOW (below), 37, 41);
    gtk_window_resize (GTK_WINDOW (below), 640, 400);
    gtk_widget_show (below);
    flush_events ();
    GtkWidget *above = kivo_stackable_window_new ();
    gtk_widget_show (above);
    flush_events ();
    int bx, by, bw, bh, ax, ay, aw, ah;
    gdk_window_get_origin (below->window, &bx, &by);
    gdk_window_get_origin (above->window, &ax, &ay);
    gdk_drawable_get_size (below->window, &bw, &bh);
    gdk_drawable_get_size (above->window, &aw, &ah);
    EXPECT_EQ (ax, bx);
    EXPECT_EQ (ay, by);
    EXPECT_EQ (aw, bw);
    EXPECT_EQ (ah, bh);
    EXPECT_EQ (bw, 640);
    EXPECT_EQ (gtk_window_get_transient_for (GTK_WINDOW (above)), GTK_WINDOW (below));
    gtk_widget_destroy (above);
    gtk_widget_destroy (below);
}

TEST (WindowStack, ContentIsAddedBelowTheTitleArea)
{
    REQUIRE_DISPLAY ();
    GtkWidget *window = kivo_stackable_window_new ();
    GtkWidget *first = gtk_label_new ("first");
    GtkWidget *second = gtk_label_new ("second");
    gtk_container_add (GTK_CONTAINER (window), first);
    GList *children = gtk_container_get_children (GTK_CONTAINER (window));
    EXPECT_EQ (g_list_length (children), 1u);
    EXPECT_EQ (children ? children->data : nullptr, first);
    g_list_free (children);
    /* The window swaps what it shows, as the calendar swaps its views. */
    gtk_container_remove (GTK_CONTAINER (window), first);
    gtk_container_add (GTK_CONTAINER (window), second);
    children = gtk_container_get_children (GTK_CONTAINER (window));
    EXPECT_EQ (children ? children->data : nullptr, second);
    g_list_free (children);
    gtk_widget_show_all (window);
    flush_events ();
    GtkWidget *title = kivo_stackable_window_get_title_area (KIVO_STACKABLE_WINDOW (window));
    EXPECT_LT (title->allocation.y + title->allocation.height, second->allocation.y + 1);
    gtk_widget_destroy (window);
}

TEST (WindowStack, CloseRequestGoesThroughDeleteEvent)
{
    REQUIRE_DISPLAY ();
    GtkWidget *window = kivo_stackable_window_new ();
    gtk_widget_show (window);
    flush_events ();
    int deletes = 0;
    gulong id = g_signal_connect (window, "delete-event", G_CALLBACK (+[] (GtkWidget *w, GdkEvent *, gpointer d) -> gboolean {
        ++*static_cast<int *> (d);
        gtk_widget_hide (w);
        return TRUE; /* kept, only hidden, as the day window is */
    }), &deletes);
    kivo_stackable_window_request_close (KIVO_STACKABLE_WINDOW (window));
    flush_events ();
    EXPECT_EQ (deletes, 1);
    EXPECT_FALSE (gtk_widget_get_visible (window));
    EXPECT_EQ (kivo_window_stack_size (kivo_window_stack_get_default ()), 0);
    g_signal_handler_disconnect (window, id);
    /* Unhandled, the request destroys the window. */
    gtk_widget_show (window);
    flush_events ();
    bool destroyed = false;
    g_signal_connect (window, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer d) { *static_cast<bool *> (d) = true; }),
                      &destroyed);
    kivo_stackable_window_request_close (KIVO_STACKABLE_WINDOW (window));
    flush_events ();
    EXPECT_TRUE (destroyed);
}

namespace {

struct MenuFixture {
    GtkWidget *window = nullptr;
    KivoAppMenu *menu = nullptr;
    std::vector<GtkWidget *> items;
    GtkWidget *filters[2] = {};
    int clicks[3] = {};
};

void build_menu_window (MenuFixture &f)
{
    f.window = kivo_stackable_window_new ();
    gtk_window_set_title (GTK_WINDOW (f.window), "menu test");
    gtk_window_move (GTK_WINDOW (f.window), 0, 0);
    gtk_container_add (GTK_CONTAINER (f.window), gtk_label_new ("content"));
    f.menu = KIVO_APP_MENU (kivo_app_menu_new ());
    GtkWidget *month = gtk_radio_button_new_with_label (nullptr, "Month");
    GtkWidget *week = gtk_radio_button_new_with_label_from_widget (GTK_RADIO_BUTTON (month), "Week");
    f.filters[0] = month;
    f.filters[1] = week;
    kivo_app_menu_add_filter (f.menu, GTK_BUTTON (month));
    kivo_app_menu_add_filter (f.menu, GTK_BUTTON (week));
    for (int i = 0; i < 3; i++) {
        char label[16];
        g_snprintf (label, sizeof label, "item %d", i);
        GtkWidget *item = gtk_button_new_with_label (label);
        g_signal_connect (item, "clicked", G_CALLBACK (+[] (GtkButton *, gpointer d) { ++*static_cast<int *> (d); }),
                          &f.clicks[i]);
        kivo_app_menu_append (f.menu, GTK_BUTTON (item));
        f.items.push_back (item);
    }
    kivo_stackable_window_set_main_menu (KIVO_STACKABLE_WINDOW (f.window), f.menu);
    gtk_widget_show_all (f.window);
    flush_events ();
}

int centre_x (GtkWidget *w) { return w->allocation.width / 2; }
int centre_y (GtkWidget *w) { return w->allocation.height / 2; }

} // namespace

TEST (AppMenu, OpensFromTheTitleAreaAndAnItemTapRunsItAndCloses)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    MenuFixture f;
    build_menu_window (f);
    GtkWidget *title = kivo_stackable_window_get_title_area (KIVO_STACKABLE_WINDOW (f.window));
    PointerDriver::tap (title, 20, centre_y (title));
    flush_events ();
    ASSERT_TRUE (gtk_widget_get_mapped (GTK_WIDGET (f.menu)));

    PointerDriver::tap (f.items[1], centre_x (f.items[1]), centre_y (f.items[1]));
    flush_events ();
    EXPECT_EQ (f.clicks[0], 0);
    EXPECT_EQ (f.clicks[1], 1);
    EXPECT_EQ (f.clicks[2], 0);
    EXPECT_FALSE (gtk_widget_get_mapped (GTK_WIDGET (f.menu)));

    /* The menu key opens it too; a filter tap switches the radio group. */
    ASSERT_TRUE (gdk_test_simulate_key (f.window->window, 10, 10, GDK_F4, static_cast<GdkModifierType> (0),
                                        GDK_KEY_PRESS));
    flush_events ();
    ASSERT_TRUE (gtk_widget_get_mapped (GTK_WIDGET (f.menu))) << "F4 is the menu key";
    PointerDriver::tap (f.filters[1], centre_x (f.filters[1]), centre_y (f.filters[1]));
    flush_events ();
    EXPECT_TRUE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (f.filters[1])));
    EXPECT_FALSE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (f.filters[0])));
    EXPECT_FALSE (gtk_widget_get_mapped (GTK_WIDGET (f.menu)));

    /* A tap outside closes it without running anything. */
    kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (f.window));
    flush_events ();
    PointerDriver::move_root (5, 470);
    PointerDriver::press (1);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_FALSE (gtk_widget_get_mapped (GTK_WIDGET (f.menu)));
    EXPECT_EQ (f.clicks[0] + f.clicks[1] + f.clicks[2], 1);
    gtk_widget_destroy (f.window);
}

TEST (AppMenu, HiddenItemsLeaveNoGap)
{
    REQUIRE_DISPLAY ();
    MenuFixture f;
    build_menu_window (f);
    kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (f.window));
    flush_events ();
    ASSERT_TRUE (gtk_widget_get_mapped (GTK_WIDGET (f.menu)));
    const int first_x = f.items[0]->allocation.x;
    const int second_x = f.items[1]->allocation.x;
    EXPECT_LT (first_x, second_x) << "two items side by side";
    gtk_widget_hide (f.items[0]);
    flush_events ();
    /* Item 1 moves into the first slot, item 2 up beside it. */
    EXPECT_EQ (f.items[1]->allocation.x, first_x);
    EXPECT_EQ (f.items[2]->allocation.x, second_x);
    EXPECT_EQ (f.items[2]->allocation.y, f.items[1]->allocation.y);
    gtk_widget_show (f.items[0]);
    flush_events ();
    EXPECT_EQ (f.items[0]->allocation.x, first_x);
    GList *items = kivo_app_menu_get_items (f.menu);
    EXPECT_EQ (g_list_length (items), 3u);
    g_list_free (items);
    /* Destroying the window with its menu open releases the menu's grabs. */
    gtk_widget_destroy (f.window);
    flush_events ();
    EXPECT_FALSE (gdk_pointer_is_grabbed ());
    EXPECT_EQ (gtk_grab_get_current (), nullptr) << (gtk_grab_get_current () ? G_OBJECT_TYPE_NAME (gtk_grab_get_current ()) : "");
}

TEST (WindowStack, TheBackButtonOfACoveringWindowClosesIt)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    GtkWidget *below = kivo_stackable_window_new ();
    gtk_window_move (GTK_WINDOW (below), 0, 0);
    gtk_widget_show (below);
    flush_events ();
    GtkWidget *above = kivo_stackable_window_new ();
    gtk_widget_show (above);
    flush_events ();
    /* The back button sits at the right end of the title area. */
    GtkWidget *title = kivo_stackable_window_get_title_area (KIVO_STACKABLE_WINDOW (above));
    bool destroyed = false;
    g_signal_connect (above, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer d) { *static_cast<bool *> (d) = true; }),
                      &destroyed);
    const int back_x = title->allocation.width - 30, back_y = title->allocation.height / 2;
    PointerDriver::tap (title, back_x, back_y);
    flush_events ();
    EXPECT_TRUE (destroyed);
    EXPECT_EQ (kivo_window_stack_peek (kivo_window_stack_get_default ()), below);
    EXPECT_TRUE (kivo_stackable_window_get_is_topmost (KIVO_STACKABLE_WINDOW (below)));
    /* The bottom window has no way back. */
    PointerDriver::tap (kivo_stackable_window_get_title_area (KIVO_STACKABLE_WINDOW (below)), back_x, back_y);
    flush_events ();
    EXPECT_TRUE (gtk_widget_get_visible (below));
    gtk_widget_destroy (below);
}
