// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace larkspire
{

/** Brings sound from one sample rate to another, by libsoxr at its very high quality, which reaches to 24 bits and
    beyond. What comes out is aligned with what goes in, and does not depend on the blocks that it comes in. */
class Resampler
{
public:
    /** @param from, to  in Hz. Throws std::bad_alloc if the library has no memory. */
    Resampler (int channels, int from, int to);
    ~Resampler();

    Resampler (const Resampler&) = delete;
    Resampler& operator= (const Resampler&) = delete;

    /** Takes whole frames, channels interleaved, and gives those that come out of it so far. They are there until the
        next call. */
    std::span<const float> process (std::span<const float> interleaved);

    /** Gives the frames that are still to come. Nothing is taken afterwards. */
    std::span<const float> end();

private:
    struct Library;

    std::span<const float> run (const float* input, std::size_t frames);

    std::size_t channels;
    double ratio;
    std::unique_ptr<Library> library;
    std::vector<float> output;
};

} // namespace larkspire
