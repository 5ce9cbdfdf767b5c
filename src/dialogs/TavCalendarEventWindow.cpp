/* libcalendarui - the event editor
 *
 * The window keeps the event's state in plain fields (dates, times, codes)
 * and shows it in touch widgets. Every change the user makes goes through
 * one handler that corrects the other fields (the rules themselves are in
 * TavCalendarEventWindowPrivate) and shows them again; while the window
 * writes into its own widgets, the handlers stand still (`updating`).
 */
#include "TavCalendarEventWindow.h"

#include <new>
#include <string>
#include <vector>

#include "KivoBanner.h"
#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "KivoNote.h"
#include "KivoPannableArea.h"
#include "KivoPickerButton.h"
#include "TavCalendarButton.h"
#include "TavCalendarEventWindowPrivate.h"
#include "TavEditorSupport.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"
#include "TavWidgetBinding.h"

using tav::GCharPtr;
using tav::GRefPtr;
namespace editor = tav::editor;
using editor::add_row;
using editor::captioned;
using editor::date_of;
using editor::now_stamp;
using editor::picker;
using editor::show_date;
using editor::show_time;
using editor::stripped;
using editor::time_of;

enum {
    PROP_0,
    PROP_ENTRY,
    PROP_TITLE,
    PROP_ENTRY_ID,
    N_PROPERTIES
};

enum {
    ENTRY_CREATED,
    ENTRY_SAVED,
    DELETING_ENTRY,
    LAST_SIGNAL
};

static GParamSpec *properties[N_PROPERTIES];
static guint signals[LAST_SIGNAL];

static const int kMaxTitleChars = 256;
static const int kMaxDescriptionChars = 16000;

struct _TavCalendarEventWindowPrivate {
    gboolean disposed = FALSE;
    GRefPtr<TavCalendarProcessor> processor;
    TavCalendarAlarmCode alarm_code = TavCalendarAlarmNone;
    TavCalendarRepeatCode repeat_code = TavCalendarRepeatsNoRepeat;
    GRefPtr<TavCalendarEntry> entry;
    TavDate start_date {};
    TavTime start_time {};
    TavDate end_date {};
    TavTime end_time {};
    TavDate until {};
    TavTime alarm_time {12, 0};
    gboolean all_day = FALSE;
    /* The entry's repetition is a rule the picker cannot show, and the user
     * has not yet agreed to replace it. */
    gboolean complex = FALSE;
    /* The user picked the last repetition date (else it follows the start). */
    gboolean until_chosen = FALSE;
    /* The repetition has no end: the entry says so with a last date equal
     * to its own end date, which then moves with the end. */
    gboolean until_forever = FALSE;
    std::string initial_title;

    GtkWidget *title_entry = nullptr;
    GtkWidget *location_entry = nullptr;
    GtkWidget *all_day_button = nullptr;
    GtkWidget *calendar_button = nullptr;
    GtkWidget *alarm_time_button = nullptr;
    GtkWidget *description_view = nullptr;
    GtkWidget *start_date_button = nullptr;
    GtkWidget *start_time_button = nullptr;
    GtkWidget *end_date_button = nullptr;
    GtkWidget *end_time_button = nullptr;
    GtkWidget *repeat_button = nullptr;
    GtkWidget *until_button = nullptr;
    GtkWidget *alarm_button = nullptr;
    GtkWidget *save_button = nullptr;

    std::vector<TavCalendarRepeatCode> repeat_rows;
    std::vector<TavCalendarAlarmCode> alarm_rows;
    int updating = 0;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarEventWindow, tav_calendar_event_window, TAV_TYPE_CALENDAR_DIALOG,
                         G_ADD_PRIVATE (TavCalendarEventWindow))

/* Picker buttons that ask before they open ---------------------------------- */

/* The repeat and until pickers of an entry with a complex rule first ask
 * whether the rule may be replaced; a picker button opens in its class
 * handler, so the question is asked by overriding it. */
typedef gboolean (*OpenGuard) (GtkWidget *button, gpointer data);

struct Guard {
    OpenGuard func;
    gpointer data;
};

static GQuark
guard_quark (void)
{
    return g_quark_from_static_string ("tav-event-window-open-guard");
}

static gboolean
guard_allows (GtkButton *button)
{
    auto *guard = static_cast<Guard *> (g_object_get_qdata (G_OBJECT (button), guard_quark ()));
    return !guard || guard->func (GTK_WIDGET (button), guard->data);
}

static void
set_guard (GtkWidget *button, OpenGuard func, gpointer data)
{
    g_object_set_qdata_full (G_OBJECT (button), guard_quark (), new Guard {func, data},
                             [] (gpointer p) { delete static_cast<Guard *> (p); });
}

typedef struct { KivoPickerButton parent; } TavGuardedPicker;
typedef struct { KivoPickerButtonClass parent_class; } TavGuardedPickerClass;
typedef struct { KivoDateButton parent; } TavGuardedDateButton;
typedef struct { KivoDateButtonClass parent_class; } TavGuardedDateButtonClass;

G_DEFINE_TYPE (TavGuardedPicker, tav_guarded_picker, KIVO_TYPE_PICKER_BUTTON)
G_DEFINE_TYPE (TavGuardedDateButton, tav_guarded_date_button, KIVO_TYPE_DATE_BUTTON)

static void
tav_guarded_picker_clicked (GtkButton *button)
{
    if (guard_allows (button))
        GTK_BUTTON_CLASS (tav_guarded_picker_parent_class)->clicked (button);
}

static void
tav_guarded_picker_class_init (TavGuardedPickerClass *klass)
{
    GTK_BUTTON_CLASS (klass)->clicked = tav_guarded_picker_clicked;
}

static void
tav_guarded_picker_init (TavGuardedPicker *)
{
}

static void
tav_guarded_date_button_clicked (GtkButton *button)
{
    if (guard_allows (button))
        GTK_BUTTON_CLASS (tav_guarded_date_button_parent_class)->clicked (button);
}

static void
tav_guarded_date_button_class_init (TavGuardedDateButtonClass *klass)
{
    GTK_BUTTON_CLASS (klass)->clicked = tav_guarded_date_button_clicked;
}

static void
tav_guarded_date_button_init (TavGuardedDateButton *)
{
}

/* Helpers --------------------------------------------------------------------- */

namespace {

struct Updating {
    explicit Updating (TavCalendarEventWindowPrivate *p) : priv (p) { priv->updating++; }
    ~Updating () { priv->updating--; }
    TavCalendarEventWindowPrivate *priv;
};

void banner (TavCalendarEventWindow *window, const char *text)
{
    tav_show_info_banner (GTK_WIDGET (window), text);
}

TavTimestamp start_of (TavCalendarEventWindowPrivate *priv)
{
    return TavTimestamp {priv->start_date, priv->start_time};
}

TavTimestamp end_of (TavCalendarEventWindowPrivate *priv)
{
    return TavTimestamp {priv->end_date, priv->end_time};
}

}  // namespace

/* Showing the fields -------------------------------------------------------------- */

static void
show_dates (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    Updating guard (priv);
    show_date (priv->start_date_button, priv->start_date);
    show_time (priv->start_time_button, priv->start_time);
    show_date (priv->end_date_button, priv->end_date);
    show_time (priv->end_time_button, priv->end_time);
    if (priv->until_forever)
        priv->until = priv->end_date;
    show_date (priv->until_button, priv->until);
    if (priv->until_forever)
        kivo_button_set_value (KIVO_BUTTON (priv->until_button), TAV_CAL ("cal_va_repeat_forever"));
    show_time (priv->alarm_time_button, priv->alarm_time);
    gtk_widget_set_visible (priv->start_time_button, !priv->all_day);
    gtk_widget_set_visible (priv->end_time_button, !priv->all_day);
    gtk_widget_set_visible (priv->until_button, priv->repeat_code != TavCalendarRepeatsNoRepeat);
    gtk_widget_set_visible (priv->alarm_time_button, priv->all_day && priv->alarm_code != TavCalendarAlarmNone);
}

/* Rebuilds the repeat picker's rows for the current start and length. */
static void
rebuild_repeat_rows (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    Updating guard (priv);
    priv->repeat_rows = editor::offered_repeats (priv->processor.get (), priv->start_date, priv->end_date,
                                                 priv->complex);
    KivoPickerButton *picker = KIVO_PICKER_BUTTON (priv->repeat_button);
    KivoTouchSelector *selector = kivo_picker_button_get_selector (picker);
    kivo_picker_button_begin_update (picker);
    kivo_touch_selector_remove_all (selector);
    int active = -1;
    for (size_t i = 0; i < priv->repeat_rows.size (); ++i) {
        kivo_touch_selector_append_text (selector, tav_calendar_repeat_to_string (priv->repeat_rows[i]));
        if (priv->repeat_rows[i] == priv->repeat_code)
            active = int (i);
    }
    if (active < 0) {
        TAV_MESSAGE ("Repetition %d does not fit the event any more; it no longer repeats.", priv->repeat_code);
        priv->repeat_code = TavCalendarRepeatsNoRepeat;
        active = 0;
    }
    kivo_touch_selector_set_active (selector, 0, active);
    kivo_picker_button_end_update (picker);
    kivo_picker_button_value_changed (picker);
}

/* The alarm choice goes back to none. */
static void
reset_alarm_selector_to_default (TavCalendarEventWindow *window)
{
    window->priv->alarm_code = TavCalendarAlarmNone;
}

/* Rebuilds the alarm picker's rows: only alarms that can still ring. */
static void
rebuild_alarm_rows (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    Updating guard (priv);
    TavTimestamp now;
    now_stamp (now);
    const TavTimestamp start = {priv->start_date, priv->all_day ? TavTime {0, 0} : priv->start_time};
    priv->alarm_rows = editor::offered_alarms (priv->processor.get (), start, priv->all_day,
                                               priv->repeat_code != TavCalendarRepeatsNoRepeat, now);
    /* An all-day event keeps an alarm as its day-before alarm. */
    if (priv->all_day && priv->alarm_code != TavCalendarAlarmNone)
        priv->alarm_code = TavCalendarAlarmDayBefore;
    KivoPickerButton *picker = KIVO_PICKER_BUTTON (priv->alarm_button);
    KivoTouchSelector *selector = kivo_picker_button_get_selector (picker);
    kivo_picker_button_begin_update (picker);
    kivo_touch_selector_remove_all (selector);
    int active = -1;
    for (size_t i = 0; i < priv->alarm_rows.size (); ++i) {
        kivo_touch_selector_append_text (selector, tav_calendar_alarm_to_string (priv->alarm_rows[i]));
        if (priv->alarm_rows[i] == priv->alarm_code)
            active = int (i);
    }
    if (active < 0) {
        reset_alarm_selector_to_default (window);
        active = 0;
    }
    kivo_touch_selector_set_active (selector, 0, active);
    kivo_picker_button_end_update (picker);
    kivo_picker_button_value_changed (picker);
    gtk_widget_set_visible (priv->alarm_time_button, priv->all_day && priv->alarm_code != TavCalendarAlarmNone);
}

/* The all-day alarm never rings in the past; see the rules' header. */
static gboolean
perform_alarm_time_correction (TavCalendarEventWindow *window, gboolean reset)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    TavTimestamp now;
    now_stamp (now);
    const bool corrected = editor::correct_all_day_alarm (priv->processor.get (), priv->start_date, priv->alarm_time,
                                                          now, reset);
    Updating guard (priv);
    show_time (priv->alarm_time_button, priv->alarm_time);
    return corrected;
}

static void
adjust_default_end_rep_date (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->until_forever) {
        priv->until = priv->end_date;
        return;
    }
    const TavDate fallback = editor::default_until (priv->processor.get (), priv->start_date, priv->repeat_code);
    if (!priv->until_chosen || tav_date_compare (&priv->until, &priv->start_date) < 0)
        priv->until = fallback;
}

/* Everything that follows the start: the end, the repeat rows, the until
 * date and the alarm rows. */
static void
start_changed (TavCalendarEventWindow *window, const TavTimestamp &new_start)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    const TavTimestamp end = editor::end_for_moved_start (priv->processor.get (), start_of (priv), end_of (priv),
                                                          new_start);
    priv->start_date = new_start.date;
    priv->start_time = new_start.time;
    priv->end_date = end.date;
    priv->end_time = end.time;
    rebuild_repeat_rows (window);
    adjust_default_end_rep_date (window);
    rebuild_alarm_rows (window);
    if (priv->all_day && priv->alarm_code != TavCalendarAlarmNone)
        perform_alarm_time_correction (window, FALSE);
    show_dates (window);
}

/* An end on the start's date before the start time is put right; the user
 * is told why (@tell) unless the host's presets caused it. */
static void
correct_end_time (TavCalendarEventWindow *window, bool tell = true)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (!priv->all_day && tav_date_compare (&priv->start_date, &priv->end_date) == 0
        && tav_time_compare (&priv->end_time, &priv->start_time) < 0) {
        priv->end_time = editor::corrected_end_time (priv->start_time);
        if (tell)
            banner (window, TAV_CAL ("cal_ib_time_earlier"));
    }
}

/* Callbacks --------------------------------------------------------------------- */

static void
on_start_date_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    if (window->priv->updating)
        return;
    start_changed (window, TavTimestamp {date_of (button), window->priv->start_time});
}

static void
on_start_time_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    if (window->priv->updating)
        return;
    start_changed (window, TavTimestamp {window->priv->start_date, time_of (button)});
}

static void
on_end_date_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->end_date = date_of (button);
    if (tav_date_compare (&priv->end_date, &priv->start_date) < 0) {
        priv->end_date = priv->start_date;
        banner (window, TAV_CAL ("cal_ib_date_earlier"));
    }
    correct_end_time (window);
    rebuild_repeat_rows (window);
    adjust_default_end_rep_date (window);
    show_dates (window);
}

static void
on_end_time_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->end_time = time_of (button);
    correct_end_time (window);
    rebuild_repeat_rows (window);
    show_dates (window);
}

static void
on_until_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    const TavDate chosen = date_of (button);
    if (tav_date_compare (&chosen, &priv->start_date) < 0) {
        banner (window, TAV_CAL ("cal_ib_date_earlier_until"));
    } else {
        priv->until = chosen;
        priv->until_chosen = TRUE;
        priv->until_forever = FALSE;
    }
    show_dates (window);
}

static void
on_repeat_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    const int row = kivo_picker_button_get_active (KIVO_PICKER_BUTTON (button));
    const char *text = kivo_button_get_value (KIVO_BUTTON (button));
    TavCalendarRepeatCode code = tav_calendar_repeat_code_from_string (text);
    if (row >= 0 && size_t (row) < priv->repeat_rows.size ())
        code = priv->repeat_rows[row];
    if (code == priv->repeat_code)
        return;
    priv->repeat_code = code;
    if (code == TavCalendarRepeatsNoRepeat)
        priv->until_forever = FALSE;
    if (code != TavCalendarRepeatsComplex && priv->complex) {
        priv->complex = FALSE;
        rebuild_repeat_rows (window);
    }
    adjust_default_end_rep_date (window);
    rebuild_alarm_rows (window);
    show_dates (window);
}

static void
on_alarm_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    const int row = kivo_picker_button_get_active (KIVO_PICKER_BUTTON (button));
    if (row < 0 || size_t (row) >= priv->alarm_rows.size ())
        return;
    priv->alarm_code = priv->alarm_rows[row];
    if (priv->all_day && priv->alarm_code != TavCalendarAlarmNone)
        perform_alarm_time_correction (window, FALSE);
    show_dates (window);
}

static void
on_alarm_time_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->alarm_time = time_of (button);
    if (perform_alarm_time_correction (window, FALSE))
        banner (window, TAV_CAL ("cal_ib_alarm_early"));
}

static void
on_all_day_toggled_cb (GtkToggleButton *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->all_day = gtk_toggle_button_get_active (button);
    rebuild_alarm_rows (window);
    if (priv->all_day && priv->alarm_code != TavCalendarAlarmNone)
        perform_alarm_time_correction (window, TRUE);
    show_dates (window);
}

static void
on_invalid_input_cb (GtkWidget *widget, KivoInvalidInputType type, gpointer data)
{
    if (type == KIVO_INVALID_INPUT_MAX_CHARS_REACHED)
        tav_show_info_banner (GTK_WIDGET (data), TAV_COMMON ("ckdg_ib_maximum_characters_reached"));
}

static void
on_description_changed_cb (GtkTextBuffer *buffer, gpointer data)
{
    if (gtk_text_buffer_get_char_count (buffer) <= kMaxDescriptionChars)
        return;
    /* Deliberately untranslated. */
    tav_show_info_banner (GTK_WIDGET (data), "Description limit reached");
    GtkTextIter from, to;
    gtk_text_buffer_get_iter_at_offset (buffer, &from, kMaxDescriptionChars);
    gtk_text_buffer_get_end_iter (buffer, &to);
    gtk_text_buffer_delete (buffer, &from, &to);
}

/* Keeps the cursor of the description in sight while the user types. */
static void
follow_description_cursor (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    GtkWidget *view = priv->description_view;
    if (!view || !gtk_widget_get_realized (view) || !gtk_widget_has_focus (view))
        return;
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (view));
    GtkTextIter cursor;
    gtk_text_buffer_get_iter_at_mark (buffer, &cursor, gtk_text_buffer_get_insert (buffer));
    GdkRectangle where;
    gtk_text_view_get_iter_location (GTK_TEXT_VIEW (view), &cursor, &where);
    int x = 0, y = 0;
    gtk_text_view_buffer_to_window_coords (GTK_TEXT_VIEW (view), GTK_TEXT_WINDOW_WIDGET, where.x, where.y, &x, &y);
    GtkWidget *content = gtk_bin_get_child (GTK_BIN (TAV_CALENDAR_DIALOG (window)->pannable));
    int cx = 0, cy = 0;
    if (!content || !gtk_widget_translate_coordinates (view, content, x, y, &cx, &cy))
        return;
    GtkAdjustment *adj = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (TAV_CALENDAR_DIALOG (window)->pannable));
    const double top = gtk_adjustment_get_value (adj);
    const double page = gtk_adjustment_get_page_size (adj);
    if (cy < top)
        kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (TAV_CALENDAR_DIALOG (window)->pannable), -1, cy);
    else if (cy + where.height > top + page)
        kivo_pannable_area_scroll_to (KIVO_PANNABLE_AREA (TAV_CALENDAR_DIALOG (window)->pannable), -1,
                                      int (cy + where.height - page));
}

static void
on_cursor_notify_cb (GObject *, GParamSpec *, gpointer data)
{
    follow_description_cursor (TAV_CALENDAR_EVENT_WINDOW (data));
}

static void
on_description_allocate_cb (GtkWidget *, GtkAllocation *, gpointer data)
{
    follow_description_cursor (TAV_CALENDAR_EVENT_WINDOW (data));
}

static gboolean
on_description_focus_cb (GtkWidget *, GdkEventFocus *, gpointer data)
{
    follow_description_cursor (TAV_CALENDAR_EVENT_WINDOW (data));
    return FALSE;
}

/* Asks whether a complex rule may be replaced; TRUE opens the picker. */
static gboolean
confirm_complex_edit (GtkWidget *button, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (!priv->complex)
        return TRUE;
    const char *question = button == priv->repeat_button ? TAV_CAL ("cal_nc_edit_complex_recurrence")
                                                         : TAV_CAL ("cal_nc_edit_complex_last");
    if (!editor::confirm (TAV_CALENDAR_DIALOG (window), question) || priv->disposed)
        return FALSE;
    /* Agreed: the rule will be replaced by what the user picks now. */
    priv->complex = FALSE;
    if (priv->repeat_code == TavCalendarRepeatsComplex) {
        priv->repeat_code = TavCalendarRepeatsNoRepeat;
        rebuild_repeat_rows (window);
        show_dates (window);
    }
    return TRUE;
}

/* Saving ------------------------------------------------------------------------ */

static char *
description_text (TavCalendarEventWindow *window)
{
    return tav_kivo_text_view_get_text (KIVO_TEXT_VIEW (window->priv->description_view));
}

/* A new entry with the window's fields, stored in the chosen calendar.
 * Returns it (one reference) when the calendar accepted it. For a move,
 * @moving is the entry that leaves its calendar: the copy carries its ID,
 * so that a calendar can keep what the fields cannot say (a complex rule,
 * exceptions, the entry's identity elsewhere). */
static TavCalendarEntry *
create_new_entry (TavCalendarEventWindow *window, TavCalendarEntry *moving = nullptr)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    TavCalendarSource *source =
        tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
    if (!source) {
        TAV_WARNING ("No calendar source, can not create entry.");
        /* Only read-only calendars (or none) were given: say so rather
         * than close without a word. */
        editor::report_error (TAV_CALENDAR_DIALOG (window), CalendarDefaultError);
        return nullptr;
    }
    const std::string title = stripped (gtk_entry_get_text (GTK_ENTRY (priv->title_entry)));
    const std::string location = stripped (gtk_entry_get_text (GTK_ENTRY (priv->location_entry)));
    GCharPtr description (description_text (window));
    const TavTime start_time = priv->all_day ? TavTime {0, 0} : priv->start_time;
    const TavTime end_time = priv->all_day ? TavTime {23, 59} : priv->end_time;
    GRefPtr<TavCalendarEntry> entry = tav::adoptGRef (tav_calendar_entry_new ());
    g_object_set (entry.get (), "title", title.c_str (), "location", location.c_str (), "description",
                  description ? description.get () : "", "all-day", priv->all_day, "start-date", &priv->start_date,
                  "start-time", &start_time, "end-time", &end_time, "end-date", &priv->end_date,
                  "end-repetition-date", &priv->until, "repeat-code", priv->repeat_code, "alarm-code",
                  priv->alarm_code, "alarm-time", &priv->alarm_time, "show-until", TRUE, NULL);
    if (moving) {
        char *id = nullptr;
        g_object_get (moving, "num-id", &id, NULL);
        g_object_set (entry.get (), "num-id", id, "has-rrule", priv->repeat_code == TavCalendarRepeatsComplex, NULL);
        g_free (id);
    }
    const int error = tav_calendar_source_create_entry (source, entry.get ());
    TAV_MESSAGE ("The error is %d", error);
    if (error == CalendarNoError) {
        TAV_MESSAGE ("Emitting signal 'entry-created'.");
        g_signal_emit (window, signals[ENTRY_CREATED], 0, entry.get ());
        return entry.release ();
    }
    if (error == CalendarDuplicateError) {
        TAV_MESSAGE ("Emitting signal 'entry-saved'.");
        g_signal_emit (window, signals[ENTRY_SAVED], 0, entry.get ());
        return entry.release ();
    }
    TAV_WARNING ("Unable to create entry in database!");
    editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    return nullptr;
}

static void
move_entry (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    GRefPtr<TavCalendarEntry> created = tav::adoptGRef (create_new_entry (window, priv->entry.get ()));
    if (!created) {
        TAV_WARNING ("Unable to proceed with move operation!");
        return;
    }
    GRefPtr<TavCalendarEntry> old = priv->entry;
    TavCalendarSource *old_source = nullptr;
    g_object_get (old.get (), "source", &old_source, NULL);
    GRefPtr<TavCalendarSource> holder = tav::adoptGRef (old_source);
    const int error = tav_calendar_source_delete_entry (old_source, old.get ());
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[DELETING_ENTRY], 0, old.get ());
        return;
    }
    TAV_WARNING ("Unable to delete event during move operation!");
    editor::report_error (TAV_CALENDAR_DIALOG (window), error);
}

static void
save_in_place (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    g_assert (TAV_IS_CALENDAR_ENTRY(window->priv->entry.get ()));
    TavCalendarEntry *entry = priv->entry.get ();
    GObject *object = G_OBJECT (entry);

    /* Put back if the calendar refuses the save. */
    editor::PropertySnapshot before (object, {"all-day", "start-date", "start-time", "end-date", "end-time",
                                              "end-repetition-date", "repeat-code", "alarm-code", "alarm-time",
                                              "description", "show-until", "title", "location", "has-rrule"});

    const TavTime start_time = priv->all_day ? TavTime {0, 0} : priv->start_time;
    const TavTime end_time = priv->all_day ? TavTime {23, 59} : priv->end_time;
    GCharPtr description (description_text (window));
    g_object_set (object, "all-day", priv->all_day, "start-date", &priv->start_date, "start-time", &start_time,
                  "end-date", &priv->end_date, "end-time", &end_time, "end-repetition-date", &priv->until,
                  "repeat-code", priv->repeat_code, "alarm-code", priv->alarm_code, "alarm-time", &priv->alarm_time,
                  "description", description ? description.get () : "", "show-until", TRUE, NULL);
    /* A complex rule the user did not replace stays the entry's rule. */
    if (priv->repeat_code != TavCalendarRepeatsComplex && !priv->complex)
        tav_calendar_entry_set_has_rrule (entry, FALSE);
    tav_copy_widgets_to_properties (object, "title", priv->title_entry, "location", priv->location_entry, NULL);

    TavCalendarSource *source = nullptr;
    g_object_get (object, "source", &source, NULL);
    GRefPtr<TavCalendarSource> holder = tav::adoptGRef (source);
    const int error = tav_calendar_source_save_entry (source, entry);
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[ENTRY_SAVED], 0, entry);
    } else {
        before.restore ();
        TAV_WARNING ("Error saving entry.");
        editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    }
}

/* The alarm test of Save; FALSE when the alarm would ring in the past. */
static gboolean
check_alarm (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (priv->repeat_code != TavCalendarRepeatsNoRepeat || priv->alarm_code == TavCalendarAlarmNone)
        return TRUE;
    gboolean ok = TRUE;
    if (priv->all_day) {
        ok = !perform_alarm_time_correction (window, FALSE);
    } else {
        TavTimestamp now;
        now_stamp (now);
        const TavTimestamp alarm = editor::alarm_moment (priv->processor.get (), start_of (priv),
                                                         editor::alarm_minutes (priv->alarm_code));
        if (editor::alarm_lies_in_past (alarm, now)) {
            priv->alarm_code = TavCalendarAlarmNone;
            rebuild_alarm_rows (window);
            ok = FALSE;
        }
    }
    if (!ok) {
        TAV_MESSAGE ("Alarm time cannot be in past");
        banner (window, TAV_CAL ("cal_ib_alarm_early"));
    }
    return ok;
}

static void
on_save_clicked_cb (GtkButton *, gpointer data)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (data);
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    TavCalendarEventWindowPrivate *priv = window->priv;
    const bool has_title = !stripped (gtk_entry_get_text (GTK_ENTRY (priv->title_entry))).empty ();
    const bool alarm_ok = check_alarm (window);
    if (!has_title)
        banner (window, TAV_CAL ("cal_ib_add_title"));
    if (!has_title || !alarm_ok)
        return;

    GRefPtr<GtkWidget> keep (GTK_WIDGET (window));
    if (!priv->entry) {
        GRefPtr<TavCalendarEntry> created = tav::adoptGRef (create_new_entry (window));
    } else {
        TavCalendarSource *chosen =
            tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
        TavCalendarSource *own = nullptr;
        g_object_get (priv->entry.get (), "source", &own, NULL);
        GRefPtr<TavCalendarSource> holder = tav::adoptGRef (own);
        if (chosen && own && !tav_calendar_source_is_equal (chosen, own))
            move_entry (window);
        else
            save_in_place (window);
    }
    gtk_widget_destroy (GTK_WIDGET (window));
}

/* Loading an entry ------------------------------------------------------------ */

static void
reset_window_from_event (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    TavCalendarEntry *entry = priv->entry.get ();
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_ti_edit_event"));

    char *title = nullptr, *location = nullptr, *description = nullptr;
    gboolean all_day = FALSE, show_until = FALSE, has_rrule = FALSE;
    TavDate *start_date = nullptr, *end_date = nullptr, *until = nullptr;
    TavTime *start_time = nullptr, *end_time = nullptr, *alarm_time = nullptr;
    int repeat = 0, alarm = 0;
    g_object_get (entry, "title", &title, "location", &location, "all-day", &all_day, "show-until", &show_until,
                  "start-date", &start_date, "start-time", &start_time, "end-date", &end_date, "end-time", &end_time,
                  "repeat-code", &repeat, "alarm-code", &alarm, "alarm-time", &alarm_time, "end-repetition-date",
                  &until, "description", &description, "has-rrule", &has_rrule, NULL);
    GCharPtr title_holder (title), location_holder (location), description_holder (description);

    priv->all_day = all_day;
    priv->start_date = *start_date;
    priv->start_time = *start_time;
    priv->end_date = *end_date;
    priv->end_time = *end_time;
    priv->until = *until;
    priv->alarm_time = *alarm_time;
    priv->repeat_code = static_cast<TavCalendarRepeatCode> (CLAMP (repeat, 0, TavCalendarRepeatsComplex));
    priv->alarm_code = static_cast<TavCalendarAlarmCode> (CLAMP (alarm, 0, TavCalendarAlarmDayBefore));
    priv->complex = has_rrule || priv->repeat_code == TavCalendarRepeatsComplex;
    priv->until_chosen = priv->repeat_code != TavCalendarRepeatsNoRepeat;
    priv->until_forever = priv->until_chosen && !priv->complex && tav_date_compare (&priv->until, &priv->end_date) == 0;
    if (priv->repeat_code == TavCalendarRepeatsNoRepeat)
        priv->until = editor::default_until (priv->processor.get (), priv->start_date, priv->repeat_code);
    tav_date_free (start_date);
    tav_date_free (end_date);
    tav_date_free (until);
    tav_time_free (start_time);
    tav_time_free (end_time);
    tav_time_free (alarm_time);

    Updating guard (priv);
    if (title && !g_utf8_validate (title, -1, nullptr)) {
        TAV_WARNING ("Invalid UTF-8 string received for title.");
        kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), "");
    } else {
        kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), title ? title : "");
    }
    /* The location is stored unchecked: show what can be shown of it
     * rather than nothing. */
    if (location && !g_utf8_validate (location, -1, nullptr)) {
        TAV_WARNING ("Invalid UTF-8 string received for location.");
        location_holder.reset (g_utf8_make_valid (location, -1));
        location = location_holder.get ();
    }
    kivo_entry_set_text (KIVO_ENTRY (priv->location_entry), location ? location : "");
    tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (priv->description_view),
                                 description && g_utf8_validate (description, -1, nullptr) ? description : "");
    gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->all_day_button), priv->all_day);
    gtk_editable_set_position (GTK_EDITABLE (priv->title_entry), 0);
    rebuild_repeat_rows (window);
    /* Reading an alarm that can no longer ring does not drop it: only the
     * user's changes and Save apply the alarm rules. */
    const TavCalendarAlarmCode loaded_alarm = priv->alarm_code;
    rebuild_alarm_rows (window);
    if (priv->alarm_code != loaded_alarm) {
        priv->alarm_code = loaded_alarm;
        KivoPickerButton *picker = KIVO_PICKER_BUTTON (priv->alarm_button);
        kivo_touch_selector_append_text (kivo_picker_button_get_selector (picker),
                                         tav_calendar_alarm_to_string (loaded_alarm));
        priv->alarm_rows.push_back (loaded_alarm);
        kivo_picker_button_set_active (picker, int (priv->alarm_rows.size ()) - 1);
    }
    show_dates (window);
}

/* Construction ------------------------------------------------------------------- */

static void
build_window (TavCalendarEventWindow *window)
{
    TavCalendarEventWindowPrivate *priv = window->priv;
    /* Captions and the titles of the picker buttons share one column. */
    GRefPtr<GtkSizeGroup> group = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));
    GtkWidget *rows = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (rows), KIVO_MARGIN_DEFAULT);

    priv->title_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    gtk_widget_set_name (priv->title_entry, "title-entry");
    kivo_entry_set_placeholder (KIVO_ENTRY (priv->title_entry), TAV_CAL ("cal_va_placeholder_title"));
    gtk_entry_set_max_length (GTK_ENTRY (priv->title_entry), kMaxTitleChars);
    add_row (rows, captioned (group.get (), TAV_CAL ("cal_ti_title"), priv->title_entry));

    priv->location_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    gtk_widget_set_name (priv->location_entry, "location-entry");
    gtk_entry_set_max_length (GTK_ENTRY (priv->location_entry), kMaxTitleChars);
    add_row (rows, captioned (group.get (), TAV_CAL ("cal_fi_location"), priv->location_entry));

    priv->all_day_button = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, TAV_CAL ("cal_va_allday_long"));
    gtk_widget_set_name (priv->all_day_button, "all-day-button");
    add_row (rows, priv->all_day_button);

    priv->start_date_button = picker (KIVO_TYPE_DATE_BUTTON, "start-date-button", TAV_CAL ("cal_fi_startdate"),
                                      group.get ());
    priv->start_time_button = picker (KIVO_TYPE_TIME_BUTTON, "start-time-button", "", nullptr);
    add_row (rows, priv->start_date_button, priv->start_time_button);
    priv->end_date_button = picker (KIVO_TYPE_DATE_BUTTON, "end-date-button", TAV_CAL ("cal_fi_enddate"),
                                    group.get ());
    priv->end_time_button = picker (KIVO_TYPE_TIME_BUTTON, "end-time-button", "", nullptr);
    add_row (rows, priv->end_date_button, priv->end_time_button);

    priv->repeat_button = picker (tav_guarded_picker_get_type (), "repeat-button", TAV_CAL ("cal_fi_repeat"),
                                  group.get ());
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (priv->repeat_button),
                                     KIVO_TOUCH_SELECTOR (kivo_touch_selector_new_text ()));
    add_row (rows, priv->repeat_button);
    priv->until_button = picker (tav_guarded_date_button_get_type (), "until-button",
                                 TAV_CAL ("cal_fi_repeat_until"), group.get ());
    add_row (rows, priv->until_button);

    priv->calendar_button = tav_calendar_button_new ();
    gtk_widget_set_name (priv->calendar_button, "calendar-button");
    kivo_button_add_title_size_group (KIVO_BUTTON (priv->calendar_button), group.get ());
    add_row (rows, priv->calendar_button);

    priv->alarm_button = picker (KIVO_TYPE_PICKER_BUTTON, "alarm-button", TAV_CAL ("cal_fi_alarm"), group.get ());
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (priv->alarm_button),
                                     KIVO_TOUCH_SELECTOR (kivo_touch_selector_new_text ()));
    priv->alarm_time_button = picker (KIVO_TYPE_TIME_BUTTON, "alarm-time-button", "", nullptr);
    add_row (rows, priv->alarm_button, priv->alarm_time_button);

    priv->description_view = kivo_text_view_new ();
    gtk_widget_set_name (priv->description_view, "description-view");
    kivo_text_view_set_placeholder (KIVO_TEXT_VIEW (priv->description_view),
                                    TAV_CAL ("cal_va_placeholder_description"));
    gtk_text_view_set_wrap_mode (GTK_TEXT_VIEW (priv->description_view), GTK_WRAP_WORD_CHAR);
    gtk_widget_set_size_request (priv->description_view, -1, 3 * KIVO_FINGER_HEIGHT / 2);
    add_row (rows, priv->description_view);

    gtk_widget_show_all (rows);
    tav_calendar_dialog_pack_with_defaults (TAV_CALENDAR_DIALOG (window), rows);
    priv->save_button = tav_calendar_dialog_add_button (TAV_CALENDAR_DIALOG (window), TAV_KIVO ("wdgt_bd_save"));
    gtk_widget_set_name (priv->save_button, "save-button");

    set_guard (priv->repeat_button, confirm_complex_edit, window);
    set_guard (priv->until_button, confirm_complex_edit, window);
    g_signal_connect (priv->start_date_button, "value-changed", G_CALLBACK (on_start_date_changed_cb), window);
    g_signal_connect (priv->start_time_button, "value-changed", G_CALLBACK (on_start_time_changed_cb), window);
    g_signal_connect (priv->end_date_button, "value-changed", G_CALLBACK (on_end_date_changed_cb), window);
    g_signal_connect (priv->end_time_button, "value-changed", G_CALLBACK (on_end_time_changed_cb), window);
    g_signal_connect (priv->until_button, "value-changed", G_CALLBACK (on_until_changed_cb), window);
    g_signal_connect (priv->repeat_button, "value-changed", G_CALLBACK (on_repeat_changed_cb), window);
    g_signal_connect (priv->alarm_button, "value-changed", G_CALLBACK (on_alarm_changed_cb), window);
    g_signal_connect (priv->alarm_time_button, "value-changed", G_CALLBACK (on_alarm_time_changed_cb), window);
    g_signal_connect (priv->all_day_button, "toggled", G_CALLBACK (on_all_day_toggled_cb), window);
    g_signal_connect (priv->title_entry, "invalid_input", G_CALLBACK (on_invalid_input_cb), window);
    g_signal_connect (priv->location_entry, "invalid_input", G_CALLBACK (on_invalid_input_cb), window);
    g_signal_connect (priv->description_view, "invalid_input", G_CALLBACK (on_invalid_input_cb), window);
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (priv->description_view));
    g_signal_connect (buffer, "changed", G_CALLBACK (on_description_changed_cb), window);
    g_signal_connect (buffer, "notify::cursor-position", G_CALLBACK (on_cursor_notify_cb), window);
    g_signal_connect_after (priv->description_view, "size-allocate", G_CALLBACK (on_description_allocate_cb), window);
    g_signal_connect_after (priv->description_view, "focus-in-event", G_CALLBACK (on_description_focus_cb), window);
    g_signal_connect (priv->save_button, "clicked", G_CALLBACK (on_save_clicked_cb), window);
}

/* GObject ------------------------------------------------------------------------- */

static void
tav_calendar_event_window_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (object);
    switch (prop_id) {
    case PROP_ENTRY: {
        auto *entry = static_cast<TavCalendarEntry *> (g_value_get_object (value));
        window->priv->entry = GRefPtr<TavCalendarEntry> (entry);
        if (entry)
            reset_window_from_event (window);
        break;
    }
    case PROP_TITLE: {
        const char *title = g_value_get_string (value);
        window->priv->initial_title = title ? title : "";
        Updating guard (window->priv);
        kivo_entry_set_text (KIVO_ENTRY (window->priv->title_entry),
                             title && g_utf8_validate (title, -1, nullptr) ? title : "");
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_event_window_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (object);
    switch (prop_id) {
    case PROP_ENTRY:
        g_value_set_object (value, window->priv->entry.get ());
        break;
    case PROP_TITLE:
        g_value_set_string (value, window->priv->initial_title.c_str ());
        break;
    case PROP_ENTRY_ID:
        g_value_take_string (value, editor::num_id_of (window->priv->entry.get ()));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_event_window_dispose (GObject *object)
{
    TavCalendarEventWindow *window = TAV_CALENDAR_EVENT_WINDOW (object);
    TavCalendarEventWindowPrivate *priv = window->priv;
    if (!priv->disposed) {
        priv->disposed = TRUE;
        priv->entry = nullptr;
        editor::close_modal_note (TAV_CALENDAR_DIALOG (window));
    }
    G_OBJECT_CLASS (tav_calendar_event_window_parent_class)->dispose (object);
}

static void
tav_calendar_event_window_finalize (GObject *object)
{
    TAV_CALENDAR_EVENT_WINDOW (object)->priv->~_TavCalendarEventWindowPrivate ();
    G_OBJECT_CLASS (tav_calendar_event_window_parent_class)->finalize (object);
}

static void
tav_calendar_event_window_class_init (TavCalendarEventWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = tav_calendar_event_window_set_property;
    object_class->get_property = tav_calendar_event_window_get_property;
    object_class->dispose = tav_calendar_event_window_dispose;
    object_class->finalize = tav_calendar_event_window_finalize;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    properties[PROP_ENTRY] = g_param_spec_object ("entry", "Entry", "The entry we are editing.",
                                                  TAV_TYPE_CALENDAR_ENTRY, rw);
    properties[PROP_TITLE] = g_param_spec_string ("title", "Title", "The initial value for title text.", nullptr, rw);
    properties[PROP_ENTRY_ID] = g_param_spec_string ("entry-id", "Entry Id",
                                                     "The string identifier of the entry being edited.", nullptr,
                                                     static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS));
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    for (auto [id, name] : {std::pair {ENTRY_CREATED, "entry-created"}, std::pair {ENTRY_SAVED, "entry-saved"},
                            std::pair {DELETING_ENTRY, "deleting-entry"}}) {
        signals[id] = g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                    g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_ENTRY);
    }
}

static void
tav_calendar_event_window_init (TavCalendarEventWindow *window)
{
    void *memory = tav_calendar_event_window_get_instance_private (window);
    window->priv = new (memory) TavCalendarEventWindowPrivate ();
    TavCalendarEventWindowPrivate *priv = window->priv;
    priv->processor = tav::adoptGRef (tav_calendar_processor_new ());
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_bd_new_event"));
    build_window (window);

    /* A new event: the next full hour today, one hour long. */
    TavTimestamp now;
    now_stamp (now);
    priv->start_date = now.date;
    priv->start_time = TavTime {(now.time.hour + 1) % 24, 0};
    if (now.time.hour == 23 && !is_date_limit_reached (&now.date))
        tav_calendar_processor_inc_date (priv->processor.get (), &priv->start_date);
    const TavTimestamp end = editor::shift_by_minutes (priv->processor.get (), start_of (priv), 60);
    priv->end_date = end.date;
    priv->end_time = end.time;
    priv->until = priv->start_date;
    rebuild_repeat_rows (window);
    rebuild_alarm_rows (window);
    show_dates (window);
    gtk_widget_grab_focus (priv->title_entry);
}

/* Public API ---------------------------------------------------------------------- */

GtkWidget *
tav_calendar_event_window_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_EVENT_WINDOW, NULL));
}

GtkWidget *
tav_calendar_event_window_new_from_entry (TavCalendarEntry *entry)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_ENTRY(entry), NULL);
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_EVENT_WINDOW, "entry", entry, NULL));
}

void
tav_calendar_event_window_add_source (TavCalendarEventWindow *window, TavCalendarSource *source)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    g_return_if_fail (TAV_IS_CALENDAR_SOURCE(source));
    editor::offer_calendar (window->priv->calendar_button, nullptr, source);
}

void
tav_calendar_event_window_add_sources (TavCalendarEventWindow *window, GList *sources)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    for (GList *l = sources; l; l = l->next)
        tav_calendar_event_window_add_source (window, static_cast<TavCalendarSource *> (l->data));
    editor::select_own_calendar (window->priv->calendar_button, window->priv->entry.get ());
}

void
tav_calendar_event_window_set_selected_date (TavCalendarEventWindow *window, const TavDate *date)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    g_return_if_fail (date != NULL && tav_date_is_valid (date) && date->day >= 1);
    Updating guard (window->priv);
    start_changed (window, TavTimestamp {*date, window->priv->start_time});
}

void
tav_calendar_event_window_set_selected_start_time (TavCalendarEventWindow *window, const TavTime *time)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    g_return_if_fail (time != NULL && time->hour >= 0 && time->hour <= 23 && time->minute >= 0 && time->minute <= 59);
    Updating guard (window->priv);
    start_changed (window, TavTimestamp {window->priv->start_date, *time});
}

void
tav_calendar_event_window_set_selected_end_time (TavCalendarEventWindow *window, const TavTime *time)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    g_return_if_fail (time != NULL && time->hour >= 0 && time->hour <= 23 && time->minute >= 0 && time->minute <= 59);
    TavCalendarEventWindowPrivate *priv = window->priv;
    Updating guard (priv);
    priv->end_date = priv->start_date;
    priv->end_time = *time;
    correct_end_time (window, false);
    rebuild_repeat_rows (window);
    show_dates (window);
}

void
tav_calendar_event_window_set_all_day (TavCalendarEventWindow *window, gboolean all_day)
{
    g_return_if_fail (TAV_IS_CALENDAR_EVENT_WINDOW (window));
    TavCalendarEventWindowPrivate *priv = window->priv;
    {
        Updating guard (priv);
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->all_day_button), all_day);
    }
    priv->all_day = all_day;
    Updating guard (priv);
    rebuild_alarm_rows (window);
    show_dates (window);
}
