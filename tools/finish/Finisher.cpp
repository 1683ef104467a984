// SPDX-License-Identifier: AGPL-3.0-only
#include "finish/Finisher.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::finish
{

namespace
{
/** What lies between the points that true-peak meters look at. */
constexpr double marginDb = 0.02;

/** How much gain the limiter's own loss is made good with. With more it would do nothing but press the voice flat. */
constexpr double mostMadeGoodDb = 6.0;

constexpr double tolerance = 0.05;   // LU and dB
constexpr double closeEnough = 0.01; // LU, of a forecast
constexpr int mostTrials = 50;
constexpr int mostRounds = 3;

double linear (double decibels)
{
    return std::pow (10.0, decibels / 20.0);
}
} // namespace

Finisher::Finisher (const AudioShape& soundShape, const Target& target, const std::filesystem::path& result)
    : shape (soundShape),
      finished { .target = target },
      samples (result),
      aimLufs (target.lufs),
      aimDbtp (target.ceilingDbtp - marginDb)
{
    if (meter::WeightedPower::framesPerBin (shape.sampleRate) > 0)
        sketch.emplace (shape, result);
}

void Finisher::add (std::span<const float> interleaved)
{
    samples.append (interleaved);
    allFinite =
        allFinite
        && std::all_of (interleaved.begin(), interleaved.end(), [] (float sample) { return std::isfinite (sample); });

    if (sketch.has_value() && allFinite)
        sketch->add (interleaved);
}

void Finisher::end()
{
    if (! allFinite)
        sketch.reset();

    if (sketch.has_value())
        sketch->end();

    plan();
    readFromTheStart();
}

void Finisher::plan()
{
    const auto untouched = sketch ? sketch->forecast (1.0, std::numeric_limits<double>::infinity()).lufs : std::nullopt;

    if (! untouched.has_value())
    {
        sketch.reset();
        return;
    }

    // Limiting takes loudness and never adds any, so a step by what is missing does not overshoot, and leads to the
    // least gain that fits. Where more than one does, as quiet words come and go through the meter's gate, it limits
    // least.
    const auto least = aimLufs - *untouched;
    finished.gainDb = least;
    louderIsImpossible = false;

    for (int trial = 0; trial < mostTrials; ++trial)
    {
        const auto missing = aimLufs - forecastAt (finished.gainDb);

        if (missing < closeEnough)
            break;

        finished.gainDb = std::min (finished.gainDb + missing, least + mostMadeGoodDb);
        louderIsImpossible = finished.gainDb == least + mostMadeGoodDb;

        if (louderIsImpossible)
            break;
    }

    finished.limiter = sketch->forecast (linear (finished.gainDb), linear (aimDbtp)).limiter;
}

double Finisher::forecastAt (double gainDb)
{
    constexpr double nothing = -200.0; // LUFS
    return sketch->forecast (linear (gainDb), linear (aimDbtp)).lufs.value_or (nothing);
}

void Finisher::readFromTheStart()
{
    samples.rewind();
    bins.reset();
    frameInBin = 0;

    if (sketch.has_value())
        bins.emplace (*sketch, linear (aimDbtp) / linear (finished.gainDb));
}

std::size_t Finisher::read (std::span<float> interleaved)
{
    const auto channels = static_cast<std::size_t> (shape.channels);
    const auto count = samples.read (interleaved.first (interleaved.size() / channels * channels));

    if (! bins.has_value())
        return count;

    const auto gain = linear (finished.gainDb);
    const auto binLength = sketch->framesPerBin();

    for (std::size_t i = 0; i < count; i += channels)
    {
        if (frameInBin == 0)
        {
            bin = bins->next();
            slope = (bin.gainAtEnd - bin.gainAtStart) / static_cast<double> (binLength);
        }

        const auto limited = bin.gainAtStart + slope * static_cast<double> (frameInBin);
        frameInBin = frameInBin + 1 == binLength ? 0 : frameInBin + 1;

        for (std::size_t channel = 0; channel < channels; ++channel)
            interleaved[i + channel] = static_cast<float> (double { interleaved[i + channel] } * gain * limited);
    }

    return count;
}

bool Finisher::accepts (const meter::SoundFigures& figures)
{
    finished.reachedLufs = figures.integratedLufs;

    if (! sketch.has_value() || ! figures.integratedLufs.has_value() || ! figures.truePeakDbtp.has_value()
        || ++rounds == mostRounds)
        return true;

    const auto louder = louderIsImpossible ? 0.0 : *figures.integratedLufs - finished.target.lufs;
    const auto higher = std::max (0.0, *figures.truePeakDbtp - finished.target.ceilingDbtp);

    if (std::abs (louder) <= tolerance && higher <= tolerance)
        return true;

    aimLufs -= louder;
    aimDbtp -= higher;
    plan();
    readFromTheStart();
    return false;
}

} // namespace larkspire::finish
