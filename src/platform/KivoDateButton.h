/* Touch platform layer - date and time picker buttons (internal)
 *
 * KivoDateButton picks a day, month and year (1970 to 2037, the calendar's
 * range) in three columns; KivoTimeButton picks an hour and a minute. The
 * value shows the choice. Months are 0 (January) to 11, as in GtkCalendar
 * and the calendar's own dates.
 */
#ifndef KIVO_DATE_BUTTON_H
#define KIVO_DATE_BUTTON_H

#include "KivoPickerButton.h"

G_BEGIN_DECLS

#define KIVO_DATE_BUTTON_MIN_YEAR 1970
#define KIVO_DATE_BUTTON_MAX_YEAR 2037

#define KIVO_TYPE_DATE_BUTTON (kivo_date_button_get_type ())
#define KIVO_DATE_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_DATE_BUTTON, KivoDateButton))
#define KIVO_IS_DATE_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_DATE_BUTTON))

typedef struct _KivoDateButton KivoDateButton;
typedef struct _KivoDateButtonClass KivoDateButtonClass;

struct _KivoDateButton {
    KivoPickerButton parent;
};

struct _KivoDateButtonClass {
    KivoPickerButtonClass parent_class;
};

GType kivo_date_button_get_type (void) G_GNUC_CONST;

/* A date button showing today (clamped to the supported years). */
GtkWidget *kivo_date_button_new (KivoSizeType size, KivoButtonArrangement arrangement);
void kivo_date_button_get_date (KivoDateButton *button, guint *year, guint *month, guint *day);
/* An invalid date or a year outside 1970..2037 is refused with a critical. */
void kivo_date_button_set_date (KivoDateButton *button, guint year, guint month, guint day);

#define KIVO_TYPE_TIME_BUTTON (kivo_time_button_get_type ())
#define KIVO_TIME_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_TIME_BUTTON, KivoTimeButton))
#define KIVO_IS_TIME_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_TIME_BUTTON))

typedef struct _KivoTimeButton KivoTimeButton;
typedef struct _KivoTimeButtonClass KivoTimeButtonClass;

struct _KivoTimeButton {
    KivoPickerButton parent;
};

struct _KivoTimeButtonClass {
    KivoPickerButtonClass parent_class;
};

GType kivo_time_button_get_type (void) G_GNUC_CONST;

/* A time button showing 00:00. */
GtkWidget *kivo_time_button_new (KivoSizeType size, KivoButtonArrangement arrangement);
void kivo_time_button_get_time (KivoTimeButton *button, guint *hours, guint *minutes);
void kivo_time_button_set_time (KivoTimeButton *button, guint hours, guint minutes);

G_END_DECLS

#endif /* KIVO_DATE_BUTTON_H */
