/* libcalendarui - message lookup with a built-in English fallback */

#include "TavIntl.h"

#include <cstring>
#include <libintl.h>
#include <locale.h>
#include <mutex>
#include <string_view>
#include <unordered_map>

/* Generated at build time from the English catalogues in po/en. */
#include "TavMessagesFallback.h"

namespace {

struct FallbackKey {
    std::string_view domain;
    std::string_view msgid;
    bool operator== (const FallbackKey &o) const { return domain == o.domain && msgid == o.msgid; }
};

struct FallbackKeyHash {
    size_t operator() (const FallbackKey &k) const
    {
        return std::hash<std::string_view> () (k.domain) * 31 + std::hash<std::string_view> () (k.msgid);
    }
};

using FallbackMap = std::unordered_map<FallbackKey, const TavFallbackMessage *, FallbackKeyHash>;

const FallbackMap &fallback_map ()
{
    static const FallbackMap map = [] {
        FallbackMap m;
        for (const auto &entry : tav_fallback_messages)
            m.emplace (FallbackKey { entry.domain, entry.msgid }, &entry);
        return m;
    }();
    return map;
}

/* Our catalogues live under the configured locale directory; an uninstalled
 * run points TAV_CALENDAR_LOCALE_DIR at the build tree. */
void bind_domains_once ()
{
    static std::once_flag once;
    std::call_once (once, [] {
        const char *dir = g_getenv ("TAV_CALENDAR_LOCALE_DIR");
        if (!dir || !*dir)
            dir = TAV_LOCALEDIR;
        for (const char *domain : { TAV_DOMAIN_CALENDAR, TAV_DOMAIN_KIVO_LIBS,
                                    TAV_DOMAIN_COMMON_STRINGS, TAV_DOMAIN_DEVWATCH }) {
            bindtextdomain (domain, dir);
            bind_textdomain_codeset (domain, "UTF-8");
        }
    });
}

} // namespace

const char *
tav_intl_fallback (const char *domain, const char *msgid, unsigned long n)
{
    if (!domain || !msgid)
        return nullptr;
    const auto &map = fallback_map ();
    auto it = map.find (FallbackKey { domain, msgid });
    if (it == map.end ())
        return nullptr;
    const TavFallbackMessage *entry = it->second;
    return (n != 1 && entry->plural) ? entry->plural : entry->text;
}

const char *
tav_dgettext (const char *domain, const char *msgid)
{
    g_return_val_if_fail (msgid != NULL, NULL);
    bind_domains_once ();
    const char *text = dcgettext (domain, msgid, LC_MESSAGES);
    if (text != msgid && std::strcmp (text, msgid) != 0)
        return text;
    const char *english = tav_intl_fallback (domain, msgid, 1);
    return english ? english : msgid;
}

const char *
tav_dngettext (const char *domain, const char *msgid, const char *msgid_plural, unsigned long n)
{
    g_return_val_if_fail (msgid != NULL, NULL);
    bind_domains_once ();
    const char *text = dcngettext (domain, msgid, msgid_plural, n, LC_MESSAGES);
    if (text != msgid && text != msgid_plural && std::strcmp (text, msgid) != 0 &&
        (!msgid_plural || std::strcmp (text, msgid_plural) != 0))
        return text;
    const char *english = tav_intl_fallback (domain, msgid, n);
    if (english)
        return english;
    return n == 1 || !msgid_plural ? msgid : msgid_plural;
}
