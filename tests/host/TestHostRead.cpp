/* The host's answer to "database-access-read", with the real month view. */
#include "HostCalendarSet.h"
#include "HostIcs.h"
#include "HostWindow.h"
#include "HostTestUtil.h"

#include <gtk/gtk.h>

#include <functional>

using namespace tav::host;
using namespace tav::host::test;

namespace {

std::string titles_on (TavCalendar *month, int y, int m, int d)
{
    const TavDate date = {y, m - 1, d};
    GList *entries = tav_calendar_get_entries_for_day (month, &date);
    std::vector<std::string> t;
    for (GList *l = entries; l; l = l->next)
        t.push_back (tav_calendar_entry_get_title (TAV_CALENDAR_ENTRY (l->data)));
    g_list_free_full (entries, g_object_unref);
    return joined (t);
}

/* "Home" with a dated event, a weekly one with an exception, an all-day
 * trip and one from 1965; "Hidden" with one event. */
struct ReadFixture : StoreFixture {
    int64_t hidden = 0;
    std::unique_ptr<CalendarSet> set;
    int reads = 0;

    ReadFixture () : StoreFixture (calendar_named ("Home"))
    {
        hidden = add_calendar (calendar_named ("Hidden", false)).id;
        const std::string ics =
            "BEGIN:VCALENDAR\r\n"
            "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20240506T090000\r\nDTEND:20240506T100000\r\nSUMMARY:Dentist\r\nEND:VEVENT\r\n"
            "BEGIN:VEVENT\r\nUID:2\r\nDTSTART:20240101T070000\r\nDTEND:20240101T080000\r\nRRULE:FREQ=WEEKLY;BYDAY=MO\r\n"
            "EXDATE:20240513T070000\r\nSUMMARY:Gym\r\nEND:VEVENT\r\n"
            "BEGIN:VEVENT\r\nUID:3\r\nDTSTART;VALUE=DATE:20240515\r\nDTEND;VALUE=DATE:20240518\r\nSUMMARY:Trip\r\nEND:VEVENT\r\n"
            "BEGIN:VEVENT\r\nUID:4\r\nDTSTART:19650506T090000\r\nSUMMARY:Too early\r\nEND:VEVENT\r\n"
            "END:VCALENDAR\r\n";
        EXPECT_TRUE (import_ics_text (*store, calendar, ics).status.ok ());
        EntryRecord secret = event ("Secret", at (2024, 5, 6, 12), at (2024, 5, 6, 12, 30));
        secret.calendar_id = hidden;
        EXPECT_TRUE (store->add_entry (secret).ok ());
        set = std::make_unique<CalendarSet> (store);
    }
};

gboolean on_read_cb (TavCalendarView *view, gpointer data)
{
    ReadFixture *f = static_cast<ReadFixture *> (data);
    ++f->reads;
    EXPECT_FALSE (tav_calendar_view_is_frozen (view));
    const gboolean handled = answer_database_read (view, *f->set);
    EXPECT_FALSE (tav_calendar_view_is_frozen (view)) << "the read must thaw what it froze";
    return handled;
}

}  // namespace

TEST (HostRead, MonthViewIsFilledFromTheVisibleCalendars)
{
    REQUIRE_DISPLAY ();
    ReadFixture f;
    GtkWidget *window = gtk_window_new (GTK_WINDOW_TOPLEVEL);
    GtkWidget *month = tav_calendar_new ();
    gtk_widget_set_size_request (window, 800, 480);
    gtk_container_add (GTK_CONTAINER (window), month);
    g_signal_connect (month, "database-access-read", G_CALLBACK (on_read_cb), &f);
    gtk_widget_show_all (window);
    tav::test::flush_events ();
    tav_calendar_select_month (TAV_CALENDAR (month), 4, 2024);
    tav::test::flush_events ();
    EXPECT_GE (f.reads, 1);

    /* 13 May is the exception date; the trip's DTEND (18 May) is exclusive. */
    std::string days;
    for (int d : {6, 13, 16, 17, 18, 20})
        days += std::to_string (d) + "=" + titles_on (TAV_CALENDAR (month), 2024, 5, d) + " ";
    EXPECT_EQ (days, "6=Dentist,Gym 13= 16=Trip 17=Trip 18= 20=Gym ");

    /* The hidden calendar comes in once it is made visible and re-read. */
    CalendarRecord c;
    ASSERT_TRUE (f.store->find_calendar (f.hidden, &c));
    c.visible = true;
    ASSERT_TRUE (f.store->update_calendar (c).ok ());
    tav_calendar_select_month (TAV_CALENDAR (month), 5, 2024);
    tav_calendar_select_month (TAV_CALENDAR (month), 4, 2024);
    tav::test::flush_events ();
    EXPECT_EQ (titles_on (TAV_CALENDAR (month), 2024, 5, 6), "Dentist,Gym,Secret");
    gtk_widget_destroy (window);
}

TEST (HostRead, IntervalsOutsideTheShownYearsReadNothing)
{
    ReadFixture f;
    const TavDateInterval before = {{1965, 4, 1}, {1965, 4, 31}};
    EXPECT_EQ (f.set->read_interval (before), nullptr) << "1965 is kept in the store but never shown";
    EXPECT_EQ (f.store->entries_touching (at (1965, 5, 1), at (1965, 5, 31, 23, 59)).size (), 1u);
    const TavDateInterval may = {{2024, 4, 1}, {2024, 4, 31}};
    GList *entries = f.set->read_interval (may);
    EXPECT_EQ (g_list_length (entries), 3u);  /* Dentist, Gym, Trip; the hidden one stays out */
    g_list_free_full (entries, g_object_unref);
}

TEST (HostWindow, TappedWeekOfTheMonthOpensThatWeekReadFromTheStore)
{
    REQUIRE_DISPLAY ();
    ReadFixture f;
    App app;
    app.calendars = std::make_unique<CalendarSet> (f.store);
    app.focus = {2024, 4, 1};
    app.build ();
    gtk_widget_show (GTK_WIDGET (app.window));
    app.show ("month");
    tav::test::flush_events ();
    EXPECT_EQ (titles_on (TAV_CALENDAR (app.window->month_view), 2024, 5, 6), "Dentist,Gym");

    const TavDateInterval week = {{2024, 4, 27}, {2024, 5, 2}};
    g_signal_emit_by_name (app.window->month_view, "week-activated", 22, &week);
    tav::test::flush_events ();
    EXPECT_TRUE (tav_calendar_window_week_view_active (app.window));
    TavDateInterval shown;
    ASSERT_TRUE (tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (app.window->week_view), &shown));
    const TavDate inside = {2024, 4, 29};
    EXPECT_TRUE (tav_date_interval_contains (&shown, &inside));
}
