// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/BatchPlan.h"
#include "render/ProgressBar.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace larkspire::render
{

/** Tells on stdout and stderr what becomes of the jobs, in the order of the inputs however they run.

    A job has its turn when all before it are finished. Its progress is on the terminal while it has its turn and runs;
    its line of stats and what there is to warn of, or the reason why it failed, follow when it is finished, and an
    input's report follows the last of its jobs. Jobs are begun in their order, and each that is begun is finished. Any
    thread may call.
*/
class Announcer
{
public:
    explicit Announcer (const BatchPlan& plan);

    /** A job, by its index in the plan, has come so far. */
    void progress (std::size_t index, const RenderProgress& progress);

    /** A job has come to an end. */
    void finished (std::size_t index, Rendering rendering);

    /** No job will follow: prints the report of an input whose jobs were not all begun, and the document; and of
       several inputs what has become of all. */
    void end();

private:
    /** The job whose turn it is. */
    std::size_t turn() const noexcept { return told.size(); }

    void showLatest();
    void announce (Rendering rendering);

    /** Prints a line on stderr, once, however many modes of an input have the same to say. */
    void say (const std::string& line);
    void printReport();
    void printSummary() const;

    const BatchPlan& plan;
    std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
    std::mutex mutex;
    std::map<std::size_t, Rendering> waiting; // finished, but not in turn
    std::map<std::size_t, RenderProgress> latest;
    std::vector<Rendering> told;
    std::set<std::string> said;
    bool tablesBefore = false;
    std::optional<ProgressBar> bar;
};

} // namespace larkspire::render
