// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>

/** Counts what an audio thread must not do, on the calling thread, from construction until read.

    Allocations and locks are counted by functions of this program that stand in front of the C library's; the loaded
    library finds them first. System calls are caught by the kernel on behalf of this thread: the first one in a scope
    is let through and noted, later ones run freely, so the count of system calls is 0 or 1.
*/
class RealTimeScope
{
public:
    RealTimeScope();
    ~RealTimeScope();
    RealTimeScope (const RealTimeScope&) = delete;
    RealTimeScope& operator= (const RealTimeScope&) = delete;

    struct Counts
    {
        std::size_t allocations = 0; // and releases
        std::size_t locks = 0;       // mutexes, reader-writer locks, conditions and semaphores, waited for or signalled
        std::size_t systemCalls = 0;
        long firstSystemCall = -1; // its number
    };

    /** Stops counting and tells. */
    Counts stop();
};

/** While this lives, the C library has no memory for requests of exactly this size on the calling thread. */
class ScopedRefusal
{
public:
    explicit ScopedRefusal (std::size_t size);
    ~ScopedRefusal();
    ScopedRefusal (const ScopedRefusal&) = delete;
    ScopedRefusal& operator= (const ScopedRefusal&) = delete;
};
