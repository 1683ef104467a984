// SPDX-License-Identifier: AGPL-3.0-only
#include "render/ReportDocument.h"

#include "base/Failure.h"
#include "render/Figures.h"
#include "render/Warnings.h"

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

Json describe (const finish::FinishReport& report)
{
    return { { "target_lufs", report.target.lufs },
             { "ceiling_dbtp", report.target.ceilingDbtp },
             { "reached_lufs", number (report.reachedLufs) },
             { "gain_db", number (report.gainDb) },
             { "limiter_share_of_time", number (report.limiter.shareOfTime) },
             { "limiter_times", report.limiter.times },
             { "limiter_deepest_db", number (report.limiter.deepestDb) } };
}

Json describe (const Trial& trial)
{
    return { { "mode", nameOf (trial.mode) },
             { "gain_db", number (trial.gainDb) },
             { "voice_before_dbfs", number (trial.before.voiceDbfs) },
             { "room_before_dbfs", number (trial.before.roomDbfs) },
             { "voice_after_dbfs", number (trial.after.voiceDbfs) },
             { "room_after_dbfs", number (trial.after.roomDbfs) },
             { "expander_closes", trial.closes } };
}

/** What was found of a recording that is only looked at. */
void addAdvice (Json& entry, const RenderReport& report)
{
    entry["before"] = describe (report.analysis->before, soundFigures);
    entry["advice"] = report.advice->sentences;
    entry["trials"] = Json::array();

    for (const auto& trial : report.advice->trials)
        entry["trials"].push_back (describe (trial));
}

bool isUtf8 (const std::string& text)
{
    try
    {
        return ! Json (text).dump().empty();
    }
    catch (const Json::type_error&)
    {
        return false;
    }
}

/** Adds a path under a key. JSON is UTF-8 and a path is bytes, so one that is no UTF-8 is put there a second time, in
    escapes that give the bytes back. */
void addPath (Json& entry, const std::string& key, const std::filesystem::path& path)
{
    entry[key] = path.string();

    if (! isUtf8 (path.string()))
        entry[key + "_bytes"] = escapedBytes (path.string());
}

Json describe (const LeftOut& left)
{
    Json entry;
    addPath (entry, "path", left.path);
    entry["reason"] = left.reason;
    entry["is_error"] = left.isFault;
    return entry;
}

Json describe (const Rendering& rendering, const BatchPlan& plan)
{
    Json entry;
    addPath (entry, "input", rendering.job.input);

    if (! rendering.job.output.empty())
        addPath (entry, "output", rendering.job.output);

    entry["mode"] = nameOf (rendering.job.mode);

    if (! rendering.report.has_value())
    {
        entry["error"] = rendering.fault;
        return entry;
    }

    const auto& report = *rendering.report;

    if (rendering.job.picture.has_value() && ! report.pictureFault.has_value())
        addPath (entry, "picture", *rendering.job.picture);

    entry["sample_rate_hz"] = report.shape.sampleRate;
    entry["channels"] = report.shape.channels;
    entry["length_s"] = report.seconds;
    entry["truncated"] = report.truncation.has_value();

    if (report.truncation.has_value() && report.truncation->secondsStated.has_value())
        entry["stated_length_s"] = *report.truncation->secondsStated;

    entry["clipped_samples"] = report.losses.clipped;
    entry["warnings"] = warningsOf (rendering, plan.settings);

    if (plan.settings.level.isGiven())
        entry["input_gain_db"] = number (report.inputGainDb);

    if (report.advice.has_value())
        addAdvice (entry, report);
    else if (report.analysis.has_value())
        addAnalysis (entry, *report.analysis);

    if (report.finish.has_value())
        entry["finish"] = describe (*report.finish);

    if (plan.outputs.stats)
        entry["stats"] = { { "peak_dbfs", number (meter::finite (report.levels.peakDecibels())) },
                           { "rms_dbfs", number (meter::finite (report.levels.rmsDecibels())) },
                           { "times_real_time", number (meter::finite (report.timesRealTime)) } };

    return entry;
}
} // namespace

std::string reportDocument (std::span<const Rendering> renderings, const BatchPlan& plan)
{
    Json document { { "version", 2 },
                    { "results", Json::array() },
                    { "left_out", Json::array() },
                    { "files_without_sound", plan.withoutSound } };

    for (const auto& rendering : renderings)
        document["results"].push_back (describe (rendering, plan));

    for (const auto* list : { &plan.leftOut, &plan.doneBefore })
        for (const auto& left : *list)
            document["left_out"].push_back (describe (left));

    return document.dump (2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace larkspire::render
