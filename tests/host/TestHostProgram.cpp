/* The tav-calendar program itself, run as a user runs it. */
#include "HostStore.h"
#include "HostTestUtil.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cstring>
#include <memory>
#include <glib/gstdio.h>
#include <sys/wait.h>
#include <unistd.h>


using namespace tav::host;
using namespace tav::host::test;

namespace {

struct ProgramRun { int status = -1; std::string out, err; };

/* Runs the program with @args to its end; with @pid, starts it only (its
 * output dropped) and leaves the waiting to the caller. */
ProgramRun run (std::vector<std::string> args, const char *tz = nullptr, GPid *pid = nullptr)
{
    args.insert (args.begin (), TAV_CALENDAR_BIN);
    std::vector<char *> argv;
    for (auto &a : args)
        argv.push_back (a.data ());
    argv.push_back (nullptr);
    gchar *out = nullptr, *err = nullptr;
    int wait = 0;
    GError *error = nullptr;
    gchar **env = g_get_environ ();
    if (tz)
        env = g_environ_setenv (env, "TZ", tz, TRUE);
    const bool ran = pid ? g_spawn_async (nullptr, argv.data (), env,
                                          GSpawnFlags (G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_STDOUT_TO_DEV_NULL), nullptr,
                                          nullptr, pid, &error)
                         : g_spawn_sync (nullptr, argv.data (), env, G_SPAWN_DEFAULT, nullptr, nullptr, &out, &err,
                                         &wait, &error);
    g_strfreev (env);
    EXPECT_TRUE (ran) << (error ? error->message : "");
    g_clear_error (&error);
    ProgramRun r {ran && WIFEXITED (wait) ? WEXITSTATUS (wait) : -1, out ? out : "", err ? err : ""};
    g_free (out);
    g_free (err);
    return r;
}

bool contains (const std::string &hay, const std::string &needle)
{
    return hay.find (needle) != std::string::npos;
}

/* Pixels that differ between two pictures of the same size. */
size_t differing_pixels (GdkPixbuf *a, GdkPixbuf *b)
{
    size_t count = 0;
    const int n = gdk_pixbuf_get_n_channels (a), stride = gdk_pixbuf_get_rowstride (a);
    for (int y = 0; y < gdk_pixbuf_get_height (a); ++y) {
        const guchar *pa = gdk_pixbuf_get_pixels (a) + y * stride, *pb = gdk_pixbuf_get_pixels (b) + y * stride;
        for (int x = 0; x < gdk_pixbuf_get_width (a); ++x)
            count += memcmp (pa + x * n, pb + x * n, 3) != 0;
    }
    return count;
}

}  // namespace

TEST (HostProgram, ScreenshotRendersEachViewAt800x480)
{
    REQUIRE_DISPLAY ();
    tav::test::TempDir dir;
    ProgramRun demo = run ({"--demo", "--date", "2026-11-23", "--screenshot", dir.file ("demo")});
    ASSERT_EQ (demo.status, 0) << demo.err;
    ProgramRun empty = run ({"--db", dir.file ("empty.db"), "--date", "2026-11-23", "--screenshot", dir.file ("empty")});
    ASSERT_EQ (empty.status, 0) << empty.err;

    auto load = [&dir] (const std::string &name) {
        GError *err = nullptr;
        GdkPixbuf *picture = gdk_pixbuf_new_from_file (dir.file (name + ".png").c_str (), &err);
        EXPECT_TRUE (picture) << name << ": " << (err ? err->message : "");
        g_clear_error (&err);
        return std::unique_ptr<GdkPixbuf, void (*) (gpointer)> (picture, g_object_unref);
    };
    const auto month = load ("demo/month");
    for (const char *view : {"month", "week", "agenda", "day", "event", "tasks", "notes", "appmenu"}) {
        SCOPED_TRACE (view);
        EXPECT_TRUE (contains (demo.out, dir.file ("demo") + "/" + view + ".png")) << demo.out;
        const auto full = load (std::string ("demo/") + view), bare = load (std::string ("empty/") + view);
        ASSERT_TRUE (full && bare && month);
        EXPECT_EQ (gdk_pixbuf_get_width (full.get ()), 800);
        EXPECT_EQ (gdk_pixbuf_get_height (full.get ()), 480);
        /* The demo store fills the view with coloured entries and their
         * texts, where an empty store leaves only the grid (or an empty
         * list); the menu covers most of the month view it opens over. */
        const bool menu = strcmp (view, "appmenu") == 0;
        EXPECT_GT (differing_pixels (full.get (), menu ? month.get () : bare.get ()), 800u * 480u / (menu ? 3 : 30));
    }
}

TEST (HostProgram, BadInputGivesAClearMessageAndStatus)
{
    tav::test::TempDir dir;
    const std::string junk = dir.file ("junk.db");
    const std::string junk_text = "not a database at all\n" + std::string (4096, '#');
    ASSERT_TRUE (g_file_set_contents (junk.c_str (), junk_text.data (), junk_text.size (), nullptr));
    const std::string bad_ics = dir.file ("bad.ics");
    const std::string bad_text = "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20240101T100000Z\nSUMMARY:x\nEND:VEVENT\n"
                                 "BEGIN:VEVENT\nDTSTART:20240102T100000Z\n";
    ASSERT_TRUE (g_file_set_contents (bad_ics.c_str (), bad_text.data (), bad_text.size (), nullptr));
    struct Row { const char *label; std::vector<std::string> args; int status; const char *message; } rows[] = {
        {"not a database", {"--db", junk, "--export", dir.file ("x.ics")}, 2, "is not a calendar database"},
        {"malformed import", {"--db", dir.file ("a.db"), "--import", bad_ics}, 1, "bad.ics:6: BEGIN:VEVENT is never closed; nothing was imported"},
        {"missing file", {"--db", dir.file ("a.db"), "--import", dir.file ("none.ics")}, 1, "cannot read"},
        {"date format", {"--db", dir.file ("a.db"), "--date", "23.11.2026", "--screenshot", dir.path ()}, 2, "expected a date written YYYY-MM-DD"},
        {"no such day", {"--db", dir.file ("a.db"), "--date", "2026-02-30", "--screenshot", dir.path ()}, 2, "there is no such day"},
        {"out of range", {"--db", dir.file ("a.db"), "--date", "2040-01-01", "--screenshot", dir.path ()}, 2, "the years 1970 to 2037"},
        {"unknown view", {"--db", dir.file ("a.db"), "--view", "year", "--screenshot", dir.path ()}, 2, "no such view"},
        {"db and demo", {"--db", dir.file ("a.db"), "--demo"}, 2, "exclude each other"},
        {"endless device", {"--db", dir.file ("a.db"), "--import", "/dev/zero"}, 1, "'/dev/zero' is not a regular file"},
        {"list date format", {"--db", dir.file ("a.db"), "--list", "2024-1-01", "2024-01-31"}, 2, "'2024-1-01' is not a date written YYYY-MM-DD"},
        {"list no such day", {"--db", dir.file ("a.db"), "--list", "2023-02-29", "2024-01-31"}, 2, "there is no day 2023-02-29"},
        {"list backwards", {"--db", dir.file ("a.db"), "--list", "2024-02-01", "2024-01-31"}, 2, "2024-01-31 comes before 2024-02-01"},
        {"list of one date", {"--db", dir.file ("a.db"), "--list", "2024-02-01"}, 2, "--list takes two dates"},
    };
    for (const Row &row : rows) {
        ProgramRun r = run (row.args);
        EXPECT_EQ (r.status, row.status) << row.label << ": " << r.err;
        EXPECT_TRUE (contains (r.err, row.message)) << row.label << ": " << r.err;
    }
    EXPECT_EQ (read_file (junk), junk_text) << "the foreign file was changed";

    /* The failed import left the store (created on first run) empty. */
    Status st;
    auto store = Store::open (dir.file ("a.db"), &st);
    ASSERT_TRUE (store) << st.message;
    ASSERT_EQ (store->calendars ().size (), 1u);
    EXPECT_EQ (store->calendars ()[0].title, "Personal");
    EXPECT_EQ (store->count_entries (store->calendars ()[0].id), 0);
}

TEST (HostProgram, AnITipMailboxImportsInPartAndListsInTheViewersTime)
{
    tav::test::TempDir dir;
    const std::string db = dir.file ("cal.db");
    ProgramRun imp = run ({"--db", db, "--import", fixture_path ("itip.ics")});
    EXPECT_EQ (imp.status, 4) << imp.err;
    EXPECT_TRUE (contains (imp.err, "itip.ics: 2 of 14 components were skipped; the others were stored")) << imp.err;
    EXPECT_TRUE (contains (imp.out, "CANCEL: 2 components: 2 cancelled\n"
                                    "COUNTER: 1 components: 1 with nothing to do\n"
                                    "REPLY: 1 components: 1 attendee replies\n"
                                    "REQUEST: 10 components: 6 added, 2 unchanged, 2 skipped\n"
                                    "skipped line 98: DTSTART '20240230T100000Z': there is no day 30 in that month\n"
                                    "skipped line 101: the event has no DTSTART\n")) << imp.out;

    /* The series in its own zone (EXDATE, a moved and a cancelled instance,
     * daylight saving on March 31), a floating lunch, an all-day series
     * whose UNTIL is a date; the newer SEQUENCE of the review. */
    const std::string utc = "2024-03-01\t2024-03-01\tConference\n2024-03-02\t2024-03-02\tConference\n"
                            "2024-03-03\t2024-03-03\tConference\n2024-03-04\t2024-03-04\tConference\n"
                            "2024-03-05\t2024-03-05\tConference\n"
                            "2024-03-14 09:00\t2024-03-14 10:00\tTeam meeting\n"
                            "2024-03-15 12:00\t2024-03-15 12:00\tLunch without UID\n"
                            "2024-03-20 15:00\t2024-03-20 16:00\tReview v2\n"
                            "2024-03-28 09:00\t2024-03-28 10:00\tTeam meeting\n"
                            "2024-04-05 12:00\t2024-04-05 13:00\tTeam meeting (moved)\n"
                            "2024-04-18 08:00\t2024-04-18 09:00\tTeam meeting\n";
    ProgramRun list = run ({"--db", db, "--list", "2024-03-01", "2024-04-30"}, "UTC");
    EXPECT_EQ (list.status, 0) << list.err;
    EXPECT_EQ (list.out, utc);
    /* In New York the zoned ones move, floating and all-day ones stay. */
    ProgramRun ny = run ({"--db", db, "--list", "2024-03-14", "2024-03-20"}, "America/New_York");
    EXPECT_EQ (ny.out, "2024-03-14 05:00\t2024-03-14 06:00\tTeam meeting\n"
                       "2024-03-15 12:00\t2024-03-15 12:00\tLunch without UID\n"
                       "2024-03-20 11:00\t2024-03-20 12:00\tReview v2\n");

    /* The export keeps the zone, the series with its exceptions, both
     * alarms and the replied status; imported again it lists the same. */
    ProgramRun exp = run ({"--db", db, "--export", dir.file ("out.ics")}, "Europe/Berlin");
    ASSERT_EQ (exp.status, 0) << exp.err;
    const std::string text = read_file (dir.file ("out.ics"));
    for (const char *kept : {"TZID:Example/Tavland\r\n", "RECURRENCE-ID;TZID=Example/Tavland:20240404T100000\r\n",
                             "TRIGGER:-PT15M\r\n", "TRIGGER:-PT1H\r\n", "ATTENDEE;PARTSTAT=ACCEPTED:mailto:ann@example.org",
                             "DTSTART;TZID=Example/Tavland:20240314T100000\r\n"}) {
        EXPECT_TRUE (contains (text, kept)) << kept;
    }
    EXPECT_FALSE (contains (text, "must not win"));
    ProgramRun again = run ({"--db", dir.file ("again.db"), "--import", dir.file ("out.ics")}, "Asia/Tokyo");
    EXPECT_EQ (again.status, 0) << again.err;
    EXPECT_EQ (run ({"--db", dir.file ("again.db"), "--list", "2024-03-01", "2024-04-30"}, "UTC").out, utc);
}

TEST (HostProgram, ImportPrintsCountsExportWritesThroughALinkAndTwoImportsShareTheStore)
{
    tav::test::TempDir dir;
    const std::string db = dir.file ("cal.db");
    ProgramRun imp = run ({"--db", db, "--import", fixture_path ("2445.ics"), "--import", fixture_path ("overlaps.ics")});
    ASSERT_EQ (imp.status, 0) << imp.err;
    EXPECT_TRUE (contains (imp.out, "imported 6 events, 2 tasks, 2 notes into 'Personal'")) << imp.out;
    EXPECT_TRUE (contains (imp.out, "imported 5 events, 0 tasks, 0 notes")) << imp.out;

    ASSERT_EQ (symlink ("real.ics", dir.file ("link.ics").c_str ()), 0);
    ProgramRun exp = run ({"--db", db, "--export", dir.file ("link.ics")});
    EXPECT_EQ (exp.status, 0) << exp.err;
    EXPECT_TRUE (contains (exp.out, "exported 15 entries from 1 calendars")) << exp.out;
    EXPECT_TRUE (g_file_test (dir.file ("link.ics").c_str (), G_FILE_TEST_IS_SYMLINK));
    EXPECT_TRUE (contains (read_file (dir.file ("real.ics")), "SUMMARY:Bastille Day Party"));

    /* Two processes import into one store at once: both wait their turn. */
    GPid pids[2];
    for (int i = 0; i < 2; ++i) {
        const std::string name = i ? "b" : "a", file = dir.file (name + ".ics");
        std::string ics = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
        for (int k = 0; k < 3000; ++k)
            ics += "BEGIN:VEVENT\r\nUID:" + name + std::to_string (k) + "\r\nDTSTART:20240601T100000Z\r\nSUMMARY:x\r\nEND:VEVENT\r\n";
        ics += "END:VCALENDAR\r\n";
        ASSERT_TRUE (g_file_set_contents (file.c_str (), ics.data (), ics.size (), nullptr));
        ASSERT_EQ (run ({"--db", db, "--import", file}, nullptr, &pids[i]).status, 0) << "not started";
    }
    for (GPid pid : pids) {
        int wait = 0;
        ASSERT_EQ (waitpid (pid, &wait, 0), pid);
        EXPECT_TRUE (WIFEXITED (wait) && WEXITSTATUS (wait) == 0) << "an import failed beside the other";
    }
    Status st;
    auto store = Store::open (db, &st);
    ASSERT_TRUE (store) << st.message;
    EXPECT_EQ (store->count_entries (store->calendars ()[0].id), 15 + 6000);

    /* A store in a folder nobody may write says so (root writes anywhere). */
    if (geteuid () == 0)
        return;
    const std::string ro = dir.file ("ro");
    ASSERT_EQ (g_mkdir (ro.c_str (), 0555), 0);
    ProgramRun locked = run ({"--db", ro + "/cal.db", "--list", "2024-01-01", "2024-01-02"});
    EXPECT_EQ (locked.status, 2);
    EXPECT_TRUE (contains (locked.err, "the folder '" + ro + "' is read-only")) << locked.err;
    g_chmod (ro.c_str (), 0755);
}
