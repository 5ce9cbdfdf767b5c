/* The host's settings file, and the dialog driven as a person would. */

#include "HostSettings.h"

#include "KivoButton.h"
#include "KivoStyle.h"
#include "KivoPickerButton.h"
#include "SettingsTestSupport.h"

#include <glib/gstdio.h>

#include <cstring>
#include <string>

using namespace tav::host;
using namespace tav::test;

namespace {

std::string read_file (const std::string &path)
{
    gchar *data = nullptr;
    gsize length = 0;
    if (!g_file_get_contents (path.c_str (), &data, &length, nullptr))
        return "(missing)";
    std::string out (data, length);
    g_free (data);
    return out;
}

void write_file (const std::string &path, const std::string &text)
{
    ASSERT_TRUE (g_file_set_contents (path.c_str (), text.c_str (), static_cast<gssize> (text.size ()), nullptr));
}

/* Renders the host's settings.png with @config as its settings file. */
GdkPixbuf *settings_screenshot (const TempDir &dir, const std::string &name, const std::string &config)
{
    const std::string home = dir.file (name);
    g_mkdir_with_parents ((home + "/tav-calendar").c_str (), 0700);
    write_file (home + "/tav-calendar/settings.ini", config);
    gchar **env = g_environ_setenv (g_get_environ (), "XDG_CONFIG_HOME", home.c_str (), TRUE);
    const std::string shots = home + "/shots";
    const char *argv[] = { TAV_CALENDAR_BIN, "--demo", "--screenshot", shots.c_str (), nullptr };
    int status = -1;
    g_spawn_sync (nullptr, const_cast<char **> (argv), env, GSpawnFlags (G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL),
                  nullptr, nullptr, nullptr, nullptr, &status, nullptr);
    g_strfreev (env);
    EXPECT_EQ (status, 0) << name;
    return gdk_pixbuf_new_from_file ((shots + "/settings.png").c_str (), nullptr);
}

/* Rows (of the finger-height rows under the title) whose pixels differ. */
std::vector<int> differing_rows (GdkPixbuf *a, GdkPixbuf *b)
{
    std::vector<int> rows;
    const int stride = gdk_pixbuf_get_rowstride (a), n = gdk_pixbuf_get_n_channels (a);
    for (int y = 0; y < gdk_pixbuf_get_height (a); ++y) {
        const guchar *pa = gdk_pixbuf_get_pixels (a) + y * stride, *pb = gdk_pixbuf_get_pixels (b) + y * stride;
        const int row = (y - 45) / KIVO_FINGER_HEIGHT;
        if (memcmp (pa, pb, gdk_pixbuf_get_width (a) * n) != 0 && (rows.empty () || rows.back () != row))
            rows.push_back (row);
    }
    return rows;
}

} // namespace

TEST (HostSettings, WritesAtomicallyAndReadsBackWhatItWrote)
{
    TempDir dir;
    SettingsFile file (dir.file ("cfg/settings.ini"));
    EXPECT_TRUE (file.load ().empty ()) << "no file yet: the defaults, silently";
    EXPECT_TRUE (file.values == Settings {});
    file.values.week_start = SettingsValueSunday;
    file.values.remove_items = SettingsValueTwoWeeks;
    file.values.hide_done_tasks = SettingsValueYes;
    file.values.default_view = SettingsValueWeekView;
    file.values.alarm_tone = "/media/tones/küche.wav";
    std::string error;
    ASSERT_TRUE (file.save (&error)) << error;
    const std::string text = read_file (file.path ());
    for (const char *line : { "weekstart=sunday\n", "removeitems=twoweeks\n", "hidedonetasks=yes\n",
                              "defaultview=weekview\n", "calendaralarmtone=/media/tones/küche.wav\n" })
        EXPECT_NE (text.find (line), std::string::npos) << line << " in\n" << text;
    SettingsFile again (file.path ());
    EXPECT_TRUE (again.load ().empty ());
    EXPECT_TRUE (again.values == file.values);
    EXPECT_EQ (again.values.first_day_of_week (), 0);
}

TEST (HostSettings, ADamagedFileIsReportedOnceKeptAndReplaced)
{
    struct Case {
        const char *label;
        const char *text;
        int week_start, hide_done;
    };
    const Case cases[] = {
        { "junk", "\x01\x02 this is [not a key file\n=\n", SettingsValueMonday, SettingsValueNo },
        { "a value of another setting", "[calendar]\nweekstart=never\nhidedonetasks=yes\n", SettingsValueMonday,
          SettingsValueYes },
        { "a number for a nick", "[calendar]\nhidedonetasks=1\nweekstart=sunday\n", SettingsValueSunday,
          SettingsValueNo },
        { "invalid UTF-8", "[calendar]\nweekstart=sun\xff" "day\n", SettingsValueMonday, SettingsValueNo },
    };
    for (const Case &c : cases) {
        TempDir dir;
        SettingsFile file (dir.file ("settings.ini"));
        write_file (file.path (), c.text);
        const auto problems = file.load ();
        ASSERT_GE (problems.size (), 2u) << c.label;
        EXPECT_NE (problems.back ().find ("the damaged file is kept as " + file.path () + ".damaged"), std::string::npos)
            << c.label << ": " << problems.back ();
        EXPECT_EQ (file.values.week_start, c.week_start) << c.label;
        EXPECT_EQ (file.values.hide_done_tasks, c.hide_done) << c.label;
        EXPECT_EQ (read_file (file.path () + ".damaged"), c.text) << c.label << ": nothing lost";
        SettingsFile again (file.path ());
        EXPECT_TRUE (again.load ().empty ()) << c.label << ": reported once";
        EXPECT_TRUE (again.values == file.values) << c.label;
    }
}

TEST (HostSettings, AnUnwritableDirectoryIsReportedAndNothingIsLost)
{
    TempDir dir;
    /* A plain file where the directory should be: no user (root included)
     * can create the settings file below it. */
    write_file (dir.file ("cfg"), "not a directory");
    SettingsFile file (dir.file ("cfg/tav-calendar/settings.ini"));
    file.values.week_start = SettingsValueSunday;
    std::string error;
    EXPECT_FALSE (file.save (&error));
    EXPECT_EQ (error.rfind ("cannot save the settings: cannot create " + dir.file ("cfg/tav-calendar"), 0), 0u) << error;
    EXPECT_EQ (file.values.week_start, SettingsValueSunday);
    EXPECT_EQ (read_file (dir.file ("cfg")), "not a directory");
}

TEST (HostSettings, AWeekStartTappedInTheDialogIsInTheFileAfterSave)
{
    REQUIRE_XTEST ();
    TempDir dir;
    SettingsFile file (dir.file ("settings.ini"));
    write_file (file.path (), std::string ("[calendar]\nweekstart=monday\ncalendaralarmtone=") + dir.file ("gone.wav") + "\n");
    ASSERT_TRUE (file.load ().empty ());
    int saved = 0;
    Settings seen;
    LogCapture capture;
    GtkWidget *dialog = open_settings_dialog (file, 2, nullptr, [&] (const Settings &s) {
        ++saved;
        seen = s;
    });
    EXPECT_TRUE (capture.has_warning ("Alarm tone file does not exist!")) << capture.dump ();
    GtkWidget *alive = dialog;
    g_object_add_weak_pointer (G_OBJECT (dialog), reinterpret_cast<gpointer *> (&alive));
    gtk_window_move (GTK_WINDOW (dialog), 0, 0);
    ASSERT_TRUE (wait_mapped (dialog));

    GtkWidget *week = find_widget (dialog, [] (GtkWidget *w) {
        return KIVO_IS_PICKER_BUTTON (w) && g_strcmp0 (kivo_button_get_title (KIVO_BUTTON (w)), "Week starts on") == 0;
    });
    ASSERT_NE (week, nullptr);
    tap_middle (week);
    GtkWidget *picker = nullptr;
    ASSERT_TRUE (run_main_loop_until ([&] { return (picker = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (week))); }, 2000));
    ASSERT_TRUE (wait_mapped (picker));
    tap_selector_row (kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (week)), 1);
    ASSERT_TRUE (run_main_loop_until ([&] { return !kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (week)); }, 2000));
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (week)), "Sunday");
    EXPECT_NE (read_file (file.path ()).find ("weekstart=monday"), std::string::npos) << "nothing written before Save";

    GtkWidget *save = find_widget (dialog, [] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), "Save") == 0;
    });
    ASSERT_NE (save, nullptr);
    tap_middle (save);
    ASSERT_TRUE (run_main_loop_until ([&] { return alive == nullptr; }, 2000)) << "Save closes the dialog";
    EXPECT_EQ (saved, 1);
    EXPECT_EQ (seen.week_start, SettingsValueSunday);
    EXPECT_EQ (seen.alarm_tone, TAV_ALARM_TONE_DEFAULT_PATH) << "the missing tone fell back to the default";
    const std::string text = read_file (file.path ());
    EXPECT_NE (text.find ("weekstart=sunday\n"), std::string::npos) << text;
    EXPECT_NE (text.find (std::string ("calendaralarmtone=") + TAV_ALARM_TONE_DEFAULT_PATH), std::string::npos) << text;
}

TEST (HostSettings, TheScreenshotShowsTheStoredSettings)
{
    REQUIRE_DISPLAY ();
    TempDir dir;
    GdkPixbuf *monday = settings_screenshot (dir, "a", "[calendar]\nweekstart=monday\n");
    GdkPixbuf *sunday = settings_screenshot (dir, "b", "[calendar]\nweekstart=sunday\n");
    ASSERT_TRUE (monday && sunday);
    EXPECT_EQ (gdk_pixbuf_get_width (monday) * 1000 + gdk_pixbuf_get_height (monday), 800480) << "fits the screen";
    EXPECT_EQ (differing_rows (monday, sunday), std::vector<int> { 3 }) << "only the week start row changes";
    g_object_unref (monday);
    g_object_unref (sunday);
}
