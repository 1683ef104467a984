// SPDX-License-Identifier: AGPL-3.0-only
// What getStateInformation writes, to the byte.
#include "settings/RecordingParameter.h"
#include "settings/StateBlock.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <regex>

namespace
{
using namespace state_block;

const std::vector<std::string> fixedKeys {
    "date_modified", "daw", "plugin", "pluginversion", "samplerate", "username"
};

std::vector<std::string> plus (std::vector<std::string> front, const std::vector<std::string>& back)
{
    front.insert (front.end(), back.begin(), back.end());
    return front;
}

TEST (Saving, WritesTheParameterAndThenTheFixedKeysInOrder)
{
    OpenProcessor processor;
    EXPECT_EQ (namesOf (attributesOf (save (processor))), plus ({ "mode" }, fixedKeys));
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

TEST (Saving, GivesTheSameDocumentForAProgramAndForABank)
{
    OpenProcessor processor;
    juce::MemoryBlock block;
    processor.getCurrentProgramStateInformation (block);
    const std::string program (static_cast<const char*> (block.getData()), block.getSize());
    EXPECT_EQ (timelessAttributesOf (program), timelessAttributesOf (save (processor)));
}

struct ValueRow
{
    float value;
    const char* text;
};

class SavedValue : public testing::TestWithParam<ValueRow>
{
};

TEST_P (SavedValue, HasFourDecimals)
{
    OpenProcessor processor;
    processor.setMode (GetParam().value);
    EXPECT_EQ (valueOf (save (processor), "mode"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P (Texts,
                          SavedValue,
                          testing::Values (ValueRow { 0.0f, "0.0000" },
                                           ValueRow { 1.0f, "1.0000" },
                                           ValueRow { 1.0f / 3.0f, "0.3333" },
                                           ValueRow { 2.0f / 3.0f, "0.6667" },
                                           ValueRow { knobPosition (1), "0.1111" },
                                           ValueRow { 0.5f, "0.5000" },
                                           ValueRow { 0.00004f, "0.0000" },
                                           ValueRow { 0.00006f, "0.0001" },
                                           ValueRow { 0.99996f, "1.0000" },
                                           ValueRow { 0.12344f, "0.1234" },
                                           ValueRow { 0.12346f, "0.1235" }));

TEST (Saving, WritesTheTimeInUtc)
{
    // A zone far from UTC: local time would be hours off.
    const char* zone = std::getenv ("TZ");
    const std::string formerZone = zone != nullptr ? zone : "";
    ASSERT_EQ (setenv ("TZ", "FAR+11", 1), 0);
    tzset();

    OpenProcessor processor;
    const auto before = std::time (nullptr);
    const auto text = valueOf (save (processor), "date_modified");
    const auto after = std::time (nullptr);

    ASSERT_EQ (zone != nullptr ? setenv ("TZ", formerZone.c_str(), 1) : unsetenv ("TZ"), 0);
    tzset();

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

struct RateRow
{
    double rate;
    const char* text;
};

class SavedRate : public testing::TestWithParam<RateRow>
{
};

TEST_P (SavedRate, IsTheHostsCutToAWholeNumber)
{
    OpenProcessor processor;
    processor.giveRate (GetParam().rate);
    EXPECT_EQ (valueOf (save (processor), "samplerate"), GetParam().text);
    EXPECT_EQ (processor.sampleRate, 96000.0) << "the rate of the filters is another one";
}

INSTANTIATE_TEST_SUITE_P (Rates,
                          SavedRate,
                          testing::Values (RateRow { 44100.0, "44100" },
                                           RateRow { 44100.9, "44100" },
                                           RateRow { 192000.0, "192000" },
                                           RateRow { 500.0, "500" },
                                           RateRow { 0.9, "0" },
                                           RateRow { -48000.5, "-48000" },
                                           RateRow { 2147483647.5, "2147483647" },
                                           RateRow { -2147483648.5, "-2147483648" }));

INSTANTIATE_TEST_SUITE_P (RatesThatFitNoInt,
                          SavedRate,
                          testing::Values (RateRow { 2147483648.0, "-2147483648" },
                                           RateRow { -2147483649.0, "-2147483648" },
                                           RateRow { 1e300, "-2147483648" },
                                           RateRow { std::numeric_limits<double>::infinity(), "-2147483648" },
                                           RateRow { std::numeric_limits<double>::quiet_NaN(), "-2147483648" }));

TEST (Saving, WritesARateOfZeroBeforeTheHostHasGivenOne)
{
    OpenProcessor processor;
    EXPECT_EQ (valueOf (save (processor), "samplerate"), "0");
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

TEST (Saving, LeavesTheFixedKeysAndWhatItDoesNotKnowInTheStore)
{
    OpenProcessor processor;
    processor.settings = { { "theirs", "kept" }, { "plugin", "stale" }, { "pluginversion", "1" }, { "mode", "0.9" } };
    save (processor);

    const auto store = plain (processor.settings);
    std::vector<std::string> keys;

    for (const auto& [key, value] : store)
        keys.push_back (key);

    EXPECT_EQ (keys,
               (std::vector<std::string> {
                   "date_modified", "daw", "plugin", "pluginversion", "samplerate", "theirs", "username" }));
    EXPECT_EQ (store.at ("theirs"), "kept");
    EXPECT_EQ (store.at ("plugin"), "Quendal Larkspire");
    EXPECT_EQ (store.at ("pluginversion"), "242");
}

TEST (Saving, SortsWhatItDoesNotKnowAmongTheFixedKeysByCodePoint)
{
    OpenProcessor processor;

    for (const char* key :
         { "zoo", "Zoo", "date", "date_modified_", "dax", "pluginversion2", "user", "_", "username1" })
        processor.setSetting (key, "theirs");

    processor.setSetting (juce::String::fromUTF8 ("\u00e4"), "theirs");

    EXPECT_EQ (namesOf (attributesOf (save (processor))),
               (std::vector<std::string> { "mode",
                                           "Zoo",
                                           "_",
                                           "date",
                                           "date_modified",
                                           "date_modified_",
                                           "daw",
                                           "dax",
                                           "plugin",
                                           "pluginversion",
                                           "pluginversion2",
                                           "samplerate",
                                           "user",
                                           "username",
                                           "username1",
                                           "zoo",
                                           "\u00e4" }));
}

TEST (Saving, DiffersFromTheLastSaveByTheDateAtMost)
{
    OpenProcessor processor;
    processor.setSetting ("theirs", "kept");
    processor.giveRate (48000.0);
    const auto first = timelessAttributesOf (save (processor));
    EXPECT_EQ (first, timelessAttributesOf (save (processor)));
    EXPECT_EQ (first.size(), 7u);
}

TEST (Saving, WritesAStaleParameterValueNeverAndTheFreshOneOnce)
{
    OpenProcessor processor;
    restore (processor, blockWith ("mode=\"0.1111\""));
    ASSERT_EQ (plain (processor.settings), (Store { { "mode", "0.1111" } }));

    processor.setMode (1.0f / 3.0f);
    const auto block = save (processor);
    EXPECT_EQ (namesOf (attributesOf (block)), plus ({ "mode" }, fixedKeys));
    EXPECT_EQ (valueOf (block, "mode"), "0.3333");
    EXPECT_FALSE (processor.settings.contains ("mode"));
}

TEST (Saving, WritesAnEmptyValueAsAnEmptyAttribute)
{
    OpenProcessor processor;
    processor.setSetting ("note", "");
    EXPECT_NE (textOf (save (processor)).find (" note=\"\" "), std::string::npos);
}

TEST (Saving, EscapesWhatWouldEndAValueAndKeepsToOneLine)
{
    OpenProcessor processor;
    processor.setSetting ("note", juce::String::fromUTF8 (" <a & \"b\">\r\n\t'\u00e4\U0001F399 "));
    const auto text = textOf (save (processor));
    EXPECT_NE (text.find (" note=\" &lt;a &amp; &quot;b&quot;&gt;&#13;&#10;&#9;'&#228;&#127897; \" "),
               std::string::npos)
        << text;
}

TEST (Saving, WritesOnlyTheStoreWhereParametersHaveNoId)
{
    ProbeProcessor probe;
    probe.addParameter (new NamelessParameter (0.25f));
    probe.addParameter (new NamelessParameter (0.75f));
    EXPECT_EQ (namesOf (attributesOf (save (probe))), fixedKeys);
}

TEST (Saving, WritesNormalisedValuesInTheOrderOfTheParameters)
{
    ProbeProcessor probe;
    const juce::NormalisableRange<float> decibels (-60.0f, 20.0f);
    probe.addParameter (new KnownParameter ("zeta", 0.125f));
    probe.addParameter (new NamelessParameter (0.9f));
    probe.addParameter (new juce::AudioParameterFloat (juce::ParameterID ("gain", 1), "Gain", decibels, -40.0f));
    probe.addParameter (new juce::AudioParameterBool (juce::ParameterID ("alpha", 1), "Alpha", true));

    const auto block = save (probe);
    EXPECT_EQ (namesOf (attributesOf (block)), plus ({ "zeta", "gain", "alpha" }, fixedKeys));
    EXPECT_EQ (valueOf (block, "zeta"), "0.1250");
    EXPECT_EQ (valueOf (block, "gain"), "0.2500");
    EXPECT_EQ (valueOf (block, "alpha"), "1.0000");
}

TEST (Saving, LetsAParameterTakeTheNameOfAFixedKey)
{
    ProbeProcessor probe;
    probe.addParameter (new KnownParameter ("plugin", 0.5f));
    const auto block = save (probe);
    EXPECT_EQ (
        namesOf (attributesOf (block)),
        (std::vector<std::string> { "plugin", "date_modified", "daw", "pluginversion", "samplerate", "username" }));
    EXPECT_EQ (valueOf (block, "plugin"), "0.5000");
    EXPECT_FALSE (probe.settings.contains ("plugin"));
}

TEST (Saving, WritesTheLargestNumbersInFull)
{
    ProbeProcessor probe;
    probe.addParameter (new KnownParameter ("tall", -1e20f));
    EXPECT_EQ (valueOf (save (probe), "tall"), "-100000002004087734272.0000");
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
