// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Take.h"

#include "audio/Resampler.h"
#include "base/Failure.h"
#include "measure/PinkNoise.h"
#include "measure/Recording.h"
#include "measure/Tone.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace larkspire::measure
{

namespace
{
using Sound = std::vector<float>;

std::size_t framesIn (double seconds, int sampleRate)
{
    return static_cast<std::size_t> (std::lround (seconds * sampleRate));
}

/** The parts of a sound between runs of digital silence that are long enough to be pauses. */
std::vector<Sound> partedBySilence (const Sound& sound, std::size_t shortestPause)
{
    std::vector<Sound> parts;
    Sound part;
    std::size_t zeros = 0;

    for (const auto sample : sound)
    {
        if (part.empty() && sample == 0.0f)
            continue;

        zeros = sample == 0.0f ? zeros + 1 : 0;
        part.push_back (sample);

        if (zeros < shortestPause)
            continue;

        part.resize (part.size() - zeros);
        parts.push_back (std::move (part));
        part = {};
        zeros = 0;
    }

    if (! part.empty())
        parts.push_back (std::move (part));

    return parts;
}

Sound resampled (const Sound& sound, int from, int to)
{
    if (from == to)
        return sound;

    Resampler resampler (1, from, to);
    const auto first = resampler.process (sound);
    Sound result (first.begin(), first.end());
    const auto rest = resampler.end();
    result.insert (result.end(), rest.begin(), rest.end());
    return result;
}

/** Without a direct current, which would thump where the phrase is cut. */
void centre (Sound& phrase)
{
    double sum = 0.0;

    for (const auto sample : phrase)
        sum += static_cast<double> (sample);

    const auto mean = static_cast<float> (sum / static_cast<double> (phrase.size()));
    std::transform (phrase.begin(), phrase.end(), phrase.begin(), [mean] (float sample) { return sample - mean; });
}

/** Levels of windows one after the other. */
std::vector<double> levelsOf (const Sound& phrase, std::size_t window)
{
    std::vector<double> levels;

    for (std::size_t from = 0; from + window <= phrase.size(); from += window)
        levels.push_back (levelOf (std::span (phrase).subspan (from, window)));

    return levels;
}

/** From silence to its level, along half a period of a cosine. */
void fadeIn (std::span<float> sound)
{
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] *= static_cast<float> (
            0.5 - 0.5 * std::cos (std::numbers::pi * static_cast<double> (i) / static_cast<double> (sound.size())));
}

/** Takes off what is softer than a level at both ends, but for a margin, and fades the margins. */
Sound trimmed (const Sound& phrase, double softest, int sampleRate)
{
    const auto window = framesIn (0.01, sampleRate);
    const auto margin = framesIn (0.05, sampleRate);
    const auto levels = levelsOf (phrase, window);
    const auto isSpeech = [softest] (double level) { return level > softest; };
    const auto first = std::find_if (levels.begin(), levels.end(), isSpeech);
    const auto last = std::find_if (levels.rbegin(), levels.rend(), isSpeech);

    if (first == levels.end())
        return {};

    const auto begin = static_cast<std::size_t> (first - levels.begin()) * window;
    const auto end = static_cast<std::size_t> (levels.rend() - last) * window;
    const auto from = begin - std::min (begin, margin);
    const auto to = std::min (phrase.size(), end + margin);
    Sound result (phrase.begin() + static_cast<std::ptrdiff_t> (from),
                  phrase.begin() + static_cast<std::ptrdiff_t> (to));

    fadeIn (std::span (result).first (begin - from));
    std::reverse (result.begin(), result.end());
    fadeIn (std::span (result).first (to - end));
    std::reverse (result.begin(), result.end());
    return result;
}

/** The first phrases of a recording that are long enough together, at another rate, without what is no speech at their
    ends. */
std::vector<Sound> phrasesIn (const Recording& recording, int sampleRate)
{
    constexpr double shortestPause = 0.4; // s
    constexpr double enough = 5.0;        // s
    constexpr double range = 35.0;        // dB

    auto phrases = partedBySilence (recording.samples, framesIn (shortestPause, recording.sampleRate));
    auto loudest = lowestDecibels;

    for (auto& phrase : phrases)
    {
        phrase = resampled (phrase, recording.sampleRate, sampleRate);
        centre (phrase);

        for (const auto level : levelsOf (phrase, framesIn (0.01, sampleRate)))
            loudest = std::max (loudest, level);
    }

    std::vector<Sound> trimmedPhrases;
    std::size_t frames = 0;

    for (auto phrase = phrases.begin(); phrase != phrases.end() && frames < framesIn (enough, sampleRate); ++phrase)
        if (auto speech = trimmed (*phrase, loudest - range, sampleRate); ! speech.empty())
        {
            frames += speech.size();
            trimmedPhrases.push_back (std::move (speech));
        }

    return trimmedPhrases;
}
} // namespace

std::vector<float> Take::at (double voicePeak, double roomLevel) const
{
    const auto voiceFactor = static_cast<float> (fromDecibels (voicePeak));
    const auto roomFactor = static_cast<float> (fromDecibels (roomLevel));
    std::vector<float> sound (voice.size());
    std::transform (voice.begin(),
                    voice.end(),
                    room.begin(),
                    sound.begin(),
                    [=] (float spoken, float noise) { return voiceFactor * spoken + roomFactor * noise; });
    return sound;
}

Take layOut (const std::filesystem::path& path, int sampleRate)
{
    const auto recording = readRecording (path);
    const auto phrases = phrasesIn (recording, sampleRate);
    const auto pause = framesIn (1.0, sampleRate);
    Take take { .sampleRate = sampleRate,
                .recordedRate = recording.sampleRate,
                .voice = Sound (pause),
                .room = {},
                .phrases = {},
                .pauses = {} };

    if (phrases.empty())
        throw Failure (path, "holds no phrase");

    for (const auto& phrase : phrases)
    {
        const auto begin = take.voice.size();
        const auto end = begin + phrase.size();
        take.voice.insert (take.voice.end(), phrase.begin(), phrase.end());
        take.voice.resize (end + pause);
        take.phrases.push_back ({ begin, end });
        take.pauses.push_back ({ end, end + pause });
    }

    const auto factor = static_cast<float> (1.0 / peakOf (take.voice));
    std::transform (
        take.voice.begin(), take.voice.end(), take.voice.begin(), [factor] (float sample) { return factor * sample; });
    take.room = pinkNoise (take.voice.size(), sampleRate);
    return take;
}

double levelIn (std::span<const float> sound, const std::vector<Stretch>& stretches)
{
    double power = 0.0;
    double frames = 0.0;

    for (const auto& stretch : stretches)
    {
        const auto part = sound.subspan (stretch.begin, stretch.end - stretch.begin);
        power += static_cast<double> (part.size()) * std::pow (10.0, 0.1 * levelOf (part));
        frames += static_cast<double> (part.size());
    }

    return 10.0 * std::log10 (power / frames);
}

} // namespace larkspire::measure
