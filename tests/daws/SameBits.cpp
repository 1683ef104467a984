// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/SameBits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{
/** The first frame at which the bits differ; the length where none do. */
std::size_t firstDifference (const std::vector<float>& a, const std::vector<float>& b)
{
    const auto sameBits = [] (float x, float y) { return std::memcmp (&x, &y, sizeof (float)) == 0; };
    return static_cast<std::size_t> (std::mismatch (a.begin(), a.end(), b.begin(), b.end(), sameBits).first
                                     - a.begin());
}
} // namespace

void expectSameBits (const Channels& actual, const Channels& expected)
{
    ASSERT_EQ (actual.size(), expected.size());

    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        ASSERT_EQ (actual[i].size(), expected[i].size());
        EXPECT_EQ (firstDifference (actual[i], expected[i]), expected[i].size()) << "channel " << i;
    }
}
