#include "HostStore.h"
#include "HostCivilTime.h"
#include "HostRecurrence.h"
#include "HostZone.h"

#include <glib.h>
#include <glib/gstdio.h>
#include <unistd.h>
#include <sqlite3.h>

#include <algorithm>
#include <cinttypes>
#include <climits>
#include <ctime>
#include <map>
#include <sstream>

namespace tav::host {

namespace {

/* How long a store another process is writing is waited for. */
constexpr int kBusyTimeoutMs = 15000;

/* The store keeps the years 1 to 9999: what iCalendar can write. */
const int64_t kLowestMinute = civil_minutes (1, 1, 1);
const int64_t kHighestMinute = civil_minutes (9999, 12, 31, 23, 59);

/* Version 1: calendars and entries with a plain start index. */
const char *const kSchemaV1 = R"SQL(
CREATE TABLE calendars (
    id          INTEGER PRIMARY KEY,
    title       TEXT NOT NULL UNIQUE,
    color       INTEGER NOT NULL DEFAULT 0,
    type        INTEGER NOT NULL DEFAULT 0,
    sync_type   INTEGER NOT NULL DEFAULT 0,
    visible     INTEGER NOT NULL DEFAULT 1,
    read_only   INTEGER NOT NULL DEFAULT 0,
    alarm_tone  TEXT
);
CREATE TABLE entries (
    id           INTEGER PRIMARY KEY,
    calendar_id  INTEGER NOT NULL REFERENCES calendars(id) ON DELETE CASCADE,
    kind         INTEGER NOT NULL,
    uid          TEXT NOT NULL,
    title        TEXT,
    description  TEXT,
    location     TEXT,
    start        INTEGER NOT NULL,
    end          INTEGER NOT NULL,
    all_day      INTEGER NOT NULL DEFAULT 0,
    alarm_code   INTEGER NOT NULL DEFAULT 0,
    alarm_time   INTEGER NOT NULL DEFAULT -1,
    repeat_code  INTEGER NOT NULL DEFAULT 0,
    rrule        TEXT,
    exdates      TEXT,
    done         INTEGER NOT NULL DEFAULT 0,
    has_birthday INTEGER NOT NULL DEFAULT 0,
    birth_year   INTEGER NOT NULL DEFAULT -1,
    created      INTEGER NOT NULL DEFAULT 0,
    modified     INTEGER NOT NULL DEFAULT 0,
    UNIQUE (calendar_id, uid)
);
CREATE INDEX entries_start ON entries (start);
)SQL";

/* Version 2: EXRULE, RDATE, recurrence zone and unknown iCalendar
 * properties are kept; an R*Tree over [start, end of last instance]
 * replaces the start index so that interval queries stay range queries
 * however long a repeating event runs. */
const char *const kSchemaV2 = R"SQL(
ALTER TABLE entries ADD COLUMN exrule TEXT;
ALTER TABLE entries ADD COLUMN rdates TEXT;
ALTER TABLE entries ADD COLUMN tzid TEXT;
ALTER TABLE entries ADD COLUMN extra TEXT;
CREATE VIRTUAL TABLE entry_spans USING rtree_i32 (id, lo, hi);
CREATE TRIGGER entries_drop_span AFTER DELETE ON entries
BEGIN
    DELETE FROM entry_spans WHERE id = old.id;
END;
CREATE INDEX entries_kind ON entries (kind, calendar_id);
DROP INDEX entries_start;
)SQL";

/* Version 3: series and their exceptions share a UID and differ by
 * RECURRENCE-ID (the key becomes calendar, UID, RECURRENCE-ID); SEQUENCE,
 * DTSTAMP, cancellation and the imported VALARMs are kept; timed entries
 * with a zone hold UTC instants (re-indexed after the migration); the
 * VTIMEZONEs of imported files are kept by TZID. */
const char *const kSchemaV3 = R"SQL(
CREATE TABLE entries_v3 (
    id           INTEGER PRIMARY KEY,
    calendar_id  INTEGER NOT NULL REFERENCES calendars(id) ON DELETE CASCADE,
    kind         INTEGER NOT NULL,
    uid          TEXT NOT NULL,
    title        TEXT,
    description  TEXT,
    location     TEXT,
    start        INTEGER NOT NULL,
    end          INTEGER NOT NULL,
    all_day      INTEGER NOT NULL DEFAULT 0,
    alarm_code   INTEGER NOT NULL DEFAULT 0,
    alarm_time   INTEGER NOT NULL DEFAULT -1,
    repeat_code  INTEGER NOT NULL DEFAULT 0,
    rrule        TEXT,
    exdates      TEXT,
    done         INTEGER NOT NULL DEFAULT 0,
    has_birthday INTEGER NOT NULL DEFAULT 0,
    birth_year   INTEGER NOT NULL DEFAULT -1,
    created      INTEGER NOT NULL DEFAULT 0,
    modified     INTEGER NOT NULL DEFAULT 0,
    exrule       TEXT,
    rdates       TEXT,
    tzid         TEXT,
    extra        TEXT,
    recurrence_id INTEGER NOT NULL DEFAULT -9223372036854775808,
    sequence     INTEGER NOT NULL DEFAULT 0,
    dtstamp      INTEGER NOT NULL DEFAULT 0,
    cancelled    INTEGER NOT NULL DEFAULT 0,
    alarms       TEXT,
    UNIQUE (calendar_id, uid, recurrence_id)
);
INSERT INTO entries_v3 (id, calendar_id, kind, uid, title, description, location, start, end, all_day,
    alarm_code, alarm_time, repeat_code, rrule, exdates, done, has_birthday, birth_year, created, modified,
    exrule, rdates, tzid, extra)
  SELECT id, calendar_id, kind, uid, title, description, location, start, end, all_day,
    alarm_code, alarm_time, repeat_code, rrule, exdates, done, has_birthday, birth_year, created, modified,
    exrule, rdates, tzid, extra FROM entries;
DROP TABLE entries;
ALTER TABLE entries_v3 RENAME TO entries;
DELETE FROM entry_spans;
CREATE TRIGGER entries_drop_span AFTER DELETE ON entries
BEGIN
    DELETE FROM entry_spans WHERE id = old.id;
END;
CREATE INDEX entries_kind ON entries (kind, calendar_id);
CREATE TABLE zones (
    tzid        TEXT PRIMARY KEY,
    definition  TEXT NOT NULL
);
)SQL";

/* Version 4: tasks without a due date stay undated. */
const char *const kSchemaV4 = R"SQL(
ALTER TABLE entries ADD COLUMN undated INTEGER NOT NULL DEFAULT 0;
)SQL";

const char *const kEntryColumns =
    "e.id, e.calendar_id, e.kind, e.uid, e.title, e.description, e.location, e.start, e.end, e.all_day, "
    "e.alarm_code, e.alarm_time, e.repeat_code, e.rrule, e.exdates, e.done, e.has_birthday, e.birth_year, "
    "e.created, e.modified, e.exrule, e.rdates, e.tzid, e.extra, e.recurrence_id, e.sequence, e.dtstamp, e.cancelled, "
    "e.alarms, e.undated";

std::string join_minutes (const std::vector<int64_t> &values)
{
    std::string out;
    for (int64_t v : values) {
        if (!out.empty ()) {
            out += ',';
        }
        out += std::to_string (v);
    }
    return out;
}

/* RDATEs, "start" or "start/end" for a period. */
std::string join_rdates (const EntryRecord &e)
{
    std::string out;
    for (size_t i = 0; i < e.rdates.size (); ++i) {
        out += (i ? "," : "") + std::to_string (e.rdates[i]);
        if (i < e.rdate_ends.size () && e.rdate_ends[i] != kNoRecurrenceId) {
            out += "/" + std::to_string (e.rdate_ends[i]);
        }
    }
    return out;
}

void split_rdates (const char *text, EntryRecord &e)
{
    e.rdates.clear ();
    e.rdate_ends.clear ();
    bool periods = false;
    for (const char *p = text; p && *p;) {
        char *end = nullptr;
        e.rdates.push_back (g_ascii_strtoll (p, &end, 10));
        int64_t period_end = kNoRecurrenceId;
        if (*end == '/') {
            period_end = g_ascii_strtoll (end + 1, &end, 10);
            periods = true;
        }
        e.rdate_ends.push_back (period_end);
        p = *end == ',' ? end + 1 : end;
        if (p == end && *p) {
            break;  /* not ours */
        }
    }
    if (!periods) {
        e.rdate_ends.clear ();
    }
}

std::vector<int64_t> split_minutes (const char *text)
{
    std::vector<int64_t> out;
    if (!text) {
        return out;
    }
    std::stringstream in (text);
    std::string item;
    while (std::getline (in, item, ',')) {
        if (!item.empty ()) {
            out.push_back (g_ascii_strtoll (item.c_str (), nullptr, 10));
        }
    }
    return out;
}

std::string column_text (sqlite3_stmt *stmt, int i)
{
    const unsigned char *t = sqlite3_column_text (stmt, i);
    return t ? reinterpret_cast<const char *> (t) : std::string ();
}

int clamp32 (int64_t v)
{
    return static_cast<int> (std::clamp<int64_t> (v, INT_MIN, INT_MAX));
}

void bind_text (sqlite3_stmt *stmt, int i, const std::string &s, bool null_if_empty = false)
{
    if (null_if_empty && s.empty ()) {
        sqlite3_bind_null (stmt, i);
    } else {
        sqlite3_bind_text (stmt, i, s.data (), static_cast<int> (s.size ()), SQLITE_TRANSIENT);
    }
}

/* Resets a cached statement when the caller is done with it. */
struct StmtUse {
    sqlite3_stmt *stmt;
    explicit StmtUse (sqlite3_stmt *s) : stmt (s) {}
    ~StmtUse ()
    {
        if (stmt) {
            sqlite3_reset (stmt);
            sqlite3_clear_bindings (stmt);
        }
    }
};

void bind_calendar (sqlite3_stmt *stmt, const CalendarRecord &c)
{
    bind_text (stmt, 1, c.title);
    sqlite3_bind_int (stmt, 2, c.color);
    sqlite3_bind_int (stmt, 3, c.type);
    sqlite3_bind_int (stmt, 4, c.sync_type);
    sqlite3_bind_int (stmt, 5, c.visible);
    sqlite3_bind_int (stmt, 6, c.read_only);
    bind_text (stmt, 7, c.alarm_tone, true);
}

}  // namespace

struct Store::Statements {
    std::map<const char *, sqlite3_stmt *> cache;
    int savepoint_depth = 0;
    ~Statements ()
    {
        for (auto &entry : cache) {
            sqlite3_finalize (entry.second);
        }
    }
};

Store::Store (sqlite3 *db, std::string path) : m_db (db), m_path (std::move (path)), m_stmts (new Statements) {}

Store::~Store ()
{
    m_stmts.reset ();
    sqlite3_close_v2 (m_db);
}

sqlite3_stmt *Store::prepare (const char *sql)
{
    auto it = m_stmts->cache.find (sql);
    if (it != m_stmts->cache.end ()) {
        return it->second;
    }
    sqlite3_stmt *stmt = nullptr;
    if (sqlite3_prepare_v2 (m_db, sql, -1, &stmt, nullptr) != SQLITE_OK) {
        g_warning ("tav-calendar store: cannot prepare \"%s\": %s", sql, sqlite3_errmsg (m_db));
        return nullptr;
    }
    m_stmts->cache.emplace (sql, stmt);
    return stmt;
}

Status Store::error_status (int rc, const std::string &what)
{
    Status s = error_status_words (rc, what);
    s.rc = rc;
    return s;
}

Status Store::error_status_words (int rc, const std::string &what)
{
    const int primary = rc & 0xff;
    std::string detail = what + ": " + sqlite3_errstr (rc);
    switch (primary) {
    case SQLITE_FULL:
        return Status::failure (CalendarDiskFullError, what + ": the disk is full");
    case SQLITE_CONSTRAINT:
        return Status::failure (CalendarDuplicateError, detail);
    case SQLITE_MISUSE:
    case SQLITE_RANGE:
        return Status::failure (CalendarInvalidArg, detail);
    default:
        return Status::failure (CalendarDefaultError, detail);
    }
}

Status Store::exec (const char *sql)
{
    char *err = nullptr;
    const int rc = sqlite3_exec (m_db, sql, nullptr, nullptr, &err);
    if (rc != SQLITE_OK) {
        Status s = error_status (rc, err ? err : "SQL failed");
        sqlite3_free (err);
        return s;
    }
    return Status::success ();
}

Status Store::step_with_id (const char *sql, int64_t id, const std::string &what)
{
    sqlite3_stmt *stmt = prepare (sql);
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, id);
    const int rc = sqlite3_step (stmt);
    return rc == SQLITE_DONE ? Status::success () : error_status (rc, what);
}

Status Store::insert_span (int64_t id, int64_t lo, int64_t hi, const std::string &what)
{
    sqlite3_stmt *span = prepare ("INSERT INTO entry_spans (id, lo, hi) VALUES (?, ?, ?)");
    StmtUse use (span);
    sqlite3_bind_int64 (span, 1, id);
    sqlite3_bind_int (span, 2, clamp32 (lo));
    sqlite3_bind_int (span, 3, clamp32 (hi));
    const int rc = sqlite3_step (span);
    return rc == SQLITE_DONE ? Status::success () : error_status (rc, what);
}

namespace {

/* Why a store could not be opened, in words: a full disk, a read-only
 * folder and a busy store are not "not a calendar database". */
Status open_failure (const std::string &path, int rc, const std::string &detail = {})
{
    gchar *dir_c = g_path_get_dirname (path.c_str ());
    const std::string dir = dir_c;
    g_free (dir_c);
    const bool exists = g_file_test (path.c_str (), G_FILE_TEST_EXISTS);
    std::string why;
    switch (rc & 0xff) {
    case SQLITE_FULL:
        return Status::failure (CalendarDiskFullError,
                                "cannot open the calendar database '" + path + "': the disk is full");
    case SQLITE_IOERR:
        why = "the disk is full or cannot be read or written (" + std::string (sqlite3_errstr (rc)) + ")";
        break;
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_PERM:
        if (g_access (dir.c_str (), W_OK) != 0) {
            why = "the folder '" + dir + "' is read-only" +
                  (exists ? std::string (", and the calendar needs to write beside its file")
                          : std::string (", so the calendar cannot be created there"));
        } else if (exists && g_access (path.c_str (), W_OK) != 0) {
            why = "the file is read-only";
        } else {
            why = sqlite3_errstr (rc);
        }
        break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        why = "another program kept it locked for too long";
        break;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return Status::failure (CalendarDefaultError,
                                "'" + path + "' is not a calendar database (" + sqlite3_errstr (rc) + ")");
    default:
        why = detail.empty () ? sqlite3_errstr (rc) : detail;
    }
    Status s = Status::failure ((rc & 0xff) == SQLITE_IOERR ? CalendarDiskFullError : CalendarDefaultError,
                                "cannot open the calendar database '" + path + "': " + why);
    s.rc = rc;
    return s;
}

}  // namespace

Status Store::index_entry (const EntryRecord &e)
{
    Status s = step_with_id ("DELETE FROM entry_spans WHERE id = ?", e.id, "indexing '" + e.title + "'");
    if (!s.ok () || e.kind == EntryKind::Note || e.cancelled || e.undated) {
        return s;
    }
    const int64_t hi = e.kind == EntryKind::Task ? std::max (e.end, civil_day_start (e.start) + 1439)
                                                 : last_instance_end (e);
    return insert_span (e.id, e.start, hi, "indexing '" + e.title + "'");
}

std::unique_ptr<Store> Store::open (const std::string &path, Status *status)
{
    Status local;
    Status &st = status ? *status : local;
    sqlite3 *db = nullptr;
    int rc = sqlite3_open_v2 (path.c_str (), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                              nullptr);
    if (rc != SQLITE_OK) {
        st = open_failure (path, rc);
        sqlite3_close_v2 (db);
        return nullptr;
    }
    sqlite3_extended_result_codes (db, 1);
    /* Another process writing the same store is waited for, not failed. */
    sqlite3_busy_timeout (db, kBusyTimeoutMs);
    std::unique_ptr<Store> store (new Store (db, path));

    /* Look before touching anything: a file that is not ours stays as it is. */
    sqlite3_stmt *probe = nullptr;
    rc = sqlite3_prepare_v2 (db, "SELECT count(*) FROM sqlite_master", -1, &probe, nullptr);
    int foreign_objects = 0;
    if (rc == SQLITE_OK) {
        rc = sqlite3_step (probe);
        if (rc == SQLITE_ROW) {
            foreign_objects = sqlite3_column_int (probe, 0);
            rc = SQLITE_OK;
        }
    }
    sqlite3_finalize (probe);
    if (rc != SQLITE_OK) {
        st = open_failure (path, rc);
        return nullptr;
    }
    const int version = store->schema_version ();
    if (version == 0 && foreign_objects > 0) {
        st = Status::failure (CalendarDefaultError,
                              "'" + path + "' is an SQLite database of another program, not a calendar database");
        return nullptr;
    }
    if (version > kSchemaVersion) {
        st = Status::failure (CalendarDefaultError, "'" + path + "' was written by a newer tav-calendar (schema " +
                                                        std::to_string (version) + ")");
        return nullptr;
    }

    store->exec ("PRAGMA journal_mode=WAL");
    store->exec ("PRAGMA synchronous=NORMAL");
    store->exec ("PRAGMA foreign_keys=ON");

    if (version < kSchemaVersion) {
        Status m = store->migrate (version);
        if (!m.ok ()) {
            st = m.code == CalendarDefaultError ? open_failure (path, m.rc, m.message) : m;
            return nullptr;
        }
    }
    /* The zones imported files defined. */
    sqlite3_stmt *zones = store->prepare ("SELECT definition FROM zones");
    {
        StmtUse use (zones);
        while (zones && sqlite3_step (zones) == SQLITE_ROW) {
            register_zone (column_text (zones, 0));
        }
    }
    st = Status::success ();
    return store;
}

bool Store::has_column (const char *table, const char *column)
{
    sqlite3_stmt *stmt = nullptr;
    bool found = false;
    const std::string sql = std::string ("PRAGMA table_info(") + table + ")";
    if (sqlite3_prepare_v2 (m_db, sql.c_str (), -1, &stmt, nullptr) == SQLITE_OK) {
        while (!found && sqlite3_step (stmt) == SQLITE_ROW) {
            found = column_text (stmt, 1) == column;
        }
    }
    sqlite3_finalize (stmt);
    return found;
}

int Store::schema_version ()
{
    sqlite3_stmt *stmt = nullptr;
    int version = -1;
    if (sqlite3_prepare_v2 (m_db, "PRAGMA user_version", -1, &stmt, nullptr) == SQLITE_OK
        && sqlite3_step (stmt) == SQLITE_ROW) {
        version = sqlite3_column_int (stmt, 0);
    }
    sqlite3_finalize (stmt);
    return version;
}

std::string Store::journal_mode ()
{
    sqlite3_stmt *stmt = nullptr;
    std::string mode;
    if (sqlite3_prepare_v2 (m_db, "PRAGMA journal_mode", -1, &stmt, nullptr) == SQLITE_OK
        && sqlite3_step (stmt) == SQLITE_ROW) {
        mode = column_text (stmt, 0);
    }
    sqlite3_finalize (stmt);
    return mode;
}

Status Store::migrate (int from_version)
{
    Transaction tx (*this);
    /* Another process may have migrated while this one waited for the lock. */
    from_version = schema_version ();
    if (from_version >= kSchemaVersion) {
        return tx.commit ();
    }
    if (from_version < 1) {
        Status s = exec (kSchemaV1);
        if (!s.ok ()) {
            return s;
        }
    }
    if (from_version < 2) {
        Status s = exec (kSchemaV2);
        if (!s.ok ()) {
            return s;
        }
    }
    if (from_version < 3) {
        Status s = exec (kSchemaV3);
        if (!s.ok ()) {
            return s;
        }
        s = exec (kSchemaV4);
        if (!s.ok ()) {
            return s;
        }
        /* Version 2 kept zoned repeating events in local wall-clock time
         * with their zone beside: they become instants. Then everything is
         * indexed anew. */
        std::vector<EntryRecord> all;
        {
            std::string sql = std::string ("SELECT ") + kEntryColumns + " FROM entries e";
            sqlite3_stmt *stmt = nullptr;
            sqlite3_prepare_v2 (m_db, sql.c_str (), -1, &stmt, nullptr);
            all = query_entries (stmt);
            sqlite3_finalize (stmt);
        }
        for (EntryRecord &e : all) {
            if (e.is_instant ()) {
                for (int64_t *t : {&e.start, &e.end}) {
                    *t = utc_from_local (*t);
                }
                for (auto *list : {&e.exdates, &e.rdates}) {
                    for (int64_t &t : *list) {
                        t = utc_from_local (t);
                    }
                }
                sqlite3_stmt *stmt = prepare ("UPDATE entries SET start = ?, end = ?, exdates = ?, rdates = ? WHERE id = ?");
                StmtUse use (stmt);
                sqlite3_bind_int64 (stmt, 1, e.start);
                sqlite3_bind_int64 (stmt, 2, e.end);
                bind_text (stmt, 3, join_minutes (e.exdates), true);
                bind_text (stmt, 4, join_minutes (e.rdates), true);
                sqlite3_bind_int64 (stmt, 5, e.id);
                const int rc = sqlite3_step (stmt);
                if (rc != SQLITE_DONE) {
                    return error_status (rc, "moving the stored zoned entries to UTC");
                }
            }
            s = index_entry (e);
            if (!s.ok ()) {
                return s;
            }
        }
    }
    if (from_version == 3 && !has_column ("entries", "undated")) {
        /* (Some version-3 files of this branch's development have it.) */
        Status s = exec (kSchemaV4);
        if (!s.ok ()) {
            return s;
        }
    }
    char sql[64];
    snprintf (sql, sizeof sql, "PRAGMA user_version=%d", kSchemaVersion);
    Status s = exec (sql);
    if (!s.ok ()) {
        return s;
    }
    return tx.commit ();
}

/* The outermost transaction takes the write lock at once (BEGIN IMMEDIATE),
 * so that a second process waits for it instead of failing half-way when
 * its read turns into a write; inner ones are savepoints. */
Store::Transaction::Transaction (Store &store) : m_store (store), m_open (false)
{
    const int depth = m_store.m_stmts->savepoint_depth;
    char sql[48];
    snprintf (sql, sizeof sql, "SAVEPOINT tav_%d", depth);
    m_open = m_store.exec (depth == 0 ? "BEGIN IMMEDIATE" : sql).ok ();
    if (m_open) {
        m_store.m_stmts->savepoint_depth++;
    }
}

Store::Transaction::~Transaction ()
{
    if (!m_open) {
        return;
    }
    const int depth = --m_store.m_stmts->savepoint_depth;
    char sql[96];
    snprintf (sql, sizeof sql, "ROLLBACK TO tav_%d; RELEASE tav_%d", depth, depth);
    m_store.exec (depth == 0 ? "ROLLBACK" : sql);
}

Status Store::Transaction::commit ()
{
    if (!m_open) {
        return Status::failure (CalendarDefaultError, "the transaction could not be started");
    }
    const int depth = m_store.m_stmts->savepoint_depth - 1;
    char sql[48];
    snprintf (sql, sizeof sql, "RELEASE tav_%d", depth);
    Status s = m_store.exec (depth == 0 ? "COMMIT" : sql);
    if (s.ok ()) {
        m_open = false;
        m_store.m_stmts->savepoint_depth--;
    }
    /* On failure the destructor rolls back. */
    return s;
}

void Store::set_page_limit (int64_t pages)
{
    char sql[64];
    snprintf (sql, sizeof sql, "PRAGMA max_page_count=%" PRId64, pages);
    exec (sql);
}

/* Calendars ------------------------------------------------------------- */

namespace {

CalendarRecord read_calendar (sqlite3_stmt *stmt)
{
    CalendarRecord c;
    c.id = sqlite3_column_int64 (stmt, 0);
    c.title = column_text (stmt, 1);
    c.color = sqlite3_column_int (stmt, 2);
    c.type = sqlite3_column_int (stmt, 3);
    c.sync_type = sqlite3_column_int (stmt, 4);
    c.visible = sqlite3_column_int (stmt, 5) != 0;
    c.read_only = sqlite3_column_int (stmt, 6) != 0;
    c.alarm_tone = column_text (stmt, 7);
    return c;
}

/* Reads the first row of a calendar query into @out (when given). */
bool first_calendar (sqlite3_stmt *stmt, CalendarRecord *out)
{
    if (sqlite3_step (stmt) != SQLITE_ROW) {
        return false;
    }
    if (out) {
        *out = read_calendar (stmt);
    }
    return true;
}

const char *const kCalendarSelect =
    "SELECT id, title, color, type, sync_type, visible, read_only, alarm_tone FROM calendars";

Status check_calendar (const CalendarRecord &c)
{
    if (c.title.empty () || !g_utf8_validate (c.title.c_str (), static_cast<gssize> (c.title.size ()), nullptr)) {
        return Status::failure (CalendarInvalidArg, "a calendar needs a title in valid UTF-8");
    }
    if (c.color < TavCalendarColorDarkBlue || c.color > TavCalendarColorGreen) {
        return Status::failure (CalendarInvalidArg, "unknown calendar colour " + std::to_string (c.color));
    }
    return Status::success ();
}

}  // namespace

Status Store::add_calendar (CalendarRecord &c)
{
    Status s = check_calendar (c);
    if (!s.ok ()) {
        return s;
    }
    if (find_calendar_by_title (c.title, nullptr)) {
        return Status::failure (CalendarAlreadyExists, "a calendar called '" + c.title + "' already exists");
    }
    sqlite3_stmt *stmt = prepare ("INSERT INTO calendars (title, color, type, sync_type, visible, read_only, "
                                  "alarm_tone) VALUES (?, ?, ?, ?, ?, ?, ?)");
    StmtUse use (stmt);
    bind_calendar (stmt, c);
    const int rc = sqlite3_step (stmt);
    if (rc != SQLITE_DONE) {
        return error_status (rc, "adding the calendar '" + c.title + "'");
    }
    c.id = sqlite3_last_insert_rowid (m_db);
    return Status::success ();
}

Status Store::update_calendar (const CalendarRecord &c)
{
    Status s = check_calendar (c);
    if (!s.ok ()) {
        return s;
    }
    CalendarRecord other;
    if (find_calendar_by_title (c.title, &other) && other.id != c.id) {
        return Status::failure (CalendarAlreadyExists, "a calendar called '" + c.title + "' already exists");
    }
    sqlite3_stmt *stmt = prepare ("UPDATE calendars SET title = ?, color = ?, type = ?, sync_type = ?, visible = ?, "
                                  "read_only = ?, alarm_tone = ? WHERE id = ?");
    StmtUse use (stmt);
    bind_calendar (stmt, c);
    sqlite3_bind_int64 (stmt, 8, c.id);
    const int rc = sqlite3_step (stmt);
    if (rc != SQLITE_DONE) {
        return error_status (rc, "saving the calendar '" + c.title + "'");
    }
    if (sqlite3_changes (m_db) == 0) {
        return Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (c.id));
    }
    return Status::success ();
}

Status Store::remove_calendar (int64_t id)
{
    Status s = step_with_id ("DELETE FROM calendars WHERE id = ?", id, "removing calendar " + std::to_string (id));
    if (!s.ok ()) {
        return s;
    }
    if (sqlite3_changes (m_db) == 0) {
        return Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (id));
    }
    return Status::success ();
}

Status Store::clear_calendar (int64_t id)
{
    CalendarRecord c;
    if (!find_calendar (id, &c)) {
        return Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (id));
    }
    if (c.read_only) {
        return Status::failure (CalendarInvalidArg, "the calendar '" + c.title + "' is read-only");
    }
    return step_with_id ("DELETE FROM entries WHERE calendar_id = ?", id, "emptying the calendar '" + c.title + "'");
}

std::vector<CalendarRecord> Store::calendars ()
{
    std::vector<CalendarRecord> out;
    static const std::string sql = std::string (kCalendarSelect) + " ORDER BY id";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    while (sqlite3_step (stmt) == SQLITE_ROW) {
        out.push_back (read_calendar (stmt));
    }
    return out;
}

bool Store::find_calendar (int64_t id, CalendarRecord *out)
{
    static const std::string sql = std::string (kCalendarSelect) + " WHERE id = ?";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, id);
    return first_calendar (stmt, out);
}

bool Store::find_calendar_by_title (const std::string &title, CalendarRecord *out)
{
    static const std::string sql = std::string (kCalendarSelect) + " WHERE title = ?";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    bind_text (stmt, 1, title);
    return first_calendar (stmt, out);
}

/* Entries ---------------------------------------------------------------- */

std::vector<EntryRecord> Store::query_entries (sqlite3_stmt *stmt)
{
    std::vector<EntryRecord> out;
    if (!stmt) {
        return out;
    }
    while (sqlite3_step (stmt) == SQLITE_ROW) {
        EntryRecord e;
        e.id = sqlite3_column_int64 (stmt, 0);
        e.calendar_id = sqlite3_column_int64 (stmt, 1);
        e.kind = static_cast<EntryKind> (sqlite3_column_int (stmt, 2));
        e.uid = column_text (stmt, 3);
        e.title = column_text (stmt, 4);
        e.description = column_text (stmt, 5);
        e.location = column_text (stmt, 6);
        e.start = sqlite3_column_int64 (stmt, 7);
        e.end = sqlite3_column_int64 (stmt, 8);
        e.all_day = sqlite3_column_int (stmt, 9) != 0;
        e.alarm_code = sqlite3_column_int (stmt, 10);
        e.alarm_time = sqlite3_column_int (stmt, 11);
        e.repeat_code = sqlite3_column_int (stmt, 12);
        e.rrule = column_text (stmt, 13);
        e.exdates = split_minutes (reinterpret_cast<const char *> (sqlite3_column_text (stmt, 14)));
        e.done = sqlite3_column_int (stmt, 15) != 0;
        e.has_birthday = sqlite3_column_int (stmt, 16) != 0;
        e.birth_year = sqlite3_column_int (stmt, 17);
        e.created = sqlite3_column_int64 (stmt, 18);
        e.modified = sqlite3_column_int64 (stmt, 19);
        e.exrule = column_text (stmt, 20);
        split_rdates (reinterpret_cast<const char *> (sqlite3_column_text (stmt, 21)), e);
        e.tzid = column_text (stmt, 22);
        e.extra = column_text (stmt, 23);
        e.recurrence_id = sqlite3_column_int64 (stmt, 24);
        e.sequence = sqlite3_column_int (stmt, 25);
        e.dtstamp = sqlite3_column_int64 (stmt, 26);
        e.cancelled = sqlite3_column_int (stmt, 27) != 0;
        e.alarms = column_text (stmt, 28);
        e.undated = sqlite3_column_int (stmt, 29) != 0;
        if (e.undated) {
            /* An undated task is due today, whenever today is. */
            e.start = civil_day_start (civil_from_time_t (time (nullptr)));
            e.end = e.start + 1439;
        }
        out.push_back (std::move (e));
    }
    return out;
}

bool Store::first_entry (sqlite3_stmt *stmt, EntryRecord *out)
{
    auto rows = query_entries (stmt);
    if (rows.empty ()) {
        return false;
    }
    if (out) {
        *out = std::move (rows.front ());
    }
    return true;
}

Status Store::check_entry (const EntryRecord &e, bool insert)
{
    CalendarRecord c;
    if (!find_calendar (e.calendar_id, &c)) {
        return Status::failure (CalendarInvalidArg, "there is no calendar " + std::to_string (e.calendar_id));
    }
    if (c.read_only) {
        return Status::failure (CalendarInvalidArg, "the calendar '" + c.title + "' is read-only");
    }
    if (e.kind != EntryKind::Event && e.kind != EntryKind::Task && e.kind != EntryKind::Note) {
        return Status::failure (CalendarInvalidArg, "unknown entry kind");
    }
    for (const std::string *text : {&e.title, &e.description, &e.location, &e.uid}) {
        if (!g_utf8_validate (text->c_str (), static_cast<gssize> (text->size ()), nullptr)) {
            return Status::failure (CalendarInvalidArg, "the entry's texts must be valid UTF-8");
        }
    }
    if (e.end < e.start) {
        return Status::failure (CalendarInvalidArg, "the entry ends (" + civil_to_string (e.end) +
                                                        ") before it starts (" + civil_to_string (e.start) + ")");
    }
    if (e.start < kLowestMinute || e.end > kHighestMinute) {
        return Status::failure (CalendarInvalidArg, "'" + e.title + "' falls outside the years 1 to 9999 (" +
                                                        civil_to_string (e.start) + "), which the store cannot hold");
    }
    if (e.alarm_code < TavCalendarAlarmNone || e.alarm_code > TavCalendarAlarmDayBefore) {
        return Status::failure (CalendarInvalidArg, "unknown alarm code " + std::to_string (e.alarm_code));
    }
    if (e.repeat_code < TavCalendarRepeatsNoRepeat || e.repeat_code > TavCalendarRepeatsComplex) {
        return Status::failure (CalendarInvalidArg, "unknown repeat code " + std::to_string (e.repeat_code));
    }
    if (!e.rrule.empty ()) {
        Status s = validate_rrule (e.rrule);
        if (!s.ok ()) {
            return s;
        }
    }
    if (!e.exrule.empty ()) {
        Status s = validate_rrule (e.exrule);
        if (!s.ok ()) {
            return s;
        }
    }
    if (!insert) {
        EntryRecord old;
        if (!find_entry (e.id, &old)) {
            return Status::failure (CalendarInvalidArg, "there is no entry " + std::to_string (e.id));
        }
        CalendarRecord old_cal;
        if (old.calendar_id != e.calendar_id && find_calendar (old.calendar_id, &old_cal) && old_cal.read_only) {
            return Status::failure (CalendarInvalidArg, "the calendar '" + old_cal.title + "' is read-only");
        }
    }
    return Status::success ();
}

Status Store::write_entry (EntryRecord &e, bool insert)
{
    Status s = check_entry (e, insert);
    if (!s.ok ()) {
        return s;
    }
    const int64_t now = static_cast<int64_t> (time (nullptr));
    EntryRecord stored = e;
    if (insert) {
        if (stored.uid.empty ()) {
            char *uuid = g_uuid_string_random ();
            stored.uid = std::string (uuid) + "@tav-calendar";
            g_free (uuid);
        }
        if (stored.created == 0) {
            stored.created = now;
        }
    }
    if (stored.modified == 0 || !insert) {
        stored.modified = now;
    }

    Transaction tx (*this);
    sqlite3_stmt *stmt =
        insert ? prepare ("INSERT INTO entries (calendar_id, kind, uid, title, description, location, start, end, "
                          "all_day, alarm_code, alarm_time, repeat_code, rrule, exdates, done, has_birthday, "
                          "birth_year, created, modified, exrule, rdates, tzid, extra, recurrence_id, sequence, dtstamp, "
                          "cancelled, alarms, undated) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
               : prepare ("UPDATE entries SET calendar_id=?, kind=?, uid=?, title=?, description=?, location=?, "
                          "start=?, end=?, all_day=?, alarm_code=?, alarm_time=?, repeat_code=?, rrule=?, "
                          "exdates=?, done=?, has_birthday=?, birth_year=?, created=?, modified=?, exrule=?, "
                          "rdates=?, tzid=?, extra=?, recurrence_id=?, sequence=?, dtstamp=?, cancelled=?, alarms=?, undated=? "
                          "WHERE id=?");
    {
        StmtUse use (stmt);
        sqlite3_bind_int64 (stmt, 1, stored.calendar_id);
        sqlite3_bind_int (stmt, 2, static_cast<int> (stored.kind));
        bind_text (stmt, 3, stored.uid);
        bind_text (stmt, 4, stored.title);
        bind_text (stmt, 5, stored.description);
        bind_text (stmt, 6, stored.location);
        sqlite3_bind_int64 (stmt, 7, stored.start);
        sqlite3_bind_int64 (stmt, 8, stored.end);
        sqlite3_bind_int (stmt, 9, stored.all_day);
        sqlite3_bind_int (stmt, 10, stored.alarm_code);
        sqlite3_bind_int (stmt, 11, stored.alarm_time);
        sqlite3_bind_int (stmt, 12, stored.repeat_code);
        bind_text (stmt, 13, stored.rrule, true);
        bind_text (stmt, 14, join_minutes (stored.exdates), true);
        sqlite3_bind_int (stmt, 15, stored.done);
        sqlite3_bind_int (stmt, 16, stored.has_birthday);
        sqlite3_bind_int (stmt, 17, stored.birth_year);
        sqlite3_bind_int64 (stmt, 18, stored.created);
        sqlite3_bind_int64 (stmt, 19, stored.modified);
        bind_text (stmt, 20, stored.exrule, true);
        bind_text (stmt, 21, join_rdates (stored), true);
        bind_text (stmt, 22, stored.tzid, true);
        bind_text (stmt, 23, stored.extra, true);
        sqlite3_bind_int64 (stmt, 24, stored.recurrence_id);
        sqlite3_bind_int (stmt, 25, stored.sequence);
        sqlite3_bind_int64 (stmt, 26, stored.dtstamp);
        sqlite3_bind_int (stmt, 27, stored.cancelled);
        bind_text (stmt, 28, stored.alarms, true);
        sqlite3_bind_int (stmt, 29, stored.undated && stored.kind == EntryKind::Task);
        if (!insert) {
            sqlite3_bind_int64 (stmt, 30, stored.id);
        }
        const int rc = sqlite3_step (stmt);
        if (rc != SQLITE_DONE) {
            if ((rc & 0xff) == SQLITE_CONSTRAINT) {
                return Status::failure (CalendarDuplicateError,
                                        "the calendar already holds an entry with the UID '" + stored.uid + "'" +
                                            (stored.is_exception () ? " and this RECURRENCE-ID" : ""));
            }
            return error_status (rc, "storing '" + stored.title + "'");
        }
    }
    if (insert) {
        stored.id = sqlite3_last_insert_rowid (m_db);
    }
    s = index_entry (stored);
    if (!s.ok ()) {
        return s;
    }
    s = tx.commit ();
    if (!s.ok ()) {
        return s;
    }
    e = std::move (stored);
    return Status::success ();
}

Status Store::add_entry (EntryRecord &entry)
{
    return write_entry (entry, true);
}

Status Store::update_entry (EntryRecord &entry)
{
    return write_entry (entry, false);
}

Status Store::delete_entry (int64_t id)
{
    EntryRecord e;
    if (!find_entry (id, &e)) {
        return Status::failure (CalendarInvalidArg, "there is no entry " + std::to_string (id));
    }
    CalendarRecord c;
    if (find_calendar (e.calendar_id, &c) && c.read_only) {
        return Status::failure (CalendarInvalidArg, "the calendar '" + c.title + "' is read-only");
    }
    if (!e.is_exception ()) {
        /* A series goes with its exceptions. */
        return delete_series (e.calendar_id, e.uid, nullptr);
    }
    /* A moved instance deleted is that instance cancelled: it must not
     * come back at its old time. */
    e.cancelled = true;
    return write_entry (e, false);
}

bool Store::find_entry (int64_t id, EntryRecord *out)
{
    static const std::string sql = std::string ("SELECT ") + kEntryColumns + " FROM entries e WHERE e.id = ?";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, id);
    if (!first_entry (stmt, out)) {
        return false;
    }
    if (out) {
        std::vector<EntryRecord> one (1, *out);
        fill_overridden (one);
        *out = std::move (one.front ());
    }
    return true;
}

bool Store::find_entry_by_uid (int64_t calendar_id, const std::string &uid, EntryRecord *out)
{
    static const std::string sql =
        std::string ("SELECT ") + kEntryColumns + " FROM entries e WHERE e.calendar_id = ? AND e.uid = ? ORDER BY e.recurrence_id";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, calendar_id);
    bind_text (stmt, 2, uid);
    return first_entry (stmt, out);
}

void Store::fill_overridden (std::vector<EntryRecord> &entries)
{
    sqlite3_stmt *stmt = prepare ("SELECT recurrence_id FROM entries WHERE calendar_id = ? AND uid = ? AND "
                                  "recurrence_id != -9223372036854775808 ORDER BY recurrence_id");
    for (EntryRecord &e : entries) {
        if (e.is_exception () || !e.repeats ()) {
            continue;
        }
        StmtUse use (stmt);
        sqlite3_bind_int64 (stmt, 1, e.calendar_id);
        bind_text (stmt, 2, e.uid);
        e.overridden.clear ();
        while (sqlite3_step (stmt) == SQLITE_ROW) {
            e.overridden.push_back (sqlite3_column_int64 (stmt, 0));
        }
    }
}

std::vector<EntryRecord> Store::entries_touching (int64_t from, int64_t to, bool visible_only)
{
    /* Floating entries are indexed in wall-clock minutes, instants in UTC
     * minutes: no zone is more than 14 hours from UTC, so the index is
     * asked for a window that wide and each candidate checked exactly. */
    static const std::string visible_sql =
        std::string ("SELECT ") + kEntryColumns +
        " FROM entry_spans s JOIN entries e ON e.id = s.id JOIN calendars c ON c.id = e.calendar_id"
        " WHERE s.lo <= ?2 AND s.hi >= ?1 AND c.visible AND NOT e.cancelled ORDER BY e.start, e.id";
    static const std::string all_sql = std::string ("SELECT ") + kEntryColumns +
                                       " FROM entry_spans s JOIN entries e ON e.id = s.id"
                                       " WHERE s.lo <= ?2 AND s.hi >= ?1 AND NOT e.cancelled ORDER BY e.start, e.id";
    constexpr int64_t margin = 15 * 60;
    sqlite3_stmt *stmt = prepare (visible_only ? visible_sql.c_str () : all_sql.c_str ());
    std::vector<EntryRecord> candidates;
    {
        StmtUse use (stmt);
        sqlite3_bind_int (stmt, 1, clamp32 (from == INT64_MIN ? from : from - margin));
        sqlite3_bind_int (stmt, 2, clamp32 (to == INT64_MAX ? to : to + margin));
        candidates = query_entries (stmt);
    }
    fill_overridden (candidates);
    std::vector<EntryRecord> out;
    out.reserve (candidates.size ());
    for (EntryRecord &e : candidates) {
        const bool touches = e.kind == EntryKind::Task
                                 ? e.start <= to && std::max (e.end, civil_day_start (e.start) + 1439) >= from
                                 : !expand_instances (e, from, to, 1).empty ();
        if (touches) {
            out.push_back (std::move (e));
        }
    }
    return out;
}

bool Store::find_entry_by_key (int64_t calendar_id, const std::string &uid, int64_t recurrence_id, EntryRecord *out)
{
    static const std::string sql = std::string ("SELECT ") + kEntryColumns +
                                   " FROM entries e WHERE e.calendar_id = ? AND e.uid = ? AND e.recurrence_id = ?";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, calendar_id);
    bind_text (stmt, 2, uid);
    sqlite3_bind_int64 (stmt, 3, recurrence_id);
    if (!first_entry (stmt, out)) {
        return false;
    }
    if (out) {
        std::vector<EntryRecord> one (1, *out);
        fill_overridden (one);
        *out = std::move (one.front ());
    }
    return true;
}

Status Store::delete_series (int64_t calendar_id, const std::string &uid, int *removed)
{
    sqlite3_stmt *stmt = prepare ("DELETE FROM entries WHERE calendar_id = ? AND uid = ?");
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, calendar_id);
    bind_text (stmt, 2, uid);
    const int rc = sqlite3_step (stmt);
    if (rc != SQLITE_DONE) {
        return error_status (rc, "removing the series '" + uid + "'");
    }
    if (removed) {
        *removed = sqlite3_changes (m_db);
    }
    return Status::success ();
}

Status Store::save_zone (const std::string &tzid, const std::string &definition)
{
    sqlite3_stmt *stmt = prepare ("INSERT OR REPLACE INTO zones (tzid, definition) VALUES (?, ?)");
    StmtUse use (stmt);
    bind_text (stmt, 1, tzid);
    bind_text (stmt, 2, definition);
    const int rc = sqlite3_step (stmt);
    return rc == SQLITE_DONE ? Status::success () : error_status (rc, "keeping the time zone '" + tzid + "'");
}

std::vector<EntryRecord> Store::entries_of_kind (EntryKind kind, bool visible_only)
{
    static const std::string visible_sql =
        std::string ("SELECT ") + kEntryColumns +
        " FROM entries e JOIN calendars c ON c.id = e.calendar_id WHERE e.kind = ? AND c.visible ORDER BY e.start, e.id";
    static const std::string all_sql =
        std::string ("SELECT ") + kEntryColumns + " FROM entries e WHERE e.kind = ? ORDER BY e.start, e.id";
    sqlite3_stmt *stmt = prepare (visible_only ? visible_sql.c_str () : all_sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int (stmt, 1, static_cast<int> (kind));
    return query_entries (stmt);
}

std::vector<EntryRecord> Store::entries_of_calendar (int64_t calendar_id)
{
    static const std::string sql =
        std::string ("SELECT ") + kEntryColumns + " FROM entries e WHERE e.calendar_id = ? ORDER BY e.id";
    sqlite3_stmt *stmt = prepare (sql.c_str ());
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, calendar_id);
    return query_entries (stmt);
}

int64_t Store::count_entries (int64_t calendar_id, int kind)
{
    sqlite3_stmt *stmt = prepare ("SELECT count(*) FROM entries WHERE calendar_id = ?1 AND (?2 < 0 OR kind = ?2)");
    StmtUse use (stmt);
    sqlite3_bind_int64 (stmt, 1, calendar_id);
    sqlite3_bind_int (stmt, 2, kind);
    return sqlite3_step (stmt) == SQLITE_ROW ? sqlite3_column_int64 (stmt, 0) : -1;
}

}  // namespace tav::host
