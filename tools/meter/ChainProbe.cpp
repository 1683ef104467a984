// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/ChainProbe.h"

#include "chain/FlushToZero.h"
#include "chain/InputLimits.h"
#include "chain/Passes.h"
#include "meter/MeanGain.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace larkspire::meter
{

namespace
{
/** The same bits, or both NaN. */
bool isSame (float one, float other)
{
    return std::bit_cast<std::uint32_t> (one) == std::bit_cast<std::uint32_t> (other)
           || (std::isnan (one) && std::isnan (other));
}

/** A gain over all channels. */
class ChannelGains
{
public:
    /** @param running  the running gains, which are applied in the mode's range */
    void add (Lanes running, const RiderSettings& settings, std::size_t channels, TimeCourse& course)
    {
        std::array<double, 2> gains {};

        for (std::size_t channel = 0; channel < channels; ++channel)
        {
            gains[channel] =
                double { running[channel] } * double { settings.gainScale } + double { settings.gainOffset };
            means[channel].add (gains[channel]);
        }

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
    Chain (int modeIndex, const AudioShape& shape)
        : mode (modeForIndex (modeIndex)),
          channels (static_cast<std::size_t> (shape.channels))
    {
        // The interface carries the rate as a 32-bit float.
        records.chain().adopt (mode, double { static_cast<float> (shape.sampleRate) });
    }

    /** Processes frames in place and adds what can be read on the way. */
    void process (std::span<StereoSample> frames, TimeCourse& expanderOverTime, TimeCourse& levellerOverTime)
    {
        runPasses (records.chain(),
                   frames,
                   [&] (Point point, Lanes pair, std::size_t)
                   {
                       if (point == Point::expanderGain)
                           expanderGains.add (pair, mode.expander, channels, expanderOverTime);
                       else if (point == Point::levellerGain)
                           levellerGains.add (pair, mode.leveller, channels, levellerOverTime);
                       else
                           addPower (point, pair);
                   });
    }

    void addPower (Point point, Lanes pair)
    {
        for (std::size_t channel = 0; channel < channels; ++channel)
        {
            const double sample = double { pair[channel] };
            sumsOfSquares[static_cast<std::size_t> (point)] += sample * sample;
        }
    }

    Figure ratio (Point behind, Point ahead) const
    {
        return powerDecibels (sumsOfSquares[static_cast<std::size_t> (behind)]
                              / sumsOfSquares[static_cast<std::size_t> (ahead)]);
    }

    larkspire::ModeRow mode;
    std::size_t channels;
    VoiceRecords records;
    ChannelGains expanderGains;
    ChannelGains levellerGains;
    std::array<double, pointCount> sumsOfSquares {};
};

ChainProbe::ChainProbe (int modeIndex, const AudioShape& shape) : channels (static_cast<std::size_t> (shape.channels))
{
    if (modeIndex != 0)
        chain = std::make_unique<Chain> (modeIndex, shape);
}

ChainProbe::~ChainProbe() = default;

void ChainProbe::add (std::span<const float> input, std::span<const float> output)
{
    if (! equal || ! runs())
        return;

    const ScopedFlushToZero flushToZero;
    std::array<StereoSample, 256> buffer;

    for (std::size_t done = 0; done < input.size() && equal;)
    {
        const auto count = std::min (buffer.size(), (input.size() - done) / channels);
        const std::span frames (buffer.data(), count);

        for (std::size_t i = 0; i < count; ++i)
        {
            const auto* const sample = &input[done + i * channels];
            frames[i] = channels == 1 ? limitInput (sample[0]) : limitInput (sample[0], sample[1]);
        }

        chain->process (frames, expanderCourse, levellerCourse);

        for (std::size_t i = 0; i < count && equal; ++i)
        {
            const auto* const sample = &output[done + i * channels];
            equal = isSame (frames[i].first, sample[0]) && (channels == 1 || isSame (frames[i].second, sample[1]));
        }

        done += count * channels;
    }
}

StageGains ChainProbe::gains() const
{
    if (! equal || ! runs())
        return {};

    return { .highPassDb = chain->ratio (Point::behindHighPass, Point::input),
             .expanderDb = chain->expanderGains.decibels (channels),
             .foldDb = chain->ratio (Point::behindFold, Point::behindExpander),
             .airAndBodyDb = chain->ratio (Point::behindAirAndBody, Point::behindFold),
             .levellerDb = chain->levellerGains.decibels (channels),
             .makeUpDb = amplitudeDecibels (double { chain->mode.leveller.outputGain }),
             .softClipDb = chain->ratio (Point::behindSoftClip, Point::behindLeveller) };
}

} // namespace larkspire::meter
