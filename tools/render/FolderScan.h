// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/Failure.h"
#include "base/FileIdentity.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace larkspire::render
{

/** What a folder holds for the renderer. */
struct FolderContents
{
    std::vector<std::filesystem::path> recordings; // relative to the folder, in the order of their bytes
    std::size_t leftOut = 0;                       // files that are not recordings
    std::vector<Failure> faults;                   // folders that cannot be read
};

/** Looks for recordings in a folder and all below it.

    A recording is a file that begins as WAV, FLAC, AIFF and Ogg files do; whether the rest is intact shows when it is
    rendered. Files that cannot be read count as recordings, so that rendering them reports it. Hidden files and folders
    are passed over silently. A link to a file is taken like the file; a link to a folder is not followed, as it may
    lead round in a circle or out into the world, and is left out.

    A signal that asks for an end cuts the search short.

    @param except  folders below it that are not looked into, those of the results; nullopt for one that is still to
                   be made
*/
FolderContents scanFolder (const std::filesystem::path& folder, const std::vector<std::optional<FileIdentity>>& except);

} // namespace larkspire::render
