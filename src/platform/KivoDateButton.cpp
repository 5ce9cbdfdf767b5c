/* Touch platform layer - date and time picker buttons */

#include "KivoDateButton.h"

#include "TavGPtr.h"
#include "TavIntl.h"

#include <initializer_list>

G_DEFINE_TYPE (KivoDateButton, kivo_date_button, KIVO_TYPE_PICKER_BUTTON)
G_DEFINE_TYPE (KivoTimeButton, kivo_time_button, KIVO_TYPE_PICKER_BUTTON)

namespace {

enum { DAY_COLUMN, MONTH_COLUMN, YEAR_COLUMN };
enum { HOUR_COLUMN, MINUTE_COLUMN };

GtkTreeModel *
number_model (int first, int last, const char *format)
{
    GtkListStore *store = gtk_list_store_new (1, G_TYPE_STRING);
    for (int n = first; n <= last; n++) {
        char text[16];
        g_snprintf (text, sizeof text, format, n);
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, text, -1);
    }
    return GTK_TREE_MODEL (store);
}

GtkTreeModel *
month_model ()
{
    GtkListStore *store = gtk_list_store_new (1, G_TYPE_STRING);
    for (int month = 1; month <= 12; month++) {
        GDate date;
        g_date_clear (&date, 1);
        g_date_set_dmy (&date, 1, static_cast<GDateMonth> (month), 2000);
        char text[64];
        if (!g_date_strftime (text, sizeof text, "%B", &date))
            g_snprintf (text, sizeof text, "%d", month);
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, text, -1);
    }
    return GTK_TREE_MODEL (store);
}

KivoTouchSelector *
selector_of (gpointer button)
{
    return kivo_picker_button_get_selector (KIVO_PICKER_BUTTON (button));
}

/* The selected date, with the day pulled back into a shorter month. */
bool
selected_date (KivoTouchSelector *selector, guint *year, guint *month, guint *day)
{
    const gint d = kivo_touch_selector_get_active (selector, DAY_COLUMN);
    const gint m = kivo_touch_selector_get_active (selector, MONTH_COLUMN);
    const gint y = kivo_touch_selector_get_active (selector, YEAR_COLUMN);
    if (d < 0 || m < 0 || y < 0)
        return false;
    *year = KIVO_DATE_BUTTON_MIN_YEAR + y;
    *month = m;
    const guint days = g_date_get_days_in_month (static_cast<GDateMonth> (m + 1), static_cast<GDateYear> (*year));
    *day = MIN (static_cast<guint> (d + 1), days);
    return true;
}

gchar *
print_date (KivoTouchSelector *selector, gpointer)
{
    guint year = 0, month = 0, day = 0;
    if (!selected_date (selector, &year, &month, &day))
        return nullptr;
    GDate date;
    g_date_clear (&date, 1);
    g_date_set_dmy (&date, day, static_cast<GDateMonth> (month + 1), year);
    char text[128];
    if (!g_date_strftime (text, sizeof text, "%a %-d %b %Y", &date))
        g_snprintf (text, sizeof text, "%04u-%02u-%02u", year, month + 1, day);
    return g_strdup (text);
}

gchar *
print_time (KivoTouchSelector *selector, gpointer)
{
    const gint hours = kivo_touch_selector_get_active (selector, HOUR_COLUMN);
    const gint minutes = kivo_touch_selector_get_active (selector, MINUTE_COLUMN);
    if (hours < 0 || minutes < 0)
        return nullptr;
    return g_strdup_printf ("%02d:%02d", hours, minutes);
}

/* The day column offers the days of the selected month only: rows 29 to 31
 * come and go with the month and the year, and a day the new month lacks
 * moves back to its last day before its row goes. */
void
fit_days_to_month (KivoTouchSelector *selector)
{
    const gint m = kivo_touch_selector_get_active (selector, MONTH_COLUMN);
    const gint y = kivo_touch_selector_get_active (selector, YEAR_COLUMN);
    if (m < 0 || y < 0)
        return;
    const gint days = g_date_get_days_in_month (static_cast<GDateMonth> (m + 1),
                                                static_cast<GDateYear> (KIVO_DATE_BUTTON_MIN_YEAR + y));
    GtkListStore *store = GTK_LIST_STORE (kivo_touch_selector_get_model (selector, DAY_COLUMN));
    if (kivo_touch_selector_get_active (selector, DAY_COLUMN) >= days)
        kivo_touch_selector_set_active (selector, DAY_COLUMN, days - 1);
    gint rows = gtk_tree_model_iter_n_children (GTK_TREE_MODEL (store), nullptr);
    GtkTreeIter iter;
    for (; rows > days; rows--)
        if (gtk_tree_model_iter_nth_child (GTK_TREE_MODEL (store), &iter, nullptr, rows - 1))
            gtk_list_store_remove (store, &iter);
    for (; rows < days; rows++) {
        char text[8];
        g_snprintf (text, sizeof text, "%d", rows + 1);
        gtk_list_store_insert_with_values (store, nullptr, -1, 0, text, -1);
    }
}

void
on_date_changed_cb (KivoTouchSelector *selector, gint column, gpointer)
{
    if (column != DAY_COLUMN)
        fit_days_to_month (selector);
}

} // namespace

static void
kivo_date_button_class_init (KivoDateButtonClass *)
{
}

static void
kivo_date_button_init (KivoDateButton *button)
{
    GtkWidget *selector = kivo_touch_selector_new ();
    auto *touch = KIVO_TOUCH_SELECTOR (selector);
    for (GtkTreeModel *model : { number_model (1, 31, "%d"), month_model (),
                                 number_model (KIVO_DATE_BUTTON_MIN_YEAR, KIVO_DATE_BUTTON_MAX_YEAR, "%d") }) {
        kivo_touch_selector_append_text_column (touch, model, TRUE);
        g_object_unref (model);
    }
    kivo_touch_selector_set_print_func (touch, print_date, nullptr, nullptr);
    g_signal_connect (selector, "changed", G_CALLBACK (on_date_changed_cb), nullptr);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (button), touch);

    GDateTime *now = g_date_time_new_now_local ();
    const guint year = CLAMP (g_date_time_get_year (now), KIVO_DATE_BUTTON_MIN_YEAR, KIVO_DATE_BUTTON_MAX_YEAR);
    kivo_date_button_set_date (button, year, g_date_time_get_month (now) - 1, g_date_time_get_day_of_month (now));
    g_date_time_unref (now);
}

GtkWidget *
kivo_date_button_new (KivoSizeType size, KivoButtonArrangement arrangement)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_DATE_BUTTON, "size", size, "arrangement", arrangement,
                                     "title", TAV_KIVO ("wdgt_ti_date"), nullptr));
}

void
kivo_date_button_get_date (KivoDateButton *button, guint *year, guint *month, guint *day)
{
    g_return_if_fail (KIVO_IS_DATE_BUTTON (button));
    guint y = 0, m = 0, d = 0;
    selected_date (selector_of (button), &y, &m, &d);
    if (year)
        *year = y;
    if (month)
        *month = m;
    if (day)
        *day = d;
}

void
kivo_date_button_set_date (KivoDateButton *button, guint year, guint month, guint day)
{
    g_return_if_fail (KIVO_IS_DATE_BUTTON (button));
    g_return_if_fail (year >= KIVO_DATE_BUTTON_MIN_YEAR && year <= KIVO_DATE_BUTTON_MAX_YEAR);
    g_return_if_fail (month <= 11);
    g_return_if_fail (g_date_valid_dmy (day, static_cast<GDateMonth> (month + 1), year));
    KivoTouchSelector *selector = selector_of (button);
    kivo_picker_button_begin_update (KIVO_PICKER_BUTTON (button));
    kivo_touch_selector_set_active (selector, YEAR_COLUMN, year - KIVO_DATE_BUTTON_MIN_YEAR);
    kivo_touch_selector_set_active (selector, MONTH_COLUMN, month);
    kivo_touch_selector_set_active (selector, DAY_COLUMN, day - 1);
    kivo_picker_button_end_update (KIVO_PICKER_BUTTON (button));
}

static void
kivo_time_button_class_init (KivoTimeButtonClass *)
{
}

static void
kivo_time_button_init (KivoTimeButton *button)
{
    GtkWidget *selector = kivo_touch_selector_new ();
    auto *touch = KIVO_TOUCH_SELECTOR (selector);
    for (GtkTreeModel *model : { number_model (0, 23, "%02d"), number_model (0, 59, "%02d") }) {
        kivo_touch_selector_append_text_column (touch, model, TRUE);
        g_object_unref (model);
    }
    kivo_touch_selector_set_print_func (touch, print_time, nullptr, nullptr);
    kivo_picker_button_set_selector (KIVO_PICKER_BUTTON (button), touch);
    kivo_time_button_set_time (button, 0, 0);
}

GtkWidget *
kivo_time_button_new (KivoSizeType size, KivoButtonArrangement arrangement)
{
    return GTK_WIDGET (g_object_new (KIVO_TYPE_TIME_BUTTON, "size", size, "arrangement", arrangement,
                                     "title", TAV_KIVO ("wdgt_ti_time"), nullptr));
}

void
kivo_time_button_get_time (KivoTimeButton *button, guint *hours, guint *minutes)
{
    g_return_if_fail (KIVO_IS_TIME_BUTTON (button));
    KivoTouchSelector *selector = selector_of (button);
    if (hours)
        *hours = MAX (0, kivo_touch_selector_get_active (selector, HOUR_COLUMN));
    if (minutes)
        *minutes = MAX (0, kivo_touch_selector_get_active (selector, MINUTE_COLUMN));
}

void
kivo_time_button_set_time (KivoTimeButton *button, guint hours, guint minutes)
{
    g_return_if_fail (KIVO_IS_TIME_BUTTON (button));
    g_return_if_fail (hours <= 23 && minutes <= 59);
    KivoTouchSelector *selector = selector_of (button);
    kivo_picker_button_begin_update (KIVO_PICKER_BUTTON (button));
    kivo_touch_selector_set_active (selector, HOUR_COLUMN, hours);
    kivo_touch_selector_set_active (selector, MINUTE_COLUMN, minutes);
    kivo_picker_button_end_update (KIVO_PICKER_BUTTON (button));
}
