// SPDX-License-Identifier: AGPL-3.0-only
// What the demo is made with.
#include "support/Child.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
TEST (Demo, NamesThePackageIfTheRecordingsAreMissing)
{
    const TemporaryFolder folder;
    const auto outcome =
        run (Call { .arguments = {},
                    .program = paths::source ("scripts/demo"),
                    .environment = { { "LARKSPIRE_RECORDINGS", folder / "none" },
                                     { "LARKSPIRE_DIST", std::filesystem::path (paths::renderer()).parent_path() } } });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("alsa-utils"));
}
} // namespace
