// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <vector>

/** A list that any thread appends to while one other takes what is there. The audio thread is among those that append,
    so appending neither locks nor allocates; what finds the list full is counted and dropped. */
template <typename Entry, std::size_t capacity>
class CallLog
{
public:
    /** Any thread. */
    void append (const Entry& entry) noexcept
    {
        auto position = appended.load (std::memory_order_relaxed);

        do
        {
            if (position - taken.load (std::memory_order_acquire) >= capacity)
            {
                ++droppedCount;
                return;
            }
        } while (! appended.compare_exchange_weak (position, position + 1, std::memory_order_relaxed));

        auto& place = places[position % capacity];
        place.entry = entry;
        place.filledBy.store (position + 1, std::memory_order_release);
    }

    /** All entries since the last call of this, one thread at a time. An entry that is just being written stays for the
        next call, and so do those behind it. */
    std::vector<Entry> takeAll()
    {
        std::vector<Entry> entries;

        for (auto position = taken.load (std::memory_order_relaxed);; ++position)
        {
            const auto& place = places[position % capacity];

            if (place.filledBy.load (std::memory_order_acquire) != position + 1)
                return entries;

            entries.push_back (place.entry);
            taken.store (position + 1, std::memory_order_release); // from here on the place may be written anew
        }
    }

    /** How many entries have found the list full. */
    std::size_t dropped() const noexcept { return droppedCount; }

private:
    struct Place
    {
        Entry entry {};
        std::atomic<std::size_t> filledBy { 0 }; // the count of entries with this one
    };

    std::array<Place, capacity> places {};
    std::atomic<std::size_t> appended { 0 };
    std::atomic<std::size_t> taken { 0 };
    std::atomic<std::size_t> droppedCount { 0 };
};
