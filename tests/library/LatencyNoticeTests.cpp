// SPDX-License-Identifier: AGPL-3.0-only
// How a changed latency reaches a host, seen on a plug-in whose oversampling factor is a parameter.
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

/** A host of the plug-in with a factor. Its mode is "bypass", so that nothing but the oversampler is heard. The notices
    come on another thread, while this one waits for them. */
class LatencyHost
{
public:
    LatencyHost()
    {
        host.setParameter (0.0f);
        host.start (48000.0f);
        processSilence();
    }

    void suspend() const { host.suspend(); }
    void resume() const { host.resume(); }

    void setFactor (int factor) const
    {
        host.effect().setParameter (&host.effect(), 1, static_cast<float> (factor - 1) / 15.0f);
    }

    int initialDelay() const { return host.effect().initialDelay; }

    void processSilence() const
    {
        std::vector<float> left (512, 0.0f);
        std::vector<float> right (512, 0.0f);
        host.process (left, right, 0, left.size());
    }

    /** Where the largest sample of what comes out for an impulse stands. */
    long measuredDelay() const
    {
        std::vector<float> left (4096, 0.0f);
        std::vector<float> right (4096, 0.0f);
        left[0] = 1.0f;
        host.process (left, right, 0, left.size());
        return std::max_element (left.begin(), left.end()) - left.begin();
    }

    /** How often the plug-in has said, since the last call of this, that its latency changed. Waits until it does, or
        until the time is over. */
    long takeNotices (std::chrono::milliseconds longest)
    {
        const auto end = std::chrono::steady_clock::now() + longest;
        long notices = 0;

        do
        {
            const auto calls = host.takeCalls();
            notices += std::ranges::count (calls, Vst2::audioMasterIOChanged, &RawHost::Call::opcode);
            std::this_thread::sleep_for (5ms);
        } while (notices == 0 && std::chrono::steady_clock::now() < end);

        return notices;
    }

private:
    RawHost host { paths::latencyPlugin() };
};

TEST (LatencyNotice, IsNotSentAtFactor1)
{
    LatencyHost host;
    host.processSilence();
    EXPECT_EQ (host.takeNotices (300ms), 0);
    EXPECT_EQ (host.initialDelay(), 0);
    EXPECT_EQ (host.measuredDelay(), 0);
}

TEST (LatencyNotice, ReachesTheHostAfterTheBlockThatFindsTheFactor)
{
    LatencyHost host;
    host.setFactor (2);
    EXPECT_EQ (host.takeNotices (300ms), 0) << "the factor is read at the head of a block";
    EXPECT_EQ (host.initialDelay(), 0);

    host.processSilence();
    EXPECT_GT (host.initialDelay(), 0) << "the effect record has it at once";
    EXPECT_EQ (host.takeNotices (5s), 1);
}

TEST (LatencyNotice, IsNotSentAgainWhileTheFactorStays)
{
    LatencyHost host;
    host.setFactor (4);
    host.processSilence();
    ASSERT_EQ (host.takeNotices (5s), 1);

    const auto delay = host.initialDelay();

    for (int block = 0; block < 20; ++block)
        host.processSilence();

    EXPECT_EQ (host.takeNotices (300ms), 0);
    EXPECT_EQ (host.initialDelay(), delay);
}

TEST (LatencyNotice, TellsTheDelayThatIsHeard)
{
    for (const int factor : { 2, 4, 8, 16 })
    {
        LatencyHost host;
        host.setFactor (factor);
        host.processSilence();
        ASSERT_EQ (host.takeNotices (5s), 1) << factor;

        // The delay has a fraction, which is not told, so that the largest sample may be the one behind.
        const auto heard = host.measuredDelay();
        EXPECT_GE (heard, host.initialDelay()) << factor;
        EXPECT_LE (heard, host.initialDelay() + 1) << factor;
    }
}

TEST (LatencyNotice, IsSentOnTheWayBackTo1)
{
    LatencyHost host;
    host.setFactor (8);
    host.processSilence();
    ASSERT_EQ (host.takeNotices (5s), 1);
    ASSERT_GT (host.initialDelay(), 0);

    host.setFactor (1);
    host.processSilence();
    EXPECT_EQ (host.initialDelay(), 0);
    EXPECT_EQ (host.takeNotices (5s), 1);
    EXPECT_EQ (host.measuredDelay(), 0);
}

TEST (LatencyNotice, SurvivesSuspendAndResume)
{
    LatencyHost host;
    host.setFactor (2);
    host.processSilence();
    ASSERT_EQ (host.takeNotices (5s), 1);

    const auto delay = host.initialDelay();
    host.suspend();
    host.resume();
    host.processSilence();
    EXPECT_EQ (host.initialDelay(), delay);
    EXPECT_EQ (host.takeNotices (300ms), 0);
}
} // namespace
