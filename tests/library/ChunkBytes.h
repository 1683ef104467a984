// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <regex>
#include <string>
#include <vector>

// Chunks as bytes and as text, without the plug-in's own code.

/** The four bytes of a number, the lowest first. */
inline std::string littleEndian (std::uint32_t number)
{
    std::string bytes;

    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char> (number >> shift & 0xffu);

    return bytes;
}

/** A chunk around a text. */
inline std::string around (const std::string& text)
{
    return "VC2!" + littleEndian (static_cast<std::uint32_t> (text.size())) + text + '\0';
}

/** A chunk around a text that claims another length. */
inline std::string around (const std::string& text, std::int32_t claimedLength)
{
    return "VC2!" + littleEndian (static_cast<std::uint32_t> (claimedLength)) + text + '\0';
}

/** A chunk around a settings document with these attributes, as they stand in XML. */
inline std::string withAttributes (const std::string& attributes)
{
    return around ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings " + attributes + "/>");
}

/** The text in a chunk, or a failure where the frame is not in order. */
inline std::string textOf (const std::string& chunk)
{
    if (chunk.size() < 10)
    {
        ADD_FAILURE() << "a chunk of " << chunk.size() << " bytes";
        return {};
    }

    EXPECT_EQ (chunk.substr (0, 4), "VC2!");
    EXPECT_EQ (chunk.substr (4, 4), littleEndian (static_cast<std::uint32_t> (chunk.size() - 9)));
    EXPECT_EQ (chunk.back(), '\0');
    return chunk.substr (8, chunk.size() - 9);
}

/** The names of a document's attributes, in order. */
inline std::vector<std::string> namesOf (const std::string& text)
{
    static const std::regex attribute (" ([^ =]+)=\"[^\"]*\"");
    std::vector<std::string> names;
    const auto start = text.find ("<settings");

    for (std::sregex_iterator match (
             text.begin() + static_cast<std::ptrdiff_t> (std::min (start, text.size())), text.end(), attribute);
         match != std::sregex_iterator();
         ++match)
        names.push_back ((*match)[1]);

    return names;
}

/** The value of an attribute as it stands in a document. */
inline std::string valueOf (const std::string& text, const std::string& name)
{
    std::smatch match;

    if (std::regex_search (text, match, std::regex (" " + name + "=\"([^\"]*)\"")))
        return match[1];

    ADD_FAILURE() << "no attribute \"" << name << "\" in " << text;
    return {};
}

/** A document without the moment at which it was saved. */
inline std::string withoutDate (const std::string& text)
{
    return std::regex_replace (text, std::regex (" date_modified=\"[^\"]*\""), "");
}
