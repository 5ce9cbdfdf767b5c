/* libcalendarui - playing a sound file for a preview (internal)
 *
 * The alarm tone picker plays the tone the user taps through libcanberra,
 * attributed to the widget (so the sound server knows which window asked).
 * Tests put a recording player in its place.
 */
#ifndef TAV_TONE_PREVIEW_H
#define TAV_TONE_PREVIEW_H

#include <gtk/gtk.h>

#include <string>

namespace tav {

struct TonePlayer {
    /* Starts playing @file for @widget under @id; false with @error filled
     * when it cannot (no sound device, unreadable file). */
    bool (*play) (GtkWidget *widget, guint32 id, const char *file, std::string *error);
    /* Stops what was started under @id (nothing when it has ended). */
    void (*cancel) (GtkWidget *widget, guint32 id);
};

/* The player in use: libcanberra unless a test replaced it. */
const TonePlayer &tone_player ();
/* Replaces the player (nullptr: libcanberra again). */
void set_tone_player_for_testing (const TonePlayer *player);

/* A fresh id for one preview. */
guint32 next_tone_preview_id ();

/* Where our own default alarm tone is installed (the sound directory the
 * build was configured with; TAV_CALENDAR_SOUND_DIR overrides it). */
std::string default_tone_file ();

} // namespace tav

#endif /* TAV_TONE_PREVIEW_H */
