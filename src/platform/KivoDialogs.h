/* Touch platform layer - file chooser and wizard dialogs (internal)
 *
 * Thin wrappers that give GTK's file chooser and a notebook-based wizard
 * the layer's buttons and size.
 */
#ifndef KIVO_DIALOGS_H
#define KIVO_DIALOGS_H

#include <gtk/gtk.h>

G_BEGIN_DECLS

/* A file chooser with Cancel and OK (GTK_RESPONSE_CANCEL / GTK_RESPONSE_OK). */
GtkWidget *kivo_file_chooser_dialog_new (GtkWindow *parent, GtkFileChooserAction action);

/* Responses of a wizard's buttons. Previous and Next turn the pages
 * themselves; the response still reaches the caller's handlers. */
enum {
    KIVO_WIZARD_DIALOG_CANCEL = GTK_RESPONSE_CANCEL,
    KIVO_WIZARD_DIALOG_PREVIOUS = 0,
    KIVO_WIZARD_DIALOG_NEXT = 1,
    KIVO_WIZARD_DIALOG_FINISH = 2,
};

#define KIVO_TYPE_WIZARD_DIALOG (kivo_wizard_dialog_get_type ())
#define KIVO_WIZARD_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_WIZARD_DIALOG, KivoWizardDialog))
#define KIVO_IS_WIZARD_DIALOG(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_WIZARD_DIALOG))

typedef struct _KivoWizardDialog KivoWizardDialog;
typedef struct _KivoWizardDialogClass KivoWizardDialogClass;

struct _KivoWizardDialog {
    GtkDialog parent;
    GtkNotebook *notebook;
    GtkWidget *previous;
    GtkWidget *next;
    GtkWidget *finish;
};

struct _KivoWizardDialogClass {
    GtkDialogClass parent_class;
};

GType kivo_wizard_dialog_get_type (void) G_GNUC_CONST;

/* A wizard over the pages of @notebook (its tabs are hidden). */
GtkWidget *kivo_wizard_dialog_new (GtkWindow *parent, const char *title, GtkNotebook *notebook);

G_END_DECLS

#endif /* KIVO_DIALOGS_H */
