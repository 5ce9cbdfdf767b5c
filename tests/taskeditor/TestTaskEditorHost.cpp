/* The task and note editors in tav-calendar over its real store: opened
 * from the lists with taps, filled with keys, and what they save is in the
 * lists, the agenda and the store at once. */
#include "HostWindow.h"
#include "HostCivilTime.h"
#include "HostStore.h"
#include "../dialogs/EditorDriver.h"
#include "../platform/PointerDriver.h"
#include "TestSupport.h"

#include "TavAgendaViewInternal.h"

#include <calendarui.h>

#include <algorithm>
#include <set>
#include <string>

using namespace tav::host;
using namespace tav::test;

namespace {

struct HostFixture {
    TempDir dir;
    std::shared_ptr<Store> store;
    CalendarRecord personal, work;
    App app;

    HostFixture ()
    {
        Status status;
        store.reset (Store::open (dir.file ("calendar.db"), &status).release ());
        personal.title = "Personal";
        work.title = "Work";
        work.color = TavCalendarColorOrange;
        if (store) {
            store->add_calendar (personal);
            store->add_calendar (work);
        }
        app.calendars = std::make_unique<CalendarSet> (store);
        tav_date_init_today (&app.focus);
        app.build ();
        gtk_window_move (GTK_WINDOW (app.window), 0, 0);
        gtk_widget_show (GTK_WIDGET (app.window));
        app.show ("agenda");
        flush_events ();
    }

    /* Titles in the task or note list, in its order ("+" for the New row). */
    std::vector<std::string> list_titles (GtkWidget *view)
    {
        std::vector<std::string> out;
        GtkTreeModel *model = gtk_tree_view_get_model (GTK_TREE_VIEW (view));
        GtkTreeIter iter;
        for (bool ok = gtk_tree_model_get_iter_first (model, &iter); ok; ok = gtk_tree_model_iter_next (model, &iter)) {
            TavCalendarEntry *entry = nullptr;
            gtk_tree_model_get (model, &iter, 0, &entry, -1);
            out.push_back (entry ? tav_calendar_entry_get_title (entry) : "+");
            if (entry)
                g_object_unref (entry);
        }
        return out;
    }

    /* Taps row @row of a list; the editor that opens, NULL when none. */
    GtkWidget *tap_row (GtkWidget *view, int row, GType editor_type)
    {
        GdkRectangle cell;
        GtkTreePath *path = gtk_tree_path_new_from_indices (row, -1);
        GtkTreeView *tree = GTK_TREE_VIEW (view);
        gtk_tree_view_get_cell_area (tree, path, gtk_tree_view_get_column (tree, 1), &cell);
        gtk_tree_path_free (path);
        PointerDriver::tap (view, cell.x + cell.width / 2, cell.y + cell.height / 2);
        GtkWidget *editor = nullptr;
        run_main_loop_until ([&] {
            GList *toplevels = gtk_window_list_toplevels ();
            for (GList *l = toplevels; l; l = l->next)
                if (G_TYPE_CHECK_INSTANCE_TYPE (l->data, editor_type) && gtk_widget_get_visible (GTK_WIDGET (l->data)))
                    editor = GTK_WIDGET (l->data);
            g_list_free (toplevels);
            return editor != nullptr;
        }, 3000);
        return editor;
    }

    std::vector<EntryRecord> stored (EntryKind kind) { return store->entries_of_kind (kind, false); }
};

std::set<std::string> agenda_titles (App &app)
{
    std::set<std::string> out;
    GPtrArray *rows = _tav_agenda_view_get_list (TAV_AGENDA_VIEW (app.window->agenda_view))->entries;
    for (guint i = 0; rows && i < rows->len; i++)
        if (TavCalendarEntry *entry = static_cast<AgendaEntry *> (g_ptr_array_index (rows, i))->entry)
            out.insert (tav_calendar_entry_get_title (entry));
    return out;
}

}  // namespace

TEST (HostTaskEditor, TaskCreatedTickedMovedAndDeletedShowsAtOnceAndPersists)
{
    REQUIRE_XTEST ();
    HostFixture f;
    ASSERT_TRUE (f.store);
    GtkWidget *tasks = f.app.window->task_view;
    tav_calendar_window_show_task_view (f.app.window);
    tav_calendar_window_read_database (f.app.window);
    PointerDriver::wait (200);
    ASSERT_EQ (f.list_titles (tasks), std::vector<std::string> {"+"});

    /* New: typed, due in two days, saved. */
    const TavDate due = day_from_today (2);
    {
        GtkWidget *w = f.tap_row (tasks, 0, TAV_TYPE_CALENDAR_TASK_WINDOW);
        ASSERT_TRUE (w) << "the New task row opened no editor";
        EditorDriver editor (w, {"task-created", "task-saved", "deleting-task"});
        editor.type ("title-entry", "Renew passport");
        editor.choose_date ("date-button", due);
        EXPECT_TRUE (editor.save_and_close ());
    }
    PointerDriver::wait (100);
    EXPECT_EQ (f.list_titles (tasks), (std::vector<std::string> {"+", "Renew passport"}));
    std::vector<EntryRecord> stored = f.stored (EntryKind::Task);
    ASSERT_EQ (stored.size (), 1u);
    EXPECT_EQ (stored[0].calendar_id, f.personal.id);
    EXPECT_EQ (stored[0].start, civil_minutes (due.year, due.month + 1, due.day));
    /* The agenda's day has it too once the agenda is shown again. */
    tav_calendar_window_activate_agenda_view (f.app.window);
    f.app.show ("agenda");
    flush_events ();
    EXPECT_TRUE (agenda_titles (f.app).count ("Renew passport")) << "the agenda lacks the new task";

    /* Ticked off and moved to Work in one save. */
    tav_calendar_window_show_task_view (f.app.window);
    PointerDriver::wait (200);
    {
        GtkWidget *w = f.tap_row (tasks, 1, TAV_TYPE_CALENDAR_TASK_WINDOW);
        ASSERT_TRUE (w);
        /* The new copy is made while the old one is still stored. */
        g_signal_connect (w, "task-created", G_CALLBACK (+[] (GtkWidget *, TavCalendarTask *, gpointer store) {
            EXPECT_EQ (static_cast<Store *> (store)->entries_of_kind (EntryKind::Task, false).size (), 2u);
        }), f.store.get ());
        EditorDriver editor (w, {"task-created", "task-saved", "deleting-task"});
        editor.tap ("done-button");
        ASSERT_TRUE (editor.choose ("calendar-button", "Work"));
        EXPECT_TRUE (editor.save_and_close ());
        EXPECT_EQ (editor.signals, (std::vector<std::string> {"task-created", "deleting-task", "deleting-task"}));
    }
    PointerDriver::wait (100);
    EXPECT_EQ (f.list_titles (tasks), (std::vector<std::string> {"+", "Renew passport"}));
    stored = f.stored (EntryKind::Task);
    ASSERT_EQ (stored.size (), 1u);
    EXPECT_EQ (stored[0].calendar_id, f.work.id);
    EXPECT_TRUE (stored[0].done);

    /* Delete asks; Cancel keeps it, OK removes it from list and store. */
    {
        GtkWidget *w = f.tap_row (tasks, 1, TAV_TYPE_CALENDAR_TASK_WINDOW);
        ASSERT_TRUE (w);
        EditorDriver editor (w, {"task-created", "task-saved", "deleting-task"});
        editor.answer_next_note (false);
        editor.tap ("delete-button");
        EXPECT_EQ (f.stored (EntryKind::Task).size (), 1u);
        editor.answer_next_note (true);
        editor.tap ("delete-button");
        EXPECT_TRUE (editor.run_until_closed ());
    }
    PointerDriver::wait (100);
    EXPECT_EQ (f.list_titles (tasks), std::vector<std::string> {"+"});
    EXPECT_TRUE (f.stored (EntryKind::Task).empty ());
}

TEST (HostTaskEditor, NotesAndAnEntryDeletedBehindTheEditorsBack)
{
    REQUIRE_XTEST ();
    HostFixture f;
    ASSERT_TRUE (f.store);
    GtkWidget *notes = f.app.window->note_view;
    tav_calendar_window_show_note_view (f.app.window);
    tav_calendar_window_read_database (f.app.window);
    PointerDriver::wait (200);
    {
        GtkWidget *w = f.tap_row (notes, 0, TAV_TYPE_CALENDAR_NOTE_WINDOW);
        ASSERT_TRUE (w) << "the New note row opened no editor";
        EditorDriver editor (w, {"note-created", "note-saved", "deleting-note"});
        editor.choose ("calendar-button", "Work");
        editor.type ("note-text-view", "Gate code 4711");
        EXPECT_TRUE (editor.save_and_close ());
    }
    PointerDriver::wait (100);
    EXPECT_EQ (f.list_titles (notes), (std::vector<std::string> {"+", "Gate code 4711"}));

    /* Edited: it stays in Work. */
    {
        GtkWidget *w = f.tap_row (notes, 1, TAV_TYPE_CALENDAR_NOTE_WINDOW);
        ASSERT_TRUE (w);
        EditorDriver editor (w, {"note-created", "note-saved", "deleting-note"});
        editor.type ("note-text-view", " (back door)");
        EXPECT_TRUE (editor.save_and_close ());
        EXPECT_EQ (editor.signals, std::vector<std::string> {"note-saved"});
    }
    std::vector<EntryRecord> stored = f.stored (EntryKind::Note);
    ASSERT_EQ (stored.size (), 1u);
    EXPECT_EQ (stored[0].title, "Gate code 4711 (back door)");
    EXPECT_EQ (stored[0].calendar_id, f.work.id);

    /* Another program deletes it while it is open: Save reports that and
     * does not bring it back. */
    {
        GtkWidget *w = f.tap_row (notes, 1, TAV_TYPE_CALENDAR_NOTE_WINDOW);
        ASSERT_TRUE (w);
        EditorDriver editor (w, {"note-created", "note-saved", "deleting-note"});
        ASSERT_TRUE (f.store->delete_entry (stored[0].id).ok ());
        editor.type ("note-text-view", "!");
        editor.save ();
        editor.run_until_closed ();
        EXPECT_EQ (editor.errors.size (), 1u);
        EXPECT_TRUE (editor.signals.empty ());
    }
    EXPECT_TRUE (f.stored (EntryKind::Note).empty ());
    PointerDriver::wait (100);
    EXPECT_EQ (f.list_titles (notes), std::vector<std::string> {"+"});
    /* The host said why in a note over the window. */
    GList *toplevels = gtk_window_list_toplevels ();
    int messages = 0;
    for (GList *l = toplevels; l; l = l->next)
        if (GTK_IS_MESSAGE_DIALOG (l->data) && gtk_widget_get_visible (GTK_WIDGET (l->data))) {
            ++messages;
            gtk_widget_destroy (GTK_WIDGET (l->data));
        }
    g_list_free (toplevels);
    EXPECT_EQ (messages, 1);
}
