// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/Texts.h"
#include "measure/VoiceModes.h"

#include <string>
#include <string_view>
#include <vector>

// The parts that tables in Markdown are put together from. Each line ends with a line end.
namespace larkspire::measure
{

inline std::string decibels (double value)
{
    return numberText (value, 1) + " dB";
}

inline std::string fullScale (double level)
{
    return numberText (level, 1) + " dBFS";
}

/** A name as the knob and a heading have it. */
inline std::string capitalised (std::string_view name)
{
    std::string text (name);
    text.front() = static_cast<char> (text.front() - 'a' + 'A');
    return text;
}

inline std::string line (const std::vector<std::string>& cells)
{
    std::string text = "|";

    for (const auto& cell : cells)
        text.append (" ").append (cell).append (" |");

    return text + "\n";
}

/** The heading and the line below it: numbers stand to the right, but in the first column. */
inline std::string heading (const std::vector<std::string>& cells)
{
    std::string rule = "|---|";

    for (std::size_t i = 1; i < cells.size(); ++i)
        rule += "---:|";

    return line (cells) + rule + "\n";
}

/** A row with one cell a mode: cell (mode). */
template <typename Cell>
std::string lineForModes (const std::string& what, Cell cell)
{
    std::vector<std::string> cells { what };

    for (const auto& mode : voiceModes)
        cells.push_back (cell (mode));

    return line (cells);
}

inline std::string headingForModes (const std::string& corner)
{
    return heading ({ corner, "Gentle", "Medium", "Powerful" });
}

} // namespace larkspire::measure
