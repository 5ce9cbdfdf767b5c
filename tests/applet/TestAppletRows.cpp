/* The home applet's choice of rows, without a display: which instances are
 * shown in which order at a given moment, their time texts, the moment the
 * timer is set for, and the fast day arithmetic against the processor. */
#include "TestSupport.h"
#include "TavHomeAppletPrivate.h"
#include "TavCalendarProcessor.h"
#include "TavGPtr.h"

#include <string>
#include <vector>

using namespace tav::applet;

namespace {

/* Monday 9 March 2009. */
constexpr int kYear = 2009, kMarch = 2;

LocalSeconds at (int day, int hour, int minute = 0)
{
    return local_seconds ({ { kYear, kMarch, day }, { hour, minute } });
}

AppletInstance timed (const char *title, LocalSeconds start, LocalSeconds end)
{
    AppletInstance i;
    i.title = title;
    i.start = start;
    i.end = end;
    i.kind = InstanceKind::Timed;
    return i;
}

AppletInstance whole (const char *title, int first_day, int last_day, InstanceKind kind = InstanceKind::AllDay,
                      bool done = false)
{
    AppletInstance i;
    i.title = title;
    i.start = at (first_day, 0);
    i.end = at (last_day + 1, 0);
    i.kind = kind;
    i.done = done;
    return i;
}

std::string titles (const std::vector<const AppletInstance *> &rows)
{
    std::string out;
    for (const AppletInstance *i : rows)
        out += (out.empty () ? "" : " ") + i->title;
    return out;
}

} // namespace

TEST (AppletRows, InProgressFirstThenDayByDayWithTheDoneAndThePastLeftOut)
{
    std::vector<AppletInstance> all = {
        timed ("Standup", at (9, 9), at (9, 11)),
        timed ("Early", at (9, 10), at (9, 10, 30)),       /* over at 10:30 */
        timed ("Lunch", at (9, 14), at (9, 15)),
        whole ("Holiday", 9, 9),
        whole ("Report", 9, 9, InstanceKind::Task),
        whole ("Filed", 9, 9, InstanceKind::Task, true),    /* done */
        whole ("Overdue", 8, 8, InstanceKind::Task),
        whole ("Anna", 10, 10, InstanceKind::Birthday),
        timed ("Dentist", at (10, 9), at (10, 10)),
        whole ("Fair", 8, 10),                               /* began yesterday */
        timed ("Night shift", at (8, 20), at (9, 12)),       /* in progress since yesterday */
        whole ("Trip", 3, 8),                                /* ended yesterday */
        timed ("Later", at (20, 9), at (20, 10)),
    };
    const LocalSeconds now = at (9, 10, 30);
    EXPECT_EQ (titles (choose_rows (all, now, 20)),
               "Night shift Standup Fair Holiday Report Lunch Anna Dentist Later");
    EXPECT_EQ (titles (choose_rows (all, now)), "Night shift Standup Fair Holiday Report");

    /* An hour later the shift is over and Lunch is two rows nearer. */
    EXPECT_EQ (titles (choose_rows (all, at (9, 12))), "Fair Holiday Report Lunch Anna");
    /* At Lunch's start it moves to the top. */
    EXPECT_EQ (titles (choose_rows (all, at (9, 14))), "Lunch Fair Holiday Report Anna");
    /* Tomorrow: the all-day event that began before today is today's. */
    EXPECT_EQ (titles (choose_rows (all, at (10, 0))), "Fair Anna Dentist Later");
    EXPECT_EQ (titles (choose_rows ({}, now)), "");
}

TEST (AppletRows, EqualPlacesByTitleThenArrival)
{
    std::vector<AppletInstance> all = {
        timed ("b", at (9, 14), at (9, 15)),
        timed ("a", at (9, 14), at (9, 15)),
        timed ("a", at (9, 14), at (9, 16)),
    };
    for (guint i = 0; i < all.size (); ++i)
        all[i].seq = i;
    const auto rows = choose_rows (all, at (9, 8), 3);
    ASSERT_EQ (rows.size (), 3u);
    EXPECT_EQ (rows[0], &all[1]);
    EXPECT_EQ (rows[1], &all[2]);
    EXPECT_EQ (rows[2], &all[0]);

    /* The five chosen from many are the five a full sort puts first. */
    std::vector<AppletInstance> many;
    for (int i = 0; i < 500; ++i) {
        many.push_back (timed ("x", at (9 + (i * 7919) % 20, (i * 31) % 24, (i * 17) % 60), 0));
        many.back ().end = many.back ().start + 1800;
        many.back ().seq = static_cast<guint> (i);
    }
    const auto five = choose_rows (many, at (9, 10));
    const auto sorted = choose_rows (many, at (9, 10), many.size ());
    ASSERT_EQ (five.size (), 5u);
    EXPECT_TRUE (std::equal (five.begin (), five.end (), sorted.begin ()));
    for (size_t i = 1; i < sorted.size (); ++i)
        ASSERT_LE (sorted[i - 1]->start, sorted[i]->start) << i;
}

TEST (AppletRows, TimeTexts)
{
    const LocalSeconds now = at (9, 10, 30); /* a Monday */
    AppletInstance birthday = whole ("Anna", 10, 10, InstanceKind::Birthday);
    birthday.age = 40;
    struct Case {
        AppletInstance instance;
        const char *h24, *h12;
    } cases[] = {
        { timed ("a", at (9, 10), at (9, 11)), "Now", "Now" },
        { timed ("a", at (9, 14), at (9, 15)), "Today 14:00", "Today 2:00 pm" },
        { whole ("a", 9, 9, InstanceKind::Task), "Today", "Today" },
        { whole ("a", 5, 12), "Today", "Today" },
        { birthday, "Tomorrow", "Tomorrow" },
        { timed ("a", at (10, 9, 5), at (10, 10)), "Tomorrow 09:05", "Tomorrow 9:05 am" },
        { timed ("a", at (11, 0, 15), at (11, 1)), "Wednesday 00:15", "Wednesday 12:15 am" },
        { whole ("a", 15, 15), "Sunday", "Sunday" },
        { whole ("a", 16, 16), "16 Mar", "16 Mar" },
        { timed ("a", at (31, 18), at (31, 19)), "31 Mar 18:00", "31 Mar 6:00 pm" },
    };
    for (const Case &c : cases) {
        EXPECT_EQ (when_text (c.instance, now, false), c.h24) << c.h24;
        EXPECT_EQ (when_text (c.instance, now, true), c.h12) << c.h24;
    }
    EXPECT_EQ (row_title (birthday), "Anna (40)");
    birthday.age = -1;
    EXPECT_EQ (row_title (birthday), "Anna");
    EXPECT_EQ (row_title (timed ("Lunch", 0, 60)), "Lunch");
}

TEST (AppletRows, NextChangeIsTheNearestStartEndOrMidnight)
{
    const LocalSeconds now = at (9, 10, 30);
    struct Case {
        const char *label;
        std::vector<AppletInstance> instances;
        LocalSeconds expected;
    } cases[] = {
        { "nothing: midnight", {}, at (10, 0) },
        { "all-day and tasks wait for midnight",
          { whole ("a", 9, 9), whole ("t", 9, 9, InstanceKind::Task) }, at (10, 0) },
        { "a start today", { timed ("a", at (9, 14), at (9, 15)), timed ("b", at (9, 16), at (9, 17)) }, at (9, 14) },
        { "the end of one in progress before a start",
          { timed ("a", at (9, 10), at (9, 11)), timed ("b", at (9, 14), at (9, 15)) }, at (9, 11) },
        { "a start tomorrow: midnight first", { timed ("a", at (10, 9), at (10, 10)) }, at (10, 0) },
        { "starting now counts as in progress", { timed ("a", now, now + 600) }, now + 600 },
        { "over: ignored", { timed ("a", at (9, 8), at (9, 9)) }, at (10, 0) },
    };
    for (const Case &c : cases)
        EXPECT_EQ (next_change (c.instances, now), c.expected) << c.label;
}

/* The day arithmetic replaces the processor's day-by-day stepping: every
 * day of the years the calendar shows, number, weekday and the way back. */
TEST (AppletRows, CivilDaysMatchTheProcessorDayByDay)
{
    tav::GRefPtr<TavCalendarProcessor> processor = tav::adoptGRef (tav_calendar_processor_new ());
    TavDate date = { 1970, 0, 1 };
    const TavDate last = { 2037, 11, 31 };
    int64_t expected = 0;
    for (;;) {
        const int64_t day = civil_day (date);
        ASSERT_EQ (day, expected) << date.year << "-" << date.month + 1 << "-" << date.day;
        ASSERT_EQ (civil_weekday (day),
                   static_cast<int> (tav_calendar_processor_date_to_day_of_week (processor.get (), &date)));
        const TavDate back = civil_date (day);
        ASSERT_EQ (tav_date_compare (&back, &date), 0) << day;
        if (tav_date_compare (&date, &last) == 0)
            break;
        tav_calendar_processor_inc_date (processor.get (), &date);
        ++expected;
    }
    EXPECT_EQ (expected, 24836);
    const TavTimestamp before = local_timestamp (-1);
    EXPECT_EQ (before.date.year * 10000 + before.date.day * 100 + before.time.hour, 1969 * 10000 + 31 * 100 + 23);
}

TEST (AppletRows, Geometry)
{
    AppletGeometry g;
    g.width = 320;
    int x, y, w, h;
    row_rect (g, 2, &x, &y, &w, &h);
    EXPECT_EQ (std::vector<int> ({ x, y, w }),
               std::vector<int> ({ g.margin, g.margin + g.header_height + 2 * h, 320 - 2 * g.margin }));
    const int cases[][4] = { /* x, y, rows, expected */
        { 100, y + 1, 5, 2 }, { 100, y + h - 1, 5, 2 }, { 100, y + h, 5, 3 }, { 100, y, 2, -1 },
        { 100, g.margin + 2, 5, -1 }, { 2, y + 1, 5, -1 }, { 318, y + 1, 5, -1 },
    };
    for (const auto &c : cases)
        EXPECT_EQ (row_at (g, c[2], c[0], c[1]), c[3]) << c[0] << "," << c[1];
}
