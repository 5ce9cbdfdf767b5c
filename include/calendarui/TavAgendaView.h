/* libcalendarui - the agenda view
 *
 * A month of days around a chosen date as one scrolling list: a header per
 * date, that day's events, tasks and birthdays, an insert button ("+") for
 * the chosen date and a line saying there are no events. A tap opens a row
 * ("entry-activated") or asks for a new event ("insert-activated"); a held
 * finger offers Edit and Delete. The view scrolls through the vertical
 * GtkAdjustment its container (a pannable area) gives it.
 */
#ifndef TAV_AGENDA_VIEW_H
#define TAV_AGENDA_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarView.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_AGENDA_VIEW            (tav_agenda_view_get_type ())
#define TAV_AGENDA_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_AGENDA_VIEW, TavAgendaView))
#define TAV_AGENDA_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_AGENDA_VIEW, TavAgendaViewClass))
#define TAV_IS_AGENDA_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_AGENDA_VIEW))
#define TAV_IS_AGENDA_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_AGENDA_VIEW))
#define TAV_AGENDA_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_AGENDA_VIEW, TavAgendaViewClass))

typedef struct _TavAgendaView        TavAgendaView;
typedef struct _TavAgendaViewClass   TavAgendaViewClass;
typedef struct _TavAgendaViewPrivate TavAgendaViewPrivate;

struct _TavAgendaView {
    TavCalendarView parent;
    /*< private >*/
    TavAgendaViewPrivate *priv;
};

struct _TavAgendaViewClass {
    TavCalendarViewClass parent_class;

    /* The widget's scroll-adjustments signal ("set_scroll_adjustments"). */
    void (*set_scroll_adjustments) (TavAgendaView *agenda_view, GtkAdjustment *hadjustment,
                                    GtkAdjustment *vadjustment);
};

TAV_API GType      tav_agenda_view_get_type                     (void) G_GNUC_CONST;

/**
 * tav_agenda_view_new:
 *
 * Returns: (transfer floating): a new agenda view; it shows nothing until
 * an interval is set.
 */
TAV_API GtkWidget *tav_agenda_view_new                          (void);

/**
 * tav_agenda_view_set_presented_interval_by_date:
 * @agenda_view: an agenda view
 * @date: the chosen date
 *
 * Shows the 31 days from @date - 15 to @date + 15, asks the owner to read
 * them ("database-access-read") and scrolls to @date.
 */
TAV_API void       tav_agenda_view_set_presented_interval_by_date (TavAgendaView *agenda_view, const TavDate *date);
/* The same around today. */
TAV_API void       tav_agenda_view_set_presented_interval_today (TavAgendaView *agenda_view);
/**
 * tav_agenda_view_jump_to_date:
 * @agenda_view: an agenda view
 * @date: a shown date
 *
 * Scrolls so that @date's rows start at the top (its header stays pinned
 * there). The jump is repeated after the list is rebuilt until the user
 * touches the list or tav_agenda_view_fix_scrolling() is called.
 */
TAV_API void       tav_agenda_view_jump_to_date                 (TavAgendaView *agenda_view, const TavDate *date);
/**
 * tav_agenda_view_get_visible_date:
 * @agenda_view: an agenda view
 * @date: (out): the date of the topmost visible row
 *
 * Returns: FALSE when no row is visible (@date untouched).
 */
TAV_API gboolean   tav_agenda_view_get_visible_date             (TavAgendaView *agenda_view, TavDate *date);
/* Cancels a pending jump. */
TAV_API void       tav_agenda_view_fix_scrolling                (TavAgendaView *agenda_view);
/**
 * tav_agenda_view_set_background_image_pixmap:
 * @pixmap: (nullable): an image painted behind the list, or NULL for none
 */
TAV_API void       tav_agenda_view_set_background_image_pixmap  (TavAgendaView *agenda_view, GdkPixmap *pixmap);

/* The grouping operations the view uses while it fills its list. */
TAV_API void       tav_agenda_view_append_header                (TavAgendaView *agenda_view, const char *title,
                                                                 const TavDate *date);
/* Adds the insert button labelled @title for @date, with its date header. */
TAV_API void       tav_agenda_view_append_insert_button         (TavAgendaView *agenda_view, const char *title,
                                                                 const TavDate *date);
/* Adds the no-events line when no entry is shown, removes it otherwise. */
TAV_API void       tav_agenda_view_check_and_ensure_no_entries_label (TavAgendaView *agenda_view, const char *title);
TAV_API void       tav_agenda_view_append_no_entries_label      (TavAgendaView *agenda_view, const char *title);

G_END_DECLS

#endif /* TAV_AGENDA_VIEW_H */
