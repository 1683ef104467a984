// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace DisplayMode
{

/** How a parameter's value is shown. The numbers are what AudioParameterFloatQuendal::displayMode holds; any other
    number behaves as LinearAuto. */
enum : int
{
    LinearAuto = 0,       // linear over the range, decimals by the size of the range
    LinearWhole = 1,      // linear over the range, no decimals
    Percent = 2,          // whole percentage
    CubicRange = 3,       // cubic taper over the range, "OFF" at the bottom
    CubicGain10 = 4,      // cubic gain up to +10 dB, "OFF" at the bottom
    CubicGain18 = 5,      // cubic gain up to +18 dB, "OFF" at the bottom
    LogFrequency = 6,     // logarithmic over the range, kilo prefix, below 0.3 as a period
    LogValue = 7,         // logarithmic over the range, decimals by size
    Signed15 = 8,         // value times 15, signed
    Square5 = 9,          // square law from 0.1 to 5.0
    Choices = 10,         // named choice: the only mode in which the value selects a position
    SignedLinear = 11,    // linear over the range, signed, with a blanked zero
    ReciprocalSweep = 12, // reciprocal sweep over the range, unit without a blank
    LogDuration = 13      // logarithmic over the range, as a duration in words
};

} // namespace DisplayMode
