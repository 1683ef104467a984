// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "benchmarks/Results.h"

#include <string>
#include <vector>

/** A promise about costs of one run: the highest of one list is at most bound times the highest of the other. */
struct Bound
{
    std::string what;
    std::vector<std::string> names;
    std::vector<std::string> others;
    double bound;
};

/** The ratios that the plug-in promises: both sides are measured on the same machine at the same time. */
std::vector<Bound> promisedBounds();

/** A promise about one cost, for what the user waits for, on any machine that is not much slower than a present one. */
struct TimeBound
{
    std::string what;
    std::string name;
    double milliseconds;
};

std::vector<TimeBound> promisedTimes();

/** A promise about a program's memory. */
struct MemoryBound
{
    std::string what;
    std::string name;
    double megabytes; // of 2^20 bytes
};

std::vector<MemoryBound> promisedMemory();

/** The most memory of a program in megabytes; 0 if it was not measured. */
double megabytesOf (const Costs& costs, const std::string& name);

/** A median in milliseconds; 0 if it was not measured. */
double millisecondsOf (const Costs& costs, const std::string& name);

/** The ratio that a bound is about; 0 if one cost of it was not measured. */
double ratioOf (const Costs& costs, const Bound& bound);

/** Prints every bound, and gives false if one does not hold.

    @param all  whether all benchmarks have run, so that a bound without its costs is a mistake
*/
bool report (const Costs& costs, bool all);
