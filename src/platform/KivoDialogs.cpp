/* Touch platform layer - file chooser and wizard dialogs */

#include "KivoDialogs.h"

#include "KivoStyle.h"
#include "TavIntl.h"

#include <initializer_list>

GtkWidget *
kivo_file_chooser_dialog_new (GtkWindow *parent, GtkFileChooserAction action)
{
    g_return_val_if_fail (parent == NULL || GTK_IS_WINDOW (parent), NULL);
    kivo_style_init ();
    GtkWidget *dialog = gtk_file_chooser_dialog_new (nullptr, parent, action,
                                                     TAV_KIVO ("wdgt_bd_cancel"), GTK_RESPONSE_CANCEL,
                                                     TAV_KIVO ("wdgt_bd_ok"), GTK_RESPONSE_OK, nullptr);
    gtk_dialog_set_default_response (GTK_DIALOG (dialog), GTK_RESPONSE_OK);
    gtk_window_set_default_size (GTK_WINDOW (dialog), 760, 420);
    gtk_window_set_position (GTK_WINDOW (dialog), GTK_WIN_POS_CENTER_ON_PARENT);
    /* GTK's chooser picks a default size of its own, from the font, when it
     * is shown; on the handheld's screen it must fit. */
    g_signal_connect (dialog, "show", G_CALLBACK (+[] (GtkWidget *widget, gpointer) {
        GdkScreen *screen = gtk_widget_get_screen (widget);
        const int sw = gdk_screen_get_width (screen);
        const int sh = gdk_screen_get_height (screen);
        const int w = MIN (760, sw);
        const int h = MIN (420, sh);
        gtk_window_resize (GTK_WINDOW (widget), w, h);
        gtk_window_move (GTK_WINDOW (widget), (sw - w) / 2, (sh - h) / 2);
    }), nullptr);
    return dialog;
}

G_DEFINE_TYPE (KivoWizardDialog, kivo_wizard_dialog, GTK_TYPE_DIALOG)

static void
update_buttons (KivoWizardDialog *wizard)
{
    if (!wizard->notebook)
        return;
    const gint page = gtk_notebook_get_current_page (wizard->notebook);
    const gint pages = gtk_notebook_get_n_pages (wizard->notebook);
    gtk_widget_set_sensitive (wizard->previous, page > 0);
    gtk_widget_set_sensitive (wizard->next, page < pages - 1);
    gtk_widget_set_sensitive (wizard->finish, page == pages - 1);
}

static void
kivo_wizard_dialog_response (GtkDialog *dialog, gint response)
{
    KivoWizardDialog *wizard = KIVO_WIZARD_DIALOG (dialog);
    if (!wizard->notebook)
        return;
    if (response == KIVO_WIZARD_DIALOG_PREVIOUS)
        gtk_notebook_prev_page (wizard->notebook);
    else if (response == KIVO_WIZARD_DIALOG_NEXT)
        gtk_notebook_next_page (wizard->notebook);
    update_buttons (wizard);
}

static void
kivo_wizard_dialog_class_init (KivoWizardDialogClass *klass)
{
    GTK_DIALOG_CLASS (klass)->response = kivo_wizard_dialog_response;
    kivo_style_init ();
}

static void
kivo_wizard_dialog_init (KivoWizardDialog *wizard)
{
    GtkDialog *dialog = GTK_DIALOG (wizard);
    gtk_dialog_set_has_separator (dialog, FALSE);
    gtk_window_set_default_size (GTK_WINDOW (wizard), 760, 400);
    wizard->previous = gtk_dialog_add_button (dialog, TAV_KIVO ("wdgt_bd_previous"), KIVO_WIZARD_DIALOG_PREVIOUS);
    wizard->next = gtk_dialog_add_button (dialog, TAV_KIVO ("wdgt_bd_next"), KIVO_WIZARD_DIALOG_NEXT);
    wizard->finish = gtk_dialog_add_button (dialog, TAV_KIVO ("wdgt_bd_finish"), KIVO_WIZARD_DIALOG_FINISH);
    for (GtkWidget *button : { wizard->previous, wizard->next, wizard->finish })
        gtk_widget_set_size_request (button, 180, KIVO_FINGER_HEIGHT);
}

GtkWidget *
kivo_wizard_dialog_new (GtkWindow *parent, const char *title, GtkNotebook *notebook)
{
    g_return_val_if_fail (parent == NULL || GTK_IS_WINDOW (parent), NULL);
    g_return_val_if_fail (GTK_IS_NOTEBOOK (notebook), NULL);
    KivoWizardDialog *wizard = KIVO_WIZARD_DIALOG (g_object_new (KIVO_TYPE_WIZARD_DIALOG, nullptr));
    gtk_window_set_title (GTK_WINDOW (wizard), title ? title : "");
    kivo_style_decorate_dialog (GTK_WIDGET (wizard), title);
    if (parent)
        gtk_window_set_transient_for (GTK_WINDOW (wizard), parent);
    wizard->notebook = notebook;
    gtk_notebook_set_show_tabs (notebook, FALSE);
    gtk_notebook_set_show_border (notebook, FALSE);
    gtk_box_pack_start (GTK_BOX (gtk_dialog_get_content_area (GTK_DIALOG (wizard))), GTK_WIDGET (notebook),
                        TRUE, TRUE, 0);
    gtk_widget_show (GTK_WIDGET (notebook));
    g_signal_connect_data (notebook, "switch-page", G_CALLBACK (update_buttons), wizard, nullptr,
                           static_cast<GConnectFlags> (G_CONNECT_SWAPPED | G_CONNECT_AFTER));
    update_buttons (wizard);
    return GTK_WIDGET (wizard);
}
