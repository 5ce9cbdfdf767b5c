/* libcalendarui - the date selection window
 *
 * A dialog that lets the user pick a day, a month or a week of the years
 * 1970 to 2037 from touch columns, and announces the choice with
 * "date-activated" (a TavDate: the chosen day, the 1st of the chosen
 * month, or the first day of the chosen week) when the done button is
 * pressed. The dialog destroys itself after a choice.
 */
#ifndef TAV_DATE_SELECTION_WINDOW_H
#define TAV_DATE_SELECTION_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavDate.h"
#include "TavCalendarProcessor.h"

G_BEGIN_DECLS

typedef enum {
    TavDateSelectionWindowModeDay = 0,   /*< nick=day >*/
    TavDateSelectionWindowModeMonth = 1, /*< nick=month >*/
    TavDateSelectionWindowModeWeek = 2   /*< nick=week >*/
} TavDateSelectionWindowMode;

#define TAV_TYPE_DATE_SELECTION_WINDOW            (tav_date_selection_window_get_type ())
#define TAV_DATE_SELECTION_WINDOW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_DATE_SELECTION_WINDOW, TavDateSelectionWindow))
#define TAV_IS_DATE_SELECTION_WINDOW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_DATE_SELECTION_WINDOW))

typedef struct _TavDateSelectionWindow        TavDateSelectionWindow;
typedef struct _TavDateSelectionWindowClass   TavDateSelectionWindowClass;
typedef struct _TavDateSelectionWindowPrivate TavDateSelectionWindowPrivate;

struct _TavDateSelectionWindow {
    GtkDialog parent;
    /*< private >*/
    TavDateSelectionWindowPrivate *priv;
};

struct _TavDateSelectionWindowClass {
    GtkDialogClass parent_class;
};

/* Properties: "mode" (TavDateSelectionWindowMode), "processor"
 * (TavCalendarProcessor, for week numbers), "done-button-title" (string),
 * and the dialog's "title". Signal: "date-activated" (TavDate *). */
TAV_API GType      tav_date_selection_window_get_type              (void) G_GNUC_CONST;
TAV_API GtkWidget *tav_date_selection_window_new                   (void);
/* Shows @date in the columns; a date outside 1970..2037 is refused with a
 * critical and leaves the columns as they were. */
TAV_API void       tav_date_selection_window_set_date              (TavDateSelectionWindow *window,
                                                                    const TavDate *date);
/* The date the columns show now. */
TAV_API void       tav_date_selection_window_get_date              (TavDateSelectionWindow *window,
                                                                    TavDate *date);
TAV_API void       tav_date_selection_window_set_first_day_of_week (TavDateSelectionWindow *window,
                                                                    int first_day_of_week);
TAV_API int        tav_date_selection_window_get_year              (TavDateSelectionWindow *window);
/* Chooses the date shown, as the done button does. */
TAV_API void       tav_date_selection_window_activate              (TavDateSelectionWindow *window);

G_END_DECLS

#endif /* TAV_DATE_SELECTION_WINDOW_H */
