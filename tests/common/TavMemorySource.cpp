/* A calendar source kept in memory, for tests. */

#include "TavMemorySource.h"

#include <algorithm>
#include <array>
#include <new>
#include <vector>

#include "TavGPtr.h"

using tav::GRefPtr;

namespace {

constexpr std::array<const char *, TAV_MEMORY_N_SLOTS> kSlotNames = {
    "create", "save", "remove", "remove_contents", "exists", "export_calendar",
    "event_count", "entry_count", "create_entry", "save_entry", "delete_entry",
    "create_task", "save_task", "delete_task", "create_note", "save_note",
    "delete_note", "get_instances",
};

enum class Kind { Event, Task, Note };

Kind kind_of (TavCalendarEntry *entry)
{
    if (TAV_IS_CALENDAR_TASK (entry))
        return Kind::Task;
    if (TAV_IS_CALENDAR_NOTE (entry))
        return Kind::Note;
    return Kind::Event;
}

} // namespace

struct _TavMemorySourcePrivate {
    std::vector<GRefPtr<TavCalendarEntry>> items;
    std::array<guint, TAV_MEMORY_N_SLOTS> calls {};
    std::array<bool, TAV_MEMORY_N_SLOTS> failing {};
    std::array<CalendarUiErrorCode, TAV_MEMORY_N_SLOTS> failure_code {};
    guint next_id = 1;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavMemorySource, tav_memory_source, TAV_TYPE_CALENDAR_SOURCE)

/* Auxiliary functions ------------------------------------------------------ */

namespace {

TavMemorySourcePrivate *priv_of (TavCalendarSource *source)
{
    return TAV_MEMORY_SOURCE (source)->priv;
}

/* Counts the call; TRUE when the slot is set to fail. */
bool enter (TavCalendarSource *source, TavMemorySlot slot)
{
    TavMemorySourcePrivate *priv = priv_of (source);
    priv->calls[slot]++;
    return priv->failing[slot];
}

int failure (TavCalendarSource *source, TavMemorySlot slot)
{
    return priv_of (source)->failure_code[slot];
}

tav::GCharPtr id_of (TavCalendarEntry *entry)
{
    char *id = nullptr;
    g_object_get (entry, "num-id", &id, nullptr);
    return tav::GCharPtr (id);
}

/* TRUE when @item carries @id, ASCII case ignored. */
bool has_id (TavCalendarEntry *item, const char *id)
{
    tav::GCharPtr other = id_of (item);
    return id && other && g_ascii_strcasecmp (id, other.get ()) == 0;
}

/* Position of the stored object that is @entry or carries its ID. */
std::vector<GRefPtr<TavCalendarEntry>>::iterator find_stored (TavMemorySourcePrivate *priv, TavCalendarEntry *entry)
{
    tav::GCharPtr id = id_of (entry);
    return std::find_if (priv->items.begin (), priv->items.end (), [&] (const GRefPtr<TavCalendarEntry> &item) {
        return item.get () == entry || has_id (item.get (), id.get ());
    });
}

/* Removes the stored object that is @entry or carries its ID; FALSE when
 * there is none. */
bool erase_stored (TavMemorySourcePrivate *priv, TavCalendarEntry *entry)
{
    auto it = find_stored (priv, entry);
    if (it == priv->items.end ())
        return false;
    priv->items.erase (it);
    return true;
}

void give_id (TavMemorySourcePrivate *priv, TavCalendarEntry *entry)
{
    if (id_of (entry))
        return;
    char *id = g_strdup_printf ("mem-%u", priv->next_id++);
    g_object_set (entry, "num-id", id, nullptr);
    g_free (id);
}

int store_new (TavCalendarSource *source, TavMemorySlot slot, TavCalendarEntry *entry)
{
    if (enter (source, slot))
        return failure (source, slot);
    TavMemorySourcePrivate *priv = priv_of (source);
    if (find_stored (priv, entry) != priv->items.end ())
        return CalendarDuplicateError;
    give_id (priv, entry);
    priv->items.emplace_back (entry);
    return CalendarNoError;
}

int store_again (TavCalendarSource *source, TavMemorySlot slot, TavCalendarEntry *entry)
{
    if (enter (source, slot))
        return failure (source, slot);
    TavMemorySourcePrivate *priv = priv_of (source);
    auto it = find_stored (priv, entry);
    if (it == priv->items.end ())
        return CalendarInvalidArg;
    *it = GRefPtr<TavCalendarEntry> (entry);
    return CalendarNoError;
}

int forget (TavCalendarSource *source, TavMemorySlot slot, TavCalendarEntry *entry)
{
    if (enter (source, slot))
        return failure (source, slot);
    return erase_stored (priv_of (source), entry) ? CalendarNoError : CalendarInvalidArg;
}

GDate to_gdate (const TavDate &date)
{
    GDate g;
    g_date_clear (&g, 1);
    g_date_set_dmy (&g, static_cast<GDateDay> (date.day), static_cast<GDateMonth> (date.month + 1),
                    static_cast<GDateYear> (date.year));
    return g;
}

gint64 julian_of (const TavDate &date)
{
    GDate g = to_gdate (date);
    return g_date_get_julian (&g);
}

TavDate from_julian (guint32 julian)
{
    GDate g;
    g_date_clear (&g, 1);
    g_date_set_julian (&g, julian);
    return TavDate { g_date_get_year (&g), g_date_get_month (&g) - 1, g_date_get_day (&g) };
}

bool valid_for_gdate (const TavDate &d)
{
    return d.year >= 1 && d.year <= 9999 && d.month >= 0 && d.month <= 11 && d.day >= 1
        && d.day <= g_date_get_days_in_month (static_cast<GDateMonth> (d.month + 1), static_cast<GDateYear> (d.year));
}

} // namespace

/* Slots ------------------------------------------------------------------------ */

/* The calendar-wide slots succeed (counting entries for the counts) unless
 * told to fail: the tests look at what the wrappers make of them. */
static int
memory_status (TavCalendarSource *source, TavMemorySlot slot)
{
    return enter (source, slot) ? failure (source, slot) : int (CalendarNoError);
}

static int memory_create (TavCalendarSource *s) { return memory_status (s, TAV_MEMORY_SLOT_CREATE); }
static int memory_save (TavCalendarSource *s) { return memory_status (s, TAV_MEMORY_SLOT_SAVE); }
static int memory_remove (TavCalendarSource *s) { return memory_status (s, TAV_MEMORY_SLOT_REMOVE); }
static int memory_remove_contents (TavCalendarSource *s) { return memory_status (s, TAV_MEMORY_SLOT_REMOVE_CONTENTS); }
static gboolean memory_exists (TavCalendarSource *s) { return !enter (s, TAV_MEMORY_SLOT_EXISTS); }
static int memory_export_calendar (TavCalendarSource *s, gpointer) { return memory_status (s, TAV_MEMORY_SLOT_EXPORT_CALENDAR); }

static int
memory_event_count (TavCalendarSource *source)
{
    if (enter (source, TAV_MEMORY_SLOT_EVENT_COUNT))
        return -1;
    const auto &items = priv_of (source)->items;
    return static_cast<int> (std::count_if (items.begin (), items.end (), [] (const GRefPtr<TavCalendarEntry> &item) {
        return kind_of (item.get ()) == Kind::Event;
    }));
}

static int
memory_entry_count (TavCalendarSource *source)
{
    return enter (source, TAV_MEMORY_SLOT_ENTRY_COUNT) ? -1 : static_cast<int> (priv_of (source)->items.size ());
}

static int memory_create_entry (TavCalendarSource *s, TavCalendarEntry *e) { return store_new (s, TAV_MEMORY_SLOT_CREATE_ENTRY, e); }
static int memory_save_entry (TavCalendarSource *s, TavCalendarEntry *e) { return store_again (s, TAV_MEMORY_SLOT_SAVE_ENTRY, e); }
static int memory_delete_entry (TavCalendarSource *s, TavCalendarEntry *e) { return forget (s, TAV_MEMORY_SLOT_DELETE_ENTRY, e); }
static int memory_create_task (TavCalendarSource *s, TavCalendarEntry *e) { return store_new (s, TAV_MEMORY_SLOT_CREATE_TASK, e); }
static int memory_save_task (TavCalendarSource *s, TavCalendarEntry *e) { return store_again (s, TAV_MEMORY_SLOT_SAVE_TASK, e); }
static int memory_delete_task (TavCalendarSource *s, TavCalendarEntry *e) { return forget (s, TAV_MEMORY_SLOT_DELETE_TASK, e); }
static int memory_create_note (TavCalendarSource *s, TavCalendarEntry *e) { return store_new (s, TAV_MEMORY_SLOT_CREATE_NOTE, e); }
static int memory_save_note (TavCalendarSource *s, TavCalendarEntry *e) { return store_again (s, TAV_MEMORY_SLOT_SAVE_NOTE, e); }
static int memory_delete_note (TavCalendarSource *s, TavCalendarEntry *e) { return forget (s, TAV_MEMORY_SLOT_DELETE_NOTE, e); }

static gboolean
memory_get_instances (TavCalendarSource *source, TavCalendarEntry *entry, const TavDateInterval *interval,
                      GList **list)
{
    if (enter (source, TAV_MEMORY_SLOT_GET_INSTANCES))
        return FALSE;
    GList *instances = tav_memory_source_expand (entry, interval);
    /* Hand the list to the entry, which owns it from now on, and report the
     * same list to the caller. */
    tav_calendar_entry_set_instances (entry, interval, instances);
    *list = instances;
    return TRUE;
}

/* GObject plumbing ----------------------------------------------------------- */

static void
tav_memory_source_finalize (GObject *object)
{
    TAV_MEMORY_SOURCE (object)->priv->~_TavMemorySourcePrivate ();
    G_OBJECT_CLASS (tav_memory_source_parent_class)->finalize (object);
}

static void
tav_memory_source_dispose (GObject *object)
{
    /* Stored entries hold the source: let them go so the cycle breaks. */
    TAV_MEMORY_SOURCE (object)->priv->items.clear ();
    G_OBJECT_CLASS (tav_memory_source_parent_class)->dispose (object);
}

static void
tav_memory_source_init (TavMemorySource *source)
{
    source->priv = new (tav_memory_source_get_instance_private (source)) _TavMemorySourcePrivate ();
}

static void
tav_memory_source_class_init (TavMemorySourceClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    TavCalendarSourceClass *source_class = TAV_CALENDAR_SOURCE_CLASS (klass);

    object_class->dispose = tav_memory_source_dispose;
    object_class->finalize = tav_memory_source_finalize;

    source_class->create = memory_create;
    source_class->save = memory_save;
    source_class->remove = memory_remove;
    source_class->remove_contents = memory_remove_contents;
    source_class->exists = memory_exists;
    source_class->export_calendar = memory_export_calendar;
    source_class->event_count = memory_event_count;
    source_class->entry_count = memory_entry_count;
    source_class->create_entry = memory_create_entry;
    source_class->save_entry = memory_save_entry;
    source_class->delete_entry = memory_delete_entry;
    source_class->create_task = memory_create_task;
    source_class->save_task = memory_save_task;
    source_class->delete_task = memory_delete_task;
    source_class->create_note = memory_create_note;
    source_class->save_note = memory_save_note;
    source_class->delete_note = memory_delete_note;
    source_class->get_instances = memory_get_instances;
}

/* Public API ----------------------------------------------------------------- */

const char *
tav_memory_slot_name (TavMemorySlot slot)
{
    g_return_val_if_fail (slot >= 0 && slot < TAV_MEMORY_N_SLOTS, nullptr);
    return kSlotNames[slot];
}

TavMemorySource *
tav_memory_source_new (const char *title, TavCalendarColor color, TavCalendarSourceType type)
{
    return TAV_MEMORY_SOURCE (g_object_new (TAV_TYPE_MEMORY_SOURCE, "title", title, "color", color, "type", type,
                                            nullptr));
}

void
tav_memory_source_destroy (TavMemorySource *source)
{
    g_return_if_fail (TAV_IS_MEMORY_SOURCE (source));
    g_object_run_dispose (G_OBJECT (source));
    g_object_unref (source);
}

void
tav_memory_source_add (TavMemorySource *source, TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_MEMORY_SOURCE (source));
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY (entry));

    TavMemorySourcePrivate *priv = source->priv;
    int color = 0;
    g_object_get (source, "color", &color, nullptr);
    g_object_set (entry, "source", source, "color", color, nullptr);
    give_id (priv, entry);
    auto it = find_stored (priv, entry);
    if (it == priv->items.end ())
        priv->items.emplace_back (entry);
    else
        *it = GRefPtr<TavCalendarEntry> (entry);
}

gboolean
tav_memory_source_remove (TavMemorySource *source, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);

    return erase_stored (source->priv, entry);
}

TavCalendarEntry *
tav_memory_source_add_event (TavMemorySource *source, const char *title, const TavTimestamp *start,
                             const TavTimestamp *end)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), nullptr);
    g_return_val_if_fail (start != NULL && end != NULL, nullptr);

    auto entry = tav::adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "title", title, "start-timestamp", start, "end-date", &end->date, "end-time",
                  &end->time, nullptr);
    tav_memory_source_add (source, entry.get ());
    return entry.get ();
}

guint
tav_memory_source_size (TavMemorySource *source)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), 0);
    return static_cast<guint> (source->priv->items.size ());
}

static GList *
list_kind (TavMemorySource *source, Kind kind, const TavDateInterval *interval)
{
    GList *out = nullptr;
    for (const auto &item : source->priv->items) {
        if (kind_of (item.get ()) != kind)
            continue;
        if (interval) {
            GList *touching = tav_memory_source_expand (item.get (), interval);
            bool any = touching != nullptr;
            g_list_free_full (touching, [] (gpointer p) { tav_timestamp_free (static_cast<TavTimestamp *> (p)); });
            if (!any)
                continue;
        }
        out = g_list_prepend (out, g_object_ref (item.get ()));
    }
    return g_list_reverse (out);
}

GList *
tav_memory_source_list_events (TavMemorySource *source, const TavDateInterval *interval)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), nullptr);
    return list_kind (source, Kind::Event, interval);
}

GList *
tav_memory_source_list_tasks (TavMemorySource *source)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), nullptr);
    return list_kind (source, Kind::Task, nullptr);
}

GList *
tav_memory_source_list_notes (TavMemorySource *source)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), nullptr);
    return list_kind (source, Kind::Note, nullptr);
}

GList *
tav_memory_source_expand (TavCalendarEntry *entry, const TavDateInterval *interval)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), nullptr);
    g_return_val_if_fail (interval != NULL, nullptr);

    TavDate *start = nullptr, *end = nullptr, *until = nullptr;
    TavTime *start_time = nullptr;
    int repeat = 0;
    g_object_get (entry, "start-date", &start, "end-date", &end, "start-time", &start_time,
                  "repeat-code", &repeat, "end-repetition-date", &until, nullptr);
    GList *out = nullptr;

    if (valid_for_gdate (*start) && valid_for_gdate (*end) && valid_for_gdate (interval->start)
        && valid_for_gdate (interval->end)) {
        guint32 s = julian_of (*start);
        guint32 duration = std::max<gint64> (0, julian_of (*end) - s);
        gint64 is = julian_of (interval->start), ie = julian_of (interval->end);

        /* An occurrence starting on day d touches the interval when
         * d <= ie and d + duration >= is. */
        gint64 lo = std::max<gint64> (s, is - duration);
        gint64 hi = ie;
        bool repeats = repeat != TavCalendarRepeatsNoRepeat && repeat != TavCalendarRepeatsComplex;
        if (repeats && valid_for_gdate (*until) && julian_of (*until) > s + duration)
            hi = std::min<gint64> (hi, julian_of (*until));
        if (!repeats)
            hi = std::min<gint64> (hi, s);

        /* Ask of every day an occurrence could start on whether one does:
         * the plainest statement of the rules, and cheap enough here. */
        std::vector<gint64> hits;
        for (gint64 d = lo; d <= hi; ++d) {
            TavDate date = from_julian (guint32 (d));
            bool hit;
            switch (repeat) {
            case TavCalendarRepeatsEveryDay: hit = true; break;
            /* Julian day 1 (1 January of year 1) was a Monday. */
            case TavCalendarRepeatsEveryWorkday: hit = (d - 1) % 7 < 5; break;
            case TavCalendarRepeatsEveryWeek: hit = (d - s) % 7 == 0; break;
            case TavCalendarRepeatsEveryMonth: hit = date.day == start->day; break;
            case TavCalendarRepeatsEveryYear: hit = date.day == start->day && date.month == start->month; break;
            default: hit = d == s; break;
            }
            if (hit)
                hits.push_back (d);
        }
        for (auto it = hits.rbegin (); it != hits.rend (); ++it) {
            TavTimestamp ts { from_julian (guint32 (*it)), *start_time };
            out = g_list_prepend (out, tav_timestamp_copy (&ts));
        }
    }

    tav_date_free (start);
    tav_date_free (end);
    tav_date_free (until);
    tav_time_free (start_time);
    return out;
}

void
tav_memory_source_fail (TavMemorySource *source, TavMemorySlot slot, CalendarUiErrorCode code)
{
    g_return_if_fail (TAV_IS_MEMORY_SOURCE (source));
    g_return_if_fail (slot >= 0 && slot < TAV_MEMORY_N_SLOTS);
    source->priv->failing[slot] = true;
    source->priv->failure_code[slot] = code;
}

void
tav_memory_source_heal (TavMemorySource *source, TavMemorySlot slot)
{
    g_return_if_fail (TAV_IS_MEMORY_SOURCE (source));
    g_return_if_fail (slot >= 0 && slot < TAV_MEMORY_N_SLOTS);
    source->priv->failing[slot] = false;
}

guint
tav_memory_source_calls (TavMemorySource *source, TavMemorySlot slot)
{
    g_return_val_if_fail (TAV_IS_MEMORY_SOURCE (source), 0);
    g_return_val_if_fail (slot >= 0 && slot < TAV_MEMORY_N_SLOTS, 0);
    return source->priv->calls[slot];
}

