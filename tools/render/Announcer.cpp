// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Announcer.h"

#include "base/Failure.h"
#include "render/ReportDocument.h"
#include "render/ReportTable.h"

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
} // namespace

Announcer::Announcer (const BatchPlan& planOfJobs) : plan (planOfJobs) {}

void Announcer::progress (std::size_t index, const RenderProgress& progress)
{
    const std::lock_guard lock (mutex);
    latest[index] = progress;

    if (index == turn)
    {
        startBar();
        bar->show (progress);
    }
}

void Announcer::finished (std::size_t index, Rendering rendering)
{
    const std::lock_guard lock (mutex);
    waiting.emplace (index, std::move (rendering));
    announceInTurn();
}

void Announcer::end()
{
    const std::lock_guard lock (mutex);

    while (! waiting.empty())
    {
        turn = waiting.begin()->first;
        announceInTurn();
    }

    printReport();

    if (plan.outputs.json)
    {
        const auto document = reportDocument (told, plan.outputs.stats);
        std::fwrite (document.data(), 1, document.size(), stdout);
    }
}

void Announcer::startBar()
{
    if (bar.has_value())
        return;

    const auto& job = plan.jobs[turn];
    bar.emplace (job.input.filename().string() + (plan.modesPerInput > 1 ? std::string (" ") + nameOf (job.mode) : ""));
}

void Announcer::announceInTurn()
{
    while (! waiting.empty() && waiting.begin()->first == turn)
    {
        announce (turn);
        latest.erase (turn);
        ++turn;
    }
}

void Announcer::announce (std::size_t index)
{
    auto rendering = std::move (waiting.extract (index).mapped());

    // A job that ran in another's shadow shows its line now.
    if (const auto progress = latest.find (index); progress != latest.end())
    {
        startBar();
        bar->show (progress->second);
    }

    bar.reset();

    if (! rendering.report.has_value())
        std::fprintf (stderr, "larkspire-render: %s\n", rendering.fault.c_str());
    else if (plan.outputs.stats && ! plan.outputs.json)
        printStats (rendering);

    if (index / plan.modesPerInput != inputOfTable)
        printReport();

    inputOfTable = index / plan.modesPerInput;
    told.push_back (std::move (rendering));
    ++rowsOfTable;

    if ((index + 1) % plan.modesPerInput == 0)
        printReport();
}

void Announcer::printReport()
{
    if (const auto rows = std::exchange (rowsOfTable, 0); rows > 0 && plan.outputs.report && ! plan.outputs.json)
    {
        const auto table = reportTable (std::span (told).last (rows));
        std::printf ("%s%s", tablesBefore && ! table.empty() ? "\n" : "", table.c_str());
        std::fflush (stdout);
        tablesBefore = tablesBefore || ! table.empty();
    }
}

} // namespace larkspire::render
