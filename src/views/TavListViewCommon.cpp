/* libcalendarui - what the task and note lists share */

#include "TavListViewCommon.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "KivoNote.h"
#include "KivoStyle.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavPaths.h"

namespace tav::lists {

namespace {

/* Colours of the lists: light text on the dark surface of the views. */
constexpr char kListBase[] = "#1F2833";
constexpr char kListText[] = "#F2F5F8";
constexpr char kListRule[] = "#2E3A47";
constexpr KivoRgb kAccent = { 0.118, 0.435, 0.851 };
/* What an empty list is painted in when the theme names no colour. */
constexpr KivoRgb kFallbackGrey = { 0.827, 0.827, 0.827 };

GRefPtr<GdkPixbuf> pixbuf_of_surface (cairo_surface_t *surface, int size)
{
    /* Cairo keeps premultiplied BGRA; a pixbuf wants straight RGBA. */
    GdkPixbuf *pixbuf = gdk_pixbuf_new (GDK_COLORSPACE_RGB, TRUE, 8, size, size);
    cairo_surface_flush (surface);
    const unsigned char *src = cairo_image_surface_get_data (surface);
    const int src_stride = cairo_image_surface_get_stride (surface);
    unsigned char *dst = gdk_pixbuf_get_pixels (pixbuf);
    const int dst_stride = gdk_pixbuf_get_rowstride (pixbuf);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            guint32 p;
            memcpy (&p, src + y * src_stride + x * 4, 4);
            const guint a = p >> 24;
            unsigned char *d = dst + y * dst_stride + x * 4;
            for (int c = 0; c < 3; ++c) {
                const guint v = (p >> (16 - 8 * c)) & 0xff;
                d[c] = static_cast<unsigned char> (a ? std::min (255u, (v * 255 + a / 2) / a) : 0);
            }
            d[3] = static_cast<unsigned char> (a);
        }
    }
    return adoptGRef (pixbuf);
}

template <typename Paint>
GRefPtr<GdkPixbuf> draw_icon (int size, Paint paint)
{
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_ARGB32, size, size);
    cairo_t *cr = cairo_create (surface);
    paint (cr);
    cairo_destroy (cr);
    GRefPtr<GdkPixbuf> out = pixbuf_of_surface (surface, size);
    cairo_surface_destroy (surface);
    return out;
}

GRefPtr<GdkPixbuf> icon_from_theme (const char *subdir, const char *file, GError **error)
{
    GCharPtr path (g_strconcat (tav_icon_dir (), subdir, file, nullptr));
    return adoptGRef (gdk_pixbuf_new_from_file (path.get (), error));
}

} // namespace

GRefPtr<GdkPixbuf> load_add_icon ()
{
    GRefPtr<GdkPixbuf> icon = icon_from_theme ("48x48/kivo/", "general_add.png", nullptr);
    if (!icon)
        TAV_WARNING ("pixbuf is not being created");
    return icon;
}

GRefPtr<GdkPixbuf> load_alarm_icon ()
{
    GError *error = nullptr;
    GRefPtr<GdkPixbuf> icon = icon_from_theme ("16x16/kivo/", "calendar_alarm.png", &error);
    if (!icon) {
        TAV_WARNING ("Error in creating alarm icon pixbuf: %s", error ? error->message : "unknown error");
        g_clear_error (&error);
    }
    return icon;
}

GRefPtr<GdkPixbuf> draw_status_icon (bool done)
{
    return draw_icon (kStatusIconSize, [done] (cairo_t *cr) {
        const double s = kStatusIconSize;
        kivo_style_rounded_rect (cr, 3, 3, s - 6, s - 6, 8);
        if (done) {
            cairo_set_source_rgb (cr, kAccent.r, kAccent.g, kAccent.b);
            cairo_fill (cr);
            cairo_set_source_rgb (cr, 1, 1, 1);
            cairo_set_line_width (cr, 4.5);
            cairo_set_line_cap (cr, CAIRO_LINE_CAP_ROUND);
            cairo_set_line_join (cr, CAIRO_LINE_JOIN_ROUND);
            cairo_move_to (cr, s * 0.27, s * 0.52);
            cairo_line_to (cr, s * 0.44, s * 0.69);
            cairo_line_to (cr, s * 0.74, s * 0.33);
            cairo_stroke (cr);
        } else {
            cairo_set_source_rgb (cr, 0.78, 0.82, 0.86);
            cairo_set_line_width (cr, 3);
            cairo_stroke (cr);
        }
    });
}

GRefPtr<GdkPixbuf> draw_note_icon ()
{
    return draw_icon (kStatusIconSize, [] (cairo_t *cr) {
        const double s = kStatusIconSize;
        kivo_style_rounded_rect (cr, 7, 3, s - 14, s - 6, 4);
        cairo_set_source_rgb (cr, 0.98, 0.85, 0.40);
        cairo_fill (cr);
        cairo_set_source_rgb (cr, 0.55, 0.45, 0.15);
        cairo_set_line_width (cr, 2);
        for (int i = 0; i < 4; ++i) {
            const double y = 11 + i * 6.5;
            cairo_move_to (cr, 12, y);
            cairo_line_to (cr, s - 12 - (i == 3 ? 6 : 0), y);
        }
        cairo_stroke (cr);
    });
}

void setup_tree_view (GtkTreeView *tree)
{
    gtk_tree_view_set_headers_visible (tree, FALSE);
    gtk_tree_view_set_enable_search (tree, FALSE);
    gtk_tree_view_set_fixed_height_mode (tree, TRUE);
    gtk_tree_selection_set_mode (gtk_tree_view_get_selection (tree), GTK_SELECTION_NONE);
    GtkWidget *widget = GTK_WIDGET (tree);
    GdkColor base, text;
    gdk_color_parse (kListBase, &base);
    gdk_color_parse (kListText, &text);
    gtk_widget_modify_base (widget, GTK_STATE_NORMAL, &base);
    gtk_widget_modify_bg (widget, GTK_STATE_NORMAL, &base);
    gtk_widget_modify_text (widget, GTK_STATE_NORMAL, &text);
    gtk_widget_modify_fg (widget, GTK_STATE_NORMAL, &text);
}

GtkTreeViewColumn *append_column (GtkTreeView *tree, GtkCellRenderer *cell, int width)
{
    GtkTreeViewColumn *column = gtk_tree_view_column_new ();
    gtk_tree_view_column_pack_start (column, cell, TRUE);
    gtk_tree_view_column_set_sizing (column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width (column, width < 0 ? 100 : width);
    gtk_tree_view_column_set_expand (column, width < 0);
    gtk_tree_view_append_column (tree, column);
    return column;
}

GtkCellRenderer *text_cell (const char *font, float xalign)
{
    GtkCellRenderer *cell = gtk_cell_renderer_text_new ();
    g_object_set (cell, "font", font, "ellipsize", PANGO_ELLIPSIZE_END, "xalign", xalign, "yalign", 0.5f,
                  "xpad", 8, nullptr);
    gtk_cell_renderer_set_fixed_size (cell, -1, kRowHeight);
    return cell;
}

GtkCellRenderer *pixbuf_cell ()
{
    GtkCellRenderer *cell = gtk_cell_renderer_pixbuf_new ();
    gtk_cell_renderer_set_fixed_size (cell, -1, kRowHeight);
    return cell;
}

void paint_no_entries (GtkTreeView *tree, const char *text)
{
    GtkWidget *widget = GTK_WIDGET (tree);
    GdkWindow *bin = gtk_tree_view_get_bin_window (tree);
    if (!bin || !gtk_widget_is_drawable (widget))
        return;
    GdkColor color;
    KivoRgb rgb = kFallbackGrey;
    if (widget->style && gtk_style_lookup_color (widget->style, "SecondaryTextColor", &color))
        rgb = { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    else
        TAV_WARNING ("logical color 'SecondaryTextColor' not found in theme. Use hard-coded LighGray");

    int width = 0, height = 0;
    gdk_drawable_get_size (bin, &width, &height);
    const int top = kRowHeight;
    cairo_t *cr = gdk_cairo_create (bin);
    PangoLayout *layout = pango_cairo_create_layout (cr);
    /* The handheld's face may be missing here: keep its size and let Pango
     * fall back to a common family. */
    PangoFontDescription *font = pango_font_description_from_string ("Velda Sans,DejaVu Sans,Sans 26");
    pango_layout_set_font_description (layout, font);
    pango_font_description_free (font);
    pango_layout_set_text (layout, text, -1);
    pango_layout_set_width (layout, std::max (1, width - 40) * PANGO_SCALE);
    pango_layout_set_alignment (layout, PANGO_ALIGN_CENTER);
    int lw = 0, lh = 0;
    pango_layout_get_pixel_size (layout, &lw, &lh);
    const int area = std::max (height - top, lh);
    cairo_set_source_rgb (cr, rgb.r, rgb.g, rgb.b);
    cairo_move_to (cr, 20, top + (area - lh) / 2);
    pango_cairo_show_layout (cr, layout);
    g_object_unref (layout);
    cairo_destroy (cr);
}

void schedule_empty_check (guint *id, GSourceFunc check, gpointer view)
{
    cancel_empty_check (id);
    *id = g_timeout_add (kEmptyCheckDelayMs, check, view);
}

void cancel_empty_check (guint *id)
{
    if (*id) {
        g_source_remove (*id);
        *id = 0;
    }
}

bool confirm (GtkWidget *view, const char *question)
{
    GtkWidget *top = gtk_widget_get_toplevel (view);
    GtkWindow *parent = gtk_widget_is_toplevel (top) && GTK_IS_WINDOW (top) ? GTK_WINDOW (top) : nullptr;
    GtkWidget *note = kivo_note_new_confirmation (parent, question);
    const gint response = gtk_dialog_run (GTK_DIALOG (note));
    gtk_widget_destroy (note);
    return response == GTK_RESPONSE_OK;
}

GtkWidget *build_delete_menu (GCallback on_delete, gpointer view)
{
    GtkWidget *menu = kivo_gtk_menu_new ();
    g_object_ref_sink (menu);
    GtkWidget *item = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_delete"));
    g_signal_connect (item, "activate", on_delete, view);
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), item);
    gtk_widget_show_all (menu);
    return menu;
}

void paint_row_rules (GtkTreeView *tree, GdkEventExpose *event)
{
    GdkWindow *bin = gtk_tree_view_get_bin_window (tree);
    if (!event || event->window != bin)
        return;
    GtkTreePath *first = nullptr, *last = nullptr;
    if (!gtk_tree_view_get_visible_range (tree, &first, &last))
        return;
    GdkColor rule;
    gdk_color_parse (kListRule, &rule);
    cairo_t *cr = gdk_cairo_create (bin);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    gdk_cairo_set_source_color (cr, &rule);
    cairo_set_line_width (cr, 1);
    int width = 0, height = 0;
    gdk_drawable_get_size (bin, &width, &height);
    for (GtkTreePath *p = first; gtk_tree_path_compare (p, last) <= 0; gtk_tree_path_next (p)) {
        GdkRectangle area;
        gtk_tree_view_get_background_area (tree, p, nullptr, &area);
        cairo_move_to (cr, 12, area.y + area.height - 0.5);
        cairo_line_to (cr, width - 12, area.y + area.height - 0.5);
    }
    cairo_stroke (cr);
    cairo_destroy (cr);
    gtk_tree_path_free (first);
    gtk_tree_path_free (last);
}

bool row_at (GtkTreeView *tree, GdkEventButton *event, GtkTreePath **path, GtkTreeViewColumn **column)
{
    *path = nullptr;
    *column = nullptr;
    if (!event || event->window != gtk_tree_view_get_bin_window (tree))
        return false;
    const int x = static_cast<int> (event->x), y = static_cast<int> (event->y);
    if (gtk_tree_view_get_path_at_pos (tree, x, y, path, column, nullptr, nullptr))
        return true;
    /* Below the last row: the column is found from x alone. */
    GList *columns = gtk_tree_view_get_columns (tree);
    int left = 0;
    for (GList *c = columns; c && !*column; c = c->next) {
        const int w = gtk_tree_view_column_get_width (GTK_TREE_VIEW_COLUMN (c->data));
        if (x >= left && x < left + w)
            *column = GTK_TREE_VIEW_COLUMN (c->data);
        left += w;
    }
    g_list_free (columns);
    return false;
}

void TapTracker::reset ()
{
    m_pressed = false;
    g_clear_pointer (&m_path, gtk_tree_path_free);
}

void TapTracker::press (GtkTreeView *tree, GdkEventButton *event)
{
    if (event->type != GDK_BUTTON_PRESS)
        return;
    reset ();
    m_pressed = event->button == 1;
    GtkTreeViewColumn *column = nullptr;
    if (m_pressed)
        row_at (tree, event, &m_path, &column);
}

bool TapTracker::release (GtkTreeView *tree, GdkEventButton *event, GtkTreePath **path, GtkTreeViewColumn **column)
{
    const bool pressed = m_pressed && event->button == 1;
    GtkTreePath *start = std::exchange (m_path, nullptr);
    m_pressed = false;
    *path = nullptr;
    *column = nullptr;
    bool same = false;
    if (pressed) {
        const bool on_row = row_at (tree, event, path, column);
        same = on_row ? start && gtk_tree_path_compare (*path, start) == 0 : !start;
    }
    if (start)
        gtk_tree_path_free (start);
    if (!same || !*column)
        g_clear_pointer (path, gtk_tree_path_free);
    return same && *column;
}

GObject *entry_under_press (GtkTreeView *tree, GdkEvent *event)
{
    GtkTreePath *path = nullptr;
    GtkTreeViewColumn *column = nullptr;
    GtkTreeIter iter;
    GObject *entry = nullptr;
    GtkTreeModel *model = gtk_tree_view_get_model (tree);
    if (event && event->type == GDK_BUTTON_PRESS && model && row_at (tree, &event->button, &path, &column)
        && gtk_tree_model_get_iter (model, &iter, path))
        gtk_tree_model_get (model, &iter, 0, &entry, -1);
    gtk_tree_path_free (path);
    return entry;
}

void popup_menu (GtkWidget *menu)
{
    gtk_menu_popup (GTK_MENU (menu), nullptr, nullptr, nullptr, nullptr, 1, gtk_get_current_event_time ());
}

void destroy_menu (GtkWidget **menu)
{
    if (*menu) {
        gtk_widget_destroy (*menu);
        g_object_unref (*menu);
        *menu = nullptr;
    }
}

void emit_read_detached (GtkTreeView *tree, GtkTreeModel *model, guint signal_id, const bool *disposed)
{
    const bool attached = gtk_tree_view_get_model (tree) == model;
    if (attached)
        gtk_tree_view_set_model (tree, nullptr);
    gboolean handled = FALSE;
    g_signal_emit (tree, signal_id, 0, &handled);
    if (attached && !*disposed)
        gtk_tree_view_set_model (tree, model);
}

void paint_overlay (GtkTreeView *tree, GdkEventExpose *event, bool empty, const char *text)
{
    paint_row_rules (tree, event);
    if (empty && event->window == gtk_tree_view_get_bin_window (tree))
        paint_no_entries (tree, text);
}

} // namespace tav::lists
