// SPDX-License-Identifier: AGPL-3.0-only
// The chain on records of its own, without a processor: in passes, and as it can be listened to. OracleTests.cpp has
// its bits.
#include "chain/FlushToZero.h"
#include "chain/InputLimits.h"
#include "chain/Passes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <span>
#include <vector>

namespace
{
using namespace larkspire;

constexpr std::array points { Point::input,          Point::behindHighPass, Point::expanderGain,
                              Point::behindExpander, Point::behindFold,     Point::behindAirAndBody,
                              Point::levellerGain,   Point::behindLeveller, Point::behindSoftClip };
static_assert (points.size() == pointCount);

/** Noise that goes up and down, from silence to far above full scale. */
std::vector<StereoSample> noise (std::size_t count, unsigned int seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);
    std::vector<StereoSample> frames (count);

    for (std::size_t i = 0; i < count; ++i)
    {
        const auto level = std::pow (10.0f, 6.0f * std::sin (static_cast<float> (i) / 300.0f) - 5.0f);
        frames[i] = limitInput (level * sample (random), level * sample (random));
    }

    return frames;
}

bool sameBits (const std::vector<StereoSample>& one, const std::vector<StereoSample>& other)
{
    return one.size() == other.size() && std::memcmp (one.data(), other.data(), one.size() * sizeof (one[0])) == 0;
}

/** Every field of the records as bits. */
std::vector<std::uint32_t> bitsOf (const VoiceRecords& records)
{
    static_assert (sizeof (VoiceRecords) == (2 * 7 + 2 * 8 + 2 * 16) * sizeof (float), "no padding between the fields");
    std::vector<std::uint32_t> bits (sizeof (records) / sizeof (float));
    std::memcpy (bits.data(), &records, sizeof (records));
    return bits;
}

class VoiceChainInMode : public testing::TestWithParam<int>
{
protected:
    VoiceRecords records() const
    {
        VoiceRecords fresh;
        fresh.chain().adopt (modeForIndex (GetParam()), 48000.0);
        return fresh;
    }

    const ScopedFlushToZero flushToZero;
};

TEST_P (VoiceChainInMode, GivesTheSameBitsHoweverTheFramesAreCut)
{
    const auto input = noise (20000, 1);
    auto wanted = input;
    auto oneByOne = records();

    for (auto& frame : wanted)
        oneByOne.chain().process (std::span (&frame, 1));

    // Every length around the slices, and some that are drawn.
    std::mt19937 random (2);

    for (const std::size_t length : { 2u, 3u, 7u, 8u, 9u, 15u, 16u, 17u, 23u, 24u, 25u, 63u, 64u, 20000u, 0u })
    {
        auto actual = input;
        auto cut = records();

        for (std::size_t done = 0; done < actual.size();)
        {
            const auto count = std::min (length != 0 ? length : random() % 70, actual.size() - done);
            cut.chain().process (std::span (actual).subspan (done, count));
            done += count;
        }

        EXPECT_TRUE (sameBits (actual, wanted)) << "in runs of " << length;
        EXPECT_EQ (bitsOf (cut), bitsOf (oneByOne)) << "in runs of " << length;
    }
}

TEST_P (VoiceChainInMode, CanBeListenedToAtEveryPointInOrder)
{
    const auto input = noise (1003, 4);
    auto frames = input;
    auto listened = records();
    std::map<Point, std::vector<StereoSample>> heard;

    runPasses (listened.chain(),
               frames,
               [&] (Point point, Lanes pair, std::size_t index)
               {
                   ASSERT_EQ (index, heard[point].size());
                   heard[point].push_back (sampleOf (pair));
               });

    for (const auto point : points)
        ASSERT_EQ (heard[point].size(), input.size()) << static_cast<int> (point);

    auto unheard = input;
    auto alone = records();
    alone.chain().process (unheard);
    EXPECT_TRUE (sameBits (frames, unheard)) << "listening changes nothing";
    EXPECT_EQ (bitsOf (listened), bitsOf (alone));

    EXPECT_TRUE (sameBits (heard[Point::input], input));
    EXPECT_TRUE (sameBits (heard[Point::behindSoftClip], frames));
    EXPECT_EQ (heard[Point::expanderGain].back(),
               (StereoSample { listened.expander.gainLeft, listened.expander.gainRight }));
    EXPECT_EQ (heard[Point::levellerGain].back(),
               (StereoSample { listened.leveller.gainLeft, listened.leveller.gainRight }));

    // What is heard at one point becomes what is heard at the next.
    for (std::size_t i = 0; i < input.size(); ++i)
    {
        const auto ridden = [i, &heard] (Point gain, Point from, const LevelRider& settings)
        {
            auto rider = settings;
            rider.gainLeft = heard[gain][i].first;
            rider.gainRight = heard[gain][i].second;
            return sampleOf (RunningRider (rider).ride (pairOf (heard[from][i])));
        };

        ASSERT_EQ (heard[Point::behindExpander][i],
                   ridden (Point::expanderGain, Point::behindHighPass, listened.expander));
        ASSERT_EQ (heard[Point::behindFold][i],
                   sampleOf (foldTowardsMiddle (pairOf (heard[Point::behindExpander][i]))));
        ASSERT_EQ (heard[Point::behindLeveller][i],
                   ridden (Point::levellerGain, Point::behindAirAndBody, listened.leveller));
        ASSERT_EQ (heard[Point::behindSoftClip][i], sampleOf (softClip (pairOf (heard[Point::behindLeveller][i]))));
    }
}

INSTANTIATE_TEST_SUITE_P (Rows, VoiceChainInMode, testing::Range (0, 4));

TEST (VoiceChain, DoesNothingToNoFrames)
{
    VoiceRecords records;
    records.chain().adopt (modeForIndex (2), 48000.0);
    auto frames = noise (100, 6);
    records.chain().process (frames);
    const auto before = bitsOf (records);
    records.chain().process ({});
    EXPECT_EQ (bitsOf (records), before);
}
} // namespace
