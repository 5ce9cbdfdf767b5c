/* libcalendarui - the event editor
 *
 * The dialog in which the user creates an event or edits one: title,
 * location, all-day flag, start and end, repetition and its last date,
 * calendar, alarm and description. On Save it creates a new entry in the
 * chosen calendar, saves the edited entry in place, or moves it to another
 * calendar (created there, then deleted from the old one), and destroys
 * itself. Escape closes it without saving.
 *
 * Opening it:
 *
 *   new event     w = tav_calendar_event_window_new ();
 *                 tav_calendar_event_window_add_sources (w, calendars);
 *                 tav_calendar_event_window_set_selected_date (w, &day);
 *                 tav_calendar_event_window_set_selected_start_time (w, &from);  (optional)
 *                 tav_calendar_event_window_set_selected_end_time (w, &to);      (optional)
 *                 tav_calendar_event_window_set_all_day (w, FALSE);              (optional)
 *   existing one  w = tav_calendar_event_window_new_from_entry (entry);
 *                 tav_calendar_event_window_add_sources (w, calendars);
 *   then          gtk_window_set_transient_for (GTK_WINDOW (w), parent);
 *                 gtk_widget_show (w);
 *
 * A new event without presets starts at the next full hour today and lasts
 * one hour. The entry's own calendar is chosen for an existing entry; for a
 * new one the first visible calendar (tav_calendar_button_select_first_full).
 * Read-only calendars are never offered.
 *
 * Signals (run last; void (*) (TavCalendarEventWindow *window,
 * TavCalendarEntry *entry, gpointer user_data)):
 *   "entry-created"   a new entry was stored in its calendar (also the new
 *                     copy of a moved entry, which carries the old entry's
 *                     "num-id" into create_entry so that the calendar can
 *                     keep what the fields cannot express);
 *   "entry-saved"     an edited entry was saved in place, or its calendar
 *                     answered that the entry already existed and stored
 *                     it over the old one;
 *   "deleting-entry"  after a move, with the old entry, once its old
 *                     calendar deleted it.
 * Failures are reported with the dialog's "error" signal (a text for the
 * user); a failed save keeps the entry as it was in its calendar.
 *
 * How the fields keep each other consistent:
 * - Moving the start (date or time) keeps the event's length: the end moves
 *   by as much as the start did, but never past 31.12.2037 23:59.
 * - An end before the start is put back (a date to the start's date, a time
 *   to one hour after the start, or the start itself after 23:00) with a
 *   banner saying why.
 * - The last repetition date never lies before the start. It defaults to one
 *   step of the repetition after the start (the next workday, the next day,
 *   week, month or year) until the user picks one. An entry that repeats
 *   without end (its last repetition date is its own end date) shows
 *   "Forever" and keeps repeating without end whatever else changes, until
 *   the user picks a last date.
 * - The repeat picker offers only what fits the event: "every day" and
 *   "every workday" for events within one day ("every workday" only when
 *   the start is a Monday to Friday), "every week" for events shorter than a
 *   week, "every month" shorter than 28 days, "every year" shorter than 365
 *   days. A choice that no longer fits falls back to no repetition.
 * - An entry whose repetition is more than the picker can express (a
 *   complex rule) asks before its repetition or last date is changed; a new
 *   choice replaces the complex rule.
 * - The alarm picker offers only alarms that would still ring in the future
 *   (a repeating event offers them all: it rings again). A timed event has
 *   alarms 0, 5, 15 and 30 minutes, 1 and 3 hours and a day before its
 *   start; an all-day event has "none" or the day before at the alarm time
 *   (12:00 unless changed; on the day itself never earlier than an hour from
 *   now). An alarm an edited entry already has is shown even when it lies
 *   in the past; Save then removes it and says so, for a single event.
 * - Titles and locations keep at most 256 characters, descriptions 16000.
 *   A title of only white space counts as no title: Save then asks for one.
 */
#ifndef TAV_CALENDAR_EVENT_WINDOW_H
#define TAV_CALENDAR_EVENT_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavDate.h"
#include "TavCalendarEntry.h"
#include "TavCalendarSource.h"
#include "TavCalendarDialog.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_EVENT_WINDOW            (tav_calendar_event_window_get_type ())
#define TAV_CALENDAR_EVENT_WINDOW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_EVENT_WINDOW, TavCalendarEventWindow))
#define TAV_CALENDAR_EVENT_WINDOW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_EVENT_WINDOW, TavCalendarEventWindowClass))
#define TAV_IS_CALENDAR_EVENT_WINDOW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_EVENT_WINDOW))
#define TAV_IS_CALENDAR_EVENT_WINDOW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_EVENT_WINDOW))
#define TAV_CALENDAR_EVENT_WINDOW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_EVENT_WINDOW, TavCalendarEventWindowClass))

typedef struct _TavCalendarEventWindow        TavCalendarEventWindow;
typedef struct _TavCalendarEventWindowClass   TavCalendarEventWindowClass;
typedef struct _TavCalendarEventWindowPrivate TavCalendarEventWindowPrivate;

struct _TavCalendarEventWindow {
    TavCalendarDialog parent;

    /*< private >*/
    TavCalendarEventWindowPrivate *priv;
};

struct _TavCalendarEventWindowClass {
    TavCalendarDialogClass parent_class;

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType      tav_calendar_event_window_get_type (void) G_GNUC_CONST;

/* An editor for a new event. */
TAV_API GtkWidget *tav_calendar_event_window_new            (void);
/* An editor for @entry (sets the "entry" property; the window keeps a
 * reference). The entry is changed only when the user saves. */
TAV_API GtkWidget *tav_calendar_event_window_new_from_entry (TavCalendarEntry *entry);

/* Offers @source in the calendar picker and chooses it; read-only sources
 * are skipped. */
TAV_API void tav_calendar_event_window_add_source  (TavCalendarEventWindow *window, TavCalendarSource *source);
/* add_source for each element of @sources (TavCalendarSource *; the list is
 * not taken over), then chooses the edited entry's own calendar, or for a
 * new event the first visible one. */
TAV_API void tav_calendar_event_window_add_sources (TavCalendarEventWindow *window, GList *sources);

/* Presets for a new event. The date and the start time move the event
 * keeping its length; the end time puts the end on the start's day at
 * @time (an end before the start becomes an hour after it, silently). */
TAV_API void tav_calendar_event_window_set_selected_date       (TavCalendarEventWindow *window, const TavDate *date);
TAV_API void tav_calendar_event_window_set_selected_start_time (TavCalendarEventWindow *window, const TavTime *time);
TAV_API void tav_calendar_event_window_set_selected_end_time   (TavCalendarEventWindow *window, const TavTime *time);
TAV_API void tav_calendar_event_window_set_all_day             (TavCalendarEventWindow *window, gboolean all_day);

G_END_DECLS

#endif /* TAV_CALENDAR_EVENT_WINDOW_H */
