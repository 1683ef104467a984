// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/AudioProcessorQuendal.h"

namespace juce
{

void AudioProcessorQuendal::ensureDefaultProgram()
{
    if (programs.empty())
        programs.push_back ({ "Default", {} });
}

int AudioProcessorQuendal::getNumPrograms()
{
    ensureDefaultProgram();
    return jmax (1, static_cast<int> (programs.size()));
}

int AudioProcessorQuendal::getCurrentProgram()
{
    return currentProgram;
}

void AudioProcessorQuendal::setCurrentProgram (int index)
{
    stateTouched = true;
    currentProgram = index;

    // A pending re-initialisation drops the switch, so at most one takes effect between two blocks.
    if (settingsDue.load (std::memory_order_relaxed))
        return;

    if (getNumPrograms() < 2 || currentProgram == appliedProgram)
        return;

    appliedProgram = currentProgram;

    const auto& fragment = programs[static_cast<std::size_t> (currentProgram)].fragment;
    XmlDocument document ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings " + fragment + " />");
    const auto parsed = document.getDocumentElement();
    const XmlElement element (*parsed);

    copyXmlToBinary (element, programScratch);
    setStateInformation (programScratch.getData(), static_cast<int> (programScratch.getSize()));
}

const String AudioProcessorQuendal::getProgramName (int index)
{
    ensureDefaultProgram();
    return programs[static_cast<std::size_t> (index)].name;
}

void AudioProcessorQuendal::changeProgramName (int, const String&)
{
    ensureDefaultProgram();
}

} // namespace juce
