/* Recurrence of stored entries: RFC 5545 rules expanded with libical, and
 * the mapping between the simple repeat codes and RRULE text.
 */
#ifndef TAV_HOST_RECURRENCE_H
#define TAV_HOST_RECURRENCE_H

#include "HostRecord.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace tav::host {

constexpr int64_t kUnbounded = std::numeric_limits<int64_t>::max ();

/* Upper bound on the instances one expansion returns; an unbounded rule
 * asked for an unbounded window stops here instead of running forever. */
constexpr size_t kMaxInstances = 100000;

/* Checks that libical accepts @rrule; the message says what is wrong. */
Status validate_rrule (const std::string &rrule);

/* Start times of every instance of @entry whose span [start, start +
 * duration] touches [from, to] (inclusive), in ascending order, exception
 * dates and EXRULE occurrences removed, RDATEs added. A non-repeating
 * entry yields its own start when it touches the window. Rules that start
 * long before @from are sought directly to the window rather than stepped
 * through from their first occurrence. */
std::vector<int64_t> expand_instances (const EntryRecord &entry, int64_t from, int64_t to,
                                       size_t limit = kMaxInstances);

/* The same result, always stepping from the first occurrence; the
 * reference the fast path is checked against. */
std::vector<int64_t> expand_instances_stepping (const EntryRecord &entry, int64_t from, int64_t to,
                                                size_t limit = kMaxInstances);

/* End of the entry's last instance (kUnbounded for a rule without COUNT or
 * UNTIL); the store indexes entries on [start, last_instance_end]. */
int64_t last_instance_end (const EntryRecord &entry);

/* RRULE text for a simple repeat code. @until_day is the civil minute of
 * the last day on which it may repeat, or -1 for no end. Empty for
 * TavCalendarRepeatsNoRepeat and TavCalendarRepeatsComplex. */
std::string rrule_for_repeat_code (TavCalendarRepeatCode code, int64_t until_day);

/* The simple repeat code an RRULE amounts to (given the entry's start),
 * TavCalendarRepeatsComplex when no simple code says the same. @until_day
 * receives the civil midnight of the UNTIL date, or -1. */
TavCalendarRepeatCode repeat_code_for_rrule (const std::string &rrule, int64_t start, int64_t *until_day);

}  // namespace tav::host

#endif
