/* libcalendarui - the wizard shown the first time the calendar starts
 *
 * A notebook without tabs under the dialog's title; Back, Next and Finish
 * turn its pages. The two pickers hold the values the host reads back.
 */
#include "TavCalendarFirstRunWizard.h"

#include "KivoButton.h"
#include "KivoPickerButton.h"
#include "KivoStyle.h"
#include "KivoTouchSelector.h"
#include "TavCalendarDialog.h"
#include "TavCalendarSettingsDialog.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

#include <cstdarg>
#include <new>

namespace {

constexpr int kPages = 3;

/* Rows of the pickers, in order, with their labels. */
struct Row {
    int value;
    const char *msgid;
};
const Row kViewRows[] = { { SettingsValueMonthView, "cal_va_month_view" },
                          { SettingsValueWeekView, "cal_va_week_view" },
                          { SettingsValueAgendaView, "cal_va_agenda_view" } };
const Row kWeekRows[] = { { SettingsValueMonday, "cal_va_monday" }, { SettingsValueSunday, "cal_va_sunday" } };

template <size_t N>
int row_of (const Row (&rows)[N], int value)
{
    for (size_t i = 0; i < N; ++i) {
        if (rows[i].value == value)
            return static_cast<int> (i);
    }
    return -1;
}

template <size_t N>
GtkWidget *new_picker (const char *title, const Row (&rows)[N])
{
    GtkWidget *picker = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL);
    kivo_button_set_title (KIVO_BUTTON (picker), title);
    GtkWidget *selector = kivo_touch_selector_new_text ();
    for (const Row &row : rows)
        kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (selector), TAV_CAL (row.msgid));
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (picker), KIVO_TOUCH_SELECTOR (selector));
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (picker), 0);
    return picker;
}

GtkWidget *wrapped_label (const char *text)
{
    GtkWidget *label = gtk_label_new (text);
    gtk_label_set_line_wrap (GTK_LABEL (label), TRUE);
    gtk_misc_set_alignment (GTK_MISC (label), 0.0, 0.0);
    gtk_widget_set_size_request (label, 660, -1);
    return label;
}

} // namespace

typedef struct _TavCalendarFirstRunWizardPrivate TavCalendarFirstRunWizardPrivate;

struct _TavCalendarFirstRunWizardPrivate {
    bool disposed = false;
    bool finished = false;
    GtkWidget *notebook = nullptr;
    GtkWidget *view_picker = nullptr;
    GtkWidget *week_picker = nullptr;
    GtkWidget *import_summary = nullptr;
    GtkWidget *back_button = nullptr;
    GtkWidget *next_button = nullptr;
    GtkWidget *finish_button = nullptr;
};

struct _TavCalendarFirstRunWizard {
    TavCalendarDialog parent;
    TavCalendarFirstRunWizardPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarFirstRunWizardClass;

enum {
    SIGNAL_IMPORT_CLICKED,
    SIGNAL_FINISHED,
    N_SIGNALS
};

static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarFirstRunWizard, tav_calendar_first_run_wizard, TAV_TYPE_CALENDAR_DIALOG)

static void
update_buttons (TavCalendarFirstRunWizard *wizard)
{
    auto *priv = wizard->priv;
    const int page = gtk_notebook_get_current_page (GTK_NOTEBOOK (priv->notebook));
    gtk_widget_set_sensitive (priv->back_button, page > 0);
    if (page < kPages - 1) {
        gtk_widget_show (priv->next_button);
        gtk_widget_hide (priv->finish_button);
    } else {
        gtk_widget_hide (priv->next_button);
        gtk_widget_show (priv->finish_button);
    }
}

static void
on_back_clicked_cb (GtkButton *, gpointer data)
{
    auto *wizard = TAV_CALENDAR_FIRST_RUN_WIZARD (data);
    gtk_notebook_prev_page (GTK_NOTEBOOK (wizard->priv->notebook));
    update_buttons (wizard);
}

static void
on_next_clicked_cb (GtkButton *, gpointer data)
{
    auto *wizard = TAV_CALENDAR_FIRST_RUN_WIZARD (data);
    gtk_notebook_next_page (GTK_NOTEBOOK (wizard->priv->notebook));
    update_buttons (wizard);
}

static void
on_finish_clicked_cb (GtkButton *, gpointer data)
{
    auto *wizard = TAV_CALENDAR_FIRST_RUN_WIZARD (data);
    wizard->priv->finished = true;
    tav::GRefPtr<TavCalendarFirstRunWizard> hold (wizard);
    g_signal_emit (wizard, signals[SIGNAL_FINISHED], 0);
    gtk_widget_destroy (GTK_WIDGET (wizard));
}

static void
on_import_clicked_cb (GtkButton *, gpointer data)
{
    g_signal_emit (data, signals[SIGNAL_IMPORT_CLICKED], 0);
}

static void
tav_calendar_first_run_wizard_dispose (GObject *object)
{
    auto *priv = TAV_CALENDAR_FIRST_RUN_WIZARD (object)->priv;
    if (priv->disposed)
        return;
    priv->disposed = true;
    G_OBJECT_CLASS (tav_calendar_first_run_wizard_parent_class)->dispose (object);
}

static void
tav_calendar_first_run_wizard_finalize (GObject *object)
{
    TAV_CALENDAR_FIRST_RUN_WIZARD (object)->priv->~TavCalendarFirstRunWizardPrivate ();
    G_OBJECT_CLASS (tav_calendar_first_run_wizard_parent_class)->finalize (object);
}

static void
tav_calendar_first_run_wizard_class_init (TavCalendarFirstRunWizardClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_first_run_wizard_dispose;
    object_class->finalize = tav_calendar_first_run_wizard_finalize;
    for (auto [slot, name] : { std::pair { SIGNAL_IMPORT_CLICKED, "import-clicked" },
                               std::pair { SIGNAL_FINISHED, "finished" } }) {
        signals[slot] = g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                      g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    }
}

static GtkWidget *
page_box (void)
{
    GtkWidget *box = gtk_vbox_new (FALSE, KIVO_MARGIN_DOUBLE);
    gtk_container_set_border_width (GTK_CONTAINER (box), KIVO_MARGIN_DOUBLE);
    return box;
}

static void
tav_calendar_first_run_wizard_init (TavCalendarFirstRunWizard *wizard)
{
    void *memory = tav_calendar_first_run_wizard_get_instance_private (wizard);
    auto *priv = new (memory) TavCalendarFirstRunWizardPrivate ();
    wizard->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (wizard);
    tav_calendar_dialog_set_title (base, TAV_CAL ("cal_ti_welcome"));
    gtk_window_set_default_size (GTK_WINDOW (wizard), 720, -1);

    priv->notebook = gtk_notebook_new ();
    gtk_notebook_set_show_tabs (GTK_NOTEBOOK (priv->notebook), FALSE);
    gtk_notebook_set_show_border (GTK_NOTEBOOK (priv->notebook), FALSE);

    GtkWidget *welcome = page_box ();
    gtk_box_pack_start (GTK_BOX (welcome), wrapped_label (TAV_CAL ("cal_fi_welcome_text")), FALSE, FALSE, 0);
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), welcome, nullptr);

    GtkWidget *choices = page_box ();
    gtk_box_set_spacing (GTK_BOX (choices), KIVO_MARGIN_DEFAULT);
    tav::GRefPtr<GtkSizeGroup> titles = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));
    priv->view_picker = new_picker (TAV_CAL ("cal_fi_default_view"), kViewRows);
    priv->week_picker = new_picker (TAV_CAL ("cal_fi_week_start_day"), kWeekRows);
    for (GtkWidget *picker : { priv->view_picker, priv->week_picker }) {
        kivo_button_add_title_size_group (KIVO_BUTTON (picker), titles.get ());
        gtk_box_pack_start (GTK_BOX (choices), picker, FALSE, FALSE, 0);
    }
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), choices, nullptr);

    GtkWidget *import = page_box ();
    gtk_box_pack_start (GTK_BOX (import), wrapped_label (TAV_CAL ("cal_fi_wizard_import_text")), FALSE, FALSE, 0);
    GtkWidget *import_button = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                          TAV_CAL ("cal_bd_import_file"), nullptr);
    gtk_box_pack_start (GTK_BOX (import), import_button, FALSE, FALSE, 0);
    priv->import_summary = wrapped_label ("");
    gtk_box_pack_start (GTK_BOX (import), priv->import_summary, FALSE, FALSE, 0);
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), import, nullptr);

    tav_calendar_dialog_pack_no_scroll (base, priv->notebook, TRUE, TRUE);
    gtk_widget_show_all (priv->notebook);
    gtk_widget_hide (priv->import_summary);

    priv->back_button = tav_calendar_dialog_add_button (base, TAV_KIVO ("wdgt_bd_previous"));
    priv->next_button = tav_calendar_dialog_add_button (base, TAV_KIVO ("wdgt_bd_next"));
    priv->finish_button = tav_calendar_dialog_add_button (base, TAV_KIVO ("wdgt_bd_finish"));
    g_signal_connect (priv->back_button, "clicked", G_CALLBACK (on_back_clicked_cb), wizard);
    g_signal_connect (priv->next_button, "clicked", G_CALLBACK (on_next_clicked_cb), wizard);
    g_signal_connect (priv->finish_button, "clicked", G_CALLBACK (on_finish_clicked_cb), wizard);
    g_signal_connect (import_button, "clicked", G_CALLBACK (on_import_clicked_cb), wizard);
    update_buttons (wizard);
}

/* Public API */

GtkWidget *
tav_calendar_first_run_wizard_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_FIRST_RUN_WIZARD, nullptr));
}

void
tav_calendar_first_run_wizard_set_values (TavCalendarFirstRunWizard *wizard, int first_id, ...)
{
    g_return_if_fail (TAV_IS_CALENDAR_FIRST_RUN_WIZARD (wizard));
    auto *priv = wizard->priv;
    va_list args;
    va_start (args, first_id);
    for (int id = first_id; id != -1; id = va_arg (args, int)) {
        const int value = va_arg (args, int);
        const bool view = id == SettingsDefaultView;
        const int row = view ? row_of (kViewRows, value) : id == SettingsWeekStart ? row_of (kWeekRows, value) : -1;
        if (row < 0) {
            TAV_WARNING ("Setting %d cannot take the value %d in the wizard; it is ignored", id, value);
            continue;
        }
        kivo_picker_button_set_active (KIVO_PICKER_BUTTON (view ? priv->view_picker : priv->week_picker), row);
    }
    va_end (args);
}

void
tav_calendar_first_run_wizard_get_values (TavCalendarFirstRunWizard *wizard, int first_id, ...)
{
    g_return_if_fail (TAV_IS_CALENDAR_FIRST_RUN_WIZARD (wizard));
    auto *priv = wizard->priv;
    va_list args;
    va_start (args, first_id);
    for (int id = first_id; id != -1; id = va_arg (args, int)) {
        int *out = va_arg (args, int *);
        if (!out) {
            g_critical ("%s: assertion '%s' failed", G_STRFUNC, "prop_value_p != NULL");
            break;
        }
        if (id == SettingsDefaultView) {
            const int row = kivo_picker_button_get_active (KIVO_PICKER_BUTTON (priv->view_picker));
            *out = kViewRows[CLAMP (row, 0, 2)].value;
        } else if (id == SettingsWeekStart) {
            const int row = kivo_picker_button_get_active (KIVO_PICKER_BUTTON (priv->week_picker));
            *out = kWeekRows[CLAMP (row, 0, 1)].value;
        } else if (id == SettingsFirstBoot) {
            *out = priv->finished ? SettingsValueFirstBootNo : SettingsValueFirstBootYes;
        }
    }
    va_end (args);
}

void
tav_calendar_first_run_wizard_set_import_summary (TavCalendarFirstRunWizard *wizard, const char *text)
{
    g_return_if_fail (TAV_IS_CALENDAR_FIRST_RUN_WIZARD (wizard));
    g_return_if_fail (text == NULL || g_utf8_validate (text, -1, NULL));
    GtkWidget *label = wizard->priv->import_summary;
    gtk_label_set_text (GTK_LABEL (label), text ? text : "");
    if (text && *text)
        gtk_widget_show (label);
    else
        gtk_widget_hide (label);
}

int
tav_calendar_first_run_wizard_get_page (TavCalendarFirstRunWizard *wizard)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_FIRST_RUN_WIZARD (wizard), 0);
    return gtk_notebook_get_current_page (GTK_NOTEBOOK (wizard->priv->notebook));
}

void
tav_calendar_first_run_wizard_set_page (TavCalendarFirstRunWizard *wizard, int page)
{
    g_return_if_fail (TAV_IS_CALENDAR_FIRST_RUN_WIZARD (wizard));
    g_return_if_fail (page >= 0 && page < kPages);
    gtk_notebook_set_current_page (GTK_NOTEBOOK (wizard->priv->notebook), page);
    update_buttons (wizard);
}
