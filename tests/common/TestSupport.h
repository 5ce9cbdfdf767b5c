/* Test support: log capture, environment pinning and display access.
 *
 * Every test binary links test-main, which pins the time zone, locale and
 * calendar-system variables, routes GLib messages and the library's log lines
 * into a recorder, and fails any test that produced a critical it did not
 * expect.
 */
#ifndef TAV_TEST_SUPPORT_H
#define TAV_TEST_SUPPORT_H

#include <gtest/gtest.h>
#include <glib.h>

#include <functional>
#include <string>
#include <vector>

namespace tav::test {

struct LoggedLine {
    enum Kind { GLibCritical, GLibWarning, GLibMessage, LibMessage, LibWarning } kind;
    std::string func;     /* our log lines: the function name */
    std::string message;  /* the text without prefix */
};

/* Records GLib criticals/warnings and the library's own log lines while it
 * lives. Lines recorded by a LogCapture never count as unexpected. */
class LogCapture {
public:
    LogCapture ();
    ~LogCapture ();
    LogCapture (const LogCapture &) = delete;
    LogCapture &operator= (const LogCapture &) = delete;

    const std::vector<LoggedLine> &lines () const { return m_lines; }
    void clear () { m_lines.clear (); }

    /* Criticals whose text contains @needle (GLib's "assertion 'X' failed"). */
    int count_criticals (const std::string &needle) const;
    /* Our lines of @kind (LibMessage/LibWarning) equal to @message. */
    int count_lines (LoggedLine::Kind kind, const std::string &message) const;
    /* Our lines of @kind from @func. */
    int count_lines_from (LoggedLine::Kind kind, const std::string &func) const;
    bool has_critical (const std::string &needle) const { return count_criticals (needle) > 0; }
    bool has_message (const std::string &message) const { return count_lines (LoggedLine::LibMessage, message) > 0; }
    bool has_warning (const std::string &message) const { return count_lines (LoggedLine::LibWarning, message) > 0; }
    /* All recorded lines, one per row, for failure output. */
    std::string dump () const;

    void record (LoggedLine line) { m_lines.push_back (std::move (line)); }

private:
    std::vector<LoggedLine> m_lines;
    LogCapture *m_previous;
    int m_fatal;
};

/* Expects exactly one critical naming @condition (the failed check text). */
#define EXPECT_CRITICAL(capture, condition)                                                 \
    EXPECT_EQ ((capture).count_criticals (std::string ("'") + (condition) + "' failed"), 1) \
        << (capture).dump ()

/* TRUE when an X display could be opened and GTK initialised; widget tests
 * call GTEST_SKIP otherwise. */
bool have_display ();
#define REQUIRE_DISPLAY()                                 \
    do {                                                  \
        if (!tav::test::have_display ())                  \
            GTEST_SKIP () << "no X display for GTK tests"; \
    } while (0)

/* Runs the main loop until @done returns true or @timeout_ms passes. */
bool run_main_loop_until (const std::function<bool ()> &done, int timeout_ms);
/* Processes pending events (and X round trips) until the queue is idle. */
void flush_events ();

/* A fresh temporary directory, removed with its contents at destruction. */
class TempDir {
public:
    TempDir ();
    ~TempDir ();
    const std::string &path () const { return m_path; }
    std::string file (const std::string &name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

} // namespace tav::test

#endif /* TAV_TEST_SUPPORT_H */
