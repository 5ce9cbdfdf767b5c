/* libcalendarui - the week view
 *
 * Seven day columns over a vertically scrolling table of hours, with a bar
 * for the all-day entries inserted before a fixed hour. The view scrolls
 * through a GtkAdjustment (a pannable container drives it through the
 * widget's scroll-adjustments signal), marks the current time while its
 * window is in front and offers Edit and Delete on tap-and-hold.
 */
#ifndef TAV_WEEK_VIEW_H
#define TAV_WEEK_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarView.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_WEEK_VIEW            (tav_week_view_get_type ())
#define TAV_WEEK_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_WEEK_VIEW, TavWeekView))
#define TAV_WEEK_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_WEEK_VIEW, TavWeekViewClass))
#define TAV_IS_WEEK_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_WEEK_VIEW))
#define TAV_IS_WEEK_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_WEEK_VIEW))
#define TAV_WEEK_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_WEEK_VIEW, TavWeekViewClass))

typedef struct _TavWeekView        TavWeekView;
typedef struct _TavWeekViewClass   TavWeekViewClass;
typedef struct _TavWeekViewPrivate TavWeekViewPrivate;

struct _TavWeekView {
    TavCalendarView parent;
    /*< private >*/
    TavWeekViewPrivate *priv;
};

struct _TavWeekViewClass {
    TavCalendarViewClass parent_class;

    /* The widget's scroll-adjustments signal ("set_scroll_adjustments"). */
    void (*set_scroll_adjustments) (TavWeekView *week_view, GtkAdjustment *hadjustment,
                                    GtkAdjustment *vadjustment);
};

TAV_API GType      tav_week_view_get_type                       (void) G_GNUC_CONST;

/**
 * tav_week_view_new:
 *
 * Returns: (transfer floating): a new week view presenting the week of
 * today; it asks for its entries once it is given a week.
 */
TAV_API GtkWidget *tav_week_view_new                            (void);

/**
 * tav_week_view_set_presented_interval_thisweek:
 * @week_view: a week view
 *
 * Shows the week that holds today.
 */
TAV_API void       tav_week_view_set_presented_interval_thisweek (TavWeekView *week_view);

/**
 * tav_week_view_set_presented_interval_by_date:
 * @week_view: a week view
 * @date: a day of the week to show
 *
 * Shows the week that holds @date. An invalid @date is a critical; a date
 * outside the years 1970 to 2037 emits "year-limit-reached::0" instead.
 */
TAV_API void       tav_week_view_set_presented_interval_by_date (TavWeekView *week_view, const TavDate *date);

/**
 * tav_week_view_select_prev_week:
 * @week_view: a week view
 *
 * Shows the week before; emits "year-limit-reached::0" instead of leaving
 * the years 1970 to 2037.
 */
TAV_API void       tav_week_view_select_prev_week               (TavWeekView *week_view);
/**
 * tav_week_view_select_next_week:
 * @week_view: a week view
 *
 * Shows the week after; a week starting in 2038 is refused with
 * "year-limit-reached::0".
 */
TAV_API void       tav_week_view_select_next_week               (TavWeekView *week_view);

TAV_API int        tav_week_view_get_first_day_of_week          (TavWeekView *week_view);
/**
 * tav_week_view_set_first_day_of_week:
 * @week_view: a week view
 * @first_day_of_week: 0 (Sunday) to 6 (Saturday)
 *
 * Changes the first column's weekday; a shown week moves so that it starts
 * on that weekday.
 */
TAV_API void       tav_week_view_set_first_day_of_week          (TavWeekView *week_view, int first_day_of_week);

/**
 * tav_week_view_snap_to_time:
 * @week_view: a week view
 * @time: the time to bring to the top
 *
 * Scrolls the table so that @time is at its top, or as near as the table's
 * end allows.
 */
TAV_API void       tav_week_view_snap_to_time                   (TavWeekView *week_view, const TavTime *time);
TAV_API void       tav_week_view_snap_to_all_day_bar            (TavWeekView *week_view);
TAV_API void       tav_week_view_snap_to_current_time           (TavWeekView *week_view);

/**
 * tav_week_view_set_background_image_pixmap:
 * @week_view: a week view
 * @pixmap: (nullable): an image painted behind the table, or NULL for none
 */
TAV_API void       tav_week_view_set_background_image_pixmap    (TavWeekView *week_view, GdkPixmap *pixmap);
/**
 * tav_week_view_adjust_view_for_time_change:
 * @week_view: a week view
 *
 * The system clock or time zone changed: refreshes today's column and the
 * current-time marker.
 */
TAV_API void       tav_week_view_adjust_view_for_time_change    (TavWeekView *week_view);
TAV_API void       tav_week_view_remove_all_entries             (TavWeekView *week_view);

G_END_DECLS

#endif /* TAV_WEEK_VIEW_H */
