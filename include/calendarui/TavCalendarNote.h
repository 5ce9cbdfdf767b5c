/* libcalendarui - a note: a free text stored like an all-day entry */
#ifndef TAV_CALENDAR_NOTE_H
#define TAV_CALENDAR_NOTE_H

#include "TavCalendarEntry.h"

G_BEGIN_DECLS

#define TAV_TYPE_CALENDAR_NOTE            (tav_calendar_note_get_type ())
#define TAV_CALENDAR_NOTE(obj)            (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_CALENDAR_NOTE, TavCalendarNote))
#define TAV_CALENDAR_NOTE_CLASS(klass)    (G_TYPE_CHECK_CLASS_CAST ((klass), TAV_TYPE_CALENDAR_NOTE, TavCalendarNoteClass))
#define TAV_IS_CALENDAR_NOTE(obj)         (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_CALENDAR_NOTE))
#define TAV_IS_CALENDAR_NOTE_CLASS(klass) (G_TYPE_CHECK_CLASS_TYPE ((klass), TAV_TYPE_CALENDAR_NOTE))
#define TAV_CALENDAR_NOTE_GET_CLASS(obj)  (G_TYPE_INSTANCE_GET_CLASS ((obj), TAV_TYPE_CALENDAR_NOTE, TavCalendarNoteClass))

typedef struct _TavCalendarNote        TavCalendarNote;
typedef struct _TavCalendarNoteClass   TavCalendarNoteClass;
typedef struct _TavCalendarNotePrivate TavCalendarNotePrivate;

struct _TavCalendarNote {
    TavCalendarEntry parent;

    /*< private >*/
    TavCalendarNotePrivate *priv;
};

struct _TavCalendarNoteClass {
    TavCalendarEntryClass parent_class;
};

TAV_API GType tav_calendar_note_get_type (void) G_GNUC_CONST;

/**
 * tav_calendar_note_new:
 *
 * Returns: (transfer full): a new all-day note.
 */
TAV_API TavCalendarNote *tav_calendar_note_new (void);

G_END_DECLS

#endif /* TAV_CALENDAR_NOTE_H */
