// SPDX-License-Identifier: AGPL-3.0-only
// Editors on the loop of a host that never sends effEditIdle, and who dispatches JUCE's messages when.
#include "editor/Canvas.h"
#include "editor/HostLoop.h"
#include "support/GLib.h"
#include "support/OpenProcessor.h"
#include "support/OwnProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include <unistd.h>

namespace juce::detail
{
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce::detail

namespace
{
using juce::MessageManager;
using std::chrono::milliseconds;
using Wrapper = juce::AudioProcessor::WrapperType;

constexpr milliseconds severalTurns { 150 };
constexpr int mostPasses = 8; // of a turn

/** A GLib host's process with JUCE in it, on one thread, and a processor as the wrapper of a format makes it. */
class GLibHost
{
public:
    explicit GLibHost (Wrapper wrapper = juce::AudioProcessor::wrapperType_VST)
    {
        juce::AudioProcessor::setTypeOfNextNewPlugin (wrapper);
        processor = std::make_unique<OpenProcessor>();
        juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    }

    std::unique_ptr<juce::AudioProcessorEditor> open() const
    {
        return std::unique_ptr<juce::AudioProcessorEditor> (processor->createEditor());
    }

    /** What the wrapper does on effEditIdle. */
    static void idle()
    {
        while (juce::detail::dispatchNextMessageOnSystemQueue (true))
        {
        }
    }

    GuiTest gui;
    GLib loop;
    std::unique_ptr<OpenProcessor> processor;
};

/** A descriptor that is ready whenever JUCE asks, so that each pass over all that is ready makes one call. Not for
    ever: a host that never gets its thread back would be a test that never ends. */
class AlwaysReady
{
public:
    explicit AlwaysReady (std::function<void()> action = [] {}) : act (std::move (action))
    {
        EXPECT_EQ (pipe (ends.data()), 0);
        EXPECT_EQ (write (ends[1], "x", 1), 1);
        juce::LinuxEventLoop::registerFdCallback (ends[0], [this] (int) { call(); });
    }

    ~AlwaysReady()
    {
        juce::LinuxEventLoop::unregisterFdCallback (ends[0]);
        close (ends[0]);
        close (ends[1]);
    }

    AlwaysReady (const AlwaysReady&) = delete;
    AlwaysReady& operator= (const AlwaysReady&) = delete;

    int calls = 0;

private:
    void call()
    {
        char byte = 0;

        if (++calls == 1000)
        {
            EXPECT_EQ (read (ends[0], &byte, 1), 1);
        }

        act();
    }

    std::array<int, 2> ends {};
    std::function<void()> act;
};

/** Sends a message through JUCE's queue; the flag says that it has arrived. */
void post (bool& arrived)
{
    MessageManager::callAsync ([&arrived] { arrived = true; });
}

TEST (HostLoop, DispatchesMessagesAsLongAsAVst2EditorLives)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            bool arrived = false;
            post (arrived);
            EXPECT_FALSE (host.loop.turnFor (severalTurns));
            EXPECT_FALSE (arrived);

            auto editor = host.open();
            EXPECT_TRUE (host.loop.turnUntil ([&] { return arrived; }));

            editor.reset();
            arrived = false;
            post (arrived);
            EXPECT_FALSE (host.loop.turnFor (severalTurns));
            EXPECT_FALSE (arrived);
        });
}

TEST (HostLoop, IsNothingToEditorsOfOtherFormats)
{
    expectInItsOwnProcess (
        []
        {
            for (const auto wrapper : { juce::AudioProcessor::wrapperType_VST3,
                                        juce::AudioProcessor::wrapperType_LV2,
                                        juce::AudioProcessor::wrapperType_Standalone,
                                        juce::AudioProcessor::wrapperType_Undefined })
            {
                const GLibHost host (wrapper);
                const auto editor = host.open();
                EXPECT_FALSE (host.loop.turnFor (severalTurns)) << wrapper;
            }
        });
}

TEST (HostLoop, DispatchesForAllEditorsInOneTurnThatEnds)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            auto first = host.open();
            const auto second = host.open();
            AlwaysReady source;
            std::this_thread::sleep_for (severalTurns);
            EXPECT_TRUE (host.loop.turn());
            EXPECT_EQ (source.calls, mostPasses);

            first.reset();
            std::this_thread::sleep_for (severalTurns);
            EXPECT_TRUE (host.loop.turn());
            EXPECT_EQ (source.calls, 2 * mostPasses);
        });
}

TEST (HostLoop, EndsATurnInWhichTheEditorGoes)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            auto editor = host.open();

            {
                const AlwaysReady source ([&] { editor.reset(); });
                EXPECT_TRUE (host.loop.turnUntil ([&] { return source.calls > 0; }));
                EXPECT_EQ (source.calls, 1);
                EXPECT_FALSE (host.loop.turnFor (severalTurns));
            }

            editor = host.open();
            bool arrived = false;
            post (arrived);
            EXPECT_TRUE (host.loop.turnUntil ([&] { return arrived; }));
        });
}

// GLib itself keeps a source from running within itself, but not the source of another editor.
TEST (HostLoop, BeginsNoTurnWithinATurn)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            auto editor = host.open();
            bool arrived = false;
            bool arrivedInside = true;
            MessageManager::callAsync (
                [&]
                {
                    editor.reset();
                    editor = host.open();
                    post (arrived);
                    EXPECT_TRUE (host.loop.turnFor (severalTurns));
                    arrivedInside = arrived;
                });
            EXPECT_TRUE (host.loop.turnUntil ([&] { return arrived; }));
            EXPECT_FALSE (arrivedInside);

            editor.reset();
            EXPECT_FALSE (host.loop.turnFor (severalTurns));
        });
}

TEST (HostLoop, DispatchesAtEachTurnWhileTheHostNeverIdles)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            const auto editor = host.open();
            host.loop.turnFor (std::chrono::seconds (1));
            bool arrived = false;
            post (arrived);
            std::this_thread::sleep_for (severalTurns);
            EXPECT_TRUE (host.loop.turn());
            EXPECT_TRUE (arrived);
        });
}

TEST (HostLoop, LeavesMessagesToAHostThatIdlesUntilItNoLongerDoes)
{
    expectInItsOwnProcess (
        []
        {
            const GLibHost host;
            const auto editor = host.open();
            bool arrived = false;
            std::chrono::steady_clock::duration unattended {};

            // Once more if this machine was away for so long that the host may be taken for one that no longer idles.
            do
            {
                const auto end = std::chrono::steady_clock::now() + std::chrono::seconds (1);

                while (std::chrono::steady_clock::now() < end)
                {
                    host.idle();
                    host.loop.turnFor (milliseconds (2));
                }

                const auto lastIdle = std::chrono::steady_clock::now();
                host.idle();
                arrived = false;
                post (arrived);
                host.loop.turnFor (severalTurns);
                unattended = std::chrono::steady_clock::now() - lastIdle;
            } while (unattended > milliseconds (500));

            EXPECT_FALSE (arrived);
            EXPECT_TRUE (host.loop.turnUntil ([&] { return arrived; }));
        });
}
} // namespace
