// SPDX-License-Identifier: AGPL-3.0-only
// The torture must be able to find something, and to find it again.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace
{
struct Outcome
{
    int status = -1;
    std::string output; // of both kinds

    /** The line that begins so, or an empty text. */
    std::string line (const std::string& start) const
    {
        const auto position = output.find (start);
        return position == std::string::npos ? std::string()
                                             : output.substr (position, output.find ('\n', position) - position);
    }
};

Outcome torture (const std::string& arguments)
{
    Outcome outcome;
    const std::string command = "'" LARKSPIRE_TORTURE_PATH "' --without-windows " + arguments + " 2>&1";

    if (FILE* pipe = popen (command.c_str(), "r"))
    {
        std::array<char, 4096> part {};

        while (const auto count = std::fread (part.data(), 1, part.size(), pipe))
            outcome.output.append (part.data(), count);

        outcome.status = WEXITSTATUS (pclose (pipe));
    }

    return outcome;
}

TEST (Torture, DoesTheSameAgainFromTheSameSeed)
{
    const auto first = torture ("--seed 11 --operations 5000");
    const auto second = torture ("--seed 11 --operations 5000");
    const auto other = torture ("--seed 12 --operations 5000");
    EXPECT_EQ (first.status, 0) << first.output;
    EXPECT_NE (first.line ("torture: sound hash"), "");
    EXPECT_EQ (first.line ("torture: sound hash"), second.line ("torture: sound hash"));
    EXPECT_NE (first.line ("torture: sound hash"), other.line ("torture: sound hash"));
}

TEST (Torture, FindsOutALibraryThatIsAnother)
{
    const auto outcome = torture ("--seed 3 --operations 5000 --library '" LARKSPIRE_STAND_IN_PATH "'");
    EXPECT_EQ (outcome.status, 1) << outcome.output;
    EXPECT_NE (outcome.output.find ("torture: seed 3\n"), std::string::npos);
    EXPECT_NE (outcome.output.find ("expected"), std::string::npos) << outcome.output;
}

TEST (Torture, NamesTheSeedOfWhateverItDoes)
{
    const auto first = torture ("--operations 10");
    const auto second = torture ("--operations 10");
    EXPECT_EQ (first.status, 0);
    EXPECT_NE (first.line ("torture: seed "), "");
    EXPECT_NE (first.line ("torture: seed "), second.line ("torture: seed ")) << "chance decides";
}

TEST (Torture, WantsToKnowHowLong)
{
    EXPECT_EQ (torture ("").status, 2);
    EXPECT_EQ (torture ("--operations 10 --seconds 1").status, 2);
    EXPECT_EQ (torture ("--operations 0").status, 2);
    EXPECT_EQ (torture ("--library /nowhere.so --operations 10").status, 1);
}
} // namespace
