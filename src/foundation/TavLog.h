/* libcalendarui - the library's diagnostic log (internal)
 *
 * Every log site uses TAV_MESSAGE or TAV_WARNING: the line goes to syslog
 * ("CALENDAR-UI-MSG:func: ..." at LOG_INFO, "CALENDAR-UI-WARN:func: ..." at
 * LOG_ERR) when the log marker file existed at the first log call, otherwise
 * to standard output with a coloured function-name prefix.
 */
#ifndef TAV_LOG_H
#define TAV_LOG_H

#include <glib.h>

G_BEGIN_DECLS

typedef enum {
    TAV_LOG_MESSAGE = 0,
    TAV_LOG_WARNING = 1,
} TavLogLevel;

void tav_log_write (TavLogLevel level, const char *func, const char *format, ...) G_GNUC_PRINTF (3, 4);
void tav_log_writev (TavLogLevel level, const char *func, const char *format, va_list args);

/* A sink sees every line after it is written to its channel; tests use it to
 * assert the exact texts. Pass NULL to remove it. */
typedef void (*TavLogSink) (TavLogLevel level, const char *func, const char *message, gpointer data);
void tav_log_set_sink (TavLogSink sink, gpointer data);

/* Where the marker file that moves the log to syslog is looked for. The
 * TAV_CALENDAR_LOG_MARKER environment variable overrides it for tests. */
const char *tav_log_marker_path (void);

/* Forgets the decided channel so a test can decide it again. */
void tav_log_reset_channel_for_testing (void);

G_END_DECLS

#define TAV_MESSAGE(...) tav_log_write (TAV_LOG_MESSAGE, __func__, __VA_ARGS__)
#define TAV_WARNING(...) tav_log_write (TAV_LOG_WARNING, __func__, __VA_ARGS__)
/* For the few sites whose logged function name is not the caller's own. */
#define TAV_MESSAGE_AS(func, ...) tav_log_write (TAV_LOG_MESSAGE, (func), __VA_ARGS__)
#define TAV_WARNING_AS(func, ...) tav_log_write (TAV_LOG_WARNING, (func), __VA_ARGS__)

#endif /* TAV_LOG_H */
