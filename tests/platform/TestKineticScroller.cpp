/* The arithmetic of kinetic panning, without a display. */

#include "KivoKineticScroller.h"

#include "TestSupport.h"

#include <cmath>
#include <string>
#include <vector>

using kivo::KineticScroller;

namespace {

constexpr gint64 ms (int n) { return static_cast<gint64> (n) * 1000; }

using Moves = std::vector<std::pair<double, int>>; /* pointer, time in ms */

/* A scroller over [@lower, @upper] resting at @start after a finger came
 * down at @from (at time 0) and moved through @moves. */
KineticScroller dragged (double lower, double upper, double overshoot_max, double start, double from, const Moves &moves)
{
    KineticScroller s;
    s.set_limits (lower, upper, overshoot_max);
    s.jump_to (start);
    s.press (from, 0);
    for (auto [pointer, t] : moves)
        s.drag (pointer, ms (t));
    return s;
}

} // namespace

TEST (KineticScroller, DragFollowsTheFingerAndLimitsOvershoot)
{
    /* pointer: where the finger comes down, then a drag every 10 ms */
    struct Case { const char *label; double start, overshoot_max; std::vector<double> pointer; double expected; };
    const Case cases[] = {
        { "inside the range the content follows the finger", 200, 100, { 500, 400 }, 300 },
        { "dragging down moves back towards the start", 200, 100, { 500, 650 }, 50 },
        { "past the top at half speed", 0, 100, { 100, 160 }, -30 },
        { "past the top no further than the limit", 0, 100, { 100, 500 }, -100 },
        { "no overshoot allowed stops at the top", 0, 0, { 100, 300 }, 0 },
        { "past the bottom at half speed", 1000, 100, { 500, 440 }, 1030 },
        { "past the bottom no further than the limit", 1000, 50, { 500, 0 }, 1050 },
        { "back from overshoot within one drag", 0, 100, { 100, 200, 100, 50 }, 50 },
    };
    for (const Case &c : cases) {
        Moves moves;
        for (size_t i = 1; i < c.pointer.size (); i++)
            moves.emplace_back (c.pointer[i], static_cast<int> (i) * 10);
        EXPECT_DOUBLE_EQ (dragged (0, 1000, c.overshoot_max, c.start, c.pointer[0], moves).position (), c.expected)
            << c.label;
    }
}

TEST (KineticScroller, ReleaseCases)
{
    struct Case { const char *label; Moves moves; int release_ms; double expected_velocity; };
    const Case cases[] = {
        { "a finger that rested before lifting throws nothing", { { 400, 20 }, { 300, 40 } }, 300, 0.0 },
        { "a press without motion throws nothing", {}, 30, 0.0 },
        { "very slow motion is no flick", { { 499, 100 }, { 498, 200 } }, 200, 0.0 },
        { "a flick downwards scrolls on", { { 450, 25 }, { 400, 50 } }, 50, 2000.0 },
        { "a flick upwards scrolls back", { { 550, 20 }, { 600, 40 } }, 40, -2500.0 },
        { "a violent flick is capped", { { 0, 5 }, { -1000, 10 } }, 10, KineticScroller::kMaxVelocity },
    };
    for (const Case &c : cases) {
        KineticScroller s = dragged (0, 100000, 0, 50000, 500, c.moves);
        s.release (ms (c.release_ms));
        EXPECT_DOUBLE_EQ (s.velocity (), c.expected_velocity) << c.label;
    }
}

TEST (KineticScroller, PastTheEndItComesToRestAtTheEnd)
{
    struct Case { const char *label; double start, overshoot_max; Moves moves; int release_ms; double end; bool overshoots; };
    const Case cases[] = {
        { "pulled down past the top springs back", 0, 100, { { 660, 50 } }, 400, 0, true },
        { "pulled up past the bottom springs back", 1000, 100, { { 380, 50 } }, 400, 1000, true },
        { "a flick past the end overshoots and springs back", 900, 120, { { 400, 20 }, { 300, 40 } }, 40, 1000, true },
        { "a flick without room to overshoot stops dead", 900, 0, { { 400, 20 }, { 300, 40 } }, 40, 1000, false },
    };
    for (const Case &c : cases) {
        KineticScroller s = dragged (0, 1000, c.overshoot_max, c.start, 500, c.moves);
        s.release (ms (c.release_ms));
        double furthest = 0; /* how far past the end, at most */
        double previous = 0;
        bool springing = false;
        do {
            const double past = std::fabs (s.overshoot ());
            EXPECT_LE (past, c.overshoot_max) << c.label;
            EXPECT_GE (s.overshoot () * (c.end > 0 ? 1 : -1), 0.0) << c.label << ": never swings past the end";
            if (springing) {
                EXPECT_LE (past, previous) << c.label << ": the spring only pulls back";
            }
            springing |= past < previous;
            furthest = std::max (furthest, past);
            previous = past;
        } while (s.step (1.0 / 60.0));
        EXPECT_EQ (furthest > 0, c.overshoots) << c.label;
        EXPECT_DOUBLE_EQ (s.position (), c.end) << c.label;
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
     * integration of v' = ln(f) v in 0.1 ms steps, for a spread of speeds,
     * both directions and frame rates from a slow machine's to a fast one's:
     * the glide slows down steadily and ends at the same place at any rate. */
    const double k = std::log (KineticScroller::kFriction);
    for (double speed : { 150.0, 400.0, 1000.0, 2500.0, 5999.0, -300.0, -4200.0 }) {
        double reference = 0.0, v = speed;
        const double h = 0.0001;
        while (std::fabs (v) >= KineticScroller::kMinVelocity) {
            reference += v * h;
            v += k * v * h;
        }
        for (double rate : { 30.0, 60.0, 144.0 }) {
            KineticScroller s = dragged (-1e7, 1e7, 0, 0, 0, { { -speed * 0.05, 50 } }); /* 50 ms at the speed */
            s.release (ms (50));
            ASSERT_NEAR (s.velocity (), speed, 1e-6);
            const double start = s.position ();
            double previous_speed = std::fabs (speed);
            int frames = 0;
            while (s.step (1.0 / rate) && frames++ < 2000) {
                EXPECT_LT (std::fabs (s.velocity ()), previous_speed) << "speed " << speed << " at " << rate << " Hz";
                previous_speed = std::fabs (s.velocity ());
            }
            EXPECT_FALSE (s.moving ());
            EXPECT_NEAR (s.position () - start, reference, std::fabs (reference) * 0.01 + 3.0)
                << "speed " << speed << " at " << rate << " Hz";
        }
    }
}
