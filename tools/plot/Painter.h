// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Listening.h"

#include <string>
#include <vector>

namespace larkspire::plot
{

/** What stands above a picture. */
struct Title
{
    std::string name; // of the file; bytes that are not UTF-8 are shown as question marks
    std::string mode;
};

/** Draws a rendering and gives the bytes of a PNG file: waveforms before and after, loudness before and after, and the
    gains of expander and leveller, one above the other on one time axis; the scales are those of axesFor.

    It needs neither a window nor a display. Any thread may call. Throws Failure if no font is installed.
*/
std::vector<char> paintPng (const meter::Listening& measurement, const Title& title);

} // namespace larkspire::plot
