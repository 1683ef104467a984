// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <regex>
#include <string>
#include <vector>

/** What stands in the brackets of the pattern where it is found first; empty if it is nowhere. */
inline std::string found (const std::string& text, const std::string& pattern)
{
    std::smatch match;
    return std::regex_search (text, match, std::regex (pattern)) ? match[1].str() : std::string();
}

/** The same for every place where it is found, in their order. */
inline std::vector<std::string> allFound (const std::string& text, const std::string& pattern)
{
    std::vector<std::string> matches;
    const std::regex expression (pattern);

    for (auto i = std::sregex_iterator (text.begin(), text.end(), expression); i != std::sregex_iterator(); ++i)
        matches.push_back ((*i)[1]);

    return matches;
}
