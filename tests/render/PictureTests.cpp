// SPDX-License-Identifier: AGPL-3.0-only
// The pictures of --plot, looked at pixel by pixel where the scales say what must be there.
#include "plot/Axes.h"
#include "reference/Modes.h"
#include "render/RendererTest.h"
#include "support/Paths.h"
#include "support/TestTone.h"
#include "window/Picture.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace
{
using larkspire::plot::Rows;
using larkspire::window::Colour;
using larkspire::window::Picture;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
namespace plot = larkspire::plot;

// As the legend of every picture has them.
constexpr Colour before { 0x56, 0x78, 0x9a };
constexpr Colour after { 0xd5, 0x5e, 0x00 };
constexpr Colour expander { 0x00, 0x7d, 0x5c };
constexpr Colour leveller { 0x8c, 0x3b, 0x78 };
constexpr Colour paper { 0xff, 0xff, 0xff };

/** Rows of a panel, within its frame, in which a column has a colour. */
std::vector<int> rowsWith (const Picture& picture, Rows panel, int column, Colour colour)
{
    std::vector<int> rows;

    for (int row = panel.top + 1; row < panel.bottom; ++row)
        if (picture.at (column, row) == colour)
            rows.push_back (row);

    return rows;
}

plot::Axis upright (double lowest, double highest, Rows rows)
{
    return { .first = lowest, .last = highest, .firstPixel = double (rows.bottom), .lastPixel = double (rows.top) };
}

int columnAt (double seconds, double secondsInAll)
{
    return static_cast<int> (plot::leftColumn + (plot::rightColumn - plot::leftColumn) * seconds / secondsInAll);
}

/** Expects a line through a place: its colour there, and nowhere in the column far from there. */
void expectLine (const Picture& picture, Rows panel, int column, double row, Colour colour)
{
    const auto rows = rowsWith (picture, panel, column, colour);
    ASSERT_FALSE (rows.empty()) << "column " << column;
    EXPECT_NEAR (rows.front(), row, 2.0) << "column " << column;
    EXPECT_NEAR (rows.back(), row, 2.0) << "column " << column;
}

class Drawing : public RendererTest
{
protected:
    /** Draws a sound in floats. */
    Picture pictureOf (const std::vector<float>& sound,
                       int channels,
                       std::vector<std::string> further = {},
                       int sampleRate = 48000)
    {
        writeFloats (folder / "sound.wav", wavFloat, channels, sound, sampleRate);
        further.insert (further.end(), { "--plot", "sound.png", "sound.wav", "-o", "result.wav" });
        EXPECT_EQ (expectSuccess (further), "");
        return larkspire::window::readPng (folder / "sound.png");
    }
};

TEST_F (Drawing, HasItsSizeAndWhitePaper)
{
    const auto picture = pictureOf (toFloats (makeNoise (1, 20000, 16)), 1);
    EXPECT_EQ (picture.width, plot::pictureWidth);
    EXPECT_EQ (picture.height, plot::pictureHeight);
    EXPECT_EQ (picture.at (2, 2), (Colour { 255, 255, 255 }));
    EXPECT_EQ (picture.at (plot::pictureWidth - 3, plot::pictureHeight - 3), (Colour { 255, 255, 255 }));
}

TEST_F (Drawing, OfSilenceHasFlatLines)
{
    constexpr double seconds = 10.0;
    const auto picture = pictureOf (std::vector<float> (480000), 1);

    for (const auto& [panel, colour] : { std::pair { plot::beforeRows, before }, { plot::afterRows, after } })
        for (int column = plot::leftColumn + 1; column < plot::rightColumn; ++column)
            ASSERT_EQ (rowsWith (picture, panel, column, colour), std::vector<int> { (panel.top + panel.bottom) / 2 })
                << column;

    // Neither side has a loudness; the gains go where silence takes them.
    const auto gain = upright (-20.0, 2.0, plot::gainRows);
    const auto& medium = reference::modeAt (2);
    const auto floor =
        20.0 * std::log10 (0.2 * double (medium.expander.gainScale) + double (medium.expander.gainOffset));

    for (const double time : { 1.0, 5.0, 9.0 })
    {
        const auto column = columnAt (time, seconds);
        EXPECT_TRUE (rowsWith (picture, plot::loudnessRows, column, before).empty());
        EXPECT_TRUE (rowsWith (picture, plot::loudnessRows, column, after).empty());
        expectLine (picture, plot::gainRows, column, gain.pixelOf (floor), expander);
        const auto running = 1.0 - 0.5 * std::pow (1.0 - double (medium.leveller.releaseRate), 48000.0 * time);
        expectLine (picture, plot::gainRows, column, gain.pixelOf (20.0 * std::log10 (running)), leveller);
    }
}

TEST_F (Drawing, ShowsTheHeightOfTheWaveformOverTime)
{
    // Two seconds at 0.4 of full scale and two at 0.2, upwards only.
    std::vector<float> sound (192000);

    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = i % 2 == 0 ? 0.0f : (i < sound.size() / 2 ? 0.4f : 0.2f);

    const auto picture = pictureOf (sound, 1, { "--mode", "bypass", "--bits", "32f" });
    const auto axis = upright (-0.5, 0.5, plot::beforeRows);

    for (const auto& [time, height] : { std::pair { 1.0, 0.4 }, { 1.9, 0.4 }, { 2.1, 0.2 }, { 3.0, 0.2 } })
    {
        const auto rows = rowsWith (picture, plot::beforeRows, columnAt (time, 4.0), before);
        ASSERT_FALSE (rows.empty());
        EXPECT_NEAR (rows.front(), axis.pixelOf (height), 1.5) << time;
        EXPECT_NEAR (rows.back(), axis.pixelOf (0.0), 1.5) << time;
        const auto offset = plot::afterRows.top - plot::beforeRows.top;
        EXPECT_EQ (rowsWith (picture, plot::afterRows, columnAt (time, 4.0), after).front(), rows.front() + offset);
    }
}

TEST_F (Drawing, ShowsTheChannelsInOneWaveform)
{
    std::vector<float> sound (96000);

    for (std::size_t frame = 0; frame < 48000; ++frame)
    {
        sound[2 * frame] = 0.8f;
        sound[2 * frame + 1] = -0.3f;
    }

    const auto picture = pictureOf (sound, 2, { "--mode", "bypass", "--bits", "32f" });
    const auto axis = upright (-1.0, 1.0, plot::beforeRows);
    const auto rows = rowsWith (picture, plot::beforeRows, columnAt (0.5, 1.0), before);
    ASSERT_FALSE (rows.empty());
    EXPECT_NEAR (rows.front(), axis.pixelOf (0.8), 1.5);
    EXPECT_NEAR (rows.back(), axis.pixelOf (-0.3), 1.5);
}

TEST_F (Drawing, ShowsTheLoudnessOfATone)
{
    const auto picture =
        pictureOf (TestTone { .seconds = 8.0 }.samples(), 2, { "--plugin", paths::standIn(), "--bits", "32f" });
    const auto axis = upright (-60.0, 0.0, plot::loudnessRows);

    for (const double time : { 2.0, 4.0, 6.0 })
    {
        const auto column = columnAt (time, 8.0);
        expectLine (picture, plot::loudnessRows, column, axis.pixelOf (-23.0), before);
        expectLine (picture, plot::loudnessRows, column, axis.pixelOf (-29.02), after); // halved
    }

    // A window of 3 s fits nowhere ahead of its own middle.
    EXPECT_TRUE (rowsWith (picture, plot::loudnessRows, columnAt (1.3, 8.0), before).empty());
    EXPECT_TRUE (rowsWith (picture, plot::loudnessRows, columnAt (6.7, 8.0), before).empty());
}

TEST_F (Drawing, OfALongSoundHasTheRmsWithinPalePeaks)
{
    // 0.2 up and down, and every fiftieth sample at 0.8.
    constexpr double seconds = 150.0;
    constexpr int rate = 8000;
    std::vector<float> sound (static_cast<std::size_t> (seconds * rate));

    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = (i % 2 == 0 ? 1.0f : -1.0f) * (i % 100 == 0 || i % 100 == 51 ? 0.8f : 0.2f);

    const auto rms = std::sqrt (0.02 * 0.64 + 0.98 * 0.04);
    const auto picture = pictureOf (sound, 1, { "--mode", "bypass", "--bits", "32f" }, rate);
    const auto axis = upright (-1.0, 1.0, plot::beforeRows);

    for (const double time : { 1.0, 44.0, 149.0 })
    {
        const auto column = columnAt (time, seconds);
        const auto rows = rowsWith (picture, plot::beforeRows, column, before);
        ASSERT_FALSE (rows.empty()) << time;
        EXPECT_NEAR (rows.front(), axis.pixelOf (rms), 2.0) << time;
        EXPECT_NEAR (rows.back(), axis.pixelOf (-rms), 2.0) << time;

        for (const double level : { -0.75, -0.35, 0.35, 0.75 })
        {
            const auto colour = picture.at (column, static_cast<int> (axis.pixelOf (level)));
            EXPECT_NE (colour, paper) << level;
            EXPECT_NE (colour, before) << level;
        }

        EXPECT_EQ (picture.at (column, static_cast<int> (axis.pixelOf (0.85))), paper);
        EXPECT_EQ (picture.at (column, static_cast<int> (axis.pixelOf (-0.85))), paper);
    }
}

TEST_F (Drawing, OfALongSoundHasTheMedianLoudnessInItsSpread)
{
    // Four seconds at -26 LUFS and four at -36 in turn, which the window of 10 s sees all of. The library halves.
    constexpr double seconds = 960.0;
    constexpr int rate = 8000;
    std::vector<std::vector<float>> parts (240);

    for (std::size_t i = 0; i < parts.size(); ++i)
        parts[i] =
            TestTone { .peakDbfs = i % 2 == 0 ? -23.0 : -33.0, .seconds = 4.0, .channels = 1, .sampleRate = rate }
                .samples();

    const auto picture = pictureOf (joined (parts), 1, { "--plugin", paths::standIn(), "--bits", "32f" }, rate);
    const auto axis = upright (-60.0, 0.0, plot::loudnessRows);
    const auto rowAt = [&axis] (double loudness) { return static_cast<int> (axis.pixelOf (loudness)); };

    for (int column = columnAt (20.0, seconds); column < columnAt (940.0, seconds); ++column)
    {
        const auto rows = rowsWith (picture, plot::loudnessRows, column, before);
        EXPECT_TRUE (rows.empty() || (rows.front() > rowAt (-26.0) && rows.back() < rowAt (-35.0))) << column;
        EXPECT_NE (picture.at (column, rowAt (-27.0)), paper) << column;
        EXPECT_NE (picture.at (column, rowAt (-34.0)), paper) << column;
        EXPECT_NE (picture.at (column, rowAt (-38.0)), paper) << column << ", the other side's";
    }

    const auto column = columnAt (500.0, seconds);
    EXPECT_EQ (picture.at (column, rowAt (-24.5)), paper);
    EXPECT_EQ (picture.at (column, rowAt (-44.0)), paper);
}

TEST_F (Drawing, OfALongSilenceHasTheSameGainsAsOfAShortOne)
{
    constexpr double seconds = 130.0;
    const auto picture = pictureOf (std::vector<float> (1040000), 1, {}, 8000);
    const auto gain = upright (-20.0, 2.0, plot::gainRows);
    const auto& medium = reference::modeAt (2);
    const auto floor =
        20.0 * std::log10 (0.2 * double (medium.expander.gainScale) + double (medium.expander.gainOffset));

    for (const double time : { 30.0, 64.0, 128.0 })
    {
        expectLine (picture, plot::gainRows, columnAt (time, seconds), gain.pixelOf (floor), expander);
        expectLine (picture, plot::gainRows, columnAt (time, seconds), gain.pixelOf (0.0), leveller);
    }
}

TEST_F (Drawing, HasNoGainsOfAnotherLibraryOrOfBypass)
{
    for (const std::vector<std::string>& arguments :
         { std::vector<std::string> { "--plugin", paths::standIn() }, { "--mode", "bypass" } })
    {
        const auto picture = pictureOf (toFloats (makeNoise (1, 100000, 16)), 1, arguments);

        for (int column = plot::leftColumn + 1; column < plot::rightColumn; ++column)
        {
            ASSERT_TRUE (rowsWith (picture, plot::gainRows, column, expander).empty()) << column;
            ASSERT_TRUE (rowsWith (picture, plot::gainRows, column, leveller).empty()) << column;
        }
    }
}

TEST_F (Drawing, OfNothingAndOfOneSampleIsAPicture)
{
    EXPECT_EQ (pictureOf ({}, 1).width, plot::pictureWidth);
    EXPECT_EQ (pictureOf ({ 0.5f }, 1).width, plot::pictureWidth);
}

TEST_F (Drawing, HasWordsForTitleAndAxes)
{
    const auto picture = pictureOf (std::vector<float> (48000), 1);

    /** Pixels as dark as letters in a part of the picture. */
    const auto ink = [&picture] (int left, int top, int right, int bottom)
    {
        int count = 0;

        for (int row = top; row < bottom; ++row)
            for (int column = left; column < right; ++column)
                count += picture.at (column, row).green < 0x60 ? 1 : 0;

        return count;
    };

    const auto left = plot::leftColumn;
    EXPECT_GT (ink (left, 15, left + 300, 50), 500) << "title";
    EXPECT_GT (ink (left, plot::beforeRows.top - 26, left + 260, plot::beforeRows.top - 2), 300) << "heading";
    EXPECT_GT (ink (0, plot::loudnessRows.top - 10, left - 4, plot::loudnessRows.bottom + 10), 150) << "numbers";
    EXPECT_GT (ink (left, plot::gainRows.bottom + 4, plot::rightColumn, plot::gainRows.bottom + 28), 50) << "times";
    EXPECT_GT (ink (left, plot::gainRows.bottom + 30, plot::rightColumn, plot::gainRows.bottom + 54), 50) << "unit";
}

TEST_F (Drawing, HasFileAndModeInItsTitle)
{
    std::set<std::string> titles;

    for (const std::string name : { "sound.wav", "another.wav" })
        for (const std::string mode : { "Gentle", "Powerful" })
        {
            writeFloats (folder / name, wavFloat, 1, std::vector<float> (48000));
            expectSuccess ({ "--mode", mode, "--plot", "picture.png", name, "-o", "result.wav" });
            const auto picture = larkspire::window::readPng (folder / "picture.png");
            std::string greens;

            for (int row = 15; row < 50; ++row)
                for (int column = 0; column < picture.width; ++column)
                    greens += static_cast<char> (picture.at (column, row).green);

            titles.insert (greens);
        }

    EXPECT_EQ (titles.size(), 4U);
}

/** Titles of recordings, drawn where fontconfig knows the fonts of one folder. */
class Titles : public Drawing
{
protected:
    /** The pixels of a title. */
    std::string titleOf (const std::string& name, const std::string& fonts) const
    {
        writeBytes (folder / "fonts.conf",
                    "<?xml version='1.0'?><!DOCTYPE fontconfig SYSTEM 'urn:fontconfig:fonts.dtd'><fontconfig><dir>"
                        + fonts + "</dir><cachedir>" + folder / "cache" + "</cachedir></fontconfig>");
        writeFloats (folder / name, wavFloat, 1, std::vector<float> (4800));
        const auto outcome = run (Call { .arguments = { "--plot", "look.png", name, "-o", "result.wav" },
                                         .environment = { { "FONTCONFIG_FILE", folder / "fonts.conf" } },
                                         .folder = folder.path() });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (outcome.errors, "");
        const auto picture = larkspire::window::readPng (folder / "look.png");
        std::string pixels;

        for (int row = 15; row < 50; ++row)
            for (int column = 0; column < picture.width; ++column)
                pixels += static_cast<char> (picture.at (column, row).green);

        return pixels;
    }

    const std::string dejaVu = "/usr/share/fonts/truetype/dejavu"; // smileys, and nothing of East Asia
};

TEST_F (Titles, HaveQuestionMarksWhereNoFontHasTheCharacter)
{
    std::filesystem::create_directory (folder / "empty");
    ASSERT_TRUE (std::filesystem::exists (dejaVu + "/DejaVuSans.ttf"));

    for (const auto& fonts : { folder / "empty", dejaVu })
    {
        EXPECT_EQ (titleOf ("日本語 voice.wav", fonts), titleOf ("??? voice.wav", fonts)) << fonts;
        EXPECT_EQ (titleOf ("\xf0\x9f\x8e\x99\ufe0f\u200d voice.wav", fonts), titleOf ("? voice.wav", fonts)) << fonts;
    }

    EXPECT_EQ (titleOf ("😀.wav", folder / "empty"), titleOf ("?.wav", folder / "empty"));
}

TEST_F (Titles, HaveTheCharactersThatSomeFontHas)
{
    EXPECT_EQ (
        (std::set { titleOf ("😀日.wav", dejaVu), titleOf ("😎日.wav", dejaVu), titleOf ("??.wav", dejaVu) }).size(), 3U);
}

TEST_F (Drawing, IsTheSameEveryTime)
{
    const auto noise = toFloats (makeNoise (2, 100000, 16));
    pictureOf (noise, 2);
    const auto bytes = bytesOf (folder / "sound.png");
    pictureOf (noise, 2, { "--block", "77" });
    EXPECT_EQ (bytesOf (folder / "sound.png"), bytes);
}

/** Expects that a call gives its result and no picture, and says why. */
void expectResultAlone (const TemporaryFolder& folder, const Call& call, const std::string& reason)
{
    const auto outcome = run (call);
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1U) << outcome.errors;
    EXPECT_THAT (outcome.errors, HasSubstr (reason));
    EXPECT_THAT (outcome.output, Not (HasSubstr ("\"picture\"")));
    EXPECT_THAT (outcome.output, HasSubstr (reason));
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "sound.wav"));
    EXPECT_EQ (read (folder / "result.wav"), read (folder / "sound.wav"));
}

TEST_F (Drawing, WithoutAnyFontIsReportedAndLeavesTheResult)
{
    writeNoise ("sound.wav");
    expectResultAlone (
        folder,
        Call { .arguments = { "--json", "--mode", "bypass", "--plot", "sound.png", "sound.wav", "-o", "result.wav" },
               .environment = { { "JUCE_FONT_PATH", folder / "nothing" } },
               .folder = folder.path() },
        "fonts-liberation2");
}

TEST_F (Drawing, ThatTheDiskDoesNotHoldLeavesTheResult)
{
    writeNoise ("sound.wav");
    expectResultAlone (
        folder,
        Call { .arguments = { "--json", "--mode", "bypass", "--plot", "sound.png", "sound.wav", "-o", "result.wav" },
               .folder = folder.path(),
               .largestFile = 5000 },
        "sound.png: cannot be written: File too large");
}

TEST_F (Drawing, ThatHasNoPlaceIsRefusedAheadOfTheWork)
{
    writeNoise ("sound.wav", 1, 20000);
    EXPECT_THAT (expectFailure (1, { "--plot", "missing/sound.png", "sound.wav", "-o", "result.wav" }),
                 HasSubstr ("missing/sound.png: cannot be written"));
}

TEST_F (Drawing, OfAComparisonHasTheModeInItsName)
{
    writeNoise ("sound.wav", 1, 20000);
    expectSuccess ({ "--compare", "--plot", "look.png", "sound.wav", "-o", "results/" });

    for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful" })
        EXPECT_EQ (larkspire::window::readPng (folder / ("look-" + mode + ".png")).height, plot::pictureHeight);
}
} // namespace
