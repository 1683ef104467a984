// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <benchmark/benchmark.h>

#include <limits>
#include <map>
#include <string>

/** What one benchmark cost, in nanoseconds of its unit, over the repetitions of a run. */
struct Cost
{
    double least = std::numeric_limits<double>::infinity(); // what disturbs a machine only adds
    double median = 0;
    double bytes = 0; // of memory, the most, where that was looked at
};

/** The costs of a run by the benchmarks' names. */
using Costs = std::map<std::string, Cost>;

/** Prints what Google Benchmark prints and keeps the costs. */
class Results : public benchmark::ConsoleReporter
{
public:
    Results() : ConsoleReporter (OO_Tabular) {}

    void ReportRuns (const std::vector<Run>& runs) override;

    const Costs& costs() const { return collected; }

private:
    Costs collected;
};
