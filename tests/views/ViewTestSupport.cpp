#include "ViewTestSupport.h"

#include <gtest/gtest.h>

namespace tav::test {

static int next_created_time = 1000;

TavCalendarEntry *
make_entry (const char *title, Stamp start, Stamp end, bool all_day, int color, GType type)
{
    GType t = type == G_TYPE_INVALID ? TAV_TYPE_CALENDAR_ENTRY : type;
    auto *entry = TAV_CALENDAR_ENTRY (g_object_new (t, NULL));
    TavDate sd = start.date (), ed = end.date ();
    TavTime st { start.hour, start.minute }, et { end.hour, end.minute };
    g_object_set (entry, "title", title, "start-date", &sd, "start-time", &st, "end-date", &ed, "end-time", &et,
                  "all-day", (gboolean) all_day, "color", color, "created-time", next_created_time++, NULL);
    return entry;
}

TavCalendarEntry *
make_task (const char *title, Stamp due)
{
    return make_entry (title, due, due, true, 0, TAV_TYPE_CALENDAR_TASK);
}

TavCalendarEntry *
make_birthday (const char *title, Stamp day)
{
    TavCalendarEntry *entry = make_entry (title, day, day, true);
    g_object_set (entry, "has-birthday", TRUE, NULL);
    return entry;
}

std::string
describe_cell (const CalendarCell &cell)
{
    std::string out;
    for (int i = 0; i < cell.n_entries; i++) {
        if (!out.empty ())
            out += ' ';
        const CalendarEntry *centry = cell.entries[i];
        if (!centry) {
            out += '-';
            continue;
        }
        out += tav_calendar_entry_get_title (centry->entry);
        if (centry->covered)
            out += '~';
        if (centry->span_following)
            out += "+" + std::to_string (centry->span_following);
        if (centry->continues_left)
            out += '<';
        if (centry->continues_right)
            out += '>';
    }
    if (!cell.buffer.empty ()) {
        out += " |";
        for (const auto &item : cell.buffer)
            out += std::string (" ") + tav_calendar_entry_get_title (item.entry);
    }
    if (cell.has_tasks)
        out += " T";
    if (cell.has_birthdays)
        out += " B";
    return out;
}

GdkPixbuf *
pixbuf_of (GdkDrawable *drawable)
{
    int w = 0, h = 0;
    gdk_drawable_get_size (drawable, &w, &h);
    return gdk_pixbuf_get_from_drawable (NULL, drawable, gdk_drawable_get_colormap (drawable), 0, 0, 0, 0, w, h);
}

guint32
rgb_at (GdkPixbuf *pixbuf, int x, int y)
{
    const guchar *p = gdk_pixbuf_get_pixels (pixbuf) + y * gdk_pixbuf_get_rowstride (pixbuf) +
                      x * gdk_pixbuf_get_n_channels (pixbuf);
    return (guint32) ((p[0] << 16) | (p[1] << 8) | p[2]);
}

GdkPixbuf *
widget_snapshot (GtkWidget *widget)
{
    GdkPixmap *pixmap = gtk_widget_get_snapshot (widget, NULL);
    if (!pixmap)
        return NULL;
    GdkPixbuf *pixbuf = pixbuf_of (GDK_DRAWABLE (pixmap));
    g_object_unref (pixmap);
    return pixbuf;
}

Grid::Grid (int year, int month, int first_day_of_week) : m_processor (tav_calendar_processor_new ())
{
    tav_calendar_processor_set_first_day_of_week (m_processor, (guint) first_day_of_week);
    for (auto &cell : m_cells)
        calendar_cell_init (&cell);
    calendar_grid_set_month (m_cells, m_processor, year, month, first_day_of_week, m_weeks);
}

Grid::~Grid ()
{
    for (auto &cell : m_cells)
        calendar_cell_free (&cell);
    g_object_unref (m_processor);
}

CalendarCell &
Grid::at (const TavDate &date)
{
    const int index = calendar_grid_find_date_linear (m_cells, &date);
    EXPECT_GE (index, 0) << "date not in the grid";
    return m_cells[index < 0 ? 0 : index];
}

gboolean
Grid::add (TavCalendarEntry *entry)
{
    TavTimestamp *start = NULL;
    g_object_get (entry, "start-timestamp", &start, NULL);
    gboolean added = calendar_grid_add_entry_instance (m_cells, m_processor, start, entry);
    tav_timestamp_free (start);
    return added;
}

void
Grid::recalculate (gboolean optimization)
{
    calendar_grid_recalculate (m_cells, m_processor, optimization, NULL, NULL);
}

void
read_into (TavCalendarView *view, TavMemorySource *source)
{
    TavDateInterval interval;
    if (!tav_calendar_view_get_presented_interval (view, &interval))
        return;
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    GList *events = tav_memory_source_list_events (source, &interval);
    GList *tasks = tav_memory_source_list_tasks (source);
    tav_calendar_view_add_entries (view, events);
    tav_calendar_view_add_entries (view, tasks);
    g_list_free_full (events, g_object_unref);
    g_list_free_full (tasks, g_object_unref);
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
}

} // namespace tav::test
