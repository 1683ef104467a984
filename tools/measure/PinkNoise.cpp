// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/PinkNoise.h"

#include "measure/Tone.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace larkspire::measure
{

namespace
{
/** Turns white noise pink; see the header. */
class PinkFilter
{
public:
    explicit PinkFilter (int sampleRate)
    {
        constexpr double lowestPole = 10.0; // Hz
        const auto octaves = static_cast<int> (std::ceil (std::log2 (0.5 * sampleRate / lowestPole)));
        const auto place = [sampleRate] (double frequency)
        { return std::exp (-2.0 * std::numbers::pi * frequency / sampleRate); };

        for (int octave = 0; octave < octaves; ++octave)
            sections.push_back ({ .pole = place (lowestPole * std::exp2 (octave)),
                                  .zero = place (lowestPole * std::exp2 (octave + 0.5)) });
    }

    double process (double x)
    {
        for (auto& section : sections)
        {
            const auto held = x + section.pole * section.memory;
            x = held - section.zero * section.memory;
            section.memory = held;
        }

        return x;
    }

private:
    struct Section
    {
        double pole;
        double zero;
        double memory = 0.0;
    };

    std::vector<Section> sections;
};

/** Normally distributed numbers. The standard fixes those of the generator, but not how its own distributions use
    them. */
class NormalNumbers
{
public:
    double next()
    {
        const auto radius = std::sqrt (-2.0 * std::log (uniform()));
        return radius * std::cos (2.0 * std::numbers::pi * uniform());
    }

private:
    /** Above 0 and below 1. */
    double uniform() { return (static_cast<double> (generator()) + 0.5) / 4294967296.0; }

    std::mt19937 generator { 1 };
};
} // namespace

std::vector<float> pinkNoise (std::size_t frames, int sampleRate)
{
    NormalNumbers white;
    PinkFilter filter (sampleRate);
    std::vector<float> noise (frames);

    for (int i = 0; i < sampleRate; ++i)
        filter.process (white.next()); // until the lowest octave has come up

    std::generate (noise.begin(), noise.end(), [&] { return static_cast<float> (filter.process (white.next())); });

    const auto factor = static_cast<float> (fromDecibels (-levelOf (noise)));
    std::transform (noise.begin(), noise.end(), noise.begin(), [factor] (float sample) { return factor * sample; });
    return noise;
}

} // namespace larkspire::measure
