// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "vst3/KnobChanges.h"

#include <pluginterfaces/vst/ivstaudioprocessor.h>

#include <optional>

namespace larkspire
{

/** Stands between a host and JUCE's VST 3 wrapper, which trusts the host: its buffers are as long as the announced
    block, and a longer one would be written past their end.

    A longer block goes on in pieces, its parameter changes with the first. Of what cannot be processed, samples
    of 64 bits, which were refused, or other channels than one or two, only the parameter changes go on: it comes out
    silent. So does what the wrapper leaves as it is, buses that are off and buses beyond the one each way, unless the
    host gives the same memory for input and output: then the input stays.
*/
class BlockGuard : public Steinberg::Vst::IAudioProcessor
{
public:
    virtual ~BlockGuard() = default;

    /** The wrapper's own interface, which lives as long as hosts have this one. */
    void guard (IAudioProcessor& wrapper) { inner = &wrapper; }

    /** The parameter whose changes are taken here and do not reach the wrapper; it must outlive this. */
    void takeChangesOf (juce::AudioParameterFloat& knob) { knobChanges.emplace (knob); }

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return inner->addRef(); }
    Steinberg::uint32 PLUGIN_API release() override { return inner->release(); }

    Steinberg::tresult PLUGIN_API setBusArrangements (Steinberg::Vst::SpeakerArrangement* inputs,
                                                      Steinberg::int32 numIns,
                                                      Steinberg::Vst::SpeakerArrangement* outputs,
                                                      Steinberg::int32 numOuts) override;
    Steinberg::tresult PLUGIN_API getBusArrangement (Steinberg::Vst::BusDirection direction,
                                                     Steinberg::int32 index,
                                                     Steinberg::Vst::SpeakerArrangement& arrangement) override;
    Steinberg::tresult PLUGIN_API canProcessSampleSize (Steinberg::int32 symbolicSampleSize) override;
    Steinberg::uint32 PLUGIN_API getLatencySamples() override { return inner->getLatencySamples(); }
    Steinberg::tresult PLUGIN_API setupProcessing (Steinberg::Vst::ProcessSetup& setup) override;
    Steinberg::tresult PLUGIN_API setProcessing (Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API process (Steinberg::Vst::ProcessData& data) override;
    Steinberg::uint32 PLUGIN_API getTailSamples() override { return inner->getTailSamples(); }

private:
    /** Hands a block's parameter changes on without its sound. */
    Steinberg::tresult processParametersOf (const Steinberg::Vst::ProcessData& data);

    IAudioProcessor* inner = nullptr;
    std::optional<KnobChanges> knobChanges;

    // What the wrapper's buffers are made for, and at first what it takes for announced itself.
    Steinberg::Vst::ProcessSetup latestSetup {
        .processMode = Steinberg::Vst::kRealtime,
        .symbolicSampleSize = Steinberg::Vst::kSample32,
        .maxSamplesPerBlock = 1024,
        .sampleRate = 44100.0,
    };
};

} // namespace larkspire
