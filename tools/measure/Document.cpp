// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Document.h"

#include <stdexcept>
#include <string_view>

namespace larkspire::measure
{

std::string withTables (const std::string& document, const Tables& tables)
{
    constexpr std::string_view begin = "<!-- table: ";
    constexpr std::string_view close = " -->\n";
    constexpr std::string_view end = "<!-- end of table -->";
    std::string result;
    std::size_t position = 0;

    while (true)
    {
        const auto start = document.find (begin, position);

        if (start == std::string::npos)
            return result + document.substr (position);

        const auto nameStart = start + begin.size();
        const auto nameEnd = document.find (close, nameStart);
        const auto stop = document.find (end, start);

        if (nameEnd == std::string::npos || stop == std::string::npos || nameEnd > stop)
            throw std::runtime_error ("a table of the document has no end");

        const auto tableStart = nameEnd + close.size();
        result += document.substr (position, tableStart - position);
        result += "\n" + documentTable (document.substr (nameStart, nameEnd - nameStart), tables) + "\n";
        position = stop;
    }
}

} // namespace larkspire::measure
