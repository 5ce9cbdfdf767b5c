#include "SettingsTestSupport.h"

#include "TavTonePreview.h"

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

bool wait_mapped (GtkWidget *const &widget, int timeout_ms)
{
    const bool ok = run_main_loop_until ([&widget] { return widget && gtk_widget_get_mapped (widget); }, timeout_ms);
    flush_events ();
    return ok;
}

void write_test_wav (const std::string &path)
{
    gchar *data = nullptr;
    gsize length = 0;
    ASSERT_TRUE (g_file_get_contents (tav::default_tone_file ().c_str (), &data, &length, nullptr));
    ASSERT_TRUE (g_file_set_contents (path.c_str (), data, static_cast<gssize> (length), nullptr));
    g_free (data);
}

} // namespace tav::test
