/* Shared by the fuzz targets: reading typed values from the input bytes,
 * quiet logging, and the invariant check that stops a run. */
#ifndef TAV_FUZZ_SUPPORT_H
#define TAV_FUZZ_SUPPORT_H

#include <glib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size);

namespace tav::fuzz {

/* Bad input is expected to be refused with criticals and log lines: they
 * must neither abort the run nor flood its output. */
void quiet_logs ();

/* Takes values off the front of the input; zeros once it runs out. */
class Input {
public:
    Input (const uint8_t *data, size_t size) : m_data (data), m_size (size) {}
    bool empty () const { return m_pos >= m_size; }
    uint8_t byte () { return m_pos < m_size ? m_data[m_pos++] : 0; }
    int32_t int32 ()
    {
        uint32_t v = 0;
        for (int i = 0; i < 4; i++)
            v = (v << 8) | byte ();
        return (int32_t) v;
    }
    /* A value in [lo, hi], mostly small ones from one byte. */
    int range (int lo, int hi) { return lo + (int) (((uint32_t) byte () << 8 | byte ()) % (uint32_t) (hi - lo + 1)); }
    std::string rest () { std::string s ((const char *) m_data + m_pos, m_size - m_pos); m_pos = m_size; return s; }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};

} // namespace tav::fuzz

#define FUZZ_CHECK(cond, ...)                                               \
    do {                                                                    \
        if (!(cond)) {                                                      \
            fprintf (stderr, "%s:%d: invariant '%s' broken: ", __FILE__, __LINE__, #cond); \
            fprintf (stderr, __VA_ARGS__);                                  \
            fputc ('\n', stderr);                                           \
            abort ();                                                       \
        }                                                                   \
    } while (0)

#endif
