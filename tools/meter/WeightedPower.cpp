// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/WeightedPower.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace larkspire::meter
{

struct WeightedPower::Library
{
    explicit Library (const AudioShape& shape)
        : state (ebur128_init (
            static_cast<unsigned> (shape.channels), static_cast<unsigned long> (shape.sampleRate), EBUR128_MODE_M)),
          channels (static_cast<std::size_t> (shape.channels))
    {
    }

    ~Library()
    {
        if (state != nullptr)
            ebur128_destroy (&state);
    }

    Library (const Library&) = delete;
    Library& operator= (const Library&) = delete;

    float powerOfNext (std::span<const float> frames)
    {
        double loudness = 0.0;

        if (state == nullptr
            || ebur128_add_frames_float (state, frames.data(), frames.size() / channels) != EBUR128_SUCCESS
            || ebur128_loudness_window (state, 1, &loudness) != EBUR128_SUCCESS)
            return 0.0f;

        return static_cast<float> (powerOf (loudness));
    }

    ebur128_state* state;
    std::size_t channels;
};

double lufsOf (double power)
{
    return -0.691 + 10.0 * std::log10 (power);
}

double powerOf (double lufs)
{
    return std::pow (10.0, 0.1 * (lufs + 0.691));
}

WeightedPower::WeightedPower (const AudioShape& shape, Listener toBeTold)
    : samplesPerBin (framesPerBin (shape.sampleRate) * static_cast<std::size_t> (shape.channels)),
      library (std::make_unique<Library> (shape)),
      listener (std::move (toBeTold))
{
}

WeightedPower::~WeightedPower() = default;

void WeightedPower::add (std::span<const float> interleaved)
{
    while (! interleaved.empty() && samplesPerBin > 0)
    {
        const auto part = interleaved.first (std::min (interleaved.size(), samplesPerBin - bin.size()));
        bin.insert (bin.end(), part.begin(), part.end());
        interleaved = interleaved.subspan (part.size());

        if (bin.size() == samplesPerBin)
        {
            listener (library->powerOfNext (bin));
            bin.clear();
        }
    }
}

} // namespace larkspire::meter
