#include "BusyMonth.h"

#include <random>

namespace tav::test {

namespace {

const char *const kTimedTitles[] = {
    "Team meeting", "Dentist", "Lunch with Sara", "Gym", "Call Mum", "Project review", "Piano lesson",
    "Standup", "Car service", "Coffee with Tom", "Budget planning", "Yoga", "Parents' evening",
    "Interview", "Haircut", "Book club", "Dinner at Luigi's", "Flight LH 1234", "Swimming", "Doctor",
};
const char *const kAllDayTitles[] = {
    "Public holiday", "Mum's visit", "Office closed", "Recycling day", "Pay day", "School trip",
};
const char *const kMultiDayTitles[] = {
    "Conference in Berlin", "Holiday in Crete", "Ski trip", "Grandparents here", "Training course",
    "Hackathon", "Festival",
};
const char *const kTaskTitles[] = { "Pay rent", "Renew passport", "Send invoice", "Buy present", "File taxes" };
const char *const kBirthdayTitles[] = { "Anna", "Ben", "Carla", "David", "Elif", "Farid", "Greta" };

template <size_t N>
const char *pick (std::mt19937 &random, const char *const (&list)[N])
{
    return list[random () % N];
}

TavTimestamp stamp (const TavDate &date, int hour, int minute)
{
    return { date, { hour, minute } };
}

} // namespace

void
fill_busy_month (TavMemorySource *source, int year, int month, int count, unsigned seed)
{
    std::mt19937 random (seed);
    TavCalendarProcessor *processor = tav_calendar_processor_new ();
    const int length = tav_calendar_processor_month_length (processor, year, (guint) month);
    auto day_in_month = [&] {
        return TavDate { year, month, 1 + (int) (random () % (guint) length) };
    };
    for (int i = 0; i < count; i++) {
        const unsigned kind = random () % 100;
        TavDate day = day_in_month ();
        TavCalendarEntry *entry = NULL;
        if (kind < 45) {
            const int hour = 7 + (int) (random () % 13), minute = (int) (random () % 4) * 15;
            TavTimestamp start = stamp (day, hour, minute), end = stamp (day, hour + 1, minute);
            entry = tav_memory_source_add_event (source, pick (random, kTimedTitles), &start, &end);
        } else if (kind < 57) {
            TavTimestamp start = stamp (day, 0, 0);
            entry = tav_memory_source_add_event (source, pick (random, kAllDayTitles), &start, &start);
            g_object_set (entry, "all-day", TRUE, NULL);
        } else if (kind < 69) {
            TavTimestamp start = stamp (day, 9, 0);
            TavDate last = day;
            tav_calendar_processor_inc_date_by_days (processor, &last, 1 + (int) (random () % 4));
            TavTimestamp end = stamp (last, 17, 0);
            entry = tav_memory_source_add_event (source, pick (random, kMultiDayTitles), &start, &end);
        } else if (kind < 79) {
            /* Repeating from an earlier month. */
            TavDate first = day;
            tav_calendar_processor_dec_date_by_days (processor, &first, 35 + (int) (random () % 300));
            const int hour = 8 + (int) (random () % 10);
            TavTimestamp start = stamp (first, hour, 30), end = stamp (first, hour + 1, 0);
            entry = tav_memory_source_add_event (source, pick (random, kTimedTitles), &start, &end);
            const int repeat = (random () % 10 == 0) ? TavCalendarRepeatsEveryDay : TavCalendarRepeatsEveryWeek;
            g_object_set (entry, "repeat-code", repeat, NULL);
        } else if (kind < 90) {
            entry = TAV_CALENDAR_ENTRY (g_object_new (TAV_TYPE_CALENDAR_TASK, NULL));
            TavTime nine { 9, 0 };
            g_object_set (entry, "title", pick (random, kTaskTitles), "start-date", &day, "end-date", &day,
                          "start-time", &nine, "end-time", &nine, NULL);
            tav_memory_source_add (source, entry);
            g_object_unref (entry);
        } else {
            TavTimestamp start = stamp (day, 0, 0);
            entry = tav_memory_source_add_event (source, pick (random, kBirthdayTitles), &start, &start);
            g_object_set (entry, "all-day", TRUE, "has-birthday", TRUE, NULL);
        }
        g_object_set (entry, "color", (int) (random () % 10), NULL);
    }
    g_object_unref (processor);
}

} // namespace tav::test
