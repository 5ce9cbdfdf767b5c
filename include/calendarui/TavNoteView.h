/* libcalendarui - the notes list
 *
 * A GtkTreeView over a GtkListStore of notes: a "New note" row first, then
 * the notes in the order the owner appends them, each as its first line
 * and its date. The owner fills it when "database-access-read" asks; a tap
 * opens a note ("note-activated"); a held finger offers Delete.
 *
 * Store columns, in order: the note (TavCalendarNote), the date (Pango
 * markup) and the title's first line (escaped for markup).
 *
 * Signals:
 *   "insert-activated" (guint time, detailed): the "New note" row was
 *       tapped; the argument is the tap's event time.
 *   "note-activated" (TavCalendarNote *): a note was tapped.
 *   "database-access-read" () -> gboolean: fill the view now.
 */
#ifndef TAV_NOTE_VIEW_H
#define TAV_NOTE_VIEW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarNote.h"

G_BEGIN_DECLS

#define TAV_TYPE_NOTE_VIEW            (tav_note_view_get_type ())
#define TAV_NOTE_VIEW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_NOTE_VIEW, TavNoteView))
#define TAV_NOTE_VIEW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_NOTE_VIEW, TavNoteViewClass))
#define TAV_IS_NOTE_VIEW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_NOTE_VIEW))
#define TAV_IS_NOTE_VIEW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_NOTE_VIEW))
#define TAV_NOTE_VIEW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_NOTE_VIEW, TavNoteViewClass))

typedef struct _TavNoteView        TavNoteView;
typedef struct _TavNoteViewClass   TavNoteViewClass;
typedef struct _TavNoteViewPrivate TavNoteViewPrivate;

struct _TavNoteView {
    GtkTreeView parent;
    /*< private >*/
    TavNoteViewPrivate *priv;
};

struct _TavNoteViewClass {
    GtkTreeViewClass parent_class;
};

TAV_API GType      tav_note_view_get_type         (void) G_GNUC_CONST;

/**
 * tav_note_view_new:
 *
 * Returns: (transfer floating): an empty notes list (only its "New note" row).
 */
TAV_API GtkWidget *tav_note_view_new              (void);
/**
 * tav_note_view_read_database:
 * @noteview: a note view
 *
 * Emits "database-access-read" so that the owner appends the notes.
 */
TAV_API void       tav_note_view_read_database    (TavNoteView *noteview);
/**
 * tav_note_view_append_note:
 * @noteview: a note view
 * @note: the note to show; the view takes its own reference
 *
 * Adds a row for @note at the end; a note already in the view has its row
 * rewritten instead.
 */
TAV_API void       tav_note_view_append_note      (TavNoteView *noteview, TavCalendarNote *note);
/**
 * tav_note_view_append_notes:
 * @noteview: a note view
 * @list: (element-type TavCalendarNote): notes; the list is not taken over
 */
TAV_API void       tav_note_view_append_notes     (TavNoteView *noteview, GList *list);
TAV_API void       tav_note_view_refresh_note     (TavNoteView *noteview, TavCalendarNote *note);
TAV_API void       tav_note_view_delete_note      (TavNoteView *noteview, TavCalendarNote *note);
/**
 * tav_note_view_delete_all_notes:
 * @noteview: a note view
 *
 * Removes every note row; the "New note" row stays.
 */
TAV_API void       tav_note_view_delete_all_notes (TavNoteView *noteview);
TAV_API void       tav_note_view_reading_finished (TavNoteView *noteview);

G_END_DECLS

#endif /* TAV_NOTE_VIEW_H */
