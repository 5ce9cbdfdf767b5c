/* The import dialog and the first-run wizard driven as a person would, with
 * real taps, over the host's real store. */
#include "HostImport.h"
#include "HostWindow.h"
#include "ImportTestSupport.h"
#include "KivoButton.h"
#include "KivoPickerButton.h"
#include "SettingsTestSupport.h"

#include <X11/extensions/XTest.h>
#include <calendarui.h>
#include <gdk/gdkx.h>
#include <unistd.h>

using namespace tav::host;
using namespace tav::host::test;
using namespace tav::test;

namespace {

GtkWidget *button_labelled (GtkWidget *root, const char *label)
{
    return find_widget (root, [label] (GtkWidget *w) {
        return GTK_IS_BUTTON (w) && gtk_widget_get_visible (w) && g_strcmp0 (gtk_button_get_label (GTK_BUTTON (w)), label) == 0;
    });
}

GtkWidget *picker_titled (GtkWidget *root, const char *title)
{
    return find_widget (root, [title] (GtkWidget *w) {
        return KIVO_IS_PICKER_BUTTON (w) && g_strcmp0 (kivo_button_get_title (KIVO_BUTTON (w)), title) == 0;
    });
}

void tap_button (GtkWidget *root, const char *label)
{
    GtkWidget *button = button_labelled (root, label);
    ASSERT_NE (button, nullptr) << label;
    tap_middle (button);
}

/* A tap on the middle of @widget that is only sent: the main loop runs on
 * as it would (the test helpers' taps drain every pending source, the
 * import's idle slices included). */
void send_tap (GtkWidget *widget)
{
    int x = 0, y = 0;
    gdk_window_get_origin (widget->window, &x, &y);
    if (!gtk_widget_get_has_window (widget)) {
        x += widget->allocation.x;
        y += widget->allocation.y;
    }
    Display *display = GDK_DISPLAY_XDISPLAY (gdk_display_get_default ());
    XTestFakeMotionEvent (display, -1, x + widget->allocation.width / 2, y + widget->allocation.height / 2, CurrentTime);
    XTestFakeButtonEvent (display, 1, True, CurrentTime);
    XTestFakeButtonEvent (display, 1, False, CurrentTime);
    XFlush (display);
}

/* Runs the main loop one source at a time until @done. */
bool iterate_until (const std::function<bool ()> &done, int timeout_ms)
{
    const gint64 end = g_get_monotonic_time () + timeout_ms * 1000;
    while (!done ()) {
        if (g_get_monotonic_time () > end) {
            return false;
        }
        g_main_context_iteration (nullptr, FALSE);
    }
    return true;
}

/* Opens @picker with a tap and taps its row @row. */
void choose_row (GtkWidget *picker, int row)
{
    tap_middle (picker);
    GtkWidget *open = nullptr;
    ASSERT_TRUE (run_main_loop_until ([&] { return (open = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (picker))); }, 2000));
    ASSERT_TRUE (wait_mapped (open));
    tap_selector_row (kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (picker)), row);
    ASSERT_TRUE (run_main_loop_until ([&] { return !kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (picker)); }, 2000));
}

/* A store with the calendars Personal and Work, its calendar set, and an
 * import dialog over it, shown at the top left. */
struct DialogRig {
    TempDir dir;
    std::shared_ptr<Store> store;
    std::unique_ptr<CalendarSet> calendars;
    GtkWidget *dialog = nullptr;
    SliceStats stats;

    DialogRig ()
    {
        store = open_store (dir.file ("store.db"));
        CalendarRecord work = calendar_named ("Work");
        store->add_calendar (work);
        calendars = std::make_unique<CalendarSet> (store);
        calendars->reload ();
        dialog = tav_calendar_import_dialog_new ();
        for (const CalendarRecord &c : store->calendars ()) {
            tav_calendar_import_dialog_add_calendar (view (), TAV_CALENDAR_SOURCE (calendars->source (c.id)));
        }
        drive_import_dialog (dialog, *calendars, {}, 8000, &stats);
        g_object_add_weak_pointer (G_OBJECT (dialog), reinterpret_cast<gpointer *> (&dialog));
        gtk_window_move (GTK_WINDOW (dialog), 0, 0);
        gtk_widget_show (dialog);
        wait_mapped (dialog);
    }
    ~DialogRig ()
    {
        if (dialog) {
            gtk_widget_destroy (dialog);
        }
    }
    TavCalendarImportDialog *view () const { return TAV_CALENDAR_IMPORT_DIALOG (dialog); }
    bool wait_stage (TavCalendarImportStage stage, int ms = 60000)
    {
        return run_main_loop_until ([&] { return tav_calendar_import_dialog_get_stage (view ()) == stage; }, ms);
    }
    /* Chooses @file and taps Import. */
    void import (const std::string &file)
    {
        tav_calendar_import_dialog_set_file (view (), file.c_str ());
        tap_button (dialog, "Import");
    }
};

}  // namespace

TEST (ImportDialog, CancelHalfWayThroughTenThousandEventsLeavesTheStoreAsItWas)
{
    REQUIRE_XTEST ();
    DialogRig rig;
    ASSERT_TRUE (import_ics_text (*rig.store, 1, read_file (fixture_path ("calendar.ics"))).stored ());
    const std::string before = dump (*rig.store);
    write_text (rig.dir.file ("big.ics"), sample_calendar_text (10000, false));
    tav_calendar_import_dialog_set_file (rig.view (), rig.dir.file ("big.ics").c_str ());
    send_tap (button_labelled (rig.dialog, "Import"));
    ASSERT_TRUE (iterate_until ([&] { return tav_calendar_import_dialog_get_stage (rig.view ()) == TAV_IMPORT_STAGE_PROGRESS; }, 5000));
    ASSERT_TRUE (iterate_until ([&] { return rig.store->count_entries (1) > 5000; }, 60000));
    send_tap (button_labelled (rig.dialog, "Cancel"));
    const int64_t stored_when_tapped = rig.store->count_entries (1);
    ASSERT_TRUE (iterate_until ([&] { return tav_calendar_import_dialog_get_stage (rig.view ()) == TAV_IMPORT_STAGE_REPORT; }, 5000))
        << "the tap on Cancel is answered during the import";
    EXPECT_LT (stored_when_tapped, 9000) << "cancelled half-way, not at the end";
    EXPECT_GT (rig.stats.slices, 5) << "the import ran in idle slices";
    EXPECT_EQ (dump (*rig.store), before);
    GtkWidget *summary = find_widget (rig.dialog, [] (GtkWidget *w) {
        return GTK_IS_LABEL (w) && g_str_has_suffix (gtk_label_get_text (GTK_LABEL (w)), "nothing was changed.");
    });
    EXPECT_NE (summary, nullptr) << "the report says the import was undone";
    flush_events ();
    tap_button (rig.dialog, "Close");
    EXPECT_TRUE (run_main_loop_until ([&] { return rig.dialog == nullptr; }, 2000));
}

TEST (ImportDialog, ACompletedImportEqualsTheCommandLineImport)
{
    REQUIRE_XTEST ();
    DialogRig rig;
    const std::string file = rig.dir.file ("mixed.ics");
    write_text (file, read_file (fixture_path ("calendar.ics")));
    rig.import (file);
    ASSERT_TRUE (rig.wait_stage (TAV_IMPORT_STAGE_REPORT));

    /* The program's own --import into a store of its own. */
    auto cli_store_path = rig.dir.file ("cli.db");
    {
        auto made = open_store (cli_store_path);
        CalendarRecord work = calendar_named ("Work");
        made->add_calendar (work);
    }
    const char *argv[] = {TAV_CALENDAR_BIN, "--db", cli_store_path.c_str (), "--import", file.c_str (), nullptr};
    gchar *out = nullptr;
    int wait = -1;
    ASSERT_TRUE (g_spawn_sync (nullptr, const_cast<char **> (argv), nullptr, G_SPAWN_STDERR_TO_DEV_NULL, nullptr, nullptr,
                               &out, nullptr, &wait, nullptr));
    const std::string printed = out ? out : "";
    g_free (out);
    auto cli = open_store (cli_store_path, nullptr);
    EXPECT_EQ (dump (*rig.store), dump (*cli));
    /* The dialog's details are what the program printed. */
    GtkWidget *details = find_widget (rig.dialog, [] (GtkWidget *w) {
        return GTK_IS_LABEL (w) && g_str_has_prefix (gtk_label_get_text (GTK_LABEL (w)), "mixed.ics: imported");
    });
    ASSERT_NE (details, nullptr);
    gchar **lines = g_strsplit (gtk_label_get_text (GTK_LABEL (details)), "\n", -1);
    int compared = 0;
    for (gchar **line = lines; *line; ++line) {
        if (!g_str_has_prefix (*line, "warning: ")) {  /* the program writes those to standard error */
            EXPECT_NE (printed.find (*line), std::string::npos) << *line << " in\n" << printed;
            ++compared;
        }
    }
    g_strfreev (lines);
    EXPECT_GE (compared, 2);
}

TEST (ImportDialog, BadInputIsRefusedWithAMessageAndNothingChanges)
{
    REQUIRE_XTEST ();
    DialogRig rig;
    ASSERT_TRUE (import_ics_text (*rig.store, 1, sample_calendar_text (3, false)).stored ());
    const std::string before = dump (*rig.store);
    write_text (rig.dir.file ("notes.txt"), "shopping: milk, bread\n");
    write_text (rig.dir.file ("locked.ics"), sample_calendar_text (3, false));
    g_chmod (rig.dir.file ("locked.ics").c_str (), 0);
    g_mkdir (rig.dir.file ("folder").c_str (), 0700);
    struct Case {
        std::string file;
        const char *says;
        bool needs_user = false;  /* root reads any file */
    };
    const Case cases[] = {
        {"", "Choose a calendar file"},
        {rig.dir.file ("notes.txt"), "notes.txt: the file holds no events"},
        {"file://" + rig.dir.file ("gone.ics"), "The file “gone.ics” does not exist."},
        {rig.dir.file ("gone.ics"), "does not exist"},
        {rig.dir.file ("folder"), "is a folder"},
        {rig.dir.file ("locked.ics"), "cannot be read", true},
    };
    for (const Case &c : cases) {
        if (c.needs_user && geteuid () == 0) {
            continue;
        }
        rig.import (c.file);
        ASSERT_TRUE (rig.wait_stage (TAV_IMPORT_STAGE_CHOOSE, 5000)) << c.file;
        const char *error = tav_calendar_import_dialog_get_error (rig.view ());
        ASSERT_NE (error, nullptr) << c.file;
        EXPECT_NE (std::string (error).find (c.says), std::string::npos) << c.file << ": " << error;
        EXPECT_EQ (dump (*rig.store), before) << c.file;
    }

    /* A new calendar: its name is required and must be free. */
    GtkWidget *target = picker_titled (rig.dialog, "Calendar");
    ASSERT_NE (target, nullptr);
    choose_row (target, 2);
    write_text (rig.dir.file ("ok.ics"), sample_calendar_text (4, false));
    rig.import (rig.dir.file ("ok.ics"));
    EXPECT_STREQ (tav_calendar_import_dialog_get_error (rig.view ()), "Enter a name for the new calendar.");
    tav_calendar_import_dialog_set_new_title (rig.view (), "  Work ");
    rig.import (rig.dir.file ("ok.ics"));
    ASSERT_TRUE (rig.wait_stage (TAV_IMPORT_STAGE_CHOOSE, 5000));
    EXPECT_NE (std::string (tav_calendar_import_dialog_get_error (rig.view ())).find ("'Work' already exists"), std::string::npos);
    EXPECT_EQ (dump (*rig.store), before);
    tav_calendar_import_dialog_set_new_title (rig.view (), "Holidays");
    rig.import (rig.dir.file ("ok.ics"));
    ASSERT_TRUE (rig.wait_stage (TAV_IMPORT_STAGE_REPORT));
    CalendarRecord holidays;
    ASSERT_TRUE (rig.store->find_calendar_by_title ("Holidays", &holidays));
    EXPECT_EQ (rig.store->count_entries (holidays.id), 5);
}

TEST (ImportDialog, ClosingTheDialogDuringAnImportUndoesIt)
{
    REQUIRE_XTEST ();
    DialogRig rig;
    const std::string before = dump (*rig.store);
    write_text (rig.dir.file ("big.ics"), sample_calendar_text (10000, false));
    tav_calendar_import_dialog_set_file (rig.view (), rig.dir.file ("big.ics").c_str ());
    send_tap (button_labelled (rig.dialog, "Import"));
    ASSERT_TRUE (iterate_until ([&] { return rig.store->count_entries (1) > 2000; }, 60000));
    gtk_widget_destroy (rig.dialog);  /* as Escape does */
    EXPECT_EQ (rig.dialog, nullptr);
    flush_events ();
    EXPECT_EQ (dump (*rig.store), before);
}

TEST (ImportDialog, ArgumentsAreCheckedAndTheBarShowsTheShareDone)
{
    REQUIRE_DISPLAY ();
    TempDir dir;
    std::shared_ptr<Store> store (open_store (dir.file ("s.db")).release ());
    CalendarRecord shared = calendar_named ("Shared");
    shared.read_only = true;
    store->add_calendar (shared);
    CalendarSet calendars (store);
    calendars.reload ();
    GtkWidget *dialog = tav_calendar_import_dialog_new ();
    TavCalendarImportDialog *d = TAV_CALENDAR_IMPORT_DIALOG (dialog);
    TavCalendarSource *personal = TAV_CALENDAR_SOURCE (calendars.source (1));
    {
        LogCapture capture;
        EXPECT_TRUE (tav_calendar_import_dialog_add_calendar (d, personal));
        EXPECT_FALSE (tav_calendar_import_dialog_add_calendar (d, personal)) << "offered once";
        EXPECT_FALSE (tav_calendar_import_dialog_add_calendar (d, TAV_CALENDAR_SOURCE (calendars.source (shared.id))))
            << "read-only";
        EXPECT_FALSE (tav_calendar_import_dialog_set_calendar (d, TAV_CALENDAR_SOURCE (calendars.source (shared.id))));
        EXPECT_FALSE (tav_calendar_import_dialog_add_calendar (d, nullptr));
        EXPECT_CRITICAL (capture, "TAV_IS_CALENDAR_SOURCE (source)");
        tav_calendar_import_dialog_set_report (d, TRUE, "caf\xe9", nullptr);
        EXPECT_CRITICAL (capture, "summary == NULL || g_utf8_validate (summary, -1, NULL)");
        EXPECT_EQ (tav_calendar_import_dialog_get_stage (d), TAV_IMPORT_STAGE_CHOOSE) << "nothing changed";
        EXPECT_EQ (tav_calendar_import_dialog_get_stage (nullptr), TAV_IMPORT_STAGE_CHOOSE);
        EXPECT_CRITICAL (capture, "TAV_IS_CALENDAR_IMPORT_DIALOG (dialog)");
    }
    /* Without a host the dialog stays where it is put. */
    write_text (dir.file ("a.ics"), sample_calendar_text (2, false));
    tav_calendar_import_dialog_set_file (d, dir.file ("a.ics").c_str ());
    ASSERT_TRUE (tav_calendar_import_dialog_start (d));
    gtk_window_move (GTK_WINDOW (dialog), 0, 0);
    gtk_widget_set_size_request (dialog, 800, 480);
    gtk_widget_show (dialog);
    ASSERT_TRUE (wait_mapped (dialog));
    GtkWidget *bar = find_widget (dialog, [] (GtkWidget *w) { return GTK_IS_PROGRESS_BAR (w); });
    ASSERT_NE (bar, nullptr);
    for (const auto &[done, total] : {std::pair {57u, 122u}, std::pair {122u, 122u}, std::pair {500u, 122u}}) {
        tav_calendar_import_dialog_set_progress (d, done, total);
        flush_events ();
        gdk_window_process_all_updates ();
        int x = 0, y = 0;
        gdk_window_get_origin (bar->window, &x, &y);
        if (!gtk_widget_get_has_window (bar)) {
            x += bar->allocation.x;
            y += bar->allocation.y;
        }
        GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (nullptr, gdk_get_default_root_window (), nullptr, x,
                                                        y + bar->allocation.height / 2, 0, 0, bar->allocation.width, 1);
        ASSERT_NE (shot, nullptr);
        int filled = 0;
        const guchar *px = gdk_pixbuf_get_pixels (shot);
        for (int x = 0; x < bar->allocation.width; ++x, px += gdk_pixbuf_get_n_channels (shot)) {
            filled += px[2] > px[0] + 80;  /* the accent blue */
        }
        g_object_unref (shot);
        const double expected = std::min (1.0, double (done) / total);
        EXPECT_NEAR (double (filled) / bar->allocation.width, expected, 0.03) << done << " of " << total;
    }
    gtk_widget_destroy (dialog);
}

TEST (FirstRunWizard, FinishWritesTheChosenSettingsAndClearsFirstBoot)
{
    REQUIRE_XTEST ();
    TempDir dir;
    SettingsFile file (dir.file ("settings.ini"));
    EXPECT_TRUE (file.load ().empty ());
    EXPECT_EQ (file.values.first_boot, SettingsValueFirstBootYes) << "no settings yet: the first start";
    App app;
    app.calendars = std::make_unique<CalendarSet> (std::shared_ptr<Store> (open_store (dir.file ("s.db")).release ()));
    app.settings = &file;
    GtkWidget *wizard = app.open_first_run_wizard ();
    g_object_add_weak_pointer (G_OBJECT (wizard), reinterpret_cast<gpointer *> (&wizard));
    gtk_window_move (GTK_WINDOW (wizard), 0, 0);
    gtk_widget_show (wizard);
    ASSERT_TRUE (wait_mapped (wizard));
    EXPECT_EQ (button_labelled (wizard, "Finish"), nullptr) << "Finish only on the last page";
    tap_button (wizard, "Next");
    choose_row (picker_titled (wizard, "Open with"), 1);
    choose_row (picker_titled (wizard, "Week starts on"), 1);
    tap_button (wizard, "Next");
    EXPECT_EQ (tav_calendar_first_run_wizard_get_page (TAV_CALENDAR_FIRST_RUN_WIZARD (wizard)), 2);

    /* The last page imports through the import dialog, over the wizard. */
    GtkWidget *offer = find_widget (wizard, [] (GtkWidget *w) {
        return KIVO_IS_BUTTON (w) && g_strcmp0 (kivo_button_get_title (KIVO_BUTTON (w)), "Import a calendar file…") == 0;
    });
    ASSERT_NE (offer, nullptr);
    tap_middle (offer);
    GtkWidget *import = nullptr;
    GList *toplevels = gtk_window_list_toplevels ();
    for (GList *l = toplevels; l; l = l->next) {
        if (TAV_IS_CALENDAR_IMPORT_DIALOG (l->data) && gtk_widget_get_visible (GTK_WIDGET (l->data)))
            import = GTK_WIDGET (l->data);
    }
    g_list_free (toplevels);
    ASSERT_NE (import, nullptr);
    EXPECT_EQ (gtk_window_get_transient_for (GTK_WINDOW (import)), GTK_WINDOW (wizard));
    write_text (dir.file ("four.ics"), sample_calendar_text (4, false));
    tav_calendar_import_dialog_set_file (TAV_CALENDAR_IMPORT_DIALOG (import), dir.file ("four.ics").c_str ());
    ASSERT_TRUE (wait_mapped (import));
    tap_button (import, "Import");
    ASSERT_TRUE (run_main_loop_until ([&] {
        return tav_calendar_import_dialog_get_stage (TAV_CALENDAR_IMPORT_DIALOG (import)) == TAV_IMPORT_STAGE_REPORT;
    }, 10000));
    flush_events ();
    tap_button (import, "Close");
    EXPECT_EQ (app.calendars->store ().count_entries (1), 5);
    EXPECT_NE (find_widget (wizard, [] (GtkWidget *w) {
        return GTK_IS_LABEL (w) && gtk_widget_get_visible (w)
               && g_str_has_prefix (gtk_label_get_text (GTK_LABEL (w)), "Imported 4 events, 1 task, 0 notes");
    }), nullptr) << "the wizard says what was imported";
    EXPECT_EQ (read_file (file.path ()), "") << "nothing written before Finish";
    tap_button (wizard, "Finish");
    ASSERT_TRUE (run_main_loop_until ([&] { return wizard == nullptr; }, 2000));
    const std::string text = read_file (file.path ());
    for (const char *line : {"firstboot=firstbootno\n", "defaultview=weekview\n", "weekstart=sunday\n"}) {
        EXPECT_NE (text.find (line), std::string::npos) << line << " in\n" << text;
    }
    SettingsFile again (file.path ());
    EXPECT_TRUE (again.load ().empty ());
    EXPECT_EQ (again.values.first_boot, SettingsValueFirstBootNo);

    /* A file kept before the wizard existed is no first start. */
    write_text (dir.file ("old.ini"), "[calendar]\nweekstart=monday\n");
    SettingsFile old (dir.file ("old.ini"));
    EXPECT_TRUE (old.load ().empty ());
    EXPECT_EQ (old.values.first_boot, SettingsValueFirstBootNo);
}
