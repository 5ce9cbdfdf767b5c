#include "HostImport.h"

#include "HostCivilTime.h"

#include <calendarui.h>

#include <cstdio>
#include <memory>

namespace tav::host {

namespace {

std::string count_of (int n, const char *one, const char *many)
{
    return std::to_string (n) + " " + (n == 1 ? one : many);
}

}  // namespace

std::string import_summary (const ImportResult &result, const std::string &calendar_title)
{
    return "imported " + count_of (result.events, "event", "events") + ", " + count_of (result.tasks, "task", "tasks") +
           ", " + count_of (result.notes, "note", "notes") + " into '" + calendar_title + "'";
}

std::string import_failure (const ImportResult &result, const std::string &file)
{
    std::string message = result.status.message;
    if (result.line > 0) {
        const std::string prefix = "line " + std::to_string (result.line) + ": ";
        if (message.compare (0, prefix.size (), prefix) == 0) {
            message.erase (0, prefix.size ());
        }
        return file + ":" + std::to_string (result.line) + ": " + message + "; nothing was imported";
    }
    return file + ": " + message + "; nothing was imported";
}

namespace {

std::string base_name (const std::string &path)
{
    gchar *base = g_path_get_basename (path.c_str ());
    std::string out = base;
    g_free (base);
    return out;
}

/* One dialog's imports. Lives as long as the dialog. */
struct ImportDriver {
    GtkWidget *dialog;
    CalendarSet &calendars;
    std::function<void (const std::string &summary)> on_changed;
    int64_t slice_us;
    SliceStats *stats;
    std::unique_ptr<IcsImport> import;
    std::string file;
    std::string calendar_title;
    guint idle = 0;
    int64_t started = 0;

    TavCalendarImportDialog *view () const { return TAV_CALENDAR_IMPORT_DIALOG (dialog); }

    void stop_idle ()
    {
        if (idle) {
            g_source_remove (idle);
            idle = 0;
        }
    }

    void begin (const char *path, TavCalendarSource *target, const char *new_title)
    {
        if (import) {
            return;
        }
        file = path;
        if (stats) {
            *stats = SliceStats {};
        }
        started = g_get_monotonic_time ();
        int64_t calendar_id = 0;
        if (target) {
            calendar_id = source_calendar_id (TAV_HOST_CALENDAR_SOURCE (target));
            calendar_title = tav_calendar_source_get_title (target);
        }
        import = std::make_unique<IcsImport> (calendars.store (), calendar_id);
        if (!target) {
            CalendarRecord calendar;
            calendar.title = new_title ? new_title : "";
            calendar.color = TavCalendarColorDarkGreen;
            calendar_title = calendar.title;
            Status s = import->create_calendar (calendar);
            if (!s.ok ()) {
                import.reset ();
                const std::string message = s.code == CalendarAlreadyExists
                                                ? "A calendar named '" + calendar.title + "' already exists; choose another name."
                                                : "The calendar '" + calendar.title + "' cannot be created: " + s.message;
                tav_calendar_import_dialog_set_error (view (), message.c_str ());
                return;
            }
        }
        import->start_file (file);
        if (import->stage () != IcsImport::Stage::Running) {
            end ();
            return;
        }
        tav_calendar_import_dialog_set_progress (view (), 0, 0);
        idle = g_idle_add_full (G_PRIORITY_DEFAULT_IDLE, on_idle_cb, this, nullptr);
    }

    static gboolean on_idle_cb (gpointer data)
    {
        auto *self = static_cast<ImportDriver *> (data);
        const int64_t start = g_get_monotonic_time ();
        const bool more = self->import->run (start + self->slice_us);
        if (more) {
            tav_calendar_import_dialog_set_progress (self->view (), static_cast<guint> (self->import->done ()),
                                                     static_cast<guint> (self->import->total ()));
        } else {
            self->idle = 0;
            self->end ();
        }
        /* The whole callback counts: the main loop waits for all of it. */
        if (self->stats) {
            ++self->stats->slices;
            self->stats->longest_us = std::max (self->stats->longest_us, g_get_monotonic_time () - start);
        }
        return more;
    }

    void cancel ()
    {
        if (!import) {
            return;
        }
        stop_idle ();
        import->cancel ();
        end ();
    }

    /* The import has ended one way or another: the report. */
    void end ()
    {
        const ImportResult result = import->result ();
        const IcsImport::Stage stage = import->stage ();
        import.reset ();
        if (stats) {
            stats->total_us = g_get_monotonic_time () - started;
        }
        const std::string name = base_name (file);
        std::string said;
        if (stage == IcsImport::Stage::Cancelled) {
            tav_calendar_import_dialog_set_report (view (), FALSE, "Import cancelled; nothing was changed.",
                                                   ("Nothing from '" + name + "' was stored.").c_str ());
        } else if (!result.stored () && result.status.code == CalendarInvalidIcsFile) {
            /* Not a calendar file: back to choosing, with the reason. */
            tav_calendar_import_dialog_set_error (view (), import_failure (result, name).c_str ());
        } else if (!result.stored ()) {
            tav_calendar_import_dialog_set_report (view (), FALSE, "Nothing was imported.",
                                                   import_failure (result, name).c_str ());
        } else {
            std::string summary = import_summary (result, calendar_title);
            summary[0] = g_ascii_toupper (summary[0]);
            std::string details = name + ": " + import_summary (result, calendar_title) + "\n" + result.report ();
            if (!result.status.ok ()) {
                summary += "; " + std::to_string (result.skipped.size ()) + " skipped";
            }
            for (const std::string &w : result.warnings) {
                details += "warning: " + w + "\n";
            }
            if (!details.empty () && details.back () == '\n') {
                details.pop_back ();
            }
            said = summary + ".";
            tav_calendar_import_dialog_set_report (view (), TRUE, said.c_str (), details.c_str ());
        }
        calendars.reload ();
        if (on_changed && (result.stored () || stage == IcsImport::Stage::Cancelled)) {
            on_changed (said);
        }
    }
};

}  // namespace

void drive_import_dialog (GtkWidget *dialog, CalendarSet &calendars, std::function<void (const std::string &summary)> on_changed,
                          int64_t slice_us, SliceStats *stats)
{
    g_return_if_fail (TAV_IS_CALENDAR_IMPORT_DIALOG (dialog));
    auto *driver = new ImportDriver {dialog, calendars, std::move (on_changed), slice_us, stats, {}, {}, {}, 0, 0};
    g_signal_connect (dialog, "import-requested",
                      G_CALLBACK (+[] (GtkWidget *, const char *path, TavCalendarSource *target, const char *title,
                                       gpointer data) { static_cast<ImportDriver *> (data)->begin (path, target, title); }),
                      driver);
    g_signal_connect (dialog, "cancel-requested",
                      G_CALLBACK (+[] (GtkWidget *, gpointer data) { static_cast<ImportDriver *> (data)->cancel (); }),
                      driver);
    g_signal_connect (dialog, "destroy", G_CALLBACK (+[] (GtkWidget *, gpointer data) {
                          auto *self = static_cast<ImportDriver *> (data);
                          self->cancel ();
                          delete self;
                      }),
                      driver);
}

GtkWidget *open_import_dialog (CalendarSet &calendars, GtkWindow *parent, std::function<void (const std::string &summary)> on_changed)
{
    GtkWidget *dialog = tav_calendar_import_dialog_new ();
    TavCalendarImportDialog *d = TAV_CALENDAR_IMPORT_DIALOG (dialog);
    calendars.reload ();
    TavCalendarSource *chosen = nullptr;
    for (const CalendarRecord &c : calendars.store ().calendars ()) {
        TavCalendarSource *source = TAV_CALENDAR_SOURCE (calendars.source (c.id));
        if (source && tav_calendar_import_dialog_add_calendar (d, source) && !chosen && c.visible) {
            chosen = source;
        }
    }
    if (chosen) {
        tav_calendar_import_dialog_set_calendar (d, chosen);
    }
    if (parent) {
        gtk_window_set_transient_for (GTK_WINDOW (dialog), parent);
    }
    drive_import_dialog (dialog, calendars, std::move (on_changed));
    return dialog;
}

std::string sample_calendar_text (int events, bool with_bad)
{
    std::string out = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//tav-calendar//sample//EN\r\n";
    const int64_t first = civil_minutes (2026, 3, 1, 9, 0);
    static const char *const titles[] = {"Team meeting", "Dentist", "Lunch with Ana", "Yoga", "Project review",
                                         "Call the bank", "Piano lesson"};
    char line[160];
    for (int i = 0; i < events; ++i) {
        const CivilFields s = civil_fields (first + int64_t (i) * kMinutesPerDay + (i % 7) * 60);
        const CivilFields e = civil_fields (first + int64_t (i) * kMinutesPerDay + (i % 7) * 60 + 60);
        snprintf (line, sizeof line,
                  "BEGIN:VEVENT\r\nUID:sample-%d@tav-calendar\r\nDTSTAMP:20260101T000000Z\r\n"
                  "DTSTART:%04d%02d%02dT%02d%02d00\r\nDTEND:%04d%02d%02dT%02d%02d00\r\n",
                  i, s.year, s.month, s.day, s.hour, s.minute, e.year, e.month, e.day, e.hour, e.minute);
        out += line;
        out += std::string ("SUMMARY:") + titles[i % 7] + "\r\nEND:VEVENT\r\n";
    }
    out += "BEGIN:VTODO\r\nUID:sample-task@tav-calendar\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Renew passport\r\n"
           "DUE;VALUE=DATE:20260315\r\nEND:VTODO\r\n";
    if (with_bad) {
        out += "BEGIN:VEVENT\r\nUID:sample-bad@tav-calendar\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:No start\r\n"
               "END:VEVENT\r\n";
    }
    out += "END:VCALENDAR\r\n";
    return out;
}

}  // namespace tav::host
