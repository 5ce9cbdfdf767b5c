/* libcalendarui - the dialog that lists the calendars
 *
 * A tree view in the dialog's pannable area: colour, title with the entry
 * count, and a visibility box per row. The rows hold the sources; every
 * change goes through the source and is shown only once the source took it.
 */
#include "TavCalendarListDialog.h"

#include "KivoNote.h"
#include "TavCalendarDialog.h"
#include "TavCalendarEditDialog.h"
#include "TavCalendarEnums.h"
#include "TavEditorSupport.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"

#include <new>
#include <string>

namespace {

enum { COL_SOURCE, COL_MARKER, COL_TEXT, COL_VISIBLE, N_COLS };

constexpr int kMarkerSize = 32;

std::string entries_text (int count)
{
    return count == 1 ? std::string (TAV_CAL ("cal_va_calendar_one_entry"))
                      : tav::editor::with_number (TAV_CAL ("cal_va_calendar_entries"), count);
}

} // namespace

typedef struct _TavCalendarListDialogPrivate TavCalendarListDialogPrivate;

struct _TavCalendarListDialogPrivate {
    GtkListStore *store = nullptr;
    GtkWidget *view = nullptr;
};

struct _TavCalendarListDialog {
    TavCalendarDialog parent;
    TavCalendarListDialogPrivate *priv;
};

typedef struct {
    TavCalendarDialogClass parent_class;
} TavCalendarListDialogClass;

enum { SIGNAL_CALENDARS_CHANGED, SIGNAL_NEW_REQUESTED, N_SIGNALS };

static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarListDialog, tav_calendar_list_dialog, TAV_TYPE_CALENDAR_DIALOG)

/* Auxiliary functions */

static bool
find_row (TavCalendarListDialog *dialog, TavCalendarSource *source, GtkTreeIter *iter)
{
    GtkTreeModel *model = GTK_TREE_MODEL (dialog->priv->store);
    for (gboolean more = gtk_tree_model_get_iter_first (model, iter); more; more = gtk_tree_model_iter_next (model, iter)) {
        TavCalendarSource *row = nullptr;
        gtk_tree_model_get (model, iter, COL_SOURCE, &row, -1);
        if (row)
            g_object_unref (row);
        if (row == source)
            return true;
    }
    return false;
}

/* Fills the row's columns from the source as it is now. */
static void
show_row (TavCalendarListDialog *dialog, GtkTreeIter *iter, TavCalendarSource *source)
{
    int color = 0;
    g_object_get (source, "color", &color, nullptr);
    tav::GRefPtr<GdkPixbuf> marker =
        tav::adoptGRef (tav_calendar_color_create_pixbuf (static_cast<TavCalendarColor> (color), kMarkerSize, kMarkerSize));
    const char *title = tav_calendar_source_get_title (source);
    tav::GCharPtr markup (g_markup_printf_escaped ("%s\n<small>%s</small>", title ? title : "",
                                                   entries_text (tav_calendar_source_get_entry_count (source)).c_str ()));
    gtk_list_store_set (dialog->priv->store, iter, COL_SOURCE, source, COL_MARKER, marker.get (), COL_TEXT,
                        markup.get (), COL_VISIBLE, tav_calendar_source_get_visible (source), -1);
}

static void
changed (TavCalendarListDialog *dialog)
{
    g_signal_emit (dialog, signals[SIGNAL_CALENDARS_CHANGED], 0);
}

static int
writable_count (TavCalendarListDialog *dialog)
{
    GtkTreeModel *model = GTK_TREE_MODEL (dialog->priv->store);
    GtkTreeIter iter;
    int count = 0;
    for (gboolean more = gtk_tree_model_get_iter_first (model, &iter); more; more = gtk_tree_model_iter_next (model, &iter)) {
        TavCalendarSource *row = nullptr;
        gtk_tree_model_get (model, &iter, COL_SOURCE, &row, -1);
        count += tav_calendar_source_get_writable (row) ? 1 : 0;
        g_object_unref (row);
    }
    return count;
}

/* Callbacks */

static void
on_visible_toggled_cb (GtkCellRendererToggle *, gchar *path, gpointer data)
{
    TavCalendarListDialog *dialog = TAV_CALENDAR_LIST_DIALOG (data);
    GtkTreeIter iter;
    if (!gtk_tree_model_get_iter_from_string (GTK_TREE_MODEL (dialog->priv->store), &iter, path))
        return;
    TavCalendarSource *source = nullptr;
    gboolean visible = FALSE;
    gtk_tree_model_get (GTK_TREE_MODEL (dialog->priv->store), &iter, COL_SOURCE, &source, COL_VISIBLE, &visible, -1);
    tav_calendar_list_dialog_set_calendar_visible (dialog, source, !visible);
    g_object_unref (source);
}

static void
on_edit_response_cb (GtkDialog *edit, gint response, gpointer data)
{
    TavCalendarListDialog *dialog = TAV_CALENDAR_LIST_DIALOG (data);
    /* The dialog's own buttons answer GTK_RESPONSE_NONE before they act. */
    if (response == GTK_RESPONSE_NONE)
        return;
    if (response == GTK_RESPONSE_OK) {
        TavCalendarSource *source = tav_calendar_edit_dialog_get_source (TAV_CALENDAR_EDIT_DIALOG (edit));
        GtkTreeIter iter;
        if (!find_row (dialog, source, &iter))
            gtk_list_store_append (dialog->priv->store, &iter);
        show_row (dialog, &iter, source);
        tav_calendar_list_dialog_select (dialog, source);
        changed (dialog);
    }
    gtk_widget_destroy (GTK_WIDGET (edit));
}

static void
on_delete_response_cb (GtkDialog *note, gint response, gpointer data)
{
    TavCalendarListDialog *dialog = TAV_CALENDAR_LIST_DIALOG (data);
    auto *source = static_cast<TavCalendarSource *> (g_object_get_data (G_OBJECT (note), "tav-source"));
    GtkTreeIter iter;
    if (response == GTK_RESPONSE_OK && source && find_row (dialog, source, &iter)) {
        const int result = tav_calendar_source_remove (source);
        if (result == CalendarNoError) {
            gtk_list_store_remove (dialog->priv->store, &iter);
            if (gtk_tree_model_get_iter_first (GTK_TREE_MODEL (dialog->priv->store), &iter))
                gtk_tree_selection_select_iter (gtk_tree_view_get_selection (GTK_TREE_VIEW (dialog->priv->view)), &iter);
            changed (dialog);
        } else {
            tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
            tav_show_info_banner (GTK_WIDGET (dialog), text.get ());
        }
    }
    gtk_widget_destroy (GTK_WIDGET (note));
}

static void
on_new_clicked_cb (GtkWidget *, gpointer data)
{
    g_signal_emit (data, signals[SIGNAL_NEW_REQUESTED], 0);
}

static void
on_edit_clicked_cb (GtkWidget *, gpointer data)
{
    tav_calendar_list_dialog_edit_selected (TAV_CALENDAR_LIST_DIALOG (data));
}

static void
on_delete_clicked_cb (GtkWidget *, gpointer data)
{
    tav_calendar_list_dialog_delete_selected (TAV_CALENDAR_LIST_DIALOG (data));
}

/* Class */

static void
tav_calendar_list_dialog_finalize (GObject *object)
{
    auto *priv = TAV_CALENDAR_LIST_DIALOG (object)->priv;
    g_object_unref (priv->store);
    priv->~TavCalendarListDialogPrivate ();
    G_OBJECT_CLASS (tav_calendar_list_dialog_parent_class)->finalize (object);
}

static void
tav_calendar_list_dialog_class_init (TavCalendarListDialogClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->finalize = tav_calendar_list_dialog_finalize;
    signals[SIGNAL_CALENDARS_CHANGED] = g_signal_new ("calendars-changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST,
                                                      0, nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    signals[SIGNAL_NEW_REQUESTED] = g_signal_new ("new-requested", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST,
                                                  0, nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
}

static void
tav_calendar_list_dialog_init (TavCalendarListDialog *dialog)
{
    void *memory = tav_calendar_list_dialog_get_instance_private (dialog);
    auto *priv = new (memory) TavCalendarListDialogPrivate ();
    dialog->priv = priv;
    TavCalendarDialog *base = TAV_CALENDAR_DIALOG (dialog);
    tav_calendar_dialog_set_title (base, TAV_CAL ("cal_ti_calendars"));
    gtk_window_set_default_size (GTK_WINDOW (dialog), 720, 360);

    priv->store = gtk_list_store_new (N_COLS, TAV_TYPE_CALENDAR_SOURCE, GDK_TYPE_PIXBUF, G_TYPE_STRING, G_TYPE_BOOLEAN);
    priv->view = gtk_tree_view_new_with_model (GTK_TREE_MODEL (priv->store));
    gtk_tree_view_set_headers_visible (GTK_TREE_VIEW (priv->view), FALSE);
    GtkTreeView *view = GTK_TREE_VIEW (priv->view);
    GtkCellRenderer *marker = gtk_cell_renderer_pixbuf_new ();
    g_object_set (marker, "xpad", 8, "ypad", 8, nullptr);
    gtk_tree_view_insert_column_with_attributes (view, -1, nullptr, marker, "pixbuf", COL_MARKER, nullptr);
    GtkCellRenderer *text = gtk_cell_renderer_text_new ();
    g_object_set (text, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    gtk_tree_view_insert_column_with_attributes (view, -1, nullptr, text, "markup", COL_TEXT, nullptr);
    gtk_tree_view_column_set_expand (gtk_tree_view_get_column (view, 1), TRUE);
    GtkCellRenderer *toggle = gtk_cell_renderer_toggle_new ();
    g_object_set (toggle, "indicator-size", 28, "xpad", 16, nullptr);
    gtk_tree_view_insert_column_with_attributes (view, -1, nullptr, toggle, "active", COL_VISIBLE, nullptr);
    g_signal_connect (toggle, "toggled", G_CALLBACK (on_visible_toggled_cb), dialog);
    tav_calendar_dialog_pack_with_defaults (base, priv->view);

    const std::pair<const char *, GCallback> buttons[] = {
        { "cal_bd_calendar_new", G_CALLBACK (on_new_clicked_cb) },
        { "cal_bd_calendar_edit", G_CALLBACK (on_edit_clicked_cb) },
        { "cal_bd_calendar_delete", G_CALLBACK (on_delete_clicked_cb) },
    };
    for (const auto &[msgid, callback] : buttons)
        g_signal_connect (tav_calendar_dialog_add_button (base, TAV_CAL (msgid)), "clicked", callback, dialog);
}

/* Public API */

GtkWidget *
tav_calendar_list_dialog_new (void)
{
    return GTK_WIDGET (g_object_new (tav_calendar_list_dialog_get_type (), nullptr));
}

gboolean
tav_calendar_list_dialog_add_calendar (TavCalendarListDialog *dialog, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), FALSE);
    GtkTreeIter iter;
    if (find_row (dialog, source, &iter))
        return FALSE;
    gtk_list_store_append (dialog->priv->store, &iter);
    show_row (dialog, &iter, source);
    if (gtk_tree_model_iter_n_children (GTK_TREE_MODEL (dialog->priv->store), nullptr) == 1)
        tav_calendar_list_dialog_select (dialog, source);
    return TRUE;
}

int
tav_calendar_list_dialog_get_count (TavCalendarListDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), 0);
    return gtk_tree_model_iter_n_children (GTK_TREE_MODEL (dialog->priv->store), nullptr);
}

gboolean
tav_calendar_list_dialog_select (TavCalendarListDialog *dialog, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), FALSE);
    GtkTreeIter iter;
    if (!find_row (dialog, source, &iter))
        return FALSE;
    gtk_tree_selection_select_iter (gtk_tree_view_get_selection (GTK_TREE_VIEW (dialog->priv->view)), &iter);
    return TRUE;
}

TavCalendarSource *
tav_calendar_list_dialog_get_selected (TavCalendarListDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), nullptr);
    GtkTreeModel *model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected (gtk_tree_view_get_selection (GTK_TREE_VIEW (dialog->priv->view)), &model, &iter))
        return nullptr;
    TavCalendarSource *source = nullptr;
    gtk_tree_model_get (model, &iter, COL_SOURCE, &source, -1);
    /* The row keeps its own reference. */
    g_object_unref (source);
    return source;
}

gboolean
tav_calendar_list_dialog_set_calendar_visible (TavCalendarListDialog *dialog, TavCalendarSource *source,
                                               gboolean visible)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), FALSE);
    GtkTreeIter iter;
    if (!find_row (dialog, source, &iter))
        return FALSE;
    const gboolean before = tav_calendar_source_get_visible (source);
    g_object_set (source, "visible", visible, nullptr);
    const int result = tav_calendar_source_save (source);
    if (result != CalendarNoError) {
        g_object_set (source, "visible", before, nullptr);
        tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
        tav_show_info_banner (GTK_WIDGET (dialog), text.get ());
    }
    show_row (dialog, &iter, source);
    if (result != CalendarNoError)
        return FALSE;
    changed (dialog);
    return TRUE;
}

static GtkWidget *
open_editor (TavCalendarListDialog *dialog, TavCalendarSource *source, gboolean is_new)
{
    GtkWidget *edit = tav_calendar_edit_dialog_new (source, is_new);
    gtk_window_set_transient_for (GTK_WINDOW (edit), GTK_WINDOW (dialog));
    gtk_window_set_modal (GTK_WINDOW (edit), TRUE);
    g_signal_connect_object (edit, "response", G_CALLBACK (on_edit_response_cb), dialog, GConnectFlags (0));
    gtk_widget_show (edit);
    return edit;
}

GtkWidget *
tav_calendar_list_dialog_edit_selected (TavCalendarListDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), nullptr);
    TavCalendarSource *source = tav_calendar_list_dialog_get_selected (dialog);
    return source ? open_editor (dialog, source, FALSE) : nullptr;
}

GtkWidget *
tav_calendar_list_dialog_edit_new (TavCalendarListDialog *dialog, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), nullptr);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), nullptr);
    return open_editor (dialog, source, TRUE);
}

GtkWidget *
tav_calendar_list_dialog_delete_selected (TavCalendarListDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_LIST_DIALOG (dialog), nullptr);
    TavCalendarSource *source = tav_calendar_list_dialog_get_selected (dialog);
    if (!source)
        return nullptr;
    if (!tav_calendar_source_get_writable (source)) {
        tav_show_info_banner (GTK_WIDGET (dialog), TAV_CAL ("cal_ib_calendar_read_only"));
        return nullptr;
    }
    if (writable_count (dialog) <= 1) {
        tav_show_info_banner (GTK_WIDGET (dialog), TAV_CAL ("cal_ib_calendar_last_writable"));
        return nullptr;
    }
    const std::string question =
        tav::editor::with_title (TAV_CAL ("cal_nc_delete_calendar"), tav_calendar_source_get_title (source)) + "\n"
        + entries_text (tav_calendar_source_get_entry_count (source));
    GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (dialog), question.c_str ());
    g_object_set_data_full (G_OBJECT (note), "tav-source", g_object_ref (source), g_object_unref);
    g_signal_connect_object (note, "response", G_CALLBACK (on_delete_response_cb), dialog, GConnectFlags (0));
    gtk_widget_show (note);
    return note;
}
