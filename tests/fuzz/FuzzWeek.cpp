/* The week view's overlap layout fed random timed records: records drawn in
 * the same column of a group never overlap on screen, a group has at most
 * four columns, and what does not fit is marked and drawn full width. */
#include "FuzzSupport.h"

#include "TavWeekViewPrivate.h"

#include <algorithm>
#include <vector>

using tav::fuzz::Input;

namespace {

int minutes (const TavTime *t)
{
    return t->hour * 60 + t->minute;
}

/* What the view draws: at least the minimum height. */
int drawn_end (const WeekEntry *w)
{
    return std::max (minutes (w->end_time), minutes (w->start_time) + tav::week::kMinDrawnMinutes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size)
{
    tav::fuzz::quiet_logs ();
    Input in (data, size);
    WeekEntryList *list = week_entry_list_new ();
    for (int i = 0; i < 200 && !in.empty (); i++) {
        const int s = in.range (0, 24 * 60 - 1), len = in.byte () & 1 ? in.range (0, 30) : in.range (0, 24 * 60);
        const int e = std::min (s + len, 24 * 60 - 1);
        WeekEntry *w = g_new0 (WeekEntry, 1);
        TavDate date = { 2009, 2, 10 };
        TavTime st = { s / 60, s % 60 }, et = { e / 60, e % 60 };
        w->start_date = tav_date_copy (&date);
        w->end_date = tav_date_copy (&date);
        w->start_time = tav_time_copy (&st);
        w->end_time = tav_time_copy (&et);
        w->n_columns = 1;
        w->n_days = 1;
        week_entry_list_append_entry (list, w);
    }
    week_entry_list_calculate_overlapping (list);

    std::vector<const WeekEntry *> recs;
    for (GList *l = list->hour_entries; l; l = l->next)
        recs.push_back (static_cast<const WeekEntry *> (l->data));
    for (size_t i = 0; i < recs.size (); i++) {
        const WeekEntry *a = recs[i];
        FUZZ_CHECK (a->group >= 1, "record %zu has no group", i);
        FUZZ_CHECK (a->n_columns >= 1 && a->n_columns <= 4, "record %zu in %d columns", i, a->n_columns);
        FUZZ_CHECK (a->column >= 0 && a->column < a->n_columns, "record %zu column %d of %d", i, a->column, a->n_columns);
        FUZZ_CHECK (!a->unplaced || (a->n_columns == 1 && a->column == 0), "unplaced record %zu not full width", i);
        for (size_t j = i + 1; j < recs.size (); j++) {
            const WeekEntry *b = recs[j];
            if (a->unplaced || b->unplaced || a->n_columns == 1 || b->n_columns == 1 || a->group != b->group
                || a->column != b->column)
                continue;
            const bool overlap = minutes (a->start_time) < drawn_end (b) && minutes (b->start_time) < drawn_end (a);
            FUZZ_CHECK (!overlap, "records %zu (%d-%d) and %zu (%d-%d) share column %d", i, minutes (a->start_time),
                        drawn_end (a), j, minutes (b->start_time), drawn_end (b), a->column);
        }
    }
    week_entry_list_free (list);
    return 0;
}
