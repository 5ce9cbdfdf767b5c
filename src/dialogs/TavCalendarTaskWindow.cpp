/* libcalendarui - the task editor
 *
 * Like the event editor, the window keeps the task's state in plain fields
 * (due date, alarm code and time) and shows it in touch widgets; while it
 * writes into its own widgets the change handlers stand still (`updating`).
 */
#include "TavCalendarTaskWindow.h"

#include <new>
#include <string>
#include <vector>

#include "KivoButton.h"
#include "KivoCheckButton.h"
#include "KivoDateButton.h"
#include "KivoEntry.h"
#include "KivoPickerButton.h"
#include "KivoStyle.h"
#include "KivoTouchSelector.h"
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

enum {
    PROP_0,
    PROP_TASK,
    PROP_DESCRIPTION,
    PROP_ENTRY_ID,
    N_PROPERTIES
};

enum {
    TASK_CREATED,
    TASK_SAVED,
    DELETING_TASK,
    LAST_SIGNAL
};

static GParamSpec *properties[N_PROPERTIES];
static guint signals[LAST_SIGNAL];

static const int kMaxTitleChars = 256;

struct _TavCalendarTaskWindowPrivate {
    gboolean disposed = FALSE;
    GRefPtr<TavCalendarProcessor> processor;
    GRefPtr<TavCalendarTask> task;
    GtkWidget *title_entry = nullptr;
    GtkWidget *done_button = nullptr;
    GtkWidget *date_button = nullptr;
    GtkWidget *calendar_button = nullptr;
    GtkWidget *alarm_button = nullptr;
    GtkWidget *alarm_time_button = nullptr;
    TavCalendarAlarmCode alarm_code = TavCalendarAlarmNone;
    TavTime alarm_time {12, 0};
    TavDate due_date {};
    GtkWidget *delete_button = nullptr;
    GtkWidget *save_button = nullptr;

    std::string description;
    std::vector<TavCalendarAlarmCode> alarm_rows;
    int updating = 0;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarTaskWindow, tav_calendar_task_window, TAV_TYPE_CALENDAR_DIALOG,
                         G_ADD_PRIVATE (TavCalendarTaskWindow))

namespace {

struct Updating {
    explicit Updating (TavCalendarTaskWindowPrivate *p) : priv (p) { priv->updating++; }
    ~Updating () { priv->updating--; }
    TavCalendarTaskWindowPrivate *priv;
};

TavCalendarSource *source_of (TavCalendarEntry *entry)
{
    TavCalendarSource *source = nullptr;
    g_object_get (entry, "source", &source, NULL);
    return source;
}

}  // namespace

/* Showing the fields -------------------------------------------------------------- */

static void
show_fields (TavCalendarTaskWindow *window)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    Updating guard (priv);
    editor::show_date (priv->date_button, priv->due_date);
    editor::show_time (priv->alarm_time_button, priv->alarm_time);
    gtk_widget_set_visible (priv->alarm_time_button, priv->alarm_code != TavCalendarAlarmNone);
    const gboolean done = gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (priv->done_button));
    gtk_widget_set_sensitive (priv->alarm_button, !done);
}

/* Keeps the alarm picker in step with the alarm code: "none", and the
 * day-before reminder while it can still ring. With @keep, a code the
 * picker would not offer (a stored task's reminder whose day is over) is
 * kept and shown; otherwise it falls back to none. */
static void
reset_alarm_selector_row (TavCalendarTaskWindow *window, bool keep)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    Updating guard (priv);
    TavTimestamp now;
    editor::now_stamp (now);
    priv->alarm_rows = editor::offered_alarms (priv->processor.get (), TavTimestamp {priv->due_date, {0, 0}}, true,
                                               false, now);
    bool offered = false;
    for (TavCalendarAlarmCode code : priv->alarm_rows)
        offered = offered || code == priv->alarm_code;
    if (!offered) {
        if (keep)
            priv->alarm_rows.push_back (priv->alarm_code);
        else
            priv->alarm_code = TavCalendarAlarmNone;
    }
    KivoPickerButton *picker = KIVO_PICKER_BUTTON (priv->alarm_button);
    KivoTouchSelector *selector = kivo_picker_button_get_selector (picker);
    kivo_picker_button_begin_update (picker);
    kivo_touch_selector_remove_all (selector);
    int active = 0;
    for (size_t i = 0; i < priv->alarm_rows.size (); ++i) {
        kivo_touch_selector_append_text (selector, tav_calendar_alarm_to_string (priv->alarm_rows[i]));
        if (priv->alarm_rows[i] == priv->alarm_code)
            active = int (i);
    }
    kivo_touch_selector_set_active (selector, 0, active);
    kivo_picker_button_end_update (picker);
    kivo_picker_button_value_changed (picker);
}

/* The reminder never rings in the past (the event editor's all-day rule,
 * with the due date as the day). */
static gboolean
perform_alarm_time_correction (TavCalendarTaskWindow *window, gboolean reset)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    TavTimestamp now;
    editor::now_stamp (now);
    const bool corrected = editor::correct_all_day_alarm (priv->processor.get (), priv->due_date, priv->alarm_time,
                                                          now, reset);
    Updating guard (priv);
    editor::show_time (priv->alarm_time_button, priv->alarm_time);
    return corrected;
}

static void
alarm_too_early (TavCalendarTaskWindow *window)
{
    TAV_MESSAGE ("Alarm time cannot be in past");
    tav_show_info_banner (GTK_WIDGET (window), TAV_CAL ("cal_ib_alarm_early"));
}

/* Callbacks --------------------------------------------------------------------- */

static void
on_date_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->due_date = editor::date_of (button);
    TAV_MESSAGE ("Values from kivo date button: %02d-%02d-%d", priv->due_date.day, priv->due_date.month + 1,
                 priv->due_date.year);
    reset_alarm_selector_row (window, false);
    if (priv->alarm_code != TavCalendarAlarmNone)
        perform_alarm_time_correction (window, FALSE);
    show_fields (window);
}

static void
on_alarm_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    const int row = kivo_picker_button_get_active (KIVO_PICKER_BUTTON (button));
    if (row < 0 || size_t (row) >= priv->alarm_rows.size ())
        return;
    TAV_MESSAGE ("New alarm text value is %s", kivo_button_get_value (KIVO_BUTTON (button)));
    priv->alarm_code = priv->alarm_rows[row];
    TAV_MESSAGE ("New alarm code is %d", priv->alarm_code);
    if (priv->alarm_code != TavCalendarAlarmNone)
        perform_alarm_time_correction (window, FALSE);
    show_fields (window);
}

static void
on_alarm_time_changed_cb (GtkWidget *button, gpointer data)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    priv->alarm_time = editor::time_of (button);
    if (perform_alarm_time_correction (window, FALSE))
        alarm_too_early (window);
}

/* A finished task needs no reminder: ticking it off drops the alarm (as the
 * task list does) and the alarm picker rests until it is open again. */
static void
on_done_toggled_cb (GtkToggleButton *button, gpointer data)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (priv->updating)
        return;
    if (gtk_toggle_button_get_active (button) && priv->alarm_code != TavCalendarAlarmNone) {
        priv->alarm_code = TavCalendarAlarmNone;
        reset_alarm_selector_row (window, false);
    }
    show_fields (window);
}

static void
on_invalid_input_cb (GtkWidget *, KivoInvalidInputType type, gpointer data)
{
    if (type == KIVO_INVALID_INPUT_MAX_CHARS_REACHED)
        tav_show_info_banner (GTK_WIDGET (data), TAV_COMMON ("ckdg_ib_maximum_characters_reached"));
}

/* Saving ------------------------------------------------------------------------ */

static std::string
title_text (TavCalendarTaskWindow *window)
{
    return editor::stripped (gtk_entry_get_text (GTK_ENTRY (window->priv->title_entry)));
}

/* A new task with the window's fields, stored in the chosen calendar.
 * Returns it (one reference) when the calendar accepted it. */
static TavCalendarTask *
create_new_task (TavCalendarTaskWindow *window, TavCalendarEntry *moving = nullptr)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    TavCalendarSource *source =
        tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
    if (!source) {
        TAV_WARNING ("No calendar source, can not create task.");
        /* Only read-only calendars (or none) were given: say so rather
         * than close without a word. */
        editor::report_error (TAV_CALENDAR_DIALOG (window), CalendarDefaultError);
        return nullptr;
    }
    const std::string title = title_text (window);
    const gboolean done = gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (priv->done_button));
    GRefPtr<TavCalendarTask> task = tav::adoptGRef (TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, NULL)));
    g_object_set (task.get (), "title", title.c_str (), "done", done, "alarm-code", priv->alarm_code, "start-date",
                  &priv->due_date, "end-date", &priv->due_date, "alarm-time", &priv->alarm_time, NULL);
    /* The copy of a moved task carries its ID, so that a calendar can keep
     * what the fields cannot say (its identity elsewhere, for one). */
    if (moving) {
        GCharPtr id;
        char *raw = nullptr;
        g_object_get (moving, "num-id", &raw, NULL);
        id.reset (raw);
        g_object_set (task.get (), "num-id", id.get (), NULL);
    }
    const int error = tav_calendar_source_create_task (source, TAV_CALENDAR_TASK (task.get ()));
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[TASK_CREATED], 0, task.get ());
        return task.release ();
    }
    if (error == CalendarDuplicateError) {
        g_signal_emit (window, signals[TASK_SAVED], 0, task.get ());
        return task.release ();
    }
    TAV_WARNING ("Unable to create task in database!");
    editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    return nullptr;
}


static void
save_existing_task (TavCalendarTaskWindow *window)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    g_assert (TAV_IS_CALENDAR_TASK(window->priv->task.get ()));
    GObject *object = G_OBJECT (priv->task.get ());

    /* Put back if the calendar refuses the save. */
    editor::PropertySnapshot before (object, {"start-date", "end-date", "alarm-time", "alarm-code", "done", "title"});

    const gboolean done = gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (priv->done_button));
    /* The due date is the task's only day: its end follows its start. */
    g_object_set (object, "start-date", &priv->due_date, "end-date", &priv->due_date, "alarm-time", &priv->alarm_time,
                  "alarm-code", priv->alarm_code, "done", done, NULL);
    {
        Updating guard (priv);
        kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), title_text (window).c_str ());
    }
    tav_copy_widgets_to_properties (object, "title", priv->title_entry, NULL);

    GRefPtr<TavCalendarSource> source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (object)));
    const int error = tav_calendar_source_save_task (source.get (), TAV_CALENDAR_TASK (object));
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[TASK_SAVED], 0, object);
    } else {
        before.restore ();
        TAV_WARNING ("Unable to save task to database!");
        editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    }
}

static void
move_task (TavCalendarTaskWindow *window)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    GRefPtr<TavCalendarTask> created =
        tav::adoptGRef (create_new_task (window, TAV_CALENDAR_ENTRY (priv->task.get ())));
    if (!created) {
        TAV_WARNING ("Unable to proceed with move operation!");
        return;
    }
    GRefPtr<TavCalendarTask> old = priv->task;
    GRefPtr<TavCalendarSource> old_source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (old.get ())));
    g_signal_emit (window, signals[DELETING_TASK], 0, old.get ());
    const int error = tav_calendar_source_delete_task (old_source.get (), TAV_CALENDAR_TASK (old.get ()));
    if (error == CalendarNoError) {
        /* Once more now that it is really gone. */
        g_signal_emit (window, signals[DELETING_TASK], 0, old.get ());
        return;
    }
    TAV_WARNING ("Unable to delete task during move operation!");
    g_signal_emit_by_name (window, "error", TAV_CAL ("cal_ni_internal_error"));
}

static void
on_save_clicked_cb (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_TASK_WINDOW(data));
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (priv->alarm_code != TavCalendarAlarmNone && perform_alarm_time_correction (window, FALSE)) {
        alarm_too_early (window);
        return;
    }
    /* No title: nothing is saved and nothing is said; the window stays. */
    if (title_text (window).empty ())
        return;

    GRefPtr<GtkWidget> keep (GTK_WIDGET (window));
    if (!priv->task) {
        GRefPtr<TavCalendarTask> created = tav::adoptGRef (create_new_task (window));
    } else {
        TavCalendarSource *chosen =
            tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
        GRefPtr<TavCalendarSource> own = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (priv->task.get ())));
        if (chosen && own && !tav_calendar_source_is_equal (chosen, own.get ()))
            move_task (window);
        else
            save_existing_task (window);
    }
    gtk_widget_destroy (GTK_WIDGET (window));
}

static void
on_delete_clicked_cb (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_TASK_WINDOW(data));
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (data);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (!priv->task) {
        TAV_WARNING ("There is no task to delete.");
        return;
    }
    GRefPtr<GtkWidget> keep (GTK_WIDGET (window));
    GRefPtr<TavCalendarTask> task = priv->task;
    const std::string question = editor::with_title (TAV_CAL ("cal_nc_delete_task"),
                                                     tav_calendar_entry_get_title (TAV_CALENDAR_ENTRY (task.get ())));
    if (!editor::confirm (TAV_CALENDAR_DIALOG (window), question.c_str ()) || priv->disposed)
        return;
    GRefPtr<TavCalendarSource> source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (task.get ())));
    const int error = tav_calendar_source_delete_task (source.get (), TAV_CALENDAR_TASK (task.get ()));
    if (error != CalendarNoError) {
        /* The task stays, and so does the window. */
        TAV_WARNING ("Unable to delete task in database!");
        editor::report_error (TAV_CALENDAR_DIALOG (window), error);
        return;
    }
    g_signal_emit (window, signals[DELETING_TASK], 0, task.get ());
    gtk_widget_destroy (GTK_WIDGET (window));
}

/* Loading a task ----------------------------------------------------------------- */

static void
reset_window_from_task (TavCalendarTaskWindow *window)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    TavCalendarEntry *task = TAV_CALENDAR_ENTRY (priv->task.get ());
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_ti_edit_task"));

    char *title = nullptr;
    gboolean done = FALSE;
    TavDate *due = nullptr;
    TavTime *alarm_time = nullptr;
    int alarm = 0;
    g_object_get (task, "title", &title, "done", &done, "start-date", &due, "alarm-code", &alarm, "alarm-time",
                  &alarm_time, NULL);
    GCharPtr title_holder (title);
    priv->due_date = *due;
    priv->alarm_time = *alarm_time;
    tav_date_free (due);
    tav_time_free (alarm_time);
    if (alarm != TavCalendarAlarmNone && alarm != TavCalendarAlarmDayBefore) {
        TAV_WARNING ("Ignoring current alarm setting <%d>", alarm);
        TAV_WARNING ("Over-riding it with default value 'DayBefore'");
        alarm = TavCalendarAlarmDayBefore;
    }
    priv->alarm_code = static_cast<TavCalendarAlarmCode> (alarm);

    {
        Updating guard (priv);
        if (title && !g_utf8_validate (title, -1, nullptr)) {
            TAV_WARNING ("Invalid UTF-8 string received for title.");
            kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), "");
        } else {
            kivo_entry_set_text (KIVO_ENTRY (priv->title_entry), title ? title : "");
        }
        gtk_editable_set_position (GTK_EDITABLE (priv->title_entry), 0);
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (priv->done_button), done);
    }
    /* A stored reminder is shown as it is; the rules apply to changes. */
    reset_alarm_selector_row (window, true);
    gtk_widget_set_sensitive (priv->delete_button, TRUE);
    show_fields (window);
}

/* Construction ------------------------------------------------------------------- */

static void
build_window (TavCalendarTaskWindow *window)
{
    TavCalendarTaskWindowPrivate *priv = window->priv;
    GRefPtr<GtkSizeGroup> group = tav::adoptGRef (gtk_size_group_new (GTK_SIZE_GROUP_HORIZONTAL));
    GtkWidget *rows = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (rows), KIVO_MARGIN_DEFAULT);

    priv->title_entry = kivo_entry_new (KIVO_SIZE_FINGER_HEIGHT);
    gtk_widget_set_name (priv->title_entry, "title-entry");
    kivo_entry_set_placeholder (KIVO_ENTRY (priv->title_entry), TAV_CAL ("cal_va_placeholder_title"));
    gtk_entry_set_max_length (GTK_ENTRY (priv->title_entry), kMaxTitleChars);
    editor::add_row (rows, priv->title_entry);

    /* The done check and the due date share a line, so that the whole form
     * fits the screen without panning. */
    priv->done_button = kivo_check_button_new_with_label (KIVO_SIZE_FINGER_HEIGHT, TAV_CAL ("cal_fi_done"));
    gtk_widget_set_name (priv->done_button, "done-button");
    priv->date_button = editor::picker (KIVO_TYPE_DATE_BUTTON, "date-button", TAV_CAL ("cal_fi_date"), group.get ());
    GtkWidget *line = gtk_hbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_widget_set_size_request (priv->done_button, 200, -1);
    gtk_box_pack_start (GTK_BOX (line), priv->done_button, FALSE, TRUE, 0);
    gtk_box_pack_start (GTK_BOX (line), priv->date_button, TRUE, TRUE, 0);
    gtk_box_pack_start (GTK_BOX (rows), line, FALSE, FALSE, 0);

    priv->calendar_button = tav_calendar_button_new ();
    gtk_widget_set_name (priv->calendar_button, "calendar-button");
    kivo_button_add_title_size_group (KIVO_BUTTON (priv->calendar_button), group.get ());
    editor::add_row (rows, priv->calendar_button);

    priv->alarm_button = editor::picker (KIVO_TYPE_PICKER_BUTTON, "alarm-button", TAV_CAL ("cal_fi_alarm"),
                                         group.get ());
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (priv->alarm_button),
                                     KIVO_TOUCH_SELECTOR (kivo_touch_selector_new_text ()));
    priv->alarm_time_button = editor::picker (KIVO_TYPE_TIME_BUTTON, "alarm-time-button", "", nullptr);
    editor::add_row (rows, priv->alarm_button, priv->alarm_time_button);

    gtk_widget_show_all (rows);
    tav_calendar_dialog_pack_with_defaults (TAV_CALENDAR_DIALOG (window), rows);
    priv->delete_button = tav_calendar_dialog_add_button (TAV_CALENDAR_DIALOG (window), TAV_KIVO ("wdgt_bd_delete"));
    gtk_widget_set_name (priv->delete_button, "delete-button");
    priv->save_button = tav_calendar_dialog_add_button (TAV_CALENDAR_DIALOG (window), TAV_KIVO ("wdgt_bd_save"));
    gtk_widget_set_name (priv->save_button, "save-button");
    /* A new task has nothing to delete yet. */
    gtk_widget_set_sensitive (priv->delete_button, FALSE);
    /* Nothing can be stored until a writable calendar is offered. */
    gtk_widget_set_sensitive (priv->save_button, FALSE);

    g_signal_connect (priv->date_button, "value-changed", G_CALLBACK (on_date_changed_cb), window);
    g_signal_connect (priv->alarm_button, "value-changed", G_CALLBACK (on_alarm_changed_cb), window);
    g_signal_connect (priv->alarm_time_button, "value-changed", G_CALLBACK (on_alarm_time_changed_cb), window);
    g_signal_connect (priv->done_button, "toggled", G_CALLBACK (on_done_toggled_cb), window);
    g_signal_connect (priv->title_entry, "invalid_input", G_CALLBACK (on_invalid_input_cb), window);
    g_signal_connect (priv->save_button, "clicked", G_CALLBACK (on_save_clicked_cb), window);
    g_signal_connect (priv->delete_button, "clicked", G_CALLBACK (on_delete_clicked_cb), window);
}

/* GObject ------------------------------------------------------------------------- */

static void
tav_calendar_task_window_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (object);
    switch (prop_id) {
    case PROP_TASK: {
        auto *task = static_cast<TavCalendarTask *> (g_value_get_object (value));
        window->priv->task = GRefPtr<TavCalendarTask> (task);
        if (task)
            reset_window_from_task (window);
        break;
    }
    case PROP_DESCRIPTION: {
        const char *text = g_value_get_string (value);
        window->priv->description = text ? text : "";
        Updating guard (window->priv);
        kivo_entry_set_text (KIVO_ENTRY (window->priv->title_entry),
                             text && g_utf8_validate (text, -1, nullptr) ? text : "");
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_task_window_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (object);
    switch (prop_id) {
    case PROP_TASK:
        g_value_set_object (value, window->priv->task.get ());
        break;
    case PROP_DESCRIPTION:
        g_value_set_string (value, window->priv->description.c_str ());
        break;
    case PROP_ENTRY_ID:
        g_value_take_string (value, editor::num_id_of (window->priv->task.get ()));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_task_window_dispose (GObject *object)
{
    TavCalendarTaskWindow *window = TAV_CALENDAR_TASK_WINDOW (object);
    TavCalendarTaskWindowPrivate *priv = window->priv;
    if (!priv->disposed) {
        priv->disposed = TRUE;
        priv->task = nullptr;
        editor::close_modal_note (TAV_CALENDAR_DIALOG (window));
    }
    G_OBJECT_CLASS (tav_calendar_task_window_parent_class)->dispose (object);
}

static void
tav_calendar_task_window_finalize (GObject *object)
{
    TAV_CALENDAR_TASK_WINDOW (object)->priv->~_TavCalendarTaskWindowPrivate ();
    G_OBJECT_CLASS (tav_calendar_task_window_parent_class)->finalize (object);
}

static void
tav_calendar_task_window_class_init (TavCalendarTaskWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = tav_calendar_task_window_set_property;
    object_class->get_property = tav_calendar_task_window_get_property;
    object_class->dispose = tav_calendar_task_window_dispose;
    object_class->finalize = tav_calendar_task_window_finalize;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    properties[PROP_TASK] = g_param_spec_object ("task", "Task", "The task we are editing.", TAV_TYPE_CALENDAR_TASK,
                                                 rw);
    properties[PROP_DESCRIPTION] = g_param_spec_string ("description", "Description",
                                                        "The initial value for description text.", nullptr, rw);
    properties[PROP_ENTRY_ID] = g_param_spec_string ("entry-id", "Entry Id",
                                                     "The string identifier of the entry being edited.", nullptr,
                                                     static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS));
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    for (auto [id, name] : {std::pair {TASK_CREATED, "task-created"}, std::pair {TASK_SAVED, "task-saved"},
                            std::pair {DELETING_TASK, "deleting-task"}}) {
        signals[id] = g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                    g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_TASK);
    }
}

static void
tav_calendar_task_window_init (TavCalendarTaskWindow *window)
{
    void *memory = tav_calendar_task_window_get_instance_private (window);
    window->priv = new (memory) TavCalendarTaskWindowPrivate ();
    TavCalendarTaskWindowPrivate *priv = window->priv;
    priv->processor = tav::adoptGRef (tav_calendar_processor_new ());
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_bd_new_task"));
    build_window (window);
    /* A new task: due today, no reminder. */
    tav_date_init_today (&priv->due_date);
    reset_alarm_selector_row (window, false);
    show_fields (window);
    gtk_widget_grab_focus (priv->title_entry);
}

/* Public API ---------------------------------------------------------------------- */

GtkWidget *
tav_calendar_task_window_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_TASK_WINDOW, NULL));
}

GtkWidget *
tav_calendar_task_window_new_from_task (TavCalendarTask *task)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_TASK(task), NULL);
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_TASK_WINDOW, "task", task, NULL));
}

void
tav_calendar_task_window_add_source (TavCalendarTaskWindow *window, TavCalendarSource *source)
{
    g_return_if_fail (TAV_IS_CALENDAR_TASK_WINDOW(window));
    g_return_if_fail (TAV_IS_CALENDAR_SOURCE(source));
    editor::offer_calendar (window->priv->calendar_button, window->priv->save_button, source);
}

void
tav_calendar_task_window_add_sources (TavCalendarTaskWindow *window, GList *sources)
{
    g_return_if_fail (TAV_IS_CALENDAR_TASK_WINDOW(window));
    for (GList *l = sources; l; l = l->next)
        tav_calendar_task_window_add_source (window, static_cast<TavCalendarSource *> (l->data));
    editor::select_own_calendar (window->priv->calendar_button,
                                 window->priv->task ? TAV_CALENDAR_ENTRY (window->priv->task.get ()) : nullptr);
}
