/* libcalendarui - calendar entry */

#include "TavCalendarEntry.h"

#include <cstring>
#include <ctime>
#include <new>

#include "TavCalendarEntryInternal.h"
#include "TavCalendarSource.h"
#include "TavCalendarTask.h"
#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavLog.h"
#include "TavModelSupport.h"

using tav::GCharPtr;
using tav::GRefPtr;
using tav::model::DateIntervalPtr;
using tav::model::DatePtr;
using tav::model::TimePtr;

enum {
    PROP_0,
    PROP_SOURCE = 1,
    PROP_START_TIMESTAMP = 2,
    PROP_START_DATE = 3,
    PROP_START_TIME = 4,
    PROP_END_DATE = 5,
    PROP_END_TIME = 6,
    PROP_END_REPETITION_DATE = 7,
    PROP_MODIFICATION_DATE = 8,
    PROP_MODIFICATION_TIME = 9,
    PROP_MODIFIED_TIME_SEC = 10,
    PROP_START_YEAR = 11,
    PROP_START_MONTH = 12,
    PROP_START_DAY = 13,
    PROP_START_HOUR = 14,
    PROP_START_MINUTE = 15,
    PROP_END_YEAR = 16,
    PROP_END_MONTH = 17,
    PROP_END_DAY = 18,
    PROP_END_HOUR = 19,
    PROP_END_MINUTE = 20,
    PROP_ALARM_TIME = 21,
    PROP_CREATED_TIME = 22,
    PROP_TITLE = 23,
    PROP_DESCRIPTION = 24,
    PROP_LOCATION = 25,
    PROP_ALARM_CODE = 26,
    PROP_REPEAT_CODE = 27,
    PROP_START_WEEK_DAY = 28,
    PROP_END_WEEK_DAY = 29,
    PROP_COLOR = 30,
    PROP_ALL_DAY = 31,
    PROP_HAS_RRULE = 32,
    PROP_MULTI_DAYS = 33,
    PROP_HAS_REPEAT = 34,
    PROP_HAS_ALARM = 35,
    PROP_HAS_BIRTHDAY = 36,
    PROP_NUM_ID = 37,
    PROP_SHOW_UNTIL = 38,
    PROP_BIRTH_YEAR = 39,
    N_PROPERTIES
};

static GParamSpec *entry_properties[N_PROPERTIES];

namespace {

/* The occurrences computed for one date interval and the iteration cursor
 * over them. The list and its TavTimestamp elements are owned. */
class InstanceCache {
public:
    InstanceCache() = default;
    InstanceCache(const InstanceCache &) = delete;
    InstanceCache &operator=(const InstanceCache &) = delete;
    ~InstanceCache() { clear(); }

    void clear()
    {
        tav::model::free_timestamp_list(std::exchange(list, nullptr));
        interval.reset();
        cursor = nullptr;
    }
    void replace(const TavDateInterval *for_interval, GList *instances)
    {
        clear();
        list = instances;
        interval.reset(tav_date_interval_copy(for_interval));
    }
    bool covers(const TavDateInterval *wanted) const
    {
        return interval && tav_date_compare(&interval->start, &wanted->start) == 0
            && tav_date_compare(&interval->end, &wanted->end) == 0;
    }

    GList *list = nullptr;
    GList *cursor = nullptr;
    DateIntervalPtr interval;
};

} // namespace

struct _TavCalendarEntryPrivate {
    _TavCalendarEntryPrivate()
    {
        time_t now = time(nullptr);
        created_time = now;
        localtime_r(&now, &start);
        end = start;
    }

    bool dispose_has_run = false;
    GRefPtr<TavCalendarSource> source;
    struct tm start {};
    struct tm end {};
    time_t created_time = 0;
    int modified_time_sec = 0;
    TavCalendarColor color = TavCalendarColorDarkBlue;
    TavDate modification_date {};
    TavTime modification_time {};
    GCharPtr num_id;
    GCharPtr title;
    GCharPtr description;
    GCharPtr location;
    gboolean all_day = FALSE;
    gboolean has_birthday = FALSE;
    gboolean show_until = FALSE;
    int birth_year = 0;
    TavCalendarRepeatCode repeat_code = TavCalendarRepeatsNoRepeat;
    DatePtr end_repetition_date;
    gboolean has_rrule = FALSE;
    TavCalendarAlarmCode alarm_code = TavCalendarAlarmNone;
    TimePtr alarm_time;
    InstanceCache instances;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarEntry, tav_calendar_entry, G_TYPE_OBJECT)

/* Auxiliary functions ------------------------------------------------------ */

namespace {

/* Makes @text printable as UTF-8 the cheap way the entry always has: a lead
 * byte lets its continuation bytes through unchecked, every other byte
 * above 0x7F becomes '?'. The terminating NUL is never skipped. */
void repair_utf8(char *text)
{
    auto *p = reinterpret_cast<unsigned char *>(text);
    while (*p) {
        int follow = 0;
        if (*p >= 0xC2 && *p <= 0xDF)
            follow = 1;
        else if (*p >= 0xE0 && *p <= 0xEF)
            follow = 2;
        else if (*p >= 0xF0 && *p <= 0xF4)
            follow = 3;
        else if (*p > 0x7F)
            *p = '?';
        ++p;
        for (; follow > 0 && *p; --follow)
            ++p;
    }
}

/* Stores a copy of @value in @slot, repairing invalid UTF-8 with a warning
 * that names @what. */
void store_checked_text(GCharPtr &slot, const char *value, const char *what)
{
    slot.reset(g_strdup(value));
    if (slot && !g_utf8_validate(slot.get(), -1, nullptr)) {
        TAV_WARNING_AS("tav_calendar_entry_set_property", "Invalid UTF-8 string received for %s.", what);
        repair_utf8(slot.get());
    }
}

TavDate tm_date(const struct tm &t)
{
    TavDate date {};
    tav_tm_to_date(&date, &t);
    return date;
}

TavTime tm_time(const struct tm &t)
{
    TavTime time {};
    tav_tm_to_time(&time, &t);
    return time;
}

/* The weekday of @t (0 = Sunday). The fields are normalised in place; the
 * daylight-saving flag is re-derived so that the normalisation never moves
 * the clock time by an hour. */
int normalised_weekday(struct tm &t)
{
    t.tm_isdst = -1;
    mktime(&t);
    return t.tm_wday;
}

bool same_day(const struct tm &a, const struct tm &b)
{
    return a.tm_mday == b.tm_mday && a.tm_mon == b.tm_mon && a.tm_year == b.tm_year;
}

} // namespace

/* GObject plumbing ----------------------------------------------------------- */

static void
tav_calendar_entry_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarEntry *entry = TAV_CALENDAR_ENTRY (object);
    TavCalendarEntryPrivate *priv = entry->priv;

    switch (prop_id) {
    case PROP_START_TIMESTAMP:
    case PROP_START_DATE:
    case PROP_START_TIME:
    case PROP_END_DATE:
    case PROP_END_TIME:
    case PROP_START_YEAR:
    case PROP_START_MONTH:
    case PROP_START_DAY:
    case PROP_START_HOUR:
    case PROP_START_MINUTE:
    case PROP_END_YEAR:
    case PROP_END_MONTH:
    case PROP_END_DAY:
    case PROP_END_HOUR:
    case PROP_END_MINUTE:
    case PROP_COLOR:
        /* These move the event or change how it is shown: the occurrences
         * computed so far no longer hold. */
        tav_calandar_entry_drop_instances (entry);
        break;
    default:
        break;
    }

    switch (prop_id) {
    case PROP_SOURCE:
        priv->source = GRefPtr<TavCalendarSource> (static_cast<TavCalendarSource *> (g_value_get_object (value)));
        break;
    case PROP_START_TIMESTAMP:
        if (auto *ts = static_cast<const TavTimestamp *> (g_value_get_boxed (value))) {
            tav_date_to_tm (&priv->start, &ts->date);
            tav_time_to_tm (&priv->start, &ts->time);
        }
        break;
    case PROP_START_DATE:
        if (auto *date = static_cast<const TavDate *> (g_value_get_boxed (value)))
            tav_date_to_tm (&priv->start, date);
        break;
    case PROP_START_TIME:
        if (auto *time = static_cast<const TavTime *> (g_value_get_boxed (value)))
            tav_time_to_tm (&priv->start, time);
        break;
    case PROP_END_DATE:
        if (auto *date = static_cast<const TavDate *> (g_value_get_boxed (value)))
            tav_date_to_tm (&priv->end, date);
        break;
    case PROP_END_TIME:
        if (auto *time = static_cast<const TavTime *> (g_value_get_boxed (value)))
            tav_time_to_tm (&priv->end, time);
        break;
    case PROP_END_REPETITION_DATE: {
        DatePtr date (static_cast<TavDate *> (g_value_dup_boxed (value)));
        const TavDate *stored = priv->end_repetition_date.get ();
        bool same = (!date && !stored) || (date && stored && tav_date_compare (date.get (), stored) == 0);
        if (!same) {
            tav_calandar_entry_drop_instances (entry);
            priv->end_repetition_date = std::move (date);
        }
        break;
    }
    case PROP_ALARM_TIME:
        priv->alarm_time.reset (static_cast<TavTime *> (g_value_dup_boxed (value)));
        break;
    case PROP_MODIFICATION_DATE:
        if (auto *date = static_cast<const TavDate *> (g_value_get_boxed (value)))
            priv->modification_date = *date;
        break;
    case PROP_MODIFICATION_TIME:
        if (auto *time = static_cast<const TavTime *> (g_value_get_boxed (value)))
            priv->modification_time = *time;
        break;
    case PROP_CREATED_TIME:
        priv->created_time = g_value_get_int (value);
        break;
    case PROP_NUM_ID:
        priv->num_id.reset (g_value_dup_string (value));
        break;
    case PROP_START_YEAR:
        priv->start.tm_year = g_value_get_int (value) - 1900;
        break;
    case PROP_MODIFIED_TIME_SEC:
        priv->modified_time_sec = g_value_get_int (value);
        break;
    case PROP_START_MONTH:
        priv->start.tm_mon = g_value_get_int (value);
        break;
    case PROP_START_DAY:
        priv->start.tm_mday = g_value_get_int (value);
        break;
    case PROP_START_HOUR:
        priv->start.tm_hour = g_value_get_int (value);
        break;
    case PROP_START_MINUTE:
        priv->start.tm_min = g_value_get_int (value);
        break;
    case PROP_END_YEAR:
        priv->end.tm_year = g_value_get_int (value) - 1900;
        break;
    case PROP_END_MONTH:
        priv->end.tm_mon = g_value_get_int (value);
        break;
    case PROP_END_DAY:
        priv->end.tm_mday = g_value_get_int (value);
        break;
    case PROP_END_HOUR:
        priv->end.tm_hour = g_value_get_int (value);
        break;
    case PROP_END_MINUTE:
        priv->end.tm_min = g_value_get_int (value);
        break;
    case PROP_COLOR:
        priv->color = static_cast<TavCalendarColor> (g_value_get_enum (value));
        break;
    case PROP_TITLE:
        store_checked_text (priv->title, g_value_get_string (value), "title");
        break;
    case PROP_DESCRIPTION:
        store_checked_text (priv->description, g_value_get_string (value), "description");
        break;
    case PROP_LOCATION:
        priv->location.reset (g_value_dup_string (value));
        break;
    case PROP_ALL_DAY:
        priv->all_day = g_value_get_boolean (value);
        break;
    case PROP_HAS_RRULE:
        priv->has_rrule = g_value_get_boolean (value);
        break;
    case PROP_ALARM_CODE:
        priv->alarm_code = static_cast<TavCalendarAlarmCode> (g_value_get_enum (value));
        break;
    case PROP_REPEAT_CODE: {
        auto code = static_cast<TavCalendarRepeatCode> (g_value_get_enum (value));
        if (code != priv->repeat_code) {
            tav_calandar_entry_drop_instances (entry);
            priv->repeat_code = code;
        }
        break;
    }
    case PROP_HAS_BIRTHDAY:
        priv->has_birthday = g_value_get_boolean (value);
        break;
    case PROP_SHOW_UNTIL:
        priv->show_until = g_value_get_boolean (value);
        break;
    case PROP_BIRTH_YEAR:
        priv->birth_year = g_value_get_int (value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_entry_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarEntry *entry = TAV_CALENDAR_ENTRY (object);
    TavCalendarEntryPrivate *priv = entry->priv;

    switch (prop_id) {
    case PROP_SOURCE:
        g_value_set_object (value, priv->source.get ());
        break;
    case PROP_START_TIMESTAMP: {
        TavTimestamp ts {};
        tav_tm_to_timestamp (&ts, &priv->start);
        g_value_set_boxed (value, &ts);
        break;
    }
    case PROP_START_DATE: {
        TavDate date = tm_date (priv->start);
        g_value_set_boxed (value, &date);
        break;
    }
    case PROP_START_TIME: {
        TavTime time = tm_time (priv->start);
        g_value_set_boxed (value, &time);
        break;
    }
    case PROP_END_DATE: {
        TavDate date = tm_date (priv->end);
        g_value_set_boxed (value, &date);
        break;
    }
    case PROP_END_TIME: {
        TavTime time = tm_time (priv->end);
        g_value_set_boxed (value, &time);
        break;
    }
    case PROP_END_REPETITION_DATE:
        /* Without a stored date the repetition ends with the event itself. */
        if (!priv->end_repetition_date) {
            TavDate date = tm_date (priv->end);
            priv->end_repetition_date.reset (tav_date_copy (&date));
        }
        g_value_set_boxed (value, priv->end_repetition_date.get ());
        break;
    case PROP_ALARM_TIME:
        if (!priv->alarm_time) {
            TavTime noon { 12, 0 };
            priv->alarm_time.reset (tav_time_copy (&noon));
        }
        g_value_set_boxed (value, priv->alarm_time.get ());
        break;
    case PROP_MODIFICATION_DATE:
        g_value_set_boxed (value, &priv->modification_date);
        break;
    case PROP_MODIFICATION_TIME:
        g_value_set_boxed (value, &priv->modification_time);
        break;
    case PROP_CREATED_TIME:
        g_value_set_int (value, static_cast<int> (priv->created_time));
        break;
    case PROP_NUM_ID:
        g_value_set_string (value, priv->num_id.get ());
        break;
    case PROP_START_YEAR:
        g_value_set_int (value, priv->start.tm_year + 1900);
        break;
    case PROP_MODIFIED_TIME_SEC:
        g_value_set_int (value, priv->modified_time_sec);
        break;
    case PROP_START_MONTH:
        g_value_set_int (value, priv->start.tm_mon);
        break;
    case PROP_START_DAY:
        g_value_set_int (value, priv->start.tm_mday);
        break;
    case PROP_START_HOUR:
        g_value_set_int (value, priv->start.tm_hour);
        break;
    case PROP_START_MINUTE:
        g_value_set_int (value, priv->start.tm_min);
        break;
    case PROP_END_YEAR:
        g_value_set_int (value, priv->end.tm_year + 1900);
        break;
    case PROP_END_MONTH:
        g_value_set_int (value, priv->end.tm_mon);
        break;
    case PROP_END_DAY:
        g_value_set_int (value, priv->end.tm_mday);
        break;
    case PROP_END_HOUR:
        g_value_set_int (value, priv->end.tm_hour);
        break;
    case PROP_END_MINUTE:
        g_value_set_int (value, priv->end.tm_min);
        break;
    case PROP_START_WEEK_DAY:
        g_value_set_int (value, normalised_weekday (priv->start));
        break;
    case PROP_END_WEEK_DAY:
        g_value_set_int (value, normalised_weekday (priv->end));
        break;
    case PROP_COLOR:
        g_value_set_enum (value, priv->color);
        break;
    case PROP_TITLE:
        g_value_set_string (value, priv->title.get ());
        break;
    case PROP_DESCRIPTION:
        g_value_set_string (value, priv->description.get ());
        break;
    case PROP_LOCATION:
        g_value_set_string (value, priv->location.get ());
        break;
    case PROP_ALL_DAY:
        g_value_set_boolean (value, priv->all_day);
        break;
    case PROP_HAS_RRULE:
        g_value_set_boolean (value, priv->has_rrule);
        break;
    case PROP_MULTI_DAYS:
        /* A task has a due date, not a span. */
        g_value_set_boolean (value, !TAV_IS_CALENDAR_TASK (object) && !same_day (priv->start, priv->end));
        break;
    case PROP_ALARM_CODE:
        g_value_set_enum (value, priv->alarm_code);
        break;
    case PROP_REPEAT_CODE:
        g_value_set_enum (value, priv->repeat_code);
        break;
    case PROP_HAS_REPEAT:
        g_value_set_boolean (value, priv->repeat_code != TavCalendarRepeatsNoRepeat);
        break;
    case PROP_HAS_ALARM:
        g_value_set_boolean (value, priv->alarm_code != TavCalendarAlarmNone);
        break;
    case PROP_HAS_BIRTHDAY:
        g_value_set_boolean (value, priv->has_birthday);
        break;
    case PROP_SHOW_UNTIL:
        g_value_set_boolean (value, priv->show_until);
        break;
    case PROP_BIRTH_YEAR:
        g_value_set_int (value, priv->birth_year);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_entry_dispose (GObject *object)
{
    TavCalendarEntryPrivate *priv = TAV_CALENDAR_ENTRY (object)->priv;

    if (!priv->dispose_has_run) {
        priv->dispose_has_run = true;
        priv->source = nullptr;
        priv->end_repetition_date.reset ();
        priv->alarm_time.reset ();
        priv->num_id.reset ();
        priv->instances.clear ();
    }

    G_OBJECT_CLASS (tav_calendar_entry_parent_class)->dispose (object);
}

static void
tav_calendar_entry_finalize (GObject *object)
{
    TAV_CALENDAR_ENTRY (object)->priv->~_TavCalendarEntryPrivate ();

    G_OBJECT_CLASS (tav_calendar_entry_parent_class)->finalize (object);
}

static void
tav_calendar_entry_init (TavCalendarEntry *entry)
{
    void *storage = tav_calendar_entry_get_instance_private (entry);
    entry->priv = new (storage) _TavCalendarEntryPrivate ();
}

namespace {

constexpr GParamFlags kRW = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
constexpr GParamFlags kR = static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS);

void install (GObjectClass *klass, guint id, GParamSpec *pspec)
{
    entry_properties[id] = pspec;
    g_object_class_install_property (klass, id, pspec);
}

GParamSpec *boxed (const char *name, const char *nick, const char *blurb, GType type)
{
    return g_param_spec_boxed (name, nick, blurb, type, kRW);
}

GParamSpec *integer (const char *name, const char *nick, const char *blurb, int min, int max, int def,
                     GParamFlags flags = kRW)
{
    return g_param_spec_int (name, nick, blurb, min, max, def, flags);
}

} // namespace

static void
tav_calendar_entry_class_init (TavCalendarEntryClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);

    object_class->set_property = tav_calendar_entry_set_property;
    object_class->get_property = tav_calendar_entry_get_property;
    object_class->dispose = tav_calendar_entry_dispose;
    object_class->finalize = tav_calendar_entry_finalize;

    /* Installed in this order on purpose: hosts and dialogs walk the list. */
    install (object_class, PROP_START_TIMESTAMP,
             boxed ("start-timestamp", "Start timestamp", "The starting date and time.", tav_timestamp_get_type ()));
    install (object_class, PROP_START_DATE,
             boxed ("start-date", "Start date", "The starting date.", tav_date_get_type ()));
    install (object_class, PROP_END_DATE,
             boxed ("end-date", "End date", "The ending date.", tav_date_get_type ()));
    install (object_class, PROP_END_REPETITION_DATE,
             boxed ("end-repetition-date", "End repetition date", "The date for the last repetition.",
                    tav_date_get_type ()));
    install (object_class, PROP_ALARM_TIME,
             boxed ("alarm-time", "Alarm time", "The alarm time value if alarm-code is set to day before.",
                    tav_time_get_type ()));
    install (object_class, PROP_START_TIME,
             boxed ("start-time", "Start time", "The starting time.", tav_time_get_type ()));
    install (object_class, PROP_END_TIME,
             boxed ("end-time", "End time", "The ending time.", tav_time_get_type ()));
    install (object_class, PROP_MODIFICATION_DATE,
             boxed ("modification-date", "Modification Date", "The date of the last modification.",
                    tav_date_get_type ()));
    install (object_class, PROP_MODIFICATION_TIME,
             boxed ("modification-time", "Modification Time", "The time of the last modification.",
                    tav_time_get_type ()));
    install (object_class, PROP_CREATED_TIME,
             integer ("created-time", "Created time", "The created time of the entry.", 0, G_MAXINT, 0));
    install (object_class, PROP_SOURCE,
             g_param_spec_object ("source", "Source", "The calendar source this entry is stored on.",
                                  TAV_TYPE_CALENDAR_SOURCE, kRW));
    install (object_class, PROP_NUM_ID,
             g_param_spec_string ("num-id", "Entry ID", "The textual id of the entry.", nullptr, kRW));
    install (object_class, PROP_START_YEAR,
             integer ("start-year", "Start year", "The start year of the entry.", 0, G_MAXINT, 0));
    install (object_class, PROP_MODIFIED_TIME_SEC,
             integer ("modified-time-sec", "Modified sec time", "Modified seconds time.", 0, 59, 0));
    install (object_class, PROP_START_MONTH,
             integer ("start-month", "Start month", "The start month of the entry.", 0, 11, 0));
    install (object_class, PROP_START_DAY,
             integer ("start-day", "Start day", "The start day of the entry", 1, 31, 1));
    install (object_class, PROP_START_HOUR,
             integer ("start-hour", "Start hour", "The start hour of the entry", 0, 23, 0));
    install (object_class, PROP_START_MINUTE,
             integer ("start-minute", "Start minute", "The start minute of the entry", 0, 59, 0));
    install (object_class, PROP_END_YEAR,
             integer ("end-year", "End year", "The end year of the entry.", 0, G_MAXINT, 0));
    install (object_class, PROP_END_MONTH,
             integer ("end-month", "End month", "The end month of the entry.", 0, 11, 0));
    install (object_class, PROP_END_DAY,
             integer ("end-day", "End day", "The end day of the entry", 1, 31, 1));
    install (object_class, PROP_END_HOUR,
             integer ("end-hour", "End hour", "The end hour of the entry", 0, 23, 0));
    install (object_class, PROP_END_MINUTE,
             integer ("end-minute", "End minute", "The end minute of the entry", 0, 59, 0));
    install (object_class, PROP_START_WEEK_DAY,
             integer ("start-week-day", "Start weekday", "The start week day", 0, 6, 0, kR));
    install (object_class, PROP_END_WEEK_DAY,
             integer ("end-week-day", "End weekday", "The end week day", 0, 6, 0, kR));
    install (object_class, PROP_COLOR,
             g_param_spec_enum ("color", "Color", "The color of the entry as an enum code.",
                                tav_calendar_color_get_type (), 0, kRW));
    install (object_class, PROP_TITLE,
             g_param_spec_string ("title", "Title", "The title text of the entry.", nullptr, kRW));
    install (object_class, PROP_DESCRIPTION,
             g_param_spec_string ("description", "Description", "The description text of the entry.", nullptr,
                                  kRW));
    install (object_class, PROP_LOCATION,
             g_param_spec_string ("location", "Location", "The location for the entry.", nullptr, kRW));
    install (object_class, PROP_ALL_DAY,
             g_param_spec_boolean ("all-day", "All day", "If the entry is for all the day.", FALSE, kRW));
    install (object_class, PROP_HAS_RRULE,
             g_param_spec_boolean ("has-rrule", "Has RRule", "If the entry has complex recurrence rules.", FALSE,
                                   kRW));
    install (object_class, PROP_MULTI_DAYS,
             g_param_spec_boolean ("multi-days", "Multi days", "If the start date and the end date is not equal.",
                                   FALSE, kR));
    install (object_class, PROP_ALARM_CODE,
             g_param_spec_enum ("alarm-code", "Alarm Code", "The coded alarm type.",
                                tav_calendar_alarm_code_get_type (), 0, kRW));
    install (object_class, PROP_REPEAT_CODE,
             g_param_spec_enum ("repeat-code", "Repeat Code", "The coded repeat type.",
                                tav_calendar_repeat_code_get_type (), 0, kRW));
    install (object_class, PROP_HAS_REPEAT,
             g_param_spec_boolean ("has-repeat", "Has repeat", "If the entry is a repeating event.", FALSE, kR));
    install (object_class, PROP_HAS_ALARM,
             g_param_spec_boolean ("has-alarm", "Has alarm", "If the entry has an alarm attached.", FALSE, kR));
    install (object_class, PROP_HAS_BIRTHDAY,
             g_param_spec_boolean ("has-birthday", "Birthay", "If the entry has a birthday attached.", FALSE, kRW));
    install (object_class, PROP_SHOW_UNTIL,
             g_param_spec_boolean ("show-until", "ShowUntil", "whether until button has to be shown.", TRUE, kRW));
    install (object_class, PROP_BIRTH_YEAR,
             integer ("birth-year", "Birth-Year", "Birth year of the contact", G_MININT, G_MAXINT, -1));
}

/* Public API ----------------------------------------------------------------- */

TavCalendarEntry *
tav_calendar_entry_new (void)
{
    return TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_ENTRY, nullptr));
}

const char *
tav_calendar_entry_get_title (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), "(NotAnEntry)");

    return entry->priv->title.get ();
}

time_t
tav_calendar_entry_get_created_time (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), 0);

    return entry->priv->created_time;
}

gboolean
tav_calendar_entry_is_all_day (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);

    return entry->priv->all_day;
}

gboolean
tav_calendar_entry_has_rrule (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);

    return entry->priv->has_rrule;
}

void
tav_calendar_entry_set_has_rrule (TavCalendarEntry *entry, gboolean has_rrule)
{
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY(entry));

    g_object_set (entry, "has-rrule", has_rrule, nullptr);
}

gboolean
tav_calendar_entry_has_bday (TavCalendarEntry *entry)
{
    /* NULL simply has no birthday; anything else must be an entry. */
    if (entry == nullptr)
        return FALSE;
    TAV_RETURN_VAL_IF_FAIL_AS (TAV_IS_CALENDAR_ENTRY (entry), "TAV_CALENDAR_ENTRY(entry)", FALSE);

    return entry->priv->has_birthday;
}

gboolean
tav_calendar_entry_is_multi_days (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);

    return !same_day (entry->priv->start, entry->priv->end);
}

gboolean
tav_calendar_entry_is_visible (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);

    TavCalendarSource *source = entry->priv->source.get ();
    if (!source)
        return TRUE;
    gboolean visible = TRUE;
    g_object_get (source, "visible", &visible, nullptr);
    return visible;
}

gboolean
tav_calendar_entry_is_read_only (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), TRUE);

    TavCalendarSource *source = entry->priv->source.get ();
    if (!source)
        return FALSE;
    gboolean read_only = FALSE;
    g_object_get (source, "read-only", &read_only, nullptr);
    return read_only;
}

gboolean
tav_calendar_entry_is_equal (TavCalendarEntry *entry1, TavCalendarEntry *entry2)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry1) && TAV_IS_CALENDAR_ENTRY(entry2), FALSE);

    if (entry1 == entry2)
        return TRUE;
    if (G_OBJECT_TYPE (entry1) != G_OBJECT_TYPE (entry2))
        return FALSE;
    if (!entry1->priv->source || !entry2->priv->source)
        return FALSE;
    /* Two entries not yet stored have no ID; they are distinct events. */
    const char *id1 = entry1->priv->num_id.get ();
    const char *id2 = entry2->priv->num_id.get ();
    if (!id1 || !id2)
        return FALSE;
    return g_ascii_strcasecmp (id1, id2) == 0;
}

int
tav_calendar_entry_compare_start_time (TavCalendarEntry *entry1, TavCalendarEntry *entry2)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry1), 0);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry2), 0);

    const struct tm &a = entry1->priv->start;
    const struct tm &b = entry2->priv->start;
    if (a.tm_hour != b.tm_hour)
        return a.tm_hour - b.tm_hour;
    return a.tm_min - b.tm_min;
}

static const TavTimestamp *
cursor_timestamp (const InstanceCache &cache)
{
    return cache.cursor ? static_cast<const TavTimestamp *> (cache.cursor->data) : nullptr;
}

const TavTimestamp *
tav_calendar_entry_get_first_instance_timestamp (TavCalendarEntry *entry, const TavDateInterval *interval)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), nullptr);

    TavCalendarEntryPrivate *priv = entry->priv;
    if (priv->dispose_has_run)
        return nullptr;
    TAV_RETURN_VAL_IF_FAIL_AS (TAV_IS_CALENDAR_SOURCE (priv->source.get ()),
                               "TAV_IS_CALENDAR_SOURCE(entry->priv->source)", nullptr);
    g_return_val_if_fail (interval != NULL, nullptr);

    InstanceCache &cache = priv->instances;
    if (cache.covers (interval)) {
        cache.cursor = cache.list;
        return cursor_timestamp (cache);
    }

    cache.clear ();
    /* The source may hand the list over with set_instances (the usual way),
     * return it through @list, or both with the same list. Hold the source
     * in case the call replaces the entry's own. */
    GRefPtr<TavCalendarSource> source = priv->source;
    GList *list = nullptr;
    gboolean found = tav_calendar_source_get_instances (source.get (), entry, interval, &list);
    if (priv->dispose_has_run) {
        if (list != cache.list)
            tav::model::free_timestamp_list (list);
        return nullptr;
    }
    if (list && list != cache.list)
        cache.replace (interval, list);
    else if (found && !cache.interval)
        cache.replace (interval, cache.list ? std::exchange (cache.list, nullptr) : nullptr);

    cache.cursor = cache.list;
    return cursor_timestamp (cache);
}

const TavTimestamp *
tav_calendar_entry_get_next_instance_timestamp (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), nullptr);

    TavCalendarEntryPrivate *priv = entry->priv;
    if (priv->dispose_has_run || !priv->instances.cursor)
        return nullptr;
    priv->instances.cursor = priv->instances.cursor->next;
    return cursor_timestamp (priv->instances);
}

void
tav_calendar_entry_set_instances (TavCalendarEntry *entry, const TavDateInterval *interval, GList *instances)
{
    if (!TAV_IS_CALENDAR_ENTRY (entry) || !interval || entry->priv->dispose_has_run) {
        /* The list was handed over: free it rather than lose it. */
        tav::model::free_timestamp_list (instances);
        g_return_if_fail (TAV_IS_CALENDAR_ENTRY(entry));
        g_return_if_fail (interval != NULL);
        return;
    }

    entry->priv->instances.replace (interval, instances);
}

void
tav_calandar_entry_drop_instances (TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY(entry));

    entry->priv->instances.clear ();
}

void
tav_calendar_entry_debug_print (TavCalendarEntry *entry)
{
    g_return_if_fail (TAV_IS_CALENDAR_ENTRY(entry));

    TavCalendarEntryPrivate *priv = entry->priv;
    g_print ("--------- entry: %p ---------\n", static_cast<void *> (entry));
    g_print ("   title       : %s\n", priv->title ? priv->title.get () : "(null)");
    g_print ("   description : %s\n", priv->description ? priv->description.get () : "(null)");
    g_print ("   location    : %s\n", priv->location ? priv->location.get () : "(null)");
    g_print ("   start date  : %02d-%02d-%d\n", priv->start.tm_mday, priv->start.tm_mon, priv->start.tm_year + 1900);
    g_print ("   start time  : %02d:%02d\n", priv->start.tm_hour, priv->start.tm_min);
    g_print ("   end date    : %02d-%02d-%d\n", priv->end.tm_mday, priv->end.tm_mon, priv->end.tm_year + 1900);
    g_print ("   end time    : %02d:%02d\n", priv->end.tm_hour, priv->end.tm_min);
    g_print ("-----------------------------\n");
}

/* Internal reads ----------------------------------------------------------------- */

namespace tav::model {

EntrySpan entry_span (TavCalendarEntry *entry)
{
    EntrySpan span {};
    tav_tm_to_timestamp (&span.start, &entry->priv->start);
    tav_tm_to_timestamp (&span.end, &entry->priv->end);
    return span;
}

TavCalendarSource *entry_source (TavCalendarEntry *entry)
{
    return entry->priv->source.get ();
}

TavCalendarColor entry_color (TavCalendarEntry *entry)
{
    return entry->priv->color;
}

const char *entry_num_id (TavCalendarEntry *entry)
{
    return entry->priv->num_id.get ();
}

} // namespace tav::model
