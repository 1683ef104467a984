// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-windows-host COMMAND LIBRARY ARGUMENTS: what the tests ask of a library on Windows (Commands.h). Exits with
// 1 and a line on standard error where something does not work.
#include "windows/host/Commands.h"

#include <windows.h>

#include <cstdio>
#include <stdexcept>

namespace
{
struct Command
{
    const char* name;
    void (*run) (const commands::Arguments&);
};

constexpr Command table[] = { { "identity", commands::identity }, { "properties", commands::properties },
                              { "render", commands::render },     { "save", commands::save },
                              { "restore", commands::restore },   { "editor", commands::editor },
                              { "scale", commands::scale } };
} // namespace

int main (int argumentCount, char** argumentList)
{
    try
    {
        const commands::Arguments arguments (argumentList + 1, argumentList + argumentCount);

        if (OleInitialize (nullptr) != S_OK)
            throw std::runtime_error ("OLE does not start");

        for (const auto& command : table)
            if (arguments.at (0) == command.name)
            {
                command.run ({ arguments.begin() + 1, arguments.end() });
                return 0;
            }

        throw std::runtime_error ("there is no command " + arguments[0]);
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-windows-host: %s\n", fault.what());
        return 1;
    }
}
