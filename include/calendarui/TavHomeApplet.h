/* libcalendarui - the home-screen applet
 *
 * A compact widget for a home screen: today's date over up to five rows of
 * what comes next. Each row shows the calendar's colour, a time text, the
 * title and the location:
 *
 *   - timed events in progress first, with the time text "Now";
 *   - then, day by day, all-day events, tasks due, birthdays (with the age
 *     when the birth year is known) and timed events by start time, with
 *     "Today", "Today 14:00", "Tomorrow", the weekday within the week
 *     ahead, or a short date further out ("5 Dec 09:30"). The times follow
 *     "time-24hr-format".
 *
 * Events that are over, completed tasks, overdue tasks and entries of
 * hidden calendars are left out. With nothing to show, the applet says so
 * in one line.
 *
 * Feeding. The applet is a TavCalendarView and is fed like the other
 * views: it emits "database-access-read" when it is first mapped, when
 * the day changes and on tav_home_applet_reload(); the owner answers with
 * tav_calendar_view_freeze(), tav_calendar_view_reading_started(),
 * tav_calendar_view_add_entries() for the entries of the visible calendars
 * touching "presented-interval", tav_calendar_view_thaw() and
 * tav_calendar_view_reading_finished(). Repeating entries are expanded
 * through their source's get_instances, as in every view. The applet keeps
 * no storage of its own. It looks eight days ahead; when that holds fewer
 * than five rows, it widens "presented-interval" to a month and then to a
 * year, asking for a new read each time.
 *
 * Time. The applet refreshes itself with one timer set for the next moment
 * its rows can change: the start of the next timed instance, the end of
 * one in progress, or midnight, whichever comes first. It does not poll.
 * The timer follows the monotonic clock, so when the wall clock or the
 * time zone changes (or the device wakes from sleep), the owner emits
 * "time-changed" (or calls tav_home_applet_time_changed()) and the applet
 * rereads the clock, and the database when the day changed.
 *
 * Taps. A tap on a row emits "entry-activated" with the entry and the date
 * its instance starts on; a tap anywhere else (the date line, the empty
 * state, the margins) emits "calendar-activated": the owner opens the
 * calendar.
 *
 * Looks. The applet has no window of its own: it paints on its parent, so
 * a wallpaper or a translucent home screen shows through. The rows sit on
 * a rounded dark panel whose opacity is the style property "panel-alpha"
 * (0 for none); the texts are light and shadowed, readable on any
 * background. Fonts and text colours are style properties ("font-title",
 * "font-detail", "title-font-color", "detail-font-color",
 * "now-font-color").
 */
#ifndef TAV_HOME_APPLET_H
#define TAV_HOME_APPLET_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarView.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_HOME_APPLET            (tav_home_applet_get_type ())
#define TAV_HOME_APPLET(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_HOME_APPLET, TavHomeApplet))
#define TAV_HOME_APPLET_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_HOME_APPLET, TavHomeAppletClass))
#define TAV_IS_HOME_APPLET(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_HOME_APPLET))
#define TAV_IS_HOME_APPLET_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_HOME_APPLET))
#define TAV_HOME_APPLET_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_HOME_APPLET, TavHomeAppletClass))

typedef struct _TavHomeApplet        TavHomeApplet;
typedef struct _TavHomeAppletClass   TavHomeAppletClass;
typedef struct _TavHomeAppletPrivate TavHomeAppletPrivate;

struct _TavHomeApplet {
    TavCalendarView parent;
    /*< private >*/
    TavHomeAppletPrivate *priv;
};

/**
 * TavHomeAppletClass:
 * @time_changed: class closure of "time-changed": rereads the clock,
 *   rereads the database when the day changed, and sets the timer anew.
 * @entry_activated: class slot of "entry-activated" (none by default).
 * @calendar_activated: class slot of "calendar-activated" (none by default).
 */
struct _TavHomeAppletClass {
    TavCalendarViewClass parent_class;

    void (*time_changed)       (TavHomeApplet *applet);
    void (*entry_activated)    (TavHomeApplet *applet, TavCalendarEntry *entry, const TavDate *date);
    void (*calendar_activated) (TavHomeApplet *applet);
};

/* Signals:
 *   "entry-activated" (TavHomeApplet *applet, TavCalendarEntry *entry,
 *                      TavDate *date): a row was tapped; @date is the day
 *                      the row's instance starts on.
 *   "calendar-activated" (TavHomeApplet *applet): the applet was tapped
 *                      outside the rows.
 *   "time-changed" (TavHomeApplet *applet): action signal; the owner emits
 *                      it when the clock or the time zone was changed.
 * Properties:
 *   "presented-interval" (TavDateInterval, read-only): the days read.
 *   "time-24hr-format" (gboolean, default TRUE): 24-hour times, else 12-hour.
 */

TAV_API GType      tav_home_applet_get_type     (void) G_GNUC_CONST;

/**
 * tav_home_applet_new:
 *
 * Returns: (transfer floating): a new applet, empty until its owner answers
 * its first "database-access-read".
 */
TAV_API GtkWidget *tav_home_applet_new          (void);

/**
 * tav_home_applet_reload:
 * @applet: an applet
 *
 * Drops what the applet shows and emits "database-access-read" for the
 * days from today: the owner calls it after changing its calendars.
 */
TAV_API void       tav_home_applet_reload       (TavHomeApplet *applet);

/**
 * tav_home_applet_time_changed:
 * @applet: an applet
 *
 * Emits "time-changed".
 */
TAV_API void       tav_home_applet_time_changed (TavHomeApplet *applet);

/**
 * tav_home_applet_get_n_rows:
 * @applet: an applet
 *
 * Returns: the number of rows shown now, 0 to 5 (0 for a non-applet).
 */
TAV_API int        tav_home_applet_get_n_rows   (TavHomeApplet *applet);

/**
 * tav_home_applet_get_row:
 * @applet: an applet
 * @n: a row, 0 at the top
 * @entry: (out) (optional) (transfer none): the row's entry
 * @start: (out) (optional): the start of the row's instance
 *
 * Returns: FALSE when there is no row @n (nothing is written).
 */
TAV_API gboolean   tav_home_applet_get_row      (TavHomeApplet *applet, int n, TavCalendarEntry **entry,
                                                 TavTimestamp *start);

G_END_DECLS

#endif /* TAV_HOME_APPLET_H */
