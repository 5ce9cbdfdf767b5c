/* Tap-and-hold under real pointer and key input. Waits end as soon as the
 * awaited signal arrives; only checks that something does NOT happen wait
 * out the hold delay. */

#include "KivoNote.h"
#include "KivoPannableArea.h"
#include "KivoTapAndHold.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <gdk/gdkkeysyms.h>

using namespace tav::test;

namespace {

constexpr int kPastTheDelay = KIVO_TAP_AND_HOLD_DELAY_MS + 100;

struct HoldFixture {
    GtkWidget *target = gtk_event_box_new ();
    GtkWidget *area = nullptr; /* in a pannable area: around the target */
    GtkWidget *window = nullptr;
    int queries = 0, holds = 0, releases = 0;
    bool refuse = false;
    GdkEventType query_event_type = GDK_NOTHING;

    explicit HoldFixture (bool in_pannable_area = false)
    {
        gtk_widget_set_can_focus (target, TRUE);
        g_signal_connect (target, "tap-and-hold-query", G_CALLBACK (+[] (GtkWidget *, GdkEvent *event, gpointer d) -> gboolean {
            auto *f = static_cast<HoldFixture *> (d);
            f->queries++;
            f->query_event_type = event ? event->type : GDK_NOTHING;
            return f->refuse;
        }), this);
        count_signal (target, "tap-and-hold", &holds);
        g_signal_connect (target, "button-release-event", G_CALLBACK (+[] (GtkWidget *, GdkEventButton *, gpointer d) -> gboolean {
            static_cast<HoldFixture *> (d)->releases++;
            return FALSE;
        }), this);
        gtk_widget_tap_and_hold_setup (target, nullptr, nullptr, KIVO_TAP_AND_HOLD_NONE);
        if (in_pannable_area) {
            area = kivo_pannable_area_new ();
            gtk_widget_set_size_request (target, -1, 600);
            kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), target);
        }
        window = make_test_window (300, 200, area ? area : target);
    }
    ~HoldFixture () { gtk_widget_destroy (window); }
};

/* Waits until @count reaches @expected (at most well past the hold delay). */
bool wait_for_count (const int &count, int expected)
{
    return run_main_loop_until ([&] { return count >= expected; }, KIVO_PANNABLE_AREA_PRESS_DELAY_MS + kPastTheDelay + 1000);
}

} // namespace

TEST (TapAndHold, PointerGestures)
{
    /* Widgets connect in their init, before they set tap-and-hold up. */
    EXPECT_NE (g_signal_lookup ("tap-and-hold-query", GTK_TYPE_WIDGET), 0u);
    EXPECT_NE (g_signal_lookup ("tap-and-hold", GTK_TYPE_WIDGET), 0u);
    REQUIRE_XTEST ();
    struct Case {
        const char *label;
        bool refuse;
        guint button;
        bool tap;    /* released at once */
        int move_x, move_y; /* where the finger moves while pressed, from (50, 50) */
        int queries, holds, releases;
    };
    const Case cases[] = {
        { "a press held still fires once and keeps its release", false, 1, false, 0, 0, 1, 1, 0 },
        { "a quick tap is only a tap", false, 1, true, 0, 0, 1, 0, 1 },
        { "a refused query fires nothing", true, 1, false, 0, 0, 1, 0, 1 },
        { "a press that wanders off is no hold", false, 1, false, KIVO_TAP_AND_HOLD_MOVE_THRESHOLD + 10, 0, 1, 0, 1 },
        { "a small tremble does not cancel it", false, 1, false, 5, 3, 1, 1, 0 },
        { "the right button fires at once", false, 3, false, 0, 0, 1, 1, 0 },
        { "the right button respects a refusal", true, 3, false, 0, 0, 1, 0, 0 },
    };
    for (const Case &c : cases) {
        HoldFixture f;
        f.refuse = c.refuse;
        PointerDriver::move_to (f.target, 50, 50);
        PointerDriver::press (c.button);
        if (c.tap)
            PointerDriver::release (c.button);
        if (c.move_x || c.move_y)
            PointerDriver::move_to (f.target, 50 + c.move_x, 50 + c.move_y);
        if (c.holds) {
            EXPECT_TRUE (wait_for_count (f.holds, c.holds)) << c.label;
        }
        if (c.button == 1 && (!c.holds || c.label == cases[0].label))
            PointerDriver::wait (kPastTheDelay); /* no (second) hold comes late */
        if (!c.tap)
            PointerDriver::release (c.button);
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
    struct Case { guint keyval; GdkModifierType modifiers; int holds; };
    for (const Case &c : { Case { GDK_Menu, GdkModifierType (0), 1 }, Case { GDK_F10, GDK_SHIFT_MASK, 2 },
                           Case { GDK_a, GdkModifierType (0), 2 } /* other keys pass */ }) {
        ASSERT_TRUE (gdk_test_simulate_key (f.window->window, 10, 10, c.keyval, c.modifiers, GDK_KEY_PRESS));
        flush_events ();
        EXPECT_EQ (f.holds, c.holds) << gdk_keyval_name (c.keyval);
        EXPECT_EQ (f.query_event_type, GDK_KEY_PRESS);
    }
}

TEST (TapAndHold, AMenuUnderTheFingerIgnoresItsLift)
{
    REQUIRE_XTEST ();
    /* The menu given to the setup, and (as the week view does) a menu the
     * handler pops itself, with no internals. Either way the finger that
     * held lifts on an item long after the menu came up and chooses
     * nothing; a deliberate tap then does. With no internals the given
     * menu stays shut. */
    struct Case { const char *label; bool popped_by_handler; guint button; };
    for (const Case &c : { Case { "internal menu, held first button", false, 1 },
                           Case { "handler's menu, held first button", true, 1 },
                           Case { "handler's menu, right button", true, 3 } }) {
        HoldFixture f;
        GtkWidget *menu = kivo_gtk_menu_new ();
        GtkWidget *item = gtk_menu_item_new_with_label ("Edit");
        gtk_menu_shell_append (GTK_MENU_SHELL (menu), item);
        gtk_widget_show_all (menu);
        GtkRequisition request;
        gtk_widget_size_request (item, &request);
        EXPECT_GE (request.height, 56) << "a finger can hit the item";
        int activated = 0;
        count_signal (item, "activate", &activated);
        GtkWidget *unused = kivo_gtk_menu_new ();
        if (c.popped_by_handler) {
            gtk_menu_shell_append (GTK_MENU_SHELL (unused), gtk_menu_item_new_with_label ("Delete"));
            gtk_widget_tap_and_hold_setup (f.target, unused, nullptr, KIVO_TAP_AND_HOLD_NO_INTERNALS);
            g_signal_connect (f.target, "tap-and-hold", G_CALLBACK (+[] (GtkWidget *, gpointer m) {
                gtk_menu_popup (GTK_MENU (m), nullptr, nullptr, nullptr, nullptr, 1, gtk_get_current_event_time ());
            }), menu);
        } else {
            gtk_widget_tap_and_hold_setup (f.target, menu, nullptr, KIVO_TAP_AND_HOLD_NONE);
        }
        PointerDriver::move_to (f.target, 60, 60);
        PointerDriver::press (c.button);
        ASSERT_TRUE (run_main_loop_until ([menu] { return gtk_widget_get_mapped (menu); }, kPastTheDelay + 1000)) << c.label;
        EXPECT_FALSE (gtk_widget_get_mapped (unused)) << c.label;
        PointerDriver::move_to (item, 20, 10);
        PointerDriver::wait (600); /* past GTK's own guard against an early release */
        PointerDriver::release (c.button);
        flush_events ();
        EXPECT_TRUE (gtk_widget_get_mapped (menu)) << c.label << ": the menu stays for a deliberate tap";
        EXPECT_EQ (activated, 0) << c.label;
        PointerDriver::tap (item, 20, 10);
        flush_events ();
        EXPECT_EQ (activated, 1) << c.label;
        EXPECT_FALSE (gtk_widget_get_mapped (menu)) << c.label;
        gtk_widget_destroy (menu);
        gtk_widget_destroy (unused);
    }
}

TEST (TapAndHold, WorksInsideAPannableArea)
{
    REQUIRE_XTEST ();
    HoldFixture f (true);
    GtkWidget *area = f.area, *box = f.target;
    int presses = 0;

    PointerDriver::move_to (area, 100, 100);
    PointerDriver::press (1);
    EXPECT_TRUE (wait_for_count (f.holds, 1)) << "a resting finger holds through the area";
    PointerDriver::release (1);
    flush_events ();

    /* A pan that starts after the press reached the child cancels the hold. */
    PointerDriver::move_to (area, 100, 150);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_PANNABLE_AREA_PRESS_DELAY_MS + 100);
    for (int y = 140; y >= 40; y -= 10)
        PointerDriver::move_to (area, 100, y);
    PointerDriver::wait (kPastTheDelay);
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (f.holds, 1);
    EXPECT_GT (gtk_adjustment_get_value (kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area))), 50.0);

    /* A menu that pops up under the finger takes its release; the area
     * still answers the next tap. */
    GtkWidget *menu = kivo_gtk_menu_new ();
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), gtk_menu_item_new_with_label ("Delete"));
    gtk_widget_tap_and_hold_setup (box, menu, nullptr, KIVO_TAP_AND_HOLD_NONE);
    PointerDriver::move_to (area, 100, 100);
    PointerDriver::press (1);
    ASSERT_TRUE (run_main_loop_until ([menu] { return gtk_widget_get_mapped (menu); }, 3000));
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (f.holds, 2);
    ASSERT_TRUE (gtk_widget_get_mapped (menu));
    gtk_menu_popdown (GTK_MENU (menu));
    flush_events ();
    g_signal_connect (box, "button-press-event", G_CALLBACK (+[] (GtkWidget *, GdkEventButton *, gpointer d) -> gboolean {
        ++*static_cast<int *> (d);
        return FALSE;
    }), &presses);
    PointerDriver::tap (area, 100, 100);
    flush_events ();
    EXPECT_EQ (presses, 1);
    gtk_widget_destroy (menu);
}
