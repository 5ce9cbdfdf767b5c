/* Touch platform layer - a button with a title and a value (internal)
 *
 * A finger-height button showing a title and, below it or to its right, a
 * value (in the accent colour), such as "Alarm" / "15 minutes before".
 */
#ifndef KIVO_BUTTON_H
#define KIVO_BUTTON_H

#include <gtk/gtk.h>

#include "KivoStyle.h"

G_BEGIN_DECLS

typedef enum {
    KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, /* title left, value right */
    KIVO_BUTTON_ARRANGEMENT_VERTICAL,   /* title above value */
} KivoButtonArrangement;

GType kivo_button_arrangement_get_type (void) G_GNUC_CONST;
GType kivo_size_type_get_type (void) G_GNUC_CONST;
#define KIVO_TYPE_BUTTON_ARRANGEMENT (kivo_button_arrangement_get_type ())
#define KIVO_TYPE_SIZE_TYPE (kivo_size_type_get_type ())

#define KIVO_TYPE_BUTTON (kivo_button_get_type ())
#define KIVO_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_BUTTON, KivoButton))
#define KIVO_BUTTON_CLASS(klass) (G_TYPE_CHECK_CLASS_CAST ((klass), KIVO_TYPE_BUTTON, KivoButtonClass))
#define KIVO_IS_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_BUTTON))

typedef struct _KivoButton KivoButton;
typedef struct _KivoButtonClass KivoButtonClass;
typedef struct _KivoButtonPrivate KivoButtonPrivate;

struct _KivoButton {
    GtkButton parent;
    KivoButtonPrivate *priv;
};

struct _KivoButtonClass {
    GtkButtonClass parent_class;
};

GType kivo_button_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_button_new (KivoSizeType size, KivoButtonArrangement arrangement);
GtkWidget *kivo_button_new_with_text (KivoSizeType size, KivoButtonArrangement arrangement,
                                      const char *title, const char *value);
void kivo_button_set_title (KivoButton *button, const char *title);
void kivo_button_set_value (KivoButton *button, const char *value);
void kivo_button_set_text (KivoButton *button, const char *title, const char *value);
/* The texts as shown; owned by the button. NULL when unset. */
const char *kivo_button_get_title (KivoButton *button);
const char *kivo_button_get_value (KivoButton *button);
/* Lines the titles (values) of several buttons up in one column. */
void kivo_button_add_title_size_group (KivoButton *button, GtkSizeGroup *group);
void kivo_button_add_value_size_group (KivoButton *button, GtkSizeGroup *group);
/* An icon shown left of the texts (NULL removes it). */
void kivo_button_set_image (KivoButton *button, GtkWidget *image);

G_END_DECLS

#endif /* KIVO_BUTTON_H */
