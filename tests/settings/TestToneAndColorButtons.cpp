/* The alarm tone and colour picker buttons. */

#include "TavAlarmToneButton.h"
#include "TavColorButton.h"

#include "KivoButton.h"
#include "SettingsTestSupport.h"
#include "TavGPtr.h"
#include "TavTonePreview.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using namespace tav::test;

namespace {

/* Records what the button asks the sound backend for, while it lives. */
struct RecordingPlayer {
    std::vector<std::string> played;
    std::vector<guint32> play_ids, cancelled;
    bool fail = false;
    static inline RecordingPlayer *current = nullptr;
    static constexpr tav::TonePlayer kPlayer = {
        [] (GtkWidget *, guint32 id, const char *file, std::string *error) {
            *error = "no device";
            if (current->fail)
                return false;
            current->played.push_back (file);
            current->play_ids.push_back (id);
            return true;
        },
        [] (GtkWidget *, guint32 id) { current->cancelled.push_back (id); },
    };
    RecordingPlayer () { current = this, tav::set_tone_player_for_testing (&kPlayer); }
    ~RecordingPlayer () { current = nullptr, tav::set_tone_player_for_testing (nullptr); }
};

TavAlarmToneButton *tone (GtkWidget *w) { return TAV_ALARM_TONE_BUTTON (w); }

} // namespace

TEST (AlarmToneButton, OffersEachToneOnceAndRefusesUnreadableFiles)
{
    REQUIRE_DISPLAY ();
    TempDir dir;
    const std::string chime = dir.file ("my_chime.wav");
    write_test_wav (chime);
    GtkWidget *button = GTK_WIDGET (g_object_ref_sink (tav_alarm_tone_button_new ()));
    const struct {
        std::string path;
        bool accepted;
        int added;
    } cases[] = {
        { chime, true, 1 },
        { chime, true, 0 },
        { TAV_ALARM_TONE_DEFAULT_PATH, true, 0 },
        { "/usr/share/sounds/UI-CALENDAR_alarm_default.aac", true, 0 },
        { dir.file ("gone.wav"), false, 0 },
        { dir.path (), false, 0 },
    };
    for (const auto &c : cases) {
        LogCapture capture;
        const int before = tav_alarm_tone_button_get_tone_count (tone (button));
        EXPECT_EQ (tav_alarm_tone_button_add_tone (tone (button), c.path.c_str ()), c.accepted) << c.path;
        EXPECT_EQ (tav_alarm_tone_button_get_tone_count (tone (button)) - before, c.added) << c.path;
        EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Alarm tone " + c.path + " is not a readable file"),
                   c.accepted ? 0 : 1) << c.path << capture.dump ();
    }
    EXPECT_STREQ (tav_alarm_tone_button_get_selected_tone_path (tone (button)), TAV_ALARM_TONE_DEFAULT_PATH)
        << "offering a tone does not choose it";
    EXPECT_TRUE (tav_alarm_tone_button_set_selected_tone (tone (button), chime.c_str ()));
    EXPECT_FALSE (tav_alarm_tone_button_set_selected_tone (tone (button), dir.file ("other.wav").c_str ()));
    EXPECT_STREQ (tav_alarm_tone_button_get_selected_tone_name (tone (button)), "My chime");

    LogCapture capture;
    EXPECT_EQ (tav_alarm_tone_button_get_selected_tone_path (nullptr), nullptr);
    EXPECT_FALSE (tav_alarm_tone_button_add_tone (tone (button), nullptr));
    EXPECT_CRITICAL (capture, "TAV_IS_ALARM_TONE_BUTTON (button)");
    EXPECT_CRITICAL (capture, "path != NULL");
    gtk_widget_destroy (button);
    g_object_unref (button);
}

TEST (AlarmToneButton, ATappedTonePlaysDoneChoosesItAndClosingStopsTheSound)
{
    REQUIRE_XTEST ();
    TempDir dir;
    const std::string chime = dir.file ("chime.wav");
    write_test_wav (chime);
    RecordingPlayer player;
    GtkWidget *button = tav_alarm_tone_button_new ();
    ASSERT_TRUE (tav_alarm_tone_button_add_tone (tone (button), chime.c_str ()));
    const int row = tav_alarm_tone_button_get_tone_count (tone (button)) - 1;
    int changes = 0;
    count_signal (button, "tone-changed", &changes);
    ScopedWindow window { make_test_window (400, 100, button) };

    /* Tap the button, tap the added tone: it plays. Close without Done. */
    tap_middle (button);
    GtkWidget *picker = nullptr;
    ASSERT_TRUE (run_main_loop_until ([&] { return (picker = tav_alarm_tone_button_get_picker (tone (button))); }, 2000));
    ASSERT_TRUE (wait_mapped (picker));
    auto list = [&] {
        return KIVO_TOUCH_SELECTOR (find_widget (picker, [] (GtkWidget *w) { return KIVO_IS_TOUCH_SELECTOR (w); }));
    };
    tap_selector_row (list (), row);
    ASSERT_EQ (player.played.size (), 1u);
    EXPECT_EQ (player.played[0], chime);
    gtk_dialog_response (GTK_DIALOG (picker), GTK_RESPONSE_DELETE_EVENT);
    flush_events ();
    EXPECT_EQ (tav_alarm_tone_button_get_picker (tone (button)), nullptr);
    EXPECT_EQ (player.cancelled, player.play_ids) << "closing the list stops the preview";
    EXPECT_STREQ (tav_alarm_tone_button_get_selected_tone_path (tone (button)), TAV_ALARM_TONE_DEFAULT_PATH);
    EXPECT_EQ (changes, 0);

    /* Again, then Done: the tone is chosen and the sound stops. */
    tap_middle (button);
    ASSERT_TRUE (run_main_loop_until ([&] { return (picker = tav_alarm_tone_button_get_picker (tone (button))); }, 2000));
    ASSERT_TRUE (wait_mapped (picker));
    tap_selector_row (list (), 0);
    tap_selector_row (list (), 0);
    tap_selector_row (list (), row);
    ASSERT_EQ (player.played.size (), 4u) << "a tap on the highlighted tone plays it again";
    EXPECT_NE (player.played[1], chime);
    EXPECT_EQ (player.played[1], player.played[2]);
    EXPECT_EQ (player.played[3], chime);
    EXPECT_EQ (player.cancelled.size (), 3u) << "a new preview stops the one before";
    tap_middle (gtk_dialog_get_widget_for_response (GTK_DIALOG (picker), GTK_RESPONSE_OK));
    ASSERT_TRUE (run_main_loop_until ([&] { return !tav_alarm_tone_button_get_picker (tone (button)); }, 2000));
    EXPECT_EQ (player.cancelled, player.play_ids);
    EXPECT_STREQ (tav_alarm_tone_button_get_selected_tone_path (tone (button)), chime.c_str ());
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Chime");
    EXPECT_EQ (changes, 1);

    /* "Add tone" takes a file from the chooser: offered, highlighted, played.
     * The chooser records the file among GTK's recently used ones. */
    g_mkdir_with_parents (g_get_user_data_dir (), 0700);
    const std::string bell = dir.file ("desk_bell.wav");
    write_test_wav (bell);
    tav_alarm_tone_button_open_picker (tone (button));
    picker = tav_alarm_tone_button_get_picker (tone (button));
    tap_middle (find_widget (picker, [] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), "Add tone") == 0;
    }));
    GtkWidget *chooser = nullptr;
    ASSERT_TRUE (run_main_loop_until ([&] {
        GList *windows = gtk_window_list_toplevels ();
        for (GList *l = windows; l; l = l->next)
            chooser = GTK_IS_FILE_CHOOSER (l->data) ? GTK_WIDGET (l->data) : chooser;
        g_list_free (windows);
        return chooser != nullptr;
    }, 2000));
    gtk_file_chooser_select_filename (GTK_FILE_CHOOSER (chooser), bell.c_str ());
    run_main_loop_until ([&] {
        tav::GCharPtr chosen (gtk_file_chooser_get_filename (GTK_FILE_CHOOSER (chooser)));
        return chosen && bell == chosen.get ();
    }, 3000);
    gtk_dialog_response (GTK_DIALOG (chooser), GTK_RESPONSE_OK);
    flush_events ();
    EXPECT_EQ (tav_alarm_tone_button_get_tone_count (tone (button)), row + 2);
    EXPECT_EQ (player.played.back (), bell);
    EXPECT_EQ (kivo_touch_selector_get_active (list (), 0), row + 1);
}

TEST (AlarmToneButton, TheDefaultTonePlaysOurOwnFileAndFailuresAreOnlyLogged)
{
    REQUIRE_DISPLAY ();
    if (g_file_test (TAV_ALARM_TONE_DEFAULT_PATH, G_FILE_TEST_EXISTS))
        GTEST_SKIP () << "the platform's default tone is installed here";
    GtkWidget *button = tav_alarm_tone_button_new ();
    ScopedWindow window { make_test_window (400, 100, button) };
    const std::string shipped = tav::default_tone_file ();
    {
        RecordingPlayer player;
        EXPECT_TRUE (tav_alarm_tone_button_preview (tone (button)));
        ASSERT_EQ (player.played.size (), 1u);
        EXPECT_EQ (player.played[0], shipped);

        /* The backend refusing (no sound device) is a log line, no dialog. */
        player.fail = true;
        LogCapture capture;
        GList *before = gtk_window_list_toplevels ();
        EXPECT_FALSE (tav_alarm_tone_button_preview (tone (button)));
        flush_events ();
        EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Cannot preview the alarm tone " + shipped + ": no device"), 1)
            << capture.dump ();
        GList *now = gtk_window_list_toplevels ();
        EXPECT_EQ (g_list_length (now), g_list_length (before)) << "no dialog";
        g_list_free (now);
        g_list_free (before);
    }
}

TEST (AlarmToneButton, TheShippedToneIsAShortAudibleWave)
{
    gchar *data = nullptr;
    gsize length = 0;
    ASSERT_TRUE (g_file_get_contents (tav::default_tone_file ().c_str (), &data, &length, nullptr));
    const std::string wav (data, length);
    g_free (data);
    ASSERT_GT (wav.size (), 44u);
    EXPECT_EQ (wav.substr (0, 4) + wav.substr (8, 8) + wav.substr (36, 4), "RIFFWAVEfmt data");
    uint32_t rate = 0, bytes = 0;
    memcpy (&rate, &wav[24], 4);
    memcpy (&bytes, &wav[40], 4);
    EXPECT_EQ (bytes + 44, wav.size ());
    EXPECT_NEAR (bytes / 2.0 / rate, 1.6, 0.5) << "seconds";
    int peak = 0;
    for (size_t i = 44; i + 1 < wav.size (); i += 2)
        peak = std::max (peak, std::abs (static_cast<int16_t> ((uint8_t) wav[i] | (uint8_t) wav[i + 1] << 8)));
    EXPECT_GT (peak, 10000) << "loud enough to hear";
    EXPECT_LT (peak, 32767) << "not clipped";
}

TEST (ColorButton, ATappedMarkerChoosesItsColour)
{
    REQUIRE_XTEST ();
    GtkWidget *button = tav_color_button_new ();
    TavColorButton *color = TAV_COLOR_BUTTON (button);
    int changes = 0;
    count_signal (button, "color-changed", &changes);
    EXPECT_EQ (tav_color_button_get_color (color), TavCalendarColorDarkBlue);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Dark blue");
    EXPECT_STREQ (kivo_button_get_title (KIVO_BUTTON (button)), "Colour");
    tav_color_button_set_color (color, TavCalendarColorYellow);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Yellow");
    {
        LogCapture capture;
        tav_color_button_set_color (color, static_cast<TavCalendarColor> (10));
        tav_color_button_set_color (nullptr, TavCalendarColorRed);
        EXPECT_CRITICAL (capture, "is_color (color)");
        EXPECT_CRITICAL (capture, "TAV_IS_COLOR_BUTTON (button)");
    }
    EXPECT_EQ (tav_color_button_get_color (color), TavCalendarColorYellow);
    EXPECT_EQ (changes, 1);

    ScopedWindow window { make_test_window (400, 100, button) };
    tap_middle (button);
    GtkWidget *grid = nullptr;
    ASSERT_TRUE (run_main_loop_until ([&] { return (grid = tav_color_button_get_picker (color)); }, 2000));
    ASSERT_TRUE (wait_mapped (grid));
    GtkWidget *red = find_widget (grid, [] (GtkWidget *w) {
        return GTK_IS_TOGGLE_BUTTON (w) && GPOINTER_TO_INT (g_object_get_data (G_OBJECT (w), "tav-color")) == TavCalendarColorRed;
    });
    ASSERT_NE (red, nullptr);
    tap_middle (red);
    ASSERT_TRUE (run_main_loop_until ([&] { return !tav_color_button_get_picker (color); }, 2000));
    EXPECT_EQ (tav_color_button_get_color (color), TavCalendarColorRed);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Red");
    EXPECT_EQ (changes, 2);
}
