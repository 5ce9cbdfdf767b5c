/* libcalendarui - calendar source: one calendar and its data operations
 *
 * The library stores nothing itself. A host derives from TavCalendarSource
 * and fills the eighteen virtual slots of TavCalendarSourceClass over its
 * own storage; the library calls them only through the wrappers below, which
 * check their arguments, report an empty slot and return a neutral default.
 *
 * Status results are CalendarUiErrorCode values returned as int:
 * CalendarNoError (11) is success, CalendarDefaultError (4) the default
 * failure.
 */
#ifndef TAV_CALENDAR_SOURCE_H
#define TAV_CALENDAR_SOURCE_H

#include <glib-object.h>

#include "TavExport.h"
#include "TavDate.h"
#include "TavCalendarEnums.h"
#include "TavCalendarEntry.h"
#include "TavCalendarTask.h"
#include "TavCalendarNote.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_SOURCE            (tav_calendar_source_get_type ())
#define TAV_CALENDAR_SOURCE(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_SOURCE, TavCalendarSource))
#define TAV_CALENDAR_SOURCE_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_SOURCE, TavCalendarSourceClass))
#define TAV_IS_CALENDAR_SOURCE(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_SOURCE))
#define TAV_IS_CALENDAR_SOURCE_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_SOURCE))
#define TAV_CALENDAR_SOURCE_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_SOURCE, TavCalendarSourceClass))

typedef struct _TavCalendarSource        TavCalendarSource;
typedef struct _TavCalendarSourceClass   TavCalendarSourceClass;
typedef struct _TavCalendarSourcePrivate TavCalendarSourcePrivate;

struct _TavCalendarSource {
    GObject parent;

    /*< private >*/
    TavCalendarSourcePrivate *priv;
};

/**
 * TavCalendarSourceClass:
 *
 * The data operations, in this order. Every slot takes the source first.
 * An empty (NULL) slot makes its wrapper log "The '<slot>' method is not
 * implemented." and return the default.
 *
 * @get_instances fills *@list with the starts of the entry's occurrences
 * touching @interval (a GList of slice-allocated TavTimestamp). The usual
 * way is to hand the list to the entry with tav_calendar_entry_set_instances()
 * and point *@list at that same list; a list returned only through *@list
 * is taken over by the entry too.
 */
struct _TavCalendarSourceClass {
    GObjectClass parent_class;

    int      (*create)          (TavCalendarSource *source);
    int      (*save)            (TavCalendarSource *source);
    int      (*remove)          (TavCalendarSource *source);
    int      (*remove_contents) (TavCalendarSource *source);
    gboolean (*exists)          (TavCalendarSource *source);
    int      (*export_calendar) (TavCalendarSource *source, gpointer target);
    int      (*event_count)     (TavCalendarSource *source);
    int      (*entry_count)     (TavCalendarSource *source);
    int      (*create_entry)    (TavCalendarSource *source, TavCalendarEntry *entry);
    int      (*save_entry)      (TavCalendarSource *source, TavCalendarEntry *entry);
    int      (*delete_entry)    (TavCalendarSource *source, TavCalendarEntry *entry);
    int      (*create_task)     (TavCalendarSource *source, TavCalendarEntry *task);
    int      (*save_task)       (TavCalendarSource *source, TavCalendarEntry *task);
    int      (*delete_task)     (TavCalendarSource *source, TavCalendarEntry *task);
    int      (*create_note)     (TavCalendarSource *source, TavCalendarEntry *note);
    int      (*save_note)       (TavCalendarSource *source, TavCalendarEntry *note);
    int      (*delete_note)     (TavCalendarSource *source, TavCalendarEntry *note);
    gboolean (*get_instances)   (TavCalendarSource *source,
                                 TavCalendarEntry *entry,
                                 const TavDateInterval *interval,
                                 GList **list);

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType tav_calendar_source_get_type (void) G_GNUC_CONST;

/**
 * tav_calendar_source_new:
 *
 * Returns: (transfer full): a plain source with every slot empty.
 */
TAV_API TavCalendarSource *tav_calendar_source_new (void);

/* Data operations. Status wrappers return CalendarDefaultError (4) on a bad
 * argument or an empty slot, the counts -1, the boolean ones FALSE. */
TAV_API int      tav_calendar_source_create          (TavCalendarSource *source);
TAV_API int      tav_calendar_source_save            (TavCalendarSource *source);
TAV_API int      tav_calendar_source_remove          (TavCalendarSource *source);
TAV_API int      tav_calendar_source_remove_contents (TavCalendarSource *source);
TAV_API gboolean tav_calendar_source_exists_by_name  (TavCalendarSource *source);
/**
 * tav_calendar_source_export_calendar:
 * @target: (nullable): the export target, passed unchanged to the slot
 */
TAV_API int      tav_calendar_source_export_calendar (TavCalendarSource *source, gpointer target);
TAV_API int      tav_calendar_source_get_event_count (TavCalendarSource *source);
TAV_API int      tav_calendar_source_get_entry_count (TavCalendarSource *source);
/**
 * tav_calendar_source_create_entry:
 *
 * Stores a new event. Whatever the result, @entry then carries this source
 * in "source" and the source's colour in "color".
 */
TAV_API int      tav_calendar_source_create_entry    (TavCalendarSource *source, TavCalendarEntry *entry);
TAV_API int      tav_calendar_source_save_entry      (TavCalendarSource *source, TavCalendarEntry *entry);
TAV_API int      tav_calendar_source_delete_entry    (TavCalendarSource *source, TavCalendarEntry *entry);
/** tav_calendar_source_create_task: stamps source and colour like create_entry. */
TAV_API int      tav_calendar_source_create_task     (TavCalendarSource *source, TavCalendarTask *task);
TAV_API int      tav_calendar_source_save_task       (TavCalendarSource *source, TavCalendarTask *task);
TAV_API int      tav_calendar_source_delete_task     (TavCalendarSource *source, TavCalendarTask *task);
/** tav_calendar_source_create_note: stamps source and colour like create_entry. */
TAV_API int      tav_calendar_source_create_note     (TavCalendarSource *source, TavCalendarNote *note);
TAV_API int      tav_calendar_source_save_note       (TavCalendarSource *source, TavCalendarNote *note);
TAV_API int      tav_calendar_source_delete_note     (TavCalendarSource *source, TavCalendarNote *note);
/**
 * tav_calendar_source_get_instances:
 * @list: (out) (transfer none) (element-type TavTimestamp): receives the list
 *
 * Returns: the slot's result; FALSE on a bad argument or an empty slot.
 */
TAV_API gboolean tav_calendar_source_get_instances   (TavCalendarSource *source,
                                                      TavCalendarEntry *entry,
                                                      const TavDateInterval *interval,
                                                      GList **list);

/* Accessors. Strings are owned by the source. */
TAV_API int         tav_calendar_source_get_id                  (TavCalendarSource *source);
TAV_API const char *tav_calendar_source_get_title               (TavCalendarSource *source);
TAV_API const char *tav_calendar_source_get_alarm_tone          (TavCalendarSource *source);
TAV_API gboolean    tav_calendar_source_get_visible             (TavCalendarSource *source);
TAV_API gboolean    tav_calendar_source_get_writable            (TavCalendarSource *source);
TAV_API gboolean    tav_calendar_source_get_visible_and_writable (TavCalendarSource *source);

/**
 * tav_calendar_source_is_equal:
 *
 * Sources are equal when they are the same object; when both have an ID
 * (not -1), when the IDs are equal; otherwise when both titles are set and
 * collate equal.
 */
TAV_API gboolean    tav_calendar_source_is_equal                (TavCalendarSource *source1, TavCalendarSource *source2);

/**
 * tav_calendar_source_type_to_string:
 *
 * Returns: (transfer none) (nullable): the translated name of the type, NULL
 * for a value outside the enumeration.
 */
TAV_API const char *tav_calendar_source_type_to_string (TavCalendarSourceType type);

G_END_DECLS

#endif /* TAV_CALENDAR_SOURCE_H */
