/* libcalendarui - what the task and note lists share (internal)
 *
 * Their icons, the look of their rows, the "no entries" text of an empty
 * list, the confirmation before a deletion and the tap-and-hold menu.
 */
#ifndef TAV_LIST_VIEW_COMMON_H
#define TAV_LIST_VIEW_COMMON_H

#include <gtk/gtk.h>

#include "TavGPtr.h"

namespace tav::lists {

/* Row height: a finger's target. */
constexpr int kRowHeight = 70;
constexpr int kIconColumnWidth = 80;
constexpr int kStatusIconSize = 40;
constexpr int kDateColumnWidth = 150;
constexpr int kAlarmColumnWidth = 36;
/* Delay of the empty-list check after a read or a deletion. */
constexpr guint kEmptyCheckDelayMs = 500;

/* "general_add.png" (48x48) and "calendar_alarm.png" (16x16) from the icon
 * theme; NULL, with the warnings the lists log, when they cannot be made. */
GRefPtr<GdkPixbuf> load_add_icon ();
GRefPtr<GdkPixbuf> load_alarm_icon ();
/* The tick box of an open or a done task, and the glyph of a note row. */
GRefPtr<GdkPixbuf> draw_status_icon (bool done);
GRefPtr<GdkPixbuf> draw_note_icon ();

/* Headers off, fixed-height rows, no selection, the lists' colours. */
void setup_tree_view (GtkTreeView *tree);
/* A fixed-width column (@width < 0: takes the free width) holding @cell. */
GtkTreeViewColumn *append_column (GtkTreeView *tree, GtkCellRenderer *cell, int width);
GtkCellRenderer *text_cell (const char *font, float xalign);
GtkCellRenderer *pixbuf_cell ();

/* Thin rules under the visible rows (within @event's bin-window region). */
void paint_row_rules (GtkTreeView *tree, GdkEventExpose *event);

/* Paints @text centred in the part of the tree's bin window below its
 * first row, in "Velda Sans 26" and the theme's "SecondaryTextColor". */
void paint_no_entries (GtkTreeView *tree, const char *text);

/* (Re)starts the one-shot empty-list check; *@id holds its source id. */
void schedule_empty_check (guint *id, GSourceFunc check, gpointer view);
void cancel_empty_check (guint *id);

/* Asks @question in a confirmation note over @view's window; TRUE for OK. */
bool confirm (GtkWidget *view, const char *question);

/* The one-item context menu ("cal_ti_context_delete"), owned by the caller. */
GtkWidget *build_delete_menu (GCallback on_delete, gpointer view);

/* The path and column under (@x, @y) of an event on the tree's bin window;
 * FALSE when no row is there (*@column is still set from @x). */
bool row_at (GtkTreeView *tree, GdkEventButton *event, GtkTreePath **path, GtkTreeViewColumn **column);

/* A tap on the list: where a press started, checked against its release. */
class TapTracker {
public:
    ~TapTracker () { reset (); }
    void reset ();
    /* A plain press of the first button starts a tap (the extra event of a
     * double click does not). */
    void press (GtkTreeView *tree, GdkEventButton *event);
    /* TRUE when @event ends a tap that began on the same row, or below the
     * rows where it ends: *@path (NULL below the rows, free it) and
     * *@column tell where. */
    bool release (GtkTreeView *tree, GdkEventButton *event, GtkTreePath **path, GtkTreeViewColumn **column);

private:
    bool m_pressed = false;
    GtkTreePath *m_path = nullptr;
};

/* The object in @model's first column on the row under a tap-and-hold
 * press, with a new reference; NULL elsewhere. */
GObject *entry_under_press (GtkTreeView *tree, GdkEvent *event);
void popup_menu (GtkWidget *menu);
/* Destroys and releases the context menu, if built. */
void destroy_menu (GtkWidget **menu);

/* Emits @signal_id ("database-access-read") with @model taken from the
 * tree for the emission, so that an owner appending while it answers
 * does not have the tree follow every row; the tree takes the list whole
 * afterwards (unless the view went away meanwhile). */
void emit_read_detached (GtkTreeView *tree, GtkTreeModel *model, guint signal_id, const bool *disposed);

/* What the lists paint over the tree: the rules, and @text while @empty. */
void paint_overlay (GtkTreeView *tree, GdkEventExpose *event, bool empty, const char *text);

} // namespace tav::lists

#endif /* TAV_LIST_VIEW_COMMON_H */
