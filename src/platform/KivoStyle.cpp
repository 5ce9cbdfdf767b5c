/* Touch platform layer - the look shared by every widget of the layer */

#include "KivoStyle.h"

#include <cmath>

namespace {

constexpr KivoRgb kPalette[KIVO_COLOR_COUNT] = {
    { 0.933, 0.945, 0.961 }, /* background   #EEF1F5 */
    { 1.000, 1.000, 1.000 }, /* surface      #FFFFFF */
    { 0.839, 0.894, 0.969 }, /* pressed      #D6E4F7 */
    { 0.788, 0.820, 0.859 }, /* border       #C9D1DB */
    { 0.118, 0.435, 0.851 }, /* accent       #1E6FD9 */
    { 1.000, 1.000, 1.000 }, /* accent text  #FFFFFF */
    { 0.122, 0.161, 0.200 }, /* text         #1F2933 */
    { 0.373, 0.420, 0.478 }, /* secondary    #5F6B7A */
    { 0.106, 0.157, 0.220 }, /* title bar    #1B2838 */
    { 0.976, 0.980, 0.988 }, /* banner       #F9FAFC: light, to stand out from the title bar */
};

/* Font sizes are in points; at 96 dpi 13 pt is about 18 px. */
const char kRc[] =
    "gtk-font-name = \"Sans 13\"\n"
    "gtk-button-images = 1\n"
    "gtk-menu-images = 1\n"
    "style \"kivo-default\" {\n"
    "  font_name = \"Sans 13\"\n"
    "  bg[NORMAL] = \"#EEF1F5\"\n"
    "  bg[PRELIGHT] = \"#FFFFFF\"\n"
    "  bg[ACTIVE] = \"#D6E4F7\"\n"
    "  bg[SELECTED] = \"#1E6FD9\"\n"
    "  bg[INSENSITIVE] = \"#E4E8ED\"\n"
    "  fg[NORMAL] = \"#1F2933\"\n"
    "  fg[PRELIGHT] = \"#1F2933\"\n"
    "  fg[ACTIVE] = \"#1F2933\"\n"
    "  fg[SELECTED] = \"#FFFFFF\"\n"
    "  fg[INSENSITIVE] = \"#9AA5B1\"\n"
    "  text[NORMAL] = \"#1F2933\"\n"
    "  text[PRELIGHT] = \"#1F2933\"\n"
    "  text[ACTIVE] = \"#FFFFFF\"\n"
    "  text[SELECTED] = \"#FFFFFF\"\n"
    "  text[INSENSITIVE] = \"#9AA5B1\"\n"
    "  base[NORMAL] = \"#FFFFFF\"\n"
    "  base[PRELIGHT] = \"#FFFFFF\"\n"
    "  base[ACTIVE] = \"#1E6FD9\"\n"
    "  base[SELECTED] = \"#1E6FD9\"\n"
    "  base[INSENSITIVE] = \"#EEF1F5\"\n"
    "  xthickness = 2\n"
    "  ythickness = 2\n"
    "  GtkWidget::focus-line-width = 0\n"
    "  GtkWidget::focus-padding = 0\n"
    "  GtkWidget::interior-focus = 1\n"
    "  GtkButton::inner-border = { 20, 20, 16, 16 }\n"
    "  GtkButton::default-border = { 0, 0, 0, 0 }\n"
    "  GtkButton::default-outside-border = { 0, 0, 0, 0 }\n"
    "  GtkButton::child-displacement-x = 0\n"
    "  GtkButton::child-displacement-y = 0\n"
    "  GtkCheckButton::indicator-size = 30\n"
    "  GtkCheckButton::indicator-spacing = 8\n"
    "  GtkEntry::inner-border = { 12, 12, 14, 14 }\n"
    "  GtkTreeView::vertical-separator = 0\n"
    "  GtkTreeView::horizontal-separator = 16\n"
    "  GtkScrollbar::slider-width = 8\n"
    "  GtkScrollbar::trough-border = 0\n"
    "  GtkScrollbar::has-backward-stepper = 0\n"
    "  GtkScrollbar::has-forward-stepper = 0\n"
    "  GtkMenuItem::horizontal-padding = 8\n"
    "  GtkMenu::vertical-padding = 8\n"
    "  GtkDialog::action-area-border = 12\n"
    "  GtkDialog::content-area-border = 8\n"
    "  GtkDialog::button-spacing = 8\n"
    "}\n"
    "style \"kivo-menu-item\" {\n"
    "  xthickness = 16\n"
    "  ythickness = 20\n"
    "  fg[PRELIGHT] = \"#FFFFFF\"\n"
    "}\n"
    "style \"kivo-title-bar\" {\n"
    "  bg[NORMAL] = \"#1B2838\"\n"
    "  bg[PRELIGHT] = \"#243447\"\n"
    "  bg[ACTIVE] = \"#2E4259\"\n"
    "  fg[NORMAL] = \"#FFFFFF\"\n"
    "  fg[PRELIGHT] = \"#FFFFFF\"\n"
    "  fg[ACTIVE] = \"#FFFFFF\"\n"
    "  font_name = \"Sans Bold 14\"\n"
    "}\n"
    "style \"kivo-value\" {\n"
    "  fg[NORMAL] = \"#1E6FD9\"\n"
    "  fg[PRELIGHT] = \"#1E6FD9\"\n"
    "  fg[ACTIVE] = \"#1E6FD9\"\n"
    "  font_name = \"Sans 12\"\n"
    "}\n"
    "style \"kivo-secondary\" {\n"
    "  fg[NORMAL] = \"#5F6B7A\"\n"
    "  font_name = \"Sans 11\"\n"
    "}\n"
    "style \"kivo-toggle-label\" {\n"
    "  fg[ACTIVE] = \"#FFFFFF\"\n"
    "}\n"
    "style \"kivo-dialog-title\" {\n"
    "  font_name = \"Sans Bold 14\"\n"
    "}\n"
    "style \"kivo-banner\" {\n"
    "  bg[NORMAL] = \"#F9FAFC\"\n"
    "  fg[NORMAL] = \"#1F2933\"\n"
    "  font_name = \"Sans 13\"\n"
    "}\n"
    "class \"GtkWidget\" style \"kivo-default\"\n"
    "class \"GtkMenuItem\" style \"kivo-menu-item\"\n"
    "widget \"*.kivo-title-bar*\" style \"kivo-title-bar\"\n"
    "widget \"*.kivo-button-value\" style \"kivo-value\"\n"
    "widget \"*.kivo-secondary\" style \"kivo-secondary\"\n"
    "widget \"kivo-banner*\" style \"kivo-banner\"\n"
    "widget \"*.kivo-dialog-title\" style \"kivo-dialog-title\"\n"
    "widget_class \"*GtkToggleButton.GtkLabel\" style \"kivo-toggle-label\"\n"
    "widget_class \"*GtkRadioButton.GtkLabel\" style \"kivo-toggle-label\"\n";

/* GTK's default drawing, kept for the details we leave alone. */
struct {
    decltype (GtkStyleClass::draw_box) draw_box;
    decltype (GtkStyleClass::draw_shadow) draw_shadow;
    decltype (GtkStyleClass::draw_check) draw_check;
    decltype (GtkStyleClass::draw_option) draw_option;
    decltype (GtkStyleClass::draw_flat_box) draw_flat_box;
} gDefault;

cairo_t *begin (GdkWindow *window, GdkRectangle *area)
{
    cairo_t *cr = gdk_cairo_create (window);
    if (area) {
        gdk_cairo_rectangle (cr, area);
        cairo_clip (cr);
    }
    return cr;
}

bool has_detail (const char *detail, const char *name)
{
    return detail && g_str_equal (detail, name);
}

bool inside_title_bar (GtkWidget *widget)
{
    for (GtkWidget *w = widget; w; w = gtk_widget_get_parent (w)) {
        const char *name = gtk_widget_get_name (w);
        if (name && g_str_has_prefix (name, "kivo-title-bar"))
            return true;
    }
    return false;
}

void kivo_draw_box (GtkStyle *style, GdkWindow *window, GtkStateType state, GtkShadowType shadow,
                    GdkRectangle *area, GtkWidget *widget, const gchar *detail,
                    gint x, gint y, gint width, gint height)
{
    if (has_detail (detail, "button") || has_detail (detail, "optionmenu")) {
        cairo_t *cr = begin (window, area);
        const bool title = inside_title_bar (widget);
        /* Radio and check buttons drawn as plain toggles show their state
         * with the accent colour. */
        const bool toggled = widget && GTK_IS_TOGGLE_BUTTON (widget)
                             && gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (widget))
                             && !gtk_toggle_button_get_mode (GTK_TOGGLE_BUTTON (widget));
        kivo_style_rounded_rect (cr, x + 1.5, y + 1.5, width - 3, height - 3, KIVO_CORNER_RADIUS);
        if (title) {
            gdk_cairo_set_source_color (cr, &style->bg[state == GTK_STATE_ACTIVE ? GTK_STATE_ACTIVE : GTK_STATE_NORMAL]);
            cairo_fill (cr);
        } else {
            KivoColorRole fill = KIVO_COLOR_SURFACE;
            if (toggled)
                fill = KIVO_COLOR_ACCENT;
            else if (state == GTK_STATE_ACTIVE || shadow == GTK_SHADOW_IN)
                fill = KIVO_COLOR_SURFACE_PRESSED;
            kivo_style_set_source (cr, fill, state == GTK_STATE_INSENSITIVE ? 0.5 : 1.0);
            cairo_fill_preserve (cr);
            kivo_style_set_source (cr, toggled ? KIVO_COLOR_ACCENT : KIVO_COLOR_BORDER, 1.0);
            cairo_set_line_width (cr, 1.0);
            cairo_stroke (cr);
        }
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "buttondefault"))
        return;
    if (has_detail (detail, "menuitem")) {
        cairo_t *cr = begin (window, area);
        kivo_style_rounded_rect (cr, x + 2, y + 1, width - 4, height - 2, 6.0);
        kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 1.0);
        cairo_fill (cr);
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "menu")) {
        cairo_t *cr = begin (window, area);
        cairo_rectangle (cr, x, y, width, height);
        kivo_style_set_source (cr, KIVO_COLOR_SURFACE, 1.0);
        cairo_fill_preserve (cr);
        kivo_style_set_source (cr, KIVO_COLOR_BORDER, 1.0);
        cairo_set_line_width (cr, 2.0);
        cairo_stroke (cr);
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "trough") && widget && GTK_IS_PROGRESS_BAR (widget)) {
        /* A progress bar shows how far it has to go. */
        cairo_t *cr = begin (window, area);
        kivo_style_rounded_rect (cr, x + 1, y + 1, width - 2, height - 2, MIN (width, height) / 2.0 - 1);
        kivo_style_set_source (cr, KIVO_COLOR_SURFACE, 1.0);
        cairo_fill_preserve (cr);
        kivo_style_set_source (cr, KIVO_COLOR_BORDER, 1.0);
        cairo_set_line_width (cr, 1.0);
        cairo_stroke (cr);
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "trough")) {
        cairo_t *cr = begin (window, area);
        cairo_rectangle (cr, x, y, width, height);
        kivo_style_set_source (cr, KIVO_COLOR_BACKGROUND, 1.0);
        cairo_fill (cr);
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "slider") || has_detail (detail, "bar")) {
        cairo_t *cr = begin (window, area);
        kivo_style_rounded_rect (cr, x + 1, y + 1, width - 2, height - 2, MIN (width, height) / 2.0 - 1);
        kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 0.8);
        cairo_fill (cr);
        cairo_destroy (cr);
        return;
    }
    gDefault.draw_box (style, window, state, shadow, area, widget, detail, x, y, width, height);
}

void kivo_draw_shadow (GtkStyle *style, GdkWindow *window, GtkStateType state, GtkShadowType shadow,
                       GdkRectangle *area, GtkWidget *widget, const gchar *detail,
                       gint x, gint y, gint width, gint height)
{
    if (has_detail (detail, "entry")) {
        cairo_t *cr = begin (window, area);
        const bool focused = widget && gtk_widget_has_focus (widget);
        kivo_style_rounded_rect (cr, x + 0.5, y + 0.5, width - 1, height - 1, 4.0);
        kivo_style_set_source (cr, focused ? KIVO_COLOR_ACCENT : KIVO_COLOR_BORDER, 1.0);
        cairo_set_line_width (cr, focused ? 2.0 : 1.0);
        cairo_stroke (cr);
        cairo_destroy (cr);
        return;
    }
    if (has_detail (detail, "scrolled_window") || has_detail (detail, "viewport")
        || has_detail (detail, "frame") || has_detail (detail, "menu"))
        return;
    gDefault.draw_shadow (style, window, state, shadow, area, widget, detail, x, y, width, height);
}

void kivo_draw_focus (GtkStyle *, GdkWindow *, GtkStateType, GdkRectangle *, GtkWidget *, const gchar *,
                      gint, gint, gint, gint)
{
    /* A touch screen has no keyboard focus to show. */
}

void kivo_draw_check (GtkStyle *style, GdkWindow *window, GtkStateType state, GtkShadowType shadow,
                      GdkRectangle *area, GtkWidget *widget, const gchar *detail,
                      gint x, gint y, gint width, gint height)
{
    cairo_t *cr = begin (window, area);
    const double size = MIN (width, height);
    const bool on = shadow == GTK_SHADOW_IN;
    kivo_style_rounded_rect (cr, x + 1, y + 1, size - 2, size - 2, 6.0);
    kivo_style_set_source (cr, on ? KIVO_COLOR_ACCENT : KIVO_COLOR_SURFACE, 1.0);
    cairo_fill_preserve (cr);
    kivo_style_set_source (cr, on ? KIVO_COLOR_ACCENT : KIVO_COLOR_SECONDARY_TEXT, 1.0);
    cairo_set_line_width (cr, 2.0);
    cairo_stroke (cr);
    if (on) {
        cairo_set_line_width (cr, size / 9.0);
        cairo_set_line_cap (cr, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join (cr, CAIRO_LINE_JOIN_ROUND);
        cairo_move_to (cr, x + size * 0.25, y + size * 0.52);
        cairo_line_to (cr, x + size * 0.43, y + size * 0.70);
        cairo_line_to (cr, x + size * 0.76, y + size * 0.32);
        kivo_style_set_source (cr, KIVO_COLOR_ACCENT_TEXT, 1.0);
        cairo_stroke (cr);
    }
    cairo_destroy (cr);
}

void kivo_draw_option (GtkStyle *style, GdkWindow *window, GtkStateType state, GtkShadowType shadow,
                       GdkRectangle *area, GtkWidget *widget, const gchar *detail,
                       gint x, gint y, gint width, gint height)
{
    cairo_t *cr = begin (window, area);
    const double size = MIN (width, height);
    const bool on = shadow == GTK_SHADOW_IN;
    cairo_arc (cr, x + size / 2, y + size / 2, size / 2 - 1.5, 0, 2 * G_PI);
    kivo_style_set_source (cr, KIVO_COLOR_SURFACE, 1.0);
    cairo_fill_preserve (cr);
    kivo_style_set_source (cr, on ? KIVO_COLOR_ACCENT : KIVO_COLOR_SECONDARY_TEXT, 1.0);
    cairo_set_line_width (cr, 2.0);
    cairo_stroke (cr);
    if (on) {
        cairo_arc (cr, x + size / 2, y + size / 2, size / 4, 0, 2 * G_PI);
        kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 1.0);
        cairo_fill (cr);
    }
    cairo_destroy (cr);
}

void kivo_draw_flat_box (GtkStyle *style, GdkWindow *window, GtkStateType state, GtkShadowType shadow,
                         GdkRectangle *area, GtkWidget *widget, const gchar *detail,
                         gint x, gint y, gint width, gint height)
{
    /* Selected tree rows: a flat accent band rather than GTK's bevelled one. */
    if (detail && g_str_has_prefix (detail, "cell_") && state == GTK_STATE_SELECTED) {
        cairo_t *cr = begin (window, area);
        cairo_rectangle (cr, x, y, width, height);
        kivo_style_set_source (cr, KIVO_COLOR_ACCENT, 1.0);
        cairo_fill (cr);
        cairo_destroy (cr);
        return;
    }
    gDefault.draw_flat_box (style, window, state, shadow, area, widget, detail, x, y, width, height);
}

} // namespace

KivoRgb
kivo_style_color (KivoColorRole role)
{
    g_return_val_if_fail (role >= 0 && role < KIVO_COLOR_COUNT, kPalette[KIVO_COLOR_TEXT]);
    return kPalette[role];
}

void
kivo_style_set_source (cairo_t *cr, KivoColorRole role, double alpha)
{
    const KivoRgb c = kivo_style_color (role);
    cairo_set_source_rgba (cr, c.r, c.g, c.b, alpha);
}

void
kivo_style_rounded_rect (cairo_t *cr, double x, double y, double width, double height, double radius)
{
    radius = std::fmax (0.0, std::fmin (radius, std::fmin (width, height) / 2.0));
    cairo_new_sub_path (cr);
    cairo_arc (cr, x + width - radius, y + radius, radius, -G_PI / 2, 0);
    cairo_arc (cr, x + width - radius, y + height - radius, radius, 0, G_PI / 2);
    cairo_arc (cr, x + radius, y + height - radius, radius, G_PI / 2, G_PI);
    cairo_arc (cr, x + radius, y + radius, radius, G_PI, 3 * G_PI / 2);
    cairo_close_path (cr);
}

void
kivo_style_paint_surface (GdkWindow *window, const GdkRectangle *clip, int x, int y, int width, int height,
                          KivoColorRole fill, gboolean border)
{
    g_return_if_fail (GDK_IS_DRAWABLE (window));
    cairo_t *cr = gdk_cairo_create (window);
    if (clip) {
        gdk_cairo_rectangle (cr, clip);
        cairo_clip (cr);
    }
    kivo_style_rounded_rect (cr, x + 1.5, y + 1.5, width - 3, height - 3, KIVO_CORNER_RADIUS);
    kivo_style_set_source (cr, fill, 1.0);
    if (border) {
        cairo_fill_preserve (cr);
        kivo_style_set_source (cr, fill == KIVO_COLOR_ACCENT ? KIVO_COLOR_ACCENT : KIVO_COLOR_BORDER, 1.0);
        cairo_set_line_width (cr, 1.0);
        cairo_stroke (cr);
    } else {
        cairo_fill (cr);
    }
    cairo_destroy (cr);
}

void
kivo_style_paint_framed (GtkWidget *widget, GdkEventExpose *event, KivoColorRole border, double line_width)
{
    cairo_t *cr = gdk_cairo_create (widget->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    cairo_rectangle (cr, 0, 0, widget->allocation.width, widget->allocation.height);
    kivo_style_set_source (cr, KIVO_COLOR_BACKGROUND, 1.0);
    cairo_fill_preserve (cr);
    kivo_style_set_source (cr, border, 1.0);
    cairo_set_line_width (cr, line_width);
    cairo_stroke (cr);
    cairo_destroy (cr);
    if (GtkWidget *child = gtk_bin_get_child (GTK_BIN (widget)))
        gtk_container_propagate_expose (GTK_CONTAINER (widget), child, event);
}

static gboolean
on_dialog_expose_cb (GtkWidget *window, GdkEventExpose *event, gpointer)
{
    kivo_style_paint_framed (window, event, KIVO_COLOR_TITLE_BAR, 3.0);
    return TRUE;
}

void
kivo_style_decorate_dialog (GtkWidget *window, const char *title)
{
    g_return_if_fail (GTK_IS_WINDOW (window));
    gtk_widget_set_app_paintable (window, TRUE);
    g_signal_connect (window, "expose-event", G_CALLBACK (on_dialog_expose_cb), nullptr);
    if (title && *title && GTK_IS_DIALOG (window)) {
        GtkWidget *label = gtk_label_new (title);
        gtk_widget_set_name (label, "kivo-dialog-title");
        gtk_misc_set_alignment (GTK_MISC (label), 0.0, 0.5);
        gtk_misc_set_padding (GTK_MISC (label), 12, 10);
        GtkWidget *content = gtk_dialog_get_content_area (GTK_DIALOG (window));
        gtk_box_pack_start (GTK_BOX (content), label, FALSE, FALSE, 0);
        gtk_box_reorder_child (GTK_BOX (content), label, 0);
        gtk_widget_show (label);
    }
}

static bool s_rc_done = false;

void
kivo_style_init (void)
{
    /* The drawing is replaced once per process; the gtkrc needs a display,
     * so a process that touched our types before opening one gets it on a
     * later call. */
    static gsize drawing_done = 0;
    if (g_once_init_enter (&drawing_done)) {
        auto *klass = static_cast<GtkStyleClass *> (g_type_class_ref (GTK_TYPE_STYLE));
        gDefault.draw_box = klass->draw_box;
        gDefault.draw_shadow = klass->draw_shadow;
        gDefault.draw_check = klass->draw_check;
        gDefault.draw_option = klass->draw_option;
        gDefault.draw_flat_box = klass->draw_flat_box;
        klass->draw_box = kivo_draw_box;
        klass->draw_shadow = kivo_draw_shadow;
        klass->draw_focus = kivo_draw_focus;
        klass->draw_check = kivo_draw_check;
        klass->draw_option = kivo_draw_option;
        klass->draw_flat_box = kivo_draw_flat_box;
        g_once_init_leave (&drawing_done, 1);
    }
    if (!s_rc_done && gdk_display_get_default ()) {
        s_rc_done = true;
        gtk_rc_parse_string (kRc);
        gtk_rc_reset_styles (gtk_settings_get_default ());
    }
}

gboolean
kivo_style_installed (void)
{
    return s_rc_done;
}
