/* Banners, confirmation notes and wizard dialogs. */

#include "KivoBanner.h"

#include <algorithm>
#include "KivoDialogs.h"
#include "KivoNote.h"
#include "PointerDriver.h"

#include "TestSupport.h"

using namespace tav::test;

namespace {

int top_of (GtkWidget *banner)
{
    int x = 0, y = 0;
    gdk_window_get_origin (banner->window, &x, &y);
    return y;
}

guint visible_banners ()
{
    GList *visible = kivo_banner_get_visible ();
    const guint n = g_list_length (visible);
    g_list_free (visible);
    return n;
}

} // namespace

TEST (Banner, StacksClosesUpAndDisappearsByItself)
{
    REQUIRE_DISPLAY ();
    {
        LogCapture capture;
        EXPECT_EQ (kivo_banner_show_information (nullptr, nullptr, nullptr), nullptr);
        EXPECT_CRITICAL (capture, "text != NULL");
    }
    GtkWidget *window = make_test_window (500, 300, gtk_label_new (""));
    const gint64 start = g_get_monotonic_time ();
    GtkWidget *first = kivo_banner_show_information (window, nullptr, "First");
    GtkWidget *second = kivo_banner_show_information (window, nullptr, "Event saved");
    EXPECT_STREQ (kivo_banner_get_text (second), "Event saved");
    EXPECT_FALSE (gtk_window_get_accept_focus (GTK_WINDOW (second))) << "a banner never takes the focus";
    flush_events ();
    EXPECT_TRUE (gtk_widget_get_mapped (second));
    const int first_top = top_of (first);
    EXPECT_GE (top_of (second), first_top + first->allocation.height) << "the second stands below the first";
    EXPECT_EQ (visible_banners (), 2u);
    gtk_widget_destroy (first);
    flush_events ();
    EXPECT_EQ (top_of (second), first_top) << "it moves up into the free place";
    /* Light inside an accent frame, never dark on the dark title bar. */
    gdk_window_process_all_updates ();
    const int w = second->allocation.width, h = second->allocation.height;
    GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (NULL, second->window, NULL, 0, 0, 0, 0, w, h);
    ASSERT_NE (shot, nullptr);
    const guchar *pixels = gdk_pixbuf_get_pixels (shot);
    const int stride = gdk_pixbuf_get_rowstride (shot), channels = gdk_pixbuf_get_n_channels (shot);
    auto at = [&] (int x, int y) { return pixels + y * stride + x * channels; };
    const guchar *inside = at (12, h / 2);
    EXPECT_TRUE (inside[0] > 0xe0 && inside[1] > 0xe0 && inside[2] > 0xe0)
        << int (inside[0]) << "," << int (inside[1]) << "," << int (inside[2]);
    /* ... with dark text on it. */
    int darkest = 255;
    for (int x = 0; x < w; x++)
        darkest = std::min (darkest, int (at (x, h / 2)[1]));
    EXPECT_LT (darkest, 0x60);
    g_object_unref (shot);

    int destroyed = 0;
    count_signal (second, "destroy", &destroyed);
    ASSERT_TRUE (run_main_loop_until ([&] { return destroyed; }, KIVO_BANNER_TIMEOUT_MS + 2000));
    EXPECT_GE ((g_get_monotonic_time () - start) / 1000, KIVO_BANNER_TIMEOUT_MS - 200);
    EXPECT_EQ (visible_banners (), 0u);

    /* Banners go with their window. */
    kivo_banner_show_information (window, nullptr, "Third");
    EXPECT_EQ (visible_banners (), 1u);
    gtk_widget_destroy (window);
    EXPECT_EQ (visible_banners (), 0u);
}

TEST (ConfirmationNote, AnswersGtkDialogRun)
{
    REQUIRE_XTEST ();
    GtkWidget *window = make_test_window (500, 300, gtk_label_new (""));
    for (gint response : { GTK_RESPONSE_OK, GTK_RESPONSE_CANCEL }) {
        GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (window), "Delete the event \"Lunch\"?");
        EXPECT_STREQ (kivo_note_get_description (KIVO_NOTE (note)), "Delete the event \"Lunch\"?");
        EXPECT_TRUE (gtk_window_get_modal (GTK_WINDOW (note)));
        GtkWidget *button = response == GTK_RESPONSE_OK ? kivo_note_get_ok_button (KIVO_NOTE (note))
                                                        : kivo_note_get_cancel_button (KIVO_NOTE (note));
        /* Tapped as soon as the dialog's own loop runs and shows it. */
        g_idle_add ([] (gpointer b) -> gboolean {
            auto *w = static_cast<GtkWidget *> (b);
            if (!gtk_widget_get_mapped (w))
                return TRUE;
            flush_events ();
            PointerDriver::tap_centre (w);
            return FALSE;
        }, button);
        EXPECT_EQ (gtk_dialog_run (GTK_DIALOG (note)), response);
        gtk_widget_destroy (note);
    }
    GtkWidget *info = kivo_note_new_information (nullptr, "Done");
    EXPECT_EQ (kivo_note_get_cancel_button (KIVO_NOTE (info)), nullptr);
    gtk_widget_destroy (info);
    gtk_widget_destroy (window);
}

TEST (WizardDialog, ButtonsFollowThePages)
{
    REQUIRE_DISPLAY ();
    GtkWidget *notebook = gtk_notebook_new ();
    for (const char *page : { "one", "two", "three" })
        gtk_notebook_append_page (GTK_NOTEBOOK (notebook), gtk_label_new (page), nullptr);
    GtkWidget *wizard = kivo_wizard_dialog_new (nullptr, "Welcome", GTK_NOTEBOOK (notebook));
    gtk_widget_show_all (wizard);
    KivoWizardDialog *w = KIVO_WIZARD_DIALOG (wizard);
    /* response: GTK_RESPONSE_NONE for the first page as it opens */
    struct Step { gint response; int page; bool previous, next, finish; };
    const Step steps[] = {
        { GTK_RESPONSE_NONE, 0, false, true, false }, { KIVO_WIZARD_DIALOG_NEXT, 1, true, true, false },
        { KIVO_WIZARD_DIALOG_NEXT, 2, true, false, true }, { KIVO_WIZARD_DIALOG_PREVIOUS, 1, true, true, false },
    };
    for (const Step &s : steps) {
        if (s.response != GTK_RESPONSE_NONE)
            gtk_dialog_response (GTK_DIALOG (wizard), s.response);
        EXPECT_EQ (gtk_notebook_get_current_page (GTK_NOTEBOOK (notebook)), s.page);
        EXPECT_EQ (gtk_widget_get_sensitive (w->previous), s.previous) << "page " << s.page;
        EXPECT_EQ (gtk_widget_get_sensitive (w->next), s.next) << "page " << s.page;
        EXPECT_EQ (gtk_widget_get_sensitive (w->finish), s.finish) << "page " << s.page;
    }
    gtk_widget_destroy (wizard);
}
