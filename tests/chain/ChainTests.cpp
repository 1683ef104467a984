// SPDX-License-Identifier: AGPL-3.0-only
// The whole chain, sample by sample, inside the processor.
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <random>

namespace
{
std::uint32_t bits (float value)
{
    return std::bit_cast<std::uint32_t> (value);
}

TEST (Chain, PassesEveryBitInBypassAndStillNoticesAChange)
{
    OpenProcessor processor;
    processor.adoptMode (0.0f);
    processor.settingsDue = false;
    processor.modeParameter->hasChanged();
    std::mt19937 random (3);

    for (int i = 0; i < 10000; ++i)
    {
        const auto left = std::bit_cast<float> (static_cast<std::uint32_t> (random()));
        const auto right = std::bit_cast<float> (static_cast<std::uint32_t> (random()));
        const auto [outLeft, outRight] = processor.processStereoSample ({ left, right });
        ASSERT_EQ (bits (outLeft), bits (left));
        ASSERT_EQ (bits (outRight), bits (right));
    }

    ASSERT_FALSE (processor.settingsDue);
    processor.samplesSinceChange = 55;
    processor.setMode (knobPosition (1));
    processor.processStereoSample ({ 0.5f, 0.5f });
    EXPECT_TRUE (processor.settingsDue);
    EXPECT_EQ (processor.samplesSinceChange, 0);
    EXPECT_EQ (processor.modeParameter->lastValue, knobPosition (1));
}

TEST (Chain, FreezesInBypassAndResumesFromThere)
{
    OpenProcessor processor;
    std::vector<float> left (300, 0.4f);
    std::vector<float> right (300, 0.3f);
    processor.run (left, right);
    processor.setMode (0.0f);
    std::vector<float> one (1, 0.4f);
    processor.run (one, one);

    const auto air = *processor.airFilter;
    const auto expander = *processor.expander;
    std::vector<float> loud (1000, 1.0f);
    processor.run (loud, loud);
    EXPECT_EQ (std::memcmp (&air.left, &processor.airFilter->left, 2 * sizeof (air.left)), 0);
    EXPECT_EQ (expander.gainLeft, processor.expander->gainLeft);
}

TEST (Chain, FindsAChangeAtItsFirstSample)
{
    OpenProcessor processor;
    std::vector<float> one (1, 0.1f);
    processor.run (one, one);
    EXPECT_TRUE (processor.settingsDue) << "the far-off start of the watch reports a change";
    processor.run (one, one);
    EXPECT_FALSE (processor.settingsDue);
}

TEST (Chain, RunsTheSampleThatFindsAChangeOnTheOldSettings)
{
    OpenProcessor processor;
    processor.setMode (knobPosition (3));
    std::vector<float> left (10, 0.1f);
    std::vector<float> right (10, 0.1f);
    processor.run (left, right);
    ASSERT_EQ (processor.modeIndex, 3);

    processor.setMode (0.0f);
    std::vector<float> first (1, 0.1f);
    auto firstRight = first;
    processor.run (first, firstRight);
    EXPECT_EQ (processor.modeIndex, 3);
    EXPECT_NE (first[0], 0.1f);

    std::vector<float> second (1, 0.1f);
    auto secondRight = second;
    processor.run (second, secondRight);
    EXPECT_EQ (processor.modeIndex, 0);
    EXPECT_EQ (second[0], 0.1f);
}

TEST (Chain, ComesToRestInSilence)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    std::vector<float> left (480000, 0.0f);
    std::vector<float> right (480000, 0.0f);
    processor.run (left, right);

    EXPECT_EQ (processor.expander->gainLeft, 0.2f);
    EXPECT_EQ (processor.expander->gainRight, 0.2f);
    EXPECT_GT (processor.leveller->gainLeft, 0.99f);
    EXPECT_LE (processor.leveller->gainLeft, 1.0f);

    for (std::size_t i = 0; i < left.size(); ++i)
        ASSERT_EQ (left[i], 0.0f);
}

TEST (Chain, BringsALeftVoiceToTheRightOutput)
{
    OpenProcessor processor;
    std::vector<float> left (100, 0.0f);
    std::vector<float> right (100, 0.0f);
    left[50] = 1.0f;
    processor.run (left, right);
    EXPECT_GT (std::abs (right[50]), 0.01f);
    EXPECT_GT (std::abs (left[50]), std::abs (right[50]));
}

TEST (Chain, GivesBothChannelsTheSameOnEqualInputs)
{
    OpenProcessor processor;
    std::mt19937 random (5);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);
    std::vector<float> left (20000);

    for (auto& value : left)
        value = sample (random);

    auto right = left;
    processor.run (left, right);
    EXPECT_EQ (left, right);
}

TEST (Chain, StaysWithinTheCeilingForAllThatTheBlockLoopLetsIn)
{
    std::mt19937 random (17);
    std::uniform_real_distribution<float> sample (-30.0f, 20.0f);

    for (int position = 1; position < 10; ++position)
    {
        OpenProcessor processor;
        processor.giveRate (44100.0);
        processor.setMode (knobPosition (position));
        std::vector<float> left (50000);
        std::vector<float> right (50000);

        for (std::size_t i = 0; i < left.size(); ++i)
        {
            left[i] = sample (random);
            right[i] = sample (random);
        }

        processor.run (left, right);

        for (std::size_t i = 0; i < left.size(); ++i)
        {
            ASSERT_LE (std::abs (left[i]), 0.9885f) << position << " at " << i;
            ASSERT_LE (std::abs (right[i]), 0.9885f) << position << " at " << i;
        }
    }
}

TEST (Chain, IsNotScaledByTheRate)
{
    // The same silence takes the gains to the same place at any rate: the stages count samples, not seconds.
    float gains[2] = {};

    for (std::size_t i = 0; i < 2; ++i)
    {
        OpenProcessor processor;
        processor.giveRate (i == 0 ? 48000.0 : 96000.0);
        std::vector<float> silence (1000, 0.0f);
        processor.run (silence, silence);
        gains[i] = processor.expander->gainLeft;
    }

    EXPECT_EQ (gains[0], gains[1]);
    EXPECT_LT (gains[0], 0.5f);
}

TEST (Chain, RidesTheChannelsSeparately)
{
    OpenProcessor processor;
    std::mt19937 random (23);
    std::uniform_real_distribution<float> sample (-0.5f, 0.5f);
    std::vector<float> left (20000, 0.0f);
    std::vector<float> right (20000, 0.0f);

    for (auto& value : left)
        value = sample (random);

    processor.run (left, right);
    EXPECT_EQ (processor.expander->gainLeft, 1.0f);
    EXPECT_EQ (processor.expander->gainRight, 0.2f);
    EXPECT_LT (processor.leveller->gainLeft, processor.leveller->gainRight);
}
} // namespace
