// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Signals.h"

#include <sndfile.h>

#include <cstdint>
#include <string>
#include <vector>

/** Sound in memory: whole numbers, channels interleaved, in the uppermost bits of 32. */
struct Recording
{
    int channels = 1;
    int sampleRate = 48000; // Hz
    std::vector<int> samples {};

    bool operator== (const Recording&) const = default;
};

/** Noise that swells and fades, at most half of full scale but for one sample at each of the two extremes. The same
    seed gives the same noise. */
Recording makeNoise (int channels, int frames, int bits, unsigned seed = 1, int sampleRate = 48000);

/** Writes a sound file. The format is the library's, container and sample type; floats are written as fractions of full
    scale. */
void write (const std::string& path, int format, const Recording& recording);
void writeFloats (
    const std::string& path, int format, int channels, const std::vector<float>& samples, int sampleRate = 48000);

/** Writes and reads WAV files of 32-bit floats, channel by channel, at a rate in Hz. They throw std::runtime_error if
    that fails or if the file is another one. */
void writeFloatWav (const std::string& path, const Channels& channels, int sampleRate);
Channels readFloatWav (const std::string& path, int sampleRate);

/** Expects that the samples of both are the same to the bit; says of each channel where the first other one is. */
void expectSameBits (const Channels& actual, const Channels& expected);

/** Reads a sound file as whole numbers, or as floats. */
Recording read (const std::string& path);
std::vector<float> readFloats (const std::string& path);

/** Writes a WAV file of silence that takes minutes to render and next to no room on the disk. */
void writeLongSilence (const std::string& path);

/** What the library says of a file. */
SF_INFO describe (const std::string& path);

/** The samples as fractions of full scale. */
std::vector<float> toFloats (const Recording& recording);

/** All bytes of a file. Throws std::runtime_error where there is none. */
std::string bytesOf (const std::string& path);
void writeBytes (const std::string& path, const std::string& bytes);

/** Makes a FLAC file state another number of sample frames than it holds; 0 says that it is not known. */
void stateLength (const std::string& flacPath, std::uint32_t frames);

constexpr int wav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int wav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
constexpr int wavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
constexpr int flac16 = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
constexpr int flac24 = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
constexpr int aiff16 = SF_FORMAT_AIFF | SF_FORMAT_PCM_16;
constexpr int aiff24 = SF_FORMAT_AIFF | SF_FORMAT_PCM_24;
constexpr int oggVorbis = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
constexpr int opus = SF_FORMAT_OGG | SF_FORMAT_OPUS;
constexpr int mp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
constexpr int au16 = SF_FORMAT_AU | SF_FORMAT_PCM_16;
constexpr int caf16 = SF_FORMAT_CAF | SF_FORMAT_PCM_16;
constexpr int w64 = SF_FORMAT_W64 | SF_FORMAT_PCM_16;
