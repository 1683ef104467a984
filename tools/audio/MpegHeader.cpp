// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/MpegHeader.h"

#include "audio/FileBytes.h"

#include <algorithm>

namespace larkspire
{

namespace
{
constexpr std::int64_t id3Header = 10; // bytes

std::uint8_t byteAt (std::string_view bytes, std::size_t place)
{
    return static_cast<std::uint8_t> (bytes[place]);
}
} // namespace

bool isMpegHeader (std::string_view bytes)
{
    if (bytes.size() < 3)
        return false;

    const auto layer = (byteAt (bytes, 1) >> 1) & 3;
    const auto version = (byteAt (bytes, 1) >> 3) & 3;
    return byteAt (bytes, 0) == 0xff && byteAt (bytes, 1) >= 0xe0 && (layer == 1 || layer == 2) && version != 1
           && (byteAt (bytes, 2) >> 4) != 15 && ((byteAt (bytes, 2) >> 2) & 3) != 3;
}

std::int64_t sizeOfId3 (std::string_view bytes)
{
    if (! bytes.starts_with ("ID3") || std::ssize (bytes) < id3Header)
        return 0;

    // Seven bits of each byte, so that no decoder takes the size for the header of a frame.
    std::int64_t size = 0;

    for (std::size_t i = 6; i < 10; ++i)
        size = (size << 7) | (byteAt (bytes, i) & 0x7f);

    constexpr unsigned hasFooter = 0x10;
    return id3Header + size + ((byteAt (bytes, 5) & hasFooter) != 0 ? id3Header : 0);
}

std::optional<MpegInfo> findMpegInfo (int descriptor)
{
    const FileBytes file (descriptor);
    const auto place = sizeOfId3 (file.at (0, id3Header));
    constexpr std::size_t longestSideInformation = 32;
    constexpr std::size_t header = 4;
    const auto frame = file.at (place, header + longestSideInformation + 16);

    if (! isMpegHeader (frame) || frame.size() < header + longestSideInformation + 16)
        return std::nullopt;

    // The tag stands behind the side information, whose size depends on version and channels (ISO 11172-3, 13818-3).
    const auto isVersion1 = ((byteAt (frame, 1) >> 3) & 3) == 3;
    const auto isMono = (byteAt (frame, 3) >> 6) == 3;
    const std::size_t monoSize = isVersion1 ? 17 : 9;
    const auto tag = std::string_view (frame).substr (header + (isMono ? monoSize : isVersion1 ? 32U : 17U), 16);

    if (! tag.starts_with ("Xing") && ! tag.starts_with ("Info"))
        return std::nullopt;

    constexpr unsigned notesFrames = 1;
    constexpr unsigned notesBytes = 2;
    const auto flags = numberIn (tag, 4, 4, true);
    const std::size_t placeOfBytes = (flags & notesFrames) != 0 ? 12 : 8;
    return MpegInfo { .place = place,
                      .bytes = (flags & notesBytes) != 0
                                   ? static_cast<std::int64_t> (numberIn (tag, placeOfBytes, 4, true))
                                   : 0 };
}

} // namespace larkspire
