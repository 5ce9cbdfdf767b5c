/* libcalendarui - the calendar's settings and the settings dialog
 *
 * The library stores no settings. It names them (TavCalendarSettingsPropertyID)
 * and their values (TavCalendarSettingsValue), and offers a dialog that shows
 * a set of values and hands them back. The host reads its stored values, puts
 * them in with tav_calendar_settings_dialog_set_values(), and on
 * "save-clicked" takes them out with tav_calendar_settings_dialog_get_values()
 * and the "alarm-tone" property and stores them.
 *
 * Signals:
 *   "save-clicked" (void): the user tapped Save.
 *   "edit-clicked" (void): the user tapped the calendars row (the host opens
 *                          its calendar list).
 * Properties:
 *   "alarm-tone" (string): the alarm tone path; reading it gives the tone
 *                          now chosen in the dialog.
 *   "num-visible-calendars" (int): shown on the calendars row.
 *   "dialog-close" (boolean): FALSE refuses the window manager's close.
 */
#ifndef TAV_CALENDAR_SETTINGS_DIALOG_H
#define TAV_CALENDAR_SETTINGS_DIALOG_H

#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

typedef enum {
    SettingsFirstBoot = 0,                 /*< nick=firstboot >*/
    SettingsDefaultView = 1,               /*< nick=defaultview >*/
    SettingsWeekStart = 2,                 /*< nick=weekstart >*/
    SettingsHideDoneTasks = 3,             /*< nick=hidedonetasks >*/
    SettingsRemoveItems = 4,               /*< nick=removeitems >*/
    SettingsCalendarAlarmTone = 5,         /*< nick=calendaralarmtone >*/
    SettingsDeviceCalendarNameChanged = 6  /*< nick=devicecalendarnamechanged >*/
} TavCalendarSettingsPropertyID;

typedef enum {
    SettingsValueNo = 0,            /*< nick=no >*/
    SettingsValueYes = 1,           /*< nick=yes >*/
    SettingsValueFirstBootYes = 2,  /*< nick=firstbootyes >*/
    SettingsValueFirstBootNo = 3,   /*< nick=firstbootno >*/
    SettingsValueMonthView = 4,     /*< nick=monthview >*/
    SettingsValueWeekView = 5,      /*< nick=weekview >*/
    SettingsValueAgendaView = 6,    /*< nick=agendaview >*/
    SettingsValueMonday = 7,        /*< nick=monday >*/
    SettingsValueSunday = 8,        /*< nick=sunday >*/
    SettingsValueNever = 9,         /*< nick=never >*/
    SettingsValueOneWeek = 10,      /*< nick=oneweek >*/
    SettingsValueTwoWeeks = 11,     /*< nick=twoweeks >*/
    SettingsValueOneMonth = 12,     /*< nick=onemonth >*/
    SettingsValueOneYear = 13       /*< nick=oneyear >*/
} TavCalendarSettingsValue;

#define TAV_TYPE_CALENDAR_SETTINGS_DIALOG    (tav_calendar_settings_dialog_get_type ())
#define TAV_CALENDAR_SETTINGS_DIALOG(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_SETTINGS_DIALOG, TavCalendarSettingsDialog))
#define TAV_IS_CALENDAR_SETTINGS_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_SETTINGS_DIALOG))

/* A dialog (a GtkDialog through the library's dialog base); its instance
 * structure is private. */
typedef struct _TavCalendarSettingsDialog TavCalendarSettingsDialog;

TAV_API GType      tav_calendar_settings_dialog_get_type        (void) G_GNUC_CONST;

/**
 * tav_calendar_settings_dialog_new:
 *
 * Returns: (transfer none): a new settings dialog, shown, holding the
 * defaults (remove never, week starts on Monday, completed tasks shown).
 * Like every top-level window it belongs to GTK: end it with
 * gtk_widget_destroy().
 */
TAV_API GtkWidget *tav_calendar_settings_dialog_new             (void);

/**
 * tav_calendar_settings_dialog_set_values:
 * @dialog: the dialog
 * @first_id: a #TavCalendarSettingsPropertyID, then its #TavCalendarSettingsValue,
 *   then more id/value pairs, ended by -1
 *
 * Puts values into the dialog. %SettingsWeekStart, %SettingsRemoveItems and
 * %SettingsHideDoneTasks are shown; the other settings are not part of the
 * dialog and are skipped. A value that does not belong to its setting, and
 * an id outside the enumeration, are warned about and skipped.
 */
TAV_API void       tav_calendar_settings_dialog_set_values      (TavCalendarSettingsDialog *dialog,
                                                                 int first_id, ...);
/**
 * tav_calendar_settings_dialog_get_values:
 * @dialog: the dialog
 * @first_id: a #TavCalendarSettingsPropertyID, then an `int *` that receives
 *   its value, then more pairs, ended by -1
 *
 * Takes values out of the dialog. Ids the dialog does not show leave their
 * pointer untouched. A NULL pointer is a programming error and aborts.
 */
TAV_API void       tav_calendar_settings_dialog_get_values      (TavCalendarSettingsDialog *dialog,
                                                                 int first_id, ...);
/* Makes the Save button sensitive (TRUE) or dims it (FALSE). */
TAV_API void       tav_calendar_settings_dialog_dim_save_button (TavCalendarSettingsDialog *dialog,
                                                                 gboolean sensitive);

G_END_DECLS

#endif /* TAV_CALENDAR_SETTINGS_DIALOG_H */
