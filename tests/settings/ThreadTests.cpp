// SPDX-License-Identifier: AGPL-3.0-only
// Hosts save and restore from a thread of their own while audio runs.
#include "settings/StateBlock.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{
using namespace state_block;

/** Processes blocks on a thread of its own from construction to stop(). */
class RunningAudio
{
public:
    explicit RunningAudio (OpenProcessor& audioProcessor) : processor (audioProcessor), thread ([this] { run(); }) {}
    ~RunningAudio() { stop(); }

    RunningAudio (const RunningAudio&) = delete;
    RunningAudio& operator= (const RunningAudio&) = delete;

    void stop()
    {
        stopping = true;

        if (thread.joinable())
            thread.join();
    }

    long blocks() const { return count; }
    bool wasInOrder() const { return inOrder; }

private:
    void run()
    {
        while (! stopping)
        {
            std::vector<float> left (64, 0.25f);
            std::vector<float> right (64, -0.25f);
            processor.run (left, right);

            for (const float sample : left)
                if (! (std::abs (sample) <= 1.0f))
                    inOrder = false;

            ++count;
        }
    }

    OpenProcessor& processor;
    std::atomic<bool> stopping { false };
    std::atomic<bool> inOrder { true };
    std::atomic<long> count { 0 };
    std::thread thread; // last, so that all else stands when it starts
};

TEST (Threads, LoseNothingInTenThousandSavesAndRestoresBesideAudio)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    RunningAudio audio (processor);

    for (int turn = 0; turn < 10000; ++turn)
    {
        const auto position = turn % 4;
        const auto value = std::vector { "0.0000", "0.1111", "0.2222", "0.3333" }[static_cast<std::size_t> (position)];
        const auto number = std::to_string (turn);

        restore (processor, blockWith ("mode=\"" + std::string (value) + "\" turn=\"" + number + "\""));
        const auto block = save (processor);
        ASSERT_EQ (valueOf (block, "mode"), value);
        ASSERT_EQ (valueOf (block, "turn"), number);
        ASSERT_EQ (attributesOf (block).size(), 8u);
    }

    // The last request is honoured by the blocks that follow it.
    const auto done = audio.blocks();

    while (audio.blocks() < done + 2)
        std::this_thread::yield();

    audio.stop();
    EXPECT_TRUE (audio.wasInOrder());
    EXPECT_EQ (processor.modeIndex, 9999 % 4);
    EXPECT_FALSE (processor.settingsDue);
}
} // namespace
