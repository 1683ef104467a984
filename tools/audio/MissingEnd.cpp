// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/MissingEnd.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace larkspire
{

namespace
{
/** A file to look into, byte by byte. */
class Bytes
{
public:
    explicit Bytes (int fileDescriptor) : descriptor (fileDescriptor)
    {
        struct stat status = {};
        length = fstat (descriptor, &status) == 0 ? std::int64_t { status.st_size } : 0;
    }

    std::int64_t size() const { return length; }

    /** As many of the bytes at a place as there are. */
    std::string at (std::int64_t place, std::size_t count) const
    {
        std::string bytes (count, '\0');
        const auto read = pread (descriptor, bytes.data(), count, place);
        bytes.resize (static_cast<std::size_t> (std::max<ssize_t> (0, read)));
        return bytes;
    }

private:
    int descriptor;
    std::int64_t length = 0;
};

/** A whole number of some bytes; 0 where there are too few. */
std::uint64_t numberIn (std::string_view bytes, std::size_t place, std::size_t width, bool bigEndian)
{
    std::uint64_t number = 0;

    for (std::size_t i = 0; i < width && place + width <= bytes.size(); ++i)
        number = (number << 8) | static_cast<unsigned char> (bytes[place + (bigEndian ? i : width - 1 - i)]);

    return number;
}

/** Whether a size is what programs write that do not know it: the largest of 32 bits or of 31, or 0x7f000000, from
    which some subtract their header. */
bool isUnknown (std::uint64_t size)
{
    const auto isNear = [size] (std::uint64_t largest) { return size + 0x1100 >= largest && size <= largest + 0x100; };
    return isNear (0xffffffff) || isNear (0x80000000) || isNear (0x7f000000)
           || size > static_cast<std::uint64_t> (std::numeric_limits<std::int64_t>::max());
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
std::optional<MissingEnd> missingInChunks (const Bytes& file, std::string_view soundChunk, bool bigEndian)
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

            if (isUnknown (stated) || stated <= static_cast<std::uint64_t> (there))
                return std::nullopt;

            return MissingEnd { .bytesThere = there, .bytesStated = static_cast<std::int64_t> (stated) };
        }

        place += static_cast<std::int64_t> (size + size % 2);
    }

    return std::nullopt;
}

/** An Ogg file is whole if its last page is, and says that it is the last of its stream. */
std::optional<MissingEnd> missingInPages (const Bytes& file)
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
} // namespace

std::optional<MissingEnd> findMissingEnd (int descriptor)
{
    const Bytes file (descriptor);
    const auto start = file.at (0, 4);

    if (start == "RIFF" || start == "RF64")
        return missingInChunks (file, "data", false);

    if (start == "RIFX")
        return missingInChunks (file, "data", true);

    if (start == "FORM")
        return missingInChunks (file, "SSND", true);

    return start == "OggS" ? missingInPages (file) : std::nullopt;
}

} // namespace larkspire
