// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Sine.h"

namespace larkspire
{

inline constexpr float halfPi = 1.57079637f;
inline constexpr float clipCeiling = 0.9885f;

/** sin (w) * 0.9885 with w limited to a quarter turn either way: rounded from the first sample value up, no knee.

    The output of a number lies within 0.9885 of zero; NaN stays NaN.
*/
inline Lanes softClip (Lanes w)
{
    const Lanes limited = minOf (broadcast (halfPi), maxOf (broadcast (-halfPi), w));
    return sineWithinQuarterTurn (limited) * broadcast (clipCeiling);
}

} // namespace larkspire
