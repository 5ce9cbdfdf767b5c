/* libcalendarui - the agenda view's rows and their order (internal)
 *
 * The agenda shows its days as one long list: a date header, that day's
 * events, tasks and birthdays, the insert button, the next header. An
 * AgendaEntryList keeps those rows ordered by tav_agenda_entry_compare and
 * answers geometry questions in list coordinates. Nothing here knows a
 * widget, so the list is tested and measured without a display.
 *
 * Rows added between two reads are ordered in one pass at the next read:
 * the result is the order one-by-one sorted insertion gives, at a cost of
 * O(N log N) for a read of N rows instead of one array rebuild per row.
 */
#ifndef TAV_AGENDA_VIEW_PRIVATE_H
#define TAV_AGENDA_VIEW_PRIVATE_H

#include <gtk/gtk.h>

#include "TavCalendarEntry.h"
#include "TavDate.h"
#include "TavExport.h"

G_BEGIN_DECLS

#define AGENDA_HEADER_HEIGHT 40
#define AGENDA_ROW_HEIGHT 70
#define AGENDA_ROW_X 16

typedef struct _AgendaEntry AgendaEntry;
struct _AgendaEntry {
    TavCalendarEntry *entry;     /* NULL for a header and for the insert button; one reference */
    int x, y, width, height;     /* only y and height are kept; x and width are set on reading */
    GdkPixbuf *color_icon;       /* colour square (shared with the list's cache) or the button's icon */
    GdkPixbuf *type_icon;        /* task or birthday icon shown instead of the times; owned */
    gchar *title;
    gboolean is_button;
    gboolean first;              /* opens a day's group */
    gboolean last;               /* closes a day's group */
    gchar *location;
    gchar *description;
    gboolean all_day;
    TavDate start_date;
    TavDate end_date;
    TavTime start_time;          /* hour 23 marks the no-events header */
    TavTime end_time;
    TavDate date;                /* the date whose header the row stands under */
    TavTime displayed_time;
    TavDate end_repetition_date;
    gboolean has_repeat;
    int repeat_code;
    gboolean multi_days;
    int n_days;
    char start_text[40];
    char end_text[40];
};

typedef enum {
    AgendaEntryDetailFirst = 0,      /*< nick=first >*/
    AgendaEntryDetailMiddle = 1,     /*< nick=middle >*/
    AgendaEntryDetailLast = 2,       /*< nick=last >*/
    AgendaEntryDetailFirstLast = 3,  /*< nick=firstlast >*/
    AgendaEntryDetailPressed = 4,    /*< nick=pressed >*/
    AgendaEntryDetailNDetails = 5    /*< nick=ndetails >*/
} AgendaEntryDetail;

GType agenda_entry_detail_get_type (void) G_GNUC_CONST;

typedef struct _AgendaEntryList AgendaEntryList;
struct _AgendaEntryList {
    GList *sorted;               /* the rows in order (rebuilt with the array at each read) */
    GPtrArray *entries;          /* the rows in order; owns them */
    gboolean needs_offsets;
    gboolean needs_details;
    int visible_width;
    int offset_x, offset_y;
    GdkPixbuf *color_icons[10];
    gchar *detail_images[5];
    GdkPixmap *detail_pixmaps[5];
    /*< private >*/
    gpointer pending;            /* rows added since the last read, in arrival order */
};

AgendaEntry *agenda_entry_new                   (AgendaEntryList *list, TavCalendarEntry *entry,
                                                 const char *icon_name, int time_format);
void         agenda_entry_set_from_entry        (AgendaEntryList *list, AgendaEntry *aentry,
                                                 TavCalendarEntry *entry, const char *icon_name,
                                                 int time_format);
AgendaEntry *agenda_entry_new_header            (const char *title, const TavDate *date);
AgendaEntry *agenda_entry_new_button            (const char *title, const char *icon_name, const TavDate *date);
void         agenda_entry_free                  (AgendaEntry *aentry);
void         agenda_entry_refresh_displayed_times (AgendaEntry *aentry, int time_format, gboolean shifted);
const char  *agenda_entry_get_bg_detail         (AgendaEntry *aentry);
const char  *agenda_entry_button_get_bg_detail  (gboolean pressed);
void         agenda_entry_get_cell_rect         (AgendaEntryList *list, AgendaEntry *aentry, GdkRectangle *dest);
void         agenda_entry_get_cell_rect_relative (AgendaEntryList *list, AgendaEntry *aentry, GdkRectangle *dest);
TAV_API int  tav_agenda_entry_compare           (const AgendaEntry *a, const AgendaEntry *b);

AgendaEntryList *agenda_entry_list_new          (void);
void         agenda_entry_list_free             (AgendaEntryList *list);
void         agenda_entry_list_add_agenda_entry (AgendaEntryList *list, AgendaEntry *aentry);
void         agenda_entry_list_remove           (AgendaEntryList *list, int n);
void         agenda_entry_list_drop_all_entries (AgendaEntryList *list);
void         agenda_entry_list_remove_headers_if_empty (AgendaEntryList *list);
void         agenda_entry_list_sort             (AgendaEntryList *list);
int          agenda_entry_list_get_n_entry      (AgendaEntryList *list);
AgendaEntry *agenda_entry_list_get_agenda_entry (AgendaEntryList *list, int n);
gboolean     agenda_entry_list_get_entries_count (AgendaEntryList *list);
int          agenda_entry_list_find_entry       (AgendaEntryList *list, TavCalendarEntry *entry);
int          agenda_entry_list_find_header      (AgendaEntryList *list, const TavDate *date);
int          agenda_entry_list_find_no_entry_header (AgendaEntryList *list);
int          agenda_entry_list_get_height       (AgendaEntryList *list);
void         agenda_entry_list_get_cell_rect    (AgendaEntryList *list, int n, GdkRectangle *dest);
void         agenda_entry_list_get_cell_rect_relative (AgendaEntryList *list, int n, GdkRectangle *dest);
void         agenda_entry_list_get_headers      (AgendaEntryList *list, int y, int *header_before,
                                                 int *header_after);
void         agenda_entry_list_set_visible_width (AgendaEntryList *list, int width);
void         agenda_entry_list_set_offset       (AgendaEntryList *list, int x, int y);
/* Whether a header (the no-events one included) stands for @date; O(1). */
gboolean     agenda_entry_list_has_header (AgendaEntryList *list, const TavDate *date);
/* The first row whose relative rectangle holds @y (top and bottom edges
 * included), or -1; a binary search over the offsets. */
int          agenda_entry_list_row_at           (AgendaEntryList *list, int y);

G_END_DECLS

#endif /* TAV_AGENDA_VIEW_PRIVATE_H */
