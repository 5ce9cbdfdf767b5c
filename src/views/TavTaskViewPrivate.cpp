/* libcalendarui - the rows of the task and note lists */

#include "TavTaskViewPrivate.h"

#include <cstring>

#include "TavGPtr.h"

namespace tav::lists {

namespace {

/* A copy of @text that is valid UTF-8 (bytes that are not become U+FFFD). */
std::string valid_utf8 (const char *text)
{
    if (!text)
        return {};
    if (g_utf8_validate (text, -1, nullptr))
        return text;
    GCharPtr fixed (g_utf8_make_valid (text, -1));
    return fixed.get ();
}

std::string escaped (const std::string &text)
{
    GCharPtr out (g_markup_escape_text (text.c_str (), static_cast<gssize> (text.size ())));
    return out.get ();
}

std::string wrapped (const char *format_open, const std::string &inner)
{
    return std::string (format_open) + inner + "</span>";
}

constexpr char kDoneSpan[] = "<span strikethrough=\"true\" color=\"DarkGrey\">";
constexpr char kOpenDateSpan[] = "<span color=\"LightGrey\">";
constexpr char kNoteDateSpan[] = "<span color=\"grey\">";

} // namespace

TaskFields task_fields_read (TavCalendarTask *task)
{
    TaskFields f;
    int year = 0, month = 0, day = 1, weekday = 0;
    char *title = nullptr;
    gboolean done = FALSE, has_alarm = FALSE;
    g_object_get (task, "start-year", &year, "start-month", &month, "start-day", &day, "start-week-day", &weekday,
                  "title", &title, "done", &done, "has-alarm", &has_alarm, nullptr);
    f.date = { year, month, day };
    f.weekday = weekday;
    f.has_title = title != nullptr;
    f.title = valid_utf8 (title);
    f.done = done;
    f.has_alarm = has_alarm;
    g_free (title);
    return f;
}

std::string date_text (const TavDate &date, int weekday)
{
    /* The formatter insists on a real day; a corrupt one shows no date
     * rather than bringing the list down. */
    if (!tav_date_is_valid (&date))
        return {};
    GCharPtr text (tav_date_to_string_format (&date, TavDateNormalFormat, weekday));
    return text ? valid_utf8 (text.get ()) : std::string ();
}

RowTexts task_row_texts (const TaskFields &f)
{
    const std::string date = escaped (date_text (f.date, f.weekday));
    const std::string title = escaped (f.title);
    if (f.done)
        return { wrapped (kDoneSpan, date), wrapped (kDoneSpan, title) };
    return { wrapped (kOpenDateSpan, date), title };
}

TaskSortKey task_sort_key (const TaskFields &f)
{
    TaskSortKey key;
    key.done = f.done;
    key.date = f.date;
    key.has_title = f.has_title;
    if (f.has_title) {
        GCharPtr k (g_utf8_collate_key (f.title.c_str (), static_cast<gssize> (f.title.size ())));
        key.collate_key = k.get ();
    }
    return key;
}

namespace {

/* The steps both comparisons share: presence, done, date. */
template <typename T>
int compare_head (const T *a, const T *b, int *result)
{
    if (!a || !b) {
        *result = (a ? 1 : 0) - (b ? 1 : 0);
        return 1;
    }
    if (a->done != b->done) {
        *result = a->done ? 1 : -1;
        return 1;
    }
    if (int c = tav_date_compare (&a->date, &b->date)) {
        *result = c;
        return 1;
    }
    if (!a->has_title || !b->has_title) {
        *result = (a->has_title ? 1 : 0) - (b->has_title ? 1 : 0);
        return 1;
    }
    return 0;
}

int sign (int v)
{
    return (v > 0) - (v < 0);
}

} // namespace

int task_sort_key_compare (const TaskSortKey *a, const TaskSortKey *b)
{
    int result = 0;
    if (compare_head (a, b, &result))
        return sign (result);
    return sign (std::strcmp (a->collate_key.c_str (), b->collate_key.c_str ()));
}

int task_fields_compare (const TaskFields *a, const TaskFields *b)
{
    int result = 0;
    if (compare_head (a, b, &result))
        return sign (result);
    return sign (g_utf8_collate (a->title.c_str (), b->title.c_str ()));
}

std::string first_line_escaped (const char *text)
{
    if (!text)
        return {};
    const char *end = std::strchr (text, '\n');
    const std::string line (text, end ? static_cast<size_t> (end - text) : std::strlen (text));
    return escaped (valid_utf8 (line.c_str ()));
}

RowTexts note_row_texts (TavCalendarNote *note)
{
    int year = 0, month = 0, day = 1, weekday = 0;
    char *title = nullptr;
    g_object_get (note, "start-year", &year, "start-month", &month, "start-day", &day, "start-week-day", &weekday,
                  "title", &title, nullptr);
    const TavDate date = { year, month, day };
    RowTexts texts { wrapped (kNoteDateSpan, escaped (date_text (date, weekday))), first_line_escaped (title) };
    g_free (title);
    return texts;
}

} // namespace tav::lists
