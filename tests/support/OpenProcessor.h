// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/LarkspireAudioProcessor.h"
#include "support/KnobPosition.h"
#include "support/Opened.h"

/** The plug-in's processor with its insides open to the tests. */
class OpenProcessor : public Opened<LarkspireAudioProcessor>
{
public:
    /** As the wrapper does, which enables the buses that the framework's default leaves disabled. */
    OpenProcessor() { enableAllBuses(); }

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

    using Opened::run;

    /** Runs one stereo block in place; both lists have the same length. */
    void run (std::vector<float>& left, std::vector<float>& right)
    {
        float* channels[] = { channelPointer (left), channelPointer (right) };
        juce::AudioBuffer<float> buffer (channels, 2, static_cast<int> (left.size()));
        juce::MidiBuffer midi;
        processBlock (buffer, midi);
    }
};
