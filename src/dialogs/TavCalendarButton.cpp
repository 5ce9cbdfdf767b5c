/* libcalendarui - the calendar picker button of the editors
 *
 * A picker button over a one-column selector whose rows show a calendar's
 * colour square and title. The rows' model keeps the source itself, so the
 * choice is read back from the row, never from its text.
 */
#include "TavCalendarButton.h"

#include <new>

#include "KivoPickerButton.h"
#include "TavCalendarColors.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

using tav::GRefPtr;

enum {
    COLUMN_TITLE,
    COLUMN_COLOR,
    COLUMN_SOURCE,
    N_COLUMNS
};

enum {
    CALENDAR_CHANGED,
    LAST_SIGNAL
};

static guint signals[LAST_SIGNAL];

/* Side of the colour square, in pixels. */
static const int kSquare = 28;

struct TavCalendarButtonPrivate {
    GRefPtr<GtkListStore> store;
    /* The source last reported by "calendar-changed". */
    TavCalendarSource *reported = nullptr;
};

struct _TavCalendarButton {
    KivoPickerButton parent;
    TavCalendarButtonPrivate *priv;
};

struct TavCalendarButtonClass {
    KivoPickerButtonClass parent_class;
};

G_DEFINE_TYPE_WITH_CODE (TavCalendarButton, tav_calendar_button, KIVO_TYPE_PICKER_BUTTON,
                         G_ADD_PRIVATE (TavCalendarButton))

static GdkPixbuf *
color_square (int color)
{
    const tav::CalendarRgb &rgb = tav::calendar_rgb (color);
    GdkPixbuf *pixbuf = gdk_pixbuf_new (GDK_COLORSPACE_RGB, TRUE, 8, kSquare, kSquare);
    /* A one-pixel grey outline keeps the white calendar visible on white. */
    gdk_pixbuf_fill (pixbuf, 0x808080ff);
    GdkPixbuf *inner = gdk_pixbuf_new_subpixbuf (pixbuf, 1, 1, kSquare - 2, kSquare - 2);
    gdk_pixbuf_fill (inner, (guint32 (rgb.r) << 24) | (guint32 (rgb.g) << 16) | (guint32 (rgb.b) << 8) | 0xff);
    g_object_unref (inner);
    return pixbuf;
}

static TavCalendarSource *
source_at (TavCalendarButton *button, int index)
{
    GtkTreeIter iter;
    if (index < 0 || !gtk_tree_model_iter_nth_child (GTK_TREE_MODEL (button->priv->store.get ()), &iter, nullptr, index))
        return nullptr;
    TavCalendarSource *source = nullptr;
    gtk_tree_model_get (GTK_TREE_MODEL (button->priv->store.get ()), &iter, COLUMN_SOURCE, &source, -1);
    if (source)
        g_object_unref (source); /* the row keeps its own reference */
    return source;
}

/* Shows the chosen calendar's colour on the button and reports a change. */
static void
sync_choice (TavCalendarButton *button)
{
    TavCalendarSource *source = tav_calendar_button_get_selected_calendar (button);
    if (source) {
        int color = 0;
        g_object_get (source, "color", &color, NULL);
        GRefPtr<GdkPixbuf> square = tav::adoptGRef (color_square (color));
        kivo_button_set_image (KIVO_BUTTON (button), gtk_image_new_from_pixbuf (square.get ()));
    } else {
        kivo_button_set_image (KIVO_BUTTON (button), nullptr);
    }
    if (source != button->priv->reported) {
        button->priv->reported = source;
        g_signal_emit (button, signals[CALENDAR_CHANGED], 0);
    }
}

static void
on_value_changed_cb (KivoPickerButton *, gpointer data)
{
    sync_choice (TAV_CALENDAR_BUTTON (data));
}

static void
on_selector_changed_cb (KivoTouchSelector *, int, gpointer data)
{
    /* Two calendars may share a title, so a change of row is noticed here
     * too, once the picker is closed. */
    TavCalendarButton *button = TAV_CALENDAR_BUTTON (data);
    if (!kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button)))
        sync_choice (button);
}

static void
on_picker_closed_cb (GtkWidget *, gpointer data)
{
    sync_choice (TAV_CALENDAR_BUTTON (data));
}

static void
on_clicked_cb (GtkButton *button, gpointer)
{
    if (GtkWidget *dialog = kivo_picker_button_get_picker_dialog (KIVO_PICKER_BUTTON (button)))
        g_signal_connect_after (dialog, "destroy", G_CALLBACK (on_picker_closed_cb), button);
}

static void
tav_calendar_button_finalize (GObject *object)
{
    TavCalendarButton *button = TAV_CALENDAR_BUTTON (object);
    button->priv->~TavCalendarButtonPrivate ();
    G_OBJECT_CLASS (tav_calendar_button_parent_class)->finalize (object);
}

static void
tav_calendar_button_class_init (TavCalendarButtonClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = tav_calendar_button_finalize;
    signals[CALENDAR_CHANGED] = g_signal_new ("calendar-changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
                                              nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
}

static void
tav_calendar_button_init (TavCalendarButton *button)
{
    void *memory = tav_calendar_button_get_instance_private (button);
    button->priv = new (memory) TavCalendarButtonPrivate ();
    button->priv->store = tav::adoptGRef (gtk_list_store_new (N_COLUMNS, G_TYPE_STRING, GDK_TYPE_PIXBUF,
                                                              TAV_TYPE_CALENDAR_SOURCE));
    GtkWidget *selector = kivo_touch_selector_new ();
    KivoTouchSelector *touch = KIVO_TOUCH_SELECTOR (selector);
    kivo_touch_selector_append_text_column (touch, GTK_TREE_MODEL (button->priv->store.get ()), FALSE);
    /* The colour square goes in front of the title. */
    GtkTreeViewColumn *column = gtk_tree_view_get_column (GTK_TREE_VIEW (kivo_touch_selector_get_column_view (touch, 0)), 0);
    GtkCellRenderer *square = gtk_cell_renderer_pixbuf_new ();
    g_object_set (square, "xpad", KIVO_MARGIN_DOUBLE, NULL);
    gtk_tree_view_column_pack_start (column, square, FALSE);
    gtk_tree_view_column_add_attribute (column, square, "pixbuf", COLUMN_COLOR);
    gtk_cell_layout_reorder (GTK_CELL_LAYOUT (column), square, 0);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (button), touch);
    g_signal_connect (selector, "changed", G_CALLBACK (on_selector_changed_cb), button);
    g_signal_connect (button, "value-changed", G_CALLBACK (on_value_changed_cb), button);
    g_signal_connect_after (button, "clicked", G_CALLBACK (on_clicked_cb), nullptr);
}

GtkWidget *
tav_calendar_button_new (void)
{
    GtkWidget *button = GTK_WIDGET (g_object_new (TAV_TYPE_CALENDAR_BUTTON, "size", KIVO_SIZE_FINGER_HEIGHT,
                                                  "arrangement", KIVO_BUTTON_ARRANGEMENT_HORIZONTAL, NULL));
    kivo_button_set_title (KIVO_BUTTON (button), TAV_CAL ("cal_fi_calendar"));
    return button;
}

gboolean
tav_calendar_button_add_calendar (TavCalendarButton *button, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BUTTON (button), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), FALSE);
    if (!tav_calendar_source_get_writable (source)) {
        TAV_MESSAGE ("Calendar '%s' is read-only, not offered.", tav_calendar_source_get_title (source));
        return FALSE;
    }
    const int count = tav_calendar_button_get_calendar_count (button);
    for (int i = 0; i < count; ++i) {
        if (tav_calendar_source_is_equal (source_at (button, i), source))
            return FALSE;
    }
    int color = 0;
    g_object_get (source, "color", &color, NULL);
    const char *title = tav_calendar_source_get_title (source);
    GRefPtr<GdkPixbuf> square = tav::adoptGRef (color_square (color));
    gtk_list_store_insert_with_values (button->priv->store.get (), nullptr, -1, COLUMN_TITLE, title ? title : "",
                                       COLUMN_COLOR, square.get (), COLUMN_SOURCE, source, -1);
    return TRUE;
}

int
tav_calendar_button_get_calendar_count (TavCalendarButton *button)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BUTTON (button), 0);
    return gtk_tree_model_iter_n_children (GTK_TREE_MODEL (button->priv->store.get ()), nullptr);
}

TavCalendarSource *
tav_calendar_button_get_selected_calendar (TavCalendarButton *button)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BUTTON (button), NULL);
    return source_at (button, kivo_picker_button_get_active (KIVO_PICKER_BUTTON (button)));
}

gboolean
tav_calendar_button_set_selected_calendar (TavCalendarButton *button, TavCalendarSource *source)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BUTTON (button), FALSE);
    g_return_val_if_fail (TAV_IS_CALENDAR_SOURCE (source), FALSE);
    const int count = tav_calendar_button_get_calendar_count (button);
    for (int i = 0; i < count; ++i) {
        if (tav_calendar_source_is_equal (source_at (button, i), source)) {
            kivo_picker_button_set_active (KIVO_PICKER_BUTTON (button), i);
            sync_choice (button);
            return TRUE;
        }
    }
    return FALSE;
}

gboolean
tav_calendar_button_select_first_full (TavCalendarButton *button)
{
    g_return_val_if_fail (TAV_IS_CALENDAR_BUTTON (button), FALSE);
    const int count = tav_calendar_button_get_calendar_count (button);
    if (count == 0)
        return FALSE;
    int chosen = 0;
    for (int i = 0; i < count; ++i) {
        if (tav_calendar_source_get_visible (source_at (button, i))) {
            chosen = i;
            break;
        }
    }
    kivo_picker_button_set_active (KIVO_PICKER_BUTTON (button), chosen);
    sync_choice (button);
    return TRUE;
}
