// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Typefaces.h"

#include "base/Failure.h"

namespace larkspire::plot
{

Typefaces::Typefaces()
{
    constexpr const char* preferred = "Liberation Sans";
    const auto names = juce::Font::findAllTypefaceNames();

    if (names.isEmpty())
        throw Failure ("picture", "has words, and no font is installed; install the package fonts-liberation2");

    family = names.contains (preferred) ? preferred : juce::Font::getDefaultSansSerifFontName();
}

juce::Font Typefaces::regular (float height) const
{
    return { juce::FontOptions (family, height, juce::Font::plain) };
}

juce::Font Typefaces::bold (float height) const
{
    return { juce::FontOptions (family, height, juce::Font::bold) };
}

} // namespace larkspire::plot
