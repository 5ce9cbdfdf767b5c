/* libcalendarui - the notes list */

#include "TavNoteView.h"

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
    NOTE_ACTIVATED,
    DATABASE_ACCESS_READ,
    LAST_SIGNAL
};

static guint signals[LAST_SIGNAL];

struct _TavNoteViewPrivate {
    bool dispose_has_run = false;
    tav::GRefPtr<GtkListStore> store;
    tav::GRefPtr<GdkPixbuf> add_icon, note_icon;
    /* Where each note's row is; the store's iterators outlive reordering. */
    std::unordered_map<TavCalendarNote *, GtkTreeIter> rows;
    guint empty_check_id = 0;
    bool show_no_entries = false;
    GtkWidget *menu = nullptr;
    tav::GRefPtr<TavCalendarNote> note_for_csm;
    TapTracker tap;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavNoteView, tav_note_view, GTK_TYPE_TREE_VIEW)

/* Rows ----------------------------------------------------------------------------- */

static TavCalendarNote *note_at (TavNoteView *noteview, GtkTreeIter *iter)
{
    TavCalendarNote *note = nullptr;
    gtk_tree_model_get (GTK_TREE_MODEL (noteview->priv->store.get ()), iter, TAV_NOTE_VIEW_COLUMN_NOTE, &note, -1);
    /* The store keeps its own reference for as long as the row lives. */
    if (note)
        g_object_unref (note);
    return note;
}

static void refresh_note_in_store (TavNoteView *noteview, TavCalendarNote *note, GtkTreeIter *iter, bool insert)
{
    GtkListStore *store = noteview->priv->store.get ();
    const RowTexts texts = note_row_texts (note);
    if (insert)
        gtk_list_store_insert_with_values (store, iter, -1, TAV_NOTE_VIEW_COLUMN_NOTE, note, TAV_NOTE_VIEW_COLUMN_DATE,
                                           texts.date_markup.c_str (), TAV_NOTE_VIEW_COLUMN_TITLE,
                                           texts.title_markup.c_str (), -1);
    else
        gtk_list_store_set (store, iter, TAV_NOTE_VIEW_COLUMN_DATE, texts.date_markup.c_str (),
                            TAV_NOTE_VIEW_COLUMN_TITLE, texts.title_markup.c_str (), -1);
}

static void note_view_add_insert_row (TavNoteView *noteview)
{
    tav::GCharPtr label (g_markup_escape_text (TAV_CAL ("cal_bd_new_note"), -1));
    gtk_list_store_insert_with_values (noteview->priv->store.get (), nullptr, 0, TAV_NOTE_VIEW_COLUMN_NOTE, nullptr,
                                       TAV_NOTE_VIEW_COLUMN_DATE, "", TAV_NOTE_VIEW_COLUMN_TITLE, label.get (), -1);
}

/* The insert row shows the add icon, a note row the note glyph. */
static void note_icon_data_func (GtkTreeViewColumn *, GtkCellRenderer *cell, GtkTreeModel *model, GtkTreeIter *iter,
                                 gpointer data)
{
    TavNoteViewPrivate *priv = TAV_NOTE_VIEW (data)->priv;
    TavCalendarNote *note = nullptr;
    gtk_tree_model_get (model, iter, TAV_NOTE_VIEW_COLUMN_NOTE, &note, -1);
    g_object_set (cell, "pixbuf", note ? priv->note_icon.get () : priv->add_icon.get (), nullptr);
    if (note)
        g_object_unref (note);
}

/* The empty-list check -------------------------------------------------------------- */

void tav_note_view_check_and_paint_no_entries_label (TavNoteView *noteview)
{
    TavNoteViewPrivate *priv = noteview->priv;
    priv->show_no_entries = priv->rows.empty ();
    if (!priv->show_no_entries)
        return;
    TAV_MESSAGE ("painting no entries label");
    paint_no_entries (GTK_TREE_VIEW (noteview), TAV_CAL ("cal_fi_no_notes"));
}

static gboolean note_view_empty_check_cb (gpointer data)
{
    TavNoteView *noteview = TAV_NOTE_VIEW (data);
    tav_note_view_check_and_paint_no_entries_label (noteview);
    gdk_display_flush (gdk_display_get_default ());
    noteview->priv->empty_check_id = 0;
    return FALSE;
}

/* Taps -------------------------------------------------------------------------------- */

static gboolean tav_note_view_button_press (GtkWidget *widget, GdkEventButton *event)
{
    TAV_NOTE_VIEW (widget)->priv->tap.press (GTK_TREE_VIEW (widget), event);
    return GTK_WIDGET_CLASS (tav_note_view_parent_class)->button_press_event (widget, event);
}

static gboolean tav_note_view_button_release (GtkWidget *widget, GdkEventButton *event)
{
    TavNoteView *noteview = TAV_NOTE_VIEW (widget);
    TavNoteViewPrivate *priv = noteview->priv;
    const gboolean handled = GTK_WIDGET_CLASS (tav_note_view_parent_class)->button_release_event (widget, event);
    GtkTreePath *path = nullptr;
    GtkTreeViewColumn *column = nullptr;
    if (!priv->tap.release (GTK_TREE_VIEW (widget), event, &path, &column))
        return handled;
    GtkTreeIter iter;
    if (path && gtk_tree_model_get_iter (GTK_TREE_MODEL (priv->store.get ()), &iter, path)) {
        if (TavCalendarNote *note = note_at (noteview, &iter))
            g_signal_emit (noteview, signals[NOTE_ACTIVATED], 0, note);
        else
            g_signal_emit (noteview, signals[INSERT_ACTIVATED], 0, static_cast<guint> (event->time));
    }
    gtk_tree_path_free (path);
    return TRUE;
}

/* Deleting ------------------------------------------------------------------------------ */

static void note_view_csm_delete_clicked (GtkWidget *, TavNoteView *noteview)
{
    TavNoteViewPrivate *priv = noteview->priv;
    tav::GRefPtr<TavCalendarNote> note = std::move (priv->note_for_csm);
    if (!note || priv->rows.find (note.get ()) == priv->rows.end ())
        return;
    if (!confirm (GTK_WIDGET (noteview), TAV_CAL ("cal_nc_delete_note")))
        return;
    TavCalendarSource *source = nullptr;
    g_object_get (note.get (), "source", &source, nullptr);
    auto source_ref = tav::adoptGRef (source);
    const int result = source ? tav_calendar_source_delete_note (source, note.get ()) : CalendarDefaultError;
    if (result != CalendarNoError) {
        TAV_WARNING ("Unable to delete note in database!");
        tav::GCharPtr text (tav_calendar_get_error_string (static_cast<CalendarUiErrorCode> (result)));
        tav_show_info_banner (GTK_WIDGET (noteview), text.get ());
        return;
    }
    if (priv->rows.find (note.get ()) != priv->rows.end ())
        tav_note_view_delete_note (noteview, note.get ());
}

static gboolean on_tap_and_hold_query_cb (GtkWidget *widget, GdkEvent *event, gpointer)
{
    TavNoteViewPrivate *priv = TAV_NOTE_VIEW (widget)->priv;
    priv->note_for_csm = tav::adoptGRef (reinterpret_cast<TavCalendarNote *> (
        entry_under_press (GTK_TREE_VIEW (widget), event)));
    /* TRUE refuses the hold: only a note has a menu. */
    return priv->note_for_csm ? FALSE : TRUE;
}

static void on_tap_and_hold_cb (GtkWidget *widget, gpointer)
{
    TavNoteView *noteview = TAV_NOTE_VIEW (widget);
    if (!noteview->priv->note_for_csm)
        return;
    /* The hold is not a tap. */
    noteview->priv->tap.reset ();
    popup_menu (_tav_note_view_get_context_menu (noteview));
}

/* Widget -------------------------------------------------------------------------------- */

static gboolean tav_note_view_expose (GtkWidget *widget, GdkEventExpose *event)
{
    TavNoteView *noteview = TAV_NOTE_VIEW (widget);
    const gboolean handled = GTK_WIDGET_CLASS (tav_note_view_parent_class)->expose_event (widget, event);
    paint_overlay (GTK_TREE_VIEW (widget), event, _tav_note_view_shows_no_entries (noteview),
                   TAV_CAL ("cal_fi_no_notes"));
    return handled;
}

static void tav_note_view_dispose (GObject *object)
{
    TavNoteViewPrivate *priv = TAV_NOTE_VIEW (object)->priv;
    if (!priv->dispose_has_run) {
        priv->dispose_has_run = true;
        cancel_empty_check (&priv->empty_check_id);
        destroy_menu (&priv->menu);
        priv->note_for_csm = nullptr;
        priv->tap.reset ();
        priv->rows.clear ();
        if (priv->store)
            gtk_list_store_clear (priv->store.get ());
    }
    G_OBJECT_CLASS (tav_note_view_parent_class)->dispose (object);
}

static void tav_note_view_finalize (GObject *object)
{
    TAV_NOTE_VIEW (object)->priv->~_TavNoteViewPrivate ();
    G_OBJECT_CLASS (tav_note_view_parent_class)->finalize (object);
}

static void tav_note_view_class_init (TavNoteViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    GtkWidgetClass *widget_class = GTK_WIDGET_CLASS (klass);
    object_class->dispose = tav_note_view_dispose;
    object_class->finalize = tav_note_view_finalize;
    widget_class->expose_event = tav_note_view_expose;
    widget_class->button_press_event = tav_note_view_button_press;
    widget_class->button_release_event = tav_note_view_button_release;

    const GType type = G_TYPE_FROM_CLASS (klass);
    signals[INSERT_ACTIVATED] =
        g_signal_new ("insert-activated", type, static_cast<GSignalFlags> (G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED), 0,
                      nullptr, nullptr, g_cclosure_marshal_VOID__UINT, G_TYPE_NONE, 1, G_TYPE_UINT);
    signals[NOTE_ACTIVATED] = g_signal_new ("note-activated", type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                                            g_cclosure_marshal_VOID__OBJECT, G_TYPE_NONE, 1, TAV_TYPE_CALENDAR_NOTE);
    signals[DATABASE_ACCESS_READ] =
        g_signal_new ("database-access-read", type, G_SIGNAL_RUN_LAST, 0, tav_boolean_handled_accumulator, nullptr,
                      calendar_cclosure_marshal_BOOLEAN__VOID, G_TYPE_BOOLEAN, 0);
}

static void tav_note_view_init (TavNoteView *noteview)
{
    noteview->priv = new (tav_note_view_get_instance_private (noteview)) _TavNoteViewPrivate ();
    TavNoteViewPrivate *priv = noteview->priv;
    GtkTreeView *tree = GTK_TREE_VIEW (noteview);

    priv->add_icon = load_add_icon ();
    priv->note_icon = draw_note_icon ();
    priv->store = tav::adoptGRef (
        gtk_list_store_new (TAV_NOTE_VIEW_N_COLUMNS, TAV_TYPE_CALENDAR_NOTE, G_TYPE_STRING, G_TYPE_STRING));
    note_view_add_insert_row (noteview);
    gtk_tree_view_set_model (tree, GTK_TREE_MODEL (priv->store.get ()));

    setup_tree_view (tree);
    GtkCellRenderer *icon = pixbuf_cell ();
    GtkTreeViewColumn *icon_column = append_column (tree, icon, kIconColumnWidth);
    gtk_tree_view_column_set_cell_data_func (icon_column, icon, note_icon_data_func, noteview, nullptr);
    GtkCellRenderer *title = text_cell ("Sans 16", 0.0f);
    gtk_tree_view_column_add_attribute (append_column (tree, title, -1), title, "markup", TAV_NOTE_VIEW_COLUMN_TITLE);
    GtkCellRenderer *date = text_cell ("Sans 13", 1.0f);
    g_object_set (date, "xpad", 16, nullptr);
    gtk_tree_view_column_add_attribute (append_column (tree, date, kDateColumnWidth), date, "markup",
                                        TAV_NOTE_VIEW_COLUMN_DATE);

    gtk_widget_tap_and_hold_setup (GTK_WIDGET (noteview), nullptr, nullptr, KIVO_TAP_AND_HOLD_NO_INTERNALS);
    g_signal_connect (noteview, "tap-and-hold-query", G_CALLBACK (on_tap_and_hold_query_cb), nullptr);
    g_signal_connect (noteview, "tap-and-hold", G_CALLBACK (on_tap_and_hold_cb), nullptr);
}

/* Public API ------------------------------------------------------------------------------ */

GtkWidget *tav_note_view_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_NOTE_VIEW, nullptr));
}

void tav_note_view_read_database (TavNoteView *noteview)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    emit_read_detached (GTK_TREE_VIEW (noteview), GTK_TREE_MODEL (noteview->priv->store.get ()),
                        signals[DATABASE_ACCESS_READ], &noteview->priv->dispose_has_run);
}

void tav_note_view_append_note (TavNoteView *noteview, TavCalendarNote *note)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    g_return_if_fail (TAV_IS_CALENDAR_NOTE(note));
    TavNoteViewPrivate *priv = noteview->priv;
    auto [it, inserted] = priv->rows.try_emplace (note);
    refresh_note_in_store (noteview, note, &it->second, inserted);
    gtk_widget_queue_resize (GTK_WIDGET (noteview));
}

void tav_note_view_append_notes (TavNoteView *noteview, GList *list)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    for (GList *l = list; l; l = l->next)
        tav_note_view_append_note (noteview, static_cast<TavCalendarNote *> (l->data));
}

void tav_note_view_refresh_note (TavNoteView *noteview, TavCalendarNote *note)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    g_return_if_fail (TAV_IS_CALENDAR_NOTE(note));
    TavNoteViewPrivate *priv = noteview->priv;
    auto it = priv->rows.find (note);
    if (it == priv->rows.end ()) {
        TAV_WARNING ("The note %p is not in the view", static_cast<void *> (note));
        return;
    }
    refresh_note_in_store (noteview, note, &it->second, false);
}

void tav_note_view_delete_note (TavNoteView *noteview, TavCalendarNote *note)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    g_return_if_fail (TAV_IS_CALENDAR_NOTE(note));
    TavNoteViewPrivate *priv = noteview->priv;
    auto it = priv->rows.find (note);
    if (it == priv->rows.end ()) {
        TAV_WARNING ("The note %p is not in the view", static_cast<void *> (note));
        return;
    }
    GtkTreeIter iter = it->second;
    priv->rows.erase (it);
    gtk_list_store_remove (priv->store.get (), &iter);
    schedule_empty_check (&priv->empty_check_id, note_view_empty_check_cb, noteview);
}

void tav_note_view_delete_all_notes (TavNoteView *noteview)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    TavNoteViewPrivate *priv = noteview->priv;
    priv->rows.clear ();
    gtk_list_store_clear (priv->store.get ());
    note_view_add_insert_row (noteview);
}

void tav_note_view_reading_finished (TavNoteView *noteview)
{
    g_return_if_fail (TAV_IS_NOTE_VIEW(noteview));
    TAV_MESSAGE ("%s", "");
    schedule_empty_check (&noteview->priv->empty_check_id, note_view_empty_check_cb, noteview);
}

/* Test hooks ------------------------------------------------------------------------------ */

guint _tav_note_view_get_empty_check_id (TavNoteView *noteview)
{
    return noteview->priv->empty_check_id;
}

gboolean _tav_note_view_shows_no_entries (TavNoteView *noteview)
{
    return noteview->priv->show_no_entries && noteview->priv->rows.empty ();
}

GtkWidget *_tav_note_view_get_context_menu (TavNoteView *noteview)
{
    TavNoteViewPrivate *priv = noteview->priv;
    if (!priv->menu)
        priv->menu = build_delete_menu (G_CALLBACK (note_view_csm_delete_clicked), noteview);
    return priv->menu;
}
