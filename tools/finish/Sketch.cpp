// SPDX-License-Identifier: AGPL-3.0-only
#include "finish/Sketch.h"

#include "finish/GatedLoudness.h"

#include <algorithm>
#include <cmath>

namespace larkspire::finish
{

namespace
{
constexpr std::size_t numbersPerBin = 2;
constexpr std::size_t binsAtOnce = 4096;

/** Counts what the limiter does, bin by bin. */
class Watch
{
public:
    void add (double gain)
    {
        static const double noticeable = std::pow (10.0, -0.1 / 20.0);
        const auto works = gain < noticeable;
        binsAtWork += works ? 1 : 0;
        times += works && ! worked ? 1 : 0;
        worked = works;
        least = std::min (least, gain);
        ++bins;
    }

    LimiterWork work() const
    {
        return { .shareOfTime = bins > 0 ? static_cast<double> (binsAtWork) / static_cast<double> (bins) : 0.0,
                 .times = times,
                 .deepestDb = 20.0 * std::log10 (least) };
    }

private:
    std::int64_t bins = 0;
    std::int64_t binsAtWork = 0;
    std::int64_t times = 0;
    bool worked = false;
    double least = 1.0;
};
} // namespace

Sketch::Sketch (const AudioShape& shape, const std::filesystem::path& result)
    : sampleRate (shape.sampleRate),
      binLength (meter::WeightedPower::framesPerBin (shape.sampleRate)),
      peakMeter (shape, [this] (std::span<const float> magnitudes) { hearMagnitudes (magnitudes); }),
      powerMeter (shape, [this] (float power) { powers.push_back (power); }),
      numbers (result)
{
}

void Sketch::add (std::span<const float> interleaved)
{
    powerMeter.add (interleaved);
    peakMeter.add (interleaved);
    store();
}

void Sketch::end()
{
    peakMeter.end();

    if (framesInBin > 0)
        pushPeak();

    // What does not fill a bin is too short to be heard of in the loudness.
    powers.resize (peaks.size());
    store();
}

void Sketch::hearMagnitudes (std::span<const float> magnitudes)
{
    while (! magnitudes.empty())
    {
        const auto part = magnitudes.first (std::min (magnitudes.size(), binLength - framesInBin));
        peak = std::max (peak, *std::max_element (part.begin(), part.end()));
        framesInBin += part.size();
        magnitudes = magnitudes.subspan (part.size());

        if (framesInBin == binLength)
            pushPeak();
    }
}

void Sketch::pushPeak()
{
    peaks.push_back (peak);
    peak = 0.0f;
    framesInBin = 0;
}

void Sketch::store()
{
    const auto bins = std::min (peaks.size(), powers.size());
    std::vector<float> pairs;
    pairs.reserve (bins * numbersPerBin);

    for (std::size_t bin = 0; bin < bins; ++bin)
    {
        pairs.push_back (peaks[bin]);
        pairs.push_back (powers[bin]);
    }

    numbers.append (pairs);
    peaks.erase (peaks.begin(), peaks.begin() + static_cast<std::ptrdiff_t> (bins));
    powers.erase (powers.begin(), powers.begin() + static_cast<std::ptrdiff_t> (bins));
}

Forecast Sketch::forecast (double gain, double ceiling)
{
    LimitedBins bins (*this, ceiling / gain);
    GatedLoudness loudness (sampleRate, binLength);
    Watch watch;

    while (bins.hasNext())
    {
        const auto bin = bins.next();

        // The mean square of a gain that goes in a straight line.
        const auto square =
            (bin.gainAtStart * bin.gainAtStart + bin.gainAtStart * bin.gainAtEnd + bin.gainAtEnd * bin.gainAtEnd) / 3.0;
        loudness.add (bin.power * gain * gain * square);
        watch.add (bin.gainAtEnd);
    }

    return { .lufs = loudness.integrated(), .limiter = watch.work() };
}

LimitedBins::LimitedBins (Sketch& sketchOfSound, double ceiling)
    : sketch (sketchOfSound),
      limiter (ceiling, static_cast<double> (sketchOfSound.binLength) / sketchOfSound.sampleRate)
{
    sketch.numbers.rewind();

    for (std::size_t i = 0; i <= LimiterGain::delay; ++i)
        readOn();
}

bool LimitedBins::hasNext()
{
    return binsThere > 0;
}

LimitedBins::Bin LimitedBins::next()
{
    Bin bin { .gainAtStart = gain, .power = powers.front() };
    powers.pop_front();
    binsThere -= binsThere > 0 ? 1 : 0;
    readOn();
    bin.gainAtEnd = gain;
    return bin;
}

void LimitedBins::readOn()
{
    if (used == buffer.size())
    {
        buffer.resize (numbersPerBin * binsAtOnce);
        buffer.resize (sketch.numbers.read (buffer));
        used = 0;
    }

    if (used == buffer.size())
    {
        powers.push_back (0.0);
        gain = limiter.next (0.0);
        return;
    }

    gain = limiter.next (double { buffer[used] });
    powers.push_back (double { buffer[used + 1] });
    used += numbersPerBin;
    ++binsThere;
}

} // namespace larkspire::finish
