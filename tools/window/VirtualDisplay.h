// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>

#include <sys/types.h>

namespace larkspire::window
{

/** An invisible X server of this program's own: 1024 by 768 pixels of 24 bits, without a window manager, but with
    the names of properties that every window manager registers and programs rely on. The environment's DISPLAY names
    it for as long as this lives. Create it while the program has one thread. It ends with the program, also if that
    crashes. */
class VirtualDisplay
{
public:
    /** Starts the server and waits until it takes windows. Throws Failure without one. */
    VirtualDisplay();
    ~VirtualDisplay();

    VirtualDisplay (const VirtualDisplay&) = delete;
    VirtualDisplay& operator= (const VirtualDisplay&) = delete;

private:
    pid_t server = -1;
    std::string displayBefore; // what DISPLAY was, and is again afterwards
};

} // namespace larkspire::window
