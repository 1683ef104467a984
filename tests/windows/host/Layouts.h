// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>

/** How the host renders each sound, and in this order: what it writes and what the tests read. */
struct Layout
{
    float rate; // Hz
    bool isMono;
};

inline constexpr std::array layouts { Layout { 48000.0f, false }, Layout { 48000.0f, true },
                                      Layout { 44100.0f, false }, Layout { 44100.0f, true },
                                      Layout { 96000.0f, false }, Layout { 96000.0f, true } };

inline constexpr int blockSize = 512;
