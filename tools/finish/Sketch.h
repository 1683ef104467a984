// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/Spool.h"
#include "finish/LimiterGain.h"
#include "meter/TruePeakMeter.h"
#include "meter/WeightedPower.h"

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

namespace larkspire::finish
{

/** What the limiter does to a sound. */
struct LimiterWork
{
    double shareOfTime = 0.0; // with more than 0.1 dB off
    std::int64_t times = 0;   // that it set in with as much
    double deepestDb = 0.0;   // its lowest gain

    bool operator== (const LimiterWork&) const = default;
};

/** What a gain with the limiter behind it comes to. */
struct Forecast
{
    meter::Figure lufs;
    LimiterWork limiter;
};

/** A sound in bins of a millisecond, each with its true peak and its weighted power: all that gain and limiter need to
    know of it, and as good as all that its loudness needs. A gain is tried on it in a fiftieth of the time that the
    sound itself would take. Its numbers wait on the disk, as the sound does. */
class Sketch
{
public:
    /** @param result  beside which the numbers wait. Throws Failure if they cannot. */
    Sketch (const AudioShape& shape, const std::filesystem::path& result);

    /** Takes whole frames, channels interleaved, finite. Throws Failure if the disk does not take the numbers. */
    void add (std::span<const float> interleaved);

    /** Nothing is added from here on. */
    void end();

    std::size_t framesPerBin() const noexcept { return binLength; }

    /** What comes of a gain and of a ceiling behind it, both linear; no ceiling, no limiter. */
    Forecast forecast (double gain, double ceiling);

private:
    friend class LimitedBins;

    void hearMagnitudes (std::span<const float> magnitudes);
    void pushPeak();
    void store();

    int sampleRate;
    std::size_t binLength;
    meter::TruePeakMeter peakMeter;
    meter::WeightedPower powerMeter;
    float peak = 0.0f; // of the bin that is being filled
    std::size_t framesInBin = 0;
    std::vector<float> peaks; // of whole bins that wait to be stored
    std::vector<float> powers;
    Spool numbers;
};

/** The bins of a sketch with the limiter's gain in them, one after the other from the first. One at a time reads a
    sketch. */
class LimitedBins
{
public:
    struct Bin
    {
        double gainAtStart = 1.0;
        double gainAtEnd = 1.0;
        double power = 0.0;
    };

    /** @param ceiling  linear, of the sound as it is in the sketch */
    LimitedBins (Sketch& sketch, double ceiling);

    /** Whether there is another bin. */
    bool hasNext();

    /** The next bin. Behind the last they go on without sound. */
    Bin next();

private:
    void readOn();

    Sketch& sketch;
    LimiterGain limiter;
    std::vector<float> buffer;
    std::size_t used = 0; // of the buffer
    std::deque<double> powers;
    std::size_t binsThere = 0; // read and not yet given
    double gain = 1.0;
};

} // namespace larkspire::finish
