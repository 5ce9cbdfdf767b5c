/* The month grid's cell layout fed random entries: a cell never shows more
 * than three bars (in the bar lanes) and ten timed lines, with or without the
 * bar alignment pass. */
#include "FuzzSupport.h"

#include "TavMonthViewPrivate.h"

#include <calendarui.h>

#include <vector>

using tav::fuzz::Input;

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size)
{
    tav::fuzz::quiet_logs ();
    static TavCalendarProcessor *p = tav_calendar_processor_new ();
    static gint64 created = 0;
    Input in (data, size);
    const int year = in.range (1970, 2037), month = in.range (0, 11), fdow = in.range (0, 6);
    const gboolean optimize = in.byte () & 1;
    tav_calendar_processor_set_first_day_of_week (p, (guint) fdow);

    CalendarCell cells[NCells];
    int weeks[NRows];
    for (auto &cell : cells)
        calendar_cell_init (&cell);
    calendar_grid_set_month (cells, p, year, month, fdow, weeks);

    std::vector<TavCalendarEntry *> entries;
    for (int i = 0; i < 120 && !in.empty (); i++) {
        const uint8_t kind = in.byte ();
        const int day = in.range (0, NCells - 1), length = (kind & 2) ? in.range (0, 40) : 0;
        TavDate sd = cells[day].date, ed = sd;
        tav_calendar_processor_inc_date_by_days (p, &ed, length);
        TavTime st = { in.range (0, 23), in.range (0, 59) }, et = { in.range (0, 23), in.range (0, 59) };
        if (!(kind & 2) && tav_time_compare (&et, &st) < 0)
            std::swap (st, et);
        GType type = (kind & 12) == 12 ? TAV_TYPE_CALENDAR_TASK : TAV_TYPE_CALENDAR_ENTRY;
        auto *entry = TAV_CALENDAR_ENTRY (g_object_new (type, NULL));
        char title[8];
        g_snprintf (title, sizeof title, "e%d", in.byte ());
        g_object_set (entry, "title", title, "start-date", &sd, "start-time", &st, "end-date", &ed, "end-time", &et,
                      "all-day", (gboolean) (kind & 1), "color", kind >> 5, "created-time", created++,
                      "has-birthday", (gboolean) ((kind & 12) == 8), NULL);
        entries.push_back (entry);
        TavTimestamp start = { sd, st };
        calendar_grid_add_entry_instance (cells, p, &start, entry);
        /* Now and then a pass in the middle, as the view does on reads. */
        if (kind & 16)
            calendar_grid_recalculate (cells, p, optimize, NULL, NULL);
    }
    calendar_grid_recalculate (cells, p, optimize, NULL, NULL);

    for (const CalendarCell &cell : cells) {
        int wide = 0, timed = 0;
        for (int i = 0; i < MAX_ENTRIES; i++) {
            const CalendarEntry *c = cell.entries[i];
            if (!c)
                continue;
            FUZZ_CHECK (i < cell.n_entries, "slot %d used past n_entries %d", i, cell.n_entries);
            if (c->all_day || c->multi_days) {
                wide++;
                FUZZ_CHECK (i < MAX_WIDE_ENTRIES, "bar in slot %d on %d-%d-%d", i, cell.date.year, cell.date.month + 1,
                            cell.date.day);
            } else {
                timed++;
            }
        }
        FUZZ_CHECK (wide <= MAX_WIDE_ENTRIES, "%d bars on %d-%d-%d", wide, cell.date.year, cell.date.month + 1, cell.date.day);
        FUZZ_CHECK (timed <= MAX_TIMED_ENTRIES, "%d timed lines on %d-%d-%d", timed, cell.date.year, cell.date.month + 1,
                    cell.date.day);
    }
    for (auto &cell : cells)
        calendar_cell_free (&cell);
    for (TavCalendarEntry *e : entries)
        g_object_unref (e);
    return 0;
}
