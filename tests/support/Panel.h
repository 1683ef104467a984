// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/Picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <optional>

/** The position that the knob's pointer shows in a picture of the window: at each position's angle the middle of the
    pointer is light if it is there and the knob's grey if it is not. None if not exactly one is light. */
inline std::optional<int> shownPosition (const larkspire::window::Picture& picture)
{
    std::optional<int> shown;

    for (int position = 0; position < 4; ++position)
    {
        // From seven o'clock to five, clockwise; 20 pixels from the centre the pointer is at its middle.
        const double angle = std::numbers::pi * (1.2 + 1.6 * position / 3.0);
        const auto x = static_cast<int> (125.0 + 20.0 * std::sin (angle));
        const auto y = static_cast<int> (120.5 - 20.0 * std::cos (angle));

        if (picture.at (x, y).red < 0xd0)
            continue;

        if (shown)
            return std::nullopt;

        shown = position;
    }

    return shown;
}

/** How many pixels of a rectangle are lighter than the grey behind the letters. */
inline int
lightPixels (const larkspire::window::Picture& picture, int left, int top, int right, int bottom, int background)
{
    int count = 0;

    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
            count += picture.at (x, y).red > background + 0x18 ? 1 : 0;

    return count;
}

/** Each of the four texts stands in its place, in whatever letters. */
inline void expectAllTexts (const larkspire::window::Picture& picture)
{
    EXPECT_GT (lightPixels (picture, 0, 5, 250, 30, 0x00), 200) << "title";
    EXPECT_GT (lightPixels (picture, 90, 50, 160, 67, 0x30), 60) << "Amount";
    EXPECT_GT (lightPixels (picture, 90, 164, 160, 182, 0x30), 60) << "mode";
    EXPECT_GT (lightPixels (picture, 180, 230, 246, 250, 0x30), 60) << "version";
}
