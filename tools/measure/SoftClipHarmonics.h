// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire::measure
{

/** Levels of harmonics below their fundamental, in dB. There are no even ones. */
struct Harmonics
{
    double third;
    double fifth;
    double seventh;
};

/** What the chain's own soft clip makes of a sine of this peak, linear. */
Harmonics softClipHarmonics (double peak);

} // namespace larkspire::measure
