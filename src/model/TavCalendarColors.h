/* libcalendarui - the colour palette of the calendar colours (internal)
 *
 * One table for everything that paints a calendar colour: the views, and the
 * build tool that draws the colour marker icons. Indexed by TavCalendarColor.
 */
#ifndef TAV_CALENDAR_COLORS_H
#define TAV_CALENDAR_COLORS_H

namespace tav {

struct CalendarRgb {
    const char *nick;   /* the enumeration nick, also the icon file word */
    unsigned char r, g, b;
};

inline constexpr CalendarRgb kCalendarPalette[10] = {
    { "darkblue", 0x1f, 0x4e, 0x9c },
    { "darkgreen", 0x2e, 0x7d, 0x32 },
    { "darkred", 0xa3, 0x1f, 0x2b },
    { "orange", 0xf2, 0x7b, 0x13 },
    { "violet", 0x7e, 0x3f, 0xb0 },
    { "yellow", 0xe8, 0xb9, 0x0c },
    { "white", 0xe6, 0xe8, 0xeb },
    { "blue", 0x1e, 0x88, 0xe5 },
    { "red", 0xe5, 0x39, 0x35 },
    { "green", 0x43, 0xa0, 0x47 },
};

/* The colour used for a value outside the enumeration. */
inline constexpr int kDefaultCalendarColor = 8; /* red */

inline const CalendarRgb &calendar_rgb (int color)
{
    return kCalendarPalette[(color >= 0 && color < 10) ? color : kDefaultCalendarColor];
}

} // namespace tav

#endif /* TAV_CALENDAR_COLORS_H */
