// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <limits>

/** What the processor's own conversion gives, on every compiler: towards zero, and the smallest int for all that fits
    no int and for NaN. 32-bit floats are widened without a change. */
constexpr int truncateToInt (double x) noexcept
{
    constexpr double tooLarge = 2147483648.0;
    return x > -tooLarge - 1.0 && x < tooLarge ? static_cast<int> (x) : std::numeric_limits<int>::min();
}
