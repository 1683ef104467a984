// SPDX-License-Identifier: AGPL-3.0-only
#include "packages/Packages.h"
#include "support/Paths.h"

#include <sstream>
#include <stdexcept>

namespace
{
std::filesystem::path inPackages (const std::string& name)
{
    return std::filesystem::path (paths::source ("dist/packages")) / name;
}

Call callOf (const std::string& program, const std::vector<std::string>& arguments)
{
    return { .arguments = arguments, .program = program, .environment = { { "LC_ALL", "C.UTF-8" }, { "TZ", "UTC" } } };
}
} // namespace

std::filesystem::path packages::debian()
{
    return inPackages ("quendal-larkspire_" LARKSPIRE_RELEASE "_amd64.deb");
}

std::filesystem::path packages::linuxArchive()
{
    return inPackages (linuxFolder + ".tar.gz");
}

std::filesystem::path packages::windowsArchive()
{
    return inPackages (windowsFolder + ".zip");
}

Outcome outcomeOf (const std::string& program, const std::vector<std::string>& arguments)
{
    return run (callOf (program, arguments));
}

std::string outputOf (const std::string& program, const std::vector<std::string>& arguments)
{
    return outputOf (callOf (program, arguments));
}

std::vector<Entry> entriesOf (const std::filesystem::path& tar)
{
    std::vector<Entry> entries;

    for (const auto& line : linesOf (outputOf ("tar", { "--list", "--verbose", "--numeric-owner", "--file", tar })))
    {
        std::istringstream fields (line);
        Entry entry;
        std::string size, day, hour;
        fields >> entry.mode >> entry.owner >> size >> day >> hour >> std::ws;
        entry.time = day + " " + hour;
        std::getline (fields, entry.path);
        entries.push_back (entry);
    }

    return entries;
}

Unpacked::Unpacked (const std::filesystem::path& package)
{
    if (package.extension() == ".deb")
        outputOf ("dpkg-deb", { "--extract", package, folder.path() });
    else
        outputOf ("env", { "--chdir=" + folder.path().string(), paths::cmake(), "-E", "tar", "xf", package });
}

std::vector<std::string> Unpacked::files() const
{
    auto files = contents();
    std::erase_if (files, [this] (const auto& path) { return std::filesystem::is_directory (folder / path); });
    return files;
}
