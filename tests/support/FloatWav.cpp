// SPDX-License-Identifier: AGPL-3.0-only
#include "support/FloatWav.h"

#include <cstddef>
#include <sndfile.hh>
#include <stdexcept>

namespace
{
constexpr int format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
}

void writeFloatWav (const std::string& path, const Channels& channels, int sampleRate)
{
    std::vector<float> interleaved;
    const auto frames = channels.front().size();
    interleaved.reserve (frames * channels.size());

    for (std::size_t frame = 0; frame < frames; ++frame)
        for (const auto& channel : channels)
            interleaved.push_back (channel.at (frame));

    SndfileHandle file (path, SFM_WRITE, format, static_cast<int> (channels.size()), sampleRate);

    if (file.writef (interleaved.data(), static_cast<sf_count_t> (frames)) != static_cast<sf_count_t> (frames))
        throw std::runtime_error ("cannot write " + path);
}

Channels readFloatWav (const std::string& path, int sampleRate)
{
    SndfileHandle file (path);

    if (file.error() != SF_ERR_NO_ERROR || (file.format() & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK)) != format
        || file.samplerate() != sampleRate)
        throw std::runtime_error (path + " is not what was asked for");

    const auto count = static_cast<std::size_t> (file.channels());
    std::vector<float> interleaved (static_cast<std::size_t> (file.frames()) * count);
    file.readf (interleaved.data(), file.frames());
    Channels channels (count);

    for (std::size_t i = 0; i < interleaved.size(); ++i)
        channels[i % count].push_back (interleaved[i]);

    return channels;
}
