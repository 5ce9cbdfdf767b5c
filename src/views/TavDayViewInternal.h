/* libcalendarui - the day view's internal functions (for its own code,
 * the tests and the benchmark) */
#ifndef TAV_DAY_VIEW_INTERNAL_H
#define TAV_DAY_VIEW_INTERNAL_H

#include "TavDayView.h"
#include "TavDayViewPrivate.h"

G_BEGIN_DECLS

/* The cached background of @dentry's row (no new reference). */
GdkPixmap *day_entry_get_bg_detail_pixmap (TavDayView *day_view, DayEntryList *list,
                                              DayEntry *dentry);
void       tav_day_view_ensure_valid_items_in_csm (TavDayView *day_view);
void       tav_day_view_csm_edit_clicked   (GtkWidget *item, TavDayView *day_view);
void       tav_day_view_csm_delete_clicked (GtkWidget *item, TavDayView *day_view);

DayEntryList *_tav_day_view_get_list        (TavDayView *day_view);
GtkAdjustment   *_tav_day_view_get_vadjustment (TavDayView *day_view);
GtkWidget       *_tav_day_view_get_context_menu (TavDayView *day_view);
int              _tav_day_view_get_n_paints    (TavDayView *day_view);

G_END_DECLS

#endif /* TAV_DAY_VIEW_INTERNAL_H */
