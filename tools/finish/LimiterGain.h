// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <cstddef>

namespace larkspire::finish
{

/** The gain of a look-ahead limiter, bin by bin of a millisecond.

    A bin whose peak p is above the ceiling c needs the gain c / p. In front of it the gain comes down, and behind it it
    returns, without ever being above what a bin needs:

        m (i) = the least need of the bins i - 4 to i + 3
        q (i) = min (m (i), q (i - 1) + (1 - q (i - 1)) (1 - exp (-1 ms / 50 ms)))
        g (i) = sum over j from -3 to 3 of w (j) q (i + j),   w the Hann window over seven, with a sum of 1

    g (i) is the gain at the start of bin i, and in between it goes in a straight line. A minimum over at least the
    length of the smoothing keeps the smoothed gain at or below each need: P. Hämäläinen, "Smoothing of the control
    signal without clipped output in digital peak limiters", DAFx 2002. So the gain begins to fall six milliseconds
    ahead of a peak and has no corners, and with fifty milliseconds to return it does not flutter with the pitch of a
    voice.
*/
class LimiterGain
{
public:
    static constexpr std::size_t reach = 3; // bins to each side, for the minimum and for the smoothing

    /** How many bins later a gain is known. */
    static constexpr std::size_t delay = 2 * reach;

    /** @param ceiling     linear, of the peaks that will be given
        @param binSeconds  the length of a bin */
    LimiterGain (double ceiling, double binSeconds);

    /** Takes the peak of the next bin, linear. Gives the gain at the start of the bin that came `delay` bins before. */
    double next (double peak);

private:
    double ceiling;
    double returning;
    double returned = 1.0;
    std::size_t turn = 0;
    std::array<double, 2 * reach + 2> needs;
    std::array<double, 2 * reach + 1> held;
    std::array<double, 2 * reach + 1> window {};
};

} // namespace larkspire::finish
