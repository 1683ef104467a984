// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/ChainProbe.h"

#include "chain/AirTerm.h"
#include "chain/Expander.h"
#include "chain/HighPass.h"
#include "chain/Leveller.h"
#include "chain/ModeTable.h"
#include "chain/SideBySide.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"
#include "meter/MeanGain.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace larkspire::meter
{

namespace
{
/** What the plug-in lets into the chain: its block loop limits samples, what is no number becomes the lower bound, and
    a single channel stands for both. Should that ever change, the probe stops matching. */
StereoSample asLetIn (std::span<const float> frame)
{
    const auto limited = [] (float sample, float lowest)
    {
        const float raised = sample > lowest ? sample : lowest;
        return raised < 20.0f ? raised : 20.0f;
    };

    const auto left = limited (frame[0], -30.0f);
    return { left, frame.size() > 1 ? limited (frame[1], -20.0f) : left };
}

/** The same bits; any two that are no numbers are the same. */
bool isSame (float one, float other)
{
    return std::bit_cast<std::uint32_t> (one) == std::bit_cast<std::uint32_t> (other)
           || (std::isnan (one) && std::isnan (other));
}

/** Gains as they are applied, which is the running ones brought into the mode's range. */
std::array<double, 2> appliedGains (const LevelRider& rider)
{
    const auto applied = [&rider] (float running)
    { return double { running } * double { rider.gainScale } + double { rider.gainOffset }; };
    return { applied (rider.gainLeft), applied (rider.gainRight) };
}

/** A gain over all channels. */
class ChannelGains
{
public:
    void add (const LevelRider& rider, std::size_t channels, Course& course)
    {
        const auto gains = appliedGains (rider);

        for (std::size_t channel = 0; channel < channels; ++channel)
            means[channel].add (gains[channel]);

        course.add (static_cast<float> (channels == 1 ? gains[0] : std::sqrt (gains[0] * gains[1])));
    }

    Figure decibels (std::size_t channels) const
    {
        const auto left = means[0].decibels();
        const auto right = means[channels - 1].decibels();
        return left && right ? Figure (0.5 * (*left + *right)) : std::nullopt;
    }

private:
    std::array<MeanGain, 2> means;
};
} // namespace

struct ChainProbe::Chain
{
    Chain (int modeIndex, const render::AudioShape& shape)
        : mode (modeForIndex (modeIndex)),
          channels (static_cast<std::size_t> (shape.channels))
    {
        // The interface carries the rate as a 32-bit float.
        const auto rate = static_cast<float> (shape.sampleRate);
        applySettings (expander, mode.expander);
        applySettings (leveller, mode.leveller);
        designPeaking (airFilter, rate, mode.air.gainDb, mode.air.frequency, mode.air.bandwidth);
        designPeaking (bodyFilter, rate, mode.body.gainDb, mode.body.frequency, mode.body.bandwidth);
        designHighPass (highPassLeft, highPassRight, double { rate }, mode.highPass);
    }

    /** The stages in the order of the signal, with a note of the power in front of each and behind the last. */
    StereoSample process (StereoSample sample)
    {
        const auto input = pairOf (sample);
        const auto voice = highPass (highPassLeft, highPassRight, input);
        const auto expanded = expand (expander, voice);
        const auto folded = foldTowardsMiddle (expanded);
        const auto filtered = filterSideBySide (airFilter, bodyFilter, folded);
        const auto coloured = addSaturatedAir (upperHalf (filtered), lowerHalf (filtered), folded);
        const auto levelled = level (leveller, coloured);
        const auto clipped = softClip (levelled);

        addPowers ({ input, voice, expanded, folded, coloured, levelled, clipped });
        return sampleOf (clipped);
    }

    enum Point
    {
        atInput,
        behindHighPass,
        behindExpander,
        behindFold,
        behindAirAndBody,
        behindLeveller,
        behindSoftClip,
        pointCount
    };

    void addPowers (const std::array<ChannelPair, pointCount>& points)
    {
        for (std::size_t point = 0; point < points.size(); ++point)
            for (std::size_t channel = 0; channel < channels; ++channel)
            {
                const double sample = double { points[point][channel] };
                sumsOfSquares[point] += sample * sample;
            }
    }

    Figure ratio (Point behind, Point ahead) const
    {
        return powerDecibels (sumsOfSquares[behind] / sumsOfSquares[ahead]);
    }

    larkspire::Mode mode;
    std::size_t channels;
    LevelRider expander;
    LevelRider leveller;
    PeakingFilter airFilter;
    PeakingFilter bodyFilter;
    juce::IIRFilter highPassLeft;
    juce::IIRFilter highPassRight;
    ChannelGains expanderGains;
    ChannelGains levellerGains;
    std::array<double, pointCount> sumsOfSquares {};
};

ChainProbe::ChainProbe (int modeIndex, const render::AudioShape& shape)
    : channels (static_cast<std::size_t> (shape.channels))
{
    if (modeIndex != 0)
        chain = std::make_unique<Chain> (modeIndex, shape);
}

ChainProbe::~ChainProbe() = default;

void ChainProbe::add (std::span<const float> input, std::span<const float> output)
{
    if (! equal || ! runs())
        return;

    // As in the plug-in; a number that is all but zero counts as zero, which is a difference that one can find.
    const juce::ScopedNoDenormals noDenormals;

    for (std::size_t i = 0; i < input.size() && equal; i += channels)
    {
        const auto result = chain->process (asLetIn (input.subspan (i, channels)));
        chain->expanderGains.add (chain->expander, channels, expanderCourse);
        chain->levellerGains.add (chain->leveller, channels, levellerCourse);
        equal = isSame (result.first, output[i]) && (channels == 1 || isSame (result.second, output[i + 1]));
    }
}

StageGains ChainProbe::gains() const
{
    if (! equal || ! runs())
        return {};

    return { .highPassDb = chain->ratio (Chain::behindHighPass, Chain::atInput),
             .expanderDb = chain->expanderGains.decibels (channels),
             .foldDb = chain->ratio (Chain::behindFold, Chain::behindExpander),
             .airAndBodyDb = chain->ratio (Chain::behindAirAndBody, Chain::behindFold),
             .levellerDb = chain->levellerGains.decibels (channels),
             .makeUpDb = amplitudeDecibels (double { chain->leveller.outputGain }),
             .softClipDb = chain->ratio (Chain::behindSoftClip, Chain::behindLeveller) };
}

} // namespace larkspire::meter
