// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "audio/Encoding.h"
#include "audio/Metadata.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace larkspire
{

/** Reads what a FLAC file has beside its sound. Chunks of the WAV file that it was made of, as the program flac keeps
    them, are chunks again. */
Metadata readFlacMetadata (int descriptor);

/** The blocks of a FLAC file with these metadata behind the first, which describes the sound: Vorbis comments,
    pictures, and the chunks of a WAV file as the program flac keeps them, which can put them into a WAV file again.

    @param encodersComments  the last block as the encoder wrote it, with its header; it says which encoder it was
    @param frames            how many sample frames there will be, for the size in the WAV file's header
*/
std::string flacBlocksOf (const Metadata& metadata,
                          std::string_view encodersComments,
                          const Encoding& encoding,
                          const AudioShape& shape,
                          std::optional<std::int64_t> frames);

/** A picture as FLAC stores it. */
struct Picture
{
    int type = 0; // as in ID3v2: 3 is the front cover
    std::string mimeType;
    std::string description;
    std::string bytes;
};

/** The picture in a block of FLAC; nullopt for one that is damaged or no picture. */
std::optional<Picture> pictureIn (const FlacBlock& block);

/** The block with a picture; its size in pixels stays open. */
FlacBlock blockOf (const Picture& picture);

/** What people call a block. */
std::string nameOf (const FlacBlock& block);

} // namespace larkspire
