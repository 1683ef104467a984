// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Signals.h"

#include <cmath>
#include <random>
#include <sndfile.hh>
#include <stdexcept>

namespace
{
std::vector<float> joinedRecordings()
{
    std::vector<float> joined;

    for (const std::string name : { "Front_Center", "Front_Left", "Rear_Right", "Side_Left" })
    {
        const std::string path = "/usr/share/sounds/alsa/" + name + ".wav";
        SndfileHandle file (path);

        if (file.error() != SF_ERR_NO_ERROR || file.channels() != 1)
            throw std::runtime_error (path + " is missing: the package alsa-utils installs it");

        const auto start = joined.size();
        joined.resize (start + static_cast<std::size_t> (file.frames()));
        file.readf (joined.data() + start, file.frames());
    }

    return joined;
}

Signal constantly (const std::string& name, std::size_t frames, float value)
{
    return { name, std::vector<float> (frames, value), std::vector<float> (frames, value) };
}
} // namespace

Signal noise (std::size_t frames, double peakDb, unsigned int seed)
{
    const auto peak = static_cast<float> (std::pow (10.0, peakDb / 20.0));
    std::mt19937 random (seed);
    std::uniform_real_distribution<float> sample (-peak, peak);
    auto signal = constantly ("noise at " + std::to_string (static_cast<int> (peakDb)) + " dB", frames, 0.0f);

    for (std::size_t i = 0; i < frames; ++i)
    {
        signal.left[i] = sample (random);
        signal.right[i] = sample (random);
    }

    return signal;
}

Signal voice (std::size_t frames)
{
    static const auto recordings = joinedRecordings();
    constexpr std::size_t lateness = 311;
    auto signal = constantly ("voice", frames, 0.0f);

    for (std::size_t i = 0; i < frames; ++i)
    {
        signal.left[i] = recordings[i % recordings.size()];
        signal.right[i] = recordings[(i + lateness) % recordings.size()];
    }

    return signal;
}

Channels stereoVoice (std::size_t frames)
{
    auto signal = voice (frames);
    return { std::move (signal.left), std::move (signal.right) };
}

Signal withBadSamples (Signal signal)
{
    const std::size_t frames = signal.left.size();

    for (std::size_t i = 0; i < frames; i += 97)
    {
        signal.left[i] = badSamples[(i / 97) % badSamples.size()];
        signal.right[(i + 31) % frames] = badSamples[(i / 97 + 2) % badSamples.size()];
    }

    return signal;
}

std::vector<Signal> testSignals (std::size_t frames)
{
    std::vector<Signal> signals { constantly ("silence", frames, 0.0f), voice (frames) };

    auto impulse = constantly ("impulse", frames, 0.0f);
    impulse.left[frames / 3] = 1.0f;
    impulse.right[frames / 2] = -1.0f;
    signals.push_back (impulse);

    auto square = constantly ("full-scale square", frames, 1.0f);

    for (std::size_t i = 0; i < frames; ++i)
    {
        square.left[i] = (i / 50) % 2 == 0 ? 1.0f : -1.0f;
        square.right[i] = (i / 73) % 2 == 0 ? 1.0f : -1.0f;
    }

    signals.push_back (square);

    for (const double level : { -60.0, -30.0, 0.0, 26.0 })
        signals.push_back (noise (frames, level, 42));

    auto denormals = noise (frames, 0.0, 43);
    denormals.name = "denormals";

    for (auto* channel : { &denormals.left, &denormals.right })
        for (auto& value : *channel)
            value *= 1e-39f;

    signals.push_back (denormals);

    // A sound, then silence: the decay goes through the denormals inside the filters.
    auto decay = noise (frames, 0.0, 44);
    decay.name = "noise that stops";

    for (std::size_t i = frames / 4; i < frames; ++i)
        decay.left[i] = decay.right[i] = 0.0f;

    signals.push_back (decay);

    auto poisoned = withBadSamples (noise (frames, -12.0, 45));
    poisoned.name = "NaN and infinities";
    signals.push_back (poisoned);
    return signals;
}
