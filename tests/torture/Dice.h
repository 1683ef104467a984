// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

/** All that is left to chance, from one seed. Without the standard library's distributions, which differ from one
    library to the next, a seed gives the same sequence everywhere. */
class Dice
{
public:
    explicit Dice (std::uint64_t seed) : engine (seed) {}

    /** 0 to count - 1. */
    std::size_t below (std::size_t count) { return engine() % count; }

    /** Once in so many times. */
    bool onceIn (std::size_t times) { return below (times) == 0; }

    /** 0 to 1, with both ends. */
    float unit() { return static_cast<float> (engine() >> 40) / 16777215.0f; }

    /** -1 to 1. */
    float bipolar() { return 2.0f * unit() - 1.0f; }

    std::uint32_t bits() { return static_cast<std::uint32_t> (engine() >> 32); }

    template <typename List>
    const auto& oneOf (const List& list)
    {
        return list[below (std::size (list))];
    }

private:
    std::mt19937_64 engine;
};
