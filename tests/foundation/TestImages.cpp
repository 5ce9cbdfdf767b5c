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

/* Writes a PNG of @width x @height whose left half is red and right half
 * blue (no alpha channel). */
void write_split_png (const std::string &path, int width, int height)
{
    auto image = tav::adoptGRef (gdk_pixbuf_new (GDK_COLORSPACE_RGB, FALSE, 8, width, height));
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            guchar *p = gdk_pixbuf_get_pixels (image.get ()) + y * gdk_pixbuf_get_rowstride (image.get ()) + x * 3;
            bool left = x < width / 2;
            p[0] = left ? 255 : 0;
            p[1] = 0;
            p[2] = left ? 0 : 255;
        }
    ASSERT_TRUE (gdk_pixbuf_save (image.get (), path.c_str (), "png", nullptr, NULL));
}

void write_solid_png (const std::string &path, int width, int height, guint32 rgba)
{
    auto image = tav::adoptGRef (gdk_pixbuf_new (GDK_COLORSPACE_RGB, TRUE, 8, width, height));
    gdk_pixbuf_fill (image.get (), rgba);
    ASSERT_TRUE (gdk_pixbuf_save (image.get (), path.c_str (), "png", nullptr, NULL));
}

} // namespace

TEST (CreatePixbuf, CoversTheBoxAndCropsTheTopLeft)
{
    TempDir dir;
    std::string path = dir.file ("wide.png");
    write_split_png (path, 100, 50);

    /* 100x50 into 40x40: loaded at trunc(2 + 40 * 2) = 82 by 40, the left
     * 40 columns kept. Those are all from the red half. */
    auto result = tav::adoptGRef (tav_create_pixbuf (path.c_str (), 40, 40));
    ASSERT_TRUE (result);
    EXPECT_EQ (gdk_pixbuf_get_width (result.get ()), 40);
    EXPECT_EQ (gdk_pixbuf_get_height (result.get ()), 40);
    EXPECT_TRUE (gdk_pixbuf_get_has_alpha (result.get ()));
    EXPECT_EQ (pixel (result.get (), 0, 0), (Rgba { 255, 0, 0, 255 }));
    EXPECT_EQ (pixel (result.get (), 39, 39), (Rgba { 255, 0, 0, 255 }));

    /* Limited by the height: 100x50 into 60x20 scales to 40x20, so the file
     * is loaded 60 wide and trunc(60 / 2 + 2) = 32 high, covering the box. */
    auto flat = tav::adoptGRef (tav_create_pixbuf (path.c_str (), 60, 20));
    ASSERT_TRUE (flat);
    EXPECT_EQ (gdk_pixbuf_get_width (flat.get ()), 60);
    EXPECT_EQ (gdk_pixbuf_get_height (flat.get ()), 20);
    EXPECT_EQ (pixel (flat.get (), 5, 19), (Rgba { 255, 0, 0, 255 }));
    EXPECT_EQ (pixel (flat.get (), 55, 0), (Rgba { 0, 0, 255, 255 }));
}

TEST (CreatePixbuf, ExactSizeIsLoadedUnchanged)
{
    TempDir dir;
    std::string path = dir.file ("exact.png");
    write_split_png (path, 30, 10);
    auto result = tav::adoptGRef (tav_create_pixbuf (path.c_str (), 30, 10));
    ASSERT_TRUE (result);
    EXPECT_EQ (pixel (result.get (), 14, 5), (Rgba { 255, 0, 0, 255 }));
    EXPECT_EQ (pixel (result.get (), 15, 5), (Rgba { 0, 0, 255, 255 }));
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

TEST (CreatePixbuf, AtScaleIgnoresTheAspect)
{
    TempDir dir;
    std::string path = dir.file ("wide.png");
    write_split_png (path, 100, 50);
    auto result = tav::adoptGRef (tav_create_pixbuf_at_scale (path.c_str (), 20, 20));
    ASSERT_TRUE (result);
    EXPECT_EQ (gdk_pixbuf_get_width (result.get ()), 20);
    EXPECT_EQ (gdk_pixbuf_get_height (result.get ()), 20);
    EXPECT_EQ (pixel (result.get (), 2, 10).r, 255);
    EXPECT_EQ (pixel (result.get (), 17, 10).b, 255);
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
    write_solid_png (root + "48x48/kivo/calendar_colors_green.png", 48, 48, 0x110000ff);
    write_solid_png (root + "64x64/kivo/calendar_colors_green.png", 64, 64, 0x220000ff);
    write_solid_png (root + "scalable/kivo/calendar_colors_allday_green.png", 102, 48, 0x330000ff);
    write_solid_png (root + "48x48/kivo/calendar_colors_red.png", 48, 48, 0x440000ff);

    const char *saved = g_getenv ("TAV_CALENDAR_ICON_DIR");
    std::string saved_value = saved ? saved : "";
    g_setenv ("TAV_CALENDAR_ICON_DIR", root.c_str (), TRUE);

    struct Row {
        TavCalendarColor color;
        int width, height, marker;
    } rows[] = {
        { TavCalendarColorGreen, 40, 40, 0x11 },
        { TavCalendarColorGreen, 48, 48, 0x11 },
        { TavCalendarColorGreen, 102, 48, 0x33 },
        { TavCalendarColorGreen, 102, 40, 0x22 },
        { TavCalendarColorGreen, 64, 64, 0x22 },
        { TavCalendarColorGreen, 49, 10, 0x22 },
        { (TavCalendarColor) 42, 16, 16, 0x44 }, /* out of range: red */
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
