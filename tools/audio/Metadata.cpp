// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/Metadata.h"

#include <algorithm>

namespace larkspire
{

namespace
{
unsigned byteOf (char character)
{
    return static_cast<unsigned char> (character);
}

/** How many bytes a character of UTF-8 has that begins with this one; 0 for one that begins none. */
std::size_t lengthOfCharacter (char first)
{
    const auto byte = byteOf (first);
    return byte < 0x80 ? 1 : byte < 0xc2 ? 0 : byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : byte < 0xf5 ? 4 : 0;
}

bool isUtf8 (std::string_view text)
{
    while (! text.empty())
    {
        const auto length = lengthOfCharacter (text.front());
        const auto continues = [] (char character) { return (byteOf (character) & 0xc0) == 0x80; };

        if (length == 0 || length > text.size() || ! std::ranges::all_of (text.substr (1, length - 1), continues))
            return false;

        text.remove_prefix (length);
    }

    return true;
}
} // namespace

bool isAboutLoudness (std::string_view name)
{
    return name.starts_with ("REPLAYGAIN_") || name.starts_with ("R128_") || name.starts_with ("MP3GAIN_");
}

std::string asUtf8 (const std::string& text)
{
    if (isUtf8 (text))
        return text;

    std::string converted;

    for (const char character : text)
        if (const auto byte = byteOf (character); byte < 0x80)
            converted += character;
        else
            converted.append (1, static_cast<char> (0xc0 | (byte >> 6)))
                .append (1, static_cast<char> (0x80 | (byte & 0x3f)));

    return converted;
}

} // namespace larkspire
