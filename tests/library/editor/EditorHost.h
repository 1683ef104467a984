// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "library/editor/Mouse.h"
#include "support/Panel.h"
#include "support/PluginUnderTest.h"
#include "window/VirtualDisplay.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

/** Where the knob's centre stands in the window, in pixels. */
inline constexpr int knobX = 125;
inline constexpr int knobY = 120;

/** An instance of a built library with its editor open in a window, on a display of the test's own. */
class OpenEditor
{
public:
    /** With the parameter at a value. The window stands low on the screen: there is room for a long way up. */
    explicit OpenEditor (Format itsFormat, float value = knobPosition (2), int x = 0)
        : format (itsFormat),
          host (beforeOpening (format, value)),
          opened (host->openEditor (x, 450)),
          window (*opened),
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

    /** All that the host was told since the last call, a letter each: the position that the knob came to, or a bracket
        where an edit begins or ends. */
    std::string takeStory() const
    {
        std::string story;

        for (const auto& [kind, isOfKnob, value] : host->takeEdits())
        {
            const auto position = static_cast<int> (std::lround (value * 9.0f));
            EXPECT_TRUE (isOfKnob);
            EXPECT_NEAR (value, knobPosition (position), 1e-6f);

            if (kind == PluginUnderTest::Edit::change)
                story += std::to_string (position);
            else
                story += kind == PluginUnderTest::Edit::begin ? '(' : ')';
        }

        return story;
    }

    /** What becomes of a story by VST 3 in the format of this editor: by VST 2 there are no edits around positions. */
    std::string asTold (std::string story) const
    {
        if (format == Format::vst2)
            std::erase_if (story, [] (char letter) { return letter == '(' || letter == ')'; });

        return story;
    }

    /** Closes the window; there is no picture and no mouse any more. */
    void close() { opened.reset(); }

    const Format format;
    const std::unique_ptr<PluginUnderTest> host;
    std::unique_ptr<larkspire::window::HostWindow> opened;
    larkspire::window::HostWindow& window;
    Mouse mouse;

private:
    static std::unique_ptr<PluginUnderTest> beforeOpening (Format format, float value)
    {
        auto host = openPlugin (format);
        host->setParameter (value);
        host->takeEdits();
        return host;
    }
};

/** A suite whose tests open windows: the display is there before the library is. */
template <typename Base = testing::Test>
class WithDisplay : public Base
{
protected:
    static void SetUpTestSuite() { display = std::make_unique<larkspire::window::VirtualDisplay>(); }

    static void TearDownTestSuite()
    {
        EXPECT_EQ (larkspire::window::HostWindow::refusals(), std::vector<std::string> {}) << "by the X server";
        display.reset();
    }

private:
    static inline std::unique_ptr<larkspire::window::VirtualDisplay> display;
};
