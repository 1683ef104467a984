// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioInput.h"
#include "audio/AudioOutput.h"
#include "finish/Finisher.h"
#include "host/HostedPlugin.h"
#include "meter/Listening.h"
#include "render/Advice.h"
#include "render/InputGain.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace larkspire::render
{

/** One file in, one file out. */
struct Job
{
    std::filesystem::path input;
    std::filesystem::path output; // empty where the recording is only looked at
    KnobMode mode;
    std::optional<std::filesystem::path> picture; // where the picture goes, if one is wanted
    std::optional<std::string> refusal {};        // one line that says why it is not to be done
};

/** What all jobs of a call share. */
struct RenderSettings
{
    int blockSize; // sample frames; the result does not depend on it
    Encoding encoding;
    bool measure;               // whether to listen as well, which takes longer than the plug-in does
    bool allowTruncated;        // whether a recording that was cut off is as good as any
    InputLevel level {};        // of what the plug-in gets
    double settleSeconds = 0.0; // of the beginning, that the plug-in hears once before
    meter::Voices voices = meter::Voices::together;
    std::optional<int> processRate {};       // Hz, at which the plug-in runs; nullopt is the file's own
    std::optional<finish::Target> target {}; // what the result is brought to

    /** Whether anything but the plug-in changes the sound. */
    bool isPlain() const { return ! level.isGiven() && ! processRate.has_value() && ! target.has_value(); }
};

/** What a finished job has to tell. */
struct RenderReport
{
    Levels levels {};
    Losses losses {};                           // on writing
    std::int64_t roundedOnReading = 0;          // samples of which 32-bit floats do not hold every digit
    std::optional<Truncation> truncation {};    // there if the input was cut off
    std::optional<std::string> pictureFault {}; // one line that says why there is no picture, if one was wanted
    std::vector<std::string> leftBehind {};     // of the input's metadata, what the result has no place for
    std::vector<std::string> unreadable {};     // and what is damaged or too large
    AudioShape shape {};
    double seconds = 0.0;       // of sound
    double timesRealTime = 0.0; // how many seconds of sound a second of work gave; 0 if there was no sound
    std::optional<meter::Analysis> analysis {};    // there if it was asked for
    double inputGainDb = 0.0;                      // ahead of the plug-in
    std::optional<finish::FinishReport> finish {}; // there if there was a target
    std::optional<Advice> advice {};               // there if the recording was only looked at
};

/** A job and what has become of it. */
struct Rendering
{
    Job job;
    std::optional<RenderReport> report; // there if it was done
    std::string fault;                  // else one line that says why not
    bool isInterrupted = false;         // whether that is because a signal asked for an end
};

/** How far a job is. */
struct RenderProgress
{
    double secondsDone = 0.0;           // of sound
    std::optional<double> secondsInAll; // if the length is known
    double secondsOfWork = 0.0;
};

/** Takes a file through a plug-in instance of its own, and through what stands ahead of it and behind it:

        recording -> input gain -> [process rate] -> plug-in -> [file's rate] -> [gain and limiter] -> result

    The memory does not grow with the file, but for what a picture
    needs. The result has the input's length, sample rate and channels, and appears under its name when it is whole; so
    does the picture after it. A place that takes no picture is found out first; a picture that fails later leaves the
    result alone.

    May be called in several threads at once.

    @param progress  told after every block

    Throws Failure if it cannot be done and Interrupted if a signal asked for an end; then there is no result, and a
    file that had its name is as it was. */
RenderReport render (const PluginLibrary& library,
                     const Job& job,
                     const RenderSettings& settings,
                     const std::function<void (const RenderProgress&)>& progress);

/** Looks at a recording and writes nothing: its figures, and advice on its level for the job's mode. Throws as above.
 */
RenderReport
analyse (const Job& job, const RenderSettings& settings, const std::function<void (const RenderProgress&)>& progress);

} // namespace larkspire::render
