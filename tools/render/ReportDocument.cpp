// SPDX-License-Identifier: AGPL-3.0-only
#include "render/ReportDocument.h"

#include "render/Figures.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace larkspire::render
{

namespace
{
using Json = nlohmann::ordered_json;

/** To a thousandth, which is far finer than a measurement. */
Json number (const meter::Figure& figure)
{
    return figure ? Json (std::round (*figure * 1000.0) / 1000.0 + 0.0) : Json();
}

Json describe (const auto& group, const auto& figures)
{
    Json object;

    for (const auto& [label, key, figure] : figures)
        object[key] = number (group.*figure);

    return object;
}

void addAnalysis (Json& entry, const meter::Analysis& analysis)
{
    entry["before"] = describe (analysis.before, soundFigures);
    entry["after"] = describe (analysis.after, soundFigures);

    switch (analysis.gainsKnown)
    {
    case meter::GainsKnown::yes:
        entry["gains"] = describe (analysis.gains, stageGains);
        break;
    case meter::GainsKnown::noStageRuns:
        entry["gains"] = nullptr;
        entry["gains_missing"] = "in bypass no stage runs";
        break;
    case meter::GainsKnown::otherPlugin:
        entry["gains"] = nullptr;
        entry["gains_missing"] = "the library gives another sound than the chain that this program knows";
        break;
    }
}

Json describe (const Rendering& rendering, bool stats)
{
    Json entry { { "input", rendering.job.input.string() },
                 { "output", rendering.job.output.string() },
                 { "mode", nameOf (rendering.job.mode) } };

    if (! rendering.report.has_value())
    {
        entry["error"] = rendering.fault;
        return entry;
    }

    const auto& report = *rendering.report;

    if (rendering.job.picture.has_value())
        entry["picture"] = rendering.job.picture->string();

    entry["sample_rate_hz"] = report.shape.sampleRate;
    entry["channels"] = report.shape.channels;
    entry["length_s"] = report.seconds;

    if (report.analysis.has_value())
        addAnalysis (entry, *report.analysis);

    if (stats)
        entry["stats"] = { { "peak_dbfs", number (meter::finite (report.levels.peakDecibels())) },
                           { "rms_dbfs", number (meter::finite (report.levels.rmsDecibels())) },
                           { "times_real_time", number (meter::finite (report.timesRealTime)) } };

    return entry;
}
} // namespace

std::string reportDocument (std::span<const Rendering> renderings, bool stats)
{
    auto document = Json::array();

    for (const auto& rendering : renderings)
        document.push_back (describe (rendering, stats));

    return document.dump (2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace larkspire::render
