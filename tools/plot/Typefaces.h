// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace larkspire::plot
{

/** The letters of a picture: Liberation Sans where the machine has it, so that pictures look alike, else the sans-serif
    typeface that the framework picks, else any.

    The framework takes a name that it does not find for a typeface without letters and says nothing, so a name is only
    given to it where it is on its own list.
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
