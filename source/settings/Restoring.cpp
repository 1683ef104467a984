// SPDX-License-Identifier: AGPL-3.0-only
// Takes in what Saving.cpp has written, and what other versions and other hands have made of it.
#include "frame/AudioProcessorQuendal.h"
#include "settings/ParserGuard.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace juce
{

namespace
{
/** "VC2!", which JUCE's frame begins with. */
constexpr uint32 magicNumber = 0x21324356;

/** The text in the frame of a state block, empty where there is no frame. What the frame claims beyond the end of the
    block is cut off. */
std::string textIn (const void* data, int sizeInBytes)
{
    if (sizeInBytes <= 8 || ByteOrder::littleEndianInt (data) != magicNumber)
        return {};

    const auto* bytes = static_cast<const char*> (data);
    const auto claimed = static_cast<int> (ByteOrder::littleEndianInt (bytes + 4));

    if (claimed <= 0)
        return {};

    return { bytes + 8, static_cast<std::size_t> (std::min (claimed, sizeInBytes - 8)) };
}

/** How many bytes the UTF-8 character at the start of a text takes, 0 where there is none. */
std::size_t characterLength (std::string_view text)
{
    const auto byte = [text] (std::size_t i) { return i < text.size() ? static_cast<unsigned char> (text[i]) : 0u; };
    const auto lead = byte (0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xc2 ? 0
                               : lead < 0xe0 ? 2
                               : lead < 0xf0 ? 3
                               : lead < 0xf5 ? 4
                                             : 0;

    for (std::size_t i = 1; i < length; ++i)
        if ((byte (i) & 0xc0u) != 0x80u)
            return 0;

    return length;
}

/** The text for the parser, with a question mark for each byte that is no UTF-8: JUCE steps over the end of a
    text whose last character is incomplete. */
String wellFormed (std::string text)
{
    for (std::size_t i = 0; i < text.size();)
    {
        const auto length = characterLength (std::string_view (text).substr (i));

        if (length == 0)
            text[i] = '?';

        i += std::max<std::size_t> (1, length);
    }

    // The parser also steps over the end of a text that stops within "&#x"; a second zero stops it there.
    text += '\0';
    return String::fromUTF8 (text.data(), static_cast<int> (text.size()));
}

/** The settings document in a state block, or null if there is none. */
std::unique_ptr<XmlElement> settingsFrom (const void* data, int sizeInBytes)
{
    const auto text = wellFormed (textIn (data, sizeInBytes));
    auto element = larkspire::canBeParsed (text) ? parseXML (text) : nullptr;
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

/** 0 to 1, in 32-bit floats; NaN becomes 0. */
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
