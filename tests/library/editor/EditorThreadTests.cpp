// SPDX-License-Identifier: AGPL-3.0-only
// All threads of a host at once: audio, automation, saving and loading, the window.
#include "library/editor/EditorHost.h"
#include "support/RawHost.h"
#include "support/Repeating.h"
#include "support/RunningAudio.h"
#include "support/StateBlock.h"
#include "window/EditorWindow.h"

#include <chrono>
#include <random>

namespace
{
constexpr auto patience = std::chrono::minutes (4); // less than a test is given

class EditorThreads : public WithDisplay<>
{
};

/** A chunk that sets the parameter to a position and carries an entry. */
std::string document (int position)
{
    return state_block::blockWith ("mode=\"0." + std::to_string (position * 1111) + "\" kept=\"entry\"");
}

void runAllThreads (std::size_t blocks, int lowest, int highest, bool expectBounds)
{
    RawHost host;
    host.start (48000.0f);
    const RunningAudio audio (host);
    std::mt19937 random (7);

    const Repeating automation (
        [&host, lowest, highest, random = std::mt19937 (8)]() mutable
        {
            const auto range = static_cast<unsigned> (highest - lowest + 1);
            host.setParameter (knobPosition (lowest + static_cast<int> (random() % range)));
            host.getParameter();
            host.text (Vst2::effGetParamDisplay);
        });

    const Repeating state (
        [&host, lowest, highest, random = std::mt19937 (9)]() mutable
        {
            const auto range = static_cast<unsigned> (highest - lowest + 1);
            host.setChunk (document (lowest + static_cast<int> (random() % range)));
            EXPECT_NE (host.chunk().find (" kept=\"entry\""), std::string::npos);
        });

    std::size_t openings = 0;
    const auto haveAllDoneTheirPart = [&]
    {
        return audio.blocks() >= blocks && automation.times() > blocks / 100 && state.times() > blocks / 1000
               && openings > 10;
    };

    // A machine may be quick at one of them and slow at another: all go on until each has done its part.
    const auto deadline = std::chrono::steady_clock::now() + patience;

    for (; ! haveAllDoneTheirPart() && std::chrono::steady_clock::now() < deadline; ++openings)
    {
        larkspire::window::EditorWindow window (host);
        window.idle (std::chrono::milliseconds (random() % 20));
    }

    EXPECT_GE (audio.blocks(), blocks);
    EXPECT_GT (automation.times(), blocks / 100);
    EXPECT_GT (state.times(), blocks / 1000);
    EXPECT_GT (openings, 10u);
    EXPECT_TRUE (audio.wasAlwaysFinite());
    EXPECT_TRUE (! expectBounds || audio.wasAlwaysWithinItsBounds());
}

TEST_F (EditorThreads, RunAtOnceForAHundredThousandBlocksInEveryModeButBypass)
{
    runAllThreads (100000, 1, 9, true);
}

TEST_F (EditorThreads, RunAtOnceInEveryModeAndInBypass)
{
    runAllThreads (20000, 0, 9, false);
}
} // namespace
