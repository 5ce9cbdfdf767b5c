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
    return ok ? 0 : 1;
}
