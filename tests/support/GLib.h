// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include <dlfcn.h>

/** GLib with its default context, loaded as hosts load it: all libraries of the process see it, and it stays. Tests
    that have it run in a process of their own. */
class GLib
{
public:
    GLib()
    {
        if (library == nullptr)
            throw std::runtime_error (dlerror()); // NOLINT(concurrency-mt-unsafe)
    }

    /** Whether some library of this process has brought it along. */
    static bool isThere() { return dlsym (RTLD_DEFAULT, "g_main_context_default") != nullptr; }

    /** One turn of the loop: everything that is due. Whether something was. */
    bool turn() const { return iterate (nullptr, 0) != 0; }

    /** The loop for some time; whether something was due in it. */
    bool turnFor (std::chrono::milliseconds time) const
    {
        bool found = false;

        for (const auto end = std::chrono::steady_clock::now() + time; std::chrono::steady_clock::now() < end;)
        {
            found = turn() || found;
            std::this_thread::sleep_for (std::chrono::milliseconds (2));
        }

        return found;
    }

    /** The loop until something holds; false if it does not within ten seconds. */
    bool turnUntil (const std::function<bool()>& holds) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds (10);

        while (! holds() && std::chrono::steady_clock::now() < end)
            turnFor (std::chrono::milliseconds (2));

        return holds();
    }

private:
    void* library = dlopen ("libglib-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
    int (*iterate) (void* context,
                    int mayWait) = reinterpret_cast<int (*) (void*, int)> (dlsym (library, "g_main_context_iteration"));
};
