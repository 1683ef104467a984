// SPDX-License-Identifier: AGPL-3.0-only
// What getStateInformation writes, to the byte.
#include "settings/ProcessorState.h"
#include "settings/RecordingParameter.h"
#include "support/EnvironmentVariable.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <limits>
#include <regex>

namespace
{
using namespace state_block;

using Names = std::vector<std::string>;

/** The names that every document has, behind those of a processor's own parameters. */
Names fixedNamesBehind (Names names)
{
    const auto fresh = freshNames();
    names.insert (names.end(), fresh.begin() + 1, fresh.end());
    return names;
}

TEST (Saving, WritesOneLineInAFrame)
{
    OpenProcessor processor;
    processor.giveRate (44100.0);
    const auto block = save (processor);
    const auto value = [&block] (const char* name) { return valueOf (block, name); };

    const auto text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings mode=\"0.2222\" date_modified=\""
                      + value ("date_modified") + "\" daw=\"" + escaped (value ("daw"))
                      + "\" plugin=\"Quendal Larkspire\" pluginversion=\"242\" samplerate=\"44100\" username=\""
                      + escaped (value ("username")) + "\"/>";
    ASSERT_LT (text.size(), 65536u);

    const auto length = text.size();
    const std::string lengthField { static_cast<char> (length & 0xff), static_cast<char> (length >> 8), 0, 0 };
    EXPECT_EQ (block, "VC2!" + lengthField + text + '\0');
    EXPECT_EQ (timelessAttributesOf (save (processor)), timelessAttributesOf (block)) << "and the same the next time";
}

TEST (Saving, ReplacesWhateverTheBlockHeld)
{
    OpenProcessor processor;

    for (const std::size_t size : { 0u, 1u, 100000u })
    {
        juce::MemoryBlock block (size, true);
        processor.getStateInformation (block);
        const std::string bytes (static_cast<const char*> (block.getData()), block.getSize());
        EXPECT_EQ (timelessAttributesOf (bytes), timelessAttributesOf (save (processor))) << size;
    }
}

TEST (Saving, WritesValuesWithFourDecimals)
{
    OpenProcessor processor;

    const std::vector<std::pair<float, const char*>> rows { { 0.0f, "0.0000" },
                                                            { 1.0f, "1.0000" },
                                                            { 1.0f / 3.0f, "0.3333" },
                                                            { 2.0f / 3.0f, "0.6667" },
                                                            { knobPosition (1), "0.1111" },
                                                            { 0.5f, "0.5000" },
                                                            { 0.00004f, "0.0000" },
                                                            { 0.00006f, "0.0001" },
                                                            { 0.99996f, "1.0000" },
                                                            { 0.12344f, "0.1234" },
                                                            { 0.12346f, "0.1235" } };

    for (const auto& [value, text] : rows)
    {
        processor.setMode (value);
        EXPECT_EQ (valueOf (save (processor), "mode"), text);
    }
}

TEST (Saving, WritesTheTimeInUtc)
{
    const EnvironmentVariable zone ("TZ", "FAR+11"); // far from UTC: local time would be hours off
    tzset();

    OpenProcessor processor;
    const auto before = std::time (nullptr);
    const auto text = valueOf (save (processor), "date_modified");
    const auto after = std::time (nullptr);
    ASSERT_TRUE (std::regex_match (text, std::regex ("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ"))) << text;

    std::tm fields {};
    const char* rest = strptime (text.c_str(), "%Y-%m-%dT%H:%M:%SZ", &fields);
    ASSERT_TRUE (rest != nullptr && *rest == '\0') << text;

    const auto saved = timegm (&fields);
    EXPECT_LE (before, saved);
    EXPECT_LE (saved, after);
}

TEST (Saving, WritesTheSecondHalfOfTheHostsPath)
{
    OpenProcessor processor;
    const auto host = std::filesystem::read_symlink ("/proc/self/exe").string();
    const auto daw = valueOf (save (processor), "daw");
    EXPECT_EQ (daw, juce::AudioProcessorQuendal::hostTail (juce::String::fromUTF8 (host.c_str())).toStdString());
    EXPECT_TRUE (host.ends_with ("/" + daw)) << daw << " of " << host;
    EXPECT_FALSE (daw.empty());
}

TEST (Saving, WritesTheHostsRateCutToAWholeNumber)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();

    OpenProcessor processor;
    EXPECT_EQ (valueOf (save (processor), "samplerate"), "0") << "before the host has given one";

    const std::vector<std::pair<double, const char*>> rows { { 44100.0, "44100" },
                                                             { 44100.9, "44100" },
                                                             { 192000.0, "192000" },
                                                             { 500.0, "500" },
                                                             { 0.9, "0" },
                                                             { -48000.5, "-48000" },
                                                             { 2147483647.5, "2147483647" },
                                                             { -2147483648.5, "-2147483648" },
                                                             { 2147483648.0, "-2147483648" },
                                                             { -2147483649.0, "-2147483648" },
                                                             { 1e300, "-2147483648" },
                                                             { infinity, "-2147483648" },
                                                             { nan, "-2147483648" } };

    for (const auto& [rate, text] : rows)
    {
        processor.giveRate (rate);
        EXPECT_EQ (valueOf (save (processor), "samplerate"), text);
        EXPECT_EQ (processor.sampleRate, 96000.0) << "the rate of the filters is another one";
    }
}

TEST (Saving, ChangesNothingOfTheSound)
{
    for (const bool due : { false, true })
    {
        OpenProcessor processor;
        std::vector<float> left (100, 0.1f);
        std::vector<float> right (100, 0.1f);
        processor.run (left, right);
        processor.setMode (0.77f);
        processor.settingsDue = due;
        processor.stateTouched = due;

        save (processor);
        EXPECT_EQ (processor.modeParameter->get(), 0.77f);
        EXPECT_EQ (processor.settingsDue, due);
        EXPECT_EQ (processor.stateTouched, due);
        EXPECT_EQ (processor.samplesSinceChange, 99) << "zeroed by the first sample, which found the mode new";
        EXPECT_EQ (processor.refreshCounter, 100u);
    }
}

TEST (Saving, KeepsWhatItDoesNotKnowInTheStoreAndNoneOfTheParameters)
{
    OpenProcessor processor;
    processor.settings = { { "theirs", "kept" }, { "plugin", "stale" }, { "pluginversion", "1" }, { "mode", "0.9" } };
    processor.setMode (1.0f / 3.0f);
    auto saved = attributesOf (save (processor));
    ASSERT_EQ (saved.front(), std::pair (std::string ("mode"), std::string ("0.3333")));

    saved.erase (saved.begin());
    EXPECT_EQ (plain (processor.settings), Store (saved.begin(), saved.end()));
    EXPECT_EQ (processor.settings["theirs"], "kept");
    EXPECT_EQ (processor.settings["plugin"], "Quendal Larkspire");
    EXPECT_EQ (processor.settings["pluginversion"], "242");
}

TEST (Saving, SortsWhatItDoesNotKnowAmongTheFixedKeysByCodePoint)
{
    OpenProcessor processor;

    for (const char* key :
         { "zoo", "Zoo", "date", "date_modified_", "dax", "pluginversion2", "user", "_", "username1", "\u00e4" })
        processor.setSetting (juce::String::fromUTF8 (key), "theirs");

    const Names sorted { "mode", "Zoo",      "_",         "date",          "date_modified",  "date_modified_",
                         "daw",  "dax",      "plugin",    "pluginversion", "pluginversion2", "samplerate",
                         "user", "username", "username1", "zoo",           "\u00e4" };
    EXPECT_EQ (namesOf (save (processor)), sorted);
}

TEST (Saving, EscapesWhatWouldEndAValueAndKeepsToOneLine)
{
    OpenProcessor processor;
    processor.setSetting ("empty", "");
    processor.setSetting ("note", juce::String::fromUTF8 (" <a & \"b\">\r\n\t'\u00e4\U0001F399 "));
    const auto text = textOf (save (processor));
    EXPECT_NE (text.find (" empty=\"\" note=\" &lt;a &amp; &quot;b&quot;&gt;&#13;&#10;&#9;'&#228;&#127897; \" "),
               std::string::npos)
        << text;
}

TEST (Saving, WritesOnlyTheStoreWhereParametersHaveNoId)
{
    ProbeProcessor probe;
    probe.addParameter (new NamelessParameter (0.25f));
    probe.addParameter (new NamelessParameter (0.75f));
    EXPECT_EQ (namesOf (save (probe)), fixedNamesBehind ({}));
}

TEST (Saving, WritesNormalisedValuesInFullAndInTheOrderOfTheParameters)
{
    ProbeProcessor probe;
    const juce::NormalisableRange<float> decibels (-60.0f, 20.0f);
    probe.addParameter (new KnownParameter ("zeta", 0.125f));
    probe.addParameter (new NamelessParameter (0.9f));
    probe.addParameter (new juce::AudioParameterFloat (juce::ParameterID ("gain", 1), "Gain", decibels, -40.0f));
    probe.addParameter (new juce::AudioParameterBool (juce::ParameterID ("alpha", 1), "Alpha", true));
    probe.addParameter (new KnownParameter ("tall", -1e20f));

    const auto block = save (probe);
    EXPECT_EQ (namesOf (block), fixedNamesBehind ({ "zeta", "gain", "alpha", "tall" }));
    EXPECT_EQ (valueOf (block, "zeta"), "0.1250");
    EXPECT_EQ (valueOf (block, "gain"), "0.2500");
    EXPECT_EQ (valueOf (block, "alpha"), "1.0000");
    EXPECT_EQ (valueOf (block, "tall"), "-100000002004087734272.0000");
}

TEST (Saving, LetsAParameterTakeTheNameOfAFixedKey)
{
    ProbeProcessor probe;
    probe.addParameter (new KnownParameter ("plugin", 0.5f));
    const auto block = save (probe);
    EXPECT_EQ (namesOf (block),
               (Names { "plugin", "date_modified", "daw", "pluginversion", "samplerate", "username" }));
    EXPECT_EQ (valueOf (block, "plugin"), "0.5000");
    EXPECT_FALSE (probe.settings.contains ("plugin"));
}

/** Expects that a processor saves what it holds, or, if that is beyond what can be restored, its own attributes alone.
 */
void expectSaved (OpenProcessor& processor, bool withOthers)
{
    const auto block = save (processor);
    const auto attributes = processor.settings.size() + 1;
    EXPECT_EQ (namesOf (block).size(), withOthers ? attributes : freshNames().size());

    OpenProcessor other;
    restore (other, block);
    EXPECT_EQ (other.modeParameter->get(), 0.25f);

    for (const auto& key : withOthers ? namesOf (block) : freshNames())
        EXPECT_TRUE (other.settings.contains (key)) << key;

    if (withOthers)
    {
        EXPECT_EQ (other.settings["zoo"], processor.settings["zoo"]);
    }
}

TEST (Saving, WritesNoMoreThanCanBeRestored)
{
    constexpr std::size_t longest = 1048576;
    OpenProcessor processor;
    processor.setMode (0.25f);
    processor.setSetting ("zoo", "");
    const auto free = static_cast<int> (longest - textOf (save (processor)).size());

    for (const std::string character : { "v", "'", "=" })
    {
        SCOPED_TRACE (character);
        processor.setSetting ("zoo", juce::String::repeatedString (juce::String (character), free));
        EXPECT_EQ (textOf (save (processor)).size(), longest);
        expectSaved (processor, true);
        processor.setSetting ("zoo", processor.settings["zoo"] + "v");
        expectSaved (processor, false);
        EXPECT_TRUE (processor.settings.contains ("zoo")) << "the store keeps it";
    }
}

TEST (Saving, WritesNoMoreReferencesThanCanBeRestored)
{
    for (const char* character : { "\"", "<", "&", "\x01", "\u00e4", "\U0001F399" })
    {
        SCOPED_TRACE (character);
        OpenProcessor processor;
        processor.setMode (0.25f);
        const juce::String one (juce::CharPointer_UTF8 { character });

        for (const int count : { 1000, 5000, 9000 })
        {
            processor.setSetting ("zoo", juce::String::repeatedString (one, count));
            expectSaved (processor, count < 9000);
        }
    }
}

TEST (Saving, WritesNoMoreAttributesThanCanBeRestored)
{
    for (const int count : { 992, 993, 994, 1000 })
    {
        SCOPED_TRACE (count);
        OpenProcessor processor;
        processor.setMode (0.25f);

        for (int i = 0; i < count; ++i)
            processor.setSetting ("t" + juce::String (i), "v");

        expectSaved (processor, count + 7 <= 1000);
    }
}

TEST (Setting, ReplacesTheValueOfItsKey)
{
    ProbeProcessor probe;
    probe.setSetting ("key", "first");
    probe.setSetting ("Key", "another");
    probe.setSetting ("key", "second");
    EXPECT_EQ (plain (probe.settings), (Store { { "Key", "another" }, { "key", "second" } }));
}
} // namespace
