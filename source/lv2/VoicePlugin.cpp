// SPDX-License-Identifier: AGPL-3.0-only
#include "lv2/VoicePlugin.h"

#include "chain/Channels.h"
#include "chain/FlushToZero.h"

#include <algorithm>
#include <cmath>

namespace larkspire
{

namespace
{
constexpr int bypassMode = 0;
constexpr int defaultMode = 2;
constexpr int lastMode = 3;
constexpr std::size_t longestRun = 64; // what stays in the nearest cache on the way from the inputs to the outputs
} // namespace

VoicePlugin::VoicePlugin (double rate, std::size_t channels) noexcept : sampleRate (rate), channelCount (channels) {}

void VoicePlugin::connect (std::uint32_t port, void* data) noexcept
{
    if (port < channelCount)
        inputs[port] = static_cast<const float*> (data);
    else if (port < 2 * channelCount)
        outputs[port - channelCount] = static_cast<float*> (data);
    else if (port == 2 * channelCount)
        modePort = static_cast<const float*> (data);
}

int VoicePlugin::wantedMode() const noexcept
{
    const float wanted = modePort != nullptr ? std::round (*modePort) : -1.0f;
    return wanted >= 0.0f && wanted <= static_cast<float> (lastMode) ? static_cast<int> (wanted) : defaultMode;
}

void VoicePlugin::run (std::uint32_t frames) noexcept
{
    const bool isConnected =
        std::ranges::all_of (inputs.begin(), inputs.begin() + channelCount, [] (auto* p) { return p != nullptr; })
        && std::ranges::all_of (outputs.begin(), outputs.begin() + channelCount, [] (auto* p) { return p != nullptr; });

    if (frames == 0 || ! isConnected)
        return;

    const ScopedFlushToZero flushToZero;
    std::size_t done = 0;

    if (const int wanted = wantedMode(); wanted != modeInForce)
    {
        // The frame that finds the change is still processed as before it, but for the very first.
        if (modeInForce >= 0)
            processRun (done++, 1);

        modeInForce = wanted;
        records.chain().adopt (modeForIndex (modeInForce), sampleRate);
    }

    for (std::size_t count = 0; done < frames; done += count)
    {
        count = std::min (longestRun, frames - done);
        processRun (done, count);
    }
}

void VoicePlugin::processRun (std::size_t from, std::size_t count) noexcept
{
    const bool isStereo = channelCount == 2;
    std::array<StereoSample, longestRun> buffer;
    const std::span frames (buffer.data(), count);

    readChannels (inputs[0] + from, isStereo ? inputs[1] + from : nullptr, frames);

    if (modeInForce != bypassMode)
        records.chain().process (frames);

    writeChannels (frames, outputs[0] + from, isStereo ? outputs[1] + from : nullptr);
}

} // namespace larkspire
