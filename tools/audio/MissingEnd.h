// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdint>
#include <optional>

namespace larkspire
{

/** What a file lacks whose sound ends too early. */
struct MissingEnd
{
    std::int64_t bytesThere = 0;             // of sound
    std::optional<std::int64_t> bytesStated; // by the header, 0 where it was not completed; an Ogg file states none
};

/** Looks whether a recording ends before its sound does, for instance one recorded onto a full card or
    copied while it was being recorded: in the middle of what its header states, or without the page that ends an Ogg
    stream. A header that states no sound in front of bytes that are no chunk was never completed.

    nullopt for a file that is whole, also for one that was written into a pipe and so could not state its length, and
    for other kinds: FLAC says itself when it cannot be read on, and MP3 without the tag of its encoder states nothing.

    @param descriptor  of a file that can be read at any place; where it stands does not matter and does not change
*/
std::optional<MissingEnd> findMissingEnd (int descriptor);

} // namespace larkspire
