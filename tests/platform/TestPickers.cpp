/* Buttons, pickers, check buttons and entries. */

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoTouchSelector.h"
#include "KivoEntry.h"
#include "KivoIconSize.h"
#include "KivoPickerButton.h"
#include "PointerDriver.h"

#include "TestSupport.h"

#include <string>
#include <tuple>

using namespace tav::test;

namespace {

/* Sinks @widget and destroys it when the test ends. */
struct Owned {
    GtkWidget *widget;
    explicit Owned (GtkWidget *w) : widget (GTK_WIDGET (g_object_ref_sink (w))) {}
    ~Owned ()
    {
        gtk_widget_destroy (widget);
        g_object_unref (widget);
    }
};

const char *value_of (GtkWidget *button) { return kivo_button_get_value (KIVO_BUTTON (button)); }

} // namespace

TEST (KivoButton, IsAtLeastFingerOrThumbHigh)
{
    REQUIRE_DISPLAY ();
    struct Case { KivoSizeType size; KivoButtonArrangement arrangement; const char *value; int min_height; };
    for (const Case &c : { Case { KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL, "None", KIVO_FINGER_HEIGHT },
                           Case { KIVO_SIZE_THUMB_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, "Chime", KIVO_THUMB_HEIGHT },
                           Case { KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL, nullptr, KIVO_FINGER_HEIGHT } }) {
        Owned button (kivo_button_new_with_text (c.size, c.arrangement, "Alarm", c.value));
        GtkRequisition request;
        gtk_widget_size_request (button.widget, &request);
        EXPECT_GE (request.height, c.min_height) << (c.value ? c.value : "no value");
        EXPECT_STREQ (value_of (button.widget), c.value);
    }
    /* Shown with everything in its window, a button without an image
     * starts its text at its inner border and keeps its value whole when
     * the button is wide enough for both labels. */
    GtkWidget *button = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                   "Alarm tone", "Chime");
    GtkWidget *window = make_test_window (320, 100, button);
    GtkWidget *title = nullptr, *value = nullptr;
    for (GtkWidget *w = gtk_bin_get_child (GTK_BIN (button)); GTK_IS_CONTAINER (w);) {
        GList *children = gtk_container_get_children (GTK_CONTAINER (w));
        w = GTK_WIDGET (g_list_last (children)->data);
        if (GTK_IS_LABEL (g_list_first (children)->data)) {
            title = GTK_WIDGET (g_list_first (children)->data);
            value = w;
        }
        g_list_free (children);
    }
    ASSERT_TRUE (title && value);
    EXPECT_LE (title->allocation.x - button->allocation.x, 24) << "no room kept for a missing image";
    EXPECT_FALSE (pango_layout_is_ellipsized (gtk_label_get_layout (GTK_LABEL (value))));
    gtk_widget_destroy (window);
}

TEST (PickerButton, ATapOnARowUpdatesTheValue)
{
    REQUIRE_XTEST ();
    GtkWidget *button = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    KivoPickerButton *picker = KIVO_PICKER_BUTTON (button);
    GtkWidget *column = kivo_touch_selector_new_text ();
    for (const char *row : { "Monday", "Sunday", "Saturday" })
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (column), row);
    kivo_picker_button_set_selector (picker, KIVO_TOUCH_SELECTOR (column));
    KivoTouchSelector *selector = kivo_picker_button_get_selector (picker);
    kivo_picker_button_set_active (picker, 2);
    EXPECT_EQ (kivo_touch_selector_get_active (selector, 0), 2);
    kivo_picker_button_set_active (picker, 0);
    EXPECT_STREQ (value_of (button), "Monday");
    {
        LogCapture capture;
        kivo_touch_selector_set_active (selector, 0, 7);
        EXPECT_CRITICAL (capture, "index < 0");
    }
    EXPECT_STREQ (value_of (button), "Monday") << "a bad row changes nothing";
    int changes = 0;
    count_signal (button, "value-changed", &changes);
    GtkWidget *window = make_test_window (400, 200, button);

    PointerDriver::tap (button, 40, 20);
    ASSERT_TRUE (run_main_loop_until ([picker] {
        GtkWidget *dialog = kivo_picker_button_get_picker_dialog (picker);
        return dialog && gtk_widget_get_mapped (dialog);
    }, 2000));
    flush_events ();
    /* Tap the second row as the dialog shows it. */
    tap_selector_row (selector, 1);
    ASSERT_TRUE (run_main_loop_until ([picker] { return !kivo_picker_button_get_picker_dialog (picker); }, 2000));
    EXPECT_STREQ (value_of (button), "Sunday");
    gchar *text = kivo_touch_selector_get_current_text (selector);
    EXPECT_STREQ (text, "Sunday");
    g_free (text);
    EXPECT_EQ (kivo_picker_button_get_active (picker), 1);
    EXPECT_EQ (changes, 1);

    /* Closing the dialog without a choice keeps the value. */
    kivo_picker_button_open_picker (picker);
    gtk_dialog_response (GTK_DIALOG (kivo_picker_button_get_picker_dialog (picker)), GTK_RESPONSE_DELETE_EVENT);
    flush_events ();
    EXPECT_STREQ (value_of (button), "Sunday");
    EXPECT_EQ (changes, 1);
    gtk_widget_destroy (window);
}

TEST (DateButton, KeepsValidDatesInTheSupportedYears)
{
    REQUIRE_DISPLAY ();
    Owned button (kivo_date_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL));
    KivoDateButton *date = KIVO_DATE_BUTTON (button.widget);
    int changes = 0;
    count_signal (button.widget, "value-changed", &changes);
    /* critical: NULL when the date is accepted */
    struct Case { const char *label; guint year, month, day; const char *critical; const char *value; };
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
        kivo_date_button_get_date (date, &y, &m, &d);
        const std::string before = value_of (button.widget);
        changes = 0;
        LogCapture capture;
        kivo_date_button_set_date (date, c.year, c.month, c.day);
        guint gy = 0, gm = 0, gd = 0;
        kivo_date_button_get_date (date, &gy, &gm, &gd);
        if (c.critical) {
            EXPECT_TRUE (capture.has_critical (c.critical)) << c.label << capture.dump ();
            EXPECT_EQ (gy * 10000 + gm * 100 + gd, y * 10000 + m * 100 + d) << c.label << ": unchanged";
            EXPECT_EQ (before, value_of (button.widget)) << c.label;
            EXPECT_EQ (changes, 0) << c.label;
        } else {
            EXPECT_TRUE (capture.lines ().empty ()) << c.label << capture.dump ();
            EXPECT_EQ (gy * 10000 + gm * 100 + gd, c.year * 10000 + c.month * 100 + c.day) << c.label;
            EXPECT_STREQ (value_of (button.widget), c.value) << c.label;
            EXPECT_EQ (changes, 1) << c.label << ": one change for the three columns";
        }
    }
    /* Picking February after the 31st pulls the day back, and the day
     * column offers February's days only, leap day by the year. */
    KivoTouchSelector *selector = kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (date));
    auto days_offered = [&] { return gtk_tree_model_iter_n_children (kivo_touch_selector_get_model (selector, 0), NULL); };
    kivo_date_button_set_date (date, 2023, 0, 31);
    EXPECT_EQ (days_offered (), 31);
    kivo_touch_selector_set_active (selector, 1, 1);
    kivo_date_button_get_date (date, &y, &m, &d);
    EXPECT_EQ (y * 10000 + m * 100 + d, 2023u * 10000 + 1 * 100 + 28);
    EXPECT_EQ (kivo_touch_selector_get_active (selector, 0), 27) << "the 28th is what shows selected";
    EXPECT_EQ (days_offered (), 28);
    kivo_touch_selector_set_active (selector, 2, 2024 - 1970);
    EXPECT_EQ (days_offered (), 29);
    kivo_touch_selector_set_active (selector, 0, 28);
    kivo_touch_selector_set_active (selector, 2, 2023 - 1970);
    kivo_date_button_get_date (date, &y, &m, &d);
    EXPECT_EQ (y * 10000 + m * 100 + d, 2023u * 10000 + 1 * 100 + 28);
    EXPECT_EQ (days_offered (), 28);
}

/* The selected rows of all columns stand on one line, the middle of the
 * columns, even the first and the last row of a column. */
TEST (TouchSelector, SelectedRowsLineUpInTheMiddle)
{
    REQUIRE_DISPLAY ();
    GtkWidget *selector = kivo_touch_selector_new ();
    auto *touch = KIVO_TOUCH_SELECTOR (selector);
    for (int rows : { 31, 12, 68 }) {
        GtkListStore *store = gtk_list_store_new (1, G_TYPE_STRING);
        for (int i = 0; i < rows; i++)
            gtk_list_store_insert_with_values (store, NULL, -1, 0, std::to_string (i + 1).c_str (), -1);
        kivo_touch_selector_append_text_column (touch, GTK_TREE_MODEL (store), TRUE);
        g_object_unref (store);
    }
    GtkWidget *window = make_test_window (600, 400, selector);
    for (auto [day, month, year] : { std::tuple (0, 11, 56), std::tuple (30, 0, 67), std::tuple (15, 6, 0) }) {
        kivo_touch_selector_set_active (touch, 0, day);
        kivo_touch_selector_set_active (touch, 1, month);
        kivo_touch_selector_set_active (touch, 2, year);
        flush_events ();
        std::string middles;
        for (int c = 0; c < 3; c++) {
            GtkWidget *view = kivo_touch_selector_get_column_view (touch, c);
            GtkTreePath *path = gtk_tree_path_new_from_indices (c == 0 ? day : c == 1 ? month : year, -1);
            GdkRectangle row;
            gtk_tree_view_get_background_area (GTK_TREE_VIEW (view), path, NULL, &row);
            gtk_tree_path_free (path);
            int bx = 0, by = 0, ax = 0, ay = 0;
            gdk_window_get_origin (gtk_tree_view_get_bin_window (GTK_TREE_VIEW (view)), &bx, &by);
            gdk_window_get_origin (selector->window, &ax, &ay);
            middles += std::to_string (by + row.y + row.height / 2 - ay - selector->allocation.y) + " ";
        }
        const std::string middle = std::to_string (selector->allocation.height / 2) + " ";
        EXPECT_EQ (middles, middle + middle + middle) << day << "/" << month << "/" << year;
    }
    gtk_widget_destroy (window);
}

TEST (TimeButton, RoundTripsTimes)
{
    REQUIRE_DISPLAY ();
    Owned button (kivo_time_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL));
    KivoTimeButton *time = KIVO_TIME_BUTTON (button.widget);
    EXPECT_STREQ (value_of (button.widget), "00:00");
    kivo_time_button_set_time (time, 9, 5);
    guint h = 99, m = 99;
    kivo_time_button_get_time (time, &h, &m);
    EXPECT_EQ (h * 100 + m, 905u);
    EXPECT_STREQ (value_of (button.widget), "09:05");
    LogCapture capture;
    kivo_time_button_set_time (time, 24, 0);
    EXPECT_CRITICAL (capture, "hours <= 23 && minutes <= 59");
    EXPECT_STREQ (value_of (button.widget), "09:05");
}

TEST (CheckButton, IsAToggleButtonAndTogglesOnATap)
{
    REQUIRE_XTEST ();
    GtkWidget *check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, "Hide done tasks");
    EXPECT_TRUE (GTK_IS_TOGGLE_BUTTON (check));
    GtkWidget *window = make_test_window (300, 100, check);
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
    Owned entry (kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT));
    gtk_entry_set_max_length (GTK_ENTRY (entry.widget), 5);
    struct Seen { int count = 0; KivoInvalidInputType type = KIVO_INVALID_INPUT_MODE_RESTRICTION; } seen;
    /* The editors connect with the underscore spelling. */
    g_signal_connect (entry.widget, "invalid_input", G_CALLBACK (+[] (KivoEntry *, KivoInvalidInputType type, gpointer d) {
        static_cast<Seen *> (d)->count++;
        static_cast<Seen *> (d)->type = type;
    }), &seen);
    struct Case { const char *label; const char *before, *insert; int count; const char *text; };
    for (const Case &c : { Case { "fits", "", "abc", 0, "abc" }, Case { "fills it exactly", "abc", "de", 0, "abcde" },
                           Case { "one too many", "abcde", "f", 1, "abcde" },
                           Case { "a long paste is cut at a character", "", "\303\244bcdefgh", 1, "\303\244bcde" } }) {
        kivo_entry_set_text (KIVO_ENTRY (entry.widget), c.before);
        seen.count = 0;
        gint pos = gtk_entry_get_text_length (GTK_ENTRY (entry.widget));
        gtk_editable_insert_text (GTK_EDITABLE (entry.widget), c.insert, -1, &pos);
        EXPECT_EQ (seen.count, c.count) << c.label;
        EXPECT_STREQ (kivo_entry_get_text (KIVO_ENTRY (entry.widget)), c.text) << c.label;
    }
    EXPECT_EQ (seen.type, KIVO_INVALID_INPUT_MAX_CHARS_REACHED);
}

TEST (KivoTextView, MaximumLengthCutsAndReports)
{
    REQUIRE_DISPLAY ();
    Owned view (kivo_text_view_new ());
    int reports = 0;
    count_signal (view.widget, "invalid_input", &reports);
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (view.widget));
    gtk_text_buffer_set_text (buffer, "0123456789abcdef", -1);
    EXPECT_EQ (reports, 0) << "no limit yet";
    kivo_text_view_set_max_length (KIVO_TEXT_VIEW (view.widget), 10);
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
    gtk_text_view_set_buffer (GTK_TEXT_VIEW (view.widget), other);
    g_object_unref (other);
    EXPECT_EQ (gtk_text_buffer_get_char_count (gtk_text_view_get_buffer (GTK_TEXT_VIEW (view.widget))), 10);
    EXPECT_EQ (reports, 3);
}

TEST (IconSizes, NamedSizesFitATouchScreen)
{
    REQUIRE_DISPLAY ();
    struct Case { const char *name; int pixels; };
    for (const Case &c : { Case { "kivo-xsmall", 16 }, Case { "kivo-small", 24 }, Case { "kivo-stylus", 32 },
                           Case { "kivo-finger", 48 }, Case { "kivo-thumb", 64 }, Case { "kivo-large", 96 },
                           Case { "no-such-size", 0 } }) {
        EXPECT_EQ (kivo_icon_size_get_pixels (c.name), c.pixels) << c.name;
        int w = 0, h = 0;
        EXPECT_EQ (gtk_icon_size_lookup (gtk_icon_size_from_name (c.name), &w, &h), c.pixels != 0) << c.name;
        EXPECT_EQ (h, c.pixels) << c.name;
    }
}
