/* Test support implementation and the shared test main. */

#include "TestSupport.h"

#include <cstdlib>
#include <gtk/gtk.h>
#include <sstream>

#include "TavLog.h"

namespace tav::test {

namespace {

LogCapture *s_capture = nullptr;

void record (LoggedLine line)
{
    if (s_capture)
        s_capture->record (std::move (line));
    else if (line.kind == LoggedLine::GLibCritical || line.kind == LoggedLine::GLibWarning)
        /* Nobody expected it: the running test fails where it happened. */
        ADD_FAILURE () << "unexpected " << (line.kind == LoggedLine::GLibCritical ? "critical" : "warning")
                       << " [" << line.func << "]: " << line.message;
}

void on_glib_log (const char *domain, GLogLevelFlags level, const char *message, gpointer)
{
    LoggedLine::Kind kind = LoggedLine::GLibMessage;
    if (level & G_LOG_LEVEL_CRITICAL)
        kind = LoggedLine::GLibCritical;
    else if (level & G_LOG_LEVEL_WARNING)
        kind = LoggedLine::GLibWarning;
    if (kind == LoggedLine::GLibMessage && !s_capture)
        return;
    record ({ kind, domain ? domain : "", message ? message : "" });
}

void on_lib_log (TavLogLevel level, const char *func, const char *message, gpointer)
{
    if (s_capture)
        s_capture->record ({ level == TAV_LOG_WARNING ? LoggedLine::LibWarning : LoggedLine::LibMessage,
                             func ? func : "", message ? message : "" });
}

} // namespace

/* Suites run with G_DEBUG=fatal-criticals: a stray critical aborts where it
 * happened. A capture expects criticals, so it lifts that while it lives. */
LogCapture::LogCapture () : m_previous (s_capture)
{
    s_capture = this;
    m_fatal = g_log_set_always_fatal ((GLogLevelFlags) G_LOG_FATAL_MASK);
}

LogCapture::~LogCapture ()
{
    g_log_set_always_fatal ((GLogLevelFlags) m_fatal);
    s_capture = m_previous;
}

int LogCapture::count_criticals (const std::string &needle) const
{
    int n = 0;
    for (const auto &l : m_lines)
        if (l.kind == LoggedLine::GLibCritical && l.message.find (needle) != std::string::npos)
            n++;
    return n;
}

int LogCapture::count_lines (LoggedLine::Kind kind, const std::string &message) const
{
    int n = 0;
    for (const auto &l : m_lines)
        if (l.kind == kind && l.message == message)
            n++;
    return n;
}

int LogCapture::count_lines_from (LoggedLine::Kind kind, const std::string &func) const
{
    int n = 0;
    for (const auto &l : m_lines)
        if (l.kind == kind && l.func == func)
            n++;
    return n;
}

std::string LogCapture::dump () const
{
    static const char *names[] = { "CRITICAL", "GWARNING", "GMESSAGE", "MSG", "WARN" };
    std::ostringstream out;
    out << "captured lines:\n";
    for (const auto &l : m_lines)
        out << "  " << names[l.kind] << " " << l.func << ": " << l.message << "\n";
    return out.str ();
}

bool have_display ()
{
    static int state = -1;
    if (state < 0) {
        int argc = 0;
        char **argv = nullptr;
        state = (g_getenv ("DISPLAY") && gtk_init_check (&argc, &argv)) ? 1 : 0;
    }
    return state == 1;
}

bool run_main_loop_until (const std::function<bool ()> &done, int timeout_ms)
{
    gint64 deadline = g_get_monotonic_time () + (gint64) timeout_ms * 1000;
    while (!done ()) {
        if (g_get_monotonic_time () > deadline)
            return false;
        g_main_context_iteration (nullptr, FALSE);
        g_usleep (1000);
    }
    return true;
}

void flush_events ()
{
    if (have_display ())
        gdk_flush ();
    for (int i = 0; i < 5; i++) {
        while (g_main_context_pending (nullptr))
            g_main_context_iteration (nullptr, FALSE);
        if (have_display ())
            gdk_display_sync (gdk_display_get_default ());
    }
}

TempDir::TempDir ()
{
    char *dir = g_dir_make_tmp ("tav-test-XXXXXX", nullptr);
    m_path = dir ? dir : "/tmp";
    g_free (dir);
}

TempDir::~TempDir ()
{
    std::string command = "rm -rf '" + m_path + "'";
    if (m_path.rfind ("/tmp", 0) == 0 && system (command.c_str ()) != 0)
        g_printerr ("could not remove %s\n", m_path.c_str ());
}

void install_log_handlers ()
{
    g_log_set_default_handler (on_glib_log, nullptr);
    tav_log_set_sink (on_lib_log, nullptr);
}

/* GIO runs file queries (the file chooser's, for one) on GLib's pool
 * threads, which idle for a while after their work and then end. A thread
 * ending while the leak checker stops the world at exit crashes the checker
 * or has its half-freed data reported as a leak, so the idle ones are sent
 * away and awaited before the program returns. */
static int pool_threads ()
{
    int count = 0;
    if (GDir *dir = g_dir_open ("/proc/self/task", 0, nullptr)) {
        while (const char *task = g_dir_read_name (dir)) {
            gchar *path = g_build_filename ("/proc/self/task", task, "comm", nullptr);
            gchar *name = nullptr;
            if (g_file_get_contents (path, &name, nullptr, nullptr) && g_str_has_prefix (name, "pool-"))
                ++count;
            g_free (name);
            g_free (path);
        }
        g_dir_close (dir);
    }
    return count;
}

static void let_pool_threads_end ()
{
    g_thread_pool_set_max_unused_threads (0);
    for (int tries = 0; tries < 100 && pool_threads () > 0; ++tries) {
        g_thread_pool_stop_unused_threads ();
        g_usleep (50 * 1000);
    }
}

} // namespace tav::test

int main (int argc, char **argv)
{
    /* A fixed environment: results must not depend on the machine. */
    g_setenv ("TZ", "UTC", TRUE);
    g_setenv ("LC_ALL", "C", TRUE);
    g_unsetenv ("LANGUAGE");
    g_unsetenv ("LC_MESSAGES");
    g_unsetenv ("LANG");
    g_unsetenv ("CALENDAR_SYSTEM");
    if (!g_getenv ("TAV_CALENDAR_LOG_MARKER"))
        g_setenv ("TAV_CALENDAR_LOG_MARKER", "/nonexistent/tav-calendar-logui", TRUE);
    tzset ();
    setlocale (LC_ALL, "");

    /* GTK 2's file chooser leaks a buffer when it has to create its own
     * settings folder before saving; on a used machine the folder is there. */
    gchar *gtk_config = g_build_filename (g_get_user_config_dir (), "gtk-2.0", nullptr);
    g_mkdir_with_parents (gtk_config, 0700);
    g_free (gtk_config);

    ::testing::InitGoogleTest (&argc, argv);
    ::testing::GTEST_FLAG (death_test_style) = "threadsafe";
    tav::test::install_log_handlers ();
    const int result = RUN_ALL_TESTS ();
    tav::test::let_pool_threads_end ();
    return result;
}
