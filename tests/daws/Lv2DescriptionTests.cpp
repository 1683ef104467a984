// SPDX-License-Identifier: AGPL-3.0-only
// What the LV2 bundle says of itself, under LV2's own validator and as hosts read it.
#include "daws/Lv2Folder.h"
#include "support/FirstMatch.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

/** What the validator says of both files of a bundle; empty if it has read them and found no fault. It skips a file
   that it cannot find, such as one with a blank in its path, stops reading one with a wrong syntax, and still says "0
   errors", and with some errors its exit status is 0. */
std::string faultsOf (const Lv2Folder& folder)
{
    const auto outcome = folder.run ({ "lv2_validate", folder["manifest.ttl"], folder["larkspire.ttl"] });
    const bool isFaultless = outcome.output.starts_with ("Found 0 errors ")
                             && outcome.errors.find ("error") == std::string::npos
                             && outcome.errors.find (folder.path().string()) == std::string::npos;
    return isFaultless ? "" : outcome.output + outcome.errors;
}

TEST (Lv2Validator, FindsNoFault)
{
    EXPECT_EQ (faultsOf (Lv2Folder()), "");
}

TEST (Lv2Validator, ReadsBothFiles)
{
    {
        const Lv2Folder folder;
        std::filesystem::remove (folder["larkspire.ttl"]);
        EXPECT_NE (faultsOf (folder), "");
    }

    struct Fault
    {
        const char* file;
        const char* right;
        const char* wrong;
    };

    for (const auto& [file, right, wrong] : { Fault { "manifest.ttl", "lv2:binary", "lv2:binaries" },
                                              Fault { "manifest.ttl", "a lv2:Plugin ;", "a lv2:Plugin" },
                                              Fault { "larkspire.ttl", "lv2:symbol \"mode\" ;", "" },
                                              Fault { "larkspire.ttl", "doap:Project", "lv2:Project" },
                                              Fault { "larkspire.ttl", "lv2:hardRTCapable", "lv2:hardRT" },
                                              Fault { "larkspire.ttl", "lv2:index 0 ;", "lv2:index 0" } })
    {
        const Lv2Folder folder;
        auto text = bytesOf (folder[file]);
        const auto where = text.find (right);
        ASSERT_NE (where, std::string::npos) << right;
        writeBytes (folder[file], text.replace (where, std::string (right).size(), wrong));
        EXPECT_NE (faultsOf (folder), "") << right;
    }
}

class Lv2Description : public testing::Test
{
protected:
    /** What a program of hosts' own library reads of a plug-in. */
    std::string readOf (const std::string& plugin) const
    {
        const auto outcome = folder.run ({ "lv2info", "urn:quendal:larkspire:" + plugin });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (outcome.errors, "");
        return outcome.output;
    }

    Lv2Folder folder;
};

TEST_F (Lv2Description, NamesTwoPlugins)
{
    EXPECT_THAT (linesOf (folder.run ({ "lv2ls", "--names" }).output),
                 UnorderedElementsAre ("Quendal Larkspire", "Quendal Larkspire (mono)"));

    for (const std::string plugin : { "stereo", "mono" })
    {
        const auto report = readOf (plugin);
        EXPECT_THAT (report, HasSubstr ("\tClass:             Dynamics Plugin\n"));
        EXPECT_THAT (report, HasSubstr ("\tAuthor:            Quendal\n"));
        EXPECT_THAT (report, HasSubstr ("\tHas latency:       no\n"));
        EXPECT_THAT (report, HasSubstr ("\tOptional Features: http://lv2plug.in/ns/lv2core#hardRTCapable\n"));
        EXPECT_THAT (report, Not (HasSubstr ("Required Features")));
        EXPECT_THAT (report, Not (HasSubstr ("inPlaceBroken")));
        EXPECT_THAT (report, Not (HasSubstr ("Extension")));
    }
}

TEST_F (Lv2Description, HasThePortsOfStereoInGroups)
{
    const auto report = readOf ("stereo");
    const std::string left = "http://lv2plug.in/ns/ext/port-groups#left";
    const std::string right = "http://lv2plug.in/ns/ext/port-groups#right";
    const std::string input = "urn:quendal:larkspire:stereo:input";
    const std::string output = "urn:quendal:larkspire:stereo:output";
    EXPECT_THAT (allFound (report, "\tSymbol: +(.*)"),
                 ElementsAre ("in_left", "in_right", "out_left", "out_right", "mode"));
    EXPECT_THAT (allFound (report, "\tName: +(.*)"),
                 ElementsAre ("Quendal Larkspire", "Left In", "Right In", "Left Out", "Right Out", "Mode"));
    EXPECT_THAT (
        allFound (report, "lv2core#(.*)Port\n"),
        ElementsAre ("Audio", "Input", "Audio", "Input", "Audio", "Output", "Audio", "Output", "Control", "Input"));
    EXPECT_THAT (allFound (report, "\tGroup: +(.*)"), ElementsAre (input, input, output, output));
    EXPECT_THAT (allFound (report, "\tDesignation: +(.*)"), ElementsAre (left, right, left, right));
}

TEST_F (Lv2Description, HasThePortsOfMono)
{
    const auto report = readOf ("mono");
    EXPECT_THAT (allFound (report, "\tSymbol: +(.*)"), ElementsAre ("in", "out", "mode"));
    EXPECT_THAT (allFound (report, "\tName: +(.*)"), ElementsAre ("Quendal Larkspire (mono)", "In", "Out", "Mode"));
    EXPECT_THAT (allFound (report, "lv2core#(.*)Port\n"),
                 ElementsAre ("Audio", "Input", "Audio", "Output", "Control", "Input"));
    EXPECT_THAT (allFound (report, "\tGroup: +(.*)"), ElementsAre());
}

TEST_F (Lv2Description, OffersTheFourModesAsAList)
{
    for (const std::string plugin : { "stereo", "mono" })
    {
        const auto report = readOf (plugin);
        EXPECT_THAT (allFound (report, "\t([0-9.]+ = .*)"),
                     UnorderedElementsAre ("0 = \"bypass\"", "1 = \"Gentle\"", "2 = \"Medium\"", "3 = \"Powerful\""));
        EXPECT_THAT (allFound (report, "\tMinimum: +(.*)"), ElementsAre ("0.000000"));
        EXPECT_THAT (allFound (report, "\tMaximum: +(.*)"), ElementsAre ("3.000000"));
        EXPECT_THAT (allFound (report, "\tDefault: +(.*)"), ElementsAre ("2.000000"));
        EXPECT_THAT (report, HasSubstr ("lv2core#enumeration\n"));
        EXPECT_THAT (report, HasSubstr ("lv2core#integer\n"));
    }
}
} // namespace
