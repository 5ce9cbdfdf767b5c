/* Buttons, pickers, check buttons and entries. */

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "KivoIconSize.h"
#include "KivoPickerButton.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <string>

using namespace tav::test;

namespace {

GtkWidget *text_picker (std::initializer_list<const char *> rows)
{
    GtkWidget *button = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    kivo_button_set_title (KIVO_BUTTON (button), "Week starts on");
    GtkWidget *selector = kivo_touch_selector_new_text ();
    for (const char *row : rows)
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (selector), row);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (button), KIVO_TOUCH_SELECTOR (selector));
    return button;
}

/* Taps row @row of the selector's column @column as shown in the dialog. */
void tap_row (KivoTouchSelector *selector, int column, int row)
{
    GtkWidget *view = kivo_touch_selector_get_column_view (selector, column);
    GtkTreePath *path = gtk_tree_path_new_from_indices (row, -1);
    GdkRectangle cell;
    gtk_tree_view_get_cell_area (GTK_TREE_VIEW (view), path, nullptr, &cell);
    gtk_tree_path_free (path);
    int x = 0, y = 0;
    gdk_window_get_origin (gtk_tree_view_get_bin_window (GTK_TREE_VIEW (view)), &x, &y);
    PointerDriver::move_root (x + 40, y + cell.y + cell.height / 2);
    PointerDriver::press (1);
    PointerDriver::release (1);
}

} // namespace

TEST (KivoButton, ShowsTitleAndValueAtFingerHeight)
{
    REQUIRE_DISPLAY ();
    struct Case {
        const char *label;
        KivoSizeType size;
        KivoButtonArrangement arrangement;
        const char *title, *value;
        int min_height;
    };
    const Case cases[] = {
        { "finger, stacked", KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL, "Alarm", "None", KIVO_FINGER_HEIGHT },
        { "thumb, side by side", KIVO_SIZE_THUMB_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, "Tone", "Chime", KIVO_THUMB_HEIGHT },
        { "no value yet", KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL, "Calendars", nullptr, KIVO_FINGER_HEIGHT },
    };
    for (const Case &c : cases) {
        GtkWidget *button = kivo_button_new_with_text (c.size, c.arrangement, c.title, c.value);
        g_object_ref_sink (button);
        GtkRequisition request;
        gtk_widget_size_request (button, &request);
        EXPECT_GE (request.height, c.min_height) << c.label;
        EXPECT_STREQ (kivo_button_get_title (KIVO_BUTTON (button)), c.title) << c.label;
        EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), c.value) << c.label;
        gchar *value = nullptr;
        g_object_get (button, "value", &value, nullptr);
        EXPECT_STREQ (value, c.value) << c.label;
        g_free (value);
        gtk_widget_destroy (button);
        g_object_unref (button);
    }
}

TEST (PickerButton, ATapOnARowUpdatesTheValue)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    GtkWidget *window = make_test_window (400, 200);
    GtkWidget *button = text_picker ({ "Monday", "Sunday", "Saturday" });
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (button), 0);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Monday");
    int changes = 0;
    g_signal_connect (button, "value-changed", G_CALLBACK (+[] (KivoPickerButton *, gpointer d) { ++*static_cast<int *> (d); }),
                      &changes);
    gtk_container_add (GTK_CONTAINER (window), button);
    gtk_widget_show_all (window);
    flush_events ();

    PointerDriver::tap (button, 40, 20);
    flush_events ();
    GtkWidget *dialog = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button));
    ASSERT_NE (dialog, nullptr);
    ASSERT_TRUE (run_main_loop_until ([dialog] { return gtk_widget_get_mapped (dialog); }, 2000));
    flush_events ();

    tap_row (kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button)), 0, 1);
    ASSERT_TRUE (run_main_loop_until ([button] { return !kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button)); },
                                      2000));
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Sunday");
    EXPECT_EQ (kivo_picker_button_get_active (KIVO_PICKER_BUTTON (button)), 1);
    EXPECT_EQ (changes, 1);

    /* Closing the dialog without a choice keeps the value. */
    kivo_picker_button_open_picker (KIVO_PICKER_BUTTON (button));
    gtk_dialog_response (GTK_DIALOG (kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button))),
                         GTK_RESPONSE_DELETE_EVENT);
    flush_events ();
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Sunday");
    EXPECT_EQ (changes, 1);
    gtk_widget_destroy (window);
}

TEST (PickerButton, SetActiveAndSelectorText)
{
    REQUIRE_DISPLAY ();
    GtkWidget *button = text_picker ({ "Never", "1 week", "2 weeks" });
    g_object_ref_sink (button);
    KivoTouchSelector *selector = kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button));
    struct Case {
        const char *label;
        int index;
        const char *value;
    };
    for (const Case &c : { Case { "last row", 2, "2 weeks" }, Case { "first row", 0, "Never" } }) {
        kivo_picker_button_set_active (KIVO_PICKER_BUTTON (button), c.index);
        EXPECT_EQ (kivo_touch_selector_get_active (selector, 0), c.index) << c.label;
        EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), c.value) << c.label;
        gchar *text = kivo_touch_selector_get_current_text (selector);
        EXPECT_STREQ (text, c.value) << c.label;
        g_free (text);
    }
    {
        LogCapture capture;
        kivo_touch_selector_set_active (selector, 0, 7);
        EXPECT_CRITICAL (capture, "index < 0");
    }
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "Never") << "a bad row changes nothing";
    gtk_widget_destroy (button);
    g_object_unref (button);
}

TEST (DateButton, KeepsValidDatesInTheSupportedYears)
{
    REQUIRE_DISPLAY ();
    GtkWidget *button = kivo_date_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    g_object_ref_sink (button);
    int changes = 0;
    g_signal_connect (button, "value-changed", G_CALLBACK (+[] (KivoPickerButton *, gpointer d) { ++*static_cast<int *> (d); }),
                      &changes);
    struct Case {
        const char *label;
        guint year, month, day;
        const char *critical; /* NULL: accepted */
        const char *value;
    };
    const Case cases[] = {
        { "first supported day", 1970, 0, 1, nullptr, "Thu 1 Jan 1970" },
        { "last supported day", 2037, 11, 31, nullptr, "Thu 31 Dec 2037" },
        { "leap day", 2024, 1, 29, nullptr, "Thu 29 Feb 2024" },
        { "before the range", 1969, 11, 31, "year >= KIVO_DATE_BUTTON_MIN_YEAR", nullptr },
        { "after the range", 2038, 0, 1, "year <= KIVO_DATE_BUTTON_MAX_YEAR", nullptr },
        { "no such day", 2023, 1, 29, "g_date_valid_dmy", nullptr },
        { "no such month", 2023, 12, 1, "month <= 11", nullptr },
    };
    guint y = 0, m = 0, d = 0;
    for (const Case &c : cases) {
        kivo_date_button_get_date (KIVO_DATE_BUTTON (button), &y, &m, &d);
        const std::string before = kivo_button_get_value (KIVO_BUTTON (button));
        changes = 0;
        LogCapture capture;
        kivo_date_button_set_date (KIVO_DATE_BUTTON (button), c.year, c.month, c.day);
        guint gy = 0, gm = 0, gd = 0;
        kivo_date_button_get_date (KIVO_DATE_BUTTON (button), &gy, &gm, &gd);
        if (c.critical) {
            EXPECT_TRUE (capture.has_critical (c.critical)) << c.label << capture.dump ();
            EXPECT_EQ (gy * 10000 + gm * 100 + gd, y * 10000 + m * 100 + d) << c.label << ": unchanged";
            EXPECT_EQ (before, kivo_button_get_value (KIVO_BUTTON (button))) << c.label;
            EXPECT_EQ (changes, 0) << c.label;
        } else {
            EXPECT_TRUE (capture.lines ().empty ()) << c.label << capture.dump ();
            EXPECT_EQ (gy, c.year) << c.label;
            EXPECT_EQ (gm, c.month) << c.label;
            EXPECT_EQ (gd, c.day) << c.label;
            EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), c.value) << c.label;
            EXPECT_EQ (changes, 1) << c.label << ": one change for the three columns";
        }
    }
    /* Picking February after the 31st pulls the day back. */
    kivo_date_button_set_date (KIVO_DATE_BUTTON (button), 2023, 0, 31);
    kivo_touch_selector_set_active (kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button)), 1, 1);
    kivo_date_button_get_date (KIVO_DATE_BUTTON (button), &y, &m, &d);
    EXPECT_EQ (y * 10000 + m * 100 + d, 2023u * 10000 + 1 * 100 + 28);
    gtk_widget_destroy (button);
    g_object_unref (button);
}

TEST (TimeButton, RoundTripsTimes)
{
    REQUIRE_DISPLAY ();
    GtkWidget *button = kivo_time_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    g_object_ref_sink (button);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "00:00");
    struct Case {
        guint h, m;
        const char *value;
    };
    for (const Case &c : { Case { 9, 5, "09:05" }, Case { 23, 59, "23:59" }, Case { 0, 0, "00:00" } }) {
        kivo_time_button_set_time (KIVO_TIME_BUTTON (button), c.h, c.m);
        guint h = 99, m = 99;
        kivo_time_button_get_time (KIVO_TIME_BUTTON (button), &h, &m);
        EXPECT_EQ (h, c.h);
        EXPECT_EQ (m, c.m);
        EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), c.value);
    }
    LogCapture capture;
    kivo_time_button_set_time (KIVO_TIME_BUTTON (button), 24, 0);
    EXPECT_CRITICAL (capture, "hours <= 23 && minutes <= 59");
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "00:00");
    gtk_widget_destroy (button);
    g_object_unref (button);
}

TEST (CheckButton, IsAToggleButtonAndTogglesOnATap)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    GtkWidget *window = make_test_window (300, 100);
    GtkWidget *check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, "Hide done tasks");
    EXPECT_TRUE (GTK_IS_TOGGLE_BUTTON (check));
    gtk_container_add (GTK_CONTAINER (window), check);
    gtk_widget_show_all (window);
    flush_events ();
    EXPECT_GE (check->allocation.height, KIVO_FINGER_HEIGHT);
    EXPECT_FALSE (kivo_check_button_get_active (KIVO_CHECK_BUTTON (check)));
    PointerDriver::tap (check, 150, 30);
    flush_events ();
    EXPECT_TRUE (kivo_check_button_get_active (KIVO_CHECK_BUTTON (check)));
    gtk_widget_destroy (window);
}

TEST (KivoEntry, MaximumLengthReportsInvalidInput)
{
    REQUIRE_DISPLAY ();
    GtkWidget *entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    g_object_ref_sink (entry);
    gtk_entry_set_max_length (GTK_ENTRY (entry), 5);
    struct Seen {
        int count = 0;
        KivoInvalidInputType type = KIVO_INVALID_INPUT_MODE_RESTRICTION;
    } seen;
    /* The editors connect with the underscore spelling. */
    g_signal_connect (entry, "invalid_input", G_CALLBACK (+[] (KivoEntry *, KivoInvalidInputType type, gpointer d) {
        auto *s = static_cast<Seen *> (d);
        s->count++;
        s->type = type;
    }), &seen);
    struct Case {
        const char *label;
        const char *insert;
        int count;
        const char *text;
    };
    const Case cases[] = {
        { "fits", "abc", 0, "abc" },
        { "fills it exactly", "de", 0, "abcde" },
        { "one too many", "f", 1, "abcde" },
        { "a long paste is cut", "", 1, "" },
    };
    for (const Case &c : cases) {
        if (g_str_equal (c.label, "a long paste is cut")) {
            kivo_entry_set_text (KIVO_ENTRY (entry), "");
            seen.count = 0;
            gint pos = 0;
            gtk_editable_insert_text (GTK_EDITABLE (entry), "\303\244bcdefgh", -1, &pos); /* "äbcdefgh" */
            EXPECT_EQ (seen.count, 1) << c.label;
            EXPECT_STREQ (kivo_entry_get_text (KIVO_ENTRY (entry)), "\303\244bcde") << c.label;
            continue;
        }
        seen.count = 0;
        gint pos = gtk_entry_get_text_length (GTK_ENTRY (entry));
        gtk_editable_insert_text (GTK_EDITABLE (entry), c.insert, -1, &pos);
        EXPECT_EQ (seen.count, c.count) << c.label;
        EXPECT_STREQ (kivo_entry_get_text (KIVO_ENTRY (entry)), c.text) << c.label;
    }
    EXPECT_EQ (seen.type, KIVO_INVALID_INPUT_MAX_CHARS_REACHED);
    kivo_entry_set_placeholder (KIVO_ENTRY (entry), "Title");
    gchar *placeholder = nullptr;
    g_object_get (entry, "placeholder", &placeholder, nullptr);
    EXPECT_STREQ (placeholder, "Title");
    g_free (placeholder);
    gtk_widget_destroy (entry);
    g_object_unref (entry);
}

TEST (KivoTextView, MaximumLengthCutsAndReports)
{
    REQUIRE_DISPLAY ();
    GtkWidget *view = kivo_text_view_new ();
    g_object_ref_sink (view);
    int reports = 0;
    g_signal_connect (view, "invalid_input", G_CALLBACK (+[] (KivoTextView *, KivoInvalidInputType, gpointer d) {
        ++*static_cast<int *> (d);
    }), &reports);
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (view));
    gtk_text_buffer_set_text (buffer, "0123456789abcdef", -1);
    EXPECT_EQ (reports, 0) << "no limit yet";
    kivo_text_view_set_max_length (KIVO_TEXT_VIEW (view), 10);
    EXPECT_EQ (gtk_text_buffer_get_char_count (buffer), 10);
    EXPECT_EQ (reports, 1);
    GtkTextIter end;
    gtk_text_buffer_get_end_iter (buffer, &end);
    gtk_text_buffer_insert (buffer, &end, "x", -1);
    EXPECT_EQ (gtk_text_buffer_get_char_count (buffer), 10);
    EXPECT_EQ (reports, 2);
    /* A new buffer is held to the same limit. */
    GtkTextBuffer *other = gtk_text_buffer_new (nullptr);
    gtk_text_buffer_set_text (other, "a much longer text than ten", -1);
    gtk_text_view_set_buffer (GTK_TEXT_VIEW (view), other);
    g_object_unref (other);
    EXPECT_EQ (gtk_text_buffer_get_char_count (gtk_text_view_get_buffer (GTK_TEXT_VIEW (view))), 10);
    EXPECT_EQ (reports, 3);
    gtk_widget_destroy (view);
    g_object_unref (view);
}

TEST (IconSizes, NamedSizesFitATouchScreen)
{
    REQUIRE_DISPLAY ();
    struct Case {
        const char *name;
        int pixels;
    };
    for (const Case &c : { Case { "kivo-xsmall", 16 }, Case { "kivo-small", 24 }, Case { "kivo-stylus", 32 },
                           Case { "kivo-finger", 48 }, Case { "kivo-thumb", 64 }, Case { "kivo-large", 96 },
                           Case { "no-such-size", 0 } }) {
        EXPECT_EQ (kivo_icon_size_get_pixels (c.name), c.pixels) << c.name;
        if (c.pixels) {
            int w = 0, h = 0;
            EXPECT_TRUE (gtk_icon_size_lookup (gtk_icon_size_from_name (c.name), &w, &h)) << c.name;
            EXPECT_EQ (h, c.pixels) << c.name;
        }
    }
}
