/* Touch platform layer - notes and context menus */

#include "KivoNote.h"

#include "KivoStyle.h"
#include "TavIntl.h"

#include <new>

struct _KivoNotePrivate {
    GtkWidget *label = nullptr;
    GtkWidget *ok = nullptr;
    GtkWidget *cancel = nullptr;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoNote, kivo_note, GTK_TYPE_DIALOG)

static void
kivo_note_finalize (GObject *object)
{
    KIVO_NOTE (object)->priv->~KivoNotePrivate ();
    G_OBJECT_CLASS (kivo_note_parent_class)->finalize (object);
}

static void
kivo_note_class_init (KivoNoteClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = kivo_note_finalize;
    kivo_style_init ();
}

static void
kivo_note_init (KivoNote *note)
{
    void *memory = kivo_note_get_instance_private (note);
    note->priv = new (memory) KivoNotePrivate ();
    GtkDialog *dialog = GTK_DIALOG (note);
    gtk_dialog_set_has_separator (dialog, FALSE);
    gtk_window_set_modal (GTK_WINDOW (note), TRUE);
    gtk_window_set_position (GTK_WINDOW (note), GTK_WIN_POS_CENTER_ON_PARENT);
    gtk_window_set_default_size (GTK_WINDOW (note), 560, -1);
    gtk_window_set_resizable (GTK_WINDOW (note), FALSE);
    note->priv->label = gtk_label_new (nullptr);
    gtk_label_set_line_wrap (GTK_LABEL (note->priv->label), TRUE);
    gtk_label_set_justify (GTK_LABEL (note->priv->label), GTK_JUSTIFY_CENTER);
    gtk_widget_set_size_request (note->priv->label, 500, -1);
    gtk_misc_set_padding (GTK_MISC (note->priv->label), KIVO_MARGIN_DOUBLE, 24);
    gtk_box_pack_start (GTK_BOX (gtk_dialog_get_content_area (dialog)), note->priv->label, TRUE, TRUE, 0);
    gtk_widget_show (note->priv->label);
    gtk_button_box_set_layout (GTK_BUTTON_BOX (gtk_dialog_get_action_area (dialog)), GTK_BUTTONBOX_SPREAD);
}

static GtkWidget *
make_note (GtkWindow *parent, const char *description, bool question)
{
    KivoNote *note = KIVO_NOTE (g_object_new (KIVO_TYPE_NOTE, nullptr));
    gtk_label_set_text (GTK_LABEL (note->priv->label), description ? description : "");
    if (parent)
        gtk_window_set_transient_for (GTK_WINDOW (note), parent);
    note->priv->ok = gtk_dialog_add_button (GTK_DIALOG (note), TAV_KIVO ("wdgt_bd_ok"), GTK_RESPONSE_OK);
    gtk_widget_set_size_request (note->priv->ok, 200, KIVO_FINGER_HEIGHT);
    if (question) {
        note->priv->cancel = gtk_dialog_add_button (GTK_DIALOG (note), TAV_KIVO ("wdgt_bd_cancel"),
                                                    GTK_RESPONSE_CANCEL);
        gtk_widget_set_size_request (note->priv->cancel, 200, KIVO_FINGER_HEIGHT);
    }
    gtk_dialog_set_default_response (GTK_DIALOG (note), question ? GTK_RESPONSE_CANCEL : GTK_RESPONSE_OK);
    return GTK_WIDGET (note);
}

GtkWidget *
kivo_note_new_confirmation (GtkWindow *parent, const char *description)
{
    g_return_val_if_fail (parent == NULL || GTK_IS_WINDOW (parent), NULL);
    return make_note (parent, description, true);
}

GtkWidget *
kivo_note_new_information (GtkWindow *parent, const char *description)
{
    g_return_val_if_fail (parent == NULL || GTK_IS_WINDOW (parent), NULL);
    return make_note (parent, description, false);
}

const char *
kivo_note_get_description (KivoNote *note)
{
    g_return_val_if_fail (KIVO_IS_NOTE (note), NULL);
    return gtk_label_get_text (GTK_LABEL (note->priv->label));
}

GtkWidget *
kivo_note_get_ok_button (KivoNote *note)
{
    g_return_val_if_fail (KIVO_IS_NOTE (note), NULL);
    return note->priv->ok;
}

GtkWidget *
kivo_note_get_cancel_button (KivoNote *note)
{
    g_return_val_if_fail (KIVO_IS_NOTE (note), NULL);
    return note->priv->cancel;
}

GtkWidget *
kivo_gtk_menu_new (void)
{
    kivo_style_init ();
    GtkWidget *menu = gtk_menu_new ();
    gtk_widget_set_name (menu, "kivo-context-menu");
    gtk_widget_set_size_request (menu, 320, -1);
    return menu;
}
