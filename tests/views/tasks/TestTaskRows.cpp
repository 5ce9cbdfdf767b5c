/* What the task and note rows say and the order of task rows, without a
 * display: the texts, the ordering rules, and the precomputed sort keys
 * against the plain field comparison. */
#include "TestSupport.h"
#include "ListTestSupport.h"
#include "TavTaskViewPrivate.h"
#include "TavGPtr.h"

#include <random>
#include <string>
#include <vector>

using namespace tav::lists;
using tav::test::new_task;

namespace {

TaskFields fields (const char *title, TavDate due, bool done = false)
{
    TaskFields f;
    f.date = due;
    f.has_title = title != nullptr;
    f.title = title ? title : "";
    f.done = done;
    return f;
}

} // namespace

TEST (TaskRows, TextsFollowTheDoneState)
{
    struct Case {
        const char *title;
        bool done;
        int alarm;
        const char *date, *markup;
    } cases[] = {
        { "Pay rent", false, 0, "<span color=\"LightGrey\">09/03/2009</span>", "Pay rent" },
        { "Pay rent", true, 0, "<span strikethrough=\"true\" color=\"DarkGrey\">09/03/2009</span>",
          "<span strikethrough=\"true\" color=\"DarkGrey\">Pay rent</span>" },
        { "Fish & <chips>", false, 2, "<span color=\"LightGrey\">09/03/2009</span>", "Fish &amp; &lt;chips&gt;" },
    };
    for (const Case &c : cases) {
        auto task = tav::adoptGRef (new_task (c.title, { 2009, 2, 9 }, c.done, c.alarm));
        const TaskFields f = task_fields_read (task.get ());
        EXPECT_EQ (f.has_alarm, c.alarm != 0);
        EXPECT_EQ (f.weekday, 1); /* a Monday */
        const RowTexts texts = task_row_texts (f);
        EXPECT_EQ (texts.date_markup, c.date) << c.title;
        EXPECT_EQ (texts.title_markup, c.markup) << c.title;
    }
    /* A day that does not exist shows no date instead of failing. */
    EXPECT_EQ (date_text ({ 2009, 1, 30 }, 0), "");
}

TEST (TaskRows, NoteShowsItsFirstLineEscapedAndNeverDropsBadText)
{
    auto note = tav::adoptGRef (tav_calendar_note_new ());
    g_object_set (note.get (), "title", "Books & films\nStoner\nDune", "start-year", 2010, "start-month", 11,
                  "start-day", 31, nullptr);
    const RowTexts texts = note_row_texts (note.get ());
    EXPECT_EQ (texts.date_markup, "<span color=\"grey\">31/12/2010</span>");
    EXPECT_EQ (texts.title_markup, "Books &amp; films");

    EXPECT_EQ (first_line_escaped (nullptr), "");
    EXPECT_EQ (first_line_escaped ("\nsecond"), "");
    /* Bytes that are not UTF-8 are replaced, the rest of the line kept. */
    const std::string bad = first_line_escaped ("Caf\xe9 <menu>\nmore");
    EXPECT_TRUE (g_utf8_validate (bad.c_str (), -1, nullptr));
    EXPECT_EQ (bad, "Caf\xef\xbf\xbd &lt;menu&gt;");
}

TEST (TaskRows, OrderOpenBeforeDoneThenDateThenTitle)
{
    const TaskFields open_late = fields ("Zebra", { 2030, 0, 1 });
    const TaskFields done_early = fields ("Apple", { 1971, 0, 1 }, true);
    const TaskFields same_day_a = fields ("apple", { 2009, 2, 9 });
    const TaskFields same_day_b = fields ("banana", { 2009, 2, 9 });
    const TaskFields untitled = fields (nullptr, { 2009, 2, 9 });
    const TaskFields untitled2 = fields (nullptr, { 2009, 2, 9 });
    struct Case {
        const TaskFields *a, *b;
        int expected;
    } cases[] = {
        { nullptr, &open_late, -1 },   { &open_late, nullptr, 1 },   { nullptr, nullptr, 0 },
        { &open_late, &done_early, -1 }, { &done_early, &open_late, 1 }, { &same_day_a, &same_day_b, -1 },
        { &untitled, &same_day_a, -1 }, { &same_day_a, &untitled, 1 }, { &untitled, &untitled2, 0 },
        { &same_day_a, &open_late, -1 },
    };
    for (const Case &c : cases) {
        EXPECT_EQ (task_fields_compare (c.a, c.b), c.expected);
        const TaskSortKey ka = c.a ? task_sort_key (*c.a) : TaskSortKey (), kb = c.b ? task_sort_key (*c.b) : TaskSortKey ();
        EXPECT_EQ (task_sort_key_compare (c.a ? &ka : nullptr, c.b ? &kb : nullptr), c.expected);
    }
}

TEST (TaskRows, SortKeysOrderLikeTheFields)
{
    /* Titles drawn from cases that trip collation: case, accents, digits,
     * punctuation, shared prefixes, the empty title and a missing one. */
    const char *words[] = { "",      "a",       "A",    "b",   "\xc3\xa9t\xc3\xa9", "ete",  "Ete",   "10 items",
                            "9 items", "item-2", "item 2", "\xc3\x96l", "Oz",   "zz",    "\xe2\x82\xac" "5", nullptr };
    std::mt19937 rng (20260405);
    std::vector<TaskFields> all;
    for (int i = 0; i < 300; ++i) {
        const char *w = words[rng () % G_N_ELEMENTS (words)];
        std::string title = w ? w : "";
        if (w && rng () % 2)
            title += words[rng () % (G_N_ELEMENTS (words) - 1)];
        TaskFields f = fields (w ? title.c_str () : nullptr, { 2009 + static_cast<int> (rng () % 2), 2,
                                                              1 + static_cast<int> (rng () % 3) },
                               rng () % 4 == 0);
        all.push_back (f);
    }
    std::vector<TaskSortKey> keys;
    for (const TaskFields &f : all)
        keys.push_back (task_sort_key (f));
    int mismatches = 0;
    for (size_t i = 0; i < all.size (); ++i)
        for (size_t j = 0; j < all.size (); ++j)
            mismatches += task_sort_key_compare (&keys[i], &keys[j]) != task_fields_compare (&all[i], &all[j]);
    EXPECT_EQ (mismatches, 0);
}
