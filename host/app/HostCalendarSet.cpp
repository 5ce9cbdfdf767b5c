#include "HostCalendarSet.h"

#include "HostCivilTime.h"

#include <algorithm>

namespace tav::host {

CalendarSet::CalendarSet (std::shared_ptr<Store> store) : m_store (std::move (store))
{
    reload ();
}

void CalendarSet::reload ()
{
    /* Keep the source objects the views already hold and bring their
     * properties up to date; the store may have been changed by another
     * process (the WAL journal lets two share it). */
    std::map<int64_t, Ref<TavHostCalendarSource>> sources;
    for (const CalendarRecord &c : m_store->calendars ()) {
        auto old = m_sources.find (c.id);
        if (old == m_sources.end ()) {
            sources.emplace (c.id, make_source (m_store, c));
            continue;
        }
        TavCalendarSource *s = TAV_CALENDAR_SOURCE (old->second.get ());
        int color = 0;
        gboolean visible = FALSE, read_only = FALSE;
        g_object_get (s, "color", &color, "visible", &visible, "read-only", &read_only, nullptr);
        const char *title = tav_calendar_source_get_title (s);
        if (color != c.color || visible != c.visible || read_only != c.read_only || !title || c.title != title) {
            g_object_set (s, "color", c.color, "visible", c.visible, "read-only", c.read_only, "title", c.title.c_str (),
                          nullptr);
        }
        sources.emplace (c.id, old->second);
    }
    m_sources = std::move (sources);
}

TavHostCalendarSource *CalendarSet::source (int64_t calendar_id) const
{
    auto it = m_sources.find (calendar_id);
    return it == m_sources.end () ? nullptr : it->second.get ();
}

TavHostCalendarSource *CalendarSet::first_writable () const
{
    for (const auto &entry : m_sources) {
        if (tav_calendar_source_get_writable (TAV_CALENDAR_SOURCE (entry.second.get ()))) {
            return entry.second.get ();
        }
    }
    return nullptr;
}

GList *CalendarSet::to_entries (const std::vector<EntryRecord> &records)
{
    GList *list = nullptr;
    for (auto r = records.rbegin (); r != records.rend (); ++r) {
        if (TavHostCalendarSource *src = source (r->calendar_id)) {
            list = g_list_prepend (list, entry_from_record (*r, src));
        }
    }
    return list;
}

GList *CalendarSet::read_interval (const TavDateInterval &interval)
{
    const int64_t lowest = civil_minutes (1970, 1, 1);
    const int64_t highest = civil_minutes (2037, 12, 31, 23, 59);
    const int64_t from = std::max (lowest, civil_minutes (interval.start.year, interval.start.month + 1, interval.start.day));
    const int64_t to = std::min (highest, civil_minutes (interval.end.year, interval.end.month + 1, interval.end.day, 23, 59));
    if (from > to) {
        return nullptr;
    }
    reload ();
    return to_entries (m_store->entries_touching (from, to, true));
}

GList *CalendarSet::read_kind (EntryKind kind)
{
    reload ();
    return to_entries (m_store->entries_of_kind (kind, true));
}

gboolean answer_database_read (TavCalendarView *view, CalendarSet &calendars)
{
    TavDateInterval interval;
    if (!tav_calendar_view_get_presented_interval (view, &interval)) {
        return FALSE;
    }
    /* A read replaces what the view showed: a second answer to the same
     * request shows nothing twice. */
    tav_calendar_view_clear_entries (view);
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    GList *entries = calendars.read_interval (interval);
    tav_calendar_view_add_entries (view, entries);
    g_list_free_full (entries, g_object_unref);
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
    return TRUE;
}

}  // namespace tav::host
