// SPDX-License-Identifier: AGPL-3.0-only
// The meters on signals whose figures are known: those of the EBU's own test signals, and those that follow from
// arithmetic.
#include "meter/MeanGain.h"
#include "meter/SoundMeter.h"
#include "meter/TimeCourse.h"
#include "support/TestTone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace
{
using namespace larkspire::meter;
using larkspire::AudioShape;

/** The figures of a sound that comes in blocks of a strange size. */
SoundFigures figuresOf (const std::vector<float>& interleaved, const AudioShape& shape)
{
    SoundMeter meter (shape);
    std::span<const float> rest (interleaved);
    const auto block = std::size_t { 777 } * static_cast<std::size_t> (shape.channels);

    while (! rest.empty())
    {
        const auto part = rest.first (std::min (rest.size(), block));
        meter.add (part);
        rest = rest.subspan (part.size());
    }

    return meter.figures (meter);
}

constexpr AudioShape stereo { .channels = 2, .sampleRate = 48000 };
constexpr AudioShape mono { .channels = 1, .sampleRate = 48000 };

TEST (Loudness, OfASineIsItsPeakLevelInStereoAndThreeUnitsLessInMono)
{
    struct Row
    {
        TestTone tone;
        double lufs;
    };

    for (const auto& [tone, lufs] : { Row { { .peakDbfs = -23.0, .seconds = 20.0 }, -23.0 },
                                      Row { { .peakDbfs = -33.0, .seconds = 20.0 }, -33.0 },
                                      Row { { .seconds = 5.0, .sampleRate = 8000 }, -23.0 },
                                      Row { { .seconds = 5.0, .sampleRate = 44100 }, -23.0 },
                                      Row { { .seconds = 5.0, .sampleRate = 96000 }, -23.0 },
                                      Row { { .seconds = 5.0, .channels = 1 }, -26.0 } })
    {
        const auto figures = figuresOf (tone.samples(), { .channels = tone.channels, .sampleRate = tone.sampleRate });
        EXPECT_NEAR (figures.integratedLufs.value(), lufs, 0.1) << tone.sampleRate << " Hz, " << tone.channels;
    }
}

TEST (Loudness, DoesNotCountWhatIsFarBelow)
{
    // Tech 3341, case 3: the gate takes the quiet beginning and end away; without it the figure were -24.1.
    const auto quiet = TestTone { .peakDbfs = -36.0, .seconds = 10.0 }.samples();
    const auto loud = TestTone { .peakDbfs = -23.0, .seconds = 60.0 }.samples();
    EXPECT_NEAR (figuresOf (joined ({ quiet, loud, quiet }), stereo).integratedLufs.value(), -23.0, 0.1);
}

TEST (LoudnessRange, OfTwoLevelsIsTheirDistance)
{
    // Tech 3342, cases 1 to 3: 20 s each. Of one level it is nothing.
    for (const auto& [second, tolerance] :
         { std::pair { -30.0, 1.0 }, { -15.0, 1.0 }, { -40.0, 1.0 }, { -20.0, 0.05 } })
    {
        const auto sound = joined ({ TestTone { .peakDbfs = -20.0, .seconds = 20.0 }.samples(),
                                     TestTone { .peakDbfs = second, .seconds = 20.0 }.samples() });
        EXPECT_NEAR (figuresOf (sound, stereo).loudnessRangeLu.value(), std::abs (second + 20.0), tolerance) << second;
    }
}

TEST (TruePeak, IsFoundBetweenTheSamples)
{
    // A quarter of the sample rate, 45 degrees on: the samples only reach -9.0 dBFS. Tech 3341 allows +0.2 and -0.4.
    const TestTone tone { .frequency = 12000.0, .peakDbfs = -6.02, .seconds = 1.0, .phase = std::numbers::pi / 4.0 };
    const auto samples = tone.samples();
    ASSERT_LT (*std::max_element (samples.begin(), samples.end()), 0.36f);
    const auto peak = figuresOf (samples, stereo).truePeakDbtp.value();
    EXPECT_GT (peak, -6.02 - 0.4);
    EXPECT_LT (peak, -6.02 + 0.2);
}

TEST (TruePeak, IsThatOfTheLouderChannel)
{
    std::vector<float> sound (9600);

    for (std::size_t frame = 0; frame < 4800; ++frame)
        sound[2 * frame + 1] = static_cast<float> (0.5 * std::sin (0.05 * double (frame)));

    EXPECT_NEAR (figuresOf (sound, stereo).truePeakDbtp.value(), -6.02, 0.05);
}

/** A square wave for so many seconds, with the RMS of a sine of that level. */
std::vector<float> square (double dbfs, double seconds, int channels)
{
    const auto height = static_cast<float> (std::numbers::sqrt2 / 2.0 * std::pow (10.0, dbfs / 20.0));
    std::vector<float> samples;

    for (long frame = 0; frame < std::lround (seconds * 48000.0); ++frame)
        for (int channel = 0; channel < channels; ++channel)
            samples.push_back (frame % 2 == 0 ? height : -height);

    return samples;
}

TEST (QuietestTenth, IsTheLevelBetweenWords)
{
    for (const int channels : { 1, 2 })
    {
        const auto word = TestTone { .peakDbfs = -12.0, .seconds = 0.4, .channels = channels }.samples();
        const auto gap = square (-61.5, 0.2, channels);
        std::vector<float> speech;

        for (int i = 0; i < 10; ++i)
            speech = joined ({ speech, word, gap });

        const auto noise = figuresOf (speech, { .channels = channels, .sampleRate = 48000 }).quietestTenthDbfs;
        EXPECT_NEAR (noise.value(), -61.5, 0.01) << channels;
    }
}

TEST (QuietestTenth, IsTheTenthOfAHundredWindowsInOrder)
{
    std::vector<float> sound;

    // Each window 0.5 dB apart, in an order that is none: 37 has no divisor in common with 100.
    for (int i = 0; i < 100; ++i)
        sound = joined ({ sound, square (-70.0 + 0.5 * (37 * i % 100), QuietestTenth::windowSeconds, 1) });

    EXPECT_NEAR (figuresOf (sound, mono).quietestTenthDbfs.value(), -70.0 + 0.5 * 9, 0.01);
}

TEST (QuietestTenth, IsNotLookedForWhereTheRecordingIsDigitalSilence)
{
    const auto noise = square (-60.0, 1.0, 1);
    const auto halved = square (-66.0, 1.0, 1);
    const std::vector<float> silence (48000);
    const auto hum = square (-90.0, 1.0, 1);
    SoundMeter before (mono);
    SoundMeter after (mono);
    before.add (joined ({ noise, silence, noise }));
    after.add (joined ({ halved, hum, halved }));
    EXPECT_NEAR (before.figures (before).quietestTenthDbfs.value(), -60.0, 0.01);
    EXPECT_NEAR (after.figures (before).quietestTenthDbfs.value(), -66.0, 0.01);
    EXPECT_NEAR (after.figures (after).quietestTenthDbfs.value(), -90.0, 0.01);
}

TEST (Figures, AreMissingForSilenceAndWhereTheSoundIsTooShort)
{
    const auto figuresAfter = [] (double seconds)
    { return figuresOf (TestTone { .seconds = seconds, .channels = 1 }.samples(), mono); };

    EXPECT_EQ (figuresOf (std::vector<float> (960000), stereo), SoundFigures {});
    EXPECT_EQ (figuresOf ({}, mono), SoundFigures {});
    EXPECT_FALSE (figuresAfter (0.049).quietestTenthDbfs.has_value());
    EXPECT_TRUE (figuresAfter (0.05).quietestTenthDbfs.has_value());
    EXPECT_FALSE (figuresAfter (0.39).integratedLufs.has_value());
    EXPECT_TRUE (figuresAfter (0.4).integratedLufs.has_value());
    EXPECT_FALSE (figuresAfter (3.9).loudnessRangeLu.has_value());
    EXPECT_TRUE (figuresAfter (4.0).loudnessRangeLu.has_value());
}

TEST (Figures, AreMissingWhereSamplesAreNaNOrInfinite)
{
    for (const float strange : { std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity() })
    {
        auto sound = TestTone { .seconds = 5.0, .channels = 1 }.samples();
        sound[1000] = strange;
        EXPECT_EQ (figuresOf (sound, mono), SoundFigures {});
    }
}

TEST (MeanGain, IsTheMeanInDecibels)
{
    MeanGain mean;
    EXPECT_EQ (mean.decibels(), std::nullopt);

    // Neither a multiple of sixteen nor of the period.
    for (int i = 0; i < 1001; ++i)
        mean.add (i % 2 == 0 ? 1.0 : 0.1);

    EXPECT_NEAR (mean.decibels().value(), -20.0 * 500 / 1001, 1e-9);

    MeanGain tiny;

    for (int i = 0; i < 100; ++i)
        tiny.add (1e-18);

    EXPECT_NEAR (tiny.decibels().value(), -360.0, 1e-9);
}

TEST (TimeCourse, KeepsEverySampleOfAShortSound)
{
    TimeCourse course;

    for (int i = 0; i < 100; ++i)
        course.add (static_cast<float> (i));

    ASSERT_EQ (course.size(), 100U);
    EXPECT_EQ (course.samplesPerBin(), 1);
    EXPECT_EQ (course[42].lowest, 42.0f);
    EXPECT_EQ (course.mean (42), 42.0);
}

TEST (TimeCourse, JoinsBinsAndKeepsExtremesAndMeans)
{
    TimeCourse course;
    constexpr int count = 100001;

    for (int i = 0; i < count; ++i)
        course.add (static_cast<float> (i));

    EXPECT_LE (course.size(), TimeCourse::mostBins);
    EXPECT_GT (course.size(), TimeCourse::mostBins / 2);
    const auto length = course.samplesPerBin();
    EXPECT_EQ (length, 16);

    for (std::size_t bin = 0; bin + 1 < course.size(); ++bin)
    {
        const auto first = static_cast<double> (bin) * 16.0;
        ASSERT_EQ (course[bin].lowest, static_cast<float> (first));
        ASSERT_EQ (course[bin].highest, static_cast<float> (first + 15.0));
        ASSERT_EQ (course.mean (bin), first + 7.5);
    }

    EXPECT_EQ (course.mean (course.size() - 1), count - 1); // alone in the last bin
}

TEST (TimeCourse, HasThePowerOfBothChannels)
{
    TimeCourse course;

    for (int i = 0; i < 100001; ++i)
        course.add (-0.5f, 0.25f);

    for (std::size_t bin = 0; bin < course.size(); ++bin)
        ASSERT_DOUBLE_EQ (course.power (bin), (0.25 + 0.0625) / 2) << bin;
}
} // namespace
