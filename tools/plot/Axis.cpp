// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Axis.h"

#include "base/Texts.h"

#include <algorithm>
#include <cmath>

namespace larkspire::plot
{

namespace
{
constexpr double fewMinutes = 120.0;
constexpr double hour = 3600.0;

/** Seconds between the marks of a time axis. */
double timeStep (double seconds)
{
    constexpr double mostMarks = 11.0;
    const auto least = seconds / mostMarks;

    return seconds <= fewMinutes ? roundedUp (least) : roundTime (least);
}

/** A time in seconds as the axis of an hour and more has it, h:min. Its marks stand at whole minutes. */
std::string hoursText (double seconds)
{
    const auto withSeconds = clockText (seconds, true);
    return withSeconds.substr (0, withSeconds.rfind (':'));
}

/** Decimals that a number has, up to nine. */
int decimalsOf (double number)
{
    constexpr int most = 9;
    int decimals = 0;

    for (auto scaled = number; decimals < most && std::abs (scaled - std::round (scaled)) > 1e-6 * scaled;
         scaled *= 10.0)
        ++decimals;

    return decimals;
}

} // namespace

double roundTime (double least)
{
    for (const double time :
         { 1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0, 3600.0, 7200.0 })
        if (time >= least)
            return time;

    return std::ceil (least / hour) * hour;
}

double roundedUp (double value)
{
    const auto power = std::pow (10.0, std::floor (std::log10 (value)));

    for (const double factor : { 1.0, 2.0, 5.0 })
        if (factor * power >= value * (1.0 - 1e-9))
            return factor * power;

    return 10.0 * power;
}

std::vector<Tick> ticksEvery (double step, const Axis& axis)
{
    std::vector<Tick> ticks;
    const auto decimals = decimalsOf (step);
    const auto lowest = std::min (axis.first, axis.last);
    const auto highest = std::max (axis.first, axis.last);

    // Counted in whole steps, so that no sum of rounded steps runs away.
    const auto first = std::lround (std::ceil (lowest / step - 1e-9));
    const auto end = std::lround (std::floor (highest / step + 1e-9));

    for (auto multiple = first; multiple <= end; ++multiple)
    {
        const auto value = static_cast<double> (multiple) * step;
        ticks.push_back ({ .value = value, .label = numberText (value, decimals) });
    }

    return ticks;
}

std::vector<Tick> timeTicks (const Axis& axis)
{
    const auto step = timeStep (axis.last);
    auto ticks = ticksEvery (step, axis);

    if (axis.last > fewMinutes)
        for (auto& tick : ticks)
            tick.label = axis.last < hour ? clockText (tick.value, false) : hoursText (tick.value);

    return ticks;
}

std::string timeUnit (const Axis& axis)
{
    if (axis.last <= fewMinutes)
        return "s";

    return axis.last < hour ? "min:s" : "h:min";
}

} // namespace larkspire::plot
