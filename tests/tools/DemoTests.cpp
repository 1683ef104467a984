// SPDX-License-Identifier: AGPL-3.0-only
// What the demo is made with.
#include "Child.h"
#include "Recording.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
Outcome join (const std::vector<std::string>& arguments)
{
    return run (Call { .arguments = arguments, .program = LARKSPIRE_JOIN_PATH });
}

TEST (Join, PutsHalfASecondOfSilenceBetweenRecordings)
{
    const TemporaryFolder folder;
    const auto one = makeNoise (1, 1000, 16, 1, 8000);
    const auto two = makeNoise (1, 2000, 16, 2, 8000);
    write (folder / "one.wav", wav16, one);
    write (folder / "two.wav", wav16, two);
    const auto outcome = join ({ folder / "one.wav", folder / "two.wav", folder / "both.wav" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;

    auto expected = one;
    expected.samples.insert (expected.samples.end(), 4000, 0);
    expected.samples.insert (expected.samples.end(), two.samples.begin(), two.samples.end());
    EXPECT_EQ (read (folder / "both.wav"), expected);
}

TEST (Join, RefusesRecordingsThatDiffer)
{
    const TemporaryFolder folder;
    write (folder / "one.wav", wav16, makeNoise (1, 100, 16, 1, 8000));
    write (folder / "rate.wav", wav16, makeNoise (1, 100, 16, 1, 48000));
    write (folder / "stereo.wav", wav16, makeNoise (2, 100, 16, 1, 8000));
    EXPECT_EQ (join ({ folder / "one.wav", folder / "rate.wav", folder / "both.wav" }).exitStatus, 1);
    EXPECT_EQ (join ({ folder / "one.wav", folder / "stereo.wav", folder / "both.wav" }).exitStatus, 1);
    EXPECT_EQ (join ({ folder / "one.wav", folder / "missing.wav", folder / "both.wav" }).exitStatus, 1);
    EXPECT_EQ (join ({ folder / "one.wav" }).exitStatus, 2);
}

TEST (Demo, NamesThePackageIfTheRecordingsAreMissing)
{
    const TemporaryFolder folder;
    const auto outcome = run (Call { .arguments = {},
                                     .program = LARKSPIRE_DEMO_PATH,
                                     .environment = { { "LARKSPIRE_RECORDINGS", folder / "none" },
                                                      { "LARKSPIRE_BUILD", LARKSPIRE_BUILD_PATH },
                                                      { "LARKSPIRE_DIST", LARKSPIRE_DIST_PATH } } });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("alsa-utils"));
}
} // namespace
