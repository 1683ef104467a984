// SPDX-License-Identifier: AGPL-3.0-only
// What the audio thread must not do: allocate, lock, call the system.
#include "library/RealTimeHooks.h"
#include "support/PluginUnderTest.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <pthread.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <tuple>
#include <unistd.h>

namespace
{
/** What a block may lock: JUCE's wrapper holds one lock of its own around it. LV2 is without JUCE. */
constexpr std::size_t locksOfABlock (Format format)
{
    return format == Format::lv2 ? 0 : 1;
}

/** Processes a block of this many frames and expects it to be free of all that an audio thread must not do. */
void expectRealTimeBlock (PluginUnderTest& plugin,
                          Signal& signal,
                          std::size_t from,
                          std::size_t frames,
                          const std::string& when,
                          std::size_t locks)
{
    RealTimeScope scope;
    plugin.process (signal, from, frames);
    const auto counts = scope.stop();
    EXPECT_EQ (counts.allocations, 0u) << when;
    EXPECT_EQ (counts.locks, locks) << when;
    EXPECT_EQ (counts.systemCalls, 0u) << when << ", system call number " << counts.firstSystemCall;
}

// The first block is JUCE's warm-up: the C library binds functions as they are first called.
void warmUp (PluginUnderTest& plugin)
{
    Signal signal = noise (64, -20.0, 1);
    plugin.process (signal, 0, 64);
}

/** What a block may lock at whose start the host's bypass changes: in VST 3 that is a parameter of JUCE's wrapper,
   which tells its listeners under a lock. */
std::size_t locksOfABypassChange (Format format)
{
    return locksOfABlock (format) + (format == Format::vst3 ? 1 : 0);
}

/** By every interface, at every position. */
class RealTime : public testing::TestWithParam<std::tuple<Format, int>>
{
protected:
    static Format format() { return std::get<0> (GetParam()); }
    static int position() { return std::get<1> (GetParam()); }

    /** An instance at the position, running, its warm-up behind it. */
    static std::unique_ptr<PluginUnderTest> running (float rate = 48000.0f, int blockSize = 4096, bool mono = false)
    {
        auto plugin = openPlugin (format());
        plugin->setParameter (knobPosition (position()));
        plugin->start (rate, blockSize, mono);
        warmUp (*plugin);
        return plugin;
    }
};

constexpr std::array rates { 1234.5678f, 8000.0f,   11025.0f,  12000.0f,  16000.0f,  22050.0f, 24000.0f,
                             32000.0f,   44100.0f,  48000.0f,  64000.0f,  88200.0f,  96000.0f, 128000.0f,
                             176400.0f,  192000.0f, 352800.0f, 384000.0f, 705600.0f, 768000.0f };

constexpr std::array<std::size_t, 18> blockSizes { 0,   1,   2,   15,  16,   17,   32,   64,   127,
                                                   128, 256, 441, 512, 1024, 2048, 4096, 8192, 16384 };

/** Once through every block size, the parameter, the host's bypass and the soundness of the samples changing between.
 */
void expectRealTimeMatrix (PluginUnderTest& plugin, Format format, int position, float rate, bool mono)
{
    bool wasBypassed = false;
    constexpr std::size_t longest = blockSizes.back();
    static const auto clean = noise (longest, 0.0, 2);
    static const auto bad = withBadSamples (noise (longest, 0.0, 5));

    for (const std::size_t frames : blockSizes)
        for (const bool bypassed : { false, true })
            for (const bool isBad : { false, true })
                for (const int newPosition : { position, position + 1 })
                {
                    auto signal = isBad ? bad : clean;
                    plugin.setParameter (knobPosition (newPosition));
                    plugin.setBypass (bypassed);
                    expectRealTimeBlock (plugin,
                                         signal,
                                         0,
                                         frames,
                                         std::to_string (frames) + " frames at " + std::to_string (rate) + " Hz"
                                             + (mono ? ", mono" : ", stereo") + (isBad ? ", bad samples" : "")
                                             + (bypassed ? ", host bypass" : ""),
                                         bypassed == wasBypassed ? locksOfABlock (format)
                                                                 : locksOfABypassChange (format));
                    wasBypassed = bypassed;
                }
}

TEST_P (RealTime, HoldsForEveryRateBlockSizeLayoutChangeBypassAndBadSample)
{
    for (const float rate : rates)
        for (const bool mono : { false, true })
        {
            const auto plugin = running (rate, static_cast<int> (blockSizes.back()), mono);
            expectRealTimeMatrix (*plugin, format(), position(), rate, mono);
        }
}

TEST_P (RealTime, HoldsAtAChangeOfModeAndAtTheWrapOfTheRefreshCounter)
{
    const auto plugin = running();
    auto signal = noise (4096, -12.0, 3);

    for (int mode = 0; mode < 10; ++mode)
    {
        plugin->setParameter (knobPosition (mode));
        expectRealTimeBlock (*plugin, signal, 0, 256, "change to " + std::to_string (mode), locksOfABlock (format()));
    }

    for (int block = 0; block < 33; ++block) // past 2 * 65536 frames
        expectRealTimeBlock (*plugin, signal, 0, 4096, "block " + std::to_string (block), locksOfABlock (format()));
}

TEST_P (RealTime, HoldsForBadSamplesDenormalsAndHostBypass)
{
    const auto plugin = running();

    for (auto& signal : testSignals (2048))
    {
        for (const bool bypassed : { true, false })
        {
            plugin->setBypass (bypassed);
            expectRealTimeBlock (
                *plugin, signal, 0, 2048, signal.name + ", bypass changes", locksOfABypassChange (format()));
            expectRealTimeBlock (
                *plugin, signal, 0, 2048, signal.name + (bypassed ? ", bypassed" : ""), locksOfABlock (format()));
        }
    }
}

TEST_P (RealTime, HoldsAfterAStateWasLoadedAndAfterSuspendAndResume)
{
    const auto plugin = running();
    plugin->load (plugin->save());
    auto signal = noise (512, -12.0, 4);
    expectRealTimeBlock (*plugin, signal, 0, 512, "after a load", locksOfABlock (format()));

    plugin->suspend();
    plugin->resume();
    warmUp (*plugin); // the wrapper asks its host anew whether it renders offline
    expectRealTimeBlock (*plugin, signal, 0, 512, "after a resume", locksOfABlock (format()));
}

INSTANTIATE_TEST_SUITE_P (ByInterfaceInMode,
                          RealTime,
                          testing::Combine (testing::ValuesIn (allFormats), testing::Range (0, 9)));

TEST (EntryPoint, GivesNoInstanceUntilThereIsMemoryForIt)
{
    const RawHost host;
    const auto answer =
        [] (Vst2::AEffect*, Vst2::VstInt32, Vst2::VstInt32, Vst2::VstIntPtr, void*, float) -> Vst2::VstIntPtr
    { return 2400; };

    {
        constexpr std::size_t reserveBuffer = 524288 * sizeof (float);
        const ScopedRefusal refusal (reserveBuffer);
        EXPECT_EQ (host.entryPoint() (answer), nullptr);
    }

    const RawHost another;
    EXPECT_EQ (another.text (Vst2::effGetParamName), "Mode");
}

// The hooks must be able to see what they look for.

void* volatile escape = nullptr;

TEST (RealTimeHooks, SeeNothingWhereNothingHappens)
{
    RealTimeScope scope;
    const auto counts = scope.stop();
    EXPECT_EQ (counts.allocations, 0u);
    EXPECT_EQ (counts.locks, 0u);
    EXPECT_EQ (counts.systemCalls, 0u);
}

TEST (RealTimeHooks, SeeAnAllocationByEveryFunctionOfTheCLibrary)
{
    RealTimeScope scope;
    escape = new float[10];
    delete[] static_cast<float*> (escape);
    escape = malloc (10);
    escape = realloc (escape, 20);
    free (escape);
    escape = calloc (10, 10);
    free (escape);
    void* aligned = nullptr;
    const int result = posix_memalign (&aligned, 64, 64);
    free (aligned);
    escape = aligned_alloc (64, 64);
    free (escape);
    EXPECT_EQ (scope.stop().allocations, 11u);
    EXPECT_EQ (result, 0);
}

TEST (RealTimeHooks, SeeALock)
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_rwlock_t readWrite = PTHREAD_RWLOCK_INITIALIZER;
    sem_t semaphore {};
    sem_init (&semaphore, 0, 0);

    RealTimeScope scope;
    pthread_mutex_lock (&mutex);
    pthread_mutex_unlock (&mutex);
    const int tried = pthread_mutex_trylock (&mutex);
    pthread_mutex_unlock (&mutex);
    pthread_rwlock_rdlock (&readWrite);
    pthread_rwlock_unlock (&readWrite);
    pthread_rwlock_wrlock (&readWrite);
    pthread_rwlock_unlock (&readWrite);
    sem_post (&semaphore);
    sem_wait (&semaphore);
    EXPECT_EQ (scope.stop().locks, 6u);
    EXPECT_EQ (tried, 0);
    sem_destroy (&semaphore);
}

TEST (RealTimeHooks, SeeASystemCallAndLetItThrough)
{
    RealTimeScope scope;
    const auto process = getppid();
    const auto counts = scope.stop();
    EXPECT_EQ (counts.systemCalls, 1u);
    EXPECT_EQ (counts.firstSystemCall, SYS_getppid);
    EXPECT_EQ (process, getppid());
}

TEST (RealTimeHooks, SeeAnAllocationInsideTheLibrary)
{
    // Saving allocates and locks; done where a block is expected, it must be found out.
    RawHost host;
    void* data = nullptr;
    RealTimeScope scope;
    host.dispatch (Vst2::effGetChunk, 0, 0, &data);
    const auto counts = scope.stop();
    EXPECT_GT (counts.allocations, 0u);
    EXPECT_GT (counts.locks, 0u);
    EXPECT_EQ (counts.systemCalls, 1u);
}
} // namespace
