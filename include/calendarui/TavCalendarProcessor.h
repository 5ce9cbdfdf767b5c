/* libcalendarui - calendar arithmetic
 *
 * A TavCalendarProcessor does the library's date arithmetic: Julian day
 * numbers, weekdays, day of year, week numbers, month lengths and leap years,
 * and stepping a TavDate by days and months. Dates before the local switch
 * from the Julian to the Gregorian calendar (chosen from the environment when
 * the processor is created) are reckoned in the Julian calendar, and the days
 * dropped at the switch are skipped when stepping. The processor also holds
 * the user's first day of the week (0 = Sunday ... 6 = Saturday), which drives
 * week numbers and week intervals.
 */
#ifndef TAV_CALENDAR_PROCESSOR_H
#define TAV_CALENDAR_PROCESSOR_H

#include <glib-object.h>

#include "TavExport.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_PROCESSOR (tav_calendar_processor_get_type ())
#define TAV_CALENDAR_PROCESSOR(obj) \
    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_PROCESSOR, TavCalendarProcessor))
#define TAV_CALENDAR_PROCESSOR_CLASS(klass) \
    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_PROCESSOR, TavCalendarProcessorClass))
#define TAV_IS_CALENDAR_PROCESSOR(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_PROCESSOR))
#define TAV_IS_CALENDAR_PROCESSOR_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_PROCESSOR))
#define TAV_CALENDAR_PROCESSOR_GET_CLASS(obj) \
    (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_PROCESSOR, TavCalendarProcessorClass))

typedef struct _TavCalendarProcessor TavCalendarProcessor;
typedef struct _TavCalendarProcessorClass TavCalendarProcessorClass;
typedef struct _TavCalendarProcessorPrivate TavCalendarProcessorPrivate;

struct _TavCalendarProcessor {
    GObject parent_instance;
    /*< private >*/
    TavCalendarProcessorPrivate *priv;
};

struct _TavCalendarProcessorClass {
    GObjectClass parent_class;
};

TAV_API GType tav_calendar_processor_get_type (void) G_GNUC_CONST;

/**
 * tav_calendar_processor_new:
 *
 * Returns: (transfer full): a new processor; its calendar system is chosen
 * from CALENDAR_SYSTEM, LANGUAGE, LC_ALL, LC_MESSAGES or LANG (the first that
 * is set), Britain by default; the first day of the week is Sunday.
 */
TAV_API TavCalendarProcessor *tav_calendar_processor_new (void);

/* Sets the first day of the week (0 = Sunday ... 6 = Saturday); larger
 * values are refused with a critical. */
TAV_API void     tav_calendar_processor_set_first_day_of_week   (TavCalendarProcessor *processor,
                                                                  guint first_day_of_week);

/* TRUE when @date lies after the last day of the Julian calendar. */
TAV_API gboolean tav_calendar_processor_date_is_gregorian       (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
/* The Julian day number (1 January 2000 is 2451545); 0 for days before its epoch. */
TAV_API guint    tav_calendar_processor_date_to_julian_day_number (TavCalendarProcessor *processor,
                                                                    const TavDate *date);
/* 0 = Sunday ... 6 = Saturday. */
TAV_API int      tav_calendar_processor_date_to_day_of_week     (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
TAV_API gboolean tav_calendar_processor_is_first_day_of_week    (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
TAV_API gboolean tav_calendar_processor_is_last_day_of_week     (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
/* TRUE from Monday to Friday, whatever the first day of the week. */
TAV_API gboolean tav_calendar_processor_is_date_weekday         (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
/* Week 1-53: week 1 holds 1 January when 1 January falls in the first four
 * days of the week (the ISO 8601 rule when weeks start on Monday). */
TAV_API int      tav_calendar_processor_date_to_week_number     (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
TAV_API gboolean tav_calendar_processor_is_leap_year            (TavCalendarProcessor *processor,
                                                                  int year);
/* 1-366; -1 for a month outside 0..11. */
TAV_API int      tav_calendar_processor_date_to_day_of_year     (TavCalendarProcessor *processor,
                                                                  const TavDate *date);
/* 28-31; -1 for a month above 11. */
TAV_API int      tav_calendar_processor_month_length            (TavCalendarProcessor *processor,
                                                                  int year, guint month);

/* One day forward or back, skipping the days dropped by the calendar reform. */
TAV_API void     tav_calendar_processor_inc_date                (TavCalendarProcessor *processor,
                                                                  TavDate *date);
TAV_API void     tav_calendar_processor_dec_date                (TavCalendarProcessor *processor,
                                                                  TavDate *date);
/* @ndays one-day steps, computed in constant time. */
TAV_API void     tav_calendar_processor_inc_date_by_days        (TavCalendarProcessor *processor,
                                                                  TavDate *date, int ndays);
TAV_API void     tav_calendar_processor_dec_date_by_days        (TavCalendarProcessor *processor,
                                                                  TavDate *date, int ndays);
/* Next month of the same year whose length holds the day; the modulus is 11,
 * so November goes to January and December to February of the same year. */
TAV_API void     tav_calendar_processor_inc_month               (TavCalendarProcessor *processor,
                                                                  TavDate *date);
/* @count months forward, never beyond December 2037; the day is clamped to
 * the new month's length. */
TAV_API void     tav_calendar_processor_inc_month_by_count      (TavCalendarProcessor *processor,
                                                                  TavDate *date, int count);
/**
 * tav_calendar_processor_get_date_interval_in_days:
 *
 * Returns: the number of one-day steps from @from to a later @to; 0 when the
 * dates are equal; for an earlier @to the (negative) difference of the first
 * field that differs, as tav_date_compare() gives it, not a day count.
 */
TAV_API int      tav_calendar_processor_get_date_interval_in_days (TavCalendarProcessor *processor,
                                                                    TavDate from, TavDate to);
/**
 * tav_calendar_processor_get_week:
 * @result: (out) (optional): the first and last day of the week
 *
 * Returns: TRUE when @year has a week numbered @week.
 */
TAV_API gboolean tav_calendar_processor_get_week                (TavCalendarProcessor *processor,
                                                                  int year, guint week,
                                                                  TavDateInterval *result);
/* The week that holds today. */
TAV_API void     tav_calendar_processor_get_this_week           (TavCalendarProcessor *processor,
                                                                  TavDateInterval *interval);
/* The next Monday-to-Friday day after @date. */
TAV_API void     tav_calendar_processor_next_weekday            (TavCalendarProcessor *processor,
                                                                  TavDate *date);

G_END_DECLS

#endif /* TAV_CALENDAR_PROCESSOR_H */
