/* The settings of tav-calendar, kept in a key file.
 *
 * The library stores no settings: the host keeps them in
 * $XDG_CONFIG_HOME/tav-calendar/settings.ini, one group "calendar" whose
 * keys and values are the nicks of the library's settings enumerations:
 *
 *   [calendar]
 *   firstboot=firstbootno
 *   weekstart=monday
 *   defaultview=monthview
 *   hidedonetasks=no
 *   removeitems=never
 *   calendaralarmtone=/usr/share/sounds/ui-calendar_alarm_default.aac
 *
 * A file that cannot be parsed, or a key with a wrong value, is reported
 * once: the damaged file is kept beside as settings.ini.damaged and replaced
 * by a repaired one (the defaults where the file said nothing usable).
 * Writing is atomic: a temporary file renamed over the old one.
 */
#ifndef TAV_HOST_SETTINGS_H
#define TAV_HOST_SETTINGS_H

#include <calendarui.h>

#include <functional>
#include <string>
#include <vector>

namespace tav::host {

struct Settings {
    /* SettingsValueFirstBootYes until the first-run wizard was finished; a
     * file written before the key existed counts as no. */
    int first_boot = SettingsValueFirstBootYes;
    int default_view = SettingsValueMonthView;
    int week_start = SettingsValueMonday;
    int hide_done_tasks = SettingsValueNo;
    int remove_items = SettingsValueNever;
    /* Empty: the library's default tone. */
    std::string alarm_tone;

    /* 0 (Sunday) or 1 (Monday), as the views take it. */
    int first_day_of_week () const { return week_start == SettingsValueSunday ? 0 : 1; }
    bool operator== (const Settings &o) const;
};

class SettingsFile {
public:
    /* @path: the key file; empty for $XDG_CONFIG_HOME/tav-calendar/settings.ini. */
    explicit SettingsFile (std::string path = {});

    const std::string &path () const { return m_path; }
    Settings values;

    /* Reads the file. A missing file gives the defaults silently. Problems
     * (damaged file, bad values) are returned, one line each; the file is
     * then repaired on disk so that they are reported only once. */
    std::vector<std::string> load ();
    /* Writes the values atomically, creating the directory. */
    bool save (std::string *error) const;
    /* The key file text of the values. */
    std::string to_data () const;

private:
    std::string m_path;
};

/* Opens the settings dialog over @parent (may be NULL) filled from @file.
 * On Save the dialog's values are stored in @file and written; when that
 * works @on_saved gets them and the dialog closes, when it fails the user is
 * told and the dialog stays open with the choices made. Its calendars row
 * calls @on_edit_calendars with the dialog. Returns the dialog. */
GtkWidget *open_settings_dialog (SettingsFile &file, int visible_calendars, GtkWindow *parent,
                                 std::function<void (const Settings &)> on_saved,
                                 std::function<void (GtkWidget *)> on_edit_calendars = {});

/* Fills @dialog with @values. */
void settings_to_dialog (const Settings &values, GtkWidget *dialog);
/* Takes the dialog's values into @values. */
void settings_from_dialog (GtkWidget *dialog, Settings &values);

}  // namespace tav::host

#endif
