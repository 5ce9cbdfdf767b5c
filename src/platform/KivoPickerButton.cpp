/* Touch platform layer - picker buttons */

#include "KivoPickerButton.h"

#include "TavGPtr.h"
#include "TavIntl.h"

#include <new>
#include <string>

enum {
    PROP_0,
    PROP_TOUCH_SELECTOR,
    PROP_DONE_BUTTON_TEXT,
    N_PROPERTIES
};

enum {
    SIGNAL_VALUE_CHANGED,
    N_SIGNALS
};

static GParamSpec *properties[N_PROPERTIES];
static guint signals[N_SIGNALS];

struct _KivoPickerButtonPrivate {
    tav::GRefPtr<KivoTouchSelector> selector;
    std::string done_text;
    bool has_done_text = false;
    GtkWidget *dialog = nullptr;
    gulong changed_id = 0;
    guint choose_idle_id = 0;
    int update_depth = 0; /* inside begin_update / end_update */
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoPickerButton, kivo_picker_button, KIVO_TYPE_BUTTON)

/* Auxiliary functions */

static void
update_value (KivoPickerButton *button)
{
    auto *priv = button->priv;
    if (!priv->selector)
        return;
    gchar *text = kivo_touch_selector_get_current_text (priv->selector.get ());
    const char *old = kivo_button_get_value (KIVO_BUTTON (button));
    const bool changed = g_strcmp0 (old, text) != 0;
    if (changed)
        kivo_button_set_value (KIVO_BUTTON (button), text);
    g_free (text);
    if (changed)
        g_signal_emit (button, signals[SIGNAL_VALUE_CHANGED], 0);
}

static bool
single_column (KivoPickerButton *button)
{
    return kivo_touch_selector_get_num_columns (button->priv->selector.get ()) == 1;
}

static void
close_dialog (KivoPickerButton *button)
{
    auto *priv = button->priv;
    GtkWidget *dialog = std::exchange (priv->dialog, nullptr);
    if (!dialog)
        return;
    /* The selector outlives the dialog: take it out before destroying. */
    GtkWidget *selector = GTK_WIDGET (priv->selector.get ());
    if (GtkWidget *parent = gtk_widget_get_parent (selector))
        gtk_container_remove (GTK_CONTAINER (parent), selector);
    gtk_widget_destroy (dialog);
}

/* Callbacks */

static gboolean
on_choose_idle_cb (gpointer data)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (data);
    button->priv->choose_idle_id = 0;
    if (button->priv->dialog)
        gtk_dialog_response (GTK_DIALOG (button->priv->dialog), GTK_RESPONSE_OK);
    return FALSE;
}

static void
on_selector_changed_cb (KivoTouchSelector *, gint, gpointer data)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (data);
    if (!button->priv->dialog) {
        if (button->priv->update_depth == 0)
            update_value (button);
        return;
    }
    /* In a one-column picker a tap is the choice. The dialog closes once
     * the tree view has finished handling the tap. */
    if (single_column (button) && !button->priv->choose_idle_id)
        button->priv->choose_idle_id = g_idle_add (on_choose_idle_cb, button);
}

static void
on_dialog_response_cb (GtkDialog *, gint response, gpointer data)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (data);
    close_dialog (button);
    if (response == GTK_RESPONSE_OK)
        update_value (button);
}

/* GObject and widget overrides */

static void
kivo_picker_button_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (object);
    switch (prop_id) {
    case PROP_TOUCH_SELECTOR:
        kivo_picker_button_set_selector (button, KIVO_TOUCH_SELECTOR (g_value_get_object (value)));
        break;
    case PROP_DONE_BUTTON_TEXT:
        kivo_picker_button_set_done_button_text (button, g_value_get_string (value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_picker_button_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (object);
    switch (prop_id) {
    case PROP_TOUCH_SELECTOR:
        g_value_set_object (value, button->priv->selector.get ());
        break;
    case PROP_DONE_BUTTON_TEXT:
        g_value_set_string (value, kivo_picker_button_get_done_button_text (button));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_picker_button_clicked (GtkButton *button)
{
    kivo_picker_button_open_picker (KIVO_PICKER_BUTTON (button));
}

static void
kivo_picker_button_destroy (GtkObject *object)
{
    KivoPickerButton *button = KIVO_PICKER_BUTTON (object);
    if (button->priv->choose_idle_id) {
        g_source_remove (button->priv->choose_idle_id);
        button->priv->choose_idle_id = 0;
    }
    close_dialog (button);
    if (button->priv->selector) {
        g_signal_handler_disconnect (button->priv->selector.get (), button->priv->changed_id);
        gtk_widget_destroy (GTK_WIDGET (button->priv->selector.get ()));
        button->priv->selector = nullptr;
    }
    GTK_OBJECT_CLASS (kivo_picker_button_parent_class)->destroy (object);
}

static void
kivo_picker_button_finalize (GObject *object)
{
    KIVO_PICKER_BUTTON (object)->priv->~KivoPickerButtonPrivate ();
    G_OBJECT_CLASS (kivo_picker_button_parent_class)->finalize (object);
}

static void
kivo_picker_button_class_init (KivoPickerButtonClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = kivo_picker_button_set_property;
    object_class->get_property = kivo_picker_button_get_property;
    object_class->finalize = kivo_picker_button_finalize;
    GTK_OBJECT_CLASS (klass)->destroy = kivo_picker_button_destroy;
    GTK_BUTTON_CLASS (klass)->clicked = kivo_picker_button_clicked;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    properties[PROP_TOUCH_SELECTOR] = g_param_spec_object ("touch-selector", "Touch selector",
        "The selector the picker dialog shows", KIVO_TYPE_TOUCH_SELECTOR, rw);
    properties[PROP_DONE_BUTTON_TEXT] = g_param_spec_string ("done-button-text", "Done button text",
        "Label of the picker dialog's Done button", nullptr, rw);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    signals[SIGNAL_VALUE_CHANGED] = g_signal_new ("value-changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST,
        G_STRUCT_OFFSET (KivoPickerButtonClass, value_changed), nullptr, nullptr,
        g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
}

static void
kivo_picker_button_init (KivoPickerButton *button)
{
    void *memory = kivo_picker_button_get_instance_private (button);
    button->priv = new (memory) KivoPickerButtonPrivate ();
}

/* Public API */

GtkWidget *
kivo_picker_button_new (KivoSizeType size, KivoButtonArrangement arrangement)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_PICKER_BUTTON, "size", size, "arrangement", arrangement, nullptr));
}

void
kivo_picker_button_set_selector (KivoPickerButton *button, KivoTouchSelector *selector)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    g_return_if_fail (selector == NULL || KIVO_IS_TOUCH_SELECTOR (selector));
    auto *priv = button->priv;
    if (priv->selector.get () == selector)
        return;
    close_dialog (button);
    if (priv->selector) {
        g_signal_handler_disconnect (priv->selector.get (), priv->changed_id);
        priv->changed_id = 0;
    }
    priv->selector = nullptr;
    if (selector) {
        g_object_ref_sink (selector);
        priv->selector = tav::adoptGRef (selector);
        priv->changed_id = g_signal_connect (selector, "changed", G_CALLBACK (on_selector_changed_cb), button);
        update_value (button);
    }
    g_object_notify_by_pspec (G_OBJECT (button), properties[PROP_TOUCH_SELECTOR]);
}

KivoTouchSelector *
kivo_picker_button_get_selector (KivoPickerButton *button)
{
    g_return_val_if_fail (KIVO_IS_PICKER_BUTTON (button), NULL);
    return button->priv->selector.get ();
}

gint
kivo_picker_button_get_active (KivoPickerButton *button)
{
    g_return_val_if_fail (KIVO_IS_PICKER_BUTTON (button), -1);
    if (!button->priv->selector)
        return -1;
    return kivo_touch_selector_get_active (button->priv->selector.get (), 0);
}

void
kivo_picker_button_set_active (KivoPickerButton *button, gint index)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    g_return_if_fail (button->priv->selector);
    kivo_touch_selector_set_active (button->priv->selector.get (), 0, index);
    update_value (button);
}

void
kivo_picker_button_set_done_button_text (KivoPickerButton *button, const char *text)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    button->priv->has_done_text = text != nullptr;
    button->priv->done_text = text ? text : "";
    g_object_notify_by_pspec (G_OBJECT (button), properties[PROP_DONE_BUTTON_TEXT]);
}

const char *
kivo_picker_button_get_done_button_text (KivoPickerButton *button)
{
    g_return_val_if_fail (KIVO_IS_PICKER_BUTTON (button), NULL);
    return button->priv->has_done_text ? button->priv->done_text.c_str () : TAV_KIVO ("wdgt_bd_done");
}

void
kivo_picker_button_open_picker (KivoPickerButton *button)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    auto *priv = button->priv;
    if (priv->dialog || !priv->selector)
        return;
    GtkWidget *toplevel = gtk_widget_get_toplevel (GTK_WIDGET (button));
    const char *title = kivo_button_get_title (KIVO_BUTTON (button));
    priv->dialog = gtk_dialog_new ();
    gtk_window_set_title (GTK_WINDOW (priv->dialog), title ? title : "");
    gtk_window_set_modal (GTK_WINDOW (priv->dialog), TRUE);
    gtk_dialog_set_has_separator (GTK_DIALOG (priv->dialog), FALSE);
    if (GTK_IS_WINDOW (toplevel))
        gtk_window_set_transient_for (GTK_WINDOW (priv->dialog), GTK_WINDOW (toplevel));
    gtk_window_set_default_size (GTK_WINDOW (priv->dialog), 600, -1);
    if (!single_column (button)) {
        GtkWidget *done = gtk_dialog_add_button (GTK_DIALOG (priv->dialog),
                                                 kivo_picker_button_get_done_button_text (button), GTK_RESPONSE_OK);
        gtk_widget_set_size_request (done, 180, KIVO_FINGER_HEIGHT);
    }
    GtkWidget *content = gtk_dialog_get_content_area (GTK_DIALOG (priv->dialog));
    gtk_box_pack_start (GTK_BOX (content), GTK_WIDGET (priv->selector.get ()), TRUE, TRUE, 0);
    gtk_widget_show (GTK_WIDGET (priv->selector.get ()));
    g_signal_connect (priv->dialog, "response", G_CALLBACK (on_dialog_response_cb), button);
    gtk_widget_show (priv->dialog);
    kivo_touch_selector_center_on_selected (priv->selector.get ());
}

GtkWidget *
kivo_picker_button_get_picker_dialog (KivoPickerButton *button)
{
    g_return_val_if_fail (KIVO_IS_PICKER_BUTTON (button), NULL);
    return button->priv->dialog;
}

void
kivo_picker_button_value_changed (KivoPickerButton *button)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    update_value (button);
}

void
kivo_picker_button_begin_update (KivoPickerButton *button)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    button->priv->update_depth++;
}

void
kivo_picker_button_end_update (KivoPickerButton *button)
{
    g_return_if_fail (KIVO_IS_PICKER_BUTTON (button));
    g_return_if_fail (button->priv->update_depth > 0);
    if (--button->priv->update_depth == 0)
        update_value (button);
}
