// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/Results.h"

#include "benchmarks/Cost.h"

#include <algorithm>

void Results::ReportRuns (const std::vector<Run>& runs)
{
    std::vector<Run> aggregates;

    for (const auto& run : runs)
    {
        const auto isAggregate = run.run_type == Run::RT_Aggregate;
        const auto counter = run.counters.find (costCounter);

        if (isAggregate)
            aggregates.push_back (run);

        if (counter == run.counters.end())
            continue;

        auto& cost = collected[run.run_name.function_name];
        const auto nanoseconds = counter->second.value * 1e9;

        if (const auto memory = run.counters.find (memoryCounter); memory != run.counters.end() && ! isAggregate)
            cost.bytes = std::max (cost.bytes, memory->second.value);

        if (! isAggregate)
            cost.least = std::min (cost.least, nanoseconds);
        else if (run.aggregate_name == "median")
            cost.median = nanoseconds;
    }

    ConsoleReporter::ReportRuns (aggregates);
}
