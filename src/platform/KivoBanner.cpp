/* Touch platform layer - information banners */

#include "KivoBanner.h"

namespace {

gboolean on_banner_timeout_cb (gpointer data)
{
    gtk_widget_destroy (GTK_WIDGET (data));
    return FALSE;
}

} // namespace

GtkWidget *
kivo_banner_show_information (GtkWidget *widget, const char *icon_name, const char *text)
{
    g_return_val_if_fail (text != NULL, NULL);

    GtkWidget *banner = gtk_window_new (GTK_WINDOW_POPUP);
    gtk_widget_set_name (banner, "kivo-banner");
    gtk_window_set_accept_focus (GTK_WINDOW (banner), FALSE);
    GtkWidget *label = gtk_label_new (text);
    gtk_label_set_line_wrap (GTK_LABEL (label), TRUE);
    gtk_misc_set_padding (GTK_MISC (label), 16, 12);
    gtk_container_add (GTK_CONTAINER (banner), label);

    GtkWidget *toplevel = widget ? gtk_widget_get_toplevel (widget) : NULL;
    if (toplevel && GTK_IS_WINDOW (toplevel))
        gtk_window_set_transient_for (GTK_WINDOW (banner), GTK_WINDOW (toplevel));
    gtk_widget_show_all (banner);

    g_timeout_add (KIVO_BANNER_TIMEOUT_MS, on_banner_timeout_cb, banner);
    return banner;
}
