/* libcalendarui - the two-channel diagnostic log */

#include "TavLog.h"

#include <cerrno>
#include <cstdio>
#include <sys/statfs.h>
#include <syslog.h>

#include <glib/gprintf.h>

#include "TavGPtr.h"
#include "TavHelper.h"

namespace {

/* 0 = not decided yet, 1 = terminal, 2 = syslog. Decided once per process. */
int s_log_channel = 0;

TavLogSink s_sink = nullptr;
gpointer s_sink_data = nullptr;

void print_prefixed (const char *prefix_format, const char *func, const char *format, va_list args)
{
    printf (prefix_format, func ? func : "");
    g_vprintf (format, args);
    printf ("\n");
    fflush (stdout);
}

} // namespace

const char *
tav_log_marker_path (void)
{
    const char *path = g_getenv ("TAV_CALENDAR_LOG_MARKER");
    return (path && *path) ? path : "/home/user/.calendar/logui";
}

void
tav_log_reset_channel_for_testing (void)
{
    s_log_channel = 0;
}

void
tav_log_set_sink (TavLogSink sink, gpointer data)
{
    s_sink = sink;
    s_sink_data = data;
}

gboolean
checkFileExists (const char *path)
{
    g_return_val_if_fail (path != NULL, FALSE);
    struct statfs info;

    if (statfs (path, &info) == 0)
        return TRUE;
    /* Only a missing file counts as absent; any other failure (permissions,
     * a dangling mount) is taken as "exists". */
    return errno != ENOENT;
}

int
loggingPath (void)
{
    if (s_log_channel == 0)
        s_log_channel = checkFileExists (tav_log_marker_path ()) ? 2 : 1;
    return s_log_channel;
}

gboolean
tav_message_use_syslog (void)
{
    return loggingPath () == 2;
}

void
tav_message_print_message (const char *func, const char *format, ...)
{
    va_list args;
    va_start (args, format);
    print_prefixed ("\033[1;33m%32s()\033[0;39m: ", func, format, args);
    va_end (args);
}

void
tav_message_print_warning (const char *func, const char *format, ...)
{
    va_list args;
    va_start (args, format);
    print_prefixed ("\033[1;31m%32s()\033[0;39m: ", func, format, args);
    va_end (args);
}

void
tav_message_print_debug (const char *func, const char *format, ...)
{
    va_list args;
    va_start (args, format);
    print_prefixed ("\033[1;32m%32s()\033[0;39m: ", func, format, args);
    va_end (args);
}

void
tav_log_writev (TavLogLevel level, const char *func, const char *format, va_list args)
{
    /* Format once; both channels carry the same text. */
    tav::GCharPtr text (g_strdup_vprintf (format, args));

    if (tav_message_use_syslog ()) {
        if (level == TAV_LOG_WARNING)
            syslog (LOG_ERR, "CALENDAR-UI-WARN:%s: %s\n", func, text.get ());
        else
            syslog (LOG_INFO, "CALENDAR-UI-MSG:%s: %s\n", func, text.get ());
    } else if (level == TAV_LOG_WARNING) {
        tav_message_print_warning (func, "%s", text.get ());
    } else {
        tav_message_print_message (func, "%s", text.get ());
    }

    if (s_sink)
        s_sink (level, func, text.get (), s_sink_data);
}

void
tav_log_write (TavLogLevel level, const char *func, const char *format, ...)
{
    va_list args;
    va_start (args, format);
    tav_log_writev (level, func, format, args);
    va_end (args);
}
