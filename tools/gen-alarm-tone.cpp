/* Synthesises the calendar's default alarm tone.
 *
 * Usage: gen-alarm-tone OUTPUT.wav
 * Writes a 1.6 second chime (two bell-like notes, played twice) as 16-bit
 * mono PCM at 22050 Hz: a format every sound backend reads.
 */

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRate = 22050;

/* A bell-like note: the fundamental with two inharmonic partials, a 5 ms
 * attack and an exponential decay. */
void add_note (std::vector<double> &samples, double start_s, double length_s, double frequency, double level)
{
    const struct { double ratio, gain, decay; } partials[] = {
        { 1.0, 1.0, 5.0 }, { 2.76, 0.35, 9.0 }, { 5.40, 0.12, 14.0 },
    };
    const size_t first = static_cast<size_t> (start_s * kRate);
    const size_t count = static_cast<size_t> (length_s * kRate);
    if (samples.size () < first + count)
        samples.resize (first + count, 0.0);
    for (size_t i = 0; i < count; ++i) {
        const double t = static_cast<double> (i) / kRate;
        const double attack = std::fmin (1.0, t / 0.005);
        double v = 0;
        for (const auto &p : partials)
            v += p.gain * std::exp (-p.decay * t) * std::sin (2 * M_PI * frequency * p.ratio * t);
        samples[first + i] += level * attack * v;
    }
}

void put16 (std::FILE *f, uint16_t v)
{
    const unsigned char b[2] = { static_cast<unsigned char> (v & 0xff), static_cast<unsigned char> (v >> 8) };
    std::fwrite (b, 1, 2, f);
}

void put32 (std::FILE *f, uint32_t v)
{
    put16 (f, static_cast<uint16_t> (v & 0xffff));
    put16 (f, static_cast<uint16_t> (v >> 16));
}

} // namespace

int main (int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf (stderr, "usage: gen-alarm-tone OUTPUT.wav\n");
        return 2;
    }
    std::vector<double> samples;
    for (double repeat : { 0.0, 0.8 }) {
        add_note (samples, repeat + 0.00, 0.80, 1318.5, 0.5); /* E6 */
        add_note (samples, repeat + 0.25, 0.55, 1046.5, 0.5); /* C6 */
    }
    double peak = 0;
    for (double v : samples)
        peak = std::fmax (peak, std::fabs (v));
    const double scale = peak > 0 ? 0.7 * 32767 / peak : 0;

    std::FILE *f = std::fopen (argv[1], "wb");
    if (!f) {
        std::perror (argv[1]);
        return 1;
    }
    const uint32_t data_bytes = static_cast<uint32_t> (samples.size () * 2);
    std::fwrite ("RIFF", 1, 4, f);
    put32 (f, 36 + data_bytes);
    std::fwrite ("WAVEfmt ", 1, 8, f);
    put32 (f, 16);
    put16 (f, 1);            /* PCM */
    put16 (f, 1);            /* mono */
    put32 (f, kRate);
    put32 (f, kRate * 2);    /* bytes per second */
    put16 (f, 2);            /* block align */
    put16 (f, 16);           /* bits per sample */
    std::fwrite ("data", 1, 4, f);
    put32 (f, data_bytes);
    for (double v : samples)
        put16 (f, static_cast<uint16_t> (static_cast<int16_t> (std::lround (v * scale))));
    const bool ok = std::fclose (f) == 0;
    return ok ? 0 : 1;
}
