// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace larkspire
{

/** Lets an editor be drawn by JUCE's software renderer where the Windows library runs under Wine: the renderer
    that JUCE takes on Windows paints nothing there. On Windows itself, and on Linux, nothing changes. */
void drawInSoftwareUnderWine (juce::Component& editor);

} // namespace larkspire
