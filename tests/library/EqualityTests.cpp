// SPDX-License-Identifier: AGPL-3.0-only
// The built library against the oracle: every position of the parameter, rate, block size and signal.
#include "reference/ReferencePlugin.h"
#include "support/Comparison.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

namespace
{
// How far the library may be from the oracle in a mode that is not "bypass", in full scale.
constexpr double bound = 2e-5;

constexpr float rates[] = { 8000.0f, 22050.0f, 44100.0f, 48000.0f, 96000.0f, 192000.0f };

// A block size of 0 stands for blocks of random sizes; empty blocks come along with every other size.
constexpr std::size_t randomSizes = 0;
constexpr std::size_t blockSizes[] = { 1, 17, 64, 512, 4096, randomSizes };

float positionValue (int position)
{
    return knobPosition (position);
}

Signal throughOracle (Signal signal, int position, float rate, bool mono)
{
    const ScopedFlushToZero flushToZero;
    ReferencePlugin oracle (mono);
    oracle.setParameter (positionValue (position));
    oracle.setHostRate (static_cast<double> (rate));

    for (std::size_t i = 0; i < signal.left.size(); ++i)
        oracle.process (signal.left[i], signal.right[i]);

    return signal;
}

Signal throughLibrary (Signal signal, int position, float rate, bool mono, std::size_t blockSize)
{
    RawHost host;
    host.setParameter (positionValue (position));
    host.start (rate, 4096, mono);
    std::mt19937 random (99);

    for (std::size_t done = 0; done < signal.left.size();)
    {
        const std::size_t wanted = blockSize == randomSizes ? random() % 4097 : blockSize;
        const std::size_t frames = std::min (wanted, signal.left.size() - done);
        host.process (signal.left, signal.right, done, frames);
        host.process (signal.left, signal.right, done, 0);
        done += frames;
    }

    return signal;
}

class Equality : public RawHost::Anchored<testing::TestWithParam<int>>
{
};

TEST_P (Equality, HoldsForEveryRateBlockSizeLayoutAndSignal)
{
    const int position = GetParam();
    double worst = 0.0;

    for (const auto& signal : testSignals (3 * 4096 + 11))
        for (const float rate : rates)
            for (const bool mono : { false, true })
            {
                const auto expected = throughOracle (signal, position, rate, mono);

                for (const std::size_t blockSize : blockSizes)
                {
                    const auto difference =
                        compare (throughLibrary (signal, position, rate, mono, blockSize), expected);
                    ASSERT_LE (difference.worst, position == 0 ? 0.0 : bound)
                        << signal.name << (mono ? ", mono, " : ", stereo, ") << rate << " Hz, blocks of " << blockSize
                        << ", frame " << difference.where;

                    ASSERT_TRUE (position != 0 || difference.sameBits) << signal.name << " at " << rate;

                    worst = std::max (worst, difference.worst);
                }
            }

    RecordProperty ("worst", std::to_string (worst));
    std::cout << "position " << position << ": worst difference " << worst << " of full scale\n";
}

TEST_P (Equality, DoesNotWearOffOverTenSeconds)
{
    const int position = GetParam();
    double worst = 0.0;
    const auto holds = [&] (const Signal& signal, float rate)
    {
        const auto difference = compare (throughLibrary (signal, position, rate, false, 512),
                                         throughOracle (signal, position, rate, false));
        EXPECT_LE (difference.worst, position == 0 ? 0.0 : bound) << signal.name << " at " << rate << " Hz";
        EXPECT_LE (difference.worstAtEnd, bound / 2) << signal.name << " at " << rate << " Hz";
        worst = std::max (worst, difference.worst);
    };

    for (const float rate : rates)
        holds (voice (static_cast<std::size_t> (rate * 10.0f)), rate);

    holds (noise (480000, -20.0, 7), 48000.0f);
    std::cout << "position " << position << ": worst difference over ten seconds " << worst << " of full scale\n";
}

INSTANTIATE_TEST_SUITE_P (OfLibraryAndOracle, Equality, testing::Range (0, 10));

TEST (EqualityAfterANewRate, HoldsAlsoWhereTheFiltersHearOfItOnlyAtTheNextRefresh)
{
    constexpr std::size_t change = 10000;
    constexpr std::size_t frames = 70000; // the refresh comes with the 65536th
    auto actual = noise (frames, -12.0, 5);
    auto expected = actual;

    RawHost host;
    host.start (48000.0f);
    host.process (actual.left, actual.right, 0, change);
    host.suspend();
    host.start (96000.0f);
    host.process (actual.left, actual.right, change, frames - change);

    const ScopedFlushToZero flushToZero;
    ReferencePlugin oracle (false);

    for (std::size_t i = 0; i < frames; ++i)
    {
        oracle.setHostRate (i < change ? 48000.0 : 96000.0);
        oracle.process (expected.left[i], expected.right[i]);
    }

    EXPECT_LE (compare (actual, expected).worst, bound);
}

TEST (EqualityCheck, IsNotThatOfTwoSilences)
{
    // The comparison itself must be able to see a difference, and the modes must be different sounds.
    const auto signal = voice (20000);
    const auto medium = throughLibrary (signal, 2, 48000.0f, false, 512);

    for (const int other : { 0, 1, 3, 4 })
        EXPECT_GT (compare (throughLibrary (signal, other, 48000.0f, false, 512), medium).worst, 0.01) << other;

    EXPECT_EQ (
        compare (throughLibrary (signal, 4, 48000.0f, false, 512), throughLibrary (signal, 9, 48000.0f, false, 512))
            .worst,
        0.0)
        << "positions without a name share the neutral row";
}
} // namespace
