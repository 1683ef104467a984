// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace larkspire
{

/** A file to look into at any place; where its descriptor stands does not matter and does not change. */
class FileBytes
{
public:
    explicit FileBytes (int fileDescriptor) : descriptor (fileDescriptor)
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
inline std::uint64_t numberIn (std::string_view bytes, std::size_t place, std::size_t width, bool bigEndian)
{
    std::uint64_t number = 0;

    for (std::size_t i = 0; i < width && place + width <= bytes.size(); ++i)
        number = (number << 8) | static_cast<unsigned char> (bytes[place + (bigEndian ? i : width - 1 - i)]);

    return number;
}

} // namespace larkspire
