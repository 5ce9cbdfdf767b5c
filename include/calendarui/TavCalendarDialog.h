/* libcalendarui - the base of every dialog of the library
 *
 * A TavCalendarDialog is modal, has no separator, opens 350 pixels high and
 * holds its content in a pannable area that moves vertically only. Escape
 * closes it (the dialog is destroyed, nothing is saved). While any dialog of
 * the family exists, tav_calendar_dialog_is_dialog_open() answers TRUE: a
 * dialog counts from its creation until it is destroyed, shown or not.
 *
 * Signal "error" (detailed, run last): void (*) (TavCalendarDialog *dialog,
 * const char *text, gpointer user_data). Subclasses emit it with a text a
 * person can read when a calendar operation failed.
 *
 * The modal-widget slot remembers the one confirmation or note a dialog has
 * open over itself, so that it can be closed with the dialog.
 */
#ifndef TAV_CALENDAR_DIALOG_H
#define TAV_CALENDAR_DIALOG_H

#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_DIALOG            (tav_calendar_dialog_get_type ())
#define TAV_CALENDAR_DIALOG(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_DIALOG, TavCalendarDialog))
#define TAV_CALENDAR_DIALOG_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_DIALOG, TavCalendarDialogClass))
#define TAV_IS_CALENDAR_DIALOG(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_DIALOG))
#define TAV_IS_CALENDAR_DIALOG_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_DIALOG))
#define TAV_CALENDAR_DIALOG_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_DIALOG, TavCalendarDialogClass))

typedef struct _TavCalendarDialog        TavCalendarDialog;
typedef struct _TavCalendarDialogClass   TavCalendarDialogClass;
typedef struct _TavCalendarDialogPrivate TavCalendarDialogPrivate;

struct _TavCalendarDialog {
    GtkDialog parent;

    /*< private >*/
    TavCalendarDialogPrivate *priv;
    /* The pannable area that holds content packed with
     * tav_calendar_dialog_pack_with_defaults(). */
    GtkWidget *pannable;
};

struct _TavCalendarDialogClass {
    GtkDialogClass parent_class;

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType      tav_calendar_dialog_get_type     (void) G_GNUC_CONST;

TAV_API GtkWidget *tav_calendar_dialog_new          (void);
/* TRUE while at least one dialog of the family exists. */
TAV_API gboolean   tav_calendar_dialog_is_dialog_open (void);

TAV_API void       tav_calendar_dialog_set_title    (TavCalendarDialog *dialog, const char *title);
/**
 * tav_calendar_dialog_add_button:
 *
 * Adds a button with the response GTK_RESPONSE_NONE; connect its "clicked".
 * Returns: (transfer none): the button.
 */
TAV_API GtkWidget *tav_calendar_dialog_add_button   (TavCalendarDialog *dialog, const char *label);
/* Packs @widget into the dialog's box, outside the pannable area. */
TAV_API void       tav_calendar_dialog_pack_no_scroll (TavCalendarDialog *dialog, GtkWidget *widget,
                                                       gboolean expand, gboolean fill);
/* Packs @widget into the pannable area (a tree view directly, anything else
 * through a viewport) and shows it. */
TAV_API void       tav_calendar_dialog_pack_with_defaults (TavCalendarDialog *dialog, GtkWidget *widget);

/* The confirmation or note open over the dialog, NULL when none. */
TAV_API GtkWidget *tav_calendar_dialog_get_modal_widget_ptr   (TavCalendarDialog *dialog);
TAV_API void       tav_calendar_dialog_set_modal_widget_ptr   (TavCalendarDialog *dialog, GtkWidget *widget);
TAV_API void       tav_calendar_dialog_reset_modal_widget_ptr (TavCalendarDialog *dialog);

G_END_DECLS

#endif /* TAV_CALENDAR_DIALOG_H */
