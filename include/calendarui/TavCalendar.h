/* libcalendarui - the month view
 *
 * TavCalendar shows one month as 6 rows of 7 day cells, with the week numbers
 * beside the rows and the weekday names above the columns. A tap on a day of
 * the shown month emits "day-activated", a tap on a week number
 * "week-activated"; a swipe pages to the next or previous month. The years
 * 1970 to 2037 can be shown; leaving them emits "year-limit-reached::0".
 * The month view does not implement refresh_entry (the call only warns):
 * remove a changed entry and add it again. clear_entries empties every cell.
 */
#ifndef TAV_CALENDAR_H
#define TAV_CALENDAR_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarView.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR            (tav_calendar_get_type ())
#define TAV_CALENDAR(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR, TavCalendar))
#define TAV_CALENDAR_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR, TavCalendarClass))
#define TAV_IS_CALENDAR(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR))
#define TAV_IS_CALENDAR_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR))
#define TAV_CALENDAR_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR, TavCalendarClass))

typedef struct _TavCalendar        TavCalendar;
typedef struct _TavCalendarClass   TavCalendarClass;
typedef struct _TavCalendarPrivate TavCalendarPrivate;

struct _TavCalendar {
    TavCalendarView parent;
    /*< private >*/
    TavCalendarPrivate *priv;
};

struct _TavCalendarClass {
    TavCalendarViewClass parent_class;
};

TAV_API GType      tav_calendar_get_type                     (void) G_GNUC_CONST;
TAV_API GtkWidget *tav_calendar_new                          (void);

/**
 * tav_calendar_select_month:
 * @month: 0 (January) to 11
 * @year: 1970 to 2037; other years emit "year-limit-reached::0" instead
 * Returns: FALSE while navigation is locked, TRUE otherwise.
 */
TAV_API gboolean   tav_calendar_select_month                 (TavCalendar *calendar, int month, int year);
TAV_API void       tav_calendar_select_prev_month            (TavCalendar *calendar);
TAV_API void       tav_calendar_select_next_month            (TavCalendar *calendar);
TAV_API void       tav_calendar_select_current_month         (TavCalendar *calendar);
/* @first_day_of_week: 0 (Sunday) to 6; the grid is rebuilt. */
TAV_API void       tav_calendar_set_first_day_of_week        (TavCalendar *calendar, int first_day_of_week);
TAV_API int        tav_calendar_get_first_day_of_week        (TavCalendar *calendar);
/* @interval: (out): the dates of the first and the last cell of the grid. */
TAV_API void       tav_calendar_get_interval                 (TavCalendar *calendar, TavDateInterval *interval);
/* @pixmap: (nullable) (transfer none): painted behind the grid instead of
 * the theme's background. */
TAV_API void       tav_calendar_set_background_image_pixmap  (TavCalendar *calendar, GdkPixmap *pixmap);
/* The date changed (midnight, clock or time zone): repaints today's mark. */
TAV_API void       tav_calendar_adjust_view_for_time_change  (TavCalendar *calendar);

/**
 * tav_calendar_get_entries_for_day:
 * Returns: (transfer full) (element-type TavCalendarEntry): the entries of
 *   @date's cell, each with a reference of its own; NULL when @date is not
 *   shown.
 */
TAV_API GList     *tav_calendar_get_entries_for_day          (TavCalendar *calendar, const TavDate *date);
/* As above, for the row whose week number is @week_number. */
TAV_API GList     *tav_calendar_get_entries_for_week         (TavCalendar *calendar, int week_number);
/* As above, for every cell of the shown month. */
TAV_API GList     *tav_calendar_get_entries_for_active_month (TavCalendar *calendar);

G_END_DECLS

#endif /* TAV_CALENDAR_H */
