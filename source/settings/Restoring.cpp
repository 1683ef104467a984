// SPDX-License-Identifier: AGPL-3.0-only
// Takes in what Saving.cpp has written, and what other versions and other hands have made of it.
#include "frame/AudioProcessorQuendal.h"

#include <cmath>

namespace juce
{

namespace
{
/** The settings document in a state block, or null if there is none. */
std::unique_ptr<XmlElement> settingsFrom (const void* data, int sizeInBytes)
{
    auto element = AudioProcessor::getXmlFromBinary (data, sizeInBytes);
    return element != nullptr && element->hasTagName ("settings") ? std::move (element) : nullptr;
}

/** The first attribute of exactly this name as a number; the fallback where there is none. */
double numberFrom (const XmlElement& document, const String& name, double fallback)
{
    for (int i = 0; i < document.getNumAttributes(); ++i)
        if (document.getAttributeName (i) == name)
            return document.getAttributeValue (i).getDoubleValue();

    return fallback;
}

/** 0 to 1, in 32-bit floats; what is no number becomes 0. */
float clampToRange (double value)
{
    return static_cast<float> (std::fmin (1.0, std::fmax (0.0, static_cast<double> (static_cast<float> (value)))));
}
} // namespace

void AudioProcessorQuendal::setStateInformation (const void* data, int sizeInBytes)
{
    if (const auto document = settingsFrom (data, sizeInBytes))
    {
        for (auto* entry : getParameters())
        {
            auto* parameter = dynamic_cast<AudioProcessorParameterWithID*> (entry);

            // The host is not told: it is the host that restores. The chain notices through the request below.
            if (parameter != nullptr)
                parameter->setValue (clampToRange (
                    numberFrom (*document, parameter->paramID, static_cast<double> (parameter->getValue()))));
        }

        settings.clear();

        for (int i = 0; i < document->getNumAttributes(); ++i)
        {
            const auto& name = document->getAttributeName (i);
            const auto& value = document->getAttributeValue (i);

            if (name.isNotEmpty() && value.isNotEmpty())
                setSetting (name, value);
        }
    }

    // Also after data that was no document: a superfluous re-initialisation does no harm.
    requestUpdate();
    stateTouched = true;
}

} // namespace juce
