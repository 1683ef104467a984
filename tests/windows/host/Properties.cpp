// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/Commands.h"

#include <windows.h>

#include <cstdio>
#include <stdexcept>

void commands::properties (const Arguments& arguments)
{
    std::string resource (GetFileVersionInfoSizeA (arguments.at (0).c_str(), nullptr), '\0');
    GetFileVersionInfoA (arguments.at (0).c_str(), 0, static_cast<DWORD> (resource.size()), resource.data());
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
