// SPDX-License-Identifier: AGPL-3.0-only
// The editor of the built library in hosts that run a GLib loop and never send effEditIdle, and in their relatives.
#include "library/editor/EditorHost.h"
#include "support/EnvironmentVariable.h"
#include "support/GLib.h"
#include "support/OwnProcess.h"
#include "support/RawHost.h"
#include "support/Repeating.h"
#include "window/EditorWindow.h"

#include <atomic>
#include <cstdlib>
#include <optional>
#include <thread>

namespace
{
using larkspire::window::EditorWindow;
using larkspire::window::Picture;
using std::chrono::milliseconds;

/** A window of a host that never idles: what runs is its loop, if it has one. */
class UnidledWindow : public EditorWindow
{
public:
    UnidledWindow (const larkspire::PluginInstance& hosted, const GLib* hostLoop)
        : EditorWindow (hosted, 0, 450),
          loop (hostLoop)
    {
    }

    bool comesToShow (int position)
    {
        return idleUntil ([&] { return shownPosition (picture()) == position; });
    }

    bool isDrawn() const { return lightPixels (picture(), 0, 5, 250, 30, 0x00) > 200; } // the title

protected:
    void turn() override
    {
        if (loop != nullptr)
            loop->turn();
    }

private:
    const GLib* loop;
};

/** A host's process on a display of its own. */
void expectHost (const std::function<void()>& act)
{
    expectInItsOwnProcess (
        [&]
        {
            const larkspire::window::VirtualDisplay display;
            act();
            EXPECT_EQ (EditorWindow::refusals(), std::vector<std::string> {}) << "by the X server";
        });
}

/** A host that ends without closing anything. LeakSanitizer would tell of all that it leaves. */
void expectCarelessHost (const std::function<void()>& act)
{
    const EnvironmentVariable leaks ("ASAN_OPTIONS", "detect_leaks=0");
    expectHost (act);
}

TEST (EditorHostLoop, DrawsAndFollowsMouseAndAutomationWithoutIdles)
{
    expectHost (
        []
        {
            std::optional<Picture> idled;

            {
                OpenEditor editor (Format::vst2);
                EXPECT_TRUE (editor.comesToShow (2));
                idled = editor.window.picture();
            }

            RawHost host;
            const GLib loop;
            UnidledWindow window (host, &loop);
            EXPECT_TRUE (window.comesToShow (2));
            EXPECT_TRUE (window.picture() == *idled);

            Mouse mouse (window);
            mouse.moveTo (knobX, knobY);
            mouse.turnWheel (1);
            EXPECT_TRUE (window.idleUntil ([&] { return std::abs (host.getParameter() - knobPosition (3)) < 1e-6f; }));
            EXPECT_TRUE (window.comesToShow (3));
            ASSERT_FALSE (host.takeCalls().empty());

            host.setParameter (knobPosition (1));
            EXPECT_TRUE (window.comesToShow (1));
        });
}

TEST (EditorHostLoop, OpensAndClosesSixtyTimesAndLeavesTheLoopAsItWas)
{
    expectHost (
        []
        {
            const GLib loop;

            for (int i = 0; i < 60; ++i)
            {
                const RawHost host;
                UnidledWindow window (host, &loop);
                ASSERT_TRUE (window.idleUntil ([&] { return window.isDrawn(); })) << i;
            }

            EXPECT_FALSE (loop.turnFor (milliseconds (300)));
        });
}

TEST (EditorHostLoop, OutlivesALibraryThatIsUnloadedWithTheWindowOpen)
{
    for (const bool drawn : { false, true })
        expectCarelessHost (
            [drawn]
            {
                const GLib loop;
                CallLog calls;
                auto library = std::make_unique<larkspire::PluginLibrary> (paths::plugin());
                static const auto* instance = new larkspire::PluginInstance (*library, calls); // never closed
                static auto* window = new UnidledWindow (*instance, &loop);

                if (drawn)
                {
                    EXPECT_TRUE (window->idleUntil ([] { return window->isDrawn(); }));
                }

                library.reset();
                loop.turnFor (milliseconds (1000));
            });
}

TEST (EditorHostLoop, LetsTheHostQuitWithTheWindowOpen)
{
    expectCarelessHost (
        []
        {
            static const GLib loop;
            // The first to be asked for is the last to be done: the library's own end comes before.
            EXPECT_EQ (std::atexit ([] { loop.turnFor (milliseconds (300)); }), 0);
            static const auto* host = new RawHost; // never closed
            static auto* window = new UnidledWindow (*host, &loop);
            EXPECT_TRUE (window->idleUntil ([] { return window->isDrawn(); }));
        });
}

TEST (EditorHostLoop, StaysOutOfALoopOnAnotherThread)
{
    expectHost (
        []
        {
            const GLib loop;
            const Repeating otherThread ([&] { loop.turn(); });

            for (int i = 0; i < 20; ++i)
            {
                const RawHost host;
                UnidledWindow window (host, nullptr);
                window.idle (milliseconds (40)); // more than a turn of the other thread's
                EXPECT_FALSE (window.isDrawn());
            }

            OpenEditor editor (Format::vst2);
            EXPECT_TRUE (editor.comesToShow (2));
        });
}

TEST (EditorHostLoop, LeavesAHostWithoutOneAsItIs)
{
    expectHost (
        []
        {
            {
                const RawHost host;
                UnidledWindow window (host, nullptr);
                window.idle (milliseconds (300));
                EXPECT_FALSE (window.isDrawn());
            }

            OpenEditor editor (Format::vst2);
            EXPECT_TRUE (editor.comesToShow (2));
            EXPECT_FALSE (GLib::isThere());
        });
}

TEST (EditorHostLoop, DrawsAsBeforeInAHostThatIdlesBesidesItsLoop)
{
    expectHost (
        []
        {
            const GLib loop;
            OpenEditor editor (Format::vst2);

            for (const int position : { 2, 3, 1 })
            {
                editor.host->setParameter (knobPosition (position));
                EXPECT_TRUE (editor.window.idleUntil (
                    [&]
                    {
                        loop.turn();
                        return shownPosition (editor.window.picture()) == position;
                    }));
            }

            editor.mouse.moveTo (knobX, knobY);
            editor.mouse.turnWheel (-1);
            EXPECT_EQ (editor.host->getParameter(), 0.0f);
        });
}
} // namespace
