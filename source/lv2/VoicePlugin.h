// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/VoiceChain.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace larkspire
{

/** The chain as an LV2 plug-in: ports for the audio, one for the mode, and nothing else. No window, no state, no
   thread; run takes no memory, no lock and no call of the system. */
class VoicePlugin
{
public:
    /** @param rate      the host's, in Hz, for the life of the plug-in
        @param channels  1 or 2 */
    VoicePlugin (double rate, std::size_t channels) noexcept;

    /** Takes note of where a port's data is. The audio inputs come first, then the outputs, then "mode"; other ports
       are none of ours. Null says that a port is not connected. */
    void connect (std::uint32_t port, void* data) noexcept;

    /** Processes frames from the inputs to the outputs, which may be the same memory in any pairing. A change of the
       mode is heard from the second frame on, as a change between two blocks is in the other formats. Without all of
       the audio ports it does nothing. */
    void run (std::uint32_t frames) noexcept;

private:
    /** The position that the control port asks for: its nearest whole number, or "Medium" where that is no position. */
    int wantedMode() const noexcept;

    void processRun (std::size_t from, std::size_t count) noexcept;

    const double sampleRate;
    const std::size_t channelCount;
    std::array<const float*, 2> inputs {};
    std::array<float*, 2> outputs {};
    const float* modePort = nullptr;
    VoiceRecords records;
    int modeInForce = -1; // none before the first frame
};

} // namespace larkspire
