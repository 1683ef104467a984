// SPDX-License-Identifier: AGPL-3.0-only
#include "base/Failure.h"

#include <string_view>
#include <system_error>

namespace larkspire
{

namespace
{
/** The text with \xNN for each byte that may not stand for itself. */
template <typename Predicate>
std::string escaped (const std::string& text, Predicate mayStand)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string line;
    line.reserve (text.size());

    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char> (character);

        if (mayStand (byte))
            line += character;
        else
            line.append ("\\x").append (1, digits[byte >> 4]).append (1, digits[byte & 0x0f]);
    }

    return line;
}
} // namespace

std::string printable (const std::string& text)
{
    return escaped (text, [] (unsigned char byte) { return byte >= 0x20 && byte != 0x7f; });
}

std::string escapedBytes (const std::string& text)
{
    return escaped (text, [] (unsigned char byte) { return byte >= 0x20 && byte < 0x7f && byte != '\\'; });
}

std::string systemError (int errorNumber)
{
    return std::generic_category().message (errorNumber);
}

} // namespace larkspire
