// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/AirTerm.h"
#include "chain/Expander.h"
#include "chain/FiltersSideBySide.h"
#include "chain/Leveller.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"
#include "chain/VoiceChain.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace larkspire
{

/** Where a signal or a running gain can be read on its way through the chain. */
enum class Point
{
    input,
    behindHighPass,
    expanderGain,
    behindExpander,
    behindFold,
    behindAirAndBody,
    levellerGain,
    behindLeveller,
    behindSoftClip
};

inline constexpr std::size_t pointCount = 9;

/** The frames of a slice; fewer at the end, none behind it. */
inline std::span<StereoSample> sliceAt (std::span<StereoSample> frames, std::size_t start, std::size_t length)
{
    const auto first = std::min (start, frames.size());
    return frames.subspan (first, std::min (length, frames.size() - first));
}

/** Puts work (frames, index) in place of all frames, two at a time. Of an odd number the last stands in both halves. */
template <typename Work>
void inTwos (std::span<StereoSample> frames, Work&& work)
{
    std::size_t i = 0;

    for (; i + 2 <= frames.size(); i += 2)
        storeTwoFrames (work (twoFrames (&frames[i]), i), &frames[i]);

    if (i < frames.size())
        storeLowerHalf (work (pairOf (frames[i]), i), frames[i]);
}

/** The stages that remember, while they run: each frame waits for the one before. The records are read once and written
    once. */
template <typename Tap>
class FrameByFrame
{
public:
    FrameByFrame (const VoiceChain& chain, Tap& listener)
        : highPass (chain.highPassLeft, chain.highPassRight),
          expander (chain.expander),
          airAndBody (chain.airFilter, chain.bodyFilter),
          leveller (chain.leveller),
          tap (listener)
    {
    }

    void keepIn (const VoiceChain& chain) const
    {
        highPass.keepIn (chain.highPassLeft, chain.highPassRight);
        expander.keepIn (chain.expander);
        airAndBody.keepIn (chain.airFilter, chain.bodyFilter);
        leveller.keepIn (chain.leveller);
    }

    // Both are inlined wherever they are called; only then the compiler keeps all of this in registers.

    /** All ahead of the air term. The frame becomes the body filter's output, addedAir what the air filter adds. */
    [[gnu::always_inline]] void front (StereoSample& frame, StereoSample& addedAir, std::size_t index)
    {
        const auto input = pairOf (frame);
        const auto voice = highPass.process (input);
        const auto expanded = expand (expander, voice);
        const auto folded = foldTowardsMiddle (expanded);
        const auto filtered = airAndBody.process (folded);
        storeLowerHalf (filtered - folded, addedAir);
        storeUpperHalf (filtered, frame);

        tap (Point::input, input, index);
        tap (Point::behindHighPass, voice, index);
        tap (Point::expanderGain, expander.gain, index);
        tap (Point::behindExpander, expanded, index);
        tap (Point::behindFold, folded, index);
    }

    /** The leveller. */
    [[gnu::always_inline]] void back (StereoSample& frame, std::size_t index)
    {
        const auto coloured = pairOf (frame);
        const auto levelled = level (leveller, coloured);
        storeLowerHalf (levelled, frame);

        tap (Point::behindAirAndBody, coloured, index);
        tap (Point::levellerGain, leveller.gain, index);
        tap (Point::behindLeveller, levelled, index);
    }

private:
    RunningHighPass highPass;
    RunningRider expander;
    RunningFilters airAndBody;
    RunningRider leveller;
    Tap& tap;
};

/** The chain on frames in place, in passes over slices of eight:

        1. high-pass, expander, fold, air and body filter    frame by frame
        2. saturated air                                     two frames in a register
        3. leveller                                          frame by frame
        4. soft clip                                         two frames in a register

    The third works on the slice before, in one loop with the first: neither waits for the other, so the processor does
    one while it waits for the other.

    @param tap  is called as tap (Point, Lanes, index of the frame); what can be read there is the lower half. At
                each point the frames come in order. A tap that does nothing costs nothing
*/
template <typename Tap>
void runPasses (const VoiceChain& chain, std::span<StereoSample> frames, Tap&& tap)
{
    constexpr std::size_t sliceLength = 8;
    static_assert (sliceLength % 2 == 0, "the last frame of an odd number is read with the one behind it");
    std::array<StereoSample, sliceLength> addedAir {};
    std::span<StereoSample> before;
    FrameByFrame stages (chain, tap);

    for (std::size_t start = 0; start < frames.size() || ! before.empty(); start += sliceLength)
    {
        const auto now = sliceAt (frames, start, sliceLength);
        const auto together = std::min (now.size(), before.size());

        for (std::size_t i = 0; i < together; ++i)
        {
            stages.front (now[i], addedAir[i], start + i);
            stages.back (before[i], start - sliceLength + i);
        }

        // The first slice has none before it; the last has fewer behind it, or none.
        for (std::size_t i = together; i < now.size(); ++i)
            stages.front (now[i], addedAir[i], start + i);

        for (std::size_t i = together; i < before.size(); ++i)
            stages.back (before[i], start - sliceLength + i);

        inTwos (now, [&] (auto body, auto i) { return addSaturatedAir (body, twoFrames (&addedAir[i])); });
        inTwos (before, [] (auto levelled, auto) { return softClip (levelled); });

        for (std::size_t i = 0; i < before.size(); ++i)
            tap (Point::behindSoftClip, pairOf (before[i]), start - sliceLength + i);

        before = now;
    }

    stages.keepIn (chain);
}

} // namespace larkspire
