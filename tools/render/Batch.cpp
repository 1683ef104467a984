// SPDX-License-Identifier: AGPL-3.0-only
#include "Batch.h"

#include "Failure.h"
#include "ProgressBar.h"

#include <cstdio>

namespace larkspire::render
{

namespace
{
void makeFolder (const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories (folder, error);

    if (error)
        throw Failure (folder, "cannot be made: " + error.message());
}

void printStats (const std::filesystem::path& path, const RenderReport& report)
{
    std::printf ("%s  peak %.2f dBFS  RMS %.2f dBFS  length %.3f s  %.1f times faster than real time\n",
                 printable (path.string()).c_str(),
                 report.levels.peakDecibels(),
                 report.levels.rmsDecibels(),
                 report.seconds,
                 report.timesRealTime);
    std::fflush (stdout);
}

RenderReport renderWithProgress (const PluginLibrary& library, const Job& job, const RenderSettings& settings)
{
    ProgressBar bar (job.input.filename().string());
    return render (library, job, settings, [&bar] (double done) { bar.show (done); });
}
} // namespace

void complain (const std::exception& fault)
{
    std::fprintf (stderr, "larkspire-render: %s\n", fault.what());
}

bool runBatch (const PluginLibrary& library, const BatchPlan& plan, bool stats)
{
    if (plan.folder.has_value())
        makeFolder (*plan.folder);

    bool allDone = true;

    for (const auto& job : plan.jobs)
    {
        try
        {
            const auto report = renderWithProgress (library, job, plan.settings);

            if (stats)
                printStats (job.output, report);
        }
        catch (const Interrupted& interruption)
        {
            complain (interruption);
            return false;
        }
        catch (const std::exception& fault)
        {
            complain (fault);
            allDone = false;
        }
    }

    return allDone;
}

} // namespace larkspire::render
