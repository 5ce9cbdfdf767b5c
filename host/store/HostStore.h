/* The calendar store: calendars and their events, tasks and notes in one
 * SQLite file (WAL journal, versioned schema with migrations, an R*Tree
 * interval index so that "everything touching this interval" is a range
 * query).
 */
#ifndef TAV_HOST_STORE_H
#define TAV_HOST_STORE_H

#include "HostRecord.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace tav::host {

class Store {
public:
    /* The schema this build writes; older files are migrated on open. */
    static constexpr int kSchemaVersion = 4;

    /* Opens (creating when missing) the store at @path. A file that is not
     * a calendar database, or one written by a newer version, is refused
     * untouched: NULL and a readable @status. */
    static std::unique_ptr<Store> open (const std::string &path, Status *status);
    ~Store ();
    Store (const Store &) = delete;
    Store &operator= (const Store &) = delete;

    const std::string &path () const { return m_path; }
    int schema_version ();
    std::string journal_mode ();

    /* Calendars. Titles are unique: a second one gives CalendarAlreadyExists. */
    Status add_calendar (CalendarRecord &calendar);
    Status update_calendar (const CalendarRecord &calendar);
    Status remove_calendar (int64_t id);
    Status clear_calendar (int64_t id);
    std::vector<CalendarRecord> calendars ();
    bool find_calendar (int64_t id, CalendarRecord *out);
    bool find_calendar_by_title (const std::string &title, CalendarRecord *out);

    /* Entries. add_entry fills in id (and uid, created and modified when
     * empty). Writes into a read-only calendar are refused with
     * CalendarInvalidArg; a UID already in the calendar gives
     * CalendarDuplicateError; a full disk CalendarDiskFullError, with the
     * store left as it was before the call. */
    Status add_entry (EntryRecord &entry);
    Status update_entry (EntryRecord &entry);
    /* Deleting the master of a series deletes its exceptions; deleting an
     * exception cancels that instance. */
    Status delete_entry (int64_t id);
    bool find_entry (int64_t id, EntryRecord *out);
    /* The entry with that UID (the master of a series, when it has one). */
    bool find_entry_by_uid (int64_t calendar_id, const std::string &uid, EntryRecord *out);
    /* The entry with that UID and RECURRENCE-ID (kNoRecurrenceId: the master). */
    bool find_entry_by_key (int64_t calendar_id, const std::string &uid, int64_t recurrence_id, EntryRecord *out);
    /* Removes a series and its exceptions; @removed gets their number. */
    Status delete_series (int64_t calendar_id, const std::string &uid, int *removed);
    /* Keeps the VTIMEZONE text of a zone an imported file defined; the
     * store registers the kept zones when it opens. */
    Status save_zone (const std::string &tzid, const std::string &definition);

    /* Events and tasks of the visible calendars (all calendars when
     * @visible_only is false) that have an instance touching [from, to]
     * (local civil minutes); cancelled exceptions are left out. */
    std::vector<EntryRecord> entries_touching (int64_t from, int64_t to, bool visible_only = true);
    std::vector<EntryRecord> entries_of_kind (EntryKind kind, bool visible_only = true);
    std::vector<EntryRecord> entries_of_calendar (int64_t calendar_id);
    /* Entries of a calendar, of one kind or (kind < 0) of all kinds. */
    int64_t count_entries (int64_t calendar_id, int kind = -1);

    /* Groups writes into one transaction: everything between begin and
     * commit is stored together or not at all. */
    class Transaction {
    public:
        explicit Transaction (Store &store);
        ~Transaction ();  /* rolls back unless committed */
        Status commit ();
        /* False when it could not begin (another writer holds the store). */
        bool is_open () const { return m_open; }
    private:
        Store &m_store;
        bool m_open;
    };

    /* Caps the file at @pages pages (SQLite's max_page_count); the tests
     * simulate a full disk with it. */
    void set_page_limit (int64_t pages);

private:
    Store (sqlite3 *db, std::string path);

    Status exec (const char *sql);
    Status migrate (int from_version);
    bool has_column (const char *table, const char *column);
    Status write_entry (EntryRecord &entry, bool insert);
    Status check_entry (const EntryRecord &entry, bool insert);
    Status error_status (int rc, const std::string &what);
    static Status error_status_words (int rc, const std::string &what);
    sqlite3_stmt *prepare (const char *sql);
    std::vector<EntryRecord> query_entries (sqlite3_stmt *stmt);
    /* The first row of an entry query into @out (when given); false when none. */
    bool first_entry (sqlite3_stmt *stmt, EntryRecord *out);
    /* Runs a statement whose one parameter is an id; @what names the step
     * in the error. */
    Status step_with_id (const char *sql, int64_t id, const std::string &what);
    /* Indexes entry @id on [lo, hi]. */
    Status insert_span (int64_t id, int64_t lo, int64_t hi, const std::string &what);
    /* Indexes @e on [start, end of its last instance] in its own frame. */
    Status index_entry (const EntryRecord &e);
    /* Fills in the RECURRENCE-IDs of the exceptions of each master. */
    void fill_overridden (std::vector<EntryRecord> &entries);

    sqlite3 *m_db;
    std::string m_path;
    struct Statements;
    std::unique_ptr<Statements> m_stmts;
};

}  // namespace tav::host

#endif
