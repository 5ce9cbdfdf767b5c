/* libcalendarui - the home-screen applet
 *
 * A view without a window of its own: it paints on its parent (so the home
 * screen shows through) and takes taps through an input-only window. The
 * instances it is fed are kept as AppletInstances; after every change of
 * them, of the clock or of the time format, applet_update() chooses the
 * rows (TavHomeAppletPrivate), writes their texts and sets the one timer.
 */
#include "TavHomeAppletInternal.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "TavCalendarColors.h"
#include "TavCalendarEntryInternal.h"
#include "TavCalendarNote.h"
#include "TavCalendarTask.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavViewPaint.h"

using namespace tav::applet;

/* A release farther than this from its press is not a tap; a move farther
 * than the second drops the pressed look. */
#define TAP_THRESHOLD 26
#define CANCEL_THRESHOLD 30

enum {
    ENTRY_ACTIVATED,
    CALENDAR_ACTIVATED,
    TIME_CHANGED,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_PRESENTED_INTERVAL,
    PROP_TIME_24HR_FORMAT,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

/* Days read ahead, today included: a week of weekday names, then wider
 * while fewer rows than the applet holds are found. */
static constexpr std::array<int, 3> kLookAhead = { 8, 32, 366 };

namespace {

/* One shown row, with its texts made when the rows were chosen. */
struct Row {
    tav::GRefPtr<TavCalendarEntry> entry;
    TavTimestamp start {};
    InstanceKind kind = InstanceKind::Timed;
    bool now = false;
    int color = 0;
    std::string when, title, location;
};

} // namespace

struct _TavHomeAppletPrivate {
    bool dispose_has_run = false;

    /* Parallel: each instance holds a reference on its entry. */
    std::vector<AppletInstance> instances;
    std::vector<tav::GRefPtr<TavCalendarEntry>> held;
    guint next_seq = 0;
    std::vector<Row> rows;

    TavDateInterval presented {};
    size_t stage = 0;
    bool read_once = false;

    time_t (*clock) () = nullptr;
    guint timer_tag = 0;
    LocalSeconds timer_at = 0;
    guint timer_delay_ms = 0;

    bool time_24hr_format = true;

    GdkWindow *event_window = nullptr;
    AppletGeometry geometry;
    struct {
        bool on = false;
        double x = 0, y = 0;
        int row = -1; /* the row shown pressed, -1 none */
    } press;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavHomeApplet, tav_home_applet, TAV_TYPE_CALENDAR_VIEW)

static void applet_update (TavHomeApplet *applet);

/* Clock and interval ------------------------------------------------------------ */

static time_t applet_time (TavHomeAppletPrivate *priv)
{
    return priv->clock ? priv->clock () : time (NULL);
}

static LocalSeconds to_local (time_t t)
{
    struct tm tm;
    localtime_r (&t, &tm);
    const TavTimestamp ts = { { tm.tm_year + 1900, tm.tm_mon, tm.tm_mday }, { tm.tm_hour, tm.tm_min } };
    return local_seconds (ts, tm.tm_sec);
}

static time_t from_local (LocalSeconds seconds)
{
    const TavTimestamp ts = local_timestamp (seconds);
    struct tm tm = {};
    tm.tm_year = ts.date.year - 1900;
    tm.tm_mon = ts.date.month;
    tm.tm_mday = ts.date.day;
    tm.tm_hour = ts.time.hour;
    tm.tm_min = ts.time.minute;
    tm.tm_sec = static_cast<int> (seconds - local_seconds (ts));
    tm.tm_isdst = -1;
    return mktime (&tm);
}

/* Sets the read interval to the stage's days from @today. */
static void applet_set_interval (TavHomeApplet *applet, int64_t today, size_t stage)
{
    TavHomeAppletPrivate *priv = applet->priv;
    priv->stage = std::min (stage, kLookAhead.size () - 1);
    priv->presented.start = civil_date (today);
    priv->presented.end = civil_date (today + kLookAhead[priv->stage] - 1);
    g_object_notify_by_pspec (G_OBJECT (applet), properties[PROP_PRESENTED_INTERVAL]);
}

static void applet_drop_instances (TavHomeAppletPrivate *priv)
{
    priv->instances.clear ();
    priv->held.clear ();
}

/* Drops everything and asks the owner for the days of @stage from today. */
static void applet_read (TavHomeApplet *applet, size_t stage)
{
    TavHomeAppletPrivate *priv = applet->priv;
    priv->read_once = true;
    applet_set_interval (applet, day_of (to_local (applet_time (priv))), stage);
    applet_drop_instances (priv);
    tav_calendar_view_read_database (TAV_CALENDAR_VIEW (applet));
    applet_update (applet);
}

/* Rows and timer ---------------------------------------------------------------- */

static gboolean on_timer_cb (gpointer data);

static void applet_set_timer (TavHomeApplet *applet, LocalSeconds now_local, time_t now)
{
    TavHomeAppletPrivate *priv = applet->priv;
    if (priv->timer_tag)
        g_source_remove (priv->timer_tag);
    priv->timer_at = next_change (priv->instances, now_local);
    /* Whole seconds on the wall clock; a moment that does not exist (in
     * a daylight-saving gap) is taken as mktime moves it. */
    const time_t at = from_local (priv->timer_at);
    const time_t seconds = std::clamp<time_t> (at - now, 1, kDay + 3600);
    priv->timer_delay_ms = static_cast<guint> (seconds * 1000);
    priv->timer_tag = g_timeout_add (priv->timer_delay_ms, on_timer_cb, applet);
}

static Row make_row (const AppletInstance &instance, LocalSeconds now, bool twelve_hour)
{
    Row row;
    row.entry = tav::GRefPtr<TavCalendarEntry> (instance.entry);
    row.start = local_timestamp (instance.start);
    row.kind = instance.kind;
    row.now = is_in_progress (instance, now);
    row.color = instance.color;
    row.when = when_text (instance, now, twelve_hour);
    row.title = row_title (instance);
    char *location = nullptr;
    g_object_get (instance.entry, "location", &location, NULL);
    /* The entry keeps the place as given: show what is readable of it. */
    tav::GCharPtr valid (g_utf8_make_valid (location ? location : "", -1));
    row.location = valid.get ();
    g_free (location);
    return row;
}

static void applet_update (TavHomeApplet *applet)
{
    TavHomeAppletPrivate *priv = applet->priv;
    if (priv->dispose_has_run)
        return;
    const time_t now = applet_time (priv);
    const LocalSeconds local = to_local (now);
    /* A new day moves the interval: read it (which comes back here). */
    if (priv->read_once && civil_day (priv->presented.start) != day_of (local)) {
        applet_read (applet, 0);
        return;
    }
    std::vector<Row> rows;
    for (const AppletInstance *instance : choose_rows (priv->instances, local))
        rows.push_back (make_row (*instance, local, !priv->time_24hr_format));
    priv->rows = std::move (rows);
    priv->press.row = -1;
    applet_set_timer (applet, local, now);
    gtk_widget_queue_draw (GTK_WIDGET (applet));
}

static gboolean on_timer_cb (gpointer data)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (data);
    applet->priv->timer_tag = 0;
    applet_update (applet);
    return G_SOURCE_REMOVE;
}

/* Feeding ------------------------------------------------------------------------- */

static gboolean tav_home_applet_add_entry_instance (TavCalendarView *view, const TavTimestamp *instance_start,
                                                    TavCalendarEntry *entry)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (view);
    TavHomeAppletPrivate *priv = applet->priv;
    if (priv->dispose_has_run || !instance_start)
        return FALSE;
    if (TAV_IS_CALENDAR_NOTE (entry)) {
        TAV_WARNING ("No notes in the home applet.");
        return FALSE;
    }
    const tav::model::EntrySpan span = tav::model::entry_span (entry);
    AppletInstance instance;
    instance.entry = entry;
    instance.start = local_seconds (*instance_start);
    instance.color = tav::model::entry_color (entry);
    if (const char *title = tav_calendar_entry_get_title (entry))
        instance.title = title;
    instance.seq = priv->next_seq++;
    if (TAV_IS_CALENDAR_TASK (entry)) {
        gboolean done = FALSE;
        g_object_get (entry, "done", &done, NULL);
        instance.kind = InstanceKind::Task;
        instance.done = done;
        instance.start = civil_day (instance_start->date) * kDay;
        instance.end = instance.start + kDay;
    } else if (tav_calendar_entry_is_all_day (entry) || tav_calendar_entry_has_bday (entry)) {
        instance.kind = tav_calendar_entry_has_bday (entry) ? InstanceKind::Birthday : InstanceKind::AllDay;
        const int64_t first = civil_day (instance_start->date);
        const int64_t n_days = std::max<int64_t> (0, civil_day (span.end.date) - civil_day (span.start.date));
        instance.start = first * kDay;
        instance.end = (first + n_days + 1) * kDay;
        if (instance.kind == InstanceKind::Birthday) {
            int birth_year = 0;
            g_object_get (entry, "birth-year", &birth_year, NULL);
            if (birth_year > 0 && instance_start->date.year >= birth_year)
                instance.age = instance_start->date.year - birth_year;
        }
    } else {
        const LocalSeconds length = local_seconds (span.end) - local_seconds (span.start);
        instance.kind = InstanceKind::Timed;
        instance.end = instance.start + std::max<LocalSeconds> (length, 60);
    }
    priv->instances.push_back (instance);
    priv->held.emplace_back (entry);
    /* A single addition outside a read shows at once; a read updates
     * once at its end. */
    if (!tav_calendar_view_is_frozen (view))
        applet_update (applet);
    return TRUE;
}

static gboolean applet_forget (TavHomeAppletPrivate *priv, TavCalendarEntry *entry)
{
    size_t kept = 0;
    for (size_t i = 0; i < priv->instances.size (); ++i) {
        TavCalendarEntry *e = priv->instances[i].entry;
        if (e == entry || tav_calendar_entry_is_equal (e, entry))
            continue;
        priv->instances[kept] = priv->instances[i];
        priv->held[kept] = std::move (priv->held[i]);
        ++kept;
    }
    const bool found = kept != priv->instances.size ();
    priv->instances.resize (kept);
    priv->held.resize (kept);
    return found;
}

static gboolean tav_home_applet_remove_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (view);
    const gboolean found = applet_forget (applet->priv, entry);
    if (found)
        applet_update (applet);
    return found;
}

static gboolean tav_home_applet_refresh_entry (TavCalendarView *view, TavCalendarEntry *entry)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (view);
    applet_forget (applet->priv, entry);
    /* Back through the view's filters (hidden calendar, done task) and
     * the expansion into instances; updates as a single addition does. */
    tav_calendar_view_add_entry (view, entry);
    applet_update (applet);
    return TRUE;
}

static void tav_home_applet_clear_entries (TavCalendarView *view)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (view);
    applet_drop_instances (applet->priv);
    applet_update (applet);
}

static void tav_home_applet_recalculate_entries (TavCalendarView *view)
{
    applet_update (TAV_HOME_APPLET (view));
}

static void tav_home_applet_reading_started (TavCalendarView *view)
{
    /* A read brings everything the interval holds. */
    applet_drop_instances (TAV_HOME_APPLET (view)->priv);
}

static void tav_home_applet_reading_finished (TavCalendarView *view)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (view);
    TavHomeAppletPrivate *priv = applet->priv;
    const LocalSeconds now = to_local (applet_time (priv));
    if (choose_rows (priv->instances, now).size () < kMaxRows && priv->stage + 1 < kLookAhead.size ()
        && civil_day (priv->presented.start) == day_of (now)) {
        applet_read (applet, priv->stage + 1);
        return;
    }
    applet_update (applet);
}

static void tav_home_applet_real_time_changed (TavHomeApplet *applet)
{
    applet_update (applet);
}

/* Painting ------------------------------------------------------------------------ */

namespace {

struct Rgba {
    double r, g, b;
};

Rgba style_color (GtkWidget *widget, const char *property, const Rgba &fallback)
{
    const std::string name = tav::views::style_string (widget, property);
    GdkColor color;
    if (!name.empty () && gdk_color_parse (name.c_str (), &color))
        return { color.red / 65535.0, color.green / 65535.0, color.blue / 65535.0 };
    return fallback;
}

tav::GUniquePtr<PangoFontDescription> style_font (GtkWidget *widget, const char *property)
{
    const std::string name = tav::views::style_string (widget, property);
    PangoFontDescription *desc = pango_font_description_from_string (name.empty () ? "Sans 12" : name.c_str ());
    /* The handheld's font may be missing: keep the size and weight. */
    std::string families = pango_font_description_get_family (desc) ? pango_font_description_get_family (desc) : "";
    families += ",DejaVu Sans,Sans";
    pango_font_description_set_family (desc, families.c_str ());
    return tav::GUniquePtr<PangoFontDescription> (desc);
}

/* Light text with a soft shadow, readable on a light wallpaper too. */
void show_text (cairo_t *cr, PangoLayout *layout, double x, double y, const Rgba &color)
{
    cairo_set_source_rgba (cr, 0, 0, 0, 0.55);
    cairo_move_to (cr, x + 1, y + 1);
    pango_cairo_show_layout (cr, layout);
    cairo_set_source_rgb (cr, color.r, color.g, color.b);
    cairo_move_to (cr, x, y);
    pango_cairo_show_layout (cr, layout);
}

void set_layout (PangoLayout *layout, const PangoFontDescription *font, const std::string &text, int width,
                 bool markup = false)
{
    pango_layout_set_font_description (layout, font);
    if (markup)
        pango_layout_set_markup (layout, text.c_str (), -1);
    else {
        /* Plain text: drop the attributes of the last markup. */
        pango_layout_set_attributes (layout, NULL);
        pango_layout_set_text (layout, text.c_str (), -1);
    }
    pango_layout_set_width (layout, std::max (1, width) * PANGO_SCALE);
    pango_layout_set_ellipsize (layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_single_paragraph_mode (layout, TRUE);
}

/* A tick box for a task, a cake for a birthday: as the week view marks them. */
void paint_kind_mark (cairo_t *cr, InstanceKind kind, double x, double y, double size, const Rgba &ink)
{
    cairo_set_source_rgb (cr, ink.r, ink.g, ink.b);
    if (kind == InstanceKind::Task) {
        cairo_set_line_width (cr, 1.6);
        cairo_rectangle (cr, x + 1.5, y + 1.5, size - 3, size - 3);
        cairo_stroke (cr);
        cairo_move_to (cr, x + size * 0.25, y + size * 0.5);
        cairo_line_to (cr, x + size * 0.44, y + size * 0.72);
        cairo_line_to (cr, x + size * 0.78, y + size * 0.28);
        cairo_stroke (cr);
    } else {
        cairo_rectangle (cr, x + 2, y + size / 2, size - 4, size / 2 - 1);
        cairo_fill (cr);
        cairo_rectangle (cr, x + size / 2 - 1, y + size * 0.2, 2, size * 0.3);
        cairo_fill (cr);
        cairo_arc (cr, x + size / 2, y + size * 0.12, 1.6, 0, 2 * G_PI);
        cairo_fill (cr);
    }
}

} // namespace

static void applet_paint (TavHomeApplet *applet, cairo_t *cr)
{
    GtkWidget *widget = GTK_WIDGET (applet);
    TavHomeAppletPrivate *priv = applet->priv;
    const AppletGeometry &g = priv->geometry;
    const int n_rows = static_cast<int> (priv->rows.size ());

    double alpha = 0.62;
    gtk_widget_style_get (widget, "panel-alpha", &alpha, NULL);
    const Rgba title_color = style_color (widget, "title-font-color", { 1, 1, 1 });
    const Rgba detail_color = style_color (widget, "detail-font-color", { 0.78, 0.82, 0.86 });
    const Rgba now_color = style_color (widget, "now-font-color", { 0.39, 0.71, 0.96 });
    auto title_font = style_font (widget, "font-title");
    auto detail_font = style_font (widget, "font-detail");

    /* The panel ends below the last row (or the empty line). */
    const int panel_bottom = std::min (g.height - g.margin / 2,
                                       g.margin + g.header_height + std::max (1, n_rows) * g.row_height + g.margin / 2);
    const int panel_height = panel_bottom - g.margin / 2;
    if (alpha > 0) {
        tav::views::rounded_rectangle (cr, g.margin / 2.0, g.margin / 2.0, g.width - g.margin, panel_height, 12, 12);
        cairo_set_source_rgba (cr, 0.07, 0.09, 0.12, std::clamp (alpha, 0.0, 1.0));
        cairo_fill (cr);
    }

    auto layout = tav::adoptGRef (pango_cairo_create_layout (cr));
    const int text_width = g.width - 2 * g.margin - 24;

    /* Today's date. */
    const LocalSeconds now = to_local (applet_time (priv));
    const int64_t today = day_of (now);
    const TavDate date = civil_date (today);
    struct tm tm = {};
    tm.tm_year = date.year - 1900;
    tm.tm_mon = date.month;
    tm.tm_mday = date.day;
    tm.tm_wday = civil_weekday (today);
    char header[128] = "";
    strftime (header, sizeof header, TAV_CAL ("cal_va_applet_header"), &tm);
    tav::GCharPtr header_markup (g_markup_printf_escaped ("<b>%s</b>", header));
    set_layout (layout.get (), detail_font.get (), header_markup.get (), text_width, true);
    int lw, lh;
    pango_layout_get_pixel_size (layout.get (), &lw, &lh);
    show_text (cr, layout.get (), g.margin + 12, g.margin + (g.header_height - lh) / 2.0, title_color);
    cairo_set_source_rgba (cr, 1, 1, 1, 0.18);
    cairo_rectangle (cr, g.margin + 8, g.margin + g.header_height - 1, g.width - 2 * g.margin - 16, 1);
    cairo_fill (cr);

    if (n_rows == 0) {
        set_layout (layout.get (), detail_font.get (), TAV_CAL ("cal_va_applet_no_events"), text_width);
        pango_layout_get_pixel_size (layout.get (), &lw, &lh);
        show_text (cr, layout.get (), (g.width - lw) / 2.0, g.margin + g.header_height + (g.row_height - lh) / 2.0,
                   detail_color);
        return;
    }

    for (int n = 0; n < n_rows; ++n) {
        const Row &row = priv->rows[static_cast<size_t> (n)];
        int x, y, w, h;
        row_rect (g, n, &x, &y, &w, &h);
        if (y + h > g.height)
            break;
        if (priv->press.row == n) {
            cairo_set_source_rgba (cr, 1, 1, 1, 0.16);
            cairo_rectangle (cr, x, y, w, h);
            cairo_fill (cr);
        }
        if (n > 0) {
            cairo_set_source_rgba (cr, 1, 1, 1, 0.10);
            cairo_rectangle (cr, x + 24, y, w - 32, 1);
            cairo_fill (cr);
        }
        /* The calendar's colour as a stripe, as on the week view's entries;
         * white keeps an outline so that it shows on a light wallpaper. */
        const tav::CalendarRgb &c = tav::calendar_rgb (row.color);
        tav::views::rounded_rectangle (cr, x + 10, y + 9, 5, h - 18, 2.5, 2.5);
        cairo_set_source_rgb (cr, c.r / 255.0, c.g / 255.0, c.b / 255.0);
        cairo_fill (cr);

        int title_x = x + 24;
        const int title_y = y + 7;
        if (row.kind == InstanceKind::Task || row.kind == InstanceKind::Birthday) {
            paint_kind_mark (cr, row.kind, title_x, title_y + 2, 16, title_color);
            title_x += 22;
        }
        set_layout (layout.get (), title_font.get (), row.title, x + w - 10 - title_x);
        show_text (cr, layout.get (), title_x, title_y, title_color);

        /* The time in bold (in the accent colour while it is on), then
         * the place in what room is left. */
        const int detail_x = x + 24, detail_right = x + w - 10;
        tav::GCharPtr when (g_markup_printf_escaped ("<b>%s</b>", row.when.c_str ()));
        set_layout (layout.get (), detail_font.get (), when.get (), detail_right - detail_x, true);
        int when_width;
        pango_layout_get_pixel_size (layout.get (), &when_width, &lh);
        const int detail_y = y + h - 7 - lh;
        show_text (cr, layout.get (), detail_x, detail_y, row.now ? now_color : detail_color);
        const int place_x = detail_x + when_width;
        if (!row.location.empty () && detail_right - place_x > 24) {
            set_layout (layout.get (), detail_font.get (), "  \xc2\xb7  " + row.location, detail_right - place_x);
            show_text (cr, layout.get (), place_x, detail_y, detail_color);
        }
    }
}

/* Pointer --------------------------------------------------------------------------- */

static void applet_set_pressed_row (TavHomeApplet *applet, int row)
{
    if (applet->priv->press.row != row) {
        applet->priv->press.row = row;
        gtk_widget_queue_draw (GTK_WIDGET (applet));
    }
}

static gboolean tav_home_applet_button_press (GtkWidget *widget, GdkEventButton *event)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (widget);
    TavHomeAppletPrivate *priv = applet->priv;
    if (event->button != 1 || event->type != GDK_BUTTON_PRESS)
        return FALSE;
    priv->press.on = true;
    priv->press.x = event->x;
    priv->press.y = event->y;
    applet_set_pressed_row (applet, row_at (priv->geometry, static_cast<int> (priv->rows.size ()),
                                            static_cast<int> (event->x), static_cast<int> (event->y)));
    return TRUE;
}

static gboolean tav_home_applet_motion (GtkWidget *widget, GdkEventMotion *event)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    if (priv->press.on && (std::abs (event->x - priv->press.x) > CANCEL_THRESHOLD
                           || std::abs (event->y - priv->press.y) > CANCEL_THRESHOLD)) {
        priv->press.on = false;
        applet_set_pressed_row (TAV_HOME_APPLET (widget), -1);
    }
    return FALSE;
}

static gboolean tav_home_applet_leave (GtkWidget *widget, GdkEventCrossing *event)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    if (priv->press.on && event->mode == GDK_CROSSING_NORMAL) {
        priv->press.on = false;
        applet_set_pressed_row (TAV_HOME_APPLET (widget), -1);
    }
    return FALSE;
}

static gboolean tav_home_applet_button_release (GtkWidget *widget, GdkEventButton *event)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (widget);
    TavHomeAppletPrivate *priv = applet->priv;
    if (event->button != 1 || !priv->press.on)
        return FALSE;
    priv->press.on = false;
    applet_set_pressed_row (applet, -1);
    if (std::abs (event->x - priv->press.x) > TAP_THRESHOLD || std::abs (event->y - priv->press.y) > TAP_THRESHOLD)
        return FALSE;
    const int n = row_at (priv->geometry, static_cast<int> (priv->rows.size ()), static_cast<int> (event->x),
                          static_cast<int> (event->y));
    if (n < 0) {
        g_signal_emit (applet, signals[CALENDAR_ACTIVATED], 0);
        return TRUE;
    }
    /* The handler may change the rows: keep what is reported. */
    const Row row = priv->rows[static_cast<size_t> (n)];
    g_signal_emit (applet, signals[ENTRY_ACTIVATED], 0, row.entry.get (), &row.start.date);
    return TRUE;
}

/* Widget ----------------------------------------------------------------------------- */

static void tav_home_applet_realize (GtkWidget *widget)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    gtk_widget_set_realized (widget, TRUE);
    widget->window = gtk_widget_get_parent_window (widget);
    g_object_ref (widget->window);

    GdkWindowAttr attributes = {};
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.x = widget->allocation.x;
    attributes.y = widget->allocation.y;
    attributes.width = widget->allocation.width;
    attributes.height = widget->allocation.height;
    attributes.wclass = GDK_INPUT_ONLY;
    attributes.event_mask = gtk_widget_get_events (widget) | GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK
                            | GDK_POINTER_MOTION_MASK | GDK_LEAVE_NOTIFY_MASK;
    priv->event_window = gdk_window_new (widget->window, &attributes, GDK_WA_X | GDK_WA_Y);
    gdk_window_set_user_data (priv->event_window, widget);
    widget->style = gtk_style_attach (widget->style, widget->window);
}

static void tav_home_applet_unrealize (GtkWidget *widget)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    if (priv->event_window) {
        gdk_window_set_user_data (priv->event_window, NULL);
        gdk_window_destroy (priv->event_window);
        priv->event_window = nullptr;
    }
    priv->press.on = false;
    priv->press.row = -1;
    GTK_WIDGET_CLASS (tav_home_applet_parent_class)->unrealize (widget);
}

static void tav_home_applet_map (GtkWidget *widget)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (widget);
    GTK_WIDGET_CLASS (tav_home_applet_parent_class)->map (widget);
    if (applet->priv->event_window)
        gdk_window_show (applet->priv->event_window);
    /* Shown for the first time: ask for the days ahead. */
    if (!applet->priv->read_once)
        applet_read (applet, 0);
}

static void tav_home_applet_unmap (GtkWidget *widget)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    if (priv->event_window)
        gdk_window_hide (priv->event_window);
    GTK_WIDGET_CLASS (tav_home_applet_parent_class)->unmap (widget);
}

static void tav_home_applet_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    const AppletGeometry g;
    requisition->width = 320;
    requisition->height = 2 * g.margin + g.header_height + static_cast<int> (kMaxRows) * g.row_height;
}

static void tav_home_applet_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (widget)->priv;
    widget->allocation = *allocation;
    priv->geometry.width = allocation->width;
    priv->geometry.height = allocation->height;
    if (gtk_widget_get_realized (widget))
        gdk_window_move_resize (priv->event_window, allocation->x, allocation->y, allocation->width,
                                allocation->height);
}

static gboolean tav_home_applet_expose (GtkWidget *widget, GdkEventExpose *event)
{
    if (event->window != widget->window || !gtk_widget_is_drawable (widget))
        return FALSE;
    cairo_t *cr = gdk_cairo_create (widget->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    cairo_translate (cr, widget->allocation.x, widget->allocation.y);
    cairo_rectangle (cr, 0, 0, widget->allocation.width, widget->allocation.height);
    cairo_clip (cr);
    applet_paint (TAV_HOME_APPLET (widget), cr);
    cairo_destroy (cr);
    return FALSE;
}

/* GObject --------------------------------------------------------------------------- */

static void tav_home_applet_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (object)->priv;
    switch (prop_id) {
    case PROP_PRESENTED_INTERVAL:
        g_value_set_boxed (value, &priv->presented);
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, priv->time_24hr_format);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_home_applet_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavHomeApplet *applet = TAV_HOME_APPLET (object);
    switch (prop_id) {
    case PROP_TIME_24HR_FORMAT: {
        const bool on = g_value_get_boolean (value);
        if (on != applet->priv->time_24hr_format) {
            applet->priv->time_24hr_format = on;
            applet_update (applet);
        }
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void tav_home_applet_dispose (GObject *object)
{
    TavHomeAppletPrivate *priv = TAV_HOME_APPLET (object)->priv;
    if (!priv->dispose_has_run) {
        priv->dispose_has_run = true;
        if (priv->timer_tag) {
            g_source_remove (priv->timer_tag);
            priv->timer_tag = 0;
        }
        priv->rows.clear ();
        applet_drop_instances (priv);
    }
    G_OBJECT_CLASS (tav_home_applet_parent_class)->dispose (object);
}

static void tav_home_applet_finalize (GObject *object)
{
    TAV_HOME_APPLET (object)->priv->~TavHomeAppletPrivate ();
    G_OBJECT_CLASS (tav_home_applet_parent_class)->finalize (object);
}

static void tav_home_applet_class_init (TavHomeAppletClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    TavCalendarViewClass *view_class = TAV_CALENDAR_VIEW_CLASS (klass);

    object_class->get_property = tav_home_applet_get_property;
    object_class->set_property = tav_home_applet_set_property;
    object_class->dispose = tav_home_applet_dispose;
    object_class->finalize = tav_home_applet_finalize;

    widget_class->realize = tav_home_applet_realize;
    widget_class->unrealize = tav_home_applet_unrealize;
    widget_class->map = tav_home_applet_map;
    widget_class->unmap = tav_home_applet_unmap;
    widget_class->size_request = tav_home_applet_size_request;
    widget_class->size_allocate = tav_home_applet_size_allocate;
    widget_class->expose_event = tav_home_applet_expose;
    widget_class->button_press_event = tav_home_applet_button_press;
    widget_class->button_release_event = tav_home_applet_button_release;
    widget_class->motion_notify_event = tav_home_applet_motion;
    widget_class->leave_notify_event = tav_home_applet_leave;

    view_class->add_entry_instance = tav_home_applet_add_entry_instance;
    view_class->remove_entry = tav_home_applet_remove_entry;
    view_class->refresh_entry = tav_home_applet_refresh_entry;
    view_class->clear_entries = tav_home_applet_clear_entries;
    view_class->recalculate_entries = tav_home_applet_recalculate_entries;
    view_class->reading_started = tav_home_applet_reading_started;
    view_class->reading_finished = tav_home_applet_reading_finished;

    klass->time_changed = tav_home_applet_real_time_changed;

    properties[PROP_PRESENTED_INTERVAL] =
        g_param_spec_boxed ("presented-interval", "Presented interval", "The days the applet reads, from today.",
                            TAV_TYPE_DATE_INTERVAL, G_PARAM_READABLE);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
                                                              "Time format , 24hr or 12 hr", TRUE, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    auto string_style = [&] (const char *name, const char *nick, const char *blurb, const char *def) {
        gtk_widget_class_install_style_property (widget_class,
                                                 g_param_spec_string (name, nick, blurb, def, G_PARAM_READABLE));
    };
    string_style ("font-title", "Font name for title", "The name of the font used on the title of the entries.",
                  "Velda Sans Bold 14");
    string_style ("font-detail", "Font name for details", "The name of the font used on the times and locations.",
                  "Velda Sans 11");
    string_style ("title-font-color", "Title font color", "The font color for the entry titles.", "White");
    string_style ("detail-font-color", "Detail font color", "The font color for the times and locations.",
                  "#c8d0da");
    string_style ("now-font-color", "Now font color", "The font color for the time of an event going on now.",
                  "#64b5f6");
    gtk_widget_class_install_style_property (
        widget_class, g_param_spec_double ("panel-alpha", "Panel alpha",
                                           "The opacity of the panel behind the rows, 0 for none.", 0.0, 1.0, 0.62,
                                           G_PARAM_READABLE));

    const GType type = G_TYPE_FROM_CLASS (klass);
    signals[ENTRY_ACTIVATED] =
        g_signal_new ("entry-activated", type, G_SIGNAL_RUN_LAST, G_STRUCT_OFFSET (TavHomeAppletClass, entry_activated),
                      NULL, NULL, NULL, G_TYPE_NONE, 2, TAV_TYPE_CALENDAR_ENTRY, TAV_TYPE_DATE);
    signals[CALENDAR_ACTIVATED] =
        g_signal_new ("calendar-activated", type, G_SIGNAL_RUN_LAST,
                      G_STRUCT_OFFSET (TavHomeAppletClass, calendar_activated), NULL, NULL,
                      g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    signals[TIME_CHANGED] =
        g_signal_new ("time-changed", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_ACTION),
                      G_STRUCT_OFFSET (TavHomeAppletClass, time_changed), NULL, NULL, g_cclosure_marshal_VOID__VOID,
                      G_TYPE_NONE, 0);
}

static void tav_home_applet_init (TavHomeApplet *applet)
{
    applet->priv = static_cast<TavHomeAppletPrivate *> (tav_home_applet_get_instance_private (applet));
    new (applet->priv) TavHomeAppletPrivate ();
    gtk_widget_set_has_window (GTK_WIDGET (applet), FALSE);
    /* Completed tasks never show here. */
    g_object_set (applet, "hide-done-tasks", TRUE, NULL);
    applet_set_interval (applet, day_of (to_local (applet_time (applet->priv))), 0);
}

/* Public ------------------------------------------------------------------------------ */

GtkWidget *tav_home_applet_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_HOME_APPLET, NULL));
}

void tav_home_applet_reload (TavHomeApplet *applet)
{
    g_return_if_fail (TAV_IS_HOME_APPLET (applet));
    if (!applet->priv->dispose_has_run)
        applet_read (applet, 0);
}

void tav_home_applet_time_changed (TavHomeApplet *applet)
{
    g_return_if_fail (TAV_IS_HOME_APPLET (applet));
    g_signal_emit (applet, signals[TIME_CHANGED], 0);
}

int tav_home_applet_get_n_rows (TavHomeApplet *applet)
{
    g_return_val_if_fail (TAV_IS_HOME_APPLET (applet), 0);
    return static_cast<int> (applet->priv->rows.size ());
}

gboolean tav_home_applet_get_row (TavHomeApplet *applet, int n, TavCalendarEntry **entry, TavTimestamp *start)
{
    g_return_val_if_fail (TAV_IS_HOME_APPLET (applet), FALSE);
    const std::vector<Row> &rows = applet->priv->rows;
    if (n < 0 || static_cast<size_t> (n) >= rows.size ())
        return FALSE;
    if (entry)
        *entry = rows[static_cast<size_t> (n)].entry.get ();
    if (start)
        *start = rows[static_cast<size_t> (n)].start;
    return TRUE;
}

/* Hooks ------------------------------------------------------------------------------- */

void _tav_home_applet_set_clock (TavHomeApplet *applet, time_t (*clock) ())
{
    TavHomeAppletPrivate *priv = applet->priv;
    priv->clock = clock;
    const int64_t today = day_of (to_local (applet_time (priv)));
    if (civil_day (priv->presented.start) != today)
        applet_set_interval (applet, today, 0);
    applet_update (applet);
}

gboolean _tav_home_applet_get_timer (TavHomeApplet *applet, TavTimestamp *at, guint *delay_ms)
{
    TavHomeAppletPrivate *priv = applet->priv;
    if (!priv->timer_tag)
        return FALSE;
    if (at)
        *at = local_timestamp (priv->timer_at);
    if (delay_ms)
        *delay_ms = priv->timer_delay_ms;
    return TRUE;
}

void _tav_home_applet_fire_timer (TavHomeApplet *applet)
{
    TavHomeAppletPrivate *priv = applet->priv;
    if (priv->timer_tag) {
        g_source_remove (priv->timer_tag);
        priv->timer_tag = 0;
    }
    on_timer_cb (applet);
}

std::string _tav_home_applet_describe_row (TavHomeApplet *applet, int n)
{
    const std::vector<Row> &rows = applet->priv->rows;
    if (n < 0 || static_cast<size_t> (n) >= rows.size ())
        return "";
    const Row &row = rows[static_cast<size_t> (n)];
    return row.when + " | " + row.title + " | " + row.location;
}

AppletGeometry _tav_home_applet_get_geometry (TavHomeApplet *applet)
{
    return applet->priv->geometry;
}

const std::vector<AppletInstance> &_tav_home_applet_get_instances (TavHomeApplet *applet)
{
    return applet->priv->instances;
}
