// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/OddPolynomials.h"

#include <cmath>
#include <numbers>

/** The plug-in's sine and arc tangent on single floats, step by step in its order: the same bits. */
namespace scalar_polynomials
{

/** sin (x), radians, for x within a quarter turn of zero. */
inline float sine (float x)
{
    constexpr auto& c = larkspire::sineCoefficients;
    const float x2 = x * x;
    const float p = (x2 * c[3] + c[2]) * (x2 * x2) + (x2 * c[1] + c[0]);
    return p * (x2 * x) + x;
}

/** atan (t) - t for t within 1 of zero, radians. */
inline float arcTangentBend (float t)
{
    constexpr auto& c = larkspire::arcTangentCoefficients;
    const float t2 = t * t;
    const float t4 = t2 * t2;
    const float lower = (t2 * c[3] + c[2]) * t4 + (t2 * c[1] + c[0]);
    const float upper = (t2 * c[7] + c[6]) * t4 + (t2 * c[5] + c[4]);
    return (upper * (t4 * t4) + lower) * (t2 * t);
}

/** atan (x), radians. */
inline float arcTangent (float x)
{
    if (! (std::abs (x) > 1.0f))
        return arcTangentBend (x) + x;

    const float t = -(std::copysign (1.0f, x) / std::abs (x));
    return arcTangentBend (t) + (t + std::copysign (std::numbers::pi_v<float> / 2.0f, x));
}

} // namespace scalar_polynomials
