// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/Results.h"

#include "benchmarks/Cost.h"

void Results::ReportRuns (const std::vector<Run>& runs)
{
    ConsoleReporter::ReportRuns (runs);

    for (const auto& run : runs)
    {
        const auto counter = run.counters.find (costCounter);

        if (run.run_type != Run::RT_Aggregate || counter == run.counters.end())
            continue;

        const auto nanoseconds = counter->second.value * 1e9;

        if (run.aggregate_name == "median")
            collected[run.run_name.function_name].median = nanoseconds;
        else if (run.aggregate_name == "stddev")
            collected[run.run_name.function_name].deviation = nanoseconds;
    }
}
