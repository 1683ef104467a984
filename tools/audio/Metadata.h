// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace larkspire
{

/** A text about a recording. The name is that of a Vorbis comment, in capitals; the text is UTF-8. */
struct Tag
{
    std::string name;
    std::string text;
};

/** A chunk of a WAV file beside those that describe and hold the sound. */
struct Chunk
{
    std::string name; // four characters
    std::string bytes;
};

/** A block of metadata of a FLAC file, as its format numbers them. */
struct FlacBlock
{
    int type = 0;
    std::string bytes;
};

/** What a file says of its recording, beside the sound. Whatever would be false of what the plug-in makes of it is not
    in here: ReplayGain and other measurements. */
struct Metadata
{
    std::vector<Tag> tags;     // of whatever kind of file
    std::vector<Chunk> chunks; // of a WAV file, with the one that holds tags; or of a FLAC file that was made of one
    std::vector<FlacBlock> blocks;       // of a FLAC file: pictures, cue sheets and what programs keep for themselves
    std::string id3;                     // the tag of an MP3 file as it is
    std::vector<std::string> unreadable; // what is damaged or too large, by name

    bool isEmpty() const { return tags.empty() && chunks.empty() && blocks.empty() && id3.empty(); }
};

/** More than that of one thing, and twice that of all, is not read: what is larger in a file is damaged, or nothing
   that has to be carried on. */
inline constexpr std::size_t largestMetadata = (1U << 24) - 1024;

/** Whether a tag tells how loud the recording is, or how it is to be played for that reason. */
bool isAboutLoudness (std::string_view name);

/** The text in UTF-8: as it is where it is that, and else what it is in Latin 1. */
std::string asUtf8 (const std::string& text);

} // namespace larkspire
