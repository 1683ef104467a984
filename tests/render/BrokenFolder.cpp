// SPDX-License-Identifier: AGPL-3.0-only
// Put in front of the C library with LD_PRELOAD: a folder cannot be read on behind an entry of a certain name, as on a
// disk that fails.
#include <dirent.h>
#include <dlfcn.h>

#include <cerrno>
#include <cstring>

extern "C" __attribute__ ((visibility ("default"))) dirent* readdir (DIR* folder)
{
    static DIR* broken = nullptr;
    using Readdir = dirent* (*)(DIR*);
    static const auto next = reinterpret_cast<Readdir> (dlsym (RTLD_NEXT, "readdir"));

    if (folder == broken)
    {
        broken = nullptr;
        errno = EIO;
        return nullptr;
    }

    auto* entry = next (folder);

    if (entry != nullptr && std::strcmp (entry->d_name, "breaks here") == 0)
        broken = folder;

    return entry;
}
