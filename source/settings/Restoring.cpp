// SPDX-License-Identifier: AGPL-3.0-only
// Takes in what Saving.cpp has written, and what other versions and other hands have made of it.
#include "frame/AudioProcessorQuendal.h"
#include "settings/DocumentLimits.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace juce
{

namespace
{
/** "VC2!", which JUCE's frame begins with. */
constexpr uint32 magicNumber = 0x21324356;

/** The text in the frame of a state block, empty where there is no frame. What the frame claims beyond the end of the
    block is cut off. */
std::string_view textIn (const void* data, int sizeInBytes)
{
    if (sizeInBytes <= 8 || ByteOrder::littleEndianInt (data) != magicNumber)
        return {};

    const auto* bytes = static_cast<const char*> (data);
    const auto claimed = static_cast<int> (ByteOrder::littleEndianInt (bytes + 4));

    if (claimed <= 0)
        return {};

    const std::string_view text (bytes + 8, static_cast<std::size_t> (std::min (claimed, sizeInBytes - 8)));
    return text.substr (0, text.find ('\0'));
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

    // JUCE would read these as characters that take fewer bytes, a "<" that nobody has counted among them.
    if ((lead == 0xe0 && byte (1) < 0xa0) || (lead == 0xf0 && byte (1) < 0x90))
        return 0;

    return length;
}

/** The text with a question mark for each byte that is no UTF-8: JUCE steps over the end of a text whose last
    character is incomplete. */
std::string wellFormed (std::string_view bytes)
{
    std::string text (bytes);

    for (std::size_t i = 0; i < text.size();)
    {
        const auto length = characterLength (bytes.substr (i));

        if (length == 0)
            text[i] = '?';

        i += std::max<std::size_t> (1, length);
    }

    return text;
}

/** The root of a text, or null if the text is not one that JUCE's parser may be given, or does not parse. */
std::unique_ptr<XmlElement> rootOf (std::string_view bytes)
{
    // A byte more than may be is enough to see that there are too many.
    const auto text = wellFormed (bytes.substr (0, larkspire::longestDocument + 1));

    if (! larkspire::isWithinLimits (text))
        return {};

    return parseXML (String (CharPointer_UTF8 (text.data()), CharPointer_UTF8 (text.data() + text.size())));
}

using Attributes = std::vector<std::pair<String, String>>;

/** The attributes of the settings document in a state block, in order, or nothing if there is none. */
std::optional<Attributes> attributesIn (const void* data, int sizeInBytes)
{
    const auto root = rootOf (textIn (data, sizeInBytes));

    if (root == nullptr || ! root->hasTagName ("settings"))
        return {};

    Attributes attributes;
    const int count = root->getNumAttributes();

    // JUCE counts from the first attribute to each that it is asked for: here once, and not for each parameter too.
    for (int i = 0; i < count; ++i)
        attributes.emplace_back (root->getAttributeName (i), root->getAttributeValue (i));

    return attributes;
}

/** The first attribute of exactly this name as a number; the fallback where there is none. */
double numberFrom (const Attributes& attributes, const String& name, double fallback)
{
    const auto found = std::ranges::find (attributes, name, &Attributes::value_type::first);
    return found != attributes.end() ? found->second.getDoubleValue() : fallback;
}

/** 0 to 1, in 32-bit floats; NaN becomes 0. */
float clampToRange (double value)
{
    return static_cast<float> (std::fmin (1.0, std::fmax (0.0, static_cast<double> (static_cast<float> (value)))));
}
} // namespace

void AudioProcessorQuendal::setStateInformation (const void* data, int sizeInBytes)
{
    if (const auto attributes = attributesIn (data, sizeInBytes))
    {
        for (auto* entry : getParameters())
        {
            auto* parameter = dynamic_cast<AudioProcessorParameterWithID*> (entry);

            // The host is not told: it is the host that restores. The chain notices through the request below.
            if (parameter != nullptr)
                parameter->setValue (clampToRange (
                    numberFrom (*attributes, parameter->paramID, static_cast<double> (parameter->getValue()))));
        }

        settings.clear();

        for (const auto& [name, value] : *attributes)
            if (name.isNotEmpty() && value.isNotEmpty())
                setSetting (name, value);
    }

    // Also after data that was no document: a superfluous re-initialisation does no harm.
    requestUpdate();
    stateTouched = true;
}

} // namespace juce
