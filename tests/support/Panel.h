// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/ShownPosition.h"
#include "window/Picture.h"

#include <gtest/gtest.h>

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

/** Each of the four texts stands in its place, in whatever letters. The scale is the number of pixels in place of one.
 */
inline void expectAllTexts (const larkspire::window::Picture& picture, int scale = 1)
{
    const auto light = [&] (int left, int top, int right, int bottom, int background)
    {
        return lightPixels (picture, scale * left, scale * top, scale * right, scale * bottom, background)
               / (scale * scale);
    };

    EXPECT_GT (light (0, 5, 250, 30, 0x00), 200) << "title";
    EXPECT_GT (light (90, 50, 160, 67, 0x30), 60) << "Amount";
    EXPECT_GT (light (90, 164, 160, 182, 0x30), 60) << "mode";
    EXPECT_GT (light (180, 230, 246, 250, 0x30), 60) << "version";
}
