// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"

namespace larkspire
{

inline constexpr float highestInput = 20.0f;

// The two lower bounds differ, and projects sound the way they do because of it.
inline constexpr float lowestLeftInput = -30.0f;
inline constexpr float lowestRightInput = -20.0f;

/** Limits samples of the left channel, or of a mono sound, to what the chain takes: -30 to 20, linear with full scale
    1.0. NaN becomes the lower bound. */
inline Lanes limitLeft (Lanes samples)
{
    return minOf (maxOf (samples, broadcast (lowestLeftInput)), broadcast (highestInput));
}

/** The same for the right channel: -20 to 20. */
inline Lanes limitRight (Lanes samples)
{
    return minOf (maxOf (samples, broadcast (lowestRightInput)), broadcast (highestInput));
}

/** One frame of two channels, limited. */
inline StereoSample limitInput (float left, float right)
{
    const float limitedLeft = limitLeft (broadcast (left))[0];
    const float limitedRight = limitRight (broadcast (right))[0];
    return { limitedLeft, limitedRight };
}

/** One sample of a mono sound, limited, for both channels. */
inline StereoSample limitInput (float sample)
{
    const float limited = limitLeft (broadcast (sample))[0];
    return { limited, limited };
}

} // namespace larkspire
