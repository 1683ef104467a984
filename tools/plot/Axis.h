// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>
#include <vector>

namespace larkspire::plot
{

/** A straight scale: values between two ends, and the pixels that the ends stand at. */
struct Axis
{
    double first = 0.0;
    double last = 1.0;
    double firstPixel = 0.0;
    double lastPixel = 1.0;

    /** The pixel of a value, with a fraction, not clamped to the ends. */
    double pixelOf (double value) const
    {
        return firstPixel + (value - first) / (last - first) * (lastPixel - firstPixel);
    }
};

/** A mark on an axis and what stands beside it. */
struct Tick
{
    double value = 0.0;
    std::string label;
};

/** Marks at whole multiples of a step, from one end to the other, written with as many decimals as the step has. A
    minus is a true minus sign, in UTF-8. */
std::vector<Tick> ticksEvery (double step, const Axis& axis);

/** Marks for a time axis from 0 to a number of seconds: about ten, at round numbers of seconds, minutes or hours. */
std::vector<Tick> timeTicks (const Axis& axis);

/** What a time axis counts in: "s", "min:s" or "h:min". */
std::string timeUnit (const Axis& axis);

/** The shortest round time, of 1 s or more, that is not below a number of seconds: as 30 s, 2 min, 1 h. */
double roundTime (double least);

/** The smallest of 1, 2 and 5 times a power of ten that is not below a positive value. */
double roundedUp (double value);

} // namespace larkspire::plot
