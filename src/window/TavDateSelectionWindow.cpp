/* libcalendarui - the date selection window
 *
 * Touch columns for the parts of a date the mode asks for: day, month and
 * year; month and year; or week and year. The week column is rebuilt when
 * the year changes (a year has 52 or 53 weeks); a day past the end of the
 * chosen month is read as the month's last day.
 */
#include "TavDateSelectionWindow.h"

#include <algorithm>
#include <new>
#include <string>

#include "TavEnumTypes.h"
#include "TavGPtr.h"
#include "TavIntl.h"
#include "TavLog.h"

#include "KivoStyle.h"
#include "KivoTouchSelector.h"

#define FIRST_YEAR 1970
#define LAST_YEAR 2037

enum {
    DATE_ACTIVATED,
    LAST_SIGNAL
};

enum {
    PROP_0,
    PROP_MODE,
    PROP_PROCESSOR,
    PROP_DONE_BUTTON_TITLE,
    N_PROPERTIES
};

static guint signals[LAST_SIGNAL];
static GParamSpec *properties[N_PROPERTIES];

struct _TavDateSelectionWindowPrivate {
    TavDateSelectionWindowMode mode = TavDateSelectionWindowModeDay;
    tav::GRefPtr<TavCalendarProcessor> processor;
    int first_day_of_week = 1;
    GtkWidget *selector = nullptr;
    GtkWidget *done = nullptr;
    /* Column indexes; -1 when the mode has no such column. */
    int day_column = -1, week_column = -1, month_column = -1, year_column = -1;
    TavDate date { FIRST_YEAR, 0, 1 };
    gboolean building = FALSE;
};

G_DEFINE_TYPE_WITH_CODE (TavDateSelectionWindow, tav_date_selection_window, GTK_TYPE_DIALOG,
                         G_ADD_PRIVATE (TavDateSelectionWindow))

static TavCalendarProcessor *processor_of (TavDateSelectionWindow *window)
{
    TavDateSelectionWindowPrivate *priv = window->priv;
    if (!priv->processor)
        priv->processor = tav::adoptGRef (tav_calendar_processor_new ());
    tav_calendar_processor_set_first_day_of_week (priv->processor.get (), priv->first_day_of_week);
    return priv->processor.get ();
}

static GtkListStore *text_store ()
{
    return gtk_list_store_new (1, G_TYPE_STRING);
}

static void append_row (GtkListStore *store, const std::string &text)
{
    GtkTreeIter iter;
    gtk_list_store_append (store, &iter);
    gtk_list_store_set (store, &iter, 0, text.c_str (), -1);
}

static int add_column (TavDateSelectionWindow *window, GtkListStore *store)
{
    const int column = kivo_touch_selector_append_text_column (KIVO_TOUCH_SELECTOR (window->priv->selector),
                                                               GTK_TREE_MODEL (store), TRUE);
    g_object_unref (store);
    return column;
}

/* The number of weeks of @year, and the week holding @date with its year. */
static int weeks_in_year (TavDateSelectionWindow *window, int year)
{
    TavDateInterval week;
    return tav_calendar_processor_get_week (processor_of (window), year, 53, &week) ? 53 : 52;
}

static void fill_weeks (TavDateSelectionWindow *window, int year)
{
    GtkTreeModel *model = kivo_touch_selector_get_model (KIVO_TOUCH_SELECTOR (window->priv->selector),
                                                         window->priv->week_column);
    GtkListStore *store = GTK_LIST_STORE (model);
    gtk_list_store_clear (store);
    const int weeks = weeks_in_year (window, year);
    for (int w = 1; w <= weeks; w++) {
        tav::GCharPtr text (g_strdup_printf ("%d", w));
        append_row (store, text.get ());
    }
}

static void build_columns (TavDateSelectionWindow *window)
{
    TavDateSelectionWindowPrivate *priv = window->priv;
    priv->building = TRUE;
    if (priv->selector)
        gtk_widget_destroy (priv->selector);
    priv->selector = kivo_touch_selector_new ();
    priv->day_column = priv->week_column = priv->month_column = priv->year_column = -1;

    if (priv->mode == TavDateSelectionWindowModeDay) {
        GtkListStore *days = text_store ();
        for (int d = 1; d <= 31; d++)
            append_row (days, std::to_string (d));
        priv->day_column = add_column (window, days);
    }
    if (priv->mode == TavDateSelectionWindowModeWeek) {
        priv->week_column = add_column (window, text_store ());
    } else {
        GtkListStore *months = text_store ();
        for (int m = 0; m < 12; m++) {
            GDate *date = g_date_new_dmy (1, static_cast<GDateMonth> (m + 1), 2001);
            char name[64] = "";
            g_date_strftime (name, sizeof name, "%B", date);
            g_date_free (date);
            append_row (months, name);
        }
        priv->month_column = add_column (window, months);
    }
    GtkListStore *years = text_store ();
    for (int y = FIRST_YEAR; y <= LAST_YEAR; y++)
        append_row (years, std::to_string (y));
    priv->year_column = add_column (window, years);

    GtkWidget *content = gtk_dialog_get_content_area (GTK_DIALOG (window));
    gtk_widget_set_size_request (priv->selector, -1, 300);
    gtk_box_pack_start (GTK_BOX (content), priv->selector, TRUE, TRUE, 0);
    gtk_widget_show_all (priv->selector);
    priv->building = FALSE;
}

static void show_date (TavDateSelectionWindow *window)
{
    TavDateSelectionWindowPrivate *priv = window->priv;
    KivoTouchSelector *selector = KIVO_TOUCH_SELECTOR (priv->selector);
    const TavDate &date = priv->date;
    priv->building = TRUE;
    int year = date.year;
    if (priv->week_column >= 0) {
        TavCalendarProcessor *processor = processor_of (window);
        const int number = tav_calendar_processor_date_to_week_number (processor, &date);
        if (number < 2 && date.month != 0)
            year++;
        else if (number >= 52 && date.month != 11)
            year--;
        year = std::clamp (year, FIRST_YEAR, LAST_YEAR);
        fill_weeks (window, year);
        kivo_touch_selector_set_active (selector, priv->week_column, number - 1);
    }
    if (priv->day_column >= 0)
        kivo_touch_selector_set_active (selector, priv->day_column, date.day - 1);
    if (priv->month_column >= 0)
        kivo_touch_selector_set_active (selector, priv->month_column, date.month);
    kivo_touch_selector_set_active (selector, priv->year_column, year - FIRST_YEAR);
    kivo_touch_selector_center_on_selected (selector);
    priv->building = FALSE;
}

/* The rows chosen before the columns had a window are brought into view. */
static gboolean on_map_event_cb (GtkWidget *, GdkEvent *, gpointer data)
{
    TavDateSelectionWindow *window = TAV_DATE_SELECTION_WINDOW (data);
    kivo_touch_selector_center_on_selected (KIVO_TOUCH_SELECTOR (window->priv->selector));
    return FALSE;
}

static void on_selector_changed_cb (KivoTouchSelector *selector, int column, gpointer data)
{
    TavDateSelectionWindow *window = TAV_DATE_SELECTION_WINDOW (data);
    TavDateSelectionWindowPrivate *priv = window->priv;
    if (priv->building || column != priv->year_column || priv->week_column < 0)
        return;
    /* Keep the chosen week where the new year has it. */
    const int week = kivo_touch_selector_get_active (selector, priv->week_column);
    const int year = FIRST_YEAR + kivo_touch_selector_get_active (selector, priv->year_column);
    priv->building = TRUE;
    fill_weeks (window, year);
    kivo_touch_selector_set_active (selector, priv->week_column, std::min (week, weeks_in_year (window, year) - 1));
    priv->building = FALSE;
}

static void rebuild (TavDateSelectionWindow *window)
{
    build_columns (window);
    g_signal_connect (window->priv->selector, "changed", G_CALLBACK (on_selector_changed_cb), window);
    show_date (window);
}

static void read_date (TavDateSelectionWindow *window, TavDate *out)
{
    TavDateSelectionWindowPrivate *priv = window->priv;
    KivoTouchSelector *selector = KIVO_TOUCH_SELECTOR (priv->selector);
    const int year = FIRST_YEAR + std::max (0, kivo_touch_selector_get_active (selector, priv->year_column));
    TavCalendarProcessor *processor = processor_of (window);
    if (priv->week_column >= 0) {
        const int week = std::max (0, kivo_touch_selector_get_active (selector, priv->week_column)) + 1;
        TavDateInterval interval;
        if (!tav_calendar_processor_get_week (processor, year, week, &interval))
            tav_calendar_processor_get_week (processor, year, 52, &interval);
        *out = interval.start;
        /* Week 1 of 1970 begins in 1969, which the calendar cannot show. */
        if (out->year < FIRST_YEAR)
            *out = { FIRST_YEAR, 0, 1 };
        return;
    }
    const int month = std::max (0, kivo_touch_selector_get_active (selector, priv->month_column));
    int day = 1;
    if (priv->day_column >= 0)
        day = std::max (0, kivo_touch_selector_get_active (selector, priv->day_column)) + 1;
    day = std::min (day, tav_calendar_processor_month_length (processor, year, month));
    *out = { year, month, day };
}

static void tav_date_selection_window_response (GtkDialog *dialog, gint response)
{
    TavDateSelectionWindow *window = TAV_DATE_SELECTION_WINDOW (dialog);
    if (response == GTK_RESPONSE_OK)
        tav_date_selection_window_activate (window);
    else
        gtk_widget_destroy (GTK_WIDGET (dialog));
}

static void tav_date_selection_window_set_property (GObject *object, guint id, const GValue *value, GParamSpec *pspec)
{
    TavDateSelectionWindow *window = TAV_DATE_SELECTION_WINDOW (object);
    TavDateSelectionWindowPrivate *priv = window->priv;
    switch (id) {
    case PROP_MODE:
        priv->mode = static_cast<TavDateSelectionWindowMode> (g_value_get_enum (value));
        rebuild (window);
        break;
    case PROP_PROCESSOR:
        priv->processor = tav::GRefPtr<TavCalendarProcessor> (
            static_cast<TavCalendarProcessor *> (g_value_get_object (value)));
        rebuild (window);
        break;
    case PROP_DONE_BUTTON_TITLE: {
        const char *text = g_value_get_string (value);
        gtk_button_set_label (GTK_BUTTON (priv->done), text ? text : "");
        break;
    }
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static void tav_date_selection_window_get_property (GObject *object, guint id, GValue *value, GParamSpec *pspec)
{
    TavDateSelectionWindowPrivate *priv = TAV_DATE_SELECTION_WINDOW (object)->priv;
    switch (id) {
    case PROP_MODE:
        g_value_set_enum (value, priv->mode);
        break;
    case PROP_PROCESSOR:
        g_value_set_object (value, priv->processor.get ());
        break;
    case PROP_DONE_BUTTON_TITLE:
        g_value_set_string (value, gtk_button_get_label (GTK_BUTTON (priv->done)));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
    }
}

static void on_title_notify_cb (GObject *object, GParamSpec *, gpointer)
{
    /* The decorated title is a label in the content area. */
    GtkWidget *content = gtk_dialog_get_content_area (GTK_DIALOG (object));
    GList *children = gtk_container_get_children (GTK_CONTAINER (content));
    for (GList *l = children; l; l = l->next)
        if (GTK_IS_LABEL (l->data) && g_strcmp0 (gtk_widget_get_name (GTK_WIDGET (l->data)), "kivo-dialog-title") == 0)
            gtk_label_set_text (GTK_LABEL (l->data), gtk_window_get_title (GTK_WINDOW (object)));
    g_list_free (children);
}

static void tav_date_selection_window_finalize (GObject *object)
{
    TAV_DATE_SELECTION_WINDOW (object)->priv->~_TavDateSelectionWindowPrivate ();
    G_OBJECT_CLASS (tav_date_selection_window_parent_class)->finalize (object);
}

static void tav_date_selection_window_class_init (TavDateSelectionWindowClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);
    object_class->set_property = tav_date_selection_window_set_property;
    object_class->get_property = tav_date_selection_window_get_property;
    object_class->finalize = tav_date_selection_window_finalize;
    GTK_DIALOG_CLASS (klass)->response = tav_date_selection_window_response;

    properties[PROP_MODE] = g_param_spec_enum ("mode", "Mode", "Whether a day, a month or a week is chosen.",
                                               TAV_TYPE_DATE_SELECTION_WINDOW_MODE,
                                               TavDateSelectionWindowModeDay, G_PARAM_READWRITE);
    properties[PROP_PROCESSOR] = g_param_spec_object ("processor", "Processor",
                                                      "The calendar processor that counts the weeks.",
                                                      TAV_TYPE_CALENDAR_PROCESSOR, G_PARAM_READWRITE);
    properties[PROP_DONE_BUTTON_TITLE] = g_param_spec_string ("done-button-title", "Done button title",
                                                              "The label of the button that chooses the date.",
                                                              nullptr, G_PARAM_READWRITE);
    g_object_class_install_properties (object_class, N_PROPERTIES, properties);

    signals[DATE_ACTIVATED] = g_signal_new ("date-activated", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
                                            nullptr, nullptr, g_cclosure_marshal_VOID__BOXED, G_TYPE_NONE, 1,
                                            TAV_TYPE_DATE);
}

static void tav_date_selection_window_init (TavDateSelectionWindow *window)
{
    void *memory = tav_date_selection_window_get_instance_private (window);
    window->priv = new (memory) TavDateSelectionWindowPrivate ();
    TavDate today;
    tav_date_init_today (&today);
    if (today.year >= FIRST_YEAR && today.year <= LAST_YEAR)
        window->priv->date = today;

    gtk_window_set_modal (GTK_WINDOW (window), TRUE);
    gtk_dialog_set_has_separator (GTK_DIALOG (window), FALSE);
    gtk_window_set_default_size (GTK_WINDOW (window), 600, -1);
    gtk_window_set_position (GTK_WINDOW (window), GTK_WIN_POS_CENTER_ON_PARENT);
    kivo_style_decorate_dialog (GTK_WIDGET (window), " ");
    window->priv->done = gtk_dialog_add_button (GTK_DIALOG (window), TAV_KIVO ("wdgt_bd_done"), GTK_RESPONSE_OK);
    gtk_widget_set_size_request (window->priv->done, 180, 70);
    g_signal_connect (window, "notify::title", G_CALLBACK (on_title_notify_cb), nullptr);
    g_signal_connect_after (window, "map-event", G_CALLBACK (on_map_event_cb), window);
    rebuild (window);
}

GtkWidget *tav_date_selection_window_new (void)
{
    return GTK_WIDGET (g_object_new (TAV_TYPE_DATE_SELECTION_WINDOW, NULL));
}

void tav_date_selection_window_set_date (TavDateSelectionWindow *window, const TavDate *date)
{
    g_return_if_fail (TAV_IS_DATE_SELECTION_WINDOW (window));
    g_return_if_fail (date != NULL);
    g_return_if_fail (tav_date_is_valid (date) && date->year >= FIRST_YEAR && date->year <= LAST_YEAR);
    window->priv->date = *date;
    show_date (window);
}

void tav_date_selection_window_get_date (TavDateSelectionWindow *window, TavDate *date)
{
    g_return_if_fail (TAV_IS_DATE_SELECTION_WINDOW (window));
    g_return_if_fail (date != NULL);
    read_date (window, date);
}

void tav_date_selection_window_set_first_day_of_week (TavDateSelectionWindow *window, int first_day_of_week)
{
    g_return_if_fail (TAV_IS_DATE_SELECTION_WINDOW (window));
    g_return_if_fail (first_day_of_week >= 0 && first_day_of_week <= 6);
    TavDate shown;
    read_date (window, &shown);
    window->priv->first_day_of_week = first_day_of_week;
    if (window->priv->week_column >= 0) {
        window->priv->date = shown;
        show_date (window);
    }
}

int tav_date_selection_window_get_year (TavDateSelectionWindow *window)
{
    g_return_val_if_fail (TAV_IS_DATE_SELECTION_WINDOW (window), 0);
    KivoTouchSelector *selector = KIVO_TOUCH_SELECTOR (window->priv->selector);
    return FIRST_YEAR + std::max (0, kivo_touch_selector_get_active (selector, window->priv->year_column));
}

void tav_date_selection_window_activate (TavDateSelectionWindow *window)
{
    g_return_if_fail (TAV_IS_DATE_SELECTION_WINDOW (window));
    TavDate date;
    read_date (window, &date);
    g_object_ref (window);
    g_signal_emit (window, signals[DATE_ACTIVATED], 0, &date);
    gtk_widget_destroy (GTK_WIDGET (window));
    g_object_unref (window);
}
