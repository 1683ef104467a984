// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/SansSerif.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace larkspire
{

namespace
{
const char* const sansSerifName = "Microsoft Sans Serif";
} // namespace

void nameDefaultSansSerif()
{
    if (juce::Font::findAllTypefaceNames().contains (sansSerifName))
        juce::LookAndFeel::getDefaultLookAndFeel().setDefaultSansSerifTypefaceName (sansSerifName);
}

} // namespace larkspire
