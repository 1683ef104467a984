// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"

namespace larkspire
{

inline constexpr float foldScale = 0.75f;

/** Narrows the image towards the middle and lifts it: each output is 1.125 of its own channel and 0.375 of the other.

    side = (left - right) * 0.5, middle = right + left; left = (side + middle) * 0.75, right = (middle - side) * 0.75.
    A centred signal comes out 1.5 times as loud, one that is out of phase 0.75 times.
*/
inline Lanes foldTowardsMiddle (Lanes input)
{
    constexpr LaneMask signOfRight { 0, INT32_MIN, 0, INT32_MIN };
    const Lanes left = leftOfEach (input);
    const Lanes right = rightOfEach (input);
    const Lanes side = (left - right) * broadcast (0.5f);
    const Lanes middle = right + left;
    return (middle + withSignFlipped (side, signOfRight)) * broadcast (foldScale);
}

} // namespace larkspire
