// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>

namespace larkspire::render
{

/** A line on the terminal behind stderr that shows how far one file is; nothing at all where stderr is no terminal. The
    line is ended when the bar goes away. */
class ProgressBar
{
public:
    /** @param title  a file's name, shortened where the terminal is narrow */
    explicit ProgressBar (const std::string& title);
    ~ProgressBar();

    ProgressBar (const ProgressBar&) = delete;
    ProgressBar& operator= (const ProgressBar&) = delete;

    /** Redraws the line if that changes it. @param done  0 to 1 */
    void show (double done);

private:
    bool onTerminal;
    std::string name;
    int shownPercent = -1;
};

} // namespace larkspire::render
