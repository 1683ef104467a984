// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"
#include "chain/OddPolynomials.h"

namespace larkspire
{

/** atan (t) - t for t within 1 of zero, radians: t^3 P (t^2). Only the lower half counts.

    The lower half of the register sums the first four terms of P, the upper half the last four. Neighbouring
    coefficients differ in sign and are summed first, so that no large terms of many are left to cancel at the end.
*/
inline ChannelPair arcTangentBend (ChannelPair t)
{
    constexpr auto& c = arcTangentCoefficients;
    constexpr ChannelPair c04 { c[0], c[0], c[4], c[4] };
    constexpr ChannelPair c15 { c[1], c[1], c[5], c[5] };
    constexpr ChannelPair c26 { c[2], c[2], c[6], c[6] };
    constexpr ChannelPair c37 { c[3], c[3], c[7], c[7] };

    const ChannelPair t2 = t * t;
    const ChannelPair t4 = t2 * t2;
    const ChannelPair sums = (t2 * c37 + c26) * t4 + (t2 * c15 + c04);
    const ChannelPair p = upperHalf (sums) * (t4 * t4) + sums;
    return p * (t2 * t);
}

/** atan (x), radians, for any float; what is no number stays none. Only the lower half counts.

    Beyond 1 it is pi / 2 - atan (1 / x), with the sign of x.
*/
inline ChannelPair arcTangent (ChannelPair x)
{
    const ChannelPair size = magnitude (x);
    const PairMask steep = size > lanes::one;

    // On most samples of a voice neither channel is, and then nothing waits for a division.
    if (inNeither (steep))
        return arcTangentBend (x) + x;

    const ChannelPair rise = smaller (lanes::one, greater (lanes::minusOne, x)) / greater (lanes::one, size);
    const ChannelPair t = turned (rise, steep & INT32_MIN);
    const ChannelPair quarterTurn = whereSet (steep, turned (lanes::halfPi, signOf (x)));
    return arcTangentBend (t) + (t + quarterTurn);
}

} // namespace larkspire
