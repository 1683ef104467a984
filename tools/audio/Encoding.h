// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** The kinds of file that are written. */
enum class Container
{
    wav,
    flac
};

/** How a sample is stored: as a whole number or as the float itself. The values are the widths in bits. */
enum class SampleType
{
    pcm16 = 16,
    pcm24 = 24,
    float32 = 32
};

/** What a result looks like on disk. FLAC knows no floats. */
struct Encoding
{
    Container container = Container::wav;
    SampleType samples = SampleType::pcm24;
};

/** The ending of a result's name, without the dot. */
constexpr const char* extensionOf (Container container)
{
    return container == Container::flac ? "flac" : "wav";
}

/** The width of a stored sample, in bits. */
constexpr int bitsOf (SampleType samples)
{
    return static_cast<int> (samples);
}

} // namespace larkspire
