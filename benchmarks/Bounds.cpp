// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/Bounds.h"

#include <cstdio>

std::vector<Bound> promisedBounds()
{
    std::vector<Bound> bounds;

    for (const std::string mode : { "Gentle", "Medium", "Powerful" })
        for (const std::string layout : { "stereo", "mono" })
            bounds.push_back ({ mode + ", " + layout + ", of the scalar oracle",
                                "frame/" + mode + "/" + layout + "/512",
                                "oracle/" + mode + "/" + layout,
                                0.70 });

    for (const std::string layout : { "stereo", "mono" })
        bounds.push_back ({ "bypass, " + layout + ", of Medium",
                            "frame/bypass/" + layout + "/512",
                            "frame/Medium/" + layout + "/512",
                            0.20 });

    bounds.push_back ({ "silence after sound, of sound", "silence/after sound", "silence/sound", 1.10 });
    return bounds;
}

double ratioOf (const Costs& costs, const std::string& name, const std::string& other)
{
    const auto one = costs.find (name);
    const auto two = costs.find (other);
    return one == costs.end() || two == costs.end() ? 0.0 : one->second.median / two->second.median;
}

std::vector<TimeBound> promisedTimes()
{
    return { { "loading the library and making an instance", "library/load and first instance", 20.0 } };
}

double millisecondsOf (const Costs& costs, const std::string& name)
{
    const auto cost = costs.find (name);
    return cost == costs.end() ? 0.0 : cost->second.median / 1e6;
}

bool report (const Costs& costs)
{
    bool allHold = true;
    std::printf ("\n%-42s %8s %8s\n", "Ratio", "measured", "bound");

    for (const auto& bound : promisedBounds())
    {
        const auto ratio = ratioOf (costs, bound.name, bound.other);

        if (ratio == 0.0)
            continue;

        const bool holds = ratio <= bound.bound;
        allHold = allHold && holds;
        std::printf ("%-42s %8.3f %8.2f%s\n", bound.what.c_str(), ratio, bound.bound, holds ? "" : "  BROKEN");
    }

    for (const auto& bound : promisedTimes())
    {
        const auto time = millisecondsOf (costs, bound.name);

        if (time == 0.0)
            continue;

        const bool holds = time <= bound.milliseconds;
        allHold = allHold && holds;
        std::printf (
            "%-42s %5.2f ms %5.0f ms%s\n", bound.what.c_str(), time, bound.milliseconds, holds ? "" : "  BROKEN");
    }

    return allHold;
}
