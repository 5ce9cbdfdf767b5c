#include "SettingsTestSupport.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace tav::test {

GtkWidget *find_widget (GtkWidget *root, const std::function<bool (GtkWidget *)> &match)
{
    if (match (root))
        return root;
    if (!GTK_IS_CONTAINER (root))
        return nullptr;
    GList *children = gtk_container_get_children (GTK_CONTAINER (root));
    GtkWidget *found = nullptr;
    for (GList *l = children; l && !found; l = l->next)
        found = find_widget (GTK_WIDGET (l->data), match);
    g_list_free (children);
    return found;
}

void tap_middle (GtkWidget *widget)
{
    PointerDriver::tap (widget, widget->allocation.width / 2, widget->allocation.height / 2);
    flush_events ();
}

void tap_selector_row (KivoTouchSelector *selector, int row)
{
    GtkWidget *view = kivo_touch_selector_get_column_view (selector, 0);
    GtkTreePath *path = gtk_tree_path_new_from_indices (row, -1);
    gtk_tree_view_scroll_to_cell (GTK_TREE_VIEW (view), path, nullptr, FALSE, 0, 0);
    flush_events ();
    GdkRectangle cell;
    gtk_tree_view_get_cell_area (GTK_TREE_VIEW (view), path, nullptr, &cell);
    gtk_tree_path_free (path);
    int x = 0, y = 0;
    gdk_window_get_origin (gtk_tree_view_get_bin_window (GTK_TREE_VIEW (view)), &x, &y);
    PointerDriver::move_root (x + 40, y + cell.y + cell.height / 2);
    PointerDriver::press (1);
    PointerDriver::release (1);
    flush_events ();
}

bool wait_mapped (GtkWidget *const &widget, int timeout_ms)
{
    const bool ok = run_main_loop_until ([&widget] { return widget && gtk_widget_get_mapped (widget); }, timeout_ms);
    flush_events ();
    return ok;
}

void write_test_wav (const std::string &path)
{
    const int rate = 8000, count = 800;
    std::vector<int16_t> samples (count);
    for (int i = 0; i < count; ++i)
        samples[i] = static_cast<int16_t> (8000 * std::sin (2 * M_PI * 440 * i / rate));
    const uint32_t data = count * 2;
    const uint32_t header[] = { 0x46464952u, 36 + data, 0x45564157u, 0x20746d66u, 16, 0x00010001u,
                                static_cast<uint32_t> (rate), static_cast<uint32_t> (rate * 2), 0x00100002u,
                                0x61746164u, data };
    std::FILE *f = std::fopen (path.c_str (), "wb");
    ASSERT_NE (f, nullptr);
    std::fwrite (header, sizeof header, 1, f);
    std::fwrite (samples.data (), 2, samples.size (), f);
    std::fclose (f);
}

} // namespace tav::test
