// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/FileIdentity.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace larkspire::render
{

/** What was found and is not rendered. */
struct LeftOut
{
    std::filesystem::path path;
    std::string reason; // with a verb: "is empty"
    bool isFault;       // whether the user may have counted on it, so that the exit status has to tell
};

/** The line that says so. */
std::string lineOf (const LeftOut& left);

/** What a folder holds for the renderer. */
struct FolderContents
{
    std::vector<std::filesystem::path> recordings; // relative to the folder, in the order of their bytes
    std::vector<LeftOut> leftOut;
    std::size_t withoutSound = 0; // files that nobody takes for a recording
};

/** Looks for recordings in a folder and all below it.

    A recording is a file that begins as one of a kind that is rendered; whether the rest is intact shows when it is.
    Files that are sound by name or content but cannot be rendered are left out as faults, and so is a folder that
    cannot be read to its end, with all that it holds. Films are left out, other files that cannot be read, and a link
    to a folder, as it may lead round in a circle or to another place; a link to a file is taken like the file. Hidden
    files and folders are passed over silently.

    A signal that asks for an end cuts the search short.

    @param except  folders below it that are not looked into, those of the results; nullopt for one that is still to
                   be made
*/
FolderContents scanFolder (const std::filesystem::path& folder, const std::vector<std::optional<FileIdentity>>& except);

} // namespace larkspire::render
