// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace larkspire
{

/** A state as VST 3 hosts hold it. */
struct HostState
{
    std::string chunk;              // what the processor saves, and all that there is under VST 2
    std::optional<bool> isBypassed; // the host's bypass, where the state tells of it

    /** Takes apart what a host hands over: a chunk with or without the trailer of JUCE's wrapper, or a VST 2 host's
       bank file around one, with or without the header "VstW" that tells of its bypass. None where such a wrapping does
       not hold what it claims. A trailer that the wrapper has not written is left as a part of the chunk. Takes time
       and memory in proportion to the bytes. */
    static std::optional<HostState> read (std::string_view bytes);

    /** What JUCE's wrapper reads: the chunk and its trailer. */
    std::string withTrailer() const;
};

} // namespace larkspire
