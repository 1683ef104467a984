// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <utility>

namespace larkspire
{

/** What tells one file from another however it is called: the numbers of its device and of its node. */
using FileIdentity = std::pair<dev_t, ino_t>;

/** The identity of what a path leads to, through links; nothing where it leads to nothing. */
inline std::optional<FileIdentity> identityOf (const std::filesystem::path& path)
{
    struct stat status = {};

    if (stat (path.c_str(), &status) != 0)
        return std::nullopt;

    return FileIdentity { status.st_dev, status.st_ino };
}

} // namespace larkspire
