// SPDX-License-Identifier: AGPL-3.0-only
// Numbers and times as the user reads them. The decimal point is that of the host's locale.
#pragma once

#include <cstddef>
#include <string>

namespace larkspire
{

/** What decides, beside the value itself, how a parameter's value is shown. */
struct ValueTextSettings
{
    int displayMode = 0;   // of DisplayMode
    float rangeMin = 0.0f; // what position 0 stands for
    float rangeMax = 1.0f; // what position 1 stands for
    std::string unit;      // UTF-8; any text, a percent sign among it
};

/** The text of a position, 0 to 1, as UTF-8. With an empty unit most texts end in a blank.

    The mode Choices needs names and belongs to the parameter: here it is a number without a mode of its own and, like
    all such numbers, shown as LinearAuto. A position that is NaN, or a logarithmic range that does not lie
    above 0, gives some text, such as "nan". Allocates.
*/
std::string valueText (const ValueTextSettings& settings, float position);

/** A frequency: two decimals below 3, one below 30, none up to 1000, beyond that in thousands with the prefix k, with
    one decimal up to 19000. Below 0.3 its period takes the place of number and unit.

    @param frequency  in the unit, not negative
*/
std::string frequencyText (double frequency, const std::string& unit);

/** A number that shrinks with its decimals: two below 3, one below 30, none from there. */
std::string magnitudeText (double magnitude, const std::string& unit);

/** A time in words, as durationText has it; "0" and the unit where there is no time at all. */
std::string timeText (double seconds, const std::string& unit);

/** How many units of a duration are shown. What the shown ones leave over is dropped, not rounded. */
constexpr std::size_t durationTermsShown = 1;

/** A time in words, in the largest unit of which it holds at least one: 90 seconds are "1 minute".

    Years have 365 days and months 30. With more than one term, each further unit follows, down to zeros of it:
    "1 day, 0 hours and 5 minutes". A time below a microsecond has no term and gives the empty text.

    @param seconds  not negative
    @param terms    how many units to show at most
*/
std::string durationText (double seconds, std::size_t terms = durationTermsShown);

} // namespace larkspire
