/* libcalendarui - the day view
 *
 * One day as a scrolling list: the day's header, its events, tasks and
 * birthdays, the insert button, or a line saying there are no events. The
 * agenda view's sibling: the same rows, taps, held-finger menu and
 * signals, plus "key-pressed" for the keys it does not use itself.
 */
#ifndef TAV_DAY_VIEW_H
#define TAV_DAY_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarView.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_DAY_VIEW            (tav_day_view_get_type ())
#define TAV_DAY_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_DAY_VIEW, TavDayView))
#define TAV_DAY_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_DAY_VIEW, TavDayViewClass))
#define TAV_IS_DAY_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_DAY_VIEW))
#define TAV_IS_DAY_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_DAY_VIEW))
#define TAV_DAY_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_DAY_VIEW, TavDayViewClass))

typedef struct _TavDayView        TavDayView;
typedef struct _TavDayViewClass   TavDayViewClass;
typedef struct _TavDayViewPrivate TavDayViewPrivate;

struct _TavDayView {
    TavCalendarView parent;
    /*< private >*/
    TavDayViewPrivate *priv;
};

struct _TavDayViewClass {
    TavCalendarViewClass parent_class;

    void (*set_scroll_adjustments) (TavDayView *day_view, GtkAdjustment *hadjustment, GtkAdjustment *vadjustment);
};

TAV_API GType      tav_day_view_get_type                      (void) G_GNUC_CONST;

/* Returns: (transfer floating): a new day view; it shows nothing until a
 * day is set. */
TAV_API GtkWidget *tav_day_view_new                           (void);
/**
 * tav_day_view_set_presented_interval_by_date:
 * @day_view: a day view
 * @date: the day to show; outside 1970 to 2037 the view emits
 *   "year-limit-reached::0" and keeps its day.
 */
TAV_API void       tav_day_view_set_presented_interval_by_date (TavDayView *day_view, const TavDate *date);
TAV_API void       tav_day_view_set_presented_interval_today  (TavDayView *day_view);
/* The day after and the day before (with the year limit as above). */
TAV_API void       tav_day_view_select_next_day               (TavDayView *day_view);
TAV_API void       tav_day_view_select_previous_day           (TavDayView *day_view);
TAV_API void       tav_day_view_jump_to_date                  (TavDayView *day_view, const TavDate *date);
/* Adds the insert button labelled @title for @date. */
TAV_API void       tav_day_view_append_insert_button          (TavDayView *day_view, const char *title,
                                                               const TavDate *date);
/* @pixmap: (nullable): an image painted behind the list. */
TAV_API void       tav_day_view_set_background_image_pixmap   (TavDayView *day_view, GdkPixmap *pixmap);

G_END_DECLS

#endif /* TAV_DAY_VIEW_H */
