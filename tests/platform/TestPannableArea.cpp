/* The pannable area under real pointer input: drags pan, taps click. */

#include "KivoPannableArea.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <vector>

using namespace tav::test;

namespace {

constexpr int kRows = 20;
constexpr int kRowHeight = 70;

struct PanFixture {
    GtkWidget *window = nullptr;
    GtkWidget *area = nullptr;
    GtkWidget *viewport = nullptr;
    std::vector<GtkWidget *> buttons;
    std::vector<int> clicks = std::vector<int> (kRows, 0);

    explicit PanFixture (int vovershoot = 60)
    {
        window = make_test_window (400, 300);
        area = kivo_pannable_area_new ();
        g_object_set (area, "vovershoot_max", vovershoot, "hovershoot_max", 0, nullptr);
        GtkWidget *box = gtk_vbox_new (FALSE, 0);
        for (int i = 0; i < kRows; i++) {
            char label[16];
            g_snprintf (label, sizeof label, "row %d", i);
            GtkWidget *button = gtk_button_new_with_label (label);
            gtk_widget_set_size_request (button, -1, kRowHeight);
            g_signal_connect (button, "clicked", G_CALLBACK (+[] (GtkButton *, gpointer d) { ++*static_cast<int *> (d); }),
                              &clicks[i]);
            gtk_box_pack_start (GTK_BOX (box), button, FALSE, FALSE, 0);
            buttons.push_back (button);
        }
        kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), box);
        viewport = gtk_bin_get_child (GTK_BIN (area));
        gtk_container_add (GTK_CONTAINER (window), area);
        gtk_widget_show_all (window);
        flush_events ();
    }
    ~PanFixture () { gtk_widget_destroy (window); }

    double value () const { return gtk_adjustment_get_value (kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area))); }
    int total_clicks () const
    {
        int n = 0;
        for (int c : clicks)
            n += c;
        return n;
    }
    void wait_until_still ()
    {
        run_main_loop_until ([this] { return !kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (area)); }, 5000);
        flush_events ();
    }
};

#define REQUIRE_XTEST()                                  \
    do {                                                 \
        REQUIRE_DISPLAY ();                              \
        if (!PointerDriver::available ())                \
            GTEST_SKIP () << "no XTest on the display"; \
    } while (0)

} // namespace

TEST (PannableArea, ATapReachesTheChildAsAClick)
{
    REQUIRE_XTEST ();
    PanFixture f;
    GtkWidget *row = f.buttons[2];
    PointerDriver::tap (row, 100, kRowHeight / 2);
    flush_events ();
    EXPECT_EQ (f.clicks[2], 1);
    EXPECT_EQ (f.total_clicks (), 1);
    EXPECT_EQ (f.value (), 0.0);
}

TEST (PannableArea, APressHeldStillReachesTheChildBeforeRelease)
{
    REQUIRE_XTEST ();
    PanFixture f;
    int presses = 0;
    g_signal_connect (f.buttons[1], "pressed", G_CALLBACK (+[] (GtkButton *, gpointer d) { ++*static_cast<int *> (d); }),
                      &presses);
    PointerDriver::move_to (f.buttons[1], 50, 20);
    PointerDriver::press (1);
    PointerDriver::wait (KIVO_PANNABLE_AREA_PRESS_DELAY_MS + 150);
    EXPECT_EQ (presses, 1) << "a resting finger is a press for the child";
    PointerDriver::release (1);
    flush_events ();
    EXPECT_EQ (f.clicks[1], 1);
}

TEST (PannableArea, ADragPansAndClicksNothing)
{
    REQUIRE_XTEST ();
    PanFixture f;
    /* Finger from the bottom of the view to the top, then rests, then lifts. */
    PointerDriver::drag (f.area, 200, 250, 200, 50, 10, 20, false);
    PointerDriver::wait (200);
    PointerDriver::release (1);
    f.wait_until_still ();
    EXPECT_NEAR (f.value (), 200.0, 1.0) << "the content follows the finger";
    EXPECT_EQ (f.total_clicks (), 0);

    /* The other way brings it back. */
    PointerDriver::drag (f.area, 200, 50, 200, 150, 5, 20, false);
    PointerDriver::wait (200);
    PointerDriver::release (1);
    f.wait_until_still ();
    EXPECT_NEAR (f.value (), 100.0, 1.0);
    EXPECT_EQ (f.total_clicks (), 0);
}

TEST (PannableArea, AFlickKeepsMovingAfterRelease)
{
    REQUIRE_XTEST ();
    PanFixture f;
    PointerDriver::drag (f.area, 200, 280, 200, 130, 3, 10, true);
    const double at_release = f.value ();
    EXPECT_GT (at_release, 100.0);
    EXPECT_TRUE (kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (f.area)));
    f.wait_until_still ();
    GtkAdjustment *v = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (f.area));
    EXPECT_GT (f.value (), at_release + 50) << "it glided on";
    EXPECT_LE (f.value (), v->upper - v->page_size);
    EXPECT_EQ (f.total_clicks (), 0);
}

TEST (PannableArea, ATapOnMovingContentStopsItWithoutClicking)
{
    REQUIRE_XTEST ();
    PanFixture f;
    PointerDriver::drag (f.area, 200, 280, 200, 130, 3, 10, true);
    ASSERT_TRUE (kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (f.area)));
    PointerDriver::tap (f.area, 200, 150);
    const double stopped = f.value ();
    EXPECT_FALSE (kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (f.area)));
    PointerDriver::wait (200);
    EXPECT_EQ (f.value (), stopped);
    EXPECT_EQ (f.total_clicks (), 0);
}

TEST (PannableArea, OvershootFollowsTheLimitAndSpringsBack)
{
    REQUIRE_XTEST ();
    struct Case {
        const char *label;
        int vovershoot_max;
        int expected_offset;
    };
    for (const Case &c : { Case { "room for 60 px", 60, 60 }, Case { "room for 25 px", 25, 25 },
                           Case { "no overshoot", 0, 0 } }) {
        PanFixture f (c.vovershoot_max);
        PointerDriver::drag (f.area, 200, 40, 200, 240, 8, 20, false);
        flush_events ();
        EXPECT_EQ (f.viewport->allocation.y, c.expected_offset) << c.label;
        EXPECT_EQ (f.value (), 0.0) << c.label;
        PointerDriver::wait (150);
        PointerDriver::release (1);
        f.wait_until_still ();
        EXPECT_EQ (f.viewport->allocation.y, 0) << c.label << ": springs back";
        EXPECT_EQ (f.value (), 0.0) << c.label;
        EXPECT_EQ (f.total_clicks (), 0) << c.label;
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

TEST (PannableArea, PropertiesAcceptTheirUnderscoreNames)
{
    REQUIRE_DISPLAY ();
    GtkWidget *area = kivo_pannable_area_new ();
    g_object_ref_sink (area);
    g_object_set (area, "mov_mode", 4, "hovershoot_max", 0, "vovershoot_max", 50,
                  "hscrollbar_policy", GTK_POLICY_NEVER, "size-request-policy", KIVO_SIZE_REQUEST_CHILDREN, nullptr);
    guint mode = 0;
    int h = -1, v = -1;
    GtkPolicyType policy = GTK_POLICY_ALWAYS;
    KivoSizeRequestPolicy request = KIVO_SIZE_REQUEST_MINIMUM;
    g_object_get (area, "mov-mode", &mode, "hovershoot-max", &h, "vovershoot-max", &v, "hscrollbar-policy", &policy,
                  "size_request_policy", &request, nullptr);
    EXPECT_EQ (mode, static_cast<guint> (KIVO_MOVEMENT_MODE_VERTICAL));
    EXPECT_EQ (h, 0);
    EXPECT_EQ (v, 50);
    EXPECT_EQ (policy, GTK_POLICY_NEVER);
    EXPECT_EQ (request, KIVO_SIZE_REQUEST_CHILDREN);
    g_object_unref (area);
}

TEST (PannableArea, DrivesChildrenThatScrollThemselves)
{
    REQUIRE_DISPLAY ();
    GtkWidget *window = make_test_window (300, 200);
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
    EXPECT_EQ (gtk_tree_view_get_vadjustment (GTK_TREE_VIEW (view)),
               kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area)));
    gtk_container_add (GTK_CONTAINER (window), area);
    gtk_widget_show_all (window);
    flush_events ();

    GtkAdjustment *v = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
    ASSERT_GT (v->upper, v->page_size);
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, 120);
    EXPECT_EQ (v->value, 120.0);
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, 1000000);
    EXPECT_EQ (v->value, v->upper - v->page_size) << "clamped to the end";
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (area), -1, -1);
    EXPECT_EQ (v->value, v->upper - v->page_size) << "-1 leaves it alone";

    /* A child that does not scroll by itself is refused with a hint. */
    GtkWidget *other = kivo_pannable_area_new ();
    g_object_ref_sink (other);
    {
        LogCapture capture;
        gtk_container_add (GTK_CONTAINER (other), gtk_label_new ("plain"));
        bool hinted = false;
        for (auto &line : capture.lines ())
            hinted |= line.message.find ("kivo_pannable_area_add_with_viewport") != std::string::npos;
        EXPECT_TRUE (hinted) << capture.dump ();
    }
    gtk_widget_destroy (other);
    g_object_unref (other);
    gtk_widget_destroy (window);
}

TEST (PannableArea, ATapFocusesAnEntryInside)
{
    REQUIRE_XTEST ();
    GtkWidget *window = make_test_window (400, 300);
    GtkWidget *area = kivo_pannable_area_new ();
    GtkWidget *box = gtk_vbox_new (FALSE, 0);
    GtkWidget *first = gtk_entry_new ();
    GtkWidget *second = gtk_entry_new ();
    gtk_box_pack_start (GTK_BOX (box), first, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (box), second, FALSE, FALSE, 0);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), box);
    gtk_container_add (GTK_CONTAINER (window), area);
    gtk_widget_show_all (window);
    flush_events ();
    gtk_widget_grab_focus (first);
    PointerDriver::tap (second, 30, second->allocation.height / 2);
    flush_events ();
    EXPECT_TRUE (gtk_widget_has_focus (second));
    gtk_widget_destroy (window);
}

TEST (PannableArea, ScrollToChildBringsItIntoView)
{
    REQUIRE_DISPLAY ();
    PanFixture f;
    GtkAdjustment *v = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (f.area));
    struct Case {
        const char *label;
        int row;
        double expected;
    };
    const Case cases[] = {
        { "a row below the view ends up at its bottom", 10, 11 * kRowHeight - v->page_size },
        { "a row already in view does not move it", 9, 11 * kRowHeight - v->page_size },
        { "a row above the view ends up at its top", 2, 2 * kRowHeight },
        { "the last row", kRows - 1, v->upper - v->page_size },
        { "the first row", 0, 0 },
    };
    for (const Case &c : cases) {
        kivo_pannable_area_scroll_to_child (KIVO_PANNABLE_AREA (f.area), f.buttons[c.row]);
        EXPECT_EQ (v->value, c.expected) << c.label;
    }
}
