/* libcalendarui - theme and icon locations */

#include "TavPaths.h"

namespace {

const char *env_or (const char *variable, const char *fallback)
{
    const char *value = g_getenv (variable);
    return (value && *value) ? value : fallback;
}

} // namespace

const char *
tav_theme_dir (void)
{
    return env_or ("TAV_CALENDAR_THEME_DIR", TAV_THEME_DIR);
}

const char *
tav_icon_dir (void)
{
    return env_or ("TAV_CALENDAR_ICON_DIR", TAV_ICON_DIR);
}
