/* Month view benchmark: feeds a TavCalendar through the view base (freeze,
 * add the month's entries, thaw) the way the host does, for 100, 300 and
 * 3,000 entries in the shown month, and reports
 *
 *   - read: listing the entries, adding them, expanding repeats and the
 *     grid pass (everything thaw does),
 *   - grid: the grid pass alone, on the same cell contents,
 *   - paint: the first full paint of the realized view (cache included),
 *   - the view's repaint time against GtkCalendar painting the same month
 *     at the same size with a detail text per day.
 *
 * Run under X: xvfb-run -a build/bench/bench-month-view
 */
#include <gtk/gtk.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include "BusyMonth.h"
#include "TavMonthViewPrivate.h"

using Clock = std::chrono::steady_clock;
using namespace tav::test;

namespace {

constexpr int kYear = 2026, kMonth = 10; /* November 2026 */
constexpr int kWidth = 800, kHeight = 600;

double
ms_since (Clock::time_point start)
{
    return std::chrono::duration<double, std::milli> (Clock::now () - start).count ();
}

/* The library logs a line per paint and per unmatched bar end; keep them
 * out of the figures' output. */
class QuietStdout {
public:
    QuietStdout ()
    {
        fflush (stdout);
        m_saved = dup (STDOUT_FILENO);
        FILE *null = fopen ("/dev/null", "w");
        dup2 (fileno (null), STDOUT_FILENO);
        fclose (null);
    }
    ~QuietStdout ()
    {
        fflush (stdout);
        dup2 (m_saved, STDOUT_FILENO);
        close (m_saved);
    }

private:
    int m_saved;
};

void
drain ()
{
    gdk_flush ();
    while (gtk_events_pending ())
        gtk_main_iteration_do (FALSE);
    gdk_display_sync (gdk_display_get_default ());
}

/* A full repaint of @widget, done now and waited for. */
double
paint (GtkWidget *widget)
{
    gdk_window_invalidate_rect (widget->window, NULL, TRUE);
    const auto start = Clock::now ();
    gdk_window_process_updates (widget->window, TRUE);
    gdk_display_sync (gdk_display_get_default ());
    return ms_since (start);
}

double
median (std::vector<double> v)
{
    std::sort (v.begin (), v.end ());
    return v[v.size () / 2];
}

GtkWidget *
show_in_window (GtkWidget *child)
{
    GtkWidget *window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size (GTK_WINDOW (window), kWidth, kHeight);
    gtk_container_add (GTK_CONTAINER (window), child);
    gtk_widget_show_all (window);
    for (int i = 0; i < 200 && child->allocation.width < kWidth; i++) {
        drain ();
        g_usleep (1000);
    }
    drain ();
    return window;
}

struct Figures {
    int entries;
    double query, read, grid, first_paint, repaint, full_repaint;
};

/* The grid pass alone: the same instances placed into a bare grid. */
double
time_grid_pass (TavMemorySource *source, TavCalendarProcessor *processor, const TavDateInterval &interval)
{
    CalendarCell cells[NCells];
    int weeks[NRows];
    for (auto &cell : cells)
        calendar_cell_init (&cell);
    calendar_grid_set_month (cells, processor, kYear, kMonth, 1, weeks);
    GList *events = tav_memory_source_list_events (source, &interval);
    events = g_list_concat (events, tav_memory_source_list_tasks (source));
    for (GList *l = events; l; l = l->next) {
        auto *entry = TAV_CALENDAR_ENTRY (l->data);
        GList *instances = tav_memory_source_expand (entry, &interval);
        for (GList *i = instances; i; i = i->next)
            calendar_grid_add_entry_instance (cells, processor, (TavTimestamp *) i->data, entry);
        g_list_free_full (instances, (GDestroyNotify) tav_timestamp_free);
    }
    g_list_free_full (events, g_object_unref);
    int dirty = 0;
    for (auto &cell : cells)
        dirty += !cell.buffer.empty ();
    if (dirty == 0)
        fprintf (stderr, "warning: the grid pass has nothing to do\n");
    const auto start = Clock::now ();
    calendar_grid_recalculate (cells, processor, TRUE, NULL, NULL);
    const double ms = ms_since (start);
    for (auto &cell : cells)
        calendar_cell_free (&cell);
    return ms;
}

Figures
measure (int count)
{
    Figures f { count, 0, 0, 0, 0, 0, 0 };
    MemorySourcePtr source (tav_memory_source_new ("Bench", TavCalendarColorBlue, CalendarSourceTypeLocal));
    fill_busy_month (source.get (), kYear, kMonth, count, 4242u + (unsigned) count);

    GtkWidget *calendar = tav_calendar_new ();
    tav_calendar_set_first_day_of_week (TAV_CALENDAR (calendar), 1);
    tav_calendar_select_month (TAV_CALENDAR (calendar), kMonth, kYear);
    GtkWidget *window = show_in_window (calendar);
    TavDateInterval interval;
    tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (calendar), &interval);

    {
        QuietStdout quiet;
        std::vector<double> reads, queries;
        /* A few rounds: every read replaces the month's entries. */
        for (int round = 0; round < 3; round++) {
            tav_calendar_select_month (TAV_CALENDAR (calendar), kMonth == 11 ? 0 : kMonth + 1, kYear);
            tav_calendar_select_month (TAV_CALENDAR (calendar), kMonth, kYear);
            drain ();
            /* The host's query is timed apart from the view's work. */
            auto start = Clock::now ();
            GList *events = tav_memory_source_list_events (source.get (), &interval);
            GList *tasks = tav_memory_source_list_tasks (source.get ());
            queries.push_back (ms_since (start));
            start = Clock::now ();
            TavCalendarView *view = TAV_CALENDAR_VIEW (calendar);
            tav_calendar_view_freeze (view);
            tav_calendar_view_reading_started (view);
            tav_calendar_view_add_entries (view, events);
            tav_calendar_view_add_entries (view, tasks);
            tav_calendar_view_thaw (view);
            tav_calendar_view_reading_finished (view);
            reads.push_back (ms_since (start));
            g_list_free_full (events, g_object_unref);
            g_list_free_full (tasks, g_object_unref);
        }
        f.read = median (reads);
        f.query = median (queries);
        f.grid = time_grid_pass (source.get (), tav_calendar_view_get_processor (TAV_CALENDAR_VIEW (calendar)),
                                 interval);
        tav_calendar_adjust_view_for_time_change (TAV_CALENDAR (calendar)); /* paint cache stale: a first paint */
        f.first_paint = paint (calendar);
        std::vector<double> repaints;
        for (int i = 0; i < 15; i++)
            repaints.push_back (paint (calendar));
        f.repaint = median (repaints);
        /* Full repaints: the grid image is rendered again every time. */
        std::vector<double> full;
        for (int i = 0; i < 15; i++) {
            /* Each change of the property marks the grid for rendering. */
            g_object_set (calendar, "use-effects", TRUE, NULL);
            g_object_set (calendar, "use-effects", FALSE, NULL);
            full.push_back (paint (calendar));
        }
        f.full_repaint = median (full);
    }

    GList *month = tav_calendar_get_entries_for_active_month (TAV_CALENDAR (calendar));
    if (g_list_length (month) == 0)
        fprintf (stderr, "warning: nothing was read for %d entries\n", count);
    g_list_free_full (month, g_object_unref);
    gtk_widget_destroy (window);
    drain ();
    return f;
}

char *
detail_text (GtkCalendar *, guint year, guint month, guint day, gpointer)
{
    static const char *const texts[] = { "10:30 Call Mum", "Team meeting", "Dentist", "Pay day" };
    return g_strdup (texts[(day + month) % 4]);
}

/* GtkCalendar's own repaint of the same month at the same size. */
double
baseline_repaint ()
{
    GtkWidget *calendar = gtk_calendar_new ();
    gtk_calendar_select_month (GTK_CALENDAR (calendar), kMonth, kYear);
    gtk_calendar_set_detail_func (GTK_CALENDAR (calendar), detail_text, NULL, NULL);
    gtk_calendar_set_display_options (GTK_CALENDAR (calendar),
        (GtkCalendarDisplayOptions) (GTK_CALENDAR_SHOW_HEADING | GTK_CALENDAR_SHOW_DAY_NAMES |
                                     GTK_CALENDAR_SHOW_WEEK_NUMBERS | GTK_CALENDAR_SHOW_DETAILS));
    GtkWidget *window = show_in_window (calendar);
    std::vector<double> repaints;
    for (int i = 0; i < 15; i++)
        repaints.push_back (paint (calendar));
    gtk_widget_destroy (window);
    drain ();
    return median (repaints);
}

} // namespace

int
main (int argc, char **argv)
{
    if (!gtk_init_check (&argc, &argv)) {
        fprintf (stderr, "bench-month-view needs an X display (run it under xvfb-run -a)\n");
        return 77;
    }
    g_setenv ("TZ", "UTC", TRUE);

    /* Warm up fonts and types once, outside the figures. */
    measure (30);

    std::vector<Figures> figures;
    for (int count : { 100, 300, 3000 })
        figures.push_back (measure (count));
    const double gtk_paint = baseline_repaint ();

    printf ("Month view, %dx%d, November 2026, entries fed through freeze/add/thaw\n", kWidth, kHeight);
    printf ("  query: the host lists the entries (memory source); read: freeze, add, thaw (expansion and grid pass)\n");
    printf ("  grid: the grid pass alone; repaint: exposure of an unchanged grid; full: grid rendered again\n");
    printf ("%8s %9s %9s %9s %12s %11s %9s %15s\n", "entries", "query ms", "read ms", "grid ms", "1st paint ms",
            "repaint ms", "full ms", "read+1st paint");
    for (const auto &f : figures)
        printf ("%8d %9.2f %9.2f %9.3f %12.2f %11.2f %9.2f %15.2f\n", f.entries, f.query, f.read, f.grid,
                f.first_paint, f.repaint, f.full_repaint, f.read + f.first_paint);
    printf ("GtkCalendar repaint with a detail per day: %.2f ms\n", gtk_paint);
    for (const auto &f : figures)
        printf ("ratio at %d entries: repaint/GtkCalendar %.2f, full repaint/GtkCalendar %.2f (target <= 2)\n",
                f.entries, f.repaint / gtk_paint, f.full_repaint / gtk_paint);
    const Figures &f300 = figures[1], &f3000 = figures[2];
    printf ("ratio read+first paint at 300 entries / 16.7 ms frame: %.2f (target <= 1)\n",
            (f300.read + f300.first_paint) / 16.7);
    printf ("ratio read+first paint at 3000 entries / 100 ms: %.2f (target <= 1)\n",
            (f3000.read + f3000.first_paint) / 100.0);
    printf ("growth 3000/300 (linear would be 10): read %.1f, query %.1f, first paint %.1f\n", f3000.read / f300.read,
            f3000.query / f300.query, f3000.first_paint / f300.first_paint);
    return 0;
}
