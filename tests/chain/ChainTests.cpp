// SPDX-License-Identifier: AGPL-3.0-only
// The whole chain, sample by sample, inside the processor.
#include "support/Comparison.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
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
        ASSERT_EQ (bitsOf (outLeft), bitsOf (left));
        ASSERT_EQ (bitsOf (outRight), bitsOf (right));
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

    const auto before = processor.memory();
    std::vector<float> loud (1000, 1.0f);
    processor.run (loud, loud);
    EXPECT_EQ (processor.memory(), before);
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

    EXPECT_EQ (left, std::vector<float> (left.size(), 0.0f));
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
    auto left = noise (20000, 0.0, 5).left;
    auto right = left;
    processor.run (left, right);
    EXPECT_EQ (left, right);
}
} // namespace
