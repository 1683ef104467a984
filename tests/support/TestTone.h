// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

/** A sine on all channels alike, interleaved. */
struct TestTone
{
    double frequency = 997.0; // Hz
    double peakDbfs = -23.0;
    double seconds = 1.0;
    int channels = 2;
    int sampleRate = 48000; // Hz
    double phase = 0.0;     // of the first sample, radians

    std::vector<float> samples() const
    {
        std::vector<float> interleaved;
        const auto frames = std::lround (seconds * sampleRate);
        const auto amplitude = std::pow (10.0, peakDbfs / 20.0);

        for (long frame = 0; frame < frames; ++frame)
        {
            const auto angle = 2.0 * std::numbers::pi * frequency * double (frame) / sampleRate + phase;

            for (int channel = 0; channel < channels; ++channel)
                interleaved.push_back (static_cast<float> (amplitude * std::sin (angle)));
        }

        return interleaved;
    }
};

/** Several sounds one after the other. */
inline std::vector<float> joined (const std::vector<std::vector<float>>& parts)
{
    std::vector<float> whole;

    for (const auto& part : parts)
        whole.insert (whole.end(), part.begin(), part.end());

    return whole;
}
