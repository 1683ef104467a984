// SPDX-License-Identifier: AGPL-3.0-only
// The settings document that goes into the host's project.
#include "frame/AudioProcessorQuendal.h"
#include "frame/TruncateToInt.h"
#include "settings/DocumentLimits.h"
#include "settings/HostIdentity.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <sstream>

namespace juce
{

namespace
{
/** The version of the settings document. Not the version that the plug-in reports to hosts. */
constexpr int settingsVersion = 242;

/** This moment in UTC, such as 2024-10-27T09:05:31Z. */
String utcTimestamp()
{
    const std::time_t now = std::time (nullptr);
    std::tm utc {};

#if JUCE_WINDOWS
    gmtime_s (&utc, &now);
#else
    gmtime_r (&now, &utc);
#endif

    // Spelt out: not every C library of Windows knows the short forms %F and %T.
    char text[30] = {};
    std::strftime (text, sizeof (text), "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

/** Four decimals; the decimal point is that of the host's locale. */
String parameterText (float value)
{
    char text[30] = {};
    std::snprintf (text, sizeof (text), "%.4f", static_cast<double> (value));
    return text;
}

/** Whether a state block would be taken in again: a value may have become longer by its references than the whole block
    was that it came from. */
bool canBeRestored (const MemoryBlock& block)
{
    constexpr std::size_t ahead = 8; // bytes of the frame in front of the text; a zero is behind it
    return larkspire::isWithinLimits ({ block.begin() + ahead, block.getSize() - ahead - 1 });
}
} // namespace

void AudioProcessorQuendal::setSetting (String key, String value)
{
    settings.insert_or_assign (std::move (key), std::move (value));
}

std::vector<std::string> AudioProcessorQuendal::splitPath (const std::string& text)
{
    std::vector<std::string> elements;
    std::istringstream stream (text);

    for (std::string element; std::getline (stream, element, '/');)
        elements.push_back (element);

    return elements;
}

String AudioProcessorQuendal::hostTail (const String& fullPath)
{
    const auto elements = splitPath (fullPath.replace ("\\", "/").toStdString());
    const auto count = static_cast<int> (elements.size());
    const auto start = std::max (std::min (count / 2, count - 1), 1);

    String tail;

    for (int i = start; i < count; ++i)
        tail << (i > start ? "/" : "") << String::fromUTF8 (elements[static_cast<std::size_t> (i)].c_str());

    return tail;
}

void AudioProcessorQuendal::getStateInformation (MemoryBlock& destData)
{
    const std::map<String, String> circumstances {
        { "plugin", "Quendal Larkspire" },
        { "pluginversion", String (settingsVersion) },
        { "date_modified", utcTimestamp() },
        { "daw", hostTail (larkspire::hostExecutablePath()) },
        { "samplerate", String (truncateToInt (getSampleRate())) },
        { "username", larkspire::loginName() },
    };

    for (const auto& [key, value] : circumstances)
        setSetting (key, value);

    XmlElement parameters ("settings");

    for (const auto* entry : getParameters())
    {
        const auto* parameter = dynamic_cast<const AudioProcessorParameterWithID*> (entry);

        if (parameter == nullptr)
            continue;

        parameters.setAttribute (Identifier (parameter->paramID), parameterText (parameter->getValue()));

        // A restored document leaves the parameters' old values in the store; they must not come back below.
        settings.erase (parameter->paramID);
    }

    const auto write = [&] (const auto& isWanted)
    {
        XmlElement document (parameters);

        for (const auto& [key, value] : settings)
            if (isWanted (key))
                document.setAttribute (Identifier (key), value);

        copyXmlToBinary (document, destData);
    };

    write ([] (const String&) { return true; });

    // What others have left in the store stands back: a document beyond the limits would not even restore the
    // parameters.
    if (! canBeRestored (destData))
        write ([&] (const String& key) { return circumstances.contains (key); });
}

} // namespace juce
