/* libcalendarui - calendar entry: one event as the user interface sees it
 *
 * An entry is a bag of properties (times, texts, colour, alarm and repeat
 * codes, the calendar source it is stored on) plus a cache of its
 * occurrences ("instances") inside one date interval. The occurrences are
 * computed by the entry's source; the entry only keeps and iterates them.
 */
#ifndef TAV_CALENDAR_ENTRY_H
#define TAV_CALENDAR_ENTRY_H

#include <glib-object.h>

#include "TavExport.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_ENTRY            (tav_calendar_entry_get_type ())
#define TAV_CALENDAR_ENTRY(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_ENTRY, TavCalendarEntry))
#define TAV_CALENDAR_ENTRY_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_ENTRY, TavCalendarEntryClass))
#define TAV_IS_CALENDAR_ENTRY(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_ENTRY))
#define TAV_IS_CALENDAR_ENTRY_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_ENTRY))
#define TAV_CALENDAR_ENTRY_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_ENTRY, TavCalendarEntryClass))

typedef struct _TavCalendarEntry        TavCalendarEntry;
typedef struct _TavCalendarEntryClass   TavCalendarEntryClass;
typedef struct _TavCalendarEntryPrivate TavCalendarEntryPrivate;

struct _TavCalendarEntry {
    GObject parent;

    /*< private >*/
    TavCalendarEntryPrivate *priv;
};

struct _TavCalendarEntryClass {
    GObjectClass parent_class;

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType tav_calendar_entry_get_type (void) G_GNUC_CONST;

/**
 * tav_calendar_entry_new:
 *
 * Returns: (transfer full): a new entry whose start and end are the moment
 * of creation in local time.
 */
TAV_API TavCalendarEntry *tav_calendar_entry_new (void);

/**
 * tav_calendar_entry_get_title:
 *
 * Returns: (transfer none) (nullable): the title, owned by the entry;
 * "(NotAnEntry)" when @entry is not an entry.
 */
TAV_API const char *tav_calendar_entry_get_title        (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_get_created_time:
 *
 * Returns: the creation time in seconds since the epoch.
 */
TAV_API time_t      tav_calendar_entry_get_created_time (TavCalendarEntry *entry);
TAV_API gboolean    tav_calendar_entry_is_all_day       (TavCalendarEntry *entry);
TAV_API gboolean    tav_calendar_entry_has_rrule        (TavCalendarEntry *entry);
TAV_API void        tav_calendar_entry_set_has_rrule    (TavCalendarEntry *entry, gboolean has_rrule);
/**
 * tav_calendar_entry_has_bday:
 *
 * Returns: whether a birthday is attached; FALSE for NULL.
 */
TAV_API gboolean    tav_calendar_entry_has_bday         (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_is_multi_days:
 *
 * Returns: TRUE when start and end fall on different dates.
 */
TAV_API gboolean    tav_calendar_entry_is_multi_days    (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_is_visible:
 *
 * Returns: the "visible" property of the entry's source; TRUE without a source.
 */
TAV_API gboolean    tav_calendar_entry_is_visible       (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_is_read_only:
 *
 * Returns: the "read-only" property of the entry's source; FALSE without a
 * source, TRUE when @entry is not an entry.
 */
TAV_API gboolean    tav_calendar_entry_is_read_only     (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_is_equal:
 *
 * Two entries are equal when they are the same object, or when both are of
 * the same class, both have a source and their IDs ("num-id") are equal
 * ignoring ASCII case. Entries without an ID are equal only to themselves.
 */
TAV_API gboolean    tav_calendar_entry_is_equal         (TavCalendarEntry *entry1, TavCalendarEntry *entry2);
/**
 * tav_calendar_entry_compare_start_time:
 *
 * Compares the start times of day only (hour, then minute); the dates are
 * not looked at.
 *
 * Returns: negative, 0 or positive like strcmp().
 */
TAV_API int         tav_calendar_entry_compare_start_time (TavCalendarEntry *entry1, TavCalendarEntry *entry2);

/**
 * tav_calendar_entry_get_first_instance_timestamp:
 * @interval: the dates to enumerate, both inclusive
 *
 * Starts an iteration over the entry's occurrences touching @interval. A
 * cached list for the same interval is reused; otherwise the entry's source
 * is asked through tav_calendar_source_get_instances().
 *
 * Returns: (transfer none) (nullable): the start of the first occurrence,
 * owned by the entry, or NULL when there is none.
 */
TAV_API const TavTimestamp *tav_calendar_entry_get_first_instance_timestamp (TavCalendarEntry *entry,
                                                                             const TavDateInterval *interval);
/**
 * tav_calendar_entry_get_next_instance_timestamp:
 *
 * Returns: (transfer none) (nullable): the start of the next occurrence, or
 * NULL at the end or when no iteration has begun.
 */
TAV_API const TavTimestamp *tav_calendar_entry_get_next_instance_timestamp  (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_set_instances:
 * @interval: the interval the list was computed for
 * @instances: (transfer full) (element-type TavTimestamp): the occurrence starts
 *
 * Replaces the cached occurrences. The entry takes the list and its
 * elements (slice-allocated TavTimestamp, as tav_timestamp_copy() makes
 * them) and keeps a copy of @interval.
 */
TAV_API void tav_calendar_entry_set_instances   (TavCalendarEntry *entry,
                                                 const TavDateInterval *interval,
                                                 GList *instances);
/**
 * tav_calandar_entry_drop_instances:
 *
 * Frees the cached occurrences and their interval and ends any iteration.
 */
TAV_API void tav_calandar_entry_drop_instances  (TavCalendarEntry *entry);
/**
 * tav_calendar_entry_debug_print:
 *
 * Prints title, texts, start and end to standard output.
 */
TAV_API void tav_calendar_entry_debug_print     (TavCalendarEntry *entry);

G_END_DECLS

#endif /* TAV_CALENDAR_ENTRY_H */
