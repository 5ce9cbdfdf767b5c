/* libcalendarui - the calendar user interface library
 *
 * Umbrella header: a host includes this one file.
 */
#ifndef CALENDARUI_H
#define CALENDARUI_H

#include "calendarui/TavExport.h"
#include "calendarui/TavHelper.h"
#include "calendarui/TavCalendarEnums.h"
#include "calendarui/TavEnumTypes.h"
#include "calendarui/TavDate.h"
#include "calendarui/TavCalendarProcessor.h"
#include "calendarui/TavCalendarEntry.h"
#include "calendarui/TavCalendarTask.h"
#include "calendarui/TavCalendarNote.h"
#include "calendarui/TavCalendarSource.h"
#include "calendarui/TavCalendarView.h"
#include "calendarui/TavCalendar.h"
#include "calendarui/TavWeekView.h"
#include "calendarui/TavHomeApplet.h"
#include "calendarui/TavAgendaView.h"
#include "calendarui/TavDayView.h"
#include "calendarui/TavWidgetBinding.h"
#include "calendarui/TavCalendarDialog.h"
#include "calendarui/TavCalendarButton.h"
#include "calendarui/TavCalendarEventWindow.h"
#include "calendarui/TavCalendarTaskWindow.h"
#include "calendarui/TavCalendarNoteWindow.h"
#include "calendarui/TavCalendarSettingsDialog.h"
#include "calendarui/TavAlarmToneButton.h"
#include "calendarui/TavColorButton.h"
#include "calendarui/TavTaskView.h"
#include "calendarui/TavNoteView.h"
#include "calendarui/TavEventView.h"
#include "calendarui/TavDateSelectionWindow.h"
#include "calendarui/TavCalendarWindow.h"
#include "calendarui/TavCalendarImportDialog.h"
#include "calendarui/TavCalendarListDialog.h"
#include "calendarui/TavCalendarEditDialog.h"
#include "calendarui/TavCalendarBirthdayWindow.h"
#include "calendarui/TavCalendarFirstRunWizard.h"

#endif /* CALENDARUI_H */
