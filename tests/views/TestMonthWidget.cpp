/* The month view widget under X: month selection and its limits, real
 * pointer events for taps and swipes, the activation signals, the entry
 * lists, and what the painted grid shows. */
#include "TestSupport.h"
#include "ViewTestSupport.h"
#include "TavCalendarColors.h"

#include <cstring>
#include <string>
#include <vector>

using namespace tav::test;

namespace {

struct Activations {
    std::vector<std::string> days;   /* "y-m-d" with month 0-based */
    std::vector<std::string> weeks;  /* "week: start..end" */
    int year_limit = 0, reads = 0, date_notifications = 0;
};

void
on_day (TavCalendar *, int year, int month, int day, Activations *a)
{
    a->days.push_back (std::to_string (year) + "-" + std::to_string (month) + "-" + std::to_string (day));
}

void
on_week (TavCalendar *, int week, TavDateInterval *i, Activations *a)
{
    char text[64];
    g_snprintf (text, sizeof text, "%d: %d-%d-%d..%d-%d-%d", week, i->start.year, i->start.month, i->start.day,
                i->end.year, i->end.month, i->end.day);
    a->weeks.push_back (text);
}

void on_limit (TavCalendarView *, Activations *a) { a->year_limit++; }
void on_date (GObject *, GParamSpec *, Activations *a) { a->date_notifications++; }
gboolean on_read (TavCalendarView *, Activations *a) { a->reads++; return FALSE; }

class MonthWidget : public ::testing::Test {
protected:
    void SetUp () override
    {
        if (!have_display ())
            GTEST_SKIP () << "no X display for GTK tests";
        window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
        calendar = TAV_CALENDAR (tav_calendar_new ());
        g_signal_connect (calendar, "day-activated", G_CALLBACK (on_day), &activations);
        g_signal_connect (calendar, "week-activated", G_CALLBACK (on_week), &activations);
        g_signal_connect (calendar, "year-limit-reached::0", G_CALLBACK (on_limit), &activations);
        g_signal_connect (calendar, "database-access-read", G_CALLBACK (on_read), &activations);
        g_signal_connect (calendar, "notify::date", G_CALLBACK (on_date), &activations);
        gtk_container_add (GTK_CONTAINER (window), GTK_WIDGET (calendar));
    }
    void TearDown () override
    {
        if (window)
            gtk_widget_destroy (window);
        flush_events ();
    }

    /* Shows March 2009 (or the month selected before) and measures the grid. */
    void show (int width = 800, int height = 600)
    {
        gtk_window_set_default_size (GTK_WINDOW (window), width, height);
        gtk_widget_show_all (window);
        run_main_loop_until ([this] { return GTK_WIDGET (calendar)->allocation.width > 1; }, 2000);
        repaint ();
        grid = child_window (true);
        int w, h;
        gdk_drawable_get_size (GDK_DRAWABLE (grid), &w, &h);
        cw = w / 7;
        ch = h / 6;
    }
    void repaint ()
    {
        flush_events ();
        gdk_window_process_all_updates ();
        flush_events ();
    }
    /* The grid's (widest) or the week column's (narrowest) window. */
    GdkWindow *child_window (bool widest)
    {
        GList *children = gdk_window_get_children (GTK_WIDGET (calendar)->window);
        GdkWindow *found = NULL;
        int best = widest ? -1 : G_MAXINT;
        for (GList *l = children; l; l = l->next) {
            int w = 0, h = 0;
            gdk_drawable_get_size (GDK_DRAWABLE (l->data), &w, &h);
            if (widest ? w > best : w < best) {
                best = w;
                found = GDK_WINDOW (l->data);
            }
        }
        g_list_free (children);
        return found;
    }
    void button (GdkWindow *win, int x, int y, GdkEventType type, guint number = 1)
    {
        ASSERT_TRUE (gdk_test_simulate_button (win, x, y, number, (GdkModifierType) 0, type));
        flush_events ();
    }
    void tap (GdkWindow *win, int x, int y, int dx = 0, int dy = 0)
    {
        button (win, x, y, GDK_BUTTON_PRESS);
        button (win, x + dx, y + dy, GDK_BUTTON_RELEASE);
    }
    /* A press, a drag in steps and a release @dx, @dy away. */
    void drag (GdkWindow *win, int x, int y, int dx, int dy)
    {
        button (win, x, y, GDK_BUTTON_PRESS);
        int ox = 0, oy = 0;
        gdk_window_get_origin (win, &ox, &oy);
        for (int step = 1; step <= 4; step++) {
            gdk_display_warp_pointer (gdk_display_get_default (), gdk_screen_get_default (), ox + x + dx * step / 4,
                                      oy + y + dy * step / 4);
            flush_events ();
        }
        button (win, x + dx, y + dy, GDK_BUTTON_RELEASE);
    }
    /* The colour of one pixel of the widget as painted now. */
    guint32 pixel (int x, int y)
    {
        repaint ();
        GdkPixbuf *shot = widget_snapshot (GTK_WIDGET (calendar));
        const guint32 rgb = rgb_at (shot, x, y);
        g_object_unref (shot);
        return rgb;
    }
    int shown (const char *property) { int v = 0; g_object_get (calendar, property, &v, NULL); return v; }

    GtkWidget *window = nullptr;
    TavCalendar *calendar = nullptr;
    GdkWindow *grid = nullptr;
    int cw = 0, ch = 0;
    Activations activations;
};

} // namespace

/* Month selection --------------------------------------------------------------- */

TEST_F (MonthWidget, StopsAtTheEndsOfTheSupportedYears)
{
    EXPECT_TRUE (tav_calendar_select_month (calendar, 11, 2037));
    tav_calendar_select_next_month (calendar);
    EXPECT_EQ (activations.year_limit, 1);
    EXPECT_EQ (std::to_string (shown ("month")) + "/" + std::to_string (shown ("year")), "11/2037");
    tav_calendar_select_month (calendar, 0, 1970);
    tav_calendar_select_prev_month (calendar);
    EXPECT_EQ (activations.year_limit, 2);
    EXPECT_EQ (std::to_string (shown ("month")) + "/" + std::to_string (shown ("year")), "0/1970");
    EXPECT_TRUE (tav_calendar_select_month (calendar, 5, 2040));
    EXPECT_EQ (activations.year_limit, 3);
    EXPECT_EQ (shown ("year"), 1970);
}

TEST_F (MonthWidget, GridAlwaysStartsInThePreviousMonth)
{
    struct { int month, year, fdow; TavDate first; } cases[] = {
        { 5, 2009, 1, { 2009, 4, 25 } },  /* 1 June 2009 is a Monday: a whole week of May first */
        { 5, 2009, 0, { 2009, 4, 31 } },  /* weeks from Sunday: only 31 May */
        { 0, 1970, 4, { 1969, 11, 25 } }, /* 1 January 1970 is a Thursday */
    };
    for (const auto &c : cases) {
        tav_calendar_set_first_day_of_week (calendar, c.fdow);
        tav_calendar_select_month (calendar, c.month, c.year);
        TavDateInterval interval {};
        tav_calendar_get_interval (calendar, &interval);
        EXPECT_EQ (tav_date_compare (&interval.start, &c.first), 0)
            << c.year << "-" << c.month + 1 << " starts " << interval.start.day << "." << interval.start.month + 1;
        TavDateInterval *presented = NULL;
        g_object_get (calendar, "presented-interval", &presented, NULL);
        ASSERT_NE (presented, nullptr);
        EXPECT_EQ (tav_date_compare (&presented->end, &interval.end), 0);
        tav_date_interval_free (presented);
    }
}

TEST_F (MonthWidget, SameMonthAgainIsIgnoredExceptTheFirstTime)
{
    LogCapture capture;
    TavDateInterval initial {};
    tav_calendar_get_interval (calendar, &initial);
    TavDate expected_start { 2007, 11, 31 }; /* January 2008, weeks from Monday */
    EXPECT_EQ (tav_date_compare (&initial.start, &expected_start), 0) << "a new view shows January 2008";
    tav_calendar_select_month (calendar, 0, 2008); /* the initial month, but the first selection */
    tav_calendar_select_month (calendar, 0, 2008);
    EXPECT_EQ (activations.date_notifications, 1);
    tav_calendar_set_first_day_of_week (calendar, 3);
    EXPECT_EQ (activations.date_notifications, 2) << "a new first weekday rebuilds the grid";
    EXPECT_EQ (tav_calendar_get_first_day_of_week (calendar), 3);
    EXPECT_FALSE (capture.has_warning ("FIXME: The calendar is frozen!"));
    tav_calendar_view_freeze (TAV_CALENDAR_VIEW (calendar));
    tav_calendar_set_first_day_of_week (calendar, 0);
    EXPECT_TRUE (capture.has_warning ("FIXME: The calendar is frozen!"));
    EXPECT_EQ (activations.date_notifications, 3) << "rebuilt all the same";
    tav_calendar_view_thaw (TAV_CALENDAR_VIEW (calendar));
}

TEST_F (MonthWidget, ReadsWhenShownAndOnEveryNewMonth)
{
    LogCapture capture;
    tav_calendar_select_month (calendar, 3, 2009);
    EXPECT_EQ (activations.reads, 0) << "nothing to show yet";
    show ();
    EXPECT_EQ (activations.reads, 1);
    const GtkAllocation &a = GTK_WIDGET (calendar)->allocation;
    EXPECT_TRUE (capture.has_message ("Realizing TavCalendar.")) << capture.dump ();
    EXPECT_TRUE (capture.has_message ("Allocation of size " + std::to_string (a.width) + "x" + std::to_string (a.height)));
    EXPECT_TRUE (capture.has_message ("Creating Cache here"));
    gtk_widget_queue_resize (GTK_WIDGET (calendar));
    gdk_window_invalidate_rect (GTK_WIDGET (calendar)->window, NULL, TRUE);
    repaint ();
    EXPECT_TRUE (capture.has_message ("Allocation again for the same size"));
    EXPECT_TRUE (capture.has_message ("using cache"));
    tav_calendar_select_next_month (calendar);
    EXPECT_EQ (activations.reads, 2);
    char *name = NULL;
    g_object_get (calendar, "month-name", &name, NULL);
    EXPECT_STREQ (name, "May");
    g_free (name);
}

TEST_F (MonthWidget, BadArgumentsAreRefused)
{
    LogCapture capture;
    tav_calendar_set_first_day_of_week (calendar, 7);
    EXPECT_CRITICAL (capture, "first_day_of_week >= 0 && first_day_of_week <= 6");
    EXPECT_FALSE (tav_calendar_select_month (NULL, 1, 2009));
    EXPECT_CRITICAL (capture, "TAV_IS_CALENDAR(calendar)");
    EXPECT_FALSE (tav_calendar_select_month (calendar, 12, 2009));
    tav_calendar_get_interval (calendar, NULL);
    EXPECT_CRITICAL (capture, "interval != NULL");
    EXPECT_EQ (tav_calendar_get_entries_for_week (calendar, 60), nullptr);
    EXPECT_TRUE (capture.has_warning ("Week 60 not found."));
    gboolean prev = FALSE, next = FALSE;
    TavDate far { 2020, 0, 1 };
    TavCalendarEntry *entry = tav_calendar_entry_new ();
    EXPECT_FALSE (tav_calendar_view_get_next_prev_status_for_entry (TAV_CALENDAR_VIEW (calendar), entry, &far, &prev,
                                                                    &next));
    EXPECT_TRUE (capture.has_warning ("Out of date range"));
    g_object_unref (entry);
}

/* Entries through the view base ------------------------------------------------- */

TEST_F (MonthWidget, EntriesForDayWeekAndMonth)
{
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal));
    tav_calendar_select_month (calendar, 2, 2009);
    TavTimestamp a_start { { 2009, 2, 10 }, { 9, 0 } }, a_end { { 2009, 2, 10 }, { 10, 0 } };
    TavTimestamp b_start { { 2009, 2, 10 }, { 11, 0 } }, b_end { { 2009, 2, 12 }, { 10, 0 } };
    TavCalendarEntry *a = tav_memory_source_add_event (source.get (), "A", &a_start, &a_end);
    TavCalendarEntry *b = tav_memory_source_add_event (source.get (), "B", &b_start, &b_end);
    read_into (TAV_CALENDAR_VIEW (calendar), source.get ());

    auto count = [] (GList *list) {
        guint n = g_list_length (list);
        g_list_free_full (list, g_object_unref);
        return n;
    };
    TavDate tenth { 2009, 2, 10 }, eleventh { 2009, 2, 11 };
    EXPECT_EQ (count (tav_calendar_get_entries_for_day (calendar, &tenth)), 2u);
    EXPECT_EQ (count (tav_calendar_get_entries_for_day (calendar, &eleventh)), 1u);
    EXPECT_EQ (count (tav_calendar_get_entries_for_week (calendar, 11)), 2u) << "each entry once";
    EXPECT_EQ (count (tav_calendar_get_entries_for_active_month (calendar)), 2u);

    gboolean prev = TRUE, next = FALSE;
    EXPECT_TRUE (tav_calendar_view_get_next_prev_status_for_entry (TAV_CALENDAR_VIEW (calendar), a, &tenth, &prev,
                                                                   &next));
    EXPECT_TRUE (prev) << "B's bar is above A on the 10th";
    EXPECT_TRUE (next) << "B goes on on the 11th";

    EXPECT_TRUE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (calendar), b));
    EXPECT_EQ (count (tav_calendar_get_entries_for_week (calendar, 11)), 1u);
    EXPECT_FALSE (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (calendar), b));
}

/* A removal, or an addition outside a read, leaves the grid exactly as a
 * fresh read of what is left: lanes and bar ends follow at once. */
TEST_F (MonthWidget, RemovingOrAddingOutsideAReadLinesUpLikeAFreshRead)
{
    MemorySourcePtr source (tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal));
    tav_calendar_select_month (calendar, 2, 2009);
    show (560, 480);
    TavTimestamp y_start { { 2009, 2, 2 }, { 8, 0 } }, y_end { { 2009, 2, 4 }, { 9, 0 } };
    TavTimestamp x_start { { 2009, 2, 3 }, { 10, 0 } }, x_end { { 2009, 2, 5 }, { 11, 0 } };
    TavCalendarEntry *y = tav_memory_source_add_event (source.get (), "Y", &y_start, &y_end);
    g_object_ref (y);
    tav_memory_source_add_event (source.get (), "X Tue-Thu", &x_start, &x_end);
    auto view = TAV_CALENDAR_VIEW (calendar);
    auto reread = [&] {
        tav_calendar_select_next_month (calendar);
        tav_calendar_select_prev_month (calendar);
        read_into (view, source.get ());
        repaint ();
        return widget_snapshot (GTK_WIDGET (calendar));
    };
    auto same = [] (GdkPixbuf *a, GdkPixbuf *b) {
        const bool equal = gdk_pixbuf_get_byte_length (a) == gdk_pixbuf_get_byte_length (b)
            && memcmp (gdk_pixbuf_get_pixels (a), gdk_pixbuf_get_pixels (b), gdk_pixbuf_get_byte_length (a)) == 0;
        g_object_unref (a);
        g_object_unref (b);
        return equal;
    };
    GdkPixbuf *both = reread ();
    EXPECT_TRUE (tav_calendar_view_remove_entry (view, y));
    repaint ();
    GdkPixbuf *removed = widget_snapshot (GTK_WIDGET (calendar));
    tav_memory_source_remove (source.get (), y);
    EXPECT_TRUE (same (removed, reread ())) << "X's bar must still reach Thursday";

    /* Added alone, as the window adds an entry, and added in a freeze. */
    tav_memory_source_add (source.get (), y);
    EXPECT_TRUE (tav_calendar_view_add_entry (view, y));
    tav_calendar_view_recalculate_entries (view);
    repaint ();
    EXPECT_TRUE (same (widget_snapshot (GTK_WIDGET (calendar)), both));
    EXPECT_TRUE (tav_calendar_view_remove_entry (view, y));
    tav_calendar_view_freeze (view);
    EXPECT_TRUE (tav_calendar_view_add_entry (view, y));
    tav_calendar_view_thaw (view);
    repaint ();
    EXPECT_TRUE (same (widget_snapshot (GTK_WIDGET (calendar)), reread ()));
    g_object_unref (y);
}

/* At 480x360 the lines keep a readable text size (fewer lines, not smaller
 * ones), and a bar starting in February recedes only over February. */
TEST_F (MonthWidget, SmallCellsKeepReadableTextAndOnlyOtherMonthsRecede)
{
    tav_calendar_select_month (calendar, 2, 2009);
    show (480, 360);
    auto view = TAV_CALENDAR_VIEW (calendar);
    for (int i = 0; i < 2; i++) {
        /* 27 February to 3 March, then a line on Tuesday 10 March. */
        TavCalendarEntry *e = i == 0 ? make_entry ("Trip", { 2009, 1, 27, 0, 0 }, { 2009, 2, 3, 0, 0 }, true, 9)
                                     : make_entry ("Hg Hg Hg", { 2009, 2, 10, 9, 0 }, { 2009, 2, 10, 10, 0 });
        tav_calendar_view_add_entry (view, e);
        g_object_unref (e);
    }
    repaint ();
    GdkPixbuf *shot = pixbuf_of (GDK_DRAWABLE (grid));
    const tav::CalendarRgb &green = tav::calendar_rgb (9);
    const guint32 full = guint32 ((green.r << 16) | (green.g << 8) | green.b);
    auto cell_has = [&] (int row, int col, guint32 rgb) {
        for (int y = row * ch; y < (row + 1) * ch; y++)
            if (rgb_at (shot, col * cw + cw / 2, y) == rgb)
                return true;
        return false;
    };
    EXPECT_TRUE (cell_has (0, 6, full)) << "1 March: this month's part of the bar at full colour";
    EXPECT_TRUE (cell_has (1, 0, full)) << "2 March";
    EXPECT_FALSE (cell_has (0, 4, full)) << "27 February recedes";

    /* The rows of Tuesday 10 March's left half holding bright title ink. */
    int first = -1, last = -1;
    for (int y = 2 * ch; y < 3 * ch; y++)
        for (int x = cw; x < cw + cw / 2; x++) {
            const guint32 p = rgb_at (shot, x, y);
            if ((p >> 16) > 0xc0 && ((p >> 8) & 0xff) > 0xc0 && (p & 0xff) > 0xc0) {
                first = first < 0 ? y : first;
                last = y;
                break;
            }
        }
    EXPECT_GE (last - first + 1, 11) << "'Hg' in 13-pixel text";
    g_object_unref (shot);
}

/* Pointer ------------------------------------------------------------------------ */

TEST_F (MonthWidget, TapsActivateDaysWeeksAndPages)
{
    tav_calendar_set_first_day_of_week (calendar, 1);
    tav_calendar_select_month (calendar, 2, 2009); /* grid from Monday 23 February */
    show ();
    const int x = 2 * cw + cw / 2, y = 2 * ch + ch / 2; /* row 2, column 2: Wednesday 11 March */
    tap (grid, x, y, 20, -20);
    tap (grid, x, 3 * ch + 3); /* the hit test sits 5 pixels low: 3 pixels into row 3 is row 2 */
    tap (grid, x, y, 27, 0);   /* 27 pixels away is no tap */
    /* A second button during a tap is ignored. */
    button (grid, x, y, GDK_BUTTON_PRESS);
    button (grid, x, y, GDK_BUTTON_PRESS, 3);
    button (grid, x, y, GDK_BUTTON_RELEASE);
    button (grid, x, y, GDK_BUTTON_RELEASE, 3);
    EXPECT_EQ (activations.days, (std::vector<std::string> { "2009-2-11", "2009-2-11", "2009-2-11" }));

    /* Week number of row 1: week 10, Monday 2 to Sunday 8 March. */
    tap (child_window (false), 5, ch + ch / 2);
    EXPECT_EQ (activations.weeks, std::vector<std::string> { "10: 2009-2-2..2009-2-8" });

    /* A greyed day of April pages forward instead of activating. */
    tap (grid, 6 * cw + cw / 2, 5 * ch + ch / 2);
    EXPECT_EQ (shown ("month"), 3);
    EXPECT_EQ (activations.days.size (), 3u);
}

TEST_F (MonthWidget, PressedCellIsHighlightedUntilRelease)
{
    tav_calendar_select_month (calendar, 2, 2009);
    show ();
    int ox = 0, oy = 0;
    gdk_window_get_position (grid, &ox, &oy);
    /* Bottom left corner of the cell in row 2, column 4, and of its neighbour. */
    const int px = ox + 4 * cw + 3, py = oy + 3 * ch - 3;
    const guint32 before = pixel (px, py), neighbour = pixel (px + cw, py);
    button (grid, 4 * cw + cw / 2, 2 * ch + ch / 2, GDK_BUTTON_PRESS);
    EXPECT_NE (pixel (px, py), before) << "the pressed cell changes colour";
    EXPECT_EQ (pixel (px + cw, py), neighbour) << "its neighbour does not";
    button (grid, 4 * cw + cw / 2, 2 * ch + ch / 2, GDK_BUTTON_RELEASE);
    EXPECT_EQ (pixel (px, py), before) << "released: back to normal";
    EXPECT_EQ (activations.days.size (), 1u);
}

TEST_F (MonthWidget, HostBackgroundIsPaintedBehindTheHeader)
{
    tav_calendar_select_month (calendar, 2, 2009);
    show ();
    const guint32 themed = pixel (2, 2);
    GdkPixmap *pixmap = gdk_pixmap_new (GTK_WIDGET (calendar)->window, 64, 64, -1);
    cairo_t *cr = gdk_cairo_create (pixmap);
    cairo_set_source_rgb (cr, 0x20 / 255.0, 0x80 / 255.0, 0x40 / 255.0);
    cairo_paint (cr);
    cairo_destroy (cr);
    tav_calendar_set_background_image_pixmap (calendar, pixmap);
    g_object_unref (pixmap); /* the view keeps its own reference */
    EXPECT_EQ (pixel (2, 2), 0x208040u);
    EXPECT_EQ (pixel (70, 2), 0x208040u) << "tiled";
    tav_calendar_set_background_image_pixmap (calendar, NULL);
    EXPECT_EQ (pixel (2, 2), themed);
}

struct SwipeCase {
    const char *label;
    int dx, dy;
    int month_after;
};

class MonthSwipes : public MonthWidget, public ::testing::WithParamInterface<SwipeCase> {};

TEST_P (MonthSwipes, PageOncePerPress)
{
    const SwipeCase &c = GetParam ();
    tav_calendar_select_month (calendar, 5, 2009);
    show ();
    drag (grid, 3 * cw + cw / 2, 3 * ch + ch / 2, c.dx, c.dy);
    EXPECT_EQ (shown ("month"), c.month_after) << c.label;
    EXPECT_EQ (shown ("year"), 2009) << c.label;
    EXPECT_TRUE (activations.days.empty ()) << c.label << ": a drag activates no day";
}

INSTANTIATE_TEST_SUITE_P (Pointer, MonthSwipes, ::testing::Values (
    SwipeCase { "40 pixels left is too short", -40, 0, 5 },
    SwipeCase { "60 pixels left: next month", -60, 0, 6 },
    SwipeCase { "160 pixels left: still one month", -160, 0, 6 },
    SwipeCase { "60 pixels right: previous month", 60, 0, 4 },
    SwipeCase { "60 pixels up: next month", 10, -60, 6 },
    SwipeCase { "60 pixels down: previous month", -10, 60, 4 }));

/* Painting ---------------------------------------------------------------------------- */

/* With the theme's cell image present, cells are painted with it. */
TEST_F (MonthWidget, ThemeImagesReplaceTheDrawnCells)
{
    TempDir theme;
    GdkPixbuf *red = gdk_pixbuf_new (GDK_COLORSPACE_RGB, FALSE, 8, 8, 8);
    gdk_pixbuf_fill (red, 0xd02020ff);
    ASSERT_TRUE (gdk_pixbuf_save (red, theme.file ("calendar_month_normal.png").c_str (), "png", NULL, NULL));
    g_object_unref (red);
    const std::string previous = g_getenv ("TAV_CALENDAR_THEME_DIR") ? g_getenv ("TAV_CALENDAR_THEME_DIR") : "";
    g_setenv ("TAV_CALENDAR_THEME_DIR", theme.path ().c_str (), TRUE);
    tav_calendar_select_month (calendar, 2, 2009);
    show (640, 480);
    GdkPixbuf *shot = widget_snapshot (GTK_WIDGET (calendar));
    if (previous.empty ())
        g_unsetenv ("TAV_CALENDAR_THEME_DIR");
    else
        g_setenv ("TAV_CALENDAR_THEME_DIR", previous.c_str (), TRUE);
    ASSERT_NE (shot, nullptr);
    /* Bottom left corner of Wednesday 18 March (row 3, column 2), away from text. */
    int ox = 0, oy = 0;
    gdk_window_get_position (grid, &ox, &oy);
    EXPECT_EQ (rgb_at (shot, ox + 2 * cw + 3, oy + 4 * ch - 3), 0xd02020u);
    g_object_unref (shot);
}

