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

/** How a sample is stored: whole numbers of so many bits, or the 32-bit float itself. */
enum class SampleType
{
    pcm16,
    pcm24,
    float32
};

/** What a result looks like on disk. FLAC knows no floats. */
struct Encoding
{
    Container container;
    SampleType samples;
};

/** The ending of a result's name, without the dot. */
constexpr const char* extensionOf (Container container)
{
    return container == Container::flac ? "flac" : "wav";
}

/** The width of a stored sample, in bits. */
constexpr int bitsOf (SampleType samples)
{
    switch (samples)
    {
    case SampleType::pcm16:
        return 16;
    case SampleType::pcm24:
        return 24;
    case SampleType::float32:
        break;
    }

    return 32;
}

} // namespace larkspire
