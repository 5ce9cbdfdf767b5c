/* Touch platform layer - kinetic panning along one axis (internal)
 *
 * The arithmetic behind KivoPannableArea, kept free of widgets so it can be
 * tested without a display. Positions are scroll offsets (the value of an
 * adjustment); the finger moves the content, so dragging the pointer down
 * lowers the position. Past either end the content follows the finger at
 * half speed up to the overshoot limit and springs back when released. A
 * release while the finger moves starts a flick that decelerates smoothly.
 */
#ifndef KIVO_KINETIC_SCROLLER_H
#define KIVO_KINETIC_SCROLLER_H

#include <glib.h>

#include <deque>

namespace kivo {

class KineticScroller {
public:
    /* The reachable range of positions [lower, upper] (upper is the
     * adjustment's upper minus its page size) and how far past either end
     * the content may be pulled, in pixels. */
    void set_limits (double lower, double upper, double overshoot_max);
    /* Moves to @position at once (clamped), stopping any motion. */
    void jump_to (double position);

    void press (double pointer, gint64 time_us);
    void drag (double pointer, gint64 time_us);
    void release (gint64 time_us);
    /* Stops a flick or spring-back where it is (a tap on moving content). */
    void stop ();

    /* Advances a flick or a spring-back by @dt seconds; returns whether the
     * content is still moving. */
    bool step (double dt);

    /* The position including overshoot, and the part of it that lies past
     * either end (negative above the lower end, positive below the upper). */
    double position () const { return m_position; }
    double overshoot () const;
    double clamped_position () const;
    double velocity () const { return m_velocity; }
    bool dragging () const { return m_dragging; }
    bool moving () const;

    /* Friction: the speed falls by this factor per second. */
    static constexpr double kFriction = 0.06;
    /* Flicks faster than this are capped (pixels per second). */
    static constexpr double kMaxVelocity = 6000.0;
    /* Below this speed a flick ends (pixels per second). */
    static constexpr double kMinVelocity = 20.0;
    /* The spring that pulls overshot content back (per second). */
    static constexpr double kSpringRate = 14.0;
    /* Only the motion of the last moments before release sets the speed. */
    static constexpr gint64 kVelocityWindowUs = 100000;

private:
    double limit_overshoot (double raw) const;

    double m_lower = 0.0;
    double m_upper = 0.0;
    double m_overshoot_max = 0.0;
    double m_position = 0.0;
    double m_velocity = 0.0;
    bool m_dragging = false;
    double m_press_pointer = 0.0;
    double m_press_position = 0.0;
    struct Sample {
        double pointer;
        gint64 time_us;
    };
    std::deque<Sample> m_samples;
};

} // namespace kivo

#endif /* KIVO_KINETIC_SCROLLER_H */
