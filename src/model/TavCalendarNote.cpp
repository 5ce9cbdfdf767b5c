/* libcalendarui - calendar note */

#include "TavCalendarNote.h"

#include <new>

struct _TavCalendarNotePrivate {
    bool dispose_has_run = false;
};

G_DEFINE_TYPE_WITH_PRIVATE (TavCalendarNote, tav_calendar_note, TAV_TYPE_CALENDAR_ENTRY)

static void
tav_calendar_note_dispose (GObject *object)
{
    TAV_CALENDAR_NOTE (object)->priv->dispose_has_run = true;

    G_OBJECT_CLASS (tav_calendar_note_parent_class)->dispose (object);
}

static void
tav_calendar_note_finalize (GObject *object)
{
    TAV_CALENDAR_NOTE (object)->priv->~_TavCalendarNotePrivate ();

    G_OBJECT_CLASS (tav_calendar_note_parent_class)->finalize (object);
}

static void
tav_calendar_note_init (TavCalendarNote *note)
{
    note->priv = new (tav_calendar_note_get_instance_private (note)) _TavCalendarNotePrivate ();
    /* Notes are not timed. */
    g_object_set (note, "all-day", TRUE, nullptr);
}

static void
tav_calendar_note_class_init (TavCalendarNoteClass *klass)
{
    GObjectClass *object_class = G_OBJECT_CLASS (klass);

    object_class->dispose = tav_calendar_note_dispose;
    object_class->finalize = tav_calendar_note_finalize;
}

TavCalendarNote *
tav_calendar_note_new (void)
{
    return TAV_CALENDAR_NOTE (g_object_new (TAV_TYPE_CALENDAR_NOTE, nullptr));
}
