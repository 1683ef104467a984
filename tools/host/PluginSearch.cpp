// SPDX-License-Identifier: AGPL-3.0-only
#include "host/PluginSearch.h"

#include "base/Failure.h"

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace larkspire
{

namespace
{
std::string environmentValue (const char* name)
{
    // Nothing in this program changes the environment.
    const char* value = std::getenv (name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? value : "";
}

std::vector<std::filesystem::path> pluginFolders()
{
    std::vector<std::filesystem::path> folders;
    std::error_code error;
    const auto program = std::filesystem::read_symlink ("/proc/self/exe", error);

    if (! error)
        folders.push_back (program.parent_path());

    if (const auto home = environmentValue ("HOME"); ! home.empty())
        folders.push_back (std::filesystem::path (home) / ".vst");

    std::istringstream list (environmentValue ("VST_PATH"));

    for (std::string folder; std::getline (list, folder, ':');)
        if (! folder.empty())
            folders.emplace_back (folder);

    if (! error)
        folders.push_back ((program.parent_path() / LARKSPIRE_VST2_FROM_PROGRAM).lexically_normal());

    folders.emplace_back ("/usr/lib/vst");
    return folders;
}
} // namespace

std::filesystem::path findPlugin()
{
    constexpr const char* name = "Quendal Larkspire.so";

    for (const auto& folder : pluginFolders())
    {
        std::error_code error;

        if (std::filesystem::exists (folder / name, error))
            return folder / name;
    }

    throw Failure (name,
                   "is neither beside this program nor in ~/.vst, VST_PATH, where it was installed with the program, "
                   "or /usr/lib/vst; "
                   "say with --plugin where it is");
}

} // namespace larkspire
