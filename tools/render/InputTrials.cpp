// SPDX-License-Identifier: AGPL-3.0-only
#include "render/InputTrials.h"

#include "audio/AudioInput.h"

#include <algorithm>
#include <cmath>

namespace larkspire::render
{

void hear (const std::filesystem::path& recording, const Listener& listener)
{
    AudioInput input (recording);
    std::vector<float> buffer (8192);
    const auto channels = static_cast<std::size_t> (input.shape().channels);

    for (auto frames = input.read (buffer); frames > 0; frames = input.read (buffer))
        listener (std::span (buffer).first (frames * channels));
}

void PeakMeter::add (std::span<const float> samples)
{
    for (const auto sample : samples)
        if (std::isfinite (sample))
            largest = std::max (largest, std::abs (sample));
}

std::vector<Trial> tryOut (const std::filesystem::path& recording,
                           const VoicePathSettings& way,
                           std::vector<Trial> wanted,
                           const Listener& listener)
{
    const auto shape = shapeForPlugin (way);
    std::erase_if (wanted, [] (const Trial& trial) { return trial.mode == KnobMode::bypass; });
    std::vector<std::unique_ptr<meter::GainTrial>> chains;
    chains.reserve (wanted.size());

    for (const auto& trial : wanted)
        chains.push_back (std::make_unique<meter::GainTrial> (
            static_cast<int> (trial.mode), shape, way.voices, std::pow (10.0, trial.gainDb / 20.0)));

    std::optional<Resampler> resampler;

    if (shape.sampleRate != way.shape.sampleRate)
        resampler.emplace (shape.channels, way.shape.sampleRate, shape.sampleRate);

    const auto give = [&chains] (std::span<const float> frames)
    {
        for (const auto& chain : chains)
            chain->add (frames);
    };

    std::vector<float> resampled;
    const auto giveResampled = [&] (std::span<const float> frames)
    {
        // Digital silence, which does not count, stays that.
        constexpr float ofSilence = 1e-8f;
        resampled.assign (frames.begin(), frames.end());
        std::replace_if (
            resampled.begin(), resampled.end(), [] (float sample) { return std::abs (sample) < ofSilence; }, 0.0f);
        give (resampled);
    };

    hear (recording,
          [&] (std::span<const float> frames)
          {
              listener (frames);

              if (resampler.has_value())
                  giveResampled (resampler->process (frames));
              else
                  give (frames);
          });

    if (resampler.has_value())
        giveResampled (resampler->end());

    for (std::size_t i = 0; i < wanted.size(); ++i)
    {
        wanted[i].before = chains[i]->before();
        wanted[i].after = chains[i]->after();
        wanted[i].closes = chains[i]->closes();
    }

    return wanted;
}

std::vector<Trial> trialsOfLevels (KnobMode mode, double peakDbfs)
{
    constexpr int lowest = -36;
    constexpr int highest = -6;
    std::vector<Trial> trials;

    for (int level = lowest; level <= highest; level += 3)
        trials.push_back ({ .mode = mode, .gainDb = level - peakDbfs });

    return trials;
}

const Trial* bestOf (const std::vector<Trial>& trials)
{
    const Trial* best = nullptr;

    for (const auto& trial : trials)
        if (const auto distance = trial.after.distanceDb())
            if (best == nullptr || *distance > *best->after.distanceDb())
                best = &trial;

    return best;
}

} // namespace larkspire::render
