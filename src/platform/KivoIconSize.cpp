/* Touch platform layer - named icon sizes */

#include "KivoIconSize.h"

namespace {

struct NamedSize {
    const char *name;
    int pixels;
};

/* Sized for a finger on a small high-density screen. */
constexpr NamedSize kSizes[] = {
    { "kivo-xsmall", 16 },
    { "kivo-small", 24 },
    { "kivo-stylus", 32 },
    { "kivo-finger", 48 },
    { "kivo-thumb", 64 },
    { "kivo-large", 96 },
};

} // namespace

void
kivo_icon_sizes_register (void)
{
    static gsize registered = 0;
    if (g_once_init_enter (&registered)) {
        for (const auto &size : kSizes)
            if (gtk_icon_size_from_name (size.name) == GTK_ICON_SIZE_INVALID)
                gtk_icon_size_register (size.name, size.pixels, size.pixels);
        g_once_init_leave (&registered, 1);
    }
}

GtkIconSize
kivo_icon_size_from_name (const char *name)
{
    kivo_icon_sizes_register ();
    return gtk_icon_size_from_name (name);
}

int
kivo_icon_size_get_pixels (const char *name)
{
    GtkIconSize size = kivo_icon_size_from_name (name);
    int width = 0, height = 0;
    if (size == GTK_ICON_SIZE_INVALID || !gtk_icon_size_lookup (size, &width, &height))
        return 0;
    return width;
}
