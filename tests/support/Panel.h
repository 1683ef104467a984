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

/** Each of the four texts stands in its place, in whatever letters, in a window drawn this many times as large as it
    is. */
inline void expectAllTexts (const larkspire::window::Picture& picture, double scale = 1.0)
{
    const auto expectText =
        [&] (const char* name, int left, int top, int right, int bottom, int background, int leastPixels)
    {
        const auto scaled = [scale] (int place) { return static_cast<int> (scale * place); };
        EXPECT_GT (lightPixels (picture, scaled (left), scaled (top), scaled (right), scaled (bottom), background),
                   static_cast<int> (scale * scale * leastPixels))
            << name;
    };

    expectText ("title", 0, 5, 250, 30, 0x00, 200);
    expectText ("Amount", 90, 50, 160, 67, 0x30, 60);
    expectText ("mode", 90, 164, 160, 182, 0x30, 60);
    expectText ("version", 180, 230, 246, 250, 0x30, 60);
}
