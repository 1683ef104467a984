// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/StereoSample.h"

#include <cstdint>
#include <cstring>

#if ! defined(__GNUC__)
    #error "The chain is written on the vector types of GCC and Clang. On Windows take MinGW or clang-cl."
#endif

namespace larkspire
{

/** A left and a right float, held twice in one register: left, right, left, right.

    Arithmetic and comparisons go lane by lane and round as they do on single floats, so a formula on pairs gives the
    bits of the same formula on floats. The second copy costs nothing, and a stage that has two things to do to a pair
    does one in the lower half and one in the upper: two filters, two parts of a polynomial.
*/
using ChannelPair = float __attribute__ ((vector_size (16)));

/** What a comparison of pairs gives: all bits of a lane, or none. mask ? a : b takes lanes of a where it is set. */
using PairMask = std::int32_t __attribute__ ((vector_size (16)));

namespace detail
{
// Two floats, or the lanes of two channels, moved or looked at as one number.
using FloatHalves = double __attribute__ ((vector_size (16)));
using MaskHalves = std::int64_t __attribute__ ((vector_size (16)));
} // namespace detail

/** The same number in every lane. */
constexpr ChannelPair everywhere (float value)
{
    return ChannelPair { value, value, value, value };
}

/** Two neighbours in memory as the lower half, two others as the upper. */
inline ChannelPair loadHalves (const float* lower, const float* upper)
{
    double lowerNumber = 0;
    double upperNumber = 0;
    static_assert (sizeof (lowerNumber) == 2 * sizeof (float));
    std::memcpy (&lowerNumber, lower, sizeof (lowerNumber));
    std::memcpy (&upperNumber, upper, sizeof (upperNumber));
    return (ChannelPair)detail::FloatHalves { lowerNumber, upperNumber };
}

/** Writes the lower half to two neighbours in memory. */
inline void storeLowerHalf (ChannelPair pair, float* target)
{
    const double number = ((detail::FloatHalves)pair)[0];
    std::memcpy (target, &number, sizeof (number));
}

/** Writes the lower half to two neighbours in memory, the upper half to two others. */
inline void storeHalves (ChannelPair pair, float* lower, float* upper)
{
    storeLowerHalf (pair, lower);
    const double number = ((detail::FloatHalves)pair)[1];
    std::memcpy (upper, &number, sizeof (number));
}

/** Four neighbours in memory. */
inline ChannelPair loadFour (const float* source)
{
    ChannelPair four {};
    std::memcpy (&four, source, sizeof (four));
    return four;
}

inline ChannelPair pairOf (StereoSample sample)
{
    static_assert (sizeof (sample) == 2 * sizeof (float));
    return loadHalves (&sample.first, &sample.first);
}

inline StereoSample sampleOf (ChannelPair pair)
{
    const float left = pair[0];
    const float right = pair[1];
    return { left, right };
}

/** Lanes of x in another order. */
template <int first, int second, int third, int fourth>
inline ChannelPair shuffled (ChannelPair x)
{
    // As whole numbers, because the instruction for those leaves its operand alone and spares a copy.
    const auto bits = (PairMask)x;
    return (ChannelPair)__builtin_shufflevector (bits, bits, first, second, third, fourth);
}

/** The lower half of a register twice. */
inline ChannelPair lowerHalf (ChannelPair x)
{
    return __builtin_shufflevector (x, x, 0, 1, 0, 1);
}

/** The upper half of a register twice. */
inline ChannelPair upperHalf (ChannelPair x)
{
    return __builtin_shufflevector (x, x, 2, 3, 2, 3);
}

/** Whether a mask is set for neither channel. */
inline bool inNeither (PairMask mask)
{
    return ((detail::MaskHalves)mask)[0] == 0;
}

/** Whether a mask is set for both channels. */
inline bool inBoth (PairMask mask)
{
    return ((detail::MaskHalves)mask)[0] == -1;
}

/** x where the mask is set, +0 elsewhere. */
inline ChannelPair whereSet (PairMask mask, ChannelPair x)
{
    return (ChannelPair)(mask & (PairMask)x);
}

/** The sign bits of x and nothing else. */
inline PairMask signOf (ChannelPair x)
{
    return (PairMask)x & INT32_MIN;
}

inline ChannelPair magnitude (ChannelPair x)
{
    return (ChannelPair)((PairMask)x & INT32_MAX);
}

/** x, with its sign turned where a sign bit is set. */
inline ChannelPair turned (ChannelPair x, PairMask signBits)
{
    return (ChannelPair)((PairMask)x ^ signBits);
}

/** a < b ? a : b, which is b where either is no number. */
inline ChannelPair smaller (ChannelPair a, ChannelPair b)
{
    return a < b ? a : b;
}

/** a > b ? a : b, which is b where either is no number. */
inline ChannelPair greater (ChannelPair a, ChannelPair b)
{
    return a > b ? a : b;
}

} // namespace larkspire
