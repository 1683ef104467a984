// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Batch.h"

#include "base/Failure.h"
#include "base/StopSignal.h"
#include "render/Announcer.h"
#include "render/ProgressBar.h"
#include "render/Warnings.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

namespace larkspire::render
{

namespace
{
void makeFolders (const BatchPlan& plan)
{
    std::error_code error;

    for (const auto& folder : plan.folders)
    {
        std::filesystem::create_directories (folder, error);

        if (error)
            throw Failure (folder, "cannot be made: " + error.message());
    }

    // If one of these cannot be made, only the results below it fail, and each says so.
    for (const auto& folder : plan.subfolders)
        std::filesystem::create_directories (folder, error);
}

/** The jobs of a plan, handed out one by one to the threads that do them. */
class Work
{
public:
    Work (const PluginLibrary& pluginLibrary, const BatchPlan& planOfJobs)
        : library (pluginLibrary),
          plan (planOfJobs),
          announcer (planOfJobs)
    {
    }

    /** Does jobs until there are none, or until an interruption. */
    void run()
    {
        while (next < plan.jobs.size())
        {
            if (stopRequested())
            {
                interrupted = true;
                return;
            }

            if (const auto index = next++; index < plan.jobs.size())
                doJob (index);
        }
    }

    BatchEnd end()
    {
        announcer.end();

        if (interrupted)
            return BatchEnd::interrupted;

        return failed ? BatchEnd::someFailed : BatchEnd::allDone;
    }

private:
    void doJob (std::size_t index)
    {
        Rendering rendering { .job = plan.jobs[index], .report = {}, .fault = {}, .isInterrupted = false };
        std::function<void (const RenderProgress&)> progress = [] (const RenderProgress&) {};

        if (ProgressBar::wouldBeSeen() && ! plan.outputs.quiet)
            progress = [this, index] (const RenderProgress& soFar) { announcer.progress (index, soFar); };

        try
        {
            if (rendering.job.refusal.has_value())
                throw std::runtime_error (*rendering.job.refusal);

            rendering.report = rendering.job.output.empty() ? analyse (rendering.job, plan.settings, progress)
                                                            : render (library, rendering.job, plan.settings, progress);

            if (isFault (rendering, plan.settings))
                failed = true;
        }
        catch (const Interrupted& interruption)
        {
            rendering.fault = interruption.what();
            rendering.isInterrupted = true;
            interrupted = true;
        }
        catch (const std::exception& fault)
        {
            rendering.fault = fault.what();
            failed = true;
        }

        announcer.finished (index, std::move (rendering));
    }

    const PluginLibrary& library;
    const BatchPlan& plan;
    Announcer announcer;
    std::atomic<std::size_t> next { 0 };
    std::atomic<bool> interrupted { false };
    std::atomic<bool> failed { false };
};
} // namespace

void printError (const std::exception& fault)
{
    std::fprintf (stderr, "larkspire-render: %s\n", fault.what());
}

BatchEnd runBatch (const PluginLibrary& library, const BatchPlan& plan)
{
    for (const auto& left : plan.leftOut)
        if (left.isFault || ! plan.outputs.quiet)
            std::fprintf (stderr, "larkspire-render: %s\n", lineOf (left).c_str());

    if (plan.withoutSound > 0 && ! plan.outputs.quiet)
        std::fprintf (stderr,
                      "larkspire-render: %zu %s without sound left out\n",
                      plan.withoutSound,
                      plan.withoutSound == 1 ? "file" : "files");

    makeFolders (plan);

    Work work (library, plan);

    {
        std::vector<std::jthread> helpers;

        for (unsigned helper = 1; helper < plan.workers && helper < plan.jobs.size(); ++helper)
            helpers.emplace_back ([&work] { work.run(); });

        work.run();
    }

    const auto end = work.end();
    const auto isFault = [] (const LeftOut& left) { return left.isFault; };
    const auto allTaken = std::none_of (plan.leftOut.begin(), plan.leftOut.end(), isFault);
    return end == BatchEnd::allDone && ! allTaken ? BatchEnd::someFailed : end;
}

} // namespace larkspire::render
