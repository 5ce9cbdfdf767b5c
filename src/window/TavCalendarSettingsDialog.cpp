/* libcalendarui - the settings dialog */

#include "TavCalendarSettingsDialog.h"

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoPickerButton.h"
#include "KivoTouchSelector.h"
#include "TavAlarmToneButton.h"
#include "TavCalendarDialog.h"
#include "TavEditorSupport.h"
#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"

#include <cstdarg>
#include <new>
#include <string>

namespace {

/* Label messages of the values the pickers show, by value. */
const char *value_label_id (int value)
{
    switch (value) {
    case SettingsValueMonday: return "cal_va_monday";
    case SettingsValueSunday: return "cal_va_sunday";
    case SettingsValueNever: return "cal_va_never";
    case SettingsValueOneWeek: return "cal_va_older_1_week";
    case SettingsValueTwoWeeks: return "cal_va_older_2_weeks";
    case SettingsValueOneMonth: return "cal_va_older_1_month";
    case SettingsValueOneYear: return "cal_va_older_1_year";
    default: return nullptr;
    }
}

/* Row of a value in its picker. */
int value_position (int value)
{
    switch (value) {
    case SettingsValueWeekView: return 1;
    case SettingsValueAgendaView: return 2;
    case SettingsValueSunday: return 1;
    case SettingsValueOneWeek: return 1;
    case SettingsValueTwoWeeks: return 2;
    case SettingsValueOneMonth: return 3;
    case SettingsValueOneYear: return 4;
    default: return 0;
    }
}

/* Whether @value is one @id takes; ids the dialog does not show take any. */
bool value_belongs (int id, int value)
{
    switch (id) {
    case SettingsWeekStart: return value == SettingsValueMonday || value == SettingsValueSunday;
    case SettingsHideDoneTasks: return value == SettingsValueNo || value == SettingsValueYes;
    case SettingsRemoveItems: return value >= SettingsValueNever && value <= SettingsValueOneYear;
    default: return true;
    }
}

bool is_known_id (int id)
{
    return id >= SettingsFirstBoot && id <= SettingsDeviceCalendarNameChanged;
}

const char *id_nick (int id)
{
    GEnumClass *klass = static_cast<GEnumClass *> (g_type_class_ref (TAV_TYPE_CALENDAR_SETTINGS_PROPERTY_ID));
    GEnumValue *value = g_enum_get_value (klass, id);
    const char *nick = value ? value->value_nick : "?";
    g_type_class_unref (klass);
    return nick;
}

} // namespace

typedef struct _TavCalendarSettingsDialogPrivate TavCalendarSettingsDialogPrivate;

struct _TavCalendarSettingsDialogPrivate {
    bool disposed = false;
    GtkWidget *alarm_tone_button = nullptr;
    GtkWidget *week_start_picker = nullptr;
    GtkWidget *hide_done_tasks_check = nullptr;
    GtkWidget *remove_items_picker = nullptr;
    GtkWidget *calendars_button = nullptr;
    GtkWidget *save_button = nullptr;
    tav::GCharPtr alarm_tone;
    int visible_calendars = 1;
    bool dialog_close = true;
};

struct _TavCalendarSettingsDialog {
    TavCalendarDialog parent;
    TavCalendarSettingsDialogPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarSettingsDialogClass;

enum {
    PROP_0,
    PROP_ALARM_TONE,
    PROP_NUM_VISIBLE_CALENDARS,
    PROP_DIALOG_CLOSE,
    N_PROPERTIES
};

enum {
    SIGNAL_SAVE_CLICKED,
    SIGNAL_EDIT_CLICKED,
    N_SIGNALS
};

static GParamSpec *properties[N_PROPERTIES];
static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarSettingsDialog, tav_calendar_settings_dialog, TAV_TYPE_CALENDAR_DIALOG)

/* Auxiliary functions */

static GtkWidget *
new_picker (const char *title, std::initializer_list<int> values)
{
    GtkWidget *picker = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL);
    kivo_button_set_title (KIVO_BUTTON (picker), title);
    GtkWidget *selector = kivo_touch_selector_new_text ();
    for (int value : values)
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (selector), TAV_CAL (value_label_id (value)));
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (picker), KIVO_TOUCH_SELECTOR (selector));
    /* The first row is the initial value. */
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (picker), 0);
    return picker;
}

/* The value whose label the picker shows; 0 when none matches. */
static int
picker_value (GtkWidget *picker)
{
    const char *shown = kivo_button_get_value (KIVO_BUTTON (picker));
    if (!shown)
        return 0;
    for (int value = SettingsValueMonday; value <= SettingsValueOneYear; ++value) {
        if (g_ascii_strcasecmp (TAV_CAL (value_label_id (value)), shown) == 0)
            return value;
    }
    return 0;
}

static void
set_picker_value (GtkWidget *picker, int value)
{
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (picker), value_position (value));
    kivo_button_set_value (KIVO_BUTTON (picker), TAV_CAL (value_label_id (value)));
}

static void
set_alarm_tone (TavCalendarSettingsDialog *dialog, const char *path)
{
    auto *priv = dialog->priv;
    TavAlarmToneButton *button = TAV_ALARM_TONE_BUTTON (priv->alarm_tone_button);
    priv->alarm_tone.reset (g_strdup (path));
    tav_alarm_tone_button_set_title (button, TAV_CAL ("cal_fi_alarm_tone"));
    if (!path) {
        tav_alarm_tone_button_set_selected_tone (button, nullptr);
        kivo_button_set_value (KIVO_BUTTON (button), TAV_CAL ("cal_fi_set_alarm_tone1"));
        return;
    }
    if (!*path)
        return;
    /* The button always offers the default tone: never add it again. */
    if (g_utf8_validate (path, -1, nullptr) && tav_compare_utf8_strings (path, TAV_ALARM_TONE_DEFAULT_PATH) == 0) {
        tav_alarm_tone_button_set_selected_tone (button, nullptr);
        return;
    }
    if (!g_file_test (path, G_FILE_TEST_EXISTS)) {
        TAV_WARNING ("Alarm tone file does not exist!");
        tav_alarm_tone_button_set_selected_tone (button, nullptr);
        return;
    }
    /* An unreadable file is refused (and logged) by the button. */
    if (!tav_alarm_tone_button_add_tone (button, path) || !tav_alarm_tone_button_set_selected_tone (button, path))
        tav_alarm_tone_button_set_selected_tone (button, nullptr);
}

static void
set_visible_calendars (TavCalendarSettingsDialog *dialog, int count)
{
    dialog->priv->visible_calendars = count;
    const unsigned long n = count < 0 ? 0 : static_cast<unsigned long> (count);
    const std::string text = tav::editor::with_number (
        tav_dngettext (TAV_DOMAIN_CALENDAR, "cal_va_calendar_visible", "cal_va_calendars", n), count);
    kivo_button_set_value (KIVO_BUTTON (dialog->priv->calendars_button), text.c_str ());
}

/* Callbacks */

static void
on_calendars_clicked_cb (GtkButton *, gpointer data)
{
    g_signal_emit (data, signals[SIGNAL_EDIT_CLICKED], 0);
}

static void
on_save_clicked_cb (GtkButton *, gpointer data)
{
    g_signal_emit (data, signals[SIGNAL_SAVE_CLICKED], 0);
}

/* The window manager's close: refused while "dialog-close" is FALSE. */
static gboolean
on_settings_dialog_response (GtkWidget *widget, GdkEvent *, gpointer)
{
    return !TAV_CALENDAR_SETTINGS_DIALOG (widget)->priv->dialog_close;
}

/* GObject overrides */

static void
tav_calendar_settings_dialog_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarSettingsDialog *dialog = TAV_CALENDAR_SETTINGS_DIALOG (object);
    switch (prop_id) {
    case PROP_ALARM_TONE:
        set_alarm_tone (dialog, g_value_get_string (value));
        break;
    case PROP_NUM_VISIBLE_CALENDARS:
        set_visible_calendars (dialog, g_value_get_int (value));
        break;
    case PROP_DIALOG_CLOSE:
        dialog->priv->dialog_close = g_value_get_boolean (value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_settings_dialog_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarSettingsDialog *dialog = TAV_CALENDAR_SETTINGS_DIALOG (object);
    switch (prop_id) {
    case PROP_ALARM_TONE:
        g_value_set_string (value, dialog->priv->alarm_tone_button
                                       ? tav_alarm_tone_button_get_selected_tone_path (
                                             TAV_ALARM_TONE_BUTTON (dialog->priv->alarm_tone_button))
                                       : nullptr);
        break;
    case PROP_NUM_VISIBLE_CALENDARS:
        g_value_set_int (value, dialog->priv->visible_calendars);
        break;
    case PROP_DIALOG_CLOSE:
        g_value_set_boolean (value, dialog->priv->dialog_close);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_settings_dialog_dispose (GObject *object)
{
    auto *priv = TAV_CALENDAR_SETTINGS_DIALOG (object)->priv;
    if (priv->disposed)
        return;
    priv->disposed = true;
    priv->alarm_tone.reset ();
    /* The children go with the dialog; only forget them. */
    priv->alarm_tone_button = priv->week_start_picker = priv->hide_done_tasks_check = nullptr;
    priv->remove_items_picker = priv->calendars_button = priv->save_button = nullptr;
    G_OBJECT_CLASS (tav_calendar_settings_dialog_parent_class)->dispose (object);
}

static void
tav_calendar_settings_dialog_finalize (GObject *object)
{
    TAV_CALENDAR_SETTINGS_DIALOG (object)->priv->~TavCalendarSettingsDialogPrivate ();
    G_OBJECT_CLASS (tav_calendar_settings_dialog_parent_class)->finalize (object);
}

static void
tav_calendar_settings_dialog_class_init (TavCalendarSettingsDialogClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = tav_calendar_settings_dialog_set_property;
    object_class->get_property = tav_calendar_settings_dialog_get_property;
    object_class->dispose = tav_calendar_settings_dialog_dispose;
    object_class->finalize = tav_calendar_settings_dialog_finalize;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    properties[PROP_ALARM_TONE] = g_param_spec_string ("alarm-tone", "Alarm-Tone", "The Alarm Tone setting.",
                                                       nullptr, rw);
    properties[PROP_NUM_VISIBLE_CALENDARS] = g_param_spec_int (
        "num-visible-calendars", "Number of visible calendars", "Number of visible calendars.", G_MININT, G_MAXINT,
        1, rw);
    properties[PROP_DIALOG_CLOSE] = g_param_spec_boolean ("dialog-close", "Dialog Close",
                                                          "Whether dialog can be closed or not.", TRUE, rw);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    /* Five finger-height rows, the title and Save fit the handheld's 480
     * pixels only without GtkDialog's borders around content and buttons. */
    gtk_rc_parse_string ("style \"tav-settings-dialog\" {\n"
                         "  GtkDialog::content-area-border = 0\n"
                         "  GtkDialog::action-area-border = 4\n"
                         "}\n"
                         "class \"TavCalendarSettingsDialog\" style \"tav-settings-dialog\"\n");

    for (auto [slot, name] : { std::pair { SIGNAL_SAVE_CLICKED, "save-clicked" },
                               std::pair { SIGNAL_EDIT_CLICKED, "edit-clicked" } }) {
        signals[slot] = g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                      g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    }
}

static void
tav_calendar_settings_dialog_init (TavCalendarSettingsDialog *dialog)
{
    void *memory = tav_calendar_settings_dialog_get_instance_private (dialog);
    auto *priv = new (memory) TavCalendarSettingsDialogPrivate ();
    dialog->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (dialog);
    tav_calendar_dialog_set_title (base, TAV_CAL ("cal_ti_settings"));
    /* Wide enough for a title and a value side by side on every row. */
    gtk_window_set_default_size (GTK_WINDOW (dialog), 720, -1);

    GtkWidget *box = gtk_vbox_new (FALSE, 0);
    tav::GRefPtr<GtkSizeGroup> titles = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));
    tav::GRefPtr<GtkSizeGroup> values = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));

    priv->calendars_button = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                        TAV_CAL ("cal_bd_edit_calendars"), nullptr);
    set_visible_calendars (dialog, priv->visible_calendars);
    priv->alarm_tone_button = tav_alarm_tone_button_new ();
    g_object_set (priv->alarm_tone_button, "arrangement", KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, nullptr);
    tav_alarm_tone_button_set_title (TAV_ALARM_TONE_BUTTON (priv->alarm_tone_button), TAV_CAL ("cal_fi_alarm_tone"));
    priv->remove_items_picker = new_picker (TAV_CAL ("cal_fi_remove_items"),
                                            { SettingsValueNever, SettingsValueOneWeek, SettingsValueTwoWeeks,
                                              SettingsValueOneMonth, SettingsValueOneYear });
    priv->week_start_picker = new_picker (TAV_CAL ("cal_fi_week_start_day"), { SettingsValueMonday, SettingsValueSunday });
    for (GtkWidget *button : { priv->calendars_button, priv->alarm_tone_button, priv->remove_items_picker,
                               priv->week_start_picker }) {
        kivo_button_add_title_size_group (KIVO_BUTTON (button), titles.get ());
        kivo_button_add_value_size_group (KIVO_BUTTON (button), values.get ());
        gtk_box_pack_start (GTK_BOX (box), button, FALSE, FALSE, 0);
    }
    priv->hide_done_tasks_check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT,
                                                                    TAV_CAL ("cal_fi_hide_done_tasks"));
    gtk_box_pack_start (GTK_BOX (box), priv->hide_done_tasks_check, FALSE, FALSE, 0);
    /* The rows keep off the window's frame at the sides. */
    GtkWidget *margin = gtk_alignment_new (0.5, 0.0, 1.0, 1.0);
    gtk_alignment_set_padding (GTK_ALIGNMENT (margin), 0, 0, KIVO_MARGIN_DEFAULT, KIVO_MARGIN_DEFAULT);
    gtk_container_add (GTK_CONTAINER (margin), box);
    tav_calendar_dialog_pack_no_scroll (base, margin, TRUE, TRUE);

    priv->save_button = tav_calendar_dialog_add_button (base, TAV_KIVO ("wdgt_bd_save"));
    g_signal_connect (priv->calendars_button, "clicked", G_CALLBACK (on_calendars_clicked_cb), dialog);
    g_signal_connect (priv->save_button, "clicked", G_CALLBACK (on_save_clicked_cb), dialog);
    /* GtkDialog turns a close request into a response and keeps the window;
     * this dialog closes (or refuses to) by itself, so its handler replaces
     * the stock one. */
    const guint delete_id = g_signal_lookup ("delete-event", GTK_TYPE_WIDGET);
    if (const gulong stock = g_signal_handler_find (dialog, G_SIGNAL_MATCH_ID, delete_id, 0, nullptr, nullptr, nullptr))
        g_signal_handler_disconnect (dialog, stock);
    g_signal_connect (dialog, "delete-event", G_CALLBACK (on_settings_dialog_response), nullptr);
}

/* Public API */

GtkWidget *
tav_calendar_settings_dialog_new (void)
{
    GtkWidget *dialog = GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_SETTINGS_DIALOG, nullptr));
    gtk_widget_show_all (dialog);
    return dialog;
}

void
tav_calendar_settings_dialog_set_values (TavCalendarSettingsDialog *dialog, int first_id, ...)
{
    g_return_if_fail (TAV_IS_CALENDAR_SETTINGS_DIALOG (dialog));
    auto *priv = dialog->priv;
    va_list args;
    va_start (args, first_id);
    for (int id = first_id; id != -1; id = va_arg (args, int)) {
        const int value = va_arg (args, int);
        if (!is_known_id (id)) {
            TAV_WARNING ("Unknown settings id %d; its value %d is ignored", id, value);
            continue;
        }
        if (!value_belongs (id, value)) {
            TAV_WARNING ("Value %d is not one that %s takes; it is ignored", value, id_nick (id));
            /* Only yes ticks the box: any other value clears it. */
            if (id == SettingsHideDoneTasks)
                kivo_check_button_set_active (KIVO_CHECK_BUTTON (priv->hide_done_tasks_check), FALSE);
            continue;
        }
        switch (id) {
        case SettingsHideDoneTasks:
            kivo_check_button_set_active (KIVO_CHECK_BUTTON (priv->hide_done_tasks_check), value == SettingsValueYes);
            break;
        case SettingsRemoveItems:
            set_picker_value (priv->remove_items_picker, value);
            break;
        case SettingsWeekStart:
            set_picker_value (priv->week_start_picker, value);
            break;
        default:
            break;
        }
    }
    va_end (args);
}

void
tav_calendar_settings_dialog_get_values (TavCalendarSettingsDialog *dialog, int first_id, ...)
{
    g_return_if_fail (TAV_IS_CALENDAR_SETTINGS_DIALOG (dialog));
    auto *priv = dialog->priv;
    va_list args;
    va_start (args, first_id);
    for (int id = first_id; id != -1; id = va_arg (args, int)) {
        int *prop_value_p = va_arg (args, int *);
        g_assert (prop_value_p != NULL);
        switch (id) {
        case SettingsHideDoneTasks:
            *prop_value_p = kivo_check_button_get_active (KIVO_CHECK_BUTTON (priv->hide_done_tasks_check))
                                ? SettingsValueYes
                                : SettingsValueNo;
            break;
        case SettingsRemoveItems:
            *prop_value_p = picker_value (priv->remove_items_picker);
            break;
        case SettingsWeekStart:
            *prop_value_p = picker_value (priv->week_start_picker);
            break;
        default:
            if (!is_known_id (id))
                TAV_WARNING ("Unknown settings id %d; its value is left unchanged", id);
            break;
        }
    }
    va_end (args);
}

void
tav_calendar_settings_dialog_dim_save_button (TavCalendarSettingsDialog *dialog, gboolean sensitive)
{
    g_return_if_fail (TAV_IS_CALENDAR_SETTINGS_DIALOG (dialog));
    if (dialog->priv->save_button)
        gtk_widget_set_sensitive (dialog->priv->save_button, sensitive);
}
