// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/Resampler.h"

#include <soxr.h>

#include <cmath>
#include <new>

namespace larkspire
{

struct Resampler::Library
{
    Library (unsigned channels, double from, double to)
    {
        const auto format = soxr_io_spec (SOXR_FLOAT32_I, SOXR_FLOAT32_I);
        const auto quality = soxr_quality_spec (SOXR_VHQ, 0);
        const auto threads = soxr_runtime_spec (1);
        state = soxr_create (from, to, channels, nullptr, &format, &quality, &threads);

        if (state == nullptr)
            throw std::bad_alloc();
    }

    ~Library() { soxr_delete (state); }

    Library (const Library&) = delete;
    Library& operator= (const Library&) = delete;

    soxr_t state;
};

Resampler::Resampler (int channelCount, int from, int to)
    : channels (static_cast<std::size_t> (channelCount)),
      ratio (static_cast<double> (to) / from),
      library (std::make_unique<Library> (static_cast<unsigned> (channelCount), from, to))
{
}

Resampler::~Resampler() = default;

std::span<const float> Resampler::process (std::span<const float> interleaved)
{
    // To the library a null pointer is the end.
    return interleaved.empty() ? std::span<const float>() : run (interleaved.data(), interleaved.size() / channels);
}

std::span<const float> Resampler::end()
{
    return run (nullptr, 0);
}

std::span<const float> Resampler::run (const float* input, std::size_t frames)
{
    const auto room = static_cast<std::size_t> (std::ceil (static_cast<double> (frames) * ratio)) + 4096;
    std::size_t written = 0;

    while (true)
    {
        output.resize ((written + room) * channels);
        std::size_t used = 0;
        std::size_t given = 0;
        soxr_process (library->state, input, frames, &used, &output[written * channels], room, &given);
        written += given;
        frames -= used;

        if (frames == 0 && given < room)
            break;

        if (input != nullptr)
            input += used * channels;
    }

    output.resize (written * channels);
    return output;
}

} // namespace larkspire
