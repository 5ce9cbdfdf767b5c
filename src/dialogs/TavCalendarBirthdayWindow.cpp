/* libcalendarui - the window that adds a birthday
 *
 * Three rows and Save; the entry is built only when Save is tapped, and
 * stored through the birthdays calendar's source.
 */
#include "TavCalendarBirthdayWindow.h"

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "KivoStyle.h"
#include "TavCalendarDialog.h"
#include "TavCalendarEnums.h"
#include "TavEditorSupport.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"

#include <new>
#include <string>

typedef struct _TavCalendarBirthdayWindowPrivate TavCalendarBirthdayWindowPrivate;

struct _TavCalendarBirthdayWindowPrivate {
    tav::GRefPtr<TavCalendarSource> source;
    tav::GRefPtr<TavCalendarEntry> entry;
    bool name_invalid = false;  /* text that was not UTF-8 was given for the name */
    std::string error;
    GtkWidget *name_entry = nullptr;
    GtkWidget *date_button = nullptr;
    GtkWidget *year_check = nullptr;
    GtkWidget *error_label = nullptr;
};

struct _TavCalendarBirthdayWindow {
    TavCalendarDialog parent;
    TavCalendarBirthdayWindowPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarBirthdayWindowClass;

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarBirthdayWindow, tav_calendar_birthday_window, TAV_TYPE_CALENDAR_DIALOG)

static void
show_error (TavCalendarBirthdayWindow *window, const std::string &message)
{
    tav::editor::show_error_in (window->priv->error_label, &window->priv->error, message);
}

static void
on_name_changed_cb (GtkWidget *, gpointer data)
{
    TAV_CALENDAR_BIRTHDAY_WINDOW (data)->priv->name_invalid = false;
}

static void
on_save_clicked_cb (GtkWidget *, gpointer data)
{
    TavCalendarBirthdayWindow *window = TAV_CALENDAR_BIRTHDAY_WINDOW (data);
    if (tav_calendar_birthday_window_save (window))
        gtk_dialog_response (GTK_DIALOG (window), GTK_RESPONSE_OK);
}

static void
tav_calendar_birthday_window_dispose (GObject *object)
{
    auto *priv = TAV_CALENDAR_BIRTHDAY_WINDOW (object)->priv;
    priv->source.reset ();
    priv->entry.reset ();
    G_OBJECT_CLASS (tav_calendar_birthday_window_parent_class)->dispose (object);
}

static void
tav_calendar_birthday_window_finalize (GObject *object)
{
    TAV_CALENDAR_BIRTHDAY_WINDOW (object)->priv->~TavCalendarBirthdayWindowPrivate ();
    G_OBJECT_CLASS (tav_calendar_birthday_window_parent_class)->finalize (object);
}

static void
tav_calendar_birthday_window_class_init (TavCalendarBirthdayWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_birthday_window_dispose;
    object_class->finalize = tav_calendar_birthday_window_finalize;
}

static void
tav_calendar_birthday_window_init (TavCalendarBirthdayWindow *window)
{
    void *memory = tav_calendar_birthday_window_get_instance_private (window);
    auto *priv = new (memory) TavCalendarBirthdayWindowPrivate ();
    window->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (window);
    tav_calendar_dialog_set_title (base, TAV_CAL ("cal_ti_new_birthday"));
    gtk_window_set_default_size (GTK_WINDOW (window), 720, -1);

    GtkWidget *box = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (box), KIVO_MARGIN_DEFAULT);
    priv->name_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    kivo_entry_set_placeholder (KIVO_ENTRY (priv->name_entry), TAV_CAL ("cal_va_birthday_name"));
    priv->date_button = kivo_date_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL);
    kivo_button_set_title (KIVO_BUTTON (priv->date_button), TAV_CAL ("cal_fi_birthday_date"));
    priv->year_check = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, TAV_CAL ("cal_fi_birthday_year_known"));
    kivo_check_button_set_active (KIVO_CHECK_BUTTON (priv->year_check), TRUE);
    priv->error_label = gtk_label_new ("");
    gtk_label_set_line_wrap (GTK_LABEL (priv->error_label), TRUE);
    gtk_misc_set_alignment (GTK_MISC (priv->error_label), 0.0, 0.0);
    GdkColor red = { 0, 0xb000, 0x1800, 0x1800 };
    gtk_widget_modify_fg (priv->error_label, GTK_STATE_NORMAL, &red);
    for (GtkWidget *row : { priv->name_entry, priv->date_button, priv->year_check, priv->error_label })
        gtk_box_pack_start (GTK_BOX (box), row, FALSE, FALSE, 0);
    tav_calendar_dialog_pack_with_defaults (base, box);
    gtk_widget_show_all (box);
    gtk_widget_hide (priv->error_label);

    GtkWidget *save = tav_calendar_dialog_add_button (base, TAV_CAL ("cal_bd_calendar_save"));
    g_signal_connect (save, "clicked", G_CALLBACK (on_save_clicked_cb), window);
    g_signal_connect (priv->name_entry, "changed", G_CALLBACK (on_name_changed_cb), window);
}

/* Public API */

GtkWidget *
tav_calendar_birthday_window_new (TavCalendarSource *birthdays)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (birthdays), nullptr);
    auto *window = TAV_CALENDAR_BIRTHDAY_WINDOW (g_object_new (tav_calendar_birthday_window_get_type (), nullptr));
    window->priv->source = tav::GRefPtr<TavCalendarSource> (birthdays);
    return GTK_WIDGET (window);
}

void
tav_calendar_birthday_window_set_values (TavCalendarBirthdayWindow *window, const char *name, const TavDate *date,
                                         gboolean year_known)
{
    g_return_if_fail (TAV_IS_CALENDAR_BIRTHDAY_WINDOW (window));
    auto *priv = window->priv;
    const bool valid = !name || g_utf8_validate (name, -1, nullptr);
    kivo_entry_set_text (KIVO_ENTRY (priv->name_entry), valid && name ? name : "");
    priv->name_invalid = !valid;
    if (date)
        tav::editor::show_date (priv->date_button, *date);
    kivo_check_button_set_active (KIVO_CHECK_BUTTON (priv->year_check), year_known);
}

gboolean
tav_calendar_birthday_window_save (TavCalendarBirthdayWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BIRTHDAY_WINDOW (window), FALSE);
    auto *priv = window->priv;
    std::string name, reason;
    if (!tav::editor::checked_name (priv->name_invalid ? nullptr : kivo_entry_get_text (KIVO_ENTRY (priv->name_entry)),
                                    "cal_ib_birthday_name_empty", "cal_ib_birthday_name_too_long", &name, &reason)) {
        show_error (window, reason);
        return FALSE;
    }
    if (!tav_calendar_source_get_writable (priv->source.get ())) {
        show_error (window, TAV_CAL ("cal_ib_calendar_read_only_entries"));
        return FALSE;
    }
    TavDate date = tav::editor::date_of (priv->date_button);
    const bool year_known = kivo_check_button_get_active (KIVO_CHECK_BUTTON (priv->year_check));
    if (!year_known) {
        /* Without a year the series starts this year; 29 February then
         * needs a leap year to exist in, the nearest one before. */
        TavTimestamp now;
        tav::editor::now_stamp (now);
        date.year = now.date.year;
        while (date.month == 1 && date.day == 29 && !g_date_is_leap_year (static_cast<GDateYear> (date.year)))
            --date.year;
    }
    const TavTime start_time = {0, 0};
    const TavTime end_time = {23, 59};
    tav::GRefPtr<TavCalendarEntry> entry = tav::adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "title", name.c_str (), "all-day", TRUE, "start-date", &date, "start-time", &start_time,
                  "end-date", &date, "end-time", &end_time, "end-repetition-date", &date, "repeat-code",
                  TavCalendarRepeatsEveryYear, "has-birthday", TRUE, "birth-year", year_known ? date.year : -1, NULL);
    const int result = tav_calendar_source_create_entry (priv->source.get (), entry.get ());
    if (result != CalendarNoError) {
        tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
        show_error (window, text.get ());
        return FALSE;
    }
    priv->entry = std::move (entry);
    show_error (window, "");
    return TRUE;
}

TavCalendarEntry *
tav_calendar_birthday_window_get_entry (TavCalendarBirthdayWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BIRTHDAY_WINDOW (window), nullptr);
    return window->priv->entry.get ();
}

const char *
tav_calendar_birthday_window_get_error (TavCalendarBirthdayWindow *window)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BIRTHDAY_WINDOW (window), nullptr);
    return window->priv->error.empty () ? nullptr : window->priv->error.c_str ();
}
