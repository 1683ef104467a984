// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <utility>

/** Does something again and again on a thread of its own until the end of this. */
class Repeating
{
public:
    explicit Repeating (std::function<void()> action)
        : thread (
            [this, repeat = std::move (action)] (const std::stop_token& stop)
            {
                for (; ! stop.stop_requested(); ++count)
                    repeat();
            })
    {
    }

    /** How often it was done. */
    std::size_t times() const { return count; }

private:
    std::atomic<std::size_t> count { 0 };
    std::jthread thread; // the last member: it begins when all others are there, and is joined before they go
};
