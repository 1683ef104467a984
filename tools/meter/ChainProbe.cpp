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

constexpr std::size_t mostAtOnce = 256; // frames

/** The applied gains of a stage, frame by frame, of each channel. */
using AppliedGains = std::array<std::array<double, mostAtOnce>, 2>;

/** A gain over all channels. */
class ChannelGains
{
public:
    void add (const AppliedGains& gains, std::size_t frames, std::size_t channels, TimeCourse& course)
    {
        for (std::size_t i = 0; i < frames; ++i)
        {
            for (std::size_t channel = 0; channel < channels; ++channel)
                means[channel].add (gains[channel][i]);

            course.add (static_cast<float> (channels == 1 ? gains[0][i] : std::sqrt (gains[0][i] * gains[1][i])));
        }
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

constexpr std::size_t indexOf (Point point)
{
    return static_cast<std::size_t> (point);
}
} // namespace

/** A chain with the channels that it takes. */
struct ChainProbe::Chain
{
    Chain (int modeIndex, int sampleRate, std::size_t first, std::size_t count)
        : mode (modeForIndex (modeIndex)),
          firstChannel (first),
          channels (count)
    {
        // The interface carries the rate as a 32-bit float.
        records.chain().adopt (mode, double { static_cast<float> (sampleRate) });
    }

    /** Processes frames in place and adds what can be read on the way. */
    void process (std::span<StereoSample> frames, AppliedGains& expander, AppliedGains& leveller)
    {
        runPasses (records.chain(),
                   frames,
                   [&] (Point point, Lanes pair, std::size_t index)
                   {
                       if (point == Point::expanderGain)
                           apply (pair, mode.expander, expander, index);
                       else if (point == Point::levellerGain)
                           apply (pair, mode.leveller, leveller, index);
                       else
                           addPower (point, pair);
                   });
    }

    /** @param running  the running gains, which are applied in the mode's range */
    void apply (Lanes running, const RiderSettings& settings, AppliedGains& gains, std::size_t index) const
    {
        for (std::size_t channel = 0; channel < channels; ++channel)
            gains[firstChannel + channel][index] =
                double { running[channel] } * double { settings.gainScale } + double { settings.gainOffset };
    }

    void addPower (Point point, Lanes pair)
    {
        for (std::size_t channel = 0; channel < channels; ++channel)
        {
            const double sample = double { pair[channel] };
            sumsOfSquares[indexOf (point)] += sample * sample;
        }
    }

    larkspire::ModeRow mode;
    std::size_t firstChannel;
    std::size_t channels;
    VoiceRecords records;
    std::array<double, pointCount> sumsOfSquares {};
};

struct ChainProbe::Means
{
    ChannelGains expander;
    ChannelGains leveller;
};

ChainProbe::ChainProbe (int modeIndex, const AudioShape& shape, Voices voices)
    : channels (static_cast<std::size_t> (shape.channels)),
      rate (shape.sampleRate),
      means (std::make_unique<Means>())
{
    if (modeIndex == 0)
        return;

    const auto inEach = voices == Voices::split ? 1 : channels;

    for (std::size_t first = 0; first < channels; first += inEach)
        chains.push_back (std::make_unique<Chain> (modeIndex, rate, first, inEach));
}

ChainProbe::~ChainProbe() = default;

void ChainProbe::add (std::span<const float> input, std::span<const float> output)
{
    run (input, output, Counting::yes);
}

void ChainProbe::settle (std::span<const float> input, std::span<const float> output)
{
    run (input, output, Counting::no);
}

void ChainProbe::run (std::span<const float> input, std::span<const float> output, Counting counting)
{
    if (! runs())
        return;

    const ScopedFlushToZero flushToZero;
    std::array<StereoSample, mostAtOnce> buffer;
    AppliedGains expander {};
    AppliedGains leveller {};

    for (std::size_t done = 0; done < input.size() && equal;)
    {
        const auto count = std::min (buffer.size(), (input.size() - done) / channels);
        const std::span frames (buffer.data(), count);

        for (const auto& chain : chains)
        {
            const auto isPair = chain->channels == 2;
            const auto offset = done + chain->firstChannel;

            for (std::size_t i = 0; i < count; ++i)
            {
                const auto* const sample = &input[offset + i * channels];
                frames[i] = isPair ? limitInput (sample[0], sample[1]) : limitInput (sample[0]);
            }

            if (counting == Counting::yes)
                chain->process (frames, expander, leveller);
            else
                chain->records.chain().process (frames);

            for (std::size_t i = 0; i < count && equal; ++i)
            {
                const auto* const sample = &output[offset + i * channels];
                equal = isSame (frames[i].first, sample[0]) && (! isPair || isSame (frames[i].second, sample[1]));
            }
        }

        if (counting == Counting::yes)
        {
            means->expander.add (expander, count, channels, expanderCourse);
            means->leveller.add (leveller, count, channels, levellerCourse);
        }

        done += count * channels;
    }
}

Figure ChainProbe::ratio (std::size_t behind, std::size_t ahead) const
{
    double over = 0.0;
    double under = 0.0;

    for (const auto& chain : chains)
    {
        over += chain->sumsOfSquares[behind];
        under += chain->sumsOfSquares[ahead];
    }

    return powerDecibels (over / under);
}

StageGains ChainProbe::gains() const
{
    if (! equal || ! runs())
        return {};

    const auto change = [this] (Point behind, Point ahead) { return ratio (indexOf (behind), indexOf (ahead)); };
    return { .highPassDb = change (Point::behindHighPass, Point::input),
             .expanderDb = means->expander.decibels (channels),
             .foldDb = change (Point::behindFold, Point::behindExpander),
             .airAndBodyDb = change (Point::behindAirAndBody, Point::behindFold),
             .levellerDb = means->leveller.decibels (channels),
             .makeUpDb = amplitudeDecibels (double { chains.front()->mode.leveller.outputGain }),
             .softClipDb = change (Point::behindSoftClip, Point::behindLeveller) };
}

} // namespace larkspire::meter
