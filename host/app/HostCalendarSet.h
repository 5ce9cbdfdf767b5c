/* The store's calendars as TavCalendarSources, and the reads the views
 * ask for. */
#ifndef TAV_HOST_CALENDAR_SET_H
#define TAV_HOST_CALENDAR_SET_H

#include "TavHostCalendarSource.h"

#include <map>
#include <memory>

namespace tav::host {

class CalendarSet {
public:
    explicit CalendarSet (std::shared_ptr<Store> store);

    /* One source per stored calendar, with the stored properties; done
     * before every read, so that a calendar changed in the store (by this
     * program or another) shows as it is now. */
    void reload ();

    Store &store () { return *m_store; }
    const std::shared_ptr<Store> &shared_store () const { return m_store; }
    TavHostCalendarSource *source (int64_t calendar_id) const;
    /* The first calendar that accepts writes, NULL when there is none. */
    TavHostCalendarSource *first_writable () const;

    /* New entry objects (one reference each, the caller frees the list with
     * g_list_free_full (list, g_object_unref)) for the events and tasks of
     * the visible calendars that touch @interval. Dates outside the years
     * the views can show are never asked for. */
    GList *read_interval (const TavDateInterval &interval);
    /* Tasks or notes of the visible calendars. */
    GList *read_kind (EntryKind kind);

private:
    GList *to_entries (const std::vector<EntryRecord> &records);

    std::shared_ptr<Store> m_store;
    std::map<int64_t, Ref<TavHostCalendarSource>> m_sources;
};

/* Answers a view's "database-access-read": clear, freeze, reading started, the
 * entries of the presented interval, thaw, reading finished. */
gboolean answer_database_read (TavCalendarView *view, CalendarSet &calendars);

}  // namespace tav::host

#endif
