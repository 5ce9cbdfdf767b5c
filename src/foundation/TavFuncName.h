/* libcalendarui - function names in diagnostics (internal)
 *
 * Under a C++ compiler GLib's G_STRFUNC is the whole signature
 * ("int tav_calendar_source_save(TavCalendarSource*)"), so every
 * g_return_if_fail critical would name a signature where a C library names
 * its function. The build forces this header into every C++ source of the
 * library, after GLib's own definition, so criticals, assertions and log
 * prefixes read "tav_calendar_source_save: assertion '...' failed".
 */
#ifndef TAV_FUNC_NAME_H
#define TAV_FUNC_NAME_H

#include <glib.h>

#undef G_STRFUNC
#define G_STRFUNC ((const char *) (__func__))

#endif /* TAV_FUNC_NAME_H */
