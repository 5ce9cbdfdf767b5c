/* libcalendarui - copying object properties into dialog widgets and back */

#include "TavWidgetBinding.h"

#include <cstdarg>

#include "KivoButton.h"
#include "KivoEntry.h"
#include "TavDate.h"
#include "TavGPtr.h"
#include "TavLog.h"

using tav::GCharPtr;

namespace {

const char *widget_type_name (GtkWidget *widget)
{
    return G_OBJECT_TYPE_NAME (widget);
}

/* Writes one property into one widget. */
void property_to_widget (GObject *object, const char *property, GtkWidget *widget)
{
    if (!widget)
        return;
    if (KIVO_IS_ENTRY (widget) || GTK_IS_ENTRY (widget) || GTK_IS_TEXT_VIEW (widget)) {
        char *text = nullptr;
        g_object_get (object, property, &text, NULL);
        GCharPtr owned (text);
        if (KIVO_IS_ENTRY (widget))
            kivo_entry_set_text (KIVO_ENTRY (widget), text ? text : "");
        else if (GTK_IS_ENTRY (widget))
            gtk_entry_set_text (GTK_ENTRY (widget), text ? text : "");
        else
            gtk_text_view_set_text (GTK_TEXT_VIEW (widget), text);
        return;
    }
    if (GTK_IS_TOGGLE_BUTTON (widget)) {
        gboolean active = FALSE;
        g_object_get (object, property, &active, NULL);
        gtk_toggle_button_set_active (GTK_TOGGLE_BUTTON (widget), active);
        return;
    }
    TAV_WARNING ("Unsupported widget type: %s.", widget_type_name (widget));
}

/* Reads one widget into one property. */
void widget_to_property (GObject *object, const char *property, GtkWidget *widget)
{
    if (!widget) {
        TAV_MESSAGE ("Widget for %s not found", property);
        return;
    }
    if (KIVO_IS_ENTRY (widget) || GTK_IS_ENTRY (widget)) {
        g_object_set (object, property, gtk_entry_get_text (GTK_ENTRY (widget)), NULL);
        return;
    }
    if (GTK_IS_TEXT_VIEW (widget)) {
        GCharPtr text (gtk_text_view_get_text (GTK_TEXT_VIEW (widget)));
        g_object_set (object, property, text.get (), NULL);
        return;
    }
    if (GTK_IS_TOGGLE_BUTTON (widget)) {
        g_object_set (object, property, gtk_toggle_button_get_active (GTK_TOGGLE_BUTTON (widget)), NULL);
        return;
    }
    TAV_WARNING ("Unsupported widget type: %s.", widget_type_name (widget));
}

template <typename Copy>
void for_each_pair (GObject *object, const char *property, GtkWidget *widget, va_list args, Copy copy)
{
    while (property) {
        copy (object, property, widget);
        property = va_arg (args, const char *);
        if (property)
            widget = va_arg (args, GtkWidget *);
    }
}

char *buffer_text (GtkTextBuffer *buffer)
{
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds (buffer, &start, &end);
    return gtk_text_buffer_get_text (buffer, &start, &end, FALSE);
}

}  // namespace

gboolean
tav_copy_properties_to_widgets (GObject *object, const char *property, GtkWidget *widget, ...)
{
    g_return_val_if_fail (G_IS_OBJECT(object), FALSE);
    va_list args;
    va_start (args, widget);
    for_each_pair (object, property, widget, args, property_to_widget);
    va_end (args);
    return TRUE;
}

gboolean
tav_copy_widgets_to_properties (GObject *object, const char *property, GtkWidget *widget, ...)
{
    g_return_val_if_fail (G_IS_OBJECT(object), FALSE);
    va_list args;
    va_start (args, widget);
    for_each_pair (object, property, widget, args, widget_to_property);
    va_end (args);
    return TRUE;
}

void
tav_kivo_text_view_set_text (KivoTextView *text_view, const char *text)
{
    g_return_if_fail (KIVO_IS_TEXT_VIEW (text_view));
    gtk_text_buffer_set_text (gtk_text_view_get_buffer (GTK_TEXT_VIEW (text_view)), text ? text : "", -1);
}

char *
tav_kivo_text_view_get_text (KivoTextView *text_view)
{
    g_return_val_if_fail (KIVO_IS_TEXT_VIEW (text_view), NULL);
    return buffer_text (gtk_text_view_get_buffer (GTK_TEXT_VIEW (text_view)));
}

void
tav_kivo_text_set_cursor_at_start (KivoTextView *text_view)
{
    g_return_if_fail (KIVO_IS_TEXT_VIEW (text_view));
    GtkTextBuffer *buffer = gtk_text_view_get_buffer (GTK_TEXT_VIEW (text_view));
    GtkTextIter start;
    gtk_text_buffer_get_start_iter (buffer, &start);
    gtk_text_buffer_place_cursor (buffer, &start);
}

void
gtk_text_view_set_text (GtkTextView *text_view, const char *text)
{
    g_return_if_fail (GTK_IS_TEXT_VIEW(text_view));
    gtk_text_buffer_set_text (gtk_text_view_get_buffer (text_view), text ? text : "", -1);
}

char *
gtk_text_view_get_text (GtkTextView *text_view)
{
    g_return_val_if_fail (GTK_IS_TEXT_VIEW(text_view), NULL);
    return buffer_text (gtk_text_view_get_buffer (text_view));
}

void
tav_kivo_button_set_value_from_time (KivoButton *button, int hour, int minute)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    const TavTime time = {hour, minute};
    GCharPtr text (tav_time_to_string (&time));
    kivo_button_set_value (button, text.get ());
}

void
tav_kivo_button_set_value_from_date (KivoButton *button, int year, int month, int day)
{
    g_return_if_fail (KIVO_IS_BUTTON (button));
    const TavDate date = {year, month, day};
    GCharPtr text (tav_date_to_string (&date));
    kivo_button_set_value (button, text.get ());
}

void
tav_object_drop_list (GList *list)
{
    g_list_free_full (list, g_object_unref);
}

void
tav_tree_view_select_value_int (GtkTreeView *treeview, int column, int value)
{
    g_return_if_fail (GTK_IS_TREE_VIEW (treeview));
    gtk_widget_realize (GTK_WIDGET (treeview));
    GtkTreeModel *model = gtk_tree_view_get_model (treeview);
    GtkTreeIter iter;
    if (!model || !gtk_tree_model_get_iter_first (model, &iter)) {
        TAV_WARNING ("Empty model, value %d not found.", value);
        return;
    }
    do {
        int row_value = 0;
        gtk_tree_model_get (model, &iter, column, &row_value, -1);
        if (row_value == value) {
            GtkTreePath *path = gtk_tree_model_get_path (model, &iter);
            gtk_tree_selection_select_path (gtk_tree_view_get_selection (treeview), path);
            gtk_tree_view_scroll_to_cell (treeview, path, gtk_tree_view_get_column (treeview, 0), TRUE, 0.5, 0.5);
            gtk_tree_path_free (path);
            return;
        }
    } while (gtk_tree_model_iter_next (model, &iter));
    TAV_WARNING ("Value %d not found.", value);
}

int
tav_tree_view_get_column_int (GtkTreeView *treeview, int column)
{
    g_return_val_if_fail (GTK_IS_TREE_VIEW (treeview), -1);
    GtkTreeModel *model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected (gtk_tree_view_get_selection (treeview), &model, &iter))
        return -1;
    int value = -1;
    gtk_tree_model_get (model, &iter, column, &value, -1);
    return value;
}

GtkWidget *
gtk_button_new_default (const char *label)
{
    return GTK_WIDGET (g_object_new (GTK_TYPE_BUTTON, "label", label, "can-focus", FALSE, "has-focus", FALSE,
                                     "visible", TRUE, NULL));
}
