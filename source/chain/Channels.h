// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/InputLimits.h"

#include <cstddef>
#include <span>

namespace larkspire
{

/** Reads both channels, limits the samples to what the chain takes, and puts them side by side as frames.

    @param left    as many samples as there are frames
    @param right   the same, or nullptr for a mono sound: then left stands for both
    @param frames  what is written
*/
inline void readChannels (const float* left, const float* right, std::span<StereoSample> frames)
{
    std::size_t i = 0;

    for (; i + 4 <= frames.size(); i += 4)
    {
        const auto l = limitLeft (fourSamples (left + i));
        const auto r = right != nullptr ? limitRight (fourSamples (right + i)) : l;
        storeTwoFrames (__builtin_shufflevector (l, r, 0, 4, 1, 5), &frames[i]);
        storeTwoFrames (__builtin_shufflevector (l, r, 2, 6, 3, 7), &frames[i + 2]);
    }

    for (; i < frames.size(); ++i)
        frames[i] = right != nullptr ? limitInput (left[i], right[i]) : limitInput (left[i]);
}

/** Writes frames to both channels.

    @param right  nullptr drops the right channel
*/
inline void writeChannels (std::span<const StereoSample> frames, float* left, float* right)
{
    std::size_t i = 0;

    for (; i + 4 <= frames.size(); i += 4)
    {
        const auto first = twoFrames (&frames[i]);
        const auto second = twoFrames (&frames[i + 2]);
        storeFourSamples (__builtin_shufflevector (first, second, 0, 2, 4, 6), left + i);

        if (right != nullptr)
            storeFourSamples (__builtin_shufflevector (first, second, 1, 3, 5, 7), right + i);
    }

    for (; i < frames.size(); ++i)
    {
        left[i] = frames[i].first;

        if (right != nullptr)
            right[i] = frames[i].second;
    }
}

} // namespace larkspire
