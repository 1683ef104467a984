// SPDX-License-Identifier: AGPL-3.0-only
// State blocks that released versions have made must open for ever. There is one file for each version of the document,
// written once by that version and never changed.
#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

namespace
{
using namespace state_block;

const std::filesystem::path goldenFolder = paths::source ("tests/settings/golden");

struct Golden
{
    const char* file;
    Attributes attributes; // all of them, in order
    float mode;
    double rate;
};

/** What is in the files. A new version adds a row and a file. */
const std::vector<Golden> goldenDocuments { { "version-242.bin",
                                              { { "mode", "0.3333" },
                                                { "Engineer", "J\u00f6rg \"J\" <&> \u58f0 \U0001F399" },
                                                { "date_modified", "2026-11-21T04:30:15Z" },
                                                { "daw", "studio/host" },
                                                { "note", " first line\nsecond line " },
                                                { "plugin", "Quendal Larkspire" },
                                                { "pluginversion", "242" },
                                                { "samplerate", "48000" },
                                                { "username", "nobody" },
                                                { "zoom", "1.5" } },
                                              0.3333f,
                                              48000.0 } };

/** What gtest prints of a row. */
void PrintTo (const Golden& golden, std::ostream* out)
{
    *out << golden.file;
}

/** Puts another value into a saved text, which must hold the attribute. */
void replaceValue (std::string& text, const std::string& name, const std::string& value)
{
    const auto key = " " + name + "=\"";
    const auto found = text.find (key);
    ASSERT_NE (found, std::string::npos) << name;
    const auto start = found + key.size();
    text.replace (start, text.find ('"', start) - start, value);
}

class GoldenDocument : public testing::TestWithParam<Golden>
{
protected:
    const std::string block = bytesOf (goldenFolder / GetParam().file);
};

TEST_P (GoldenDocument, StillReads)
{
    ASSERT_EQ (attributesOf (block), GetParam().attributes);

    OpenProcessor processor;
    restore (processor, block);
    EXPECT_EQ (processor.modeParameter->get(), GetParam().mode);
    EXPECT_EQ (plain (processor.settings), Store (GetParam().attributes.begin(), GetParam().attributes.end()));
}

TEST_P (GoldenDocument, ComesOutAgainButForTheCircumstancesOfTheSave)
{
    OpenProcessor processor;
    processor.giveRate (GetParam().rate);
    restore (processor, block);

    // Time, host, user and version are of this run; all else, to the byte, is of the file.
    auto text = textOf (save (processor));

    for (const char* circumstance : { "date_modified", "daw", "username", "pluginversion" })
        replaceValue (text, circumstance, valueOf (block, circumstance));

    EXPECT_EQ (around (text), block);
}

INSTANTIATE_TEST_SUITE_P (OfEveryVersion, GoldenDocument, testing::ValuesIn (goldenDocuments));

TEST (GoldenDocuments, AreAllTested)
{
    std::set<std::string> files;

    for (const auto& entry : std::filesystem::directory_iterator (goldenFolder))
        files.insert (entry.path().filename().string());

    std::set<std::string> rows;

    for (const auto& golden : goldenDocuments)
        rows.insert (golden.file);

    EXPECT_EQ (files, rows);
}

TEST (GoldenDocuments, HaveOneOfThePresentVersion)
{
    OpenProcessor processor;
    const auto version = valueOf (save (processor), "pluginversion");
    EXPECT_TRUE (std::filesystem::exists (goldenFolder / ("version-" + version + ".bin"))) << version;
}

// Makes the file of a new version, by --gtest_also_run_disabled_tests and a filter for this test. A file that is there
// stays: hosts' projects hold what it holds.
TEST (GoldenDocuments, DISABLED_WriteTheFileOfTheVersion)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    processor.setMode (knobPosition (3));

    for (const auto& [key, value] : goldenDocuments.back().attributes)
        processor.setSetting (juce::String::fromUTF8 (key.c_str()), juce::String::fromUTF8 (value.c_str()));

    const auto block = save (processor);
    const auto file = goldenFolder / ("version-" + valueOf (block, "pluginversion") + ".bin");
    ASSERT_FALSE (std::filesystem::exists (file)) << file;

    std::ofstream stream (file, std::ios::binary);
    stream << block;
    stream.close();
    EXPECT_TRUE (stream) << file;
}
} // namespace
