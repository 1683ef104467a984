// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/WavChunks.h"

#include "audio/FileBytes.h"
#include "audio/FlacBlocks.h"
#include "audio/Id3.h"
#include "audio/TagNames.h"

#include <algorithm>
#include <array>
#include <utility>

namespace larkspire
{

namespace
{
constexpr std::int64_t chunkHeader = 8; // bytes: a name and a size

/** Chunks that say how the sound is stored, or nothing, or what is false of another sound. */
bool isPassedOver (std::string_view name)
{
    constexpr std::array<std::string_view, 14> names { "fmt ", "data", "fact", "ds64", "PEAK", "JUNK", "junk",
                                                       "PAD ", "FLLR", "FAKE", "levl", "MD5 ", "wavl", "slnt" };
    return std::ranges::find (names, name) != names.end();
}

/** The texts of a chunk "LIST INFO": chunks in themselves, whose bytes end with a zero. */
void addInfoTags (std::vector<Tag>& tags, std::string_view list)
{
    std::size_t place = 4;

    while (place + chunkHeader <= list.size())
    {
        const auto id = list.substr (place, 4);
        const auto size = numberIn (list, place + 4, 4, false);
        const auto bytes = list.substr (place + chunkHeader, size);
        const std::string text (bytes.substr (0, bytes.find ('\0')));
        const auto known = std::ranges::find (tagNames, id, &TagName::info);

        // Some write the number of a track so.
        const auto name = known != tagNames.end() ? known->name : id == "IPRT" ? "TRACKNUMBER" : id;

        if (! text.empty())
            tags.push_back ({ .name = std::string (name), .text = asUtf8 (text) });

        if (size > list.size())
            return;

        place += chunkHeader + size + size % 2;
    }
}

/** The name of a tag in "LIST INFO"; empty if there is none. */
std::string infoNameOf (const Tag& tag)
{
    const auto known = std::ranges::find (tagNames, tag.name, &TagName::name);

    if (known != tagNames.end())
        return std::string (known->info);

    // One that had no other name when it came from there.
    const auto isInfo = tag.name.size() == 4 && tag.name.starts_with ('I');
    return isInfo ? tag.name : std::string();
}

std::string infoChunkOf (const std::vector<Tag>& tags, std::vector<std::string>& lost)
{
    std::string list = "INFO";

    for (const auto& tag : tags)
        if (const auto name = infoNameOf (tag); name.empty())
            lost.push_back ("the tag " + tag.name);
        else
            list += stored ({ .name = name, .bytes = tag.text + '\0' });

    return list.size() > 4 ? stored ({ .name = "LIST", .bytes = list }) : std::string();
}
} // namespace

std::string littleEndian (std::uint64_t number, std::size_t bytes)
{
    std::string text;

    for (std::size_t i = 0; i < bytes; ++i)
        text += static_cast<char> (number >> (8 * i));

    return text;
}

std::string stored (const Chunk& chunk)
{
    return chunk.name + littleEndian (chunk.bytes.size(), 4) + chunk.bytes + std::string (chunk.bytes.size() % 2, '\0');
}

bool isInfo (const Chunk& chunk)
{
    return chunk.name == "LIST" && chunk.bytes.starts_with ("INFO");
}

bool isId3 (const Chunk& chunk)
{
    return chunk.name == "id3 " || chunk.name == "ID3 ";
}

std::string nameOf (const Chunk& chunk)
{
    if (isInfo (chunk) || isId3 (chunk))
        return "tags";

    constexpr std::array<std::pair<std::string_view, std::string_view>, 7> names {
        { { "bext", "the broadcast extension with its time code" },
          { "cue ", "cue points" },
          { "LIST", "labels" },
          { "iXML", "iXML" },
          { "cart", "cart data" },
          { "_PMX", "XMP" },
          { "smpl", "loops" } }
    };
    const auto known = std::ranges::find (names, std::string_view (chunk.name), &decltype (names)::value_type::first);
    return known != names.end() ? std::string (known->second) : "the chunk \"" + chunk.name + "\"";
}

void addChunk (Metadata& metadata, Chunk chunk)
{
    if (isPassedOver (chunk.name))
        return;

    if (isInfo (chunk))
        addInfoTags (metadata.tags, chunk.bytes);

    if (isId3 (chunk))
        chunk.bytes = withoutLoudness (chunk.bytes);

    metadata.chunks.push_back (std::move (chunk));
}

Metadata readWavMetadata (int descriptor)
{
    constexpr int mostChunks = 1000; // a recording has a dozen
    const FileBytes file (descriptor);
    Metadata metadata;
    std::uint64_t largeSize = 0;
    std::size_t readSoFar = 0;
    std::int64_t place = 12;

    for (int i = 0; i < mostChunks && place + chunkHeader <= file.size(); ++i)
    {
        const auto header = file.at (place, 24);
        Chunk chunk { .name = header.substr (0, 4), .bytes = {} };
        auto size = numberIn (header, 4, 4, false);
        const auto there = static_cast<std::uint64_t> (file.size() - place - chunkHeader);

        if (chunk.name == "ds64")
            largeSize = numberIn (header, 16, 8, false);

        if (chunk.name == "data" && size == 0xffffffff)
            size = largeSize;

        if (! isPassedOver (chunk.name))
        {
            // What lies behind a header that was never completed is no chunk.
            if (std::ranges::any_of (chunk.name, [] (char letter) { return letter < 0x20 || letter > 0x7e; }))
                break;

            if (size > there || size > largestMetadata || readSoFar + size > 2 * largestMetadata)
            {
                chunk.bytes = file.at (place + chunkHeader, 4); // for the name
                metadata.unreadable.push_back (nameOf (chunk));
            }
            else
            {
                chunk.bytes = file.at (place + chunkHeader, size);
                readSoFar += size;
                addChunk (metadata, std::move (chunk));
            }
        }

        if (size > there)
            break;

        place += chunkHeader + static_cast<std::int64_t> (size + size % 2);
    }

    return metadata;
}

std::string chunksOf (const Metadata& metadata, std::vector<std::string>& lost)
{
    std::string bytes;
    std::vector<std::string> withoutPlace;

    for (const auto& chunk : metadata.chunks)
        bytes += stored (chunk);

    for (const auto& block : metadata.blocks)
        withoutPlace.push_back (nameOf (block));

    // One that was there stays as it is, in whatever character set.
    if (std::ranges::none_of (metadata.chunks, isInfo))
        bytes += infoChunkOf (metadata.tags, withoutPlace);

    // The tag of an MP3 file holds all that there is, its pictures too.
    if (! metadata.id3.empty())
        return bytes + stored ({ .name = "id3 ", .bytes = metadata.id3 });

    lost.insert (lost.end(), withoutPlace.begin(), withoutPlace.end());
    return bytes;
}

std::string broadcastExtensionOfResult (std::string bytes, const Encoding& encoding, const AudioShape& shape)
{
    constexpr std::size_t loudness = 412; // five numbers of two bytes, from the second version of the format on
    constexpr std::size_t history = 602;

    if (bytes.size() < history)
        return bytes;

    // The number that says that there is none.
    for (std::size_t i = 0; i < 5 && numberIn (bytes, 346, 2, false) >= 2; ++i)
        bytes.replace (loudness + 2 * i, 2, "\xff\x7f", 2);

    bytes.resize (std::max (history, bytes.find_last_not_of ('\0') + 1));

    if (bytes.size() > history && ! bytes.ends_with ("\r\n"))
        bytes += "\r\n";

    return bytes + "A=PCM,F=" + std::to_string (shape.sampleRate) + ",W=" + std::to_string (bitsOf (encoding.samples))
           + ",M=" + (shape.channels == 1 ? "mono" : "stereo") + ",T=larkspire-render\r\n";
}

} // namespace larkspire
