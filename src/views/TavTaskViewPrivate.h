/* libcalendarui - the rows of the task and note lists (internal)
 *
 * What a task or note row says and where a task row goes, from the
 * entry's properties alone: no widget, so it is tested without a display.
 */
#ifndef TAV_TASK_VIEW_PRIVATE_H
#define TAV_TASK_VIEW_PRIVATE_H

#include <string>

#include "TavCalendarNote.h"
#include "TavCalendarTask.h"
#include "TavDate.h"

namespace tav::lists {

/* The properties a task row is made of. */
struct TaskFields {
    TavDate date {};
    int weekday = 0;
    bool has_title = false;
    std::string title;   /* valid UTF-8 */
    bool done = false;
    bool has_alarm = false;
};

TaskFields task_fields_read (TavCalendarTask *task);

/* "01/03/2009"-style text of @date (empty for a date that does not exist). */
std::string date_text (const TavDate &date, int weekday);

/* The markup of a task row's date and title columns. */
struct RowTexts {
    std::string date_markup;
    std::string title_markup;
};
RowTexts task_row_texts (const TaskFields &fields);

/* The order of task rows, precomputed: comparing two keys gives what
 * comparing the tasks' fields gives (open before done, earlier date
 * first, then titles by g_utf8_collate, a missing title first) without
 * collating the titles again on every comparison. */
struct TaskSortKey {
    bool done = false;
    TavDate date {};
    bool has_title = false;
    std::string collate_key;
};

TaskSortKey task_sort_key (const TaskFields &fields);
/* NULL stands for a row without a task, which comes first. */
int task_sort_key_compare (const TaskSortKey *a, const TaskSortKey *b);
/* The same order straight from the fields (the definition the keys are
 * checked against). */
int task_fields_compare (const TaskFields *a, const TaskFields *b);

/* A note row: its date in grey and its title up to the first line break. */
RowTexts note_row_texts (TavCalendarNote *note);

/* @text up to its first "\n", made valid UTF-8 and escaped for markup. */
std::string first_line_escaped (const char *text);

} // namespace tav::lists

#endif /* TAV_TASK_VIEW_PRIVATE_H */
