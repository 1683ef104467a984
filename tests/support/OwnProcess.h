// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>

/** Does something in a process of its own, and expects that what it expects holds and that it ends by itself. The
    process starts the test program anew and comes to this test alone. */
inline void expectInItsOwnProcess (const std::function<void()>& act)
{
    const auto actAndExit = [&]
    {
        act();
        const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();

        for (int i = 0; i < result.total_part_count(); ++i)
            if (const auto& part = result.GetTestPartResult (i); part.failed())
                std::cerr << part.file_name() << ":" << part.line_number() << ": " << part.message() << "\n";

        std::exit (result.Failed() ? 1 : 0); // NOLINT(concurrency-mt-unsafe)
    };

    GTEST_FLAG_SET (death_test_style, "threadsafe");
    EXPECT_EXIT (actAndExit(), testing::ExitedWithCode (0), "");
}
