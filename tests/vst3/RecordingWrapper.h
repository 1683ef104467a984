// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

/** Stands in for JUCE's VST 3 wrapper: writes down what comes through to it. */
class RecordingWrapper : public Steinberg::Vst::IComponent,
                         public Steinberg::Vst::IAudioProcessor,
                         public juce::AudioPlayHead
{
public:
    struct Bus
    {
        Steinberg::int32 channelCount = 0;
        std::vector<Steinberg::Vst::Sample32*> channels;

        bool operator== (const Bus&) const = default;
    };

    /** A block as the wrapper got it. */
    struct Block
    {
        Steinberg::int32 frames = 0;
        std::vector<Bus> inputs;
        std::vector<Bus> outputs;
        Steinberg::Vst::IParameterChanges* changes = nullptr;

        bool operator== (const Block&) const = default;
    };

    using Activation =
        std::tuple<Steinberg::Vst::MediaType, Steinberg::Vst::BusDirection, Steinberg::int32, Steinberg::TBool>;

    std::vector<Block> blocks;
    std::vector<Steinberg::Vst::ProcessData> data; // of each block, the pointers in it out of date
    std::vector<Steinberg::Vst::ProcessSetup> setups;
    std::vector<Activation> activations;
    std::vector<std::string> states; // all that a stream held
    std::vector<std::string> calls;  // of those that are only handed on
    std::function<void (Steinberg::Vst::ProcessData&)> onProcess = [] (Steinberg::Vst::ProcessData&) {};
    std::deque<Steinberg::tresult> answers; // to the next calls; kResultTrue when there are none

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID, void** object) override
    {
        *object = this;
        return note ("queryInterface");
    }

    Steinberg::uint32 PLUGIN_API addRef() override { return ++references; }
    Steinberg::uint32 PLUGIN_API release() override { return --references; }

    Steinberg::tresult PLUGIN_API setBusArrangements (Steinberg::Vst::SpeakerArrangement* inputs,
                                                      Steinberg::int32 numIns,
                                                      Steinberg::Vst::SpeakerArrangement* outputs,
                                                      Steinberg::int32 numOuts) override
    {
        std::string call = "setBusArrangements";

        for (Steinberg::int32 i = 0; i < numIns; ++i)
            call += " " + std::to_string (inputs[i]);

        call += " to";

        for (Steinberg::int32 i = 0; i < numOuts; ++i)
            call += " " + std::to_string (outputs[i]);

        return note (call);
    }

    Steinberg::tresult PLUGIN_API getBusArrangement (Steinberg::Vst::BusDirection direction,
                                                     Steinberg::int32 index,
                                                     Steinberg::Vst::SpeakerArrangement& arrangement) override
    {
        arrangement = direction == Steinberg::Vst::kInput ? 70 : 71;
        return note ("getBusArrangement " + std::to_string (direction) + " " + std::to_string (index));
    }

    Steinberg::tresult PLUGIN_API canProcessSampleSize (Steinberg::int32 size) override
    {
        return note ("canProcessSampleSize " + std::to_string (size));
    }

    Steinberg::uint32 PLUGIN_API getLatencySamples() override { return 11; }
    Steinberg::uint32 PLUGIN_API getTailSamples() override { return 12; }

    Steinberg::tresult PLUGIN_API setupProcessing (Steinberg::Vst::ProcessSetup& setup) override
    {
        setups.push_back (setup);
        return answer();
    }

    Steinberg::tresult PLUGIN_API setProcessing (Steinberg::TBool state) override
    {
        return note ("setProcessing " + std::to_string (state));
    }

    Steinberg::tresult PLUGIN_API process (Steinberg::Vst::ProcessData& block) override
    {
        data.push_back (block);
        blocks.push_back ({ block.numSamples,
                            busesOf (block.inputs, block.numInputs),
                            busesOf (block.outputs, block.numOutputs),
                            block.inputParameterChanges });
        onProcess (block);
        return answer();
    }

    Steinberg::tresult PLUGIN_API activateBus (Steinberg::Vst::MediaType type,
                                               Steinberg::Vst::BusDirection direction,
                                               Steinberg::int32 index,
                                               Steinberg::TBool state) override
    {
        activations.emplace_back (type, direction, index, state);
        return answer();
    }

    Steinberg::tresult PLUGIN_API initialize (FUnknown*) override { return note ("initialize"); }
    Steinberg::tresult PLUGIN_API terminate() override { return note ("terminate"); }
    Steinberg::tresult PLUGIN_API getControllerClassId (Steinberg::TUID id) override
    {
        id[0] = 'C';
        return note ("getControllerClassId");
    }
    Steinberg::tresult PLUGIN_API setIoMode (Steinberg::Vst::IoMode mode) override
    {
        return note ("setIoMode " + std::to_string (mode));
    }
    Steinberg::int32 PLUGIN_API getBusCount (Steinberg::Vst::MediaType type,
                                             Steinberg::Vst::BusDirection direction) override
    {
        return note ("getBusCount " + std::to_string (type) + " " + std::to_string (direction));
    }
    Steinberg::tresult PLUGIN_API getBusInfo (Steinberg::Vst::MediaType type,
                                              Steinberg::Vst::BusDirection direction,
                                              Steinberg::int32 index,
                                              Steinberg::Vst::BusInfo& info) override
    {
        info.channelCount = 13;
        return note ("getBusInfo " + std::to_string (type) + " " + std::to_string (direction) + " "
                     + std::to_string (index));
    }
    Steinberg::tresult PLUGIN_API getRoutingInfo (Steinberg::Vst::RoutingInfo& input,
                                                  Steinberg::Vst::RoutingInfo& output) override
    {
        output.channel = input.channel + 1;
        return note ("getRoutingInfo");
    }
    Steinberg::tresult PLUGIN_API setActive (Steinberg::TBool state) override
    {
        return note ("setActive " + std::to_string (state));
    }
    Steinberg::tresult PLUGIN_API setState (Steinberg::IBStream* stream) override
    {
        char byte = 0;
        Steinberg::int32 size = 0;

        for (states.emplace_back(); stream->read (&byte, 1, &size) == Steinberg::kResultTrue && size == 1;)
            states.back() += byte;

        return answer();
    }
    Steinberg::tresult PLUGIN_API getState (Steinberg::IBStream*) override { return note ("getState"); }

    juce::Optional<PositionInfo> getPosition() const override { return {}; }

    Steinberg::uint32 references = 1;

private:
    static std::vector<Bus> busesOf (const Steinberg::Vst::AudioBusBuffers* buses, Steinberg::int32 count)
    {
        std::vector<Bus> seen;
        seen.reserve (static_cast<std::size_t> (count));

        for (Steinberg::int32 i = 0; i < count; ++i)
            seen.push_back ({ buses[i].numChannels,
                              { buses[i].channelBuffers32, buses[i].channelBuffers32 + buses[i].numChannels } });

        return seen;
    }

    Steinberg::tresult note (const std::string& call)
    {
        calls.push_back (call);
        return answer();
    }

    Steinberg::tresult answer()
    {
        if (answers.empty())
            return Steinberg::kResultTrue;

        const auto next = answers.front();
        answers.pop_front();
        return next;
    }
};
