// SPDX-License-Identifier: AGPL-3.0-only
// Gives a TrueType font another family name: the tests need a font that is called as they want, and no font is part of
// the sources. Only the naming table changes; its layout is that of the OpenType format's "name" table, version 0.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace
{
using Bytes = std::string;

unsigned int readNumber (const Bytes& bytes, std::size_t at, std::size_t size)
{
    unsigned int number = 0;

    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | static_cast<std::uint8_t> (bytes.at (at + i));

    return number;
}

Bytes number (std::size_t value, std::size_t size)
{
    Bytes bytes;

    for (std::size_t i = size; i-- > 0;)
        bytes += static_cast<char> (value >> 8 * i & 0xff);

    return bytes;
}

/** A text of plain letters as big-endian UTF-16. */
Bytes wide (const std::string& text)
{
    Bytes bytes;

    for (const char letter : text)
        bytes += Bytes { '\0', letter };

    return bytes;
}

/** A naming table for Windows, in American English: family, style, and full name. */
Bytes namingTable (const std::string& family)
{
    const std::array<std::pair<unsigned int, Bytes>, 3> names {
        { { 1, wide (family) }, { 2, wide ("Regular") }, { 4, wide (family) } }
    };
    Bytes table = number (0, 2) + number (names.size(), 2) + number (6 + 12 * names.size(), 2);
    Bytes texts;

    for (const auto& [id, text] : names)
    {
        table += number (3, 2) + number (1, 2) + number (0x409, 2) + number (id, 2);
        table += number (text.size(), 2) + number (texts.size(), 2);
        texts += text;
    }

    return table + texts;
}

/** The font with its naming table at the end; the old one stays where it was and nothing points to it. */
Bytes renamed (Bytes font, const std::string& family)
{
    const auto table = namingTable (family);

    for (std::size_t i = 0; i < readNumber (font, 4, 2); ++i)
    {
        const auto entry = 12 + 16 * i;

        if (font.compare (entry, 4, "name") != 0)
            continue;

        font.resize ((font.size() + 3) / 4 * 4);
        font.replace (entry + 8, 8, number (font.size(), 4) + number (table.size(), 4));
        return font + table;
    }

    throw std::runtime_error ("no naming table");
}
} // namespace

int main (int argumentCount, char** arguments)
{
    if (argumentCount != 4)
    {
        std::fputs ("usage: larkspire-rename-font FONT NEW_FONT FAMILY\n", stderr);
        return 2;
    }

    try
    {
        std::ifstream in (arguments[1], std::ios::binary);
        const auto font = renamed ({ std::istreambuf_iterator<char> (in), {} }, arguments[3]);
        std::ofstream out (arguments[2], std::ios::binary);
        out << font << std::flush;

        if (! out)
            throw std::runtime_error ("cannot be written");

        return 0;
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-rename-font: %s: %s\n", arguments[1], fault.what());
        return 1;
    }
}
