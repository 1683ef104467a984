// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

// What the program larkspire-coefficients prints: f (x) ~ x + x^3 (c[0] + c[1] x^2 + c[2] x^4 + ...).

/** sin (x) up to a quarter turn; the polynomial itself is within 0.15 * 2^-24 of it, and evaluated in floats it never
    exceeds 1: the last coefficient is a little smaller than the best one for that. */
inline constexpr float sineCoefficients[] = { -0.166666597f, 0.00833306927f, -0.000198097798f, 2.60604816e-06f };

/** atan (x) up to 1; the polynomial itself is within 0.29 * 2^-24 of it. */
inline constexpr float arcTangentCoefficients[] = { -0.333331525f,  0.199937686f,  -0.142110243f,  0.106658921f,
                                                    -0.0755198896f, 0.0432093292f, -0.0163664315f, 0.00292033004f };

} // namespace larkspire
