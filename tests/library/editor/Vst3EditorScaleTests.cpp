// SPDX-License-Identifier: AGPL-3.0-only
// The window on displays with more dots: hosts say by VST 3 how many of them are one pixel of the window.
#include "library/editor/EditorHost.h"
#include "support/Paths.h"
#include "support/vst3/Vst3Window.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace
{
using larkspire::window::Picture;

/** An instance with its view in a window, high enough on the screen for one of twice the size. */
struct OpenView
{
    explicit OpenView (float scale = 0.0f, int position = 1)
        : window (at (position, instance), Vst3Window::Host { .y = 250, .scale = scale })
    {
    }

    /** The picture when all of it has been drawn anew. */
    Picture picture()
    {
        window.idle (std::chrono::milliseconds (700));
        return window.picture();
    }

    double value() const { return instance.getParameter (instance.modeId()); }

    static const Vst3Instance& at (int position, Vst3Instance& instance)
    {
        instance.setParameter (instance.modeId(), static_cast<double> (knobPosition (position)));
        return instance;
    }

    Vst3Module module { paths::vst3() };
    Vst3Instance instance { module };
    Vst3Window window;
};

/** A part of the window, in pixels before scaling. */
struct Part
{
    const char* name;
    int left, top, right, bottom;
    int edges; // so many of its pixels at least have an edge within when they are drawn with four dots
};

constexpr std::array parts { Part { "title", 0, 5, 250, 30, 400 },
                             Part { "Amount", 90, 50, 160, 67, 100 },
                             Part { "knob", 80, 75, 170, 165, 1500 },
                             Part { "mode", 90, 164, 160, 182, 100 },
                             Part { "version", 180, 230, 246, 250, 100 } };

/** The largest difference between two neighbours in a row, by the one channel that a grey window has. In a picture that
    was smoothly enlarged to twice its size it is half as large. */
int steepest (const Picture& picture, const Part& part, int scale)
{
    int largest = 0;

    for (int y = scale * part.top; y < scale * part.bottom; ++y)
        for (int x = scale * part.left; x + 1 < scale * part.right; ++x)
            largest = std::max (largest, std::abs (picture.at (x, y).red - picture.at (x + 1, y).red));

    return largest;
}

/** How many squares of two by two dots are not of one colour. In a picture that was enlarged by doubling there are
    none. */
int edges (const Picture& picture, const Part& part)
{
    int count = 0;

    for (int y = 2 * part.top; y < 2 * part.bottom; y += 2)
        for (int x = 2 * part.left; x < 2 * part.right; x += 2)
        {
            const auto first = picture.at (x, y);
            const bool isOneColour =
                first == picture.at (x + 1, y) && first == picture.at (x, y + 1) && first == picture.at (x + 1, y + 1);
            count += isOneColour ? 0 : 1;
        }

    return count;
}

/** What a pixel would be at half the size. */
int meanOfFour (const Picture& picture, int x, int y)
{
    return (picture.at (2 * x, 2 * y).red + picture.at (2 * x + 1, 2 * y).red + picture.at (2 * x, 2 * y + 1).red
            + picture.at (2 * x + 1, 2 * y + 1).red)
           / 4;
}

class Vst3EditorScale : public WithDisplay<>
{
};

TEST_F (Vst3EditorScale, OfTwoDrawsTheSameWindowTwiceTheSizeAndSharp)
{
    OpenView view;
    const auto plain = view.picture();
    ASSERT_EQ (view.window.setScale (2.0f), Steinberg::kResultOk);
    EXPECT_EQ (view.window.width(), 500);
    EXPECT_EQ (view.window.height(), 500);
    const auto twice = view.picture();
    EXPECT_EQ (shownPosition (twice, 2.0), 1);
    expectAllTexts (twice, 2.0);

    int off = 0;

    for (int y = 0; y < plain.height; ++y)
        for (int x = 0; x < plain.width; ++x)
            off += std::abs (meanOfFour (twice, x, y) - plain.at (x, y).red) > 16 ? 1 : 0;

    EXPECT_LT (off, plain.width * plain.height / 100) << "dots of another drawing";

    for (const auto& part : parts)
    {
        EXPECT_GT (edges (twice, part), part.edges) << part.name;
        EXPECT_GT (steepest (twice, part, 2), steepest (plain, part, 1) * 9 / 10) << part.name;
    }
}

TEST_F (Vst3EditorScale, MayBeSetBeforeTheViewIsShown)
{
    OpenView before (2.0f);
    EXPECT_EQ (before.window.width(), 500);
    const auto picture = before.picture();

    OpenView after;
    after.window.setScale (2.0f);
    EXPECT_TRUE (after.picture() == picture);
}

TEST_F (Vst3EditorScale, ComesAndGoesWithoutATrace)
{
    OpenView view;
    const auto before = view.picture();

    for (const auto& [scale, side] :
         { std::pair { 1.1f, 275 }, { 1.25f, 313 }, { 1.5f, 375 }, { 1.75f, 438 }, { 2.0f, 500 }, { 0.75f, 188 } })
    {
        EXPECT_EQ (view.window.setScale (scale), Steinberg::kResultOk);
        EXPECT_EQ (view.window.width(), side);
        EXPECT_EQ (view.window.height(), side);
        const auto picture = view.picture();
        EXPECT_EQ (shownPosition (picture, static_cast<double> (scale)), 1) << scale;
        expectAllTexts (picture, static_cast<double> (scale));
        EXPECT_EQ (picture.at (side - 1, side - 1), before.at (249, 249)) << scale << ": all of it is drawn";
    }

    view.window.setScale (1.0f);
    EXPECT_TRUE (view.picture() == before);
}

TEST_F (Vst3EditorScale, ThatNobodyCanMeanLeavesAWindowThatCanBeUsed)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    OpenView view;
    const auto before = view.picture();

    for (const auto& [scale, side] : { std::pair { 0.0f, 250 },
                                       { -2.0f, 250 },
                                       { std::numeric_limits<float>::quiet_NaN(), 250 },
                                       { 1e-6f, 63 },
                                       { 1e6f, 2000 },
                                       { infinity, 2000 } })
    {
        view.window.setScale (scale);
        EXPECT_EQ (view.window.width(), side) << scale;
        EXPECT_EQ (view.window.height(), side) << scale;
        view.window.setScale (1.0f);
        EXPECT_TRUE (view.picture() == before) << scale;
    }
}

// The knob turns with the window's own pixels. Positions change half way between them.
TEST_F (Vst3EditorScale, OfTwoTakesTwiceTheWayOfTheMouse)
{
    OpenView view (2.0f, 0);
    view.window.idle (std::chrono::milliseconds (700));
    Mouse mouse (view.window);
    mouse.moveTo (2 * knobX, 2 * knobY);
    mouse.press();

    for (const auto& [distance, position] :
         { std::pair { -83, 0 }, { -1, 1 }, { -332, 2 }, { -1, 3 }, { 1, 2 }, { 416, 0 } })
    {
        mouse.moveVertically (distance);
        view.window.idle (std::chrono::milliseconds (100)); // what comes too early shows
        const auto isThere = [&, expected = static_cast<double> (knobPosition (position))]
        { return std::abs (view.value() - expected) < 1e-6; };
        EXPECT_TRUE (view.window.idleUntil (isThere)) << distance << ": " << view.value();
    }

    mouse.release();
    mouse.moveTo (2 * knobX, 2 * knobY);
    mouse.turnWheel (1);
    EXPECT_EQ (shownPosition (view.picture(), 2.0), 1);
    EXPECT_NEAR (view.value(), static_cast<double> (knobPosition (1)), 1e-6);
}
} // namespace
