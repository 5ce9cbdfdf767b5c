#include "EditorDriver.h"

#include <gdk/gdkkeysyms.h>

#include "KivoNote.h"
#include "KivoPickerButton.h"
#include "KivoTouchSelector.h"
#include "../platform/PointerDriver.h"
#include "TestSupport.h"

namespace tav::test {

GtkWidget *find_named (GtkWidget *root, const char *name)
{
    if (g_strcmp0 (gtk_widget_get_name (root), name) == 0)
        return root;
    GtkWidget *found = nullptr;
    if (GTK_IS_CONTAINER (root)) {
        GList *children = gtk_container_get_children (GTK_CONTAINER (root));
        for (GList *l = children; l && !found; l = l->next)
            found = find_named (GTK_WIDGET (l->data), name);
        g_list_free (children);
    }
    return found;
}

void show_editor (GtkWidget *dialog)
{
    gtk_window_set_default_size (GTK_WINDOW (dialog), 800, 480);
    gtk_window_move (GTK_WINDOW (dialog), 0, 0);
    gtk_widget_show (dialog);
    gtk_window_present (GTK_WINDOW (dialog));
    run_main_loop_until ([&] { return gtk_widget_get_mapped (dialog); }, 3000);
    PointerDriver::wait (100);
}

static void tap_middle (GtkWidget *widget)
{
    PointerDriver::tap (widget, widget->allocation.width / 2, widget->allocation.height / 2);
    PointerDriver::wait (50);
}

bool tap_named (GtkWidget *dialog, const char *name)
{
    GtkWidget *widget = find_named (dialog, name);
    if (!widget || !gtk_widget_get_mapped (widget))
        return false;
    tap_middle (widget);
    return true;
}

void type_text (GtkWidget *dialog, const std::string &text)
{
    const char *p = text.c_str ();
    while (*p) {
        const gunichar c = g_utf8_get_char (p);
        p = g_utf8_next_char (p);
        const guint keyval = c == '\n' ? GDK_Return : gdk_unicode_to_keyval (c);
        gdk_test_simulate_key (dialog->window, 10, 10, keyval, GdkModifierType (0), GDK_KEY_PRESS);
        gdk_test_simulate_key (dialog->window, 10, 10, keyval, GdkModifierType (0), GDK_KEY_RELEASE);
    }
    flush_events ();
}

void press_key (GtkWidget *dialog, guint keyval)
{
    gdk_test_simulate_key (dialog->window, 10, 10, keyval, GdkModifierType (0), GDK_KEY_PRESS);
    gdk_test_simulate_key (dialog->window, 10, 10, keyval, GdkModifierType (0), GDK_KEY_RELEASE);
    flush_events ();
}

namespace {

struct Answer {
    GtkWidget *dialog;
    bool ok;
    std::string *question;
};

gboolean answer_cb (gpointer data)
{
    auto *answer = static_cast<Answer *> (data);
    GtkWidget *note = tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (answer->dialog));
    if (!note || !gtk_widget_get_mapped (note))
        return TRUE;
    if (answer->question)
        *answer->question = kivo_note_get_description (KIVO_NOTE (note));
    GtkWidget *button = answer->ok ? kivo_note_get_ok_button (KIVO_NOTE (note))
                                   : kivo_note_get_cancel_button (KIVO_NOTE (note));
    PointerDriver::wait (50);
    tap_middle (button);
    delete answer;
    return FALSE;
}

}  // namespace

void answer_next_question (GtkWidget *dialog, bool ok, std::string *question)
{
    g_timeout_add (30, answer_cb, new Answer {dialog, ok, question});
}

bool pick_calendar (GtkWidget *dialog, const char *title)
{
    GtkWidget *button = find_named (dialog, "calendar-button");
    if (!button || !tap_named (dialog, "calendar-button"))
        return false;
    GtkWidget *picker = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button));
    if (!picker || !run_main_loop_until ([&] { return gtk_widget_get_mapped (picker); }, 3000))
        return false;
    PointerDriver::wait (100);
    KivoTouchSelector *selector = kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button));
    GtkWidget *view = kivo_touch_selector_get_column_view (selector, 0);
    GtkTreeModel *model = gtk_tree_view_get_model (GTK_TREE_VIEW (view));
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first (model, &iter); more; more = gtk_tree_model_iter_next (model, &iter)) {
        gchar *text = nullptr;
        gtk_tree_model_get (model, &iter, 0, &text, -1);
        const bool match = g_strcmp0 (text, title) == 0;
        g_free (text);
        if (!match)
            continue;
        GtkTreePath *path = gtk_tree_model_get_path (model, &iter);
        GdkRectangle cell;
        gtk_tree_view_get_background_area (GTK_TREE_VIEW (view), path, nullptr, &cell);
        gtk_tree_path_free (path);
        int x = 0, y = 0;
        gtk_tree_view_convert_bin_window_to_widget_coords (GTK_TREE_VIEW (view), cell.x + 40, cell.y + cell.height / 2,
                                                           &x, &y);
        PointerDriver::tap (view, x, y);
        PointerDriver::wait (100);
        return true;
    }
    return false;
}

void SignalLog::watch (GtkWidget *dialog, const char *const *signals)
{
    for (const char *const *s = signals; *s; ++s) {
        auto *name = const_cast<char *> (*s);
        g_object_set_data (G_OBJECT (dialog), "signal-log", this);
        g_signal_connect_data (dialog, name, G_CALLBACK (+[] (GtkWidget *widget, TavCalendarEntry *entry, gpointer data) {
            auto *log = static_cast<SignalLog *> (g_object_get_data (G_OBJECT (widget), "signal-log"));
            log->lines.push_back (std::string (static_cast<const char *> (data)) + ":"
                                  + tav_calendar_entry_get_title (entry));
        }), name, nullptr, GConnectFlags (0));
    }
}

std::string SignalLog::joined () const
{
    std::string out;
    for (const std::string &line : lines)
        out += (out.empty () ? "" : " ") + line;
    return out;
}

DestroyWatch::DestroyWatch (GtkWidget *widget)
{
    g_signal_connect (widget, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer flag) {
        *static_cast<bool *> (flag) = true;
    }), &destroyed);
}

}  // namespace tav::test
