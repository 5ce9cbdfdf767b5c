/* libcalendarui - message lookup (internal)
 *
 * Every user text is a logical message ID looked up with dcgettext in its
 * domain. When no catalogue answers (C locale, catalogue not installed) the
 * English text compiled from our own catalogues is used instead, so a user
 * never sees a raw ID.
 */
#ifndef TAV_INTL_H
#define TAV_INTL_H

#include <glib.h>

G_BEGIN_DECLS

#define TAV_DOMAIN_CALENDAR "calendar"
#define TAV_DOMAIN_KIVO_LIBS "kivo-libs"
#define TAV_DOMAIN_COMMON_STRINGS "kivo-common-strings"
#define TAV_DOMAIN_DEVWATCH "devwatch"

/* Returns the translation of @msgid in @domain (category LC_MESSAGES); the
 * string is static and must not be freed. */
const char *tav_dgettext (const char *domain, const char *msgid);
/* Plural lookup; @n chooses the form. */
const char *tav_dngettext (const char *domain, const char *msgid, const char *msgid_plural, unsigned long n);

/* The built-in English text, or NULL when @msgid is unknown. */
const char *tav_intl_fallback (const char *domain, const char *msgid, unsigned long n);

G_END_DECLS

/* Shorthands for the four domains. */
#define TAV_CAL(id) tav_dgettext (TAV_DOMAIN_CALENDAR, (id))
#define TAV_KIVO(id) tav_dgettext (TAV_DOMAIN_KIVO_LIBS, (id))
#define TAV_COMMON(id) tav_dgettext (TAV_DOMAIN_COMMON_STRINGS, (id))

#endif /* TAV_INTL_H */
