// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/OggSerialNumber.h"

#include <ogg/ogg.h>

#include <array>
#include <cstdio>
#include <vector>

namespace larkspire
{

void giveSerialNumber (PartialFile& file, std::uint32_t number)
{
    // A page is a header, the lengths of its segments, and those (RFC 3533).
    constexpr std::size_t header = 27;
    constexpr std::size_t placeOfNumber = 14;
    std::array<unsigned char, header + 255> start {};
    std::vector<unsigned char> body;
    std::int64_t place = 0;

    while (file.seek (place, SEEK_SET) == place && file.read (start.data(), header) == std::int64_t { header })
    {
        const std::size_t segments = start[header - 1];
        std::size_t size = 0;

        if (file.read (start.data() + header, static_cast<std::int64_t> (segments))
            != static_cast<std::int64_t> (segments))
            return;

        for (std::size_t i = 0; i < segments; ++i)
            size += start[header + i];

        body.resize (size);

        if (file.read (body.data(), static_cast<std::int64_t> (size)) != static_cast<std::int64_t> (size))
            return;

        for (std::size_t i = 0; i < 4; ++i)
            start[placeOfNumber + i] = static_cast<unsigned char> (number >> (8 * i));

        ogg_page page { .header = start.data(),
                        .header_len = static_cast<long> (header + segments),
                        .body = body.data(),
                        .body_len = static_cast<long> (size) };
        ogg_page_checksum_set (&page);
        file.seek (place, SEEK_SET);
        file.write (start.data(), header);
        place += static_cast<std::int64_t> (header + segments + size);
    }
}

} // namespace larkspire
