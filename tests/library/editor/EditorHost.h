// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "library/editor/Mouse.h"
#include "support/Panel.h"
#include "support/RawHost.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

#include <gtest/gtest.h>

#include <memory>

/** Where the knob's centre stands in the window, in pixels. */
inline constexpr int knobX = 125;
inline constexpr int knobY = 120;

/** An instance of the built library with its editor open in a window, on a display of the test's own. */
class OpenEditor
{
public:
    /** With the parameter at a value. The window stands low on the screen: there is room for a long way up. */
    explicit OpenEditor (float value = knobPosition (2), int x = 0)
        : host (beforeOpening (value)),
          window (*host, x, 450),
          mouse (window)
    {
    }

    /** Gives the editor time until the pointer stands on a position. */
    bool comesToShow (int position)
    {
        return window.idleUntil ([&] { return shownPosition (window.picture()) == position; });
    }

    /** Gives it more time than it takes to follow the parameter. */
    void waitForTheNextTick() { window.idle (std::chrono::milliseconds (700)); }

    /** The values of all automation since the last call, where nothing else but them came. */
    std::vector<float> takeAutomation()
    {
        std::vector<float> values;

        for (const auto& call : host->takeCalls())
        {
            EXPECT_NE (call.opcode, Vst2::audioMasterBeginEdit);
            EXPECT_NE (call.opcode, Vst2::audioMasterEndEdit);

            if (call.opcode == Vst2::audioMasterAutomate)
            {
                EXPECT_EQ (call.index, 0);
                values.push_back (call.opt);
            }
        }

        return values;
    }

    std::unique_ptr<RawHost> host;
    larkspire::window::EditorWindow window;
    Mouse mouse;

private:
    static std::unique_ptr<RawHost> beforeOpening (float value)
    {
        auto host = std::make_unique<RawHost>();
        host->setParameter (value);
        host->takeCalls();
        return host;
    }
};

/** A suite whose tests open windows: the display is there before the library is. */
class WithDisplay : public testing::Test
{
protected:
    static void SetUpTestSuite() { display = std::make_unique<larkspire::window::VirtualDisplay>(); }

    static void TearDownTestSuite()
    {
        EXPECT_EQ (larkspire::window::EditorWindow::refusals(), std::vector<std::string> {}) << "by the X server";
        display.reset();
    }

private:
    static inline std::unique_ptr<larkspire::window::VirtualDisplay> display;
};
