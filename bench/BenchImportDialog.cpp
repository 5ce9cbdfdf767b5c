/* Speed of an import through the import dialog: 10,000 events imported in
 * idle slices while the main loop runs, against the command-line import of
 * the same file in the same process (one go, no main loop).
 *
 * Prints the longest idle slice (target: at most 16 ms, so that the screen
 * keeps up) and the dialog's total time as a ratio of the command line's
 * (target: at most 1.5). Wall-clock times, best of three rounds: the slices
 * are bounded in wall-clock time. Needs X: xvfb-run -a build/bench/bench-import-dialog
 */
#include "HostImport.h"

#include <calendarui.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>

using namespace tav::host;

namespace {

std::shared_ptr<Store> fresh_store (const std::string &path)
{
    for (const char *suffix : {"", "-wal", "-shm"}) {
        g_unlink ((path + suffix).c_str ());
    }
    Status st;
    std::shared_ptr<Store> store (Store::open (path, &st).release ());
    CalendarRecord personal;
    personal.title = "Personal";
    store->add_calendar (personal);
    return store;
}

}  // namespace

int main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-import-dialog: needs a display (xvfb-run -a)\n");
        return 1;
    }
    gchar *tmp = g_dir_make_tmp ("bench-import-XXXXXX", nullptr);
    const std::string dir = tmp;
    g_free (tmp);
    const std::string file = dir + "/ten-thousand.ics";
    const std::string text = sample_calendar_text (10000, true);
    g_file_set_contents (file.c_str (), text.data (), static_cast<gssize> (text.size ()), nullptr);

    double best_cli = 1e18, best_dialog = 1e18;
    int64_t longest = 0;
    int slices = 0;
    for (int round = 0; round < 3; ++round) {
        auto cli_store = fresh_store (dir + "/cli.db");
        const int64_t t0 = g_get_monotonic_time ();
        const ImportResult r = import_ics_file (*cli_store, 1, file);
        best_cli = std::min (best_cli, (g_get_monotonic_time () - t0) / 1000.0);
        if (!r.stored ()) {
            fprintf (stderr, "bench-import-dialog: %s\n", r.status.message.c_str ());
            return 1;
        }

        auto store = fresh_store (dir + "/dialog.db");
        CalendarSet calendars (store);
        calendars.reload ();
        GtkWidget *dialog = tav_calendar_import_dialog_new ();
        TavCalendarImportDialog *d = TAV_CALENDAR_IMPORT_DIALOG (dialog);
        tav_calendar_import_dialog_add_calendar (d, TAV_CALENDAR_SOURCE (calendars.source (1)));
        SliceStats stats;
        drive_import_dialog (dialog, calendars, {}, 8000, &stats);
        gtk_widget_show (dialog);
        tav_calendar_import_dialog_set_file (d, file.c_str ());
        tav_calendar_import_dialog_start (d);
        while (tav_calendar_import_dialog_get_stage (d) != TAV_IMPORT_STAGE_REPORT) {
            gtk_main_iteration_do (TRUE);
        }
        best_dialog = std::min (best_dialog, stats.total_us / 1000.0);
        longest = std::max (longest, stats.longest_us);
        slices = stats.slices;
        if (store->count_entries (1) != cli_store->count_entries (1)) {
            fprintf (stderr, "bench-import-dialog: the dialog stored %lld entries, the command line %lld\n",
                     static_cast<long long> (store->count_entries (1)), static_cast<long long> (cli_store->count_entries (1)));
            return 1;
        }
        gtk_widget_destroy (dialog);
    }
    printf ("import of 10,000 events through the dialog: %d idle slices, the longest %.2f ms (target <= 16 ms)\n",
            slices, longest / 1000.0);
    printf ("  dialog %.1f ms, command line %.1f ms: ratio %.2fx (target <= 1.5x)\n", best_dialog, best_cli,
            best_dialog / best_cli);
    for (const char *name : {"/ten-thousand.ics", "/cli.db", "/cli.db-wal", "/cli.db-shm", "/dialog.db", "/dialog.db-wal",
                             "/dialog.db-shm"}) {
        g_unlink ((dir + name).c_str ());
    }
    g_rmdir (dir.c_str ());
    return longest <= 16000 && best_dialog <= 1.5 * best_cli ? 0 : 2;
}
