/* Banners, confirmation notes and context menus. */

#include "KivoBanner.h"
#include "KivoDialogs.h"
#include "KivoNote.h"
#include "PointerDriver.h"

#include "TestSupport.h"

using namespace tav::test;

TEST (Banner, DisappearsByItself)
{
    REQUIRE_DISPLAY ();
    GtkWidget *window = make_test_window (400, 300);
    gtk_widget_show (window);
    flush_events ();
    GtkWidget *banner = kivo_banner_show_information (window, nullptr, "Event saved");
    ASSERT_NE (banner, nullptr);
    EXPECT_STREQ (kivo_banner_get_text (banner), "Event saved");
    EXPECT_FALSE (gtk_window_get_accept_focus (GTK_WINDOW (banner))) << "a banner never takes the focus";
    bool destroyed = false;
    g_signal_connect (banner, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer d) { *static_cast<bool *> (d) = true; }),
                      &destroyed);
    flush_events ();
    EXPECT_TRUE (gtk_widget_get_mapped (banner));
    const gint64 start = g_get_monotonic_time ();
    ASSERT_TRUE (run_main_loop_until ([&] { return destroyed; }, KIVO_BANNER_TIMEOUT_MS + 2000));
    const gint64 elapsed_ms = (g_get_monotonic_time () - start) / 1000;
    EXPECT_GE (elapsed_ms, KIVO_BANNER_TIMEOUT_MS - 200);
    GList *visible = kivo_banner_get_visible ();
    EXPECT_EQ (visible, nullptr);
    g_list_free (visible);
    gtk_widget_destroy (window);
}

TEST (Banner, StackAndCloseUp)
{
    REQUIRE_DISPLAY ();
    GtkWidget *window = make_test_window (500, 300);
    gtk_widget_show (window);
    flush_events ();
    GtkWidget *first = kivo_banner_show_information (window, nullptr, "First");
    GtkWidget *second = kivo_banner_show_information (window, nullptr, "Second, a little longer");
    flush_events ();
    int x1, y1, x2, y2;
    gdk_window_get_origin (first->window, &x1, &y1);
    gdk_window_get_origin (second->window, &x2, &y2);
    EXPECT_GE (y2, y1 + first->allocation.height) << "the second stands below the first";
    GList *visible = kivo_banner_get_visible ();
    ASSERT_EQ (g_list_length (visible), 2u);
    EXPECT_EQ (visible->data, first);
    g_list_free (visible);

    gtk_widget_destroy (first);
    flush_events ();
    int x3, y3;
    gdk_window_get_origin (second->window, &x3, &y3);
    EXPECT_EQ (y3, y1) << "it moves up into the free place";

    /* Banners go with their window. */
    gtk_widget_destroy (window);
    visible = kivo_banner_get_visible ();
    EXPECT_EQ (visible, nullptr);
    g_list_free (visible);
}

TEST (Banner, RefusesMissingText)
{
    REQUIRE_DISPLAY ();
    LogCapture capture;
    EXPECT_EQ (kivo_banner_show_information (nullptr, nullptr, nullptr), nullptr);
    EXPECT_CRITICAL (capture, "text != NULL");
}

namespace {

struct NoteRun {
    GtkWidget *note;
    bool ok;
};

gboolean tap_note_button_cb (gpointer data)
{
    auto *run = static_cast<NoteRun *> (data);
    GtkWidget *button = run->ok ? kivo_note_get_ok_button (KIVO_NOTE (run->note))
                                : kivo_note_get_cancel_button (KIVO_NOTE (run->note));
    PointerDriver::tap (button, button->allocation.width / 2, button->allocation.height / 2);
    return FALSE;
}

} // namespace

TEST (ConfirmationNote, AnswersGtkDialogRun)
{
    REQUIRE_DISPLAY ();
    if (!PointerDriver::available ())
        GTEST_SKIP () << "no XTest";
    GtkWidget *window = make_test_window (500, 300);
    gtk_widget_show (window);
    flush_events ();
    struct Case {
        const char *label;
        bool ok;
        gint response;
    };
    for (const Case &c : { Case { "OK", true, GTK_RESPONSE_OK }, Case { "Cancel", false, GTK_RESPONSE_CANCEL } }) {
        GtkWidget *note = kivo_note_new_confirmation (GTK_WINDOW (window), "Delete the event \"Lunch\"?");
        EXPECT_STREQ (kivo_note_get_description (KIVO_NOTE (note)), "Delete the event \"Lunch\"?");
        EXPECT_TRUE (gtk_window_get_modal (GTK_WINDOW (note)));
        NoteRun run { note, c.ok };
        g_timeout_add (300, tap_note_button_cb, &run);
        EXPECT_EQ (gtk_dialog_run (GTK_DIALOG (note)), c.response) << c.label;
        gtk_widget_destroy (note);
    }
    GtkWidget *info = kivo_note_new_information (nullptr, "Done");
    EXPECT_EQ (kivo_note_get_cancel_button (KIVO_NOTE (info)), nullptr);
    gtk_widget_destroy (info);
    gtk_widget_destroy (window);
}

TEST (ContextMenu, HasFingerSizedItems)
{
    REQUIRE_DISPLAY ();
    GtkWidget *menu = kivo_gtk_menu_new ();
    ASSERT_TRUE (GTK_IS_MENU (menu));
    GtkWidget *item = gtk_menu_item_new_with_label ("Edit");
    gtk_menu_shell_append (GTK_MENU_SHELL (menu), item);
    gtk_widget_show_all (menu);
    GtkRequisition request;
    gtk_widget_size_request (item, &request);
    EXPECT_GE (request.height, 56) << "a finger can hit it";
    gtk_widget_destroy (menu);
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
    struct Step {
        gint response;
        int page;
        bool previous, next, finish;
    };
    const Step steps[] = {
        { -100, 0, false, true, false },
        { KIVO_WIZARD_DIALOG_NEXT, 1, true, true, false },
        { KIVO_WIZARD_DIALOG_NEXT, 2, true, false, true },
        { KIVO_WIZARD_DIALOG_PREVIOUS, 1, true, true, false },
    };
    for (const Step &s : steps) {
        if (s.response != -100)
            gtk_dialog_response (GTK_DIALOG (wizard), s.response);
        EXPECT_EQ (gtk_notebook_get_current_page (GTK_NOTEBOOK (notebook)), s.page);
        EXPECT_EQ (gtk_widget_get_sensitive (w->previous), s.previous) << "page " << s.page;
        EXPECT_EQ (gtk_widget_get_sensitive (w->next), s.next) << "page " << s.page;
        EXPECT_EQ (gtk_widget_get_sensitive (w->finish), s.finish) << "page " << s.page;
    }
    gtk_widget_destroy (wizard);
}
