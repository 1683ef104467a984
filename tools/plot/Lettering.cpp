// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Lettering.h"

#include <algorithm>
#include <array>
#include <utility>

namespace larkspire::plot
{

namespace
{
/** Whether a character joins or selects others and has no shape of its own, so that fonts need not have it. */
bool isInvisible (juce::juce_wchar character)
{
    constexpr std::array<std::pair<juce::juce_wchar, juce::juce_wchar>, 5> ranges { {
        { 0x200b, 0x200f }, // joiners and marks of direction
        { 0x202a, 0x202e }, // embedded directions
        { 0x2060, 0x206f },
        { 0xfe00, 0xfe0f },  // variation selectors, as between a black and a coloured sign
        { 0xe0000, 0xe0fff } // tags, as in flags, and further selectors
    } };
    return std::any_of (ranges.begin(),
                        ranges.end(),
                        [character] (const auto& range)
                        { return range.first <= character && character <= range.second; });
}

bool canBeDrawn (juce::juce_wchar character, const juce::Font& font)
{
    if (isInvisible (character))
        return true;

    const auto suitable = font.findSuitableFontForText (juce::String::charToString (character));
    return suitable.getTypefacePtr()->getNominalGlyphForCodepoint (character).has_value();
}
} // namespace

juce::String withoutBoxes (const juce::String& text, const juce::Font& font)
{
    juce::String drawable;

    for (const auto character : text)
        drawable += canBeDrawn (character, font) ? character : juce::juce_wchar { '?' };

    return drawable;
}

} // namespace larkspire::plot
