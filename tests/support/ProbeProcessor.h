// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Opened.h"

#include <functional>
#include <stdexcept>
#include <xmmintrin.h>

/** A processor of the tests' own on the same base class: it writes down what the block loop does to it. */
class ProbeProcessor : public Opened<juce::AudioProcessorQuendal>
{
public:
    explicit ProbeProcessor (const juce::AudioChannelSet& input = juce::AudioChannelSet::stereo(),
                             const juce::AudioChannelSet& output = juce::AudioChannelSet::stereo())
        : Opened (BusesProperties())
    {
        enableAllBuses();
        BusesLayout layout;
        layout.inputBuses.add (input);
        layout.outputBuses.add (output);

        if (! setBusesLayout (layout))
            throw std::runtime_error ("the probe refuses its own layout");
    }

    const juce::String getName() const override { return "Probe"; }
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return false; }
    bool producesMidi() const override { return false; }
    juce::AudioProcessorEditor* createEditor() override { return nullptr; }
    bool hasEditor() const override { return false; }

    void updateSettings() override
    {
        log.push_back ("update");
        updatesAtSample.push_back (seen.size());
        dueDuringUpdate = settingsDue;
        ++updates;
    }

    std::pair<float, float> processStereoSample (std::pair<float, float> input) override
    {
        if (log.size() < 100)
            log.push_back ("sample");

        seen.push_back (input);
        floatModes = _mm_getcsr();
        return answer (input);
    }

    void beginBlock (juce::AudioBuffer<float>& buffer, int sampleCount) override
    {
        log.push_back ("begin");
        blockCounts.push_back (sampleCount);
        onBegin (buffer);
    }

    /** Runs a stereo block of silence. */
    void runSilence (std::size_t numSamples)
    {
        std::vector<std::vector<float>> channels (2, std::vector<float> (numSamples, 0.0f));
        run (channels);
    }

    std::vector<std::string> log;
    std::vector<std::pair<float, float>> seen;
    std::vector<std::size_t> updatesAtSample; // how many samples had been processed before each update
    std::vector<int> blockCounts;
    int updates = 0;
    bool dueDuringUpdate = true;
    unsigned int floatModes = 0;
    std::function<std::pair<float, float> (std::pair<float, float>)> answer = [] (auto input) { return input; };
    std::function<void (juce::AudioBuffer<float>&)> onBegin = [] (juce::AudioBuffer<float>&) {};
};
