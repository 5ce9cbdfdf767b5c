/* Speed of the host's iCalendar import and text agenda.
 *
 *  - an iTIP mailbox of 10,000 events (2,000 of them exceptions of zoned
 *    series, 100 zones of its own) with CANCELs, REPLYs, COUNTERs, true
 *    duplicates and broken components, against a baseline file of the same
 *    number of plain UTC events; its import report is printed;
 *  - `--list` over one year of the imported store, against a baseline that
 *    reads every entry and steps every rule from its start;
 *  - a 1 MB and a 10 MB line: the time grows with the length, not its square.
 * Targets: the import within 1 s, the year's list within 100 ms. Times are
 * processor time.
 */
#include "HostAgenda.h"
#include "HostCivilTime.h"
#include "HostIcs.h"
#include "HostRecurrence.h"

#include <glib/gstdio.h>

#include <algorithm>
#include <ctime>
#include <cstdio>
#include <random>
#include <string>

using namespace tav::host;

namespace {

/* Processor time of this process: the machine is shared, and wall-clock
 * time there says more about the neighbours than about this code. */
double now_ms ()
{
    timespec ts;
    clock_gettime (CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1000.0 + ts.tv_nsec / 1e6;
}

std::string stamp (int64_t minutes, const char *suffix = "")
{
    const CivilFields f = civil_fields (minutes);
    char buf[40];
    snprintf (buf, sizeof buf, "%04d%02d%02dT%02d%02d00%s", f.year, f.month, f.day, f.hour, f.minute, suffix);
    return buf;
}

/* A zone of its own: standard offset @hours, an hour more from the last
 * Sunday of March to the last of October. */
std::string zone (int n, int hours)
{
    char buf[640];
    snprintf (buf, sizeof buf,
              "BEGIN:VTIMEZONE\r\nTZID:Bench/Zone-%d\r\nBEGIN:STANDARD\r\nDTSTART:19701025T030000\r\n"
              "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\nTZOFFSETFROM:%+03d00\r\nTZOFFSETTO:%+03d00\r\nEND:STANDARD\r\n"
              "BEGIN:DAYLIGHT\r\nDTSTART:19700329T020000\r\nRRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\n"
              "TZOFFSETFROM:%+03d00\r\nTZOFFSETTO:%+03d00\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n",
              n, hours + 1, hours, hours, hours + 1);
    return buf;
}

struct Mailbox {
    std::string text;
    int components = 0;
};

Mailbox make_mailbox (bool plain)
{
    std::mt19937 rng (12);
    Mailbox m;
    std::string &t = m.text;
    t = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\nMETHOD:REQUEST\r\n";
    if (!plain) {
        for (int z = 0; z < 100; ++z) {
            t += zone (z, -11 + z % 24);
        }
    }
    const int64_t first = civil_minutes (2025, 1, 1);
    const int masters = plain ? 10000 : 8000;
    for (int i = 0; i < masters; ++i) {
        const int64_t start = first + static_cast<int64_t> (rng () % 365) * kMinutesPerDay + (7 + rng () % 12) * 60;
        const bool series = !plain && i < 1000;
        const std::string tz = plain ? "" : ";TZID=Bench/Zone-" + std::to_string (i % 100);
        const char *z = plain ? "Z" : "";
        t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (i) + "\r\nDTSTAMP:20250101T000000Z\r\nSEQUENCE:1\r\n";
        t += "DTSTART" + tz + ":" + stamp (start, z) + "\r\nDTEND" + tz + ":" + stamp (start + 60, z) + "\r\n";
        t += "SUMMARY:Event " + std::to_string (i) + "\r\nATTENDEE;PARTSTAT=NEEDS-ACTION:mailto:a@example.org\r\n";
        if (series) {
            t += "RRULE:FREQ=WEEKLY;COUNT=20\r\n";
        }
        t += "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n";
        ++m.components;
        if (series) {
            /* Two moved instances of each series. */
            for (int k : {3, 7}) {
                const int64_t rid = start + k * 7 * kMinutesPerDay;
                t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (i) + "\r\nRECURRENCE-ID" + tz + ":" + stamp (rid) +
                     "\r\nDTSTAMP:20250102T000000Z\r\nSEQUENCE:2\r\nDTSTART" + tz + ":" + stamp (rid + 120) +
                     "\r\nDTEND" + tz + ":" + stamp (rid + 180) + "\r\nSUMMARY:Event " + std::to_string (i) +
                     " (moved)\r\nEND:VEVENT\r\n";
                m.components += 1;
            }
        }
    }
    if (!plain) {
        /* Answers and mistakes, as a mailbox has them. */
        for (int i = 0; i < 40; ++i) {
            t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (2000 + i) + "\r\nDTSTAMP:20250101T000000Z\r\nSEQUENCE:1\r\n"
                 "DTSTART:20250230T100000Z\r\nSUMMARY:broken\r\nEND:VEVENT\r\n";
            t += "BEGIN:VEVENT\r\nUID:nostart-" + std::to_string (i) + "\r\nSUMMARY:when?\r\nEND:VEVENT\r\n";
            m.components += 2;
        }
        t += "END:VCALENDAR\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:CANCEL\r\n";
        for (int i = 0; i < 200; ++i) {
            t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (3000 + i) + "\r\nDTSTAMP:20250105T000000Z\r\nSEQUENCE:2\r\n"
                 "END:VEVENT\r\n";
            ++m.components;
        }
        t += "END:VCALENDAR\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:REPLY\r\n";
        for (int i = 0; i < 300; ++i) {
            t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (4000 + i) + "\r\nDTSTAMP:20250106T000000Z\r\n"
                 "ATTENDEE;PARTSTAT=ACCEPTED:mailto:a@example.org\r\nEND:VEVENT\r\n";
            ++m.components;
        }
        t += "END:VCALENDAR\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:COUNTER\r\n";
        for (int i = 0; i < 20; ++i) {
            t += "BEGIN:VEVENT\r\nUID:ev-" + std::to_string (5000 + i) + "\r\nDTSTAMP:20250107T000000Z\r\n"
                 "DTSTART:20250601T100000Z\r\nEND:VEVENT\r\n";
            ++m.components;
        }
    }
    t += "END:VCALENDAR\r\n";
    return m;
}

std::unique_ptr<Store> fresh_store (const std::string &path, int64_t *calendar)
{
    Status st;
    auto store = Store::open (path, &st);
    CalendarRecord c;
    c.title = "Bench";
    store->add_calendar (c);
    *calendar = c.id;
    return store;
}

}  // namespace

int main ()
{
    g_setenv ("TZ", "Europe/Berlin", TRUE);
    tzset ();
    gchar *dir = g_dir_make_tmp ("tav-bench-import-XXXXXX", nullptr);
    const std::string base = dir;

    const Mailbox mailbox = make_mailbox (false), plain = make_mailbox (true);
    int64_t cal = 0, plain_cal = 0;
    auto store = fresh_store (base + "/itip.db", &cal);
    auto plain_store = fresh_store (base + "/plain.db", &plain_cal);
    double t0 = now_ms ();
    const ImportResult r = import_ics_text (*store, cal, mailbox.text);
    const double itip_ms = now_ms () - t0;
    t0 = now_ms ();
    const ImportResult p = import_ics_text (*plain_store, plain_cal, plain.text);
    const double plain_ms = now_ms () - t0;
    printf ("import of an iTIP mailbox, %d components (10,000 events, 2,000 of them exceptions, 100 zones): %.0f ms "
            "(target 1000 ms)\n", mailbox.components, itip_ms);
    printf ("  baseline: 10,000 plain UTC events, %.0f ms (%d stored); ratio %.2f\n", plain_ms, p.total (),
            itip_ms / plain_ms);
    printf ("  its report (%s):\n%s", r.status.message.empty () ? "complete" : r.status.message.c_str (),
            r.report ().substr (0, r.report ().find ("skipped line")).c_str ());
    printf ("  first skipped: %s\n", r.skipped.empty () ? "none" : r.skipped.front ().reason.c_str ());

    /* The year's agenda, and the baseline of stepping every rule. */
    const int64_t from = civil_minutes (2025, 1, 1), to = civil_minutes (2025, 12, 31);
    std::string agenda;
    double list_ms = 1e9;
    for (int i = 0; i < 5; ++i) {
        t0 = now_ms ();
        agenda = agenda_text (*store, from, to);
        list_ms = std::min (list_ms, now_ms () - t0);
    }
    t0 = now_ms ();
    size_t stepped = 0;
    for (EntryRecord e : store->entries_of_calendar (cal)) {
        if (!e.cancelled) {
            stepped += expand_instances_stepping (e, from, to + kMinutesPerDay - 1).size ();
        }
    }
    const double step_ms = now_ms () - t0;
    const size_t lines = static_cast<size_t> (std::count (agenda.begin (), agenda.end (), '\n'));
    printf ("--list over 2025 of that store: %.1f ms for %zu lines (target 100 ms)\n", list_ms, lines);
    printf ("  baseline (every entry read, every rule stepped, no text): %.1f ms for %zu instances; ratio %.1fx\n",
            step_ms, stepped, step_ms / list_ms);

    /* Long lines: ten times the length, about ten times the time. */
    double line_ms[2];
    for (int k = 0; k < 2; ++k) {
        const size_t length = k ? 10u << 20 : 1u << 20;
        const std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:long\r\nDTSTART:20250101T100000Z\r\n"
                                 "DESCRIPTION:" + std::string (length, 'x') + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
        int64_t c = 0;
        auto s = fresh_store (base + "/long" + std::to_string (k) + ".db", &c);
        t0 = now_ms ();
        import_ics_text (*s, c, text);
        line_ms[k] = now_ms () - t0;
    }
    printf ("a 1 MB line: %.0f ms; a 10 MB line: %.0f ms; ratio %.1f (linear: about 10)\n", line_ms[0], line_ms[1],
            line_ms[1] / line_ms[0]);

    store.reset ();
    plain_store.reset ();
    for (const char *name : {"itip.db", "plain.db", "long0.db", "long1.db"}) {
        for (const char *suffix : {"", "-wal", "-shm"}) {
            g_unlink ((base + "/" + name + suffix).c_str ());
        }
    }
    g_rmdir (dir);
    g_free (dir);
    return 0;
}
