/* Driving the task and note editors as a person would: taps on their
 * buttons, typing into the focused field, answering the question Delete
 * asks, choosing a calendar in the picker. */
#ifndef TAV_TEST_EDITOR_DRIVER_H
#define TAV_TEST_EDITOR_DRIVER_H

#include <calendarui.h>

#include <string>
#include <vector>

namespace tav::test {

/* The widget named @name inside @root (the editors name their fields). */
GtkWidget *find_named (GtkWidget *root, const char *name);

/* Shows @dialog at 800x480 in the screen's corner and waits until it is
 * drawn. */
void show_editor (GtkWidget *dialog);

/* A tap in the middle of the widget named @name; false when it is missing
 * or not on screen. */
bool tap_named (GtkWidget *dialog, const char *name);

/* Types @text, key by key, into the focused widget of @dialog. */
void type_text (GtkWidget *dialog, const std::string &text);

/* Presses and releases one key (a keyval such as GDK_End). */
void press_key (GtkWidget *dialog, guint keyval);

/* Arranges for the next confirmation @dialog opens over itself to be
 * answered with a tap on OK (@ok) or Cancel; *@question receives its text. */
void answer_next_question (GtkWidget *dialog, bool ok, std::string *question);

/* Opens the calendar picker with a tap and taps the row titled @title;
 * false when there is no such row. */
bool pick_calendar (GtkWidget *dialog, const char *title);

/* Records the editors' signals in order, as "signal:title". */
struct SignalLog {
    std::vector<std::string> lines;
    void watch (GtkWidget *dialog, const char *const *signals);
    std::string joined () const;
};

/* True once @widget was destroyed (watch it before it can be). */
struct DestroyWatch {
    bool destroyed = false;
    explicit DestroyWatch (GtkWidget *widget);
};

}  // namespace tav::test

#endif
