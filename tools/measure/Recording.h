// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <filesystem>
#include <vector>

namespace larkspire::measure
{

/** A sound of one channel, linear full scale 1.0. */
struct Recording
{
    int sampleRate; // Hz
    std::vector<float> samples;
};

/** All of a file. Throws Failure if it cannot be read or has more than one channel. */
Recording readRecording (const std::filesystem::path& path);

} // namespace larkspire::measure
