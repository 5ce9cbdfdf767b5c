/* Touch platform layer - notes and context menus (internal)
 *
 * A confirmation note asks a question with OK and Cancel and answers
 * GTK_RESPONSE_OK or GTK_RESPONSE_CANCEL, so callers run it with
 * gtk_dialog_run. An information note only has OK.
 */
#ifndef KIVO_NOTE_H
#define KIVO_NOTE_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

#define KIVO_TYPE_NOTE (kivo_note_get_type ())
#define KIVO_NOTE(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_NOTE, KivoNote))
#define KIVO_IS_NOTE(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_NOTE))

typedef struct _KivoNote KivoNote;
typedef struct _KivoNoteClass KivoNoteClass;
typedef struct _KivoNotePrivate KivoNotePrivate;

struct _KivoNote {
    GtkDialog parent;
    KivoNotePrivate *priv;
};

struct _KivoNoteClass {
    GtkDialogClass parent_class;
};

GType kivo_note_get_type (void) G_GNUC_CONST;

/* A modal question over @parent (may be NULL). */
GtkWidget *kivo_note_new_confirmation (GtkWindow *parent, const char *description);
/* A modal notice with a single OK button. */
GtkWidget *kivo_note_new_information (GtkWindow *parent, const char *description);
const char *kivo_note_get_description (KivoNote *note);
/* The OK / Cancel buttons (Cancel is NULL in an information note). */
GtkWidget *kivo_note_get_ok_button (KivoNote *note);
GtkWidget *kivo_note_get_cancel_button (KivoNote *note);

/* A popup menu with finger-sized items, for context menus. */
GtkWidget *kivo_gtk_menu_new (void);

G_END_DECLS

#endif /* KIVO_NOTE_H */
