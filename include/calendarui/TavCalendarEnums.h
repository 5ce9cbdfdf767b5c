/* libcalendarui - enumerations shared by the model and the user interface
 *
 * Calendar colours, alarm and repeat codes, calendar source types and sync
 * types, date formats and calendar reforms, each registered as a GLib enum
 * type (see TavEnumTypes.h) so that it can be an object property type.
 */
#ifndef TAV_CALENDAR_ENUMS_H
#define TAV_CALENDAR_ENUMS_H

#include <glib-object.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include "TavExport.h"

G_BEGIN_DECLS

typedef enum {
    TavCalendarColorDarkBlue = 0,  /*< nick=darkblue >*/
    TavCalendarColorDarkGreen = 1, /*< nick=darkgreen >*/
    TavCalendarColorDarkRed = 2,   /*< nick=darkred >*/
    TavCalendarColorOrange = 3,    /*< nick=orange >*/
    TavCalendarColorViolet = 4,    /*< nick=violet >*/
    TavCalendarColorYellow = 5,    /*< nick=yellow >*/
    TavCalendarColorWhite = 6,     /*< nick=white >*/
    TavCalendarColorBlue = 7,      /*< nick=blue >*/
    TavCalendarColorRed = 8,       /*< nick=red >*/
    TavCalendarColorGreen = 9      /*< nick=green >*/
} TavCalendarColor;

typedef enum {
    TavCalendarAlarmNone = 0,      /*< nick=none >*/
    TavCalendarAlarm0Min = 1,      /*< nick=0min >*/
    TavCalendarAlarm5Min = 2,      /*< nick=5min >*/
    TavCalendarAlarm15Min = 3,     /*< nick=15min >*/
    TavCalendarAlarm30Min = 4,     /*< nick=30min >*/
    TavCalendarAlarm1Hour = 5,     /*< nick=1hour >*/
    TavCalendarAlarm3Hours = 6,    /*< nick=3hours >*/
    TavCalendarAlarmDayBefore = 7  /*< nick=daybefore >*/
} TavCalendarAlarmCode;

typedef enum {
    TavCalendarRepeatsNoRepeat = 0,     /*< nick=norepeat >*/
    TavCalendarRepeatsEveryDay = 1,     /*< nick=everyday >*/
    TavCalendarRepeatsEveryWorkday = 2, /*< nick=everyworkday >*/
    TavCalendarRepeatsEveryWeek = 3,    /*< nick=everyweek >*/
    TavCalendarRepeatsEveryMonth = 4,   /*< nick=everymonth >*/
    TavCalendarRepeatsEveryYear = 5,    /*< nick=everyyear >*/
    TavCalendarRepeatsComplex = 6       /*< nick=complex >*/
} TavCalendarRepeatCode;

typedef enum {
    CalendarSourceTypeLocal = 0,       /*< nick=local >*/
    CalendarSourceTypeSmart = 1,       /*< nick=smart >*/
    CalendarSourceTypeSync = 2,        /*< nick=sync >*/
    CalendarSourceTypePrivate = 3,     /*< nick=private >*/
    CalendarSourceTypeDefaultSync = 4  /*< nick=defaultsync >*/
} TavCalendarSourceType;

typedef enum {
    CalendarSourceSyncNone = 0,        /*< nick=none >*/
    CalendarSourceSyncTwoWay = 1,      /*< nick=twoway >*/
    CalendarSourceSyncPublished = 2,   /*< nick=published >*/
    CalendarSourceSyncSubscribed = 3   /*< nick=subscribed >*/
} TavCalendarSourceSyncType;

typedef enum {
    TavDateLongFormat = 0,          /*< nick=longformat >*/
    TavDateNormalFormat = 1,        /*< nick=normalformat >*/
    TavDateShortFormat = 2,         /*< nick=shortformat >*/
    TavDateWeekNameFormat = 3,      /*< nick=weeknameformat >*/
    TavDateWeekNameShortFormat = 4  /*< nick=weeknameshortformat >*/
} TavDateFormat;

typedef enum {
    CalendarReformSpain = 0,   /*< nick=spain >*/
    CalendarReformBritain = 1, /*< nick=britain >*/
    CalendarReformRussia = 2   /*< nick=russia >*/
} CalendarReform;

/**
 * tav_calendar_color_to_string:
 *
 * Returns: (transfer none) (nullable): the English name ("DarkBlue" ...
 * "Green"), NULL for a value outside the enumeration.
 */
TAV_API const char      *tav_calendar_color_to_string      (TavCalendarColor color);
/**
 * tav_calendar_color_from_string:
 *
 * Returns: the colour named by @color (ASCII case ignored); NULL and unknown
 * names give %TavCalendarColorRed.
 */
TAV_API TavCalendarColor tav_calendar_color_from_string    (const char *color);
/**
 * tav_calendar_color_create_pixbuf:
 *
 * Returns: (transfer full) (nullable): the colour's marker icon scaled to
 * @width by @height.
 */
TAV_API GdkPixbuf       *tav_calendar_color_create_pixbuf  (TavCalendarColor color, int width, int height);

/**
 * tav_calendar_alarm_to_string:
 *
 * Returns: (transfer none) (nullable): the translated label of @code.
 */
TAV_API const char          *tav_calendar_alarm_to_string        (TavCalendarAlarmCode code);
TAV_API const char          *tav_calendar_repeat_to_string       (TavCalendarRepeatCode code);
TAV_API TavCalendarAlarmCode  tav_calendar_alarm_code_from_string  (const char *text);
TAV_API TavCalendarRepeatCode tav_calendar_repeat_code_from_string (const char *text);

G_END_DECLS

#endif /* TAV_CALENDAR_ENUMS_H */
