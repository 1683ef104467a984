// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace larkspire::plot
{

/** The letters of a picture: Liberation Sans where the machine has it, so that pictures look alike, else the sans-serif
    typeface that JUCE picks, else any.

    For a name that it does not know JUCE silently gives a typeface without letters, so only names from its own list are
    used.
*/
class Typefaces
{
public:
    /** Throws Failure where no font is installed. */
    Typefaces();

    /** @param height  in pixels, from the highest to the lowest letter */
    juce::Font regular (float height) const;
    juce::Font bold (float height) const;

private:
    juce::String family;
};

} // namespace larkspire::plot
