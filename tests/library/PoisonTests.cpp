// SPDX-License-Identifier: AGPL-3.0-only
// Bad samples in the middle of a voice: what comes out meanwhile, and how soon it is again what it would have been.
#include "support/RawHost.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace
{
constexpr float rate = 48000.0f;
constexpr std::size_t beforehand = 96000;       // two seconds of voice: the gains have found their places
constexpr std::size_t afterwards = 240000;      // five seconds more
constexpr std::size_t longAfterwards = 2880000; // a minute more

enum Channels
{
    left = 1,
    right = 2,
    both = 3
};

struct Poison
{
    std::string name;
    float sample;
};

const std::vector<Poison>& poisons()
{
    using Limits = std::numeric_limits<float>;
    static const std::vector<Poison> all { { "NaN", Limits::quiet_NaN() },
                                           { "+infinity", Limits::infinity() },
                                           { "-infinity", -Limits::infinity() },
                                           { "the largest number", Limits::max() },
                                           { "the smallest number", -Limits::max() },
                                           { "denormals", Limits::denorm_min() } };
    return all;
}

Signal poisoned (const Poison& poison, int channels, std::size_t length, std::size_t good)
{
    auto signal = voice (beforehand + length + good);

    for (std::size_t i = beforehand; i < beforehand + length; ++i)
    {
        if (channels & left)
            signal.left[i] = poison.sample;

        if (channels & right)
            signal.right[i] = poison.sample;
    }

    return signal;
}

Signal rendered (Signal signal, int position)
{
    RawHost host;
    host.setParameter (knobPosition (position));
    host.start (rate, 4096);

    for (std::size_t done = 0; done < signal.left.size(); done += 4096)
        host.process (signal.left, signal.right, done, std::min<std::size_t> (4096, signal.left.size() - done));

    return signal;
}

/** How many samples lie between the end of the poison and the last one that is farther than this from what it would
   have been, full scale 1.0. */
std::size_t samplesUntilWithin (float distance, const Signal& actual, const Signal& expected, std::size_t start)
{
    for (std::size_t i = actual.left.size(); i > start; --i)
        if (! (std::abs (actual.left[i - 1] - expected.left[i - 1]) <= distance)
            || ! (std::abs (actual.right[i - 1] - expected.right[i - 1]) <= distance))
            return i - start;

    return 0;
}

constexpr std::size_t window = 2400; // 50 ms, as short as an ear hears a level

/** The energy of a window, on top of that of noise at -60 dB, under which nobody hears a level change. */
double energyOf (const Signal& signal, std::size_t from)
{
    double sum = 1e-6 * 2.0 * window;

    for (std::size_t i = from; i < from + window; ++i)
        sum += static_cast<double> (signal.left[i]) * static_cast<double> (signal.left[i])
               + static_cast<double> (signal.right[i]) * static_cast<double> (signal.right[i]);

    return sum;
}

/** The same for the level within 50 ms: until it stays within 1 dB of what it would have been. */
std::size_t samplesUntilTheLevelIsBack (const Signal& actual, const Signal& expected, std::size_t start)
{
    for (std::size_t i = (actual.left.size() - start) / window; i > 0; --i)
    {
        const auto from = start + (i - 1) * window;

        if (std::abs (10.0 * std::log10 (energyOf (actual, from) / energyOf (expected, from))) > 1.0)
            return i * window;
    }

    return 0;
}

class Poisoned : public RawHost::Anchored<testing::TestWithParam<int>>
{
};

constexpr std::array modeNames { "bypass", "Gentle", "Medium", "Powerful", "no name" };

TEST_P (Poisoned, SoundIsFiniteAndWithinItsBoundsAllTheTime)
{
    const int position = GetParam();
    const float bound = position == 0 ? 30.0f : 0.9885f;

    for (const auto& poison : poisons())
        for (const int channels : { left, right, both })
            for (const std::size_t length : { 1u, 100u, 48000u })
            {
                const auto output = rendered (poisoned (poison, channels, length, 4800), position);

                for (const auto* channel : { &output.left, &output.right })
                    EXPECT_TRUE (std::ranges::all_of (*channel, [&] (float s) { return std::abs (s) <= bound; }))
                        << poison.name;
            }
}

/** After how long the level is back in each mode, in seconds, as docs/reliability.md says. */
constexpr std::array documentedSeconds { 0.0, 1.5, 0.3, 0.3, 0.2 };

TEST_P (Poisoned, SoundHasItsLevelBackWithinTheDocumentedTime)
{
    const int position = GetParam();
    const auto mode = static_cast<std::size_t> (position);

    for (const std::size_t length : { 1u, 100u, 1000u })
    {
        const auto expected = rendered (voice (beforehand + length + afterwards), position);
        std::size_t samples = 0;

        for (const auto& poison : poisons())
            for (const int channels : { left, right, both })
                samples = std::max (
                    samples,
                    samplesUntilTheLevelIsBack (rendered (poisoned (poison, channels, length, afterwards), position),
                                                expected,
                                                beforehand + length));

        EXPECT_LE (static_cast<double> (samples), documentedSeconds.at (mode) * static_cast<double> (rate));
        EXPECT_EQ (samples > 0, position != 0) << "it must be heard that something was there";
        std::cout << modeNames.at (mode) << ", " << length << " bad samples: the level is back after " << samples
                  << " samples\n";
    }
}

TEST_P (Poisoned, SoundIsInTheEndWhatItWouldHaveBeen)
{
    const int position = GetParam();

    for (const std::size_t length : { 1u, 100u })
    {
        const auto expected = rendered (voice (beforehand + length + longAfterwards), position);
        const auto actual = rendered (poisoned (poisons().front(), both, length, longAfterwards), position);
        const auto samples = samplesUntilWithin (0.001f, actual, expected, beforehand + length);
        EXPECT_LT (samples, longAfterwards);
        std::cout << modeNames.at (static_cast<std::size_t> (position)) << ", " << length
                  << " bad samples: every sample within -60 dB after " << samples << " samples\n";
    }
}

INSTANTIATE_TEST_SUITE_P (In, Poisoned, testing::Range (0, 5));
} // namespace
