/* libcalendarui - calendar source */

#include "TavCalendarSource.h"

#include <new>

#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"

using tav::GCharPtr;

enum {
    PROP_0,
    PROP_TITLE = 1,
    PROP_ID = 2,
    PROP_TYPE = 3,
    PROP_SYNCHRONIZED = 4,
    PROP_SYNC_TYPE = 5,
    PROP_TYPE_TITLE = 6,
    PROP_VISIBLE = 7,
    PROP_READ_ONLY = 8,
    PROP_COLOR = 9,
    PROP_ALARM_TONE = 10,
    N_PROPERTIES
};

static GParamSpec *source_properties[N_PROPERTIES];

struct _TavCalendarSourcePrivate {
    bool dispose_has_run = false;
    int id = -1;
    TavCalendarColor color = TavCalendarColorDarkBlue;
    GCharPtr title;
    GCharPtr alarm_tone;
    TavCalendarSourceType type = CalendarSourceTypeLocal;
    TavCalendarSourceSyncType sync_type = CalendarSourceSyncNone;
    gboolean visible = TRUE;
    gboolean read_only = FALSE;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarSource, tav_calendar_source, G_TYPE_OBJECT)

/* GObject plumbing ----------------------------------------------------------- */

static void
tav_calendar_source_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarSourcePrivate *priv = TAV_CALENDAR_SOURCE (object)->priv;

    switch (prop_id) {
    case PROP_ID:
        priv->id = g_value_get_int (value);
        break;
    case PROP_COLOR:
        priv->color = static_cast<TavCalendarColor> (g_value_get_enum (value));
        break;
    case PROP_TITLE:
        priv->title.reset (g_value_dup_string (value));
        break;
    case PROP_ALARM_TONE:
        priv->alarm_tone.reset (g_value_dup_string (value));
        break;
    case PROP_TYPE:
        priv->type = static_cast<TavCalendarSourceType> (g_value_get_enum (value));
        break;
    case PROP_SYNC_TYPE:
        priv->sync_type = static_cast<TavCalendarSourceSyncType> (g_value_get_enum (value));
        break;
    case PROP_VISIBLE:
        priv->visible = g_value_get_boolean (value);
        break;
    case PROP_READ_ONLY:
        priv->read_only = g_value_get_boolean (value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_source_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarSourcePrivate *priv = TAV_CALENDAR_SOURCE (object)->priv;

    switch (prop_id) {
    case PROP_ID:
        g_value_set_int (value, priv->id);
        break;
    case PROP_COLOR:
        g_value_set_enum (value, priv->color);
        break;
    case PROP_TITLE:
        g_value_set_string (value, priv->title.get ());
        break;
    case PROP_ALARM_TONE:
        g_value_set_string (value, priv->alarm_tone.get ());
        break;
    case PROP_TYPE:
        g_value_set_enum (value, priv->type);
        break;
    case PROP_SYNC_TYPE:
        g_value_set_enum (value, priv->sync_type);
        break;
    case PROP_TYPE_TITLE:
        g_value_set_string (value, tav_calendar_source_type_to_string (priv->type));
        break;
    case PROP_VISIBLE:
        g_value_set_boolean (value, priv->visible);
        break;
    case PROP_READ_ONLY:
        g_value_set_boolean (value, priv->read_only);
        break;
    case PROP_SYNCHRONIZED:
        g_value_set_boolean (value, priv->sync_type != CalendarSourceSyncNone);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
        break;
    }
}

static void
tav_calendar_source_dispose (GObject *object)
{
    TAV_CALENDAR_SOURCE (object)->priv->dispose_has_run = true;

    G_OBJECT_CLASS (tav_calendar_source_parent_class)->dispose (object);
}

static void
tav_calendar_source_finalize (GObject *object)
{
    TAV_CALENDAR_SOURCE (object)->priv->~_TavCalendarSourcePrivate ();

    G_OBJECT_CLASS (tav_calendar_source_parent_class)->finalize (object);
}

static void
tav_calendar_source_init (TavCalendarSource *source)
{
    source->priv = new (tav_calendar_source_get_instance_private (source)) _TavCalendarSourcePrivate ();
}

static void
tav_calendar_source_class_init (TavCalendarSourceClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    constexpr auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    constexpr auto ro = static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS);

    object_class->set_property = tav_calendar_source_set_property;
    object_class->get_property = tav_calendar_source_get_property;
    object_class->dispose = tav_calendar_source_dispose;
    object_class->finalize = tav_calendar_source_finalize;

    source_properties[PROP_ID] = g_param_spec_int ("id", "Id", "The numerical ID of the calendar source.",
                                                   G_MININT, G_MAXINT, -1, rw);
    source_properties[PROP_COLOR] = g_param_spec_enum ("color", "Color", "The color of the entry as an enum code.",
                                                       tav_calendar_color_get_type (), 0, rw);
    source_properties[PROP_TITLE] = g_param_spec_string ("title", "Title", "The title of the source.", nullptr, rw);
    source_properties[PROP_ALARM_TONE]
        = g_param_spec_string ("alarm-tone", "Alarm Tone",
                               "The file path of sound file to be used for alarm tones.", nullptr, rw);
    source_properties[PROP_TYPE] = g_param_spec_enum ("type", "Type", "The type of the calendar source.",
                                                      tav_calendar_source_type_get_type (), 0, rw);
    source_properties[PROP_SYNC_TYPE]
        = g_param_spec_enum ("sync-type", "Sync type", "The calendar synchroization method.",
                             tav_calendar_source_sync_type_get_type (), 0, rw);
    source_properties[PROP_TYPE_TITLE]
        = g_param_spec_string ("type-title", "Type title", "The title of the type belongs to the source.",
                               nullptr, ro);
    source_properties[PROP_VISIBLE]
        = g_param_spec_boolean ("visible", "Visible", "If calendar is visible.", TRUE, rw);
    source_properties[PROP_READ_ONLY]
        = g_param_spec_boolean ("read-only", "Read only", "If the calendar is non-modifiable.", FALSE, rw);
    source_properties[PROP_SYNCHRONIZED]
        = g_param_spec_boolean ("synchronized", "Synchronized", "If the calendar synchronized.", FALSE, ro);

    /* Installed in this order on purpose. */
    for (guint id : { PROP_ID, PROP_COLOR, PROP_TITLE, PROP_ALARM_TONE, PROP_TYPE, PROP_SYNC_TYPE,
                      PROP_TYPE_TITLE, PROP_VISIBLE, PROP_READ_ONLY, PROP_SYNCHRONIZED })
        g_object_class_install_property (object_class, id, source_properties[id]);
}

/* Slot dispatch -------------------------------------------------------------- */

namespace {

template <typename T>
struct NotDeduced {
    using type = T;
};

/* Calls the slot @member of @source's class, or logs that the host left it
 * empty and gives @fallback. @name is the slot's own name. */
template <typename R, typename... Args>
R call_slot (const char *wrapper, TavCalendarSource *source,
             R (*TavCalendarSourceClass::*member) (TavCalendarSource *, Args...), const char *name, R fallback,
             typename NotDeduced<Args>::type... args)
{
    TavCalendarSourceClass *klass = TAV_CALENDAR_SOURCE_GET_CLASS (source);
    if (auto fn = klass->*member)
        return fn (source, args...);
    TAV_WARNING_AS (wrapper, "The '%s' method is not implemented.", name);
    return fallback;
}

/* A new object stored in this source carries the source and its colour,
 * whatever the store answered. */
void stamp_with_source (TavCalendarSource *source, TavCalendarEntry *entry)
{
    int color = 0;
    g_object_get (source, "color", &color, nullptr);
    g_object_set (entry, "source", source, "color", color, nullptr);
}

/* Calls one of the create slots. The new object carries the source and its
 * colour afterwards whatever happened, also when the host left the slot
 * empty: the editor that made it reads them back. */
int create_and_stamp (const char *wrapper, TavCalendarSource *source,
                      int (*TavCalendarSourceClass::*member) (TavCalendarSource *, TavCalendarEntry *),
                      const char *name, TavCalendarEntry *entry)
{
    int retval = call_slot (wrapper, source, member, name, int (CalendarDefaultError), entry);
    stamp_with_source (source, entry);
    return retval;
}

} // namespace

#define CALL_SLOT(slot, fallback, ...) \
    call_slot (__func__, source, &TavCalendarSourceClass::slot, #slot, fallback, ##__VA_ARGS__)
#define CREATE_AND_STAMP(slot, entry) create_and_stamp (__func__, source, &TavCalendarSourceClass::slot, #slot, entry)

/* Public API ----------------------------------------------------------------- */

TavCalendarSource *
tav_calendar_source_new (void)
{
    return TAV_CALENDAR_SOURCE (g_object_new (TAV_TYPE_CALENDAR_SOURCE, nullptr));
}

int
tav_calendar_source_create (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);

    return CALL_SLOT (create, int (CalendarDefaultError));
}

int
tav_calendar_source_save (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);

    return CALL_SLOT (save, int (CalendarDefaultError));
}

int
tav_calendar_source_remove (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);

    return CALL_SLOT (remove, int (CalendarDefaultError));
}

int
tav_calendar_source_remove_contents (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);

    return CALL_SLOT (remove_contents, int (CalendarDefaultError));
}

gboolean
tav_calendar_source_exists_by_name (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), FALSE);

    return CALL_SLOT (exists, gboolean (FALSE));
}

int
tav_calendar_source_export_calendar (TavCalendarSource *source, gpointer target)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);

    return CALL_SLOT (export_calendar, int (CalendarDefaultError), target);
}

int
tav_calendar_source_get_event_count (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), -1);

    return CALL_SLOT (event_count, -1);
}

int
tav_calendar_source_get_entry_count (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), -1);

    return CALL_SLOT (entry_count, -1);
}

int
tav_calendar_source_create_entry (TavCalendarSource *source, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), CalendarDefaultError);

    int retval = CREATE_AND_STAMP (create_entry, entry);
    TAV_WARNING ("retval is %d", retval);
    return retval;
}

int
tav_calendar_source_save_entry (TavCalendarSource *source, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), CalendarDefaultError);

    return CALL_SLOT (save_entry, int (CalendarDefaultError), entry);
}

int
tav_calendar_source_delete_entry (TavCalendarSource *source, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), CalendarDefaultError);

    return CALL_SLOT (delete_entry, int (CalendarDefaultError), entry);
}

int
tav_calendar_source_create_task (TavCalendarSource *source, TavCalendarTask *task)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_TASK(task), CalendarDefaultError);

    return CREATE_AND_STAMP (create_task, TAV_CALENDAR_ENTRY (task));
}

int
tav_calendar_source_save_task (TavCalendarSource *source, TavCalendarTask *task)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_TASK(task), CalendarDefaultError);

    return CALL_SLOT (save_task, int (CalendarDefaultError), TAV_CALENDAR_ENTRY (task));
}

int
tav_calendar_source_delete_task (TavCalendarSource *source, TavCalendarTask *task)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_TASK(task), CalendarDefaultError);

    return CALL_SLOT (delete_task, int (CalendarDefaultError), TAV_CALENDAR_ENTRY (task));
}

int
tav_calendar_source_create_note (TavCalendarSource *source, TavCalendarNote *note)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_NOTE(note), CalendarDefaultError);

    return CREATE_AND_STAMP (create_note, TAV_CALENDAR_ENTRY (note));
}

int
tav_calendar_source_save_note (TavCalendarSource *source, TavCalendarNote *note)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_NOTE(note), CalendarDefaultError);

    return CALL_SLOT (save_note, int (CalendarDefaultError), TAV_CALENDAR_ENTRY (note));
}

int
tav_calendar_source_delete_note (TavCalendarSource *source, TavCalendarNote *note)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), CalendarDefaultError);
    g_return_val_if_fail (TAV_IS_CALENDAR_NOTE(note), CalendarDefaultError);

    return CALL_SLOT (delete_note, int (CalendarDefaultError), TAV_CALENDAR_ENTRY (note));
}

gboolean
tav_calendar_source_get_instances (TavCalendarSource *source, TavCalendarEntry *entry,
                                   const TavDateInterval *interval, GList **list)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), FALSE);
    g_return_val_if_fail (list != NULL && interval != NULL, FALSE);

    return CALL_SLOT (get_instances, gboolean (FALSE), entry, interval, list);
}

int
tav_calendar_source_get_id (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), -1);

    return source->priv->id;
}

const char *
tav_calendar_source_get_title (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), nullptr);

    return source->priv->title.get ();
}

const char *
tav_calendar_source_get_alarm_tone (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), nullptr);

    return source->priv->alarm_tone.get ();
}

gboolean
tav_calendar_source_get_visible (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), FALSE);

    return source->priv->visible;
}

gboolean
tav_calendar_source_get_writable (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), FALSE);

    return !source->priv->read_only;
}

gboolean
tav_calendar_source_get_visible_and_writable (TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source), FALSE);

    return source->priv->visible && !source->priv->read_only;
}

gboolean
tav_calendar_source_is_equal (TavCalendarSource *source1, TavCalendarSource *source2)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source1), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE(source2), FALSE);

    if (source1 == source2)
        return TRUE;
    const TavCalendarSourcePrivate *a = source1->priv;
    const TavCalendarSourcePrivate *b = source2->priv;
    if (a->id != -1 && b->id != -1)
        return a->id == b->id;
    if (!a->title || !b->title)
        return FALSE;
    return g_utf8_collate (a->title.get (), b->title.get ()) == 0;
}

const char *
tav_calendar_source_type_to_string (TavCalendarSourceType type)
{
    switch (type) {
    case CalendarSourceTypeLocal:
    case CalendarSourceTypePrivate:
        return TAV_CAL ("cal_va_local");
    case CalendarSourceTypeSmart:
        return TAV_CAL ("cal_va_smart");
    case CalendarSourceTypeSync:
    case CalendarSourceTypeDefaultSync:
        return TAV_CAL ("cal_va_synchronized");
    }
    return nullptr;
}
