/* libcalendarui - the alarm tone picker button
 *
 * A finger-height button showing its title and the name of the chosen tone.
 * A tap opens a list of tones: the calendar's default tone, the alarm-like
 * sounds of the installed sound theme and the tones added with
 * tav_alarm_tone_button_add_tone() or through the list's "Add tone" file
 * chooser. Tapping a tone in the list plays it; Done chooses it, and closing
 * the list any way stops the sound.
 *
 * Signal "tone-changed" (void): the user (or set_selected_tone) chose
 * another tone.
 */
#ifndef TAV_ALARM_TONE_BUTTON_H
#define TAV_ALARM_TONE_BUTTON_H

#include <gtk/gtk.h>

#include "TavExport.h"

G_BEGIN_DECLS

/* The path that stands for the calendar's default tone. It is always
 * offered (first) and never added twice. */
#define TAV_ALARM_TONE_DEFAULT_PATH "/usr/share/sounds/ui-calendar_alarm_default.aac"

#define TAV_TYPE_ALARM_TONE_BUTTON    (tav_alarm_tone_button_get_type ())
#define TAV_ALARM_TONE_BUTTON(obj)    (G_TYPE_CHECK_INSTANCE_CAST ((obj), TAV_TYPE_ALARM_TONE_BUTTON, TavAlarmToneButton))
#define TAV_IS_ALARM_TONE_BUTTON(obj) (G_TYPE_CHECK_INSTANCE_TYPE ((obj), TAV_TYPE_ALARM_TONE_BUTTON))

/* A GtkButton; its instance structure is private. */
typedef struct _TavAlarmToneButton TavAlarmToneButton;

TAV_API GType       tav_alarm_tone_button_get_type               (void) G_GNUC_CONST;
/**
 * tav_alarm_tone_button_new:
 *
 * Returns: (transfer floating): a button offering the default tone and the
 * sound theme's alarm sounds, with the default tone chosen.
 */
TAV_API GtkWidget  *tav_alarm_tone_button_new                    (void);
TAV_API void        tav_alarm_tone_button_set_title              (TavAlarmToneButton *button, const char *title);
/**
 * tav_alarm_tone_button_add_tone:
 * @path: a sound file (WAV or Ogg)
 *
 * Offers @path, named after its file name. A path already offered is not
 * added again; a file that cannot be read is refused with a warning.
 *
 * Returns: TRUE when @path is offered now (added or already there).
 */
TAV_API gboolean    tav_alarm_tone_button_add_tone               (TavAlarmToneButton *button, const char *path);
/**
 * tav_alarm_tone_button_set_selected_tone:
 * @path: an offered tone's path; NULL chooses the default tone
 *
 * Returns: FALSE (the choice unchanged) when @path is not offered.
 */
TAV_API gboolean    tav_alarm_tone_button_set_selected_tone      (TavAlarmToneButton *button, const char *path);
/* The chosen tone's path and name, owned by the button. */
TAV_API const char *tav_alarm_tone_button_get_selected_tone_path (TavAlarmToneButton *button);
TAV_API const char *tav_alarm_tone_button_get_selected_tone_name (TavAlarmToneButton *button);
/* How many tones are offered (the default included). */
TAV_API int         tav_alarm_tone_button_get_tone_count         (TavAlarmToneButton *button);
/* Plays the chosen tone (as a tap in the list does); FALSE when it cannot
 * be played (no sound device, unreadable file): that is logged, not shown. */
TAV_API gboolean    tav_alarm_tone_button_preview                (TavAlarmToneButton *button);
/* Stops a preview still playing. */
TAV_API void        tav_alarm_tone_button_stop_preview           (TavAlarmToneButton *button);
/* Opens the list of tones (what a tap does). */
TAV_API void        tav_alarm_tone_button_open_picker            (TavAlarmToneButton *button);
/* The open list's dialog, NULL when closed. */
TAV_API GtkWidget  *tav_alarm_tone_button_get_picker             (TavAlarmToneButton *button);

G_END_DECLS

#endif /* TAV_ALARM_TONE_BUTTON_H */
