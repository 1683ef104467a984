// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Recording.h"

#include "audio/AudioInput.h"
#include "base/Failure.h"

#include <array>
#include <cstddef>

namespace larkspire::measure
{

Recording readRecording (const std::filesystem::path& path)
{
    AudioInput file (path);

    if (file.shape().channels != 1)
        throw Failure (path, "has more than one channel");

    Recording recording { .sampleRate = file.shape().sampleRate, .samples = {} };
    std::array<float, 4096> part {};

    while (const auto count = file.read (part))
        recording.samples.insert (
            recording.samples.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t> (count));

    return recording;
}

} // namespace larkspire::measure
