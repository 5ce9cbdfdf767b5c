/* Touch platform layer - check buttons (internal)
 *
 * A finger-height row with a large check box and a label. It is a
 * GtkCheckButton (hence a GtkToggleButton), so code that handles toggle
 * buttons handles it too.
 */
#ifndef KIVO_CHECK_BUTTON_H
#define KIVO_CHECK_BUTTON_H

#include <gtk/gtk.h>

#include "KivoStyle.h"

G_BEGIN_DECLS

#define KIVO_TYPE_CHECK_BUTTON (kivo_check_button_get_type ())
#define KIVO_CHECK_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_CHECK_BUTTON, KivoCheckButton))
#define KIVO_IS_CHECK_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_CHECK_BUTTON))

typedef struct _KivoCheckButton KivoCheckButton;
typedef struct _KivoCheckButtonClass KivoCheckButtonClass;

struct _KivoCheckButton {
    GtkCheckButton parent;
};

struct _KivoCheckButtonClass {
    GtkCheckButtonClass parent_class;
};

GType kivo_check_button_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_check_button_new (KivoSizeType size);
GtkWidget *kivo_check_button_new_with_label (KivoSizeType size, const char *label);
void kivo_check_button_set_active (KivoCheckButton *button, gboolean active);
gboolean kivo_check_button_get_active (KivoCheckButton *button);

G_END_DECLS

#endif /* KIVO_CHECK_BUTTON_H */
