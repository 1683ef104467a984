// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"
#include "chain/ModeTable.h"

#include <array>

namespace larkspire
{

/** The high-pass of one channel: a biquad in direct form II, transposed, 32-bit floats. All zero, as here, it gives 0.

        y = c0 x + v1,  v1 = c1 x - c3 y + v2,  v2 = c2 x - c4 y
*/
struct HighPassFilter
{
    std::array<float, 5> coefficients {}; // c0 to c4; that of y itself is 1
    float v1 = 0.0f;
    float v2 = 0.0f;
};

/** Designs a high-pass in 64-bit floats; the coefficients are rounded at the end.

    The bilinear transform of s^2 / (s^2 + s / Q + 1): with k = tan (pi corner / rate) and c = 1 / (1 + k / Q + k^2)

        c, -2 c, c, 2 c (k^2 - 1), c (1 - k / Q + k^2)

    @param rate  in Hz, above twice the corner
*/
std::array<float, 5> designHighPass (double rate, const HighPassSettings& settings);

/** An output this close to zero becomes zero, and so does NaN: the filter falls silent and forgets a bad sample. */
inline constexpr float highPassSnap = 1.0e-8f;

/** Both channels' high-pass while it runs. */
class RunningHighPass
{
public:
    RunningHighPass (const HighPassFilter& left, const HighPassFilter& right)
        : c0 (pairOf (left.coefficients[0], right.coefficients[0])),
          c1 (pairOf (left.coefficients[1], right.coefficients[1])),
          c2 (pairOf (left.coefficients[2], right.coefficients[2])),
          c3 (pairOf (left.coefficients[3], right.coefficients[3])),
          c4 (pairOf (left.coefficients[4], right.coefficients[4])),
          v1 (pairOf (left.v1, right.v1)),
          v2 (pairOf (left.v2, right.v2))
    {
    }

    /** Takes rumble and plosives off: one sample of each channel. */
    Lanes process (Lanes x)
    {
        Lanes y = c0 * x + v1;
        const LaneMask audible = magnitude (y) > broadcast (highPassSnap);

        // A branch, because the comparison would stand in the recursion, which is the longest of the chain.
        if (! allSet (audible))
            y = whereSet (audible, y);

        v1 = c1 * x - c3 * y + v2;
        v2 = c2 * x - c4 * y;
        return y;
    }

    /** Writes the memories back. */
    void keepIn (HighPassFilter& left, HighPassFilter& right) const
    {
        left.v1 = v1[0];
        right.v1 = v1[1];
        left.v2 = v2[0];
        right.v2 = v2[1];
    }

private:
    Lanes c0;
    Lanes c1;
    Lanes c2;
    Lanes c3;
    Lanes c4;
    Lanes v1;
    Lanes v2;
};

} // namespace larkspire
