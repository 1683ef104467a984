// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/FlushToZero.h"
#include "support/Signals.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

/** What the plug-in sets for a block, for the oracle beside it. */
using larkspire::ScopedFlushToZero;

/** What separates two signals of equal length. */
struct Difference
{
    double worst = 0.0;      // largest distance of two samples, full scale 1.0; infinite where only one is a number
    std::size_t where = 0;   // the frame of it
    bool sameBits = true;    // not a bit differs
    double worstAtEnd = 0.0; // the largest distance within the last tenth
};

Difference compare (const Signal& actual, const Signal& expected);

/** The bits of a float. */
inline std::uint32_t bitsOf (float value)
{
    return std::bit_cast<std::uint32_t> (value);
}

/** The same, with one pattern for every NaN, whose sign and payload nobody hears. */
inline std::uint32_t audibleBits (float value)
{
    return std::isnan (value) ? 0x7fc00000u : bitsOf (value);
}
