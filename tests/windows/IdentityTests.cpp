// SPDX-License-Identifier: AGPL-3.0-only
// What hosts on Windows read of the libraries first.
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
TEST (WindowsIdentity, OfVst2IsThatOnLinux)
{
    const auto report = WineHost::run ("identity");
    EXPECT_EQ (report["id"], "546d7771");
    EXPECT_EQ (report["version"], "65536");
    EXPECT_EQ (report["flags"], "561");
    EXPECT_EQ (report["programs"], "1");
    EXPECT_EQ (report["parameters"], "1");
    EXPECT_EQ (report["inputs"], "2");
    EXPECT_EQ (report["outputs"], "2");
    EXPECT_EQ (report["delay"], "0");
    EXPECT_EQ (report["effect name"], "Quendal Larkspire");
    EXPECT_EQ (report["product"], "Quendal Larkspire");
    EXPECT_EQ (report["vendor"], "Quendal");
    EXPECT_EQ (report["vendor version"], "65536");
    EXPECT_EQ (report["category"], "1");
    EXPECT_EQ (report["parameter"], "Mode");

    const char* texts[] = { "bypass", "Gentle", "Medium", "Powerful", "" };

    for (int i = 0; i < 5; ++i)
        EXPECT_EQ (report["position " + std::to_string (i)], texts[i]) << i;
}

TEST (WindowsIdentity, OfVst3IsThatOnLinux)
{
    const auto report = WineHost::run ("identity", {}, Format::vst3);
    EXPECT_EQ (report["maker"], "Quendal");
    EXPECT_THAT (report.all ("class"),
                 testing::ElementsAre ("ABCDEF019182FAEB5175656E546D7771 Audio Module Class",
                                       "ABCDEF011234ABCD5175656E546D7771 Component Controller Class",
                                       "ABCDEF01C0DEF00D5175656E546D7771 Plugin Compatibility Class"));
    EXPECT_EQ (report["named"], "Quendal Larkspire by Quendal, 1.0.0, Fx|Dynamics");
    EXPECT_EQ (report["controller"], "ABCDEF011234ABCD5175656E546D7771");
    EXPECT_EQ (report["inputs"], "1");
    EXPECT_EQ (report["channels of inputs"], "2");
    EXPECT_EQ (report["outputs"], "1");
    EXPECT_EQ (report["channels of outputs"], "2");
    EXPECT_EQ (report["program lists"], "0");
    EXPECT_EQ (report["delay"], "0");
    EXPECT_THAT (report.all ("parameter"),
                 testing::ElementsAre ("Mode, 9 steps, 0.222222, flags 1", "Bypass, 1 steps, 0.000000, flags 65537"));

    const char* texts[] = { "bypass",   "Gentle",   "Medium",   "Powerful", "unused 5",
                            "unused 6", "unused 7", "unused 8", "unused 9", "unused 10" };

    for (int i = 0; i < 10; ++i)
        EXPECT_EQ (report["position " + std::to_string (i)], texts[i]) << i;
}

TEST (WindowsIdentity, OfVst3TakesThePlaceOfVst2)
{
    const auto report = WineHost::run ("identity", {}, Format::vst3);
    EXPECT_THAT (report["compatibility"], testing::HasSubstr ("\"New\":\"ABCDEF019182FAEB5175656E546D7771\""));
    EXPECT_THAT (report["compatibility"], testing::HasSubstr ("\"565354546d77717175656e64616c206c\""));
    EXPECT_EQ (report["parameter 0 of VST 2"], "Mode");
}
} // namespace
