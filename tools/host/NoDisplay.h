// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdlib>

namespace larkspire
{

/** Keeps JUCE inside the plug-in from connecting to an X server: to the one that DISPLAY names, and to :0 without it. A
    program that needs no window would end with a server that is not its own. No server can have the name that DISPLAY
    gets.

    To be called first of all in a program: the environment is nothing that threads may share. */
inline void useNoDisplay()
{
    setenv ("DISPLAY", ":none", 1); // NOLINT(concurrency-mt-unsafe)
}

} // namespace larkspire
