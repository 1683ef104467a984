// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "benchmarks/Results.h"

#include <string>
#include <vector>

/** A promise about two costs of one run: that of name is at most bound times that of other. */
struct Bound
{
    std::string what;
    std::string name;
    std::string other;
    double bound;
};

/** The ratios that the plug-in promises: both sides are measured on the same machine at the same time. */
std::vector<Bound> promisedBounds();

/** A promise about one cost, for what a person waits for, on any machine that is not much slower than a present one. */
struct TimeBound
{
    std::string what;
    std::string name;
    double milliseconds;
};

std::vector<TimeBound> promisedTimes();

/** A median in milliseconds; 0 if it was not measured. */
double millisecondsOf (const Costs& costs, const std::string& name);

/** The ratio of the two medians; 0 if one was not measured. */
double ratioOf (const Costs& costs, const std::string& name, const std::string& other);

/** Prints every bound that both sides were measured for, and gives false if one does not hold. */
bool report (const Costs& costs);
