/* Fuzz target support, and the replay program: without libFuzzer, the
 * target runs once over every file of the directories (or files) named on
 * the command line, so the checked-in corpus is a regression suite. */
#include "FuzzSupport.h"

#include "TavLog.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <vector>

namespace tav::fuzz {

namespace {
void drop_glib (const char *, GLogLevelFlags, const char *, gpointer) {}
void drop_lib (TavLogLevel, const char *, const char *, gpointer) {}
} // namespace

void quiet_logs ()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    g_log_set_always_fatal ((GLogLevelFlags) G_LOG_FATAL_MASK);
    g_log_set_default_handler (drop_glib, nullptr);
    tav_log_set_sink (drop_lib, nullptr);
    /* The library prints its log lines on standard output. */
    if (!freopen ("/dev/null", "w", stdout))
        perror ("/dev/null");
}

} // namespace tav::fuzz

#ifndef TAV_FUZZ_LIBFUZZER
static bool replay_file (const std::string &path)
{
    std::ifstream in (path, std::ios::binary);
    if (!in)
        return false;
    std::stringstream buf;
    buf << in.rdbuf ();
    const std::string data = buf.str ();
    LLVMFuzzerTestOneInput ((const uint8_t *) data.data (), data.size ());
    return true;
}

int main (int argc, char **argv)
{
    g_setenv ("TZ", "UTC", TRUE);
    int files = 0;
    for (int i = 1; i < argc; i++) {
        struct stat st;
        if (stat (argv[i], &st) != 0) {
            fprintf (stderr, "%s: cannot read\n", argv[i]);
            return 1;
        }
        std::vector<std::string> paths;
        if (S_ISDIR (st.st_mode)) {
            DIR *dir = opendir (argv[i]);
            while (dirent *e = dir ? readdir (dir) : nullptr)
                if (e->d_name[0] != '.')
                    paths.push_back (std::string (argv[i]) + "/" + e->d_name);
            if (dir)
                closedir (dir);
            std::sort (paths.begin (), paths.end ());
        } else {
            paths.push_back (argv[i]);
        }
        for (const std::string &p : paths) {
            if (!replay_file (p)) {
                fprintf (stderr, "%s: cannot read\n", p.c_str ());
                return 1;
            }
            files++;
        }
    }
    fprintf (stderr, "%d inputs replayed\n", files);
    /* An empty corpus would make the test pass without checking anything. */
    return files > 0 ? 0 : 1;
}
#endif
