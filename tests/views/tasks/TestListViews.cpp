/* The task and note lists as widgets under a real X server: the store and
 * its order, the argument checks, the empty-list check, and real taps on
 * the tick, the rows and the held-row menu against a memory source. */
#include "TestSupport.h"
#include "ListTestSupport.h"
#include "../../platform/PointerDriver.h"
#include "TavMemorySource.h"
#include "TavListViewInternal.h"
#include "TavListViewCommon.h"
#include "TavGPtr.h"
#include "KivoNote.h"
#include "KivoPannableArea.h"

#include <string>
#include <vector>

using namespace tav::test;

namespace {

/* The titles of the store's rows, the insert row as "+", done ones as "~". */
std::string rows_of (GtkTreeView *view)
{
    GtkTreeModel *model = gtk_tree_view_get_model (view);
    std::string out;
    GtkTreeIter iter;
    for (bool ok = gtk_tree_model_get_iter_first (model, &iter); ok; ok = gtk_tree_model_iter_next (model, &iter)) {
        GObject *entry = nullptr;
        gtk_tree_model_get (model, &iter, 0, &entry, -1);
        char *title = nullptr;
        gboolean done = FALSE;
        if (entry)
            g_object_get (entry, "title", &title, nullptr);
        if (TAV_IS_CALENDAR_TASK (entry))
            g_object_get (entry, "done", &done, nullptr);
        out += (out.empty () ? "" : " ") + std::string (entry ? (done ? "~" : "") + std::string (title ? title : "") : "+");
        g_free (title);
        if (entry)
            g_object_unref (entry);
    }
    return out;
}

/* A list in a shown window with a memory calendar behind its entries. */
template <typename View>
struct Shown {
    GtkWidget *window;
    View *view;
    MemorySourcePtr source { tav_memory_source_new ("Home", TavCalendarColorGreen, CalendarSourceTypeLocal) };

    /* @area, when given, holds the list and goes into the window in its place. */
    explicit Shown (GtkWidget *widget, GtkWidget *area = nullptr) : view (reinterpret_cast<View *> (widget))
    {
        if (area)
            gtk_container_add (GTK_CONTAINER (area), widget);
        window = make_test_window (600, 400, area ? area : widget);
        run_main_loop_until ([&] { return widget->allocation.height > 300; }, 2000);
    }
    ~Shown ()
    {
        gtk_widget_destroy (window);
        flush_events ();
    }
    GtkTreeView *tree () const { return GTK_TREE_VIEW (view); }
    GdkRectangle cell (int row, int column) const
    {
        GdkRectangle cell;
        GtkTreePath *path = gtk_tree_path_new_from_indices (row, -1);
        gtk_tree_view_get_cell_area (tree (), path, gtk_tree_view_get_column (tree (), column), &cell);
        gtk_tree_path_free (path);
        return cell;
    }
    /* A tap on the centre of row @row in column @column. */
    void tap (int row, int column)
    {
        const GdkRectangle c = cell (row, column);
        PointerDriver::tap (GTK_WIDGET (view), c.x + c.width / 2, c.y + c.height / 2);
    }
    /* Holds a finger on the text of row @row until @menu shows, then lifts it. */
    void hold (int row, GtkWidget *menu)
    {
        const GdkRectangle c = cell (row, 1);
        PointerDriver::move_to (GTK_WIDGET (view), c.x + 40, c.y + c.height / 2);
        PointerDriver::press ();
        ASSERT_TRUE (run_main_loop_until ([&] { return gtk_widget_get_mapped (menu); }, 3000));
        PointerDriver::release ();
    }
};

/* The string in @column of row @row of @model ("" where there is none). */
std::string text_at (GtkTreeModel *model, int row, int column)
{
    GtkTreeIter iter;
    char *text = nullptr;
    if (gtk_tree_model_iter_nth_child (model, &iter, nullptr, row))
        gtk_tree_model_get (model, &iter, column, &text, -1);
    const std::string out = text ? text : "";
    g_free (text);
    return out;
}

/* Answers the confirmation note that a deletion opens. */
void answer_next_note (gint response)
{
    g_timeout_add (50, [] (gpointer data) -> gboolean {
        GList *windows = gtk_window_list_toplevels ();
        GtkWidget *button = nullptr;
        for (GList *t = windows; t && !button; t = t->next)
            if (KIVO_IS_NOTE (t->data) && gtk_widget_get_mapped (GTK_WIDGET (t->data)))
                button = GPOINTER_TO_INT (data) == GTK_RESPONSE_OK ? kivo_note_get_ok_button (KIVO_NOTE (t->data))
                                                                   : kivo_note_get_cancel_button (KIVO_NOTE (t->data));
        g_list_free (windows);
        if (!button)
            return TRUE;
        PointerDriver::tap (button, button->allocation.width / 2, button->allocation.height / 2);
        return FALSE;
    }, GINT_TO_POINTER (response));
}

/* The context menu's one item. */
GtkWidget *only_item (GtkWidget *menu)
{
    GList *children = gtk_container_get_children (GTK_CONTAINER (menu));
    GtkWidget *item = GTK_WIDGET (children->data);
    g_list_free (children);
    return item;
}

/* How many pixels of the list below its first row pass @test (RGB). */
template <typename Test>
int pixels_below_first_row (GtkTreeView *tree, Test test)
{
    flush_events ();
    GdkWindow *bin = gtk_tree_view_get_bin_window (tree);
    int w = 0, h = 0, count = 0;
    gdk_drawable_get_size (bin, &w, &h);
    GdkPixbuf *shot = gdk_pixbuf_get_from_drawable (nullptr, bin, nullptr, 0, 0, 0, 0, w, h);
    const guchar *px = gdk_pixbuf_get_pixels (shot);
    for (int y = tav::lists::kRowHeight; y < h; ++y)
        for (int x = 0; x < w; ++x)
            count += test (px + y * gdk_pixbuf_get_rowstride (shot) + x * gdk_pixbuf_get_n_channels (shot));
    g_object_unref (shot);
    return count;
}

} // namespace

TEST (TaskView, ArgumentChecks)
{
    REQUIRE_DISPLAY ();
    LogCapture log;
    auto note = tav::adoptGRef (tav_calendar_note_new ());
    auto *not_task = reinterpret_cast<TavCalendarTask *> (note.get ());
    auto *not_view = reinterpret_cast<TavTaskView *> (note.get ());
    GtkWidget *view = g_object_ref_sink (tav_task_view_new ());
    auto *tv = TAV_TASK_VIEW (view);
    tav_task_view_read_database (not_view);
    tav_task_view_append_task (nullptr, not_task);
    tav_task_view_append_task (tv, not_task);
    tav_task_view_append_tasks (nullptr, nullptr);
    tav_task_view_refresh_task (tv, nullptr);
    tav_task_view_delete_task (tv, not_task);
    tav_task_view_delete_all_tasks (nullptr);
    tav_task_view_reading_finished (not_view);
    EXPECT_EQ (log.count_criticals ("'TAV_IS_TASK_VIEW(taskview)' failed"), 5) << log.dump ();
    EXPECT_EQ (log.count_criticals ("'TAV_IS_CALENDAR_TASK(task)' failed"), 3) << log.dump ();
    log.clear ();
    auto *nv = TAV_NOTE_VIEW (g_object_ref_sink (tav_note_view_new ()));
    auto *not_note = reinterpret_cast<TavCalendarNote *> (tav_task_view_new ());
    g_object_ref_sink (not_note);
    tav_note_view_read_database (nullptr);
    tav_note_view_append_note (nv, not_note);
    tav_note_view_append_notes (reinterpret_cast<TavNoteView *> (tv), nullptr);
    tav_note_view_refresh_note (nullptr, nullptr);
    tav_note_view_delete_note (nv, nullptr);
    tav_note_view_delete_all_notes (reinterpret_cast<TavNoteView *> (tv));
    tav_note_view_reading_finished (nullptr);
    EXPECT_EQ (log.count_criticals ("'TAV_IS_NOTE_VIEW(noteview)' failed"), 5) << log.dump ();
    EXPECT_EQ (log.count_criticals ("'TAV_IS_CALENDAR_NOTE(note)' failed"), 2) << log.dump ();
    EXPECT_EQ (rows_of (GTK_TREE_VIEW (view)), "+");
    gtk_widget_destroy (GTK_WIDGET (not_note));
    g_object_unref (not_note);
    gtk_widget_destroy (GTK_WIDGET (nv));
    g_object_unref (nv);
    gtk_widget_destroy (view);
    g_object_unref (view);
}

TEST (TaskView, MissingIconsAreReportedAndTheRowsStillShow)
{
    REQUIRE_DISPLAY ();
    LogCapture log;
    const std::string icons = g_getenv ("TAV_CALENDAR_ICON_DIR") ? g_getenv ("TAV_CALENDAR_ICON_DIR") : "";
    g_setenv ("TAV_CALENDAR_ICON_DIR", "/nonexistent/icons/", TRUE);
    GtkWidget *tasks = g_object_ref_sink (tav_task_view_new ());
    GtkWidget *notes = g_object_ref_sink (tav_note_view_new ());
    g_setenv ("TAV_CALENDAR_ICON_DIR", icons.c_str (), TRUE);
    EXPECT_EQ (log.count_lines (LoggedLine::LibWarning, "pixbuf is not being created"), 2) << log.dump ();
    int alarm_errors = 0;
    for (const LoggedLine &line : log.lines ())
        alarm_errors += line.kind == LoggedLine::LibWarning
                        && g_str_has_prefix (line.message.c_str (), "Error in creating alarm icon pixbuf: ")
                        && line.message.find ("calendar_alarm.png") != std::string::npos;
    EXPECT_EQ (alarm_errors, 1) << log.dump ();
    auto task = tav::adoptGRef (new_task ("Ring Bob", { 2009, 2, 9 }, false, 2));
    tav_task_view_append_task (TAV_TASK_VIEW (tasks), task.get ());
    EXPECT_EQ (rows_of (GTK_TREE_VIEW (tasks)), "+ Ring Bob");
    for (GtkWidget *w : { tasks, notes }) {
        gtk_widget_destroy (w);
        g_object_unref (w);
    }
}

TEST (TaskView, KeepsRowsSortedAndFindsThem)
{
    REQUIRE_DISPLAY ();
    LogCapture log;
    GtkWidget *widget = g_object_ref_sink (tav_task_view_new ());
    auto *view = TAV_TASK_VIEW (widget);
    GtkTreeModel *model = gtk_tree_view_get_model (GTK_TREE_VIEW (view));
    const GType types[] = { TAV_TYPE_CALENDAR_TASK, GDK_TYPE_PIXBUF, G_TYPE_STRING, G_TYPE_STRING, GDK_TYPE_PIXBUF,
                            G_TYPE_BOOLEAN };
    ASSERT_EQ (gtk_tree_model_get_n_columns (model), 6);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ (gtk_tree_model_get_column_type (model, i), types[i]) << i;

    MemorySourcePtr hidden (tav_memory_source_new ("Away", TavCalendarColorRed, CalendarSourceTypeLocal));
    g_object_set (hidden.get (), "visible", FALSE, nullptr);
    auto secret = tav::adoptGRef (new_task ("Secret", { 2009, 2, 1 }));
    tav_memory_source_add (hidden.get (), TAV_CALENDAR_ENTRY (secret.get ()));
    std::vector<tav::GRefPtr<TavCalendarTask>> tasks;
    for (auto t : { new_task ("Water plants", { 2009, 2, 12 }), new_task ("Old done", { 2001, 0, 1 }, true),
                    new_task ("Buy milk", { 2009, 2, 12 }, false, 3), new_task ("Taxes", { 2009, 3, 30 }),
                    new_task (nullptr, { 2009, 2, 12 }) })
        tasks.push_back (tav::adoptGRef (t));
    GList *list = nullptr;
    for (auto &t : tasks)
        list = g_list_append (list, t.get ());
    tav_task_view_append_tasks (view, list);
    tav_task_view_append_task (view, secret.get ());   /* a hidden calendar's task is left out */
    tav_task_view_append_task (view, tasks[0].get ()); /* twice: one row */
    g_list_free (list);
    /* rows_of shows a missing title as an empty word. */
    EXPECT_EQ (rows_of (GTK_TREE_VIEW (view)), "+  Buy milk Water plants Taxes ~Old done");

    /* The alarm columns of "Buy milk", the only task with an alarm. */
    GtkTreeIter iter;
    gtk_tree_model_iter_nth_child (model, &iter, nullptr, 2);
    GdkPixbuf *alarm = nullptr;
    gboolean has_alarm = FALSE;
    gtk_tree_model_get (model, &iter, TAV_TASK_VIEW_COLUMN_ALARM, &alarm, TAV_TASK_VIEW_COLUMN_HAS_ALARM, &has_alarm, -1);
    EXPECT_TRUE (alarm && has_alarm);
    g_clear_object (&alarm);

    g_object_set (tasks[3].get (), "done", TRUE, nullptr);
    g_object_set (tasks[1].get (), "done", FALSE, nullptr);
    tav_task_view_refresh_task (view, tasks[3].get ());
    tav_task_view_refresh_task (view, tasks[1].get ());
    EXPECT_EQ (rows_of (GTK_TREE_VIEW (view)), "+ Old done  Buy milk Water plants ~Taxes");

    tav_task_view_delete_task (view, tasks[2].get ());
    EXPECT_NE (_tav_task_view_get_empty_check_id (view), 0u);
    tav_task_view_delete_task (view, tasks[2].get ());
    tav_task_view_refresh_task (view, tasks[2].get ());
    tav::GCharPtr pointer (g_strdup_printf ("%p", static_cast<void *> (tasks[2].get ())));
    const std::string missing = pointer.get ();
    EXPECT_TRUE (log.has_warning ("The task " + missing + " is not in the view")) << log.dump ();
    EXPECT_TRUE (log.has_warning ("The note " + missing + " is not in the view")) << log.dump ();
    tav_task_view_delete_all_tasks (view);
    EXPECT_EQ (rows_of (GTK_TREE_VIEW (view)), "+");
    gtk_widget_destroy (widget);
    g_object_unref (widget);
}

TEST (TaskView, ReadAsksTheOwnerAndAnEmptyListSaysSoHalfASecondLater)
{
    REQUIRE_DISPLAY ();
    LogCapture log;
    Shown<TavTaskView> shown (tav_task_view_new ());
    int reads = 0;
    g_signal_connect (shown.view, "database-access-read", G_CALLBACK (+[] (TavTaskView *v, int *n) -> gboolean {
        ++*n;
        tav_task_view_reading_finished (v);
        return TRUE;
    }), &reads);
    tav_task_view_read_database (shown.view);
    EXPECT_EQ (reads, 1);
    EXPECT_TRUE (log.has_message ("")) << log.dump ();
    const gint64 start = g_get_monotonic_time ();
    ASSERT_TRUE (run_main_loop_until ([&] { return _tav_task_view_get_empty_check_id (shown.view) == 0; }, 2000));
    EXPECT_GE (g_get_monotonic_time () - start, 450000);
    EXPECT_TRUE (_tav_task_view_shows_no_entries (shown.view));
    EXPECT_TRUE (log.has_message ("painting no entries label"));
    /* Our theme has no such colour: the text goes grey, with the warning. */
    EXPECT_TRUE (log.has_warning ("logical color 'SecondaryTextColor' not found in theme. Use hard-coded LighGray"));

    /* The picture shows the light grey text below the "New task" row. */
    EXPECT_GT (pixels_below_first_row (shown.tree (), [] (const guchar *p) {
        return p[0] > 0xc0 && p[0] == p[1] && p[1] == p[2];
    }), 200);

    /* A list with a task has nothing to say. */
    auto task = tav::adoptGRef (new_task ("Call Bob", { 2009, 2, 9 }));
    tav_task_view_append_task (shown.view, task.get ());
    EXPECT_FALSE (_tav_task_view_shows_no_entries (shown.view));
    tav_task_view_reading_finished (shown.view);
    run_main_loop_until ([&] { return _tav_task_view_get_empty_check_id (shown.view) == 0; }, 2000);
    EXPECT_FALSE (_tav_task_view_shows_no_entries (shown.view));
}

TEST (NoteView, EmptyListUsesTheThemesSecondaryTextColour)
{
    REQUIRE_DISPLAY ();
    LogCapture log;
    gtk_rc_parse_string ("style \"tav-test-secondary\" { color[\"SecondaryTextColor\"] = \"#FF8000\" }\n"
                         "widget \"*.tav-test-list\" style \"tav-test-secondary\"\n");
    GtkWidget *view = tav_note_view_new ();
    gtk_widget_set_name (view, "tav-test-list");
    Shown<TavNoteView> shown (view);
    tav_note_view_check_and_paint_no_entries_label (shown.view);
    EXPECT_TRUE (_tav_note_view_shows_no_entries (shown.view));
    EXPECT_EQ (log.count_lines_from (LoggedLine::LibWarning, "paint_no_entries"), 0) << log.dump ();
    EXPECT_GT (pixels_below_first_row (shown.tree (), [] (const guchar *p) {
        return p[0] > 0xe0 && p[1] > 0x60 && p[1] < 0xa0 && p[2] < 0x30;
    }), 200);
}

TEST (TaskView, TappingTheTickSavesThroughTheSource)
{
    REQUIRE_XTEST ();
    LogCapture log;
    Shown<TavTaskView> shown (tav_task_view_new ());
    auto task = tav::adoptGRef (new_task ("Call Bob", { 2009, 2, 9 }, false, 4));
    auto other = tav::adoptGRef (new_task ("Zz later", { 2009, 2, 10 }));
    for (TavCalendarTask *t : { task.get (), other.get () }) {
        tav_memory_source_add (shown.source.get (), TAV_CALENDAR_ENTRY (t));
        tav_task_view_append_task (shown.view, t);
    }
    flush_events ();
    int modified = 0, activated = 0, inserts = 0;
    count_signal (shown.view, "task-modified", &modified);
    count_signal (shown.view, "task-activated", &activated);
    count_signal (shown.view, "insert-activated", &inserts);

    shown.tap (1, 0);
    EXPECT_EQ (rows_of (shown.tree ()), "+ Zz later ~Call Bob");
    EXPECT_EQ (tav_memory_source_calls (shown.source.get (), TAV_MEMORY_SLOT_SAVE_TASK), 1u);
    EXPECT_EQ (modified, 1);
    gboolean has_alarm = TRUE;
    g_object_get (task.get (), "has-alarm", &has_alarm, nullptr);
    EXPECT_FALSE (has_alarm);

    /* Elsewhere on a row: open it; the insert row: a new task. */
    shown.tap (1, 1);
    shown.tap (0, 1);
    shown.tap (0, 0);
    EXPECT_EQ (activated, 1);
    EXPECT_EQ (inserts, 2);
    EXPECT_TRUE (log.has_warning ("Done toggles for row without task."));
    PointerDriver::tap (GTK_WIDGET (shown.view), 20, 390);
    EXPECT_TRUE (log.has_warning ("Path not found."));
    EXPECT_EQ (modified, 1);

    /* A source that refuses leaves the task and its row as they were
     * (last: the banner that says so covers the top row). */
    tav_memory_source_fail (shown.source.get (), TAV_MEMORY_SLOT_SAVE_TASK, CalendarDiskFullError);
    shown.tap (2, 0);
    EXPECT_TRUE (log.has_warning ("Unable to save task in backend")) << log.dump ();
    EXPECT_EQ (rows_of (shown.tree ()), "+ Zz later ~Call Bob");
    tav_memory_source_heal (shown.source.get (), TAV_MEMORY_SLOT_SAVE_TASK);
    shown.tap (2, 0);
    EXPECT_EQ (rows_of (shown.tree ()), "+ Call Bob Zz later");
    EXPECT_EQ (modified, 3);
}

TEST (TaskView, PansInAPannableAreaAndTicksTheRowUnderTheFinger)
{
    REQUIRE_XTEST ();
    GtkWidget *area = kivo_pannable_area_new ();
    Shown<TavTaskView> shown (tav_task_view_new (), area);
    GtkWidget *view = GTK_WIDGET (shown.view);
    TavMemorySource *source = shown.source.get ();
    std::vector<tav::GRefPtr<TavCalendarTask>> tasks;
    for (int day = 1; day <= 20; ++day) {
        tasks.push_back (tav::adoptGRef (new_task ("Daily chore", { 2009, 2, day })));
        tav_memory_source_add (source, TAV_CALENDAR_ENTRY (tasks.back ().get ()));
        tav_task_view_append_task (shown.view, tasks.back ().get ());
    }
    GtkAdjustment *adj = kivo_pannable_area_get_vadjustment (KIVO_PANNABLE_AREA (area));
    run_main_loop_until ([&] { return gtk_adjustment_get_upper (adj) > 1000; }, 2000);
    PointerDriver::drag (area, 300, 350, 300, 50, 10, 20, true);
    run_main_loop_until ([&] { return !kivo_pannable_area_is_moving (KIVO_PANNABLE_AREA (area)); }, 5000);
    ASSERT_GT (gtk_adjustment_get_value (adj), 200.0);
    EXPECT_EQ (tav_memory_source_calls (source, TAV_MEMORY_SLOT_SAVE_TASK), 0u) << "a pan is no tap";

    /* The tick of the row now at the area's middle. */
    GtkTreePath *path = nullptr;
    int bx = 0, by = 0;
    gtk_tree_view_convert_widget_to_bin_window_coords (GTK_TREE_VIEW (view), 40, 200, &bx, &by);
    ASSERT_TRUE (gtk_tree_view_get_path_at_pos (GTK_TREE_VIEW (view), bx, by, &path, nullptr, nullptr, nullptr));
    const int row = gtk_tree_path_get_indices (path)[0];
    gtk_tree_path_free (path);
    PointerDriver::tap (area, 40, 200);
    gboolean done = FALSE;
    g_object_get (tasks[static_cast<size_t> (row - 1)].get (), "done", &done, nullptr);
    EXPECT_TRUE (done) << "row " << row;
    EXPECT_EQ (tav_memory_source_calls (source, TAV_MEMORY_SLOT_SAVE_TASK), 1u);
}

TEST (TaskView, HeldRowOffersDeleteWhichAsksFirst)
{
    REQUIRE_XTEST ();
    LogCapture log;
    Shown<TavTaskView> shown (tav_task_view_new ());
    auto task = tav::adoptGRef (new_task ("Call Bob", { 2009, 2, 9 }));
    tav_memory_source_add (shown.source.get (), TAV_CALENDAR_ENTRY (task.get ()));
    tav_task_view_append_task (shown.view, task.get ());
    flush_events ();
    int deleted = 0;
    count_signal (shown.view, "task-deleted", &deleted);
    GtkWidget *menu = _tav_task_view_get_context_menu (shown.view);
    GtkWidget *item = only_item (menu);
    EXPECT_STREQ (gtk_label_get_text (GTK_LABEL (gtk_bin_get_child (GTK_BIN (item)))), "Delete");

    struct Step {
        gint answer;
        bool fail;
        const char *rows;
        int deleted;
    } steps[] = {
        { GTK_RESPONSE_CANCEL, false, "+ Call Bob", 0 },
        { GTK_RESPONSE_OK, true, "+ Call Bob", 0 },
        { GTK_RESPONSE_OK, false, "+", 1 },
    };
    for (const Step &s : steps) {
        if (s.fail)
            tav_memory_source_fail (shown.source.get (), TAV_MEMORY_SLOT_DELETE_TASK, CalendarDefaultError);
        else
            tav_memory_source_heal (shown.source.get (), TAV_MEMORY_SLOT_DELETE_TASK);
        ASSERT_NO_FATAL_FAILURE (shown.hold (1, menu));
        answer_next_note (s.answer);
        gtk_menu_shell_activate_item (GTK_MENU_SHELL (menu), item, TRUE);
        EXPECT_EQ (rows_of (shown.tree ()), s.rows);
        EXPECT_EQ (deleted, s.deleted);
    }
    EXPECT_EQ (log.count_lines (LoggedLine::LibWarning, "Unable to delete note in database!"), 1) << log.dump ();
    EXPECT_EQ (tav_memory_source_size (shown.source.get ()), 0u);
}

TEST (NoteView, RowsTapsAndDeletion)
{
    REQUIRE_XTEST ();
    LogCapture log;
    Shown<TavNoteView> shown (tav_note_view_new ());
    GtkTreeModel *model = gtk_tree_view_get_model (shown.tree ());
    ASSERT_EQ (gtk_tree_model_get_n_columns (model), 3);
    EXPECT_EQ (gtk_tree_model_get_column_type (model, 0), TAV_TYPE_CALENDAR_NOTE);
    std::vector<tav::GRefPtr<TavCalendarNote>> notes;
    for (const char *text : { "Gift list\nAnna: scarf", "Caf\xe9 <ideas>" }) {
        auto note = tav::adoptGRef (tav_calendar_note_new ());
        g_object_set (note.get (), "title", text, "start-year", 2009, "start-month", 2, "start-day", 9, nullptr);
        tav_memory_source_add (shown.source.get (), TAV_CALENDAR_ENTRY (note.get ()));
        tav_note_view_append_note (shown.view, note.get ());
        notes.push_back (note);
    }
    tav_note_view_append_note (shown.view, notes[0].get ());
    ASSERT_EQ (gtk_tree_model_iter_n_children (model, nullptr), 3);
    EXPECT_EQ (text_at (model, 0, TAV_NOTE_VIEW_COLUMN_TITLE), "New note");
    EXPECT_EQ (text_at (model, 1, TAV_NOTE_VIEW_COLUMN_TITLE), "Gift list");
    EXPECT_EQ (text_at (model, 1, TAV_NOTE_VIEW_COLUMN_DATE), "<span color=\"grey\">09/03/2009</span>");
    /* The bad byte is shown replaced; the note is not lost. */
    const std::string second = text_at (model, 2, TAV_NOTE_VIEW_COLUMN_TITLE);
    EXPECT_TRUE (g_str_has_prefix (second.c_str (), "Caf") && g_str_has_suffix (second.c_str (), " &lt;ideas&gt;"))
        << second;

    int activated = 0, inserts = 0;
    count_signal (shown.view, "note-activated", &activated);
    count_signal (shown.view, "insert-activated", &inserts);
    shown.tap (2, 1);
    shown.tap (0, 1);
    EXPECT_EQ (activated, 1);
    EXPECT_EQ (inserts, 1);

    /* Deleting through the menu, then the empty list. */
    for (size_t i = 0; i < notes.size (); ++i) {
        GtkWidget *menu = _tav_note_view_get_context_menu (shown.view);
        ASSERT_NO_FATAL_FAILURE (shown.hold (1, menu));
        answer_next_note (GTK_RESPONSE_OK);
        gtk_menu_shell_activate_item (GTK_MENU_SHELL (menu), only_item (menu), TRUE);
    }
    EXPECT_EQ (gtk_tree_model_iter_n_children (model, nullptr), 1);
    EXPECT_EQ (tav_memory_source_calls (shown.source.get (), TAV_MEMORY_SLOT_DELETE_NOTE), 2u);
    ASSERT_TRUE (run_main_loop_until ([&] { return _tav_note_view_get_empty_check_id (shown.view) == 0; }, 2000));
    EXPECT_TRUE (_tav_note_view_shows_no_entries (shown.view));
    tav_note_view_refresh_note (shown.view, notes[0].get ());
    tav::GCharPtr gone (g_strdup_printf ("The note %p is not in the view", static_cast<void *> (notes[0].get ())));
    EXPECT_EQ (log.count_lines (LoggedLine::LibWarning, gone.get ()), 1) << log.dump ();
}
