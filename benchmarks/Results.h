// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

/** What each benchmark cost, in nanoseconds of its unit, by the benchmarks' names: the least of the repetitions of a
   run, for what disturbs a machine only adds. */
using Costs = std::map<std::string, double>;

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
