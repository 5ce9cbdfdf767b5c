/* tav-calendar's applet, run as a user runs it: the two screenshots and
 * --applet without a display. */
#include "TestSupport.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/wait.h>

#include <string>
#include <vector>

namespace {

/* Exit status and standard output of tav-calendar @args, with @env. */
int run (std::vector<std::string> args, std::string *out, char **env = nullptr)
{
    args.insert (args.begin (), TAV_CALENDAR_BIN);
    std::vector<char *> argv;
    for (std::string &a : args)
        argv.push_back (a.data ());
    argv.push_back (nullptr);
    gchar *text = nullptr;
    int wait = 0;
    if (!g_spawn_sync (nullptr, argv.data (), env, G_SPAWN_STDERR_TO_DEV_NULL, nullptr, nullptr, &text, nullptr, &wait,
                       nullptr))
        return -1;
    *out = text ? text : "";
    g_free (text);
    return WIFEXITED (wait) ? WEXITSTATUS (wait) : -1;
}

/* Pixels of light text (all channels above 200) in @file. */
int light_pixels (const std::string &file, int *width, int *height)
{
    GdkPixbuf *p = gdk_pixbuf_new_from_file (file.c_str (), nullptr);
    if (!p)
        return -1;
    *width = gdk_pixbuf_get_width (p);
    *height = gdk_pixbuf_get_height (p);
    int light = 0;
    const int n = gdk_pixbuf_get_n_channels (p), stride = gdk_pixbuf_get_rowstride (p);
    for (int y = 0; y < *height; ++y)
        for (int x = 0; x < *width; ++x) {
            const guchar *c = gdk_pixbuf_get_pixels (p) + y * stride + x * n;
            light += c[0] > 200 && c[1] > 200 && c[2] > 200;
        }
    g_object_unref (p);
    return light;
}

} // namespace

TEST (AppletHost, ScreenshotRendersTheAppletWithRowsAndEmpty)
{
    REQUIRE_DISPLAY ();
    tav::test::TempDir dir;
    std::string out;
    ASSERT_EQ (run ({ "--demo", "--screenshot", dir.path () }, &out), 0);
    EXPECT_NE (out.find (dir.file ("applet.png")), std::string::npos) << out;
    EXPECT_NE (out.find (dir.file ("applet-empty.png")), std::string::npos) << out;
    int w1, h1, w2, h2;
    const int full = light_pixels (dir.file ("applet.png"), &w1, &h1);
    const int empty = light_pixels (dir.file ("applet-empty.png"), &w2, &h2);
    EXPECT_EQ (w1, w2);
    EXPECT_EQ (h1, h2);
    /* The date line and "No coming events" against five rows of text. */
    EXPECT_GT (empty, 100);
    EXPECT_GT (full, 3 * empty) << full << " against " << empty;
}

TEST (AppletHost, AppletWithoutADisplay)
{
    gchar **env = g_environ_unsetenv (g_get_environ (), "DISPLAY");
    std::string out;
    EXPECT_EQ (run ({ "--demo", "--applet" }, &out, env), 3);
    g_strfreev (env);
}
