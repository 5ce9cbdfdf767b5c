/* The settings vocabulary and the settings dialog. */

#include "TavAlarmToneButton.h"
#include "TavCalendarDialog.h"
#include "TavCalendarSettingsDialog.h"
#include "TavEnumTypes.h"

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoPickerButton.h"
#include "SettingsTestSupport.h"

#include <string>

using namespace tav::test;

namespace {

std::string nicks_of (GType type)
{
    GEnumClass *klass = static_cast<GEnumClass *> (g_type_class_ref (type));
    std::string out = g_type_name (type);
    for (guint i = 0; i < klass->n_values; ++i)
        out += " " + std::to_string (klass->values[i].value) + "=" + klass->values[i].value_nick;
    g_type_class_unref (klass);
    return out;
}

/* The dialog and its rows, found by what they are and show. */
struct Dialog {
    GtkWidget *widget = tav_calendar_settings_dialog_new ();
    TavCalendarSettingsDialog *dialog = TAV_CALENDAR_SETTINGS_DIALOG (widget);

    ~Dialog ()
    {
        if (widget)
            gtk_widget_destroy (widget);
    }

    GtkWidget *row (const char *title) const
    {
        return find_widget (widget, [title] (GtkWidget *w) {
            return KIVO_IS_BUTTON (w) && g_strcmp0 (kivo_button_get_title (KIVO_BUTTON (w)), title) == 0;
        });
    }
    GtkWidget *week_start () const { return row ("Week starts on"); }
    GtkWidget *remove_items () const { return row ("Remove old items"); }
    TavAlarmToneButton *tone () const { return TAV_ALARM_TONE_BUTTON (row ("Alarm tone")); }
    GtkWidget *hide_done () const
    {
        return find_widget (widget, [] (GtkWidget *w) { return KIVO_IS_CHECK_BUTTON (w); });
    }
    std::string alarm_tone () const
    {
        char *path = nullptr;
        g_object_get (widget, "alarm-tone", &path, nullptr);
        const std::string out = path ? path : "(null)";
        g_free (path);
        return out;
    }
};

const char *shown (GtkWidget *button) { return kivo_button_get_value (KIVO_BUTTON (button)); }

} // namespace

TEST (SettingsVocabulary, IsRegisteredWithTheNicksStoredSettingsUse)
{
    EXPECT_EQ (nicks_of (TAV_TYPE_CALENDAR_SETTINGS_PROPERTY_ID),
               "TavCalendarSettingsPropertyID 0=firstboot 1=defaultview 2=weekstart 3=hidedonetasks 4=removeitems "
               "5=calendaralarmtone 6=devicecalendarnamechanged");
    EXPECT_EQ (nicks_of (TAV_TYPE_CALENDAR_SETTINGS_VALUE),
               "TavCalendarSettingsValue 0=no 1=yes 2=firstbootyes 3=firstbootno 4=monthview 5=weekview "
               "6=agendaview 7=monday 8=sunday 9=never 10=oneweek 11=twoweeks 12=onemonth 13=oneyear");
}

TEST (SettingsDialog, RoundTripsEveryValueThroughItsWidgets)
{
    REQUIRE_DISPLAY ();
    Dialog d;
    EXPECT_EQ (std::string (shown (d.week_start ())) + "/" + shown (d.remove_items ()), "Monday/Never");
    struct Case {
        int id, value, row;
        const char *label;
    };
    const Case cases[] = {
        { SettingsWeekStart, SettingsValueSunday, 1, "Sunday" },
        { SettingsWeekStart, SettingsValueMonday, 0, "Monday" },
        { SettingsRemoveItems, SettingsValueOneWeek, 1, "Older than 1 week" },
        { SettingsRemoveItems, SettingsValueTwoWeeks, 2, "Older than 2 weeks" },
        { SettingsRemoveItems, SettingsValueOneMonth, 3, "Older than 1 month" },
        { SettingsRemoveItems, SettingsValueOneYear, 4, "Older than 1 year" },
        { SettingsRemoveItems, SettingsValueNever, 0, "Never" },
        { SettingsHideDoneTasks, SettingsValueYes, 1, nullptr },
        { SettingsHideDoneTasks, SettingsValueNo, 0, nullptr },
    };
    for (const Case &c : cases) {
        tav_calendar_settings_dialog_set_values (d.dialog, c.id, c.value, -1);
        int out = -7, untouched = -7;
        tav_calendar_settings_dialog_get_values (d.dialog, SettingsFirstBoot, &untouched, c.id, &out,
                                                 SettingsDefaultView, &untouched, -1);
        EXPECT_EQ (out, c.value) << c.id << "/" << c.value;
        EXPECT_EQ (untouched, -7) << "ids the dialog does not show leave their pointer alone";
        if (c.label) {
            GtkWidget *picker = c.id == SettingsWeekStart ? d.week_start () : d.remove_items ();
            EXPECT_STREQ (shown (picker), c.label);
            EXPECT_EQ (kivo_picker_button_get_active (KIVO_PICKER_BUTTON (picker)), c.row) << c.label;
        } else {
            EXPECT_EQ (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (d.hide_done ())), c.row == 1);
        }
    }
    /* Several pairs in one call. */
    tav_calendar_settings_dialog_set_values (d.dialog, SettingsWeekStart, SettingsValueSunday, SettingsHideDoneTasks,
                                             SettingsValueYes, SettingsRemoveItems, SettingsValueOneMonth, -1);
    int v[3] = {};
    tav_calendar_settings_dialog_get_values (d.dialog, SettingsRemoveItems, &v[0], SettingsWeekStart, &v[1],
                                             SettingsHideDoneTasks, &v[2], -1);
    EXPECT_EQ (v[0] * 10000 + v[1] * 100 + v[2], 120801);
}

TEST (SettingsDialog, BadPairsAreWarnedAboutAndSkipped)
{
    REQUIRE_DISPLAY ();
    Dialog d;
    tav_calendar_settings_dialog_set_values (d.dialog, SettingsHideDoneTasks, SettingsValueYes, SettingsWeekStart,
                                             SettingsValueSunday, -1);
    {
        LogCapture capture;
        /* Only 1 means yes: 2 (first boot yes) clears the box, with a warning. */
        tav_calendar_settings_dialog_set_values (d.dialog, SettingsHideDoneTasks, SettingsValueFirstBootYes, -1);
        EXPECT_FALSE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (d.hide_done ())));
        tav_calendar_settings_dialog_set_values (d.dialog, SettingsWeekStart, SettingsValueNever, 42,
                                                 SettingsValueMonday, SettingsRemoveItems, SettingsValueOneYear, -1);
        EXPECT_STREQ (shown (d.week_start ()), "Sunday") << "a value of another setting is ignored";
        EXPECT_STREQ (shown (d.remove_items ()), "Older than 1 year") << "pairs after a bad one still count";
        int untouched = -7;
        tav_calendar_settings_dialog_get_values (d.dialog, 99, &untouched, -1);
        EXPECT_EQ (untouched, -7);
        EXPECT_TRUE (capture.has_warning ("Value 2 is not one that hidedonetasks takes; it is ignored")) << capture.dump ();
        EXPECT_TRUE (capture.has_warning ("Value 9 is not one that weekstart takes; it is ignored")) << capture.dump ();
        EXPECT_TRUE (capture.has_warning ("Unknown settings id 42; its value 7 is ignored")) << capture.dump ();
        EXPECT_TRUE (capture.has_warning ("Unknown settings id 99; its value is left unchanged")) << capture.dump ();
    }
    /* A shown text that is no value's label reads as 0. */
    kivo_button_set_value (KIVO_BUTTON (d.week_start ()), "Someday");
    int week = -7;
    tav_calendar_settings_dialog_get_values (d.dialog, SettingsWeekStart, &week, -1);
    EXPECT_EQ (week, SettingsValueNo);

    LogCapture capture;
    GtkWidget *label = gtk_label_new ("not a dialog");
    tav_calendar_settings_dialog_set_values (TAV_CALENDAR_SETTINGS_DIALOG (label), SettingsWeekStart, 7, -1);
    tav_calendar_settings_dialog_get_values (nullptr, SettingsWeekStart, &week, -1);
    tav_calendar_settings_dialog_dim_save_button (TAV_CALENDAR_SETTINGS_DIALOG (label), FALSE);
    EXPECT_EQ (capture.count_criticals ("TAV_IS_CALENDAR_SETTINGS_DIALOG (dialog)"), 3) << capture.dump ();
    gtk_widget_destroy (label);
}

TEST (SettingsDialogDeathTest, ANullValuePointerAborts)
{
    REQUIRE_DISPLAY ();
    GTEST_FLAG_SET (death_test_style, "threadsafe");
    EXPECT_DEATH (
        {
            Dialog d;
            tav_calendar_settings_dialog_get_values (d.dialog, SettingsWeekStart, nullptr, -1);
        },
        "prop_value_p != NULL");
}

TEST (SettingsDialog, AlarmToneFallsBackToTheDefaultAndNeverDuplicatesIt)
{
    REQUIRE_DISPLAY ();
    TempDir dir;
    const std::string chime = dir.file ("chime.wav");
    write_test_wav (chime);
    Dialog d;
    const int offered = tav_alarm_tone_button_get_tone_count (d.tone ());
    struct Case {
        const char *label;
        const char *set;
        std::string reads;
        int added;
        const char *warning;
    };
    const std::string gone = dir.file ("gone.wav");
    const std::string not_readable = "Alarm tone " + dir.path () + " is not a readable file";
    const Case cases[] = {
        { "the default tone", TAV_ALARM_TONE_DEFAULT_PATH, TAV_ALARM_TONE_DEFAULT_PATH, 0, nullptr },
        { "a file", chime.c_str (), chime, 1, nullptr },
        { "the same file", chime.c_str (), chime, 1, nullptr },
        { "empty: nothing changes", "", chime, 1, nullptr },
        { "a missing file", gone.c_str (), TAV_ALARM_TONE_DEFAULT_PATH, 1, "Alarm tone file does not exist!" },
        { "the file again", chime.c_str (), chime, 1, nullptr },
        { "a directory", dir.path ().c_str (), TAV_ALARM_TONE_DEFAULT_PATH, 1, not_readable.c_str () },
        { "NULL", nullptr, TAV_ALARM_TONE_DEFAULT_PATH, 1, nullptr },
    };
    for (const Case &c : cases) {
        LogCapture capture;
        g_object_set (d.widget, "alarm-tone", c.set, nullptr);
        EXPECT_EQ (d.alarm_tone (), c.reads) << c.label;
        EXPECT_EQ (tav_alarm_tone_button_get_tone_count (d.tone ()) - offered, c.added) << c.label;
        EXPECT_EQ (capture.lines ().size (), c.warning ? 1u : 0u) << c.label << capture.dump ();
        if (c.warning) {
            EXPECT_TRUE (capture.has_warning (c.warning)) << c.label << capture.dump ();
        }
    }
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (d.tone ())), "Default");
}

TEST (SettingsDialog, CalendarsRowSaveButtonAndClosing)
{
    REQUIRE_XTEST ();
    Dialog d;
    gtk_window_move (GTK_WINDOW (d.widget), 0, 0);
    ASSERT_TRUE (wait_mapped (d.widget));
    GtkWidget *calendars = d.row ("Calendars");
    for (auto [count, text] : { std::pair { 1, "1 calendar visible" }, std::pair { 4, "4 calendars visible" } }) {
        g_object_set (d.widget, "num-visible-calendars", count, nullptr);
        EXPECT_STREQ (shown (calendars), text);
    }
    int edits = 0, saves = 0;
    count_signal (d.widget, "edit-clicked", &edits);
    count_signal (d.widget, "save-clicked", &saves);
    tap_middle (calendars);
    GtkWidget *save = find_widget (d.widget, [] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), "Save") == 0;
    });
    ASSERT_NE (save, nullptr);
    tav_calendar_settings_dialog_dim_save_button (d.dialog, FALSE);
    tap_middle (save);
    EXPECT_EQ (saves, 0) << "a dimmed Save does nothing";
    tav_calendar_settings_dialog_dim_save_button (d.dialog, TRUE);
    tap_middle (save);
    EXPECT_EQ (edits, 1);
    EXPECT_EQ (saves, 1);

    /* The window manager's close is refused while "dialog-close" is FALSE. */
    GtkWidget *alive = d.widget;
    g_object_add_weak_pointer (G_OBJECT (d.widget), reinterpret_cast<gpointer *> (&alive));
    for (const bool allowed : { false, true }) {
        g_object_set (d.widget, "dialog-close", allowed, nullptr);
        GdkEvent *event = gdk_event_new (GDK_DELETE);
        event->any.window = GDK_WINDOW (g_object_ref (d.widget->window));
        gtk_main_do_event (event);
        gdk_event_free (event);
        EXPECT_EQ (tav_calendar_dialog_is_dialog_open (), !allowed) << (allowed ? "allowed" : "refused");
    }
    EXPECT_EQ (alive, nullptr) << "closed and released";
    d.widget = nullptr;
}
