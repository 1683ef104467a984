// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "plot/Axis.h"

#include <vector>

namespace larkspire::plot
{

/** Values at equal distances in time. NaN is a moment without a value. */
struct Series
{
    double firstSeconds = 0.0; // the time of the first
    double stepSeconds = 1.0;
    std::vector<double> values {};
};

/** What a value did around a pixel column: its median, and the range that all but the lowest and the highest tenth of
    it lie in. All are NaN where there was no value. */
struct Spread
{
    double column = 0.0; // pixels, the middle
    double low = 0.0;
    double middle = 0.0;
    double high = 0.0;
};

/** The spread around each pixel column of an axis, over a window with the column in its middle, by the nearest ranks.

    A line through every value of a long sound goes up and down within each column, and makes a wall. This says what
    such a wall hides: where the value mostly is. Minus infinity counts as a value.

    @param windowSeconds  at least a step */
std::vector<Spread> spreadOf (const Series& series, const Axis& time, double windowSeconds);

} // namespace larkspire::plot
