// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/DocumentLimits.h"

#include <algorithm>

namespace larkspire
{

namespace
{
constexpr auto npos = std::string_view::npos;

/** Whether the last of what opens so is closed, and with it all that are ahead of it. */
bool closes (std::string_view text, std::string_view opening, std::string_view closing)
{
    const auto last = text.rfind (opening);
    return last == npos || text.find (closing, last + opening.size()) != npos;
}

/** Whether a text from its root on has more attributes than may be: no attribute is without a "=" of its own. */
bool hasTooManyAttributes (std::string_view text)
{
    // Nothing but the root opens: then it is plain which quotes are those of values.
    const bool isRootAlone = std::ranges::count (text, '<') == 1;
    std::size_t count = 0;

    for (auto sign = text.find ('='); sign != npos; sign = text.find ('=', sign + 1))
    {
        if (++count > mostAttributes)
            return true;

        if (! isRootAlone)
            continue;

        const auto quote = text.find_first_of ("\"'", sign);
        sign = quote == npos ? npos : text.find (text[quote], quote + 1);

        if (sign == npos)
            break;
    }

    return false;
}

/** Whether each "&" begins a reference, as "&amp;" or "&#228;" is, and whether there are few. */
bool hasFewReferences (std::string_view text)
{
    std::size_t count = 0;

    for (auto start = text.find ('&'); start != npos; start = text.find ('&', start + 1))
    {
        const auto end = text.find_first_of (";&<>\"' \t\r\n", start + 1);

        if (++count * text.size() > mostCopiedBytes || end == npos || text[end] != ';'
            || end - start > longestReference)
            return false;
    }

    return true;
}
} // namespace

bool isWithinLimits (std::string_view text)
{
    const auto first = text.find ('<');
    const bool hasHeader = first != npos && text.substr (first).starts_with ("<?");
    const auto root = hasHeader ? text.find ('<', first + 1) : first;

    return text.size() <= longestDocument && std::ranges::count (text, '<') <= std::ptrdiff_t { mostBrackets }
           && text.find ("<?", hasHeader ? first + 1 : 0) == npos && text.find ("<!DOCTYPE") == npos
           && closes (text, "<!--", "-->") && closes (text, "</", ">") && hasFewReferences (text)
           && ! hasTooManyAttributes (text.substr (std::min (root, text.size())));
}

} // namespace larkspire
