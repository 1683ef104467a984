// SPDX-License-Identifier: AGPL-3.0-only
// The report, as users and as programs read it.
#include "render/RendererTest.h"
#include "support/Paths.h"
#include "support/TestTone.h"

#include <nlohmann/json.hpp>

#include <array>
#include <limits>
#include <map>
#include <sstream>

namespace
{
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

/** What the table calls a figure, and where it is in the document. */
struct Name
{
    std::string row;
    std::string group; // "" is before and after
    std::string key;
};

const std::vector<Name> names {
    { "integrated loudness, LUFS", "", "integrated_lufs" },
    { "loudness range, LU", "", "loudness_range_lu" },
    { "true peak, dBTP", "", "true_peak_dbtp" },
    { "quietest tenth, dBFS (AES17)", "", "quietest_tenth_dbfs" },
    { "high-pass", "gains", "high_pass_db" },
    { "expander, mean over time", "gains", "expander_mean_db" },
    { "stereo fold", "gains", "stereo_fold_db" },
    { "air and body", "gains", "air_and_body_db" },
    { "leveller, mean over time", "gains", "leveller_mean_db" },
    { "make-up", "gains", "make_up_db" },
    { "soft clip", "gains", "soft_clip_db" },
};

/** The cells of a table by the words in front of them. */
std::map<std::string, std::vector<std::string>> cellsIn (const std::string& table)
{
    std::map<std::string, std::vector<std::string>> cells;

    for (const auto& line : linesOf (table))
        for (const auto& name : names)
            if (const auto place = line.find ("  " + name.row + "  "); place != std::string::npos)
            {
                std::istringstream rest (line.substr (place + name.row.size() + 2));

                for (std::string cell; rest >> cell;)
                    cells[name.row].push_back (cell);
            }

    return cells;
}

/** A cell and a value of the document that say the same. */
void expectSame (const std::string& cell, const json& value)
{
    if (value.is_null())
        EXPECT_EQ (cell, "-");
    else
        EXPECT_NEAR (std::stod (cell), value.get<double>(), 0.0506); // half a tenth, and half a thousandth
}

class Report : public RendererTest
{
protected:
    Report()
    {
        // Words of a tone with a little noise between them.
        const auto word = TestTone { .frequency = 300.0, .peakDbfs = -12.0, .seconds = 0.5 }.samples();
        auto gap = toFloats (makeNoise (2, 14400, 24));

        for (auto& sample : gap)
            sample *= 0.001f;

        for (int i = 0; i < 6; ++i)
            speech = joined ({ speech, word, gap });

        writeFloats (folder / "speech.wav", wav24, 2, speech);
    }

    std::string reportOf (std::vector<std::string> arguments, const std::string& input = "speech.wav") const
    {
        arguments.insert (arguments.end(), { input, "-o", "results/" });
        return expectSuccess (arguments);
    }

    /** The results in the document. */
    json resultsOf (std::vector<std::string> arguments, const std::string& input = "speech.wav") const
    {
        arguments.emplace_back ("--json");
        return json::parse (reportOf (std::move (arguments), input)).at ("results");
    }

    std::vector<float> speech;
};

TEST_F (Report, SaysTheSameToUsersAndToPrograms)
{
    for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful" })
    {
        SCOPED_TRACE (mode);
        const auto table = reportOf ({ "--report", "--mode", mode });
        const auto results = resultsOf ({ "--mode", mode });
        ASSERT_EQ (results.size(), 1U);
        const auto& entry = results[0];
        EXPECT_EQ (entry["mode"], mode);
        EXPECT_EQ (entry["input"], "speech.wav");
        EXPECT_EQ (entry["output"], "results/speech.wav");
        EXPECT_EQ (entry["sample_rate_hz"], 48000);
        EXPECT_EQ (entry["channels"], 2);
        EXPECT_EQ (entry["length_s"], double (speech.size()) / 96000.0);
        EXPECT_THAT (table, HasSubstr ("mode " + mode));
        EXPECT_THAT (table, HasSubstr ("4.8 s, 48000 Hz, stereo"));

        const auto cells = cellsIn (table);

        for (const auto& name : names)
        {
            SCOPED_TRACE (name.row);

            if (name.group.empty())
            {
                ASSERT_EQ (cells.at (name.row).size(), 2U) << table;
                ASSERT_TRUE (entry["before"][name.key].is_number());
                expectSame (cells.at (name.row)[0], entry["before"][name.key]);
                expectSame (cells.at (name.row)[1], entry["after"][name.key]);
            }
            else if (mode != "bypass")
            {
                ASSERT_EQ (cells.at (name.row).size(), 1U) << table;
                ASSERT_TRUE (entry["gains"][name.key].is_number());
                expectSame (cells.at (name.row)[0], entry["gains"][name.key]);
            }
            else
            {
                EXPECT_FALSE (cells.contains (name.row));
                EXPECT_TRUE (entry["gains"].is_null());
                EXPECT_EQ (entry["gains_missing"], "in bypass no stage runs");
            }
        }
    }
}

TEST_F (Report, MeasuresWhatIsInTheFiles)
{
    // In bypass both sides are one sound, down to what 16 bits leave of it. 0 dBFS is a sine of full scale.
    writeFloats (folder / "tone.wav", wavFloat, 2, TestTone { .seconds = 5.0 }.samples());
    const auto at16Bits = [this] (const std::string& input)
    {
        const auto outcome = runHere ({ "--json", "--mode", "bypass", "--bits", "16", input, "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_THAT (outcome.errors, testing::EndsWith ("samples rounded to 16 bits; --bits 32f keeps them\n"));
        return json::parse (outcome.output).at ("results");
    };

    const auto results = at16Bits ("tone.wav");
    EXPECT_NEAR (results[0]["before"]["integrated_lufs"].get<double>(), -23.0, 0.1);
    EXPECT_NEAR (results[0]["after"]["integrated_lufs"].get<double>(), -23.0, 0.1);
    EXPECT_NEAR (results[0]["before"]["quietest_tenth_dbfs"].get<double>(), -23.0, 0.05);

    // Less than half a step is nothing in a file of 16 bits.
    writeFloats (folder / "faint.wav", wavFloat, 2, TestTone { .peakDbfs = -100.0, .seconds = 5.0 }.samples());
    const auto faint = at16Bits ("faint.wav");
    EXPECT_NEAR (faint[0]["before"]["true_peak_dbtp"].get<double>(), -100.0, 0.2);
    EXPECT_TRUE (faint[0]["after"]["true_peak_dbtp"].is_null());
}

TEST_F (Report, HasDashesAndNullForSilenceAndForNothing)
{
    writeFloats (folder / "silence.wav", wav16, 1, std::vector<float> (480000));
    writeFloats (folder / "nothing.wav", wav16, 1, {});

    for (const std::string input : { "silence.wav", "nothing.wav" })
    {
        SCOPED_TRACE (input);
        const auto table = reportOf ({ "--report" }, input);
        const auto cells = cellsIn (table);
        const auto results = resultsOf ({}, input);

        for (const auto& name : names)
            if (name.group.empty())
            {
                EXPECT_EQ (cells.at (name.row), (std::vector<std::string> { "-", "-" }));
                EXPECT_TRUE (results[0]["before"][name.key].is_null());
                EXPECT_TRUE (results[0]["after"][name.key].is_null());
            }

        EXPECT_EQ (cells.at ("high-pass"), std::vector<std::string> { "-" });
        EXPECT_EQ (cells.at ("make-up"), std::vector<std::string> { "21.6" });
        EXPECT_THAT (table, Not (HasSubstr ("nan")));
        EXPECT_THAT (table, Not (HasSubstr ("inf")));
        EXPECT_EQ (results[0]["gains"]["expander_mean_db"].is_null(), input == "nothing.wav");
    }
}

TEST_F (Report, HasNullWhereTheInputHoldsNaN)
{
    auto broken = TestTone { .seconds = 5.0, .channels = 1 }.samples();
    broken[100] = std::numeric_limits<float>::quiet_NaN();
    broken[200] = std::numeric_limits<float>::infinity();
    writeFloats (folder / "broken.wav", wavFloat, 1, broken);
    const auto results = resultsOf ({}, "broken.wav");
    EXPECT_TRUE (results[0]["before"]["integrated_lufs"].is_null());
    EXPECT_TRUE (results[0]["after"]["integrated_lufs"].is_number());
}

TEST_F (Report, LeavesTheGainsOfAnotherLibraryOut)
{
    const auto table = reportOf ({ "--plugin", paths::standIn(), "--report" });
    EXPECT_THAT (table, HasSubstr ("gains left out: the library gives another sound"));
    EXPECT_THAT (table, Not (HasSubstr ("expander")));
    const auto results = resultsOf ({ "--plugin", paths::standIn() });
    EXPECT_TRUE (results[0]["gains"].is_null());
    EXPECT_THAT (results[0]["gains_missing"].get<std::string>(), HasSubstr ("another sound"));

    // It halves what it gets.
    EXPECT_NEAR (results[0]["after"]["integrated_lufs"].get<double>(),
                 results[0]["before"]["integrated_lufs"].get<double>() - 6.02,
                 0.01);
}

TEST_F (Report, IsOneDocumentForAllFilesAndFailures)
{
    writeBytes (folder / "text.txt", "hello");
    writeNoise ("last.wav", 1, 30000);
    const auto outcome =
        runHere ({ "--json", "--report", "--stats", "speech.wav", "text.txt", "last.wav", "-o", "results" });
    const std::string error = "text.txt: is not a WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file";
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: " + error + "\n");
    const auto document = json::parse (outcome.output);
    EXPECT_EQ (document.at ("version"), 2);
    EXPECT_EQ (document.at ("left_out"), json::array());
    EXPECT_EQ (document.at ("files_without_sound"), 0);
    const auto& results = document.at ("results");
    ASSERT_EQ (results.size(), 3U);
    EXPECT_EQ (results[0]["input"], "speech.wav");
    EXPECT_EQ (results[1]["input"], "text.txt");
    EXPECT_EQ (results[2]["input"], "last.wav");
    EXPECT_FALSE (results[0].contains ("error"));
    EXPECT_EQ (results[1]["error"], error);
    EXPECT_FALSE (results[1].contains ("before"));
    EXPECT_TRUE (results[0]["stats"]["peak_dbfs"].is_number());
    EXPECT_TRUE (results[0]["stats"]["rms_dbfs"].is_number());
    EXPECT_GT (results[0]["stats"]["times_real_time"].get<double>(), 0.0);
}

TEST_F (Report, HoldsPathsThatAreNoText)
{
    writeNoise ("\xff\xfe \"quoted\".wav");
    const auto results = resultsOf ({}, "\xff\xfe \"quoted\".wav");
    EXPECT_EQ (results[0]["input"], "\xef\xbf\xbd\xef\xbf\xbd \"quoted\".wav");
    EXPECT_EQ (results[0]["input_bytes"], "\\xff\\xfe \"quoted\".wav");
    EXPECT_EQ (results[0]["output_bytes"], "results/\\xff\\xfe \"quoted\".wav");

    // What is UTF-8 is there once; where it is not, a backslash of the name's own is told from an escape.
    writeNoise ("b\\\xc3\xa4.wav");
    writeNoise ("b\\\xe4.wav");
    EXPECT_FALSE (resultsOf ({}, "b\\\xc3\xa4.wav")[0].contains ("input_bytes"));
    EXPECT_EQ (resultsOf ({}, "b\\\xe4.wav")[0]["input_bytes"], "b\\x5c\\xe4.wav");
}

TEST_F (Report, FollowsTheInputsWithALineBetween)
{
    writeNoise ("second.wav", 1, 30000);
    const auto tables = expectSuccess ({ "--report", "speech.wav", "second.wav", "-o", "results" });
    EXPECT_THAT (tables, testing::StartsWith ("speech.wav  4.8 s"));
    EXPECT_THAT (tables, HasSubstr ("\n\nsecond.wav  0.625 s"));
}

TEST_F (Report, DoesNotChangeTheResult)
{
    reportOf ({ "--mode", "Powerful" });
    const auto without = bytesOf (folder / "results/speech.wav");

    for (const std::string option : { "--report", "--json" })
    {
        reportOf ({ "--mode", "Powerful", option });
        EXPECT_EQ (bytesOf (folder / "results/speech.wav"), without);
    }
}

TEST_F (Report, OfAComparisonHasAColumnForEachMode)
{
    const auto table = reportOf ({ "--report", "--compare" });
    const auto results = resultsOf ({ "--compare" });
    const std::array<std::string, 4> modes { "bypass", "Gentle", "Medium", "Powerful" };
    ASSERT_EQ (results.size(), 4U);
    std::string heads;

    std::istringstream headLine (linesOf (table).at (1));

    for (std::string head; headLine >> head;)
        heads += " " + head;

    EXPECT_EQ (heads, " before bypass Gentle Medium Powerful");
    const auto cells = cellsIn (table);

    for (std::size_t mode = 0; mode < modes.size(); ++mode)
    {
        EXPECT_EQ (results[mode]["mode"], modes[mode]);
        EXPECT_EQ (results[mode]["output"], "results/speech-" + modes[mode] + ".wav");

        for (const auto& name : names)
        {
            SCOPED_TRACE (name.row);

            if (name.group.empty())
                expectSame (cells.at (name.row).at (mode + 1), results[mode]["after"][name.key]);
            else
                expectSame (cells.at (name.row).at (mode), mode == 0 ? json() : results[mode]["gains"][name.key]);
        }
    }
}
} // namespace
