// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Instance.h"

#include <algorithm>

namespace larkspire::measure
{

namespace
{
constexpr int blockSize = 4096;
} // namespace

Instance::Instance (const Subject& subject, const VoiceMode& mode, Start start, int sampleRate, int numChannels)
    : channels (numChannels),
      plugin (subject.library,
              { .mode = mode.position,
                .shape = { .channels = numChannels, .sampleRate = sampleRate },
                .blockSize = blockSize })
{
    auto silence = start == Start::atRest ? mode.framesToRest() : 0;

    while (silence > 0)
    {
        const auto frames = std::min (silence, std::size_t { blockSize });
        process (std::vector<float> (frames * static_cast<std::size_t> (channels)));
        silence -= frames;
    }
}

std::vector<float> Instance::process (std::vector<float> interleaved)
{
    const auto most = static_cast<std::size_t> (blockSize) * static_cast<std::size_t> (channels);

    for (std::span<float> rest (interleaved); ! rest.empty();)
    {
        const auto block = rest.first (std::min (rest.size(), most));
        plugin.process (block);
        rest = rest.subspan (block.size());
    }

    return interleaved;
}

} // namespace larkspire::measure
