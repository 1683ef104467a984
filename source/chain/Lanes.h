// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/StereoSample.h"

#include <cstdint>
#include <cstring>

#if ! defined(__GNUC__) && ! defined(__clang__)
    #error "The chain is written on the vector types of GCC and Clang. On Windows take MinGW or clang-cl."
#endif

#if defined(__SSE__)
    #include <xmmintrin.h>
#endif

namespace larkspire
{

/** Four floats in one register: a left and a right one, then two more.

    Where a sample waits for the sample before, the pair is held twice (left, right, left, right), so that a stage with
    two things to do to it does one in the lower half and one in the upper. Where it does not, the upper half is the
    next frame. Arithmetic and comparisons go lane by lane and round as single floats do, so a formula on lanes gives
    the bits of the same formula on floats.
*/
using Lanes = float __attribute__ ((vector_size (16)));

/** What a comparison of lanes gives: all bits of a lane, or none. mask ? a : b takes lanes of a where it is set. */
using LaneMask = std::int32_t __attribute__ ((vector_size (16)));

namespace detail
{
// Two floats, or the lanes of two channels, moved or looked at as one number.
using FloatHalves = double __attribute__ ((vector_size (16)));
using MaskHalves = std::int64_t __attribute__ ((vector_size (16)));
} // namespace detail

static_assert (sizeof (StereoSample) == 2 * sizeof (float), "frames are read and written as two floats in a row");

/** The same number in every lane. */
constexpr Lanes broadcast (float value)
{
    return Lanes { value, value, value, value };
}

/** A left and a right number, held twice. */
constexpr Lanes pairOf (float left, float right)
{
    return Lanes { left, right, left, right };
}

/** One frame, held twice. */
inline Lanes pairOf (const StereoSample& frame)
{
    double number = 0;
    static_assert (sizeof (number) == sizeof (frame));
    std::memcpy (&number, static_cast<const void*> (&frame), sizeof (number));
    return (Lanes)detail::FloatHalves { number, number };
}

/** The frame in the lower half. */
inline StereoSample sampleOf (Lanes pair)
{
    const float left = pair[0];
    const float right = pair[1];
    return { left, right };
}

/** Writes the lower half to a frame. */
inline void storeLowerHalf (Lanes pair, StereoSample& frame)
{
    const double number = ((detail::FloatHalves)pair)[0];
    std::memcpy (static_cast<void*> (&frame), &number, sizeof (number));
}

/** Writes the upper half to a frame. */
inline void storeUpperHalf (Lanes pair, StereoSample& frame)
{
    const double number = ((detail::FloatHalves)pair)[1];
    std::memcpy (static_cast<void*> (&frame), &number, sizeof (number));
}

/** A frame and the one behind it. */
inline Lanes twoFrames (const StereoSample* frames)
{
    Lanes both {};
    std::memcpy (&both, static_cast<const void*> (frames), sizeof (both));
    return both;
}

/** Writes both halves to a frame and the one behind it. */
inline void storeTwoFrames (Lanes both, StereoSample* frames)
{
    std::memcpy (static_cast<void*> (frames), &both, sizeof (both));
}

/** Four samples of one channel. */
inline Lanes fourSamples (const float* samples)
{
    Lanes four {};
    std::memcpy (&four, samples, sizeof (four));
    return four;
}

inline void storeFourSamples (Lanes four, float* samples)
{
    std::memcpy (samples, &four, sizeof (four));
}

/** The lower half of a register twice. */
inline Lanes lowerHalf (Lanes x)
{
    return __builtin_shufflevector (x, x, 0, 1, 0, 1);
}

/** The upper half of a register twice. */
inline Lanes upperHalf (Lanes x)
{
    return __builtin_shufflevector (x, x, 2, 3, 2, 3);
}

/** The left lane of each half in both lanes of it. */
inline Lanes leftOfEach (Lanes x)
{
    // As whole numbers, because the instruction for those leaves its operand alone and spares a copy.
    const auto bits = (LaneMask)x;
    return (Lanes)__builtin_shufflevector (bits, bits, 0, 0, 2, 2);
}

/** The right lane of each half in both lanes of it. */
inline Lanes rightOfEach (Lanes x)
{
    const auto bits = (LaneMask)x;
    return (Lanes)__builtin_shufflevector (bits, bits, 1, 1, 3, 3);
}

/** Whether a mask is set nowhere in the lower half: for neither channel. */
inline bool noneSet (LaneMask mask)
{
    return ((detail::MaskHalves)mask)[0] == 0;
}

/** Whether a mask is set nowhere in the whole register. */
inline bool noneSetAnywhere (LaneMask mask)
{
    const LaneMask upper = __builtin_shufflevector (mask, mask, 2, 3, 2, 3);
    return noneSet (mask | upper);
}

/** Whether a mask is set everywhere in the lower half: for both channels. */
inline bool allSet (LaneMask mask)
{
    return ((detail::MaskHalves)mask)[0] == -1;
}

/** x where the mask is set, +0 elsewhere. */
inline Lanes whereSet (LaneMask mask, Lanes x)
{
    return (Lanes)(mask & (LaneMask)x);
}

/** The sign bits of x and nothing else. */
inline LaneMask signOf (Lanes x)
{
    return (LaneMask)x & INT32_MIN;
}

inline Lanes magnitude (Lanes x)
{
    return (Lanes)((LaneMask)x & INT32_MAX);
}

/** x, with its sign flipped where a sign bit is set. */
inline Lanes withSignFlipped (Lanes x, LaneMask signBits)
{
    return (Lanes)((LaneMask)x ^ signBits);
}

/** a < b ? a : b, which is b where either is NaN. */
inline Lanes minOf (Lanes a, Lanes b)
{
#if defined(__SSE__)
    // GCC 12 makes four instructions of the choice below where one side is a constant. Those let denormals pass, this
    // one makes them zero; the limits of the input must treat them alike at every sample.
    return (Lanes)_mm_min_ps ((__m128)a, (__m128)b);
#else
    return a < b ? a : b;
#endif
}

/** a > b ? a : b, which is b where either is NaN. */
inline Lanes maxOf (Lanes a, Lanes b)
{
#if defined(__SSE__)
    return (Lanes)_mm_max_ps ((__m128)a, (__m128)b);
#else
    return a > b ? a : b;
#endif
}

} // namespace larkspire
