// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-join: puts recordings one behind the other, half a second of silence between them, into one 16-bit WAV
// file. The demo makes its voice with it out of single spoken words.
#include <sndfile.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
struct Close
{
    void operator() (SNDFILE* opened) const noexcept { sf_close (opened); }
};

using Recording = std::unique_ptr<SNDFILE, Close>;

constexpr double pauseSeconds = 0.5;

Recording open (const std::string& path, int direction, SF_INFO& info)
{
    Recording recording (sf_open (path.c_str(), direction, &info));

    if (recording == nullptr)
        throw std::runtime_error (path + ": " + sf_strerror (nullptr));

    return recording;
}

void append (SNDFILE* output, const short* samples, sf_count_t count)
{
    if (sf_write_short (output, samples, count) != count)
        throw std::runtime_error (std::string ("the result cannot be written: ") + sf_strerror (output));
}

void appendPause (SNDFILE* output, const SF_INFO& info)
{
    const auto frames = static_cast<std::size_t> (pauseSeconds * info.samplerate);
    const std::vector<short> silence (frames * static_cast<std::size_t> (info.channels));
    append (output, silence.data(), std::ssize (silence));
}

/** Appends a whole recording, which must be like the others. */
void appendRecording (SNDFILE* output, const SF_INFO& shape, const std::string& path)
{
    SF_INFO info {};
    const auto input = open (path, SFM_READ, info);

    if (info.samplerate != shape.samplerate || info.channels != shape.channels)
        throw std::runtime_error (path + ": has another sample rate or number of channels than the first recording");

    std::array<short, 4096> buffer {};

    while (const auto count = sf_read_short (input.get(), buffer.data(), std::ssize (buffer)))
        append (output, buffer.data(), count);
}

void join (const std::vector<std::string>& inputs, const std::string& result)
{
    SF_INFO shape {};
    open (inputs.front(), SFM_READ, shape);
    SF_INFO info { .frames = 0,
                   .samplerate = shape.samplerate,
                   .channels = shape.channels,
                   .format = SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                   .sections = 0,
                   .seekable = 0 };
    const auto output = open (result, SFM_WRITE, info);

    for (std::size_t i = 0; i < inputs.size(); ++i)
    {
        if (i > 0)
            appendPause (output.get(), shape);

        appendRecording (output.get(), shape, inputs[i]);
    }
}
} // namespace

int main (int argumentCount, char** arguments)
{
    if (argumentCount < 3)
    {
        std::fputs ("usage: larkspire-join RECORDING... RESULT\n", stderr);
        return 2;
    }

    try
    {
        join ({ arguments + 1, arguments + argumentCount - 1 }, arguments[argumentCount - 1]);
        return EXIT_SUCCESS;
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-join: %s\n", fault.what());
        return EXIT_FAILURE;
    }
}
