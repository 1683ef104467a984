// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Warnings.h"

#include "base/Failure.h"
#include "base/StandardStreams.h"
#include "base/Texts.h"

#include <algorithm>

namespace larkspire::render
{

namespace
{
std::string countOf (std::int64_t samples)
{
    return std::to_string (samples) + (samples == 1 ? " sample" : " samples");
}

std::string finishText (const finish::FinishReport& report)
{
    const auto level = [] (double value, const char* unit) { return fixed (value, 1) + " " + unit; };

    if (! report.reachedLufs.has_value())
        return "has no loudness, as it is silent, shorter than 0.4 s or holds NaN, and was left as it is";

    if (*report.reachedLufs > report.target.lufs)
        return "lies at " + level (*report.reachedLufs, "LUFS") + " instead of " + level (report.target.lufs, "LUFS")
               + ": no gain brings it nearer";

    return "reaches " + level (*report.reachedLufs, "LUFS") + " instead of " + level (report.target.lufs, "LUFS")
           + ": it gets no louder below " + level (report.target.ceilingDbtp, "dBTP");
}

std::string truncationText (const Truncation& truncation, const RenderReport& report)
{
    const auto there = secondsText (report.seconds) + " s";
    return truncation.secondsStated.has_value()
               ? "is cut off: only " + there + " of " + secondsText (*truncation.secondsStated) + " s are there"
               : "is cut off: its end is missing after " + there;
}

/** Names, each once, in one line. */
std::string listOf (const std::vector<std::string>& names)
{
    std::string list;

    for (auto name = names.begin(); name != names.end(); ++name)
        if (std::find (names.begin(), name, *name) == name)
            list += (list.empty() ? "" : ", ") + *name;

    return list;
}
} // namespace

std::vector<std::string> warningsOf (const Rendering& rendering, const RenderSettings& settings)
{
    std::vector<std::string> warnings;

    if (! rendering.report.has_value())
        return warnings;

    const auto& report = *rendering.report;
    const auto input = nameOfInput (rendering.job.input);
    const auto output = nameOfResult (rendering.job.output);
    const auto say = [&warnings] (const std::string& file, const std::string& text)
    { warnings.push_back (printable (file + ": " + text)); };

    if (report.truncation.has_value())
        say (input, truncationText (*report.truncation, report));

    const std::string remedy = holdsSamples (settings.encoding.container) ? "; --bits 32f keeps them" : "";

    if (report.losses.clipped > 0)
        say (output, countOf (report.losses.clipped) + " beyond full scale clipped" + remedy);

    if (report.losses.notNumbers > 0)
        say (output, countOf (report.losses.notNumbers) + " of NaN became silence" + remedy);

    if (report.finish.has_value() && report.finish->missed())
        say (output, finishText (*report.finish));

    // In a voice mode every sample is new, and rounded to the width that was asked for. In bypass none should change,
    // unless something else was asked for that changes them.
    if (rendering.job.mode == KnobMode::bypass && settings.isPlain())
    {
        if (report.roundedOnReading > 0)
            say (input, countOf (report.roundedOnReading) + " rounded to 32-bit floats, which the plug-in works in");

        if (report.losses.rounded > 0)
            say (output,
                 countOf (report.losses.rounded) + " rounded to " + std::to_string (bitsOf (settings.encoding.samples))
                     + " bits; --bits 32f keeps them");
    }

    if (! report.leftBehind.empty())
        say (input,
             std::string ("left behind, as ") + nameOf (settings.encoding.container)
                 + " files have no place for it: " + listOf (report.leftBehind));

    if (! report.unreadable.empty())
        say (input, "left behind, as it is damaged or larger than 16 MB: " + listOf (report.unreadable));

    if (report.pictureFault.has_value())
        warnings.push_back (*report.pictureFault);

    return warnings;
}

bool isFault (const Rendering& rendering, const RenderSettings& settings)
{
    const auto& report = rendering.report;
    return ! report.has_value() || report->pictureFault.has_value()
           || (report->truncation.has_value() && ! settings.allowTruncated);
}

} // namespace larkspire::render
