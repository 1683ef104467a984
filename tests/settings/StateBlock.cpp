// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/StateBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace state_block
{

namespace
{
constexpr std::string_view header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?> ";

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
    static const std::map<std::string, std::string> named {
        { "amp", "&" }, { "lt", "<" }, { "gt", ">" }, { "quot", "\"" }
    };

    std::string value;

    while (! text.empty())
    {
        value += takeUpTo (text, '&');

        if (text.empty())
            break;

        const auto entity = takeUpTo (text, ';');

        if (entity.starts_with ('#'))
            value += utf8 (static_cast<std::uint32_t> (std::strtoul (entity.c_str() + 1, nullptr, 10)));
        else
            value += named.at (entity);
    }

    return value;
}
} // namespace

std::string around (std::string_view text)
{
    return around (text, static_cast<std::int32_t> (text.size()));
}

std::string around (std::string_view text, std::int32_t claimedLength)
{
    return "VC2!" + littleEndian (static_cast<std::uint32_t> (claimedLength)) + std::string (text) + '\0';
}

std::string documentWith (std::string_view attributes, std::string_view element)
{
    const std::string gap = attributes.empty() ? "" : " ";
    return std::string (header) + "<" + std::string (element) + gap + std::string (attributes) + "/>";
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

std::string save (juce::AudioProcessor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return { static_cast<const char*> (block.getData()), block.getSize() };
}

void restore (juce::AudioProcessor& processor, std::string_view block)
{
    const std::vector<char> bytes (block.begin(), block.end());
    processor.setStateInformation (bytes.data(), static_cast<int> (bytes.size()));
}

std::string textOf (const std::string& block)
{
    if (block.size() < 9)
    {
        ADD_FAILURE() << "a block of " << block.size() << " bytes";
        return {};
    }

    EXPECT_EQ (block.substr (0, 4), "VC2!");
    EXPECT_EQ (block.substr (4, 4), littleEndian (static_cast<std::uint32_t> (block.size() - 9)));
    EXPECT_EQ (block.back(), '\0');

    auto text = block.substr (8, block.size() - 9);
    EXPECT_EQ (text.find ('\0'), std::string::npos);
    return text;
}

Attributes attributesOf (const std::string& block)
{
    const auto text = textOf (block);
    std::string_view rest (text);
    Attributes attributes;

    if (! take (rest, header) || ! take (rest, "<settings"))
        ADD_FAILURE() << text;

    while (take (rest, " "))
    {
        auto name = takeUpTo (rest, '=');

        if (! take (rest, "\""))
            ADD_FAILURE() << text;

        attributes.emplace_back (std::move (name), unescaped (takeUpTo (rest, '"')));
    }

    EXPECT_EQ (rest, "/>") << text;
    return attributes;
}

std::vector<std::string> namesOf (const Attributes& attributes)
{
    std::vector<std::string> names;

    for (const auto& [name, value] : attributes)
        names.push_back (name);

    return names;
}

std::string valueOf (const std::string& block, const std::string& name)
{
    auto found = attributesOf (block);
    std::erase_if (found, [&] (const auto& attribute) { return attribute.first != name; });

    if (found.size() == 1)
        return found.front().second;

    ADD_FAILURE() << found.size() << " attributes \"" << name << "\"";
    return {};
}

Attributes timelessAttributesOf (const std::string& block)
{
    auto attributes = attributesOf (block);
    std::erase_if (attributes, [] (const auto& attribute) { return attribute.first == "date_modified"; });
    return attributes;
}

Store plain (const std::map<juce::String, juce::String>& settings)
{
    Store store;

    for (const auto& [key, value] : settings)
        store.emplace (key.toStdString(), value.toStdString());

    return store;
}

} // namespace state_block
