/* The event editor over the host's real SQLite store, driven with taps and
 * keys the way tav-calendar --new-event and --edit-event open it. */

#include "../platform/PointerDriver.h"
#include "EditorDriver.h"
#include "HostEditor.h"
#include "../host/HostTestUtil.h"

using namespace tav::host;
using namespace tav::host::test;
using tav::test::EditorDriver;

namespace {

struct HostEditorFixture : StoreFixture {
    int64_t work = 0;
    std::unique_ptr<CalendarSet> set;

    HostEditorFixture () : StoreFixture (calendar_named ("Home"))
    {
        work = add_calendar (calendar_named ("Work")).id;
        EntryRecord weekly = event ("yoga", at (2030, 3, 4, 18), at (2030, 3, 4, 19));
        weekly.uid = "weekly-1";
        weekly.rrule = "FREQ=WEEKLY";
        weekly.repeat_code = TavCalendarRepeatsEveryWeek;
        EXPECT_TRUE (store->add_entry (weekly).ok ());
        set = std::make_unique<CalendarSet> (store);
    }

    std::vector<EntryRecord> events () { return store->entries_of_kind (EntryKind::Event, false); }
};

}  // namespace

TEST (EventWindowHost, CreatesAndMovesInTheStore)
{
    REQUIRE_XTEST ();
    HostEditorFixture f;
    const TavDate day = {2030, 4, 20};
    {
        EditorDriver ed (open_event_editor (*f.set, &day, nullptr));
        ed.type ("title-entry", "dentist");
        ed.choose_time ("start-time-button", 8, 30);
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.signals, std::vector<std::string> {"entry-created"});
    }
    std::vector<EntryRecord> stored = f.events ();
    ASSERT_EQ (stored.size (), 2u);
    const EntryRecord &created = stored[0].title == "dentist" ? stored[0] : stored[1];
    EXPECT_EQ (created.title, "dentist");
    EXPECT_EQ (created.calendar_id, f.calendar);
    EXPECT_EQ (created.start, at (2030, 5, 20, 8, 30));
    EXPECT_EQ (created.end, at (2030, 5, 20, 9, 30));
    EXPECT_FALSE (created.repeats ());

    /* The weekly event, renamed and moved to Work: created there with its
     * rule and start, gone from Home. (Saving in place is the same road as
     * in the in-memory tests.) */
    {
        TavCalendarEntry *entry = find_event (*f.set, "weekly-1");
        ASSERT_NE (entry, nullptr);
        EditorDriver ed (open_event_editor (*f.set, nullptr, entry));
        g_object_unref (entry);
        EXPECT_EQ (ed.value ("repeat-button"), tav_calendar_repeat_to_string (TavCalendarRepeatsEveryWeek));
        EXPECT_EQ (ed.value ("until-button"), "Forever");
        ed.type ("title-entry", " class");
        ed.choose_date ("start-date-button", TavDate {2030, 2, 5});
        EXPECT_EQ (ed.value ("until-button"), "Forever") << "moving the start keeps a rule without end";
        ASSERT_TRUE (ed.choose ("calendar-button", "Work"));
        ASSERT_TRUE (ed.save_and_close ());
        EXPECT_EQ (ed.signals, (std::vector<std::string> {"entry-created", "deleting-entry"}));
    }
    EXPECT_FALSE (f.store->find_entry_by_uid (f.calendar, "weekly-1", nullptr));
    std::vector<EntryRecord> at_work = f.store->entries_of_calendar (f.work);
    ASSERT_EQ (at_work.size (), 1u);
    EXPECT_EQ (at_work[0].title, "yoga class");
    EXPECT_EQ (at_work[0].start, at (2030, 3, 5, 18));
    EXPECT_EQ (at_work[0].rrule, "FREQ=WEEKLY");
    EXPECT_EQ (at_work[0].uid, "weekly-1") << "the moved event is the same event";
    EXPECT_EQ (f.events ().size (), 2u) << "nothing doubled, nothing lost";
}
