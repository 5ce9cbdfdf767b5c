#include "HostSettings.h"

#include <glib/gstdio.h>

#include <cerrno>
#include <cstdio>
#include <initializer_list>
#include <memory>

namespace tav::host {

namespace {

constexpr const char *kGroup = "calendar";

struct KeyFileDeleter {
    void operator() (GKeyFile *k) const { g_key_file_free (k); }
};
using KeyFilePtr = std::unique_ptr<GKeyFile, KeyFileDeleter>;

struct CharDeleter {
    void operator() (char *p) const { g_free (p); }
};
using CharPtr = std::unique_ptr<char, CharDeleter>;

const char *nick_of (GType type, int value)
{
    GEnumClass *klass = static_cast<GEnumClass *> (g_type_class_ref (type));
    GEnumValue *v = g_enum_get_value (klass, value);
    const char *nick = v ? v->value_nick : nullptr;
    g_type_class_unref (klass);
    return nick;
}

const char *key_of (TavCalendarSettingsPropertyID id)
{
    return nick_of (TAV_TYPE_CALENDAR_SETTINGS_PROPERTY_ID, id);
}

const char *value_nick (int value)
{
    return nick_of (TAV_TYPE_CALENDAR_SETTINGS_VALUE, value);
}

/* One of the settings that hold an enumeration value, with the values it takes. */
struct Choice {
    TavCalendarSettingsPropertyID id;
    int Settings::*field;
    int first, last;
};

const Choice kChoices[] = {
    {SettingsFirstBoot, &Settings::first_boot, SettingsValueFirstBootYes, SettingsValueFirstBootNo},
    {SettingsDefaultView, &Settings::default_view, SettingsValueMonthView, SettingsValueAgendaView},
    {SettingsWeekStart, &Settings::week_start, SettingsValueMonday, SettingsValueSunday},
    {SettingsHideDoneTasks, &Settings::hide_done_tasks, SettingsValueNo, SettingsValueYes},
    {SettingsRemoveItems, &Settings::remove_items, SettingsValueNever, SettingsValueOneYear},
};

}  // namespace

bool Settings::operator== (const Settings &o) const
{
    return first_boot == o.first_boot && default_view == o.default_view && week_start == o.week_start && hide_done_tasks == o.hide_done_tasks
           && remove_items == o.remove_items && alarm_tone == o.alarm_tone;
}

SettingsFile::SettingsFile (std::string path) : m_path (std::move (path))
{
    if (m_path.empty ()) {
        CharPtr p (g_build_filename (g_get_user_config_dir (), "tav-calendar", "settings.ini", nullptr));
        m_path = p.get ();
    }
}

std::vector<std::string> SettingsFile::load ()
{
    values = Settings {};
    std::vector<std::string> problems;
    KeyFilePtr file (g_key_file_new ());
    GError *err = nullptr;
    if (!g_key_file_load_from_file (file.get (), m_path.c_str (), G_KEY_FILE_NONE, &err)) {
        const bool missing = g_error_matches (err, G_FILE_ERROR, G_FILE_ERROR_NOENT);
        const bool damaged = err->domain == G_KEY_FILE_ERROR;
        if (!missing && !damaged) {
            /* Unreadable, not damaged: leave it alone and run on the defaults. */
            problems.push_back (m_path + ": cannot be read (" + err->message + "); using the default settings");
        } else if (damaged) {
            problems.push_back (m_path + ": damaged (" + err->message + "); using the default settings");
        }
        g_error_free (err);
        if (!damaged) {
            return problems;
        }
    } else {
        Settings defaults;
        /* Settings were kept before: this is not the first start. */
        values.first_boot = SettingsValueFirstBootNo;
        for (const Choice &c : kChoices) {
            const char *key = key_of (c.id);
            if (!g_key_file_has_key (file.get (), kGroup, key, nullptr)) {
                continue;
            }
            CharPtr text (g_key_file_get_string (file.get (), kGroup, key, nullptr));
            int value = -1;
            for (int v = c.first; text && v <= c.last; ++v) {
                if (g_strcmp0 (value_nick (v), text.get ()) == 0) {
                    value = v;
                }
            }
            if (value < 0) {
                problems.push_back (m_path + ": " + key + "=" + (text ? text.get () : "(not text)")
                                    + " is not a valid value; using " + value_nick (defaults.*c.field));
                continue;
            }
            values.*c.field = value;
        }
        const char *tone_key = key_of (SettingsCalendarAlarmTone);
        if (g_key_file_has_key (file.get (), kGroup, tone_key, nullptr)) {
            CharPtr tone (g_key_file_get_string (file.get (), kGroup, tone_key, nullptr));
            if (!tone) {
                problems.push_back (m_path + ": " + tone_key + " is not a file name; using the default tone");
            } else {
                values.alarm_tone = tone.get ();
            }
        }
        if (problems.empty ()) {
            return problems;
        }
    }
    /* Keep the damaged file for the user and put a repaired one in its place,
     * so that the damage is reported once. */
    const std::string kept = m_path + ".damaged";
    if (g_rename (m_path.c_str (), kept.c_str ()) != 0) {
        problems.push_back (m_path + ": cannot be replaced (" + g_strerror (errno) + ")");
        return problems;
    }
    std::string error;
    if (save (&error)) {
        problems.push_back (m_path + ": replaced; the damaged file is kept as " + kept);
    } else {
        problems.push_back (error);
    }
    return problems;
}

std::string SettingsFile::to_data () const
{
    KeyFilePtr file (g_key_file_new ());
    for (const Choice &c : kChoices) {
        g_key_file_set_string (file.get (), kGroup, key_of (c.id), value_nick (values.*c.field));
    }
    g_key_file_set_string (file.get (), kGroup, key_of (SettingsCalendarAlarmTone), values.alarm_tone.c_str ());
    g_key_file_set_comment (file.get (), nullptr, nullptr, " Settings of tav-calendar", nullptr);
    gsize length = 0;
    CharPtr data (g_key_file_to_data (file.get (), &length, nullptr));
    return std::string (data.get (), length);
}

bool SettingsFile::save (std::string *error) const
{
    CharPtr dir (g_path_get_dirname (m_path.c_str ()));
    if (g_mkdir_with_parents (dir.get (), 0700) != 0) {
        if (error) {
            *error = std::string ("cannot save the settings: cannot create ") + dir.get () + " (" + g_strerror (errno) + ")";
        }
        return false;
    }
    /* g_file_set_contents writes a temporary file beside the target and
     * renames it over the target: a reader sees the old file or the new one. */
    const std::string data = to_data ();
    GError *err = nullptr;
    if (!g_file_set_contents (m_path.c_str (), data.c_str (), static_cast<gssize> (data.size ()), &err)) {
        if (error) {
            *error = std::string ("cannot save the settings: ") + err->message;
        }
        g_error_free (err);
        return false;
    }
    return true;
}

namespace {

struct DialogContext {
    SettingsFile *file;
    std::function<void (const Settings &)> on_saved;
    std::function<void (GtkWidget *)> on_edit_calendars;
};

void on_settings_save_clicked_cb (GtkWidget *dialog, gpointer data)
{
    auto *context = static_cast<DialogContext *> (data);
    const Settings before = context->file->values;
    settings_from_dialog (dialog, context->file->values);
    std::string error;
    if (!context->file->save (&error)) {
        fprintf (stderr, "tav-calendar: %s\n", error.c_str ());
        tav_show_info_banner (dialog, ("Settings not saved: " + error).c_str ());
        context->file->values = before;
        return;
    }
    if (context->on_saved) {
        context->on_saved (context->file->values);
    }
    gtk_widget_destroy (dialog);
}

void on_settings_edit_clicked_cb (GtkWidget *dialog, gpointer data)
{
    auto *context = static_cast<DialogContext *> (data);
    if (context->on_edit_calendars) {
        context->on_edit_calendars (dialog);
    }
}

}  // namespace

GtkWidget *open_settings_dialog (SettingsFile &file, int visible_calendars, GtkWindow *parent,
                                 std::function<void (const Settings &)> on_saved,
                                 std::function<void (GtkWidget *)> on_edit_calendars)
{
    GtkWidget *dialog = tav_calendar_settings_dialog_new ();
    if (parent) {
        gtk_window_set_transient_for (GTK_WINDOW (dialog), parent);
    }
    settings_to_dialog (file.values, dialog);
    g_object_set (dialog, "num-visible-calendars", visible_calendars, nullptr);
    auto *context = new DialogContext {&file, std::move (on_saved), std::move (on_edit_calendars)};
    g_signal_connect_data (dialog, "save-clicked", G_CALLBACK (on_settings_save_clicked_cb), context,
                           [] (gpointer data, GClosure *) { delete static_cast<DialogContext *> (data); },
                           GConnectFlags (0));
    g_signal_connect (dialog, "edit-clicked", G_CALLBACK (on_settings_edit_clicked_cb), context);
    return dialog;
}

void settings_to_dialog (const Settings &values, GtkWidget *dialog)
{
    TavCalendarSettingsDialog *d = TAV_CALENDAR_SETTINGS_DIALOG (dialog);
    tav_calendar_settings_dialog_set_values (d, SettingsWeekStart, values.week_start, SettingsRemoveItems,
                                             values.remove_items, SettingsHideDoneTasks, values.hide_done_tasks, -1);
    g_object_set (dialog, "alarm-tone", values.alarm_tone.empty () ? nullptr : values.alarm_tone.c_str (), nullptr);
}

void settings_from_dialog (GtkWidget *dialog, Settings &values)
{
    tav_calendar_settings_dialog_get_values (TAV_CALENDAR_SETTINGS_DIALOG (dialog), SettingsWeekStart,
                                             &values.week_start, SettingsRemoveItems, &values.remove_items,
                                             SettingsHideDoneTasks, &values.hide_done_tasks, -1);
    char *tone = nullptr;
    g_object_get (dialog, "alarm-tone", &tone, nullptr);
    values.alarm_tone = tone ? tone : "";
    g_free (tone);
}

}  // namespace tav::host
