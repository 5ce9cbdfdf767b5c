/* libcalendarui - small helpers shared by the model objects (internal) */
#ifndef TAV_MODEL_SUPPORT_H
#define TAV_MODEL_SUPPORT_H

#include <memory>

#include <glib.h>

#include "TavDate.h"

namespace tav::model {

/* Owners of the slice-allocated date values. */
struct DateFree {
    void operator()(TavDate *p) const { if (p) tav_date_free(p); }
};
struct TimeFree {
    void operator()(TavTime *p) const { if (p) tav_time_free(p); }
};
struct DateIntervalFree {
    void operator()(TavDateInterval *p) const { if (p) tav_date_interval_free(p); }
};
using DatePtr = std::unique_ptr<TavDate, DateFree>;
using TimePtr = std::unique_ptr<TavTime, TimeFree>;
using DateIntervalPtr = std::unique_ptr<TavDateInterval, DateIntervalFree>;

/* Frees a GList of slice-allocated TavTimestamp. */
inline void free_timestamp_list(GList *list)
{
    g_list_free_full(list, [](gpointer p) { tav_timestamp_free(static_cast<TavTimestamp *>(p)); });
}

} // namespace tav::model

/* A return-if-fail whose reported condition differs from the code that
 * tests it, for checks whose text names an expression C++ cannot evaluate
 * as written (a held reference, a failed cast). */
#define TAV_RETURN_VAL_IF_FAIL_AS(cond, text, val)                            \
    do {                                                                     \
        if (G_LIKELY(cond)) {                                                \
        } else {                                                             \
            g_return_if_fail_warning(G_LOG_DOMAIN, G_STRFUNC, (text));       \
            return (val);                                                    \
        }                                                                    \
    } while (0)

#endif /* TAV_MODEL_SUPPORT_H */
