/* Drives an editor (event, task or note) the way a person does: taps on its buttons and
 * picker rows, keys into its entries (XTest through the X server). */
#ifndef TAV_TEST_EDITOR_DRIVER_H
#define TAV_TEST_EDITOR_DRIVER_H

#include <calendarui.h>

#include <string>
#include <vector>

namespace tav::test {

class EditorDriver {
public:
    /* Shows @window tall enough for every row and records its signals
     * @signal_names (each carrying one entry, task or note). */
    explicit EditorDriver (GtkWidget *window,
                           std::initializer_list<const char *> signal_names = {"entry-created", "entry-saved",
                                                                                "deleting-entry"});
    ~EditorDriver ();

    GtkWidget *window () const { return m_window; }
    bool alive () const { return m_window != nullptr; }
    /* The field named @name ("title-entry", ...) and a picker's value. */
    GtkWidget *field (const char *name) const;
    std::string value (const char *name) const { return value_of (m_window, name); }
    static std::string value_of (GtkWidget *window, const char *name);
    /* The widget named @name inside @window, shown or not. */
    static GtkWidget *find (GtkWidget *window, const char *name);

    void tap (const char *name);
    /* Taps into the entry, moves to its end and types @text. */
    void type (const char *name, const char *text);
    void key (guint keyval);
    /* Taps the row showing @row_text in a one-column picker; false when
     * there is none. */
    bool choose (const char *name, const std::string &row_text);
    /* The rows a one-column picker offers now. */
    std::vector<std::string> rows (const char *name) const;
    /* Opens a picker of several columns, selects @rows and taps Done. */
    void choose_columns (const char *name, std::initializer_list<int> rows);
    void choose_time (const char *name, int hour, int minute) { choose_columns (name, {hour, minute}); }
    void choose_date (const char *name, const TavDate &d)
    {
        choose_columns (name, {d.day - 1, d.month, d.year - 1970});
    }
    void save () { tap ("save-button"); }
    /* Taps Save; true when the editor then closed. */
    bool save_and_close ()
    {
        save ();
        return run_until_closed ();
    }
    bool run_until_closed ();

    /* The next confirmation the editor asks is answered OK (@ok) or Cancel
     * with a tap; its question lands in @asked. */
    void answer_next_note (bool ok);
    std::string asked;

    /* Texts of the banners now on screen. */
    static std::vector<std::string> banners ();
    static void clear_banners ();
    bool has_banner (const char *text) const;

    /* Signals of the editor, in order, with the entries they carried. */
    std::vector<std::string> signals;
    std::vector<TavCalendarEntry *> signal_entries;
    /* "signal:title" of each, the title as it was at the emission. */
    std::vector<std::string> signal_titles;
    std::vector<std::string> errors;

private:
    GtkWidget *open_picker (const char *name);
    void close_picker (GtkWidget *button, GtkWidget *dialog, bool press_done);

    GtkWidget *m_window;
    bool m_answer_ok = false;
    guint m_answer_source = 0;
};

/* A date @days from today. */
TavDate day_from_today (int days);

} // namespace tav::test

#endif
