/* libcalendarui - the dialog that imports a calendar file
 *
 * Three pages of a notebook without tabs: choosing the file and the target,
 * the host's progress, the host's report. The dialog checks what the user
 * chose (the file through GIO, the new calendar's name) and leaves the
 * import itself to the host.
 */
#include "TavCalendarImportDialog.h"
#include "TavEditorSupport.h"

#include "KivoButton.h"
#include "KivoDialogs.h"
#include "KivoEntry.h"
#include "KivoPannableArea.h"
#include "KivoPickerButton.h"
#include "KivoStyle.h"
#include "KivoTouchSelector.h"
#include "TavCalendarDialog.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

#include <gio/gio.h>

#include <new>
#include <string>
#include <vector>

namespace {

/* Longest name a new calendar may take, in characters. */
constexpr glong kMaxTitleChars = 256;

enum { PAGE_CHOOSE, PAGE_PROGRESS, PAGE_REPORT };

/* A message with one %s (or %u) replaced. */
std::string format_message (const char *msgid, const std::string &arg)
{
    std::string text = TAV_CAL (msgid);
    const auto at = text.find ("%s");
    if (at != std::string::npos)
        text.replace (at, 2, arg);
    return text;
}

/* What to call a file in a message: its name for people, as GLib shows it. */
std::string display_name (GFile *file)
{
    tav::GCharPtr parse (g_file_get_parse_name (file));
    tav::GCharPtr base (g_path_get_basename (parse.get ()));
    return base.get ();
}

/* Whether @text is a URI ("file:///...", "sftp://...") rather than a path. */
bool is_uri (const std::string &text)
{
    tav::GCharPtr scheme (g_uri_parse_scheme (text.c_str ()));
    return scheme != nullptr;
}

GFile *file_for (const std::string &text)
{
    return is_uri (text) ? g_file_new_for_uri (text.c_str ()) : g_file_new_for_path (text.c_str ());
}

} // namespace

typedef struct _TavCalendarImportDialogPrivate TavCalendarImportDialogPrivate;

struct _TavCalendarImportDialogPrivate {
    bool disposed = false;
    bool cancel_sent = false;
    TavCalendarImportStage stage = TAV_IMPORT_STAGE_CHOOSE;
    std::string file;
    std::string error;
    std::vector<tav::GRefPtr<TavCalendarSource>> sources;
    GtkWidget *notebook = nullptr;
    GtkWidget *file_button = nullptr;
    GtkWidget *calendar_picker = nullptr;
    GtkWidget *title_entry = nullptr;
    GtkWidget *error_label = nullptr;
    GtkWidget *progress_label = nullptr;
    GtkWidget *bar = nullptr;
    GtkWidget *count_label = nullptr;
    GtkWidget *summary_label = nullptr;
    GtkWidget *details_label = nullptr;
    GtkWidget *import_button = nullptr;
    GtkWidget *cancel_button = nullptr;
    GtkWidget *close_button = nullptr;
};

struct _TavCalendarImportDialog {
    TavCalendarDialog parent;
    TavCalendarImportDialogPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarImportDialogClass;

enum {
    SIGNAL_IMPORT_REQUESTED,
    SIGNAL_CANCEL_REQUESTED,
    N_SIGNALS
};

static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarImportDialog, tav_calendar_import_dialog, TAV_TYPE_CALENDAR_DIALOG)

/* Auxiliary functions */

static KivoTouchSelector *
calendar_selector (TavCalendarImportDialog *dialog)
{
    return kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (dialog->priv->calendar_picker));
}

/* The "New calendar" row is the last one; the name entry shows with it. */
static bool
new_calendar_chosen (TavCalendarImportDialog *dialog)
{
    auto *priv = dialog->priv;
    return kivo_picker_button_get_active (KIVO_PICKER_BUTTON (priv->calendar_picker))
           >= static_cast<gint> (priv->sources.size ());
}

static void
update_title_row (TavCalendarImportDialog *dialog)
{
    if (new_calendar_chosen (dialog))
        gtk_widget_show (dialog->priv->title_entry);
    else
        gtk_widget_hide (dialog->priv->title_entry);
}

static void
show_error (TavCalendarImportDialog *dialog, const std::string &message)
{
    tav::editor::show_error_in (dialog->priv->error_label, &dialog->priv->error, message);
}

static void
set_stage (TavCalendarImportDialog *dialog, TavCalendarImportStage stage)
{
    auto *priv = dialog->priv;
    priv->stage = stage;
    const int page = stage == TAV_IMPORT_STAGE_CHOOSE ? PAGE_CHOOSE
                     : stage == TAV_IMPORT_STAGE_PROGRESS ? PAGE_PROGRESS : PAGE_REPORT;
    gtk_notebook_set_current_page (GTK_NOTEBOOK (priv->notebook), page);
    auto show_if = [] (GtkWidget *w, bool shown) { shown ? gtk_widget_show (w) : gtk_widget_hide (w); };
    show_if (priv->import_button, stage == TAV_IMPORT_STAGE_CHOOSE);
    show_if (priv->cancel_button, stage == TAV_IMPORT_STAGE_PROGRESS);
    show_if (priv->close_button, stage == TAV_IMPORT_STAGE_REPORT);
    if (stage == TAV_IMPORT_STAGE_PROGRESS && !priv->cancel_sent)
        gtk_widget_set_sensitive (priv->cancel_button, TRUE);
}

static void
show_file (TavCalendarImportDialog *dialog)
{
    auto *priv = dialog->priv;
    std::string shown = TAV_CAL ("cal_va_import_no_file");
    if (!priv->file.empty ()) {
        tav::GRefPtr<GFile> file = tav::adoptGRef (file_for (priv->file));
        shown = display_name (file.get ());
    }
    kivo_button_set_value (KIVO_BUTTON (priv->file_button), shown.c_str ());
}

/* The chosen file as a local path, or the reason it cannot be imported. */
static bool
check_file (TavCalendarImportDialog *dialog, std::string &path, std::string &problem)
{
    auto *priv = dialog->priv;
    if (priv->file.empty ()) {
        problem = TAV_CAL ("cal_ib_import_choose_file");
        return false;
    }
    tav::GRefPtr<GFile> file = tav::adoptGRef (file_for (priv->file));
    const std::string name = display_name (file.get ());
    GError *err = nullptr;
    tav::GRefPtr<GFileInfo> info = tav::adoptGRef (
        g_file_query_info (file.get (), G_FILE_ATTRIBUTE_STANDARD_TYPE "," G_FILE_ATTRIBUTE_ACCESS_CAN_READ,
                           G_FILE_QUERY_INFO_NONE, nullptr, &err));
    if (!info) {
        const bool missing = g_error_matches (err, G_IO_ERROR, G_IO_ERROR_NOT_FOUND);
        problem = missing ? format_message ("cal_ib_import_not_found", name)
                          : format_message ("cal_ib_import_unreadable", name) + " (" + err->message + ")";
        g_error_free (err);
        return false;
    }
    if (g_file_info_get_file_type (info.get ()) == G_FILE_TYPE_DIRECTORY) {
        problem = format_message ("cal_ib_import_folder", name);
        return false;
    }
    if (g_file_info_has_attribute (info.get (), G_FILE_ATTRIBUTE_ACCESS_CAN_READ)
        && !g_file_info_get_attribute_boolean (info.get (), G_FILE_ATTRIBUTE_ACCESS_CAN_READ)) {
        problem = format_message ("cal_ib_import_unreadable", name);
        return false;
    }
    tav::GCharPtr local (g_file_get_path (file.get ()));
    if (!local) {
        problem = format_message ("cal_ib_import_not_local", name);
        return false;
    }
    path = local.get ();
    return true;
}

/* The new calendar's name, trimmed, or the reason it cannot be used. */
static bool
check_title (TavCalendarImportDialog *dialog, std::string &title, std::string &problem)
{
    const char *text = gtk_entry_get_text (GTK_ENTRY (dialog->priv->title_entry));
    tav::GCharPtr trimmed (g_strstrip (g_strdup (text ? text : "")));
    if (!*trimmed) {
        problem = TAV_CAL ("cal_ib_import_name_calendar");
        return false;
    }
    if (!g_utf8_validate (trimmed.get (), -1, nullptr) || g_utf8_strlen (trimmed.get (), -1) > kMaxTitleChars) {
        problem = TAV_CAL ("cal_ib_import_name_too_long");
        return false;
    }
    title = trimmed.get ();
    return true;
}

/* Callbacks */

static void
on_chooser_response_cb (GtkDialog *chooser, gint response, gpointer data)
{
    auto *dialog = TAV_CALENDAR_IMPORT_DIALOG (data);
    if (response == GTK_RESPONSE_OK) {
        tav::GCharPtr name (gtk_file_chooser_get_filename (GTK_FILE_CHOOSER (chooser)));
        tav::GCharPtr uri (name ? nullptr : gtk_file_chooser_get_uri (GTK_FILE_CHOOSER (chooser)));
        if (name || uri) {
            dialog->priv->file = name ? name.get () : uri.get ();
            show_file (dialog);
            show_error (dialog, {});
        }
    }
    tav_calendar_dialog_reset_modal_widget_ptr (TAV_CALENDAR_DIALOG (dialog));
    gtk_widget_destroy (GTK_WIDGET (chooser));
}

static void
on_file_clicked_cb (GtkButton *, gpointer data)
{
    auto *dialog = TAV_CALENDAR_IMPORT_DIALOG (data);
    GtkWidget *chooser = kivo_file_chooser_dialog_new (GTK_WINDOW (dialog), GTK_FILE_CHOOSER_ACTION_OPEN);
    gtk_window_set_title (GTK_WINDOW (chooser), TAV_CAL ("cal_ti_import"));
    gtk_window_set_modal (GTK_WINDOW (chooser), TRUE);
    GtkFileFilter *calendars = gtk_file_filter_new ();
    gtk_file_filter_set_name (calendars, TAV_CAL ("cal_va_import_calendar_files"));
    for (const char *pattern : { "*.ics", "*.ICS", "*.ical", "*.ifb", "*.vcs" })
        gtk_file_filter_add_pattern (calendars, pattern);
    gtk_file_filter_add_mime_type (calendars, "text/calendar");
    GtkFileFilter *all = gtk_file_filter_new ();
    gtk_file_filter_set_name (all, TAV_CAL ("cal_va_import_all_files"));
    gtk_file_filter_add_pattern (all, "*");
    gtk_file_chooser_add_filter (GTK_FILE_CHOOSER (chooser), calendars);
    gtk_file_chooser_add_filter (GTK_FILE_CHOOSER (chooser), all);
    const std::string &current = dialog->priv->file;
    if (!current.empty () && !is_uri (current))
        gtk_file_chooser_set_filename (GTK_FILE_CHOOSER (chooser), current.c_str ());
    else
        gtk_file_chooser_set_current_folder (GTK_FILE_CHOOSER (chooser), g_get_home_dir ());
    g_signal_connect (chooser, "response", G_CALLBACK (on_chooser_response_cb), dialog);
    tav_calendar_dialog_set_modal_widget_ptr (TAV_CALENDAR_DIALOG (dialog), chooser);
    gtk_widget_show (chooser);
}

static void
on_calendar_changed_cb (KivoPickerButton *, gpointer data)
{
    update_title_row (TAV_CALENDAR_IMPORT_DIALOG (data));
}

static void
on_import_clicked_cb (GtkButton *, gpointer data)
{
    tav_calendar_import_dialog_start (TAV_CALENDAR_IMPORT_DIALOG (data));
}

static void
on_cancel_clicked_cb (GtkButton *, gpointer data)
{
    auto *dialog = TAV_CALENDAR_IMPORT_DIALOG (data);
    auto *priv = dialog->priv;
    if (priv->stage != TAV_IMPORT_STAGE_PROGRESS || priv->cancel_sent)
        return;
    priv->cancel_sent = true;
    gtk_widget_set_sensitive (priv->cancel_button, FALSE);
    gtk_label_set_text (GTK_LABEL (priv->progress_label), TAV_CAL ("cal_va_import_cancelling"));
    g_signal_emit (dialog, signals[SIGNAL_CANCEL_REQUESTED], 0);
}

static void
on_close_clicked_cb (GtkButton *, gpointer data)
{
    gtk_widget_destroy (GTK_WIDGET (data));
}

/* GObject overrides */

static void
tav_calendar_import_dialog_dispose (GObject *object)
{
    auto *dialog = TAV_CALENDAR_IMPORT_DIALOG (object);
    auto *priv = dialog->priv;
    if (priv->disposed)
        return;
    priv->disposed = true;
    /* Closed while the host imports: the host must stop (and undo). */
    if (priv->stage == TAV_IMPORT_STAGE_PROGRESS && !priv->cancel_sent) {
        priv->cancel_sent = true;
        g_signal_emit (dialog, signals[SIGNAL_CANCEL_REQUESTED], 0);
    }
    if (GtkWidget *chooser = tav_calendar_dialog_get_modal_widget_ptr (TAV_CALENDAR_DIALOG (dialog)))
        gtk_widget_destroy (chooser);
    priv->sources.clear ();
    G_OBJECT_CLASS (tav_calendar_import_dialog_parent_class)->dispose (object);
}

static void
tav_calendar_import_dialog_finalize (GObject *object)
{
    TAV_CALENDAR_IMPORT_DIALOG (object)->priv->~TavCalendarImportDialogPrivate ();
    G_OBJECT_CLASS (tav_calendar_import_dialog_parent_class)->finalize (object);
}

static void
tav_calendar_import_dialog_class_init (TavCalendarImportDialogClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_import_dialog_dispose;
    object_class->finalize = tav_calendar_import_dialog_finalize;

    /* path, target (or NULL), new calendar name (or NULL) */
    signals[SIGNAL_IMPORT_REQUESTED] = g_signal_new (
        "import-requested", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr, G_TYPE_NONE,
        3, G_TYPE_STRING, TAV_TYPE_CALENDAR_SOURCE, G_TYPE_STRING);
    signals[SIGNAL_CANCEL_REQUESTED] = g_signal_new ("cancel-requested", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST,
                                                     0, nullptr, nullptr, g_cclosure_marshal_VOID__VOID,
                                                     G_TYPE_NONE, 0);
}

static GtkWidget *
page_box (void)
{
    GtkWidget *box = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (box), KIVO_MARGIN_DEFAULT);
    return box;
}

static GtkWidget *
wrapped_label (const char *text)
{
    GtkWidget *label = gtk_label_new (text);
    gtk_label_set_line_wrap (GTK_LABEL (label), TRUE);
    gtk_misc_set_alignment (GTK_MISC (label), 0.0, 0.0);
    gtk_widget_set_size_request (label, 660, -1);
    return label;
}

static void
tav_calendar_import_dialog_init (TavCalendarImportDialog *dialog)
{
    void *memory = tav_calendar_import_dialog_get_instance_private (dialog);
    auto *priv = new (memory) TavCalendarImportDialogPrivate ();
    dialog->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (dialog);
    tav_calendar_dialog_set_title (base, TAV_CAL ("cal_ti_import"));
    gtk_window_set_default_size (GTK_WINDOW (dialog), 720, -1);

    priv->notebook = gtk_notebook_new ();
    gtk_notebook_set_show_tabs (GTK_NOTEBOOK (priv->notebook), FALSE);
    gtk_notebook_set_show_border (GTK_NOTEBOOK (priv->notebook), FALSE);

    /* Choosing */
    GtkWidget *choose = page_box ();
    tav::GRefPtr<GtkSizeGroup> titles = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));
    priv->file_button = kivo_button_new_with_text (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL,
                                                   TAV_CAL ("cal_fi_import_file"), nullptr);
    priv->calendar_picker = kivo_picker_button_new (KIVO_SIZE_FINGER_HEIGHT, KIVO_BUTTON_ARRANGEMENT_HORIZONTAL);
    kivo_button_set_title (KIVO_BUTTON (priv->calendar_picker), TAV_CAL ("cal_fi_calendar"));
    GtkWidget *selector = kivo_touch_selector_new_text ();
    kivo_touch_selector_append_text (KIVO_TOUCH_SELECTOR (selector), TAV_CAL ("cal_va_import_new_calendar"));
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (priv->calendar_picker), KIVO_TOUCH_SELECTOR (selector));
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (priv->calendar_picker), 0);
    for (GtkWidget *button : { priv->file_button, priv->calendar_picker }) {
        kivo_button_add_title_size_group (KIVO_BUTTON (button), titles.get ());
        gtk_box_pack_start (GTK_BOX (choose), button, FALSE, FALSE, 0);
    }
    priv->title_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    kivo_entry_set_placeholder (KIVO_ENTRY (priv->title_entry), TAV_CAL ("cal_va_import_new_calendar_name"));
    gtk_box_pack_start (GTK_BOX (choose), priv->title_entry, FALSE, FALSE, 0);
    priv->error_label = wrapped_label ("");
    gtk_widget_set_name (priv->error_label, "tav-import-error");
    GdkColor red = { 0, 0xb000, 0x1800, 0x1800 };
    gtk_widget_modify_fg (priv->error_label, GTK_STATE_NORMAL, &red);
    gtk_box_pack_start (GTK_BOX (choose), priv->error_label, FALSE, FALSE, 0);
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), choose, nullptr);

    /* Progress */
    GtkWidget *progress = page_box ();
    priv->progress_label = wrapped_label ("");
    priv->bar = gtk_progress_bar_new ();
    gtk_widget_set_size_request (priv->bar, -1, 48);
    gtk_box_pack_start (GTK_BOX (progress), priv->progress_label, FALSE, FALSE, KIVO_MARGIN_DOUBLE);
    gtk_box_pack_start (GTK_BOX (progress), priv->bar, FALSE, FALSE, 0);
    priv->count_label = gtk_label_new ("");
    gtk_misc_set_alignment (GTK_MISC (priv->count_label), 1.0, 0.5);
    gtk_box_pack_start (GTK_BOX (progress), priv->count_label, FALSE, FALSE, 0);
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), progress, nullptr);

    /* Report */
    GtkWidget *report = page_box ();
    priv->summary_label = wrapped_label ("");
    PangoAttrList *bold = pango_attr_list_new ();
    pango_attr_list_insert (bold, pango_attr_weight_new (PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes (GTK_LABEL (priv->summary_label), bold);
    pango_attr_list_unref (bold);
    priv->details_label = wrapped_label ("");
    GtkWidget *pannable = kivo_pannable_area_new ();
    g_object_set (pannable, "mov_mode", KIVO_MOVEMENT_MODE_VERTICAL, "hscrollbar_policy", GTK_POLICY_NEVER, NULL);
    kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (pannable), priv->details_label);
    gtk_box_pack_start (GTK_BOX (report), priv->summary_label, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (report), pannable, TRUE, TRUE, 0);
    gtk_notebook_append_page (GTK_NOTEBOOK (priv->notebook), report, nullptr);

    tav_calendar_dialog_pack_no_scroll (base, priv->notebook, TRUE, TRUE);
    gtk_widget_show_all (priv->notebook);
    gtk_widget_hide (priv->error_label);

    priv->import_button = tav_calendar_dialog_add_button (base, TAV_CAL ("cal_bd_import"));
    priv->cancel_button = tav_calendar_dialog_add_button (base, TAV_KIVO ("wdgt_bd_cancel"));
    priv->close_button = tav_calendar_dialog_add_button (base, TAV_CAL ("cal_bd_import_close"));
    g_signal_connect (priv->file_button, "clicked", G_CALLBACK (on_file_clicked_cb), dialog);
    g_signal_connect (priv->calendar_picker, "value-changed", G_CALLBACK (on_calendar_changed_cb), dialog);
    g_signal_connect (priv->import_button, "clicked", G_CALLBACK (on_import_clicked_cb), dialog);
    g_signal_connect (priv->cancel_button, "clicked", G_CALLBACK (on_cancel_clicked_cb), dialog);
    g_signal_connect (priv->close_button, "clicked", G_CALLBACK (on_close_clicked_cb), dialog);
    show_file (dialog);
    set_stage (dialog, TAV_IMPORT_STAGE_CHOOSE);
    update_title_row (dialog);
}

/* Public API */

GtkWidget *
tav_calendar_import_dialog_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_IMPORT_DIALOG, nullptr));
}

gboolean
tav_calendar_import_dialog_add_calendar (TavCalendarImportDialog *dialog, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), FALSE);
    auto *priv = dialog->priv;
    if (!tav_calendar_source_get_writable (source))
        return FALSE;
    for (const auto &s : priv->sources) {
        if (tav_calendar_source_is_equal (s.get (), source))
            return FALSE;
    }
    const gint row = static_cast<gint> (priv->sources.size ());
    priv->sources.push_back (tav::GRefPtr<TavCalendarSource> (source));
    const char *title = tav_calendar_source_get_title (source);
    KivoPickerButton *picker = KIVO_PICKER_BUTTON (priv->calendar_picker);
    const gint active = kivo_picker_button_get_active (picker);
    kivo_touch_selector_insert_text (calendar_selector (dialog), row, title ? title : "");
    /* The first calendar is chosen; a later one keeps what was chosen. */
    kivo_picker_button_set_active (picker, row == 0 ? 0 : active + (active >= row ? 1 : 0));
    update_title_row (dialog);
    return TRUE;
}

gboolean
tav_calendar_import_dialog_set_calendar (TavCalendarImportDialog *dialog, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), FALSE);
    auto *priv = dialog->priv;
    gint row = -1;
    if (!source) {
        row = static_cast<gint> (priv->sources.size ());
    } else {
        for (size_t i = 0; i < priv->sources.size (); ++i) {
            if (tav_calendar_source_is_equal (priv->sources[i].get (), source))
                row = static_cast<gint> (i);
        }
    }
    if (row < 0)
        return FALSE;
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (priv->calendar_picker), row);
    update_title_row (dialog);
    return TRUE;
}

void
tav_calendar_import_dialog_set_file (TavCalendarImportDialog *dialog, const char *path_or_uri)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    dialog->priv->file = path_or_uri ? path_or_uri : "";
    show_file (dialog);
}

const char *
tav_calendar_import_dialog_get_file (TavCalendarImportDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), nullptr);
    return dialog->priv->file.empty () ? nullptr : dialog->priv->file.c_str ();
}

void
tav_calendar_import_dialog_set_new_title (TavCalendarImportDialog *dialog, const char *title)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    g_return_if_fail (title == NULL || g_utf8_validate (title, -1, NULL));
    gtk_entry_set_text (GTK_ENTRY (dialog->priv->title_entry), title ? title : "");
}

gboolean
tav_calendar_import_dialog_start (TavCalendarImportDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), FALSE);
    auto *priv = dialog->priv;
    if (priv->stage != TAV_IMPORT_STAGE_CHOOSE)
        return FALSE;
    std::string path, title, problem;
    const bool is_new = new_calendar_chosen (dialog);
    if (!check_file (dialog, path, problem) || (is_new && !check_title (dialog, title, problem))) {
        TAV_MESSAGE ("Import refused: %s", problem.c_str ());
        show_error (dialog, problem);
        return FALSE;
    }
    show_error (dialog, {});
    TavCalendarSource *target = nullptr;
    if (!is_new)
        target = priv->sources[kivo_picker_button_get_active (KIVO_PICKER_BUTTON (priv->calendar_picker))].get ();
    tav::GRefPtr<GFile> file = tav::adoptGRef (g_file_new_for_path (path.c_str ()));
    gtk_label_set_text (GTK_LABEL (priv->progress_label),
                        format_message ("cal_va_importing", display_name (file.get ())).c_str ());
    gtk_progress_bar_set_fraction (GTK_PROGRESS_BAR (priv->bar), 0.0);
    gtk_label_set_text (GTK_LABEL (priv->count_label), "");
    priv->cancel_sent = false;
    set_stage (dialog, TAV_IMPORT_STAGE_PROGRESS);
    /* The host may answer at once with an error or even a report. */
    tav::GRefPtr<TavCalendarImportDialog> hold (dialog);
    g_signal_emit (dialog, signals[SIGNAL_IMPORT_REQUESTED], 0, path.c_str (), target,
                   is_new ? title.c_str () : nullptr);
    return TRUE;
}

void
tav_calendar_import_dialog_set_progress (TavCalendarImportDialog *dialog, guint done, guint total)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    auto *priv = dialog->priv;
    if (priv->stage != TAV_IMPORT_STAGE_PROGRESS)
        set_stage (dialog, TAV_IMPORT_STAGE_PROGRESS);
    GtkProgressBar *bar = GTK_PROGRESS_BAR (priv->bar);
    if (total == 0) {
        gtk_progress_bar_pulse (bar);
        gtk_label_set_text (GTK_LABEL (priv->count_label), "");
        return;
    }
    if (done > total)
        done = total;
    gtk_progress_bar_set_fraction (bar, static_cast<double> (done) / total);
    std::string text = TAV_CAL ("cal_va_import_progress");
    for (guint n : { done, total }) {
        const auto at = text.find ("%u");
        if (at != std::string::npos)
            text.replace (at, 2, std::to_string (n));
    }
    gtk_label_set_text (GTK_LABEL (priv->count_label), text.c_str ());
}

void
tav_calendar_import_dialog_set_report (TavCalendarImportDialog *dialog, gboolean stored, const char *summary,
                                       const char *details)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    g_return_if_fail (summary == NULL || g_utf8_validate (summary, -1, NULL));
    g_return_if_fail (details == NULL || g_utf8_validate (details, -1, NULL));
    auto *priv = dialog->priv;
    std::string head = stored ? "\xe2\x9c\x94 " : "\xe2\x9c\x98 ";  /* check mark or cross */
    head += summary ? summary : "";
    gtk_label_set_text (GTK_LABEL (priv->summary_label), head.c_str ());
    gtk_label_set_text (GTK_LABEL (priv->details_label), details ? details : "");
    set_stage (dialog, TAV_IMPORT_STAGE_REPORT);
}

void
tav_calendar_import_dialog_set_error (TavCalendarImportDialog *dialog, const char *message)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    g_return_if_fail (message == NULL || g_utf8_validate (message, -1, NULL));
    show_error (dialog, message ? message : "");
    dialog->priv->cancel_sent = false;
    set_stage (dialog, TAV_IMPORT_STAGE_CHOOSE);
}

const char *
tav_calendar_import_dialog_get_error (TavCalendarImportDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), nullptr);
    return dialog->priv->error.empty () ? nullptr : dialog->priv->error.c_str ();
}

TavCalendarImportStage
tav_calendar_import_dialog_get_stage (TavCalendarImportDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog), TAV_IMPORT_STAGE_CHOOSE);
    return dialog->priv->stage;
}
