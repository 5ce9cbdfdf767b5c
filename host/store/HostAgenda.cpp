#include "HostAgenda.h"
#include "HostCivilTime.h"
#include "HostRecurrence.h"
#include "HostZone.h"

#include <algorithm>
#include <tuple>

namespace tav::host {

bool parse_agenda_day (const std::string &text, int64_t *day, std::string *error)
{
    int y = 0, m = 0, d = 0;
    const bool shaped = text.size () == 10 && text[4] == '-' && text[7] == '-'
                        && std::all_of (text.begin (), text.end (), [] (char c) { return (c >= '0' && c <= '9') || c == '-'; })
                        && sscanf (text.c_str (), "%4d-%2d-%2d", &y, &m, &d) == 3;
    if (!shaped) {
        *error = "'" + text + "' is not a date written YYYY-MM-DD";
        return false;
    }
    static const int lengths[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    if (y < 1 || m < 1 || m > 12 || d < 1 || d > lengths[m - 1] || (m == 2 && d == 29 && !leap)) {
        *error = "there is no day " + text + " (the calendar holds the years 0001 to 9999)";
        return false;
    }
    *day = civil_minutes (y, m, d);
    return true;
}

namespace {

std::string day_text (int64_t civil)
{
    return civil_to_string (civil).substr (0, 10);
}

/* A title on one line: tabs and line breaks would split the record. */
std::string one_line (std::string s)
{
    std::replace_if (s.begin (), s.end (), [] (char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return s;
}

}  // namespace

std::string agenda_text (Store &store, int64_t first_day, int64_t last_day)
{
    const int64_t from = first_day, to = last_day + kMinutesPerDay - 1;
    struct Row {
        int64_t start;
        std::string title;
        std::string line;
    };
    std::vector<Row> rows;
    for (const EntryRecord &e : store.entries_touching (from, to, false)) {
        if (e.kind != EntryKind::Event) {
            continue;
        }
        const std::string title = one_line (e.title);
        for (int64_t s : expand_instances (e, from, to)) {
            const int64_t end = s + std::max<int64_t> (0, e.duration ());
            std::string line = e.all_day ? day_text (s) + "\t" + day_text (end)
                                         : civil_to_string (s) + "\t" + civil_to_string (end);
            rows.push_back ({s, title, line + "\t" + title + "\n"});
        }
    }
    std::sort (rows.begin (), rows.end (), [] (const Row &a, const Row &b) {
        return std::tie (a.start, a.title, a.line) < std::tie (b.start, b.title, b.line);
    });
    std::string out;
    for (const Row &r : rows) {
        out += r.line;
    }
    return out;
}

}  // namespace tav::host
