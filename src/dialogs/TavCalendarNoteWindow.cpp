/* libcalendarui - the note editor
 *
 * A text view that pans on its own, the calendar picker, and for a stored
 * note the line telling when it was last saved. The text is the note: it
 * is stored as the note's title and as its description.
 */
#include "TavCalendarNoteWindow.h"

#include <new>
#include <string>
#include <vector>

#include "KivoButton.h"
#include "KivoEntry.h"
#include "KivoPannableArea.h"
#include "KivoStyle.h"
#include "TavCalendarButton.h"
#include "TavCalendarProcessor.h"
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
    PROP_NOTE,
    PROP_DESCRIPTION,
    PROP_TIME_24HR_FORMAT,
    PROP_ENTRY_ID,
    N_PROPERTIES
};

enum {
    NOTE_CREATED,
    NOTE_SAVED,
    DELETING_NOTE,
    LAST_SIGNAL
};

static GParamSpec *properties[N_PROPERTIES];
static guint signals[LAST_SIGNAL];

struct _TavCalendarNoteWindowPrivate {
    gboolean disposed = FALSE;
    GRefPtr<TavCalendarProcessor> processor;
    GRefPtr<TavCalendarNote> note;
    GtkWidget *text_view = nullptr;
    GtkWidget *calendar_button = nullptr;
    GtkWidget *modified_label = nullptr;
    gboolean time_24hr_format = TRUE;
    GtkWidget *delete_button = nullptr;
    GtkWidget *save_button = nullptr;

    std::string description;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarNoteWindow, tav_calendar_note_window, TAV_TYPE_CALENDAR_DIALOG,
                         G_ADD_PRIVATE (TavCalendarNoteWindow))

namespace {

TavCalendarSource *source_of (TavCalendarEntry *entry)
{
    TavCalendarSource *source = nullptr;
    g_object_get (entry, "source", &source, NULL);
    return source;
}

const char *valid_or_empty (const char *text)
{
    return text && g_utf8_validate (text, -1, nullptr) ? text : "";
}

}  // namespace

/* The line under the note: when it was saved last, the time when that was
 * today, else the date with its weekday. A note without a valid date of
 * change (a new one) shows no line. */
static void
set_last_modified_label (TavCalendarNoteWindow *window)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    TavDate *date = nullptr;
    TavTime *time = nullptr;
    g_object_get (priv->note.get (), "modification-date", &date, "start-time", &time, NULL);
    GCharPtr when;
    if (date && time && tav_date_is_valid (date) && date->day >= 1) {
        TavDate today;
        tav_date_init_today (&today);
        if (tav_date_compare (date, &today) == 0) {
            when.reset (tav_time_to_string_format (time, !priv->time_24hr_format));
        } else {
            const int weekday = tav_calendar_processor_date_to_day_of_week (priv->processor.get (), date);
            when.reset (tav_date_to_string_format (date, TavDateLongFormat, weekday));
        }
    }
    tav_date_free (date);
    tav_time_free (time);
    if (!when) {
        gtk_widget_hide (priv->modified_label);
        return;
    }
    const std::string saved = editor::with_title (TAV_CAL ("cal_va_note_saved"), when.get ());
    GCharPtr markup (g_markup_printf_escaped ("<span size=\"small\" color=\"grey\"><i>%s </i></span>", saved.c_str ()));
    gtk_label_set_markup (GTK_LABEL (priv->modified_label), markup.get ());
    gtk_widget_show (priv->modified_label);
}

/* Saving ------------------------------------------------------------------------ */

static std::string
note_text (TavCalendarNoteWindow *window)
{
    GCharPtr text (tav_kivo_text_view_get_text (KIVO_TEXT_VIEW (window->priv->text_view)));
    return text ? text.get () : "";
}

/* A new note with the window's text, stored in the chosen calendar; only a
 * plain success counts. Returns it (one reference) when stored. */
static TavCalendarNote *
create_new_note (TavCalendarNoteWindow *window, TavCalendarEntry *moving = nullptr)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    TavCalendarSource *source =
        tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
    if (!source) {
        TAV_WARNING ("No calendar source, can not create event.");
        /* Only read-only calendars (or none) were given: say so rather
         * than close without a word. */
        editor::report_error (TAV_CALENDAR_DIALOG (window), CalendarDefaultError);
        return nullptr;
    }
    const std::string text = note_text (window);
    GRefPtr<TavCalendarNote> note = tav::adoptGRef (TAV_CALENDAR_NOTE (tav_calendar_note_new ()));
    g_object_set (note.get (), "title", text.c_str (), "description", text.c_str (), NULL);
    /* The copy of a moved note carries its ID, so that a calendar can keep
     * what the fields cannot say (its identity elsewhere, for one). */
    if (moving) {
        GCharPtr id;
        char *raw = nullptr;
        g_object_get (moving, "num-id", &raw, NULL);
        id.reset (raw);
        g_object_set (note.get (), "num-id", id.get (), NULL);
    }
    const int error = tav_calendar_source_create_note (source, TAV_CALENDAR_NOTE (note.get ()));
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[NOTE_CREATED], 0, note.get ());
        return note.release ();
    }
    TAV_WARNING ("Unable to create note in database!");
    editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    return nullptr;
}


static void
save_existing_note (TavCalendarNoteWindow *window)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    g_assert (TAV_IS_CALENDAR_NOTE(window->priv->note.get ()));
    GObject *object = G_OBJECT (priv->note.get ());

    /* Put back if the calendar refuses the save. */
    editor::PropertySnapshot before (object, {"title", "description", "start-time", "modification-date", "start-year",
                                              "start-month", "start-day"});

    tav_copy_widgets_to_properties (object, "title", priv->text_view, "description", priv->text_view, NULL);
    TavTimestamp now;
    editor::now_stamp (now);
    g_object_set (object, "start-time", &now.time, "modification-date", &now.date, "start-year", now.date.year,
                  "start-month", now.date.month, "start-day", now.date.day, NULL);

    GRefPtr<TavCalendarSource> source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (object)));
    const int error = tav_calendar_source_save_note (source.get (), TAV_CALENDAR_NOTE (object));
    if (error == CalendarNoError) {
        g_signal_emit (window, signals[NOTE_SAVED], 0, object);
    } else {
        before.restore ();
        TAV_WARNING ("Unable to save note to database!");
        editor::report_error (TAV_CALENDAR_DIALOG (window), error);
    }
}

static void
move_note (TavCalendarNoteWindow *window)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    GRefPtr<TavCalendarNote> created =
        tav::adoptGRef (create_new_note (window, TAV_CALENDAR_ENTRY (priv->note.get ())));
    if (!created) {
        TAV_WARNING ("Unable to proceed with move operation!");
        return;
    }
    GRefPtr<TavCalendarNote> old = priv->note;
    GRefPtr<TavCalendarSource> old_source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (old.get ())));
    g_signal_emit (window, signals[DELETING_NOTE], 0, old.get ());
    tav_calendar_source_delete_note (old_source.get (), TAV_CALENDAR_NOTE (old.get ()));
}

static void
on_save_clicked_cb (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_NOTE_WINDOW(data));
    TavCalendarNoteWindow *window = TAV_CALENDAR_NOTE_WINDOW (data);
    TavCalendarNoteWindowPrivate *priv = window->priv;
    GRefPtr<GtkWidget> keep (GTK_WIDGET (window));
    if (!priv->note) {
        GRefPtr<TavCalendarNote> created = tav::adoptGRef (create_new_note (window));
    } else {
        TavCalendarSource *chosen =
            tav_calendar_button_get_selected_calendar (TAV_CALENDAR_BUTTON (priv->calendar_button));
        GRefPtr<TavCalendarSource> own = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (priv->note.get ())));
        if (chosen && own && !tav_calendar_source_is_equal (chosen, own.get ())) {
            TAV_MESSAGE ("The source has been changed, emulating move.");
            move_note (window);
        } else {
            save_existing_note (window);
        }
    }
    gtk_widget_destroy (GTK_WIDGET (window));
}

static void
on_delete_clicked_cb (GtkButton *, gpointer data)
{
    g_return_if_fail (TAV_IS_CALENDAR_NOTE_WINDOW(data));
    TavCalendarNoteWindow *window = TAV_CALENDAR_NOTE_WINDOW (data);
    TavCalendarNoteWindowPrivate *priv = window->priv;
    if (!priv->note) {
        TAV_WARNING ("There is no note to delete.");
        return;
    }
    GRefPtr<GtkWidget> keep (GTK_WIDGET (window));
    GRefPtr<TavCalendarNote> note = priv->note;
    if (!editor::confirm (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_nc_delete_note")) || priv->disposed)
        return;
    GRefPtr<TavCalendarSource> source = tav::adoptGRef (source_of (TAV_CALENDAR_ENTRY (note.get ())));
    const int error = tav_calendar_source_delete_note (source.get (), TAV_CALENDAR_NOTE (note.get ()));
    if (error != CalendarNoError) {
        TAV_WARNING ("Unable to delete note in database!");
        editor::report_error (TAV_CALENDAR_DIALOG (window), error);
        return;
    }
    g_signal_emit (window, signals[DELETING_NOTE], 0, note.get ());
    gtk_widget_destroy (GTK_WIDGET (window));
}

/* Loading a note ------------------------------------------------------------------ */

static void
reset_window_from_note (TavCalendarNoteWindow *window)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_ti_edit_note"));
    char *title = nullptr, *description = nullptr;
    g_object_get (priv->note.get (), "title", &title, "description", &description, NULL);
    GCharPtr title_holder (title), description_holder (description);
    if (title && !g_utf8_validate (title, -1, nullptr))
        TAV_WARNING ("Invalid UTF-8 string received for title.");
    /* A note written here has one text in both fields; one from elsewhere
     * may have a heading and a body, and both are shown so that saving
     * loses neither. */
    std::string text = valid_or_empty (title);
    const std::string body = valid_or_empty (description);
    if (text.empty ())
        text = body;
    else if (!body.empty () && body != text)
        text += "\n" + body;
    tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (priv->text_view), text.c_str ());
    tav_kivo_text_set_cursor_at_start (KIVO_TEXT_VIEW (priv->text_view));
    gtk_widget_set_sensitive (priv->delete_button, TRUE);
    set_last_modified_label (window);
}

/* Construction ------------------------------------------------------------------- */

static void
build_window (TavCalendarNoteWindow *window)
{
    TavCalendarNoteWindowPrivate *priv = window->priv;
    TavCalendarDialog *dialog = TAV_CALENDAR_DIALOG (window);

    priv->text_view = kivo_text_view_new ();
    gtk_widget_set_name (priv->text_view, "note-text-view");
    kivo_text_view_set_placeholder (KIVO_TEXT_VIEW (priv->text_view), TAV_CAL ("cal_va_placeholder_note"));
    gtk_text_view_set_wrap_mode (GTK_TEXT_VIEW (priv->text_view), GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_left_margin (GTK_TEXT_VIEW (priv->text_view), KIVO_MARGIN_DEFAULT);
    gtk_text_view_set_right_margin (GTK_TEXT_VIEW (priv->text_view), KIVO_MARGIN_DEFAULT);
    /* The text pans vertically on its own, like the dialog's content. */
    GtkWidget *area = GTK_WIDGET (g_object_new (KIVO_TYPE_PANNABLE_AREA, "mov-mode", KIVO_MOVEMENT_MODE_VERTICAL,
                                                "hovershoot-max", 0, "vovershoot-max", 0, "hscrollbar-policy",
                                                GTK_POLICY_NEVER, NULL));
    gtk_widget_set_name (area, "note-area");
    gtk_container_add (GTK_CONTAINER (area), priv->text_view);
    gtk_widget_set_size_request (area, -1, 3 * KIVO_FINGER_HEIGHT);
    gtk_container_set_border_width (GTK_CONTAINER (area), KIVO_MARGIN_DEFAULT);
    gtk_widget_show_all (area);
    tav_calendar_dialog_pack_no_scroll (dialog, area, TRUE, TRUE);

    GtkWidget *rows = gtk_vbox_new (FALSE, KIVO_MARGIN_DEFAULT);
    gtk_container_set_border_width (GTK_CONTAINER (rows), KIVO_MARGIN_DEFAULT);
    priv->calendar_button = tav_calendar_button_new ();
    gtk_widget_set_name (priv->calendar_button, "calendar-button");
    editor::add_row (rows, priv->calendar_button);
    priv->modified_label = gtk_label_new (nullptr);
    gtk_widget_set_name (priv->modified_label, "modified-label");
    gtk_misc_set_alignment (GTK_MISC (priv->modified_label), 1.0, 0.5);
    gtk_box_pack_start (GTK_BOX (rows), priv->modified_label, FALSE, FALSE, 0);
    gtk_widget_show_all (rows);
    gtk_widget_hide (priv->modified_label);
    tav_calendar_dialog_pack_no_scroll (dialog, rows, FALSE, FALSE);

    priv->delete_button = tav_calendar_dialog_add_button (dialog, TAV_KIVO ("wdgt_bd_delete"));
    gtk_widget_set_name (priv->delete_button, "delete-button");
    priv->save_button = tav_calendar_dialog_add_button (dialog, TAV_KIVO ("wdgt_bd_save"));
    gtk_widget_set_name (priv->save_button, "save-button");
    gtk_widget_set_sensitive (priv->delete_button, FALSE);
    /* Nothing can be stored until a writable calendar is offered. */
    gtk_widget_set_sensitive (priv->save_button, FALSE);
    g_signal_connect (priv->save_button, "clicked", G_CALLBACK (on_save_clicked_cb), window);
    g_signal_connect (priv->delete_button, "clicked", G_CALLBACK (on_delete_clicked_cb), window);
}

/* GObject ------------------------------------------------------------------------- */

static void
tav_calendar_note_window_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    TavCalendarNoteWindow *window = TAV_CALENDAR_NOTE_WINDOW (object);
    TavCalendarNoteWindowPrivate *priv = window->priv;
    switch (prop_id) {
    case PROP_NOTE: {
        auto *note = static_cast<TavCalendarNote *> (g_value_get_object (value));
        priv->note = GRefPtr<TavCalendarNote> (note);
        if (note)
            reset_window_from_note (window);
        break;
    }
    case PROP_DESCRIPTION: {
        const char *text = g_value_get_string (value);
        priv->description = text ? text : "";
        tav_kivo_text_view_set_text (KIVO_TEXT_VIEW (priv->text_view), valid_or_empty (text));
        break;
    }
    case PROP_TIME_24HR_FORMAT:
        priv->time_24hr_format = g_value_get_boolean (value);
        if (priv->note)
            set_last_modified_label (window);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_note_window_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    TavCalendarNoteWindowPrivate *priv = TAV_CALENDAR_NOTE_WINDOW (object)->priv;
    switch (prop_id) {
    case PROP_NOTE:
        g_value_set_object (value, priv->note.get ());
        break;
    case PROP_DESCRIPTION:
        g_value_set_string (value, priv->description.c_str ());
        break;
    case PROP_TIME_24HR_FORMAT:
        g_value_set_boolean (value, priv->time_24hr_format);
        break;
    case PROP_ENTRY_ID:
        g_value_take_string (value, editor::num_id_of (priv->note.get ()));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
tav_calendar_note_window_dispose (GObject *object)
{
    TavCalendarNoteWindow *window = TAV_CALENDAR_NOTE_WINDOW (object);
    TavCalendarNoteWindowPrivate *priv = window->priv;
    if (!priv->disposed) {
        priv->disposed = TRUE;
        priv->note = nullptr;
        editor::close_modal_note (TAV_CALENDAR_DIALOG (window));
    }
    G_OBJECT_CLASS (tav_calendar_note_window_parent_class)->dispose (object);
}

static void
tav_calendar_note_window_finalize (GObject *object)
{
    TAV_CALENDAR_NOTE_WINDOW (object)->priv->~_TavCalendarNoteWindowPrivate ();
    G_OBJECT_CLASS (tav_calendar_note_window_parent_class)->finalize (object);
}

static void
tav_calendar_note_window_class_init (TavCalendarNoteWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = tav_calendar_note_window_set_property;
    object_class->get_property = tav_calendar_note_window_get_property;
    object_class->dispose = tav_calendar_note_window_dispose;
    object_class->finalize = tav_calendar_note_window_finalize;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    properties[PROP_NOTE] = g_param_spec_object ("note", "Note", "The note we are editing.", TAV_TYPE_CALENDAR_NOTE,
                                                 rw);
    properties[PROP_DESCRIPTION] = g_param_spec_string ("description", "Description",
                                                        "The initial value for description text.", nullptr, rw);
    properties[PROP_TIME_24HR_FORMAT] = g_param_spec_boolean ("time-24hr-format", "Time Format",
                                                              "Time format , 24hr or 12 hr", TRUE, rw);
    properties[PROP_ENTRY_ID] = g_param_spec_string ("entry-id", "Entry Id",
                                                     "The string identifier of the entry being edited.", nullptr,
                                                     static_cast<GParamFlags> (G_PARAM_READABLE | G_PARAM_STATIC_STRINGS));
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    for (auto [id, name] : {std::pair {NOTE_CREATED, "note-created"}, std::pair {NOTE_SAVED, "note-saved"},
                            std::pair {DELETING_NOTE, "deleting-note"}}) {
        signals[id] = g_signal_new (name, G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                    g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_NOTE);
    }
}

static void
tav_calendar_note_window_init (TavCalendarNoteWindow *window)
{
    void *memory = tav_calendar_note_window_get_instance_private (window);
    window->priv = new (memory) TavCalendarNoteWindowPrivate ();
    window->priv->processor = tav::adoptGRef (tav_calendar_processor_new ());
    tav_calendar_dialog_set_title (TAV_CALENDAR_DIALOG (window), TAV_CAL ("cal_bd_new_note"));
    build_window (window);
    gtk_widget_grab_focus (window->priv->text_view);
}

/* Public API ---------------------------------------------------------------------- */

GtkWidget *
tav_calendar_note_window_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_NOTE_WINDOW, NULL));
}

GtkWidget *
tav_calendar_note_window_new_from_note (TavCalendarNote *note)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_NOTE(note), NULL);
    return GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_NOTE_WINDOW, "note", note, NULL));
}

void
tav_calendar_note_window_add_source (TavCalendarNoteWindow *window, TavCalendarSource *source)
{
    g_return_if_fail (TAV_IS_CALENDAR_NOTE_WINDOW(window));
    g_return_if_fail (TAV_IS_CALENDAR_SOURCE(source));
    editor::offer_calendar (window->priv->calendar_button, window->priv->save_button, source);
}

void
tav_calendar_note_window_add_sources (TavCalendarNoteWindow *window, GList *sources)
{
    g_return_if_fail (TAV_IS_CALENDAR_NOTE_WINDOW(window));
    for (GList *l = sources; l; l = l->next)
        tav_calendar_note_window_add_source (window, static_cast<TavCalendarSource *> (l->data));
    editor::select_own_calendar (window->priv->calendar_button,
                                 window->priv->note ? TAV_CALENDAR_ENTRY (window->priv->note.get ()) : nullptr);
}
