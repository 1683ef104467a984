// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/HighPassAccess.h"
#include "frame/LarkspireAudioProcessor.h"
#include "support/KnobPosition.h"
#include "support/Opened.h"

/** The plug-in's processor with its insides open to the tests. */
class OpenProcessor : public Opened<LarkspireAudioProcessor>
{
public:
    /** As the wrapper does, which enables the buses that JUCE's default leaves disabled. */
    OpenProcessor() { enableAllBuses(); }

    using LarkspireAudioProcessor::airFilter;
    using LarkspireAudioProcessor::bodyFilter;
    using LarkspireAudioProcessor::expander;
    using LarkspireAudioProcessor::highPassLeft;
    using LarkspireAudioProcessor::highPassRight;
    using LarkspireAudioProcessor::leveller;
    using LarkspireAudioProcessor::modeIndex;
    using LarkspireAudioProcessor::spareFilter;

    /** What the wrapper does ahead of audio: gives JUCE the rate in Hz. */
    void giveRate (double rate) { setRateAndBufferSizeDetails (rate, 512); }

    /** Sets the parameter as a host does. */
    void setMode (float value) { modeParameter->setValueNotifyingHost (value); }

    /** Brings a position into force without processing a sample. */
    void adoptMode (float value)
    {
        setMode (value);
        updateSettings();
    }

    /** Running gains and filter memories: what the next sample sounds by beside the settings. */
    std::vector<float> memory() const
    {
        std::vector<float> all { leveller->gainLeft, leveller->gainRight, expander->gainLeft, expander->gainRight };

        for (const auto* filter : { airFilter, bodyFilter, spareFilter })
            for (const auto& channel : { filter->left, filter->right })
                all.insert (all.end(), { channel.x0, channel.x1, channel.x2, channel.y1, channel.y2 });

        for (const auto* filter : { &highPassLeft, &highPassRight })
        {
            const auto copy = larkspire::HighPassAccess::copyOf (*filter);
            all.insert (all.end(), { copy.v1, copy.v2 });
        }

        return all;
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
