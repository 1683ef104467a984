// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/LoudnessMeter.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::meter
{

struct LoudnessMeter::Library
{
    explicit Library (const AudioShape& shape)
        : state (ebur128_init (static_cast<unsigned> (shape.channels),
                               static_cast<unsigned long> (shape.sampleRate),
                               EBUR128_MODE_I | EBUR128_MODE_LRA | EBUR128_MODE_TRUE_PEAK))
    {
    }

    ~Library()
    {
        if (state != nullptr)
            ebur128_destroy (&state);
    }

    Library (const Library&) = delete;
    Library& operator= (const Library&) = delete;

    ebur128_state* state; // null for a rate that the library does not take
};

namespace
{
constexpr double absoluteGate = -70.0; // LUFS

constexpr auto notYet = std::numeric_limits<float>::quiet_NaN();

std::int64_t framesIn (double seconds, int sampleRate)
{
    return std::max (std::int64_t { 1 }, static_cast<std::int64_t> (std::lround (seconds * sampleRate)));
}
} // namespace

LoudnessMeter::LoudnessMeter (const AudioShape& shape)
    : channels (shape.channels),
      sampleRate (shape.sampleRate),
      library (std::make_unique<Library> (shape)),
      framesPerStep (framesIn (stepSeconds, shape.sampleRate))
{
}

LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add (std::span<const float> interleaved)
{
    if (library->state == nullptr)
        return;

    const auto channelCount = static_cast<std::size_t> (channels);

    while (! interleaved.empty())
    {
        // Up to the end of the present step, so that the courses do not depend on the size of the blocks.
        const auto framesToGo = static_cast<std::size_t> (framesPerStep - framesHeard % framesPerStep);
        const auto part = interleaved.first (std::min (interleaved.size(), framesToGo * channelCount));
        ebur128_add_frames_float (library->state, part.data(), part.size() / channelCount);
        framesHeard += static_cast<std::int64_t> (part.size() / channelCount);
        interleaved = interleaved.subspan (part.size());

        if (framesHeard % framesPerStep == 0)
            readCourses();
    }
}

void LoudnessMeter::readCourses()
{
    double loudness = 0.0;
    ebur128_loudness_momentary (library->state, &loudness);
    momentaryCourse.push_back (hasHeard (momentarySeconds) ? static_cast<float> (loudness) : notYet);
    ebur128_loudness_shortterm (library->state, &loudness);
    shortTermCourse.push_back (hasHeard (shortTermSeconds) ? static_cast<float> (loudness) : notYet);
}

bool LoudnessMeter::hasHeard (double seconds) const
{
    return framesHeard >= framesIn (seconds, sampleRate);
}

Figure LoudnessMeter::integrated() const
{
    double loudness = 0.0;

    if (! hasHeard (momentarySeconds) || library->state == nullptr)
        return std::nullopt;

    ebur128_loudness_global (library->state, &loudness);
    return finite (loudness);
}

Figure LoudnessMeter::range() const
{
    constexpr double secondsBetweenWindows = 1.0;
    const auto passesGate = [] (float loudness) { return double { loudness } >= absoluteGate; };

    if (! hasHeard (shortTermSeconds + secondsBetweenWindows)
        || std::none_of (shortTermCourse.begin(), shortTermCourse.end(), passesGate))
        return std::nullopt;

    double range = 0.0;
    ebur128_loudness_range (library->state, &range);
    return finite (range);
}

Figure LoudnessMeter::truePeak() const
{
    if (library->state == nullptr)
        return std::nullopt;

    double peak = 0.0;

    for (int channel = 0; channel < channels; ++channel)
    {
        double ofChannel = 0.0;
        ebur128_true_peak (library->state, static_cast<unsigned> (channel), &ofChannel);
        peak = std::max (peak, ofChannel);
    }

    return amplitudeDecibels (peak);
}

} // namespace larkspire::meter
