// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace larkspire
{

/** Keeps an editor alive in VST 2 hosts on Linux that never send effEditIdle, OBS Studio for one, as long as they run
    the default GLib context on the thread that opened it. There is nothing else for such an editor: JUCE's wrapper
    stops its own message thread while one is open, and nothing would be drawn.

    Does nothing where the editor is another format's, where the host has no GLib, and on other systems. Where the host
    sends effEditIdle, it leaves the work to the host. Ends with the editor. Message thread only.
*/
void runOnHostLoop (juce::AudioProcessorEditor& editor);

} // namespace larkspire
