// SPDX-License-Identifier: AGPL-3.0-only
#include "render/FolderScan.h"

#include "audio/FileKind.h"
#include "base/Failure.h"
#include "base/FileDescriptor.h"
#include "base/StopSignal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

namespace larkspire::render
{

namespace
{
namespace fs = std::filesystem;

bool isHidden (const fs::path& path)
{
    return path.filename().string().starts_with ('.');
}

/** The bytes that tell a file's kind. Throws std::system_error if it cannot be read. */
std::string beginningOf (const fs::path& path)
{
    const FileDescriptor file (open (path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::string bytes (bytesOfKind, '\0');
    const auto count = file.isOpen() ? pread (file.get(), bytes.data(), bytes.size(), 0) : -1;

    if (count < 0)
        throw std::system_error (errno, std::generic_category());

    bytes.resize (static_cast<std::size_t> (count));
    return bytes;
}

std::vector<fs::directory_entry> sortedEntriesOf (const fs::path& folder, std::error_code& error)
{
    std::vector<fs::directory_entry> entries;

    // An iterator that meets an error is at the end as well.
    for (fs::directory_iterator iterator (folder, error); ! error && iterator != fs::directory_iterator();
         iterator.increment (error))
        entries.push_back (*iterator);

    std::sort (entries.begin(), entries.end());
    return entries;
}

struct Scan
{
    void lookInto (const fs::path& folder)
    {
        std::error_code error;
        const auto entries = sortedEntriesOf (folder, error);

        // What was read of it is not rendered: nobody could tell which part that was.
        if (error)
            return leaveOut (folder, "cannot be read: " + error.message(), true);

        for (const auto& entry : entries)
            if (! isHidden (entry.path()) && ! stopRequested())
                lookAt (entry);
    }

    void lookAt (const fs::directory_entry& entry)
    {
        const auto& path = entry.path();
        std::error_code error;
        const auto status = entry.status (error);

        if (fs::is_directory (status))
            lookAtFolder (entry);
        else if (fs::is_regular_file (status))
            lookAtFile (path);
        else if (isNamedAsSound (path))
            leaveOut (path, fs::exists (status) ? "is not a regular file" : "cannot be read: " + error.message(), true);
        else
            ++contents.withoutSound;
    }

    void lookAtFolder (const fs::directory_entry& entry)
    {
        std::error_code error;

        if (std::find (except.begin(), except.end(), identityOf (entry.path())) != except.end())
            return;

        if (entry.is_symlink (error))
            leaveOut (entry.path(), "is a link to a folder, which is not followed", false);
        else
            lookInto (entry.path());
    }

    void lookAtFile (const fs::path& path)
    try
    {
        const auto beginning = beginningOf (path);
        const auto kind = kindOf (beginning, path);

        if (kind.content == Content::recording)
            contents.recordings.push_back (path.lexically_relative (root));
        else if (beginning.empty() && isNamedAsSound (path))
            leaveOut (path, "is empty", true);
        else if (kind.content == Content::otherSound || isNamedAsSound (path))
            leaveOut (path, "is " + adviceFor (kind, path), true);
        else if (kind.content == Content::film)
            leaveOut (path, "is " + adviceFor (kind, path), false);
        else
            ++contents.withoutSound;
    }
    catch (const std::system_error& error)
    {
        leaveOut (path, "cannot be read: " + error.code().message(), isNamedAsSound (path));
    }

    void leaveOut (const fs::path& path, const std::string& reason, bool isFault)
    {
        contents.leftOut.push_back ({ .path = path, .reason = reason, .isFault = isFault });
    }

    const fs::path& root;
    const std::vector<std::optional<FileIdentity>>& except;
    FolderContents contents;
};
} // namespace

std::string lineOf (const LeftOut& left)
{
    return printable (left.path.string() + (left.isFault ? ": " : ": left out: ") + left.reason);
}

FolderContents scanFolder (const fs::path& folder, const std::vector<std::optional<FileIdentity>>& except)
{
    Scan scan { .root = folder, .except = except, .contents = {} };
    scan.lookInto (folder);
    return std::move (scan.contents);
}

} // namespace larkspire::render
