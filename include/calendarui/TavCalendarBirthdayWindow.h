/* libcalendarui - the window that adds a birthday
 *
 * Rows: the person's name, the date of birth (a date button) and whether
 * the year of birth is known. Save creates, in the birthdays calendar the
 * host gives, a yearly all-day event titled with the name, with
 * "has-birthday" set and "birth-year" the year (or -1 when it is not
 * known, the date then being this year's). The views show the person's
 * age on each instance where the year is known.
 *
 * Born on 29 February: the birthday is kept on the last day of February,
 * so it shows on 28 February in common years and on the 29th in leap
 * years (the host stores it as FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=-1).
 *
 * What a host calls: tav_calendar_birthday_window_new() with its birthdays
 * calendar's source, then gtk_dialog_run() or the "response" signal: on
 * GTK_RESPONSE_OK the birthday is stored (tav_calendar_birthday_window_get_entry()
 * is the entry created); re-read the views.
 *
 * Refused with a message, the window staying open: an empty name, a name
 * of more than 256 characters or not valid UTF-8, a read-only calendar,
 * and any error the source returns (its CalendarUiErrorCode's text).
 */
#ifndef TAV_CALENDAR_BIRTHDAY_WINDOW_H
#define TAV_CALENDAR_BIRTHDAY_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarEntry.h"
#include "TavCalendarSource.h"
#include "TavDate.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_BIRTHDAY_WINDOW    (tav_calendar_birthday_window_get_type ())
#define TAV_CALENDAR_BIRTHDAY_WINDOW(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_BIRTHDAY_WINDOW, TavCalendarBirthdayWindow))
#define TAV_IS_CALENDAR_BIRTHDAY_WINDOW(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_BIRTHDAY_WINDOW))

/* A TavCalendarDialog; its structures are private to the library. */
typedef struct _TavCalendarBirthdayWindow TavCalendarBirthdayWindow;

TAV_API GType      tav_calendar_birthday_window_get_type (void) G_GNUC_CONST;

/* Returns: (transfer none): a new window, not shown, for a birthday in
 * @birthdays (the window keeps a reference), the date row on today and
 * the year known. End it with gtk_widget_destroy(). */
TAV_API GtkWidget *tav_calendar_birthday_window_new (TavCalendarSource *birthdays);

/* Fills the rows as the user would: @name, @date of birth (months count
 * from 0, as in TavDate; a date the date button cannot show is refused
 * with a critical), and whether its year is known. */
TAV_API void       tav_calendar_birthday_window_set_values (TavCalendarBirthdayWindow *window, const char *name,
                                                            const TavDate *date, gboolean year_known);

/* What Save does. FALSE, with the reason shown, when refused. */
TAV_API gboolean   tav_calendar_birthday_window_save (TavCalendarBirthdayWindow *window);

/* Returns: (transfer none) (nullable): the entry the last successful
 * save created. */
TAV_API TavCalendarEntry *tav_calendar_birthday_window_get_entry (TavCalendarBirthdayWindow *window);
/* Returns: (transfer none) (nullable): the message shown, NULL when none. */
TAV_API const char *tav_calendar_birthday_window_get_error (TavCalendarBirthdayWindow *window);

G_END_DECLS

#endif /* TAV_CALENDAR_BIRTHDAY_WINDOW_H */
