/* Touch platform layer - check buttons */

#include "KivoCheckButton.h"

G_DEFINE_TYPE (KivoCheckButton, kivo_check_button, GTK_TYPE_CHECK_BUTTON)

static gboolean
kivo_check_button_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    if (gtk_widget_is_drawable (widget)) {
        /* The whole row is the target, so it is drawn as one surface. */
        const GtkAllocation &a = widget->allocation;
        const bool pressed = GTK_BUTTON (widget)->button_down && GTK_BUTTON (widget)->in_button;
        kivo_style_paint_surface (widget->window, &event->area, a.x, a.y, a.width, a.height,
                                  pressed ? KIVO_COLOR_SURFACE_PRESSED : KIVO_COLOR_SURFACE, TRUE);
    }
    return GTK_WIDGET_CLASS (kivo_check_button_parent_class)->expose_event (widget, event);
}

static void
kivo_check_button_class_init (KivoCheckButtonClass *klass)
{
    GTK_WIDGET_CLASS (klass)->expose_event = kivo_check_button_expose_event;
    kivo_style_init ();
}

static void
kivo_check_button_init (KivoCheckButton *button)
{
    gtk_widget_set_can_focus (GTK_WIDGET (button), FALSE);
}

GtkWidget *
kivo_check_button_new (KivoSizeType size)
{
    GtkWidget *button = GTK_WIDGET (g_object_new (KIVO_TYPE_CHECK_BUTTON, nullptr));
    if (size == KIVO_SIZE_FINGER_HEIGHT)
        gtk_widget_set_size_request (button, -1, KIVO_FINGER_HEIGHT);
    else if (size == KIVO_SIZE_THUMB_HEIGHT)
        gtk_widget_set_size_request (button, -1, KIVO_THUMB_HEIGHT);
    return button;
}

GtkWidget *
kivo_check_button_new_with_label (KivoSizeType size, const char *label)
{
    GtkWidget *button = kivo_check_button_new (size);
    gtk_button_set_label (GTK_BUTTON (button), label);
    return button;
}

void
kivo_check_button_set_active (KivoCheckButton *button, gboolean active)
{
    g_return_if_fail (KIVO_IS_CHECK_BUTTON (button));
    gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (button), active);
}

gboolean
kivo_check_button_get_active (KivoCheckButton *button)
{
    g_return_val_if_fail (KIVO_IS_CHECK_BUTTON (button), FALSE);
    return gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (button));
}
