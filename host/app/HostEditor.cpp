#include "HostEditor.h"
#include "HostScreenshot.h"

#include <calendarui.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tav::host {

namespace {

struct EditorRun {
    bool failed = false;
    bool done = false;
    GtkWidget *note = nullptr;
};

void print_entry (const char *what, TavCalendarEntry *entry)
{
    char *id = nullptr;
    TavCalendarSource *source = nullptr;
    g_object_get (entry, "num-id", &id, "source", &source, nullptr);
    printf ("%s: '%s' (id %s) in '%s'\n", what, tav_calendar_entry_get_title (entry), id ? id : "-",
            source ? tav_calendar_source_get_title (source) : "-");
    fflush (stdout);
    g_free (id);
    if (source) {
        g_object_unref (source);
    }
}

void on_created (GtkWidget *, TavCalendarEntry *entry, gpointer)
{
    print_entry ("created", entry);
}

void on_saved (GtkWidget *, TavCalendarEntry *entry, gpointer)
{
    print_entry ("saved", entry);
}

void on_deleting (GtkWidget *, TavCalendarEntry *entry, gpointer)
{
    print_entry ("removed from its old calendar", entry);
}

void on_error (GtkWidget *window, const char *text, gpointer data)
{
    fprintf (stderr, "tav-calendar: the event was not saved: %s\n", text);
    auto *run = static_cast<EditorRun *> (data);
    /* The editor closes after a save attempt; the note stays over the
     * calendar until the user has read it. */
    GtkWindow *parent = gtk_window_get_transient_for (GTK_WINDOW (window));
    GtkWidget *note = gtk_message_dialog_new (parent, GTK_DIALOG_MODAL,
                                              GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "%s", text);
    g_signal_connect (note, "response", G_CALLBACK (gtk_widget_destroy), nullptr);
    gtk_widget_show (note);
    if (run) {
        run->failed = true;
        run->note = note;
        g_object_add_weak_pointer (G_OBJECT (note), reinterpret_cast<gpointer *> (&run->note));
    }
}

}  // namespace

TavCalendarEntry *find_event (CalendarSet &calendars, const std::string &uid)
{
    EntryRecord record;
    bool found = false;
    for (const CalendarRecord &c : calendars.store ().calendars ()) {
        if (calendars.store ().find_entry_by_uid (c.id, uid, &record)) {
            found = true;
            break;
        }
    }
    if (!found) {
        char *end = nullptr;
        const long long id = strtoll (uid.c_str (), &end, 10);
        found = end && *end == '\0' && id > 0 && calendars.store ().find_entry (id, &record);
    }
    if (!found || record.kind != EntryKind::Event) {
        return nullptr;
    }
    TavHostCalendarSource *source = calendars.source (record.calendar_id);
    return source ? entry_from_record (record, source) : nullptr;
}

GList *all_sources (CalendarSet &calendars)
{
    GList *list = nullptr;
    for (const CalendarRecord &c : calendars.store ().calendars ()) {
        if (TavHostCalendarSource *s = calendars.source (c.id)) {
            list = g_list_append (list, s);
        }
    }
    return list;
}

GtkWidget *open_event_editor (CalendarSet &calendars, const TavDate *date, TavCalendarEntry *entry)
{
    GtkWidget *window = entry ? tav_calendar_event_window_new_from_entry (entry) : tav_calendar_event_window_new ();
    GList *sources = all_sources (calendars);
    tav_calendar_event_window_add_sources (TAV_CALENDAR_EVENT_WINDOW (window), sources);
    g_list_free (sources);
    if (!entry && date) {
        tav_calendar_event_window_set_selected_date (TAV_CALENDAR_EVENT_WINDOW (window), date);
    }
    gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
    g_signal_connect (window, "entry-created", G_CALLBACK (on_created), nullptr);
    g_signal_connect (window, "entry-saved", G_CALLBACK (on_saved), nullptr);
    g_signal_connect (window, "deleting-entry", G_CALLBACK (on_deleting), nullptr);
    return window;
}

GtkWidget *open_task_editor (CalendarSet &calendars, TavCalendarTask *task)
{
    GtkWidget *window = task ? tav_calendar_task_window_new_from_task (task) : tav_calendar_task_window_new ();
    GList *sources = all_sources (calendars);
    tav_calendar_task_window_add_sources (TAV_CALENDAR_TASK_WINDOW (window), sources);
    g_list_free (sources);
    gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
    g_signal_connect (window, "task-created", G_CALLBACK (on_created), nullptr);
    g_signal_connect (window, "task-saved", G_CALLBACK (on_saved), nullptr);
    g_signal_connect (window, "deleting-task", G_CALLBACK (on_deleting), nullptr);
    return window;
}

GtkWidget *open_note_editor (CalendarSet &calendars, TavCalendarNote *note)
{
    GtkWidget *window = note ? tav_calendar_note_window_new_from_note (note) : tav_calendar_note_window_new ();
    GList *sources = all_sources (calendars);
    tav_calendar_note_window_add_sources (TAV_CALENDAR_NOTE_WINDOW (window), sources);
    g_list_free (sources);
    gtk_window_set_default_size (GTK_WINDOW (window), 800, 480);
    g_signal_connect (window, "note-created", G_CALLBACK (on_created), nullptr);
    g_signal_connect (window, "note-saved", G_CALLBACK (on_saved), nullptr);
    g_signal_connect (window, "deleting-note", G_CALLBACK (on_deleting), nullptr);
    return window;
}

int run_event_editor (CalendarSet &calendars, const TavDate *date, TavCalendarEntry *entry)
{
    EditorRun run;
    GtkWidget *window = open_event_editor (calendars, date, entry);
    g_signal_connect (window, "error", G_CALLBACK (on_error), &run);
    g_signal_connect (window, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer data) {
        static_cast<EditorRun *> (data)->done = true;
    }), &run);
    gtk_widget_show (window);
    while (!run.done) {
        gtk_main_iteration ();
    }
    /* A failure note stays until it is answered. */
    while (run.note) {
        gtk_main_iteration ();
    }
    return run.failed ? 1 : 0;
}

namespace {

void flush ()
{
    settle_screen (5);
}

GtkWidget *find_named (GtkWidget *widget, const char *name)
{
    if (g_strcmp0 (gtk_widget_get_name (widget), name) == 0) {
        return widget;
    }
    GtkWidget *found = nullptr;
    if (GTK_IS_CONTAINER (widget)) {
        GList *children = gtk_container_get_children (GTK_CONTAINER (widget));
        for (GList *l = children; l && !found; l = l->next) {
            found = find_named (GTK_WIDGET (l->data), name);
        }
        g_list_free (children);
    }
    return found;
}

/* Pans the editor's form so that the widget named @name is at the top. */
void pan_to (GtkWidget *window, const char *name)
{
    GtkWidget *area = TAV_CALENDAR_DIALOG (window)->pannable;
    GtkWidget *target = find_named (window, name);
    GtkWidget *content = area ? gtk_bin_get_child (GTK_BIN (area)) : nullptr;
    int x = 0, y = 0;
    if (!target || !content || !gtk_widget_translate_coordinates (target, content, 0, 0, &x, &y)) {
        return;
    }
    GtkAdjustment *adjustment = nullptr;
    g_object_get (area, "vadjustment", &adjustment, nullptr);
    if (adjustment) {
        gtk_adjustment_set_value (adjustment, std::min<double> (y, gtk_adjustment_get_upper (adjustment) -
                                                                       gtk_adjustment_get_page_size (adjustment)));
        g_object_unref (adjustment);
    }
}

int shoot (GtkWidget *window, const std::string &path, const char *pan_target = nullptr)
{
    gtk_window_move (GTK_WINDOW (window), 0, 0);
    gtk_widget_show (window);
    flush ();
    if (pan_target) {
        pan_to (window, pan_target);
        flush ();
    }
    gtk_widget_queue_draw (window);
    flush ();
    int width = 0, height = 0;
    gdk_drawable_get_size (window->window, &width, &height);
    GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (nullptr, window->window, nullptr, 0, 0, 0, 0, width, height);
    const bool ok = save_shot (shot, path);
    gtk_widget_destroy (window);
    return ok ? 0 : 1;
}

}  // namespace

int render_editors (CalendarSet &calendars, const TavDate &date, const std::string &dir)
{
    GtkWidget *fresh = open_event_editor (calendars, &date, nullptr);
    if (shoot (fresh, dir + "/event-editor.png") != 0) {
        return 1;
    }
    /* A repeating event when there is one, else any event, else an
     * example that is shown but never stored. */
    std::vector<EntryRecord> events = calendars.store ().entries_of_kind (EntryKind::Event, false);
    const EntryRecord *chosen = nullptr;
    for (const EntryRecord &r : events) {
        if (r.repeat_code != TavCalendarRepeatsNoRepeat && (!chosen || r.repeat_code < chosen->repeat_code)) {
            chosen = &r;
        }
    }
    if (!chosen && !events.empty ()) {
        chosen = &events.front ();
    }
    TavCalendarEntry *entry = nullptr;
    if (chosen && calendars.source (chosen->calendar_id)) {
        entry = entry_from_record (*chosen, calendars.source (chosen->calendar_id));
    } else {
        entry = tav_calendar_entry_new ();
        const TavTime from = {9, 30}, to = {10, 15};
        g_object_set (entry, "title", "Team meeting", "location", "Room 4", "description", "Weekly review",
                      "start-date", &date, "start-time", &from, "end-date", &date, "end-time", &to, "repeat-code",
                      TavCalendarRepeatsEveryWeek, "source", calendars.first_writable (), nullptr);
    }
    GtkWidget *edit = open_event_editor (calendars, nullptr, entry);
    g_object_unref (entry);
    /* Shown from the start row down: the times and the repetition. */
    if (shoot (edit, dir + "/event-editor-edit.png", "start-date-button") != 0) {
        return 1;
    }
    /* A stored task (an open one with a reminder when there is one) and the
     * first stored note; new ones when the store has none. */
    std::vector<EntryRecord> tasks = calendars.store ().entries_of_kind (EntryKind::Task, false);
    const EntryRecord *task_record = nullptr;
    for (const EntryRecord &r : tasks) {
        const bool better = !task_record || (task_record->done && !r.done)
                            || (!r.done && r.alarm_code != TavCalendarAlarmNone
                                && task_record->alarm_code == TavCalendarAlarmNone);
        if (better) {
            task_record = &r;
        }
    }
    TavCalendarEntry *task = task_record && calendars.source (task_record->calendar_id)
                                 ? entry_from_record (*task_record, calendars.source (task_record->calendar_id))
                                 : nullptr;
    GtkWidget *task_editor = open_task_editor (calendars, task ? TAV_CALENDAR_TASK (task) : nullptr);
    if (task) {
        g_object_unref (task);
    }
    if (shoot (task_editor, dir + "/task-editor.png") != 0) {
        return 1;
    }
    std::vector<EntryRecord> notes = calendars.store ().entries_of_kind (EntryKind::Note, false);
    TavCalendarEntry *note = !notes.empty () && calendars.source (notes.front ().calendar_id)
                                 ? entry_from_record (notes.front (), calendars.source (notes.front ().calendar_id))
                                 : nullptr;
    GtkWidget *note_editor = open_note_editor (calendars, note ? TAV_CALENDAR_NOTE (note) : nullptr);
    if (note) {
        g_object_unref (note);
    }
    return shoot (note_editor, dir + "/note-editor.png");
}

}  // namespace tav::host
