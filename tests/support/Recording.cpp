// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>

namespace
{
struct Close
{
    void operator() (SNDFILE* opened) const noexcept { sf_close (opened); }
};

using SoundFile = std::unique_ptr<SNDFILE, Close>;

SoundFile open (const std::string& path, int direction, SF_INFO& info)
{
    SoundFile file (sf_open (path.c_str(), direction, &info));

    if (file == nullptr)
        throw std::runtime_error (path + ": " + sf_strerror (nullptr));

    return file;
}

SoundFile create (const std::string& path, int format, const Recording& shape)
{
    SF_INFO info {};
    info.samplerate = shape.sampleRate;
    info.channels = shape.channels;
    info.format = format;
    auto file = open (path, SFM_WRITE, info);

    // Else FLAC without samples would be an empty file.
    if ((format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC)
        sf_command (file.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);

    return file;
}

/** All samples of a file, which may not state its length. */
template <typename Sample>
std::vector<Sample> samplesIn (const std::string& path, sf_count_t (*readSome) (SNDFILE*, Sample*, sf_count_t))
{
    SF_INFO info {};
    const auto file = open (path, SFM_READ, info);
    std::vector<Sample> samples;
    std::array<Sample, 4096> part {};

    while (const auto count = readSome (file.get(), part.data(), std::ssize (part)))
        samples.insert (samples.end(), part.begin(), part.begin() + count);

    return samples;
}

/** A little-endian number of four bytes. */
std::string fourBytes (std::uint32_t number)
{
    std::string bytes;

    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char> (number >> shift);

    return bytes;
}
} // namespace

Recording makeNoise (int channels, int frames, int bits, unsigned seed, int sampleRate)
{
    Recording recording { .channels = channels, .sampleRate = sampleRate };
    std::minstd_rand generator (seed);
    std::uniform_real_distribution<double> noise (-0.5, 0.5);
    const auto steps = std::exp2 (bits - 1);
    const auto toUppermostBits = 1 << (32 - bits);

    for (int frame = 0; frame < frames; ++frame)
    {
        const auto swell = 0.5 - 0.5 * std::cos (frame * 0.002);

        for (int channel = 0; channel < channels; ++channel)
            recording.samples.push_back (static_cast<int> (std::lrint (noise (generator) * swell * steps))
                                         * toUppermostBits);
    }

    if (frames > 2)
    {
        const auto last = recording.samples.size() - 1;
        recording.samples[last] = static_cast<int> (-steps) * toUppermostBits;
        recording.samples[last - static_cast<std::size_t> (channels)] = static_cast<int> (steps - 1) * toUppermostBits;
    }

    return recording;
}

void write (const std::string& path, int format, const Recording& recording)
{
    if (const auto type = format & SF_FORMAT_SUBMASK; type == SF_FORMAT_FLOAT || type == SF_FORMAT_VORBIS
                                                      || type == SF_FORMAT_OPUS || type == SF_FORMAT_MPEG_LAYER_III)
        return writeFloats (path, format, recording.channels, toFloats (recording), recording.sampleRate);

    const auto file = create (path, format, recording);
    const auto size = std::ssize (recording.samples);

    if (sf_write_int (file.get(), recording.samples.data(), size) != size)
        throw std::runtime_error (path + ": " + sf_strerror (file.get()));
}

void writeFloats (const std::string& path, int format, int channels, const std::vector<float>& samples, int sampleRate)
{
    const auto file = create (path, format, { .channels = channels, .sampleRate = sampleRate });

    if (sf_write_float (file.get(), samples.data(), std::ssize (samples)) != std::ssize (samples))
        throw std::runtime_error (path + ": " + sf_strerror (file.get()));
}

void writeFloatWav (const std::string& path, const Channels& channels, int sampleRate)
{
    std::vector<float> interleaved;

    for (std::size_t frame = 0; frame < channels.front().size(); ++frame)
        for (const auto& channel : channels)
            interleaved.push_back (channel.at (frame));

    writeFloats (path, wavFloat, static_cast<int> (channels.size()), interleaved, sampleRate);
}

Channels readFloatWav (const std::string& path, int sampleRate)
{
    const auto info = describe (path);

    const auto format = info.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK);

    if ((format != wavFloat && format != (SF_FORMAT_WAVEX | SF_FORMAT_FLOAT)) || info.samplerate != sampleRate)
        throw std::runtime_error (path + " is not what was asked for");

    const auto interleaved = readFloats (path);
    Channels channels (static_cast<std::size_t> (info.channels));

    for (std::size_t i = 0; i < interleaved.size(); ++i)
        channels[i % channels.size()].push_back (interleaved[i]);

    return channels;
}

void expectSameBits (const Channels& actual, const Channels& expected)
{
    const auto sameBits = [] (float a, float b)
    { return std::bit_cast<std::uint32_t> (a) == std::bit_cast<std::uint32_t> (b); };
    ASSERT_EQ (actual.size(), expected.size());

    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        ASSERT_EQ (actual[i].size(), expected[i].size());
        const auto first = std::ranges::mismatch (actual[i], expected[i], sameBits).in1;
        EXPECT_EQ (first - actual[i].begin(), std::ssize (expected[i])) << "first other sample of channel " << i;
    }
}

Recording read (const std::string& path)
{
    const auto info = describe (path);
    return { .channels = info.channels, .sampleRate = info.samplerate, .samples = samplesIn<int> (path, sf_read_int) };
}

std::vector<float> readFloats (const std::string& path)
{
    return samplesIn<float> (path, sf_read_float);
}

void writeLongSilence (const std::string& path)
{
    constexpr std::uint32_t size = 2000000000;
    const auto twoBytes = [] (std::uint32_t number) { return fourBytes (number).substr (0, 2); };
    writeBytes (path,
                "RIFF" + fourBytes (size + 36) + "WAVEfmt " + fourBytes (16) + twoBytes (1) + twoBytes (1)
                    + fourBytes (48000) + fourBytes (96000) + twoBytes (2) + twoBytes (16) + "data" + fourBytes (size));
    std::filesystem::resize_file (path, std::uintmax_t { 44 } + size);
}

SF_INFO describe (const std::string& path)
{
    SF_INFO info {};
    open (path, SFM_READ, info);
    return info;
}

std::vector<float> toFloats (const Recording& recording)
{
    std::vector<float> floats;
    floats.reserve (recording.samples.size());

    for (const auto sample : recording.samples)
        floats.push_back (static_cast<float> (sample / 2147483648.0));

    return floats;
}

std::string bytesOf (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path + " cannot be read");

    return { std::istreambuf_iterator<char> (file), {} };
}

void stateLength (const std::string& flacPath, std::uint32_t frames)
{
    // The number takes the last 36 bits of the eight bytes at 18, the most significant first.
    auto bytes = bytesOf (flacPath);
    bytes.at (21) = static_cast<char> (bytes.at (21) & 0xf0);

    for (std::size_t i = 0; i < 4; ++i)
        bytes.at (22 + i) = static_cast<char> (frames >> (24 - 8 * i));

    writeBytes (flacPath, bytes);
}

void writeBytes (const std::string& path, const std::string& bytes)
{
    std::ofstream file (path, std::ios::binary);
    file.write (bytes.data(), std::ssize (bytes));

    if (! file.flush())
        throw std::runtime_error (path + ": cannot be written");
}
