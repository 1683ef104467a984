// SPDX-License-Identifier: AGPL-3.0-only
#include "packages/UnpackedSources.h"
#include "support/Recording.h"

#include <stdexcept>

namespace
{
constexpr unsigned longestBuild = 1800; // seconds; the compiler cache makes them ten
}

UnpackedSources::UnpackedSources()
{
    outputOf ("tar", { "--extract", "--file", packages::sources(), "--directory", folder.path() });
    std::filesystem::create_directory (*this / ".deps");
    outputOf ("cp", { "--recursive", "--dereference", paths::juce(), *this / ".deps/juce" });
}

std::vector<std::string> UnpackedSources::installedFiles()
{
    const auto programs = folder / "programs";
    std::filesystem::create_directory (programs);

    for (const std::string name : { "git", "apt-get", "curl", "wget" })
    {
        writeBytes (programs + "/" + name, "#!/bin/sh\necho \"$0 $*\" >>'" + (folder / "called") + "'\nexit 1\n");
        std::filesystem::permissions (programs + "/" + name, std::filesystem::perms::all);
    }

    const auto cmake = [&] (std::vector<std::string> arguments)
    {
        outputOf (
            Call { .arguments = std::move (arguments),
                   .program = paths::cmake(),
                   .environment = { { "PATH", programs + ":/usr/bin:/bin" }, { "DESTDIR", folder / "installed" } },
                   .folder = *this / "",
                   .longestRun = longestBuild });
    };

    cmake ({ "--preset", "release", "-DLARKSPIRE_TESTS=OFF" });
    cmake ({ "--build", "--preset", "release" });
    cmake ({ "--install", "build/release", "--prefix", "/" });

    if (std::filesystem::exists (folder / "called"))
        throw std::runtime_error ("the build called " + bytesOf (folder / "called"));

    return filesIn (folder, "installed");
}

void writeJuceArchive (const std::string& file, const std::string& name)
{
    const std::filesystem::path tree (std::filesystem::canonical (paths::juce()));
    const auto transform = "--transform=flags=r;s,^" + tree.filename().string() + "," + name + ",";
    outputOf ("tar", { "--create", "--file", file, transform, "--directory", tree.parent_path(), tree.filename() });
}
