// SPDX-License-Identifier: AGPL-3.0-only
#include "render/FolderScan.h"

#include "audio/FileKind.h"
#include "base/FileDescriptor.h"
#include "base/StopSignal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace larkspire::render
{

namespace
{
namespace fs = std::filesystem;

bool isHidden (const fs::path& path)
{
    return path.filename().string().starts_with ('.');
}

bool isRecording (const fs::path& path)
{
    const FileDescriptor file (open (path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));

    if (! file.isOpen())
        return errno != ENOENT && errno != ELOOP;

    std::array<char, 12> bytes {};
    const auto count = pread (file.get(), bytes.data(), bytes.size(), 0);
    return count < 0 || beginsAsRecording ({ bytes.data(), static_cast<std::size_t> (count) });
}

std::vector<fs::directory_entry> sortedEntriesOf (const fs::path& folder)
{
    std::error_code error;
    fs::directory_iterator iterator (folder, error);

    if (error)
        throw Failure (folder, "cannot be read: " + error.message());

    std::vector<fs::directory_entry> entries;

    for (; iterator != fs::directory_iterator(); iterator.increment (error))
    {
        entries.push_back (*iterator);

        if (error)
            break;
    }

    std::sort (entries.begin(), entries.end());
    return entries;
}

struct Scan
{
    void lookInto (const fs::path& folder)
    {
        try
        {
            for (const auto& entry : sortedEntriesOf (folder))
                if (! isHidden (entry.path()) && ! stopRequested())
                    lookAt (entry);
        }
        catch (const Failure& fault)
        {
            contents.faults.push_back (fault);
        }
    }

    void lookAt (const fs::directory_entry& entry)
    {
        std::error_code error;

        if (entry.is_directory (error) && ! entry.is_symlink (error))
        {
            if (std::find (except.begin(), except.end(), identityOf (entry.path())) == except.end())
                lookInto (entry.path());
        }
        else if (entry.is_regular_file (error) && isRecording (entry.path()))
            contents.recordings.push_back (entry.path().lexically_relative (root));
        else
            ++contents.leftOut;
    }

    const fs::path& root;
    const std::vector<std::optional<FileIdentity>>& except;
    FolderContents contents;
};
} // namespace

FolderContents scanFolder (const fs::path& folder, const std::vector<std::optional<FileIdentity>>& except)
{
    Scan scan { .root = folder, .except = except, .contents = {} };
    scan.lookInto (folder);
    return std::move (scan.contents);
}

} // namespace larkspire::render
