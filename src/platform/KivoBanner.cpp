/* Touch platform layer - information banners */

#include "KivoBanner.h"

#include "KivoIconSize.h"
#include "KivoStyle.h"

#include <algorithm>
#include <vector>

namespace {

/* Top first. */
std::vector<GtkWidget *> gBanners;

constexpr int kGap = 8;
constexpr int kMargin = 12;
const char kLabelKey[] = "kivo-banner-label";
const char kAnchorKey[] = "kivo-banner-anchor";

/* Places the banners one below the other over their windows. */
void
restack ()
{
    int next_y = -1;
    GdkWindow *previous_anchor = nullptr;
    for (GtkWidget *banner : gBanners) {
        auto *anchor = static_cast<GtkWidget *> (g_object_get_data (G_OBJECT (banner), kAnchorKey));
        int x = 0, y = 0, width = gdk_screen_get_width (gtk_widget_get_screen (banner));
        if (anchor && gtk_widget_get_realized (anchor)) {
            gdk_window_get_origin (anchor->window, &x, &y);
            width = anchor->allocation.width;
        }
        GtkRequisition request;
        gtk_widget_size_request (banner, &request);
        const int banner_width = MIN (MAX (request.width, width / 2), width - 2 * kMargin);
        gtk_widget_set_size_request (banner, banner_width, -1);
        if (next_y < 0 || (anchor && anchor->window != previous_anchor && next_y < y + kMargin))
            next_y = y + kMargin;
        gtk_window_move (GTK_WINDOW (banner), x + (width - banner_width) / 2, next_y);
        next_y += request.height + kGap;
        previous_anchor = anchor ? anchor->window : nullptr;
    }
}

gboolean
on_banner_timeout_cb (gpointer data)
{
    gtk_widget_destroy (GTK_WIDGET (data));
    return FALSE;
}

void
on_banner_destroy_cb (GtkWidget *banner, gpointer data)
{
    g_source_remove (GPOINTER_TO_UINT (data));
    gBanners.erase (std::remove (gBanners.begin (), gBanners.end (), banner), gBanners.end ());
    restack ();
}

void
on_anchor_destroy_cb (GtkWidget *, gpointer data)
{
    /* The window went away: its banners go with it. */
    gtk_widget_destroy (GTK_WIDGET (data));
}

gboolean
on_banner_expose_cb (GtkWidget *banner, GdkEventExpose *event, gpointer)
{
    cairo_t *cr = gdk_cairo_create (banner->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    cairo_set_operator (cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgb (cr, 1, 1, 1);
    kivo_style_set_source (cr, KIVO_COLOR_BACKGROUND, 1.0);
    cairo_paint (cr);
    kivo_style_rounded_rect (cr, 0, 0, banner->allocation.width, banner->allocation.height, KIVO_CORNER_RADIUS);
    kivo_style_set_source (cr, KIVO_COLOR_BANNER, 1.0);
    cairo_fill_preserve (cr);
    /* An accent frame keeps the light banner apart from light content. */
    cairo_set_operator (cr, CAIRO_OPERATOR_OVER);
    cairo_set_line_width (cr, 2.0);
    kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 1.0);
    cairo_stroke (cr);
    cairo_destroy (cr);
    gtk_container_propagate_expose (GTK_CONTAINER (banner), gtk_bin_get_child (GTK_BIN (banner)), event);
    return TRUE;
}

} // namespace

GtkWidget *
kivo_banner_show_information (GtkWidget *widget, const char *icon_name, const char *text)
{
    g_return_val_if_fail (text != NULL, NULL);
    g_return_val_if_fail (widget == NULL || GTK_IS_WIDGET (widget), NULL);
    kivo_style_init ();

    GtkWidget *banner = gtk_window_new (GTK_WINDOW_POPUP);
    gtk_widget_set_name (banner, "kivo-banner");
    gtk_window_set_accept_focus (GTK_WINDOW (banner), FALSE);
    gtk_window_set_focus_on_map (GTK_WINDOW (banner), FALSE);
    gtk_widget_set_app_paintable (banner, TRUE);
    g_signal_connect (banner, "expose-event", G_CALLBACK (on_banner_expose_cb), nullptr);

    GtkWidget *row = gtk_hbox_new (FALSE, 12);
    gtk_container_set_border_width (GTK_CONTAINER (row), 14);
    if (icon_name) {
        GtkWidget *icon = gtk_image_new_from_icon_name (icon_name, kivo_icon_size_from_name ("kivo-small"));
        gtk_box_pack_start (GTK_BOX (row), icon, FALSE, FALSE, 0);
    }
    GtkWidget *label = gtk_label_new (text);
    gtk_widget_set_name (label, "kivo-banner-label");
    gtk_label_set_line_wrap (GTK_LABEL (label), TRUE);
    gtk_label_set_justify (GTK_LABEL (label), GTK_JUSTIFY_CENTER);
    const KivoRgb ink = kivo_style_color (KIVO_COLOR_TEXT);
    GdkColor text_color = { 0, guint16 (ink.r * 65535), guint16 (ink.g * 65535), guint16 (ink.b * 65535) };
    gtk_widget_modify_fg (label, GTK_STATE_NORMAL, &text_color);
    gtk_box_pack_start (GTK_BOX (row), label, TRUE, TRUE, 0);
    gtk_container_add (GTK_CONTAINER (banner), row);
    g_object_set_data (G_OBJECT (banner), kLabelKey, label);

    GtkWidget *toplevel = widget ? gtk_widget_get_toplevel (widget) : nullptr;
    if (toplevel && GTK_IS_WINDOW (toplevel)) {
        gtk_window_set_transient_for (GTK_WINDOW (banner), GTK_WINDOW (toplevel));
        g_object_set_data (G_OBJECT (banner), kAnchorKey, toplevel);
        g_signal_connect_object (toplevel, "destroy", G_CALLBACK (on_anchor_destroy_cb), banner,
                                 static_cast<GConnectFlags> (0));
    }

    const guint timeout = g_timeout_add (KIVO_BANNER_TIMEOUT_MS, on_banner_timeout_cb, banner);
    g_signal_connect (banner, "destroy", G_CALLBACK (on_banner_destroy_cb), GUINT_TO_POINTER (timeout));
    gBanners.push_back (banner);
    gtk_widget_show_all (row);
    restack ();
    gtk_widget_show (banner);
    return banner;
}

GList *
kivo_banner_get_visible (void)
{
    GList *list = nullptr;
    for (auto it = gBanners.rbegin (); it != gBanners.rend (); ++it)
        list = g_list_prepend (list, *it);
    return list;
}

const char *
kivo_banner_get_text (GtkWidget *banner)
{
    g_return_val_if_fail (GTK_IS_WINDOW (banner), NULL);
    auto *label = static_cast<GtkWidget *> (g_object_get_data (G_OBJECT (banner), kLabelKey));
    g_return_val_if_fail (label != NULL, NULL);
    return gtk_label_get_text (GTK_LABEL (label));
}
