/* What the list tests share: a task made from a few fields. */
#ifndef TAV_LIST_TEST_SUPPORT_H
#define TAV_LIST_TEST_SUPPORT_H

#include <calendarui.h>

namespace tav::test {

/* A new task (one reference) due on @due; @alarm is a TavCalendarAlarmCode. */
inline TavCalendarTask *new_task (const char *title, TavDate due, bool done = false, int alarm = 0)
{
    auto *task = TAV_CALENDAR_TASK (g_object_new (TAV_TYPE_CALENDAR_TASK, nullptr));
    g_object_set (task, "title", title, "start-year", due.year, "start-month", due.month, "start-day", due.day, "done",
                  done, "alarm-code", alarm, nullptr);
    return task;
}

} // namespace tav::test

#endif
