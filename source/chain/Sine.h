// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"

namespace larkspire
{

/** sin (x) for x within a quarter turn of zero, radians; what is no number stays none.

    x + x^3 P (x^2), with what is added last the largest by far, so that its rounding is the only one that counts.
*/
inline ChannelPair sineWithinQuarterTurn (ChannelPair x)
{
    const auto& c = lanes::sine;
    const ChannelPair x2 = x * x;
    const ChannelPair x3 = x2 * x;
    const ChannelPair p = (x2 * c[3] + c[2]) * (x2 * x2) + (x2 * c[1] + c[0]);
    return p * x3 + x;
}

} // namespace larkspire
