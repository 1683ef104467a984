// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"
#include "chain/OddPolynomials.h"

namespace larkspire
{

/** sin (x) for x within a quarter turn of zero, radians; NaN stays NaN.

    x + x^3 P (x^2), with what is added last the largest by far, so that its rounding is the only one that counts.
*/
inline Lanes sineWithinQuarterTurn (Lanes x)
{
    constexpr auto& c = sineCoefficients;
    const Lanes x2 = x * x;
    const Lanes x3 = x2 * x;
    const Lanes p = (x2 * broadcast (c[3]) + broadcast (c[2])) * (x2 * x2) + (x2 * broadcast (c[1]) + broadcast (c[0]));
    return p * x3 + x;
}

} // namespace larkspire
