// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace larkspire::plot
{

/** The text with a question mark in place of each character that neither the font nor any other on the machine has.
   Such a character would be drawn as an empty box. */
juce::String withoutBoxes (const juce::String& text, const juce::Font& font);

} // namespace larkspire::plot
