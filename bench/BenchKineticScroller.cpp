/* How much a flick costs per frame: the pannable area's scroller integrates
 * the decaying speed exactly, once per frame. The baseline is what a
 * frame-rate independent glide costs without the closed form: integrating
 * the friction in 1 ms sub-steps. Both glides must end at the same place
 * (within a pixel); the ratio is baseline time / our time. */

#include "KivoKineticScroller.h"

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

using kivo::KineticScroller;

namespace {

/* Euler integration of v' = ln(f) v with 1 ms sub-steps, stopping like the
 * scroller when the speed falls under the threshold. */
double baseline_glide (double position, double velocity, double frame)
{
    const double k = std::log (KineticScroller::kFriction);
    const int substeps = std::max (1, static_cast<int> (std::lround (frame / 0.001)));
    const double h = frame / substeps;
    while (std::fabs (velocity) >= KineticScroller::kMinVelocity) {
        for (int i = 0; i < substeps; i++) {
            position += velocity * h;
            velocity += k * velocity * h;
        }
    }
    return position;
}

double scroller_glide (double velocity_px, double frame)
{
    KineticScroller s;
    s.set_limits (0, 1e9, 0);
    s.jump_to (1e6);
    /* A release at velocity_px: 100 ms of motion at that speed. */
    const double distance = velocity_px * 0.1;
    s.press (1000, 0);
    s.drag (1000 - distance / 2, 50000);
    s.drag (1000 - distance, 100000);
    s.release (100000);
    while (s.step (frame)) {
    }
    return s.position () - 1e6 - distance;
}

template <typename F>
double seconds (F &&f)
{
    const auto start = std::chrono::steady_clock::now ();
    f ();
    return std::chrono::duration<double> (std::chrono::steady_clock::now () - start).count ();
}

} // namespace

int main ()
{
    const double frame = 1.0 / 60.0;
    const int flicks = 20000;
    double ours_sum = 0, base_sum = 0, worst = 0;

    for (int i = 0; i < 50; i++) { /* agreement on a spread of speeds */
        const double v = 100.0 + i * 115.0;
        const double ours = scroller_glide (v, frame);
        const double base = baseline_glide (0, v, frame);
        worst = std::max (worst, std::fabs (ours - base) / std::max (1.0, base));
    }
    const double t_ours = seconds ([&] {
        for (int i = 0; i < flicks; i++)
            ours_sum += scroller_glide (500.0 + (i % 50) * 100.0, frame);
    });
    const double t_base = seconds ([&] {
        for (int i = 0; i < flicks; i++)
            base_sum += baseline_glide (0, 500.0 + (i % 50) * 100.0, frame);
    });

    /* Growth check: ten times the flicks must cost about ten times. */
    const double t_ours_10 = seconds ([&] {
        for (int i = 0; i < flicks * 10; i++)
            ours_sum += scroller_glide (500.0 + (i % 50) * 100.0, frame);
    });

    std::printf ("kinetic glide, %d flicks at 60 fps\n", flicks);
    std::printf ("  closed form : %.3f ms (%.2f us per flick)\n", t_ours * 1e3, t_ours * 1e6 / flicks);
    std::printf ("  1 ms Euler  : %.3f ms (%.2f us per flick)\n", t_base * 1e3, t_base * 1e6 / flicks);
    std::printf ("  ratio baseline/ours: %.1fx\n", t_base / t_ours);
    std::printf ("  largest relative difference of the glide: %.4f\n", worst);
    std::printf ("  growth time(10N)/time(N): %.1f\n", t_ours_10 / t_ours);
    std::printf ("  (checksums %.0f %.0f)\n", ours_sum, base_sum);
    return worst < 0.01 ? 0 : 1;
}
