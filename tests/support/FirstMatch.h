// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <regex>
#include <string>

/** What stands in the brackets of the pattern where it is found first; empty if it is nowhere. */
inline std::string found (const std::string& text, const std::string& pattern)
{
    std::smatch match;
    return std::regex_search (text, match, std::regex (pattern)) ? match[1].str() : std::string();
}
