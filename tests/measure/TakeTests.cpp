// SPDX-License-Identifier: AGPL-3.0-only
// Voices in a room: how they are laid out, and the figures that they are judged by, on sounds of which all is known.
#include "base/Failure.h"
#include "measure/Band.h"
#include "measure/PinkNoise.h"
#include "measure/Take.h"
#include "measure/Tone.h"
#include "measure/VoiceFigures.h"
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>
#include <vector>

namespace
{
using namespace larkspire;
using namespace larkspire::measure;

constexpr int rate = 48000; // Hz
constexpr std::size_t second = rate;

using Sound = std::vector<float>;

Sound tone (double frequency, std::size_t frames, double peakDb)
{
    return Tone (frequency / rate).next (frames, peakDb);
}

void append (Sound& sound, const Sound& part)
{
    sound.insert (sound.end(), part.begin(), part.end());
}

TEST (PinkNoise, HasTheSamePowerInEveryOctave)
{
    for (const int sampleRate : { 8000, 48000 })
    {
        const auto noise = pinkNoise (std::size_t { 20 } * static_cast<std::size_t> (sampleRate), sampleRate);
        const auto reference = levelOf (inBand (noise, { .low = 707.0, .high = 1414.0 }, sampleRate));

        for (double centre = 62.5; centre <= 0.2 * sampleRate; centre *= 2.0)
            EXPECT_NEAR (levelOf (inBand (noise, { .low = centre / 1.41421, .high = centre * 1.41421 }, sampleRate)),
                         reference,
                         0.7)
                << centre << " Hz at " << sampleRate;
    }
}

TEST (PinkNoise, HasTheLevelOfAFullScaleSineAndIsTheSameEachTime)
{
    const auto noise = pinkNoise (10 * second, rate);
    EXPECT_NEAR (levelOf (noise), 0.0, 1e-4);
    EXPECT_EQ (noise, pinkNoise (10 * second, rate));

    // As peaked as a normal distribution, for which the mean of x^4 is 3: the expander looks at single samples.
    double fourth = 0.0;

    for (const auto sample : noise)
        fourth += std::pow (std::sqrt (2.0) * static_cast<double> (sample), 4.0);

    EXPECT_NEAR (fourth / static_cast<double> (noise.size()), 3.0, 0.05);
}

TEST (Band, KeepsWhatIsInItAndTakesOffTheRest)
{
    const auto levelBehind = [] (double frequency)
    { return levelOf (inBand (tone (frequency, second, 0.0), { .low = 300.0, .high = 3000.0 }, rate)); };
    EXPECT_NEAR (levelBehind (1000.0), 0.0, 0.1);
    EXPECT_NEAR (levelBehind (300.0), -3.0, 0.1);
    EXPECT_NEAR (levelBehind (3000.0), -3.0, 0.1);
    EXPECT_LT (levelBehind (150.0), -22.0);
    EXPECT_LT (levelBehind (6000.0), -22.0);
}

/** Two phrases, the first a little more than a second of tone with a soft hum at both ends, and silence between. */
Sound twoPhrases()
{
    auto sound = tone (100.0, second / 2, -50.0);
    append (sound, tone (1000.0, second, -6.0));
    append (sound, tone (100.0, second / 2, -50.0));
    append (sound, Sound (second / 2));
    append (sound, tone (1000.0, second / 2, -12.0));
    return sound;
}

std::size_t lengthOf (const Stretch& stretch)
{
    return stretch.end - stretch.begin;
}

TEST (Take, PartsPhrasesBySecondsOfSilenceAndKnowsWhere)
{
    const TemporaryFolder folder;
    writeFloats (folder / "voice.wav", wavFloat, 1, twoPhrases());
    const auto take = layOut (folder / "voice.wav", rate);

    ASSERT_EQ (take.phrases.size(), 2u);
    ASSERT_EQ (take.pauses.size(), 2u);
    EXPECT_EQ (take.phrases[0].begin, second);
    EXPECT_EQ (take.pauses[0].begin, take.phrases[0].end);
    EXPECT_EQ (take.phrases[1].begin, take.pauses[0].end);
    EXPECT_EQ (take.pauses[1].end, take.voice.size());

    // The hum is off, but for 50 ms.
    EXPECT_NEAR (static_cast<double> (lengthOf (take.phrases[0])), 1.1 * rate, 0.011 * rate);
    EXPECT_NEAR (static_cast<double> (lengthOf (take.phrases[1])), 0.5 * rate, 0.011 * rate);

    for (const auto& pause : take.pauses)
    {
        EXPECT_EQ (lengthOf (pause), second);
        EXPECT_EQ (std::count (take.voice.begin() + static_cast<std::ptrdiff_t> (pause.begin),
                               take.voice.begin() + static_cast<std::ptrdiff_t> (pause.end),
                               0.0f),
                   std::ptrdiff_t { second });
    }

    EXPECT_NEAR (peakOf (take.voice), 1.0, 1e-6);
    EXPECT_EQ (take.room.size(), take.voice.size());
}

TEST (Take, HasNoDirectCurrentAndNoEdges)
{
    const TemporaryFolder folder;
    auto sound = twoPhrases();

    for (auto& sample : sound)
        sample += sample == 0.0f ? 0.0f : 0.02f;

    writeFloats (folder / "voice.wav", wavFloat, 1, sound);
    const auto take = layOut (folder / "voice.wav", rate);
    const auto& phrase = take.phrases.front();
    const std::span voice (take.voice);
    const auto spoken = voice.subspan (phrase.begin, lengthOf (phrase));
    EXPECT_NEAR (std::accumulate (spoken.begin(), spoken.end(), 0.0) / static_cast<double> (spoken.size()), 0.0, 1e-3);

    // The hum swells from nothing and dies away.
    EXPECT_LT (peakOf (spoken.first (second / 200)), 0.3 * peakOf (spoken.subspan (second / 25, second / 200)));
    EXPECT_LT (peakOf (spoken.last (second / 200)), 0.3 * peakOf (spoken.last (second / 20).first (second / 200)));
}

TEST (Take, PutsVoiceAndRoomAtTheirLevels)
{
    const TemporaryFolder folder;
    writeFloats (folder / "voice.wav", wavFloat, 1, twoPhrases());
    const auto take = layOut (folder / "voice.wav", rate);

    EXPECT_NEAR (toDecibels (peakOf (take.at (-12.0, -200.0))), -12.0, 1e-3);
    EXPECT_NEAR (levelOf (take.at (-200.0, -60.0)), -60.0, 1e-3);
    EXPECT_NEAR (levelIn (take.at (-12.0, -60.0), take.pauses), -60.0, 1.0);
}

TEST (Take, IsTheSameVoiceAtAnotherRate)
{
    const TemporaryFolder folder;
    writeFloats (folder / "voice.wav", wavFloat, 1, twoPhrases());
    const auto take = layOut (folder / "voice.wav", 8000);
    EXPECT_EQ (take.sampleRate, 8000);
    EXPECT_EQ (take.recordedRate, rate);
    ASSERT_EQ (take.phrases.size(), 2u);
    EXPECT_NEAR (static_cast<double> (lengthOf (take.phrases[0])), 1.1 * 8000, 0.011 * 8000);
    EXPECT_NEAR (levelIn (take.voice, { take.phrases[0] }), -0.4, 0.2); // a tone that stands for 1.0 of 1.1 s
}

TEST (Take, HoldsNoMoreThanIsEnough)
{
    const TemporaryFolder folder;
    Sound sound;

    for (int i = 0; i < 9; ++i)
    {
        append (sound, tone (1000.0, second + second / 10, -6.0));
        append (sound, Sound (second / 2));
    }

    writeFloats (folder / "voice.wav", wavFloat, 1, sound);
    EXPECT_EQ (layOut (folder / "voice.wav", rate).phrases.size(), 5u);
}

TEST (Take, NeedsOneChannelAndAPhrase)
{
    const TemporaryFolder folder;
    writeFloats (folder / "two.wav", wavFloat, 2, Sound (2 * second, 0.1f));
    writeFloats (folder / "silence.wav", wavFloat, 1, Sound (second));
    EXPECT_THROW (layOut (folder / "two.wav", rate), Failure);
    EXPECT_THROW (layOut (folder / "silence.wav", rate), Failure);
    EXPECT_THROW (layOut (folder / "none.wav", rate), Failure);
}

/** A second of silence, a phrase of two tones and a pause in which the room is a softer tone, behind a loud beginning.
 */
struct Known
{
    Known()
    {
        const auto begin = second;
        sound.resize (begin);
        auto phrase = tone (1000.0, 2 * second, -20.0);
        const auto treble = tone (8000.0, 2 * second, -32.0);
        std::transform (phrase.begin(), phrase.end(), treble.begin(), phrase.begin(), std::plus<>());
        append (sound, phrase);
        append (sound, tone (1000.0, second / 4, -10.0));
        append (sound, tone (1000.0, 3 * second / 4, -60.0));
        take.phrases = { { begin, begin + 2 * second } };
        take.pauses = { { begin + 2 * second, begin + 3 * second } };
    }

    Sound sound;
    Take take { .sampleRate = rate, .recordedRate = rate, .voice = {}, .room = {}, .phrases = {}, .pauses = {} };
};

TEST (VoiceFigures, AreThoseOfKnownTones)
{
    const Known known;
    EXPECT_NEAR (pauseLevel (known.sound, known.take), -60.0, 0.01);
    EXPECT_NEAR (brightnessOf (known.sound, known.take), -12.0, 0.2);

    // BS.1770 weights 8 kHz by 3.4 dB more than 1 kHz: of -32 dB that comes to 0.6 dB in the sum.
    EXPECT_NEAR (distanceOfRoom (known.sound, known.take), 40.6, 0.15);
    EXPECT_NEAR (truePeakOf (tone (997.0, second, -6.0), rate), -6.0, 0.05);

    Sound endsLoud (second);
    endsLoud.back() = 0.5f;
    EXPECT_NEAR (truePeakOf (endsLoud, rate), -6.0, 0.1); // its very last sample counts

    // A sine of full scale on one channel has -3.01 LUFS at 997 Hz.
    EXPECT_NEAR (loudnessOf (tone (997.0, second, -20.0), rate), -23.0, 0.1);
}

TEST (VoiceFigures, KnowNoBrightnessWhereNoTrebleWasRecorded)
{
    Known known;
    known.take.recordedRate = 8000;
    EXPECT_TRUE (std::isnan (brightnessOf (known.sound, known.take)));
}

TEST (VoiceFigures, DriftIsTheRiseOfAGainInItsPauses)
{
    const Known known;
    meter::TimeCourse gain;

    for (std::size_t i = 0; i < known.sound.size(); ++i)
    {
        const auto into = std::max (0.0, (static_cast<double> (i) - 3.0 * second) / second);
        gain.add (static_cast<float> (0.1 * fromDecibels (6.0 * into)));
    }

    EXPECT_NEAR (driftInPauses (gain, known.take), 6.0, 0.1);
}

TEST (Voices, NameThePackageIfAPhraseIsMissing)
{
    const TemporaryFolder folder;
    const auto make = [&] (const std::string& variable)
    {
        return run (Call { .arguments = { folder / "voices" },
                           .program = paths::source ("scripts/voices"),
                           .environment = { { variable, folder / "none" } } });
    };

    for (const auto& [variable, package] : { std::pair { "LARKSPIRE_RECORDINGS", "alsa-utils" },
                                             std::pair { "LARKSPIRE_PHRASES", "pocketsphinx-testdata" } })
    {
        const auto outcome = make (variable);
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1u) << outcome.errors;
        EXPECT_THAT (outcome.errors, testing::HasSubstr (package));
    }
}
} // namespace
