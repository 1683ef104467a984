// SPDX-License-Identifier: AGPL-3.0-only
// The window: opening and closing it on an X server, and drawing all of it, which happens three times a second.
#include "benchmarks/Cost.h"
#include "editor/LarkspireAudioProcessorEditor.h"
#include "support/OpenProcessor.h"
#include "support/RawHost.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

namespace
{
void open (benchmark::State& state)
{
    const larkspire::window::VirtualDisplay display;
    RawHost host;

    for (auto _ : state)
    {
        larkspire::window::EditorWindow window (host);
        window.idle (std::chrono::milliseconds (0));
    }

    setUnitsPerIteration (state, 1);
}

void repaint (benchmark::State& state)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    OpenProcessor processor;
    LarkspireAudioProcessorEditor editor (&processor);
    juce::Image image (juce::Image::RGB, editor.getWidth(), editor.getHeight(), true, juce::SoftwareImageType());

    for (auto _ : state)
    {
        juce::Graphics g (image);
        editor.paintEntireComponent (g, true);
    }

    setUnitsPerIteration (state, 1);
}

BENCHMARK (open)->Name ("editor/open and close");
BENCHMARK (repaint)->Name ("editor/repaint");
} // namespace
