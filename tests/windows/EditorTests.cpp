// SPDX-License-Identifier: AGPL-3.0-only
// The editor of the Windows library under Wine.
#include "support/Panel.h"
#include "window/Picture.h"
#include "window/VirtualDisplay.h"
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

TEST (WindowsEditor, OpensIsDraggedAndClosesTenTimesInARow)
{
    const larkspire::window::VirtualDisplay display;
    std::filesystem::create_directories (LARKSPIRE_WINDOWS_PICTURES);
    const std::string picturePath = LARKSPIRE_WINDOWS_PICTURES "/editor.ppm";
    const auto report = WineHost::run ("editor", { "10", picturePath });

    EXPECT_EQ (report["closed"], "10");
    EXPECT_EQ (report.all ("followed after").size(), 10u);

    for (const auto& time : report.all ("followed after"))
        EXPECT_LT (std::stoi (time), 10000) << "the knob has followed the parameter on the screen";

    EXPECT_EQ (report.all ("size"), std::vector<std::string> (10, "250 by 250"));
    EXPECT_EQ (report.all ("dragged up"), std::vector<std::string> (10, "0.333333"));
    EXPECT_EQ (report.all ("dragged down"), std::vector<std::string> (10, "0.000000"));
    EXPECT_EQ (report.all ("told"), std::vector<std::string> (10, "4")) << "one position up, three down";
    EXPECT_EQ (report["gestures"], "0");

    const auto picture = readPpm (picturePath);
    larkspire::window::writePng (picture, LARKSPIRE_WINDOWS_PICTURES "/editor.png");
    EXPECT_EQ (picture.at (2, 2), (larkspire::window::Colour { 0, 0, 0 }));
    EXPECT_EQ (picture.at (2, 245), (larkspire::window::Colour { 0x30, 0x30, 0x30 }));
    expectAllTexts (picture);
    EXPECT_EQ (shownPosition (picture), 2);
}
} // namespace
