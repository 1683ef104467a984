// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"
#include "chain/OddPolynomials.h"

#include <numbers>

namespace larkspire
{

/** atan (t) - t for t within 1 of zero, radians: t^3 P (t^2).

    Neighbouring coefficients differ in sign and are summed first, so that no large terms of many are left to cancel at
    the end.
*/
inline Lanes arcTangentBend (Lanes t)
{
    constexpr auto& c = arcTangentCoefficients;
    const Lanes t2 = t * t;
    const Lanes t4 = t2 * t2;
    const Lanes lower = (t2 * broadcast (c[3]) + broadcast (c[2])) * t4 + (t2 * broadcast (c[1]) + broadcast (c[0]));
    const Lanes upper = (t2 * broadcast (c[7]) + broadcast (c[6])) * t4 + (t2 * broadcast (c[5]) + broadcast (c[4]));
    return (upper * (t4 * t4) + lower) * (t2 * t);
}

/** atan (x), radians, for any float; NaN stays NaN.

    Beyond 1 it is pi / 2 - atan (1 / x), with the sign of x.
*/
inline Lanes arcTangent (Lanes x)
{
    constexpr Lanes one = broadcast (1.0f);
    const Lanes size = magnitude (x);
    const LaneMask steep = size > one;

    // On most samples of a voice no lane is, and then nothing waits for a division.
    if (noneSetAnywhere (steep))
        return arcTangentBend (x) + x;

    const Lanes rise = minOf (one, maxOf (broadcast (-1.0f), x)) / maxOf (one, size);
    const Lanes t = withSignFlipped (rise, steep & INT32_MIN);
    const Lanes quarterTurn = whereSet (steep, withSignFlipped (broadcast (std::numbers::pi_v<float> / 2), signOf (x)));
    return arcTangentBend (t) + (t + quarterTurn);
}

} // namespace larkspire
