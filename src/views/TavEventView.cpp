/* libcalendarui - the single-event view
 *
 * One entry as a card: a band in the calendar's colour beside the title and
 * the time span, then captioned lines for the calendar, location,
 * repetition and alarm, then the description. Texts wrap to the width the
 * pannable area gives; the view asks for the height its texts need, so the
 * area scrolls a long description. At the foot two arrows step to the
 * previous and the next entry of the list the owner gave; a long press
 * offers Edit and Delete, as the other views do.
 */
#include "TavEventView.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "TavCalendarColors.h"
#include "TavCalendarEnums.h"
#include "TavCalendarSource.h"
#include "TavCalendarTask.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"

#include "KivoNote.h"
#include "KivoStyle.h"
#include "KivoTapAndHold.h"

#define PADDING 24
#define BAND_WIDTH 8
#define LINE_GAP 14
#define FOOTER_HEIGHT 72
#define ARROW_WIDTH 120
#define TAP_THRESHOLD 26

enum {
    PREVIOUS_ENTRY_ACTIVATED,
    NEXT_ENTRY_ACTIVATED,
    EDIT_ENTRY_ACTIVATED,
    DELETE_ENTRY_ACTIVATED,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_ENTRY,
    PROP_HAS_PREVIOUS,
    PROP_HAS_NEXT,
    PROP_TIME_24HR_FORMAT,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

namespace {

/* One captioned line of the card. */
struct Line {
    std::string caption;
    std::string value;
};

} // namespace

struct _TavEventViewPrivate {
    tav::GRefPtr<TavCalendarEntry> entry;
    TavDate instance_date {};
    std::vector<tav::GRefPtr<TavCalendarEntry>> list;
    gboolean time_24hr = TRUE;
    /* The card's texts, rebuilt when the entry changes. */
    std::string title;
    std::string when;
    std::vector<Line> lines;
    std::string description;
    int color = 0;
    /* Layout of the last allocation width. */
    int laid_out_width = -1;
    int content_height = 0;
    gboolean pressed = FALSE;
    int press_x = 0, press_y = 0;
    GtkWidget *menu = nullptr;
};

G_DEFINE_TYPE_WITH_CODE (TavEventView, tav_event_view, GTK_TYPE_WIDGET, G_ADD_PRIVATE (TavEventView))

/* Texts ------------------------------------------------------------------------------ */

static int list_index (TavEventView *view)
{
    auto &list = view->priv->list;
    auto it = std::find (list.begin (), list.end (), view->priv->entry);
    return it == list.end () ? -1 : static_cast<int> (it - list.begin ());
}

static bool has_neighbour (TavEventView *view, int step)
{
    const int index = list_index (view);
    const int next = index + step;
    return index >= 0 && next >= 0 && next < static_cast<int> (view->priv->list.size ());
}

/* A real day (the library's own check lets day 0 pass). */
static bool usable (const TavDate &date)
{
    return date.day >= 1 && date.year >= 1900 && date.year <= 2100 && tav_date_is_valid (&date);
}

static std::string take (char *text)
{
    std::string out = text ? text : "";
    g_free (text);
    return out;
}

static std::string date_text (const TavDate &date)
{
    if (!usable (date))
        return "";
    GDate *g = g_date_new_dmy (date.day, static_cast<GDateMonth> (date.month + 1), date.year);
    const int weekday = g_date_get_weekday (g) % 7; /* Sunday 0 */
    g_date_free (g);
    return take (tav_date_to_string_format (&date, TavDateLongFormat, weekday));
}

/* The zone's abbreviation at the given local time ("CET", "EEST"). */
static std::string zone_text (const TavDate &date, const TavTime &time)
{
    GTimeZone *zone = g_time_zone_new_local ();
    GDateTime *at = g_date_time_new (zone, date.year, date.month + 1, date.day, time.hour, time.minute, 0);
    std::string out = at ? g_date_time_get_timezone_abbreviation (at) : "";
    if (at)
        g_date_time_unref (at);
    g_time_zone_unref (zone);
    return out;
}

static void rebuild_texts (TavEventView *view)
{
    TavEventViewPrivate *priv = view->priv;
    priv->title.clear ();
    priv->when.clear ();
    priv->lines.clear ();
    priv->description.clear ();
    priv->laid_out_width = -1;
    TavCalendarEntry *entry = priv->entry.get ();
    if (!entry)
        return;

    char *title = nullptr, *location = nullptr, *description = nullptr;
    TavDate *start_date = nullptr, *end_date = nullptr, *until = nullptr;
    TavTime *start_time = nullptr, *end_time = nullptr;
    gboolean all_day = FALSE, has_repeat = FALSE, show_until = FALSE, birthday = FALSE;
    int repeat = 0, alarm = 0, color = 0;
    TavCalendarSource *source = nullptr;
    g_object_get (entry, "title", &title, "location", &location, "description", &description, "start-date",
                  &start_date, "end-date", &end_date, "start-time", &start_time, "end-time", &end_time, "all-day",
                  &all_day, "has-repeat", &has_repeat, "repeat-code", &repeat, "alarm-code", &alarm, "color", &color,
                  "end-repetition-date", &until, "show-until", &show_until, "has-birthday", &birthday, "source",
                  &source, NULL);
    tav::GRefPtr<TavCalendarSource> hold = tav::adoptGRef (source);
    priv->color = color;

    /* A title that is not text is not shown as such. */
    priv->title = (title && g_utf8_validate (title, -1, nullptr)) ? title : "";
    if (priv->title.empty ())
        priv->title = TAV_CAL ("cal_va_placeholder_title");

    const TavDate first = start_date ? *start_date : TavDate {};
    TavDate last = end_date ? *end_date : first;
    /* The occurrence shown: shift the span by the instance's distance. */
    TavDate shown_start = first;
    if (usable (priv->instance_date) && usable (first) && usable (last)) {
        GDate *a = g_date_new_dmy (first.day, static_cast<GDateMonth> (first.month + 1), first.year);
        GDate *b = g_date_new_dmy (priv->instance_date.day, static_cast<GDateMonth> (priv->instance_date.month + 1),
                                   priv->instance_date.year);
        GDate *e = g_date_new_dmy (last.day, static_cast<GDateMonth> (last.month + 1), last.year);
        g_date_add_days (e, std::max (0, g_date_days_between (a, b)));
        last = { g_date_get_year (e), g_date_get_month (e) - 1, g_date_get_day (e) };
        shown_start = priv->instance_date;
        g_date_free (a);
        g_date_free (b);
        g_date_free (e);
    }
    const TavTime t0 = start_time ? *start_time : TavTime {};
    const TavTime t1 = end_time ? *end_time : t0;
    const bool twelve = !priv->time_24hr;
    const bool is_task = TAV_IS_CALENDAR_TASK (entry);
    if (all_day || birthday || is_task) {
        priv->when = date_text (shown_start);
        if (tav_date_compare (&last, &shown_start) > 0 && !is_task)
            priv->when += " \xe2\x80\x93 " + date_text (last);
        if (!is_task)
            priv->when += " \xc2\xb7 " + std::string (TAV_CAL ("cal_va_allday"));
    } else {
        const std::string from = take (tav_time_to_string_format (&t0, twelve));
        const std::string to = take (tav_time_to_string_format (&t1, twelve));
        if (tav_date_compare (&last, &shown_start) == 0)
            priv->when = date_text (shown_start) + ", " + from + " \xe2\x80\x93 " + to;
        else
            priv->when = date_text (shown_start) + ", " + from + " \xe2\x80\x93 " + date_text (last) + ", " + to;
        const std::string zone = zone_text (shown_start, t0);
        if (!zone.empty ())
            priv->when += " (" + zone + ")";
    }

    if (source && tav_calendar_source_get_title (source))
        priv->lines.push_back ({ TAV_CAL ("cal_fi_calendar"), tav_calendar_source_get_title (source) });
    if (location && *location && g_utf8_validate (location, -1, nullptr))
        priv->lines.push_back ({ TAV_CAL ("cal_fi_location"), location });
    if (has_repeat) {
        const char *rule = tav_calendar_repeat_to_string (static_cast<TavCalendarRepeatCode> (repeat));
        std::string text = rule ? rule : TAV_CAL ("cal_fi_repeat_complex");
        priv->lines.push_back ({ TAV_CAL ("cal_fi_repeat"), text });
        if (show_until && until && usable (*until) && until->year < 2038)
            priv->lines.push_back ({ TAV_CAL ("cal_fi_repeat_until"), date_text (*until) });
    }
    if (alarm > 0) {
        const char *text = tav_calendar_alarm_to_string (static_cast<TavCalendarAlarmCode> (alarm));
        if (text)
            priv->lines.push_back ({ TAV_CAL ("cal_fi_alarm"), text });
    }
    if (description && g_utf8_validate (description, -1, nullptr))
        priv->description = description;

    g_free (title);
    g_free (location);
    g_free (description);
    tav_date_free (start_date);
    tav_date_free (end_date);
    tav_date_free (until);
    tav_time_free (start_time);
    tav_time_free (end_time);
}

/* Layout and painting --------------------------------------------------------------------- */

namespace {

/* Lays the card out at @width: the y of every block, and the total height. */
struct Card {
    PangoLayout *title = nullptr;
    PangoLayout *when = nullptr;
    std::vector<std::pair<PangoLayout *, PangoLayout *>> lines;
    PangoLayout *description = nullptr;
    int height = 0;

    Card (GtkWidget *widget, const TavEventViewPrivate &priv, int width)
    {
        const int text_width = std::max (40, width - 2 * PADDING - BAND_WIDTH - 16);
        auto make = [&] (const std::string &text, const char *font, int w) {
            PangoLayout *layout = gtk_widget_create_pango_layout (widget, text.c_str ());
            tav::GUniquePtr<PangoFontDescription> desc (pango_font_description_from_string (font));
            pango_layout_set_font_description (layout, desc.get ());
            pango_layout_set_width (layout, w * PANGO_SCALE);
            pango_layout_set_wrap (layout, PANGO_WRAP_WORD_CHAR);
            return layout;
        };
        title = make (priv.title, "Sans Bold 20", text_width);
        when = make (priv.when, "Sans 14", text_width);
        for (const Line &line : priv.lines)
            lines.emplace_back (make (line.caption, "Sans 12", 180), make (line.value, "Sans 15", text_width - 190));
        description = make (priv.description, "Sans 14", width - 2 * PADDING);
        height = measure ();
    }
    ~Card ()
    {
        g_object_unref (title);
        g_object_unref (when);
        for (auto &l : lines) {
            g_object_unref (l.first);
            g_object_unref (l.second);
        }
        g_object_unref (description);
    }
    Card (const Card &) = delete;
    Card &operator= (const Card &) = delete;

    static int h (PangoLayout *layout)
    {
        int w = 0, height = 0;
        pango_layout_get_pixel_size (layout, &w, &height);
        return height;
    }
    int header_height () const { return h (title) + 6 + h (when); }
    int measure () const
    {
        int y = PADDING + header_height () + 2 * LINE_GAP;
        for (auto &l : lines)
            y += std::max (h (l.first), h (l.second)) + LINE_GAP;
        if (pango_layout_get_character_count (description) > 0)
            y += LINE_GAP + h (description);
        return y + PADDING + FOOTER_HEIGHT;
    }
};

/* The agenda's palette, so that an entry opened from a list looks like its row. */
enum Shade { PAGE, CARD, CARD_LINE, TEXT, SECONDARY_TEXT };

void set_rgb (cairo_t *cr, Shade shade, double alpha = 1.0)
{
    static const double rgb[][3] = {
        { 0.122, 0.157, 0.200 }, /* #1f2833 */
        { 0.176, 0.231, 0.282 }, /* #2d3b48 */
        { 0.235, 0.294, 0.353 },
        { 0.96, 0.97, 0.98 },
        { 0.70, 0.75, 0.80 },
    };
    cairo_set_source_rgba (cr, rgb[shade][0], rgb[shade][1], rgb[shade][2], alpha);
}

} // namespace

static void paint_arrow (cairo_t *cr, int x, int y, int width, bool left, bool enabled)
{
    kivo_style_rounded_rect (cr, x, y, width, FOOTER_HEIGHT - 24, 8);
    set_rgb (cr, CARD, enabled ? 1.0 : 0.4);
    cairo_fill (cr);
    const double cx = x + width / 2.0, cy = y + (FOOTER_HEIGHT - 24) / 2.0;
    const double d = left ? -8 : 8;
    cairo_move_to (cr, cx - d, cy - 12);
    cairo_line_to (cr, cx + d, cy);
    cairo_line_to (cr, cx - d, cy + 12);
    set_rgb (cr, TEXT, enabled ? 1.0 : 0.25);
    cairo_set_line_width (cr, 3);
    cairo_stroke (cr);
}

static gboolean tav_event_view_expose (GtkWidget *widget, GdkEventExpose *event)
{
    TavEventView *view = TAV_EVENT_VIEW (widget);
    TavEventViewPrivate *priv = view->priv;
    if (event->window != widget->window)
        return FALSE;
    const int width = widget->allocation.width, height = widget->allocation.height;
    cairo_t *cr = gdk_cairo_create (widget->window);
    gdk_cairo_region (cr, event->region);
    cairo_clip (cr);
    set_rgb (cr, PAGE);
    cairo_paint (cr);

    if (!priv->entry) {
        cairo_destroy (cr);
        return FALSE;
    }
    Card card (widget, *priv, width);
    /* Header: the colour band, title and time span on a raised surface. */
    const int header = card.header_height () + 2 * LINE_GAP;
    kivo_style_rounded_rect (cr, PADDING / 2, PADDING / 2, width - PADDING, header + PADDING / 2, 10);
    set_rgb (cr, CARD);
    cairo_fill (cr);
    const tav::CalendarRgb &rgb = tav::calendar_rgb (priv->color);
    cairo_set_source_rgb (cr, rgb.r / 255.0, rgb.g / 255.0, rgb.b / 255.0);
    kivo_style_rounded_rect (cr, PADDING, PADDING, BAND_WIDTH, header - PADDING / 2, 3);
    cairo_fill (cr);

    const int x = PADDING + BAND_WIDTH + 16;
    int y = PADDING;
    set_rgb (cr, TEXT);
    cairo_move_to (cr, x, y);
    pango_cairo_show_layout (cr, card.title);
    y += Card::h (card.title) + 6;
    set_rgb (cr, SECONDARY_TEXT);
    cairo_move_to (cr, x, y);
    pango_cairo_show_layout (cr, card.when);
    y = PADDING + header + LINE_GAP;

    for (auto &line : card.lines) {
        set_rgb (cr, SECONDARY_TEXT);
        cairo_move_to (cr, PADDING, y + 3);
        pango_cairo_show_layout (cr, line.first);
        set_rgb (cr, TEXT);
        cairo_move_to (cr, PADDING + 190, y);
        pango_cairo_show_layout (cr, line.second);
        y += std::max (Card::h (line.first), Card::h (line.second)) + LINE_GAP;
    }
    if (pango_layout_get_character_count (card.description) > 0) {
        set_rgb (cr, CARD_LINE);
        cairo_rectangle (cr, PADDING, y, width - 2 * PADDING, 1);
        cairo_fill (cr);
        y += LINE_GAP;
        set_rgb (cr, TEXT);
        cairo_move_to (cr, PADDING, y);
        pango_cairo_show_layout (cr, card.description);
    }

    /* The footer keeps to the bottom of the view. */
    const int footer_y = height - FOOTER_HEIGHT + 12;
    paint_arrow (cr, PADDING, footer_y, ARROW_WIDTH, true, has_neighbour (view, -1));
    paint_arrow (cr, width - PADDING - ARROW_WIDTH, footer_y, ARROW_WIDTH, false, has_neighbour (view, +1));
    cairo_destroy (cr);
    return FALSE;
}

static void tav_event_view_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    TavEventViewPrivate *priv = TAV_EVENT_VIEW (widget)->priv;
    requisition->width = 200;
    requisition->height = std::max (priv->content_height, 200);
}

static void tav_event_view_size_allocate (GtkWidget *widget, GtkAllocation *allocation)
{
    widget->allocation = *allocation;
    if (GTK_WIDGET_REALIZED (widget))
        gdk_window_move_resize (widget->window, allocation->x, allocation->y, allocation->width, allocation->height);
    TavEventViewPrivate *priv = TAV_EVENT_VIEW (widget)->priv;
    if (priv->laid_out_width != allocation->width) {
        priv->laid_out_width = allocation->width;
        const int height = priv->entry ? Card (widget, *priv, allocation->width).height : 0;
        if (height != priv->content_height) {
            /* The texts wrap differently at this width: ask for their height. */
            priv->content_height = height;
            gtk_widget_queue_resize (widget);
        }
    }
}

static void tav_event_view_realize (GtkWidget *widget)
{
    GTK_WIDGET_SET_FLAGS (widget, GTK_REALIZED);
    GdkWindowAttr attributes = {};
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.x = widget->allocation.x;
    attributes.y = widget->allocation.y;
    attributes.width = widget->allocation.width;
    attributes.height = widget->allocation.height;
    attributes.wclass = GDK_INPUT_OUTPUT;
    attributes.visual = gtk_widget_get_visual (widget);
    attributes.colormap = gtk_widget_get_colormap (widget);
    attributes.event_mask = gtk_widget_get_events (widget) | GDK_EXPOSURE_MASK | GDK_BUTTON_PRESS_MASK
                            | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK | GDK_KEY_PRESS_MASK;
    widget->window = gdk_window_new (gtk_widget_get_parent_window (widget), &attributes,
                                     GDK_WA_X | GDK_WA_Y | GDK_WA_VISUAL | GDK_WA_COLORMAP);
    gdk_window_set_user_data (widget->window, widget);
    widget->style = gtk_style_attach (widget->style, widget->window);
    gtk_style_set_background (widget->style, widget->window, GTK_STATE_NORMAL);
}

/* Refills the card and asks for a new layout. */
static void entry_changed (TavEventView *view)
{
    rebuild_texts (view);
    TavEventViewPrivate *priv = view->priv;
    GtkWidget *widget = GTK_WIDGET (view);
    priv->content_height = 0;
    if (widget->allocation.width > 1 && priv->entry) {
        priv->laid_out_width = widget->allocation.width;
        priv->content_height = Card (widget, *priv, widget->allocation.width).height;
    }
    gtk_widget_queue_resize (widget);
    gtk_widget_queue_draw (widget);
}

/* Input ------------------------------------------------------------------------------------ */

static gboolean tav_event_view_button_press (GtkWidget *widget, GdkEventButton *event)
{
    TavEventViewPrivate *priv = TAV_EVENT_VIEW (widget)->priv;
    priv->pressed = TRUE;
    priv->press_x = static_cast<int> (event->x);
    priv->press_y = static_cast<int> (event->y);
    return FALSE;
}

static gboolean tav_event_view_button_release (GtkWidget *widget, GdkEventButton *event)
{
    TavEventView *view = TAV_EVENT_VIEW (widget);
    TavEventViewPrivate *priv = view->priv;
    if (!priv->pressed)
        return FALSE;
    priv->pressed = FALSE;
    const int x = static_cast<int> (event->x), y = static_cast<int> (event->y);
    if (std::abs (x - priv->press_x) > TAP_THRESHOLD || std::abs (y - priv->press_y) > TAP_THRESHOLD)
        return FALSE;
    const int width = widget->allocation.width, footer_y = widget->allocation.height - FOOTER_HEIGHT;
    if (y < footer_y)
        return FALSE;
    if (x >= PADDING && x < PADDING + ARROW_WIDTH && has_neighbour (view, -1))
        g_signal_emit (view, signals[PREVIOUS_ENTRY_ACTIVATED], 0);
    else if (x >= width - PADDING - ARROW_WIDTH && x < width - PADDING && has_neighbour (view, +1))
        g_signal_emit (view, signals[NEXT_ENTRY_ACTIVATED], 0);
    return TRUE;
}

static gboolean tav_event_view_key_press (GtkWidget *widget, GdkEventKey *event)
{
    TavEventView *view = TAV_EVENT_VIEW (widget);
    if (event->keyval == GDK_Left && has_neighbour (view, -1)) {
        g_signal_emit (view, signals[PREVIOUS_ENTRY_ACTIVATED], 0);
        return TRUE;
    }
    if (event->keyval == GDK_Right && has_neighbour (view, +1)) {
        g_signal_emit (view, signals[NEXT_ENTRY_ACTIVATED], 0);
        return TRUE;
    }
    return FALSE;
}

static void on_menu_edit_cb (GtkWidget *, gpointer data)
{
    TavEventView *view = TAV_EVENT_VIEW (data);
    if (tav::GRefPtr<TavCalendarEntry> entry = view->priv->entry)
        g_signal_emit (view, signals[EDIT_ENTRY_ACTIVATED], 0, entry.get ());
}

static void on_menu_delete_cb (GtkWidget *, gpointer data)
{
    TavEventView *view = TAV_EVENT_VIEW (data);
    if (tav::GRefPtr<TavCalendarEntry> entry = view->priv->entry)
        g_signal_emit (view, signals[DELETE_ENTRY_ACTIVATED], 0, entry.get ());
}

static gboolean on_tap_and_hold_query_cb (GtkWidget *widget, GdkEvent *, gpointer)
{
    TavCalendarEntry *entry = TAV_EVENT_VIEW (widget)->priv->entry.get ();
    /* Nothing to offer for an empty view or a calendar that cannot be changed. */
    return !entry || tav_calendar_entry_is_read_only (entry);
}

static void on_tap_and_hold_cb (GtkWidget *widget, gpointer)
{
    TavEventView *view = TAV_EVENT_VIEW (widget);
    TavEventViewPrivate *priv = view->priv;
    if (!priv->entry)
        return;
    if (priv->menu)
        gtk_widget_destroy (priv->menu);
    priv->menu = kivo_gtk_menu_new ();
    g_object_add_weak_pointer (G_OBJECT (priv->menu), reinterpret_cast<gpointer *> (&priv->menu));
    GtkWidget *edit = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_edit"));
    GtkWidget *remove = gtk_menu_item_new_with_label (TAV_CAL ("cal_ti_context_delete"));
    g_signal_connect (edit, "activate", G_CALLBACK (on_menu_edit_cb), view);
    g_signal_connect (remove, "activate", G_CALLBACK (on_menu_delete_cb), view);
    gtk_menu_shell_append (GTK_MENU_SHELL (priv->menu), edit);
    gtk_menu_shell_append (GTK_MENU_SHELL (priv->menu), remove);
    gtk_widget_show_all (priv->menu);
    /* A birthday belongs to its contact: it is edited, not deleted here. */
    gtk_widget_set_visible (remove, !tav_calendar_entry_has_bday (priv->entry.get ()));
    gtk_menu_popup (GTK_MENU (priv->menu), nullptr, nullptr, nullptr, nullptr, 1, gtk_get_current_event_time ());
}

/* Object ------------------------------------------------------------------------------------ */

static void notify_neighbours (TavEventView *view)
{
    g_object_notify_by_pspec (G_OBJECT (view), properties[PROP_HAS_PREVIOUS]);
    g_object_notify_by_pspec (G_OBJECT (view), properties[PROP_HAS_NEXT]);
}

static void tav_event_view_set_property (GObject *object, guint id, const GValue *value, GParamSpec *pspec)
{
    TavEventView *view = TAV_EVENT_VIEW (object);
    switch (id) {
    case PROP_ENTRY:
        tav_event_view_set_entry (view, static_cast<TavCalendarEntry *> (g_value_get_object (value)), nullptr);
        break;
    case PROP_TIME_24HR_FORMAT:
        view->priv->time_24hr = g_value_get_boolean (value);
        entry_changed (view);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static void tav_event_view_get_property (GObject *object, guint id, GValue *value, GParamSpec *pspec)
{
    TavEventView *view = TAV_EVENT_VIEW (object);
    switch (id) {
    case PROP_ENTRY:
        g_value_set_object (value, view->priv->entry.get ());
        break;
    case PROP_HAS_PREVIOUS:
        g_value_set_boolean (value, has_neighbour (view, -1));
        break;
    case PROP_HAS_NEXT:
        g_value_set_boolean (value, has_neighbour (view, +1));
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, view->priv->time_24hr);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static void tav_event_view_dispose (GObject *object)
{
    TavEventViewPrivate *priv = TAV_EVENT_VIEW (object)->priv;
    if (priv->menu)
        gtk_widget_destroy (priv->menu);
    priv->entry = nullptr;
    priv->list.clear ();
    G_OBJECT_CLASS (tav_event_view_parent_class)->dispose (object);
}

static void tav_event_view_finalize (GObject *object)
{
    TAV_EVENT_VIEW (object)->priv->~_TavEventViewPrivate ();
    G_OBJECT_CLASS (tav_event_view_parent_class)->finalize (object);
}

static void tav_event_view_class_init (TavEventViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    object_class->set_property = tav_event_view_set_property;
    object_class->get_property = tav_event_view_get_property;
    object_class->dispose = tav_event_view_dispose;
    object_class->finalize = tav_event_view_finalize;
    widget_class->realize = tav_event_view_realize;
    widget_class->size_request = tav_event_view_size_request;
    widget_class->size_allocate = tav_event_view_size_allocate;
    widget_class->expose_event = tav_event_view_expose;
    widget_class->button_press_event = tav_event_view_button_press;
    widget_class->button_release_event = tav_event_view_button_release;
    widget_class->key_press_event = tav_event_view_key_press;

    properties[PROP_ENTRY] = g_param_spec_object ("entry", "Entry", "The entry shown.", TAV_TYPE_CALENDAR_ENTRY,
                                                  G_PARAM_READWRITE);
    properties[PROP_HAS_PREVIOUS] = g_param_spec_boolean ("has-previous", "Has previous",
        "Whether the entry list has an entry before the one shown.", FALSE, G_PARAM_READABLE);
    properties[PROP_HAS_NEXT] = g_param_spec_boolean ("has-next", "Has next",
        "Whether the entry list has an entry after the one shown.", FALSE, G_PARAM_READABLE);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
        "Time format , 24hr or 12 hr", TRUE, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    const GType type = G_TYPE_FROM_CLASS (klass);
    signals[PREVIOUS_ENTRY_ACTIVATED] = g_signal_new ("previous-entry-activated", type, G_SIGNAL_RUN_LAST, 0,
                                                      nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    signals[NEXT_ENTRY_ACTIVATED] = g_signal_new ("next-entry-activated", type, G_SIGNAL_RUN_LAST, 0, nullptr,
                                                  nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
    signals[EDIT_ENTRY_ACTIVATED] = g_signal_new ("edit-entry-activated", type, G_SIGNAL_RUN_LAST, 0, nullptr,
                                                  nullptr, g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                  TAV_TYPE_CALENDAR_ENTRY);
    signals[DELETE_ENTRY_ACTIVATED] = g_signal_new ("delete-entry-activated", type, G_SIGNAL_RUN_LAST, 0, nullptr,
                                                    nullptr, g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1,
                                                    TAV_TYPE_CALENDAR_ENTRY);
}

static void tav_event_view_init (TavEventView *view)
{
    void *memory = tav_event_view_get_instance_private (view);
    view->priv = new (memory) TavEventViewPrivate ();
    gtk_widget_tap_and_hold_setup (GTK_WIDGET (view), nullptr, nullptr, 4);
    g_signal_connect (view, "tap-and-hold-query", G_CALLBACK (on_tap_and_hold_query_cb), nullptr);
    g_signal_connect (view, "tap-and-hold", G_CALLBACK (on_tap_and_hold_cb), nullptr);
}

/* Public API ------------------------------------------------------------------------------ */

GtkWidget *tav_event_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_EVENT_VIEW, NULL));
}

void tav_event_view_set_entry (TavEventView *view, TavCalendarEntry *entry, const TavDate *instance_date)
{
    g_return_if_fail (TAV_IS_EVENT_VIEW (view));
    g_return_if_fail (entry == NULL || TAV_IS_CALENDAR_ENTRY (entry));
    TavEventViewPrivate *priv = view->priv;
    priv->entry = tav::GRefPtr<TavCalendarEntry> (entry);
    priv->instance_date = (instance_date && usable (*instance_date)) ? *instance_date : TavDate {};
    entry_changed (view);
    g_object_notify_by_pspec (G_OBJECT (view), properties[PROP_ENTRY]);
    notify_neighbours (view);
}

TavCalendarEntry *tav_event_view_get_entry (TavEventView *view)
{
    g_return_val_if_fail (TAV_IS_EVENT_VIEW (view), nullptr);
    return view->priv->entry.get ();
}

gboolean tav_event_view_refresh_entry (TavEventView *view, TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_EVENT_VIEW (view), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY (entry), FALSE);
    if (view->priv->entry.get () != entry)
        return FALSE;
    entry_changed (view);
    return TRUE;
}

gboolean tav_event_view_get_activated_timestamp (TavEventView *view, TavTimestamp *timestamp)
{
    g_return_val_if_fail (TAV_IS_EVENT_VIEW (view), FALSE);
    g_return_val_if_fail (timestamp != NULL, FALSE);
    TavEventViewPrivate *priv = view->priv;
    if (!priv->entry)
        return FALSE;
    TavTimestamp *start = nullptr;
    g_object_get (priv->entry.get (), "start-timestamp", &start, NULL);
    if (!start)
        return FALSE;
    *timestamp = *start;
    tav_timestamp_free (start);
    if (usable (priv->instance_date))
        timestamp->date = priv->instance_date;
    return TRUE;
}

void tav_event_view_set_entry_list (TavEventView *view, GList *entries)
{
    g_return_if_fail (TAV_IS_EVENT_VIEW (view));
    auto &list = view->priv->list;
    list.clear ();
    for (GList *l = entries; l; l = l->next)
        if (TAV_IS_CALENDAR_ENTRY (l->data))
            list.emplace_back (TAV_CALENDAR_ENTRY (l->data));
    notify_neighbours (view);
    gtk_widget_queue_draw (GTK_WIDGET (view));
}

static gboolean step (TavEventView *view, int direction)
{
    if (!has_neighbour (view, direction))
        return FALSE;
    tav::GRefPtr<TavCalendarEntry> next = view->priv->list[list_index (view) + direction];
    tav_event_view_set_entry (view, next.get (), nullptr);
    return TRUE;
}

gboolean tav_event_view_select_previous_entry (TavEventView *view)
{
    g_return_val_if_fail (TAV_IS_EVENT_VIEW (view), FALSE);
    return step (view, -1);
}

gboolean tav_event_view_select_next_entry (TavEventView *view)
{
    g_return_val_if_fail (TAV_IS_EVENT_VIEW (view), FALSE);
    return step (view, +1);
}
