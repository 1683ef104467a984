// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/AudioProcessorQuendal.h"
#include "support/ChannelPointer.h"

#include <vector>

/** A processor with what it has of the base class open to the tests. */
template <typename Base>
class Opened : public Base
{
public:
    using Base::Base;

    using Base::appliedProgram;
    using Base::builtOversamplingFactor;
    using Base::countSamples;
    using Base::currentProgram;
    using Base::oversampler;
    using Base::oversamplerBlockSize;
    using Base::oversamplingFactor;
    using Base::preparedBlockSize;
    using Base::programs;
    using Base::programScratch;
    using Base::refreshCounter;
    using Base::requestUpdate;
    using Base::reserveLeft;
    using Base::reserveRight;
    using Base::sampleRate;
    using Base::samplesSinceChange;
    using Base::settings;
    using Base::settingsDue;
    using Base::stateTouched;

    /** Runs one block in place on as many channels as there are lists, all of the same length. */
    void run (std::vector<std::vector<float>>& channels)
    {
        std::vector<float*> pointers (channels.size());

        for (std::size_t i = 0; i < channels.size(); ++i)
            pointers[i] = channelPointer (channels[i]);

        juce::AudioBuffer<float> buffer (
            pointers.data(), static_cast<int> (channels.size()), static_cast<int> (channels.front().size()));
        juce::MidiBuffer midi;
        this->processBlock (buffer, midi);
    }
};
