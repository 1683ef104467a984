// SPDX-License-Identifier: AGPL-3.0-only
#include "packages/InstalledPackage.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace
{
constexpr const char* name = "quendal-larkspire";

/** Calls the package manager, which takes no other package on or off and fetches nothing. Waits for other people's
    installations, half a minute at most. */
void callPackageManager (const std::string& action, const std::string& package)
{
    for (int second = 0;; ++second)
    {
        const auto outcome = outcomeOf ("dpkg", { action, package });

        if (outcome.exitStatus == 0)
            return;

        if (second == 30 || outcome.errors.find ("lock") == std::string::npos)
            throw std::runtime_error ("dpkg " + action + " failed: " + outcome.output + outcome.errors);

        std::this_thread::sleep_for (std::chrono::seconds (1));
    }
}
} // namespace

std::string InstalledPackage::status()
{
    return outcomeOf ("dpkg-query", { "--show", "--showformat=${db:Status-Status}", name }).output;
}

std::vector<std::filesystem::path> InstalledPackage::files()
{
    std::vector<std::filesystem::path> files;

    for (const auto& file : Unpacked (packages::debian()).files())
        files.push_back (std::filesystem::path ("/") / file);

    return files;
}

std::string InstalledPackage::reasonAgainst()
{
    if (geteuid() != 0)
        return "only root can install a package";

    if (! status().empty())
        return std::string ("the package ") + name + " is on this machine already, and is somebody's";

    for (const auto& file : files())
        if (std::filesystem::exists (std::filesystem::symlink_status (file)))
            return file.string() + " is on this machine already, and is somebody's";

    return {};
}

InstalledPackage::InstalledPackage()
{
    try
    {
        callPackageManager ("--install", packages::debian());
    }
    catch (const std::exception&)
    {
        if (! status().empty())
            callPackageManager ("--purge", name);

        throw;
    }
}

InstalledPackage::~InstalledPackage()
{
    try
    {
        if (present)
            remove();
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "%s is still on this machine: %s\n", name, error.what());
    }
}

void InstalledPackage::remove()
{
    callPackageManager ("--purge", name);
    present = false;
}
