/* libcalendarui - playing a sound file for a preview */

#include "TavTonePreview.h"

#include <canberra-gtk.h>

namespace tav {

namespace {

bool canberra_play (GtkWidget *widget, guint32 id, const char *file, std::string *error)
{
    ca_context *context = ca_gtk_context_get_for_screen (gtk_widget_get_screen (widget));
    if (!context) {
        *error = "no sound context";
        return false;
    }
    /* A preview is played once and never cached by the sound server. */
    const int result = ca_gtk_play_for_widget (widget, id,
                                               CA_PROP_MEDIA_FILENAME, file,
                                               CA_PROP_MEDIA_ROLE, "event",
                                               CA_PROP_EVENT_DESCRIPTION, "Alarm tone preview",
                                               CA_PROP_CANBERRA_CACHE_CONTROL, "never",
                                               nullptr);
    if (result != CA_SUCCESS) {
        *error = ca_strerror (result);
        return false;
    }
    return true;
}

void canberra_cancel (GtkWidget *widget, guint32 id)
{
    if (ca_context *context = ca_gtk_context_get_for_screen (gtk_widget_get_screen (widget)))
        ca_context_cancel (context, id);
}

const TonePlayer kCanberra = { canberra_play, canberra_cancel };
const TonePlayer *gPlayer = &kCanberra;

} // namespace

const TonePlayer &tone_player ()
{
    return *gPlayer;
}

void set_tone_player_for_testing (const TonePlayer *player)
{
    gPlayer = player ? player : &kCanberra;
}

guint32 next_tone_preview_id ()
{
    static guint32 last = 0x7a0000;
    return ++last;
}

std::string default_tone_file ()
{
    const char *dir = g_getenv ("TAV_CALENDAR_SOUND_DIR");
    if (!dir || !*dir)
        dir = TAV_SOUND_DIR;
    gchar *path = g_build_filename (dir, "calendar-alarm-default.wav", nullptr);
    std::string out = path;
    g_free (path);
    return out;
}

} // namespace tav
