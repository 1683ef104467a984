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

/** All that the plug-in promises. Ratios only: both sides are measured on the same machine at the same time. */
std::vector<Bound> promisedBounds();

/** The ratio of the two medians; 0 if one was not measured. */
double ratioOf (const Costs& costs, const std::string& name, const std::string& other);

/** Prints every bound that both sides were measured for, and gives false if one does not hold. */
bool report (const Costs& costs);
