/* Importing calendar files in tav-calendar: the texts both the command line
 * and the import dialog report, and the driver that runs an import dialog's
 * import over the store in idle-time slices. */
#ifndef TAV_HOST_IMPORT_H
#define TAV_HOST_IMPORT_H

#include "HostCalendarSet.h"
#include "HostIcs.h"

#include <gtk/gtk.h>

#include <functional>
#include <string>

namespace tav::host {

/* "imported 3 events, 1 tasks, 0 notes into 'Personal'" */
std::string import_summary (const ImportResult &result, const std::string &calendar_title);
/* Why nothing was imported: "FILE:LINE: message; nothing was imported". */
std::string import_failure (const ImportResult &result, const std::string &file);

/* How the idle slices of one import went. */
struct SliceStats {
    int slices = 0;
    int64_t longest_us = 0;
    int64_t total_us = 0;  /* from the request to the report */
};

/* Runs the imports @dialog (a TavCalendarImportDialog) asks for over
 * @calendars' store: each slice works until @slice_us have passed, in an
 * idle callback, and feeds the dialog's progress; Cancel (or closing the
 * dialog) rolls the import back. @on_changed runs after an import stored
 * something (with the report's summary) or was undone (with ""), so that
 * the views read again. @stats, when
 * given, must outlive the dialog. Everything is released with the dialog. */
void drive_import_dialog (GtkWidget *dialog, CalendarSet &calendars, std::function<void (const std::string &summary)> on_changed = {},
                          int64_t slice_us = 8000, SliceStats *stats = nullptr);

/* A new import dialog listing @calendars' writable calendars (the first
 * visible one chosen), driven as above, transient for @parent; not shown. */
GtkWidget *open_import_dialog (CalendarSet &calendars, GtkWindow *parent, std::function<void (const std::string &summary)> on_changed = {});

/* An iCalendar text of @events one-hour events, one a day from 1 March
 * 2026, with a task, and (when @with_bad) one event without a start,
 * which an import skips: the screenshots' and the bench's file. */
std::string sample_calendar_text (int events, bool with_bad);

struct App;
/* Renders wizard.png, import-progress.png and import-report.png (an import
 * of a sample file into a store of its own) to @dir; 0 on success. */
int render_import (App &app, const std::string &dir);

}  // namespace tav::host

#endif
