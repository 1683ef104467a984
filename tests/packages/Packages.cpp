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

std::filesystem::path packages::sources()
{
    return inPackages (sourcesFolder + ".tar.xz");
}

std::vector<std::string> documents()
{
    std::vector<std::string> names;

    for (const auto& name : contentsOf (paths::source ("docs")))
        if (name.ends_with (".md") || name.ends_with (".png") || name.ends_with (".csv"))
            names.push_back ("docs/" + name);

    return names;
}

std::vector<std::string> filesIn (const TemporaryFolder& folder, const std::string& below)
{
    const std::filesystem::path top = folder.path() / below;
    auto files = contentsOf (top);
    std::erase_if (files, [&top] (const auto& file) { return std::filesystem::is_directory (top / file); });
    return files;
}

InstalledBuild::InstalledBuild()
{
    outputOf (paths::cmake(), { "--install", paths::source ("build/release"), "--prefix", folder.path() });
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
