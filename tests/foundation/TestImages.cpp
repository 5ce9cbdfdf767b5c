/* Image loading with cover scaling, and the colour marker icons. */

#include "TestSupport.h"

#include <fstream>

#include "TavCalendarEnums.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavCalendarColors.h"

using tav::GRefPtr;
using tav::test::LogCapture;
using tav::test::TempDir;

namespace {

struct Rgba {
    int r, g, b, a;
    bool operator== (const Rgba &o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
};

Rgba pixel (GdkPixbuf *pixbuf, int x, int y)
{
    const guchar *p = gdk_pixbuf_get_pixels (pixbuf) + y * gdk_pixbuf_get_rowstride (pixbuf) +
                      x * gdk_pixbuf_get_n_channels (pixbuf);
    return { p[0], p[1], p[2], gdk_pixbuf_get_has_alpha (pixbuf) ? p[3] : 255 };
}

/* Writes a PNG of @width x @height (no alpha channel) whose left half has
 * colour @left and right half @right (0xRRGGBBAA). */
void write_png (const std::string &path, int width, int height, guint32 left, guint32 right)
{
    auto image = tav::adoptGRef (gdk_pixbuf_new (GDK_COLORSPACE_RGB, FALSE, 8, width, height));
    gdk_pixbuf_fill (image.get (), right);
    gdk_pixbuf_fill (tav::adoptGRef (gdk_pixbuf_new_subpixbuf (image.get (), 0, 0, width / 2, height)).get (), left);
    ASSERT_TRUE (gdk_pixbuf_save (image.get (), path.c_str (), "png", nullptr, NULL));
}

} // namespace

/* The source is red on its left half and blue on its right. Cover scaling
 * loads it large enough to cover the box and keeps the top-left part (with
 * alpha); at scale it is stretched to the box as it is. */
TEST (CreatePixbuf, CoversTheBoxOrStretchesToIt)
{
    const Rgba red = { 255, 0, 0, 255 }, blue = { 0, 0, 255, 255 };
    struct Probe { int x, y; Rgba colour; };
    struct { const char *label; int file_width, file_height; bool at_scale; int width, height; std::vector<Probe> probes; } rows[] = {
        /* Loaded at trunc(2 + 40 * 2) = 82 by 40: the left 40 columns are all red. */
        { "wide into a square", 100, 50, false, 40, 40, { { 0, 0, red }, { 39, 39, red } } },
        /* Limited by the height: loaded 60 wide and trunc(60 / 2 + 2) = 32 high. */
        { "wide into a flat box", 100, 50, false, 60, 20, { { 5, 19, red }, { 55, 0, blue } } },
        { "exact size", 30, 10, false, 30, 10, { { 14, 5, red }, { 15, 5, blue } } },
        { "at scale", 100, 50, true, 20, 20, { { 2, 10, red }, { 17, 10, blue } } },
    };
    TempDir dir;
    for (const auto &row : rows) {
        SCOPED_TRACE (row.label);
        std::string path = dir.file (std::to_string (row.file_width) + "x" + std::to_string (row.file_height) + ".png");
        write_png (path, row.file_width, row.file_height, 0xff0000ff, 0x0000ffff);
        auto result = tav::adoptGRef ((row.at_scale ? tav_create_pixbuf_at_scale : tav_create_pixbuf) (path.c_str (), row.width, row.height));
        ASSERT_TRUE (result);
        EXPECT_EQ (gdk_pixbuf_get_width (result.get ()), row.width);
        EXPECT_EQ (gdk_pixbuf_get_height (result.get ()), row.height);
        EXPECT_EQ (gdk_pixbuf_get_has_alpha (result.get ()), !row.at_scale);
        for (const Probe &probe : row.probes)
            EXPECT_EQ (pixel (result.get (), probe.x, probe.y), probe.colour) << probe.x << "," << probe.y;
    }
}

TEST (CreatePixbuf, UnreadableFilesGiveNullAndALogLine)
{
    TempDir dir;
    std::string junk = dir.file ("junk.png");
    std::ofstream (junk) << "this is not an image";
    for (const std::string &path : { dir.file ("missing.png"), junk }) {
        LogCapture capture;
        EXPECT_EQ (tav_create_pixbuf (path.c_str (), 10, 10), nullptr);
        EXPECT_TRUE (capture.has_warning ("Unable to load '" + path + "'")) << capture.dump ();
        EXPECT_EQ (tav_create_pixbuf_at_scale (path.c_str (), 10, 10), nullptr);
    }
}

TEST (EnsureAlpha, WhiteBecomesTransparent)
{
    GdkPixbuf *opaque = gdk_pixbuf_new (GDK_COLORSPACE_RGB, FALSE, 8, 2, 1);
    guchar *p = gdk_pixbuf_get_pixels (opaque);
    p[0] = p[1] = p[2] = 255;        /* white */
    p[3] = 10, p[4] = 20, p[5] = 30; /* a colour */
    auto result = tav::adoptGRef (tav_pixbuf_ensure_has_alpha (opaque)); /* consumes opaque */
    ASSERT_TRUE (result);
    EXPECT_EQ (pixel (result.get (), 0, 0).a, 0);
    EXPECT_EQ (pixel (result.get (), 1, 0), (Rgba { 10, 20, 30, 255 }));

    /* A pixbuf with alpha is returned as it is. */
    GdkPixbuf *with_alpha = gdk_pixbuf_new (GDK_COLORSPACE_RGB, TRUE, 8, 1, 1);
    EXPECT_EQ (tav_pixbuf_ensure_has_alpha (with_alpha), with_alpha);
    g_object_unref (with_alpha);
}

/* The colour icon is chosen by the requested size: the 48x48 marker when it
 * fits the finger size, the all-day strip for 102 by finger, else 64x64.
 * Each candidate is filled with its own colour so the load shows which. */
TEST (ColorIcons, FileChosenBySize)
{
    REQUIRE_DISPLAY ();
    TempDir dir;
    const std::string root = dir.path () + "/";
    for (const char *sub : { "48x48/kivo", "64x64/kivo", "scalable/kivo" })
        g_mkdir_with_parents ((root + sub).c_str (), 0755);
    struct { const char *file; int width, height; guint32 colour; } files[] = {
        { "48x48/kivo/calendar_colors_green.png", 48, 48, 0x110000ff }, { "64x64/kivo/calendar_colors_green.png", 64, 64, 0x220000ff },
        { "scalable/kivo/calendar_colors_allday_green.png", 102, 48, 0x330000ff }, { "48x48/kivo/calendar_colors_red.png", 48, 48, 0x440000ff },
    };
    for (const auto &f : files)
        write_png (root + f.file, f.width, f.height, f.colour, f.colour);
    const char *saved = g_getenv ("TAV_CALENDAR_ICON_DIR");
    std::string saved_value = saved ? saved : "";
    g_setenv ("TAV_CALENDAR_ICON_DIR", root.c_str (), TRUE);

    struct Row { TavCalendarColor color; int width, height, marker; } rows[] = {
        { TavCalendarColorGreen, 40, 40, 0x11 }, { TavCalendarColorGreen, 48, 48, 0x11 }, { TavCalendarColorGreen, 102, 48, 0x33 },
        { TavCalendarColorGreen, 102, 40, 0x22 }, { TavCalendarColorGreen, 64, 64, 0x22 }, { TavCalendarColorGreen, 49, 10, 0x22 },
        { (TavCalendarColor) 12, 16, 16, 0x44 }, /* past the colours: red */
    };
    for (const auto &row : rows) {
        auto icon = tav::adoptGRef (tav_calendar_color_create_pixbuf (row.color, row.width, row.height));
        ASSERT_TRUE (icon) << row.width << "x" << row.height;
        EXPECT_EQ (gdk_pixbuf_get_width (icon.get ()), row.width);
        EXPECT_EQ (gdk_pixbuf_get_height (icon.get ()), row.height);
        EXPECT_EQ (pixel (icon.get (), 0, 0).r, row.marker) << row.width << "x" << row.height;
    }

    {
        LogCapture capture;
        EXPECT_EQ (tav_calendar_color_create_pixbuf (TavCalendarColorBlue, 20, 20), nullptr);
        EXPECT_TRUE (capture.has_warning ("Unable to load '" + root + "48x48/kivo/calendar_colors_blue.png'"))
            << capture.dump ();
    }
    if (saved)
        g_setenv ("TAV_CALENDAR_ICON_DIR", saved_value.c_str (), TRUE);
    else
        g_unsetenv ("TAV_CALENDAR_ICON_DIR");
}

/* The icons the build draws exist for every colour and carry its colour. */
TEST (ColorIcons, GeneratedIconsLoad)
{
    REQUIRE_DISPLAY ();
    for (int color = 0; color < 10; color++) {
        for (auto size : { std::pair { 48, 48 }, std::pair { 64, 64 }, std::pair { 102, 48 } }) {
            auto icon = tav::adoptGRef (
                tav_calendar_color_create_pixbuf ((TavCalendarColor) color, size.first, size.second));
            ASSERT_TRUE (icon) << color << " " << size.first;
            Rgba centre = pixel (icon.get (), size.first / 2, size.second / 2);
            const auto &rgb = tav::calendar_rgb (color);
            EXPECT_NEAR (centre.r, rgb.r, 40) << tav_calendar_color_to_string ((TavCalendarColor) color);
            EXPECT_NEAR (centre.g, rgb.g, 40);
            EXPECT_NEAR (centre.b, rgb.b, 40);
        }
    }
}
