/* tav-gallery: every widget of the touch platform layer in one stacked
 * window, for looking at the layer and for screenshots.
 *
 *   tav-gallery                    opens the window
 *   tav-gallery --screenshot DIR   renders DIR/gallery.png (and views of the
 *                                  app menu, a picker and a note) and exits
 */

#include "KivoAppMenu.h"
#include "KivoBanner.h"
#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "KivoNote.h"
#include "KivoPannableArea.h"
#include "KivoPickerButton.h"
#include "KivoStackableWindow.h"
#include "KivoTapAndHold.h"

#include <cstdio>
#include <string>

namespace {

struct Gallery {
    GtkWidget *window = nullptr;
    GtkWidget *area = nullptr;
    GtkWidget *picker = nullptr;
    GtkWidget *date = nullptr;
    GtkWidget *list = nullptr;
};

GtkWidget *
section (const char *text)
{
    GtkWidget *label = gtk_label_new (text);
    gtk_widget_set_name (label, "kivo-secondary");
    gtk_misc_set_alignment (GTK_MISC (label), 0.0, 1.0);
    gtk_misc_set_padding (GTK_MISC (label), 4, 6);
    return label;
}

GtkWidget *
pair (GtkWidget *left, GtkWidget *right)
{
    GtkWidget *row = gtk_hbox_new (TRUE, KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (row), left, TRUE, TRUE, 0);
    gtk_box_pack_start (GTK_BOX (row), right, TRUE, TRUE, 0);
    return row;
}

GtkWidget *
build_menu ()
{
    GtkWidget *menu = kivo_app_menu_new ();
    GSList *group = nullptr;
    for (const char *label : { "Month", "Week", "Agenda" }) {
        GtkWidget *toggle = gtk_radio_button_new_with_label (group, label);
        group = gtk_radio_button_get_group (GTK_RADIO_BUTTON (toggle));
        kivo_app_menu_add_filter (KIVO_APP_MENU (menu), GTK_BUTTON (toggle));
    }
    for (const char *label : { "Previous month", "Next month", "Jump to today", "Jump to date", "Go to tasks",
                               "Go to notes", "New event", "Settings" }) {
        GtkWidget *item = gtk_button_new_with_label (label);
        kivo_app_menu_append (KIVO_APP_MENU (menu), GTK_BUTTON (item));
    }
    gtk_widget_show_all (GTK_WIDGET (menu));
    gtk_widget_hide (GTK_WIDGET (menu));
    return menu;
}

GtkWidget *
build_list ()
{
    GtkListStore *store = gtk_list_store_new (2, G_TYPE_STRING, G_TYPE_STRING);
    const char *rows[][2] = {
        { "09:00", "Stand-up meeting" }, { "10:30", "Dentist" }, { "12:00", "Lunch with Maria" },
        { "14:00", "Design review" },    { "16:15", "Pick up the bike" }, { "18:00", "Football practice" },
        { "20:00", "Call home" },        { "21:30", "Read" },
    };
    for (auto &row : rows)
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, row[0], 1, row[1], -1);
    GtkWidget *view = gtk_tree_view_new_with_model (GTK_TREE_MODEL (store));
    g_object_unref (store);
    gtk_tree_view_set_headers_visible (GTK_TREE_VIEW (view), FALSE);
    GtkCellRenderer *time = gtk_cell_renderer_text_new ();
    g_object_set (time, "height", KIVO_FINGER_HEIGHT, "xpad", 16, "foreground", "#1E6FD9", nullptr);
    gtk_tree_view_insert_column_with_attributes (GTK_TREE_VIEW (view), -1, nullptr, time, "text", 0, nullptr);
    GtkCellRenderer *title = gtk_cell_renderer_text_new ();
    gtk_tree_view_insert_column_with_attributes (GTK_TREE_VIEW (view), -1, nullptr, title, "text", 1, nullptr);
    GtkWidget *menu = kivo_gtk_menu_new ();
    for (const char *label : { "Edit", "Delete" })
        gtk_menu_shell_append (GTK_MENU_SHELL (menu), gtk_menu_item_new_with_label (label));
    gtk_widget_tap_and_hold_setup (view, menu, nullptr, KIVO_TAP_AND_HOLD_NONE);
    return view;
}

void
build (Gallery &gallery)
{
    gallery.window = kivo_stackable_window_new ();
    gtk_window_set_title (GTK_WINDOW (gallery.window), "Touch platform gallery");
    kivo_stackable_window_set_main_menu (KIVO_STACKABLE_WINDOW (gallery.window), KIVO_APP_MENU (build_menu ()));
    g_signal_connect (gallery.window, "delete-event", G_CALLBACK (gtk_main_quit), nullptr);

    GtkWidget *columns = gtk_hbox_new (FALSE, KIVO_MARGIN_DOUBLE);
    gtk_container_set_border_width (GTK_CONTAINER (columns), KIVO_MARGIN_DOUBLE);

    /* Left: the controls, in a pannable area. */
    GtkWidget *box = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (box), 4);
    gtk_box_pack_start (GTK_BOX (box), section ("Buttons with title and value"), FALSE, FALSE, 0);
    GtkWidget *calendars = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL,
                                                      "Calendars", "3 calendars visible");
    GtkWidget *tone = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                 "Alarm tone", "Chime");
    gtk_box_pack_start (GTK_BOX (box), pair (calendars, tone), FALSE, FALSE, 0);

    gtk_box_pack_start (GTK_BOX (box), section ("Pickers"), FALSE, FALSE, 0);
    gallery.picker = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    kivo_button_set_title (KIVO_BUTTON (gallery.picker), "Remove items");
    GtkWidget *selector = kivo_touch_selector_new_text ();
    for (const char *row : { "Never", "1 week", "2 weeks", "1 month", "1 year" })
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (selector), row);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (gallery.picker), KIVO_TOUCH_SELECTOR (selector));
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (gallery.picker), 2);
    GtkWidget *week = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    kivo_button_set_title (KIVO_BUTTON (week), "Week starts on");
    GtkWidget *week_selector = kivo_touch_selector_new_text ();
    for (const char *row : { "Monday", "Sunday" })
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (week_selector), row);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (week), KIVO_TOUCH_SELECTOR (week_selector));
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (week), 0);
    gtk_box_pack_start (GTK_BOX (box), pair (gallery.picker, week), FALSE, FALSE, 0);
    GtkWidget *date = gallery.date = kivo_date_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    kivo_date_button_set_date (KIVO_DATE_BUTTON (date), 2026, 10, 23);
    GtkWidget *time = kivo_time_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_VERTICAL);
    kivo_time_button_set_time (KIVO_TIME_BUTTON (time), 14, 30);
    gtk_box_pack_start (GTK_BOX (box), pair (date, time), FALSE, FALSE, 0);

    gtk_box_pack_start (GTK_BOX (box), section ("Check button"), FALSE, FALSE, 0);
    GtkWidget *check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, "Hide done tasks");
    kivo_check_button_set_active (KIVO_CHECK_BUTTON (check), TRUE);
    GtkWidget *allday = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, "All day");
    gtk_box_pack_start (GTK_BOX (box), pair (check, allday), FALSE, FALSE, 0);

    gtk_box_pack_start (GTK_BOX (box), section ("Entries and text view"), FALSE, FALSE, 0);
    GtkWidget *title = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    kivo_entry_set_placeholder (KIVO_ENTRY (title), "Title");
    GtkWidget *location = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    kivo_entry_set_text (KIVO_ENTRY (location), "Meeting room 2");
    gtk_box_pack_start (GTK_BOX (box), pair (title, location), FALSE, FALSE, 0);
    GtkWidget *description = kivo_text_view_new ();
    kivo_text_view_set_placeholder (KIVO_TEXT_VIEW (description), "Description");
    gtk_widget_set_size_request (description, -1, 110);
    GtkWidget *frame = gtk_frame_new (nullptr);
    gtk_frame_set_shadow_type (GTK_FRAME (frame), GTK_SHADOW_NONE);
    gtk_container_add (GTK_CONTAINER (frame), description);
    gtk_box_pack_start (GTK_BOX (box), frame, FALSE, FALSE, 0);

    gtk_box_pack_start (GTK_BOX (box), section ("Plain GTK buttons in the same style"), FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (box), pair (gtk_button_new_with_label ("Delete"), gtk_button_new_with_label ("Save")),
                        FALSE, FALSE, 0);

    gallery.area = kivo_pannable_area_new ();
    g_object_set (gallery.area, "mov_mode", KIVO_MOVEMENT_MODE_VERTICAL, "hovershoot_max", 0,
                  "vovershoot_max", 80, "hscrollbar_policy", GTK_POLICY_NEVER, nullptr);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (gallery.area), box);
    gtk_box_pack_start (GTK_BOX (columns), gallery.area, TRUE, TRUE, 0);

    /* Right: a list in its own pannable area (press and hold a row). */
    GtkWidget *right = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (right), section ("Pannable list (hold a row)"), FALSE, FALSE, 0);
    GtkWidget *list_area = kivo_pannable_area_new ();
    g_object_set (list_area, "vovershoot_max", 50, "hovershoot_max", 0, nullptr);
    gallery.list = build_list ();
    gtk_container_add (GTK_CONTAINER (list_area), gallery.list);
    gtk_box_pack_start (GTK_BOX (right), list_area, TRUE, TRUE, 0);
    gtk_widget_set_size_request (right, 300, -1);
    gtk_box_pack_start (GTK_BOX (columns), right, FALSE, FALSE, 0);

    gtk_container_add (GTK_CONTAINER (gallery.window), columns);
    gtk_widget_show_all (gallery.window);
}

void
settle (int rounds = 30)
{
    for (int i = 0; i < rounds; i++) {
        while (gtk_events_pending ())
            gtk_main_iteration_do (FALSE);
        gdk_display_sync (gdk_display_get_default ());
        g_usleep (10000);
    }
}

bool
capture (GtkWidget *window, const std::string &path)
{
    settle ();
    int x = 0, y = 0, width = 0, height = 0;
    gdk_window_get_origin (window->window, &x, &y);
    gdk_drawable_get_size (window->window, &width, &height);
    GdkWindow *root = gdk_get_default_root_window ();
    GdkPixbuf *pixbuf = gdk_pixbuf_get_from_drawable (nullptr, root, nullptr, x, y, 0, 0, width, height);
    if (!pixbuf)
        return false;
    GError *error = nullptr;
    const bool saved = gdk_pixbuf_save (pixbuf, path.c_str (), "png", &error, nullptr);
    if (!saved) {
        std::fprintf (stderr, "tav-gallery: %s\n", error->message);
        g_error_free (error);
    } else {
        std::printf ("%s\n", path.c_str ());
    }
    g_object_unref (pixbuf);
    return saved;
}

int
screenshots (Gallery &gallery, const std::string &dir)
{
    g_mkdir_with_parents (dir.c_str (), 0755);
    GtkWidget *window = gallery.window;
    bool ok = true;

    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (gallery.area), -1, 0);
    kivo_banner_show_information (window, nullptr, "Event saved");
    kivo_banner_show_information (window, nullptr, "Alarm time cannot be in the past");
    ok &= capture (window, dir + "/gallery.png");
    GList *banners = kivo_banner_get_visible ();
    for (GList *it = banners; it; it = it->next)
        gtk_widget_destroy (GTK_WIDGET (it->data));
    g_list_free (banners);

    kivo_stackable_window_open_main_menu (KIVO_STACKABLE_WINDOW (window));
    ok &= capture (window, dir + "/gallery-menu.png");
    kivo_app_menu_popdown (kivo_stackable_window_get_main_menu (KIVO_STACKABLE_WINDOW (window)));

    kivo_picker_button_open_picker (KIVO_PICKER_BUTTON (gallery.picker));
    ok &= capture (window, dir + "/gallery-picker.png");
    gtk_dialog_response (GTK_DIALOG (kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (gallery.picker))),
                         GTK_RESPONSE_CANCEL);

    kivo_picker_button_open_picker (KIVO_PICKER_BUTTON (gallery.date));
    ok &= capture (window, dir + "/gallery-date.png");
    gtk_dialog_response (GTK_DIALOG (kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (gallery.date))),
                         GTK_RESPONSE_CANCEL);

    GtkAdjustment *v = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (gallery.area));
    kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (gallery.area), -1, static_cast<int> (v->upper));
    ok &= capture (window, dir + "/gallery-bottom.png");

    GtkWidget *stacked = kivo_stackable_window_new ();
    gtk_window_set_title (GTK_WINDOW (stacked), "Monday 23 November 2026 - a stacked window covers the one below");
    GtkWidget *message = gtk_label_new ("A pushed window takes the place of the one below.\n"
                                        "Its back button returns there.");
    gtk_container_add (GTK_CONTAINER (stacked), message);
    gtk_widget_show_all (stacked);
    ok &= capture (stacked, dir + "/gallery-stacked.png");
    gtk_widget_destroy (stacked);

    GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (window), "Delete the event \"Design review\"?");
    gtk_widget_show (note);
    ok &= capture (window, dir + "/gallery-note.png");
    gtk_widget_destroy (note);

    gtk_widget_destroy (window);
    return ok ? 0 : 1;
}

} // namespace

int
main (int argc, char **argv)
{
    gtk_init (&argc, &argv);
    std::string screenshot_dir;
    for (int i = 1; i < argc; i++) {
        if (g_str_equal (argv[i], "--screenshot") && i + 1 < argc)
            screenshot_dir = argv[++i];
        else if (g_str_equal (argv[i], "--help")) {
            std::printf ("usage: %s [--screenshot DIR]\n", argv[0]);
            return 0;
        }
    }
    Gallery gallery;
    build (gallery);
    if (!screenshot_dir.empty ())
        return screenshots (gallery, screenshot_dir);
    gtk_main ();
    return 0;
}
