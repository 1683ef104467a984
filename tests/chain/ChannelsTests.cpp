// SPDX-License-Identifier: AGPL-3.0-only
// The way between a host's channels and the chain's frames. The limits themselves are the block loop's tests.
#include "chain/Channels.h"
#include "support/Comparison.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace
{
using namespace larkspire;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/** Samples that count up from here, with some beyond every limit. */
std::vector<float> samplesFrom (float first, std::size_t count)
{
    std::vector<float> samples (count);

    for (std::size_t i = 0; i < count; ++i)
        samples[i] = i % 5 == 4 ? -25.0f : i % 7 == 6 ? nan : first + static_cast<float> (i);

    return samples;
}

TEST (Channels, BecomeLimitedFramesAndChannelsAgain)
{
    for (std::size_t count = 0; count < 20; ++count)
    {
        const auto left = samplesFrom (0.5f, count);
        const auto right = samplesFrom (-3.25f, count);
        std::vector<StereoSample> frames (count);
        readChannels (left.data(), right.data(), frames);

        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ (frames[i], limitInput (left[i], right[i])) << i << " of " << count;

        std::vector<float> leftOut (count + 1, 99.0f);
        std::vector<float> rightOut (count + 1, 99.0f);
        writeChannels (frames, leftOut.data(), rightOut.data());

        for (std::size_t i = 0; i < count; ++i)
        {
            EXPECT_EQ (leftOut[i], frames[i].first) << i << " of " << count;
            EXPECT_EQ (rightOut[i], frames[i].second) << i << " of " << count;
        }

        EXPECT_EQ (leftOut[count], 99.0f) << "nothing is written behind the end";
        EXPECT_EQ (rightOut[count], 99.0f);
    }
}

TEST (Channels, OfAMonoSoundStandForBothSides)
{
    for (std::size_t count = 0; count < 20; ++count)
    {
        const auto left = samplesFrom (0.5f, count);
        std::vector<StereoSample> frames (count);
        readChannels (left.data(), nullptr, frames);

        for (std::size_t i = 0; i < count; ++i)
        {
            EXPECT_EQ (frames[i], limitInput (left[i])) << i << " of " << count;
            EXPECT_EQ (frames[i].first, frames[i].second) << "under the left channel's limits";
        }

        std::vector<float> leftOut (count);
        writeChannels (frames, leftOut.data(), nullptr);

        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ (leftOut[i], frames[i].first);
    }
}

TEST (Channels, LimitADenormalAlikeWhereverItStands)
{
    const ScopedFlushToZero flushToZero;
    const std::vector<float> samples (7, std::bit_cast<float> (0x80012345u));
    std::vector<StereoSample> frames (7);
    readChannels (samples.data(), samples.data(), frames);

    for (const auto& frame : frames)
    {
        EXPECT_EQ (bitsOf (frame.first), bitsOf (frames[0].first));
        EXPECT_EQ (bitsOf (frame.second), bitsOf (frames[0].first));
    }
}

TEST (FlushToZero, EndsWithItsScope)
{
    constexpr unsigned int resultsAndOperands = 0x8040;
    const auto before = _mm_getcsr();

    {
        const ScopedFlushToZero flushToZero;
        EXPECT_EQ (_mm_getcsr() & resultsAndOperands, resultsAndOperands);
    }

    EXPECT_EQ (_mm_getcsr(), before);
}
} // namespace
