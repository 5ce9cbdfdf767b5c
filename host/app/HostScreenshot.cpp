/* The pieces every --screenshot of tav-calendar shares: letting the screen
 * settle, and writing what was read from it as a PNG file. */
#include "HostScreenshot.h"

#include <cstdio>

namespace tav::host {

void settle_screen (int rounds)
{
    for (int i = 0; i < rounds; ++i) {
        while (gtk_events_pending ()) {
            gtk_main_iteration_do (FALSE);
        }
        gdk_flush ();
        g_usleep (20000);
    }
}

bool save_dialog (GtkWidget *dialog, const std::string &dir, const char *name)
{
    gtk_window_move (GTK_WINDOW (dialog), 0, 0);
    gtk_widget_set_size_request (dialog, 800, 480);
    gtk_widget_show (dialog);
    settle_screen (15);
    int x = 0, y = 0;
    gdk_window_get_origin (dialog->window, &x, &y);
    GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (nullptr, gdk_get_default_root_window (), nullptr, x, y, 0, 0,
                                                    dialog->allocation.width, dialog->allocation.height);
    return save_shot (shot, dir + "/" + name + ".png");
}

bool save_shot (GdkPixbuf *shot, const std::string &path)
{
    GError *err = nullptr;
    const bool saved = shot && gdk_pixbuf_save (shot, path.c_str (), "png", &err, nullptr);
    if (!saved) {
        fprintf (stderr, "tav-calendar: cannot write '%s': %s\n", path.c_str (), err ? err->message : "no image");
        g_clear_error (&err);
    } else {
        printf ("%s\n", path.c_str ());
    }
    if (shot) {
        g_object_unref (shot);
    }
    return saved;
}

} // namespace tav::host
