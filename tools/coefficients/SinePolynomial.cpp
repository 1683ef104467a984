// SPDX-License-Identifier: AGPL-3.0-only
#include "coefficients/OddPolynomial.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace
{
constexpr float quarterTurn = 1.57079637f;

/** In the chain's order, each step rounded to a float. */
float evaluate (const std::vector<float>& c, float x)
{
    const float x2 = x * x;
    const float p = (x2 * c[3] + c[2]) * (x2 * x2) + (x2 * c[1] + c[0]);
    return p * (x2 * x) + x;
}

/** Whether it is greater than 1 anywhere; below 1.5 no sine comes near. */
bool exceedsOne (const std::vector<float>& coefficients)
{
    // The patterns of the positive floats count upwards as they do.
    for (auto bits = std::bit_cast<std::uint32_t> (1.5f); bits <= std::bit_cast<std::uint32_t> (quarterTurn); ++bits)
        if (evaluate (coefficients, std::bit_cast<float> (bits)) > 1.0f)
            return true;

    return false;
}

/** The largest relative error, without the evaluation's own rounding. */
long double errorOf (const std::vector<float>& c)
{
    constexpr int steps = 20000;
    long double worst = 0;

    for (int i = 1; i <= steps; ++i)
    {
        const auto x = static_cast<long double> (quarterTurn) * i / steps;
        const auto x2 = x * x;
        const auto value = x + x * x2 * (c[0] + x2 * (c[1] + x2 * (c[2] + x2 * c[3])));
        worst = std::max (worst, std::abs (value / std::sin (x) - 1));
    }

    return worst;
}
} // namespace

OddPolynomial findSinePolynomial()
{
    auto found =
        findOddPolynomial ([] (long double x) { return std::sin (x); }, static_cast<long double> (quarterTurn), 4);
    auto& last = found.coefficients.back();

    while (exceedsOne (found.coefficients))
        last = std::nextafter (last, 0.0f);

    found.relativeError = errorOf (found.coefficients);
    return found;
}
