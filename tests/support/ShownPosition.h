// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/Picture.h"

#include <cmath>
#include <numbers>
#include <optional>

/** The position that the knob's pointer shows in a picture of the window, drawn this many times as large as it is: at
    each position's angle the middle of the pointer is light if it is there and the knob's grey if it is not. None if
    not exactly one is light. */
inline std::optional<int> shownPosition (const larkspire::window::Picture& picture, double scale = 1.0)
{
    std::optional<int> shown;

    for (int position = 0; position < 4; ++position)
    {
        // From seven o'clock to five, clockwise; 20 pixels from the centre the pointer is at its middle.
        const double angle = std::numbers::pi * (1.2 + 1.6 * position / 3.0);
        const auto x = static_cast<int> (scale * (125.0 + 20.0 * std::sin (angle)));
        const auto y = static_cast<int> (scale * (120.5 - 20.0 * std::cos (angle)));

        if (picture.at (x, y).red < 0xd0)
            continue;

        if (shown)
            return std::nullopt;

        shown = position;
    }

    return shown;
}
