/* Touch platform layer - picker buttons (internal)
 *
 * A KivoPickerButton is a KivoButton whose value is the selection of a
 * KivoTouchSelector. Clicking it opens the selector in a picker dialog; in
 * a one-column selector a tap on a row chooses it and closes the dialog, in
 * several columns the Done button does. The button's value then shows the
 * selection and "value-changed" is emitted.
 */
#ifndef KIVO_PICKER_BUTTON_H
#define KIVO_PICKER_BUTTON_H

#include "KivoButton.h"
#include "KivoTouchSelector.h"

G_BEGIN_DECLS

#define KIVO_TYPE_PICKER_BUTTON (kivo_picker_button_get_type ())
#define KIVO_PICKER_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_PICKER_BUTTON, KivoPickerButton))
#define KIVO_IS_PICKER_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_PICKER_BUTTON))

typedef struct _KivoPickerButton KivoPickerButton;
typedef struct _KivoPickerButtonClass KivoPickerButtonClass;
typedef struct _KivoPickerButtonPrivate KivoPickerButtonPrivate;

struct _KivoPickerButton {
    KivoButton parent;
    KivoPickerButtonPrivate *priv;
};

struct _KivoPickerButtonClass {
    KivoButtonClass parent_class;
    /* Signal "value-changed": the user (or set_active) changed the value. */
    void (*value_changed) (KivoPickerButton *button);
};

GType kivo_picker_button_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_picker_button_new (KivoSizeType size, KivoButtonArrangement arrangement);
/* The button keeps a reference on @selector. */
void kivo_picker_button_set_selector (KivoPickerButton *button, KivoTouchSelector *selector);
KivoTouchSelector *kivo_picker_button_get_selector (KivoPickerButton *button);
/* Row of column 0; setting it updates the value. */
gint kivo_picker_button_get_active (KivoPickerButton *button);
void kivo_picker_button_set_active (KivoPickerButton *button, gint index);
/* Label of the dialog's Done button (default: the toolkit's "Done"). */
void kivo_picker_button_set_done_button_text (KivoPickerButton *button, const char *text);
const char *kivo_picker_button_get_done_button_text (KivoPickerButton *button);
/* Opens the picker dialog (what a click does). */
void kivo_picker_button_open_picker (KivoPickerButton *button);
/* The open picker dialog, NULL when closed. */
GtkWidget *kivo_picker_button_get_picker_dialog (KivoPickerButton *button);
/* Copies the selector's text into the value (used after set_active calls
 * on the selector itself). */
void kivo_picker_button_value_changed (KivoPickerButton *button);
/* Several selector changes made between these two calls update the value
 * (and emit "value-changed") once, at the end. */
void kivo_picker_button_begin_update (KivoPickerButton *button);
void kivo_picker_button_end_update (KivoPickerButton *button);

G_END_DECLS

#endif /* KIVO_PICKER_BUTTON_H */
