// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/VoiceFigures.h"

#include "measure/Band.h"
#include "measure/Tone.h"
#include "meter/LoudnessMeter.h"
#include "meter/TruePeakMeter.h"
#include "meter/WeightedPower.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::measure
{

namespace
{
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

/** The pauses without their beginnings. */
std::vector<Stretch> roomAlone (const Take& take)
{
    constexpr double dyingAway = 0.3; // s
    auto pauses = take.pauses;

    for (auto& pause : pauses)
        pause.begin += static_cast<std::size_t> (dyingAway * take.sampleRate);

    return pauses;
}

/** The mean power in stretches of a sound of which the power of each bin is known. */
double powerIn (const std::vector<float>& bins, const std::vector<Stretch>& stretches, std::size_t framesPerBin)
{
    double sum = 0.0;
    std::size_t count = 0;

    for (const auto& stretch : stretches)
        for (auto bin = stretch.begin / framesPerBin; bin < std::min (bins.size(), stretch.end / framesPerBin); ++bin)
        {
            sum += static_cast<double> (bins[bin]);
            ++count;
        }

    return sum / static_cast<double> (count);
}
} // namespace

double pauseLevel (std::span<const float> sound, const Take& take)
{
    return levelIn (sound, roomAlone (take));
}

double distanceOfRoom (std::span<const float> sound, const Take& take)
{
    std::vector<float> bins;
    meter::WeightedPower weighted ({ .channels = 1, .sampleRate = take.sampleRate },
                                   [&bins] (float power) { bins.push_back (power); });
    weighted.add (sound);
    const auto framesPerBin = meter::WeightedPower::framesPerBin (take.sampleRate);
    return 10.0
           * std::log10 (powerIn (bins, take.phrases, framesPerBin) / powerIn (bins, roomAlone (take), framesPerBin));
}

double loudnessOf (std::span<const float> sound, int sampleRate)
{
    meter::LoudnessMeter meter ({ .channels = 1, .sampleRate = sampleRate }, meter::Courses::none);
    meter.add (sound);
    return meter.integrated().value_or (nothing);
}

double truePeakOf (std::span<const float> sound, int sampleRate)
{
    meter::TruePeakMeter meter ({ .channels = 1, .sampleRate = sampleRate });
    meter.add (sound);
    meter.end();
    return meter.peak().value_or (nothing);
}

double brightnessOf (std::span<const float> sound, const Take& take)
{
    constexpr Band treble { .low = 5000.0, .high = 16000.0 };
    constexpr Band middle { .low = 300.0, .high = 3000.0 };

    if (take.recordedRate <= 2.0 * treble.low)
        return nothing;

    return levelIn (inBand (sound, treble, take.sampleRate), take.phrases)
           - levelIn (inBand (sound, middle, take.sampleRate), take.phrases);
}

double driftInPauses (const meter::TimeCourse& gain, const Take& take)
{
    const auto at = [&gain] (std::size_t frame)
    { return gain.mean (frame / static_cast<std::size_t> (gain.samplesPerBin())); };
    double sum = 0.0;

    for (const auto& pause : take.pauses)
        sum += toDecibels (at (pause.end - 1) / at (pause.begin));

    return sum / static_cast<double> (take.pauses.size());
}

} // namespace larkspire::measure
