// SPDX-License-Identifier: AGPL-3.0-only
// The editor of the Windows libraries under Wine.
#include "support/Panel.h"
#include "window/Picture.h"
#include "windows/WineHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace
{
using larkspire::window::Picture;

/** A picture in the PPM format as the host writes it. */
Picture readPpm (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);
    std::string magic;
    int depth = 0;
    Picture picture;
    file >> magic >> picture.width >> picture.height >> depth;
    file.get();
    picture.pixels.resize (static_cast<std::size_t> (picture.width) * static_cast<std::size_t> (picture.height));
    file.read (reinterpret_cast<char*> (picture.pixels.data()),
               static_cast<std::streamsize> (picture.pixels.size() * 3));
    EXPECT_TRUE (file.good() && magic == "P6");
    return picture;
}

/** Reads a picture of the host's and leaves it for people too. */
Picture pictureOf (const std::string& path)
{
    auto picture = readPpm (path);
    larkspire::window::writePng (picture, std::filesystem::path (path).replace_extension (".png"));
    return picture;
}

std::string picturePath (const std::string& name)
{
    std::filesystem::create_directories (LARKSPIRE_WINDOWS_PICTURES);
    return LARKSPIRE_WINDOWS_PICTURES "/" + name + ".ppm";
}

/** How many cells of two by two pixels are not of one colour, in the rows of the title. */
int unevenCells (const Picture& picture)
{
    int count = 0;

    for (int y = 10; y < 60; y += 2)
        for (int x = 0; x < picture.width; x += 2)
        {
            const auto corner = picture.at (x, y);
            const bool isEven = picture.at (x + 1, y) == corner && picture.at (x, y + 1) == corner
                                && picture.at (x + 1, y + 1) == corner;
            count += isEven ? 0 : 1;
        }

    return count;
}

class WindowsEditor : public testing::TestWithParam<Format>
{
};

INSTANTIATE_TEST_SUITE_P (Of, WindowsEditor, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

TEST_P (WindowsEditor, OpensIsDraggedFollowsAndClosesTenTimesInARow)
{
    const auto opened = picturePath (std::string ("editor-") + nameOf (GetParam()));
    const auto followed = picturePath (std::string ("followed-") + nameOf (GetParam()));
    const auto report = WineHost::run ("editor", { "10", opened, followed }, GetParam());
    const auto always = [] (const std::string& value) { return std::vector<std::string> (10, value); };

    EXPECT_EQ (report["closed"], "10");
    EXPECT_EQ (report.all ("size"), always ("250 by 250"));
    EXPECT_EQ (report.all ("followed to the default"), always ("2"));
    EXPECT_EQ (report.all ("dragged up"), always ("0.333333"));
    EXPECT_EQ (report.all ("dragged down"), always ("0.000000"));
    EXPECT_EQ (report.all ("followed to Powerful"), always ("3"));
    EXPECT_EQ (report.all ("edits by the host"), always (""));

    // One position up, three down. Hosts of VST 3 take values only within an edit; those of VST 2 record single ones.
    const bool isVst3 = GetParam() == Format::vst3;
    EXPECT_EQ (report.all ("edits up"), always (isVst3 ? "begin value end" : "value"));
    EXPECT_EQ (report.all ("edits down"), always (isVst3 ? "begin value value value end" : "value value value"));

    const auto picture = pictureOf (opened);
    EXPECT_EQ (picture.at (2, 2), (larkspire::window::Colour { 0, 0, 0 }));
    EXPECT_EQ (picture.at (2, 245), (larkspire::window::Colour { 0x30, 0x30, 0x30 }));
    expectAllTexts (picture);
    EXPECT_EQ (shownPosition (picture), 2);
    EXPECT_EQ (shownPosition (pictureOf (followed)), 3);
}

TEST (WindowsScale, DrawsTheWindowTwiceTheSizeAndSharp)
{
    const auto twice = picturePath ("scaled");
    const auto once = picturePath ("scaled-back");
    const auto report = WineHost::run ("scale", { twice, once }, Format::vst3);
    EXPECT_EQ (report["size"], "250 by 250");
    EXPECT_EQ (report["size it asks for"], "500 by 500");
    EXPECT_EQ (report["followed at twice the size"], "0");
    EXPECT_EQ (report["dragged up"], "0.111111") << "the mouse goes twice as far too";
    EXPECT_EQ (report["size it goes back to"], "250 by 250");

    const auto large = pictureOf (twice);
    ASSERT_EQ (large.width, 500);
    EXPECT_EQ (large.at (4, 4), (larkspire::window::Colour { 0, 0, 0 }));
    EXPECT_EQ (large.at (4, 490), (larkspire::window::Colour { 0x30, 0x30, 0x30 }));
    expectAllTexts (large, 2);
    EXPECT_EQ (shownPosition (large, 2), 1);
    EXPECT_GT (unevenCells (large), 300) << "doubled pixels have none";

    const auto small = pictureOf (once);
    ASSERT_EQ (small.width, 250);
    expectAllTexts (small);
    EXPECT_EQ (shownPosition (small), 1);
}
} // namespace
