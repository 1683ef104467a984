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
                               EBUR128_MODE_I | EBUR128_MODE_LRA))
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

constexpr double secondsBetweenWindows = 1.0; // of those that the range is made of
constexpr std::int64_t stepsBetweenWindows = 10;

constexpr auto notYet = std::numeric_limits<float>::quiet_NaN();

std::int64_t framesIn (double seconds, int sampleRate)
{
    return std::max (std::int64_t { 1 }, static_cast<std::int64_t> (std::lround (seconds * sampleRate)));
}
} // namespace

LoudnessMeter::LoudnessMeter (const AudioShape& shape, Courses courses)
    : channels (shape.channels),
      sampleRate (shape.sampleRate),
      wanted (courses),
      library (std::make_unique<Library> (shape)),
      framesPerStep (framesIn (stepSeconds, shape.sampleRate))
{
}

LoudnessMeter::~LoudnessMeter() = default;
LoudnessMeter::LoudnessMeter (LoudnessMeter&&) noexcept = default;
LoudnessMeter& LoudnessMeter::operator= (LoudnessMeter&&) noexcept = default;

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

        if (framesHeard % framesPerStep != 0)
            continue;

        if (wanted == Courses::kept)
            readCourses();

        if (framesHeard / framesPerStep % stepsBetweenWindows == 0)
            lookAtWindow();
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

void LoudnessMeter::lookAtWindow()
{
    double loudness = 0.0;
    ebur128_loudness_shortterm (library->state, &loudness);
    anyWindowCounts = anyWindowCounts || (hasHeard (shortTermSeconds) && loudness >= absoluteGate);
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
    if (! hasHeard (shortTermSeconds + secondsBetweenWindows) || ! anyWindowCounts)
        return std::nullopt;

    double range = 0.0;
    ebur128_loudness_range (library->state, &range);
    return finite (range);
}

} // namespace larkspire::meter
