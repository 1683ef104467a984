// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "audio/Encoding.h"
#include "audio/Metadata.h"

#include <cstdint>
#include <string>
#include <vector>

namespace larkspire
{

/** Reads what a WAV or RF64 file has beside its sound, in front of it and behind it. Chunks that say how the sound is
    stored, or how loud it is, are passed over. */
Metadata readWavMetadata (int descriptor);

/** Adds a chunk that was found in a file, with its tags if it holds such. */
void addChunk (Metadata& metadata, Chunk chunk);

/** The chunks of a WAV file with these metadata, one behind the other as they stand in the file; empty if there are
    none. What has no place in one is named in lost. */
std::string chunksOf (const Metadata& metadata, std::vector<std::string>& lost);

/** The broadcast extension (EBU Tech 3285) of a recording for what is made of it: with a line more of coding history
    (EBU R 98), and without loudness, which has changed. One that is too short to be any stays as it is. */
std::string broadcastExtensionOfResult (std::string bytes, const Encoding& encoding, const AudioShape& shape);

/** A little-endian whole number of some bytes. */
std::string littleEndian (std::uint64_t number, std::size_t bytes);

/** A chunk as it stands in a file. */
std::string stored (const Chunk& chunk);

/** Whether a chunk is that of tags, "LIST INFO". */
bool isInfo (const Chunk& chunk);

/** Whether a chunk is the tag of an MP3 file. */
bool isId3 (const Chunk& chunk);

/** What people call a chunk. */
std::string nameOf (const Chunk& chunk);

} // namespace larkspire
