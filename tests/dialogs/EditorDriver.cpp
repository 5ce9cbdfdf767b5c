#include "EditorDriver.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "../platform/PointerDriver.h"
#include "KivoBanner.h"
#include "KivoNote.h"
#include "KivoButton.h"
#include "KivoDateButton.h"
#include "KivoPannableArea.h"
#include "KivoPickerButton.h"
#include "TestSupport.h"

namespace tav::test {

namespace {

GtkWidget *find_named (GtkWidget *widget, const char *name)
{
    if (g_strcmp0 (gtk_widget_get_name (widget), name) == 0)
        return widget;
    GtkWidget *found = nullptr;
    if (GTK_IS_CONTAINER (widget)) {
        GList *children = gtk_container_get_children (GTK_CONTAINER (widget));
        for (GList *l = children; l && !found; l = l->next)
            found = find_named (GTK_WIDGET (l->data), name);
        g_list_free (children);
    }
    return found;
}

} // namespace

TavDate day_from_today (int days)
{
    TavDate date;
    tav_date_init_today (&date);
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    tav_calendar_processor_inc_date_by_days (processor, &date, days);
    g_object_unref (processor);
    return date;
}

EditorDriver::EditorDriver (GtkWidget *window, std::initializer_list<const char *> signal_names) : m_window (window)
{
    g_object_add_weak_pointer (G_OBJECT (window), reinterpret_cast<gpointer *> (&m_window));
    /* The editors' signals share a signature: the signal's name comes from
     * the emission itself. */
    for (const char *name : signal_names) {
        g_signal_connect (window, name, G_CALLBACK (+[] (GtkWidget *, TavCalendarEntry *e, gpointer d) {
            auto *driver = static_cast<EditorDriver *> (d);
            driver->signals.push_back (g_signal_name (g_signal_get_invocation_hint (driver->window ())->signal_id));
            driver->signal_entries.push_back (e);
            driver->signal_titles.push_back (driver->signals.back () + ":" + tav_calendar_entry_get_title (e));
        }), this);
    }
    g_signal_connect (window, "error", G_CALLBACK (+[] (GtkWidget *, const char *text, gpointer d) {
        static_cast<EditorDriver *> (d)->errors.push_back (text);
    }), this);
    gtk_window_set_default_size (GTK_WINDOW (window), 800, 1000);
    gtk_window_move (GTK_WINDOW (window), 0, 0);
    gtk_widget_show (window);
    run_main_loop_until ([this] { return gtk_widget_get_mapped (m_window); }, 3000);
    PointerDriver::wait (50);
}

EditorDriver::~EditorDriver ()
{
    if (m_answer_source)
        g_source_remove (m_answer_source);
    if (m_window) {
        g_object_remove_weak_pointer (G_OBJECT (m_window), reinterpret_cast<gpointer *> (&m_window));
        gtk_widget_destroy (m_window);
    }
    flush_events ();
}

bool EditorDriver::run_until_closed ()
{
    return run_main_loop_until ([this] { return !alive (); }, 3000);
}

GtkWidget *EditorDriver::field (const char *name) const
{
    return m_window ? find_named (m_window, name) : nullptr;
}

GtkWidget *EditorDriver::find (GtkWidget *window, const char *name)
{
    return find_named (window, name);
}

std::string EditorDriver::value_of (GtkWidget *window, const char *name)
{
    const char *text = kivo_button_get_value (KIVO_BUTTON (find_named (window, name)));
    return text ? text : "";
}

void EditorDriver::tap (const char *name)
{
    GtkWidget *widget = field (name);
    ASSERT_NE (widget, nullptr) << name;
    /* A banner over the top of the window would take the tap. */
    clear_banners ();
    kivo_pannable_area_scroll_to_child (KIVO_PANNABLE_AREA (TAV_CALENDAR_DIALOG (m_window)->pannable), widget);
    flush_events ();
    PointerDriver::tap_centre (widget);
    PointerDriver::wait (30);
}

void EditorDriver::key (guint keyval)
{
    gdk_test_simulate_key (m_window->window, -1, -1, keyval, GdkModifierType (0), GDK_KEY_PRESS);
    gdk_test_simulate_key (m_window->window, -1, -1, keyval, GdkModifierType (0), GDK_KEY_RELEASE);
    flush_events ();
}

void EditorDriver::type (const char *name, const char *text)
{
    tap (name);
    key (GDK_End);
    for (const char *c = text; *c; ++c)
        key (*c == ' ' ? GDK_space : gdk_unicode_to_keyval (static_cast<guchar> (*c)));
}

GtkWidget *EditorDriver::open_picker (const char *name)
{
    GtkWidget *button = field (name);
    tap (name);
    GtkWidget *dialog = nullptr;
    run_main_loop_until ([&] {
        dialog = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button));
        return dialog && gtk_widget_get_mapped (dialog);
    }, 3000);
    PointerDriver::wait (50);
    return dialog;
}

void EditorDriver::close_picker (GtkWidget *button, GtkWidget *dialog, bool press_done)
{
    if (press_done) {
        GList *buttons = gtk_container_get_children (GTK_CONTAINER (GTK_DIALOG (dialog)->action_area));
        GtkWidget *done = buttons ? GTK_WIDGET (g_list_last (buttons)->data) : nullptr;
        g_list_free (buttons);
        if (done)
            PointerDriver::tap_centre (done);
    }
    run_main_loop_until ([&] { return !kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button)); }, 3000);
    flush_events ();
}

std::vector<std::string> EditorDriver::rows (const char *name) const
{
    std::vector<std::string> out;
    KivoTouchSelector *selector = kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (field (name)));
    GtkTreeModel *model = kivo_touch_selector_get_model (selector, 0);
    GtkTreeIter iter;
    for (bool ok = gtk_tree_model_get_iter_first (model, &iter); ok; ok = gtk_tree_model_iter_next (model, &iter)) {
        char *text = nullptr;
        gtk_tree_model_get (model, &iter, 0, &text, -1);
        out.push_back (text ? text : "");
        g_free (text);
    }
    return out;
}

bool EditorDriver::choose (const char *name, const std::string &row_text)
{
    const std::vector<std::string> offered = rows (name);
    const auto it = std::find (offered.begin (), offered.end (), row_text);
    if (it == offered.end ())
        return false;
    GtkWidget *button = field (name);
    GtkWidget *dialog = open_picker (name);
    if (!dialog)
        return false;
    PointerDriver::wait (100);
    tap_selector_row (kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button)), int (it - offered.begin ()));
    close_picker (button, dialog, false);
    return true;
}

void EditorDriver::answer_next_note (bool ok)
{
    asked.clear ();
    m_answer_ok = ok;
    if (m_answer_source)
        g_source_remove (m_answer_source);
    m_answer_source = g_timeout_add (100, +[] (gpointer data) -> gboolean {
        auto *driver = static_cast<EditorDriver *> (data);
        GtkWidget *note = driver->m_window ? tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (driver->m_window))
                                           : nullptr;
        if (driver->m_window && (!note || !gtk_widget_get_mapped (note)))
            return TRUE;
        driver->m_answer_source = 0;
        if (!note)
            return FALSE;
        driver->asked = kivo_note_get_description (KIVO_NOTE (note));
        PointerDriver::tap_centre (driver->m_answer_ok ? kivo_note_get_ok_button (KIVO_NOTE (note))
                                        : kivo_note_get_cancel_button (KIVO_NOTE (note)));
        return FALSE;
    }, this);
}

void EditorDriver::choose_columns (const char *name, std::initializer_list<int> rows)
{
    GtkWidget *button = field (name);
    GtkWidget *dialog = open_picker (name);
    ASSERT_NE (dialog, nullptr) << name;
    KivoTouchSelector *selector = kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button));
    /* Last column first: a date's day is chosen once its month is known. */
    int column = int (rows.size ());
    for (auto row = std::rbegin (rows); row != std::rend (rows); ++row)
        kivo_touch_selector_set_active (selector, --column, *row);
    close_picker (button, dialog, true);
}

std::vector<std::string> EditorDriver::banners ()
{
    std::vector<std::string> out;
    GList *visible = kivo_banner_get_visible ();
    for (GList *l = visible; l; l = l->next)
        out.push_back (kivo_banner_get_text (GTK_WIDGET (l->data)));
    g_list_free (visible);
    return out;
}

void EditorDriver::clear_banners ()
{
    GList *visible = kivo_banner_get_visible ();
    for (GList *l = visible; l; l = l->next)
        gtk_widget_destroy (GTK_WIDGET (l->data));
    g_list_free (visible);
    flush_events ();
}

bool EditorDriver::has_banner (const char *text) const
{
    const std::vector<std::string> shown = banners ();
    return std::find (shown.begin (), shown.end (), text) != shown.end ();
}

} // namespace tav::test
