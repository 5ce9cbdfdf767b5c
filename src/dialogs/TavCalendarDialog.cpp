/* libcalendarui - the base of every dialog of the library
 *
 * One look (modal, framed, a default height, vertically panning content),
 * one way to pack content and add buttons, the process-wide count of open
 * dialogs, and the slot for the note a dialog has open over itself.
 */
#include "TavCalendarDialog.h"

#include <gdk/gdkkeysyms.h>
#include <new>

#include "KivoPannableArea.h"
#include "KivoStyle.h"
#include "TavLog.h"

enum {
    ERROR_SIGNAL,
    LAST_SIGNAL
};

static guint signals[LAST_SIGNAL];

/* Dialogs created and not yet disposed. */
static int open_dialog_count = 0;

struct _TavCalendarDialogPrivate {
    gboolean disposed = FALSE;
    /* Not owned: the note's own code resets the slot when it closes. */
    GtkWidget *modal_widget = nullptr;
    /* The title shown at the top (there is no window manager frame). */
    GtkWidget *title_label = nullptr;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarDialog, tav_calendar_dialog, GTK_TYPE_DIALOG,
                         G_ADD_PRIVATE (TavCalendarDialog))

static gboolean
on_key_press_cb (GtkWidget *widget, GdkEventKey *event, gpointer)
{
    if (event->keyval == GDK_Escape) {
        gtk_widget_destroy (widget);
        return TRUE;
    }
    return FALSE;
}

static void
on_title_changed_cb (GObject *object, GParamSpec *, gpointer)
{
    TavCalendarDialog *dialog = TAV_CALENDAR_DIALOG (object);
    GtkWidget *label = dialog->priv->title_label;
    if (!label)
        return;
    const char *title = gtk_window_get_title (GTK_WINDOW (dialog));
    gtk_label_set_text (GTK_LABEL (label), title ? title : "");
    if (title && *title)
        gtk_widget_show (label);
    else
        gtk_widget_hide (label);
}

static void
tav_calendar_dialog_dispose (GObject *object)
{
    TavCalendarDialog *dialog = TAV_CALENDAR_DIALOG (object);
    if (dialog->priv->disposed)
        return;
    dialog->priv->disposed = TRUE;
    /* A dialog that packs nothing with defaults never placed its pannable
     * area: it goes with the dialog all the same. */
    if (dialog->pannable && !gtk_widget_get_parent (dialog->pannable))
        gtk_widget_destroy (dialog->pannable);
    G_OBJECT_CLASS (tav_calendar_dialog_parent_class)->dispose (object);
    open_dialog_count--;
    dialog->priv->modal_widget = nullptr;
    dialog->priv->title_label = nullptr;
}

static void
tav_calendar_dialog_finalize (GObject *object)
{
    TavCalendarDialog *dialog = TAV_CALENDAR_DIALOG (object);
    g_object_unref (dialog->pannable);
    dialog->priv->~_TavCalendarDialogPrivate ();
    G_OBJECT_CLASS (tav_calendar_dialog_parent_class)->finalize (object);
}

static void
tav_calendar_dialog_class_init (TavCalendarDialogClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->dispose = tav_calendar_dialog_dispose;
    object_class->finalize = tav_calendar_dialog_finalize;

    signals[ERROR_SIGNAL] = g_signal_new ("error", G_TYPE_FROM_CLASS (klass),
                                          static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED),
                                          0, NULL, NULL, g_cclosure_marshal_VOID__STRING,
                                          G_TYPE_NONE, 1, G_TYPE_STRING);
}

static void
tav_calendar_dialog_init (TavCalendarDialog *dialog)
{
    void *memory = tav_calendar_dialog_get_instance_private (dialog);
    dialog->priv = new (memory) TavCalendarDialogPrivate ();

    kivo_style_init ();
    gtk_window_set_default_size (GTK_WINDOW (dialog), -1, 350);
    gtk_window_set_modal (GTK_WINDOW (dialog), TRUE);
    gtk_dialog_set_has_separator (GTK_DIALOG (dialog), FALSE);
    gtk_window_set_position (GTK_WINDOW (dialog), GTK_WIN_POS_CENTER_ON_PARENT);

    /* The handheld has no window manager frame: the dialog paints its own
     * outline and shows its title as the first line of its content. */
    kivo_style_decorate_dialog (GTK_WIDGET (dialog), nullptr);
    GtkWidget *label = gtk_label_new ("");
    gtk_widget_set_name (label, "kivo-dialog-title");
    gtk_misc_set_alignment (GTK_MISC (label), 0.0, 0.5);
    gtk_misc_set_padding (GTK_MISC (label), 12, 10);
    gtk_box_pack_start (GTK_BOX (GTK_DIALOG (dialog)->vbox), label, FALSE, FALSE, 0);
    dialog->priv->title_label = label;
    g_signal_connect (dialog, "notify::title", G_CALLBACK (on_title_changed_cb), nullptr);

    /* Vertical panning only; no horizontal indicator, since the content
     * never moves sideways. */
    /* Held here until the dialog goes: it is packed only with the first
     * widget that pans. */
    dialog->pannable = GTK_WIDGET (g_object_ref_sink (kivo_pannable_area_new ()));
    g_object_set (dialog->pannable, "mov_mode", KIVO_MOVEMENT_MODE_VERTICAL, "hovershoot_max", 0,
                  "vovershoot_max", 0, "hscrollbar_policy", GTK_POLICY_NEVER, NULL);
    g_signal_connect (dialog, "key-press-event", G_CALLBACK (on_key_press_cb), nullptr);
    open_dialog_count++;
}

GtkWidget *
tav_calendar_dialog_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_DIALOG, NULL));
}

gboolean
tav_calendar_dialog_is_dialog_open (void)
{
    return open_dialog_count > 0;
}

void
tav_calendar_dialog_set_title (TavCalendarDialog *dialog, const char *title)
{
    g_return_if_fail (TAV_IS_CALENDAR_DIALOG(dialog));
    gtk_window_set_title (GTK_WINDOW (dialog), title);
}

GtkWidget *
tav_calendar_dialog_add_button (TavCalendarDialog *dialog, const char *label)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_DIALOG(dialog), NULL);
    GtkWidget *button = gtk_dialog_add_button (GTK_DIALOG (dialog), label, GTK_RESPONSE_NONE);
    gtk_widget_set_size_request (button, 180, KIVO_FINGER_HEIGHT);
    return button;
}

void
tav_calendar_dialog_pack_no_scroll (TavCalendarDialog *dialog, GtkWidget *widget, gboolean expand, gboolean fill)
{
    g_return_if_fail (TAV_IS_CALENDAR_DIALOG(dialog));
    g_return_if_fail (GTK_IS_WIDGET(widget));
    gtk_box_pack_start (GTK_BOX (GTK_DIALOG (dialog)->vbox), widget, expand, fill, 0);
}

void
tav_calendar_dialog_pack_with_defaults (TavCalendarDialog *dialog, GtkWidget *widget)
{
    g_return_if_fail (TAV_IS_CALENDAR_DIALOG(dialog));
    g_return_if_fail (GTK_IS_WIDGET(widget));
    GtkWidget *area = dialog->pannable;
    if (!gtk_widget_get_parent (area))
        gtk_box_pack_start (GTK_BOX (GTK_DIALOG (dialog)->vbox), area, TRUE, TRUE, 0);
    if (GTK_IS_TREE_VIEW (widget))
        gtk_container_add (GTK_CONTAINER (area), widget);
    else
        kivo_pannable_area_add_with_viewport (KIVO_PANNABLE_AREA (area), widget);
    gtk_widget_show (area);
    gtk_widget_show (widget);
}

GtkWidget *
tav_calendar_dialog_get_modal_widget_ptr (TavCalendarDialog *dialog)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_DIALOG(dialog), NULL);
    g_return_val_if_fail (dialog->priv, NULL);
    return dialog->priv->modal_widget;
}

void
tav_calendar_dialog_set_modal_widget_ptr (TavCalendarDialog *dialog, GtkWidget *widget)
{
    g_return_if_fail (TAV_IS_CALENDAR_DIALOG(dialog));
    g_return_if_fail (dialog->priv);
    if (dialog->priv->modal_widget)
        TAV_MESSAGE ("Some note/confirmation is already opened");
    dialog->priv->modal_widget = widget;
}

void
tav_calendar_dialog_reset_modal_widget_ptr (TavCalendarDialog *dialog)
{
    g_return_if_fail (TAV_IS_CALENDAR_DIALOG(dialog));
    g_return_if_fail (dialog->priv);
    dialog->priv->modal_widget = nullptr;
}
