/* libcalendarui - pieces the event, task and note editors share */
#include "TavEditorSupport.h"
#include "TavIntl.h"

#include "KivoButton.h"
#include "KivoDateButton.h"
#include "KivoNote.h"
#include "KivoStyle.h"
#include "TavCalendarButton.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavLog.h"
#include "TavWidgetBinding.h"

namespace tav::editor {

void now_stamp (TavTimestamp &now)
{
    tav_date_init_today (&now.date);
    tav_time_init_now (&now.time);
}

bool in_button_range (const TavDate &date)
{
    return date.year >= KIVO_DATE_BUTTON_MIN_YEAR && date.year <= KIVO_DATE_BUTTON_MAX_YEAR
        && tav_date_is_valid (&date) && date.day >= 1;
}

void show_date (GtkWidget *button, const TavDate &date)
{
    if (in_button_range (date)) {
        kivo_date_button_set_date (KIVO_DATE_BUTTON (button), date.year, date.month, date.day);
    } else {
        TAV_MESSAGE ("Date %d-%02d-%02d is outside the picker's years; shown as it is.", date.year, date.month + 1,
                     date.day);
        tav_kivo_button_set_value_from_date (KIVO_BUTTON (button), date.year, date.month, date.day);
    }
}

void show_time (GtkWidget *button, const TavTime &time)
{
    kivo_time_button_set_time (KIVO_TIME_BUTTON (button), CLAMP (time.hour, 0, 23), CLAMP (time.minute, 0, 59));
}

TavDate date_of (GtkWidget *button)
{
    guint y = 0, m = 0, d = 0;
    kivo_date_button_get_date (KIVO_DATE_BUTTON (button), &y, &m, &d);
    return TavDate {int (y), int (m), int (d)};
}

TavTime time_of (GtkWidget *button)
{
    guint h = 0, m = 0;
    kivo_time_button_get_time (KIVO_TIME_BUTTON (button), &h, &m);
    return TavTime {int (h), int (m)};
}

std::string stripped (const char *text)
{
    GCharPtr copy (g_strstrip (g_strdup (text ? text : "")));
    return copy.get ();
}

GtkWidget *caption (GtkSizeGroup *group, const char *text)
{
    GtkWidget *label = gtk_label_new (text);
    gtk_misc_set_alignment (GTK_MISC (label), 0.0, 0.5);
    gtk_misc_set_padding (GTK_MISC (label), KIVO_MARGIN_DOUBLE, 0);
    gtk_size_group_add_widget (group, label);
    return label;
}

GtkWidget *picker (GType type, const char *name, const char *title, GtkSizeGroup *group)
{
    GtkWidget *button = GTK_WIDGET (g_object_new (type, "size", KIVO_SIZE_FINGER_HEIGHT, "arrangement",
                                                  KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, NULL));
    gtk_widget_set_name (button, name);
    kivo_button_set_title (KIVO_BUTTON (button), title);
    if (group)
        kivo_button_add_title_size_group (KIVO_BUTTON (button), group);
    return button;
}

void add_row (GtkWidget *rows, GtkWidget *first, GtkWidget *second)
{
    GtkWidget *row = gtk_hbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (row), first, TRUE, TRUE, 0);
    if (second) {
        gtk_widget_set_size_request (second, 200, -1);
        gtk_box_pack_start (GTK_BOX (row), second, FALSE, TRUE, 0);
    }
    gtk_box_pack_start (GTK_BOX (rows), row, FALSE, FALSE, 0);
}

GtkWidget *captioned (GtkSizeGroup *group, const char *text, GtkWidget *entry)
{
    GtkWidget *row = gtk_hbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_box_pack_start (GTK_BOX (row), caption (group, text), FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (row), entry, TRUE, TRUE, 0);
    return row;
}

bool confirm (TavCalendarDialog *dialog, const char *question)
{
    GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (dialog), question);
    tav_calendar_dialog_set_modal_widget_ptr (dialog, note);
    GRefPtr<GtkWidget> keep_dialog (GTK_WIDGET (dialog));
    /* Escape, or the host, may destroy the dialog while the note runs. */
    bool destroyed = false;
    const gulong handler = g_signal_connect (dialog, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer flag) {
        *static_cast<bool *> (flag) = true;
    }), &destroyed);
    g_object_add_weak_pointer (G_OBJECT (note), reinterpret_cast<gpointer *> (&note));
    const int response = gtk_dialog_run (GTK_DIALOG (note));
    g_signal_handler_disconnect (dialog, handler);
    /* The dialog may have been closed under the note (its dispose answers
     * the note); the note is ours to destroy in every case. */
    if (tav_calendar_dialog_get_modal_widget_ptr (dialog) == note)
        tav_calendar_dialog_reset_modal_widget_ptr (dialog);
    if (note) {
        g_object_remove_weak_pointer (G_OBJECT (note), reinterpret_cast<gpointer *> (&note));
        gtk_widget_destroy (note);
    }
    return response == GTK_RESPONSE_OK && !destroyed;
}

std::string with_title (const char *format, const char *title)
{
    std::string text = format ? format : "";
    const size_t at = text.find ("%s");
    if (at != std::string::npos)
        text.replace (at, 2, title && g_utf8_validate (title, -1, nullptr) ? title : "");
    return text;
}

std::string with_number (const char *format, long number)
{
    std::string text = format ? format : "";
    const size_t at = text.find ("%d");
    if (at != std::string::npos)
        text.replace (at, 2, std::to_string (number));
    return text;
}

void select_own_calendar (GtkWidget *button, TavCalendarEntry *entry)
{
    TavCalendarSource *own = nullptr;
    if (entry)
        g_object_get (entry, "source", &own, NULL);
    GRefPtr<TavCalendarSource> holder = adoptGRef (own);
    if (!own || !tav_calendar_button_set_selected_calendar (TAV_CALENDAR_BUTTON (button), own))
        tav_calendar_button_select_first_full (TAV_CALENDAR_BUTTON (button));
}

void offer_calendar (GtkWidget *button, GtkWidget *save, TavCalendarSource *source)
{
    TavCalendarButton *calendars = TAV_CALENDAR_BUTTON (button);
    if (tav_calendar_button_add_calendar (calendars, source))
        tav_calendar_button_set_selected_calendar (calendars, source);
    if (save)
        gtk_widget_set_sensitive (save, tav_calendar_button_get_calendar_count (calendars) > 0);
}

char *num_id_of (gpointer entry)
{
    char *id = nullptr;
    if (entry)
        g_object_get (entry, "num-id", &id, NULL);
    return id;
}

void close_modal_note (TavCalendarDialog *dialog)
{
    if (GtkWidget *note = tav_calendar_dialog_get_modal_widget_ptr (dialog)) {
        tav_calendar_dialog_reset_modal_widget_ptr (dialog);
        gtk_dialog_response (GTK_DIALOG (note), GTK_RESPONSE_CANCEL);
    }
}

PropertySnapshot::PropertySnapshot (GObject *object, std::initializer_list<const char *> names) : m_object (object)
{
    for (const char *name : names) {
        GParamSpec *pspec = g_object_class_find_property (G_OBJECT_GET_CLASS (object), name);
        GValue value = G_VALUE_INIT;
        g_value_init (&value, pspec->value_type);
        g_object_get_property (object, name, &value);
        m_values.emplace_back (name, value);
    }
}

PropertySnapshot::~PropertySnapshot ()
{
    for (auto &entry : m_values)
        g_value_unset (&entry.second);
}

void PropertySnapshot::restore ()
{
    for (auto &entry : m_values)
        g_object_set_property (m_object, entry.first, &entry.second);
}

void report_error (TavCalendarDialog *dialog, int code)
{
    GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (code)));
    g_signal_emit_by_name (dialog, "error", text.get ());
}

bool checked_name (const char *typed, const char *empty_msgid, const char *long_msgid, std::string *name,
                   std::string *reason)
{
    constexpr glong kMaxChars = 256;
    if (!typed || !g_utf8_validate (typed, -1, nullptr)) {
        *reason = TAV_CAL ("cal_ib_calendar_title_invalid");
        return false;
    }
    const std::string trimmed = stripped (typed);
    if (trimmed.empty ()) {
        *reason = TAV_CAL (empty_msgid);
        return false;
    }
    if (g_utf8_strlen (trimmed.c_str (), -1) > kMaxChars) {
        *reason = TAV_CAL (long_msgid);
        return false;
    }
    *name = trimmed;
    return true;
}

void show_error_in (GtkWidget *label, std::string *kept, const std::string &message)
{
    *kept = message;
    gtk_label_set_text (GTK_LABEL (label), message.c_str ());
    if (message.empty ())
        gtk_widget_hide (label);
    else
        gtk_widget_show (label);
}

}  // namespace tav::editor
