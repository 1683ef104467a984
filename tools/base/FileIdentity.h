// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <utility>

namespace larkspire
{

/** The device and inode numbers, which tell one file from another whatever its paths are. */
using FileIdentity = std::pair<dev_t, ino_t>;

/** The identity of the file behind a path and its links; nullopt if there is none. */
inline std::optional<FileIdentity> identityOf (const std::filesystem::path& path)
{
    struct stat status = {};

    if (stat (path.c_str(), &status) != 0)
        return std::nullopt;

    return FileIdentity { status.st_dev, status.st_ino };
}

} // namespace larkspire
