#include "HostDemo.h"

#include "HostCivilTime.h"
#include "HostRecurrence.h"

#include <vector>

namespace tav::host {

namespace {

struct Seeder {
    Store &store;
    int64_t today;      /* midnight */
    int64_t monday;     /* midnight of this week's Monday */
    Status status;

    int64_t calendar (const char *title, TavCalendarColor color)
    {
        CalendarRecord c;
        c.title = title;
        c.color = color;
        if (status.ok ()) {
            status = store.add_calendar (c);
        }
        return c.id;
    }

    /* @day: days from this week's Monday; @at and @len in minutes. */
    void event (int64_t cal, const char *title, int day, int at, int len, const char *rrule = "",
                const char *location = "", TavCalendarAlarmCode alarm = TavCalendarAlarmNone)
    {
        EntryRecord e;
        e.calendar_id = cal;
        e.title = title;
        e.location = location;
        e.start = monday + day * kMinutesPerDay + at;
        e.end = e.start + len;
        e.rrule = rrule;
        e.alarm_code = alarm;
        int64_t until = -1;
        e.repeat_code = repeat_code_for_rrule (e.rrule, e.start, &until);
        add (e);
    }

    void all_day (int64_t cal, const char *title, int day, int days, const char *rrule = "")
    {
        EntryRecord e;
        e.calendar_id = cal;
        e.title = title;
        e.all_day = true;
        e.start = monday + day * kMinutesPerDay;
        e.end = e.start + days * kMinutesPerDay - 1;
        e.rrule = rrule;
        int64_t until = -1;
        e.repeat_code = repeat_code_for_rrule (e.rrule, e.start, &until);
        add (e);
    }

    void birthday (int64_t cal, const char *name, int day, int born)
    {
        EntryRecord e;
        e.calendar_id = cal;
        e.title = name;
        e.all_day = true;
        e.has_birthday = true;
        e.birth_year = born;
        e.start = today + day * kMinutesPerDay;
        e.end = e.start + 1439;
        const CivilFields f = civil_fields (e.start);
        e.start = civil_minutes (born, f.month, f.day);
        e.end = e.start + 1439;
        e.rrule = "FREQ=YEARLY";
        e.repeat_code = TavCalendarRepeatsEveryYear;
        add (e);
    }

    void task (int64_t cal, const char *title, int day, bool done)
    {
        EntryRecord e;
        e.calendar_id = cal;
        e.kind = EntryKind::Task;
        e.title = title;
        e.all_day = true;
        e.start = today + day * kMinutesPerDay;
        e.end = e.start + 1439;
        e.done = done;
        add (e);
    }

    void note (int64_t cal, const char *title, const char *text, int day)
    {
        EntryRecord e;
        e.calendar_id = cal;
        e.kind = EntryKind::Note;
        e.title = title;
        e.description = text;
        e.all_day = true;
        e.start = today + day * kMinutesPerDay;
        e.end = e.start;
        add (e);
    }

    void add (EntryRecord &e)
    {
        if (status.ok ()) {
            status = store.add_entry (e);
        }
    }
};

}  // namespace

Status seed_demo (Store &store, int64_t today)
{
    today = civil_day_start (today);
    const int weekday = civil_weekday (today);  /* 0 = Sunday */
    Seeder s {store, today, today - ((weekday + 6) % 7) * kMinutesPerDay, Status::success ()};

    Store::Transaction tx (store);
    const int64_t personal = s.calendar ("Personal", TavCalendarColorDarkBlue);
    const int64_t work = s.calendar ("Work", TavCalendarColorOrange);
    const int64_t family = s.calendar ("Family", TavCalendarColorGreen);
    const int64_t sport = s.calendar ("Sport", TavCalendarColorRed);
    const int64_t birthdays = s.calendar ("Birthdays", TavCalendarColorViolet);

    /* Work: a daily stand-up, meetings that overlap, a conference. */
    s.event (work, "Stand-up", -21, 9 * 60, 15, "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR", "Room 2", TavCalendarAlarm5Min);
    s.event (work, "Project review", 1, 10 * 60, 90, "", "Room 4");
    s.event (work, "Design workshop", 1, 11 * 60, 120, "", "Lab");
    s.event (work, "Lunch with Anna", 2, 12 * 60, 60, "", "Café Central");
    s.event (work, "Budget meeting", 3, 14 * 60, 60, "", "", TavCalendarAlarm15Min);
    s.event (work, "Interview", 3, 14 * 60 + 30, 60);
    s.event (work, "Release planning", -6, 13 * 60, 90);
    s.event (work, "Customer call", -3, 16 * 60, 30);
    s.event (work, "Team retrospective", 8, 15 * 60, 60, "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU");
    s.all_day (work, "Conference in Lyon", 9, 3);
    s.event (work, "Quarterly report due", 18, 17 * 60, 0);
    s.event (work, "Night deployment", 11, 22 * 60, 240);

    /* Personal. */
    s.event (personal, "Dentist", 4, 8 * 60 + 15, 45, "", "Dr. Berg", TavCalendarAlarm1Hour);
    s.event (personal, "Piano lesson", -12, 17 * 60, 60, "FREQ=WEEKLY;BYDAY=WE");
    s.all_day (personal, "Pay rent", -40, 1, "FREQ=MONTHLY");
    s.all_day (personal, "Holiday in the mountains", 19, 6);
    s.event (personal, "Haircut", -2, 18 * 60, 30);
    s.event (personal, "Cinema: the new film", 5, 20 * 60, 150, "", "Odeon");
    s.all_day (personal, "Car service", 15, 1);

    /* Family. */
    s.event (family, "Grandma visits", 11, 18 * 60, 2 * 24 * 60 - 4 * 60);
    s.event (family, "Parents' evening", -4, 19 * 60, 90, "", "School");
    s.event (family, "Family dinner", 6, 18 * 60 + 30, 120, "FREQ=WEEKLY;BYDAY=SU");
    s.all_day (family, "School holidays", -10, 5);

    /* Sport. */
    s.event (sport, "Running", -28, 7 * 60, 60, "FREQ=WEEKLY;BYDAY=TU,TH");
    s.event (sport, "Football", -23, 10 * 60, 120, "FREQ=WEEKLY;BYDAY=SA");
    s.event (sport, "Swimming", 2, 19 * 60, 60);
    s.all_day (sport, "City marathon", 13, 1);

    /* Birthdays: yearly, kept from the year of birth. */
    s.birthday (birthdays, "Anna's birthday", 3, 1988);
    s.birthday (birthdays, "Grandpa's birthday", -8, 1941);
    s.birthday (birthdays, "Leo's birthday", 16, 2015);

    /* Tasks and notes: overdue, today's and later ones, done and open. */
    s.task (personal, "Renew passport", 6, true);
    s.task (personal, "Buy a present for Anna", 2, false);
    s.task (work, "Send the slides", -1, true);
    s.task (work, "Book the train to Lyon", 5, true);
    s.task (family, "Plan the summer trip", 14, true);
    s.task (personal, "Call the garage about the winter tyres and ask whether they can look at the brakes too", 0,
            false);
    s.task (work, "Hand in the expense report", -3, false);
    s.task (family, "Water the plants while the neighbours are away on holiday", -2, true);
    s.note (personal, "Books to read", "The Name of the Rose\nStoner\nA Gentleman in Moscow", -5);
    s.note (work, "Conference ideas", "Talk about offline sync; ask about the hotel", 1);
    s.note (family, "Gift list", "Anna: scarf\nLeo: a football", -2);
    s.note (personal, "Holiday packing list: passport, chargers, sun cream, the good camera and the spare batteries\n"
                      "Book the airport parking", "", 0);

    if (!s.status.ok ()) {
        return s.status;
    }
    return tx.commit ();
}

}  // namespace tav::host
