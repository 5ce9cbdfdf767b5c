/* Tap-and-hold under real pointer and key input. */

#include "KivoNote.h"
#include "KivoPannableArea.h"
#include "KivoTapAndHold.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <gdk/gdkkeysyms.h>
#include <functional>

using namespace tav::test;

namespace {

struct HoldFixture {
    GtkWidget *window = nullptr;
    GtkWidget *target = nullptr;
    int queries = 0;
    int holds = 0;
    int releases = 0;
    bool refuse = false;
    GdkEventType query_event_type = GDK_NOTHING;

    HoldFixture ()
    {
        window = make_test_window (300, 200);
        target = gtk_event_box_new ();
        gtk_widget_set_can_focus (target, TRUE);
        gtk_container_add (GTK_CONTAINER (window), target);
        g_signal_connect (target, "tap-and-hold-query", G_CALLBACK (+[] (GtkWidget *, GdkEvent *event, gpointer d) -> gboolean {
            auto *f = static_cast<HoldFixture *> (d);
            f->queries++;
            f->query_event_type = event ? event->type : GDK_NOTHING;
            return f->refuse;
        }), this);
        g_signal_connect (target, "tap-and-hold", G_CALLBACK (+[] (GtkWidget *, gpointer d) {
            static_cast<HoldFixture *> (d)->holds++;
        }), this);
        g_signal_connect (target, "button-release-event", G_CALLBACK (+[] (GtkWidget *, GdkEventButton *, gpointer d) -> gboolean {
            static_cast<HoldFixture *> (d)->releases++;
            return FALSE;
        }), this);
        gtk_widget_tap_and_hold_setup (target, nullptr, nullptr, KIVO_TAP_AND_HOLD_NONE);
        gtk_widget_show_all (window);
        flush_events ();
    }
    ~HoldFixture () { gtk_widget_destroy (window); }
};

} // namespace

TEST (TapAndHold, SignalsExistBeforeAnySetup)
{
    /* Widgets connect in their init, before they set tap-and-hold up. */
    EXPECT_NE (g_signal_lookup ("tap-and-hold-query", GTK_TYPE_WIDGET), 0u);
    EXPECT_NE (g_signal_lookup ("tap-and-hold", GTK_TYPE_WIDGET), 0u);
}

TEST (TapAndHold, PointerGestures)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    struct Case {
        const char *label;
        bool refuse;
        std::function<void (GtkWidget *)> gesture;
        int queries, holds, releases;
    };
    const int hold = KIVO_TAP_AND_HOLD_DELAY_MS + 300;
    const Case cases[] = {
        { "a press held still fires once and keeps its release", false,
          [&] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (1);
                               PointerDriver::wait (hold); PointerDriver::wait (hold); PointerDriver::release (1); },
          1, 1, 0 },
        { "a quick tap is only a tap", false,
          [] (GtkWidget *w) { PointerDriver::tap (w, 50, 50); PointerDriver::wait (KIVO_TAP_AND_HOLD_DELAY_MS + 100); },
          1, 0, 1 },
        { "a refused query fires nothing", true,
          [&] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (1);
                               PointerDriver::wait (hold); PointerDriver::release (1); },
          1, 0, 1 },
        { "a press that wanders off is no hold", false,
          [&] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (1);
                               PointerDriver::wait (100); PointerDriver::move_to (w, 50 + KIVO_TAP_AND_HOLD_MOVE_THRESHOLD + 10, 50);
                               PointerDriver::wait (hold); PointerDriver::release (1); },
          1, 0, 1 },
        { "a small tremble does not cancel it", false,
          [&] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (1);
                               PointerDriver::wait (100); PointerDriver::move_to (w, 55, 53);
                               PointerDriver::wait (hold); PointerDriver::release (1); },
          1, 1, 0 },
        { "the right button fires at once", false,
          [] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (3); PointerDriver::release (3); },
          1, 1, 0 },
        { "the right button respects a refusal", true,
          [] (GtkWidget *w) { PointerDriver::move_to (w, 50, 50); PointerDriver::press (3); PointerDriver::release (3); },
          1, 0, 0 },
    };
    for (const Case &c : cases) {
        HoldFixture f;
        f.refuse = c.refuse;
        c.gesture (f.target);
        flush_events ();
        EXPECT_EQ (f.queries, c.queries) << c.label;
        EXPECT_EQ (f.holds, c.holds) << c.label;
        EXPECT_EQ (f.releases, c.releases) << c.label;
        EXPECT_EQ (f.query_event_type, GDK_BUTTON_PRESS) << c.label;
    }
}

TEST (TapAndHold, TheContextMenuKeyFires)
{
    REQUIRE_DISPLAY ();
    HoldFixture f;
    gtk_widget_grab_focus (f.target);
    ASSERT_TRUE (gdk_test_simulate_key (f.window->window, 10, 10, GDK_Menu, static_cast<GdkModifierType> (0),
                                        GDK_KEY_PRESS));
    flush_events ();
    EXPECT_EQ (f.holds, 1);
    EXPECT_EQ (f.query_event_type, GDK_KEY_PRESS);
    ASSERT_TRUE (gdk_test_simulate_key (f.window->window, 10, 10, GDK_F10, GDK_SHIFT_MASK, GDK_KEY_PRESS));
    flush_events ();
    EXPECT_EQ (f.holds, 2);
    ASSERT_TRUE (gdk_test_simulate_key (f.window->window, 10, 10, GDK_a, static_cast<GdkModifierType> (0),
                                        GDK_KEY_PRESS));
    flush_events ();
    EXPECT_EQ (f.holds, 2) << "other keys pass";
}

TEST (TapAndHold, TheMenuPopsUpAndTheLiftedFingerChoosesNothing)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    HoldFixture f;
    GtkWidget *menu = kivo_gtk_menu_new ();
    GtkWidget *item = gtk_menu_item_new_with_label ("Delete");
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), item);
    int activated = 0;
    g_signal_connect (item, "activate", G_CALLBACK (+[] (GtkMenuItem *, gpointer d) { ++*static_cast<int *> (d); }),
                      &activated);
    gtk_widget_tap_and_hold_setup (f.target, menu, nullptr, KIVO_TAP_AND_HOLD_NONE);

    PointerDriver::move_to (f.target, 60, 60);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_TAP_AND_HOLD_DELAY_MS + 300);
    EXPECT_TRUE (gtk_widget_get_mapped (menu));
    /* The finger lifts on the first item, long after the menu came up. */
    PointerDriver::move_to (item, 20, 10);
    PointerDriver::wait (600);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_TRUE (gtk_widget_get_mapped (menu)) << "the menu stays for a deliberate tap";
    EXPECT_EQ (activated, 0);
    PointerDriver::tap (item, 20, 10);
    flush_events ();
    EXPECT_EQ (activated, 1);
    EXPECT_FALSE (gtk_widget_get_mapped (menu));
    gtk_widget_destroy (menu);
}

TEST (TapAndHold, NoInternalsLeavesTheMenuToTheHandler)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    HoldFixture f;
    GtkWidget *menu = kivo_gtk_menu_new ();
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), gtk_menu_item_new_with_label ("Edit"));
    gtk_widget_tap_and_hold_setup (f.target, menu, nullptr, KIVO_TAP_AND_HOLD_NO_INTERNALS);
    PointerDriver::move_to (f.target, 60, 60);
    PointerDriver::press (3);
    PointerDriver::release (3);
    flush_events ();
    EXPECT_EQ (f.holds, 1);
    EXPECT_FALSE (gtk_widget_get_mapped (menu));
    gtk_widget_destroy (menu);
}

TEST (TapAndHold, WorksInsideAPannableArea)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    GtkWidget *window = make_test_window (300, 200);
    GtkWidget *area = kivo_pannable_area_new ();
    GtkWidget *box = gtk_event_box_new ();
    gtk_widget_set_size_request (box, -1, 600);
    int holds = 0;
    g_signal_connect (box, "tap-and-hold", G_CALLBACK (+[] (GtkWidget *, gpointer d) { ++*static_cast<int *> (d); }),
                      &holds);
    gtk_widget_tap_and_hold_setup (box, nullptr, nullptr, KIVO_TAP_AND_HOLD_NONE);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), box);
    gtk_container_add (GTK_CONTAINER (window), area);
    gtk_widget_show_all (window);
    flush_events ();

    PointerDriver::move_to (area, 100, 100);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_PANNABLE_AREA_PRESS_DELAY_MS + KIVO_TAP_AND_HOLD_DELAY_MS + 300);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (holds, 1) << "a resting finger holds through the area";

    /* A pan that starts after the press reached the child cancels the hold. */
    PointerDriver::move_to (area, 100, 150);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_PANNABLE_AREA_PRESS_DELAY_MS + 100);
    for (int y = 140; y >= 40; y -= 10)
        PointerDriver::move_to (area, 100, y);
    PointerDriver::wait (KIVO_TAP_AND_HOLD_DELAY_MS + 200);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (holds, 1);
    EXPECT_GT (gtk_adjustment_get_value (kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area))), 50.0);

    /* A menu that pops up under the finger takes its release; the area
     * still answers the next tap. */
    GtkWidget *menu = kivo_gtk_menu_new ();
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), gtk_menu_item_new_with_label ("Delete"));
    gtk_widget_tap_and_hold_setup (box, menu, nullptr, KIVO_TAP_AND_HOLD_NONE);
    PointerDriver::move_to (area, 100, 100);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_PANNABLE_AREA_PRESS_DELAY_MS + KIVO_TAP_AND_HOLD_DELAY_MS + 300);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (holds, 2);
    ASSERT_TRUE (gtk_widget_get_mapped (menu));
    gtk_menu_popdown (GTK_MENU (menu));
    flush_events ();
    int presses = 0;
    g_signal_connect (box, "button-press-event", G_CALLBACK (+[] (GtkWidget *, GdkEventButton *, gpointer d) -> gboolean {
        ++*static_cast<int *> (d);
        return FALSE;
    }), &presses);
    PointerDriver::tap (area, 100, 100);
    flush_events ();
    EXPECT_EQ (presses, 1);
    gtk_widget_destroy (menu);
    gtk_widget_destroy (window);
}

TEST (TapAndHold, AMenuPoppedByTheHandlerIgnoresTheLiftedFinger)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    /* As the week view does: no internals, its handler pops its own menu. */
    HoldFixture f;
    struct Ctx {
        GtkWidget *menu;
        GtkWidget *item;
        int activated = 0;
    } ctx;
    ctx.menu = kivo_gtk_menu_new ();
    ctx.item = gtk_menu_item_new_with_label ("Edit");
    gtk_menu_shell_append (GTK_MENU_SHELL (ctx.menu), ctx.item);
    gtk_widget_show_all (ctx.menu);
    g_signal_connect (ctx.item, "activate", G_CALLBACK (+[] (GtkMenuItem *, gpointer d) {
        static_cast<Ctx *> (d)->activated++;
    }), &ctx);
    gtk_widget_tap_and_hold_setup (f.target, nullptr, nullptr, KIVO_TAP_AND_HOLD_NO_INTERNALS);
    g_signal_connect (f.target, "tap-and-hold", G_CALLBACK (+[] (GtkWidget *, gpointer d) {
        gtk_menu_popup (GTK_MENU (static_cast<Ctx *> (d)->menu), nullptr, nullptr, nullptr, nullptr, 1,
                        gtk_get_current_event_time ());
    }), &ctx);

    struct Case {
        const char *label;
        guint button;
        int hold_ms;
    };
    for (const Case &c : { Case { "held first button", 1, KIVO_TAP_AND_HOLD_DELAY_MS + 300 }, Case { "right button", 3, 0 } }) {
        PointerDriver::move_to (f.target, 60, 60);
        PointerDriver::press (c.button);
        PointerDriver::wait (c.hold_ms);
        ASSERT_TRUE (gtk_widget_get_mapped (ctx.menu)) << c.label;
        PointerDriver::move_to (ctx.item, 20, 10);
        PointerDriver::wait (600);
        PointerDriver::release (c.button);
        flush_events ();
        EXPECT_TRUE (gtk_widget_get_mapped (ctx.menu)) << c.label;
        EXPECT_EQ (ctx.activated, 0) << c.label;
        gtk_menu_popdown (GTK_MENU (ctx.menu));
        flush_events ();
    }
    gtk_widget_destroy (ctx.menu);
}
