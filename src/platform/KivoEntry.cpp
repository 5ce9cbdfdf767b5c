/* Touch platform layer - entries and text views with placeholders */

#include "KivoEntry.h"

#include <new>
#include <string>

enum {
    SIGNAL_INVALID_INPUT,
    N_SIGNALS
};

enum {
    PROP_0,
    PROP_PLACEHOLDER,
    PROP_MAX_LENGTH,
    N_PROPERTIES
};

static guint entry_signals[N_SIGNALS];
static guint text_view_signals[N_SIGNALS];
static GParamSpec *entry_properties[N_PROPERTIES];
static GParamSpec *text_view_properties[N_PROPERTIES];

GType
kivo_invalid_input_type_get_type (void)
{
    static gsize type = 0;
    if (g_once_init_enter (&type)) {
        static const GEnumValue values[] = {
            { KIVO_INVALID_INPUT_MAX_CHARS_REACHED, "KIVO_INVALID_INPUT_MAX_CHARS_REACHED", "max-chars-reached" },
            { KIVO_INVALID_INPUT_MODE_RESTRICTION, "KIVO_INVALID_INPUT_MODE_RESTRICTION", "mode-restriction" },
            { 0, nullptr, nullptr },
        };
        g_once_init_leave (&type, g_enum_register_static ("KivoInvalidInputType", values));
    }
    return type;
}

namespace {

/* Draws @text in the placeholder colour at (@x, @y) of @window. */
void
paint_placeholder (GtkWidget *widget, GdkWindow *window, const GdkRectangle *clip, const std::string &text,
                   int x, int y, int height)
{
    if (text.empty ())
        return;
    PangoLayout *layout = gtk_widget_create_pango_layout (widget, text.c_str ());
    int text_width = 0, text_height = 0;
    pango_layout_get_pixel_size (layout, &text_width, &text_height);
    cairo_t *cr = gdk_cairo_create (window);
    gdk_cairo_rectangle (cr, clip);
    cairo_clip (cr);
    kivo_style_set_source (cr, KIVO_COLOR_SECONDARY_TEXT, 0.8);
    cairo_move_to (cr, x, height > 0 ? y + (height - text_height) / 2 : y);
    pango_cairo_show_layout (cr, layout);
    cairo_destroy (cr);
    g_object_unref (layout);
}

} // namespace

/* KivoEntry */

struct _KivoEntryPrivate {
    std::string placeholder;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoEntry, kivo_entry, GTK_TYPE_ENTRY)

static void
on_entry_insert_text_cb (GtkEditable *editable, const gchar *text, gint length, gint *, gpointer)
{
    GtkEntry *entry = GTK_ENTRY (editable);
    const gint max = gtk_entry_get_max_length (entry);
    if (max <= 0 || !text)
        return;
    const glong adding = g_utf8_strlen (text, length);
    if (gtk_entry_get_text_length (entry) + adding > max)
        g_signal_emit (entry, entry_signals[SIGNAL_INVALID_INPUT], 0, KIVO_INVALID_INPUT_MAX_CHARS_REACHED);
}

static gboolean
kivo_entry_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    gboolean handled = GTK_WIDGET_CLASS (kivo_entry_parent_class)->expose_event (widget, event);
    KivoEntry *entry = KIVO_ENTRY (widget);
    GtkEntry *gtk_entry = GTK_ENTRY (widget);
    if (event->window == gtk_entry->text_area && gtk_entry_get_text_length (gtk_entry) == 0) {
        int layout_x = 0, layout_y = 0, area_x = 0, area_y = 0, width = 0, height = 0;
        gtk_entry_get_layout_offsets (gtk_entry, &layout_x, &layout_y);
        gdk_window_get_position (gtk_entry->text_area, &area_x, &area_y);
        gdk_drawable_get_size (gtk_entry->text_area, &width, &height);
        paint_placeholder (widget, gtk_entry->text_area, &event->area, entry->priv->placeholder,
                           layout_x - area_x, 0, height);
    }
    return handled;
}

static void
kivo_entry_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    switch (prop_id) {
    case PROP_PLACEHOLDER:
        kivo_entry_set_placeholder (KIVO_ENTRY (object), g_value_get_string (value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_entry_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    switch (prop_id) {
    case PROP_PLACEHOLDER:
        g_value_set_string (value, kivo_entry_get_placeholder (KIVO_ENTRY (object)));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_entry_finalize (GObject *object)
{
    KIVO_ENTRY (object)->priv->~KivoEntryPrivate ();
    G_OBJECT_CLASS (kivo_entry_parent_class)->finalize (object);
}

static void
kivo_entry_class_init (KivoEntryClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = kivo_entry_set_property;
    object_class->get_property = kivo_entry_get_property;
    object_class->finalize = kivo_entry_finalize;
    GTK_WIDGET_CLASS (klass)->expose_event = kivo_entry_expose_event;

    entry_properties[PROP_PLACEHOLDER] = g_param_spec_string ("placeholder", "Placeholder",
        "Text shown while the entry is empty", nullptr,
        static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS));
    g_object_class_install_property (object_class, PROP_PLACEHOLDER, entry_properties[PROP_PLACEHOLDER]);

    /* Connected to as "invalid_input"; GLib treats '_' and '-' alike. */
    entry_signals[SIGNAL_INVALID_INPUT] = g_signal_new ("invalid-input", G_TYPE_FROM_CLASS (klass),
        G_SIGNAL_RUN_LAST, G_STRUCT_OFFSET (KivoEntryClass, invalid_input), nullptr, nullptr,
        g_cclosure_marshal_VOID__ENUM, G_TYPE_NONE, 1, KIVO_TYPE_INVALID_INPUT_TYPE);
    kivo_style_init ();
}

static void
kivo_entry_init (KivoEntry *entry)
{
    void *memory = kivo_entry_get_instance_private (entry);
    entry->priv = new (memory) KivoEntryPrivate ();
    g_signal_connect (entry, "insert-text", G_CALLBACK (on_entry_insert_text_cb), nullptr);
}

GtkWidget *
kivo_entry_new (KivoSizeType size)
{
    GtkWidget *entry = GTK_WIDGET (g_object_new (KIVO_TYPE_ENTRY, nullptr));
    if (size == KIVO_SIZE_FINGER_HEIGHT)
        gtk_widget_set_size_request (entry, -1, KIVO_FINGER_HEIGHT);
    else if (size == KIVO_SIZE_THUMB_HEIGHT)
        gtk_widget_set_size_request (entry, -1, KIVO_THUMB_HEIGHT);
    return entry;
}

void
kivo_entry_set_text (KivoEntry *entry, const char *text)
{
    g_return_if_fail (KIVO_IS_ENTRY (entry));
    gtk_entry_set_text (GTK_ENTRY (entry), text ? text : "");
}

const char *
kivo_entry_get_text (KivoEntry *entry)
{
    g_return_val_if_fail (KIVO_IS_ENTRY (entry), NULL);
    return gtk_entry_get_text (GTK_ENTRY (entry));
}

void
kivo_entry_set_placeholder (KivoEntry *entry, const char *text)
{
    g_return_if_fail (KIVO_IS_ENTRY (entry));
    entry->priv->placeholder = text ? text : "";
    gtk_widget_queue_draw (GTK_WIDGET (entry));
    g_object_notify_by_pspec (G_OBJECT (entry), entry_properties[PROP_PLACEHOLDER]);
}

const char *
kivo_entry_get_placeholder (KivoEntry *entry)
{
    g_return_val_if_fail (KIVO_IS_ENTRY (entry), NULL);
    return entry->priv->placeholder.c_str ();
}

/* KivoTextView */

struct _KivoTextViewPrivate {
    std::string placeholder;
    gint max_length = 0;
    GtkTextBuffer *watched = nullptr; /* the buffer whose "changed" we follow */
    bool cutting = false;
};

G_DEFINE_TYPE_WITH_PRIVATE (KivoTextView, kivo_text_view, GTK_TYPE_TEXT_VIEW)

static void
enforce_max_length (KivoTextView *view)
{
    auto *priv = view->priv;
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (view));
    if (priv->max_length <= 0 || priv->cutting || gtk_text_buffer_get_char_count (buffer) <= priv->max_length)
        return;
    priv->cutting = true;
    GtkTextIter from, to;
    gtk_text_buffer_get_iter_at_offset (buffer, &from, priv->max_length);
    gtk_text_buffer_get_end_iter (buffer, &to);
    gtk_text_buffer_delete (buffer, &from, &to);
    priv->cutting = false;
    g_signal_emit (view, text_view_signals[SIGNAL_INVALID_INPUT], 0, KIVO_INVALID_INPUT_MAX_CHARS_REACHED);
}

static void
on_buffer_changed_cb (GtkTextBuffer *, gpointer data)
{
    KivoTextView *view = KIVO_TEXT_VIEW (data);
    enforce_max_length (view);
    gtk_widget_queue_draw (GTK_WIDGET (view));
}

static void
watch_buffer (KivoTextView *view)
{
    auto *priv = view->priv;
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (view));
    if (priv->watched == buffer)
        return;
    if (priv->watched) {
        g_signal_handlers_disconnect_by_func (priv->watched, reinterpret_cast<gpointer> (on_buffer_changed_cb), view);
        g_object_unref (priv->watched);
    }
    priv->watched = GTK_TEXT_BUFFER (g_object_ref (buffer));
    g_signal_connect (buffer, "changed", G_CALLBACK (on_buffer_changed_cb), view);
}

static void
on_buffer_notify_cb (GObject *, GParamSpec *, gpointer data)
{
    watch_buffer (KIVO_TEXT_VIEW (data));
    enforce_max_length (KIVO_TEXT_VIEW (data));
}

static gboolean
kivo_text_view_expose_event (GtkWidget *widget, GdkEventExpose *event)
{
    gboolean handled = GTK_WIDGET_CLASS (kivo_text_view_parent_class)->expose_event (widget, event);
    GtkTextView *text_view = GTK_TEXT_VIEW (widget);
    GdkWindow *text_window = gtk_text_view_get_window (text_view, GTK_TEXT_WINDOW_TEXT);
    if (event->window == text_window && gtk_text_buffer_get_char_count (gtk_text_view_get_buffer (text_view)) == 0)
        paint_placeholder (widget, text_window, &event->area, KIVO_TEXT_VIEW (widget)->priv->placeholder,
                           gtk_text_view_get_left_margin (text_view),
                           gtk_text_view_get_pixels_above_lines (text_view), 0);
    return handled;
}

static void
kivo_text_view_set_property (GObject *object, guint prop_id, const GValue *value, GParamSpec *pspec)
{
    switch (prop_id) {
    case PROP_PLACEHOLDER:
        kivo_text_view_set_placeholder (KIVO_TEXT_VIEW (object), g_value_get_string (value));
        break;
    case PROP_MAX_LENGTH:
        kivo_text_view_set_max_length (KIVO_TEXT_VIEW (object), g_value_get_int (value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_text_view_get_property (GObject *object, guint prop_id, GValue *value, GParamSpec *pspec)
{
    switch (prop_id) {
    case PROP_PLACEHOLDER:
        g_value_set_string (value, kivo_text_view_get_placeholder (KIVO_TEXT_VIEW (object)));
        break;
    case PROP_MAX_LENGTH:
        g_value_set_int (value, kivo_text_view_get_max_length (KIVO_TEXT_VIEW (object)));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, prop_id, pspec);
    }
}

static void
kivo_text_view_dispose (GObject *object)
{
    auto *priv = KIVO_TEXT_VIEW (object)->priv;
    if (priv->watched) {
        g_signal_handlers_disconnect_by_func (priv->watched, reinterpret_cast<gpointer> (on_buffer_changed_cb), object);
        g_object_unref (priv->watched);
        priv->watched = nullptr;
    }
    G_OBJECT_CLASS (kivo_text_view_parent_class)->dispose (object);
}

static void
kivo_text_view_finalize (GObject *object)
{
    KIVO_TEXT_VIEW (object)->priv->~KivoTextViewPrivate ();
    G_OBJECT_CLASS (kivo_text_view_parent_class)->finalize (object);
}

static void
kivo_text_view_class_init (KivoTextViewClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = kivo_text_view_set_property;
    object_class->get_property = kivo_text_view_get_property;
    object_class->dispose = kivo_text_view_dispose;
    object_class->finalize = kivo_text_view_finalize;
    GTK_WIDGET_CLASS (klass)->expose_event = kivo_text_view_expose_event;

    const auto rw = static_cast<GParamFlags> (G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    text_view_properties[PROP_PLACEHOLDER] = g_param_spec_string ("placeholder", "Placeholder",
        "Text shown while the view is empty", nullptr, rw);
    text_view_properties[PROP_MAX_LENGTH] = g_param_spec_int ("max-length", "Maximum length",
        "Most characters the view holds, 0 for no limit", 0, G_MAXINT, 0, rw);
    g_object_class_install_properties (object_class, N_PROPERTIES, text_view_properties);

    text_view_signals[SIGNAL_INVALID_INPUT] = g_signal_new ("invalid-input", G_TYPE_FROM_CLASS (klass),
        G_SIGNAL_RUN_LAST, G_STRUCT_OFFSET (KivoTextViewClass, invalid_input), nullptr, nullptr,
        g_cclosure_marshal_VOID__ENUM, G_TYPE_NONE, 1, KIVO_TYPE_INVALID_INPUT_TYPE);
    kivo_style_init ();
}

static void
kivo_text_view_init (KivoTextView *view)
{
    void *memory = kivo_text_view_get_instance_private (view);
    view->priv = new (memory) KivoTextViewPrivate ();
    gtk_text_view_set_wrap_mode (GTK_TEXT_VIEW (view), GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_left_margin (GTK_TEXT_VIEW (view), 12);
    gtk_text_view_set_right_margin (GTK_TEXT_VIEW (view), 12);
    gtk_text_view_set_pixels_above_lines (GTK_TEXT_VIEW (view), 6);
    watch_buffer (view);
    g_signal_connect (view, "notify::buffer", G_CALLBACK (on_buffer_notify_cb), view);
}

GtkWidget *
kivo_text_view_new (void)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_TEXT_VIEW, nullptr));
}

void
kivo_text_view_set_placeholder (KivoTextView *text_view, const char *text)
{
    g_return_if_fail (KIVO_IS_TEXT_VIEW (text_view));
    text_view->priv->placeholder = text ? text : "";
    gtk_widget_queue_draw (GTK_WIDGET (text_view));
    g_object_notify_by_pspec (G_OBJECT (text_view), text_view_properties[PROP_PLACEHOLDER]);
}

const char *
kivo_text_view_get_placeholder (KivoTextView *text_view)
{
    g_return_val_if_fail (KIVO_IS_TEXT_VIEW (text_view), NULL);
    return text_view->priv->placeholder.c_str ();
}

void
kivo_text_view_set_max_length (KivoTextView *text_view, gint max)
{
    g_return_if_fail (KIVO_IS_TEXT_VIEW (text_view));
    g_return_if_fail (max >= 0);
    text_view->priv->max_length = max;
    enforce_max_length (text_view);
    g_object_notify_by_pspec (G_OBJECT (text_view), text_view_properties[PROP_MAX_LENGTH]);
}

gint
kivo_text_view_get_max_length (KivoTextView *text_view)
{
    g_return_val_if_fail (KIVO_IS_TEXT_VIEW (text_view), 0);
    return text_view->priv->max_length;
}
