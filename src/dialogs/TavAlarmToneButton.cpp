/* libcalendarui - the alarm tone picker button */

#include "TavAlarmToneButton.h"

#include "KivoButton.h"
#include "KivoDialogs.h"
#include "KivoTouchSelector.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavTonePreview.h"

#include <glib/gstdio.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace {

/* Sounds of the freedesktop sound theme that work as an alarm, in the order
 * they are offered. */
const char *const kThemeSounds[] = {
    "alarm-clock-elapsed", "bell", "complete", "message-new-instant", "phone-incoming-call",
};

/* Response of the list's "Add tone" button. */
constexpr int kAddToneResponse = 1;

struct Tone {
    std::string name;
    std::string path;
};

/* "phone-incoming_call.oga" -> "Phone incoming call". */
std::string tone_name_from_path (const char *path)
{
    tav::GCharPtr base (g_filename_display_basename (path));
    std::string name = base.get ();
    const auto dot = name.rfind ('.');
    if (dot != std::string::npos && dot > 0)
        name.erase (dot);
    for (char &c : name) {
        if (c == '_' || c == '-')
            c = ' ';
    }
    if (!name.empty () && g_ascii_islower (name[0]))
        name[0] = g_ascii_toupper (name[0]);
    return name;
}

bool is_default_path (const char *path)
{
    return path && g_utf8_validate (path, -1, nullptr)
           && tav_compare_utf8_strings (path, TAV_ALARM_TONE_DEFAULT_PATH) == 0;
}

} // namespace

typedef struct _TavAlarmToneButtonPrivate TavAlarmToneButtonPrivate;

struct _TavAlarmToneButtonPrivate {
    std::vector<Tone> tones;
    size_t selected = 0;
    /* The open list and what is highlighted in it. */
    GtkWidget *dialog = nullptr;
    KivoTouchSelector *list = nullptr;
    size_t pending = 0;
    GtkWidget *chooser = nullptr;
    /* A press on the highlighted row (a tap there plays it again). */
    bool press_on_pending = false;
    double press_y = 0;
    /* The preview playing, 0 when none. */
    guint32 preview_id = 0;
};

struct _TavAlarmToneButton {
    KivoButton parent;
    TavAlarmToneButtonPrivate *priv;
};

typedef struct {
    KivoButtonClass parent_class;
} TavAlarmToneButtonClass;

enum {
    SIGNAL_TONE_CHANGED,
    N_SIGNALS
};

static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavAlarmToneButton, tav_alarm_tone_button, KIVO_TYPE_BUTTON)

/* Auxiliary functions */

/* The file a tone plays: the default tone is the platform's file where it
 * exists, else the tone we install. */
static std::string
file_of_tone (const Tone &tone)
{
    if (is_default_path (tone.path.c_str ()) && !g_file_test (TAV_ALARM_TONE_DEFAULT_PATH, G_FILE_TEST_EXISTS))
        return tav::default_tone_file ();
    return tone.path;
}

static void
show_selected (TavAlarmToneButton *button)
{
    auto *priv = button->priv;
    kivo_button_set_value (KIVO_BUTTON (button), priv->tones[priv->selected].name.c_str ());
}

static void
select_index (TavAlarmToneButton *button, size_t index)
{
    auto *priv = button->priv;
    if (index >= priv->tones.size () || index == priv->selected)
        return;
    priv->selected = index;
    show_selected (button);
    g_signal_emit (button, signals[SIGNAL_TONE_CHANGED], 0);
}

static long
find_tone (TavAlarmToneButton *button, const char *path)
{
    if (!path || is_default_path (path))
        return 0;
    const auto &tones = button->priv->tones;
    for (size_t i = 1; i < tones.size (); ++i) {
        if (tones[i].path == path)
            return static_cast<long> (i);
    }
    return -1;
}

static bool
play_tone (TavAlarmToneButton *button, size_t index)
{
    auto *priv = button->priv;
    tav_alarm_tone_button_stop_preview (button);
    const std::string file = file_of_tone (priv->tones[index]);
    if (g_access (file.c_str (), R_OK) != 0) {
        TAV_WARNING ("Cannot preview the alarm tone %s: %s", file.c_str (), g_strerror (errno));
        return false;
    }
    /* Attribute the sound to the open list when there is one. */
    GtkWidget *widget = priv->dialog ? priv->dialog : GTK_WIDGET (button);
    const guint32 id = tav::next_tone_preview_id ();
    std::string error;
    if (!tav::tone_player ().play (widget, id, file.c_str (), &error)) {
        TAV_WARNING ("Cannot preview the alarm tone %s: %s", file.c_str (), error.c_str ());
        return false;
    }
    priv->preview_id = id;
    return true;
}

static void
close_list (TavAlarmToneButton *button)
{
    auto *priv = button->priv;
    if (GtkWidget *chooser = std::exchange (priv->chooser, nullptr))
        gtk_widget_destroy (chooser);
    if (GtkWidget *dialog = std::exchange (priv->dialog, nullptr)) {
        priv->list = nullptr;
        gtk_widget_destroy (dialog);
    }
    tav_alarm_tone_button_stop_preview (button);
}

/* Callbacks */

static void
on_list_changed_cb (KivoTouchSelector *list, gint, gpointer data)
{
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (data);
    const gint row = kivo_touch_selector_get_active (list, 0);
    if (row < 0 || static_cast<size_t> (row) >= button->priv->tones.size ())
        return;
    button->priv->pending = static_cast<size_t> (row);
    play_tone (button, button->priv->pending);
}

static gboolean
on_list_press_cb (GtkWidget *view, GdkEventButton *event, gpointer data)
{
    auto *priv = TAV_ALARM_TONE_BUTTON (data)->priv;
    GtkTreePath *path = nullptr;
    priv->press_on_pending = false;
    if (gtk_tree_view_get_path_at_pos (GTK_TREE_VIEW (view), static_cast<int> (event->x), static_cast<int> (event->y),
                                       &path, nullptr, nullptr, nullptr)) {
        priv->press_on_pending = static_cast<size_t> (gtk_tree_path_get_indices (path)[0]) == priv->pending;
        gtk_tree_path_free (path);
    }
    priv->press_y = event->y_root;
    return FALSE;
}

static gboolean
on_list_release_cb (GtkWidget *, GdkEventButton *event, gpointer data)
{
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (data);
    auto *priv = button->priv;
    /* A tap, not the end of a pan, on the tone already highlighted. */
    if (std::exchange (priv->press_on_pending, false) && std::abs (event->y_root - priv->press_y) < KIVO_MARGIN_DOUBLE)
        play_tone (button, priv->pending);
    return FALSE;
}

static void
on_chooser_response_cb (GtkDialog *chooser, gint response, gpointer data)
{
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (data);
    auto *priv = button->priv;
    tav::GCharPtr file (response == GTK_RESPONSE_OK ? gtk_file_chooser_get_filename (GTK_FILE_CHOOSER (chooser))
                                                   : nullptr);
    priv->chooser = nullptr;
    gtk_widget_destroy (GTK_WIDGET (chooser));
    if (!file || !priv->list)
        return;
    const size_t before = priv->tones.size ();
    if (!tav_alarm_tone_button_add_tone (button, file.get ()))
        return;
    if (priv->tones.size () > before)
        kivo_touch_selector_append_text (priv->list, priv->tones.back ().name.c_str ());
    /* Highlighting the tone plays it, as a tap would. */
    kivo_touch_selector_set_active (priv->list, 0, static_cast<gint> (find_tone (button, file.get ())));
}

static void
open_chooser (TavAlarmToneButton *button)
{
    auto *priv = button->priv;
    if (priv->chooser)
        return;
    tav_alarm_tone_button_stop_preview (button);
    priv->chooser = kivo_file_chooser_dialog_new (GTK_WINDOW (priv->dialog), GTK_FILE_CHOOSER_ACTION_OPEN);
    gtk_window_set_title (GTK_WINDOW (priv->chooser), TAV_CAL ("cal_ti_add_alarm_tone"));
    gtk_window_set_modal (GTK_WINDOW (priv->chooser), TRUE);
    GtkFileFilter *filter = gtk_file_filter_new ();
    gtk_file_filter_set_name (filter, TAV_CAL ("cal_va_sound_files"));
    for (const char *pattern : { "*.wav", "*.WAV", "*.ogg", "*.OGG", "*.oga", "*.OGA" })
        gtk_file_filter_add_pattern (filter, pattern);
    gtk_file_chooser_add_filter (GTK_FILE_CHOOSER (priv->chooser), filter);
    g_signal_connect (priv->chooser, "response", G_CALLBACK (on_chooser_response_cb), button);
    gtk_widget_show (priv->chooser);
}

static void
on_list_response_cb (GtkDialog *, gint response, gpointer data)
{
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (data);
    if (response == kAddToneResponse) {
        open_chooser (button);
        return;
    }
    const size_t pending = button->priv->pending;
    close_list (button);
    if (response == GTK_RESPONSE_OK)
        select_index (button, pending);
}

static void
on_list_destroy_cb (GtkWidget *dialog, gpointer data)
{
    /* Closed from outside (its window destroyed): forget it and stop the sound. */
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (data);
    if (button->priv->dialog == dialog) {
        button->priv->dialog = nullptr;
        button->priv->list = nullptr;
        close_list (button);
    }
}

/* GObject and widget overrides */

static void
tav_alarm_tone_button_clicked (GtkButton *button)
{
    tav_alarm_tone_button_open_picker (TAV_ALARM_TONE_BUTTON (button));
}

static void
tav_alarm_tone_button_destroy (GtkObject *object)
{
    close_list (TAV_ALARM_TONE_BUTTON (object));
    GTK_OBJECT_CLASS (tav_alarm_tone_button_parent_class)->destroy (object);
}

static void
tav_alarm_tone_button_finalize (GObject *object)
{
    TAV_ALARM_TONE_BUTTON (object)->priv->~TavAlarmToneButtonPrivate ();
    G_OBJECT_CLASS (tav_alarm_tone_button_parent_class)->finalize (object);
}

static void
tav_alarm_tone_button_class_init (TavAlarmToneButtonClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = tav_alarm_tone_button_finalize;
    GTK_OBJECT_CLASS (klass)->destroy = tav_alarm_tone_button_destroy;
    GTK_BUTTON_CLASS (klass)->clicked = tav_alarm_tone_button_clicked;

    signals[SIGNAL_TONE_CHANGED] = g_signal_new ("tone-changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
                                                 nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
}

static void
tav_alarm_tone_button_init (TavAlarmToneButton *button)
{
    void *memory = tav_alarm_tone_button_get_instance_private (button);
    auto *priv = new (memory) TavAlarmToneButtonPrivate ();
    button->priv = priv;
    priv->tones.push_back ({ TAV_CAL ("cal_fi_set_alarm_tone1"), TAV_ALARM_TONE_DEFAULT_PATH });
    /* The sound theme's alarm-like sounds, from the first data directory
     * that has each. */
    std::vector<std::string> dirs { g_get_user_data_dir () };
    for (const char *const *dir = g_get_system_data_dirs (); *dir; ++dir)
        dirs.emplace_back (*dir);
    for (const char *sound : kThemeSounds) {
        const std::string file = std::string ("sounds/freedesktop/stereo/") + sound + ".oga";
        for (const std::string &dir : dirs) {
            tav::GCharPtr path (g_build_filename (dir.c_str (), file.c_str (), nullptr));
            if (g_file_test (path.get (), G_FILE_TEST_IS_REGULAR)) {
                priv->tones.push_back ({ tone_name_from_path (path.get ()), path.get () });
                break;
            }
        }
    }
}

/* Public API */

GtkWidget *
tav_alarm_tone_button_new (void)
{
    GtkWidget *button = GTK_WIDGET (g_object_new (TAV_TYPE_ALARM_TONE_BUTTON, "size", KIVO_SIZE_FINGER_HEIGHT,
                                                  "arrangement", KIVO_BUTTON_ARRANGEMENT_VERTICAL, nullptr));
    kivo_button_set_title (KIVO_BUTTON (button), TAV_CAL ("cal_fi_alarm_tone"));
    show_selected (TAV_ALARM_TONE_BUTTON (button));
    return button;
}

void
tav_alarm_tone_button_set_title (TavAlarmToneButton *button, const char *title)
{
    g_return_if_fail (TAV_IS_ALARM_TONE_BUTTON (button));
    kivo_button_set_title (KIVO_BUTTON (button), title);
}

gboolean
tav_alarm_tone_button_add_tone (TavAlarmToneButton *button, const char *path)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), FALSE);
    g_return_val_if_fail (path != NULL, FALSE);
    if (find_tone (button, path) >= 0)
        return TRUE;
    if (!g_file_test (path, G_FILE_TEST_IS_REGULAR) || g_access (path, R_OK) != 0) {
        tav::GCharPtr shown (g_filename_display_name (path));
        TAV_WARNING ("Alarm tone %s is not a readable file", shown.get ());
        return FALSE;
    }
    button->priv->tones.push_back ({ tone_name_from_path (path), path });
    return TRUE;
}

gboolean
tav_alarm_tone_button_set_selected_tone (TavAlarmToneButton *button, const char *path)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), FALSE);
    const long index = find_tone (button, path);
    if (index < 0)
        return FALSE;
    select_index (button, static_cast<size_t> (index));
    return TRUE;
}

const char *
tav_alarm_tone_button_get_selected_tone_path (TavAlarmToneButton *button)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), NULL);
    return button->priv->tones[button->priv->selected].path.c_str ();
}

const char *
tav_alarm_tone_button_get_selected_tone_name (TavAlarmToneButton *button)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), NULL);
    return button->priv->tones[button->priv->selected].name.c_str ();
}

int
tav_alarm_tone_button_get_tone_count (TavAlarmToneButton *button)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), 0);
    return static_cast<int> (button->priv->tones.size ());
}

gboolean
tav_alarm_tone_button_preview (TavAlarmToneButton *button)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), FALSE);
    return play_tone (button, button->priv->selected);
}

void
tav_alarm_tone_button_stop_preview (TavAlarmToneButton *button)
{
    g_return_if_fail (TAV_IS_ALARM_TONE_BUTTON (button));
    if (const guint32 id = std::exchange (button->priv->preview_id, 0))
        tav::tone_player ().cancel (GTK_WIDGET (button), id);
}

void
tav_alarm_tone_button_open_picker (TavAlarmToneButton *button)
{
    g_return_if_fail (TAV_IS_ALARM_TONE_BUTTON (button));
    auto *priv = button->priv;
    if (priv->dialog)
        return;
    const char *title = kivo_button_get_title (KIVO_BUTTON (button));
    GtkWidget *dialog = gtk_dialog_new ();
    priv->dialog = dialog;
    gtk_window_set_title (GTK_WINDOW (dialog), title ? title : "");
    gtk_window_set_modal (GTK_WINDOW (dialog), TRUE);
    gtk_dialog_set_has_separator (GTK_DIALOG (dialog), FALSE);
    GtkWidget *toplevel = gtk_widget_get_toplevel (GTK_WIDGET (button));
    if (GTK_IS_WINDOW (toplevel))
        gtk_window_set_transient_for (GTK_WINDOW (dialog), GTK_WINDOW (toplevel));
    gtk_window_set_position (GTK_WINDOW (dialog), GTK_WIN_POS_CENTER_ON_PARENT);
    gtk_window_set_default_size (GTK_WINDOW (dialog), 600, 420);
    kivo_style_decorate_dialog (dialog, title);
    GtkWidget *add = gtk_dialog_add_button (GTK_DIALOG (dialog), TAV_CAL ("cal_bd_add_alarm_tone"), kAddToneResponse);
    GtkWidget *done = gtk_dialog_add_button (GTK_DIALOG (dialog), TAV_KIVO ("wdgt_bd_done"), GTK_RESPONSE_OK);
    for (GtkWidget *b : { add, done })
        gtk_widget_set_size_request (b, 180, KIVO_FINGER_HEIGHT);

    priv->list = KIVO_TOUCH_SELECTOR (kivo_touch_selector_new_text ());
    for (const Tone &tone : priv->tones)
        kivo_touch_selector_append_text (priv->list, tone.name.c_str ());
    kivo_touch_selector_set_active (priv->list, 0, static_cast<gint> (priv->selected));
    priv->pending = priv->selected;
    g_signal_connect (priv->list, "changed", G_CALLBACK (on_list_changed_cb), button);
    GtkWidget *view = kivo_touch_selector_get_column_view (priv->list, 0);
    g_signal_connect (view, "button-press-event", G_CALLBACK (on_list_press_cb), button);
    g_signal_connect (view, "button-release-event", G_CALLBACK (on_list_release_cb), button);
    GtkWidget *content = gtk_dialog_get_content_area (GTK_DIALOG (dialog));
    gtk_box_pack_start (GTK_BOX (content), GTK_WIDGET (priv->list), TRUE, TRUE, 0);
    g_signal_connect (dialog, "response", G_CALLBACK (on_list_response_cb), button);
    g_signal_connect (dialog, "destroy", G_CALLBACK (on_list_destroy_cb), button);
    gtk_widget_show_all (dialog);
    kivo_touch_selector_center_on_selected (priv->list);
}

GtkWidget *
tav_alarm_tone_button_get_picker (TavAlarmToneButton *button)
{
    g_return_val_if_fail (TAV_IS_ALARM_TONE_BUTTON (button), NULL);
    return button->priv->dialog;
}
