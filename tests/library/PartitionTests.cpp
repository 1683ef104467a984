// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Comparison.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{
class Partition : public RawHost::Anchored<testing::Test>
{
};

TEST_F (Partition, IntoAnyBlocksGivesTheBitsOfOneBlock)
{
    constexpr std::size_t frames = 6000;
    const auto input = noise (frames, -6.0, 1);

    for (const int position : { 1, 2, 3, 7 })
    {
        auto whole = input;
        {
            RawHost host;
            host.setParameter (knobPosition (position));
            host.start (48000.0f, static_cast<int> (frames));
            host.process (whole.left, whole.right, 0, frames);
        }

        for (unsigned int seed = 0; seed < 250; ++seed)
        {
            std::mt19937 random (seed);
            auto parts = input;
            RawHost host;
            host.setParameter (knobPosition (position));
            host.start (48000.0f, static_cast<int> (frames));

            for (std::size_t done = 0; done < frames;)
            {
                const std::size_t largest = std::size_t { 1 } << (random() % 13);
                const std::size_t size = std::min (random() % (largest + 1), frames - done);
                host.process (parts.left, parts.right, done, size);
                done += size;
            }

            ASSERT_TRUE (compare (parts, whole).sameBits) << "position " << position << ", seed " << seed;
        }
    }
}

TEST_F (Partition, OfABlockTwiceTheAnnouncedSizeGivesTheSameBits)
{
    const auto input = noise (1024, -6.0, 2);
    auto whole = input;
    auto parts = input;
    RawHost large;
    large.start (48000.0f, 512);
    large.process (whole.left, whole.right, 0, 1024);

    RawHost small;
    small.start (48000.0f, 512);
    small.process (parts.left, parts.right, 0, 512);
    small.process (parts.left, parts.right, 512, 512);
    EXPECT_TRUE (compare (parts, whole).sameBits);
}

TEST_F (Partition, OutOfPlaceGivesTheSameBitsAndLeavesTheInput)
{
    const auto input = noise (2000, -6.0, 3);
    auto inPlace = input;
    RawHost first;
    first.start (48000.0f);
    first.process (inPlace.left, inPlace.right, 0, 2000);

    auto source = input;
    Signal outOfPlace { "", std::vector<float> (2000), std::vector<float> (2000) };
    RawHost second;
    second.start (48000.0f);
    float* in[] = { source.left.data(), source.right.data() };
    float* out[] = { outOfPlace.left.data(), outOfPlace.right.data() };
    second.process (in, out, 2000);

    EXPECT_TRUE (compare (outOfPlace, inPlace).sameBits);
    EXPECT_TRUE (compare (source, input).sameBits);
}
} // namespace
