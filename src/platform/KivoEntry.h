/* Touch platform layer - entries and text views with placeholders (internal)
 *
 * KivoEntry and KivoTextView show a placeholder text (in a quieter colour)
 * while they are empty. Both refuse input beyond their maximum length and
 * then emit "invalid_input" with KIVO_INVALID_INPUT_MAX_CHARS_REACHED.
 */
#ifndef KIVO_ENTRY_H
#define KIVO_ENTRY_H

#include <gtk/gtk.h>

#include "KivoStyle.h"

G_BEGIN_DECLS

/* Why input was refused; the first value is the one callers check. */
typedef enum {
    KIVO_INVALID_INPUT_MAX_CHARS_REACHED,
    KIVO_INVALID_INPUT_MODE_RESTRICTION,
} KivoInvalidInputType;

GType kivo_invalid_input_type_get_type (void) G_GNUC_CONST;
#define KIVO_TYPE_INVALID_INPUT_TYPE (kivo_invalid_input_type_get_type ())

#define KIVO_TYPE_ENTRY (kivo_entry_get_type ())
#define KIVO_ENTRY(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_ENTRY, KivoEntry))
#define KIVO_IS_ENTRY(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_ENTRY))

typedef struct _KivoEntry KivoEntry;
typedef struct _KivoEntryClass KivoEntryClass;
typedef struct _KivoEntryPrivate KivoEntryPrivate;

struct _KivoEntry {
    GtkEntry parent;
    KivoEntryPrivate *priv;
};

struct _KivoEntryClass {
    GtkEntryClass parent_class;
    void (*invalid_input) (KivoEntry *entry, KivoInvalidInputType type);
};

GType kivo_entry_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_entry_new (KivoSizeType size);
void kivo_entry_set_text (KivoEntry *entry, const char *text);
const char *kivo_entry_get_text (KivoEntry *entry);
void kivo_entry_set_placeholder (KivoEntry *entry, const char *text);
const char *kivo_entry_get_placeholder (KivoEntry *entry);

#define KIVO_TYPE_TEXT_VIEW (kivo_text_view_get_type ())
#define KIVO_TEXT_VIEW(obj) (G_TYPE_CHECK_INSTANCE_CAST ((obj), KIVO_TYPE_TEXT_VIEW, KivoTextView))
#define KIVO_IS_TEXT_VIEW(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), KIVO_TYPE_TEXT_VIEW))

typedef struct _KivoTextView KivoTextView;
typedef struct _KivoTextViewClass KivoTextViewClass;
typedef struct _KivoTextViewPrivate KivoTextViewPrivate;

struct _KivoTextView {
    GtkTextView parent;
    KivoTextViewPrivate *priv;
};

struct _KivoTextViewClass {
    GtkTextViewClass parent_class;
    void (*invalid_input) (KivoTextView *text_view, KivoInvalidInputType type);
};

GType kivo_text_view_get_type (void) G_GNUC_CONST;

GtkWidget *kivo_text_view_new (void);
void kivo_text_view_set_placeholder (KivoTextView *text_view, const char *text);
const char *kivo_text_view_get_placeholder (KivoTextView *text_view);
/* At most @max characters (0: no limit); longer text is cut back. */
void kivo_text_view_set_max_length (KivoTextView *text_view, gint max);
gint kivo_text_view_get_max_length (KivoTextView *text_view);

G_END_DECLS

#endif /* KIVO_ENTRY_H */
