/* Soak: the calendar window over the host's store (the demo's month of
 * entries) opened and closed again and again; in every cycle each root
 * view, the day, task and note lists, the event, task and note editors,
 * the settings, the calendar list, the birthday and the import dialogs are
 * shown and closed. Prints the growth of the
 * resident set and of the live objects per type after a warm-up; both
 * should stay flat.
 * Needs X: xvfb-run -a build/bench/bench-soak [CYCLES]; SOAK_ONLY="week event"
 * limits the cycle to the steps named.
 */
#include "HostCalendarSet.h"
#include "HostCivilTime.h"
#include "HostDemo.h"
#include "HostSettings.h"
#include "HostWindow.h"

#include <calendarui.h>
#include <glib/gstdio.h>
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

using namespace tav::host;

namespace {

/* Live objects per type: every GObject class inherits these two hooks
 * from GObject's own class, installed before any other class exists, and
 * every class chains up to them. */
std::map<GType, long> g_live;
void (*g_constructed) (GObject *) = nullptr;
void (*g_finalize) (GObject *) = nullptr;

void count_constructed (GObject *object)
{
    g_live[G_OBJECT_TYPE (object)]++;
    g_constructed (object);
}

void count_finalize (GObject *object)
{
    g_live[G_OBJECT_TYPE (object)]--;
    g_finalize (object);
}

void install_counters ()
{
    auto *klass = static_cast<GObjectClass *> (g_type_class_ref (G_TYPE_OBJECT));
    g_constructed = klass->constructed;
    g_finalize = klass->finalize;
    klass->constructed = count_constructed;
    klass->finalize = count_finalize;
}

long rss_kib ()
{
    long pages = 0, resident = 0;
    FILE *f = fopen ("/proc/self/statm", "r");
    if (f) {
        if (fscanf (f, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        fclose (f);
    }
    return resident * (sysconf (_SC_PAGESIZE) / 1024);
}

void settle ()
{
    while (gtk_events_pending ())
        gtk_main_iteration_do (FALSE);
    gdk_window_process_all_updates ();
    gdk_flush ();
}

void close_widget (GtkWidget *widget)
{
    if (widget) {
        settle ();
        gtk_widget_destroy (widget);
        settle ();
    }
}

/* One cycle: a window, every view, every editor, closed again. */
void cycle (const std::shared_ptr<Store> &store, SettingsFile &settings, const TavDate &focus)
{
    App app;
    app.calendars = std::make_unique<CalendarSet> (store);
    app.focus = focus;
    app.settings = &settings;
    app.build ();
    gtk_widget_show (GTK_WIDGET (app.window));
    const char *only = g_getenv ("SOAK_ONLY");
    auto want = [only] (const char *step) { return !only || strstr (only, step); };
    for (const char *view : {"month", "week", "agenda", "day", "tasks", "notes", "month"}) {
        if (want (view)) {
            app.show (view);
            settle ();
        }
    }
    const TavTime nine = {9, 0};
    if (want ("event"))
        close_widget (app.open_editor (nullptr, &focus, &nine, false));
    if (want ("task-editor"))
        close_widget (app.edit_task (nullptr));
    if (want ("note-editor"))
        close_widget (app.edit_note (nullptr));
    if (want ("settings"))
        close_widget (app.open_settings ());
    if (want ("calendars"))
        close_widget (app.open_calendar_list ());
    if (want ("birthday"))
        close_widget (app.open_birthday ());
    if (want ("import"))
        close_widget (app.open_import ());
    settle ();
}

}  // namespace

int main (int argc, char **argv)
{
    install_counters ();
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-soak needs an X display (xvfb-run -a)\n");
        return 1;
    }
    const int cycles = argc > 1 ? atoi (argv[1]) : 1000;
    const int warm_up = 10;
    gchar *dir = g_dir_make_tmp ("bench-soak-XXXXXX", nullptr);
    g_setenv ("XDG_CONFIG_HOME", dir, TRUE);
    Status st;
    std::shared_ptr<Store> store (Store::open (std::string (dir) + "/store.db", &st).release ());
    if (!store) {
        fprintf (stderr, "cannot open the store: %s\n", st.message.c_str ());
        return 1;
    }
    TavDate focus = {2025, 5, 11};
    seed_demo (*store, civil_minutes (focus.year, focus.month + 1, focus.day));
    SettingsFile settings;
    settings.load ();

    std::map<GType, long> after_warm_up;
    long rss_warm = 0;
    for (int i = 1; i <= cycles; i++) {
        cycle (store, settings, focus);
        if (i == warm_up) {
            after_warm_up = g_live;
            rss_warm = rss_kib ();
        }
        if (i > warm_up && (i % 100 == 0 || i == cycles))
            printf ("cycle %4d: RSS %ld KiB (%+ld KiB since cycle %d)\n", i, rss_kib (), rss_kib () - rss_warm,
                    warm_up);
        fflush (stdout);
    }
    long grown = 0;
    printf ("live objects per type after cycle %d -> after cycle %d (only types that changed):\n", warm_up, cycles);
    for (const auto &[type, n] : g_live) {
        const long before = after_warm_up.count (type) ? after_warm_up[type] : 0;
        if (n != before) {
            printf ("  %-32s %5ld -> %5ld\n", g_type_name (type), before, n);
            grown += n - before;
        }
    }
    long live = 0;
    for (const auto &[type, n] : g_live)
        live += n;
    printf ("%ld live objects, %+ld since the warm-up (target: 0)\n", live, grown);
    store.reset ();
    std::string rm = std::string ("rm -rf '") + dir + "'";
    if (system (rm.c_str ()) != 0)
        fprintf (stderr, "could not remove %s\n", dir);
    g_free (dir);
    return 0;
}
