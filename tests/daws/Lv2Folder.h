// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/TemporaryFolder.h"

/** A copy of the built LV2 bundle in a folder of its own, where the programs of the tests find it and, beside it, what
    LV2 says of itself, but no plug-in of the user's. */
class Lv2Folder : public TemporaryFolder
{
public:
    Lv2Folder()
    {
        namespace fs = std::filesystem;
        const fs::path core = "lv2/core.lv2";
        fs::create_directory (path() / "home");
        fs::create_directory (path() / "lv2");
        fs::copy (paths::lv2(), path() / "lv2/larkspire.lv2", fs::copy_options::recursive);
        fs::create_directory_symlink ("/usr/lib" / core, path() / core);
    }

    /** A file of the copied bundle. */
    std::string operator[] (const std::string& name) const { return *this / ("lv2/larkspire.lv2/" + name); }

    /** Runs a program in the folder: its name and its arguments. */
    Outcome run (const std::vector<std::string>& words) const
    {
        return ::run (Call { .arguments = { words.begin() + 1, words.end() },
                             .program = words.front(),
                             .environment = { { "PATH", "/usr/bin:/bin" },
                                              { "LANG", "C.UTF-8" },
                                              { "HOME", *this / "home" },
                                              { "LV2_PATH", *this / "lv2" } },
                             .inheritsEnvironment = false,
                             .folder = path() });
    }
};
