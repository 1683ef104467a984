// SPDX-License-Identifier: AGPL-3.0-only
// Hosts save and restore from a thread of their own while audio runs.
#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <thread>

namespace
{
using namespace state_block;

TEST (Threads, LoseNothingInTenThousandSavesAndRestoresBesideAudio)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    std::atomic<bool> inOrder { true };
    std::atomic<long> blocks { 0 };

    std::jthread audio (
        [&] (const std::stop_token& stop)
        {
            for (; ! stop.stop_requested(); ++blocks)
            {
                std::vector<float> left (64, 0.25f);
                std::vector<float> right (64, -0.25f);
                processor.run (left, right);

                if (! std::ranges::all_of (left, [] (float sample) { return std::abs (sample) <= 1.0f; }))
                    inOrder = false;
            }
        });

    for (int turn = 0; turn < 10000; ++turn)
    {
        const std::string value =
            std::array { "0.0000", "0.1111", "0.2222", "0.3333" }.at (static_cast<std::size_t> (turn % 4));
        const auto number = std::to_string (turn);

        restore (processor, blockWith ("mode=\"" + value + "\" turn=\"" + number + "\""));
        const auto block = save (processor);
        ASSERT_EQ (valueOf (block, "mode"), value);
        ASSERT_EQ (valueOf (block, "turn"), number);
        ASSERT_EQ (attributesOf (block).size(), 8u);
    }

    // The last request is honoured by the blocks that follow it.
    for (const long done = blocks; blocks < done + 2;)
        std::this_thread::yield();

    audio.request_stop();
    audio.join();
    EXPECT_TRUE (inOrder);
    EXPECT_EQ (processor.modeIndex, 9999 % 4);
    EXPECT_FALSE (processor.settingsDue);
}
} // namespace
