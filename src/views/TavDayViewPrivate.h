/* libcalendarui - the day view's rows and their order (internal)
 *
 * The day view lists one day: its header, its events, tasks and birthdays,
 * the insert button. A DayEntryList takes rows in any order and sorts them
 * once, with tav_day_entry_compare, before it is measured or drawn. The
 * records, the order and the geometry are those of the agenda list, from
 * the same code (TavEntryRows.h); only the containers differ.
 */
#ifndef TAV_DAY_VIEW_PRIVATE_H
#define TAV_DAY_VIEW_PRIVATE_H

#include <gtk/gtk.h>

#include "TavCalendarEntry.h"
#include "TavDate.h"
#include "TavExport.h"

G_BEGIN_DECLS

#define DAY_HEADER_HEIGHT 40
#define DAY_ROW_HEIGHT 70
#define DAY_ROW_X 16

typedef struct _DayEntry DayEntry;
struct _DayEntry {
    TavCalendarEntry *entry;     /* NULL for a header and for the insert button; one reference */
    int x, y, width, height;     /* only y and height are kept; x and width are set on reading */
    GdkPixbuf *color_icon;       /* colour square (shared with the list's cache) or the button's icon */
    GdkPixbuf *type_icon;        /* task or birthday icon shown instead of the times; owned */
    gchar *title;
    gboolean is_button;
    gboolean is_no_entries;      /* the no-events header */
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
    char start_text[14];
    char end_text[14];
};

typedef enum {
    DayEntryDetailFirst = 0,      /*< nick=first >*/
    DayEntryDetailMiddle = 1,     /*< nick=middle >*/
    DayEntryDetailLast = 2,       /*< nick=last >*/
    DayEntryDetailFirstLast = 3,  /*< nick=firstlast >*/
    DayEntryDetailPressed = 4,    /*< nick=pressed >*/
    DayEntryDetailNDetails = 5    /*< nick=ndetails >*/
} DayEntryDetail;

GType day_entry_detail_get_type (void) G_GNUC_CONST;

typedef struct _DayEntryList DayEntryList;
struct _DayEntryList {
    GPtrArray *entries;          /* the rows; owns them; in order unless needs_sort */
    gboolean needs_offsets;
    gboolean needs_sort;
    int visible_width;
    int offset_x, offset_y;
    GdkPixbuf *color_icons[10];
    gchar *detail_images[5];
    GdkPixmap *detail_pixmaps[5];
    /*< private >*/
    gpointer index;              /* lookups kept while rows come and go */
};

DayEntry *day_entry_new                   (DayEntryList *list, TavCalendarEntry *entry,
                                                 const char *icon_name, int time_format);
void         day_entry_set_from_entry        (DayEntryList *list, DayEntry *dentry,
                                                 TavCalendarEntry *entry, const char *icon_name,
                                                 int time_format);
DayEntry *day_entry_new_header            (const char *title, const TavDate *date);
DayEntry *day_entry_new_button            (const char *title, const char *icon_name, const TavDate *date);
void         day_entry_free                  (DayEntry *dentry);
void         day_entry_refresh_displayed_times (DayEntry *dentry, int time_format, gboolean shifted);
const char  *day_entry_get_bg_detail         (DayEntry *dentry);
const char  *day_entry_button_get_bg_detail  (gboolean pressed);
void         day_entry_get_cell_rect         (DayEntryList *list, DayEntry *dentry, GdkRectangle *dest);
void         day_entry_get_cell_rect_relative (DayEntryList *list, DayEntry *dentry, GdkRectangle *dest);
/* @a and @b point to array slots holding DayEntry pointers. */
TAV_API int  tav_day_entry_compare           (gconstpointer a, gconstpointer b);

DayEntryList *day_entry_list_new          (void);
void         day_entry_list_free             (DayEntryList *list);
void         day_entry_list_add_day_entry (DayEntryList *list, DayEntry *dentry);
void         day_entry_list_remove           (DayEntryList *list, int n);
void         day_entry_list_drop_all_entries (DayEntryList *list);
void         day_entry_list_remove_headers_if_empty (DayEntryList *list);
void         day_entry_list_sort             (DayEntryList *list);
int          day_entry_list_get_n_entry      (DayEntryList *list);
DayEntry *day_entry_list_get_day_entry (DayEntryList *list, int n);
int          day_entry_list_get_entries_count (DayEntryList *list);
int          day_entry_list_find_entry       (DayEntryList *list, TavCalendarEntry *entry);
int          day_entry_list_find_header      (DayEntryList *list, const TavDate *date);
int          day_entry_list_find_no_entry_header (DayEntryList *list);
int          day_entry_list_get_height       (DayEntryList *list);
void         day_entry_list_get_cell_rect    (DayEntryList *list, int n, GdkRectangle *dest);
void         day_entry_list_get_cell_rect_relative (DayEntryList *list, int n, GdkRectangle *dest);
void         day_entry_list_get_headers      (DayEntryList *list, int y, int *header_before,
                                                 int *header_after);
void         day_entry_list_set_visible_width (DayEntryList *list, int width);
void         day_entry_list_set_offset       (DayEntryList *list, int x, int y);
/* Whether a header (the no-events one included) stands for @date; O(1). */
gboolean     day_entry_list_has_header (DayEntryList *list, const TavDate *date);
/* The first row whose relative rectangle holds @y, or -1 (binary search). */
int          day_entry_list_row_at           (DayEntryList *list, int y);

G_END_DECLS

#endif /* TAV_DAY_VIEW_PRIVATE_H */
