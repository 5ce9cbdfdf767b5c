/* Task list speed, measured in one run under an X server.
 *
 * 1. Read and first paint: 1,000 and 10,000 tasks appended one by one by
 *    the owner answering "database-access-read", then reading finished and the first full expose of an
 *    800x480 list, against the same rows (already formatted) appended to a
 *    plain unsorted GtkListStore under a plain fixed-height GtkTreeView.
 *    The growth from 1,000 to 10,000 tasks is printed too.
 * 2. One tick-off by a tap on the tick (toggle, save through the source,
 *    row moved to its new place, repaint) in the 10,000-task list.
 *
 * Prints one line per figure, with the ratio to its baseline, on standard
 * error. With a count (bench-task-view 10000) it only reads and paints that
 * many tasks once, for callgrind:
 *   valgrind --tool=callgrind --toggle-collect=tav_task_view_read_database \
 *       build/bench/bench-task-view 10000
 */

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "TavGPtr.h"
#include "TavListViewInternal.h"
#include "TavMemorySource.h"

namespace {

using Clock = std::chrono::steady_clock;

double ms_since (Clock::time_point start)
{
    return std::chrono::duration<double, std::milli> (Clock::now () - start).count ();
}

double best_ms (int runs, const std::function<void ()> &fn)
{
    std::vector<double> t;
    for (int i = 0; i < runs; i++) {
        auto start = Clock::now ();
        fn ();
        t.push_back (ms_since (start));
    }
    return *std::min_element (t.begin (), t.end ());
}

std::vector<tav::GRefPtr<TavCalendarTask>> make_tasks (int n, TavMemorySource *source)
{
    static const char *const words[] = { "Call", "Buy", "Renew", "Send", "Book", "Fix", "Plan", "Pay", "Read",
                                         "the", "a", "new", "old", "Anna's", "car", "slides", "passport", "rent" };
    std::mt19937 rng (4242);
    std::vector<tav::GRefPtr<TavCalendarTask>> tasks;
    for (int i = 0; i < n; ++i) {
        std::string title;
        for (int w = 0; w < 3; ++w)
            title += std::string (w ? " " : "") + words[rng () % G_N_ELEMENTS (words)];
        auto task = tav::adoptGRef (TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, nullptr)));
        g_object_set (task.get (), "title", title.c_str (), "start-year", 2000 + static_cast<int> (rng () % 30),
                      "start-month", static_cast<int> (rng () % 12), "start-day", 1 + static_cast<int> (rng () % 28),
                      "done", rng () % 5 == 0, "alarm-code", static_cast<int> (rng () % 3), nullptr);
        if (source)
            tav_memory_source_add (source, TAV_CALENDAR_ENTRY (task.get ()));
        tasks.push_back (task);
    }
    return tasks;
}

GtkWidget *shown_window (GtkWidget *child)
{
    GtkWidget *window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
    GtkWidget *scrolled = gtk_scrolled_window_new (nullptr, nullptr);
    gtk_scrolled_window_set_policy (GTK_SCROLLED_WINDOW (scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_container_add (GTK_CONTAINER (scrolled), child);
    gtk_container_add (GTK_CONTAINER (window), scrolled);
    gtk_widget_show_all (window);
    while (gtk_events_pending ())
        gtk_main_iteration ();
    return window;
}

/* Lets the list lay itself out and paints it whole, synchronously. */
void first_paint (GtkWidget *window, GtkWidget *view)
{
    while (gtk_events_pending ())
        gtk_main_iteration ();
    gtk_widget_queue_draw (view);
    gdk_window_process_updates (window->window, TRUE);
    gdk_display_sync (gdk_display_get_default ());
}

double task_view_read_and_paint (const std::vector<tav::GRefPtr<TavCalendarTask>> &tasks)
{
    GtkWidget *view = tav_task_view_new ();
    GtkWidget *window = shown_window (view);
    /* The owner answers the read as tav-calendar does: one task at a time. */
    g_signal_connect (view, "database-access-read", G_CALLBACK (+[] (TavTaskView *v, gpointer data) -> gboolean {
        for (const auto &t : *static_cast<const std::vector<tav::GRefPtr<TavCalendarTask>> *> (data))
            tav_task_view_append_task (v, t.get ());
        tav_task_view_reading_finished (v);
        return TRUE;
    }), const_cast<std::vector<tav::GRefPtr<TavCalendarTask>> *> (&tasks));
    const auto start = Clock::now ();
    tav_task_view_read_database (TAV_TASK_VIEW (view));
    first_paint (window, view);
    const double ms = ms_since (start);
    gtk_widget_destroy (window);
    return ms;
}

double plain_view_read_and_paint (int n)
{
    GtkListStore *store = gtk_list_store_new (2, G_TYPE_STRING, G_TYPE_STRING);
    GtkWidget *view = gtk_tree_view_new_with_model (GTK_TREE_MODEL (store));
    g_object_unref (store);
    gtk_tree_view_set_fixed_height_mode (GTK_TREE_VIEW (view), TRUE);
    for (int c = 0; c < 2; ++c) {
        GtkCellRenderer *cell = gtk_cell_renderer_text_new ();
        gtk_cell_renderer_set_fixed_size (cell, -1, 70);
        GtkTreeViewColumn *col = gtk_tree_view_column_new_with_attributes ("", cell, "markup", c, nullptr);
        gtk_tree_view_column_set_sizing (col, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width (col, 300);
        gtk_tree_view_append_column (GTK_TREE_VIEW (view), col);
    }
    GtkWidget *window = shown_window (view);
    const auto start = Clock::now ();
    for (int i = 0; i < n; ++i)
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, "Renew the passport", 1,
                                           "<span color=\"LightGrey\">01/03/2009</span>", -1);
    first_paint (window, view);
    const double ms = ms_since (start);
    gtk_widget_destroy (window);
    return ms;
}

} // namespace

int main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-task-view: needs an X display (xvfb-run -a)\n");
        return 1;
    }
    if (argc > 1) {
        const int n = atoi (argv[1]);
        fprintf (stderr, "read + first paint, %d tasks: %.2f ms\n", n, task_view_read_and_paint (make_tasks (n, nullptr)));
        return 0;
    }
    tav::test::MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal));
    double read_ms[2] = { 0, 0 };
    const int sizes[2] = { 1000, 10000 };
    for (int i = 0; i < 2; ++i) {
        const auto tasks = make_tasks (sizes[i], nullptr);
        read_ms[i] = best_ms (3, [&] { task_view_read_and_paint (tasks); });
        const double plain = best_ms (3, [&] { plain_view_read_and_paint (sizes[i]); });
        fprintf (stderr, "read + first paint, %5d tasks: %8.2f ms   (plain list store and tree view: %7.2f ms, ratio %.2f)\n",
                 sizes[i], read_ms[i], plain, read_ms[i] / plain);
    }
    fprintf (stderr, "growth 1,000 -> 10,000 tasks: %.2fx\n", read_ms[1] / read_ms[0]);

    /* Ticking one off in the long list, through a real tap's events. */
    const auto tasks = make_tasks (10000, source.get ());
    GtkWidget *view = tav_task_view_new ();
    GtkWidget *window = shown_window (view);
    for (const auto &t : tasks)
        tav_task_view_append_task (TAV_TASK_VIEW (view), t.get ());
    first_paint (window, view);
    GtkTreeView *tree = GTK_TREE_VIEW (view);
    GdkRectangle cell;
    GtkTreePath *path = gtk_tree_path_new_from_indices (1, -1);
    gtk_tree_view_get_cell_area (tree, path, _tav_task_view_get_status_column (TAV_TASK_VIEW (view)), &cell);
    gtk_tree_path_free (path);
    auto tap = [&] {
        GdkEvent *event = gdk_event_new (GDK_BUTTON_PRESS);
        event->button.window = GDK_WINDOW (g_object_ref (gtk_tree_view_get_bin_window (tree)));
        event->button.x = cell.x + cell.width / 2;
        event->button.y = cell.y + cell.height / 2;
        event->button.button = 1;
        event->button.time = GDK_CURRENT_TIME;
        gtk_widget_event (view, event);
        event->type = GDK_BUTTON_RELEASE;
        gtk_widget_event (view, event);
        gdk_event_free (event);
        gdk_window_process_updates (window->window, TRUE);
        gdk_display_sync (gdk_display_get_default ());
    };
    const guint saves = tav_memory_source_calls (source.get (), TAV_MEMORY_SLOT_SAVE_TASK);
    const double tick = best_ms (9, tap);
    const double repaint = best_ms (9, [&] {
        gtk_widget_queue_draw (view);
        gdk_window_process_updates (window->window, TRUE);
        gdk_display_sync (gdk_display_get_default ());
    });
    fprintf (stderr, "tick-off in 10,000 tasks: %.2f ms (%u saves; a plain repaint of the list: %.2f ms, ratio %.2f)\n",
             tick, tav_memory_source_calls (source.get (), TAV_MEMORY_SLOT_SAVE_TASK) - saves, repaint, tick / repaint);
    gtk_widget_destroy (window);
    return 0;
}
