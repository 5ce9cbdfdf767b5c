#include "TavHostCalendarSource.h"

#include "HostCivilTime.h"
#include "HostIcs.h"
#include "HostRecurrence.h"
#include "HostZone.h"

#include <algorithm>
#include <climits>
#include <new>
#include <unordered_map>

using namespace tav::host;

struct _TavHostCalendarSourcePrivate {
    std::shared_ptr<Store> store;
    /* Records of the entries handed out, so that expanding their
     * instances needs no second query. */
    std::unordered_map<int64_t, EntryRecord> records;
    std::string last_error;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavHostCalendarSource, tav_host_calendar_source, TAV_TYPE_CALENDAR_SOURCE)

namespace {

TavHostCalendarSourcePrivate *priv_of (TavCalendarSource *source)
{
    return TAV_HOST_CALENDAR_SOURCE (source)->priv;
}

int report (TavCalendarSource *source, const Status &status)
{
    priv_of (source)->last_error = status.ok () ? std::string () : status.message;
    return status.code;
}

int64_t calendar_id_of (TavCalendarSource *source)
{
    return tav_calendar_source_get_id (source);
}

CalendarRecord calendar_from_properties (TavCalendarSource *source)
{
    CalendarRecord c;
    char *title = nullptr, *tone = nullptr;
    int id = -1, color = 0, type = 0, sync = 0;
    gboolean visible = TRUE, read_only = FALSE;
    g_object_get (source, "id", &id, "title", &title, "alarm-tone", &tone, "color", &color, "type", &type,
                  "sync-type", &sync, "visible", &visible, "read-only", &read_only, nullptr);
    c.id = id;
    c.title = title ? title : "";
    c.alarm_tone = tone ? tone : "";
    c.color = color;
    c.type = type;
    c.sync_type = sync;
    c.visible = visible;
    c.read_only = read_only;
    g_free (title);
    g_free (tone);
    return c;
}

EntryKind kind_of (TavCalendarEntry *entry)
{
    if (G_TYPE_CHECK_INSTANCE_TYPE (entry, tav_calendar_task_get_type ())) {
        return EntryKind::Task;
    }
    if (G_TYPE_CHECK_INSTANCE_TYPE (entry, tav_calendar_note_get_type ())) {
        return EntryKind::Note;
    }
    return EntryKind::Event;
}

/* The stored record an entry stands for in this calendar: by id, or (for
 * an entry just moved here from another calendar) by UID. */
Status stored_record (TavCalendarSource *source, TavCalendarEntry *entry, EntryRecord *out)
{
    TavHostCalendarSourcePrivate *priv = priv_of (source);
    const int64_t id = entry_record_id (entry);
    if (id > 0 && priv->store->find_entry (id, out)
        && (out->calendar_id == calendar_id_of (source)
            || priv->store->find_entry_by_uid (calendar_id_of (source), out->uid, out))) {
        return Status::success ();
    }
    return Status::failure (CalendarInvalidArg, "the entry is not stored in this calendar");
}

void set_num_id (TavCalendarEntry *entry, int64_t id)
{
    const std::string text = std::to_string (id);
    g_object_set (entry, "num-id", text.c_str (), nullptr);
}

/* Slots ------------------------------------------------------------------ */

int source_create (TavCalendarSource *source)
{
    CalendarRecord c = calendar_from_properties (source);
    c.id = 0;
    Status s = priv_of (source)->store->add_calendar (c);
    if (s.ok ()) {
        g_object_set (source, "id", static_cast<int> (c.id), nullptr);
    }
    return report (source, s);
}

int source_save (TavCalendarSource *source)
{
    return report (source, priv_of (source)->store->update_calendar (calendar_from_properties (source)));
}

int source_remove (TavCalendarSource *source)
{
    Status s = priv_of (source)->store->remove_calendar (calendar_id_of (source));
    if (s.ok ()) {
        priv_of (source)->records.clear ();
        g_object_set (source, "id", -1, nullptr);
    }
    return report (source, s);
}

int source_remove_contents (TavCalendarSource *source)
{
    Status s = priv_of (source)->store->clear_calendar (calendar_id_of (source));
    if (s.ok ()) {
        priv_of (source)->records.clear ();
    }
    return report (source, s);
}

gboolean source_exists (TavCalendarSource *source)
{
    const char *title = tav_calendar_source_get_title (source);
    return title && priv_of (source)->store->find_calendar_by_title (title, nullptr);
}

/* @target is the path of the iCalendar file to write. */
int source_export_calendar (TavCalendarSource *source, gpointer target)
{
    if (!target) {
        return report (source, Status::failure (CalendarInvalidArg, "no file to export to"));
    }
    return report (source, export_ics_file (*priv_of (source)->store, {calendar_id_of (source)},
                                            static_cast<const char *> (target)));
}

int source_event_count (TavCalendarSource *source)
{
    return static_cast<int> (priv_of (source)->store->count_entries (calendar_id_of (source),
                                                                      static_cast<int> (EntryKind::Event)));
}

int source_entry_count (TavCalendarSource *source)
{
    return static_cast<int> (priv_of (source)->store->count_entries (calendar_id_of (source)));
}

int create_any (TavCalendarSource *source, TavCalendarEntry *entry)
{
    TavHostCalendarSourcePrivate *priv = priv_of (source);
    EntryRecord record;
    EntryRecord existing;
    const int64_t old_id = entry_record_id (entry);
    if (old_id > 0 && priv->store->find_entry (old_id, &existing)) {
        if (existing.calendar_id == calendar_id_of (source)) {
            return report (source, Status::failure (CalendarDuplicateError, "the entry is already in this calendar"));
        }
        record = existing;  /* moving here: keep what the entry cannot say */
    }
    record_from_entry (entry, record);
    record.id = 0;
    record.calendar_id = calendar_id_of (source);
    record.created = 0;
    record.modified = 0;
    Status s = priv->store->add_entry (record);
    if (s.ok ()) {
        set_num_id (entry, record.id);
        priv->records[record.id] = record;
    }
    return report (source, s);
}

int save_any (TavCalendarSource *source, TavCalendarEntry *entry)
{
    TavHostCalendarSourcePrivate *priv = priv_of (source);
    EntryRecord record;
    Status s = stored_record (source, entry, &record);
    if (s.ok ()) {
        record_from_entry (entry, record);
        s = priv->store->update_entry (record);
    }
    if (s.ok ()) {
        priv->records[record.id] = record;
        tav_calandar_entry_drop_instances (entry);
    }
    return report (source, s);
}

int delete_any (TavCalendarSource *source, TavCalendarEntry *entry)
{
    TavHostCalendarSourcePrivate *priv = priv_of (source);
    EntryRecord record;
    Status s = stored_record (source, entry, &record);
    if (s.ok ()) {
        s = priv->store->delete_entry (record.id);
    }
    if (s.ok ()) {
        priv->records.erase (record.id);
    }
    return report (source, s);
}

gboolean source_get_instances (TavCalendarSource *source, TavCalendarEntry *entry, const TavDateInterval *interval,
                               GList **list)
{
    TavHostCalendarSourcePrivate *priv = priv_of (source);
    const int64_t id = entry_record_id (entry);
    auto it = priv->records.find (id);
    EntryRecord fetched;
    const EntryRecord *record = nullptr;
    if (it != priv->records.end ()) {
        record = &it->second;
    } else if (id > 0 && priv->store->find_entry (id, &fetched)) {
        record = &(priv->records[id] = fetched);
    }
    if (!record) {
        *list = nullptr;
        tav_calendar_entry_set_instances (entry, interval, nullptr);
        return FALSE;
    }
    const int64_t from = civil_minutes (interval->start.year, interval->start.month + 1, interval->start.day);
    const int64_t to = civil_minutes (interval->end.year, interval->end.month + 1, interval->end.day, 23, 59);
    GList *instances = nullptr;
    const auto starts = expand_instances (*record, from, to);
    for (auto s = starts.rbegin (); s != starts.rend (); ++s) {
        const CivilFields f = civil_fields (*s);
        TavTimestamp ts = {{f.year, f.month - 1, f.day}, {f.hour, f.minute}};
        instances = g_list_prepend (instances, tav_timestamp_copy (&ts));
    }
    tav_calendar_entry_set_instances (entry, interval, instances);
    *list = instances;
    return TRUE;
}

}  // namespace

static void
tav_host_calendar_source_init (TavHostCalendarSource *self)
{
    self->priv = static_cast<TavHostCalendarSourcePrivate *> (tav_host_calendar_source_get_instance_private (self));
    new (self->priv) TavHostCalendarSourcePrivate ();
}

static void
tav_host_calendar_source_finalize (GObject *object)
{
    TAV_HOST_CALENDAR_SOURCE (object)->priv->~TavHostCalendarSourcePrivate ();
    G_OBJECT_CLASS (tav_host_calendar_source_parent_class)->finalize (object);
}

static void
tav_host_calendar_source_class_init (TavHostCalendarSourceClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = tav_host_calendar_source_finalize;
    TavCalendarSourceClass *source = TAV_CALENDAR_SOURCE_CLASS (klass);
    source->create = source_create;
    source->save = source_save;
    source->remove = source_remove;
    source->remove_contents = source_remove_contents;
    source->exists = source_exists;
    source->export_calendar = source_export_calendar;
    source->event_count = source_event_count;
    source->entry_count = source_entry_count;
    source->create_entry = create_any;
    source->save_entry = save_any;
    source->delete_entry = delete_any;
    source->create_task = create_any;
    source->save_task = save_any;
    source->delete_task = delete_any;
    source->create_note = create_any;
    source->save_note = save_any;
    source->delete_note = delete_any;
    source->get_instances = source_get_instances;
}

namespace tav::host {

Ref<TavHostCalendarSource> make_source (std::shared_ptr<Store> store, const CalendarRecord &c)
{
    auto source = Ref<TavHostCalendarSource>::adopt (TAV_HOST_CALENDAR_SOURCE (g_object_new (
        TAV_TYPE_HOST_CALENDAR_SOURCE, "id", c.id > 0 ? static_cast<int> (c.id) : -1, "title", c.title.c_str (),
        "alarm-tone", c.alarm_tone.empty () ? nullptr : c.alarm_tone.c_str (), "color", c.color, "type", c.type,
        "sync-type", c.sync_type, "visible", c.visible, "read-only", c.read_only, nullptr)));
    source->priv->store = std::move (store);
    return source;
}

int64_t source_calendar_id (TavHostCalendarSource *source)
{
    return tav_calendar_source_get_id (TAV_CALENDAR_SOURCE (source));
}

const std::string &source_last_error (TavHostCalendarSource *source)
{
    return source->priv->last_error;
}

int64_t entry_record_id (TavCalendarEntry *entry)
{
    char *num_id = nullptr;
    g_object_get (entry, "num-id", &num_id, nullptr);
    const int64_t id = num_id ? g_ascii_strtoll (num_id, nullptr, 10) : 0;
    g_free (num_id);
    return id;
}

namespace {

TavTimestamp timestamp_of (int64_t civil)
{
    const CivilFields f = civil_fields (civil);
    return {{f.year, f.month - 1, f.day}, {f.hour, f.minute}};
}

int64_t civil_of (const TavDate &d, const TavTime &t)
{
    return civil_minutes (d.year, d.month + 1, d.day, t.hour, t.minute);
}

}  // namespace

TavCalendarEntry *entry_from_record (const EntryRecord &r, TavHostCalendarSource *source)
{
    GType type = r.kind == EntryKind::Task   ? tav_calendar_task_get_type ()
                 : r.kind == EntryKind::Note ? tav_calendar_note_get_type ()
                                             : tav_calendar_entry_get_type ();
    /* An instant shows on the viewer's wall clock. */
    const int64_t local_start = r.is_instant () ? local_from_utc (r.start) : r.start;
    const int64_t local_end = r.is_instant () ? local_start + r.duration () : r.end;
    const TavTimestamp start = timestamp_of (local_start);
    const TavTimestamp end = timestamp_of (local_end);
    const TavTimestamp modified = timestamp_of (civil_from_time_t (static_cast<time_t> (r.modified)));
    const std::string num_id = std::to_string (r.id);
    int color = 0;
    g_object_get (source, "color", &color, nullptr);
    const bool complex = r.repeat_code == TavCalendarRepeatsComplex;
    TavCalendarEntry *entry = TAV_CALENDAR_ENTRY (g_object_new (
        type, "source", source, "color", color, "num-id", num_id.c_str (), "title", r.title.c_str (), "description",
        r.description.c_str (), "location", r.location.c_str (), "start-timestamp", &start, "end-date", &end.date,
        "end-time", &end.time, "all-day", r.all_day || r.kind != EntryKind::Event, "alarm-code", r.alarm_code,
        "repeat-code", r.repeat_code, "has-rrule", complex, "created-time",
        static_cast<int> (std::clamp<int64_t> (r.created, 0, INT_MAX)), "modification-date", &modified.date,
        "modification-time", &modified.time, "has-birthday", r.has_birthday, "birth-year", r.birth_year, nullptr));
    if (r.alarm_code == TavCalendarAlarmDayBefore && r.alarm_time >= 0) {
        const TavTime t = {r.alarm_time / 60, r.alarm_time % 60};
        g_object_set (entry, "alarm-time", &t, nullptr);
    }
    int64_t until = -1;
    if (r.repeat_code != TavCalendarRepeatsNoRepeat && !complex) {
        repeat_code_for_rrule (r.rrule, local_start, &until);
        if (until >= 0) {
            const TavTimestamp u = timestamp_of (until);
            g_object_set (entry, "end-repetition-date", &u.date, nullptr);
        }
    }
    if (r.kind == EntryKind::Task) {
        g_object_set (entry, "done", r.done, nullptr);
    }
    if (r.id > 0) {
        source->priv->records[r.id] = r;
    }
    return entry;
}

void record_from_entry (TavCalendarEntry *entry, EntryRecord &r)
{
    char *title = nullptr, *description = nullptr, *location = nullptr;
    TavTimestamp *start = nullptr;
    TavDate *end_date = nullptr, *until = nullptr;
    TavTime *end_time = nullptr, *alarm_time = nullptr;
    gboolean all_day = FALSE, has_birthday = FALSE;
    int alarm = 0, repeat = 0, birth_year = -1, created = 0;
    g_object_get (entry, "title", &title, "description", &description, "location", &location, "start-timestamp",
                  &start, "end-date", &end_date, "end-time", &end_time, "all-day", &all_day, "alarm-code", &alarm,
                  "alarm-time", &alarm_time, "repeat-code", &repeat, "end-repetition-date", &until, "has-birthday",
                  &has_birthday, "birth-year", &birth_year, "created-time", &created, nullptr);
    r.kind = kind_of (entry);
    r.title = title ? title : "";
    r.description = description ? description : "";
    r.location = location ? location : "";
    r.all_day = all_day || r.kind != EntryKind::Event;
    r.start = civil_of (start->date, start->time);
    r.end = civil_of (*end_date, *end_time);
    if (r.kind == EntryKind::Task) {
        /* An undated task shown today stays undated until given a day. */
        r.undated = r.undated && civil_day_start (r.start) == civil_day_start (civil_from_time_t (time (nullptr)));
        r.start = civil_day_start (r.start);
        r.end = r.start + 1439;
        gboolean done = FALSE;
        g_object_get (entry, "done", &done, nullptr);
        r.done = done;
    } else if (r.kind == EntryKind::Note) {
        r.end = r.start;
    } else if (r.all_day) {
        r.start = civil_day_start (r.start);
        r.end = std::max (civil_day_start (r.end), r.start) + 1439;
    } else if (r.is_instant ()) {
        /* The entry shows local time; the store keeps the instant. */
        r.start = utc_from_local (r.start);
        r.end = utc_from_local (r.end);
    }
    if (r.alarm_code != alarm) {
        r.alarms.clear ();  /* the imported VALARMs said otherwise */
    }
    r.alarm_code = alarm;
    r.alarm_time = r.alarm_code == TavCalendarAlarmDayBefore ? alarm_time->hour * 60 + alarm_time->minute : -1;
    r.has_birthday = has_birthday;
    r.birth_year = birth_year;
    if (created > 0) {
        r.created = created;
    }

    const auto code = static_cast<TavCalendarRepeatCode> (repeat);
    if (r.kind != EntryKind::Event || code == TavCalendarRepeatsNoRepeat) {
        r.rrule.clear ();
        r.exrule.clear ();
        r.exdates.clear ();
        r.rdates.clear ();
    } else if (code != TavCalendarRepeatsComplex) {
        /* An end of repetition on the event's own end date means none. */
        const int64_t until_day = tav_date_compare (until, end_date) == 0
                                      ? -1
                                      : civil_minutes (until->year, until->month + 1, until->day);
        int64_t stored_until = -1;
        if (repeat_code_for_rrule (r.rrule, r.start, &stored_until) != code || stored_until != until_day) {
            r.rrule = rrule_for_repeat_code (code, until_day);
            r.exrule.clear ();
        }
    }
    /* A complex rule cannot be edited through the entry: the stored one stays. */
    r.repeat_code = r.kind == EntryKind::Event ? code : TavCalendarRepeatsNoRepeat;
    /* A birthday on 29 February comes back on the last day of February,
     * the 28th in common years, where a plain yearly rule would skip them. */
    if (r.has_birthday && code == TavCalendarRepeatsEveryYear) {
        const CivilFields f = civil_fields (r.start);
        if (f.month == 2 && f.day == 29) {
            r.rrule = "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=-1";
        }
    }

    g_free (title);
    g_free (description);
    g_free (location);
    tav_timestamp_free (start);
    tav_date_free (end_date);
    tav_date_free (until);
    tav_time_free (end_time);
    tav_time_free (alarm_time);
}

}  // namespace tav::host
