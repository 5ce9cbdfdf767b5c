/* The dialog base and the property-widget binding helpers. */

#include <calendarui.h>
#include <gdk/gdkkeysyms.h>

#include "KivoButton.h"
#include "KivoEntry.h"
#include "KivoPannableArea.h"
#include "../platform/PointerDriver.h"
#include "TestSupport.h"

using namespace tav::test;

namespace {

TavCalendarDialog *new_dialog ()
{
    return TAV_CALENDAR_DIALOG (tav_calendar_dialog_new ());
}

} // namespace

TEST (DialogBase, CountsOpenDialogsUntilTheirFirstDispose)
{
    REQUIRE_DISPLAY ();
    ASSERT_FALSE (tav_calendar_dialog_is_dialog_open ());
    TavCalendarDialog *a = new_dialog ();
    TavCalendarDialog *b = new_dialog ();
    EXPECT_TRUE (tav_calendar_dialog_is_dialog_open ()) << "open before it is shown";
    g_object_ref (a);
    gtk_widget_destroy (GTK_WIDGET (a));
    g_object_run_dispose (G_OBJECT (a));
    EXPECT_TRUE (tav_calendar_dialog_is_dialog_open ()) << "a second dispose of one dialog subtracts nothing";
    g_object_unref (a);
    gtk_widget_destroy (GTK_WIDGET (b));
    EXPECT_FALSE (tav_calendar_dialog_is_dialog_open ());
}

TEST (DialogBase, PacksContentAndButtons)
{
    REQUIRE_DISPLAY ();
    TavCalendarDialog *dialog = new_dialog ();
    EXPECT_TRUE (gtk_window_get_modal (GTK_WINDOW (dialog)));
    tav_calendar_dialog_set_title (dialog, "Edit event");
    EXPECT_STREQ (gtk_window_get_title (GTK_WINDOW (dialog)), "Edit event");

    /* A label goes through a viewport, a tree view straight in. */
    GtkWidget *label = gtk_label_new ("content");
    tav_calendar_dialog_pack_with_defaults (dialog, label);
    EXPECT_EQ (gtk_widget_get_parent (dialog->pannable), GTK_DIALOG (dialog)->vbox);
    EXPECT_TRUE (GTK_IS_VIEWPORT (gtk_widget_get_parent (label)));
    EXPECT_TRUE (gtk_widget_get_visible (label));
    TavCalendarDialog *list_dialog = new_dialog ();
    GtkWidget *tree = gtk_tree_view_new ();
    tav_calendar_dialog_pack_with_defaults (list_dialog, tree);
    EXPECT_EQ (gtk_widget_get_parent (tree), list_dialog->pannable);

    GtkWidget *bar = gtk_label_new ("bar");
    tav_calendar_dialog_pack_no_scroll (dialog, bar, FALSE, TRUE);
    gboolean expand = TRUE, fill = FALSE;
    gtk_box_query_child_packing (GTK_BOX (GTK_DIALOG (dialog)->vbox), bar, &expand, &fill, nullptr, nullptr);
    EXPECT_EQ (expand * 10 + fill, 1) << "not expanded, filled";

    GtkWidget *save = tav_calendar_dialog_add_button (dialog, "Save");
    EXPECT_EQ (gtk_dialog_get_response_for_widget (GTK_DIALOG (dialog), save), GTK_RESPONSE_NONE);
    EXPECT_STREQ (gtk_button_get_label (GTK_BUTTON (save)), "Save");
    gtk_widget_destroy (GTK_WIDGET (dialog));
    gtk_widget_destroy (GTK_WIDGET (list_dialog));
}

TEST (DialogBase, EscapeClosesOtherKeysReachTheContent)
{
    REQUIRE_XTEST ();
    TavCalendarDialog *dialog = new_dialog ();
    GtkWidget *entry = gtk_entry_new ();
    tav_calendar_dialog_pack_no_scroll (dialog, entry, FALSE, FALSE);
    gtk_widget_show_all (GTK_WIDGET (dialog));
    gtk_window_present (GTK_WINDOW (dialog));
    gtk_widget_grab_focus (entry);
    int destroyed = 0;
    count_signal (dialog, "destroy", &destroyed);
    ASSERT_TRUE (run_main_loop_until ([&] { return gtk_widget_get_mapped (GTK_WIDGET (dialog)); }, 3000));
    GdkWindow *window = GTK_WIDGET (dialog)->window;
    ASSERT_TRUE (gdk_test_simulate_key (window, 10, 10, GDK_a, GdkModifierType (0), GDK_KEY_PRESS));
    ASSERT_TRUE (gdk_test_simulate_key (window, 10, 10, GDK_a, GdkModifierType (0), GDK_KEY_RELEASE));
    run_main_loop_until ([&] { return *gtk_entry_get_text (GTK_ENTRY (entry)) != '\0'; }, 2000);
    EXPECT_STREQ (gtk_entry_get_text (GTK_ENTRY (entry)), "a");
    EXPECT_EQ (destroyed, 0);
    ASSERT_TRUE (gdk_test_simulate_key (window, 10, 10, GDK_Escape, GdkModifierType (0), GDK_KEY_PRESS));
    EXPECT_TRUE (run_main_loop_until ([&] { return destroyed > 0; }, 2000));
    EXPECT_FALSE (tav_calendar_dialog_is_dialog_open ());
}

TEST (DialogBase, ModalWidgetSlotAndArgumentChecks)
{
    REQUIRE_DISPLAY ();
    TavCalendarDialog *dialog = new_dialog ();
    GtkWidget *first = gtk_label_new ("first");
    GtkWidget *second = gtk_label_new ("second");
    g_object_ref_sink (first);
    g_object_ref_sink (second);
    {
        LogCapture capture;
        EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (dialog), nullptr);
        tav_calendar_dialog_set_modal_widget_ptr (dialog, first);
        EXPECT_EQ (capture.count_lines (LoggedLine::LibMessage, "Some note/confirmation is already opened"), 0);
        tav_calendar_dialog_set_modal_widget_ptr (dialog, second);
        EXPECT_EQ (capture.count_lines (LoggedLine::LibMessage, "Some note/confirmation is already opened"), 1);
        EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (dialog), second) << "the new one is kept";
        tav_calendar_dialog_reset_modal_widget_ptr (dialog);
        EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (dialog), nullptr);
    }
    GtkWidget *label = gtk_label_new ("x");
    g_object_ref_sink (label);
    LogCapture capture;
    EXPECT_EQ (tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (label)), nullptr);
    tav_calendar_dialog_set_modal_widget_ptr (nullptr, first);
    tav_calendar_dialog_reset_modal_widget_ptr (nullptr);
    tav_calendar_dialog_set_title (nullptr, "x");
    EXPECT_EQ (tav_calendar_dialog_add_button (nullptr, "x"), nullptr);
    tav_calendar_dialog_pack_no_scroll (nullptr, label, TRUE, TRUE);
    tav_calendar_dialog_pack_with_defaults (nullptr, label);
    EXPECT_EQ (capture.count_criticals ("'TAV_IS_CALENDAR_DIALOG(dialog)' failed"), 7) << capture.dump ();
    tav_calendar_dialog_pack_no_scroll (dialog, nullptr, TRUE, TRUE);
    tav_calendar_dialog_pack_with_defaults (dialog, nullptr);
    EXPECT_EQ (capture.count_criticals ("'GTK_IS_WIDGET(widget)' failed"), 2) << capture.dump ();
    g_object_unref (label);
    g_object_unref (first);
    g_object_unref (second);
    gtk_widget_destroy (GTK_WIDGET (dialog));
}

/* Binding helpers ----------------------------------------------------------- */

TEST (WidgetBinding, CopiesByWidgetClassBothWays)
{
    REQUIRE_DISPLAY ();
    TavCalendarEntry *entry = tav_calendar_entry_new ();
    g_object_set (entry, "title", "Dentist", "location", NULL, "description", "Bring the card",
                  "all-day", TRUE, NULL);
    GtkWidget *title = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    GtkWidget *location = gtk_entry_new ();
    GtkWidget *description = kivo_text_view_new ();
    GtkWidget *all_day = gtk_check_button_new ();
    GtkWidget *label = gtk_label_new ("not an input");
    for (GtkWidget *w : {title, location, description, all_day, label})
        g_object_ref_sink (w);
    gtk_entry_set_text (GTK_ENTRY (location), "old text");

    LogCapture capture;
    EXPECT_TRUE (tav_copy_properties_to_widgets (G_OBJECT (entry), "title", title, "title", nullptr, "color", label,
                                                 "location", location, "description", description, "all-day",
                                                 all_day, NULL));
    EXPECT_STREQ (gtk_entry_get_text (GTK_ENTRY (title)), "Dentist");
    EXPECT_STREQ (gtk_entry_get_text (GTK_ENTRY (location)), "") << "a NULL string shows an empty entry";
    char *text = tav_kivo_text_view_get_text (KIVO_TEXT_VIEW (description));
    EXPECT_STREQ (text, "Bring the card");
    g_free (text);
    EXPECT_TRUE (gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (all_day)));
    EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Unsupported widget type: GtkLabel."), 1);
    EXPECT_EQ (capture.count_lines (LoggedLine::LibMessage, "Widget for title not found"), 0)
        << "a NULL widget is skipped silently towards the widgets";

    gtk_entry_set_text (GTK_ENTRY (title), "Dentist at 9");
    gtk_entry_set_text (GTK_ENTRY (location), "Main Street");
    gtk_text_view_set_text (GTK_TEXT_VIEW (description), NULL);
    gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (all_day), FALSE);
    capture.clear ();
    EXPECT_TRUE (tav_copy_widgets_to_properties (G_OBJECT (entry), "title", title, "location", nullptr, "color",
                                                 label, "location", location, "description", description,
                                                 "all-day", all_day, NULL));
    char *location_text = nullptr, *description_text = nullptr;
    gboolean all_day_value = TRUE;
    g_object_get (entry, "location", &location_text, "description", &description_text, "all-day", &all_day_value, NULL);
    EXPECT_EQ (std::string (tav_calendar_entry_get_title (entry)) + "|" + location_text + "|" + description_text + "|"
                   + (all_day_value ? "all-day" : "timed"),
               "Dentist at 9|Main Street||timed");
    g_free (location_text);
    g_free (description_text);
    EXPECT_EQ (capture.count_lines (LoggedLine::LibMessage, "Widget for location not found"), 1);
    EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Unsupported widget type: GtkLabel."), 1);

    EXPECT_FALSE (tav_copy_properties_to_widgets (nullptr, "title", title, NULL));
    EXPECT_FALSE (tav_copy_widgets_to_properties (nullptr, "title", title, NULL));
    EXPECT_EQ (capture.count_criticals ("'G_IS_OBJECT(object)' failed"), 2);
    for (GtkWidget *w : {title, location, description, all_day, label})
        g_object_unref (w);
    g_object_unref (entry);
}

TEST (WidgetBinding, TextViewsButtonsTreeViewsAndLists)
{
    REQUIRE_DISPLAY ();
    GtkWidget *plain = gtk_text_view_new ();
    GtkWidget *touch = kivo_text_view_new ();
    GtkWidget *button = kivo_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    for (GtkWidget *w : {plain, touch, button})
        g_object_ref_sink (w);

    tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (touch), "line one\nline two");
    tav_kivo_text_set_cursor_at_start (KIVO_TEXT_VIEW (touch));
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (touch));
    GtkTextIter cursor;
    gtk_text_buffer_get_iter_at_mark (buffer, &cursor, gtk_text_buffer_get_insert (buffer));
    EXPECT_EQ (gtk_text_iter_get_offset (&cursor), 0);
    gtk_text_view_set_text (GTK_TEXT_VIEW (plain), "plain");
    char *text = gtk_text_view_get_text (GTK_TEXT_VIEW (plain));
    EXPECT_STREQ (text, "plain");
    g_free (text);

    tav_kivo_button_set_value_from_time (KIVO_BUTTON (button), 9, 5);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), " 9:05");
    tav_kivo_button_set_value_from_date (KIVO_BUTTON (button), 2009, 2, 5);
    EXPECT_STREQ (kivo_button_get_value (KIVO_BUTTON (button)), "05.03.2009");

    GtkWidget *default_button = GTK_WIDGET (g_object_ref_sink (gtk_button_new_default ("OK")));
    EXPECT_TRUE (gtk_widget_get_visible (default_button) && !gtk_widget_get_can_focus (default_button));
    g_object_unref (default_button);

    /* Tree views: rows (value, position) 10/0, 20/1, 20/2. */
    GtkListStore *store = gtk_list_store_new (3, G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT);
    GtkWidget *tree = GTK_WIDGET (g_object_ref_sink (gtk_tree_view_new ()));
    gtk_tree_view_insert_column_with_attributes (GTK_TREE_VIEW (tree), -1, "", gtk_cell_renderer_text_new (), "text",
                                                 0, NULL);
    LogCapture capture;
    tav_tree_view_select_value_int (GTK_TREE_VIEW (tree), 1, 20);
    EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Empty model, value 20 not found."), 1);
    gtk_tree_view_set_model (GTK_TREE_VIEW (tree), GTK_TREE_MODEL (store));
    int position = 0;
    for (int v : {10, 20, 20})
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, "row", 1, v, 2, position++, -1);
    EXPECT_EQ (tav_tree_view_get_column_int (GTK_TREE_VIEW (tree), 1), -1) << "nothing selected";
    tav_tree_view_select_value_int (GTK_TREE_VIEW (tree), 1, 20);
    EXPECT_EQ (tav_tree_view_get_column_int (GTK_TREE_VIEW (tree), 2), 1) << "the first of the two matches";
    tav_tree_view_select_value_int (GTK_TREE_VIEW (tree), 1, 30);
    EXPECT_EQ (capture.count_lines (LoggedLine::LibWarning, "Value 30 not found."), 1);
    EXPECT_EQ (tav_tree_view_get_column_int (GTK_TREE_VIEW (tree), 1), 20) << "selection unchanged";

    /* The list helper drops exactly one reference of each element. */
    TavCalendarEntry *kept = tav_calendar_entry_new ();
    GList *list = g_list_append (nullptr, g_object_ref (kept));
    list = g_list_append (list, tav_calendar_entry_new ());
    tav_object_drop_list (list);
    tav_object_drop_list (nullptr);
    EXPECT_EQ (G_OBJECT (kept)->ref_count, 1u);
    g_object_unref (kept);

    /* Wrong widgets: one row per checked function. */
    tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (plain), "x");
    EXPECT_EQ (tav_kivo_text_view_get_text (KIVO_TEXT_VIEW (plain)), nullptr);
    tav_kivo_text_set_cursor_at_start (KIVO_TEXT_VIEW (plain));
    EXPECT_EQ (capture.count_criticals ("'KIVO_IS_TEXT_VIEW (text_view)' failed"), 3);
    gtk_text_view_set_text (GTK_TEXT_VIEW (button), "x");
    EXPECT_EQ (gtk_text_view_get_text (nullptr), nullptr);
    EXPECT_EQ (capture.count_criticals ("'GTK_IS_TEXT_VIEW(text_view)' failed"), 2);
    tav_tree_view_select_value_int (nullptr, 0, 1);
    EXPECT_EQ (tav_tree_view_get_column_int (GTK_TREE_VIEW (plain), 0), -1);
    EXPECT_EQ (capture.count_criticals ("'GTK_IS_TREE_VIEW (treeview)' failed"), 2);

    g_object_unref (store);
    for (GtkWidget *w : {plain, touch, button, tree})
        g_object_unref (w);
}
