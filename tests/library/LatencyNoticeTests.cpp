// SPDX-License-Identifier: AGPL-3.0-only
// That a changed latency reaches a host, seen on a plug-in whose oversampling factor is a parameter.
#include "support/Paths.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace
{
using namespace std::chrono_literals;

void setFactor (const RawHost& host, int factor)
{
    host.effect().setParameter (&host.effect(), 1, static_cast<float> (factor - 1) / 15.0f);
}

void processSilence (const RawHost& host)
{
    std::vector<float> left (512, 0.0f);
    std::vector<float> right (512, 0.0f);
    host.process (left, right, 0, left.size());
}

/** How often the plug-in has said, since the last call of this, that its latency changed. The notices come on another
    thread: waits until there is one, or until the time is over. */
long takeNotices (RawHost& host, std::chrono::milliseconds longest)
{
    const auto end = std::chrono::steady_clock::now() + longest;
    long notices = 0;

    do
    {
        notices += std::ranges::count (host.takeCalls(), Vst2::audioMasterIOChanged, &RawHost::Call::opcode);
        std::this_thread::sleep_for (5ms);
    } while (notices == 0 && std::chrono::steady_clock::now() < end);

    return notices;
}

TEST (LatencyNotice, ReachesTheHostAfterTheBlockThatFindsAnotherFactorAndOnlyThen)
{
    RawHost host (paths::latencyPlugin());
    host.start (48000.0f);
    processSilence (host);
    setFactor (host, 8);
    EXPECT_EQ (takeNotices (host, 300ms), 0) << "the factor is read at the head of a block";
    EXPECT_EQ (host.effect().initialDelay, 0);

    processSilence (host);
    EXPECT_GT (host.effect().initialDelay, 0) << "the effect record has it at once";
    EXPECT_EQ (takeNotices (host, 5s), 1);

    processSilence (host);
    EXPECT_EQ (takeNotices (host, 300ms), 0) << "not again while the factor stays";

    setFactor (host, 1);
    processSilence (host);
    EXPECT_EQ (host.effect().initialDelay, 0);
    EXPECT_EQ (takeNotices (host, 5s), 1);
}
} // namespace
