// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <limits>
#include <string>
#include <vector>

/** Channels of equal length, linear with full scale 1.0. */
using Channels = std::vector<std::vector<float>>;

/** Two channels of equal length, linear with full scale 1.0. */
struct Signal
{
    std::string name;
    std::vector<float> left;
    std::vector<float> right;
};

/** What no converter gives and every plug-in gets some day: NaN, the infinities, the largest numbers. */
inline constexpr std::array badSamples { std::numeric_limits<float>::quiet_NaN(),
                                         std::numeric_limits<float>::infinity(),
                                         -std::numeric_limits<float>::infinity(),
                                         std::numeric_limits<float>::max(),
                                         -std::numeric_limits<float>::max() };

/** A signal with bad samples in it, one in 97 of each channel. */
Signal withBadSamples (Signal signal);

/** The signals that library and oracle are compared on, each of this length in frames: silence, an impulse, full-scale
    squares, noise from -60 to +26 dB, the real voice, denormals, numbers with NaN and infinities among them. */
std::vector<Signal> testSignals (std::size_t frames);

/** White noise of this peak level, different in both channels. */
Signal noise (std::size_t frames, double peakDb, unsigned int seed);

/** The spoken recordings that the system's sound tests come with, joined and repeated, the right channel a little late.
    Throws std::runtime_error if they are not installed. */
Signal voice (std::size_t frames);
Channels stereoVoice (std::size_t frames);
