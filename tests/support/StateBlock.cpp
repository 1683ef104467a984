// SPDX-License-Identifier: AGPL-3.0-only
#include "support/StateBlock.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace state_block
{

namespace
{
constexpr std::string_view magic = "VC2!";

void require (bool condition, const char* what, std::string_view block)
{
    if (! condition)
        throw std::runtime_error ("a state block " + std::string (what) + ": " + std::string (block));
}

/** Four bytes, the lowest first. */
std::string littleEndian (std::uint32_t number)
{
    std::string bytes;

    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char> (number >> shift & 0xffu);

    return bytes;
}

/** Takes a prefix off a text; false where it starts otherwise. */
bool take (std::string_view& text, std::string_view prefix)
{
    if (! text.starts_with (prefix))
        return false;

    text.remove_prefix (prefix.size());
    return true;
}

/** Takes all up to a character and that character off a text. */
std::string takeUpTo (std::string_view& text, char end)
{
    const auto length = std::min (text.find (end), text.size());
    std::string taken (text.substr (0, length));
    text.remove_prefix (std::min (length + 1, text.size()));
    return taken;
}

std::string unescaped (std::string_view text)
{
    static const Store named { { "amp", "&" }, { "lt", "<" }, { "gt", ">" }, { "quot", "\"" } };
    std::string value;

    while (! text.empty())
    {
        value += takeUpTo (text, '&');

        if (text.empty())
            break;

        const auto entity = takeUpTo (text, ';');

        if (entity.starts_with ('#'))
            value += utf8 (static_cast<std::uint32_t> (std::strtoul (entity.c_str() + 1, nullptr, 10)));
        else if (named.contains (entity))
            value += named.at (entity);
        else
            throw std::runtime_error ("an entity that is never saved: " + entity);
    }

    return value;
}
} // namespace

std::vector<std::string> freshNames()
{
    return { "mode", "date_modified", "daw", "plugin", "pluginversion", "samplerate", "username" };
}

std::string around (std::string_view text, std::optional<std::int32_t> claimedLength)
{
    const auto length = claimedLength.value_or (static_cast<std::int32_t> (text.size()));
    return std::string (magic) + littleEndian (static_cast<std::uint32_t> (length)) + std::string (text) + '\0';
}

std::string documentWith (std::string_view attributes)
{
    return std::string (header) + "<settings" + (attributes.empty() ? "" : " ") + std::string (attributes) + "/>";
}

std::string blockWith (std::string_view attributes)
{
    return around (documentWith (attributes));
}

std::string escaped (std::string_view value)
{
    std::string text;

    for (const char c : value)
    {
        if (c == '&')
            text += "&amp;";
        else if (c == '<')
            text += "&lt;";
        else if (c == '>')
            text += "&gt;";
        else if (c == '"')
            text += "&quot;";
        else if (c >= 0 && c < ' ')
            text += "&#" + std::to_string (static_cast<int> (c)) + ";";
        else
            text += c;
    }

    return text;
}

std::string utf8 (std::uint32_t codePoint)
{
    const auto byte = [] (std::uint32_t bits) { return std::string (1, static_cast<char> (bits)); };
    const auto further = [&] (unsigned shift) { return byte (0x80u | (codePoint >> shift & 0x3fu)); };

    if (codePoint < 0x80)
        return byte (codePoint);

    if (codePoint < 0x800)
        return byte (0xc0u | codePoint >> 6) + further (0);

    if (codePoint < 0x10000)
        return byte (0xe0u | codePoint >> 12) + further (6) + further (0);

    return byte (0xf0u | codePoint >> 18) + further (12) + further (6) + further (0);
}

std::string textOf (std::string_view block)
{
    require (block.size() >= 9, "is too short", block);

    const auto text = block.substr (8, block.size() - 9);
    require (block == around (text), "has another frame", block);
    require (text.find ('\0') == std::string_view::npos, "has a zero in its text", block);
    return std::string (text);
}

Attributes attributesOf (std::string_view block)
{
    const auto text = textOf (block);
    std::string_view rest (text);
    Attributes attributes;
    require (take (rest, header) && take (rest, "<settings"), "has another start", block);

    while (take (rest, " "))
    {
        auto name = takeUpTo (rest, '=');
        require (take (rest, "\""), "has a value without quotes", block);
        attributes.emplace_back (std::move (name), unescaped (takeUpTo (rest, '"')));
    }

    require (rest == "/>", "has another end", block);
    return attributes;
}

Attributes timelessAttributesOf (std::string_view block)
{
    auto attributes = attributesOf (block);
    std::erase_if (attributes, [] (const auto& attribute) { return attribute.first == "date_modified"; });
    return attributes;
}

std::vector<std::string> namesOf (std::string_view block)
{
    std::vector<std::string> names;

    for (const auto& [name, value] : attributesOf (block))
        names.push_back (name);

    return names;
}

std::string valueOf (std::string_view block, std::string_view name)
{
    auto found = attributesOf (block);
    std::erase_if (found, [&] (const auto& attribute) { return attribute.first != name; });

    if (found.size() != 1)
        throw std::runtime_error (std::to_string (found.size()) + " attributes " + std::string (name));

    return found.front().second;
}

} // namespace state_block
