/* A host written in plain C: includes the umbrella header and calls the
 * library through the shared object's exported names only. */
#include <calendarui.h>
#include <stdio.h>
#include <string.h>

int main (void)
{
    char *text = tav_calendar_get_error_string (CalendarDiskFullError);
    int ok = text != NULL && strlen (text) > 0 && strncmp (text, "cerm_", 5) != 0;
    printf ("disk full: %s\n", text ? text : "(null)");
    g_free (text);

    GEnumClass *colors = g_type_class_ref (tav_calendar_color_get_type ());
    GEnumValue *green = g_enum_get_value_by_nick (colors, "green");
    ok = ok && green != NULL && green->value == TavCalendarColorGreen;
    g_type_class_unref (colors);

    ok = ok && tav_calendar_color_from_string ("DarkBlue") == TavCalendarColorDarkBlue;

    /* Dates: boxed values, the limit check and the processor. */
    {
        TavDate date = { 2037, 11, 30 };
        TavDate *copy;
        TavCalendarProcessor *processor = tav_calendar_processor_new ();
        char *label;

        ok = ok && !is_date_limit_reached (&date);
        tav_calendar_processor_inc_date_by_days (processor, &date, 1);
        ok = ok && is_date_limit_reached (&date);
        copy = g_boxed_copy (TAV_TYPE_DATE, &date);
        ok = ok && tav_date_compare (copy, &date) == 0;
        g_boxed_free (TAV_TYPE_DATE, copy);
        label = tav_date_to_string (&date);
        printf ("last day: %s\n", label);
        ok = ok && strcmp (label, "31.12.2037") == 0;
        g_free (label);
        g_object_unref (processor);
    }
    return ok ? 0 : 1;
}
