/* The task and note lists filled by the host from its real store: a tick
 * tapped on screen reaches the database. */
#include "../../host/HostTestUtil.h"
#include "../../platform/PointerDriver.h"
#include "HostLists.h"
#include "TavListViewInternal.h"

#include <gtk/gtk.h>

using namespace tav::host;
using namespace tav::host::test;
using tav::test::PointerDriver;

namespace {

struct ListsFixture : StoreFixture {
    int64_t passport = 0;
    std::unique_ptr<CalendarSet> set;

    ListsFixture ()
    {
        const int64_t hidden = add_calendar (calendar_named ("Hidden", false)).id;
        struct Item {
            EntryKind kind;
            const char *title;
            int day;
            bool done;
            int64_t calendar;
        } items[] = {
            { EntryKind::Task, "Renew passport", 12, false, calendar }, { EntryKind::Task, "Pay rent", 1, true, calendar },
            { EntryKind::Task, "Secret", 2, false, hidden },           { EntryKind::Note, "Books\nStoner", 3, false, calendar },
        };
        for (const Item &i : items) {
            EntryRecord e;
            e.kind = i.kind;
            e.calendar_id = i.calendar;
            e.title = i.title;
            e.all_day = true;
            e.start = at (2024, 5, i.day);
            e.end = e.start + (i.kind == EntryKind::Task ? 1439 : 0);
            e.done = i.done;
            e.alarm_code = i.done ? TavCalendarAlarmNone : TavCalendarAlarm15Min;
            EXPECT_TRUE (store->add_entry (e).ok ());
            if (e.title == "Renew passport")
                passport = e.id;
        }
        set = std::make_unique<CalendarSet> (store);
    }

    /* The task as another connection to the file reads it. */
    EntryRecord stored_passport ()
    {
        Status st;
        auto other = Store::open (dir.file ("calendar.db"), &st);
        EntryRecord r;
        EXPECT_TRUE (other && other->find_entry (passport, &r)) << st.message;
        return r;
    }
};

int rows (GtkWidget *view)
{
    return gtk_tree_model_iter_n_children (gtk_tree_view_get_model (GTK_TREE_VIEW (view)), nullptr);
}

} // namespace

TEST (HostLists, TickedTaskIsStoredAndNotesAreRead)
{
    REQUIRE_XTEST ();
    ListsFixture f;
    GtkWidget *tasks = tav_task_view_new ();
    ASSERT_TRUE (connect_list_view (tasks, *f.set));
    GtkWidget *window = tav::test::make_test_window (600, 400, tasks);
    tav_task_view_read_database (TAV_TASK_VIEW (tasks));
    tav::test::flush_events ();
    EXPECT_EQ (rows (tasks), 3); /* New task, Renew passport, Pay rent; not Secret */

    GdkRectangle cell;
    GtkTreePath *path = gtk_tree_path_new_from_indices (1, -1);
    gtk_tree_view_get_cell_area (GTK_TREE_VIEW (tasks), path, _tav_task_view_get_status_column (TAV_TASK_VIEW (tasks)),
                                 &cell);
    gtk_tree_path_free (path);
    PointerDriver::tap (tasks, cell.x + cell.width / 2, cell.y + cell.height / 2);
    EntryRecord r = f.stored_passport ();
    EXPECT_TRUE (r.done);
    EXPECT_EQ (r.alarm_code, TavCalendarAlarmNone);

    /* A fresh read shows what the store holds: both done now. */
    tav_task_view_read_database (TAV_TASK_VIEW (tasks));
    GtkTreeIter iter;
    GtkTreeModel *model = gtk_tree_view_get_model (GTK_TREE_VIEW (tasks));
    int done_rows = 0;
    for (bool ok = gtk_tree_model_get_iter_first (model, &iter); ok; ok = gtk_tree_model_iter_next (model, &iter)) {
        GdkPixbuf *status = nullptr;
        gtk_tree_model_get (model, &iter, TAV_TASK_VIEW_COLUMN_STATUS, &status, -1);
        done_rows += status == _tav_task_view_get_status_icon (TAV_TASK_VIEW (tasks), TRUE);
        g_clear_object (&status);
    }
    EXPECT_EQ (done_rows, 2);
    gtk_widget_destroy (window);

    GtkWidget *notes = g_object_ref_sink (tav_note_view_new ());
    ASSERT_TRUE (connect_list_view (notes, *f.set));
    tav_note_view_read_database (TAV_NOTE_VIEW (notes));
    EXPECT_EQ (rows (notes), 2);
    GtkWidget *label = g_object_ref_sink (gtk_label_new ("x"));
    EXPECT_FALSE (connect_list_view (label, *f.set));
    gtk_widget_destroy (label);
    g_object_unref (label);
    gtk_widget_destroy (notes);
    g_object_unref (notes);
}
