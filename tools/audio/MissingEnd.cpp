// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/MissingEnd.h"

#include "audio/FileBytes.h"
#include "audio/MpegHeader.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace larkspire
{

namespace
{
/** Whether a size is what programs write that do not know it: the largest of 32 bits or of 31, or 0x7f000000, from
    which some subtract their header; of 64 bits anything that no disk holds. */
bool isUnknown (std::uint64_t size)
{
    const auto isNear = [size] (std::uint64_t largest) { return size + 0x1100 >= largest && size <= largest + 0x100; };
    return isNear (0xffffffff) || isNear (0x80000000) || isNear (0x7f000000)
           || size > static_cast<std::uint64_t> (std::numeric_limits<std::int64_t>::max() / 2);
}

/** What is missing of so much sound behind a place; nothing if there is no such place, since then something else is
    wrong. */
std::optional<MissingEnd> missingBehind (const FileBytes& file, std::int64_t place, std::uint64_t stated)
{
    const auto there = file.size() - place;

    if (there < 0 || isUnknown (stated) || stated <= static_cast<std::uint64_t> (there))
        return std::nullopt;

    return MissingEnd { .bytesThere = there, .bytesStated = static_cast<std::int64_t> (stated) };
}

constexpr std::int64_t chunkHeader = 8; // bytes: a name and a size

/** Whether bytes are the header of a chunk that fits into so many bytes. */
bool isChunk (std::string_view header, bool bigEndian, std::int64_t room)
{
    const auto isLetter = [] (char character) { return character >= 0x20 && character < 0x7f; };
    return std::all_of (header.begin(), header.begin() + std::min<std::ptrdiff_t> (4, std::ssize (header)), isLetter)
           && numberIn (header, 4, 4, bigEndian) + chunkHeader <= static_cast<std::uint64_t> (room);
}

/** The chunks of WAV and AIFF up to the one with the sound: a name and a size, four bytes each, then so many bytes and
    one more where the number is odd. */
std::optional<MissingEnd> missingInChunks (const FileBytes& file, std::string_view soundChunk, bool bigEndian)
{
    constexpr int mostChunks = 1000; // a recording has a dozen
    std::uint64_t largeSize = 0;
    std::int64_t place = 12;

    for (int i = 0; i < mostChunks && place + chunkHeader <= file.size(); ++i)
    {
        const auto header = file.at (place, 24);
        const auto name = std::string_view (header).substr (0, 4);
        const auto size = numberIn (header, 4, 4, bigEndian);
        place += chunkHeader;

        if (name == "ds64") // where RF64 keeps the sizes that do not fit into four bytes
            largeSize = numberIn (header, 16, 8, bigEndian);

        if (name == soundChunk)
        {
            const auto stated = size == 0xffffffff && largeSize > 0 ? largeSize : size;
            const auto there = file.size() - place;

            if (stated == 0 && there > 0 && ! isChunk (file.at (place, chunkHeader), bigEndian, there))
                return MissingEnd { .bytesThere = there, .bytesStated = 0 };

            return missingBehind (file, place, stated);
        }

        place += static_cast<std::int64_t> (size + size % 2);
    }

    return std::nullopt;
}

/** An Ogg file is whole if its last page is, and says that it is the last of its stream. */
std::optional<MissingEnd> missingInPages (const FileBytes& file)
{
    constexpr std::int64_t largestPage = 27 + 255 + 255 * 255;
    constexpr std::size_t pageHeader = 27;
    const auto start = std::max<std::int64_t> (0, file.size() - 2 * largestPage);
    const auto tail = file.at (start, static_cast<std::size_t> (file.size() - start));
    const auto page = tail.rfind (std::string_view ("OggS\0", 5));
    const MissingEnd missing { .bytesThere = file.size(), .bytesStated = std::nullopt };

    if (page == std::string::npos || page + pageHeader > tail.size())
        return missing;

    constexpr unsigned endOfStream = 4;
    const auto flags = numberIn (tail, page + 5, 1, true);
    const auto segments = numberIn (tail, page + 26, 1, true);
    auto end = page + pageHeader + segments;

    for (std::size_t i = 0; i < segments; ++i)
        end += numberIn (tail, page + pageHeader + i, 1, true);

    return (flags & endOfStream) != 0 && end <= tail.size() ? std::nullopt : std::optional (missing);
}

/** AU has a header of whole numbers: behind the name the place of the sound and its size. */
std::optional<MissingEnd> missingInAu (const FileBytes& file, bool bigEndian)
{
    const auto header = file.at (0, 12);
    return missingBehind (
        file, static_cast<std::int64_t> (numberIn (header, 4, 4, bigEndian)), numberIn (header, 8, 4, bigEndian));
}

/** The chunks of W64 up to the one with the sound: a name of 16 bytes and a size of eight that counts both, up to the
    next multiple of eight. */
std::optional<MissingEnd> missingInW64 (const FileBytes& file)
{
    constexpr int mostChunks = 1000;
    constexpr std::int64_t header = 24;
    std::int64_t place = 40;

    for (int i = 0; i < mostChunks && place + header <= file.size(); ++i)
    {
        const auto bytes = file.at (place, header);
        const auto size = numberIn (bytes, 16, 8, false);

        if (size < header || isUnknown (size))
            return std::nullopt;

        if (bytes.starts_with ("data"))
            return missingBehind (file, place + header, size - header);

        place += static_cast<std::int64_t> ((size + 7) / 8 * 8);
    }

    return std::nullopt;
}

/** The chunks of CAF up to the one with the sound: a name and a size of eight bytes. The sound begins with a number of
    four bytes that counts its edits. */
std::optional<MissingEnd> missingInCaf (const FileBytes& file)
{
    constexpr int mostChunks = 1000;
    constexpr std::int64_t header = 12;
    std::int64_t place = 8;

    for (int i = 0; i < mostChunks && place + header <= file.size(); ++i)
    {
        const auto bytes = file.at (place, header);
        const auto size = numberIn (bytes, 4, 8, true);

        if (bytes.starts_with ("data"))
            return size < 4 ? std::nullopt : missingBehind (file, place + header + 4, size - 4);

        if (isUnknown (size))
            return std::nullopt;

        place += header + static_cast<std::int64_t> (size);
    }

    return std::nullopt;
}

/** MPEG audio says where it ends only in the tag that an encoder may put in front. */
std::optional<MissingEnd> missingInMpeg (const FileBytes& file, const MpegInfo& info)
{
    return missingBehind (file, info.place, static_cast<std::uint64_t> (info.bytes));
}
} // namespace

std::optional<MissingEnd> findMissingEnd (int descriptor)
{
    const FileBytes file (descriptor);
    const auto start = file.at (0, 4);

    if (start == "RIFF" || start == "RF64")
        return missingInChunks (file, "data", false);

    if (start == "RIFX")
        return missingInChunks (file, "data", true);

    if (start == "FORM")
        return missingInChunks (file, "SSND", true);

    if (start == "OggS")
        return missingInPages (file);

    if (start == ".snd" || start == "dns.")
        return missingInAu (file, start == ".snd");

    if (start == "riff")
        return missingInW64 (file);

    if (start == "caff")
        return missingInCaf (file);

    const auto info = findMpegInfo (descriptor);
    return info.has_value() ? missingInMpeg (file, *info) : std::nullopt;
}

} // namespace larkspire
