/* libcalendarui - the task list */

#include "TavTaskView.h"

#include <new>
#include <unordered_map>

#include "TavCalendarSource.h"
#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavListViewCommon.h"
#include "TavListViewInternal.h"
#include "TavLog.h"
#include "TavMarshal.h"
#include "TavTaskViewPrivate.h"
#include "KivoTapAndHold.h"

using namespace tav::lists;

enum {
    INSERT_ACTIVATED,
    TASK_ACTIVATED,
    TASK_MODIFIED,
    DATABASE_ACCESS_READ,
    TASK_DELETED,
    LAST_SIGNAL
};

static guint signals[LAST_SIGNAL];

namespace {

/* What the view keeps per task row: where it is and how it sorts. The
 * store's iterators stay valid while the row lives, sorting included. */
struct Row {
    GtkTreeIter iter {};
    TaskSortKey key;
};

} // namespace

struct _TavTaskViewPrivate {
    bool dispose_has_run = false;
    tav::GRefPtr<GtkListStore> store;
    GtkTreeViewColumn *status_column = nullptr;
    tav::GRefPtr<GdkPixbuf> open_icon, done_icon, add_icon, alarm_icon;
    std::unordered_map<TavCalendarTask *, Row> rows;
    /* Rows by their position in the store's sequence (see row_record). */
    std::unordered_map<gpointer, const Row *> by_position;
    guint empty_check_id = 0;
    bool show_no_entries = false;
    bool resize_queued = false;
    GtkWidget *menu = nullptr;
    tav::GRefPtr<TavCalendarTask> task_for_csm;
    TapTracker tap;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavTaskView, tav_task_view, GTK_TYPE_TREE_VIEW)

/* Rows ------------------------------------------------------------------------ */

static TavCalendarTask *task_at (TavTaskView *taskview, GtkTreeIter *iter)
{
    TavCalendarTask *task = nullptr;
    gtk_tree_model_get (GTK_TREE_MODEL (taskview->priv->store.get ()), iter, TAV_TASK_VIEW_COLUMN_TASK, &task, -1);
    /* The store keeps its own reference for as long as the row lives. */
    if (task)
        g_object_unref (task);
    return task;
}

/* The record behind a store row, NULL for a row without a task. The
 * comparisons run often (a few dozen per appended task), so each row's
 * record is looked up once by its task and then found by the row's
 * GSequence position, which a GtkListStore keeps in the iterator's
 * user_data for the row's whole life. */
static const Row *row_record (GtkTreeModel *model, GtkTreeIter *iter, TavTaskViewPrivate *priv, Row *scratch)
{
    auto known = priv->by_position.find (iter->user_data);
    if (known != priv->by_position.end ())
        return known->second;
    TavCalendarTask *task = nullptr;
    gtk_tree_model_get (model, iter, TAV_TASK_VIEW_COLUMN_TASK, &task, -1);
    if (!task) {
        priv->by_position.emplace (iter->user_data, nullptr);
        return nullptr;
    }
    const Row *row = nullptr;
    auto it = priv->rows.find (task);
    if (it != priv->rows.end ()) {
        row = &it->second;
        priv->by_position.emplace (iter->user_data, row);
    } else {
        /* A row someone else put in the store: sorted, never cached. */
        scratch->key = task_sort_key (task_fields_read (task));
        row = scratch;
    }
    g_object_unref (task);
    return row;
}

static gint task_view_sort_func (GtkTreeModel *model, GtkTreeIter *a, GtkTreeIter *b, gpointer data)
{
    TavTaskViewPrivate *priv = static_cast<TavTaskViewPrivate *> (data);
    Row scratch[2];
    const Row *ra = row_record (model, a, priv, &scratch[0]);
    const Row *rb = row_record (model, b, priv, &scratch[1]);
    return task_sort_key_compare (ra ? &ra->key : nullptr, rb ? &rb->key : nullptr);
}

/* Writes the row of @task from its properties (the sort key first: the
 * store moves the row as soon as it changes). */
static void refresh_task_in_store (TavTaskView *taskview, TavCalendarTask *task, Row &row, bool insert)
{
    TavTaskViewPrivate *priv = taskview->priv;
    const TaskFields fields = task_fields_read (task);
    const RowTexts texts = task_row_texts (fields);
    row.key = task_sort_key (fields);
    GdkPixbuf *status = fields.done ? priv->done_icon.get () : priv->open_icon.get ();
    GdkPixbuf *alarm = fields.has_alarm ? priv->alarm_icon.get () : nullptr;
    if (insert) {
        gtk_list_store_insert_with_values (priv->store.get (), &row.iter, -1, TAV_TASK_VIEW_COLUMN_TASK, task,
                                           TAV_TASK_VIEW_COLUMN_STATUS, status, TAV_TASK_VIEW_COLUMN_DATE,
                                           texts.date_markup.c_str (), TAV_TASK_VIEW_COLUMN_TITLE,
                                           texts.title_markup.c_str (), TAV_TASK_VIEW_COLUMN_ALARM, alarm,
                                           TAV_TASK_VIEW_COLUMN_HAS_ALARM, fields.has_alarm, -1);
    } else {
        gtk_list_store_set (priv->store.get (), &row.iter, TAV_TASK_VIEW_COLUMN_STATUS, status,
                            TAV_TASK_VIEW_COLUMN_DATE, texts.date_markup.c_str (), TAV_TASK_VIEW_COLUMN_TITLE,
                            texts.title_markup.c_str (), TAV_TASK_VIEW_COLUMN_ALARM, alarm,
                            TAV_TASK_VIEW_COLUMN_HAS_ALARM, fields.has_alarm, -1);
    }
}

static void task_view_add_insert_row (TavTaskView *taskview)
{
    TavTaskViewPrivate *priv = taskview->priv;
    tav::GCharPtr label (g_markup_escape_text (TAV_CAL ("cal_bd_new_task"), -1));
    gtk_list_store_insert_with_values (priv->store.get (), nullptr, 0, TAV_TASK_VIEW_COLUMN_TASK, nullptr,
                                       TAV_TASK_VIEW_COLUMN_STATUS, priv->add_icon.get (), TAV_TASK_VIEW_COLUMN_DATE,
                                       "", TAV_TASK_VIEW_COLUMN_TITLE, label.get (), TAV_TASK_VIEW_COLUMN_ALARM,
                                       nullptr, TAV_TASK_VIEW_COLUMN_HAS_ALARM, FALSE, -1);
}

/* The empty-list check ---------------------------------------------------------- */

void tav_task_view_check_and_paint_no_entries_label (TavTaskView *taskview)
{
    TavTaskViewPrivate *priv = taskview->priv;
    priv->show_no_entries = priv->rows.empty ();
    if (!priv->show_no_entries)
        return;
    TAV_MESSAGE ("painting no entries label");
    paint_no_entries (GTK_TREE_VIEW (taskview), TAV_CAL ("cal_fi_no_tasks"));
}

static gboolean task_view_empty_check_cb (gpointer data)
{
    TavTaskView *taskview = TAV_TASK_VIEW (data);
    tav_task_view_check_and_paint_no_entries_label (taskview);
    gdk_display_flush (gdk_display_get_default ());
    taskview->priv->empty_check_id = 0;
    return FALSE;
}

/* Ticking off ------------------------------------------------------------------- */

/* A tap on the tick column at (@x, @y) of the bin window: the task there
 * becomes done (or open again), loses its alarm and is saved. */
static void on_task_status_column_clicked (TavTaskView *taskview, GdkEventButton *event)
{
    TavTaskViewPrivate *priv = taskview->priv;
    GtkTreePath *path = nullptr;
    GtkTreeViewColumn *column = nullptr;
    if (!row_at (GTK_TREE_VIEW (taskview), event, &path, &column)) {
        TAV_WARNING ("Path not found.");
        return;
    }
    GtkTreeIter iter;
    const bool found = gtk_tree_model_get_iter (GTK_TREE_MODEL (priv->store.get ()), &iter, path);
    gtk_tree_path_free (path);
    TavCalendarTask *task = found ? task_at (taskview, &iter) : nullptr;
    if (!task) {
        TAV_WARNING ("Done toggles for row without task.");
        return;
    }
    tav::GRefPtr<TavCalendarTask> hold (task);
    gboolean done = FALSE, has_alarm = FALSE;
    TavCalendarSource *source = nullptr;
    int alarm_code = 0;
    TavTime *alarm_time = nullptr;
    g_object_get (task, "done", &done, "source", &source, "has-alarm", &has_alarm, "alarm-code", &alarm_code,
                  "alarm-time", &alarm_time, nullptr);
    auto source_ref = tav::adoptGRef (source);
    g_object_set (task, "done", !done, nullptr);
    /* A finished task rings no more, and one opened again waits to be
     * given a new alarm. */
    if (has_alarm)
        g_object_set (task, "alarm-code", 0, "alarm-time", nullptr, nullptr);

    const int result = source ? tav_calendar_source_save_task (source, task) : CalendarDefaultError;
    if (result != CalendarNoError) {
        TAV_WARNING ("Unable to save task in backend");
        /* Nothing was stored: the task and its row stay as they were. */
        g_object_set (task, "done", done, nullptr);
        if (has_alarm)
            g_object_set (task, "alarm-code", alarm_code, "alarm-time", alarm_time, nullptr);
        tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
        tav_show_info_banner (GTK_WIDGET (taskview), text.get ());
    }
    tav_time_free (alarm_time);
    g_signal_emit (taskview, signals[TASK_MODIFIED], 0, task);
    auto it = priv->rows.find (task);
    if (it != priv->rows.end ())
        refresh_task_in_store (taskview, task, it->second, false);
}

/* Taps -------------------------------------------------------------------------------- */

static gboolean tav_task_view_button_press (GtkWidget *widget, GdkEventButton *event)
{
    TAV_TASK_VIEW (widget)->priv->tap.press (GTK_TREE_VIEW (widget), event);
    return GTK_WIDGET_CLASS (tav_task_view_parent_class)->button_press_event (widget, event);
}

static gboolean tav_task_view_button_release (GtkWidget *widget, GdkEventButton *event)
{
    TavTaskView *taskview = TAV_TASK_VIEW (widget);
    TavTaskViewPrivate *priv = taskview->priv;
    const gboolean handled = GTK_WIDGET_CLASS (tav_task_view_parent_class)->button_release_event (widget, event);
    GtkTreePath *path = nullptr;
    GtkTreeViewColumn *column = nullptr;
    if (!priv->tap.release (GTK_TREE_VIEW (widget), event, &path, &column))
        return handled;
    /* What the row is must be known before a tick moves it. */
    GtkTreeIter iter;
    const bool is_row = path && gtk_tree_model_get_iter (GTK_TREE_MODEL (priv->store.get ()), &iter, path);
    gtk_tree_path_free (path);
    TavCalendarTask *task = is_row ? task_at (taskview, &iter) : nullptr;
    if (column == priv->status_column)
        on_task_status_column_clicked (taskview, event);
    if (is_row && !task)
        g_signal_emit (taskview, signals[INSERT_ACTIVATED], 0, static_cast<guint> (event->time));
    else if (task && column != priv->status_column)
        g_signal_emit (taskview, signals[TASK_ACTIVATED], 0, task);
    return TRUE;
}

/* Deleting ------------------------------------------------------------------------------ */

static void task_view_csm_delete_clicked (GtkWidget *, TavTaskView *taskview)
{
    TavTaskViewPrivate *priv = taskview->priv;
    tav::GRefPtr<TavCalendarTask> task = std::move (priv->task_for_csm);
    if (!task || priv->rows.find (task.get ()) == priv->rows.end ())
        return;
    char *title = nullptr;
    TavCalendarSource *source = nullptr;
    g_object_get (task.get (), "title", &title, "source", &source, nullptr);
    auto source_ref = tav::adoptGRef (source);
    tav::GCharPtr question (g_strdup_printf (TAV_CAL ("cal_nc_delete_task"), title ? title : ""));
    g_free (title);
    if (!confirm (GTK_WIDGET (taskview), question.get ()))
        return;
    const int result = source ? tav_calendar_source_delete_task (source, task.get ()) : CalendarDefaultError;
    if (result != CalendarNoError) {
        TAV_WARNING ("Unable to delete note in database!");
        tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
        tav_show_info_banner (GTK_WIDGET (taskview), text.get ());
        return;
    }
    g_signal_emit (taskview, signals[TASK_DELETED], 0, task.get ());
    if (priv->rows.find (task.get ()) != priv->rows.end ())
        tav_task_view_delete_task (taskview, task.get ());
}

static gboolean on_tap_and_hold_query_cb (GtkWidget *widget, GdkEvent *event, gpointer)
{
    TavTaskViewPrivate *priv = TAV_TASK_VIEW (widget)->priv;
    priv->task_for_csm = tav::adoptGRef (reinterpret_cast<TavCalendarTask *> (
        entry_under_press (GTK_TREE_VIEW (widget), event)));
    /* TRUE refuses the hold: only a task has a menu. */
    return priv->task_for_csm ? FALSE : TRUE;
}

static void on_tap_and_hold_cb (GtkWidget *widget, gpointer)
{
    TavTaskView *taskview = TAV_TASK_VIEW (widget);
    if (!taskview->priv->task_for_csm)
        return;
    /* The hold is not a tap. */
    taskview->priv->tap.reset ();
    popup_menu (_tav_task_view_get_context_menu (taskview));
}

/* Widget -------------------------------------------------------------------------------- */

static void tav_task_view_size_request (GtkWidget *widget, GtkRequisition *requisition)
{
    TAV_TASK_VIEW (widget)->priv->resize_queued = false;
    GTK_WIDGET_CLASS (tav_task_view_parent_class)->size_request (widget, requisition);
}

static gboolean tav_task_view_expose (GtkWidget *widget, GdkEventExpose *event)
{
    TavTaskView *taskview = TAV_TASK_VIEW (widget);
    const gboolean handled = GTK_WIDGET_CLASS (tav_task_view_parent_class)->expose_event (widget, event);
    paint_overlay (GTK_TREE_VIEW (widget), event, _tav_task_view_shows_no_entries (taskview),
                   TAV_CAL ("cal_fi_no_tasks"));
    return handled;
}

static void tav_task_view_dispose (GObject *object)
{
    TavTaskView *taskview = TAV_TASK_VIEW (object);
    TavTaskViewPrivate *priv = taskview->priv;
    if (!priv->dispose_has_run) {
        priv->dispose_has_run = true;
        cancel_empty_check (&priv->empty_check_id);
        destroy_menu (&priv->menu);
        priv->task_for_csm = nullptr;
        priv->tap.reset ();
        priv->by_position.clear ();
        priv->rows.clear ();
        if (priv->store)
            gtk_list_store_clear (priv->store.get ());
    }
    G_OBJECT_CLASS (tav_task_view_parent_class)->dispose (object);
}

static void tav_task_view_finalize (GObject *object)
{
    TAV_TASK_VIEW (object)->priv->~_TavTaskViewPrivate ();
    G_OBJECT_CLASS (tav_task_view_parent_class)->finalize (object);
}

static void tav_task_view_class_init (TavTaskViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    object_class->dispose = tav_task_view_dispose;
    object_class->finalize = tav_task_view_finalize;
    widget_class->expose_event = tav_task_view_expose;
    widget_class->size_request = tav_task_view_size_request;
    widget_class->button_press_event = tav_task_view_button_press;
    widget_class->button_release_event = tav_task_view_button_release;

    const GType type = G_TYPE_FROM_CLASS (klass);
    signals[INSERT_ACTIVATED] =
        g_signal_new ("insert-activated", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED), 0,
                      nullptr, nullptr, g_cclosure_marshal_VOID__UINT, G_TYPE_NONE, 1, G_TYPE_UINT);
    signals[TASK_ACTIVATED] = g_signal_new ("task-activated", type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                            g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_TASK);
    signals[TASK_MODIFIED] = g_signal_new ("task-modified", type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                           g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_TASK);
    signals[DATABASE_ACCESS_READ] =
        g_signal_new ("database-access-read", type, G_SIGNAL_RUN_LAST, 0, tav_boolean_handled_accumulator, nullptr,
                      calendar_cclosure_marshal_BOOLEAN__VOID, G_TYPE_BOOLEAN, 0);
    signals[TASK_DELETED] = g_signal_new ("task-deleted", type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                          g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_TASK);
}

static void tav_task_view_init (TavTaskView *taskview)
{
    taskview->priv = new (tav_task_view_get_instance_private (taskview)) _TavTaskViewPrivate ();
    TavTaskViewPrivate *priv = taskview->priv;
    GtkTreeView *tree = GTK_TREE_VIEW (taskview);

    priv->open_icon = draw_status_icon (false);
    priv->done_icon = draw_status_icon (true);
    priv->add_icon = load_add_icon ();
    priv->alarm_icon = load_alarm_icon ();

    priv->store = tav::adoptGRef (gtk_list_store_new (TAV_TASK_VIEW_N_COLUMNS, TAV_TYPE_CALENDAR_TASK,
                                                      GDK_TYPE_PIXBUF, G_TYPE_STRING, G_TYPE_STRING,
                                                      GDK_TYPE_PIXBUF, G_TYPE_BOOLEAN));
    GtkTreeSortable *sortable = GTK_TREE_SORTABLE (priv->store.get ());
    gtk_tree_sortable_set_default_sort_func (sortable, task_view_sort_func, priv, nullptr);
    gtk_tree_sortable_set_sort_column_id (sortable, GTK_TREE_SORTABLE_DEFAULT_SORT_COLUMN_ID, GTK_SORT_ASCENDING);
    task_view_add_insert_row (taskview);
    gtk_tree_view_set_model (tree, GTK_TREE_MODEL (priv->store.get ()));

    setup_tree_view (tree);
    GtkCellRenderer *status = pixbuf_cell ();
    priv->status_column = append_column (tree, status, kIconColumnWidth);
    gtk_tree_view_column_add_attribute (priv->status_column, status, "pixbuf", TAV_TASK_VIEW_COLUMN_STATUS);
    GtkCellRenderer *title = text_cell ("Sans 16", 0.0f);
    gtk_tree_view_column_add_attribute (append_column (tree, title, -1), title, "markup", TAV_TASK_VIEW_COLUMN_TITLE);
    GtkCellRenderer *alarm = pixbuf_cell ();
    gtk_tree_view_column_add_attribute (append_column (tree, alarm, kAlarmColumnWidth), alarm, "pixbuf",
                                        TAV_TASK_VIEW_COLUMN_ALARM);
    GtkCellRenderer *date = text_cell ("Sans 13", 1.0f);
    g_object_set (date, "xpad", 16, nullptr);
    gtk_tree_view_column_add_attribute (append_column (tree, date, kDateColumnWidth), date, "markup",
                                        TAV_TASK_VIEW_COLUMN_DATE);

    /* The "tap-and-hold" handler pops the menu up itself. */
    gtk_widget_tap_and_hold_setup (GTK_WIDGET (taskview), nullptr, nullptr, KIVO_TAP_AND_HOLD_NO_INTERNALS);
    g_signal_connect (taskview, "tap-and-hold-query", G_CALLBACK (on_tap_and_hold_query_cb), nullptr);
    g_signal_connect (taskview, "tap-and-hold", G_CALLBACK (on_tap_and_hold_cb), nullptr);
}

/* Public API ------------------------------------------------------------------------------ */

GtkWidget *tav_task_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_TASK_VIEW, nullptr));
}

void tav_task_view_read_database (TavTaskView *taskview)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    emit_read_detached (GTK_TREE_VIEW (taskview), GTK_TREE_MODEL (taskview->priv->store.get ()),
                        signals[DATABASE_ACCESS_READ], &taskview->priv->dispose_has_run);
}

void tav_task_view_append_task (TavTaskView *taskview, TavCalendarTask *task)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    g_return_if_fail (TAV_IS_CALENDAR_TASK(task));
    if (!tav_calendar_entry_is_visible (TAV_CALENDAR_ENTRY (task)))
        return;
    TavTaskViewPrivate *priv = taskview->priv;
    auto [it, inserted] = priv->rows.try_emplace (task);
    refresh_task_in_store (taskview, task, it->second, inserted);
    /* One queued resize serves every row appended before the next size
     * request. */
    if (!priv->resize_queued) {
        priv->resize_queued = true;
        gtk_widget_queue_resize (GTK_WIDGET (taskview));
    }
}

void tav_task_view_append_tasks (TavTaskView *taskview, GList *list)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    for (GList *l = list; l; l = l->next)
        tav_task_view_append_task (taskview, static_cast<TavCalendarTask *> (l->data));
}

void tav_task_view_refresh_task (TavTaskView *taskview, TavCalendarTask *task)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    g_return_if_fail (TAV_IS_CALENDAR_TASK(task));
    TavTaskViewPrivate *priv = taskview->priv;
    auto it = priv->rows.find (task);
    if (it == priv->rows.end ()) {
        TAV_WARNING ("The note %p is not in the view", static_cast<void *> (task));
        return;
    }
    refresh_task_in_store (taskview, task, it->second, false);
}

void tav_task_view_delete_task (TavTaskView *taskview, TavCalendarTask *task)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    g_return_if_fail (TAV_IS_CALENDAR_TASK(task));
    TavTaskViewPrivate *priv = taskview->priv;
    auto it = priv->rows.find (task);
    if (it == priv->rows.end ()) {
        TAV_WARNING ("The task %p is not in the view", static_cast<void *> (task));
        return;
    }
    GtkTreeIter iter = it->second.iter;
    priv->by_position.erase (iter.user_data);
    priv->rows.erase (it);
    gtk_list_store_remove (priv->store.get (), &iter);
    schedule_empty_check (&priv->empty_check_id, task_view_empty_check_cb, taskview);
}

void tav_task_view_delete_all_tasks (TavTaskView *taskview)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    TavTaskViewPrivate *priv = taskview->priv;
    priv->by_position.clear ();
    priv->rows.clear ();
    gtk_list_store_clear (priv->store.get ());
    task_view_add_insert_row (taskview);
}

void tav_task_view_reading_finished (TavTaskView *taskview)
{
    g_return_if_fail (TAV_IS_TASK_VIEW(taskview));
    TAV_MESSAGE ("%s", "");
    schedule_empty_check (&taskview->priv->empty_check_id, task_view_empty_check_cb, taskview);
}

/* Test hooks ------------------------------------------------------------------------------ */

guint _tav_task_view_get_empty_check_id (TavTaskView *taskview)
{
    return taskview->priv->empty_check_id;
}

gboolean _tav_task_view_shows_no_entries (TavTaskView *taskview)
{
    return taskview->priv->show_no_entries && taskview->priv->rows.empty ();
}

GdkPixbuf *_tav_task_view_get_status_icon (TavTaskView *taskview, gboolean done)
{
    return done ? taskview->priv->done_icon.get () : taskview->priv->open_icon.get ();
}

GtkTreeViewColumn *_tav_task_view_get_status_column (TavTaskView *taskview)
{
    return taskview->priv->status_column;
}

GtkWidget *_tav_task_view_get_context_menu (TavTaskView *taskview)
{
    TavTaskViewPrivate *priv = taskview->priv;
    if (!priv->menu)
        priv->menu = build_delete_menu (G_CALLBACK (task_view_csm_delete_clicked), taskview);
    return priv->menu;
}
