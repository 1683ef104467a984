// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Listening.h"
#include "plot/Axis.h"

namespace larkspire::plot
{

/** The size of a picture, in pixels. */
inline constexpr int pictureWidth = 1200;
inline constexpr int pictureHeight = 960;

/** Where the panels stand, from the top: each the rows between its two lines. All share the columns. */
struct Rows
{
    int top = 0;
    int bottom = 0;
};

inline constexpr int leftColumn = 92;
inline constexpr int rightColumn = pictureWidth - 28;
inline constexpr Rows beforeRows { .top = 92, .bottom = 222 };
inline constexpr Rows afterRows { .top = 262, .bottom = 392 };
inline constexpr Rows loudnessRows { .top = 432, .bottom = 662 };
inline constexpr Rows gainRows { .top = 702, .bottom = 892 };

/** The scales of a picture's four panels. */
struct Axes
{
    Axis time;     // s
    Axis before;   // linear, full scale 1.0
    Axis after;    // the same range, so that the two can be compared by eye
    Axis loudness; // LUFS
    Axis gain;     // dB
};

/** The scales for a sound. Times go from 0 to its end (of no sound: 1 s). Waveforms have the round number above the
    larger peak of the two, 0.1 at least; loudness goes from -60 to 0 LUFS and gains from -20 to 2 dB, in tens further
    where the sound does. So pictures of one recording in several modes can be laid side by side. */
Axes axesFor (const meter::Listening& measurement);

} // namespace larkspire::plot
