/* libcalendarui - the agenda view's internal functions (for its own code,
 * the tests and the benchmark) */
#ifndef TAV_AGENDA_VIEW_INTERNAL_H
#define TAV_AGENDA_VIEW_INTERNAL_H

#include "TavAgendaView.h"
#include "TavAgendaViewPrivate.h"

G_BEGIN_DECLS

/* The cached background of @aentry's row (no new reference). */
GdkPixmap *agenda_entry_get_bg_detail_pixmap (TavAgendaView *agenda_view, AgendaEntryList *list,
                                              AgendaEntry *aentry);
/* Adds the date header for @aentry's date unless the list has one. */
void       tav_agenda_view_append_header_for_agenda_entry (TavAgendaView *agenda_view, AgendaEntry *aentry);
void       tav_agenda_view_ensure_valid_items_in_csm (TavAgendaView *agenda_view);
void       tav_agenda_view_csm_edit_clicked   (GtkWidget *item, TavAgendaView *agenda_view);
void       tav_agenda_view_csm_delete_clicked (GtkWidget *item, TavAgendaView *agenda_view);

AgendaEntryList *_tav_agenda_view_get_list        (TavAgendaView *agenda_view);
GtkAdjustment   *_tav_agenda_view_get_vadjustment (TavAgendaView *agenda_view);
GtkWidget       *_tav_agenda_view_get_context_menu (TavAgendaView *agenda_view);
int              _tav_agenda_view_get_n_paints    (TavAgendaView *agenda_view);
int              _tav_agenda_view_get_highlight   (TavAgendaView *agenda_view);

G_END_DECLS

#endif /* TAV_AGENDA_VIEW_INTERNAL_H */
