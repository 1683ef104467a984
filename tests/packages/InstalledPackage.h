// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "packages/Packages.h"

/** The Debian package on this machine, for as long as this object lives. */
class InstalledPackage
{
public:
    /** Why the package must not be installed here, as a sentence; empty if nothing is in the way. What the user has
        installed is not touched. */
    static std::string reasonAgainst();

    /** The files of the package, as paths on the machine. */
    static std::vector<std::filesystem::path> files();

    /** Throws std::runtime_error if the package does not go on, with nothing of it left. */
    InstalledPackage();
    ~InstalledPackage();

    InstalledPackage (const InstalledPackage&) = delete;
    InstalledPackage& operator= (const InstalledPackage&) = delete;

    /** Takes it off the machine. Throws std::runtime_error if that fails. */
    void remove();

    /** What the package manager says of the package: "installed", or nothing where it does not know it. */
    static std::string status();

private:
    bool present = true;
};
