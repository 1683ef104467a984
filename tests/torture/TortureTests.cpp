// SPDX-License-Identifier: AGPL-3.0-only
// The torture must be able to find something, and to find it again.
#include "support/Child.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{
Outcome torture (std::vector<std::string> arguments)
{
    return run (Call { .arguments = std::move (arguments), .program = paths::torture() });
}

/** The line that begins so, or an empty text. */
std::string lineOf (const Outcome& outcome, const std::string& start)
{
    for (const auto& line : linesOf (outcome.output))
        if (line.starts_with (start))
            return line;

    return {};
}

class Torture : public testing::TestWithParam<std::tuple<std::string, int>>
{
};

TEST_P (Torture, FindsNothing)
{
    const auto [format, seed] = GetParam();
    const auto outcome = torture ({ "--format", format, "--seed", std::to_string (seed), "--operations", "300000" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.output << outcome.errors;
}

INSTANTIATE_TEST_SUITE_P (ByInterfaceFromSeed,
                          Torture,
                          testing::Combine (testing::Values (std::string ("vst2"), std::string ("vst3")),
                                            testing::Range (1, 4)));

TEST (TortureProgram, DoesTheSameAgainFromTheSameSeed)
{
    const auto first = torture ({ "--without-windows", "--seed", "11", "--operations", "5000" });
    const auto second = torture ({ "--without-windows", "--seed", "11", "--operations", "5000" });
    const auto other = torture ({ "--without-windows", "--seed", "12", "--operations", "5000" });
    EXPECT_EQ (first.exitStatus, 0) << first.output;
    EXPECT_NE (lineOf (first, "torture: sound hash"), "");
    EXPECT_EQ (lineOf (first, "torture: sound hash"), lineOf (second, "torture: sound hash"));
    EXPECT_NE (lineOf (first, "torture: sound hash"), lineOf (other, "torture: sound hash"));
}

TEST (TortureProgram, FindsOutALibraryThatIsAnother)
{
    const auto outcome =
        torture ({ "--without-windows", "--seed", "3", "--operations", "5000", "--library", paths::standIn() });
    EXPECT_EQ (outcome.exitStatus, 1) << outcome.output;
    EXPECT_NE (outcome.output.find ("torture: seed 3\n"), std::string::npos);
    EXPECT_NE (outcome.errors.find ("expected"), std::string::npos) << outcome.errors;
}

TEST (TortureProgram, NamesTheSeedOfWhateverItDoes)
{
    const auto first = torture ({ "--without-windows", "--operations", "10" });
    const auto second = torture ({ "--without-windows", "--operations", "10" });
    EXPECT_EQ (first.exitStatus, 0);
    EXPECT_NE (lineOf (first, "torture: seed "), "");
    EXPECT_NE (lineOf (first, "torture: seed "), lineOf (second, "torture: seed ")) << "chance decides";
}

TEST (TortureProgram, WantsToKnowHowLong)
{
    EXPECT_EQ (torture ({ "--without-windows" }).exitStatus, 2);
    EXPECT_EQ (torture ({ "--without-windows", "--operations", "10", "--seconds", "1" }).exitStatus, 2);
    EXPECT_EQ (torture ({ "--without-windows", "--operations", "0" }).exitStatus, 2);
    EXPECT_EQ (torture ({ "--without-windows", "--library", "/nowhere.so", "--operations", "10" }).exitStatus, 1);
}
} // namespace
