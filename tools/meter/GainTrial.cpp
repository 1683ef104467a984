// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/GainTrial.h"

#include "chain/FlushToZero.h"
#include "chain/InputLimits.h"
#include "chain/Passes.h"
#include "meter/QuietestTenth.h"

#include <algorithm>
#include <cmath>

namespace larkspire::meter
{

namespace
{
constexpr double shareBelowVoice = 0.95;

/** The expander's applied gain at a running one. */
double appliedGain (const ModeRow& mode, double running)
{
    return running * double { mode.expander.gainScale } + double { mode.expander.gainOffset };
}
} // namespace

void WindowLevels::add (double power, double gain)
{
    const auto level = 10.0 * std::log10 (2.0 * power);
    const auto place = std::clamp ((level - lowest) / stepDb, 0.0, double (steps - 1));
    const auto step = static_cast<std::size_t> (place);
    ++counts[step];
    sumsOfGain[step] += gain;
    ++windows;
}

std::size_t WindowLevels::stepOf (double share) const
{
    const auto rank = static_cast<std::int64_t> (std::ceil (share * static_cast<double> (windows)));
    std::size_t step = 0;

    for (auto passed = counts[0]; passed < rank; passed += counts[step])
        ++step;

    return step;
}

Figure WindowLevels::level (double share) const
{
    return windows > 0 ? Figure (lowest + stepDb * (static_cast<double> (stepOf (share)) + 0.5)) : std::nullopt;
}

Figure WindowLevels::meanGain (double share) const
{
    if (windows == 0)
        return std::nullopt;

    double sum = 0.0;
    std::int64_t count = 0;

    for (std::size_t step = 0; step <= stepOf (share); ++step)
    {
        sum += sumsOfGain[step];
        count += counts[step];
    }

    return sum / static_cast<double> (count);
}

struct GainTrial::Chain
{
    ModeRow mode;
    std::size_t firstChannel;
    std::size_t channels;
    VoiceRecords records {};
};

GainTrial::GainTrial (int modeIndex, const AudioShape& shape, Voices voices, double gainAhead)
    : channels (static_cast<std::size_t> (shape.channels)),
      gain (static_cast<float> (gainAhead)),
      framesPerWindow (
          static_cast<std::size_t> (std::max (1L, std::lround (QuietestTenth::windowSeconds * shape.sampleRate))))
{
    const auto inEach = voices == Voices::split ? 1 : channels;

    for (std::size_t first = 0; first < channels; first += inEach)
    {
        chains.push_back (std::make_unique<Chain> (
            Chain { .mode = modeForIndex (modeIndex), .firstChannel = first, .channels = inEach }));
        auto& chain = *chains.back();
        chain.records.chain().adopt (chain.mode, double { static_cast<float> (shape.sampleRate) });
    }
}

GainTrial::~GainTrial() = default;

void GainTrial::add (std::span<const float> interleaved)
{
    const ScopedFlushToZero flushToZero;
    std::array<StereoSample, 256> buffer;

    while (! interleaved.empty())
    {
        const auto count = std::min ({ buffer.size(), interleaved.size() / channels, framesPerWindow - framesHeard });
        const std::span frames (buffer.data(), count);

        for (const auto& chain : chains)
        {
            const auto isPair = chain->channels == 2;

            for (std::size_t i = 0; i < count; ++i)
            {
                const auto* const sample = &interleaved[i * channels + chain->firstChannel];
                frames[i] = isPair ? limitInput (sample[0] * gain, sample[1] * gain) : limitInput (sample[0] * gain);
            }

            const auto power = [isPair, frames]
            {
                double sum = 0.0;

                for (const auto& [left, right] : frames)
                    sum += double { left } * double { left } + (isPair ? double { right } * double { right } : 0.0);

                return sum;
            };

            powerBefore += power();
            runPasses (chain->records.chain(),
                       frames,
                       [&] (Point point, Lanes pair, std::size_t)
                       {
                           if (point == Point::expanderGain)
                               for (std::size_t channel = 0; channel < chain->channels; ++channel)
                                   sumOfGain += double { pair[channel] };
                       });
            powerAfter += power();
        }

        framesHeard += count;
        interleaved = interleaved.subspan (count * channels);

        if (framesHeard == framesPerWindow)
            endWindow();
    }
}

void GainTrial::endWindow()
{
    const auto samples = static_cast<double> (framesPerWindow * channels);

    if (powerBefore > 0.0)
    {
        levelsBefore.add (powerBefore / samples, sumOfGain / samples);
        levelsAfter.add (powerAfter / samples);
    }

    framesHeard = 0;
    powerBefore = 0.0;
    powerAfter = 0.0;
    sumOfGain = 0.0;
}

VoiceAndRoom GainTrial::before() const
{
    return { .voiceDbfs = levelsBefore.level (shareBelowVoice), .roomDbfs = levelsBefore.level (QuietestTenth::share) };
}

VoiceAndRoom GainTrial::after() const
{
    return { .voiceDbfs = levelsAfter.level (shareBelowVoice), .roomDbfs = levelsAfter.level (QuietestTenth::share) };
}

bool GainTrial::closes() const
{
    const auto running = levelsBefore.meanGain (QuietestTenth::share);
    const auto& mode = chains.front()->mode;
    const auto closed = appliedGain (mode, double { expanderFloor });
    return running.has_value() && appliedGain (mode, *running) < std::sqrt (closed);
}

} // namespace larkspire::meter
