// SPDX-License-Identifier: AGPL-3.0-only
#include "render/ReportTable.h"

#include "base/Failure.h"
#include "base/StandardStreams.h"
#include "base/Texts.h"
#include "render/Figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace larkspire::render
{

namespace
{
using meter::Analysis;
using meter::Figure;
using meter::GainsKnown;

constexpr std::size_t labelWidth = 32;
constexpr std::size_t columnWidth = 10;

std::string line (const std::string& label, const std::vector<std::string>& cells)
{
    auto text = "  " + label;
    text.resize (labelWidth, ' ');

    for (const auto& cell : cells)
    {
        text.append (columnWidth - std::min (columnWidth, cell.size()), ' ');
        text += cell;
    }

    text.erase (text.find_last_not_of (' ') + 1);
    return text + "\n";
}

std::string cellOf (const Figure& figure)
{
    if (! figure.has_value())
        return "-";

    return fixed (std::round (*figure * 10.0) / 10.0, 1);
}

std::string headline (const Rendering& rendering)
{
    const auto& report = *rendering.report;
    return printable (nameOfInput (rendering.job.input)) + "  " + secondsText (report.seconds) + " s, "
           + std::to_string (report.shape.sampleRate) + " Hz, " + (report.shape.channels == 1 ? "mono" : "stereo")
           + "\n";
}

/** What stood ahead of the plug-in and behind it, where anything did. */
std::string surroundingLines (const std::vector<const Rendering*>& renderings)
{
    struct Row
    {
        const char* label;
        double (*value) (const RenderReport&);
        bool ofFinish;
    };

    constexpr std::array<Row, 5> rows { {
        { "gain ahead of it, dB", [] (const RenderReport& report) { return report.inputGainDb; }, false },
        { "gain behind it, dB", [] (const RenderReport& report) { return report.finish->gainDb; }, true },
        { "  limiter, % of the time",
          [] (const RenderReport& report) { return 100.0 * report.finish->limiter.shareOfTime; },
          true },
        { "  limiter, times", [] (const RenderReport& report) { return double (report.finish->limiter.times); }, true },
        { "  limiter, deepest, dB",
          [] (const RenderReport& report) { return report.finish->limiter.deepestDb; },
          true },
    } };

    const auto isWorthALine = [&renderings] (const Row& row)
    {
        return std::any_of (renderings.begin(),
                            renderings.end(),
                            [&row] (const auto* rendering) {
                                return row.ofFinish ? rendering->report->finish.has_value()
                                                    : rendering->report->inputGainDb != 0.0;
                            });
    };

    std::string text;

    for (const auto& row : rows)
    {
        if (! isWorthALine (row))
            continue;

        std::vector<std::string> cells { "" };

        for (const auto* rendering : renderings)
            cells.push_back (cellOf (row.value (*rendering->report)));

        text += line (row.label, cells);
    }

    return text;
}

std::string gainLines (const std::vector<const Analysis*>& analyses)
{
    const auto has = [&analyses] (GainsKnown state)
    {
        return std::any_of (
            analyses.begin(), analyses.end(), [state] (const auto* analysis) { return analysis->gainsKnown == state; });
    };

    std::string text;

    if (has (GainsKnown::yes))
    {
        text += line ("gain of each stage, dB", {});

        for (const auto& gain : stageGains)
        {
            std::vector<std::string> cells { "" };

            for (const auto* analysis : analyses)
                cells.push_back (cellOf (analysis->gains.*gain.figure));

            text += line (gain.label, cells);
        }
    }

    if (has (GainsKnown::otherPlugin))
        text += "  gains left out: the library gives another sound than the chain that this program knows\n";

    if (has (GainsKnown::noStageRuns) && analyses.size() == 1)
        text += "  no gains: in bypass no stage runs\n";

    return text;
}

/** What was found of a recording that is only looked at. */
std::string adviceText (const std::vector<const Rendering*>& renderings)
{
    auto text = headline (*renderings[0]);

    for (const auto& sound : soundFigures)
        text += line (sound.label, { cellOf (renderings[0]->report->analysis->before.*sound.figure) });

    for (const auto* rendering : renderings)
    {
        for (const auto& sentence : rendering->report->advice->sentences)
            text += "  " + sentence + "\n";
    }

    return text;
}
} // namespace

std::string reportTable (std::span<const Rendering> renderings)
{
    std::vector<const Rendering*> done;

    for (const auto& rendering : renderings)
        if (rendering.report.has_value() && rendering.report->analysis.has_value())
            done.push_back (&rendering);

    if (done.empty())
        return {};

    if (done[0]->report->advice.has_value())
        return adviceText (done);

    std::vector<const Analysis*> analyses;
    std::vector<std::string> heads { "before" };

    for (const auto* rendering : done)
    {
        analyses.push_back (&*rendering->report->analysis);
        heads.emplace_back (renderings.size() == 1 ? "after" : nameOf (rendering->job.mode));
    }

    const auto mode = renderings.size() == 1 ? std::string ("mode ") + nameOf (done[0]->job.mode) : "";
    auto text = headline (*done[0]) + line (mode, heads);

    for (const auto& sound : soundFigures)
    {
        std::vector<std::string> cells { cellOf (analyses[0]->before.*sound.figure) };

        for (const auto* analysis : analyses)
            cells.push_back (cellOf (analysis->after.*sound.figure));

        text += line (sound.label, cells);
    }

    return text + gainLines (analyses) + surroundingLines (done);
}

} // namespace larkspire::render
