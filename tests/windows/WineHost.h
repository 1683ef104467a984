// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/PluginUnderTest.h"

#include <string>
#include <utility>
#include <vector>

/** The tests' own Windows host, run by Wine. */
class WineHost
{
public:
    /** What the host printed. */
    struct Report
    {
        /** The value of the first line of that name; empty if there is none. */
        std::string operator[] (const std::string& name) const;

        /** All values of lines of that name. */
        std::vector<std::string> all (const std::string& name) const;

        std::vector<std::pair<std::string, std::string>> lines;
    };

    /** Runs a command of the host on the library of a format that was built. Throws std::runtime_error, with what it
       wrote, if it fails or takes longer than two minutes. */
    static Report
    run (const std::string& command, const std::vector<std::string>& arguments = {}, Format format = Format::vst2);

    /** How Wine is called to run a Windows program: its path, then its arguments. It has two minutes. */
    static Call call (const std::vector<std::string>& words);

    static std::string libraryPath (Format format = Format::vst2);
    static std::string programPath();
};
