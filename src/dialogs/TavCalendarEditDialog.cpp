/* libcalendarui - the dialog that edits one calendar's properties
 *
 * The rows are read from the source when the dialog opens and written back
 * only by Save, all together; a refused save puts the old values back.
 */
#include "TavCalendarEditDialog.h"

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoEntry.h"
#include "KivoStyle.h"
#include "TavAlarmToneButton.h"
#include "TavCalendarDialog.h"
#include "TavColorButton.h"
#include "TavEditorSupport.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"

#include <new>
#include <string>

namespace {

/* The properties Save writes, to put back when the source refuses them. */
struct Values {
    std::string title;
    int color = 0;
    gboolean visible = TRUE;
    std::string tone;
};

Values read_values (TavCalendarSource *source)
{
    Values v;
    gchar *title = nullptr;
    gchar *tone = nullptr;
    g_object_get (source, "title", &title, "color", &v.color, "visible", &v.visible, "alarm-tone", &tone, nullptr);
    v.title = title ? title : "";
    v.tone = tone ? tone : "";
    g_free (title);
    g_free (tone);
    return v;
}

void write_values (TavCalendarSource *source, const Values &v)
{
    g_object_set (source, "title", v.title.c_str (), "color", v.color, "visible", v.visible,
                  "alarm-tone", v.tone.empty () ? nullptr : v.tone.c_str (), nullptr);
}

std::string error_text (int code)
{
    tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (code)));
    return text.get ();
}

} // namespace

typedef struct _TavCalendarEditDialogPrivate TavCalendarEditDialogPrivate;

struct _TavCalendarEditDialogPrivate {
    tav::GRefPtr<TavCalendarSource> source;
    bool is_new = false;
    /* Text that is not UTF-8 was given for the title: the entry cannot
     * hold it, Save refuses it until the title is typed again. */
    bool title_invalid = false;
    std::string error;
    GtkWidget *title_entry = nullptr;
    GtkWidget *color_button = nullptr;
    GtkWidget *visible_check = nullptr;
    GtkWidget *tone_button = nullptr;
    GtkWidget *type_button = nullptr;
    GtkWidget *error_label = nullptr;
};

struct _TavCalendarEditDialog {
    TavCalendarDialog parent;
    TavCalendarEditDialogPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarEditDialogClass;

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarEditDialog, tav_calendar_edit_dialog, TAV_TYPE_CALENDAR_DIALOG)

static void
show_error (TavCalendarEditDialog *dialog, const std::string &message)
{
    tav::editor::show_error_in (dialog->priv->error_label, &dialog->priv->error, message);
}

static void
on_title_changed_cb (GtkWidget *, gpointer data)
{
    TAV_CALENDAR_EDIT_DIALOG (data)->priv->title_invalid = false;
}

static void
on_save_clicked_cb (GtkWidget *, gpointer data)
{
    TavCalendarEditDialog *dialog = TAV_CALENDAR_EDIT_DIALOG (data);
    if (tav_calendar_edit_dialog_apply (dialog))
        gtk_dialog_response (GTK_DIALOG (dialog), GTK_RESPONSE_OK);
}

static void
tav_calendar_edit_dialog_dispose (GObject *object)
{
    TAV_CALENDAR_EDIT_DIALOG (object)->priv->source.reset ();
    G_OBJECT_CLASS (tav_calendar_edit_dialog_parent_class)->dispose (object);
}

static void
tav_calendar_edit_dialog_finalize (GObject *object)
{
    TAV_CALENDAR_EDIT_DIALOG (object)->priv->~TavCalendarEditDialogPrivate ();
    G_OBJECT_CLASS (tav_calendar_edit_dialog_parent_class)->finalize (object);
}

static void
tav_calendar_edit_dialog_class_init (TavCalendarEditDialogClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_edit_dialog_dispose;
    object_class->finalize = tav_calendar_edit_dialog_finalize;
}

static void
tav_calendar_edit_dialog_init (TavCalendarEditDialog *dialog)
{
    void *memory = tav_calendar_edit_dialog_get_instance_private (dialog);
    auto *priv = new (memory) TavCalendarEditDialogPrivate ();
    dialog->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (dialog);
    gtk_window_set_default_size (GTK_WINDOW (dialog), 720, -1);

    GtkWidget *box = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (box), KIVO_MARGIN_DEFAULT);
    priv->title_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    kivo_entry_set_placeholder (KIVO_ENTRY (priv->title_entry), TAV_CAL ("cal_va_calendar_title"));
    priv->color_button = tav_color_button_new ();
    tav_color_button_set_title (TAV_COLOR_BUTTON (priv->color_button), TAV_CAL ("cal_fi_calendar_colour"));
    priv->visible_check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, TAV_CAL ("cal_fi_calendar_visible"));
    priv->tone_button = tav_alarm_tone_button_new ();
    tav_alarm_tone_button_set_title (TAV_ALARM_TONE_BUTTON (priv->tone_button), TAV_CAL ("cal_fi_alarm_tone"));
    priv->type_button = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                   TAV_CAL ("cal_fi_calendar_type"), nullptr);
    gtk_widget_set_sensitive (priv->type_button, FALSE);
    priv->error_label = gtk_label_new ("");
    gtk_label_set_line_wrap (GTK_LABEL (priv->error_label), TRUE);
    gtk_misc_set_alignment (GTK_MISC (priv->error_label), 0.0, 0.0);
    GdkColor red = { 0, 0xb000, 0x1800, 0x1800 };
    gtk_widget_modify_fg (priv->error_label, GTK_STATE_NORMAL, &red);
    for (GtkWidget *row : { priv->title_entry, priv->color_button, priv->visible_check, priv->tone_button,
                            priv->type_button, priv->error_label })
        gtk_box_pack_start (GTK_BOX (box), row, FALSE, FALSE, 0);
    tav_calendar_dialog_pack_with_defaults (base, box);
    gtk_widget_show_all (box);
    gtk_widget_hide (priv->error_label);

    GtkWidget *save = tav_calendar_dialog_add_button (base, TAV_CAL ("cal_bd_calendar_save"));
    g_signal_connect (save, "clicked", G_CALLBACK (on_save_clicked_cb), dialog);
    g_signal_connect (priv->title_entry, "changed", G_CALLBACK (on_title_changed_cb), dialog);
}

/* Public API */

GtkWidget *
tav_calendar_edit_dialog_new (TavCalendarSource *source, gboolean is_new)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), nullptr);
    auto *dialog = TAV_CALENDAR_EDIT_DIALOG (g_object_new (tav_calendar_edit_dialog_get_type (), nullptr));
    auto *priv = dialog->priv;
    priv->source = tav::GRefPtr<TavCalendarSource> (source);
    priv->is_new = is_new;
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (dialog),
                                   TAV_CAL (is_new ? "cal_ti_new_calendar" : "cal_ti_edit_calendar"));

    const Values v = read_values (source);
    kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), v.title.c_str ());
    tav_color_button_set_color (TAV_COLOR_BUTTON (priv->color_button), static_cast<TavCalendarColor> (v.color));
    kivo_check_button_set_active (KIVO_CHECK_BUTTON (priv->visible_check), v.visible);
    if (!v.tone.empty ())
        tav_alarm_tone_button_set_selected_tone (TAV_ALARM_TONE_BUTTON (priv->tone_button), v.tone.c_str ());
    gchar *type = nullptr;
    g_object_get (source, "type-title", &type, nullptr);
    kivo_button_set_value (KIVO_BUTTON (priv->type_button), type);
    g_free (type);
    return GTK_WIDGET (dialog);
}

TavCalendarSource *
tav_calendar_edit_dialog_get_source (TavCalendarEditDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_EDIT_DIALOG (dialog), nullptr);
    return dialog->priv->source.get ();
}

void
tav_calendar_edit_dialog_set_title_text (TavCalendarEditDialog *dialog, const char *title)
{
    g_return_if_fail (TAV_IS_CALENDAR_EDIT_DIALOG (dialog));
    const bool valid = !title || g_utf8_validate (title, -1, nullptr);
    kivo_entry_set_text (KIVO_ENTRY (dialog->priv->title_entry), valid && title ? title : "");
    dialog->priv->title_invalid = !valid;
}

gboolean
tav_calendar_edit_dialog_apply (TavCalendarEditDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_EDIT_DIALOG (dialog), FALSE);
    auto *priv = dialog->priv;
    TavCalendarSource *source = priv->source.get ();
    std::string reason;
    Values wanted;
    if (!tav::editor::checked_name (priv->title_invalid ? nullptr : kivo_entry_get_text (KIVO_ENTRY (priv->title_entry)),
                                    "cal_ib_calendar_title_empty", "cal_ib_calendar_title_too_long", &wanted.title,
                                    &reason)) {
        show_error (dialog, reason);
        return FALSE;
    }
    wanted.color = tav_color_button_get_color (TAV_COLOR_BUTTON (priv->color_button));
    wanted.visible = kivo_check_button_get_active (KIVO_CHECK_BUTTON (priv->visible_check));
    const char *tone = tav_alarm_tone_button_get_selected_tone_path (TAV_ALARM_TONE_BUTTON (priv->tone_button));
    wanted.tone = tone ? tone : "";

    const Values before = read_values (source);
    write_values (source, wanted);
    /* A title another calendar has is refused before the source is asked. */
    int result = CalendarNoError;
    if ((priv->is_new || wanted.title != before.title) && tav_calendar_source_exists_by_name (source))
        result = CalendarAlreadyExists;
    else
        result = priv->is_new ? tav_calendar_source_create (source) : tav_calendar_source_save (source);
    if (result != CalendarNoError) {
        write_values (source, before);
        show_error (dialog, error_text (result));
        return FALSE;
    }
    priv->is_new = false;
    show_error (dialog, "");
    return TRUE;
}

const char *
tav_calendar_edit_dialog_get_error (TavCalendarEditDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_EDIT_DIALOG (dialog), nullptr);
    return dialog->priv->error.empty () ? nullptr : dialog->priv->error.c_str ();
}
