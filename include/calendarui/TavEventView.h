/* libcalendarui - the single-event view
 *
 * TavEventView shows one entry in full: its title, time span, calendar and
 * colour, location, repetition, alarm and description. It sits in a
 * pannable area of the calendar window's event window. A list of entries
 * given with tav_event_view_set_entry_list() lets the user step to the
 * previous and next one (the arrows at the foot of the view, the Left and
 * Right keys); "has-previous" and "has-next" say whether there is one.
 */
#ifndef TAV_EVENT_VIEW_H
#define TAV_EVENT_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavDate.h"
#include "TavCalendarEntry.h"

G_BEGIN_DECLS

#define TAV_TYPE_EVENT_VIEW            (tav_event_view_get_type ())
#define TAV_EVENT_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_EVENT_VIEW, TavEventView))
#define TAV_EVENT_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_EVENT_VIEW, TavEventViewClass))
#define TAV_IS_EVENT_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_EVENT_VIEW))
#define TAV_IS_EVENT_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_EVENT_VIEW))
#define TAV_EVENT_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_EVENT_VIEW, TavEventViewClass))

typedef struct _TavEventView        TavEventView;
typedef struct _TavEventViewClass   TavEventViewClass;
typedef struct _TavEventViewPrivate TavEventViewPrivate;

struct _TavEventView {
    GtkWidget parent;
    /*< private >*/
    TavEventViewPrivate *priv;
};

struct _TavEventViewClass {
    GtkWidgetClass parent_class;
};

TAV_API GType      tav_event_view_get_type                (void) G_GNUC_CONST;
TAV_API GtkWidget *tav_event_view_new                     (void);

/**
 * tav_event_view_set_entry:
 * @entry: (nullable): the entry to show (the view keeps a reference); NULL
 *   empties the view
 * @instance_date: (nullable): the day of the occurrence the user opened
 *   (a repeating event's instance); NULL means the entry's own start
 */
TAV_API void       tav_event_view_set_entry               (TavEventView *view, TavCalendarEntry *entry,
                                                           const TavDate *instance_date);
/* Returns: (transfer none) (nullable): the entry shown. */
TAV_API TavCalendarEntry *tav_event_view_get_entry        (TavEventView *view);
/* Re-reads @entry when it is the one shown; FALSE otherwise. */
TAV_API gboolean   tav_event_view_refresh_entry           (TavEventView *view, TavCalendarEntry *entry);
/* The start of the occurrence shown (its date and the entry's start time);
 * FALSE when the view is empty. */
TAV_API gboolean   tav_event_view_get_activated_timestamp (TavEventView *view, TavTimestamp *timestamp);

/**
 * tav_event_view_set_entry_list:
 * @entries: (element-type TavCalendarEntry) (transfer none) (nullable): the
 *   entries the previous/next steps go through, in the order to show them
 */
TAV_API void       tav_event_view_set_entry_list          (TavEventView *view, GList *entries);
/* Steps to the previous / next entry of the list; FALSE when there is none. */
TAV_API gboolean   tav_event_view_select_previous_entry   (TavEventView *view);
TAV_API gboolean   tav_event_view_select_next_entry       (TavEventView *view);

G_END_DECLS

#endif /* TAV_EVENT_VIEW_H */
