/* The pannable area under real pointer input: drags pan, taps click. */

#include "KivoPannableArea.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <numeric>
#include <vector>

using namespace tav::test;

namespace {

constexpr int kRows = 20;
constexpr int kRowHeight = 70;

struct PanFixture {
    GtkWidget *window = nullptr;
    GtkWidget *area = kivo_pannable_area_new ();
    GtkWidget *viewport = nullptr;
    GtkWidget *entry = gtk_entry_new (); /* below the rows */
    std::vector<GtkWidget *> buttons;
    std::vector<int> clicks = std::vector<int> (kRows, 0);

    explicit PanFixture (int vovershoot = 60)
    {
        g_object_set (area, "vovershoot-max", vovershoot, "hovershoot-max", 0, nullptr);
        GtkWidget *box = gtk_vbox_new (FALSE, 0);
        for (int i = 0; i < kRows; i++) {
            GtkWidget *button = gtk_button_new_with_label ("row");
            gtk_widget_set_size_request (button, -1, kRowHeight);
            count_signal (button, "clicked", &clicks[i]);
            gtk_box_pack_start (GTK_BOX (box), button, FALSE, FALSE, 0);
            buttons.push_back (button);
        }
        gtk_box_pack_start (GTK_BOX (box), entry, FALSE, FALSE, 0);
        kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), box);
        viewport = gtk_bin_get_child (GTK_BIN (area));
        window = make_test_window (400, 300, area);
    }
    ~PanFixture () { gtk_widget_destroy (window); }

    GtkAdjustment *vadjustment () const { return kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area)); }
    double value () const { return gtk_adjustment_get_value (vadjustment ()); }
    bool moving () const { return kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (area)); }
    int total_clicks () const { return std::accumulate (clicks.begin (), clicks.end (), 0); }
    /* Rests the finger (no flick), lifts it and lets the content settle. */
    void rest_and_lift ()
    {
        PointerDriver::wait (150);
        PointerDriver::release (1);
        run_main_loop_until ([this] { return !moving (); }, 5000);
        flush_events ();
    }
};

} // namespace

TEST (PannableArea, TapsAndHeldPressesReachTheChild)
{
    REQUIRE_XTEST ();
    PanFixture f;
    PointerDriver::tap (f.buttons[2], 100, kRowHeight / 2);
    flush_events ();
    EXPECT_EQ (f.clicks[2], 1);
    EXPECT_EQ (f.total_clicks (), 1);
    EXPECT_EQ (f.value (), 0.0);

    int presses = 0;
    count_signal (f.buttons[1], "pressed", &presses);
    PointerDriver::move_to (f.buttons[1], 50, 20);
    PointerDriver::press (1);
    EXPECT_TRUE (run_main_loop_until ([&] { return presses == 1; }, KIVO_PANNABLE_AREA_PRESS_DELAY_MS + 1000))
        << "a resting finger is a press for the child before it lifts";
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (f.clicks[1], 1);

    /* A tap on an entry focuses it. */
    gtk_widget_grab_focus (f.buttons[0]);
    kivo_pannable_area_scroll_to_child (KIVO_PANNABLE_AREA (f.area), f.entry);
    flush_events ();
    PointerDriver::tap (f.entry, 30, f.entry->allocation.height / 2);
    flush_events ();
    EXPECT_TRUE (gtk_widget_has_focus (f.entry));
}

TEST (PannableArea, DragsPanFlicksGlideAndATapStopsThem)
{
    REQUIRE_XTEST ();
    PanFixture f;
    /* Finger from the bottom of the view to the top, then rests, then lifts:
     * the content follows the finger. The other way brings it back. */
    PointerDriver::drag (f.area, 200, 250, 200, 50, 10, 20, false);
    f.rest_and_lift ();
    EXPECT_NEAR (f.value (), 200.0, 1.0);
    PointerDriver::drag (f.area, 200, 50, 200, 150, 5, 20, false);
    f.rest_and_lift ();
    EXPECT_NEAR (f.value (), 100.0, 1.0);
    EXPECT_EQ (f.total_clicks (), 0);

    /* A flick glides on after the lift, to the end at most. */
    PointerDriver::drag (f.area, 200, 280, 200, 130, 3, 10, true);
    const double at_release = f.value ();
    EXPECT_GT (at_release, 200.0);
    ASSERT_TRUE (f.moving ());
    ASSERT_TRUE (run_main_loop_until ([&] { return f.value () > at_release + 50; }, 2000)) << "it glides on";
    run_main_loop_until ([&] { return !f.moving (); }, 5000);
    EXPECT_LE (f.value (), f.vadjustment ()->upper - f.vadjustment ()->page_size);

    /* A tap on moving content stops it and clicks nothing. */
    PointerDriver::drag (f.area, 200, 130, 200, 280, 3, 10, true);
    ASSERT_TRUE (f.moving ());
    PointerDriver::tap (f.area, 200, 150);
    const double stopped = f.value ();
    EXPECT_FALSE (f.moving ());
    PointerDriver::wait (200);
    EXPECT_EQ (f.value (), stopped);
    EXPECT_EQ (f.total_clicks (), 0);
}

TEST (PannableArea, OvershootFollowsTheLimitAndSpringsBack)
{
    REQUIRE_XTEST ();
    for (int limit : { 60, 25, 0 }) {
        PanFixture f (limit);
        PointerDriver::drag (f.area, 200, 40, 200, 240, 8, 20, false);
        flush_events ();
        EXPECT_EQ (f.viewport->allocation.y, limit) << "limit " << limit;
        EXPECT_EQ (f.value (), 0.0) << "limit " << limit;
        f.rest_and_lift ();
        EXPECT_EQ (f.viewport->allocation.y, 0) << "limit " << limit << ": springs back";
        EXPECT_EQ (f.value (), 0.0) << "limit " << limit;
        EXPECT_EQ (f.total_clicks (), 0) << "limit " << limit;
    }
}

TEST (PannableArea, VerticalModeIgnoresSidewaysDrags)
{
    REQUIRE_XTEST ();
    PanFixture f;
    g_object_set (f.area, "mov_mode", KIVO_MOVEMENT_MODE_VERTICAL, nullptr);
    /* Sideways off the button: not a pan, and not a click either. */
    PointerDriver::drag (f.buttons[1], 100, 30, 450, 35, 8, 20, true);
    flush_events ();
    EXPECT_EQ (f.value (), 0.0);
    EXPECT_EQ (gtk_adjustment_get_value (kivo_pannable_area_get_hadjustment (KIVO_PANNABLE_AREA (f.area))), 0.0);
    EXPECT_EQ (f.total_clicks (), 0);
    /* Sideways within the button is a (sloppy) click, as GTK would have it. */
    PointerDriver::drag (f.buttons[1], 100, 30, 180, 32, 4, 20, true);
    flush_events ();
    EXPECT_EQ (f.clicks[1], 1);
}

TEST (PannableArea, DrivesChildrenThatScrollThemselves)
{
    REQUIRE_DISPLAY ();
    GtkWidget *area = kivo_pannable_area_new ();
    GtkListStore *store = gtk_list_store_new (1, G_TYPE_STRING);
    for (int i = 0; i < 100; i++)
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, "row", -1);
    GtkWidget *view = gtk_tree_view_new_with_model (GTK_TREE_MODEL (store));
    g_object_unref (store);
    gtk_tree_view_insert_column_with_attributes (GTK_TREE_VIEW (view), -1, "t", gtk_cell_renderer_text_new (), "text", 0,
                                                 nullptr);
    {
        LogCapture capture;
        gtk_container_add (GTK_CONTAINER (area), view);
        EXPECT_TRUE (capture.lines ().empty ()) << capture.dump ();
    }
    GtkAdjustment *v = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
    EXPECT_EQ (gtk_tree_view_get_vadjustment (GTK_TREE_VIEW (view)), v);
    GtkWidget *window = make_test_window (300, 200, area);

    ASSERT_GT (v->upper, v->page_size);
    struct Case { const char *label; int y; double expected; };
    for (const Case &c : { Case { "inside the range", 120, 120 }, Case { "clamped to the end", 1000000, v->upper - v->page_size },
                           Case { "-1 leaves it alone", -1, v->upper - v->page_size } }) {
        kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, c.y);
        EXPECT_EQ (v->value, c.expected) << c.label;
    }

    /* A child that does not scroll by itself is refused with a hint. */
    GtkWidget *other = kivo_pannable_area_new ();
    g_object_ref_sink (other);
    {
        LogCapture capture;
        gtk_container_add (GTK_CONTAINER (other), gtk_label_new ("plain"));
        ASSERT_EQ (capture.lines ().size (), 1u);
        EXPECT_NE (capture.lines ()[0].message.find ("kivo_pannable_area_add_with_viewport"), std::string::npos);
    }
    gtk_widget_destroy (other);
    g_object_unref (other);
    gtk_widget_destroy (window);
}

TEST (PannableArea, ScrollToChildBringsItIntoView)
{
    REQUIRE_DISPLAY ();
    PanFixture f;
    GtkAdjustment *v = f.vadjustment ();
    struct Case { const char *label; int row; double expected; };
    const Case cases[] = {
        { "a row below the view ends up at its bottom", 10, 11 * kRowHeight - v->page_size },
        { "a row already in view does not move it", 9, 11 * kRowHeight - v->page_size },
        { "a row above the view ends up at its top", 2, 2 * kRowHeight },
        { "the entry below the last row: the end", -1, v->upper - v->page_size },
    };
    for (const Case &c : cases) {
        kivo_pannable_area_scroll_to_child (KIVO_PANNABLE_AREA (f.area), c.row < 0 ? f.entry : f.buttons[c.row]);
        EXPECT_EQ (v->value, c.expected) << c.label;
    }
}
