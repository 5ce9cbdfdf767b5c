/* Message lookup: every ID the library uses must reach English text, in the
 * C locale through the built-in table. */

#include "TestSupport.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "TavIntl.h"

namespace fs = std::filesystem;

namespace {

const char *domain_of (const std::string &id)
{
    for (auto [prefix, domain] : { std::pair { "cal_", TAV_DOMAIN_CALENDAR }, { "wdgt_", TAV_DOMAIN_KIVO_LIBS },
                                   { "ckdg_", TAV_DOMAIN_COMMON_STRINGS } })
        if (id.rfind (prefix, 0) == 0)
            return domain;
    return TAV_DOMAIN_DEVWATCH;
}

/* Every quoted message ID in the library's and host's sources. */
std::set<std::string> ids_used_in_sources ()
{
    const std::regex id_literal ("\"((cal|wdgt|ckdg|cerm)_[a-z0-9_]+)\"");
    std::set<std::string> ids;
    for (const char *top : { "src", "host" }) {
        fs::path root = fs::path (TAV_SOURCE_ROOT) / top;
        for (const auto &entry : fs::exists (root) ? fs::recursive_directory_iterator (root) : fs::recursive_directory_iterator ()) {
            auto ext = entry.path ().extension ();
            std::stringstream text;
            if (ext == ".cpp" || ext == ".h" || ext == ".c")
                text << std::ifstream (entry.path ()).rdbuf ();
            std::string s = text.str ();
            for (std::sregex_iterator it (s.begin (), s.end (), id_literal), end; it != end; ++it)
                ids.insert ((*it)[1]);
        }
    }
    return ids;
}

/* Every msgid in our catalogues. */
std::set<std::pair<std::string, std::string>> ids_in_catalogues ()
{
    std::set<std::pair<std::string, std::string>> ids;
    for (const char *domain : { "calendar", "kivo-libs", "kivo-common-strings", "devwatch" }) {
        std::ifstream in (fs::path (TAV_SOURCE_ROOT) / "po" / "en" / (std::string (domain) + ".po"));
        std::string line;
        while (std::getline (in, line))
            if (line.rfind ("msgid \"", 0) == 0 && line.size () > 8)
                ids.insert ({ domain, line.substr (7, line.size () - 8) });
    }
    return ids;
}

} // namespace

/* Every catalogue entry has a built-in English fallback, and every ID the
 * code uses reaches English text. */
TEST (Messages, EveryCatalogueEntryAndEveryIdInTheCodeHaveEnglishText)
{
    auto ids = ids_in_catalogues ();
    ASSERT_GT (ids.size (), 100u);
    for (const auto &[domain, id] : ids) {
        const char *text = tav_intl_fallback (domain.c_str (), id.c_str (), 1);
        ASSERT_NE (text, nullptr) << domain << ": " << id;
        EXPECT_STRNE (text, id.c_str ());
        EXPECT_STREQ (tav_dgettext (domain.c_str (), id.c_str ()), text) << id;
    }
    for (const auto &id : ids_used_in_sources ())
        EXPECT_STRNE (tav_dgettext (domain_of (id), id.c_str ()), id.c_str ()) << "message ID without English text: " << id;
}

TEST (Messages, UnknownIdsComeBackUnchangedAndPluralsChooseTheForm)
{
    EXPECT_STREQ (tav_dgettext (TAV_DOMAIN_CALENDAR, "cal_no_such_message"), "cal_no_such_message");
    EXPECT_EQ (tav_intl_fallback (TAV_DOMAIN_KIVO_LIBS, "cal_va_none", 1), nullptr);

    std::string one = tav_dngettext (TAV_DOMAIN_CALENDAR, "cal_va_calendar_visible", "cal_va_calendars", 1);
    std::string many = tav_dngettext (TAV_DOMAIN_CALENDAR, "cal_va_calendar_visible", "cal_va_calendars", 3);
    EXPECT_NE (one, many);
    EXPECT_EQ ((one + many).find ("cal_"), std::string::npos);
}
