// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/LarkspireAudioProcessor.h"
#include "support/ChannelPointer.h"
#include "support/KnobPosition.h"

/** The plug-in's processor with its insides open to the tests. */
class OpenProcessor : public LarkspireAudioProcessor
{
public:
    /** As the wrapper does, which enables the buses that the framework's default leaves disabled. */
    OpenProcessor() { enableAllBuses(); }

    using juce::AudioProcessorQuendal::appliedProgram;
    using juce::AudioProcessorQuendal::builtOversamplingFactor;
    using juce::AudioProcessorQuendal::countSamples;
    using juce::AudioProcessorQuendal::currentProgram;
    using juce::AudioProcessorQuendal::oversampler;
    using juce::AudioProcessorQuendal::oversamplerBlockSize;
    using juce::AudioProcessorQuendal::oversamplingFactor;
    using juce::AudioProcessorQuendal::preparedBlockSize;
    using juce::AudioProcessorQuendal::programs;
    using juce::AudioProcessorQuendal::programScratch;
    using juce::AudioProcessorQuendal::refreshCounter;
    using juce::AudioProcessorQuendal::requestUpdate;
    using juce::AudioProcessorQuendal::reserveLeft;
    using juce::AudioProcessorQuendal::reserveRight;
    using juce::AudioProcessorQuendal::sampleRate;
    using juce::AudioProcessorQuendal::samplesSinceChange;
    using juce::AudioProcessorQuendal::settings;
    using juce::AudioProcessorQuendal::settingsDue;
    using juce::AudioProcessorQuendal::stateTouched;

    using LarkspireAudioProcessor::airFilter;
    using LarkspireAudioProcessor::bodyFilter;
    using LarkspireAudioProcessor::expander;
    using LarkspireAudioProcessor::highPassLeft;
    using LarkspireAudioProcessor::highPassRight;
    using LarkspireAudioProcessor::leveller;
    using LarkspireAudioProcessor::modeIndex;
    using LarkspireAudioProcessor::spareFilter;

    /** What the wrapper does ahead of audio: gives the framework the rate in Hz. */
    void giveRate (double rate) { setRateAndBufferSizeDetails (rate, 512); }

    /** Sets the parameter as a host does. */
    void setMode (float value) { modeParameter->setValueNotifyingHost (value); }

    /** Brings a position into force without processing a sample. */
    void adoptMode (float value)
    {
        setMode (value);
        updateSettings();
    }

    /** Runs one stereo block in place; both lists have the same length. */
    void run (std::vector<float>& left, std::vector<float>& right)
    {
        float* channels[] = { channelPointer (left), channelPointer (right) };
        juce::AudioBuffer<float> buffer (channels, 2, static_cast<int> (left.size()));
        juce::MidiBuffer midi;
        processBlock (buffer, midi);
    }
};
