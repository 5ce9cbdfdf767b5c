/* Helpers shared by the view tests: building entries and serialising the
 * month grid's cells into short strings. */
#ifndef TAV_VIEW_TEST_SUPPORT_H
#define TAV_VIEW_TEST_SUPPORT_H

#include <calendarui.h>

#include <string>
#include <vector>

#include "TavMonthViewPrivate.h"
#include "TavMemorySource.h"

namespace tav::test {

struct Stamp {
    int year, month, day, hour, minute;
    TavTimestamp ts () const { return { { year, month, day }, { hour, minute } }; }
    TavDate date () const { return { year, month, day }; }
};

/* A new entry (one reference, transfer full) of @type with the given span.
 * Creation times increase with every call, so ties order by creation. */
TavCalendarEntry *make_entry (const char *title, Stamp start, Stamp end, bool all_day = false,
                              int color = 0, GType type = G_TYPE_INVALID);
TavCalendarEntry *make_task (const char *title, Stamp due);
TavCalendarEntry *make_birthday (const char *title, Stamp day);

/* One cell as "A B+2 -~ C< D>" (slots in order; "-" an empty slot, "~"
 * covered, "+n" span_following, "<" continues_left, ">" continues_right),
 * then " | " and the buffer's titles, then " T" / " B" for the task and
 * birthday flags. */
std::string describe_cell (const CalendarCell &cell);

/* The pixels of @drawable (transfer full), and one pixel of them as 0xRRGGBB. */
GdkPixbuf *pixbuf_of (GdkDrawable *drawable);
guint32 rgb_at (GdkPixbuf *pixbuf, int x, int y);
/* Paints @widget off screen (whole even where larger than the screen). */
GdkPixbuf *widget_snapshot (GtkWidget *widget);

/* Owns 42 cells dated for (year, month) with @first_day_of_week. */
class Grid {
public:
    Grid (int year, int month, int first_day_of_week);
    ~Grid ();
    Grid (const Grid &) = delete;
    Grid &operator= (const Grid &) = delete;

    CalendarCell *cells () { return m_cells; }
    CalendarCell &cell (int row, int col) { return m_cells[row * NColumns + col]; }
    CalendarCell &at (const TavDate &date);
    TavCalendarProcessor *processor () const { return m_processor; }
    /* Adds @entry's own occurrence (transfer none). */
    gboolean add (TavCalendarEntry *entry);
    void recalculate (gboolean optimization = TRUE);
    std::string describe (const TavDate &date) { return describe_cell (at (date)); }

private:
    CalendarCell m_cells[NCells];
    int m_weeks[NRows] {};
    TavCalendarProcessor *m_processor;
};

/* Reads @source into @view as the calendar application does: freeze, the
 * events touching the presented interval and the tasks, thaw. */
void read_into (TavCalendarView *view, TavMemorySource *source);

} // namespace tav::test

#endif /* TAV_VIEW_TEST_SUPPORT_H */
