// SPDX-License-Identifier: AGPL-3.0-only
// What setStateInformation takes in, and what it leaves alone.
#include "settings/RecordingParameter.h"
#include "settings/StateBlock.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace
{
using namespace state_block;

/** A processor whose state shows every touch. */
class Restored : public OpenProcessor
{
public:
    Restored()
    {
        setMode (0.625f);
        settings = { { "kept", "entry" }, { "mode", "stale" } };
        settle();
    }

    void settle()
    {
        settingsDue = false;
        samplesSinceChange = 77;
        stateTouched = false;
    }

    bool isUntouched() const
    {
        return modeParameter->get() == 0.625f && plain (settings) == Store { { "kept", "entry" }, { "mode", "stale" } };
    }

    bool hasAskedForAnUpdate() const { return settingsDue && samplesSinceChange == 0 && stateTouched; }
};

/** A row of the tests below: what is restored. */
struct Block
{
    const char* what;
    std::string bytes;
};

void PrintTo (const Block& block, std::ostream* out)
{
    *out << block.what;
}

const std::string goodText = documentWith ("mode=\"0.2500\" theirs=\"value\"");

class NoDocument : public testing::TestWithParam<Block>
{
};

TEST_P (NoDocument, ChangesNothingButAsksForAnUpdate)
{
    Restored processor;
    restore (processor, GetParam().bytes);
    EXPECT_TRUE (processor.isUntouched());
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

INSTANTIATE_TEST_SUITE_P (Frame,
                          NoDocument,
                          testing::Values (Block { "no byte", "" },
                                           Block { "one byte", "V" },
                                           Block { "the magic number alone", "VC2!" },
                                           Block { "8 bytes", around (goodText).substr (0, 8) },
                                           Block { "9 bytes", around ("<").substr (0, 9) },
                                           Block { "10 bytes", around ("<") },
                                           Block { "another magic number", "VC1!" + around (goodText).substr (4) },
                                           Block { "the magic number turned round",
                                                   "!2CV" + around (goodText).substr (4) },
                                           Block { "plain XML", goodText },
                                           Block { "plain XML with a zero", goodText + '\0' },
                                           Block { "the text alone behind 8 bytes", std::string (8, '\0') + goodText },
                                           Block { "a length of 0", around (goodText, 0) },
                                           Block { "a length of -1", around (goodText, -1) },
                                           Block { "the lowest length", around (goodText, -2147483647 - 1) }));

INSTANTIATE_TEST_SUITE_P (
    Text,
    NoDocument,
    testing::Values (Block { "a length too small by one", around (goodText, static_cast<int> (goodText.size()) - 1) },
                     Block { "a length of 1", around (goodText, 1) },
                     Block { "an empty text", around ("") },
                     Block { "zeros", around (std::string (100, '\0')) },
                     Block { "blanks", around ("    ") },
                     Block { "no XML", around ("mode=\"0.2500\"") },
                     Block { "the header alone", around ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> ") },
                     Block { "an open quote", around ("<settings mode=\"0.2500") },
                     Block { "an attribute without a value", around ("<settings mode/>") },
                     Block { "a value without quotes ahead of the end", around ("<settings <mode=\"0.2500\"/>") },
                     Block { "an element that stays open", around ("<settings mode=\"0.2500\">") },
                     Block { "a child that stays open", around ("<settings mode=\"0.2500\"><child></settings>") },
                     Block { "a byte-order mark", around ("\xef\xbb\xbf" + goodText) },
                     Block { "a zero inside a value",
                             around (std::string ("<settings mode=\"0.2") + '\0' + "500\"/>") },
                     Block { "UTF-16", around (std::string_view ("<\0s\0e\0t\0t\0i\0n\0g\0s\0/\0>\0", 22)) }));

INSTANTIATE_TEST_SUITE_P (Root,
                          NoDocument,
                          testing::Values (Block { "setting", around ("<setting mode=\"0.2500\"/>") },
                                           Block { "settings2", around ("<settings2 mode=\"0.2500\"/>") },
                                           Block { "a name space", around ("<x:settings mode=\"0.2500\"/>") },
                                           Block { "settings inside another element",
                                                   around ("<state><settings mode=\"0.2500\"/></state>") }));

class Document : public testing::TestWithParam<Block>
{
};

TEST_P (Document, IsTakenIn)
{
    Restored processor;
    restore (processor, GetParam().bytes);
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);
    EXPECT_EQ (plain (processor.settings), (Store { { "mode", "0.2500" }, { "theirs", "value" } }));
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

INSTANTIATE_TEST_SUITE_P (
    Frame,
    Document,
    testing::Values (Block { "as it is saved", around (goodText) },
                     Block { "without the zero", around (goodText).substr (0, goodText.size() + 8) },
                     Block { "a length too large by one", around (goodText, static_cast<int> (goodText.size()) + 1) },
                     Block { "the largest length", around (goodText, 2147483647) },
                     Block { "the largest length without the zero",
                             around (goodText, 2147483647).substr (0, goodText.size() + 8) },
                     Block { "bytes behind the block", around (goodText) + "<settings mode=\"1\"/>" },
                     Block { "text behind the document", around (goodText + "<settings mode=\"1\"/>") }));

INSTANTIATE_TEST_SUITE_P (
    Text,
    Document,
    testing::Values (
        Block { "without a header", around ("<settings mode=\"0.2500\" theirs=\"value\"/>") },
        Block { "the root in capitals", around ("<SETTINGS mode=\"0.2500\" theirs=\"value\"/>") },
        Block { "the root with a capital", around ("<Settings mode=\"0.2500\" theirs=\"value\"/>") },
        Block { "the long form", around ("<settings mode=\"0.2500\" theirs=\"value\"></settings>") },
        Block { "single quotes", around ("<settings mode='0.2500' theirs='value'/>") },
        Block { "many lines", around ("\r\n<settings\n\tmode = \"0.2500\"\n\ttheirs = \"value\"\n/>\n") },
        Block { "comments", around ("<!-- a --> <settings mode=\"0.2500\" theirs=\"value\"/> <!-- b -->") },
        Block { "half a character behind it", around (goodText + "\xf0") },
        Block { "half a character in text", around ("<settings mode=\"0.2500\" theirs=\"value\">\xf0</settings>") },
        Block { "empty attributes", around ("<settings a=\"\" mode=\"0.2500\" theirs=\"value\" z=\"\"/>") },
        Block { "children and text",
                around ("<settings mode=\"0.2500\" theirs=\"value\">text<settings mode=\"1\" ours=\"2\"/>"
                        "<mode>1</mode></settings>") }));

struct ByteRow
{
    std::string bytes;
    std::string text;
};

class RestoredBytes : public testing::TestWithParam<ByteRow>
{
};

TEST_P (RestoredBytes, AreReadAsUtf8OrAsQuestionMarks)
{
    Restored processor;
    restore (processor, blockWith ("mode=\"0.2500\" a=\"(" + GetParam().bytes + ")\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);
    EXPECT_EQ (plain (processor.settings), (Store { { "mode", "0.2500" }, { "a", "(" + GetParam().text + ")" } }));
    EXPECT_EQ (valueOf (save (processor), "a"), "(" + GetParam().text + ")");
}

INSTANTIATE_TEST_SUITE_P (Utf8,
                          RestoredBytes,
                          testing::Values (ByteRow { "\x7f", "\x7f" },
                                           ByteRow { "\xc2\x80", "\xc2\x80" },
                                           ByteRow { "\xdf\xbf", "\xdf\xbf" },
                                           ByteRow { "\xe0\xa0\x80", "\xe0\xa0\x80" },
                                           ByteRow { "\xef\xbf\xbd", "\xef\xbf\xbd" },
                                           ByteRow { "\xf0\x90\x80\x80", "\xf0\x90\x80\x80" },
                                           ByteRow { "\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf" }));

INSTANTIATE_TEST_SUITE_P (NoUtf8,
                          RestoredBytes,
                          testing::Values (ByteRow { "J\xf6rg", "J?rg" },
                                           ByteRow { "\x80", "?" },
                                           ByteRow { "\xc1\xbf", "??" },
                                           ByteRow { "\xc3", "?" },
                                           ByteRow { "\xe4\xb8", "??" },
                                           ByteRow { "\xf0\x9f\x8e", "???" },
                                           ByteRow { "\xf0\x9f\xc3\xa4", "??\xc3\xa4" },
                                           ByteRow { "\xf5\x80\x80\x80", "????" },
                                           ByteRow { "\xff\xfe", "??" },
                                           ByteRow { "\xc3\xa4\xa4", "\xc3\xa4?" }));

TEST (Restoring, HandsBackWhatWasSaved)
{
    OpenProcessor first;
    OpenProcessor second;
    first.giveRate (48000.0);
    second.giveRate (48000.0);
    first.setSetting ("theirs", juce::String::fromUTF8 (" <\u00e4> "));

    for (int step = 0; step <= 1000; ++step)
    {
        const auto value = static_cast<float> (step) / 1000.0f * 0.99987f;
        first.setMode (value);
        const auto block = save (first);
        restore (second, block);
        ASSERT_NEAR (second.modeParameter->get(), value, 0.0001f);
        ASSERT_EQ (timelessAttributesOf (save (second)), timelessAttributesOf (block));
    }
}

TEST (Restoring, StoresEveryAttributeTheFixedKeysAndTheParametersAmongThem)
{
    OpenProcessor first;
    first.setSetting ("theirs", "value");
    const auto block = save (first);
    const auto attributes = attributesOf (block);

    Restored second;
    restore (second, block);
    EXPECT_EQ (plain (second.settings), Store (attributes.begin(), attributes.end()));
    EXPECT_EQ (second.settings.size(), 8u);
}

TEST (Restoring, WorksThroughAProgramsStateToo)
{
    Restored processor;
    const auto block = around (goodText);
    processor.setCurrentProgramStateInformation (block.data(), static_cast<int> (block.size()));
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

TEST (Restoring, TakesASizeBelowZeroForNoDocument)
{
    Restored processor;
    const auto block = around (goodText);
    processor.setStateInformation (block.data(), -1);
    EXPECT_TRUE (processor.isUntouched());
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

TEST (Restoring, LeavesAParameterThatTheDocumentLacks)
{
    Restored processor;
    restore (processor, blockWith ("theirs=\"value\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.625f);
    EXPECT_EQ (plain (processor.settings), (Store { { "theirs", "value" } }));
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

TEST (Restoring, EmptiesTheStoreForADocumentWithoutAttributes)
{
    Restored processor;
    restore (processor, blockWith (""));
    EXPECT_EQ (processor.modeParameter->get(), 0.625f);
    EXPECT_TRUE (processor.settings.empty());
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

struct NumberRow
{
    const char* text;
    float value;
};

class RestoredNumber : public testing::TestWithParam<NumberRow>
{
};

TEST_P (RestoredNumber, IsLimitedToTheRangeAndKeptAsItStood)
{
    Restored processor;
    restore (processor, blockWith ("mode=\"" + std::string (GetParam().text) + "\""));
    EXPECT_EQ (processor.modeParameter->get(), GetParam().value);
    EXPECT_EQ (plain (processor.settings), (Store { { "mode", GetParam().text } }));
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

INSTANTIATE_TEST_SUITE_P (InRange,
                          RestoredNumber,
                          testing::Values (NumberRow { "0.0000", 0.0f },
                                           NumberRow { "1.0000", 1.0f },
                                           NumberRow { "0.3333", 0.3333f },
                                           NumberRow { "0.123456789", 0.123456789f },
                                           NumberRow { " 0.5", 0.5f },
                                           NumberRow { "+0.5", 0.5f },
                                           NumberRow { ".5", 0.5f },
                                           NumberRow { "5e-1", 0.5f },
                                           NumberRow { "0.5 dB", 0.5f }));

INSTANTIATE_TEST_SUITE_P (OutOfRange,
                          RestoredNumber,
                          testing::Values (NumberRow { "-0.0001", 0.0f },
                                           NumberRow { "-7", 0.0f },
                                           NumberRow { "1.0001", 1.0f },
                                           NumberRow { "2", 1.0f },
                                           NumberRow { "1e300", 1.0f },
                                           NumberRow { "-1e300", 0.0f },
                                           NumberRow { "inf", 1.0f },
                                           NumberRow { "+inf", 1.0f },
                                           NumberRow { "-inf", 0.0f },
                                           NumberRow { "nan", 0.0f },
                                           NumberRow { "-nan", 0.0f },
                                           NumberRow { "NaN", 0.0f }));

INSTANTIATE_TEST_SUITE_P (NoPlainNumber,
                          RestoredNumber,
                          testing::Values (NumberRow { "Medium", 0.0f },
                                           NumberRow { "x0.5", 0.0f },
                                           NumberRow { "-", 0.0f },
                                           NumberRow { "0,7500", 0.0f },
                                           NumberRow { "1,5", 1.0f }));

TEST (Restoring, ReadsAnEmptyValueAsZeroAndDropsIt)
{
    Restored processor;
    restore (processor, blockWith ("mode=\"\" theirs=\"\" ours=\"1\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.0f);
    EXPECT_EQ (plain (processor.settings), (Store { { "ours", "1" } }));
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

TEST (Restoring, KnowsParametersByTheirExactName)
{
    Restored processor;
    restore (processor, blockWith ("MODE=\"0.1\" Mode=\"0.2\" mode2=\"0.3\" mod=\"0.4\" x:mode=\"0.5\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.625f);
    EXPECT_EQ (
        plain (processor.settings),
        (Store { { "MODE", "0.1" }, { "Mode", "0.2" }, { "mod", "0.4" }, { "mode2", "0.3" }, { "x:mode", "0.5" } }));

    const auto block = save (processor);
    EXPECT_EQ (valueOf (block, "mode"), "0.6250");
    EXPECT_EQ (valueOf (block, "MODE"), "0.1");
}

TEST (Restoring, TakesTheFirstOfTwoValuesForTheParameterAndTheLastForTheStore)
{
    Restored processor;
    restore (processor, blockWith ("mode=\"0.25\" theirs=\"1\" mode=\"0.75\" theirs=\"2\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);
    EXPECT_EQ (plain (processor.settings), (Store { { "mode", "0.75" }, { "theirs", "2" } }));
}

TEST (Restoring, TakesAnotherPluginsDocumentIn)
{
    Restored processor;
    restore (processor, blockWith ("plugin=\"Another\" pluginversion=\"9999\" mode=\"0.25\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);

    const auto block = save (processor);
    EXPECT_EQ (valueOf (block, "plugin"), "Quendal Larkspire");
    EXPECT_EQ (valueOf (block, "pluginversion"), "242");
}

TEST (Restoring, CarriesAnUnknownAttributeUntilADocumentLacksIt)
{
    OpenProcessor processor;
    restore (processor, blockWith ("theirs=\"value\""));
    EXPECT_EQ (valueOf (save (processor), "theirs"), "value");
    EXPECT_EQ (valueOf (save (processor), "theirs"), "value") << "a save keeps it";

    restore (processor, around ("no document"));
    EXPECT_EQ (valueOf (save (processor), "theirs"), "value") << "so does a block that is no document";

    restore (processor, blockWith ("ours=\"other\""));
    const auto block = save (processor);
    EXPECT_EQ (valueOf (block, "ours"), "other");
    EXPECT_FALSE (processor.settings.contains ("theirs"));
}

TEST (Restoring, UnderstandsEscapedValues)
{
    Restored processor;
    restore (processor,
             blockWith ("a=\"&lt;&amp;&quot;&apos;&gt;\" b=\"&#228;&#xe4;\u00e4&#127897;\" c=\"&#10;\" d=\" e \""));
    EXPECT_EQ (plain (processor.settings),
               (Store { { "a", "<&\"'>" }, { "b", "\u00e4\u00e4\u00e4\U0001F399" }, { "c", "\n" }, { "d", " e " } }));
}

TEST (Restoring, SetsEveryParameterWithAnIdOnceAndInOrder)
{
    ProbeProcessor probe;
    auto* first = new KnownParameter ("first", 0.1f);
    auto* nameless = new NamelessParameter (0.2f);
    auto* absent = new KnownParameter ("absent", 0.3f);
    auto* last = new KnownParameter ("last", 0.4f);

    for (juce::AudioProcessorParameter* parameter :
         std::initializer_list<juce::AudioProcessorParameter*> { first, nameless, absent, last })
        probe.addParameter (parameter);

    restore (probe, blockWith ("last=\"0.75\" nameless=\"1\" first=\"0.5\""));
    EXPECT_EQ (first->given, (std::vector { 0.5f }));
    EXPECT_EQ (nameless->given, (std::vector<float> {}));
    EXPECT_EQ (absent->given, (std::vector { 0.3f }));
    EXPECT_EQ (last->given, (std::vector { 0.75f }));
}

TEST (Restoring, LimitsAlsoWhatTheDocumentLacks)
{
    ProbeProcessor probe;
    auto* high = new KnownParameter ("high", 2.0f);
    auto* low = new KnownParameter ("low", -3.0f);
    auto* none = new KnownParameter ("none", std::nanf (""));
    probe.addParameter (high);
    probe.addParameter (low);
    probe.addParameter (none);

    restore (probe, around ("no document"));
    EXPECT_TRUE (high->given.empty());

    restore (probe, blockWith (""));
    EXPECT_EQ (high->given, (std::vector { 1.0f }));
    EXPECT_EQ (low->given, (std::vector { 0.0f }));
    EXPECT_EQ (none->given, (std::vector { 0.0f }));
}

TEST (Restoring, SetsNormalisedValues)
{
    ProbeProcessor probe;
    const juce::NormalisableRange<float> decibels (-60.0f, 20.0f);
    auto* gain = new juce::AudioParameterFloat (juce::ParameterID ("gain", 1), "Gain", decibels, 0.0f);
    probe.addParameter (gain);
    restore (probe, blockWith ("gain=\"0.25\""));
    EXPECT_EQ (gain->get(), -40.0f);
}

/** Counts what a processor and its parameter tell their listeners. */
class Notices : public juce::AudioProcessorListener, public juce::AudioProcessorParameter::Listener
{
public:
    explicit Notices (OpenProcessor& observed) : processor (observed)
    {
        processor.addListener (this);
        processor.modeParameter->addListener (this);
    }

    ~Notices() override
    {
        processor.modeParameter->removeListener (this);
        processor.removeListener (this);
    }

    Notices (const Notices&) = delete;
    Notices& operator= (const Notices&) = delete;

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override { ++toHost; }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override { ++toHost; }
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { ++toHost; }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { ++toHost; }
    void parameterValueChanged (int, float) override { ++toListeners; }
    void parameterGestureChanged (int, bool) override { ++toListeners; }

    int toHost = 0;
    int toListeners = 0;

private:
    OpenProcessor& processor;
};

TEST (Restoring, TellsNeitherHostNorListeners)
{
    OpenProcessor processor;
    Notices notices (processor);
    processor.setMode (0.5f);
    ASSERT_EQ (notices.toHost, 1);
    ASSERT_EQ (notices.toListeners, 1);

    for (const auto& block : { around (goodText), blockWith ("mode=\"1\""), blockWith (""), around ("no document") })
        restore (processor, block);

    save (processor);
    EXPECT_EQ (processor.modeParameter->get(), 1.0f);
    EXPECT_EQ (notices.toHost, 1);
    EXPECT_EQ (notices.toListeners, 1);
}

TEST (Restoring, MakesTheBlockLoopUpdateAtItsNextSample)
{
    for (const auto& block : { around (goodText), blockWith (""), around ("no document"), std::string() })
    {
        ProbeProcessor probe;
        probe.runSilence (10);
        restore (probe, block);
        EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0 })) << "not in the call itself";

        probe.runSilence (0);
        EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0 })) << "not in a block without a sample";

        probe.runSilence (5);
        EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 10 }));
    }
}

TEST (Restoring, BringsItsModeIntoForceWithTheNextSample)
{
    OpenProcessor processor;
    std::vector<float> left { 0.1f };
    std::vector<float> right { 0.1f };
    processor.run (left, right);
    ASSERT_EQ (processor.modeIndex, 2);

    restore (processor, blockWith ("mode=\"0.3333\""));
    EXPECT_EQ (processor.modeIndex, 2);

    processor.run (left, right);
    EXPECT_EQ (processor.modeIndex, 3);
}

TEST (Restoring, LeavesTheProgramsAlone)
{
    ProbeProcessor probe;
    probe.programs = { { "One", "mode=\"0.1\"" }, { "Two", "mode=\"0.2\"" } };
    probe.currentProgram = 1;
    probe.appliedProgram = 0;
    restore (probe, blockWith ("mode=\"0.25\""));
    EXPECT_EQ (probe.currentProgram, 1);
    EXPECT_EQ (probe.appliedProgram, 0);
    EXPECT_EQ (probe.programs.size(), 2u);
}
} // namespace
