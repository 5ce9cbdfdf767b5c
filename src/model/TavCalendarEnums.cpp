/* libcalendarui - text forms and icons of the shared enumerations */

#include "TavCalendarEnums.h"

#include "KivoIconSize.h"
#include "TavCalendarColors.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavPaths.h"

namespace {

constexpr const char *kColorNames[10] = {
    "DarkBlue", "DarkGreen", "DarkRed", "Orange", "Violet",
    "Yellow", "White", "Blue", "Red", "Green",
};

/* The lookup order of tav_calendar_color_from_string. */
constexpr struct {
    const char *word;
    TavCalendarColor color;
} kColorWords[] = {
    { "red", TavCalendarColorRed },
    { "green", TavCalendarColorGreen },
    { "blue", TavCalendarColorBlue },
    { "white", TavCalendarColorWhite },
    { "yellow", TavCalendarColorYellow },
    { "darkred", TavCalendarColorDarkRed },
    { "darkblue", TavCalendarColorDarkBlue },
    { "darkgreen", TavCalendarColorDarkGreen },
    { "orange", TavCalendarColorOrange },
    { "violet", TavCalendarColorViolet },
};

constexpr const char *kAlarmIds[] = {
    "cal_va_none", "cal_va_0_min", "cal_va_5_min", "cal_va_15_min",
    "cal_va_30_min", "cal_va_1_hour", "cal_va_3_hours", "cal_va_day_before",
};

constexpr const char *kRepeatIds[] = {
    "cal_va_never", "cal_va_every_day", "cal_va_every_workday", "cal_va_every_week",
    "cal_va_every_month", "cal_va_every_year", "cal_fi_repeat_complex",
};

/* Index of the first label (translated ID) equal to @text ignoring ASCII
 * case, or 0 when none is. */
template <size_t N>
int code_from_label (const char *const (&ids)[N], const char *text)
{
    if (!text)
        return 0;
    for (size_t i = 0; i < N; i++)
        if (g_ascii_strcasecmp (text, TAV_CAL (ids[i])) == 0)
            return (int) i;
    return 0;
}

} // namespace

const char *
tav_calendar_color_to_string (TavCalendarColor color)
{
    if ((int) color < 0 || (int) color > 9)
        return NULL;
    return kColorNames[color];
}

TavCalendarColor
tav_calendar_color_from_string (const char *color)
{
    if (color)
        for (const auto &entry : kColorWords)
            if (g_ascii_strcasecmp (color, entry.word) == 0)
                return entry.color;
    return TavCalendarColorRed;
}

GdkPixbuf *
tav_calendar_color_create_pixbuf (TavCalendarColor color, int width, int height)
{
    const int finger = kivo_icon_size_get_pixels ("kivo-finger");
    const char *nick = tav::calendar_rgb (color).nick;

    tav::GCharPtr directory, file;
    if (finger >= width && finger >= height) {
        directory.reset (g_strdup_printf ("%s%s", tav_icon_dir (), "48x48/kivo/"));
        file.reset (g_strconcat ("calendar_colors_", nick, ".png", NULL));
    } else if (width == 102 && finger == height) {
        /* The all-day bar of the views. */
        directory.reset (g_strdup_printf ("%s%s", tav_icon_dir (), "scalable/kivo/"));
        file.reset (g_strconcat ("calendar_colors_allday_", nick, ".png", NULL));
    } else {
        directory.reset (g_strdup_printf ("%s%s", tav_icon_dir (), "64x64/kivo/"));
        file.reset (g_strconcat ("calendar_colors_", nick, ".png", NULL));
    }
    tav::GCharPtr path (g_build_filename (directory.get (), file.get (), NULL));
    return tav_create_pixbuf (path.get (), width, height);
}

const char *
tav_calendar_alarm_to_string (TavCalendarAlarmCode code)
{
    if ((int) code < 0 || (size_t) code >= G_N_ELEMENTS (kAlarmIds))
        return NULL;
    return TAV_CAL (kAlarmIds[code]);
}

const char *
tav_calendar_repeat_to_string (TavCalendarRepeatCode code)
{
    if ((int) code < 0 || (size_t) code >= G_N_ELEMENTS (kRepeatIds))
        return NULL;
    return TAV_CAL (kRepeatIds[code]);
}

TavCalendarAlarmCode
tav_calendar_alarm_code_from_string (const char *text)
{
    return (TavCalendarAlarmCode) code_from_label (kAlarmIds, text);
}

TavCalendarRepeatCode
tav_calendar_repeat_code_from_string (const char *text)
{
    return (TavCalendarRepeatCode) code_from_label (kRepeatIds, text);
}
