// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace larkspire
{

/** A number with so many digits behind the point, and no sign on a zero. */
inline std::string fixed (double value, int digits)
{
    std::array<char, 64> text {};
    const auto result = std::to_chars (text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits);
    std::string number (text.data(), result.ptr);

    if (number.starts_with ('-') && number.find_first_of ("123456789") == std::string::npos)
        number.erase (0, 1);

    return number;
}

/** The same as people write it: with a true minus sign, in UTF-8. */
inline std::string numberText (double value, int digits)
{
    auto text = fixed (value, digits);
    return text.starts_with ('-') ? text.replace (0, 1, "−") : text;
}

/** A duration in seconds as people write it: with one decimal, and three where one would hide too much. */
inline std::string secondsText (double seconds)
{
    return numberText (seconds, seconds < 1.0 ? 3 : 1);
}

/** A text as one word of a shell's command, whatever is in it: 'text', or $'text' where there are control characters,
    which a terminal would obey. */
inline std::string quotedForShell (const std::string& text)
{
    const auto isControl = [] (char character)
    { return static_cast<unsigned char> (character) < 0x20 || character == 0x7f; };
    const auto escaped = std::any_of (text.begin(), text.end(), isControl);
    constexpr std::string_view digits = "0123456789abcdef";
    std::string word (escaped ? "$'" : "'");

    for (const char character : text)
        if (escaped && isControl (character))
            word.append ("\\x")
                .append (1, digits[static_cast<unsigned char> (character) >> 4])
                .append (1, digits[static_cast<unsigned char> (character) & 0x0f]);
        else if (escaped && (character == '\'' || character == '\\'))
            word.append ("\\").append (1, character);
        else if (character == '\'')
            word += "'\\''";
        else
            word += character;

    return word + "'";
}

/** A duration in seconds, rounded to whole ones, as a clock shows it: min:s or h:min:s. */
inline std::string clockText (double seconds, bool withHours)
{
    const auto whole = std::lround (seconds);
    const auto twoDigits = [] (long number) { return (number < 10 ? ":0" : ":") + std::to_string (number); };
    const auto minutes =
        withHours ? std::to_string (whole / 3600) + twoDigits (whole / 60 % 60) : std::to_string (whole / 60);
    return minutes + twoDigits (whole % 60);
}

} // namespace larkspire
