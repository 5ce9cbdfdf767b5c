/* libcalendarui - the note editor
 *
 * The dialog in which the user writes a note or edits one: its text, its
 * calendar and, for a stored note, a line telling when it was last saved
 * (the time when that was today, else the date). Save creates the note in
 * the chosen calendar, saves the edited note in place (stamped with the
 * time now), or moves it to another calendar, and closes the window.
 * Delete asks first, then removes the note and closes the window. Escape
 * closes it without saving.
 *
 * Opening it:
 *
 *   new note       w = tav_calendar_note_window_new ();
 *   existing one   w = tav_calendar_note_window_new_from_note (note);
 *   then           tav_calendar_note_window_add_sources (w, calendars);
 *                  gtk_window_set_transient_for (GTK_WINDOW (w), parent);
 *                  gtk_widget_show (w);
 *
 * Signals (run last; void (*) (TavCalendarNoteWindow *window,
 * TavCalendarNote *note, gpointer user_data)):
 *   "note-created"   a new note was stored (also the new copy of a moved one);
 *   "note-saved"     an edited note was saved in place;
 *   "deleting-note"  the note is being removed from its calendar (Delete,
 *                    or the old copy of a moved note).
 * Failures are reported with the dialog's "error" signal; Save closes the
 * window whatever the answer, a failed Delete keeps it open. Save rests
 * until a writable calendar is offered. A calendar that
 * answers a new note with "already exists" counts as a failure. An empty
 * text is a note of its own: it is saved like any other.
 *
 * Properties: "note", "description" (the initial text), "time-24hr-format"
 * (the last-saved time in 24-hour form; TRUE by default), "entry-id" (read
 * only: the note's "num-id").
 */
#ifndef TAV_CALENDAR_NOTE_WINDOW_H
#define TAV_CALENDAR_NOTE_WINDOW_H

#include <gtk/gtk.h>

#include "TavExport.h"
#include "TavCalendarDialog.h"
#include "TavCalendarNote.h"
#include "TavCalendarSource.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_NOTE_WINDOW            (tav_calendar_note_window_get_type ())
#define TAV_CALENDAR_NOTE_WINDOW(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_NOTE_WINDOW, TavCalendarNoteWindow))
#define TAV_CALENDAR_NOTE_WINDOW_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_NOTE_WINDOW, TavCalendarNoteWindowClass))
#define TAV_IS_CALENDAR_NOTE_WINDOW(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_NOTE_WINDOW))
#define TAV_IS_CALENDAR_NOTE_WINDOW_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_NOTE_WINDOW))
#define TAV_CALENDAR_NOTE_WINDOW_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_NOTE_WINDOW, TavCalendarNoteWindowClass))

typedef struct _TavCalendarNoteWindow        TavCalendarNoteWindow;
typedef struct _TavCalendarNoteWindowClass   TavCalendarNoteWindowClass;
typedef struct _TavCalendarNoteWindowPrivate TavCalendarNoteWindowPrivate;

struct _TavCalendarNoteWindow {
    TavCalendarDialog parent;

    /*< private >*/
    TavCalendarNoteWindowPrivate *priv;
};

struct _TavCalendarNoteWindowClass {
    TavCalendarDialogClass parent_class;

    /*< private >*/
    gpointer padding[8];
};

TAV_API GType      tav_calendar_note_window_get_type (void) G_GNUC_CONST;

/* An editor for a new note. */
TAV_API GtkWidget *tav_calendar_note_window_new           (void);
/* An editor for @note (the window keeps a reference). */
TAV_API GtkWidget *tav_calendar_note_window_new_from_note (TavCalendarNote *note);

/* As for the task editor: writable calendars only; add_sources chooses the
 * note's own calendar, or for a new note the first visible one. */
TAV_API void tav_calendar_note_window_add_source  (TavCalendarNoteWindow *window, TavCalendarSource *source);
TAV_API void tav_calendar_note_window_add_sources (TavCalendarNoteWindow *window, GList *sources);

G_END_DECLS

#endif /* TAV_CALENDAR_NOTE_WINDOW_H */
