// SPDX-License-Identifier: AGPL-3.0-only
// What a host changes while audio runs: mode, rate, suspend and resume, bypass.
#include "reference/ReferencePlugin.h"
#include "support/Comparison.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace
{
constexpr float gentle = knobPosition (1);
constexpr float powerful = knobPosition (3);

/** Runs a block of the oracle's, in place, as the library would. */
void runOracle (ReferencePlugin& oracle, Signal& signal, std::size_t from, std::size_t frames)
{
    const ScopedFlushToZero flushToZero;

    for (std::size_t i = from; i < from + frames; ++i)
        oracle.process (signal.left[i], signal.right[i]);
}

TEST (Change, OfModeLeavesTheSampleThatFindsItOnTheOldSettings)
{
    std::mt19937 random (8);

    for (int run = 0; run < 50; ++run)
    {
        const std::size_t change = 100 + random() % 4000;
        const auto input = noise (change + 10, -6.0, 100 + static_cast<unsigned int> (run));

        auto unchanged = input;
        RawHost steady;
        steady.setParameter (powerful);
        steady.start (48000.0f);
        steady.process (unchanged.left, unchanged.right, 0, change + 1);

        auto changed = input;
        RawHost host;
        host.setParameter (powerful);
        host.start (48000.0f);
        host.process (changed.left, changed.right, 0, change);
        host.setParameter (0.0f);
        host.process (changed.left, changed.right, change, 10);

        ASSERT_EQ (changed.left[change], unchanged.left[change]) << "the sample at the change, run " << run;
        ASSERT_EQ (changed.right[change], unchanged.right[change]);
        ASSERT_NE (changed.left[change], input.left[change]);

        for (std::size_t i = change + 1; i < change + 10; ++i)
            ASSERT_EQ (changed.left[i], input.left[i]) << "bypass from the sample after";
    }
}

TEST (Change, OfModeTakesEffectAtTheNextSampleWithTheGainsAsTheyStood)
{
    std::mt19937 random (9);

    for (int run = 0; run < 50; ++run)
    {
        const std::size_t change = 100 + random() % 4000;
        auto actual = noise (change + 3000, -12.0, 200 + static_cast<unsigned int> (run));
        auto expected = actual;

        RawHost host;
        host.setParameter (powerful);
        host.start (48000.0f);
        host.process (actual.left, actual.right, 0, change);
        host.setParameter (gentle);
        host.process (actual.left, actual.right, change, 3000);

        ReferencePlugin oracle (false);
        oracle.setParameter (powerful);
        oracle.setHostRate (48000.0);
        runOracle (oracle, expected, 0, change);
        oracle.setParameter (gentle);
        runOracle (oracle, expected, change, 3000);

        ASSERT_LE (compare (actual, expected).worst, 2e-5) << "run " << run;
    }
}

TEST (Change, OfRateReachesTheFiltersOnlyAtTheNextRefresh)
{
    constexpr std::size_t frames = 70000;
    const auto input = noise (frames, -12.0, 5);

    auto changed = input;
    RawHost host;
    host.start (48000.0f);
    host.process (changed.left, changed.right, 0, 10000);
    host.suspend();
    host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, 96000.0f);
    host.resume();
    host.process (changed.left, changed.right, 10000, frames - 10000);

    auto steady = input;
    RawHost other;
    other.start (48000.0f);
    other.process (steady.left, steady.right, 0, frames);

    // Sample 65535, counted from 0, is the one ahead of which the counter wraps.
    for (std::size_t i = 0; i < 65535; ++i)
        ASSERT_EQ (changed.left[i], steady.left[i]) << i;

    std::size_t different = 0;

    for (std::size_t i = 65535; i < frames; ++i)
        different += changed.left[i] != steady.left[i] ? 1 : 0;

    EXPECT_GT (different, 4000u);
}

TEST (Change, OfRateReachesTheFiltersSoonerWithAChangeOfMode)
{
    auto actual = noise (20000, -12.0, 6);
    auto expected = actual;

    RawHost host;
    host.start (44100.0f);
    host.process (actual.left, actual.right, 0, 5000);
    host.suspend();
    host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, 8000.0f);
    host.resume();
    host.process (actual.left, actual.right, 5000, 5000);
    host.setParameter (gentle);
    host.process (actual.left, actual.right, 10000, 10000);

    ReferencePlugin oracle (false);
    oracle.setHostRate (44100.0);
    runOracle (oracle, expected, 0, 5000);
    oracle.setHostRate (8000.0);
    runOracle (oracle, expected, 5000, 5000);
    oracle.setParameter (gentle);
    runOracle (oracle, expected, 10000, 10000);
    EXPECT_LE (compare (actual, expected).worst, 2e-5);
}

TEST (Change, BySuspendAndResumeKeepsGainsAndMemories)
{
    const auto input = noise (8000, -12.0, 7);
    auto steady = input;
    RawHost first;
    first.start (48000.0f);
    first.process (steady.left, steady.right, 0, 8000);

    auto stopped = input;
    RawHost second;
    second.start (48000.0f);
    second.process (stopped.left, stopped.right, 0, 3000);
    second.suspend();
    second.resume();
    second.process (stopped.left, stopped.right, 3000, 5000);
    EXPECT_TRUE (compare (stopped, steady).sameBits);
}

TEST (Change, ByHostBypassStandsTheChainStillAndPassesTheInput)
{
    const auto input = noise (6000, 30.0, 8); // louder than the limits: not even those apply
    auto actual = input;
    actual.left[2500] = std::numeric_limits<float>::quiet_NaN();
    const auto beforeBypass = actual;

    RawHost host;
    host.start (48000.0f);
    host.process (actual.left, actual.right, 0, 2000);
    EXPECT_EQ (host.dispatch (Vst2::effSetBypass, 0, 1), 1);
    host.process (actual.left, actual.right, 2000, 1500);
    EXPECT_EQ (host.dispatch (Vst2::effSetBypass, 0, 0), 1);
    host.process (actual.left, actual.right, 3500, 2500);

    // The same sound as if the bypassed stretch had never been.
    Signal shortened;
    for (std::size_t i = 0; i < input.left.size(); ++i)
        if (i < 2000 || i >= 3500)
        {
            shortened.left.push_back (input.left[i]);
            shortened.right.push_back (input.right[i]);
        }

    RawHost other;
    other.start (48000.0f);
    other.process (shortened.left, shortened.right, 0, shortened.left.size());

    Signal passed { "",
                    { actual.left.begin() + 2000, actual.left.begin() + 3500 },
                    { actual.right.begin() + 2000, actual.right.begin() + 3500 } };
    Signal sent { "",
                  { beforeBypass.left.begin() + 2000, beforeBypass.left.begin() + 3500 },
                  { beforeBypass.right.begin() + 2000, beforeBypass.right.begin() + 3500 } };
    EXPECT_TRUE (compare (passed, sent).sameBits);

    Signal around = actual;
    around.left.erase (around.left.begin() + 2000, around.left.begin() + 3500);
    around.right.erase (around.right.begin() + 2000, around.right.begin() + 3500);
    EXPECT_TRUE (compare (around, shortened).sameBits);
}

TEST (Change, ByHostBypassLeavesTheSecondBufferOfAMonoLayoutAlone)
{
    auto signal = noise (100, -6.0, 9);
    const auto input = signal;
    RawHost host;
    host.start (48000.0f, 512, true);
    host.dispatch (Vst2::effSetBypass, 0, 1);
    host.process (signal.left, signal.right, 0, 100);
    EXPECT_TRUE (compare (signal, input).sameBits);
}

TEST (Change, OfAnythingInAnyOrderFollowsTheOracle)
{
    for (unsigned int seed = 0; seed < 40; ++seed)
    {
        std::mt19937 random (seed);
        const bool mono = random() % 3 == 0;
        auto actual = noise (150000, -10.0, seed);
        auto expected = actual;
        RawHost host;
        ReferencePlugin oracle (mono);
        host.start (44100.0f, 4096, mono);
        oracle.setHostRate (44100.0);
        bool bypassed = false;

        for (std::size_t done = 0; done < actual.left.size();)
        {
            switch (random() % 6)
            {
            case 0:
            {
                const auto value = knobPosition (static_cast<int> (random() % 10));
                host.setParameter (value);
                oracle.setParameter (value);
                break;
            }
            case 1:
            {
                constexpr float choices[] = { 8000.0f, 44100.0f, 96000.0f, 500.0f };
                const float rate = choices[random() % 4];
                host.suspend();
                host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, rate);
                host.resume();
                oracle.setHostRate (static_cast<double> (rate));
                break;
            }
            case 2:
                bypassed = random() % 2 == 0;
                host.dispatch (Vst2::effSetBypass, 0, bypassed ? 1 : 0);
                break;
            default:
                break;
            }

            const std::size_t frames = std::min<std::size_t> (random() % 4096, actual.left.size() - done);
            host.process (actual.left, actual.right, done, frames);

            if (! bypassed)
                runOracle (oracle, expected, done, frames);

            done += frames;
        }

        ASSERT_LE (compare (actual, expected).worst, 2e-5) << "seed " << seed;
    }
}
} // namespace
