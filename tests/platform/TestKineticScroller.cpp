/* The arithmetic of kinetic panning, without a display. */

#include "KivoKineticScroller.h"

#include "TestSupport.h"

#include <cmath>
#include <string>
#include <vector>

using kivo::KineticScroller;

namespace {

constexpr gint64 ms (int n) { return static_cast<gint64> (n) * 1000; }

/* Runs the scroller at 60 frames a second until it rests (or 10 s pass);
 * returns the number of frames. */
int settle (KineticScroller &s, double dt = 1.0 / 60.0)
{
    int frames = 0;
    while (s.step (dt) && frames < 600)
        frames++;
    return frames;
}

struct DragCase {
    const char *label;
    double start;         /* position when the finger comes down */
    double overshoot_max;
    std::vector<double> pointer; /* press, then each drag position */
    double expected;      /* position after the last drag */
};

} // namespace

TEST (KineticScroller, DragFollowsTheFingerAndLimitsOvershoot)
{
    const DragCase cases[] = {
        { "inside the range the content follows the finger", 200, 100, { 500, 400 }, 300 },
        { "dragging down moves back towards the start", 200, 100, { 500, 650 }, 50 },
        { "past the top at half speed", 0, 100, { 100, 160 }, -30 },
        { "past the top no further than the limit", 0, 100, { 100, 500 }, -100 },
        { "no overshoot allowed stops at the top", 0, 0, { 100, 300 }, 0 },
        { "past the bottom at half speed", 1000, 100, { 500, 440 }, 1030 },
        { "past the bottom no further than the limit", 1000, 50, { 500, 0 }, 1050 },
        { "back from overshoot within one drag", 0, 100, { 100, 200, 100, 50 }, 50 },
    };
    for (const DragCase &c : cases) {
        KineticScroller s;
        s.set_limits (0, 1000, c.overshoot_max);
        s.jump_to (c.start);
        s.press (c.pointer[0], 0);
        for (size_t i = 1; i < c.pointer.size (); i++)
            s.drag (c.pointer[i], ms (static_cast<int> (i) * 10));
        EXPECT_DOUBLE_EQ (s.position (), c.expected) << c.label;
    }
}

TEST (KineticScroller, AFlickKeepsMovingAndSlowsDown)
{
    KineticScroller s;
    s.set_limits (0, 5000, 100);
    s.jump_to (100);
    s.press (500, 0);
    s.drag (450, ms (25));
    s.drag (400, ms (50));
    s.release (ms (50));
    EXPECT_DOUBLE_EQ (s.velocity (), 2000.0); /* 100 px in 50 ms, content moving down the list */
    EXPECT_TRUE (s.moving ());

    double previous_position = s.position ();
    double previous_speed = s.velocity ();
    int frames = 0;
    while (s.step (1.0 / 60.0) && frames++ < 1000) {
        EXPECT_GT (s.position (), previous_position) << "frame " << frames;
        EXPECT_LT (s.velocity (), previous_speed) << "frame " << frames;
        previous_position = s.position ();
        previous_speed = s.velocity ();
    }
    EXPECT_FALSE (s.moving ());
    /* The glide of v0 under friction f per second is v0 / ln(1/f), less the
     * bit lost when the speed falls under the stop threshold. */
    const double glide = 2000.0 / std::log (1.0 / KineticScroller::kFriction);
    EXPECT_NEAR (s.position (), 200 + glide, 10.0);
}

TEST (KineticScroller, TheGlideDoesNotDependOnTheFrameRate)
{
    /* The distance per frame is the exact integral of the decaying speed, so
     * a slow machine ends where a fast one does. */
    double finals[3];
    const double rates[] = { 30.0, 60.0, 144.0 };
    for (int i = 0; i < 3; i++) {
        KineticScroller s;
        s.set_limits (0, 100000, 0);
        s.press (1000, 0);
        s.drag (700, ms (60));
        s.drag (400, ms (100));
        s.release (ms (100));
        settle (s, 1.0 / rates[i]);
        finals[i] = s.position ();
    }
    EXPECT_NEAR (finals[0], finals[1], 3.0);
    EXPECT_NEAR (finals[1], finals[2], 3.0);
}

TEST (KineticScroller, ReleaseCases)
{
    struct Case {
        const char *label;
        std::vector<std::pair<double, int>> moves; /* pointer, time in ms */
        int release_ms;
        double expected_velocity;
    };
    const Case cases[] = {
        { "a finger that rested before lifting throws nothing", { { 400, 20 }, { 300, 40 } }, 300, 0.0 },
        { "a press without motion throws nothing", {}, 30, 0.0 },
        { "very slow motion is no flick", { { 499, 100 }, { 498, 200 } }, 200, 0.0 },
        { "a flick upwards scrolls back", { { 550, 20 }, { 600, 40 } }, 40, -2500.0 },
        { "a violent flick is capped", { { 0, 5 }, { -1000, 10 } }, 10, KineticScroller::kMaxVelocity },
    };
    for (const Case &c : cases) {
        KineticScroller s;
        s.set_limits (0, 100000, 0);
        s.jump_to (50000);
        s.press (500, 0);
        for (auto &move : c.moves)
            s.drag (move.first, ms (move.second));
        s.release (ms (c.release_ms));
        EXPECT_DOUBLE_EQ (s.velocity (), c.expected_velocity) << c.label;
    }
}

TEST (KineticScroller, OvershootSpringsBackToTheEnd)
{
    struct Case {
        const char *label;
        double start, finger_from, finger_to;
        double end;
    };
    const Case cases[] = {
        { "pulled down past the top", 0, 100, 260, 0 },
        { "pulled up past the bottom", 1000, 500, 380, 1000 },
    };
    for (const Case &c : cases) {
        KineticScroller s;
        s.set_limits (0, 1000, 100);
        s.jump_to (c.start);
        s.press (c.finger_from, 0);
        s.drag (c.finger_to, ms (50));
        s.release (ms (400)); /* rested: no flick, only the spring */
        ASSERT_NE (s.overshoot (), 0.0) << c.label;
        const double sign = s.overshoot () > 0 ? 1 : -1;
        double previous = std::fabs (s.overshoot ());
        while (s.step (1.0 / 60.0)) {
            EXPECT_LE (std::fabs (s.overshoot ()), previous) << c.label;
            EXPECT_GE (s.overshoot () * sign, 0.0) << c.label << ": the spring must not swing past the end";
            previous = std::fabs (s.overshoot ());
        }
        EXPECT_DOUBLE_EQ (s.position (), c.end) << c.label;
    }
}

TEST (KineticScroller, AFlickPastTheEndStopsThere)
{
    struct Case {
        const char *label;
        double overshoot_max;
    };
    for (const Case &c : { Case { "with room to overshoot, it springs back", 120 },
                           Case { "without, it stops dead", 0 } }) {
        KineticScroller s;
        s.set_limits (0, 1000, c.overshoot_max);
        s.jump_to (900);
        s.press (500, 0);
        s.drag (400, ms (20));
        s.drag (300, ms (40));
        s.release (ms (40));
        double furthest = 0;
        while (s.step (1.0 / 60.0)) {
            furthest = std::max (furthest, s.position ());
            EXPECT_LE (s.position (), 1000 + c.overshoot_max) << c.label;
        }
        if (c.overshoot_max > 0)
            EXPECT_GT (furthest, 1000.0) << c.label;
        EXPECT_DOUBLE_EQ (s.position (), 1000.0) << c.label;
    }
}

TEST (KineticScroller, LimitsClampWhereTheContentRests)
{
    KineticScroller s;
    s.set_limits (0, 1000, 50);
    s.jump_to (-20);
    EXPECT_DOUBLE_EQ (s.position (), 0.0);
    s.jump_to (800);
    s.set_limits (0, 500, 50); /* the content got shorter */
    EXPECT_DOUBLE_EQ (s.position (), 500.0);
    s.set_limits (0, -10, 50); /* shorter than the page: nothing to scroll */
    EXPECT_DOUBLE_EQ (s.position (), 0.0);
    s.press (0, 0);
    s.drag (-300, ms (10));
    EXPECT_DOUBLE_EQ (s.position (), 50.0);
}

TEST (KineticScroller, ClosedFormGlideMatchesFineIntegration)
{
    /* Differential check of the per-frame closed form against a plain
     * integration of v' = ln(f) v in 0.1 ms steps, for a spread of speeds
     * and both directions. */
    const double k = std::log (KineticScroller::kFriction);
    for (double speed : { 150.0, 400.0, 1000.0, 2500.0, 5999.0, -300.0, -4200.0 }) {
        double reference = 0.0, v = speed;
        const double h = 0.0001;
        while (std::fabs (v) >= KineticScroller::kMinVelocity) {
            reference += v * h;
            v += k * v * h;
        }
        KineticScroller s;
        s.set_limits (-1e7, 1e7, 0);
        s.jump_to (0);
        s.press (0, 0);
        s.drag (-speed * 0.05, ms (50)); /* 50 ms at the speed */
        s.release (ms (50));
        ASSERT_NEAR (s.velocity (), speed, 1e-6);
        const double start = s.position ();
        settle (s);
        EXPECT_NEAR (s.position () - start, reference, std::fabs (reference) * 0.01 + 1.0) << "speed " << speed;
    }
}
