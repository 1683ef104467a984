// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"
#include "chain/PeakingFilter.h"

namespace larkspire
{

/** One sample of each channel through two filters that stand side by side, both channels of both in one register.

    Each filter does what process does, to the bit. @returns the first filter's pair in the lower half, the second's in
    the upper.
*/
inline ChannelPair filterSideBySide (PeakingFilter& lower, PeakingFilter& upper, ChannelPair x)
{
    // Four neighbours in the records each: b0, b1, b2, a0. Two: a1, a2.
    const auto lowerB = loadFour (&lower.b0);
    const auto upperB = loadFour (&upper.b0);
    const auto a12 = loadHalves (&lower.a1, &upper.a1);

    const auto r = lanes::one / __builtin_shufflevector (lowerB, upperB, 3, 3, 7, 7);
    const auto nb0 = r * __builtin_shufflevector (lowerB, upperB, 0, 0, 4, 4);
    const auto nb1 = r * __builtin_shufflevector (lowerB, upperB, 1, 1, 5, 5);
    const auto nb2 = r * __builtin_shufflevector (lowerB, upperB, 2, 2, 6, 6);
    const auto na1 = r * shuffled<0, 0, 2, 2> (a12);
    const auto na2 = r * shuffled<1, 1, 3, 3> (a12);

    // The memory as pairs of neighbours, x1 with x2 and y1 with y2; apart by two shuffles each.
    const auto lowerX = loadHalves (&lower.left.x1, &lower.right.x1);
    const auto upperX = loadHalves (&upper.left.x1, &upper.right.x1);
    const auto lowerY = loadHalves (&lower.left.y1, &lower.right.y1);
    const auto upperY = loadHalves (&upper.left.y1, &upper.right.y1);
    const auto x1 = __builtin_shufflevector (lowerX, upperX, 0, 2, 4, 6);
    const auto x2 = __builtin_shufflevector (lowerX, upperX, 1, 3, 5, 7);
    const auto y1 = __builtin_shufflevector (lowerY, upperY, 0, 2, 4, 6);
    const auto y2 = __builtin_shufflevector (lowerY, upperY, 1, 3, 5, 7);

    const auto y = nb0 * x + nb1 * x1 + nb2 * x2 - na1 * y1 - na2 * y2;

    // x1 and y1 move back to x2 and y2.
    const auto newLowerX = __builtin_shufflevector (x, x1, 0, 4, 1, 5);
    const auto newUpperX = __builtin_shufflevector (x, x1, 2, 6, 3, 7);
    const auto newLowerY = __builtin_shufflevector (y, y1, 0, 4, 1, 5);
    const auto newUpperY = __builtin_shufflevector (y, y1, 2, 6, 3, 7);
    lower.left.x0 = upper.left.x0 = x[0];
    lower.right.x0 = upper.right.x0 = x[1];
    storeHalves (newLowerX, &lower.left.x1, &lower.right.x1);
    storeHalves (newUpperX, &upper.left.x1, &upper.right.x1);
    storeHalves (newLowerY, &lower.left.y1, &lower.right.y1);
    storeHalves (newUpperY, &upper.left.y1, &upper.right.y1);
    return y;
}

} // namespace larkspire
