// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/FlacBlocks.h"

#include "audio/FileBytes.h"
#include "audio/MpegHeader.h"
#include "audio/WavChunks.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <iterator>

namespace larkspire
{

namespace
{
// The numbers of the format (RFC 9639).
constexpr int application = 2;
constexpr int vorbisComment = 4;
constexpr int cueSheet = 5;
constexpr int picture = 6;
constexpr unsigned isLast = 0x80;
constexpr std::size_t header = 4; // bytes: type and size

std::string bigEndian (std::uint64_t number, std::size_t bytes)
{
    auto text = littleEndian (number, bytes);
    std::ranges::reverse (text);
    return text;
}

/** A text with its length in front, as Vorbis comments have it; moves behind it. Empty where it does not fit. */
std::string textAt (std::string_view bytes, std::size_t& place, bool isBigEndian)
{
    const auto length = numberIn (bytes, place, 4, isBigEndian);
    place += 4;

    if (place > bytes.size() || length > bytes.size() - place)
    {
        place = bytes.size();
        return {};
    }

    std::string text (bytes.substr (place, length));
    place += length;
    return text;
}

void addComments (std::vector<Tag>& tags, std::string_view bytes)
{
    std::size_t place = 0;
    textAt (bytes, place, false); // which encoder it was
    const auto count = numberIn (bytes, place, 4, false);
    place += 4;

    for (std::uint64_t i = 0; i < count && place < bytes.size(); ++i)
    {
        const auto comment = textAt (bytes, place, false);
        const auto equals = comment.find ('=');

        if (equals == std::string::npos || equals == 0)
            continue;

        auto name = comment.substr (0, equals);

        for (auto& letter : name)
            letter = static_cast<char> (std::toupper (static_cast<unsigned char> (letter)));

        if (! isAboutLoudness (name))
            tags.push_back ({ .name = name, .text = comment.substr (equals + 1) });
    }
}

/** Programs keep the chunks of another kind of file in blocks of their own; those of WAV are taken out. */
void addApplication (Metadata& metadata, Metadata& ofWav, const FlacBlock& block)
{
    const std::string_view bytes (block.bytes);

    if (bytes.starts_with ("aiff") || bytes.starts_with ("w64 ") || bytes.starts_with ("riffRIFF"))
        return;

    if (! bytes.starts_with ("riff"))
        metadata.blocks.push_back (block);
    else if (bytes.size() >= 12 && numberIn (bytes, 8, 4, false) <= bytes.size() - 12)
        addChunk (ofWav,
                  { .name = std::string (bytes.substr (4, 4)),
                    .bytes = std::string (bytes.substr (12, numberIn (bytes, 8, 4, false))) });
}

std::string storedBlock (int type, const std::string& bytes)
{
    return bigEndian (static_cast<std::uint64_t> (type), 1) + bigEndian (bytes.size(), 3) + bytes;
}

std::string commentsOf (const std::vector<Tag>& tags, std::string_view encodersComments)
{
    std::size_t place = header;
    const auto encoder = textAt (encodersComments, place, false);
    auto bytes = littleEndian (encoder.size(), 4) + encoder + littleEndian (tags.size(), 4);

    for (const auto& [name, text] : tags)
        bytes.append (littleEndian (name.size() + 1 + text.size(), 4)).append (name).append ("=").append (text);

    return storedBlock (vorbisComment, bytes);
}

/** The chunks between the headers of a WAV file with the same sound. */
std::string riffBlocksOf (const std::vector<Chunk>& chunks,
                          const Encoding& encoding,
                          const AudioShape& shape,
                          std::optional<std::int64_t> frames)
{
    const auto channels = static_cast<std::uint64_t> (shape.channels);
    const auto rate = static_cast<std::uint64_t> (shape.sampleRate);
    const auto bits = static_cast<std::uint64_t> (bitsOf (encoding.samples));
    const auto frameSize = channels * bits / 8;
    const auto soundSize = static_cast<std::uint64_t> (frames.value_or (0)) * frameSize;
    const Chunk format { .name = "fmt ",
                         .bytes = littleEndian (1, 2) + littleEndian (channels, 2) + littleEndian (rate, 4)
                                  + littleEndian (rate * frameSize, 4) + littleEndian (frameSize, 2)
                                  + littleEndian (bits, 2) };
    auto riffSize = 4 + stored (format).size() + 8 + soundSize + soundSize % 2;
    std::string blocks;

    for (const auto& chunk : chunks)
    {
        if (isInfo (chunk)) // these are comments now
            continue;

        riffSize += stored (chunk).size();
        blocks += storedBlock (application, "riff" + stored (chunk));
    }

    return storedBlock (application, "riffRIFF" + littleEndian (riffSize, 4) + "WAVE")
           + storedBlock (application, "riff" + stored (format)) + blocks
           + storedBlock (application, "riffdata" + littleEndian (soundSize, 4));
}
} // namespace

Metadata readFlacMetadata (int descriptor)
{
    constexpr int mostBlocks = 1000;
    const FileBytes file (descriptor);
    Metadata metadata;
    Metadata ofWav; // that the file was made of
    std::size_t readSoFar = 0;
    auto place = sizeOfId3 (file.at (0, 10)) + 4;

    for (int i = 0; i < mostBlocks; ++i)
    {
        const auto start = file.at (place, header);
        const auto size = numberIn (start, 1, 3, true);

        if (start.size() < header || place + std::int64_t { header } + static_cast<std::int64_t> (size) > file.size())
            break;

        const auto flags = numberIn (start, 0, 1, true);
        FlacBlock block { .type = static_cast<int> (flags & ~isLast), .bytes = {} };
        const auto isKnown =
            block.type == application || block.type == vorbisComment || block.type == cueSheet || block.type == picture;

        if (isKnown && (size > largestMetadata || readSoFar + size > 2 * largestMetadata))
            metadata.unreadable.push_back (nameOf (block));
        else if (isKnown)
        {
            block.bytes = file.at (place + std::int64_t { header }, size);
            readSoFar += size;

            if (block.type == vorbisComment)
                addComments (metadata.tags, block.bytes);
            else if (block.type == application)
                addApplication (metadata, ofWav, block);
            else
                metadata.blocks.push_back (std::move (block));
        }

        if ((flags & isLast) != 0)
            break;

        place += std::int64_t { header } + static_cast<std::int64_t> (size);
    }

    std::ranges::copy_if (ofWav.chunks, std::back_inserter (metadata.chunks), std::not_fn (isInfo));

    // What is said in both is said in FLAC's own way by whoever was there last.
    for (const auto& tag : ofWav.tags)
        if (std::ranges::find (metadata.tags, tag.name, &Tag::name) == metadata.tags.end())
            metadata.tags.push_back (tag);

    return metadata;
}

std::string flacBlocksOf (const Metadata& metadata,
                          std::string_view encodersComments,
                          const Encoding& encoding,
                          const AudioShape& shape,
                          std::optional<std::int64_t> frames)
{
    std::string blocks;

    for (const auto& block : metadata.blocks)
        blocks += storedBlock (block.type, block.bytes);

    if (! std::ranges::all_of (metadata.chunks, isInfo))
        blocks += riffBlocksOf (metadata.chunks, encoding, shape, frames);

    // The one that is the last says so; the order is free.
    auto last = commentsOf (metadata.tags, encodersComments);
    last.front() = static_cast<char> (isLast | vorbisComment);
    return blocks + last;
}

std::optional<Picture> pictureIn (const FlacBlock& block)
{
    if (block.type != picture)
        return std::nullopt;

    Picture found {
        .type = static_cast<int> (numberIn (block.bytes, 0, 4, true)), .mimeType = {}, .description = {}, .bytes = {}
    };
    std::size_t place = 4;
    found.mimeType = textAt (block.bytes, place, true);
    found.description = textAt (block.bytes, place, true);
    place += 16; // its size and colours
    found.bytes = textAt (block.bytes, place, true);
    return found.bytes.empty() ? std::nullopt : std::optional (found);
}

FlacBlock blockOf (const Picture& found)
{
    const auto text = [] (const std::string& bytes) { return bigEndian (bytes.size(), 4) + bytes; };
    return { .type = picture,
             .bytes = bigEndian (static_cast<std::uint64_t> (found.type), 4) + text (found.mimeType)
                      + text (found.description) + std::string (16, '\0') + text (found.bytes) };
}

std::string nameOf (const FlacBlock& block)
{
    switch (block.type)
    {
    case vorbisComment:
        return "tags";
    case cueSheet:
        return "a cue sheet";
    case picture:
        return "a picture";
    default:
        return "data of the program \"" + block.bytes.substr (0, 4) + "\"";
    }
}

} // namespace larkspire
