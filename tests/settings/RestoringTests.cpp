// SPDX-License-Identifier: AGPL-3.0-only
// What setStateInformation takes in, and what it leaves alone.
#include "settings/RecordingParameter.h"
#include "settings/RestoredProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using namespace state_block;

const std::string goodText = documentWith ("mode=\"0.2500\" theirs=\"value\"");
const std::string goodBlock = around (goodText);
const auto goodLength = static_cast<std::int32_t> (goodText.size());

/** A row of the tests below: what is restored. */
struct Block
{
    const char* what;
    std::string bytes;
};

void expectNoDocuments (const std::vector<Block>& blocks)
{
    for (const auto& [what, bytes] : blocks)
    {
        const RestoredProcessor processor (bytes);
        EXPECT_TRUE (processor.isUntouched()) << what;
        EXPECT_TRUE (processor.hasAskedForAnUpdate()) << what;
    }
}

TEST (Restoring, OfABlockWithoutAFrameChangesNothingButAsksForAnUpdate)
{
    expectNoDocuments ({
        { "no byte", "" },
        { "one byte", "V" },
        { "the magic number alone", "VC2!" },
        { "8 bytes", goodBlock.substr (0, 8) },
        { "9 bytes", around ("<").substr (0, 9) },
        { "10 bytes", around ("<") },
        { "another magic number", "VC1!" + goodBlock.substr (4) },
        { "the magic number turned round", "!2CV" + goodBlock.substr (4) },
        { "plain XML", goodText },
        { "plain XML with a zero", goodText + '\0' },
        { "the text alone behind 8 bytes", std::string (8, '\0') + goodText },
        { "a length of 0", around (goodText, 0) },
        { "a length of -1", around (goodText, -1) },
        { "the lowest length", around (goodText, -2147483647 - 1) },
    });
}

TEST (Restoring, OfATextThatIsNoDocumentChangesNothingButAsksForAnUpdate)
{
    expectNoDocuments ({
        { "a length too small by one", around (goodText, goodLength - 1) },
        { "a length of 1", around (goodText, 1) },
        { "an empty text", around ("") },
        { "zeros", around (std::string (100, '\0')) },
        { "blanks", around ("    ") },
        { "no XML", around ("mode=\"0.2500\"") },
        { "the header alone", around (header) },
        { "an open quote", around ("<settings mode=\"0.2500") },
        { "an attribute without a value", around ("<settings mode/>") },
        { "a value without quotes ahead of the end", around ("<settings <mode=\"0.2500\"/>") },
        { "an element that stays open", around ("<settings mode=\"0.2500\">") },
        { "a child that stays open", around ("<settings mode=\"0.2500\"><child></settings>") },
        { "a byte-order mark", around ("\xef\xbb\xbf" + goodText) },
        { "a zero inside a value", around (std::string ("<settings mode=\"0.2") + '\0' + "500\"/>") },
        { "UTF-16", around (std::string_view ("<\0s\0e\0t\0t\0i\0n\0g\0s\0/\0>\0", 22)) },
    });
}

TEST (Restoring, OfAnotherRootChangesNothingButAsksForAnUpdate)
{
    expectNoDocuments ({
        { "setting", around ("<setting mode=\"0.2500\"/>") },
        { "settings2", around ("<settings2 mode=\"0.2500\"/>") },
        { "a name space", around ("<x:settings mode=\"0.2500\"/>") },
        { "settings inside another element", around ("<state><settings mode=\"0.2500\"/></state>") },
    });
}

void expectGoodDocuments (const std::vector<Block>& blocks)
{
    for (const auto& [what, bytes] : blocks)
    {
        const RestoredProcessor processor (bytes);
        EXPECT_EQ (processor.mode(), 0.25f) << what;
        EXPECT_EQ (processor.store(), (Store { { "mode", "0.2500" }, { "theirs", "value" } })) << what;
        EXPECT_TRUE (processor.hasAskedForAnUpdate()) << what;
    }
}

TEST (Restoring, NeedsNeitherTheRightLengthNorTheZeroBehindTheText)
{
    expectGoodDocuments ({
        { "as it is saved", goodBlock },
        { "without the zero", goodBlock.substr (0, goodText.size() + 8) },
        { "a length too large by one", around (goodText, goodLength + 1) },
        { "the largest length", around (goodText, 2147483647) },
        { "the largest length without the zero", around (goodText, 2147483647).substr (0, goodText.size() + 8) },
        { "bytes behind the block", goodBlock + "<settings mode=\"1\"/>" },
        { "text behind the document", around (goodText + "<settings mode=\"1\"/>") },
    });
}

TEST (Restoring, TakesADocumentInAnyFormOfXml)
{
    expectGoodDocuments ({
        { "without a header", around ("<settings mode=\"0.2500\" theirs=\"value\"/>") },
        { "the root in capitals", around ("<SETTINGS mode=\"0.2500\" theirs=\"value\"/>") },
        { "the root with a capital", around ("<Settings mode=\"0.2500\" theirs=\"value\"/>") },
        { "the long form", around ("<settings mode=\"0.2500\" theirs=\"value\"></settings>") },
        { "single quotes", around ("<settings mode='0.2500' theirs='value'/>") },
        { "many lines", around ("\r\n<settings\n\tmode = \"0.2500\"\n\ttheirs = \"value\"\n/>\n") },
        { "comments", around ("<!-- a --> <settings mode=\"0.2500\" theirs=\"value\"/> <!-- b -->") },
        { "half a character behind it", around (goodText + "\xf0") },
        { "half a character in text", around ("<settings mode=\"0.2500\" theirs=\"value\">\xf0</settings>") },
        { "empty attributes", around ("<settings a=\"\" mode=\"0.2500\" theirs=\"value\" z=\"\"/>") },
        { "children and text",
          around ("<settings mode=\"0.2500\" theirs=\"value\">text<settings mode=\"1\" ours=\"2\"/>"
                  "<mode>1</mode></settings>") },
    });
}

TEST (Restoring, TakesASizeBelowZeroForNoDocument)
{
    RestoredProcessor processor;
    processor.settle();
    processor.setStateInformation (goodBlock.data(), -1);
    EXPECT_TRUE (processor.isUntouched());
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
}

TEST (Restoring, SetsTheParameterThatIsNamedExactlyAndKeepsAllThatIsNotEmpty)
{
    struct Row
    {
        const char* attributes;
        float mode;
        Store store;
    };

    const float former = RestoredProcessor::formerMode;
    const std::vector<Row> rows {
        { "", former, {} },
        { "theirs=\"value\"", former, { { "theirs", "value" } } },
        { "MODE=\"0.1\" Mode=\"0.2\" mode2=\"0.3\" mod=\"0.4\" x:mode=\"0.5\"",
          former,
          { { "MODE", "0.1" }, { "Mode", "0.2" }, { "mod", "0.4" }, { "mode2", "0.3" }, { "x:mode", "0.5" } } },
        { "mode=\"\" theirs=\"\" ours=\"1\"", 0.0f, { { "ours", "1" } } },
        { "mode=\"0.25\" theirs=\"1\" mode=\"0.75\" theirs=\"2\"", 0.25f, { { "mode", "0.75" }, { "theirs", "2" } } },
        { "plugin=\"Another\" pluginversion=\"9999\" mode=\"0.25\"",
          0.25f,
          { { "mode", "0.25" }, { "plugin", "Another" }, { "pluginversion", "9999" } } },
        { "a=\"&lt;&amp;&quot;&apos;&gt;\" b=\"&#228;&#xe4;\u00e4&#127897;\" c=\"&#10;\" d=\" e \"",
          former,
          { { "a", "<&\"'>" }, { "b", "\u00e4\u00e4\u00e4\U0001F399" }, { "c", "\n" }, { "d", " e " } } },
    };

    for (const auto& row : rows)
    {
        const RestoredProcessor processor (blockWith (row.attributes));
        EXPECT_EQ (processor.mode(), row.mode) << row.attributes;
        EXPECT_EQ (processor.store(), row.store) << row.attributes;
        EXPECT_TRUE (processor.hasAskedForAnUpdate()) << row.attributes;
    }
}

TEST (Restoring, LimitsANumberToTheRangeAndKeepsItAsItStood)
{
    const std::vector<std::pair<float, std::vector<const char*>>> rows {
        { 0.0f, { "0.0000", "-0.0001", "-7", "-1e300", "-inf", "nan", "-nan", "NaN" } },
        { 0.0f, { "Medium", "x0.5", "-", "0,7500" } },
        { 0.123456789f, { "0.123456789" } },
        { 0.3333f, { "0.3333" } },
        { 0.5f, { " 0.5", "+0.5", ".5", "5e-1", "0.5 dB" } },
        { 1.0f, { "1.0000", "1.0001", "2", "1e300", "inf", "+inf", "1,5" } },
    };

    for (const auto& [value, texts] : rows)
        for (const auto* text : texts)
        {
            const RestoredProcessor processor (blockWith ("mode=\"" + std::string (text) + "\""));
            EXPECT_EQ (processor.mode(), value) << text;
            EXPECT_EQ (processor.store(), (Store { { "mode", text } }));
            EXPECT_TRUE (processor.hasAskedForAnUpdate());
        }
}

TEST (Restoring, ReadsBytesAsUtf8OrAsQuestionMarks)
{
    const std::vector<std::pair<std::string, std::string>> rows {
        { "\x7f", "\x7f" },
        { "\xc2\x80", "\xc2\x80" },
        { "\xdf\xbf", "\xdf\xbf" },
        { "\xe0\xa0\x80", "\xe0\xa0\x80" },
        { "\xef\xbf\xbd", "\xef\xbf\xbd" },
        { "\xf0\x90\x80\x80", "\xf0\x90\x80\x80" },
        { "\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf" },
        { "J\xf6rg", "J?rg" },
        { "\x80", "?" },
        { "\xc1\xbf", "??" },
        { "\xc3", "?" },
        { "\xe4\xb8", "??" },
        { "\xf0\x9f\x8e", "???" },
        { "\xf0\x9f\xc3\xa4", "??\xc3\xa4" },
        { "\xf5\x80\x80\x80", "????" },
        { "\xff\xfe", "??" },
        { "\xc3\xa4\xa4", "\xc3\xa4?" },
    };

    for (const auto& [bytes, text] : rows)
    {
        RestoredProcessor processor (blockWith ("mode=\"0.2500\" a=\"(" + bytes + ")\""));
        EXPECT_EQ (processor.mode(), 0.25f);
        EXPECT_EQ (processor.store(), (Store { { "mode", "0.2500" }, { "a", "(" + text + ")" } }));
        EXPECT_EQ (valueOf (save (processor), "a"), "(" + text + ")");
    }
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

/** Counts what a processor tells its host, and its parameter those who listen to it. */
struct Notices : juce::AudioProcessorListener, juce::AudioProcessorParameter::Listener
{
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override { ++toHost; }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override { ++toHost; }
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { ++toHost; }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { ++toHost; }
    void parameterValueChanged (int, float) override { ++toListeners; }
    void parameterGestureChanged (int, bool) override { ++toListeners; }

    int toHost = 0;
    int toListeners = 0;
};

TEST (Restoring, TellsNeitherHostNorListeners)
{
    Notices notices;
    OpenProcessor processor;
    processor.addListener (&notices);
    processor.modeParameter->addListener (&notices);
    processor.setMode (0.5f);
    ASSERT_EQ (notices.toHost, 1);
    ASSERT_EQ (notices.toListeners, 1);

    for (const auto& block : { goodBlock, blockWith ("mode=\"1\""), blockWith (""), around ("no document") })
        restore (processor, block);

    save (processor);
    EXPECT_EQ (processor.modeParameter->get(), 1.0f);
    EXPECT_EQ (notices.toHost, 1);
    EXPECT_EQ (notices.toListeners, 1);
}

TEST (Restoring, MakesTheBlockLoopUpdateAtItsNextSample)
{
    for (const auto& block : { goodBlock, blockWith (""), around ("no document"), std::string() })
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
} // namespace
