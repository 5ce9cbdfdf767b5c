/* What the agenda and day widget tests share: a list view in a shown
 * 480-pixel-wide window, the entries it was given, and its activations as
 * short strings ("entry Lunch 10", "insert 10", "edit X", "delete X",
 * "key 65364"). */
#ifndef TAV_SHOWN_LIST_VIEW_H
#define TAV_SHOWN_LIST_VIEW_H

#include "TestSupport.h"
#include "../../platform/PointerDriver.h"
#include "TavAgendaViewInternal.h"
#include "TavDayViewInternal.h"
#include "TavGPtr.h"

#include <calendarui.h>
#include <gdk/gdktestutils.h>

#include <string>
#include <vector>

namespace tav::test {

/* The rows of a list: titles, "+" the insert button, "N" the no-events
 * line, "H" a date header, each followed by a space. */
inline std::string shape (AgendaEntryList *list)
{
    std::string out;
    for (int i = 0; i < agenda_entry_list_get_n_entry (list); i++) {
        AgendaEntry *r = agenda_entry_list_get_agenda_entry (list, i);
        out += r->entry ? tav_calendar_entry_get_title (r->entry) : r->is_button ? "+" : r->start_time.hour == 23 ? "N" : "H";
        out += ' ';
    }
    return out;
}

inline std::string shape (DayEntryList *list)
{
    /* The day list sorts when it is measured. */
    GdkRectangle rect;
    if (day_entry_list_get_n_entry (list) > 0)
        day_entry_list_get_cell_rect (list, 0, &rect);
    std::string out;
    for (int i = 0; i < day_entry_list_get_n_entry (list); i++) {
        DayEntry *r = day_entry_list_get_day_entry (list, i);
        out += r->entry ? tav_calendar_entry_get_title (r->entry) : r->is_button ? "+" : r->is_no_entries ? "N" : "H";
        out += ' ';
    }
    return out;
}

template <class View> struct ShownListView {
    GtkWidget *window = nullptr;
    View *view = nullptr;
    std::vector<tav::GRefPtr<TavCalendarEntry>> entries;
    std::vector<std::string> calls;

    /* Takes @widget (floating) into the window; @area, when given, holds it
     * and goes into the window in its place. */
    explicit ShownListView (GtkWidget *widget, int height = 300, GtkWidget *area = nullptr)
    {
        view = reinterpret_cast<View *> (widget);
        if (area)
            gtk_container_add (GTK_CONTAINER (area), widget);
        window = make_test_window (480, height, area ? area : widget);
        run_main_loop_until ([&] { return widget->allocation.height == height; }, 2000);
        g_signal_connect (widget, "entry-activated", G_CALLBACK (+[] (GtkWidget *, TavCalendarEntry *e, TavDate *d,
                                                                      ShownListView *s) {
                              s->calls.push_back (std::string ("entry ") + tav_calendar_entry_get_title (e) + " " +
                                                  std::to_string (d->day));
                          }), this);
        g_signal_connect (widget, "insert-activated", G_CALLBACK (+[] (GtkWidget *, TavDate *d, ShownListView *s) {
                              s->calls.push_back ("insert " + std::to_string (d->day));
                          }), this);
        g_signal_connect (widget, "edit-entry-activated", G_CALLBACK (+[] (GtkWidget *, TavCalendarEntry *e,
                                                                           ShownListView *s) {
                              s->calls.push_back (std::string ("edit ") + tav_calendar_entry_get_title (e));
                          }), this);
        g_signal_connect (widget, "delete-entry-activated", G_CALLBACK (+[] (GtkWidget *, TavCalendarEntry *e,
                                                                             ShownListView *s) {
                              s->calls.push_back (std::string ("delete ") + tav_calendar_entry_get_title (e));
                          }), this);
        if (g_signal_lookup ("key-pressed", G_OBJECT_TYPE (widget)))
            g_signal_connect (widget, "key-pressed", G_CALLBACK (+[] (GtkWidget *, guint key, ShownListView *s) {
                                  s->calls.push_back ("key " + std::to_string (key));
                              }), this);
    }
    ~ShownListView ()
    {
        gtk_widget_destroy (window);
        flush_events ();
    }
    ShownListView (const ShownListView &) = delete;
    ShownListView &operator= (const ShownListView &) = delete;

    /* Adds @entry (transfer full) and lays the list out again. */
    TavCalendarEntry *add (TavCalendarEntry *e)
    {
        entries.push_back (tav::adoptGRef (e));
        tav_calendar_view_add_entry (TAV_CALENDAR_VIEW (view), e);
        tav_calendar_view_recalculate_entries (TAV_CALENDAR_VIEW (view));
        flush_events ();
        return e;
    }
    void key (guint keyval)
    {
        gtk_widget_grab_focus (GTK_WIDGET (view));
        gdk_test_simulate_key (GTK_WIDGET (view)->window, -1, -1, keyval, GdkModifierType (0), GDK_KEY_PRESS);
        gdk_test_simulate_key (GTK_WIDGET (view)->window, -1, -1, keyval, GdkModifierType (0), GDK_KEY_RELEASE);
        flush_events ();
    }
};

} // namespace tav::test

#endif /* TAV_SHOWN_LIST_VIEW_H */
