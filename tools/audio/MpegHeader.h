// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace larkspire
{

/** Whether bytes begin with the header of a frame of MPEG audio, layer II or III; three bytes of it are enough. Texts
    of 16 bits begin like one of layer I, which nobody uses. */
bool isMpegHeader (std::string_view bytes);

/** How many bytes a tag in front of the sound takes (ID3v2, id3.org); 0 where bytes, ten of them, begin none. */
std::int64_t sizeOfId3 (std::string_view bytes);

/** What an encoder notes in the first frame of an MP3 file, which holds no sound (the tag "Xing" or "Info"). */
struct MpegInfo
{
    std::int64_t place = 0; // of that frame, in bytes
    std::int64_t bytes = 0; // of MPEG audio from there on; 0 if that is not noted
};

/** That of a file, by its descriptor, which may stand anywhere; nullopt where there is none. */
std::optional<MpegInfo> findMpegInfo (int descriptor);

} // namespace larkspire
