/* A third-party host in plain C: it drives TavCalendarWindow through the
 * public API only (the umbrella header and the exported names), answers
 * every "database-access-read" from an in-memory list, and checks what a
 * user would see: the view and date shown, the titles, the menu items, and
 * entries reaching the views after a change. */
#include <calendarui.h>

#include <stdio.h>
#include <string.h>

static int failures;

#define CHECK(cond, ...)                                                    \
    do {                                                                    \
        if (!(cond)) {                                                      \
            failures++;                                                     \
            fprintf (stderr, "%s:%d: check '%s' failed: ", __FILE__, __LINE__, #cond); \
            fprintf (stderr, __VA_ARGS__);                                  \
            fputc ('\n', stderr);                                           \
        }                                                                   \
    } while (0)

/* The host's store: entries in a list, and how often each view asked. */
static GList *store;
static int reads_month, reads_week, reads_other;
static int criticals;

static void flush (void)
{
    int i;
    for (i = 0; i < 4; i++) {
        while (gtk_events_pending ())
            gtk_main_iteration_do (FALSE);
        gdk_flush ();
        g_usleep (10000);
    }
}

static gboolean answer_read (TavCalendarView *view, gpointer window)
{
    TavCalendarWindow *w = TAV_CALENDAR_WINDOW (window);
    if (GTK_WIDGET (view) == w->month_view)
        reads_month++;
    else if (GTK_WIDGET (view) == w->week_view)
        reads_week++;
    else
        reads_other++;
    tav_calendar_view_clear_entries (view);
    tav_calendar_view_freeze (view);
    tav_calendar_view_reading_started (view);
    tav_calendar_view_add_entries (view, store);
    tav_calendar_view_thaw (view);
    tav_calendar_view_reading_finished (view);
    return TRUE;
}

/* A careless host that answers too, and lets the next handler answer again. */
static gboolean answer_read_and_pass (TavCalendarView *view, gpointer window)
{
    answer_read (view, window);
    if (GTK_WIDGET (view) == TAV_CALENDAR_WINDOW (window)->month_view)
        reads_month--;
    return FALSE;
}

static TavCalendarEntry *make_event (const char *title, int y, int m, int d, int hour)
{
    TavCalendarEntry *entry = tav_calendar_entry_new ();
    TavDate date = { y, m, d };
    TavTime start = { hour, 0 }, end = { hour + 1, 0 };
    g_object_set (entry, "title", title, "start-date", &date, "start-time", &start, "end-date", &date, "end-time",
                  &end, NULL);
    return entry;
}

static int count_on_day (TavCalendarWindow *window, int y, int m, int d, TavCalendarEntry *entry)
{
    TavDate date = { y, m, d };
    GList *entries = tav_calendar_get_entries_for_day (TAV_CALENDAR (window->month_view), &date);
    int n = 0;
    GList *l;
    for (l = entries; l; l = l->next)
        if (!entry || l->data == entry)
            n++;
    g_list_free_full (entries, g_object_unref);
    return n;
}

/* The main menu's item labelled @label (the menu is a window of its own). */
static GtkWidget *find_button (GtkWidget *widget, const char *label)
{
    if (GTK_IS_BUTTON (widget) && gtk_button_get_label (GTK_BUTTON (widget))
        && strcmp (gtk_button_get_label (GTK_BUTTON (widget)), label) == 0)
        return widget;
    if (GTK_IS_CONTAINER (widget)) {
        GList *children = gtk_container_get_children (GTK_CONTAINER (widget)), *l;
        GtkWidget *found = NULL;
        for (l = children; l && !found; l = l->next)
            found = find_button (GTK_WIDGET (l->data), label);
        g_list_free (children);
        return found;
    }
    return NULL;
}

static GtkWidget *menu_item (const char *label)
{
    GList *toplevels = gtk_window_list_toplevels (), *l;
    GtkWidget *found = NULL;
    for (l = toplevels; l && !found; l = l->next)
        if (strcmp (G_OBJECT_TYPE_NAME (l->data), "KivoAppMenu") == 0)
            found = find_button (GTK_WIDGET (l->data), label);
    g_list_free (toplevels);
    return found;
}

static gboolean item_visible (const char *label)
{
    GtkWidget *item = menu_item (label);
    return item && gtk_widget_get_visible (item);
}

static const char *title_of (GtkWidget *window)
{
    const char *title = gtk_window_get_title (GTK_WINDOW (window));
    return title ? title : "";
}

static void shown_week (TavCalendarWindow *window, TavDateInterval *week)
{
    memset (week, 0, sizeof *week);
    tav_calendar_view_get_presented_interval (TAV_CALENDAR_VIEW (window->week_view), week);
}

static gboolean stop_handler (TavCalendarWindow *window, gpointer data)
{
    (void) window;
    (*(int *) data)++;
    return TRUE;
}

static void count_critical (const gchar *domain, GLogLevelFlags level, const gchar *message, gpointer data)
{
    (void) domain;
    (void) data;
    if ((level & G_LOG_LEVEL_CRITICAL) && (strstr (message, "TAV_IS_CALENDAR_WINDOW") || strstr (message, "TAV_IS_CALENDAR_ENTRY")))
        criticals++;
    else
        g_log_default_handler (domain, level, message, data);
}

static void close_topmost (TavCalendarWindow *window)
{
    GtkWidget *top = tav_calendar_window_get_topmost_window (window);
    GdkEvent *event = gdk_event_new (GDK_DELETE);
    event->any.window = g_object_ref (top->window);
    event->any.send_event = TRUE;
    gtk_main_do_event (event);
    gdk_event_free (event);
    flush ();
}

/* A calendar whose deletions succeed: the entry leaves the host's store. */
typedef TavCalendarSource TestSource;
typedef TavCalendarSourceClass TestSourceClass;
static int deletions;

static int test_source_delete_entry (TavCalendarSource *source, TavCalendarEntry *entry)
{
    (void) source;
    deletions++;
    if (g_list_find (store, entry)) {
        store = g_list_remove (store, entry);
        g_object_unref (entry);
    }
    return CalendarNoError;
}

G_DEFINE_TYPE (TestSource, test_source, TAV_TYPE_CALENDAR_SOURCE)

static void test_source_class_init (TestSourceClass *klass)
{
    klass->delete_entry = test_source_delete_entry;
}

static void test_source_init (TestSource *source)
{
    (void) source;
}

/* Answers the confirmation note that the window runs (modally) with @data. */
static gboolean answer_note (gpointer data)
{
    GList *toplevels = gtk_window_list_toplevels (), *l;
    for (l = toplevels; l; l = l->next)
        if (strcmp (G_OBJECT_TYPE_NAME (l->data), "KivoNote") == 0 && gtk_widget_get_visible (l->data))
            gtk_dialog_response (GTK_DIALOG (l->data), GPOINTER_TO_INT (data));
    g_list_free (toplevels);
    return FALSE;
}

static TavDateSelectionWindow *date_picker (void)
{
    GList *toplevels = gtk_window_list_toplevels (), *l;
    TavDateSelectionWindow *found = NULL;
    for (l = toplevels; l; l = l->next)
        if (TAV_IS_DATE_SELECTION_WINDOW (l->data))
            found = l->data;
    g_list_free (toplevels);
    return found;
}

int main (int argc, char **argv)
{
    TavCalendarWindow *window;
    TavDateInterval week;
    TavDate date;
    TavCalendarEntry *meeting, *lunch;
    gboolean result = FALSE;
    int month = 0, year = 0, stopped = 0, before;

    if (!gtk_init_check (&argc, &argv)) {
        printf ("no display: skipped\n");
        return 77;
    }
    g_log_set_default_handler (count_critical, NULL);

    /* Month backgrounds come from the theme, relative to its directory. */
    gtk_rc_parse_string ("style \"tav-bg\" { TavCalendarWindow::monthly-bg-image-files = "
                         "{ \"january.png\", \"/elsewhere/february.png\" } }\n"
                         "class \"TavCalendarWindow\" style \"tav-bg\"\n");
    window = TAV_CALENDAR_WINDOW (tav_calendar_window_new ());
    tav_calendar_window_set_first_day_of_week (window, 1);
    g_signal_connect (window->month_view, "database-access-read", G_CALLBACK (answer_read), window);
    g_signal_connect (window->week_view, "database-access-read", G_CALLBACK (answer_read), window);
    meeting = make_event ("Meeting", 2028, 10, 14, 10);
    store = g_list_append (store, meeting);

    /* Month first, on November 2028. */
    tav_calendar_window_show_month_view (window);
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), 10, 2028);
    gtk_widget_show (GTK_WIDGET (window));
    tav_calendar_window_read_database (window);
    flush ();
    CHECK (tav_calendar_window_month_view_active (window), "month view current");
    CHECK (GTK_WIDGET (tav_calendar_window_get_current_root_view (window)) == window->month_view, "root view");
    CHECK (tav_calendar_window_get_topmost_window (window) == GTK_WIDGET (window), "topmost is the main window");
    CHECK (strcmp (title_of (GTK_WIDGET (window)), "November 2028") == 0, "title '%s'", title_of (GTK_WIDGET (window)));
    CHECK (count_on_day (window, 2028, 10, 14, meeting) == 1, "the read filled the month");
    CHECK (window->bg_file_names[0] && g_str_has_suffix (window->bg_file_names[0], "/january.png")
           && g_path_is_absolute (window->bg_file_names[0]), "January's image in the theme directory");
    CHECK (g_strcmp0 (window->bg_file_names[1], "/elsewhere/february.png") == 0 && !window->bg_file_names[2],
           "an absolute name kept, the other months without one");
    CHECK (item_visible ("Next month") && item_visible ("Previous month"), "month items shown");
    CHECK (!item_visible ("Next week") && !item_visible ("Previous week"), "week items hidden with the month");

    /* Month November 2028 -> the week of 1 November 2028. */
    tav_calendar_window_activate_week_view (window);
    flush ();
    shown_week (window, &week);
    date = (TavDate) { 2028, 10, 1 };
    CHECK (tav_calendar_window_week_view_active (window), "week view current");
    CHECK (tav_date_interval_contains (&week, &date), "week %d-%d-%d", week.start.year, week.start.month + 1,
           week.start.day);
    CHECK (tav_calendar_window_get_view_changed (window), "view changed");
    CHECK (strcmp (title_of (GTK_WIDGET (window)), "Week 44, 2028") == 0, "title '%s'", title_of (GTK_WIDGET (window)));
    CHECK (item_visible ("Next week") && !item_visible ("Next month"), "week items with the week view");

    /* A week across New Year names both years; week 1 of 2027 -> January 2027. */
    week = (TavDateInterval) { { 2026, 11, 28 }, { 2027, 0, 3 } };
    g_object_set (window->week_view, "presented-interval", &week, NULL);
    CHECK (strcmp (title_of (GTK_WIDGET (window)), "Week 53, 2026/2027") == 0, "title '%s'",
           title_of (GTK_WIDGET (window)));
    week = (TavDateInterval) { { 2027, 0, 4 }, { 2027, 0, 10 } };
    g_object_set (window->week_view, "presented-interval", &week, NULL);
    tav_calendar_window_activate_month_view (window);
    g_object_get (window->month_view, "month", &month, "year", &year, NULL);
    CHECK (month == 0 && year == 2027, "month %d/%d", month + 1, year);
    CHECK (strcmp (title_of (GTK_WIDGET (window)), "January 2027") == 0, "title '%s'", title_of (GTK_WIDGET (window)));

    /* Late December in week 1 -> week 1 of the next year. */
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), 11, 2030);
    tav_calendar_window_activate_week_view (window);
    shown_week (window, &week);
    date = (TavDate) { 2030, 11, 1 };
    CHECK (tav_date_interval_contains (&week, &date), "week of 1 Dec 2030");

    /* Limits: the last and the first month hide the step out of range. */
    tav_calendar_window_activate_month_view (window);
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), 11, 2037);
    CHECK (!item_visible ("Next month") && item_visible ("Previous month"), "December 2037");
    g_signal_emit_by_name (window, "next-month-activated", &result);
    g_object_get (window->month_view, "month", &month, "year", &year, NULL);
    CHECK (month == 11 && year == 2037, "stays on December 2037, not %d/%d", month + 1, year);
    CHECK (result == TRUE, "the next navigations answer TRUE");
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), 0, 1970);
    CHECK (item_visible ("Next month") && !item_visible ("Previous month"), "January 1970");
    g_signal_emit_by_name (window, "previous-month-activated", &result);
    CHECK (result == FALSE, "the previous navigations answer FALSE");
    week = (TavDateInterval) { { 2037, 11, 28 }, { 2038, 0, 3 } };
    tav_calendar_window_activate_week_view (window);
    g_object_set (window->week_view, "presented-interval", &week, NULL);
    CHECK (!item_visible ("Next week") && item_visible ("Previous week"), "the last week");
    tav_calendar_window_activate_agenda_view (window);
    if (window->agenda_view)
        CHECK (!item_visible ("Next week") && !item_visible ("Next month") && !item_visible ("Previous month"),
               "no navigation items with the agenda");

    /* A host handler that answers TRUE takes over the default. */
    tav_calendar_window_activate_month_view (window);
    tav_calendar_select_month (TAV_CALENDAR (window->month_view), 10, 2028);
    g_signal_connect (window, "next-month-activated", G_CALLBACK (stop_handler), &stopped);
    g_signal_emit_by_name (window, "next-month-activated", &result);
    g_object_get (window->month_view, "month", &month, NULL);
    CHECK (stopped == 1 && month == 10, "the host's handler stopped the default");

    /* Changes: with the month current a new entry re-reads the month and
     * marks the week; with the week current it is patched in place. */
    flush ();
    lunch = make_event ("Lunch", 2028, 10, 2, 12);
    store = g_list_append (store, lunch);
    before = reads_month;
    tav_calendar_window_add_entry (window, lunch);
    CHECK (reads_month == before + 1, "the month read again");
    CHECK (count_on_day (window, 2028, 10, 2, lunch) == 1, "lunch shown in the month");
    before = reads_week;
    tav_calendar_window_activate_week_view (window);
    CHECK (reads_week == before + 1, "the marked week read again on showing");
    store = g_list_remove (store, lunch);
    tav_calendar_window_remove_entry (window, lunch);
    CHECK (!tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (window->week_view), lunch), "removed from the week");
    CHECK (count_on_day (window, 2028, 10, 2, lunch) == 0, "removed from the month behind");
    before = reads_week;
    tav_calendar_window_add_entry (window, lunch);
    CHECK (reads_week == before, "the week is patched, not read");
    CHECK (tav_calendar_view_remove_entry (TAV_CALENDAR_VIEW (window->week_view), lunch), "lunch reached the week");
    before = reads_month;
    tav_calendar_window_activate_month_view (window);
    CHECK (reads_month == before + 1, "the month marked by the change read again");

    /* A read cut short is made good when the view is next shown. */
    tav_calendar_window_read_database_unfinished (window, TAV_CALENDAR_VIEW (window->week_view));
    before = reads_week;
    tav_calendar_window_activate_week_view (window);
    CHECK (reads_week == before + 1, "the unfinished week read again");
    /* Only a root view can be cut short; the day view is ignored. */
    tav_calendar_window_read_database_unfinished (window, TAV_CALENDAR_VIEW (window->day_view));
    before = reads_week;
    tav_calendar_window_activate_week_view (window);
    CHECK (reads_week == before, "nothing to read again");

    /* The week's current-time marker runs only while its window is in front. */
    {
        gboolean topmost = FALSE;
        flush ();
        g_object_get (window->week_view, "is-topmost", &topmost, NULL);
        CHECK (topmost, "the shown week is topmost");
        tav_calendar_window_show_note_view (window);
        flush ();
        g_object_get (window->week_view, "is-topmost", &topmost, NULL);
        CHECK (!topmost, "covered by the notes window");
        close_topmost (window);
    }
    tav_calendar_window_activate_month_view (window);

    /* Stacked windows: the event view is current while its window is on top. */
    tav_event_view_set_entry (TAV_EVENT_VIEW (window->event_view), meeting, NULL);
    tav_calendar_window_show_event_view (window);
    flush ();
    CHECK (tav_calendar_window_event_view_active (window), "event view current");
    CHECK (tav_calendar_window_get_topmost_window (window) != GTK_WIDGET (window), "event window on top");
    CHECK (strcmp (title_of (tav_calendar_window_get_topmost_window (window)), "Event") == 0, "event title");
    CHECK (GTK_WIDGET (tav_calendar_window_get_current_root_view (window)) == window->month_view,
           "the root view stays behind");
    g_object_set (meeting, "title", "Board meeting", NULL);
    tav_calendar_window_refresh_entry (window, meeting);
    before = reads_month;
    close_topmost (window);
    CHECK (tav_calendar_window_month_view_active (window), "month current after the close");
    CHECK (reads_month == before + 1, "an edit in the event window re-reads the month on return");
    if (window->task_view) {
        tav_calendar_window_show_task_view (window);
        flush ();
        CHECK (tav_calendar_window_task_view_active (window), "task view current");
        close_topmost (window);
        CHECK (tav_calendar_window_month_view_active (window), "month current after the tasks");
    }

    /* The event view steps through the list it was given; the menu follows. */
    {
        TavCalendarEntry *first = make_event ("First", 2028, 10, 14, 8);
        TavCalendarEntry *last = make_event ("Last", 2028, 10, 14, 18);
        GList *list = g_list_append (g_list_append (g_list_append (NULL, first), meeting), last);
        TavEventView *view = TAV_EVENT_VIEW (window->event_view);
        TavTimestamp at;
        gboolean has_prev = FALSE, has_next = FALSE;
        TavDate occurrence = { 2028, 10, 21 };
        tav_event_view_set_entry_list (view, list);
        tav_event_view_set_entry (view, meeting, &occurrence);
        tav_calendar_window_show_event_view (window);
        g_object_get (view, "has-previous", &has_prev, "has-next", &has_next, NULL);
        CHECK (has_prev && has_next, "the middle entry has both neighbours");
        CHECK (item_visible ("Previous event") && item_visible ("Next event") && item_visible ("Delete event"),
               "event menu complete");
        CHECK (tav_event_view_get_activated_timestamp (view, &at) && at.date.day == 21 && at.time.hour == 10,
               "the occurrence opened: %d at %d", at.date.day, at.time.hour);
        g_signal_emit_by_name (view, "next-entry-activated");
        CHECK (tav_event_view_get_entry (view) == last, "stepped to the last entry");
        CHECK (!item_visible ("Next event") && item_visible ("Previous event"), "no next item at the end");
        tav_calendar_window_remove_entry (window, last);
        CHECK (tav_event_view_get_entry (view) == NULL, "a removed entry leaves the event view");
        CHECK (!item_visible ("Delete event"), "nothing to delete in an empty event view");
        close_topmost (window);
        tav_event_view_set_entry_list (view, NULL);
        g_list_free (list);
        g_object_unref (first);
        g_object_unref (last);
    }

    /* Removal asks first; a refusal and a failing calendar both keep it. */
    {
        TavCalendarSource *source = tav_calendar_source_new ();
        g_object_set (meeting, "source", source, NULL);
        g_timeout_add (300, answer_note, GINT_TO_POINTER (GTK_RESPONSE_CANCEL));
        g_signal_emit_by_name (window, "remove-event-activated", meeting, &result);
        CHECK (!result && count_on_day (window, 2028, 10, 14, meeting) == 1, "cancelled: still shown");
        g_timeout_add (300, answer_note, GINT_TO_POINTER (GTK_RESPONSE_OK));
        g_signal_emit_by_name (window, "remove-event-activated", meeting, &result);
        CHECK (!result && count_on_day (window, 2028, 10, 14, meeting) == 1, "a failed deletion keeps the entry");
        g_object_set (meeting, "source", NULL, NULL);
        g_object_unref (source);
    }

    /* Jump to: a picker in the current view's mode moves that view. */
    {
        TavDateSelectionWindow *picker;
        TavDate chosen = { 2030, 4, 10 };
        int mode = -1;
        g_signal_emit_by_name (window, "jump-to-activated", &result);
        picker = date_picker ();
        CHECK (picker != NULL, "jump-to opened the date picker");
        if (picker) {
            g_object_get (picker, "mode", &mode, NULL);
            CHECK (mode == TavDateSelectionWindowModeMonth, "month mode with the month view");
            tav_date_selection_window_set_date (picker, &chosen);
            CHECK (tav_date_selection_window_get_year (picker) == 2030, "year column");
            tav_date_selection_window_activate (picker);
        }
        g_object_get (window->month_view, "month", &month, "year", &year, NULL);
        CHECK (month == 4 && year == 2030, "jumped to %d/%d", month + 1, year);
        CHECK (date_picker () == NULL, "the picker closes after the choice");

        tav_calendar_window_activate_week_view (window);
        g_signal_emit_by_name (window, "jump-to-activated", &result);
        picker = date_picker ();
        if (picker) {
            chosen = (TavDate) { 2031, 0, 1 };
            g_object_get (picker, "mode", &mode, NULL);
            CHECK (mode == TavDateSelectionWindowModeWeek, "week mode with the week view");
            tav_date_selection_window_set_date (picker, &chosen);
            tav_date_selection_window_activate (picker);
        }
        shown_week (window, &week);
        CHECK (tav_date_interval_contains (&week, &chosen), "the week of 1 January 2031, not %d-%d-%d",
               week.start.year, week.start.month + 1, week.start.day);
        g_signal_emit_by_name (window, "jump-to-today-activated", &result);
        tav_date_init_today (&date);
        shown_week (window, &week);
        CHECK (tav_date_interval_contains (&week, &date), "today's week");
        tav_calendar_window_activate_month_view (window);
        tav_calendar_select_month (TAV_CALENDAR (window->month_view), 10, 2028);
    }

    /* A careless host answering twice shows nothing twice. */
    g_signal_connect (window->month_view, "database-access-read", G_CALLBACK (answer_read_and_pass), window);
    tav_calendar_window_read_database (window);
    CHECK (count_on_day (window, 2028, 10, 14, meeting) == 1, "one meeting after two answers");

    /* Deleting from the event view: confirmed, deleted in its calendar, gone
     * from the views, and the event window closes. */
    {
        TavCalendarSource *source = g_object_new (test_source_get_type (), NULL);
        g_object_ref (meeting);
        g_object_set (meeting, "source", source, NULL);
        tav_event_view_set_entry (TAV_EVENT_VIEW (window->event_view), meeting, NULL);
        tav_calendar_window_show_event_view (window);
        flush ();
        g_timeout_add (300, answer_note, GINT_TO_POINTER (GTK_RESPONSE_OK));
        g_signal_emit_by_name (window, "remove-event-activated", meeting, &result);
        flush ();
        CHECK (result && deletions == 1, "deleted through the calendar");
        CHECK (tav_calendar_window_month_view_active (window), "back on the month");
        CHECK (count_on_day (window, 2028, 10, 14, NULL) == 0, "the month read again without it");
        g_object_set (meeting, "source", NULL, NULL);
        g_object_unref (source);
    }

    /* A host that never answers: the views stay empty, nothing breaks. */
    {
        TavCalendarWindow *silent = TAV_CALENDAR_WINDOW (tav_calendar_window_new ());
        gtk_widget_show (GTK_WIDGET (silent));
        tav_calendar_window_show_month_view (silent);
        tav_calendar_window_read_database (silent);
        tav_calendar_window_activate_week_view (silent);
        tav_calendar_window_activate_agenda_view (silent);
        tav_calendar_window_add_entry (silent, lunch);
        tav_calendar_window_activate_month_view (silent);
        flush ();
        CHECK (tav_calendar_window_month_view_active (silent), "the silent window works");
        gtk_widget_destroy (GTK_WIDGET (silent));
    }

    /* Bad input: a critical naming the check, nothing changed. Criticals
     * are fatal elsewhere in the suite; here they are expected. */
    GLogLevelFlags fatal = g_log_set_always_fatal ((GLogLevelFlags) G_LOG_FATAL_MASK);
    tav_calendar_window_add_entry (NULL, lunch);
    tav_calendar_window_add_entry (window, NULL);
    tav_calendar_window_show_week_view ((TavCalendarWindow *) lunch);
    g_log_set_always_fatal (fatal);
    CHECK (criticals == 3, "%d criticals", criticals);
    CHECK (tav_calendar_window_month_view_active (window), "still the month");

    /* A second dispose is harmless (destroying drops GTK's reference). */
    g_object_ref (window);
    g_object_run_dispose (G_OBJECT (window));
    g_object_run_dispose (G_OBJECT (window));
    g_object_unref (window);
    g_list_free_full (store, g_object_unref);
    g_object_unref (lunch);
    g_object_unref (meeting);
    printf ("%s\n", failures ? "FAILED" : "ok");
    return failures ? 1 : 0;
}
