// SPDX-License-Identifier: AGPL-3.0-only
// The gain and the limiter behind the chain, judged by libebur128 and by an oversampler that shares nothing with the
// limiter's own.
#include "finish/Finisher.h"

#include "meter/LoudnessMeter.h"
#include "meter/SoundMeter.h"
#include "support/Signals.h"
#include "support/TemporaryFolder.h"
#include "support/TestTone.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

namespace
{
using namespace larkspire;
using finish::Finisher;
using finish::FinishReport;
using finish::LimiterGain;

/** A sound that was finished, and what is said of it. */
struct Finished
{
    std::vector<float> samples;
    FinishReport report;
    int rounds = 0;
};

Finished finished (const std::vector<float>& sound, const AudioShape& shape, const finish::Target& target)
{
    const TemporaryFolder folder;
    Finisher finisher (shape, target, folder / "result.wav");
    const auto channels = static_cast<std::size_t> (shape.channels);
    const auto block = std::size_t { 777 } * channels;

    for (std::size_t done = 0; done < sound.size(); done += block)
        finisher.add (std::span (sound).subspan (done, std::min (block, sound.size() - done)));

    finisher.end();
    Finished result;
    meter::SoundFigures figures;

    do
    {
        result.samples.assign (sound.size() + channels, 0.0f);
        std::size_t done = 0;

        for (std::size_t count = 1; count > 0; done += count)
            count = finisher.read (
                std::span (result.samples).subspan (done, std::min (block + channels, result.samples.size() - done)));

        result.samples.resize (done);
        meter::SoundMeter meter (shape);
        meter.add (result.samples);
        figures = meter.figures (meter);
        ++result.rounds;
    } while (! finisher.accepts (figures));

    result.report = finisher.report();
    return result;
}

double loudnessOf (const std::vector<float>& sound, const AudioShape& shape)
{
    meter::LoudnessMeter loudness (shape);
    loudness.add (sound);
    return loudness.integrated().value();
}

/** The Fourier transform of a length that is a power of two, in place; backwards without the division. */
class Transform
{
public:
    using Values = std::vector<std::complex<double>>;

    Transform (std::size_t length, double direction) : roots (length)
    {
        for (std::size_t i = 0; i < length; ++i)
            roots[i] = std::polar (1.0, direction * 2.0 * std::numbers::pi * double (i) / double (length));
    }

    void operator() (Values& values) const
    {
        const auto size = values.size();

        for (std::size_t i = 1, j = 0; i < size; ++i)
        {
            auto bit = size >> 1;

            for (; (j & bit) != 0; bit >>= 1)
                j ^= bit;

            j ^= bit;

            if (i < j)
                std::swap (values[i], values[j]);
        }

        for (std::size_t part = 2; part <= size; part *= 2)
            for (std::size_t first = 0; first < size; first += part)
                for (std::size_t i = 0; i < part / 2; ++i)
                {
                    const auto even = values[first + i];
                    const auto odd = values[first + i + part / 2] * roots[i * (size / part)];
                    values[first + i] = even + odd;
                    values[first + i + part / 2] = even - odd;
                }
    }

private:
    Values roots;
};

/** The largest magnitude between the samples of one channel, in dBTP: a Fourier series through blocks of 512 samples,
    padded to eight times the length. The outer quarters of a block do not count, as there the series joins end and
    beginning. */
double peakBySeries (const std::vector<float>& sound, std::size_t channels, std::size_t channel)
{
    constexpr std::size_t length = 512;
    constexpr std::size_t factor = 8;
    static const Transform forwards (length, -1.0);
    static const Transform backwards (length * factor, 1.0);
    const auto frames = sound.size() / channels;
    double peak = 0.0;

    for (std::size_t start = 0; start + length <= frames; start += length / 2)
    {
        Transform::Values values (length);

        for (std::size_t i = 0; i < length; ++i)
            values[i] = double { sound[(start + i) * channels + channel] };

        forwards (values);
        Transform::Values padded (length * factor);

        for (std::size_t i = 0; i < length / 2; ++i)
        {
            padded[i] = values[i];
            padded[padded.size() - 1 - i] = values[length - 1 - i];
        }

        backwards (padded);

        for (std::size_t i = padded.size() / 4; i < padded.size() * 3 / 4; ++i)
            peak = std::max (peak, std::abs (padded[i].real()) / double (length));
    }

    return 20.0 * std::log10 (peak);
}

/** A voice, loud and soft by turns. */
std::vector<float> voiceOf (int channels, double decibels)
{
    const auto spoken = voice (150000);
    const auto gain = std::pow (10.0, decibels / 20.0);
    std::vector<float> sound;

    for (std::size_t i = 0; i < spoken.left.size(); ++i)
    {
        const auto swell = i / 30000 % 2 == 0 ? 1.0 : 0.3;
        sound.push_back (static_cast<float> (gain * swell * double { spoken.left[i] }));

        if (channels == 2)
            sound.push_back (static_cast<float> (0.8 * gain * swell * double { spoken.right[i] }));
    }

    return sound;
}

TEST (Finisher, BringsAVoiceToALoudnessWithNoTruePeakAboveTheCeiling)
{
    for (const int channels : { 1, 2 })
        for (const int rate : { 8000, 11025, 22050, 44100, 48000, 96000, 192000 })
            for (const auto& target : { finish::Target { .lufs = -16.0 }, { .lufs = -20.0, .ceilingDbtp = -6.0 } })
            {
                SCOPED_TRACE (std::to_string (channels) + " channels, " + std::to_string (rate) + " Hz, "
                              + std::to_string (target.lufs) + " LUFS");
                // The same samples at every rate: at a low one full of treble, at a high one of bass.
                const AudioShape shape { .channels = channels, .sampleRate = rate };
                const auto result = finished (voiceOf (channels, 3.0), shape, target);
                EXPECT_NEAR (loudnessOf (result.samples, shape), target.lufs, 0.1);
                EXPECT_NEAR (*result.report.reachedLufs, target.lufs, 0.1);
                EXPECT_FALSE (result.report.missed());

                for (int channel = 0; channel < channels; ++channel)
                    EXPECT_LT (peakBySeries (result.samples, std::size_t (channels), std::size_t (channel)),
                               target.ceilingDbtp + 0.1);
            }
}

TEST (Finisher, KeepsTheTruePeaksOfTrebleBelowTheCeiling)
{
    // Tones around a quarter of the sample rate, whose samples miss three decibels of them at times.
    std::vector<float> sound (100000);

    for (int tone = 0; tone < 20; ++tone)
        for (std::size_t i = 0; i < sound.size(); ++i)
            sound[i] += static_cast<float> (0.05 * std::sin ((1.4 + 0.02 * tone) * double (i) + tone * tone));

    for (const int rate : { 8000, 22050, 44100, 48000 })
    {
        const auto result = finished (sound, { .channels = 1, .sampleRate = rate }, { .lufs = -3.0 });
        EXPECT_LT (result.report.limiter.deepestDb, -0.5) << rate;
        EXPECT_LT (peakBySeries (result.samples, 1, 0), -0.9) << rate;
        EXPECT_GT (peakBySeries (result.samples, 1, 0), -1.1) << rate;
    }
}

TEST (Finisher, TakesOneRoundForAVoice)
{
    EXPECT_EQ (finished (voiceOf (1, 0.0), { .channels = 1, .sampleRate = 48000 }, {}).rounds, 1);
}

TEST (Finisher, GoesAnotherRoundWhereAMeterSaysThatItMissed)
{
    const auto sound = voiceOf (1, 0.0);
    const AudioShape shape { .channels = 1, .sampleRate = 48000 };
    const TemporaryFolder folder;
    Finisher finisher (shape, { .lufs = -16.0, .ceilingDbtp = -1.0 }, folder / "result.wav");
    finisher.add (sound);
    finisher.end();
    const auto figuresOfRound = [&]
    {
        std::vector<float> samples (sound.size());
        EXPECT_EQ (finisher.read (samples), sound.size());
        meter::SoundMeter meter (shape);
        meter.add (samples);
        return meter.figures (meter);
    };
    const auto first = figuresOfRound();
    EXPECT_FALSE (finisher.accepts ({ .integratedLufs = -15.7, .truePeakDbtp = -0.8 }));
    const auto second = figuresOfRound();
    EXPECT_NEAR (*second.integratedLufs, *first.integratedLufs - 0.3, 0.03);
    EXPECT_NEAR (*second.truePeakDbtp, *first.truePeakDbtp - 0.2, 0.03);
    EXPECT_FALSE (finisher.accepts ({ .integratedLufs = -16.2, .truePeakDbtp = -1.2 }));
    EXPECT_NEAR (*figuresOfRound().integratedLufs, *second.integratedLufs + 0.2, 0.03);
    EXPECT_TRUE (finisher.accepts ({ .integratedLufs = -16.2, .truePeakDbtp = -1.2 })); // the third is the last
}

TEST (Finisher, ChangesNothingButTheLevelWhereNothingHasToBeLimited)
{
    const auto sound = TestTone { .peakDbfs = -30.0, .seconds = 3.0 }.samples();
    const AudioShape shape { .channels = 2, .sampleRate = 48000 };
    const auto result = finished (sound, shape, { .lufs = -20.0 });
    ASSERT_EQ (result.samples.size(), sound.size());
    EXPECT_NEAR (result.report.gainDb, 10.0, 0.02);
    EXPECT_EQ (result.report.limiter, finish::LimiterWork {});
    const auto gain = std::pow (10.0, result.report.gainDb / 20.0);

    for (std::size_t i = 0; i < sound.size(); ++i)
        ASSERT_EQ (result.samples[i], static_cast<float> (double { sound[i] } * gain)) << i;
}

TEST (Finisher, LimitsAPeakWhereItIsAndLeavesTheRest)
{
    auto sound = TestTone { .peakDbfs = -26.0, .seconds = 4.0, .channels = 1 }.samples();
    const std::size_t place = 96000;
    sound[place] = 1.0f;
    sound.resize (sound.size() - 7); // the last bin is none of a whole millisecond
    sound.back() = 1.0f;
    const AudioShape shape { .channels = 1, .sampleRate = 48000 };
    const auto result = finished (sound, shape, { .lufs = -26.0 });
    ASSERT_EQ (result.samples.size(), sound.size());
    const auto gain = std::pow (10.0, result.report.gainDb / 20.0);
    EXPECT_NEAR (20.0 * std::log10 (result.samples[place]), -1.02, 0.05);
    EXPECT_NEAR (20.0 * std::log10 (result.samples.back()), -1.02, 0.05);
    EXPECT_EQ (result.report.limiter.times, 2);
    EXPECT_NEAR (result.report.limiter.deepestDb, -1.02 - result.report.gainDb, 0.05);

    // From 9 ms ahead of it to half a second behind.
    for (std::size_t i = 0; i < sound.size(); ++i)
    {
        {
            const auto isNear = (i + 432 >= place && i <= place + 24000) || i + 432 >= sound.size();
            ASSERT_TRUE (isNear || std::abs (result.samples[i] - double { sound[i] } * gain) < 1e-4) << i;
        }
    }
}

TEST (Finisher, LimitsBothChannelsByTheLouder)
{
    std::vector<float> sound;

    for (int i = 0; i < 96000; ++i)
    {
        const auto sine = std::sin (0.03 * i);
        sound.push_back (static_cast<float> (0.9 * sine * (i / 9600 % 2 == 0 ? 1.0 : 0.1)));
        sound.push_back (static_cast<float> (0.09 * sine));
    }

    const auto result = finished (sound, { .channels = 2, .sampleRate = 48000 }, { .lufs = -4.5 });
    EXPECT_LT (result.report.limiter.deepestDb, -1.0);

    for (std::size_t i = 0; i < sound.size(); i += 2)
    {
        ASSERT_NEAR (result.samples[i + 1] * sound[i], result.samples[i] * sound[i + 1], 1e-6f) << i;
    }
}

TEST (Finisher, SaysWhatItReachesWhereItGetsNoLouder)
{
    const AudioShape shape { .channels = 1, .sampleRate = 48000 };
    const auto result = finished (voiceOf (1, 0.0), shape, { .lufs = -5.0, .ceilingDbtp = -6.0 });
    EXPECT_TRUE (result.report.missed());
    EXPECT_EQ (result.rounds, 1);
    EXPECT_NEAR (*result.report.reachedLufs, loudnessOf (result.samples, shape), 1e-6);
    EXPECT_LT (peakBySeries (result.samples, 1, 0), -5.9);
}

TEST (Finisher, LeavesASoundWithoutLoudnessAsItIs)
{
    const auto nan = std::numeric_limits<float>::quiet_NaN();
    auto broken = voiceOf (1, 0.0);
    broken[140000] = nan;

    for (const auto& [name, sound, rate] :
         { std::tuple { "nothing", std::vector<float> {}, 48000 },
           { "one sample", std::vector<float> { 0.5f }, 48000 },
           { "silence", std::vector<float> (96000), 48000 },
           { "less than a block", TestTone { .seconds = 0.39, .channels = 1 }.samples(), 48000 },
           { "below the gate", TestTone { .peakDbfs = -80.0, .seconds = 5.0, .channels = 1 }.samples(), 48000 },
           { "NaN", broken, 48000 },
           { "a rate of no voice", voiceOf (1, 0.0), 999 } })
    {
        const auto result = finished (sound, { .channels = 1, .sampleRate = rate }, {});
        EXPECT_TRUE (result.report.missed()) << name;
        EXPECT_EQ (result.report.gainDb, 0.0) << name;
        ASSERT_EQ (result.samples.size(), sound.size()) << name;

        for (std::size_t i = 0; i < sound.size(); ++i)
            ASSERT_TRUE (result.samples[i] == sound[i] || (std::isnan (sound[i]) && std::isnan (result.samples[i])));
    }
}

TEST (LimiterGain, IsNeverAboveWhatABinNeeds)
{
    const auto sound = noise (20000, 0.0, 7).left;
    LimiterGain limiter (0.3, 0.001);
    std::vector<double> gains;

    // Peaks of all heights, alone and in groups.
    const auto peakAt = [&sound] (std::size_t bin)
    { return bin < 19000 && bin % 97 < 5 ? double { std::abs (sound[bin]) } * 2.0 : 0.1; };

    for (std::size_t bin = 0; bin < 20000; ++bin)
        gains.push_back (limiter.next (peakAt (bin)));

    for (std::size_t bin = 0; bin + LimiterGain::delay + 1 < gains.size(); ++bin)
        for (const auto edge : { bin, bin + 1 })
            ASSERT_LE (gains[edge + LimiterGain::delay] * peakAt (bin), 0.3 + 1e-12) << bin;

    EXPECT_EQ (gains.back() > 0.99, true);
}

TEST (LimiterGain, HasNoCornersAndReturnsWithinATwentiethOfASecond)
{
    LimiterGain limiter (0.5, 0.001);
    std::vector<double> gains;
    gains.reserve (400);

    for (int bin = 0; bin < 400; ++bin)
        gains.push_back (limiter.next (bin == 100 ? 1.0 : 0.0));

    EXPECT_EQ (gains[99], 1.0);
    EXPECT_NEAR (gains[100 + LimiterGain::delay], 0.5, 0.01);

    // Behind the hold what is missing has fallen to 1/e after 50 ms.
    EXPECT_NEAR (1.0 - gains[100 + 2 * LimiterGain::delay + 50], 0.5 / std::numbers::e, 0.03);

    for (std::size_t i = 1; i + 1 < gains.size(); ++i)
        EXPECT_LT (std::abs (gains[i + 1] - 2.0 * gains[i] + gains[i - 1]), 0.08) << i;
}
} // namespace
