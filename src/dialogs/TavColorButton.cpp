/* libcalendarui - the calendar colour picker button */

#include "TavColorButton.h"

#include "KivoButton.h"
#include "KivoIconSize.h"
#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavIntl.h"

#include <new>
#include <utility>

namespace {

/* The colours' names, in the enumeration's order. */
const char *const kColorNames[] = {
    "cal_va_color_darkblue", "cal_va_color_darkgreen", "cal_va_color_darkred", "cal_va_color_orange",
    "cal_va_color_violet",   "cal_va_color_yellow",    "cal_va_color_white",   "cal_va_color_blue",
    "cal_va_color_red",      "cal_va_color_green",
};
constexpr int kColorCount = G_N_ELEMENTS (kColorNames);
/* The grid: two rows of five markers. */
constexpr int kGridColumns = 5;
constexpr int kMarkerSize = 48;

bool is_color (int color)
{
    return color >= 0 && color < kColorCount;
}

} // namespace

typedef struct _TavColorButtonPrivate TavColorButtonPrivate;

struct _TavColorButtonPrivate {
    TavCalendarColor color = TavCalendarColorDarkBlue;
    GtkWidget *dialog = nullptr;
};

struct _TavColorButton {
    KivoButton parent;
    TavColorButtonPrivate *priv;
};

typedef struct {
    KivoButtonClass parent_class;
} TavColorButtonClass;

enum {
    SIGNAL_COLOR_CHANGED,
    N_SIGNALS
};

static guint signals[N_SIGNALS];

G_DEFINE_TYPE_WITH_PRIVATE (TavColorButton, tav_color_button, KIVO_TYPE_BUTTON)

/* Auxiliary functions */

static GtkWidget *
marker_image (TavCalendarColor color, int size)
{
    tav::GRefPtr<GdkPixbuf> pixbuf = tav::adoptGRef (tav_calendar_color_create_pixbuf (color, size, size));
    return pixbuf ? gtk_image_new_from_pixbuf (pixbuf.get ()) : gtk_image_new ();
}

static void
show_color (TavColorButton *button)
{
    const TavCalendarColor color = button->priv->color;
    kivo_button_set_value (KIVO_BUTTON (button), TAV_CAL (kColorNames[color]));
    kivo_button_set_image (KIVO_BUTTON (button), marker_image (color, kivo_icon_size_get_pixels ("kivo-finger")));
}

static void
close_grid (TavColorButton *button)
{
    if (GtkWidget *dialog = std::exchange (button->priv->dialog, nullptr))
        gtk_widget_destroy (dialog);
}

/* Callbacks */

static void
on_marker_clicked_cb (GtkButton *marker, gpointer data)
{
    TavColorButton *button = TAV_COLOR_BUTTON (data);
    const int color = GPOINTER_TO_INT (g_object_get_data (G_OBJECT (marker), "tav-color"));
    close_grid (button);
    tav_color_button_set_color (button, static_cast<TavCalendarColor> (color));
}

static void
on_grid_response_cb (GtkDialog *, gint, gpointer data)
{
    close_grid (TAV_COLOR_BUTTON (data));
}

static void
on_grid_destroy_cb (GtkWidget *dialog, gpointer data)
{
    TavColorButton *button = TAV_COLOR_BUTTON (data);
    if (button->priv->dialog == dialog)
        button->priv->dialog = nullptr;
}

/* GObject and widget overrides */

static void
tav_color_button_clicked (GtkButton *button)
{
    tav_color_button_open_picker (TAV_COLOR_BUTTON (button));
}

static void
tav_color_button_destroy (GtkObject *object)
{
    close_grid (TAV_COLOR_BUTTON (object));
    GTK_OBJECT_CLASS (tav_color_button_parent_class)->destroy (object);
}

static void
tav_color_button_finalize (GObject *object)
{
    TAV_COLOR_BUTTON (object)->priv->~TavColorButtonPrivate ();
    G_OBJECT_CLASS (tav_color_button_parent_class)->finalize (object);
}

static void
tav_color_button_class_init (TavColorButtonClass *klass)
{
    G_OBJECT_CLASS (klass)->finalize = tav_color_button_finalize;
    GTK_OBJECT_CLASS (klass)->destroy = tav_color_button_destroy;
    GTK_BUTTON_CLASS (klass)->clicked = tav_color_button_clicked;

    signals[SIGNAL_COLOR_CHANGED] = g_signal_new ("color-changed", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
                                                  nullptr, nullptr, g_cclosure_marshal_VOID__VOID, G_TYPE_NONE, 0);
}

static void
tav_color_button_init (TavColorButton *button)
{
    void *memory = tav_color_button_get_instance_private (button);
    button->priv = new (memory) TavColorButtonPrivate ();
}

/* Public API */

GtkWidget *
tav_color_button_new (void)
{
    GtkWidget *button = GTK_WIDGET (g_object_new (TAV_TYPE_COLOR_BUTTON, "size", KIVO_SIZE_FINGER_HEIGHT,
                                                  "arrangement", KIVO_BUTTON_ARRANGEMENT_VERTICAL, nullptr));
    kivo_button_set_title (KIVO_BUTTON (button), TAV_CAL ("cal_fi_color"));
    show_color (TAV_COLOR_BUTTON (button));
    return button;
}

void
tav_color_button_set_title (TavColorButton *button, const char *title)
{
    g_return_if_fail (TAV_IS_COLOR_BUTTON (button));
    kivo_button_set_title (KIVO_BUTTON (button), title);
}

void
tav_color_button_set_color (TavColorButton *button, TavCalendarColor color)
{
    g_return_if_fail (TAV_IS_COLOR_BUTTON (button));
    g_return_if_fail (is_color (color));
    if (button->priv->color == color)
        return;
    button->priv->color = color;
    show_color (button);
    g_signal_emit (button, signals[SIGNAL_COLOR_CHANGED], 0);
}

TavCalendarColor
tav_color_button_get_color (TavColorButton *button)
{
    g_return_val_if_fail (TAV_IS_COLOR_BUTTON (button), TavCalendarColorDarkBlue);
    return button->priv->color;
}

void
tav_color_button_open_picker (TavColorButton *button)
{
    g_return_if_fail (TAV_IS_COLOR_BUTTON (button));
    auto *priv = button->priv;
    if (priv->dialog)
        return;
    const char *title = kivo_button_get_title (KIVO_BUTTON (button));
    GtkWidget *dialog = gtk_dialog_new ();
    priv->dialog = dialog;
    gtk_window_set_title (GTK_WINDOW (dialog), title ? title : "");
    gtk_window_set_modal (GTK_WINDOW (dialog), TRUE);
    gtk_dialog_set_has_separator (GTK_DIALOG (dialog), FALSE);
    GtkWidget *toplevel = gtk_widget_get_toplevel (GTK_WIDGET (button));
    if (GTK_IS_WINDOW (toplevel))
        gtk_window_set_transient_for (GTK_WINDOW (dialog), GTK_WINDOW (toplevel));
    gtk_window_set_position (GTK_WINDOW (dialog), GTK_WIN_POS_CENTER_ON_PARENT);
    kivo_style_decorate_dialog (dialog, title);

    /* Each marker is a finger-sized button; the chosen one starts pressed in. */
    GtkWidget *grid = gtk_table_new (kColorCount / kGridColumns, kGridColumns, TRUE);
    gtk_container_set_border_width (GTK_CONTAINER (grid), KIVO_MARGIN_DOUBLE);
    gtk_table_set_row_spacings (GTK_TABLE (grid), KIVO_MARGIN_DEFAULT);
    gtk_table_set_col_spacings (GTK_TABLE (grid), KIVO_MARGIN_DEFAULT);
    for (int color = 0; color < kColorCount; ++color) {
        GtkWidget *marker = gtk_toggle_button_new ();
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (marker), color == priv->color);
        gtk_widget_set_size_request (marker, KIVO_THUMB_HEIGHT + KIVO_MARGIN_DOUBLE, KIVO_THUMB_HEIGHT);
        gtk_widget_set_tooltip_text (marker, TAV_CAL (kColorNames[color]));
        gtk_container_add (GTK_CONTAINER (marker), marker_image (static_cast<TavCalendarColor> (color), kMarkerSize));
        g_object_set_data (G_OBJECT (marker), "tav-color", GINT_TO_POINTER (color));
        g_signal_connect (marker, "clicked", G_CALLBACK (on_marker_clicked_cb), button);
        const guint row = color / kGridColumns, column = color % kGridColumns;
        gtk_table_attach_defaults (GTK_TABLE (grid), marker, column, column + 1, row, row + 1);
    }
    gtk_box_pack_start (GTK_BOX (gtk_dialog_get_content_area (GTK_DIALOG (dialog))), grid, TRUE, TRUE, 0);
    g_signal_connect (dialog, "response", G_CALLBACK (on_grid_response_cb), button);
    g_signal_connect (dialog, "destroy", G_CALLBACK (on_grid_destroy_cb), button);
    gtk_widget_show_all (dialog);
}

GtkWidget *
tav_color_button_get_picker (TavColorButton *button)
{
    g_return_val_if_fail (TAV_IS_COLOR_BUTTON (button), NULL);
    return button->priv->dialog;
}
