// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/SansSerif.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace larkspire
{

namespace
{
const char* const sansSerifName = "Microsoft Sans Serif";

bool isInstalled()
{
#if JUCE_WINDOWS
    return true; // part of every Windows
#else
    return juce::Font::findAllTypefaceNames().contains (sansSerifName);
#endif
}
} // namespace

void nameDefaultSansSerif()
{
    if (isInstalled())
        juce::LookAndFeel::getDefaultLookAndFeel().setDefaultSansSerifTypefaceName (sansSerifName);
}

} // namespace larkspire
