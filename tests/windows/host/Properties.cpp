// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/Commands.h"

#include "support/vst3/Vst3Module.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

void commands::properties (const Arguments& arguments)
{
    const auto& library = arguments.at (0);
    const auto file = std::filesystem::is_directory (library) ? Vst3Module::libraryOf (library).string() : library;
    std::string resource (GetFileVersionInfoSizeA (file.c_str(), nullptr), '\0');
    GetFileVersionInfoA (file.c_str(), 0, static_cast<DWORD> (resource.size()), resource.data());
    const auto query = [&resource] (const std::string& name)
    {
        void* value = nullptr;
        UINT size = 0;

        if (VerQueryValueA (resource.data(), name.c_str(), &value, &size) == FALSE)
            throw std::runtime_error ("the file says nothing of " + name);

        return value;
    };

    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*> (query ("\\"));
    const auto print = [] (const char* name, DWORD high, DWORD low)
    { std::printf ("%s: %d.%d.%d.%d\n", name, HIWORD (high), LOWORD (high), HIWORD (low), LOWORD (low)); };
    print ("fixed file version", fixed.dwFileVersionMS, fixed.dwFileVersionLS);
    print ("fixed product version", fixed.dwProductVersionMS, fixed.dwProductVersionLS);

    for (const std::string name : { "CompanyName", "FileDescription", "FileVersion", "ProductName", "ProductVersion" })
        std::printf (
            "%s: %s\n", name.c_str(), static_cast<const char*> (query ("\\StringFileInfo\\040904b0\\" + name)));
}
