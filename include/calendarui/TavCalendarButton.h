/* libcalendarui - the calendar picker button of the editors
 *
 * A title/value button whose picker lists calendars, one row each with the
 * calendar's colour square and title; the value shows the chosen calendar.
 * Only calendars that accept writes are offered: adding a read-only one is
 * refused (FALSE), so an editor never stores into a calendar that cannot
 * keep the entry.
 *
 * Signal "calendar-changed": void (*) (TavCalendarButton *button,
 * gpointer user_data), after the user (or a set call) chose another
 * calendar.
 */
#ifndef TAV_CALENDAR_BUTTON_H
#define TAV_CALENDAR_BUTTON_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarSource.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_BUTTON    (tav_calendar_button_get_type ())
#define TAV_CALENDAR_BUTTON(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_BUTTON, TavCalendarButton))
#define TAV_IS_CALENDAR_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_BUTTON))

/* A GtkButton subclass; its structures are private to the library. */
typedef struct _TavCalendarButton TavCalendarButton;

TAV_API GType      tav_calendar_button_get_type (void) G_GNUC_CONST;

/* A button with the caption "cal_fi_calendar" and no calendars yet. */
TAV_API GtkWidget *tav_calendar_button_new      (void);
/* Appends a row for @source (the button keeps a reference). A read-only
 * source, or one already listed, is not added: FALSE. */
TAV_API gboolean   tav_calendar_button_add_calendar (TavCalendarButton *button, TavCalendarSource *source);
/* Number of rows. */
TAV_API int        tav_calendar_button_get_calendar_count (TavCalendarButton *button);
/* (transfer none): the chosen calendar, NULL when none is chosen. */
TAV_API TavCalendarSource *tav_calendar_button_get_selected_calendar (TavCalendarButton *button);
/* Chooses the row of @source (compared with tav_calendar_source_is_equal);
 * FALSE and no change when it is not listed. */
TAV_API gboolean   tav_calendar_button_set_selected_calendar (TavCalendarButton *button, TavCalendarSource *source);
/* Chooses the first listed calendar that is visible (a new entry stored in
 * a hidden calendar would vanish from sight), or the first one when all are
 * hidden. FALSE when the button lists no calendar. */
TAV_API gboolean   tav_calendar_button_select_first_full (TavCalendarButton *button);

G_END_DECLS

#endif /* TAV_CALENDAR_BUTTON_H */
