/* libcalendarui - calendar user interface library
 *
 * Symbol export marker. The library is built with hidden visibility; only
 * declarations carrying TAV_API are part of the shared object's interface.
 */
#ifndef TAV_EXPORT_H
#define TAV_EXPORT_H

#if defined(__GNUC__)
#define TAV_API __attribute__((visibility("default")))
#else
#define TAV_API
#endif

#endif /* TAV_EXPORT_H */
