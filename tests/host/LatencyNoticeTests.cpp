// SPDX-License-Identifier: AGPL-3.0-only
// How a changed latency reaches a host, seen on a plug-in whose oversampling factor is a parameter.
#include "host/RawHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace
{
using namespace std::chrono_literals;

constexpr Vst2::VstInt32 ioChanged = 13; // the number that hosts know the notice by

/** A host of the plug-in with a factor, for one instance at a time. Its mode is "bypass", so that nothing but the
    oversampler is heard. The notices come on another thread, while this one waits for them. */
class LatencyHost
{
public:
    LatencyHost()
    {
        notices = 0;
        dispatch (Vst2::effOpen);
        instance->setParameter (instance, 0, 0.0f);
        dispatch (Vst2::effSetSampleRate, 0, 48000.0f);
        dispatch (Vst2::effSetBlockSize, 4096);
        resume();
        processSilence();
    }

    ~LatencyHost() { dispatch (Vst2::effClose); }

    LatencyHost (const LatencyHost&) = delete;
    LatencyHost& operator= (const LatencyHost&) = delete;

    void suspend() { dispatch (Vst2::effMainsChanged, 0); }
    void resume() { dispatch (Vst2::effMainsChanged, 1); }

    void setFactor (int factor) { instance->setParameter (instance, 1, static_cast<float> (factor - 1) / 15.0f); }

    int initialDelay() const { return instance->initialDelay; }

    void processSilence (std::size_t frames = 512)
    {
        std::vector<float> left (frames, 0.0f);
        std::vector<float> right (frames, 0.0f);
        process (left, right);
    }

    /** Where the largest sample of what comes out for an impulse stands. */
    long measuredDelay()
    {
        std::vector<float> left (4096, 0.0f);
        std::vector<float> right (4096, 0.0f);
        left[0] = 1.0f;
        process (left, right);
        return std::max_element (left.begin(), left.end()) - left.begin();
    }

    /** How often the plug-in has said, since the last call of this, that its latency changed. Waits until it does, or
        until the time is over. */
    static int takeNotices (std::chrono::milliseconds longest)
    {
        const auto end = std::chrono::steady_clock::now() + longest;

        while (notices == 0 && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for (5ms);

        return notices.exchange (0);
    }

private:
    static Vst2::VstIntPtr VSTCALLBACK
    answer (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float)
    {
        notices += opcode == ioChanged ? 1 : 0;
        return opcode == Vst2::audioMasterVersion ? 2400 : 0;
    }

    void dispatch (Vst2::VstInt32 opcode, Vst2::VstIntPtr value = 0, float opt = 0.0f)
    {
        instance->dispatcher (instance, opcode, 0, value, nullptr, opt);
    }

    void process (std::vector<float>& left, std::vector<float>& right)
    {
        float* channels[] = { left.data(), right.data() };
        instance->processReplacing (instance, channels, channels, static_cast<Vst2::VstInt32> (left.size()));
    }

    static inline std::atomic<int> notices { 0 };
    Vst2::AEffect* instance = RawHost::entryPoint (LARKSPIRE_LATENCY_PLUGIN_PATH) (answer);
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
        host.processSilence (64);

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
