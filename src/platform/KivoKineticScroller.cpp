/* Touch platform layer - kinetic panning along one axis */

#include "KivoKineticScroller.h"

#include <algorithm>
#include <cmath>

namespace kivo {

void
KineticScroller::set_limits (double lower, double upper, double overshoot_max)
{
    m_lower = lower;
    m_upper = std::max (lower, upper);
    m_overshoot_max = std::max (0.0, overshoot_max);
    if (!m_dragging && !moving ())
        m_position = clamped_position ();
}

void
KineticScroller::jump_to (double position)
{
    stop ();
    m_position = std::clamp (position, m_lower, m_upper);
}

double
KineticScroller::clamped_position () const
{
    return std::clamp (m_position, m_lower, m_upper);
}

double
KineticScroller::overshoot () const
{
    return m_position - clamped_position ();
}

bool
KineticScroller::moving () const
{
    return !m_dragging && (m_velocity != 0.0 || overshoot () != 0.0);
}

/* Past an end the content follows the finger at half speed, and never
 * further than the overshoot limit. */
double
KineticScroller::limit_overshoot (double raw) const
{
    if (raw < m_lower)
        return m_lower - std::min ((m_lower - raw) / 2.0, m_overshoot_max);
    if (raw > m_upper)
        return m_upper + std::min ((raw - m_upper) / 2.0, m_overshoot_max);
    return raw;
}

void
KineticScroller::press (double pointer, gint64 time_us)
{
    m_dragging = true;
    m_velocity = 0.0;
    m_press_pointer = pointer;
    m_press_position = m_position;
    m_samples.clear ();
    m_samples.push_back ({ pointer, time_us });
}

void
KineticScroller::drag (double pointer, gint64 time_us)
{
    if (!m_dragging)
        return;
    /* An overshoot already on screen when the finger came down counts as
     * its unscaled distance, so the content does not jump. */
    double start = m_press_position;
    if (start < m_lower)
        start = m_lower - (m_lower - start) * 2.0;
    else if (start > m_upper)
        start = m_upper + (start - m_upper) * 2.0;
    m_position = limit_overshoot (start - (pointer - m_press_pointer));
    m_samples.push_back ({ pointer, time_us });
    while (m_samples.size () > 2 && time_us - m_samples.front ().time_us > kVelocityWindowUs)
        m_samples.pop_front ();
}

void
KineticScroller::release (gint64 time_us)
{
    if (!m_dragging)
        return;
    m_dragging = false;
    m_velocity = 0.0;
    /* A finger that rested before lifting throws nothing. */
    if (m_samples.size () >= 2 && time_us - m_samples.back ().time_us <= kVelocityWindowUs) {
        const Sample &first = m_samples.front ();
        const Sample &last = m_samples.back ();
        const double seconds = (last.time_us - first.time_us) / 1e6;
        if (seconds > 0.0) {
            const double speed = -(last.pointer - first.pointer) / seconds;
            m_velocity = std::clamp (speed, -kMaxVelocity, kMaxVelocity);
            if (std::fabs (m_velocity) < kMinVelocity)
                m_velocity = 0.0;
        }
    }
    m_samples.clear ();
}

void
KineticScroller::stop ()
{
    m_dragging = false;
    m_velocity = 0.0;
    m_samples.clear ();
}

bool
KineticScroller::step (double dt)
{
    if (m_dragging || dt <= 0.0)
        return m_dragging;

    if (m_velocity != 0.0) {
        /* v(t) = v0 * f^t, so the distance covered in dt is the integral. */
        const double k = std::log (kFriction);
        const double decay = std::pow (kFriction, dt);
        m_position += m_velocity * (decay - 1.0) / k;
        m_velocity *= decay;
        if (std::fabs (m_velocity) < kMinVelocity)
            m_velocity = 0.0;

        const double over = overshoot ();
        if (over != 0.0) {
            if (m_overshoot_max <= 0.0) {
                /* No room past the end: stop at it. */
                m_position = clamped_position ();
                m_velocity = 0.0;
            } else if (std::fabs (over) >= m_overshoot_max) {
                m_position = clamped_position () + std::copysign (m_overshoot_max, over);
                m_velocity = 0.0;
            } else {
                /* Running into the end brakes hard. */
                m_velocity *= std::pow (0.001, dt);
            }
        }
    }

    const double over = overshoot ();
    if (m_velocity == 0.0 && over != 0.0) {
        const double remaining = over * std::exp (-kSpringRate * dt);
        m_position = clamped_position () + (std::fabs (remaining) < 0.5 ? 0.0 : remaining);
    }
    return moving ();
}

} // namespace kivo
