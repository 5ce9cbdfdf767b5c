/* A calendar source kept in memory, for tests.
 *
 * Implements all eighteen data slots over a list of entries, tasks and
 * notes, expands repeating events daily, on workdays, weekly, monthly or
 * yearly for get_instances, and can be told to make any slot fail with a
 * chosen code. Every slot call is counted.
 *
 * Typical use in a view test:
 *
 *     TavMemorySource *cal = tav_memory_source_new ("Work", TavCalendarColorGreen,
 *                                                   CalendarSourceTypeLocal);
 *     TavCalendarEntry *e = tav_memory_source_add_event (cal, "Meeting",
 *                                                        &start, &end);
 *     GList *touching = tav_memory_source_list_events (cal, &interval);
 *     ...
 *     g_list_free_full (touching, g_object_unref);
 *     tav_memory_source_destroy (cal);
 *
 * Stored entries hold their source (their "source" property) and the source
 * holds them, so a plain g_object_unref() of the source leaks both: end a
 * memory source with tav_memory_source_destroy(), or in C++ hold it in a
 * tav::test::MemorySourcePtr.
 */
#ifndef TAV_MEMORY_SOURCE_H
#define TAV_MEMORY_SOURCE_H

#include <calendarui.h>

G_BEGIN_DECLS

#define TAV_TYPE_MEMORY_SOURCE    (tav_memory_source_get_type ())
#define TAV_MEMORY_SOURCE(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_MEMORY_SOURCE, TavMemorySource))
#define TAV_IS_MEMORY_SOURCE(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_MEMORY_SOURCE))

typedef struct _TavMemorySource        TavMemorySource;
typedef struct _TavMemorySourceClass   TavMemorySourceClass;
typedef struct _TavMemorySourcePrivate TavMemorySourcePrivate;

struct _TavMemorySource {
    TavCalendarSource parent;
    TavMemorySourcePrivate *priv;
};

struct _TavMemorySourceClass {
    TavCalendarSourceClass parent_class;
};

/* The data slots, in class order. */
typedef enum {
    TAV_MEMORY_SLOT_CREATE,
    TAV_MEMORY_SLOT_SAVE,
    TAV_MEMORY_SLOT_REMOVE,
    TAV_MEMORY_SLOT_REMOVE_CONTENTS,
    TAV_MEMORY_SLOT_EXISTS,
    TAV_MEMORY_SLOT_EXPORT_CALENDAR,
    TAV_MEMORY_SLOT_EVENT_COUNT,
    TAV_MEMORY_SLOT_ENTRY_COUNT,
    TAV_MEMORY_SLOT_CREATE_ENTRY,
    TAV_MEMORY_SLOT_SAVE_ENTRY,
    TAV_MEMORY_SLOT_DELETE_ENTRY,
    TAV_MEMORY_SLOT_CREATE_TASK,
    TAV_MEMORY_SLOT_SAVE_TASK,
    TAV_MEMORY_SLOT_DELETE_TASK,
    TAV_MEMORY_SLOT_CREATE_NOTE,
    TAV_MEMORY_SLOT_SAVE_NOTE,
    TAV_MEMORY_SLOT_DELETE_NOTE,
    TAV_MEMORY_SLOT_GET_INSTANCES,
    TAV_MEMORY_N_SLOTS
} TavMemorySlot;

GType tav_memory_source_get_type (void) G_GNUC_CONST;

/* The slot's name as the library's warnings spell it ("create_entry"). */
const char *tav_memory_slot_name (TavMemorySlot slot);

/* A new, existing (exists_by_name answers TRUE) and empty source. */
TavMemorySource *tav_memory_source_new (const char *title, TavCalendarColor color, TavCalendarSourceType type);

/* Empties the store (breaking the entry-source cycle) and drops the
 * caller's reference. */
void tav_memory_source_destroy (TavMemorySource *source);

/* Stores @entry (an event, task or note) without calling any slot: the
 * source keeps a reference, stamps "source" and "color", and gives it an ID
 * ("mem-N") when it has none. Adding an object twice keeps one copy. */
void tav_memory_source_add (TavMemorySource *source, TavCalendarEntry *entry);
/* Removes @entry (matched by object or by ID); FALSE when not stored. */
gboolean tav_memory_source_remove (TavMemorySource *source, TavCalendarEntry *entry);
/* Creates, stores and returns (transfer none) a timed event. */
TavCalendarEntry *tav_memory_source_add_event (TavMemorySource *source, const char *title,
                                               const TavTimestamp *start, const TavTimestamp *end);
/* Number of stored objects of every kind. */
guint tav_memory_source_size (TavMemorySource *source);

/* Stored events (neither tasks nor notes) with at least one occurrence
 * touching @interval (all events when NULL), in storage order. Transfer
 * full: free with g_list_free_full (list, g_object_unref). */
GList *tav_memory_source_list_events (TavMemorySource *source, const TavDateInterval *interval);
GList *tav_memory_source_list_tasks (TavMemorySource *source);
GList *tav_memory_source_list_notes (TavMemorySource *source);

/* The starts of @entry's occurrences touching @interval as a new list of
 * TavTimestamp (free with tav_timestamp_free), the expansion get_instances
 * uses. Repetition runs up to "end-repetition-date" when that lies after
 * the end date, otherwise without end (an entry reads its end date there
 * until one is set). */
GList *tav_memory_source_expand (TavCalendarEntry *entry, const TavDateInterval *interval);

/* From now on @slot fails: status slots return @code, count slots -1 and the
 * boolean slots FALSE, without touching the store. */
void tav_memory_source_fail (TavMemorySource *source, TavMemorySlot slot, CalendarUiErrorCode code);
/* Lets @slot work again. */
void tav_memory_source_heal (TavMemorySource *source, TavMemorySlot slot);
/* How often @slot was called since creation. */
guint tav_memory_source_calls (TavMemorySource *source, TavMemorySlot slot);

G_END_DECLS

#ifdef __cplusplus
#include <memory>
namespace tav::test {
struct MemorySourceDestroy {
    void operator() (TavMemorySource *source) const { if (source) tav_memory_source_destroy (source); }
};
/* Owns one memory source and destroys it at the end of the scope. */
using MemorySourcePtr = std::unique_ptr<TavMemorySource, MemorySourceDestroy>;
} // namespace tav::test
#endif

#endif /* TAV_MEMORY_SOURCE_H */
