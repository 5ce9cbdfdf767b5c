/* libcalendarui - the base of the dated calendar views
 *
 * A TavCalendarView is fed with entries by its owner: between
 * tav_calendar_view_freeze() and tav_calendar_view_thaw() entries are queued,
 * and on thaw every entry is expanded into its instances inside the interval
 * the view presents. Concrete views implement the class's virtual functions.
 */
#ifndef TAV_CALENDAR_VIEW_H
#define TAV_CALENDAR_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavDate.h"
#include "TavCalendarProcessor.h"
#include "TavCalendarEntry.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_VIEW            (tav_calendar_view_get_type ())
#define TAV_CALENDAR_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_VIEW, TavCalendarView))
#define TAV_CALENDAR_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_VIEW, TavCalendarViewClass))
#define TAV_IS_CALENDAR_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_VIEW))
#define TAV_IS_CALENDAR_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_VIEW))
#define TAV_CALENDAR_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_VIEW, TavCalendarViewClass))

typedef struct _TavCalendarView        TavCalendarView;
typedef struct _TavCalendarViewClass   TavCalendarViewClass;
typedef struct _TavCalendarViewPrivate TavCalendarViewPrivate;

struct _TavCalendarView {
    GtkWidget parent;
    /*< private >*/
    TavCalendarViewPrivate *priv;
};

/**
 * TavCalendarViewClass:
 * @recalculate_entries: re-lays out everything after a batch of additions.
 * @clear_entries: drops every displayed entry.
 * @add_entry: accepts one entry; the default queues it while the view is
 *   frozen and otherwise expands it into its instances.
 * @add_entry_instance: places one instance of @entry starting at @instance_start.
 * @remove_entry: removes every instance of @entry.
 * @refresh_entry: @entry changed; update it.
 * @reading_started: a database read begins.
 * @reading_finished: a database read ended.
 * @get_next_prev_status_for_entry: whether entries are shown before and
 *   after @entry's instance on @instance_date.
 */
struct _TavCalendarViewClass {
    GtkWidgetClass parent_class;

    void     (*recalculate_entries)            (TavCalendarView *view);
    void     (*clear_entries)                  (TavCalendarView *view);
    gboolean (*add_entry)                      (TavCalendarView *view, TavCalendarEntry *entry);
    gboolean (*add_entry_instance)             (TavCalendarView *view, const TavTimestamp *instance_start,
                                                TavCalendarEntry *entry);
    gboolean (*remove_entry)                   (TavCalendarView *view, TavCalendarEntry *entry);
    gboolean (*refresh_entry)                  (TavCalendarView *view, TavCalendarEntry *entry);
    void     (*reading_started)                (TavCalendarView *view);
    void     (*reading_finished)               (TavCalendarView *view);
    gboolean (*get_next_prev_status_for_entry) (TavCalendarView *view, TavCalendarEntry *entry,
                                                const TavDate *instance_date, gboolean *has_prev,
                                                gboolean *has_next);
};

TAV_API GType                 tav_calendar_view_get_type                      (void) G_GNUC_CONST;

/**
 * tav_calendar_view_get_processor:
 * Returns: (transfer none): the view's calendar processor.
 */
TAV_API TavCalendarProcessor *tav_calendar_view_get_processor                 (TavCalendarView *view);
/**
 * tav_calendar_view_get_presented_interval:
 * @i_presented: (out): receives the interval the view shows.
 * Returns: FALSE when the view presents no interval (@i_presented untouched).
 */
TAV_API gboolean              tav_calendar_view_get_presented_interval        (TavCalendarView *view,
                                                                               TavDateInterval *i_presented);
/**
 * tav_calendar_view_set_subinterval:
 * @interval: (nullable): narrows instance expansion to @interval; NULL
 *   restores the presented interval.
 */
TAV_API void                  tav_calendar_view_set_subinterval               (TavCalendarView *view,
                                                                               const TavDateInterval *interval);
/* Emits "database-access-read": the owner reads and adds the entries. */
TAV_API void                  tav_calendar_view_read_database                 (TavCalendarView *view);
/**
 * tav_calendar_view_add_entry:
 * @entry: (transfer none): the view takes its own reference where it keeps it.
 * Returns: FALSE for entries of hidden calendars and hidden done tasks.
 */
TAV_API gboolean              tav_calendar_view_add_entry                     (TavCalendarView *view,
                                                                               TavCalendarEntry *entry);
/* @entries: (element-type TavCalendarEntry) (transfer none). */
TAV_API void                  tav_calendar_view_add_entries                   (TavCalendarView *view,
                                                                               GList *entries);
TAV_API gboolean              tav_calendar_view_remove_entry                  (TavCalendarView *view,
                                                                               TavCalendarEntry *entry);
TAV_API gboolean              tav_calendar_view_refresh_entry                 (TavCalendarView *view,
                                                                               TavCalendarEntry *entry);
/* Drops the queued entries of a frozen view as well as the shown ones. */
TAV_API void                  tav_calendar_view_clear_entries                 (TavCalendarView *view);
TAV_API void                  tav_calendar_view_recalculate_entries           (TavCalendarView *view);
TAV_API void                  tav_calendar_view_reading_started               (TavCalendarView *view);
TAV_API void                  tav_calendar_view_reading_finished              (TavCalendarView *view);
TAV_API gboolean              tav_calendar_view_get_next_prev_status_for_entry (TavCalendarView *view,
                                                                                TavCalendarEntry *entry,
                                                                                const TavDate *instance_date,
                                                                                gboolean *has_prev,
                                                                                gboolean *has_next);
/* Freezing nests; the last thaw expands the queued entries in arrival order
 * and recalculates the view. */
TAV_API void                  tav_calendar_view_freeze                        (TavCalendarView *view);
TAV_API void                  tav_calendar_view_thaw                          (TavCalendarView *view);
TAV_API gboolean              tav_calendar_view_is_frozen                     (TavCalendarView *view);

G_END_DECLS

#endif /* TAV_CALENDAR_VIEW_H */
