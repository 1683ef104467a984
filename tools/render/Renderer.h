// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Encoding.h"
#include "HostedPlugin.h"
#include "Levels.h"

#include <filesystem>
#include <functional>

namespace larkspire::render
{

/** One file in, one file out. */
struct Job
{
    std::filesystem::path input;
    std::filesystem::path output;
};

/** What all jobs of a call share. */
struct RenderSettings
{
    Mode mode = Mode::medium;
    int blockSize = 512; // sample frames; the result does not depend on it
    Encoding encoding;
};

/** What a finished job has to tell. */
struct RenderReport
{
    Levels levels;
    double seconds = 0.0;       // of sound
    double timesRealTime = 0.0; // how many seconds of sound a second of work gave; 0 where there was no sound
};

/** Takes a file through a plug-in instance of its own, in memory that does not grow with the file. The result has the
    input's length, sample rate and channels and appears under its name when it is whole.

    @param progress  told from time to time how much is done, 0 to 1; not called where the length is not known

    Throws Failure where it cannot be done and Interrupted where a signal asked for an end; then there is no result, and
    a file that had its name is as it was. */
RenderReport render (const PluginLibrary& library,
                     const Job& job,
                     const RenderSettings& settings,
                     const std::function<void (double)>& progress);

} // namespace larkspire::render
