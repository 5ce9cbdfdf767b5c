/* Logging, error messages and the small foundation helpers. */

#include "TestSupport.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "TavGPtr.h"
#include "TavHelper.h"
#include "TavIntl.h"
#include "TavLog.h"

using tav::test::LogCapture;
using tav::test::LoggedLine;
using tav::test::TempDir;

namespace {

/* Runs @body with standard output redirected to a file and returns what it
 * printed. */
std::string capture_stdout (const std::function<void ()> &body)
{
    FILE *file = tmpfile ();
    fflush (stdout);
    int saved = dup (STDOUT_FILENO);
    dup2 (fileno (file), STDOUT_FILENO);
    body ();
    fflush (stdout);
    dup2 (saved, STDOUT_FILENO);
    close (saved);
    std::string text (static_cast<size_t> (ftell (file)), '\0');
    rewind (file);
    text.resize (fread (text.data (), 1, text.size (), file));
    fclose (file);
    return text;
}

} // namespace

/* The terminal without the marker file, syslog with it; decided once. */
TEST (LogChannel, MarkerFileChoosesSyslogOnce)
{
    /* Points the log marker at @path and makes the channel be decided again. */
    auto use_marker = [] (const std::string &path) {
        g_setenv ("TAV_CALENDAR_LOG_MARKER", path.c_str (), TRUE);
        tav_log_reset_channel_for_testing ();
    };
    use_marker ("/nonexistent/logui");
    EXPECT_EQ (loggingPath (), 1);
    EXPECT_FALSE (tav_message_use_syslog ());

    TempDir dir;
    std::string marker = dir.file ("logui");
    std::ofstream (marker) << "";
    use_marker (marker);
    EXPECT_TRUE (tav_message_use_syslog ());
    EXPECT_EQ (unlink (marker.c_str ()), 0);
    EXPECT_EQ (loggingPath (), 2);
    EXPECT_TRUE (tav_message_use_syslog ());
    /* A line on the syslog channel prints nothing on the terminal. */
    std::string out = capture_stdout ([] { TAV_MESSAGE ("to syslog %d", 1); });
    use_marker ("/nonexistent/tav-calendar-logui");
    EXPECT_EQ (out, "");
}

TEST (CheckFileExists, OnlyAMissingFileIsAbsent)
{
    TempDir dir;
    std::string file = dir.file ("present");
    std::ofstream (file) << "x";
    EXPECT_TRUE (checkFileExists (file.c_str ()));
    EXPECT_TRUE (checkFileExists (dir.path ().c_str ()));
    EXPECT_FALSE (checkFileExists (dir.file ("absent").c_str ()));
    /* A path through a regular file fails with ENOTDIR, which counts as
     * existing. */
    EXPECT_TRUE (checkFileExists ((file + "/below").c_str ()));
    LogCapture capture;
    EXPECT_FALSE (checkFileExists (NULL));
    EXPECT_CRITICAL (capture, "path != NULL");
}

TEST (TerminalLog, PrefixesAndNewline)
{
    struct Row { const char *label; void (*print) (const char *, const char *, ...); const char *colour; } rows[] = {
        { "message", tav_message_print_message, "\033[1;33m" },
        { "warning", tav_message_print_warning, "\033[1;31m" },
        { "debug", tav_message_print_debug, "\033[1;32m" },
    };
    for (const auto &row : rows) {
        std::string out = capture_stdout ([&] { row.print ("some_function", "value %d and %s", 42, "text"); });
        std::string expected = std::string (row.colour) + "                   some_function()\033[0;39m: value 42 and text\n";
        EXPECT_EQ (out, expected) << row.label;
    }

    /* The macros name the caller and reach the log sink too. */
    LogCapture capture;
    std::string out = capture_stdout ([] {
        TAV_WARNING ("Unable to load '%s'", "x.png");
        TAV_MESSAGE_AS ("agenda_entry_list_create_color", "line %d", 215);
    });
    EXPECT_NE (out.find ("\033[1;31m"), std::string::npos);
    EXPECT_NE (out.find ("Unable to load 'x.png'\n"), std::string::npos);
    EXPECT_NE (out.find ("agenda_entry_list_create_color()"), std::string::npos);
    EXPECT_TRUE (capture.has_warning ("Unable to load 'x.png'"));
    EXPECT_EQ (capture.count_lines_from (LoggedLine::LibMessage, "agenda_entry_list_create_color"), 1);
}

TEST (ErrorString, EachCodeGivesItsEnglishMessage)
{
    struct Row { CalendarUiErrorCode code; const char *domain, *msgid; } rows[] = {
        { CalendarDiskFullError, "devwatch", "cerm_device_memory_full" },
        { CalendarInvalidIcsComponent, "calendar", "cal_ni_ical_invalid" }, { CalendarImportIncomplete, "calendar", "cal_ni_ical_invalid" },
        { CalendarInvalidIcsFile, "calendar", "cal_ni_ical_invalid" }, { CalendarAlreadyExists, "calendar", "cal_ib_title_exists" },
        /* Every other code, and a value past the enumeration (still one the
         * type can hold, so the sanitizer build stays defined). */
        { CalendarNoError, "calendar", "cal_ni_internal_error" }, { (CalendarUiErrorCode) 12, "calendar", "cal_ni_internal_error" },
    };
    for (const auto &row : rows) {
        LogCapture capture;
        tav::GCharPtr text (tav_calendar_get_error_string (row.code));
        ASSERT_TRUE (text) << row.code;
        tav::GCharPtr expected (g_strdup_printf (tav_intl_fallback (row.domain, row.msgid, 1), ""));
        EXPECT_STREQ (text.get (), expected.get ()) << row.code;
        EXPECT_EQ (strstr (text.get (), "_"), nullptr) << "raw message ID: " << text.get ();
        EXPECT_TRUE (capture.has_message ("error is.. " + std::to_string ((int) row.code))) << capture.dump ();
    }
}

namespace {

/* An object with one boolean signal collected by the accumulator. */
struct AccumulatorProbe { GObject parent; };
struct AccumulatorProbeClass { GObjectClass parent_class; };
G_DEFINE_TYPE (AccumulatorProbe, accumulator_probe, G_TYPE_OBJECT)
guint s_probe_signal;
int s_probe_calls;
void accumulator_probe_init (AccumulatorProbe *) {}
void accumulator_probe_class_init (AccumulatorProbeClass *klass)
{
    s_probe_signal = g_signal_new ("probe", G_TYPE_FROM_CLASS (klass), G_SIGNAL_RUN_LAST, 0,
                                   tav_boolean_handled_accumulator, nullptr, nullptr, G_TYPE_BOOLEAN, 0);
}
gboolean probe_handler (GObject *, gpointer value)
{
    s_probe_calls++;
    return GPOINTER_TO_INT (value);
}

} // namespace

TEST (BooleanAccumulator, FirstTrueStopsTheEmission)
{
    struct { const char *label; std::vector<gboolean> handlers; gboolean result; int calls; } rows[] = {
        { "none handle", { FALSE, FALSE }, FALSE, 2 },
        { "second handles", { FALSE, TRUE, FALSE }, TRUE, 2 },
        { "first handles", { TRUE, TRUE }, TRUE, 1 },
    };
    for (const auto &row : rows) {
        auto probe = tav::adoptGRef (G_OBJECT (g_object_new (accumulator_probe_get_type (), nullptr)));
        for (gboolean value : row.handlers)
            g_signal_connect (probe.get (), "probe", G_CALLBACK (probe_handler), GINT_TO_POINTER (value));
        s_probe_calls = 0;
        gboolean result = FALSE;
        g_signal_emit (probe.get (), s_probe_signal, 0, &result);
        EXPECT_EQ (result, row.result) << row.label;
        EXPECT_EQ (s_probe_calls, row.calls) << row.label;
    }
}

TEST (Strings, CompareUtf8IgnoresCaseAndCapitalizeTouchesOneAsciiByte)
{
    EXPECT_EQ (tav_compare_utf8_strings ("Meeting", "mEETING"), 0);
    EXPECT_EQ (tav_compare_utf8_strings ("ÄRGER", "ärger"), 0);
    EXPECT_LT (tav_compare_utf8_strings ("apple", "Banana"), 0);
    EXPECT_GT (tav_compare_utf8_strings ("Zebra", "apple"), 0);

    LogCapture capture;
    EXPECT_EQ (tav_compare_utf8_strings (nullptr, "a"), -1);
    EXPECT_EQ (tav_compare_utf8_strings ("a", nullptr), -1);
    EXPECT_CRITICAL (capture, "str1 != NULL");
    EXPECT_CRITICAL (capture, "str2 != NULL");

    char word[] = "monday";
    EXPECT_EQ (tav_str_capitalize (word), word);
    EXPECT_STREQ (word, "Monday");
    char accented[] = "élan";
    EXPECT_STREQ (tav_str_capitalize (accented), "élan");
    EXPECT_EQ (tav_str_capitalize (nullptr), nullptr);
}

/* Both the right and the bottom edge count as inside. */
TEST (Geometry, RectangleEdgesAreInsideAndRequisitionsCompareBothSides)
{
    GdkRectangle r = { 10, 20, 30, 40 };
    struct { int x, y; gboolean inside; } rows[] = {
        { 10, 20, TRUE }, { 40, 60, TRUE }, { 40, 20, TRUE }, { 10, 60, TRUE }, { 25, 30, TRUE },
        { 9, 30, FALSE }, { 41, 30, FALSE }, { 25, 19, FALSE }, { 25, 61, FALSE },
    };
    for (const auto &row : rows)
        EXPECT_EQ (gdk_rectangle_has_point (&r, row.x, row.y), row.inside) << row.x << "," << row.y;
    LogCapture capture;
    EXPECT_FALSE (gdk_rectangle_has_point (nullptr, 0, 0));
    EXPECT_CRITICAL (capture, "rectangle != NULL");

    GtkRequisition a = { 3, 4 }, b = { 3, 5 }, c = { 0, 0 };
    EXPECT_FALSE (tav_requisition_is_equal (&a, &b));
    tav_requisition_assign (&c, &b);
    EXPECT_TRUE (tav_requisition_is_equal (&c, &b));
}

TEST (Paths, ApplyPathJoinsAndFreesTheOldString)
{
    char *a = g_strdup ("one.png"), *b = g_strdup ("two.png");
    apply_path ("/theme", "sub", &a, &b, NULL);
    EXPECT_EQ (std::string (a) + " " + b, "/theme/sub/one.png /theme/sub/two.png");
    apply_path ("/root", nullptr, &a, NULL);
    EXPECT_STREQ (a, "/root/theme/sub/one.png");
    g_free (a);
    g_free (b);
}

TEST (PathsDeathTest, ApplyPathWithoutDirectoryAborts)
{
    char *a = g_strdup ("x");
    EXPECT_DEATH (apply_path (nullptr, nullptr, &a, NULL), "directory != NULL");
    g_free (a);
}

TEST (ThemeParser, StringArrayTakesQuotedStrings)
{
    struct Row { const char *label; const char *text; std::vector<std::string> expected; } rows[] = {
        { "two strings", "{ \"first\", \"second\" }", { "first", "second" } },
        { "unterminated dropped", "\"a\" \"b", { "a" } },
        { "empty", "", {} },
        { "utf8 inside", "\"Grün\"x\"\"", { "Grün", "" } },
    };
    for (const auto &row : rows) {
        GString *text = g_string_new (row.text);
        GValue value = G_VALUE_INIT;
        g_value_init (&value, G_TYPE_VALUE_ARRAY);
        EXPECT_TRUE (string_array_property_parser (nullptr, text, &value));
        g_string_free (text, TRUE);
        auto *array = static_cast<GValueArray *> (g_value_get_boxed (&value));
        ASSERT_NE (array, nullptr);
        std::vector<std::string> got;
        for (guint i = 0; i < array->n_values; i++)
            got.push_back (g_value_get_string (g_value_array_get_nth (array, i)));
        EXPECT_EQ (got, row.expected) << row.label;
        g_value_unset (&value);
    }
}

/* Storing 0 records the open note, 1 asks for it. */
TEST (ProcessSlots, OpenNoteIsSetWithZeroAndReadWithOne)
{
    int note = 0;
    EXPECT_EQ (calendar_set_or_get_open_note (0, &note), &note);
    EXPECT_EQ (calendar_set_or_get_open_note (1, nullptr), &note);
    calendar_set_or_get_open_note (0, nullptr);
    EXPECT_EQ (calendar_set_or_get_open_note (1, &note), nullptr);
}

TEST (ThemeLayouts, MissingStyleLeavesTheLayoutAlone)
{
    REQUIRE_DISPLAY ();
    gtk_rc_parse_string ("style \"tav-test-small\" { font_name = \"Sans 9\" }\n"
                         "widget \"TavTestSmallFont\" style \"tav-test-small\"\n");
    GtkWidget *label = GTK_WIDGET (g_object_ref_sink (gtk_label_new ("x")));
    /* "size[ bold]" of a layout's font; the layout is released. */
    auto font_of = [] (PangoLayout *layout) {
        const PangoFontDescription *font = pango_context_get_font_description (pango_layout_get_context (layout));
        std::string text = std::to_string (pango_font_description_get_size (font) / PANGO_SCALE)
                           + (pango_font_description_get_weight (font) == PANGO_WEIGHT_BOLD ? " bold" : "");
        g_object_unref (layout);
        return text;
    };
    PangoLayout *small = nullptr;
    PangoLayout *missing = reinterpret_cast<PangoLayout *> (0x1);
    LogCapture capture;
    create_pango_layout_from_theme (label, "TavTestSmallFont", &small, "NoSuchFont", &missing, NULL);
    ASSERT_NE (small, nullptr);
    EXPECT_EQ (missing, reinterpret_cast<PangoLayout *> (0x1));
    EXPECT_TRUE (capture.has_warning ("Can not find font style for 'NoSuchFont'")) << capture.dump ();
    EXPECT_EQ (font_of (small), "9");

    PangoLayout *big = nullptr;
    create_pango_layout (label, "Sans Bold 21", &big, NULL);
    ASSERT_NE (big, nullptr);
    EXPECT_EQ (font_of (big), "21 bold");
    g_object_unref (label);
}

TEST (ThemeLayoutsDeathTest, NonWidgetAborts)
{
    PangoLayout *layout = nullptr;
    EXPECT_DEATH (create_pango_layout (nullptr, "Sans 10", &layout, NULL), "GTK_IS_WIDGET");
}
