// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Announcer.h"

#include "base/Failure.h"
#include "base/StandardStreams.h"
#include "base/Texts.h"
#include "render/ReportDocument.h"
#include "render/ReportTable.h"
#include "render/Warnings.h"

#include <cstdio>
#include <span>
#include <utility>

namespace larkspire::render
{

namespace
{
void printStats (const Rendering& rendering)
{
    const auto& report = *rendering.report;
    std::printf ("%s  peak %.2f dBFS  RMS %.2f dBFS  length %.3f s  %.1f times faster than real time\n",
                 printable (rendering.job.output.string()).c_str(),
                 report.levels.peakDecibels(),
                 report.levels.rmsDecibels(),
                 report.seconds,
                 report.timesRealTime);
    std::fflush (stdout);
}

/** Which of the files a job is, where there are several. */
std::string numberOf (std::size_t job, const BatchPlan& plan)
{
    const auto files = plan.jobs.size() / plan.modesPerInput;
    return files < 2 ? std::string()
                     : "file " + std::to_string (job / plan.modesPerInput + 1) + " of " + std::to_string (files) + "  ";
}

/** A duration in the unit that people would name. */
std::string spanText (double seconds)
{
    if (seconds < 99.5)
        return fixed (seconds, seconds < 9.95 ? 1 : 0) + " s";

    return seconds < 99.5 * 60.0 ? fixed (seconds / 60.0, 0) + " min" : fixed (seconds / 3600.0, 1) + " h";
}
} // namespace

Announcer::Announcer (const BatchPlan& planOfJobs) : plan (planOfJobs) {}

void Announcer::progress (std::size_t index, const RenderProgress& progress)
{
    const std::lock_guard lock (mutex);
    latest[index] = progress;

    if (index == turn())
        showLatest();
}

void Announcer::finished (std::size_t index, Rendering rendering)
{
    const std::lock_guard lock (mutex);
    waiting.emplace (index, std::move (rendering));

    while (! waiting.empty() && waiting.begin()->first == turn())
        announce (std::move (waiting.extract (waiting.begin()).mapped()));
}

void Announcer::end()
{
    const std::lock_guard lock (mutex);

    if (told.size() % plan.modesPerInput != 0)
        printReport();

    if (plan.outputs.json)
    {
        const auto document = reportDocument (told, plan);
        std::fwrite (document.data(), 1, document.size(), stdout);
    }

    if (plan.hasSeveralInputs && ! plan.outputs.quiet)
        printSummary();
}

void Announcer::showLatest()
{
    const auto& job = plan.jobs[turn()];

    if (! bar.has_value())
        bar.emplace (numberOf (turn(), plan),
                     (isStandardStream (job.input) ? nameOfInput (job.input) : job.input.filename().string())
                         + (plan.modesPerInput > 1 ? std::string (" ") + nameOf (job.mode) : ""));

    bar->show (latest.at (turn()));
}

void Announcer::announce (Rendering rendering)
{
    // A job that ran in another's shadow shows its line now.
    if (latest.contains (turn()))
        showLatest();

    latest.erase (turn());
    bar.reset();

    if (! rendering.report.has_value())
        say (rendering.fault);

    if (! plan.outputs.quiet || isFault (rendering, plan.settings))
        for (const auto& warning : warningsOf (rendering, plan.settings))
            say (warning);

    if (rendering.report.has_value() && plan.outputs.stats && ! plan.outputs.json)
        printStats (rendering);

    told.push_back (std::move (rendering));

    if (told.size() % plan.modesPerInput == 0)
        printReport();
}

void Announcer::say (const std::string& line)
{
    if (said.insert (line).second)
        std::fprintf (stderr, "larkspire-render: %s\n", line.c_str());
}

void Announcer::printReport()
{
    if (! plan.outputs.report || plan.outputs.json)
        return;

    const auto ofThisInput = (told.size() - 1) % plan.modesPerInput + 1;
    const auto table = reportTable (std::span (told).last (ofThisInput));
    std::printf ("%s%s", tablesBefore && ! table.empty() ? "\n" : "", table.c_str());
    std::fflush (stdout);
    tablesBefore = tablesBefore || ! table.empty();
}

void Announcer::printSummary() const
{
    std::size_t rendered = 0;
    std::size_t failed = 0;
    double seconds = 0.0;

    for (const auto& rendering : told)
        if (rendering.report.has_value())
        {
            ++rendered;
            seconds += rendering.report->seconds;
        }
        else if (! rendering.isInterrupted)
            ++failed;

    std::string line = std::to_string (rendered) + " rendered";

    for (const auto& [count, what] : { std::pair { failed, "failed" },
                                       { plan.jobs.size() - rendered - failed, "not done" },
                                       { plan.doneBefore.size(), "done before" },
                                       { plan.leftOut.size() + plan.withoutSound, "left out" } })
        if (count > 0)
            line += ", " + std::to_string (count) + " " + what;

    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begun;
    std::fprintf (stderr,
                  "larkspire-render: %s, %s of sound in %s\n",
                  line.c_str(),
                  spanText (seconds).c_str(),
                  spanText (taken.count()).c_str());
}

} // namespace larkspire::render
