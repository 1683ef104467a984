// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Instance.h"

#include <algorithm>

namespace larkspire::measure
{

namespace
{
constexpr int blockSize = 4096;
} // namespace

Instance::Instance (const PluginLibrary& library, KnobMode mode, int sampleRate, int numChannels)
    : channels (numChannels),
      plugin (library,
              { .mode = mode, .shape = { .channels = numChannels, .sampleRate = sampleRate }, .blockSize = blockSize })
{
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

void Instance::rest (std::size_t frames)
{
    std::vector<float> silence;

    while (frames > 0)
    {
        const auto count = std::min (frames, static_cast<std::size_t> (blockSize));
        silence.assign (count * static_cast<std::size_t> (channels), 0.0f);
        plugin.process (silence);
        frames -= count;
    }
}

} // namespace larkspire::measure
