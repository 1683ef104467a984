// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/VoiceChain.h"
#include "frame/AudioParameterFloatQuendal.h"
#include "frame/AudioProcessorQuendal.h"

#include <cstddef>
#include <span>
#include <utility>

/** The plug-in: one knob, "Mode", that picks a row of the mode table, and the voice chain that runs on it.

    Suspend and resume reach nothing here, so that running gains and filter memories survive a stopped transport.
*/
class LarkspireAudioProcessor : public juce::AudioProcessorQuendal
{
public:
    LarkspireAudioProcessor();
    ~LarkspireAudioProcessor() override;

    const juce::String getName() const override { return "Quendal Larkspire"; }

    /** Empty, so that preparing neither asks for a re-initialisation nor clears anything. */
    void prepareToPlay (double, int) override {}
    void releaseResources() override {}

    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return false; }
    bool producesMidi() const override { return false; }
    bool isMidiEffect() const override { return false; }

    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override { return true; }

    // The host sees a single program without a name, whatever the base class's program list holds.
    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override {}
    const juce::String getProgramName (int) override { return {}; }
    void changeProgramName (int, const juce::String&) override {}

    /** Mono to mono and stereo to stereo; nothing else. */
    bool isBusesLayoutSupported (const BusesLayout& layouts) const override;

    /** Brings the row of the parameter's position into force: the gain stages' settings and the filters' design. The
        running gains and the filters' memories carry on. */
    void updateSettings() override;

    /** The voice chain, one sample; in "bypass" the sample as it came. Watches the parameter. */
    std::pair<float, float> processStereoSample (std::pair<float, float> input) override;

    /** The same for a run of samples. A change of the parameter is noticed at the first one. */
    std::size_t processRun (std::span<std::pair<float, float>> run) override;

    juce::AudioParameterFloatQuendal* modeParameter = nullptr; // owned by JUCE once it is added

protected:
    int modeIndex = 2; // the row in force; 0 is "bypass"
    larkspire::PeakingFilter* airFilter = nullptr;
    larkspire::PeakingFilter* bodyFilter = nullptr;
    larkspire::PeakingFilter* spareFilter = nullptr;
    larkspire::LevelRider* leveller = nullptr;
    larkspire::LevelRider* expander = nullptr;
    juce::IIRFilter highPassLeft;
    juce::IIRFilter highPassRight;

public:
    // What the editor's timer reads and clears; nothing adds to it.
    float levelSum = 0.0f;
    int levelCount = 0;

private:
    struct WithoutRecords
    {
    };

    /** Everything but the records and the parameter. The public constructor delegates to it: once it has run, the
        destructor frees what there is even if a later allocation fails. */
    explicit LarkspireAudioProcessor (WithoutRecords);

    /** The chain on the records of this instance, the high-pass on copies of its two. */
    larkspire::VoiceChain chainOn (larkspire::HighPassFilter& left, larkspire::HighPassFilter& right) const;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (LarkspireAudioProcessor)
};
