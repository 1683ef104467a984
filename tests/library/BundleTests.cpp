// SPDX-License-Identifier: AGPL-3.0-only
// The VST 3 bundle as a folder, and the description in it, which hosts read before they load the library.
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;

TEST (Bundle, HoldsTheseFilesAndNoOthers)
{
    EXPECT_THAT (contentsOf (paths::vst3()),
                 ElementsAre ("Contents",
                              "Contents/Resources",
                              "Contents/Resources/moduleinfo.json",
                              "Contents/x86_64-linux",
                              "Contents/x86_64-linux/Quendal Larkspire.so"));
}

/** The description: JSON but for commas behind the last of a list, which strict readers refuse. */
std::string description()
{
    return bytesOf (paths::vst3() + "/Contents/Resources/moduleinfo.json");
}

/** All texts of a name, in their order. */
std::vector<std::string> described (const std::string& name)
{
    return allFound (description(), "\"" + name + "\": \"([^\"]*)\"");
}

TEST (BundleDescription, NamesTheClassesUnderWhichProjectsAreSaved)
{
    // The processor, its window, and the list of what it stands in for.
    EXPECT_THAT (described ("CID"),
                 ElementsAre ("ABCDEF019182FAEB5175656E546D7771",
                              "ABCDEF011234ABCD5175656E546D7771",
                              "ABCDEF01C0DEF00D5175656E546D7771"));
    EXPECT_THAT (described ("Category"),
                 ElementsAre ("Audio Module Class", "Component Controller Class", "Plugin Compatibility Class"));
    EXPECT_EQ (allFound (description(), "\"Sub Categories\": \\[\\s*\"Fx\",\\s*(\"Dynamics\"),\\s*\\]").size(), 2u);
}

TEST (BundleDescription, NamesThePluginItsMakerAndTheVersionThatHostsAreTold)
{
    // The module once and its three classes.
    EXPECT_EQ (described ("Name"), std::vector<std::string> (4, "Quendal Larkspire"));
    EXPECT_EQ (described ("Vendor"), std::vector<std::string> (4, "Quendal"));
    EXPECT_EQ (described ("Version"), std::vector<std::string> (4, "1.0.0"));
}

TEST (BundleDescription, NamesTheVst2PluginWhoseProjectsOpenWithThisOne)
{
    const auto compatibility = found (description(), "\"Compatibility\": \\[([^\\]]*\\][^\\]]*)\\]");
    EXPECT_EQ (found (compatibility, "\"New\": \"([^\"]*)\""), "ABCDEF019182FAEB5175656E546D7771");

    // "VST", the four letters of the VST 2 plug-in, and the beginning of its name.
    EXPECT_EQ (found (compatibility, "\"Old\": \\[\\s*\"([^\"]*)\",?\\s*\\]"), "565354546d77717175656e64616c206c");
}
} // namespace
