// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Renderer.h"

#include <chrono>
#include <string>

namespace larkspire::render
{

/** A line on the terminal behind stderr that shows how far one file is: which it is, its name, percent, how many times
   faster than real time, and the time left, or at the end the time taken. The destructor ends the line. Create one only
   if stderr is a terminal. */
class ProgressBar
{
public:
    /** Whether stderr is a terminal. */
    static bool wouldBeSeen();

    /** @param number  which of several files it is, in words; may be empty
        @param title   a file's name, cut in the middle if the terminal is narrow */
    ProgressBar (const std::string& number, const std::string& title);
    ~ProgressBar();

    ProgressBar (const ProgressBar&) = delete;
    ProgressBar& operator= (const ProgressBar&) = delete;

    /** Redraws the line if the percentage changes, or if it has stood for a while. */
    void show (const RenderProgress& progress);

private:
    using Clock = std::chrono::steady_clock;

    std::string name;
    int barWidth;
    int shownPercent = -1;
    bool shown = false;
    Clock::time_point shownAt;
};

} // namespace larkspire::render
