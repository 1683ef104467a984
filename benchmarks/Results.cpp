// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/Results.h"

#include "benchmarks/Cost.h"

#include <algorithm>

void Results::ReportRuns (const std::vector<Run>& runs)
{
    std::vector<Run> aggregates;

    for (const auto& run : runs)
    {
        if (run.run_type == Run::RT_Aggregate)
        {
            aggregates.push_back (run);
            continue;
        }

        const auto counter = run.counters.find (costCounter);

        if (counter == run.counters.end())
            continue;

        const auto nanoseconds = counter->second.value * 1e9;
        const auto [cost, isFirst] = collected.try_emplace (run.run_name.function_name, nanoseconds);
        cost->second = std::min (cost->second, nanoseconds);
    }

    ConsoleReporter::ReportRuns (aggregates);
}
