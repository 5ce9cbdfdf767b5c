/* Touch platform layer - a button with a title and a value */

#include "KivoButton.h"

#include "TavGPtr.h"

#include <new>

enum {
    PROP_0,
    PROP_TITLE,
    PROP_VALUE,
    PROP_SIZE,
    PROP_ARRANGEMENT,
    N_PROPERTIES
};

static GParamSpec *properties[N_PROPERTIES];

struct _KivoButtonPrivate {
    GtkWidget *box = nullptr;
    GtkWidget *image_slot = nullptr;
    GtkWidget *texts = nullptr;
    GtkWidget *title = nullptr;
    GtkWidget *value = nullptr;
    KivoSizeType size = KIVO_SIZE_FINGER_HEIGHT;
    KivoButtonArrangement arrangement = KIVO_BUTTON_ARRANGEMENT_VERTICAL;
    bool has_title = false;
    bool has_value = false;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoButton, kivo_button, GTK_TYPE_BUTTON)

GType
kivo_button_arrangement_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, "KIVO_BUTTON_ARRANGEMENT_HORIZONTAL", "horizontal" },
            { KIVO_BUTTON_ARRANGEMENT_VERTICAL, "KIVO_BUTTON_ARRANGEMENT_VERTICAL", "vertical" },
            { 0, nullptr, nullptr },
        };
        g_once_init_leave (&type, g_enum_register_static ("KivoButtonArrangement", values));
    }
    return type;
}

GType
kivo_size_type_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { KIVO_SIZE_AUTO, "KIVO_SIZE_AUTO", "auto" },
            { KIVO_SIZE_FINGER_HEIGHT, "KIVO_SIZE_FINGER_HEIGHT", "finger-height" },
            { KIVO_SIZE_THUMB_HEIGHT, "KIVO_SIZE_THUMB_HEIGHT", "thumb-height" },
            { 0, nullptr, nullptr },
        };
        g_once_init_leave (&type, g_enum_register_static ("KivoSizeType", values));
    }
    return type;
}

/* Auxiliary functions */

static void
build_layout (KivoButton *button)
{
    auto *priv = button->priv;
    /* Rebuilding moves the two labels into a box of the other direction. */
    tav::GRefPtr<GtkWidget> title (priv->title), value (priv->value);
    if (priv->texts) {
        gtk_container_remove (GTK_CONTAINER (priv->texts), priv->title);
        gtk_container_remove (GTK_CONTAINER (priv->texts), priv->value);
        gtk_widget_destroy (priv->texts);
    }
    if (priv->arrangement == KIVO_BUTTON_ARRANGEMENT_VERTICAL) {
        priv->texts = gtk_vbox_new (FALSE, 2);
        gtk_label_set_ellipsize (GTK_LABEL (priv->title), PANGO_ELLIPSIZE_END);
        gtk_misc_set_alignment (GTK_MISC (priv->value), 0.0, 0.5);
    } else {
        priv->texts = gtk_hbox_new (FALSE, KIVO_MARGIN_DOUBLE);
        gtk_misc_set_alignment (GTK_MISC (priv->value), 1.0, 0.5);
        /* Side by side the title keeps its full width; the value gives way. */
        gtk_label_set_ellipsize (GTK_LABEL (priv->title), PANGO_ELLIPSIZE_NONE);
    }
    gtk_box_pack_start (GTK_BOX (priv->texts), priv->title, FALSE, FALSE, 0);
    gtk_box_pack_start (GTK_BOX (priv->texts), priv->value,
                        priv->arrangement == KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, TRUE, 0);
    gtk_box_pack_start (GTK_BOX (priv->box), priv->texts, TRUE, TRUE, 0);
    gtk_widget_show (priv->texts);
}

static void
apply_size (KivoButton *button)
{
    switch (button->priv->size) {
    case KIVO_SIZE_FINGER_HEIGHT:
        gtk_widget_set_size_request (GTK_WIDGET (button), -1, KIVO_FINGER_HEIGHT);
        break;
    case KIVO_SIZE_THUMB_HEIGHT:
        gtk_widget_set_size_request (GTK_WIDGET (button), -1, KIVO_THUMB_HEIGHT);
        break;
    default:
        gtk_widget_set_size_request (GTK_WIDGET (button), -1, -1);
    }
}

static void
set_label (GtkWidget *label, bool *flag, const char *text)
{
    *flag = text != nullptr;
    gtk_label_set_text (GTK_LABEL (label), text ? text : "");
    gtk_widget_set_visible (label, text && *text);
}

/* GObject overrides */

static void
kivo_button_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    KivoButton *button = KIVO_BUTTON (object);
    switch (prop_id) {
    case PROP_TITLE:
        kivo_button_set_title (button, g_value_get_string (value));
        break;
    case PROP_VALUE:
        kivo_button_set_value (button, g_value_get_string (value));
        break;
    case PROP_SIZE:
        button->priv->size = static_cast<KivoSizeType> (g_value_get_enum (value));
        apply_size (button);
        break;
    case PROP_ARRANGEMENT:
        if (button->priv->arrangement != static_cast<KivoButtonArrangement> (g_value_get_enum (value))) {
            button->priv->arrangement = static_cast<KivoButtonArrangement> (g_value_get_enum (value));
            build_layout (button);
        }
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_button_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    KivoButton *button = KIVO_BUTTON (object);
    switch (prop_id) {
    case PROP_TITLE:
        g_value_set_string (value, kivo_button_get_title (button));
        break;
    case PROP_VALUE:
        g_value_set_string (value, kivo_button_get_value (button));
        break;
    case PROP_SIZE:
        g_value_set_enum (value, button->priv->size);
        break;
    case PROP_ARRANGEMENT:
        g_value_set_enum (value, button->priv->arrangement);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_button_finalize (GObject *object)
{
    KIVO_BUTTON (object)->priv->~KivoButtonPrivate ();
    G_OBJECT_CLASS (kivo_button_parent_class)->finalize (object);
}

static void
kivo_button_class_init (KivoButtonClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = kivo_button_set_property;
    object_class->get_property = kivo_button_get_property;
    object_class->finalize = kivo_button_finalize;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    const auto rwc = static_cast<GParamFlags> (rw | G_PARAM_CONSTRUCT);
    properties[PROP_TITLE] = g_param_spec_string ("title", "Title", "The button's title", nullptr, rw);
    properties[PROP_VALUE] = g_param_spec_string ("value", "Value", "The value shown under or beside the title",
                                                  nullptr, rw);
    properties[PROP_SIZE] = g_param_spec_enum ("size", "Size", "The button's height class", KIVO_TYPE_SIZE_TYPE,
                                               KIVO_SIZE_FINGER_HEIGHT, rwc);
    properties[PROP_ARRANGEMENT] = g_param_spec_enum ("arrangement", "Arrangement",
        "Whether the value is below or beside the title", KIVO_TYPE_BUTTON_ARRANGEMENT,
        KIVO_BUTTON_ARRANGEMENT_VERTICAL, rwc);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);
    kivo_style_init ();
}

static void
kivo_button_init (KivoButton *button)
{
    kivo_style_init ();
    void *memory = kivo_button_get_instance_private (button);
    button->priv = new (memory) KivoButtonPrivate ();
    auto *priv = button->priv;
    gtk_widget_set_can_focus (GTK_WIDGET (button), FALSE);

    priv->box = gtk_hbox_new (FALSE, KIVO_MARGIN_DOUBLE);
    priv->image_slot = gtk_alignment_new (0.5, 0.5, 0, 0);
    /* Without an image the slot takes no room (nor the box's spacing),
     * even in a window shown with gtk_widget_show_all. */
    gtk_widget_set_no_show_all (priv->image_slot, TRUE);
    priv->title = gtk_label_new (nullptr);
    gtk_misc_set_alignment (GTK_MISC (priv->title), 0.0, 0.5);
    gtk_label_set_ellipsize (GTK_LABEL (priv->title), PANGO_ELLIPSIZE_END);
    priv->value = gtk_label_new (nullptr);
    gtk_widget_set_name (priv->value, "kivo-button-value");
    gtk_label_set_ellipsize (GTK_LABEL (priv->value), PANGO_ELLIPSIZE_END);
    gtk_box_pack_start (GTK_BOX (priv->box), priv->image_slot, FALSE, FALSE, 0);
    build_layout (button);
    gtk_container_add (GTK_CONTAINER (button), priv->box);
    gtk_widget_show (priv->box);
    apply_size (button);
}

/* Public API */

GtkWidget *
kivo_button_new (KivoSizeType size, KivoButtonArrangement arrangement)
{
    return kivo_button_new_with_text (size, arrangement, nullptr, nullptr);
}

GtkWidget *
kivo_button_new_with_text (KivoSizeType size, KivoButtonArrangement arrangement, const char *title, const char *value)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_BUTTON, "size", size, "arrangement", arrangement,
                                     "title", title, "value", value, nullptr));
}

void
kivo_button_set_title (KivoButton *button, const char *title)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    set_label (button->priv->title, &button->priv->has_title, title);
    g_object_notify_by_pspec (G_OBJECT (button), properties[PROP_TITLE]);
}

void
kivo_button_set_value (KivoButton *button, const char *value)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    set_label (button->priv->value, &button->priv->has_value, value);
    g_object_notify_by_pspec (G_OBJECT (button), properties[PROP_VALUE]);
}

void
kivo_button_set_text (KivoButton *button, const char *title, const char *value)
{
    kivo_button_set_title (button, title);
    kivo_button_set_value (button, value);
}

const char *
kivo_button_get_title (KivoButton *button)
{
    g_return_val_if_fail (KIVO_IS_BUTTON (button), NULL);
    return button->priv->has_title ? gtk_label_get_text (GTK_LABEL (button->priv->title)) : nullptr;
}

const char *
kivo_button_get_value (KivoButton *button)
{
    g_return_val_if_fail (KIVO_IS_BUTTON (button), NULL);
    return button->priv->has_value ? gtk_label_get_text (GTK_LABEL (button->priv->value)) : nullptr;
}

void
kivo_button_add_title_size_group (KivoButton *button, GtkSizeGroup *group)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    g_return_if_fail (GTK_IS_SIZE_GROUP (group));
    gtk_size_group_add_widget (group, button->priv->title);
}

void
kivo_button_add_value_size_group (KivoButton *button, GtkSizeGroup *group)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    g_return_if_fail (GTK_IS_SIZE_GROUP (group));
    gtk_size_group_add_widget (group, button->priv->value);
}

void
kivo_button_set_image (KivoButton *button, GtkWidget *image)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    g_return_if_fail (image == NULL || GTK_IS_WIDGET (image));
    GtkBin *slot = GTK_BIN (button->priv->image_slot);
    if (GtkWidget *old = gtk_bin_get_child (slot))
        gtk_container_remove (GTK_CONTAINER (slot), old);
    if (image) {
        gtk_container_add (GTK_CONTAINER (slot), image);
        gtk_widget_show (image);
    }
    gtk_widget_set_visible (button->priv->image_slot, image != nullptr);
}
