// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <cstddef>

namespace larkspire
{

/** The kinds of file that are written. */
enum class Container
{
    wav,
    flac,
    mp3,
    opus // in Ogg
};

/** How a sample is stored: as a whole number or as the float itself. The values are the widths in bits. */
enum class SampleType
{
    pcm16 = 16,
    pcm24 = 24,
    float32 = 32
};

/** What a result looks like on disk. FLAC knows no floats, and MP3 and Opus know no samples: those are given floats. */
struct Encoding
{
    Container container = Container::wav;
    SampleType samples = SampleType::pcm24;
    bool dithered = false; // whether whole numbers get noise ahead of rounding
};

/** Whether a kind of file holds samples, and not something that sounds like them. */
constexpr bool holdsSamples (Container container)
{
    return container == Container::wav || container == Container::flac;
}

/** The ending of a result's name, without the dot; also what the kind is called on the command line. */
constexpr const char* extensionOf (Container container)
{
    constexpr std::array names { "wav", "flac", "mp3", "opus" };
    return names[static_cast<std::size_t> (container)];
}

/** What people call a kind. */
constexpr const char* nameOf (Container container)
{
    constexpr std::array names { "WAV", "FLAC", "MP3", "Opus" };
    return names[static_cast<std::size_t> (container)];
}

/** The width of a stored sample, in bits. */
constexpr int bitsOf (SampleType samples)
{
    return static_cast<int> (samples);
}

} // namespace larkspire
