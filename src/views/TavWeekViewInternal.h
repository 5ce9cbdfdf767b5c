/* libcalendarui - the week view's private state, shared by its widget code
 * and its painting code (internal) */
#ifndef TAV_WEEK_VIEW_INTERNAL_H
#define TAV_WEEK_VIEW_INTERNAL_H

#include <array>
#include <ctime>
#include <memory>
#include <vector>

#include <cairo.h>

#include "TavGPtr.h"
#include "TavWeekView.h"
#include "TavWeekViewPrivate.h"

namespace tav::week {

constexpr int kDaysInWeek = 7;
constexpr int FirstDayColumn = 0;
constexpr int NColumns = 7;
constexpr int kHourHeight = kHourPixels;
constexpr int kAllDaySlotHeight = 48;
constexpr int kAllDayBarPadding = 20;
/* The seventh slot of a crowded day stands for the rest of its entries. */
constexpr int MAX_ALL_DAY_SLOTS = 7;
constexpr int kHeaderHeight = 60;
constexpr int kHourColumnWidth = 64;
constexpr int kTapSlop = 26;
constexpr guint kCurrentTimeInterval = 600000;
constexpr int kPanningPatience = 5;

struct Day {
    TavDate date {};
    bool is_today = false;
    GCharPtr header;
    WeekEntryList *list = nullptr;
};

enum class Area { None, Header, Hours, Table };

/* A record under the finger, a crowded group's mark, or an empty slot. */
struct Hit {
    int day = -1;
    WeekEntry *wentry = nullptr;
    bool in_all_day_bar = false;
    bool crowd_mark = false;
};

/* The "+n" mark of a group with more entries than its four columns hold:
 * where it is drawn, and how many entries lie under the columns. */
struct CrowdMark {
    GdkRectangle rect {};
    int hidden = 0;
};
constexpr int kCrowdMarkWidth = 30;
constexpr int kCrowdMarkHeight = 20;

} // namespace tav::week

struct _TavWeekViewPrivate {
    bool dispose_has_run = false;

    std::array<tav::week::Day, tav::week::kDaysInWeek> days;
    bool has_presented = false;
    TavDateInterval presented {};

    int first_day_of_week = 1;
    int all_day_bar_hour = 8;
    int n_all_day_slots = 1;
    int all_day_slot_height = tav::week::kAllDaySlotHeight;
    int all_day_bar_height = tav::week::kAllDaySlotHeight + tav::week::kAllDayBarPadding;

    tav::GRefPtr<GtkAdjustment> vadjustment;
    gulong value_changed_id = 0;
    gulong changed_id = 0;
    double last_painted_value = 0;
    guint idle_tag = 0;

    struct tm now {};
    guint timer_tag = 0;
    /* The clock; replaced by tests. */
    time_t (*clock) () = nullptr;
    int n_time_refreshes = 0;

    bool time_24hr_format = true;
    bool is_topmost = false;
    bool scroll_locked = false;

    tav::GRefPtr<TavCalendarEntry> entry_for_csm;
    GtkWidget *menu = nullptr;
    GtkWidget *menu_edit = nullptr;
    GtkWidget *menu_delete = nullptr;

    struct {
        bool clear = true;
        tav::week::Area area = tav::week::Area::None;
        int day = -1;
        int slot = -1;
        WeekEntry *wentry = nullptr;
    } highlight;

    struct {
        bool pending = false;
        double x = 0, y = 0;
        tav::week::Area area = tav::week::Area::None;
    } press;

    GdkWindow *header_win = nullptr;
    GdkWindow *hours_win = nullptr;
    GdkWindow *table_win = nullptr;

    /* The table's background (grid, shading, all-day bar) for the whole
     * scroll height, kept on the client side: an expose composes the
     * visible part with the entries in memory and sends one image. */
    struct SurfaceDeleter {
        void operator() (cairo_surface_t *s) const { cairo_surface_destroy (s); }
    };
    std::unique_ptr<cairo_surface_t, SurfaceDeleter> cache;
    int cache_width = 0;
    int cache_height = 0;
    bool cache_stale = true;

    tav::GRefPtr<GdkPixmap> background_image;
};

/* Shared between TavWeekView.cpp and TavWeekViewPaint.cpp. */
namespace tav::week {

int table_height (TavWeekViewPrivate *priv);
int time_to_table_offset (TavWeekViewPrivate *priv, int hour, int minute);
int column_x (int width, int col);
int column_at (int width, int x);
/* The rectangles of a record in table coordinates (not scrolled). */
GdkRectangle hour_entry_rect (TavWeekViewPrivate *priv, int width, int col, const WeekEntry *wentry);
GdkRectangle all_day_entry_rect (TavWeekViewPrivate *priv, int width, int col, int slot);
/* The marks of column @col's crowded groups, in list order. */
std::vector<CrowdMark> crowd_marks (TavWeekViewPrivate *priv, int width, int col);
double scroll_value (TavWeekViewPrivate *priv);

void paint_header (TavWeekView *view, GdkRectangle *area);
void paint_hours (TavWeekView *view, GdkRectangle *area);
void paint_table (TavWeekView *view, GdkRectangle *area);
void invalidate_cache (TavWeekView *view);

} // namespace tav::week

/* Hooks for the tests and the benchmark. */
G_BEGIN_DECLS
gboolean _tav_week_view_has_current_time_timer (TavWeekView *week_view);
int      _tav_week_view_get_n_time_refreshes   (TavWeekView *week_view);
void     _tav_week_view_set_clock              (TavWeekView *week_view, time_t (*clock) ());
int      _tav_week_view_get_all_day_bar_height (TavWeekView *week_view);
int      _tav_week_view_time_to_table_offset   (TavWeekView *week_view, int hour, int minute);
int      _tav_week_view_time_to_table_offset_relative (TavWeekView *week_view, int hour, int minute);
WeekEntryList *_tav_week_view_get_day_list     (TavWeekView *week_view, int col);
GtkWidget *_tav_week_view_get_context_menu     (TavWeekView *week_view);
void     tav_week_view_csm_edit_clicked        (GtkWidget *item, TavWeekView *week_view);
void     tav_week_view_csm_delete_clicked      (GtkWidget *item, TavWeekView *week_view);
void     tav_week_view_ensure_valid_items_in_csm (TavWeekView *week_view);
G_END_DECLS

#endif /* TAV_WEEK_VIEW_INTERNAL_H */
