// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "torture/Mismatch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

/** A channel of a host: so many samples, with a strip before and behind that nobody may touch. */
class GuardedBuffer
{
public:
    /** For blocks of up to this many samples. */
    explicit GuardedBuffer (std::size_t capacity) : memory (capacity + 2 * strip, untouched()) {}

    /** This many samples from now on, all of them untouched, and fresh strips. */
    std::span<float> start (std::size_t frames)
    {
        count = frames;
        std::fill_n (memory.begin(), frames + 2 * strip, untouched());
        return samples();
    }

    std::span<float> samples() { return std::span (memory).subspan (strip, count); }

    /** Throws a Mismatch if something was written beside the samples. */
    void requireIntactStrips() const
    {
        const auto all = std::span (memory).first (count + 2 * strip);

        if (! std::ranges::all_of (all.first (strip), isUntouched))
            throw Mismatch ("something wrote in front of a buffer");

        if (! std::ranges::all_of (all.last (strip), isUntouched))
            throw Mismatch ("something wrote behind a buffer");
    }

    /** Whether a sample was not written since start(). */
    static bool isUntouched (float sample) { return std::bit_cast<std::uint32_t> (sample) == pattern; }

private:
    static constexpr std::size_t strip = 64;
    static constexpr std::uint32_t pattern = 0x7fd15ea5u; // a NaN, and none that arithmetic gives
    static float untouched() { return std::bit_cast<float> (pattern); }

    std::vector<float> memory;
    std::size_t count = 0;
};
